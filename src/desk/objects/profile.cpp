#include "desk/objects/profile.h"

#include "platform/value/failure.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

namespace desk {
namespace {

QString folderOf(const DeskOptions &options) {
    QString folder = options.profile;
    if (folder.isEmpty())
        folder = qEnvironmentVariable("ORVELLE_PROFILE");
    if (folder.isEmpty())
        folder =
            QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/orvelle/profile");
    return QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
}

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

} // namespace

Profile::Profile(const DeskOptions &options) : m_folder(folderOf(options)) {
    const bool isNew = !QDir(m_folder).exists();
    if (!QDir().mkpath(m_folder))
        throw Failure(failures::pathNotFound,
                      QStringLiteral("The profile folder %1 can't be made. Name another one.").arg(m_folder));
    if (isNew)
        QFile::setPermissions(m_folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);

    QSettings settings(file("desk.ini"), QSettings::IniFormat);
    const QString login = qEnvironmentVariable("USER", QStringLiteral("User"));
    m_user = settle(settings, QStringLiteral("user"), options.user.trimmed(), login);
    m_address = settle(settings, QStringLiteral("address"), {}, addressFor(m_user));
    const QString publicFile =
        options.publicFile.isEmpty() ? QString() : QFileInfo(options.publicFile).absoluteFilePath();
    m_publicFile = settle(settings, QStringLiteral("public"), publicFile, file("public.store"));
}

QString Profile::rootName() const { return QStringLiteral("Mailbox - ") + m_user; }
QString Profile::mailboxFile() const { return file("mailbox.store"); }
QString Profile::socket() const { return file("desk.socket"); }
QString Profile::outgoingFolder() const { return file("outgoing"); }
QString Profile::formsFolder() const { return file("forms"); }

QString Profile::openPath() const {
    return QSettings(file("desk.ini"), QSettings::IniFormat).value(QStringLiteral("open")).toString();
}

void Profile::setOpenPath(const QString &path) const {
    QSettings(file("desk.ini"), QSettings::IniFormat).setValue(QStringLiteral("open"), path);
}

QString Profile::file(const char *name) const { return m_folder + u'/' + QString::fromLatin1(name); }

} // namespace desk
