// A running desk, with programs connected to it and commands beside it.

#include "program.h"

#include <QDirIterator>
#include <QElapsedTimer>

#include <set>

#include <sys/resource.h>

namespace {

class RunningTest : public DeskProgramTest {
  protected:
    /// A program that leaves its environment in a file beside it.
    void makeProgram(const QString &name) const {
        const QString script = written(name, "#!/bin/sh\nprintf '%s\\n' \"$ORVELLE_PROFILE\" >>\"$0.started\"\n");
        QFile::setPermissions(script, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    /// A page beside such a program.
    QString pageWithProgram(const QByteArray &name) const {
        makeProgram("page/note");
        return "file:" + written("page/Page.htm", "<html><head><!-- <meta name=\"start-program\" content=\"other\"> -->"
                                                  "<meta name=\"start-program\" content=\"" +
                                                      name + "\"></head></html>");
    }
    [[nodiscard]] qsizetype starts() const { return contentOf(file("page/note.started")).count('\n'); }
};

TEST_F(RunningTest, ItEndsInOrderAndTellsItsClients) {
    startDesk();
    bool isGone = false;
    const auto client = connect([&] { isGone = true; });
    bool isTold = false;
    const auto quit = client->root()->connect("Quit", [&](ValueList &) { isTold = true; });
    m_desk.terminate();
    EXPECT_TRUE(eventually([&] { return isGone; }));
    EXPECT_TRUE(isTold);
    // What waited above may have seen the end already.
    EXPECT_TRUE(m_desk.state() == QProcess::NotRunning || m_desk.waitForFinished(30'000));
    EXPECT_EQ(m_desk.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(m_desk.exitCode(), 0);
    startDesk();
    EXPECT_EQ(endDesk(), 0);
}

// A display that is named may not be there; what asks is answered as by nobody then.
TEST_F(RunningTest, ItRunsWhateverTheDisplay) {
    for (const char *display : {"", ":77"}) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove("QT_QPA_PLATFORM");
        environment.remove("ORVELLE_UNATTENDED");
        environment.insert("DISPLAY", display);
        m_desk.setProcessEnvironment(environment);
        startDesk();
        auto client = connect();
        const auto session = client->root()->call("GetNamespace", {"MAPI"}).object();
        EXPECT_TRUE(session->call("PickFolder", {}).isNothing()) << display;
        client.reset();
        EXPECT_EQ(endDesk(), 0) << display;
    }
}

TEST_F(RunningTest, AClientMayEndIt) {
    startDesk();
    auto client = connect();
    client->root()->call("Quit", {});
    client.reset();
    EXPECT_TRUE(eventually([&] { return m_desk.waitForFinished(0) || m_desk.state() == QProcess::NotRunning; }));
    EXPECT_EQ(m_desk.exitCode(), 0);
}

TEST_F(RunningTest, ThereIsOneDeskOnAProfileAndAKilledOneLeavesNothingInTheWay) {
    startDesk();
    const Outcome second = run({});
    EXPECT_EQ(second.status, 1);
    EXPECT_FALSE(second.error.isEmpty());
    m_desk.kill();
    m_desk.waitForFinished();
    startDesk();
    EXPECT_NE(connect(), nullptr);
    EXPECT_EQ(endDesk(), 0);
}

TEST_F(RunningTest, ABarGoesWithItsClient) {
    startDesk();
    const auto stays = connect();
    const auto explorer = [&] { return stays->root()->call("ActiveExplorer", {}).object(); };
    const auto bars = [&] { return toInt32(explorer()->get("CommandBars").object()->get("Count")); };
    explorer()->get("CommandBars").object()->call("Add", {"Stays"});
    auto goes = connect();
    goes->root()->call("ActiveExplorer", {}).object()->get("CommandBars").object()->call("Add", {"Goes"});
    EXPECT_EQ(bars(), 2);
    goes.reset();
    EXPECT_TRUE(eventually([&] { return bars() == 1; }));
    EXPECT_EQ(toText(explorer()->get("CommandBars").object()->call("Item", {1}).object()->get("Name")), "Stays");
}

/// Those that are there go on, and there is room again as soon as one of them leaves.
TEST_F(RunningTest, ADeskOutOfFileHandlesTurnsNewcomersAwayAtOnce) {
    m_desk.setChildProcessModifier([] {
        const rlimit few{60, 60};
        ::setrlimit(RLIMIT_NOFILE, &few);
    });
    startDesk();
    std::vector<std::unique_ptr<automation::Client>> clients;
    std::optional<Failure> failure;
    while (!failure && clients.size() < 100)
        failure = Attempt([&] { clients.push_back(connect()); });
    for (int newcomer = 0; newcomer < 5; ++newcomer) {
        QElapsedTimer timer;
        timer.start();
        failure = Attempt([&] { static_cast<void>(connect()); });
        ASSERT_TRUE(failure);
        EXPECT_EQ(failure->number(), failures::peerGone);
        EXPECT_TRUE(failure->description().contains(u"as many programs as it can"));
        EXPECT_LT(timer.elapsed(), 2000);
    }
    EXPECT_FALSE(toText(clients.front()->root()->get("Version")).isEmpty());
    const auto ticks = [&] {
        const QList<QByteArray> stat = contentOf(QStringLiteral("/proc/%1/stat").arg(m_desk.processId())).split(' ');
        return stat.value(13).toInt() + stat.value(14).toInt();
    };
    const int before = ticks();
    QElapsedTimer idle;
    idle.start();
    while (idle.elapsed() < 500)
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 100);
    EXPECT_LT(ticks() - before, 20) << "it spins";
    clients.pop_back();
    EXPECT_TRUE(eventually([&] { return !Attempt([&] { static_cast<void>(connect()); }); }));
    clients.clear();
    EXPECT_EQ(endDesk(), 0);
}

TEST_F(RunningTest, TheFolderShownIsRemembered) {
    EXPECT_EQ(run({"folder", "add", "\\\\Public Folders\\Ours"}).status, 0);
    for (const QStringList &arguments : {QStringList{"--open", "\\\\Public Folders\\Ours"}, QStringList{}}) {
        startDesk(arguments);
        auto client = connect();
        const auto explorer = client->root()->call("ActiveExplorer", {}).object();
        EXPECT_EQ(toText(explorer->get("CurrentFolder").object()->get("Name")), "Ours");
        client.reset();
        EXPECT_EQ(endDesk(), 0);
    }
    EXPECT_EQ(run({"--open", "\\\\Nowhere"}).status, 1);
}

TEST_F(RunningTest, AHomePageStartsItsProgramAtEachShowing) {
    const QString folder = "\\\\Public Folders\\Ours";
    EXPECT_EQ(run({"folder", "add", folder, "--home-page", pageWithProgram("note")}).status, 0);
    startDesk({"--open", folder});
    EXPECT_TRUE(eventually([&] { return starts() == 1; }));
    EXPECT_EQ(contentOf(file("page/note.started")).trimmed(), profile().toUtf8());
    auto client = connect();
    const auto explorer = client->root()->call("ActiveExplorer", {}).object();
    const Value shown = explorer->get("CurrentFolder");
    explorer->call("Activate", {});
    explorer->put("CurrentFolder", shown.object()->get("Parent"));
    explorer->put("CurrentFolder", shown);
    EXPECT_TRUE(eventually([&] { return starts() == 2; }));
    shown.object()->put("WebViewOn", false);
    explorer->put("CurrentFolder", shown.object()->get("Parent"));
    explorer->put("CurrentFolder", shown);
    client.reset();
    EXPECT_EQ(endDesk(), 0);
    EXPECT_EQ(starts(), 2);
}

TEST_F(RunningTest, AHomePageStartsNothingOutsideItsFolder) {
    makeProgram("note");
    makeProgram("page/sub/note");
    for (const QByteArray &name : {QByteArray("../note"), QByteArray("/bin/true"), QByteArray("sub/note"),
                                   QByteArray("Page.htm"), QByteArray("note; touch x"), QByteArray("")}) {
        const QString page = pageWithProgram(name);
        EXPECT_EQ(run({"folder", "add", "\\\\Public Folders\\Ours", "--home-page", page}).status, 0);
        startDesk({"--open", "\\\\Public Folders\\Ours"});
        EXPECT_EQ(endDesk(), 0);
        QDirIterator traces(m_folder.path(), {"*.started", "x"}, QDir::Files, QDirIterator::Subdirectories);
        EXPECT_FALSE(traces.hasNext()) << name.toStdString();
    }
}

/// The desk is killed again and again while it sends: each message leaves once, and has its copy.
TEST_F(RunningTest, AKillInTheMiddleOfSendingLosesAndDoublesNothing) {
    constexpr int messages = 40;
    startDesk();
    {
        const auto client = connect();
        for (int i = 0; i < messages; ++i) {
            const auto mail = client->root()->call("CreateItem", {0}).object();
            mail->put("Subject", QStringLiteral("number %1").arg(i));
            mail->put("To", QStringLiteral("bo%1@example.org").arg(i));
            mail->call("Send", {});
        }
    }
    const QDir outgoing(profile() + "/outgoing");
    const auto sent = [&] { return QDir(outgoing).entryList({"*.eml"}, QDir::Files); };
    for (int round = 1; round <= 4; ++round) {
        if (m_desk.state() == QProcess::NotRunning)
            startDesk();
        const qsizetype before = sent().size();
        const QDeadlineTimer deadline(10'000);
        while (sent().size() < std::min<qsizetype>(messages, before + 3) && !deadline.hasExpired()) {
        }
        m_desk.kill();
        m_desk.waitForFinished();
    }
    startDesk();
    EXPECT_TRUE(eventually([&] { return sent().size() >= messages; }));
    EXPECT_TRUE(eventually([&] { return count("\\\\Mailbox - Alma Tester\\Sent Items") == messages; }));
    EXPECT_EQ(endDesk(), 0);
    std::set<QByteArray> subjects;
    for (const QString &name : sent()) {
        const QByteArray message = contentOf(outgoing.filePath(name));
        EXPECT_TRUE(subjects.insert(message.mid(message.indexOf("\nSubject:")).trimmed().split('\r').first()).second);
    }
    EXPECT_EQ(subjects.size(), messages);
    EXPECT_EQ(count("\\\\Mailbox - Alma Tester\\Outbox"), 0);
}

/// Deliveries are killed at any moment: each message is there whole or not at all, and the next delivery works.
TEST_F(RunningTest, AKillInTheMiddleOfADeliveryLeavesNoHalfItem) {
    QByteArray box;
    for (int i = 0; i < 200; ++i)
        box += "From x Mon Nov 16 09:00:00 2026\nSubject: number " + QByteArray::number(i) +
               "\nContent-Type: multipart/mixed; boundary=x\n\n--x\n\nText\n--x\nContent-Type: text/csv\n"
               "Content-Disposition: attachment; filename=a.csv\n\n1,2\n--x--\n\n";
    const QString path = written("box", box);
    qsizetype before = 0;
    for (int round = 0; round < 5; ++round) {
        QProcess delivery;
        delivery.start(QStringLiteral(DESK_PROGRAM), withProfile({"deliver", path}));
        ASSERT_TRUE(delivery.waitForStarted());
        const QDeadlineTimer deadline(10'000);
        // Until some have arrived, so that the kill meets the delivery at work.
        while (count(inboxPath) <= before && delivery.state() == QProcess::Running && !deadline.hasExpired())
            QCoreApplication::processEvents();
        delivery.kill();
        delivery.waitForFinished();
        const QJsonArray list = json({"list", inboxPath}).array();
        before = list.size();
        for (const QJsonValue item : list)
            EXPECT_EQ(item["attachments"].toInt(), 1);
    }
    EXPECT_GT(before, 0);
}

} // namespace
