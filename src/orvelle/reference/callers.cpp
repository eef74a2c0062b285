#include "orvelle/reference/callers.h"

#include "orvelle/core/components.h"
#include "orvelle/core/errorhandler.h"
#include "orvelle/core/texthelpers.h"
#include "orvelle/reference/recordlist.h"
#include "orvelle/reference/texts.h"
#include "platform/value/convert.h"

namespace {
const RecordTable<cCaller> &fncTable() {
    static const RecordTable<cCaller> tblCallers{
        "intCallerID",
        "strFullName",
        "",
        "Deleting Caller from database ",
        {"strTelephone", "strEmail", "strComment", "strCategory"},
        [](const cCaller &objCaller) {
            return ValueList{objCaller.Telephone, objCaller.Email, objCaller.Comment, objCaller.Category};
        },
    };
    return tblCallers;
}

Ref<cCaller> fncExampleCaller() {
    const auto objCaller = Ref<cCaller>::make();
    objCaller->Category = "Test category";
    objCaller->Comment = "No comment";
    objCaller->Email = "alma.tester@example.com";
    objCaller->Telephone = "+00(00)000 00 00";
    objCaller->FullName = "Alma Tester";
    return objCaller;
}
} // namespace

cCallersList::cCallersList() : DicList(fncCreateDic<Ref<cCaller>>()) {}

void cCallersList::FromString(const QString &StringToParse) {
    for (const QString &line : fncSplitLines(StringToParse)) {
        const QStringList fields = line.split(u'\t');
        const auto objCaller = Ref<cCaller>::make();
        objCaller->FullName = fncPart(fields, 0);
        objCaller->Email = fncPart(fields, 1);
        objCaller->Telephone = fncPart(fields, 2);
        objCaller->Category = fncPart(fields, 3);
        if (!DicList->Exists(objCaller->FullName))
            DicList->Add(objCaller->FullName, objCaller);
    }
}

void cCallersList::FromRS(const Ref<ado::Recordset> &adrRS) {
    DicList = fncCreateDic<Ref<cCaller>>();
    if (!adrRS || adrRS->IsEOF())
        return;
    // A field shows the current row, whichever it is. Callers are the longest of the lists.
    const ado::Field number = adrRS->Fields("intCallerID");
    const ado::Field name = adrRS->Fields("strFullName");
    const ado::Field telephone = adrRS->Fields("strTelephone");
    const ado::Field email = adrRS->Fields("strEmail");
    const ado::Field comment = adrRS->Fields("strComment");
    const ado::Field category = adrRS->Fields("strCategory");
    for (; !adrRS->IsEOF(); adrRS->MoveNext()) {
        const Value stored = name.Value();
        const QString text = stored.isNull() ? QString() : toText(stored);
        if (text.isEmpty() || DicList->Exists(text))
            continue;
        const auto objCaller = Ref<cCaller>::make();
        objCaller->ID = toInt32(number.Value());
        objCaller->FullName = text;
        objCaller->Telephone = fncNullSafeText(telephone.Value());
        objCaller->Email = fncNullSafeText(email.Value());
        objCaller->Comment = fncNullSafeText(comment.Value());
        objCaller->Category = fncNullSafeText(category.Value());
        DicList->Add(objCaller->FullName, objCaller);
    }
}

void cCallersList::FromArray(const ValueRows &varArray) {
    DicList = fncCreateDic<Ref<cCaller>>();
    for (const ValueList &row : varArray) {
        const QString name = toText(fncColumn(row, 0));
        if (name.isEmpty() || DicList->Exists(name))
            continue;
        const auto objCaller = Ref<cCaller>::make();
        objCaller->FullName = name;
        objCaller->Email = toText(fncColumn(row, 1));
        objCaller->Telephone = toText(fncColumn(row, 2));
        objCaller->Category = toText(fncColumn(row, 3));
        objCaller->Comment = toText(fncColumn(row, 4));
        DicList->Add(name, objCaller);
    }
}

ValueRows cCallersList::ToArray() const {
    return fncRecordRows(*DicList, [](const cCaller &objCaller) {
        return ValueList{objCaller.FullName, objCaller.Email, objCaller.Telephone, objCaller.Category,
                         objCaller.Comment};
    });
}

void cCallersList::ToRS(const Ref<ado::Recordset> &adrRS) const try {
    cCallersList stored;
    stored.FromRS(adrRS);
    adrRS->Together([&] { subRecordsToRS(*adrRS, fncTable(), *DicList, *stored.DicList); });
} catch (const Failure &failure) {
    subErrorHandler(failure, "cCallerList.ToRS");
}

Ref<cCaller> cCallersList::RandomCaller() const try {
    return DicList->Count() == 0 ? fncExampleCaller() : fncRandomRecord(*DicList);
} catch (const Failure &failure) {
    subErrorHandler(failure, "cCallersList_RandomCaller");
}
