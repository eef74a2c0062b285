// The command that lists and finishes what killed programs left behind, as people use it.

#include "whole/processes.h"

#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>

namespace whole {
namespace {

const QByteArray mail = "From: Cal Caller <cal@example.org>\r\nSubject: The printer is jammed\r\n\r\nNoise.\r\n";

class Intake : public Helpdesk {
  protected:
    struct Result {
        int status;
        QString output;
        QString errors;
    };
    Result intake(const QStringList &options) {
        const auto started = process("ORVELLESETTINGS.exe", QStringList{"intake"} + options);
        started->start();
        EXPECT_TRUE(started->waitForFinished());
        return {started->exitCode(), QString::fromUtf8(started->readAllStandardOutput()),
                QString::fromUtf8(started->readAllStandardError())};
    }
    bool watched() { return list(inbox).size() == 1; }
};

TEST_F(Intake, WhatAKilledProgramLeftIsToldAndFinished) {
    EXPECT_EQ(intake({}).status, 1);
    EXPECT_TRUE(intake({}).errors.contains("does not run")) << intake({}).errors.toStdString();
    startDesk();
    EXPECT_TRUE(intake({}).errors.contains("start orvelle once")) << intake({}).errors.toStdString();
    startOrvelle();
    ASSERT_TRUE(waitFor([&] { return watched(); }));
    Result result = intake({});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "Nothing is left to be finished.\n") << "the watch of a running program is no leftover";
    for (const QStringList &wrong : {QStringList{"--older-than", "5"}, QStringList{"--repair", "--older-than", "-1"},
                                     QStringList{"--repair", "--older-than"}, QStringList{"all"}})
        EXPECT_EQ(intake(wrong).status, 2);

    killOrvelle();
    deliver({write("mail.eml", mail)});
    result = intake({});
    EXPECT_EQ(result.status, 3);
    EXPECT_TRUE(result.output.contains("the program of Alma Tester on")) << result.output.toStdString();
    EXPECT_TRUE(result.output.contains("has ended")) << result.output.toStdString();
    EXPECT_TRUE(result.output.contains("a mail that no program has taken")) << result.output.toStdString();
    // The next start says so too, and names the command. It takes the mail.
    startOrvelle();
    ASSERT_TRUE(waitFor([&] { return orvelleErrors().contains("ORVELLESETTINGS.exe intake"); }))
        << orvelleErrors().toStdString();
    ASSERT_TRUE(waitFor([&] { return count(converted) == 1; }));
    EXPECT_EQ(list(inbox).size(), 1) << "the dead program's mark";

    result = intake({"--repair"});
    EXPECT_EQ(result.status, 0) << result.errors.toStdString();
    EXPECT_TRUE(result.output.contains("Done: ")) << result.output.toStdString();
    EXPECT_EQ(list(inbox).size(), 0);
    endOrvelle();
    startOrvelle();
    ASSERT_TRUE(waitFor([&] { return watched(); })) << orvelleErrors().toStdString();
}

// What needs no repair and is still to be known: a ticket that somebody deleted, a confirmation to a machine.
TEST_F(Intake, WhatIsOnlyToBeKnownIsNoLeftover) {
    startDesk();
    startOrvelle();
    ASSERT_TRUE(waitFor([&] { return watched(); }));
    deliver(
        {write("robot.eml", "From: Robot <robot@example.org>\r\nAuto-Submitted: auto-replied\r\nSubject: Away\r\n\r\n"
                            "I am away.\r\n")});
    const QString notSent = "\\\\Mailbox - Alma Tester\\Not sent";
    ASSERT_TRUE(waitFor([&] { return count(converted) == 1 && count(notSent) == 1; }));
    Result result = intake({});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output.toStdString(),
              "To know:\n  \\\\Mailbox - Alma Tester\\Not sent: \"Helpdesk Ticket {1}\" - it was not sent to "
              "robot@example.org: The last message from robot@example.org was automatic (out of office).\n"
              "Nothing is left to be finished.\n");
    command({"delete", list(ticketFolder)[0].toObject()["entryId"].toString()});
    result = intake({});
    EXPECT_EQ(result.status, 4);
    EXPECT_TRUE(result.output.contains("(ticket 1)")) << result.output.toStdString();
    EXPECT_TRUE(result.output.contains("Nothing is left")) << result.output.toStdString();
}

TEST_F(Intake, ADatabaseOfAnotherKindIsReportedAndTheCommandEndsInOrder) {
    startDesk();
    startOrvelle();
    ASSERT_TRUE(waitFor([&] { return watched(); }));
    endOrvelle();
    ASSERT_TRUE(QFile::remove(path("program/Orvelle.mdb")));
    {
        QSqlDatabase other = QSqlDatabase::addDatabase("QSQLITE", "other");
        other.setDatabaseName(path("program/Orvelle.mdb"));
        ASSERT_TRUE(other.open());
        ASSERT_TRUE(QSqlQuery(other).exec("CREATE TABLE x (a)"));
    }
    QSqlDatabase::removeDatabase("other");
    const auto started = process("ORVELLESETTINGS.exe", {"intake"});
    started->start();
    ASSERT_TRUE(started->waitForFinished());
    EXPECT_EQ(started->exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(started->exitCode(), 1);
    EXPECT_TRUE(started->readAllStandardError().contains("no such table"));
}

// Lost rows come back, and their tickets keep their numbers.
TEST_F(Intake, TicketsThatTheDatabaseHasLostComeBack) {
    startDesk();
    deliver({write("mail.eml", mail)});
    startOrvelle();
    ASSERT_TRUE(waitFor([&] { return folderExists(converted) && count(converted) == 1; }));
    endOrvelle();
    QFile::remove(path("program/Orvelle.mdb"));
    settings({"set", "EmailFolders", inbox});
    Result result = intake({"--json"});
    EXPECT_EQ(result.status, 3);
    const QJsonArray left = QJsonDocument::fromJson(result.output.toUtf8()).object()["left"].toArray();
    ASSERT_EQ(left.size(), 1) << result.output.toStdString();
    EXPECT_EQ(left[0]["kind"].toString(), "ticket without row");
    EXPECT_EQ(left[0]["ticket"].toString(), "1");
    result = intake({"--repair"});
    EXPECT_EQ(result.status, 0) << result.output.toStdString();
    EXPECT_TRUE(result.errors.contains("The ticket database was behind")) << result.errors.toStdString();
    deliver({write("mail2.eml", mail)});
    startOrvelle();
    ASSERT_TRUE(waitFor([&] { return count(converted) == 2; }));
    QStringList numbers;
    for (const QJsonValue item : list(ticketFolder))
        numbers += property(item.toObject(), "Ticket ID");
    EXPECT_EQ(numbers, (QStringList{"1", "3"})) << "the row that came back took a number of its own";
}

} // namespace
} // namespace whole
