#include "automation/local.h"

#include "automation/events.h"
#include "automation/members.h"

namespace automation {
namespace {

ValueList withoutTrailingMissing(ValueList arguments) {
    while (!arguments.isEmpty() && arguments.constLast().isMissing())
        arguments.removeLast();
    return arguments;
}

Value readProperty(Exposed &exposed, const MemberTable::Property &property) {
    TypedSlot result;
    result.prepare(property.kind);
    void *slots[] = {result.address()};
    exposed.qt_metacall(QMetaObject::ReadProperty, property.index, slots);
    return result.take();
}

/// REQUIRES: no more arguments than the function has parameters; those left out are Missing.
Value invoke(Exposed &exposed, const MemberTable::Function &function, const ValueList &arguments) {
    const std::size_t count = function.parameters.size();
    QVarLengthArray<TypedSlot, 8> slots(static_cast<qsizetype>(count) + 1);
    QVarLengthArray<void *, 8> addresses;
    slots[0].prepare(function.result);
    addresses.append(slots[0].address());
    for (std::size_t i = 0; i < count; ++i) {
        const auto place = static_cast<qsizetype>(i);
        slots[place + 1].assign(function.parameters[i],
                                place < arguments.size() ? arguments[place] : Value(Value::Missing{}));
        addresses.append(slots[place + 1].address());
    }
    exposed.qt_metacall(QMetaObject::InvokeMetaMethod, function.index, addresses.data());
    return slots[0].take();
}

} // namespace

const MemberTable &LocalObject::members() {
    if (!m_members)
        m_members = &MemberTable::of(*m_exposed.metaObject());
    return *m_members;
}

void LocalObject::missing(const QString &member) {
    throw Failure(failures::memberMissing,
                  QStringLiteral("%1: %2.%3")
                      .arg(Failure::standardDescription(failures::memberMissing), m_exposed.typeName(), member));
}

QString LocalObject::typeName() { return m_exposed.typeName(); }

Value LocalObject::get(const QString &member) {
    const std::shared_ptr<Exposed> alive = m_exposed.weak_from_this().lock();
    const MemberTable::Member *found = members().find(member);
    if (found && found->property)
        return readProperty(m_exposed, *found->property);
    if (found && !found->functions.empty())
        return call(member, {});
    missing(member);
}

void LocalObject::put(const QString &member, const Value &value) {
    const std::shared_ptr<Exposed> alive = m_exposed.weak_from_this().lock();
    const MemberTable::Member *found = members().find(member);
    if (!found || !found->property || !found->property->writable)
        missing(member);
    TypedSlot slot;
    slot.assign(found->property->kind, value);
    void *slots[] = {slot.address()};
    m_exposed.qt_metacall(QMetaObject::WriteProperty, found->property->index, slots);
}

Value LocalObject::call(const QString &member, const ValueList &arguments) {
    const std::shared_ptr<Exposed> alive = m_exposed.weak_from_this().lock();
    const MemberTable::Member *found = members().find(member);
    if (!found || (!found->property && found->functions.empty()))
        missing(member);
    const ValueList given = withoutTrailingMissing(arguments);
    for (qsizetype count = given.size(); count <= arguments.size(); ++count)
        if (const MemberTable::Function *function = found->function(count))
            return invoke(m_exposed, *function, given);
    if (found->property && given.isEmpty())
        return readProperty(m_exposed, *found->property);
    throw Failure(failures::wrongNumberOfArguments);
}

std::vector<Constant> LocalObject::constants() {
    std::vector<Constant> values;
    for (const auto &[name, property] : members().constants()) {
        // What can't be told now is asked for, and fails then.
        Attempt([&] {
            Value value = readProperty(m_exposed, property);
            if (!value.isObject() && !value.isArray())
                values.push_back({name, std::move(value)});
        });
    }
    return values;
}

SubscriptionPtr LocalObject::connect(const QString &event, EventHandler handler) {
    const MemberTable::Member *found = members().find(event);
    if (!found || !found->event)
        missing(event);
    if (!m_exposed.m_events)
        m_exposed.m_events = std::make_unique<EventRelay>(m_exposed);
    return m_exposed.m_events->connect(*found->event, std::move(handler));
}

Exposed::Exposed() = default;
Exposed::~Exposed() = default;

QString Exposed::typeName() const { return MemberTable::of(*metaObject()).className(); }

ObjectPtr wrap(const std::shared_ptr<Exposed> &exposed) {
    return exposed ? ObjectPtr(exposed, &exposed->m_wrapper) : nullptr;
}

std::shared_ptr<Exposed> exposedOrNull(const Value &value) {
    if (!value.isObject())
        return nullptr;
    const auto *local = dynamic_cast<const LocalObject *>(value.object().get());
    return local ? local->exposed().shared_from_this() : nullptr;
}

} // namespace automation
