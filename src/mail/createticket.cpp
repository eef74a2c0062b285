#include "mail/createticket.h"

#include "core/dialogs.h"
#include "core/errorhandler.h"
#include "core/phrases.h"
#include "core/process.h"
#include "core/trace.h"
#include "mail/attachments.h"
#include "outlook/folderpath.h"
#include "outlook/outlookfolder.h"
#include "outlook/properties.h"
#include "outlook/safeutils.h"
#include "outlook/session.h"
#include "reference/settings.h"
#include "ticket/ticket.h"

#include <QScopeGuard>

namespace {
constexpr qint32 personal = 1;
constexpr qint32 closeSaving = 0;
constexpr qint32 flagComplete = 2;

void subFindTicketFolder() {
    if (oufTickets->isNothing())
        oufTickets = objSettings->objFolder->GetFolder();
    if (!oufTickets->isNothing())
        return;
    if (fncAssistantYesNo(ouaOutlook, LNGFAILEDTOFINDCRVFOLDER, 4) == window::Yes)
        oufTickets = fncPickFolder(nullptr);
    if (oufTickets->isNothing())
        subQuit();
}

/// Nothing, and what to do about it for the person, when the host can't make one.
host::PostItem fncNewTicketItem() {
    host::PostItem ouiPost;
    const auto failure =
        Attempt([&] { ouiPost = host::PostItem(oufTickets->Items().Add(strTicketMessageClass).object()); });
    if (ouiPost.isNothing())
        subAssistantMessage(ouaOutlook, fncFormsCacheMessage(failure ? failure->description() : QString()));
    return ouiPost;
}

/// The row's number, which the database alone gives; empty when the row can't be written.
QString fncSaveRow(const host::PostItem &ouiPost) {
    cTicket objTicket;
    // Half a record is worth a row here: the ticket is new, so there is nothing that it could overwrite. An item that
    // the host could not save is not: it would leave a row without a ticket.
    if (!objTicket.ReadFromOutlook(ouiPost) && !AttemptOr([&] { return ouiPost.Saved(); }, false) &&
        fncSetupSafeUtils())
        return {};
    objTicket.SaveToDB();
    return objTicket.TicketID;
}

void subMarkConverted(const host::MailItem &ouiMail, const QString &strTicketID) {
    Attempt([&] { ouiMail.FlagStatus(flagComplete); });
    Attempt([&] { ouiMail.FlagRequest("Ticket # " + strTicketID + " created at " + formatDateTime(Clock::now())); });
    Attempt([&] { ouiMail.BillingInformation(strTicketID); });
    Attempt([&] { ouiMail.Save(); });
}
} // namespace

QString fncCreateSingleTicket(const host::Item &ouiMail) try {
    const QString strClass = ouiMail.MessageClass().toUpper();
    if (strClass != "IPM.NOTE" && strClass != "IPM.POST")
        return {};
    subAssistantWorking(ouaOutlook);
    subFindTicketFolder();
    subTrace("Adding a new ticket to the folder " + oufTickets->Name());
    const host::PostItem ouiPost = fncNewTicketItem();
    if (ouiPost.isNothing())
        return {};
    // Where no ticket comes of it the message is tried again, so an item without a number would only come a second
    // time.
    auto unfinished = qScopeGuard([&] { Attempt([&] { ouiPost.Delete(); }); });
    const host::UserProperties oups = ouiPost.UserProperties();
    subSetOutlookValue(oups, "Created by", objSettings->CurrentResponsible->FullName, propertytype::text);
    subSetOutlookValue(oups, "Created at", Clock::now(), propertytype::date);
    subCopyAttachements(ouiMail, ouiPost);
    subFillTicketFromMail(ouiMail, ouiPost, oups);
    const QString strTicketID = fncSaveRow(ouiPost);
    if (strTicketID.isEmpty())
        return {};
    subSetOutlookValue(oups, "Ticket ID", strTicketID, propertytype::text);
    ouiPost.Sensitivity(personal);
    ouiPost.Close(closeSaving);
    unfinished.dismiss();
    subTrace("Setting flag on email that a ticket was created from!");
    if (strClass == "IPM.NOTE")
        subMarkConverted(host::MailItem(ouiMail.object()), strTicketID);
    return strTicketID;
} catch (const Failure &failure) {
    subErrorHandler(failure, "fncCreateSingleTicket");
}

void subAddEmailWorkItem(const QString &strTicketID, const QString &strSender) try {
    subTrace("Adding work description about new email received");
    const auto objWork = Ref<cWorkDescription>::make();
    objWork->WorkDate = Clock::now();
    objWork->User = strSender;
    objWork->Description = LNGEMAIL;
    objWork->Minutes = 0;
    cTicket objTicket;
    objTicket.TicketID = strTicketID;
    host::Item ouiPost = objTicket.GetPostItem();
    if (ouiPost.isNothing() || !objTicket.ReadFromOutlook(ouiPost))
        return;
    const auto dicWork = objTicket.WorkDescs->dicWorkDesc;
    dicWork->Add(QString::number(dicWork->Count() + 1), objWork);
    objTicket.SaveToDB();
    objTicket.SaveToOutlook(false, false, ouiPost);
    // Shows the ticket as changed in the folder.
    ouiPost.UnRead(true);
} catch (const Failure &failure) {
    subErrorHandler(failure, "subAddEmailWorkItem");
}
