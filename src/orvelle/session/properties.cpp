#include "orvelle/session/properties.h"

#include "orvelle/core/errorhandler.h"
#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"
#include "orvelle/core/trace.h"
#include "orvelle/dialogs/dialogs.h"
#include "orvelle/host/constants.h"
#include "orvelle/host/snapshot.h"

namespace {
/// What one property of the host holds at most.
constexpr qsizetype pieceLength = 1000;

std::optional<qint32> fncHostType(qint32 intDataType) {
    switch (intDataType) {
    case valuetype::integer:
        return host::usertype::number;
    case valuetype::date:
        return host::usertype::dateTime;
    case valuetype::text:
        return host::usertype::text;
    case valuetype::boolean:
        return host::usertype::yesNo;
    default:
        return std::nullopt;
    }
}

/// What is written for a value; nothing where the property stays as it is.
std::optional<Value> fncWritten(const Value &value, qint32 intDataType) {
    switch (intDataType) {
    case valuetype::integer:
        return isNumeric(value) ? toInt16(value) : qint16(0);
    case valuetype::date:
        return isDate(value) ? std::optional<Value>(toDateTime(value)) : std::nullopt;
    case valuetype::text:
        return toText(value);
    case valuetype::boolean:
        return toBool(value);
    default:
        return std::nullopt;
    }
}

/// The value of a property that is there.
Value fncTypedValue(const Value &value, qint32 intDataType, const Value &varDefault) {
    switch (intDataType) {
    case valuetype::integer:
        return isNumeric(value) ? toInt16(value) : qint16(0);
    case valuetype::date:
        return isDate(value) ? toDateTime(value) : DateTime();
    case valuetype::text: {
        const QString strText = toText(value);
        const bool blnHasDefault = !varDefault.isEmpty() && !varDefault.isMissing();
        return strText.isEmpty() && blnHasDefault ? toText(varDefault) : strText;
    }
    case valuetype::boolean:
        return toBool(value);
    default:
        return {};
    }
}

/// What stands for a property that is missing or can't be read.
Value fncDefaultValue(qint32 intDataType, const Value &varDefault) {
    switch (intDataType) {
    case valuetype::integer:
        return AttemptOr([&] { return isNumeric(varDefault) ? toInt16(varDefault) : qint16(0); }, qint16(0));
    case valuetype::date:
        return DateTime();
    case valuetype::text:
        return AttemptOr([&] { return varDefault.isMissing() ? QString() : toText(varDefault); }, QString());
    case valuetype::boolean:
        return AttemptOr([&] { return isNumeric(varDefault) ? Value(toBool(varDefault)) : Value(); }, Value());
    default:
        return {};
    }
}

} // namespace

void subSetOutlookValue(const host::Item &ouiItem, const QString &PropName, const Value &value,
                        qint32 intDataType) try {
    const std::optional<qint32> type = fncHostType(intDataType);
    if (ouiItem.isNothing() || !type)
        return;
    const std::optional<Value> written = fncWritten(value, intDataType);
    if (!written) {
        if (ouiItem.FindProperty(PropName).isNothing())
            static_cast<void>(ouiItem.UserProperties().Add(PropName, *type));
        return;
    }
    const auto failure = Attempt([&] { ouiItem.SetPropertyValue(PropName, *written); });
    if (failure && failure->number() == failures::objectNotSet)
        ouiItem.AddPropertyValue(PropName, *type, *written);
    else if (failure)
        throw Failure(*failure);
} catch (const Failure &failure) {
    subErrorHandler(failure, "subSetOutlookValue");
}

Value fncGetOutlookValue(const host::Item &ouiItem, const QString &PropName, qint32 intDataType,
                         const Value &varDefault) {
    subTrace("Reading the value of the Outlook property " + PropName);
    std::optional<Value> found;
    Attempt([&] { found = fncTypedValue(ouiItem.PropertyValue(PropName), intDataType, varDefault); });
    return found ? *found : fncDefaultValue(intDataType, varDefault);
}

void subFixLongProperty(const host::Item &ouiItem, const QString &strText, const QString &PropName, bool blnSilent) {
    subTrace("Entering subFixLongProperty to save " + PropName);
    const auto failure = Attempt([&] {
        const auto intHighest =
            static_cast<qint32>(roundHalfEven(static_cast<double>(strText.size()) / double(pieceLength)));
        for (qint32 i = 0; i <= intHighest; ++i)
            ouiItem.AddPropertyValue(PropName + QString::number(i), host::usertype::text,
                                     strText.mid(i * pieceLength, pieceLength));
        ouiItem.AddPropertyValue(PropName + "Count", host::usertype::number, intHighest);
    });
    if (failure && !blnSilent)
        subAssistantMessage(ouaOutlook, "Failed to save " + PropName + " " + LNGCHECKPERM);
}

QStringList fncLongPropertyStart(const QString &PropName) { return {PropName + "Count", PropName + "0"}; }

QString fncGetLongProperty(const host::Item &ouiItem, const QString &PropName) {
    const host::Item seen = host::snapshot(ouiItem, host::Questions({}).properties(fncLongPropertyStart(PropName)));
    return fncGetLongProperty(ouiItem, seen, PropName);
}

QString fncGetLongProperty(const host::Item &ouiItem, const host::Item &seen, const QString &PropName) try {
    subTrace("Entering fncGetLongProperty");
    const qint16 intHighest = toInt16(fncGetOutlookValue(seen, PropName + "Count", valuetype::integer, ""));
    if (intHighest < 0)
        return {};
    QString strText = toText(fncGetOutlookValue(seen, PropName + "0", valuetype::text, ""));
    QStringList names;
    for (qint32 i = 1; i <= intHighest; ++i)
        names << PropName + QString::number(i);
    if (names.isEmpty())
        return strText;
    const host::Item rest = host::snapshot(ouiItem, host::Questions({}).properties(names));
    for (const QString &strName : names)
        strText += toText(fncGetOutlookValue(rest, strName, valuetype::text, ""));
    return strText;
} catch (const Failure &failure) {
    subErrorHandler(failure, "fncGetLongProperty");
}
