// The tree of folders, and the items of a folder by position.

#include "storefixture.h"

#include "desk/store/connection.h"
#include "desk/store/statements.h"

#include <random>

namespace desk {

class FoldersTest : public StoreTest {
  protected:
    std::unique_ptr<Store> m_store = std::make_unique<Store>(path(), StoreOptions{.rootName = "Mailbox - Ann"});
    FolderId m_root = m_store->root().id;

    FolderRecord add(FolderId parent, const QString &name) {
        return m_store->addFolder({.parent = parent, .name = name});
    }
};

TEST_F(FoldersTest, ATreeIsMadeAndFoundAgain) {
    EXPECT_EQ(m_store->root().name, "Mailbox - Ann");
    EXPECT_EQ(m_store->root().parent, 0);
    const FolderRecord inbox = m_store->addFolder({.parent = m_root,
                                                   .name = "Inbox",
                                                   .defaultItemType = 6,
                                                   .homePageUrl = "file:///x.htm",
                                                   .homePageOn = true,
                                                   .special = SpecialFolder::Inbox});
    const FolderRecord below = add(inbox.id, "12");
    m_store.reset();
    m_store = open();
    EXPECT_EQ(m_store->root().name, "Mailbox - Ann");
    EXPECT_EQ(m_store->specialFolder(SpecialFolder::Inbox), inbox);
    EXPECT_FALSE(m_store->specialFolder(SpecialFolder::Drafts).has_value());
    EXPECT_EQ(m_store->childFolders(m_root), QList{inbox});
    EXPECT_EQ(m_store->findFolder(inbox.id, "12"), below);
    EXPECT_FALSE(m_store->findFolder(m_root, "INBOX").has_value());
    for (const QString &name : oddTexts())
        EXPECT_EQ(m_store->findFolder(m_root, name), std::nullopt) << name.left(20).toStdString();
    for (const QString &name : oddTexts()) {
        const FolderRecord added = add(m_root, name);
        EXPECT_EQ(added.name, name);
        EXPECT_TRUE(m_store->findFolder(m_root, name) == added) << name.left(20).toStdString();
    }
}

TEST_F(FoldersTest, ANameIsTakenOnce) {
    FolderRecord one = add(m_root, "One");
    add(m_root, "Two");
    EXPECT_EQ(failureOf([&] { add(m_root, "One"); }), failures::keyExists);
    EXPECT_EQ(failureOf([&] { add(4711, "One"); }), failures::notFound);
    one.name = "Two";
    EXPECT_EQ(failureOf([&] { m_store->saveFolder(one); }), failures::keyExists);
    one.name = "one";
    one.homePageOn = true;
    EXPECT_EQ(m_store->saveFolder(one), one);
    EXPECT_EQ(m_store->folder(one.id), one);
}

TEST_F(FoldersTest, AMovedFolderKeepsItsItemsAndFindsAFreeName) {
    const FolderRecord deleted = add(m_root, "Deleted Items");
    for (int i = 1; i <= 3; ++i) {
        const FolderRecord gone = add(m_root, "12");
        const FolderRecord below = add(gone.id, "Received");
        m_store->insert(below.id, withSubject("kept"));
        const FolderRecord moved = m_store->moveFolder(gone.id, deleted.id);
        EXPECT_EQ(moved.name, i == 1 ? "12" : QStringLiteral("12 (%1)").arg(i));
        EXPECT_EQ(moved.parent, deleted.id);
        EXPECT_EQ(subjects(*m_store, below.id), QStringList("kept"));
        EXPECT_EQ(failureOf([&] { m_store->moveFolder(deleted.id, below.id); }), failures::invalidCall);
    }
    EXPECT_EQ(failureOf([&] { m_store->moveFolder(m_root, deleted.id); }), failures::invalidCall);
    EXPECT_EQ(failureOf([&] { m_store->moveFolder(deleted.id, 4711); }), failures::notFound);
}

TEST_F(FoldersTest, ARemovedFolderTakesAllBelowItAlong) {
    const FolderRecord one = add(m_root, "One");
    const FolderRecord two = add(one.id, "Two");
    const ItemRecord item = m_store->insert(two.id, {}, everyPart("x"));
    const qint64 attachment = m_store->attachments(item.id).value(0).id;
    EXPECT_EQ(m_store->count(two.id), 1);
    const auto other = open();
    EXPECT_EQ(other->count(two.id), 1);
    m_store->removeFolder(one.id);
    for (Store *store : {m_store.get(), other.get()}) {
        EXPECT_FALSE(store->item(item.id).has_value());
        EXPECT_EQ(failureOf([&] { static_cast<void>(store->count(two.id)); }), failures::notFound);
        EXPECT_EQ(failureOf([&] { static_cast<void>(store->folder(one.id)); }), failures::notFound);
        EXPECT_EQ(failureOf([&] { static_cast<void>(store->attachmentData(attachment)); }), failures::notFound);
    }
    EXPECT_EQ(failureOf([&] { m_store->removeFolder(m_root); }), failures::invalidCall);
}

/// Also in a store of before these look-ups had an index.
TEST_F(FoldersTest, FewFoldersAreFoundAmongManyWithoutAWalk) {
    const FolderRecord people = m_store->addFolder({.parent = m_root, .name = "People", .defaultItemType = 2});
    m_store.reset();
    for (const bool isOld : {false, true}) {
        if (isOld) {
            Connection before(path(), std::chrono::milliseconds(0));
            before.once("DROP INDEX folders_by_special");
            before.once("DROP INDEX folders_of_contacts");
        }
        EXPECT_EQ(open()->contactsFolders(), QList{people});
        Connection connection(path(), std::chrono::milliseconds(0));
        for (const std::string_view sql :
             {sql::contactsFolders, sql::specialFolder, sql::folderByName, sql::rootFolder, sql::folder}) {
            QStringList plan;
            connection.each("EXPLAIN QUERY PLAN " + std::string(sql), {},
                            [&plan](const Row &row) { plan << row.text(3); });
            ASSERT_EQ(plan.size(), 1) << plan.join(u'\n').toStdString();
            EXPECT_TRUE(plan.first().startsWith("SEARCH")) << plan.first().toStdString();
        }
    }
}

/// Positions asked for in every order, while two connections add and take away at both ends and in the middle.
TEST_F(FoldersTest, PositionsFollowWhatBothConnectionsDo) {
    const FolderId folder = add(m_root, "Shared").id;
    const FolderId aside = add(m_root, "Aside").id;
    const auto other = open();
    std::mt19937 random(7);
    QList<ItemId> expected;
    for (int step = 0; step < 3000; ++step) {
        Store &store = random() % 2 == 0 ? *m_store : *other;
        const bool add = expected.size() < 600 || random() % 2 == 0;
        if (add) {
            expected << store.insert(folder, {}).id;
        } else {
            const auto at = static_cast<qsizetype>(random() % static_cast<unsigned>(expected.size()));
            const ItemRecord item = store.item(expected[at]).value();
            if (random() % 2 == 0)
                store.remove(item);
            else
                store.move(item, aside);
            expected.removeAt(at);
        }
        Store &reader = random() % 2 == 0 ? *m_store : *other;
        ASSERT_EQ(reader.count(folder), expected.size()) << step;
        const auto position = 1 + static_cast<qsizetype>(random() % static_cast<unsigned>(expected.size()));
        ASSERT_EQ(reader.nth(folder, position).value().id, expected[position - 1]) << step;
        ASSERT_EQ(reader.nth(folder, expected.size()).value().id, expected.last()) << step;
        for (const qint64 beyond : {qint64{0}, qint64{-1}, qint64{expected.size() + 1}})
            ASSERT_FALSE(reader.nth(folder, beyond).has_value()) << step;
    }
}

} // namespace desk
