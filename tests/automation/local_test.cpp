// What concerns the host's own side alone.

#include "automation/sample.h"
#include "automation/support.h"

using namespace automation;

namespace {

class Local : public testing::Test {
  protected:
    std::shared_ptr<sample::Sample> host = std::make_shared<sample::Sample>();
    ObjectPtr root = wrap(host);
};

/// Stands for an end of the program that no failure handling may swallow.
struct ProgramEnd {};

TEST_F(Local, WhatIsNoFailurePassesOnAfterAllHandlers) {
    int later = 0;
    const SubscriptionPtr first = root->connect("Write", [](ValueList &arguments) {
        arguments[0] = true;
        throw ProgramEnd();
    });
    const SubscriptionPtr second = root->connect("Write", [&](ValueList &arguments) {
        EXPECT_EQ(arguments, ValueList{true});
        ++later;
    });
    EXPECT_THROW(root->call("Save", {}), ProgramEnd);
    EXPECT_EQ(later, 1);
    EXPECT_THROW(root->call("Break", {}), std::runtime_error);
    EXPECT_EQ(host->saves(), 0);
}

TEST_F(Local, AnObjectLivesUntilItsCalledMemberReturns) {
    const std::weak_ptr<sample::Sample> watched = host;
    bool livesOn = false;
    const SubscriptionPtr write = root->connect("Write", [&](ValueList &) {
        root.reset();
        host.reset();
    });
    const SubscriptionPtr saved = root->connect("Saved", [&](ValueList &) { livesOn = !watched.expired(); });
    EXPECT_EQ(root->call("Save", {}), Value(true));
    EXPECT_TRUE(livesOn) << "the last reference went in the middle of the call";
    EXPECT_TRUE(watched.expired());
}

} // namespace
