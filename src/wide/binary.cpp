// Binary, hexadecimal, size, quoted and UUID readers; base-64 encoders.
#include "wide/binary.hpp"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "frame/frame.hpp"
#include "wide/ascii.hpp"
#include "wide/wide.hpp"

namespace zv {

namespace {

constexpr int32_t kBadDigit = ZV_NO_FORM_FITS;

// The units of the call's text that a reader may look at.
struct Span {
    const ZvChar *text = nullptr;
    int64_t length = 0;
};

Span readSpan(const FormatCall *call) {
    Span s;
    s.text = static_cast<const ZvChar *>(call->input);
    int64_t n = call->inputLength;
    if (call->fieldLimit < n) n = call->fieldLimit;
    if (call->width < n) n = call->width;
    s.length = s.text && n > 0 ? n : 0;
    return s;
}

Span withoutOuterBlanks(Span s) {
    while (s.length > 0 && s.text[0] == u' ') ++s.text, --s.length;
    while (s.length > 0 && s.text[s.length - 1] == u' ') --s.length;
    return s;
}

// The limits each reader checks under bit 0 of flags. A size number's own
// digits have limits of their own.
constexpr FieldLimits kBinaryLimits{1, 64, 31};
constexpr FieldLimits kHexLimits{1, 16, 0};
constexpr FieldLimits kSizeLimits{4, 35, 31};
constexpr int64_t kSizeDigitsMost = 32;
constexpr FieldLimits kUuidLimits{1, 200, 0};

// The fields of the digit readers, and the count of digits from which the
// field is a bit pattern rather than a number.
constexpr int kBinaryField = 64, kBinaryPatternFrom = 57;
constexpr int kHexField = 16, kHexPatternFrom = 16;
constexpr double kSizeStep = 1024.0;

// A UUID in its written form: 36 units, dashes at four places, 16 bytes.
constexpr int kUuidUnits = 36;
constexpr int kUuidBytes = 16;
constexpr bool isUuidDash(int i) { return i == 8 || i == 13 || i == 18 || i == 23; }

void storeDouble(FormatCall *call, double value) { std::memcpy(call->output, &value, sizeof value); }

// Digits of base 2 or 16 with blanks anywhere, right-justified in a field
// of `fieldUnits` units whose left is filled with zeros. A field of all
// digits (or, in base 2, of 57 or more) gives the bit pattern; fewer give
// the number. `bad` answers a unit that isn't a digit.
int32_t readDigitField(FormatCall *call, int bitsPerDigit, int fieldUnits, int patternFrom, int32_t bad) {
    const Span s = withoutOuterBlanks(readSpan(call));
    storeDouble(call, missingValue());
    uint64_t word = 0;
    int digits = 0;
    for (int64_t i = 0; i < s.length; ++i) {
        const ZvChar c = s.text[i];
        if (c == u' ') continue;
        const int v = hexDigitValue(c);
        if (v < 0 || v >= (1 << bitsPerDigit) || digits == fieldUnits) return bad;
        word = (word << bitsPerDigit) | static_cast<uint64_t>(v);
        ++digits;
    }
    storeDouble(call, digits < patternFrom ? static_cast<double>(word) : doubleOf(word));
    return 0;
}

HostLocale *parsingLocale(const FormatCall *call) {
    HostAnchor *anchor = hostAnchor;
    NlsServices *nls = anchor ? anchor->nlsServices : nullptr;
    if (nls && nls->ops && nls->ops->currentLocale)
        if (HostLocale *current = nls->ops->currentLocale(nls)) return current;
    return call->locale;
}

// Pairs of hexadecimal digits with blanks anywhere: each digit goes to
// `half(value, high)`, the first of a pair as the high half. kBadDigit at a
// unit that is neither.
template <typename Half>
int32_t walkHexPairs(const ZvChar *text, int64_t length, Half half) {
    bool high = true;
    for (int64_t i = 0; i < length; ++i) {
        if (text[i] == u' ') continue;
        const int v = hexDigitValue(text[i]);
        if (v < 0) return kBadDigit;
        half(v, high);
        high = !high;
    }
    return 0;
}

// The raw bytes of a byte reader, no further than the target's room;
// outputLength counts the complete bytes that went in.
struct ByteTarget {
    uint8_t *out;
    int64_t capacity;
    int64_t complete = 0;

    explicit ByteTarget(FormatCall *call)
        : out(static_cast<uint8_t *>(call->output)),
          capacity(call->outputCapacity > 0 ? call->outputCapacity : 0) {}

    void put(uint8_t byte) {
        if (complete < capacity) out[complete] = byte;
        ++complete;
    }
    // A half byte: the high one starts the byte, the low one completes it.
    void putHalf(int v, bool high) {
        if (complete < capacity) out[complete] = static_cast<uint8_t>(high ? v << 4 : out[complete] | v);
        if (!high) ++complete;
    }
    int32_t finish(FormatCall *call) const {
        call->outputLength = static_cast<int32_t>(std::min(complete, capacity));
        return 0;
    }
};

constexpr char kBase64Alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

template <typename Unit>
int32_t encodeBase64(HostPool *pool, const Unit *source, int64_t length, ZvChar **target, int64_t *produced) {
    length = source ? std::max<int64_t>(length, 0) : 0;
    const bool owned = *target == nullptr;
    if (owned) {
        const uint64_t units = static_cast<uint64_t>((length + 2) / 3) * 4 + 1;
        void *room = pool && pool->ops && pool->ops->poolAlloc
                         ? pool->ops->poolAlloc(pool, units * sizeof(ZvChar), 0)
                         : nullptr;
        if (!room) return ZV_NO_MEMORY;
        *target = static_cast<ZvChar *>(room);
    }
    ZvChar *out = *target;
    int64_t o = 0;
    int64_t i = 0;
    auto byteAt = [&](int64_t k) { return static_cast<uint32_t>(source[k] & 0xFF); };
    for (; i + 3 <= length; i += 3) {
        const uint32_t triple = byteAt(i) << 16 | byteAt(i + 1) << 8 | byteAt(i + 2);
        for (int shift = 18; shift >= 0; shift -= 6) out[o++] = static_cast<ZvChar>(kBase64Alphabet[(triple >> shift) & 63]);
    }
    const int64_t rest = length - i;
    if (rest > 0) {
        const uint32_t triple = byteAt(i) << 16 | (rest == 2 ? byteAt(i + 1) << 8 : 0);
        out[o++] = static_cast<ZvChar>(kBase64Alphabet[(triple >> 18) & 63]);
        out[o++] = static_cast<ZvChar>(kBase64Alphabet[(triple >> 12) & 63]);
        out[o++] = rest == 2 ? static_cast<ZvChar>(kBase64Alphabet[(triple >> 6) & 63]) : u'=';
        out[o++] = u'=';
    }
    if (owned) out[o] = 0;
    *produced = o;
    return 0;
}

} // namespace

int32_t readBinaryNumber(FormatCall *call, void *) {
    if (const int32_t refused = checkLimits(call, kBinaryLimits)) return refused;
    return readDigitField(call, 1, kBinaryField, kBinaryPatternFrom, kBadDigit);
}

int32_t readHexNumber(FormatCall *call, void *) {
    if (const int32_t refused = checkLimits(call, kHexLimits)) return refused;
    return readDigitField(call, 4, kHexField, kHexPatternFrom, ZV_UNREADABLE);
}

int32_t readSizeNumber(FormatCall *call, void *) {
    if (const int32_t refused = checkLimits(call, kSizeLimits)) return refused;
    const Span s = withoutOuterBlanks(readSpan(call));
    int64_t digitsEnd = s.length;
    while (digitsEnd > 0 && !isAsciiDigit(s.text[digitsEnd - 1])) --digitsEnd;
    if (call->flags & ZV_FLAG_CHECK_LIMITS) {
        if (digitsEnd < 1) return ZV_WIDTH_TOO_SMALL;
        if (digitsEnd > kSizeDigitsMost) return ZV_WIDTH_TOO_LARGE;
    }
    storeDouble(call, missingValue());
    HostLocale *locale = parsingLocale(call);
    if (!locale || !locale->ops || !locale->ops->parseDouble) return ZV_UNREADABLE;
    double value = missingValue();
    int64_t used = 0;
    const int32_t status = locale->ops->parseDouble(locale, s.text, digitsEnd, &value, &used);
    if (status != 0) return status;
    if (isMissing(value)) {
        storeDouble(call, value);
        return 0;
    }
    const ZvChar unit = digitsEnd < s.length ? s.text[digitsEnd] : ZvChar(0);
    int times = 0;
    if (unit == u'K' || unit == u'k') times = 1;
    if (unit == u'M' || unit == u'm') times = 2;
    if (unit == u'G' || unit == u'g') times = 3;
    for (int k = 0; k < times; ++k) value *= kSizeStep;
    storeDouble(call, value);
    return 0;
}

int32_t hexToBytes(const ZvChar *text, int64_t length, uint8_t **bytes) {
    return walkHexPairs(text, length, [bytes](int v, bool high) {
        if (high) {
            **bytes = static_cast<uint8_t>(v << 4);
        } else {
            **bytes = static_cast<uint8_t>(**bytes | v);
            ++*bytes;
        }
    });
}

int32_t readHexBytes(FormatCall *call, void *) {
    const Span s = readSpan(call);
    ByteTarget target(call);
    if (const int32_t bad = walkHexPairs(s.text, s.length, [&](int v, bool high) { target.putHalf(v, high); }))
        return bad;
    return target.finish(call);
}

int32_t readBitBytes(FormatCall *call, void *) {
    const Span s = readSpan(call);
    ByteTarget target(call);
    uint32_t byte = 0;
    for (int64_t i = 0; i < s.length; ++i) {
        const int64_t place = i + 1;
        if (place % 8 == 1) byte = 0;
        const ZvChar c = s.text[i];
        if (c == u' ') continue;
        if (c != u'0' && c != u'1') return kBadDigit;
        byte = ((byte << 1) | (c == u'1' ? 1u : 0u)) & 0xFFu;
        if (place % 8 == 0 || place == s.length) target.put(static_cast<uint8_t>(byte));
    }
    return target.finish(call);
}

int32_t readQuotedText(FormatCall *call, void *) {
    Span s = readSpan(call);
    ZvChar *out = static_cast<ZvChar *>(call->output);
    const int64_t capacity = call->outputCapacity > 0 ? call->outputCapacity : 0;
    int64_t o = 0;
    while (s.length > 0 && s.text[0] == u' ') ++s.text, --s.length;
    if (s.length > 0 && (s.text[0] == u'"' || s.text[0] == u'\'')) {
        const ZvChar quote = s.text[0];
        for (int64_t i = 1; i < s.length && o < capacity; ++i) {
            if (s.text[i] == quote) {
                if (i + 1 < s.length && s.text[i + 1] == quote) {
                    out[o++] = quote;
                    ++i;
                    continue;
                }
                break;
            }
            out[o++] = s.text[i];
        }
    } else {
        for (int64_t i = 0; i < s.length && o < capacity; ++i) out[o++] = s.text[i];
    }
    while (o < capacity) out[o++] = u' ';
    return 0;
}

int32_t readUuid(FormatCall *call, void *) {
    if (const int32_t refused = checkLimits(call, kUuidLimits)) return refused;
    Span s = withoutOuterBlanks(readSpan(call));
    if (s.length < kUuidUnits) return kBadDigit;
    if (s.text[0] == u'{') {
        ++s.text, --s.length;
        if (s.length > 0 && s.text[s.length - 1] == u'}') --s.length;
        s = withoutOuterBlanks(s);
    }
    if (s.length != kUuidUnits) return kBadDigit;
    uint8_t bytes[kUuidBytes];
    int n = 0;
    for (int i = 0; i < kUuidUnits; ++i) {
        if (isUuidDash(i)) {
            if (s.text[i] != u'-') return kBadDigit;
            continue;
        }
        const int v = hexDigitValue(s.text[i]);
        if (v < 0) return kBadDigit;
        if (n % 2 == 0)
            bytes[n / 2] = static_cast<uint8_t>(v << 4);
        else
            bytes[n / 2] = static_cast<uint8_t>(bytes[n / 2] | v);
        ++n;
    }
    int64_t count = kUuidBytes;
    if (call->width < count) count = call->width;
    if (call->outputCapacity < count) count = call->outputCapacity;
    count = std::max<int64_t>(count, 0);
    if (count > 0) std::memcpy(call->output, bytes, static_cast<size_t>(count));
    call->outputLength = static_cast<int32_t>(count);
    return 0;
}

void reverseBytes(uint8_t *bytes, int64_t length) {
    for (int64_t i = 0, j = length - 1; i < j; ++i, --j) {
        const uint8_t t = bytes[i];
        bytes[i] = bytes[j];
        bytes[j] = t;
    }
}

int32_t encodeBase64Bytes(HostPool *pool, const uint8_t *source, int64_t length, ZvChar **target,
                          int64_t *produced) {
    return encodeBase64(pool, source, length, target, produced);
}

int32_t encodeBase64Units(HostPool *pool, const ZvChar *source, int64_t length, ZvChar **target,
                          int64_t *produced) {
    return encodeBase64(pool, source, length, target, produced);
}

} // namespace zv
