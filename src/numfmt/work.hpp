// Work areas and small helpers shared by the number routines. Nothing here
// allocates: every text lives in a fixed array and an append past its end
// only sets `overflow`.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "frame/frame.hpp"
#include "wide/ascii.hpp"
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
    int64_t n{};
    bool overflow{};

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
        const int64_t fits = std::clamp<int64_t>(length, 0, Capacity - n);
        // Unit by unit: the texts are too short for a copy to pay.
        for (int64_t i = 0; i < fits; ++i) c[n + i] = text[i];
        n += fits;
        if (fits < length) overflow = true;
    }
};

using WorkText = WorkArea<256>;

// The host's text where the host wrote it into `c`: `text` and `n` are its
// units without leading and trailing blanks.
template <int Capacity>
struct HostText {
    ZvChar c[Capacity];
    const ZvChar *text = c;
    int64_t n = 0;

    // The `produced` units written into `c`.
    void take(int64_t produced) {
        int64_t end = std::clamp<int64_t>(produced, 0, Capacity);
        int64_t begin = 0;
        while (begin < end && c[begin] == u' ') ++begin;
        while (end > begin && c[end - 1] == u' ') --end;
        text = c + begin;
        n = end - begin;
    }
    // A text of the caller's in place of the host's.
    void replace(const ZvChar *other, int64_t length) {
        text = other;
        n = length;
    }
};

// `count` copies of u, no further than `capacity` units.
inline void fillBounded(ZvChar *out, int64_t capacity, ZvChar u, int64_t count) {
    if (!out) return;
    if (count > capacity) count = capacity;
    for (int64_t i = 0; i < count; ++i) out[i] = u;
}

// The width and decimals of the host's answer that a work area holds: a pass
// that asks the same again (after giving up the groups) takes it as it stands.
// `answer` counts the texts the work area has held, so that a number rebuilt
// from one of them is known to stand while the text does.
struct HostAsk {
    int32_t width = -1, decimals = -1;
    int answer = 0;
    // True when (w, d) was the last question; otherwise it becomes it.
    bool repeats(int32_t w, int32_t d) {
        if (w == width && d == decimals) return true;
        width = w;
        decimals = d;
        ++answer;
        return false;
    }
    // The work area holds something else than an answer.
    void forget() {
        width = decimals = -1;
        ++answer;
    }
};

// The host's digits behind its leading minus, if it wrote one.
inline void dropMinus(const ZvChar *&digits, int64_t &length) {
    if (length > 0 && digits[0] == u'-') {
        ++digits;
        --length;
    }
}

// Where the host's digits hold their first star, E and point (-1: none).
struct DigitMarks {
    int64_t star = -1, e = -1, point = -1;
};

// The marks from one look at the digits.
inline DigitMarks findMarks(const ZvChar *digits, int64_t length) {
    DigitMarks marks;
    for (int64_t i = length - 1; i >= 0; --i) {
        if (isAsciiDigit(digits[i])) continue;
        switch (digits[i]) {
        case u'*': marks.star = i; break;
        case u'E': marks.e = i; break;
        case u'.': marks.point = i; break;
        default: break;
        }
    }
    return marks;
}

// A number rebuilt from the host's digits, known by its parts before a unit
// is written: the integer digits with `separator` in front of each further
// `size` digits (the first group takes what is left over; a size of 0 or
// less, or digits no longer than one group, go whole), then `point` and the
// fraction when there is one.
struct GroupedNumber {
    const ZvChar *digits = nullptr;
    int64_t intLength = 0, size = 0;
    const ZvChar *separator = nullptr;
    int64_t separatorLength = 0;
    const ZvChar *point = nullptr;
    int64_t pointLength = 0;
    const ZvChar *fraction = nullptr;
    int64_t fractionLength = 0;

    GroupedNumber() = default;
    GroupedNumber(const ZvChar *d, int64_t intUnits, int64_t groupSize, const ZvChar *sep, int64_t sepUnits,
                  const ZvChar *pointText, int64_t pointUnits, const ZvChar *fractionText, int64_t fractionUnits)
        : digits(d), intLength(intUnits), size(groupSize), separator(sep), separatorLength(sepUnits),
          point(pointText), pointLength(pointUnits), fraction(fractionText), fractionLength(fractionUnits),
          units(unitsByParts()) {}

    // True when a separator goes in.
    bool grouped() const { return size > 0 && intLength > size; }
    // The same number with its integer part whole.
    void dropGroups() {
        size = 0;
        units = unitsByParts();
    }
    int64_t length() const { return units; }
    // True when neither end is a blank, so that the number stops the trimming
    // of a dress on both sides.
    bool solid() const {
        if (units <= 0) return false;
        const ZvChar first = intLength > 0 ? digits[0] : pointLength > 0 ? point[0] : fraction[0];
        const ZvChar last = fractionLength > 0 ? fraction[fractionLength - 1] : digits[intLength - 1];
        return first != u' ' && last != u' ';
    }

    // The number into `out`, no more than `room` units; the units written.
    int64_t write(ZvChar *out, int64_t room) const {
        if (room < units) return writeUnits<true>(out, room);
        if (!grouped() && fractionLength > 0 && pointLength == 1 && fraction == digits + intLength + 1) {
            // The digits as the host wrote them, in one run, with the point
            // put in.
            std::memcpy(out, digits, size_t(units) * sizeof(ZvChar));
            out[intLength] = point[0];
            return units;
        }
        if (grouped() && size == kUsualGroup && separatorLength == 1) return writeUsualGroups(out);
        return writeUnits<false>(out, room);
    }

  private:
    // Groups of three with a separator of one unit, as most locales have them.
    static constexpr int64_t kUsualGroup = 3;

    int64_t units = 0;

    int64_t unitsByParts() const {
        // Grouped, both lengths are below the work area's: a 32-bit division.
        const int64_t separators = grouped() ? uint32_t(intLength - 1) / uint32_t(size) : 0;
        return intLength + separators * separatorLength + (fractionLength > 0 ? pointLength + fractionLength : 0);
    }

    // The usual groups, each with its separator in one step.
    int64_t writeUsualGroups(ZvChar *out) const {
        ZvChar *p = out;
        int64_t run = intLength % kUsualGroup;
        if (run == 0) run = kUsualGroup;
        for (int64_t k = 0; k < run; ++k) *p++ = digits[k];
        for (int64_t i = run; i < intLength; i += kUsualGroup) {
            *p++ = separator[0];
            std::memcpy(p, digits + i, kUsualGroup * sizeof(ZvChar));
            p += kUsualGroup;
        }
        if (fractionLength > 0) {
            for (int64_t k = 0; k < pointLength; ++k) *p++ = point[k];
            for (int64_t k = 0; k < fractionLength; ++k) *p++ = fraction[k];
        }
        return p - out;
    }

    // Unit by unit: the runs are too short for a copy to pay.
    template <bool Bounded>
    int64_t writeUnits(ZvChar *out, int64_t room) const {
        ZvChar *p = out;
        ZvChar *const end = out + room;
        auto emit = [&](const ZvChar *text, int64_t n) {
            for (int64_t k = 0; k < n && (!Bounded || p < end); ++k) *p++ = text[k];
        };
        if (!grouped()) {
            emit(digits, intLength);
        } else {
            int64_t run = intLength % size;
            if (run == 0) run = size;
            for (int64_t i = 0; i < intLength; i += run, run = size) {
                if (i > 0) emit(separator, separatorLength);
                emit(digits + i, run);
            }
        }
        if (fractionLength > 0) {
            emit(point, pointLength);
            emit(fraction, fractionLength);
        }
        return p - out;
    }
};

// The number into a work area from its start; `overflow` tells of units that
// found no room.
template <int Capacity>
inline void putNumber(WorkArea<Capacity> &out, const GroupedNumber &number) {
    out.n = number.write(out.c, Capacity);
    out.overflow = out.n < number.length();
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
    int64_t lead = 0, trail = 0; // blanks in front of `before`, behind `after`

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
        lead = 0;
        while (lead < before.n && before.c[lead] == u' ') ++lead;
        trail = 0;
        while (trail < after.n && after.c[after.n - 1 - trail] == u' ') ++trail;
    }

    // The units of a number of n units in the frame, neither of whose ends is
    // a blank: the outer blanks dropped and `blankBehind` added; more than
    // the capacity when the built text would pass it. -1 when the frame and
    // number pass the capacity before the trimming.
    int64_t measureAround(int64_t n, bool blankBehind) const {
        if (before.overflow || after.overflow || before.n + n + after.n > Capacity) return -1;
        const int64_t units = before.n - lead + n + after.n - trail;
        if (!blankBehind) return units;
        return units < Capacity ? units + 1 : Capacity + 1;
    }

    // The dress of a number of `measure` units by measureAround, written
    // straight into the whole of a field of `width` places: blanks first.
    void placeAround(ZvChar *out, int64_t width, int64_t measure, const GroupedNumber &number,
                     bool blankBehind) const {
        ZvChar *p = out;
        for (int64_t i = measure; i < width; ++i) *p++ = u' ';
        for (int64_t i = lead; i < before.n; ++i) *p++ = before.c[i];
        p += number.write(p, out + width - p);
        for (int64_t i = 0; i < after.n - trail; ++i) *p++ = after.c[i];
        if (blankBehind) *p = u' ';
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
