// The work log in `tblWork`. A row is told by its position in the log alone: the table's rows are the log's first ones,
// and are never changed.

#include "orvelle/ticket/worklog.h"

#include "orvelle/core/components.h"
#include "orvelle/core/errorhandler.h"
#include "orvelle/core/trace.h"
#include "orvelle/database/connection.h"
#include "orvelle/reference/texts.h"
#include "platform/value/convert.h"

namespace {
/// One less than the column holds.
constexpr int longestDescription = 254;

Ref<ado::Recordset> fncOpenWork(qint32 lngTicketID) {
    return fncReturnRecordset("Select * from tblWork where intTicketID = " + QString::number(lngTicketID), false, true,
                              false);
}

void subAppendRow(ado::Recordset &adrWork, const cWorkDescription &objWork, qint32 lngTicketID) {
    adrWork.AddNew();
    adrWork.Fields("strPersonName").SetValue(fncCut(objWork.User, ado::longestText));
    adrWork.Fields("intMinutesWorked").SetValue(objWork.Minutes);
    adrWork.Fields("dteWorkedDate").SetValue(objWork.WorkDate);
    adrWork.Fields("strWorkDescription").SetValue(fncTrim(fncCut(objWork.Description, longestDescription)));
    adrWork.Fields("intTicketID").SetValue(lngTicketID);
    adrWork.Update();
}

Ref<cWorkDescription> fncReadRow(ado::Recordset &adrWork) {
    const auto objWork = Ref<cWorkDescription>::make();
    objWork->User = toText(adrWork.Fields("strPersonName").Value());
    objWork->Minutes = toInt16(adrWork.Fields("intMinutesWorked").Value());
    objWork->WorkDate = toDateTime(adrWork.Fields("dteWorkedDate").Value());
    objWork->Description = toText(adrWork.Fields("strWorkDescription").Value());
    return objWork;
}
} // namespace

void cWorkDescs::WriteToDB(const QString &strTicketID) const try {
    AppendToDB(strTicketID);
} catch (const Failure &failure) {
    subErrorHandler(failure, "cWorkDescs_WriteToDB");
}

void cWorkDescs::AppendToDB(const QString &strTicketID) const {
    const QList<Ref<cWorkDescription>> rows = dicWorkDesc->Items();
    if (rows.isEmpty())
        return;
    const qint32 ticket = toInt32(strTicketID);
    if (fncOpenWork(ticket)->RecordCount() >= rows.size())
        return;
    // Counted once more with the table to itself: of two clients that count at once each would append the same rows.
    ado::Transaction transaction(**adoConnection);
    const Ref<ado::Recordset> adrWork = fncOpenWork(ticket);
    for (qsizetype row = adrWork->RecordCount(); row < rows.size(); ++row)
        subAppendRow(*adrWork, *rows[row], ticket);
    transaction.commit();
}

void cWorkDescs::ReadFromDB(const QString &strTicketID) try {
    subTrace("Reading from work table for ticket number " + strTicketID);
    if (!isNumeric(strTicketID))
        return;
    const Ref<ado::Recordset> adrWork = fncOpenWork(toInt32(strTicketID));
    dicWorkDesc = fncCreateDic<Ref<cWorkDescription>>();
    for (; !adrWork->IsEOF(); adrWork->MoveNext())
        dicWorkDesc->Add(QString::number(dicWorkDesc->Count() + 1), fncReadRow(*adrWork));
} catch (const Failure &failure) {
    // A Null ends the log there; the rows before it are kept.
    if (failure.number() != failures::invalidNull)
        subErrorHandler(failure, "cWorkDescs_ReadFromDB");
}
