/// How long a ticket was open, counted in the helpdesk's service hours.
#pragma once

#include "platform/value/datetime.h"
#include "platform/value/processlocal.h"

/// The service hours of one calculation. A day number is 1 for Monday to 7 for Sunday.
struct ServiceTimes {
    /// Times of the day, on the zero day.
    DateTime ServiceStart, ServiceEnd, BreakStart, BreakEnd;
    /// The lowest and the highest day number of the service week.
    qint16 DayServiceStart = 0, DayServiceEnd = 0;
};

/// Filled afresh from the settings by each `fncCalcOpenTime`; the other functions rely on it.
extern ProcessLocal<ServiceTimes> serviceTimes;

/// The minutes between two moments, in constant time however far they are apart. Negative when the end is the earlier
/// one of the same day; 0 for a moment outside the years 1900 to 2500. The break counts on a ticket's only day.
qint32 fncCalcOpenTime(DateTime dteStart, DateTime dteEnd);
/// The nearest moment that counts, at or after the given one.
DateTime fncAdjustTimeBusiness(DateTime dteTime);
/// Service hours from the moment to the end of its service day, with two decimals.
double fncGetOpenHoursToClose(DateTime dteTime);
/// Service hours from the start of its service day to the moment, with two decimals.
double fncGetOpenHoursFromOpen(DateTime dteTime);
/// The service days strictly between the days of the two moments.
qint32 fncBusinessDays(DateTime dteStart, DateTime dteEnd);
/// The calendar day, with no time of day.
DateTime fncDateOnly(DateTime dteTime);
