// The locale number engine (NLNUM, NLNUMI, NLPCT, NLPCTI, NLMNY, NLMNYI) and
// the per-currency core (NLMNI<code>) against the engines of model.hpp, over
// random shapes of locale (separators of 0, 1 and 2 units, group sizes,
// signs, symbols, all twenty placements), random values and every width.
#include <algorithm>
#include <limits>
#include <random>
#include <utility>

#include "numfmt/model.hpp"

namespace {

using namespace numtest;

// Item texts and what the engine should make of them.
using Choice = std::pair<const char *, std::u16string>;
const Choice kPoints[] = {{".", u"."}, {",", u","}, {"", u""}, {"::", u"::"}, {"<U066B>", u"\u066b"}};
const Choice kGroups[] = {{",", u","}, {".", u"."}, {"", u""}, {"<U00A0>", u"\u00a0"}, {"''", u"''"}};
const Choice kSizes[] = {{"3", u"3"}, {"0", u""}, {"", u""}, {"2", u"2"}, {"3;2", u"3"}};
const Choice kPluses[] = {{"", u""}, {"+", u"+"}, {"<U200E>+", u"\u200e+"}};
const Choice kMinuses[] = {{"-", u"-"}, {"<U200F>-", u"\u200f-"}, {"", u""}};
const Choice kSymbols[] = {{"$", u"$"}, {"kr.", u"kr."}, {"<U20AC>", u"\u20ac"}, {"", u""}, {"SFr", u"SFr"}};
constexpr double kInf = std::numeric_limits<double>::infinity();
const double kSpecial[] = {0.0, -0.0, -1e-9, 0.004, kInf - kInf, kInf, -kInf, 999.9999, -0.0999999, 98765432109876.54};

TEST(Engine, AgreesWithTheRulesAtEveryWidth) {
    std::mt19937_64 rng(20240611);
    auto pick = [&](const auto &list) -> const Choice & { return list[rng() % std::size(list)]; };
    const char *rows[] = {"NLNUM", "NLNUMI", "NLPCT", "NLPCTI", "NLMNY", "NLMNYI"}, *codes[] = {"EUR", "USD", "JPY"};
    for (int i = 0; i < 72; ++i) {
        zvhost::Host host; // the members read the placement of the first locale of an instance
        ASSERT_NE(host.loadModule(), nullptr);
        const Choice &point = pick(kPoints), &group = pick(kGroups), &size = pick(kSizes), &plus = pick(kPluses),
                     &minus = pick(kMinuses), &symbol = pick(kSymbols), &intl = pick(kSymbols);
        int trio[6]; // precedes, spaced, sign position; positive then negative
        for (int k = 0; k < 6; ++k) trio[k] = int(rng() % (k % 3 == 2 ? 5 : 2));
        zvhost::CallSpec spec;
        spec.items = baseItems({{172, point.first}, {173, group.first}, {174, size.first}, {175, plus.first}, {176, minus.first},
                                {157, point.first}, {158, group.first}, {159, size.first}, {160, plus.first}, {161, minus.first},
                                {156, symbol.first}, {155, intl.first}});
        const int numberItems[6] = {177, 178, 181, 179, 180, 182}, moneyItems[6] = {164, 165, 168, 166, 167, 169};
        for (int k = 0; k < 6; ++k) spec.items[numberItems[k]] = spec.items[moneyItems[k]] = std::to_string(trio[k]);
        Context c{u"", point.second, group.second, size.second.empty() ? 0 : size.second[0] - u'0', plus.second,
                  minus.second, {trio[0], trio[1], trio[2]}, {trio[3], trio[4], trio[5]}, rng() % 3 == 0};
        spec.measureBytes = c.bytes;
        const std::string row = rows[i % 6];
        const bool percent = row.rfind("NLPCT", 0) == 0;
        const std::string code = codes[i % 3];
        Context member = c;
        member.symbol = std::u16string(code.begin(), code.end());
        if (row == "NLNUMI" || row == "NLPCTI") c.point = u".", c.group = u",", c.size = 3;
        if (percent) c.symbol = u"%", c.positive = c.negative = {0, 0, 1};
        if (row == "NLMNY" || row == "NLMNYI") c.symbol = row == "NLMNY" ? symbol.second : intl.second;
        const double v = i % 4 ? (rng() % 2 ? -1 : 1) * std::uniform_real_distribution<double>(1, 10)(rng) *
                                     std::pow(10.0, int(rng() % 20) - 8) : kSpecial[(i / 4) % std::size(kSpecial)];
        spec.decimals = int(rng() % 6);
        size_t lastDigits = 0;
        for (spec.width = 1; spec.width <= 32; ++spec.width) {
            const std::string what = row + " " + std::to_string(v) + " w" + std::to_string(spec.width) + " shape " + std::to_string(i);
            const std::u16string want = renderModel(c, percent ? v * 100.0 : v, spec.width, spec.decimals);
            const zvhost::FormatResult got = zvhost::runFormat(host, *zvhost::findRow(host.instance()->formatTable, row), spec, v);
            ASSERT_EQ(zvhost::utf8(got.wide), zvhost::utf8(want)) << what;
            // A wider field never shows fewer digits.
            const size_t digits = size_t(std::count_if(want.begin(), std::find(want.begin(), want.end(), u'E'),
                                                       [](char16_t u) { return u >= u'0' && u <= u'9'; }));
            EXPECT_GE(digits, std::exchange(lastDigits, digits)) << what;
            const zvhost::FormatResult m =
                zvhost::runFormat(host, *zvhost::findRow(host.instance()->formatTable, "NLMNI" + code), spec, v);
            ASSERT_EQ(zvhost::utf8(m.wide), zvhost::utf8(renderModel(member, v, spec.width, spec.decimals, true))) << code << what;
        }
    }
}

// The rules' own examples: the model could share a slip with the engine.
TEST_F(Numbers, EngineExamples) {
    zvhost::CallSpec bytes, latin1, de;
    bytes.measureBytes = true, latin1.encoding = "ISO-8859-1", de.locale = "de_DE";
    EXPECT_EQ(run("NLNUM", -0.001, 8, 2, {{182, "0"}}), "  (0.00)");
    EXPECT_EQ(run("NLNUM", 1.5e20, 8, 0, {{172, "::"}}), "1::5E+20");
    EXPECT_EQ(run("NLNUM", 12345678.9, 16, 1, {{174, "3;2"}}), "    12,345,678.9");
    EXPECT_EQ(run("NLMNY", 1234567.891, 7, 2), "$1.2E+6");
    EXPECT_EQ(run("NLMNY", 1234.5, 9, 2, {{156, "<U20AC>"}}, bytes), "  \u20ac1234.5");
    EXPECT_EQ(run("NLMNY", 1234.5, 12, 2, {{156, "<U20AC>"}}, latin1), " USD1,234.50");
    EXPECT_EQ(run("NLMNY", 1.5, 10, 2, {{156, "&#1"}}, latin1), "   &#11.50");
    EXPECT_EQ(run("NLMNY", -1234567.891, 15, 2, {}, de), "-1.234.567,89 \u20ac");
}

// A target narrower than the field holds the field's first places: the dress
// built in a work area and cut agrees with the one built in the whole field.
TEST_F(Numbers, NarrowTargetHoldsTheFirstPlaces) {
    zvhost::CallSpec spec;
    spec.locale = "de_DE", spec.decimals = 2;
    for (const char *row : {"NLNUM", "NLMNY", "NLMNIEUR", "NLMNLUSD"})
        for (double v : {-1234567.891, 0.5, 98765.4321})
            for (spec.width = 11; spec.width <= 20; ++spec.width) {
                const FormatTableRow &r = *zvhost::findRow(host.instance()->formatTable, row);
                spec.outputCapacity = -1;
                const std::u16string whole = zvhost::runFormat(host, r, spec, v).wide;
                spec.outputCapacity = spec.width - 3;
                EXPECT_EQ(zvhost::utf8(zvhost::runFormat(host, r, spec, v).wide), zvhost::utf8(whole.substr(0, spec.width - 3)))
                    << row << " " << v << " w" << spec.width;
            }
}

} // namespace
