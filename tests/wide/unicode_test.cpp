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

// What the fold tables make of a unit, one way: ICU's simple mapping; or
// the unit itself, always for one beyond Unicode 3.0, at U+0300 or above, or
// whose mapping is far (more than 127 units away); or a far unit that the
// other way maps back (the tables keep some far pairs of their own). Basic
// Latin maps as ICU does.
bool tableMaps(UChar32 c, UChar32 got, bool upper, const std::vector<ZvChar> &otherWay) {
    const UChar32 m = upper ? u_toupper(c) : u_tolower(c);
    if (got == m || c < 128) return got == m;
    if (std::abs(got - c) > 127) return otherWay[size_t(got)] == c;
    return got == c && (c >= 0x300 || ageOf(c) > 30 || ageOf(m) > 30 || std::abs(m - c) > 127);
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
    std::vector<ZvChar> lower(0x10000), upper(0x10000);
    {
        TestHost host(false);
        for (UChar32 c = 0; c <= 0xFFFF; ++c) {
            lower[c] = upper[c] = ZvChar(c);
            zv::foldLower(&lower[c], 1), zv::foldUpper(&upper[c], 1);
        }
    }
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
            ZvChar text[3] = {ZvChar(c), ZvChar(c), ZvChar(c)};
            zv::foldUpper(text, 1);
            zv::foldLower(text + 1, 1);
            const bool upperOk = asksHost ? text[0] == u_toupper(c) : tableMaps(c, text[0], true, lower);
            const bool lowerOk = asksHost ? text[1] == u_tolower(c) : tableMaps(c, text[1], false, upper);
            // A far pair is kept both ways: what a capital lowers to raises back to it.
            const bool pairOk = !u_isupper(c) || lower[c] == c || upper[lower[c]] == c;
            if (!upperOk || !lowerOk || !pairOk || text[2] != c || zv::foldUpperChar(ZvChar(c)) != text[0])
                ADD_FAILURE() << std::hex << "case of U+" << c << " NLS " << withNls << ++failures;
            // Always by the tables, whatever the host maps.
            for (UChar32 other : {u_islower(c) ? u_toupper(c) : u_tolower(c), c + 1})
                if (equalIgnoringCase(S(1, char16_t(c)), S(1, char16_t(other))) !=
                    (other <= 0xFFFF && lower[c] == lower[other]))
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
