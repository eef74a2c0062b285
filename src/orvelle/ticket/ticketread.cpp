// Reading a ticket from its item. The form that people see is bound to the item's properties: what they type is found
// here.

#include "orvelle/ticket/ticket.h"

#include "orvelle/core/errorhandler.h"
#include "orvelle/core/process.h"
#include "orvelle/core/trace.h"
#include "orvelle/dialogs/dialogs.h"
#include "orvelle/dialogs/savetrouble.h"
#include "orvelle/host/snapshot.h"
#include "orvelle/reference/settings.h"
#include "orvelle/session/properties.h"
#include "orvelle/session/safeutils.h"
#include "platform/value/convert.h"

namespace {
constexpr char strWorkLog[] = "WorkDescriptions";

QString fncTextOf(const host::Item &seen, const QString &strName) {
    return toText(fncGetOutlookValue(seen, strName, valuetype::text, ""));
}

DateTime fncDateOf(const host::Item &seen, const QString &strName) {
    return toDateTime(fncGetOutlookValue(seen, strName, valuetype::date, Value()));
}

/// The list's own object; for a name that is in no list, a new one that carries the name alone.
Ref<cResponsible> fncResponsibleOf(const QString &strName) {
    const auto dicList = objSettings->Responsibles->DicList;
    if (!strName.isEmpty() && dicList->Exists(strName))
        return dicList->Item(strName);
    const auto objPerson = Ref<cResponsible>::make();
    objPerson->FullName = strName;
    return objPerson;
}

/// The list's own object; for a description that is in no list, a blank one.
Ref<cProblemType> fncProblemTypeOf(const QString &strDescription) {
    const auto dicList = objSettings->ProblemTypes->DicList;
    if (!strDescription.isEmpty() && dicList->Exists(strDescription))
        return dicList->Item(strDescription);
    return Ref<cProblemType>::make();
}

Currency fncCostOf(const cResponsible &objPerson, const cWorkDescs &objWork) {
    return Currency::fromDouble(objPerson.Rate.toDouble() * (objWork.MinutesTotal() / 60.0));
}

void subReadBody(cTicket &objTicket, const host::Item &ouiTicket) {
    const SafeItem safe = fncSafePostItem(ouiTicket);
    objTicket.Description = safe.Body();
    objTicket.HTMLDescription = safe.HTMLBody();
}

void subReadCaller(cTicket &objTicket, const host::Item &seen) {
    objTicket.Caller = Ref<cCaller>::make();
    objTicket.Caller->FullName = fncTextOf(seen, "Caller name");
    objTicket.Caller->Email = fncTextOf(seen, "Caller email");
    objTicket.Caller->Comment = fncTextOf(seen, "Caller comment");
    objTicket.Caller->Telephone = fncTextOf(seen, "Caller phone");
    objTicket.Caller->Category = fncTextOf(seen, "Caller category");
}

/// All that `readSteps` reads. The subject is the last.
host::Questions fncQuestions() {
    return host::Questions({"Body", "HTMLBody"})
        .propertyCount()
        .properties(fncLongPropertyStart(strWorkLog))
        .properties({"Responsible", "Problem Type", "Date due", "Custom Status", "Ticket ID", "Created at",
                     "Caller name", "Caller email", "Caller comment", "Caller phone", "Caller category"})
        .members({"Subject"});
}

using ReadSteps = std::vector<std::function<void()>>;

/// Everything that is read once the item is known to be saved.
///
/// A property that can't be read comes back as its default. So the last step looks at the item's last answer: where the
/// host or the item has gone in between, the record is not whole.
ReadSteps fncReadSteps(cTicket &objTicket, const host::Item &ouiTicket, host::Item &seen) {
    return {
        [&] { seen = host::snapshot(ouiTicket, fncQuestions()); },
        [&] { subReadBody(objTicket, seen); },
        [&] { objTicket.Closed = false; },
        // One property that can't be read is a blank; all of them are a failure.
        [&] { static_cast<void>(seen.UserProperties().Count()); },
        [&] { objTicket.Responsible = fncResponsibleOf(fncTextOf(seen, "Responsible")); },
        [&] { objTicket.WorkDescs->FromString(fncGetLongProperty(ouiTicket, seen, strWorkLog)); },
        [&] { objTicket.Rate = fncCostOf(*objTicket.Responsible, *objTicket.WorkDescs); },
        [&] { objTicket.ProblemType = fncProblemTypeOf(fncTextOf(seen, "Problem Type")); },
        [&] { objTicket.DueDate = fncDateOf(seen, "Date due"); },
        [&] { objTicket.TicketStatus = fncTextOf(seen, "Custom Status"); },
        [&] { objTicket.TicketID = fncTextOf(seen, "Ticket ID"); },
        [&] { objTicket.DateCreated = fncDateOf(seen, "Created at"); },
        [&] { subReadCaller(objTicket, seen); },
        [&] { objTicket.Subject = seen.Subject(); },
    };
}

/// Runs every step, whatever the others did. Returns whether all of them worked.
bool fncRunTolerant(const ReadSteps &steps) {
    bool whole = true;
    for (const auto &step : steps) {
        if (Attempt(step))
            whole = false;
    }
    return whole;
}

void subTell(const QString &strFirst, const QString &strSecond, const Failure &failure) {
    subAssistantMessage(ouaOutlook, strFirst + strLineEnd + strSecond + strLineEnd + failure.description());
}

/// What people are told when an item can't be read. Anything unforeseen is reported, which ends the process.
void subTellReadFailure(const Failure &failure) {
    switch (failure.number()) {
    case failures::itemChanged:
        return subTell("Ticket has been changed by anothe user!", "Unable to save changes!", failure);
    case failures::itemGone:
        return subTell("Ticket has been deleted!", "Unable to open!", failure);
    case failures::catastrophic:
        return;
    default:
        subErrorHandler(failure, "ReadFromOutlook");
    }
}
} // namespace

bool cTicket::ReadFromOutlook(const host::Item &ouiTicket) try {
    const host::Item met = host::snapshot(ouiTicket, {"Subject", "Importance", "Saved"});
    const QString strSubject = met.Subject();
    subTrace("Reading Outlook values from ticket with subject line: " + strSubject);
    if (!fncSetupSafeUtils())
        return false;
    Subject = strSubject;
    TicketPriority = met.Importance();
    host::Item seen;
    const ReadSteps steps = fncReadSteps(*this, ouiTicket, seen);
    if (!met.Saved()) {
        if (const auto failure = Attempt([&] { ouiTicket.Save(); })) {
            subTellSaveTrouble(Saving::Item, "Unable to save current item!", *failure);
            return false;
        }
        subSaveWorked(Saving::Item);
        return fncRunTolerant(steps);
    }
    for (const auto &step : steps)
        step();
    return true;
} catch (const Failure &failure) {
    subTellReadFailure(failure);
    return false;
}
