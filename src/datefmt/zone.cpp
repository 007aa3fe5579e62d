// NLDATMZ, NLDATMWZ, NLDATMTZ and NLDATMTM: a locale pattern with " %z"
// behind it, and when it fits nowhere a narrower form six places shorter
// with the zone text that the engine kept put behind it.
#include <algorithm>
#include <cstring>

#include "datefmt/clock.hpp"
#include "datefmt/dateformat.hpp"
#include "datefmt/ladders.hpp"
#include "datefmt/pattern.hpp"
#include "frame/frame.hpp"
#include "locale/block.hpp"
#include "wide/wide.hpp"

namespace zv {

namespace {

constexpr int kZoneUnits = 6; // a blank, the sign, hours and minutes

// Tries an item's pattern, with " %z" behind it for the zone forms, at
// k = decimals down to 0. Returns true when a try succeeded; *last gets the
// status of the last try and *fieldWidth its field.
bool patternTry(const DateCall &d, int item, bool zone, int32_t *last, int *fieldWidth) {
    FormatCall *call = d.call;
    const LocaleItem &it = call->localeBlock->items[item];
    ZvChar pattern[ZV_ITEM_TEXT_UNITS + 3];
    std::memcpy(pattern, it.text, size_t(it.length) * sizeof(ZvChar));
    int64_t length = it.length;
    if (zone) {
        std::memcpy(pattern + length, u" %z", 3 * sizeof(ZvChar));
        length += 3;
    }
    *last = kPatternEmpty;
    for (int k = call->decimals; k >= 0; --k) {
        int w = call->width;
        *last = runPattern(d, pattern, length, k, &w);
        *fieldWidth = w;
        if (*last != kPatternFits) continue;
        if (!call->measureBytes) return true;
        const int32_t measured = measureText(call, w);
        if (measured == 0) return true;
        *last = measured == ZV_TARGET_TOO_SMALL ? kPatternTooLong : measured;
    }
    return false;
}


void blankCapacity(FormatCall *call) {
    if (call->output && call->outputCapacity > 0)
        fillWide(static_cast<ZvChar *>(call->output), u' ', call->outputCapacity);
}

// Writes the zone text behind the last character of the field that is not a blank.
void appendZone(FormatCall *call, const ZvChar *zone) {
    const auto *out = static_cast<const ZvChar *>(call->output);
    const int64_t end = out ? lengthWithoutTrailingBlanks(out, fieldUnits(call)) : 0;
    putAt(call, end, zone, kZoneUnits);
}

constexpr int kNoSecondItem = -1;

// Opens a zone form and tries its locale patterns, the second only when the
// first was too long. True when that answers the call, with *status.
bool answeredByPattern(FormatCall *call, DateCall *d, int first, int second, bool zone, int *fieldWidth,
                       int32_t *status) {
    *status = 0;
    if (!openDateFormat(call, ValueKind::Datetime, d, status)) return true;
    if (call->decimals < 0) {
        *status = 0;
        return true;
    }
    int32_t last = 0;
    *fieldWidth = call->width;
    if (patternTry(*d, first, zone, &last, fieldWidth)) return true;
    return second != kNoSecondItem && last == kPatternTooLong && patternTry(*d, second, zone, &last, fieldWidth);
}

// The call's width and capacity, saved while a narrower form writes in front
// of the zone text; the whole capacity is blank first.
struct SavedField {
    int32_t width;
    int32_t capacity;
};

SavedField narrowForZone(FormatCall *call, bool zone) {
    blankCapacity(call);
    const SavedField saved{call->width, call->outputCapacity};
    if (zone) {
        call->width = saved.width - kZoneUnits;
        call->outputCapacity = saved.capacity - kZoneUnits;
    }
    return saved;
}

void restoreField(FormatCall *call, SavedField saved) {
    call->width = saved.width;
    call->outputCapacity = saved.capacity;
}

// The zone text that the engine wrote in front of `end`: the last units of
// the pattern's text, blanks for places outside the field.
void zoneTextBefore(const FormatCall *call, int64_t end, ZvChar *zone) {
    const auto *out = static_cast<const ZvChar *>(call->output);
    fillWide(zone, u' ', kZoneUnits);
    for (int i = 0; i < kZoneUnits; ++i) {
        const int64_t at = end - kZoneUnits + i;
        if (out && at >= 0 && at < fieldUnits(call)) zone[i] = out[at];
    }
}

int32_t datetimeWithZone(FormatCall *call, void *opaque, int first, int second, ZvWideEntry narrower) {
    DateCall d;
    int32_t status = 0;
    int fieldWidth = 0;
    if (answeredByPattern(call, &d, first, second, true, &fieldWidth, &status)) return status;

    // Nothing fitted: the zone is taken from behind the text of the last try.
    const auto *out = static_cast<const ZvChar *>(call->output);
    ZvChar zone[kZoneUnits];
    zoneTextBefore(call, out ? lengthWithoutTrailingBlanks(out, fieldUnits(call)) : 0, zone);

    const SavedField saved = narrowForZone(call, true);
    status = narrower(call, opaque);
    const int32_t written = call->outputLength;
    restoreField(call, saved);

    const int64_t n = std::min(written, saved.capacity);
    if (out && n > 0 && findChar(out, n, u'*') >= 0) return starFill(call);
    leftJustifyField(call);
    appendZone(call, zone);
    call->outputLength = saved.width;
    return status;
}

int32_t clockWithZone(FormatCall *call, bool zone) {
    DateCall d;
    int32_t status = 0;
    int fieldWidth = 0;
    if (answeredByPattern(call, &d, kItemTime, kNoSecondItem, zone, &fieldWidth, &status)) return status;

    // The zone stands at the end of the last try's field.
    ZvChar zoneText[kZoneUnits];
    zoneTextBefore(call, fieldWidth, zoneText);

    const SavedField saved = narrowForZone(call, zone);
    HostLocale *locale = call->locale;
    call->locale = d.instance->defaultLocale;
    status = writeClockOfDatetime(call);
    leftJustifyField(call);
    call->locale = locale;
    restoreField(call, saved);
    if (zone) {
        appendZone(call, zoneText);
        call->outputLength = saved.width;
    }
    return status;
}

} // namespace

int32_t writeNlDatmZ(FormatCall *call, void *opaque) { return datetimeWithZone(call, opaque, kItemDatetime, kItemDatetimeSecond, writeNlDatmS); }
int32_t writeNlDatmWZ(FormatCall *call, void *opaque) { return datetimeWithZone(call, opaque, kItemDatetimeWeekday, kItemDatetimeWeekdaySecond, writeNlDatmW); }
int32_t writeNlDatmTZ(FormatCall *call, void *) { return clockWithZone(call, true); }
int32_t writeNlDatmTM(FormatCall *call, void *) { return clockWithZone(call, false); }

} // namespace zv
