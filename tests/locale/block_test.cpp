// The locale block from raw items: escapes against the host encoding, the
// number contexts, the widths of names and patterns; and a currency's symbol,
// shown whole or by its code.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <map>
#include <string>

#include "locale/block.hpp"
#include "locale/currency.hpp"
#include "zvhost.hpp"

namespace {

class Block : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_NE(host.loadModule(), nullptr); }
    // A block over a locale whose items are empty but for `items`.
    LocaleBlock *build(const std::map<int, std::string> &items, const std::string &encoding = "UTF-8") {
        std::map<int, std::string> all;
        for (int k = 0; k < 189; ++k) all[k] = items.count(k) ? items.at(k) : "";
        FormatCall c;
        std::memset(&c, 0, sizeof c);
        c.locale = host.locale("en_US", all);
        c.transcoder = host.transcoder(encoding);
        c.services = host.services();
        EXPECT_EQ(zv::buildLocaleBlock(&c, host.instance()), 0);
        return c.localeBlock;
    }
    static std::u16string text(const LocaleItem &i) { return std::u16string(i.text, size_t(i.length)); }
    static std::array<int, 6> placement(const NumberContext &m) {
        return {m.positiveSymbolPrecedes, m.positiveSymbolSpaced, m.positiveSignPosition,
                m.negativeSymbolPrecedes, m.negativeSymbolSpaced, m.negativeSignPosition};
    }
    zvhost::Host host;
};

TEST_F(Block, EscapesDecodeAgainstTheHostEncoding) {
    std::string stars;
    for (int i = 0; i < 22; ++i) stars += "<UFFE5>";
    std::u16string refs;
    for (int i = 0; i < 19; ++i) refs += u"&#65509;"; // then no room below 160 units
    const struct { std::string raw; const char *encoding; std::u16string expected; } cases[] = {
        {"<u20ac>", "UTF-8", u"\u20ac"}, {"<U20ACx", "UTF-8", u"\u20ac"}, {"ab<U00e9", "UTF-8", u"ab<U00e9"},
        {"<X20AC>", "UTF-8", u"<X20AC>"}, {"<UG0zA>", "UTF-8", u"\u000a"}, {"a<U00A0>b", "US-ASCII", u"a b"},
        {"a<U00A0>b", "ISO-8859-1", u"a\u00a0b"}, {"<U20AC>", "ISO-8859-1", u"&#8364;"},
        {"<U00A4>", "UTF-8", u"\u0001"}, {"<U00A4>", "US-ASCII", u"\u0001"}, {"caf\xe9", "US-ASCII", u"caf\u00e9"},
        {"<U0440><U002E>", "UTF-8", u"\u0440."}, {stars, "ISO-8859-1", refs + u"***"},
        {std::string(160, 'x'), "UTF-8", std::u16string(159, u'x')}, // the last unit holds the zero
        {std::string(151, 'x') + "<UFFE5>", "ISO-8859-1", std::u16string(151, u'x') + u"&#65509;"}}; // just fits
    for (const auto &k : cases) {
        LocaleItem &i = build({{29, k.raw}}, k.encoding)->items[29];
        EXPECT_EQ(text(i), k.expected) << k.raw << " " << k.encoding;
        EXPECT_EQ(std::tuple(i.text[i.length], i.id), std::tuple(u'\0', 29u));
    }
}

TEST_F(Block, NumberContextsTakeTheirItems) {
    LocaleBlock *b = build({{155, "EUR"}, {156, "<U20AC>"}, {157, ","}, {158, "."}, {159, "3;2"}, {161, "-"},
                            {162, "10"}, {165, "1"}, {166, "1"}, {168, "1"}, {169, "4"}, {172, "<U066B>"},
                            {173, "<U202F>"}, {174, "3"}, {175, "+"}, {176, "<U2212>"}, {177, "1"}, {180, "1"},
                            {181, "2"}, {182, "3"}});
    const NumberContext &m = *zv::contextOf(b, 170), &i = *zv::contextOf(b, 171);
    EXPECT_EQ(std::u16string(m.symbol) + u"|" + i.symbol + u"|" + m.decimalSeparator[0] + m.groupSeparator[0] +
                  m.negativeSign[0] + i.decimalSeparator[0],
              u"\u20ac|EUR|,.-,");
    EXPECT_EQ((std::array<int, 4>{m.groupSizes[0], m.groupSizes[1], m.groupSizes[2], m.groupSizes[3]}),
              (std::array<int, 4>{3, ';' - '0', 2, 0}));
    EXPECT_EQ(std::tuple(m.positiveSign[0], m.fractionDigits, i.fractionDigits), std::tuple(u'\0', 0, 10));
    EXPECT_EQ(placement(m), (std::array<int, 6>{0, 1, 1, 1, 0, 4}));
    const NumberContext &n = *zv::contextOf(b, 183), &ni = *zv::contextOf(b, 184);
    EXPECT_EQ(std::u16string(u"") + n.decimalSeparator[0] + n.groupSeparator[0] + n.positiveSign[0] +
                  n.negativeSign[0] + ni.decimalSeparator[0] + ni.groupSeparator[0] + ni.negativeSign[0],
              u"\u066b\u202f+\u2212.,\u2212");
    EXPECT_EQ(std::tuple(n.symbol[0], n.groupSizes[0], n.groupSizes[1], ni.groupSizes[0]), std::tuple(u'\0', 3, 0, 3));
    EXPECT_EQ(placement(n), (std::array<int, 6>{1, 0, 2, 0, 1, 3}));
    EXPECT_EQ(placement(ni), placement(n));
    for (int item : {185, 186}) {
        const NumberContext &p = *zv::contextOf(b, item);
        EXPECT_EQ(std::u16string(p.symbol) + p.decimalSeparator[0], item == 185 ? u"%\u066b" : u"%.");
        EXPECT_EQ(placement(p), (std::array<int, 6>{0, 0, 1, 0, 0, 1}));
    }
    for (int k = 0; k < 189; ++k)
        EXPECT_EQ(b->items[k].numberContext != nullptr, k == 170 || k == 171 || (k >= 183 && k <= 186)) << k;
    for (int g : zv::contextOf(build({{173, "ab'"}}), 183)->groupSizes) EXPECT_EQ(g, 0); // no grouping
}

TEST_F(Block, TheLocalSymbolFallsBackWhenItCantBeShown) {
    const struct { std::string local; const char *encoding; std::u16string symbol; } cases[] = {
        {"<U20AC>", "UTF-8", u"\u20ac"}, {"<U20AC>", "ISO-8859-1", u"EUR "}, {"&#36;", "UTF-8", u"EUR "},
        {"&#3", "UTF-8", u"&#3"}, {"Fr.&x", "UTF-8", u"Fr.&x"}};
    for (const auto &k : cases)
        EXPECT_EQ(std::u16string(zv::contextOf(build({{155, "EUR "}, {156, k.local}}, k.encoding), 170)->symbol),
                  k.symbol) << k.local;
}

// A name's width is the widest of its list in host bytes; AM and PM share one.
TEST_F(Block, NameAndPatternWidths) {
    std::map<int, std::string> items = {{59, "M<U00E4>rz"}, {60, "Feb"}, {71, "January"}, {83, "Jan."},
                                        {95, "<U044F><U043D><U0432>"}, {107, "Sun"}, {114, "Sunday"}, {121, "Su"},
                                        {128, "Sundayish"}, {135, "Q1"}, {139, "1st quarter"}, {143, "1Q"},
                                        {147, "first quarter"}, {151, "AM"}, {152, "<U4E0B><U5348>"},
                                        {28, "%d.%m.%Y"}, {53, "%H:%M:%S"}, {58, "%x %X"}, {27, "%Y"}};
    const struct { std::string pattern; uint32_t utf8, latin1; } cases[] = {
        {"%x %X", 19, 19}, {"%b %#b %B %#B %C", 5 + 4 + 7 + 6 + 7 + 4, 4 + 4 + 7 + 21 + 7 + 4},
        {"%A %a %#A %#F %#a %#f", 6 + 3 + 9 + 9 + 2 + 2 + 5, 36}, {"%Q %#Q %q %#q", 11 + 13 + 2 + 2 + 3, 31},
        {"%p", 6, 16}, {"%G-W%V-%u", 10, 10}, {"%T %z %Z %j %w", 8 + 5 + 3 + 3 + 1 + 4, 24},
        {"%0d%+Y%%%#", 2, 2}, {"%e %k %l %o %s %y %g%R", 20, 20}, {"<U00E9>t<U00E9>", 5, 3}};
    for (const char *encoding : {"UTF-8", "ISO-8859-1"}) {
        const bool u = encoding[0] == 'U';
        for (const auto &k : cases) {
            items[46] = items[57] = k.pattern;
            LocaleBlock *b = build(items, encoding);
            EXPECT_EQ(b->items[46].maxWidth, u ? k.utf8 : k.latin1) << k.pattern << " " << encoding;
            EXPECT_EQ(b->items[57].maxWidth, b->items[46].maxWidth);
            EXPECT_EQ(b->items[58].maxWidth + b->items[27].maxWidth, 0u);
            EXPECT_EQ(std::tuple(b->items[70].maxWidth, b->items[151].maxWidth, b->items[152].maxWidth),
                      u ? std::tuple(5u, 6u, 6u) : std::tuple(4u, 16u, 16u));
        }
    }
}

TEST_F(Block, AnExhaustedPoolLeavesNoBlock) {
    FormatCall c;
    std::memset(&c, 0, sizeof c);
    c.locale = host.locale("en_US");
    c.transcoder = host.transcoder("UTF-8");
    c.services = host.services();
    host.formatPool().failAt(1);
    EXPECT_EQ(zv::buildLocaleBlock(&c, host.instance()), ZV_NO_MEMORY);
    EXPECT_EQ(c.localeBlock, nullptr);
}

// decodeRowSymbol: escapes tested against the host encoding, the symbol shown
// whole or replaced by the code.
TEST_F(Block, ACurrencySymbolIsShownWholeOrByItsCode) {
    const struct { const char *code; const char16_t *symbol; const char *encoding; std::u16string expected; } cases[] = {
        {"USD", nullptr, "ISO-8859-1", u"US$"}, {"EUR", nullptr, "windows-1252", u"\u20ac"},
        {"EUR", nullptr, "ISO-8859-1", u"EUR"}, {"CZK", nullptr, "ISO-8859-1", u"CZK"},
        {"CZK", nullptr, "windows-1250", u"K\u010d"}, {"RUR", nullptr, "UTF-8", u"\u0440."},
        {"RUR", nullptr, "US-ASCII", u"RUR"}, {"ILS", nullptr, "UTF-8", u"\u05e9\"\u05d7"},
        {"EUR", u"<x", "UTF-8", u"<x"}, {"EUR", u"<u20AC>", "UTF-8", u"<u20AC>"},
        {"EUR", u"<U20ac>", "UTF-8", u"\u20ac"}, {"EUR", u"<U20AC", "UTF-8", u"<U20AC"},
        {"EUR", u"<U20AG>", "UTF-8", u"<U20AG>"}};
    for (const auto &k : cases) {
        zv::CurrencyRow row{};
        for (int i = 0; i < zv::kCurrencyRows; ++i)
            if (std::u16string(zv::currencyTable()[i].code) == zvhost::utf16(k.code)) row = zv::currencyTable()[i];
        ASSERT_NE(row.code, nullptr) << k.code;
        if (k.symbol) row.symbol = k.symbol;
        FormatCall c;
        std::memset(&c, 0, sizeof c);
        c.transcoder = host.transcoder(k.encoding);
        ZvChar out[64];
        EXPECT_EQ(std::u16string(out, size_t(zv::decodeRowSymbol(row, &c, out))), k.expected) << k.code;
    }
}

} // namespace
