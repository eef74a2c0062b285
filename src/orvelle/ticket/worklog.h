/// The work log of a ticket: who did what on it, when and for how long.
///
/// The log lives in three forms: rows in memory, one text on the item, and rows of `tblWork`. The text is the master of
/// an open ticket; the table only grows.
#pragma once

#include "platform/scripting/dictionary.h"
#include "platform/value/ref.h"
#include "platform/value/value.h"

namespace controls {
class Control;
}

/// One row of the log. As a text: description, date, minutes and user, parted by tabs.
class cWorkDescription {
  public:
    DateTime WorkDate;
    /// The person's name; no reference to a responsible.
    QString User;
    qint16 Minutes = 0;
    QString Description;

    [[nodiscard]] QString ToString() const;
    /// Appends the row to a list box: description, date, minutes, user.
    void AddRow(controls::Control &ListBox) const;
    /// Reads the same four columns of a list box back.
    void FromRow(const controls::Control &ListBox, int intRow);
    /// A text of any other number of parts than four leaves the row as it is.
    void FromString(const QString &StringToParse);
    /// Makes an example row.
    void RandomData(DateTime dteDate, const QString &strResponsibleName);
};

class cWorkDescs {
  public:
    cWorkDescs();

    /// The rows in their order. The keys only have to be unique: nothing looks a row up by its key.
    Ref<scripting::Dictionary<Ref<cWorkDescription>>> dicWorkDesc;

    /// Adds the list box's rows.
    void ReadFromListBox(const controls::Control &ListBox);
    /// Every row followed by the separator; empty for an empty log.
    [[nodiscard]] QString ToString() const;
    /// Replaces all rows. A piece that can't be read is a blank row.
    void FromString(const QString &StringToParse);
    /// Fails with 6 above 32767.
    [[nodiscard]] qint16 MinutesTotal() const;
    /// Appends to `tblWork` the rows that it does not have yet. They are told by their position alone.
    void WriteToDB(const QString &strTicketID) const;
    /// The same without a report: fails as the database does.
    void AppendToDB(const QString &strTicketID) const;
    /// Replaces all rows from `tblWork`; a ticket number that is no number leaves them.
    void ReadFromDB(const QString &strTicketID);
};
