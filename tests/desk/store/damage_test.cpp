// Files that cannot be read or written: a clear failure, and nothing lost.

#include "storefixture.h"
#include "support/child.h"

#include "desk/store/connection.h"

#include <random>

#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>

namespace desk {

class DamageTest : public StoreTest {
  protected:
    /// A store with a few items, closed.
    void makeStore(int items) {
        const auto store = open();
        const FolderId inbox = folderNamed(*store, "Inbox");
        for (int i = 0; i < items; ++i)
            store->insert(inbox, withSubject(QString::number(i)), everyPart(QString::number(i)));
    }
    /// Gives up the rights of the superuser, who may write everything.
    static void becomeNobody() {
        constexpr uid_t nobody = 65534;
        if (::geteuid() == 0) {
            EXPECT_EQ(::setuid(nobody), 0);
        }
    }
};

TEST_F(DamageTest, WhatIsNoStoreIsRefusedByNameAndLeftAlone) {
    makeStore(1);
    const QByteArray good = contentOf(path());
    QByteArray newer = good;
    newer[63] = 3; // the file's version: the last of the four bytes from 60 on
    QByteArray foreign = good;
    foreign[71] = 1; // the mark of the program that owns the file: the last of the four bytes from 68 on
    struct Case {
        const char *name;
        QByteArray content;
        const char *reason;
    };
    const Case cases[] = {{"text", QByteArray("Dear all,\r\n").repeated(200), "damaged or is no store"},
                          {"newer", newer, "newer version"},
                          {"foreign", foreign, "another program's"},
                          {"cut", good.left(5000), "damaged"}};
    for (const Case &each : cases) {
        SCOPED_TRACE(each.name);
        const QString file = path(QString::fromLatin1(each.name));
        writtenFile(file, each.content);
        expectFailure([&] { const Store store(file); }, failures::unspecified, {file, each.reason});
        EXPECT_EQ(contentOf(file), each.content);
    }
}

TEST_F(DamageTest, AMissingFileIsMadeOnlyWhenAsked) {
    EXPECT_EQ(failureOf([&] { const Store store(path(), {.create = false}); }), failures::notFound);
    EXPECT_FALSE(QFile::exists(path()));
    EXPECT_EQ(failureOf([&] { const Store store(path("none/x.store")); }), failures::accessDenied);
    EXPECT_EQ(open()->root().parent, 0);
    EXPECT_EQ(failureOf([&] { const Store store(path(), {.create = false}); }), 0);
}

/// The engine itself would begin anew over these, and delete the log.
TEST_F(DamageTest, WhatIsLeftOfAStoreIsNotWrittenOver) {
    makeStore(1);
    const QByteArray good = contentOf(path());
    struct Case {
        const char *name;
        std::optional<QByteArray> content;
        const char *reason;
    };
    const Case cases[] = {{"empty", QByteArray(), "it is empty"},
                          {"cut", good.left(100), "it is too short"},
                          {"gone", std::nullopt, "is missing, but the log"}};
    for (const Case &each : cases) {
        SCOPED_TRACE(each.name);
        const QString file = path(QString::fromLatin1(each.name));
        if (each.content)
            writtenFile(file, *each.content);
        writtenFile(file + "-wal", good);
        expectFailure([&] { const Store store(file); }, failures::unspecified, {file, each.reason});
        EXPECT_EQ(contentOf(file), each.content.value_or("(no file)"));
        EXPECT_EQ(contentOf(file + "-wal"), good);
    }
    expectFailure([&] { const Store store(path(QString())); }, failures::unspecified, {"it is no file"});
    // A log without a byte in it is nobody's.
    writtenFile(path("fresh-wal"), {});
    EXPECT_EQ(failureOf([&] { const Store store(path("fresh")); }), 0);
}

/// Any bytes may stand in a damaged file; what is asked of it ends in an answer or a failure.
TEST_F(DamageTest, DamageAnywhereEndsInAFailureAtWorst) {
    makeStore(30);
    const QByteArray good = contentOf(path());
    std::mt19937 random(5);
    int failed = 0;
    for (int round = 0; round < 60; ++round) {
        QByteArray bad = good;
        for (int i = 0; i < 200; ++i)
            bad[static_cast<qsizetype>(random() % static_cast<unsigned>(bad.size()))] = static_cast<char>(random());
        bad.replace(0, 100, good.left(100));
        const QString file = path(QStringLiteral("bad%1").arg(round));
        writtenFile(file, bad);
        failed += failureOf([&] {
                      Store store(file);
                      for (const FolderRecord &folder : store.childFolders(store.root().id)) {
                          for (const ItemRecord &item : store.itemsArrivedAfter(folder.id, 0))
                              static_cast<void>(partsOf(store, item.id));
                          static_cast<void>(store.find(folder.id, {{Field::Subject, "7"}}));
                          static_cast<void>(store.count(folder.id));
                          store.insert(folder.id, withSubject("more"), everyPart("p"));
                      }
                  }) != 0
                      ? 1
                      : 0;
    }
    EXPECT_GT(failed, 0);
}

TEST_F(DamageTest, AFullDiskFailsTheSaveAndKeepsWhatStands) {
    makeStore(3);
    Child writer([&](int) {
        ::signal(SIGXFSZ, SIG_IGN);
        const auto store = open();
        const FolderId inbox = folderNamed(*store, "Inbox");
        ItemRecord item = store->nth(inbox, 1).value();
        const rlimit limit{300000, 300000};
        if (::setrlimit(RLIMIT_FSIZE, &limit) != 0)
            return 2;
        const ItemParts large{.original = QByteArray(1000000, 'x')};
        if (failureOf([&] { store->save(item, large); }) != failures::noDiskSpace ||
            failureOf([&] { store->insert(inbox, item, large); }) != failures::noDiskSpace)
            return 3;
        // What is small still finds its place: the store is not stuck.
        item.subject = "small";
        return failureOf([&] { store->save(item); }) == 0 && partsOf(*store, item.id) == everyPart("0") ? 0 : 4;
    });
    EXPECT_EQ(writer.wait(), 0);
    const auto store = open();
    const FolderId inbox = folderNamed(*store, "Inbox");
    EXPECT_EQ(subjects(*store, inbox).join(u' '), "small 1 2");
    EXPECT_TRUE(partsOf(*store, store->nth(inbox, 1).value().id) == everyPart("0"));
}

/// While little is left on the disk, what was begun can still be taken back.
TEST_F(DamageTest, OnAnAlmostFullDiskItemsShrinkAndGoButDoNotComeOrGrow) {
    const QByteArray disk = QFile::encodeName(path("disk"));
    ASSERT_EQ(::mkdir(disk.constData(), 0700), 0);
    if (::mount("tmpfs", disk.constData(), "tmpfs", 0, "size=12m") != 0)
        GTEST_SKIP() << "no disk of a size of its own can be had here";
    {
        const auto store = open("disk/x.store");
        const FolderId root = store->root().id;
        ItemRecord item = store->insert(root, withSubject("item"));
        const auto leave = [&](qint64 kilobytes) {
            QFile filler(path("disk/filler"));
            EXPECT_TRUE(filler.open(QIODevice::WriteOnly | QIODevice::Append));
            const qint64 room = storage::roomFor(path("disk/filler")).value();
            filler.write(QByteArray(room - kilobytes * 1024, 'x'));
        };
        leave(3000);
        expectFailure([&] { store->insert(root, withSubject("new")); }, failures::noDiskSpace, {"disk is full"});
        EXPECT_EQ(failureOf([&] { store->copy(item.id); }), failures::noDiskSpace);
        item.billingInformation = "Working...";
        item = store->save(item);
        leave(600);
        ItemRecord larger = item;
        larger.subject = "a longer subject";
        EXPECT_EQ(failureOf([&] { store->save(larger); }), failures::noDiskSpace);
        EXPECT_EQ(failureOf([&] { store->save(item, everyPart("x")); }), failures::noDiskSpace);
        item.billingInformation.clear();
        EXPECT_EQ(failureOf([&] { item = store->save(item); }), 0);
        EXPECT_EQ(failureOf([&] { store->remove(item); }), 0);
    }
    EXPECT_EQ(::umount(disk.constData()), 0);
}

TEST_F(DamageTest, AReadOnlyFileOrFolderDeniesTheWrite) {
    makeStore(1);
    const QByteArray folder = QFile::encodeName(path(QString()));
    ASSERT_EQ(::chmod(folder.constData(), 0555), 0);
    ASSERT_EQ(::chmod(QFile::encodeName(path()).constData(), 0444), 0);
    const auto isDeniedAs = [&](const char *reason) {
        Child reader([&](int) {
            becomeNobody();
            const auto failure = Attempt([&] { const Store store(path()); });
            return failure && failure->number() == failures::accessDenied && failure->description().contains(reason);
        });
        return reader.wait() == 1;
    };
    EXPECT_TRUE(isDeniedAs("read-only"));
    ASSERT_EQ(::chmod(QFile::encodeName(path()).constData(), 0644), 0);
    EXPECT_TRUE(isDeniedAs("no right"));
    ASSERT_EQ(::chmod(QFile::encodeName(path()).constData(), 0444), 0);
    ASSERT_EQ(::chmod(folder.constData(), 0777), 0);
    Child writer([&](int) {
        becomeNobody();
        const auto store = open();
        const ItemRecord item = store->nth(store->childFolders(store->root().id).value(0).id, 1).value();
        return failureOf([&] { store->save(item); }) == failures::accessDenied &&
                       failureOf([&] { store->insert(item.folder, item); }) == failures::accessDenied
                   ? 0
                   : 1;
    });
    EXPECT_EQ(writer.wait(), 0);
    EXPECT_EQ(open()->count(open()->childFolders(open()->root().id).value(0).id), 1);
}

/// What a try on the read-only file has left beside it does not keep the file read-only.
TEST_F(DamageTest, AFileThatGetsItsRightsBackIsWrittenAgain) {
    constexpr uid_t nobody = 65534;
    const QByteArray folder = QFile::encodeName(path(QString()));
    ASSERT_EQ(::chmod(folder.constData(), 0777), 0);
    const auto as = [&](const std::function<bool()> &step) {
        Child owner([&](int) {
            becomeNobody();
            return step() ? 0 : 1;
        });
        return owner.wait() == 0;
    };
    const auto insert = [&] {
        const auto store = open();
        store->insert(store->root().id, withSubject("x"));
    };
    ASSERT_TRUE(as([&] { return failureOf(insert) == 0; }));
    const QByteArray file = QFile::encodeName(path());
    if (::geteuid() == 0) {
        ASSERT_EQ(::chown(file.constData(), nobody, nobody), 0);
    }
    const std::pair<mode_t, const char *> cases[] = {{0400, "u+w"}, {0000, "may not be read"}};
    for (const auto &[mode, advice] : cases) {
        SCOPED_TRACE(advice);
        ASSERT_EQ(::chmod(file.constData(), mode), 0);
        EXPECT_TRUE(as([&] {
            const auto failure = Attempt(insert);
            return failure && failure->number() == failures::accessDenied && failure->description().contains(advice);
        }));
        ASSERT_EQ(::chmod(file.constData(), 0600), 0);
        EXPECT_TRUE(as([&] { return failureOf(insert) == 0; }));
    }
}

TEST_F(DamageTest, AStoreThatStaysLockedSaysSoAndIsWrittenWhenItIsFreeAgain) {
    const auto store = std::make_unique<Store>(path(), StoreOptions{.wait = std::chrono::milliseconds(30)});
    const FolderId root = store->root().id;
    const ItemRecord item = store->insert(root, withSubject("x"));
    Connection other(path(), std::chrono::milliseconds(30));
    {
        const Transaction held(other);
        expectFailure([&] { store->save(item); }, failures::unspecified, {path(), "locked by another program"});
        EXPECT_EQ(store->item(item.id), item);
    }
    EXPECT_EQ(store->save(item).version, 2);
}

} // namespace desk
