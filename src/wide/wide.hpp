// The wide-text kit: small routines on UTF-16 text held as a pointer and a
// length, character classes and case. A character is one 16-bit unit; a
// blank is U+0020; a search that finds nothing gives -1. Nothing here
// allocates or keeps state (but the handle of the host's character module).
#pragma once

#include <cstdint>
#include <cstring>

#include "zvlocfmt/zvlocfmt.h"

namespace zv {

// ---- finding ---------------------------------------------------------------
int64_t wideLength(const ZvChar *text);
// Inline: the readers look for a unit in short texts several times a call.
inline int64_t findChar(const ZvChar *text, int64_t length, ZvChar c) {
    if (!text) return -1;
    for (int64_t i = 0; i < length; ++i)
        if (text[i] == c) return i;
    return -1;
}
int64_t findSubstring(const ZvChar *text, int64_t length, const ZvChar *pattern,
                      int64_t patternLength);
int64_t firstOther(const ZvChar *text, int64_t length, ZvChar c);
int64_t firstNotIn(const ZvChar *text, int64_t length, const ZvChar *set, int64_t setLength);
bool allEqual(ZvChar c, const ZvChar *text, int64_t length);

// ---- lengths ---------------------------------------------------------------
int64_t lengthWithoutTrailingBlanks(const ZvChar *text, int64_t length);
int64_t trailingTrimLength(const ZvChar *text, int64_t length, int mode);
int32_t smaller(int32_t a, int32_t b);

// ---- changing text in place ------------------------------------------------
// Inline: the formats blank their fields and copy their texts on every
// call. Up to sixteen units take two stores of eight, or of four, the
// second ending at the end, over units already written; longer runs go
// eight units a store.
constexpr int64_t kWideChunkUnits = 8;
constexpr int64_t kWideWordUnits = 4;

inline void fillWide(ZvChar *target, ZvChar c, int64_t count) {
    if (!target) return;
    if (count >= kWideChunkUnits) {
        ZvChar chunk[kWideChunkUnits];
        for (ZvChar &u : chunk) u = c;
        int64_t i = 0;
        for (; i + 2 * kWideChunkUnits <= count; i += kWideChunkUnits) std::memcpy(target + i, chunk, sizeof chunk);
        std::memcpy(target + i, chunk, sizeof chunk);
        std::memcpy(target + count - kWideChunkUnits, chunk, sizeof chunk);
        return;
    }
    if (count >= kWideWordUnits) {
        const uint64_t word = uint64_t{c} * 0x0001000100010001u;
        std::memcpy(target, &word, sizeof word);
        std::memcpy(target + count - kWideWordUnits, &word, sizeof word);
        return;
    }
    for (int64_t i = 0; i < count; ++i) target[i] = c;
}

// count units from `from` to `to`, which must not overlap.
inline void copyWide(ZvChar *to, const ZvChar *from, int64_t count) {
    constexpr size_t kChunkBytes = kWideChunkUnits * sizeof(ZvChar);
    if (count >= kWideChunkUnits && count <= 2 * kWideChunkUnits) {
        std::memcpy(to, from, kChunkBytes);
        std::memcpy(to + count - kWideChunkUnits, from + count - kWideChunkUnits, kChunkBytes);
    } else if (count > 0) {
        std::memcpy(to, from, size_t(count) * sizeof(ZvChar));
    }
}
int64_t copyPadded(const ZvChar *source, int64_t sourceLength, ZvChar *target,
                   int64_t targetLength);
void justify(ZvChar *text, int64_t length, ZvChar mode, int64_t *outLength, int64_t *outStart);
int64_t removeCharacters(ZvChar *text, int64_t length, const ZvChar *set, int64_t setLength);
void translateCharacters(ZvChar *text, int64_t length, const ZvChar *to, const ZvChar *from,
                         int64_t setLength);

// ---- numbers -----------------------------------------------------------------
constexpr int32_t kDigitsDontFit = static_cast<int32_t>(0x803fc0c9u);
int32_t unsignedToText(uint64_t value, int base, bool upperCase, ZvChar *target, int64_t capacity,
                       int64_t *outLength);
// Nonzero when no digit was read.
int32_t readDigits(const ZvChar **cursor, int64_t *remaining, int64_t *value, int32_t *digitCount);

// ---- output through the host -----------------------------------------------
// Hands the work to the host's formatText on the anchor of the call's
// instance, or on the module's own anchor when `call` is null.
int32_t formatWide(FormatCall *call, const ZvChar *format, int64_t formatLength, ZvChar *target,
                   int64_t capacity, int64_t *produced, const int64_t *values);

// ---- classes -----------------------------------------------------------------
bool isDecimalDigit(ZvChar c);
bool isLowerCase(ZvChar c);
bool isUpperCase(ZvChar c);
bool isLetter(ZvChar c);
bool isLetterOrDigit(ZvChar c);
bool isHexDigit(ZvChar c);
bool isPrintable(ZvChar c);
bool isPunctuation(ZvChar c);
bool isGraphic(ZvChar c);
bool isControl(ZvChar c);
bool isFixedSpace(ZvChar c);

// The value of an ASCII hexadecimal digit of either case, or -1.
inline int hexDigitValue(ZvChar c) {
    if (c >= u'0' && c <= u'9') return c - u'0';
    if (c >= u'A' && c <= u'F') return c - u'A' + 10;
    if (c >= u'a' && c <= u'f') return c - u'a' + 10;
    return -1;
}

// ---- case ------------------------------------------------------------------
void foldUpper(ZvChar *text, int64_t length);
void foldLower(ZvChar *text, int64_t length);
ZvChar foldUpperBeyondAscii(ZvChar c);
// One unit folded as foldUpper folds it; ASCII without a call.
constexpr ZvChar foldUpperChar(ZvChar c) {
    if (c >= 128) return foldUpperBeyondAscii(c);
    return c >= u'a' && c <= u'z' ? static_cast<ZvChar>(c - (u'a' - u'A')) : c;
}
bool equalIgnoringCase(const ZvChar *text, int64_t length, const ZvChar *other,
                       int64_t otherLength);

// ---- the tables, for those who check them ------------------------------------
struct CodeRange {
    uint32_t first;
    uint32_t last;
};
struct RangeTable {
    const CodeRange *ranges;
    int32_t count;
};
enum class CharClass { DecimalDigit, LowerCase, UpperCase, Letter, HexDigit, Printable,
                       Punctuation, Graphic, Control };
RangeTable rangeTableOf(CharClass cls);
// The binary search of the table road: true when c lies in one of the ranges.
bool inRangeTable(const RangeTable &table, uint32_t c);
uint32_t asciiClassBits(ZvChar c); // classBits of the ASCII table; 0 above 127

// One bit per general category; the masks handed to the host's charClass
// are unions of these.
enum ClassBit : uint32_t {
    kClassLu = 1u << 0, kClassLl = 1u << 1, kClassLt = 1u << 2, kClassMn = 1u << 3,
    kClassMc = 1u << 4, kClassMe = 1u << 5, kClassNd = 1u << 6, kClassNl = 1u << 7,
    kClassNo = 1u << 8, kClassZs = 1u << 9, kClassZl = 1u << 10, kClassZp = 1u << 11,
    kClassCc = 1u << 12, kClassCf = 1u << 13, kClassCs = 1u << 14, kClassCo = 1u << 15,
    kClassCn = 1u << 16, kClassLm = 1u << 17, kClassLo = 1u << 18, kClassPc = 1u << 19,
    kClassPd = 1u << 20, kClassPs = 1u << 21, kClassPe = 1u << 22, kClassPi = 1u << 23,
    kClassPf = 1u << 24, kClassPo = 1u << 25, kClassSm = 1u << 26, kClassSc = 1u << 27,
    kClassSk = 1u << 28, kClassSo = 1u << 29,
};
struct AsciiClassEntry {
    uint32_t classBits;
};
struct AsciiClassTable {
    AsciiClassEntry entries[128];
};

// The fold tables: a page index over the BMP (one entry per 128 code points,
// -1 for a page without mappings), 128 deltas per page for each case, and
// the far mappings that a delta of -128 sends to.
constexpr int8_t kFarMapping = -128;
struct CasePair {
    uint16_t from;
    uint16_t to;
};
struct FoldTables {
    const int16_t *pageIndex;          // 512 entries
    const int8_t (*upperDeltas)[128];  // pageCount pages
    const int8_t (*lowerDeltas)[128];
    int32_t pageCount;
    const CasePair *upperPairs;
    int32_t upperPairCount;
    const CasePair *lowerPairs;
    int32_t lowerPairCount;
};
const FoldTables &foldTables();

// The table road alone, whatever the host offers (used by equalIgnoringCase).
ZvChar tableUpper(ZvChar c);
ZvChar tableLower(ZvChar c);

} // namespace zv
