#include "platform/storage/access.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace storage {

namespace {

constexpr mode_t everyPermission = 07777;
constexpr mode_t everybodys = 0007;
constexpr mode_t groups = 0070;
constexpr mode_t readAndWrite = 0666;
constexpr mode_t anyWrite = 0222;
constexpr mode_t anyRead = 0444;

mode_t tooWide(Sharing sharing) { return sharing == Sharing::Owner ? groups | everybodys : everybodys; }

std::optional<struct stat> statusOf(const QString &path) {
    struct stat status {};
    if (::lstat(QFile::encodeName(path).constData(), &status) != 0 || S_ISLNK(status.st_mode))
        return std::nullopt;
    return status;
}

/// A few names, and how many more there are.
QString named(const QStringList &paths) {
    constexpr qsizetype most = 4;
    QString text = paths.first(std::min(paths.size(), most)).join(QStringLiteral(", "));
    if (paths.size() > most)
        text += QStringLiteral(" and %1 more").arg(paths.size() - most);
    return text;
}

} // namespace

void Narrowing::narrow(const QString &path, Sharing sharing) {
    const std::optional<struct stat> status = statusOf(path);
    if (!status || (status->st_mode & tooWide(sharing)) == 0)
        return;
    // A folder in which everybody keeps things, such as that for temporary files, is nobody's own.
    const bool isOwn = status->st_uid == ::geteuid() && (status->st_mode & S_ISVTX) == 0;
    const mode_t narrowed = status->st_mode & everyPermission & ~tooWide(sharing);
    if (!isOwn || ::chmod(QFile::encodeName(path).constData(), narrowed) != 0)
        m_foreign << path;
    else if (sharing == Sharing::Owner)
        m_narrowed << path;
    else
        m_sharedNarrowed << path;
}

void Narrowing::narrowFolder(const QString &path) {
    const std::optional<struct stat> status = statusOf(path);
    if (!status || !S_ISDIR(status->st_mode) || (status->st_mode & tooWide(Sharing::Owner)) == 0)
        return;
    const QDir folder(path);
    const QStringList names = folder.entryList(QDir::Files | QDir::Hidden | QDir::System | QDir::NoSymLinks);
    for (const QString &name : names)
        narrow(folder.filePath(name), Sharing::Owner);
    // The folder last: it is what tells that the files are done.
    narrow(path, Sharing::Owner);
}

QStringList Narrowing::messages() const {
    QStringList messages;
    if (!m_narrowed.isEmpty())
        messages << QStringLiteral("Others could reach what is yours alone. Only you can from here on: %1.")
                        .arg(named(m_narrowed));
    if (!m_sharedNarrowed.isEmpty())
        messages << QStringLiteral("Everybody on this machine could reach the public folders. Only their owner and "
                                   "their group can from here on: %1.")
                        .arg(named(m_sharedNarrowed));
    if (!m_foreign.isEmpty())
        messages << QStringLiteral("Others can reach what should be kept from them, and it is not yours to change: "
                                   "%1. Ask its owner, or the administrator, for chmod go-rwx (a profile) or chmod "
                                   "o-rwx (public folders); a folder that everybody uses is no place for either.")
                        .arg(named(m_foreign));
    return messages;
}

void shareWithGroupOf(int file, const QString &folder) {
    struct stat status {};
    if (::stat(QFile::encodeName(folder).constData(), &status) != 0)
        return;
    if ((status.st_mode & S_IWGRP) == 0 || (status.st_mode & S_IWOTH) != 0)
        return;
    // First the group: its rights are not for the one that the file had.
    if (::fchown(file, static_cast<uid_t>(-1), status.st_gid) == 0)
        static_cast<void>(!::fchmod(file, S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP));
}

void followAccess(const QString &file, const QString &store) {
    struct stat wanted {};
    const std::optional<struct stat> status = statusOf(file);
    if (!status || ::stat(QFile::encodeName(store).constData(), &wanted) != 0)
        return;
    const QByteArray name = QFile::encodeName(file);
    const mode_t mode = wanted.st_mode & readAndWrite;
    const bool isSame = status->st_gid == wanted.st_gid && (status->st_mode & everyPermission) == mode;
    if (isSame || status->st_uid != ::geteuid())
        return;
    const bool isGroups =
        status->st_gid == wanted.st_gid || ::lchown(name.constData(), static_cast<uid_t>(-1), wanted.st_gid) == 0;
    // The store's group gets its rights, no other group.
    static_cast<void>(!::chmod(name.constData(), isGroups ? mode : mode & ~groups));
}

Bar writeBar(const QString &path) {
    const QByteArray name = QFile::encodeName(path);
    const QByteArray folder = QFile::encodeName(QFileInfo(path).absolutePath());
    struct statvfs disk {};
    if (::statvfs(folder.constData(), &disk) == 0 && (disk.f_flag & ST_RDONLY) != 0)
        return Bar::ReadOnlyDisk;
    struct stat status {};
    const bool isKnown = ::stat(name.constData(), &status) == 0;
    if (isKnown && (status.st_mode & anyRead) == 0)
        return Bar::Unreadable;
    if (isKnown && (status.st_mode & anyWrite) == 0)
        return Bar::ReadOnlyFile;
    const bool isThere = ::access(name.constData(), F_OK) == 0;
    if ((isThere && ::access(name.constData(), W_OK) != 0) || ::access(folder.constData(), W_OK) != 0)
        return Bar::NoRight;
    return Bar::None;
}

std::optional<qint64> roomFor(const QString &path) {
    struct statvfs disk {};
    if (::statvfs(QFile::encodeName(QFileInfo(path).absolutePath()).constData(), &disk) != 0 || disk.f_blocks == 0)
        return std::nullopt;
    const fsblkcnt_t blocks = ::geteuid() == 0 ? disk.f_bfree : disk.f_bavail;
    return static_cast<qint64>(blocks) * static_cast<qint64>(disk.f_frsize);
}

} // namespace storage
