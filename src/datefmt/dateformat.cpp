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

bool buildDateBlock(FormatCall *call, ExtensionInstance *instance, int32_t *status, int32_t *buildStatus) {
    const int32_t built = buildLocaleBlock(call, instance);
    if (built == 0) return true;
    starFill(call);
    *status = 0;
    if (buildStatus) *buildStatus = built;
    return false;
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
