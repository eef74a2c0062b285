#include "platform/ado/jet/text.h"

namespace ado {

namespace {

/// One element of a pattern: how many code units it takes there.
struct Element {
    enum Kind { Character, Any, Set } kind;
    qsizetype length;
};

char32_t pointAt(QStringView text, qsizetype at, qsizetype *length) {
    const QChar high = text[at];
    if (high.isHighSurrogate() && at + 1 < text.size() && text[at + 1].isLowSurrogate()) {
        *length = 2;
        return QChar::surrogateToUcs4(high, text[at + 1]);
    }
    *length = 1;
    return high.unicode();
}

char32_t folded(char32_t point) { return QChar::toCaseFolded(point); }

Element elementAt(QStringView pattern, qsizetype at) {
    if (pattern[at] == u'_')
        return {Element::Any, 1};
    if (pattern[at] == u'[') {
        const qsizetype end = pattern.indexOf(u']', at + 1);
        if (end > at)
            return {Element::Set, end - at + 1};
    }
    qsizetype length = 1;
    pointAt(pattern, at, &length);
    return {Element::Character, length};
}

bool setHolds(QStringView set, char32_t point) {
    qsizetype at = 0;
    const bool negated = !set.isEmpty() && (set[0] == u'!' || set[0] == u'^');
    if (negated)
        at = 1;
    while (at < set.size()) {
        qsizetype length = 1;
        const char32_t first = folded(pointAt(set, at, &length));
        at += length;
        char32_t last = first;
        if (at + 1 < set.size() && set[at] == u'-') {
            last = folded(pointAt(set, at + 1, &length));
            at += 1 + length;
        }
        if (first <= point && point <= last)
            return !negated;
    }
    return negated;
}

} // namespace

TextOrder::TextOrder() : m_collator(QLocale(QLocale::English, QLocale::UnitedStates)) {
    m_collator.setCaseSensitivity(Qt::CaseInsensitive);
}

int TextOrder::compare(QStringView left, QStringView right) const {
    const int byLetters = left.compare(right, Qt::CaseInsensitive);
    if (byLetters == 0)
        return 0;
    // The alphabetical order holds more texts for equal than the comparison does (such as a double s and its ligature).
    const int byAlphabet = m_collator.compare(left, right);
    return byAlphabet != 0 ? byAlphabet : byLetters;
}

bool likeText(QStringView text, QStringView pattern) {
    qsizetype at = 0;
    qsizetype from = 0;
    // Where to go on after the last "%" when what follows it does not fit here: one character further.
    qsizetype starPattern = -1;
    qsizetype starText = 0;
    while (at < text.size()) {
        if (from < pattern.size() && pattern[from] == u'%') {
            starPattern = ++from;
            starText = at;
            continue;
        }
        if (from < pattern.size()) {
            qsizetype length = 1;
            const char32_t point = folded(pointAt(text, at, &length));
            const Element element = elementAt(pattern, from);
            bool fits = element.kind == Element::Any;
            if (element.kind == Element::Set)
                fits = setHolds(pattern.mid(from + 1, element.length - 2), point);
            if (element.kind == Element::Character) {
                qsizetype unused = 1;
                fits = folded(pointAt(pattern, from, &unused)) == point;
            }
            if (fits) {
                at += length;
                from += element.length;
                continue;
            }
        }
        if (starPattern < 0)
            return false;
        qsizetype length = 1;
        pointAt(text, starText, &length);
        starText += length;
        at = starText;
        from = starPattern;
    }
    while (from < pattern.size() && pattern[from] == u'%')
        ++from;
    return from == pattern.size();
}

} // namespace ado
