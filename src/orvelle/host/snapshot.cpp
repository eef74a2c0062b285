#include "orvelle/host/snapshot.h"

#include <map>

namespace host {
namespace {

using automation::Outcome;
using automation::Path;

/// One object of a snapshot: what was asked of it, and the objects that were met on the way from it.
class SnapshotObject : public automation::Object {
  public:
    explicit SnapshotObject(QString type) : m_type(std::move(type)) {}

    void add(std::span<const automation::Question> path, Outcome outcome) {
        const QString key = keyOf(path.front().member, path.front().arguments);
        if (path.size() == 1) {
            m_outcomes.insert_or_assign(key, std::move(outcome));
            return;
        }
        std::shared_ptr<SnapshotObject> &next = m_objects[key];
        if (!next)
            next = std::make_shared<SnapshotObject>(path.front().member);
        next->add(path.subspan(1), std::move(outcome));
    }

    [[nodiscard]] QString typeName() override { return m_type; }
    Value get(const QString &member) override { return call(member, {}); }
    Value call(const QString &member, const ValueList &arguments) override {
        const QString key = keyOf(member, arguments);
        if (const auto found = m_outcomes.find(key); found != m_outcomes.end())
            return found->second.value();
        if (const auto found = m_objects.find(key); found != m_objects.end())
            return automation::ObjectPtr(found->second);
        refuse(member);
    }
    void put(const QString &member, const Value &) override { refuse(member); }
    [[nodiscard]] automation::SubscriptionPtr connect(const QString &event, automation::EventHandler) override {
        refuse(event);
    }

  private:
    [[noreturn]] void refuse(const QString &member) const {
        throw Failure(
            failures::memberMissing,
            QStringLiteral("The snapshot of the %1 has no %2. Ask for it with the others.").arg(m_type, member));
    }
    /// Arguments of questions are plain values.
    static QString keyOf(const QString &member, const ValueList &arguments) {
        QString key = member.toCaseFolded();
        for (const Value &argument : arguments)
            key += QChar(0) + toText(argument);
        return key;
    }

    QString m_type;
    std::map<QString, Outcome> m_outcomes;
    std::map<QString, std::shared_ptr<SnapshotObject>> m_objects;
};

} // namespace

automation::ObjectPtr snapshotOf(const Handle &of, const Questions &questions) {
    if (of.isNothing())
        return nullptr;
    auto snapshot = std::make_shared<SnapshotObject>(of.typeName());
    const std::vector<Outcome> outcomes = of.askAll(questions.paths());
    for (std::size_t i = 0; i < outcomes.size(); ++i)
        snapshot->add(questions.paths()[i], outcomes[i]);
    return snapshot;
}

} // namespace host
