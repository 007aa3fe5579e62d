// Every date, time and week row of the table, through the wide and the byte
// entry, over widths 1 to 60 and decimals 0 to 3: what a host may rely on
// whatever the text is. The status is 0 (YYWEEK rows: -1 outside widths 2 to
// 8), outputLength is the width, nothing is written past outputCapacity, no
// field of the call record changes, and the text is never longer than the
// field. Missing values give their mark in the last place; values outside
// the range give stars.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "zvhost.hpp"

namespace {

enum class Kind { Date, Datetime, Time };

struct RowInfo {
    const char *name;
    Kind kind;
};

// The 57 rows, by the kind of value they take.
const std::vector<RowInfo> &dateRows() {
    static const std::vector<RowInfo> rows = [] {
        std::vector<RowInfo> r;
        for (const char *n : {"NLDATE", "NLDATEL", "NLDATEM", "NLDATEMD", "NLDATEMDL", "NLDATEMDM", "NLDATEMDS",
                              "NLDATEMN", "NLDATES", "NLDATEW", "NLDATEWN", "NLDATEYM", "NLDATEYML", "NLDATEYMM",
                              "NLDATEYMS", "NLDATEYQ", "NLDATEYQL", "NLDATEYQM", "NLDATEYQS", "NLDATEYR",
                              "NLDATEYW", "WEEKU", "WEEKV", "WEEKW", "YYWEEKU", "YYWEEKV", "YYWEEKW"})
            r.push_back({n, Kind::Date});
        for (const char *n : {"NLDATM", "NLDATMAP", "NLDATMDT", "NLDATML", "NLDATMM", "NLDATMMD", "NLDATMMDL",
                              "NLDATMMDM", "NLDATMMDS", "NLDATMMN", "NLDATMS", "NLDATMTM", "NLDATMTZ", "NLDATMW",
                              "NLDATMWN", "NLDATMWZ", "NLDATMYM", "NLDATMYML", "NLDATMYMM", "NLDATMYMS",
                              "NLDATMYQ", "NLDATMYQL", "NLDATMYQM", "NLDATMYQS", "NLDATMYR", "NLDATMYW", "NLDATMZ",
                              "DTWEEKV"})
            r.push_back({n, Kind::Datetime});
        for (const char *n : {"NLTIME", "NLTIMAP"}) r.push_back({n, Kind::Time});
        return r;
    }();
    return rows;
}

bool isYyWeek(const std::string &name) { return name.rfind("YYWEEK", 0) == 0; }

// Values of each kind: range ends, before and after 1960, fractions of a
// second, a year above 9999.
const std::vector<double> &valuesOf(Kind kind) {
    static const std::vector<double> dates = {-138061, -1, 0, 23440, 23438, 2936547, 6589335, 6589335.5};
    static const std::vector<double> datetimes = {-11928470400.0, -1,  0, 23440 * 86400.0 + 50829.25,
                                                  23440 * 86400.0 + 86399.7, 2025.0e6 + 0.999,
                                                  569318630399.5};
    static const std::vector<double> times = {0, 59.75, 43200, 50829.6, 86399.7, 86400, 3 * 86400.0 + 5, -60, -86400};
    return kind == Kind::Date ? dates : kind == Kind::Datetime ? datetimes : times;
}

struct Way {
    zvhost::Entry entry;
    const char *encoding;
};
const Way kWays[] = {{zvhost::Entry::Wide, "UTF-8"},
                     {zvhost::Entry::Byte, "UTF-8"},
                     {zvhost::Entry::Byte, "Shift_JIS"},
                     {zvhost::Entry::Byte, "ISO-8859-1"}};
const char *const kLocales[] = {"en_US", "fr_FR", "ja_JP", "de_CH", "ar_EG", "ru_RU"};

class Rows : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_NE(host.loadModule(), nullptr); }

    const FormatTableRow &row(const char *name) {
        const FormatTableRow *r = zvhost::findRow(host.instance()->formatTable, name);
        EXPECT_NE(r, nullptr) << name;
        static FormatTableRow none{};
        return r ? *r : none;
    }

    // Runs one call and checks what holds for every call; the result for
    // the caller's own checks.
    // `ordinary`: a value in range and not missing, which a YYWEEK row
    // refuses outside widths 2 to 8; the other answers come first.
    zvhost::FormatResult call(const RowInfo &info, const zvhost::CallSpec &spec, double value,
                              bool ordinary = true) {
        const FormatTableRow &r = row(info.name);
        zvhost::FormatResult result = zvhost::runFormat(host, r, spec, value);
        const std::string where = std::string(info.name) + " " + spec.locale + " " + spec.encoding +
                                  (spec.entry == zvhost::Entry::Byte ? " byte" : " wide") + " width " +
                                  std::to_string(spec.width) + " decimals " + std::to_string(spec.decimals) +
                                  " value " + std::to_string(value);
        EXPECT_TRUE(result.error.empty()) << where << ": " << result.error;
        const bool yyOutside = ordinary && isYyWeek(info.name) && (spec.width < 2 || spec.width > 8);
        const size_t written = spec.entry == zvhost::Entry::Wide ? result.wide.size() : result.bytes.size();
        const std::string got = " -> status " + std::to_string(result.status) + ", outputLength " +
                                std::to_string(result.outputLength) + ", [" + result.utf8 + "]";
        EXPECT_EQ(result.status, yyOutside ? -1 : 0) << where << got;
        if (spec.entry == zvhost::Entry::Wide) {
            EXPECT_EQ(result.outputLength, spec.width) << where << got;
        } else {
            // The byte entry cuts a date text at the last whole character
            // that fits and reports the bytes it wrote.
            EXPECT_EQ(size_t(result.outputLength), written) << where << got;
        }
        EXPECT_FALSE(result.overran) << where << got;
        EXPECT_FALSE(result.fieldsChanged) << where << got;
        EXPECT_LE(written, size_t(spec.width)) << where << got;
        if (yyOutside && spec.entry == zvhost::Entry::Wide) {
            EXPECT_EQ(result.utf8, std::string(size_t(spec.width), '*')) << where << got;
        }
        return result;
    }

    zvhost::Host host;
};

TEST_F(Rows, TheTableHasExactlyTheseDateRows) {
    std::set<std::string> inTable;
    for (const FormatTableRow *r : zvhost::tableRows(host.instance()->formatTable)) {
        const std::string n = zvhost::rowName(*r);
        for (const char *prefix : {"NLDAT", "NLTIM", "WEEK", "DTWEEK", "YYWEEK"})
            if (n.rfind(prefix, 0) == 0) inTable.insert(n);
    }
    std::set<std::string> listed;
    for (const RowInfo &info : dateRows()) listed.insert(info.name);
    EXPECT_EQ(listed.size(), 57u);
    EXPECT_EQ(inTable, listed);
    for (const RowInfo &info : dateRows()) {
        const FormatTableRow &r = row(info.name);
        EXPECT_NE(r.wideEntry, nullptr) << info.name;
        EXPECT_NE(r.byteEntry, nullptr) << info.name;
        EXPECT_EQ(r.sourceKind, ZV_KIND_NUMBER) << info.name;
    }
}

// Every width from 1 to 60 and every decimals from 0 to 3, for every row;
// locale, entry, encoding and value turn over with the width so that the
// grid meets each of them in every row.
TEST_F(Rows, EveryWidthAndDecimals) {
    for (const RowInfo &info : dateRows()) {
        const std::vector<double> &values = valuesOf(info.kind);
        for (int width = 1; width <= 60; ++width) {
            for (int decimals = 0; decimals <= 3; ++decimals) {
                const size_t turn = size_t(width * 4 + decimals);
                zvhost::CallSpec spec;
                spec.width = width;
                spec.decimals = decimals;
                spec.locale = kLocales[turn % std::size(kLocales)];
                const Way &way = kWays[(turn / 3) % std::size(kWays)];
                spec.entry = way.entry;
                spec.encoding = way.encoding;
                spec.measureBytes = (turn / 7) % 2 == 1;
                call(info, spec, values[turn % values.size()]);
            }
        }
    }
}

// Each entry and host encoding in each locale, at a few widths.
TEST_F(Rows, EveryEntryInEveryLocale) {
    for (const RowInfo &info : dateRows()) {
        const std::vector<double> &values = valuesOf(info.kind);
        for (const char *locale : kLocales) {
            for (const Way &way : kWays) {
                for (int width : {1, 5, 9, 16, 32, 60}) {
                    zvhost::CallSpec spec;
                    spec.locale = locale;
                    spec.entry = way.entry;
                    spec.encoding = way.encoding;
                    spec.width = width;
                    spec.decimals = 0;
                    call(info, spec, values[size_t(width) % values.size()]);
                }
            }
        }
    }
}

// In en_US every text is ASCII, so the byte entry in UTF-8 and ISO-8859-1
// writes what the wide entry writes, byte for unit.
TEST_F(Rows, ByteEntryWritesTheWideTextInAsciiLocales) {
    for (const RowInfo &info : dateRows()) {
        for (int width : {2, 7, 10, 19, 30, 45}) {
            for (double value : valuesOf(info.kind)) {
                zvhost::CallSpec spec;
                spec.width = width;
                spec.decimals = std::min(3, int(row(info.name).maxDecimals));
                const zvhost::FormatResult wide = call(info, spec, value);
                // A YYWEEK row refuses width 45 with -1; the byte entry then
                // passes the status on without transcoding the stars.
                if (wide.status != 0) continue;
                for (const char *encoding : {"UTF-8", "ISO-8859-1"}) {
                    spec.entry = zvhost::Entry::Byte;
                    spec.encoding = encoding;
                    const zvhost::FormatResult byte = call(info, spec, value);
                    EXPECT_EQ(byte.bytes, wide.utf8) << info.name << " " << encoding << " width " << width;
                }
            }
        }
    }
}

// The mark of a missing value stands in the last place of a blank field,
// with decimals held at 0 whatever the call asks.
TEST_F(Rows, MissingValuesGiveTheirMark) {
    const std::map<char, char> marks = {{'.', '.'}, {'A', 'A'}, {'Z', 'Z'}, {'_', '_'}};
    for (const RowInfo &info : dateRows()) {
        for (auto [mark, shown] : marks) {
            for (int width : {1, 2, 8, 17, 40, 60}) {
                for (const Way &way : kWays) {
                    zvhost::CallSpec spec;
                    spec.width = width;
                    spec.decimals = width % 4;
                    spec.locale = "ja_JP";
                    spec.entry = way.entry;
                    spec.encoding = way.encoding;
                    const zvhost::FormatResult r = call(info, spec, zvhost::missingValue(mark), false);
                    EXPECT_EQ(r.utf8, std::string(size_t(width - 1), ' ') + shown)
                        << info.name << " mark " << mark << " width " << width;
                }
            }
        }
    }
}

// Values outside the range of their kind give stars. Time rows fold any
// value into a day and have no range of their own.
TEST_F(Rows, ValuesOutsideTheRangeGiveStars) {
    const std::vector<double> dates = {-138061.5, -138062, 6589336, 6589336.5, 1e300, -1e300};
    const std::vector<double> datetimes = {-11928470400.5, 569318630400.0, 1e300, -1e300};
    for (const RowInfo &info : dateRows()) {
        if (info.kind == Kind::Time) continue;
        for (double value : info.kind == Kind::Date ? dates : datetimes) {
            for (int width : {1, 4, 8, 11, 30, 60}) {
                // DTWEEKV from width 12 on writes the week text's stars, then
                // the time of day behind them.
                if (std::string(info.name) == "DTWEEKV" && width >= 12) continue;
                for (const Way &way : kWays) {
                    zvhost::CallSpec spec;
                    spec.width = width;
                    spec.decimals = 0;
                    spec.entry = way.entry;
                    spec.encoding = way.encoding;
                    const zvhost::FormatResult r = call(info, spec, value, false);
                    EXPECT_EQ(r.utf8, std::string(size_t(width), '*'))
                        << info.name << " value " << value << " width " << width;
                }
            }
        }
    }
}

// A default-ignorable character that the host encoding lacks (U+200F in
// ISO-8859-1) is one the transcoder can't show: ar_EG's item 29 holds
// "&#8207;" for it, so the pattern is too long at width 14 and the numeric
// form fills the whole width (ICU's converters would drop the mark silently
// and leave the byte text two bytes short).
TEST_F(Rows, ByteEntryFillsTheWidthWhenTheEncodingLacksAMark) {
    zvhost::CallSpec spec;
    spec.locale = "ar_EG";
    spec.encoding = "ISO-8859-1";
    spec.entry = zvhost::Entry::Byte;
    spec.width = 14;
    const zvhost::FormatResult r = call({"NLDATE", Kind::Date}, spec, 0);
    EXPECT_EQ(r.outputLength, 14);
    EXPECT_EQ(r.bytes, "01/01/1960    ");
}

// DTWEEKV splits a datetime before its day is tested: at width 18 a day out
// of range shows the week text's nine stars, a colon and the time of day.
// WEEKV gives its stars before it builds a locale block, so the time must
// not depend on one: a fresh record still shows the clock.
TEST_F(Rows, DatetimeWeekOutsideTheRangeKeepsItsTime) {
    zvhost::CallSpec spec;
    spec.width = 18;
    const RowInfo info{"DTWEEKV", Kind::Datetime};
    EXPECT_EQ(call(info, spec, 569318630400.0 + 50829, false).utf8, "*********:14:07:09");
    EXPECT_EQ(call(info, spec, -11928470400.0 - 60, false).utf8, "*********:23:59:00");
    spec.width = 20;
    EXPECT_EQ(call(info, spec, 569318630400.0, false).utf8, "***********:00:00:00");
}

} // namespace

namespace {

// The clock text with more places of a second than its 40-unit work area
// holds: secondsText in src/datefmt/clock.cpp gives the host's formatNumber
// the field width (43 units for 40 places) as the capacity of a 40-unit
// stack buffer. Without bit 0 of flags nothing limits decimals, so a host
// call of NLTIMAP at width 140 with 40 decimals writes past that buffer
// (found by fuzz_dates; AddressSanitizer reports a stack-buffer-overflow).
// Run under the asan preset to see it.
TEST_F(Rows, ClockTextWithManyDecimalsStaysInItsWorkArea) {
    for (const char *name : {"NLTIMAP", "NLTIME"}) {
        zvhost::CallSpec spec;
        spec.width = 140;
        spec.decimals = 40;
        const zvhost::FormatResult r = call({name, Kind::Time}, spec, 50829.6);
        EXPECT_EQ(r.status, 0) << name;
    }
}

} // namespace
