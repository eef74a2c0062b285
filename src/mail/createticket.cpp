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
        Attempt([&] { ouiPost = host::PostItem(oufTickets->AddItem(strTicketMessageClass).object()); });
    if (ouiPost.isNothing())
        subAssistantMessage(ouaOutlook, fncFormsCacheMessage(failure ? failure->description() : QString()));
    return ouiPost;
}

/// Says in the ticket's work log which files are missing: whoever works on it may never see the mail.
void subNoteMissingFiles(const host::PostItem &ouiPost, const QStringList &files) {
    if (files.isEmpty())
        return;
    const auto objWork = Ref<cWorkDescription>::make();
    objWork->WorkDate = Clock::now();
    objWork->User = objSettings->CurrentResponsible->FullName;
    objWork->Description =
        "Attachments that could not be copied from the mail (no room for temporary files): " + files.join(", ");
    cWorkDescs objLog;
    objLog.dicWorkDesc->Add("0", objWork);
    subFixLongProperty(ouiPost, objLog.ToString(), "WorkDescriptions", false);
}

/// A mail whose ticket got a row but no item keeps the row's number, so that the next try fills the row and adds none.
namespace earliertry {
constexpr char strProperty[] = "Orvelle row without item";
constexpr qint32 hostText = 1;

void subNote(const host::Item &ouiMail, const QString &strTicketID) {
    Attempt([&] {
        ouiMail.UserProperties().Add(strProperty, hostText).setValue(strTicketID);
        ouiMail.Save();
    });
}

/// Empty for a mail that was not tried before, also for a copy of one whose ticket has its item by now.
QString fncTicketID(const host::Item &ouiMail) {
    return AttemptOr(
        [&] {
            const host::UserProperty oup = ouiMail.FindProperty(strProperty);
            cTicket objTicket;
            objTicket.TicketID = oup ? toText(oup.value()) : QString();
            const bool blnFree = !objTicket.TicketID.isEmpty() && objTicket.GetPostItem().isNothing();
            return blnFree ? objTicket.TicketID : QString();
        },
        QString());
}

void subForget(const host::Item &ouiMail) {
    Attempt([&] { ouiMail.UserProperties().Add(strProperty, hostText).setValue(""); });
}
} // namespace earliertry

/// The row's number, which the database alone gives; empty when the row can't be written.
QString fncSaveRow(const host::PostItem &ouiPost, const QString &strEarlierID) {
    cTicket objTicket;
    if (!objTicket.ReadFromOutlook(ouiPost)) {
        // An item that the host could not save would leave a row without a ticket.
        if (!AttemptOr([&] { return ouiPost.Saved(); }, false) && fncSetupSafeUtils())
            return {};
        // Half a record is worth a row where there is none yet, but is written over none.
        if (!strEarlierID.isEmpty())
            return strEarlierID;
    }
    objTicket.SaveToDB();
    return objTicket.TicketID;
}

void subMarkConverted(const host::MailItem &ouiMail, const QString &strTicketID) {
    ouiMail.tryPut("FlagStatus", flagComplete);
    ouiMail.tryPut("FlagRequest", "Ticket # " + strTicketID + " created at " + formatDateTime(Clock::now()));
    ouiMail.tryPut("BillingInformation", strTicketID);
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
    subNoteMissingFiles(ouiPost, subCopyAttachements(ouiMail, ouiPost));
    subFillTicketFromMail(ouiMail, ouiPost, oups);
    const QString strEarlierID = earliertry::fncTicketID(ouiMail);
    if (!strEarlierID.isEmpty())
        subSetOutlookValue(oups, "Ticket ID", strEarlierID, propertytype::text);
    const QString strTicketID = fncSaveRow(ouiPost, strEarlierID);
    if (strTicketID.isEmpty())
        return {};
    auto rowAlone = qScopeGuard([&] { earliertry::subNote(ouiMail, strTicketID); });
    subSetOutlookValue(oups, "Ticket ID", strTicketID, propertytype::text);
    ouiPost.Sensitivity(personal);
    ouiPost.Close(closeSaving);
    unfinished.dismiss();
    rowAlone.dismiss();
    if (!strEarlierID.isEmpty())
        earliertry::subForget(ouiMail);
    subTrace("Setting flag on email that a ticket was created from!");
    if (strClass == "IPM.NOTE")
        subMarkConverted(host::MailItem(ouiMail.object()), strTicketID);
    return strTicketID;
} catch (const Failure &failure) {
    subErrorHandler(failure, "fncCreateSingleTicket");
}

void subAddEmailWorkItem(const QString &strTicketID, const QString &strSender) try {
    constexpr int mostTries = 20;
    subTrace("Adding work description about new email received");
    const auto objWork = Ref<cWorkDescription>::make();
    objWork->WorkDate = Clock::now();
    objWork->User = strSender;
    objWork->Description = LNGEMAIL;
    objWork->Minutes = 0;
    for (int intTry = 1;; ++intTry) {
        cTicket objTicket;
        objTicket.TicketID = strTicketID;
        host::Item ouiPost = objTicket.GetPostItem();
        if (ouiPost.isNothing() || !objTicket.ReadFromOutlook(ouiPost))
            return;
        const auto dicWork = objTicket.WorkDescs->dicWorkDesc;
        dicWork->Add(QString::number(dicWork->Count() + 1), objWork);
        // Another client may add a row of its own meanwhile, and only the item's save tells: then the log is read anew.
        const auto failure = Attempt([&] { objTicket.SaveBoth(ouiPost); });
        if (failure && host::isChangedElsewhere(*failure) && intTry < mostTries)
            continue;
        if (failure) {
            objTicket.SaveToDB();
            objTicket.SaveToOutlook(false, false, ouiPost);
        }
        // Shows the ticket as changed in the folder.
        ouiPost.UnRead(true);
        return;
    }
} catch (const Failure &failure) {
    subErrorHandler(failure, "subAddEmailWorkItem");
}
