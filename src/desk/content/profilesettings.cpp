#include "desk/content/profilesettings.h"

#include "desk/content/profile.h"
#include "desk/store/store.h"
#include "platform/storage/draft.h"
#include "platform/storage/durable.h"
#include "platform/value/failure.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSettings>

#include <unistd.h>

namespace desk {
namespace {

/// More than any desk writes.
constexpr qint64 largest = qint64{1024} * 1024;

bool isWritten(QChar letter) {
    return letter == u'\t' ||
           (letter.category() != QChar::Other_Control && letter != QChar(QChar::ReplacementCharacter));
}

/// The value of a line "key=value", as it stands.
std::optional<std::pair<QString, QString>> settingIn(const QString &line) {
    static const QRegularExpression setting(QStringLiteral("^([A-Za-z]+) *= *(.*)$"));
    const auto match = setting.match(line);
    const QString value = match.captured(2);
    if (!match.hasMatch() || !std::all_of(value.begin(), value.end(), isWritten))
        return std::nullopt;
    return std::pair(match.captured(1), value);
}

/// The name of a line "[section]".
std::optional<QString> sectionIn(const QString &line) {
    static const QRegularExpression section(QStringLiteral("^\\[([A-Za-z]+)\\]$"));
    const auto match = section.match(line);
    return match.hasMatch() ? std::optional(match.captured(1)) : std::nullopt;
}

QStringList linesOf(const QByteArray &bytes) {
    QStringList lines;
    for (const QByteArray &line : bytes.left(largest).split('\n'))
        lines << QString::fromUtf8(line.trimmed());
    return lines;
}

/// Every writer ends the last line. In one without an end, half a name or half a path looks like a whole one.
bool isCutOff(const QByteArray &bytes) { return !bytes.endsWith('\n'); }

/// The reader of such files takes almost anything for one, and an empty file as well.
bool isSettings(const QByteArray &bytes) {
    if (isCutOff(bytes))
        return false;
    const QStringList lines = linesOf(bytes);
    const auto isLine = [](const QString &line) {
        return line.isEmpty() || line.startsWith(u';') || sectionIn(line) || settingIn(line);
    };
    return bytes.size() <= largest && std::all_of(lines.begin(), lines.end(), isLine) &&
           std::any_of(lines.begin(), lines.end(), [](const QString &line) { return settingIn(line).has_value(); });
}

const QString general = QStringLiteral("General");

/// By section and key.
using Values = QMap<QString, QMap<QString, QString>>;

/// What can still be read of a damaged file. A later line counts.
Values readable(const QByteArray &bytes) {
    Values values;
    QString section = general;
    QStringList lines = linesOf(bytes);
    if (isCutOff(bytes))
        lines.removeLast();
    for (const QString &line : std::as_const(lines)) {
        section = sectionIn(line).value_or(section);
        if (const auto setting = settingIn(line))
            values[section].insert(setting->first, setting->second);
    }
    return values;
}

/// Written as they stand, since they are lines of such a file: what is quoted or escaped in them means what it did.
QByteArray asFile(const Values &values) {
    QByteArray bytes;
    for (auto section = values.begin(); section != values.end(); ++section) {
        bytes += '[' + section.key().toUtf8() + "]\n";
        for (auto value = section->begin(); value != section->end(); ++value)
            bytes += value.key().toUtf8() + '=' + value.value().toUtf8() + '\n';
    }
    return bytes;
}

QString named(const Values &values) {
    QStringList names;
    for (const auto &section : values)
        names << section.keys();
    return names.isEmpty() ? QStringLiteral("nothing") : names.join(QStringLiteral(", "));
}

/// A second name for the file, so that no kill leaves the profile without either; the one of an earlier try serves.
QString keep(const QString &path, const QByteArray &bytes) {
    for (int number = 1;; ++number) {
        const QString kept = QStringLiteral("%1.damaged-%2").arg(path).arg(number);
        QFile standing(kept);
        if (standing.open(QIODevice::ReadOnly)) {
            if (standing.readAll() == bytes)
                return kept;
        } else if (::link(QFile::encodeName(path).constData(), QFile::encodeName(kept).constData()) == 0 ||
                   QFile::copy(path, kept)) {
            return kept;
        } else if (!standing.exists()) {
            throw Failure(failures::accessDenied,
                          QStringLiteral("The settings file %1 is damaged and can't be put aside; check the rights to "
                                         "its folder and the room on the disk.")
                              .arg(path));
        }
    }
}

void write(const QString &path, const QByteArray &bytes, storage::Draft::Taken taken) {
    storage::Draft draft(path, std::chrono::seconds(5));
    QFile file(draft.path());
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush())
        throw Failure(failures::noDiskSpace,
                      QStringLiteral("The settings file %1 can't be written: %2.").arg(path, file.errorString()));
    file.close();
    draft.publish(taken);
}

QString iniValue(const QString &text) {
    QString escaped = text;
    return u'"' + escaped.replace(u'\\', QStringLiteral("\\\\")).replace(u'"', QStringLiteral("\\\"")) + u'"';
}

QString ownerIn(const QString &mailboxFile) {
    Store mailbox(mailboxFile, {.create = false});
    const QString name = mailbox.root().name;
    return name.startsWith(mailboxPrefix) ? name.mid(mailboxPrefix.size()) : QString();
}

bool hasName(const QString &settingsFile) {
    const QSettings settings(settingsFile, QSettings::IniFormat);
    return !settings.value(QStringLiteral("user")).toString().trimmed().isEmpty();
}

} // namespace

QString ownerOfMailbox(const QString &mailboxFile) {
    return AttemptOr([&] { return ownerIn(mailboxFile); }, QString());
}

QString nameFromMailbox(const QString &profileFolder) {
    const QString settings = profileFolder + QStringLiteral("/desk.ini");
    const QString mailbox = profileFolder + QStringLiteral("/mailbox.store");
    if (hasName(settings) || !QFileInfo::exists(mailbox))
        return {};
    QString owner = ownerIn(mailbox);
    // A first start writes the settings before it makes the mailbox: by now they would be there.
    if (owner.isEmpty() || hasName(settings))
        return {};
    qCritical("The settings file %s is missing or has lost the person's name. The name was taken from the mailbox: %s. "
              "Other settings may be lost too; look at them with orvelle-desk rules, and name the file of the public "
              "folders with --public, once, if it is not the profile's own.",
              qUtf8Printable(settings), qUtf8Printable(owner));
    return owner;
}

void makeSettings(const QString &path, const QString &user) {
    if (QFileInfo::exists(path))
        return;
    try {
        write(path, asFile({{general, {{QStringLiteral("user"), iniValue(user)}}}}), storage::Draft::Taken::Refuse);
    } catch (const Failure &failure) {
        // Another start was faster.
        if (failure.number() != failures::fileExists)
            throw;
    }
}

void mendSettings(const QString &profileFolder, const QString &publicFile) {
    const QString path = profileFolder + QStringLiteral("/desk.ini");
    QFile file(path);
    if (!file.exists())
        return;
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        throw Failure(failures::accessDenied,
                      QStringLiteral("The settings file %1 can't be read: %2. Check the rights to it.")
                          .arg(path, file.errorString()));
    const QByteArray bytes = file.readAll();
    file.close();
    if (isSettings(bytes))
        return;
    Values values = readable(bytes);
    const QString owner = ownerOfMailbox(profileFolder + QStringLiteral("/mailbox.store"));
    if (!owner.isEmpty())
        values[general].insert(QStringLiteral("user"), iniValue(owner));
    const bool isPublicKnown = values.value(general).contains(QStringLiteral("public")) || !publicFile.isEmpty() ||
                               QFileInfo::exists(profileFolder + QStringLiteral("/public.store")) || owner.isEmpty();
    if (!isPublicKnown)
        throw Failure(failures::unspecified,
                      QStringLiteral("The settings file %1 is damaged, and it can't be told any more where the public "
                                     "folders are. It was left as it is. Name their file with --public FILE, once.")
                          .arg(path));
    const QString kept = keep(path, bytes);
    if (values.isEmpty())
        QFile::remove(path);
    else
        write(path, asFile(values), storage::Draft::Taken::Replace);
    qCritical("The settings file %s is damaged. It is kept as %s. What could still be read in it, and the name of the "
              "mailbox, went into a new one: %s. Name with --user and --public, once, what is missing.",
              qUtf8Printable(path), qUtf8Printable(kept), qUtf8Printable(named(values)));
}

} // namespace desk
