#include "orvelle/mail/sentmail.h"

#include "orvelle/core/steps.h"
#include "orvelle/mail/intake.h"
#include "orvelle/ticket/ticket.h"
#include "orvelle/ticket/ticketfolders.h"

ProcessLocal<std::function<host::MAPIFolder()>> fncSentFolder;

void subSetSentFolder(const host::MailItem &ouiMail) {
    if (!fncUsesSubFolders())
        return;
    if (!fncSentFolder.get())
        throw Failure(failures::objectNotSet);
    if (const host::MAPIFolder oufSent = fncSentFolder.get()())
        ouiMail.SaveSentMessageFolder(oufSent);
}

void subFileSentItem(const host::Item &Item) {
    const WholeStep whole;
    // A mail that has gone by now is nobody's trouble.
    const QString strTicketID = fncGetTicketIDFromSubject(AttemptOr([&] { return Item.Subject(); }, QString()));
    if (strTicketID.isEmpty())
        return;
    const host::MAPIFolder oufSent = fncGetTicketSubFolder(strTicketID, "Sent");
    if (oufSent)
        Attempt([&] { Item.Move(oufSent); });
}
