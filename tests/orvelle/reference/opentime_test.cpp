// How long a ticket was open, in minutes of service.

#include "orvelle/reference/opentime.h"
#include "orvelle/reference/program.h"
#include "support/environment.h"

#include <random>

namespace {

DateTime moment(const QString &text) { return DateTime::fromQt(QDateTime::fromString(text, "yyyy-MM-dd HH:mm:ss")); }

class OpenTimeTest : public ProgramTest {
  protected:
    OpenTimeTest() { subCreateSettings(); }
    static void set(const QString &name, const QString &text) { objSettings->OtherSettings->SetValue(name, text); }
};

struct OpenCase {
    const char *start, *end;
    qint32 minutes;
};

// 2 March 2026 is a Monday.
constexpr OpenCase withDefaults[] = {
    {"2026-03-03 09:00:00", "2026-03-03 09:30:00", 30},
    {"2026-03-03 10:00:00", "2026-03-03 15:00:00", 300}, // the break of an only day counts
    {"2026-03-03 07:00:00", "2026-03-03 07:30:00", 0},
    {"2026-03-03 18:00:00", "2026-03-03 19:00:00", 0},
    {"2026-03-03 12:30:00", "2026-03-03 12:45:00", 0},
    {"2026-03-03 12:00:00", "2026-03-03 13:00:00", 0},
    {"2026-03-03 13:00:00", "2026-03-03 13:01:12", 1},
    {"2026-03-03 16:00:00", "2026-03-03 17:00:00", 60},
    {"2026-03-03 16:00:00", "2026-03-03 17:00:59", 61}, // 17:00 and some seconds is not past closing
    {"2026-03-03 16:00:00", "2026-03-03 17:01:00", 60}, // but a minute is: to the next morning
    {"2026-03-03 16:00:00", "2026-03-04 09:00:00", 120},
    {"2026-03-02 16:00:00", "2026-03-04 09:00:00", 600},
    {"2026-03-02 11:00:00", "2026-03-04 14:00:00", 1080}, // both days' breaks taken off
    {"2026-03-04 16:00:00", "2026-03-09 07:00:00", 540},
    {"2026-03-06 10:00:00", "2026-03-09 08:00:00", 0}, // a Friday is past the service week
    {"2026-03-07 10:00:00", "2026-03-08 11:00:00", 0},
    {"2026-03-05 18:00:00", "2026-03-09 09:00:00", 60}, // Thursday night: through Friday to Monday
    {"2026-03-03 15:00:00", "2026-03-03 10:00:00", -300},
    {"2026-03-03 09:00:20", "2026-03-03 09:30:40", 31},
    {"2026-03-03 09:00:00", "2026-03-03 09:00:18", 0}, // half a hundredth goes to the even neighbour
    {"2026-03-03 09:00:00", "2026-03-03 09:00:54", 1},
    {"0100-01-01 09:00:00", "2026-03-03 09:00:00", 0},
    {"2026-03-03 09:00:00", "9999-12-31 09:00:00", 0},
    {"1899-12-31 23:59:59", "2026-03-03 09:00:00", 0},
    {"1900-01-01 08:00:00", "1900-01-02 08:00:00", 480},
    {"2026-03-03 09:00:00", "2500-12-31 23:59:59", 47569380},
};

TEST_F(OpenTimeTest, CountsServiceHours) {
    for (const OpenCase &one : withDefaults)
        EXPECT_EQ(fncCalcOpenTime(moment(one.start), moment(one.end)), one.minutes) << one.start << " to " << one.end;
    EXPECT_EQ(fncCalcOpenTime(DateTime{}, moment("2026-03-03 09:00:00")), 0);
}

TEST_F(OpenTimeTest, FollowsTheServiceWeek) {
    set("DayServiceEnd", "5");
    EXPECT_EQ(fncCalcOpenTime(moment("2026-03-06 16:00:00"), moment("2026-03-09 09:00:00")), 120);
    EXPECT_EQ(fncCalcOpenTime(moment("2026-03-07 16:00:00"), moment("2026-03-09 09:00:00")), 60);
    set("DayServiceStart", "3");
    // Monday and Tuesday come before this week's first service day, which is where they count from.
    EXPECT_EQ(fncAdjustTimeBusiness(moment("2026-03-02 14:30:00")), moment("2026-03-02 14:30:00"));
    EXPECT_EQ(fncCalcOpenTime(moment("2026-03-02 14:30:00"), moment("2026-03-04 09:00:00")), 60);
    EXPECT_EQ(fncAdjustTimeBusiness(moment("2026-03-03 18:30:00")), moment("2026-03-04 08:00:00"));
}

TEST_F(OpenTimeTest, WithoutSettingsTheDayIsEmpty) {
    objSettings->OtherSettings = Ref<cOtherSettings>::make();
    EXPECT_EQ(fncCalcOpenTime(moment("2026-03-03 09:00:00"), moment("2026-03-24 09:00:00")), 0);
}

/// The same in whole seconds and one day at a time.
class SlowModel {
  public:
    qint64 serviceStart, serviceEnd, breakStart, breakEnd;
    int firstDay, lastDay;

    [[nodiscard]] qint64 minutes(qint64 start, qint64 end) const {
        start = adjusted(start);
        end = adjusted(end);
        qint64 hundredths = 0;
        if (start / day == end / day) {
            hundredths = rounded(end - start, 36);
        } else {
            const qint64 pause = breakEnd - breakStart;
            const qint64 from = floored(start % day);
            const qint64 to = floored(end % day);
            for (qint64 between = start / day + 1; between < end / day; ++between) {
                if (weekday(between) >= firstDay && weekday(between) <= lastDay)
                    hundredths += rounded(serviceEnd - serviceStart - pause, 36);
            }
            hundredths += rounded(serviceEnd - from - (from < breakStart ? pause : 0), 36);
            hundredths += rounded(to - serviceStart - (to >= breakEnd ? pause : 0), 36);
        }
        return rounded(hundredths * 3, 5);
    }

  private:
    static constexpr qint64 day = 86400;

    static qint64 floored(qint64 time) { return time - time % 60; }
    /// Day 0 is a Saturday.
    static int weekday(qint64 number) { return static_cast<int>((number + 5) % 7) + 1; }
    /// To the nearest whole, a half to the even one.
    static qint64 rounded(qint64 count, qint64 unit) {
        qint64 whole = count / unit - (count % unit < 0 ? 1 : 0);
        const qint64 twice = 2 * (count - whole * unit);
        if (twice > unit || (twice == unit && whole % 2 != 0))
            ++whole;
        return whole;
    }
    [[nodiscard]] qint64 adjusted(qint64 moment) const {
        const qint64 time = floored(moment % day);
        if (time < serviceStart)
            moment = moment / day * day + serviceStart;
        else if (time > serviceEnd)
            moment = (moment / day + 1) * day + serviceStart;
        const qint64 moved = floored(moment % day);
        if (breakStart <= moved && moved <= breakEnd)
            moment = moment / day * day + breakEnd;
        if (weekday(moment / day) > lastDay) {
            do
                moment += day;
            while (weekday(moment / day) != 1);
            return moment / day * day + serviceStart;
        }
        if (weekday(moment / day) < firstDay) {
            while (weekday(moment / day) < firstDay)
                moment += day;
            return moment / day * day + serviceStart;
        }
        return moment;
    }
};

QString clockText(qint64 seconds) {
    return QTime::fromMSecsSinceStartOfDay(static_cast<int>(seconds) * 1000).toString("HH:mm:ss");
}

/// Days of the region's own trouble: the nights in which its clocks change, and the turns of February, also of years
/// that look like leap years and are none.
QList<qint64> oddDays() {
    QList<qint64> days;
    const QDate zero(1899, 12, 30);
    for (const int year : {1900, 1904, 1999, 2000, 2023, 2024, 2026, 2100, 2400}) {
        days << zero.daysTo(QDate(year, 2, 28)) << zero.daysTo(QDate(year, 12, 31));
        for (const int month : {3, 10}) {
            const QDate last(year, month, 31);
            days << zero.daysTo(last) - last.dayOfWeek() % 7;
        }
    }
    return days;
}

TEST_F(OpenTimeTest, AgreesWithASlowDayByDayModel) {
    // A region whose clocks change.
    const support::EnvironmentValue zone("TZ", "Europe/Stockholm");
    const QList<qint64> odd = oddDays();
    constexpr int settingsDrawn = 500;
    constexpr int pairsEach = 200;
    std::mt19937 random(20260302);
    const auto upTo = [&](qint64 last) { return std::uniform_int_distribution<qint64>(0, last)(random); };
    for (int i = 0; i < settingsDrawn; ++i) {
        SlowModel model;
        // Mostly a working day with a break in it; now and then any four times at all.
        std::array<qint64, 4> times{};
        for (qint64 &time : times)
            time = upTo(1439) * 60 + (i % 3 == 0 ? upTo(59) : 0);
        if (i % 10 != 0)
            std::sort(times.begin(), times.end());
        model.serviceStart = times[0];
        model.breakStart = times[1];
        model.breakEnd = times[2];
        model.serviceEnd = times[3];
        model.firstDay = static_cast<int>(upTo(5));
        model.lastDay = static_cast<int>(i % 10 == 0 ? upTo(7) : 2 + upTo(5));
        set("ServiceStart", clockText(model.serviceStart));
        set("BreakStart", clockText(model.breakStart));
        set("BreakEnd", clockText(model.breakEnd));
        set("ServiceEnd", clockText(model.serviceEnd));
        set("DayServiceStart", QString::number(model.firstDay));
        set("DayServiceEnd", QString::number(model.lastDay));
        for (int j = 0; j < pairsEach; ++j) {
            const qint64 reach = j == 0 ? 36500 : j % 4 == 0 ? 1 : j % 4 == 1 ? 700 : 14;
            const qint64 day = j % 5 == 0 ? odd.at(upTo(odd.size() - 1)) : 3 + upTo(182500);
            const qint64 start = day * 86400 + (j % 10 == 0 ? upTo(4 * 3600) : upTo(86399));
            const qint64 end = start + upTo(reach * 86400) - (j % 16 == 0 ? 86400 : 0);
            const DateTime from{static_cast<double>(start) / 86400};
            const DateTime to{static_cast<double>(end) / 86400};
            ASSERT_EQ(fncCalcOpenTime(from, to), model.minutes(start, end))
                << "settings " << i << ", pair " << j << ": " << formatDateTime(from).toStdString() << " to "
                << formatDateTime(to).toStdString();
        }
    }
}

} // namespace
