/// The embedded engine's own forms of SQL, turned into what SQLite understands.
#pragma once

#include <QSet>
#include <QString>

namespace ado {

/// A statement for SQLite, and what can be told from its text.
struct JetStatement {
    QString text;
    bool isSelect = false;
    /// The one table that the rows come from, each row once; empty for joins, groups and the like.
    QString table;
    /// The column of a selection that is a look-up: its whole condition is "column = value". Empty for others.
    QString lookup;
};

/// The name of the order in which texts compare, known to SQLite on every connection of the provider.
inline constexpr char jetCollation[] = "JETTEXT";

/// Translates a statement.
///
/// - `[table.column]` is a column of that table, `[name]` and `name` in backquotes are names, text in double quotes is
///   text as in single quotes.
/// - Texts compare with "=" and its like, and sort, without regard to case.
/// - `/` divides to a fraction. `True` is -1, `False` 0.
/// - Money columns are counted in ten-thousandths in the file. Inside of an expression they are turned into amounts; as
///   a selected column they stay exact.
///
/// \param moneyColumns  the names of the money columns, case-folded.
/// Fails with `statementFailed` for unclosed quotes and brackets, more than one statement, and overlong texts.
JetStatement translateJetStatement(const QString &text, const QSet<QString> &moneyColumns);

/// The same for a recordset's source: a single name is a table, with all its columns.
JetStatement translateJetSource(const QString &source, const QSet<QString> &moneyColumns);

/// A name in double quotes, so that it is a name whatever it holds.
QString quotedName(const QString &name);

} // namespace ado
