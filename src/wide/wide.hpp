// The wide-text kit: small routines on UTF-16 text held as a pointer and a
// length, character classes and case. A character is one 16-bit unit; a
// blank is U+0020; a search that finds nothing gives -1. Nothing here
// allocates or keeps state (but the handle of the host's character module).
#pragma once

#include <cstdint>

#include "zvlocfmt/zvlocfmt.h"

namespace zv {

// ---- finding ---------------------------------------------------------------
int64_t wideLength(const ZvChar *text);
int64_t findChar(const ZvChar *text, int64_t length, ZvChar c);
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
void fillWide(ZvChar *target, ZvChar c, int64_t count);
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

// ---- case ------------------------------------------------------------------
void foldUpper(ZvChar *text, int64_t length);
void foldLower(ZvChar *text, int64_t length);
ZvChar foldUpperChar(ZvChar c);
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
uint32_t asciiClassBits(ZvChar c); // classBits of the ASCII table; 0 above 127

} // namespace zv
