#include "orvelle/reference/responsibles.h"

#include "orvelle/core/components.h"
#include "orvelle/core/errorhandler.h"
#include "orvelle/core/trace.h"
#include "orvelle/reference/recordlist.h"
#include "orvelle/reference/texts.h"
#include "platform/value/convert.h"

namespace {
const RecordTable<cResponsible> &fncTable() {
    static const RecordTable<cResponsible> tblPersons{
        "intPersonID",
        "strPersonName",
        "",
        "Deleting responsible from database ",
        {"curRate", "strEmail"},
        [](const cResponsible &objPerson) {
            return ValueList{objPerson.Rate, objPerson.Email};
        },
    };
    return tblPersons;
}
} // namespace

void cResponsible::FromRS(const Ref<ado::Recordset> &adrRecord) try {
    ID = toInt16(adrRecord->Fields("intPersonID").Value());
    FullName = toText(adrRecord->Fields("strPersonName").Value());
    if (const Value rate = adrRecord->Fields("curRate").Value(); !rate.isNull())
        Rate = toCurrency(rate);
    if (const Value email = adrRecord->Fields("strEmail").Value(); !email.isNull())
        Email = toText(email);
} catch (const Failure &failure) {
    subErrorHandler(failure, "cResponsible.FromRS");
}

cResponsibles::cResponsibles() : DicList(fncCreateDic<Ref<cResponsible>>()) {}

void cResponsibles::AddToComboOrList(controls::Control &cmbCombo) const {
    const QString shown = cmbCombo.Text();
    cmbCombo.Clear();
    cmbCombo.SetItems(fncNotBlank(DicList->Keys()));
    if (!shown.isEmpty())
        cmbCombo.SetText(shown);
}

void cResponsibles::FromString(const QString &StringToParse) try {
    subTrace("Parsing responsibles into dictionary");
    for (const QString &line : fncSplitLines(StringToParse)) {
        const QStringList fields = line.split(u'\t');
        const auto objPerson = Ref<cResponsible>::make();
        objPerson->FullName = fncPart(fields, 0);
        objPerson->Email = fncPart(fields, 1);
        objPerson->Rate = toCurrency(fncPart(fields, 2));
        if (!DicList->Exists(objPerson->FullName))
            DicList->Add(objPerson->FullName, objPerson);
    }
} catch (const Failure &failure) {
    subErrorHandler(failure, "cResponsibles.FromString");
}

void cResponsibles::FromRS(const Ref<ado::Recordset> &adrRS) try {
    subTrace("Reading responsibles from database");
    DicList = fncCreateDic<Ref<cResponsible>>();
    if (!adrRS)
        return;
    for (; !adrRS->IsEOF(); adrRS->MoveNext()) {
        const auto objPerson = Ref<cResponsible>::make();
        objPerson->FromRS(adrRS);
        if (!DicList->Exists(objPerson->FullName))
            DicList->Add(objPerson->FullName, objPerson);
    }
} catch (const Failure &failure) {
    subErrorHandler(failure, "cResponsibles.FromRS");
}

void cResponsibles::ToRS(const Ref<ado::Recordset> &adrRS) const try {
    subTrace("Saving responsibles to database");
    cResponsibles stored;
    stored.FromRS(adrRS);
    // An empty list needs no table.
    if (adrRS || DicList->Count() != 0)
        adrRS->Together([&] { subRecordsToRS(*adrRS, fncTable(), *DicList, *stored.DicList); });
} catch (const Failure &failure) {
    subErrorHandler(failure, "cResponsibles.ToRS");
}

Ref<cResponsible> cResponsibles::GetResponsibleFromID(qint16 intID) const try {
    subTrace("Trying to find the responsible with ID " + QString::number(intID));
    if (intID <= 0)
        return Ref<cResponsible>::make();
    for (const Ref<cResponsible> &objPerson : DicList->Items()) {
        if (objPerson->ID == intID)
            return objPerson;
    }
    return nullptr;
} catch (const Failure &failure) {
    subErrorHandler(failure, "cResponsibles.GetResponsibleFromID");
}

void cResponsibles::FromArray(const ValueRows &varArray) try {
    subTrace("Reading all responsibles from an array");
    DicList = fncCreateDic<Ref<cResponsible>>();
    for (const ValueList &row : varArray) {
        const QString name = toText(fncColumn(row, 0));
        if (name.isEmpty() || DicList->Exists(name))
            continue;
        const auto objPerson = Ref<cResponsible>::make();
        objPerson->FullName = name;
        objPerson->Email = toText(fncColumn(row, 1));
        if (isNumeric(fncColumn(row, 2)))
            objPerson->Rate = toCurrency(fncColumn(row, 2));
        DicList->Add(name, objPerson);
    }
} catch (const Failure &failure) {
    subErrorHandler(failure, "cResponsibles.FromArray");
}

ValueRows cResponsibles::ToArray() const {
    subTrace("Joining all responsibles to an array");
    return fncRecordRows(*DicList, [](const cResponsible &objPerson) {
        return ValueList{objPerson.FullName, objPerson.Email, objPerson.Rate};
    });
}

Ref<cResponsible> cResponsibles::RandomResponsible() const {
    subTrace("Finding a random responsible!");
    return fncRandomRecord(*DicList);
}
