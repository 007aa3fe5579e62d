// The module's own character tables, generated into unicode_tables.inc.
#include "wide/wide.hpp"

namespace zv {

#include "wide/unicode_tables.inc"

namespace {

template <size_t N>
constexpr RangeTable tableOf(const CodeRange (&ranges)[N]) {
    return RangeTable{ranges, static_cast<int32_t>(N)};
}

constexpr FoldTables kFoldTables = {
    kFoldPageIndex,
    kUpperDeltas,
    kLowerDeltas,
    static_cast<int32_t>(sizeof kUpperDeltas / sizeof kUpperDeltas[0]),
    kUpperPairs,
    static_cast<int32_t>(sizeof kUpperPairs / sizeof kUpperPairs[0]),
    kLowerPairs,
    static_cast<int32_t>(sizeof kLowerPairs / sizeof kLowerPairs[0]),
};

} // namespace

RangeTable rangeTableOf(CharClass cls) {
    switch (cls) {
    case CharClass::DecimalDigit: return tableOf(kDecimalDigitRanges);
    case CharClass::LowerCase: return tableOf(kLowerCaseRanges);
    case CharClass::UpperCase: return tableOf(kUpperCaseRanges);
    case CharClass::Letter: return tableOf(kLetterRanges);
    case CharClass::HexDigit: return tableOf(kHexDigitRanges);
    case CharClass::Printable: return tableOf(kPrintableRanges);
    case CharClass::Punctuation: return tableOf(kPunctuationRanges);
    case CharClass::Graphic: return tableOf(kGraphicRanges);
    case CharClass::Control: return tableOf(kControlRanges);
    }
    return RangeTable{nullptr, 0};
}

uint32_t asciiClassBits(ZvChar c) {
    return c < 128 ? kAsciiClassTable.entries[c].classBits : 0;
}

const FoldTables &foldTables() { return kFoldTables; }

} // namespace zv
