/// Whether a save would change what a field of a row holds.
#pragma once

#include "platform/value/ref.h"
#include "platform/value/value.h"

#include <QString>

/// Whether a value is a change to what a field holds: Null never is, a value in place of Null always.
bool fncValueChanged(const Value &stored, const Value &value);
/// \param adrRS  a recordset with `Fields(name)`.
template <class Recordset>
bool fncFieldChanged(const Ref<Recordset> &adrRS, const QString &strField, const Value &value) {
    return fncValueChanged(adrRS->Fields(strField).Value(), value);
}
