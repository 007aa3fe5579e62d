// Single requests whose answers the rules settle in a corner: one line a
// case, a row, its request and the answer.
#include <gtest/gtest.h>

#include <string>

#include "zvhost.hpp"

namespace {

struct Case {
    const char *row;
    const char *locale;
    std::map<int, std::string> items;
    int32_t width, decimals;
    double value;     // formats
    std::string text; // informats
    int32_t status;
    std::string want; // a format's text, or an informat's value printed with %.17g ("." when missing)
};

std::string shown(double v) {
    if (zvhost::missingMark(v)) return ".";
    char out[32];
    std::snprintf(out, sizeof out, "%.17g", v);
    return out;
}

TEST(Cases, CornersOfTheRules) {
    const std::string ones(300, '1');
    const Case cases[] = {
        // a decimal separator at the front of money whose symbol holds one
        {"@NLMNY", "en_US", {{156, "kr."}}, 12, -1, 0, ".5 kr.", 0, "0.5"},
        // the time read before the date of the same text failed is what the call leaves
        {"@NLTIME", "de_DE", {{53, "%d.%m.%Y %H:%M:%S"}}, -1, -1, 0,
         "31.4.2024 10:00:00 x x x x x x x x x x x x x x x x x x x x x x x x x", 999, "36000"},
        // the language code is compared folded: "HE" keeps separators in the text
        {"@NLDATE", "en_US", {{2, "HE"}}, -1, -1, 0, "1/2/2024", 999, "."},
        // the plain route has no limit of its own
        {"@NLNUM", "en_US", {}, 1000, -1, 0, ones, 0, "1.1111111111111112e+299"},
        {"@NLPCT", "en_US", {}, 1000, -1, 0, ones + "%", 0, "1.1111111111111112e+297"},
        // the weekday of a day's fraction is that of the date shown
        {"NLDATEW", "en_US", {}, 40, -1, -0.5, "", 0, "Thursday, December 31, 1959             "},
        {"WEEKU", "en_US", {}, 11, -1, -0.5, "", 0, "1959-W52-05"},
        // "%%" is a percent sign of width 1, and the x behind it plain text
        {"NLDATEL", "en_US", {{31, "%%x"}}, 5, -1, 23440, "", 0, "%x   "},
        // every place of a second that the field has room for
        {"NLTIME", "en_US", {{53, "%H hours %M minutes %S seconds, and then some more text for the field"}}, 40, 31,
         50829.5, "", 0, "14:07:09.5000000000000000000000000000000"},
    };
    zvhost::Host host;
    ASSERT_NE(host.loadModule(), nullptr);
    for (const Case &c : cases) {
        SCOPED_TRACE(c.row + (" " + c.text.substr(0, 40)));
        const FormatTableRow *row = zvhost::findRow(host.instance()->formatTable, c.row);
        ASSERT_NE(row, nullptr);
        zvhost::CallSpec spec;
        spec.locale = c.locale, spec.items = c.items, spec.width = c.width, spec.decimals = c.decimals;
        if (zvhost::isInformat(*row)) {
            const zvhost::ReadResult r = zvhost::runInformat(host, *row, spec, c.text);
            EXPECT_EQ(r.status, c.status);
            EXPECT_EQ(shown(r.value), c.want);
        } else {
            const zvhost::FormatResult r = zvhost::runFormat(host, *row, spec, c.value);
            EXPECT_EQ(r.status, c.status);
            EXPECT_EQ(r.utf8, c.want);
        }
    }
}

} // namespace
