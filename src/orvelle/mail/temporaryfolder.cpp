#include "orvelle/mail/temporaryfolder.h"

#include "orvelle/core/components.h"
#include "platform/scripting/filesystem.h"
#include "platform/scripting/path.h"

#include <QDateTime>
#include <QDir>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace {
constexpr char prefix[] = "orvelle-attachments-";

QString fncTempPath(const scripting::FileSystemObject &fso) {
    return scripting::nativePath(fso.GetSpecialFolder(2)->Path());
}

QString fncTempPath() {
    subSetupFS();
    return fncTempPath(**fsoFileSystem);
}

/// The open and locked folder; -1 for one that somebody else holds, or that is none.
int fncLock(const QString &strFolder) {
    const int descriptor =
        ::open(QFile::encodeName(strFolder).constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0 || ::flock(descriptor, LOCK_EX | LOCK_NB) == 0)
        return descriptor;
    ::close(descriptor);
    return -1;
}
} // namespace

TemporaryFolder::TemporaryFolder() : m_folder(fncTempPath() + u'/' + prefix + "XXXXXX") {
    if (m_folder.isValid())
        m_descriptor = fncLock(m_folder.path());
}

TemporaryFolder::~TemporaryFolder() {
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

QString TemporaryFolder::Path() const { return scripting::pathText(m_folder.path()) + u'\\'; }

void TemporaryFolder::subSweep() {
    // A younger one may have a maker who is about to lock it.
    constexpr qint64 youngest = 60;
    // Not by the program's own object: the sweep comes before the start steps, which report where that one is missing.
    const QDir temp(AttemptOr([] { return fncTempPath(scripting::FileSystemObject()); }, QDir::tempPath()));
    const QDateTime now = QDateTime::currentDateTime();
    for (const QFileInfo &folder : temp.entryInfoList({QString(prefix) + "*"}, QDir::Dirs | QDir::NoSymLinks)) {
        if (folder.ownerId() != ::geteuid() || folder.lastModified().secsTo(now) < youngest)
            continue;
        const int descriptor = fncLock(folder.filePath());
        if (descriptor < 0)
            continue;
        QDir(folder.filePath()).removeRecursively();
        ::close(descriptor);
    }
}
