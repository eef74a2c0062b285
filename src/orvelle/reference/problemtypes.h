/// Problem types: what a ticket is about, the category above it and the minutes that such a ticket takes by default.
#pragma once

#include "orvelle/reference/rows.h"
#include "platform/controls/control.h"
#include "platform/scripting/dictionary.h"
#include "platform/value/ref.h"

namespace ado {
class Recordset;
}

/// One row of `tblTypes`.
class cProblemType {
  public:
    QString ProblemDescription;
    QString ProblemCategory;
    qint16 DefaultMinutes = 0;
    /// The row's key; 0 until it comes from the table.
    qint16 ID = 0;

    /// Fills the object from the current row. A Null category or number of minutes leaves the member as it was.
    void FromRS(const Ref<ado::Recordset> &adrRecord);
};

/// The types, keyed by description.
///
/// As a text: one type a line, its description, category and minutes parted by tabs. As an array: the same three.
class cProblemTypes {
  public:
    cProblemTypes();

    Ref<scripting::Dictionary<Ref<cProblemType>>> DicList;

    /// The distinct descriptions joined by "*".
    [[nodiscard]] QString GetProblemTypes() const;
    /// Refills the control with the distinct descriptions (1) or categories (any other choice); what it showed stays.
    void AddToComboOrList(controls::Control &cmbCombo, qint16 intCatChoice) const;
    /// Adds to the list. Fails with 9 on a line with too few fields, 13 on minutes that are no number.
    void FromString(const QString &StringToParse);
    /// Replaces the list with the table's rows, the nameless ones left out.
    void FromRS(const Ref<ado::Recordset> &adrRS);
    /// The empty text for an unknown description.
    [[nodiscard]] QString GetProblemCategory(const QString &strProblemType) const;
    /// Never Nothing: an unknown number gives a blank type.
    [[nodiscard]] Ref<cProblemType> GetProblemFromID(qint16 intID) const;
    /// Replaces the list.
    void FromArray(const ValueRows &varArray);
    /// Fails with 9 on an empty list.
    [[nodiscard]] ValueRows ToArray() const;
    /// Brings the whole table, open for writing, in line with the list. Rows that match are not written.
    void ToRS(const Ref<ado::Recordset> &adrRS) const;
    /// Fails with 9 on an empty list.
    [[nodiscard]] Ref<cProblemType> RandomProblemType() const;
};
