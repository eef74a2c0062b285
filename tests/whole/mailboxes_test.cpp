// A helpdesk that watches somebody else's Inbox.

#include "whole/processes.h"

namespace whole {
namespace {

const QString borisInbox = QStringLiteral("\\\\Mailbox - Boris Helper\\Inbox");

class ColleagueTest : public Helpdesk, public testing::WithParamInterface<QString> {};

/// By the folder's path, and by the person's name alone.
TEST_P(ColleagueTest, MailsInAColleaguesInboxBecomeTickets) {
    Station boris(*this, "Boris Helper", "boris", path("profile/public.store"));
    boris.startDesk();
    command({"mailbox", "add", path("boris/mailbox.store")});
    startDesk();
    settings({"set", "EmailFolders", GetParam()});
    boris.deliver({write("first.eml", "From: Cy <cy@example.org>\r\nSubject: before the start\r\n\r\nOne.\r\n")});
    startOrvelle();
    ASSERT_TRUE(waitFor([&] { return count(ticketFolder) == 1; })) << orvelleErrors().toStdString();
    // A mail that came before the flag item would keep the folder from being watched.
    ASSERT_TRUE(waitFor([&] {
        const QJsonArray items = boris.list(borisInbox);
        return items.size() == 1 && items[0].toObject()["subject"].toString() == flagSubject;
    }));
    boris.deliver({write("second.eml", "From: Di <di@example.org>\r\nSubject: while it runs\r\n\r\nTwo.\r\n")});
    ASSERT_TRUE(waitFor([&] { return count(ticketFolder) == 2; }));
    ASSERT_TRUE(waitFor([&] { return boris.count(borisInbox + "\\Converted") == 2; }));
    QStringList subjects;
    for (const QJsonValue ticket : list(ticketFolder))
        subjects += ticket["subject"].toString();
    EXPECT_EQ(subjects, (QStringList{"before the start", "while it runs"}));
    // The flag item is in the folder that is watched, and goes with the program.
    EXPECT_EQ(boris.count(borisInbox), 1);
    EXPECT_EQ(count(inbox), 0);
    endOrvelle();
    EXPECT_EQ(orvelleErrors().toStdString(), "");
    EXPECT_EQ(boris.count(borisInbox), 0);
    endDesk();
    boris.endDesk();
}

INSTANTIATE_TEST_SUITE_P(Whole, ColleagueTest, testing::Values(borisInbox, QStringLiteral("Boris Helper")));

} // namespace
} // namespace whole
