// @WEEKU, @WEEKV, @WEEKW and @NLSTRMON on the cases they are known by (both
// also go through the round trips over the CLDR locales).
#include "support.hpp"

namespace {

using namespace dr;

using Weeks = Module;

TEST_F(Weeks, Cases) {
    host.setClock(dayCount(2024, 3, 5) * 86400.0 + 7200.0, 3600.0);
    const int32_t refused = int32_t(0x80000000u);
    // For status 0x80000000 the output holds the cut-off.
    const struct { const char *informat, *text; int32_t status; double value; } cases[] = {
        {"@WEEKV", "2021W01", 0, 22284}, {"@WEEKV", "2020-W53-05", 0, 22281}, {"@WEEKV", "2024w05-3", 0, 23406},
        {"@WEEKU", "2023W01", 0, 23011}, {"@WEEKU", "2024W01", 0, 23382}, {"@WEEKU", "2024W00-02", 0, 23376},
        {"@WEEKW", "2024W01", 0, 23376}, {"@WEEKW", "2023W00-07", 0, 23011}, {"@WEEKV", "20 24W01", 0, 23376},
        {"@WEEKV", "2024W0110", 0, 23385}, {"@WEEKV", "2024W10W99", 0, dayCount(2024, 3, 4)},
        {"@WEEKV", "202W01", 0, dayCount(2019, 12, 30)}, {"@WEEKV", "0024W01", 0, 23376},
        {"@WEEKU", "W05", 0, dayCount(2024, 2, 4)}, {"@WEEKU", "1582W0001", 0, kMiss}, {"@WEEKV", "", 1, 0},
        {"@WEEKV", "20240105", refused, 1960}, {"@WEEKV", "2024W5", refused, 1960},
        {"@WEEKV", "2024W 01", refused, 1960}, {"@WEEKV", "2024W01x", refused, 1960},
        {"@WEEKV", "1581W01", refused, 1960}, {"@WEEKV", "2024W54", refused, 1960},
        {"@WEEKV", "2024W0131", 0, 23406}, {"@WEEKV", "2024W0132", refused, 1960}, {"@WEEKV", "2024W01W5", refused, 1960},
    };
    for (const auto &c : cases) {
        const zvhost::ReadResult r = read(c.informat, c.text);
        EXPECT_TRUE(r.status == c.status && (c.status == 1 || same(r.value, c.value))) << c.text << " " << r.value;
    }
    EXPECT_EQ(read("@WEEKV", "2024W1002", "en_US", {}, 8).value, dayCount(2024, 3, 4));
    EXPECT_EQ(read("@WEEKV", "2024W1002", "en_US", {}, 6).status, refused); // a week digit behind the limit
    double cutoff = 0.0; // no cut-off: 1900
    EXPECT_TRUE(zv::readWeekText(u"05W01", 5, u"V", &cutoff) == 0 && cutoff == dayCount(1905, 1, 2));
}

TEST_F(Weeks, MonthNames) {
    const std::map<int, std::string> items = {{84, "f<U00E9>vr."}};
    const struct { const char *text; int limit; double month; } cases[] = {
        {"MAY 2024", -1, 5}, {"Sept", -1, 9}, {" May", -1, kMiss}, {"Ma", -1, kMiss}, {"FÉVR.", -1, 2},
        {"", -1, kMiss}, {"March", 3, 3}, {"March", 2, kMiss}, {"Mar   ", 3, 3}, {"Mar   ", 100, 3}};
    for (const auto &c : cases) {
        const zvhost::ReadResult r = read("@NLSTRMON", c.text, "en_US", items, c.limit);
        EXPECT_TRUE(r.status == 0 && same(r.value, c.month)) << c.text << " " << c.limit;
    }
}

} // namespace
