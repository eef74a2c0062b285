/// Objects of this process under the protocol: a host class says what it offers by its meta-object alone.
///
/// A class derived from `Exposed` offers
/// - each `Q_PROPERTY` as a property, writable when it has a WRITE function;
/// - each public `Q_INVOKABLE` as a member to call; default arguments may be left out, and overloads are told apart by
///   the number of arguments only;
/// - each signal that `Q_CLASSINFO("Events", "Open CloseEvent")` names, of the class or of a base, as an event, whose
///   `bool *` parameters are by reference; for an event that has another member's name, the signal `CloseEvent` is the
///   event `Close`. Any other signal, such as a property's NOTIFY, stays inside the host.
/// What is declared CONSTANT is told to a client with the first reference to the object, and not asked for.
/// Names match without regard to case. Types that cross: `Value`, `QString`, `bool`, `qint16`, `int`, `double`,
/// `Currency`, `DateTime`, `ValueList`; objects travel as a `Value`. A property, function or signal with any other type
/// stays internal to the host, as do slots and everything that `QObject` itself declares.
#pragma once

#include "automation/object.h"

#include <QObject>

namespace automation {

class EventRelay;
class Exposed;
class MemberTable;

/// The one wrapper of an `Exposed`, a part of it: the same object always has the same wrapper.
///
/// Arguments are converted to the parameter's type: 13 where the value has no such form, 6 where it does not fit. A
/// wrong number of arguments fails with 450. An inner argument that is Missing reaches a parameter of type `Value` as
/// it is; trailing ones count as left out. `get` of an invokable that needs no argument calls it. The object lives at
/// least until a member that was called through its wrapper has returned.
class LocalObject final : public Object {
  public:
    explicit LocalObject(Exposed &exposed) : m_exposed(exposed) {}

    [[nodiscard]] QString typeName() override;
    Value get(const QString &member) override;
    void put(const QString &member, const Value &value) override;
    Value call(const QString &member, const ValueList &arguments) override;
    [[nodiscard]] SubscriptionPtr connect(const QString &event, EventHandler handler) override;
    [[nodiscard]] std::vector<Constant> constants() override;

    [[nodiscard]] Exposed &exposed() const { return m_exposed; }

  private:
    const MemberTable &members();
    [[noreturn]] void missing(const QString &member);

    Exposed &m_exposed;
    const MemberTable *m_members = nullptr;
};

/// The base of every class that a host offers.
///
/// Invariant: owned by `std::shared_ptr`, never by a QObject parent.
///
/// Events are raised by emitting the signal. Handlers run at once, in the order of their connection, and each sees the
/// by-reference arguments as the one before left them. A handler connected during the emission is not called by it, one
/// disconnected during it is not called any more; the object outlives the emission. A `Failure` that leaves a handler
/// is dropped. Any other exception is held until all handlers have run and then passes on to the raiser.
class Exposed : public QObject, public std::enable_shared_from_this<Exposed> {
    Q_OBJECT

  public:
    Exposed();
    ~Exposed() override;

    /// The host's name of the object's kind; the class's name without its namespace unless a class says otherwise.
    [[nodiscard]] virtual QString typeName() const;

  private:
    friend class LocalObject;
    friend ObjectPtr wrap(const std::shared_ptr<Exposed> &exposed);

    LocalObject m_wrapper{*this};
    std::unique_ptr<EventRelay> m_events;
};

/// The object as the protocol sees it; Nothing for Nothing.
ObjectPtr wrap(const std::shared_ptr<Exposed> &exposed);

/// The object of this process that a value holds, or null where it holds Nothing or no object of this process.
std::shared_ptr<Exposed> exposedOrNull(const Value &value);

/// The host's own object that was passed as an argument: null for Nothing. Fails with 13 for anything that is not
/// Nothing and not a T of this process.
template <class T>
std::shared_ptr<T> exposedOf(const Value &value) {
    if (value.isNothing())
        return nullptr;
    if (auto object = std::dynamic_pointer_cast<T>(exposedOrNull(value)))
        return object;
    throw Failure(failures::typeMismatch);
}

} // namespace automation
