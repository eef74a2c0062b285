#include "orvelle/reference/othersettings.h"

#include "orvelle/core/components.h"
#include "orvelle/core/errorhandler.h"
#include "orvelle/core/trace.h"
#include "orvelle/reference/simplelist.h"
#include "orvelle/reference/texts.h"
#include "platform/ado/recordset.h"
#include "platform/value/convert.h"

namespace {
constexpr int nameColumn = 1;
constexpr int textColumn = 2;

QString fncTextOf(const Value &value) { return value.isNull() ? QString() : toText(value); }

Value fncConvert(const QString &strText, qint32 intDataType) {
    switch (intDataType) {
    case valuetype::integer:
        return isNumeric(strText) ? toInt16(strText) : qint16{0};
    case valuetype::date:
        return toDateTime(strText);
    case valuetype::text:
        return strText;
    case valuetype::boolean:
        return AttemptOr([&] { return toBool(strText); }, false);
    default:
        return {};
    }
}

Value fncMissing(qint32 intDataType) {
    switch (intDataType) {
    case valuetype::integer:
        return qint16{0};
    case valuetype::date:
        return DateTime{};
    case valuetype::text:
        return QString();
    case valuetype::boolean:
        return false;
    default:
        return {};
    }
}
} // namespace

cOtherSettings::cOtherSettings() : DicList(fncCreateDic<QString>()) {}

void cOtherSettings::FromRS(const Ref<ado::Recordset> &adrRS) try {
    subTrace("Looping through dababase tables to find all Other Settings");
    DicList = fncCreateDic<QString>();
    if (!adrRS)
        return;
    for (; !adrRS->IsEOF(); adrRS->MoveNext())
        SetValue(fncTextOf(adrRS->Fields(nameColumn).Value()), fncTextOf(adrRS->Fields(textColumn).Value()));
} catch (const Failure &failure) {
    subErrorHandler(failure, "cOtherSettings.FromRS");
}

void cOtherSettings::SetValue(const QString &PropName, const QString &strNewValue) {
    if (DicList->Exists(PropName))
        DicList->Set(PropName, strNewValue);
    else
        DicList->Add(PropName, strNewValue);
}

Value cOtherSettings::GetValue(const QString &PropName, qint32 intDataType) const try {
    subTrace("Reading the value of the Other Setting " + PropName);
    if (!DicList->Exists(PropName))
        return fncMissing(intDataType);
    const QString text = DicList->Item(PropName);
    Value value;
    if (const auto failure = Attempt([&] { value = fncConvert(text, intDataType); }))
        throw Failure(failure->number(), QString("%1. The setting %2 holds \"%3\", which can't be read as what it is. "
                                                 "Correct it in the settings program.")
                                             .arg(failure->description(), PropName, text.left(50)));
    return value;
} catch (const Failure &failure) {
    if (failure.number() == failures::unspecified)
        return {};
    subErrorHandler(failure, "cOtherSettings.GetValue");
}

void cOtherSettings::ToRS(const Ref<ado::Recordset> &adrRS) const try {
    subTrace("Saving other settings to database");
    if (!adrRS)
        return;
    adrRS->Together([&] { WriteAll(adrRS); });
} catch (const Failure &failure) {
    subErrorHandler(failure, "cOtherSettings.ToRS");
}

void cOtherSettings::WriteAll(const Ref<ado::Recordset> &adrRS) const {
    cSimpleList stored;
    stored.FromRS(adrRS);
    for (const QString &name : DicList->Keys()) {
        const bool blnStored = stored.DicList->Exists(name);
        if (blnStored) {
            if (adrRS->RecordCount() != 0)
                adrRS->MoveFirst();
            adrRS->Find("strPropName = " + fncQuoted(name));
        }
        // A row whose name is Null is read as one without a name, and no search finds it.
        if (!blnStored || adrRS->IsEOF()) {
            adrRS->AddNew();
            adrRS->Fields(nameColumn).SetValue(name);
        }
        QString text = DicList->Item(name);
        if (text.isEmpty())
            text = " ";
        subTrace("Setting field " + name + " to the value " + text);
        adrRS->Fields(textColumn).SetValue(text);
        adrRS->Update();
    }
}
