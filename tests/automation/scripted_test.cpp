// A client against a host that does not behave: what it sends is scripted, byte by byte.

#include "automation/rawpeer.h"
#include "automation/support.h"

#include <poll.h>

using namespace automation;
using namespace std::chrono_literals;
using wire::Frame;
using enum wire::FrameKind;

namespace {

/// Greets a client and connects it to events as a host does; what it answers to any other request, the script says.
class ScriptedHost {
  public:
    using Script = std::function<std::vector<Frame>(const Frame &)>;

    ScriptedHost(const QString &socketPath, Script script) : m_place(socketPath), m_script(std::move(script)) {
        m_thread = std::jthread([this] { run(); });
    }

    /// What the client sent first that was no request. REQUIRES: the client has gone.
    Frame firstHeard() {
        m_thread.join();
        return m_heard.empty() ? Frame{} : m_heard.front();
    }

  private:
    void run() {
        Descriptor client;
        while (!client.isOpen())
            client = m_place.accept();
        RawPeer peer(std::move(client));
        for (bool isEnded = false; !isEnded;) {
            pollfd waiting{peer.number(), POLLIN, 0};
            ::poll(&waiting, 1, -1);
            isEnded = peer.isEnded();
            while (const std::optional<Frame> frame = peer.next())
                peer.send(answers(*frame, peer));
        }
    }

    std::vector<Frame> answers(const Frame &frame, const RawPeer &peer) {
        switch (frame.kind) {
        case Hello:
            return {{.kind = Answer, .call = frame.call, .values = {peer.handle()}}};
        case Connect:
            return {{.kind = Answer, .call = frame.call}};
        case Get:
        case Put:
        case Call:
        case Ping:
            return m_script(frame);
        default:
            m_heard.push_back(frame);
            return {};
        }
    }

    ListeningPlace m_place;
    Script m_script;
    std::vector<Frame> m_heard;
    std::jthread m_thread;
};

class Scripted : public testing::Test {
  protected:
    /// The host answers pings by itself.
    void script(ScriptedHost::Script script) {
        scriptWithPings([script = std::move(script)](const Frame &frame) {
            return frame.kind == Ping ? std::vector<Frame>{{.kind = Pong}} : script(frame);
        });
    }
    void scriptWithPings(ScriptedHost::Script script) {
        host.emplace(folder.socket(), std::move(script));
        client = Client::connect(folder.socket(), {}, {200ms, 800ms});
        changed = client->root()->connect("Changed", [this](ValueList &arguments) {
            events << arguments;
            arguments[0] = 2;
        });
    }
    void TearDown() override {
        changed.reset();
        client.reset();
    }

    SocketFolder folder;
    std::optional<ScriptedHost> host;
    std::unique_ptr<Client> client;
    SubscriptionPtr changed;
    QList<ValueList> events;
};

TEST_F(Scripted, WhatComesBehindAnAnswerIsServedInTheLoop) {
    script([](const Frame &frame) {
        return std::vector<Frame>{{.kind = Answer, .call = frame.call, .values = {"answer"}},
                                  {.kind = Event, .call = 77, .target = 1, .values = {1, "same"}}};
    });
    EXPECT_EQ(client->root()->get("Any"), Value("answer"));
    EXPECT_TRUE(events.isEmpty());
    EXPECT_TRUE(eventually([&] { return events.size() == 1; }));
    EXPECT_EQ(events.first(), (ValueList{1, "same"}));
    TearDown();
    const Frame heard = host->firstHeard();
    EXPECT_EQ(heard.kind, Answer);
    EXPECT_EQ(heard.call, 77U);
    EXPECT_EQ(heard.values, (ValueList{0, 2})) << "the place and what it was changed to";
}

TEST_F(Scripted, AnswersToNobodyAreIgnored) {
    script([](const Frame &frame) {
        return std::vector<Frame>{{.kind = Answer, .call = frame.call - 1, .values = {"late"}},
                                  {.kind = Refusal, .call = frame.call + 1, .number = 5, .text = "early"},
                                  {.kind = Event, .call = 78, .target = 99, .values = {1}},
                                  {.kind = Pong},
                                  {.kind = Answer, .call = frame.call, .values = {"right"}},
                                  {.kind = Answer, .call = frame.call, .values = {"twice"}}};
    });
    EXPECT_EQ(client->root()->get("Any"), Value("right"));
    EXPECT_EQ(client->root()->get("Any"), Value("right"));
    EXPECT_TRUE(events.isEmpty());
}

TEST_F(Scripted, RequestsThatAHostHasNoBusinessToMakeAreRefused) {
    script([](const Frame &frame) {
        return std::vector<Frame>{{.kind = Call, .call = 79, .target = 1, .text = "Anything"},
                                  {.kind = Answer, .call = frame.call}};
    });
    EXPECT_EQ(client->root()->get("Any"), Value());
    TearDown();
    const Frame heard = host->firstHeard();
    EXPECT_EQ(heard.kind, Refusal);
    EXPECT_EQ(heard.number, failures::callRejected);
}

TEST_F(Scripted, AHostThatOnlyAnswersPingsIsWaitedForUntilItStops) {
    // Three pongs, the answer with the last of them; for the next call none at all.
    scriptWithPings([pings = 0, asked = 0U](const Frame &frame) mutable {
        if (frame.kind != Ping) {
            asked = frame.call;
            return std::vector<Frame>{};
        }
        const Frame atLast{.kind = Answer, .call = asked, .values = {"at last"}};
        ++pings;
        return pings > 3    ? std::vector<Frame>{}
               : pings == 3 ? std::vector<Frame>{{.kind = Pong}, atLast}
                            : std::vector<Frame>{{.kind = Pong}};
    });
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(client->root()->get("Any"), Value("at last"));
    EXPECT_GE(timer.elapsed(), 590) << "pinged only after a silence each time";
    EXPECT_EQ(failureOf([&] { client->root()->get("Any"); }), failures::peerStuck);
}

} // namespace
