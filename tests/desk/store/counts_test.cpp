// The counts that a store keeps of its folders, through everything that changes them.

#include "firstversion.h"
#include "storefixture.h"
#include "support/child.h"

#include "desk/store/statements.h"

#include <random>
#include <thread>

#include <sys/stat.h>

namespace desk {

class CountsTest : public StoreTest {
  protected:
    static ItemRecord item(bool unread) {
        ItemRecord record = withSubject("x");
        record.unread = unread;
        return record;
    }
    /// The counts of a folder by going through its items.
    static FolderCounts walked(Store &store, FolderId folder) {
        FolderCounts counts;
        for (const ItemRecord &each : store.itemsArrivedAfter(folder, 0, 100000)) {
            ++counts.items;
            counts.unread += each.unread ? 1 : 0;
        }
        return counts;
    }
    /// A closed store of the first version, with 30 items in "A", 10 of them unread, and none in "B".
    void makeOld(const QString &name) {
        {
            const auto store = open(name);
            const FolderId folder = folderNamed(*store, "A");
            folderNamed(*store, "B");
            for (int i = 0; i < 30; ++i)
                store->insert(folder, item(i % 3 == 0));
        }
        makeFirstVersion(path(name));
    }
};

TEST_F(CountsTest, EachChangeCountsOnceInItsFolder) {
    const auto store = open();
    const auto other = open();
    const FolderId a = folderNamed(*store, "A");
    const FolderId b = folderNamed(*store, "B");
    ItemRecord first;
    ItemRecord second;
    struct Step {
        const char *name;
        std::function<void()> change;
        FolderCounts inA;
        FolderCounts inB;
    };
    const Step steps[] = {
        {"a new unread item", [&] { first = store->insert(a, item(true)); }, {1, 1}, {}},
        {"a new read item", [&] { second = other->insert(a, item(false)); }, {2, 1}, {}},
        {"a save that leaves it unread", [&] { first = other->save(first); }, {2, 1}, {}},
        {"read",
         [&] {
             first.unread = false;
             first = store->save(first);
         },
         {2, 0},
         {}},
        {"unread again",
         [&] {
             first.unread = true;
             first = store->save(first);
         },
         {2, 1},
         {}},
        {"a copy", [&] { static_cast<void>(other->copy(first.id)); }, {3, 2}, {}},
        {"a move", [&] { first = store->move(first, b); }, {2, 1}, {1, 1}},
        {"a move into the same folder", [&] { first = store->move(first, b); }, {2, 1}, {1, 1}},
        {"a save that fails", [&] { EXPECT_NE(failureOf([&] { store->save({.id = first.id}); }), 0); }, {2, 1}, {1, 1}},
        {"a removal", [&] { store->remove(first); }, {2, 1}, {}},
        {"another program that writes without this one's code",
         [&] {
             Connection file(path(), std::chrono::milliseconds(1000));
             file.run("UPDATE items SET unread = 7 WHERE id = :id", {{"id", second.id}});
         },
         {2, 2},
         {}},
    };
    for (const Step &step : steps) {
        SCOPED_TRACE(step.name);
        step.change();
        for (Store *each : {store.get(), other.get()}) {
            EXPECT_EQ(each->counts(a), step.inA);
            EXPECT_EQ(each->counts(b), step.inB);
        }
    }
    store->removeFolder(a);
    EXPECT_EQ(failureOf([&] { static_cast<void>(store->counts(a)); }), failures::notFound);
    EXPECT_EQ(store->counts(b), FolderCounts());
}

TEST_F(CountsTest, WhatATransactionDidNotCommitWasNeverCounted) {
    const auto store = open();
    const FolderId folder = folderNamed(*store, "A");
    store->insert(folder, item(true));
    {
        Connection file(path(), std::chrono::milliseconds(1000));
        const Transaction abandoned(file);
        file.run("DELETE FROM items");
    }
    EXPECT_EQ(store->counts(folder), (FolderCounts{.items = 1, .unread = 1}));
}

TEST_F(CountsTest, ACountReadsOneRowOfTheFolderAlone) {
    static_cast<void>(open());
    EXPECT_EQ(planOf(path(), std::string(sql::counts)), "SEARCH folders USING INTEGER PRIMARY KEY (rowid=?)");
}

TEST_F(CountsTest, AnOldFileIsBroughtUpAndCountsOn) {
    makeOld("old");
    const auto store = open("old");
    const FolderId a = folderNamed(*store, "A");
    EXPECT_EQ(versionOf(path("old")), 2);
    EXPECT_EQ(store->counts(a), (FolderCounts{.items = 30, .unread = 10}));
    EXPECT_EQ(store->counts(folderNamed(*store, "B")), FolderCounts());
    store->move(store->nth(a, 1).value(), folderNamed(*store, "B"));
    EXPECT_EQ(store->counts(a), walked(*store, a));
    EXPECT_EQ(store->counts(folderNamed(*store, "B")), (FolderCounts{.items = 1, .unread = 1}));
    // The same as a file that was made in this version.
    static_cast<void>(open("new"));
    const auto schemaOf = [this](const QString &name) {
        Connection file(path(name), std::chrono::milliseconds(1000));
        QStringList objects;
        file.each("SELECT type || ' ' || name || ' ' || coalesce(sql, '') FROM sqlite_master WHERE type <> 'table'"
                  " UNION ALL SELECT m.name || '.' || t.name || ' ' || t.type || coalesce(t.dflt_value, '')"
                  " FROM sqlite_master AS m, pragma_table_info(m.name) AS t WHERE m.type = 'table' ORDER BY 1",
                  {}, [&objects](const Row &row) { objects << row.text(0); });
        return objects;
    };
    EXPECT_EQ(schemaOf("old"), schemaOf("new"));
}

/// A program that had the old file open when it was brought up writes on, and what it writes is counted.
TEST_F(CountsTest, WhoHadTheOldFileOpenIsCountedToo) {
    makeOld("old");
    Connection before(path("old"), std::chrono::milliseconds(1000));
    const std::string_view markAll = "UPDATE items SET unread = 1";
    before.run(markAll);
    const auto store = open("old");
    before.run("DELETE FROM items WHERE id % 2 = 0");
    const FolderId a = folderNamed(*store, "A");
    EXPECT_EQ(store->counts(a), walked(*store, a));
    before.run("UPDATE items SET unread = 0");
    before.run(markAll);
    EXPECT_EQ(store->counts(a), walked(*store, a));
    EXPECT_EQ(store->counts(a).unread, store->counts(a).items);
}

TEST_F(CountsTest, AnOldFileThatCannotBeWrittenIsCountedAsItIs) {
    makeOld("old");
    const QByteArray folder = QFile::encodeName(QFileInfo(path("old")).path());
    ASSERT_EQ(::chmod(folder.constData(), 0777), 0);
    ASSERT_EQ(::chmod(QFile::encodeName(path("old")).constData(), 0444), 0);
    Child reader([&](int) {
        constexpr uid_t nobody = 65534;
        if (::geteuid() == 0 && ::setuid(nobody) != 0)
            return 2;
        const auto store = open("old");
        const FolderId a = store->findFolder(store->root().id, "A").value().id;
        const bool isRight = store->counts(a) == FolderCounts{.items = 30, .unread = 10} && store->nth(a, 30) &&
                             !store->nth(a, 31) &&
                             failureOf([&] { static_cast<void>(store->counts(a + 1000)); }) == failures::notFound;
        return isRight ? 0 : 1;
    });
    EXPECT_EQ(reader.wait(), 0);
    EXPECT_EQ(versionOf(path("old")), 1);
}

TEST_F(CountsTest, AFileThatSaysItCountsAndDoesNotIsRefused) {
    for (const char *missing : {"count_insert", "count_delete", "count_update"}) {
        SCOPED_TRACE(missing);
        const QString name = QString::fromLatin1(missing);
        static_cast<void>(open(name));
        Connection(path(name), std::chrono::milliseconds(1000)).once(std::string("DROP TRIGGER ") + missing);
        expectFailure([&] { static_cast<void>(open(name)); }, failures::unspecified, {path(name), "is damaged"});
    }
}

/// Killed at any moment, several at once: the file is old or new, and nothing between.
TEST_F(CountsTest, AnUpgradeIsWholeOrNotThere) {
    std::minstd_rand random(7);
    int old = 0;
    int made = 0;
    makeOld("template");
    const QByteArray content = contentOf(path("template"));
    for (int round = 0; round < 60; ++round) {
        const QString name = QStringLiteral("old%1").arg(round);
        writtenFile(path(name), content);
        const auto start = [&](int) {
            static_cast<void>(open(name));
            return 0;
        };
        {
            Child first(start);
            Child second(start);
            std::this_thread::sleep_for(std::chrono::microseconds(random() % 4000));
            first.kill();
            second.kill();
        }
        const qint64 version = versionOf(path(name));
        old += version == 1 ? 1 : 0;
        made += version == 2 ? 1 : 0;
        const auto store = open(name);
        const FolderId a = folderNamed(*store, "A");
        EXPECT_EQ(store->counts(a), (FolderCounts{.items = 30, .unread = 10}));
        store->remove(store->nth(a, 1).value());
        EXPECT_EQ(store->counts(a), walked(*store, a));
    }
    // Otherwise the kills fell before or behind everything, and the rounds showed nothing.
    EXPECT_GT(old, 0);
    EXPECT_GT(made, 0);
}

} // namespace desk
