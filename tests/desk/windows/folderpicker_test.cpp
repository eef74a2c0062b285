// The choice of a folder, with a person at the display and other programs that wait and work.

#include "desk/objects/deskfixture.h"
#include "platform/window/askers.h"
#include "support/answers.h"

#include <QApplication>
#include <QDialog>
#include <QFileInfo>
#include <QProcess>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

#include <deque>

namespace {

/// What somebody does at the display, step by step, each once its time has come. Runs beside whatever waits.
class Person {
  public:
    Person() {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
            if (m_steps.empty() || !m_steps.front().first())
                return;
            const auto step = std::move(m_steps.front().second);
            m_steps.pop_front();
            step();
        });
        m_timer.start(5);
    }
    void when(std::function<bool()> comes, std::function<void()> step) {
        m_steps.emplace_back(std::move(comes), std::move(step));
    }
    [[nodiscard]] bool isDone() const { return m_steps.empty(); }

  private:
    QTimer m_timer;
    std::deque<std::pair<std::function<bool()>, std::function<void()>>> m_steps;
};

class FolderPickerTest : public DeskTest {
  protected:
    void SetUp() override {
        window::asker = window::makeWidgetAsker();
        static_cast<void>(publicFolder("Helpdesk").of("Folders").of("Add", {"Archive"}));
        m_desk->listen();
    }
    void TearDown() override {
        EXPECT_TRUE(person.isDone());
        window::asker = nullptr;
    }

    static QDialog *dialog() { return qobject_cast<QDialog *>(QApplication::activeModalWidget()); }
    static bool isShown() { return dialog() != nullptr; }
    static QTreeWidget *tree() { return dialog()->findChild<QTreeWidget *>("treFolders"); }
    static void press(const char *button) { dialog()->findChild<QPushButton *>(button)->click(); }
    /// A program that asks for a folder.
    void startAsker(QProcess &process) const {
        process.start(QCoreApplication::applicationFilePath(), {"--ask", file("desk.socket")});
    }

    Person person;
};

TEST_F(FolderPickerTest, ShowsTheFoldersWithThePresentOneSelectedAndIsUsedByKeys) {
    publicFolder("Helpdesk").call("Display");
    person.when(isShown, [] {
        EXPECT_EQ(dialog()->windowTitle(), "Select Folder");
        EXPECT_EQ(tree()->topLevelItemCount(), 2);
        EXPECT_EQ(tree()->topLevelItem(0)->text(0), "Mailbox - Alma Tester");
        EXPECT_EQ(tree()->currentItem()->text(0), "Helpdesk");
        EXPECT_TRUE(dialog()->focusWidget() == tree());
        const QString pictures = qEnvironmentVariable("ORVELLE_PICTURES");
        if (!pictures.isEmpty())
            dialog()->grab().save(pictures + "/folders.png");
        for (const Qt::Key key : {Qt::Key_Right, Qt::Key_Down, Qt::Key_Return})
            QTest::keyClick(tree(), key);
    });
    EXPECT_EQ(session().of("PickFolder").text("FolderPath"), "\\\\Public Folders\\Helpdesk\\Archive");
    person.when(isShown, [] { QTest::keyClick(tree(), Qt::Key_Escape); });
    EXPECT_TRUE(session().of("PickFolder").isNothing());
    person.when(isShown, [] { press("cmdCancel"); });
    EXPECT_TRUE(session().of("PickFolder").isNothing());
}

// One program waits for a person; nobody else waits with it, and one that dies takes its question along.
TEST_F(FolderPickerTest, AskersWaitWhileOthersAreServed) {
    QProcess first;
    QProcess second;
    QProcess third;
    const QDialog *firsts = nullptr;
    const auto anotherIsShown = [&] { return isShown() && dialog() != firsts; };
    startAsker(first);
    person.when(isShown, [&] {
        firsts = dialog();
        startAsker(second);
    });
    person.when(anotherIsShown, [] { press("cmdOK"); });
    person.when([&] { return second.state() == QProcess::NotRunning; },
                [&] {
                    EXPECT_EQ(second.readAllStandardOutput().trimmed(), "Inbox");
                    EXPECT_EQ(dialog(), firsts);
                    startAsker(third);
                });
    person.when(anotherIsShown, [&] {
        first.kill();
        third.kill();
    });
    person.when([] { return !isShown(); }, [] {});
    EXPECT_TRUE(QTest::qWaitFor([&] { return person.isDone(); }, 30'000));
    for (QProcess *process : {&first, &third})
        EXPECT_TRUE(process->state() == QProcess::NotRunning || process->waitForFinished());
}

// A program that is told to end does not wait for the person that it has asked.
TEST_F(FolderPickerTest, AnAskerThatIsToldToEndTakesItsQuestionAlong) {
    QProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("ORVELLE_PROFILE", QFileInfo(file("desk.socket")).path());
    environment.insert("ORVELLE_HOME", QFileInfo(file("desk.socket")).path());
    environment.insert("ORVELLE_UNATTENDED", "1");
    program.setProcessEnvironment(environment);
    program.start(PROGRAMS "/orvelle", {});
    // Its death closes the dialog, without which the test could not go on.
    QTimer::singleShot(20'000, &program, &QProcess::kill);
    person.when(isShown, [&] { program.terminate(); });
    person.when([&] { return program.state() == QProcess::NotRunning; }, [] {});
    person.when([] { return !isShown(); }, [] {});
    EXPECT_TRUE(QTest::qWaitFor([&] { return person.isDone(); }, 30'000));
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(program.exitCode(), 0);
}

TEST_F(FolderPickerTest, AFolderThatGoesMeanwhileIsAFailureAndNobodyIsAskedUnattended) {
    const Handle doomed = publicFolder("Doomed");
    {
        support::Answers answers;
        answers.expectSheet("frmPickFolder", "cmdOK", {{"treFolders", "\\\\Public Folders\\Helpdesk"}});
        EXPECT_EQ(session().of("PickFolder").text("Name"), "Helpdesk");
        answers.expectSheet("frmPickFolder", "cmdCancel");
        EXPECT_TRUE(session().of("PickFolder").isNothing());
    }
    window::asker = window::makeWidgetAsker();
    doomed.call("Display");
    person.when(isShown, [&] {
        doomed.call("Delete");
        press("cmdOK");
    });
    EXPECT_EQ(failureOf([&] { session().call("PickFolder"); }), failures::notFound);
    window::asker = window::makeUnattendedAsker();
    testing::internal::CaptureStderr();
    EXPECT_TRUE(session().of("PickFolder").isNothing());
    const QString told = QString::fromStdString(testing::internal::GetCapturedStderr());
    EXPECT_TRUE(told.contains("Choose a folder") && told.contains("answered: closed")) << told.toStdString();
}

} // namespace
