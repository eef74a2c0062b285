// The ticket run: a ticket from the mail that the person has selected or opened.

#include "orvelle/core/errorhandler.h"
#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"
#include "orvelle/core/trace.h"
#include "orvelle/dialogs/dialogs.h"
#include "orvelle/host/constants.h"
#include "orvelle/mail/createticket.h"
#include "orvelle/mail/intake.h"
#include "orvelle/mail/reply.h"
#include "orvelle/program/main.h"
#include "orvelle/reference/settings.h"
#include "orvelle/reference/texts.h"
#include "orvelle/session/safeutils.h"
#include "orvelle/ticket/ticketfolders.h"
#include "orvelle/ticketfolder/getsettings.h"

namespace {

host::Item fncSelectedItem(const host::Handle &window) {
    if (window.isNothing())
        return {};
    const QString strType = window.typeName();
    if (strType == "Explorer") {
        const host::Selection selection = host::Explorer(window).Selection();
        return selection.Count() == 1 ? selection.Item(1) : host::Item();
    }
    if (strType == "Inspector")
        return host::Inspector(window).CurrentItem();
    return {};
}

/// Files the mail under its ticket and gives the question to ask; empty when it could not be filed.
QString fncFileUnderTicket(const host::Item &oui, const QString &strTicketID, const host::Handle &window) {
    const WholeStep whole;
    const host::MAPIFolder ouf = fncGetTicketSubFolder(strTicketID, receivedFolder);
    if (ouf.isNothing())
        return {};
    oui.Move(ouf);
    // A host that has closed the mail's window itself shows the one behind it, which is somebody's work.
    if (window.typeName() == "Inspector" && ouaOutlook->ActiveWindow() == window)
        ouaOutlook->ActiveInspector().Close(host::closing::discard);
    return LNGEMAILMOVEDTORECIEVEDSF;
}

/// Makes the ticket, keeps a copy of the mail under it, and gives the question to ask.
QString fncMakeTicket(const host::Item &oui, QString &strTicketID) {
    const WholeStep whole;
    strTicketID = fncCreateSingleTicket(oui);
    if (strTicketID.isEmpty())
        return {};
    subKeepCopyUnderTicket(oui, strTicketID);
    return LNGTICKETCREATEDOPENNOW;
}

bool fncExplorerOnFolder() {
    const QString strEntryID = oufTickets->EntryID();
    const host::Explorers explorers = ouaOutlook->Explorers();
    for (qint32 i = explorers.Count(); i >= 1; --i) {
        if (AttemptOr([&] { return explorers.Item(i).CurrentFolder().EntryID() == strEntryID; }, false))
            return true;
    }
    return false;
}

void subOpenTicket(const QString &strTicketID) {
    constexpr qint32 maximised = 0;
    if (!fncExplorerOnFolder()) {
        const host::Explorer oue = ouaOutlook->Explorers().Add(oufTickets, 1);
        oue.Display();
        oue.WindowState(maximised);
        oue.Activate();
        subSetupOutlookMonitor(oue);
        subGetSettings();
    }
    // A reply can name a ticket that is closed, or none at all.
    const host::Item oui = oufTickets->FindItem("[Ticket ID] = " + fncQuoted(strTicketID));
    if (oui)
        oui.Display();
}

void subHandle(const host::Item &oui, const host::Handle &window) {
    QString strTicketID = fncAnsweredTicket(oui);
    const QString strQuestion =
        strTicketID.isEmpty() ? fncMakeTicket(oui, strTicketID) : fncFileUnderTicket(oui, strTicketID, window);
    if (!strQuestion.isEmpty() && fncAssistantYesNo(ouaOutlook, strQuestion, 4) == window::Yes)
        subOpenTicket(strTicketID);
}
} // namespace

void subCreateTicketFromSelected() try {
    subTrace("Attempting to find the currently selected email to create a ticket from");
    const host::Handle window = ouaOutlook->ActiveWindow();
    const host::Item oui = fncSelectedItem(window);
    if (oui)
        subHandle(oui, window);
    subCleanupSafeUtils();
} catch (const Failure &failure) {
    subErrorHandler(failure, "subCreateTicketFromSelected");
}
