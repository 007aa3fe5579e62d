// Clock texts, NLTIME and NLTIMAP, week numbers and the zone forms.
#include <gtest/gtest.h>

#include <cmath>

#include <cstring>
#include <map>
#include <string>

#include "datefmt/clock.hpp"
#include "frame/frame.hpp"
#include "zvhost.hpp"

namespace {

constexpr double kMarch5 = 23440;
constexpr double kMarch5At = 23440 * 86400.0 + 50829.0; // 14:07:09

std::map<int, std::string> items() {
    std::map<int, std::string> m;
    for (int k = 0; k < 189; ++k) m[k] = "";
    m[6] = "MDY";
    m[153] = "/";
    m[58] = "%x %X";
    m[172] = ".";
    m[151] = "AM";
    m[152] = "PM";
    m[46] = "%A, %B %#d, %Y %H:%M:%S"; // long: never fits 16
    m[47] = "%B %#d, %Y %H:%M:%S";
    m[50] = "%A, %B %#d, %Y %H:%M:%S";
    m[51] = "%A %H:%M:%S";
    m[52] = "%I:%M:%S %p and more text"; // too long for the default widths
    m[53] = "%H:%M:%S";
    const char *days[7] = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
    for (int d = 0; d < 7; ++d) m[114 + d] = m[128 + d] = days[d], m[107 + d] = m[121 + d] = std::string(days[d]).substr(0, 3);
    const char *months[12] = {"January", "February", "March", "April", "May", "June",
                              "July", "August", "September", "October", "November", "December"};
    for (int i = 0; i < 12; ++i) m[71 + i] = m[95 + i] = months[i], m[59 + i] = m[83 + i] = std::string(months[i]).substr(0, 3);
    return m;
}

class Times : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_NE(host.loadModule(), nullptr); }

    std::string run(const char *row, double value, int width, int decimals = 0,
                    std::map<int, std::string> changes = {}, int32_t expectedStatus = 0) {
        auto all = items();
        for (auto &[k, v] : changes) all[k] = v;
        zvhost::CallSpec spec;
        spec.items = all;
        spec.width = width;
        spec.decimals = decimals;
        const FormatTableRow *r = zvhost::findRow(host.instance()->formatTable, row);
        EXPECT_NE(r, nullptr);
        zvhost::FormatResult result = zvhost::runFormat(host, *r, spec, value);
        EXPECT_TRUE(result.error.empty()) << result.error;
        EXPECT_EQ(result.status, expectedStatus) << row << " " << value << " width " << width;
        EXPECT_FALSE(result.overran) << row;
        EXPECT_FALSE(result.fieldsChanged) << row;
        return result.utf8;
    }

    // writeClock directly, on a call of the host's en_US locale.
    std::string clock(double value, int width, int decimals) {
        std::u16string out(64, u'#');
        FormatCall c;
        std::memset(&c, 0, sizeof c);
        c.width = width;
        c.decimals = decimals;
        c.input = &value;
        c.output = out.data();
        c.outputCapacity = 64;
        c.locale = host.locale("en_US");
        c.services = host.services();
        EXPECT_EQ(zv::writeClock(&c), 0);
        EXPECT_EQ(c.outputLength, width);
        return zvhost::utf8(out.substr(0, size_t(width)));
    }

    zvhost::Host host;
};

TEST_F(Times, ClockTextByWidthAndDecimals) {
    struct C {
        int width, decimals;
        const char *text;
    };
    for (C c : {C{2, 0, "14"}, C{5, 0, "14:07"}, C{8, 0, "14:07:10"}, C{9, 3, " 14:07:10"},
                C{10, 1, "14:07:09.6"}, C{10, 3, "14:07:09.6"}, C{12, 3, "14:07:09.600"}, C{1, 0, "*"}})
        EXPECT_EQ(clock(50829.6, c.width, c.decimals), c.text) << c.width << "." << c.decimals;
}

TEST_F(Times, ClockCarries) {
    EXPECT_EQ(clock(50879.96, 10, 1), "14:08:00.0");
    EXPECT_EQ(clock(50879.96, 5, 1), "14:08");
    EXPECT_EQ(clock(50879.96, 8, 0), "14:08:00");
    EXPECT_EQ(clock(50829.96, 10, 1), "14:07:10.0");
    EXPECT_EQ(clock(86399.7, 8, 0), "24:00:00");
    EXPECT_EQ(clock(9 * 3600 + 5 * 60 + 3, 10, 0), "   9:05:03");
}

TEST_F(Times, NlTimeFrame) {
    EXPECT_EQ(run("NLTIME", 50829, 20), "14:07:09            ");
    EXPECT_EQ(run("NLTIME", 50829.25, 20, 2), "14:07:09.25         ");
    EXPECT_EQ(run("NLTIME", 50829.25, 10, 3), "14:07:09.3"); // the pattern with fewer decimals
    EXPECT_EQ(run("NLTIME", 9 * 3600 + 5 * 60 + 3, 10, 0, {{53, "%H:%M:%S and more"}}), "9:05:03   ");
    EXPECT_EQ(run("NLTIME", -60, 10), "23:59:00  ");
    EXPECT_EQ(run("NLTIME", 3 * 86400 + 50829, 10), "14:07:09  ");
    run("NLTIME", 50829, 10, -1); // a negative decimals: status 0, nothing written
    EXPECT_EQ(run("NLTIME", zvhost::missingValue('.'), 10, 2), "         .");
}

TEST_F(Times, NlTimapFrame) {
    EXPECT_EQ(run("NLTIMAP", 50829, 10), "2:07:09 PM");
    EXPECT_EQ(run("NLTIMAP", 50829, 8), "2:07 PM ");
    EXPECT_EQ(run("NLTIMAP", 50829, 5), "2 PM ");
    EXPECT_EQ(run("NLTIMAP", 50829, 4), "PM  ");
    EXPECT_EQ(run("NLTIMAP", 1800, 10), "12:30 AM  ");
    EXPECT_EQ(run("NLTIMAP", 43200, 10), "12:00 PM  ");
    EXPECT_EQ(run("NLTIMAP", 43200, 11), "12:00:00 PM");
    EXPECT_EQ(run("NLTIMAP", 50829, 30, 0, {{52, "%I:%M:%S %p"}}), "02:07:09 PM                   ");
}

TEST_F(Times, WeekDates) {
    const double jan1_2023 = 23011, jan1_2024 = 23376, dec31_2023 = 23375;
    EXPECT_EQ(run("WEEKV", jan1_2023, 11), "2022-W52-07");
    EXPECT_EQ(run("WEEKU", jan1_2023, 11), "2023-W01-01");
    EXPECT_EQ(run("WEEKW", jan1_2023, 11), "2023-W00-07");
    EXPECT_EQ(run("WEEKU", jan1_2024, 11), "2024-W00-02");
    EXPECT_EQ(run("WEEKW", jan1_2024, 11), "2024-W01-01");
    EXPECT_EQ(run("WEEKU", dec31_2023, 11), "2023-W53-01");
    EXPECT_EQ(run("WEEKW", dec31_2023, 11), "2023-W52-07");
    EXPECT_EQ(run("WEEKU", 23438, 11), "2024-W09-01"); // Sunday 3 March 2024
    const std::map<int, std::string> byWidth = {{2, "10"}, {3, "W10"}, {4, "W10 "}, {5, "24W10"},
                                                {6, "24W10 "}, {7, "24W1002"}, {8, "24W1002 "},
                                                {9, "2024W1002"}, {10, "2024W1002 "}, {11, "2024-W10-02"},
                                                {13, "2024-W10-02  "}};
    for (auto &[w, t] : byWidth) EXPECT_EQ(run("WEEKV", kMarch5, w), t) << w;
}

TEST_F(Times, ShortWeekForms) {
    const std::map<int, std::string> byWidth = {{2, "10"}, {3, "W10"}, {4, " W10"}, {5, "24W10"},
                                                {6, " 24W10"}, {7, "2024W10"}, {8, "2024-W10"}};
    for (auto &[w, t] : byWidth) EXPECT_EQ(run("YYWEEKV", kMarch5, w), t) << w;
    EXPECT_EQ(run("YYWEEKV", 23011, 8), "2022-W52");
    EXPECT_EQ(run("YYWEEKU", 23011, 8), "2023-W01");
    EXPECT_EQ(run("YYWEEKW", 23011, 8), "2023-W00");
    EXPECT_EQ(run("YYWEEKV", kMarch5, 9, 0, {}, -1), "*********");
}

TEST_F(Times, DatetimeWeeks) {
    EXPECT_EQ(run("DTWEEKV", kMarch5At, 18), "2024W1002:14:07:09");
    EXPECT_EQ(run("DTWEEKV", kMarch5At, 20), "2024-W10-02:14:07:09");
    EXPECT_EQ(run("DTWEEKV", kMarch5At, 15), "2024W1002:14:07");
    EXPECT_EQ(run("DTWEEKV", kMarch5At, 12), "2024W1002:14");
    EXPECT_EQ(run("DTWEEKV", kMarch5At, 11), "2024-W10-02");
    EXPECT_EQ(run("DTWEEKV", kMarch5 * 86400 + 86399.7, 18), "2024W1002:24:00:00");
    EXPECT_EQ(run("DTWEEKV", -1, 18), "1959W5304:23:59:59");
}

class FixedZone : public Times {
protected:
    void SetUp() override {
        Times::SetUp();
        ASSERT_TRUE(host.setTimeZone("Asia/Kolkata"));
    }
};

TEST_F(FixedZone, ZoneForms) {
    // The patterns don't fit 16: NLDATMS gets 10 places and the zone follows.
    EXPECT_EQ(run("NLDATMZ", kMarch5At, 16), "030524 14 +0530 ");
    EXPECT_EQ(run("NLDATMZ", kMarch5At, 40), "Tuesday, March 5, 2024 14:07:09 +0530" + std::string(3, ' '));
    EXPECT_EQ(run("NLDATMTZ", kMarch5At, 32), "14:07:09 +0530" + std::string(18, ' '));
    EXPECT_EQ(run("NLDATMTZ", kMarch5At, 16, 0, {{53, "%H:%M:%S and more"}}), "14:07:09 +0530  ");
    EXPECT_EQ(run("NLDATMTM", kMarch5At, 16), "14:07:09        ");
    EXPECT_EQ(run("NLDATMTM", 23440 * 86400.0 + 9 * 3600 + 5 * 60 + 3, 16, 0, {{53, "%H:%M:%S and a long tail"}}),
              "09:05:03        ");
    // A year above 9999 in the narrower form's four-digit year: stars over the field.
    EXPECT_EQ(run("NLDATMZ", 3700000.0 * 86400, 26, 0, {{46, "%A %A %A %A %A"}, {47, "%A %A %A %A %A"}}),
              std::string(26, '*'));
}

TEST_F(Times, ZoneOffsetsFollowTheValuesOwnDate) {
    ASSERT_TRUE(host.setTimeZone("Europe/Berlin"));
    EXPECT_EQ(run("NLDATMTZ", 23440 * 86400.0 + 43200, 32).substr(0, 14), "12:00:00 +0100");
    EXPECT_EQ(run("NLDATMTZ", 23560 * 86400.0 + 43200, 32).substr(0, 14), "12:00:00 +0200"); // July
    ASSERT_TRUE(host.setTimeZone("America/St_Johns"));
    EXPECT_EQ(run("NLDATMTZ", 23440 * 86400.0 + 43200, 32).substr(0, 14), "12:00:00 -0330");
    // Local mean time before 1883 in New York was -4:56:02: the seconds are dropped.
    const double march1880 = -29155.0 * 86400 + 43200; // 5 March 1880, noon
    ASSERT_TRUE(host.setTimeZone("America/New_York"));
    EXPECT_EQ(run("NLDATMTZ", march1880, 32).substr(0, 14), "12:00:00 -0456");
    ASSERT_TRUE(host.setTimeZone("UTC"));
    EXPECT_EQ(run("NLDATMTZ", march1880, 32).substr(0, 14), "12:00:00 +0000");
}

} // namespace
