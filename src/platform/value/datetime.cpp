#include "platform/value/datetime.h"

#include "platform/value/failure.h"

#include <cmath>

namespace {
constexpr qint64 secondsPerDay = 86400;
std::optional<DateTime> fixedNow;

const QDate &epoch() {
    static const QDate day(1899, 12, 30);
    return day;
}

/// The moment in whole seconds since the epoch, counted forward also before it.
qint64 seconds(double days) {
    const double whole = std::trunc(days);
    const double fraction = std::abs(days - whole);
    return static_cast<qint64>(whole) * secondsPerDay +
           static_cast<qint64>(std::llround(fraction * static_cast<double>(secondsPerDay)));
}

QDate dateOf(double days) {
    const qint64 moment = seconds(days);
    const qint64 day = moment >= 0 ? moment / secondsPerDay : -((-moment + secondsPerDay - 1) / secondsPerDay);
    return epoch().addDays(day);
}
} // namespace

DateTime DateTime::fromQt(const QDateTime &moment) {
    const QDateTime local = moment.toLocalTime();
    const auto day = static_cast<double>(epoch().daysTo(local.date()));
    const double fraction = static_cast<double>(local.time().msecsSinceStartOfDay()) / 86400000.0;
    return {day < 0 ? day - fraction : day + fraction};
}

DateTime DateTime::fromDate(int year, int month, int day) {
    const QDate date(year, month, day);
    if (!date.isValid())
        throw Failure(failures::invalidCall);
    return {static_cast<double>(epoch().daysTo(date))};
}

DateTime DateTime::fromTime(int hour, int minute, int second) {
    return {static_cast<double>(hour * 3600 + minute * 60 + second) / static_cast<double>(secondsPerDay)};
}

QDateTime DateTime::toQt() const {
    const TimeOfDay time = timeOfDay();
    const QDate date = dateOf(days);
    const QDateTime local(date, QTime(time.hour, time.minute, time.second));
    return local.isValid() ? local : QDateTime(date, local.time().addSecs(3600));
}

QString DateTime::isoText() const {
    const TimeOfDay time = timeOfDay();
    return dateOf(days).toString(QStringLiteral("yyyy-MM-dd ")) +
           QTime(time.hour, time.minute, time.second).toString(QStringLiteral("HH:mm:ss"));
}

DateTime DateTime::dateOnly() const { return {static_cast<double>(epoch().daysTo(dateOf(days)))}; }

DateTime::TimeOfDay DateTime::timeOfDay() const {
    const qint64 moment = seconds(days);
    const auto time = static_cast<int>(((moment % secondsPerDay) + secondsPerDay) % secondsPerDay);
    return {time / 3600, time / 60 % 60, time % 60};
}

int DateTime::year() const { return dateOf(days).year(); }
int DateTime::month() const { return dateOf(days).month(); }
int DateTime::day() const { return dateOf(days).day(); }
int DateTime::weekdayFromMonday() const { return dateOf(days).dayOfWeek(); }

DateTime Clock::now() {
    if (fixedNow)
        return *fixedNow;
    QDateTime now = QDateTime::currentDateTime();
    now.setTime(QTime(now.time().hour(), now.time().minute(), now.time().second()));
    return DateTime::fromQt(now);
}

void Clock::set(DateTime moment) { fixedNow = moment; }
void Clock::release() { fixedNow.reset(); }
