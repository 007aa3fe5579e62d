// Character classes and case of every 16-bit unit against ICU, on both roads:
// without NLS services the module's own tables (the categories of Unicode
// 9.0, the simple case mappings of Unicode 3.0 within the fold pages), with
// them the host's answers. And formatWide's choice of the anchor.
#include <gtest/gtest.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

#include "frame/frame.hpp"
#include "wide/wide.hpp"

namespace {

using S = std::u16string;

// The class bit of each ICU category (in UCharCategory's order): Lu 0, Ll 1,
// Lt 2, Mn 3, Mc 4, Me 5, Nd 6, Nl 7, No 8, Zs 9, Zl 10, Zp 11, Cc 12, Cf 13,
// Cs 14, Co 15, Cn 16, Lm 17, Lo 18, Pc 19, Pd 20, Ps 21, Pe 22, Pi 23,
// Pf 24, Po 25, Sm 26, Sc 27, Sk 28, So 29.
const int kBitOfCategory[30] = {16, 0, 1, 2, 17, 18, 3, 5, 4, 6, 7, 8, 9, 10, 11,
                                12, 13, 15, 14, 20, 21, 22, 19, 25, 26, 27, 28, 29, 23, 24};
uint32_t bitNow(UChar32 c) { return 1u << kBitOfCategory[u_charType(c)]; }

int ageOf(UChar32 c) {
    UVersionInfo v;
    u_charAge(c, v);
    return v[0] * 10 + v[1];
}

// The category in Unicode 9.0: later characters were unassigned, and the
// Georgian Mkhedruli letters were Lo until Unicode 11 made them Ll.
uint32_t bitIn9(UChar32 c) {
    if (ageOf(c) > 90) return 1u << 16;
    return (c >= 0x10D0 && c <= 0x10FA) || (c >= 0x10FD && c <= 0x10FF) ? 1u << 18 : bitNow(c);
}

// A host whose NLS services answer from today's ICU (classes only once its
// character module is loaded), but wrongly for ASCII and for a case question
// not asked with 1: a question the module should not ask shows in the answer.
// Its formatText writes its tag and the format, and answers values[0], and
// 1000 more with a context.
struct TestHost {
    HostAnchor anchor{};
    NlsServices nls{};
    char16_t tag;
    HostAnchor *saved = zv::hostAnchor;
    static inline int module = 0;

    explicit TestHost(bool withNls, char16_t tag_ = u'm', bool install = true) : tag(tag_) {
        static const HostAnchorOps anchorOps = {nullptr, nullptr, nullptr, nullptr, formatText, nullptr, loadModule};
        static const NlsServicesOps nlsOps = {nullptr, nullptr, nullptr, nullptr, charClass, mapCase<true>, mapCase<false>};
        anchor = {&anchorOps, withNls ? &nls : nullptr, nullptr, 0, 0};
        nls = {&nlsOps, &anchor, nullptr};
        if (install) zv::hostAnchor = &anchor;
    }
    ~TestHost() { zv::hostAnchor = saved; }

    static void *loadModule(HostAnchor *, const char *name, int64_t length, int32_t zero) {
        return length == 8 && std::memcmp(name, "zvchrtab", 8) == 0 && zero == 0 ? &module : nullptr;
    }
    static int32_t charClass(NlsServices *n, uint32_t c, uint32_t mask) {
        return ((bitNow(UChar32(c)) & mask) != 0) == (n->charModule == &module && c >= 128);
    }
    template <bool upper> static uint32_t mapCase(NlsServices *, uint32_t c, int32_t one) {
        return c < 128 || one != 1 ? 0xFFFF : uint32_t(upper ? u_toupper(UChar32(c)) : u_tolower(UChar32(c)));
    }
    static int32_t formatText(HostAnchor *a, void *context, const ZvChar *format, int64_t length, ZvChar *target,
                              int64_t capacity, int64_t *produced, int32_t zero, const int64_t *values) {
        const S out = reinterpret_cast<TestHost *>(a)->tag + S(format, size_t(length));
        std::copy_n(out.begin(), *produced = std::min<int64_t>(capacity, int64_t(out.size())), target);
        return int32_t(values[0]) + (context ? 1000 : 0) + zero;
    }
};

// The pages of 128 units in which the fold tables map, and the far mappings
// (beyond 127 units) they make: upper case by all pairs, lower case by all
// but the first, reversed.
const int kFoldPages[] = {0x0000, 0x0080, 0x0100, 0x0180, 0x0200, 0x0280, 0x0380, 0x0400, 0x0480, 0x0500,
                          0x0580, 0x1080, 0x1E00, 0x1E80, 0x1F00, 0x1F80, 0x2100, 0x2480, 0xFF00};
const zv::CasePair kFarPairs[] = {
    {0x017F, 0x0053}, {0x0253, 0x0181}, {0x0254, 0x0186}, {0x0257, 0x018A}, {0x0258, 0x018E},
    {0x0259, 0x018F}, {0x025B, 0x0190}, {0x0260, 0x0193}, {0x0263, 0x0194}, {0x0268, 0x0197},
    {0x0269, 0x0196}, {0x026F, 0x019C}, {0x0272, 0x019D}, {0x0283, 0x01A9}, {0x0288, 0x01AE},
    {0x028A, 0x01B1}, {0x028B, 0x01B2}, {0x0292, 0x01B7}, {0x1F78, 0x1FF8}, {0x1F79, 0x1FF9}};

ZvChar tableCase(UChar32 c, bool upper) {
    for (const zv::CasePair &p : kFarPairs)
        if (upper ? p.from == c : p.to == c && &p != kFarPairs) return upper ? p.to : p.from;
    const UChar32 m = upper ? u_toupper(c) : u_tolower(c);
    const bool inPage = std::find(std::begin(kFoldPages), std::end(kFoldPages), c & ~127) != std::end(kFoldPages);
    return ZvChar(inPage && ageOf(c) <= 30 && ageOf(m) <= 30 && std::abs(m - c) <= 127 ? m : c);
}

// Texts with different units behind their length.
bool equalIgnoringCase(const S &a, const S &b) {
    return zv::equalIgnoringCase((a + u"a").data(), int64_t(a.size()), (b + u"b").data(), int64_t(b.size()));
}

TEST(ClassesAndCase, EveryUnitOnBothRoadsAgreesWithIcu) {
    const std::pair<bool (*)(ZvChar), uint32_t> classes[] = {
        {zv::isDecimalDigit, 0x40},    {zv::isLowerCase, 0x2},          {zv::isUpperCase, 0x1},
        {zv::isLetter, 0x60007},       {zv::isLetterOrDigit, 0x60047},  {zv::isHexDigit, 0x40},
        {zv::isPrintable, 0x3ffe0fff}, {zv::isPunctuation, 0x3f80000}, {zv::isGraphic, ~0x17e00u},
        {zv::isControl, 0x3c00}};
    const S spaces = u"\x09\x0a\x0b\x0c\x0d \x85\xa0\x1680\x2000\x2001\x2002\x2003\x2004\x2005\x2006\x2007"
                     u"\x2008\x2009\x200a\x2028\x2029\x202f\x205f\x3000";
    for (bool withNls : {false, true}) {
        TestHost host(withNls);
        int failures = 0;
        for (UChar32 c = 0; c <= 0xFFFF && failures < 10; ++c) {
            const uint32_t bit = withNls ? bitNow(c) : bitIn9(c);
            // Besides the digits, A to F and a to f, also in full width, are hexadecimal.
            const bool hexLetter = uint32_t(c | 0x20) - 'a' < 6 || uint32_t(c) - 0xFF21 < 6 || uint32_t(c) - 0xFF41 < 6;
            for (const auto &[is, mask] : classes)
                if (is(ZvChar(c)) != ((bit & mask) != 0 || (is == zv::isHexDigit && hexLetter)))
                    ADD_FAILURE() << std::hex << "U+" << c << " mask " << mask << " NLS " << withNls << ++failures;
            if (zv::isFixedSpace(ZvChar(c)) != (spaces.find(char16_t(c)) != S::npos))
                ADD_FAILURE() << std::hex << "isFixedSpace U+" << c << ++failures;

            const bool asksHost = withNls && c > 127;
            const ZvChar upper = asksHost ? ZvChar(u_toupper(c)) : tableCase(c, true);
            ZvChar text[3] = {ZvChar(c), ZvChar(c), ZvChar(c)};
            zv::foldUpper(text, 1);
            zv::foldLower(text + 1, 1);
            if (text[0] != upper || text[1] != (asksHost ? ZvChar(u_tolower(c)) : tableCase(c, false)) ||
                text[2] != c || zv::foldUpperChar(ZvChar(c)) != upper)
                ADD_FAILURE() << std::hex << "case of U+" << c << " NLS " << withNls << ++failures;
            // Always by the tables, whatever the host maps.
            for (UChar32 other : {u_islower(c) ? u_toupper(c) : u_tolower(c), c + 1})
                if (equalIgnoringCase(S(1, char16_t(c)), S(1, char16_t(other))) !=
                    (tableCase(c, false) == tableCase(other, false)))
                    ADD_FAILURE() << std::hex << "equalIgnoringCase U+" << c << " U+" << other << ++failures;
        }
    }
}

TEST(FormatWide, GoesToTheAnchorOfTheCallsInstanceElseToTheModules) {
    TestHost module(true, u'm'), mine(true, u'i', false);
    ExtensionInstance instance{}, stranger{};
    instance.extensionName = "zvlocfmt";
    stranger.extensionName = "zvother1";
    instance.anchor = stranger.anchor = &mine.anchor;
    ExtensionInstance *list[] = {&stranger, &instance, nullptr};
    HostServices services{};
    services.extensionList = list;
    FormatCall call{};
    call.services = &services;
    auto format = [](FormatCall *c) {
        S out(4, u'#');
        int64_t produced = -1, values[] = {7};
        const int32_t status = zv::formatWide(c, u"%i", 2, out.data(), 3, &produced, values);
        return std::to_string(status) + " " + std::string(out.begin(), out.end()) + " " + std::to_string(produced);
    };
    EXPECT_EQ(format(nullptr) + ", " + format(&call), "7 m%i# 3, 1007 i%i# 3");
    list[1] = nullptr; // no instance of this module in the list
    EXPECT_EQ(format(&call), "1007 m%i# 3");
    zv::hostAnchor = nullptr;
    EXPECT_EQ(format(nullptr), std::to_string(int32_t(0x803fc0c9u)) + " #### -1");
}

} // namespace
