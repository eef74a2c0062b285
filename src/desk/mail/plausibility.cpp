#include "desk/mail/plausibility.h"

#include <QChar>

namespace desk {
namespace {

bool isCjk(QChar::Script script) {
    return script == QChar::Script_Han || script == QChar::Script_Hiragana || script == QChar::Script_Katakana;
}

/// Letters that stand in one word together.
bool belongTogether(QChar::Script left, QChar::Script right) {
    return left == right || left == QChar::Script_Inherited || right == QChar::Script_Inherited ||
           (isCjk(left) && isCjk(right));
}

bool isHalfWidth(QChar c) { return c >= QChar(0xFF61) && c <= QChar(0xFF9F); }

/// Walks over a text and weighs each character beyond ASCII by those beside it.
class Weighing {
  public:
    explicit Weighing(QStringView text) : m_text(text) {}

    double result() {
        double sum = 0;
        qsizetype count = 0;
        for (m_at = 0; m_at < m_text.size(); ++m_at) {
            const QChar c = m_text[m_at];
            m_accented = c.isLetter() && c > QChar(0x7F) && c.script() == QChar::Script_Latin ? m_accented + 1 : 0;
            if (c <= QChar(0x7F) || c.isLowSurrogate())
                continue;
            sum += weight(c);
            ++count;
        }
        return count == 0 ? 1 : sum / static_cast<double>(count);
    }

  private:
    [[nodiscard]] QChar before() const { return m_at > 0 ? m_text[m_at - 1] : QChar(u' '); }
    [[nodiscard]] QChar behind() const { return m_at + 1 < m_text.size() ? m_text[m_at + 1] : QChar(u' '); }

    [[nodiscard]] double weight(QChar c) const {
        switch (c.category()) {
        case QChar::Other_Control:
        case QChar::Other_NotAssigned:
        case QChar::Other_PrivateUse:
            return -4;
        case QChar::Other_Surrogate:
            return 0;
        case QChar::Punctuation_Dash:
        case QChar::Punctuation_InitialQuote:
        case QChar::Punctuation_FinalQuote:
        case QChar::Punctuation_Open:
        case QChar::Punctuation_Close:
        case QChar::Punctuation_Other:
        case QChar::Separator_Space:
        case QChar::Other_Format:
            return 0.3;
        default:
            return c.isLetter() || c.isMark() ? ofLetter(c) : ofSign();
        }
    }

    [[nodiscard]] double ofLetter(QChar c) const {
        constexpr int mostAccented = 3;
        double value = isHalfWidth(c) ? 0.5 : 1;
        int mates = 0;
        for (const QChar other : {before(), behind()}) {
            if (!other.isLetter() && !other.isMark())
                continue;
            if (belongTogether(c.script(), other.script()))
                ++mates;
            else
                value -= 2;
        }
        const bool isLone = mates == 0;
        if (c.script() == QChar::Script_Han && isLone)
            value -= 1;
        if (c.script() == QChar::Script_Hangul && isLone)
            value -= 0.5;
        if (c.isUpper() && before().isLower())
            value -= 2;
        if (c.isMark() && !before().isLetter() && !before().isMark())
            value -= 3;
        if (m_accented > mostAccented)
            value -= 1;
        return value;
    }

    /// Signs stand behind a number or a word, or by themselves; seldom inside a word or in front of a small letter.
    [[nodiscard]] double ofSign() const {
        return behind().isLower() || (before().isLetter() && behind().isLetter()) ? -1 : 0.3;
    }

    QStringView m_text;
    qsizetype m_at = 0;
    /// Accented letters in a row up to here.
    int m_accented = 0;
};

} // namespace

double plausibility(QStringView text) { return Weighing(text).result(); }

} // namespace desk
