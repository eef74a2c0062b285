// Character sets, named rightly, wrongly or not at all.
#include "desk/mail/charset.h"
#include "desk/mail/charsetguess.h"
#include "print.h"

#include <gtest/gtest.h>

using namespace desk;

namespace {

struct Case {
    const char *name;
    QByteArray bytes;
    const char *charset;
    QString text;
};

class Charset : public testing::TestWithParam<Case> {};

TEST_P(Charset, Decodes) { EXPECT_EQ(decodeText(GetParam().bytes, GetParam().charset), GetParam().text); }

const Case named[] = {
    {"Utf8", "\xC3\xA4\xE2\x82\xAC", "UTF-8", "ä€"},
    {"Utf8WithoutDash", "\xC3\xA4", "utf8", "ä"},
    {"Latin1IsWindows1252", "\xE4\x80\x93", "iso-8859-1", "ä€“"},
    {"Latin9", "\xA4", "ISO-8859-15", "€"},
    {"Latin5IsWindows1254", "\xDD\x80", "iso-8859-9", "İ€"},
    {"CentralEuropean", "\x9E\xB9", "windows-1250", "žą"},
    {"Cyrillic", "\xCF\xF0", "cp1251", "Пр"},
    {"CyrillicKoi8", "\xF0\xD2", "KOI8-R", "Пр"},
    {"Greek", "\xC1\xE2", "windows-1253", "Αβ"},
    {"Hebrew", "\xF9\xEC", "iso-8859-8-i", "של"},
    {"Arabic", "\xC7\xE1", "windows-1256", "ال"},
    {"Thai", "\xA1\xD2", "tis-620", "กา"},
    {"ShiftJis", "\x93\xFA\x96\x7B\x87\x40", "Shift_JIS", "日本①"},
    {"ShiftJisAlias", "\x93\xFA", "x-sjis", "日"},
    {"EucJp", "\xC6\xFC\xCB\xDC", "euc-jp", "日本"},
    {"Iso2022Jp", "\x1B$BF|K\\\x1B(B!", "ISO-2022-JP", "日本!"},
    {"Gb2312IsGb18030", "\xC4\xE3\xBA\xC3\x81\x30\x84\x36", "gb2312", "你好¥"},
    {"Hz", "a~{Dc:C~}b", "HZ-GB-2312", "a你好b"},
    {"Big5", "\xA7\x41\xA6\x6E", "big5", "你好"},
    {"Korean", "\xC7\xD1\xB1\xB9", "ks_c_5601-1987", "한국"},
    {"Utf7", "Fr+APY-sche", "utf-7", "Frösche"},
    {"Utf16WithMark", QByteArray("\xFF\xFEh\0i\0", 6), "utf-16", "hi"},
    {"Utf16Guessed", QByteArray("h\0i\0 \0", 6), "utf-16", "hi "},
    {"Utf16Big", QByteArray("\0h\0i", 4), "utf-16be", "hi"},
    {"Utf16Odd", QByteArray("h\0i\0!", 5), "utf-16le", "hi!"},
    {"Macintosh", "\x8A", "macintosh", "ä"},
    {"NameInQuotesAndBlanks", "\xE4", " \"windows-1252\" ", "ä"},
};
INSTANTIATE_TEST_SUITE_P(Named, Charset, testing::ValuesIn(named), nameOfCase);

// No byte disappears: what can't be read is shown as windows-1252 has it.
const Case broken[] = {
    {"InvalidUtf8", "a\xE4z\xC3\xA4", "utf-8", "aäzä"},
    {"OverlongUtf8", "\xC0\xAF", "utf-8", "À¯"},
    {"SurrogateInUtf8", "\xED\xA0\x80", "utf-8", "í\u00A0€"},
    {"CutShiftJis", "\x93\xFA\x93", "shift_jis", "日“"},
    {"LoneHalfOfPair", QByteArray("\0\xD8!\0", 4), "utf-16le", "\uFFFD!"},
    {"EightBitInUtf7", "a\xE4z", "utf-7", "aäz"},
    {"Nul", QByteArray("a\0b", 3), "utf-8", "a\uFFFDb"},
    {"UnknownName", "\xE4", "x-klingon", "ä"},
    {"UserDefined", "\xC3\xA4", "x-user-defined", "ä"},
    {"AsciiThatIsUtf8", "\xC3\xA4", "us-ascii", "ä"},
    {"AsciiThatIsWindows1252", "\x93x\x94", "us-ascii", "“x”"},
    {"NoNameJapanese", "\x1B$BF|\x1B(B", "", "日"},
    {"UndefinedInWindows1252", "\x81", "windows-1252", "\u0081"},
    {"HostileName", "\xE4", "UTF-8//TRANSLIT//../../x", "ä"},
};
INSTANTIATE_TEST_SUITE_P(Broken, Charset, testing::ValuesIn(broken), nameOfCase);

TEST(CharsetGuess, FollowsOtherTextsOnlyWhereTheBytesAreNoUtf8) {
    CharsetHints hints;
    hints.addCharset("windows-1251");
    EXPECT_EQ(decodeText("\xCF\xF0", {}, hints), "Пр");
    EXPECT_EQ(decodeText("\xC3\xA4", {}, hints), "ä");
}

// Output larger than the converter's buffer, with a multi-byte character across its end.
TEST(CharsetLength, LongTextsKeepTheirEnd) {
    const QByteArray bytes = QByteArray("\x93\xFA").repeated(10'000) + "x";
    EXPECT_EQ(decodeText(bytes, "shift_jis"), QString("日").repeated(10'000) + "x");
}

} // namespace
