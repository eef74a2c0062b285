#include "desk/content/filter.h"

#include "platform/value/convert.h"

#include <QRegularExpression>

#include <cmath>

namespace desk {
namespace {

using Operator = FilterCondition::Operator;

class FilterReader {
  public:
    explicit FilterReader(const QString &text) : m_text(text) {}

    Filter read() {
        Filter filter;
        do {
            filter.append(condition());
            skipBlanks();
        } while (word("and"));
        if (!atEnd())
            refuse();
        return filter;
    }

  private:
    [[noreturn]] void refuse() const { refuseFilter(m_text); }

    [[nodiscard]] bool atEnd() const { return m_at >= m_text.size(); }
    [[nodiscard]] QChar here() const { return atEnd() ? QChar() : m_text.at(m_at); }

    void skipBlanks() {
        while (!atEnd() && here().isSpace())
            ++m_at;
    }

    /// Takes a word that stands here as a whole.
    bool word(QLatin1StringView expected) {
        if (!startsWord(m_at, expected))
            return false;
        m_at += expected.size();
        return true;
    }
    bool word(const char *expected) { return word(QLatin1StringView(expected)); }

    [[nodiscard]] bool startsWord(qsizetype at, QLatin1StringView expected) const {
        const qsizetype behind = at + expected.size();
        return QStringView(m_text).mid(at).startsWith(expected, Qt::CaseInsensitive) &&
               (behind >= m_text.size() || !m_text.at(behind).isLetterOrNumber());
    }

    FilterCondition condition() {
        FilterCondition result;
        result.field = field();
        result.comparison = comparison();
        result.literal = literal();
        return result;
    }

    QString field() {
        skipBlanks();
        if (here() != u'[')
            refuse();
        const qsizetype end = m_text.indexOf(u']', m_at);
        if (end < 0)
            refuse();
        QString name = m_text.mid(m_at + 1, end - m_at - 1);
        if (name.trimmed().isEmpty())
            refuse();
        m_at = end + 1;
        return name;
    }

    Operator comparison() {
        skipBlanks();
        static const std::array<std::pair<QLatin1StringView, Operator>, 6> operators{{
            {QLatin1StringView("<>"), Operator::NotEqual},
            {QLatin1StringView("<="), Operator::LessOrEqual},
            {QLatin1StringView(">="), Operator::GreaterOrEqual},
            {QLatin1StringView("="), Operator::Equal},
            {QLatin1StringView("<"), Operator::Less},
            {QLatin1StringView(">"), Operator::Greater},
        }};
        for (const auto &[sign, comparison] : operators) {
            if (QStringView(m_text).mid(m_at).startsWith(sign)) {
                m_at += sign.size();
                return comparison;
            }
        }
        refuse();
    }

    Value literal() {
        skipBlanks();
        if (here() == u'\'' || here() == u'"')
            return quoted();
        if (word("true"))
            return true;
        if (word("false"))
            return false;
        const qsizetype start = m_at;
        while (!atEnd() && !here().isSpace())
            ++m_at;
        bool isNumber = false;
        const double number = QLocale::c().toDouble(m_text.mid(start, m_at - start), &isNumber);
        if (!isNumber)
            refuse();
        return number;
    }

    QString quoted() {
        const QChar quote = here();
        QString result;
        for (++m_at; !atEnd(); ++m_at) {
            if (here() != quote) {
                result += here();
            } else if (m_at + 1 < m_text.size() && m_text.at(m_at + 1) == quote) {
                result += quote;
                ++m_at;
            } else if (quote == u'"' || endsLiteral(m_at + 1)) {
                ++m_at;
                return result;
            } else {
                result += quote;
            }
        }
        refuse();
    }

    /// Whether nothing but the end or another condition follows.
    [[nodiscard]] bool endsLiteral(qsizetype at) const {
        static const QRegularExpression rest(QStringLiteral("\\G\\s*($|(and|or)\\s*\\[)"),
                                             QRegularExpression::CaseInsensitiveOption);
        return rest.match(m_text, at).hasMatch();
    }

    const QString &m_text;
    qsizetype m_at = 0;
};

template <class T>
int threeWay(const T &left, const T &right) {
    return left < right ? -1 : (right < left ? 1 : 0);
}

/// The order of a value against a literal; none where they can't be compared.
std::optional<int> compare(const Value &value, const Value &literal) {
    if (value.isEmpty() || value.isNull() || value.isObject())
        return QString().compare(toText(literal), Qt::CaseInsensitive);
    if (value.isText() && literal.holds<double>()) {
        // As the filter itself writes numbers, whatever the region: one filter finds the same on every machine.
        static const QLocale plain = [] {
            QLocale locale = QLocale::c();
            locale.setNumberOptions(QLocale::RejectGroupSeparator);
            return locale;
        }();
        bool isNumber = false;
        const double number = plain.toDouble(toText(value), &isNumber);
        return isNumber && std::isfinite(number) ? std::optional<int>(threeWay(number, toDouble(literal)))
                                                 : std::nullopt;
    }
    if (value.isText()) {
        if (!literal.isText() && isNumeric(value))
            return threeWay(toDouble(value), toDouble(literal));
        return toText(value).compare(toText(literal), Qt::CaseInsensitive);
    }
    if (value.holds<DateTime>()) {
        if (!isDate(literal))
            return std::nullopt;
        return threeWay(toDateTime(value), toDateTime(literal));
    }
    if (value.holds<bool>()) {
        const auto flag = AttemptOr([&] { return std::optional<bool>(toBool(literal)); }, std::optional<bool>());
        return flag ? std::optional<int>(threeWay(toBool(value), *flag)) : std::nullopt;
    }
    if (!isNumeric(literal))
        return std::nullopt;
    return threeWay(toDouble(value), toDouble(literal));
}

} // namespace

bool FilterCondition::holds(const Value &value) const {
    const std::optional<int> order = compare(value, literal);
    if (!order)
        return comparison == Operator::NotEqual;
    switch (comparison) {
    case Operator::Equal:
        return *order == 0;
    case Operator::NotEqual:
        return *order != 0;
    case Operator::Less:
        return *order < 0;
    case Operator::LessOrEqual:
        return *order <= 0;
    case Operator::Greater:
        return *order > 0;
    case Operator::GreaterOrEqual:
        return *order >= 0;
    }
    return false;
}

std::optional<double> FilterCondition::least() const {
    const bool isBound = comparison == Operator::Greater || comparison == Operator::GreaterOrEqual;
    // A little less, since whoever looks by it may turn texts into numbers in a slightly other way.
    constexpr double slack = 1e-12;
    if (!isBound || !literal.holds<double>())
        return std::nullopt;
    const double number = toDouble(literal);
    return number - std::abs(number) * slack;
}

void refuseFilter(const QString &text) {
    throw Failure(failures::automation(0x80020009), u"The condition is not valid: %1"_qs.arg(text));
}

Filter parseFilter(const QString &text) { return FilterReader(text).read(); }

} // namespace desk
