#include "corefixture.h"

#include "platform/value/convert.h"
#include "resources/phrasetable.h"

#include <QStringEncoder>

namespace {

using Phrases = Core;

TEST_F(Phrases, AreThoseOfTheColumnThatTheCommandLineNames) {
    const QStringList add = {"LNGADD",  "Add",     "Lägg till", "Hinzufügen", "Aggiungi", "Toevoegen",
                             "Agregar", "Ajouter", "Adicionar", "Legg til",   "Πρόσθεσε", "Lisää",
                             "Tilføj",  "Přidat",  "Ekle",      "Dodaj"};
    for (qint32 column = 0; column < add.size(); ++column) {
        subLoadStartLanguage(QString::number(column));
        EXPECT_EQ(LNGADD.text(), add.at(column));
        EXPECT_EQ(colPhrases.get().size(), 185);
        EXPECT_EQ(colPhrases.get().value("LNGADD")->LangPhrase, add.at(column));
    }
}

TEST_F(Phrases, ReadAsTexts) {
    const QString joined = "[" + LNGOK + "] " + LNGCANCEL;
    EXPECT_EQ(joined, "[OK] Cancel");
    const Value value = LNGYEAR;
    EXPECT_EQ(value, Value("Year"));
    EXPECT_TRUE(joined.mid(1, 2) == LNGOK);
}

TEST_F(Phrases, HaveNoApostrophesInAnyLanguage) {
    for (qint32 column = 1; column <= intLanguages; ++column) {
        LoadLanguages(column);
        for (const auto &phrase : colPhrases.get())
            EXPECT_FALSE(phrase->LangPhrase.contains(u'\'')) << phrase->LangConstant.toStdString();
    }
    LoadLanguages(1);
    EXPECT_EQ(LNGO2KRUNNING.text(), "If you dont have MS Outlook 2000/2002/2003 running, please start it now!");
}

TEST_F(Phrases, AreTheirCopysOwn) {
    ProgramCopy other;
    {
        const ProgramCopy::Scope inside(other);
        EXPECT_EQ(LNGADD.text(), "");
        LoadLanguages(2);
        EXPECT_EQ(LNGADD.text(), "Lägg till");
    }
    EXPECT_EQ(LNGADD.text(), "Add");
}

TEST_F(Phrases, ALanguageThatIsNoneIsShownAndReported) {
    for (const qint32 column : {16, -1}) {
        ProgramCopy other;
        const ProgramCopy::Scope inside(other);
        LoadLanguages(1);
        support::Answers answered;
        answered.expect("\r\nLNGADD\r\nLINE - 1");
        answered.expect("Sub routine : subReadPhrases ", window::No);
        EXPECT_TRUE(endsProcess([&] { LoadLanguages(column); }));
        EXPECT_EQ(answered.asked().first().text, "\r\nLNGADD\r\nLINE - 1");
        EXPECT_TRUE(answered.asked().last().text.contains("Reading language phrases from resource file"));
    }
}

/// A table in the form that the program carries.
QByteArray tableOf(const QString &rows) {
    QStringEncoder encoder(QStringEncoder::Utf16LE, QStringEncoder::Flag::WriteBom);
    return encoder(rows);
}

TEST_F(Phrases, ADamagedTableIsShownByItsRowAndReported) {
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
        {"no line ends", tableOf("LNGADD\tAdd\n"), 1, "", "LoadLanguages"},
        {"a key missing", tableOf(good), 2, "", "LoadLanguages"},
        {"cut in a row", own.left(own.size() / 2), 2, "", "LoadLanguages"},
        {"cut in a character", own.left(own.size() / 2 + 1), 2, "", "LoadLanguages"},
        {"of another kind", QByteArray(5000, '\xA5'), 2, "", "LoadLanguages"},
    };
    for (const Case &c : cases) {
        ProgramCopy other;
        const ProgramCopy::Scope inside(other);
        LoadLanguages(1);
        phraseTableOverride = c.table;
        support::Answers answered;
        if (!c.shown.isEmpty())
            answered.expect(c.shown);
        answered.expect("Sub routine : " + c.report + " ", window::No);
        EXPECT_TRUE(endsProcess([&] { LoadLanguages(c.column); })) << c.name;
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

TEST_F(Phrases, TheStartLanguageFollowsTheCommandLine) {
    const std::vector<std::pair<QString, QString>> cases = {
        {"", "Add"}, {"   ", "Add"}, {"Ticket", "Add"}, {"2", "Lägg till"}, {" 3 ", "Hinzufügen"}};
    for (const auto &[command, add] : cases) {
        subLoadStartLanguage(command);
        EXPECT_EQ(LNGADD.text(), add) << command.toStdString();
    }
    for (const char *command : {"ticket", "Ticket ", "two"})
        EXPECT_EQ(Attempt([&] { subLoadStartLanguage(command); })->number(), failures::typeMismatch) << command;
    EXPECT_EQ(Attempt([] { subLoadStartLanguage("40000"); })->number(), failures::overflow);
}

TEST_F(Phrases, TheLanguagesStandInTheOrderOfTheirNames) {
    subFillLanguageNames();
    subFillLanguageColumns();
    const auto &names = strLanguageNames.get();
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
    std::map<QString, qint16> columns;
    for (std::size_t i = 0; i < names.size(); ++i)
        columns[names[i]] = intLanguageColumns.get()[i];
    EXPECT_EQ(columns["English"], 1);
    EXPECT_EQ(columns["Swedish"], 2);
    EXPECT_EQ(columns["Slovenian"], 15);
    EXPECT_EQ(columns["Finnish"], 11);
    EXPECT_EQ(columns["Danish"], 12);
}

} // namespace
