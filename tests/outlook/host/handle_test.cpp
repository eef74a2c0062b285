#include "outlook/host/host.h"

#include <gtest/gtest.h>

namespace {

/// Notes what is asked of it, as "get Name", and answers from a table.
class NotingObject : public automation::Object {
  public:
    QString typeName() override { return "Noting"; }
    Value get(const QString &member) override { return note("get " + member, {}); }
    void put(const QString &member, const Value &value) override { note("put " + member, {value}); }
    Value call(const QString &member, const ValueList &arguments) override { return note("call " + member, arguments); }
    automation::SubscriptionPtr connect(const QString &, automation::EventHandler) override { return nullptr; }

    QStringList asked;
    ValueList lastArguments;
    Value answer;

  private:
    Value note(const QString &what, const ValueList &arguments) {
        asked << what;
        lastArguments = arguments;
        return answer;
    }
};

TEST(Handle, NothingFailsWithItsNumber) {
    const host::Item item;
    EXPECT_TRUE(item.isNothing());
    const auto failure = Attempt([&] { static_cast<void>(item.Subject()); });
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->number(), failures::objectNotSet);
    EXPECT_EQ(Attempt([&] { item.Save(); })->number(), failures::objectNotSet);
}

TEST(Handle, ResultsThatHoldNoObjectAreNothing) {
    for (const Value &value : {Value(), Value(Value::Null{}), Value(Value::Missing{}), Value::nothing()})
        EXPECT_TRUE(host::MAPIFolder(value).isNothing()) << value.kindName().toStdString();
    EXPECT_EQ(Attempt([] { host::MAPIFolder folder(Value("text")); })->number(), failures::objectRequired);
}

TEST(Handle, IdentityIsTheHostsObject) {
    const auto one = std::make_shared<NotingObject>();
    const auto other = std::make_shared<NotingObject>();
    EXPECT_TRUE(host::Item(one) == host::Item(one));
    EXPECT_FALSE(host::Item(one) == host::Item(other));
    EXPECT_FALSE(host::Item(one) == host::Item());
    EXPECT_TRUE(host::Item() == host::Item());
}

TEST(Handle, ArgumentsStandAtTheirPositions) {
    const auto object = std::make_shared<NotingObject>();
    const auto folder = std::make_shared<NotingObject>();

    static_cast<void>(host::Attachments(object).Add("C:\\a.txt", 1, "a"));
    EXPECT_EQ(object->lastArguments, ValueList({"C:\\a.txt", 1, Value::Missing{}, "a"}));

    host::Item(object).Move(host::MAPIFolder(folder));
    EXPECT_EQ(object->lastArguments, ValueList({Value(automation::ObjectPtr(folder))}));

    static_cast<void>(host::CommandBarControls(object).Add(1, 1, true));
    EXPECT_EQ(object->lastArguments, ValueList({1, 1, Value::Missing{}, Value::Missing{}, true}));

    host::Explorer(object).CurrentFolder(host::MAPIFolder(folder));
    EXPECT_EQ(object->asked.last(), "put CurrentFolder");
}

} // namespace
