// A host with the module loaded and a locale whose number and money items a
// test sets; by default they write numbers and money as en_US does.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "zvhost.hpp"

namespace numtest {

using Items = std::map<int, std::string>;

// '.' and ',' by threes, '-' in front, money "$1,234.50" and "-$1,234.50";
// every item not named here is empty. `changes` go over that.
inline Items baseItems(const Items &changes = {}) {
    Items items;
    for (int k = 0; k < 189; ++k) items[k] = "";
    const Items base = {{172, "."}, {173, ","}, {174, "3"}, {176, "-"}, {177, "0"}, {178, "0"}, {179, "0"}, {180, "0"},
                        {181, "1"}, {182, "1"}, {155, "USD"}, {156, "$"}, {157, "."}, {158, ","}, {159, "3"}, {161, "-"},
                        {164, "1"}, {165, "0"}, {166, "1"}, {167, "0"}, {168, "1"}, {169, "1"}, {170, "1"}, {171, "1"},
                        {183, "1"}, {184, "1"}, {185, "1"}, {186, "1"}};
    for (const auto &[k, v] : base) items[k] = v;
    for (const auto &[k, v] : changes) items[k] = v;
    return items;
}

class Numbers : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_NE(host.loadModule(), nullptr); }

    // The row's text (UTF-8) for the value over the base items and `changes`
    // (none: over the items of the CallSpec's locale).
    std::string run(const std::string &row, double value, int width, int decimals, const Items &changes = {},
                    zvhost::CallSpec spec = {}) {
        if (spec.locale == "en_US") spec.items = baseItems(changes);
        spec.width = width, spec.decimals = decimals;
        const zvhost::FormatResult r = zvhost::runFormat(host, *zvhost::findRow(host.instance()->formatTable, row), spec, value);
        EXPECT_EQ(r.error + std::to_string(r.status) + (r.overran ? " and wrote outside its target" : ""), "0") << row;
        return r.utf8;
    }

    zvhost::Host host;
};

} // namespace numtest
