// @WEEKU, @WEEKV and @WEEKW: fixed cases, statuses, the cut-off and the
// clock, a second implementation of the three week rules, and the round trip
// through WEEKU, WEEKV and WEEKW at every width.
#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <string>
#include <vector>

#include "datefmt/calendar.hpp"
#include "dateread/weekread.hpp"
#include "frame/frame.hpp"
#include "zvhost.hpp"

namespace {

namespace chr = std::chrono;

constexpr int32_t kWeekRefused = ZV_DATE_NO_INSTANCE;
constexpr uint64_t kMissing = ZV_MISSING_BITS;

// Day count of a civil date, by the standard library's calendar.
double dayCount(int y, unsigned m, unsigned d) {
    const chr::sys_days day{chr::year{y} / chr::month{m} / chr::day{d}};
    const chr::sys_days origin{chr::year{1960} / 1 / 1};
    return double((day - origin).count());
}

// The week rules as their own definitions say, not through the module's
// formula: the first day of week 1, then whole weeks and days from there.
double weekDate(char letter, int year, int week, int day) {
    const chr::sys_days jan1{chr::year{year} / 1 / 1};
    chr::sys_days weekOne;
    if (letter == 'V') {
        // Week 1 holds 4 January; it starts on the Monday on or before it.
        const chr::sys_days jan4 = jan1 + chr::days{3};
        weekOne = jan4 - (chr::weekday{jan4} - chr::Monday);
    } else {
        const chr::weekday first = letter == 'U' ? chr::Sunday : chr::Monday;
        weekOne = jan1 + (first - chr::weekday{jan1});
    }
    const chr::sys_days date = weekOne + chr::days{(week - 1) * 7 + (day - 1)};
    return double((date - chr::sys_days{chr::year{1960} / 1 / 1}).count());
}

class WeekInformats : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_NE(host.loadModule(), nullptr);
        host.setClock(dayCount(2024, 3, 5) * 86400.0 + 3600.0, 0.0);
    }

    const FormatTableRow &row(const std::string &name) {
        const FormatTableRow *r = zvhost::findRow(host.instance()->formatTable, name);
        EXPECT_NE(r, nullptr) << name;
        return *r;
    }

    zvhost::ReadResult read(const std::string &name, const std::string &text, int fieldLimit = -1) {
        zvhost::CallSpec spec;
        spec.fieldLimit = fieldLimit;
        zvhost::ReadResult r = zvhost::runInformat(host, row(name), spec, text);
        EXPECT_TRUE(r.error.empty()) << r.error;
        EXPECT_FALSE(r.fieldsChanged) << name << " " << text;
        return r;
    }

    zvhost::Host host;
};

struct WeekCase {
    const char *row;
    const char *text;
    double expected;
};

TEST_F(WeekInformats, FixedDates) {
    const WeekCase cases[] = {
        {"@WEEKV", "2021W01", 22284},     // 4 January 2021
        {"@WEEKV", "2020-W53-05", 22281}, // 1 January 2021
        {"@WEEKV", "2024W05-3", 23406},   // 31 January 2024
        {"@WEEKV", "2024w05-3", 23406},   // a small w starts the week as well
        {"@WEEKU", "2023W01", 23011},     // 1 January 2023, a Sunday
        {"@WEEKU", "2024W01", 23382},     // 7 January 2024
        {"@WEEKU", "2024W00-02", 23376},  // 1 January 2024, before the first Sunday
        {"@WEEKW", "2024W01", 23376},
        {"@WEEKW", "2023W00-07", 23011},
        {"@WEEKU", "2024-W09-01", dayCount(2024, 3, 3)},
        {"@WEEKV", "2022-W52-07", dayCount(2023, 1, 1)},
        {"@WEEKV", "2015W0101", dayCount(2014, 12, 29)},
        {"@WEEKV", "2020W5304", dayCount(2020, 12, 31)},
        {"@WEEKW", "2023W5207", dayCount(2023, 12, 31)},
        {"@WEEKU", "2023W5301", dayCount(2023, 12, 31)},
        {"@WEEKV", "20 24W01", 23376},    // blanks and '-' drop out outside the week digits
        {"@WEEKV", "2-0-2-4W01--", 23376},
        {"@WEEKV", "2024W0110", 23376 + 9},   // a day above 7 runs into the next week
        {"@WEEKV", "2024W0131", 23376 + 30},
        {"@WEEKV", "2024W1002   ", dayCount(2024, 3, 5)}, // trailing blanks are not read
        {"@WEEKV", "2024W10 02", dayCount(2024, 3, 5)},
        {"@WEEKV", "2024W10W99", dayCount(2024, 3, 4)},   // a second week is only checked
        {"@WEEKV", "24W1002", dayCount(2024, 3, 5)},
        {"@WEEKV", "59W01", weekDate('V', 2059, 1, 1)},   // behind the cut-off of 1960
        {"@WEEKV", "60W01", weekDate('V', 1960, 1, 1)},
        {"@WEEKV", "00W01", weekDate('V', 2000, 1, 1)},
        {"@WEEKV", "0024W01", 23376},     // four places below 100 settle as two
        {"@WEEKV", "202W01", weekDate('V', 2020, 1, 1)}, // three places: the first two
        {"@WEEKV", "2024567W01", weekDate('V', 2020, 1, 1)},
        {"@WEEKV", "1582W10", weekDate('V', 1582, 10, 1)},
        {"@WEEKU", "W05", weekDate('U', 2024, 5, 1)},     // the year of the clock
        {"@WEEKW", "W1003", weekDate('W', 2024, 10, 3)},
        {"@WEEKV", "W00", weekDate('V', 2024, 0, 1)},
    };
    for (const WeekCase &c : cases) {
        const zvhost::ReadResult r = read(c.row, c.text);
        EXPECT_EQ(r.status, 0) << c.row << " " << c.text;
        EXPECT_EQ(r.value, c.expected) << c.row << " " << c.text;
    }
}

struct RefusedCase {
    const char *text;
    int32_t status;
};

TEST_F(WeekInformats, RefusedTextsLeaveTheCutoff) {
    const RefusedCase cases[] = {
        {"", 1},
        {"      ", 1},
        {"20240105", kWeekRefused}, // plain digits, as the narrowest format writes
        {"10", kWeekRefused},
        {"2024W5", kWeekRefused},   // the week needs two digits
        {"2024W", kWeekRefused},
        {"W", kWeekRefused},
        {"2024W 01", kWeekRefused}, // the blank counts as a week character
        {"2024W-01", kWeekRefused},
        {"2024Wx1", kWeekRefused},
        {"2024W01x", kWeekRefused},
        {"y2024W01", kWeekRefused},
        {"2024W01W5", kWeekRefused}, // the second week is checked
        {"1581W01", kWeekRefused},
        {"20001W01", 0},             // five places: the first two, 2020
        {"2024W54", kWeekRefused},
        {"2024W0132", kWeekRefused},
        {"2024W99", kWeekRefused},
        {"\xEF\xBC\x92\xEF\xBC\x90\xEF\xBC\x92\xEF\xBC\x94W01", kWeekRefused}, // full-width digits
    };
    for (const char *name : {"@WEEKU", "@WEEKV", "@WEEKW"}) {
        for (const RefusedCase &c : cases) {
            const zvhost::ReadResult r = read(name, c.text);
            EXPECT_EQ(r.status, c.status) << name << " '" << c.text << "'";
            if (c.status == 1) {
                EXPECT_TRUE(r.untouched) << name << " '" << c.text << "'";
            }
            if (c.status == kWeekRefused) {
                EXPECT_EQ(r.value, 1960.0) << name << " '" << c.text << "'";
            }
        }
    }
}

TEST_F(WeekInformats, YearsOutsideTheCalendarAreRefused) {
    // Year 20001 can't be written in four places; 20000 can't either, so the
    // calendar's edges are reached through the reader itself.
    double cutoff = 1960;
    EXPECT_NE(zv::readWeekText(u"1581W01", 7, u"V", &cutoff), 0);
    EXPECT_EQ(cutoff, 1960);
    EXPECT_EQ(zv::readWeekText(u"1582W01", 7, u"U", &cutoff), 0);
    // 1 January 1582 is a Friday: U week 0 day 1 is 27 December 1581,
    // before the calendar, and comes back as a missing value.
    cutoff = 1960;
    EXPECT_EQ(zv::readWeekText(u"1582W0001", 9, u"U", &cutoff), 0);
    EXPECT_EQ(zv::bitsOf(cutoff), kMissing);
    cutoff = 1960;
    EXPECT_EQ(zv::readWeekText(u"1582W0006", 9, u"U", &cutoff), 0);
    EXPECT_EQ(cutoff, -138061.0);
}

TEST_F(WeekInformats, FieldLimitCutsTheText) {
    struct Cut {
        const char *text;
        int limit;
        int32_t status;
        double value;
    } cuts[] = {
        {"2024W1002", 9, 0, dayCount(2024, 3, 5)},
        {"2024W1002", 8, 0, dayCount(2024, 3, 4) + 0}, // day "0" reads as 0, then 1
        {"2024W1002", 7, 0, dayCount(2024, 3, 4)},
        {"2024W1002", 6, kWeekRefused, 1960},          // the second week digit lies behind the limit
        {"2024W1002", 4, kWeekRefused, 1960},
        {"2024W1002", 0, 1, 0},
        {"2024W10  ", 9, 0, dayCount(2024, 3, 4)},
    };
    for (const Cut &c : cuts) {
        const zvhost::ReadResult r = read("@WEEKV", c.text, c.limit);
        EXPECT_EQ(r.status, c.status) << c.text << " limit " << c.limit;
        if (c.status == 1)
            EXPECT_TRUE(r.untouched);
        else
            EXPECT_EQ(r.value, c.value) << c.text << " limit " << c.limit;
    }
}

TEST_F(WeekInformats, CutoffOptionSettlesTwoDigitYears) {
    struct Pivot {
        int64_t option;
        const char *text;
        int year;
    } pivots[] = {
        {1960, "59W01", 2059}, {1960, "60W01", 1960}, {2000, "99W01", 2099}, {2000, "00W01", 2000},
        {1980, "79W01", 2079}, {1980, "80W01", 1980}, {1925, "24W01", 2024}, {1925, "25W01", 1925},
        {2150, "49W01", 2249}, {2150, "50W01", 2150}, {1960, "1875W01", 1875},
    };
    for (const Pivot &p : pivots) {
        host.setOption("ZV_NAME_YEARCUTOFF", p.option);
        const zvhost::ReadResult r = read("@WEEKW", p.text);
        EXPECT_EQ(r.status, 0) << p.option << " " << p.text;
        EXPECT_EQ(r.value, weekDate('W', p.year, 1, 1)) << p.option << " " << p.text;
        const zvhost::ReadResult refused = read("@WEEKW", "bad");
        EXPECT_EQ(refused.status, kWeekRefused);
        EXPECT_EQ(refused.value, double(p.option)) << "the cut-off stands in the output";
    }
    host.clearOption("ZV_NAME_YEARCUTOFF");
    EXPECT_EQ(read("@WEEKW", "bad").value, 1960.0);
}

TEST(WeekReader, CutoffOfZeroMeansNineteenHundred) {
    double cutoff = 0.0;
    ASSERT_EQ(zv::readWeekText(u"05W01", 5, u"V", &cutoff), 0);
    EXPECT_EQ(cutoff, weekDate('V', 1905, 1, 1));
    cutoff = 2010.9; // truncated to 2010
    ASSERT_EQ(zv::readWeekText(u"09W01", 5, u"V", &cutoff), 0);
    EXPECT_EQ(cutoff, weekDate('V', 2109, 1, 1));
    cutoff = 2010.9;
    ASSERT_EQ(zv::readWeekText(u"10W01", 5, u"V", &cutoff), 0);
    EXPECT_EQ(cutoff, weekDate('V', 2010, 1, 1));
}

TEST(WeekReader, ResultsOfTheCommonReader) {
    struct R {
        const char16_t *text;
        int32_t result;
    } cases[] = {
        {u"20240101", kWeekRefused}, {u"2024W0x", -1}, {u"2024W", -1}, {u"2024W54", 1},
        {u"2024W0132", 1},           {u"1581W01", 1},  {u"2024W01", 0}, {u"2024W5307", 0},
    };
    for (const R &c : cases) {
        double cutoff = 1960;
        const int64_t length = int64_t(std::char_traits<char16_t>::length(c.text));
        EXPECT_EQ(zv::readWeekText(c.text, length, u"V", &cutoff), c.result) << zvhost::utf8(c.text);
        if (c.result != 0) {
            EXPECT_EQ(cutoff, 1960);
        }
    }
    // The reader never looks behind `length`, even for the week digits.
    const char16_t cut[] = {u'2', u'0', u'2', u'4', u'W', u'1'};
    double cutoff = 1960;
    EXPECT_EQ(zv::readWeekText(cut, 6, u"V", &cutoff), -1);
}

TEST_F(WeekInformats, ClockGivesTheYearOfATextWithoutOne) {
    // clockValue less clockShift is the present moment.
    host.setClock(dayCount(1999, 12, 31) * 86400.0 + 86399.0 + 5000.0, 5000.0);
    EXPECT_EQ(read("@WEEKV", "W10").value, weekDate('V', 1999, 10, 1));
    host.setClock(dayCount(2000, 1, 1) * 86400.0, 0.0);
    EXPECT_EQ(read("@WEEKV", "W10").value, weekDate('V', 2000, 10, 1));
    host.setClock(dayCount(1959, 6, 1) * 86400.0 + 1.0, 0.0);
    EXPECT_EQ(read("@WEEKU", "W2204").value, weekDate('U', 1959, 22, 4));
    // Only a text without year characters asks the clock.
    EXPECT_EQ(read("@WEEKU", "00W01").value, weekDate('U', 2000, 1, 1));
}

TEST_F(WeekInformats, AgreesWithTheWeekRulesOverManyYears) {
    const char16_t *letters[] = {u"U", u"V", u"W"};
    int checked = 0;
    for (int year = 1583; year < 4000; year += 7) {
        for (int li = 0; li < 3; ++li) {
            const char letter = char(letters[li][0]);
            for (int week = 0; week <= 53; ++week) {
                for (int day = 1; day <= 31; day += (day < 8 ? 1 : 6)) {
                    char buf[48];
                    std::snprintf(buf, sizeof buf, "%04dW%02d%02d", year, week, day);
                    const std::u16string text = zvhost::utf16(buf);
                    double value = 1960;
                    ASSERT_EQ(zv::readWeekText(text.data(), int64_t(text.size()), letters[li], &value), 0) << buf;
                    ASSERT_EQ(value, weekDate(letter, year, week, day)) << letter << " " << buf;
                    ++checked;
                }
            }
        }
    }
    EXPECT_GT(checked, 100000);
}

TEST_F(WeekInformats, WeekFormatsReadBackAtEveryWidth) {
    std::vector<double> days;
    for (double d = dayCount(2019, 12, 20); d <= dayCount(2021, 1, 12); d += 1) days.push_back(d);
    for (double d = dayCount(1583, 1, 1); d < dayCount(9998, 12, 1); d += 1571) days.push_back(d);
    for (int y : {1600, 1700, 1900, 2000, 2100, 3999, 4000, 7999, 8000, 9000}) {
        for (double d = dayCount(y, 12, 20); d <= dayCount(y + 1, 1, 12); d += 1) days.push_back(d);
    }
    // In a year that 4000 divides the week numbers count a 29 February that
    // the calendar lacks (see ShiftedWeeksOfYearsThatFourThousandDivides):
    // from March of such a year into the first days of the next, the texts
    // don't read back to the same day.
    auto shifted = [](double value) {
        for (double y = 4000; y <= 20000; y += 4000) {
            const double from = zv::yearDayToDayCount(zv::ymdToYearDay(y, 3, 1));
            const double to = zv::yearDayToDayCount(zv::ymdToYearDay(y + 1, 1, 10));
            if (value >= from && value <= to) return true;
        }
        return false;
    };
    std::erase_if(days, shifted);
    const std::pair<const char *, const char *> rows[] = {{"WEEKU", "@WEEKU"}, {"WEEKV", "@WEEKV"}, {"WEEKW", "@WEEKW"}};
    int trips = 0;
    for (const auto &[format, informat] : rows) {
        const char letter = format[4];
        for (double value : days) {
            // The full text gives the week's year and the day number.
            zvhost::CallSpec full;
            full.width = 11;
            const std::string longest = zvhost::runFormat(host, row(format), full, value).utf8;
            int year = 0, week = 0, day = 0;
            ASSERT_EQ(std::sscanf(longest.c_str(), "%4d-W%2d-%2d", &year, &week, &day), 3) << longest;
            ASSERT_GE(day, 1);
            ASSERT_LE(day, 7);
            // A text of week only takes the year of the clock, a text of two
            // year places the cut-off: both are set to the week's own year.
            // The Thursday of an ISO week lies in its week-based year.
            const double present = letter == 'V' ? value - (day - 1) + 3 : value;
            host.setClock(present * 86400.0 + 43200.0, 0.0);
            host.setOption("ZV_NAME_YEARCUTOFF", (year / 100) * 100);
            for (int width = 2; width <= 13; ++width) {
                zvhost::CallSpec spec;
                spec.width = width;
                const zvhost::FormatResult written = zvhost::runFormat(host, row(format), spec, value);
                ASSERT_EQ(written.status, 0) << format << " " << value;
                const std::string &text = written.utf8;
                const zvhost::ReadResult back = read(informat, text);
                if (width <= 2) {
                    EXPECT_EQ(back.status, kWeekRefused) << format << " '" << text << "'";
                    continue;
                }
                ASSERT_EQ(back.status, 0) << format << " width " << width << " '" << text << "'";
                // Without a day the reader takes the week's first day.
                const double expected = width <= 6 ? value - (day - 1) : value;
                ASSERT_EQ(back.value, expected) << format << " width " << width << " '" << text << "' value " << std::to_string(value);
                ++trips;
            }
        }
    }
    EXPECT_GT(trips, 40000);
}

TEST_F(WeekInformats, ShiftedWeeksOfYearsThatFourThousandDivides) {
    // The week numbers that the formats write judge leap years by the plain
    // rule; the reader counts days by the calendar, in which 8000 has no
    // 29 February. Monday 1 March 8000 is written as W10-01, and W10-01 of
    // 8000 is Monday 8 March.
    const double march1 = zv::yearDayToDayCount(zv::ymdToYearDay(8000, 3, 1));
    const double jan4 = zv::yearDayToDayCount(zv::ymdToYearDay(8000, 1, 4));
    ASSERT_EQ(zv::weekdayOf(march1), 2.0);
    zvhost::CallSpec spec;
    spec.width = 11;
    EXPECT_EQ(zvhost::runFormat(host, row("WEEKV"), spec, march1).utf8, "8000-W10-01");
    EXPECT_EQ(read("@WEEKV", "8000-W10-01").value, march1 + 7);
    EXPECT_EQ(read("@WEEKV", "8000-W01-01").value, jan4);
    EXPECT_EQ(read("@WEEKV", "8000-W09-01").value, march1);
}

TEST_F(WeekInformats, NeedNeitherInstanceNorLocale) {
    // A call record with no services and no locale: the week informats use
    // neither.
    FormatCall call;
    std::memset(&call, 0, sizeof call);
    const std::u16string text = u"2024W1002";
    double out = 0;
    call.input = text.data();
    call.inputLength = int32_t(text.size());
    call.fieldLimit = int32_t(text.size());
    call.output = &out;
    call.width = 11;
    EXPECT_EQ(zv::readWeekV(&call, nullptr), 0);
    EXPECT_EQ(out, dayCount(2024, 3, 5));
    EXPECT_EQ(call.localeBlock, nullptr);
    EXPECT_EQ(zv::readWeekU(&call, nullptr), 0);
    EXPECT_EQ(out, weekDate('U', 2024, 10, 2));
    EXPECT_EQ(zv::readWeekW(&call, nullptr), 0);
    EXPECT_EQ(out, weekDate('W', 2024, 10, 2));
}

} // namespace
