// Bodies and attachments, of well-formed messages and of what is left of others.
#include "desk/mail/parser.h"
#include "print.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>

#include <sys/resource.h>

using namespace desk;

namespace {

/// Lines with LF, as they are easier to write here, as a message with CR LF.
Message parseLines(const QByteArray &lines) { return parseMessage(QByteArray(lines).replace("\n", "\r\n")); }

QByteArray multipart(const QByteArray &subtype, const QList<QByteArray> &parts, const QByteArray &boundary = "b") {
    QByteArray text = "Content-Type: multipart/" + subtype + "; boundary=\"" + boundary + "\"\n\n";
    for (const QByteArray &part : parts)
        text += "--" + boundary + "\n" + part + "\n";
    return text + "--" + boundary + "--\n";
}

QByteArray part(const QByteArray &type, const QByteArray &content) {
    return "Content-Type: " + type + "\n\n" + content;
}
QByteArray mixed(const QList<QByteArray> &parts) { return multipart("mixed", parts); }
QByteArray cut(const QByteArray &parameters, const QByteArray &rest) {
    return part("multipart/mixed" + parameters, rest);
}
QByteArray encoded(const QByteArray &encoding, const QByteArray &content) {
    return "Content-Transfer-Encoding: " + encoding + "\n\n" + content;
}

const QByteArray plain = part("text/plain", "plain");
const QByteArray html = part("text/html", "<p>html</p>");
const QByteArray image = part("image/png\nContent-ID: <pic@x>\nContent-Transfer-Encoding: base64", "iVBORw==");

struct BodyCase {
    const char *name;
    QByteArray message;
    QString text;
    QString html;
    QStringList attachments; ///< their types
};

class Bodies : public testing::TestWithParam<BodyCase> {};

TEST_P(Bodies, AreFound) {
    const Message message = parseLines(GetParam().message);
    EXPECT_EQ(message.text, GetParam().text);
    EXPECT_EQ(message.html, GetParam().html);
    QStringList types;
    for (const Attachment &attachment : message.attachments)
        types += attachment.mimeType;
    EXPECT_EQ(types, GetParam().attachments);
}

const QString htmlAndPlain = "<p>html</p><div>plain</div>";
const QByteArray attached = "Content-Disposition: attachment";
const QByteArray markedText = "text/plain\n" + attached;
const char *const signature = "application/pgp-signature";
const QByteArray russianPage = "<meta charset=\"windows-1251\">";

const BodyCase bodies[] = {
    {"NoMime", "Subject: x\n\nhello\n", "hello\r\n", "", {}},
    {"HtmlOnly", html, "", "<p>html</p>", {}},
    {"Alternative", multipart("alternative", {plain, html}), "plain", "<p>html</p>", {}},
    {"AlternativeOfOneForm", mixed({multipart("alternative", {html}, "c"), plain}), "html\r\nplain", htmlAndPlain, {}},
    {"BothFormsInOneAlternative",
     multipart("alternative", {multipart("mixed", {plain, html}, "c"), part("text/x-other", "x")}),
     "plain",
     "",
     {"text/html", "text/x-other"}},
    {"Related", multipart("related", {html, image}), "", "<p>html</p>", {"image/png"}},
    {"TextInRelatedIsNoBody", multipart("related", {html, plain}), "", "<p>html</p>", {"text/plain"}},
    {"Footer", mixed({plain, image, plain}), "plain\r\nplain", "", {"image/png"}},
    {"FooterOfHtml", mixed({html, plain}), "html\r\nplain", htmlAndPlain, {}},
    {"NamedTextIsAttachment", mixed({plain, part("text/plain; name=a", "x")}), "plain", "", {"text/plain"}},
    {"NamedTextInFrontIsBody", mixed({part("text/plain; name=a.txt", "body")}), "body", "", {}},
    {"MarkedTextIsAttachment", mixed({part(markedText, "x"), plain}), "plain", "", {"text/plain"}},
    {"CalendarIsAttachment", mixed({plain, part("text/calendar", "BEGIN")}), "plain", "", {"text/calendar"}},
    {"Signed", multipart("signed", {plain, part(signature, "sig")}), "plain", "", {signature}},
    {"QuotedPrintable",
     "Content-Type: text/plain; charset=iso-8859-1\n" + encoded("quoted-printable", "Stra=DFe =\nlang=20\n=ZZ\n"),
     "Straße lang \r\n=ZZ\r\n",
     "",
     {}},
    {"Base64", "Content-Type: text/plain; charset=utf-8\n" + encoded("base64", "w6QK\n"), "ä\r\n", "", {}},
    {"Uuencode", encoded("x-uuencode", "begin 644 x\n#86)C\n`\nend\n"), "abc", "", {}},
    {"UnknownEncoding", encoded("x-none", "as it is\n"), "as it is\r\n", "", {}},
    {"MarkedAsBase64AndIsNot", encoded("base64", "Dear all, hello!\n"), "Dear all, hello!\r\n", "", {}},
    {"TypeThatIsNone", part("text", "hello\n"), "hello\r\n", "", {}},
    {"CharsetOfThePage", part("text/html", russianPage + "\xCF"), "", russianPage + "П", {}},
    {"FlowedStaysAsSent", part("text/plain; format=flowed", "one \ntwo\n"), "one \r\ntwo\r\n", "", {}},
    // What is broken.
    {"Nothing", "", "", "", {}},
    {"NoHeader", "Dear all,\nhello\n", "Dear all,\r\nhello\r\n", "", {}},
    {"HeaderBehindEmptyLines", "\n\nSubject: x\n\nhello\n", "hello\r\n", "", {}},
    {"HeaderBehindPostmark", "From a@b Mon Nov 16 09:00:00 2026\nSubject: x\n\nhello\n", "hello\r\n", "", {}},
    {"NoEmptyLine", "Subject: x\nhello there\nyou\n", "hello there\r\nyou\r\n", "", {}},
    {"CutOff", cut("; boundary=b", "--b\nContent-Type: text/plain\n\nhello"), "hello", "", {}},
    {"InnerMultipartWithoutEnd",
     mixed({"Content-Type: multipart/alternative; boundary=i\n\n--i\n" + part("text/plain", "one"),
            part("image/png", "x")}),
     "one",
     "",
     {"image/png"}},
    {"NoParts", cut("; boundary=b", "hello\n"), "hello\r\n", "", {}},
    {"NoBoundary", cut("", "--b\n\none\n--b\n" + part("image/png", "x") + "\n--b--\n"), "one", "", {"image/png"}},
    {"BoundaryOfAnother", cut("; boundary=q", "--b\n\none\n--b--\n"), "one", "", {}},
};
INSTANTIATE_TEST_SUITE_P(All, Bodies, testing::ValuesIn(bodies), nameOfCase);

// A line end too many or too few before a boundary would cost or add a character.
TEST(Bodies, LineEndsOfEveryKindBecomeOne) {
    EXPECT_EQ(parseMessage("Subject: x\n\na\nb\n").text, "a\r\nb\r\n");
    EXPECT_EQ(parseMessage("Subject: x\r\n\r\na\r\nb\rc\n").text, "a\r\nb\r\nc\r\n");
    const Message old = parseMessage("Subject: x\r\ra\rb\r");
    EXPECT_EQ(old.subject, "x");
    EXPECT_EQ(old.text, "a\r\nb\r\n");
    const Message mixedEnds = parseMessage("Content-Type: multipart/mixed; boundary=b\r\n\r\n"
                                           "--b\r\n\r\none\n--b\r\n\r\ntwo\r\n--b\n\nthree\n--b--\r\n");
    EXPECT_EQ(mixedEnds.text, "one\r\ntwo\r\nthree");
}

struct NameCase {
    const char *name;
    QByteArray header;
    QString decoded;
};

class AttachmentNames : public testing::TestWithParam<NameCase> {};

TEST_P(AttachmentNames, AreDecoded) {
    const Message message = parseLines(multipart("mixed", {plain, GetParam().header + "\n\nx"}));
    ASSERT_EQ(message.attachments.size(), 1);
    EXPECT_EQ(message.attachments.first().name, GetParam().decoded);
}

const NameCase names[] = {
    {"Plain", attached + "; filename=a.txt", "a.txt"},
    {"Quoted", attached + "; filename=\"a b;c.txt\"", "a b;c.txt"},
    {"FilenameBeforeName", "Content-Type: image/gif; name=b.gif\n" + attached + "; filename=a.gif", "a.gif"},
    {"NameAlone", "Content-Type: image/gif; name=b.gif", "b.gif"},
    {"Percent", attached + "; filename*=utf-8'de'%C3%A4.txt", "ä.txt"},
    {"PercentInAnotherSet", attached + "; filename*=koi8-r''%F0.txt", "П.txt"},
    {"Pieces", attached + ";\n filename*0*=utf-8''%E2%82;\n filename*1*=%AC;\n filename*2=\".txt\"", "€.txt"},
    {"PiecesOutOfOrder", attached + "; filename*1=b.txt; filename*0=a", "ab.txt"},
    {"EncodedWord", attached + "; filename=\"=?iso-8859-1?Q?=E4.txt?=\"", "ä.txt"},
    {"RawUtf8", attached + "; filename=\"\xC3\xA4.txt\"", "ä.txt"},
    {"RawLatin1", attached + "; filename=\"\xE4.txt\"", "ä.txt"},
    {"Path", attached + "; filename=\"../../etc/passwd\"", "../../etc/passwd"},
    {"None", attached, ""},
};
INSTANTIATE_TEST_SUITE_P(All, AttachmentNames, testing::ValuesIn(names), nameOfCase);

TEST(Attachments, KeepTheirBytesTypesAndOrder) {
    const Message message =
        parseLines(mixed({plain, image, part("APPLICATION/X-OLEobject", "ole"),
                          part("application/pdf; name=a.pdf", "one"), part("application/pdf; name=a.pdf", "two")}));
    ASSERT_EQ(message.attachments.size(), 4);
    EXPECT_EQ(message.attachments[0].data, "\x89PNG");
    EXPECT_EQ(message.attachments[0].contentId, "pic@x");
    EXPECT_TRUE(message.attachments[0].isInline);
    EXPECT_EQ(message.attachments[1].type, AttachmentType::Ole);
    EXPECT_EQ(message.attachments[1].mimeType, "application/x-oleobject");
    EXPECT_FALSE(message.attachments[1].isInline);
    EXPECT_EQ(message.attachments[2].data, "one");
    EXPECT_EQ(message.attachments[3].data, "two");
    EXPECT_EQ(message.attachments[3].name, message.attachments[2].name);
}

TEST(Attachments, EmbeddedMessagesKeepTheirOwnBytes) {
    for (const QByteArray &inner :
         {part("message/rfc822", "Subject: inner\n\nhi"),
          "Content-Type: message/rfc822\n" + encoded("base64", "U3ViamVjdDogaW5uZXINCg0KaGk="),
          "Content-Type: message/rfc822\n" + encoded("quoted-printable", "Subject:=20inner\n\nhi")}) {
        const Message message = parseLines(mixed({plain, inner}));
        ASSERT_EQ(message.attachments.size(), 1);
        EXPECT_EQ(message.attachments[0].type, AttachmentType::EmbeddedMessage);
        EXPECT_EQ(message.attachments[0].data, "Subject: inner\r\n\r\nhi");
    }
}

TEST(Attachments, AnEmbeddedMessageThatIsNoneIsAFile) {
    const Message message = parseLines(mixed({plain, part("message/rfc822; name=a.eml", "not a message, sorry!")}));
    ASSERT_EQ(message.attachments.size(), 1);
    EXPECT_EQ(message.attachments[0].type, AttachmentType::ByValue);
    EXPECT_EQ(message.attachments[0].data, "not a message, sorry!");
}

TEST(Attachments, PartsOfADigestAreMessages) {
    const Message message = parseLines(multipart("digest", {"\nSubject: one\n\n1", "\nSubject: two\n\n2"}));
    ASSERT_EQ(message.attachments.size(), 2);
    EXPECT_EQ(message.attachments[1].type, AttachmentType::EmbeddedMessage);
    EXPECT_EQ(parseMessage(message.attachments[1].data).subject, "two");
}

// Messages that were made to do harm: they must cost no more than others of their size, and nothing may be lost.
struct HostileCase {
    const char *name;
    std::function<QByteArray()> message;
};

class Hostile : public testing::TestWithParam<HostileCase> {};

TEST_P(Hostile, CostsNoMoreThanItsSize) {
    const QByteArray bytes = GetParam().message();
    QElapsedTimer timer;
    timer.start();
    const Message message = parseMessage(bytes);
    static_cast<void>(message.bodyText());
    // A quadratic reader needs minutes for these; the bound leaves room for a busy machine and for sanitizers.
    EXPECT_LT(timer.elapsed(), 30'000);
    EXPECT_LE(message.attachments.size(), 2001);
}

QByteArray repeated(const QByteArray &head, const QByteArray &piece, int count) { return head + piece.repeated(count); }

const HostileCase hostile[] = {
    {"ManyHeaders", [] { return repeated("", "a:\n", 1'000'000); }},
    {"LongHeader", [] { return repeated("Subject: ", "x y ", 1'000'000) + "\n\nbody"; }},
    {"OpenEncodedWords", [] { return repeated("Subject: ", "=?utf-8?q?", 300'000) + "\n\nbody"; }},
    {"OpenQuotes", [] { return repeated("To: ", "\"(<", 300'000) + "\n\nbody"; }},
    {"OpenComments", [] { return repeated("To: ", "(", 1'000'000) + "\n\nbody"; }},
    {"ManyGroups", [] { return repeated("To: ", "a:", 500'000) + "\n\nbody"; }},
    {"ManyParameters", [] { return repeated("Content-Type: text/plain", ";a*0*=x", 100'000) + "\n\nbody"; }},
    {"ManyParts", [] { return repeated("Content-Type: multipart/mixed; boundary=a\n\n", "--a\n\n\n", 500'000); }},
    {"DeepNesting",
     [] {
         QByteArray text;
         for (int i = 0; i < 5000; ++i)
             text += "Content-Type: multipart/mixed; boundary=b" + QByteArray::number(i) + "\n\n--b" +
                     QByteArray::number(i) + "\n";
         return text + QByteArray("--x\n").repeated(1'000'000);
     }},
    {"LostBoundaries",
     [] {
         QByteArray text = "Content-Type: multipart/mixed\n\n";
         for (int i = 0; i < 2000; ++i)
             text += "--c" + QByteArray::number(i) + "\nContent-Type: multipart/mixed\n\n";
         return text + QByteArray(1'000'000, 'x');
     }},
    {"OpenTags", [] { return repeated("Content-Type: text/html\n\n", "<a \"<!-", 300'000); }},
    {"OpenScripts", [] { return repeated("Content-Type: text/html\n\n", "<script><!--&&&", 200'000); }},
};
INSTANTIATE_TEST_SUITE_P(All, Hostile, testing::ValuesIn(hostile), nameOfCase);

/// What a step adds to the most memory that this process had at any time, in bytes.
template <class Step>
qint64 memoryOf(const Step &step) {
    const auto peak = [] {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        return qint64{usage.ru_maxrss} * 1024;
    };
    const qint64 before = peak();
    step();
    return peak() - before;
}

struct LargeCase {
    const char *name;
    std::function<QByteArray(qsizetype)> message;
};

class Large : public testing::TestWithParam<LargeCase> {};

// A process of its own for each, since a peak is never forgotten. The text itself is there before.
TEST_P(Large, CostsLittleMoreThanItself) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer keeps what was freed";
#endif
    constexpr qsizetype size = qsizetype{128} * 1024 * 1024;
    const auto run = [] {
        const QByteArray bytes = GetParam().message(size);
        const qint64 used = memoryOf([&] { static_cast<void>(parseMessage(bytes).bodyText()); });
        std::fprintf(stderr, "%lld MB\n", static_cast<long long>(used >> 20));
        std::_Exit(used < size + size / 2 ? 0 : 1);
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(0), "");
}

const QByteArray line = "The quick brown fox jumps over the lazy dog.\r\n";

const LargeCase large[] = {
    {"Text", [](qsizetype size) { return part("text/plain", line.repeated(size / line.size())); }},
    {"UnmarkedText", [](qsizetype size) { return part("text/plain", "\xE4\r\n" + line.repeated(size / line.size())); }},
    {"Html", [](qsizetype size) { return part("text/html", line.repeated(size / line.size())); }},
    {"OneLine", [](qsizetype size) { return part("text/plain", QByteArray(size, 'x')); }},
    {"NoHeader", [](qsizetype size) { return line.repeated(size / line.size()); }},
    {"Base64",
     [](qsizetype size) {
         const QByteArray encodedLine = line.toBase64() + "\r\n";
         return "Content-Type: text/plain\n" + encoded("base64", encodedLine.repeated(size / encodedLine.size()));
     }},
    {"Attachment",
     [](qsizetype size) {
         const QByteArray encodedLine = line.toBase64() + "\n";
         return mixed(
             {plain, "Content-Type: image/png\n" + encoded("base64", encodedLine.repeated(size / encodedLine.size()))});
     }},
    {"Subject", [](qsizetype size) { return "Subject: " + QByteArray(size, 'x') + "\n\nbody"; }},
    {"People",
     [](qsizetype size) { return "To: " + QByteArray("Some Body <a@b>, ").repeated(size / 17) + "\n\nbody"; }},
    {"Headers",
     [](qsizetype size) {
         return QByteArray("To: " + QByteArray(100'000, 'x') + "\n").repeated(size / 100'000) + "\n";
     }},
    {"NulHeader", [](qsizetype size) { return "Subject: " + QByteArray(size, '\0') + "\n\nbody"; }},
};
INSTANTIATE_TEST_SUITE_P(All, Large, testing::ValuesIn(large), nameOfCase);

// What is too long is cut at a line's end and says so; what stands behind it is still read.
TEST(Limits, LongBodiesSayThatTheyGoOn) {
    const QByteArray first = QByteArray("0123456789abcde\n").repeated((16 << 20) / 16 - 1) + "last line\n";
    const QByteArray rest = QByteArray("too much\n").repeated(100);
    const QString notice =
        "[The text goes on and is too long to be shown. Save this message as a file to read all of it.]";
    for (const QByteArray &encoding : {QByteArray("8bit"), QByteArray("base64")}) {
        const QByteArray text = encoding == "8bit" ? first + rest : (first + rest).toBase64();
        const Message message = parseMessage(mixed({encoded(encoding, text), plain, image}));
        EXPECT_EQ(message.text.last(11 + notice.size() + 2), "last line\r\n" + notice + "\r\n") << encoding.data();
        EXPECT_EQ(message.attachments.size(), 1);
    }
    EXPECT_FALSE(parseMessage(part("text/plain", first)).text.contains(notice));
    const Message page = parseMessage(part("text/html", "<body>" + first + rest + "</body>"));
    EXPECT_TRUE(page.html.endsWith("<p>" + notice + "</p>"));
    EXPECT_TRUE(page.bodyText().endsWith(notice + "\r\n"));
}

TEST(Limits, LongFieldsAreCutAndTheOthersRead) {
    const QByteArray head = "From: a@b\nSubject: x" + QByteArray(3 << 20, 'y') + "\n" + QByteArray(" z").repeated(100) +
                            "\nX-Other: " + QByteArray(1 << 20, 'x') + "\n folded" + "\nTo: c@d\n";
    const Message message = parseMessage(head + "\nbody\n");
    EXPECT_EQ(message.from.address, "a@b");
    EXPECT_TRUE(message.subject.startsWith("xyy"));
    EXPECT_EQ(message.to.value(0).address, "c@d");
    EXPECT_EQ(message.text, "body\r\n");
    // A text whose lines look like fields behind a line that looks like a boundary is all there.
    const QByteArray text = "--\nlog: " + QByteArray(3 << 20, 'x') + "\nend\n";
    EXPECT_EQ(parseMessage("Subject: x\n\n" + text).text, QString(text).replace("\n", "\r\n"));
    const Message stray = parseMessage("X: " + QByteArray(3 << 20, 'x') + "\nhello there\nyou\n");
    EXPECT_EQ(stray.text, "hello there\r\nyou\r\n");
}

TEST(Limits, PartsBeyondTheLastAreKeptUnread) {
    const QByteArray parts = QByteArray("--b\r\nContent-Type: image/png\r\n\r\nx\r\n").repeated(2100) +
                             "--b\r\nContent-Type: image/png\r\n\r\nthe last\r\n--b--\r\n";
    const Message message = parseMessage("Content-Type: multipart/mixed; boundary=b\r\n\r\n" + parts);
    ASSERT_EQ(message.attachments.size(), 2001);
    EXPECT_TRUE(message.attachments.last().data.contains("the last"));
}

} // namespace
