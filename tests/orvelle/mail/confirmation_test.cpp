// The confirmation that answers the sender of a converted mail.

#include "orvelle/mail/confirmation.h"

#include "support/helpdesk.h"

namespace {

class Confirmation : public support::Helpdesk {
  protected:
    void SetUp() override {
        setSetting("ConvertedEmailMessage", "Ticket [TICKETID] for \"[SUBJECT]\". Again: [TICKETID]");
        setSetting("ConvertedEmailSubject", "Helpdesk Ticket {[TICKETID]}");
    }
};

TEST_F(Confirmation, GoesOutToTheSender) {
    start();
    deliver({.subject = "no toner"});
    ASSERT_EQ(outgoing().size(), 1);
    const QString sent = QString::fromUtf8(outgoing().first());
    EXPECT_TRUE(sent.contains("Subject: Helpdesk Ticket {1}")) << sent.toStdString();
    EXPECT_TRUE(sent.contains("cal@example.org"));
    EXPECT_TRUE(sent.contains("Ticket 1 for \"no toner\". Again: 1"));
    EXPECT_TRUE(subjects(mapi().GetDefaultFolder(4)).isEmpty()) << "nothing is left in the Outbox";
    EXPECT_TRUE(subjects(mapi().GetDefaultFolder(16)).isEmpty()) << "nor in the Drafts";
    EXPECT_EQ(subjects(mapi().GetDefaultFolder(5)), QStringList{"Helpdesk Ticket {1}"});
}

TEST_F(Confirmation, IsSentWhateverItsSubjectIs) {
    setSetting("ConvertedEmailSubject", "");
    start();
    deliver({});
    EXPECT_EQ(outgoing().size(), 1);
}

TEST_F(Confirmation, ItsSentCopyIsFiledUnderTheTicketWhereTicketsHaveFolders) {
    setSetting("EmailSubFolders", "1");
    start();
    deliver({});
    ASSERT_EQ(outgoing().size(), 1);
    EXPECT_EQ(subjects(tickets().Folders("1").Folders("Sent")), QStringList{"Helpdesk Ticket {1}"});
    EXPECT_EQ(folderNames(mapi().GetDefaultFolder(5)), QStringList{"ORVLSentItems"});
}

struct ConditionCase {
    const char *message;
    /// Whether a mail that the scan meets, and one that comes later, is confirmed.
    int scanned;
    int incoming;
};

class ConfirmationCondition : public support::Helpdesk, public testing::WithParamInterface<ConditionCase> {};

TEST_P(ConfirmationCondition, DiffersBetweenTheScanAndWhatComesLater) {
    setSetting("ConvertedEmailMessage", GetParam().message);
    deliver({.subject = "scanned"});
    start();
    EXPECT_EQ(outgoing().size(), GetParam().scanned);
    deliver({.subject = "incoming"});
    EXPECT_EQ(outgoing().size(), GetParam().scanned + GetParam().incoming);
    EXPECT_EQ(subjects(tickets()), (QStringList{"scanned", "incoming"}));
}

INSTANTIATE_TEST_SUITE_P(Messages, ConfirmationCondition,
                         testing::Values(ConditionCase{"", 0, 0}, ConditionCase{"    ", 0, 1},
                                         ConditionCase{"abc", 1, 0}, ConditionCase{"abcd", 1, 1}));

TEST_F(Confirmation, IsFromTheNameOfTheSettingWhenItIsLongEnough) {
    for (const char *name : {"five5", "sixsix"}) {
        const bool isUsed = QString(name).size() > 5;
        setSetting("EmailFrom", name);
        auto &copy = start();
        deliver({});
        const host::Items all = mapi().GetDefaultFolder(5).Items();
        ASSERT_EQ(all.Count(), isUsed ? 2 : 1);
        const host::MailItem sent(all.Item(all.Count()).object());
        EXPECT_EQ(sent.SentOnBehalfOfName() == name, isUsed);
        EXPECT_EQ(sent.ReplyRecipientNames() == name, isUsed);
        copy.run.quit();
    }
}

TEST(FillConfirmation, ReplacesInTurnAndEverywhere) {
    struct Case {
        const char *text;
        const char *body;
        const char *subject;
        const char *expected;
    };
    for (const Case &each :
         {Case{"[TICKETID] and [TICKETID]", "", "", "7 and 7"}, Case{"[BODY]/[SUBJECT]", "b", "s", "b/s"},
          Case{"[BODY]", "it says [SUBJECT]", "s", "it says s"},
          Case{"[SUBJECT]", "b", "it says [BODY]", "it says [BODY]"}, Case{"[ticketid]", "", "", "[ticketid]"},
          Case{"", "b", "s", ""}})
        EXPECT_EQ(fncFillConfirmation(each.text, "7", each.body, each.subject), each.expected) << each.text;
}

TEST(FillConfirmation, IsNoLongerThanAMillionWhateverTheMailSays) {
    const QString many = QString("[SUBJECT]").repeated(50'000);
    const QString text = QString("mail [TICKETID]: [BODY]");
    EXPECT_EQ(fncFillConfirmation(text, "7", many, QString(250'000, u's')), "mail 7: ");
    EXPECT_EQ(fncFillConfirmation(text, "7", many, QString(10, u's')).size(), 8 + 500'000);
    EXPECT_EQ(fncFillConfirmation(text, "7", QString(1'000'001, u'b'), "s"), "mail 7: ");
    EXPECT_EQ(fncFillConfirmation("[BODY][TICKETID]" + many, "7", "b", QString(21, u's')), "7") << "a long template";
    EXPECT_EQ(fncFillConfirmation(QString(1'000'001, u't'), "7", "b", "s").size(), 1'000'001);
}

} // namespace
