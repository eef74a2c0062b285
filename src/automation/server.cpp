#include "automation/channel.h"
#include "automation/remote.h"

#include <QScopeGuard>

namespace automation {

using wire::Frame;
using wire::FrameKind;
using wire::Handle;

namespace {

thread_local ClientNumber servedClient = 0;

/// One client: what it holds of the host, and what it listens to.
class ServerConnection final : public Channel {
  public:
    struct Owner {
        std::function<ObjectPtr()> root;
        std::function<void(ServerConnection &)> gone;
    };

    ServerConnection(Descriptor socket, Patience patience, ClientNumber number, Owner owner)
        : Channel(std::move(socket), patience), m_number(number), m_owner(std::move(owner)) {}

    [[nodiscard]] ClientNumber number() const { return m_number; }

    Reference give(const ObjectPtr &object) override;
    ObjectPtr take(const Reference &reference) override;

  protected:
    ValueList carryOut(const Frame &frame) override;
    void note(const Frame &frame) override;
    void ended(bool byPeer) override;

  private:
    struct Held {
        ObjectPtr object;
        qint32 given = 0; ///< how often the client has been given it and has not released it yet
    };

    ValueList perform(const Frame &frame);
    ValueList answersOf(const Frame &frame);
    void putThrough(const Frame &frame);
    Value greet(const Frame &frame);
    Object &held(Handle handle) const;
    void connectEvent(const Frame &frame);
    void raise(quint32 subscription, ValueList &arguments);
    void release(const ValueList &handlesAndCounts);

    ClientNumber m_number;
    Owner m_owner;
    QHash<Handle, Held> m_held;
    QHash<const Object *, Handle> m_handles;
    Handle m_lastHandle = 0;
    QHash<quint32, std::shared_ptr<Subscription>> m_subscriptions;
};

wire::ObjectTable::Reference ServerConnection::give(const ObjectPtr &object) {
    Handle &handle = m_handles[object.get()];
    if (handle == 0) {
        do
            ++m_lastHandle;
        while (m_lastHandle == 0 || m_held.contains(m_lastHandle));
        handle = m_lastHandle;
        m_held.insert(handle, {object, 0});
    }
    Held &held = m_held[handle];
    const bool isFirst = ++held.given == 1;
    return {handle, object->typeName(), isFirst ? object->constants() : std::vector<Constant>()};
}

ObjectPtr ServerConnection::take(const Reference &reference) { return m_held.value(reference.handle).object; }

Object &ServerConnection::held(Handle handle) const {
    const auto found = m_held.constFind(handle);
    if (found == m_held.constEnd())
        throw Failure(failures::disconnected);
    return *found->object;
}

ValueList ServerConnection::carryOut(const Frame &frame) {
    const auto back = qScopeGuard([previous = servedClient] { servedClient = previous; });
    servedClient = m_number;
    try {
        return perform(frame);
    } catch (const Failure &) {
        throw;
    } catch (const std::exception &fault) {
        // A fault of the host's own must not end it, and the caller gets an answer.
        throw Failure(failures::automationError, QString::fromLocal8Bit(fault.what()));
    }
}

ValueList ServerConnection::perform(const Frame &frame) {
    const auto one = [](const Value &result) { return result.isEmpty() ? ValueList() : ValueList{result}; };
    switch (frame.kind) {
    case FrameKind::Hello:
        return one(greet(frame));
    case FrameKind::Get:
        return one(held(frame.target).get(frame.text));
    case FrameKind::Put:
        held(frame.target).put(frame.text, frame.values.value(0));
        return {};
    case FrameKind::Call:
        return one(held(frame.target).call(frame.text, frame.values));
    case FrameKind::Ask:
        return answersOf(frame);
    case FrameKind::PutThrough:
    case FrameKind::TryPut:
        putThrough(frame);
        return {};
    case FrameKind::Connect:
        connectEvent(frame);
        return {};
    default:
        throw Failure(failures::callRejected);
    }
}

ValueList ServerConnection::answersOf(const Frame &frame) {
    std::vector<Path> questions;
    for (const Value &value : frame.values) {
        std::optional<Path> path = wire::unpacked(value);
        if (!path)
            throw Failure(failures::invalidCall);
        questions.push_back(std::move(*path));
    }
    ValueList answers;
    for (const Outcome &answer : held(frame.target).askAll(questions)) {
        const std::optional<Failure> &failure = answer.failure();
        answers << Value(failure ? ValueList{failure->number(), failure->description()} : ValueList{answer.value()});
    }
    return answers;
}

void ServerConnection::putThrough(const Frame &frame) {
    const std::optional<Path> path = wire::unpacked(frame.values.value(0));
    if (!path)
        throw Failure(failures::invalidCall);
    held(frame.target).putThrough(*path, frame.text, frame.values.value(1));
}

Value ServerConnection::greet(const Frame &frame) {
    if (frame.number != wire::protocolVersion)
        throw Failure(
            failures::callRejected,
            QStringLiteral("The host and the program are of different versions. Install the same one of both."));
    return m_owner.root();
}

void ServerConnection::connectEvent(const Frame &frame) {
    const std::weak_ptr<Channel> self = weak_from_this();
    m_subscriptions[static_cast<quint32>(frame.number)] =
        held(frame.target)
            .connect(frame.text, [self, subscription = static_cast<quint32>(frame.number)](ValueList &arguments) {
                if (const std::shared_ptr<Channel> channel = self.lock())
                    static_cast<ServerConnection &>(*channel).raise(subscription, arguments);
            });
}

void ServerConnection::raise(quint32 subscription, ValueList &arguments) {
    // One that got stuck has made everybody wait once, which is enough.
    if (!isOpen() || isSuspended())
        return;
    const Frame answer = request({.kind = FrameKind::Event, .target = subscription, .values = arguments});
    for (qsizetype i = 0; i + 1 < answer.values.size(); i += 2) {
        const auto *place = std::get_if<qint32>(&answer.values[i].held());
        if (place && *place >= 0 && *place < arguments.size())
            arguments[*place] = answer.values[i + 1];
    }
}

void ServerConnection::note(const Frame &frame) {
    if (frame.kind == FrameKind::Disconnect)
        m_subscriptions.take(frame.target).reset();
    else
        release(frame.values);
}

void ServerConnection::release(const ValueList &handlesAndCounts) {
    // Their ends run the host's code, which must find the tables in order.
    std::vector<ObjectPtr> dropped;
    for (qsizetype i = 0; i + 1 < handlesAndCounts.size(); i += 2) {
        const auto *handle = std::get_if<qint32>(&handlesAndCounts[i].held());
        const auto *count = std::get_if<qint32>(&handlesAndCounts[i + 1].held());
        const auto found = handle ? m_held.find(static_cast<Handle>(*handle)) : m_held.end();
        if (found == m_held.end() || !count || *count <= 0)
            continue;
        found->given -= std::min(*count, found->given);
        if (found->given > 0)
            continue;
        m_handles.remove(found->object.get());
        dropped.push_back(std::move(found->object));
        m_held.erase(found);
    }
}

void ServerConnection::ended(bool byPeer) {
    m_handles.clear();
    const auto subscriptions = std::exchange(m_subscriptions, {});
    const auto objects = std::exchange(m_held, {});
    if (byPeer)
        m_owner.gone(*this);
}

} // namespace

ClientNumber currentClient() { return servedClient; }

void serveInNestedLoop() { Hub::ofThisThread().serveRestInLoop(); }

class Server::Implementation : public std::enable_shared_from_this<Implementation> {
  public:
    Implementation(std::function<ObjectPtr()> root, const QString &socketPath, Patience patience)
        : m_place(socketPath), m_root(std::move(root)), m_patience(patience) {}

    void start() {
        m_listener = std::make_shared<Listener>(*this);
        Hub::ofThisThread().add(m_listener);
    }

    void stop() {
        Hub::ofThisThread().remove(*m_listener);
        for (const std::shared_ptr<ServerConnection> &connection : std::exchange(m_connections, {}))
            connection->close(failures::disconnected);
    }

    std::function<void(ClientNumber)> m_gone;
    [[nodiscard]] int clientCount() const { return static_cast<int>(m_connections.size()); }
    [[nodiscard]] quint64 heard() const {
        quint64 all = m_heardOfGone;
        for (const std::shared_ptr<ServerConnection> &connection : m_connections)
            all += connection->heard();
        return all;
    }

  private:
    class Listener final : public Source {
      public:
        explicit Listener(Implementation &server) : Source(server.m_place.number()), m_server(server) {}
        void ready() override {
            for (Descriptor client = m_server.m_place.accept(); client.isOpen(); client = m_server.m_place.accept())
                m_server.admit(std::move(client));
        }
        [[nodiscard]] bool hasNext() const override { return false; }
        void serveNext() override {}

      private:
        Implementation &m_server;
    };

    void admit(Descriptor client) {
        const auto gone = [self = weak_from_this()](ServerConnection &connection) {
            if (const std::shared_ptr<Implementation> server = self.lock())
                server->drop(connection);
        };
        auto connection = std::make_shared<ServerConnection>(std::move(client), m_patience, ++m_lastNumber,
                                                             ServerConnection::Owner{m_root, gone});
        m_connections.push_back(connection);
        connection->start();
    }

    void drop(ServerConnection &connection) {
        const ClientNumber number = connection.number();
        m_heardOfGone += connection.heard() + 1;
        std::erase_if(m_connections, [&](const auto &known) { return known.get() == &connection; });
        Hub::ofThisThread().later([self = weak_from_this(), number] {
            const std::shared_ptr<Implementation> server = self.lock();
            if (server && server->m_gone)
                server->m_gone(number);
        });
    }

    ListeningPlace m_place;
    std::function<ObjectPtr()> m_root;
    Patience m_patience;
    std::shared_ptr<Listener> m_listener;
    std::vector<std::shared_ptr<ServerConnection>> m_connections;
    ClientNumber m_lastNumber = 0;
    quint64 m_heardOfGone = 0;
};

Server::Server(std::function<ObjectPtr()> root, const QString &socketPath, Patience patience)
    : m_implementation(std::make_shared<Implementation>(std::move(root), socketPath, patience)) {
    m_implementation->start();
}

Server::~Server() { m_implementation->stop(); }

void Server::onClientGone(std::function<void(ClientNumber)> handler) { m_implementation->m_gone = std::move(handler); }

int Server::clientCount() const { return m_implementation->clientCount(); }

quint64 Server::heard() const { return m_implementation->heard(); }

} // namespace automation
