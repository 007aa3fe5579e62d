// Building a locale block from raw items: escapes against the host
// encoding, the number contexts, the widths of names and patterns.
#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <string>

#include "locale/block.hpp"
#include "zvhost.hpp"

namespace {

class Block : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_NE(host.loadModule(), nullptr); }

    // Builds a block for the items over an empty locale, in `encoding`.
    LocaleBlock *build(const std::map<int, std::string> &items, const std::string &encoding = "UTF-8",
                       int32_t *status = nullptr) {
        FormatCall c;
        std::memset(&c, 0, sizeof c);
        c.locale = host.locale("en_US", withEmptyBase(items));
        c.transcoder = host.transcoder(encoding);
        c.services = host.services();
        const int32_t s = zv::buildLocaleBlock(&c, host.instance());
        if (status) *status = s;
        else EXPECT_EQ(s, 0);
        return c.localeBlock;
    }

    // Every item this test doesn't set is empty, whatever the locale holds.
    static std::map<int, std::string> withEmptyBase(const std::map<int, std::string> &items) {
        std::map<int, std::string> all;
        for (int k = 0; k < 189; ++k) all[k] = "";
        for (auto &[k, v] : items) all[k] = v;
        return all;
    }

    static std::u16string text(const LocaleItem &item) {
        return std::u16string(item.text, size_t(item.length));
    }

    zvhost::Host host;
};

struct EscapeCase {
    const char *what;
    std::string raw;
    const char *encoding;
    std::u16string expected;
};

class Escapes : public Block, public ::testing::WithParamInterface<EscapeCase> {};

TEST_P(Escapes, DecodeAgainstTheHostEncoding) {
    const EscapeCase &e = GetParam();
    LocaleBlock *b = build({{28, e.raw}}, e.encoding);
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(text(b->items[28]), e.expected) << e.what;
    EXPECT_EQ(b->items[28].text[b->items[28].length], 0) << e.what;
    EXPECT_EQ(b->items[28].id, 28u);
}

INSTANTIATE_TEST_SUITE_P(
    Locale, Escapes,
    ::testing::Values(
        EscapeCase{"plain ascii", "%d.%m.%Y", "UTF-8", u"%d.%m.%Y"},
        EscapeCase{"lower-case u", "<u20ac>", "UTF-8", u"\u20ac"},
        EscapeCase{"upper-case U", "<U20AC>", "UTF-8", u"\u20ac"},
        EscapeCase{"any closing byte", "<U20ACx", "UTF-8", u"\u20ac"},
        EscapeCase{"cut short at the end", "ab<U00e9", "UTF-8", u"ab<U00e9"},
        EscapeCase{"not an escape", "<X20AC>", "UTF-8", u"<X20AC>"},
        EscapeCase{"bad hex digits count as 0", "<UG0zA>", "UTF-8", u"\u000a"},
        EscapeCase{"no-break space the host lacks", "a<U00A0>b", "US-ASCII", u"a b"},
        EscapeCase{"no-break space the host has", "a<U00A0>b", "ISO-8859-1", u"a\u00a0b"},
        EscapeCase{"euro the host lacks", "<U20AC>", "ISO-8859-1", u"&#8364;"},
        EscapeCase{"euro in windows-1252", "<U20AC>", "windows-1252", u"\u20ac"},
        EscapeCase{"currency sign in UTF-8", "<U00A4>", "UTF-8", u"\u0001"},
        EscapeCase{"currency sign in ascii", "<U00A4>", "US-ASCII", u"\u0001"},
        EscapeCase{"latin-1 bytes stay as they are", "caf\xe9", "US-ASCII", u"caf\u00e9"},
        EscapeCase{"two escapes", "<U0440><U002E>", "UTF-8", u"\u0440."},
        EscapeCase{"cyrillic the host lacks", "<U0440>", "ISO-8859-1", u"&#1088;"}),
    [](const auto &info) {
        std::string n = info.param.what;
        for (char &c : n)
            if (!isalnum(static_cast<unsigned char>(c))) c = '_';
        return n;
    });

TEST_F(Block, NumericReferencesThatDontFitBecomeStars) {
    // 22 escapes of U+FFE5 fill 154 of the 160 bytes. As &#65509; each takes 8
    // units: 19 of them stand below 160 with room for the zero, the rest are stars.
    std::string raw;
    for (int i = 0; i < 22; ++i) raw += "<UFFE5>";
    LocaleBlock *b = build({{29, raw}}, "ISO-8859-1");
    std::u16string expected;
    for (int i = 0; i < 19; ++i) expected += u"&#65509;";
    expected += u"***";
    EXPECT_EQ(text(b->items[29]), expected);
}

TEST_F(Block, NumberContextsTakeTheirItems) {
    LocaleBlock *b = build({{155, "EUR"}, {156, "<U20AC>"}, {157, ","}, {158, "."}, {159, "3;2"},
                            {160, ""}, {161, "-"}, {162, "2"}, {163, "0"}, {164, "0"}, {165, "1"},
                            {166, "1"}, {167, "0"}, {168, "1"}, {169, "4"}, {172, "<U066B>"},
                            {173, "<U202F>"}, {174, "3"}, {175, "+"}, {176, "<U2212>"}, {177, "1"},
                            {178, "0"}, {179, "0"}, {180, "1"}, {181, "2"}, {182, "3"}});
    const NumberContext &m = *zv::contextOf(b, 170);
    EXPECT_EQ(std::u16string(m.symbol), u"\u20ac");
    EXPECT_EQ(m.decimalSeparator[0], u',');
    EXPECT_EQ(m.groupSeparator[0], u'.');
    EXPECT_EQ(m.groupSizes[0], 3);
    EXPECT_EQ(m.groupSizes[1], ';' - '0');
    EXPECT_EQ(m.groupSizes[2], 2);
    EXPECT_EQ(m.groupSizes[3], 0);
    EXPECT_EQ(m.positiveSign[0], 0);
    EXPECT_EQ(m.negativeSign[0], u'-');
    EXPECT_EQ(m.fractionDigits, 0);
    EXPECT_EQ((std::array<int, 6>{m.positiveSymbolPrecedes, m.positiveSymbolSpaced, m.positiveSignPosition,
                                  m.negativeSymbolPrecedes, m.negativeSymbolSpaced, m.negativeSignPosition}),
              (std::array<int, 6>{0, 1, 1, 1, 0, 4}));
    const NumberContext &i = *zv::contextOf(b, 171);
    EXPECT_EQ(std::u16string(i.symbol), u"EUR");
    EXPECT_EQ(i.fractionDigits, 2);

    const NumberContext &n = *zv::contextOf(b, 183);
    EXPECT_EQ(n.symbol[0], 0);
    EXPECT_EQ(n.decimalSeparator[0], u'\u066b');
    EXPECT_EQ(n.groupSeparator[0], u'\u202f');
    EXPECT_EQ(n.positiveSign[0], u'+');
    EXPECT_EQ(n.negativeSign[0], u'\u2212');
    EXPECT_EQ((std::array<int, 6>{n.positiveSymbolPrecedes, n.positiveSymbolSpaced, n.positiveSignPosition,
                                  n.negativeSymbolPrecedes, n.negativeSymbolSpaced, n.negativeSignPosition}),
              (std::array<int, 6>{1, 0, 2, 0, 1, 3}));
    const NumberContext &ni = *zv::contextOf(b, 184);
    EXPECT_EQ(std::u16string(ni.decimalSeparator, 1), u".");
    EXPECT_EQ(std::u16string(ni.groupSeparator, 1), u",");
    EXPECT_EQ(ni.groupSizes[0], 3);
    EXPECT_EQ(ni.negativeSign[0], u'\u2212');
    EXPECT_EQ(ni.positiveSignPosition, 2);
    for (int item : {185, 186}) {
        const NumberContext &p = *zv::contextOf(b, item);
        EXPECT_EQ(std::u16string(p.symbol), u"%") << item;
        EXPECT_EQ((std::array<int, 6>{p.positiveSymbolPrecedes, p.positiveSymbolSpaced, p.positiveSignPosition,
                                      p.negativeSymbolPrecedes, p.negativeSymbolSpaced, p.negativeSignPosition}),
                  (std::array<int, 6>{0, 0, 1, 0, 0, 1}))
            << item;
    }
    EXPECT_EQ(zv::contextOf(b, 185)->decimalSeparator[0], u'\u066b');
    EXPECT_EQ(zv::contextOf(b, 186)->decimalSeparator[0], u'.');
    for (int k = 0; k < 189; ++k) {
        const bool owner = k == 170 || k == 171 || (k >= 183 && k <= 186);
        EXPECT_EQ(b->items[k].numberContext != nullptr, owner) << k;
    }
}

struct SymbolCase {
    std::string local;
    const char *encoding;
    std::u16string symbol;
};

class LocalSymbol : public Block, public ::testing::WithParamInterface<SymbolCase> {};

TEST_P(LocalSymbol, FallsBackToTheInternationalOneWhenUnshowable) {
    const SymbolCase &s = GetParam();
    LocaleBlock *b = build({{155, "EUR "}, {156, s.local}}, s.encoding);
    EXPECT_EQ(std::u16string(zv::contextOf(b, 170)->symbol), s.symbol);
}

INSTANTIATE_TEST_SUITE_P(
    Locale, LocalSymbol,
    ::testing::Values(SymbolCase{"<U20AC>", "UTF-8", u"\u20ac"},
                      SymbolCase{"<U20AC>", "ISO-8859-1", u"EUR "},
                      SymbolCase{"&#36;", "UTF-8", u"EUR "},  // five units holding &#
                      SymbolCase{"&#3", "UTF-8", u"&#3"},     // four units: kept
                      SymbolCase{"Fr.&x", "UTF-8", u"Fr.&x"}, // long, no reference
                      SymbolCase{"<U20A9>", "windows-1252", u"EUR "}));

TEST_F(Block, EmptyGroupingLeavesGroupSizesZero) {
    LocaleBlock *b = build({{172, "."}, {173, ","}});
    for (int g : zv::contextOf(b, 183)->groupSizes) EXPECT_EQ(g, 0);
    for (int g : zv::contextOf(b, 170)->groupSizes) EXPECT_EQ(g, 0);
}

TEST_F(Block, NameWidthsAreTheWidestOfEachListInHostBytes) {
    std::map<int, std::string> items;
    const char *months[12] = {"Jan", "Feb", "M<U00E4>rz", "Apr", "Mai", "Jun",
                              "Jul", "Aug", "Sep", "Okt", "Nov", "Dez"};
    for (int m = 0; m < 12; ++m) items[59 + m] = months[m];
    items[71] = "Januar";
    items[95] = "<U044F><U043D><U0432><U0430><U0440><U044C>"; // 6 Cyrillic letters
    items[107] = "So";
    items[114] = "Sonntag";
    items[139] = "1. Quartal";
    items[151] = "AM";
    items[152] = "<U4E0B><U5348>"; // two CJK characters
    LocaleBlock *u = build(items, "UTF-8");
    EXPECT_EQ(u->items[59].maxWidth, 5u); // März: 5 bytes in UTF-8
    EXPECT_EQ(u->items[70].maxWidth, 5u); // every item of the list
    EXPECT_EQ(u->items[71].maxWidth, 6u);
    EXPECT_EQ(u->items[95].maxWidth, 12u);
    EXPECT_EQ(u->items[106].maxWidth, 12u);
    EXPECT_EQ(u->items[83].maxWidth, 0u);
    EXPECT_EQ(u->items[113].maxWidth, 2u);
    EXPECT_EQ(u->items[120].maxWidth, 7u);
    EXPECT_EQ(u->items[142].maxWidth, 10u);
    EXPECT_EQ(u->items[151].maxWidth, 6u);
    EXPECT_EQ(u->items[152].maxWidth, 6u);

    LocaleBlock *l = build(items, "ISO-8859-1");
    EXPECT_EQ(l->items[59].maxWidth, 4u); // one byte for ä
    EXPECT_EQ(l->items[95].maxWidth, 42u); // &#1103; and the like, 7 bytes each
    EXPECT_EQ(l->items[151].maxWidth, 16u); // &#19979;&#21320;
}

struct PatternCase {
    std::string pattern;
    uint32_t width;
};

class PatternWidth : public Block, public ::testing::WithParamInterface<PatternCase> {};

TEST_P(PatternWidth, WalksDirectivesByTheirWidths) {
    std::map<int, std::string> items = {{28, "%d.%m.%Y"}, {53, "%H:%M:%S"}, {59, "Jan"}, {71, "January"},
                                        {83, "Jan."}, {95, "Januarius"}, {107, "Sun"}, {114, "Sunday"},
                                        {121, "Su"}, {128, "Sundayish"}, {135, "Q1"}, {139, "1st quarter"},
                                        {143, "1Q"}, {147, "first quarter"}, {151, "a.m."}, {152, "p.m."},
                                        {46, GetParam().pattern}};
    LocaleBlock *b = build(items, "UTF-8");
    EXPECT_EQ(b->items[46].maxWidth, GetParam().width) << GetParam().pattern;
}

INSTANTIATE_TEST_SUITE_P(
    Locale, PatternWidth,
    ::testing::Values(PatternCase{"%x %X", 10 + 1 + 8}, PatternCase{"%B", 7}, PatternCase{"%#B", 9},
                      PatternCase{"%C %#C", 7 + 1 + 9}, PatternCase{"%b %#b", 3 + 1 + 4},
                      PatternCase{"%A, %a", 6 + 2 + 3}, PatternCase{"%#A %#F %#a %#f", 9 + 1 + 9 + 1 + 2 + 1 + 2},
                      PatternCase{"%Q %#Q %q %#q", 11 + 1 + 13 + 1 + 2 + 1 + 2}, PatternCase{"%p %#p", 4 + 1 + 4},
                      PatternCase{"%G-W%V-%u", 4 + 2 + 2 + 1 + 1}, PatternCase{"%T %z %Z %j %w", 8 + 1 + 5 + 1 + 3 + 1 + 3 + 1 + 1},
                      PatternCase{"%0d", 1}, PatternCase{"%+Y", 1}, PatternCase{"%%", 0},
                      PatternCase{"%", 0}, PatternCase{"%#", 0}, PatternCase{"%e %k %l %o %s %y %g", 2 * 7 + 6},
                      PatternCase{"%R%X", 0 + 8}, PatternCase{"<U00E9>t<U00E9>", 5}));

TEST_F(Block, Item58HasNoWidthAndPatternsAfter57None) {
    LocaleBlock *b = build({{58, "%x %X"}, {57, "%Y"}, {27, "%Y"}});
    EXPECT_EQ(b->items[58].maxWidth, 0u);
    EXPECT_EQ(b->items[57].maxWidth, 4u);
    EXPECT_EQ(b->items[27].maxWidth, 0u);
}

TEST_F(Block, ExhaustedPoolLeavesNoBlock) {
    FormatCall c;
    std::memset(&c, 0, sizeof c);
    c.locale = host.locale("en_US");
    c.transcoder = host.transcoder("UTF-8");
    c.services = host.services();
    host.formatPool().failAt(1);
    EXPECT_EQ(zv::buildLocaleBlock(&c, host.instance()), ZV_NO_MEMORY);
    EXPECT_EQ(c.localeBlock, nullptr);
}

TEST_F(Block, ABlockComesZeroedFromTheFormatPool) {
    const auto before = host.formatPool().stats();
    LocaleBlock *b = build({});
    ASSERT_NE(b, nullptr);
    const auto after = host.formatPool().stats();
    EXPECT_EQ(after.allocations, before.allocations + 1);
    EXPECT_EQ(after.liveBytes - before.liveBytes, int64_t(sizeof(LocaleBlock)));
    for (int k = 0; k < 189; ++k) EXPECT_EQ(b->items[k].length, 0);
}

} // namespace
