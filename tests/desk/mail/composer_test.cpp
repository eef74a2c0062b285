// What is written is what is read, and it is mail that others understand.
#include "desk/mail/composer.h"
#include "desk/mail/parser.h"
#include "platform/value/datetime.h"
#include "print.h"

#include <gtest/gtest.h>

using namespace desk;

namespace {

Attachment file(const QString &name, const QByteArray &data, const QString &type = "application/octet-stream",
                AttachmentType kind = AttachmentType::ByValue) {
    Attachment attachment;
    attachment.type = kind;
    attachment.name = name;
    attachment.mimeType = type;
    attachment.data = data;
    return attachment;
}

Attachment picture() {
    Attachment attachment = file("sign.png", "\x89PNG\r\n", "image/png");
    attachment.contentId = "sign@x";
    attachment.isInline = true;
    return attachment;
}

Attachment embedded(const QByteArray &data) {
    return file("inner", data, "message/rfc822", AttachmentType::EmbeddedMessage);
}

Message simple() {
    Message message;
    message.subject = "Printer";
    message.from = {"Ann Lee", "ann@x.example"};
    message.to = {{"", "desk@x.example"}};
    message.sentAt = QDateTime(QDate(2026, 11, 16), QTime(9, 31, 5), Qt::OffsetFromUTC, 5400);
    message.messageId = "1@x.example";
    message.text = "hello\r\n";
    return message;
}

struct Case {
    const char *name;
    std::function<void(Message &)> change;
};

class RoundTrip : public testing::TestWithParam<Case> {};

TEST_P(RoundTrip, GivesTheSameMessage) {
    Message message = simple();
    GetParam().change(message);
    const QByteArray bytes = composeMessage(message);
    const Message again = parseMessage(bytes);
    EXPECT_TRUE(again == message) << bytes.toStdString();
}

std::function<void(Message &)> holding(const QString &html, const QList<Attachment> &attachments) {
    return [=](Message &message) { message.html = html, message.attachments = attachments; };
}

const Case cases[] = {
    {"Simple", [](Message &) {}},
    {"NoText", [](Message &m) { m.text = {}; }},
    {"TextWithoutLastLineEnd", [](Message &m) { m.text = "a"; }},
    {"LinesOfBlanksAndDots", [](Message &m) { m.text = " \r\n.\r\n \t\r\nFrom here\r\n\r\n"; }},
    {"LineOfAThousand", [](Message &m) { m.text = QString(3000, u'x') + " \r\n"; }},
    {"Unicode", [](Message &m) { m.text = "Grüße, Ελλάδα, 日本, 😀\r\n"; }},
    {"MostlyAscii", [](Message &m) { m.text = "long line with one ü = umlaut " + QString(200, u'a') + "\r\n"; }},
    {"HtmlOnly", [](Message &m) { m.text = {}, m.html = "<p>ü</p>\r\n"; }},
    {"TextAndHtml", [](Message &m) { m.html = "<p>hello</p>"; }},
    {"HtmlWithPictures", holding("<img src=cid:sign@x>", {picture(), picture()})},
    {"PictureAndFile", holding("<p>", {picture(), file("a", "b")})},
    {"FileBeforePicture", holding("<p>", {file("a", "b"), picture()})},
    {"PictureWithoutHtml", holding("", {picture()})},
    {"TwoOfOneName", holding("", {file("a.txt", "1"), file("a.txt", "2")})},
    {"EmptyUnnamedFile", holding("", {file("", "")})},
    {"TextFile", holding("", {file("", "a\nb\rc\r\n", "text/plain")})},
    {"EveryByte",
     [](Message &m) {
         QByteArray bytes(70'000, '\0');
         for (qsizetype i = 0; i < bytes.size(); ++i)
             bytes[i] = static_cast<char>(i);
         m.attachments = {file("bytes", bytes)};
     }},
    {"Embedded", holding("", {embedded("Subject: in\r\n\r\nhi\r\n")})},
    {"EmbeddedWithMultipart", [](Message &m) { m.attachments = {embedded(composeMessage(m))}; }},
    {"EmbeddedEightBit", holding("", {embedded("Subject: in\r\n\r\n\xE4\r\n")})},
    {"EmbeddedWithNul", holding("", {embedded(QByteArray("Subject: in\r\n\r\n\0\n", 18))})},
    {"Ole", holding("", {file("o", "x", "application/x-oleobject", AttachmentType::Ole)})},
    {"NamesOfFiles",
     [](Message &m) {
         for (const char *name :
              {"ä.txt", "a \"b\".txt", "..\\..\\x", "a;b=c*.txt", "=?utf-8?q?x?=", "100%25.txt", "日本語.pdf"})
             m.attachments += file(name, "x");
         m.attachments += file(QString("sehr lang ü ").repeated(30) + ".pdf", "x");
     }},
    {"Subjects", [](Message &m) { m.subject = "Größe: 2  blanks, =?utf-8?q?no?= and 😀"; }},
    {"LongSubject", [](Message &m) { m.subject = QString("word  and word ").repeated(40).trimmed(); }},
    {"SubjectOfOneWord", [](Message &m) { m.subject = QString(2000, u'x'); }},
    {"EmptySubject", [](Message &m) { m.subject = {}; }},
    {"People",
     [](Message &m) {
         m.sender = {"Bob", "bob@x"};
         m.replyTo = {{"Lee, Ann", "a@x"}, {"", "b@x"}};
         m.to = {{"Müller \"M\" (x)", "m@ü.example"}, {"a@b", "c@d"}, {"", "\"a b\"@c"}, {"nobody", ""}};
         m.cc = {{QString("Ä").repeated(100), "x@[127.0.0.1]"}};
         m.bcc = {{"", "secret@x"}};
     }},
    {"Marks",
     [](Message &m) {
         m.importance = Importance::High;
         m.sensitivity = Sensitivity::Confidential;
         m.readReceiptRequested = true;
     }},
    {"LowAndPrivate", [](Message &m) { m.importance = Importance::Low, m.sensitivity = Sensitivity::Private; }},
    {"References",
     [](Message &m) {
         m.inReplyTo = {"0@x"}, m.references = {"a@x", "ü@x", QString(300, u'r')};
     }},
    {"WestOfGreenwich", [](Message &m) { m.sentAt = m.sentAt.toOffsetFromUtc(-12600); }},
};
INSTANTIATE_TEST_SUITE_P(All, RoundTrip, testing::ValuesIn(cases), nameOfCase);

TEST(Compose, FillsInDateAndIdentifier) {
    Clock::set(DateTime::fromQt(QDateTime(QDate(2026, 11, 16), QTime(9, 0))));
    Message message = simple();
    message.messageId = {};
    message.sentAt = {};
    const Message first = parseMessage(composeMessage(message));
    const Message second = parseMessage(composeMessage(message));
    Clock::release();
    EXPECT_EQ(first.sentAt.toLocalTime(), QDateTime(QDate(2026, 11, 16), QTime(9, 0)));
    EXPECT_TRUE(first.messageId.endsWith(u"@x.example"));
    EXPECT_NE(first.messageId, second.messageId);
}

// Whatever a text holds, it can't become a header of its own.
TEST(Compose, NoFieldStartsAnotherHeader) {
    const QString evil = "x\r\nEvil: yes\r\n\r\nbody\n\rEvil: 2";
    Message message = simple();
    message.subject = message.messageId = message.from.name = message.from.address = evil;
    message.to = {{evil, evil}};
    message.references = {evil};
    Attachment attachment = file(evil, "x", evil);
    attachment.contentId = attachment.charset = evil;
    message.attachments = {attachment};
    const QByteArray bytes = composeMessage(message);
    EXPECT_FALSE(bytes.contains("\nEvil"));
    EXPECT_FALSE(bytes.contains("\rEvil"));
    const Message again = parseMessage(bytes);
    EXPECT_EQ(again.subject, "x Evil: yes body Evil: 2");
    EXPECT_EQ(again.text, message.text);
    EXPECT_EQ(again.attachments.size(), 1);
}

TEST(Compose, LinesAreShortSevenBitAndEndInCrLf) {
    Message message = simple();
    message.subject = QString("Größe ").repeated(100);
    message.text = QString("Grüße ").repeated(500);
    message.attachments = {file(QString("ü").repeated(150), QByteArray(5000, '\xFF'))};
    const QByteArray bytes = composeMessage(message);
    for (const QByteArray &line : bytes.split('\n')) {
        EXPECT_LE(line.size(), 100) << line.toStdString();
        EXPECT_TRUE(line.isEmpty() || line.endsWith('\r'));
        EXPECT_TRUE(std::none_of(line.begin(), line.end(), [](char c) { return static_cast<signed char>(c) < 0; }));
    }
}

// Mail programs refuse an embedded message in base64.
TEST(Compose, AnEmbeddedMessageTravelsAsItIs) {
    Message message = simple();
    message.attachments = {embedded("Subject: in\n\nline\n")};
    EXPECT_TRUE(composeMessage(message).contains("Subject: in\r\n\r\nline\r\n"));
}

} // namespace
