#include "desk/content/profile.h"

#include "desk/content/profileaccess.h"
#include "desk/content/profilesettings.h"
#include "platform/value/failure.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

namespace desk {
namespace {

/// "Alma Tester" as alma.tester@localhost.
QString addressFor(const QString &user) {
    QString local;
    for (const QChar letter : user.toLower()) {
        if (letter.unicode() < 128 && letter.isLetterOrNumber())
            local += letter;
        else if (!local.isEmpty() && !local.endsWith(u'.'))
            local += u'.';
    }
    while (local.endsWith(u'.'))
        local.chop(1);
    return (local.isEmpty() ? QStringLiteral("user") : local) + QStringLiteral("@localhost");
}

/// The value asked for, remembered; or the remembered one; or the default.
QString settle(QSettings &settings, const QString &key, const QString &asked, const QString &otherwise) {
    const QString standing = settings.value(key).toString();
    if (!asked.isEmpty()) {
        if (asked != standing)
            settings.setValue(key, asked);
        return asked;
    }
    return standing.isEmpty() ? otherwise : standing;
}

void makeFolder(const QString &folder) {
    if (QDir(folder).exists())
        return;
    // Not for a moment anybody else's.
    const bool isMade = QDir().mkpath(QFileInfo(folder).path()) &&
                        QDir().mkdir(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    if (!isMade && !QDir(folder).exists())
        throw Failure(failures::pathNotFound,
                      QStringLiteral("The profile folder %1 can't be made. Name another one.").arg(folder));
}

void refuseHalfRestored(const QString &mark) {
    if (QFileInfo::exists(mark))
        throw Failure(failures::unspecified,
                      QStringLiteral("A backup was being put back into this profile and was cut off, so that its files "
                                     "are not of one moment. Run orvelle-desk restore again with the same backup. "
                                     "(%1)")
                          .arg(mark));
}

/// What is in a profile only once its mailbox is. Folders are none of it: an administrator may have made them.
bool hasTracesOfMailbox(const QDir &profile) {
    const QStringList traces{QStringLiteral("public.store"), QStringLiteral("mailbox.store-transfers"),
                             QStringLiteral("mailboxes.txt"), QStringLiteral("desk.socket")};
    return std::any_of(traces.begin(), traces.end(), [&](const QString &name) { return profile.exists(name); });
}

Failure lost(const QString &what, const QString &file, const QString &elsewhere) {
    return {
        failures::fileNotFound,
        QStringLiteral("The %1 of this profile is missing: %2. Nothing was changed. If its disk is not mounted, mount "
                       "it; otherwise put the file, or a backup (orvelle-desk restore), back. %3Where a new and empty "
                       "one is wanted, say --make-missing, once.")
            .arg(what, file, elsewhere)};
}

const QString mailboxMade = QStringLiteral("mailboxMade");
const QString publicMade = QStringLiteral("publicMade");

} // namespace

QString profileFolder(const DeskOptions &options) {
    QString folder = options.profile;
    if (folder.isEmpty())
        folder = qEnvironmentVariable("ORVELLE_PROFILE");
    if (folder.isEmpty())
        folder =
            QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/orvelle/profile");
    return QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
}

QString restoreMark(const QString &profileFolder) { return profileFolder + QStringLiteral("/restore.unfinished"); }

Profile::Profile(const DeskOptions &options) : m_folder(profileFolder(options)) {
    makeFolder(m_folder);
    refuseHalfRestored(restoreMark(m_folder));
    narrowProfile(m_folder);
    mendSettings(m_folder, options.publicFile);

    const QString login = qEnvironmentVariable("USER", QStringLiteral("User"));
    QString asked = options.user.trimmed();
    if (asked.isEmpty())
        asked = nameFromMailbox(m_folder);
    makeSettings(file("desk.ini"), asked.isEmpty() ? login : asked);
    QSettings settings(file("desk.ini"), QSettings::IniFormat);
    m_user = settle(settings, QStringLiteral("user"), asked, login);
    m_address = settle(settings, QStringLiteral("address"), {}, addressFor(m_user));
    const QString publicFile =
        options.publicFile.isEmpty() ? QString() : QFileInfo(options.publicFile).absoluteFilePath();
    const QString standing = settings.value(QStringLiteral("public"), file("public.store")).toString();
    const bool isOther = !publicFile.isEmpty() && publicFile != standing;
    m_publicFile = settle(settings, QStringLiteral("public"), publicFile, file("public.store"));

    // Before anybody looks for the stores: several first starts at once make them.
    m_hadMailbox = !options.makeMissing && (settings.value(mailboxMade).toBool() || hasTracesOfMailbox(QDir(m_folder)));
    if (options.makeMissing || isOther)
        m_hadPublicStore = false;
    else if (settings.contains(publicMade))
        m_hadPublicStore = settings.value(publicMade).toString() == m_publicFile;
}

void Profile::refuseLostMailbox() const {
    if (m_hadMailbox && !QFileInfo::exists(mailboxFile()))
        throw lost(QStringLiteral("mailbox"), mailboxFile(), {});
}

void Profile::refuseLostPublicStore(bool hasFolders) const {
    if (m_hadPublicStore.value_or(hasFolders) && !QFileInfo::exists(m_publicFile))
        throw lost(QStringLiteral("file of the public folders"), m_publicFile,
                   QStringLiteral("If it is another file, name that with --public FILE. "));
}

void Profile::rememberStores() const {
    QSettings settings(file("desk.ini"), QSettings::IniFormat);
    if (settings.value(mailboxMade).toBool() && settings.value(publicMade).toString() == m_publicFile)
        return;
    settings.setValue(mailboxMade, true);
    settings.setValue(publicMade, m_publicFile);
}

QString Profile::rootName() const { return mailboxPrefix + m_user; }
QString Profile::mailboxFile() const { return file("mailbox.store"); }
QString Profile::socket() const { return file("desk.socket"); }
QString Profile::outgoingFolder() const { return file("outgoing"); }
QString Profile::formsFolder() const { return file("forms"); }

QString Profile::openPath() const {
    return QSettings(file("desk.ini"), QSettings::IniFormat).value(QStringLiteral("open")).toString();
}

void Profile::setOpenPath(const QString &path) const {
    QSettings settings(file("desk.ini"), QSettings::IniFormat);
    settings.setValue(QStringLiteral("open"), path);
}

QString Profile::file(const char *name) const { return m_folder + u'/' + QString::fromLatin1(name); }

} // namespace desk
