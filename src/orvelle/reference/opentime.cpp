#include "orvelle/reference/opentime.h"

#include "orvelle/core/errorhandler.h"
#include "orvelle/core/trace.h"
#include "orvelle/reference/settings.h"
#include "platform/value/convert.h"

ProcessLocal<ServiceTimes> serviceTimes;

namespace {
constexpr int daysPerWeek = 7;

/// With two decimals. In whole seconds, of which a hundredth of an hour has 36, so that a half is a half and no
/// neighbour of it.
double fncHours(double days) {
    const auto seconds = static_cast<double>(std::llround(days * 86400));
    return roundHalfEven(seconds / 36) / 100;
}

/// The time of day that comparisons use: hours and minutes alone.
DateTime fncMinuteOfDay(DateTime moment) {
    const DateTime::TimeOfDay time = moment.timeOfDay();
    return DateTime::fromTime(time.hour, time.minute, 0);
}

/// REQUIRES: both are in the years that are calculated with, so no day lies before the zero day.
DateTime fncAt(DateTime day, DateTime time) { return {fncDateOnly(day).days + time.days}; }

DateTime fncAddDays(DateTime moment, int days) { return {moment.days + days}; }

DateTime fncTimeSetting(const QString &strName) {
    const DateTime::TimeOfDay time =
        toDateTime(objSettings->OtherSettings->GetValue(strName, valuetype::date)).timeOfDay();
    return DateTime::fromTime(time.hour, time.minute, time.second);
}

qint16 fncDaySetting(const QString &strName) {
    return toInt16(objSettings->OtherSettings->GetValue(strName, valuetype::integer));
}

void subReadServiceTimes() {
    ServiceTimes &times = *serviceTimes;
    times.ServiceStart = fncTimeSetting("ServiceStart");
    times.ServiceEnd = fncTimeSetting("ServiceEnd");
    times.BreakStart = fncTimeSetting("BreakStart");
    times.BreakEnd = fncTimeSetting("BreakEnd");
    times.DayServiceStart = fncDaySetting("DayServiceStart");
    times.DayServiceEnd = fncDaySetting("DayServiceEnd");
}

bool fncIsCalculable(DateTime moment) { return moment.isValid() && moment.year() >= 1900 && moment.year() <= 2500; }

bool fncIsServiceDay(int day) { return day >= serviceTimes->DayServiceStart && day <= serviceTimes->DayServiceEnd; }

/// Into the service hours of its own day, or to the next morning.
DateTime fncIntoServiceHours(DateTime moment) {
    const DateTime time = fncMinuteOfDay(moment);
    if (time < serviceTimes->ServiceStart)
        return fncAt(moment, serviceTimes->ServiceStart);
    return time <= serviceTimes->ServiceEnd ? moment : fncAt(fncAddDays(moment, 1), serviceTimes->ServiceStart);
}

DateTime fncBehindBreak(DateTime moment) {
    const DateTime time = fncMinuteOfDay(moment);
    return serviceTimes->BreakStart <= time && time <= serviceTimes->BreakEnd ? fncAt(moment, serviceTimes->BreakEnd)
                                                                              : moment;
}

/// Behind the service week it is the Monday after; before it, that week's first service day.
DateTime fncIntoServiceWeek(DateTime moment) {
    const int day = moment.weekdayFromMonday();
    if (day > serviceTimes->DayServiceEnd)
        return fncAt(fncAddDays(moment, 8 - day), serviceTimes->ServiceStart);
    if (day < serviceTimes->DayServiceStart)
        return fncAt(fncAddDays(moment, serviceTimes->DayServiceStart - day), serviceTimes->ServiceStart);
    return moment;
}

double fncBreakLength() { return serviceTimes->BreakEnd.days - serviceTimes->BreakStart.days; }

/// Hours between two adjusted moments of different days.
double fncHoursOverDays(DateTime adjStart, DateTime adjEnd) {
    const double fullDay = fncHours(serviceTimes->ServiceEnd.days - serviceTimes->ServiceStart.days - fncBreakLength());
    return fullDay * fncBusinessDays(adjStart, adjEnd) + fncGetOpenHoursToClose(adjStart) +
           fncGetOpenHoursFromOpen(adjEnd);
}
} // namespace

qint32 fncCalcOpenTime(DateTime dteStart, DateTime dteEnd) try {
    if (!fncIsCalculable(dteStart) || !fncIsCalculable(dteEnd))
        return 0;
    subTrace("Calculating the open time between " + toText(dteStart) + " - " + toText(dteEnd));
    subReadServiceTimes();
    const DateTime adjStart = fncAdjustTimeBusiness(dteStart);
    const DateTime adjEnd = fncAdjustTimeBusiness(dteEnd);
    const bool sameDay = fncDateOnly(adjEnd) == fncDateOnly(adjStart);
    const double open = sameDay ? fncHours(adjEnd.days - adjStart.days) : fncHoursOverDays(adjStart, adjEnd);
    return toInt32(open * 60);
} catch (const Failure &failure) {
    subErrorHandler(failure, "fncCalcOpenTime");
}

DateTime fncAdjustTimeBusiness(DateTime dteTime) try {
    subTrace("Adjusting time to fit businesshours " + toText(dteTime));
    return fncIntoServiceWeek(fncBehindBreak(fncIntoServiceHours(dteTime)));
} catch (const Failure &failure) {
    subErrorHandler(failure, "fncAdjustTimeBusiness");
}

double fncGetOpenHoursToClose(DateTime dteTime) try {
    subTrace("Calculates the hours a ticket was open from start to business closing time " + toText(dteTime));
    const DateTime time = fncMinuteOfDay(dteTime);
    const double left = serviceTimes->ServiceEnd.days - time.days;
    return fncHours(time < serviceTimes->BreakStart ? left - fncBreakLength() : left);
} catch (const Failure &failure) {
    subErrorHandler(failure, "fncGetOpenHoursToClose");
}

double fncGetOpenHoursFromOpen(DateTime dteTime) {
    subTrace("Calculates the hours a ticket was open from business opening to ticket closing " + toText(dteTime));
    const DateTime time = fncMinuteOfDay(dteTime);
    const double passed = time.days - serviceTimes->ServiceStart.days;
    return fncHours(time >= serviceTimes->BreakEnd ? passed - fncBreakLength() : passed);
}

qint32 fncBusinessDays(DateTime dteStart, DateTime dteEnd) {
    subTrace("Calculating business days between " + toText(dteStart) + " and " + toText(dteEnd));
    const DateTime first = fncAddDays(fncDateOnly(dteStart), 1);
    const int between = static_cast<int>(fncDateOnly(dteEnd).days - first.days);
    if (between <= 0)
        return 0;
    int perWeek = 0;
    int inRest = 0;
    for (int day = 0; day < daysPerWeek; ++day) {
        if (!fncIsServiceDay((first.weekdayFromMonday() - 1 + day) % daysPerWeek + 1))
            continue;
        ++perWeek;
        if (day < between % daysPerWeek)
            ++inRest;
    }
    return between / daysPerWeek * perWeek + inRest;
}

DateTime fncDateOnly(DateTime dteTime) { return dteTime.dateOnly(); }
