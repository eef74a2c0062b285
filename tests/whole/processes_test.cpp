// Two processes side by side: what people see of them.

#include "support/environment.h"
#include "whole/processes.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>

namespace whole {
namespace {

class TwoProcesses : public Helpdesk {
  protected:
    void SetUp() override {
        startDesk();
        startOrvelle();
        ASSERT_TRUE(waitFor([&] { return watched(); }));
    }

    bool watched() {
        const QJsonArray items = list(inbox);
        return items.size() == 1 && items.at(0)["subject"].toString() == flagSubject;
    }

    QJsonObject ticketOf(const QString &subject) {
        for (const QJsonValue item : list(ticketFolder)) {
            if (item["subject"].toString() == subject && !property(item.toObject(), "Ticket ID").isEmpty())
                return item.toObject();
        }
        return {};
    }
};

const QByteArray mail = "From: Cal Caller <cal@example.org>\r\nTo: helpdesk@orvelle.example\r\n"
                        "Subject: The printer is jammed\r\n\r\nIt makes a noise.\r\n";

TEST_F(TwoProcesses, AMailBecomesATicketWhileTheyRun) {
    deliver({write("mail.eml", mail)});
    QJsonObject ticket;
    ASSERT_TRUE(waitFor([&] { return !(ticket = ticketOf("The printer is jammed")).isEmpty(); }));
    EXPECT_EQ(property(ticket, "Ticket ID"), "1");
    EXPECT_EQ(property(ticket, "Caller name"), "Cal Caller");
    EXPECT_EQ(property(ticket, "Caller email"), "cal@example.org");
    EXPECT_EQ(ticket["messageClass"].toString(), "IPM.Post.HelpDesk.Ticket.8");
    ASSERT_TRUE(waitFor([&] { return folderExists(converted) && list(converted).size() == 1; }));
    EXPECT_EQ(list(converted).at(0)["billingInformation"].toString(), "1");
    // The confirmation has left.
    const QString sent = QStringLiteral("\\\\Mailbox - Alma Tester\\Sent Items");
    ASSERT_TRUE(waitFor([&] { return list(sent).size() == 1; }));
    EXPECT_EQ(list(sent).at(0)["subject"].toString(), "Helpdesk Ticket {1}");
    EXPECT_EQ(QDir(path("profile/outgoing")).entryList({"*.eml"}).size(), 1);
}

TEST_F(TwoProcesses, TheDeskGoesOnWithoutTheProgram) {
    killOrvelle();
    deliver({write("mail.eml", mail)});
    EXPECT_EQ(list(inbox).size(), 2);
    EXPECT_EQ(desk().state(), QProcess::Running);
    removeFlagItems();
    startOrvelle();
    EXPECT_TRUE(waitFor([&] { return !ticketOf("The printer is jammed").isEmpty(); }));
}

TEST_F(TwoProcesses, TheProgramEndsWithItsMessageWhenTheDeskIsKilled) {
    killDesk();
    ASSERT_TRUE(waitFor([&] { return orvelle().state() == QProcess::NotRunning; }));
    EXPECT_EQ(orvelle().exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(orvelle().exitCode(), 1);
    waitFor([&] { return orvelleErrors().contains("has ended"); });
    EXPECT_TRUE(orvelleErrors().contains("There has been an error in this application."))
        << orvelleErrors().toStdString();
    EXPECT_TRUE(orvelleErrors().contains("has ended")) << orvelleErrors().toStdString();
}

TEST_F(Helpdesk, AReportIsInTheLanguageOfTheCommandLineAndTheStepsAreInTheLog) {
    startDesk();
    write("program/OrvelleSettings", "svenska");
    const support::EnvironmentValue tracing("ORVELLE_TRACE", "1");
    startOrvelle({"2"});
    ASSERT_TRUE(waitFor([&] { return orvelle().state() == QProcess::NotRunning; }));
    EXPECT_EQ(orvelle().exitCode(), 1);
    waitFor([&] { return orvelleErrors().contains("cSettings.GetSettings"); });
    EXPECT_TRUE(orvelleErrors().contains("Ett fel har uppst\u00e5tt i det h\u00e4r programmet."))
        << orvelleErrors().toStdString();
    const auto read = [&](const QString &name) {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString("(no file)");
    };
    EXPECT_EQ(read("program/OrvelleSettings"), "svenska");
    const QString log = read("program/TessmarkLog.txt");
    EXPECT_TRUE(log.startsWith("Orvelle 9 for Outlook\t")) << log.left(200).toStdString();
    for (const char *step :
         {"\tReading language phrases from resource file\r\n", "\tFailure 13 in cSettings.GetSettings"})
        EXPECT_TRUE(log.contains(step)) << step;
}

TEST_F(TwoProcesses, TheExampleDayBecomesTickets) {
    deliver({QStringLiteral(EXAMPLE_MAILS)});
    const auto mails = QDir(QStringLiteral(EXAMPLE_MAILS)).entryList({"*.eml"}).size();
    ASSERT_GE(mails, 15);
    ASSERT_TRUE(waitFor([&] { return folderExists(converted) && list(converted).size() == mails; }, 60000));
    EXPECT_EQ(list(ticketFolder).size(), mails);
    EXPECT_TRUE(watched());
}

} // namespace
} // namespace whole
