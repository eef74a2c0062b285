#include "desk/commands/backupfolder.h"

#include "platform/storage/durable.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace desk {
namespace {

constexpr auto ownersFolder = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;

void emptyFolder(const QString &path) {
    QDir folder(path);
    for (const QFileInfo &entry :
         folder.entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot)) {
        if (entry.isDir() && !entry.isSymLink())
            QDir(entry.filePath()).removeRecursively();
        else
            QFile::remove(entry.filePath());
    }
}

} // namespace

bool isBackup(const QString &folder) { return QFileInfo(folder + u'/' + sumsFile).isFile(); }

storage::Sums sumsOf(const QString &folder) {
    constexpr qint64 largest = qint64{16} * 1024 * 1024;
    const QString path = folder + u'/' + sumsFile;
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        throw Failure(
            failures::notFound,
            QStringLiteral("%1 is no backup: there is no %2 in it that can be read. A backup is a folder that "
                           "orvelle-desk backup has made.")
                .arg(folder, sumsFile));
    return storage::readSums(file.read(largest), backupTitle, path);
}

BackupDraft::BackupDraft(QString target)
    : m_target(std::move(target)), m_path(m_target + QStringLiteral(".unfinished")) {
    if (!QFileInfo(m_path).isDir() && !QDir().mkdir(m_path, ownersFolder))
        throw Failure(failures::accessDenied,
                      QStringLiteral("The folder %1 can't be made; check that the one above it exists, that you may "
                                     "write to it, and that its disk has room.")
                          .arg(m_path));
    m_folder = ::open(QFile::encodeName(m_path).constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (m_folder < 0)
        throw storage::fileFailure(errno, m_path, QStringLiteral("can't be opened"));
    if (::flock(m_folder, LOCK_EX | LOCK_NB) != 0) {
        ::close(m_folder);
        throw Failure(failures::permissionDenied,
                      QStringLiteral("Another program is making the backup %1 just now.").arg(m_target));
    }
    emptyFolder(m_path);
}

BackupDraft::~BackupDraft() {
    // Once it is published, this is what stood under the name before, or nothing.
    if (QFileInfo(m_path).isDir())
        QDir(m_path).removeRecursively();
    ::close(m_folder);
}

QString BackupDraft::makeFile(const QString &name) const {
    QString file = path(name);
    QDir().mkdir(QFileInfo(file).path(), ownersFolder);
    const int made = ::open(QFile::encodeName(file).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (made < 0)
        throw storage::fileFailure(errno, file, QStringLiteral("can't be made"));
    ::close(made);
    return file;
}

void BackupDraft::syncAll() const {
    QDirIterator entries(m_path, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QString entry = entries.next();
        if (entries.fileInfo().isDir())
            storage::syncFolder(entry);
        else
            storage::syncFile(entry);
    }
    storage::syncFolder(m_path);
}

void BackupDraft::publish(bool replace) {
    syncAll();
    // An empty folder that was made for the backup is one more way of naming it.
    QDir().rmdir(m_target);
    if (replace && QFileInfo::exists(m_target))
        storage::exchangeNames(m_path, m_target);
    else
        storage::renameNew(m_path, m_target);
}

} // namespace desk
