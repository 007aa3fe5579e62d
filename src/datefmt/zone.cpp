// NLDATMZ, NLDATMWZ, NLDATMTZ and NLDATMTM: a locale pattern with " %z"
// behind it, and when it fits nowhere a narrower form six places shorter
// with the zone text that the engine kept put behind it.
#include <cstring>

#include "datefmt/clock.hpp"
#include "datefmt/dateformat.hpp"
#include "datefmt/ladders.hpp"
#include "datefmt/pattern.hpp"
#include "frame/frame.hpp"
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

int64_t fieldUnits(const FormatCall *call) {
    int64_t w = call->width < call->outputCapacity ? call->width : call->outputCapacity;
    return w < 0 ? 0 : w;
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

int32_t datetimeWithZone(FormatCall *call, void *opaque, int first, int second, ZvWideEntry narrower) {
    DateCall d;
    int32_t status = 0;
    if (!openDateFormat(call, ValueKind::Datetime, &d, &status)) return status;
    if (call->decimals < 0) return 0;
    int32_t last = 0;
    int fieldWidth = call->width;
    if (patternTry(d, first, true, &last, &fieldWidth)) return 0;
    if (last == kPatternTooLong && patternTry(d, second, true, &last, &fieldWidth)) return 0;

    ZvChar zone[kZoneUnits];
    const auto *out = static_cast<const ZvChar *>(call->output);
    const int64_t textEnd = out ? lengthWithoutTrailingBlanks(out, fieldUnits(call)) : 0;
    fillWide(zone, u' ', kZoneUnits);
    for (int i = 0; i < kZoneUnits; ++i)
        if (textEnd - kZoneUnits + i >= 0) zone[i] = out[textEnd - kZoneUnits + i];

    blankCapacity(call);
    const int32_t width = call->width, capacity = call->outputCapacity;
    call->width = width - kZoneUnits;
    call->outputCapacity = capacity - kZoneUnits;
    status = narrower(call, opaque);
    const int32_t written = call->outputLength;
    call->width = width;
    call->outputCapacity = capacity;

    const int64_t n = written < capacity ? written : capacity;
    if (out && n > 0 && findChar(out, n, u'*') >= 0) return starFill(call);
    leftJustifyField(call);
    appendZone(call, zone);
    call->outputLength = width;
    return status;
}

int32_t clockWithZone(FormatCall *call, bool zone) {
    DateCall d;
    int32_t status = 0;
    if (!openDateFormat(call, ValueKind::Datetime, &d, &status)) return status;
    if (call->decimals < 0) return 0;
    int32_t last = 0;
    int fieldWidth = call->width;
    if (patternTry(d, 53, zone, &last, &fieldWidth)) return 0;

    ZvChar zoneText[kZoneUnits];
    const auto *out = static_cast<const ZvChar *>(call->output);
    fillWide(zoneText, u' ', kZoneUnits);
    for (int i = 0; i < kZoneUnits; ++i) {
        const int64_t at = int64_t(fieldWidth) - kZoneUnits + i;
        if (out && at >= 0 && at < fieldUnits(call)) zoneText[i] = out[at];
    }

    blankCapacity(call);
    const int32_t width = call->width, capacity = call->outputCapacity;
    HostLocale *locale = call->locale;
    if (zone) {
        call->width = width - kZoneUnits;
        call->outputCapacity = capacity - kZoneUnits;
    }
    call->locale = d.instance->defaultLocale;
    status = writeClockOfDatetime(call);
    leftJustifyField(call);
    call->locale = locale;
    call->width = width;
    call->outputCapacity = capacity;
    if (zone) {
        appendZone(call, zoneText);
        call->outputLength = width;
    }
    return status;
}

} // namespace

int32_t writeNlDatmZ(FormatCall *call, void *opaque) { return datetimeWithZone(call, opaque, 46, 47, writeNlDatmS); }
int32_t writeNlDatmWZ(FormatCall *call, void *opaque) { return datetimeWithZone(call, opaque, 50, 51, writeNlDatmW); }
int32_t writeNlDatmTZ(FormatCall *call, void *) { return clockWithZone(call, true); }
int32_t writeNlDatmTM(FormatCall *call, void *) { return clockWithZone(call, false); }

} // namespace zv
