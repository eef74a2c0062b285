#include "desk/mail/charset.h"

#include <QStringDecoder>

#include <iconv.h>

#include <cerrno>

namespace desk {
namespace {

enum class Family { Guess, Utf8, Utf16, Utf16Le, Utf16Be, Windows1252, Hz, Iconv };

struct Charset {
    Family family = Family::Guess;
    QByteArray iconvName;
};

struct Alias {
    const char *label; ///< letters and digits only, in lower case
    Family family;
    const char *iconvName;
};

/// Names that mean more than they say, or that iconv does not know. All others are tried with iconv as they are.
constexpr Alias aliases[] = {
    {"utf8", Family::Utf8, ""},
    {"unicode11utf8", Family::Utf8, ""},
    {"utf16", Family::Utf16, ""},
    {"unicode", Family::Utf16, ""},
    {"ucs2", Family::Utf16, ""},
    {"iso10646ucs2", Family::Utf16, ""},
    {"utf16le", Family::Utf16Le, ""},
    {"unicodefffe", Family::Utf16Be, ""},
    {"utf16be", Family::Utf16Be, ""},
    {"utf7", Family::Iconv, "UTF-7"},
    {"unicode11utf7", Family::Iconv, "UTF-7"},
    {"windows1252", Family::Windows1252, ""},
    {"xansi", Family::Windows1252, ""},
    {"ansi", Family::Windows1252, ""},
    {"iso88591", Family::Windows1252, ""},
    {"88591", Family::Windows1252, ""},
    {"latin1", Family::Windows1252, ""},
    {"l1", Family::Windows1252, ""},
    {"isolatin1", Family::Windows1252, ""},
    {"iso88599", Family::Iconv, "WINDOWS-1254"},
    {"latin5", Family::Iconv, "WINDOWS-1254"},
    {"iso885911", Family::Iconv, "WINDOWS-874"},
    {"tis620", Family::Iconv, "WINDOWS-874"},
    {"dos874", Family::Iconv, "WINDOWS-874"},
    {"iso88598i", Family::Iconv, "ISO-8859-8"},
    {"iso88598e", Family::Iconv, "ISO-8859-8"},
    {"logical", Family::Iconv, "ISO-8859-8"},
    {"visual", Family::Iconv, "ISO-8859-8"},
    {"88592", Family::Iconv, "ISO-8859-2"},
    {"885915", Family::Iconv, "ISO-8859-15"},
    {"latin9", Family::Iconv, "ISO-8859-15"},
    {"koi8", Family::Iconv, "KOI8-R"},
    {"koi", Family::Iconv, "KOI8-R"},
    {"win1251", Family::Iconv, "WINDOWS-1251"},
    {"xcp1251", Family::Iconv, "WINDOWS-1251"},
    {"xcp1250", Family::Iconv, "WINDOWS-1250"},
    {"shiftjis", Family::Iconv, "CP932"},
    {"sjis", Family::Iconv, "CP932"},
    {"xsjis", Family::Iconv, "CP932"},
    {"mskanji", Family::Iconv, "CP932"},
    {"windows31j", Family::Iconv, "CP932"},
    {"cp932", Family::Iconv, "CP932"},
    {"eucjp", Family::Iconv, "EUC-JP-MS"},
    {"xeucjp", Family::Iconv, "EUC-JP-MS"},
    {"iso2022jp", Family::Iconv, "ISO-2022-JP-3"},
    {"csiso2022jp", Family::Iconv, "ISO-2022-JP-3"},
    {"iso2022jpms", Family::Iconv, "ISO-2022-JP-3"},
    {"gb2312", Family::Iconv, "GB18030"},
    {"gb231280", Family::Iconv, "GB18030"},
    {"euccn", Family::Iconv, "GB18030"},
    {"xgbk", Family::Iconv, "GB18030"},
    {"gbk", Family::Iconv, "GB18030"},
    {"cp936", Family::Iconv, "GB18030"},
    {"hz", Family::Hz, ""},
    {"hzgb2312", Family::Hz, ""},
    {"big5", Family::Iconv, "BIG5-HKSCS"},
    {"xxbig5", Family::Iconv, "BIG5-HKSCS"},
    {"cnbig5", Family::Iconv, "BIG5-HKSCS"},
    {"euckr", Family::Iconv, "UHC"},
    {"ksc5601", Family::Iconv, "UHC"},
    {"ksc56011987", Family::Iconv, "UHC"},
    {"ksc56011989", Family::Iconv, "UHC"},
    {"windows949", Family::Iconv, "UHC"},
    {"korean", Family::Iconv, "UHC"},
    {"xmacroman", Family::Iconv, "MACINTOSH"},
    {"macroman", Family::Iconv, "MACINTOSH"},
    {"mac", Family::Iconv, "MACINTOSH"},
    {"xmaccyrillic", Family::Iconv, "MAC-CYRILLIC"},
    {"usascii", Family::Guess, ""},
    {"ascii", Family::Guess, ""},
    {"ansix341968", Family::Guess, ""},
    {"iso646us", Family::Guess, ""},
    {"unknown", Family::Guess, ""},
    {"unknown8bit", Family::Guess, ""},
    {"xunknown", Family::Guess, ""},
    {"xuserdefined", Family::Guess, ""},
    {"8bit", Family::Guess, ""},
    {"7bit", Family::Guess, ""},
    {"default", Family::Guess, ""},
    {"none", Family::Guess, ""},
};

class Iconv {
  public:
    explicit Iconv(const char *from) : m_handle(iconv_open("UTF-16LE", from)) {}
    Iconv(const Iconv &) = delete;
    Iconv &operator=(const Iconv &) = delete;
    ~Iconv() {
        if (isOpen())
            iconv_close(m_handle);
    }

    // iconv_open says "none" with (iconv_t)-1.
    [[nodiscard]] bool isOpen() const { return reinterpret_cast<std::intptr_t>(m_handle) != -1; }
    [[nodiscard]] iconv_t get() const { return m_handle; }

  private:
    iconv_t m_handle;
};

Charset charsetNamed(QByteArrayView name) {
    QByteArray label;
    QByteArray safe;
    for (const char c : name.first(std::min<qsizetype>(name.size(), 60))) {
        const bool word = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
        if (word)
            label += static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
        if (word || c == '-' || c == '_' || c == '.' || c == ':')
            safe += c;
    }
    for (const Alias &alias : aliases) {
        if (label == alias.label)
            return {alias.family, alias.iconvName};
    }
    if (label.startsWith("cp12") || label.startsWith("win12") || label.startsWith("ms12"))
        safe = "WINDOWS-" + label.last(std::min<qsizetype>(label.size(), 4));
    if (safe == "WINDOWS-1252")
        return {Family::Windows1252, {}};
    if (safe.isEmpty() || !Iconv(safe.constData()).isOpen())
        return {};
    return {Family::Iconv, safe};
}

char16_t windows1252(unsigned char byte) {
    // The five that windows-1252 leaves open are the control characters of that number.
    static constexpr char16_t upper[32] = {0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                           0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x8D,   0x017D, 0x8F,
                                           0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                           0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};
    return byte >= 0x80 && byte < 0xA0 ? upper[byte - 0x80] : byte;
}

QString decodeWindows1252(QByteArrayView bytes) {
    QString text(bytes.size(), Qt::Uninitialized);
    std::transform(bytes.begin(), bytes.end(), text.begin(),
                   [](char c) { return QChar(windows1252(static_cast<unsigned char>(c))); });
    return text;
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

QString decodeUtf8(QByteArrayView bytes) {
    QString text;
    while (!bytes.isEmpty()) {
        const qsizetype good = utf8Prefix(bytes);
        text += QString::fromUtf8(bytes.first(good));
        bytes = bytes.sliced(good);
        if (!bytes.isEmpty()) {
            text += QChar(windows1252(static_cast<unsigned char>(bytes[0])));
            bytes = bytes.sliced(1);
        }
    }
    return text;
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

QString decodeWithIconv(QByteArrayView bytes, const QByteArray &name) {
    const Iconv converter(name.constData());
    if (!converter.isOpen())
        return decodeWindows1252(bytes);
    QString text;
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
        text += QStringView(buffer.data(), static_cast<qsizetype>((sizeof buffer - room) / sizeof(char16_t)));
        if (error == E2BIG)
            continue;
        if (flushing)
            return text;
        if (error != 0 && left > 0) {
            text += QChar(windows1252(static_cast<unsigned char>(*input)));
            ++input;
            --left;
        }
        flushing = left == 0;
    }
}

/// HZ: 7-bit text in which "~{" and "~}" enclose GB 2312 pairs without their high bits.
QString decodeHz(QByteArrayView bytes) {
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

bool hasJapaneseEscapes(QByteArrayView bytes) {
    return bytes.contains(QByteArrayView("\x1B$B")) || bytes.contains(QByteArrayView("\x1B$@"));
}

QString decodeAs(QByteArrayView bytes, const Charset &charset) {
    switch (charset.family) {
    case Family::Utf16:
    case Family::Utf16Le:
    case Family::Utf16Be:
        return decodeUtf16(bytes, charset.family);
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

QString decodeGuessed(QByteArrayView bytes, QByteArrayView fallback) {
    if (bytes.startsWith("\xFE\xFF") || bytes.startsWith("\xFF\xFE"))
        return decodeUtf16(bytes, Family::Utf16);
    if (isUtf8(bytes))
        return hasJapaneseEscapes(bytes) ? decodeWithIconv(bytes, "ISO-2022-JP-3") : QString::fromUtf8(bytes);
    const Charset second = charsetNamed(fallback);
    // Bytes that are no UTF-8 as a whole are seldom UTF-8 in part.
    if (second.family == Family::Guess || second.family == Family::Utf8)
        return decodeWindows1252(bytes);
    return decodeAs(bytes, second);
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

} // namespace

bool isUtf8(QByteArrayView bytes) { return utf8Prefix(bytes) == bytes.size(); }

QString decodeText(QByteArrayView bytes, QByteArrayView charset, QByteArrayView fallback) {
    const Charset known = charsetNamed(charset);
    return wellFormed(known.family == Family::Guess ? decodeGuessed(bytes, fallback) : decodeAs(bytes, known));
}

} // namespace desk
