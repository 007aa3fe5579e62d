// NLPCTN and NLPCTP, the per-currency members, NLBEST and NLD, and what all
// number rows share: the caller's record comes back as it went in.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <random>

#include "fixture.hpp"

namespace {

using numtest::Items;
using numtest::Numbers;

struct Case {
    const char *what;
    const char *row;
    double value;
    int width;
    int decimals;
    Items changes;
    const char *expected; // UTF-8
    const char *encoding = "UTF-8";
};

void PrintTo(const Case &c, std::ostream *os) { *os << c.what; }

class FamilyTexts : public Numbers, public ::testing::WithParamInterface<Case> {};

TEST_P(FamilyTexts, Exact) {
    const Case &c = GetParam();
    zvhost::CallSpec spec;
    spec.encoding = c.encoding;
    zvhost::FormatResult r = run(c.row, c.value, c.width, c.decimals, c.changes, spec);
    EXPECT_EQ(r.status, 0) << c.what;
    EXPECT_EQ(text(r), c.expected) << c.what;
    EXPECT_FALSE(r.fieldsChanged) << c.what;
}

INSTANTIATE_TEST_SUITE_P(FixedPercent, FamilyTexts, ::testing::Values(
    Case{"positive", "NLPCTP", 0.125, 8, 1, {}, "  12.5% "},
    Case{"negative in parentheses", "NLPCTP", -0.125, 8, 1, {}, "( 12.5%)"},
    Case{"negative with a minus", "NLPCTN", -0.125, 8, 1, {}, " -12.5% "},
    Case{"positive with a minus form", "NLPCTN", 0.125, 8, 1, {}, "  12.5% "},
    Case{"negative zero", "NLPCTN", -0.0, 8, 1, {}, "   0.0% "},
    Case{"comma locale", "NLPCTP", 0.125, 8, 1, {{172, ","}}, "  12,5% "},
    Case{"comma locale, minus", "NLPCTN", -0.125, 8, 1, {{172, ","}}, " -12,5% "},
    Case{"two-unit separator keeps the point", "NLPCTP", 0.125, 8, 1, {{172, "::"}}, "  12.5% "},
    Case{"too wide keeps the host's text", "NLPCTP", 123.456, 6, 2, {}, " ***% "},
    Case{"host drops decimals", "NLPCTN", -1.23456, 8, 2, {}, "-123.5% "}));

INSTANTIATE_TEST_SUITE_P(Members, FamilyTexts, ::testing::Values(
    Case{"code", "NLMNIEUR", 1234.5, 12, 2, {}, " EUR1,234.50"},
    Case{"symbol", "NLMNLEUR", 1234.5, 12, 2, {}, "   \u20ac1,234.50"},
    Case{"symbol the host can't show", "NLMNLEUR", 1234.5, 12, 2, {}, " EUR1,234.50", "ISO-8859-1"},
    Case{"ASCII symbol", "NLMNLUSD", 1234.5, 12, 2, {}, " US$1,234.50", "ISO-8859-1"},
    Case{"pound in Latin-1", "NLMNLGBP", 1234.5, 12, 2, {}, "   \u00a31,234.50", "ISO-8859-1"},
    Case{"koruna in Latin-1", "NLMNLCZK", 1234.5, 12, 2, {}, " CZK1,234.50", "ISO-8859-1"},
    Case{"koruna in Latin-2", "NLMNLCZK", 1234.5, 12, 2, {}, "  K\u010d1,234.50", "ISO-8859-2"},
    Case{"rupee groups by the locale", "NLMNIINR", 1234567.5, 16, 2, {}, " INR1,234,567.50"},
    Case{"yen keeps the decimals asked for", "NLMNLJPY", 1234.5, 12, 2, {}, "   \uffe51,234.50"},
    Case{"negative", "NLMNIUSD", -1234.5, 12, 2, {}, "-USD1,234.50"},
    Case{"groups go first", "NLMNIEUR", 1234.5, 10, 2, {}, "EUR1234.50"},
    Case{"then the code", "NLMNIEUR", 1234.5, 8, 2, {}, " 1234.50"},
    Case{"negative keeps its sign", "NLMNIEUR", -1234.5, 8, 2, {}, "-1234.50"},
    Case{"decimals never drop", "NLMNIEUR", 123456.5, 8, 2, {}, "123456.5"},
    Case{"locale's separators", "NLMNIEUR", 1234.5, 12, 2, {{157, ","}, {158, "."}}, " EUR1.234,50"},
    Case{"locale's placement", "NLMNIUSD", 1234.5, 14, 2, {{164, "0"}, {165, "1"}}, "  1,234.50 USD"},
    Case{"symbol behind, spaced", "NLMNLUSD", -1234.5, 14, 2, {{166, "0"}, {167, "1"}, {169, "2"}},
         " 1,234.50 US$-"},
    Case{"whole separators", "NLMNIEUR", 1234567.5, 20, 2, {{158, "<U00A0>'"}},
         "   EUR1\u00a0'234\u00a0'567.50"},
    Case{"empty decimal separator joins the fraction", "NLMNIEUR", 1234.5, 12, 2, {{157, ""}},
         "  EUR1,23450"},
    Case{"the plain number at last", "NLMNIEUR", 1234.5, 8, 2, {{157, "###"}}, " 1234.50"},
    Case{"zero", "NLMNIEUR", 0.0, 12, 2, {}, "     EUR0.00"},
    Case{"negative zero", "NLMNIEUR", -0.0, 12, 2, {}, "     EUR0.00"},
    Case{"tiny negative", "NLMNIEUR", -0.001, 12, 2, {}, "    -EUR0.00"}));

INSTANTIATE_TEST_SUITE_P(Significant, FamilyTexts, ::testing::Values(
    Case{"decimals stand", "NLD", 1234.5678, 12, 0, {}, " 1234.567800"},
    Case{"all decimals traded", "NLD", 99999.9, 12, 0, {}, "      100000"},
    Case{"leading zeros", "NLD", 0.00012, 12, 0, {}, "    0.000120"},
    Case{"negative", "NLD", -1234.5678, 12, 0, {}, "-1234.567800"},
    Case{"zero", "NLD", 0.0, 12, 0, {}, "           0"},
    Case{"negative zero", "NLD", -0.0, 12, 0, {}, "           0"},
    Case{"too small for decimals", "NLD", 1e-12, 12, 0, {}, "       1E-12"},
    Case{"just below a power of ten", "NLD", std::nextafter(1000.0, 0.0), 12, 0, {}, " 1000.000000"},
    Case{"more digits", "NLD", 1234.5678, 12, 6, {}, "    1234.568"},
    Case{"narrow field goes best fit, filled", "NLD", 1234.5678, 12, 10, {}, "1234.5678000"},
    Case{"ten decimals: best fit without zeros", "NLD", 1234.5678, 32, 10, {},
         "                       1234.5678"},
    Case{"short best fit filled with zeros", "NLD", 12.5, 8, 6, {}, "12.50000"},
    Case{"comma locale", "NLD", 1234.5678, 12, 0, {{172, ","}}, " 1234,567800"},
    Case{"two-unit separator", "NLD", 1234.5678, 12, 0, {{172, "::"}}, " 1234.567800"},
    Case{"best fit", "NLBEST", 1234.5678, 12, 0, {}, "   1234.5678"},
    Case{"best fit, comma", "NLBEST", 1234.5678, 12, 0, {{172, ","}}, "   1234,5678"},
    Case{"best fit, E-notation, comma", "NLBEST", 1.5e20, 8, 0, {{172, ","}}, " 1,5E+20"},
    Case{"best fit at 36", "NLBEST", 1234.5, 36, 0, {}, "                              1234.5"},
    Case{"best fit, too narrow", "NLBEST", 99.6, 2, 0, {}, "**"}));

TEST_F(Numbers, MissingMarksKeepTheirPointUnderACommaLocale) {
    const Items comma = {{172, ","}};
    EXPECT_EQ(text(run("NLPCTP", zvhost::missingValue('.'), 8, 1, comma)), "     .  ");
    EXPECT_EQ(text(run("NLPCTN", zvhost::missingValue('.'), 8, 1, comma)), "     .  ");
    EXPECT_EQ(text(run("NLD", zvhost::missingValue('.'), 8, 0, comma)), "       .");
    EXPECT_EQ(text(run("NLBEST", zvhost::missingValue('.'), 8, 0, comma)), "       .");
    EXPECT_EQ(text(run("NLBEST", 0.5, 8, 0, comma)), "     0,5");
}

TEST_F(Numbers, NldTradesDecimalsNearTheTopOfTheIntegerRoom) {
    // Width 12, 3 digits: x 6, m 4. 9999.9999996 rounds to 10000.000000 at
    // six places, which doesn't fit m = 4 digits: the decimals go.
    EXPECT_EQ(text(run("NLD", 9999.9999996, 12, 0)), "       10000");
    EXPECT_EQ(text(run("NLD", 9999.9999994, 12, 0)), " 9999.999999");
}

TEST_F(Numbers, MemberRecordComesFromTheFirstLocale) {
    // The placement bytes are read once for the instance: a later locale
    // brings its texts but not its placement.
    EXPECT_EQ(text(run("NLMNIEUR", -1.5, 10, 2, {{169, "0"}})), " (EUR1.50)");
    EXPECT_EQ(text(run("NLMNIEUR", -1.5, 10, 2, {{169, "1"}, {161, "~"}})), " (EUR1.50)");
    EXPECT_EQ(text(run("NLMNIEUR", 1.5, 10, 2, {{157, ","}})), "  EUR1,50 ");
}

TEST_F(Numbers, MemberWithParenthesesNarrowsTheHostField) {
    EXPECT_EQ(text(run("NLMNIEUR", -1234567.891, 8, 2, {{169, "0"}})), "(1.2E+6)");
    EXPECT_EQ(text(run("NLMNIEUR", 1234.5, 12, 2, {{169, "0"}})), "EUR1,234.50 ");
}

TEST_F(Numbers, MemberMeasuresTheSymbolInBytes) {
    zvhost::CallSpec spec;
    spec.measureBytes = true;
    EXPECT_EQ(text(run("NLMNLEUR", 1234.5, 11, 2, {}, spec)), "  \u20ac1,234.50");
    EXPECT_EQ(text(run("NLMNLEUR", 1234.5, 10, 2, {}, spec)), "  \u20ac1234.50");
    EXPECT_EQ(text(run("NLMNLEUR", 1234.5, 9, 2, {}, spec)), "  1234.50");
}

TEST_F(Numbers, MemberOnACallThatAlreadyHasABlock) {
    // A record made on a call whose block was built by another format reads
    // that block, not an empty snapshot.
    const double value = 1234.5;
    ZvChar out[12];
    FormatCall c;
    std::memset(&c, 0, sizeof c);
    c.width = 12;
    c.decimals = 2;
    c.input = &value;
    c.output = out;
    c.outputCapacity = 12;
    numtest::Items items = numtest::baseItems();
    items[157] = ",";
    items[158] = ".";
    c.locale = host.locale("en_US", items);
    c.transcoder = host.transcoder("UTF-8");
    c.services = host.services();
    const FormatTableRow *num = zvhost::findRow(host.instance()->formatTable, "NLNUM");
    const FormatTableRow *eur = zvhost::findRow(host.instance()->formatTable, "NLMNIEUR");
    ASSERT_EQ(num->wideEntry(&c, nullptr), 0);
    ASSERT_NE(c.localeBlock, nullptr);
    ASSERT_EQ(eur->wideEntry(&c, nullptr), 0);
    EXPECT_EQ(std::u16string(out, 12), u" EUR1.234,50");
}

TEST_F(Numbers, AcceptanceTexts) {
    zvhost::CallSpec de;
    de.locale = "de_DE";
    EXPECT_EQ(text(runOn("NLMNY", -1234567.891, 15, 2, de)), "-1.234.567,89 \u20ac");
    zvhost::CallSpec fr;
    fr.locale = "fr_FR";
    EXPECT_EQ(text(runOn("NLMNIUSD", 1234.5, 12, 2, fr)), "1\u202f234,50 USD");
    zvhost::CallSpec en;
    en.locale = "en_US";
    EXPECT_EQ(text(runOn("NLNUM", 123456.789, 8, 2, en)), "123456.8");
    EXPECT_EQ(text(runOn("NLNUM", 123456.789, 10, 2, en)), "123,456.79");
}

TEST_F(Numbers, ByteEntriesCarryTheTextIntoTheHostEncoding) {
    zvhost::CallSpec spec;
    spec.entry = zvhost::Entry::Byte;
    spec.encoding = "UTF-8";
    zvhost::FormatResult r = run("NLMNLEUR", 1234.5, 12, 2, {}, spec);
    EXPECT_EQ(r.status, 0);
    // Three blanks and the euro sign's three bytes don't fit twelve bytes
    // with the digits: the blanks give way.
    EXPECT_EQ(r.bytes, " \u20ac1,234.50");
    spec.encoding = "ISO-8859-1";
    r = run("NLMNLEUR", 1234.5, 12, 2, {}, spec);
    EXPECT_EQ(r.bytes, " EUR1,234.50");
}

// Over many values, widths and decimals: every number row answers 0, keeps
// the caller's record, writes no further than its target, and NLNUM's text
// is either stars or the value rounded to the places it shows.
TEST_F(Numbers, PropertiesOverManyValues) {
    std::mt19937_64 rng(61);
    std::uniform_real_distribution<double> unit(-1, 1);
    const char *rows[] = {"NLNUM", "NLNUMI", "NLPCT", "NLPCTI", "NLPCTN", "NLPCTP", "NLMNY",
                          "NLMNYI", "NLMNIEUR", "NLMNLJPY", "NLD", "NLBEST"};
    int checked = 0;
    for (int i = 0; i < 400; ++i) {
        double v = unit(rng) * std::pow(10.0, int(rng() % 24) - 8);
        if (i % 10 == 0) v = std::pow(10.0, int(rng() % 30) - 10) * (rng() % 2 ? 1 : -1);
        if (i % 10 == 1) v = std::nextafter(v, 0.0);
        const int width = 1 + int(rng() % 32);
        const int decimals = int(rng() % 7);
        for (const char *row : rows) {
            zvhost::FormatResult r = run(row, v, width, decimals);
            ASSERT_EQ(r.status, 0) << row << " " << v;
            ASSERT_FALSE(r.fieldsChanged) << row << " " << v << " w" << width;
            const std::string name = row;
            const bool fieldWide = name != "NLPCTN" && name != "NLPCTP" && name != "NLD" && name != "NLBEST";
            if (fieldWide) {
                ASSERT_EQ(r.outputLength, width) << row;
            }
        }
        zvhost::FormatResult r = run("NLNUM", v, width, decimals);
        std::string t = text(r);
        if (t.find('*') != std::string::npos) {
            EXPECT_EQ(t, std::string(size_t(width), '*'));
            continue;
        }
        t.erase(std::remove(t.begin(), t.end(), ','), t.end());
        t.erase(0, t.find_first_not_of(' '));
        double back = 0;
        ASSERT_EQ(std::sscanf(t.c_str(), "%lf", &back), 1) << t;
        const size_t e = t.find('E');
        const std::string mantissa = t.substr(0, e);
        const size_t point = mantissa.find('.');
        const int places = point == std::string::npos ? 0 : int(mantissa.size() - point - 1);
        const int exponent = e == std::string::npos ? 0 : std::stoi(t.substr(e + 1));
        EXPECT_LE(std::fabs(back - v), 0.5 * std::pow(10.0, exponent - places) * (1 + 1e-9))
            << t << " for " << v << " w" << width << " d" << decimals;
        EXPECT_LE(places, decimals + (e == std::string::npos ? 0 : 30)) << t;
        ++checked;
    }
    EXPECT_GT(checked, 200);
}

} // namespace
