/// The value that crosses every late-bound boundary: the automation protocol, recordset fields, settings.
#pragma once

#include "platform/value/currency.h"
#include "platform/value/datetime.h"
#include "platform/value/failure.h"

#include <QList>
#include <QString>

#include <memory>
#include <variant>

namespace automation {
class Object;
using ObjectPtr = std::shared_ptr<Object>;
} // namespace automation

class Value;
using ValueList = QList<Value>;

/// One of: Empty (never set), Null (a stored "no value"), Missing (an argument left out), boolean, 16- or 32-bit
/// integer, double, currency, date-time, text, object reference, array. An object reference without an object is
/// Nothing. Empty, Null, Missing and Nothing are four different values. An array is a list of values of any kinds, also
/// of arrays.
class Value {
  public:
    struct Null {
        friend bool operator==(Null, Null) { return true; }
    };
    struct Missing {
        friend bool operator==(Missing, Missing) { return true; }
    };
    using Held = std::variant<std::monostate, Null, Missing, bool, qint16, qint32, double, Currency, DateTime, QString,
                              automation::ObjectPtr, ValueList>;

    Value() = default;
    Value(Null null) : m_held(null) {}
    Value(Missing missing) : m_held(missing) {}
    Value(bool value) : m_held(value) {}
    Value(qint16 value) : m_held(value) {}
    Value(qint32 value) : m_held(value) {}
    Value(double value) : m_held(value) {}
    Value(Currency value) : m_held(value) {}
    Value(DateTime value) : m_held(value) {}
    Value(QString value) : m_held(std::move(value)) {}
    Value(const char *utf8) : m_held(QString::fromUtf8(utf8)) {}
    Value(automation::ObjectPtr object) : m_held(std::move(object)) {}
    /// Asked for by name, so that a list in braces stays the list that it is.
    explicit Value(ValueList array) : m_held(std::move(array)) {}
    /// Other pointers would turn into booleans.
    template <class T>
    Value(const T *) = delete;

    static Value nothing() { return automation::ObjectPtr(); }

    [[nodiscard]] bool isEmpty() const { return holds<std::monostate>(); }
    [[nodiscard]] bool isNull() const { return holds<Null>(); }
    [[nodiscard]] bool isMissing() const { return holds<Missing>(); }
    [[nodiscard]] bool isText() const { return holds<QString>(); }
    [[nodiscard]] bool isObject() const { return holds<automation::ObjectPtr>(); }
    [[nodiscard]] bool isArray() const { return holds<ValueList>(); }
    [[nodiscard]] bool isNothing() const;
    template <class T>
    [[nodiscard]] bool holds() const {
        return std::holds_alternative<T>(m_held);
    }
    [[nodiscard]] const Held &held() const { return m_held; }

    /// The object; fails with 424 for a value that is no object reference. May be Nothing.
    [[nodiscard]] const automation::ObjectPtr &object() const;

    /// The values of an array; fails with 13 for a value that is none.
    [[nodiscard]] const ValueList &array() const;

    /// The kind's name for messages and logs, such as "Text".
    [[nodiscard]] QString kindName() const;

    /// Equal in kind and content; an integer and a double of the same number differ.
    friend bool operator==(const Value &left, const Value &right) { return left.m_held == right.m_held; }

  private:
    Held m_held;
};
