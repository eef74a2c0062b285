// Texts for people: HTML as plain text and back, names of files.
#include "desk/mail/html.h"
#include "desk/mail/message.h"
#include "print.h"

#include <gtest/gtest.h>

using namespace desk;

namespace {

struct HtmlCase {
    const char *name;
    QString html;
    QString text;
};

class HtmlText : public testing::TestWithParam<HtmlCase> {};

TEST_P(HtmlText, IsWhatAReaderSees) { EXPECT_EQ(textFromHtml(GetParam().html), GetParam().text); }

const HtmlCase htmlCases[] = {
    {"Empty", "", ""},
    {"Plain", "just text", "just text\r\n"},
    {"BlanksCollapse", "  a \r\n\t b  ", "a b\r\n"},
    {"Break", "a<br>b<BR/>c", "a\r\nb\r\nc\r\n"},
    {"Paragraphs", "<p>a</p><p>b</p>", "a\r\n\r\nb\r\n"},
    {"Blocks", "<div>a</div><div><div>b</div></div>", "a\r\nb\r\n"},
    {"BreakAtTheEndOfABlock", "<div>a<br></div><div>b</div>", "a\r\nb\r\n"},
    {"EmptyLines", "a<br><br>b", "a\r\n\r\nb\r\n"},
    {"InlineTags", "a<b>b</b> <i>c</i>", "ab c\r\n"},
    {"List", "<ul><li>a<li>b</ul>c", "* a\r\n* b\r\n\r\nc\r\n"},
    {"Table", "<table><tr><td>a</td><td>b</td></tr><tr><td>c</td></tr></table>", "a\tb\r\nc\r\n"},
    {"Preformatted", "<pre>a  b\n c</pre>", "a  b\r\n c\r\n"},
    {"Entities", "&lt;&auml;&euro;&nbsp;&#65;&#x42;&#128;&amp;lt;", "<ä€ AB€&lt;\r\n"},
    {"EntitiesThatAreNone", "a & b &nosuch; &#xD800; &", "a & b &nosuch; \uFFFD &\r\n"},
    {"HeadIsNoText", "<head><title>t</title><style>p{}</style></head><script>x<y</script>a", "a\r\n"},
    {"Comment", "a<!-- <p>no --->b", "ab\r\n"},
    {"QuotedBracket", "<a title=\"a>b\">c</a>", "c\r\n"},
    {"OpenQuote", "<a title=\"x>b</a>", "b\r\n"},
    {"NoTag", "1 < 2 <3 and a<", "1 < 2 <3 and a<\r\n"},
    {"OpenComment", "a<!-- b", "a\r\n"},
};
INSTANTIATE_TEST_SUITE_P(All, HtmlText, testing::ValuesIn(htmlCases), nameOfCase);

TEST(Html, TextComesBackFromHtml) {
    for (const char *text : {"a\r\n\r\n  b   c\r\n", "<b> & \"q\"\r\n", "ä€😀\r\n"})
        EXPECT_EQ(textFromHtml(htmlFromText(text)).trimmed(), QString(text).trimmed());
}

TEST(Html, BodyOfAPage) {
    EXPECT_EQ(bodyOfPage("<html><BODY class=x>a</Body></html>"), "a");
    EXPECT_EQ(bodyOfPage("<p>a"), "<p>a");
    EXPECT_EQ(bodyOfPage("<body>a"), "a");
}

struct NameCase {
    const char *name;
    QString given;
    QString mimeType;
    QString safe;
};

class FileNames : public testing::TestWithParam<NameCase> {};

TEST_P(FileNames, AreSafe) {
    Attachment attachment;
    attachment.name = GetParam().given;
    attachment.mimeType = GetParam().mimeType;
    EXPECT_EQ(safeFileName(attachment), GetParam().safe);
}

const NameCase names[] = {
    {"Plain", "Übersicht 2026.pdf", "application/pdf", "Übersicht 2026.pdf"},
    {"Path", "../../etc/passwd", "text/plain", "passwd"},
    {"Backslashes", "C:\\Users\\x\\evil.sh", "text/plain", "evil.sh"},
    {"OnlyDots", "..", "text/plain", "attachment.txt"},
    {"Hidden", ".bashrc", "text/plain", "bashrc"},
    {"TrailingDots", "a.exe. .", "text/plain", "a.exe"},
    {"Device", "CON.txt", "text/plain", "_CON.txt"},
    {"Port", "com1", "text/plain", "_com1"},
    {"NoPort", "company.txt", "text/plain", "company.txt"},
    {"Refused", "a:b*c?\"<>|.txt", "text/plain", "a_b_c_____.txt"},
    {"Turned", "x\u202Egnp.exe", "text/plain", "x_gnp.exe"},
    {"Missing", "", "image/png", "attachment.png"},
    {"MissingUnknown", "", "application/x-other", "attachment.dat"},
    {"Long", QString(300, u'x') + ".docx", "text/plain", QString(195, u'x') + ".docx"},
    {"LongInBytes", QString(300, u'字') + ".docx", "text/plain", QString(78, u'字') + ".docx"},
    {"LongWithMarks", QString("e\u0301").repeated(150), "text/plain", QString("e\u0301").repeated(80)},
    {"EndsInSlash", "a/", "text/plain", "attachment.txt"},
};
INSTANTIATE_TEST_SUITE_P(All, FileNames, testing::ValuesIn(names), nameOfCase);

TEST(Messages, PlainReadersSeeTheHtmlWhereThereIsNoText) {
    Message message;
    message.html = "<p>a</p>";
    EXPECT_EQ(message.bodyText(), "a\r\n");
    message.text = "b";
    EXPECT_EQ(message.bodyText(), "b");
}

} // namespace
