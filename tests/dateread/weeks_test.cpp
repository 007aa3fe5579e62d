// @WEEKU, @WEEKV, @WEEKW against the week rules computed by the standard
// library's calendar, and @NLSTRMON on set names.
#include "support.hpp"

namespace {

using namespace dr;

// The first day of week 1 by each rule's own definition, then whole weeks.
double weekDate(char letter, int year, int week, int day) {
    const chr::sys_days jan1{chr::year{year} / 1 / 1};
    const chr::sys_days one = letter == 'V' ? chr::sys_days{chr::year{year} / 1 / chr::Thursday[1]} - chr::days{3}
                              : jan1 + ((letter == 'U' ? chr::Sunday : chr::Monday) - chr::weekday{jan1});
    return days(one + chr::days{(week - 1) * 7 + day - 1});
}

TEST(WeekReader, AgreesWithTheWeekRules) {
    std::mt19937 rng(2024);
    for (int i = 0; i < 30000; ++i) {
        const int year = 1583 + int(rng() % 2400), week = int(rng() % 54), day = 1 + int(rng() % 31);
        const char letter = "UVW"[i % 3];
        const std::u16string text = zvhost::utf16(std::to_string(year) + "W" + char('0' + week / 10) +
                                                  char('0' + week % 10) + (day < 10 ? "0" : "") + std::to_string(day));
        const char16_t rule[] = {char16_t(letter), 0};
        double value = 1960;
        ASSERT_EQ(zv::readWeekText(text.data(), int64_t(text.size()), rule, &value), 0) << zvhost::utf8(text);
        ASSERT_EQ(value, weekDate(letter, year, week, day)) << letter << " " << zvhost::utf8(text);
    }
}

using Weeks = Module;

TEST_F(Weeks, Cases) {
    host.setClock(dayCount(2024, 3, 5) * 86400.0 + 7200.0, 3600.0);
    const int32_t refused = int32_t(0x80000000u);
    const struct {
        const char *informat, *text;
        int32_t status;
        double value; // for status 0x80000000 the output holds the cut-off
    } cases[] = {
        {"@WEEKV", "2021W01", 0, 22284},     {"@WEEKV", "2020-W53-05", 0, 22281}, {"@WEEKV", "2024w05-3", 0, 23406},
        {"@WEEKU", "2023W01", 0, 23011},     {"@WEEKU", "2024W01", 0, 23382},     {"@WEEKU", "2024W00-02", 0, 23376},
        {"@WEEKW", "2024W01", 0, 23376},     {"@WEEKW", "2023W00-07", 0, 23011},  {"@WEEKV", "20 24W01", 0, 23376},
        {"@WEEKV", "2024W0110", 0, 23385},   {"@WEEKV", "2024W10W99", 0, dayCount(2024, 3, 4)},
        {"@WEEKV", "202W01", 0, weekDate('V', 2020, 1, 1)}, {"@WEEKV", "0024W01", 0, 23376},
        {"@WEEKU", "W05", 0, weekDate('U', 2024, 5, 1)},   {"@WEEKU", "1582W0001", 0, kMiss},
        {"@WEEKV", "", 1, 0},                {"@WEEKV", "20240105", refused, 1960}, {"@WEEKV", "2024W5", refused, 1960},
        {"@WEEKV", "2024W 01", refused, 1960}, {"@WEEKV", "2024W01x", refused, 1960}, {"@WEEKV", "1581W01", refused, 1960},
        {"@WEEKV", "2024W54", refused, 1960}, {"@WEEKV", "2024W0132", refused, 1960}, {"@WEEKV", "2024W01W5", refused, 1960},
    };
    for (const auto &c : cases) {
        const zvhost::ReadResult r = read(c.informat, c.text);
        EXPECT_EQ(r.status, c.status) << c.text;
        EXPECT_TRUE(c.status == 1 || same(r.value, c.value)) << c.text << " " << r.value;
    }
    EXPECT_EQ(read("@WEEKV", "2024W1002", "en_US", {}, 8).value, dayCount(2024, 3, 4));
    EXPECT_EQ(read("@WEEKV", "2024W1002", "en_US", {}, 6).status, refused); // a week digit behind the limit
    double cutoff = 0.0; // no cut-off: 1900
    EXPECT_EQ(zv::readWeekText(u"05W01", 5, u"V", &cutoff), 0);
    EXPECT_EQ(cutoff, weekDate('V', 1905, 1, 1));
}

TEST_F(Weeks, MonthNames) {
    std::map<int, std::string> items;
    const char *months[] = {"January", "February", "March",     "April",   "May",      "June",
                            "July",    "August",   "September", "October", "November", "December"};
    for (int i = 0; i < 12; ++i) items[95 + i] = months[i], items[83 + i] = std::string(months[i], 3);
    items[84] = "f<U00E9>vr.";
    const struct { const char *text; int limit; double month; } cases[] = {
        {"MAY 2024", -1, 5}, {"Sept", -1, 9}, {" May", -1, kMiss}, {"Ma", -1, kMiss}, {"FÉVR.", -1, 2},
        {"", -1, kMiss}, {"March", 3, 3}, {"March", 2, kMiss}, {"Mar   ", 3, 3}, {"Mar   ", 100, 3}};
    for (const auto &c : cases) {
        const zvhost::ReadResult r = read("@NLSTRMON", c.text, "en_US", items, c.limit);
        EXPECT_TRUE(r.status == 0 && same(r.value, c.month)) << c.text << " " << c.limit;
    }
}

} // namespace
