// A profile that is found as the outside world leaves it: rights that are too wide, settings that can't be read.

#include "program.h"

#include <sys/stat.h>
#include <unistd.h>

namespace {

class ProfileTest : public DeskProgramTest {
  protected:
    static unsigned modeOf(const QString &path) {
        struct stat status {};
        return ::lstat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_mode & 07777U : 0U;
    }
    static unsigned groupOf(const QString &path) {
        struct stat status {};
        return ::lstat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_gid : 0U;
    }
    static void setMode(const QString &path, unsigned mode) {
        ASSERT_EQ(::chmod(QFile::encodeName(path).constData(), mode), 0) << path.toStdString();
    }
    [[nodiscard]] QString inProfile(const QString &name) const { return profile() + '/' + name; }
    /// As `run`, but the profile itself has to say whose it is.
    [[nodiscard]] Outcome runUnnamed(const QStringList &arguments) const {
        QProcess process;
        process.start(QStringLiteral(DESK_PROGRAM), QStringList{"--profile", profile()} + arguments);
        EXPECT_TRUE(process.waitForFinished(30'000));
        return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
    }
};

TEST_F(ProfileTest, RightsThatAreTooWideAreTakenAwayOnceAndSaid) {
    const Outcome first = run({"folders"});
    EXPECT_TRUE(first.error.isEmpty()) << "a new profile needs no word: " << first.error.toStdString();
    const QString shared = inProfile("public.store");
    written("profile/outgoing/a.eml", "x");
    written("profile/registry.ini", "orvelle registry 1\nend 0\n");
    written("profile/notes.txt", "not the desk's");
    written("profile/forms/Mail.form", "a form");
    written("profile/mailboxes.txt.lock", "");
    const QStringList own{"mailbox.store",  "desk.ini",        "registry.ini",
                          "outgoing/a.eml", "forms/Mail.form", "mailboxes.txt.lock"};
    for (const QString &name : own)
        setMode(inProfile(name), 0664);
    setMode(inProfile("notes.txt"), 0644);
    setMode(inProfile("outgoing"), 0775);
    setMode(inProfile("forms"), 0775);
    setMode(shared, 0666);
    setMode(profile(), 02775);

    const Outcome narrowed = run({"folders"});
    EXPECT_EQ(narrowed.status, 0);
    EXPECT_TRUE(narrowed.error.contains("Only you can from here on")) << narrowed.error.toStdString();
    EXPECT_TRUE(narrowed.error.contains(shared.toUtf8()));
    for (const QString &name : own)
        EXPECT_EQ(modeOf(inProfile(name)), 0600U) << name.toStdString();
    EXPECT_EQ(modeOf(inProfile("outgoing")), 0700U);
    EXPECT_EQ(modeOf(inProfile("forms")), 0700U);
    EXPECT_EQ(modeOf(inProfile("notes.txt")), 0644U);
    EXPECT_EQ(modeOf(profile()), 02700U);
    EXPECT_EQ(modeOf(shared), 0660U) << "the group is the administrator's choice";
    EXPECT_TRUE(run({"folders"}).error.isEmpty()) << "said once";
}

TEST_F(ProfileTest, WhatIsSomebodyElsesIsLeftAndSaid) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "only the superuser can give a file away";
    ASSERT_EQ(run({"folders"}).status, 0);
    setMode(profile(), 0755);
    ASSERT_EQ(::chown(QFile::encodeName(profile()).constData(), 65534, 65534), 0);
    const Outcome left = run({"folders"});
    EXPECT_EQ(left.status, 0);
    EXPECT_TRUE(left.error.contains("not yours to change") && left.error.contains("chmod")) << left.error.toStdString();
    EXPECT_EQ(modeOf(profile()), 0755U);
}

/// In a folder that a group may write, the store and every file of the engine beside it are the group's.
TEST_F(ProfileTest, ASharedStoreFollowsTheGroupOfItsFolder) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "only the superuser can name a group at will";
    constexpr gid_t group = 8;
    const QString shared = file("team/public.store");
    ASSERT_TRUE(QDir().mkdir(file("team")));
    ASSERT_EQ(::chown(QFile::encodeName(file("team")).constData(), 0, group), 0);
    setMode(file("team"), 0770);
    startDesk({"--public", shared});
    auto client = connect();
    // A move into the store makes the file of the moves too.
    const auto session = client->root()->call("GetNamespace", {"MAPI"}).object();
    const auto mail = client->root()->call("CreateItem", {0}).object();
    mail->call("Save", {});
    mail->call("Move", {session->call("Folders", {"Public Folders"})});
    for (const char *ending : {"", "-wal", "-shm", "-transfers"}) {
        EXPECT_EQ(modeOf(shared + ending), 0660U) << ending;
        EXPECT_EQ(groupOf(shared + ending), group) << ending;
    }
    EXPECT_EQ(modeOf(inProfile("mailbox.store-wal")), 0600U);
    client.reset();
    EXPECT_EQ(endDesk(), 0);
}

/// An empty store in the place of a lost one would look like the loss of everything.
TEST_F(ProfileTest, AStoreThatIsLostIsNotMadeAnewUnasked) {
    const QString shared = file("share/public.store");
    ASSERT_TRUE(QDir().mkdir(file("share")));
    const struct {
        const char *name;
        QStringList asked;
        QString lost;
        /// Of a profile that an earlier version made, or that has lost its settings too.
        bool remembers;
    } cases[] = {{"mailbox", {}, "mailbox.store", true},
                 {"public folders", {}, "public.store", true},
                 {"on a share", {"--public", shared}, shared, true},
                 {"mailbox, unremembered", {}, "mailbox.store", false},
                 {"public folders, unremembered", {}, "public.store", false}};
    int number = 0;
    for (const auto &each : cases) {
        SCOPED_TRACE(each.name);
        const QString folder = file(QStringLiteral("profile%1").arg(++number));
        const QStringList own{"--profile", folder};
        const QString lost = QDir(folder).filePath(each.lost);
        ASSERT_EQ(run(own + each.asked + QStringList{"folders"}).status, 0);
        if (!each.remembers)
            writtenFile(folder + "/desk.ini", "[General]\nuser=Alma Tester\n");
        const QByteArray settings = contentOf(folder + "/desk.ini");
        ASSERT_TRUE(QFile::rename(lost, lost + ".away"));
        for (const QStringList &command : {QStringList{"folders"}, each.asked + QStringList{"folders"}, QStringList{},
                                           QStringList{"backup", file("backup")}}) {
            const Outcome refused = run(own + command);
            EXPECT_EQ(refused.status, 1) << command.join(u' ').toStdString();
            EXPECT_TRUE(refused.error.contains(lost.toUtf8())) << refused.error.toStdString();
            EXPECT_TRUE(command.contains("backup") || refused.error.contains("--make-missing"));
            EXPECT_FALSE(QFile::exists(lost));
        }
        EXPECT_EQ(contentOf(folder + "/desk.ini"), settings);
        EXPECT_EQ(run(own + QStringList{"folders", "--make-missing"}).status, 0);
        EXPECT_TRUE(QFile::exists(lost));
        ASSERT_TRUE(QFile::remove(lost) && QFile::rename(lost + ".away", lost));
        EXPECT_EQ(run(own + QStringList{"folders"}).status, 0) << "it is back";
        // Another file is another's choice.
        EXPECT_EQ(run(own + QStringList{"folders", "--public", folder + "/other.store"}).status, 0);
    }
}

TEST_F(ProfileTest, ThePersonIsKnownFromTheMailboxWhereTheSettingsNameNobody) {
    ASSERT_EQ(run({"folders"}).status, 0);
    const std::pair<const char *, std::optional<QByteArray>> cases[] = {
        {"missing", std::nullopt},
        {"without the line", QByteArray("[General]\nopen=x\n")},
        {"an empty name", QByteArray("[General]\nuser=\n")},
        {"an empty name in marks", QByteArray("[General]\nuser=\"  \"\n")},
        {"cut in the name", QByteArray("[General]\nmailboxMade=true\nuser=Alma Te")},
        {"cut before it", QByteArray("[General]\nmailboxMade=true\nuse")}};
    for (const auto &[name, content] : cases) {
        SCOPED_TRACE(name);
        ASSERT_TRUE(QFile::remove(inProfile("desk.ini")));
        if (content)
            written("profile/desk.ini", *content);
        const Outcome mended = runUnnamed({"folders"});
        EXPECT_EQ(mended.status, 0);
        EXPECT_TRUE(mended.error.contains("desk.ini")) << mended.error.toStdString();
        EXPECT_TRUE(mended.out.contains("\\\\Mailbox - Alma Tester\\Inbox")) << mended.out.toStdString();
        const Outcome next = runUnnamed({"folders"});
        EXPECT_EQ(next.error, "");
        EXPECT_TRUE(next.out.contains("\\\\Mailbox - Alma Tester\\Inbox"));
    }
    // The name of a mailbox that can't be opened at the moment is not lost.
    const QByteArray whole = contentOf(inProfile("mailbox.store"));
    written("profile/mailbox.store", "");
    ASSERT_TRUE(QFile::remove(inProfile("desk.ini")));
    EXPECT_EQ(runUnnamed({"folders"}).status, 1);
    written("profile/mailbox.store", whole);
    EXPECT_TRUE(runUnnamed({"folders"}).out.contains("Mailbox - Alma Tester"));
    // Whoever says another name means it.
    EXPECT_EQ(runUnnamed({"folders", "--user", "Alma Married"}).error, "");
    EXPECT_TRUE(runUnnamed({"folders"}).out.contains("\\\\Mailbox - Alma Married\\Inbox"));
}

struct Damage {
    const char *name;
    QByteArray content;
    /// What the desk knows afterwards without being told: the public folders' file, or nothing.
    bool knowsPublic;
};

TEST_F(ProfileTest, DamagedSettingsAreKeptAndThePersonStaysWhoTheyAre) {
    const QString shared = file("shared.store");
    ASSERT_EQ(run({"folder", "add", "\\\\Public Folders\\Ours", "--public", shared}).status, 0);
    ASSERT_EQ(run({"rules", "--most-an-hour", "7"}).status, 0);
    const QByteArray good = contentOf(inProfile("desk.ini"));
    const Damage cases[] = {{"garbage", QByteArray("\x7f\x01\0\xff", 4).repeated(50), false},
                            {"a letter", "Dear all,\nuser = me\n", false},
                            {"empty", "", false},
                            {"cut off", good + QByteArray(100, '\0'), true},
                            {"half", QByteArray(60, '\xfe') + "\n" + good, true}};
    int number = 0;
    for (const Damage &each : cases) {
        SCOPED_TRACE(each.name);
        written("profile/desk.ini", each.content);
        if (!each.knowsPublic) {
            const Outcome asked = runUnnamed({"folders"});
            EXPECT_EQ(asked.status, 1) << "other public folders would come up";
            EXPECT_TRUE(asked.error.contains("--public")) << asked.error.toStdString();
            EXPECT_EQ(contentOf(inProfile("desk.ini")), each.content);
        }
        const Outcome mended =
            runUnnamed(each.knowsPublic ? QStringList{"folders"} : QStringList{"folders", "--public", shared});
        EXPECT_EQ(mended.status, 0);
        EXPECT_TRUE(mended.error.contains("damaged")) << mended.error.toStdString();
        EXPECT_EQ(contentOf(inProfile(QStringLiteral("desk.ini.damaged-%1").arg(++number))), each.content);
        const Outcome next = runUnnamed({"folders"});
        EXPECT_TRUE(next.error.isEmpty()) << next.error.toStdString();
        EXPECT_TRUE(next.out.contains("\\\\Mailbox - Alma Tester\\Inbox"));
        EXPECT_TRUE(next.out.contains("Ours"));
        EXPECT_EQ(contentOf(inProfile("desk.ini")).contains("mostAnHour=7"), each.knowsPublic);
    }
}

} // namespace
