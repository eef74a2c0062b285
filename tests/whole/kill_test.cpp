// Kills of either process at random moments, each restarted, and the repair of what they left, beside programs that run
// and after all of them: in the end every mail is one whole ticket with one confirmation, and every reply is filed
// once. The repair itself is killed too.
//
// ORVELLE_KILLS gives the number of kills (default 4), ORVELLE_MAILS that of mails (default 40), ORVELLE_COPIES that of
// the people who work side by side (default 3), ORVELLE_SEED the seed.

#include "whole/copies.h"
#include "whole/mails.h"

#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QThread>

namespace whole {
namespace {

struct Round {
    int people;
    bool hasReplies;
};

class Kills : public Copies, public testing::WithParamInterface<Round> {
  protected:
    const int kills = numberFrom("ORVELLE_KILLS", 4);
    const int all = numberFrom("ORVELLE_MAILS", 40);
    const int seed = numberFrom("ORVELLE_SEED", 20240305);

    /// That a folder is not watched for what others left there is told at a start, and nothing else is.
    static void expectNoReport(const Station &person) {
        const QString errors = person.orvelleErrors();
        EXPECT_TRUE(errors.isEmpty() || (errors.contains("does not watch the folder") && !errors.contains("error")))
            << errors.toStdString();
    }

    void killOne(Station &person) {
        ++m_done;
        expectNoReport(person);
        if (m_random.bounded(3) > 0) {
            person.killOrvelle();
            return;
        }
        person.killDesk();
        // The program notices, says so, and ends by itself in the orderly way.
        ASSERT_TRUE(waitFor([&] { return person.orvelle().state() == QProcess::NotRunning; }));
        person.startDesk();
    }

    /// Each person finishes what the own programs have left behind.
    void repairAll() {
        for (const auto &person : people()) {
            const QJsonObject result = person->leftovers({"--repair"});
            for (const QJsonValue each : result["repaired"].toArray()) {
                ++m_repaired[each["kind"].toString()];
                EXPECT_TRUE(each["done"].toBool()) << QJsonDocument(each.toObject()).toJson().toStdString();
            }
        }
    }

    /// The repair dies as well, at any moment, and another one finishes what it had begun.
    void killARepair() {
        Station &person = *people()[m_random.bounded(static_cast<quint32>(people().size()))];
        const auto repair = person.process("ORVELLESETTINGS.exe", {"intake", "--repair"});
        repair->start();
        repair->waitForFinished(static_cast<int>(m_random.bounded(1800U)));
        repair->kill();
        repair->waitForFinished();
    }

    /// Everybody starts on what lies there, and more comes while they scan and watch; some are killed while they
    /// convert and begin anew beside the others.
    void round(int mailsOfRound) {
        const int part = std::max(1, mailsOfRound / 4);
        // A profile knows its helpdesk from the first start on.
        if (mails() > 0) {
            killARepair();
            repairAll();
        }
        deliverMails(part);
        deliverReplies(part);
        for (const auto &person : people())
            person->startOrvelle();
        // Into the start and the scan, and later into the watch.
        QThread::msleep(m_random.bounded(static_cast<quint32>(250 + 10 * part)));
        do {
            deliverMails(part);
            deliverReplies(1 + part / 4);
            // The desks look every tenth of a second; then about as long as they have to do.
            QThread::msleep(m_random.bounded(static_cast<quint32>(120 + 10 * part)));
            const auto chosen = m_random.bounded(static_cast<quint32>(people().size()));
            killOne(*people()[chosen]);
            people()[chosen]->startOrvelle();
        } while (m_done < kills && m_random.bounded(2) == 0 && !HasFatalFailure());
        if (m_random.bounded(2) == 0)
            repairAll();
        QThread::msleep(m_random.bounded(200U));
        for (const auto &person : people()) {
            person->endOrvelle();
            expectNoReport(*person);
        }
    }

    /// The repair, and then a last run from a standing start, which takes what is still new.
    void takeTheRest() {
        killARepair();
        repairAll();
        Station &person = *people().front();
        person.startOrvelle();
        ASSERT_TRUE(waitFor([&] { return count(intake) == 1 && flagCount() == 1; }, 30000 + all * 500));
        person.endOrvelle();
        expectSilence(person);
        for (const auto &each : people()) {
            const QJsonObject left = each->leftovers({});
            EXPECT_EQ(left["left"].toArray().size(), 0) << QJsonDocument(left).toJson().toStdString();
            EXPECT_EQ(left["notes"].toArray().size(), 0) << QJsonDocument(left).toJson().toStdString();
        }
        for (const auto &each : people())
            each->endDesk();
    }

    /// Replies to tickets that are there by now.
    void deliverReplies(int more) {
        const int tickets = count(ticketFolder);
        if (!m_hasReplies || tickets == 0)
            return;
        QStringList files{"deliver", "--folder", intake};
        for (int reply = 0; reply < more; ++reply) {
            const int ticket = 1 + static_cast<int>(m_random.bounded(static_cast<quint32>(std::min(tickets, 5))));
            ++m_replies[ticket];
            files += write(QStringLiteral("reply.%1.%2.eml").arg(ticket).arg(m_replies[ticket]),
                           "From: Rita Reply <rita@example.org>\r\nSubject: Re: {" + QByteArray::number(ticket) +
                               "}\r\n\r\nIt works again.\r\n");
        }
        command(files);
    }

    void expectReplies() {
        for (const auto &[ticket, replies] : m_replies) {
            SCOPED_TRACE(ticket);
            // A copy of the mail is there too.
            EXPECT_EQ(count(ticketFolder + QStringLiteral("\\%1\\Received").arg(ticket)), 1 + replies);
            EXPECT_EQ(workRows(ticket), replies);
        }
        for (int ticket = 1; m_hasReplies && ticket <= mails(); ticket += 1 + mails() / 20) {
            const int others = m_replies.contains(ticket) ? m_replies[ticket] : 0;
            EXPECT_EQ(count(ticketFolder + QStringLiteral("\\%1\\Received").arg(ticket)), 1 + others) << ticket;
            EXPECT_EQ(count(ticketFolder + QStringLiteral("\\%1\\Sent").arg(ticket)), 1) << ticket;
        }
    }

    bool m_hasReplies = false;
    std::map<int, int> m_replies;
    std::map<QString, int> m_repaired;
    int m_done = 0;
    QRandomGenerator m_random{static_cast<quint32>(seed)};
};

TEST_P(Kills, LoseNothingAndDoubleNothing) {
    SCOPED_TRACE(seed);
    QElapsedTimer timer;
    timer.start();
    open(GetParam().people);
    m_hasReplies = GetParam().hasReplies;
    settings({"set", "EmailSubFolders", m_hasReplies ? "1" : "0"});
    while (m_done < kills && !HasFatalFailure()) {
        const int aboutNow = all * (m_done + 1) / kills;
        round(std::max(1, aboutNow - mails()));
    }
    deliverMails(std::max(0, all - mails()));
    takeTheRest();
    ASSERT_FALSE(HasFatalFailure());
    std::printf("%d copies, %d kills, %d mails in %.1f s; repaired:", GetParam().people, m_done, mails(),
                static_cast<double>(timer.elapsed()) / 1000);
    for (const auto &[kind, times] : m_repaired)
        std::printf(" %d %s,", times, qPrintable(kind));
    std::printf("\n");
    expectBooks();
    expectReplies();
}

INSTANTIATE_TEST_SUITE_P(People, Kills,
                         testing::Values(Round{1, false}, Round{1, true}, Round{numberFrom("ORVELLE_COPIES", 3), false},
                                         Round{numberFrom("ORVELLE_COPIES", 3), true}));

} // namespace
} // namespace whole
