// Ticket numbers after the database was lost or replaced by an older copy: no number is given twice, whatever numbers
// stand on items and subfolders.

#include "orvelle/database/connection.h"
#include "orvelle/ticket/ticketnumbers.h"
#include "support/helpdesk.h"

namespace {

struct NumbersCase {
    const char *name;
    /// The last number that the database has given.
    int last;
    QStringList items;
    QStringList folders;
    /// What the next ticket gets.
    const char *next;
    /// Part of the message; null where there is none.
    const char *told;
};

class TicketNumbers : public support::Helpdesk {
  protected:
    void giveNumbersUpTo(int last) {
        withDatabase([&] {
            subSetupConnection();
            adoConnection->provider()->raiseLastNumber("tblTickets", last);
        });
    }
    void putTicket(const QString &number) {
        const host::Item item = tickets().Items().Add("IPM.Post.HelpDesk.Ticket.8");
        item.UserProperties().Add("Ticket ID", 1).setValue(number);
        item.Save();
    }
    [[nodiscard]] QString nextNumber() {
        deliver({.subject = "the next"});
        return property(tickets().Items().Item(tickets().Items().Count()), "Ticket ID");
    }
};

class LostDatabase : public TicketNumbers, public testing::WithParamInterface<NumbersCase> {};

TEST_P(LostDatabase, GoesOnBehindWhatTheFolderKnows) {
    const NumbersCase &each = GetParam();
    if (each.last > 0)
        giveNumbersUpTo(each.last);
    for (const QString &number : each.items)
        putTicket(number);
    for (const QString &name : each.folders)
        tickets().Folders().Add(name, 6);
    auto &copy = newCopy();
    if (each.told)
        copy.answers.expect(each.told);
    copy.run.start();
    EXPECT_EQ(nextNumber(), each.next);
    // The next start has nothing to tell.
    copy.run.quit();
    start();
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, LostDatabase,
    testing::Values(NumbersCase{"nothing", 0, {}, {}, "1", nullptr},
                    NumbersCase{"not behind", 7, {"3", "7"}, {"7"}, "8", nullptr},
                    NumbersCase{"items", 2, {"9", "41", "10", "5"}, {"3"}, "42", "the folder knows number 41"},
                    NumbersCase{"folders of closed tickets", 2, {"9"}, {"12", "7", "57"}, "58", "knows number 57"},
                    NumbersCase{"a large helpdesk", 0, {"999999", "1800000"}, {"1800100"}, "1800101", "1800100"},
                    NumbersCase{
                        "texts", 3, {"", "12a", "x", "-5", "nan", "1e400"}, {"Converted", "9 1", "inf"}, "4", nullptr},
                    NumbersCase{"odd numbers", 3, {"007", "8.5"}, {"011"}, "12", "11"},
                    NumbersCase{"beyond all bounds",
                                3,
                                {"2147483647", "99999999999999999999", "5"},
                                {"999999999999", "2000000000", "600000"},
                                "6",
                                "or a folder of nothing but replies: the item with the number"},
                    NumbersCase{"only beyond all bounds",
                                3,
                                {"2147483647", "5000000"},
                                {"999999999999", "150000"},
                                "4",
                                "the item with the number 2147483647, the subfolder 999999999999. They are not"},
                    NumbersCase{"a new database beside folders far above",
                                0,
                                {},
                                {"100002", "150000"},
                                "1",
                                "which is 0: the subfolder 150000"},
                    NumbersCase{"a step towards them", 0, {}, {"100000", "150000"}, "150001", "knows number 150000"}),
    [](const auto &each) { return QString(each.param.name).replace(' ', '_').toStdString(); });

// Whoever writes a number into a subject makes a folder of that name. It is no sign of a lost database.
TEST_F(TicketNumbers, AreNotRaisedByAFolderOfRepliesToNoTicket) {
    setSetting("EmailSubFolders", "1");
    auto &first = start();
    deliver({.subject = "Re: {70}"});
    first.run.quit();
    start().run.quit();
    // A ticket's folder is known by the copy of its mail, also when the ticket is closed and the database lost.
    const host::MAPIFolder closed = tickets().Folders().Add("60", 6).Folders().Add("Received", 6);
    const host::Item copied = closed.Items().Add("IPM.Note");
    copied.BillingInformation("60");
    copied.Save();
    auto &copy = newCopy();
    copy.answers.expect("knows number 60");
    copy.run.start();
    EXPECT_EQ(nextNumber(), "61");
}

// What is not counted is told of once, until there is more of it.
TEST_F(TicketNumbers, ThatAreNotCountedAreToldOfOnceEach) {
    tickets().Folders().Add("150000", 6);
    auto &first = newCopy();
    first.answers.expect("the subfolder 150000");
    first.run.start();
    first.run.quit();
    putTicket("3000000");
    tickets().Folders().Add("149999", 6);
    auto &second = newCopy();
    second.answers.expect("which is 0: the item with the number 3000000. They");
    second.run.start();
    second.run.quit();
    // A mail alone brings no message up, however high the number that it names.
    setSetting("EmailSubFolders", "1");
    auto &third = start();
    deliver({.subject = "Re: {1900000}"});
    third.run.quit();
    start();
}

// The message may wait for somebody all night: the bar stands by then, and mail is taken in.
TEST_F(TicketNumbers, AreToldOfWhenMailIsTakenInAlready) {
    putTicket("20");
    auto &copy = newCopy();
    copy.answers.expectDuring("number 20", [&] {
        EXPECT_EQ(explorer().CommandBars().Count(), 1);
        EXPECT_EQ(nextNumber(), "21");
    });
    copy.run.start();
}

// Nobody is told by another start.
TEST_F(TicketNumbers, AreToldOfByARunThatEndsBefore) {
    putTicket("20");
    const auto questions = countQuestions();
    auto &copy = newCopy();
    questions->before = [&](const QString &question) {
        if (question == "CommandBars.Add()")
            copy.run.quit();
    };
    testing::internal::CaptureStderr();
    copy.run.start();
    const std::string written = testing::internal::GetCapturedStderr();
    EXPECT_NE(written.find("the folder knows number 20"), std::string::npos) << written;
    EXPECT_FALSE(copy.run.alive());
}

// However many start at once, the numbers are raised once, and each that comes later finds them raised.
TEST_F(TicketNumbers, AreRaisedByTheFirstOfSeveral) {
    putTicket("20");
    auto &first = newCopy();
    auto &second = newCopy();
    first.answers.expectDuring("number 20", [&] { second.run.start(); });
    first.run.start();
    EXPECT_EQ(nextNumber(), "21");
    EXPECT_EQ(second.answers.asked().size(), 0);
}

TEST_F(TicketNumbers, AreCheckedByATicketRunToo) {
    start().run.quit();
    putTicket("20");
    const host::Item mail = put(mailbox().Folders().Add("Mine", 6), "IPM.Note", "picked");
    mail.Display();
    auto &copy = newCopy("Ticket");
    copy.answers.expect("number 20");
    copy.answers.expect("", window::No);
    copy.run.start();
    EXPECT_EQ(property(tickets().Items().Item(2), "Ticket ID"), "21");
}

// The message is no obstacle where the check itself fails: tickets are made all the same.
TEST_F(TicketNumbers, ThatCannotBeCheckedAreToldOf) {
    const auto questions = countQuestions();
    questions->failing["Folders.Find()"] = failures::accessDenied;
    auto &copy = newCopy();
    copy.answers.expect("a number may be given twice");
    copy.run.start();
    EXPECT_EQ(nextNumber(), "1");
}

} // namespace
