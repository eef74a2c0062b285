#include "platform/value/value.h"

bool Value::isNothing() const { return isObject() && std::get<automation::ObjectPtr>(m_held) == nullptr; }

const automation::ObjectPtr &Value::object() const {
    if (!isObject())
        throw Failure(failures::objectRequired);
    return std::get<automation::ObjectPtr>(m_held);
}

const ValueList &Value::array() const {
    if (!isArray())
        throw Failure(failures::typeMismatch);
    return std::get<ValueList>(m_held);
}

QString Value::kindName() const {
    static const std::array names = {"Empty",  "Null",     "Missing", "Boolean", "Integer", "Long",
                                     "Double", "Currency", "Date",    "Text",    "Object",  "Array"};
    return QString::fromLatin1(names.at(m_held.index()));
}
