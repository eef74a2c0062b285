#include "orvelle/session/properties.h"

#include "orvelle/core/errorhandler.h"
#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"
#include "orvelle/core/trace.h"
#include "orvelle/dialogs/dialogs.h"

namespace {
/// What one property of the host holds at most.
constexpr qsizetype pieceLength = 1000;

/// The host's own types.
constexpr qint32 hostText = 1;
constexpr qint32 hostNumber = 3;
constexpr qint32 hostDateTime = 5;
constexpr qint32 hostYesNo = 6;

std::optional<qint32> hostType(qint32 intDataType) {
    switch (intDataType) {
    case propertytype::integer:
        return hostNumber;
    case propertytype::date:
        return hostDateTime;
    case propertytype::text:
        return hostText;
    case propertytype::boolean:
        return hostYesNo;
    default:
        return std::nullopt;
    }
}

void subPutValue(const host::UserProperty &oup, const Value &value, qint32 intDataType) {
    switch (intDataType) {
    case propertytype::integer:
        oup.setValue(isNumeric(value) ? toInt16(value) : qint16(0));
        break;
    case propertytype::date:
        if (isDate(value))
            oup.setValue(toDateTime(value));
        break;
    case propertytype::text:
        oup.setValue(toText(value));
        break;
    case propertytype::boolean:
        oup.setValue(toBool(value));
        break;
    default:
        break;
    }
}

/// The value of a property that is there.
Value fncTypedValue(const Value &value, qint32 intDataType, const Value &varDefault) {
    switch (intDataType) {
    case propertytype::integer:
        return isNumeric(value) ? toInt16(value) : qint16(0);
    case propertytype::date:
        return isDate(value) ? toDateTime(value) : DateTime();
    case propertytype::text: {
        const QString strText = toText(value);
        const bool blnHasDefault = !varDefault.isEmpty() && !varDefault.isMissing();
        return strText.isEmpty() && blnHasDefault ? toText(varDefault) : strText;
    }
    case propertytype::boolean:
        return toBool(value);
    default:
        return {};
    }
}

/// What stands for a property that is missing or can't be read.
Value fncDefaultValue(qint32 intDataType, const Value &varDefault) {
    switch (intDataType) {
    case propertytype::integer:
        return AttemptOr([&] { return isNumeric(varDefault) ? toInt16(varDefault) : qint16(0); }, qint16(0));
    case propertytype::date:
        return DateTime();
    case propertytype::text:
        return AttemptOr([&] { return varDefault.isMissing() ? QString() : toText(varDefault); }, QString());
    case propertytype::boolean:
        return AttemptOr([&] { return isNumeric(varDefault) ? Value(toBool(varDefault)) : Value(); }, Value());
    default:
        return {};
    }
}

Value fncReadProperty(const host::UserProperties &oups, const QString &PropName, qint32 intDataType,
                      const Value &varDefault) {
    std::optional<Value> found;
    Attempt([&] {
        const host::UserProperty oup = oups.Find(PropName);
        if (oup)
            found = fncTypedValue(oup.value(), intDataType, varDefault);
    });
    return found ? *found : fncDefaultValue(intDataType, varDefault);
}

host::UserProperties fncPropertiesOrNothing(const host::Item &ouiItem) {
    return AttemptOr([&] { return ouiItem.UserProperties(); }, host::UserProperties());
}
} // namespace

void subSetOutlookValue(const host::UserProperties &oups, const QString &PropName, const Value &value,
                        qint32 intDataType) try {
    const std::optional<qint32> type = hostType(intDataType);
    if (!type)
        return;
    host::UserProperty oup = oups.Find(PropName);
    if (oup.isNothing())
        oup = oups.Add(PropName, *type);
    subPutValue(oup, value, intDataType);
} catch (const Failure &failure) {
    subErrorHandler(failure, "subSetOutlookValue");
}

void subSetOutlookValue(const host::Item &ouiItem, const QString &PropName, const Value &value,
                        qint32 intDataType) try {
    if (ouiItem.isNothing())
        return;
    subSetOutlookValue(ouiItem.UserProperties(), PropName, value, intDataType);
} catch (const Failure &failure) {
    subErrorHandler(failure, "subSetOutlookValue");
}

Value fncGetOutlookValue(const host::UserProperties &oups, const QString &PropName, qint32 intDataType,
                         const Value &varDefault) {
    subTrace("Reading the value of the Outlook property " + PropName);
    return fncReadProperty(oups, PropName, intDataType, varDefault);
}

Value fncGetOutlookValue(const host::Item &ouiItem, const QString &PropName, qint32 intDataType,
                         const Value &varDefault) {
    return fncGetOutlookValue(fncPropertiesOrNothing(ouiItem), PropName, intDataType, varDefault);
}

void subFixLongProperty(const host::Item &ouiItem, const QString &strText, const QString &PropName, bool blnSilent) {
    subTrace("Entering subFixLongProperty to save " + PropName);
    const auto failure = Attempt([&] {
        const auto intHighest =
            static_cast<qint32>(roundHalfEven(static_cast<double>(strText.size()) / double(pieceLength)));
        const host::UserProperties oups = ouiItem.UserProperties();
        for (qint32 i = 0; i <= intHighest; ++i)
            oups.Add(PropName + QString::number(i), hostText).setValue(strText.mid(i * pieceLength, pieceLength));
        oups.Add(PropName + "Count", hostNumber).setValue(intHighest);
    });
    if (failure && !blnSilent)
        subAssistantMessage(ouaOutlook, "Failed to save " + PropName + " " + LNGCHECKPERM);
}

QString fncGetLongProperty(const host::Item &ouiItem, const QString &PropName) {
    return fncGetLongProperty(fncPropertiesOrNothing(ouiItem), PropName);
}

QString fncGetLongProperty(const host::UserProperties &oups, const QString &PropName) try {
    subTrace("Entering fncGetLongProperty");
    const qint16 intHighest = toInt16(fncGetOutlookValue(oups, PropName + "Count", propertytype::integer, ""));
    QString strText;
    for (qint32 i = 0; i <= intHighest; ++i)
        strText += toText(fncGetOutlookValue(oups, PropName + QString::number(i), propertytype::text, ""));
    return strText;
} catch (const Failure &failure) {
    subErrorHandler(failure, "fncGetLongProperty");
}
