// Case mapping: the fold tables' structure, their agreement with ICU's
// simple case mappings, the host road and equalIgnoringCase.
#include <gtest/gtest.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "support.hpp"

namespace {

using widetest::AnchorGuard;
using widetest::CountingHost;
using widetest::icuAge;

ZvChar lowerOf(ZvChar c) {
    zv::foldLower(&c, 1);
    return c;
}

const int kPages[19] = {0x0000, 0x0080, 0x0100, 0x0180, 0x0200, 0x0280, 0x0380,
                        0x0400, 0x0480, 0x0500, 0x0580, 0x1080, 0x1E00, 0x1E80,
                        0x1F00, 0x1F80, 0x2100, 0x2480, 0xFF00};

const zv::CasePair kUpperList[20] = {
    {0x017F, 0x0053}, {0x0253, 0x0181}, {0x0254, 0x0186}, {0x0257, 0x018A}, {0x0258, 0x018E},
    {0x0259, 0x018F}, {0x025B, 0x0190}, {0x0260, 0x0193}, {0x0263, 0x0194}, {0x0268, 0x0197},
    {0x0269, 0x0196}, {0x026F, 0x019C}, {0x0272, 0x019D}, {0x0283, 0x01A9}, {0x0288, 0x01AE},
    {0x028A, 0x01B1}, {0x028B, 0x01B2}, {0x0292, 0x01B7}, {0x1F78, 0x1FF8}, {0x1F79, 0x1FF9},
};

const zv::CasePair kLowerList[19] = {
    {0x0181, 0x0253}, {0x0186, 0x0254}, {0x018A, 0x0257}, {0x018E, 0x0258}, {0x018F, 0x0259},
    {0x0190, 0x025B}, {0x0193, 0x0260}, {0x0194, 0x0263}, {0x0196, 0x0269}, {0x0197, 0x0268},
    {0x019C, 0x026F}, {0x019D, 0x0272}, {0x01A9, 0x0283}, {0x01AE, 0x0288}, {0x01B1, 0x028A},
    {0x01B2, 0x028B}, {0x01B7, 0x0292}, {0x1FF8, 0x1F78}, {0x1FF9, 0x1F79},
};

// ---- structure ---------------------------------------------------------------------

TEST(FoldTables, PageIndexNamesTheNineteenPagesInOrder) {
    const zv::FoldTables &t = zv::foldTables();
    EXPECT_EQ(t.pageCount, 19);
    std::vector<int> expected(512, -1);
    for (int i = 0; i < 19; ++i) expected[static_cast<size_t>(kPages[i] >> 7)] = i;
    for (int p = 0; p < 512; ++p) EXPECT_EQ(t.pageIndex[p], expected[static_cast<size_t>(p)]) << p;
}

TEST(FoldTables, PairListsAreTheFixedOnes) {
    const zv::FoldTables &t = zv::foldTables();
    ASSERT_EQ(t.upperPairCount, 20);
    ASSERT_EQ(t.lowerPairCount, 19);
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(t.upperPairs[i].from, kUpperList[i].from) << i;
        EXPECT_EQ(t.upperPairs[i].to, kUpperList[i].to) << i;
    }
    for (int i = 0; i < 19; ++i) {
        EXPECT_EQ(t.lowerPairs[i].from, kLowerList[i].from) << i;
        EXPECT_EQ(t.lowerPairs[i].to, kLowerList[i].to) << i;
    }
}

// A delta of -128 stands exactly at the first members of the pair list.
TEST(FoldTables, FarMarksMatchThePairLists) {
    const zv::FoldTables &t = zv::foldTables();
    for (bool upper : {true, false}) {
        std::set<int> marked;
        const auto deltas = upper ? t.upperDeltas : t.lowerDeltas;
        for (int i = 0; i < 19; ++i)
            for (int k = 0; k < 128; ++k)
                if (deltas[i][k] == zv::kFarMapping) marked.insert(kPages[i] + k);
        std::set<int> listed;
        if (upper)
            for (const auto &p : kUpperList) listed.insert(p.from);
        else
            for (const auto &p : kLowerList) listed.insert(p.from);
        EXPECT_EQ(marked, listed) << (upper ? "upper" : "lower");
    }
}

// ---- facts on the table road --------------------------------------------------------

struct CaseFact {
    ZvChar c;
    ZvChar upper;
    ZvChar lower;
    const char *why;
};

const CaseFact kFacts[] = {
    {u'a', u'A', u'a', "ASCII"},
    {u'Z', u'Z', u'z', "ASCII"},
    {u'@', u'@', u'@', "ASCII punctuation"},
    {0x017F, u'S', 0x017F, "long s goes to S through the pair list"},
    {0x00B5, 0x00B5, 0x00B5, "micro sign: far mapping, not listed"},
    {0x0131, 0x0131, 0x0131, "dotless i: far mapping, not listed"},
    {0x0130, 0x0130, 0x0130, "dotted I: far lower mapping, not listed"},
    {0x00E9, 0x00C9, 0x00E9, "e acute"},
    {0x00C9, 0x00C9, 0x00E9, "E acute"},
    {0x00DF, 0x00DF, 0x00DF, "sharp s has no simple upper case"},
    {0x00FF, 0x0178, 0x00FF, "y diaeresis: +121"},
    {0x0178, 0x0178, 0x00FF, "Y diaeresis: -121"},
    {0x0253, 0x0181, 0x0253, "b hook: pair list"},
    {0x0181, 0x0181, 0x0253, "B hook: lower pair list"},
    {0x0258, 0x018E, 0x0258, "reversed e: kept pair"},
    {0x018E, 0x018E, 0x0258, "reversed E: kept pair"},
    {0x01DD, 0x018E, 0x01DD, "turned e"},
    {0x0256, 0x0256, 0x0256, "d tail: far mapping, not listed"},
    {0x0189, 0x0189, 0x0189, "African D: far mapping, not listed"},
    {0x01C4, 0x01C4, 0x01C6, "DZ caron"},
    {0x01C5, 0x01C4, 0x01C6, "Dz caron titlecase"},
    {0x01C6, 0x01C4, 0x01C6, "dz caron"},
    {0x0220, 0x0220, 0x0220, "3.2 addition stays"},
    {0x019E, 0x019E, 0x019E, "its upper case is a 3.2 addition"},
    {0x03C2, 0x03A3, 0x03C2, "final sigma"},
    {0x03AC, 0x0386, 0x03AC, "alpha tonos"},
    {0x03F4, 0x03F4, 0x03F4, "3.1 addition stays"},
    {0x0430, 0x0410, 0x0430, "Cyrillic a"},
    {0x0500, 0x0500, 0x0500, "3.2 addition stays"},
    {0x0561, 0x0531, 0x0561, "Armenian ayb"},
    {0x0586, 0x0556, 0x0586, "Armenian feh, second Armenian page"},
    {0x10A0, 0x10A0, 0x10A0, "Georgian capital: pair outside the early repertoire"},
    {0x10D0, 0x10D0, 0x10D0, "Georgian an: pair outside the early repertoire"},
    {0x1E00, 0x1E00, 0x1E01, "A ring below"},
    {0x1E9E, 0x1E9E, 0x1E9E, "capital sharp s (5.1) stays"},
    {0x1F78, 0x1FF8, 0x1F78, "omicron varia: pair list"},
    {0x1FF9, 0x1FF9, 0x1F79, "Omicron oxia: lower pair list"},
    {0x1F80, 0x1F88, 0x1F80, "alpha psili ypogegrammeni"},
    {0x1FBE, 0x1FBE, 0x1FBE, "prosgegrammeni: far mapping, not listed"},
    {0x2126, 0x2126, 0x2126, "Ohm: far mapping, not listed"},
    {0x2160, 0x2160, 0x2170, "Roman numeral one"},
    {0x2132, 0x2132, 0x2132, "turned F (5.0) stays"},
    {0x24D0, 0x24B6, 0x24D0, "circled a"},
    {0xFF41, 0xFF21, 0xFF41, "fullwidth a"},
    {0xFF21, 0xFF21, 0xFF41, "fullwidth A"},
    {0x0345, 0x0345, 0x0345, "ypogegrammeni: page without mappings"},
    {0x2C30, 0x2C30, 0x2C30, "Glagolitic: page without mappings"},
    {0xFFFF, 0xFFFF, 0xFFFF, "last unit"},
};

TEST(TableFold, Facts) {
    AnchorGuard guard;
    zv::hostAnchor = nullptr;
    for (const auto &k : kFacts) {
        EXPECT_EQ(int(zv::foldUpperChar(k.c)), int(k.upper)) << k.why;
        EXPECT_EQ(int(lowerOf(k.c)), int(k.lower)) << k.why;
        EXPECT_EQ(int(zv::tableUpper(k.c)), int(k.upper)) << k.why;
        EXPECT_EQ(int(zv::tableLower(k.c)), int(k.lower)) << k.why;
    }
}

TEST(TableFold, TextIsFoldedInPlaceUpToItsLength) {
    AnchorGuard guard;
    zv::hostAnchor = nullptr;
    std::u16string text = u"stra\u00dfe \u017fo \u00e9t\u00e9 xyz";
    zv::foldUpper(text.data(), 14);
    EXPECT_EQ(text, u"STRA\u00dfE SO \u00c9T\u00c9 xyz");
    zv::foldLower(text.data(), static_cast<int64_t>(text.size()));
    EXPECT_EQ(text, u"stra\u00dfe so \u00e9t\u00e9 xyz");
    std::u16string untouched = u"abc";
    zv::foldUpper(untouched.data(), 0);
    zv::foldLower(untouched.data(), -3);
    zv::foldUpper(nullptr, 5);
    EXPECT_EQ(untouched, u"abc");
}

// ---- differential against ICU -------------------------------------------------------

// Expected differences between the table road and ICU's simple mappings
// within the fold pages:
//  - a mapping whose character or image came after Unicode 3.0 is not made;
//  - far mappings (beyond 8 bits) outside the pair lists are not made; these
//    are exactly the characters below;
//  - the pair U+0258 <-> U+018E of the fixed lists overrides ICU, which has no
//    upper case for U+0258 and lowers U+018E to U+01DD.
// Outside the fold pages nothing is mapped.
const std::set<int> kFarUnmappedUpper = {0x00B5, 0x0131, 0x0256, 0x0275, 0x0280, 0x1FBE};
const std::set<int> kFarUnmappedLower = {0x0130, 0x0189, 0x019F, 0x01A6, 0x2126, 0x212A, 0x212B};
const std::set<int> kListOverridesUpper = {0x0258};
const std::set<int> kListOverridesLower = {0x018E};

TEST(TableFold, AgreesWithIcuSimpleMappingsInTheEarlyRepertoire) {
    AnchorGuard guard;
    zv::hostAnchor = nullptr;
    std::set<int> inPages;
    for (int p : kPages)
        for (int k = 0; k < 128; ++k) inPages.insert(p + k);

    for (bool upper : {true, false}) {
        const auto &list = upper ? std::vector<zv::CasePair>(std::begin(kUpperList), std::end(kUpperList))
                                 : std::vector<zv::CasePair>(std::begin(kLowerList), std::end(kLowerList));
        std::set<int> farUnmapped, overrides;
        int mapped = 0, laterAdditions = 0, mismatches = 0;
        for (int c = 0; c <= 0xFFFF; ++c) {
            const ZvChar got = upper ? zv::foldUpperChar(static_cast<ZvChar>(c))
                                     : lowerOf(static_cast<ZvChar>(c));
            const UChar32 icu = upper ? u_toupper(c) : u_tolower(c);
            int expected = c;
            const auto listed = std::find_if(list.begin(), list.end(),
                                             [&](const zv::CasePair &p) { return p.from == c; });
            if (listed != list.end()) {
                expected = listed->to;
                if (icu != expected) overrides.insert(c);
            } else if (inPages.count(c) && icu != c && icu <= 0xFFFF) {
                if (icuAge(c) > 30 || icuAge(icu) > 30) {
                    ++laterAdditions;
                } else if (icu - c < -127 || icu - c > 127) {
                    farUnmapped.insert(c);
                } else {
                    expected = icu;
                }
            }
            if (expected != c) ++mapped;
            if (got != expected && ++mismatches <= 5)
                ADD_FAILURE() << (upper ? "upper" : "lower") << std::hex << " U+" << c << " gives U+"
                              << int(got) << ", expected U+" << expected;
        }
        EXPECT_EQ(mismatches, 0);
        EXPECT_EQ(farUnmapped, upper ? kFarUnmappedUpper : kFarUnmappedLower);
        EXPECT_EQ(overrides, upper ? kListOverridesUpper : kListOverridesLower);
        EXPECT_GT(mapped, 500);
        EXPECT_GT(laterAdditions, 50);
    }
}

// Upper and lower tables undo each other wherever ICU's pairs round-trip
// and both mappings are made.
TEST(TableFold, RoundTripsWhereBothDirectionsAreMapped) {
    AnchorGuard guard;
    zv::hostAnchor = nullptr;
    int pairs = 0;
    for (int c = 0; c <= 0xFFFF; ++c) {
        const ZvChar u = zv::tableUpper(static_cast<ZvChar>(c));
        if (u == c || !u_islower(c)) continue;
        if (u_tolower(u) != c) continue; // such as long s, final sigma
        if (kListOverridesLower.count(u)) continue; // U+01DD -> U+018E -> U+0258
        EXPECT_EQ(int(zv::tableLower(u)), c) << std::hex << c;
        ++pairs;
    }
    EXPECT_GT(pairs, 400);
}

// ---- the host road ---------------------------------------------------------------------

TEST(HostFold, AboveAsciiTheHostMapsWithOne) {
    AnchorGuard guard;
    CountingHost host;
    zv::hostAnchor = host.anchor();
    std::u16string text = u"a\u00e9\u017fz\u0131";
    zv::foldUpper(text.data(), static_cast<int64_t>(text.size()));
    EXPECT_EQ(text, u"A\u00c9SZI"); // the host maps U+0131 to I, the tables would not
    ASSERT_EQ(host.caseQuestions.size(), 3u);
    const uint32_t asked[] = {0x00E9, 0x017F, 0x0131};
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(host.caseQuestions[i].character, asked[i]);
        EXPECT_EQ(host.caseQuestions[i].one, 1);
        EXPECT_TRUE(host.caseQuestions[i].upper);
    }
    host.caseQuestions.clear();
    std::u16string lower = u"\u10A0Q\u2126";
    zv::foldLower(lower.data(), 3);
    EXPECT_EQ(lower, u"\u2d00q\u03c9");
    ASSERT_EQ(host.caseQuestions.size(), 2u);
    EXPECT_FALSE(host.caseQuestions[0].upper);
    EXPECT_EQ(host.caseQuestions[1].character, 0x2126u);
    EXPECT_EQ(host.loads.size(), 0u);
    EXPECT_EQ(host.classQuestions.size(), 0u);
}

TEST(HostFold, AsciiStaysOnTheTables) {
    AnchorGuard guard;
    CountingHost host;
    zv::hostAnchor = host.anchor();
    std::u16string all;
    for (char16_t c = 0; c < 128; ++c) all.push_back(c);
    std::u16string up = all, down = all;
    zv::foldUpper(up.data(), 128);
    zv::foldLower(down.data(), 128);
    for (char16_t c = 0; c < 128; ++c) {
        EXPECT_EQ(up[c], (c >= u'a' && c <= u'z') ? c - 32 : c);
        EXPECT_EQ(down[c], (c >= u'A' && c <= u'Z') ? c + 32 : c);
    }
    EXPECT_EQ(host.hostCalls(), 0u);
}

TEST(HostFold, FoldUpperCharGoesThroughTheHost) {
    AnchorGuard guard;
    CountingHost host;
    zv::hostAnchor = host.anchor();
    EXPECT_EQ(int(zv::foldUpperChar(0x00B5)), 0x039C);
    EXPECT_EQ(host.caseQuestions.size(), 1u);
    EXPECT_EQ(int(zv::foldUpperChar(u'q')), int(u'Q'));
    EXPECT_EQ(host.caseQuestions.size(), 1u);
}

// ---- equalIgnoringCase --------------------------------------------------------------

struct EqualCase {
    std::u16string a;
    std::u16string b;
    bool equal;
    const char *why;
};

const EqualCase kEqualCases[] = {
    {u"", u"", true, "two empty texts"},
    {u"abc", u"ABC", true, "ASCII"},
    {u"abc", u"ABD", false, "one differs"},
    {u"abc", u"abcd", false, "lengths differ"},
    {u"\u00c9T\u00c9", u"\u00e9t\u00e9", true, "Latin-1"},
    {u"\u0181", u"\u0253", true, "far pair through the lower list"},
    {u"\u017f", u"s", false, "long s has no lower mapping to s"},
    {u"\u017f", u"\u017f", true, "same character"},
    {u"\u0130", u"i", false, "dotted I is not lowered"},
    {u"\u03a3", u"\u03c3", true, "sigma"},
    {u"\u03c2", u"\u03c3", false, "final sigma stays itself under lower case"},
    {u"\u10a0", u"\u2d00", false, "Georgian pair outside the tables"},
    {u"\uff21", u"\uff41", true, "fullwidth"},
    {u"\u24b6", u"\u24d0", true, "circled"},
    {u"\u0531\u0532", u"\u0561\u0562", true, "Armenian"},
};

TEST(EqualIgnoringCase, Table) {
    for (bool withHost : {false, true}) {
        AnchorGuard guard;
        CountingHost host;
        zv::hostAnchor = withHost ? host.anchor() : nullptr;
        for (const auto &k : kEqualCases) {
            EXPECT_EQ(zv::equalIgnoringCase(k.a.data(), static_cast<int64_t>(k.a.size()), k.b.data(),
                                            static_cast<int64_t>(k.b.size())),
                      k.equal)
                << k.why;
        }
        EXPECT_EQ(host.hostCalls(), 0u); // always the tables
    }
}

TEST(EqualIgnoringCase, DifferentLengthsAreNotLookedAt) {
    EXPECT_FALSE(zv::equalIgnoringCase(nullptr, 3, nullptr, 2));
    EXPECT_TRUE(zv::equalIgnoringCase(nullptr, 0, nullptr, 0));
    const ZvChar a[] = {u'x'};
    EXPECT_FALSE(zv::equalIgnoringCase(a, 1, nullptr, 0));
}

} // namespace
