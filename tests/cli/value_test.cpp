// How the tool reads a VALUE: a table of exact answers, dates against ICU's
// Gregorian calendar, agreement with the host's own reader, and the shortest
// number form read back to the same bits.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include <unicode/gregocal.h>
#include <unicode/timezone.h>

#include "helpers.hpp"
#include "zvhost.hpp"

namespace {

using clitest::hexOf;
using clitest::lines;
using clitest::run;

struct Good {
    std::string text;
    std::string shown; // the number or the mark
    std::string hex;   // empty: hexOf(the number shown)
};

class ValueGood : public ::testing::TestWithParam<Good> {};

TEST_P(ValueGood, ReadsExactly) {
    const Good &g = GetParam();
    const auto r = run({"value", "--", g.text});
    ASSERT_EQ(r.code, 0) << r.err;
    const std::string hex = g.hex.empty() ? hexOf(std::stod(g.shown)) : g.hex;
    EXPECT_EQ(r.out, g.text + "\t" + g.shown + "\t" + hex + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ValueGood,
    ::testing::Values(
        Good{"0", "0", ""}, Good{"-0", "-0", "8000000000000000"}, Good{"+7", "7", ""},
        Good{"-3.5e2", "-350", ""}, Good{"0.1", "0.1", "3fb999999999999a"}, Good{".5", "0.5", ""},
        Good{"-.25", "-0.25", ""}, Good{"1e300", "1e+300", ""}, Good{" 12 ", "12", ""},
        Good{"1960-01-01", "0", ""}, Good{"1959-12-31", "-1", ""}, Good{"2024-03-05", "23440", ""},
        Good{"2000-02-29", "14669", ""}, Good{"1582-01-01", "-138061", ""}, Good{"1582-10-15", "-137774", ""},
        Good{"9999-12-31", "2936547", ""}, Good{"4000-03-01", "745154", ""}, Good{"1960-01-01T00:00:01", "1", ""},
        Good{"2024-03-05T14:07:09.5", "2025266829.5", ""}, Good{"2024-03-05T14:07", "2025266820", ""},
        Good{"2024-03-05t14:07:09", "2025266829", ""}, Good{"1959-12-31T23:59:59.25", "-0.75", ""},
        Good{"14:07:09", "50829", ""}, Good{"00:00", "0", ""}, Good{"23:59:59.5", "86399.5", ""},
        Good{".", ".", "ffffd10000000000"}, Good{".A", ".A", "ffffbe0000000000"},
        Good{".a", ".A", "ffffbe0000000000"}, Good{".Z", ".Z", "ffffa50000000000"},
        Good{"._", "._", "ffffd20000000000"}, Good{"inf", "inf", "7ff0000000000000"},
        Good{"-inf", "-inf", "fff0000000000000"}));

struct Bad {
    std::string text;
    std::string why;
};

class ValueBad : public ::testing::TestWithParam<Bad> {};

TEST_P(ValueBad, IsReportedAndTheOthersGoOn) {
    const Bad &b = GetParam();
    const auto r = run({"value", "--", "1", b.text, "2"});
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.out, "1\t1\t" + hexOf(1) + "\n2\t2\t" + hexOf(2) + "\n");
    EXPECT_EQ(r.err, "zvfmt: bad VALUE \"" + b.text + "\": " + b.why + "\n");
}

const std::string kNot = "not a number, an ISO date or datetime, or a missing value";
const std::string kTime = "a time must look like HH:MM, HH:MM:SS or HH:MM:SS.fff";

INSTANTIATE_TEST_SUITE_P(
    Cases, ValueBad,
    ::testing::Values(
        Bad{"", "empty VALUE"}, Bad{"   ", "empty VALUE"}, Bad{"abc", kNot}, Bad{"12abc", kNot},
        Bad{"1,5", kNot}, Bad{"++1", kNot}, Bad{"+-1", kNot}, Bad{"+", kNot}, Bad{"0x10", kNot},
        Bad{"1e400", "the number is out of the range of a double"},
        Bad{".AB", kNot}, Bad{".1A", kNot}, Bad{".!", "a missing value is '.', '.A' to '.Z' or '._'"},
        Bad{"2024-13-01", "month 13 is out of range (01..12)"},
        Bad{"4000-02-29", "day 29 is out of range for 4000-02 (01..28)"},
        Bad{"2024-00-10", "month 0 is out of range (01..12)"},
        Bad{"2024-02-30", "day 30 is out of range for 2024-02 (01..29)"},
        Bad{"2023-02-29", "day 29 is out of range for 2023-02 (01..28)"},
        Bad{"2024-04-31", "day 31 is out of range for 2024-04 (01..30)"},
        Bad{"2024-04-00", "day 0 is out of range for 2024-04 (01..30)"},
        Bad{"2024-3-05xx", "a date must look like YYYY-MM-DD"},
        Bad{"2024-03-05X14:00", "a datetime must look like YYYY-MM-DDTHH:MM:SS"},
        Bad{"2024-03-05T24:00", "hour 24 is out of range (00..23)"},
        Bad{"2024-03-05T12:60", "minute 60 is out of range (00..59)"},
        Bad{"2024-03-05T12:00:60", "second 60 is out of range (00..59)"},
        Bad{"2024-03-05T12", kTime}, Bad{"2024-03-05T12:00:", kTime}, Bad{"2024-03-05T12:00:00.", kTime},
        Bad{"2024-03-05T12:00:00.5x", "the fraction of a second must be digits"},
        Bad{"12:3", kTime}));

// Random proleptic Gregorian dates and datetimes against ICU.
TEST(ValueDates, AgreeWithIcuCalendar) {
    UErrorCode status = U_ZERO_ERROR;
    icu::GregorianCalendar cal(icu::TimeZone::getGMT()->clone(), status);
    ASSERT_TRUE(U_SUCCESS(status));
    cal.setGregorianChange(-1e300, status); // proleptic
    std::mt19937 rng(20240305);
    std::vector<std::string> args{"value"};
    std::vector<double> expected;
    for (int i = 0; i < 400; ++i) {
        const int y = std::uniform_int_distribution<int>(1583, 9999)(rng);
        const int m = std::uniform_int_distribution<int>(1, 12)(rng);
        const int d = std::uniform_int_distribution<int>(1, 28 + (i % 4))(rng); // some 29..31
        cal.clear();
        cal.setLenient(false);
        cal.set(y, m - 1, d);
        const UDate ms = cal.getTime(status);
        if (U_FAILURE(status)) { // 29..31 not in that month
            status = U_ZERO_ERROR;
            continue;
        }
        const int h = std::uniform_int_distribution<int>(0, 23)(rng);
        const int mi = std::uniform_int_distribution<int>(0, 59)(rng);
        const int s = std::uniform_int_distribution<int>(0, 59)(rng);
        char date[32], datetime[48];
        std::snprintf(date, sizeof date, "%04d-%02d-%02d", y, m, d);
        std::snprintf(datetime, sizeof datetime, "%sT%02d:%02d:%02d.25", date, h, mi, s);
        // The module's calendar has no 29 February in 4000 and 8000; ICU's has.
        if (m == 2 && d == 29 && y % 4000 == 0) continue;
        const int marchYear = m <= 2 ? y - 1 : y;
        const double days = std::floor(ms / 86400000.0) + 3653 - (marchYear >= 4000 ? marchYear / 4000 : 0);
        args.push_back(date);
        expected.push_back(days);
        args.push_back(datetime);
        expected.push_back(days * 86400 + h * 3600 + mi * 60 + s + 0.25);
    }
    ASSERT_GT(expected.size(), 600u);
    const auto r = run(args);
    ASSERT_EQ(r.code, 0) << r.err;
    const auto out = lines(r.out);
    ASSERT_EQ(out.size(), expected.size());
    for (size_t i = 0; i < out.size(); ++i)
        EXPECT_EQ(out[i].substr(out[i].rfind('\t') + 1), hexOf(expected[i])) << out[i];
}

// The tool's reader and the host's reader agree on every form both know.
TEST(ValueDates, AgreeWithTheHostsReader) {
    std::mt19937 rng(7);
    std::vector<std::string> texts{".", ".A", ".Z", "._", "0", "+7", "-3.5e2", "0.1", "1960-01-01",
                                   "2024-03-05T14:07:09.5", "2024-03-05T14:07", "1582-10-15"};
    for (int i = 0; i < 200; ++i) {
        char buf[64];
        std::snprintf(buf, sizeof buf, "%04d-%02d-%02dT%02d:%02d:%02d",
                      std::uniform_int_distribution<int>(1600, 2400)(rng),
                      std::uniform_int_distribution<int>(1, 12)(rng),
                      std::uniform_int_distribution<int>(1, 28)(rng),
                      std::uniform_int_distribution<int>(0, 23)(rng),
                      std::uniform_int_distribution<int>(0, 59)(rng),
                      std::uniform_int_distribution<int>(0, 59)(rng));
        texts.push_back(buf);
        texts.push_back(std::string(buf).substr(0, 10));
        texts.push_back(std::to_string(std::uniform_int_distribution<int>(-1000000, 1000000)(rng)));
    }
    std::vector<std::string> args{"value", "--"};
    args.insert(args.end(), texts.begin(), texts.end());
    const auto r = run(args);
    ASSERT_EQ(r.code, 0) << r.err;
    const auto out = lines(r.out);
    ASSERT_EQ(out.size(), texts.size());
    for (size_t i = 0; i < texts.size(); ++i) {
        const auto host = zvhost::parseValue(texts[i]);
        ASSERT_TRUE(host.has_value()) << texts[i];
        EXPECT_EQ(out[i].substr(out[i].rfind('\t') + 1), hexOf(*host)) << texts[i];
    }
}

// The shortest number the tool prints reads back to the very same double.
TEST(ValueNumbers, ShortestFormRoundTrips) {
    std::mt19937_64 rng(99);
    std::vector<double> values;
    while (values.size() < 500) {
        const double v = std::bit_cast<double>(rng());
        if (std::isfinite(v) && (std::bit_cast<uint64_t>(v) >> 48) != 0xFFFF) values.push_back(v);
    }
    // %.17g always reads back exactly; the tool then prints its shortest form.
    std::vector<std::string> args{"value", "--"};
    for (double v : values) {
        char buf[64];
        std::snprintf(buf, sizeof buf, "%.17g", v);
        args.push_back(buf);
    }
    const auto first = run(args);
    ASSERT_EQ(first.code, 0) << first.err;
    const auto out1 = lines(first.out);
    ASSERT_EQ(out1.size(), values.size());
    std::vector<std::string> again{"value", "--"};
    for (size_t i = 0; i < values.size(); ++i) {
        const auto tab1 = out1[i].find('\t'), tab2 = out1[i].rfind('\t');
        const std::string shown = out1[i].substr(tab1 + 1, tab2 - tab1 - 1);
        EXPECT_EQ(out1[i].substr(tab2 + 1), hexOf(values[i]));
        EXPECT_LE(shown.size(), std::string(args[i + 2]).size() + 1) << "not the shortest: " << shown;
        again.push_back(shown);
    }
    const auto second = run(again);
    ASSERT_EQ(second.code, 0) << second.err;
    const auto out2 = lines(second.out);
    ASSERT_EQ(out2.size(), values.size());
    for (size_t i = 0; i < values.size(); ++i)
        EXPECT_EQ(out2[i].substr(out2[i].rfind('\t') + 1), hexOf(values[i])) << out2[i];
}

} // namespace
