// A host with the module loaded and a locale whose number and money items the
// test sets, for the number, percent and money formats.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "zvhost.hpp"

namespace numtest {

using Items = std::map<int, std::string>;

// A locale that writes numbers like en_US: '.' and ',' by threes, '-' in
// front, money "$1,234.50" and "-$1,234.50", percent "12.5%". Every other
// item is empty.
inline Items baseItems() {
    Items items;
    for (int k = 0; k < 189; ++k) items[k] = "";
    // Numbers: separators, grouping, signs, placement, the four forms.
    items[172] = ".";
    items[173] = ",";
    items[174] = "3";
    items[175] = "";
    items[176] = "-";
    items[177] = "0"; // positive: symbol behind
    items[178] = "0"; //           no blank
    items[179] = "0"; // negative: symbol behind
    items[180] = "0"; //           no blank
    items[181] = "1"; // positive sign in front
    items[182] = "1"; // negative sign in front
    for (int k : {183, 184, 185, 186}) items[k] = "1";
    // Money.
    items[155] = "USD";
    items[156] = "$";
    items[157] = ".";
    items[158] = ",";
    items[159] = "3";
    items[160] = "";
    items[161] = "-";
    items[162] = "2";
    items[163] = "2";
    items[164] = "1"; // positive: symbol in front
    items[165] = "0"; //           no blank
    items[166] = "1"; // negative: symbol in front
    items[167] = "0"; //           no blank
    items[168] = "1"; // positive sign in front
    items[169] = "1"; // negative sign in front
    items[170] = "1";
    items[171] = "1";
    return items;
}

class Numbers : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_NE(host.loadModule(), nullptr); }

    zvhost::FormatResult run(const std::string &row, double value, int width, int decimals,
                             const Items &changes = {}, zvhost::CallSpec spec = {}) {
        Items items = baseItems();
        for (auto &[k, v] : changes) items[k] = v;
        spec.items = items;
        spec.locale = "en_US";
        return runOn(row, value, width, decimals, spec);
    }

    // A call over the locale and items of `spec` as they stand.
    zvhost::FormatResult runOn(const std::string &row, double value, int width, int decimals,
                               zvhost::CallSpec spec) {
        spec.width = width;
        spec.decimals = decimals;
        const FormatTableRow *r = zvhost::findRow(host.instance()->formatTable, row);
        EXPECT_NE(r, nullptr) << row;
        if (!r) return {};
        zvhost::FormatResult res = zvhost::runFormat(host, *r, spec, value);
        EXPECT_EQ(res.error, "") << row;
        EXPECT_FALSE(res.overran) << row << " wrote beyond its target";
        return res;
    }

    static std::string text(const zvhost::FormatResult &r) { return zvhost::utf8(r.wide); }

    zvhost::Host host;
};

} // namespace numtest
