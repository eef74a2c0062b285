// The socket file, and what comes in over it from nobody in particular.

#include "automation/rawpeer.h"
#include "automation/sample.h"
#include "automation/support.h"

#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <random>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace automation;

namespace {

ObjectPtr newRoot() { return wrap(std::make_shared<sample::Sample>()); }

TEST(SocketFile, OnlyTheOwnerMayUseIt) {
    const SocketFolder folder;
    const Server server(newRoot, folder.socket());
    struct stat status {};
    ASSERT_EQ(::stat(QFile::encodeName(folder.socket()).constData(), &status), 0);
    EXPECT_TRUE(S_ISSOCK(status.st_mode));
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
}

TEST(SocketFile, OneHostAtATime) {
    const SocketFolder folder;
    std::optional<Server> first(std::in_place, newRoot, folder.socket());
    expectFailure([&] { const Server second(newRoot, folder.socket()); }, failures::permissionDenied,
                  {"already running"});
    // Nor when somebody tidied its lock away.
    QFile::remove(folder.socket() + ".lock");
    EXPECT_EQ(failureOf([&] { const Server second(newRoot, folder.socket()); }), failures::permissionDenied);
    first.reset();
    EXPECT_EQ(failureOf([&] { Client::connect(folder.socket()); }), failures::cannotCreateObject);
    EXPECT_EQ(failureOf([&] { const Server second(newRoot, folder.socket()); }), 0);
}

TEST(SocketFile, OneThatIsJustStartingCounts) {
    const SocketFolder folder;
    // It holds the lock and does not listen yet.
    const int lock =
        ::open(QFile::encodeName(folder.socket() + ".lock").constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_EQ(::flock(lock, LOCK_EX | LOCK_NB), 0);
    EXPECT_EQ(failureOf([&] { const Server server(newRoot, folder.socket()); }), failures::permissionDenied);
    ::close(lock);
    EXPECT_EQ(failureOf([&] { const Server server(newRoot, folder.socket()); }), 0);
}

TEST(SocketFile, OfManyThatReplaceALeftSocketOneWins) {
    const SocketFolder folder;
    Peer({"host", folder.socket()}, "ready").kill();
    ASSERT_TRUE(QFile::exists(folder.socket())) << "nothing was left behind";
    EXPECT_EQ(failureOf([&] { Client::connect(folder.socket()); }), failures::cannotCreateObject);

    std::vector<std::unique_ptr<QProcess>> hosts;
    for (int i = 0; i < 8; ++i) {
        hosts.push_back(std::make_unique<QProcess>());
        hosts.back()->start(QStringLiteral(PEER_PROGRAM), {"host", folder.socket()});
    }
    QByteArrayList said;
    for (const auto &host : hosts) {
        EXPECT_TRUE(eventually([&] { return host->canReadLine(); }));
        said << host->readLine().trimmed();
    }
    EXPECT_EQ(said.count("ready"), 1);
    EXPECT_EQ(said.count(QByteArray::number(failures::permissionDenied)), 7);
    EXPECT_EQ(Client::connect(folder.socket())->root()->get("Name"), Value("unnamed"));
    for (const auto &host : hosts) {
        host->closeWriteChannel();
        EXPECT_TRUE(eventually([&] { return host->state() == QProcess::NotRunning; }));
    }
}

TEST(SocketFile, ALongPathAndNone) {
    const SocketFolder folder;
    const QString deep = folder.folder.filePath(QString(120, u'd'));
    ASSERT_TRUE(QDir().mkdir(deep));
    EXPECT_EQ(failureOf([&] { const Server server(newRoot, deep + "/host.socket"); }), 0);
    Peer host({"host", deep + "/host.socket"}, "ready");
    EXPECT_EQ(Client::connect(deep + "/host.socket")->root()->get("Name"), Value("unnamed"));
    EXPECT_EQ(failureOf([&] { const Server server(newRoot, deep + "/none/host.socket"); }), failures::pathNotFound);
    EXPECT_EQ(failureOf([&] { Client::connect(deep + "/none/host.socket"); }), failures::cannotCreateObject);
}

class RawClient : public RawPeer {
  public:
    explicit RawClient(const QString &path) : RawPeer(connectToHost(path)) {}

    /// The answer to a request; a nameless one when the connection ended.
    wire::Frame answer(const wire::Frame &frame) {
        send({frame});
        std::optional<wire::Frame> read;
        EXPECT_TRUE(eventually([&] { return (read = next()) || isEnded(); }));
        return read.value_or(wire::Frame{});
    }
};

class BadClient : public testing::Test {
  protected:
    [[nodiscard]] static wire::Frame hello() {
        return {.kind = wire::FrameKind::Hello, .call = 1, .number = wire::protocolVersion};
    }

    SocketFolder folder;
    ObjectPtr root = newRoot();
    Server server{[this] { return root; }, folder.socket()};
};

TEST_F(BadClient, WhatIsWrongInAWholeFrameIsRefused) {
    using enum wire::FrameKind;
    struct Case {
        wire::Frame frame;
        qint32 number;
    };
    const Case cases[] = {
        {{.kind = Hello, .call = 2, .number = 99}, failures::callRejected},
        {{.kind = Get, .call = 3, .target = 77, .text = "Name"}, failures::disconnected},
        {{.kind = Get, .call = 4, .target = 1, .text = "Nowhere"}, failures::memberMissing},
        {{.kind = Put, .call = 5, .target = 1, .text = "Number"}, 0},
        {{.kind = Connect, .call = 6, .target = 1, .number = 1, .text = "Nowhere"}, failures::memberMissing},
        {{.kind = Event, .call = 7, .target = 1}, failures::callRejected},
        {{.kind = Ask, .call = 10, .target = 1, .values = {3, "Child"}}, failures::invalidCall},
        {{.kind = Ask, .call = 13, .target = 77}, failures::disconnected},
        {{.kind = Ask, .call = 14, .target = 1, .values = {Value(ValueList())}}, 0},
        {{.kind = PutThrough, .call = 15, .target = 1, .text = "Name", .values = {"no path", 1}},
         failures::invalidCall},
        {{.kind = PutThrough, .call = 16, .target = 1, .text = "Name", .values = {}}, failures::invalidCall},
        {{.kind = TryPut, .call = 11, .target = 77, .text = "Name", .values = {Value(ValueList()), "nowhere"}}, -1},
        {{.kind = TryPut, .call = 12, .target = 1, .text = "Name", .values = {"no path"}}, -1},
        {{.kind = Release, .values = {"no", "numbers", 1}}, -1},
        {{.kind = Release, .values = {77, 1, 1, -5}}, -1},
        {{.kind = Disconnect, .target = 55}, -1},
        {{.kind = Answer, .call = 123, .values = {1}}, -1},
        {{.kind = Get, .call = 8, .target = 1, .text = "Name"}, 0},
        {{.kind = Release, .values = {1, 1}}, -1},
        {{.kind = Get, .call = 9, .target = 1, .text = "Name"}, failures::disconnected},
    };
    RawClient client(folder.socket());
    EXPECT_EQ(client.answer(hello()).kind, Answer);
    for (const Case &entry : cases) {
        if (entry.number == -1) {
            client.send({entry.frame});
            continue;
        }
        const wire::Frame answer = client.answer(entry.frame);
        EXPECT_EQ(answer.call, entry.frame.call);
        EXPECT_EQ(answer.kind, entry.number ? Refusal : Answer) << "call " << entry.frame.call;
        EXPECT_EQ(answer.kind == Refusal ? answer.number : 0, entry.number) << "call " << entry.frame.call;
    }
    EXPECT_FALSE(client.isEnded());
}

TEST_F(BadClient, AHandleThatWasGivenTwiceIsHeldUntilBothAreReleased) {
    using enum wire::FrameKind;
    RawClient client(folder.socket());
    client.answer(hello());
    // The root is handle 1, its child handle 2. An event may give a handle anew while its release is on the way.
    const auto ask = [&](quint32 call, wire::Handle handle, const QString &member) {
        return client.answer({.kind = Get, .call = call, .target = handle, .text = member}).kind;
    };
    ask(2, 1, "Child");
    ask(3, 1, "Child");
    client.send({{.kind = Release, .values = {2, 1}}});
    EXPECT_EQ(ask(4, 2, "Name"), Answer);
    client.send({{.kind = Release, .values = {2, 1}}});
    EXPECT_EQ(ask(5, 2, "Name"), Refusal);
}

TEST_F(BadClient, ThatCallsBackForEverEndsItsOwnConnection) {
    using enum wire::FrameKind;
    RawClient good(folder.socket());
    good.answer(hello());
    RawClient bad(folder.socket());
    bad.answer(hello());
    bad.answer({.kind = Connect, .call = 2, .target = 1, .number = 1, .text = "Write"});
    // It never answers an event, and asks for the next one.
    std::vector<wire::Frame> calls;
    for (quint32 call = 3; call < 200; ++call)
        calls.push_back({.kind = Call, .call = call, .target = 1, .text = "Save"});
    bad.send(calls);
    wire::Frame last;
    EXPECT_TRUE(eventually([&] {
        while (const std::optional<wire::Frame> frame = bad.next())
            last = *frame;
        return last.kind == Farewell;
    }));
    EXPECT_EQ(last.number, failures::outOfStack);
    EXPECT_TRUE(last.text.contains("without an end"));
    EXPECT_TRUE(eventually([&] { return bad.isEnded(); }));
    EXPECT_TRUE(eventually([&] { return server.clientCount() == 1; }));
    EXPECT_EQ(good.answer({.kind = Get, .call = 2, .target = 1, .text = "Name"}).values, ValueList{"unnamed"});
}

TEST_F(BadClient, OfAnotherVersionIsToldWhatToDo) {
    RawClient client(folder.socket());
    const wire::Frame answer =
        client.answer({.kind = wire::FrameKind::Hello, .call = 1, .number = wire::protocolVersion - 1});
    EXPECT_EQ(answer.kind, wire::FrameKind::Refusal);
    EXPECT_TRUE(answer.text.contains("Install the same")) << answer.text.toStdString();
}

class Nonsense : public BadClient, public testing::WithParamInterface<unsigned> {};
INSTANTIATE_TEST_SUITE_P(Seeds, Nonsense, testing::Range(1U, 21U));

TEST_P(Nonsense, EndsItsOwnConnectionOnly) {
    std::mt19937 random(GetParam());
    RawClient good(folder.socket());
    EXPECT_EQ(good.answer(hello()).kind, wire::FrameKind::Answer);
    RawClient bad(folder.socket());
    if (random() % 2)
        bad.answer(hello());
    std::vector<char> bytes(20 + random() % 5000);
    for (char &byte : bytes)
        byte = static_cast<char>(random());
    // A frame that is announced whole and holds anything, or an impossible announcement.
    auto length = static_cast<quint32>(bytes.size() - 4);
    if (random() % 2)
        length = wire::largestBody + 1 + static_cast<quint32>(random() % 1000);
    std::memcpy(bytes.data(), &length, sizeof length);
    bad.send(std::span<const char>(bytes));
    EXPECT_TRUE(eventually([&] { return bad.isEnded(); }));
    EXPECT_TRUE(eventually([&] { return server.clientCount() == 1; }));
    EXPECT_EQ(good.answer({.kind = wire::FrameKind::Get, .call = 2, .target = 1, .text = "Name"}).values,
              ValueList{"unnamed"});
}

TEST_F(BadClient, ThatStopsInTheMiddleOfAFrameIsGone) {
    RawClient client(folder.socket());
    const char half[] = {100, 0, 0, 0, 2};
    client.send(std::span(half));
    EXPECT_TRUE(eventually([&] { return server.clientCount() == 1; }));
    client.stopSending();
    EXPECT_TRUE(eventually([&] { return server.clientCount() == 0; }));
}

} // namespace
