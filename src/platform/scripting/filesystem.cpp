#include "platform/scripting/filesystem.h"

#include "platform/scripting/diskfailure.h"
#include "platform/scripting/path.h"
#include "platform/value/random.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

namespace scripting {

namespace {

constexpr qint32 temporaryFolder = 2;

QByteArray encoded(const QString &path) { return QFile::encodeName(nativePath(path)); }

/// Links count as what they point to.
bool isFile(const QString &path) {
    const QFileInfo info(nativePath(path));
    return !path.isEmpty() && info.exists() && !info.isDir();
}

[[noreturn]] void missingFile(const QString &path) {
    throw Failure(failures::fileNotFound, QStringLiteral("File not found: %1").arg(path));
}

QByteArray readFile(const QString &path) {
    if (!isFile(path))
        missingFile(path);
    QFile file(nativePath(path));
    if (!file.open(QIODevice::ReadOnly))
        throw diskFailure(errno, QStringLiteral("read"), path, failures::fileNotFound);
    QByteArray content = file.readAll();
    // What can't be read is not empty: callers delete and replace files that are.
    if (file.error() != QFileDevice::NoError)
        throw diskFailure(EIO, QStringLiteral("read"), path);
    return content;
}

} // namespace

QString File::Name() const { return QFileInfo(nativePath(m_path)).fileName(); }

Ref<Folder> File::ParentFolder() const { return Folder(m_path).ParentFolder(); }

DateTime File::DateLastModified() const { return DateTime::fromQt(QFileInfo(nativePath(m_path)).lastModified()); }

double File::Size() const { return static_cast<double>(QFileInfo(nativePath(m_path)).size()); }

bool FileSystemObject::FileExists(const QString &path) const { return isFile(path); }

bool FileSystemObject::FolderExists(const QString &path) const {
    return !path.isEmpty() && QFileInfo(nativePath(path)).isDir();
}

Ref<File> FileSystemObject::GetFile(const QString &path) const {
    if (!isFile(path))
        missingFile(path);
    return Ref<File>::make(pathText(QDir::cleanPath(QFileInfo(nativePath(path)).absoluteFilePath())));
}

Ref<Folder> FileSystemObject::GetFolder(const QString &path) const {
    if (!FolderExists(path))
        throw Failure(failures::pathNotFound, QStringLiteral("Path not found: %1").arg(path));
    return Ref<Folder>::make(pathText(QDir::cleanPath(QFileInfo(nativePath(path)).absoluteFilePath())));
}

Ref<Folder> FileSystemObject::GetSpecialFolder(qint32 number) const {
    if (number != temporaryFolder)
        throw Failure(failures::invalidCall, QStringLiteral("The machine has no special folder %1.").arg(number));
    return GetFolder(pathText(QDir::tempPath()));
}

QString FileSystemObject::GetTempName() const {
    constexpr int names = 0x100000;
    const int number = static_cast<int>(Random::next() * names);
    return QStringLiteral("rad%1.tmp").arg(QString::number(number, 16).toUpper().rightJustified(5, u'0'));
}

void FileSystemObject::DeleteFile(const QString &path, bool force) const {
    struct stat status {};
    if (lstat(encoded(path).constData(), &status) != 0)
        throw diskFailure(errno, QStringLiteral("delete"), path, failures::fileNotFound);
    if (S_ISDIR(status.st_mode))
        missingFile(path);
    if (!force && S_ISREG(status.st_mode) && (status.st_mode & S_IWUSR) == 0)
        throw diskFailure(EACCES, QStringLiteral("delete"), path);
    if (unlink(encoded(path).constData()) != 0)
        throw diskFailure(errno, QStringLiteral("delete"), path, failures::fileNotFound);
}

Ref<TextStream> FileSystemObject::CreateTextFile(const QString &path, bool overwrite, bool unicode) const {
    if (!overwrite && FileExists(path))
        throw diskFailure(EEXIST, QStringLiteral("make"), path);
    return Ref<TextStream>::make(nativePath(path), unicode);
}

Ref<TextStream> FileSystemObject::OpenTextFile(const QString &path, qint32 mode, bool create, qint32 format) const {
    constexpr qint32 reading = 1;
    constexpr qint32 writing = 2;
    constexpr qint32 unicodeFormat = -1;
    if (mode != reading && mode != writing)
        throw Failure(failures::invalidCall, QStringLiteral("A text file can't be opened in mode %1.").arg(mode));
    const bool there = FileExists(path);
    if (!there && !create)
        missingFile(path);
    if (!there && mode == reading)
        CreateTextFile(path, false, format == unicodeFormat)->Close();
    if (mode == reading)
        return Ref<TextStream>::make(decodeText(readFile(path)));
    return Ref<TextStream>::make(nativePath(path), format == unicodeFormat);
}

} // namespace scripting
