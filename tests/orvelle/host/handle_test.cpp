#include "orvelle/host/host.h"
#include "orvelle/host/snapshot.h"
#include "support/fakeobject.h"

#include <gtest/gtest.h>

namespace {

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
    const auto one = std::make_shared<support::FakeObject>("Folder");
    const auto other = std::make_shared<support::FakeObject>("Folder");
    EXPECT_TRUE(host::Item(one) == host::Item(one));
    EXPECT_FALSE(host::Item(one) == host::Item(other));
    EXPECT_FALSE(host::Item(one) == host::Item());
    EXPECT_TRUE(host::Item() == host::Item());
}

/// A snapshot's object answers as it stood when it was asked.
class Snapshot : public testing::Test {
  protected:
    Snapshot() {
        item->properties = {{"Subject", "before"},
                            {"Importance", 2},
                            {"Body", "text"},
                            {"UserProperties", automation::ObjectPtr(properties)}};
        item->failing = {"Body"};
        properties->calls["Find"] = [this](const ValueList &arguments) {
            return arguments.first() == Value("Ticket ID") ? Value(automation::ObjectPtr(property)) : Value::nothing();
        };
        property->properties = {{"Value", "17"}};
        seen = host::snapshot(host::Item(item),
                              host::Questions({"Subject", "Body"}).properties({"Ticket ID", "None"}).members({"Size"}));
        item->properties["Subject"] = "after";
        property->properties["Value"] = "18";
        item->log.clear();
    }

    std::shared_ptr<support::FakeObject> item = std::make_shared<support::FakeObject>("PostItem");
    std::shared_ptr<support::FakeObject> properties = std::make_shared<support::FakeObject>("UserProperties");
    std::shared_ptr<support::FakeObject> property = std::make_shared<support::FakeObject>("UserProperty");
    host::Item seen;
};

TEST_F(Snapshot, HoldsWhatWasAskedAndTheFailuresOfIt) {
    EXPECT_EQ(seen.typeName(), "PostItem");
    EXPECT_EQ(seen.Subject(), "before");
    EXPECT_EQ(seen.PropertyValue("Ticket ID"), Value("17"));
    EXPECT_EQ(seen.UserProperties().Find("Ticket ID").value(), Value("17"));
    const std::pair<std::function<void()>, qint32> failing[] = {
        {[this] { (void)seen.Body(); }, failures::peerGone},
        {[this] { (void)seen.Size(); }, failures::memberMissing},
        {[this] { (void)seen.PropertyValue("None"); }, failures::objectNotSet},
        // Not asked for.
        {[this] { (void)seen.Importance(); }, failures::memberMissing},
        {[this] { (void)seen.PropertyValue("Created at"); }, failures::memberMissing},
        {[this] { seen.Subject("written"); }, failures::memberMissing},
        {[this] { seen.Save(); }, failures::memberMissing},
        {[this] { seen.SetPropertyValue("Ticket ID", "19"); }, failures::memberMissing},
    };
    for (const auto &[step, number] : failing) {
        const auto failure = Attempt(step);
        EXPECT_EQ(failure ? failure->number() : 0, number);
    }
    seen.TrySubject("tried");
    EXPECT_TRUE(item->log.isEmpty()) << item->log.join(' ').toStdString();
}

TEST_F(Snapshot, OfNothingIsNothing) { EXPECT_TRUE(host::snapshot(host::Item(), {"Subject"}).isNothing()); }

} // namespace
