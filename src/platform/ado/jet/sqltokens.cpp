#include "platform/ado/jet/sqltokens.h"

#include "platform/ado/errors.h"
#include "platform/ado/jet/sql.h"

namespace ado {

namespace {

constexpr qsizetype longestStatement = 1000000;

[[noreturn]] void refuse(const QString &what, const QString &source) {
    throw Failure(statementFailed,
                  QString("The statement can't be run: %1. Its text is: %2").arg(what, source.left(500)));
}

class Tokenizer {
  public:
    explicit Tokenizer(const QString &source) : m_source(source) {}

    QList<JetToken> run() {
        while (m_at < m_source.size())
            next();
        return std::move(m_tokens);
    }

  private:
    void next() {
        const QChar sign = m_source[m_at];
        if (sign.isSpace()) {
            ++m_at;
        } else if (sign == u'\'' || sign == u'"') {
            const QString text = quoted(sign, "a text is not closed");
            QString inside = text;
            add(JetToken::Text, text, u'\'' + inside.replace("'", "''") + u'\'');
        } else if (sign == u'[') {
            bracketed(u']');
        } else if (sign == u'`') {
            bracketed(u'`');
        } else if (sign.isDigit() ||
                   (sign == u'.' && m_at + 1 < m_source.size() && m_source[m_at + 1].isDigit() && !afterName())) {
            number();
        } else if (sign.isLetter() || sign == u'_' || sign.isSurrogate()) {
            word();
        } else {
            symbol();
        }
    }

    QString quoted(QChar quote, const char *problem) {
        QString text;
        for (++m_at;; ++m_at) {
            if (m_at >= m_source.size())
                refuse(problem, m_source);
            if (m_source[m_at] == quote) {
                ++m_at;
                if (m_at >= m_source.size() || m_source[m_at] != quote)
                    return text;
            }
            text += m_source[m_at];
        }
    }

    void bracketed(QChar close) {
        const qsizetype end = m_source.indexOf(close, m_at + 1);
        if (end < 0)
            refuse("a bracket around a name is not closed", m_source);
        const QString inside = m_source.mid(m_at + 1, end - m_at - 1).trimmed();
        m_at = end + 1;
        const qsizetype dot = inside.indexOf(u'.');
        if (dot > 0 && dot + 1 < inside.size()) {
            add(JetToken::Name, inside.left(dot), quotedName(inside.left(dot)));
            add(JetToken::Symbol, ".", ".");
            add(JetToken::Name, inside.mid(dot + 1), quotedName(inside.mid(dot + 1)));
        } else {
            add(JetToken::Name, inside, quotedName(inside));
        }
    }

    [[nodiscard]] bool afterName() const {
        return !m_tokens.isEmpty() &&
               (m_tokens.last().kind == JetToken::Word || m_tokens.last().kind == JetToken::Name);
    }

    void number() {
        const qsizetype start = m_at;
        while (m_at < m_source.size() && (m_source[m_at].isLetterOrNumber() || m_source[m_at] == u'.'))
            ++m_at;
        const QString text = m_source.mid(start, m_at - start);
        add(JetToken::Number, text, text);
    }

    void word() {
        const qsizetype start = m_at;
        while (m_at < m_source.size() && (m_source[m_at].isLetterOrNumber() || m_source[m_at] == u'_' ||
                                          m_source[m_at] == u'$' || m_source[m_at].isSurrogate()))
            ++m_at;
        const QString text = m_source.mid(start, m_at - start);
        add(JetToken::Word, text, text);
    }

    void symbol() {
        QString text = m_source.mid(m_at, 1);
        const QString two = m_source.mid(m_at, 2);
        if (two == "<=" || two == ">=" || two == "<>")
            text = two;
        m_at += text.size();
        if (text == ";") {
            if (!QStringView(m_source).mid(m_at).trimmed().isEmpty())
                refuse("something follows the end of the statement", m_source);
            return;
        }
        if (text == ")")
            m_depth = std::max(0, m_depth - 1);
        add(JetToken::Symbol, text, text);
        if (text == "(")
            ++m_depth;
    }

    void add(JetToken::Kind kind, const QString &text, const QString &output) {
        m_tokens.append({kind, text, output, m_depth});
    }

    const QString &m_source;
    qsizetype m_at = 0;
    int m_depth = 0;
    QList<JetToken> m_tokens;
};

} // namespace

QList<JetToken> jetTokens(const QString &source) {
    if (source.size() > longestStatement)
        refuse("it is too long", source);
    // SQLite would end the statement there and run the part before it.
    if (source.contains(QChar::Null))
        refuse("it holds a null character", source);
    return Tokenizer(source).run();
}

} // namespace ado
