#include "platform/scripting/replacement.h"

#include "platform/scripting/diskfailure.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace scripting {

namespace {

constexpr mode_t everyPermission = 07777;
constexpr mode_t everybody = 0666;

QByteArray folderOf(const QByteArray &path) {
    return path.contains('/') ? path.left(path.lastIndexOf('/') + 1) : QByteArray(".");
}

/// The directory's entry is on the disk after this, where the file system can promise it.
void syncFolder(const QByteArray &path) {
    const int file = open(folderOf(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (file >= 0) {
        fsync(file);
        close(file);
    }
}

QString text(const QByteArray &path) { return QFile::decodeName(path); }

} // namespace

Replacement::Replacement(const QString &path) {
    const QString followed = QFileInfo(path).canonicalFilePath();
    m_path = QFile::encodeName(followed.isEmpty() ? path : followed);
    struct stat status {};
    const bool there = stat(m_path.constData(), &status) == 0;
    if (there && S_ISDIR(status.st_mode))
        throw diskFailure(EISDIR, QStringLiteral("write"), path);
    if (there && access(m_path.constData(), W_OK) != 0)
        throw diskFailure(errno, QStringLiteral("write"), path);
    // A folder that takes no new file still lets an old one be written.
    const bool inPlace = there && (!S_ISREG(status.st_mode) || access(folderOf(m_path).constData(), W_OK) != 0);
    if (inPlace)
        m_file = open(m_path.constData(), O_WRONLY | O_CLOEXEC);
    else
        openTemporary();
    if (m_file < 0)
        throw diskFailure(errno, QStringLiteral("write"), path);
    if (there && !inPlace)
        fchmod(m_file, status.st_mode & everyPermission);
}

Replacement::~Replacement() {
    closeFile();
    if (!m_temporary.isEmpty())
        unlink(m_temporary.constData());
}

void Replacement::openTemporary() {
    do {
        m_temporary = m_path + '.' + QByteArray::number(QRandomGenerator::system()->generate(), 16);
        m_file = open(m_temporary.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, everybody);
    } while (m_file < 0 && errno == EEXIST);
    if (m_file < 0)
        m_temporary.clear();
}

void Replacement::closeFile() {
    if (m_file >= 0)
        close(m_file);
    m_file = -1;
}

void Replacement::commit(const QByteArray &content) {
    if (m_temporary.isEmpty() && ftruncate(m_file, 0) != 0 && errno != EINVAL)
        throw diskFailure(errno, QStringLiteral("write"), text(m_path));
    qsizetype done = 0;
    while (done < content.size()) {
        const ssize_t written = write(m_file, content.constData() + done, static_cast<size_t>(content.size() - done));
        if (written < 0 && errno != EINTR)
            throw diskFailure(errno, QStringLiteral("write"), text(m_path));
        done += std::max<ssize_t>(written, 0);
    }
    if (m_temporary.isEmpty())
        return closeFile();
    if (fsync(m_file) != 0 && errno != EINVAL && errno != ENOSYS)
        throw diskFailure(errno, QStringLiteral("write"), text(m_path));
    closeFile();
    if (rename(m_temporary.constData(), m_path.constData()) != 0)
        throw diskFailure(errno, QStringLiteral("replace"), text(m_path));
    m_temporary.clear();
    syncFolder(m_path);
}

} // namespace scripting
