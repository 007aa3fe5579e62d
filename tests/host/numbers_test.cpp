// The host's number services: exact texts of the plain, grouped and best-fit
// forms, rounding against a second algorithm (decimal rounding of the exact
// binary value), parsing and the decimal exponent.
#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <random>
#include <string>

#include "numbers.hpp"

namespace {

using zvhost::formatNumberText;
using zvhost::kNumberBadRequest;
using zvhost::kNumberNotPlain;
using zvhost::kNumberUngrouped;

struct Out {
    int32_t status;
    std::string text;
};

Out format(double v, int width, int decimals, uint32_t flags, int64_t capacity = -1) {
    ZvChar buf[600];
    for (auto &u : buf) u = u'#';
    int64_t produced = -7;
    if (capacity < 0) capacity = width;
    const int32_t s = formatNumberText(v, width, decimals, flags, buf, capacity, &produced);
    std::string t;
    for (int64_t i = 0; i < produced; ++i) t.push_back(static_cast<char>(buf[i]));
    // Nothing beyond what was produced.
    EXPECT_EQ(buf[produced < 0 ? 0 : produced], u'#');
    return {s, t};
}

double missing(char letter) {
    uint64_t bits = ZV_MISSING_BITS;
    const char stored = letter == '_' ? '-' : letter;
    if (letter != '.') bits = (bits & ~(0xFFull << 40)) | (uint64_t(uint8_t(~stored)) << 40);
    double v;
    std::memcpy(&v, &bits, sizeof v);
    return v;
}

struct FormatCase {
    double value;
    int width;
    int decimals;
    uint32_t flags;
    const char *expected;
    int32_t status;
};

class FormatTexts : public ::testing::TestWithParam<FormatCase> {};

TEST_P(FormatTexts, ExactText) {
    const FormatCase &c = GetParam();
    Out o = format(c.value, c.width, c.decimals, c.flags);
    EXPECT_EQ(o.text, c.expected) << c.value << " w" << c.width << " d" << c.decimals;
    EXPECT_EQ(o.status, c.status) << c.value << " w" << c.width << " d" << c.decimals;
}

constexpr uint32_t P = ZV_NUMBER_PLAIN, G = ZV_NUMBER_GROUPED, B = ZV_NUMBER_BEST_FIT;
const int32_t NP = kNumberNotPlain;

INSTANTIATE_TEST_SUITE_P(Plain, FormatTexts, ::testing::Values(
    FormatCase{1234.5678, 10, 2, P, "   1234.57", 0},
    FormatCase{-1234.5678, 8, 2, P, "-1234.57", 0},
    FormatCase{-1234.5678, 7, 2, P, "-1234.6", NP},
    FormatCase{-1234.5678, 5, 2, P, "-1235", NP},
    FormatCase{1234567, 6, 0, P, "1.2E+6", NP},
    FormatCase{1234567, 5, 0, P, " 1E+6", NP},
    FormatCase{1234567, 3, 0, P, "***", NP},
    FormatCase{0.5, 3, 0, P, "  1", 0},
    FormatCase{2.5, 3, 0, P, "  3", 0},
    FormatCase{-2.5, 3, 0, P, " -3", 0},
    FormatCase{0.125, 5, 2, P, " 0.13", 0},
    FormatCase{-0.125, 5, 2, P, "-0.13", 0},
    FormatCase{2.675, 5, 2, P, " 2.67", 0}, // 2.67499999... in binary
    FormatCase{1.005, 5, 2, P, " 1.00", 0}, // 1.00499999...
    FormatCase{-0.0, 4, 1, P, " 0.0", 0},
    FormatCase{-0.001, 5, 2, P, "-0.00", 0},
    FormatCase{9.96, 4, 1, P, "10.0", 0},
    FormatCase{9.96, 3, 1, P, " 10", NP},
    FormatCase{1e-7, 6, 2, P, "  0.00", 0},
    FormatCase{1.5e20, 8, 0, P, "1.50E+20", NP},
    FormatCase{-1.5e-20, 8, 30, P, "-0.00000", NP},
    FormatCase{125, 4, 0, P, " 125", 0},
    FormatCase{12500000, 6, 0, P, "1.3E+7", NP},  // a tie in E-notation goes up
    FormatCase{-12500000, 7, 0, P, "-1.3E+7", NP},
    FormatCase{95000000, 4, 0, P, "1E+8", NP},    // and carries into the exponent
    FormatCase{99950000, 6, 0, P, "1.0E+8", NP},
    FormatCase{863705692298.2890625, 20, 6, P, " 863705692298.289063", 0}, // ulp far above 10^-6
    FormatCase{999999999999999.875, 19, 2, P, " 999999999999999.88", 0},
    FormatCase{125, 2, 0, P, "**", NP},
    FormatCase{125, 6, 0, P, "   125", 0},
    FormatCase{1.7976931348623157e308, 10, 0, P, "1.798E+308", NP},
    FormatCase{missing('.'), 5, 2, P, "    .", 0},
    FormatCase{missing('A'), 3, 0, P, "  A", 0},
    FormatCase{missing('_'), 3, 0, P, "  _", 0},
    FormatCase{HUGE_VAL, 4, 0, P, "****", NP},
    FormatCase{std::nan(""), 4, 0, P, "****", NP}));

INSTANTIATE_TEST_SUITE_P(Grouped, FormatTexts, ::testing::Values(
    FormatCase{1234567.891, 14, 2, G, "  1,234,567.89", 0},
    FormatCase{-1234567.891, 13, 2, G, "-1,234,567.89", 0},
    FormatCase{1234567.891, 11, 2, G, " 1234567.89", kNumberUngrouped},
    FormatCase{1234567.891, 9, 2, G, "1234567.9", NP},
    FormatCase{999.5, 5, 0, G, "1,000", 0},
    FormatCase{123, 3, 0, G, "123", 0},
    FormatCase{0.5, 4, 2, G, "0.50", 0}));

INSTANTIATE_TEST_SUITE_P(BestFit, FormatTexts, ::testing::Values(
    FormatCase{12.5, 8, 0, B, "    12.5", 0},
    FormatCase{100, 8, 0, B, "     100", 0},
    FormatCase{0, 4, 0, B, "   0", 0},
    FormatCase{-0.0, 4, 0, B, "   0", 0},
    FormatCase{1234.5678, 12, 0, B, "   1234.5678", 0},
    FormatCase{1.0 / 3, 8, 0, B, "0.333333", 0},
    FormatCase{-1.0 / 3, 8, 0, B, "-0.33333", 0},
    FormatCase{0.0001234, 8, 0, B, "1.234E-4", 0},
    FormatCase{1234567890123.0, 8, 0, B, "1.23E+12", 0},
    FormatCase{123456789, 9, 0, B, "123456789", 0},
    FormatCase{123456789, 8, 0, B, "1.235E+8", 0},
    FormatCase{99.6, 2, 0, B, "**", NP},
    FormatCase{1234.5678, 32, 0, B, "                       1234.5678", 0},
    FormatCase{0.1 + 0.2, 32, 0, B, "                             0.3", 0},
    FormatCase{1.0 / 3, 32, 0, B, "               0.333333333333333", 0},
    FormatCase{1e300 / 3, 32, 0, B, "           3.33333333333333E+299", 0},
    FormatCase{missing('B'), 4, 0, B, "   B", 0}));

TEST(FormatNumber, RefusesWhatItCannotServe) {
    ZvChar buf[8] = {u'#', u'#', u'#', u'#', u'#', u'#', u'#', u'#'};
    int64_t produced = 5;
    EXPECT_EQ(formatNumberText(1, 0, 0, P, buf, 8, &produced), kNumberBadRequest);
    EXPECT_EQ(produced, 0);
    EXPECT_EQ(formatNumberText(1, -4, 0, P, buf, 8, &produced), kNumberBadRequest);
    EXPECT_EQ(formatNumberText(1, 4, 0, 0x4000, buf, 8, &produced), kNumberBadRequest);
    EXPECT_EQ(formatNumberText(1, 4, 0, P, nullptr, 8, &produced), kNumberBadRequest);
    for (ZvChar u : buf) EXPECT_EQ(u, u'#');
}

TEST(FormatNumber, SmallCapacityWritesWhatFits) {
    Out o = format(1234.5, 8, 1, P, 5);
    EXPECT_EQ(o.status, ZV_TARGET_TOO_SMALL);
    EXPECT_EQ(o.text, "  123");
}

// The second algorithm: the exact decimal expansion of the double, rounded by
// hand half away from zero.
std::string roundedByHand(double v, int decimals) {
    static char exact[2000];
    auto r = std::to_chars(exact, exact + sizeof exact, std::fabs(v), std::chars_format::fixed, 1100);
    std::string s(exact, r.ptr);
    const size_t point = s.find('.');
    std::string digits = s.substr(0, point) + s.substr(point + 1, size_t(decimals));
    const bool up = s[point + 1 + size_t(decimals)] >= '5';
    if (up) {
        int i = int(digits.size()) - 1;
        while (i >= 0 && digits[size_t(i)] == '9') digits[size_t(i--)] = '0';
        if (i < 0) digits.insert(digits.begin(), '1');
        else ++digits[size_t(i)];
    }
    std::string intPart = digits.substr(0, digits.size() - size_t(decimals));
    std::string text = intPart + (decimals > 0 ? "." + digits.substr(intPart.size()) : "");
    if (std::signbit(v) && v != 0) text = "-" + text;
    return text;
}

TEST(FormatNumber, PlainRoundingAgreesWithExactDecimalRounding) {
    std::mt19937_64 rng(20261123);
    std::uniform_int_distribution<int> decimalsOf(0, 8);
    std::uniform_real_distribution<double> unit(-1, 1);
    std::uniform_int_distribution<int> scaleOf(-6, 12);
    int ties = 0;
    for (int i = 0; i < 20000; ++i) {
        const int d = decimalsOf(rng);
        double v = unit(rng) * std::pow(10.0, scaleOf(rng));
        if (i % 4 == 0) {
            // Exact ties: k + 0.5 ties at 0 decimals, (k + 0.5) / 2 at 1, (k + 0.5) / 4 at 2.
            const double k = std::floor(std::fabs(v) * 8);
            v = std::copysign((k + 0.5) / std::pow(2.0, d % 3), v);
        }
        const std::string expected = roundedByHand(v, d);
        Out o = format(v, 40, d, P);
        ASSERT_EQ(o.status, 0) << v;
        size_t first = o.text.find_first_not_of(' ');
        ASSERT_EQ(o.text.substr(first), expected) << v << " d" << d;
        if (expected.back() == '5') ++ties;
    }
    EXPECT_GT(ties, 0);
}

TEST(FormatNumber, FitsEveryWidthAroundPowersOfTen) {
    for (int p = -10; p <= 22; ++p) {
        for (double v : {std::pow(10.0, p), std::nextafter(std::pow(10.0, p), 0.0),
                         -std::pow(10.0, p), 0.5 * std::pow(10.0, p)}) {
            for (int w = 1; w <= 32; ++w) {
                for (uint32_t flags : {P, G, B}) {
                    Out o = format(v, w, 3, flags);
                    ASSERT_EQ(int(o.text.size()), w) << v << " w" << w;
                    const bool starred = o.text.find('*') != std::string::npos;
                    if (starred) {
                        EXPECT_EQ(o.text, std::string(size_t(w), '*'));
                        EXPECT_EQ(o.status, NP);
                        continue;
                    }
                    // What is shown reads back within the rounding of the field.
                    std::string t = o.text;
                    t.erase(std::remove(t.begin(), t.end(), ','), t.end());
                    t.erase(0, t.find_first_not_of(' '));
                    double back = 0;
                    auto r = std::from_chars(t.data(), t.data() + t.size(), back);
                    ASSERT_EQ(r.ec, std::errc()) << o.text;
                    ASSERT_EQ(r.ptr, t.data() + t.size()) << o.text;
                    // Half a unit of the last place shown.
                    const size_t e = t.find('E');
                    const std::string mantissa = t.substr(0, e);
                    const size_t point = mantissa.find('.');
                    const int places = point == std::string::npos ? 0 : int(mantissa.size() - point - 1);
                    const int exponent = e == std::string::npos ? 0 : std::stoi(t.substr(e + 1));
                    EXPECT_LE(std::fabs(back - v), 0.5 * std::pow(10.0, exponent - places) * (1 + 1e-12))
                        << o.text << " for " << v;
                }
            }
        }
    }
}

TEST(FormatNumber, LargestDoublesInEveryForm) {
    for (double v : {1.7976931348623157e308, -1.7976931348623157e308, 4.9e-324, -4.9e-324}) {
        Out plain = format(v, 32, 31, P);
        Out best = format(v, 32, 0, B);
        Out wide = format(v, 340, 0, P);
        EXPECT_EQ(plain.status, NP) << v;
        if (std::fabs(v) > 1) {
            EXPECT_NE(plain.text.find('E'), std::string::npos) << plain.text;
        }
        EXPECT_NE(best.text.find('E'), std::string::npos) << best.text;
        EXPECT_EQ(int(wide.text.size()), 340);
    }
    Out wide = format(1.7976931348623157e308, 340, 0, P);
    EXPECT_EQ(wide.status, 0);
    EXPECT_NE(wide.text.find("179769313486231570814527423731704356798070567525844996598917476803157260780028538760589558632766878171540458953514382464234321326889464182768467546703537516986049910576551282076245490090389328944075868508455133942304583236903222948165808559332123348274797826204144723168738177180919299881250404026184124858368"), std::string::npos);
}

struct ParseCase {
    const char16_t *text;
    int32_t status;
    double value;
};

class ParseDoubles : public ::testing::TestWithParam<ParseCase> {};

TEST_P(ParseDoubles, ReadsTheForm) {
    const ParseCase &c = GetParam();
    std::u16string t = c.text;
    double v = -99;
    int64_t used = -1;
    const int32_t s = zvhost::parseDoubleText(t.data(), int64_t(t.size()), &v, &used);
    EXPECT_EQ(s, c.status);
    if (c.status == 0) {
        EXPECT_EQ(v, c.value);
        EXPECT_EQ(used, int64_t(t.size()));
    } else {
        EXPECT_EQ(v, -99);
    }
}

INSTANTIATE_TEST_SUITE_P(Texts, ParseDoubles, ::testing::Values(
    ParseCase{u"12.5", 0, 12.5}, ParseCase{u"  -12.5  ", 0, -12.5}, ParseCase{u"+3", 0, 3},
    ParseCase{u".5", 0, 0.5}, ParseCase{u"5.", 0, 5}, ParseCase{u"1.5E+3", 0, 1500},
    ParseCase{u"1e-2", 0, 0.01}, ParseCase{u"0.1", 0, 0.1},
    ParseCase{u"", zvhost::kNumberUnreadable, 0}, ParseCase{u"   ", zvhost::kNumberUnreadable, 0},
    ParseCase{u"1,5", zvhost::kNumberUnreadable, 0}, ParseCase{u"1e", zvhost::kNumberUnreadable, 0},
    ParseCase{u"--1", zvhost::kNumberUnreadable, 0}, ParseCase{u"1.2.3", zvhost::kNumberUnreadable, 0},
    ParseCase{u"1e999", zvhost::kNumberUnreadable, 0}, ParseCase{u"-.", zvhost::kNumberUnreadable, 0}));

TEST(ParseDouble, PointAloneIsTheMissingValue) {
    std::u16string t = u"  .  ";
    double v = 0;
    int64_t used = 0;
    ASSERT_EQ(zvhost::parseDoubleText(t.data(), int64_t(t.size()), &v, &used), 0);
    uint64_t bits;
    std::memcpy(&bits, &v, sizeof bits);
    EXPECT_EQ(bits, ZV_MISSING_BITS);
}

TEST(ParseDouble, ReadsBackWhatThePlainFormWrites) {
    std::mt19937_64 rng(7);
    std::uniform_real_distribution<double> unit(-1, 1);
    for (int i = 0; i < 5000; ++i) {
        const double v = unit(rng) * std::pow(10.0, int(rng() % 40) - 20);
        ZvChar buf[40];
        int64_t produced = 0;
        formatNumberText(v, 32, 0, B, buf, 32, &produced);
        double back = 0;
        int64_t used = 0;
        ASSERT_EQ(zvhost::parseDoubleText(buf, produced, &back, &used), 0);
        EXPECT_NEAR(back, v, std::fabs(v) * 5e-15);
    }
}

TEST(ParseInteger, ReadsSignedDigitsOnly) {
    struct C {
        const char16_t *text;
        int32_t status;
        int64_t value;
    } cases[] = {{u"0", 0, 0},
                 {u" 42 ", 0, 42},
                 {u"-7", 0, -7},
                 {u"+9223372036854775807", 0, INT64_MAX},
                 {u"9223372036854775808", zvhost::kNumberUnreadable, 0},
                 {u"1.5", zvhost::kNumberUnreadable, 0},
                 {u"", zvhost::kNumberUnreadable, 0},
                 {u"-", zvhost::kNumberUnreadable, 0},
                 {u"1 2", zvhost::kNumberUnreadable, 0}};
    for (const C &c : cases) {
        std::u16string t = c.text;
        int64_t v = -99, used = -1;
        EXPECT_EQ(zvhost::parseIntegerText(t.data(), int64_t(t.size()), &v, &used), c.status);
        EXPECT_EQ(v, c.status == 0 ? c.value : -99);
    }
}

TEST(DecimalExponent, CountsTheRoundingCarry) {
    EXPECT_EQ(zvhost::decimalExponent(9.9996, 4), 1);
    EXPECT_EQ(zvhost::decimalExponent(9.9996, 5), 0);
    EXPECT_EQ(zvhost::decimalExponent(1234.5, 9), 3);
    EXPECT_EQ(zvhost::decimalExponent(-0.00012, 3), -4);
    EXPECT_EQ(zvhost::decimalExponent(0.00099996, 2), -3); // 0.0010 once rounded
    EXPECT_EQ(zvhost::decimalExponent(0, 3), 0);
    EXPECT_EQ(zvhost::decimalExponent(9.5, 1), 1);
    EXPECT_EQ(zvhost::decimalExponent(9.25, 2), 0);
    for (int p = -300; p <= 300; p += 7) {
        const double v = std::pow(10.0, p) * 3.3;
        EXPECT_EQ(zvhost::decimalExponent(v, 9), p) << p;
    }
}

} // namespace
