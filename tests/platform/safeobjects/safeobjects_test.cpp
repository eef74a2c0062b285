#include "platform/safeobjects/safeobjects.h"

#include "platform/registry/registry.h"
#include "platform/scripting/components.h"
#include "platform/value/convert.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <map>

namespace {

/// An object of the host with properties, which notes what is called on it.
class HostObject : public automation::Object {
  public:
    explicit HostObject(std::map<QString, Value> properties) : m_properties(std::move(properties)) {}

    QString typeName() override { return "HostObject"; }
    Value get(const QString &member) override {
        if (!m_properties.contains(member))
            throw Failure(failures::memberMissing);
        return m_properties[member];
    }
    void put(const QString &, const Value &) override { throw Failure(failures::memberMissing); }
    Value call(const QString &member, const ValueList &arguments) override {
        QStringList texts;
        for (const Value &argument : arguments)
            texts << (argument.isMissing() ? "-" : toText(argument));
        called << member + "(" + texts.join(u',') + ")";
        return m_properties.contains(member) ? m_properties[member] : Value();
    }
    automation::SubscriptionPtr connect(const QString &, automation::EventHandler) override { return nullptr; }

    QStringList called;

  private:
    std::map<QString, Value> m_properties;
};

class SafeObjects : public testing::Test {
  protected:
    void SetUp() override {
        registry::fileOverride = m_folder.filePath("registry.ini");
        safeobjects::registerComponents([this] { return session; });
    }
    qint32 failureOf(const std::function<void()> &step) {
        const auto failure = Attempt(step);
        return failure ? failure->number() : 0;
    }

    std::shared_ptr<HostObject> session;

  private:
    QTemporaryDir m_folder;
    ProgramCopy m_copy;
    ProgramCopy::Scope m_scope{m_copy};
};

TEST_F(SafeObjects, EveryWrapperReadsAndWorksOnItsItem) {
    for (const char *progId : {safeobjects::safeMailItem, safeobjects::safePostItem, safeobjects::safeContactItem}) {
        SCOPED_TRACE(progId);
        const auto sender = std::make_shared<HostObject>(std::map<QString, Value>{});
        const auto item = std::make_shared<HostObject>(std::map<QString, Value>{
            {"Body", "plain"}, {"HTMLBody", "<p>"}, {"Sender", automation::ObjectPtr(sender)}});
        const auto safe = scripting::CreateObject(progId);
        EXPECT_EQ(failureOf([&] { safe->get("Body"); }), failures::objectNotSet);
        safe->put("AuthKey", "key");
        safe->put("Item", automation::ObjectPtr(item));
        EXPECT_EQ(safe->get("Body"), Value("plain"));
        EXPECT_EQ(safe->get("HTMLBody"), Value("<p>"));
        EXPECT_EQ(safe->get("Sender").object(), sender);
        safe->call("SaveAs", {"C:\\x.msg", 3});
        safe->call("send", {});
        EXPECT_EQ(item->called, QStringList({"SaveAs(C:\\x.msg,3)", "Send()"}));
        EXPECT_EQ(failureOf([&] { safe->get("Subject"); }), failures::memberMissing);
    }
}

TEST_F(SafeObjects, SessionWideObjectsWorkOnTheSessionOfTheMoment) {
    const auto utils = scripting::CreateObject(safeobjects::mapiUtils);
    EXPECT_EQ(failureOf([&] { utils->call("DeliverNow", {}); }), failures::objectNotSet);

    const auto list = std::make_shared<HostObject>(std::map<QString, Value>{{"ID", "AA"}});
    const auto lists =
        std::make_shared<HostObject>(std::map<QString, Value>{{"Count", 1}, {"Item", automation::ObjectPtr(list)}});
    session = std::make_shared<HostObject>(std::map<QString, Value>{{"AddressLists", automation::ObjectPtr(lists)}});

    utils->call("DeliverNow", {});
    utils->call("GetItemFromID", {"0A", "0B"});
    utils->call("Cleanup", {});
    EXPECT_EQ(session->called, QStringList({"DeliverNow()", "GetItemFromID(0A,0B)"}));

    const auto books = scripting::CreateObject(safeobjects::addressLists);
    EXPECT_EQ(toInt32(books->get("Count")), 1);
    EXPECT_EQ(books->call("Item", {1}).object(), list);
}

TEST_F(SafeObjects, TheAddInIsNewEnoughForWhoAsks) {
    EXPECT_GE(toInt32(scripting::CreateObject(safeobjects::buttonHolder)->get("FileVersion")), 92200);
}

TEST_F(SafeObjects, RemovedComponentsCannotBeMade) {
    for (const QString &progId : safeobjects::progIds()) {
        SCOPED_TRACE(progId.toStdString());
        EXPECT_EQ(failureOf([&] { scripting::CreateObject(progId); }), 0);
        scripting::Components::setInstalled(progId, false);
        EXPECT_EQ(failureOf([&] { scripting::CreateObject(progId); }), failures::cannotCreateObject);
        scripting::Components::setInstalled(progId, true);
        EXPECT_EQ(failureOf([&] { scripting::CreateObject(progId); }), 0);
    }
}

} // namespace
