#include "desk/mail/charset.h"

#include "desk/mail/charsetcodec.h"
#include "desk/mail/charsetguess.h"
#include "desk/mail/iconv.h"

#include <cerrno>

namespace desk {
namespace {

using Family = Charset::Family;

Decoded decodeWindows1252(QByteArrayView bytes) {
    Decoded decoded{QString(bytes.size(), Qt::Uninitialized)};
    std::transform(bytes.begin(), bytes.end(), decoded.text.begin(),
                   [](char c) { return QChar(windows1252(static_cast<unsigned char>(c))); });
    decoded.bad = std::count_if(decoded.text.cbegin(), decoded.text.cend(),
                                [](QChar c) { return c >= QChar(0x80) && c < QChar(0xA0); });
    return decoded;
}

/// The length of the well-formed UTF-8 sequence at the front, 0 when there is none.
int utf8Length(QByteArrayView bytes) {
    const auto at = [&](qsizetype i) { return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U; };
    const auto follows = [&](qsizetype i) { return (at(i) & 0xC0U) == 0x80U; };
    const unsigned lead = at(0);
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC2 && lead <= 0xDF)
        return follows(1) ? 2 : 0;
    if ((lead & 0xF0U) == 0xE0U) {
        const unsigned low = lead == 0xE0 ? 0xA0 : 0x80;
        const unsigned high = lead == 0xED ? 0x9F : 0xBF;
        return at(1) >= low && at(1) <= high && follows(2) ? 3 : 0;
    }
    if (lead >= 0xF0 && lead <= 0xF4) {
        const unsigned low = lead == 0xF0 ? 0x90 : 0x80;
        const unsigned high = lead == 0xF4 ? 0x8F : 0xBF;
        return at(1) >= low && at(1) <= high && follows(2) && follows(3) ? 4 : 0;
    }
    return 0;
}

/// How many bytes from the front on are well-formed UTF-8.
qsizetype utf8Prefix(QByteArrayView bytes) {
    qsizetype end = 0;
    while (end < bytes.size()) {
        const int length = utf8Length(bytes.sliced(end, std::min<qsizetype>(4, bytes.size() - end)));
        if (length == 0)
            break;
        end += length;
    }
    return end;
}

/// Whether the bytes are the beginning of one character of UTF-8, as a text ends that was cut off.
bool isCutUtf8(QByteArrayView bytes) {
    constexpr qsizetype longestCut = 3;
    const auto lead = static_cast<unsigned char>(bytes[0]);
    return bytes.size() <= longestCut && lead >= 0xC2 && lead <= 0xF4 &&
           std::all_of(bytes.begin() + 1, bytes.end(),
                       [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; });
}

Decoded decodeUtf8(QByteArrayView bytes) {
    Decoded decoded;
    bool isCut = false;
    while (!bytes.isEmpty()) {
        const qsizetype good = utf8Prefix(bytes);
        decoded.text += QString::fromUtf8(bytes.first(good));
        bytes = bytes.sliced(good);
        if (!bytes.isEmpty()) {
            isCut = isCut || isCutUtf8(bytes);
            decoded.bad += isCut ? 0 : 1;
            decoded.text += QChar(windows1252(static_cast<unsigned char>(bytes[0])));
            bytes = bytes.sliced(1);
        }
    }
    return decoded;
}

QString decodeUtf16(QByteArrayView bytes, Family family) {
    bool bigEndian = family == Family::Utf16Be;
    if (bytes.startsWith("\xFE\xFF") || bytes.startsWith("\xFF\xFE")) {
        bigEndian = bytes.startsWith("\xFE\xFF");
        bytes = bytes.sliced(2);
    } else if (family == Family::Utf16) {
        // Most text has blanks and digits: the side of the zero bytes tells which end comes first.
        std::array<int, 2> zeros{};
        for (qsizetype i = 0; i < std::min<qsizetype>(bytes.size(), 4096); ++i)
            zeros[static_cast<std::size_t>(i % 2)] += bytes[i] == 0;
        bigEndian = zeros[0] >= zeros[1];
    }
    QString text;
    text.reserve(bytes.size() / 2 + 1);
    for (qsizetype i = 0; i + 1 < bytes.size(); i += 2) {
        const auto first = static_cast<unsigned char>(bytes[i]);
        const auto second = static_cast<unsigned char>(bytes[i + 1]);
        text += QChar(static_cast<char16_t>(bigEndian ? first << 8 | second : second << 8 | first));
    }
    if (bytes.size() % 2 != 0)
        text += QChar(windows1252(static_cast<unsigned char>(bytes.back())));
    return text;
}

Decoded decodeWithIconv(QByteArrayView bytes, const QByteArray &name) {
    const Iconv converter(name.constData());
    if (!converter.isOpen())
        return decodeWindows1252(bytes);
    Decoded decoded;
    std::array<char16_t, 4096> buffer;
    // The interface takes a pointer to non-const and leaves the bytes alone.
    auto *input = const_cast<char *>(bytes.data());
    auto left = static_cast<std::size_t>(bytes.size());
    bool flushing = false;
    while (true) {
        auto *output = reinterpret_cast<char *>(buffer.data());
        std::size_t room = sizeof buffer;
        const std::size_t done = iconv(converter.get(), flushing ? nullptr : &input, &left, &output, &room);
        const int error = done == static_cast<std::size_t>(-1) ? errno : 0;
        decoded.text += QStringView(buffer.data(), static_cast<qsizetype>((sizeof buffer - room) / sizeof(char16_t)));
        if (error == E2BIG)
            continue;
        if (flushing)
            return decoded;
        if (error != 0 && left > 0) {
            // EINVAL is a character that the end of the bytes cuts off.
            decoded.bad += error == EINVAL ? 0 : 1;
            decoded.text += QChar(windows1252(static_cast<unsigned char>(*input)));
            ++input;
            --left;
        }
        flushing = left == 0;
    }
}

/// HZ: 7-bit text in which "~{" and "~}" enclose GB 2312 pairs without their high bits.
Decoded decodeHz(QByteArrayView bytes) {
    QByteArray plain;
    bool chinese = false;
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const char next = i + 1 < bytes.size() ? bytes[i + 1] : '\0';
        if (bytes[i] == '~' && (next == '{' || next == '}')) {
            chinese = next == '{';
            ++i;
        } else if (bytes[i] == '~' && !chinese && (next == '~' || next == '\n')) {
            plain += next == '~' ? "~" : "";
            ++i;
        } else if (bytes[i] == '\n' || bytes[i] == '\r') {
            chinese = false; // a pair never spans lines; a missing end must not spoil the rest
            plain += bytes[i];
        } else {
            plain += chinese ? static_cast<char>(static_cast<unsigned char>(bytes[i]) | 0x80U) : bytes[i];
        }
    }
    return decodeWithIconv(plain, "GB18030");
}

/// How many characters beyond ASCII were understood.
qsizetype understood(const Decoded &decoded) {
    return std::count_if(decoded.text.begin(), decoded.text.end(), [](QChar c) { return c > QChar(0x7F); }) -
           decoded.bad;
}

/// How often UTF-7 is broken off in the bytes: by a '+' that is neither a plus sign, "+-", nor the start of a
/// character. The library passes over it.
qsizetype brokenUtf7(QByteArrayView bytes) {
    const auto isBase64 = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '+' || c == '/';
    };
    constexpr qsizetype shortest = 3;
    qsizetype broken = 0;
    for (qsizetype at = bytes.indexOf('+'); at >= 0; at = bytes.indexOf('+', at)) {
        const qsizetype start = ++at;
        while (at < bytes.size() && isBase64(bytes[at]))
            ++at;
        const bool isPlus = at == start && at < bytes.size() && bytes[at] == '-';
        broken += at - start < shortest && !isPlus ? 1 : 0;
    }
    return broken;
}

/// Whether bytes that came out like this are in another set than the one they are marked with.
bool isWrong(const Decoded &decoded, QByteArrayView bytes, const Charset &charset) {
    if (decoded.bad == 0)
        return false;
    // Bytes in other sets are seldom valid UTF-8, one after another; in most other sets most bytes mean something.
    const qsizetype mostBad = charset.family == Family::Utf8 ? understood(decoded) : understood(decoded) / 8;
    return decoded.bad > mostBad || (!isAscii(bytes) && isUtf8(bytes));
}

Decoded decodeGuessed(QByteArrayView bytes, const CharsetHints &hints) {
    return decodeAs(bytes, guessCharset(bytes, hints));
}

Decoded decodeMarked(QByteArrayView bytes, const Charset &charset, const CharsetHints &hints) {
    Decoded marked = decodeAs(bytes, charset);
    if (charset.iconvName == "UTF-7")
        marked.bad += brokenUtf7(bytes);
    if (!isWrong(marked, bytes, charset))
        return marked;
    Decoded guessed = decodeGuessed(bytes, hints);
    return guessed.bad < marked.bad ? guessed : marked;
}

} // namespace

char16_t windows1252(unsigned char byte) {
    static constexpr char16_t upper[32] = {0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                           0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x8D,   0x017D, 0x8F,
                                           0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                           0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};
    return byte >= 0x80 && byte < 0xA0 ? upper[byte - 0x80] : byte;
}

Decoded decodeAs(QByteArrayView bytes, const Charset &charset) {
    switch (charset.family) {
    case Family::Utf16:
    case Family::Utf16Le:
    case Family::Utf16Be:
        return {decodeUtf16(bytes, charset.family)};
    case Family::Windows1252:
        return decodeWindows1252(bytes);
    case Family::Hz:
        return decodeHz(bytes);
    case Family::Iconv:
        return decodeWithIconv(bytes, charset.iconvName);
    case Family::Utf8:
    case Family::Guess:
        break;
    }
    return decodeUtf8(bytes);
}

Charset escapedCharset(QByteArrayView bytes) {
    if (bytes.contains(QByteArrayView("\x1B$B")) || bytes.contains(QByteArrayView("\x1B$@")))
        return {Family::Iconv, "ISO-2022-JP-3"};
    if (bytes.contains(QByteArrayView("\x1B$)C")))
        return {Family::Iconv, "ISO-2022-KR"};
    return {};
}

QString wellFormed(QString text) {
    if (text.startsWith(QChar(0xFEFF)))
        text.remove(0, 1);
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate())
            ++i;
        else if (c.isSurrogate() || c.isNull())
            text[i] = QChar::ReplacementCharacter;
    }
    return text;
}

bool isUtf8(QByteArrayView bytes) { return utf8Prefix(bytes) == bytes.size(); }

bool isAscii(QByteArrayView bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](char c) { return static_cast<signed char>(c) >= 0; });
}

QString decodeText(QByteArrayView bytes, QByteArrayView charset, const CharsetHints &hints) {
    const Charset marked = charsetNamed(charset);
    return wellFormed(marked.family == Family::Guess ? decodeGuessed(bytes, hints).text
                                                     : decodeMarked(bytes, marked, hints).text);
}

QString decodeText(QByteArrayView bytes, QByteArrayView charset) { return decodeText(bytes, charset, {}); }

} // namespace desk
