/// The conversions between values, with the failure numbers that the system relies on: 5 invalid argument,
/// 6 overflow, 13 type mismatch, 91 Nothing, 94 Null.
///
/// Numbers round to the nearest, a half going to the even neighbour. Texts are read and written by the regional
/// settings (`Region`); English 12-hour times are always understood.
#pragma once

#include "platform/value/value.h"

#include <QLocale>

/// The regional settings in force: those of the machine's environment, unless a test sets others.
class Region {
  public:
    static const QLocale &locale();
    /// REQUIRES: called by tests only; an empty optional goes back to the environment's.
    static void set(std::optional<QLocale> locale);
    /// The region of a name such as "de_DE" or "en-GB"; nothing where there is no such region. A language alone says
    /// nothing of the order of day and month, so it is none.
    static std::optional<QLocale> named(const QString &name);
};

double roundHalfEven(double number);
/// Rounded to so many decimals (0 to 15).
double roundHalfEven(double number, int decimals);

/// Empty is 0, true -1; text is read by the region, with hexadecimal as &H1F. Fails with 6, 13, 94. An array has
/// no form in any other kind (13).
qint16 toInt16(const Value &value);
qint32 toInt32(const Value &value);
double toDouble(const Value &value);
Currency toCurrency(const Value &value);
/// "True" and "False" in any case, or any number, non-zero being true.
bool toBool(const Value &value);
/// Numbers are days. Text as `parseDateTime` reads it.
DateTime toDateTime(const Value &value);
/// Empty is the empty text; numbers with up to 15 digits and the region's decimal sign; dates as `formatDateTime`.
QString toText(const Value &value);

/// Whether `toDouble` takes it; true for Empty and booleans, false for Null and dates.
bool isNumeric(const Value &value);
/// Whether it is a date-time or a text that `parseDateTime` reads.
bool isDate(const Value &value);

/// A text as a number by the region's signs; nothing when it is none.
std::optional<double> parseNumber(const QString &text);

/// The date-time in the region's default form: the short date with a four-digit year, a blank and the time with
/// seconds; the date alone at midnight, the time alone on the zero day.
QString formatDateTime(DateTime moment, const QLocale &region = Region::locale());
/// Reads what `formatDateTime` writes in the region, ISO dates, month names of the region and in English, and 12- and
/// 24-hour times, each part alone or both; nothing for anything else, out-of-range parts included. Of what another
/// region wrote in numbers the day and the month are told apart where only one order gives a date; else the region's
/// order counts.
std::optional<DateTime> parseDateTime(const QString &text, const QLocale &region = Region::locale());

/// The full name of a month (1 to 12) or of a weekday (Monday 1 to Sunday 7) in the system's language.
QString monthName(int month);
QString weekdayName(int weekday);
