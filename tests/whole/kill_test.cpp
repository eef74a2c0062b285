// Kills of either process at random moments, each restarted: whatever was cut off, no mail and no attachment is lost,
// and no mail becomes two tickets.
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

class Kills : public Copies, public testing::WithParamInterface<int> {
  protected:
    const int kills = numberFrom("ORVELLE_KILLS", 4);
    const int all = numberFrom("ORVELLE_MAILS", 40);
    const int seed = numberFrom("ORVELLE_SEED", 20240305);

    void killOne(Station &person) {
        ++m_done;
        expectSilence(person);
        if (m_random.bounded(3) > 0) {
            person.killOrvelle();
            return;
        }
        person.killDesk();
        // The program notices, says so, and ends by itself in the orderly way.
        ASSERT_TRUE(waitFor([&] { return person.orvelle().state() == QProcess::NotRunning; }));
        person.startDesk();
    }

    /// Deletes what killed programs have left behind: flag items, and mails that nobody takes any more. Only an empty
    /// folder is watched again.
    void tidyUp() {
        for (const QJsonValue item : list(intake)) {
            if (!item["billingInformation"].toString().isEmpty() || item["subject"].toString() == flagSubject)
                command({"delete", item["entryId"].toString()});
        }
    }

    /// Everybody starts on what lies there, and more comes while they scan and watch; some are killed while they
    /// convert and begin anew beside the others.
    void round(int mailsOfRound) {
        const int part = std::max(1, mailsOfRound / 4);
        tidyUp();
        deliverMails(part);
        for (const auto &person : people())
            person->startOrvelle();
        // Into the start and the scan, and later into the watch.
        QThread::msleep(m_random.bounded(static_cast<quint32>(250 + 10 * part)));
        do {
            deliverMails(part);
            // The desks look every tenth of a second; then about as long as they have to do.
            QThread::msleep(m_random.bounded(static_cast<quint32>(120 + 10 * part)));
            const auto chosen = m_random.bounded(static_cast<quint32>(people().size()));
            killOne(*people()[chosen]);
            people()[chosen]->startOrvelle();
        } while (m_done < kills && m_random.bounded(2) == 0 && !HasFatalFailure());
        QThread::msleep(m_random.bounded(200U));
        for (const auto &person : people()) {
            person->endOrvelle();
            expectSilence(*person);
        }
    }

    /// A last run from a standing start takes what is still new.
    void takeTheRest() {
        tidyUp();
        Station &person = *people().front();
        person.startOrvelle();
        ASSERT_TRUE(waitFor(
            [&] {
                for (const QJsonValue item : list(intake)) {
                    if (item["billingInformation"].toString().isEmpty() && item["subject"].toString() != flagSubject)
                        return false;
                }
                return true;
            },
            30000 + all * 500));
        person.endOrvelle();
        expectSilence(person);
        for (const auto &each : people())
            each->endDesk();
    }

    int m_done = 0;
    QRandomGenerator m_random{static_cast<quint32>(seed)};
};

TEST_P(Kills, LoseNothingAndDoubleNothing) {
    SCOPED_TRACE(seed);
    QElapsedTimer timer;
    timer.start();
    open(GetParam());
    while (m_done < kills && !HasFatalFailure()) {
        const int aboutNow = all * (m_done + 1) / kills;
        round(std::max(1, aboutNow - mails()));
    }
    deliverMails(std::max(0, all - mails()));
    takeTheRest();
    ASSERT_FALSE(HasFatalFailure());
    std::printf("%d copies, %d kills, %d mails in %.1f s\n", GetParam(), m_done, mails(),
                static_cast<double>(timer.elapsed()) / 1000);
    expectBooks(Killed::Yes, m_done);
}

INSTANTIATE_TEST_SUITE_P(People, Kills, testing::Values(1, numberFrom("ORVELLE_COPIES", 3)));

} // namespace
} // namespace whole
