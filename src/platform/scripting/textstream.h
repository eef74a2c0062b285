/// Texts in files.
///
/// ANSI is Windows-1252. A text that it can't hold, or whose bytes could be taken for UTF-8, is written as UTF-8 with a
/// byte order mark, so that nothing is lost. Reading honours a byte order mark of UTF-8 or UTF-16, takes a file without
/// one for UTF-8 when it is that and more than ASCII, as editors write it here, and else for Windows-1252. Unicode is
/// UTF-16, little-endian, with its mark.
#pragma once

#include <QByteArray>
#include <QString>

#include <memory>

namespace scripting {

class Replacement;

/// The encodings of a text file.
QString decodeText(const QByteArray &bytes);
QByteArray encodeText(const QString &text, bool unicode);

/// A text file that is open for reading or for writing. What is written reaches the disk as a whole at `Close` (or with
/// the last reference, then without a failure): the file is replaced in one step and is never found empty or cut.
class TextStream {
  public:
    /// Open for reading a text.
    explicit TextStream(QString text);
    /// Open for writing a file anew. \param path  a machine's path. Fails with 70 or 76.
    TextStream(const QString &path, bool unicode);
    ~TextStream();
    TextStream(const TextStream &) = delete;
    TextStream &operator=(const TextStream &) = delete;

    /// The rest of the text; fails with 62 where there is none, 54 on a stream for writing.
    QString ReadAll();
    [[nodiscard]] bool AtEndOfStream() const;
    void Write(const QString &text);
    void Close();

  private:
    void require(bool writing) const;

    std::unique_ptr<Replacement> m_target;
    QString m_text;
    qsizetype m_position = 0;
    bool m_unicode = false;
    bool m_writing = false;
    bool m_open = true;
};

} // namespace scripting
