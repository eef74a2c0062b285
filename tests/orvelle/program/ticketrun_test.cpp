// The ticket run: every way from the selected or open mail to its ticket.

#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"
#include "orvelle/reference/settings.h"
#include "orvelle/session/safeutils.h"
#include "platform/scripting/components.h"
#include "support/fakeobject.h"
#include "support/helpdesk.h"

#include <QFile>

namespace {

class TicketRun : public support::Helpdesk {
  protected:
    void SetUp() override {
        // A full run leaves the reference to the ticket folder in the registry.
        start().run.quit();
        withDatabase([this] {
            m_openNow = LNGTICKETCREATEDOPENNOW;
            m_moved = LNGEMAILMOVEDTORECIEVEDSF;
            m_noSubFolder = LNGFAILEDTOCREATESUBFOLDER + strLineEnd + LNGCHECKPERM;
        });
        explorer().CurrentFolder(intake());
    }
    void select(qint32 index) { explorer().call("AddToSelection", {intake().Items().Item(index)}); }
    support::Copy &startExpecting(const QString &question, window::Answer answer) {
        auto &copy = newCopy("Ticket");
        copy.answers.expect(question, answer);
        copy.run.start();
        return copy;
    }

    QString m_openNow;
    QString m_moved;
    QString m_noSubFolder;
};

/// Whether tickets have folders, and the subject of the mail.
using NewMail = std::pair<bool, const char *>;
class NewTicketRun : public TicketRun, public testing::WithParamInterface<NewMail> {};

TEST_P(NewTicketRun, MakesATicketOfTheOneSelectedMailAndEnds) {
    const auto &[hasFolders, subject] = GetParam();
    setSetting("EmailSubFolders", hasFolders ? "1" : "0");
    deliver({.subject = subject});
    select(1);
    auto &copy = startExpecting(m_openNow, window::No);
    EXPECT_FALSE(copy.run.alive());
    EXPECT_EQ(copy.run.exitStatus(), 0);
    EXPECT_EQ(subjects(tickets()), QStringList{subject});
    EXPECT_EQ(subjects(intake()), QStringList{subject}) << "the mail stays where it is";
    EXPECT_EQ(intake().Items().Item(1).BillingInformation(), "1");
    EXPECT_EQ(folderNames(tickets()), hasFolders ? QStringList{"1"} : QStringList());
    if (hasFolders) {
        EXPECT_EQ(subjects(tickets().Folders("1").Folders("Received")), QStringList{subject}) << "a copy";
    }
}

// Without folders braces mean nothing.
INSTANTIATE_TEST_SUITE_P(Mails, NewTicketRun, testing::Values(NewMail{false, "Re: {9}"}, NewMail{true, "new"}));

TEST_F(TicketRun, SpeaksTheHelpdesksLanguageAndRepairsForms) {
    writtenFile(path("OrvelleSettings"), "3");
    put(tickets(), "IPM.Post.Odd", "odd");
    deliver({});
    select(1);
    QString question;
    withDatabase([&] {
        LoadLanguages(3);
        question = LNGTICKETCREATEDOPENNOW;
    });
    ASSERT_NE(question, m_openNow);
    EXPECT_FALSE(startExpecting(question, window::No).run.alive());
    EXPECT_EQ(tickets().Items().Item(1).MessageClass(), "IPM.Post.HelpDesk.Ticket.8");
}

TEST_F(TicketRun, DoesNothingWithNoneOrTwoSelected) {
    deliver({.subject = "one"});
    deliver({.subject = "two"});
    EXPECT_FALSE(start("Ticket").run.alive());
    select(1);
    select(2);
    EXPECT_FALSE(start("Ticket").run.alive());
    EXPECT_TRUE(subjects(tickets()).isEmpty());
}

TEST_F(TicketRun, TakesTheMailOfTheWindowInFront) {
    deliver({.subject = "open"});
    intake().Items().Item(1).Display();
    ASSERT_EQ(app().ActiveWindow().typeName(), "Inspector");
    startExpecting(m_openNow, window::No);
    EXPECT_EQ(subjects(tickets()), QStringList{"open"});
}

TEST_F(TicketRun, OnYesOpensTheTicketBesideAnExplorerOnTheFolder) {
    deliver({.subject = "selected"});
    select(1);
    const host::Explorer onTickets = app().Explorers().Add(tickets(), 0);
    onTickets.Display();
    explorer().Activate();
    auto &copy = startExpecting(m_openNow, window::Yes);
    EXPECT_FALSE(copy.run.alive());
    EXPECT_EQ(app().Explorers().Count(), 2);
    ASSERT_EQ(app().Inspectors().Count(), 1);
    EXPECT_EQ(property(app().Inspectors().Item(1).CurrentItem(), "Ticket ID"), "1");
}

TEST_F(TicketRun, OnYesWithoutOneItOpensOneAttachesAndStays) {
    deliver({.subject = "selected"});
    select(1);
    const auto questions = countQuestions();
    auto &copy = newCopy("Ticket");
    copy.answers.expectDuring(
        m_openNow, [this] { setSetting("KBPath", "changed meanwhile"); }, window::Yes);
    copy.run.start();
    EXPECT_TRUE(copy.run.alive());
    EXPECT_EQ(questions->mid(questions->indexOf("Explorers.Add()") + 1, 3),
              (QStringList{"Explorer.Display()", "Explorer.WindowState=", "Explorer.Activate()"}));
    copy.in([] {
        EXPECT_EQ(objSettings->OtherSettings->GetValue("KBPath", valuetype::text), Value("changed meanwhile"));
        int made = 0;
        scripting::components->add("SafeTessmark.MAPIUtils", [&made] {
            ++made;
            return std::make_shared<support::FakeObject>("MAPIUtils");
        });
        EXPECT_TRUE(fncSetupSafeUtils());
        EXPECT_EQ(made, 1) << "the library was let go";
    });
    ASSERT_EQ(app().Explorers().Count(), 2);
    const host::Explorer opened = app().Explorers().Item(2);
    EXPECT_TRUE(opened.CurrentFolder() == tickets());
    EXPECT_EQ(opened.get("WindowState"), Value(0));
    EXPECT_TRUE(app().ActiveExplorer() == opened);
    EXPECT_EQ(opened.CommandBars().Count(), 1);
    EXPECT_EQ(app().Inspectors().Count(), 1);
    opened.Close();
    EXPECT_FALSE(copy.run.alive());
    EXPECT_EQ(copy.ends, 1);
}

TEST_F(TicketRun, WithSubFoldersAReplyIsFiledAndItsWindowClosed) {
    setSetting("EmailSubFolders", "1");
    deliver({.subject = "Re: {9}"});
    const host::Item other = put(intake(), "IPM.Post", "somebody's work");
    other.Display();
    intake().Items().Item(1).Display();
    startExpecting(m_moved, window::No);
    EXPECT_TRUE(subjects(tickets()).isEmpty());
    EXPECT_EQ(subjects(tickets().Folders("9").Folders("Received")), QStringList{"Re: {9}"});
    ASSERT_EQ(app().Inspectors().Count(), 1);
    EXPECT_EQ(app().Inspectors().Item(1).CurrentItem().Subject(), "somebody's work");
}

TEST_F(TicketRun, OnYesForATicketThatIsNotThereTheFolderIsShown) {
    setSetting("EmailSubFolders", "1");
    deliver({.subject = "Re: {9}"});
    select(1);
    auto &copy = startExpecting(m_moved, window::Yes);
    EXPECT_TRUE(copy.run.alive());
    EXPECT_EQ(app().Explorers().Count(), 2);
    EXPECT_EQ(app().Inspectors().Count(), 0);
}

TEST_F(TicketRun, AReplyWithoutAFolderToGoToStaysAndNothingIsAsked) {
    setSetting("EmailSubFolders", "1");
    deliver({.subject = "Re: {9}"});
    select(1);
    const auto questions = countQuestions();
    questions->failing["Folders.Add()"] = failures::accessDenied;
    auto &copy = newCopy("Ticket");
    copy.answers.expect(m_noSubFolder);
    copy.run.start();
    EXPECT_FALSE(copy.run.alive());
    EXPECT_EQ(subjects(intake()), QStringList{"Re: {9}"});
}

TEST_F(TicketRun, AFailureIsReportedUnderItsName) {
    deliver({});
    select(1);
    const auto questions = countQuestions();
    questions->failing["Selection.Item()"] = failures::catastrophic;
    auto &copy = startExpecting(" : subCreateTicketFromSelected ", window::No);
    EXPECT_EQ(copy.run.exitStatus(), 1);
}

TEST_F(TicketRun, WithoutADatabaseItEndsWithoutAWord) {
    QFile::remove(path("program/Orvelle.mdb"));
    deliver({});
    select(1);
    auto &copy = start("Ticket");
    EXPECT_FALSE(copy.run.alive());
    EXPECT_EQ(copy.run.exitStatus(), 0);
    EXPECT_TRUE(subjects(tickets()).isEmpty());
}

TEST_F(TicketRun, DoesNotLookForOtherInstances) {
    shareInstanceFile();
    explorer().CurrentFolder(tickets());
    auto &monitor = start();
    const host::Explorer other = app().Explorers().Add(intake(), 0);
    other.Display();
    const host::MAPIFolder elsewhere = mailbox().Folders().Add("Elsewhere", 6);
    deliver({.subject = "elsewhere"}, elsewhere);
    other.CurrentFolder(elsewhere);
    other.call("AddToSelection", {elsewhere.Items().Item(1)});
    startExpecting(m_openNow, window::No);
    EXPECT_EQ(subjects(tickets()), QStringList{"elsewhere"});
    EXPECT_TRUE(monitor.run.alive());
}

} // namespace
