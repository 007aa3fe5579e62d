// zvfmt list: the count, the columns, the filters, and agreement with the
// table as the host reads it.
#include <gtest/gtest.h>

#include <set>

#include "helpers.hpp"
#include "zvhost.hpp"

namespace {

using clitest::lines;
using clitest::run;

std::vector<std::string> fields(const std::string &line) {
    std::vector<std::string> out;
    std::istringstream in(line);
    for (std::string f; in >> f;) out.push_back(f);
    return out;
}

TEST(List, PrintsExactly247RowsOnStdout) {
    const auto r = run({"list"});
    ASSERT_EQ(r.code, 0);
    const auto rows = lines(r.out);
    ASSERT_EQ(rows.size(), 247u);
    std::set<std::string> names;
    size_t formats = 0, ready = 0;
    for (const auto &line : rows) {
        const auto f = fields(line);
        ASSERT_EQ(f.size(), 8u) << line;
        names.insert(f[0]);
        EXPECT_EQ(f[1], f[0][0] == '@' ? "informat" : "format") << line;
        EXPECT_TRUE(f[7] == "ready" || f[7] == "pending") << line;
        formats += f[1] == "format";
        ready += f[7] == "ready";
    }
    EXPECT_EQ(names.size(), 247u);
    EXPECT_EQ(formats, 150u);
    EXPECT_EQ(fields(rows.front())[0], "@NLDATE");
    EXPECT_EQ(fields(rows.back())[0], "YYWEEKW");
    EXPECT_EQ(r.err, "247 of 247 rows (150 formats, 97 informats; " + std::to_string(ready) + " ready, " +
                         std::to_string(247 - ready) + " pending)\n");
}

struct Limits {
    std::string name, kind;
    int minW, maxW, defW, maxD, defD;
};

class ListRow : public ::testing::TestWithParam<Limits> {};

TEST_P(ListRow, ShowsTheRowsLimits) {
    const Limits &l = GetParam();
    const auto r = run({"list"});
    bool found = false;
    for (const auto &line : lines(r.out)) {
        const auto f = fields(line);
        if (f.empty() || f[0] != l.name) continue;
        found = true;
        EXPECT_EQ(f[1], l.kind);
        EXPECT_EQ(f[2], std::to_string(l.minW));
        EXPECT_EQ(f[3], std::to_string(l.maxW));
        EXPECT_EQ(f[4], std::to_string(l.defW));
        EXPECT_EQ(f[5], std::to_string(l.maxD));
        EXPECT_EQ(f[6], std::to_string(l.defD));
    }
    EXPECT_TRUE(found) << l.name;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ListRow,
    ::testing::Values(Limits{"@NLDATE", "informat", 10, 200, 10, 0, 0},
                      Limits{"@NLDATEW", "informat", 16, 200, 20, 0, 0},
                      Limits{"@NLDATMW", "informat", 34, 200, 40, 3, 0},
                      Limits{"NLDATEW", "format", 10, 200, 29, 0, 0},
                      Limits{"NLDATE", "format", 10, 200, 20, 0, 0},
                      Limits{"NLMNIEUR", "format", 8, 32, 12, 28, 2},
                      Limits{"@NLMNLUSD", "informat", 8, 32, 12, 28, 2},
                      Limits{"NLPCT", "format", 4, 32, 6, 31, 0},
                      Limits{"@NLPCT", "informat", 1, 32, 6, 31, 0},
                      Limits{"NLSTRMON", "format", 1, 200, 20, 3, 0},
                      Limits{"DTWEEKV", "format", 3, 200, 18, 0, 0},
                      Limits{"YYWEEKW", "format", 2, 8, 7, 0, 0},
                      Limits{"@WEEKU", "informat", 3, 200, 11, 3, 0}));

TEST(List, HeaderOnlyWhenAsked) {
    const auto plain = run({"list"});
    const auto withHeader = run({"list", "--header"});
    const auto rows = lines(withHeader.out);
    ASSERT_EQ(rows.size(), 248u);
    EXPECT_EQ(rows[0], "NAME       KIND      MINW MAXW DEFW MAXD DEFD STATE");
    EXPECT_EQ(withHeader.out.substr(rows[0].size() + 1), plain.out);
}

TEST(List, FiltersPartitionTheTable) {
    const auto all = lines(run({"list"}).out);
    const auto formats = lines(run({"list", "--formats"}).out);
    const auto informats = lines(run({"list", "--informats"}).out);
    const auto ready = lines(run({"list", "--ready"}).out);
    const auto pending = lines(run({"list", "--pending"}).out);
    EXPECT_EQ(formats.size(), 150u);
    EXPECT_EQ(informats.size(), 97u);
    EXPECT_EQ(ready.size() + pending.size(), 247u);
    for (const auto &l : formats) EXPECT_EQ(fields(l)[1], "format");
    for (const auto &l : informats) EXPECT_EQ(fields(l)[1], "informat");
    for (const auto &l : ready) EXPECT_EQ(fields(l)[7], "ready");
    for (const auto &l : pending) EXPECT_EQ(fields(l)[7], "pending");
    // Filters keep table order: informats then formats is the whole list.
    std::vector<std::string> joined = informats;
    joined.insert(joined.end(), formats.begin(), formats.end());
    EXPECT_EQ(joined, all);
    const auto pendingFormats = run({"list", "--pending", "--formats"});
    size_t expected = 0;
    for (const auto &l : pending) expected += fields(l)[1] == "format";
    EXPECT_EQ(lines(pendingFormats.out).size(), expected);
}

// The JSON listing against the table read straight from a host.
TEST(List, JsonAgreesWithTheHostsTable) {
    const auto r = run({"list", "--json"});
    const auto out = lines(r.out);
    zvhost::Host host;
    ASSERT_NE(host.loadModule(), nullptr);
    const auto rows = zvhost::tableRows(host.instance()->formatTable);
    ASSERT_EQ(rows.size(), 247u);
    ASSERT_EQ(out.size(), rows.size());
    for (size_t i = 0; i < rows.size(); ++i) {
        const auto j = nlohmann::json::parse(out[i]);
        const FormatTableRow &row = *rows[i];
        EXPECT_EQ(j.size(), 9u);
        EXPECT_EQ(j.at("name"), zvhost::rowName(row));
        EXPECT_EQ(j.at("kind"), zvhost::isInformat(row) ? "informat" : "format");
        EXPECT_EQ(j.at("minWidth"), row.minWidth);
        EXPECT_EQ(j.at("maxWidth"), row.maxWidth);
        EXPECT_EQ(j.at("defaultWidth"), row.defaultWidth);
        EXPECT_EQ(j.at("minDecimals"), row.minDecimals);
        EXPECT_EQ(j.at("maxDecimals"), row.maxDecimals);
        EXPECT_EQ(j.at("defaultDecimals"), row.defaultDecimals);
        EXPECT_EQ(j.at("state"), std::string(row.wideEntry ? "ready" : "pending")) << zvhost::rowName(row);
    }
}

} // namespace
