// Calendar arithmetic on doubles: day counts from 1 January 1960, second
// counts from its midnight, year-day codes (year * 1000 + day of the year).
// The Gregorian calendar runs back without a gap to 1582; a year that 4000
// divides is no leap year. A refused input gives the plain missing value.
#pragma once

#include <cmath>
#include <cstdint>

#include "zvlocfmt/zvlocfmt.h"

namespace zv {

constexpr int64_t kFirstYear = 1582;
constexpr int64_t kLastYear = 20000;
constexpr double kFirstDay = -138061.0;       // 1 January 1582
constexpr double kDayLimit = 6589336.0;       // one past 31 December 20000
constexpr double kSecondsPerDay = 86400.0;
constexpr double kSecondsPerHour = 3600.0;
constexpr double kSecondsPerMinute = 60.0;
constexpr double kFirstSecond = kFirstDay * kSecondsPerDay; // -11928470400
constexpr double kSecondLimit = kDayLimit * kSecondsPerDay; // 569318630400
// A year-day code is year * kYearDayBase + day of the year, 1 January being 1.
constexpr int64_t kYearDayBase = 1000;
constexpr double kLastYearDay = 20000365.0;   // 31 December 20000
// Years up to this one are two-digit years, settled by the pivot.
constexpr int64_t kLastTwoDigitYear = 99;
// The calendar's pivot of two-digit years when the host sets none.
constexpr int64_t kCalendarYearPivot = 1950;

// fmod(x, divisor) for a whole divisor, as exact as fmod but without its
// long division: the whole part of x splits by integers, and its fraction
// is added back, a sum that the remainder, being a double, holds exactly.
inline double remainderOf(double x, double divisor) {
    if (!(std::fabs(x) < 0x1p53) || !(divisor >= 1 && divisor < 0x1p31) || divisor != std::trunc(divisor))
        return std::fmod(x, divisor);
    const double whole = std::trunc(x);
    const double r =
        static_cast<double>(static_cast<int64_t>(whole) % static_cast<int64_t>(divisor)) + (x - whole);
    return r == 0 ? std::copysign(0.0, x) : r; // a zero keeps the sign of x, as fmod gives it
}

// Days in years before `year`, counted so that 1 January 1960 is day 0.
int64_t daysBefore(int64_t year);
int leapFigure(int64_t year);

// The full year of a two-digit year under the pivot P: y + P - P mod 100,
// plus 100 below P mod 100.
int64_t settleTwoDigitYear(int64_t year, int64_t pivot);
// The host's ZV_NAME_YEARCUTOFF, or `fallback` when it isn't set.
int64_t yearPivot(int64_t fallback);
// The host's ZV_NAME_YEARCUTOFF into *value: 0, or nonzero when it isn't set
// (or there is no host), *value then as it was.
int32_t readYearCutoff(int64_t *value);

// The host's clock: value - shift is the present datetime as a second count.
struct HostClock {
    double value = 0.0;
    double shift = 0.0;
};
// Both 0 when the host has no clock.
HostClock readHostClock();

// A day of the range in whole numbers, as the pattern engine shows it.
struct CivilDate {
    int64_t year;
    int month;     // 1..12
    int day;       // 1..31
    int dayOfYear; // 1 January is 1
    int weekday;   // 0 Sunday .. 6 Saturday
};
// `dayNumber` is a whole DayCount inside the range.
CivilDate civilOf(int64_t dayNumber);

double ymdToYearDay(double year, double month, double day);
double yearDayToDayCount(double code);
// yearDayToDayCount of ymdToYearDay, for a date in whole numbers.
double dayCountOfDate(int64_t year, int64_t month, int64_t day);
int32_t yearDayToYmd(double *year, double *month, double *day, double code);
double dayCountToYearDay(double days);
double weekdayOf(double days);
double dayOf(double seconds);
double hourOf(double seconds);
double minuteOf(double seconds);
double secondOf(double seconds);
double timeOfDay(double seconds);
int32_t writeSignedField(int value, ZvChar *field, int width);
int32_t roundToUnit(double value, double unit, double *result);
// The three conventions of weeks, by the letters that name them.
enum class WeekMode : ZvChar {
    U = u'U', // from the year's first Sunday, days before it in week 0; Sunday is day 1
    V = u'V', // ISO 8601: the week of the first Thursday is week 1; Monday is day 1
    W = u'W', // from the year's first Monday, days before it in week 0; Monday is day 1
};
// The mode that a wide text names by its first unit; V for any other.
WeekMode weekModeOf(const ZvChar *letter);

int32_t weekOfDate(double dayCount, WeekMode mode, double *year, double *week, double *dayNumber);
// The same with the mode as a wide text whose first unit is U, V or W.
int32_t weekOfDate(double dayCount, const ZvChar *mode, double *year, double *week, double *dayNumber);

} // namespace zv
