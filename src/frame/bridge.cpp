// The byte entry: one routine behind all formats that carries a wide
// routine's text into the host encoding and fits it to the caller's field.
#include <algorithm>
#include <climits>
#include <cstring>

#include "frame/frame.hpp"

namespace zv {

namespace {

constexpr int32_t kLocalUnits = 256;

// An outputLength no routine sets: it tells that the routine left before
// it wrote anything.
constexpr int32_t kUntouched = INT32_MIN;

// A routine that refuses its limits writes nothing; one that answers -1
// has written nothing unless it set outputLength (a short week form gives
// stars and -1).
bool wroteNothing(int32_t status, int32_t outputLength) {
    if (status >= ZV_WIDTH_TOO_SMALL && status <= ZV_DECIMALS_TOO_LARGE) return true;
    return status == ZV_NO_INSTANCE && outputLength == kUntouched;
}

int32_t transcodeInto(HostTranscoder *t, const ZvChar *text, int64_t units, void *target,
                      int64_t capacity, int64_t *produced) {
    *produced = 0;
    if (!t) return ZV_TARGET_TOO_SMALL;
    return t->ops->transcode(t, text, units * 2, target, capacity, produced, 0);
}

} // namespace

int32_t runByteEntry(ZvWideEntry wide, Justify mark, FormatCall *call, FormatCall *callPart,
                     void *opaque) {
    HostPool *pool = callPoolOf(call);

    FormatCall copy;
    std::memcpy(&copy, call, sizeof copy);
    if (callPart) std::memcpy(&copy, callPart, ZV_CALL_PART_BYTES);
    FormatCall *source = callPart ? callPart : call;

    ZvChar local[kLocalUnits];
    ZvChar *buffer = local;
    int32_t bufferUnits = kLocalUnits;
    if (source->width > kLocalUnits) {
        buffer = pool ? static_cast<ZvChar *>(
                            pool->ops->poolAlloc(pool, uint64_t(source->width) * sizeof(ZvChar), 0))
                      : nullptr;
        if (!buffer) return ZV_NO_MEMORY;
        bufferUnits = source->width;
    }
    copy.output = buffer;
    copy.outputCapacity = bufferUnits;
    copy.outputLength = kUntouched;

    int32_t status = wide(&copy, opaque);
    if (!wroteNothing(status, copy.outputLength)) {
        const int64_t units = std::clamp<int64_t>(copy.outputLength, 0, bufferUnits);

        // The field is `width` bytes, and never more than the target holds.
        const int64_t field = std::max<int64_t>(std::min(source->width, source->outputCapacity), 0);
        auto *target = static_cast<unsigned char *>(source->output);

        int64_t produced = 0;
        // The routine's own answer stands unless the transcoding fails.
        const int32_t transcoded = transcodeInto(call->transcoder, buffer, units, target, field, &produced);
        if (transcoded != 0) status = transcoded;
        source->outputLength = static_cast<int32_t>(produced);

        if (status == ZV_TARGET_TOO_SMALL) {
            if (mark == Justify::Left) {
                status = 0; // cut at what fitted
            } else {
                const int64_t look = std::min<int64_t>(units, source->width);
                int64_t lead = 0;
                while (lead < look && buffer[lead] == u' ') ++lead;
                if (lead > 0) {
                    status = transcodeInto(call->transcoder, buffer + lead, units - lead, target,
                                           field, &produced);
                    produced = std::clamp<int64_t>(produced, 0, field);
                    std::memmove(target + (field - produced), target, size_t(produced));
                    std::memset(target, ' ', size_t(field - produced));
                    source->outputLength = static_cast<int32_t>(field);
                }
            }
        }
    }
    if (buffer != local) pool->ops->poolFree(pool, buffer);
    return status;
}

} // namespace zv
