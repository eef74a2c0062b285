// The ticket and its row.

#include "orvelle/reference/program.h"
#include "orvelle/ticket/ticketfixture.h"
#include "support/fakeobject.h"
#include "support/plaintool.h"

namespace {

class TicketRowTest : public DatabaseTest {
  protected:
    static QString only(const QString &column) {
        const QStringList values = rows("tblTickets", {column});
        EXPECT_EQ(values.size(), 1);
        return values.value(0);
    }
    static cTicket readBack(const QString &number = "1") {
        cTicket ticket;
        ticket.ReadFromDB(open("Select * from tblTickets where strTicketID = '" + number + "'"));
        return ticket;
    }
};

TEST_F(TicketRowTest, ANewTicketGetsTheNumberOfItsRowAndAnOldOneKeepsItsOwn) {
    // The number before, and after the first save; a row that is gone comes anew, and quotes find no other one.
    const std::pair<const char *, const char *> cases[] = {
        {"", "1"}, {"", "2"}, {"77", "77"}, {"x' or '1'='1", "x' or '1'='1"}};
    for (const auto &[before, after] : cases) {
        cTicket ticket = fullTicket();
        ticket.TicketID = before;
        ticket.SaveToDB();
        EXPECT_EQ(ticket.TicketID, after);
        ticket.Subject = QString("Of ") + after;
        ticket.Caller = nullptr;
        ticket.SaveToDB();
        EXPECT_EQ(ticket.TicketID, after);
    }
    EXPECT_EQ(rows("tblTickets", {"intTicketID", "strTicketID", "strTicketSubject", "strCustomerName"}, "|"),
              (QStringList{"1|1|Of 1|Cal O'Caller", "2|2|Of 2|Cal O'Caller", "3|77|Of 77|Cal O'Caller",
                           "4|x' or '1'='1|Of x' or '1'='1|Cal O'Caller"}));
}

TEST_F(TicketRowTest, KeepsEveryField) {
    fill("tblTypes", "strTypeDescription", {"Printer"});
    fill("tblPersons", "strPersonName", {"Ann", "Bob"});
    objSettings->ProblemTypes->FromRS(open("tblTypes"));
    objSettings->Responsibles->FromRS(open("tblPersons"));
    cTicket ticket = fullTicket();
    ticket.ProblemType = objSettings->ProblemTypes->DicList->Item("Printer");
    ticket.Responsible = objSettings->Responsibles->DicList->Item("Bob");
    ticket.Caller->Comment = "-kind";
    ticket.Caller->Telephone = "+46 1";
    ticket.DateClosed = DateTime{DateTime::fromDate(2026, 3, 4).days + 0.375};
    ticket.Closed = true;
    ticket.Rate = Currency::fromScaled(123456);
    addWork(ticket, "first", 5);
    ticket.SaveToDB();
    addWork(ticket, "second", 10);
    ticket.SaveToDB();
    const cTicket read = readBack();
    EXPECT_EQ(read.ProblemType, ticket.ProblemType);
    EXPECT_EQ(read.Responsible, ticket.Responsible);
    // A row has no due date, and texts that a sheet would take for a formula are marked.
    ticket.DueDate = {};
    ticket.Caller->Comment = "'-kind";
    ticket.Caller->Telephone = "'+46 1";
    EXPECT_EQ(fieldsOf(read), fieldsOf(ticket));
    EXPECT_EQ(rows("tblTickets", {"intMinutesWorked", "strWeekdayName", "strMonthName"}),
              QStringList{"15 " + weekdayName(2) + " " + monthName(3)});
    EXPECT_EQ(rows("tblWork", {"intTicketID", "intMinutesWorked"}), (QStringList{"1 5", "1 10"}));
}

TEST_F(TicketRowTest, StoresTheOpenTimeOfAClosedTicketUpToALimit) {
    const DateTime created{DateTime::fromDate(2026, 3, 3).days + 0.5};
    const QList<std::pair<double, QString>> cases{{30, "30"}, {30999, "30999"}, {31000, "31000"}, {400000, "31000"}};
    for (const auto &[minutes, stored] : cases) {
        newDatabase();
        // Service round the clock, so that the open time is what passed.
        for (const char *name : {"ServiceStart", "BreakStart", "BreakEnd"})
            objSettings->OtherSettings->SetValue(name, "0:00");
        objSettings->OtherSettings->SetValue("ServiceEnd", "23:59:59");
        objSettings->OtherSettings->SetValue("DayServiceEnd", "7");
        cTicket ticket = fullTicket();
        ticket.DateCreated = created;
        ticket.DateClosed = DateTime{created.days + minutes / 1440};
        ticket.Closed = true;
        ticket.SaveToDB();
        EXPECT_EQ(only("intMinutesOpen"), stored);
    }
}

TEST_F(TicketRowTest, AnOpenTicketLeavesTheOpenTime) {
    cTicket ticket = fullTicket();
    ticket.SaveToDB();
    EXPECT_EQ(only("intMinutesOpen"), "Null");
    ticket.Closed = true;
    ticket.DateClosed = DateTime{ticket.DateCreated.days + 3.0 / 24};
    ticket.SaveToDB();
    const QString stored = only("intMinutesOpen");
    EXPECT_NE(stored, "Null");
    ticket.Closed = false;
    ticket.DateClosed = {};
    ticket.SaveToDB();
    EXPECT_EQ(only("intMinutesOpen"), stored);
    EXPECT_TRUE(readBack().DateClosed.isZero());
}

TEST_F(TicketRowTest, ABlankTypeOrResponsibleLeavesTheReference) {
    cTicket ticket = fullTicket();
    ticket.ProblemType->ID = 4;
    ticket.Responsible->ID = 5;
    ticket.SaveToDB();
    for (const bool exist : {true, false}) {
        ticket.ProblemType = exist ? Ref<cProblemType>::make() : nullptr;
        ticket.Responsible = exist ? Ref<cResponsible>::make() : nullptr;
        ticket.SaveToDB();
        EXPECT_EQ(rows("tblTickets", {"intTicketType", "intAssignedTo"}), QStringList{"4 5"});
    }
    // Nobody in the lists has these numbers: a blank type, and no responsible at all.
    const cTicket read = readBack();
    EXPECT_EQ(read.ProblemType->ProblemDescription, "");
    EXPECT_TRUE(read.Responsible.isNothing());
}

TEST_F(TicketRowTest, ATicketIsSavableWhateverAMailHolds) {
    cTicket ticket = fullTicket();
    ticket.Subject = QChar(0xFFFF) + (QChar(0xD83D) + QString(2000, u'é'));
    ticket.Caller->FullName = QString("O'Ñame ").repeated(60);
    ticket.Caller->Email = QString(300, 'x') + "@example.com";
    // Cut in the middle of a sign.
    ticket.Caller->Category = QString(49, 'c') + QString("🎫").repeated(5);
    ticket.Description = QString("Line of a log 漢 🎫 '\"\r\n").repeated(200000);
    ticket.HTMLDescription = "<pre>" + ticket.Description + "</pre>";
    ticket.SaveToDB();
    const cTicket read = readBack();
    EXPECT_EQ(read.Subject, "\uFFFD\uFFFD" + QString(253, u'é'));
    EXPECT_EQ(read.Caller->FullName, ticket.Caller->FullName.left(255));
    EXPECT_EQ(read.Caller->Email, ticket.Caller->Email.left(255));
    EXPECT_EQ(read.Caller->Category, QString(49, 'c'));
    EXPECT_TRUE(read.Description == ticket.Description);
    EXPECT_TRUE(read.HTMLDescription == ticket.HTMLDescription);
    ticket.Subject = ticket.Description = ticket.HTMLDescription = QString();
    ticket.SaveToDB();
    EXPECT_EQ(rows("tblTickets", {"strTicketSubject", "strDescription", "strDescriptionHTML"}, "|"),
              QStringList{"| | "});
}

TEST_F(TicketRowTest, ARowThatSomebodyHoldsIsLeftAndToldOf) {
    ouaOutlook = host::Application(std::make_shared<support::FakeObject>("Application"));
    cTicket ticket = fullTicket();
    ticket.SaveToDB();
    // Nobody waits for the other one here.
    subCloseConnection();
    adoConnection = Ref<ado::Connection>::make();
    adoConnection->SetConnectionString(fncGetConnection());
    adoConnection->SetCommandTimeout(0);
    adoConnection->Open();
    // Another program's write that is under way.
    const auto other = Ref<ado::Connection>::make();
    other->SetConnectionString(fncGetConnection());
    other->Open();
    other->BeginTrans();
    ticket.Subject = "Lost";
    addWork(ticket, "work", 5);
    answers.expect("Failed to write current ticket to DB!\r\nEither the database seems to have read-only attribute, "
                   "or\r\nthe ticket seems to be locked by another user!\r\n\r\nPlease try again");
    ticket.SaveToDB();
    other->RollbackTrans();
    EXPECT_EQ(only("strTicketSubject"), "Printer's on fire");
    EXPECT_EQ(rows("tblWork", {"intTicketID"}), QStringList{});
}

// A row without its number in it would not be found again, and the next save would add another.
TEST_F(TicketRowTest, ANewRowThatCannotTakeItsNumberIsNotAdded) {
    plainTool(path("1/Orvelle.mdb"),
              {"CREATE TRIGGER refuse BEFORE UPDATE ON tblTickets BEGIN SELECT RAISE(ABORT, 'refused'); END"});
    cTicket ticket = fullTicket();
    expectReport("SaveToDB");
    EXPECT_TRUE(endsProcess([&] { ticket.SaveToDB(); }));
    EXPECT_EQ(ticket.TicketID, "");
    subCloseConnection();
    plainTool(path("1/Orvelle.mdb"), {"DROP TRIGGER refuse"});
    EXPECT_EQ(rows("tblTickets", {"intTicketID"}), QStringList{});
    ticket.SaveToDB();
    EXPECT_EQ(rows("tblTickets", {"strTicketID"}), QStringList{ticket.TicketID});
}

TEST_F(TicketRowTest, WithNoDatabaseTellsSo) {
    ouaOutlook = host::Application(std::make_shared<support::FakeObject>("Application"));
    subCloseConnection();
    strDBPath = at("nowhere");
    cTicket ticket = fullTicket();
    answers.expect("Failed to open tblTickets for writing!\r\n" + LNGCHECKPERM);
    ticket.SaveToDB();
    EXPECT_EQ(ticket.TicketID, "");
}

struct NullCase {
    const char *column;
    /// What of the record still has its old value afterwards.
    bool subjectRead, callerRead, statusRead;
};

TEST_F(TicketRowTest, ANullWhereNoneMayBeEndsTheReading) {
    const QList<NullCase> cases{
        {"strDescription", false, false, false}, {"strTicketSubject", false, false, false},
        {"intPriority", true, true, false},      {"dteClosed", true, true, false},
        {"blnClosed", true, true, false},        {"strTicketID", true, true, false},
        {"strTicketStatus", true, true, true},   {"strCustomerName", true, true, true},
        {"intTicketType", true, true, true},     {"intAssignedTo", true, true, true},
    };
    for (const NullCase &one : cases) {
        SCOPED_TRACE(one.column);
        newDatabase();
        fullTicket().SaveToDB();
        const auto table = open("tblTickets");
        table->Fields(one.column).SetValue(Value::Null{});
        table->Update();
        cTicket ticket;
        ticket.Description = "old";
        ticket.Subject = "old";
        ticket.TicketStatus = "old";
        ticket.ReadFromDB(open("tblTickets"));
        EXPECT_EQ(ticket.Subject, one.subjectRead ? "Printer's on fire" : "old");
        EXPECT_EQ(ticket.Description, one.statusRead ? "It burns" : "");
        EXPECT_EQ(!ticket.Caller.isNothing(), one.callerRead);
        EXPECT_EQ(ticket.TicketStatus != "old", one.statusRead);
    }
}

struct ReportCase {
    const char *name, *procedure;
    std::function<void()> step;
};

/// A failure is reported under the procedure's name, and the report ends the process.
class TicketReports : public DatabaseTest, public testing::WithParamInterface<ReportCase> {};

TEST_P(TicketReports, UnderTheirNamesAndEnd) {
    expectReport(GetParam().procedure);
    EXPECT_TRUE(endsProcess(GetParam().step));
}

INSTANTIATE_TEST_SUITE_P(
    Steps, TicketReports,
    testing::Values(ReportCase{"a row that is no ticket's", "cTicket.ReadFromDB",
                               [] {
                                   fullTicket().SaveToDB();
                                   cTicket().ReadFromDB(open("Select strTicketID from tblTickets"));
                               }},
                    ReportCase{"a log too long to count", "SaveToDB",
                               [] {
                                   cTicket ticket = fullTicket();
                                   addWork(ticket, "a", 32767);
                                   addWork(ticket, "b", 1);
                                   ticket.SaveToDB();
                               }},
                    ReportCase{"minutes that do not fit", "cWorkDescription.FromString",
                               [] { cWorkDescs().FromString("a\t3/4/2026\t32768\tAnn\r\n====\r\n"); }},
                    ReportCase{"a number that is none", "cWorkDescs_WriteToDB",
                               [] {
                                   cWorkDescs log;
                                   log.FromString("a\t\t1\tAnn");
                                   log.WriteToDB("7; drop table tblWork");
                               }},
                    ReportCase{"a number that is too large", "cWorkDescs_ReadFromDB",
                               [] { cWorkDescs().ReadFromDB("99999999999"); }}),
    [](const auto &each) { return QString(each.param.name).remove('\'').replace(' ', '_').toStdString(); });

} // namespace
