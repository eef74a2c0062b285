// Mail on its way in and out, and the people it is from.

#include "deskfixture.h"

#include "desk/mail/parser.h"
#include "desk/objects/session.h"
#include "desk/transport/delivery.h"

#include <QDir>

#include <csignal>
#include <sys/resource.h>

namespace {

class MailTest : public DeskTest {
  protected:
    Handle delivered(const QByteArray &message) const {
        desk::Session &session_ = m_desk->session();
        const desk::FolderRecord inbox = session_.specialFolder(desk::SpecialFolder::Inbox);
        desk::deliver(session_, {&session_.mailbox(), inbox}, message);
        return folder(6).of("Items").of("GetLast");
    }
    [[nodiscard]] QStringList outgoing() const {
        return QDir(file("outgoing")).entryList({"*.eml"}, QDir::Files, QDir::Name);
    }
    [[nodiscard]] desk::Message sentMessage() const {
        const QStringList files = outgoing();
        EXPECT_EQ(files.size(), 1);
        return desk::parseMessage(contentOf(file("outgoing/" + files.value(0))));
    }
    Handle contact(const QString &name, const QString &address) const {
        const Handle made = application().of("CreateItem", {2});
        made.put("FullName", name);
        made.put("Email1Address", address);
        made.put("BusinessTelephoneNumber", "0815");
        made.put("Department", "Sales");
        made.call("Save");
        return made;
    }
};

const QByteArray withParts = "From: Bo Other <bo@example.org>\r\n"
                             "To: desk@example.org\r\n"
                             "Subject: Parts\r\n"
                             "Date: Mon, 16 Nov 2026 09:49:08 +0000\r\n"
                             "Importance: high\r\n"
                             "Content-Type: multipart/mixed; boundary=x\r\n\r\n"
                             "--x\r\nContent-Type: text/html\r\n\r\n<p>Seen</p>\r\n"
                             "--x\r\nContent-Type: text/plain\r\n"
                             "Content-Disposition: attachment; filename=\"../../etc/passwd\"\r\n\r\nsafe\r\n"
                             "--x\r\nContent-Type: message/rfc822\r\n\r\nSubject: Inside\r\n\r\nInner text\r\n"
                             "--x\r\nContent-Type: application/oleobject\r\n"
                             "Content-Disposition: attachment; filename=chart.ole\r\n\r\nole\r\n"
                             "--x--\r\n";

TEST_F(MailTest, AMessageBecomesAnItem) {
    const Handle mail = delivered(withParts);
    for (const auto &[member, text] : {std::pair{"MessageClass", "IPM.Note"},
                                       {"UnRead", "True"},
                                       {"SenderName", "Bo Other"},
                                       {"To", "desk@example.org"},
                                       {"Importance", "2"},
                                       {"BodyFormat", "2"}})
        EXPECT_EQ(mail.text(member), text) << member;
    EXPECT_TRUE(mail.text("HTMLBody").contains("<p>Seen</p>"));
    EXPECT_TRUE(mail.text("Body").contains("Seen"));
    EXPECT_FALSE(toDateTime(mail.get("ReceivedTime")).isZero());
    EXPECT_EQ(mail.number("Size"), withParts.size());
    mail.call("SaveAs", {file("copy.msg"), 3});
    EXPECT_EQ(contentOf(file("copy.msg")), withParts);
}

TEST_F(MailTest, AttachmentsComeOutUnderSafeNames) {
    const Handle attachments = delivered(withParts).of("Attachments");
    ASSERT_EQ(attachments.number("Count"), 3);
    const struct {
        int type;
        QByteArray content;
    } cases[] = {{1, "safe"}, {5, "Subject: Inside"}, {6, "ole"}};
    for (int i = 0; i < 3; ++i) {
        const Handle attachment = attachments.of("Item", {i + 1});
        EXPECT_EQ(attachment.number("Type"), cases[i].type) << i;
        const QString name = attachment.text("FileName");
        EXPECT_FALSE(name.isEmpty() || name.contains(u'/') || name.contains(u'\\') || name.startsWith("..")) << i;
        attachment.call("SaveAsFile", {m_folder.path() + u'\\' + name});
        EXPECT_TRUE(contentOf(file(name)).startsWith(cases[i].content)) << i;
    }
    EXPECT_EQ(attachments.of("Item", {1}).text("DisplayName"), "../../etc/passwd");
    EXPECT_EQ(failureOf([&] { attachments.of("Item", {1}).call("SaveAsFile", {"/nowhere/at/all"}); }),
              failures::pathNotFound);
}

// The names are made for a folder: no path, no more than a file system takes.
TEST_F(MailTest, EmbeddedMessagesAreCalledAfterTheirSubjects) {
    const struct {
        QByteArray subject;
        QString displayName;
        QString fileName;
    } cases[] = {
        {"Printer on fire", "Printer on fire", "Printer on fire.eml"},
        {"=?utf-8?Q?=C3=84rger?= with v1.2", "Ärger with v1.2", "Ärger with v1.2.eml"},
        {"Re: TCP/IP is down", "Re_ TCP_IP is down", "Re_ TCP_IP is down.eml"},
        {"..\\..\\etc/passwd", "_.._etc_passwd", "_.._etc_passwd.eml"},
        {"con", "_con", "_con.eml"},
        {"", "message.eml", "message.eml"},
        {"...", "message.eml", "message.eml"},
        {QByteArray(300'000, 'x'), QString(195, u'x') + "…", QString(195, u'x') + "….eml"},
    };
    for (const auto &[subject, displayName, fileName] : cases) {
        const QByteArray type = "Content-Type: message/rfc822\r\n\r\n";
        const Handle attachment =
            delivered("Content-Type: multipart/mixed; boundary=x\r\n\r\n--x\r\n\r\nSee\r\n--x\r\n" + type +
                      "Subject: " + subject + "\r\n\r\nInner\r\n--x--\r\n")
                .of("Attachments")
                .of("Item", {1});
        EXPECT_EQ(attachment.text("DisplayName"), displayName);
        EXPECT_EQ(attachment.text("FileName"), fileName);
        EXPECT_EQ(attachment.number("Type"), 5);
    }
}

// One mail can't fill the lists of everybody; the message as it came keeps all it said.
TEST_F(MailTest, LongHeadersAreBounded) {
    const QByteArray longText(250'000, 'x');
    const QByteArray message = "From: " + longText + " <bo@example.org>\r\nReply-To: " + longText + "@example.org\r\n" +
                               "To: " + QByteArray("Somebody <a@example.org>, ").repeated(20'000) +
                               "\r\nCc: " + longText + "\r\nSubject: Re: " + longText + " {12}\r\nMessage-ID: <" +
                               longText + "@x>\r\nReferences: " + QByteArray("<a@x> ").repeated(10'000) +
                               "\r\nContent-Type: multipart/mixed; boundary=x\r\n\r\n--x\r\n\r\nText\r\n--x\r\n"
                               "Content-Type: image/png; name=\"" +
                               longText + ".png\"\r\nContent-ID: <" + longText + "@x>\r\n\r\npicture\r\n--x--\r\n";
    const Handle mail = delivered(message);
    EXPECT_EQ(mail.text("Subject").size(), 1000);
    EXPECT_TRUE(mail.text("Subject").endsWith(" {12}"));
    EXPECT_EQ(mail.text("SenderEmailAddress"), "bo@example.org");
    const std::pair<const char *, qsizetype> limits[] = {
        {"SenderName", 255}, {"SentOnBehalfOfName", 255}, {"ReplyRecipientNames", 255}, {"To", 65'536}, {"CC", 255}};
    for (const auto &[member, limit] : limits) {
        EXPECT_LE(mail.text(member).size(), limit) << member;
        EXPECT_GT(mail.text(member).size(), 100) << member;
    }
    const Handle picture = mail.of("Attachments").of("Item", {1});
    EXPECT_LE(picture.text("DisplayName").size(), 255);
    EXPECT_TRUE(picture.text("DisplayName").endsWith(".png"));
    const auto stored = m_desk->session().mailbox().itemByEntryId(mail.text("EntryID"));
    ASSERT_TRUE(stored);
    EXPECT_TRUE(stored->messageId.isEmpty());
    EXPECT_LT(stored->references.size(), 1000);
    mail.call("SaveAs", {file("copy.msg"), 3});
    EXPECT_EQ(contentOf(file("copy.msg")), message);
}

/// What somebody sees of a mail who opens it.
QStringList shown(const Handle &mail) {
    QStringList all;
    for (const char *member : {"Subject", "SenderName", "SenderEmailAddress", "To", "Importance", "Body", "HTMLBody"})
        all.append(mail.text(member));
    const Handle attachments = mail.of("Attachments");
    for (int i = 1; i <= attachments.number("Count"); ++i) {
        const Handle attachment = attachments.of("Item", {i});
        const QTemporaryDir folder;
        attachment.call("SaveAsFile", {folder.filePath("x")});
        all.append(attachment.text("Type") + u'|' + attachment.text("FileName") + u'|' +
                   contentOf(folder.filePath("x")));
    }
    return all;
}

// The file is what the item is, also where the item is no more what came.
TEST_F(MailTest, AMessageFileOpensAgainAsWhatWasSaved) {
    const Handle changed = delivered(withParts);
    changed.put("Subject", "Other parts: \u00e4");
    changed.put("HTMLBody", "<p>Changed \u00fc</p>");
    changed.of("Attachments").call("Add", {written("note.txt", "content"), 1, Value::Missing{}, "A/B: shown"});
    changed.of("Attachments").of("Item", {1}).call("Delete");
    changed.call("Save");
    const Handle made = newItem(folder(6), "IPM.Post", "Made here");
    made.put("Body", "Two\r\nlines");
    made.of("Attachments").call("Add", {changed});
    made.call("Save");
    for (const Handle &item :
         {delivered(withParts), delivered("From: Berta </o=Example/cn=berta>\r\nSubject: EX\r\n\r\n.\r\n"), changed,
          made}) {
        const QString subject = item.text("Subject");
        const QString path = file("OriginalMessage.msg");
        item.call("SaveAs", {path, 3});
        const Handle opened = application().of("CreateItemFromTemplate", {path});
        EXPECT_EQ(shown(opened), shown(item)) << subject.toStdString();
        EXPECT_EQ(shown(delivered(contentOf(path))), shown(item)) << subject.toStdString();
        const Handle carrier = newItem(folder(16), "IPM.Note", "Carrier");
        carrier.of("Attachments").call("Add", {path, 1, Value::Missing{}, "Shown as this"});
        carrier.of("Attachments").call("Add", {item});
        carrier.call("Save");
        for (int i : {1, 2}) {
            carrier.of("Attachments").of("Item", {i}).call("SaveAsFile", {path});
            EXPECT_EQ(shown(application().of("CreateItemFromTemplate", {path})), shown(item)) << i;
        }
    }
    EXPECT_EQ(failureOf([&] { application().call("CreateItemFromTemplate", {file("none")}); }), failures::fileNotFound);
}

TEST_F(MailTest, AnOpenedMessageIsSentByWhoeverSendsIt) {
    const Handle opened = application().of("CreateItemFromTemplate", {written("a.msg", withParts)});
    EXPECT_FALSE(toBool(opened.get("Sent")) || toBool(opened.get("Saved")));
    opened.call("Send");
    EXPECT_EQ(toInt32(application().call("DeliverNow")), 1);
    EXPECT_EQ(sentMessage().from.name, "Alma Tester");
    EXPECT_EQ(sentMessage().attachments.size(), 3);
}

TEST_F(MailTest, AFileThatDoesNotFitSaysSoAndLeavesTheOldOne) {
    const Handle item = newItem(folder(6), "IPM.Post", "Files");
    item.put("Body", QString(100'000, u'x'));
    const QString path = written("old.txt", "old");
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    signal(SIGXFSZ, SIG_IGN);
    const rlimit small{.rlim_cur = 50'000, .rlim_max = before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    const auto failure = Attempt([&] { item.call("SaveAs", {path, 0}); });
    setrlimit(RLIMIT_FSIZE, &before);
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->number(), failures::diskFull) << failure->what();
    EXPECT_TRUE(failure->description().contains(path) && failure->description().contains("Make room"));
    EXPECT_EQ(contentOf(path), "old");
    EXPECT_EQ(failureOf([&] { item.call("SaveAs", {m_folder.path(), 0}); }), failures::permissionDenied);
}

TEST_F(MailTest, AttachedFilesAreCopied) {
    const Handle item = newItem(folder(6), "IPM.Post", "Files");
    const QString path = written("note.txt", "content");
    item.of("Attachments").call("Add", {QString(path).replace(u'/', u'\\'), 1, Value::Missing{}, "A/B: shown"});
    QFile::remove(path);
    item.call("Save");
    const Handle attachment = folder(6).of("Items").of("Item", {1}).of("Attachments").of("Item", {1});
    EXPECT_EQ(attachment.text("DisplayName"), "A/B: shown");
    EXPECT_EQ(attachment.text("FileName"), "note.txt");
    attachment.call("SaveAsFile", {path});
    EXPECT_EQ(contentOf(path), "content");
    EXPECT_EQ(failureOf([&] { item.of("Attachments").call("Add", {file("missing")}); }), failures::fileNotFound);
    const Handle held = item.of("Attachments").of("Item", {1});
    held.call("Delete");
    item.call("Save");
    EXPECT_EQ(folder(6).of("Items").of("Item", {1}).of("Attachments").number("Count"), 0);
    EXPECT_EQ(failureOf([&] { static_cast<void>(held.get("FileName")); }), failures::itemGone);
}

TEST_F(MailTest, ASubmittedMailGoesOutOnce) {
    const Handle mail = newItem(folder(4), "IPM.Note", "Answer");
    mail.put("To", "Bo Other <bo@example.org>; Cleo");
    mail.put("HTMLBody", "<p>Hello</p>");
    static_cast<void>(contact("Cleo", "cleo@example.org"));
    mail.call("Send");
    EXPECT_EQ(subjects(folder(4)), QStringList{"Answer"});
    EXPECT_EQ(toInt32(application().call("DeliverNow")), 1);
    EXPECT_EQ(subjects(folder(4)), QStringList{});
    EXPECT_EQ(subjects(folder(5)), QStringList{"Answer"});
    // Neither what has gone out nor what has come in goes out from the Outbox.
    folder(5).of("Items").of("Item", {"Answer"}).call("Move", {folder(4)});
    delivered(withParts).call("Move", {folder(4)});
    EXPECT_EQ(toInt32(application().call("DeliverNow")), 0);
    const desk::Message message = sentMessage();
    EXPECT_EQ(message.from.name, "Alma Tester");
    ASSERT_EQ(message.to.size(), 2);
    EXPECT_EQ(message.to.at(1).address, "cleo@example.org") << "a name is looked up in the address book";
    EXPECT_TRUE(message.html.contains("Hello"));
    EXPECT_FALSE(message.messageId.isEmpty());
}

TEST_F(MailTest, TheSentCopyGoesWhereItIsWanted) {
    const Handle kept = folder(5).of("Folders").of("Add", {"Kept"});
    for (const Handle &target : {kept, publicFolder("Sent by us")}) {
        const Handle mail = newItem(folder(4), "IPM.Note", "Filed");
        mail.put("To", "bo@example.org");
        mail.put("SaveSentMessageFolder", target);
        EXPECT_TRUE(mail.of("SaveSentMessageFolder") == target);
        const Recorder added(target.of("Items"), "ItemAdd");
        mail.call("Send");
        session().call("DeliverNow");
        EXPECT_EQ(subjects(target), QStringList{"Filed"});
        EXPECT_EQ(folder(5).of("Items").number("Count"), 0);
    }
}

TEST_F(MailTest, ADraftGoesByWayOfTheOutbox) {
    const Handle mail = newItem(folder(4), "IPM.Note", "Helpdesk Ticket {7}");
    mail.put("To", "bo@example.org");
    mail.put("SentOnBehalfOfName", "Service Desk <service@example.org>");
    mail.put("ReplyRecipientNames", "service@example.org");
    mail.call("Close", {0});
    EXPECT_EQ(subjects(folder(4)), QStringList());
    const Handle moved = folder(16).of("Items").of("Item", {"Helpdesk Ticket {7}"}).of("Move", {folder(4)});
    EXPECT_EQ(toInt32(application().call("DeliverNow")), 0) << "what merely lies in the Outbox is not sent";
    moved.call("Send");
    EXPECT_EQ(toInt32(application().call("DeliverNow")), 1);
    const desk::Message message = sentMessage();
    EXPECT_EQ(message.from.address, "service@example.org");
    EXPECT_EQ(message.sender.name, "Alma Tester");
    ASSERT_EQ(message.replyTo.size(), 1);
    EXPECT_EQ(message.replyTo.first().address, "service@example.org");
}

TEST_F(MailTest, AQuotedAddressGoesOutAsItIs) {
    const std::pair<const char *, QStringList> cases[] = {
        {"\"q, r\"@example.org", {"\"q, r\"@example.org"}},
        {"Q <\"q, \\\"r>\"@example.org>; bo@example.org", {"\"q, \\\"r\"@example.org", "bo@example.org"}},
        {"\"Boss, B.\" <b@example.org>, bo@example.org", {"b@example.org", "bo@example.org"}},
        {"19\" screens <b@example.org>; bo@example.org", {"b@example.org", "bo@example.org"}}};
    for (const auto &[to, expected] : cases) {
        const Handle mail = newItem(folder(16), "IPM.Note", "Quoted");
        mail.put("To", to);
        mail.call("Send");
        session().call("DeliverNow");
        QStringList addresses;
        const desk::Message sent = sentMessage();
        for (const desk::Address &address : sent.to)
            addresses << address.address;
        EXPECT_EQ(addresses.join(u'|').toStdString(), expected.join(u'|').toStdString()) << to;
        QFile::remove(file("outgoing/" + outgoing().first()));
    }
}

TEST_F(MailTest, AMailNeedsARecipientAndConsent) {
    const Handle mail = newItem(folder(16), "IPM.Note", "Nobody");
    EXPECT_EQ(failureOf([&] { mail.call("Send"); }), failures::invalidCall);
    mail.put("To", "bo@example.org");
    const auto send = mail.on("Send", [](ValueList &arguments) { arguments[0] = true; });
    mail.call("Send");
    EXPECT_EQ(folder(4).of("Items").number("Count"), 0);
}

TEST_F(MailTest, ACrashBeforeOrAfterTheMomentOfSendingIsSettled) {
    const Handle mail = newItem(folder(16), "IPM.Note", "Crashed");
    mail.put("To", "bo@example.org");
    mail.call("Send");
    const QString entryId = folder(4).of("Items").of("Item", {1}).text("EntryID");
    ASSERT_TRUE(QDir().mkpath(file("outgoing/.sending")));
    // The file was written, and the item not yet moved: the whole is done again.
    written("outgoing/.sending/" + entryId + ".part", "half");
    EXPECT_EQ(toInt32(application().call("DeliverNow")), 1);
    ASSERT_EQ(outgoing().size(), 1);
    EXPECT_EQ(sentMessage().subject, "Crashed");
    // The item was moved, and the file not yet renamed: it goes out under the same name.
    ASSERT_TRUE(QFile::rename(file("outgoing/" + outgoing().first()), file("outgoing/.sending/" + entryId + ".part")));
    EXPECT_EQ(toInt32(application().call("DeliverNow")), 0);
    ASSERT_EQ(outgoing().size(), 1);
    EXPECT_EQ(sentMessage().subject, "Crashed");
    EXPECT_EQ(QDir(file("outgoing/.sending")).entryList(QDir::Files).size(), 0);
}

TEST_F(MailTest, APostIsSignedOnce) {
    const Handle post = newItem(folder(6), "IPM.Post", "Notice");
    EXPECT_TRUE(Handle(post.get("Sender")).isNothing());
    post.call("Post");
    const Handle stored = folder(6).of("Items").of("Item", {1});
    EXPECT_EQ(stored.of("Sender").text("Name"), "Alma Tester");
    const DateTime sent = toDateTime(stored.get("SentOn"));
    EXPECT_FALSE(sent.isZero());
    stored.put("Body", "more");
    stored.call("Save");
    EXPECT_EQ(toDateTime(folder(6).of("Items").of("Item", {1}).get("SentOn")), sent);
}

TEST_F(MailTest, ASenderIsAnAddressEntry) {
    static_cast<void>(contact("Berta Boss", "berta@example.org"));
    static_cast<void>(contact("Xaver", "/o=Example/cn=xaver"));
    const std::pair<QByteArray, QStringList> cases[] = {
        {"Bo Other <bo@example.org>", {"Bo Other", "bo@example.org", "SMTP", "bo@example.org", "", ""}},
        {"bo@example.org", {"bo@example.org", "bo@example.org", "SMTP", "bo@example.org", "", ""}},
        {"B <berta@example.org>", {"B", "berta@example.org", "SMTP", "berta@example.org", "0815", "Sales"}},
        {"Y </o=Example/cn=xaver>", {"Y", "/o=Example/cn=xaver", "EX", "", "0815", "Sales"}},
        {"Berta Boss </o=Example/cn=berta>",
         {"Berta Boss", "/o=Example/cn=berta", "EX", "berta@example.org", "0815", "Sales"}}};
    for (const auto &[from, expected] : cases) {
        const Handle sender = delivered("From: " + from + "\r\nSubject: S\r\n\r\nText\r\n").of("Sender");
        QStringList told{sender.text("Name"), sender.text("Address"), sender.text("Type")};
        for (const int field : {0x39FE001E, 0x3A08001E, 0x3A18001E})
            told << toText(sender.call("Fields", {field}));
        EXPECT_EQ(told.join(u'|').toStdString(), expected.join(u'|').toStdString());
        EXPECT_EQ(failureOf([&] { sender.call("Fields", {1}); }), failures::notFound);
        const QString tail = sender.text("ID").right(54).left(48);
        EXPECT_EQ(failureOf([&] { session().call("GetItemFromID", {tail}); }), failures::notFound);
    }
}

TEST_F(MailTest, TheAddressBookLeadsToFoldersAndContacts) {
    const Handle made = contact("Bo Other", "bo@example.org");
    const Handle shared = publicFolder("Customers").of("Folders").of("Add", {"People", 10});
    const Handle lists = session().of("AddressLists");
    ASSERT_EQ(lists.number("Count"), 2);
    const Handle list = lists.of("Item", {1});
    EXPECT_TRUE(session().of("GetFolderFromID", {list.text("ID").right(48)}) == folder(10));
    EXPECT_TRUE(session().of("GetFolderFromID", {lists.of("Item", {"People"}).text("ID").right(48)}) == shared);
    const Handle entry = list.of("AddressEntries").of("Item", {"Bo Other"});
    EXPECT_EQ(entry.text("Address"), "bo@example.org");
    const QString contactId = entry.text("ID").right(54).left(48);
    EXPECT_EQ(contactId, made.text("EntryID"));
    EXPECT_EQ(session().of("GetItemFromID", {contactId}).text("FullName"), "Bo Other");
}

/// A helpdesk has tens of thousands of folders, and another process may make a contacts folder among them at any time.
TEST_F(MailTest, ContactsFoldersAreKnownWhereverTheyAreAndAsSoonAsAnybodyMakesThem) {
    const auto listed = [&] {
        QStringList paths;
        const Handle lists = session().of("AddressLists");
        for (int i = 1; i <= lists.number("Count"); ++i)
            paths += session().of("GetFolderFromID", {lists.of("Item", {i}).text("ID").right(48)}).text("FolderPath");
        return paths;
    };
    const QString own = folder(10).text("FolderPath");
    EXPECT_EQ(listed(), QStringList{own});
    desk::Store other(file("public.store"));
    desk::FolderRecord place = other.root();
    for (const char *name : {"Helpdesk", "12", "Customers"})
        place = other.addFolder({.parent = place.id, .name = name, .defaultItemType = 6});
    EXPECT_EQ(listed(), QStringList{own});
    const desk::FolderRecord people = other.addFolder({.parent = place.id, .name = "People", .defaultItemType = 2});
    EXPECT_EQ(listed(), (QStringList{own, "\\\\Public Folders\\Helpdesk\\12\\Customers\\People"}));
    other.moveFolder(people.id, other.root().id);
    EXPECT_EQ(listed(), (QStringList{own, "\\\\Public Folders\\People"}));
    other.removeFolder(people.id);
    EXPECT_EQ(listed(), QStringList{own});
    const Handle friends = folder(10).of("Folders").of("Add", {"Friends"});
    EXPECT_EQ(listed(), (QStringList{own, own + "\\Friends"}));
    friends.call("Delete");
    EXPECT_EQ(listed(), QStringList{own});
}

TEST_F(MailTest, RecipientsAreResolved) {
    static_cast<void>(contact("Bo Other", "bo@example.org"));
    const struct {
        QString given, name, address;
    } cases[] = {{"Alma Tester", "Alma Tester", "alma.tester@localhost"},
                 {"bo other", "Bo Other", "bo@example.org"},
                 {"bo@example.org", "Bo Other", "bo@example.org"},
                 {"Cleo <cleo@example.org>", "Cleo", "cleo@example.org"},
                 {"Nobody", "Nobody", ""}};
    for (const auto &each : cases) {
        const Handle recipient = session().of("CreateRecipient", {each.given});
        EXPECT_EQ(recipient.text("Name"), each.name);
        EXPECT_EQ(recipient.text("Address"), each.address) << each.given.toStdString();
        EXPECT_EQ(toBool(recipient.call("Resolve")), !each.address.isEmpty()) << each.given.toStdString();
    }
}

} // namespace
