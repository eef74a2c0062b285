#include "desk/mail/addresses.h"

#include "desk/mail/charset.h"
#include "desk/mail/charsetguess.h"
#include "desk/mail/headertext.h"

#include <QUrl>

namespace desk {
namespace {

/// What of an address header is read: more than any list of people.
constexpr qsizetype longestList = qsizetype{1024} * 1024;
constexpr qsizetype mostAddresses = 10'000;
/// A name longer than this is not written as one quoted word.
constexpr qsizetype longestQuoted = 60;

/// The text without what could not stand in an address, blanks and brackets above all.
QString cleanPlain(QString text, QStringView further) {
    text.removeIf(
        [&](QChar c) { return c.isSpace() || QStringView(u"<>(),;\"\\").contains(c) || further.contains(c); });
    return text;
}

/// Where the '@' behind a quoted local part is, -1 when the address has none.
qsizetype endOfQuotedPart(const QString &address) {
    if (!address.startsWith(u'"'))
        return -1;
    qsizetype i = 1;
    while (i < address.size() && address[i] != u'"')
        i += address[i] == u'\\' ? 2 : 1;
    return i + 1 < address.size() && address[i + 1] == u'@' ? i + 1 : -1;
}

/// Where a domain that is a number in brackets begins, with its '@'; the end when there is none.
qsizetype startOfLiteral(const QString &address) {
    const qsizetype start = address.lastIndexOf(u"@[");
    if (start < 0 || !address.endsWith(u']'))
        return address.size();
    const QStringView number = QStringView(address).sliced(start + 2).chopped(1);
    const bool valid = std::all_of(number.begin(), number.end(),
                                   [](QChar c) { return c.isLetterOrNumber() || c == u'.' || c == u':'; });
    return valid ? start : address.size();
}

/// An address as it can be written in angle brackets. A quoted local part keeps its quotes, a domain that is a number
/// its brackets: "\"a b\"@[IPv6:::1]".
QString cleanAddress(const QString &text) {
    QString address = oneLine(text);
    QString quoted;
    if (const qsizetype end = endOfQuotedPart(address); end >= 0) {
        quoted = address.first(end);
        quoted.removeIf([](QChar c) { return c == u'<' || c == u'>'; });
        address = address.sliced(end);
    }
    const qsizetype literal = startOfLiteral(address);
    const QString domain = address.sliced(literal);
    address = quoted + cleanPlain(address.first(literal), u":[]") + domain;
    // What looks like the start of an encoded word could not be written.
    return address.contains(u"=?") ? address.remove(u'?') : address;
}

/// One that came in unusual clothes: the address inside the name, a name where the address belongs.
Address sorted(QString name, QString address) {
    if (address.isEmpty()) {
        const qsizetype open = name.lastIndexOf(u'<');
        const qsizetype close = name.indexOf(u'>', std::max<qsizetype>(open, 0));
        if (open >= 0 && close > open && QStringView(name).sliced(open, close - open).contains(u'@')) {
            address = cleanAddress(name.sliced(open + 1, close - open - 1));
            name = name.first(open).trimmed();
        } else if (name.contains(u'@') && cleanAddress(name) == name) {
            std::swap(name, address);
        }
    } else if (name.isEmpty() && !address.contains(u'@')) {
        std::swap(name, address);
    }
    return {name, address};
}

/// Reads a list from left to right, in time in line with its length: a search that failed is not made again.
class AddressReader {
  public:
    AddressReader(QByteArrayView raw, const CharsetHints &hints)
        : m_raw(raw), m_hints(hints), m_encoded(raw, hints), m_pieces(raw, hints) {}

    QList<Address> read() {
        while (m_at < m_raw.size() && m_result.size() < mostAddresses)
            step();
        finishEntry();
        finishGroup();
        return std::move(m_result);
    }

  private:
    void step() {
        switch (m_raw[m_at]) {
        case '"':
            quotedText();
            break;
        case '(':
            comment();
            break;
        case '<':
            angleAddress();
            break;
        case ',':
            finishEntry();
            ++m_at;
            break;
        case ';':
            finishEntry();
            finishGroup();
            ++m_at;
            break;
        case ':':
            startGroup();
            ++m_at;
            break;
        case ' ':
        case '\t':
        case '\r':
        case '\n':
        case '>':
        case ')':
            m_apart = true;
            ++m_at;
            break;
        default:
            atom();
        }
    }

    void word(const QString &text) {
        if (m_apart || m_words.isEmpty())
            m_words.append(text);
        else
            m_words.last() += text;
        m_apart = false;
    }

    void quotedText() {
        const qsizetype end = m_openQuote ? -1 : closing('"', '"');
        m_openQuote = end < 0;
        if (end < 0) {
            ++m_at;
            return;
        }
        const QString text = decodeHeader(unescaped(end), m_hints);
        const bool localPart = end + 1 < m_raw.size() && m_raw[end + 1] == '@';
        word(localPart ? QString::fromUtf8(m_raw.sliced(m_at, end + 1 - m_at)) : text);
        m_at = end + 1;
    }

    void comment() {
        const qsizetype end = m_openComment ? -1 : closing('(', ')');
        m_openComment = end < 0;
        m_apart = true;
        if (end >= 0)
            m_comment = decodeHeader(unescaped(end), m_hints);
        m_at = end < 0 ? m_at + 1 : end + 1;
    }

    void angleAddress() {
        const qsizetype start = m_at + 1;
        // An old route, "@relay,@relay:", stands in front of the address.
        const bool route = start < m_raw.size() && m_raw[start] == '@';
        m_at = start;
        if (m_at < m_raw.size() && m_raw[m_at] == '"' && !m_openQuote) {
            const qsizetype end = closing('"', '"');
            m_openQuote = end < 0;
            m_at = end < 0 ? m_at : end;
        }
        while (m_at < m_raw.size() && m_raw[m_at] != '>' && m_raw[m_at] != '<' &&
               (route || (m_raw[m_at] != ',' && m_raw[m_at] != ';')))
            ++m_at;
        QByteArrayView content = m_raw.sliced(start, m_at - start);
        if (const qsizetype colon = route ? content.lastIndexOf(':') : -1; colon >= 0)
            content = content.sliced(colon + 1);
        if (m_address.isEmpty())
            m_address = cleanAddress(decodeHeader(content, m_hints));
        m_apart = true;
    }

    void atom() {
        if (const auto decoded = m_raw[m_at] == '=' ? m_encoded.read(m_at) : std::nullopt) {
            word(oneLine(*decoded));
            return;
        }
        const qsizetype start = m_at++;
        while (m_at < m_raw.size() && !QByteArrayView("\"(),:;<>= \t\r\n").contains(m_raw[m_at]))
            ++m_at;
        const QByteArrayView text = m_raw.sliced(start, m_at - start);
        word(oneLine(m_pieces.decode(text)));
        if (m_bare < 0 && text.contains('@'))
            m_bare = m_words.size() - 1;
    }

    void startGroup() {
        if (m_bare >= 0 || !m_address.isEmpty()) {
            word(":");
            return;
        }
        finishGroup();
        m_group = m_words.join(u' ').trimmed();
        m_members = m_result.size();
        clearEntry();
    }

    /// A group without members is kept as its name.
    void finishGroup() {
        if (!m_group.isEmpty() && m_members == m_result.size())
            m_result.append({m_group, {}});
        m_group.clear();
    }

    void finishEntry() {
        if (m_address.isEmpty() && m_bare >= 0)
            m_address = cleanAddress(m_words.takeAt(m_bare));
        QString name = oneLine(m_words.join(u' '));
        if (name.isEmpty())
            name = m_comment;
        const Address entry = sorted(name, m_address);
        if (!entry.isEmpty())
            m_result.append(entry);
        clearEntry();
    }

    void clearEntry() {
        m_words.clear();
        m_comment.clear();
        m_address.clear();
        m_bare = -1;
        m_apart = false;
    }

    /// Where what opens at the present position closes, -1 when it does not.
    [[nodiscard]] qsizetype closing(char open, char close) const {
        int depth = 1;
        for (qsizetype i = m_at + 1; i < m_raw.size(); ++i) {
            if (m_raw[i] == '\\')
                ++i;
            else if (m_raw[i] == close && --depth == 0)
                return i;
            else if (m_raw[i] == open)
                ++depth;
        }
        return -1;
    }

    [[nodiscard]] QByteArray unescaped(qsizetype end) const {
        QByteArray text;
        for (qsizetype i = m_at + 1; i < end; ++i) {
            if (m_raw[i] == '\\' && i + 1 < end)
                ++i;
            text += m_raw[i];
        }
        return text;
    }

    QByteArrayView m_raw;
    const CharsetHints &m_hints;
    EncodedWordReader m_encoded;
    HeaderText m_pieces;
    qsizetype m_at = 0;
    bool m_openQuote = false;
    bool m_openComment = false;
    QList<Address> m_result;

    // The entry being read.
    QStringList m_words;
    QString m_comment;
    QString m_address;
    qsizetype m_bare = -1; ///< the word that holds an '@' outside quotes, -1 when none does
    bool m_apart = false;  ///< whether the next piece starts a word of its own

    QString m_group;
    qsizetype m_members = 0; ///< how many addresses there were when the group began
};

QByteArray quoted(const QString &text) {
    QByteArray result = "\"";
    for (const char c : text.toUtf8()) {
        if (c == '"' || c == '\\')
            result += '\\';
        result += c;
    }
    return result + '"';
}

bool isWord(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == ' ' || c == '-' ||
           c == '_' || c == '\'';
}

QByteArray encodePhrase(const QString &name) {
    QByteArray ascii = name.toLatin1();
    if (std::all_of(ascii.begin(), ascii.end(), isWord) && ascii.size() <= longestQuoted && !ascii.contains("  "))
        return ascii;
    const bool printable =
        std::all_of(name.begin(), name.end(), [](QChar c) { return c.unicode() >= 0x20 && c.unicode() < 0x7F; });
    if (printable && !ascii.contains("=?") && ascii.size() <= longestQuoted)
        return quoted(name);
    return encodedWords(name);
}

} // namespace

QList<Address> decodeAddresses(QByteArrayView raw, const CharsetHints &hints) {
    const QByteArrayView list = raw.first(std::min(raw.size(), longestList));
    const Charset charset = HeaderText(list, hints).charset();
    // In several sets a backslash or an '@' may be the second byte of a character.
    if (charset.family == Charset::Family::Iconv && !list.contains("=?"))
        return AddressReader(decodeAs(list, charset).text.toUtf8(), hints).read();
    return AddressReader(list, hints).read();
}

QByteArray encodeAddresses(const QList<Address> &addresses) {
    QByteArray result;
    for (const Address &entry : addresses) {
        const QString address = cleanAddress(entry.address);
        const QString name = oneLine(entry.name);
        if (address.isEmpty() && name.isEmpty())
            continue;
        if (!result.isEmpty())
            result += ",\r\n ";
        if (address.isEmpty())
            result += encodePhrase(name) + ":;";
        else if (name.isEmpty())
            result += '<' + address.toUtf8() + '>';
        else
            result += encodePhrase(name) + " <" + address.toUtf8() + '>';
    }
    return result;
}

bool isReachable(const QString &address) {
    const qsizetype at = address.lastIndexOf(u'@');
    if (at <= 0)
        return false;
    if (startOfLiteral(address) == at)
        return address.size() > at + 3;
    const QStringList labels = address.sliced(at + 1).split(u'.');
    return std::all_of(labels.begin(), labels.end(), [](const QString &label) {
        return !label.isEmpty() && std::all_of(label.begin(), label.end(), [](QChar c) {
            return c.unicode() < 128 && (c.isLetterOrNumber() || c == u'-' || c == u'_');
        });
    });
}

QString withPlainDomain(const QString &address) {
    const qsizetype at = address.lastIndexOf(u'@');
    const auto isPlain = [](QChar c) { return c.unicode() < 128; };
    if (at < 0 || std::all_of(address.begin() + at, address.end(), isPlain))
        return address;
    const QByteArray domain = QUrl::toAce(address.sliced(at + 1));
    return domain.isEmpty() ? address : address.first(at + 1) + QString::fromLatin1(domain);
}

} // namespace desk
