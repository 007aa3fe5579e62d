// Calendar arithmetic against a day-by-day walk with its own leap rule, the
// civil-day algorithm where the plain Gregorian rule holds, and glibc's
// strftime for week numbers.
#include <cmath>
#include <ctime>
#include <random>

#include "dates.hpp"
#include "datefmt/calendar.hpp"
#include "frame/frame.hpp"

namespace {

using zv::isMissing;

bool leap(int64_t y) { return y % 4000 != 0 && ((y % 4 == 0 && y % 100 != 0) || y % 400 == 0); }
int monthDays(int64_t y, int m) {
    static const int k[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return k[m - 1] + (m == 2 && leap(y));
}

// Every day from 1 January 1582 to 31 December 20000, both ways.
TEST(Calendar, EveryDayOfTheRange) {
    double day = zv::kFirstDay;
    int weekday = dt::civilWeekday(dt::civilDays(1582, 1, 1)) + 1, failures = 0;
    for (int64_t year = 1582; year <= 20000; ++year) {
        int64_t yday = 0;
        for (int m = 1; m <= 12; ++m)
            for (int d = 1; d <= monthDays(year, m); ++d, day += 1, weekday = weekday % 7 + 1) {
                const double code = double(year * 1000 + ++yday);
                double y, mm, dd;
                zv::yearDayToYmd(&y, &mm, &dd, code);
                const zv::CivilDate c = zv::civilOf(int64_t(day));
                const bool ok = c.year == year && c.month == m && c.day == d && c.dayOfYear == yday &&
                                c.weekday + 1 == weekday && zv::dayCountToYearDay(day) == code && zv::yearDayToDayCount(code) == day &&
                                zv::weekdayOf(day) == weekday && y == year && mm == m && dd == d &&
                                zv::ymdToYearDay(double(year), m, d) == code &&
                                zv::dayCountOfDate(year, m, d) == day &&
                                (year >= 4000 || day == dt::civilDays(year, m, d));
                if (!ok && ++failures <= 5) ADD_FAILURE() << year << "-" << m << "-" << d << " day " << day;
            }
    }
    EXPECT_EQ(day, zv::kDayLimit);
}

TEST(Calendar, Refusals) {
    const double special = zvhost::missingValue('B');
    EXPECT_EQ(zv::bitsOf(zv::dayCountToYearDay(special)), zv::bitsOf(special));
    EXPECT_EQ(zv::yearDayToDayCount(1960000), -1);
    for (double bad : {0.0, -5.0, 1000001.0, 1581365.0, 2001366.0, 2000367.0, 4000366.0, 20000366.0})
        EXPECT_TRUE(isMissing(zv::yearDayToDayCount(bad))) << bad;
    struct Ymd { double y, m, d; };
    for (Ymd c : {Ymd{1581, 12, 31}, Ymd{20001, 1, 1}, Ymd{2000, 0, 1}, Ymd{2000, 13, 1}, Ymd{2000, 1, 0},
                  Ymd{2000, 1, 32}, Ymd{-1, 1, 1}, Ymd{100, 1, 1}, Ymd{2024, 4, 31}, Ymd{4000, 2, 29},
                  Ymd{1900, 2, 29}})
        EXPECT_TRUE(isMissing(zv::ymdToYearDay(c.y, c.m, c.d))) << c.y << "-" << c.m << "-" << c.d;
    EXPECT_EQ(zv::ymdToYearDay(2024.9, 3.7, 5.2), 2024065);
    double y, m, d;
    EXPECT_TRUE(zv::yearDayToYmd(&y, &m, &d, 1581001) == 0 && isMissing(y) && isMissing(m) && isMissing(d));
}

// Whole-number dates, refused ones and two-digit years among them, give what the double path gives.
TEST(Calendar, DatesInWholeNumbersAsThePathOverYearDays) {
    int failures = 0;
    for (int64_t y : {-1LL, 0LL, 49LL, 50LL, 99LL, 100LL, 1581LL, 1582LL, 1900LL, 2000LL, 2024LL, 4000LL, 20000LL,
                      20001LL, 1000000000000LL})
        for (int64_t m = 0; m <= 13; ++m)
            for (int64_t d = 0; d <= 32; ++d) {
                const double twoSteps = zv::yearDayToDayCount(zv::ymdToYearDay(double(y), double(m), double(d)));
                if (zv::bitsOf(zv::dayCountOfDate(y, m, d)) != zv::bitsOf(twoSteps) && ++failures <= 5)
                    ADD_FAILURE() << y << "-" << m << "-" << d;
            }
}

TEST(Calendar, SecondCounts) {
    struct C { double seconds, day, hour, minute, second, timeOfDay; };
    for (C c : {C{-1, -1, 23, 59, 59, 86399}, C{-86400, -1, 0, 0, 0, 0}, C{0, 0, 0, 0, 0, 0},
                C{59.75, 0, 0, 0, 59.75, 59.75}, C{-0.5, -1, 23, 59, 59.5, 86399.5},
                C{23440 * 86400.0 + 50829.5, 23440, 14, 7, 9.5, 50829.5}, C{-11928470400.0, -138061, 0, 0, 0, 0},
                C{569318630399.0, 6589335, 23, 59, 59, 86399}}) {
        EXPECT_TRUE(zv::dayOf(c.seconds) == c.day && zv::hourOf(c.seconds) == c.hour && zv::minuteOf(c.seconds) == c.minute &&
                    zv::secondOf(c.seconds) == c.second && zv::timeOfDay(c.seconds) == c.timeOfDay) << c.seconds;
    }
}

// The remainder by whole divisors is fmod's to the bit, signed zeros and
// fractions included, over the second counts and beyond.
TEST(Calendar, RemaindersAsFmodGivesThem) {
    std::mt19937_64 rng(3);
    const double fixed[] = {-86400.0, -0.0, 0.0, 172800.0, -0.25, 0x1p53, -0x1p60 - 2048, 1e300};
    for (int i = 0; i < 200000; ++i) {
        const double whole = double(int64_t(rng() % (uint64_t(1) << (i % 50 + 3))) - (i % 2 ? 0 : int64_t(1) << (i % 50 + 2)));
        const double x = i < 8 ? fixed[i] : i % 3 ? whole + std::ldexp(double(rng() % 1024), -int(rng() % 12)) * (whole < 0 ? -1 : 1) : whole;
        for (double divisor : {86400.0, 3600.0, 60.0, 7.0})
            ASSERT_EQ(zv::bitsOf(zv::remainderOf(x, divisor)), zv::bitsOf(std::fmod(x, divisor))) << x << " " << divisor;
    }
}

TEST(Calendar, SignedFieldsAndRounding) {
    ZvChar f[4];
    EXPECT_EQ(zv::writeSignedField(-12, f, 2), 1);
    EXPECT_TRUE(zv::writeSignedField(-12, f, 4) == 0 && std::u16string(f, 4) == u" -12");
    struct C { double value, unit, expected; };
    for (C c : {C{0, 1, 0}, C{0.5, 1, 1}, C{1.49, 1, 1}, C{2.4999999999999996, 1, 3}, C{-2.5, 1, -3},
                C{2.4999, 1, 2}, C{59.96, 0.1, 60}, C{1e17 + 8, 1, 1e17 + 8}, C{123.456, 0.01, 12346 * 0.01},
                C{100000.5 - 7.5e-8, 1, 100000}}) {
        double r = -1;
        EXPECT_TRUE(zv::roundToUnit(c.value, c.unit, &r) == 0 && r == c.expected) << c.value << " / " << c.unit << ": " << r;
    }
}

// Week numbers of every day against glibc's strftime, which takes the day of
// the year by the plain Gregorian rule, as the week routine does.
TEST(Calendar, WeekNumbersAgreeWithStrftime) {
    int failures = 0;
    for (auto [from, to] : {std::pair{1583, 2400}, std::pair{3996, 4004}, std::pair{19996, 20000}})
        for (int64_t y = from; y <= to; ++y)
            for (int m = 1; m <= 12; ++m)
                for (int d = 1; d <= monthDays(y, m); ++d) {
                    const double day = zv::yearDayToDayCount(zv::ymdToYearDay(double(y), m, d));
                    std::tm tm{};
                    tm.tm_year = int(y - 1900), tm.tm_yday = int(dt::civilDays(y, m, d) - dt::civilDays(y, 1, 1));
                    tm.tm_wday = int(zv::weekdayOf(day)) - 1;
                    char buf[64];
                    std::strftime(buf, sizeof buf, "%U %W %V %G %u", &tm);
                    int U, W, V, G, u;
                    ASSERT_EQ(std::sscanf(buf, "%d %d %d %d %d", &U, &W, &V, &G, &u), 5);
                    double wy[3], w[3], n[3];
                    for (int k = 0; k < 3; ++k) zv::weekOfDate(day, k == 0 ? u"U" : k == 1 ? u"W" : u"V", &wy[k], &w[k], &n[k]);
                    const bool ok = w[0] == U && wy[0] == y && n[0] == tm.tm_wday + 1 && w[1] == W && wy[1] == y &&
                                    n[1] == u && w[2] == V && wy[2] == G && n[2] == u;
                    if (!ok && ++failures <= 5) ADD_FAILURE() << y << "-" << m << "-" << d << " strftime " << buf;
                }
}

} // namespace
