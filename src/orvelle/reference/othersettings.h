/// `cOtherSettings`: every setting that is not a list, as a bag of names and texts with typed reading, so that a new
/// setting needs no new column.
#pragma once

#include "orvelle/core/valuetype.h"
#include "platform/scripting/dictionary.h"
#include "platform/value/ref.h"
#include "platform/value/value.h"

namespace ado {
class Recordset;
}

class cOtherSettings {
  public:
    cOtherSettings();

    /// Texts by name, names without regard to case.
    Ref<scripting::Dictionary<QString>> DicList;

    /// Replaces everything, defaults included, with the rows of `tblOtherSettings`.
    void FromRS(const Ref<ado::Recordset> &adrRS);
    /// In memory only; `ToRS` writes.
    void SetValue(const QString &PropName, const QString &strNewValue);
    /// A name's value as `intDataType` says: 2 a 16-bit integer (0 for a text that is no number), 7 a date-time, 8 the
    /// text, 11 a boolean (false for a text that is none). A missing name gives 0, no date, the empty text or false;
    /// any other type gives Empty.
    [[nodiscard]] Value GetValue(const QString &PropName, qint32 intDataType) const;
    /// Writes every name, changed or not, to the whole table, open for writing. Rows of other names stay. An empty text
    /// is written as one blank, since the column takes no empty text.
    void ToRS(const Ref<ado::Recordset> &adrRS) const;

  private:
    void WriteAll(const Ref<ado::Recordset> &adrRS) const;
};
