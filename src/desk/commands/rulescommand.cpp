#include "desk/commands/commands.h"
#include "desk/commands/output.h"
#include "desk/transport/mailrules.h"
#include "platform/value/failure.h"

#include <QJsonArray>

namespace desk {
namespace {

int mostFrom(const QString &text) {
    bool isNumber = false;
    const int most = text.toInt(&isNumber);
    if (!isNumber || most < 0)
        throw UsageError(QStringLiteral("--most-an-hour takes a number from 0 on, not \"%1\".").arg(text));
    return most;
}

bool choiceFrom(const QString &text) {
    if (text != QStringLiteral("yes") && text != QStringLiteral("no"))
        throw UsageError(QStringLiteral("--sort-automatic takes yes or no, not \"%1\".").arg(text));
    return text == QStringLiteral("yes");
}

QStringList addressesFrom(const QString &text) {
    QStringList addresses;
    for (const QString &entry : text.split(u',', Qt::SkipEmptyParts)) {
        const QString address = entry.trimmed();
        if (!address.contains(u'@') || address.contains(u' '))
            throw UsageError(
                QStringLiteral("--own-addresses takes mail addresses parted by commas, not \"%1\".").arg(address));
        addresses.append(address);
    }
    return addresses;
}

MailRules changed(MailRules rules, const QMap<QString, QString> &wanted) {
    if (wanted.contains(QStringLiteral("most-an-hour")))
        rules.mostAnHour = mostFrom(wanted[QStringLiteral("most-an-hour")]);
    if (wanted.contains(QStringLiteral("sort-automatic")))
        rules.sortsAutomatic = choiceFrom(wanted[QStringLiteral("sort-automatic")]);
    if (wanted.contains(QStringLiteral("own-addresses")))
        rules.ownAddresses = addressesFrom(wanted[QStringLiteral("own-addresses")]);
    return rules;
}

} // namespace

int rulesCommand(const CommandLine &line) {
    // A wrong value makes no profile.
    static_cast<void>(changed({}, line.rules));
    const Profile profile(line.desk);
    const MailRules standing = mailRules(profile);
    const MailRules rules = changed(standing, line.rules);
    if (!(rules == standing))
        saveMailRules(profile, rules);
    if (line.json) {
        printJson(QJsonObject{{"mostAnHour", rules.mostAnHour},
                              {"sortAutomatic", rules.sortsAutomatic},
                              {"ownAddresses", QJsonArray::fromStringList(rules.ownAddresses)}});
        return 0;
    }
    printLine(QStringLiteral("Mails by programs to one address within an hour: %1")
                  .arg(rules.mostAnHour == 0 ? QStringLiteral("any number") : QString::number(rules.mostAnHour)));
    printLine(QStringLiteral("Automatic mail in folders of its own: %1")
                  .arg(rules.sortsAutomatic ? QStringLiteral("yes") : QStringLiteral("no")));
    printLine(QStringLiteral("Addresses that lead here: %1")
                  .arg((QStringList{profile.address()} + rules.ownAddresses).join(QStringLiteral(", "))));
    return 0;
}

} // namespace desk
