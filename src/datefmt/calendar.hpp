// Calendar arithmetic on doubles: day counts from 1 January 1960, second
// counts from its midnight, year-day codes (year * 1000 + day of the year).
// The Gregorian calendar runs back without a gap to 1582; a year that 4000
// divides is no leap year. A refused input gives the plain missing value.
#pragma once

#include <cstdint>

#include "zvlocfmt/zvlocfmt.h"

namespace zv {

constexpr double kFirstDay = -138061.0;       // 1 January 1582
constexpr double kDayLimit = 6589336.0;       // one past 31 December 20000
constexpr double kFirstSecond = -11928470400.0;
constexpr double kSecondLimit = 569318630400.0;
constexpr double kLastYearDay = 20000365.0;
constexpr double kSecondsPerDay = 86400.0;

// Days in years before `year`, counted so that 1 January 1960 is day 0.
int64_t daysBefore(int64_t year);
int leapFigure(int64_t year);

// The full year of a two-digit year under the pivot P: y + P - P mod 100,
// plus 100 below P mod 100.
int64_t settleTwoDigitYear(int64_t year, int64_t pivot);
// The host's ZV_NAME_YEARCUTOFF, or `fallback` when it isn't set.
int64_t yearPivot(int64_t fallback);

double ymdToYearDay(double year, double month, double day);
double yearDayToDayCount(double code);
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
// mode: a wide text whose first unit is U, V or W.
int32_t weekOfDate(double dayCount, const ZvChar *mode, double *year, double *week, double *dayNumber);

} // namespace zv
