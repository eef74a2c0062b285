// A ticket with everything in it, and tickets as texts that tests compare.
#pragma once

#include "orvelle/ticket/ticket.h"
#include "platform/value/convert.h"

/// Created at noon of a Tuesday in March 2026; its type and its responsible are in no list.
inline cTicket fullTicket() {
    cTicket ticket;
    ticket.Subject = "Printer's on fire";
    ticket.Description = "It burns";
    ticket.HTMLDescription = "<html><body><p>It burns: å 漢</p></body></html>";
    ticket.TicketPriority = 2;
    ticket.TicketStatus = "Open";
    ticket.DateCreated = DateTime{DateTime::fromDate(2026, 3, 3).days + 0.5};
    ticket.DueDate = DateTime::fromDate(2026, 3, 4);
    ticket.ProblemType = Ref<cProblemType>::make();
    ticket.ProblemType->ProblemDescription = "Printer";
    ticket.ProblemType->ProblemCategory = "Hardware";
    ticket.Responsible = Ref<cResponsible>::make();
    ticket.Responsible->FullName = "Ann";
    ticket.Caller = Ref<cCaller>::make();
    ticket.Caller->FullName = "Cal O'Caller";
    ticket.Caller->Email = "c@x";
    ticket.Caller->Comment = "kind";
    ticket.Caller->Telephone = "1";
    ticket.Caller->Category = "VIP";
    return ticket;
}

inline void addWork(const cTicket &ticket, const QString &description, qint16 minutes) {
    const auto work = Ref<cWorkDescription>::make();
    work->Description = description;
    work->WorkDate = DateTime::fromDate(2026, 3, 3);
    work->Minutes = minutes;
    work->User = "Ann";
    ticket.WorkDescs->dicWorkDesc->Add(QString::number(ticket.WorkDescs->dicWorkDesc->Count()), work);
}

/// Every field, "Nothing" for a reference that is none.
inline QStringList fieldsOf(const cTicket &ticket) {
    QStringList all{ticket.TicketID,        ticket.Subject,      ticket.Description,
                    ticket.HTMLDescription, ticket.TicketStatus, ticket.WorkDescs->ToString()};
    for (const Value &value : ValueList{ticket.TicketPriority, ticket.DateCreated, ticket.DateClosed, ticket.DueDate,
                                        ticket.Closed, ticket.Rate})
        all << toText(value);
    all << (ticket.ProblemType ? ticket.ProblemType->ProblemDescription : "Nothing")
        << (ticket.Responsible ? ticket.Responsible->FullName : "Nothing");
    if (!ticket.Caller)
        return all << "Nothing";
    return all << ticket.Caller->FullName << ticket.Caller->Email << ticket.Caller->Comment << ticket.Caller->Telephone
               << ticket.Caller->Category;
}
