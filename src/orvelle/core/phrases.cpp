#include "orvelle/core/phrases.h"

#include "orvelle/core/errorhandler.h"
#include "orvelle/core/process.h"
#include "orvelle/core/trace.h"
#include "orvelle/resources/phrasetable.h"
#include "platform/value/convert.h"
#include "platform/window/window.h"

#include <QStringDecoder>

#include <iterator>

ProcessLocal<QHash<QString, Ref<cPhrase>>> colPhrases;
ProcessLocal<std::array<QString, intLanguages>> strLanguageNames;
ProcessLocal<std::array<qint16, intLanguages>> intLanguageColumns;
ProcessLocal<QByteArray> phraseTableOverride;

namespace {

constexpr qint32 intFallbackColumn = 4;

/// The texts of the phrase variables, at their places.
ProcessLocal<std::array<QString, std::size(strPhraseKeys)>> strPhraseTexts;

/// Without a first character that the ANSI code page does not have, which the byte order mark is.
QString fncWithoutMark(const QString &strText) {
    return strText.startsWith(QChar(QChar::ByteOrderMark)) || strText.startsWith(u'?') ? strText.mid(1) : strText;
}

QString fncTable() {
    QStringDecoder decoder(QStringDecoder::Utf16LE,
                           QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    const QByteArray table = phraseTableOverride;
    return fncWithoutMark(decoder(table.isEmpty() ? phraseTable() : table));
}

/// A field of a row; a missing one fails with 9.
const QString &fncField(const QStringList &strFields, qint32 lngIndex) {
    if (lngIndex < 0 || lngIndex >= strFields.size())
        throw Failure(failures::subscriptOutOfRange);
    return strFields.at(lngIndex);
}

void subAddPhrase(const QStringList &strFields, qint32 lngIndex, QString &strPhrase) {
    strPhrase = fncField(strFields, lngIndex);
    if (strPhrase.isEmpty())
        strPhrase = fncField(strFields, intFallbackColumn);
    auto objPhrase = Ref<cPhrase>::make();
    objPhrase->LangConstant = fncWithoutMark(fncField(strFields, 0));
    objPhrase->LangPhrase = QString(strPhrase).remove(u'\'');
    if (colPhrases.get().contains(objPhrase->LangConstant))
        throw Failure(failures::keyExists);
    colPhrases.get().insert(objPhrase->LangConstant, objPhrase);
}

/// The phrase of a key; fails with 5 where the table has none.
QString fncPhrase(const char *strKey) {
    const auto objPhrase = colPhrases.get().constFind(strKey);
    if (objPhrase == colPhrases.get().constEnd())
        throw Failure(failures::invalidCall, QStringLiteral("The phrase table has no %1.").arg(strKey));
    return (*objPhrase)->LangPhrase;
}

} // namespace

const QString &Phrase::text() const { return strPhraseTexts.get().at(static_cast<std::size_t>(m_place)); }

void subFillLanguageNames() {
    strLanguageNames = {"Czech",   "Danish",    "Dutch",      "English",   "Finnish", "French",  "German", "Greek",
                        "Italian", "Norwegian", "Portuguese", "Slovenian", "Spanish", "Swedish", "Turkish"};
}

void subFillLanguageColumns() { intLanguageColumns = {13, 12, 5, 1, 11, 7, 3, 10, 4, 9, 8, 15, 6, 2, 14}; }

void subReadPhrases(qint32 lngIndex) try {
    subTrace("Reading language phrases from resource file");
    const QString strTable = fncTable();
    colPhrases.get().clear();
    QString strPhrase;
    const QStringList strRows = strTable.split(strLineEnd);
    for (qsizetype lngRow = 0; lngRow + 1 < strRows.size(); ++lngRow) {
        const QStringList strFields = strRows.at(lngRow).split(u'\t');
        const auto failure = Attempt([&] { subAddPhrase(strFields, lngIndex, strPhrase); });
        if (!failure)
            continue;
        window::msgBox(strPhrase + strLineEnd + strFields.first() + strLineEnd + "LINE - " +
                           QString::number(lngRow + 1),
                       window::Buttons::OK, window::Icon::None, strProgramTitle);
        throw Failure(*failure);
    }
} catch (const Failure &failure) {
    subErrorHandler(failure, "subReadPhrases");
}

void LoadLanguages(qint32 lngIndex) try {
    subReadPhrases(lngIndex);
    subTrace("Reading phrases from collection into variables");
    // In one step at the end, since a report about a missing phrase is written in the language before.
    std::array<QString, std::size(strPhraseKeys)> strTexts;
    for (std::size_t i = 0; i < std::size(strPhraseKeys); ++i)
        strTexts.at(i) = fncPhrase(strPhraseKeys[i]);
    strPhraseTexts = strTexts;
} catch (const Failure &failure) {
    subErrorHandler(failure, "LoadLanguages");
}

void subLoadStartLanguage(const QString &strCommand) {
    const QString strTrimmed = strCommand.trimmed();
    LoadLanguages(strTrimmed.isEmpty() || strCommand == QStringLiteral("Ticket") ? 1 : toInt16(strTrimmed));
}
