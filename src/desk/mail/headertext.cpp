#include "desk/mail/headertext.h"

#include "desk/mail/charset.h"
#include "desk/mail/charsetguess.h"

namespace desk {
namespace {

constexpr qsizetype longestCharsetName = 60;
/// What of a line a header may fill before it is folded.
constexpr qsizetype lineWidth = 76;
/// The longest line that mail may have, with room for the header's name.
constexpr qsizetype longestWord = 900;

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

qsizetype skipBlanks(QByteArrayView raw, qsizetype position) {
    while (position < raw.size() && isBlank(raw[position]))
        ++position;
    return position;
}

int hexDigit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

QByteArray decodeQ(QByteArrayView text) {
    QByteArray bytes;
    bytes.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const int high = text[i] == '=' && i + 2 < text.size() ? hexDigit(text[i + 1]) : -1;
        const int low = high >= 0 ? hexDigit(text[i + 2]) : -1;
        if (low >= 0) {
            bytes += static_cast<char>(high * 16 + low);
            i += 2;
        } else {
            bytes += text[i] == '_' ? ' ' : text[i];
        }
    }
    return bytes;
}

bool isPlain(const QString &text) {
    qsizetype word = 0;
    for (const QChar c : text) {
        word = c == u' ' ? 0 : word + 1;
        if (c.unicode() < 0x20 || c.unicode() > 0x7E || word > longestWord)
            return false;
    }
    return !text.contains(u"=?");
}

/// Breaks lines at single blanks, so that unfolding gives the same text back.
QByteArray folded(const QByteArray &text, qsizetype nameLength) {
    QByteArray result;
    qsizetype column = nameLength + 2;
    for (qsizetype start = 0; start < text.size();) {
        qsizetype end = text.indexOf(' ', start + 1);
        if (end < 0)
            end = text.size();
        const bool mayBreak = text[start] == ' ' && end - start > 1 && start > 0 && text[start - 1] != ' ';
        if (mayBreak && column + end - start > lineWidth) {
            result += "\r\n";
            column = 0;
        }
        result += QByteArrayView(text).sliced(start, end - start);
        column += end - start;
        start = end;
    }
    return result;
}

} // namespace

qsizetype EncodedWordReader::endFrom(qsizetype position) {
    if (m_knownEnd >= 0 && m_knownEnd < position)
        m_knownEnd = m_raw.indexOf("?=", position);
    return m_knownEnd;
}

std::optional<EncodedWordReader::Word> EncodedWordReader::wordAt(qsizetype position) {
    if (!m_raw.sliced(position).startsWith("=?"))
        return std::nullopt;
    const qsizetype start = position + 2;
    qsizetype mark = start;
    while (mark < m_raw.size() && m_raw[mark] != '?' && !isBlank(m_raw[mark]) && mark - start <= longestCharsetName)
        ++mark;
    if (mark + 2 >= m_raw.size() || mark == start || m_raw[mark] != '?' || m_raw[mark + 2] != '?')
        return std::nullopt;
    const char encoding = m_raw[mark + 1];
    if (!QByteArrayView("bBqQ").contains(encoding))
        return std::nullopt;
    qsizetype end = endFrom(mark + 3);
    qsizetype after = end + 2;
    // Cut off: the rest of the word is what is left of the text.
    if (end < 0) {
        end = mark + 3;
        while (end < m_raw.size() && !isBlank(m_raw[end]))
            ++end;
        after = end;
    }
    QByteArrayView charset = m_raw.sliced(start, mark - start);
    if (const qsizetype language = charset.indexOf('*'); language >= 0)
        charset = charset.first(language);
    const QByteArrayView text = m_raw.sliced(mark + 3, end - mark - 3);
    const bool base64 = encoding == 'b' || encoding == 'B';
    return Word{charset, base64 ? QByteArray::fromBase64(text.toByteArray()) : decodeQ(text), after};
}

std::optional<QString> EncodedWordReader::read(qsizetype &position) {
    QString text;
    QByteArray bytes;
    QByteArrayView charset;
    qsizetype at = position;
    bool found = false;
    while (at < m_raw.size()) {
        const auto word = wordAt(at);
        if (!word)
            break;
        // Some senders divide a text between the bytes of one character.
        if (found && word->charset.compare(charset, Qt::CaseInsensitive) != 0) {
            text += decodeText(bytes, charset, m_hints);
            bytes.clear();
        }
        charset = word->charset;
        bytes += word->bytes;
        found = true;
        position = word->end;
        at = skipBlanks(m_raw, position);
    }
    if (!found)
        return std::nullopt;
    return text + decodeText(bytes, charset, m_hints);
}

QString decodeHeader(QByteArrayView raw, const CharsetHints &hints) {
    QString text;
    EncodedWordReader words(raw, hints);
    const HeaderText pieces(raw, hints);
    qsizetype plain = 0;
    for (qsizetype at = 0; at < raw.size();) {
        const qsizetype start = at;
        auto decoded = raw[at] == '=' ? words.read(at) : std::nullopt;
        if (!decoded) {
            ++at;
            continue;
        }
        text += pieces.decode(raw.sliced(plain, start - plain)) + *decoded;
        plain = at;
    }
    return oneLine(text + pieces.decode(raw.sliced(plain)));
}

QString oneLine(const QString &text) {
    QString line;
    line.reserve(text.size());
    bool broken = false;
    for (const QChar c : text) {
        const bool lineBreak = c == u'\r' || c == u'\n';
        if (lineBreak || (broken && (c == u' ' || c == u'\t'))) {
            if (!broken)
                line += u' ';
            broken = true;
            continue;
        }
        broken = false;
        line += c.category() == QChar::Other_Control || c == QChar::LineSeparator || c == QChar::ParagraphSeparator
                    ? QChar(u' ')
                    : c;
    }
    return line.trimmed();
}

QByteArray encodedWords(const QString &text) {
    constexpr qsizetype bytesInWord = 45;
    QByteArray result;
    QByteArray bytes;
    const auto finishWord = [&] {
        result += (result.isEmpty() ? "=?utf-8?B?" : "\r\n =?utf-8?B?") + bytes.toBase64() + "?=";
        bytes.clear();
    };
    for (qsizetype i = 0; i < text.size();) {
        const qsizetype length = text.at(i).isHighSurrogate() && i + 1 < text.size() ? 2 : 1;
        const QByteArray character = QStringView(text).sliced(i, length).toUtf8();
        if (bytes.size() + character.size() > bytesInWord)
            finishWord();
        bytes += character;
        i += length;
    }
    if (!bytes.isEmpty())
        finishWord();
    return result;
}

QByteArray encodeHeader(const QString &text, qsizetype nameLength) {
    const QString line = oneLine(text);
    return isPlain(line) ? folded(line.toLatin1(), nameLength) : encodedWords(line);
}

} // namespace desk
