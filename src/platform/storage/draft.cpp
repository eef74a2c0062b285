#include "platform/storage/draft.h"

#include "platform/storage/durable.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QThread>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace storage {

namespace {

constexpr mode_t ownersAlone = 0600;

/// Whether the open file still has its name: the one who held it before may have published or removed it.
bool hasName(int file, const QByteArray &path) {
    struct stat open {};
    struct stat named {};
    return ::fstat(file, &open) == 0 && ::lstat(path.constData(), &named) == 0 && open.st_dev == named.st_dev &&
           open.st_ino == named.st_ino;
}

} // namespace

Draft::Draft(QString target, std::chrono::milliseconds patience)
    : m_target(std::move(target)), m_path(m_target + QStringLiteral(".unfinished")) {
    const QDeadlineTimer deadline(patience);
    while (!take()) {
        if (deadline.hasExpired())
            throw Failure(
                failures::permissionDenied,
                QStringLiteral("Another program is making %1 just now; try again when it is done.").arg(m_target));
        QThread::msleep(2);
    }
    // Whatever a killed program has left is of no use.
    removeRemains();
    if (::ftruncate(m_file, 0) == 0 && ::fchmod(m_file, ownersAlone) == 0)
        return;
    const int error = errno;
    ::close(m_file);
    throw fileFailure(error, m_path, QStringLiteral("can't be written"));
}

Draft::~Draft() {
    if (!m_isPublished) {
        ::unlink(QFile::encodeName(m_path).constData());
        removeRemains();
    }
    ::close(m_file);
}

bool Draft::take() {
    const QByteArray path = QFile::encodeName(m_path);
    m_file = ::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, ownersAlone);
    if (m_file < 0)
        throw fileFailure(errno, m_path, QStringLiteral("can't be made"));
    if (::flock(m_file, LOCK_EX | LOCK_NB) == 0 && hasName(m_file, path))
        return true;
    ::close(m_file);
    return false;
}

void Draft::removeRemains() const {
    for (const char *ending : {"-wal", "-shm", "-journal"})
        ::unlink((QFile::encodeName(m_path) + ending).constData());
}

void Draft::publish(Taken taken) {
    if (::fsync(m_file) != 0 && errno != EINVAL && errno != ENOSYS)
        throw fileFailure(errno, m_path, QStringLiteral("can't be brought to the disk"));
    if (taken == Taken::Replace)
        renameOver(m_path, m_target);
    else
        renameNew(m_path, m_target);
    m_isPublished = true;
}

} // namespace storage
