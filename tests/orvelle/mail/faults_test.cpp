// A mail's road while the host refuses one thing after the other: what is told, and what becomes of mail and ticket.

#include "orvelle/mail/foldermonitor.h"

#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"
#include "support/helpdesk.h"

#include <QCoreApplication>
#include <QDeadlineTimer>

namespace {

/// A host that refuses what it is told to, with a folder for each ticket.
class RefusingHost : public support::Helpdesk {
  protected:
    void SetUp() override {
        setSetting("EmailSubFolders", "1");
        withDatabase([this] { m_noSubFolder = LNGFAILEDTOCREATESUBFOLDER + strLineEnd + LNGCHECKPERM; });
    }
    /// From here on the host refuses that question, or all but the first.
    void refuse(const QString &question, bool isSecond) {
        m_questions->before = [=, asked = 0](const QString &each) mutable {
            if (each == question && (++asked > 1 || !isSecond))
                throw Failure(failures::accessDenied, "failed on demand");
        };
    }

    support::Counting::Log m_questions = countQuestions();
    QString m_noSubFolder;
};

struct Fault {
    const char *name;
    /// What the host refuses, and whether that is the second time it is asked.
    const char *question;
    bool isSecond;
    /// Part of the message or report; "folder" for that of a missing subfolder.
    const char *told;
    /// Where the mail is afterwards, with its mark, and how many tickets and confirmations there are.
    const char *place;
    const char *mark;
    int tickets;
    int confirmations;
};

class Faults : public RefusingHost, public testing::WithParamInterface<Fault> {
  protected:
    void SetUp() override {
        RefusingHost::SetUp();
        setSetting("ConvertedEmailMessage", "Ticket [TICKETID] was made.");
        setSetting("ConvertedEmailSubject", "Helpdesk Ticket {[TICKETID]}");
    }
    [[nodiscard]] QString told() const {
        return GetParam().told == QString("folder") ? m_noSubFolder : QString(GetParam().told);
    }
    /// The mail of that subject, wherever it went.
    [[nodiscard]] QString markIn(const host::MAPIFolder &folder, const QString &subject) const {
        const host::Item found = folder.Items().Find("[Subject] = '" + subject + "'");
        return found ? found.BillingInformation() : QString("(not there)");
    }
    [[nodiscard]] host::MAPIFolder place() const {
        const QString name = GetParam().place;
        if (name == "Support")
            return intake();
        return name == "Converted" ? intake().Folders(name) : tickets().Folders("9").Folders(name);
    }
};

using FaultsOfANewMail = Faults;

TEST_P(FaultsOfANewMail, LeaveItWhereItIsKnown) {
    auto &copy = start();
    refuse(GetParam().question, GetParam().isSecond);
    if (*GetParam().told != '\0')
        copy.answers.expect(told(), window::No);
    // Once for the mail, once for its confirmation.
    if (told() == m_noSubFolder)
        copy.answers.expect(told());
    deliver({.subject = "a mail"});
    EXPECT_EQ(markIn(place(), "a mail"), GetParam().mark);
    EXPECT_EQ(tickets().Items().Count(), GetParam().tickets);
    EXPECT_EQ(outgoing().size(), GetParam().confirmations);
    EXPECT_EQ(copy.run.alive(), !told().startsWith(" : "));
    // Whatever became of it, one mail is one ticket in the end.
    m_questions->before = nullptr;
    copy.run.quit();
    start();
    EXPECT_EQ(subjects(tickets()), QStringList{"a mail"});
}

INSTANTIATE_TEST_SUITE_P(
    Questions, FaultsOfANewMail,
    testing::Values(
        Fault{"no ticket item", "Items.Add()", false, "Failed to create a new Outlook form!", "Support", "", 0, 0},
        Fault{"the item's properties", "UserProperty.Value=", false, " : subSetOutlookValue ", "Support", "", 0, 0},
        Fault{"the item's sensitivity", "PostItem.Sensitivity=", false, " : fncCreateSingleTicket ", "Support", "", 0,
              0},
        Fault{"the ticket's attachments", "MailItem.Attachments", false, "", "Converted", "1", 1, 1},
        Fault{"a contact's search", "NameSpace.GetItemFromID()", false, "", "Converted", "1", 1, 1},
        Fault{"an address list", "AddressLists.Item()", false, "", "Converted", "1", 1, 1},
        Fault{"the flag", "MailItem.FlagStatus=", false, "", "Converted", "1", 1, 1},
        Fault{"no Drafts or Outbox", "NameSpace.GetDefaultFolder()", false, "", "Converted", "1", 1, 0},
        Fault{"the confirmation's text", "MailItem.Body=", false, "", "Converted", "1", 1, 1},
        Fault{"the confirmation's address", "MailItem.To=", false, "", "Converted", "1", 1, 0},
        Fault{"the confirmation's sending", "MailItem.Send()", false, "", "Converted", "1", 1, 0},
        Fault{"no subfolder of the ticket", "Folders.Add()", false, "folder", "Support", "1", 1, 1},
        Fault{"no copy", "MailItem.Copy()", false, "", "Converted", "1", 1, 1},
        Fault{"no place to move to", "MailItem.Move()", true, "", "Support", "1", 1, 1}),
    [](const auto &each) { return QString(each.param.name).remove('\'').replace(' ', '_').toStdString(); });

using FaultsOfAReply = Faults;

TEST_P(FaultsOfAReply, OfThoseThatComeLater) {
    auto &copy = start();
    refuse(GetParam().question, GetParam().isSecond);
    copy.answers.expect(told(), window::No);
    deliver({.subject = "Re: {9}"});
    EXPECT_EQ(markIn(place(), "Re: {9}"), GetParam().mark);
    EXPECT_TRUE(tickets().Items().Count() == GetParam().tickets);
    EXPECT_EQ(copy.run.alive(), !told().startsWith(" : "));
}

INSTANTIATE_TEST_SUITE_P(Questions, FaultsOfAReply,
                         testing::Values(Fault{"no subfolder", "Folders.Add()", false, "folder", "Support", "", 0, 0},
                                         Fault{"not moved", "MailItem.Move()", false, " : ouiItems.ItemAdd ", "Support",
                                               "", 0, 0}),
                         [](const auto &each) { return QString(each.param.name).replace(' ', '_').toStdString(); });

/// A disk that is full from the ticket item's second save on: the half item can't be deleted either, the row not be
/// noted on the mail, and when there is room again one mail is one ticket.
struct FullDisk {
    const char *name;
    /// What is refused from the item's first save on.
    QStringList questions;
    int rowsMeanwhile;
    int itemsMeanwhile;
};

class AFullDisk : public RefusingHost, public testing::WithParamInterface<FullDisk> {};

TEST_P(AFullDisk, MakesOneTicketOfAMailInTheEnd) {
    auto &copy = start();
    m_questions->before = [isFull = false](const QString &each) mutable {
        isFull = isFull || each == "PostItem.Sensitivity=";
        if (isFull && GetParam().questions.contains(each))
            throw Failure(failures::noDiskSpace, "the disk is full");
    };
    copy.answers.expect(" : fncCreateSingleTicket ", window::No);
    deliver({.subject = "a mail", .files = {{"a.txt", "content"}}});
    EXPECT_FALSE(copy.run.alive());
    EXPECT_EQ(tickets().Items().Count(), GetParam().itemsMeanwhile);
    EXPECT_EQ(rows("SELECT * FROM tblTickets", {"strTicketID"}).size(), GetParam().rowsMeanwhile);
    m_questions->before = nullptr;
    // The claim of a program that could not free it any more is what somebody takes away.
    const host::Item mail = intake().Items().Find("[Subject] = 'a mail'");
    mail.BillingInformation("");
    mail.Save();

    start();
    ASSERT_EQ(subjects(tickets()), QStringList{"a mail"});
    const host::Item ticket = tickets().Items().Item(1);
    EXPECT_EQ(rows("SELECT * FROM tblTickets", {"strTicketID"}), QStringList{property(ticket, "Ticket ID")});
    EXPECT_EQ(ticket.Attachments().Count(), 1);
    EXPECT_EQ(ticket.BillingInformation(), "");
}

INSTANTIATE_TEST_SUITE_P(
    Questions, AFullDisk,
    testing::Values(FullDisk{"the_number", {"PostItem.Close()"}, 1, 0},
                    FullDisk{"the_number_and_the_deletion", {"PostItem.Close()", "PostItem.Delete()"}, 1, 1},
                    FullDisk{"the_number_and_the_mail", {"PostItem.Close()", "MailItem.Save()"}, 0, 0},
                    FullDisk{"everything", {"PostItem.Close()", "PostItem.Delete()", "MailItem.Save()"}, 0, 1}),
    [](const auto &each) { return each.param.name; });

TEST_F(RefusingHost, TheReasonIsToldOnceUntilASaveWorks) {
    auto &copy = start();
    const auto refuseWith = [this](const QString &reason) {
        m_questions->before = [reason](const QString &each) {
            if (each == "PostItem.Save()" && !reason.isEmpty())
                throw Failure(failures::noDiskSpace, reason);
        };
    };
    const QString fixed = "Unable to save current item!\r\n";
    refuseWith("the disk is full");
    copy.answers.expect(fixed + "the disk is full");
    deliver({.subject = "one"});
    deliver({.subject = "two"});
    refuseWith("you have no right");
    copy.answers.expect(fixed + "you have no right");
    deliver({.subject = "three"});
    refuseWith({});
    deliver({.subject = "four"});
    EXPECT_EQ(subjects(tickets()), QStringList{"four"});
    refuseWith("you have no right");
    copy.answers.expect(fixed + "you have no right");
    deliver({.subject = "five"});
    EXPECT_EQ(copy.answers.asked().size(), 3);
}

class FaultsOfTheScan : public RefusingHost {
  protected:
    /// Ticket 1 is there, without a folder of its own.
    void SetUp() override {
        auto &first = start();
        deliver({.subject = "the first"});
        first.run.quit();
        RefusingHost::SetUp();
    }
    support::Copy &startRefusing(const QString &question, bool isSecond, const QStringList &told) {
        refuse(question, isSecond);
        auto &copy = newCopy();
        for (const QString &each : told)
            copy.answers.expect(each, window::No);
        copy.run.start();
        return copy;
    }
};

TEST_F(FaultsOfTheScan, AReplyWithoutAFolderGetsItsWorkRowAndTheOthersAreTaken) {
    deliver({.subject = "another"});
    deliver({.subject = "Re: {1}"});
    EXPECT_TRUE(startRefusing("Folders.Add()", false, {m_noSubFolder, m_noSubFolder}).run.alive());
    EXPECT_EQ(rows("SELECT * FROM tblWork", {"intTicketID"}), QStringList{"1"});
    EXPECT_EQ(subjects(tickets()), (QStringList{"the first", "another"}));
    EXPECT_EQ(subjects(intake()), QStringList{"Re: {1}"});
}

TEST_F(FaultsOfTheScan, AWorkRowThatFailsIsReported) {
    deliver({.subject = "Re: {1}"});
    EXPECT_FALSE(startRefusing("PostItem.UnRead=", true, {" : subAddEmailWorkItem "}).run.alive());
}

TEST_F(FaultsOfTheScan, AFlagThatCannotBePostedIsReported) {
    EXPECT_FALSE(startRefusing("PostItem.Post()", false, {" : subMonitorMailFolders "}).run.alive());
    EXPECT_TRUE(subjects(intake()).isEmpty());
}

/// A copy with an event loop of its own, as the program has it.
class MailsFromTheLoop : public RefusingHost {
  protected:
    MailsFromTheLoop() { runInEventLoop(); }

    /// Runs the loop until something is so.
    static void runUntil(const std::function<bool()> &condition) {
        const QDeadlineTimer patience(20000);
        while (!condition() && !patience.hasExpired())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
        EXPECT_TRUE(condition());
    }
};

// A host that waited for an answer to its event would stand still until somebody reads the message.
TEST_F(MailsFromTheLoop, KeepNoHostWaitingForAPerson) {
    auto &copy = start();
    const host::MAPIFolder others = mailbox().Folders().Add("Others", 6);
    const host::Items watched = others.Items();
    int told = 0;
    const auto listener = watched.connect("ItemAdd", [&](ValueList &) { ++told; });
    refuse("Folders.Add()", false);
    copy.answers.expectDuring(m_noSubFolder, [&] {
        m_questions->before = nullptr;
        deliver({}, others);
        EXPECT_EQ(told, 1);
        deliver({.subject = "behind it"});
        // Two pieces of work at once could ask two questions.
        QCoreApplication::processEvents();
        EXPECT_EQ(tickets().Items().Count(), 0);
    });
    deliver({.subject = "Re: {12}"});
    EXPECT_EQ(copy.answers.asked().size(), 0);
    runUntil([&] { return tickets().Items().Count() == 1; });
    EXPECT_EQ(copy.answers.asked().size(), 1);
}

TEST_F(MailsFromTheLoop, KeepTheirOrderAndAnEndDropsThoseNotBegun) {
    auto &copy = start();
    for (const char *subject : {"first", "second", "third", "fourth"})
        deliver({.subject = subject});
    EXPECT_EQ(tickets().Items().Count(), 0);
    m_questions->before = [&](const QString &question) {
        // The second mail is in hand.
        if (question == "MailItem.Copy()" && tickets().Items().Count() == 2)
            copy.run.quit();
    };
    runUntil([&] { return !copy.run.alive(); });
    EXPECT_EQ(subjects(tickets()), (QStringList{"first", "second"}));
    EXPECT_EQ(subjects(intake().Folders("Converted")), (QStringList{"first", "second"}));
    EXPECT_EQ(subjects(intake()), (QStringList{"third", "fourth"}));
    for (qint32 i = 1; i <= 2; ++i)
        EXPECT_EQ(intake().Items().Item(i).BillingInformation(), "");
}

// A click means what is selected when it comes, and what is sent belongs to the mail in hand.
TEST_F(MailsFromTheLoop, LetClicksAndSentMailGoFirst) {
    start();
    const host::MAPIFolder sent = mapi().GetDefaultFolder(5).Folders("ORVLSentItems");
    deliver({.subject = "a mail"});
    put(sent, "IPM.Note", "Helpdesk Ticket {77}");
    desk().lookAround();
    bool isFiled = false;
    m_questions->before = [&](const QString &question) {
        isFiled = isFiled || (question == "Items.Add()" && sent.Items().Count() == 0);
    };
    runUntil([&] { return tickets().Items().Count() == 1; });
    EXPECT_TRUE(isFiled);
    EXPECT_EQ(subjects(tickets().Folders("77").Folders("Sent")), QStringList{"Helpdesk Ticket {77}"});
}

} // namespace
