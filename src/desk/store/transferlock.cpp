#include "desk/store/transferlock.h"

#include "platform/storage/access.h"
#include "platform/value/failure.h"

#include <QFile>

#include <fcntl.h>
#include <unistd.h>

namespace desk {

TransferLock::TransferLock(const QString &storePath) {
    const QString path = storePath + QStringLiteral("-transfers");
    const QByteArray name = QFile::encodeName(path);
    m_file = ::open(name.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (m_file < 0)
        throw Failure(failures::accessDenied,
                      QStringLiteral("The file %1 cannot be made; check that you may write to its folder.").arg(path));
    // Whoever may use the store moves items into it.
    storage::followAccess(path, storePath);
}

TransferLock::~TransferLock() { ::close(m_file); }

bool TransferLock::take(qint64 item) {
    // A lock of the open file, not of the process: two stores of one process exclude each other as well.
    struct flock byte = {};
    byte.l_type = F_WRLCK;
    byte.l_whence = SEEK_SET;
    byte.l_start = item;
    byte.l_len = 1;
    return ::fcntl(m_file, F_OFD_SETLK, &byte) == 0;
}

} // namespace desk
