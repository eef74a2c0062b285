#include "platform/storage/durable.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace storage {

namespace {

qint32 numberOf(int error) {
    switch (error) {
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return failures::noDiskSpace;
    case EACCES:
    case EPERM:
    case EROFS:
        return failures::accessDenied;
    case EEXIST:
    case ENOTEMPTY:
        return failures::fileExists;
    case ENOENT:
    case ENOTDIR:
        return failures::pathNotFound;
    default:
        return failures::unspecified;
    }
}

QString folderOf(const QString &path) { return QFileInfo(path).absolutePath(); }

/// Whether the file system knows nothing of such a step, so that another way is to be gone.
bool isUnknown(int error) { return error == EINVAL || error == ENOSYS || error == EOPNOTSUPP; }

void syncDescriptor(const QString &path, int flags) {
    const int file = ::open(QFile::encodeName(path).constData(), flags | O_CLOEXEC);
    if (file < 0)
        throw fileFailure(errno, path, QStringLiteral("can't be opened"));
    const int result = ::fsync(file);
    const int error = errno;
    ::close(file);
    if (result != 0 && !isUnknown(error))
        throw fileFailure(error, path, QStringLiteral("can't be brought to the disk"));
}

} // namespace

Failure fileFailure(int error, const QString &path, const QString &doing) {
    return {numberOf(error), QStringLiteral("%1 %2: %3.").arg(path, doing, qt_error_string(error))};
}

void syncFile(const QString &path) { syncDescriptor(path, O_RDONLY); }

void syncFolder(const QString &folder) { syncDescriptor(folder, O_RDONLY | O_DIRECTORY); }

void renameNew(const QString &from, const QString &to) {
    const QByteArray source = QFile::encodeName(from);
    const QByteArray target = QFile::encodeName(to);
    if (::renameat2(AT_FDCWD, source.constData(), AT_FDCWD, target.constData(), RENAME_NOREPLACE) != 0) {
        // A second name and the first one's end are the same for a file, except that a kill may leave both.
        const bool isDone = isUnknown(errno) && ::link(source.constData(), target.constData()) == 0 &&
                            ::unlink(source.constData()) == 0;
        if (!isDone)
            throw fileFailure(errno, to, QStringLiteral("can't be put in place"));
    }
    syncFolder(folderOf(to));
}

void renameOver(const QString &from, const QString &to) {
    if (::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) != 0)
        throw fileFailure(errno, to, QStringLiteral("can't be put in place"));
    syncFolder(folderOf(to));
}

void exchangeNames(const QString &one, const QString &other) {
    const QByteArray first = QFile::encodeName(one);
    const QByteArray second = QFile::encodeName(other);
    if (::renameat2(AT_FDCWD, first.constData(), AT_FDCWD, second.constData(), RENAME_EXCHANGE) != 0)
        throw fileFailure(errno, other, QStringLiteral("can't be put in place"));
    syncFolder(folderOf(other));
}

} // namespace storage
