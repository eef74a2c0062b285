// The commands of orvelle-desk, without a running desk.

#include "program.h"
#include "support/plaintool.h"

#include <QCryptographicHash>

#include <sys/resource.h>

namespace {

using CommandsTest = DeskProgramTest;

TEST_F(CommandsTest, WrongUsageIsTwo) {
    for (const QString line : {"nonsense",
                               "folder",
                               "folder remove x",
                               "folder add",
                               "folder add a b",
                               "list",
                               "list a b",
                               "show",
                               "deliver",
                               "mailbox",
                               "mailbox add",
                               "mailbox list x",
                               "folders extra",
                               "list a --open b",
                               "--unknown",
                               "list a --columns",
                               "rules x",
                               "rules --most-an-hour",
                               "rules --most-an-hour -1",
                               "rules --most-an-hour ten",
                               "rules --sort-automatic maybe",
                               "rules --own-addresses nobody"}) {
        const Outcome outcome = run(line.split(u' '));
        EXPECT_EQ(outcome.status, 2) << line.toStdString();
        EXPECT_TRUE(outcome.out.isEmpty());
        EXPECT_TRUE(outcome.error.contains("--help")) << outcome.error.toStdString();
    }
    EXPECT_FALSE(QDir(profile()).exists());
    const Outcome help = run({"deliver", "--help"});
    EXPECT_EQ(help.status, 0);
    for (const char *word :
         {"deliver", "folder add", "folders", "list", "show", "mailbox add", "--profile", "--public", "--open"})
        EXPECT_TRUE(help.out.contains(word)) << word;
}

TEST_F(CommandsTest, WhatCannotBeDoneIsOne) {
    written("blocked", "a file, no folder");
    const QList<QStringList> cases{{"list", "\\\\Nowhere"},
                                   {"list", inboxPath + "\\Missing"},
                                   {"show", "0123"},
                                   {"show", QString(48, u'0')},
                                   {"deliver", file("missing.eml")},
                                   {"folder", "add", "\\\\Nowhere\\New"},
                                   {"deliver", "--folder", "\\\\Nowhere", file("blocked")},
                                   {"folders", "--profile", file("blocked/below")}};
    for (const QStringList &arguments : cases) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.status, 1) << arguments.join(u' ').toStdString();
        EXPECT_FALSE(outcome.error.isEmpty());
    }
}

TEST_F(CommandsTest, FoldersAreMadeWithWhatIsMissingAbove) {
    const QString path = "\\\\Public Folders\\Support\\First line";
    EXPECT_EQ(json({"folder", "add", path, "--home-page", "file:/x/Page.htm"}).object()["path"].toString(), path);
    EXPECT_EQ(run({"folder", "add", "/Public Folders/Support/First line/Deep"}).status, 0);
    QStringList paths;
    const QJsonArray folders = json({"folders"}).array();
    for (const QJsonValue folder : folders) {
        paths.append(folder["path"].toString());
        if (paths.last() == path) {
            EXPECT_EQ(folder["homePage"].toString(), "file:/x/Page.htm");
            EXPECT_TRUE(folder["homePageOn"].toBool());
            EXPECT_EQ(folder["entryId"].toString().size(), 48);
        }
    }
    for (const QString &expected : {QStringLiteral("\\\\Mailbox - Alma Tester"), inboxPath, path, path + "\\Deep"})
        EXPECT_TRUE(paths.contains(expected)) << expected.toStdString();
    EXPECT_EQ(paths.removeDuplicates(), 0);
}

TEST_F(CommandsTest, DeliveredMailIsListedAndShown) {
    const QByteArray data = "a,b\r\n1,2\r\n";
    const QString mail = written("one.eml", "From: Bo <bo@example.org>\r\nSubject: =?utf-8?q?Dr=C3=BCcker?=\r\n"
                                            "Content-Type: multipart/mixed; boundary=x\r\n\r\n"
                                            "--x\r\n\r\nText\x1b[31m\r\n"
                                            "--x\r\nContent-Type: text/csv\r\nContent-Transfer-Encoding: base64\r\n"
                                            "Content-Disposition: attachment; filename=\"list.csv\"\r\n\r\n" +
                                                data.toBase64() + "\r\n--x--\r\n");
    written("many/b.eml", "Subject: second\r\n\r\nx\r\n");
    written("many/a.eml", "Subject: first\r\n\r\nx\r\n");
    const QString box = written("box", "From x Mon Nov 16 09:00:00 2026\nSubject: boxed\n\nx\n");
    const QString junk = written("junk.eml", QByteArray("\0\xff\xfe no message", 14));
    const QJsonObject report = json({"deliver", mail, file("many"), box, junk}).object();
    EXPECT_EQ(report["folder"].toString(), inboxPath);
    EXPECT_EQ(report["delivered"].toArray().size(), 5);
    EXPECT_EQ(count(inboxPath), 5);

    const QJsonArray list = json({"list", inboxPath}).array();
    QStringList subjects;
    for (const QJsonValue item : list)
        subjects.append(item["subject"].toString());
    EXPECT_EQ(subjects.mid(0, 4), (QStringList{"Drücker", "first", "second", "boxed"}));
    const QJsonObject first = list.first().toObject();
    EXPECT_EQ(first["senderName"].toString(), "Bo");
    EXPECT_EQ(first["attachments"].toInt(), 1);
    EXPECT_TRUE(first["unread"].toBool());
    EXPECT_EQ(first["messageClass"].toString(), "IPM.Note");

    const QJsonObject shown = json({"show", first["entryId"].toString()}).object();
    EXPECT_EQ(shown["folder"].toString(), inboxPath);
    EXPECT_EQ(shown["fields"]["Subject"].toString(), "Drücker");
    EXPECT_TRUE(shown["body"].toString().contains("Text"));
    const QJsonObject attachment = shown["attachments"][0].toObject();
    EXPECT_EQ(attachment["displayName"].toString(), "list.csv");
    EXPECT_EQ(attachment["size"].toInt(), data.size());
    EXPECT_EQ(attachment["sha256"].toString().toLatin1(),
              QCryptographicHash::hash(data, QCryptographicHash::Sha256).toHex());

    const Outcome text = run({"show", first["entryId"].toString()});
    EXPECT_TRUE(text.out.contains("Drücker"));
    EXPECT_FALSE(text.out.contains('\x1b')) << "a mail does not command the terminal";
    const Outcome table = run({"list", inboxPath, "--columns", "Subject,Sender Name,Attachments"});
    EXPECT_TRUE(table.out.split('\n').value(1).startsWith("Drücker")) << table.out.toStdString();
    EXPECT_TRUE(run({"folders", "--mail"}).out.contains("second"));
}

/// Names from before UTF-8.
TEST_F(CommandsTest, FilesWhoseNamesAreNoTextAreDelivered) {
    ASSERT_TRUE(QDir().mkpath(file("many")));
    const QByteArray named = file("many").toUtf8() + "/Gr\374\337e.eml";
    std::FILE *made = std::fopen(named.constData(), "wb");
    ASSERT_NE(made, nullptr);
    std::fputs("Subject: named\r\n\r\nx\r\n", made);
    std::fclose(made);
    EXPECT_EQ(run({"deliver", file("many")}).status, 0);
    EXPECT_EQ(count(inboxPath), 1);
    // The shell hands the bytes over as they are.
    QProcess shell;
    shell.start("/bin/sh",
                {"-c", "exec \"$0\" --profile \"$1\" deliver \"$2\"/Gr*.eml", DESK_PROGRAM, profile(), file("many")});
    ASSERT_TRUE(shell.waitForFinished());
    EXPECT_EQ(shell.exitCode(), 0) << shell.readAllStandardError().toStdString();
    EXPECT_EQ(count(inboxPath), 2);
    // The temporary folder can't remove what it can't name.
    EXPECT_EQ(std::remove(named.constData()), 0);
}

TEST_F(CommandsTest, ADeletedItemGoesToTheDeletedItemsAndFromThereForEver) {
    const QString file = written("mail.eml", "From: cal@example.org\r\nSubject: Away\r\n\r\nText\r\n");
    ASSERT_EQ(run({"deliver", file}).status, 0);
    const QString deleted = QStringLiteral("\\\\Mailbox - Alma Tester\\Deleted Items");
    for (const QString &folder : {inboxPath, deleted}) {
        const QJsonArray items = json({"list", folder}).array();
        ASSERT_EQ(items.size(), 1);
        EXPECT_EQ(json({"delete", items[0]["entryId"].toString()}).object()["subject"].toString(), "Away");
        EXPECT_EQ(count(folder), 0);
    }
    EXPECT_EQ(run({"delete", QString(48, u'A')}).status, 1);
}

TEST_F(CommandsTest, WhatIsMissingOrCantBeStoredIsNamedAndAFullDiskStops) {
    ASSERT_EQ(run({"folders"}).status, 0);
    plainTool(profile() + "/mailbox.store",
              {"CREATE TRIGGER refuse BEFORE INSERT ON items WHEN NEW.sender_name = 'Bad' "
               "BEGIN SELECT RAISE(ABORT, 'not this one'); END"});
    const auto boxed = [](const QByteArray &sender, qsizetype size = 1) {
        return "From x Mon Nov 16 09:00:00 2026\nFrom: " + sender + " <x@example.org>\n\n" + QByteArray(size, 'x') +
               "\n\n";
    };
    const QString box = written("box", boxed("Good") + boxed("Bad") + boxed("Good"));
    const Outcome refused = run({"deliver", file("missing.eml"), box, "--json"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(refused.error.contains("box#2: ")) << refused.error.toStdString();
    EXPECT_FALSE(refused.error.contains("stopped"));
    EXPECT_EQ(refused.json()["delivered"].toArray().size(), 2);
    EXPECT_EQ(refused.json()["errors"].toArray().size(), 2);
    EXPECT_EQ(count(inboxPath), 2);

    written("box", boxed("Good") + boxed("Good") + boxed("Good", 4'000'000) + boxed("Good"));
    QProcess full;
    full.setChildProcessModifier([] {
        const rlimit limit{2'000'000, 2'000'000};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    });
    full.start(QStringLiteral(DESK_PROGRAM), withProfile({"deliver", box, box}));
    ASSERT_TRUE(full.waitForFinished());
    EXPECT_EQ(full.exitCode(), 1);
    const QByteArray told = full.readAllStandardError();
    for (const char *part : {"box#3: ", "disk is full", "stopped", "2 delivered", "box#2."})
        EXPECT_TRUE(told.contains(part)) << part << ": " << told.toStdString();
    EXPECT_FALSE(told.contains("box#4"));
    EXPECT_EQ(count(inboxPath), 4);
}

TEST_F(CommandsTest, ProfilesShareAPublicStore) {
    const QString shared = file("shared.store");
    EXPECT_EQ(run({"folder", "add", "\\\\Public Folders\\Ours", "--public", shared}).status, 0);
    EXPECT_TRUE(run({"folders"}).out.contains("Ours")) << "the profile remembers its public store";
    const Outcome other = run({"folders", "--profile", file("other"), "--user", "Bo Other", "--public", shared});
    EXPECT_TRUE(other.out.contains("\\\\Mailbox - Bo Other"));
    EXPECT_TRUE(other.out.contains("\\\\Public Folders\\Ours"));
}

TEST_F(CommandsTest, TheRulesForAutomaticMailAreSeenAndChanged) {
    const QJsonObject usual{{"mostAnHour", 10}, {"sortAutomatic", false}, {"ownAddresses", QJsonArray()}};
    EXPECT_EQ(json({"rules"}).object(), usual);
    const QStringList change{"rules", "--sort-automatic", "yes", "--own-addresses", "a@example.org, b@example.org"};
    EXPECT_EQ(run(change).status, 0);
    EXPECT_EQ(run({"rules", "--most-an-hour", "0"}).status, 0);
    const QJsonObject changed{
        {"mostAnHour", 0}, {"sortAutomatic", true}, {"ownAddresses", QJsonArray{"a@example.org", "b@example.org"}}};
    EXPECT_EQ(json({"rules"}).object(), changed);
    EXPECT_TRUE(run({"rules"}).out.contains("any number"));

    const QString person = written("person.eml", "From: cal@example.org\r\nSubject: Hello\r\n\r\nText");
    const QString machine = written("machine.eml", "From: B@example.org\r\nSubject: Back\r\n\r\nText");
    const QString own = "\\\\Mailbox - Alma Tester\\Automatic mail\\Own mail";
    const QJsonObject report = json({"deliver", person, machine}).object();
    EXPECT_EQ(report["folder"].toString(), inboxPath);
    EXPECT_EQ(report["delivered"][1]["folder"].toString(), own);
    EXPECT_EQ(report["delivered"][1]["automatic"].toString(), "own mail");
    EXPECT_TRUE(report["delivered"][0]["folder"].isUndefined());
    EXPECT_EQ(run({"deliver", person, machine}).out.trimmed(),
              "Delivered to " + inboxPath.toUtf8() + ": 1\nDelivered to " + own.toUtf8() + ": 1");
    EXPECT_EQ(count(inboxPath), 2);
    EXPECT_EQ(run({"list", own, "--columns", "Subject,Automatic mail"}).out.count("own mail"), 2);

    // What a hand wrote into the file and nobody can read is as if it were not there.
    written("profile/desk.ini",
            "[automatic]\nmostAnHour=lots\nsort=perhaps\nownAddresses=c@example.org, d@example.org\n");
    EXPECT_EQ(json({"rules"}).object()["mostAnHour"].toInt(), 10);
    EXPECT_EQ(json({"rules"}).object()["ownAddresses"].toArray().size(), 2);
}

} // namespace
