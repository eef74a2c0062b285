#include "mail/confirmation.h"

#include "core/process.h"
#include "mail/output.h"
#include "outlook/properties.h"
#include "outlook/safeutils.h"
#include "outlook/session.h"
#include "reference/settings.h"

namespace {
constexpr qint32 closeSaving = 0;

QString fncTemplate(const QString &strName) {
    return toText(objSettings->OtherSettings->GetValue(strName, propertytype::text));
}

/// A new mail that was closed lies in Drafts; the usual subject finds it there.
host::MailItem fncClosedMail(const host::MailItem &oui, const QString &strTicketID) {
    Attempt([&] { oui.Close(closeSaving); });
    host::MailItem found = oui;
    Attempt([&] {
        const host::MAPIFolder oufDrafts = onsMAPI->GetDefaultFolder(defaultfolder::drafts);
        const host::Item draft = oufDrafts.FindItem("[Subject] = \"Helpdesk Ticket {" + strTicketID + "}\"");
        if (draft)
            found = host::MailItem(draft.object());
    });
    return found;
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

void subSendConfirmation(const host::Item &oui, const QString &strTicketID, const QString &strTo) {
    const bool blnSafe = fncSetupSafeUtils();
    const SafeItem safe = AttemptOr([&] { return fncSafeMailItem(oui); }, SafeItem());
    if (oui)
        oui.readAhead({"Body", "Subject", "Sender"});
    const QString strBody = AttemptOr([&] { return safe.Body(); }, QString());
    const QString strSubject = AttemptOr([&] { return safe.Subject(); }, QString());
    const QString strCaller = AttemptOr([&] { return strTo.isEmpty() ? safe.Sender().Address() : strTo; }, QString());

    host::MAPIFolder oufOutbox;
    Attempt([&] { oufOutbox = onsMAPI->GetDefaultFolder(defaultfolder::outbox); });
    host::MailItem ouiMail;
    Attempt([&] { ouiMail = host::MailItem(oufOutbox.AddItem("IPM.Note").object()); });
    ouiMail.tryPut("Body", fncConfirmationBody(strTicketID, strBody, strSubject));
    ouiMail.tryPut("Subject", fncConfirmationSubject(strTicketID, strBody, strSubject));
    ouiMail.tryPut("To", strCaller);
    ouiMail.tryPut("ReadReceiptRequested", false);
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
    QString strText = strTemplate;
    strText.replace("[TICKETID]", strTicketID);
    strText.replace("[BODY]", strBody);
    strText.replace("[SUBJECT]", strSubject);
    return strText;
}
