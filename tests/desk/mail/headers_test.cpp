// What headers say, however they are written.
#include "desk/mail/parser.h"
#include "print.h"

#include <gtest/gtest.h>

using namespace desk;

namespace {

Message withHeader(const QByteArray &lines) { return parseMessage(lines + "\r\n\r\ntext\r\n"); }

struct SubjectCase {
    const char *name;
    QByteArray value;
    QString subject;
};

class Subjects : public testing::TestWithParam<SubjectCase> {};

TEST_P(Subjects, AreDecoded) { EXPECT_EQ(withHeader("Subject: " + GetParam().value).subject, GetParam().subject); }

const SubjectCase subjects[] = {
    {"Plain", "Printer on floor 3", "Printer on floor 3"},
    {"Empty", "", ""},
    {"Folded", "one\r\n two\r\n\tthree", "one two three"},
    {"Q", "=?iso-8859-1?Q?Stra=DFe_7?=", "Straße 7"},
    {"B", "=?UTF-8?B?w6TDtsO8?=", "äöü"},
    {"Language", "=?utf-8*de?Q?gr=C3=BCn?=", "grün"},
    {"BlanksBetweenWordsGo", "=?utf-8?Q?a?=\r\n =?utf-8?Q?b?= c", "ab c"},
    {"CharacterSplitBetweenWords", "=?utf-8?B?w6TD?= =?utf-8?B?tg==?=", "äö"},
    {"TwoCharsets", "=?koi8-r?Q?=F0?= =?utf-8?Q?=C3=A4?=", "Пä"},
    {"InsideAWord", "pre=?utf-8?Q?=C3=A4?=post", "preäpost"},
    {"BlankInsideEncodedWord", "=?utf-8?Q?two words?=", "two words"},
    {"EightBitInsideEncodedWord", "=?iso-8859-1?Q?Fr\xF6sche?=", "Frösche"},
    {"QuestionMark", "=?utf-8?Q?why\?\?=", "why?"},
    {"CutOff", "ok =?utf-8?Q?_the_rest", "ok  the rest"},
    {"UnknownEncoding", "=?utf-8?X?abc?=", "=?utf-8?X?abc?="},
    {"NotEncoded", "2 =? 3", "2 =? 3"},
    {"RawUtf8", "gr\xC3\xBCn", "grün"},
    {"RawLatin1", "gr\xFCn", "grün"},
    {"BreakInEncodedWord", "=?utf-8?Q?a=0D=0ABcc:_x@y?=", "a Bcc: x@y"},
    {"Nul", QByteArray("a\0b", 3), "a b"},
};
INSTANTIATE_TEST_SUITE_P(All, Subjects, testing::ValuesIn(subjects), nameOfCase);

struct AddressCase {
    const char *name;
    QByteArray value;
    QList<Address> addresses;
};

class AddressLists : public testing::TestWithParam<AddressCase> {};

TEST_P(AddressLists, AreRead) {
    const QList<Address> actual = withHeader("To: " + GetParam().value).to;
    ASSERT_EQ(actual.size(), GetParam().addresses.size());
    for (qsizetype i = 0; i < actual.size(); ++i) {
        EXPECT_EQ(actual[i].name, GetParam().addresses[i].name);
        EXPECT_EQ(actual[i].address, GetParam().addresses[i].address);
    }
}

const AddressCase addressLists[] = {
    {"Bare", "a@example.org", {{"", "a@example.org"}}},
    {"Angle", "Ann Lee <a@example.org>", {{"Ann Lee", "a@example.org"}}},
    {"Quoted", "\"Lee, Ann\" <a@b>, <c@d>", {{"Lee, Ann", "a@b"}, {"", "c@d"}}},
    {"QuotedQuote", R"("Ann \"Al\" Lee" <a@b>)", {{"Ann \"Al\" Lee", "a@b"}}},
    {"Comment", "a@b (Ann (Al) Lee)", {{"Ann (Al) Lee", "a@b"}}},
    {"OnlyComment", "(nobody)", {{"nobody", ""}}},
    {"Encoded", "=?iso-8859-1?Q?M=FCller?= <a@b>", {{"Müller", "a@b"}}},
    {"EncodedInQuotes", "\"=?utf-8?Q?M=C3=BCller=2C_J?=\" <a@b>", {{"Müller, J", "a@b"}}},
    {"EncodedCommaIsNoDivider", "=?utf-8?Q?Lee=2C_Ann?= <a@b>", {{"Lee, Ann", "a@b"}}},
    {"AllEncoded", "=?utf-8?Q?Ann_<a@b>?=", {{"Ann", "a@b"}}},
    {"RawLatin1", "M\xFCller <a@b>", {{"Müller", "a@b"}}},
    {"Group", "Team: a@b, Ann <c@d>;, e@f", {{"", "a@b"}, {"Ann", "c@d"}, {"", "e@f"}}},
    {"EmptyGroup", "undisclosed-recipients:;", {{"undisclosed-recipients", ""}}},
    {"NameOnly", "Whomever", {{"Whomever", ""}}},
    {"Semicolons", "a@b; c@d", {{"", "a@b"}, {"", "c@d"}}},
    {"NoClosingBracket", "Ann <a@b, Bob <c@d>", {{"Ann", "a@b"}, {"Bob", "c@d"}}},
    {"NoClosingQuote", "\"Ann <a@b>", {{"Ann", "a@b"}}},
    {"DotsInARow", "<a..b.@docs.example>", {{"", "a..b.@docs.example"}}},
    {"QuotedLocalPart", "Ann <\"a b\"@c>, \"x,y\"@z", {{"Ann", "\"a b\"@c"}, {"", "\"x,y\"@z"}}},
    {"NumericDomain", "<a@[IPv6:::1]>", {{"", "a@[IPv6:::1]"}}},
    {"Route", "<@x,@y:a@b>", {{"", "a@b"}}},
    {"UnicodeAddress", "<\xC3\xBC@\xC3\xA4.example>", {{"", "ü@ä.example"}}},
    {"NameWithoutBrackets", "Ann Lee a@b", {{"Ann Lee", "a@b"}}},
    {"EmptyEntries", ",, a@b,,", {{"", "a@b"}}},
    {"NameIsAnAddress", "\"x@y\" <a@b>", {{"x@y", "a@b"}}},
};
INSTANTIATE_TEST_SUITE_P(All, AddressLists, testing::ValuesIn(addressLists), nameOfCase);

TEST(Headers, WithoutFromTheSenderIsTheWriter) {
    const Message message = withHeader("Sender: Bob <b@x>");
    EXPECT_EQ(message.from.address, "b@x");
    EXPECT_TRUE(message.sender.isEmpty());
    EXPECT_TRUE(withHeader("From: a@x\r\nSender: a@x").sender.isEmpty());
}

struct WriterCase {
    const char *name;
    QByteArray header;
    Address from;
};

class Writers : public testing::TestWithParam<WriterCase> {};

TEST_P(Writers, CanBeAnswered) { EXPECT_EQ(withHeader(GetParam().header).from, GetParam().from); }

const QByteArray all = "\r\nReturn-Path: <d@x>\r\nReply-To: Cleo <c@x>\r\nSender: Bob <b@x>";

const WriterCase writers[] = {
    {"From", "From: Ann <a@x>" + all, {"Ann", "a@x"}},
    {"SecondInFrom", "From: Ann, Ann Lee <a@x>" + all, {"Ann Lee", "a@x"}},
    {"SecondFrom", "From: Ann\r\nFrom: Ann Lee <a@x>" + all, {"Ann Lee", "a@x"}},
    {"FromWithoutDomain", "From: Ann <ann>" + all, {"Bob", "b@x"}},
    {"FromWithHalfAnAddress", "From: Ann <ann@>" + all, {"Bob", "b@x"}},
    {"FromTooLong", "From: Ann <" + QByteArray(400, 'a') + "@x>" + all, {"Bob", "b@x"}},
    {"Sender", "From: Ann" + all, {"Bob", "b@x"}},
    {"SenderWithoutFrom", all.sliced(2), {"Bob", "b@x"}},
    {"ReplyTo", "From: Ann\r\nReturn-Path: <d@x>\r\nReply-To: nobody, Cleo <c@x>", {"Cleo", "c@x"}},
    {"ReturnPath", "From: Ann\r\nReturn-Path: <d@x>\r\nReply-To: Cleo", {"", "d@x"}},
    {"NobodyCanBeAnswered", "From: Ann <ann>\r\nReturn-Path: <>\r\nSender: Bob", {"Ann", "ann"}},
    {"OnlyASendersName", "Return-Path: <>\r\nSender: Bob", {"Bob", ""}},
    {"Directory", "From: Ann </o=Example/cn=ann>" + all, {"Ann", "/o=Example/cn=ann"}},
};
INSTANTIATE_TEST_SUITE_P(All, Writers, testing::ValuesIn(writers), nameOfCase);

struct DateCase {
    const char *name;
    QByteArray value;
    const char *utc; ///< empty: invalid
};

class Dates : public testing::TestWithParam<DateCase> {};

TEST_P(Dates, AreRead) {
    const QDateTime moment = withHeader("Date: " + GetParam().value).sentAt;
    EXPECT_EQ(moment.isValid() ? moment.toUTC().toString(Qt::ISODate) : QString(), GetParam().utc);
}

const DateCase dates[] = {
    {"Usual", "Mon, 16 Nov 2026 09:31:05 +0100", "2026-11-16T08:31:05Z"},
    {"HalfHourZone", "16 Nov 2026 09:31:05 +0530", "2026-11-16T04:01:05Z"},
    {"NoSeconds", "16 Nov 2026 09:31 -0500", "2026-11-16T14:31:00Z"},
    {"NamedZone", "Mon, 16 Nov 2026 09:31:05 EST", "2026-11-16T14:31:05Z"},
    {"Comment", "Mon, 16 Nov 2026 09:31:05 +0000 (GMT)", "2026-11-16T09:31:05Z"},
    {"TwoDigitYear", "16 Nov 99 09:31:05 +0000", "1999-11-16T09:31:05Z"},
    {"Nonsense", "yesterday", ""},
    {"Empty", "", ""},
};
INSTANTIATE_TEST_SUITE_P(All, Dates, testing::ValuesIn(dates), nameOfCase);

TEST(Headers, TheSendersZoneIsKept) {
    EXPECT_EQ(withHeader("Date: Mon, 16 Nov 2026 09:31:05 -0330").sentAt.offsetFromUtc(), -(3 * 60 + 30) * 60);
}

TEST(Headers, Importance) {
    const std::pair<const char *, Importance> cases[] = {
        {"Importance: high", Importance::High},
        {"Importance: LOW", Importance::Low},
        {"X-Priority: 1 (Highest)", Importance::High},
        {"X-Priority: 2", Importance::High},
        {"X-Priority: 3 (Normal)", Importance::Normal},
        {"X-Priority: 5 (Lowest)", Importance::Low},
        {"X-MSMail-Priority: High", Importance::High},
        {"Priority: urgent", Importance::High},
        {"Priority: non-urgent", Importance::Low},
        {"X-Priority: 5\r\nImportance: high", Importance::High},
        {"Importance: whatever\r\nX-Priority: 5", Importance::Low},
        {"X-Other: 1", Importance::Normal},
    };
    for (const auto &[header, importance] : cases)
        EXPECT_EQ(withHeader(header).importance, importance) << header;
}

TEST(Headers, SensitivityAndReceipt) {
    EXPECT_EQ(withHeader("Sensitivity: Personal").sensitivity, Sensitivity::Personal);
    EXPECT_EQ(withHeader("Sensitivity: private").sensitivity, Sensitivity::Private);
    EXPECT_EQ(withHeader("Sensitivity: Company-Confidential").sensitivity, Sensitivity::Confidential);
    EXPECT_EQ(withHeader("Subject: x").sensitivity, Sensitivity::Normal);
    EXPECT_TRUE(withHeader("Disposition-Notification-To: <a@b>").readReceiptRequested);
    EXPECT_FALSE(withHeader("Subject: x").readReceiptRequested);
}

TEST(Headers, Identifiers) {
    const Message message = withHeader("Message-ID: <one@x>\r\nIn-Reply-To: <two@x> from Monday\r\n"
                                       "References: <three@x>\r\n <four@x><five@x>");
    EXPECT_EQ(message.messageId, "one@x");
    EXPECT_EQ(message.inReplyTo, QStringList("two@x"));
    EXPECT_EQ(message.references, (QStringList{"three@x", "four@x", "five@x"}));
    EXPECT_EQ(withHeader("Message-ID: no-brackets@x").messageId, "no-brackets@x");
    EXPECT_EQ(withHeader("References: <" + QByteArray(1000, 'x') + "@x> <a@x>").references, QStringList("a@x"));
}

} // namespace
