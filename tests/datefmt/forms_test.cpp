// The date forms over a locale of English names: the numeric forms against
// a second construction from their rules, and every ladder, plain and
// partial form against a model of the walk down its candidates.
#include <algorithm>
#include <cmath>
#include <sstream>
#include <vector>

#include "dates.hpp"

namespace {

using Forms = dt::Module;

std::string digits(int64_t v, int n) {
    std::string s = std::to_string(v);
    return std::string(size_t(std::max(0, n - int(s.size()))), '0') + s;
}

// Parts shown in the order of `order`; left in the field as the forms leave them.
std::string numericDate(int64_t y, int m, int d, const std::string &order, const std::string &sep, int w) {
    std::vector<std::string> part(order.size());
    int n = int(order.size()), digitCount = 0, seps = sep.size() == 1 ? n - 1 : 0;
    for (int i = 0; i < n; ++i)
        if (order[size_t(i)] != 'Y') part[size_t(i)] = digits(order[size_t(i)] == 'M' ? m : d, 2), digitCount += 2;
    for (int i = 0; i < n; ++i)
        if (order[size_t(i)] == 'Y') {
            part[size_t(i)] = w - digitCount - seps >= 4 ? (y > 9999 ? "****" : digits(y, 4)) : digits(y % 100, 2);
            digitCount += int(part[size_t(i)].size());
        }
    if (w == 5 && seps > 1) seps = 1;
    if (w == 5 && n == 3) part[2].clear(), digitCount = 4;
    if (digitCount + seps > w) {
        seps = 0;
        for (int k = n - 1; k >= 1 && digitCount > w; --k) digitCount -= int(part[size_t(k)].size()), part[size_t(k)].clear();
    }
    std::string t;
    for (const std::string &p : part)
        if (!p.empty()) t += (t.empty() || !seps ? "" : sep) + p;
    return dt::pad(t.substr(0, size_t(w)), size_t(w));
}

std::string without(std::string order, char c) {
    order.erase(order.find(c), 1);
    return order;
}

TEST_F(Forms, NumericDatesFollowTheirRules) {
    struct Day { int64_t y; int m, d; };
    for (Day day : {Day{2024, 3, 5}, Day{11980, 11, 17}, Day{1582, 12, 31}})
        for (const char *order : {"MDY", "dmy", "YMD", "YDM", "MYD", "DYM"})
            for (const char *sep : {"/", "", "--"}) {
                dt::Items items = dt::englishItems();
                items[6] = order, items[153] = sep;
                std::string o = order;
                std::transform(o.begin(), o.end(), o.begin(), ::toupper);
                const std::string y4 = day.y > 9999 ? "****" : digits(day.y, 4), y2 = digits(day.y % 100, 2);
                const double v = dt::moduleDays(day.y, day.m, day.d);
                for (int w = 2; w <= 14; ++w) {
                    const std::string where = o + " [" + sep + "] width " + std::to_string(w) + " year " + std::to_string(day.y);
                    EXPECT_EQ(text("NLDATES", v, w, 0, items), numericDate(day.y, day.m, day.d, o, sep, w)) << where;
                    EXPECT_EQ(text("NLDATEYMS", v, w, 0, items), numericDate(day.y, day.m, day.d, without(o, 'D'), sep, w)) << where;
                    EXPECT_EQ(text("NLDATMMDS", v * 86400 + 3600, w, 0, items), numericDate(day.y, day.m, day.d, without(o, 'Y'), sep, w)) << where;
                    const std::string q = std::string(1, char('0' + (day.m - 1) / 3 + 1));
                    const std::string yq = ((sep[0] && !sep[1] ? 2 : 1) + 4 > w ? y2 : y4) + (sep[0] && !sep[1] ? sep : "") + q;
                    EXPECT_EQ(text("NLDATEYQS", v, w, 0, items), dt::pad(yq.substr(0, size_t(w)), size_t(w))) << where;
                }
            }
    dt::Items items = dt::englishItems();
    items[6] = "MD";
    EXPECT_EQ(text("NLDATES", 0, 10, 0, items), "**********");
    EXPECT_EQ(text("NLDATES", 6589335, 10), "12/31/****"); // the calendar's last day, and the first past it
    EXPECT_EQ(text("NLDATES", 6589336, 10), "**********");
}

// The field split between date and time, by the width.
TEST_F(Forms, NumericDatetimesSplitTheField) {
    const double v = 23440 * 86400.0 + 50829.25; // 5 March 2024, 14:07:09.25
    const char *times[4] = {"14:07:09", "14:07:09.3", "14:07:09.25", "14:07:09.250"};
    for (const char *sep : {"/", ""})
        for (const char *order : {"MDY", "YMD"})
            for (const char *dateFirst : {"%x %X", "%X%x"}) {
                dt::Items items = dt::englishItems();
                items[6] = order, items[153] = sep, items[58] = dateFirst;
                const int s = sep[0] ? 1 : 0;
                for (int d = 0; d <= 3; ++d)
                    for (int w = 9; w <= 40; ++w) {
                        const int p = d > 0;
                        const int timeLength = w >= d + p + 17 + 2 * s ? d + p + 8 : w >= 15 + 2 * s ? 8 : w >= 12 + 2 * s ? 5 : 2;
                        const int dateLength = w >= d + p + 17 + 2 * s ? 8 + 2 * s : w >= 9 + 2 * s ? 6 + 2 * s : 6;
                        const std::string time = std::string(times[timeLength > 8 ? d : 0]).substr(0, size_t(timeLength));
                        std::string date = numericDate(2024, 3, 5, order, sep, dateLength);
                        date.erase(date.find_last_not_of(' ') + 1);
                        const std::string expected = dateFirst[1] == 'x' ? date + " " + time : time + " " + date;
                        EXPECT_EQ(text("NLDATMS", v, w, d, items), dt::pad(expected, size_t(w)))
                            << order << " [" << sep << "] " << dateFirst << " width " << w << " decimals " << d;
                    }
            }
    EXPECT_EQ(text("NLDATMS", 23440 * 86400.0 + 86399.7, 19), "03/06/2024 00:00:00");
    EXPECT_EQ(text("NLDATMS", -0.4, 19), "01/01/1960 00:00:00");
}

// The widest text a pattern can give: each name directive at its longest name.
int widest(const std::string &p, const dt::Items &items) {
    auto longest = [&](int first, int count) {
        size_t n = 0;
        for (int k = first; k < first + count; ++k) n = std::max(n, items.at(k).size());
        return int(n);
    };
    int n = 0;
    for (size_t i = 0; i < p.size(); ++i) {
        if (p[i] != '%' && ++n) continue;
        const bool other = p[++i] == '#';
        const char c = p[i += other];
        n += c == 'A' ? longest(other ? 128 : 114, 7) : c == 'a' ? longest(other ? 121 : 107, 7)
           : c == 'B' ? longest(other ? 95 : 71, 12) : c == 'b' ? longest(other ? 83 : 59, 12)
           : c == 'Q' ? longest(other ? 147 : 139, 4) : c == 'q' ? longest(other ? 143 : 135, 4)
           : c == 'p' ? longest(151, 2) : c == 'Y' ? 4 : 2;
    }
    return n;
}

// Each form, its candidates ("!" first: no width known in advance; an item
// number, or a fixed pattern), what follows them (null: stars), and decimals.
struct Walk { const char *row, *rungs, *end; int decimals; };

TEST_F(Forms, EveryFormTakesTheFirstCandidateThatFits) {
    const Walk walks[] = {{"NLDATEL", "31 30", "NLDATES", 0}, {"NLDATEM", "30", "NLDATES", 0}, {"NLDATEYML", "34 35", "NLDATEYMS", 0},
        {"NLDATEMDM", "37", "NLDATEMDS", 0}, {"NLDATEYQL", "40 41", "NLDATEYQS", 0}, {"NLDATEMN", "%#B %#b %o", nullptr, 0},
        {"NLDATEW", "32 33 %#A %#a", nullptr, 0}, {"NLDATEWN", "%#A %#a uw", nullptr, 0}, {"NLDATML", "49 48 47", "NLDATMS", 3},
        {"NLDATMM", "48 47", "NLDATMS", 1}, {"NLDATMW", "50 51 32 33 %#A %#a", nullptr, 2}, {"NLDATMDT", "31 30", "NLDATES", 0},
        {"NLDATMYQM", "41", "NLDATMYQS", 0}, {"NLDATMWN", "%#A %#a uw", nullptr, 0}, {"NLDATE", "!28 29", "NLDATES", 0},
        {"NLDATM", "!46 47", "NLDATMS", 3}, {"NLDATMAP", "!44 47", "NLDATMS", 2}, {"NLDATEYM", "!34 35", nullptr, 0},
        {"NLDATMYR", "!38 39", nullptr, 0}, {"NLDATEYW", "!42 43", nullptr, 0}};
    dt::Items other = dt::englishItems();
    other[42] = "%G-W%V", other[95 + 8] = "Septembers", other[121 + 3] = "Wedn", other[6] = "DMY";
    const double day = dt::civilDays(2024, 9, 25); // a Wednesday
    for (const dt::Items &items : {dt::englishItems(), other})
        for (const Walk &walk : walks) {
            const bool datetime = std::string(walk.row).rfind("NLDATM", 0) == 0, checksWidth = walk.rungs[0] != '!';
            for (double value : datetime ? std::vector<double>{day * 86400 + 50829.25, day * 86400 + 86399.7} : std::vector<double>{day, 23440})
            {
                // Each candidate's width known in advance and its texts at each number of decimals.
                std::vector<std::pair<int, std::vector<std::string>>> candidates;
                std::istringstream rungs(walk.rungs + !checksWidth);
                for (std::string r; rungs >> r;) {
                    const std::string p = r[0] == '%' ? r : r == "uw" ? (items.at(42).find('U') != std::string::npos ? "%u" : "%w")
                                                                      : items.at(std::stoi(r));
                    dt::Items one = items;
                    one[datetime ? 46 : 34] = p;
                    std::vector<std::string> texts;
                    for (int k = walk.decimals; k >= 0; --k) {
                        const std::string t = text(datetime ? "NLDATM" : "NLDATEYM", value, 200, k, one);
                        texts.push_back(t.substr(0, t.find_last_not_of(' ') + 1));
                    }
                    candidates.push_back({!checksWidth ? 0 : r == "%o" ? 2 : r == "uw" ? 1 : widest(p, items), texts});
                }
                for (int w = 1; w <= 45; ++w) {
                    const bool ofDay = datetime && walk.end && std::string(walk.end) == "NLDATES";
                    std::string expected = walk.end ? text(walk.end, ofDay ? std::floor(value / 86400) : value, w, walk.decimals, items)
                                                    : std::string(size_t(w), '*');
                    for (auto it = candidates.rbegin(); it != candidates.rend(); ++it)
                        for (auto t = it->second.rbegin(); t != it->second.rend(); ++t)
                            if (it->first <= w && t->size() <= size_t(w)) expected = dt::pad(*t, size_t(w));
                    zvhost::FormatResult r = call(walk.row, value, w, walk.decimals, items);
                    ASSERT_TRUE(r.utf8 == expected && r.status == 0) << walk.row << " width " << w << " value " << value << " item 6 "
                                                                     << items.at(6) << ": [" << r.utf8 << "], expected [" << expected << "]";
                }
            }
        }
}

// The name rows write the stand-alone names: decimals 1 picks the short
// form, 2 upper case.
TEST_F(Forms, NameRowsPickFormAndCase) {
    dt::Items items = dt::englishItems();
    items[106] = "d<U00E9>cembre", items[94] = "d<U00E9>c.", items[133] = "vendredi", items[126] = "ven.", items[150] = "4e trim", items[146] = "T4";
    const char *want[][4] = {{"d\u00e9cembre", "d\u00e9c.", "D\u00c9CEMBRE", "D\u00c9C."}, {"vendredi", "ven.", "VENDREDI", "VEN."},
                             {"4e trim", "T4", "4E TRIM", "T4"}};
    const std::pair<const char *, double> rows[] = {{"NLSTRMON", 12}, {"NLSTRWK", 6.5}, {"NLSTRQTR", 4}};
    for (int k = 0; k < 3; ++k)
        for (int d = 0; d < 4; ++d) {
            std::string t = text(rows[k].first, rows[k].second, 20, d, items);
            EXPECT_EQ(t.erase(t.find_last_not_of(' ') + 1), want[k][d]) << rows[k].first << "." << d;
        }
    // One past the last name, like one before the first, shows no name.
    for (auto [row, past] : {std::pair{"NLSTRMON", 13.0}, {"NLSTRWK", 8.0}, {"NLSTRQTR", 5.0}})
        EXPECT_EQ(text(row, past, 20, 0, items) + text(row, 0, 20, 0, items), std::string(40, ' ')) << row;
}

TEST_F(Forms, EdgesOfTheWalks) {
    dt::Items items = dt::englishItems();
    items[28] = "";
    EXPECT_EQ(text("NLDATE", 23440, 20, 0, items), dt::pad("03/05/2024", 20)); // an empty item 28 skips item 29
    items[28] = "%R", items[34] = "%B %R";
    EXPECT_EQ(text("NLDATE", 23440, 20, 0, items), dt::pad("03/05/2024", 20));
    EXPECT_EQ(text("NLDATEYM", 23440, 16, 0, items), std::string(16, '*'));
    EXPECT_EQ(text("NLDATEL", 23440, 30, -2, items), dt::pad("03/05/2024", 30)); // negative decimals skip every pattern
    EXPECT_EQ(text("NLDATMYM", dt::civilDays(2024, 3, 31) * 86400.0 + 86399.7, 16, 3), dt::pad("April 2024", 16));
    EXPECT_EQ(text("NLDATE", -0.5, 20), dt::pad("December 31, 1959", 20));
    // Measured in host bytes: "Mär 5, 2024" is 11 characters and 12 bytes.
    zvhost::CallSpec spec;
    spec.items = dt::englishItems();
    spec.items[71 + 2] = spec.items[95 + 2] = "M<U00E4>rz", spec.items[59 + 2] = "M<U00E4>r";
    spec.items[46] = spec.items[47] = "%b %#d, %Y";
    // (The measure takes the text, not the blanks behind it; without it a name of width characters fits.)
    for (auto [row, width, measure, expected] :
         {std::tuple{"NLDATE", 11, true, "03/05/2024 "}, std::tuple{"NLDATEL", 11, true, "03/05/2024 "},
          std::tuple{"NLDATM", 11, true, "03/05/24 00"}, std::tuple{"NLSTRMON", 4, true, "****"},
          std::tuple{"NLSTRMON", 4, false, "M\xc3\xa4rz"}, std::tuple{"NLDATE", 12, true, "M\xc3\xa4r 5, 2024 "},
          std::tuple{"NLDATEYM", 12, true, "M\xc3\xa4rz 2024   "}, std::tuple{"NLDATEL", 12, true, "03/05/2024  "}}) {
        spec.width = width, spec.measureBytes = measure;
        const double v = std::string(row) == "NLDATM" ? 23440 * 86400.0 : std::string(row) == "NLSTRMON" ? 3 : 23440;
        EXPECT_EQ(zvhost::runFormat(host, *zvhost::findRow(host.instance()->formatTable, row), spec, v).utf8, expected) << row << width;
    }
    for (auto [row, value, expected] : {std::tuple{"NLSTRMON", 9.0, "********"}, std::tuple{"NLSTRMON", 12.5, "        "},
                                        std::tuple{"NLSTRWK", 0.99, "        "}, std::tuple{"NLSTRWK", 6.9, "Friday  "}})
        EXPECT_EQ(text(row, value, 8), expected) << row << " " << value;
    spec.width = 11, spec.encoding = "ISO-8859-1";
    EXPECT_EQ(zvhost::runFormat(host, *zvhost::findRow(host.instance()->formatTable, "NLDATE"), spec, 23440).utf8, "M\xc3\xa4r 5, 2024");
}

} // namespace
