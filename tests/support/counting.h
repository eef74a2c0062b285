// What a program asks of its host, noted and made to fail on demand. Each get, put and call is a round trip where the
// host is another process.
#pragma once

#include "automation/object.h"

#include <QStringList>

namespace support {

/// Stands in front of an object of the host and of every object that it gives.
class Counting : public automation::Object {
  public:
    /// The questions in order: "MailItem.Subject", "MailItem.Subject=", "MailItem.Save()".
    struct Questions : QStringList {
        /// Questions that fail, with their numbers.
        QMap<QString, qint32> failing;
        /// Called before each question; may fail it.
        std::function<void(const QString &)> before;

        void ask(const QString &question) {
            append(question);
            if (before)
                before(question);
            if (failing.contains(question))
                throw Failure(failing[question], QStringLiteral("failed on demand"));
        }
    };
    using Log = std::shared_ptr<Questions>;

    Counting(automation::ObjectPtr object, Log log) : m_object(std::move(object)), m_log(std::move(log)) {}

    static automation::ObjectPtr of(const automation::ObjectPtr &object, const Log &log) {
        return object ? std::make_shared<Counting>(object, log) : nullptr;
    }

    QString typeName() override { return m_object->typeName(); }
    Value get(const QString &member) override {
        m_log->ask(m_object->typeName() + "." + member);
        return outward(m_object->get(member));
    }
    void put(const QString &member, const Value &value) override {
        m_log->ask(m_object->typeName() + "." + member + "=");
        m_object->put(member, inward(value));
    }
    Value call(const QString &member, const ValueList &arguments) override {
        m_log->ask(m_object->typeName() + "." + member + "()");
        ValueList inner;
        for (const Value &argument : arguments)
            inner << inward(argument);
        return outward(m_object->call(member, inner));
    }
    automation::SubscriptionPtr connect(const QString &event, automation::EventHandler handler) override {
        return m_object->connect(event, [log = m_log, handler = std::move(handler)](ValueList &arguments) {
            ValueList counted;
            for (const Value &argument : arguments)
                counted << (argument.isObject() ? Value(of(argument.object(), log)) : argument);
            handler(counted);
        });
    }
    bool isSame(const automation::Object &other) const override {
        const auto *counting = dynamic_cast<const Counting *>(&other);
        return m_object->isSame(counting ? *counting->m_object : other);
    }

  private:
    static Value inward(const Value &value) {
        if (!value.isObject())
            return value;
        const auto counting = std::dynamic_pointer_cast<Counting>(value.object());
        return counting ? Value(counting->m_object) : value;
    }
    [[nodiscard]] Value outward(const Value &value) const {
        return value.isObject() ? Value(of(value.object(), m_log)) : value;
    }

    automation::ObjectPtr m_object;
    Log m_log;
};

} // namespace support
