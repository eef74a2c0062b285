// The ticket and its item in the ticket folder of a real desk.

#include "orvelle/ticket/ticketfixture.h"
#include "support/session.h"

namespace {

class TicketItem : public support::Session {
  protected:
    void SetUp() override {
        Session::SetUp();
        objSettings->Responsibles->FromString("Ann\ta@x\t60");
        objSettings->ProblemTypes->FromString("Printer\tHardware\t15");
    }

    /// Notes what is asked of it, and fails on demand.
    template <class Handle>
    Handle counted(const Handle &handle) const {
        return Handle(support::Counting::of(handle.object(), m_questions));
    }
    /// Saved to both homes; found again in the ticket folder.
    static host::Item newItem(cTicket &ticket) {
        ticket.SaveToDB();
        host::Item none;
        ticket.SaveToOutlook(false, false, none);
        EXPECT_TRUE(none.isNothing());
        return ticket.GetPostItem();
    }
    static host::Item newItem() {
        cTicket ticket = fullTicket();
        return newItem(ticket);
    }

    support::Counting::Log m_questions = std::make_shared<support::Counting::Questions>();
};

TEST_F(TicketItem, GoesIntoANewItemAndComesBackWhole) {
    cTicket ticket = fullTicket();
    addWork(ticket, QString("é漢 long ").repeated(2000), 90);
    const host::Item item = newItem(ticket);
    ASSERT_TRUE(item);
    EXPECT_EQ(item.MessageClass(), "IPM.Post.HelpDesk.Ticket.8");
    EXPECT_EQ(item.BodyFormat(), 2);
    EXPECT_FALSE(item.UnRead());
    const std::pair<const char *, QString> properties[] = {{"Ticket ID", "1"},
                                                           {"Created by", "Ann"},
                                                           {"Responsible", "Ann"},
                                                           {"Created at", "3/3/2026 12:00:00 PM"},
                                                           {"Date due", "3/4/2026"},
                                                           {"Custom Status", "Open"},
                                                           {"Problem Type", "Printer"},
                                                           {"Problem category", "Hardware"},
                                                           {"Caller name", "Cal O'Caller"},
                                                           {"Caller email", "c@x"},
                                                           {"Caller comment", "kind"},
                                                           {"Ticket", ticket.ToString()}};
    for (const auto &[name, value] : properties)
        EXPECT_EQ(property(item, name), value) << name;
    // As somebody types them into the form.
    item.UserProperties().Find("Problem Type").setValue("PRINTER");
    item.UserProperties().Find("Responsible").setValue("ann");
    item.Save();

    cTicket read;
    read.Closed = true;
    ASSERT_TRUE(read.ReadFromOutlook(counted(item)));
    EXPECT_FALSE(m_questions->contains("PostItem.Save()"));
    EXPECT_EQ(read.ProblemType, objSettings->ProblemTypes->DicList->Item("Printer"));
    EXPECT_EQ(read.Responsible, objSettings->Responsibles->DicList->Item("Ann"));
    EXPECT_TRUE(read.HTMLDescription.contains("It burns: å 漢"));
    EXPECT_TRUE(read.Description.contains("It burns: å 漢"));
    ticket.HTMLDescription = read.HTMLDescription;
    ticket.Description = read.Description;
    ticket.Rate = Currency::fromScaled(900000);
    EXPECT_EQ(fieldsOf(read), fieldsOf(ticket));
}

TEST_F(TicketItem, AnUnsavedItemIsSavedFirst) {
    const host::Item item = newItem();
    item.Subject("Changed");
    cTicket read;
    EXPECT_TRUE(read.ReadFromOutlook(counted(item)));
    EXPECT_EQ(read.Subject, "Changed");
    EXPECT_TRUE(item.Saved());
    EXPECT_LT(m_questions->indexOf("PostItem.Save()"), m_questions->indexOf("PostItem.Body"));
}

TEST_F(TicketItem, NamesOfNoListAndMissingPropertiesAreBlank) {
    const host::Item item = put(intake(), "IPM.Post", "bare");
    cTicket ticket;
    EXPECT_TRUE(ticket.ReadFromOutlook(item));
    EXPECT_EQ(ticket.Responsible->FullName, "");
    EXPECT_FALSE(objSettings->Responsibles->DicList->Exists(""));
    for (const char *name : {"Responsible", "Problem Type"})
        item.UserProperties().Add(name, 1).setValue("Stranger");
    item.Save();
    EXPECT_TRUE(ticket.ReadFromOutlook(item));
    EXPECT_EQ(ticket.Responsible->FullName, "Stranger");
    EXPECT_EQ(ticket.Responsible->ID, 0);
    EXPECT_EQ(ticket.ProblemType->ProblemDescription, "");
    EXPECT_EQ(ticket.Rate, Currency());
    EXPECT_EQ(ticket.TicketID, "");
    EXPECT_TRUE(ticket.DateCreated.isZero());
    EXPECT_EQ(ticket.Caller->FullName, "");
}

TEST_F(TicketItem, OneThatCannotBeReadIsToldOfAndTheRecordIsNotWhole) {
    struct Case {
        const char *name;
        bool saved;
        QString failing;
        qint32 number;
        QString message;
    };
    const QString tail = strLineEnd + QString("failed on demand");
    const QList<Case> cases{
        {"changed", true, "PostItem.HTMLBody", failures::itemChanged,
         "Ticket has been changed by anothe user!\r\nUnable to save changes!" + tail},
        {"gone", true, "PostItem.Body", failures::itemGone, "Ticket has been deleted!\r\nUnable to open!" + tail},
        {"lost hold", true, "PostItem.UserProperties", failures::catastrophic, ""},
        {"save refused", false, "PostItem.Save()", failures::itemChanged, "Unable to save current item!"},
        {"behind a save the other fields are still read", false, "PostItem.Body", failures::itemGone, ""},
    };
    const host::Item item = newItem();
    for (const Case &one : cases) {
        SCOPED_TRACE(one.name);
        if (!one.saved)
            item.Importance(1);
        m_questions->failing = {{one.failing, one.number}};
        if (!one.message.isEmpty())
            answers.expect(one.message);
        cTicket ticket;
        EXPECT_FALSE(ticket.ReadFromOutlook(counted(item)));
        if (!one.saved && one.message.isEmpty()) {
            EXPECT_EQ(ticket.Description, "");
            EXPECT_EQ(ticket.TicketID, "1");
            EXPECT_EQ(ticket.Caller->FullName, "Cal O'Caller");
        }
    }
    m_questions->failing = {{"PostItem.Body", failures::memberMissing}};
    expectReport("ReadFromOutlook");
    cTicket ticket;
    EXPECT_TRUE(support::endsProcess([&] { (void)ticket.ReadFromOutlook(counted(item)); }));
}

TEST_F(TicketItem, OneThatGoesWhileItIsReadIsNotWhole) {
    // Properties that can't be read come back as their defaults: without another look this would be a blank ticket.
    m_questions->before = [this](const QString &question) {
        if (question != "UserProperties.Find()")
            return;
        m_questions->failing["PostItem.Subject"] = failures::itemGone;
        throw Failure(failures::itemGone);
    };
    cTicket ticket;
    answers.expect("Ticket has been deleted!");
    EXPECT_FALSE(ticket.ReadFromOutlook(counted(newItem())));
}

TEST_F(TicketItem, WithoutTheSafeObjectsTheRecordStays) {
    const host::Item item = newItem();
    setClientTools(false);
    cTicket ticket;
    ticket.Subject = "as it was";
    answers.expect(LNGHDCLIENTTOOLS.text(), window::No);
    EXPECT_FALSE(ticket.ReadFromOutlook(item));
    EXPECT_FALSE(ticket.ReadFromOutlook(item));
    EXPECT_EQ(ticket.Subject, "as it was");
}

TEST_F(TicketItem, AGivenItemComesOutUnreadAndKeepsWhatTheRecordDoesNotHave) {
    const host::Item item = newItem();
    item.UserProperties().Find("Created by").setValue("Somebody");
    cTicket ticket;
    ticket.Description = "plain";
    host::Item given = counted(item);
    ticket.SaveToOutlook(true, true, given);
    EXPECT_FALSE(given.isNothing());
    EXPECT_EQ(tickets().Items().Count(), 1);
    EXPECT_TRUE(item.UnRead());
    EXPECT_EQ(property(item, "Problem Type"), "Printer");
    EXPECT_EQ(property(item, "Responsible"), "Ann");
    EXPECT_EQ(property(item, "Created by"), "Somebody");
    EXPECT_EQ(property(item, "Caller name"), "Cal O'Caller");
    EXPECT_TRUE(toDateTime(item.UserProperties().Find("Date due").value()).isZero());
    EXPECT_EQ(item.HTMLBody(), objSettings->NewTicketHTML("plain")) << "the page around a text without HTML";
    EXPECT_EQ(m_questions->mid(m_questions->size() - 2), (QStringList{"PostItem.Save()", "PostItem.Display()"}));
}

TEST_F(TicketItem, AWriteThatFailsIsToldOrReported) {
    oufTickets = counted(tickets());
    m_questions->failing = {{"Items.Add()", failures::unspecified}, {"PostItem.Subject=", failures::accessDenied}};
    answers.expect("Most likely the forms cache has been corrupted!");
    host::Item item;
    fullTicket().SaveToOutlook(false, true, item);
    EXPECT_TRUE(answers.asked().last().text.endsWith("failed on demand"));
    oufTickets = tickets();
    item = counted(newItem());
    expectReport("SaveToOutlook");
    EXPECT_TRUE(support::endsProcess([&] { fullTicket().SaveToOutlook(false, false, item); }));
}

// A reply's subject can hold anything between its braces.
TEST_F(TicketItem, IsFoundByItsNumberAndNoOther) {
    cTicket ticket = fullTicket();
    for (const char *number : {"1", "o'12"}) {
        ticket.TicketID = number;
        const host::Item item = newItem(ticket);
        ASSERT_TRUE(item) << number;
        EXPECT_EQ(property(item, "Ticket ID"), number);
    }
    for (const char *number :
         {"", "2", "11", "1' or '1'='1", "x' or [Ticket ID] <> '", "1' and [Ticket ID] = '1", "{1}", "]"}) {
        cTicket other;
        other.TicketID = number;
        EXPECT_TRUE(other.GetPostItem().isNothing()) << number;
    }
    oufTickets = counted(tickets());
    m_questions->failing = {{"Items.Find()", failures::accessDenied}};
    EXPECT_TRUE(ticket.GetPostItem().isNothing());
    oufTickets = nullptr;
    EXPECT_TRUE(ticket.GetPostItem().isNothing());
}

TEST_F(TicketItem, ARowAddedToTheLogReachesBothHomes) {
    cTicket ticket = fullTicket();
    addWork(ticket, "first", 5);
    host::Item item = newItem(ticket);
    cTicket again;
    ASSERT_TRUE(again.ReadFromOutlook(item));
    addWork(again, "second", 6);
    again.SaveToDB();
    again.SaveToOutlook(false, false, item);
    EXPECT_EQ(rows("tblWork", {"strWorkDescription", "intMinutesWorked"}), (QStringList{"first|5", "second|6"}));
    cTicket last;
    ASSERT_TRUE(last.ReadFromOutlook(item));
    EXPECT_EQ(last.WorkDescs->MinutesTotal(), 11);
    EXPECT_EQ(tickets().Items().Count(), 1);
}

TEST_F(TicketItem, AReopenedTicketIsANewItemUnderItsNumber) {
    cTicket ticket = fullTicket();
    addWork(ticket, "done", 5);
    ticket.Closed = true;
    ticket.DateClosed = DateTime{ticket.DateCreated.days + 0.125}; // of which the first hour is a break
    newItem(ticket).Delete();
    cTicket closed;
    closed.ReadFromDB(fncReturnRecordset("Select * from tblTickets", false, true, false));
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
    EXPECT_EQ(rows("tblTickets", {"strTicketID", "blnClosed", "intMinutesOpen"}), QStringList{"1|False|120"});
}

TEST_F(TicketItem, OneThatSomebodyElseChangedIsNotWrittenToTheRow) {
    const host::Item mine = newItem();
    mine.Subject("Mine");
    const host::Item theirs = mapi().GetItemFromID(mine.EntryID());
    theirs.Subject("Theirs");
    theirs.Save();
    answers.expect("Unable to save current item!");
    cTicket read;
    EXPECT_FALSE(read.ReadFromOutlook(mine));
    EXPECT_EQ(rows("tblTickets", {"strTicketSubject"}), QStringList{"Printer's on fire"});
}

} // namespace
