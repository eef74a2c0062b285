// Machines that answer whatever they get, against the real programs: each mail becomes a ticket, and the answers end.
//
// ORVELLE_ROUNDS gives the number of rounds (default 14).

#include "whole/mails.h"
#include "whole/processes.h"

#include <QDir>
#include <QFile>

namespace whole {
namespace {

const QString notSent = QStringLiteral("\\\\Mailbox - Alma Tester\\Not sent");
constexpr int mostAnHour = 10;

class Loops : public Helpdesk {
  protected:
    const int rounds = numberFrom("ORVELLE_ROUNDS", 14);

    void SetUp() override { begin(); }
    void begin() {
        startDesk();
        startOrvelle();
        ASSERT_TRUE(waitFor([&] { return list(inbox).size() == 1; }));
    }

    /// A mail comes in and becomes a ticket; what was to be sent for it has left or is kept.
    void come(const QByteArray &mail) {
        ++m_mails;
        deliver({write("mail.eml", mail)});
        ASSERT_TRUE(waitFor([&] { return count(ticketFolder) == m_mails && sent() + count(notSent) == m_mails; }))
            << count(ticketFolder) << " tickets, " << sent() << " sent, " << count(notSent) << " kept of " << m_mails;
    }
    [[nodiscard]] int sent() const {
        return static_cast<int>(QDir(path("profile/outgoing")).entryList({"*.eml"}).size());
    }
    QStringList reasons() {
        QStringList all;
        for (const QJsonValue item : list(notSent))
            all += property(item.toObject(), "Not sent because");
        return all;
    }
    QByteArray lastConfirmation() {
        const QFileInfoList files = QDir(path("profile/outgoing")).entryInfoList({"*.eml"}, QDir::Files, QDir::Time);
        QFile file(files.value(0).filePath());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

  private:
    int m_mails = 0;
};

/// It has a subject of its own and no word in its header: only the number of its mails tells.
TEST_F(Loops, ARobotThatAnswersEachConfirmationIsAnsweredTenTimes) {
    for (int round = 1; round <= rounds; ++round) {
        ASSERT_NO_FATAL_FAILURE(come("From: Robot <robot@example.org>\r\nSubject: We have got mail " +
                                     QByteArray::number(round) + "\r\nMessage-ID: <" + QByteArray::number(round) +
                                     "@robot.example.org>\r\n\r\nThank you!\r\n"));
        EXPECT_EQ(sent(), std::min(round, mostAnHour));
        if (round == mostAnHour / 2) {
            // A restart is no new beginning.
            endOrvelle();
            endDesk();
            ASSERT_NO_FATAL_FAILURE(begin());
        }
    }
    const QString reason = "Within an hour programs have sent 10 mails to robot@example.org, and no more may go there.";
    EXPECT_EQ(reasons(), QStringList(rounds - mostAnHour, reason));
    // Somebody else is served as before.
    ASSERT_NO_FATAL_FAILURE(come("From: cal@example.org\r\nSubject: Help\r\nMessage-ID: <q@x>\r\n\r\nPlease.\r\n"));
    EXPECT_EQ(sent(), mostAnHour + 1);
    for (const char *line : {"Auto-Submitted: auto-generated\r\n", "X-Auto-Response-Suppress: All\r\n",
                             "In-Reply-To: <q@x>\r\n", "References: <q@x>\r\n", "X-Desk-Loop: "})
        EXPECT_TRUE(lastConfirmation().contains(line)) << line;
}

TEST_F(Loops, WhatSaysThatItIsAutomaticIsNeverAnswered) {
    ASSERT_NO_FATAL_FAILURE(come("From: cal@example.org\r\nSubject: Help\r\n\r\nPlease.\r\n"));
    ASSERT_EQ(sent(), 1);
    const QByteArray confirmation = lastConfirmation();
    const QByteArray bounce = "Return-Path: <>\r\nFrom: MAILER-DAEMON@mx.example.org\r\nSubject: Returned\r\n"
                              "Content-Type: multipart/report; report-type=delivery-status; boundary=b\r\n\r\n"
                              "--b\r\n\r\nNobody there.\r\n--b\r\nContent-Type: message/rfc822\r\n\r\n" +
                              confirmation + "\r\n--b--\r\n";
    const QByteArray away =
        "From: cal@example.org\r\nSubject: Away\r\nAuto-Submitted: auto-replied\r\n\r\nUntil May.\r\n";
    const QByteArray own = "From: Alma Tester <alma.tester@localhost>\r\nSubject: Ticket\r\n\r\nText\r\n";
    int kept = 0;
    for (int round = 0; round < 3; ++round) {
        for (const QByteArray &mail : {bounce, away, own, confirmation}) {
            ASSERT_NO_FATAL_FAILURE(come(mail));
            EXPECT_EQ(count(notSent), ++kept) << mail.left(100).toStdString();
        }
    }
    EXPECT_EQ(sent(), 1);
    for (const char *word : {"(bounce)", "(out of office)", "It would come back"})
        EXPECT_GE(reasons().filter(word).size(), 3) << word;
}

/// The name to send under is the helpdesk's address, and mail from there came to the helpdesk.
TEST_F(Helpdesk, TheAddressToSendUnderIsNotWrittenTo) {
    settings({"set", "EmailFrom", "helpdesk@orvelle.example"});
    startDesk();
    startOrvelle();
    deliver({write("mail.eml", "From: helpdesk@orvelle.example\r\nSubject: From the desk\r\n\r\nText\r\n")});
    ASSERT_TRUE(waitFor([&] { return count(notSent) == 1; }));
    EXPECT_EQ(count(ticketFolder), 1);
    EXPECT_TRUE(QDir(path("profile/outgoing")).entryList({"*.eml"}).isEmpty());
}

} // namespace
} // namespace whole
