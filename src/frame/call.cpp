// What every format does first: find its instance, answer a missing value
// with its mark, a value it cannot show with stars.
#include <cmath>
#include <cstring>

#include "frame/frame.hpp"
#include "locale/block.hpp"

namespace zv {

namespace {

// The key of a call pool as one 64-bit word.
const uint64_t kCallPoolKey = wordAt(u"ZVRG");

constexpr int kCallPoolWord = 9;

// Decimals that put the missing mark in the last place whatever they say.
constexpr bool marksLastPlace(int32_t decimals) { return decimals == 98 || decimals == 99; }

} // namespace

int32_t starFill(FormatCall *call) {
    call->outputLength = call->width;
    int64_t count = fieldRoom(call);
    auto *out = static_cast<ZvChar *>(call->output);
    if (out)
        for (int64_t i = 0; i < count; ++i) out[i] = u'*';
    return 0;
}

int32_t writeMissingMark(FormatCall *call) {
    call->outputLength = call->width;
    auto *out = static_cast<ZvChar *>(call->output);
    if (!out) return 0;
    for (int32_t i = 0; i < call->outputCapacity; ++i) out[i] = u' ';

    const double value = inputValue(call);
    const ZvChar mark = isMissing(value) ? missingMarkOf(value) : u' ';
    const int64_t at = marksLastPlace(call->decimals)
                           ? int64_t{call->width} - 1
                           : int64_t{call->width} - 1 - call->decimals;
    if (at >= 0 && at < call->outputCapacity) out[at] = mark;
    return 0;
}

int32_t missingMarkHeld(FormatCall *call) {
    const int32_t saved = call->decimals;
    call->decimals = 0;
    const int32_t status = writeMissingMark(call);
    call->decimals = saved;
    return status;
}

HostPool *callPoolOf(const FormatCall *call) {
    if (call->callPool) {
        if (wordAt(call->callPool) == kCallPoolKey) {
            HostPool *pool;
            std::memcpy(&pool, static_cast<const char *>(call->callPool) + 8 * kCallPoolWord,
                        sizeof pool);
            if (pool) return pool;
        }
    }
    return call->services ? call->services->formatPool : nullptr;
}

bool ensureLocaleBlock(FormatCall *call, ExtensionInstance *instance) {
    if (call->localeBlock) return true;
    if (buildLocaleBlock(call, instance) == 0) return true;
    starFill(call);
    return false;
}

} // namespace zv
