/// Date-time values: floating-point days.
#pragma once

#include <QDateTime>

#include <compare>

/// A moment as days since 30 December 1899 00:00, local time: the whole part is the calendar day, the fraction the
/// time of day. For days before that, the fraction still counts forward from midnight, so -1.25 is 29 December 06:00.
/// The zero value is "no date". Valid from the year 100 to 9999.
struct DateTime {
    double days = 0;

    static DateTime fromQt(const QDateTime &moment);
    /// A calendar day at midnight. Fails with 5 for a day that does not exist.
    static DateTime fromDate(int year, int month, int day);
    /// A time of day on the zero day.
    static DateTime fromTime(int hour, int minute, int second);

    /// The moment by this machine's clock. An hour that the clock leaves out in spring is the hour behind it.
    [[nodiscard]] QDateTime toQt() const;
    /// What a clock on the wall shows, "yyyy-MM-dd HH:mm:ss", also in an hour that the machine's clock leaves out.
    [[nodiscard]] QString isoText() const;
    [[nodiscard]] bool isZero() const { return days == 0; }
    [[nodiscard]] bool isValid() const { return days > -657435.0 && days < 2958466.0; }

    /// The calendar day with no time.
    [[nodiscard]] DateTime dateOnly() const;
    /// Hours, minutes and seconds of the time of day, the moment taken to the nearest second.
    struct TimeOfDay {
        int hour, minute, second;
    };
    [[nodiscard]] TimeOfDay timeOfDay() const;
    [[nodiscard]] int year() const;
    [[nodiscard]] int month() const;
    [[nodiscard]] int day() const;
    /// Monday is 1, Sunday 7.
    [[nodiscard]] int weekdayFromMonday() const;

    friend auto operator<=>(const DateTime &, const DateTime &) = default;
};

/// The one clock of the process. Tests set it.
class Clock {
  public:
    /// The present moment in local time, to the second.
    static DateTime now();
    /// Stops the clock at a moment. REQUIRES: called by tests only.
    static void set(DateTime moment);
    /// Lets it run again.
    static void release();
};
