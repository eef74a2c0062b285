// The kinds of run, from their first step to their end.

#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"
#include "orvelle/database/chooseconnection.h"
#include "orvelle/database/connection.h"
#include "orvelle/mail/foldermonitor.h"
#include "orvelle/program/dummy.h"
#include "orvelle/program/main.h"
#include "orvelle/reference/settings.h"
#include "orvelle/session/session.h"
#include "orvelle/toolbar/rootexplorer.h"
#include "platform/scripting/shell.h"
#include "platform/value/filelock.h"
#include "support/fakeobject.h"
#include "support/helpdesk.h"

#include <QDir>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

class RunModes : public support::Helpdesk {
  protected:
    QStringList bars() const {
        QStringList names;
        const host::CommandBars all = explorer().CommandBars();
        for (qint32 i = 1; i <= all.Count(); ++i)
            names << all.Item(i).Name();
        return names;
    }
};

// ---- the monitor run

TEST_F(RunModes, AMonitorRunAttachesAndStays) {
    auto &copy = start();
    EXPECT_TRUE(copy.run.alive());
    EXPECT_EQ(bars(), QStringList{"Orvelle 9 for Outlook"});
    copy.in([&] {
        EXPECT_TRUE(oufTickets == tickets());
        EXPECT_TRUE(frmDummy->isLoaded());
        EXPECT_EQ(frmDummy->Caption(), "Client Window - Orvelle process");
        EXPECT_EQ(strCurrentUserName.get(), "Alma Tester");
        EXPECT_EQ(colIncomingMonitors->Count(), 1);
        const scripting::Shell shell;
        EXPECT_EQ(shell.RegRead("HKCU\\Software\\Tessmark\\Orvelle\\Folder Name"), "Helpdesk");
    });
}

// The person may have gone to another helpdesk before the run has come to its Explorer.
TEST_F(RunModes, AMonitorRunAttachesWhereThePersonIsByThen) {
    const host::MAPIFolder second = mapi().Folders("Public Folders").Folders().Add("Second", 6);
    second.WebViewURL(tickets().WebViewURL());
    const host::Explorer other = app().Explorers().Add(second, 0);
    other.Display();
    explorer().Activate();
    setClientTools(false);
    auto &copy = newCopy();
    copy.answers.expectDuring(
        "Client Tools", [&] { other.Activate(); }, window::No);
    copy.run.start();
    EXPECT_TRUE(bars().isEmpty());
    EXPECT_EQ(other.CommandBars().Count(), 1);
    copy.in([&] { EXPECT_TRUE(oufTickets == second); });
}

struct LanguageCase {
    const char *command;
    const char *setting;
    /// The languages of the toolbar, made before the settings are read, and of the run.
    int start;
    int after;
};

class Languages : public RunModes, public testing::WithParamInterface<LanguageCase> {};

TEST_P(Languages, ComeFromTheCommandLineAndThenFromTheSettings) {
    writtenFile(path("OrvelleSettings"), GetParam().setting);
    QStringList phrases;
    withDatabase([&] {
        for (const int language : {GetParam().start, GetParam().after}) {
            LoadLanguages(language);
            phrases << LNGSETTINGSTT;
        }
    });
    auto &copy = start(GetParam().command);
    ASSERT_TRUE(copy.run.alive());
    EXPECT_EQ(explorer().CommandBars().Item(1).Controls().Item(1).TooltipText(), phrases[0]);
    EXPECT_EQ(copy.in([] { return LNGSETTINGSTT.text(); }), phrases[1]);
}

INSTANTIATE_TEST_SUITE_P(Commands, Languages,
                         testing::Values(LanguageCase{"", "1", 1, 1}, LanguageCase{"   ", "3", 1, 3},
                                         LanguageCase{"2", "3", 2, 3}, LanguageCase{" 15 ", "1", 15, 1}));

class WrongCommands : public RunModes, public testing::WithParamInterface<const char *> {};

TEST_P(WrongCommands, AreAReportThatEndsTheRun) {
    auto &copy = newCopy(GetParam());
    copy.answers.expect("#", window::No);
    copy.run.start();
    EXPECT_FALSE(copy.run.alive());
    EXPECT_EQ(copy.run.exitStatus(), 1);
    EXPECT_TRUE(bars().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Commands, WrongCommands, testing::Values("ticket", "TICKET", "Ticket 1", "Ticket ", "99999"));

TEST_F(RunModes, ABystanderRepairsFormsAndEnds) {
    shareInstanceFile();
    auto &monitor = start();
    put(tickets(), "IPM.Post.HelpDesk.Ticket.8.One-off", "one-off");
    auto &bystander = start();
    EXPECT_FALSE(bystander.run.alive());
    EXPECT_EQ(bystander.ends, 1);
    EXPECT_EQ(bystander.run.exitStatus(), 0);
    EXPECT_EQ(tickets().Items().Item(1).MessageClass(), "IPM.Post.HelpDesk.Ticket.8");
    EXPECT_EQ(bars().size(), 1);

    auto later = FileLock::join(path("orvelle.lock"));
    monitor.run.quit();
    EXPECT_FALSE(start().run.alive()) << "a run that came later is still there";
    later.lock.reset();
    EXPECT_TRUE(start().run.alive()) << "the file is free again";
}

// ---- the ends of a monitor run

enum class EndEvent { FolderSwitch, Close, Quit };

class Ends : public RunModes, public testing::WithParamInterface<EndEvent> {
  protected:
    void raise() {
        switch (GetParam()) {
        case EndEvent::FolderSwitch:
            return explorer().CurrentFolder(intake());
        case EndEvent::Close:
            return explorer().Close();
        case EndEvent::Quit:
            return closeDesk();
        }
    }
};

TEST_P(Ends, OfTheExplorerOrTheHostEndTheRun) {
    auto &copy = start();
    const host::MAPIFolder watched = intake();
    ASSERT_TRUE(copy.run.alive());
    const auto connection = copy.in([] {
        subSetupConnection();
        return *adoConnection;
    });
    raise();
    EXPECT_FALSE(copy.run.alive());
    EXPECT_FALSE(connection->IsOpen());
    EXPECT_EQ(copy.ends, 1);
    EXPECT_EQ(copy.run.exitStatus(), 0);
    copy.in([] {
        EXPECT_TRUE(ouaOutlook->isNothing());
        EXPECT_TRUE(objSettings.get().isNothing());
    });
    if (GetParam() == EndEvent::Quit)
        return;
    EXPECT_TRUE(subjects(watched).isEmpty()) << "the flag item is gone";
    EXPECT_TRUE(bars().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Events, Ends, testing::Values(EndEvent::FolderSwitch, EndEvent::Close, EndEvent::Quit));

TEST_F(RunModes, AnotherExplorerChangesNothing) {
    auto &copy = start();
    const host::Explorer other = app().Explorers().Add(intake(), 0);
    other.Display();
    other.CurrentFolder(tickets());
    EXPECT_EQ(other.CommandBars().Count(), 0);
    other.Close();
    EXPECT_TRUE(copy.run.alive());
}

TEST_F(RunModes, TheBarOfAnEarlierProcessIsTakenAwayToo) {
    static_cast<void>(explorer().CommandBars().Add("Orvelle 9 for Outlook", 2, false, true));
    static_cast<void>(explorer().CommandBars().Add("Somebody else's", 2, false, true));
    auto &copy = start();
    EXPECT_EQ(bars().size(), 3);
    explorer().CurrentFolder(intake());
    EXPECT_FALSE(copy.run.alive());
    EXPECT_EQ(bars(), QStringList{"Somebody else's"});
}

// The report offers a mail, which the host that has died can't write.
TEST_F(RunModes, TheMailAboutAHostThatDiedIsWrittenByAnother) {
    for (const bool isThereAgain : {true, false}) {
        auto &copy = start();
        copy.in([&] {
            const auto dead = std::make_shared<support::FakeObject>("Application");
            dead->failing = {"Version", "CreateItem", "ActiveExplorer", "GetNamespace"};
            ouaOutlook = host::Application(automation::ObjectPtr(dead));
            if (!isThereAgain)
                runningHost = []() -> automation::ObjectPtr { throw Failure(failures::cannotCreateObject); };
        });
        copy.answers.expect("-2147023174", window::Yes);
        if (!isThereAgain)
            copy.answers.expect("Please start Outlook manually");
        copy.run.hostGone();
        EXPECT_FALSE(copy.run.alive());
        EXPECT_EQ(copy.run.exitStatus(), 1);
        EXPECT_EQ(copy.ends, 1);
        EXPECT_EQ(subjects(mapi().GetDefaultFolder(16)).size(), 1);
    }
}

TEST_F(RunModes, WhatAKilledRunLeftInTheTemporaryFolderIsSweptAway) {
    const auto make = [&](const QString &name, bool isOld) {
        const QString folder = path("temp/" + name);
        writtenFile(folder + "/log.txt", {});
        const timespec past[2] = {{1000, 0}, {1000, 0}};
        EXPECT_EQ(isOld ? ::utimensat(AT_FDCWD, folder.toUtf8().constData(), past, 0) : 0, 0);
        return folder;
    };
    const QString held = make("orvelle-attachments-held", true);
    const int descriptor = ::open(held.toUtf8().constData(), O_RDONLY | O_DIRECTORY);
    ASSERT_EQ(::flock(descriptor, LOCK_EX), 0);
    make("orvelle-attachments-stale", true);
    make("orvelle-attachments-young", false);
    make("somebody-else", true);
    start();
    ::close(descriptor);
    EXPECT_EQ(QDir(path("temp")).entryList(QDir::AllDirs | QDir::NoDotAndDotDot),
              (QStringList{"orvelle-attachments-held", "orvelle-attachments-young", "somebody-else"}));
}

TEST_F(RunModes, AnEndUnderAQuestionOfTheStartIsTheEnd) {
    setClientTools(false);
    deliver({.subject = "a mail"});
    auto &copy = newCopy();
    const auto questions = countQuestions();
    qsizetype asked = 0;
    copy.answers.expectDuring(
        "Client Tools",
        [&] {
            copy.run.quit();
            asked = questions->size();
        },
        window::No);
    copy.run.start();
    EXPECT_FALSE(copy.run.alive());
    EXPECT_EQ(copy.ends, 1);
    EXPECT_EQ(subjects(intake()), QStringList{"a mail"});
    EXPECT_EQ(questions->size(), asked) << "the host was asked for more: " << questions->value(asked).toStdString();
}

TEST_F(RunModes, AHostThatIsNotThereEndsTheRunWithItsMessage) {
    closeDesk();
    auto &copy = newCopy();
    copy.answers.expect("Please start Outlook manually");
    copy.run.start();
    EXPECT_FALSE(copy.run.alive());
    EXPECT_EQ(copy.run.exitStatus(), 1);
}

// ---- buttons

TEST_F(RunModes, TheSettingsButtonStartsItsProgramAndEndsTheRun) {
    QFile::setPermissions(writtenFile(path("program/ORVELLESETTINGS.exe"), {}), QFile::ReadOwner | QFile::ExeOwner);
    auto &copy = start();
    explorer().CommandBars().Item(1).Controls().Item(1).call("Execute");
    EXPECT_FALSE(copy.run.alive());
    ASSERT_EQ(copy.launches.started().size(), 1);
    EXPECT_TRUE(copy.launches.started().first().startsWith(path("program/ORVELLESETTINGS.exe")));
    EXPECT_TRUE(bars().isEmpty());
}

TEST_F(RunModes, TheCopyButtonCopiesTheOneSelectedTicket) {
    start();
    deliver({.subject = "a problem"});
    const host::CommandBarButton copyButton = explorer().CommandBars().Item(1).Controls().Item(2);
    copyButton.call("Execute");
    EXPECT_EQ(subjects(tickets()).size(), 1) << "nothing is selected";

    explorer().call("AddToSelection", {tickets().Items().Item(1)});
    copyButton.call("Execute");
    ASSERT_EQ(subjects(tickets()), (QStringList{"a problem", "a problem"}));
    EXPECT_EQ(property(tickets().Items().Item(2), "Ticket ID"), "2");
    EXPECT_EQ(property(tickets().Items().Item(2), "Caller name"), "Cal Caller");
    EXPECT_EQ(rows("SELECT * FROM tblTickets ORDER BY intTicketID", {"strTicketID"}), (QStringList{"1", "2"}));

    explorer().call("AddToSelection", {tickets().Items().Item(2)});
    copyButton.call("Execute");
    EXPECT_EQ(subjects(tickets()).size(), 2) << "two are selected";
}

TEST_F(RunModes, SentMailIsFiledByItsSubject) {
    setSetting("EmailSubFolders", "1");
    // Another copy makes the folder between the look and the making.
    const auto questions = countQuestions();
    questions->before = [&](const QString &question) {
        if (question == "Folders.Add()" && folderNames(mapi().GetDefaultFolder(5)).isEmpty())
            mapi().GetDefaultFolder(5).Folders().Add("ORVLSentItems", 6);
    };
    auto &copy = start();
    copy.in([] { objRootExplorer->oisORVLSentItems_ItemAdd(host::Item()); });
    const host::MAPIFolder sent = mapi().GetDefaultFolder(5).Folders("ORVLSentItems");
    put(sent, "IPM.Note", "about {4}");
    put(sent, "IPM.Note", "about nothing");
    EXPECT_EQ(subjects(sent), QStringList{"about nothing"});
    EXPECT_EQ(subjects(tickets().Folders("4").Folders("Sent")), QStringList{"about {4}"});
}

// ---- the first run

/// Whether the person wants example data.
class FirstRun : public RunModes, public testing::WithParamInterface<bool> {};

TEST_P(FirstRun, MakesTheDatabaseShowsTheHelpdeskAndEnds) {
    QFile::remove(path("program/Orvelle.mdb"));
    const QString loader = writtenFile(path("program/ORVELLEEXAMPLEDATA.exe"), {});
    QFile::setPermissions(loader, QFile::ReadOwner | QFile::ExeOwner);
    put(tickets(), "IPM.Post.Odd", "not looked at yet");
    explorer().CurrentFolder(intake());
    QStringList shown;
    const auto subscription =
        explorer().connect("FolderSwitch", [&](ValueList &) { shown << explorer().CurrentFolder().Name(); });
    auto &copy = newCopy();
    copy.answers.expectSheet("frmPickFolder", "cmdOK", {{"treFolders", "\\\\Public Folders\\Helpdesk"}});
    copy.answers.expectSheet("frmChooseConnection", "cmdOK", {{"chkExampleData", GetParam() ? "1" : "0"}});
    copy.run.start();
    EXPECT_EQ(shown, (QStringList{"Helpdesk", "Public Folders", "Helpdesk"})) << "the page is loaded anew";
    EXPECT_EQ(copy.launches.started().filter(loader).size(), GetParam() ? 1 : 0);
    EXPECT_EQ(tickets().Items().Item(1).MessageClass(), "IPM.Post.Odd");
    EXPECT_FALSE(copy.run.alive());
    EXPECT_EQ(copy.run.exitStatus(), 0);
    EXPECT_TRUE(bars().isEmpty());
    EXPECT_TRUE(tickets().WebViewOn());
    EXPECT_TRUE(rows("SELECT * FROM tblOtherSettings", {"strPropName"}).contains("ServiceStart"));
    EXPECT_TRUE(start().run.alive()) << "and the next run finds it";
}

INSTANTIATE_TEST_SUITE_P(ExampleData, FirstRun, testing::Bool());

// Also a first run, which makes nothing then.
TEST_F(RunModes, WithoutATicketFolderTheRunEndsAtOnce) {
    tickets().WebViewURL("");
    QFile::remove(path("program/Orvelle.mdb"));
    auto &copy = newCopy();
    copy.answers.expectSheet("frmPickFolder", "");
    copy.answers.expect("Are you sure you want to exit?", window::Yes);
    copy.run.start();
    EXPECT_FALSE(copy.run.alive());
    EXPECT_EQ(copy.run.exitStatus(), 0);
    EXPECT_FALSE(QFile::exists(path("program/Orvelle.mdb")));
}

TEST_F(RunModes, AFirstRunWithoutTheLibraryEnds) {
    QFile::remove(path("program/Orvelle.mdb"));
    setClientTools(false);
    auto &copy = newCopy();
    copy.answers.expect("Client Tools", window::No);
    copy.answers.expect("Client Tools", window::No);
    copy.run.start();
    EXPECT_FALSE(copy.run.alive());
    EXPECT_FALSE(QFile::exists(path("program/Orvelle.mdb")));
}

// ---- what every start puts in order

struct RepairCase {
    int items;
    int repaired;
};

class Repair : public RunModes, public testing::WithParamInterface<RepairCase> {};

TEST_P(Repair, WalksASmallFolderWholeAndOfALargeOneTheLastItemAlone) {
    for (int i = 0; i < GetParam().items; ++i)
        put(tickets(), i % 2 == 0 ? "IPM.Post.HelpDesk.Ticket.8" : "ipm.post.helpdesk.ticket.8", QString::number(i));
    put(tickets(), "IPM.Post.Odd", "the last");
    start();
    int exact = 0;
    const host::Items items = tickets().Items();
    for (qint32 i = 1; i <= items.Count(); ++i)
        exact += items.Item(i).MessageClass() == "IPM.Post.HelpDesk.Ticket.8" ? 1 : 0;
    EXPECT_EQ(exact - (GetParam().items + 1) / 2, GetParam().repaired);
}

INSTANTIATE_TEST_SUITE_P(Sizes, Repair, testing::Values(RepairCase{0, 1}, RepairCase{49, 25}, RepairCase{50, 1}));

} // namespace
