#include "platform/storage/hold.h"

#include "platform/storage/access.h"
#include "platform/storage/durable.h"
#include "platform/storage/logowner.h"

#include <QFile>
#include <QFileInfo>

#include <sqlite3.h>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace storage {

namespace {

Failure inUse(const QString &path) {
    return {failures::permissionDenied,
            QStringLiteral("%1 is open in another program. End the programs that use it, and try again.").arg(path)};
}

QByteArray encoded(const QString &path) { return QFile::encodeName(path); }

/// Locks what every user of the database holds a lock on as long as it has the file open.
bool lockAll(int file) {
    constexpr off_t first = 0x40000000;
    constexpr off_t length = 512;
    struct flock range {};
    range.l_type = F_WRLCK;
    range.l_whence = SEEK_SET;
    range.l_start = first;
    range.l_len = length;
    return ::fcntl(file, F_OFD_SETLK, &range) == 0;
}

} // namespace

Hold::Hold(QString path) : m_path(std::move(path)) {
    if (!QFileInfo::exists(m_path))
        return;
    takeLogIn();
    m_file = ::open(encoded(m_path).constData(), O_RDWR | O_CLOEXEC);
    if (m_file < 0)
        throw fileFailure(errno, m_path, QStringLiteral("can't be replaced"));
    if (lockAll(m_file))
        return;
    ::close(m_file);
    throw inUse(m_path);
}

Hold::~Hold() {
    if (m_file >= 0)
        ::close(m_file);
}

void Hold::takeLogIn() const {
    // The engine would take the log of a file that is too short to be a database away.
    constexpr qint64 shortest = 512;
    if (QFileInfo(m_path).size() < shortest || hasForeignLog(m_path))
        return;
    sqlite3 *opened = nullptr;
    const int code =
        sqlite3_open_v2(m_path.toUtf8().constData(), &opened, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    const std::unique_ptr<sqlite3, int (*)(sqlite3 *)> database(opened, &sqlite3_close);
    if (code != SQLITE_OK)
        return;
    const int result = sqlite3_wal_checkpoint_v2(opened, "main", SQLITE_CHECKPOINT_TRUNCATE, nullptr, nullptr);
    if ((result & 0xFF) == SQLITE_BUSY || (result & 0xFF) == SQLITE_LOCKED)
        throw inUse(m_path);
}

void Hold::moveLogTo(const QString &kept) const {
    const QString log = m_path + QStringLiteral("-wal");
    if (QFileInfo(log).size() > 0)
        renameNew(log, kept + QStringLiteral("-wal"));
    else
        ::unlink(encoded(log).constData());
    ::unlink(encoded(m_path + QStringLiteral("-shm")).constData());
}

void Hold::replace(Draft &by, const QString &kept) {
    struct stat standing {};
    if (m_file >= 0 && ::fstat(m_file, &standing) == 0) {
        // Only the superuser may give a file away; the group may also be one's own.
        if (::fchown(by.descriptor(), standing.st_uid, standing.st_gid) != 0)
            static_cast<void>(!::fchown(by.descriptor(), static_cast<uid_t>(-1), standing.st_gid));
        struct stat made {};
        constexpr mode_t groups = 0070;
        const bool isGroups = ::fstat(by.descriptor(), &made) == 0 && made.st_gid == standing.st_gid;
        static_cast<void>(!::fchmod(by.descriptor(), standing.st_mode & (isGroups ? 0777U : 0777U & ~groups)));
    }
    // Nobody reads the new file with the old one's log.
    if (m_file >= 0)
        keepAs(m_path, kept);
    moveLogTo(kept);
    by.publish(m_file >= 0 ? Draft::Taken::Replace : Draft::Taken::Refuse);
}

void keepAs(const QString &path, const QString &kept) {
    if (::link(encoded(path).constData(), encoded(kept).constData()) == 0)
        return;
    if (errno != EPERM && errno != EOPNOTSUPP && errno != ENOSYS)
        throw fileFailure(errno, kept, QStringLiteral("can't be made"));
    renameNew(path, kept);
}

QString freeSuffix(const QStringList &paths) {
    for (int number = 1;; ++number) {
        QString suffix = QStringLiteral(".before-restore-%1").arg(number);
        const bool isFree = std::none_of(paths.begin(), paths.end(), [&](const QString &path) {
            return QFileInfo::exists(path + suffix) || QFileInfo::exists(path + suffix + QStringLiteral("-wal"));
        });
        if (isFree)
            return suffix;
    }
}

} // namespace storage
