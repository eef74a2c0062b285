// Two processes: what happens when the other one dies, stops, talks nonsense, or is not alone.

#include "automation/sample.h"
#include "automation/support.h"

#include <random>

using namespace automation;
using namespace std::chrono_literals;

namespace {

constexpr Patience shortPatience{200ms, 800ms};

/// A host in this process, for clients in others.
class OwnHost : public testing::Test {
  protected:
    OwnHost() {
        server.onClientGone([this](ClientNumber number) { gone << number; });
    }

    [[nodiscard]] QStringList client(const QString &part, int number = 0) const {
        return {"client", folder.socket(), part, QString::number(number)};
    }

    SocketFolder folder;
    std::shared_ptr<sample::Sample> host = std::make_shared<sample::Sample>();
    ObjectPtr root = wrap(host);
    Server server{[this] { return root; }, folder.socket(), shortPatience};
    QList<ClientNumber> gone;
};

/// A host in another process, for a client in this one.
class OtherHost : public testing::Test {
  protected:
    void connect() {
        peer.emplace(QStringList{"host", folder.socket()}, "ready");
        client = Client::connect(
            folder.socket(), [this] { ++toldGone; }, shortPatience);
        root = client->root();
    }

    SocketFolder folder;
    std::optional<Peer> peer;
    std::unique_ptr<Client> client;
    ObjectPtr root;
    int toldGone = 0;
};

class Moments : public testing::WithParamInterface<int> {
  protected:
    /// A moment between 0 and 4 ms from now, another one for each parameter.
    [[nodiscard]] std::chrono::microseconds moment() const {
        std::mt19937 random(static_cast<unsigned>(GetParam()));
        return std::chrono::microseconds(random() % 4000);
    }
};

class HostDies : public OtherHost, public Moments {};
INSTANTIATE_TEST_SUITE_P(AtAnyMoment, HostDies, testing::Range(0, 12));

TEST_P(HostDies, EveryCallFailsAndTheClientIsToldOnce) {
    connect();
    const SubscriptionPtr write = root->connect("Write", [&](ValueList &) { root->get("Name"); });
    std::jthread killer = killLater(peer->pid(), moment());
    qint32 number = 0;
    while (number == 0)
        number = failureOf([&] {
            root->call("Save", {});
            root->call("NewChild", {"x"}).object()->get("Name");
        });
    killer.join();
    EXPECT_EQ(number, failures::peerGone);
    EXPECT_EQ(failureOf([&] { root->get("Name"); }), failures::peerGone);
    EXPECT_EQ(failureOf([&] { (void)root->connect("Saved", [](ValueList &) {}); }), failures::peerGone);
    EXPECT_EQ(toldGone, 0) << "told inside of a call";
    EXPECT_TRUE(eventually([&] { return toldGone > 0; }));
    QCoreApplication::processEvents();
    EXPECT_EQ(toldGone, 1);
    EXPECT_FALSE(client->isConnected());
}

TEST_F(OtherHost, ADeathIsNoticedWithoutACall) {
    connect();
    peer->kill();
    EXPECT_TRUE(eventually([&] { return toldGone == 1; }));
}

TEST_F(OtherHost, AStoppedHostIsStuckAndItsLateAnswerIsDropped) {
    connect();
    peer->signal(SIGSTOP);
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(failureOf([&] { root->call("Echo", {"late"}); }), failures::peerStuck);
    EXPECT_GE(timer.elapsed(), 990);
    const auto callAgain = [&] {
        EXPECT_EQ(failureOf([&] { root->call("Echo", {"late too"}); }), failures::peerStuck);
    };
    EXPECT_LT(leastTime(callAgain), 990) << "silence need not be waited for twice";
    peer->signal(SIGCONT);
    EXPECT_EQ(root->call("Echo", {"in time"}), Value("in time"));
    EXPECT_EQ(toldGone, 0);
    peer->signal(SIGSTOP);
    const std::jthread killer = killLater(peer->pid(), 50ms);
    EXPECT_EQ(failureOf([&] { root->get("Name"); }), failures::peerGone) << "dead is not stuck";
}

TEST_F(OtherHost, ACallThatIsGivenUpLeavesItsAnswerToNobody) {
    connect();
    struct GivenUp {};
    int looks = 0;
    whileWaiting([&] {
        if (++looks == 2)
            throw GivenUp();
    });
    peer->signal(SIGSTOP);
    EXPECT_THROW(root->call("Echo", {"late"}), GivenUp);
    whileWaiting({});
    peer->signal(SIGCONT);
    EXPECT_EQ(root->call("Echo", {"in time"}), Value("in time"));
}

TEST_F(OtherHost, ABusyHostIsStuckOnlyBeyondTheWholePatience) {
    connect();
    root->call("Block", {500});
    EXPECT_EQ(failureOf([&] { root->call("Block", {1500}); }), failures::peerStuck);
}

TEST_F(OtherHost, HandlesOfADroppedClientAreDisconnected) {
    connect();
    ObjectPtr child = root->get("Child").object();
    SubscriptionPtr saved = root->connect("Saved", [](ValueList &) {});
    client.reset();
    EXPECT_EQ(failureOf([&] { child->get("Name"); }), failures::disconnected);
    child.reset();
    saved.reset();
    EXPECT_EQ(Client::connect(folder.socket())->root()->get("Name"), Value("unnamed"));
    QCoreApplication::processEvents();
    EXPECT_EQ(toldGone, 0);
}

TEST_F(OtherHost, ObjectsOfTheClientDoNotCross) {
    connect();
    const ObjectPtr own = wrap(std::make_shared<sample::Inner>());
    const auto other = Client::connect(folder.socket());
    EXPECT_EQ(failureOf([&] { root->call("Echo", {own}); }), failures::typeMismatch);
    EXPECT_EQ(failureOf([&] { root->call("Echo", {other->root()}); }), failures::typeMismatch);
    EXPECT_FALSE(root->isSame(*other->root()));
    EXPECT_EQ(root->call("Echo", {root}), Value(root));
}

TEST_F(OtherHost, WhatIsTooLargeIsRefusedAndTheConnectionGoesOn) {
    connect();
    // Moving so much takes longer than the short patience on a slow machine.
    client = Client::connect(folder.socket());
    root = client->root();
    const QString large(33 << 20, u'x');
    EXPECT_EQ(failureOf([&] { root->put("Anything", large); }), failures::outOfMemory);
    const QString half(20 << 20, u'y');
    EXPECT_EQ(root->call("Echo", {half}), Value(half));
    // Each argument crosses, their sum does not come back.
    root->put("Name", half);
    EXPECT_EQ(failureOf([&] { root->call("Join", {half, half}); }), failures::outOfMemory);
    EXPECT_EQ(root->get("Saves"), Value(0));
}

TEST_F(OtherHost, FaultsOfTheHostAreAnsweredAndDoNotEndIt) {
    connect();
    EXPECT_EQ(failureOf([&] { root->call("Break", {}); }), failures::automationError);
    EXPECT_EQ(root->get("Saves"), Value(0));
}

TEST_F(OtherHost, HandlersThatCallEachOtherForEverEndTheirConnection) {
    connect();
    const auto other = Client::connect(folder.socket());
    int calls = 0;
    const SubscriptionPtr write = root->connect("Write", [&](ValueList &) {
        ++calls;
        root->call("Save", {});
    });
    expectFailure([&] { root->call("Save", {}); }, failures::outOfStack, {"without an end"});
    EXPECT_GT(calls, 50);
    expectFailure([&] { root->get("Name"); }, failures::outOfStack, {"without an end"});
    EXPECT_TRUE(eventually([&] { return toldGone == 1; }));
    EXPECT_EQ(other->root()->get("Name"), Value("unnamed")) << "another client's connection ended too";
}

TEST_F(OtherHost, TwoClientsInOneThreadServeEachOther) {
    connect();
    const auto other = Client::connect(folder.socket());
    QStringList order;
    const SubscriptionPtr first = other->root()->connect("Write", [&](ValueList &) {
        order << "other";
        EXPECT_NE(other->root()->call("Caller", {}), root->call("Caller", {}));
    });
    const SubscriptionPtr second = root->connect("Write", [&](ValueList &) { order << "own"; });
    root->call("Save", {});
    EXPECT_EQ(order, (QStringList{"other", "own"}));
}

class ClientDies : public OwnHost, public Moments {};
INSTANTIATE_TEST_SUITE_P(AtAnyMoment, ClientDies, testing::Range(0, 12));

TEST_P(ClientDies, ItsHandlesAndSubscriptionsEndAndNothingElse) {
    Peer survivor(client("cancel"), "running");
    {
        Peer victim(client("hammer"), "running");
        EXPECT_EQ(server.clientCount(), 2);
        const std::jthread killer = killLater(victim.pid(), moment());
        EXPECT_TRUE(eventually([&] { return server.clientCount() == 1; }));
    }
    EXPECT_TRUE(eventually([&] { return !gone.isEmpty(); }));
    EXPECT_EQ(gone, QList<ClientNumber>{2});
    EXPECT_EQ(host->livingChildren(), 0);
    EXPECT_EQ(root->call("Save", {}), Value(false)) << "the other client still cancels";
    survivor.kill();
    EXPECT_TRUE(eventually([&] { return gone.size() == 2; }));
    EXPECT_EQ(root->call("Save", {}), Value(true));
}

TEST_F(OwnHost, AStuckClientHoldsTheHostUpOnceAndComesBack) {
    Peer stuck(client("cancel"), "running");
    stuck.signal(SIGSTOP);
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(root->call("Save", {}), Value(true));
    EXPECT_GE(timer.elapsed(), 990);
    EXPECT_LT(leastTime([&] { EXPECT_EQ(root->call("Save", {}), Value(true)); }), 900) << "left out while it is stuck";
    stuck.signal(SIGCONT);
    EXPECT_TRUE(eventually([&] { return root->call("Save", {}) == Value(false); })) << "it cancels again";
    EXPECT_TRUE(gone.isEmpty());
}

TEST_F(OwnHost, AClientInItsEventLoopIsNotStuck) {
    Peer slow(client("cancel", 2500), "running");
    EXPECT_EQ(root->call("Save", {}), Value(false)) << "its answer came, after several times the patience";
}

TEST_F(OwnHost, AHandlerThatDiesIsNoHandler) {
    Peer slow(client("cancel", 60'000), "running");
    std::jthread killer = killLater(slow.pid(), 50ms);
    EXPECT_EQ(root->call("Save", {}), Value(true));
    EXPECT_TRUE(gone.isEmpty()) << "told inside of a call";
    EXPECT_TRUE(eventually([&] { return gone.size() == 1; }));
}

TEST_F(OwnHost, WhileOneClientDawdlesOthersAreServed) {
    Peer slow(client("cancel", 60'000), "running");
    Peer other(client("work"), "running");
    bool waiting = false;
    int served = 0;
    const SubscriptionPtr deeper = root->connect("Deeper", [&](ValueList &) {
        if (waiting && ++served == 50)
            slow.signal(SIGKILL);
    });
    waiting = true;
    EXPECT_EQ(root->call("Save", {}), Value(true)) << "the slow one was waited for to its end";
    EXPECT_GE(served, 50);
}

TEST_F(OwnHost, ClientsWhoseHandlersCallBackDoNotLockEachOtherOut) {
    Peer first(client("deepen", 4), "running");
    Peer second(client("deepen", 4), "running");
    EXPECT_TRUE(first.said("done"));
    EXPECT_TRUE(second.said("done"));
    EXPECT_TRUE(first.isRunning() && second.isRunning());
}

} // namespace
