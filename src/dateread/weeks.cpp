// @WEEKU, @WEEKV and @WEEKW: a year, a week number and a day of the week,
// as the week formats write them, read back into a day count.
#include <algorithm>
#include <cmath>
#include <cstdint>

#include "datefmt/calendar.hpp"
#include "dateread/weekread.hpp"
#include "frame/frame.hpp"
#include "wide/ascii.hpp"
#include "wide/wide.hpp"

namespace zv {

namespace {

constexpr int32_t kNotAWeekText = static_cast<int32_t>(0x80000000u);
constexpr int32_t kNotDigits = -1;
constexpr int32_t kOutOfRange = 1;
constexpr int64_t kLastWeek = 53;
constexpr int64_t kLastDayNumber = 31; // days beyond the week run into the next one
// The cut-off that a cut-off of 0 stands for.
constexpr int64_t kCutoffForZero = 1900;

// The first characters of one part of the text, ended by a zero, with the
// count of all characters that went to it.
struct Part {
    ZvChar text[5] = {0, 0, 0, 0, 0};
    int64_t count = 0;
    bool digitsOnly = true;

    void add(ZvChar c) {
        if (count < 4) text[count] = c;
        ++count;
        if (!isAsciiDigit(c)) digitsOnly = false;
    }
};

// Two digits, or one when the second place holds none; -1 without any.
int32_t twoDigits(const ZvChar *s) {
    if (isAsciiDigit(s[1])) return (isAsciiDigit(s[0]) ? (s[0] - u'0') * 10 : 0) + (s[1] - u'0');
    if (isAsciiDigit(s[0])) return s[0] - u'0';
    return -1;
}

// The cut-off as a whole number: 1900 for 0, else truncated.
int64_t wholeCutoff(double value) {
    if (std::isnan(value) || value == 0.0) return kCutoffForZero;
    if (value > 1e15) return static_cast<int64_t>(1e15);
    if (value < -1e15) return static_cast<int64_t>(-1e15);
    return static_cast<int64_t>(value);
}

// The calendar year of the present day by the host's clock.
int64_t presentYear() {
    const HostClock clock = readHostClock();
    const double days = std::floor((clock.value - clock.shift) / kSecondsPerDay);
    double year = 0, month = 0, day = 0;
    yearDayToYmd(&year, &month, &day, dayCountToYearDay(days));
    if (isMissing(year) || !(year >= 0 && year <= 1e6)) return -1;
    return static_cast<int64_t>(year);
}

int32_t readWeekEntry(FormatCall *call, WeekMode mode) {
    int64_t length = std::min(call->inputLength, call->fieldLimit);
    const ZvChar *text = static_cast<const ZvChar *>(call->input);
    length = text ? std::max<int64_t>(length, 0) : 0;
    length = lengthWithoutTrailingBlanks(text, length);
    if (length <= 0) return ZV_UNREADABLE;

    int64_t cutoff = kWeekYearCutoff;
    int64_t value = 0;
    if (readYearCutoff(&value) == 0) cutoff = value;
    double *out = static_cast<double *>(call->output);
    *out = static_cast<double>(cutoff);
    return readWeekText(text, length, mode, out) == 0 ? ZV_OK : kNotAWeekText;
}

} // namespace

int32_t readWeekText(const ZvChar *text, int64_t length, const ZvChar *letter, double *cutoffInOut) {
    return readWeekText(text, length, weekModeOf(letter), cutoffInOut);
}

int32_t readWeekText(const ZvChar *text, int64_t length, WeekMode mode, double *cutoffInOut) {
    length = text ? std::max<int64_t>(length, 0) : 0;
    Part year, week, extraWeek, day;
    int weeksMet = 0;
    for (int64_t i = 0; i < length; ++i) {
        const ZvChar c = text[i];
        if (c == u'-' || c == u' ') continue;
        if (c == u'W' || c == u'w') {
            // The two characters behind the W belong to the week, whatever
            // they are; a text that ends before them has no digits there.
            Part &target = weeksMet == 0 ? week : extraWeek;
            for (int64_t k = i + 1; k <= i + 2; ++k) target.add(k < length ? text[k] : ZvChar(0));
            ++weeksMet;
            i += 2;
            continue;
        }
        (weeksMet == 0 ? year : day).add(c);
    }
    if (weeksMet == 0) return kNotAWeekText;
    if (!year.digitsOnly || !week.digitsOnly || !extraWeek.digitsOnly || !day.digitsOnly) return kNotDigits;

    const int64_t weekNumber = twoDigits(week.text);
    int64_t yearNumber = 0;
    if (year.count == 4)
        yearNumber = twoDigits(year.text) * 100 + twoDigits(year.text + 2);
    else if (year.count > 0)
        yearNumber = twoDigits(year.text);
    if (year.count > 0 && yearNumber < 100) {
        const int64_t cutoff = wholeCutoff(*cutoffInOut);
        const int64_t c = cutoff % 100;
        yearNumber += (cutoff - c) + (yearNumber < c ? 100 : 0);
    }
    int64_t dayNumber = day.count > 0 ? twoDigits(day.text) : 0;
    if (year.count == 0) yearNumber = presentYear();

    if (dayNumber == 0) dayNumber = 1;
    const bool yearOk = (yearNumber >= kFirstYear && yearNumber <= kLastYear) ||
                        (yearNumber >= 0 && yearNumber <= kLastTwoDigitYear);
    if (!yearOk || weekNumber > kLastWeek || dayNumber > kLastDayNumber) return kOutOfRange;

    const double jan1 = yearDayToDayCount(ymdToYearDay(static_cast<double>(yearNumber), 1, 1));
    if (isMissing(jan1)) return kOutOfRange;
    const int64_t wd = static_cast<int64_t>(weekdayOf(jan1));
    int64_t shifted = weekNumber;
    int64_t base = 2;
    switch (mode) {
    case WeekMode::U:
        if (wd == 1) shifted = weekNumber - 1;
        base = 1;
        break;
    case WeekMode::W:
        if (wd == 1 || wd == 2) shifted = weekNumber - 1;
        break;
    case WeekMode::V:
        if (!(wd == 6 || wd == 7)) shifted = weekNumber - 1;
        break;
    }
    const int64_t offset = base - wd + shifted * 7 + dayNumber;
    const double days = jan1 - 1 + static_cast<double>(offset);

    double y = 0, m = 0, d = 0;
    yearDayToYmd(&y, &m, &d, dayCountToYearDay(days));
    *cutoffInOut = yearDayToDayCount(ymdToYearDay(y, m, d));
    return 0;
}

int32_t readWeekU(FormatCall *call, void *) { return readWeekEntry(call, WeekMode::U); }
int32_t readWeekV(FormatCall *call, void *) { return readWeekEntry(call, WeekMode::V); }
int32_t readWeekW(FormatCall *call, void *) { return readWeekEntry(call, WeekMode::W); }

} // namespace zv
