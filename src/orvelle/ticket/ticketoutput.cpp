// What a ticket looks like outside of the system: the digest in plain text, and the page of a mail or a printout.

#include "orvelle/ticket/ticket.h"

#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"
#include "orvelle/reference/settings.h"
#include "orvelle/reference/texts.h"
#include "platform/value/convert.h"

namespace {
/// A field of an object that the ticket may not have.
template <class T>
QString fncFieldOf(const Ref<T> &object, QString T::*member) {
    return object ? object.get().*member : QString();
}

/// One line of the digest; nothing for an empty value.
QString fncOptionalLine(const QString &strCaption, const QString &strValue) {
    return strValue.isEmpty() ? QString() : strCaption + ": " + strValue + strLineEnd;
}

QString fncEqualsSigns(int count) { return QString(count, u'=') + strLineEnd; }

QString fncCallerLines(const cTicket &objTicket) {
    return LNGCALLER + (":" + (strLineEnd + fncEqualsSigns(9))) + LNGNAME + ": " +
           fncFieldOf(objTicket.Caller, &cCaller::FullName) + strLineEnd +
           fncOptionalLine(LNGEMAIL, fncFieldOf(objTicket.Caller, &cCaller::Email)) +
           fncOptionalLine(LNGPHONE, fncFieldOf(objTicket.Caller, &cCaller::Telephone)) +
           fncOptionalLine(LNGCALLERCATEGORY, fncFieldOf(objTicket.Caller, &cCaller::Category));
}

QString fncTableRow(const QString &strCaption, const QString &strValue) {
    return "<tr><td width='28%'>" + (strLineEnd + strCaption) + ":</td><td width='72%'>" + strValue + "</td>" +
           strLineEnd;
}

/// The page that serves where no template is set.
QString fncDefaultTemplate() {
    const QString table = QString("<table  width='75%'>") + strLineEnd;
    const QString tableEnd = QString("</table>") + strLineEnd;
    return "<html>\r\n<head>\r\n\r\n<style>\r\np{ margin-bottom: -20 }</style>\r\n\r\n</head>\r\n"
           "<body topmargin='0' leftmargin='0'>\r\n"
           "<h3>Orvelle Ticket [TICKETID]</h3>\r\n<h3>[SUBJECT]</h3>\r\n\r\n" +
           table + fncTableRow(LNGRESPONSIBLE, "[RESPONSIBLE]") + fncTableRow(LNGPROBLEMTYPE, "[PROBLEMTYPE]") +
           tableEnd + "<h3>" + LNGDESCRIPTION + "</h3>\r\n[DESCRIPTION]\r\n<hr>\r\n" + table +
           fncTableRow(LNGCALLER, "[CALLERNAME]") +
           fncTableRow(LNGEMAIL, "<a href='mailto:[CALLEREMAIL]'>[CALLEREMAIL]") +
           fncTableRow(LNGPHONE, "[CALLERPHONE]") + fncTableRow(LNGCALLERCATEGORY, "[CALLERCATEGORY]") + tableEnd +
           "</body>\r\n</html>\r\n";
}

/// The other setting that holds the template; none for an unknown option.
QString fncTemplateName(qint32 OutputOption) {
    switch (OutputOption) {
    case 1:
        return "EmailToCaller";
    case 2:
        return "EmailToResponsible";
    case 3:
        return "PrintOut";
    default:
        return {};
    }
}

QString fncTemplateFor(qint32 OutputOption) {
    const QString name = fncTemplateName(OutputOption);
    const QString page =
        name.isEmpty() ? QString() : toText(objSettings->OtherSettings->GetValue(name, valuetype::text));
    return fncTrim(page).isEmpty() ? fncDefaultTemplate() : page;
}
} // namespace

QString cTicket::ToString() const {
    QString text = "Orvelle Ticket " + TicketID + strLineEnd + fncEqualsSigns(51) + Subject + strLineEnd +
                   fncEqualsSigns(51) + strLineEnd;
    text += LNGRESPONSIBLE + (":" + fncFieldOf(Responsible, &cResponsible::FullName) + strLineEnd);
    if (ProblemType)
        text += LNGPROBLEMTYPE + (":" + ProblemType->ProblemDescription + strLineEnd + strLineEnd);
    text += fncCallerLines(*this);
    // A log whose minutes can't be added up leaves the rest of the digest as it is.
    text += LNGMINUTES + (": " + AttemptOr([&] { return QString::number(WorkDescs->MinutesTotal()); }, QString()));
    text += strLineEnd + (strLineEnd + fncEqualsSigns(14));
    return text + Description;
}

QString cTicket::ToHTML(qint32 OutputOption) const {
    // One after the other: a field that a value brings in is filled by those that come later.
    const QList<std::pair<QString, QString>> fields{
        {"[TICKETID]", TicketID},
        {"[SUBJECT]", Subject},
        {"[RESPONSIBLE]", fncFieldOf(Responsible, &cResponsible::FullName)},
        {"[PROBLEMTYPE]", fncFieldOf(ProblemType, &cProblemType::ProblemDescription)},
        {"[DESCRIPTION]", HTMLDescription},
        {"[RESPONSIBLE]", fncFieldOf(Responsible, &cResponsible::FullName)},
        {"[CALLERNAME]", fncFieldOf(Caller, &cCaller::FullName)},
        {"[CALLEREMAIL]", fncFieldOf(Caller, &cCaller::Email)},
        {"[CALLERPHONE]", fncFieldOf(Caller, &cCaller::Telephone)},
        {"[CALLERCATEGORY]", fncFieldOf(Caller, &cCaller::Category)},
        {"[STATUS]", TicketStatus},
        {"[PRIORITY]", QString::number(TicketPriority)},
    };
    QString page = fncTemplateFor(OutputOption);
    for (const auto &[field, value] : fields)
        page.replace(field, value);
    return page;
}
