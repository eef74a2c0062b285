#include "orvelle/mail/output.h"

#include "orvelle/core/process.h"
#include "orvelle/core/trace.h"
#include "orvelle/dialogs/dialogs.h"
#include "orvelle/host/constants.h"
#include "orvelle/mail/attachments.h"
#include "orvelle/mail/sentmail.h"
#include "orvelle/reference/settings.h"
#include "orvelle/session/properties.h"
#include "orvelle/session/session.h"
#include "orvelle/ticket/ticket.h"

namespace {

void subAttachFiles(const host::Item &ouiItem, const host::MailItem &ouiMail) {
    if (ouiItem.isNothing())
        return;
    subTrace("Copying any attached files from the ticket to the outgoing email");
    const QStringList missing = subCopyAttachements(ouiItem, ouiMail);
    if (!missing.isEmpty())
        subAssistantMessage(ouaOutlook, "There is no room for temporary files, so these are not attached to the mail:" +
                                            (strLineEnd + missing.join(strLineEnd)));
}
} // namespace

void subOutputTicket(const cTicket &objTicket, const QString &strTo, qint32 OutputOption, const host::Item &ouiItem) {
    host::MailItem ouiMail;
    Attempt([&] { ouiMail = host::MailItem(ouaOutlook->CreateItem(0).object()); });
    ouiMail.TryBody("Test");
    if (fncHasBodyFormat())
        ouiMail.TryBodyFormat(host::bodyformat::html);
    Attempt([&] { ouiMail.HTMLBody(objTicket.ToHTML(OutputOption)); });
    if (strTo.isEmpty()) {
        Attempt([&] { ouiMail.PrintOut(); });
        return;
    }
    subAttachFiles(ouiItem, ouiMail);
    Attempt([&] { subSetEmailFrom(ouiMail); });
    Attempt([&] { subSetSentFolder(ouiMail); });
    ouiMail.TryTo(strTo);
    ouiMail.TrySubject("Ticket: " + objTicket.Subject + " {" + objTicket.TicketID + "}");
    Attempt([&] { ouiMail.Display(); });
}

void subSetEmailFrom(const host::MailItem &ouiMail) {
    constexpr qsizetype shortestName = 6;
    const QString strFrom = toText(objSettings->OtherSettings->GetValue("EmailFrom", valuetype::text));
    if (strFrom.size() < shortestName)
        return;
    ouiMail.SentOnBehalfOfName(strFrom);
    ouiMail.ReplyRecipientNames(strFrom);
}
