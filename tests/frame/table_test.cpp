// The published table comes in two runs, informats first, each in order of
// name, so that a host can search it; the closing row ends it.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "frame/table.hpp"
#include "zvhost.hpp"

namespace {

TEST(FormatTable, TwoRunsInOrderOfName) {
    const FormatTableRow *t = zv::formatTable();
    // Where the published order departs from the order of names.
    const std::set<std::pair<std::string, std::string>> departures = {{"@NLTIME", "@NLSTRMON"},
                                                                       {"WEEKV", "DTWEEKV"}};
    int informats = 0;
    while (informats < 247 && zvhost::rowName(t[informats])[0] == '@') ++informats;
    EXPECT_EQ(informats, 97);
    for (int i = 0; i + 1 < 247; ++i) {
        const std::string a = zvhost::rowName(t[i]), b = zvhost::rowName(t[i + 1]);
        if (i + 1 != informats) { EXPECT_TRUE(a < b || departures.count({a, b})) << a << " before " << b; }
    }
    EXPECT_EQ(zvhost::tableRows(t).size(), 247u);
}

} // namespace
