// Calendar arithmetic on doubles: day counts from 1 January 1960, second
// counts from its midnight, year-day codes (year * 1000 + day of the year).
// The Gregorian calendar runs back without a gap to 1582; a year that 4000
// divides is no leap year. A refused input gives the plain missing value.
#pragma once

#include <array>
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

// ---- whole-number day arithmetic, inline for the pattern engine ----------

constexpr int kMonthDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

// The calendar's own count of days at 1 January 1960: daysBefore and
// dayCountToYearDay take it off so that this day is day 0.
constexpr int64_t kDayCountShift = 715875;
// A count of days that 7 divides with remainder 5, so that 1 January 1960, a
// Friday, comes out as weekday 6 (Sunday being 1), and large enough that the
// sum stays near or above 0 over the whole range.
constexpr int64_t kWeekdayShift = 138052;

// Days of a year before each month, and before the next year: a common year,
// then a leap year.
constexpr auto kDaysBeforeMonth = [] {
    std::array<std::array<int, 13>, 2> before{};
    for (int leap = 0; leap < 2; ++leap)
        for (int m = 1; m <= 12; ++m)
            before[size_t(leap)][size_t(m)] = before[size_t(leap)][size_t(m - 1)] + kMonthDays[m - 1] + (m == 2 ? leap : 0);
    return before;
}();

// Days in the years before y, in the calendar's own count.
template <class Int> constexpr Int countBefore(Int y) {
    const Int c = y - 1;
    return 365 * y + c / 4 - c / 4000 - c / 100 + (c / 100) / 4;
}

// 4000 years, the whole cycle of the leap rule, hold this many days.
constexpr uint64_t kYearsPerCycle = 4000;
constexpr uint64_t kDaysPerCycle = 1460969;

// The calendar's own count of a day, n = day + kDayCountShift (positive
// inside the range), gives the year that holds it and the days before that
// year. n + 1 days at the cycle's mean length of a year reach that year or
// the next one, and the days before the guess tell which: exact over the
// whole range, as a check of every day confirms.
template <class Int> constexpr Int yearOfCount(Int n, Int *daysBeforeYear) {
    auto year = static_cast<Int>((static_cast<uint64_t>(n) + 1) * kYearsPerCycle / kDaysPerCycle);
    Int before = countBefore(year);
    if (n <= before) before = countBefore(--year);
    *daysBeforeYear = before;
    return year;
}
inline int64_t yearOfDay(int64_t dayNumber) {
    int64_t before = 0;
    return yearOfCount<int64_t>(dayNumber + kDayCountShift, &before);
}

// The leap figure: 1 for a leap year, else 0. The commonest answers come
// first: most years are not divisible by 4.
template <class Int> constexpr int leapOf(Int y) {
    if (y % 4 != 0) return 0;
    if (y % 100 != 0) return 1;
    if (y % 400 != 0) return 0;
    return y % 4000 == 0 ? 0 : 1;
}
int leapFigure(int64_t year);

// Days in years before `year`, counted so that 1 January 1960 is day 0.
int64_t daysBefore(int64_t year);

// 0 Sunday .. 6 Saturday; -0.5 is still 31 December 1959, as the date takes it.
inline int weekdayOfDay(int64_t dayNumber) { return static_cast<int>(((kWeekdayShift + dayNumber) % 7 + 7) % 7); }

// The month of day d of a year (1 January being 1) and the day in it.
// Months have 28 to 31 days: the month is the one a 31-day count gives, or
// the next.
inline void monthOfYearDay(int d, int leap, int *month, int *day) {
    const auto &before = kDaysBeforeMonth[size_t(leap)];
    int m = (d - 1) / 31 + 1;
    if (m < 12 && d > before[size_t(m)]) ++m;
    *month = m;
    *day = static_cast<int>(d - before[size_t(m - 1)]);
}

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
inline CivilDate civilOf(int64_t dayNumber) {
    // Inside the range the calendar's count is positive and below 2^23.
    const auto n = static_cast<uint32_t>(dayNumber + kDayCountShift);
    uint32_t before = 0;
    const uint32_t year = yearOfCount<uint32_t>(n, &before);
    CivilDate c;
    c.year = year;
    c.dayOfYear = static_cast<int>(n - before);
    monthOfYearDay(c.dayOfYear, leapOf(year), &c.month, &c.day);
    // A multiple of 7 above kWeekdayShift keeps the sum positive.
    constexpr uint32_t kPositiveWeekdayShift = kWeekdayShift + 7 * 2;
    static_assert(kPositiveWeekdayShift + kFirstDay >= 0);
    c.weekday = static_cast<int>((static_cast<uint32_t>(dayNumber + kPositiveWeekdayShift)) % 7);
    return c;
}

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
