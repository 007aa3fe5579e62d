// The locale number engine through NLNUM, NLNUMI, NLPCT and NLMNY: exact texts
// under locale items that set each placement figure, separators of 0, 1 and
// 2 units, group sizes, and the order of retreat at every width.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

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
};

void PrintTo(const Case &c, std::ostream *os) { *os << c.what; }

class Texts : public Numbers, public ::testing::WithParamInterface<Case> {};

TEST_P(Texts, Exact) {
    const Case &c = GetParam();
    zvhost::FormatResult r = run(c.row, c.value, c.width, c.decimals, c.changes);
    EXPECT_EQ(r.status, 0) << c.what;
    EXPECT_EQ(text(r), c.expected) << c.what;
    EXPECT_EQ(r.outputLength, c.width) << c.what;
    EXPECT_FALSE(r.fieldsChanged) << c.what << ": a field of the call stayed changed";
}

// 1234567.891 with two decimals at every width: the groups go first, then
// the host gives fewer decimals, then E-notation, then stars.
INSTANTIATE_TEST_SUITE_P(NumberAtEveryWidth, Texts, ::testing::Values(
    Case{"w32", "NLNUM", 1234567.891, 32, 2, {}, "                    1,234,567.89"},
    Case{"w13", "NLNUM", 1234567.891, 13, 2, {}, " 1,234,567.89"},
    Case{"w12", "NLNUM", 1234567.891, 12, 2, {}, "1,234,567.89"},
    Case{"w11", "NLNUM", 1234567.891, 11, 2, {}, " 1234567.89"},
    Case{"w10", "NLNUM", 1234567.891, 10, 2, {}, "1234567.89"},
    Case{"w9", "NLNUM", 1234567.891, 9, 2, {}, "1234567.9"},
    Case{"w8", "NLNUM", 1234567.891, 8, 2, {}, " 1234568"},
    Case{"w7", "NLNUM", 1234567.891, 7, 2, {}, "1234568"},
    Case{"w6", "NLNUM", 1234567.891, 6, 2, {}, "1.2E+6"},
    Case{"w5", "NLNUM", 1234567.891, 5, 2, {}, " 1E+6"},
    Case{"w4", "NLNUM", 1234567.891, 4, 2, {}, "1E+6"},
    Case{"w3", "NLNUM", 1234567.891, 3, 2, {}, "***"},
    Case{"w1", "NLNUM", 1234567.891, 1, 2, {}, "*"}));

// The same amount as money: the symbol never goes; decimals go one by one
// in the engine, then the host's field narrows by the excess.
INSTANTIATE_TEST_SUITE_P(MoneyAtEveryWidth, Texts, ::testing::Values(
    Case{"w14", "NLMNY", 1234567.891, 14, 2, {}, " $1,234,567.89"},
    Case{"w13", "NLMNY", 1234567.891, 13, 2, {}, "$1,234,567.89"},
    Case{"w12", "NLMNY", 1234567.891, 12, 2, {}, " $1234567.89"},
    Case{"w11", "NLMNY", 1234567.891, 11, 2, {}, "$1234567.89"},
    Case{"w10", "NLMNY", 1234567.891, 10, 2, {}, "$1234567.9"},
    Case{"w9", "NLMNY", 1234567.891, 9, 2, {}, " $1234568"},
    Case{"w8", "NLMNY", 1234567.891, 8, 2, {}, "$1234568"},
    Case{"w7", "NLMNY", 1234567.891, 7, 2, {}, "$1.2E+6"},
    Case{"w6", "NLMNY", 1234567.891, 6, 2, {}, " $1E+6"},
    Case{"w5", "NLMNY", 1234567.891, 5, 2, {}, "$1E+6"},
    Case{"w4", "NLMNY", 1234567.891, 4, 2, {}, "****"},
    Case{"w2", "NLMNY", 1234567.891, 2, 2, {}, "**"},
    Case{"neg w15", "NLMNY", -1234567.891, 15, 2, {}, " -$1,234,567.89"},
    Case{"neg w12", "NLMNY", -1234567.891, 12, 2, {}, "-$1234567.89"},
    Case{"intl", "NLMNYI", 1234.5, 12, 2, {}, " USD1,234.50"}));

// Percentages: the engine sees the value times 100.
INSTANTIATE_TEST_SUITE_P(PercentAtEveryWidth, Texts, ::testing::Values(
    Case{"w8", "NLPCT", 0.1234567, 8, 2, {}, "  12.35%"},
    Case{"w6", "NLPCT", 0.1234567, 6, 2, {}, "12.35%"},
    Case{"w5", "NLPCT", 0.1234567, 5, 2, {}, "12.3%"},
    Case{"w4", "NLPCT", 0.1234567, 4, 2, {}, " 12%"},
    Case{"w3", "NLPCT", 0.1234567, 3, 2, {}, "12%"},
    Case{"w2", "NLPCT", 0.1234567, 2, 2, {}, "**"},
    Case{"one decimal", "NLPCT", 0.125, 8, 1, {}, "   12.5%"},
    Case{"negative", "NLPCT", -0.125, 8, 1, {}, "  -12.5%"},
    Case{"groups", "NLPCT", 12.5, 10, 1, {}, "  1,250.0%"},
    Case{"plain marks", "NLPCTI", 12.5, 10, 1, {{172, ","}, {173, "."}}, "  1,250.0%"},
    Case{"locale marks", "NLPCT", 12.5, 10, 1, {{172, ","}, {173, "."}}, "  1.250,0%"}));

// Separators of 0, 1 and 2 units and group sizes 0, 2, 3 and 3;2.
INSTANTIATE_TEST_SUITE_P(Separators, Texts, ::testing::Values(
    Case{"no decimal separator", "NLNUM", 1234567.891, 16, 2, {{172, ""}}, "       1,234,568"},
    Case{"two-unit decimal", "NLNUM", 1234567.891, 16, 2, {{172, "::"}}, "   1,234,567::89"},
    Case{"two-unit decimal gives a decimal", "NLNUM", 1234.5678, 7, 2, {{172, "::"}}, "1234::6"},
    Case{"no group separator", "NLNUM", 1234567.891, 16, 2, {{173, ""}}, "      1234567.89"},
    Case{"two-unit groups", "NLNUM", 1234567.891, 16, 2, {{173, "_~"}}, "  1_~234_~567.89"},
    Case{"no-break space", "NLNUM", 1234567.891, 16, 2, {{173, "<U00A0>"}, {172, ","}},
         "    1\u00a0234\u00a0567,89"},
    Case{"group size 0", "NLNUM", 12345678.9, 16, 1, {{174, "0"}}, "      12345678.9"},
    Case{"empty grouping", "NLNUM", 12345678.9, 16, 1, {{174, ""}}, "      12345678.9"},
    Case{"group size 2", "NLNUM", 12345678.9, 16, 1, {{174, "2"}}, "   12,34,56,78.9"},
    Case{"3;2 groups by threes", "NLNUM", 12345678.9, 16, 1, {{174, "3;2"}}, "    12,345,678.9"},
    Case{"plain marks ignore the locale's", "NLNUMI", 12345678.9, 16, 1,
         {{172, ","}, {173, "."}, {174, "2"}}, "    12,345,678.9"},
    Case{"money separators", "NLMNY", 1234567.891, 16, 2, {{157, ","}, {158, "."}}, "   $1.234.567,89"},
    Case{"money two-unit groups", "NLMNY", 1234567.891, 16, 2, {{158, "''"}}, " $1''234''567.89"},
    Case{"E-notation with a two-unit point", "NLNUM", 1.5e20, 8, 0, {{172, "::"}}, "1::5E+20"},
    Case{"E-notation, two-unit sign", "NLNUM", 1.5e9, 8, 0, {{172, "::"}, {175, "++"}}, "  ++2E+9"},
    Case{"E-notation never grouped", "NLNUM", 1.5e20, 8, 0, {}, "1.50E+20"}));

// Signs: negative zero and tiny negatives, parentheses and trailing blanks.
INSTANTIATE_TEST_SUITE_P(Signs, Texts, ::testing::Values(
    Case{"negative zero", "NLNUM", -0.0, 6, 2, {}, "  0.00"},
    Case{"tiny negative keeps its sign", "NLNUM", -0.001, 6, 2, {}, " -0.00"},
    Case{"tiny negative in parentheses", "NLNUM", -0.001, 8, 2, {{182, "0"}}, "  (0.00)"},
    Case{"positive ends in a blank", "NLNUM", 1.5, 8, 2, {{182, "0"}}, "   1.50 "},
    Case{"zero has no blank", "NLNUM", 0.0, 8, 2, {{182, "0"}}, "    0.00"},
    Case{"negative zero has no blank", "NLNUM", -0.0, 8, 2, {{182, "0"}}, "    0.00"},
    Case{"positive in a parenthesis pattern", "NLNUM", 1.5, 8, 2, {{181, "0"}}, "    1.50"},
    Case{"positive sign", "NLNUM", 1.5, 8, 2, {{175, "+"}}, "   +1.50"},
    Case{"two-unit signs", "NLNUM", -1.5, 8, 2, {{176, "<U200F>-"}}, "  \u200f-1.50"},
    Case{"money zero, parentheses", "NLMNY", 0.0, 10, 2, {{169, "0"}}, "     $0.00"},
    Case{"money cent, parentheses", "NLMNY", 0.01, 10, 2, {{169, "0"}}, "    $0.01 "},
    Case{"money negative, parentheses", "NLMNY", -1.5, 10, 2, {{169, "0"}}, "   ($1.50)"},
    Case{"placement out of range", "NLMNY", -1.5, 10, 2, {{169, "127"}, {166, "7"}}, "    -$1.50"}));

// Retreats that go through narrowing and the "0." rule.
INSTANTIATE_TEST_SUITE_P(Retreats, Texts, ::testing::Values(
    Case{"narrowing after the groups", "NLNUM", 123456.789, 6, 0, {{175, "+"}}, " +1E+5"},
    Case{"groups go first", "NLNUM", 1234.5678, 7, 2, {}, "1234.57"},
    Case{"host decimals then groups", "NLNUM", 123456.789, 8, 2, {}, "123456.8"},
    Case{"zero point narrows once", "NLNUM", 0.123456, 4, 3, {{175, "+"}}, "+0.1"},
    Case{"nothing left", "NLNUM", 123456.789, 2, 0, {{175, "+"}}, "**"},
    Case{"negative loses groups", "NLNUM", -1234.5, 7, 1, {}, "-1234.5"},
    Case{"negative loses decimals", "NLNUM", -1234.5, 6, 1, {}, " -1235"}));

// The twenty sign-placement patterns, each through the negative trio of
// NLMNY with symbol "$", sign "-" and the amount -1.5.
struct Placement {
    int precedes, spaced, position;
    const char *negative;
    const char *positive; // 1.5 with positive sign "+", through the positive trio
};

class Placements : public Numbers, public ::testing::WithParamInterface<Placement> {};

TEST_P(Placements, FollowTheTable) {
    const Placement &p = GetParam();
    const std::string pr = std::to_string(p.precedes), sp = std::to_string(p.spaced),
                      po = std::to_string(p.position);
    zvhost::FormatResult neg = run("NLMNY", -1.5, 12, 2, {{166, pr}, {167, sp}, {169, po}});
    EXPECT_EQ(text(neg), std::string(12 - std::strlen(p.negative), ' ') + p.negative);
    // Positives under a negative trio without parentheses.
    zvhost::FormatResult pos =
        run("NLMNY", 1.5, 12, 2, {{164, pr}, {165, sp}, {168, po}, {160, "+"}, {169, "1"}});
    EXPECT_EQ(text(pos), std::string(12 - std::strlen(p.positive), ' ') + p.positive);
    // The number context reads its own figures: NLNUM with the same trio.
    zvhost::FormatResult num = run("NLNUM", -1.5, 12, 2, {{179, pr}, {180, sp}, {182, po}});
    std::string expected = p.negative;
    expected.erase(std::remove(expected.begin(), expected.end(), '$'), expected.end());
    // A spaced pattern keeps its blank beside the empty symbol, which then
    // falls away at either end.
    while (!expected.empty() && expected.back() == ' ') expected.pop_back();
    while (!expected.empty() && expected.front() == ' ') expected.erase(expected.begin());
    std::string got = text(num);
    got.erase(0, got.find_first_not_of(' '));
    EXPECT_EQ(got, expected);
}

INSTANTIATE_TEST_SUITE_P(AllTwenty, Placements, ::testing::Values(
    Placement{0, 0, 0, "(1.50$)", "1.50$"}, Placement{0, 0, 1, "-1.50$", "+1.50$"},
    Placement{0, 0, 2, "1.50$-", "1.50$+"}, Placement{0, 0, 3, "1.50-$", "1.50+$"},
    Placement{0, 0, 4, "1.50$-", "1.50$+"},
    Placement{1, 0, 0, "($1.50)", "$1.50"}, Placement{1, 0, 1, "-$1.50", "+$1.50"},
    Placement{1, 0, 2, "$1.50-", "$1.50+"}, Placement{1, 0, 3, "-$1.50", "+$1.50"},
    Placement{1, 0, 4, "$-1.50", "$+1.50"},
    Placement{0, 1, 0, "(1.50 $)", "1.50 $"}, Placement{0, 1, 1, "-1.50 $", "+1.50 $"},
    Placement{0, 1, 2, "1.50 $-", "1.50 $+"}, Placement{0, 1, 3, "1.50- $", "1.50+ $"},
    Placement{0, 1, 4, "1.50 $-", "1.50 $+"},
    Placement{1, 1, 0, "($ 1.50)", "$ 1.50"}, Placement{1, 1, 1, "-$ 1.50", "+$ 1.50"},
    Placement{1, 1, 2, "$ 1.50-", "$ 1.50+"}, Placement{1, 1, 3, "-$ 1.50", "+$ 1.50"},
    Placement{1, 1, 4, "$ -1.50", "$ +1.50"}));

TEST_F(Numbers, MeasureBytesCountsTheSymbolInBytes) {
    zvhost::CallSpec spec;
    spec.measureBytes = true;
    // "€1,234.50" is 9 units but 11 bytes: the groups go, then a decimal.
    EXPECT_EQ(text(run("NLMNY", 1234.5, 9, 2, {{156, "<U20AC>"}}, spec)), "  \u20ac1234.5");
    EXPECT_EQ(text(run("NLMNY", 1234.5, 9, 2, {{156, "<U20AC>"}})), "\u20ac1,234.50");
}

TEST_F(Numbers, SymbolTheHostCannotShowGivesTheInternationalOne) {
    zvhost::CallSpec spec;
    spec.encoding = "ISO-8859-1";
    EXPECT_EQ(text(run("NLMNY", 1234.5, 12, 2, {{156, "<U20AC>"}}, spec)), " USD1,234.50");
    // Four units or fewer stay, "&#" or not.
    EXPECT_EQ(text(run("NLMNY", 1.5, 10, 2, {{156, "&#1"}}, spec)), "   &#11.50");
}

TEST_F(Numbers, LocalesWithoutTheItemUseTheFixedForms) {
    EXPECT_EQ(text(run("NLNUM", 1234.5, 10, 2, {{183, ""}})), "  1,234.50");
    EXPECT_EQ(text(run("NLNUMI", -1234.5, 10, 2, {{184, ""}})), " -1,234.50");
    EXPECT_EQ(text(run("NLMNY", 1234.5, 10, 2, {{170, ""}})), " $1,234.50");
    EXPECT_EQ(text(run("NLMNYI", -1234.5, 11, 2, {{171, ""}})), " $-1,234.50");
    EXPECT_EQ(text(run("NLMNY", 1234.5, 1, 2, {{170, ""}})), "*");
    // Both fixed forms answer that the value didn't fit their plain form.
    EXPECT_EQ(text(run("NLMNY", 1.5e20, 10, 2, {{170, ""}})), "**********");
    EXPECT_EQ(text(run("NLPCT", 0.125, 8, 1, {{185, ""}})), "  12.5% ");
    EXPECT_EQ(text(run("NLPCTI", -0.125, 8, 1, {{186, ""}})), "( 12.5%)");
}

struct MissingCase {
    const char *row;
    char mark;
    int width, decimals;
    const char *expected;
};

class Missing : public Numbers, public ::testing::WithParamInterface<MissingCase> {};

TEST_P(Missing, ShowTheMark) {
    const MissingCase &m = GetParam();
    zvhost::FormatResult r = run(m.row, zvhost::missingValue(m.mark), m.width, m.decimals);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(text(r), m.expected) << m.row;
    EXPECT_FALSE(r.fieldsChanged);
}

INSTANTIATE_TEST_SUITE_P(Marks, Missing, ::testing::Values(
    MissingCase{"NLNUM", '.', 6, 2, "     ."}, MissingCase{"NLNUM", 'A', 6, 0, "     A"},
    MissingCase{"NLNUMI", '_', 4, 3, "   _"}, MissingCase{"NLPCT", 'Z', 6, 2, "     Z"},
    MissingCase{"NLMNY", '.', 9, 2, "        ."}, MissingCase{"NLMNYI", 'B', 9, 2, "        B"},
    MissingCase{"NLPCTP", '.', 8, 1, "     .  "}, MissingCase{"NLPCTN", 'C', 8, 1, "     C  "},
    MissingCase{"NLMNIEUR", '.', 12, 2, "           ."}, MissingCase{"NLMNLUSD", 'D', 12, 2, "           D"},
    MissingCase{"NLD", '.', 12, 0, "           ."}, MissingCase{"NLBEST", 'E', 12, 0, "           E"}));

TEST_F(Numbers, ValidationAnswersBeforeAnything) {
    zvhost::CallSpec spec;
    spec.validate = true;
    for (const char *row : {"NLNUM", "NLNUMI", "NLPCT", "NLPCTI", "NLMNY", "NLMNYI"}) {
        EXPECT_EQ(run(row, 1, 0, 0, {}, spec).status, ZV_WIDTH_TOO_SMALL) << row;
        EXPECT_EQ(run(row, 1, 33, 0, {}, spec).status, ZV_WIDTH_TOO_LARGE) << row;
        EXPECT_EQ(run(row, 1, 8, 32, {}, spec).status, ZV_DECIMALS_TOO_LARGE) << row;
        EXPECT_EQ(run(row, 1, 32, 31, {}, spec).status, 0) << row;
        EXPECT_EQ(run(row, 1, 1, 0, {}, spec).status, 0) << row;
    }
    // Decimals below 0, through a call made by hand (the host's -1 means "the
    // row's default").
    for (const char *row : {"NLNUM", "NLNUMI", "NLPCT", "NLPCTI", "NLMNY", "NLMNYI"}) {
        const double value = 1;
        ZvChar out[8];
        FormatCall c;
        std::memset(&c, 0, sizeof c);
        c.width = 8;
        c.decimals = -1;
        c.input = &value;
        c.output = out;
        c.outputCapacity = 8;
        c.flags = ZV_FLAG_CHECK_LIMITS;
        c.locale = host.locale("en_US");
        c.transcoder = host.transcoder("UTF-8");
        c.services = host.services();
        const FormatTableRow *r = zvhost::findRow(host.instance()->formatTable, row);
        EXPECT_EQ(r->wideEntry(&c, nullptr), ZV_DECIMALS_TOO_SMALL) << row;
        EXPECT_EQ(c.decimals, -1);
        EXPECT_EQ(c.localeBlock, nullptr);
    }
    // The other number rows read no flags.
    for (const char *row : {"NLPCTN", "NLPCTP", "NLD", "NLBEST", "NLMNIEUR"})
        EXPECT_EQ(run(row, 1, 33, 0, {}, spec).status, 0) << row;
}

TEST_F(Numbers, WidthAbove32GivesThirtyTwoStars) {
    zvhost::CallSpec spec;
    spec.outputCapacity = 40;
    zvhost::FormatResult r = run("NLNUM", 1.5, 33, 2, {}, spec);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(text(r), std::string(32, '*'));
    EXPECT_EQ(r.outputLength, 32);
    EXPECT_TRUE(r.fieldsChanged); // the call now says width 32
    EXPECT_EQ(text(run("NLPCT", 0.5, 40, 0, {}, spec)), std::string(32, '*'));
}

TEST_F(Numbers, ValuesThatCannotBeShownGiveStars) {
    for (double v : {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
                     std::numeric_limits<double>::quiet_NaN()}) {
        for (const char *row : {"NLNUM", "NLPCT", "NLMNY", "NLMNYI"}) {
            zvhost::FormatResult r = run(row, v, 10, 2);
            EXPECT_EQ(text(r), "**********") << row << " " << v;
            EXPECT_FALSE(r.fieldsChanged);
        }
    }
}

TEST_F(Numbers, WideTargetsSmallerThanTheWidthAreNeverOverrun) {
    for (int capacity : {0, 1, 3, 5}) {
        zvhost::CallSpec spec;
        spec.outputCapacity = capacity;
        for (const char *row : {"NLNUM", "NLPCT", "NLMNY", "NLMNIEUR", "NLMNLEUR", "NLPCTN", "NLPCTP",
                                "NLD", "NLBEST"}) {
            for (double v : {1234567.891, -0.5, zvhost::missingValue('.')}) {
                zvhost::FormatResult r = run(row, v, 12, 2, {}, spec);
                EXPECT_FALSE(r.overran) << row << " capacity " << capacity;
            }
        }
    }
}

} // namespace
