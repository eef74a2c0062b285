/// A host in memory: objects whose members are held in a table, and the few of them that tickets and settings use.
///
/// It keeps the host's contract where the system relies on it (a property has one type; a body loses its HTML when it
/// becomes rich text) and fails on demand (`failing`).
#pragma once

#include "automation/object.h"
#include "core/process.h"
#include "platform/safeobjects/safeobjects.h"
#include "platform/scripting/components.h"
#include "platform/value/convert.h"

#include <gtest/gtest.h>

/// An object made of its members. Names match without regard to case.
class Bag : public automation::Object {
  public:
    using Function = std::function<Value(const ValueList &)>;

    explicit Bag(QString type) : m_type(std::move(type)) {}

    QString typeName() override { return m_type; }
    Value get(const QString &member) override {
        calls.append(member);
        failOnDemand(member);
        return stored(member);
    }
    void put(const QString &member, const Value &value) override {
        calls.append(member + "=");
        failOnDemand(member + "=");
        members[member.toLower()] = value;
        if (onPut)
            onPut(member, value);
    }
    Value call(const QString &member, const ValueList &arguments) override {
        const auto function = functions.find(member.toLower());
        if (function == functions.end())
            return get(member);
        calls.append(member + "()");
        failOnDemand(member + "()");
        return function.value()(arguments);
    }
    automation::SubscriptionPtr connect(const QString &, automation::EventHandler) override {
        throw Failure(failures::memberMissing);
    }

    [[nodiscard]] Value stored(const QString &member) const {
        const auto found = members.find(member.toLower());
        if (found == members.end())
            throw Failure(failures::memberMissing, "no member " + member);
        return *found;
    }

    QMap<QString, Value> members;
    QMap<QString, Function> functions;
    std::function<void(const QString &, const Value &)> onPut;
    /// What fails and with which number: "Member" reading, "Member=" writing, "Member()" calling.
    QMap<QString, qint32> failing;
    /// What was asked for, in order.
    QStringList calls;

  private:
    void failOnDemand(const QString &key) const {
        for (auto one = failing.begin(); one != failing.end(); ++one) {
            if (one.key().compare(key, Qt::CaseInsensitive) == 0)
                throw Failure(one.value(), "failed on demand");
        }
    }

    QString m_type;
};
using BagPtr = std::shared_ptr<Bag>;

/// A post item.
class FakeItem {
  public:
    explicit FakeItem(const QString &messageClass = "IPM.Post.HelpDesk.Ticket.8") {
        properties->functions["find"] = [bags = m_properties](const ValueList &arguments) -> Value {
            const BagPtr found = bags->value(toText(arguments[0]).toLower());
            return automation::ObjectPtr(found);
        };
        properties->functions["add"] = [bags = m_properties](const ValueList &arguments) -> Value {
            BagPtr &property = (*bags)[toText(arguments[0]).toLower()];
            if (!property) {
                property = std::make_shared<Bag>("UserProperty");
                property->members["type"] = arguments[1];
                property->members["value"] = "";
            }
            EXPECT_EQ(property->stored("Type"), arguments[1]) << "a property of another type";
            return automation::ObjectPtr(property);
        };
        bag->members = {{"messageclass", messageClass},
                        {"subject", ""},
                        {"importance", 1},
                        {"body", ""},
                        {"htmlbody", ""},
                        {"bodyformat", 1},
                        {"unread", false},
                        {"saved", true},
                        {"userproperties", automation::ObjectPtr(properties)}};
        bag->onPut = [this](const QString &member, const Value &value) {
            bag->members["saved"] = false;
            if (member == "BodyFormat" && value == Value(3))
                bag->members["htmlbody"] = "";
        };
        const auto save = [this](const ValueList &) {
            bag->members["saved"] = true;
            return Value();
        };
        bag->functions = {{"save", save}, {"close", save}, {"display", [](const ValueList &) { return Value(); }}};
    }
    FakeItem(const FakeItem &) = delete;
    FakeItem &operator=(const FakeItem &) = delete;

    [[nodiscard]] host::Item item() const { return automation::ObjectPtr(bag); }
    void setProperty(const QString &name, const Value &value) const {
        const auto property = std::make_shared<Bag>("UserProperty");
        const qint32 type = value.isText() ? 1 : value.holds<DateTime>() ? 5 : 3;
        property->members = {{"type", type}, {"value", value}};
        (*m_properties)[name.toLower()] = property;
    }
    /// Empty for a property that is not there.
    [[nodiscard]] Value property(const QString &name) const {
        const BagPtr found = m_properties->value(name.toLower());
        return found ? found->stored("Value") : Value();
    }
    [[nodiscard]] bool hasProperty(const QString &name) const { return m_properties->contains(name.toLower()); }

    BagPtr bag = std::make_shared<Bag>("PostItem");
    BagPtr properties = std::make_shared<Bag>("UserProperties");

  private:
    std::shared_ptr<QMap<QString, BagPtr>> m_properties = std::make_shared<QMap<QString, BagPtr>>();
};

/// The application with one mailbox, one Explorer and one ticket folder, put in place of the copy's host.
class FakeHost {
  public:
    FakeHost() {
        items->functions["add"] = [this](const ValueList &arguments) -> Value {
            added.push_back(std::make_shared<FakeItem>(toText(arguments[0])));
            return automation::ObjectPtr(added.back()->bag);
        };
        items->functions["find"] = [this](const ValueList &arguments) -> Value {
            filter = toText(arguments[0]);
            return automation::ObjectPtr(found);
        };
        tickets->members = {{"name", "Tickets"},
                            {"entryid", "E1"},
                            {"storeid", "S1"},
                            {"webviewurl", ""},
                            {"parent", Value::nothing()},
                            {"items", automation::ObjectPtr(items)}};
        mailbox->members = {{"name", "Mailbox - Ann Other"}};
        calendar->members = {{"name", "Calendar"}, {"parent", automation::ObjectPtr(mailbox)}};
        const auto topFolders = std::make_shared<Bag>("Folders");
        topFolders->members = {{"count", 0}};
        session->members = {{"folders", automation::ObjectPtr(topFolders)}};
        session->functions["getdefaultfolder"] = [this](const ValueList &) -> Value {
            return automation::ObjectPtr(calendar);
        };
        explorer->members = {{"currentfolder", automation::ObjectPtr(tickets)}, {"caption", "Tickets"}};
        application->members = {{"version", "11.0.1"},
                                {"activewindow", automation::ObjectPtr(explorer)},
                                {"activeexplorer", automation::ObjectPtr(explorer)}};
        ouaOutlook = host::Application(automation::ObjectPtr(application));
        onsMAPI = host::NameSpace(automation::ObjectPtr(session));
        oufTickets = host::MAPIFolder(automation::ObjectPtr(tickets));
    }
    FakeHost(const FakeHost &) = delete;
    FakeHost &operator=(const FakeHost &) = delete;

    /// Whether the client tools are set up on this machine.
    static void installSafeObjects(bool installed = true) {
        safeobjects::registerComponents([] { return onsMAPI->object(); });
        for (const QString &name : safeobjects::progIds())
            scripting::Components::setInstalled(name, installed);
    }

    BagPtr application = std::make_shared<Bag>("Application");
    BagPtr session = std::make_shared<Bag>("NameSpace");
    BagPtr explorer = std::make_shared<Bag>("Explorer");
    BagPtr tickets = std::make_shared<Bag>("MAPIFolder");
    BagPtr items = std::make_shared<Bag>("Items");
    BagPtr mailbox = std::make_shared<Bag>("MAPIFolder");
    BagPtr calendar = std::make_shared<Bag>("MAPIFolder");
    std::vector<std::shared_ptr<FakeItem>> added;
    /// What `Items.Find` gives, and what it was asked.
    BagPtr found;
    QString filter;
};
