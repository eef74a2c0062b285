// What a mail may bring into fields and lists, however long its header is.
#include "desk/mail/bounds.h"
#include "print.h"

#include <gtest/gtest.h>

using namespace desk;

namespace {

/// As programs look for what an answer belongs to.
QString firstInBraces(const QString &text) {
    const qsizetype open = text.indexOf(u'{');
    const qsizetype close = open < 0 ? -1 : text.indexOf(u'}', open);
    return close < 0 ? QString() : text.sliced(open, close + 1 - open);
}

QString filler(qsizetype size) { return QString("long words ").repeated(size / 11 + 1).first(size); }

struct SubjectCase {
    const char *name;
    QString subject;
    QString mark;
};

class LongSubjects : public testing::TestWithParam<SubjectCase> {};

TEST_P(LongSubjects, KeepTheirFirstMark) {
    const QString cut = boundedSubject(GetParam().subject);
    EXPECT_LE(cut.size(), longestSubject);
    EXPECT_EQ(firstInBraces(cut), GetParam().mark);
    EXPECT_TRUE(cut.contains(u'…'));
    EXPECT_EQ(cut.first(800), GetParam().subject.first(800));
    EXPECT_EQ(boundedSubject(cut), cut);
}

const SubjectCase subjects[] = {
    {"None", filler(250'000), ""},
    {"InFront", "Re: Ticket {12}: " + filler(2000), "{12}"},
    {"AtTheEnd", "Re: Ticket: " + filler(2000) + " {12}", "{12}"},
    {"BehindTheLastThatFits", filler(longestSubject) + "{12}", "{12}"},
    {"AcrossTheCut", filler(longestSubject - 2) + "{12} and more", "{12}"},
    {"UpToTheCut", filler(longestSubject - 5) + "{123}" + filler(50), "{123}"},
    {"JustInFrontOfTheCut", filler(longestSubject - 6) + "{123}" + filler(50), "{123}"},
    {"InTheMiddle", filler(1500) + "{12}" + filler(1500), "{12}"},
    {"TheFirstOfTwo", filler(1500) + "{12}" + filler(1500) + "{13}", "{12}"},
    {"InFrontAndAtTheEnd", "{12} " + filler(1500) + "{13}", "{12}"},
    {"TooLongToBeOne", filler(900) + "{" + filler(400) + "}", ""},
    {"Open", filler(1500) + "} {12", ""},
};
INSTANTIATE_TEST_SUITE_P(All, LongSubjects, testing::ValuesIn(subjects), nameOfCase);

// Nothing changes where nothing is too long, to the last character.
TEST(Bounds, ShortTextsStay) {
    const QString subject = filler(longestSubject - 4) + "{12}";
    EXPECT_EQ(boundedSubject(subject), subject);
    EXPECT_EQ(bounded(QString(longestName, u'x'), longestName), QString(longestName, u'x'));
    EXPECT_EQ(bounded(Address{"Ann", "a@b"}), (Address{"Ann", "a@b"}));
}

// What people see as one character is there or not.
TEST(Bounds, CharactersStayWhole) {
    const QString characters[] = {
        "😀", "e\u0301\u0323", "각", "ก็", "\U0001F1E9\U0001F1EA", "\U0001F468\u200D\U0001F469\u200D\U0001F467", "\r\n"};
    for (const QString &character : characters) {
        for (qsizetype most = 2; most < 3 * character.size() + 6; ++most) {
            const QString text = "ab" + character.repeated(4);
            const qsizetype kept = cutPosition(text, most) - 2;
            EXPECT_LE(kept + 2, most);
            EXPECT_EQ(kept % character.size(), 0) << character.toStdString() << " at " << most;
        }
    }
    // Letters with marks without end are cut all the same, between code points.
    const QString endless = "a" + QString("\u0301").repeated(5000);
    EXPECT_EQ(bounded(endless, 1000).size(), 1000);
    EXPECT_EQ(cutPosition("a" + QString("\U0001D167").repeated(500), 100), 99);
}

TEST(Bounds, FilesKeepTheirExtension) {
    EXPECT_EQ(boundedFileName(QString(300, u'x') + ".docx", 255), QString(250, u'x') + ".docx");
    EXPECT_EQ(boundedFileName(QString(300, u'x') + ". no extension but a sentence", 255).size(), 255);
}

TEST(Bounds, AddressesAreWholeOrNone) {
    const QString longAddress = QString(400, u'x') + "@example.org";
    EXPECT_EQ(bounded(Address{"Ann", longAddress}), (Address{"Ann", ""}));
    EXPECT_FALSE(bounded(Address{"", longAddress}).display().contains(u'@'));
    EXPECT_EQ(bounded(Address{QString(1000, u'n'), "a@b"}).name.size(), longestName);
}

TEST(Bounds, ListsSayWhatTheyLeaveOut) {
    QList<Address> people;
    for (int i = 0; i < 10'000; ++i)
        people.append({"Some Body", QString("some.body%1@example.org").arg(i)});
    const QString text = peopleText(people);
    EXPECT_LE(text.size(), longestPeople);
    const qsizetype written = text.count(u'@');
    EXPECT_TRUE(text.endsWith(QString("; … and %1 more").arg(10'000 - written))) << text.last(50).toStdString();
    EXPECT_FALSE(peopleText(people.first(1000)).contains(u'…'));

    QStringList thread;
    for (int i = 0; i < 1000; ++i)
        thread << QString("%1@x").arg(i);
    const QStringList kept = threadText(thread).split(u' ');
    EXPECT_EQ(kept.size(), mostReferences);
    EXPECT_EQ(kept.first(), "0@x");
    EXPECT_EQ(kept.at(1), "901@x");
    EXPECT_EQ(kept.last(), "999@x");
}

} // namespace
