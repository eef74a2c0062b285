// The form of the phrase table that the program carries.

#include "orvelle/core/phrases.h"
#include "orvelle/resources/phrasetable.h"

#include <gtest/gtest.h>

#include <QRegularExpression>
#include <QSet>
#include <QStringDecoder>

namespace {

class PhraseTable : public testing::Test {
  protected:
    void SetUp() override {
        QStringDecoder decoder(QStringDecoder::Utf16LE);
        const QString text = decoder(phraseTable());
        ASSERT_FALSE(decoder.hasError());
        ASSERT_TRUE(text.endsWith("\r\n"));
        for (const QString &row : text.chopped(2).split("\r\n"))
            rows.append(row.split(u'\t'));
    }

    /// The parts of a phrase that the program replaces or cuts at, in alphabetical order.
    static QStringList fixedParts(const QString &phrase) {
        static const QRegularExpression part("<br>|\\bXXX\\b|#|\\[[A-Z]+\\]|CreateDBOV\\.sql");
        QStringList parts;
        for (auto found = part.globalMatch(phrase); found.hasNext();)
            parts += found.next().captured();
        parts.sort();
        return parts;
    }

    QList<QStringList> rows;
};

TEST_F(PhraseTable, HasEveryPhraseInEveryLanguage) {
    ASSERT_EQ(rows.size(), 185);
    ASSERT_EQ(std::size(strPhraseKeys), 185U);
    QSet<QString> keys;
    for (qsizetype i = 0; i < rows.size(); ++i) {
        const QStringList &row = rows.at(i);
        ASSERT_EQ(row.size(), 16) << row.first().toStdString();
        EXPECT_EQ(row.first(), strPhraseKeys[i]);
        keys.insert(row.first());
        for (const QString &field : row)
            EXPECT_FALSE(field.trimmed().isEmpty()) << row.first().toStdString();
    }
    EXPECT_EQ(keys.size(), rows.size());
}

TEST_F(PhraseTable, KeepsWhatTheProgramReplacesInEveryLanguage) {
    for (const QStringList &row : rows) {
        const QStringList expected = fixedParts(row.at(1));
        for (qsizetype column = 2; column < row.size(); ++column)
            EXPECT_EQ(fixedParts(row.at(column)), expected) << row.first().toStdString() << " column " << column;
    }
}

/// Pages of a window, and the names in a statement about the statistics, are told apart by nothing but their phrase.
TEST_F(PhraseTable, TellsApartWhatStandsTogetherInEveryLanguage) {
    const QList<QStringList> groups = {
        {"LNGSUBJECT", "LNGCLOSED", "LNGMONTH", "LNGWEEKDAY", "LNGPROBLEMCATEGORY", "LNGPROBLEMTYPE", "LNGPRIORITY",
         "LNGRESPONSIBLE", "LNGCALLERCATEGORY", "LNGCALLER", "LNGDATE", "LNGNUMBER", "LNGHOURS", "LNGRATE",
         "LNGHOURSOPEN"},
        {"LNGALL", "LNGYEAR", "LNGQUARTER", "LNGMONTH", "LNGWEEK", "LNGDAY"},
        {"LNGEMAILSENT", "LNGEMAILRECIEVED"},
        {"LNGTRUE", "LNGFALSE"},
        {"LNGHIGH", "LNGNORMAL", "LNGLOW"},
    };
    for (const QStringList &group : groups) {
        for (qsizetype column = 1; column < 16; ++column) {
            QSet<QString> phrases;
            for (const QStringList &row : rows) {
                if (group.contains(row.first()))
                    phrases.insert(row.at(column).toCaseFolded());
            }
            EXPECT_EQ(phrases.size(), group.size()) << group.first().toStdString() << " column " << column;
        }
    }
}

} // namespace
