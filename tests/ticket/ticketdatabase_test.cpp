// The ticket and its row.

#include "reference/fakehost.h"
#include "reference/program.h"
#include "ticket/ticket.h"

#include <QSqlDatabase>
#include <QSqlQuery>

namespace {

/// Another program in the middle of a write to a database file.
class OtherWriter {
  public:
    explicit OtherWriter(const QString &path) {
        QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", "other writer");
        database.setDatabaseName(path);
        EXPECT_TRUE(database.open());
        EXPECT_TRUE(QSqlQuery(database).exec("BEGIN IMMEDIATE"));
    }
    ~OtherWriter() {
        QSqlDatabase::database("other writer").close();
        QSqlDatabase::removeDatabase("other writer");
    }
    OtherWriter(const OtherWriter &) = delete;
    OtherWriter &operator=(const OtherWriter &) = delete;
};

class TicketRowTest : public DatabaseTest {
  protected:
    /// A ticket as intake makes it, created on a Tuesday in March.
    static cTicket newTicket() {
        cTicket ticket;
        ticket.Subject = "Printer's on fire";
        ticket.Description = "Smoke";
        ticket.HTMLDescription = "<p>Smoke</p>";
        ticket.DateCreated = DateTime{DateTime::fromDate(2026, 3, 3).days + 0.5};
        ticket.Caller = Ref<cCaller>::make();
        ticket.Caller->FullName = "Cal";
        ticket.ProblemType = Ref<cProblemType>::make();
        ticket.Responsible = Ref<cResponsible>::make();
        return ticket;
    }
    static void addWork(const cTicket &ticket, qint16 minutes) {
        const auto work = Ref<cWorkDescription>::make();
        work->Minutes = minutes;
        ticket.WorkDescs->dicWorkDesc->Add(QString::number(ticket.WorkDescs->dicWorkDesc->Count()), work);
    }
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

TEST_F(TicketRowTest, ANewTicketGetsTheNumberOfItsRow) {
    for (const char *number : {"1", "2", "3"}) {
        cTicket ticket = newTicket();
        ticket.SaveToDB();
        EXPECT_EQ(ticket.TicketID, number);
    }
    EXPECT_EQ(rows("tblTickets", {"intTicketID", "strTicketID"}), (QStringList{"1 1", "2 2", "3 3"}));
}

TEST_F(TicketRowTest, ASecondSaveOverwritesTheRow) {
    cTicket ticket = newTicket();
    ticket.SaveToDB();
    ticket.Subject = "Changed";
    ticket.Caller = nullptr;
    ticket.SaveToDB();
    EXPECT_EQ(rows("tblTickets", {"intTicketID", "strTicketID", "strTicketSubject", "strCustomerName"}),
              QStringList{"1 1 Changed Cal"});
}

TEST_F(TicketRowTest, ATicketWhoseRowIsGoneGetsANewRowUnderItsOldNumber) {
    cTicket ticket = newTicket();
    ticket.TicketID = "77";
    ticket.SaveToDB();
    ticket.SaveToDB();
    EXPECT_EQ(ticket.TicketID, "77");
    EXPECT_EQ(rows("tblTickets", {"intTicketID", "strTicketID"}), QStringList{"1 77"});
}

TEST_F(TicketRowTest, ANumberOfQuotesFindsNoOtherTicketsRow) {
    cTicket first = newTicket();
    first.SaveToDB();
    cTicket ticket = newTicket();
    ticket.TicketID = "x' or '1'='1";
    ticket.Subject = "Hostile";
    ticket.SaveToDB();
    EXPECT_EQ(rows("tblTickets", {"strTicketID", "strTicketSubject"}),
              (QStringList{"1 Printer's on fire", "x' or '1'='1 Hostile"}));
}

TEST_F(TicketRowTest, KeepsEveryField) {
    fill("tblTypes", "strTypeDescription", {"Printer"});
    fill("tblPersons", "strPersonName", {"Ann", "Bob"});
    objSettings->ProblemTypes->FromRS(open("tblTypes"));
    objSettings->Responsibles->FromRS(open("tblPersons"));
    cTicket ticket = newTicket();
    ticket.ProblemType = objSettings->ProblemTypes->DicList->Item("Printer");
    ticket.Responsible = objSettings->Responsibles->DicList->Item("Bob");
    ticket.Caller->Category = "VIP";
    ticket.Caller->Comment = "-kind";
    ticket.Caller->Email = "c@x";
    ticket.Caller->Telephone = "+46 1";
    ticket.TicketPriority = 2;
    ticket.DateClosed = DateTime{DateTime::fromDate(2026, 3, 4).days + 0.375};
    ticket.Closed = true;
    ticket.Rate = Currency::fromScaled(123456);
    ticket.TicketStatus = "Open";
    addWork(ticket, 15);
    ticket.SaveToDB();
    const cTicket read = readBack();
    EXPECT_EQ(read.HTMLDescription, "<p>Smoke</p>");
    EXPECT_EQ(read.Description, "Smoke");
    EXPECT_EQ(read.Subject, "Printer's on fire");
    EXPECT_EQ(read.ProblemType, ticket.ProblemType);
    EXPECT_EQ(read.Responsible, ticket.Responsible);
    EXPECT_EQ(read.Caller->FullName, "Cal");
    EXPECT_EQ(read.Caller->Category, "VIP");
    EXPECT_EQ(read.Caller->Comment, "'-kind");
    EXPECT_EQ(read.Caller->Email, "c@x");
    EXPECT_EQ(read.Caller->Telephone, "'+46 1");
    EXPECT_EQ(read.TicketPriority, 2);
    EXPECT_EQ(read.DateCreated, ticket.DateCreated);
    EXPECT_EQ(read.DateClosed, ticket.DateClosed);
    EXPECT_TRUE(read.Closed);
    EXPECT_EQ(read.Rate, ticket.Rate);
    EXPECT_EQ(read.TicketID, "1");
    EXPECT_EQ(read.TicketStatus, "Open");
    EXPECT_EQ(read.WorkDescs->MinutesTotal(), 15);
    EXPECT_TRUE(read.DueDate.isZero());
    EXPECT_EQ(only("intMinutesWorked"), "15");
    EXPECT_EQ(only("strWeekdayName"), weekdayName(2));
    EXPECT_EQ(only("strMonthName"), monthName(3));
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
        cTicket ticket = newTicket();
        ticket.DateCreated = created;
        ticket.DateClosed = DateTime{created.days + minutes / 1440};
        ticket.Closed = true;
        ticket.SaveToDB();
        EXPECT_EQ(only("intMinutesOpen"), stored);
    }
}

TEST_F(TicketRowTest, AnOpenTicketLeavesTheOpenTime) {
    cTicket ticket = newTicket();
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
    cTicket ticket = newTicket();
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
    cTicket ticket = newTicket();
    ticket.Subject = QString(2000, u'é');
    ticket.Caller->FullName = QString("O'Ñame ").repeated(60);
    ticket.Caller->Email = QString(300, 'x') + "@example.com";
    ticket.Caller->Category = QString(60, 'c');
    ticket.Description = QString("Line of a log 漢 🎫 '\"\r\n").repeated(200000);
    ticket.HTMLDescription = "<pre>" + ticket.Description + "</pre>";
    ticket.SaveToDB();
    const cTicket read = readBack();
    EXPECT_EQ(read.Subject, ticket.Subject);
    EXPECT_EQ(read.Caller->FullName, ticket.Caller->FullName);
    EXPECT_EQ(read.Caller->Email, ticket.Caller->Email);
    EXPECT_EQ(read.Caller->Category, QString(50, 'c'));
    EXPECT_TRUE(read.Description == ticket.Description);
    EXPECT_TRUE(read.HTMLDescription == ticket.HTMLDescription);
}

TEST_F(TicketRowTest, AnEmptyBodyIsABlank) {
    cTicket ticket = newTicket();
    ticket.Description.clear();
    ticket.HTMLDescription.clear();
    ticket.Subject.clear();
    ticket.SaveToDB();
    EXPECT_EQ(only("strDescription"), " ");
    EXPECT_EQ(only("strDescriptionHTML"), " ");
    EXPECT_EQ(only("strTicketSubject"), "");
}

TEST_F(TicketRowTest, AppendsTheWorkRows) {
    cTicket ticket = newTicket();
    addWork(ticket, 5);
    ticket.SaveToDB();
    addWork(ticket, 6);
    ticket.SaveToDB();
    EXPECT_EQ(rows("tblWork", {"intTicketID", "intMinutesWorked"}), (QStringList{"1 5", "1 6"}));
}

TEST_F(TicketRowTest, ARowThatSomebodyHoldsIsLeftAndToldOf) {
    const FakeHost host;
    cTicket ticket = newTicket();
    ticket.SaveToDB();
    // Nobody waits for the other one here.
    subCloseConnection();
    adoConnection = Ref<ado::Connection>::make();
    adoConnection->SetConnectionString(fncGetConnection());
    adoConnection->SetCommandTimeout(0);
    adoConnection->Open();
    auto writer = std::make_unique<OtherWriter>(folder() + "/1/Orvelle.mdb");
    ticket.Subject = "Lost";
    addWork(ticket, 5);
    expectQuestion("Failed to write current ticket to DB!\r\nEither the database seems to have read-only attribute, "
                   "or\r\nthe ticket seems to be locked by another user!\r\n\r\nPlease try again");
    ticket.SaveToDB();
    writer.reset();
    EXPECT_EQ(only("strTicketSubject"), "Printer's on fire");
    EXPECT_EQ(rows("tblWork", {"intTicketID"}), QStringList{});
}

// A row without its number in it would not be found again, and the next save would add another.
TEST_F(TicketRowTest, ANewRowThatCannotTakeItsNumberIsNotAdded) {
    const auto run = [this](const QString &statement) {
        {
            QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", "schema");
            database.setDatabaseName(folder() + "/1/Orvelle.mdb");
            EXPECT_TRUE(database.open());
            EXPECT_TRUE(QSqlQuery(database).exec(statement));
        }
        QSqlDatabase::removeDatabase("schema");
    };
    run("CREATE TRIGGER refuse BEFORE UPDATE ON tblTickets BEGIN SELECT RAISE(ABORT, 'refused'); END");
    cTicket ticket = newTicket();
    expectReport("SaveToDB");
    EXPECT_TRUE(endsProcess([&] { ticket.SaveToDB(); }));
    EXPECT_EQ(ticket.TicketID, "");
    subCloseConnection();
    run("DROP TRIGGER refuse");
    EXPECT_EQ(rows("tblTickets", {"intTicketID"}), QStringList{});
    ticket.SaveToDB();
    EXPECT_EQ(rows("tblTickets", {"strTicketID"}), QStringList{ticket.TicketID});
}

TEST_F(TicketRowTest, WithNoDatabaseTellsSo) {
    const FakeHost host;
    subCloseConnection();
    strDBPath = folder() + "\\nowhere";
    cTicket ticket = newTicket();
    expectQuestion("Failed to open tblTickets for writing!\r\n" + LNGCHECKPERM);
    ticket.SaveToDB();
    EXPECT_EQ(ticket.TicketID, "");
}

TEST_F(TicketRowTest, ReportsARowThatIsNoTickets) {
    newTicket().SaveToDB();
    cTicket ticket;
    expectReport("cTicket.ReadFromDB");
    EXPECT_TRUE(endsProcess([&] { ticket.ReadFromDB(open("Select strTicketID from tblTickets")); }));
}

TEST_F(TicketRowTest, ALogTooLongToCountIsReported) {
    cTicket ticket = newTicket();
    addWork(ticket, 32767);
    addWork(ticket, 1);
    expectReport("SaveToDB");
    EXPECT_TRUE(endsProcess([&] { ticket.SaveToDB(); }));
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
        cTicket saved = newTicket();
        saved.TicketStatus = "Open";
        saved.SaveToDB();
        const auto table = open("tblTickets");
        table->Fields(one.column).SetValue(Value::Null{});
        table->Update();
        cTicket ticket;
        ticket.Description = "old";
        ticket.Subject = "old";
        ticket.TicketStatus = "old";
        ticket.ReadFromDB(open("tblTickets"));
        EXPECT_EQ(ticket.Subject, one.subjectRead ? "Printer's on fire" : "old");
        EXPECT_EQ(ticket.Description, one.statusRead ? "Smoke" : "");
        EXPECT_EQ(!ticket.Caller.isNothing(), one.callerRead);
        EXPECT_EQ(ticket.TicketStatus != "old", one.statusRead);
    }
}

} // namespace
