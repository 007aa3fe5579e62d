// writeClock and its AM/PM twin, and NLTIME and NLTIMAP, which try the
// locale's pattern first and fall back on them.
#include "datefmt/clock.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "datefmt/calendar.hpp"
#include "datefmt/dateformat.hpp"
#include "datefmt/pattern.hpp"
#include "frame/frame.hpp"
#include "locale/block.hpp"
#include "wide/wide.hpp"

namespace zv {

namespace {

constexpr int kClockUnits = 40;
constexpr int kClockMaxDecimals = 39;
// More decimals than this change nothing in the half unit of the rounding.
constexpr int kRoundedDecimals = 30;
// Places of the seconds: the most a 40-unit clock shows (hour of one digit,
// minutes, seconds, two colons and the point take the other 8 units).
constexpr int kMaxPlaces = kClockUnits - 8;

double valueAt(const FormatCall *call) {
    double v = 0;
    if (call->input) std::memcpy(&v, call->input, sizeof v);
    return v;
}

// Limits of a clock, checked when the call asks for it.
int32_t clockLimits(const FormatCall *call) {
    if (!(call->flags & ZV_FLAG_CHECK_LIMITS)) return 0;
    if (call->width < 2) return ZV_WIDTH_TOO_SMALL;
    if (call->width > kClockUnits) return ZV_WIDTH_TOO_LARGE;
    if (call->decimals < 0) return ZV_DECIMALS_TOO_SMALL;
    if (call->decimals > kClockMaxDecimals) return ZV_DECIMALS_TOO_LARGE;
    return 0;
}

// The seconds with p decimals in a field of `width` units, by the locale's
// plain number formatting; a shorter answer stands at the right and a
// leading blank becomes 0.
void secondsText(FormatCall *call, double seconds, int width, int p, ZvChar *target) {
    HostLocale *locale = call->locale;
    ZvChar buffer[kClockUnits];
    int64_t produced = width;
    int32_t status = -1;
    if (locale && locale->ops && locale->ops->formatNumber)
        status = locale->ops->formatNumber(locale, seconds, width, p, ZV_NUMBER_PLAIN, buffer, width, &produced);
    if (status != 0 || produced <= 0 || produced > width) {
        // Without the host's formatter: the digits by hand, with a point.
        const double scaled = std::floor(seconds * std::pow(10.0, p) + 0.5);
        int64_t units = scaled < 9e18 ? static_cast<int64_t>(scaled) : 0;
        ZvChar digits[kClockUnits];
        int n = 0;
        for (int k = 0; k < p && n < kClockUnits; ++k, units /= 10) digits[n++] = static_cast<ZvChar>(u'0' + units % 10);
        if (p > 0) digits[n++] = u'.';
        do {
            digits[n++] = static_cast<ZvChar>(u'0' + units % 10);
            units /= 10;
        } while (units > 0 && n < kClockUnits);
        produced = std::min(n, width);
        for (int64_t i = 0; i < produced; ++i) buffer[i] = digits[n - 1 - i];
    }
    fillWide(target, u' ', width);
    std::memcpy(target + (width - produced), buffer, size_t(produced) * sizeof(ZvChar));
    if (target[0] == u' ') target[0] = u'0';
}

// What every clock does first: limits, the missing mark, the range (stars
// and 1). False when the call is answered with *status.
bool openClock(FormatCall *call, double *value, int32_t *status) {
    if ((*status = clockLimits(call)) != 0) return false;
    *value = valueAt(call);
    call->outputLength = call->width;
    if (isMissing(*value)) {
        *status = missingMarkHeld(call);
        return false;
    }
    if (!(*value >= kFirstSecond && *value < kSecondLimit)) {
        starFill(call);
        *status = 1;
        return false;
    }
    return true;
}

} // namespace

int32_t writeClock(FormatCall *call) {
    double v;
    int32_t opened;
    if (!openClock(call, &v, &opened)) return opened;

    const int d = std::clamp(call->decimals, 0, kRoundedDecimals);
    const double half = 5.0 / std::pow(10.0, d + 1) + 0.00000001;
    int hourCarry = 0, minuteCarry = 0;
    const double inHour = std::fmod(v, kSecondsPerHour);
    if (inHour + half >= kSecondsPerHour) {
        v -= inHour;
        hourCarry = 1;
    } else {
        const double inMinute = std::fmod(v, kSecondsPerMinute);
        if (inMinute + half >= kSecondsPerMinute) {
            v -= inMinute;
            minuteCarry = 1;
        }
    }
    int64_t hour = static_cast<int64_t>(hourOf(v)) + hourCarry;
    int64_t minute = static_cast<int64_t>(minuteOf(v)) + minuteCarry;
    const double s = secondOf(v);
    int64_t second = static_cast<int64_t>(std::trunc(s));
    double f = s - std::trunc(s);

    const int width = call->width;
    ZvChar hourText[24];
    int length = 0, p = 0;
    for (bool again = true; again;) {
        again = false;
        length = writeDigits(hour, hourText, 0, 0);
        // Only wider fields than the clock's own limit meet kMaxPlaces.
        p = std::clamp<int64_t>(std::min<int64_t>(width - length - 7, call->decimals), 0, kMaxPlaces);
        bool up = false;
        if (p == 0) {
            up = f >= 0.5;
        } else if (f > 0.9) {
            const double scale = std::pow(10.0, p);
            const double g = f * scale;
            up = scale - g < 1 && g - std::trunc(g) > 0.4999999;
        }
        if (up) {
            f = 0;
            if (++second == 60) {
                second = 0;
                if (++minute == 60) {
                    minute = 0;
                    ++hour;
                    again = true;
                }
            }
        }
    }

    if (width < length) return starFill(call), 0;
    ZvChar text[kClockUnits + 24];
    int n = 0;
    std::memcpy(text, hourText, size_t(length) * sizeof(ZvChar));
    n = length;
    if (width >= length + 3) {
        text[n++] = u':';
        n += writeDigits(minute, text + n, 2, u'0');
    }
    if (width >= length + 6) {
        const int field = 2 + p + (p > 0 ? 1 : 0);
        if (n + 1 + field <= kClockUnits + 24) {
            text[n++] = u':';
            secondsText(call, static_cast<double>(second) + f, field, p, text + n);
            n += field;
        }
    }
    fillField(call, u' ');
    putAt(call, width - n, text, n);
    call->outputLength = width;
    return 0;
}

int32_t writeClockAmPm(FormatCall *call) {
    double v;
    int32_t opened;
    if (!openClock(call, &v, &opened)) return opened;
    if (call->decimals == 0 && v - std::trunc(v) >= 0.5) v = std::floor(v + 0.000000000001) + 1;
    else if (call->decimals == 1 && v - std::trunc(v) >= 0.95) v = std::floor(v + 0.000000000001) + 1;
    v = std::fmod(v, kSecondsPerDay);
    if (v < 0) v += kSecondsPerDay;
    const int64_t h = static_cast<int64_t>(std::trunc(v)) / static_cast<int64_t>(kSecondsPerHour);
    const bool pm = h >= 12;
    const int width = call->width;
    if (width < 5) {
        fillField(call, u' ');
        putAt(call, width - 2, pm ? u"PM" : u"AM", 2);
        return 0;
    }
    // The 12-hour clock: afternoon hours less twelve, midnight as 12.
    constexpr double kHalfDay = kSecondsPerDay / 2;
    if (h > 12) v -= kHalfDay;
    else if (h == 0) v += kHalfDay;

    const void *input = call->input;
    call->input = &v;
    call->width = width - 3;
    int32_t status = writeClock(call);
    call->width = width;
    call->input = input;
    call->outputLength = width;
    if (status == 0) putAt(call, width - 3, pm ? u" PM" : u" AM", 3);
    return status;
}

int32_t writeClockOfDatetime(FormatCall *call) {
    double v;
    int32_t opened;
    if (!openClock(call, &v, &opened)) return opened;
    FormatCall copy;
    std::memcpy(&copy, call, sizeof copy);
    const double inDay = timeOfDay(v);
    copy.input = &inDay;
    const int32_t status = writeClock(&copy);
    if (status != 0) return status;
    auto *out = static_cast<ZvChar *>(call->output);
    const int64_t n = std::min(copy.outputLength, call->outputCapacity);
    if (out && n > 0) {
        const int64_t colon = findChar(out, n, u':');
        const int64_t at = (colon >= 0 ? colon : n) - 2;
        if (at >= 0 && out[at] == u' ') out[at] = u'0';
    }
    call->outputLength = copy.outputLength;
    return 0;
}

namespace {

double foldIntoDay(double v, bool alwaysBelowADay, bool *wasNegative) {
    *wasNegative = v < 0;
    if (v < 0) v = kSecondsPerDay - std::fmod(-v, kSecondsPerDay);
    if ((alwaysBelowADay || !*wasNegative) && v >= kSecondsPerDay) v = std::fmod(v, kSecondsPerDay);
    return v;
}

int32_t timeFormat(FormatCall *call, bool amPm) {
    ExtensionInstance *instance = findInstance(call);
    if (!instance) return ZV_NO_INSTANCE;
    call->outputLength = call->width;
    const double raw = valueAt(call);
    if (isMissing(raw)) return missingMarkHeld(call);
    bool negative = false;
    const double folded = foldIntoDay(raw, !amPm, &negative);
    if (!ensureLocaleBlock(call, instance)) return 0;
    if (call->decimals < 0) return 0;

    const LocaleItem &item = call->localeBlock->items[amPm ? kItemTimeAmPm : kItemTime];
    const DateCall d{call, instance, folded, ValueKind::Time};
    for (int k = call->decimals; k >= 0; --k) {
        int w = call->width;
        if (runPattern(d, item.text, item.length, k, &w) != kPatternFits) continue;
        if (call->measureBytes && measureText(call, w) != 0) continue;
        return 0;
    }

    if (call->output && call->outputCapacity > 0)
        fillWide(static_cast<ZvChar *>(call->output), u' ', call->outputCapacity);
    int32_t status;
    if (amPm) {
        status = writeClockAmPm(call);
    } else {
        bool unused = false;
        const double again = foldIntoDay(raw, true, &unused);
        const void *input = call->input;
        call->input = &again;
        status = writeClock(call);
        call->input = input;
    }
    if (status != 0) return starFill(call);
    leftJustifyField(call);
    return 0;
}

} // namespace

int32_t writeNlTime(FormatCall *call, void *) { return timeFormat(call, false); }
int32_t writeNlTimAP(FormatCall *call, void *) { return timeFormat(call, true); }

} // namespace zv
