#include "orvelle/resources/phrasetable.h"
#include "platform/value/convert.h"
#include "support/program.h"

#include <QStringEncoder>

namespace {

using Phrases = support::Program;

TEST_F(Phrases, HaveNoApostrophesInAnyLanguage) {
    for (qint32 column = 1; column <= intLanguages; ++column) {
        LoadLanguages(column);
        for (const auto &phrase : colPhrases.get())
            EXPECT_FALSE(phrase->LangPhrase.contains(u'\'')) << phrase->LangConstant.toStdString();
    }
}

/// A table in the form that the program carries.
QByteArray tableOf(const QString &rows) {
    QStringEncoder encoder(QStringEncoder::Utf16LE, QStringEncoder::Flag::WriteBom);
    return encoder(rows);
}

TEST_F(Phrases, ADamagedTableOrALanguageThatIsNoneIsShownByItsRowAndReported) {
    const QString good = "A\t1\t2\t3\tfour\r\n";
    const QByteArray own = phraseTable();
    struct Case {
        const char *name;
        QByteArray table;
        qint32 column;
        /// Empty where no row is to blame.
        QString shown;
        QString report;
    };
    const std::vector<Case> cases = {
        {"a row too short", tableOf(good + "B\tx\r\n"), 2, "2\r\nB\r\nLINE - 2", "subReadPhrases"},
        {"a key twice", tableOf(good + "B\tx\t\t\t\r\nA\ty\t\t\t\r\n"), 1, "y\r\nA\r\nLINE - 3", "subReadPhrases"},
        {"no fallback", tableOf("A\t\r\n"), 1, "\r\nA\r\nLINE - 1", "subReadPhrases"},
        {"a column too high", own, 16, "\r\nLNGADD\r\nLINE - 1", "subReadPhrases"},
        {"a column too low", own, -1, "\r\nLNGADD\r\nLINE - 1", "subReadPhrases"},
        {"no line ends", tableOf("LNGADD\tAdd\n"), 1, "", "LoadLanguages"},
        {"a key missing", tableOf(good), 2, "", "LoadLanguages"},
        {"cut in a row", own.left(own.size() / 2), 2, "", "LoadLanguages"},
        {"cut in a character", own.left(own.size() / 2 + 1), 2, "", "LoadLanguages"},
        {"of another kind", QByteArray(5000, '\xA5'), 2, "", "LoadLanguages"},
    };
    for (const Case &c : cases) {
        ProgramCopy other;
        const ProgramCopy::Scope inside(other);
        EXPECT_EQ(LNGADD.text(), "") << "the phrases of another copy";
        LoadLanguages(1);
        phraseTableOverride = c.table;
        support::Answers answered;
        if (!c.shown.isEmpty())
            answered.expect(c.shown);
        answered.expect("Sub routine : " + c.report + " ", window::No);
        EXPECT_TRUE(support::endsProcess([&] { LoadLanguages(c.column); })) << c.name;
        EXPECT_TRUE(c.shown.isEmpty() || answered.asked().first().text == c.shown) << c.name;
        EXPECT_TRUE(answered.asked().last().text.contains(c.shown.isEmpty()
                                                              ? "Reading phrases from collection into variables"
                                                              : "Reading language phrases from resource file"))
            << c.name;
        EXPECT_EQ(LNGADD.text(), "Add") << c.name;
    }
}

TEST_F(Phrases, AnEmptyCellTakesTheFourthColumnAndALastRowWithoutItsEndIsLost) {
    phraseTableOverride = tableOf("A\t\t2\t3\tquat'tro\r\nB\tone\t\t\t\r\nC\tlost\t\t\t");
    subReadPhrases(1);
    EXPECT_EQ(colPhrases.get().size(), 2);
    EXPECT_EQ(colPhrases.get().value("A")->LangPhrase, "quattro");
    EXPECT_EQ(colPhrases.get().value("B")->LangPhrase, "one");
}

} // namespace
