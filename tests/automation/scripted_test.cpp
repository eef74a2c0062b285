// A client against a host that does not behave: what it sends is scripted, byte by byte.

#include "automation/descriptor.h"
#include "automation/support.h"
#include "automation/wire.h"

#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <thread>

using namespace automation;
using namespace std::chrono_literals;
using wire::Frame;
using enum wire::FrameKind;

namespace {

/// Turns object references into handles and back without having any objects.
struct HandlesOnly : wire::ObjectTable {
    class Handle : public Object {
      public:
        QString typeName() override { return QStringLiteral("Scripted"); }
        Value get(const QString &) override { return {}; }
        void put(const QString &, const Value &) override {}
        Value call(const QString &, const ValueList &) override { return {}; }
        SubscriptionPtr connect(const QString &, EventHandler) override { return nullptr; }
    };
    Reference give(const ObjectPtr &object) override { return {1, object->typeName()}; }
    ObjectPtr take(const Reference &) override { return handle; }
    ObjectPtr handle = std::make_shared<Handle>();
};

/// Greets a client and connects it to events as a host does; what it answers to any other request, the script says.
class ScriptedHost {
  public:
    using Script = std::function<std::vector<Frame>(const Frame &)>;

    ScriptedHost(const QString &socketPath, Script script) : m_place(socketPath), m_script(std::move(script)) {
        m_thread = std::thread([this] { run(); });
    }
    ~ScriptedHost() { m_thread.join(); }
    ScriptedHost(const ScriptedHost &) = delete;
    ScriptedHost &operator=(const ScriptedHost &) = delete;

    /// What the client sent that was no request. REQUIRES: the client has gone.
    std::vector<Frame> heard() {
        m_thread.join();
        m_thread = std::thread([] {});
        return m_heard;
    }

  private:
    void run() {
        Descriptor client;
        while (!client.isOpen())
            client = m_place.accept();
        std::vector<char> bytes;
        char portion[4096];
        for (;;) {
            pollfd waiting{client.number(), POLLIN, 0};
            ::poll(&waiting, 1, -1);
            const ssize_t count = ::recv(client.number(), portion, sizeof portion, 0);
            if (count == 0 || (count < 0 && errno != EAGAIN))
                return;
            bytes.insert(bytes.end(), portion, portion + std::max<ssize_t>(count, 0));
            while (const std::optional<Frame> frame = next(bytes))
                send(client, answers(*frame));
        }
    }

    std::optional<Frame> next(std::vector<char> &bytes) {
        quint32 length = 0;
        if (bytes.size() < sizeof length)
            return std::nullopt;
        std::memcpy(&length, bytes.data(), sizeof length);
        if (bytes.size() < sizeof length + length)
            return std::nullopt;
        auto frame = wire::decode(std::span<const char>(bytes).subspan(sizeof length, length), m_objects);
        bytes.erase(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(sizeof length + length));
        return frame;
    }

    std::vector<Frame> answers(const Frame &frame) {
        switch (frame.kind) {
        case Hello:
            return {{.kind = Answer, .call = frame.call, .values = {m_objects.handle}}};
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

    /// All in one go.
    void send(const Descriptor &client, const std::vector<Frame> &frames) {
        std::vector<char> bytes;
        for (const Frame &frame : frames)
            wire::encode(bytes, frame, m_objects);
        if (!bytes.empty())
            ::send(client.number(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
    }

    HandlesOnly m_objects;
    ListeningPlace m_place;
    Script m_script;
    std::vector<Frame> m_heard;
    std::thread m_thread;
};

class Scripted : public testing::Test {
  protected:
    void script(ScriptedHost::Script script) {
        host.emplace(folder.socket(), std::move(script));
        client = Client::connect(folder.socket(), {}, {200ms, 200ms});
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
        if (frame.kind == Ping)
            return std::vector<Frame>{{.kind = Pong}};
        return std::vector<Frame>{{.kind = Answer, .call = frame.call, .values = {"answer"}},
                                  {.kind = Event, .call = 77, .target = 1, .values = {1, "same"}}};
    });
    EXPECT_EQ(client->root()->get("Any"), Value("answer"));
    EXPECT_TRUE(events.isEmpty());
    EXPECT_TRUE(eventually([&] { return events.size() == 1; }));
    EXPECT_EQ(events.first(), (ValueList{1, "same"}));
    changed.reset();
    client.reset();
    const std::vector<Frame> heard = host->heard();
    ASSERT_GE(heard.size(), 1U);
    EXPECT_EQ(heard[0].kind, Answer);
    EXPECT_EQ(heard[0].call, 77U);
    EXPECT_EQ(heard[0].values, (ValueList{0, 2})) << "the place and what it was changed to";
}

TEST_F(Scripted, AnswersToNobodyAreIgnored) {
    script([](const Frame &frame) {
        if (frame.kind == Ping)
            return std::vector<Frame>{{.kind = Pong}};
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
        if (frame.kind == Ping)
            return std::vector<Frame>{{.kind = Pong}};
        return std::vector<Frame>{{.kind = Call, .call = 79, .target = 1, .text = "Anything"},
                                  {.kind = Answer, .call = frame.call}};
    });
    EXPECT_EQ(client->root()->get("Any"), Value());
    changed.reset();
    client.reset();
    const std::vector<Frame> heard = host->heard();
    ASSERT_GE(heard.size(), 1U);
    EXPECT_EQ(heard[0].kind, Refusal);
    EXPECT_EQ(heard[0].number, failures::callRejected);
}

TEST_F(Scripted, AHostThatOnlyAnswersPingsIsWaitedForUntilItStops) {
    // Three pongs, the answer with the last of them; for the next call none at all.
    script([pings = 0, asked = 0U](const Frame &frame) mutable {
        if (frame.kind != Ping) {
            asked = frame.call;
            return std::vector<Frame>{};
        }
        switch (++pings) {
        case 1:
        case 2:
            return std::vector<Frame>{{.kind = Pong}};
        case 3:
            return std::vector<Frame>{{.kind = Pong}, {.kind = Answer, .call = asked, .values = {"at last"}}};
        default:
            return std::vector<Frame>{};
        }
    });
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(client->root()->get("Any"), Value("at last"));
    EXPECT_GE(timer.elapsed(), 590) << "pinged only after a silence each time";
    EXPECT_EQ(failureOf([&] { client->root()->get("Any"); }), failures::peerStuck);
}

} // namespace
