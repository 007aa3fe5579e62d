// Calendar arithmetic: pure functions on doubles, but for the year pivot,
// which the host's option gives at each use.
#include "datefmt/calendar.hpp"

#include <cmath>
#include <cstdlib>

#include "frame/frame.hpp"

namespace zv {

namespace {

constexpr const ZvChar *kYearCutoffOption = u"ZV_NAME_YEARCUTOFF";
constexpr int64_t kYearCutoffOptionLength = 18;
constexpr int32_t kOptionInteger = 3; // the host's type of a 64-bit integer option
// What the host's readClock takes: the size of the record of two doubles
// and the flags that ask for the clock value and its shift.
constexpr int32_t kClockRecordSize = 2 * sizeof(double);
constexpr uint32_t kClockFlags = 0x10800000u;

bool refusedDay(double days) { return isMissing(days) || !(days >= kFirstDay && days < kDayLimit); }
bool refusedSecond(double s) { return isMissing(s) || !(s >= kFirstSecond && s < kSecondLimit); }

int monthLength(int month, int64_t year) { return kMonthDays[month - 1] + (month == 2 ? leapFigure(year) : 0); }

bool plainLeap(int64_t y) { return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0; }

// Splits a year-day code after the refusals both directions share; false
// when refused.
bool splitCode(double code, int64_t *year, int64_t *dayOfYear) {
    if (isMissing(code) || !(code > 0) || code > kLastYearDay) return false;
    const int64_t c = static_cast<int64_t>(code);
    int64_t y = c / kYearDayBase;
    const int64_t d = c % kYearDayBase;
    if (y > kLastTwoDigitYear && y < kFirstYear) return false;
    if (d >= 367) return false;
    if (y <= kLastTwoDigitYear) y = settleTwoDigitYear(y, yearPivot(kCalendarYearPivot));
    if (d > 365 + leapFigure(y)) return false;
    *year = y;
    *dayOfYear = d;
    return true;
}

} // namespace

int leapFigure(int64_t y) { return leapOf(y); }

int64_t daysBefore(int64_t y) { return countBefore<int64_t>(y) - kDayCountShift; }

int64_t settleTwoDigitYear(int64_t year, int64_t pivot) {
    const int64_t p = static_cast<int32_t>(pivot & 0xFFFFFFFF);
    const int64_t r = ((p % 100) + 100) % 100;
    return year + p - r + (year < r ? 100 : 0);
}

int32_t readYearCutoff(int64_t *value) {
    HostAnchor *anchor = hostAnchor;
    if (!anchor || !anchor->ops || !anchor->ops->readOption) return 1;
    int64_t size = sizeof *value;
    return anchor->ops->readOption(anchor, kYearCutoffOption, kYearCutoffOptionLength, kOptionInteger, value,
                                   &size);
}

int64_t yearPivot(int64_t fallback) {
    int64_t value = fallback;
    readYearCutoff(&value); // unset leaves the fallback
    return value;
}

HostClock readHostClock() {
    double clock[2] = {0.0, 0.0};
    HostAnchor *anchor = hostAnchor;
    if (anchor && anchor->ops && anchor->ops->readClock)
        anchor->ops->readClock(anchor, kClockRecordSize, clock, kClockFlags);
    return HostClock{clock[0], clock[1]};
}

namespace {

// A date in whole numbers as its year, two-digit years settled by the pivot,
// and its day of the year; false when refused.
bool settleDate(int64_t year, int64_t month, int64_t day, int64_t *settledYear, int64_t *dayOfYear) {
    if (month < 1 || month > 12 || day < 1 || day > 31 || year < 0) return false;
    if (year > kLastTwoDigitYear && !(year >= kFirstYear && year <= kLastYear)) return false;
    int64_t y = year;
    if (y <= kLastTwoDigitYear) y = settleTwoDigitYear(y, yearPivot(kCalendarYearPivot));
    if (y < kFirstYear || y > kLastYear) return false;
    const int m = static_cast<int>(month);
    if (day > monthLength(m, y)) return false;
    *settledYear = y;
    *dayOfYear = kDaysBeforeMonth[size_t(leapFigure(y))][size_t(m - 1)] + day;
    return true;
}

} // namespace

double ymdToYearDay(double year, double month, double day) {
    if (!(month >= 1 && month <= 12) || !(day >= 1 && day <= 31) || !(year >= 0)) return missingValue();
    if (year > kLastTwoDigitYear && !(year >= kFirstYear && year <= kLastYear)) return missingValue();
    // Inside these bounds the whole parts decide.
    int64_t y, d;
    if (!settleDate(static_cast<int64_t>(year), static_cast<int64_t>(month), static_cast<int64_t>(day), &y, &d))
        return missingValue();
    return static_cast<double>(y * kYearDayBase + d);
}

double dayCountOfDate(int64_t year, int64_t month, int64_t day) {
    int64_t y, d;
    if (!settleDate(year, month, day, &y, &d)) return missingValue();
    return static_cast<double>(daysBefore(y) + d);
}

double yearDayToDayCount(double code) {
    int64_t y, d;
    if (!splitCode(code, &y, &d)) return missingValue();
    return static_cast<double>(daysBefore(y) + d);
}

int32_t yearDayToYmd(double *year, double *month, double *day, double code) {
    int64_t y, d;
    if (!splitCode(code, &y, &d)) {
        *year = *month = *day = missingValue();
        return 0;
    }
    int m, dayOfMonth;
    monthOfYearDay(static_cast<int>(d), leapFigure(y), &m, &dayOfMonth);
    *year = static_cast<double>(y);
    *month = m;
    *day = dayOfMonth;
    return 0;
}

double dayCountToYearDay(double days) {
    if (isMissing(days)) return days;
    if (refusedDay(days)) return missingValue();
    const int64_t f = static_cast<int64_t>(std::floor(days));
    const int64_t year = yearOfDay(f);
    return static_cast<double>(year * kYearDayBase + f - daysBefore(year));
}

double weekdayOf(double days) {
    if (refusedDay(days)) return missingValue();
    return static_cast<double>(weekdayOfDay(static_cast<int64_t>(std::floor(days))) + 1);
}

double dayOf(double seconds) {
    if (isMissing(seconds)) return seconds;
    if (refusedSecond(seconds)) return missingValue();
    return std::trunc((seconds - kFirstSecond) / kSecondsPerDay) + kFirstDay;
}

double hourOf(double seconds) {
    if (refusedSecond(seconds)) return missingValue();
    double x = remainderOf(seconds, kSecondsPerDay);
    if (x < 0) x += kSecondsPerDay;
    return std::trunc(x / kSecondsPerHour);
}

namespace {
double clockPart(double seconds) {
    double x = remainderOf(seconds, kSecondsPerDay);
    if (seconds < 0) x = kSecondsPerDay - std::fabs(x);
    return x;
}
} // namespace

double minuteOf(double seconds) {
    if (refusedSecond(seconds)) return missingValue();
    const double y = std::trunc(remainderOf(clockPart(seconds), kSecondsPerHour));
    return std::trunc(y / kSecondsPerMinute);
}

double secondOf(double seconds) {
    if (refusedSecond(seconds)) return missingValue();
    return remainderOf(clockPart(seconds), kSecondsPerMinute);
}

double timeOfDay(double seconds) {
    if (refusedSecond(seconds)) return missingValue();
    // Whole days from 1582 on make it positive and keep the time of day.
    if (seconds <= 0) seconds -= kFirstSecond;
    return remainderOf(seconds, kSecondsPerDay);
}

int32_t writeSignedField(int value, ZvChar *field, int width) {
    for (int i = 0; i < width; ++i) field[i] = u' ';
    int64_t v = value < 0 ? -int64_t{value} : int64_t{value};
    int pos = width - 1;
    do {
        if (pos < 0) return 1;
        field[pos--] = static_cast<ZvChar>(u'0' + v % 10);
        v /= 10;
    } while (v > 0);
    if (value < 0) {
        if (pos < 0) return 1;
        field[pos] = u'-';
    }
    return 0;
}

int32_t roundToUnit(double value, double unit, double *result) {
    if (value == 0) {
        *result = 0;
        return 0;
    }
    if (!std::isfinite(value) || !std::isfinite(unit) || unit == 0 ||
        std::ilogb(value) - std::ilogb(unit) >= 52) {
        *result = value;
        return 0;
    }
    const double q = std::fabs(value) / unit;
    const double allowance = std::fmin(std::ldexp(q, -40), std::ldexp(1.0, -24));
    const double r = std::floor(q + (0.5 + allowance)) * unit;
    *result = value < 0 ? -r : r;
    return 0;
}

WeekMode weekModeOf(const ZvChar *letter) {
    const ZvChar c = letter ? letter[0] : 0;
    return c == u'U' ? WeekMode::U : c == u'W' ? WeekMode::W : WeekMode::V;
}

int32_t weekOfDate(double dayCount, const ZvChar *mode, double *year, double *week, double *dayNumber) {
    return weekOfDate(dayCount, weekModeOf(mode), year, week, dayNumber);
}

int32_t weekOfDate(double dayCount, WeekMode mode, double *year, double *week, double *dayNumber) {
    double y, m, d;
    yearDayToYmd(&y, &m, &d, dayCountToYearDay(dayCount));
    const double weekday = weekdayOf(dayCount);
    if (isMissing(y) || isMissing(weekday)) {
        *year = *week = *dayNumber = missingValue();
        return 0;
    }
    const int64_t yy = static_cast<int64_t>(y);
    const int mm = static_cast<int>(m), dd = static_cast<int>(d);
    const int wd = static_cast<int>(weekday); // 1 Sunday .. 7 Saturday
    // Days since 1 January. Leap years here follow the plain Gregorian rule,
    // not leapFigure: in a year that 4000 divides, n runs one ahead from March
    // on, as strftime and the ISO 8601 week tools count the days, so that week
    // numbers and week years agree with theirs in every year of the range.
    int64_t n = 31 * (mm - 1) + dd - 1;
    if (mm >= 3) n -= static_cast<int64_t>(0.4 * mm + 2.3) - (plainLeap(yy) ? 1 : 0);

    const int isoDay = wd == 1 ? 7 : wd - 1;
    if (mode == WeekMode::U) {
        *year = y;
        *week = std::floor((n + 8.0 - wd) / 7.0);
        *dayNumber = wd;
    } else if (mode == WeekMode::W) {
        *year = y;
        *week = std::floor((n + 7.0 - ((wd + 5) % 7)) / 7.0);
        *dayNumber = isoDay;
    } else {
        // The week holds its Thursday: that day's year is the week's year.
        int64_t thursday = n + 1 + 4 - isoDay; // ordinal, 1 January being 1
        int64_t weekYear = yy;
        const int64_t length = 365 + (plainLeap(yy) ? 1 : 0);
        if (thursday < 1) {
            --weekYear;
            thursday += 365 + (plainLeap(weekYear) ? 1 : 0);
        } else if (thursday > length) {
            ++weekYear;
            thursday -= length;
        }
        *year = static_cast<double>(weekYear);
        *week = static_cast<double>((thursday - 1) / 7 + 1);
        *dayNumber = isoDay;
    }
    return 0;
}

} // namespace zv
