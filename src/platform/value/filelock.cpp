#include "platform/value/filelock.h"

#include "platform/value/failure.h"

#include <QDeadlineTimer>
#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <thread>
#include <unistd.h>

std::unique_ptr<FileLock> FileLock::take(const QString &file, std::chrono::milliseconds patience) {
    // Programs that this one starts must not inherit the lock.
    const int descriptor = ::open(QFile::encodeName(file).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (descriptor < 0)
        throw Failure(
            errno == ENOENT ? failures::pathNotFound : failures::permissionDenied,
            QStringLiteral("The file %1 can't be opened. Check that its folder exists and may be written.").arg(file));
    std::unique_ptr<FileLock> lock(new FileLock(descriptor));
    const QDeadlineTimer deadline(patience);
    while (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        if (deadline.hasExpired())
            return nullptr;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return lock;
}

FileLock::~FileLock() { ::close(m_descriptor); }
