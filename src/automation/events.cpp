#include "automation/events.h"

#include "platform/value/convert.h"

namespace automation {
namespace {

ValueList readArguments(const MemberTable::Event &event, void **arguments) {
    ValueList values;
    values.reserve(std::ssize(event.parameters));
    for (std::size_t i = 0; i < event.parameters.size(); ++i)
        values.append(readArgument(event.parameters[i], arguments[i + 1]));
    return values;
}

/// What a handler left is taken where it still is a boolean in some form.
void takeReferences(const MemberTable::Event &event, const ValueList &values, void **arguments) {
    const std::size_t count = std::min(event.parameters.size(), static_cast<std::size_t>(values.size()));
    for (std::size_t i = 0; i < count; ++i) {
        if (event.parameters[i] != Kind::BooleanReference)
            continue;
        bool &reference = **static_cast<bool **>(arguments[i + 1]);
        reference = AttemptOr([&] { return toBool(values[static_cast<qsizetype>(i)]); }, bool(reference));
    }
}

} // namespace

class EventRelay::Connection : public Subscription {
  public:
    Connection(std::weak_ptr<Exposed> raiser, EventRelay &relay, HandlerPtr handler)
        : m_raiser(std::move(raiser)), m_relay(relay), m_handler(std::move(handler)) {}

    ~Connection() override {
        m_handler->connected = false;
        if (const std::shared_ptr<Exposed> raiser = m_raiser.lock())
            m_relay.remove(m_handler);
    }

  private:
    std::weak_ptr<Exposed> m_raiser;
    EventRelay &m_relay;
    HandlerPtr m_handler;
};

SubscriptionPtr EventRelay::connect(const MemberTable::Event &event, EventHandler handler) {
    auto added = std::make_shared<Handler>();
    added->run = std::move(handler);
    subscribed(event).handlers.append(added);
    return std::make_unique<Connection>(m_raiser.weak_from_this(), *this, std::move(added));
}

EventRelay::Subscribed &EventRelay::subscribed(const MemberTable::Event &event) {
    for (Subscribed &known : m_subscribed)
        if (known.event == &event)
            return known;
    const int place = QObject::staticMetaObject.methodCount() + static_cast<int>(m_subscribed.size());
    m_subscribed.push_back({&event, {}});
    QMetaObject::connect(&m_raiser, event.index, this, place, Qt::DirectConnection);
    return m_subscribed.back();
}

int EventRelay::qt_metacall(QMetaObject::Call call, int id, void **arguments) {
    id = QObject::qt_metacall(call, id, arguments);
    if (id < 0 || call != QMetaObject::InvokeMetaMethod)
        return id;
    raise(m_subscribed.at(static_cast<std::size_t>(id)), arguments);
    return -1;
}

void EventRelay::raise(const Subscribed &subscribed, void **arguments) {
    if (subscribed.handlers.isEmpty())
        return;
    const std::shared_ptr<Exposed> alive = m_raiser.weak_from_this().lock();
    const MemberTable::Event &event = *subscribed.event;
    // Handlers connect and disconnect while this goes on.
    const QList<HandlerPtr> handlers = subscribed.handlers;
    std::exception_ptr passing;
    for (const HandlerPtr &handler : handlers) {
        if (!handler->connected)
            continue;
        ValueList values = readArguments(event, arguments);
        try {
            handler->run(values);
        } catch (const Failure &) {
            // Subscribers are strangers to one another and to the raiser.
        } catch (...) {
            if (!passing)
                passing = std::current_exception();
        }
        if (event.byReference)
            takeReferences(event, values, arguments);
    }
    if (passing)
        std::rethrow_exception(passing);
}

void EventRelay::remove(const HandlerPtr &handler) {
    for (Subscribed &known : m_subscribed)
        if (known.handlers.removeOne(handler))
            return;
}

} // namespace automation
