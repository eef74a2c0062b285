#include "platform/value/filelock.h"

#include "platform/value/failure.h"

#include <QDeadlineTimer>
#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <functional>
#include <sys/file.h>
#include <thread>
#include <unistd.h>

namespace {

int openForLock(const QString &file) {
    // Programs that this one starts must not inherit the lock.
    const int descriptor = ::open(QFile::encodeName(file).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (descriptor < 0)
        throw Failure(
            errno == ENOENT ? failures::pathNotFound : failures::permissionDenied,
            QStringLiteral("The file %1 can't be opened. Check that its folder exists and may be written.").arg(file));
    return descriptor;
}

bool tryUntil(std::chrono::milliseconds patience, const std::function<bool()> &step) {
    const QDeadlineTimer deadline(patience);
    while (!step()) {
        if (deadline.hasExpired())
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

/// A lock of the open file, whose kind changes in one step: a shared lock that comes out of an exclusive one leaves no
/// moment in which another program could take the file for free.
bool lockOpenFile(int descriptor, short kind) {
    struct flock whole = {};
    whole.l_type = kind;
    whole.l_whence = SEEK_SET;
    return ::fcntl(descriptor, F_OFD_SETLK, &whole) == 0;
}

} // namespace

std::unique_ptr<FileLock> FileLock::take(const QString &file, std::chrono::milliseconds patience) {
    std::unique_ptr<FileLock> lock(new FileLock(openForLock(file)));
    const auto tried = [&] { return ::flock(lock->m_descriptor, LOCK_EX | LOCK_NB) == 0; };
    return tryUntil(patience, tried) ? std::move(lock) : nullptr;
}

FileLock::Joined FileLock::join(const QString &file) {
    // Nobody keeps the exclusive lock: it is the first one's for the moment before it shares the file.
    constexpr std::chrono::milliseconds patience{2000};
    Joined joined;
    joined.lock.reset(new FileLock(openForLock(file)));
    const int descriptor = joined.lock->m_descriptor;
    joined.isFirst = lockOpenFile(descriptor, F_WRLCK);
    tryUntil(patience, [&] { return lockOpenFile(descriptor, F_RDLCK); });
    return joined;
}

FileLock::~FileLock() { ::close(m_descriptor); }
