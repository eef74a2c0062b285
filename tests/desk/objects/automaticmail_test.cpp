// A program's mail and the machines that it must not write to.

#include "deskfixture.h"

#include "desk/mail/parser.h"
#include "desk/objects/session.h"
#include "desk/transport/automaticmail.h"
#include "desk/transport/delivery.h"
#include "desk/transport/mailrules.h"

#include <QDir>

namespace {

class AutomaticMailTest : public DeskTest {
  protected:
    void SetUp() override { at(0); }
    void TearDown() override { Clock::release(); }

    /// Minutes behind noon.
    static void at(int minutes) { Clock::set(DateTime{DateTime::fromDate(2024, 3, 5).days + 0.5 + minutes / 1440.0}); }
    Handle delivered(const QByteArray &message) const {
        desk::Session &open = m_desk->session();
        const desk::FolderRecord inbox = open.specialFolder(desk::SpecialFolder::Inbox);
        const desk::Delivered done = desk::deliver(open, {&open.mailbox(), inbox}, message);
        return session().of("GetItemFromID", {done.item.entryId});
    }
    Handle from(const QByteArray &sender, const QByteArray &header = {}) const {
        return delivered("From: " + sender + "\r\n" + header + "Message-ID: <1@there>\r\nSubject: S\r\n\r\nText\r\n");
    }
    [[nodiscard]] Handle draft(const QString &to, const Handle &answered = {}) const {
        const Handle mail = newItem(folder(16), "IPM.Note", "Your ticket");
        mail.put("To", to);
        if (!answered.isNothing())
            mail.put("AnsweredItem", answered);
        return mail;
    }
    /// Sends without a window; gives the header of what went out, empty where nothing did.
    QByteArray sent(const Handle &mail) const {
        const QDir folder(file("outgoing"));
        const auto messages = [&] { return folder.entryList({"*.eml"}, QDir::Files); };
        for (const QString &old : messages())
            QFile::remove(folder.filePath(old));
        mail.call("Send");
        session().call("DeliverNow");
        const QStringList now = messages();
        EXPECT_LE(now.size(), 1);
        const QByteArray bytes = now.isEmpty() ? QByteArray() : contentOf(folder.filePath(now.first()));
        return bytes.left(bytes.indexOf("\r\n\r\n") + 2);
    }
    QByteArray sentTo(const QString &to) const { return sent(draft(to)); }
    /// The reasons on what was not sent, in order.
    [[nodiscard]] QStringList reasons() const {
        const Handle root = Handle(folder(6).get("Parent"));
        const Handle kept = AttemptOr([&] { return root.of("Folders").of("Item", {"Not sent"}); }, Handle());
        QStringList all;
        for (int i = 1; !kept.isNothing() && i <= kept.of("Items").number("Count"); ++i)
            all << kept.of("Items").of("Item", {i}).of("UserProperties", {"Not sent because"}).text("Value");
        return all;
    }
    void setRules(const desk::MailRules &rules) const { desk::saveMailRules(m_desk->session().profile(), rules); }
};

const QByteArray answersByMachine = "Auto-Submitted: auto-replied\r\n";

TEST_F(AutomaticMailTest, AProgramsMailSaysWhatItIs) {
    const QByteArray begun = sentTo("bo@example.org");
    for (const char *line :
         {"Auto-Submitted: auto-generated\r\n", "X-Auto-Response-Suppress: All\r\n", "X-Desk-Loop: "})
        EXPECT_TRUE(begun.contains(line)) << line << begun.toStdString();
    EXPECT_FALSE(begun.contains("Precedence") || begun.contains("In-Reply-To"));

    const Handle question = from("cal@example.org", "References: <0@there>\r\n");
    const QByteArray answer = sent(draft("cal@example.org", question));
    for (const char *line : {"Auto-Submitted: auto-generated\r\n", "Precedence: bulk\r\n", "In-Reply-To: <1@there>\r\n",
                             "References: <0@there>\r\n <1@there>\r\n"})
        EXPECT_TRUE(answer.contains(line)) << line << answer.toStdString();

    const Handle byHand = draft("bo@example.org");
    byHand.call("Display");
    const QByteArray written = sent(byHand);
    EXPECT_FALSE(written.isEmpty());
    EXPECT_FALSE(written.contains("Auto-Submitted") || written.contains("Loop") || written.contains("Precedence"));
}

TEST_F(AutomaticMailTest, AThreadOfAStrangerStaysSmall) {
    QByteArray references = "References:";
    for (int i = 0; i < 500; ++i)
        references += "\r\n <" + QByteArray::number(i) + "@there>";
    references += "\r\n <" + QByteArray(2000, 'x') + "@there>\r\n";
    const QByteArray answer = sent(draft("cal@example.org", from("cal@example.org", references)));
    EXPECT_TRUE(answer.contains("<0@there>") && answer.contains("<499@there>") && answer.contains("<1@there>"));
    EXPECT_LT(answer.size(), 2000) << answer.toStdString();
}

TEST_F(AutomaticMailTest, AMachineIsNotAnsweredUntilAPersonWritesFromThere) {
    const struct {
        const char *name;
        QByteArray sender, header;
        QString to;
        bool isSent;
    } cases[] = {
        {"a person", "Cal <cal@example.org>", "", "cal@example.org", true},
        {"their machine", "cal@example.org", answersByMachine, "CAL@example.org", false},
        {"one of several", "bo@example.org", "", "bo@example.org; cal@example.org", false},
        {"the other alone", "bo@example.org", "", "bo@example.org", true},
        {"the person again", "cal@example.org", "", "cal@example.org", true},
        {"a list", "news@example.org", "List-Id: <news.example.org>\r\n", "news@example.org", false},
        {"a server", "MAILER-DAEMON@mx.example.org", "Return-Path: <>\r\n", "MAILER-DAEMON@mx.example.org", false},
        {"the own address", "alma.tester@localhost", "", "alma.tester@localhost", false},
        {"nobody known", "x@example.org", answersByMachine, "y@example.org", true}};
    qsizetype kept = 0;
    for (const auto &each : cases) {
        static_cast<void>(from(each.sender, each.header));
        reopen();
        EXPECT_EQ(!sentTo(each.to).isEmpty(), each.isSent) << each.name;
        kept += each.isSent ? 0 : 1;
        EXPECT_EQ(reasons().size(), kept) << each.name;
    }
    for (const char *word : {"CAL@example.org", "(out of office)", "(list)", "(bounce)", "It would come back"})
        EXPECT_FALSE(reasons().filter(word).isEmpty()) << word << reasons().join(u'\n').toStdString();
    EXPECT_EQ(folder(4).of("Items").number("Count"), 0);
    const Handle byHand = draft("alma.tester@localhost");
    byHand.call("Display");
    EXPECT_FALSE(sent(byHand).isEmpty()) << "a person writes to whom they like";
}

/// The mail that is answered was a machine's, whoever wrote from there since.
TEST_F(AutomaticMailTest, AnAutomaticMailIsNotAnswered) {
    const Handle note = from("cal@example.org", answersByMachine);
    EXPECT_EQ(note.of("UserProperties", {"Automatic mail"}).text("Value"), "out of office");
    static_cast<void>(from("cal@example.org"));
    EXPECT_TRUE(sent(draft("cal@example.org", note)).isEmpty());
    EXPECT_EQ(reasons(), QStringList{"It answers an automatic message (out of office)."});
    EXPECT_FALSE(sentTo("cal@example.org").isEmpty());
    EXPECT_EQ(failureOf([&] { draft("x@example.org").put("AnsweredItem", folder(6)); }), failures::typeMismatch);
}

/// The address to send under leads here as well as the profile's own, and so does what the rules name.
TEST_F(AutomaticMailTest, WhatWouldComeBackIsNotSent) {
    setRules({.ownAddresses = {"Second@example.org"}});
    for (const char *to : {"helpdesk@example.org", "back@example.org", "second@example.org"}) {
        const Handle mail = draft(to);
        mail.put("SentOnBehalfOfName", "Helpdesk <helpdesk@example.org>");
        mail.put("ReplyRecipientNames", "back@example.org");
        EXPECT_TRUE(sent(mail).isEmpty()) << to;
    }
    EXPECT_EQ(from("second@example.org").of("UserProperties", {"Automatic mail"}).text("Value"), "own mail");
    const QByteArray own = sentTo("bo@example.org");
    EXPECT_EQ(delivered(own + "\r\nText").of("UserProperties", {"Automatic mail"}).text("Value"), "own mail");
}

TEST_F(AutomaticMailTest, WhoCanNotBeReachedGetsNothingAndTheReasonIsKept) {
    const struct {
        QString to, gone;
    } cases[] = {{"@", ""},
                 {"a@", ""},
                 {"@b", ""},
                 {"bob", ""},
                 {"bob@.example.org", ""},
                 {"bob@example..org", ""},
                 {QString("bob@ex\u00E4mple.org"), "bob@xn--exmple-cua.org"},
                 {QString("Bob <bob@ex\uFFFDmple.org>"), ""},
                 {"bob@[192.0.2.1]", "bob@[192.0.2.1]"},
                 {"bo.b+tag@localhost", "bo.b+tag@localhost"},
                 {"cal@example.org; bob", ""},
                 {"Cora Contact", "cora@example.org"}};
    const Handle contact = newItem(folder(10), "IPM.Contact");
    contact.put("FullName", "Cora Contact");
    contact.put("Email1Address", "cora@example.org");
    contact.call("Save");
    qsizetype kept = 0;
    for (const auto &each : cases) {
        SCOPED_TRACE(each.to.toStdString());
        const QByteArray header = sentTo(each.to);
        EXPECT_EQ(!header.isEmpty(), !each.gone.isEmpty());
        EXPECT_TRUE(header.contains(each.gone.toUtf8())) << header.toStdString();
        kept += each.gone.isEmpty() ? 1 : 0;
        EXPECT_EQ(reasons().size(), kept);
    }
    EXPECT_EQ(reasons().filter("No mail can go to \"").size(), kept) << reasons().join(u'\n').toStdString();
}

TEST_F(AutomaticMailTest, AnAddressGetsTenAnHourOrAsManyAsTheRulesSay) {
    const auto sentOf = [&](int count, const QString &to) {
        int all = 0;
        for (int i = 0; i < count; ++i)
            all += sentTo(to).isEmpty() ? 0 : 1;
        return all;
    };
    EXPECT_EQ(sentOf(12, "cal@example.org"), 10);
    EXPECT_EQ(sentOf(1, "bo@example.org"), 1);
    reopen();
    at(59);
    EXPECT_EQ(sentOf(1, "Cal <cal@example.org>"), 0);
    EXPECT_EQ(reasons().size(), 3);
    EXPECT_EQ(reasons().last(),
              "Within an hour programs have sent 10 mails to cal@example.org, and no more may go there.");
    at(60);
    EXPECT_EQ(sentOf(12, "cal@example.org"), 10);
    setRules({.mostAnHour = 12});
    EXPECT_EQ(sentOf(3, "cal@example.org"), 2);
    setRules({.mostAnHour = 0});
    EXPECT_EQ(sentOf(5, "cal@example.org"), 5);
}

/// What can't be written is tried again every second, and is one mail all the same.
TEST_F(AutomaticMailTest, AMailThatWaitsForTheDiskIsCountedOnce) {
    draft("cal@example.org").call("Send");
    const QString entryId = folder(4).of("Items").of("Item", {1}).text("EntryID");
    const QString inTheWay = file("outgoing/.sending/" + entryId + ".part");
    ASSERT_TRUE(QDir().mkpath(inTheWay));
    for (int i = 0; i < 15; ++i)
        EXPECT_NE(failureOf([&] { session().call("DeliverNow"); }), 0);
    ASSERT_TRUE(QDir().rmdir(inTheWay));
    EXPECT_EQ(toInt32(session().call("DeliverNow")), 1);
    EXPECT_EQ(reasons(), QStringList());
}

/// It died between the moment when the reason was written and that of the move: the next look judges anew.
TEST_F(AutomaticMailTest, AJudgementThatACrashCutOffIsMadeAgain) {
    for (const bool mayGo : {false, true}) {
        static_cast<void>(from("cal@example.org", mayGo ? QByteArray() : answersByMachine));
        draft("cal@example.org").call("Send");
        const Handle half = folder(4).of("Items").of("Item", {1});
        half.of("UserProperties").of("Add", {"Not sent because", 1}).put("Value", "Cut off");
        half.call("Save");
        reopen();
        session().call("DeliverNow");
        EXPECT_EQ(folder(4).of("Items").number("Count"), 0);
        EXPECT_EQ(reasons(), QStringList{"The last message from cal@example.org was automatic (out of office)."});
        const Handle sentItems = folder(5).of("Items");
        ASSERT_EQ(sentItems.number("Count"), mayGo ? 1 : 0);
        EXPECT_TRUE(
            !mayGo ||
            Handle(sentItems.of("Item", {1}).of("UserProperties").call("Find", {"Not sent because"})).isNothing());
    }
}

TEST_F(AutomaticMailTest, WhatWasNotSentIsADraftForAPerson) {
    const Handle shown = draft("alma.tester@localhost");
    const Recorder events(shown, "Send");
    EXPECT_EQ(failureOf([&] { shown.call("Send"); }), 0) << "who sends it hears of success";
    EXPECT_EQ(events.count(), 1);
    session().call("DeliverNow");
    ASSERT_EQ(reasons().size(), 1);
    const Handle root = Handle(folder(6).get("Parent"));
    const Handle kept = root.of("Folders").of("Item", {"Not sent"}).of("Items").of("Item", {1});
    EXPECT_FALSE(toBool(kept.get("Sent")));
    EXPECT_EQ(kept.text("To"), "alma.tester@localhost");
    kept.call("Display");
    const QByteArray header = sent(kept);
    EXPECT_FALSE(header.isEmpty() || header.contains("Auto-Submitted"));
    EXPECT_EQ(reasons(), QStringList());
    const Handle copy = folder(5).of("Items").of("GetLast");
    EXPECT_TRUE(Handle(copy.of("UserProperties").call("Find", {"Not sent because"})).isNothing());
}

TEST_F(AutomaticMailTest, TheSwitchKeepsItOutOfTheInbox) {
    const std::pair<QByteArray, QString> cases[] = {{"Return-Path: <>\r\n", "Bounces"},
                                                    {answersByMachine, "Out of office"},
                                                    {"List-Id: <x.example.org>\r\n", "Lists"},
                                                    {"From: alma.tester@localhost\r\n", "Own mail"},
                                                    {"Auto-Submitted: auto-generated\r\n", "Other"},
                                                    {"X-Ordinary: yes\r\n", "Inbox"}};
    for (const bool isOn : {false, true}) {
        setRules({.sortsAutomatic = isOn});
        for (const auto &[header, folderName] : cases) {
            const Handle mail = delivered(header + "Subject: S\r\n\r\nText");
            const Handle parent = mail.get("Parent");
            EXPECT_EQ(parent.text("Name"), isOn ? folderName : "Inbox") << header.toStdString();
            EXPECT_TRUE(parent.text("Name") == "Inbox" ||
                        Handle(parent.get("Parent")).text("Name") == "Automatic mail");
        }
    }
    // A folder that was named on purpose is no Inbox.
    desk::Session &open = m_desk->session();
    const desk::FolderRecord drafts = open.specialFolder(desk::SpecialFolder::Drafts);
    EXPECT_EQ(desk::deliver(open, {&open.mailbox(), drafts}, answersByMachine + "\r\n").place.folder.id, drafts.id);
}

/// Whoever shares the public folders answers the same people.
TEST_F(AutomaticMailTest, ColleaguesRememberTogether) {
    desk::DeskOptions theirs = options();
    theirs.profile = file("colleague");
    theirs.user = "Bo Other";
    theirs.publicFile = file("public.store");
    const auto colleague = desk::Session::open(desk::Profile(theirs));
    const desk::FolderRecord inbox = colleague->specialFolder(desk::SpecialFolder::Inbox);
    const auto come = [&](const QByteArray &header) {
        desk::deliver(*colleague, {&colleague->mailbox(), inbox}, "From: cal@example.org\r\n" + header + "\r\nText");
    };
    come(answersByMachine);
    EXPECT_TRUE(sentTo("cal@example.org").isEmpty());
    come("");
    EXPECT_FALSE(sentTo("cal@example.org").isEmpty());
}

} // namespace
