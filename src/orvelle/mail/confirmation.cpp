#include "orvelle/mail/confirmation.h"

#include "orvelle/core/process.h"
#include "orvelle/host/constants.h"
#include "orvelle/host/snapshot.h"
#include "orvelle/mail/claim.h"
#include "orvelle/mail/output.h"
#include "orvelle/mail/sentmail.h"
#include "orvelle/reference/settings.h"
#include "orvelle/reference/texts.h"
#include "orvelle/session/properties.h"
#include "orvelle/session/safeutils.h"
#include "orvelle/session/session.h"

namespace {
/// In characters; a template that is longer stays as it is where nothing is filled in.
constexpr qsizetype longestConfirmation = 1'000'000;

QString fncTemplate(const QString &strName) {
    return toText(objSettings->OtherSettings->GetValue(strName, valuetype::text));
}

/// A new mail that was closed lies in Drafts; the usual subject finds it there.
host::MailItem fncClosedMail(const host::MailItem &oui, const QString &strTicketID) {
    Attempt([&] { oui.Close(host::closing::save); });
    host::MailItem found = oui;
    Attempt([&] {
        const host::Item draft =
            onsMAPI->FindItem(host::defaultfolder::drafts, "[Subject] = \"Helpdesk Ticket {" + strTicketID + "}\"");
        if (draft)
            found = host::MailItem(draft.object());
    });
    return found;
}

/// The text with a placeholder filled; nothing where it would be longer than a confirmation may be.
std::optional<QString> fncReplaced(QString strText, const QString &strPlaceholder, const QString &strValue) {
    const qsizetype lngGrowth = strValue.size() - strPlaceholder.size();
    const qsizetype lngPlaces = lngGrowth > 0 ? strText.count(strPlaceholder) : 0;
    if (lngPlaces > 0 && lngPlaces > (longestConfirmation - strText.size()) / lngGrowth)
        return std::nullopt;
    return strText.replace(strPlaceholder, strValue);
}

std::optional<QString> fncFilled(const QString &strTemplate, const QString &strTicketID, const QString &strBody,
                                 const QString &strSubject) {
    std::optional<QString> strText = fncReplaced(strTemplate, "[TICKETID]", strTicketID);
    if (strText)
        strText = fncReplaced(*strText, "[BODY]", strBody);
    return strText ? fncReplaced(*strText, "[SUBJECT]", strSubject) : std::nullopt;
}

void subSendSafely(const host::MailItem &oui, const host::MAPIFolder &oufOutbox) {
    host::Item moved = oui;
    Attempt([&] { moved = oui.Move(oufOutbox); });
    Attempt([&] {
        const SafeItem safe = fncSafeMailItem(moved);
        safe.AuthKey();
        safe.send();
    });
    Attempt([] { subDeliverNow(); });
}
} // namespace

namespace {
struct Found {
    Confirmation state = Confirmation::None;
    host::Item oui;
};

/// The folders that a confirmation can lie in: those of the mailbox, the watched one for sent mail, the ticket's.
QList<host::MAPIFolder> fncPlaces(const QString &strTicketID) {
    QList<host::MAPIFolder> places;
    Attempt([&] {
        const host::Folders oufs = onsMAPI->GetDefaultFolder(host::defaultfolder::inbox).Parent().Folders();
        for (host::MAPIFolder ouf = oufs.GetFirst(); ouf; ouf = oufs.GetNext())
            places.append(ouf);
    });
    Attempt([&] { places.append(onsMAPI->GetDefaultFolder(host::defaultfolder::sentItems).Folders("ORVLSentItems")); });
    Attempt([&] { places.append(oufTickets->Folders(strTicketID).Folders("Sent")); });
    return places;
}

Found fncFind(const QString &strWork, const QString &strTicketID) {
    Found found;
    if (strWork.isEmpty())
        return found;
    const QString strFilter = QString("[%1] = %2").arg(QLatin1StringView(strConfirmsProperty), fncQuoted(strWork));
    const auto place = [](qint32 intFolder) {
        return AttemptOr([&] { return onsMAPI->GetDefaultFolder(intFolder).EntryID(); }, QString());
    };
    // Anywhere else it was sent, held back by the host for a reason, or put away by a person.
    const QStringList open{place(host::defaultfolder::outbox), place(host::defaultfolder::drafts)};
    for (const host::MAPIFolder &ouf : fncPlaces(strTicketID)) {
        Attempt([&] {
            const host::Item oui = ouf.FindItem(strFilter);
            if (oui.isNothing())
                return;
            found.oui = oui;
            const bool blnDone = toBool(oui.get("Sent")) || !open.contains(ouf.EntryID());
            found.state = blnDone ? Confirmation::Sent : Confirmation::Begun;
        });
        if (found.state == Confirmation::Sent)
            break;
    }
    return found;
}
} // namespace

Confirmation fncConfirmationOf(const QString &strWork, const QString &strTicketID) {
    return fncFind(strWork, strTicketID).state;
}

void subFinishConfirmation(const host::Item &oui, const QString &strTicketID) {
    const Found found = fncFind(fncWorkOf(oui), strTicketID);
    if (found.state == Confirmation::None)
        return subSendConfirmation(oui, strTicketID, "");
    // One that was sent may still lie in the Outbox.
    host::MAPIFolder oufOutbox;
    Attempt([&] { oufOutbox = onsMAPI->GetDefaultFolder(host::defaultfolder::outbox); });
    if (!fncSetupSafeUtils())
        return;
    if (found.state == Confirmation::Begun)
        subSendSafely(host::MailItem(found.oui.object()), oufOutbox);
    else
        Attempt([] { subDeliverNow(); });
}

void subSendConfirmation(const host::Item &oui, const QString &strTicketID, const QString &strTo) {
    const bool blnSafe = fncSetupSafeUtils();
    const host::Item seen = host::snapshot(oui, {"Body", "Subject", "Sender", "EntryID"});
    const SafeItem safe = AttemptOr([&] { return fncSafeMailItem(seen); }, SafeItem());
    const QString strBody = AttemptOr([&] { return safe.Body(); }, QString());
    const QString strSubject = AttemptOr([&] { return safe.Subject(); }, QString());
    const QString strCaller = AttemptOr([&] { return strTo.isEmpty() ? safe.Sender().Address() : strTo; }, QString());

    host::MAPIFolder oufOutbox;
    host::MailItem ouiMail;
    Attempt([&] {
        const auto [ouf, ouiNew] = onsMAPI->AddItem(host::defaultfolder::outbox, "IPM.Note");
        oufOutbox = ouf;
        ouiMail = host::MailItem(ouiNew.object());
    });
    subHint(ouiMail, strConfirmsProperty, fncWorkOf(seen));
    ouiMail.TryBody(fncConfirmationBody(strTicketID, strBody, strSubject));
    ouiMail.TrySubject(fncConfirmationSubject(strTicketID, strBody, strSubject));
    ouiMail.TryTo(strCaller);
    ouiMail.TryReadReceiptRequested(false);
    // A host that has no such member sends the mail without a thread.
    if (strTo.isEmpty())
        ouiMail.TryAnsweredItem(oui);
    Attempt([&] { subSetEmailFrom(ouiMail); });
    Attempt([&] { subSetSentFolder(ouiMail); });
    if (!blnSafe) {
        Attempt([&] { ouiMail.Display(); });
        return;
    }
    subSendSafely(fncClosedMail(ouiMail, strTicketID), oufOutbox);
}

QString fncConfirmationBody(const QString &strTicketID, const QString &strBody, const QString &strSubject) {
    return fncFillConfirmation(fncTemplate("ConvertedEmailMessage"), strTicketID, strBody, strSubject);
}

QString fncConfirmationSubject(const QString &strTicketID, const QString &strBody, const QString &strSubject) {
    return fncFillConfirmation(fncTemplate("ConvertedEmailSubject"), strTicketID, strBody, strSubject);
}

QString fncFillConfirmation(const QString &strTemplate, const QString &strTicketID, const QString &strBody,
                            const QString &strSubject) {
    if (const auto strText = fncFilled(strTemplate, strTicketID, strBody, strSubject))
        return *strText;
    // Whoever wrote the mail must not decide how much memory its answer takes.
    const auto strShort = fncFilled(strTemplate, strTicketID, "", strSubject);
    return strShort ? *strShort : fncFilled(strTemplate, strTicketID, "", "").value_or(strTicketID);
}
