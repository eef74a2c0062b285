#include "orvelle/mail/reply.h"

#include "orvelle/database/connection.h"
#include "orvelle/mail/claim.h"
#include "orvelle/mail/intake.h"
#include "orvelle/reference/settings.h"
#include "orvelle/reference/texts.h"
#include "orvelle/session/properties.h"
#include "orvelle/ticket/ticket.h"
#include "orvelle/ticket/ticketfolders.h"

namespace {
bool fncNeedsTicket() {
    return toDouble(objSettings->OtherSettings->GetValue("RepliesNeedTicket", valuetype::integer)) == 1;
}
} // namespace

bool fncHasTicketRow(const QString &strTicketID) {
    const auto adrTickets = fncReturnRecordset(
        "Select intTicketID from tblTickets where strTicketID = " + fncQuoted(strTicketID), true, true, false);
    return adrTickets && !adrTickets->IsEOF();
}

bool fncIsTicket(const QString &strTicketID) {
    cTicket objTicket;
    objTicket.TicketID = strTicketID;
    return !objTicket.GetPostItem().isNothing() || fncHasTicketRow(strTicketID);
}

QString fncAnsweredTicket(const host::Item &oui) {
    if (!fncUsesSubFolders())
        return {};
    QString strTicketID = fncGetTicketIDFromSubject(oui.Subject());
    if (!strTicketID.isEmpty() && fncNeedsTicket() && !fncIsTicket(strTicketID))
        strTicketID.clear();
    return strTicketID;
}

bool fncBeginFiling(const host::Item &oui, const QString &strWork) {
    bool blnFree = true;
    const auto failure = Attempt([&] {
        blnFree = fncHint(oui, strFilingProperty).isEmpty();
        if (!blnFree)
            return;
        subHint(oui, strFilingProperty, strWorkingMark);
        subHint(oui, strClaimProperty, cClaim::Own().ToString());
        subHint(oui, strWorkProperty, strWork);
        oui.Save();
    });
    return blnFree && !(failure && host::isChangedElsewhere(*failure));
}

void subFileReply(const host::Item &oui, const host::MAPIFolder &oufReceived) {
    const auto failure = Attempt([&] { oui.Move(oufReceived); });
    if (failure && !host::isChangedElsewhere(*failure))
        throw Failure(*failure);
    subEndFiling(oui);
}

void subEndFiling(const host::Item &oui) {
    Attempt([&] {
        subHint(oui, strFilingProperty, "");
        oui.Save();
    });
}
