// Small routines on UTF-16 text held as a pointer and a length: finding,
// lengths, changing text in place and numbers.
#include <algorithm>
#include <cstring>

#include "wide/ascii.hpp"
#include "wide/wide.hpp"

namespace zv {

namespace {

constexpr ZvChar kBlank = u' ';

bool inSet(ZvChar c, const ZvChar *set, int64_t setLength) {
    for (int64_t i = 0; i < setLength; ++i)
        if (set[i] == c) return true;
    return false;
}

// The extra spaces that trailingTrimLength's mode 2 drops besides the blank.
bool isMode2Space(ZvChar c) {
    return c == 0x00A0 || c == 0x1680 || (c >= 0x2000 && c <= 0x200A) || c == 0x2028 ||
           c == 0x2029 || c == 0x202F || c == 0x205F || c == 0x3000;
}

void moveChars(ZvChar *to, const ZvChar *from, int64_t count) {
    if (count > 0 && to != from) std::memmove(to, from, static_cast<size_t>(count) * sizeof(ZvChar));
}

} // namespace

// ---- finding ---------------------------------------------------------------

int64_t wideLength(const ZvChar *text) {
    if (!text) return 0;
    int64_t n = 0;
    while (text[n] != 0) ++n;
    return n;
}

// A negative patternLength means a zero-ended pattern.
int64_t findSubstring(const ZvChar *text, int64_t length, const ZvChar *pattern,
                      int64_t patternLength) {
    if (patternLength < 0) patternLength = wideLength(pattern);
    if (patternLength == 0) return 0;
    if (!text || !pattern || patternLength > length) return -1;
    for (int64_t i = 0; i + patternLength <= length; ++i) {
        if (text[i] != pattern[0]) continue;
        int64_t k = 1;
        while (k < patternLength && text[i + k] == pattern[k]) ++k;
        if (k == patternLength) return i;
    }
    return -1;
}

int64_t firstOther(const ZvChar *text, int64_t length, ZvChar c) {
    if (!text || length <= 0) return 0;
    for (int64_t i = 0; i < length; ++i)
        if (text[i] != c) return i;
    return -1;
}

// A null set or a negative setLength is an empty set.
int64_t firstNotIn(const ZvChar *text, int64_t length, const ZvChar *set, int64_t setLength) {
    if (!text) return -1;
    setLength = set ? std::max<int64_t>(setLength, 0) : 0;
    for (int64_t i = 0; i < length; ++i)
        if (!inSet(text[i], set, setLength)) return i;
    return -1;
}

bool allEqual(ZvChar c, const ZvChar *text, int64_t length) {
    if (!text) return true;
    for (int64_t i = 0; i < length; ++i)
        if (text[i] != c) return false;
    return true;
}

// ---- lengths ---------------------------------------------------------------

int64_t lengthWithoutTrailingBlanks(const ZvChar *text, int64_t length) {
    if (!text || length <= 0) return 0;
    while (length > 0 && text[length - 1] == kBlank) --length;
    return length;
}

int64_t trailingTrimLength(const ZvChar *text, int64_t length, int mode) {
    if (mode == 0) return lengthWithoutTrailingBlanks(text, length);
    if (!text || length <= 0) return 0;
    while (length > 0) {
        const ZvChar c = text[length - 1];
        const bool drop = mode == 2 ? (c == kBlank || isMode2Space(c)) : isFixedSpace(c);
        if (!drop) break;
        --length;
    }
    return length;
}

int32_t smaller(int32_t a, int32_t b) { return std::min(a, b); }

// ---- changing text in place ------------------------------------------------

// targetLength >= 0: the target is exactly that long and is blank-filled
// behind the copy. targetLength < 0: a zero-ended target with room for
// -1 - targetLength characters. A negative sourceLength copies nothing.
int64_t copyPadded(const ZvChar *source, int64_t sourceLength, ZvChar *target,
                   int64_t targetLength) {
    if (!target) return 0;
    const bool zeroEnded = targetLength < 0;
    const int64_t room = zeroEnded ? -1 - targetLength : targetLength;
    int64_t n = source && sourceLength > 0 ? sourceLength : 0;
    n = std::min<int64_t>(n, room);
    moveChars(target, source, n);
    if (zeroEnded)
        target[n] = 0;
    else
        fillWide(target + n, kBlank, room - n);
    return n;
}

void justify(ZvChar *text, int64_t length, ZvChar mode, int64_t *outLength, int64_t *outStart) {
    int64_t lead = 0;
    if (text)
        while (lead < length && text[lead] == kBlank) ++lead;
    if (!text || lead >= length) {
        if (outLength) *outLength = 0;
        if (outStart) *outStart = 0;
        return;
    }
    int64_t end = length;
    while (text[end - 1] == kBlank) --end;
    const int64_t content = end - lead;

    int64_t start = lead;
    switch (mode) {
    case u'L':
    case u'l': start = 0; break;
    case u'R':
    case u'r': start = length - content; break;
    case u'C':
    case u'c': start = length - (length + content + 1) / 2; break;
    default: break; // measure only
    }
    if (start != lead) {
        moveChars(text + start, text + lead, content);
        fillWide(text, kBlank, start);
        fillWide(text + start + content, kBlank, length - start - content);
    }
    if (outLength) *outLength = content;
    if (outStart) *outStart = start;
}

// A negative setLength means a zero-ended set; a negative length a
// zero-ended text, which gets its zero again behind the shortened text.
// With a length given the freed characters at the end become blanks.
int64_t removeCharacters(ZvChar *text, int64_t length, const ZvChar *set, int64_t setLength) {
    if (!text) return 0;
    const bool zeroEnded = length < 0;
    if (zeroEnded) length = wideLength(text);
    if (length == 0) return 0;
    if (setLength < 0) setLength = wideLength(set);
    if (!set || setLength == 0) return length;
    // A unit outside the range of the set stays without a search of it.
    const auto [least, most] = std::minmax_element(set, set + setLength);
    const ZvChar low = *least;
    const ZvChar span = ZvChar(*most - low);
    int64_t kept = 0;
    if (setLength == 1) {
        for (int64_t i = 0; i < length; ++i)
            if (text[i] != low) text[kept++] = text[i];
    } else {
        for (int64_t i = 0; i < length; ++i) {
            const ZvChar u = text[i];
            if (ZvChar(u - low) > span || !inSet(u, set, setLength)) text[kept++] = u;
        }
    }
    if (zeroEnded)
        text[kept] = 0;
    else
        fillWide(text + kept, kBlank, length - kept);
    return kept;
}

void translateCharacters(ZvChar *text, int64_t length, const ZvChar *to, const ZvChar *from,
                         int64_t setLength) {
    if (!text || !to || !from) return;
    for (int64_t i = 0; i < length; ++i) {
        for (int64_t k = 0; k < setLength; ++k) {
            if (from[k] == text[i]) {
                text[i] = to[k];
                break;
            }
        }
    }
}

// ---- numbers -----------------------------------------------------------------

int32_t unsignedToText(uint64_t value, int base, bool upperCase, ZvChar *target, int64_t capacity,
                       int64_t *outLength) {
    static constexpr char kUpper[] = "0123456789ABCDEF";
    static constexpr char kLower[] = "0123456789abcdef";
    if (base < 2) base = 10;
    base = std::min<int64_t>(base, 16);
    const char *digits = upperCase ? kUpper : kLower;
    ZvChar buffer[64];
    int64_t count = 0;
    do {
        buffer[63 - count] = static_cast<ZvChar>(digits[value % static_cast<uint64_t>(base)]);
        value /= static_cast<uint64_t>(base);
        ++count;
    } while (value != 0);
    if (!target || count > capacity) return kDigitsDontFit;
    std::memcpy(target, buffer + 64 - count, static_cast<size_t>(count) * sizeof(ZvChar));
    if (outLength) *outLength = count;
    return 0;
}

int32_t readDigits(const ZvChar **cursor, int64_t *remaining, int64_t *value, int32_t *digitCount) {
    uint64_t v = 0;
    int64_t read = 0;
    if (cursor && *cursor && remaining) {
        const ZvChar *p = *cursor;
        int64_t left = *remaining;
        while (left > 0 && isAsciiDigit(*p)) {
            if (read < 19) v = v * 10 + static_cast<uint64_t>(*p - u'0');
            ++read;
            ++p;
            --left;
        }
        *cursor = p;
        *remaining = left;
    }
    if (value) *value = static_cast<int64_t>(v);
    if (digitCount) *digitCount = static_cast<int32_t>(read < 19 ? read : 19);
    return read == 0 ? 1 : 0;
}

} // namespace zv
