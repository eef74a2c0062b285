/// The phrases: every text of the system that people read, in the language in force.
///
/// Each key of the phrase table is a variable of its name (`LNGADD`) that reads as a text. They are empty until the
/// first `LoadLanguages`, and each later one replaces them all.
#pragma once

#include "platform/value/processlocal.h"
#include "platform/value/ref.h"
#include "platform/value/value.h"

#include <QHash>
#include <QString>

#include <array>

/// One phrase variable. Invariant: static storage; one text per program copy.
class Phrase {
  public:
    explicit constexpr Phrase(qint32 place) : m_place(place) {}

    [[nodiscard]] const QString &text() const;
    operator QString() const { return text(); }
    operator Value() const { return text(); }

    friend QString operator+(const Phrase &left, const Phrase &right) { return left.text() + right.text(); }
    friend QString operator+(const QString &left, const Phrase &right) { return left + right.text(); }
    friend QString operator+(const Phrase &left, const QString &right) { return left.text() + right; }
    friend QString operator+(const char *left, const Phrase &right) { return left + right.text(); }
    friend QString operator+(const Phrase &left, const char *right) { return left.text() + right; }
    friend bool operator==(const QString &left, const Phrase &right) { return left == right.text(); }

  private:
    qint32 m_place;
};

#include "orvelle/resources/phrasevariables.h"

/// One row of the table in the language read.
class cPhrase {
  public:
    QString LangConstant;
    QString LangPhrase;
};

/// The rows by their key, replaced at each reading.
extern ProcessLocal<QHash<QString, Ref<cPhrase>>> colPhrases;

constexpr qint32 intLanguages = 15;
/// The languages' names in alphabetical order, and the column of each.
extern ProcessLocal<std::array<QString, intLanguages>> strLanguageNames;
extern ProcessLocal<std::array<qint16, intLanguages>> intLanguageColumns;
void subFillLanguageNames();
void subFillLanguageColumns();

/// Fills `colPhrases` from one column of the table. A row or a column that can't be read is shown, with the row counted
/// from 1, and reported, which ends the process.
void subReadPhrases(qint32 lngIndex);

/// The table of this copy in place of the program's own, in the same form, when not empty. Tests set it.
extern ProcessLocal<QByteArray> phraseTableOverride;

/// Puts a language into force, the whole of it or nothing. A phrase that the table lacks is reported.
void LoadLanguages(qint32 lngIndex);

/// The language by the command line: column 1 when it is blank or "Ticket", else the column of that number.
void subLoadStartLanguage(const QString &strCommand);
