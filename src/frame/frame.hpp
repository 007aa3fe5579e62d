// What every routine of the module shares: the host's anchor, the search for
// the instance, the star fill, the missing mark, the pool of a call and the
// bridge from a wide routine to the host encoding.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "zvlocfmt/zvlocfmt.h"

namespace zv {

// The host's anchor, left by zvextent or zvextver.
extern HostAnchor *hostAnchor;

// Eight bytes at `bytes` as one 64-bit word.
inline uint64_t wordAt(const void *bytes) {
    uint64_t w;
    std::memcpy(&w, bytes, sizeof w);
    return w;
}

// The name of the module's instance as one 64-bit word, as wordAt reads
// it on this little-endian machine.
constexpr uint64_t kInstanceName = [] {
    constexpr char kName[] = "zvlocfmt";
    uint64_t w = 0;
    for (int i = 7; i >= 0; --i) w = w << 8 | static_cast<unsigned char>(kName[i]);
    return w;
}();

// The instance named "zvlocfmt" in the call's extensionList, or null. Every
// call of every routine asks, so it stands here to be inlined.
inline ExtensionInstance *findInstance(const FormatCall *call) {
    if (!call || !call->services || !call->services->extensionList) return nullptr;
    for (ExtensionInstance **entry = call->services->extensionList; *entry; ++entry) {
        const char *name = (*entry)->extensionName;
        if (name && wordAt(name) == kInstanceName) return *entry;
    }
    return nullptr;
}

// width copies of '*' from the start of output; outputLength = width; 0.
// Like the missing mark below, it answers with the status 0 so that a
// format routine can return it as its own answer to the host.
int32_t starFill(FormatCall *call);

// The mark of the missing value at input, placed by width and decimals; 0.
int32_t writeMissingMark(FormatCall *call);
// The same with decimals held at 0 for the placing, so the mark stands last.
int32_t missingMarkHeld(FormatCall *call);

inline uint64_t bitsOf(double v) {
    uint64_t b;
    std::memcpy(&b, &v, sizeof b);
    return b;
}
inline double doubleOf(uint64_t b) {
    double v;
    std::memcpy(&v, &b, sizeof v);
    return v;
}
// 10^0 to 10^31 as the compiler reads them. Up to 10^22 a double holds them
// exactly, and they are what std::pow(10, d) gives.
constexpr double kPowersOfTen[] = {
    1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
    1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22, 1e23, 1e24, 1e25, 1e26, 1e27, 1e28, 1e29, 1e30, 1e31,
};
constexpr int kLastExactPowerOfTen = 22;

inline bool isMissing(double v) { return (bitsOf(v) >> 48) == 0xFFFFu; }
inline double missingValue() { return doubleOf(ZV_MISSING_BITS); }

// The places of the field that the target holds: the smaller of width and
// outputCapacity, as the call gives them (fieldRoom), or never below 0
// (fieldUnits).
inline int64_t fieldRoom(const FormatCall *call) {
    return std::min(call->width, call->outputCapacity);
}
inline int64_t fieldUnits(const FormatCall *call) {
    const int64_t room = fieldRoom(call);
    return std::max<int64_t>(room, 0);
}

// The double at a format's input; 0 when there is none.
inline double inputValue(const FormatCall *call) {
    double v = 0;
    if (call->input) std::memcpy(&v, call->input, sizeof v);
    return v;
}

// The character that shows a missing value: byte 5 of the double, inverted;
// '-' shows as '_', a letter A to Z as itself, anything else as '.'.
inline ZvChar missingMarkOf(double v) {
    const auto letter = static_cast<uint8_t>(~(bitsOf(v) >> 40) & 0xFFu);
    if (letter == '-') return u'_';
    if (letter >= 'A' && letter <= 'Z') return letter;
    return u'.';
}

// The pool for a call's temporary memory: the callPool's when it carries the
// key "ZVRG" and a pool in word 9, else the services' formatPool.
HostPool *callPoolOf(const FormatCall *call);

// Justification of a byte entry's overflow.
enum class Justify : char { Left = 'l', Right = 'r' };

// The byte entry of every format: runs `wide` on a copy of the call whose
// output is a wide buffer, then transcodes the text into the host's target.
int32_t runByteEntry(ZvWideEntry wide, Justify mark, FormatCall *call, FormatCall *callPart,
                     void *opaque);

template <ZvWideEntry Wide, Justify Mark>
int32_t byteEntry(FormatCall *call, FormatCall *callPart, void *opaque) {
    return runByteEntry(Wide, Mark, call, callPart, opaque);
}

// The first steps of a format: find the instance, answer a missing value
// with its mark and a value outside [low, high) with stars. Returns true
// when the routine should go on with `value`; otherwise *status holds the
// answer and the call is done.
inline bool beginFormat(FormatCall *call, double low, double high, double *value, int32_t *status,
                        ExtensionInstance **instance) {
    ExtensionInstance *found = findInstance(call);
    if (instance) *instance = found;
    if (!found) {
        *status = ZV_NO_INSTANCE;
        return false;
    }
    const double v = inputValue(call);
    call->outputLength = call->width;
    *status = 0;
    if (isMissing(v)) {
        *status = missingMarkHeld(call);
        return false;
    }
    if (!call->input || !(v >= low && v < high)) { // NaN fails both
        *status = starFill(call);
        return false;
    }
    *value = v;
    return true;
}

// The limits that a routine honouring bit 0 of `flags` checks itself.
struct FieldLimits {
    int32_t leastWidth, mostWidth, mostDecimals;
};

// 0 when the call is within the limits or doesn't ask for the check, else
// 2, 3, 4 or 5 for a width too small or too large, decimals too small or
// too large.
inline int32_t checkLimits(const FormatCall *call, const FieldLimits &limits) {
    if (!(call->flags & ZV_FLAG_CHECK_LIMITS)) return 0;
    if (call->width < limits.leastWidth) return ZV_WIDTH_TOO_SMALL;
    if (call->width > limits.mostWidth) return ZV_WIDTH_TOO_LARGE;
    if (call->decimals < 0) return ZV_DECIMALS_TOO_SMALL;
    if (call->decimals > limits.mostDecimals) return ZV_DECIMALS_TOO_LARGE;
    return 0;
}

// The fifth step: a call without a locale block gets one. False when the
// block can't be built; the field then holds stars and the answer is 0.
bool ensureLocaleBlock(FormatCall *call, ExtensionInstance *instance);

} // namespace zv
