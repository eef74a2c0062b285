#include "platform/safeobjects/safeobjects.h"

#include "platform/registry/registry.h"
#include "platform/scripting/components.h"
#include "support/fakeobject.h"
#include "support/steps.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

namespace {

class SafeObjects : public testing::Test {
  protected:
    void SetUp() override {
        registry::fileOverride = m_folder.filePath("registry.ini");
        safeobjects::registerComponents([this] { return session; });
    }
    static std::shared_ptr<support::FakeObject> hostObject(std::map<QString, Value> properties) {
        const auto object = std::make_shared<support::FakeObject>("HostObject");
        object->properties = std::move(properties);
        return object;
    }

    std::shared_ptr<support::FakeObject> session;

  private:
    QTemporaryDir m_folder;
    ProgramCopy m_copy;
    ProgramCopy::Scope m_scope{m_copy};
};

TEST_F(SafeObjects, EveryWrapperReadsAndWorksOnItsItem) {
    for (const char *progId : {safeobjects::safeMailItem, safeobjects::safePostItem, safeobjects::safeContactItem}) {
        SCOPED_TRACE(progId);
        const auto sender = hostObject({});
        const auto item =
            hostObject({{"Body", "plain"}, {"HTMLBody", "<p>"}, {"Sender", automation::ObjectPtr(sender)}});
        const auto safe = scripting::CreateObject(progId);
        EXPECT_EQ(failureOf([&] { safe->get("Body"); }), failures::objectNotSet);
        safe->put("AuthKey", "key");
        safe->put("Item", automation::ObjectPtr(item));
        EXPECT_EQ(safe->get("Body"), Value("plain"));
        EXPECT_EQ(safe->get("HTMLBody"), Value("<p>"));
        EXPECT_EQ(safe->get("Sender").object(), sender);
        safe->call("SaveAs", {"C:\\x.msg", 3});
        safe->call("send", {});
        EXPECT_EQ(item->log, QStringList({"SaveAs(C:\\x.msg, 3)", "Send()"}));
        EXPECT_EQ(failureOf([&] { safe->get("Subject"); }), failures::memberMissing);
    }
}

TEST_F(SafeObjects, SessionWideObjectsWorkOnTheSessionOfTheMoment) {
    const auto utils = scripting::CreateObject(safeobjects::mapiUtils);
    EXPECT_EQ(failureOf([&] { utils->call("DeliverNow", {}); }), failures::objectNotSet);

    const auto list = hostObject({{"ID", "AA"}});
    const auto lists = hostObject({{"Count", 1}, {"Item", automation::ObjectPtr(list)}});
    session = hostObject({{"AddressLists", automation::ObjectPtr(lists)}});

    utils->call("DeliverNow", {});
    utils->call("GetItemFromID", {"0A", "0B"});
    utils->call("Cleanup", {});
    EXPECT_EQ(session->log, QStringList({"DeliverNow()", "GetItemFromID(0A, 0B)"}));

    const auto books = scripting::CreateObject(safeobjects::addressLists);
    EXPECT_EQ(toInt32(books->get("Count")), 1);
    EXPECT_EQ(books->call("Item", {1}).object(), list);
}

} // namespace
