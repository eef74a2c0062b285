// The ticket and its row of `tblTickets`.

#include "orvelle/ticket/ticket.h"

#include "orvelle/core/errorhandler.h"
#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"
#include "orvelle/core/texthelpers.h"
#include "orvelle/core/trace.h"
#include "orvelle/database/connection.h"
#include "orvelle/dialogs/dialogs.h"
#include "orvelle/dialogs/savetrouble.h"
#include "orvelle/reference/opentime.h"
#include "orvelle/reference/settings.h"
#include "orvelle/reference/texts.h"
#include "platform/ado/command.h"
#include "platform/value/convert.h"

namespace {
/// What the 16-bit column of open minutes gets at most.
constexpr qint32 mostMinutesOpen = 31000;
constexpr int longestCategory = 50;

/// The columns of long text take no empty text.
QString fncNeverEmpty(const QString &strText) { return strText.isEmpty() ? QStringLiteral(" ") : strText; }

class Row {
  public:
    explicit Row(const Ref<ado::Recordset> &adrRS) : m_adrRS(adrRS) {}

    void set(const QString &strColumn, const Value &varValue) const { m_adrRS->Fields(strColumn).SetValue(varValue); }
    /// As much as the column takes: what a mail brings may be longer, and the item keeps it whole.
    void setText(const QString &strColumn, const QString &strText) const {
        set(strColumn, fncCut(strText, ado::longestText));
    }
    [[nodiscard]] Value value(const QString &strColumn) const { return m_adrRS->Fields(strColumn).Value(); }
    /// Fails with 94 on Null.
    [[nodiscard]] QString plain(const QString &strColumn) const { return toText(value(strColumn)); }
    [[nodiscard]] QString nullSafe(const QString &strColumn) const { return fncNullSafeText(value(strColumn)); }

  private:
    Ref<ado::Recordset> m_adrRS;
};

void subWriteCaller(const Row &row, const cCaller &objCaller) {
    row.set("strCustomerCategory", fncCut(objCaller.Category, longestCategory));
    row.setText("strCustomerComment", objCaller.Comment);
    row.setText("strCustomerEmail", objCaller.Email);
    row.setText("strCustomerName", objCaller.FullName);
    row.setText("strCustomerPhone", objCaller.Telephone);
}

void subWriteOpenTime(const Row &row, const cTicket &objTicket) {
    const qint32 minutes = fncCalcOpenTime(objTicket.DateCreated, objTicket.DateClosed);
    subTrace("Writing open time to db: " + QString::number(minutes));
    row.set("intMinutesOpen", std::min(minutes, mostMinutesOpen));
}

/// Every column but the number's text of a ticket that has none yet. References to a type or a person of no list leave
/// the column as it stands.
void subWriteColumns(const Row &row, const cTicket &objTicket) {
    row.set("strDescriptionHTML", fncNeverEmpty(objTicket.HTMLDescription));
    row.set("strDescription", fncNeverEmpty(objTicket.Description));
    row.setText("strTicketSubject", objTicket.Subject);
    if (objTicket.ProblemType && objTicket.ProblemType->ID > 0)
        row.set("intTicketType", objTicket.ProblemType->ID);
    if (objTicket.Caller)
        subWriteCaller(row, *objTicket.Caller);
    if (objTicket.Closed)
        subWriteOpenTime(row, objTicket);
    row.set("intPriority", objTicket.TicketPriority);
    row.set("dteCreated", objTicket.DateCreated);
    row.set("dteClosed", objTicket.DateClosed);
    if (objTicket.Responsible && objTicket.Responsible->ID > 0)
        row.set("intAssignedTo", objTicket.Responsible->ID);
    row.set("blnClosed", objTicket.Closed);
    row.set("intMinutesWorked", objTicket.WorkDescs->MinutesTotal());
    row.set("curRate", objTicket.Rate);
    if (!objTicket.TicketID.isEmpty())
        row.set("strTicketID", objTicket.TicketID);
    row.setText("strTicketStatus", objTicket.TicketStatus);
    row.set("strWeekdayName", weekdayName(objTicket.DateCreated.weekdayFromMonday()));
    row.set("strMonthName", monthName(objTicket.DateCreated.month()));
}

/// Writes the new row and its number into it, both or none: a row without its number would not be found again, and the
/// next save would add another. Gives the number.
QString fncAddRow(ado::Recordset &adrTickets, const Row &row, const QString &strTicketID) {
    ado::Transaction transaction(**adoConnection);
    adrTickets.Update();
    const QString strNumber = strTicketID.isEmpty() ? row.plain("intTicketID") : strTicketID;
    row.set("strTicketID", strNumber);
    adrTickets.Update();
    transaction.commit();
    return strNumber;
}

Ref<cCaller> fncReadCaller(const Row &row) {
    const auto objCaller = Ref<cCaller>::make();
    objCaller->Category = row.nullSafe("strCustomerCategory");
    objCaller->Comment = row.nullSafe("strCustomerComment");
    objCaller->Email = row.nullSafe("strCustomerEmail");
    objCaller->FullName = row.nullSafe("strCustomerName");
    objCaller->Telephone = row.nullSafe("strCustomerPhone");
    return objCaller;
}

Ref<cResponsible> fncReadResponsible(const Row &row) {
    const Value number = row.value("intAssignedTo");
    return objSettings->Responsibles->GetResponsibleFromID(number.isNull() ? qint16{0} : toInt16(number));
}
} // namespace

Ref<ado::Recordset> cTicket::OpenRow() const {
    return fncReturnRecordset("Select * from tblTickets where strTicketID = " + fncQuoted(TicketID), false, true,
                              false);
}

void cTicket::WriteRow(const Ref<ado::Recordset> &adrTickets) {
    subTrace("Writing Ticket '" + Subject + "' to database");
    const bool added = adrTickets->IsEOF() || TicketID.isEmpty();
    if (added)
        adrTickets->AddNew();
    const Row row(adrTickets);
    subWriteColumns(row, *this);
    if (added)
        TicketID = fncAddRow(*adrTickets, row, TicketID);
    else
        adrTickets->Update();
    subTrace("Writing work items to database");
}

void cTicket::SaveToDB() try {
    const auto adrTickets = OpenRow();
    if (!adrTickets) {
        subAssistantMessage(ouaOutlook, "Failed to open tblTickets for writing!" + (strLineEnd + LNGCHECKPERM));
        return;
    }
    WriteRow(adrTickets);
    WorkDescs->WriteToDB(TicketID);
    subSaveWorked(Saving::Row);
} catch (const Failure &failure) {
    if (failure.number() != failures::unspecified)
        subErrorHandler(failure, "SaveToDB");
    subTrace("The ticket was not written: " + failure.description());
    subTellSaveTrouble(Saving::Row,
                       QStringLiteral("Failed to write current ticket to DB!\r\n"
                                      "Either the database seems to have read-only attribute, or\r\n"
                                      "the ticket seems to be locked by another user!\r\n\r\n"
                                      "Please try again with the proper settings!"),
                       failure);
}

void cTicket::TakeBackRow() const {
    ado::Command objCommand;
    objCommand.SetActiveConnection(adoConnection.get());
    objCommand.SetCommandText("Delete from tblTickets where strTicketID = " + fncQuoted(TicketID));
    objCommand.Execute();
}

void cTicket::ReadFromDB(const Ref<ado::Recordset> &adrRecord) try {
    const Row row(adrRecord);
    HTMLDescription = row.nullSafe("strDescriptionHTML");
    Description = row.plain("strDescription");
    Subject = row.plain("strTicketSubject");
    if (const Value number = row.value("intTicketType"); !number.isNull())
        ProblemType = objSettings->ProblemTypes->GetProblemFromID(toInt16(number));
    Caller = fncReadCaller(row);
    TicketPriority = toInt32(row.value("intPriority"));
    DateCreated = toDateTime(row.value("dteCreated"));
    DateClosed = toDateTime(row.value("dteClosed"));
    Responsible = fncReadResponsible(row);
    Closed = toBool(row.value("blnClosed"));
    Rate = toCurrency(row.value("curRate"));
    TicketID = row.plain("strTicketID");
    TicketStatus = row.nullSafe("strTicketStatus");
    WorkDescs->ReadFromDB(TicketID);
} catch (const Failure &failure) {
    if (failure.number() != failures::invalidNull)
        subErrorHandler(failure, "cTicket.ReadFromDB");
    Description.clear();
}
