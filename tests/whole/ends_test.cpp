// Ends that come while mails are on their way to tickets: by a signal to either process, by the Explorer that shows
// another folder. What is in hand becomes whole, the rest stays as it came.
//
// ORVELLE_ENDS gives the number of ends by a signal (default 3), ORVELLE_SEED the seed.

#include "automation/remote.h"
#include "whole/mails.h"
#include "whole/processes.h"

#include <QRandomGenerator>
#include <QThread>

namespace whole {
namespace {

const QString sentWatched = QStringLiteral("\\\\Mailbox - Alma Tester\\Sent Items\\ORVLSentItems");

class EndsInFlight : public Helpdesk {
  protected:
    EndsInFlight() { settings({"set", "EmailSubFolders", "1"}); }

    void deliverMails(int more) {
        QStringList files;
        for (int i = 0; i < more; ++i, ++m_mails)
            files << write(QStringLiteral("mail-%1.eml").arg(m_mails), mailOf(m_mails));
        deliver(files);
    }

    /// Waits for the program, which must end by itself, in the orderly way and without a word but one: mails that come
    /// between its scan and its look at the folder keep it from watching.
    void expectEnd() {
        ASSERT_TRUE(waitFor([&] { return orvelle().state() == QProcess::NotRunning; }));
        EXPECT_EQ(orvelle().exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(orvelle().exitCode(), 0);
        EXPECT_TRUE(orvelleErrors().isEmpty() || orvelleErrors().contains("does not watch the folder"))
            << orvelleErrors().toStdString();
    }

    void expectNothingHalfway() {
        for (const QJsonValue item : list(inbox)) {
            EXPECT_EQ(item["billingInformation"].toString().toStdString(), "");
            EXPECT_NE(item["subject"].toString(), flagSubject);
        }
        const QJsonArray tickets = list(ticketFolder);
        for (const QJsonValue item : tickets)
            EXPECT_NE(property(item.toObject(), "Ticket ID"), "");
        EXPECT_EQ(count(converted), tickets.size());
        EXPECT_EQ(count(inbox) + tickets.size(), m_mails);
        EXPECT_EQ(count(sentWatched), 0) << "a confirmation was not filed";
    }

    int m_mails = 0;
};

TEST_F(EndsInFlight, BySignalLeaveNoMailHalfway) {
    const int ends = numberFrom("ORVELLE_ENDS", 3);
    QRandomGenerator random(static_cast<quint32>(numberFrom("ORVELLE_SEED", 20240305)));
    for (int i = 0; i < ends && !HasFailure(); ++i) {
        SCOPED_TRACE(i);
        startDesk();
        startOrvelle();
        QThread::msleep(random.bounded(400U));
        deliverMails(12);
        QThread::msleep(random.bounded(250U));
        if (i % 3 == 2) {
            orvelle().terminate();
            expectEnd();
            endDesk();
        } else {
            endDesk();
            expectEnd();
        }
        expectNothingHalfway();
    }
    startDesk();
    startOrvelle();
    ASSERT_TRUE(waitFor([&] { return count(converted) == m_mails; }, 30000 + 100 * m_mails));
    endOrvelle();
    EXPECT_EQ(list(ticketFolder).size(), m_mails);
}

TEST_F(EndsInFlight, ByTheFolderSwitchDuringTheStartScanFinishTheMailInHand) {
    constexpr int all = 40;
    deliverMails(all);
    startDesk();
    startOrvelle();
    const auto client = automation::Client::connect(profile() + "/desk.socket");
    const automation::ObjectPtr session = client->root()->call("GetNamespace", {"MAPI"}).object();
    const automation::ObjectPtr explorer = client->root()->call("ActiveExplorer", {}).object();
    ASSERT_TRUE(waitFor([&] { return count(converted) >= 2; }));
    explorer->put("CurrentFolder", session->call("GetDefaultFolder", {6}));
    expectEnd();
    EXPECT_LT(count(converted), all);
    expectNothingHalfway();
}

} // namespace
} // namespace whole
