#include "platform/ado/jet/sql.h"

#include "platform/ado/errors.h"
#include "platform/ado/jet/sqltokens.h"

namespace ado {

namespace {

/// The keywords that stand where a column could.
bool isKeyword(const JetToken &token) {
    static const QSet<QString> keywords{"select",   "from",    "where",  "order",  "by",    "asc",    "desc",   "and",
                                        "or",       "not",     "like",   "is",     "null",  "in",     "as",     "inner",
                                        "left",     "right",   "join",   "on",     "group", "having", "union",  "all",
                                        "distinct", "between", "exists", "case",   "when",  "then",   "else",   "end",
                                        "insert",   "into",    "values", "update", "set",   "delete", "create", "table",
                                        "drop",     "alter",   "pragma", "true",   "false"};
    return token.kind == JetToken::Word && keywords.contains(token.text.toLower());
}

bool isIdentifier(const JetToken &token) {
    return token.kind == JetToken::Name || (token.kind == JetToken::Word && !isKeyword(token));
}

/// Joins `table . column` to one token. A name before an opening bracket is a function and stays a word.
QList<JetToken> withReferences(const QList<JetToken> &tokens) {
    QList<JetToken> result;
    for (qsizetype at = 0; at < tokens.size(); ++at) {
        if (!isIdentifier(tokens[at]) || (at + 1 < tokens.size() && tokens[at + 1].isSymbol("("))) {
            result.append(tokens[at]);
            continue;
        }
        JetToken reference = tokens[at];
        reference.kind = JetToken::Reference;
        while (at + 2 < tokens.size() && tokens[at + 1].isSymbol(".") &&
               (tokens[at + 2].kind == JetToken::Word || tokens[at + 2].kind == JetToken::Name)) {
            reference.text = tokens[at + 2].text;
            reference.output += u'.' + tokens[at + 2].output;
            at += 2;
        }
        result.append(reference);
    }
    return result;
}

/// Rewrites one statement.
class Translator {
  public:
    Translator(const QString &source, const QSet<QString> &moneyColumns)
        : m_moneyColumns(moneyColumns), m_tokens(withReferences(jetTokens(source))) {}

    JetStatement run() {
        JetStatement statement;
        statement.isSelect = !m_tokens.isEmpty() && m_tokens[0].isWord("select");
        if (!statement.isSelect)
            refuseMoney();
        findSource(statement);
        for (m_at = 0; m_at < m_tokens.size(); ++m_at)
            write(statement.isSelect);
        if (m_inOrder)
            closeOrderTerm();
        statement.text = m_text;
        return statement;
    }

  private:
    [[nodiscard]] const JetToken &token(qsizetype at) const {
        static const JetToken none{JetToken::Symbol, {}, {}, 0};
        return at >= 0 && at < m_tokens.size() ? m_tokens[at] : none;
    }

    [[nodiscard]] bool isMoney(const JetToken &reference) const {
        return reference.kind == JetToken::Reference && m_moneyColumns.contains(reference.text.toCaseFolded());
    }

    void refuseMoney() const {
        for (const JetToken &each : m_tokens)
            if (isMoney(each))
                throw Failure(notUpdatable,
                              QString("The money column %1 can only be written through a recordset.").arg(each.text));
    }

    /// Tells a selection of the rows of one table, and a look-up, from the tokens.
    void findSource(JetStatement &statement) const {
        qsizetype from = 0;
        while (from < m_tokens.size() && !(m_tokens[from].isWord("from") && m_tokens[from].depth == 0))
            ++from;
        if (!statement.isSelect || token(from + 1).kind != JetToken::Reference || token(1).isWord("distinct"))
            return;
        const JetToken &behind = token(from + 2);
        if (from + 2 < m_tokens.size() && !behind.isWord("where") && !behind.isWord("order"))
            return;
        for (const JetToken &each : m_tokens)
            if (each.depth == 0 && (each.isWord("group") || each.isWord("union") || each.isWord("having")))
                return;
        // A selection of functions alone, such as a count, has no row of the table behind its own.
        for (qsizetype at = 1; at < from; ++at)
            if (m_tokens[at].isSymbol("("))
                return;
        statement.table = token(from + 1).text;

        const JetToken &value = token(from + 5);
        const bool ends = from + 6 >= m_tokens.size() || token(from + 6).isWord("order");
        const bool exact = value.kind == JetToken::Number || (value.kind == JetToken::Text && !hasCase(value.text));
        if (behind.isWord("where") && token(from + 3).kind == JetToken::Reference && token(from + 4).isSymbol("=") &&
            exact && ends)
            statement.lookup = token(from + 3).text;
    }

    static bool hasCase(const QString &text) {
        return std::any_of(text.begin(), text.end(),
                           [](QChar each) { return each.isSurrogate() || each.toUpper() != each.toLower(); });
    }

    void put(const QString &text) {
        if (!m_text.isEmpty() && text != "." && !m_text.endsWith(u'.'))
            m_text += u' ';
        m_text += text;
    }

    void collate() { put(QString("COLLATE ") + jetCollation); }

    void closeOrderTerm() {
        if (m_termHasText)
            collate();
        m_termHasText = false;
    }

    void write(bool isSelect) {
        const JetToken &current = m_tokens[m_at];
        if (current.depth == 0 && current.isWord("from"))
            m_inList = false;
        if (current.isWord("select") && current.depth == 0 && m_at == 0)
            m_inList = true;
        const bool endsTerm =
            current.depth == 0 && (current.isSymbol(",") || current.isWord("asc") || current.isWord("desc"));
        if (m_inOrder && endsTerm)
            closeOrderTerm();

        writeToken(current, isSelect);

        if (m_inOrder && !endsTerm)
            m_termHasText = true;
        if (isSelect && current.depth == 0 && current.isWord("by") && token(m_at - 1).isWord("order"))
            m_inOrder = true;
    }

    void writeToken(const JetToken &current, bool isSelect) {
        if (current.isWord("true"))
            put("-1");
        else if (current.isWord("false"))
            put("0");
        else if (current.isSymbol("/"))
            put("* 1.0 /");
        else if (isSelect && isMoney(current) && !isPlainItem())
            put(QString("( %1 / 10000.0 )").arg(current.output));
        else
            put(current.output);
        if (current.kind == JetToken::Text && isComparison(token(m_at - 1)) && hasCase(current.text))
            collate();
    }

    static bool isComparison(const JetToken &sign) {
        return sign.isSymbol("=") || sign.isSymbol("<>") || sign.isSymbol("<") || sign.isSymbol(">") ||
               sign.isSymbol("<=") || sign.isSymbol(">=");
    }

    /// Whether the current token is a whole item of the selection's list, or of its order.
    [[nodiscard]] bool isPlainItem() const {
        if (m_tokens[m_at].depth != 0)
            return false;
        const JetToken &before = token(m_at - 1);
        const JetToken &after = token(m_at + 1);
        if (m_inOrder)
            return true;
        const bool starts = before.isWord("select") || before.isWord("distinct") || before.isSymbol(",");
        const bool ends = after.isWord("from") || after.isWord("as") || after.isSymbol(",");
        return m_inList && starts && ends;
    }

    const QSet<QString> &m_moneyColumns;
    QList<JetToken> m_tokens;
    qsizetype m_at = 0;
    QString m_text;
    bool m_inList = false;
    bool m_inOrder = false;
    bool m_termHasText = false;
};

} // namespace

JetStatement translateJetStatement(const QString &text, const QSet<QString> &moneyColumns) {
    return Translator(text, moneyColumns).run();
}

JetStatement translateJetSource(const QString &source, const QSet<QString> &moneyColumns) {
    const QList<JetToken> tokens = jetTokens(source);
    if (tokens.size() == 1 && isIdentifier(tokens[0]))
        return {"SELECT * FROM " + quotedName(tokens[0].text), true, tokens[0].text, {}};
    return translateJetStatement(source, moneyColumns);
}

QString quotedName(const QString &name) {
    QString inside = name;
    return u'"' + inside.replace("\"", "\"\"") + u'"';
}

} // namespace ado
