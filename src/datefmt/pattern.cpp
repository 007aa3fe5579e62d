// The % pattern engine. All calendar work for a value happens once; the
// walk then writes each directive from those fields. Everything runs on the
// stack: a work text and an output of 512 units.
#include "datefmt/pattern.hpp"

#include <cmath>
#include <cstring>

#include "datefmt/calendar.hpp"
#include "frame/frame.hpp"
#include "wide/wide.hpp"

namespace zv {

namespace {

// The fields of one value, worked out before the walk.
struct Fields {
    bool hasDate = false;
    double day = 0;
    int64_t year = 0;
    int month = 0;      // 1..12
    int dayOfMonth = 0; // 1..31
    int weekday = -1;   // 0 Sunday .. 6 Saturday; -1 without a date
    bool hasHour = false, hasMinute = false, hasSecond = false;
    double hour = 0, minute = 0, second = 0;
    double twelve = 0; // the 12-hour figure
};

// Output of the walk, bounded by its 512 units.
struct Out {
    ZvChar text[kPatternUnits];
    int length = 0;
    void put(ZvChar c) {
        if (length < kPatternUnits) text[length++] = c;
    }
    void put(const ZvChar *s, int64_t n) {
        for (int64_t i = 0; i < n; ++i) put(s[i]);
    }
    void stars(int n) {
        for (int i = 0; i < n; ++i) put(u'*');
    }
    void digits(int64_t value, int width, ZvChar pad) {
        ZvChar buffer[24];
        const int n = writeDigits(value, buffer, width > 20 ? 20 : width, pad);
        put(buffer, n);
    }
};

// The whole part of a double as an integer, 0 for what no integer holds.
int64_t wholeOf(double v) { return v > -9.0e18 && v < 9.0e18 ? static_cast<int64_t>(v) : 0; }

const LocaleItem *itemOf(const LocaleBlock *b, int k) { return b ? &b->items[k] : nullptr; }

void putItem(Out &out, const LocaleBlock *b, int k) {
    if (const LocaleItem *it = itemOf(b, k)) out.put(it->text, it->length);
}

// A name in a field as wide as the longest of its list, blanks behind.
void putPadded(Out &out, const LocaleBlock *b, int first, int count, int k) {
    int64_t widest = 0;
    for (int i = first; i < first + count; ++i)
        if (const LocaleItem *it = itemOf(b, i)) widest = it->length > widest ? it->length : widest;
    const int start = out.length;
    putItem(out, b, k);
    while (out.length - start < widest) out.put(u' ');
}

// The year under the calendar of item 5.
int64_t calendarYear(int64_t year, double day, const LocaleBlock *b) {
    const LocaleItem *cal = itemOf(b, 5);
    if (!cal || cal->length != 2) return year;
    const ZvChar a = cal->text[0], c = cal->text[1];
    if (a == u'T' && c == u'W') {
        const int64_t r = year - 1911;
        return r <= 0 ? 1 - r : r;
    }
    if (a == u'T' && c == u'H') return year + 543;
    if (a == u'J' && c == u'P') {
        struct Era {
            double start;
            int64_t firstYear;
        };
        static constexpr Era kEras[] = {{10600, 1989}, {-12060, 1926}, {-17321, 1912}, {-33506, 1868}};
        for (const Era &e : kEras)
            if (day >= e.start) return 1 + year - e.firstYear;
    }
    return year;
}

// Week of the year with weeks that start on Sunday.
int64_t sundayWeek(const Fields &f) {
    const double j = yearDayToDayCount(static_cast<double>(f.year * 1000 + 1));
    if (isMissing(j)) return 0;
    const int w = static_cast<int>(weekdayOf(j));
    const double firstSunday = w == 1 ? j : j + 8 - w;
    const double date = std::floor(f.day);
    return date >= firstSunday ? wholeOf((date - firstSunday) / 7) + 1 : 0;
}

// An hour of 100 or more goes through the host's formatter.
void putLongHour(Out &out, int64_t hour) {
    ZvChar buffer[32];
    int64_t produced = 0;
    const int64_t values[1] = {hour};
    if (formatWide(nullptr, u"%i", 2, buffer, 32, &produced, values) == 0 && produced > 0)
        out.put(buffer, produced);
    else
        out.digits(hour, 0, 0);
}

void putSeconds(Out &out, const Fields &f, ZvChar pad, int decimals, bool fraction, const LocaleBlock *b) {
    if (!f.hasSecond) {
        out.stars(2);
        if (fraction && decimals > 0) {
            putItem(out, b, 172);
            out.stars(decimals);
        }
        return;
    }
    double s = f.second;
    double d = std::trunc(s);
    out.digits(wholeOf(d), 2, pad);
    if (!fraction || decimals <= 0) return;
    putItem(out, b, 172);
    for (int k = 1; k <= decimals && out.length < kPatternUnits; ++k) {
        s = 10 * (s - d);
        d = std::trunc(s);
        if (k == decimals && std::trunc(10 * (s - d)) >= 5 && d < 9) {
            s += 1;
            d = std::trunc(s);
        }
        out.put(static_cast<ZvChar>(u'0' + static_cast<int>(d)));
    }
}

struct Offset {
    bool written = false;
    ZvChar text[5];
};

void putOffset(Out &out, const Fields &f, HostTimeZone *tz, Offset &offset) {
    auto orZero = [](bool has, double v) { return has ? v : 0.0; };
    const double absolute = 86400.0 * orZero(f.hasDate, f.day) +
                            60.0 * (60.0 * orZero(f.hasHour, f.hour) + orZero(f.hasMinute, f.minute)) +
                            orZero(f.hasSecond, f.second);
    double seconds = tz ? tz->ops->timeZoneOffset(tz, absolute, 0) : 0.0;
    if (!std::isfinite(seconds)) seconds = 0;
    const int64_t whole = wholeOf(seconds);
    const int64_t a = whole < 0 ? -whole : whole;
    offset.text[0] = whole < 0 ? u'-' : u'+';
    writeDigits((a / 3600) % 100, offset.text + 1, 2, u'0');
    writeDigits((a % 3600) / 60, offset.text + 3, 2, u'0');
    offset.written = true;
    out.put(offset.text, 5);
}

} // namespace

int writeDigits(int64_t value, ZvChar *target, int width, ZvChar pad) {
    uint64_t v = value < 0 ? uint64_t(0) - uint64_t(value) : uint64_t(value);
    if (pad == 0) {
        ZvChar reversed[24];
        int n = 0;
        do {
            reversed[n++] = static_cast<ZvChar>(u'0' + v % 10);
            v /= 10;
        } while (v > 0);
        for (int i = 0; i < n; ++i) target[i] = reversed[n - 1 - i];
        return n;
    }
    for (int i = width - 1; i >= 0; --i) {
        target[i] = static_cast<ZvChar>(u'0' + v % 10);
        v /= 10;
    }
    if (pad == u' ')
        for (int i = 0; i < width - 1 && target[i] == u'0'; ++i) target[i] = u' ';
    return width;
}

int32_t expandPattern(double day, double hour, double minute, double second, const ZvChar *pattern,
                      int64_t patternLength, ZvChar *output, int *fieldWidth, int decimals,
                      const LocaleBlock *block, HostTimeZone *timeZone) {
    const bool rightJustified = *fieldWidth < 0;
    const int width = rightJustified ? -*fieldWidth : *fieldWidth;

    Fields f;
    f.hasDate = !isMissing(day);
    if (f.hasDate) {
        f.day = day;
        const double weekday = weekdayOf(day);
        double y, m, d;
        yearDayToYmd(&y, &m, &d, dayCountToYearDay(day));
        if (isMissing(y) || isMissing(weekday)) {
            f.hasDate = false;
        } else {
            f.weekday = static_cast<int>(weekday) - 1;
            f.year = wholeOf(y);
            f.month = static_cast<int>(m);
            f.dayOfMonth = static_cast<int>(d);
        }
    }
    f.hasHour = !isMissing(hour);
    f.hasMinute = !isMissing(minute);
    f.hasSecond = !isMissing(second);
    f.hour = f.hasHour ? hour : 0;
    f.minute = f.hasMinute ? minute : 0;
    f.second = f.hasSecond ? second : 0;
    f.twelve = !f.hasHour ? 0 : (f.hour > 12 ? std::fmod(f.hour, 12.0) : f.hour);

    // %x and %X stand for items 28 and 53, one level deep.
    ZvChar work[kPatternUnits];
    int workLength = 0;
    auto keep = [&](ZvChar c) {
        if (workLength < kPatternUnits) work[workLength++] = c;
    };
    for (int64_t i = 0; i < patternLength; ++i) {
        if (pattern[i] == u'%' && i + 1 < patternLength) {
            const ZvChar next = pattern[i + 1];
            if (next == u'x' || next == u'X') {
                if (const LocaleItem *it = itemOf(block, next == u'x' ? 28 : 53))
                    for (int64_t k = 0; k < it->length; ++k) keep(it->text[k]);
            } else {
                keep(u'%');
                keep(next);
            }
            ++i;
        } else {
            keep(pattern[i]);
        }
    }

    Out out;
    Offset offset;
    bool calendarOn = false;
    bool hourIs24 = false;
    int64_t shownYear = f.year; // the + mark changes it for the Y that follow
    auto putHour = [&](ZvChar pad) {
        if (!f.hasHour) {
            out.stars(2);
            return;
        }
        const double h = hourIs24 ? 24 : f.hour;
        if (h >= 100) putLongHour(out, wholeOf(h));
        else out.digits(wholeOf(h), 2, pad);
    };
    for (int i = 0; i < workLength; ++i) {
        if (work[i] != u'%') {
            out.put(work[i]);
            continue;
        }
        ++i;
        bool other = false;
        if (i < workLength && (work[i] == u'#' || work[i] == u'0')) other = work[i++] == u'#';
        if (i < workLength && work[i] >= u'1' && work[i] <= u'9') ++i;
        if (i < workLength && work[i] == u'+') {
            calendarOn = true;
            ++i;
        }
        bool forceLower = false;
        if (i < workLength && work[i] == u'?') {
            forceLower = true;
            ++i;
        }
        if (i >= workLength) break; // a directive without its letter writes nothing
        const ZvChar letter = work[i];
        const ZvChar pad = other ? 0 : u'0';
        const bool lower = (letter >= u'a' && letter <= u'z') || forceLower;
        const ZvChar upper = (letter >= u'a' && letter <= u'z') ? static_cast<ZvChar>(letter - 32) : letter;

        // Date directives in a call without a date.
        const bool needsDate = upper == u'A' || upper == u'F' || upper == u'B' || upper == u'C' ||
                               upper == u'D' || upper == u'E' || upper == u'G' || upper == u'J' ||
                               (upper == u'M' && lower) || (upper == u'N' && letter != u'n') ||
                               upper == u'O' || upper == u'Q' || upper == u'U' ||
                               (upper == u'V' && !lower) || upper == u'W' || upper == u'Y';
        if (needsDate && !f.hasDate) {
            out.stars(2);
            continue;
        }

        switch (upper) {
        case u'%':
            out.put(u'%');
            break;
        case u'A':
            putItem(out, block, (lower ? (other ? 121 : 107) : (other ? 128 : 114)) + f.weekday);
            break;
        case u'F': {
            const int first = lower ? (other ? 121 : 107) : (other ? 128 : 114);
            putPadded(out, block, first, 7, first + f.weekday);
            break;
        }
        case u'B':
            putItem(out, block, (lower ? (other ? 83 : 59) : (other ? 95 : 71)) + f.month - 1);
            break;
        case u'C': {
            const int first = other ? 95 : 71;
            putPadded(out, block, first, 12, first + f.month - 1);
            break;
        }
        case u'D':
            out.digits(f.dayOfMonth, 2, pad);
            break;
        case u'E':
            out.digits(f.dayOfMonth, 2, lower ? u' ' : 0);
            break;
        case u'G': {
            double y, w, n;
            weekOfDate(f.day, u"V", &y, &w, &n);
            const int64_t wy = isMissing(y) ? f.year : wholeOf(y);
            if (!lower) out.digits((wy / 100) % 100, 2, u'0');
            out.digits(wy % 100, 2, u'0');
            break;
        }
        case u'H':
        case u'K':
            if (upper == u'K' && f.hasHour && f.hour == 0) hourIs24 = true;
            putHour(pad);
            break;
        case u'I':
            out.digits(f.twelve == 0 ? 12 : wholeOf(f.twelve), 2, pad);
            break;
        case u'L':
            out.digits(wholeOf(f.twelve), 2, pad);
            break;
        case u'J':
            out.digits(wholeOf(std::fmod(dayCountToYearDay(f.day), 1000.0)), 3, pad);
            break;
        case u'M':
            if (lower) out.digits(f.month, 2, pad);
            else if (!f.hasMinute) out.stars(2);
            else out.digits(wholeOf(f.minute), 2, pad);
            break;
        case u'N':
            if (letter == u'n') {
                if (!f.hasHour) out.stars(2);
                else out.digits(wholeOf(f.hour / 24), 0, 0);
            } else {
                out.digits(f.month, 2, pad);
            }
            break;
        case u'O':
            out.digits(f.month, 2, lower ? u' ' : 0);
            break;
        case u'P':
            if (!f.hasHour) out.stars(2);
            else putItem(out, block, std::fmod(f.hour, 24.0) < 12 ? 151 : 152);
            break;
        case u'Q': {
            const int quarter = (f.month - 1) / 3;
            putItem(out, block, (lower ? (other ? 143 : 135) : (other ? 147 : 139)) + quarter);
            break;
        }
        case u'S':
            putSeconds(out, f, pad, decimals, letter != u's', block);
            break;
        case u'T':
            if (lower) break;
            putHour(pad);
            out.put(u':');
            if (f.hasMinute) out.digits(wholeOf(f.minute), 2, pad);
            else out.stars(2);
            out.put(u':');
            putSeconds(out, f, pad, 0, false, block);
            break;
        case u'U':
            if (lower) out.digits(f.weekday == 0 ? 7 : f.weekday, 1, pad);
            else out.digits(sundayWeek(f), 2, pad);
            break;
        case u'V': {
            if (lower) break;
            double y, w, n;
            weekOfDate(f.day, u"V", &y, &w, &n);
            out.digits(isMissing(w) ? 0 : wholeOf(w), 2, pad);
            break;
        }
        case u'W': {
            if (lower) {
                out.digits(f.weekday, 1, pad);
                break;
            }
            double y, w, n;
            weekOfDate(f.day, u"W", &y, &w, &n);
            out.digits(isMissing(w) ? 0 : wholeOf(w), 2, pad);
            break;
        }
        case u'Y': {
            if (calendarOn) shownYear = calendarYear(shownYear, f.day, block);
            if (lower) {
                out.digits(shownYear % 100, 2, pad);
            } else {
                out.digits((shownYear / 100) % 100, 2, u'0');
                out.digits(shownYear % 100, 2, u'0');
            }
            break;
        }
        case u'Z':
            if (lower) putOffset(out, f, timeZone, offset);
            else out.put(u"XST", 3);
            break;
        default:
            return kPatternInvalid;
        }
    }

    fillWide(output, u' ', width);
    if (out.length <= width) {
        std::memcpy(output + (rightJustified ? width - out.length : 0), out.text,
                    size_t(out.length) * sizeof(ZvChar));
        *fieldWidth = out.length;
        return kPatternFits;
    }
    std::memcpy(output, out.text, size_t(width) * sizeof(ZvChar));
    if (offset.written && width >= 6) {
        output[width - 6] = u' ';
        std::memcpy(output + width - 5, offset.text, sizeof offset.text);
    }
    return kPatternTooLong;
}

int32_t writeDatePattern(ZvChar *output, int *fieldWidth, const ZvChar *pattern, int64_t patternLength,
                         double dayCount, const LocaleBlock *block) {
    if (patternLength == 0) return kPatternEmpty;
    if (isMissing(dayCount) || !(dayCount >= kFirstDay && dayCount < kDayLimit)) return kPatternNoValue;
    const double m = missingValue();
    return expandPattern(dayCount, m, m, m, pattern, patternLength, output, fieldWidth, 0, block, nullptr);
}

namespace {
double roundedToDecimals(double value, int decimals) {
    double rounded = value;
    const int d = decimals < 0 ? 0 : decimals;
    roundToUnit(value, 1.0 / std::pow(10.0, d), &rounded);
    return rounded;
}
} // namespace

int32_t writeDatetimePattern(ZvChar *output, int *fieldWidth, const ZvChar *pattern,
                             int64_t patternLength, double secondCount, int decimals,
                             const LocaleBlock *block, HostTimeZone *timeZone) {
    if (patternLength == 0) return kPatternEmpty;
    if (isMissing(secondCount) || !(secondCount >= kFirstSecond && secondCount < kSecondLimit))
        return kPatternNoValue;
    const double r = roundedToDecimals(secondCount, decimals);
    return expandPattern(dayOf(r), hourOf(r), minuteOf(r), secondOf(r), pattern, patternLength, output,
                         fieldWidth, decimals, block, timeZone);
}

int32_t writeTimePattern(ZvChar *output, int *fieldWidth, const ZvChar *pattern, int64_t patternLength,
                         double seconds, int decimals, const LocaleBlock *block) {
    if (patternLength == 0) return kPatternEmpty;
    if (isMissing(seconds) || !(seconds >= 0)) return kPatternNoValue;
    const double r = roundedToDecimals(seconds, decimals);
    const double hour = std::floor(std::fabs(r / 3600.0));
    return expandPattern(missingValue(), hour, minuteOf(r), secondOf(r), pattern, patternLength, output,
                         fieldWidth, decimals, block, nullptr);
}

} // namespace zv
