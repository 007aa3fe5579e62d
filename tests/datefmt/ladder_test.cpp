// The date formats over a locale whose items the test sets: ladders,
// numeric forms, plain and partial forms.
#include <gtest/gtest.h>

#include <cmath>

#include <map>
#include <string>

#include "zvhost.hpp"

namespace {

constexpr double kMarch5 = 23440;                          // Tuesday 5 March 2024
constexpr double kMarch5At = 23440 * 86400.0 + 50829.25;   // 14:07:09.25
constexpr double kMay17 = 23513;                           // Friday 17 May 2024

std::map<int, std::string> baseItems() {
    std::map<int, std::string> items;
    for (int k = 0; k < 189; ++k) items[k] = "";
    const char *months[12] = {"January", "February", "March", "April", "May", "June",
                              "July", "August", "September", "October", "November", "December"};
    for (int m = 0; m < 12; ++m) {
        items[71 + m] = months[m];
        items[59 + m] = std::string(months[m]).substr(0, 3);
        items[95 + m] = months[m];
        items[83 + m] = std::string(months[m]).substr(0, 3);
    }
    const char *days[7] = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
    for (int d = 0; d < 7; ++d) {
        items[114 + d] = items[128 + d] = days[d];
        items[107 + d] = items[121 + d] = std::string(days[d]).substr(0, 3);
    }
    for (int q = 0; q < 4; ++q) {
        items[139 + q] = items[147 + q] = std::to_string(q + 1) + "st quarter";
        items[135 + q] = items[143 + q] = "Q" + std::to_string(q + 1);
    }
    items[151] = "AM";
    items[152] = "PM";
    items[172] = ".";
    items[6] = "MDY";
    items[153] = "/";
    items[28] = "%B %#d, %Y";     // March 5, 2024      (13)
    items[29] = "%b %#d, %Y";     // Mar 5, 2024        (11)
    items[30] = "%b %#d, %Y";
    items[31] = "%B %#d, %Y";
    items[32] = "%A, %B %#d, %Y"; // Tuesday, March 5, 2024 (22)
    items[33] = "%a, %b %#d, %Y"; // Tue, Mar 5, 2024 (16)
    items[34] = "%B %Y";
    items[35] = "%b %Y";
    items[36] = "%B %#d";
    items[37] = "%b %#d";
    items[38] = "%Y";
    items[39] = "%y";
    items[40] = "%Q %Y";
    items[41] = "%q %Y";
    items[42] = "%Y-W%U";
    items[43] = "%y-%U";
    items[44] = "%B %#d, %Y %I:%M:%S %p";
    items[46] = "%B %#d, %Y %H:%M:%S";
    items[47] = "%m/%d/%Y %H:%M:%S";
    items[48] = "%b %#d, %Y %H:%M:%S";
    items[49] = "%B %#d, %Y %H:%M:%S";
    items[50] = "%A, %B %#d, %Y %H:%M:%S";
    items[51] = "%a, %b %#d, %Y %H:%M";
    items[53] = "%H:%M:%S";
    items[58] = "%x %X";
    return items;
}

class Dates : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_NE(host.loadModule(), nullptr); }

    zvhost::FormatResult run(const char *row, double value, int width, int decimals = 0,
                             std::map<int, std::string> changes = {}, zvhost::CallSpec spec = {}) {
        auto items = baseItems();
        for (auto &[k, v] : changes) items[k] = v;
        spec.items = items;
        spec.width = width;
        spec.decimals = decimals;
        const FormatTableRow *r = zvhost::findRow(host.instance()->formatTable, row);
        EXPECT_NE(r, nullptr) << row;
        zvhost::FormatResult result = zvhost::runFormat(host, *r, spec, value);
        EXPECT_TRUE(result.error.empty()) << result.error;
        EXPECT_FALSE(result.overran) << row;
        EXPECT_FALSE(result.fieldsChanged) << row;
        return result;
    }
    std::string text(const char *row, double value, int width, int decimals = 0,
                     std::map<int, std::string> changes = {}) {
        zvhost::FormatResult r = run(row, value, width, decimals, changes);
        EXPECT_EQ(r.status, 0) << row << " width " << width;
        EXPECT_EQ(r.outputLength, width) << row << " width " << width;
        return r.utf8;
    }

    zvhost::Host host;
};

TEST_F(Dates, NumericDatesAtEveryWidth) {
    const std::map<int, std::string> expected = {
        {2, "03"}, {3, "03 "}, {4, "0305"}, {5, "03/05"}, {6, "030524"}, {7, "030524 "},
        {8, "03/05/24"}, {9, "03/05/24 "}, {10, "03/05/2024"}, {12, "03/05/2024  "}};
    for (auto &[w, t] : expected) EXPECT_EQ(text("NLDATES", kMarch5, w), t) << "width " << w;
}

TEST_F(Dates, NumericDatesDropThePartAtPositionThree) {
    EXPECT_EQ(text("NLDATES", kMarch5, 5, 0, {{6, "YMD"}}), "24/03");
    EXPECT_EQ(text("NLDATES", kMarch5, 4, 0, {{6, "ymd"}}), "2403");
    EXPECT_EQ(text("NLDATES", kMarch5, 10, 0, {{6, "DMY"}, {153, "."}}), "05.03.2024");
    for (const char *separator : {"", "--"}) {
        EXPECT_EQ(text("NLDATES", kMarch5, 8, 0, {{153, separator}}), "03052024");
        EXPECT_EQ(text("NLDATES", kMarch5, 7, 0, {{153, separator}}), "030524 ");
    }
    const double year12000 = 3660000; // a day in the year 11980
    EXPECT_EQ(text("NLDATES", year12000, 10).substr(6), "****");
    EXPECT_EQ(text("NLDATES", year12000, 8).size(), 8u);
    EXPECT_EQ(text("NLDATES", kMarch5, 10, 0, {{6, "MD"}}), "**********");
}

TEST_F(Dates, QuarterAndMonthYearNumericForms) {
    EXPECT_EQ(text("NLDATEYQS", kMay17, 6), "2024/2");
    EXPECT_EQ(text("NLDATEYQS", kMay17, 5), "24/2 ");
    EXPECT_EQ(text("NLDATEYQS", kMay17, 4), "24/2");
    EXPECT_EQ(text("NLDATEYMS", kMarch5, 7), "03/2024");
    EXPECT_EQ(text("NLDATEYMS", kMarch5, 7, 0, {{6, "YMD"}}), "2024/03");
    EXPECT_EQ(text("NLDATEMDS", kMarch5, 5), "03/05");
    EXPECT_EQ(text("NLDATEMDS", kMarch5, 5, 0, {{6, "YDM"}}), "05/03");
}

TEST_F(Dates, NumericDatetimes) {
    EXPECT_EQ(text("NLDATMS", kMarch5At, 9), "030524 14");
    EXPECT_EQ(text("NLDATMS", kMarch5At, 9, 0, {{58, "%X %x"}}), "14 030524");
    EXPECT_EQ(text("NLDATMS", kMarch5At, 19), "03/05/2024 14:07:09");
    EXPECT_EQ(text("NLDATMS", kMarch5At, 21, 1), "03/05/2024 14:07:09.3");
    EXPECT_EQ(text("NLDATMS", 23440 * 86400.0 + 86399.7, 19), "03/06/2024 00:00:00");
    EXPECT_EQ(text("NLDATMS", kMarch5At, 16), "03/05/24 14:07  ");
}

TEST_F(Dates, LaddersStepDown) {
    EXPECT_EQ(text("NLDATEL", kMarch5, 18), "March 5, 2024     ");
    EXPECT_EQ(text("NLDATEL", kMarch5, 12), "Mar 5, 2024 ");
    EXPECT_EQ(text("NLDATEL", kMarch5, 10), "03/05/2024");
    EXPECT_EQ(text("NLDATEM", kMarch5, 13), "Mar 5, 2024  ");
    EXPECT_EQ(text("NLDATEW", kMarch5, 29), "Tuesday, March 5, 2024       ");
    EXPECT_EQ(text("NLDATEW", kMarch5, 20), "Tue, Mar 5, 2024    ");
    EXPECT_EQ(text("NLDATEW", kMarch5, 10), "Tuesday   ");
    EXPECT_EQ(text("NLDATEW", kMarch5, 6), "Tue   ");
    EXPECT_EQ(text("NLDATEW", kMarch5, 2), "**");
    EXPECT_EQ(text("NLDATEMN", kMarch5, 9), "March    ");
    EXPECT_EQ(text("NLDATEMN", kMarch5, 4, 0, {{95, "September"}}), "Mar ");
    EXPECT_EQ(text("NLDATEMN", kMarch5, 2), " 3");
    EXPECT_EQ(text("NLDATEWN", kMarch5, 1), "2");
}

TEST_F(Dates, WeekdayNumberFollowsItem42) {
    EXPECT_EQ(text("NLDATEWN", kMarch5, 2), "2 "); // %Y-W%U holds a U: Monday 1 .. Sunday 7
    EXPECT_EQ(text("NLDATEWN", 23438, 2), "7 ");   // Sunday 3 March
    EXPECT_EQ(text("NLDATEWN", 23438, 2, 0, {{42, "%G-W%V"}}), "0 ");
}

TEST_F(Dates, DatetimeLaddersDropDecimalsBeforePatterns) {
    // Row 49 is as wide as its longest names allow: 27 places.
    EXPECT_EQ(text("NLDATML", kMarch5At, 27, 3), "March 5, 2024 14:07:09.250 ");
    EXPECT_EQ(text("NLDATML", kMarch5At, 26, 3), "Mar 5, 2024 14:07:09.250  ");
    EXPECT_EQ(text("NLDATML", kMarch5At, 23, 3), "Mar 5, 2024 14:07:09.25");
    EXPECT_EQ(text("NLDATML", kMarch5At, 21, 3), "Mar 5, 2024 14:07:09 ");
    EXPECT_EQ(text("NLDATML", kMarch5At, 19, 3), "03/05/2024 14:07:09");
    EXPECT_EQ(text("NLDATML", kMarch5At, 18, 0), "03/05/24 14:07:09 ");
    EXPECT_EQ(text("NLDATMDT", kMarch5At, 18), "March 5, 2024     ");
    EXPECT_EQ(text("NLDATMDT", kMarch5At, 10), "03/05/2024");
    // A negative decimals leaves every pattern row out.
    EXPECT_EQ(text("NLDATML", kMarch5At, 30, -2).substr(0, 19), "03/05/2024 14:07:09");
}

TEST_F(Dates, PlainForms) {
    EXPECT_EQ(text("NLDATE", kMarch5, 13), "March 5, 2024");
    EXPECT_EQ(text("NLDATE", kMarch5, 12), "Mar 5, 2024 ");
    EXPECT_EQ(text("NLDATE", kMarch5, 10), "03/05/2024");
    EXPECT_EQ(text("NLDATE", kMarch5, 20, 0, {{28, ""}}), "03/05/2024          ");
    EXPECT_EQ(text("NLDATE", kMarch5, 20, 0, {{28, "%R"}}), "03/05/2024          ");
    EXPECT_EQ(text("NLDATE", -0.5, 20), "December 31, 1959   ");
    EXPECT_EQ(text("NLDATE", 6589336, 12), "************");
    EXPECT_EQ(text("NLDATM", kMarch5At, 26, 3), "March 5, 2024 14:07:09.250");
    EXPECT_EQ(text("NLDATM", kMarch5At, 25, 3), "March 5, 2024 14:07:09.25");
    EXPECT_EQ(text("NLDATM", kMarch5At, 20, 0), "03/05/2024 14:07:09 ");
    EXPECT_EQ(text("NLDATMAP", kMarch5At, 30), "March 5, 2024 02:07:09 PM     ");
    EXPECT_EQ(text("NLDATMAP", kMarch5At, 22), "03/05/2024 14:07:09   ");
}

TEST_F(Dates, PartialForms) {
    EXPECT_EQ(text("NLDATEYM", kMarch5, 10), "March 2024");
    EXPECT_EQ(text("NLDATEYM", kMarch5, 9), "Mar 2024 ");
    EXPECT_EQ(text("NLDATEYM", kMarch5, 7), "*******");
    EXPECT_EQ(text("NLDATEYM", kMarch5, 16, 0, {{34, "%Bx %R"}}), "****************");
    EXPECT_EQ(text("NLDATMYM", kMarch5At, 10, 3), "March 2024");
    EXPECT_EQ(text("NLDATEMD", kMarch5, 7), "March 5");
    EXPECT_EQ(text("NLDATEYR", kMarch5, 2), "24");
    EXPECT_EQ(text("NLDATEYQ", kMay17, 7), "Q2 2024");
    EXPECT_EQ(text("NLDATEYW", kMarch5, 8), "2024-W09");
    EXPECT_EQ(text("NLDATEYR", 6589335.5, 4), "0000"); // the year 20000 in four places
    EXPECT_EQ(text("NLDATEYR", 6589336, 4), "****");
}

TEST_F(Dates, MeasuredInBytes) {
    zvhost::CallSpec spec;
    spec.measureBytes = true;
    // "März 5, 2024" is 12 characters but 13 bytes in UTF-8.
    zvhost::FormatResult r = run("NLDATE", kMarch5, 12, 0, {{71 + 2, "M<U00E4>rz"}, {59 + 2, "M<U00E4>r"}}, spec);
    EXPECT_EQ(r.utf8, "M\xc3\xa4r 5, 2024 "); // 12 bytes
    r = run("NLDATE", kMarch5, 12, 0, {{71 + 2, "M<U00E4>rz"}, {59 + 2, "M<U00E4>rs"}}, spec);
    EXPECT_EQ(r.utf8, "03/05/2024  ");
    spec.encoding = "ISO-8859-1";
    r = run("NLDATE", kMarch5, 12, 0, {{71 + 2, "M<U00E4>rz"}}, spec);
    EXPECT_EQ(r.utf8, "M\xc3\xa4rz 5, 2024");
}

TEST_F(Dates, MissingAndOutOfRangeEverywhere) {
    for (const FormatTableRow *row : zvhost::tableRows(host.instance()->formatTable)) {
        const std::string name = zvhost::rowName(*row);
        if (!row->wideEntry || name[0] == '@' || (name.rfind("NLDAT", 0) != 0)) continue;
        const bool datetime = name.rfind("NLDATM", 0) == 0;
        zvhost::FormatResult r = run(name.c_str(), zvhost::missingValue('X'), 12, 2);
        EXPECT_EQ(r.status, 0) << name;
        EXPECT_EQ(r.utf8, "           X") << name;
        r = run(name.c_str(), datetime ? 569318630400.0 : 6589336.0, 12);
        EXPECT_EQ(r.utf8, "************") << name;
        r = run(name.c_str(), datetime ? -11928470400.5 : -138061.5, 12);
        EXPECT_EQ(r.utf8, "************") << name;
        r = run(name.c_str(), std::nan(""), 12);
        EXPECT_EQ(r.utf8, "************") << name;
    }
}

} // namespace
