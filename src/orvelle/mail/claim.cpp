#include "orvelle/mail/claim.h"

#include "orvelle/core/process.h"
#include "orvelle/host/constants.h"
#include "orvelle/mail/intake.h"
#include "orvelle/session/session.h"

#include <QUuid>

namespace {
constexpr QChar chrBetween = u'|';

/// The store of the mailbox stays the same as long as the program runs.
ProcessLocal<QString> strMailbox;

QString fncMailbox() {
    if (strMailbox->isEmpty())
        strMailbox =
            AttemptOr([] { return onsMAPI->GetDefaultFolder(host::defaultfolder::inbox).StoreID(); }, QString());
    return strMailbox;
}

QString fncPlain(const QString &strText) {
    constexpr qsizetype longestName = 100;
    return strText.left(longestName).replace(chrBetween, u' ');
}
} // namespace

cClaim cClaim::Own() {
    cClaim claim;
    claim.moment = Clock::now();
    claim.mailbox = fncMailbox();
    claim.user = strCurrentUserName;
    return claim;
}

QString cClaim::ToString() const {
    return QStringList{process.toText(), QString::number(moment.days, 'f', 6), fncPlain(mailbox), fncPlain(user)}.join(
        chrBetween);
}

std::optional<cClaim> cClaim::FromString(const QString &strClaim) {
    const QStringList fields = strClaim.split(chrBetween);
    const std::optional<RunningProcess> found = RunningProcess::fromText(fields[0]);
    if (fields.size() != 4 || !found)
        return std::nullopt;
    cClaim claim;
    claim.process = *found;
    claim.moment = DateTime{fields[1].toDouble()};
    if (!claim.moment.isValid())
        return std::nullopt;
    claim.mailbox = fields[2];
    claim.user = fields[3];
    return claim;
}

std::optional<cClaim> cClaim::Of(const host::Item &oui) { return FromString(fncHint(oui, strClaimProperty)); }

void subHint(const host::Item &oui, const char *strProperty, const QString &strText) {
    oui.TryAddPropertyValue(QString::fromLatin1(strProperty), host::usertype::text, strText);
}

QString fncHint(const host::Item &oui, const char *strProperty) {
    return AttemptOr([&] { return toText(oui.PropertyValue(QString::fromLatin1(strProperty))); }, QString());
}

QString fncWorkOf(const host::Item &oui) {
    return AttemptOr([&] { return oui.EntryID(); }, QString());
}

QString fncWorkOfReply(const host::Item &oui) {
    const QString strBegun =
        fncHint(oui, strFilingProperty) == strWorkingMark ? fncHint(oui, strWorkProperty) : QString();
    constexpr qsizetype wordLength = 8;
    return strBegun.isEmpty() ? fncWorkOf(oui) + u'-' + QUuid::createUuid().toString(QUuid::Id128).left(wordLength)
                              : strBegun;
}
