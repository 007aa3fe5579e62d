// NLSTRMON, NLSTRQTR and NLSTRWK over a locale whose names the test sets.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "zvhost.hpp"

namespace {

std::map<int, std::string> names() {
    std::map<int, std::string> items;
    const char *longMonths[12] = {"January", "February", "M<U00E4>rz", "April", "May", "June",
                                  "July", "August", "September", "October", "November", "December"};
    const char *shortMonths[12] = {"Jan", "Feb", "M<U00E4>r", "Apr", "May", "Jun",
                                   "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    for (int m = 0; m < 12; ++m) {
        items[95 + m] = longMonths[m];
        items[83 + m] = shortMonths[m];
        items[71 + m] = std::string("plain ") + longMonths[m]; // the formatting lists are not used
        items[59 + m] = "x";
    }
    const char *longDays[7] = {"Sonntag", "Montag", "Dienstag", "Mittwoch", "Donnerstag", "Freitag", "Samstag"};
    const char *shortDays[7] = {"So", "Mo", "Di", "Mi", "Do", "Fr", "Sa"};
    for (int d = 0; d < 7; ++d) {
        items[128 + d] = longDays[d];
        items[121 + d] = shortDays[d];
    }
    const char *longQuarters[4] = {"1. Quartal", "2. Quartal", "3. Quartal", "4. Quartal"};
    for (int q = 0; q < 4; ++q) {
        items[147 + q] = longQuarters[q];
        items[143 + q] = "Q" + std::to_string(q + 1);
    }
    return items;
}

struct NameCase {
    const char *row;
    double value;
    int32_t width, decimals;
    std::string expected; // UTF-8, the whole field
    int32_t status = 0;
};

class Names : public ::testing::TestWithParam<NameCase> {
protected:
    void SetUp() override { ASSERT_NE(host.loadModule(), nullptr); }
    zvhost::Host host;
};

TEST_P(Names, WriteTheLocaleName) {
    const NameCase &k = GetParam();
    zvhost::CallSpec spec;
    spec.items = names();
    spec.width = k.width;
    spec.decimals = k.decimals;
    // In UTF-8 a non-ASCII name takes more bytes than characters; the byte
    // entry's overflow is tested apart.
    bool ascii = true;
    for (char c : k.expected) ascii = ascii && static_cast<unsigned char>(c) < 0x80;
    for (zvhost::Entry entry : {zvhost::Entry::Wide, zvhost::Entry::Byte}) {
        if (entry == zvhost::Entry::Byte && !ascii) continue;
        spec.entry = entry;
        const FormatTableRow *row = zvhost::findRow(host.instance()->formatTable, k.row);
        ASSERT_NE(row, nullptr);
        zvhost::FormatResult r = zvhost::runFormat(host, *row, spec, k.value);
        ASSERT_TRUE(r.error.empty()) << r.error;
        EXPECT_EQ(r.status, k.status) << k.row << " " << k.value;
        EXPECT_EQ(r.utf8, k.expected) << k.row << " " << k.value << " decimals " << k.decimals;
        EXPECT_FALSE(r.overran);
        EXPECT_FALSE(r.fieldsChanged);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Names, Names,
    ::testing::Values(
        NameCase{"NLSTRMON", 1, 10, 0, "January   "},
        NameCase{"NLSTRMON", 1, 10, 1, "Jan       "},
        NameCase{"NLSTRMON", 1, 10, 2, "JANUARY   "},
        NameCase{"NLSTRMON", 1, 10, 3, "JAN       "},
        NameCase{"NLSTRMON", 3, 6, 0, "M\xc3\xa4rz  "},
        NameCase{"NLSTRMON", 3, 6, 3, "M\xc3\x84R   "},
        NameCase{"NLSTRMON", 2.9, 9, 0, "February "},
        NameCase{"NLSTRMON", 12.0, 8, 0, "December"},
        NameCase{"NLSTRMON", 12.5, 8, 0, "        "},
        NameCase{"NLSTRMON", 13, 5, 3, "     "},
        NameCase{"NLSTRMON", 0, 5, 1, "     "},
        NameCase{"NLSTRMON", 0.99, 5, 2, "     "},
        NameCase{"NLSTRMON", -4, 3, 0, "   "},
        // A name of exactly the width fills it; one more character gives stars.
        NameCase{"NLSTRMON", 9, 9, 0, "September"},
        NameCase{"NLSTRMON", 9, 8, 0, "********"},
        NameCase{"NLSTRMON", 9, 8, 1, "Sep     "},
        NameCase{"NLSTRQTR", 4, 10, 0, "4. Quartal"},
        NameCase{"NLSTRQTR", 4, 3, 1, "Q4 "},
        NameCase{"NLSTRQTR", 5, 4, 0, "    "},
        NameCase{"NLSTRQTR", 1, 12, 2, "1. QUARTAL  "},
        NameCase{"NLSTRWK", 1, 8, 0, "Sonntag "},
        NameCase{"NLSTRWK", 7, 3, 3, "SA "},
        NameCase{"NLSTRWK", 8, 3, 3, "   "}));

TEST(NamesMissing, MarkStandsInTheLastPlaceWhateverDecimals) {
    zvhost::Host host;
    ASSERT_NE(host.loadModule(), nullptr);
    const FormatTableRow *row = zvhost::findRow(host.instance()->formatTable, "NLSTRMON");
    for (int d = 0; d <= 3; ++d) {
        zvhost::CallSpec spec;
        spec.items = names();
        spec.width = 6;
        spec.decimals = d;
        EXPECT_EQ(zvhost::runFormat(host, *row, spec, zvhost::missingValue('.')).utf8, "     .") << d;
        EXPECT_EQ(zvhost::runFormat(host, *row, spec, zvhost::missingValue('K')).utf8, "     K") << d;
    }
}

struct LimitCase {
    int32_t width, decimals, status;
};

TEST(NamesLimits, CheckedOnlyWhenAsked) {
    zvhost::Host host;
    ASSERT_NE(host.loadModule(), nullptr);
    for (const char *name : {"NLSTRMON", "NLSTRQTR", "NLSTRWK"}) {
        const FormatTableRow *row = zvhost::findRow(host.instance()->formatTable, name);
        for (LimitCase l : {LimitCase{0, 0, 2}, LimitCase{201, 0, 3}, LimitCase{5, -2, 4},
                            LimitCase{5, 4, 5}, LimitCase{1, 3, 0}, LimitCase{200, 0, 0}}) {
            zvhost::CallSpec spec;
            spec.items = names();
            spec.width = l.width;
            spec.decimals = l.decimals;
            spec.outputCapacity = 210;
            spec.validate = true;
            zvhost::FormatResult r = zvhost::runFormat(host, *row, spec, 1);
            EXPECT_EQ(r.status, l.status) << name << " " << l.width << "." << l.decimals;
        }
    }
}

TEST(NamesMeasure, ANameTooWideInBytesGivesStars) {
    zvhost::Host host;
    ASSERT_NE(host.loadModule(), nullptr);
    const FormatTableRow *row = zvhost::findRow(host.instance()->formatTable, "NLSTRMON");
    zvhost::CallSpec spec;
    spec.items = names();
    spec.width = 4; // März is 4 characters but 5 bytes in UTF-8
    spec.measureBytes = true;
    EXPECT_EQ(zvhost::runFormat(host, *row, spec, 3).utf8, "****");
    spec.encoding = "ISO-8859-1";
    EXPECT_EQ(zvhost::runFormat(host, *row, spec, 3).utf8, "M\xc3\xa4rz");
    spec.measureBytes = false;
    spec.encoding = "UTF-8";
    EXPECT_EQ(zvhost::runFormat(host, *row, spec, 3).utf8, "M\xc3\xa4rz");
}

TEST(NamesByteEntry, OverflowInUtf8KeepsTheTextCutWithTheRightMark) {
    zvhost::Host host;
    ASSERT_NE(host.loadModule(), nullptr);
    const FormatTableRow *row = zvhost::findRow(host.instance()->formatTable, "NLSTRMON");
    zvhost::CallSpec spec;
    spec.items = names();
    spec.width = 6;
    spec.entry = zvhost::Entry::Byte;
    // "März  " is 7 bytes in UTF-8: no leading blanks, so the overflow reaches the host.
    zvhost::FormatResult r = zvhost::runFormat(host, *row, spec, 3);
    EXPECT_EQ(r.status, ZV_TARGET_TOO_SMALL);
    EXPECT_EQ(r.bytes, "M\xc3\xa4rz ");
    spec.encoding = "windows-1252";
    r = zvhost::runFormat(host, *row, spec, 3);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.bytes, "M\xe4rz  ");
    EXPECT_EQ(r.utf8, "M\xc3\xa4rz  ");
}

} // namespace
