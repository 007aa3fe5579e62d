// Calendar arithmetic against an independent day-by-day walk, Howard
// Hinnant's civil-date algorithm (where the plain Gregorian rule holds) and
// glibc's strftime week numbers.
#include <gtest/gtest.h>

#include <cmath>
#include <ctime>
#include <string>

#include "datefmt/calendar.hpp"
#include "frame/frame.hpp"
#include "zvhost.hpp"

namespace {

using zv::isMissing;

// days_from_civil: days since 1970-01-01 in the proleptic Gregorian calendar.
int64_t daysFromCivil(int64_t y, unsigned m, unsigned d) {
    y -= m <= 2;
    const int64_t era = (y >= 0 ? y : y - 399) / 400;
    const unsigned yoe = static_cast<unsigned>(y - era * 400);
    const unsigned doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + d - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<int64_t>(doe) - 719468;
}
const int64_t kEpoch1960 = daysFromCivil(1960, 1, 1);

bool leapWith4000(int64_t y) { return y % 4000 != 0 && ((y % 4 == 0 && y % 100 != 0) || y % 400 == 0); }
int monthDays(int64_t y, int m) {
    static const int k[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return k[m - 1] + (m == 2 && leapWith4000(y));
}

struct Anchored {
    HostAnchor *saved = zv::hostAnchor;
    zvhost::Host host;
    Anchored() { zvextent(host.anchor()); }
    ~Anchored() { zv::hostAnchor = saved; }
};

// Every day from 1 January 1582 to 31 December 20000, walked by month
// lengths: both directions, and weekdays that step by one from Friday
// 1 January 1960.
TEST(Calendar, EveryDayOfTheRangeBothWays) {
    double dayCount = zv::kFirstDay;
    int64_t dayOfYear = 0, year = 1582;
    int month = 1, dom = 1;
    // 1 Sunday .. 7 Saturday; 1970-01-01 was a Thursday.
    int expectedWeekday = int(((daysFromCivil(1582, 1, 1) % 7) + 11) % 7) + 1;
    int failures = 0;
    for (; dayCount < zv::kDayLimit; dayCount += 1) {
        ++dayOfYear;
        const double code = static_cast<double>(year * 1000 + dayOfYear);
        if (zv::dayCountToYearDay(dayCount) != code || zv::yearDayToDayCount(code) != dayCount ||
            zv::weekdayOf(dayCount) != expectedWeekday) {
            ADD_FAILURE() << "day " << dayCount << " year " << year << " day " << dayOfYear;
            if (++failures > 10) return;
        }
        if (dom == 1 || dom == 28 || dom == monthDays(year, month)) { // spot the month walk
            double y, m, d;
            zv::yearDayToYmd(&y, &m, &d, code);
            if (y != year || m != month || d != dom) {
                ADD_FAILURE() << "ymd of " << code;
                if (++failures > 10) return;
            }
            if (zv::ymdToYearDay(year, month, dom) != code) {
                ADD_FAILURE() << "code of " << year << "-" << month << "-" << dom;
                if (++failures > 10) return;
            }
        }
        expectedWeekday = expectedWeekday % 7 + 1;
        if (++dom > monthDays(year, month)) {
            dom = 1;
            if (++month > 12) {
                month = 1;
                ++year;
                dayOfYear = 0;
            }
        }
    }
    EXPECT_EQ(year, 20001);
}

TEST(Calendar, AgreesWithCivilDaysWhereThePlainRuleHolds) {
    for (int64_t y = 1582; y < 4000; y += 7)
        for (unsigned m = 1; m <= 12; ++m)
            for (unsigned d : {1u, 15u, 28u}) {
                const double code = zv::ymdToYearDay(double(y), m, d);
                ASSERT_FALSE(isMissing(code)) << y << "-" << m << "-" << d;
                EXPECT_EQ(zv::yearDayToDayCount(code), double(daysFromCivil(y, m, d) - kEpoch1960))
                    << y << "-" << m << "-" << d;
            }
    // From 4000 on the two drift apart by one day for each year 4000 divides.
    EXPECT_EQ(zv::yearDayToDayCount(zv::ymdToYearDay(4000, 3, 1)),
              double(daysFromCivil(4000, 3, 1) - kEpoch1960 - 1));
}

struct DayCase {
    double dayCount;
    double code; // 0: missing
};

TEST(Calendar, RangeEndsAndKnownDays) {
    for (DayCase c : {DayCase{0, 1960001}, DayCase{-138061, 1582001}, DayCase{-138062, 0},
                      DayCase{6589336, 0}, DayCase{6589335, 20000365}, DayCase{-1, 1959365},
                      DayCase{23440, 2024065}, DayCase{0.99, 1960001}, DayCase{-0.5, 1959365}}) {
        const double code = zv::dayCountToYearDay(c.dayCount);
        if (c.code == 0) EXPECT_TRUE(isMissing(code)) << c.dayCount;
        else EXPECT_EQ(code, c.code) << c.dayCount;
    }
    double y, m, d;
    zv::yearDayToYmd(&y, &m, &d, 20000365);
    EXPECT_EQ(y, 20000);
    EXPECT_EQ(m, 12);
    EXPECT_EQ(d, 31);
    EXPECT_EQ(zv::weekdayOf(0), 6);
    EXPECT_TRUE(isMissing(zv::weekdayOf(-138062)));
    EXPECT_TRUE(isMissing(zv::weekdayOf(zv::missingValue())));
    // A missing value passes through dayCountToYearDay unchanged.
    const double special = zvhost::missingValue('B');
    EXPECT_EQ(zv::bitsOf(zv::dayCountToYearDay(special)), zv::bitsOf(special));
}

TEST(Calendar, LeapRules) {
    EXPECT_TRUE(isMissing(zv::ymdToYearDay(4000, 2, 29)));
    EXPECT_EQ(zv::ymdToYearDay(2000, 2, 29), 2000060);
    EXPECT_TRUE(isMissing(zv::ymdToYearDay(1900, 2, 29)));
    EXPECT_TRUE(isMissing(zv::ymdToYearDay(2024, 4, 31)));
    EXPECT_TRUE(isMissing(zv::yearDayToDayCount(20000366)));
    EXPECT_TRUE(isMissing(zv::yearDayToDayCount(4000366)));
    EXPECT_EQ(zv::yearDayToDayCount(2000366), zv::yearDayToDayCount(2001001) - 1);
    for (int y : {4000, 8000, 12000, 16000, 20000}) EXPECT_EQ(zv::leapFigure(y), 0) << y;
    EXPECT_EQ(zv::yearDayToDayCount(zv::ymdToYearDay(1582, 10, 15)) -
                  zv::yearDayToDayCount(zv::ymdToYearDay(1582, 10, 4)),
              11);
    EXPECT_EQ(zv::yearDayToDayCount(1960000), -1);
    for (double bad : {0.0, -5.0, 1000001.0, 1581365.0, 20000366.0})
        EXPECT_TRUE(isMissing(zv::yearDayToDayCount(bad))) << bad;
    for (auto [y, m, d] : {std::tuple{1581.0, 12.0, 31.0}, std::tuple{20001.0, 1.0, 1.0},
                           std::tuple{2000.0, 0.0, 1.0}, std::tuple{2000.0, 13.0, 1.0},
                           std::tuple{2000.0, 1.0, 0.0}, std::tuple{2000.0, 1.0, 32.0},
                           std::tuple{-1.0, 1.0, 1.0}, std::tuple{100.0, 1.0, 1.0}})
        EXPECT_TRUE(isMissing(zv::ymdToYearDay(y, m, d))) << y << "-" << m << "-" << d;
    EXPECT_EQ(zv::ymdToYearDay(2024.9, 3.7, 5.2), 2024065);
}

TEST(Calendar, TwoDigitYearsFollowTheHostsPivot) {
    Anchored a;
    EXPECT_EQ(zv::ymdToYearDay(5, 1, 1), 2005001);
    EXPECT_EQ(zv::ymdToYearDay(49, 1, 1), 2049001);
    EXPECT_EQ(zv::ymdToYearDay(50, 1, 1), 1950001);
    a.host.setOption("ZV_NAME_YEARCUTOFF", 1920);
    EXPECT_EQ(zv::ymdToYearDay(5, 1, 1), 2005001);
    EXPECT_EQ(zv::ymdToYearDay(19, 1, 1), 2019001);
    EXPECT_EQ(zv::ymdToYearDay(20, 1, 1), 1920001);
    // Read at each use: a change shows at once.
    a.host.setOption("ZV_NAME_YEARCUTOFF", 1990);
    EXPECT_EQ(zv::ymdToYearDay(89, 1, 1), 2089001);
    EXPECT_EQ(zv::yearDayToDayCount(90001), zv::yearDayToDayCount(1990001));
    a.host.clearOption("ZV_NAME_YEARCUTOFF");
    EXPECT_EQ(zv::ymdToYearDay(49, 1, 1), 2049001);
}

struct SecondCase {
    double seconds, day, hour, minute, second, timeOfDay;
};

TEST(Calendar, SecondCountsAroundMidnight) {
    for (SecondCase c : {SecondCase{-1, -1, 23, 59, 59, 86399}, SecondCase{-86400, -1, 0, 0, 0, 0},
                         SecondCase{0, 0, 0, 0, 0, 0}, SecondCase{59.75, 0, 0, 0, 59.75, 59.75},
                         SecondCase{-0.5, -1, 23, 59, 59.5, 86399.5},
                         SecondCase{23440 * 86400.0 + 50829.5, 23440, 14, 7, 9.5, 50829.5},
                         SecondCase{-11928470400.0, -138061, 0, 0, 0, 0},
                         SecondCase{569318630399.0, 6589335, 23, 59, 59, 86399}}) {
        EXPECT_EQ(zv::dayOf(c.seconds), c.day) << c.seconds;
        EXPECT_EQ(zv::hourOf(c.seconds), c.hour) << c.seconds;
        EXPECT_EQ(zv::minuteOf(c.seconds), c.minute) << c.seconds;
        EXPECT_EQ(zv::secondOf(c.seconds), c.second) << c.seconds;
        EXPECT_EQ(zv::timeOfDay(c.seconds), c.timeOfDay) << c.seconds;
    }
    for (double bad : {-11928470400.5, 569318630400.0, std::nan("")}) {
        EXPECT_TRUE(isMissing(zv::dayOf(bad))) << bad;
        EXPECT_TRUE(isMissing(zv::hourOf(bad))) << bad;
        EXPECT_TRUE(isMissing(zv::secondOf(bad))) << bad;
    }
}

TEST(Calendar, SignedFields) {
    ZvChar f[8];
    EXPECT_EQ(zv::writeSignedField(-12, f, 3), 0);
    EXPECT_EQ(std::u16string(f, 3), u"-12");
    EXPECT_EQ(zv::writeSignedField(-12, f, 2), 1);
    EXPECT_EQ(zv::writeSignedField(7, f, 4), 0);
    EXPECT_EQ(std::u16string(f, 4), u"   7");
    EXPECT_EQ(zv::writeSignedField(12345, f, 3), 1);
    EXPECT_EQ(std::u16string(f, 3), u"345");
    EXPECT_EQ(zv::writeSignedField(0, f, 1), 0);
    EXPECT_EQ(f[0], u'0');
}

TEST(Calendar, RoundToUnitHalfUpWithAllowance) {
    struct C {
        double value, unit, expected;
    };
    for (C c : {C{0, 1, 0}, C{0.5, 1, 1}, C{1.49, 1, 1}, C{2.4999999999999996, 1, 3}, C{-2.5, 1, -3},
                C{2.4999, 1, 2}, C{59.96, 0.1, 60.0}, C{7.25, 0.001, 7.25}, C{1e17, 1, 1e17},
                C{123.456, 0.01, 123.46}}) {
        double r = -1;
        EXPECT_EQ(zv::roundToUnit(c.value, c.unit, &r), 0);
        EXPECT_DOUBLE_EQ(r, c.expected) << c.value << " / " << c.unit;
    }
}

// Week numbers of every day from 1583 to 2400 against glibc's strftime.
TEST(Calendar, WeekNumbersAgreeWithStrftime) {
    int failures = 0;
    for (int64_t y = 1583; y <= 2400 && failures < 10; ++y) {
        int yday = 0;
        for (unsigned m = 1; m <= 12; ++m)
            for (int d = 1; d <= monthDays(y, int(m)); ++d, ++yday) {
                const double dayCount = double(daysFromCivil(y, m, unsigned(d)) - kEpoch1960);
                std::tm tm{};
                tm.tm_year = int(y - 1900);
                tm.tm_mon = int(m - 1);
                tm.tm_mday = d;
                tm.tm_yday = yday;
                tm.tm_wday = int(((daysFromCivil(y, m, unsigned(d)) % 7) + 11) % 7); // 1970-01-01 was a Thursday
                char buf[64];
                std::strftime(buf, sizeof buf, "%U %W %V %G %u", &tm);
                int U, W, V, G, u;
                ASSERT_EQ(std::sscanf(buf, "%d %d %d %d %d", &U, &W, &V, &G, &u), 5);
                double wy, w, n;
                zv::weekOfDate(dayCount, u"U", &wy, &w, &n);
                const bool okU = w == U && wy == y && n == tm.tm_wday + 1;
                zv::weekOfDate(dayCount, u"W", &wy, &w, &n);
                const bool okW = w == W && wy == y && n == u;
                zv::weekOfDate(dayCount, u"V", &wy, &w, &n);
                const bool okV = w == V && wy == G && n == u;
                if (!okU || !okW || !okV) {
                    ADD_FAILURE() << y << "-" << m << "-" << d << " strftime " << buf;
                    ++failures;
                }
            }
    }
}

struct IsoCase {
    int y, m, d;
    int weekYear, week, day;
};

TEST(Calendar, IsoWeeksAtYearBoundaries) {
    for (IsoCase c : {IsoCase{2023, 1, 1, 2022, 52, 7}, IsoCase{2021, 1, 3, 2020, 53, 7},
                      IsoCase{2019, 12, 30, 2020, 1, 1}, IsoCase{2024, 12, 30, 2025, 1, 1},
                      IsoCase{2026, 1, 1, 2026, 1, 4}, IsoCase{2015, 12, 31, 2015, 53, 4}}) {
        double wy, w, n;
        zv::weekOfDate(zv::yearDayToDayCount(zv::ymdToYearDay(c.y, c.m, c.d)), u"V", &wy, &w, &n);
        EXPECT_EQ(wy, c.weekYear) << c.y << "-" << c.m << "-" << c.d;
        EXPECT_EQ(w, c.week) << c.y << "-" << c.m << "-" << c.d;
        EXPECT_EQ(n, c.day) << c.y << "-" << c.m << "-" << c.d;
    }
}

} // namespace
