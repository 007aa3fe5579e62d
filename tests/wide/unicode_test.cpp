// Character classes and case of every 16-bit unit against ICU, on both roads:
// without NLS services the module's own tables (the categories of Unicode
// 9.0, the simple case mappings of Unicode 3.0 within the fold pages), with
// them the host's answers. And formatWide's choice of the anchor.
#include <gtest/gtest.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>

#include "frame/frame.hpp"
#include "wide/wide.hpp"

namespace {

using S = std::u16string;

// A host whose NLS services answer from today's ICU, classes only once its
// character module is loaded, and wrongly for ASCII and for a case question
// not asked with 1: a question the module should not ask shows in the answer.
struct TestHost {
    HostAnchor anchor{};
    NlsServices nls{};
    char16_t tag;
    HostAnchor *saved = zv::hostAnchor;
    static inline int module = 0;

    TestHost(bool withNls, char16_t tag_ = u'm', bool install = true) : tag(tag_) {
        static const HostAnchorOps anchorOps = {nullptr, nullptr, nullptr, nullptr, formatText, nullptr, loadModule};
        static const NlsServicesOps nlsOps = {nullptr, nullptr, nullptr, nullptr, charClass, charUpper, charLower};
        anchor.ops = &anchorOps;
        anchor.nlsServices = withNls ? &nls : nullptr;
        nls.ops = &nlsOps;
        nls.owner = &anchor;
        if (install) zv::hostAnchor = &anchor;
    }
    ~TestHost() { zv::hostAnchor = saved; }

    static void *loadModule(HostAnchor *, const char *name, int64_t length, int32_t zero) {
        return length == 8 && std::memcmp(name, "zvchrtab", 8) == 0 && zero == 0 ? &module : nullptr;
    }
    static int32_t charClass(NlsServices *n, uint32_t c, uint32_t mask);
    static uint32_t mapCase(NlsServices *n, uint32_t c, int32_t one, bool upper) {
        if (!n || c < 128 || one != 1) return 0xFFFF;
        return uint32_t(upper ? u_toupper(UChar32(c)) : u_tolower(UChar32(c)));
    }
    static uint32_t charUpper(NlsServices *n, uint32_t c, int32_t one) { return mapCase(n, c, one, true); }
    static uint32_t charLower(NlsServices *n, uint32_t c, int32_t one) { return mapCase(n, c, one, false); }
    // Writes its tag and the format; answers values[0], and 1000 more for a context.
    static int32_t formatText(HostAnchor *a, void *context, const ZvChar *format, int64_t length, ZvChar *target,
                              int64_t capacity, int64_t *produced, int32_t zero, const int64_t *values) {
        const S out = reinterpret_cast<TestHost *>(a)->tag + S(format, size_t(length));
        *produced = std::min<int64_t>(capacity, int64_t(out.size()));
        std::copy_n(out.begin(), *produced, target);
        return int32_t(values[0]) + (context ? 1000 : 0) + zero;
    }
};

// The class bit of each ICU category (UCharCategory order): one bit per
// general category, Lu 0, Ll 1, Lt 2, Mn 3, Mc 4, Me 5, Nd 6, Nl 7, No 8,
// Zs 9, Zl 10, Zp 11, Cc 12, Cf 13, Cs 14, Co 15, Cn 16, Lm 17, Lo 18,
// Pc 19, Pd 20, Ps 21, Pe 22, Pi 23, Pf 24, Po 25, Sm 26, Sc 27, Sk 28, So 29.
const int kBitOfCategory[30] = {16, 0,  1,  2,  17, 18, 3,  5,  4,  6,  7,  8,  9,  10, 11,
                                12, 13, 15, 14, 20, 21, 22, 19, 25, 26, 27, 28, 29, 23, 24};

uint32_t bitNow(UChar32 c) { return 1u << kBitOfCategory[u_charType(c)]; }

int ageOf(UChar32 c) {
    UVersionInfo v;
    u_charAge(c, v);
    return v[0] * 10 + v[1];
}

// The category of Unicode 9.0: later characters were unassigned, and the
// Georgian Mkhedruli letters were Lo until Unicode 11 made them Ll.
uint32_t bitIn9(UChar32 c) {
    if (ageOf(c) > 90) return 1u << 16;
    if ((c >= 0x10D0 && c <= 0x10FA) || (c >= 0x10FD && c <= 0x10FF)) return 1u << 18;
    return bitNow(c);
}

int32_t TestHost::charClass(NlsServices *n, uint32_t c, uint32_t mask) {
    const bool answer = (bitNow(UChar32(c)) & mask) != 0;
    return n->charModule == &module && c >= 128 ? answer : !answer;
}

struct Class {
    bool (*is)(ZvChar);
    uint32_t mask;
};
const Class kClasses[] = {
    {zv::isDecimalDigit, 0x40},    {zv::isLowerCase, 0x2},          {zv::isUpperCase, 0x1},
    {zv::isLetter, 0x60007},       {zv::isLetterOrDigit, 0x60047},  {zv::isHexDigit, 0x40},
    {zv::isPrintable, 0x3ffe0fff}, {zv::isPunctuation, 0x3f80000}, {zv::isGraphic, ~0x17e00u},
    {zv::isControl, 0x3c00},
};

bool hexLetter(UChar32 c) {
    return (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f') || (c >= 0xFF21 && c <= 0xFF26) ||
           (c >= 0xFF41 && c <= 0xFF46);
}

TEST(Classes, EveryUnitOnBothRoadsAgreesWithIcu) {
    const S spaces = u"\x09\x0a\x0b\x0c\x0d \x85\xa0\x1680\x2000\x2001\x2002\x2003\x2004\x2005\x2006\x2007"
                     u"\x2008\x2009\x200a\x2028\x2029\x202f\x205f\x3000";
    for (bool withNls : {false, true}) {
        TestHost host(withNls);
        int failures = 0;
        for (UChar32 c = 0; c <= 0xFFFF && failures < 10; ++c) {
            const uint32_t bit = withNls ? bitNow(c) : bitIn9(c);
            for (const Class &k : kClasses) {
                const bool expected = (bit & k.mask) != 0 || (k.is == zv::isHexDigit && hexLetter(c));
                if (k.is(ZvChar(c)) != expected && ++failures)
                    ADD_FAILURE() << std::hex << "U+" << c << " mask " << k.mask << (withNls ? " host" : " tables");
            }
            if (zv::isFixedSpace(ZvChar(c)) != (spaces.find(char16_t(c)) != S::npos) && ++failures)
                ADD_FAILURE() << std::hex << "isFixedSpace U+" << c;
        }
    }
}

// Pages of 128 units in which the fold tables map, and the far mappings
// (beyond 127 units) they make: upper case by all pairs, lower case by all
// but the first, reversed.
const int kFoldPages[] = {0x0000, 0x0080, 0x0100, 0x0180, 0x0200, 0x0280, 0x0380, 0x0400, 0x0480, 0x0500,
                          0x0580, 0x1080, 0x1E00, 0x1E80, 0x1F00, 0x1F80, 0x2100, 0x2480, 0xFF00};
const zv::CasePair kFarPairs[] = {
    {0x017F, 0x0053}, {0x0253, 0x0181}, {0x0254, 0x0186}, {0x0257, 0x018A}, {0x0258, 0x018E},
    {0x0259, 0x018F}, {0x025B, 0x0190}, {0x0260, 0x0193}, {0x0263, 0x0194}, {0x0268, 0x0197},
    {0x0269, 0x0196}, {0x026F, 0x019C}, {0x0272, 0x019D}, {0x0283, 0x01A9}, {0x0288, 0x01AE},
    {0x028A, 0x01B1}, {0x028B, 0x01B2}, {0x0292, 0x01B7}, {0x1F78, 0x1FF8}, {0x1F79, 0x1FF9},
};

ZvChar tableCase(UChar32 c, bool upper) {
    for (const zv::CasePair &p : kFarPairs) {
        if (upper && p.from == c) return p.to;
        if (!upper && p.to == c && &p != kFarPairs) return p.from;
    }
    const UChar32 m = upper ? u_toupper(c) : u_tolower(c);
    const bool inPage = std::find(std::begin(kFoldPages), std::end(kFoldPages), c & ~127) != std::end(kFoldPages);
    return ZvChar(inPage && ageOf(c) <= 30 && ageOf(m) <= 30 && std::abs(m - c) <= 127 ? m : c);
}

bool equalIgnoringCase(const S &a, const S &b) {
    return zv::equalIgnoringCase(a.data(), int64_t(a.size()), b.data(), int64_t(b.size()));
}

TEST(Case, EveryUnitOnBothRoadsAgreesWithIcu) {
    for (bool withNls : {false, true}) {
        TestHost host(withNls);
        int failures = 0;
        for (UChar32 c = 0; c <= 0xFFFF && failures < 10; ++c) {
            const bool asksHost = withNls && c > 127;
            const ZvChar upper = asksHost ? ZvChar(u_toupper(c)) : tableCase(c, true);
            const ZvChar lower = asksHost ? ZvChar(u_tolower(c)) : tableCase(c, false);
            ZvChar text[3] = {ZvChar(c), ZvChar(c), ZvChar(c)};
            zv::foldUpper(text, 1);
            zv::foldLower(text + 1, 1);
            if (text[0] != upper || text[1] != lower || text[2] != c || zv::foldUpperChar(ZvChar(c)) != upper)
                ADD_FAILURE() << std::hex << "U+" << c << (withNls ? " host" : " tables") << ++failures;
            // Always the tables, even with a host that maps otherwise.
            for (UChar32 other : {u_islower(c) ? u_toupper(c) : u_tolower(c), c + 1}) {
                const S a(1, char16_t(c)), b(1, char16_t(other));
                if (equalIgnoringCase(a, b) != (tableCase(c, false) == tableCase(other, false)))
                    ADD_FAILURE() << std::hex << "equalIgnoringCase U+" << c << " U+" << other << ++failures;
            }
        }
    }
}

TEST(Case, TextsFoldUpToTheirLengthAndCompareWhole) {
    TestHost host(false);
    const S letters = u"aAbB\xe9\xc9\x17f\x253\x181\x130i\x3c2\x3c3\x3a3\xff21\xff41";
    std::mt19937 rng(8);
    for (int n = 0; n < 2000; ++n) {
        S a(rng() % 6, u' '), b;
        for (char16_t &c : a) c = letters[rng() % letters.size()];
        for (char16_t c : a) b += rng() % 2 ? tableCase(c, true) : char16_t(rng() % 4 ? c : u'b');
        bool equal = true;
        for (size_t i = 0; i < a.size(); ++i) equal &= tableCase(a[i], false) == tableCase(b[i], false);
        ASSERT_EQ(equalIgnoringCase(a, b), equal) << n;
        ASSERT_FALSE(equalIgnoringCase(a, b + u"a")) << n;
        S up = a + u"ab", down = a + u"AB";
        zv::foldUpper(up.data(), int64_t(a.size()));
        zv::foldLower(down.data(), int64_t(a.size()));
        for (size_t i = 0; i < a.size(); ++i) {
            ASSERT_EQ(up[i], tableCase(a[i], true)) << n;
            ASSERT_EQ(down[i], tableCase(a[i], false)) << n;
        }
        ASSERT_EQ(up.substr(a.size()) + down.substr(a.size()), u"abAB") << n;
    }
    S text = u"ab";
    zv::foldUpper(text.data(), 0);
    zv::foldLower(text.data(), -2);
    EXPECT_EQ(text, u"ab");
    EXPECT_FALSE(zv::equalIgnoringCase(nullptr, 3, nullptr, 2));
}

TEST(FormatWide, GoesToTheAnchorOfTheCallsInstanceElseToTheModules) {
    TestHost module(true, u'm'), mine(true, u'i', false);
    ExtensionInstance instance{}, stranger{};
    instance.extensionName = "zvlocfmt";
    instance.anchor = &mine.anchor;
    stranger.extensionName = "zvother1";
    stranger.anchor = &mine.anchor;
    ExtensionInstance *ours[] = {&stranger, &instance, nullptr}, *others[] = {&stranger, nullptr};
    HostServices services{};
    FormatCall call{};
    call.services = &services;
    const int64_t values[] = {7};
    const struct {
        ExtensionInstance **list;
        FormatCall *call;
        int32_t status;
        const char16_t *text;
    } cases[] = {{ours, nullptr, 7, u"m%i"}, {ours, &call, 1007, u"i%i"}, {others, &call, 1007, u"m%i"}};
    for (const auto &k : cases) {
        services.extensionList = k.list;
        S out(4, u'#');
        int64_t produced = -1;
        EXPECT_EQ(zv::formatWide(k.call, u"%i", 2, out.data(), 3, &produced, values), k.status);
        EXPECT_EQ(out, S(k.text) + u"#");
        EXPECT_EQ(produced, 3);
    }
    zv::hostAnchor = nullptr;
    int64_t produced = -1;
    EXPECT_EQ(zv::formatWide(nullptr, u"%i", 2, nullptr, 0, &produced, values), int32_t(0x803fc0c9u));
    EXPECT_EQ(produced, -1);
}

} // namespace
