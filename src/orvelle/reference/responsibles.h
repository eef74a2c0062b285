/// Responsibles: the members of the helpdesk's staff who can be assigned a ticket.
#pragma once

#include "orvelle/reference/rows.h"
#include "platform/controls/control.h"
#include "platform/scripting/dictionary.h"
#include "platform/value/ref.h"

namespace ado {
class Recordset;
}

/// One row of `tblPersons`.
class cResponsible {
  public:
    /// The row's key; 0 until it comes from the table.
    qint16 ID = 0;
    QString FullName;
    QString Email;
    /// What an hour costs.
    Currency Rate;

    /// Fills the object from the current row. A Null rate or e-mail leaves the member as it was.
    void FromRS(const Ref<ado::Recordset> &adrRecord);
};

/// The persons, keyed by full name.
///
/// As a text: one person a line, name, e-mail and rate parted by tabs. As an array: the same three.
class cResponsibles {
  public:
    cResponsibles();

    Ref<scripting::Dictionary<Ref<cResponsible>>> DicList;

    /// Refills the control with the names; what it showed stays shown.
    void AddToComboOrList(controls::Control &cmbCombo) const;
    /// Adds to the list.
    void FromString(const QString &StringToParse);
    /// Replaces the list with the table's rows.
    void FromRS(const Ref<ado::Recordset> &adrRS);
    /// Brings the whole table, open for writing, in line with the list. Rows that match are not written.
    void ToRS(const Ref<ado::Recordset> &adrRS) const;
    /// A blank person for a number that is not above 0; Nothing for one that nobody has.
    [[nodiscard]] Ref<cResponsible> GetResponsibleFromID(qint16 intID) const;
    /// Replaces the list.
    void FromArray(const ValueRows &varArray);
    /// Fails with 9 on an empty list.
    [[nodiscard]] ValueRows ToArray() const;
    /// Fails with 9 on an empty list.
    [[nodiscard]] Ref<cResponsible> RandomResponsible() const;
};
