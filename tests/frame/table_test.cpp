// The published table, by the rules it follows: two runs in order of name,
// names blank-filled to 32 units, kinds and entries by the kind of row, the
// limits' relations, the joined informats, the closing row.
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <tuple>

#include "frame/table.hpp"
#include "zvhost.hpp"

namespace {

std::string nameOf(const FormatTableRow &r) { return zvhost::rowName(r); }
bool perCurrency(const std::string &n) {
    const std::string s = n[0] == '@' ? n.substr(1) : n;
    return (s.rfind("NLMNI", 0) == 0 || s.rfind("NLMNL", 0) == 0) && s.size() == 8;
}

TEST(FormatTable, TwoRunsInOrderOfName) {
    const FormatTableRow *t = zv::formatTable();
    // Where the published order departs from the order of names.
    const std::set<std::pair<std::string, std::string>> departures = {{"@NLTIME", "@NLSTRMON"},
                                                                       {"WEEKV", "DTWEEKV"}};
    int informats = 0;
    while (informats < 247 && nameOf(t[informats])[0] == '@') ++informats;
    EXPECT_EQ(informats, 97);
    for (int i = 0; i + 1 < 247; ++i) {
        const std::string a = nameOf(t[i]), b = nameOf(t[i + 1]);
        if (i + 1 == informats) continue;
        EXPECT_TRUE(a < b || departures.count({a, b})) << a << " before " << b;
    }
    EXPECT_EQ(nameOf(t[246]), "YYWEEKW");
    // The per-currency families hold the same 40 codes in the same order.
    std::map<std::string, std::string> codes;
    for (int i = 0; i < 247; ++i) {
        const std::string n = nameOf(t[i]);
        if (perCurrency(n)) codes[n.substr(0, n.size() - 3)] += n.substr(n.size() - 3);
    }
    ASSERT_EQ(codes.size(), 4u);
    for (auto &[family, list] : codes) {
        EXPECT_EQ(list.size(), 120u) << family;
        EXPECT_EQ(list, codes["NLMNI"]) << family;
    }
}

TEST(FormatTable, RowsFollowTheirKind) {
    const FormatTableRow *t = zv::formatTable();
    std::map<ZvWideEntry, std::set<std::string>> users;
    std::set<ZvByteEntry> byteEntries;
    for (int i = 0; i < 247; ++i) {
        const FormatTableRow &r = t[i];
        const std::string n = nameOf(r);
        const bool informat = n[0] == '@';
        for (size_t k = 0; k < 32; ++k) {
            const char16_t c = r.name[k];
            EXPECT_TRUE(k < n.size() ? (c >= u'A' && c <= u'Z') || (k == 0 && c == u'@') : c == u' ')
                << n << " unit " << k;
        }
        EXPECT_EQ(r.sourceKind, informat ? 2u : 1u) << n;
        EXPECT_EQ(r.producedKind, informat ? 1u : 2u) << n;
        ASSERT_NE(r.wideEntry, nullptr) << n;
        users[r.wideEntry].insert(n);
        EXPECT_EQ(r.byteEntry == nullptr, informat) << n;
        if (r.byteEntry) byteEntries.insert(r.byteEntry);
        EXPECT_LE(r.minWidth, r.defaultWidth) << n;
        EXPECT_LE(r.defaultWidth, r.maxWidth) << n;
        EXPECT_TRUE(r.maxWidth == 8 || r.maxWidth == 32 || r.maxWidth == 200) << n;
        EXPECT_TRUE(r.maxDecimals == 0 || r.maxDecimals == 3 || r.maxDecimals == 28 || r.maxDecimals == 31) << n;
        EXPECT_EQ(r.minDecimals, 0u) << n;
        EXPECT_EQ(r.defaultDecimals, perCurrency(n) ? 2u : 0u) << n;
        if (perCurrency(n)) {
            EXPECT_EQ(std::tuple(r.minWidth, r.maxWidth, r.defaultWidth, r.maxDecimals), std::tuple(8u, 32u, 12u, 28u))
                << n;
        }
        if (informat) { EXPECT_EQ(r.lastWord, 0u) << n; }
        EXPECT_EQ(r.reserved104 + r.reserved124, 0u) << n;
    }
    EXPECT_EQ(byteEntries.size(), 150u);
    // Joined informats share a routine; every other routine serves one row.
    const std::set<std::set<std::string>> joined = {
        {"@NLDATE", "@NLDATEW"}, {"@NLDATM", "@NLDATMAP", "@NLDATMW"}, {"@NLTIMAP", "@NLTIME"}};
    for (auto &[entry, names] : users)
        if (names.size() > 1) { EXPECT_TRUE(joined.count(names)) << ::testing::PrintToString(names); }
    EXPECT_EQ(users.size(), 247u - 4);
}

TEST(FormatTable, ClosingRowIsBlank) {
    const FormatTableRow &r = zv::formatTable()[247];
    for (ZvChar c : r.name) { EXPECT_EQ(c, u' '); }
    EXPECT_EQ(r.wideEntry, nullptr);
    EXPECT_EQ(r.byteEntry, nullptr);
    EXPECT_EQ(std::tuple(r.sourceKind, r.producedKind, r.minWidth, r.maxWidth, r.defaultWidth),
              std::tuple(1u, 2u, 2u, 8u, 7u));
    EXPECT_EQ(r.minDecimals + r.maxDecimals + r.defaultDecimals + r.lastWord + r.reserved104 + r.reserved124, 0u);
}

} // namespace
