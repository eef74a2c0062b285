/// Replacing a file in one step.
#pragma once

#include <QByteArray>
#include <QString>

namespace scripting {

/// A file that is written beside the one it is to replace. Until `commit` the old one is whole; a replacement that is
/// dropped leaves nothing behind. A target that is no plain file, or stands in a folder that takes no other, is written
/// as it is.
class Replacement {
  public:
    /// Fails with 70 or 76 where the file could not be written. \param path  a machine's path; links are followed.
    explicit Replacement(const QString &path);
    ~Replacement();
    Replacement(const Replacement &) = delete;
    Replacement &operator=(const Replacement &) = delete;

    /// Writes the content, brings it to the disk and puts it in place. Fails with 61 or 70; the old file is whole then.
    void commit(const QByteArray &content);

  private:
    void openTemporary();
    void closeFile();

    QByteArray m_path;
    /// Empty where the target is written as it is.
    QByteArray m_temporary;
    int m_file = -1;
};

} // namespace scripting
