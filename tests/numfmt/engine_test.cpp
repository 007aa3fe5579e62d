// The locale number engine (NLNUM, NLNUMI, NLPCT, NLPCTI, NLMNY, NLMNYI) and
// the per-currency members (NLMNI<code>) against engines written here from
// the rules, over random shapes of locale (separators of 0, 1 and 2 units,
// group sizes, signs, symbols, all twenty placements), random values and
// every width; and the fixed forms of a locale that lacks the item.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>

#include "numfmt/model.hpp"

namespace {

using namespace numtest;

// What a locale shape puts into the items, and what the engine should see.
struct Choice {
    const char *raw;
    std::u16string units;
};
const Choice kPoints[] = {{".", u"."}, {",", u","}, {"", u""}, {"::", u"::"}, {"<U066B>", u"\u066b"}};
const Choice kGroups[] = {{",", u","}, {".", u"."}, {"", u""}, {"<U00A0>", u"\u00a0"}, {"''", u"''"}};
const Choice kSizes[] = {{"3", u"3"}, {"0", u""}, {"", u""}, {"2", u"2"}, {"3;2", u"3"}};
const Choice kPluses[] = {{"", u""}, {"+", u"+"}, {"<U200E>+", u"\u200e+"}};
const Choice kMinuses[] = {{"-", u"-"}, {"<U200F>-", u"\u200f-"}, {"", u""}};
const Choice kSymbols[] = {{"$", u"$"}, {"kr.", u"kr."}, {"<U20AC>", u"\u20ac"}, {"", u""}, {"SFr", u"SFr"}};

struct Shape {
    Items items;
    Context number, money, moneyIntl; // contexts of items 183, 170 and 171
};

Shape randomShape(std::mt19937_64 &rng) {
    auto pick = [&](const auto &list) -> const Choice & { return list[rng() % std::size(list)]; };
    const Choice &point = pick(kPoints), &group = pick(kGroups), &size = pick(kSizes),
                 &plus = pick(kPluses), &minus = pick(kMinuses), &symbol = pick(kSymbols), &intl = pick(kSymbols);
    int trio[6];
    for (int i = 0; i < 6; ++i) trio[i] = int(rng() % (i % 3 == 2 ? 5 : 2));
    Shape s;
    s.number = {u"", point.units, group.units, size.units.empty() ? 0 : size.units[0] - u'0', plus.units,
                minus.units, {trio[0], trio[1], trio[2]}, {trio[3], trio[4], trio[5]}};
    s.money = s.number;
    s.money.symbol = symbol.units;
    s.moneyIntl = s.number;
    s.moneyIntl.symbol = intl.units;
    s.items = baseItems({{172, point.raw}, {173, group.raw}, {174, size.raw}, {175, plus.raw}, {176, minus.raw},
                         {157, point.raw}, {158, group.raw}, {159, size.raw}, {160, plus.raw}, {161, minus.raw},
                         {156, symbol.raw}, {155, intl.raw}});
    // Placement items in the order precedes, spaced, sign position; positive then negative.
    const int numberItems[6] = {177, 178, 181, 179, 180, 182}, moneyItems[6] = {164, 165, 168, 166, 167, 169};
    for (int i = 0; i < 6; ++i) {
        s.items[numberItems[i]] = s.items[moneyItems[i]] = std::to_string(trio[i]);
    }
    return s;
}

double randomValue(std::mt19937_64 &rng, int i) {
    static const double kSpecial[] = {0.0, -0.0, -1e-9, 0.004, std::numeric_limits<double>::quiet_NaN(),
                                      std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
                                      999.9999, -0.0999999, 98765432109876.54};
    if (i % 4 == 0) return kSpecial[(i / 4) % std::size(kSpecial)];
    const double mantissa = 1 + double(rng() % 9000000000000ull) / 1e12;
    return (rng() % 2 ? -1 : 1) * mantissa * std::pow(10.0, int(rng() % 20) - 8);
}

class Engine : public Numbers {};

TEST_F(Engine, AgreesWithTheRulesAtEveryWidth) {
    std::mt19937_64 rng(20240611);
    int compared = 0;
    for (int i = 0; i < 72; ++i) {
        const Shape s = randomShape(rng);
        const double v = randomValue(rng, i);
        const int decimals = int(rng() % 6);
        const char *rows[] = {"NLNUM", "NLNUMI", "NLPCT", "NLPCTI", "NLMNY", "NLMNYI"};
        const std::string row = rows[i % 6];
        Context c = row == "NLMNY" ? s.money : row == "NLMNYI" ? s.moneyIntl : s.number;
        if (row == "NLNUMI" || row == "NLPCTI") {
            c.point = u".";
            c.group = u",";
            c.size = 3;
        }
        if (row.rfind("NLPCT", 0) == 0) {
            c.symbol = u"%";
            c.positive = c.negative = {0, 0, 1};
        }
        const double engineValue = row.rfind("NLPCT", 0) == 0 ? v * 100.0 : v;
        zvhost::CallSpec spec;
        spec.items = s.items;
        spec.measureBytes = c.bytes = rng() % 3 == 0;
        size_t lastDigits = 0;
        for (int width = 1; width <= 32; ++width) {
            const std::u16string want = renderModel(c, engineValue, width, decimals);
            const zvhost::FormatResult got = runOn(row, v, width, decimals, spec);
            ASSERT_EQ(zvhost::utf8(got.wide), zvhost::utf8(want))
                << row << " " << v << " w" << width << " d" << decimals << " items " << s.items.at(172) << "|"
                << s.items.at(173) << "|" << s.items.at(174) << " bytes " << c.bytes;
            // A wider field never shows fewer digits.
            const std::u16string mantissa = want.substr(0, want.find(u'E'));
            const size_t digits = size_t(std::count_if(mantissa.begin(), mantissa.end(),
                                                       [](char16_t u) { return u >= u'0' && u <= u'9'; }));
            EXPECT_GE(digits, lastDigits) << row << " " << v << " w" << width;
            lastDigits = digits;
            ++compared;
        }
    }
    EXPECT_EQ(compared, 72 * 32);
}

// The members keep the locale's shape for the first locale of an instance, so
// each shape gets a host of its own.
TEST(Members, AgreeWithTheRulesAtEveryWidth) {
    std::mt19937_64 rng(77);
    const char *codes[] = {"EUR", "USD", "JPY", "CHF"};
    for (int i = 0; i < 12; ++i) {
        zvhost::Host host;
        ASSERT_NE(host.loadModule(), nullptr);
        const Shape s = randomShape(rng);
        for (int j = 0; j < 4; ++j) {
            const double v = randomValue(rng, i * 4 + j);
            const int decimals = int(rng() % 4);
            Context c = s.money;
            c.symbol = std::u16string(codes[j], codes[j] + 3);
            zvhost::CallSpec spec;
            spec.items = s.items;
            spec.measureBytes = c.bytes = rng() % 3 == 0;
            const FormatTableRow *row =
                zvhost::findRow(host.instance()->formatTable, std::string("NLMNI") + codes[j]);
            for (int width = 8; width <= 32; ++width) {
                spec.width = width;
                spec.decimals = decimals;
                const zvhost::FormatResult got = zvhost::runFormat(host, *row, spec, v);
                ASSERT_EQ(got.status, 0);
                ASSERT_EQ(zvhost::utf8(got.wide), zvhost::utf8(memberModel(c, v, width, decimals)))
                    << codes[j] << " " << v << " w" << width << " d" << decimals << " bytes " << c.bytes;
            }
        }
    }
}

// Texts of the rules' own examples: the model above could share a slip with
// the engine, these can't.
TEST_F(Engine, Examples) {
    EXPECT_EQ(run("NLPCT", 0.125, 8, 1), "   12.5%");
    EXPECT_EQ(run("NLPCT", -0.125, 8, 1), "  -12.5%");
    EXPECT_EQ(run("NLNUM", -0.001, 8, 2, {{182, "0"}}), "  (0.00)");
    EXPECT_EQ(run("NLNUM", 1.5, 8, 2, {{182, "0"}}), "   1.50 ");
    EXPECT_EQ(run("NLNUM", 1.5e20, 8, 0, {{172, "::"}}), "1::5E+20");
    EXPECT_EQ(run("NLNUM", 12345678.9, 16, 1, {{174, "3;2"}}), "    12,345,678.9");
    EXPECT_EQ(run("NLMNY", 1234567.891, 7, 2), "$1.2E+6");
    zvhost::CallSpec bytes;
    bytes.measureBytes = true;
    EXPECT_EQ(run("NLMNY", 1234.5, 9, 2, {{156, "<U20AC>"}}, bytes), "  \u20ac1234.5");
    zvhost::CallSpec latin1;
    latin1.encoding = "ISO-8859-1";
    EXPECT_EQ(run("NLMNY", 1234.5, 12, 2, {{156, "<U20AC>"}}, latin1), " USD1,234.50");
    EXPECT_EQ(run("NLMNY", 1.5, 10, 2, {{156, "&#1"}}, latin1), "   &#11.50");
    zvhost::CallSpec de;
    de.locale = "de_DE";
    EXPECT_EQ(runOn("NLMNY", -1234567.891, 15, 2, de).utf8, "-1.234.567,89 \u20ac");
}

TEST_F(Engine, LocalesWithoutTheItemUseTheFixedForms) {
    struct Case {
        const char *row;
        int item;
        double value;
        int width;
        const char *want;
    };
    const Case cases[] = {
        {"NLNUM", 183, 1234.5, 10, "  1,234.50"},   {"NLNUMI", 184, -1234.5, 10, " -1,234.50"},
        {"NLNUM", 183, 1234.5, 7, "1234.50"},       {"NLMNY", 170, 1234.5, 10, " $1,234.50"},
        {"NLMNYI", 171, -1234.5, 11, " $-1,234.50"}, {"NLMNY", 170, 1234.5, 1, "*"},
        {"NLMNY", 170, 1.5e20, 10, "**********"},   
        {"NLPCT", 185, 0.125, 8, "  12.5% "},       {"NLPCTI", 186, -0.125, 8, "( 12.5%)"},
        {"NLPCT", 185, 123.456, 6, "******"},
    };
    for (const Case &c : cases) EXPECT_EQ(run(c.row, c.value, c.width, 1 + (c.item != 185 && c.item != 186), {{c.item, ""}}), c.want) << c.row << " " << c.value;
}

} // namespace
