#include "platform/value/convert.h"

#include <QRegularExpression>

namespace {
std::optional<QLocale> fixedLocale;

/// A machine without regional settings ("C") counts as English of the United States.
const QLocale &environmentLocale() {
    static const QLocale locale = [] {
        const QLocale system = QLocale::system();
        return system.language() == QLocale::C ? QLocale(QLocale::English, QLocale::UnitedStates)
                                               : QLocale(system.name());
    }();
    return locale;
}

[[noreturn]] void mismatch() { throw Failure(failures::typeMismatch); }

std::optional<double> parseRadix(const QString &text) {
    if (text.size() < 3 || text[0] != u'&')
        return std::nullopt;
    const QChar kind = text[1].toUpper();
    const int base = kind == u'H' ? 16 : kind == u'O' ? 8 : 0;
    bool ok = false;
    const quint32 number = base ? text.mid(2).toUInt(&ok, base) : 0;
    if (!ok)
        return std::nullopt;
    // Up to four hexadecimal digits are a 16-bit number, sign included.
    if (number <= 0xFFFF)
        return static_cast<qint16>(number);
    return static_cast<qint32>(number);
}

template <class Integer>
Integer toInteger(const Value &value) {
    const double number = roundHalfEven(toDouble(value));
    if (number < std::numeric_limits<Integer>::min() || number > std::numeric_limits<Integer>::max())
        throw Failure(failures::overflow);
    return static_cast<Integer>(number);
}

struct AsDouble {
    double operator()(std::monostate) const { return 0; }
    double operator()(Value::Null) const { throw Failure(failures::invalidNull); }
    double operator()(Value::Missing) const { mismatch(); }
    double operator()(bool value) const { return value ? -1 : 0; }
    double operator()(qint16 value) const { return value; }
    double operator()(qint32 value) const { return value; }
    double operator()(double value) const { return value; }
    double operator()(Currency value) const { return value.toDouble(); }
    double operator()(DateTime value) const { return value.days; }
    double operator()(const QString &value) const {
        if (const std::optional<double> number = parseNumber(value)) {
            if (!std::isfinite(*number))
                throw Failure(failures::overflow);
            return *number;
        }
        mismatch();
    }
    double operator()(const automation::ObjectPtr &value) const {
        throw Failure(value ? failures::memberMissing : failures::objectNotSet);
    }
    double operator()(const ValueList &) const { mismatch(); }
};

struct AsText {
    QString operator()(std::monostate) const { return {}; }
    QString operator()(Value::Null) const { throw Failure(failures::invalidNull); }
    QString operator()(Value::Missing) const { mismatch(); }
    QString operator()(bool value) const { return value ? QStringLiteral("True") : QStringLiteral("False"); }
    QString operator()(qint16 value) const { return QString::number(value); }
    QString operator()(qint32 value) const { return QString::number(value); }
    QString operator()(double value) const { return decimal(QString::number(value, 'g', 15).toUpper()); }
    QString operator()(Currency value) const { return decimal(amount(value.scaled())); }
    QString operator()(DateTime value) const { return formatDateTime(value); }
    QString operator()(const QString &value) const { return value; }
    QString operator()(const automation::ObjectPtr &value) const {
        throw Failure(value ? failures::memberMissing : failures::objectNotSet);
    }
    QString operator()(const ValueList &) const { mismatch(); }

  private:
    /// Exact, with no zeros behind the last decimal.
    static QString amount(qint64 tenThousandths) {
        const quint64 size = tenThousandths < 0 ? quint64{0} - static_cast<quint64>(tenThousandths)
                                                : static_cast<quint64>(tenThousandths);
        QString text = QString::number(size / 10000);
        if (const quint64 rest = size % 10000; rest != 0) {
            text += u'.' + QString::number(rest).rightJustified(4, u'0');
            while (text.endsWith(u'0'))
                text.chop(1);
        }
        return tenThousandths < 0 ? u'-' + text : text;
    }
    static QString decimal(QString digits) { return digits.replace(u'.', Region::locale().decimalPoint()); }
};
} // namespace

const QLocale &Region::locale() { return fixedLocale ? *fixedLocale : environmentLocale(); }
void Region::set(std::optional<QLocale> locale) { fixedLocale = std::move(locale); }

std::optional<QLocale> Region::named(const QString &name) {
    const QStringList parts = QString(name).replace(u'-', u'_').split(u'_');
    const QLocale found(parts.join(u'_'));
    // Where it knows no such region, the library gives the one that it likes best.
    const bool isIt = parts.size() > 1 &&
                      parts.first().compare(QLocale::languageToCode(found.language()), Qt::CaseInsensitive) == 0 &&
                      parts.last().compare(QLocale::territoryToCode(found.territory()), Qt::CaseInsensitive) == 0;
    return isIt ? std::optional(found) : std::nullopt;
}

double roundHalfEven(double number) { return std::nearbyint(number); }

double roundHalfEven(double number, int decimals) {
    const double scale = std::pow(10.0, decimals);
    const double scaled = number * scale;
    // A half that only binary fractions blur, such as 0.125 days in hours, must count as a half.
    const double fifteen = QString::number(scaled, 'g', 15).toDouble();
    return std::nearbyint(fifteen) / scale;
}

std::optional<double> parseNumber(const QString &text) {
    const QString trimmed = text.trimmed();
    if (const std::optional<double> number = parseRadix(trimmed))
        return number;
    const QChar decimalPoint = Region::locale().decimalPoint()[0];
    const QChar group = Region::locale().groupSeparator()[0];
    // In its plain form: no groups, a point, a small e.
    QString plain;
    bool whole = true;
    for (const QChar sign : trimmed) {
        const bool afterDigit = !plain.isEmpty() && plain.back().isDigit();
        if (sign == decimalPoint) {
            plain += u'.';
            whole = false;
        } else if (QStringLiteral("eEdD").contains(sign)) {
            plain += u'e';
            whole = false;
        } else if (whole && afterDigit && (sign == group || (group.isSpace() && sign.isSpace()))) {
            continue;
        } else {
            plain += sign;
        }
    }
    static const QRegularExpression shape(QStringLiteral("^[+-]?([0-9]+\\.?[0-9]*|\\.[0-9]+)(e[+-]?[0-9]+)?$"));
    if (!shape.match(plain).hasMatch())
        return std::nullopt;
    bool ok = false;
    const double number = QLocale::c().toDouble(plain, &ok);
    if (!ok)
        return std::numeric_limits<double>::infinity();
    return number;
}

qint16 toInt16(const Value &value) { return toInteger<qint16>(value); }
qint32 toInt32(const Value &value) { return toInteger<qint32>(value); }
double toDouble(const Value &value) { return std::visit(AsDouble{}, value.held()); }
QString toText(const Value &value) { return std::visit(AsText{}, value.held()); }

Currency toCurrency(const Value &value) {
    if (value.holds<Currency>())
        return std::get<Currency>(value.held());
    return Currency::fromDouble(toDouble(value));
}

bool toBool(const Value &value) {
    if (value.isText()) {
        const QString text = std::get<QString>(value.held()).trimmed();
        if (text.compare(u"True", Qt::CaseInsensitive) == 0)
            return true;
        if (text.compare(u"False", Qt::CaseInsensitive) == 0)
            return false;
    }
    return toDouble(value) != 0;
}

DateTime toDateTime(const Value &value) {
    if (value.holds<DateTime>())
        return std::get<DateTime>(value.held());
    if (value.isText()) {
        if (const std::optional<DateTime> moment = parseDateTime(std::get<QString>(value.held())))
            return *moment;
    }
    const DateTime moment{toDouble(value)};
    if (!moment.isValid())
        throw Failure(failures::overflow);
    return moment;
}

bool isNumeric(const Value &value) {
    if (value.isText()) {
        const std::optional<double> number = parseNumber(std::get<QString>(value.held()));
        return number && std::isfinite(*number);
    }
    return !(value.isNull() || value.isMissing() || value.isObject() || value.isArray() || value.holds<DateTime>());
}

bool isDate(const Value &value) {
    if (value.isText())
        return parseDateTime(std::get<QString>(value.held())).has_value();
    return value.holds<DateTime>();
}
