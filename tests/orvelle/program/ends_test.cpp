// An end that comes inside a step: what is in hand becomes whole, and nothing of the run is executed any more.
//
// ORVELLE_EVERY gives the distance of the questions to the host in front of which the end comes (default 67; 1 tries
// each of them).

#include "desk/objects/application.h"
#include "desk/objects/session.h"
#include "orvelle/core/process.h"
#include "orvelle/mail/foldermonitor.h"
#include "orvelle/program/main.h"
#include "orvelle/reference/settings.h"
#include "orvelle/session/session.h"
#include "support/helpdesk.h"

namespace {

enum class EndBy { FolderSwitch, Close, HostQuit, Signal };
enum class Step { StartScan, Watch, CopyButton, TicketRun };

struct Situation {
    const char *name;
    Step step;
    EndBy end;
};

class EndInside : public support::Helpdesk, public testing::WithParamInterface<Situation> {
  protected:
    EndInside() {
        setSetting("EmailSubFolders", "1");
        setSetting("ConvertedEmailMessage", "Your mail is ticket [TICKETID].");
        setSetting("ConvertedEmailSubject", "Helpdesk Ticket {[TICKETID]}");
        m_sent = mapi().GetDefaultFolder(5).Folders().Add("ORVLSentItems", 6);
        m_converted = intake().Folders().Add("Converted");
        m_questions = countQuestions();
    }

    /// The step from its beginning; gives how many questions were asked of the host.
    qsizetype runStep(qsizetype endBefore) {
        m_endBefore = -1;
        m_questions->clear();
        m_explorer = app().Explorers().Add(tickets(), 0);
        m_explorer.Display();
        m_copy = &newCopy(GetParam().step == Step::TicketRun ? "Ticket" : "");
        if (GetParam().step == Step::StartScan)
            deliverMails();
        if (GetParam().step == Step::TicketRun)
            selectMail();
        if (GetParam().step == Step::Watch || GetParam().step == Step::CopyButton)
            m_copy->run.start();
        const qsizetype first = m_questions->size();
        m_endBefore = endBefore < 0 ? -1 : first + endBefore;
        m_questions->before = [this](const QString &) {
            if (m_questions->size() - 1 == m_endBefore)
                end();
        };
        doStep();
        m_questions->before = nullptr;
        return m_questions->size() - first;
    }

    void doStep() {
        switch (GetParam().step) {
        case Step::StartScan:
            return m_copy->run.start();
        case Step::Watch:
            return deliverMails();
        case Step::CopyButton:
            m_explorer.call("AddToSelection", {tickets().Items().Item(1)});
            m_explorer.CommandBars().Item(1).Controls().Item(2).call("Execute");
            return;
        case Step::TicketRun:
            m_copy->run.start();
            return;
        }
    }

    void selectMail() {
        deliver({.subject = "chosen"}, m_sent);
        const host::Item chosen = m_sent.Items().Item(1);
        const host::MAPIFolder inbox = mapi().GetDefaultFolder(6);
        const host::Item moved = chosen.Move(inbox);
        m_explorer.CurrentFolder(inbox);
        m_explorer.call("AddToSelection", {moved});
        // Whether it is asked depends on when the end comes.
        m_copy->in([] { window::asker = nullptr; });
    }

    void deliverMails() {
        deliver({.subject = "one", .files = {{"log.txt", "content"}}});
        deliver({.subject = "Re: {1}"});
        deliver({.subject = "two"});
    }

    void end() {
        m_doneBefore = m_converted.Items().Count() + received();
        switch (GetParam().end) {
        case EndBy::FolderSwitch:
            return m_explorer.CurrentFolder(intake());
        case EndBy::Close:
            return m_explorer.Close();
        case EndBy::HostQuit:
            Q_EMIT desk().session().application()->ApplicationEvents::Quit();
            return;
        case EndBy::Signal:
            return m_copy->run.quit();
        }
    }

    [[nodiscard]] qint32 received() const {
        return AttemptOr([&] { return tickets().Folders("1").Folders("Received").Items().Count(); }, 0);
    }

    /// The first question in front of which the end is heard: a run that starts listens to the host's events when it
    /// makes its bar.
    [[nodiscard]] qsizetype firstHeard() const {
        const bool isSignal = GetParam().end == EndBy::Signal;
        return GetParam().step == Step::StartScan && !isSignal ? m_questions->indexOf("CommandBars.Add()") : 0;
    }

    /// What people find afterwards.
    void expectOrder() {
        EXPECT_FALSE(m_copy->run.alive());
        EXPECT_EQ(m_copy->ends, 1);
        EXPECT_EQ(m_copy->run.exitStatus(), 0);
        EXPECT_LE(m_converted.Items().Count() + received(), m_doneBefore + 1) << "only what was in hand is finished";
        const host::Items left = intake().Items();
        for (qint32 i = 1; i <= left.Count(); ++i) {
            EXPECT_EQ(left.Item(i).BillingInformation(), "") << left.Item(i).Subject().toStdString();
            EXPECT_NE(left.Item(i).MessageClass(), "IPM.Post") << "the flag item";
        }
        expectWholeTickets();
        EXPECT_EQ(m_sent.Items().Count(), 0);
        const host::Explorers explorers = app().Explorers();
        for (qint32 i = 1; i <= explorers.Count(); ++i)
            EXPECT_EQ(explorers.Item(i).CommandBars().Count(), 0);
    }

    /// Every ticket has its row, its number, and, where it came from a mail, the mail's copy and its confirmation.
    void expectWholeTickets() {
        QStringList numbers;
        const host::Items items = tickets().Items();
        for (qint32 i = 1; i <= items.Count(); ++i)
            numbers << property(items.Item(i), "Ticket ID");
        QStringList stored = rows("SELECT * FROM tblTickets", {"strTicketID"});
        numbers.sort();
        stored.sort();
        EXPECT_EQ(numbers, stored);
        const host::Items converted = m_converted.Items();
        for (qint32 i = 1; i <= converted.Count(); ++i) {
            const host::Folders folders = tickets().Folders(converted.Item(i).BillingInformation()).Folders();
            EXPECT_GE(folders.Item("Received").Items().Count(), 1);
            EXPECT_EQ(folders.Item("Sent").Items().Count(), 1);
        }
    }

    void tidyUp() {
        for (const host::MAPIFolder &folder : {intake(), m_converted}) {
            while (folder.Items().Count() > 0)
                folder.Items().Item(1).Delete();
        }
        while (app().Explorers().Count() > 0)
            app().Explorers().Item(1).Close();
    }

    host::MAPIFolder m_sent;
    host::MAPIFolder m_converted;
    host::Explorer m_explorer;
    support::Counting::Log m_questions;
    support::Copy *m_copy = nullptr;
    qsizetype m_endBefore = -1;
    qint32 m_doneBefore = 0;
};

TEST_P(EndInside, OfAStepFinishesWhatIsInHandAndNothingMore) {
    start();
    deliver({.subject = "the first ticket"});
    tidyUp();
    bool given = false;
    const int distance = qEnvironmentVariableIntValue("ORVELLE_EVERY", &given);
    const int every = given ? std::max(distance, 1) : 67;
    const qsizetype asked = runStep(-1);
    ASSERT_GT(asked, every);
    const qsizetype first = firstHeard();
    ASSERT_GE(first, 0);
    for (qsizetype place = first; place < asked; place += every) {
        m_copy->run.quit();
        tidyUp();
        if (runStep(place) <= place)
            break;
        SCOPED_TRACE("the end in front of " + m_questions->value(m_endBefore).toStdString() + ", question " +
                     std::to_string(place));
        expectOrder();
        if (HasFailure())
            return;
    }
    m_copy->run.quit();
}

INSTANTIATE_TEST_SUITE_P(Steps, EndInside,
                         testing::Values(Situation{"scan and folder switch", Step::StartScan, EndBy::FolderSwitch},
                                         Situation{"scan and close", Step::StartScan, EndBy::Close},
                                         Situation{"scan and host", Step::StartScan, EndBy::HostQuit},
                                         Situation{"scan and signal", Step::StartScan, EndBy::Signal},
                                         Situation{"watch and folder switch", Step::Watch, EndBy::FolderSwitch},
                                         Situation{"watch and signal", Step::Watch, EndBy::Signal},
                                         Situation{"copy and folder switch", Step::CopyButton, EndBy::FolderSwitch},
                                         Situation{"ticket run and signal", Step::TicketRun, EndBy::Signal}));

} // namespace
