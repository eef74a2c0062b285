#include "platform/ado/connectionstring.h"

#include "platform/ado/errors.h"

namespace ado {

namespace {

[[noreturn]] void refuse(const char *reason) {
    throw Failure(badConnectionString,
                  QString("The connection string can't be read: %1. It consists of \"name=value\" pieces with "
                          "semicolons between them.")
                      .arg(reason));
}

/// Walks over a connection string piece by piece.
class Reader {
  public:
    explicit Reader(const QString &text) : m_text(text) {}

    /// Whether another piece follows; stands at its first character then.
    bool nextPiece() {
        while (m_at < m_text.size() && (m_text[m_at].isSpace() || m_text[m_at] == u';'))
            ++m_at;
        return m_at < m_text.size();
    }

    QString key() {
        QString key;
        for (; m_at < m_text.size() && m_text[m_at] != u';'; ++m_at) {
            if (m_text[m_at] == u'=') {
                if (m_at + 1 >= m_text.size() || m_text[m_at + 1] != u'=') {
                    ++m_at;
                    key = key.trimmed();
                    if (key.isEmpty())
                        refuse("a value has no name");
                    return key;
                }
                ++m_at;
            }
            key += m_text[m_at];
        }
        refuse("a piece has no equals sign");
    }

    QString value() {
        while (m_at < m_text.size() && m_text[m_at].isSpace())
            ++m_at;
        if (m_at < m_text.size() && (m_text[m_at] == u'"' || m_text[m_at] == u'\''))
            return quoted();
        const qsizetype end = m_text.indexOf(u';', m_at);
        const QString value = m_text.mid(m_at, end < 0 ? -1 : end - m_at).trimmed();
        m_at = end < 0 ? m_text.size() : end;
        return value;
    }

  private:
    QString quoted() {
        const QChar quote = m_text[m_at++];
        QString value;
        for (;; ++m_at) {
            if (m_at >= m_text.size())
                refuse("a quote is not closed");
            if (m_text[m_at] == quote) {
                ++m_at;
                if (m_at >= m_text.size() || m_text[m_at] != quote)
                    break;
            }
            value += m_text[m_at];
        }
        while (m_at < m_text.size() && m_text[m_at].isSpace())
            ++m_at;
        if (m_at < m_text.size() && m_text[m_at] != u';')
            refuse("something follows a closing quote");
        return value;
    }

    const QString &m_text;
    qsizetype m_at = 0;
};

} // namespace

ConnectionPieces ConnectionPieces::parse(const QString &text) {
    if (text.size() > longest)
        refuse("it is too long");
    ConnectionPieces result;
    Reader reader(text);
    while (reader.nextPiece()) {
        const QString key = reader.key().toCaseFolded();
        const QString value = reader.value();
        if (key != "provider" || !result.m_values.contains(key))
            result.m_values.insert(key, value);
    }
    return result;
}

QString quotedConnectionValue(const QString &value) {
    const bool plain = value == value.trimmed() && !value.contains(u';') && !value.startsWith(u'=') &&
                       !value.startsWith(u'"') && !value.startsWith(u'\'');
    if (plain)
        return value;
    QString inside = value;
    return u'"' + inside.replace("\"", "\"\"") + u'"';
}

} // namespace ado
