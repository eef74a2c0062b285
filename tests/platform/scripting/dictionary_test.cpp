#include "platform/scripting/dictionary.h"
#include "support/steps.h"

#include <gtest/gtest.h>

namespace {

using Dictionary = scripting::Dictionary<QString>;

TEST(ADictionary, FindsKeysWithoutRegardToCaseInAnyAlphabet) {
    const std::vector<std::pair<const char *, const char *>> same = {
        {"Printer", "PRINTER"}, {"Ärende", "äRENDE"}, {"Πρόβλημα", "ΠΡΌΒΛΗΜΑ"}};
    for (const auto &[added, asked] : same) {
        Dictionary dictionary;
        dictionary.Add(added, "item");
        EXPECT_TRUE(dictionary.Exists(asked)) << added;
        EXPECT_EQ(dictionary.Item(asked), "item") << added;
        EXPECT_EQ(dictionary.Keys(), QStringList{added});
        EXPECT_EQ(failureOf([&] { dictionary.Add(asked, "other"); }), failures::keyExists) << added;
    }
}

TEST(ADictionary, KeepsItsOrderThroughRemovalAndReplacement) {
    Dictionary dictionary;
    for (const char *key : {"c", "a", "d", "b"})
        dictionary.Add(key, QString("item ") + key);
    dictionary.Remove("A");
    dictionary.Set("D", "new");
    dictionary.Add("a", "again");
    EXPECT_EQ(dictionary.Keys(), (QStringList{"c", "d", "b", "a"}));
    EXPECT_EQ(dictionary.Items(), (QStringList{"item c", "new", "item b", "again"}));
    EXPECT_EQ(dictionary.Item("b"), "item b");
    EXPECT_EQ(failureOf([&] { dictionary.Remove("x"); }), failures::invalidCall);
    EXPECT_EQ(dictionary.Count(), 4);
}

TEST(ADictionary, AddsAKeyThatIsReadAndMissing) {
    Dictionary dictionary;
    EXPECT_EQ(dictionary.Item("missing"), "");
    EXPECT_TRUE(dictionary.Exists("missing"));
}

} // namespace
