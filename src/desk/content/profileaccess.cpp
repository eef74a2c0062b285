#include "desk/content/profileaccess.h"

#include "platform/storage/access.h"

#include <QDir>

namespace desk {
namespace {

const QStringList storeFiles{QString(), QStringLiteral("-wal"), QStringLiteral("-shm"), QStringLiteral("-transfers")};

void say(const storage::Narrowing &narrowing) {
    for (const QString &message : narrowing.messages())
        qWarning("%s", qUtf8Printable(message));
}

} // namespace

void narrowProfile(const QString &folder) {
    storage::Narrowing narrowing;
    const QDir profile(folder);
    const QStringList own{QStringLiteral("mailbox.store*"), QStringLiteral("desk.ini*"),
                          QStringLiteral("registry.ini*"), QStringLiteral("*.log")};
    // Empty files of those who write at this moment, wide for a moment too: nobody needs a word about them.
    storage::Narrowing locks;
    const QString lockEnding = QStringLiteral(".lock");
    for (const QString &name : profile.entryList(own + QStringList{u'*' + lockEnding}, QDir::Files | QDir::NoSymLinks))
        (name.endsWith(lockEnding) ? locks : narrowing).narrow(profile.filePath(name), storage::Sharing::Owner);
    for (const char *name : {"outgoing/.sending", "outgoing", "printouts", "forms"})
        narrowing.narrowFolder(profile.filePath(QString::fromLatin1(name)));
    narrowing.narrow(folder, storage::Sharing::Owner);
    say(narrowing);
}

void narrowPublicStore(const QString &file) {
    storage::Narrowing narrowing;
    for (const QString &ending : storeFiles)
        narrowing.narrow(file + ending, storage::Sharing::Group);
    say(narrowing);
}

void followStore(const QString &file) {
    for (const QString &ending : storeFiles.sliced(1))
        storage::followAccess(file + ending, file);
}

} // namespace desk
