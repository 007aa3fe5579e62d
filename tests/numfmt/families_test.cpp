// NLPCTN and NLPCTP, NLBEST and NLD, and the symbols of NLMNL<code>.
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>

#include "numfmt/model.hpp"

namespace {

using namespace numtest;

class Families : public Numbers {};

TEST_F(Families, FixedPercentForms) {
    const Items comma = {{172, ","}}, twoUnits = {{172, "::"}};
    struct Case {
        const char *row;
        double value;
        int width, decimals;
        Items changes;
        const char *want;
    } const cases[] = {
        {"NLPCTP", 0.125, 8, 1, {}, "  12.5% "},         {"NLPCTP", -0.125, 8, 1, {}, "( 12.5%)"},
        {"NLPCTN", -0.125, 8, 1, {}, " -12.5% "},        {"NLPCTN", 0.125, 8, 1, {}, "  12.5% "},
        {"NLPCTN", -0.0, 8, 1, {}, "   0.0% "},          {"NLPCTP", 0.125, 8, 1, comma, "  12,5% "},
        {"NLPCTN", -0.125, 8, 1, comma, " -12,5% "},     {"NLPCTP", 0.125, 8, 1, twoUnits, "  12.5% "},
        {"NLPCTP", 123.456, 6, 2, {}, " ***% "},         {"NLPCTN", -1.23456, 8, 2, {}, "-123.5% "},
        {"NLPCTN", -1.23456, 5, 2, {}, "-**% "},
    };
    for (const Case &c : cases)
        EXPECT_EQ(run(c.row, c.value, c.width, c.decimals, c.changes), c.want) << c.row << " " << c.value;
    // A missing value's point is its mark, not a decimal point.
    EXPECT_EQ(run("NLPCTN", zvhost::missingValue('.'), 8, 1, comma), "     .  ");
    EXPECT_EQ(run("NLD", zvhost::missingValue('.'), 8, 0, comma), "       .");
}

// NLD: the decimals that keep the significant digits asked for (3 when
// none are), worked out from the value's exponent and the field's room.
std::string significantModel(double v, int width, int decimals, std::string bestFit) {
    int x = 0;
    bool best = false;
    if (v != 0) {
        const int s = decimals > 0 ? decimals : 3, b = width - s - 1;
        if (b < 2 || !std::isfinite(v)) {
            best = true;
        } else {
            x = s + b / 2 - 1;
            int m = width - x - 2;
            const int t = width - 2;
            const int e = int(std::floor(std::log10(std::fabs(v)) + 1e-12));
            if (e < 0 && s - e - 1 > x) {
                if (s - e - 1 <= width - 3) x = width - 3;
                else best = true;
            } else if (e > t) {
                best = true;
            }
            while (e >= 0 && !best && x > 0 &&
                   !(e < m && (e < m - 1 || std::pow(10.0, m) - 0.5 * std::pow(10.0, m - t) > std::fabs(v)))) {
                const int r = s - m, step = r > 0 ? x - r : x;
                m += step;
                x -= step;
            }
        }
    }
    if (!best && decimals < 10) {
        const std::string t = plainForm(v, width, x).first;
        return std::string(size_t(width) - t.size(), ' ') + t;
    }
    // A short best fit takes the whole field: digits to the left, zeros behind.
    const bool point = bestFit.find('.') != std::string::npos;
    if (best && bestFit.find('E') == std::string::npos && bestFit[0] == ' ' && (point || bestFit[1] == ' ')) {
        bestFit.erase(0, bestFit.find_first_not_of(' '));
        if (!point) bestFit += '.';
        bestFit.resize(size_t(width), '0');
    }
    return bestFit;
}

TEST_F(Families, BestFitAndSignificantDigits) {
    std::mt19937_64 rng(4711);
    for (int i = 0; i < 300; ++i) {
        double v = (rng() % 2 ? -1 : 1) * double(rng() % 1000000007) * std::pow(10.0, int(rng() % 26) - 16);
        if (i % 50 == 0) v = i % 100 ? -0.0 : std::numeric_limits<double>::quiet_NaN();
        if (i % 50 == 1) v = std::nextafter(std::pow(10.0, int(rng() % 6) - 2), 0.0);
        const int width = 1 + int(rng() % 40), decimals = int(rng() % 13);
        const std::string best = run("NLBEST", v, width, 0);
        ASSERT_EQ(best.size(), size_t(width)) << v;
        if (width <= 32) {
            EXPECT_EQ(run("NLD", v, width, decimals), significantModel(v, width, decimals, best))
                << v << " w" << width << " d" << decimals;
        }
        // The best fit is the value to the digits it shows, with the locale's point.
        if (best.find('*') != std::string::npos) {
            EXPECT_EQ(best, std::string(size_t(width), '*')) << v;
            continue;
        }
        if (width > 32) {
            EXPECT_EQ(best.substr(0, size_t(width) - 32).find_first_not_of(' '), std::string::npos);
        }
        std::string comma = best;
        if (const size_t p = comma.find('.'); p != std::string::npos) comma[p] = ',';
        EXPECT_EQ(run("NLBEST", v, width, 0, {{172, ","}}), comma);
        const size_t e = best.find('E'), point = best.find('.');
        const int places = point == std::string::npos ? 0 : int((e == std::string::npos ? best.size() : e) - point - 1);
        const int exponent = e == std::string::npos ? 0 : std::atoi(best.c_str() + e + 1);
        EXPECT_LE(std::fabs(std::strtod(best.c_str(), nullptr) - v),
                  0.5000001 * std::pow(10.0, exponent - places)) << best << " for " << v;
    }
    EXPECT_EQ(run("NLD", 1234.5678, 12, 0), " 1234.567800");
    EXPECT_EQ(run("NLD", 99999.9, 12, 0), "      100000");
    EXPECT_EQ(run("NLD", 0.00012, 12, 0, {{172, ","}}), "    0,000120");
    EXPECT_EQ(run("NLD", 12.5, 8, 6), "12.50000");
}

TEST_F(Families, SymbolsTheHostCannotShowGiveTheCode) {
    zvhost::CallSpec latin1, latin2;
    latin1.encoding = "ISO-8859-1";
    latin2.encoding = "ISO-8859-2";
    EXPECT_EQ(run("NLMNLEUR", 1234.5, 12, 2), "   \u20ac1,234.50");
    EXPECT_EQ(run("NLMNLEUR", 1234.5, 12, 2, {}, latin1), " EUR1,234.50");
    EXPECT_EQ(run("NLMNLCZK", 1234.5, 12, 2, {}, latin1), " CZK1,234.50");
    EXPECT_EQ(run("NLMNLCZK", 1234.5, 12, 2, {}, latin2), "  K\u010d1,234.50");
    EXPECT_EQ(run("NLMNLUSD", -1234.5, 13, 2, {}, latin1), " -US$1,234.50");
    zvhost::CallSpec bytes;
    bytes.measureBytes = true;
    EXPECT_EQ(run("NLMNLEUR", 1234.5, 10, 2, {}, bytes), "  \u20ac1234.50");
}

} // namespace
