#include "platform/ado/errors.h"
#include "platform/ado/provider.h"
#include "platform/value/convert.h"

namespace ado {

namespace {

bool isHalf(const QString &text, qsizetype at) {
    const QChar unit = text[at];
    return (unit.isHighSurrogate() && !(at + 1 < text.size() && text[at + 1].isLowSurrogate())) ||
           (unit.isLowSurrogate() && !(at > 0 && text[at - 1].isHighSurrogate()));
}

/// A text that UTF-8 holds. Engines bend any other in their own ways, and a row that is read back as another than the
/// one written looks changed by somebody else for ever after.
QString holdable(QString text) {
    constexpr QChar wordJoiner(0x2060); // what a byte order mark means behind the first place
    if (text.startsWith(QChar(QChar::ByteOrderMark)))
        text[0] = wordJoiner;
    for (qsizetype at = 0; at < text.size(); ++at)
        if (text.at(at) >= QChar(0xFFFE) || (text.at(at).isSurrogate() && isHalf(text, at)))
            text[at] = QChar(QChar::ReplacementCharacter);
    return text;
}

} // namespace

Value columnValue(ColumnType type, const Value &value) {
    if (value.isNull() || value.isEmpty())
        return Value::Null{};
    switch (type) {
    case ColumnType::Text: {
        const QString text = toText(value);
        if (text.size() > longestText)
            throw Failure(constraintFailed, QString("The text has %1 characters, and the column takes %2 at most. "
                                                    "Shorten it and try again: %3 ...")
                                                .arg(text.size())
                                                .arg(longestText)
                                                .arg(text.left(50)));
        return holdable(text);
    }
    case ColumnType::Memo:
        return holdable(toText(value));
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
