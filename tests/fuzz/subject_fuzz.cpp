// Any subject: the ticket number in it is what stands between the first braces, whatever it is; and where it is looked
// for, in the ticket folder and in the database, it stays a text to compare with.
#include "fault.h"
#include "program.h"

#include "desk/content/filter.h"
#include "orvelle/database/connection.h"
#include "orvelle/database/creation.h"
#include "orvelle/reference/texts.h"
#include "orvelle/ticket/ticketfolders.h"
#include "platform/ado/jet/engine.h"

#include <QTemporaryDir>

namespace {

const QStringList knownNumbers{"1", "2"};

QString numberIn(const QString &subject) {
    QString number;
    bool isOpen = false;
    for (const QChar letter : subject) {
        if (isOpen && letter == u'}')
            return number;
        if (isOpen)
            number += letter;
        isOpen = isOpen || letter == u'{';
    }
    return {};
}

std::string faultInFilter(const QString &number) {
    const desk::Filter filter = desk::parseFilter("[Ticket ID] =" + fncQuoted(number));
    const desk::FilterCondition expected{"Ticket ID", desk::FilterCondition::Operator::Equal, number};
    return filter == desk::Filter{expected} ? std::string() : "the filter looks for something else";
}

void makeDatabase(const QString &folder) {
    ado::addJetEngine();
    strProgramFolderOverride = folder;
    strDBPath = folder;
    strDBFileName = "Orvelle.mdb";
    fncCreateAccessDB(folder + "\\Orvelle.mdb");
    const auto tickets = fncReturnRecordset("tblTickets", false, true, false);
    for (const QString &number : knownNumbers) {
        tickets->AddNew();
        tickets->Fields("strTicketID").SetValue(number);
        tickets->Update();
    }
}

std::string faultInDatabase(const QString &number) {
    // The data access takes no statement with one.
    if (number.contains(QChar::Null))
        return {};
    const auto found =
        fncReturnRecordset("Select * from tblTickets where strTicketID = " + fncQuoted(number), false, true, false);
    const int expected = knownNumbers.contains(number) ? 1 : 0;
    return found->RecordCount() == expected ? std::string() : "found " + std::to_string(found->RecordCount()) + " rows";
}

} // namespace

std::string faultOf(const QByteArray &bytes) {
    static const QTemporaryDir folder;
    static fuzz::Program &program = fuzz::Program::instance();
    static const QStringList refused = program.run([] { makeDatabase(folder.path()); });
    if (!refused.isEmpty())
        return "no database: " + refused.join(u'\n').toStdString();
    const QString subject = QString::fromUtf8(bytes);
    const QString number = fncGetTicketIDFromSubject(subject);
    if (number != numberIn(subject))
        return "the number was read as " + number.toStdString();
    std::string fault;
    const QStringList reports = program.run([&] {
        fault = faultInFilter(number);
        if (fault.empty())
            fault = faultInDatabase(number);
    });
    return reports.isEmpty() ? fault : "reported: " + reports.join(u'\n').toStdString();
}
