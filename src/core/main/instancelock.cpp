#include "core/main/instancelock.h"

#include "platform/value/failure.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

InstanceLock::InstanceLock(const QString &file)
    // Programs that this one starts must not inherit the lock.
    : m_descriptor(::open(QFile::encodeName(file).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
    if (m_descriptor < 0)
        throw Failure(errno == ENOENT ? failures::pathNotFound : failures::permissionDenied,
                      "The file " + file + " can't be opened. Check the profile folder.");
    m_first = ::flock(m_descriptor, LOCK_EX | LOCK_NB) == 0;
}

InstanceLock::~InstanceLock() { ::close(m_descriptor); }
