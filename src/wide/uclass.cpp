// Character classes: the host's character database when the anchor offers
// NLS services, the module's own range tables otherwise. ASCII is always
// answered from the ASCII class table on the host road.
#include "frame/frame.hpp"
#include "wide/wide.hpp"

namespace zv {

namespace {

constexpr uint32_t kDecimalDigitMask = kClassNd;
constexpr uint32_t kLowerCaseMask = kClassLl;
constexpr uint32_t kUpperCaseMask = kClassLu;
constexpr uint32_t kLetterMask = kClassLu | kClassLl | kClassLt | kClassLm | kClassLo;
constexpr uint32_t kLetterOrDigitMask = kLetterMask | kClassNd;
constexpr uint32_t kHexDigitMask = kClassNd;
constexpr uint32_t kPrintableMask = 0x3ffe0fffu;
constexpr uint32_t kPunctuationMask =
    kClassPc | kClassPd | kClassPs | kClassPe | kClassPi | kClassPf | kClassPo;
constexpr uint32_t kGraphicMask = ~0x17e00u;
constexpr uint32_t kControlMask = kClassCc | kClassCf | kClassZl | kClassZp;

static_assert(kLetterMask == 0x60007u && kLetterOrDigitMask == 0x60047u);
static_assert(kPunctuationMask == 0x3f80000u && kControlMask == 0x3c00u);

constexpr char kCharModuleName[] = "zvchrtab";

NlsServices *hostNls() { return hostAnchor ? hostAnchor->nlsServices : nullptr; }

// Asks the host; the character module is loaded at the first need. Its
// handle is kept without a lock (see the module's note on threads), and a
// failed load is not looked at.
bool askHost(NlsServices *nls, ZvChar c, uint32_t mask) {
    if (!nls->charModule && nls->owner && nls->owner->ops && nls->owner->ops->loadModule)
        nls->charModule = nls->owner->ops->loadModule(nls->owner, kCharModuleName,
                                                      sizeof kCharModuleName - 1, 0);
    if (!nls->ops || !nls->ops->charClass) return false;
    return nls->ops->charClass(nls, c, mask) != 0;
}

bool classTest(ZvChar c, uint32_t mask, CharClass table) {
    NlsServices *nls = hostNls();
    if (!nls) return inRangeTable(rangeTableOf(table), c);
    if (c < 128) return (asciiClassBits(c) & mask) != 0;
    return askHost(nls, c, mask);
}

} // namespace

bool inRangeTable(const RangeTable &table, uint32_t c) {
    int32_t low = 0;
    int32_t high = table.count - 1;
    while (low <= high) {
        const int32_t middle = (low + high) / 2;
        const CodeRange &range = table.ranges[middle];
        if (c < range.first)
            high = middle - 1;
        else if (c > range.last)
            low = middle + 1;
        else
            return true;
    }
    return false;
}

bool isDecimalDigit(ZvChar c) { return classTest(c, kDecimalDigitMask, CharClass::DecimalDigit); }
bool isLowerCase(ZvChar c) { return classTest(c, kLowerCaseMask, CharClass::LowerCase); }
bool isUpperCase(ZvChar c) { return classTest(c, kUpperCaseMask, CharClass::UpperCase); }
bool isLetter(ZvChar c) { return classTest(c, kLetterMask, CharClass::Letter); }
bool isPrintable(ZvChar c) { return classTest(c, kPrintableMask, CharClass::Printable); }
bool isPunctuation(ZvChar c) { return classTest(c, kPunctuationMask, CharClass::Punctuation); }
bool isGraphic(ZvChar c) { return classTest(c, kGraphicMask, CharClass::Graphic); }
bool isControl(ZvChar c) { return classTest(c, kControlMask, CharClass::Control); }

bool isLetterOrDigit(ZvChar c) {
    NlsServices *nls = hostNls();
    if (!nls)
        return inRangeTable(rangeTableOf(CharClass::Letter), c) ||
               inRangeTable(rangeTableOf(CharClass::DecimalDigit), c);
    if (c < 128) return (asciiClassBits(c) & kLetterOrDigitMask) != 0;
    return askHost(nls, c, kLetterOrDigitMask);
}

bool isHexDigit(ZvChar c) {
    if ((c >= 0x41 && c <= 0x46) || (c >= 0x61 && c <= 0x66) || (c >= 0xFF21 && c <= 0xFF26) ||
        (c >= 0xFF41 && c <= 0xFF46))
        return true;
    return classTest(c, kHexDigitMask, CharClass::HexDigit);
}

bool isFixedSpace(ZvChar c) {
    static constexpr CodeRange kSpaces[11] = {
        {0x0009, 0x000D}, {0x0020, 0x0020}, {0x0085, 0x0085}, {0x00A0, 0x00A0},
        {0x1680, 0x1680}, {0x2000, 0x200A}, {0x2028, 0x2028}, {0x2029, 0x2029},
        {0x202F, 0x202F}, {0x205F, 0x205F}, {0x3000, 0x3000},
    };
    for (const CodeRange &range : kSpaces) {
        if (range.first > c) break;
        if (c <= range.last) return true;
    }
    return false;
}

} // namespace zv
