// The ticket between a real desk and a real database.

#include "reference/program.h"
#include "ticket/ticket.h"

#include "desk/objects/desk.h"
#include "outlook/host/host.h"
#include "platform/safeobjects/safeobjects.h"

namespace {

class TicketOnADeskTest : public DatabaseTest {
  protected:
    void SetUp() override {
        DatabaseTest::SetUp();
        m_desk = std::make_unique<desk::Desk>(desk::DeskOptions{.profile = folder() + "/profile", .user = "Ann Other"});
        ouaOutlook = host::Application(m_desk->application());
        onsMAPI = ouaOutlook->GetNamespace("MAPI");
        oufTickets = onsMAPI->Folders("Public Folders").Folders().Add("Helpdesk", 6);
        safeobjects::registerComponents([] { return onsMAPI->object(); });
        objSettings->Responsibles->FromString("Ann Other\ta@x\t60");
        objSettings->ProblemTypes->FromString("Printer\tHardware\t15");
    }
    void TearDown() override {
        DatabaseTest::TearDown();
        m_desk.reset();
    }

    static cTicket fullTicket() {
        cTicket ticket;
        ticket.Subject = "Printer's on fire";
        ticket.HTMLDescription = "<html><body><p>It burns: å 漢</p></body></html>";
        ticket.TicketPriority = 2;
        ticket.TicketStatus = "Open";
        ticket.DateCreated = DateTime{DateTime::fromDate(2026, 3, 3).days + 0.5};
        ticket.DueDate = DateTime::fromDate(2026, 3, 4);
        ticket.ProblemType = objSettings->ProblemTypes->DicList->Item("Printer");
        ticket.Responsible = objSettings->Responsibles->DicList->Item("Ann Other");
        ticket.Caller = Ref<cCaller>::make();
        ticket.Caller->FullName = "Cal O'Caller";
        ticket.Caller->Email = "c@x";
        ticket.Caller->Comment = "kind";
        ticket.Caller->Telephone = "+46 1";
        ticket.Caller->Category = "VIP";
        return ticket;
    }
    static void addWork(const cTicket &ticket, const QString &description, qint16 minutes) {
        const auto work = Ref<cWorkDescription>::make();
        work->Description = description;
        work->WorkDate = DateTime::fromDate(2026, 3, 3);
        work->Minutes = minutes;
        work->User = "Ann Other";
        ticket.WorkDescs->dicWorkDesc->Add(QString::number(ticket.WorkDescs->dicWorkDesc->Count()), work);
    }
    /// Saved to both homes; found again in the ticket folder.
    static host::Item newItem(cTicket &ticket) {
        ticket.SaveToDB();
        host::Item none;
        ticket.SaveToOutlook(false, false, none);
        return ticket.GetPostItem();
    }

  private:
    std::unique_ptr<desk::Desk> m_desk;
};

TEST_F(TicketOnADeskTest, ComesBackFromItsItemWhole) {
    cTicket ticket = fullTicket();
    addWork(ticket, QString("long ").repeated(3000), 90);
    const host::Item item = newItem(ticket);
    ASSERT_TRUE(item);
    EXPECT_EQ(item.MessageClass(), "IPM.Post.HelpDesk.Ticket.8");
    cTicket read;
    ASSERT_TRUE(read.ReadFromOutlook(item));
    EXPECT_EQ(read.TicketID, "1");
    EXPECT_EQ(read.Subject, ticket.Subject);
    EXPECT_TRUE(read.HTMLDescription.contains("It burns: å 漢"));
    EXPECT_TRUE(read.Description.contains("It burns: å 漢"));
    EXPECT_EQ(read.TicketPriority, 2);
    EXPECT_EQ(read.TicketStatus, "Open");
    EXPECT_EQ(read.DateCreated, ticket.DateCreated);
    EXPECT_EQ(read.DueDate, ticket.DueDate);
    EXPECT_EQ(read.ProblemType, ticket.ProblemType);
    EXPECT_EQ(read.Responsible, ticket.Responsible);
    EXPECT_EQ(read.Caller->FullName, "Cal O'Caller");
    EXPECT_EQ(read.Caller->Telephone, "+46 1");
    EXPECT_EQ(read.Caller->Category, "VIP");
    EXPECT_EQ(read.WorkDescs->ToString(), ticket.WorkDescs->ToString());
    EXPECT_EQ(read.Rate, Currency::fromScaled(900000));
}

TEST_F(TicketOnADeskTest, ARowAddedToTheLogReachesBothHomes) {
    cTicket ticket = fullTicket();
    addWork(ticket, "first", 5);
    host::Item item = newItem(ticket);
    item.UnRead(false);
    item.Save();
    cTicket again;
    ASSERT_TRUE(again.ReadFromOutlook(item));
    addWork(again, "second", 6);
    again.SaveToDB();
    again.SaveToOutlook(false, false, item);
    EXPECT_EQ(rows("tblWork", {"strWorkDescription", "intMinutesWorked"}), (QStringList{"first 5", "second 6"}));
    EXPECT_TRUE(item.UnRead());
    cTicket last;
    ASSERT_TRUE(last.ReadFromOutlook(item));
    EXPECT_EQ(last.WorkDescs->MinutesTotal(), 11);
    EXPECT_EQ(oufTickets->Items().Count(), 1);
}

TEST_F(TicketOnADeskTest, AReopenedTicketIsANewItemUnderItsNumber) {
    cTicket ticket = fullTicket();
    addWork(ticket, "done", 5);
    ticket.Closed = true;
    ticket.DateClosed = DateTime{ticket.DateCreated.days + 0.125}; // of which the first hour is a break
    newItem(ticket).Delete();
    cTicket closed;
    closed.ReadFromDB(open("Select * from tblTickets"));
    EXPECT_TRUE(closed.Closed);
    host::Item none;
    closed.SaveToOutlook(false, false, none);
    closed.Closed = false;
    closed.SaveToDB();
    cTicket reopened;
    ASSERT_TRUE(reopened.ReadFromOutlook(closed.GetPostItem()));
    EXPECT_EQ(reopened.TicketID, "1");
    EXPECT_TRUE(reopened.DueDate.isZero());
    EXPECT_EQ(reopened.WorkDescs->MinutesTotal(), 5);
    EXPECT_EQ(rows("tblTickets", {"strTicketID", "blnClosed", "intMinutesOpen"}), QStringList{"1 False 120"});
}

TEST_F(TicketOnADeskTest, AnItemThatSomebodyElseChangedIsNotWrittenToTheRow) {
    cTicket ticket = fullTicket();
    newItem(ticket);
    const host::Item mine = ticket.GetPostItem();
    mine.Subject("Mine");
    const host::Item theirs = onsMAPI->GetItemFromID(mine.EntryID());
    theirs.Subject("Theirs");
    theirs.Save();
    expectQuestion("Unable to save current item!");
    cTicket read;
    EXPECT_FALSE(read.ReadFromOutlook(mine));
    EXPECT_EQ(rows("tblTickets", {"strTicketSubject"}), QStringList{"Printer's on fire"});
}

TEST_F(TicketOnADeskTest, FindsNoItemOfAnotherNumber) {
    cTicket ticket = fullTicket();
    newItem(ticket);
    for (const char *number : {"", "2", "11", "1' or '1'='1", "{1}", "]"}) {
        cTicket other;
        other.TicketID = number;
        EXPECT_TRUE(other.GetPostItem().isNothing()) << number;
    }
}

} // namespace
