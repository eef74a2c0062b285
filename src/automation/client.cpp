#include "automation/channel.h"
#include "automation/remote.h"

namespace automation {

using wire::Frame;
using wire::FrameKind;
using wire::Handle;

namespace {

class ClientConnection;

/// What stands for an answer in the frame that brought it.
Outcome outcomeOf(const Value &value) {
    const ValueList parts = value.isArray() ? value.array() : ValueList();
    const auto *number = parts.size() == 2 ? std::get_if<qint32>(&parts[0].held()) : nullptr;
    const auto *text = number ? std::get_if<QString>(&parts[1].held()) : nullptr;
    if (text)
        return Failure(*number, *text);
    return parts.size() == 1 ? Outcome(parts[0]) : Outcome(Failure(failures::automationError));
}

/// A handle to one object of the host. The connection knows it while it lives, so that the same object is met as the
/// same handle.
class RemoteObject final : public Object, public std::enable_shared_from_this<RemoteObject> {
  public:
    RemoteObject(std::shared_ptr<ClientConnection> connection, const wire::ObjectTable::Reference &reference)
        : m_connection(std::move(connection)), m_handle(reference.handle), m_typeName(reference.typeName),
          m_constants(reference.constants) {}
    ~RemoteObject() override;

    [[nodiscard]] QString typeName() override { return m_typeName; }
    Value get(const QString &member) override;
    void put(const QString &member, const Value &value) override;
    Value call(const QString &member, const ValueList &arguments) override;
    [[nodiscard]] SubscriptionPtr connect(const QString &event, EventHandler handler) override;
    [[nodiscard]] std::vector<Constant> constants() override { return m_constants; }
    [[nodiscard]] std::vector<Outcome> askAll(const std::vector<Path> &questions) override;
    void putThrough(const Path &path, const QString &member, const Value &value) override;
    void tryPut(const Path &path, const QString &member, const Value &value) override;

    [[nodiscard]] const std::shared_ptr<ClientConnection> &connection() const { return m_connection; }
    [[nodiscard]] Handle handle() const { return m_handle; }
    void countReceived() { ++m_received; }

  private:
    ValueList request(FrameKind kind, const QString &member, const ValueList &values);
    [[nodiscard]] const Value *constant(const QString &member) const;

    std::shared_ptr<ClientConnection> m_connection;
    Handle m_handle;
    QString m_typeName;
    qint32 m_received = 0;
    std::vector<Constant> m_constants;
};

class ClientConnection final : public Channel {
  public:
    ClientConnection(Descriptor socket, Patience patience, std::function<void()> peerGone)
        : Channel(std::move(socket), patience), m_peerGone(std::move(peerGone)) {}

    ObjectPtr greet();
    /// A request, with the handles that were released since the last one before it.
    Frame ask(Frame frame);
    /// A request that nobody waits for.
    void tell(const Frame &frame);
    void release(Handle handle, qint32 received);
    SubscriptionPtr subscribe(Handle handle, const QString &event, EventHandler handler);
    void leave();

    Reference give(const ObjectPtr &object) override;
    ObjectPtr take(const Reference &reference) override;

  protected:
    ValueList carryOut(const Frame &frame) override;
    void note(const Frame &) override {}
    void ended(bool byPeer) override;

  private:
    class RemoteSubscription;
    /// Released handles cross with the next request, from the event loop, or when there are so many of them.
    static constexpr qsizetype batch = 256;

    void enqueueReleases();
    void sendReleases();

    std::function<void()> m_peerGone;
    QHash<Handle, RemoteObject *> m_objects;
    ValueList m_releases;
    bool m_releasesArePosted = false;
    QHash<quint32, std::shared_ptr<EventHandler>> m_handlers;
    quint32 m_lastSubscription = 0;
};

class ClientConnection::RemoteSubscription : public Subscription {
  public:
    RemoteSubscription(std::weak_ptr<Channel> connection, quint32 number)
        : m_connection(std::move(connection)), m_number(number) {}

    ~RemoteSubscription() override {
        if (const std::shared_ptr<Channel> channel = m_connection.lock()) {
            auto &connection = static_cast<ClientConnection &>(*channel);
            connection.m_handlers.remove(m_number);
            connection.post({.kind = FrameKind::Disconnect, .target = m_number});
        }
    }

  private:
    std::weak_ptr<Channel> m_connection;
    quint32 m_number;
};

ObjectPtr ClientConnection::greet() {
    const Frame answer = request({.kind = FrameKind::Hello, .number = wire::protocolVersion});
    return answer.values.value(0).object();
}

Frame ClientConnection::ask(Frame frame) {
    enqueueReleases();
    return request(std::move(frame));
}

void ClientConnection::tell(const Frame &frame) {
    enqueueReleases();
    // What is too long to be sent fails as it would have failed there.
    Attempt([&] { post(frame); });
}

void ClientConnection::release(Handle handle, qint32 received) {
    m_objects.remove(handle);
    if (!isOpen())
        return;
    m_releases << Value(static_cast<qint32>(handle)) << Value(received);
    if (m_releases.size() / 2 >= batch) {
        sendReleases();
    } else if (!m_releasesArePosted) {
        m_releasesArePosted = true;
        Hub::ofThisThread().later([self = weak_from_this()] {
            if (const std::shared_ptr<Channel> channel = self.lock()) {
                auto &connection = static_cast<ClientConnection &>(*channel);
                connection.m_releasesArePosted = false;
                connection.sendReleases();
            }
        });
    }
}

void ClientConnection::enqueueReleases() {
    if (!m_releases.isEmpty())
        enqueue({.kind = FrameKind::Release, .values = std::exchange(m_releases, {})});
}

void ClientConnection::sendReleases() {
    if (!m_releases.isEmpty())
        post({.kind = FrameKind::Release, .values = std::exchange(m_releases, {})});
}

SubscriptionPtr ClientConnection::subscribe(Handle handle, const QString &event, EventHandler handler) {
    const quint32 number = ++m_lastSubscription;
    // Before the answer comes, the event may.
    m_handlers.insert(number, std::make_shared<EventHandler>(std::move(handler)));
    auto subscription = std::make_unique<RemoteSubscription>(weak_from_this(), number);
    ask({.kind = FrameKind::Connect, .target = handle, .number = static_cast<qint32>(number), .text = event});
    return subscription;
}

void ClientConnection::leave() {
    m_peerGone = nullptr;
    close(failures::disconnected);
}

wire::ObjectTable::Reference ClientConnection::give(const ObjectPtr &object) {
    const auto *remote = dynamic_cast<const RemoteObject *>(object.get());
    if (!remote || remote->connection().get() != this)
        throw Failure(failures::typeMismatch);
    return {remote->handle(), {}};
}

ObjectPtr ClientConnection::take(const Reference &reference) {
    std::shared_ptr<RemoteObject> object;
    if (RemoteObject *known = m_objects.value(reference.handle)) {
        object = known->shared_from_this();
    } else {
        object =
            std::make_shared<RemoteObject>(std::static_pointer_cast<ClientConnection>(shared_from_this()), reference);
        m_objects.insert(reference.handle, object.get());
    }
    object->countReceived();
    return object;
}

ValueList ClientConnection::carryOut(const Frame &frame) {
    if (frame.kind != FrameKind::Event)
        throw Failure(failures::callRejected);
    // It may disconnect itself while it runs.
    const std::shared_ptr<EventHandler> handler = m_handlers.value(frame.target);
    if (!handler)
        return {};
    ValueList arguments = frame.values;
    // As among the host's own subscribers, a failure ends here and what was changed before it counts.
    Attempt([&] { (*handler)(arguments); });
    ValueList changes;
    for (qsizetype i = 0; i < std::min(arguments.size(), frame.values.size()); ++i)
        if (!(arguments.at(i) == frame.values.at(i)))
            changes << Value(static_cast<qint32>(i)) << arguments.at(i);
    return changes;
}

void ClientConnection::ended(bool byPeer) {
    m_releases.clear();
    const auto handlers = std::exchange(m_handlers, {});
    if (byPeer) {
        Hub::ofThisThread().later([self = weak_from_this()] {
            const std::shared_ptr<Channel> channel = self.lock();
            if (!channel)
                return;
            if (const auto gone = std::exchange(static_cast<ClientConnection &>(*channel).m_peerGone, nullptr))
                gone();
        });
    }
}

RemoteObject::~RemoteObject() { m_connection->release(m_handle, m_received); }

ValueList RemoteObject::request(FrameKind kind, const QString &member, const ValueList &values) {
    const std::shared_ptr<RemoteObject> alive = shared_from_this();
    return m_connection->ask({.kind = kind, .target = m_handle, .text = member, .values = values}).values;
}

const Value *RemoteObject::constant(const QString &member) const {
    for (const Constant &known : m_constants) {
        if (known.member.compare(member, Qt::CaseInsensitive) == 0)
            return &known.value;
    }
    return nullptr;
}

Value RemoteObject::get(const QString &member) {
    const Value *known = constant(member);
    return known ? *known : request(FrameKind::Get, member, {}).value(0);
}

void RemoteObject::put(const QString &member, const Value &value) { request(FrameKind::Put, member, {value}); }

Value RemoteObject::call(const QString &member, const ValueList &arguments) {
    return request(FrameKind::Call, member, arguments).value(0);
}

std::vector<Outcome> RemoteObject::askAll(const std::vector<Path> &questions) {
    ValueList paths;
    for (const Path &path : questions)
        paths << wire::packed(path);
    ValueList found;
    const auto failure = Attempt([&] { found = request(FrameKind::Ask, {}, paths); });
    std::vector<Outcome> answers;
    // Answers that are too large together may cross one by one.
    if (failure && failure->number() == failures::outOfMemory && questions.size() > 1) {
        for (const Path &path : questions)
            answers.push_back(askAll({path}).front());
        return answers;
    }
    for (qsizetype i = 0; i < paths.size(); ++i)
        answers.push_back(failure ? Outcome(*failure) : outcomeOf(found.value(i)));
    return answers;
}

void RemoteObject::putThrough(const Path &path, const QString &member, const Value &value) {
    request(FrameKind::PutThrough, member, {wire::packed(path), value});
}

void RemoteObject::tryPut(const Path &path, const QString &member, const Value &value) {
    m_connection->tell(
        {.kind = FrameKind::TryPut, .target = m_handle, .text = member, .values = {wire::packed(path), value}});
}

SubscriptionPtr RemoteObject::connect(const QString &event, EventHandler handler) {
    return m_connection->subscribe(m_handle, event, std::move(handler));
}

} // namespace

class Client::Implementation {
  public:
    Implementation(const QString &socketPath, std::function<void()> peerGone, Patience patience)
        : connection(std::make_shared<ClientConnection>(connectToHost(socketPath), patience, std::move(peerGone))) {
        connection->start();
        try {
            root = connection->greet();
        } catch (const Failure &failure) {
            connection->leave();
            if (failure.number() != failures::peerGone)
                throw;
            throw Failure(
                failures::peerGone,
                QStringLiteral("The host at %1 ended the connection before it began. It is being ended, or it "
                               "serves as many programs as it can: end some of them and try again.")
                    .arg(socketPath));
        } catch (...) {
            connection->leave();
            throw;
        }
    }
    ~Implementation() { connection->leave(); }

    std::shared_ptr<ClientConnection> connection;
    ObjectPtr root;
};

Client::Client(std::shared_ptr<Implementation> implementation) : m_implementation(std::move(implementation)) {}

Client::~Client() = default;

std::unique_ptr<Client> Client::connect(const QString &socketPath, std::function<void()> peerGone, Patience patience) {
    return std::unique_ptr<Client>(
        new Client(std::make_shared<Implementation>(socketPath, std::move(peerGone), patience)));
}

const ObjectPtr &Client::root() const { return m_implementation->root; }

quint64 Client::roundTrips() const { return m_implementation->connection->roundTrips(); }

bool Client::isConnected() const { return m_implementation->connection->isOpen(); }

} // namespace automation
