// Week numbers under the three conventions: WEEKU, WEEKV, WEEKW, the short
// YYWEEK forms and DTWEEKV with the time behind the week date.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "datefmt/calendar.hpp"
#include "datefmt/dateformat.hpp"
#include "datefmt/ladders.hpp"
#include "datefmt/pattern.hpp"
#include "frame/frame.hpp"
#include "locale/block.hpp"
#include "wide/wide.hpp"

namespace zv {

// The week date in a field of *fieldWidth units, from the left: WW, W WW,
// YY W WW, YY W WW DD, CC YY W WW DD, or CC YY - W WW - DD from 11 on.
int32_t writeWeekDate(ZvChar *output, int *fieldWidth, WeekMode mode, double dayCount) {
    double y, w, n;
    weekOfDate(dayCount, mode, &y, &w, &n);
    if (isMissing(y)) return 1;
    const int width = *fieldWidth;
    const int64_t year = static_cast<int64_t>(y);
    ZvChar cc[2], yy[2], ww[2], dd[2];
    writeDigits((year / 100) % 100, cc, 2, u'0');
    writeDigits(year % 100, yy, 2, u'0');
    writeDigits(static_cast<int64_t>(w), ww, 2, u'0');
    writeDigits(static_cast<int64_t>(n), dd, 2, u'0');

    ZvChar text[16];
    int k = 0;
    auto put = [&](const ZvChar *s, int len) {
        for (int i = 0; i < len; ++i) text[k++] = s[i];
    };
    if (width <= 2) {
        put(ww, 2);
    } else if (width <= 4) {
        put(u"W", 1), put(ww, 2);
    } else if (width <= 6) {
        put(yy, 2), put(u"W", 1), put(ww, 2);
    } else if (width <= 8) {
        put(yy, 2), put(u"W", 1), put(ww, 2), put(dd, 2);
    } else if (width <= 10) {
        put(cc, 2), put(yy, 2), put(u"W", 1), put(ww, 2), put(dd, 2);
    } else {
        put(cc, 2), put(yy, 2), put(u"-W", 2), put(ww, 2), put(u"-", 1), put(dd, 2);
    }
    if (width > 0) fillWide(output, u' ', width);
    const int shown = k < width ? k : (width > 0 ? width : 0);
    std::memcpy(output, text, size_t(shown) * sizeof(ZvChar));
    return 0;
}

namespace {

double valueAt(const FormatCall *call) {
    double v = 0;
    if (call->input) std::memcpy(&v, call->input, sizeof v);
    return v;
}

// The opening of the week formats: missing, range, instance, block. False
// when the call is answered with *status.
bool openWeek(FormatCall *call, double *day, int32_t *status) {
    call->outputLength = call->width;
    const double v = valueAt(call);
    if (isMissing(v)) {
        *status = missingMarkHeld(call);
        return false;
    }
    if (!(v >= kFirstDay && v < kDayLimit)) {
        *status = starFill(call);
        return false;
    }
    ExtensionInstance *instance = findInstance(call);
    if (!instance) {
        *status = ZV_NO_INSTANCE;
        return false;
    }
    if (!call->localeBlock) {
        const int32_t built = buildLocaleBlock(call, instance);
        if (built != 0) {
            starFill(call);
            *status = built;
            return false;
        }
    }
    *day = v;
    return true;
}

int32_t weekFormat(FormatCall *call, WeekMode mode) {
    double day;
    int32_t status = 0;
    if (!openWeek(call, &day, &status)) return status;
    ZvChar field[kPatternUnits];
    int w = std::min(call->width, kPatternUnits);
    status = writeWeekDate(field, &w, mode, day);
    if (status != 0) {
        starFill(call);
        return status;
    }
    fillField(call, u' ');
    putAt(call, 0, field, w > 0 ? w : 0);
    return 0;
}

int32_t shortWeekFormat(FormatCall *call, const ZvChar *yearDirective, const ZvChar *weekDirective) {
    double day;
    int32_t status = 0;
    if (!openWeek(call, &day, &status)) return status;
    ZvChar year[5], week[3];
    int yw = 5, ww = 3;
    status = writeDatePattern(year, &yw, yearDirective, 2, day, call->localeBlock);
    if (status == 0) status = writeDatePattern(week, &ww, weekDirective, 2, day, call->localeBlock);
    if (status != 0) {
        starFill(call);
        return status;
    }
    ZvChar text[8];
    int n = 0;
    auto put = [&](const ZvChar *s, int len) {
        for (int i = 0; i < len; ++i) text[n++] = s[i];
    };
    switch (call->width) {
    case 2: put(week, 2); break;
    case 3: put(u"W", 1), put(week, 2); break;
    case 4: put(u" W", 2), put(week, 2); break;
    case 5: put(year + 2, 2), put(u"W", 1), put(week, 2); break;
    case 6: put(u" ", 1), put(year + 2, 2), put(u"W", 1), put(week, 2); break;
    case 7: put(year, 4), put(u"W", 1), put(week, 2); break;
    case 8: put(year, 4), put(u"-W", 2), put(week, 2); break;
    default: starFill(call); return ZV_NO_INSTANCE;
    }
    putAt(call, 0, text, n);
    return 0;
}

} // namespace

int32_t writeWeekU(FormatCall *call, void *) { return weekFormat(call, WeekMode::U); }
int32_t writeWeekV(FormatCall *call, void *) { return weekFormat(call, WeekMode::V); }
int32_t writeWeekW(FormatCall *call, void *) { return weekFormat(call, WeekMode::W); }
int32_t writeYyWeekU(FormatCall *call, void *) { return shortWeekFormat(call, u"%Y", u"%U"); }
int32_t writeYyWeekV(FormatCall *call, void *) { return shortWeekFormat(call, u"%G", u"%V"); }
int32_t writeYyWeekW(FormatCall *call, void *) { return shortWeekFormat(call, u"%Y", u"%W"); }

namespace {

// The pieces of DTWEEKV by width: the first row whose width the field
// reaches. Narrower fields show the week date alone.
struct DtWeekPieces {
    int fromWidth;
    const ZvChar *timePattern;
    int timeLength;
    int weekWidth;
};
constexpr DtWeekPieces kDtWeekPieces[] = {
    {20, u"%H:%M:%S", 8, 11},
    {18, u"%H:%M:%S", 8, 9},
    {15, u"%H:%M", 5, 9},
    {12, u"%H", 2, 9},
};

const DtWeekPieces *dtWeekPiecesFor(int width) {
    for (const DtWeekPieces &p : kDtWeekPieces)
        if (width >= p.fromWidth) return &p;
    return nullptr;
}

// The time of day, from 0 up to a day also before 1960, and the day it falls on.
double splitDatetime(double v, double *day) {
    double t;
    if (v >= 0) {
        t = std::fmod(v, kSecondsPerDay);
    } else {
        const double r = std::fmod(-v, kSecondsPerDay);
        t = r == 0 ? 0 : kSecondsPerDay - r;
    }
    *day = (v - t) / kSecondsPerDay;
    return t;
}

} // namespace

int32_t writeDtWeekV(FormatCall *call, void *opaque) {
    const double v = valueAt(call);
    const int32_t w = call->width;
    call->outputLength = w;
    if (isMissing(v)) return missingMarkHeld(call);

    double day;
    const double t = splitDatetime(v, &day);
    fillField(call, u' ');
    const void *input = call->input;
    call->input = &day;

    const DtWeekPieces *pieces = dtWeekPiecesFor(w);
    if (!pieces) {
        const int32_t status = writeWeekV(call, opaque);
        call->input = input;
        return status;
    }
    if (!findInstance(call)) {
        call->input = input;
        return ZV_NO_INSTANCE;
    }
    call->width = pieces->weekWidth;
    if (writeWeekV(call, opaque) != 0 && call->output) {
        // A week text that fails stands as stars, and the time still follows.
        const int32_t saved = call->width;
        starFill(call);
        call->width = saved;
    }
    putAt(call, pieces->weekWidth, u":", 1);
    // The clock needs no names: it is written whether or not a block was built.
    ZvChar time[kPatternUnits];
    int tw = pieces->timeLength;
    const int32_t s = writeTimePattern(time, &tw, pieces->timePattern, wideLength(pieces->timePattern), t, 0,
                                       call->localeBlock);
    if (s == kPatternFits || s == kPatternTooLong) putAt(call, pieces->weekWidth + 1, time, pieces->timeLength);
    call->width = w;
    call->outputLength = w;
    call->input = input;
    return 0;
}

} // namespace zv
