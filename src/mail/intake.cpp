#include "mail/intake.h"

#include "core/dialogs.h"
#include "core/process.h"
#include "mail/confirmation.h"
#include "mail/createticket.h"
#include "mail/foldermonitor.h"
#include "outlook/properties.h"
#include "outlook/safeutils.h"
#include "reference/settings.h"
#include "ticket/ticketfolders.h"

#include <QScopeGuard>

namespace {
QString fncConfirmationTemplate() {
    return toText(objSettings->OtherSettings->GetValue("ConvertedEmailMessage", propertytype::text));
}

/// The ticket that the message answers; empty when it answers none.
QString fncAnsweredTicket(const host::Item &oui) {
    return fncUsesSubFolders() ? fncGetTicketIDFromSubject(oui.Subject()) : QString();
}

/// A store that is full or read-only makes every claim fail: one message is enough.
ProcessLocal<bool> blnClaimTrouble;

/// An item that went to another client and a store that is busy are the ordinary course of things.
void subTellClaimTrouble(const Failure &failure) {
    const bool blnTrouble = failure.number() == failures::noDiskSpace || failure.number() == failures::accessDenied;
    if (!blnTrouble || blnClaimTrouble)
        return;
    blnClaimTrouble = true;
    subAssistantMessage(ouaOutlook, failure.description());
}

/// The only lock between clients: of two that save the mark, one save fails. Returns whether it was won.
bool fncClaim(const host::Item &oui) {
    const auto failure = Attempt([&] {
        oui.BillingInformation(strWorkingMark);
        oui.Save();
    });
    if (failure)
        subTellClaimTrouble(*failure);
    return !failure;
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

/// Several clients may watch one folder: each took it when all found it empty. A reply has no claim, since its field
/// goes under the ticket as it came; so the one who saves this mark files it. The scan does not look at the mark, so
/// that the reply of a client that died here is filed by the next one that starts.
namespace filing {
constexpr char strProperty[] = "Orvelle files this reply";
constexpr qint32 hostText = 1;

void subMark(const host::Item &oui, const QString &strMark) {
    oui.UserProperties().Add(strProperty, hostText).setValue(strMark);
    oui.Save();
}

/// False for a reply that another client files or has filed. One that can't be marked is filed all the same.
bool fncBegin(const host::Item &oui) {
    bool blnFree = true;
    const auto failure = Attempt([&] {
        const host::UserProperty oup = oui.FindProperty(strProperty);
        blnFree = oup.isNothing() || toText(oup.value()).isEmpty();
        if (blnFree)
            subMark(oui, strWorkingMark);
    });
    return blnFree && !(failure && host::isChangedElsewhere(*failure));
}

/// The mark goes last: a reply that somebody takes back into the folder is a new one there.
void subEnd(const host::Item &oui, const host::MAPIFolder &oufReceived) {
    const auto failure = Attempt([&] { oui.Move(oufReceived); });
    // Somebody has put it elsewhere in the meantime.
    if (failure && !host::isChangedElsewhere(*failure))
        throw Failure(*failure);
    Attempt([&] { subMark(oui, ""); });
}
} // namespace filing

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

bool fncUsesSubFolders() {
    return toDouble(objSettings->OtherSettings->GetValue("EmailSubFolders", propertytype::integer)) == 1;
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

bool fncIsMailOrPost(const host::Item &oui) {
    constexpr qsizetype classLength = 8;
    const QString strClass = oui.MessageClass().left(classLength).toUpper();
    return (strClass == "IPM.NOTE" || strClass == "IPM.POST") && oui.Subject() != strFlagSubject;
}

bool fncIsNewMailItem(const host::Item &oui) {
    return AttemptOr([&] { return !oui.isNothing() && fncIsMailOrPost(oui) && oui.BillingInformation().isEmpty(); },
                     false);
}

void subHandleScannedItem(const host::Item &oui, const host::MAPIFolder &oufMonitored) {
    if (!fncClaim(oui))
        return;
    const QString strTicketID = fncAnsweredTicket(oui);
    if (strTicketID.isEmpty()) {
        subConvert(oui, !fncConfirmationTemplate().trimmed().isEmpty(), oufMonitored);
        return;
    }
    // The work row is written even where the message can't be filed.
    host::Item ouiFiled = oui;
    const host::MAPIFolder oufReceived = fncGetTicketSubFolder(strTicketID, receivedFolder);
    if (oufReceived)
        Attempt([&] { ouiFiled = oui.Move(oufReceived); });
    subAddEmailWorkItem(strTicketID, fncGetSenderName(ouiFiled));
}

void subHandleNewItem(const host::Item &oui, const host::MAPIFolder &oufMonitored) {
    constexpr qsizetype shortestTemplate = 4;
    if (!AttemptOr([&] { return fncIsMailOrPost(oui); }, false))
        return;
    const QString strTicketID = fncAnsweredTicket(oui);
    if (strTicketID.isEmpty()) {
        if (fncIsUnclaimed(oui) && fncClaim(oui))
            subConvert(oui, fncConfirmationTemplate().size() >= shortestTemplate, oufMonitored);
        return;
    }
    const host::MAPIFolder oufReceived = fncGetTicketSubFolder(strTicketID, receivedFolder);
    if (oufReceived.isNothing() || !filing::fncBegin(oui))
        return;
    subAddEmailWorkItem(strTicketID, fncGetSenderName(oui));
    filing::subEnd(oui, oufReceived);
}

void subMoveToConverted(const host::Item &ouiMail, const host::MAPIFolder &ouf) {
    constexpr char converted[] = "Converted";
    Attempt([&] {
        host::MAPIFolder oufConverted;
        Attempt([&] { oufConverted = ouf.Folders(converted); });
        // The name has to be that very one: "converted" is a folder of somebody's own.
        const bool blnMissing = oufConverted.isNothing() || oufConverted.Name() != converted;
        // Another copy may make it in between; then the adding fails, and it is there.
        if (blnMissing && Attempt([&] { oufConverted = ouf.Folders().Add(converted); }))
            oufConverted = ouf.Folders(converted);
        ouiMail.Move(oufConverted);
    });
}
