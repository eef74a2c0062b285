// Other people's messages on the whole road: each becomes a ticket that shows what the mail shows.
//
// Uses the folder of .eml files below $ORVELLE_MAIL_CORPUS, or the one beside the checkout; skips where there is none.

#include "whole/processes.h"

#include <QDir>
#include <QDirIterator>

#include <map>

namespace whole {
namespace {

QStringList corpusFiles() {
    QString folder = qEnvironmentVariable("ORVELLE_MAIL_CORPUS");
    if (folder.isEmpty())
        folder = QStringLiteral(CORPUS);
    QStringList files;
    for (QDirIterator each(folder, {"*.eml"}, QDir::Files, QDirIterator::Subdirectories); each.hasNext();)
        files += each.next();
    files.sort();
    return files;
}

QStringList attachmentsOf(const QJsonObject &item) {
    QStringList all;
    for (const QJsonValue attachment : item["attachments"].toArray())
        all += attachment["displayName"].toString() + ' ' + attachment["sha256"].toString();
    all.sort();
    return all;
}

QString field(const QJsonObject &item, const char *name) {
    return item["fields"][QString::fromLatin1(name)].toString();
}

class Corpus : public Helpdesk {};

TEST_F(Corpus, EveryMessageBecomesATicketThatShowsIt) {
    const QStringList files = corpusFiles();
    if (files.isEmpty())
        GTEST_SKIP() << "There is no folder of messages; name one in ORVELLE_MAIL_CORPUS.";
    startDesk();
    startOrvelle();
    ASSERT_TRUE(waitFor([&] { return list(inbox).size() == 1; }));
    deliver(files);
    ASSERT_TRUE(waitFor([&] { return list(inbox).size() == 1; }, 100000)) << "not every mail was converted";

    std::map<QString, QJsonObject> tickets;
    for (const QJsonValue item : list(ticketFolder))
        tickets[property(item.toObject(), "Ticket ID")] = show(item["entryId"].toString());
    const QJsonArray mails = list(converted);
    EXPECT_EQ(mails.size(), files.size());
    EXPECT_EQ(static_cast<qsizetype>(tickets.size()), files.size());
    for (const QJsonValue each : mails) {
        const QJsonObject mail = show(each["entryId"].toString());
        const QString number = field(mail, "BillingInformation");
        SCOPED_TRACE((number + ": " + field(mail, "Subject")).toStdString());
        ASSERT_TRUE(tickets.contains(number));
        const QJsonObject &ticket = tickets[number];
        EXPECT_EQ(field(ticket, "Subject"), field(mail, "Subject"));
        EXPECT_EQ(property(ticket, "Caller name"), field(mail, "SenderName"));
        EXPECT_EQ(property(ticket, "Caller email"), field(mail, "SenderEmailAddress"));
        // The page of a ticket has a heading before the mail's text; what the mail said shows in the text made of it.
        const QString text = mail["body"].toString().simplified().left(40);
        EXPECT_TRUE(!mail["htmlBody"].toString().isEmpty() || ticket["body"].toString().simplified().contains(text))
            << text.toStdString();
        // A big message without attachments is attached whole.
        if (!mail["attachments"].toArray().isEmpty()) {
            EXPECT_EQ(attachmentsOf(ticket), attachmentsOf(mail));
        }
    }
}

} // namespace
} // namespace whole
