/// The tokens of a statement.
#pragma once

#include <QList>
#include <QString>

namespace ado {

struct JetToken {
    enum Kind {
        Word,      ///< a keyword or a plain name
        Name,      ///< a name that was in brackets or backquotes; `text` is without them
        Text,      ///< a text; `text` is its content
        Number,    ///< a number as it stands
        Symbol,    ///< an operator or another sign
        Reference, ///< a column with or without its table; `text` is the column's name, `output` its full form
    } kind;
    QString text;
    QString output;
    /// How many brackets are open around it.
    int depth = 0;

    [[nodiscard]] bool isWord(const char *word) const {
        return kind == Word && text.compare(QLatin1String(word), Qt::CaseInsensitive) == 0;
    }
    [[nodiscard]] bool isSymbol(const char *symbol) const { return kind == Symbol && text == QLatin1String(symbol); }
};

/// Cuts a statement into tokens. A trailing semicolon is dropped. Fails with `statementFailed` for unclosed quotes and
/// brackets, a semicolon elsewhere, and texts longer than a million characters.
QList<JetToken> jetTokens(const QString &source);

} // namespace ado
