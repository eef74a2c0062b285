/// `cSimpleList`: a named list of distinct texts, such as the statuses, and the five shapes it moves between: a
/// dictionary, a joined text, a combo or list box, an array and a table with a value column.
#pragma once

#include "orvelle/reference/rows.h"
#include "platform/controls/control.h"
#include "platform/scripting/dictionary.h"
#include "platform/value/ref.h"

namespace ado {
class Recordset;
}

class cSimpleList {
  public:
    cSimpleList();

    /// What people call the list.
    QString ListName;
    /// Each text under itself. Invariant: no two are equal without regard to case; the form that was added first stays.
    Ref<scripting::Dictionary<QString>> DicList;

    /// The items in order, one a line, with no blanks at the ends of the whole. An item cannot hold a line end.
    [[nodiscard]] QString ToString() const;
    /// Replaces the list. Empty lines and repeated items are left out.
    void FromString(const QString &JoinedList);
    /// Refills the control. What it showed stays shown and is handed back in `strDefaultValue`; a control that showed
    /// nothing gets `strDefaultValue`.
    void AddToComboOrList(controls::Control &cmbCombo, QString &strDefaultValue) const;
    /// Fails with 9 on an empty list.
    [[nodiscard]] QString RandomItem() const;
    /// Adds the values of the table's second column, from the current row on. Nothing adds nothing.
    void FromRS(const Ref<ado::Recordset> &adrRS);
    /// Replaces the list, empty texts included.
    void FromArray(const ValueList &ArrayToSplit);
    /// Replaces the list with the control's rows.
    void FromComboOrList(const controls::Control &cmbCombo);
    /// One column. Fails with 9 on an empty list.
    [[nodiscard]] ValueRows ToArray() const;
    /// Brings the whole table, open for writing, in line with the list: adds what is new, deletes what is gone.
    void ToRS(const Ref<ado::Recordset> &adrRS) const;

  private:
    void BringInLine(const Ref<ado::Recordset> &adrRS) const;
};
