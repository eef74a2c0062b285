// The attachments of a mail on the ticket that is made from it.

#include "desk/objects/item.h"
#include "support/files.h"
#include "support/helpdesk.h"

namespace {

class Attachments : public support::Helpdesk {
  protected:
    QStringList onTicket() const {
        QStringList all;
        const host::Attachments attachments = tickets().Items().Item(1).Attachments();
        for (qint32 i = 1; i <= attachments.Count(); ++i) {
            const host::Attachment attachment = attachments.Item(i);
            const QString file = path("saved");
            attachment.SaveAsFile(file);
            const QByteArray content = contentOf(file);
            all << attachment.FileName() + "=" + (content.size() > 40 ? QString("...") : QString::fromUtf8(content));
        }
        return all;
    }
    /// Puts a mail with attachments of any type into the monitored folder.
    void deliverItem(const QList<desk::AttachmentRecord> &attachments, const QString &body = "text") {
        const host::Item mail = intake().Items().Add("IPM.Note");
        mail.Subject("with parts");
        mail.Body(body);
        const auto item = automation::exposedOf<desk::objects::Item>(mail);
        for (const desk::AttachmentRecord &attachment : attachments)
            item->content().addAttachment(attachment);
        mail.Save();
    }
    static desk::AttachmentRecord part(qint32 type, const QString &name, const QByteArray &data) {
        desk::AttachmentRecord record;
        record.type = type;
        record.fileName = name;
        record.displayName = name;
        record.data = data;
        return record;
    }
};

TEST_F(Attachments, FilesAreCarriedWithTheirNamesAlsoWhenTheyAreTheSame) {
    start();
    deliver({.files = {{"log.txt", "one"}, {"log.txt", "two"}, {"Bericht.pdf", "three"}}});
    EXPECT_EQ(onTicket(), (QStringList{"log.txt=one", "log.txt=two", "Bericht.pdf=three"}));
    EXPECT_TRUE(QDir(path("temp")).isEmpty());
}

TEST_F(Attachments, NamesThatLeadOutOfTheFolderStayInIt) {
    start();
    deliverItem(
        {part(1, "../../evil.txt", "a"), part(1, "..\\evil.txt", "b"), part(1, QString(300, 'x') + ".txt", "c")});
    const QStringList found = onTicket();
    ASSERT_EQ(found.size(), 3);
    EXPECT_TRUE(found[0].endsWith("evil.txt=a"));
    EXPECT_TRUE(found[1].endsWith("evil.txt=b"));
    EXPECT_TRUE(found[2].endsWith(".txt=c"));
    for (const QString &each : found)
        EXPECT_FALSE(each.contains('/') || each.contains('\\')) << each.toStdString();
}

TEST_F(Attachments, AnEmbeddedMessageIsAFileOfItsName) {
    start();
    deliverItem(
        {part(5, "An older mail", "Subject: An older mail\r\n\r\nhello"), part(5, "a/b: c", "Subject: x\r\n\r\ny")});
    const QStringList found = onTicket();
    ASSERT_EQ(found.size(), 2);
    EXPECT_TRUE(found[0].startsWith("An older mail.msg=")) << found[0].toStdString();
    EXPECT_EQ(tickets().Items().Item(1).Attachments().Item(1).DisplayName(), "An older mail");
    EXPECT_EQ(tickets().Items().Item(1).Attachments().Item(2).DisplayName(), "a/b: c");
}

TEST_F(Attachments, AnOleObjectBringsTheWholeMessageBesideTheFiles) {
    start();
    deliverItem({part(1, "a.txt", "a"), part(6, "object", "ole"), part(1, "b.txt", "b"), part(4, "link", "x")});
    EXPECT_EQ(onTicket(), (QStringList{"a.txt=a", "b.txt=b", "OriginalMessage.msg=..."}));
}

TEST_F(Attachments, AnEmbeddedMessageThatCannotBeCarriedBringsTheWholeMessage) {
    const auto questions = countQuestions();
    start();
    questions->failing["Attachment.SaveAsFile()"] = failures::accessDenied;
    deliverItem({part(5, "An older mail", "Subject: An older mail\r\n\r\nhello")});
    EXPECT_EQ(subjects(intake().Folders("Converted")).size(), 1);
    questions->failing.clear();
    EXPECT_EQ(onTicket(), QStringList{"OriginalMessage.msg=..."});
}

TEST_F(Attachments, WithoutTheLibraryTheFilesComeAlone) {
    setClientTools(false);
    auto &copy = newCopy();
    copy.answers.expect("Client Tools", window::No);
    copy.answers.expect("Client Tools", window::No);
    copy.run.start();
    deliverItem({part(6, "object", "ole"), part(1, "a.txt", "a")});
    EXPECT_EQ(onTicket(), QStringList{"a.txt=a"});
}

TEST_F(Attachments, ALargeMessageWithoutAttachmentsIsAttachedWholeAndASmallerOneIsNot) {
    start();
    deliver({.subject = "large", .text = QString(30000, 'x')});
    EXPECT_EQ(onTicket(), QStringList{"OriginalMessage.msg=..."});
    EXPECT_EQ(tickets().Items().Item(1).Attachments().Item(1).DisplayName(), "large");
    tickets().Items().Item(1).Delete();
    deliver({.text = QString(20000, 'x')});
    EXPECT_TRUE(onTicket().isEmpty());
}

TEST_F(Attachments, FilesThatThereIsNoRoomForAreNamedInTheWorkLog) {
    const auto questions = countQuestions();
    start();
    questions->failing["Attachment.SaveAsFile()"] = failures::diskFull;
    deliver({.files = {{"log.txt", "one"}, {"Bericht.pdf", "three"}}});
    ASSERT_EQ(tickets().Items().Count(), 1);
    EXPECT_TRUE(onTicket().isEmpty());
    EXPECT_EQ(rows("SELECT * FROM tblWork", {"intTicketID", "strPersonName", "strWorkDescription"}),
              QStringList{"1|Alma Tester|Attachments that could not be copied from the mail (no room for temporary "
                          "files): log.txt, Bericht.pdf"});
    EXPECT_EQ(intake().Folders("Converted").Items().Item(1).Attachments().Count(), 2) << "they stay with the mail";
}

} // namespace
