#include "orvelle/host/handle.h"

namespace host {

ProcessLocal<void (*)()> aroundHost;

namespace {
void passBy() {
    if (void (*const step)() = aroundHost.get())
        step();
}

/// Asks with the program's own step before and after it.
template <class Ask>
auto asked(const Ask &ask) {
    passBy();
    auto answer = ask();
    passBy();
    return answer;
}
} // namespace

Handle::Handle(const Value &value) {
    if (!value.isEmpty() && !value.isNull() && !value.isMissing())
        m_object = value.object();
}

automation::Object &Handle::checked() const {
    if (!m_object)
        throw Failure(failures::objectNotSet);
    return *m_object;
}

QString Handle::typeName() const { return checked().typeName(); }

Value Handle::get(const QString &member) const {
    return asked([&] { return checked().get(member); });
}

void Handle::put(const QString &member, const Value &value) const {
    passBy();
    checked().put(member, value);
    passBy();
}

Value Handle::call(const QString &member, const ValueList &arguments) const {
    return asked([&] { return checked().call(member, arguments); });
}

std::vector<automation::Outcome> Handle::askAll(const std::vector<automation::Path> &questions) const {
    return asked([&] { return checked().askAll(questions); });
}

Value Handle::ask(const automation::Path &path) const {
    return asked([&] { return checked().ask(path); });
}

void Handle::putThrough(const automation::Path &path, const QString &member, const Value &value) const {
    passBy();
    checked().putThrough(path, member, value);
    passBy();
}

void Handle::tryPut(const QString &member, const Value &value) const { tryPut({}, member, value); }

void Handle::tryPut(const automation::Path &path, const QString &member, const Value &value) const {
    if (m_object)
        m_object->tryPut(path, member, value);
}

automation::SubscriptionPtr Handle::connect(const QString &event, automation::EventHandler handler) const {
    return asked([&] { return checked().connect(event, std::move(handler)); });
}

bool operator==(const Handle &left, const Handle &right) {
    if (!left.m_object || !right.m_object)
        return left.m_object == right.m_object;
    return left.m_object->isSame(*right.m_object);
}

} // namespace host
