// The opening and the field handling of the date formats.
#include "datefmt/dateformat.hpp"

#include <algorithm>
#include <cstring>

#include "datefmt/calendar.hpp"
#include "datefmt/pattern.hpp"
#include "frame/frame.hpp"
#include "locale/block.hpp"
#include "wide/wide.hpp"

namespace zv {

bool openDateFormat(FormatCall *call, ValueKind kind, DateCall *out, int32_t *status, int32_t *buildStatus) {
    double value = 0;
    ExtensionInstance *instance = nullptr;
    const bool date = kind == ValueKind::Date;
    if (!beginFormat(call, date ? kFirstDay : kFirstSecond, date ? kDayLimit : kSecondLimit, &value, status,
                     &instance))
        return false;
    if (!call->localeBlock) {
        const int32_t built = buildLocaleBlock(call, instance);
        if (built != 0) {
            starFill(call);
            *status = 0;
            if (buildStatus) *buildStatus = built;
            return false;
        }
    }
    *out = DateCall{call, instance, value, kind};
    return true;
}

void fillField(FormatCall *call, ZvChar c) {
    if (call->output) fillWide(static_cast<ZvChar *>(call->output), c, fieldUnits(call));
}

void leftJustifyField(FormatCall *call) {
    auto *out = static_cast<ZvChar *>(call->output);
    const int64_t n = fieldUnits(call);
    if (!out || lengthWithoutTrailingBlanks(out, n) <= 0) return;
    int64_t lead = 0;
    while (lead < n && out[lead] == u' ') ++lead;
    if (lead == 0) return;
    std::memmove(out, out + lead, size_t(n - lead) * sizeof(ZvChar));
    fillWide(out + (n - lead), u' ', lead);
}

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
        status = writeDatePattern(target, &w, pattern, patternLength, d.value, block);
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

void putAt(FormatCall *call, int64_t at, const ZvChar *text, int64_t n) {
    auto *out = static_cast<ZvChar *>(call->output);
    if (!out || at < 0) return;
    for (int64_t i = 0; i < n && at + i < call->outputCapacity; ++i) out[at + i] = text[i];
}

int32_t measureText(const FormatCall *call, int64_t units) {
    if (!call->transcoder || !call->output) return 0;
    unsigned char scratch[4 * kPatternUnits];
    int64_t capacity = call->width < int32_t(sizeof scratch) ? call->width : int32_t(sizeof scratch);
    capacity = std::max<int64_t>(capacity, 0);
    int64_t produced = 0;
    const int64_t n = units < fieldUnits(call) ? units : fieldUnits(call);
    return call->transcoder->ops->transcode(call->transcoder, call->output, n * 2, scratch, capacity,
                                            &produced, 0);
}

} // namespace zv
