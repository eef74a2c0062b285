/// The criterion of a recordset's forward search.
#pragma once

#include "platform/value/value.h"

namespace ado {

/// One column, and the value it is searched for.
struct Criterion {
    QString column;
    /// A number (double) or a text.
    Value value;

    /// Reads `name = number` or `name = 'text'`, with '' inside for a quote; the name may be in brackets. Fails with
    /// `invalidArgument` for anything else.
    static Criterion parse(const QString &text);

    /// Whether a row's value is the one. Texts compare without regard to case; Null is never the one.
    [[nodiscard]] bool holds(const Value &stored) const;
};

} // namespace ado
