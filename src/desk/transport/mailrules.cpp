#include "desk/transport/mailrules.h"

#include "platform/value/failure.h"

#include <QSettings>

namespace desk {
namespace {

const QString mostKey = QStringLiteral("automatic/mostAnHour");
const QString sortKey = QStringLiteral("automatic/sort");
const QString addressesKey = QStringLiteral("automatic/ownAddresses");

QString fileOf(const Profile &profile) { return profile.folder() + QStringLiteral("/desk.ini"); }

} // namespace

MailRules mailRules(const Profile &profile) {
    const QSettings settings(fileOf(profile), QSettings::IniFormat);
    MailRules rules;
    bool isNumber = false;
    const int most = settings.value(mostKey).toInt(&isNumber);
    if (isNumber && most >= 0)
        rules.mostAnHour = most;
    rules.sortsAutomatic = settings.value(sortKey).toString() == QStringLiteral("yes");
    // A list that people write by hand; one address with a comma in it is none that a mail would bear.
    for (const QString &entry : settings.value(addressesKey).toStringList()) {
        for (const QString &address : entry.split(u',', Qt::SkipEmptyParts)) {
            if (!address.trimmed().isEmpty())
                rules.ownAddresses.append(address.trimmed());
        }
    }
    return rules;
}

void saveMailRules(const Profile &profile, const MailRules &rules) {
    QSettings settings(fileOf(profile), QSettings::IniFormat);
    settings.setValue(mostKey, rules.mostAnHour);
    settings.setValue(sortKey, rules.sortsAutomatic ? QStringLiteral("yes") : QStringLiteral("no"));
    settings.setValue(addressesKey, rules.ownAddresses.join(u','));
    settings.sync();
    if (settings.status() != QSettings::NoError)
        throw Failure(
            failures::permissionDenied,
            QStringLiteral("The rules can't be written to %1. Check that you may write there and that the disk "
                           "has room.")
                .arg(settings.fileName()));
}

} // namespace desk
