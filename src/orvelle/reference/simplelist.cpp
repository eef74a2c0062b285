#include "orvelle/reference/simplelist.h"

#include "orvelle/core/components.h"
#include "orvelle/core/errorhandler.h"
#include "orvelle/core/process.h"
#include "orvelle/reference/texts.h"
#include "platform/ado/recordset.h"
#include "platform/scripting/dictionary.h"
#include "platform/value/convert.h"
#include "platform/value/random.h"

namespace {
/// The column that holds the values: the second one, whatever its name.
constexpr int valueColumn = 1;

/// A stored Null reads as the empty text, which no list that people fill holds.
QString fncValueOf(const Ref<ado::Recordset> &adrRS) {
    const Value value = adrRS->Fields(valueColumn).Value();
    return value.isNull() ? QString() : toText(value);
}

void subAddOnce(scripting::Dictionary<QString> &dicList, const QString &strItem) {
    if (!dicList.Exists(strItem))
        dicList.Add(strItem, strItem);
}

/// The first row that shows the text. A drop-down list takes no other choice than one of its rows.
void subChooseRow(controls::Control &cmbCombo, const QString &strText) {
    for (int row = 0; row < cmbCombo.ListCount(); ++row) {
        if (toText(cmbCombo.List(row)) == strText) {
            cmbCombo.SetListIndex(row);
            return;
        }
    }
}
} // namespace

cSimpleList::cSimpleList() : DicList(fncCreateDic<QString>()) {}

QString cSimpleList::ToString() const { return fncTrim(QStringList(DicList->Items()).join(strLineEnd)); }

void cSimpleList::FromString(const QString &JoinedList) try {
    DicList = fncCreateDic<QString>();
    for (const QString &line : fncSplitLines(JoinedList)) {
        if (!line.isEmpty())
            subAddOnce(*DicList, line);
    }
} catch (const Failure &failure) {
    subErrorHandler(failure, "cSimpleList.FromString");
}

void cSimpleList::AddToComboOrList(controls::Control &cmbCombo, QString &strDefaultValue) const {
    const QString shown = cmbCombo.Text();
    cmbCombo.Clear();
    cmbCombo.SetItems(fncNotBlank(DicList->Items()));
    if (!shown.isEmpty())
        strDefaultValue = shown;
    if (strDefaultValue.isEmpty())
        return;
    if (Attempt([&] { cmbCombo.SetText(strDefaultValue); }))
        Attempt([&] { subChooseRow(cmbCombo, strDefaultValue); });
}

QString cSimpleList::RandomItem() const {
    const QStringList items = DicList->Items();
    if (items.isEmpty())
        throw Failure(failures::subscriptOutOfRange);
    return items[toInt32(Random::next() * static_cast<double>(items.size() - 1))];
}

void cSimpleList::FromRS(const Ref<ado::Recordset> &adrRS) {
    if (!adrRS)
        return;
    for (; !adrRS->IsEOF(); adrRS->MoveNext())
        subAddOnce(*DicList, fncValueOf(adrRS));
}

void cSimpleList::FromArray(const ValueList &ArrayToSplit) {
    DicList = fncCreateDic<QString>();
    for (const Value &item : ArrayToSplit)
        subAddOnce(*DicList, toText(item));
}

void cSimpleList::FromComboOrList(const controls::Control &cmbCombo) {
    DicList = fncCreateDic<QString>();
    for (int row = 0; row < cmbCombo.ListCount(); ++row)
        subAddOnce(*DicList, toText(cmbCombo.List(row)));
}

ValueRows cSimpleList::ToArray() const {
    ValueRows rows;
    for (const QString &item : DicList->Items())
        rows.append({Value(item)});
    if (rows.isEmpty())
        throw Failure(failures::subscriptOutOfRange);
    return rows;
}

void cSimpleList::ToRS(const Ref<ado::Recordset> &adrRS) const try {
    adrRS->Together([&] { BringInLine(adrRS); });
} catch (const Failure &failure) {
    subErrorHandler(failure, "cSimpleList.ToRS");
}

void cSimpleList::BringInLine(const Ref<ado::Recordset> &adrRS) const {
    cSimpleList stored;
    stored.FromRS(adrRS);
    for (const QString &item : DicList->Items()) {
        if (stored.DicList->Exists(item))
            continue;
        adrRS->AddNew();
        adrRS->Fields(valueColumn).SetValue(item);
        adrRS->Update();
    }
    if (adrRS->RecordCount() <= DicList->Count())
        return;
    const QString column = adrRS->Fields(valueColumn).Name();
    for (const QString &item : stored.DicList->Items()) {
        if (DicList->Exists(item))
            continue;
        adrRS->MoveFirst();
        adrRS->Find(column + " = " + fncQuoted(item));
        if (!adrRS->IsEOF())
            adrRS->Delete();
    }
}
