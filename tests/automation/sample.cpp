#include "automation/sample.h"

#include <chrono>
#include <thread>

namespace sample {

void Inner::setName(const QString &name) {
    m_name = name;
    Q_EMIT Renamed(name);
}

Sample::Sample() : m_child(std::make_shared<Inner>()) {}
Sample::~Sample() = default;

Value Sample::child() { return automation::wrap(m_child); }

void Sample::setName(const QString &name) {
    if (name.isEmpty())
        throw Failure(failures::invalidCall, "The name is empty.");
    Inner::setName(name);
}

QString Sample::Join(const QString &first, const QString &second, const Value &third) const {
    return first + u'+' + second + u'+' + third.kindName();
}

Value Sample::NewChild(const QString &name) {
    ++*m_living;
    const std::shared_ptr<Inner> child(new Inner, [living = m_living](Inner *inner) {
        --*living;
        delete inner;
    });
    child->setName(name);
    return automation::wrap(child);
}

bool Sample::IsChild(const Value &object) { return automation::exposedOf<Inner>(object) == m_child; }

bool Sample::IsSelf(const Value &object) { return automation::exposedOf<Sample>(object).get() == this; }

ValueList Sample::RaiseListed(const ValueList &values) {
    Q_EMIT Listed(values, Value(values));
    return values;
}

bool Sample::Save() {
    bool cancel = false;
    Q_EMIT Write(&cancel);
    if (cancel)
        return false;
    ++m_saves;
    Q_EMIT Saved(name());
    return true;
}

int Sample::Deepen(int level) {
    if (level == 0)
        return 0;
    const int before = ++m_reached;
    Q_EMIT Deeper(level);
    return m_reached - before + 1;
}

void Sample::RaiseAll(const Value &any) {
    bool first = false;
    bool second = true;
    Q_EMIT All(any, true, m_number, m_ratio, name(), m_price, m_when, &first, &second);
    m_flag = first && !second;
}

void Sample::Block(int milliseconds) const { std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds)); }

} // namespace sample
