// The % pattern engine. All calendar work for a value happens once; the
// walk then writes each directive from those fields. Everything runs on the
// stack: a work text and an output of 512 units.
#include "datefmt/pattern.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "datefmt/calendar.hpp"
#include "datefmt/dateformat.hpp"
#include "frame/frame.hpp"
#include "locale/block.hpp"
#include "wide/wide.hpp"

namespace zv {

namespace {

// The fields of one value, worked out before the walk.
struct Fields {
    bool hasDate{};
    double day{};
    int64_t year{};
    int month{};        // 1..12
    int dayOfMonth{};   // 1..31
    int dayOfYear{};    // 1 January is 1
    int weekday = -1;   // 0 Sunday .. 6 Saturday; -1 without a date
    bool hasHour{}, hasMinute{}, hasSecond{};
    double hour{}, minute{}, second{};
    double twelve{}; // the 12-hour figure
};

// "00" to "99", each written as one copy.
constexpr auto kDigitPairs = [] {
    std::array<std::array<ZvChar, 2>, 100> pairs{};
    for (unsigned v = 0; v < 100; ++v) pairs[v] = {static_cast<ZvChar>(u'0' + v / 10), static_cast<ZvChar>(u'0' + v % 10)};
    return pairs;
}();

// Output of the walk, bounded by its 512 units.
struct Out {
    ZvChar text[kPatternUnits];
    int length = 0;
    void put(ZvChar c) {
        if (length < kPatternUnits) text[length++] = c;
    }
    void put(const ZvChar *s, int64_t n) {
        const int64_t room = kPatternUnits - length;
        const int64_t k = n < room ? n : room;
        if (k <= 0) return;
        std::memcpy(text + length, s, size_t(k) * sizeof(ZvChar));
        length += static_cast<int>(k);
    }
    void stars(int n) {
        for (int i = 0; i < n; ++i) put(u'*');
    }
    // Two digits with a leading zero; v is 0 to 99.
    void pair(unsigned v) {
        if (length > kPatternUnits - 2) return digits(v, 2, u'0');
        std::memcpy(text + length, kDigitPairs[v].data(), sizeof kDigitPairs[v]);
        length += 2;
    }
    // Four digits with leading zeros, two pairs in one copy; v is 0 to 9999.
    void quad(unsigned v) {
        if (length > kPatternUnits - 4) {
            pair(v / 100);
            return pair(v % 100);
        }
        std::memcpy(text + length, kDigitPairs[v / 100].data(), sizeof kDigitPairs[0]);
        std::memcpy(text + length + 2, kDigitPairs[v % 100].data(), sizeof kDigitPairs[0]);
        length += 4;
    }
    void digits(int64_t value, int width, ZvChar pad) {
        // Most numbers of a date are one or two digits: written at once.
        if (static_cast<uint64_t>(value) < 100 && (pad == 0 || width == 2) && length <= kPatternUnits - 2) {
            const auto v = static_cast<unsigned>(value);
            if (v >= 10 || pad == u'0') return pair(v);
            if (pad == u' ') text[length++] = u' ';
            text[length++] = static_cast<ZvChar>(u'0' + v);
            return;
        }
        ZvChar buffer[24];
        const int n = writeDigits(value, buffer, width > 20 ? 20 : width, pad);
        put(buffer, n);
    }
};

// The whole part of a double as an integer, 0 for what no integer holds.
int64_t wholeOf(double v) { return v > -9.0e18 && v < 9.0e18 ? static_cast<int64_t>(v) : 0; }

const LocaleItem *itemOf(const LocaleBlock *b, int k) { return b ? &b->items[k] : nullptr; }

// Names and marks are short: one copy of a fixed size takes them over
// without a call. It may read on into the rest of the item's array and
// write on into the free room of the output, whose units past its length
// nothing reads.
constexpr int kShortItemUnits = 16;
static_assert(kShortItemUnits <= ZV_ITEM_TEXT_UNITS);

inline void putItem(Out &out, const LocaleBlock *b, int k) {
    const LocaleItem *it = itemOf(b, k);
    if (!it) return;
    if (it->length >= 0 && it->length <= kShortItemUnits && out.length <= kPatternUnits - kShortItemUnits) {
        std::memcpy(out.text + out.length, it->text, sizeof(ZvChar) * kShortItemUnits);
        out.length += static_cast<int>(it->length);
        return;
    }
    out.put(it->text, it->length);
}

// A name in a field as wide as the longest of its list, blanks behind.
void putPadded(Out &out, const LocaleBlock *b, int first, int count, int k) {
    int64_t widest = 0;
    for (int i = first; i < first + count; ++i)
        if (const LocaleItem *it = itemOf(b, i)) widest = std::max(it->length, widest);
    const int start = out.length;
    putItem(out, b, k);
    while (out.length - start < widest) out.put(u' ');
}

// The year under the calendar of item 5.
int64_t calendarYear(int64_t year, double day, const LocaleBlock *b) {
    const LocaleItem *cal = itemOf(b, kItemCalendar);
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
            putItem(out, b, kItemDecimalSeparator);
            out.stars(decimals);
        }
        return;
    }
    double s = f.second;
    double d = std::trunc(s);
    out.digits(wholeOf(d), 2, pad);
    if (!fraction || decimals <= 0) return;
    putItem(out, b, kItemDecimalSeparator);
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

// The offset from UTC as "%z" wrote it: sign, hours, minutes.
constexpr int kOffsetUnits = 5;
struct Offset {
    bool written = false;
    ZvChar text[kOffsetUnits];
};

void putOffset(Out &out, const Fields &f, HostTimeZone *tz, Offset &offset) {
    auto orZero = [](bool has, double v) { return has ? v : 0.0; };
    const double absolute = kSecondsPerDay * orZero(f.hasDate, f.day) +
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
    out.put(offset.text, kOffsetUnits);
}

// ---- the phases of expandPattern ----------------------------------------------

// All calendar work for the value, once: a missing part leaves its fields unset.
// A day outside the range shows as a day-less value.
inline Fields dateFieldsOf(double day) {
    Fields f;
    f.hasDate = !isMissing(day) && day >= kFirstDay && day < kDayLimit;
    if (f.hasDate) {
        f.day = day;
        // The whole part by floor: inside the range the cut toward zero is
        // one too high only for a day before 1960 with a fraction.
        const auto cut = static_cast<int64_t>(day);
        const CivilDate c = civilOf(cut - (static_cast<double>(cut) > day ? 1 : 0));
        f.weekday = c.weekday;
        f.year = c.year;
        f.month = c.month;
        f.dayOfMonth = c.day;
        f.dayOfYear = c.dayOfYear;
    }
    return f;
}

Fields fieldsOf(double day, double hour, double minute, double second) {
    Fields f = dateFieldsOf(day);
    f.hasHour = !isMissing(hour);
    f.hasMinute = !isMissing(minute);
    f.hasSecond = !isMissing(second);
    f.hour = f.hasHour ? hour : 0;
    f.minute = f.hasMinute ? minute : 0;
    f.second = f.hasSecond ? second : 0;
    f.twelve = !f.hasHour ? 0 : (f.hour > 12 ? remainderOf(f.hour, 12.0) : f.hour);
    return f;
}

// The pattern with %x and %X replaced by the locale's date and time
// patterns, one level deep; every other % pair is copied whole, so "%%x"
// stays a percent sign and an x.
struct Work {
    ZvChar text[kPatternUnits];
    int length = 0;
    void keep(ZvChar c) {
        if (length < kPatternUnits) text[length++] = c;
    }
};

void expandShorthands(const ZvChar *pattern, int64_t patternLength, const LocaleBlock *block, Work &work) {
    for (int64_t i = 0; i < patternLength; ++i) {
        if (pattern[i] != u'%' || i + 1 >= patternLength) {
            work.keep(pattern[i]);
            continue;
        }
        const ZvChar next = pattern[i + 1];
        if (next == u'x' || next == u'X') {
            if (const LocaleItem *it = itemOf(block, next == u'x' ? kItemDate : kItemTime))
                for (int64_t k = 0; k < it->length; ++k) work.keep(it->text[k]);
        } else {
            work.keep(u'%');
            work.keep(next);
        }
        ++i;
    }
}

// One directive as read behind its "%".
struct Directive {
    ZvChar letter = 0;
    ZvChar upper = 0;   // the letter in upper case: what the directive is
    bool lower = false; // the lower-case meaning, by the letter or by "?"
    bool other = false; // "#": no padding, the other-form lists of names
    ZvChar pad = u'0';
};

// Reads the marks and the letter behind the "%" at work[*i - 1]; *i ends on
// the letter. False when the text ends first. A "+" switches on the
// calendar of item 5 for the rest of the pattern.
bool readDirective(const ZvChar *text, int length, int *i, bool *calendarOn, Directive *d) {
    int k = *i;
    bool forceLower = false;
    // The marks all stand below "@" in the code table; a letter right behind
    // the "%", the common case, has none.
    if (k < length && text[k] < u'@') {
        if (text[k] == u'#' || text[k] == u'0') d->other = text[k++] == u'#';
        if (k < length && text[k] >= u'1' && text[k] <= u'9') ++k; // a width, ignored
        if (k < length && text[k] == u'+') {
            *calendarOn = true;
            ++k;
        }
        if (k < length && text[k] == u'?') {
            forceLower = true;
            ++k;
        }
    }
    *i = k;
    if (k >= length) return false;
    const ZvChar letter = text[k];
    const bool isLower = letter >= u'a' && letter <= u'z';
    d->letter = letter;
    d->upper = isLower ? static_cast<ZvChar>(letter - (u'a' - u'A')) : letter;
    d->lower = isLower || forceLower;
    d->pad = d->other ? 0 : u'0';
    return true;
}

// Directives that show a part of the date, and so write stars without one.
bool needsDate(Directive d) {
    switch (d.upper) {
    case u'A': case u'F': case u'B': case u'C': case u'D': case u'E': case u'G': case u'J':
    case u'O': case u'Q': case u'U': case u'W': case u'Y':
        return true;
    case u'M': return d.lower;              // the month, not the minute
    case u'N': return d.letter != u'n';     // the month, not the days in the hours
    case u'V': return !d.lower;
    default: return false;
    }
}

// The first item of a list of names: abbreviated or full, plain or other form.
int nameList(Directive d, int abbr, int abbrOther, int full, int fullOther) {
    return d.lower ? (d.other ? abbrOther : abbr) : (d.other ? fullOther : full);
}
int weekdayList(Directive d) {
    return nameList(d, kItemWeekdayAbbr, kItemWeekdayAbbrOther, kItemWeekdayFull, kItemWeekdayFullOther);
}

// What the walk carries from one directive to the next.
struct Walk {
    // The output is written as the walk goes; nothing is cleared first.
    Walk(const Fields &fields, const LocaleBlock *b, int d, HostTimeZone *zone)
        : f(fields), block(b), decimals(d), timeZone(zone), shownYear(fields.year) {}

    const Fields &f;
    const LocaleBlock *block;
    int decimals;
    HostTimeZone *timeZone;
    Out out;
    Offset offset;
    bool calendarOn = false;
    bool hourIs24 = false; // a "K" at hour 0 shows 24 for the rest of the pattern
    int64_t shownYear;     // the + mark changes it for the Y that follow
};

void putHour(Walk &w, ZvChar pad) {
    if (!w.f.hasHour) {
        w.out.stars(2);
        return;
    }
    const double h = w.hourIs24 ? 24 : w.f.hour;
    if (h >= 100) putLongHour(w.out, wholeOf(h));
    else w.out.digits(wholeOf(h), 2, pad);
}

void putMinute(Walk &w, ZvChar pad) {
    if (w.f.hasMinute) w.out.digits(wholeOf(w.f.minute), 2, pad);
    else w.out.stars(2);
}

// The year in two steps of two digits, always with zeros, so its last four;
// or its last two.
// The calendar's range and every calendar of item 5 keep it positive.
void putYear(Walk &w, Directive d) {
    if (w.calendarOn) w.shownYear = calendarYear(w.shownYear, w.f.day, w.block);
    const auto y = static_cast<uint32_t>(w.shownYear);
    if (d.lower) w.out.digits(y % 100, 2, d.pad);
    else w.out.quad(y % 10000);
}

// The year of the week date, as the year is written.
void putWeekYear(Walk &w, Directive d) {
    double y, week, n;
    weekOfDate(w.f.day, WeekMode::V, &y, &week, &n);
    const int64_t wy = isMissing(y) ? w.f.year : wholeOf(y);
    if (!d.lower) w.out.digits((wy / 100) % 100, 2, u'0');
    w.out.digits(wy % 100, 2, u'0');
}

void putWeek(Walk &w, Directive d, WeekMode mode) {
    double y, week, n;
    weekOfDate(w.f.day, mode, &y, &week, &n);
    w.out.digits(isMissing(week) ? 0 : wholeOf(week), 2, d.pad);
}

// Writes one directive. False: the letter is no directive here.
bool writeDirective(Walk &w, Directive d) {
    const Fields &f = w.f;
    Out &out = w.out;
    const ZvChar pad = d.pad;
    switch (d.upper) {
    case u'%': out.put(u'%'); break;
    case u'A': putItem(out, w.block, weekdayList(d) + f.weekday); break;
    case u'F': putPadded(out, w.block, weekdayList(d), kWeekdayNames, weekdayList(d) + f.weekday); break;
    case u'B': {
        const int first = nameList(d, kItemMonthAbbr, kItemMonthAbbrOther, kItemMonthFull, kItemMonthFullOther);
        putItem(out, w.block, first + f.month - 1);
        break;
    }
    case u'C': {
        const int first = d.other ? kItemMonthFullOther : kItemMonthFull;
        putPadded(out, w.block, first, kMonthNames, first + f.month - 1);
        break;
    }
    case u'D': out.digits(f.dayOfMonth, 2, pad); break;
    case u'E': out.digits(f.dayOfMonth, 2, d.lower ? u' ' : 0); break;
    case u'G': putWeekYear(w, d); break;
    case u'H':
    case u'K':
        if (d.upper == u'K' && f.hasHour && f.hour == 0) w.hourIs24 = true;
        putHour(w, pad);
        break;
    case u'I': out.digits(f.twelve == 0 ? 12 : wholeOf(f.twelve), 2, pad); break;
    case u'L': out.digits(wholeOf(f.twelve), 2, pad); break;
    case u'J': out.digits(f.dayOfYear, 3, pad); break;
    case u'M':
        if (d.lower) out.digits(f.month, 2, pad);
        else putMinute(w, pad);
        break;
    case u'N':
        if (d.letter != u'n') out.digits(f.month, 2, pad);
        else if (!f.hasHour) out.stars(2);
        else out.digits(wholeOf(f.hour / 24), 0, 0);
        break;
    case u'O': out.digits(f.month, 2, d.lower ? u' ' : 0); break;
    case u'P':
        if (!f.hasHour) out.stars(2);
        else putItem(out, w.block, std::fmod(f.hour, 24.0) < 12 ? kItemAm : kItemPm);
        break;
    case u'Q': {
        const int first =
            nameList(d, kItemQuarterAbbr, kItemQuarterAbbrOther, kItemQuarterFull, kItemQuarterFullOther);
        putItem(out, w.block, first + (f.month - 1) / 3);
        break;
    }
    case u'S': putSeconds(out, f, pad, w.decimals, d.letter != u's', w.block); break;
    case u'T':
        if (d.lower) break;
        putHour(w, pad);
        out.put(u':');
        putMinute(w, pad);
        out.put(u':');
        putSeconds(out, f, pad, 0, false, w.block);
        break;
    case u'U':
        if (d.lower) out.digits(f.weekday == 0 ? 7 : f.weekday, 1, pad);
        else out.digits(sundayWeek(f), 2, pad);
        break;
    case u'V':
        if (!d.lower) putWeek(w, d, WeekMode::V);
        break;
    case u'W':
        if (d.lower) out.digits(f.weekday, 1, pad);
        else putWeek(w, d, WeekMode::W);
        break;
    case u'Y': putYear(w, d); break;
    case u'Z':
        if (d.lower) putOffset(out, f, w.timeZone, w.offset);
        else out.put(u"XST", 3);
        break;
    default: return false;
    }
    return true;
}

// What a walk of the pattern as it stands answers when it meets a
// shorthand that the expansion replaces.
constexpr int32_t kShorthandMet = 2;

// An x or X right behind a "%" in the text as it stands, at i: a %x or %X
// that the expansion would replace, or a sign that the pairs of the
// expansion could read the text otherwise than the walk.
bool shorthandAt(const ZvChar *text, int i) { return (text[i] | 0x20) == u'x' && i > 0 && text[i - 1] == u'%'; }

// Writes the text's plain units and directives into the walk's output:
// kPatternFits, kPatternInvalid, or with `asItStands` kShorthandMet.
int32_t walkText(Walk &w, const ZvChar *text, int length, bool asItStands) {
    const bool hasDate = w.f.hasDate;
    for (int i = 0; i < length; ++i) {
        if (text[i] != u'%') {
            if (asItStands && shorthandAt(text, i)) return kShorthandMet;
            w.out.put(text[i]);
            continue;
        }
        ++i;
        Directive d;
        if (!readDirective(text, length, &i, &w.calendarOn, &d)) break; // a directive without its letter writes nothing
        if (!hasDate && needsDate(d)) {
            w.out.stars(2);
            continue;
        }
        if (!writeDirective(w, d)) return asItStands && shorthandAt(text, i) ? kShorthandMet : kPatternInvalid;
    }
    return kPatternFits;
}

// Puts the text in the blank field. A text too long for it keeps its
// beginning, but a zone offset written in it stays visible at the end.
int32_t fillOutput(const Walk &w, ZvChar *output, int *fieldWidth) {
    const bool rightJustified = *fieldWidth < 0;
    const int width = rightJustified ? -*fieldWidth : *fieldWidth;
    const Out &out = w.out;
    if (out.length <= width) {
        // Each place of the field is written once: the text, blanks beside it.
        const int blanks = width - out.length;
        ZvChar *text = output + (rightJustified ? blanks : 0);
        copyWide(text, out.text, out.length);
        fillWide(rightJustified ? output : text + out.length, u' ', blanks);
        *fieldWidth = out.length;
        return kPatternFits;
    }
    std::memcpy(output, out.text, size_t(width) * sizeof(ZvChar));
    constexpr int kOffsetRoom = 1 + kOffsetUnits; // a blank and the offset
    if (w.offset.written && width >= kOffsetRoom) {
        output[width - kOffsetRoom] = u' ';
        std::memcpy(output + width - kOffsetRoom + 1, w.offset.text, sizeof w.offset.text);
    }
    return kPatternTooLong;
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
    // Two digits at a time from the right, then the odd one left over.
    int i = width;
    for (; i >= 2; i -= 2) {
        std::memcpy(target + i - 2, kDigitPairs[v % 100].data(), sizeof kDigitPairs[0]);
        v /= 100;
    }
    if (i == 1) target[0] = static_cast<ZvChar>(u'0' + v % 10);
    if (pad == u' ')
        for (int i = 0; i < width - 1 && target[i] == u'0'; ++i) target[i] = u' ';
    return width;
}

namespace {

int32_t expandFields(const Fields &f, const ZvChar *pattern, int64_t patternLength, ZvChar *output,
                     int *fieldWidth, int decimals, const LocaleBlock *block, HostTimeZone *timeZone) {
    // Most patterns hold no %x or %X, and the expansion would copy them
    // unchanged: they are walked as they stand, until the walk meets an x
    // behind a "%" and starts over on the expanded text.
    Work work;
    const ZvChar *text = pattern;
    int length = static_cast<int>(patternLength);
    bool asItStands = patternLength <= kPatternUnits;
    for (;;) {
        if (!asItStands) {
            expandShorthands(pattern, patternLength, block, work);
            text = work.text;
            length = work.length;
        }
        Walk w(f, block, decimals, timeZone);
        const int32_t status = walkText(w, text, length, asItStands);
        if (status != kShorthandMet) return status == kPatternFits ? fillOutput(w, output, fieldWidth) : status;
        asItStands = false;
    }
}

} // namespace

int32_t expandPattern(double day, double hour, double minute, double second, const ZvChar *pattern,
                      int64_t patternLength, ZvChar *output, int *fieldWidth, int decimals,
                      const LocaleBlock *block, HostTimeZone *timeZone) {
    return expandFields(fieldsOf(day, hour, minute, second), pattern, patternLength, output, fieldWidth,
                        decimals, block, timeZone);
}

namespace {
// The body of writeDatePattern, inline so that a format's try takes it in.
inline int32_t datePattern(ZvChar *output, int *fieldWidth, const ZvChar *pattern, int64_t patternLength,
                           double dayCount, const LocaleBlock *block) {
    if (patternLength == 0) return kPatternEmpty;
    if (isMissing(dayCount) || !(dayCount >= kFirstDay && dayCount < kDayLimit)) return kPatternNoValue;
    return expandFields(dateFieldsOf(dayCount), pattern, patternLength, output, fieldWidth, 0, block, nullptr);
}
} // namespace

int32_t writeDatePattern(ZvChar *output, int *fieldWidth, const ZvChar *pattern, int64_t patternLength,
                         double dayCount, const LocaleBlock *block) {
    return datePattern(output, fieldWidth, pattern, patternLength, dayCount, block);
}

namespace {
double roundedToDecimals(double value, int decimals) {
    double rounded = value;
    const int d = std::max(decimals, 0);
    roundToUnit(value, 1.0 / (d <= kLastExactPowerOfTen ? kPowersOfTen[d] : std::pow(10.0, d)), &rounded);
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
    const double hour = std::floor(std::fabs(r / kSecondsPerHour));
    return expandPattern(missingValue(), hour, minuteOf(r), secondOf(r), pattern, patternLength, output,
                         fieldWidth, decimals, block, nullptr);
}

// The try of a date format: the engine writes straight into the call's
// field, here beside the entries so that they inline into it.
int32_t runPattern(const DateCall &d, const ZvChar *pattern, int64_t patternLength, int k, int *fieldWidth) {
    FormatCall *call = d.call;
    // A text never passes 512 units, so a wider field is the same as one of 512.
    int w = *fieldWidth > kPatternUnits ? kPatternUnits : *fieldWidth;
    const int field = w;
    // The engine writes its field only when it answers 0 or 1, so a field
    // that the call's target holds takes the text in place; else a scratch
    // field is copied over.
    const int64_t room = fieldUnits(call);
    const bool inPlace = call->output && field >= 0 && field <= room;
    ZvChar scratch[kPatternUnits];
    ZvChar *target = inPlace ? static_cast<ZvChar *>(call->output) : scratch;
    const LocaleBlock *block = call->localeBlock;
    int32_t status;
    switch (d.kind) {
    case ValueKind::Date:
        status = datePattern(target, &w, pattern, patternLength, d.value, block);
        break;
    case ValueKind::Time:
        status = writeTimePattern(target, &w, pattern, patternLength, d.value, k, block);
        break;
    default:
        status = writeDatetimePattern(target, &w, pattern, patternLength, d.value, k, block,
                                      call->services ? call->services->timeZone : nullptr);
        break;
    }
    if (status != kPatternFits && status != kPatternTooLong) return status;
    if (inPlace) {
        if (room > field) fillWide(target + field, u' ', room - field);
    } else {
        fillField(call, u' ');
        // On success the text is w long; a text too long fills the whole field.
        putAt(call, 0, scratch, status == kPatternFits ? w : field);
    }
    if (status == kPatternFits) *fieldWidth = w;
    return status;
}

} // namespace zv
