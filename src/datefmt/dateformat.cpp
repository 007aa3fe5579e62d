// The opening and the field handling of the date formats.
#include "datefmt/dateformat.hpp"

#include <cstring>

#include "datefmt/calendar.hpp"
#include "datefmt/pattern.hpp"
#include "frame/frame.hpp"
#include "locale/block.hpp"
#include "wide/wide.hpp"

namespace zv {

namespace {
int64_t fieldUnits(const FormatCall *call) {
    int64_t w = call->width < call->outputCapacity ? call->width : call->outputCapacity;
    return w < 0 ? 0 : w;
}
} // namespace

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
    ZvChar scratch[kPatternUnits];
    // A text never passes 512 units, so a wider field is the same as one of 512.
    int w = *fieldWidth > kPatternUnits ? kPatternUnits : *fieldWidth;
    const LocaleBlock *block = call->localeBlock;
    const int32_t status =
        d.kind == ValueKind::Date
            ? writeDatePattern(scratch, &w, pattern, patternLength, d.value, block)
            : writeDatetimePattern(scratch, &w, pattern, patternLength, d.value, k, block,
                                   call->services ? call->services->timeZone : nullptr);
    if (status != kPatternFits) return status;
    *fieldWidth = w;
    fillField(call, u' ');
    if (call->output) {
        const int64_t n = w < fieldUnits(call) ? w : fieldUnits(call);
        std::memcpy(call->output, scratch, size_t(n) * sizeof(ZvChar));
    }
    return kPatternFits;
}

int32_t measureText(const FormatCall *call, int64_t units) {
    if (!call->transcoder || !call->output) return 0;
    unsigned char scratch[4 * kPatternUnits];
    int64_t capacity = call->width < int32_t(sizeof scratch) ? call->width : int32_t(sizeof scratch);
    if (capacity < 0) capacity = 0;
    int64_t produced = 0;
    const int64_t n = units < fieldUnits(call) ? units : fieldUnits(call);
    return call->transcoder->ops->transcode(call->transcoder, call->output, n * 2, scratch, capacity,
                                            &produced, 0);
}

} // namespace zv
