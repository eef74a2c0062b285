#include "orvelle/mail/createticket.h"

#include "orvelle/core/errorhandler.h"
#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"
#include "orvelle/core/trace.h"
#include "orvelle/dialogs/dialogs.h"
#include "orvelle/dialogs/savetrouble.h"
#include "orvelle/host/constants.h"
#include "orvelle/host/snapshot.h"
#include "orvelle/mail/attachments.h"
#include "orvelle/mail/claim.h"
#include "orvelle/mail/leftover.h"
#include "orvelle/reference/settings.h"
#include "orvelle/reference/texts.h"
#include "orvelle/session/folderpath.h"
#include "orvelle/session/outlookfolder.h"
#include "orvelle/session/properties.h"
#include "orvelle/session/safeutils.h"
#include "orvelle/session/session.h"
#include "orvelle/ticket/ticket.h"

#include <QScopeGuard>

namespace {

void subFindTicketFolder() {
    if (oufTickets->isNothing())
        oufTickets = cOutlookFolder(*objSettings->objFolder).GetFolder();
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

void subNote(const host::Item &ouiMail, const QString &strTicketID) {
    const auto failure = Attempt([&] {
        ouiMail.AddPropertyValue(strProperty, host::usertype::text, strTicketID);
        ouiMail.Save();
    });
    // Where the mail takes no note, nobody would find the row again. A host that has gone may have saved the item.
    const bool blnRefused =
        failure && (failure->number() == failures::noDiskSpace || failure->number() == failures::accessDenied);
    if (!blnRefused)
        return;
    cTicket objTicket;
    objTicket.TicketID = strTicketID;
    Attempt([&] { objTicket.TakeBackRow(); });
}

/// Deletes what an earlier try has left of a ticket item. False where it stays: another item would make two tickets of
/// the mail.
bool fncDropItem(const QString &strWork) {
    if (strWork.isEmpty())
        return true;
    const auto failure = Attempt([&] {
        const QString strFilter = QString("[%1] = %2").arg(QLatin1StringView(strWorkProperty), fncQuoted(strWork));
        if (oufTickets->FindItem(strFilter).isNothing())
            return;
        for (const host::Item &ouiLeft : fncTicketsOfWork(strWork)) {
            if (fncTicketIDOf(ouiLeft).isEmpty())
                ouiLeft.Delete();
        }
    });
    if (failure)
        subTellSaveTrouble(Saving::Item, "Unable to save current item!", *failure);
    return !failure;
}

/// Empty for a mail that was not tried before, also for a copy of one whose ticket has its item by now.
QString fncTicketID(const host::Item &ouiMail) {
    return AttemptOr(
        [&] {
            cTicket objTicket;
            objTicket.TicketID = fncHint(ouiMail, strProperty);
            const bool blnFree = !objTicket.TicketID.isEmpty() && objTicket.GetPostItem().isNothing();
            return blnFree ? objTicket.TicketID : QString();
        },
        QString());
}

void subForget(const host::Item &ouiMail) { ouiMail.TryAddPropertyValue(strProperty, host::usertype::text, ""); }
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
} // namespace

namespace {
/// What the item needs to be a ticket: the row, and with it the number. Gives the number; empty where there can be no
/// row.
QString fncNumberItem(const host::Item &ouiMail, const host::PostItem &ouiPost, const QString &strEarlierID) {
    if (!strEarlierID.isEmpty())
        subSetOutlookValue(ouiPost, "Ticket ID", strEarlierID, valuetype::text);
    QString strTicketID = fncSaveRow(ouiPost, strEarlierID);
    if (strTicketID.isEmpty())
        return {};
    auto rowAlone = qScopeGuard([&] { earliertry::subNote(ouiMail, strTicketID); });
    subSetOutlookValue(ouiPost, "Ticket ID", strTicketID, valuetype::text);
    ouiPost.Sensitivity(host::sensitivity::personal);
    ouiPost.Close(host::closing::save);
    rowAlone.dismiss();
    return strTicketID;
}
} // namespace

QString fncCreateSingleTicket(const host::Item &ouiMail) try {
    const host::Item seen =
        host::snapshot(ouiMail, host::Questions({"MessageClass", "EntryID"}).properties({earliertry::strProperty}));
    const QString strClass = seen.MessageClass().toUpper();
    if (strClass != "IPM.NOTE" && strClass != "IPM.POST")
        return {};
    const WholeStep whole;
    subAssistantWorking(ouaOutlook);
    subFindTicketFolder();
    subTrace("Adding a new ticket to the folder " + oufTickets->Name());
    const QString strWork = fncWorkOf(seen);
    if (!earliertry::fncDropItem(strWork))
        return {};
    const host::PostItem ouiPost = fncNewTicketItem();
    if (ouiPost.isNothing())
        return {};
    // Where no ticket comes of it the message is tried again, so an item without a number would only come a second
    // time.
    auto unfinished = qScopeGuard([&] { Attempt([&] { ouiPost.Delete(); }); });
    // The item's first save is the one before its row: a client that dies behind it leaves these on it.
    subHint(ouiPost, strWorkProperty, strWork);
    subHint(ouiPost, strClaimProperty, cClaim::Own().ToString());
    subSetOutlookValue(ouiPost, "Created by", objSettings->CurrentResponsible->FullName, valuetype::text);
    subSetOutlookValue(ouiPost, "Created at", Clock::now(), valuetype::date);
    subNoteMissingFiles(ouiPost, subCopyAttachements(ouiMail, ouiPost));
    subFillTicketFromMail(ouiMail, ouiPost);
    const QString strEarlierID = earliertry::fncTicketID(seen);
    const QString strTicketID = fncNumberItem(ouiMail, ouiPost, strEarlierID);
    if (strTicketID.isEmpty())
        return {};
    unfinished.dismiss();
    subTrace("Setting flag on email that a ticket was created from!");
    if (!strEarlierID.isEmpty())
        earliertry::subForget(ouiMail);
    if (strClass == "IPM.NOTE")
        subMarkConverted(ouiMail, strTicketID);
    return strTicketID;
} catch (const Failure &failure) {
    subErrorHandler(failure, "fncCreateSingleTicket");
}

QString fncFinishSingleTicket(const host::Item &ouiMail, const host::PostItem &ouiPost, const QString &strRowID) try {
    subTrace("Finishing the ticket that another client began");
    return fncNumberItem(ouiMail, ouiPost, strRowID);
} catch (const Failure &failure) {
    subErrorHandler(failure, "fncFinishSingleTicket");
}

void subMarkConverted(const host::Item &ouiMail, const QString &strTicketID) {
    const host::MailItem oui(ouiMail);
    oui.TryFlagStatus(host::flagstatus::complete);
    oui.TryFlagRequest("Ticket # " + strTicketID + " created at " + formatDateTime(Clock::now()));
    oui.TryBillingInformation(strTicketID);
    Attempt([&] { oui.Save(); });
}

namespace {
/// The replies that are noted in the ticket's log, as its item says: as many as one property holds.
QStringList fncNotedReplies(const host::Item &ouiPost) {
    return fncHint(ouiPost, strRepliesProperty).split(u' ', Qt::SkipEmptyParts);
}

void subNoteReply(const host::Item &ouiPost, QStringList replies, const QString &strWork) {
    constexpr qsizetype mostReplies = 16;
    replies.append(strWork);
    subHint(ouiPost, strRepliesProperty,
            replies.sliced(std::max<qsizetype>(replies.size() - mostReplies, 0)).join(u' '));
}
} // namespace

void subAddEmailWorkItem(const QString &strTicketID, const QString &strSender, const QString &strWork) try {
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
        const QStringList noted = strWork.isEmpty() ? QStringList() : fncNotedReplies(ouiPost);
        if (noted.contains(strWork))
            return;
        if (!strWork.isEmpty())
            subNoteReply(ouiPost, noted, strWork);
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
