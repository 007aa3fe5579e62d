// Work areas and small helpers shared by the number routines. Nothing here
// allocates: every text lives in a fixed array and an append past its end
// only sets `overflow`.
#pragma once

#include <cstdint>

#include "wide/wide.hpp"
#include "zvlocfmt/zvlocfmt.h"

namespace zv {

// The host's answer that a value didn't fit its plain form; text was made.
constexpr int32_t kHostNotPlain = static_cast<int32_t>(0x803FE816u);
// The host number formatter's answer that it dropped its groups to fit.
constexpr int32_t kHostUngrouped = static_cast<int32_t>(0x803FE85Bu);
// Another answer of the plain form that the percent forms accept.
constexpr int32_t kHostPercentAccepted = static_cast<int32_t>(0x803FE80Eu);

template <int Capacity>
struct WorkArea {
    ZvChar c[Capacity + 1];
    int64_t n = 0;
    bool overflow = false;

    void clear() {
        n = 0;
        overflow = false;
        c[0] = 0;
    }
    void put(ZvChar u) {
        if (n < Capacity) c[n++] = u;
        else overflow = true;
    }
    void put(const ZvChar *text, int64_t length) {
        for (int64_t i = 0; i < length; ++i) put(text[i]);
    }
    // The text without leading and trailing blanks.
    void takeTrimmed(const ZvChar *text, int64_t length) {
        clear();
        int64_t begin = 0;
        while (begin < length && text[begin] == u' ') ++begin;
        int64_t end = length;
        while (end > begin && text[end - 1] == u' ') --end;
        put(text + begin, end - begin);
    }
    void trimBoth() {
        int64_t begin = 0;
        while (begin < n && c[begin] == u' ') ++begin;
        int64_t end = n;
        while (end > begin && c[end - 1] == u' ') --end;
        for (int64_t i = begin; i < end; ++i) c[i - begin] = c[i];
        n = end - begin;
    }
};

using WorkText = WorkArea<256>;

// `count` copies of u, no further than `capacity` units.
inline void fillBounded(ZvChar *out, int64_t capacity, ZvChar u, int64_t count) {
    if (!out) return;
    if (count > capacity) count = capacity;
    for (int64_t i = 0; i < count; ++i) out[i] = u;
}

// The text so that it ends at place `width` of the field; places at or
// beyond `capacity` stay unwritten.
inline void placeRight(ZvChar *out, int64_t capacity, int64_t width, const ZvChar *text,
                       int64_t length) {
    if (!out) return;
    const int64_t start = width - length;
    for (int64_t i = 0; i < length; ++i) {
        const int64_t at = start + i;
        if (at >= 0 && at < capacity) out[at] = text[i];
    }
}

// Units before the first zero, at most `limit`.
inline int64_t boundedLength(const ZvChar *text, int64_t limit) {
    int64_t n = 0;
    while (n < limit && text[n]) ++n;
    return n;
}

// The bytes that the text takes in the host encoding, through the call's
// transcoder into a scratch of `scratchBytes`. Without a transcoder a unit
// counts one byte. The transcoder's status comes back.
inline int32_t hostMeasure(FormatCall *call, const ZvChar *text, int64_t units, int scratchBytes,
                           int64_t *bytes) {
    HostTranscoder *t = call->transcoder;
    if (!t || !t->ops || !t->ops->transcode) {
        *bytes = units;
        return 0;
    }
    unsigned char scratch[256];
    if (scratchBytes > 256) scratchBytes = 256;
    int64_t produced = 0;
    const int32_t status = t->ops->transcode(t, text, units * 2, scratch, scratchBytes, &produced, 0);
    *bytes = produced < 0 ? 0 : produced;
    return status;
}

// The host's anchor for a call: the instance's, else the module's word.
HostAnchor *anchorOf(ExtensionInstance *instance);

// The first '.' within the first `length` units of the field gets the
// locale's decimal separator (item 172) when that is one unit other than '.'.
void replacePoint(FormatCall *call, int64_t length);

} // namespace zv
