// The reader of the fixed date pattern table: locale-free patterns, English
// month and weekday names, fields read strictly from left to right.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "datefmt/calendar.hpp"
#include "dateread/dateread.hpp"
#include "frame/frame.hpp"
#include "locale/block.hpp"
#include "wide/ascii.hpp"
#include "wide/wide.hpp"

namespace zv {

namespace {

constexpr int kNormalisedRoom = 64;
// A run of digits shorter than this may be padded; the day-month-year rows
// take eight characters apart.
constexpr int kShortDigitRun = 8;

constexpr int kMaxCountedDigits = 19;

const ZvChar kWeekdayWords[] = u"SUN MON TUE WED THU FRI SAT ";
const ZvChar kMonthWords[] = u"JAN FEB MAR APR MAY JUN JUL AUG SEP OCT NOV DEC ";

int64_t zLength(const ZvChar *s) {
    int64_t n = 0;
    if (s)
        while (s[n] != 0) ++n;
    return n;
}

bool sameText(const ZvChar *a, int64_t aLength, const ZvChar *b) {
    const int64_t bLength = zLength(b);
    if (aLength != bLength) return false;
    for (int64_t i = 0; i < aLength; ++i)
        if (a[i] != b[i]) return false;
    return true;
}


bool isRunStop(ZvChar c) {
    return c == u' ' || isAsciiDigit(c) || c == u',' || c == u'.';
}

// The place, 1-based, of the first three letters of a word in a list of
// four-character entries, or 0.
int placeInList(const ZvChar *word, int64_t length, const ZvChar *list, int entries) {
    if (length < 3) return 0;
    ZvChar head[3];
    for (int i = 0; i < 3; ++i) head[i] = foldUpperChar(word[i]);
    for (int k = 0; k < entries; ++k)
        if (list[4 * k] == head[0] && list[4 * k + 1] == head[1] && list[4 * k + 2] == head[2])
            return k + 1;
    return 0;
}

// Left-justifies `text` over `length` characters and answers the length of
// what is left without trailing blanks.
int64_t leftJustified(ZvChar *text, int64_t length) {
    int64_t lead = 0;
    while (lead < length && text[lead] == u' ') ++lead;
    if (lead > 0) {
        for (int64_t i = lead; i < length; ++i) text[i - lead] = text[i];
        for (int64_t i = length - lead; i < length; ++i) text[i] = u' ';
    }
    int64_t n = length;
    while (n > 0 && text[n - 1] == u' ') --n;
    return n;
}

// Fields of one row's try, by the letters y m d H M S q j w.
enum Field { kYear, kMonth, kDay, kHour, kMinute, kSecond, kQuarter, kYearDay, kWeekday, kFieldCount };

struct CallState {
    double fraction = 0.0;
    double zoneOffset = 0.0;
    int zoneSign = 0;
    bool zoneSeen = false;
    int64_t savedHour = -1;
    int64_t savedMinute = -1;
    bool allDigits = false;
};

struct RowTry {
    const ZvChar *text;
    int64_t length;
    int64_t pos = 0;
    int64_t field[kFieldCount];
    ZvChar amPm = u' ';
    CallState *call;
};

// A run of digits, or exactly `width` of them. False: the row is refused.
bool readNumber(RowTry &r, int width, int64_t *value, int *count) {
    uint64_t v = 0;
    int n = 0;
    while (r.pos < r.length && isAsciiDigit(r.text[r.pos]) && (width == 0 || n < width)) {
        if (n < kMaxCountedDigits) v = v * 10 + static_cast<uint64_t>(r.text[r.pos] - u'0');
        ++n;
        ++r.pos;
    }
    if (n == 0 || (width != 0 && n < width)) return false;
    *value = v > static_cast<uint64_t>(INT64_MAX) ? INT64_MAX : static_cast<int64_t>(v);
    if (count) *count = n;
    return true;
}

// A word of ASCII letters. *blank: the word began with a blank, which was
// taken as the one-character token. False: not even one character.
bool readWord(RowTry &r, int64_t *start, int64_t *length, bool *blank) {
    *blank = false;
    if (r.pos < r.length && r.text[r.pos] == u' ') {
        *start = r.pos++;
        *length = 1;
        *blank = true;
        return true;
    }
    *start = r.pos;
    while (r.pos < r.length && isAsciiLetter(r.text[r.pos])) ++r.pos;
    *length = r.pos - *start;
    return *length > 0;
}

// A run of anything but blank, digit, comma and point; with `stopAtLetter`
// also no letter.
bool readRun(RowTry &r, bool stopAtLetter, int64_t *start, int64_t *length, bool *blank) {
    *blank = false;
    if (r.pos < r.length && r.text[r.pos] == u' ') {
        *start = r.pos++;
        *length = 1;
        *blank = true;
        return true;
    }
    *start = r.pos;
    while (r.pos < r.length && !isRunStop(r.text[r.pos]) &&
           !(stopAtLetter && isLetter(r.text[r.pos])))
        ++r.pos;
    *length = r.pos - *start;
    return *length > 0;
}

void storeField(RowTry &r, Field f, int64_t value) {
    if (r.call->zoneSeen) {
        if (f == kHour) r.call->savedHour = r.field[kHour];
        if (f == kMinute) r.call->savedMinute = r.field[kMinute];
    }
    r.field[f] = value;
}

bool isSeparator(ZvChar c) { return c == u'/' || c == u'-' || c == u':' || c == u' '; }

// A directive's word, as tryRow cut it from the pattern.
struct Word {
    const ZvChar *w;
    int length;
    bool is(const char16_t *s) const {
        int n = 0;
        while (s[n]) ++n;
        if (n != length) return false;
        for (int i = 0; i < n; ++i)
            if (w[i] != s[i]) return false;
        return true;
    }
};

// The directives that read digits: how many (0 for a run of any length) and
// into which field. With `fixedWhenAllDigits` the width holds only for a
// text of digits throughout, and a run is read otherwise.
struct NumberRule {
    const char16_t *word;
    int width;
    bool fixedWhenAllDigits;
    Field field; // kFieldCount: read and dropped
};

constexpr NumberRule kNumberRules[] = {
    {u"m", 2, true, kMonth},      {u"d", 2, true, kDay},        {u"y", 2, true, kYear},
    {u"H", 2, true, kHour},       {u"M", 2, true, kMinute},     {u"S", 2, true, kSecond},
    {u"j", 3, true, kYearDay},    {u"0j", 3, true, kYearDay},   {u"0m", 2, false, kMonth},
    {u"0d", 2, false, kDay},      {u"0y", 2, false, kYear},     {u"0H", 2, false, kHour},
    {u"0M", 2, false, kMinute},   {u"0S", 2, false, kSecond},   {u"0i", 2, false, kHour},
    {u"i", 0, false, kHour},      {u"I", 0, false, kHour},      {u"Y", 4, false, kYear},
    {u"xY", 0, false, kYear},     {u"xy", 0, false, kYear},     {u"q", 1, false, kQuarter},
    {u"w", 1, false, kWeekday},   {u"e", 0, false, kFieldCount},
};

const NumberRule *numberRuleOf(const Word &word) {
    for (const NumberRule &rule : kNumberRules)
        if (word.is(rule.word)) return &rule;
    return nullptr;
}

// A quarter in Roman figures: I, II, III, IV or IIII in either case; 0 for
// anything else.
int64_t romanQuarter(const ZvChar *text, int64_t length) {
    if (length > 4) return 0;
    ZvChar up[4];
    for (int64_t i = 0; i < length; ++i) {
        up[i] = foldUpperChar(text[i]);
        if (up[i] != u'I' && up[i] != u'V') return 0;
    }
    static const struct {
        const char16_t *text;
        int quarter;
    } kRoman[] = {{u"I", 1}, {u"II", 2}, {u"III", 3}, {u"IV", 4}, {u"IIII", 4}};
    int64_t quarter = 0;
    for (const auto &k : kRoman) {
        int n = 0;
        while (k.text[n]) ++n;
        if (n == length && std::memcmp(up, k.text, sizeof(ZvChar) * n) == 0) quarter = k.quarter;
    }
    return quarter;
}

// The directives that read words and marks. False: the row is refused.
// *field stays kFieldCount for what gives no field; a word that is no
// directive reads nothing.
bool readWordDirective(RowTry &r, const Word &word, Field *field, int64_t *value) {
    int64_t start = 0, length = 0;
    bool blank = false;
    if (word.is(u"a") || word.is(u"A") || word.is(u"xA")) {
        if (!readWord(r, &start, &length, &blank) || blank) return false;
        *value = placeInList(r.text + start, length, kWeekdayWords, kWeekdayNames);
        *field = kWeekday;
        return *value != 0;
    }
    if (word.is(u"b") || word.is(u"B") || word.is(u"ub") || word.is(u"u1b") || word.is(u"xB") || word.is(u"1b")) {
        const bool ok = word.is(u"1b") ? readRun(r, false, &start, &length, &blank)
                                       : readWord(r, &start, &length, &blank);
        if (!ok || blank) return false;
        *value = placeInList(r.text + start, length, kMonthWords, kMonthNames);
        *field = kMonth;
        return *value != 0;
    }
    if (word.is(u"r")) {
        if (!readWord(r, &start, &length, &blank) || blank) return false;
        *value = romanQuarter(r.text + start, length);
        *field = kQuarter;
        return *value != 0;
    }
    if (word.is(u"c") || word.is(u"C")) {
        if (!readRun(r, word.w[0] == u'C', &start, &length, &blank)) return false;
        return length == 1 && isSeparator(r.text[start]);
    }
    if (word.is(u"z")) return readWord(r, &start, &length, &blank);
    if (word.is(u"p")) {
        if (!readWord(r, &start, &length, &blank)) return false;
        if (!blank) r.amPm = foldUpperChar(r.text[start]);
        return true;
    }
    if (word.is(u"G")) {
        if (!readRun(r, false, &start, &length, &blank) || blank || length != 1) return false;
        const ZvChar s = r.text[start];
        if (s != u'+' && s != u'-') return false;
        r.call->zoneSeen = true;
        r.call->zoneSign = s == u'+' ? 1 : -1;
    }
    return true;
}

// The fraction behind the seconds: a point and a run of digits, of which the
// first 19 count.
void readFraction(RowTry &r) {
    if (!(r.length - r.pos >= 2 && r.text[r.pos] == u'.' && isAsciiDigit(r.text[r.pos + 1]))) return;
    ++r.pos;
    int64_t digits = 0;
    int n = 0;
    readNumber(r, 0, &digits, &n);
    const int counted = std::min(n, kMaxCountedDigits);
    r.call->fraction = static_cast<double>(digits) / std::pow(10.0, counted);
}

// AM and PM act on the hour after each directive, so the mark may stand
// before the hour as well as behind it.
void applyAmPm(RowTry &r) {
    if (r.amPm == u' ' || r.field[kHour] == -1) return;
    if (r.amPm == u'A' && r.field[kHour] == 12) r.field[kHour] = 0;
    if (r.amPm == u'P' && r.field[kHour] < 12) r.field[kHour] += 12;
}

// Reads one directive whose word is w[0..wl). False: the row is refused.
bool actOn(RowTry &r, const ZvChar *w, int wl) {
    const Word word{w, wl};
    Field field = kFieldCount;
    int64_t value = 0;
    if (const NumberRule *rule = numberRuleOf(word)) {
        const int width = rule->fixedWhenAllDigits && !r.call->allDigits ? 0 : rule->width;
        if (!readNumber(r, width, &value, nullptr)) return false;
        field = rule->field;
    } else if (!readWordDirective(r, word, &field, &value)) {
        return false;
    }
    if (word.is(u"S") || word.is(u"0S")) readFraction(r);
    if (field != kFieldCount) storeField(r, field, value);
    applyAmPm(r);
    return true;
}

// One row's try over the whole text. True: the row accepts the text.
bool tryRow(RowTry &r, const ZvChar *pattern) {
    const int64_t plen = zLength(pattern);
    int64_t pi = 0;
    while (r.pos < r.length) {
        if (pi >= plen) {
            for (int64_t i = r.pos; i < r.length; ++i)
                if (r.text[i] != u' ') return false;
            return true;
        }
        if (pattern[pi] != u'%') { // a literal accepts any character
            ++pi;
            ++r.pos;
            continue;
        }
        if (pi + 1 >= plen) { // a lone '%' at the end reads nothing
            pi = plen;
            continue;
        }
        ZvChar w[3];
        int wl = 0;
        const ZvChar c = pattern[pi + 1];
        pi += 2;
        if (c == u'P') {
            while (r.pos < r.length && r.text[r.pos] == u' ') ++r.pos;
            continue;
        }
        w[wl++] = c;
        if ((c == u'0' || c == u'1' || c == u'x' || c == u'u' || c == u'.') && pi < plen) {
            w[wl++] = pattern[pi++];
            if (c == u'u' && w[1] == u'1' && pi < plen) w[wl++] = pattern[pi++];
        } else if (c == u'w' && pi < plen && pattern[pi] == u'1') {
            ++pi;
        }
        if (wl == 2 && w[0] == u'.' && w[1] == u'd') {
            w[0] = u'd';
            wl = 1;
        }
        if (!actOn(r, w, wl)) return false;
    }
    return pi >= plen || pattern[pi] == u' ';
}

// From the fields of an accepted row to its value.
void valueOf(RowTry &r, const DatePatternRow &row, const ZvChar *name, int64_t nameLength,
             double *outValue, int32_t *kindOut) {
    CallState &cs = *r.call;
    int64_t *f = r.field;
    *outValue = missingValue();
    if (cs.zoneSeen) {
        const int64_t h = f[kHour] < 0 ? 0 : f[kHour];
        const int64_t m = f[kMinute] < 0 ? 0 : f[kMinute];
        cs.zoneOffset = -static_cast<double>(h * 3600 + m * 60) * cs.zoneSign;
        if (nameLength == 7 && (sameText(name, nameLength, u"B8601LZ") || sameText(name, nameLength, u"E8601LZ"))) {
            // Local-time forms: the host's shift of its clock moves the time on.
            cs.zoneOffset -= std::trunc(readHostClock().shift);
        }
        f[kHour] = cs.savedHour;
        f[kMinute] = cs.savedMinute;
    }
    if (f[kQuarter] != -1) f[kMonth] = f[kQuarter] * 3 - 2;

    double date = missingValue();
    if (f[kYear] != -1 && f[kYearDay] != -1) {
        double code = ymdToYearDay(static_cast<double>(f[kYear]), 1, 1);
        if (!isMissing(code)) code += static_cast<double>(f[kYearDay] - 1);
        date = isMissing(code) ? code : yearDayToDayCount(code);
    } else if (f[kYear] != -1 || f[kMonth] != -1 || f[kDay] != -1) {
        const int64_t day = f[kDay] == -1 ? 1 : f[kDay];
        const double code = ymdToYearDay(static_cast<double>(f[kYear]), static_cast<double>(f[kMonth]),
                                         static_cast<double>(day));
        date = isMissing(code) ? code : yearDayToDayCount(code);
    }
    const bool hasDate = !isMissing(date); // fields that make no day count give no date

    bool hasTime = false;
    double time = 0.0;
    if (f[kHour] != -1 || f[kMinute] != -1 || f[kSecond] != -1) {
        const double h = f[kHour] == -1 ? 0.0 : static_cast<double>(f[kHour]);
        const double m = f[kMinute] == -1 ? 0.0 : static_cast<double>(f[kMinute]);
        const double s = f[kSecond] == -1 ? 0.0 : static_cast<double>(f[kSecond]);
        time = (cs.fraction + cs.zoneOffset) + (h * kSecondsPerHour + m * kSecondsPerMinute + s);
        hasTime = true;
    }

    if (row.kind[0] == u'D' && row.kind[1] == u'T' && row.kind[2] == u'E') {
        *outValue = date;
        *kindOut = kReadDate;
    } else if (row.kind[0] == u'T') {
        *outValue = hasTime ? time : missingValue();
        *kindOut = kReadTime;
    } else if (hasDate && hasTime) {
        *outValue = date * kSecondsPerDay + time;
        *kindOut = kReadDatetime;
    } else {
        *kindOut = kReadNothing;
    }
}

// The text the rows read: with `normalise` a cleaned copy of its first
// kNormalisedRoom characters; for the day-month-year names an odd count of
// digits led by "0".
struct RowText {
    ZvChar normalised[kNormalisedRoom];
    ZvChar padded[kShortDigitRun + 1];
    const ZvChar *text = nullptr;
    int64_t length = 0;
};

void takeText(RowText &t, const ZvChar *text, int64_t textLength, bool normalise) {
    t.text = text;
    t.length = textLength;
    if (!normalise) return;
    t.length = std::min<int64_t>(textLength, kNormalisedRoom);
    for (int64_t i = 0; i < t.length; ++i) t.normalised[i] = text[i];
    t.length = cleanDateText(t.normalised, t.length);
    t.text = t.normalised;
}

// Digits throughout, once a "T" at the ninth place, a closing "Z" and the
// sign of a zone are taken for digits: the basic ISO forms and plain runs.
bool allDigitsOf(const ZvChar *text, int64_t length) {
    for (int64_t i = 0; i < length; ++i) {
        ZvChar c = text[i];
        if (i == 8 && c == u'T' && length > 9) c = u'0';
        if (i == length - 1 && c == u'Z') c = u'0';
        if ((length == 11 || length == 20) && i == length - 5 && (c == u'-' || c == u'+')) c = u'0';
        if (!isAsciiDigit(c)) return false;
    }
    return true;
}

bool isDayMonthYearName(const ZvChar *name, int64_t nameLength) {
    return nameLength == 6 &&
           (sameText(name, 6, u"YYMMDD") || sameText(name, 6, u"DDMMYY") || sameText(name, 6, u"MMDDYY"));
}

// A short run of an odd count of digits reads as if a "0" led it: 12345 as
// 012345.
void padOddDigits(RowText &t) {
    int64_t a = 0, b = t.length;
    while (a < b && t.text[a] == u' ') ++a;
    while (b > a && t.text[b - 1] == u' ') --b;
    bool digits = true;
    for (int64_t i = a; i < b; ++i) digits = digits && isAsciiDigit(t.text[i]);
    if (!(b - a < kShortDigitRun && digits && (b - a) % 2 == 1)) return;
    t.padded[0] = u'0';
    for (int64_t i = a; i < b; ++i) t.padded[1 + i - a] = t.text[i];
    t.text = t.padded;
    t.length = 1 + b - a;
}

// The first row of the name whose widths admit the text. Eight characters that are not all digits skip a
// day-month-year row without separators.
const DatePatternRow *firstRow(const ZvChar *name, int64_t nameLength, int64_t length, bool allDigits,
                               bool dayMonthYear) {
    for (int i = 0; i < kDatePatternRowCount; ++i) {
        const DatePatternRow &r = datePatternTable[i];
        if (!sameText(name, nameLength, r.name)) continue;
        if (length < static_cast<int64_t>(r.minWidth) ||
            length > static_cast<int64_t>(r.maxWidth) + secondsRoomOf(r))
            continue;
        if (dayMonthYear && length == kShortDigitRun && !allDigits && firstPair(r.pattern, u'%', u'c') < 0 &&
            i + 1 < kDatePatternRowCount)
            return &datePatternTable[i + 1];
        return &r;
    }
    return nullptr;
}

// The row behind `r` in the table; null behind the last one and for a row
// that is not the table's own.
const DatePatternRow *nextRow(const DatePatternRow *r) {
    for (int64_t i = 0; i + 1 < kDatePatternRowCount; ++i)
        if (datePatternTable + i == r) return &datePatternTable[i + 1];
    return nullptr;
}

} // namespace

int64_t firstPair(const ZvChar *pattern, ZvChar a, ZvChar b) {
    for (int64_t i = 0; pattern && pattern[i] != 0 && pattern[i + 1] != 0; ++i)
        if (pattern[i] == a && pattern[i + 1] == b) return i;
    return -1;
}

int64_t secondsRoomOf(const DatePatternRow &row) { return firstPair(row.pattern, u'%', u'S') >= 0 ? kSecondsRoom : 0; }

int64_t cleanDateText(ZvChar *text, int64_t length) {
    int64_t n = length;
    for (int pass = 0; pass < 2; ++pass) {
        n = leftJustified(text, length);
        for (int64_t i = 1; i < n; ++i) {
            const ZvChar left = text[i - 1];
            if (text[i] == u' ' && (left == u' ' || left == u'-' || left == u'/' || left == u':'))
                text[i] = u'*';
        }
        int64_t k = 0;
        for (int64_t i = 0; i < length; ++i)
            if (text[i] != u'*') text[k++] = text[i];
        for (int64_t i = k; i < length; ++i) text[i] = u' ';
        n = leftJustified(text, length);
    }
    return n;
}

int32_t readByPattern(const ZvChar *name, int64_t nameLength, const DatePatternRow *row,
                      const ZvChar *text, int64_t textLength, double *outValue, int32_t *kindOut,
                      int32_t normalise) {
    textLength = text ? std::max<int64_t>(textLength, 0) : 0;
    nameLength = name ? std::max<int64_t>(nameLength, 0) : 0;

    RowText t;
    takeText(t, text, textLength, normalise != 0);
    CallState state;
    state.allDigits = allDigitsOf(t.text, t.length);
    const bool dayMonthYear = isDayMonthYearName(name, nameLength);
    if (dayMonthYear) padOddDigits(t);

    const DatePatternRow *current = row;
    if (!current) {
        if (nameLength == 0) return kNoFormFits;
        current = firstRow(name, nameLength, t.length, state.allDigits, dayMonthYear);
        if (!current) return kNoFormFits;
    }
    // The rows of the name from the first on; a row given alone is tried alone.
    for (bool first = true;; first = false) {
        *kindOut = kReadNothing;
        if (!current) return kNoFormFits;
        if (nameLength != 0 && !sameText(name, nameLength, current->name)) return kNoFormFits;
        if (nameLength == 0 && !first) return kNoFormFits;
        if (!current->pattern) return kRowWithoutPattern;

        RowTry r{};
        r.text = t.text;
        r.length = t.length;
        r.pos = 0;
        for (int64_t &f : r.field) f = -1;
        r.amPm = u' ';
        r.call = &state;
        *outValue = 0.0;
        if (tryRow(r, current->pattern)) {
            valueOf(r, *current, name, nameLength, outValue, kindOut);
            return 0;
        }
        *outValue = missingValue();
        current = nextRow(current);
    }
}

} // namespace zv
