/// The late-bound object protocol: how a program drives a host from outside.
///
/// An object has a type name and four verbs. Members are named by text, without regard to case; arguments and results
/// are values; a failure is a number and a description and crosses like a value. The same interface is met by objects
/// of this process (`local.h`) and by handles to objects of another process (`remote.h`).
#pragma once

#include "platform/value/value.h"

#include <functional>
#include <memory>
#include <optional>
#include <span>
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

/// A property that stays the same for as long as its object is there.
struct Constant {
    QString member;
    Value value;
};

/// A property that is read, or, with arguments, a member that is called.
struct Question {
    QString member;
    ValueList arguments;
};

/// The way from one object to another: the first question is asked of the one it starts from, each further one of the
/// object that the question before gave.
using Path = std::vector<Question>;

/// What a question brought: a value or a failure.
class Outcome {
  public:
    Outcome(Value value) : m_value(std::move(value)) {}
    Outcome(Failure failure) : m_failure(std::move(failure)) {}

    /// Fails as the question did.
    [[nodiscard]] const Value &value() const {
        if (m_failure)
            throw Failure(*m_failure);
        return m_value;
    }
    /// Nothing where there was none.
    [[nodiscard]] const std::optional<Failure> &failure() const { return m_failure; }

  private:
    Value m_value;
    std::optional<Failure> m_failure;
};

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

    /// What never changes about the object, so that nobody need ask for it. Never an object, and nothing that takes
    /// time to find out.
    [[nodiscard]] virtual std::vector<Constant> constants() { return {}; }

    /// Asks several questions, each of which ends a path that begins here. They are answered in their order, each with
    /// its own value or failure (91 where one on the way gives Nothing), and those on the way are not met: all of it is
    /// one question where it crosses to another process, in one frame each way.
    [[nodiscard]] virtual std::vector<Outcome> askAll(const std::vector<Path> &questions);

    /// The one question at the end of a path. Fails as it did.
    Value ask(const Path &path) { return askAll({path}).front().value(); }

    /// Writes a property of the object that the path leads to, of this one where it is empty. Fails as the first
    /// question of the path that does, or as the writing.
    virtual void putThrough(const Path &path, const QString &member, const Value &value);

    /// The same where nobody waits for it or learns of a failure; what is asked afterwards finds it written.
    virtual void tryPut(const Path &path, const QString &member, const Value &value) {
        Attempt([&] { putThrough(path, member, value); });
    }

    /// Connects a handler to an event. Handlers run synchronously, in the order of their connection, while the raiser
    /// waits; a handler may use any object, the raising one included. A `Failure` that leaves a handler is dropped.
    /// Fails with 438 for an unknown event.
    [[nodiscard]] virtual SubscriptionPtr connect(const QString &event, EventHandler handler) = 0;

    /// Whether both stand for the same object of the host.
    [[nodiscard]] virtual bool isSame(const Object &other) const { return this == &other; }
};

/// What the last question of a path brings. Fails as the first one that does, with 5 for an empty path.
Value follow(Object &from, std::span<const Question> path);

} // namespace automation
