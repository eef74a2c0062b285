// Other people's mailboxes in a profile, and several first starts at once.

#include "program.h"

#include <sys/stat.h>

namespace {

class MailboxesTest : public DeskProgramTest {
  protected:
    /// Another person's profile; gives the file of the mailbox.
    [[nodiscard]] QString personWith(const QString &name, const QString &folder) const {
        EXPECT_EQ(run({"folders", "--profile", file(folder), "--user", name}).status, 0);
        return file(folder + "/mailbox.store");
    }
    [[nodiscard]] QStringList topFolders() const {
        QStringList names;
        for (const QJsonValue folder : json({"folders"}).array()) {
            const QString path = folder["path"].toString();
            if (path.lastIndexOf(u'\\') == 1)
                names += path.mid(2);
        }
        return names;
    }
    [[nodiscard]] QStringList listed() const {
        QStringList files;
        for (const QJsonValue mailbox : json({"mailbox", "list"}).array())
            files += mailbox["file"].toString();
        return files;
    }
    /// Runs a command as somebody whom permissions bind, which they don't the superuser.
    [[nodiscard]] QByteArray errorOf(const QStringList &arguments) const {
        constexpr uid_t nobody = 65534;
        QProcess process;
        if (::geteuid() == 0)
            process.setChildProcessModifier([] { static_cast<void>(::setgid(nobody) == 0 && ::setuid(nobody) == 0); });
        process.start(QStringLiteral(DESK_PROGRAM), arguments);
        EXPECT_TRUE(process.waitForFinished()) << process.errorString().toStdString();
        EXPECT_EQ(process.exitCode(), 1);
        return process.readAllStandardError();
    }
    static void allow(const QString &path, mode_t mode) {
        ASSERT_EQ(::chmod(path.toUtf8().constData(), mode), 0) << path.toStdString();
    }
};

const QStringList ownFolders{"Mailbox - Alma Tester", "Public Folders"};

TEST_F(MailboxesTest, AnAddedMailboxIsOneOfTheTopFolders) {
    const QString boris = personWith("Boris Helper", "boris");
    EXPECT_EQ(json({"mailbox", "add", boris}).object()["name"], "Mailbox - Boris Helper");
    // Again, and by the profile's folder: it is the same one.
    EXPECT_EQ(run({"mailbox", "add", file("boris")}).status, 0);
    EXPECT_EQ(listed(), QStringList{boris});
    EXPECT_EQ(topFolders(), ownFolders + QStringList{"Mailbox - Boris Helper"});
    const QString mail = written("one.eml", "Subject: for Boris\r\n\r\nx\r\n");
    EXPECT_EQ(run({"deliver", "--folder", "\\\\Mailbox - Boris Helper\\Inbox", mail}).status, 0);
    EXPECT_EQ(run({"list", "\\\\Mailbox - Boris Helper\\Inbox", "--count", "--profile", file("boris"), "--user",
                   "Boris Helper"})
                  .out.trimmed(),
              "1");

    // One that is away keeps nobody from working, and comes back by itself.
    ASSERT_TRUE(QFile::rename(file("boris"), file("away")));
    EXPECT_EQ(topFolders(), ownFolders);
    EXPECT_TRUE(json({"mailbox", "list"}).array().at(0)["problem"].toString().contains(boris));
    EXPECT_TRUE(run({"list", "\\\\Mailbox - Boris Helper\\Inbox"}).error.contains(boris.toUtf8()));
    ASSERT_TRUE(QFile::rename(file("away"), file("boris")));
    EXPECT_EQ(topFolders().size(), 3);

    EXPECT_EQ(run({"mailbox", "remove", "Nobody"}).status, 1);
    EXPECT_EQ(run({"mailbox", "remove", "Boris Helper"}).status, 0);
    EXPECT_EQ(listed(), QStringList());
    EXPECT_EQ(topFolders(), ownFolders);
    EXPECT_TRUE(QFile::exists(boris));
}

TEST_F(MailboxesTest, WhatIsNoOtherMailboxIsRefused) {
    const QString boris = personWith("Boris Helper", "boris");
    const QString namesake = personWith("Alma Tester", "namesake");
    EXPECT_EQ(run({"folders"}).status, 0);
    ASSERT_TRUE(QFile::copy(profile() + "/mailbox.store", file("copy.store")));
    const struct {
        QString file;
        QByteArray reason;
    } cases[] = {{file("missing.store"), "There is no mailbox"},
                 {file("boris/public.store"), "no mailbox"},
                 {written("empty.store", ""), "no mailbox"},
                 {written("text.store", QByteArray("Dear all, ").repeated(500)), "damaged or is no store"},
                 {m_folder.path(), "no mailbox"},
                 {"/dev/null", "no mailbox"},
                 {profile() + "/mailbox.store", "open already"},
                 {file("copy.store"), "open already"},
                 {namesake, "open already"}};
    for (const auto &each : cases) {
        const Outcome outcome = run({"mailbox", "add", each.file});
        EXPECT_EQ(outcome.status, 1) << each.file.toStdString();
        EXPECT_TRUE(outcome.error.contains(each.reason)) << outcome.error.toStdString();
    }
    EXPECT_EQ(listed(), QStringList());
    // A garbled list is nobody's to replace.
    written("profile/mailboxes.txt", "no path\n");
    EXPECT_EQ(run({"mailbox", "add", boris}).status, 1);
    EXPECT_EQ(contentOf(profile() + "/mailboxes.txt"), "no path\n");
    EXPECT_EQ(topFolders(), ownFolders);
}

TEST_F(MailboxesTest, OneThatMayOnlyBeReadSaysSo) {
    const QString boris = personWith("Boris Helper", "boris");
    allow(m_folder.path(), 0777);
    const struct {
        mode_t folder, mailbox;
        QByteArray reason;
    } cases[] = {{0555, 0444, "may only be read"},
                 {0555, 0666, "may only be read"},
                 {0777, 0444, "may only be read"},
                 {0777, 0000, "may not read"}};
    for (const auto &each : cases) {
        allow(boris, each.mailbox);
        allow(file("boris"), each.folder);
        const QByteArray error = errorOf({"--profile", file("nobody"), "--user", "No Body", "mailbox", "add", boris});
        EXPECT_TRUE(error.contains(each.reason)) << error.toStdString();
        allow(file("boris"), 0777);
    }
    EXPECT_FALSE(QFile::exists(file("nobody/mailboxes.txt")));
}

TEST_F(MailboxesTest, ARunningDeskOpensItAtOnceAndFindsPeopleByName) {
    startDesk();
    auto client = connect();
    const auto mapi = client->root()->call("GetNamespace", {"MAPI"}).object();
    const auto inboxOf = [&](const QString &name) -> QString {
        const Value folder = mapi->call("GetSharedDefaultFolder", {mapi->call("CreateRecipient", {name}), 6});
        return toText(folder.object()->get("FolderPath"));
    };
    const auto failureFor = [&](const QString &name) { return failureOf([&] { static_cast<void>(inboxOf(name)); }); };
    EXPECT_EQ(failureFor("Boris Helper"), failures::notFound);
    EXPECT_EQ(run({"mailbox", "add", personWith("Boris Helper", "boris")}).status, 0);
    EXPECT_TRUE(eventually([&] { return failureFor("Boris Helper") == 0; }));
    EXPECT_EQ(run({"mailbox", "add", personWith("Cleo Helper", "cleo")}).status, 0);
    EXPECT_TRUE(eventually([&] { return failureFor("Cleo") == 0; }));
    constexpr qint32 ambiguous = failures::automation(0x80040700);
    const struct {
        QString name;
        QString path;
        qint32 failure = 0;
    } cases[] = {{"boris helper", "\\\\Mailbox - Boris Helper\\Inbox"},
                 {"Boris", "\\\\Mailbox - Boris Helper\\Inbox"},
                 {"Helper Cleo", "\\\\Mailbox - Cleo Helper\\Inbox"},
                 {"Alma Tester", inboxPath},
                 {"alma.tester@localhost", inboxPath},
                 {"Helper", {}, ambiguous},
                 {"Bor", {}, failures::notFound},
                 {"Boris Tester", {}, failures::notFound},
                 {"", {}, failures::notFound}};
    for (const auto &each : cases) {
        EXPECT_EQ(failureFor(each.name), each.failure) << each.name.toStdString();
        if (each.failure == 0) {
            EXPECT_EQ(inboxOf(each.name), each.path) << each.name.toStdString();
        }
    }
    client.reset();
    EXPECT_EQ(endDesk(), 0);
}

/// Everything that a first start makes is made while others look for it: the profile, its mailbox, the public file.
TEST_F(MailboxesTest, SeveralFirstStartsAtOnceAllWork) {
    constexpr int rounds = 8;
    constexpr int desks = 3;
    constexpr int commands = 3;
    for (int round = 0; round < rounds; ++round) {
        SCOPED_TRACE(round);
        const QString place = file(QStringLiteral("round %1/").arg(round));
        std::vector<std::unique_ptr<QProcess>> processes;
        const auto start = [&](const QString &folder, const QStringList &arguments) {
            processes.push_back(std::make_unique<QProcess>());
            processes.back()->start(
                QStringLiteral(DESK_PROGRAM),
                QStringList{"--profile", place + folder, "--user", "Alma Tester", "--public", place + "shared.store"} +
                    arguments);
        };
        // All on one new public file: several desks on one profile, one each on others, and commands.
        ASSERT_TRUE(QDir().mkpath(place));
        for (int i = 0; i < desks; ++i) {
            start("profile", {});
            start(QStringLiteral("profile %1").arg(i), {});
        }
        for (int i = 0; i < commands; ++i)
            start("profile", {"folders"});
        int ready = 0;
        int refused = 0;
        for (const auto &process : processes) {
            ASSERT_TRUE(process->waitForReadyRead(30'000) || process->state() == QProcess::NotRunning);
            const bool isRunning = process->readAllStandardOutput().startsWith("ready ");
            ready += isRunning ? 1 : 0;
            if (!isRunning) {
                process->waitForFinished();
                const QByteArray error = process->readAllStandardError();
                refused += process->exitCode() == 1 && error.contains("already running") ? 1 : 0;
                EXPECT_TRUE(error.isEmpty() || error.contains("already running")) << error.toStdString();
            }
        }
        EXPECT_EQ(ready, 1 + desks);
        EXPECT_EQ(refused, desks - 1);
        for (const auto &process : processes) {
            process->terminate();
            EXPECT_TRUE(process->state() == QProcess::NotRunning || process->waitForFinished());
        }
        const Outcome after = run({"folders", "--profile", place + "profile", "--public", place + "shared.store"});
        EXPECT_EQ(after.status, 0) << after.error.toStdString();
        EXPECT_EQ(after.out.count("\\Inbox\t"), 1);
    }
}

} // namespace
