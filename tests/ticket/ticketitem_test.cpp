// The ticket and its item in the ticket folder.

#include "reference/fakehost.h"
#include "reference/program.h"
#include "ticket/ticket.h"

#include "platform/value/random.h"

namespace {

class TicketItemTest : public ProgramTest {
  protected:
    void SetUp() override {
        ProgramTest::SetUp();
        subCreateSettings();
        objSettings->Responsibles->FromString("Ann\ta@x\t60");
        objSettings->ProblemTypes->FromString("Printer\tHardware\t15");
        m_host = std::make_unique<FakeHost>();
        FakeHost::installSafeObjects();
    }
    FakeHost &fakeHost() { return *m_host; }

    /// An item as the form leaves it.
    static void fillItem(const FakeItem &item) {
        item.bag->members["subject"] = "Smoke";
        item.bag->members["importance"] = 2;
        item.bag->members["body"] = "It burns";
        item.bag->members["htmlbody"] = "<p>It burns</p>";
        item.setProperty("Ticket ID", "12");
        item.setProperty("Created At", DateTime{46084.5});
        item.setProperty("Date due", DateTime{46085});
        item.setProperty("Custom Status", "Open");
        item.setProperty("Problem Type", "PRINTER");
        item.setProperty("Responsible", "ann");
        item.setProperty("Caller Name", "Cal");
        item.setProperty("Caller Email", "c@x");
        item.setProperty("Caller comment", "kind");
        item.setProperty("Caller phone", "1");
        item.setProperty("Caller Category", "VIP");
        item.setProperty("WorkDescriptions0", "Tested\t3/4/2026\t90\tAnn\r\n====\r\n");
        item.setProperty("WorkDescriptionsCount", 0);
    }
    static void expectWhole(const cTicket &ticket) {
        EXPECT_EQ(ticket.Subject, "Smoke");
        EXPECT_EQ(ticket.TicketPriority, 2);
        EXPECT_EQ(ticket.Description, "It burns");
        EXPECT_EQ(ticket.HTMLDescription, "<p>It burns</p>");
        EXPECT_EQ(ticket.TicketID, "12");
        EXPECT_EQ(ticket.DateCreated, DateTime{46084.5});
        EXPECT_EQ(ticket.DueDate, DateTime{46085});
        EXPECT_EQ(ticket.TicketStatus, "Open");
        EXPECT_EQ(ticket.ProblemType, objSettings->ProblemTypes->DicList->Item("Printer"));
        EXPECT_EQ(ticket.Responsible, objSettings->Responsibles->DicList->Item("Ann"));
        EXPECT_EQ(ticket.Caller->FullName, "Cal");
        EXPECT_EQ(ticket.Caller->Email, "c@x");
        EXPECT_EQ(ticket.Caller->Comment, "kind");
        EXPECT_EQ(ticket.Caller->Telephone, "1");
        EXPECT_EQ(ticket.Caller->Category, "VIP");
        EXPECT_EQ(ticket.WorkDescs->MinutesTotal(), 90);
        EXPECT_EQ(ticket.Rate, Currency::fromScaled(900000));
        EXPECT_FALSE(ticket.Closed);
    }

  private:
    std::unique_ptr<FakeHost> m_host;
};

TEST_F(TicketItemTest, ReadsAnItem) {
    const FakeItem item;
    fillItem(item);
    cTicket ticket;
    ticket.Closed = true;
    EXPECT_TRUE(ticket.ReadFromOutlook(item.item()));
    expectWhole(ticket);
    EXPECT_FALSE(item.bag->calls.contains("Save()"));
}

TEST_F(TicketItemTest, SavesAnUnsavedItemFirst) {
    const FakeItem item;
    fillItem(item);
    item.bag->members["saved"] = false;
    cTicket ticket;
    EXPECT_TRUE(ticket.ReadFromOutlook(item.item()));
    expectWhole(ticket);
    EXPECT_LT(item.bag->calls.indexOf("Save()"), item.bag->calls.indexOf("Body"));
}

TEST_F(TicketItemTest, NamesOfNoListAndMissingProperties) {
    const FakeItem item;
    item.setProperty("Responsible", "Stranger");
    item.setProperty("Problem Type", "Unheard of");
    cTicket ticket;
    EXPECT_TRUE(ticket.ReadFromOutlook(item.item()));
    EXPECT_EQ(ticket.Responsible->FullName, "Stranger");
    EXPECT_EQ(ticket.Responsible->ID, 0);
    EXPECT_EQ(ticket.ProblemType->ProblemDescription, "");
    EXPECT_EQ(ticket.Rate, Currency());
    EXPECT_EQ(ticket.TicketID, "");
    EXPECT_TRUE(ticket.DateCreated.isZero());
    EXPECT_EQ(ticket.Caller->FullName, "");

    const FakeItem bare;
    EXPECT_TRUE(ticket.ReadFromOutlook(bare.item()));
    EXPECT_EQ(ticket.Responsible->FullName, "");
    EXPECT_FALSE(objSettings->Responsibles->DicList->Exists(""));
}

struct FailingCase {
    const char *name;
    bool saved;
    QString failing;
    qint32 number;
    QString message;
};

TEST_F(TicketItemTest, TellsOfAnItemThatCannotBeReadAndSaysSoToTheCaller) {
    const QString tail = strLineEnd + QString("failed on demand");
    const QList<FailingCase> cases{
        {"changed", true, "HTMLBody", failures::itemChanged,
         "Ticket has been changed by anothe user!\r\nUnable to save changes!" + tail},
        {"gone", true, "Body", failures::itemGone, "Ticket has been deleted!\r\nUnable to open!" + tail},
        {"lost hold", true, "UserProperties", failures::catastrophic, ""},
        {"save refused", false, "Save()", failures::itemChanged, "Unable to save current item!"},
        {"failing behind a save is passed over", false, "HTMLBody", failures::itemGone, ""},
    };
    for (const FailingCase &one : cases) {
        SCOPED_TRACE(one.name);
        const FakeItem item;
        fillItem(item);
        item.bag->members["saved"] = one.saved;
        item.bag->failing[one.failing] = one.number;
        if (!one.message.isEmpty())
            expectQuestion(one.message);
        cTicket ticket;
        EXPECT_FALSE(ticket.ReadFromOutlook(item.item()));
    }
}

TEST_F(TicketItemTest, BehindASaveTheOtherFieldsAreStillRead) {
    const FakeItem item;
    fillItem(item);
    item.bag->members["saved"] = false;
    item.bag->failing["Body"] = failures::itemGone;
    cTicket ticket;
    EXPECT_FALSE(ticket.ReadFromOutlook(item.item()));
    EXPECT_EQ(ticket.Description, "");
    EXPECT_EQ(ticket.TicketID, "12");
    EXPECT_EQ(ticket.Caller->FullName, "Cal");
}

TEST_F(TicketItemTest, AnItemThatGoesWhileItIsReadIsNotWhole) {
    const FakeItem item;
    fillItem(item);
    // Properties that can't be read come back as their defaults: without another look this would be a blank ticket.
    item.properties->functions["find"] = [&item](const ValueList &) -> Value {
        item.bag->failing["Subject"] = failures::itemGone;
        throw Failure(failures::itemGone);
    };
    cTicket ticket;
    expectQuestion("Ticket has been deleted!");
    EXPECT_FALSE(ticket.ReadFromOutlook(item.item()));
}

TEST_F(TicketItemTest, ReportsAnUnforeseenFailure) {
    const FakeItem item;
    item.bag->failing["Body"] = failures::memberMissing;
    cTicket ticket;
    expectReport("ReadFromOutlook");
    EXPECT_TRUE(endsProcess([&] { (void)ticket.ReadFromOutlook(item.item()); }));
}

TEST_F(TicketItemTest, WithoutTheSafeObjectsTheRecordStays) {
    FakeHost::installSafeObjects(false);
    const FakeItem item;
    fillItem(item);
    cTicket ticket;
    ticket.Subject = "as it was";
    expectQuestion(LNGHDCLIENTTOOLS.text(), window::No);
    EXPECT_FALSE(ticket.ReadFromOutlook(item.item()));
    EXPECT_FALSE(ticket.ReadFromOutlook(item.item()));
    EXPECT_EQ(ticket.Subject, "as it was");
}

/// A record with everything in it.
cTicket fullTicket() {
    cTicket ticket;
    ticket.Subject = "Smoke";
    ticket.HTMLDescription = "<p>It burns</p>";
    ticket.TicketPriority = 2;
    ticket.TicketID = "12";
    ticket.TicketStatus = "Open";
    ticket.DateCreated = DateTime{46084.5};
    ticket.DueDate = DateTime{46085};
    ticket.ProblemType = Ref<cProblemType>::make();
    ticket.ProblemType->ProblemDescription = "Printer";
    ticket.ProblemType->ProblemCategory = "Hardware";
    ticket.Responsible = Ref<cResponsible>::make();
    ticket.Responsible->FullName = "Ann";
    ticket.Caller = Ref<cCaller>::make();
    ticket.Caller->FullName = "Cal";
    ticket.Caller->Email = "c@x";
    return ticket;
}

TEST_F(TicketItemTest, WritesANewItemAndDoesNotKeepIt) {
    const cTicket ticket = fullTicket();
    host::Item item;
    ticket.SaveToOutlook(false, false, item);
    EXPECT_TRUE(item.isNothing());
    ASSERT_EQ(fakeHost().added.size(), 1U);
    const FakeItem &added = *fakeHost().added[0];
    EXPECT_EQ(added.bag->stored("MessageClass"), Value("IPM.Post.HelpDesk.Ticket.8"));
    EXPECT_EQ(added.bag->stored("Subject"), Value("Smoke"));
    EXPECT_EQ(added.bag->stored("Importance"), Value(2));
    EXPECT_EQ(added.bag->stored("HTMLBody"), Value("<p>It burns</p>"));
    EXPECT_EQ(added.bag->stored("BodyFormat"), Value(2));
    EXPECT_EQ(added.bag->stored("UnRead"), Value(false));
    EXPECT_EQ(added.bag->calls.last(), "Close()");
    const QList<std::pair<QString, Value>> properties{{"Ticket ID", "12"},           {"Created by", "Ann"},
                                                      {"Responsible", "Ann"},        {"Created at", DateTime{46084.5}},
                                                      {"Date due", DateTime{46085}}, {"Custom Status", "Open"},
                                                      {"Problem Type", "Printer"},   {"Problem category", "Hardware"},
                                                      {"Caller name", "Cal"},        {"Caller email", "c@x"},
                                                      {"Caller comment", ""},        {"Ticket", ticket.ToString()}};
    for (const auto &[name, value] : properties)
        EXPECT_EQ(added.property(name), value) << name.toStdString();
}

TEST_F(TicketItemTest, WritesAGivenItemUnreadAndLeavesWhatTheRecordDoesNotHave) {
    const FakeItem item;
    fillItem(item);
    cTicket ticket;
    ticket.Subject = "From the database";
    host::Item given = item.item();
    ticket.SaveToOutlook(true, true, given);
    EXPECT_FALSE(given.isNothing());
    EXPECT_TRUE(fakeHost().added.empty());
    EXPECT_EQ(item.bag->stored("UnRead"), Value(true));
    EXPECT_EQ(item.property("Problem Type"), Value("PRINTER"));
    EXPECT_EQ(item.property("Responsible"), Value("ann"));
    EXPECT_EQ(item.property("Caller name"), Value("Cal"));
    EXPECT_EQ(item.property("Date due"), Value(DateTime{}));
    EXPECT_FALSE(item.hasProperty("Created by"));
    EXPECT_EQ(item.bag->calls.mid(item.bag->calls.size() - 2), (QStringList{"Save()", "Display()"}));
}

TEST_F(TicketItemTest, ATicketWithoutHtmlGetsThePageAroundItsText) {
    cTicket ticket;
    ticket.Description = "plain";
    host::Item item;
    ticket.SaveToOutlook(false, false, item);
    EXPECT_EQ(fakeHost().added[0]->bag->stored("HTMLBody"), Value(objSettings->NewTicketHTML("plain")));
}

TEST_F(TicketItemTest, AnOldHostHasNoBodyFormat) {
    fakeHost().application->members["version"] = "9.0.0.2711";
    host::Item item;
    fullTicket().SaveToOutlook(false, false, item);
    EXPECT_EQ(fakeHost().added[0]->bag->stored("BodyFormat"), Value(1));
    EXPECT_EQ(fakeHost().added[0]->bag->stored("HTMLBody"), Value("<p>It burns</p>"));
}

TEST_F(TicketItemTest, MarksNewItemsUnreadByChance) {
    Random::seed(1);
    int unread = 0;
    for (int i = 0; i < 200; ++i) {
        host::Item item;
        fullTicket().SaveToOutlook(true, false, item);
        unread += fakeHost().added.back()->bag->stored("UnRead") == Value(true) ? 1 : 0;
    }
    EXPECT_GT(unread, 60);
    EXPECT_LT(unread, 140);
}

TEST_F(TicketItemTest, KeepsALongLogThroughAnItem) {
    for (const int length : {0, 499, 500, 999, 1000, 1001, 1499, 1500, 2500, 100000}) {
        cTicket ticket = fullTicket();
        const auto work = Ref<cWorkDescription>::make();
        work->Description = QString("é漢").repeated(length / 2 + 1);
        work->WorkDate = DateTime{46084};
        ticket.WorkDescs->dicWorkDesc->Add("0", work);
        FakeItem item;
        host::Item given = item.item();
        ticket.SaveToOutlook(false, false, given);
        cTicket read;
        ASSERT_TRUE(read.ReadFromOutlook(given));
        EXPECT_EQ(read.WorkDescs->ToString(), ticket.WorkDescs->ToString()) << length;
    }
}

TEST_F(TicketItemTest, TellsWhatToDoWhereNoItemCanBeMade) {
    fakeHost().items->failing["Add()"] = failures::unspecified;
    expectQuestion("Most likely the forms cache has been corrupted!");
    host::Item item;
    fullTicket().SaveToOutlook(false, true, item);
    EXPECT_TRUE(questions().last().endsWith("failed on demand"));
}

TEST_F(TicketItemTest, ReportsAWriteThatFails) {
    const FakeItem item;
    item.bag->failing["Subject="] = failures::accessDenied;
    host::Item given = item.item();
    expectReport("SaveToOutlook");
    EXPECT_TRUE(endsProcess([&] { fullTicket().SaveToOutlook(false, false, given); }));
}

TEST_F(TicketItemTest, FindsTheItemOfItsNumber) {
    const FakeItem item;
    fakeHost().found = item.bag;
    cTicket ticket;
    ticket.TicketID = "12";
    EXPECT_TRUE(ticket.GetPostItem() == item.item());
    EXPECT_EQ(fakeHost().filter, "[Ticket ID] ='12'");
    // A reply's subject can hold anything between its braces.
    ticket.TicketID = "x' or [Ticket ID] <> '";
    EXPECT_FALSE(ticket.GetPostItem().isNothing());
    EXPECT_EQ(fakeHost().filter, "[Ticket ID] ='x'' or [Ticket ID] <> '''");
    fakeHost().found = nullptr;
    EXPECT_TRUE(ticket.GetPostItem().isNothing());
    fakeHost().items->failing["Find()"] = failures::accessDenied;
    EXPECT_TRUE(ticket.GetPostItem().isNothing());
    oufTickets = nullptr;
    EXPECT_TRUE(ticket.GetPostItem().isNothing());
}

} // namespace
