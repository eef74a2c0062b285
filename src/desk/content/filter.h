/// The filter texts of `Items.Find`.
#pragma once

#include "platform/value/value.h"

#include <optional>

namespace desk {

/// One comparison of a filter: a field or custom property against a literal.
struct FilterCondition {
    enum class Operator { Equal, NotEqual, Less, LessOrEqual, Greater, GreaterOrEqual };

    QString field;
    Operator comparison = Operator::Equal;
    /// A text, a number (double) or a boolean.
    Value literal;

    friend bool operator==(const FilterCondition &, const FilterCondition &) = default;

    /// Whether a value of the field meets the condition. Texts compare without regard to case; a literal is read as
    /// what the value is (a number, a date, a boolean); an empty or missing value equals the empty text alone. Against
    /// a number, a text that is none is neither above nor below.
    [[nodiscard]] bool holds(const Value &value) const;
    /// The number that a value has to reach at least, or one just below it, where the condition says one.
    [[nodiscard]] std::optional<double> least() const;
};

/// Conditions that must all hold.
using Filter = QList<FilterCondition>;

/// Fails as for a text that is no filter.
[[noreturn]] void refuseFilter(const QString &text);

/// Reads a filter such as `[Ticket ID] = '12' and [Importance] > 1`. Literals are texts in single or double quotes (the
/// quote doubled inside), numbers, True and False. A single quote that no operator and no end follows belongs to the
/// text, since callers put names like O'Neill between quotes as they are.
/// Fails with 0x80020009 for anything else.
Filter parseFilter(const QString &text);

} // namespace desk
