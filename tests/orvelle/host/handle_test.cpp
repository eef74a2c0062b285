#include "orvelle/host/host.h"
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

} // namespace
