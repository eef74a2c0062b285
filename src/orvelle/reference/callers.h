/// Callers: the persons who report problems.
#pragma once

#include "orvelle/reference/rows.h"
#include "platform/scripting/dictionary.h"
#include "platform/value/ref.h"

namespace ado {
class Recordset;
}

/// One row of `tblCallers`, or a ticket's own copy of a caller.
class cCaller {
  public:
    QString FullName;
    QString Telephone;
    QString Email;
    QString Category;
    /// The row's key; 0 until it comes from the table. As wide as the table's own numbers: nothing narrower refers to
    /// a caller, and a list that has seen many callers come and go counts far.
    qint32 ID = 0;
    QString Comment;
};

/// The callers, keyed by full name.
///
/// As a text: one caller a line, name, e-mail, telephone and category parted by tabs. As an array: the same, then the
/// comment.
class cCallersList {
  public:
    cCallersList();

    Ref<scripting::Dictionary<Ref<cCaller>>> DicList;

    /// Adds to the list. Fails with 9 on a line with too few fields.
    void FromString(const QString &StringToParse);
    /// Replaces the list with the table's rows, the nameless ones left out.
    void FromRS(const Ref<ado::Recordset> &adrRS);
    /// Replaces the list.
    void FromArray(const ValueRows &varArray);
    /// Fails with 9 on an empty list.
    [[nodiscard]] ValueRows ToArray() const;
    /// Brings the whole table, open for writing, in line with the list. Rows that match are not written.
    void ToRS(const Ref<ado::Recordset> &adrRS) const;
    /// With an empty list, an example caller that is not added to it.
    [[nodiscard]] Ref<cCaller> RandomCaller() const;
};
