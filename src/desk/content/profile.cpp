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
    const QString asked = options.user.trimmed();
    makeSettings(file("desk.ini"), asked.isEmpty() ? login : asked);
    QSettings settings(file("desk.ini"), QSettings::IniFormat);
    m_user = settle(settings, QStringLiteral("user"), asked, login);
    m_address = settle(settings, QStringLiteral("address"), {}, addressFor(m_user));
    const QString publicFile =
        options.publicFile.isEmpty() ? QString() : QFileInfo(options.publicFile).absoluteFilePath();
    m_publicFile = settle(settings, QStringLiteral("public"), publicFile, file("public.store"));
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
