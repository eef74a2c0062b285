/// Raises the signals of a host object to the handlers that are connected to them.
#pragma once

#include "automation/local.h"
#include "automation/members.h"

#include <deque>

namespace automation {

/// Stands between one host object and its subscribers: takes each signal that has ever had a handler once, and calls
/// the handlers in order.
class EventRelay : public QObject {
  public:
    explicit EventRelay(Exposed &raiser) : m_raiser(raiser) {}

    /// REQUIRES: an event of the raiser's class, and the raiser owned by a shared pointer.
    [[nodiscard]] SubscriptionPtr connect(const MemberTable::Event &event, EventHandler handler);

    int qt_metacall(QMetaObject::Call call, int id, void **arguments) override;

  private:
    struct Handler {
        EventHandler run;
        bool connected = true;
    };
    using HandlerPtr = std::shared_ptr<Handler>;
    struct Subscribed {
        const MemberTable::Event *event;
        QList<HandlerPtr> handlers;
    };
    class Connection;

    Subscribed &subscribed(const MemberTable::Event &event);
    void raise(const Subscribed &subscribed, void **arguments);
    void remove(const HandlerPtr &handler);

    Exposed &m_raiser;
    /// A signal's place here is its method number on this object. Places are never given up.
    std::deque<Subscribed> m_subscribed;
};

} // namespace automation
