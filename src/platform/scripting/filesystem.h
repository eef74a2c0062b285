/// The file-system component. Arguments and results are path texts.
///
/// Failures: 53 no such file, 58 the file exists already, 61 the disk is full, 70 permission denied, 76 no such folder.
#pragma once

#include "platform/scripting/textstream.h"
#include "platform/value/datetime.h"
#include "platform/value/ref.h"

#include <QList>
#include <QString>

namespace scripting {

/// A folder. Its members are read from the disk at each call.
class Folder {
  public:
    explicit Folder(QString path) : m_path(std::move(path)) {}
    virtual ~Folder() = default;

    [[nodiscard]] virtual QString Path() const { return m_path; }
    /// The last part of the path; empty for the root.
    [[nodiscard]] virtual QString Name() const;
    /// The short form of the name where the file system has one, else the name.
    [[nodiscard]] virtual QString ShortName() const { return Name(); }
    [[nodiscard]] virtual bool IsRootFolder() const;
    /// Nothing for the root.
    [[nodiscard]] virtual Ref<Folder> ParentFolder() const;
    /// In the order of their names. Fails with 70 or 76.
    [[nodiscard]] virtual QList<Ref<Folder>> SubFolders() const;

  private:
    QString m_path;
};

class File {
  public:
    explicit File(QString path) : m_path(std::move(path)) {}

    [[nodiscard]] QString Path() const { return m_path; }
    [[nodiscard]] QString Name() const;
    [[nodiscard]] QString ShortName() const { return Name(); }
    [[nodiscard]] Ref<Folder> ParentFolder() const;
    [[nodiscard]] DateTime DateLastModified() const;
    /// In bytes.
    [[nodiscard]] double Size() const;

  private:
    QString m_path;
};

class FileSystemObject {
  public:
    virtual ~FileSystemObject() = default;

    [[nodiscard]] bool FileExists(const QString &path) const;
    [[nodiscard]] bool FolderExists(const QString &path) const;
    [[nodiscard]] Ref<File> GetFile(const QString &path) const;
    [[nodiscard]] Ref<Folder> GetFolder(const QString &path) const;
    /// 2 is the folder for temporary files; fails with 5 for the others.
    [[nodiscard]] Ref<Folder> GetSpecialFolder(qint32 number) const;
    /// A name for a temporary file, such as "rad5C3A1.tmp".
    [[nodiscard]] QString GetTempName() const;

    /// Without force, a file that may not be written fails with 70.
    virtual void DeleteFile(const QString &path, bool force = false) const;

    /// A new file that is written when the stream is closed; the old one stays whole until then.
    Ref<TextStream> CreateTextFile(const QString &path, bool overwrite = true, bool unicode = false) const;
    /// \param mode  1 reading, 2 writing anew.
    /// \param create  makes a missing file; without it that fails with 53.
    /// \param format  0 ANSI, -1 Unicode, -2 the system's default, which is ANSI.
    Ref<TextStream> OpenTextFile(const QString &path, qint32 mode = 1, bool create = false, qint32 format = 0) const;
};

} // namespace scripting
