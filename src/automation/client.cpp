#include "automation/channel.h"
#include "automation/remote.h"

#include <QScopeGuard>

#include <chrono>

namespace automation {

using wire::Frame;
using wire::FrameKind;
using wire::Handle;

namespace {

class ClientConnection;

/// What is known of an object without asking: what is constant, and what is from one moment. This stands until anything
/// but a property is asked for or the peer raises an event, since either may change it, and in no case for longer than
/// the same answers could have been on their way.
class Knowledge {
  public:
    void keep(quint64 moment, std::vector<KnownValue> values);
    void keep(quint64 moment, Question question, Value answer);
    [[nodiscard]] std::optional<Value> value(quint64 moment, const QString &member) const;
    [[nodiscard]] std::optional<Value> answer(quint64 moment, const QString &member, const ValueList &arguments) const;
    /// Lets go of the answers, and of the objects that are among them.
    void forgetAnswers() { m_answers.clear(); }

  private:
    static constexpr std::chrono::milliseconds longest{20};

    void startAt(quint64 moment);
    [[nodiscard]] bool standsAt(quint64 moment) const;

    quint64 m_moment = 0;
    std::chrono::steady_clock::time_point m_since;
    std::vector<KnownValue> m_values;
    std::vector<KnownValue> m_constants;
    std::vector<std::pair<Question, Value>> m_answers;
};

/// A handle to one object of the host. The connection knows it while it lives, so that the same object is met as the
/// same handle.
class RemoteObject final : public Object, public std::enable_shared_from_this<RemoteObject> {
  public:
    RemoteObject(std::shared_ptr<ClientConnection> connection, const wire::ObjectTable::Reference &reference)
        : m_connection(std::move(connection)), m_handle(reference.handle), m_typeName(reference.typeName) {}
    ~RemoteObject() override;

    [[nodiscard]] QString typeName() override { return m_typeName; }
    Value get(const QString &member) override;
    void put(const QString &member, const Value &value) override;
    Value call(const QString &member, const ValueList &arguments) override;
    [[nodiscard]] SubscriptionPtr connect(const QString &event, EventHandler handler) override;
    void ahead(const std::vector<Question> &questions) override;
    Value callThrough(const Path &path, const QString &member, const ValueList &arguments) override;
    void tryPut(const Path &path, const QString &member, const Value &value) override;

    [[nodiscard]] const std::shared_ptr<ClientConnection> &connection() const { return m_connection; }
    [[nodiscard]] Handle handle() const { return m_handle; }
    void countReceived() { ++m_received; }
    [[nodiscard]] Knowledge &knowledge() { return m_knowledge; }

  private:
    Value ask(FrameKind kind, const QString &member, const ValueList &values);

    std::shared_ptr<ClientConnection> m_connection;
    Handle m_handle;
    QString m_typeName;
    qint32 m_received = 0;
    Knowledge m_knowledge;
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
    /// Several calls of one object at once.
    void askAhead(RemoteObject &object, const std::vector<Question> &questions);
    /// Moves on when something happens that may change what is known.
    [[nodiscard]] quint64 moment() const { return m_moment; }
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

    void learn(std::vector<wire::Along> along) const;
    void moveOn();
    void enqueueReleases();
    void sendReleases();

    std::function<void()> m_peerGone;
    QHash<Handle, RemoteObject *> m_objects;
    ValueList m_releases;
    bool m_releasesArePosted = false;
    QHash<quint32, std::shared_ptr<EventHandler>> m_handlers;
    quint32 m_lastSubscription = 0;
    quint64 m_moment = 1;
    /// The one that has answers.
    std::weak_ptr<RemoteObject> m_askedAhead;
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
    if (frame.kind != FrameKind::Get)
        moveOn();
    const quint64 asked = m_moment;
    Frame answer = request(std::move(frame));
    // A handler that ran meanwhile may have changed what the answer tells of.
    if (asked == m_moment)
        learn(std::move(answer.along));
    return answer;
}

void ClientConnection::tell(const Frame &frame) {
    moveOn();
    enqueueReleases();
    // What is too long to be sent fails as it would have failed there.
    Attempt([&] { post(frame); });
}

void ClientConnection::askAhead(RemoteObject &object, const std::vector<Question> &questions) {
    enqueueReleases();
    std::vector<Frame> frames;
    frames.reserve(questions.size());
    for (const Question &question : questions)
        frames.push_back({.kind = FrameKind::Call,
                          .target = object.handle(),
                          .text = question.member,
                          .values = question.arguments});
    moveOn();
    const quint64 asked = m_moment;
    std::vector<std::optional<Frame>> answers = requestAll(std::move(frames));
    if (asked != m_moment)
        return;
    m_askedAhead = object.weak_from_this();
    // The answers must not keep objects of the host for a program that does something else now.
    Hub::ofThisThread().later([self = weak_from_this(), asked] {
        const std::shared_ptr<Channel> channel = self.lock();
        if (channel && static_cast<ClientConnection &>(*channel).m_moment == asked)
            static_cast<ClientConnection &>(*channel).moveOn();
    });
    for (std::size_t i = 0; i < answers.size(); ++i) {
        if (!answers[i])
            continue;
        learn(std::move(answers[i]->along));
        object.knowledge().keep(asked, questions[i], answers[i]->values.value(0));
    }
}

void ClientConnection::moveOn() {
    ++m_moment;
    if (const std::shared_ptr<RemoteObject> object = m_askedAhead.lock())
        object->knowledge().forgetAnswers();
    m_askedAhead.reset();
}

void ClientConnection::learn(std::vector<wire::Along> along) const {
    for (wire::Along &told : along)
        static_cast<RemoteObject &>(*told.object).knowledge().keep(m_moment, std::move(told.values));
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
    moveOn();
    const auto later = qScopeGuard([this] { moveOn(); });
    learn(frame.along);
    // As among the host's own subscribers, a failure ends here and what was changed before it counts.
    Attempt([&] { (*handler)(arguments); });
    ValueList changes;
    for (qsizetype i = 0; i < std::min(arguments.size(), frame.values.size()); ++i)
        if (!(arguments.at(i) == frame.values.at(i)))
            changes << Value(static_cast<qint32>(i)) << arguments.at(i);
    return changes;
}

void ClientConnection::ended(bool byPeer) {
    moveOn();
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

void Knowledge::startAt(quint64 moment) {
    if (!standsAt(moment)) {
        m_values.clear();
        m_answers.clear();
    }
    m_moment = moment;
    m_since = std::chrono::steady_clock::now();
}

void Knowledge::keep(quint64 moment, std::vector<KnownValue> values) {
    startAt(moment);
    const auto constants = std::ranges::stable_partition(values, [](const KnownValue &v) { return !v.isConstant; });
    m_constants.assign(std::move_iterator(constants.begin()), std::move_iterator(constants.end()));
    values.erase(constants.begin(), constants.end());
    m_values = std::move(values);
}

void Knowledge::keep(quint64 moment, Question question, Value answer) {
    startAt(moment);
    m_answers.emplace_back(std::move(question), std::move(answer));
}

bool Knowledge::standsAt(quint64 moment) const {
    return m_moment == moment && std::chrono::steady_clock::now() - m_since <= longest;
}

std::optional<Value> Knowledge::value(quint64 moment, const QString &member) const {
    const auto among = [&](const std::vector<KnownValue> &values) -> std::optional<Value> {
        for (const KnownValue &known : values) {
            if (known.member.compare(member, Qt::CaseInsensitive) == 0)
                return known.value;
        }
        return std::nullopt;
    };
    std::optional<Value> constant = among(m_constants);
    if (constant || m_values.empty() || !standsAt(moment))
        return constant;
    return among(m_values);
}

std::optional<Value> Knowledge::answer(quint64 moment, const QString &member, const ValueList &arguments) const {
    if (m_answers.empty() || !standsAt(moment))
        return std::nullopt;
    for (const auto &[question, answer] : m_answers) {
        if (question.member.compare(member, Qt::CaseInsensitive) == 0 && question.arguments == arguments)
            return answer;
    }
    return std::nullopt;
}

RemoteObject::~RemoteObject() { m_connection->release(m_handle, m_received); }

Value RemoteObject::ask(FrameKind kind, const QString &member, const ValueList &values) {
    const std::shared_ptr<RemoteObject> alive = shared_from_this();
    Frame answer = m_connection->ask({.kind = kind, .target = m_handle, .text = member, .values = values});
    return answer.values.isEmpty() ? Value() : answer.values.takeFirst();
}

Value RemoteObject::get(const QString &member) {
    const quint64 moment = m_connection->moment();
    std::optional<Value> known = m_knowledge.value(moment, member);
    if (!known)
        known = m_knowledge.answer(moment, member, {});
    return known ? std::move(*known) : ask(FrameKind::Get, member, {});
}

void RemoteObject::put(const QString &member, const Value &value) { ask(FrameKind::Put, member, {value}); }

Value RemoteObject::call(const QString &member, const ValueList &arguments) {
    std::optional<Value> known = m_knowledge.answer(m_connection->moment(), member, arguments);
    return known ? std::move(*known) : ask(FrameKind::Call, member, arguments);
}

void RemoteObject::ahead(const std::vector<Question> &questions) {
    const std::shared_ptr<RemoteObject> alive = shared_from_this();
    m_connection->askAhead(*this, questions);
}

Value RemoteObject::callThrough(const Path &path, const QString &member, const ValueList &arguments) {
    return ask(FrameKind::Through, member, wire::packed(path, arguments));
}

void RemoteObject::tryPut(const Path &path, const QString &member, const Value &value) {
    m_connection->tell(
        {.kind = FrameKind::TryPut, .target = m_handle, .text = member, .values = wire::packed(path, {value})});
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

bool Client::isConnected() const { return m_implementation->connection->isOpen(); }

} // namespace automation
