// The fixed forms (NLPCTN, NLPCTP, and a locale without the item), NLBEST and
// NLD, and the symbols of NLMNL<code>.
#include <limits>
#include <random>

#include "numfmt/model.hpp"

namespace {

using namespace numtest;

// The fixed forms: NLPCTN and NLPCTP, and what a locale that lacks the item gets.
TEST_F(Numbers, FixedForms) {
    const Items comma = {{172, ","}}, twoUnits = {{172, "::"}};
    struct Case { const char *row; double value; int width, decimals; Items changes; const char *want; } const cases[] = {
        {"NLPCTP", 0.125, 8, 1, {}, "  12.5% "},     {"NLPCTP", -0.125, 8, 1, {}, "( 12.5%)"},
        {"NLPCTN", -0.125, 8, 1, {}, " -12.5% "},    {"NLPCTN", -0.0, 8, 1, {}, "   0.0% "},
        {"NLPCTP", 0.125, 8, 1, comma, "  12,5% "},  {"NLPCTN", -0.125, 8, 1, comma, " -12,5% "},
        {"NLPCTP", 0.125, 8, 1, twoUnits, "  12.5% "}, {"NLPCTP", 123.456, 6, 2, {}, " ***% "},
        {"NLPCTN", -1.23456, 8, 2, {}, "-123.5% "},  {"NLPCTN", -1.23456, 5, 2, {}, "-**% "},
        {"NLPCTN", zvhost::missingValue('.'), 8, 1, comma, "     .  "},
        {"NLD", zvhost::missingValue('.'), 8, 0, comma, "       ."},
        {"NLNUM", 1234.5, 10, 2, {{183, ""}}, "  1,234.50"},   {"NLNUMI", -1234.5, 10, 2, {{184, ""}}, " -1,234.50"},
        {"NLNUM", 1234.5, 7, 2, {{183, ""}}, "1234.50"},       {"NLMNY", 1234.5, 10, 2, {{170, ""}}, " $1,234.50"},
        {"NLMNYI", -1234.5, 11, 2, {{171, ""}}, " $-1,234.50"}, {"NLMNY", 1234.5, 1, 2, {{170, ""}}, "*"}, {"NLMNY", 5, 1, 0, {{170, ""}}, "5"},
        {"NLMNY", 1.5e20, 10, 2, {{170, ""}}, "**********"},   {"NLPCT", 0.125, 8, 1, {{185, ""}}, "  12.5% "},
        {"NLPCTI", -0.125, 8, 1, {{186, ""}}, "( 12.5%)"},     {"NLPCT", 123.456, 6, 2, {{185, ""}}, "******"},
    };
    for (const Case &c : cases) EXPECT_EQ(run(c.row, c.value, c.width, c.decimals, c.changes), c.want) << c.row << c.value;
}

// A host whose grouped numbers come left-justified, short of the field: the
// fixed forms still set them at the field's end.
HostLocale *realFormatter = nullptr;
int32_t shortAnswer(HostLocale *, double v, int32_t w, int32_t d, uint32_t flags, ZvChar *t, int64_t cap, int64_t *produced) {
    const int32_t status = realFormatter->ops->formatNumber(realFormatter, v, w, d, flags, t, cap, produced);
    const int64_t lead = std::min<int64_t>(*produced, std::u16string_view(t, size_t(std::max<int64_t>(*produced, 0))).find_first_not_of(u' '));
    std::memmove(t, t + lead, size_t(*produced - lead) * sizeof(ZvChar));
    *produced -= lead;
    return status;
}

TEST_F(Numbers, HostsThatAnswerShortOfTheField) {
    for (auto [row, item] : {std::pair{"NLNUM", 183}, {"NLMNY", 170}})
        for (double v : {1234.5, -0.5, 12.0})
            for (int width : {6, 10, 14}) {
                const std::string want = run(row, v, width, 2, {{item, ""}});
                HostAnchor *a = host.anchor();
                realFormatter = a->numberFormatter;
                HostLocaleOps ops = *realFormatter->ops;
                ops.formatNumber = shortAnswer;
                HostLocale shortHost{&ops};
                a->numberFormatter = &shortHost;
                EXPECT_EQ(run(row, v, width, 2, {{item, ""}}), want) << row << " " << v << " " << width;
                a->numberFormatter = realFormatter;
            }
}

// NLD: the decimals that keep the significant digits asked for (3 when none
// are), from the value's exponent and the field's room; else the best fit,
// a short one filled with zeros to the whole field.
std::string significantModel(double v, int width, int decimals, std::string bestFit) {
    int x = 0;
    const int s = decimals > 0 ? decimals : 3, b = width - s - 1;
    bool best = v != 0 && (b < 2 || !std::isfinite(v));
    if (v != 0 && !best) {
        x = s + b / 2 - 1;
        int m = width - x - 2;
        const int t = width - 2, e = int(std::floor(std::log10(std::fabs(v)) + 1e-12));
        if (e < 0 && s - e - 1 > x && s - e - 1 > width - 3) best = true;
        else if (e < 0 && s - e - 1 > x) x = width - 3;
        best = best || e > t;
        while (e >= 0 && !best && x > 0 &&
               !(e < m && (e < m - 1 || std::pow(10.0, m) - 0.5 * std::pow(10.0, m - t) > std::fabs(v)))) {
            const int step = s - m > 0 ? x - (s - m) : x;
            m += step;
            x -= step;
        }
    }
    if (!best && decimals < 10) {
        const std::string t = plainForm(v, width, x).first;
        return std::string(size_t(width) - t.size(), ' ') + t;
    }
    const bool point = bestFit.find('.') != std::string::npos;
    if (best && bestFit.find('E') == std::string::npos && bestFit[0] == ' ' && (point || bestFit[1] == ' ')) {
        bestFit.erase(0, bestFit.find_first_not_of(' ')).append(point ? "" : ".").resize(size_t(width), '0');
    }
    return bestFit;
}

TEST_F(Numbers, BestFitAndSignificantDigits) {
    std::mt19937_64 rng(4711);
    for (int i = 0; i < 300; ++i) {
        double v = (rng() % 2 ? -1 : 1) * double(rng() % 1000000007) * std::pow(10.0, int(rng() % 26) - 16);
        if (i % 50 == 0) v = i % 100 ? -0.0 : std::numeric_limits<double>::quiet_NaN();
        if (i % 50 == 1) v = std::nextafter(std::pow(10.0, int(rng() % 6) - 2), 0.0);
        const int width = 1 + int(rng() % 40), decimals = int(rng() % 13);
        const std::string best = run("NLBEST", v, width, 0);
        ASSERT_EQ(best.size(), size_t(width)) << v;
        if (width <= 32) {
            EXPECT_EQ(run("NLD", v, width, decimals), significantModel(v, width, decimals, best)) << v << " w" << width;
        }
        if (best.find('*') != std::string::npos) {
            EXPECT_EQ(best, std::string(size_t(width), '*')) << v;
            continue;
        }
        // At most 32 places of text, with the locale's point.
        EXPECT_LE(std::max(width - 32, 0), int(best.find_first_not_of(' ')));
        std::string comma = best;
        if (const size_t p = comma.find('.'); p != std::string::npos) comma[p] = ',';
        EXPECT_EQ(run("NLBEST", v, width, 0, {{172, ","}}), comma);
    }
    // Fields of 33 to 40 places get blanks in front of the host's 32; a wider one goes to the host whole.
    EXPECT_EQ(run("NLBEST", 1e40, 40, 0), std::string(35, ' ') + "1E+40");
    EXPECT_EQ(run("NLBEST", 1e40, 41, 0), "10000000000000000303786028427003666890752");
    EXPECT_EQ(run("NLD", 1234.5678, 12, 0), " 1234.567800");
    EXPECT_EQ(run("NLD", 99999.9, 12, 0), "      100000");
    EXPECT_EQ(run("NLD", 0.00012, 12, 0, {{172, ","}}), "    0,000120");
    EXPECT_EQ(run("NLD", 12.5, 8, 6), "12.50000");
    EXPECT_EQ(run("NLD", std::pow(10.0, 4) - 0.5 * std::pow(10.0, -6), 12, 0), "       10000");
}

TEST_F(Numbers, SymbolsTheHostCannotShowGiveTheCode) {
    zvhost::CallSpec latin1, bytes;
    latin1.encoding = "ISO-8859-1", bytes.measureBytes = true;
    EXPECT_EQ(run("NLMNLEUR", 1234.5, 12, 2), "   \u20ac1,234.50");
    EXPECT_EQ(run("NLMNLEUR", 1234.5, 12, 2, {}, latin1), " EUR1,234.50");
    EXPECT_EQ(run("NLMNLEUR", 1234.5, 10, 2, {}, bytes), "  \u20ac1234.50");
    EXPECT_EQ(run("NLMNLBGN", 1234.5, 12, 2), "  \u043b\u04321,234.50");
    EXPECT_EQ(run("NLMNLBGN", 1234.5, 12, 2, {}, latin1), " BGN1,234.50");
}

// Without room for the record of the locale's money a member writes the
// missing mark (a blank for a value that is there) and its reader answers 1.
TEST(Members, WithoutRoomForTheMoneyRecord) {
    zvhost::Host host;
    ASSERT_NE(host.loadModule(), nullptr);
    host.createdPools().back()->failFrom(1);
    const FormatTableRow *table = host.instance()->formatTable;
    const zvhost::FormatResult f = zvhost::runFormat(host, *zvhost::findRow(table, "NLMNIEUR"), {}, 12.5);
    EXPECT_EQ(f.utf8 + std::to_string(f.status), std::string(12, ' ') + "0");
    const zvhost::ReadResult r = zvhost::runInformat(host, *zvhost::findRow(table, "@NLMNIEUR"), {}, "12.50");
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(r.untouched);
}

} // namespace
