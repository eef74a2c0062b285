/// The late-bound object protocol: how a program drives a host from outside.
///
/// An object has a type name and four verbs. Members are named by text, without regard to case; arguments and results
/// are values; a failure is a number and a description and crosses like a value. The same interface is met by objects
/// of this process (`local.h`) and by handles to objects of another process (`remote.h`).
#pragma once

#include "platform/value/value.h"

#include <functional>
#include <memory>
#include <vector>

namespace automation {

/// Called when an event is raised, with the event's arguments. By-reference arguments (such as `Cancel`) are changed in
/// the list and come back to whoever raised the event.
using EventHandler = std::function<void(ValueList &arguments)>;

/// A connection of a handler to an event; ends with the object, or by `disconnect`.
class Subscription {
  public:
    virtual ~Subscription() = default;
    Subscription() = default;
    Subscription(const Subscription &) = delete;
    Subscription &operator=(const Subscription &) = delete;
};
using SubscriptionPtr = std::unique_ptr<Subscription>;

/// A member and what it had as its value.
struct KnownValue {
    QString member;
    Value value;
    /// Whether it is the same for as long as the object is there.
    bool isConstant = false;
};

/// A call with its arguments, or a property.
struct Question {
    QString member;
    ValueList arguments;
};

/// The way from one object to another: the first question is asked of the one it starts from, each further one of the
/// object that the question before gave.
using Path = std::vector<Question>;

/// One object of a host, seen through its members.
class Object {
  public:
    virtual ~Object() = default;
    Object() = default;
    Object(const Object &) = delete;
    Object &operator=(const Object &) = delete;

    /// The host's name of the object's kind, such as "MailItem".
    [[nodiscard]] virtual QString typeName() = 0;

    /// Reads a property. Fails with 438 for an unknown member.
    virtual Value get(const QString &member) = 0;

    /// Writes a property. Fails with 438 for an unknown or read-only member, 13 for a value of the wrong kind.
    virtual void put(const QString &member, const Value &value) = 0;

    /// Calls a member with arguments (trailing ones may be left out, inner ones be Missing) and gives its result, Empty
    /// where it has none. A member that is a property and takes no arguments is read.
    virtual Value call(const QString &member, const ValueList &arguments) = 0;

    /// What is worth telling with a reference to the object, since who takes it asks for it next. Never an object, and
    /// nothing that takes time to find out.
    [[nodiscard]] virtual std::vector<KnownValue> sentAlong() { return {}; }

    /// Says which questions come next, none of which may change anything. Where each would have to cross to another
    /// process, they cross together and the answers wait here; anywhere else it does nothing. It can't fail: what did
    /// is asked again when its turn comes.
    virtual void ahead(const std::vector<Question> &) {}

    /// A call of the object that the path leads to, without meeting those on the way; all of it crosses to another
    /// process at once. Fails as the first question that does, with 91 where one of the path gives Nothing.
    virtual Value callThrough(const Path &path, const QString &member, const ValueList &arguments);

    /// Writes a property of the object that the path leads to, of this one where it is empty, if that can be done.
    /// Nobody waits for it or learns of a failure; what is asked afterwards finds it written.
    virtual void tryPut(const Path &path, const QString &member, const Value &value);

    /// Connects a handler to an event. Handlers run synchronously, in the order of their connection, while the raiser
    /// waits; a handler may use any object, the raising one included. A `Failure` that leaves a handler is dropped.
    /// Fails with 438 for an unknown event.
    [[nodiscard]] virtual SubscriptionPtr connect(const QString &event, EventHandler handler) = 0;

    /// Whether both stand for the same object of the host.
    [[nodiscard]] virtual bool isSame(const Object &other) const { return this == &other; }
};

/// The object at the end of a path; null for an empty path. Fails as the first question that does, with 91 where one
/// gives Nothing.
ObjectPtr follow(Object &from, const Path &path);

} // namespace automation
