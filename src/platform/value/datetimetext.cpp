// Date-times as texts, by the regional settings.

#include "platform/value/convert.h"

#include <QRegularExpression>

namespace {
QString shortDateFormat(const QLocale &region) {
    QString format = region.dateFormat(QLocale::ShortFormat);
    if (!format.contains(u"yyyy"))
        format.replace(QStringLiteral("yy"), QStringLiteral("yyyy"));
    return format;
}

/// The word for the year, which Bulgaria writes behind every date; no other region has a word in its short date.
const QString yearWord = QStringLiteral("г");

bool twelveHours(const QLocale &region) {
    return region.timeFormat(QLocale::ShortFormat).contains(u'a', Qt::CaseInsensitive);
}

/// With the digits of every script as 0 to 9, and without the marks that only steer the direction of writing: a region
/// that writes from right to left has both in its dates.
QString plainDigits(const QString &text) {
    QString plain;
    for (const char32_t sign : text.toUcs4()) {
        if (QChar::isDigit(sign))
            plain += QChar(u'0' + QChar::digitValue(sign));
        else if (QChar::category(sign) != QChar::Other_Format)
            plain += QStringView(QChar::fromUcs4(sign));
    }
    return plain;
}

/// A text cut into numbers, words and single signs.
QStringList tokensOf(const QString &text) {
    static const QRegularExpression token(QStringLiteral("\\d+|\\p{L}+|[^\\s\\p{L}\\d]"));
    QStringList tokens;
    for (auto match = token.globalMatch(plainDigits(text)); match.hasNext();)
        tokens += match.next().captured();
    return tokens;
}

int monthFromName(const QString &word, const QLocale &region) {
    const auto matches = [&](const QLocale &locale, int month) {
        for (const QLocale::FormatType form : {QLocale::LongFormat, QLocale::ShortFormat}) {
            for (QString name : {locale.monthName(month, form), locale.standaloneMonthName(month, form)}) {
                if (name.endsWith(u'.'))
                    name.chop(1);
                if (name.compare(word, Qt::CaseInsensitive) == 0)
                    return true;
            }
        }
        return false;
    };
    for (int month = 1; month <= 12; ++month) {
        if (matches(region, month) || matches(QLocale(QLocale::English), month))
            return month;
    }
    return 0;
}

/// Half of day: 0 none, 1 morning, 2 afternoon.
int halfOfDay(const QString &word, const QLocale &region) {
    if (word.compare(u"AM", Qt::CaseInsensitive) == 0 || word.compare(region.amText(), Qt::CaseInsensitive) == 0)
        return 1;
    if (word.compare(u"PM", Qt::CaseInsensitive) == 0 || word.compare(region.pmText(), Qt::CaseInsensitive) == 0)
        return 2;
    return 0;
}

/// The parts of a text on the way to a moment.
struct Parts {
    QStringList dates; ///< numbers of the date in their order
    int month = 0;     ///< from a month's name
    std::vector<int> times;
    int half = 0;
};

/// Takes a time (numbers joined by colons, or one number and AM or PM) from position i on; false when it is bad.
bool takeTime(const QStringList &tokens, qsizetype &i, Parts &parts, const QLocale &region) {
    if (!parts.times.empty())
        return false;
    parts.times.push_back(tokens[i].toInt());
    while (i + 2 < tokens.size() && tokens[i + 1] == u":" && tokens[i + 2][0].isDigit() && parts.times.size() < 3) {
        i += 2;
        if (tokens[i].size() > 2)
            return false;
        parts.times.push_back(tokens[i].toInt());
    }
    if (i + 1 < tokens.size() && halfOfDay(tokens[i + 1], region)) {
        parts.half = halfOfDay(tokens[++i], region);
    }
    return parts.times.size() > 1 || parts.half != 0;
}

std::optional<Parts> partsOf(const QString &text, const QLocale &region) {
    const QStringList tokens = tokensOf(text);
    Parts parts;
    for (qsizetype i = 0; i < tokens.size(); ++i) {
        const QString &token = tokens[i];
        if (token[0].isDigit()) {
            const bool time = i + 1 < tokens.size() && (tokens[i + 1] == u":" || halfOfDay(tokens[i + 1], region));
            if (time) {
                if (!takeTime(tokens, i, parts, region))
                    return std::nullopt;
            } else {
                parts.dates += token;
            }
        } else if (token[0].isLetter()) {
            const int month = monthFromName(token, region);
            // "T" stands between an ISO date and its time, and the word for the year behind it.
            if (month == 0 && !(token == u"T" && !parts.dates.isEmpty()) && token != yearWord)
                return std::nullopt;
            if (month != 0) {
                if (parts.month != 0)
                    return std::nullopt;
                parts.month = month;
            }
        } else if (!QStringLiteral("/-.,").contains(token)) {
            return std::nullopt;
        }
    }
    if (parts.dates.size() > 3)
        return std::nullopt;
    return parts;
}

int fullYear(const QString &digits) {
    const int year = digits.toInt();
    if (digits.size() > 2)
        return year;
    return year < 30 ? 2000 + year : 1900 + year;
}

/// The order of day, month and year in the region, as the letters of its short date format.
QString dateOrder(const QLocale &region) {
    QString order;
    for (const QChar letter : region.dateFormat(QLocale::ShortFormat).toLower()) {
        if (QStringLiteral("dmy").contains(letter) && !order.contains(letter))
            order += letter;
    }
    return order.size() == 3 ? order : QStringLiteral("mdy");
}

std::optional<QDate> dateOfParts(const Parts &parts, const QLocale &region) {
    QString order = dateOrder(region);
    if (parts.month != 0)
        order.remove(u'm');
    if (!parts.dates.isEmpty() && parts.dates.first().size() > 2)
        order = parts.month != 0 ? QStringLiteral("yd") : QStringLiteral("ymd");
    // A year of four digits is one wherever it stands: another region's date has it at the other end.
    else if (parts.dates.size() == order.size() && parts.dates.last().size() > 2)
        order = order.remove(u'y') + u'y';
    if (parts.dates.size() == order.size() - 1)
        order.remove(u'y');
    if (parts.dates.size() != order.size())
        return std::nullopt;
    int year = Clock::now().year();
    int month = parts.month;
    int day = 0;
    for (qsizetype i = 0; i < order.size(); ++i) {
        const QString &digits = parts.dates[i];
        if (digits.size() > 4)
            return std::nullopt;
        if (order[i] == u'y')
            year = fullYear(digits);
        else if (order[i] == u'm')
            month = digits.toInt();
        else
            day = digits.toInt();
    }
    const QDate date(year, month, day);
    if (date.isValid() && year >= 100)
        return date;
    // Day and month in the other order, when only that gives a date.
    const QDate swapped(year, day, month);
    if (parts.month == 0 && swapped.isValid() && year >= 100)
        return swapped;
    return std::nullopt;
}

std::optional<double> timeOfParts(const Parts &parts) {
    int hour = parts.times[0];
    const int minute = parts.times.size() > 1 ? parts.times[1] : 0;
    const int second = parts.times.size() > 2 ? parts.times[2] : 0;
    if (parts.half != 0) {
        if (hour < 1 || hour > 12)
            return std::nullopt;
        hour = hour % 12 + (parts.half == 2 ? 12 : 0);
    }
    if (hour > 23 || minute > 59 || second > 59)
        return std::nullopt;
    return DateTime::fromTime(hour, minute, second).days;
}
} // namespace

QString formatDateTime(DateTime moment, const QLocale &region) {
    const auto [hour, minute, second] = moment.timeOfDay();
    const QTime time(hour, minute, second);
    const bool hasTime = time != QTime(0, 0);
    const bool hasDate = moment.dateOnly().days != 0;
    QStringList parts;
    if (hasDate)
        parts += region.toString(QDate(moment.year(), moment.month(), moment.day()), shortDateFormat(region));
    if (hasTime || !hasDate) {
        // The halves of the day are written in English everywhere, so that every region reads them.
        parts += twelveHours(region) ? QLocale::c().toString(time, QStringLiteral("h:mm:ss AP"))
                                     : QLocale::c().toString(time, QStringLiteral("HH:mm:ss"));
    }
    return parts.join(u' ');
}

std::optional<DateTime> parseDateTime(const QString &text, const QLocale &region) {
    if (text.size() > 64)
        return std::nullopt;
    const std::optional<Parts> parts = partsOf(text, region);
    if (!parts)
        return std::nullopt;
    DateTime moment;
    const bool hasDate = !parts->dates.isEmpty() || parts->month != 0;
    if (!hasDate && parts->times.empty())
        return std::nullopt;
    if (hasDate) {
        const std::optional<QDate> date = dateOfParts(*parts, region);
        if (!date)
            return std::nullopt;
        moment = DateTime::fromDate(date->year(), date->month(), date->day());
    }
    if (!parts->times.empty()) {
        const std::optional<double> time = timeOfParts(*parts);
        if (!time)
            return std::nullopt;
        moment.days += moment.days < 0 ? -*time : *time;
    }
    return moment;
}

QString monthName(int month) { return Region::locale().standaloneMonthName(month, QLocale::LongFormat); }
QString weekdayName(int weekday) { return Region::locale().standaloneDayName(weekday, QLocale::LongFormat); }
