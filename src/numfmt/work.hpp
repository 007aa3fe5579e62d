// Work areas and small helpers shared by the number routines. Nothing here
// allocates: every text lives in a fixed array and an append past its end
// only sets `overflow`.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "frame/frame.hpp"
#include "wide/wide.hpp"
#include "zvlocfmt/zvlocfmt.h"

namespace zv {

// The host's answer that a value didn't fit its plain form; text was made.
constexpr int32_t kHostNotPlain = static_cast<int32_t>(0x803FE816u);
// The host number formatter's answer that it dropped its groups to fit.
constexpr int32_t kHostUngrouped = static_cast<int32_t>(0x803FE85Bu);
// Another answer of the plain form that the percent forms accept.
constexpr int32_t kHostPercentAccepted = static_cast<int32_t>(0x803FE80Eu);
// The answer when there is no host number service to ask, or nothing to ask
// it for (a field or target narrower than one place).
constexpr int32_t kNoNumberService = static_cast<int32_t>(0x803FE80Du);

// The locale's formatNumber into `target`, or kNoNumberService with nothing
// produced.
inline int32_t askFormatNumber(HostLocale *locale, double value, int32_t width, int32_t decimals,
                               uint32_t flags, ZvChar *target, int64_t capacity, int64_t *produced) {
    if (!locale || !locale->ops || !locale->ops->formatNumber || !target || width < 1 ||
        capacity < 1) {
        *produced = 0;
        return kNoNumberService;
    }
    return locale->ops->formatNumber(locale, value, width, decimals, flags, target, capacity, produced);
}

// The opening of a number form: outputLength is the width, and a missing
// value gets its mark in the last place. True when `value` still needs
// writing.
inline bool beginNumberValue(FormatCall *call, double *value) {
    call->outputLength = call->width;
    *value = inputValue(call);
    if (!isMissing(*value)) return true;
    missingMarkHeld(call);
    return false;
}

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
        if (length <= 0) return;
        const int64_t fits = length < Capacity - n ? length : Capacity - n;
        std::memcpy(c + n, text, size_t(fits) * sizeof(ZvChar));
        n += fits;
        if (fits < length) overflow = true;
    }
    // The host's text written straight into `c`: its `produced` units,
    // without leading and trailing blanks.
    void takeWritten(int64_t produced) {
        overflow = false;
        n = std::clamp<int64_t>(produced, 0, Capacity);
        trimBoth();
    }
    void trimBoth() {
        int64_t begin = 0;
        while (begin < n && c[begin] == u' ') ++begin;
        int64_t end = n;
        while (end > begin && c[end - 1] == u' ') --end;
        if (begin > 0) std::memmove(c, c + begin, size_t(end - begin) * sizeof(ZvChar));
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

// The width and decimals of the host's answer that a work area holds: a pass
// that asks the same again (after giving up the groups) takes it as it stands.
struct HostAsk {
    int32_t width = -1, decimals = -1;
    // True when (w, d) was the last question; otherwise it becomes it.
    bool repeats(int32_t w, int32_t d) {
        if (w == width && d == decimals) return true;
        width = w;
        decimals = d;
        return false;
    }
    void forget() { width = decimals = -1; }
};

// The host's digits behind its leading minus, if it wrote one.
inline void dropMinus(const ZvChar *&digits, int64_t &length) {
    if (length > 0 && digits[0] == u'-') {
        ++digits;
        --length;
    }
}

// The integer digits with `separator` in front of each further `size`
// digits; the first group takes what is left over. A size of 0 or less, or
// digits no longer than one group, go whole. True when a separator went in.
template <int Capacity>
inline bool putGrouped(WorkArea<Capacity> &out, const ZvChar *digits, int64_t length, int64_t size,
                       const ZvChar *separator, int64_t separatorLength) {
    if (size <= 0 || length <= size) {
        out.put(digits, length);
        return false;
    }
    // Unit by unit: the runs are too short for a copy to pay.
    ZvChar *p = out.c + out.n;
    ZvChar *const end = out.c + Capacity;
    auto emit = [&](ZvChar u) {
        if (p < end) *p++ = u;
        else out.overflow = true;
    };
    int64_t untilSeparator = length % size;
    if (untilSeparator == 0) untilSeparator = size;
    for (int64_t i = 0; i < length; ++i, --untilSeparator) {
        if (untilSeparator == 0) {
            for (int64_t k = 0; k < separatorLength; ++k) emit(separator[k]);
            untilSeparator = size;
        }
        emit(digits[i]);
    }
    out.n = p - out.c;
    return true;
}

// What the commands of a sign-placement pattern stand for, but the number.
struct PatternParts {
    bool negative;
    const ZvChar *symbol;
    int64_t symbolLength;
    const ZvChar *sign;
    int64_t signLength;
};

// A sign pattern spelled out on both sides of its number ('V'), once for a
// value: '(' and ')' only for a negative value, a blank, '$' the symbol, '-'
// the sign; other characters add nothing.
template <int Capacity>
struct PatternFrame {
    WorkArea<Capacity> before, after;

    void spell(const ZvChar *pattern, const PatternParts &parts) {
        before.clear();
        after.clear();
        WorkArea<Capacity> *side = &before;
        for (const ZvChar *p = pattern; *p; ++p) {
            switch (*p) {
            case u'(':
            case u')':
                if (parts.negative) side->put(*p);
                break;
            case u' ': side->put(u' '); break;
            case u'V': side = &after; break;
            case u'$': side->put(parts.symbol, parts.symbolLength); break;
            case u'-': side->put(parts.sign, parts.signLength); break;
            default: break;
            }
        }
    }
};

// A dressed number as pieces of its frame and number, with the blanks at
// both ends dropped, without copying a unit: a dress too wide for the field
// is measured and given up without being built. Built, the text would hold
// no more than the frame's capacity; the pieces keep just as many units.
struct DressedPieces {
    static constexpr int kMost = 4; // before, number, after, a blank behind
    const ZvChar *text[kMost];
    int64_t length[kMost];
    int count = 0;
    int64_t units = 0;     // in all the pieces
    bool overflow = false; // the built text would have passed the capacity

    void add(const ZvChar *t, int64_t n) {
        if (n <= 0 || count == kMost) return;
        text[count] = t;
        length[count++] = n;
    }
    // Keeps the first `capacity` units.
    void cut(int64_t capacity) {
        int64_t room = capacity;
        for (int i = 0; i < count; ++i) {
            if (length[i] <= room) {
                room -= length[i];
                continue;
            }
            length[i] = room;
            count = i + 1;
            overflow = true;
            return;
        }
    }
    void trimBoth() {
        int from = 0;
        for (; from < count; ++from) {
            while (length[from] > 0 && text[from][0] == u' ') {
                ++text[from];
                --length[from];
            }
            if (length[from] > 0) break;
        }
        while (count > from) {
            while (length[count - 1] > 0 && text[count - 1][length[count - 1] - 1] == u' ') --length[count - 1];
            if (length[count - 1] > 0) break;
            --count;
        }
        int kept = 0;
        units = 0;
        for (int i = from; i < count; ++i) {
            text[kept] = text[i];
            length[kept] = length[i];
            units += length[kept++];
        }
        count = kept;
    }
};

// The number in its frame, without outer blanks; `blankBehind` then puts one
// blank at the end.
template <int Capacity>
inline void dressPieces(DressedPieces &d, const PatternFrame<Capacity> &frame, const ZvChar *number,
                        int64_t numberLength, bool blankBehind) {
    static constexpr ZvChar kBlank[1] = {u' '};
    d.count = 0;
    d.overflow = frame.before.overflow || frame.after.overflow;
    d.add(frame.before.c, frame.before.n);
    d.add(number, numberLength);
    d.add(frame.after.c, frame.after.n);
    d.cut(Capacity);
    d.trimBoth();
    if (!blankBehind) return;
    if (d.units < Capacity) {
        d.add(kBlank, 1);
        ++d.units;
    } else {
        d.overflow = true;
    }
}

// The field of `width` places: blanks, then the pieces so that they end at
// the last place. Places at or beyond `capacity` stay unwritten.
inline void placeRight(ZvChar *out, int64_t capacity, int64_t width, const DressedPieces &d) {
    if (!out) return;
    int64_t at = width - d.units;
    fillBounded(out, capacity, u' ', at);
    const int64_t end = std::min<int64_t>(width, capacity);
    for (int i = 0; i < d.count; ++i) {
        const ZvChar *text = d.text[i];
        for (int64_t p = std::max<int64_t>(at, 0), to = std::min(at + d.length[i], end); p < to; ++p)
            out[p] = text[p - at];
        at += d.length[i];
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
    *bytes = std::max<int64_t>(produced, 0);
    return status;
}

// The host's anchor for a call: the instance's, else the module's word.
HostAnchor *anchorOf(ExtensionInstance *instance);

// The first '.' within the first `length` units of the field gets the
// locale's decimal separator (item 172) when that is one unit other than '.'.
void replacePoint(FormatCall *call, int64_t length);

} // namespace zv
