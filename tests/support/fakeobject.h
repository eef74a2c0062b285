// An object of the host that notes what is asked of it and fails where it is told to.
#pragma once

#include "automation/object.h"
#include "platform/value/convert.h"

#include <map>

namespace support {

/// An object with properties and calls by name.
class FakeObject : public automation::Object {
  public:
    explicit FakeObject(QString type) : m_type(std::move(type)) {}

    std::map<QString, Value> properties;
    std::map<QString, std::function<Value(const ValueList &)>> calls;
    /// Members that fail.
    QStringList failing;
    /// What was put and called, such as "To=x" and "Save()".
    QStringList log;

    QString typeName() override { return m_type; }
    Value get(const QString &member) override {
        check(member);
        const auto property = properties.find(member);
        if (property == properties.end())
            throw Failure(failures::memberMissing);
        return property->second;
    }
    void put(const QString &member, const Value &value) override {
        check(member);
        log << member + "=" + told(value);
        properties[member] = value;
    }
    Value call(const QString &member, const ValueList &arguments) override {
        check(member);
        QStringList texts;
        for (const Value &argument : arguments)
            texts << told(argument);
        log << member + "(" + texts.join(", ") + ")";
        const auto called = calls.find(member);
        if (called != calls.end())
            return called->second(arguments);
        return properties.contains(member) ? properties[member] : Value();
    }
    automation::SubscriptionPtr connect(const QString &, automation::EventHandler) override { return nullptr; }

  private:
    static QString told(const Value &value) {
        if (value.isMissing())
            return QStringLiteral("(missing)");
        if (value.isArray())
            return QStringLiteral("(%1 values)").arg(value.array().size());
        return value.isObject() ? "(" + value.object()->typeName() + ")" : toText(value);
    }
    void check(const QString &member) const {
        if (failing.contains(member))
            throw Failure(failures::peerGone);
    }

    QString m_type;
};

} // namespace support
