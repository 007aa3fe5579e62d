// Character classes: the range tables, the ASCII class table, the table road
// against ICU's categories, and the host road through a counting host.
#include <gtest/gtest.h>
#include <unicode/uchar.h>

#include <functional>
#include <string>
#include <vector>

#include "support.hpp"

namespace {

using widetest::AnchorGuard;
using widetest::CountingHost;
using widetest::icuAge;
using widetest::icuClassBit;

using ClassFn = bool (*)(ZvChar);

struct ClassRoutine {
    const char *name;
    ClassFn fn;
    uint32_t mask; // what the host is asked with
};

const ClassRoutine kRoutines[] = {
    {"isDecimalDigit", zv::isDecimalDigit, 0x40},
    {"isLowerCase", zv::isLowerCase, 0x2},
    {"isUpperCase", zv::isUpperCase, 0x1},
    {"isLetter", zv::isLetter, 0x60007},
    {"isLetterOrDigit", zv::isLetterOrDigit, 0x60047},
    {"isHexDigit", zv::isHexDigit, 0x40},
    {"isPrintable", zv::isPrintable, 0x3ffe0fff},
    {"isPunctuation", zv::isPunctuation, 0x3f80000},
    {"isGraphic", zv::isGraphic, 0xfffe81ffu},
    {"isControl", zv::isControl, 0x3c00},
};

// ---- the range tables ---------------------------------------------------------

struct TableCount {
    zv::CharClass cls;
    const char *name;
    int32_t ranges;
};

const TableCount kTableCounts[] = {
    {zv::CharClass::DecimalDigit, "DecimalDigit", 54}, {zv::CharClass::LowerCase, "LowerCase", 633},
    {zv::CharClass::UpperCase, "UpperCase", 627},      {zv::CharClass::Letter, "Letter", 571},
    {zv::CharClass::HexDigit, "HexDigit", 58},         {zv::CharClass::Printable, "Printable", 641},
    {zv::CharClass::Punctuation, "Punctuation", 168}, {zv::CharClass::Graphic, "Graphic", 641},
    {zv::CharClass::Control, "Control", 20},
};

class RangeTableTest : public ::testing::TestWithParam<TableCount> {};

TEST_P(RangeTableTest, HasItsRangeCount) {
    EXPECT_EQ(zv::rangeTableOf(GetParam().cls).count, GetParam().ranges);
}

TEST_P(RangeTableTest, RangesAreSortedDisjointAndMaximal) {
    const zv::RangeTable t = zv::rangeTableOf(GetParam().cls);
    ASSERT_NE(t.ranges, nullptr);
    for (int32_t i = 0; i < t.count; ++i) {
        EXPECT_LE(t.ranges[i].first, t.ranges[i].last) << i;
        EXPECT_LE(t.ranges[i].last, 0x10FFFFu) << i;
        if (i > 0) {
            EXPECT_GT(t.ranges[i].first, t.ranges[i - 1].last + 1) << i;
        }
    }
}

// The binary search against a bitmap painted from the same ranges, over
// every code point of all planes: first and last index included.
TEST_P(RangeTableTest, SearchAgreesWithPaintedBitmapOverAllPlanes) {
    const zv::RangeTable t = zv::rangeTableOf(GetParam().cls);
    std::vector<bool> painted(0x110000, false);
    for (int32_t i = 0; i < t.count; ++i)
        for (uint32_t c = t.ranges[i].first; c <= t.ranges[i].last; ++c) painted[c] = true;
    int mismatches = 0;
    for (uint32_t c = 0; c < 0x110000; ++c)
        if (zv::inRangeTable(t, c) != painted[c] && ++mismatches < 5)
            ADD_FAILURE() << std::hex << "U+" << c;
    EXPECT_EQ(mismatches, 0);
    // Both ends of the last range are found.
    EXPECT_TRUE(zv::inRangeTable(t, t.ranges[t.count - 1].first));
    EXPECT_TRUE(zv::inRangeTable(t, t.ranges[t.count - 1].last));
    EXPECT_FALSE(zv::inRangeTable(t, t.ranges[t.count - 1].last + 1));
    EXPECT_TRUE(zv::inRangeTable(t, t.ranges[0].first));
}

INSTANTIATE_TEST_SUITE_P(Classes, RangeTableTest, ::testing::ValuesIn(kTableCounts),
                         [](const auto &info) { return std::string(info.param.name); });

struct SmallTableCase {
    uint32_t c;
    bool found;
};

TEST(RangeSearch, SmallTablesIncludeBothEnds) {
    const zv::CodeRange one[] = {{5, 5}};
    const zv::CodeRange three[] = {{1, 2}, {4, 4}, {7, 9}};
    const zv::RangeTable tOne{one, 1}, tThree{three, 3}, tEmpty{one, 0};
    const SmallTableCase oneCases[] = {{4, false}, {5, true}, {6, false}, {0, false}};
    for (const auto &k : oneCases) EXPECT_EQ(zv::inRangeTable(tOne, k.c), k.found) << k.c;
    const SmallTableCase threeCases[] = {{0, false}, {1, true},  {2, true},  {3, false},
                                         {4, true},  {5, false}, {6, false}, {7, true},
                                         {8, true},  {9, true},  {10, false}};
    for (const auto &k : threeCases) EXPECT_EQ(zv::inRangeTable(tThree, k.c), k.found) << k.c;
    EXPECT_FALSE(zv::inRangeTable(tEmpty, 5));
}

// ---- the table road against ICU ------------------------------------------------

// The category of a unit in Unicode 9.0 as ICU reports it today: unassigned
// then means Cn. Documented difference: the Georgian Mkhedruli letters
// U+10D0..U+10FA and U+10FD..U+10FF were Lo in 9.0 (Ll since 11.0).
uint32_t bitIn9(UChar32 c) {
    const int8_t t = u_charType(c);
    if (t == U_UNASSIGNED || icuAge(c) > 90) return 1u << 16;
    if ((c >= 0x10D0 && c <= 0x10FA) || (c >= 0x10FD && c <= 0x10FF)) return 1u << 18;
    return icuClassBit(t);
}

bool hexLetter(UChar32 c) {
    return (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f') || (c >= 0xFF21 && c <= 0xFF26) ||
           (c >= 0xFF41 && c <= 0xFF46);
}

struct IcuExpectation {
    const char *name;
    ClassFn fn;
    std::function<bool(UChar32)> expected;
};

TEST(TableRoad, EveryUnitAgreesWithIcuCategoriesOfUnicode9) {
    AnchorGuard guard;
    zv::hostAnchor = nullptr;
    const uint32_t letters = 0x60007;
    const std::vector<IcuExpectation> cases = {
        {"isDecimalDigit", zv::isDecimalDigit, [](UChar32 c) { return bitIn9(c) == 0x40; }},
        {"isLowerCase", zv::isLowerCase, [](UChar32 c) { return bitIn9(c) == 0x2; }},
        {"isUpperCase", zv::isUpperCase, [](UChar32 c) { return bitIn9(c) == 0x1; }},
        {"isLetter", zv::isLetter, [=](UChar32 c) { return (bitIn9(c) & letters) != 0; }},
        {"isLetterOrDigit", zv::isLetterOrDigit,
         [=](UChar32 c) { return (bitIn9(c) & (letters | 0x40)) != 0; }},
        {"isHexDigit", zv::isHexDigit, [](UChar32 c) { return bitIn9(c) == 0x40 || hexLetter(c); }},
        // Not Cc, Cf, Cs, Co or Cn.
        {"isPrintable", zv::isPrintable, [](UChar32 c) { return (bitIn9(c) & 0x1f000) == 0; }},
        {"isPunctuation", zv::isPunctuation,
         [](UChar32 c) {
             const int8_t t = u_charType(c);
             return bitIn9(c) != (1u << 16) &&
                    (t == U_CONNECTOR_PUNCTUATION || t == U_DASH_PUNCTUATION ||
                     t == U_START_PUNCTUATION || t == U_END_PUNCTUATION ||
                     t == U_INITIAL_PUNCTUATION || t == U_FINAL_PUNCTUATION ||
                     t == U_OTHER_PUNCTUATION);
         }},
        // Not Zs, Zl, Zp, Cc, Cf, Cs or Cn; private use is graphic.
        {"isGraphic", zv::isGraphic,
         [](UChar32 c) {
             const int8_t t = u_charType(c);
             if (t == U_PRIVATE_USE_CHAR) return true;
             return bitIn9(c) != (1u << 16) && t != U_SPACE_SEPARATOR && t != U_LINE_SEPARATOR &&
                    t != U_PARAGRAPH_SEPARATOR && t != U_CONTROL_CHAR && t != U_FORMAT_CHAR &&
                    t != U_SURROGATE;
         }},
        {"isControl", zv::isControl,
         [](UChar32 c) {
             const int8_t t = u_charType(c);
             return bitIn9(c) != (1u << 16) && (t == U_CONTROL_CHAR || t == U_FORMAT_CHAR ||
                                                t == U_LINE_SEPARATOR || t == U_PARAGRAPH_SEPARATOR);
         }},
    };
    for (const auto &k : cases) {
        int mismatches = 0;
        for (UChar32 c = 0; c <= 0xFFFF; ++c) {
            const bool got = k.fn(static_cast<ZvChar>(c));
            if (got != k.expected(c) && ++mismatches <= 5)
                ADD_FAILURE() << k.name << std::hex << " U+" << c << " gives " << got;
        }
        EXPECT_EQ(mismatches, 0) << k.name;
    }
}

struct ClassFact {
    const char *name;
    ClassFn fn;
    ZvChar c;
    bool expected;
};

const ClassFact kTableFacts[] = {
    {"Arabic-Indic zero is a digit", zv::isDecimalDigit, 0x0660, true},
    {"fullwidth 9 is a digit", zv::isDecimalDigit, 0xFF19, true},
    {"superscript 2 is no decimal digit", zv::isDecimalDigit, 0x00B2, false},
    {"fullwidth A is hex", zv::isHexDigit, 0xFF21, true},
    {"fullwidth f is hex", zv::isHexDigit, 0xFF46, true},
    {"fullwidth G is not hex", zv::isHexDigit, 0xFF27, false},
    {"G is not hex", zv::isHexDigit, u'G', false},
    {"Devanagari 7 is hex (a digit)", zv::isHexDigit, 0x096D, true},
    {"sharp s is lower", zv::isLowerCase, 0x00DF, true},
    {"Georgian an is not lower", zv::isLowerCase, 0x10D0, false},
    {"Georgian an is a letter", zv::isLetter, 0x10D0, true},
    {"Dz titlecase is a letter", zv::isLetter, 0x01C5, true},
    {"Dz titlecase is neither upper", zv::isUpperCase, 0x01C5, false},
    {"Dz titlecase is neither lower", zv::isLowerCase, 0x01C5, false},
    {"CJK ideograph is a letter", zv::isLetter, 0x4E00, true},
    {"Arabic-Indic 5 is letter or digit", zv::isLetterOrDigit, 0x0665, true},
    {"minus sign is no letter or digit", zv::isLetterOrDigit, 0x2212, false},
    {"no-break space is printable", zv::isPrintable, 0x00A0, true},
    {"no-break space is not graphic", zv::isGraphic, 0x00A0, false},
    {"private use is graphic", zv::isGraphic, 0xE000, true},
    {"private use is not printable", zv::isPrintable, 0xE000, false},
    {"surrogate is neither printable", zv::isPrintable, 0xD800, false},
    {"surrogate is neither graphic", zv::isGraphic, 0xD800, false},
    {"U+1F00 is printable", zv::isPrintable, 0x1F00, true},
    {"U+08E2 (9.0) is a control", zv::isControl, 0x08E2, true},
    {"line separator is a control", zv::isControl, 0x2028, true},
    {"BOM is a control", zv::isControl, 0xFEFF, true},
    {"U+0378 unassigned is not printable", zv::isPrintable, 0x0378, false},
    {"U+0860 Syriac (10.0) is no letter", zv::isLetter, 0x0860, false},
    {"U+A7AE (9.0) is upper", zv::isUpperCase, 0xA7AE, true},
    {"U+A7AF (11.0) is not lower", zv::isLowerCase, 0xA7AF, false},
    {"left guillemet is punctuation", zv::isPunctuation, 0x00AB, true},
    {"section sign is punctuation", zv::isPunctuation, 0x00A7, true},
    {"dollar is no punctuation", zv::isPunctuation, u'$', false},
    {"fullwidth low line is punctuation", zv::isPunctuation, 0xFF3F, true},
};

TEST(TableRoad, Facts) {
    AnchorGuard guard;
    zv::hostAnchor = nullptr;
    for (const auto &k : kTableFacts) EXPECT_EQ(k.fn(k.c), k.expected) << k.name;
}

TEST(TableRoad, AnchorWithoutNlsUsesTheTables) {
    AnchorGuard guard;
    CountingHost host;
    host.withoutNls();
    zv::hostAnchor = host.anchor();
    EXPECT_TRUE(zv::isDecimalDigit(0x0660));
    EXPECT_FALSE(zv::isLowerCase(0x10D0));
    EXPECT_TRUE(zv::isLetter(0x00E9));
    EXPECT_EQ(host.hostCalls(), 0u);
}

// ---- the ASCII class table ----------------------------------------------------

struct AsciiRow {
    uint32_t bit;
    std::u16string chars;
};

TEST(AsciiClassTable, EveryRowOfTheTable) {
    std::u16string controls;
    for (char16_t c = 0; c < 32; ++c) controls.push_back(c);
    controls.push_back(127);
    std::u16string upper, lower, digits;
    for (char16_t c = u'A'; c <= u'Z'; ++c) upper.push_back(c);
    for (char16_t c = u'a'; c <= u'z'; ++c) lower.push_back(c);
    for (char16_t c = u'0'; c <= u'9'; ++c) digits.push_back(c);
    const AsciiRow rows[] = {
        {0x1, upper},
        {0x2, lower},
        {0x40, digits},
        {0x200, u" "},
        {0x1000, controls},
        {0x80000, u"_"},
        {0x100000, u"-"},
        {0x200000, u"([{"},
        {0x400000, u")]}"},
        {0x2000000, u"!\"#%&'*,./:;?@\\"},
        {0x4000000, u"+<=>|~"},
        {0x8000000, u"$"},
        {0x10000000, u"^`"},
    };
    int covered = 0;
    for (const auto &row : rows) {
        for (char16_t c : row.chars) {
            EXPECT_EQ(zv::asciiClassBits(c), row.bit) << "character " << int(c);
            ++covered;
        }
    }
    EXPECT_EQ(covered, 128);
    EXPECT_EQ(zv::asciiClassBits(128), 0u);
    EXPECT_EQ(zv::asciiClassBits(0xFFFF), 0u);
}

TEST(AsciiClassTable, AgreesWithIcu) {
    for (UChar32 c = 0; c < 128; ++c)
        EXPECT_EQ(zv::asciiClassBits(static_cast<ZvChar>(c)), icuClassBit(u_charType(c))) << c;
}

// ---- the host road ---------------------------------------------------------------

TEST(HostRoad, AsciiNeverReachesTheHost) {
    AnchorGuard guard;
    CountingHost host;
    zv::hostAnchor = host.anchor();
    for (const auto &r : kRoutines) {
        for (ZvChar c = 0; c < 128; ++c) {
            const bool expected = (zv::asciiClassBits(c) & r.mask) != 0 ||
                                  (r.fn == zv::isHexDigit && hexLetter(c));
            EXPECT_EQ(r.fn(c), expected) << r.name << " " << int(c);
        }
    }
    for (ZvChar c = 0; c < 128; ++c) zv::isFixedSpace(c);
    EXPECT_EQ(host.hostCalls(), 0u);
    EXPECT_EQ(host.nls()->charModule, nullptr);
}

TEST(HostRoad, EachClassAsksWithItsMask) {
    for (const auto &r : kRoutines) {
        AnchorGuard guard;
        CountingHost host;
        zv::hostAnchor = host.anchor();
        // U+0100 is Lu; U+0661 is Nd.
        for (ZvChar c : {ZvChar(0x0100), ZvChar(0x0661), ZvChar(0x2028)}) {
            host.classQuestions.clear();
            const bool expected = (icuClassBit(u_charType(c)) & r.mask) != 0;
            EXPECT_EQ(r.fn(c), expected) << r.name << " " << int(c);
            ASSERT_EQ(host.classQuestions.size(), 1u) << r.name;
            EXPECT_EQ(host.classQuestions[0].character, c) << r.name;
            EXPECT_EQ(host.classQuestions[0].mask, r.mask) << r.name;
        }
    }
}

TEST(HostRoad, CharacterModuleIsLoadedOnceAndKept) {
    AnchorGuard guard;
    CountingHost host;
    zv::hostAnchor = host.anchor();
    EXPECT_TRUE(zv::isLetter(0x00E9));
    ASSERT_EQ(host.loads.size(), 1u);
    EXPECT_EQ(host.loads[0].name, "zvchrtab");
    EXPECT_EQ(host.loads[0].length, 8);
    EXPECT_EQ(host.loads[0].zero, 0);
    EXPECT_EQ(host.nls()->charModule, host.moduleHandle);
    EXPECT_FALSE(zv::isDecimalDigit(0x00E9));
    EXPECT_TRUE(zv::isPunctuation(0x00BF));
    EXPECT_EQ(host.loads.size(), 1u);
    EXPECT_EQ(host.classQuestions.size(), 3u);
}

TEST(HostRoad, ModuleAlreadyThereIsNotLoadedAgain) {
    AnchorGuard guard;
    CountingHost host;
    int other = 0;
    host.nls()->charModule = &other;
    zv::hostAnchor = host.anchor();
    EXPECT_TRUE(zv::isUpperCase(0x00C9));
    EXPECT_EQ(host.loads.size(), 0u);
    EXPECT_EQ(host.nls()->charModule, &other);
    EXPECT_EQ(host.classQuestions.size(), 1u);
}

TEST(HostRoad, FailedLoadStillAsksTheHost) {
    AnchorGuard guard;
    CountingHost host;
    host.moduleHandle = nullptr;
    zv::hostAnchor = host.anchor();
    EXPECT_TRUE(zv::isDecimalDigit(0x0660));
    EXPECT_EQ(host.loads.size(), 1u);
    EXPECT_EQ(host.classQuestions.size(), 1u);
    EXPECT_EQ(host.nls()->charModule, nullptr);
    // Still not loaded: the next question asks for the module again.
    EXPECT_FALSE(zv::isDecimalDigit(0x0041 + 0x100));
    EXPECT_EQ(host.loads.size(), 2u);
    EXPECT_EQ(host.classQuestions.size(), 2u);
}

TEST(HostRoad, DigitZeroDoesNotCallTheHost) {
    AnchorGuard guard;
    CountingHost host;
    zv::hostAnchor = host.anchor();
    EXPECT_TRUE(zv::isDecimalDigit(u'0'));
    EXPECT_EQ(host.hostCalls(), 0u);
}

TEST(HostRoad, HexLettersAnswerWithoutTheHostOnBothRoads) {
    const ZvChar letters[] = {0x41, 0x46, 0x61, 0x66, 0xFF21, 0xFF26, 0xFF41, 0xFF46};
    for (bool withNls : {true, false}) {
        AnchorGuard guard;
        CountingHost host;
        if (!withNls) host.withoutNls();
        zv::hostAnchor = host.anchor();
        for (ZvChar c : letters) EXPECT_TRUE(zv::isHexDigit(c)) << int(c);
        EXPECT_EQ(host.hostCalls(), 0u);
    }
    AnchorGuard guard;
    CountingHost host;
    zv::hostAnchor = host.anchor();
    EXPECT_TRUE(zv::isHexDigit(0xFF10)); // fullwidth zero: a digit, asked of the host
    ASSERT_EQ(host.classQuestions.size(), 1u);
    EXPECT_EQ(host.classQuestions[0].mask, 0x40u);
    EXPECT_FALSE(zv::isHexDigit(0xFF27));
    EXPECT_EQ(host.classQuestions.size(), 2u);
}

// Above ASCII the host's answer is the answer, even where the module's own
// tables would say otherwise.
TEST(HostRoad, HostAnswerWinsOverTheTables) {
    AnchorGuard guard;
    CountingHost host;
    zv::hostAnchor = host.anchor();
    EXPECT_TRUE(zv::isLowerCase(0x10D0));  // Ll for today's ICU
    EXPECT_TRUE(zv::isUpperCase(0x1C90));  // Mtavruli, 11.0
    EXPECT_TRUE(zv::isLetter(0x0860));     // Syriac supplement, 10.0
    EXPECT_EQ(host.classQuestions.size(), 3u);
}

// ---- fixed spaces -------------------------------------------------------------------

TEST(FixedSpace, ExactlyTheElevenRangesOnEveryUnit) {
    AnchorGuard guard;
    CountingHost host;
    zv::hostAnchor = host.anchor();
    const std::u16string spaces = u"\t\n\v\f\r \u0085\u00A0\u1680"
                                  u"\u2000\u2001\u2002\u2003\u2004\u2005\u2006\u2007\u2008\u2009\u200A"
                                  u"\u2028\u2029\u202F\u205F\u3000";
    for (UChar32 c = 0; c <= 0xFFFF; ++c) {
        const bool expected = spaces.find(static_cast<char16_t>(c)) != std::u16string::npos;
        ASSERT_EQ(zv::isFixedSpace(static_cast<ZvChar>(c)), expected) << std::hex << c;
    }
    EXPECT_EQ(host.hostCalls(), 0u);
    EXPECT_FALSE(zv::isFixedSpace(0x180E));
    EXPECT_FALSE(zv::isFixedSpace(0x200B));
    EXPECT_FALSE(zv::isFixedSpace(0xFEFF));
}

} // namespace
