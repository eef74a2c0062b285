#include "desk/mail/charsetguess.h"

#include "desk/mail/charset.h"
#include "desk/mail/plausibility.h"

#include <uchardet.h>

namespace desk {
namespace {

using Family = Charset::Family;

/// What of a text is looked at; statistics gain nothing beyond it.
constexpr qsizetype longestSample = qsizetype{32} * 1024;
constexpr int mostLooks = 500;
/// From so many 8-bit bytes on the statistics of a text are better than those of the texts around it.
constexpr qsizetype enoughForOneself = 64;
/// Below, the statistics know a language from other Latin ones no better than chance.
constexpr qsizetype enoughForLatin = 12;
/// Below, bytes of two characters could be signs of one.
constexpr qsizetype enoughForPairs = 6;
/// As good as equal.
constexpr double aboutEqual = 0.1;

struct LanguageSets {
    const char *languages; ///< divided by blanks
    std::initializer_list<const char *> sets;
};

/// English says nothing: it needs no set, and many programs put it into mail in any language.
const LanguageSets languageSets[] = {
    {"ru bg be mk sr", {"windows-1251", "KOI8-R", "ISO-8859-5", "IBM866"}},
    {"uk", {"windows-1251", "KOI8-U", "ISO-8859-5", "IBM866"}},
    {"ja", {"Shift_JIS", "EUC-JP"}},
    {"ko", {"EUC-KR"}},
    {"zh-tw zh-hk zh-mo zh-hant", {"Big5", "GB18030"}},
    {"zh", {"GB18030", "Big5"}},
    {"el", {"ISO-8859-7", "windows-1253"}},
    {"tr az", {"windows-1254"}},
    {"he iw yi", {"windows-1255", "ISO-8859-8"}},
    {"ar fa ur", {"windows-1256", "ISO-8859-6"}},
    {"th", {"TIS-620"}},
    {"vi", {"windows-1258"}},
    {"pl cs sk hu sl hr bs ro sq", {"ISO-8859-2", "windows-1250"}},
    {"lt lv et", {"windows-1257", "ISO-8859-13"}},
    {"de fr es it pt nl sv da no nb nn fi is ca gl eu ga", {"windows-1252"}},
};

struct ScriptLanguage {
    QChar::Script script;
    const char *language;
};

/// A text with kana is Japanese however many ideographs it has, so the order counts.
constexpr ScriptLanguage scriptLanguages[] = {
    {QChar::Script_Hiragana, "ja"}, {QChar::Script_Katakana, "ja"}, {QChar::Script_Hangul, "ko"},
    {QChar::Script_Han, "zh"},      {QChar::Script_Cyrillic, "ru"}, {QChar::Script_Greek, "el"},
    {QChar::Script_Hebrew, "he"},   {QChar::Script_Arabic, "ar"},   {QChar::Script_Thai, "th"},
};

struct LetterLanguage {
    const char16_t *letters;
    const char *language;
};

/// Letters that windows-1252 does not have, by one of the languages that are written in the same set.
constexpr LetterLanguage letterLanguages[] = {
    {u"ąćęłńśźżčďěňřťůőűľĺŕđĄĆĘŁŃŚŹŻČĎĚŇŘŤŮŐŰĽĹŔĐ", "cs"},
    {u"ğışĞİŞ", "tr"},
    {u"āēģīķļņūėįųĀĒĢĪĶĻŅŪĖĮŲ", "lt"},
};

bool isLatin(const Charset &charset) {
    static const QList<QByteArray> names = {
        "ISO-8859-2",  "ISO-8859-3",   "ISO-8859-4",   "ISO-8859-10",  "ISO-8859-13",  "ISO-8859-14", "ISO-8859-15",
        "ISO-8859-16", "WINDOWS-1250", "WINDOWS-1254", "WINDOWS-1257", "WINDOWS-1258", "MACINTOSH"};
    return charset.family == Family::Windows1252 || names.contains(charset.iconvName);
}

/// Whether a name tells anything about bytes beyond ASCII that are no UTF-8.
bool isEightBit(const Charset &charset) {
    static const QList<QByteArray> others = {"UTF-7", "ISO-2022-JP-3", "ISO-2022-KR", "ISO-2022-CN", "UTF-32"};
    return charset.family == Family::Windows1252 ||
           (charset.family == Family::Iconv && !others.contains(charset.iconvName));
}

qsizetype eightBitBytes(QByteArrayView bytes) {
    return std::count_if(bytes.begin(), bytes.end(), [](char c) { return static_cast<signed char>(c) < 0; });
}

/// The part from the first 8-bit byte on, at which a character begins in every set.
QByteArrayView sampleOf(QByteArrayView bytes) {
    const auto *first =
        std::find_if(bytes.begin(), bytes.end(), [](char c) { return static_cast<signed char>(c) < 0; });
    const QByteArrayView rest = bytes.sliced(first - bytes.begin());
    return rest.first(std::min(rest.size(), longestSample));
}

Charset look(QByteArrayView bytes) {
    struct Delete {
        void operator()(uchardet *detector) const { uchardet_delete(detector); }
    };
    const std::unique_ptr<uchardet, Delete> detector(uchardet_new());
    uchardet_handle_data(detector.get(), bytes.data(), static_cast<std::size_t>(bytes.size()));
    uchardet_data_end(detector.get());
    const Charset found = charsetNamed(uchardet_get_charset(detector.get()));
    return isEightBit(found) ? found : Charset();
}

/// The sets worth trying, the likeliest first.
class Candidates {
  public:
    Candidates(QByteArrayView bytes, const CharsetHints &hints) {
        const qsizetype own = eightBitBytes(bytes);
        Charset first = hints.detected();
        Charset second = look(bytes);
        if (own >= enoughForOneself)
            std::swap(first, second);
        for (const Charset &charset : hints.charsets())
            add(charset);
        const QList<Charset> ofLanguage = hints.charsetsOfLanguage();
        for (const Charset &charset : {first, second}) {
            if (ofLanguage.contains(charset))
                add(charset);
        }
        for (const Charset &charset : ofLanguage)
            add(charset);
        const bool isEnough = own + eightBitBytes(hints.sample()) >= enoughForLatin;
        for (const Charset &charset : {first, second}) {
            if (isEnough || !isLatin(charset))
                add(charset);
        }
        add({Family::Windows1252, {}});
        add(first);
        add(second);
        // Short texts in these escape the statistics. Without what programs have added to them since they are strict
        // enough to be tried on any text but a few characters.
        for (const char *name : {"EUC-KR", "GB2312", "BIG5"}) {
            if (own >= enoughForPairs)
                add({Family::Iconv, name});
        }
    }

    [[nodiscard]] const QList<Charset> &list() const { return m_list; }

  private:
    void add(const Charset &charset) {
        if (charset.family != Family::Guess && !m_list.contains(charset))
            m_list.append(charset);
    }

    QList<Charset> m_list;
};

double scoreOf(QByteArrayView bytes, const Charset &charset) {
    constexpr double weightOfBad = 4;
    const Decoded decoded = decodeAs(bytes, charset);
    return plausibility(decoded.text) -
           weightOfBad * static_cast<double>(decoded.bad) / static_cast<double>(std::max<qsizetype>(1, bytes.size()));
}

} // namespace

void CharsetHints::addCharset(QByteArrayView name) {
    const Charset charset = charsetNamed(name);
    if (isEightBit(charset) && !m_charsets.contains(charset))
        m_charsets.append(charset);
}

void CharsetHints::addLanguage(QByteArrayView tag) {
    constexpr qsizetype longestTag = 35;
    QByteArray name = tag.first(std::min(tag.size(), longestTag)).trimmed().toByteArray().toLower();
    name =
        name.first(std::find_if(name.cbegin(), name.cend(), [](char c) { return c == ',' || c == ';' || c == ' '; }) -
                   name.cbegin());
    if (m_language.isEmpty() && !name.startsWith("en"))
        m_language = name.replace('_', '-');
}

void CharsetHints::addText(QStringView text) {
    constexpr qsizetype longestText = 4096;
    // In twenty: enough for a language, and more than a name or a sign in another.
    constexpr qsizetype leastShare = 4;
    qsizetype letters = 0;
    QHash<int, qsizetype> counts;
    const char *byLetter = "";
    for (const QChar c : text.first(std::min(text.size(), longestText))) {
        if (!c.isLetter())
            continue;
        ++letters;
        ++counts[c.script()];
        for (const LetterLanguage &entry : letterLanguages)
            byLetter = c > QChar(0x7F) && QStringView(entry.letters).contains(c) ? entry.language : byLetter;
    }
    for (const ScriptLanguage &entry : scriptLanguages) {
        if (counts.value(entry.script) * 20 > letters * leastShare && m_language.isEmpty())
            m_language = entry.language;
    }
    if (m_language.isEmpty())
        m_language = byLetter;
}

void CharsetHints::addSample(QByteArrayView bytes) {
    if (m_sample.size() >= longestSample || isAscii(bytes) || isUtf8(bytes))
        return;
    m_sample += sampleOf(bytes).toByteArray() + '\n';
    m_sample.truncate(longestSample);
    m_detected.reset();
}

QList<Charset> CharsetHints::charsetsOfLanguage() const {
    for (const LanguageSets &entry : languageSets) {
        for (const QByteArray &language : QByteArray(entry.languages).split(' ')) {
            if (m_language != language && !m_language.startsWith(language + '-'))
                continue;
            QList<Charset> sets;
            for (const char *name : entry.sets)
                sets.append(charsetNamed(name));
            return sets;
        }
    }
    return {};
}

Charset CharsetHints::detected() const {
    if (!m_detected)
        m_detected = m_sample.isEmpty() ? Charset() : look(m_sample);
    return *m_detected;
}

bool CharsetHints::mayLook() const {
    m_looks = std::min(m_looks + 1, mostLooks + 1);
    return m_looks <= mostLooks;
}

HeaderText::HeaderText(QByteArrayView value, const CharsetHints &hints) {
    if (!isUtf8(value) || escapedCharset(value).family != Family::Guess)
        m_charset = guessCharset(value, hints);
}

QString HeaderText::decode(QByteArrayView piece) const {
    const bool isDefault = m_charset.family == Family::Guess || m_charset.family == Family::Windows1252;
    const bool isUnicode = isDefault && isUtf8(piece);
    return wellFormed(decodeAs(piece, isUnicode ? Charset{Family::Utf8, {}} : m_charset).text);
}

Charset guessCharset(QByteArrayView bytes, const CharsetHints &hints) {
    if (bytes.startsWith("\xFE\xFF") || bytes.startsWith("\xFF\xFE"))
        return {Family::Utf16, {}};
    if (isUtf8(bytes)) {
        const Charset escaped = escapedCharset(bytes);
        return escaped.family == Family::Guess ? Charset{Family::Utf8, {}} : escaped;
    }
    if (!hints.mayLook()) {
        const Charset detected = hints.detected();
        return detected.family == Family::Guess ? Charset{Family::Windows1252, {}} : detected;
    }
    const QByteArrayView sample = sampleOf(bytes);
    const Candidates candidates(sample, hints);
    QList<double> scores;
    for (const Charset &charset : candidates.list())
        scores.append(scoreOf(sample, charset));
    const double best = *std::max_element(scores.cbegin(), scores.cend());
    const auto chosen =
        std::find_if(scores.cbegin(), scores.cend(), [&](double score) { return score >= best - aboutEqual; });
    return candidates.list().at(chosen - scores.cbegin());
}

} // namespace desk
