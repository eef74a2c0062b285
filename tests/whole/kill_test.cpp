// Kills of either process at random moments, each restarted: whatever was cut off, no mail and no attachment is lost,
// and no mail becomes two tickets.
//
// ORVELLE_KILLS gives the number of kills, one mail to each (default 16); ORVELLE_SEED the seed.

#include "whole/processes.h"

#include <QCryptographicHash>
#include <QRandomGenerator>
#include <QThread>

#include <map>

namespace whole {
namespace {

int numberFrom(const char *variable, int otherwise) {
    bool given = false;
    const int number = qEnvironmentVariableIntValue(variable, &given);
    return given ? number : otherwise;
}

QString subjectOf(int number) { return QStringLiteral("Report %1").arg(number, 4, 10, QLatin1Char('0')); }

/// As many attachments as the number's rest by 3; each with bytes of its own.
QByteArray attachmentOf(int number, int index) {
    return QByteArray("part ") + QByteArray::number(number) + '/' + QByteArray::number(index) +
           QByteArray(number * 37 % 30000, static_cast<char>('a' + index));
}

QByteArray mailOf(int number) {
    QByteArray text =
        "From: Cal Caller <cal@example.org>\r\nTo: helpdesk@orvelle.example\r\nSubject: " + subjectOf(number).toUtf8() +
        "\r\nMIME-Version: 1.0\r\nContent-Type: multipart/mixed; boundary=b\r\n\r\n--b\r\n"
        "Content-Type: text/plain\r\n\r\nIt is broken.\r\n";
    for (int index = 0; index < number % 3; ++index) {
        text += "--b\r\nContent-Type: application/octet-stream\r\nContent-Transfer-Encoding: base64\r\n"
                "Content-Disposition: attachment; filename=\"file" +
                QByteArray::number(index) + ".bin\"\r\n\r\n" + attachmentOf(number, index).toBase64() + "\r\n";
    }
    return text + "--b--\r\n";
}

QStringList hashesOf(int number) {
    QStringList hashes;
    for (int index = 0; index < number % 3; ++index)
        hashes += QString::fromLatin1(
            QCryptographicHash::hash(attachmentOf(number, index), QCryptographicHash::Sha256).toHex());
    return hashes;
}

QStringList hashesOf(const QJsonObject &item) {
    QStringList hashes;
    for (const QJsonValue attachment : item["attachments"].toArray())
        hashes += attachment["sha256"].toString();
    return hashes;
}

class Kills : public Helpdesk {
  protected:
    void restart(bool killTheDesk) {
        if (killTheDesk) {
            killDesk();
            // The program notices and ends by itself, in the orderly way.
            ASSERT_TRUE(waitFor([&] { return orvelle().state() == QProcess::NotRunning; }));
            startDesk();
        } else {
            killOrvelle();
        }
        removeFlagItems();
        startOrvelle();
    }

    struct Found {
        QList<QJsonObject> mails;   ///< in the Inbox or in Converted
        QList<QJsonObject> tickets; ///< with their attachments
    };

    std::map<QString, Found> look() {
        std::map<QString, Found> all;
        for (const QString &folder : {inbox, converted}) {
            if (!folderExists(folder))
                continue;
            for (const QJsonValue item : list(folder)) {
                QJsonObject mail = item.toObject();
                mail["folder"] = folder;
                all[mail["subject"].toString()].mails += mail;
            }
        }
        for (const QJsonValue item : list(ticketFolder))
            all[item["subject"].toString()].tickets += show(item["entryId"].toString());
        return all;
    }
};

TEST_F(Kills, LoseNothingAndDoubleNothing) {
    const int kills = numberFrom("ORVELLE_KILLS", 16);
    const auto seed = static_cast<quint32>(numberFrom("ORVELLE_SEED", 20240305));
    QRandomGenerator random(seed);
    SCOPED_TRACE(seed);
    startDesk();
    startOrvelle();
    for (int number = 0; number < kills; ++number) {
        deliver({write(subjectOf(number) + ".eml", mailOf(number))});
        QThread::msleep(random.bounded(150U));
        restart(random.bounded(2) == 0);
        if (HasFatalFailure())
            return;
    }
    // A last run from a standing start takes what is still new.
    endOrvelle();
    removeFlagItems();
    startOrvelle();
    ASSERT_TRUE(waitFor([&] {
        for (const QJsonValue item : list(inbox)) {
            if (item["billingInformation"].toString().isEmpty() && item["subject"].toString() != flagSubject)
                return false;
        }
        return true;
    }));
    endOrvelle();
    endDesk();

    auto found = look();
    int working = 0;
    for (int number = 0; number < kills; ++number) {
        const Found &of = found[subjectOf(number)];
        SCOPED_TRACE(subjectOf(number).toStdString());
        ASSERT_EQ(of.mails.size(), 1);
        EXPECT_LE(of.tickets.size(), 1);
        const QString mark = of.mails[0]["billingInformation"].toString();
        const bool isWorking = mark == QStringLiteral("Working...");
        working += isWorking ? 1 : 0;
        if (!isWorking) {
            ASSERT_EQ(of.tickets.size(), 1) << "marked " << mark.toStdString();
            EXPECT_EQ(property(of.tickets[0], "Ticket ID"), mark);
        }
        for (const QJsonObject &ticket : of.tickets) {
            // The item is saved for the first time with all that the mail brought; its number comes with the second.
            EXPECT_TRUE(isWorking || !property(ticket, "Ticket ID").isEmpty());
            EXPECT_EQ(hashesOf(ticket), hashesOf(number));
        }
    }
    RecordProperty("kills", kills);
    RecordProperty("left at Working...", working);
    std::printf("%d kills, %d mails left at \"Working...\"\n", kills, working);
}

} // namespace
} // namespace whole
