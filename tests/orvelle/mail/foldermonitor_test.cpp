// A mail's road from a monitored folder to a ticket, with one copy of the program and with several.

#include "orvelle/mail/foldermonitor.h"

#include "orvelle/core/process.h"
#include "orvelle/database/connection.h"
#include "orvelle/mail/createticket.h"
#include "orvelle/mail/intake.h"
#include "orvelle/ticket/worklog.h"
#include "support/helpdesk.h"

#include <QFile>

namespace {

class FolderMonitor : public support::Helpdesk {
  protected:
    [[nodiscard]] host::MAPIFolder converted() const { return intake().Folders("Converted"); }
    [[nodiscard]] host::Item ticket(qint32 index = 1) const { return tickets().Items().Item(index); }
    /// A start that tells why it does not watch.
    support::Copy &startWith(const QString &told) {
        auto &copy = newCopy();
        copy.answers.expect(told);
        copy.run.start();
        return copy;
    }
};

TEST_F(FolderMonitor, AReportFreesTheClaimAndLeavesNoHalfTicket) {
    support::Copy &copy = start();
    // A database that another program has damaged: the conversion ends in the failure report, and so does the process.
    ASSERT_TRUE(QFile::resize(path("program/Orvelle.mdb"), 100));
    copy.answers.expect("Orvelle.mdb", window::No);
    deliver({});
    EXPECT_FALSE(copy.run.alive());
    ASSERT_EQ(subjects(intake()), QStringList{"The printer is jammed"});
    EXPECT_EQ(intake().Items().Item(1).BillingInformation(), "");
    EXPECT_EQ(tickets().Items().Count(), 0);
}

TEST_F(FolderMonitor, AMailThatComesBecomesATicket) {
    start();
    ASSERT_EQ(subjects(intake()), QStringList{strFlagSubject});
    deliver({.html = "<html><body><p>It makes a <b>noise</b>.</p></body></html>"});

    ASSERT_EQ(subjects(tickets()), QStringList{"The printer is jammed"});
    EXPECT_EQ(property(ticket(), "Ticket ID"), "1");
    EXPECT_EQ(property(ticket(), "Created by"), "Alma Tester");
    EXPECT_EQ(property(ticket(), "Created at"), "3/5/2024 12:00:00 PM");
    EXPECT_EQ(property(ticket(), "Date due"), "3/5/2024 12:00:00 PM");
    EXPECT_EQ(property(ticket(), "Caller name"), "Cal Caller");
    EXPECT_EQ(property(ticket(), "Caller email"), "cal@example.org");
    EXPECT_EQ(ticket().Sensitivity(), 1);
    EXPECT_TRUE(ticket().HTMLBody().contains("<p>It makes a <b>noise</b>.</p>"));
    EXPECT_EQ(rows("SELECT * FROM tblTickets", {"strTicketID", "strTicketSubject", "strCustomerName", "blnClosed"}),
              QStringList{"1|The printer is jammed|Cal Caller|False"});

    EXPECT_EQ(subjects(intake()), QStringList{strFlagSubject});
    ASSERT_EQ(subjects(converted()), QStringList{"The printer is jammed"});
    const host::MailItem mail(converted().Items().Item(1).object());
    EXPECT_EQ(mail.FlagStatus(), 2);
    EXPECT_EQ(mail.FlagRequest(), "Ticket # 1 created at 3/5/2024 12:00:00 PM");
    EXPECT_EQ(mail.BillingInformation(), "1");
    EXPECT_TRUE(outgoing().isEmpty());
}

TEST_F(FolderMonitor, TheScanConvertsWhatWaitsAndTakesTheEmptyFolder) {
    deliver({.subject = "first"});
    deliver({.subject = "second"});
    start();
    EXPECT_EQ(subjects(tickets()), (QStringList{"second", "first"}));
    EXPECT_EQ(subjects(converted()), (QStringList{"second", "first"}));
    EXPECT_EQ(subjects(intake()), QStringList{strFlagSubject});
    EXPECT_EQ(intake().Items().Item(1).Body().trimmed(), "Alma Tester");
}

TEST_F(FolderMonitor, WhatTheScanRefusesKeepsTheFolderUnwatched) {
    put(intake(), "IPM.Appointment", "a meeting");
    deliver({.subject = "a mail"});
    startWith("- \"a meeting\": it is of the kind IPM.Appointment");
    EXPECT_EQ(subjects(tickets()), QStringList{"a mail"});
    EXPECT_EQ(subjects(intake()), QStringList{"a meeting"});
    deliver({.subject = "a later mail"});
    EXPECT_EQ(subjects(intake()), (QStringList{"a meeting", "a later mail"}));
}

TEST_F(FolderMonitor, ExactlyOneOfTwoCopiesWatches) {
    auto &first = start();
    auto &second = start();
    deliver({.subject = "one"});
    EXPECT_EQ(subjects(tickets()), QStringList{"one"});

    first.run.quit();
    EXPECT_EQ(first.ends, 1);
    EXPECT_TRUE(subjects(intake()).isEmpty());
    deliver({.subject = "between"});
    EXPECT_EQ(subjects(tickets()), QStringList{"one"}) << "no copy takes over while it runs";
    EXPECT_TRUE(second.run.alive());

    start();
    EXPECT_EQ(subjects(tickets()), (QStringList{"one", "between"}));
    EXPECT_EQ(subjects(intake()), QStringList{strFlagSubject});
}

TEST_F(FolderMonitor, TheFlagOfADeadCopyKeepsTheFolderUntilItIsRemoved) {
    put(intake(), "IPM.Post", strFlagSubject);
    deliver({.subject = "a mail"});
    startWith("nothing tells whether the program of somebody, which had it, still runs");
    EXPECT_EQ(subjects(tickets()), QStringList{"a mail"});
    EXPECT_EQ(subjects(intake()), QStringList{strFlagSubject});
    deliver({.subject = "unseen"});
    EXPECT_EQ(subjects(tickets()), QStringList{"a mail"});
}

TEST_F(FolderMonitor, EveryConfiguredFolderIsWatchedAndMissingOnesArePassedOver) {
    const host::MAPIFolder other = mailbox().Folders().Add("Urgent", 6);
    setEmailFolders(
        {"\\\\Mailbox - Alma Tester\\Support", "\\\\No\\Such\\Folder", "\\\\Mailbox - Alma Tester\\Urgent"});
    startWith("\r\n- \\\\No\\Such\\Folder\r\nCorrect their names in the setting EmailFolders");
    deliver({.subject = "to support"});
    deliver({.subject = "urgent"}, other);
    EXPECT_EQ(subjects(tickets()), (QStringList{"to support", "urgent"}));
    EXPECT_EQ(subjects(other.Folders("Converted")), QStringList{"urgent"});
}

struct ClassCase {
    const char *messageClass;
    bool isNew;
    int tickets;
    const char *mark;
    const char *folder;
};

class ItemClasses : public FolderMonitor, public testing::WithParamInterface<ClassCase> {};

TEST_P(ItemClasses, DecideWhatBecomesOfAnItem) {
    const ClassCase &each = GetParam();
    const host::Item item = put(intake(), each.messageClass, "an item");
    auto &copy = newCopy();
    EXPECT_EQ(copy.in([&] { return fncIsNewMailItem(item); }), each.isNew);
    if (each.folder == QString("Support"))
        copy.answers.expect(each.isNew ? "- a mail that no program has taken" : "which becomes no ticket");
    copy.run.start();
    EXPECT_EQ(subjects(tickets()).size(), each.tickets);
    const host::Item after = mapi().GetItemFromID(item.EntryID());
    EXPECT_EQ(after.BillingInformation(), each.mark);
    EXPECT_EQ(after.Parent().Name(), each.folder);
    EXPECT_EQ(host::MailItem(after.object()).FlagStatus(), QString(each.mark) == "1" ? 2 : 0);
}

INSTANTIATE_TEST_SUITE_P(Classes, ItemClasses,
                         testing::Values(ClassCase{"IPM.Note", true, 1, "1", "Converted"},
                                         ClassCase{"ipm.note", true, 1, "1", "Converted"},
                                         ClassCase{"IPM.Post", true, 1, "Working...", "Converted"},
                                         ClassCase{"IPM.Note.Something", true, 0, "", "Support"},
                                         ClassCase{"IPM.Notes", true, 0, "", "Support"},
                                         ClassCase{"REPORT.IPM.Note.NDR", false, 0, "", "Support"}));

// Anybody can write the subject of the flag item on a mail, and would stop the intake by it.
TEST_F(FolderMonitor, AMailThatPosesAsTheFlagIsAMailLikeAnyOther) {
    const support::Mail poser{.subject = strFlagSubject, .from = "x@example.org\r\nX-Message-Class: IPM.Post"};
    deliver(poser);
    start();
    EXPECT_EQ(subjects(tickets()), QStringList{strFlagSubject}) << "met by the scan";
    EXPECT_EQ(subjects(intake()), QStringList{strFlagSubject}) << "the folder is watched";
    deliver(poser);
    EXPECT_EQ(subjects(tickets()).size(), 2) << "met by the watch";
    EXPECT_EQ(subjects(converted()).size(), 2);
    EXPECT_EQ(intake().Items().Item(1).MessageClass(), "IPM.Post");
}

TEST_F(FolderMonitor, AClaimThatAnotherClientWonLeavesTheItem) {
    auto &copy = start();
    const host::Item item = put(mailbox().Folders().Add("Elsewhere", 6), "IPM.Note", "contested");
    // The item as this client opened it, before the other one saved.
    const host::Item seen = mapi().GetItemFromID(item.EntryID());
    ASSERT_EQ(seen.Subject(), "contested");
    item.Importance(2);
    item.Save();
    copy.in([&] { subHandleNewItem(seen, intake()); });
    EXPECT_TRUE(subjects(tickets()).isEmpty());
    EXPECT_EQ(mapi().GetItemFromID(item.EntryID()).BillingInformation(), "");
}

TEST_F(FolderMonitor, AnItemThatIsClaimedWhenItComesIsLeftAlone) {
    start();
    const host::Item item = intake().Items().Add("IPM.Note");
    item.Subject("claimed");
    item.BillingInformation("Working...");
    item.Save();
    EXPECT_TRUE(subjects(tickets()).isEmpty());
    EXPECT_EQ(subjects(intake()), (QStringList{strFlagSubject, "claimed"}));
}

// A store that is busy is the ordinary course of things; one that takes nothing more is told of, once.
TEST_F(FolderMonitor, OnlyRealTroubleWithAClaimIsToldOf) {
    const auto questions = countQuestions();
    auto &copy = start();
    for (const qint32 number : {failures::itemChanged, failures::unspecified, failures::noDiskSpace}) {
        questions->failing["MailItem.Save()"] = number;
        if (number == failures::noDiskSpace)
            copy.answers.expect("failed on demand");
        deliver({.subject = "waits"});
    }
    deliver({.subject = "waits"});
    EXPECT_TRUE(subjects(tickets()).isEmpty());
    EXPECT_EQ(subjects(intake()).count("waits"), 4);
}

TEST_F(FolderMonitor, AMailWhoseTicketCannotBeKeptTakesOneRowHoweverOftenItIsTried) {
    const auto questions = countQuestions();
    deliver({.subject = "unlucky"});
    questions->failing["PostItem.Close()"] = failures::noDiskSpace;
    for (int run = 0; run < 2; ++run) {
        auto &copy = newCopy();
        copy.answers.expect("fncCreateSingleTicket", window::No);
        copy.run.start();
        EXPECT_EQ(intake().Items().Item(1).BillingInformation(), "");
        EXPECT_TRUE(subjects(tickets()).isEmpty());
    }
    questions->failing.clear();
    start();
    ASSERT_EQ(subjects(tickets()), QStringList{"unlucky"});
    EXPECT_EQ(property(ticket(), "Ticket ID"), "1");
    EXPECT_EQ(rows("SELECT * FROM tblTickets", {"strTicketID"}), QStringList{"1"});
}

TEST_F(FolderMonitor, ACopyThatCannotBeFiledIsNotLeftBesideTheMail) {
    setSetting("EmailSubFolders", "1");
    const auto questions = countQuestions();
    start();
    questions->failing["MailItem.Move()"] = failures::accessDenied;
    deliver({.subject = "stays"});
    EXPECT_EQ(subjects(tickets()), QStringList{"stays"});
    EXPECT_EQ(subjects(intake()), (QStringList{strFlagSubject, "stays"}));
}

// ---- replies

struct ReplyCase {
    const char *subject;
    bool subFolders;
    /// The folder below the ticket folder that takes the reply; empty when it becomes a ticket of its own.
    const char *folder;
};

class Replies : public FolderMonitor, public testing::WithParamInterface<ReplyCase> {};

TEST_P(Replies, AreFiledByTheNumberInTheSubject) {
    const ReplyCase &each = GetParam();
    setSetting("EmailSubFolders", each.subFolders ? "1" : "0");
    start();
    deliver({.subject = each.subject});
    if (*each.folder == '\0') {
        EXPECT_EQ(subjects(tickets()), QStringList{each.subject});
        return;
    }
    EXPECT_TRUE(subjects(tickets()).isEmpty());
    EXPECT_EQ(subjects(tickets().Folders(each.folder).Folders("Received")), QStringList{each.subject});
    EXPECT_EQ(subjects(intake()), QStringList{strFlagSubject});
}

INSTANTIATE_TEST_SUITE_P(
    Subjects, Replies,
    testing::Values(ReplyCase{"Re: Helpdesk Ticket {12}", true, "12"}, ReplyCase{"Re: Helpdesk Ticket {12}", false, ""},
                    ReplyCase{"{a b} {12}", true, "a b"}, ReplyCase{"only { opens", true, ""},
                    ReplyCase{"{ 12 }", true, "_12_"}, ReplyCase{"{   }", true, "___"},
                    ReplyCase{"{a\\b/c}", true, "a_b_c"}, ReplyCase{"{..}", true, ".."},
                    ReplyCase{"{12\xE2\x80\xAE}", true, "12_"},
                    ReplyCase{"{1234567890123456789012345678901234567890123456789012345678901234567"
                              "8901234567890}",
                              true, "1234567890123456789012345678901234567890123456789012345678901234"},
                    ReplyCase{"}{ the wrong way round", true, ""}, ReplyCase{"empty {} braces", true, ""}));

struct NeedCase {
    const char *setting;
    const char *subject;
    /// The folder that takes it; empty where it becomes a ticket.
    const char *folder;
};

class RepliesThatNeedATicket : public FolderMonitor, public testing::WithParamInterface<NeedCase> {};

TEST_P(RepliesThatNeedATicket, AreRepliesOnlyWhereThereIsOne) {
    const NeedCase &each = GetParam();
    setSetting("EmailSubFolders", "1");
    setSetting("RepliesNeedTicket", each.setting);
    setSetting("ConvertedEmailMessage", "Ticket [TICKETID] was made.");
    for (const bool isScanned : {false, true}) {
        auto &copy = start();
        deliver({.subject = "open"});
        deliver({.subject = "closed"});
        // The item of a closed ticket has left the folder, its row is there.
        tickets().Items().Find("[Subject] = 'closed'").Delete();
        const qint32 before = tickets().Items().Count();
        const qsizetype confirmed = outgoing().size();
        if (isScanned)
            copy.run.quit();
        deliver({.subject = each.subject});
        if (isScanned)
            start().run.quit();
        else
            copy.run.quit();
        const bool isTicket = *each.folder == '\0';
        EXPECT_EQ(tickets().Items().Count() - before, isTicket ? 1 : 0);
        EXPECT_EQ(outgoing().size() - confirmed, isTicket ? 1 : 0);
        if (!isTicket) {
            EXPECT_TRUE(tickets()
                            .Folders(each.folder)
                            .Folders("Received")
                            .FindItem("[Subject] = '" + QString(each.subject) + "'"));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Settings, RepliesThatNeedATicket,
                         testing::Values(NeedCase{"1", "Re: {1}", "1"}, NeedCase{"1", "Re: {2}", "2"},
                                         NeedCase{"1", "Re: {99}", ""}, NeedCase{"1", "see {my notes}", ""},
                                         NeedCase{"1", "{' or '1'='1}", ""}, NeedCase{"0", "Re: {99}", "99"},
                                         NeedCase{"", "see {my notes}", "my notes"}));

TEST_F(FolderMonitor, AReplyAddsAWorkRowAndMarksTheTicketUnread) {
    setSetting("EmailSubFolders", "1");
    start();
    deliver({.subject = "a problem"});
    EXPECT_EQ(subjects(tickets().Folders("1").Folders("Received")), QStringList{"a problem"}) << "a copy is kept";
    const host::Item before = ticket();
    before.UnRead(false);
    before.Save();

    deliver({.subject = "Re: a problem {1}", .from = "\"Rita Reply\" <rita@example.org>"});
    EXPECT_EQ(subjects(tickets()).size(), 1);
    EXPECT_EQ(rows("SELECT * FROM tblWork", {"intTicketID", "strPersonName", "intMinutesWorked"}),
              QStringList{"1|Rita Reply|0"});
    EXPECT_TRUE(ticket().UnRead());
    EXPECT_TRUE(property(ticket(), "WorkDescriptions0").contains("Rita Reply"));
    EXPECT_EQ(subjects(tickets().Folders("1").Folders("Received")), (QStringList{"a problem", "Re: a problem {1}"}));
    EXPECT_TRUE(outgoing().isEmpty());
}

/// One copy runs in the United States, the other in Britain, and the day is no help: 5 March is a date in both orders.
TEST_F(FolderMonitor, CopiesOfDifferentRegionsReadEachOthersWorkLogs) {
    setSetting("EmailSubFolders", "1");
    setSetting("Region", "de-DE");
    auto &american = start();
    deliver({.subject = "a problem"});
    deliver({.subject = "Re: {1}"});
    american.run.quit();
    Region::set(QLocale(QLocale::English, QLocale::UnitedKingdom));
    auto &british = start();
    deliver({.subject = "Re: {1}"});
    const QString text = property(ticket(), "WorkDescriptions0");
    EXPECT_EQ(text.count("\t05.03.2024"), 2) << text.toStdString();
    british.in([&] {
        cWorkDescs log;
        log.FromString(text);
        ASSERT_EQ(log.dicWorkDesc->Count(), 2);
        for (const auto &work : log.dicWorkDesc->Items())
            EXPECT_EQ(work->WorkDate.isoText(), "2024-03-05 12:00:00");
    });
    for (const QString &row : rows("SELECT * FROM tblWork", {"dteWorkedDate"}))
        EXPECT_TRUE(row.startsWith(QStringLiteral("05/03/2024"))) << row.toStdString();
}

struct ReplyRoad {
    bool isScanned;
    /// Set before the reply is met.
    const char *mark;
    /// Its mark under the ticket; null where it is not filed.
    const char *filedMark;
};

class ReplyRoads : public FolderMonitor, public testing::WithParamInterface<ReplyRoad> {};

TEST_P(ReplyRoads, DifferBetweenTheScanAndWhatComesLater) {
    const ReplyRoad &each = GetParam();
    auto &first = start();
    deliver({.subject = "a problem"});
    first.run.quit();
    setSetting("EmailSubFolders", "1");
    const auto questions = countQuestions();
    if (!each.isScanned)
        start();
    const host::Item reply = intake().Items().Add("IPM.Note");
    reply.Subject("Re: {1}");
    reply.BillingInformation(each.mark);
    reply.Save();
    if (each.isScanned && each.filedMark)
        start();
    else if (each.isScanned)
        startWith("- \"Re: {1}\": it is not yet with the ticket that it answers");

    const host::MAPIFolder place = each.filedMark ? tickets().Folders("1").Folders("Received") : intake();
    const host::Item after = place.Items().Find("[Subject] = 'Re: {1}'");
    ASSERT_TRUE(after);
    EXPECT_EQ(after.BillingInformation(), each.filedMark ? each.filedMark : each.mark);
    EXPECT_EQ(rows("SELECT * FROM tblWork", {"intTicketID"}).size(), each.filedMark ? 1 : 0);
    if (each.filedMark) {
        EXPECT_EQ(questions->indexOf("MailItem.Move()") < questions->indexOf("PostItem.Close()"), each.isScanned);
    }
}

INSTANTIATE_TEST_SUITE_P(Roads, ReplyRoads,
                         testing::Values(ReplyRoad{true, "", "Working..."}, ReplyRoad{true, "Working...", nullptr},
                                         ReplyRoad{false, "", ""}, ReplyRoad{false, "Working...", "Working..."}));

// Two clients that found the folder empty at the same moment both watch it, and each is told of a reply by its own
// desk.
TEST_F(FolderMonitor, AReplyThatTwoWatchersMeetIsFiledOnceWheneverTheSecondComes) {
    setSetting("EmailSubFolders", "1");
    const auto questions = countQuestions();
    auto &first = start();
    deliver({.subject = "a problem"});
    auto &second = start();
    const host::MAPIFolder elsewhere = mapi().Folders("Public Folders").Folders().Add("Elsewhere", 6);
    const auto opened = [&](const QString &id) {
        return host::Handle(support::Counting::of(mapi().GetItemFromID(id).object(), questions));
    };
    int replies = 0;
    // The step of the first before which the second comes; it has opened the item before the first did, or just then.
    for (const char *step : {"MailItem.Save()", "PostItem.Close()", "MailItem.Move()", ""}) {
        for (const bool isOpenedEarly : {true, false}) {
            SCOPED_TRACE(std::string(step) + (isOpenedEarly ? " early" : " late"));
            const QString id = put(elsewhere, "IPM.Note", "Re: {1}").EntryID();
            host::Item seen = isOpenedEarly ? opened(id) : host::Handle();
            const auto comesIn = [&] {
                questions->before = nullptr;
                if (!isOpenedEarly)
                    seen = opened(id);
                if (seen.Parent() == elsewhere)
                    second.in([&] { subHandleNewItem(seen, elsewhere); });
            };
            questions->before = [&](const QString &question) {
                if (question == step)
                    comesIn();
            };
            first.in([&] { subHandleNewItem(opened(id), elsewhere); });
            if (questions->before)
                comesIn();
            ++replies;
            const host::Item filed = mapi().GetItemFromID(id);
            EXPECT_EQ(filed.Parent().Name(), "Received");
            EXPECT_EQ(filed.BillingInformation(), "");
            EXPECT_EQ(rows("SELECT * FROM tblWork", {"intTicketID"}).size(), replies);
        }
    }
    EXPECT_TRUE(first.run.alive() && second.run.alive());
}

TEST_F(FolderMonitor, WhatOthersDoToATicketWhileAReplyIsNotedStandsBesideIt) {
    const auto questions = countQuestions();
    auto &first = start();
    deliver({.subject = "a problem"});
    auto &second = start();
    const auto meanwhile = [&](const QString &step, const std::function<void()> &others) {
        questions->before = [=](const QString &question) {
            if (question != step)
                return;
            const auto comeIn = others; // what this step holds goes with it
            questions->before = nullptr;
            comeIn();
        };
        first.in([] { subAddEmailWorkItem("1", "First"); });
        EXPECT_EQ(questions->before, nullptr) << step.toStdString();
    };
    // The first has read the log, and next has written its row.
    meanwhile("PostItem.Subject", [&] { second.in([] { subAddEmailWorkItem("1", "Second"); }); });
    meanwhile("PostItem.Close()", [&] {
        const host::Item seen = ticket();
        seen.put("Categories", "seen");
        seen.Save();
    });
    EXPECT_EQ(rows("SELECT * FROM tblWork", {"strPersonName"}), (QStringList{"Second", "First", "First"}));
    cWorkDescs objLog;
    objLog.FromString(property(ticket(), "WorkDescriptions0"));
    EXPECT_EQ(objLog.dicWorkDesc->Count(), 3);
    EXPECT_EQ(ticket().get("Categories"), Value("seen"));
}

// ---- the ends of the road

TEST_F(FolderMonitor, ATicketItemThatCannotBeNumberedIsNotLeftBehind) {
    auto &copy = start();
    copy.answers.expect("Failed to open tblTickets for writing!");
    QFile::rename(path("program/Orvelle.mdb"), path("program/away.mdb"));
    copy.in([] {
        subCloseConnection();
        blnAllowDBCreation = false;
    });
    deliver({.subject = "unlucky"});
    QFile::rename(path("program/away.mdb"), path("program/Orvelle.mdb"));
    EXPECT_TRUE(subjects(tickets()).isEmpty());
    EXPECT_EQ(subjects(intake()), (QStringList{strFlagSubject, "unlucky"}));
    EXPECT_EQ(intake().Items().Item(2).BillingInformation(), "") << "tried again at the next scan";
}

} // namespace
