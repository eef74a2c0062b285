// Reading a ticket from its item. The form that people see is bound to the item's properties: what they type is found
// here.

#include "orvelle/ticket/ticket.h"

#include "orvelle/core/errorhandler.h"
#include "orvelle/core/process.h"
#include "orvelle/core/trace.h"
#include "orvelle/dialogs/dialogs.h"
#include "orvelle/dialogs/savetrouble.h"
#include "orvelle/reference/settings.h"
#include "orvelle/session/properties.h"
#include "orvelle/session/safeutils.h"
#include "platform/value/convert.h"

namespace {
QString textOf(const host::UserProperties &oups, const QString &strName) {
    return toText(fncGetOutlookValue(oups, strName, propertytype::text, ""));
}

DateTime dateOf(const host::UserProperties &oups, const QString &strName) {
    return toDateTime(fncGetOutlookValue(oups, strName, propertytype::date, Value()));
}

/// The list's own object; for a name that is in no list, a new one that carries the name alone.
Ref<cResponsible> responsibleOf(const QString &strName) {
    const auto dicList = objSettings->Responsibles->DicList;
    if (!strName.isEmpty() && dicList->Exists(strName))
        return dicList->Item(strName);
    const auto objPerson = Ref<cResponsible>::make();
    objPerson->FullName = strName;
    return objPerson;
}

/// The list's own object; for a description that is in no list, a blank one.
Ref<cProblemType> problemTypeOf(const QString &strDescription) {
    const auto dicList = objSettings->ProblemTypes->DicList;
    if (!strDescription.isEmpty() && dicList->Exists(strDescription))
        return dicList->Item(strDescription);
    return Ref<cProblemType>::make();
}

Currency costOf(const cResponsible &objPerson, const cWorkDescs &objWork) {
    return Currency::fromDouble(objPerson.Rate.toDouble() * (objWork.MinutesTotal() / 60.0));
}

void readBody(cTicket &objTicket, const host::Item &ouiTicket) {
    const SafeItem safe = fncSafePostItem(ouiTicket);
    objTicket.Description = safe.Body();
    objTicket.HTMLDescription = safe.HTMLBody();
}

void readCaller(cTicket &objTicket, const host::UserProperties &oups) {
    objTicket.Caller = Ref<cCaller>::make();
    objTicket.Caller->FullName = textOf(oups, "Caller name");
    objTicket.Caller->Email = textOf(oups, "Caller email");
    objTicket.Caller->Comment = textOf(oups, "Caller comment");
    objTicket.Caller->Telephone = textOf(oups, "Caller phone");
    objTicket.Caller->Category = textOf(oups, "Caller category");
}

/// The properties that `readSteps` looks for, and the first piece of the work log.
const QStringList readNames = {"Responsible",    "WorkDescriptionsCount", "WorkDescriptions0", "Problem Type",
                               "Date due",       "Custom Status",         "Ticket ID",         "Created at",
                               "Caller name",    "Caller email",          "Caller comment",    "Caller phone",
                               "Caller category"};

using ReadSteps = std::vector<std::function<void()>>;

/// Everything that is read once the item is known to be saved.
///
/// A property that can't be read comes back as its default. So the last step asks the item once more: where the host or
/// the item has gone in between, the record is not whole.
ReadSteps readSteps(cTicket &objTicket, const host::Item &ouiTicket, host::UserProperties &oups) {
    return {
        [&] {
            ouiTicket.readAhead({"Body", "HTMLBody"});
        },
        [&] { readBody(objTicket, ouiTicket); },
        [&] { objTicket.Closed = false; },
        [&] { oups = ouiTicket.UserProperties(); },
        [&] { oups.findAhead(readNames); },
        [&] { objTicket.Responsible = responsibleOf(textOf(oups, "Responsible")); },
        [&] { objTicket.WorkDescs->FromString(fncGetLongProperty(oups, "WorkDescriptions")); },
        [&] { objTicket.Rate = costOf(*objTicket.Responsible, *objTicket.WorkDescs); },
        [&] { objTicket.ProblemType = problemTypeOf(textOf(oups, "Problem Type")); },
        [&] { objTicket.DueDate = dateOf(oups, "Date due"); },
        [&] { objTicket.TicketStatus = textOf(oups, "Custom Status"); },
        [&] { objTicket.TicketID = textOf(oups, "Ticket ID"); },
        [&] { objTicket.DateCreated = dateOf(oups, "Created at"); },
        [&] { readCaller(objTicket, oups); },
        [&] { objTicket.Subject = ouiTicket.Subject(); },
    };
}

/// Runs every step, whatever the others did. Returns whether all of them worked.
bool runTolerant(const ReadSteps &steps) {
    bool whole = true;
    for (const auto &step : steps) {
        if (Attempt(step))
            whole = false;
    }
    return whole;
}

void tell(const QString &strFirst, const QString &strSecond, const Failure &failure) {
    subAssistantMessage(ouaOutlook, strFirst + strLineEnd + strSecond + strLineEnd + failure.description());
}

/// What people are told when an item can't be read. Anything unforeseen is reported, which ends the process.
void tellReadFailure(const Failure &failure) {
    switch (failure.number()) {
    case failures::itemChanged:
        return tell("Ticket has been changed by anothe user!", "Unable to save changes!", failure);
    case failures::itemGone:
        return tell("Ticket has been deleted!", "Unable to open!", failure);
    case failures::catastrophic:
        return;
    default:
        subErrorHandler(failure, "ReadFromOutlook");
    }
}
} // namespace

bool cTicket::ReadFromOutlook(const host::Item &ouiTicket) try {
    ouiTicket.readAhead({"Subject", "Importance", "Saved"});
    const QString strSubject = ouiTicket.Subject();
    subTrace("Reading Outlook values from ticket with subject line: " + strSubject);
    if (!fncSetupSafeUtils())
        return false;
    Subject = strSubject;
    TicketPriority = ouiTicket.Importance();
    host::UserProperties properties;
    const ReadSteps steps = readSteps(*this, ouiTicket, properties);
    if (!ouiTicket.Saved()) {
        if (const auto failure = Attempt([&] { ouiTicket.Save(); })) {
            subTellSaveTrouble(Saving::Item, "Unable to save current item!", *failure);
            return false;
        }
        subSaveWorked(Saving::Item);
        return runTolerant(steps);
    }
    for (const auto &step : steps)
        step();
    return true;
} catch (const Failure &failure) {
    tellReadFailure(failure);
    return false;
}
