/// `cTicket`: the record through which a ticket passes between its two homes, the item in the ticket folder and the row
/// of `tblTickets`.
///
/// A record is a short-lived copy: it is filled from one home, written to the other and dropped. While a ticket is
/// open the item is the master and each save overwrites the row with it; once it is closed the row is the master.
#pragma once

#include "orvelle/host/items.h"
#include "orvelle/reference/callers.h"
#include "orvelle/reference/problemtypes.h"
#include "orvelle/reference/responsibles.h"
#include "orvelle/ticket/worklog.h"
#include "platform/value/currency.h"
#include "platform/value/datetime.h"
#include "platform/value/ref.h"

namespace ado {
class Recordset;
}

/// The message class of a ticket item.
inline constexpr auto strTicketMessageClass = "IPM.Post.HelpDesk.Ticket.8";

class cTicket {
  public:
    cTicket();

    QString HTMLDescription;
    QString Description;
    QString Subject;
    Ref<cProblemType> ProblemType;
    /// The record's own copy; never an object of the list of callers.
    Ref<cCaller> Caller;
    /// The item's importance: 0 low, 1 normal, 2 high.
    qint32 TicketPriority = 0;
    DateTime DateCreated;
    /// No date until the ticket is closed.
    DateTime DateClosed;
    Ref<cResponsible> Responsible;
    bool Closed = false;
    /// What the ticket has cost so far; no price of an hour.
    Currency Rate;
    /// The row's number as decimal text; empty until the first `SaveToDB`.
    QString TicketID;
    QString TicketStatus;
    Ref<cWorkDescs> WorkDescs;
    DateTime DueDate;

    /// Fills the record from the item; an item with unsaved changes is saved first. The person is told of what went
    /// wrong. Returns whether the record is whole.
    ///
    /// REQUIRES of the caller: a record that is not whole is not written over a row that exists. A new ticket has none,
    /// so its record may be written either way.
    [[nodiscard]] bool ReadFromOutlook(const host::Item &ouiTicket);
    /// Writes the record to the item, or to a new item of the ticket folder when there is none; the caller's reference
    /// stays Nothing then. With `blnDisplay` the item is saved and shown, otherwise closed with saving. A given item
    /// comes out unread.
    void SaveToOutlook(bool RandomRead, bool blnDisplay, host::Item &ouiTicket) const;
    /// Fills the record from the row that the recordset stands on. A Null where none may be ends the reading: what was
    /// read stays.
    void ReadFromDB(const Ref<ado::Recordset> &adrRecord);
    /// Writes the row, all its columns, and appends the work rows that are new. A ticket that has no row gets one, and
    /// one without a number gets the row's.
    void SaveToDB();
    /// Deletes the row of a ticket that can get no item. Fails where the database can't be written.
    void TakeBackRow() const;
    /// `SaveToDB` and `SaveToOutlook` of a ticket that has both and is not shown, without a report. Where the item
    /// can't be saved, the row is taken back. Fails as the one that can't be saved; with 0x80040109 or 0x8004010A where
    /// somebody else has saved the item, or taken it away, since it was opened.
    void SaveBoth(const host::Item &ouiTicket);
    /// The plain-text digest.
    [[nodiscard]] QString ToString() const;
    /// The page for a mail to the caller (1), to the responsible (2) or for printing (3).
    [[nodiscard]] QString ToHTML(qint32 OutputOption) const;
    /// The ticket folder's item of this number, or Nothing.
    [[nodiscard]] host::Item GetPostItem() const;

  private:
    [[nodiscard]] Ref<ado::Recordset> OpenRow() const;
    void WriteRow(const Ref<ado::Recordset> &adrTickets);
};
