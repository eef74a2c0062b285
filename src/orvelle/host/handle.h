/// A handle to one object of the host. Every typed handle of `host.h` is one of these with member names.
#pragma once

#include "automation/object.h"
#include "platform/value/convert.h"
#include "platform/value/processlocal.h"

namespace host {

/// Called before and after each question to the host, for while a program waits for an answer its events come in. It
/// may throw to stop what is asking. Empty for none.
extern ProcessLocal<void (*)()> aroundHost;

/// Refers to an object of the host, or to Nothing. Copying copies the reference, so a handle is constant even where
/// its object changes. Using a member of Nothing fails with 91.
class Handle {
  public:
    Handle() = default;
    Handle(std::nullptr_t) {}
    Handle(automation::ObjectPtr object) : m_object(std::move(object)) {}
    /// A result of the host. Empty, Null and Missing count as Nothing; other values that are no object fail with 424.
    Handle(const Value &value);

    [[nodiscard]] bool isNothing() const { return m_object == nullptr; }
    explicit operator bool() const { return m_object != nullptr; }
    /// May be Nothing.
    [[nodiscard]] const automation::ObjectPtr &object() const { return m_object; }
    operator Value() const { return m_object; }

    /// The host's name of the object's kind, such as "Explorer".
    [[nodiscard]] QString typeName() const;
    [[nodiscard]] Value get(const QString &member) const;
    void put(const QString &member, const Value &value) const;
    Value call(const QString &member, const ValueList &arguments = {}) const;
    /// The outcomes of several questions in their order; one question where the host is another process.
    [[nodiscard]] std::vector<automation::Outcome> askAll(const std::vector<automation::Path> &questions) const;
    [[nodiscard]] automation::SubscriptionPtr connect(const QString &event, automation::EventHandler handler) const;

    /// Identity: the same object of the host, or both Nothing.
    friend bool operator==(const Handle &left, const Handle &right);

  protected:
    [[nodiscard]] QString text(const QString &member) const { return toText(get(member)); }
    [[nodiscard]] qint32 number(const QString &member) const { return toInt32(get(member)); }
    [[nodiscard]] bool flag(const QString &member) const { return toBool(get(member)); }

    /// A question about an object that is met on the way only; one question where the host is another process.
    [[nodiscard]] Value ask(const automation::Path &path) const;
    /// Writes a property of an object that is met on the way only; one question too.
    void putThrough(const automation::Path &path, const QString &member, const Value &value) const;
    /// Writes a property where that can be done, and goes on at once: nobody learns of a failure, not even of that of
    /// Nothing. What the typed handles name `TrySubject` and so on does this.
    void tryPut(const QString &member, const Value &value) const;
    void tryPut(const automation::Path &path, const QString &member, const Value &value) const;

  private:
    [[nodiscard]] automation::Object &checked() const;

    automation::ObjectPtr m_object;
};

} // namespace host
