#include "desk/mail/charsetcodec.h"
#include "desk/mail/iconv.h"

namespace desk {
namespace {

using Family = Charset::Family;

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

} // namespace

Charset charsetNamed(QByteArrayView name) {
    QByteArray label;
    QByteArray safe;
    for (const char c : name.first(std::min<qsizetype>(name.size(), 60))) {
        const bool word = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
        if (word)
            label += static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
        if (word || c == '-' || c == '_' || c == '.' || c == ':')
            safe += static_cast<char>(c >= 'a' && c <= 'z' ? c - 32 : c);
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

} // namespace desk
