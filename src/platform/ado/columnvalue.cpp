#include "platform/ado/provider.h"
#include "platform/value/convert.h"

namespace ado {

Value columnValue(ColumnType type, const Value &value) {
    if (value.isNull() || value.isEmpty())
        return Value::Null{};
    switch (type) {
    case ColumnType::Text:
    case ColumnType::Memo:
        return toText(value);
    case ColumnType::Short:
        return toInt16(value);
    case ColumnType::Long:
    case ColumnType::AutoNumber:
        return toInt32(value);
    case ColumnType::Money:
        return toCurrency(value);
    case ColumnType::Date:
        return toDateTime(value);
    case ColumnType::Flag:
        return toBool(value);
    case ColumnType::Double:
        return toDouble(value);
    case ColumnType::Unknown:
        break;
    }
    return value;
}

} // namespace ado
