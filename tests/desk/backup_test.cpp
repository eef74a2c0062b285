// Backups of a profile: taken while others write, cut off, damaged, put back.

#include "desk/store/store.h"
#include "desk/store/transfer.h"
#include "program.h"
#include "support/child.h"

#include <QRandomGenerator>
#include <QThread>

#include <sys/resource.h>

namespace {

class BackupTest : public DeskProgramTest {
  protected:
    [[nodiscard]] QString mailbox() const { return profile() + "/mailbox.store"; }
    [[nodiscard]] QString publicStore() const { return profile() + "/public.store"; }

    /// Two folders that items go to and fro between.
    void makeStores() const {
        ASSERT_EQ(run({"folders"}).status, 0);
        for (const QString &file : {mailbox(), publicStore()}) {
            desk::Store store(file);
            static_cast<void>(store.addFolder({.parent = store.root().id, .name = "F"}));
        }
    }
    static desk::FolderId folderOf(desk::Store &store) { return store.findFolder(store.root().id, "F")->id; }

    /// Writes without end: each item comes into the mailbox, gets its second part, and is moved to the public folders.
    [[nodiscard]] std::function<int(int)> writer(qsizetype weight = 5000) const {
        return [this, weight](int output) {
            desk::Store from(mailbox());
            desk::Store to(publicStore());
            for (int number = 1;; ++number) {
                desk::ItemRecord item;
                item.messageClass = "IPM.Note";
                item.subject = QString::number(number);
                item = from.insert(folderOf(from), item, {.original = QByteArray(weight, 'x')});
                report(output, '.');
                desk::moveBetween(from, item, to, folderOf(to));
            }
            return 0;
        };
    }
    /// The items of both stores: each number once, none missing up to the newest.
    static int checkedNumbers(const QString &mailboxFile, const QString &publicFile) {
        desk::Store one(mailboxFile, {.create = false});
        desk::Store other(publicFile, {.create = false});
        desk::settleTransfers(one, other);
        QList<int> numbers;
        for (desk::Store *store : {&one, &other})
            for (const auto &item : store->itemsArrivedAfter(folderOf(*store), 0, 1'000'000)) {
                numbers << item.subject.toInt();
                EXPECT_EQ(item.size, store->original(item.id).size());
            }
        std::sort(numbers.begin(), numbers.end());
        for (int i = 0; i < numbers.size(); ++i)
            EXPECT_EQ(numbers[i], i + 1) << "lost or there twice";
        return static_cast<int>(numbers.size());
    }
    /// A profile that the backup was put back into.
    [[nodiscard]] int numbersPutBack(const QString &backup, const QString &into) const {
        const Outcome outcome = run({"restore", backup, "--profile", into});
        EXPECT_EQ(outcome.status, 0) << outcome.error.toStdString();
        return outcome.status == 0 ? checkedNumbers(into + "/mailbox.store", into + "/public.store") : -1;
    }
};

TEST_F(BackupTest, OneThatIsTakenWhileOthersWriteIsOfOneMoment) {
    makeStores();
    Child writing(writer());
    ASSERT_NE(writing.next(), '\0');
    int before = 0;
    for (int round = 0; round < 6; ++round) {
        const QString backup = file(QStringLiteral("backup%1").arg(round));
        const QJsonObject told = json({"backup", backup}).object();
        EXPECT_EQ(told["backup"].toString(), backup);
        const int found = numbersPutBack(backup, file(QStringLiteral("profile%1").arg(round)));
        EXPECT_GE(found, before);
        before = found;
    }
    EXPECT_GT(before, 6) << "nobody wrote meanwhile";
}

TEST_F(BackupTest, OneThatIsCutOffLooksLikeNoneAndIsInNobodysWay) {
    makeStores();
    {
        Child writing(writer(400'000));
        for (int i = 0; i < 30; ++i)
            ASSERT_NE(writing.next(), '\0');
    }
    const QString target = file("backup");
    int cutOff = 0;
    for (int round = 0; round < 20; ++round) {
        QProcess process;
        process.start(QStringLiteral(DESK_PROGRAM), withProfile({"backup", target, "--replace"}));
        ASSERT_TRUE(process.waitForStarted());
        QThread::usleep(QRandomGenerator::global()->bounded(120'000U));
        process.kill();
        process.waitForFinished();
        cutOff += process.exitStatus() == QProcess::CrashExit ? 1 : 0;
        if (QFile::exists(target)) {
            EXPECT_GE(numbersPutBack(target, file(QStringLiteral("p%1").arg(round))), 29);
        } else {
            EXPECT_EQ(run({"restore", target}).status, 1);
        }
    }
    EXPECT_GT(cutOff, 5);
    EXPECT_EQ(run({"backup", target, "--replace"}).status, 0);
    EXPECT_FALSE(QFile::exists(target + ".unfinished"));
    EXPECT_GE(numbersPutBack(target, file("last")), 29);
}

TEST_F(BackupTest, AFullDiskLeavesTheOldOneAndNothingElse) {
    makeStores();
    const QString target = file("backup");
    ASSERT_EQ(run({"backup", target}).status, 0);
    const QByteArray sums = contentOf(target + "/SHA256SUMS");
    {
        Child writing(writer(400'000));
        for (int i = 0; i < 10; ++i)
            ASSERT_NE(writing.next(), '\0');
    }
    QProcess full;
    full.setChildProcessModifier([] {
        const rlimit limit{1'000'000, 1'000'000};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    });
    full.start(QStringLiteral(DESK_PROGRAM), withProfile({"backup", target, "--replace"}));
    ASSERT_TRUE(full.waitForFinished(30'000));
    EXPECT_EQ(full.exitCode(), 1);
    EXPECT_TRUE(full.readAllStandardError().contains("room"));
    EXPECT_EQ(contentOf(target + "/SHA256SUMS"), sums);
    EXPECT_FALSE(QFile::exists(target + ".unfinished"));
}

TEST_F(BackupTest, NothingIsWrittenOverUnasked) {
    makeStores();
    const QString target = file("backup");
    ASSERT_TRUE(QDir().mkdir(target));
    EXPECT_EQ(run({"backup", target}).status, 0) << "an empty folder is a place for one";
    EXPECT_EQ(run({"backup", target}).status, 1);
    EXPECT_EQ(run({"backup", target, "--replace"}).status, 0);
    written("other/letter.txt", "Dear all");
    EXPECT_EQ(run({"backup", file("other"), "--replace"}).status, 1);
    EXPECT_EQ(contentOf(file("other/letter.txt")), "Dear all");
    const Outcome none = run({"backup", file("b2"), "--profile", file("nobody")});
    EXPECT_EQ(none.status, 1);
    EXPECT_FALSE(QFile::exists(file("nobody"))) << "no empty profile is made and backed up";
}

TEST_F(BackupTest, ADamagedOneIsRefusedAndChangesNothing) {
    makeStores();
    const QString target = file("backup");
    const auto spoil = [&](const QString &name, const std::function<void(QByteArray &)> &how) {
        EXPECT_EQ(run({"backup", target, "--replace"}).status, 0);
        QByteArray bytes = contentOf(target + '/' + name);
        how(bytes);
        writtenFile(target + '/' + name, bytes);
    };
    const std::pair<const char *, std::function<void()>> cases[] = {
        {"a bit", [&] { spoil("mailbox.store", [](QByteArray &b) { b[50'000] = static_cast<char>(b[50'000] ^ 1); }); }},
        {"cut", [&] { spoil("public.store", [](QByteArray &b) { b.chop(4096); }); }},
        {"empty", [&] { spoil("mailbox.store", [](QByteArray &b) { b.clear(); }); }},
        {"settings", [&] { spoil("desk.ini", [](QByteArray &b) { b += "public=/tmp/x\n"; }); }},
        {"sums cut", [&] { spoil("SHA256SUMS", [](QByteArray &b) { b.chop(8); }); }},
        {"a file outside",
         [&] { spoil("SHA256SUMS", [](QByteArray &b) { b.replace("  desk.ini", "  ../desk.ini"); }); }},
        {"a store missing", [&] {
             spoil("desk.ini", [](QByteArray &) {});
             QFile::remove(target + "/public.store");
         }}};
    for (const auto &[name, make] : cases) {
        SCOPED_TRACE(name);
        make();
        const QByteArray mailboxBefore = contentOf(mailbox());
        const Outcome refused = run({"restore", target});
        EXPECT_EQ(refused.status, 1);
        EXPECT_FALSE(refused.error.isEmpty());
        EXPECT_EQ(contentOf(mailbox()), mailboxBefore);
        EXPECT_TRUE(QDir(profile()).entryList({"*restore*", "*unfinished*"}).isEmpty());
    }
}

TEST_F(BackupTest, WhatIsLeftOfAStoreIsNotBackedUpOverTheGoodOne) {
    makeStores();
    const QString target = file("backup");
    ASSERT_EQ(run({"backup", target}).status, 0);
    const QByteArray sums = contentOf(target + "/SHA256SUMS");
    const QByteArray good = contentOf(mailbox());
    const struct {
        const char *name;
        QByteArray content;
        QByteArray reason;
    } cases[] = {{"empty", "", "it is empty"},
                 {"a few bytes", good.left(100), "it is too short"},
                 {"cut", good.left(5000), "damaged"},
                 {"text", QByteArray("Dear all, ").repeated(500), "damaged"}};
    for (const QString &store : {mailbox(), publicStore()})
        for (const auto &each : cases) {
            SCOPED_TRACE(each.name + (' ' + store.toStdString()));
            const QByteArray whole = contentOf(store);
            writtenFile(store, each.content);
            const Outcome refused = run({"backup", target, "--replace"});
            EXPECT_EQ(refused.status, 1);
            EXPECT_TRUE(refused.error.contains(each.reason)) << refused.error.toStdString();
            EXPECT_EQ(contentOf(target + "/SHA256SUMS"), sums);
            EXPECT_EQ(contentOf(store), each.content);
            writtenFile(store, whole);
        }
    EXPECT_EQ(run({"backup", target, "--replace"}).status, 0);
}

TEST_F(BackupTest, ItIsPutBackWhenNoDeskRunsAndWhatWasThereIsKept) {
    makeStores();
    const QString shared = file("team/shared.store");
    ASSERT_TRUE(QDir().mkdir(file("team")));
    ASSERT_EQ(run({"folder", "add", "\\\\Public Folders\\Before", "--public", shared}).status, 0);
    const QString target = file("backup");
    ASSERT_EQ(run({"backup", target}).status, 0);
    ASSERT_EQ(run({"folder", "add", "\\\\Public Folders\\After"}).status, 0);
    ASSERT_EQ(run({"folder", "add", "\\\\Mailbox - Alma Tester\\After"}).status, 0);
    startDesk();
    const Outcome refused = run({"restore", target});
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(refused.error.contains("open in another program")) << refused.error.toStdString();
    EXPECT_EQ(endDesk(), 0);

    EXPECT_EQ(run({"restore", target, "--without-public"}).status, 0);
    QByteArray folders = run({"folders"}).out;
    EXPECT_TRUE(folders.contains("Public Folders\\After"));
    EXPECT_FALSE(folders.contains("Tester\\After"));
    EXPECT_EQ(run({"restore", target}).status, 0);
    folders = run({"folders"}).out;
    EXPECT_TRUE(folders.contains("Public Folders\\Before"));
    EXPECT_FALSE(folders.contains("Public Folders\\After"));
    desk::Store kept(shared + ".before-restore-2", {.create = false});
    EXPECT_TRUE(kept.findFolder(kept.root().id, "After"));

    // What is left of a store that was lost goes out of the way, its log too.
    written("profile/mailbox.store", "");
    written("profile/mailbox.store-wal", "the last changes");
    EXPECT_EQ(run({"restore", target}).status, 0);
    EXPECT_EQ(run({"folders"}).status, 0);
    EXPECT_EQ(contentOf(profile() + "/mailbox.store.before-restore-3-wal"), "the last changes");
}

/// Between two files of a restore nobody works on a mixture.
TEST_F(BackupTest, ARestoreThatIsCutOffIsSaidAndEndedByTheNext) {
    makeStores();
    const QString target = file("backup");
    ASSERT_EQ(run({"backup", target}).status, 0);
    int marked = 0;
    for (int round = 0; round < 25; ++round) {
        QProcess process;
        process.start(QStringLiteral(DESK_PROGRAM), withProfile({"restore", target}));
        ASSERT_TRUE(process.waitForStarted());
        QThread::usleep(QRandomGenerator::global()->bounded(60'000U));
        process.kill();
        process.waitForFinished();
        const Outcome next = run({"folders"});
        if (QFile::exists(profile() + "/restore.unfinished")) {
            ++marked;
            EXPECT_EQ(next.status, 1);
            EXPECT_TRUE(next.error.contains("restore again")) << next.error.toStdString();
            ASSERT_EQ(run({"restore", target}).status, 0);
        }
        EXPECT_EQ(run({"folders"}).status, 0);
    }
    std::printf("%d of 25 kills fell between the files\n", marked);
}

} // namespace
