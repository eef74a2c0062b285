#include "desk/mail/addresses.h"

#include "desk/mail/charset.h"
#include "desk/mail/gmime.h"
#include "desk/mail/headertext.h"

namespace desk {
namespace {

/// What of an address header is read: more than any list of people.
constexpr qsizetype longestList = 1024 * 1024;
/// Every ':' may open a group, and the library goes one call deeper for each.
constexpr int mostGroups = 200;
/// A name longer than this is not written as one quoted word.
constexpr qsizetype longestQuoted = 60;

QByteArray quoted(const QString &text) {
    QByteArray result = "\"";
    for (const char c : text.toUtf8()) {
        if (c == '"' || c == '\\')
            result += '\\';
        result += c;
    }
    return result + '"';
}

/// Rewrites a list so that the library has nothing left to decode: every encoded word and quoted text is a quoted text
/// in UTF-8, every comment is closed, nothing nests deep.
class Rewriter {
  public:
    Rewriter(QByteArrayView raw, QByteArrayView fallback) : m_raw(raw), m_fallback(fallback), m_words(raw) {}

    QByteArray run() {
        while (m_at < m_raw.size())
            step();
        return m_result;
    }

  private:
    void step() {
        const char c = m_raw[m_at];
        if (c == '"') {
            quotedText();
        } else if (c == '(') {
            comment();
        } else if (c == '=') {
            if (const auto decoded = m_words.read(m_at))
                m_result += ' ' + quoted(oneLine(*decoded)) + ' ';
            else
                m_result += m_raw[m_at++];
        } else if (static_cast<unsigned char>(c) >= 0x80) {
            eightBit();
        } else {
            ++m_at;
            const bool blank = static_cast<unsigned char>(c) < 0x20 || c == 0x7F || c == ')' || c == '\\';
            m_result += blank || (c == ':' && ++m_groups > mostGroups) ? ' ' : c;
        }
    }

    void quotedText() {
        const qsizetype end = m_openQuote ? -1 : closing('"', '"');
        m_openQuote = end < 0;
        if (end < 0) {
            ++m_at;
            m_result += ' ';
            return;
        }
        const QString text = decodeHeader(unescaped(end), m_fallback);
        // A quoted local part has its '@' right behind it; a quoted name must not touch what follows.
        m_result += quoted(text);
        m_at = end + 1;
    }

    void comment() {
        const qsizetype end = m_openComment ? -1 : closing('(', ')');
        m_openComment = end < 0;
        if (end < 0) {
            ++m_at;
            m_result += ' ';
            return;
        }
        QByteArray text = decodeHeader(unescaped(end), m_fallback).toUtf8();
        text.replace('\\', ' ').replace('(', ' ').replace(')', ' ');
        m_result += '(' + text + ')';
        m_at = end + 1;
    }

    void eightBit() {
        const qsizetype start = m_at;
        while (m_at < m_raw.size() && !QByteArrayView("\"(),:;<>@ \t\r\n").contains(m_raw[m_at]))
            ++m_at;
        m_result += oneLine(decodeText(m_raw.sliced(start, m_at - start), {}, m_fallback)).toUtf8();
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
    QByteArrayView m_fallback;
    EncodedWordReader m_words;
    qsizetype m_at = 0;
    int m_groups = 0;
    bool m_openQuote = false;
    bool m_openComment = false;
    QByteArray m_result;
};

/// An address without what could not stand in angle brackets.
QString cleanAddress(const QString &text) {
    QString address = oneLine(text);
    address.removeIf([](QChar c) { return c.isSpace() || QStringView(u"<>(),;\"\\").contains(c); });
    return address;
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

void collect(InternetAddressList *list, QList<Address> &result) {
    const int count = internet_address_list_length(list);
    for (int i = 0; i < count; ++i) {
        InternetAddress *entry = internet_address_list_get_address(list, i);
        const QString name = oneLine(QString::fromUtf8(internet_address_get_name(entry)));
        Address address;
        if (INTERNET_ADDRESS_IS_GROUP(entry)) {
            InternetAddressList *members = internet_address_group_get_members(INTERNET_ADDRESS_GROUP(entry));
            if (members && internet_address_list_length(members) > 0) {
                collect(members, result);
                continue;
            }
            address.name = name;
        } else {
            const char *text = internet_address_mailbox_get_addr(INTERNET_ADDRESS_MAILBOX(entry));
            address = sorted(name, cleanAddress(QString::fromUtf8(text)));
        }
        if (!address.isEmpty())
            result.append(address);
    }
}

bool isWord(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == ' ' || c == '-' ||
           c == '_' || c == '\'';
}

QByteArray encodePhrase(const QString &name) {
    const QByteArray ascii = name.toLatin1();
    if (std::all_of(ascii.begin(), ascii.end(), isWord) && ascii.size() <= longestQuoted && !ascii.contains("  "))
        return ascii;
    const bool printable =
        std::all_of(name.begin(), name.end(), [](QChar c) { return c.unicode() >= 0x20 && c.unicode() < 0x7F; });
    if (printable && !ascii.contains("=?") && ascii.size() <= longestQuoted)
        return quoted(name);
    return encodedWords(name);
}

} // namespace

QList<Address> decodeAddresses(QByteArrayView raw, QByteArrayView fallback) {
    raw = raw.first(std::min(raw.size(), longestList));
    const ParserOptions options = tolerantOptions();
    const QByteArray list = Rewriter(raw, fallback).run();
    const GRef<InternetAddressList> parsed(internet_address_list_parse(options.get(), list.constData()));
    QList<Address> result;
    if (parsed)
        collect(parsed.get(), result);
    if (result.isEmpty()) {
        QString text = decodeHeader(raw, fallback);
        if (text.startsWith(u'(') && text.endsWith(u')'))
            text = text.sliced(1, text.size() - 2).trimmed();
        const Address address = sorted(text, {});
        if (!address.isEmpty())
            result.append(address);
    }
    return result;
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

} // namespace desk
