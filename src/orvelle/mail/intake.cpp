#include "orvelle/mail/intake.h"

#include "orvelle/core/process.h"
#include "orvelle/dialogs/dialogs.h"
#include "orvelle/dialogs/savetrouble.h"
#include "orvelle/host/snapshot.h"
#include "orvelle/mail/claim.h"
#include "orvelle/mail/confirmation.h"
#include "orvelle/mail/createticket.h"
#include "orvelle/mail/foldermonitor.h"
#include "orvelle/mail/reply.h"
#include "orvelle/reference/settings.h"
#include "orvelle/session/properties.h"
#include "orvelle/session/safeutils.h"
#include "orvelle/ticket/ticketfolders.h"

#include <QScopeGuard>

namespace {
QString fncConfirmationTemplate() {
    return toText(objSettings->OtherSettings->GetValue("ConvertedEmailMessage", valuetype::text));
}

/// An item that went to another client and a store that is busy are the ordinary course of things.
void subTellClaimTrouble(const Failure &failure) {
    if (failure.number() == failures::noDiskSpace || failure.number() == failures::accessDenied)
        subTellSaveTrouble(Saving::Claim, {}, failure);
}

/// The only lock between clients: of two that save the mark, one save fails. Returns whether it was won.
bool fncClaim(const host::Item &oui, const QString &strWork) {
    const auto failure = Attempt([&] {
        oui.BillingInformation(strWorkingMark);
        subHint(oui, strClaimProperty, cClaim::Own().ToString());
        subHint(oui, strWorkProperty, strWork);
        oui.Save();
    });
    if (failure)
        subTellClaimTrouble(*failure);
    else
        subSaveWorked(Saving::Claim);
    return !failure;
}

/// What decides about an item, as it was when it was met.
host::Item fncSeen(const host::Item &oui) {
    return host::snapshot(oui, {"MessageClass", "Subject", "BillingInformation", "EntryID"});
}

bool fncIsUnclaimed(const host::Item &oui) {
    return AttemptOr([&] { return oui.BillingInformation().isEmpty(); }, false);
}

void subReleaseClaim(const host::Item &oui) {
    Attempt([&] {
        oui.BillingInformation("");
        oui.Save();
    });
}

/// From the claimed message to its place in "Converted".
void subConvert(const host::Item &oui, bool blnConfirm, const host::MAPIFolder &oufMonitored) {
    // Also a failure report, which ends the process, frees the claim: the message is tried again at the next scan.
    auto release = qScopeGuard([&] { subReleaseClaim(oui); });
    const QString strTicketID = fncCreateSingleTicket(oui);
    if (strTicketID.isEmpty())
        return;
    release.dismiss();
    if (blnConfirm)
        subSendConfirmation(oui, strTicketID, "");
    subKeepCopyUnderTicket(oui, strTicketID);
    subMoveToConverted(oui, oufMonitored);
}
} // namespace

namespace {
/// As much of the class as tells mails and posts from other items.
QString fncClassStart(const host::Item &oui) {
    constexpr qsizetype classLength = 8;
    return oui.MessageClass().left(classLength).toUpper();
}
} // namespace

bool fncUsesSubFolders() {
    return toDouble(objSettings->OtherSettings->GetValue("EmailSubFolders", valuetype::integer)) == 1;
}

void subKeepCopyUnderTicket(const host::Item &oui, const QString &strTicketID) {
    if (!fncUsesSubFolders())
        return;
    const host::MAPIFolder oufReceived = fncGetTicketSubFolder(strTicketID, receivedFolder);
    if (oufReceived.isNothing())
        return;
    Attempt([&] {
        const host::Item ouiCopy = oui.Copy();
        // A copy that stayed beside the mail would be one more mail of its folder.
        if (Attempt([&] { ouiCopy.Move(oufReceived); }))
            ouiCopy.Delete();
    });
}

bool fncIsFlagItem(const host::Item &oui) {
    return fncClassStart(oui) == "IPM.POST" && oui.Subject() == strFlagSubject;
}

bool fncIsMailOrPost(const host::Item &oui) {
    const QString strClass = fncClassStart(oui);
    return strClass == "IPM.NOTE" || (strClass == "IPM.POST" && oui.Subject() != strFlagSubject);
}

bool fncIsNewMailItem(const host::Item &oui) {
    const host::Item seen = fncSeen(oui);
    return AttemptOr([&] { return !seen.isNothing() && fncIsMailOrPost(seen) && fncIsUnclaimed(seen); }, false);
}

bool fncConfirms() { return !fncConfirmationTemplate().trimmed().isEmpty(); }

void subConvertClaimed(const host::Item &oui, const host::MAPIFolder &oufMonitored) {
    subConvert(oui, fncConfirms(), oufMonitored);
}

void subHandleScannedItem(const host::Item &oui, const host::MAPIFolder &oufMonitored) {
    const TellOnce once;
    const WholeStep whole;
    const host::Item seen = fncSeen(oui);
    const QString strTicketID = fncAnsweredTicket(seen);
    if (strTicketID.isEmpty()) {
        if (fncClaim(oui, fncWorkOf(seen)))
            subConvertClaimed(oui, oufMonitored);
        return;
    }
    const QString strWork = fncWorkOfReply(oui);
    subHint(oui, strFilingProperty, strWorkingMark);
    if (!fncClaim(oui, strWork))
        return;
    // The work row is written even where the message can't be filed.
    host::Item ouiFiled = oui;
    const host::MAPIFolder oufReceived = fncGetTicketSubFolder(strTicketID, receivedFolder);
    if (oufReceived)
        Attempt([&] { ouiFiled = oui.Move(oufReceived); });
    subAddEmailWorkItem(strTicketID, fncGetSenderName(ouiFiled), strWork);
    subEndFiling(ouiFiled);
}

void subHandleNewItem(const host::Item &oui, const host::MAPIFolder &oufMonitored) {
    constexpr qsizetype shortestTemplate = 4;
    const TellOnce once;
    // The item may have waited for its turn, and have changed meanwhile.
    const host::Item seen = fncSeen(oui);
    if (!AttemptOr([&] { return fncIsMailOrPost(seen); }, false))
        return;
    const WholeStep whole;
    const QString strTicketID = fncAnsweredTicket(seen);
    if (strTicketID.isEmpty()) {
        if (fncIsUnclaimed(seen) && fncClaim(oui, fncWorkOf(seen)))
            subConvert(oui, fncConfirmationTemplate().size() >= shortestTemplate, oufMonitored);
        return;
    }
    const host::MAPIFolder oufReceived = fncGetTicketSubFolder(strTicketID, receivedFolder);
    if (oufReceived.isNothing())
        return;
    const QString strWork = fncWorkOfReply(oui);
    if (!fncBeginFiling(oui, strWork))
        return;
    subAddEmailWorkItem(strTicketID, fncGetSenderName(oui), strWork);
    subFileReply(oui, oufReceived);
}

void subMoveToConverted(const host::Item &ouiMail, const host::MAPIFolder &ouf) {
    constexpr char converted[] = "Converted";
    Attempt([&] {
        host::MAPIFolder oufConverted;
        // The name has to be that very one: "converted" is a folder of somebody's own.
        Attempt([&] { oufConverted = ouf.FolderNamed(converted); });
        // Another copy may make it in between; then the adding fails, and it is there.
        if (oufConverted.isNothing() && Attempt([&] { oufConverted = ouf.AddFolder(converted); }))
            oufConverted = ouf.Folders(converted);
        ouiMail.Move(oufConverted);
    });
}
