#include "orvelle/reference/problemtypes.h"

#include "orvelle/core/components.h"
#include "orvelle/core/errorhandler.h"
#include "orvelle/core/trace.h"
#include "orvelle/reference/recordlist.h"
#include "orvelle/reference/texts.h"
#include "platform/scripting/dictionary.h"
#include "platform/value/convert.h"

namespace {
const RecordTable<cProblemType> &fncTable() {
    static const RecordTable<cProblemType> tblTypes{
        "intTicketType",
        "strTypeDescription",
        "Writing problem type description %1 to database",
        "Deleting problem type from database ",
        {"strCategory", "intDefMin"},
        [](const cProblemType &objType) {
            return ValueList{objType.ProblemCategory, objType.DefaultMinutes};
        },
    };
    return tblTypes;
}

/// The texts in their order, the blank and the repeated ones left out.
QStringList fncDistinctTexts(RecordDic<cProblemType> &dicList, QString cProblemType::*member) {
    const Ref<scripting::Dictionary<QString>> met = fncCreateDic<QString>();
    for (const Ref<cProblemType> &objType : dicList.Items()) {
        const QString text = objType.get().*member;
        if (!fncTrim(text).isEmpty() && !met->Exists(text))
            met->Add(text, text);
    }
    return met->Items();
}
} // namespace

void cProblemType::FromRS(const Ref<ado::Recordset> &adrRecord) try {
    ID = toInt16(adrRecord->Fields("intTicketType").Value());
    ProblemDescription = toText(adrRecord->Fields("strTypeDescription").Value());
    if (const Value category = adrRecord->Fields("strCategory").Value(); !category.isNull())
        ProblemCategory = toText(category);
    if (const Value minutes = adrRecord->Fields("intDefMin").Value(); !minutes.isNull())
        DefaultMinutes = toInt16(minutes);
} catch (const Failure &failure) {
    subErrorHandler(failure, "cProblemType.FromRS");
}

cProblemTypes::cProblemTypes() : DicList(fncCreateDic<Ref<cProblemType>>()) {}

QString cProblemTypes::GetProblemTypes() const {
    return fncDistinctTexts(*DicList, &cProblemType::ProblemDescription).join(u'*');
}

void cProblemTypes::AddToComboOrList(controls::Control &cmbCombo, qint16 intCatChoice) const {
    const QString shown = cmbCombo.Text();
    cmbCombo.Clear();
    const auto member = intCatChoice == 1 ? &cProblemType::ProblemDescription : &cProblemType::ProblemCategory;
    cmbCombo.SetItems(fncDistinctTexts(*DicList, member));
    if (!shown.isEmpty())
        cmbCombo.SetText(shown);
}

void cProblemTypes::FromString(const QString &StringToParse) {
    for (const QString &line : fncSplitLines(StringToParse)) {
        const QStringList fields = line.split(u'\t');
        const auto objType = Ref<cProblemType>::make();
        objType->ProblemDescription = fncPart(fields, 0);
        objType->ProblemCategory = fncPart(fields, 1);
        objType->DefaultMinutes = toInt16(fncPart(fields, 2));
        if (!DicList->Exists(objType->ProblemDescription))
            DicList->Add(objType->ProblemDescription, objType);
    }
}

void cProblemTypes::FromRS(const Ref<ado::Recordset> &adrRS) {
    DicList = fncCreateDic<Ref<cProblemType>>();
    if (!adrRS)
        return;
    for (; !adrRS->IsEOF(); adrRS->MoveNext()) {
        const auto objType = Ref<cProblemType>::make();
        objType->FromRS(adrRS);
        if (!objType->ProblemDescription.isEmpty() && !DicList->Exists(objType->ProblemDescription))
            DicList->Add(objType->ProblemDescription, objType);
    }
}

QString cProblemTypes::GetProblemCategory(const QString &strProblemType) const {
    return DicList->Exists(strProblemType) ? DicList->Item(strProblemType)->ProblemCategory : QString();
}

Ref<cProblemType> cProblemTypes::GetProblemFromID(qint16 intID) const {
    if (intID > 0) {
        for (const Ref<cProblemType> &objType : DicList->Items()) {
            if (objType->ID == intID)
                return objType;
        }
    }
    return Ref<cProblemType>::make();
}

void cProblemTypes::FromArray(const ValueRows &varArray) try {
    subTrace("Reading Problem types from array");
    DicList = fncCreateDic<Ref<cProblemType>>();
    for (const ValueList &row : varArray) {
        const QString description = toText(fncColumn(row, 0));
        if (description.isEmpty() || DicList->Exists(description))
            continue;
        const auto objType = Ref<cProblemType>::make();
        objType->ProblemDescription = description;
        objType->ProblemCategory = toText(fncColumn(row, 1));
        if (isNumeric(fncColumn(row, 2)))
            objType->DefaultMinutes = toInt16(fncColumn(row, 2));
        DicList->Add(description, objType);
    }
} catch (const Failure &failure) {
    subErrorHandler(failure, "cProblemTypes.FromArray");
}

ValueRows cProblemTypes::ToArray() const try {
    return fncRecordRows(*DicList, [](const cProblemType &objType) {
        return ValueList{objType.ProblemDescription, objType.ProblemCategory, objType.DefaultMinutes};
    });
} catch (const Failure &failure) {
    subErrorHandler(failure, "cProblemTypes.ToArray");
}

void cProblemTypes::ToRS(const Ref<ado::Recordset> &adrRS) const try {
    subTrace("Saving problem types to database");
    cProblemTypes stored;
    stored.FromRS(adrRS);
    // An empty list needs no table.
    if (adrRS || DicList->Count() != 0)
        adrRS->Together([&] { subRecordsToRS(*adrRS, fncTable(), *DicList, *stored.DicList); });
} catch (const Failure &failure) {
    subErrorHandler(failure, "cProblemTypes.ToRS");
}

Ref<cProblemType> cProblemTypes::RandomProblemType() const {
    subTrace("Finding a random problem type!");
    return fncRandomRecord(*DicList);
}
