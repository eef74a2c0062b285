// Writing a ticket to its item, and finding the item again. What is written here appears in the form.

#include "orvelle/host/constants.h"
#include "orvelle/ticket/ticket.h"

#include "orvelle/core/errorhandler.h"
#include "orvelle/core/process.h"
#include "orvelle/core/trace.h"
#include "orvelle/database/connection.h"
#include "orvelle/dialogs/dialogs.h"
#include "orvelle/host/folders.h"
#include "orvelle/reference/settings.h"
#include "orvelle/reference/texts.h"
#include "orvelle/session/properties.h"
#include "orvelle/session/session.h"
#include "platform/value/random.h"

namespace {

void subSetText(const host::Item &ouiTicket, const QString &strName, const QString &strText) {
    subSetOutlookValue(ouiTicket, strName, strText, valuetype::text);
}

void subSetDate(const host::Item &ouiTicket, const QString &strName, DateTime dteValue) {
    subSetOutlookValue(ouiTicket, strName, dteValue, valuetype::date);
}

void subWriteCaller(const host::Item &ouiTicket, const cCaller &objCaller) {
    subSetText(ouiTicket, "Caller name", objCaller.FullName);
    subSetText(ouiTicket, "Caller email", objCaller.Email);
    subSetText(ouiTicket, "Caller comment", objCaller.Comment);
    subSetText(ouiTicket, "Caller phone", objCaller.Telephone);
    subSetText(ouiTicket, "Caller category", objCaller.Category);
}

void subWriteProperties(const host::Item &ouiTicket, const cTicket &objTicket) {
    subSetDate(ouiTicket, "Date due", objTicket.DueDate);
    subSetText(ouiTicket, "Custom Status", objTicket.TicketStatus);
    if (objTicket.ProblemType) {
        subSetText(ouiTicket, "Problem Type", objTicket.ProblemType->ProblemDescription);
        subSetText(ouiTicket, "Problem category", objTicket.ProblemType->ProblemCategory);
    }
    subSetText(ouiTicket, "Ticket ID", objTicket.TicketID);
    subSetDate(ouiTicket, "Created at", objTicket.DateCreated);
    if (objTicket.Responsible) {
        subSetText(ouiTicket, "Created by", objTicket.Responsible->FullName);
        subSetText(ouiTicket, "Responsible", objTicket.Responsible->FullName);
    }
    if (objTicket.Caller)
        subWriteCaller(ouiTicket, *objTicket.Caller);
    subSetText(ouiTicket, "Ticket", objTicket.ToString());
    subFixLongProperty(ouiTicket, objTicket.WorkDescs->ToString(), "WorkDescriptions", false);
}

/// The host keeps the old look of a body until the format has gone to rich text and back, and that costs the text: so
/// it is set twice.
void subWriteBody(const host::Item &ouiTicket, const QString &strHTML) {
    ouiTicket.HTMLBody(strHTML);
    if (fncHasBodyFormat()) {
        ouiTicket.BodyFormat(host::bodyformat::richText);
        ouiTicket.BodyFormat(host::bodyformat::html);
    }
    ouiTicket.HTMLBody(strHTML);
}

void subWriteItem(const host::Item &item, const cTicket &objTicket) {
    subWriteProperties(item, objTicket);
    item.Subject(objTicket.Subject);
    item.Importance(objTicket.TicketPriority);
    const QString &strHTML = objTicket.HTMLDescription;
    subWriteBody(item, strHTML.isEmpty() ? objSettings->NewTicketHTML(objTicket.Description) : strHTML);
}

bool fncRandomUnRead() { return roundHalfEven(Random::next() * 100) > 50; }
} // namespace

void cTicket::SaveToOutlook(bool RandomRead, bool blnDisplay, host::Item &ouiTicket) const try {
    subTrace("Saving values to Outlook object. Subject  = " + Subject);
    const bool given = !ouiTicket.isNothing();
    host::Item item = ouiTicket;
    if (!given) {
        const auto failure = Attempt([&] { item = oufTickets->AddItem(strTicketMessageClass); });
        if (item.isNothing()) {
            subAssistantMessage(ouaOutlook, fncFormsCacheMessage(failure ? failure->description() : QString()));
            return;
        }
    }
    subWriteItem(item, *this);
    if (given)
        item.UnRead(true);
    else if (RandomRead)
        item.UnRead(fncRandomUnRead());
    if (blnDisplay) {
        item.Save();
        item.Display();
    } else {
        item.Close(host::closing::save);
    }
} catch (const Failure &failure) {
    subErrorHandler(failure, "SaveToOutlook");
}

void cTicket::SaveBoth(const host::Item &ouiTicket) {
    subSetupConnection();
    // Other clients wait here, so that of two that write to one ticket the second meets what the first has saved.
    ado::Transaction transaction(**adoConnection);
    const auto adrTickets = OpenRow();
    if (!adrTickets)
        throw Failure(failures::unspecified);
    WriteRow(adrTickets);
    WorkDescs->AppendToDB(TicketID);
    subTrace("Saving values to Outlook object. Subject  = " + Subject);
    subWriteItem(ouiTicket, *this);
    ouiTicket.UnRead(true);
    ouiTicket.Close(host::closing::save);
    transaction.commit();
}

host::Item cTicket::GetPostItem() const {
    return AttemptOr([&] { return oufTickets->FindItem("[Ticket ID] =" + fncQuoted(TicketID)); }, host::Item());
}
