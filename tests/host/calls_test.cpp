// Values, rows and calls of the reference host: VALUE texts, missing values,
// the table walk, loading the module and running rows through both entries.
#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <random>

#include "zvhost.hpp"

namespace {

uint64_t bitsOf(double v) { return std::bit_cast<uint64_t>(v); }

struct ValueCase {
    const char *text;
    std::optional<double> value;
};

class Values : public ::testing::TestWithParam<ValueCase> {};

TEST_P(Values, ParseAsTheToolReadsThem) {
    const ValueCase &c = GetParam();
    const std::optional<double> got = zvhost::parseValue(c.text);
    ASSERT_EQ(got.has_value(), c.value.has_value()) << c.text;
    if (got) {
        EXPECT_EQ(bitsOf(*got), bitsOf(*c.value)) << c.text << " gave " << *got;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Table, Values,
    ::testing::Values(ValueCase{"1960-01-01", 0.0}, ValueCase{"2024-03-05", 23440.0}, ValueCase{"1959-12-31", -1.0},
                      ValueCase{"2000-02-29", 14669.0}, ValueCase{"1582-10-15", -137774.0},
                      ValueCase{"0001-01-01", -715509.0}, ValueCase{"2024-03-05T14:07:09.5", 23440.0 * 86400 + 50829.5},
                      ValueCase{"2024-03-05T14:07", 23440.0 * 86400 + 50820}, ValueCase{"1960-01-01T00:00:00", 0.0},
                      ValueCase{"1959-12-31T23:59:59", -1.0}, ValueCase{"12", 12.0}, ValueCase{"+12", 12.0},
                      ValueCase{"-3.5", -3.5}, ValueCase{"1e6", 1e6}, ValueCase{".5", 0.5},
                      ValueCase{".", std::bit_cast<double>(0xFFFFD10000000000ull)},
                      ValueCase{".A", std::bit_cast<double>(0xFFFFBE0000000000ull)},
                      ValueCase{".Z", std::bit_cast<double>(0xFFFFA50000000000ull)},
                      ValueCase{"._", std::bit_cast<double>(0xFFFFD20000000000ull)}, ValueCase{"", std::nullopt},
                      ValueCase{"2023-02-29", std::nullopt}, ValueCase{"2024-13-01", std::nullopt},
                      ValueCase{"2024-00-10", std::nullopt}, ValueCase{"2024-3-5", std::nullopt},
                      ValueCase{"2024-03-05T24:00", std::nullopt}, ValueCase{"2024-03-05T12:60", std::nullopt},
                      ValueCase{"2024-03-05T12:00:", std::nullopt}, ValueCase{"2024-03-05T12:00:00.", std::nullopt},
                      ValueCase{"2024-03-05 12:00", std::nullopt}, ValueCase{"abc", std::nullopt},
                      ValueCase{"12abc", std::nullopt}, ValueCase{"++1", std::nullopt}, ValueCase{"inf", std::nullopt},
                      ValueCase{"nan", std::nullopt}, ValueCase{"1e999", std::nullopt}, ValueCase{".1A", std::nullopt},
                      ValueCase{"..", std::nullopt}, ValueCase{".!", std::nullopt}));

// Day counts against a second algorithm: count days one by one from 1960.
TEST(Values, DayCountsAgreeWithCountingDays) {
    auto leap = [](int y) { return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0; };
    const int monthDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    int64_t count = 0;
    for (int y = 1960; y < 2100; ++y)
        for (int m = 1; m <= 12; ++m)
            for (int d = 1; d <= monthDays[m - 1] + (m == 2 && leap(y)); ++d) {
                char text[48];
                std::snprintf(text, sizeof text, "%04d-%02d-%02d", y, m, d);
                const auto v = zvhost::parseValue(text);
                ASSERT_TRUE(v) << text;
                ASSERT_EQ(*v, double(count)) << text;
                ++count;
            }
    count = 0;
    for (int y = 1959; y >= 1700; --y)
        for (int m = 12; m >= 1; --m)
            for (int d = monthDays[m - 1] + (m == 2 && leap(y)); d >= 1; --d) {
                --count;
                char text[48];
                std::snprintf(text, sizeof text, "%04d-%02d-%02d", y, m, d);
                ASSERT_EQ(*zvhost::parseValue(text), double(count)) << text;
            }
}

TEST(Missing, MarksRoundTrip) {
    EXPECT_EQ(bitsOf(zvhost::missingValue('.')), 0xFFFFD10000000000ull);
    EXPECT_EQ(bitsOf(zvhost::missingValue('A')), 0xFFFFBE0000000000ull);
    EXPECT_EQ(bitsOf(zvhost::missingValue('_')), 0xFFFFD20000000000ull);
    const std::string marks = "._ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    for (char m : marks) {
        const double v = zvhost::missingValue(m);
        EXPECT_EQ(bitsOf(v) >> 48, 0xFFFFu);
        EXPECT_EQ(bitsOf(v) & 0xFFFFFFFFFFull, 0u) << m;
        EXPECT_EQ(zvhost::missingMark(v), m);
        const std::string text = m == '.' ? "." : std::string(".") + m;
        EXPECT_EQ(bitsOf(*zvhost::parseValue(text)), bitsOf(v)) << text;
    }
    // Other bytes read as the plain mark; numbers are not missing.
    EXPECT_EQ(zvhost::missingMark(std::bit_cast<double>(0xFFFF410000000000ull)), '.');
    EXPECT_EQ(zvhost::missingMark(std::bit_cast<double>(0xFFFFA00000000000ull)), '.'); // ~'_' is not a mark
    EXPECT_EQ(zvhost::missingMark(std::bit_cast<double>(0xFFFFD1000000ABCDull)), '.');
    for (double v : {0.0, -1.0, 1e300, std::bit_cast<double>(0xFFF8000000000000ull)})
        EXPECT_EQ(zvhost::missingMark(v), 0) << v;
    EXPECT_EQ(bitsOf(zvhost::missingValue('?')), 0xFFFFD10000000000ull);
}

TEST(Text, Utf8AndUtf16RoundTrip) {
    const std::string samples[] = {"", "abc", "M\xC3\xA4rz", "\xE2\x82\xAC 5", "\xF0\x9F\x98\x80", "2024\xE5\xB9\xB4"};
    for (const std::string &s : samples) EXPECT_EQ(zvhost::utf8(zvhost::utf16(s)), s);
    EXPECT_EQ(zvhost::utf16("M\xC3\xA4rz"), u"M\u00E4rz");
    EXPECT_EQ(zvhost::utf16("\xF0\x9F\x98\x80"), u"\U0001F600");
    EXPECT_EQ(zvhost::utf16("a\xFF" "b"), u"a\uFFFDb"); // bad bytes show as the replacement character
}

// A table of three rows and the closing blank row, made here.
struct Table {
    FormatTableRow rows[4];
    static void name(FormatTableRow &r, const char *n) {
        for (int i = 0; i < 32; ++i) r.name[i] = u' ';
        for (int i = 0; n[i]; ++i) r.name[i] = char16_t(n[i]);
    }
    Table() {
        std::memset(rows, 0, sizeof rows);
        name(rows[0], "@NLDATE");
        rows[0].sourceKind = ZV_KIND_TEXT;
        name(rows[1], "NLDATE");
        name(rows[2], "NLDATEYMS");
        rows[2].sourceKind = ZV_KIND_NUMBER;
        name(rows[3], "");
    }
};

TEST(Rows, FindByWholeNameWithoutCase) {
    Table t;
    EXPECT_EQ(zvhost::findRow(t.rows, "NLDATE"), &t.rows[1]);
    EXPECT_EQ(zvhost::findRow(t.rows, "nldate"), &t.rows[1]);
    EXPECT_EQ(zvhost::findRow(t.rows, "@nlDate"), &t.rows[0]);
    EXPECT_EQ(zvhost::findRow(t.rows, "NLDATEYMS"), &t.rows[2]);
    EXPECT_EQ(zvhost::findRow(t.rows, "NLDATEY"), nullptr); // a prefix is not a name
    EXPECT_EQ(zvhost::findRow(t.rows, "NLDAT"), nullptr);
    EXPECT_EQ(zvhost::findRow(t.rows, ""), nullptr);
    EXPECT_EQ(zvhost::findRow(t.rows, std::string(40, 'A')), nullptr);
    EXPECT_EQ(zvhost::findRow(nullptr, "NLDATE"), nullptr);
    EXPECT_EQ(zvhost::rowName(t.rows[2]), "NLDATEYMS");
    EXPECT_EQ(zvhost::tableRows(t.rows).size(), 3u);
    EXPECT_TRUE(zvhost::isInformat(t.rows[0]));
    EXPECT_FALSE(zvhost::isInformat(t.rows[1]));
}

// ---- with the module

class Module : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_NE(host.loadModule(), nullptr); }
    const FormatTableRow &row(const char *name) {
        const FormatTableRow *r = zvhost::findRow(host.instance()->formatTable, name);
        EXPECT_NE(r, nullptr) << name;
        return *r;
    }
    zvhost::Host host;
};

TEST(Load, InstanceJoinsAndLeavesTheList) {
    zvhost::Host host;
    ExtensionInstance *in = host.loadModule();
    ASSERT_NE(in, nullptr);
    EXPECT_EQ(host.loadModule(), in) << "loading twice keeps the one instance";
    EXPECT_EQ(std::memcmp(in->extensionName, "zvlocfmt", 8), 0);
    ExtensionInstance **list = host.services()->extensionList;
    EXPECT_EQ(list[0], in);
    EXPECT_EQ(list[1], nullptr);
    EXPECT_EQ(in->anchor, host.anchor());
    EXPECT_EQ(host.counters().poolsCreated, 1);
    EXPECT_EQ(host.counters().transcodersCreated, 2);
    EXPECT_EQ(host.counters().localesOpened, 1);
    host.unloadModule();
    EXPECT_EQ(host.instance(), nullptr);
    EXPECT_EQ(host.services()->extensionList[0], nullptr);
    EXPECT_EQ(host.counters().poolsDestroyed, 1);
    EXPECT_EQ(host.counters().transcodersReleased, 2);
    EXPECT_EQ(host.counters().localesReleased, 1);
    ASSERT_EQ(host.createdPools().size(), 1u);
    EXPECT_TRUE(host.createdPools()[0]->destroyed());
    EXPECT_EQ(host.createdPools()[0]->stats().freedByDestroy, 1) << "only the instance was left for poolDestroy";
    EXPECT_TRUE(host.errorJournalRecord().lines.empty());
    // And again.
    ASSERT_NE(host.loadModule(), nullptr);
    EXPECT_EQ(host.services()->extensionList[1], nullptr);
}

TEST(Load, FailedBuildReportsAndLeavesNothing) {
    zvhost::Host host;
    host.faults().failCreatePool = 1;
    EXPECT_EQ(host.loadModule(), nullptr);
    EXPECT_EQ(host.services()->extensionList[0], nullptr);
    ASSERT_EQ(host.errorJournalRecord().lines.size(), 1u);
    EXPECT_EQ(host.errorJournalRecord().lines[0].level, 4);
    EXPECT_EQ(host.errorJournalRecord().lines[0].status, ZV_NO_MEMORY);
}

TEST_F(Module, WideAndByteEntriesAgreeInUtf8) {
    zvhost::CallSpec spec;
    spec.width = 20;
    const zvhost::FormatResult wide = zvhost::runFormat(host, row("NLDATE"), spec, 23440);
    ASSERT_TRUE(wide.error.empty()) << wide.error;
    EXPECT_EQ(wide.status, 0);
    EXPECT_EQ(wide.utf8, "March 5, 2024       ");
    EXPECT_EQ(wide.outputLength, 20);
    EXPECT_FALSE(wide.overran);
    EXPECT_FALSE(wide.fieldsChanged);
    spec.entry = zvhost::Entry::Byte;
    const zvhost::FormatResult bytes = zvhost::runFormat(host, row("NLDATE"), spec, 23440);
    EXPECT_EQ(bytes.status, 0);
    EXPECT_EQ(bytes.bytes, "March 5, 2024       ");
    EXPECT_EQ(bytes.utf8, wide.utf8);
    EXPECT_EQ(bytes.wide, wide.wide);
    // Nothing the calls took from formatPool stays behind.
    EXPECT_EQ(host.formatPool().stats().liveBlocks, 0);
    EXPECT_GT(host.formatPool().stats().allocations, 0);
}

struct EncodedCase {
    const char *locale;
    const char *encoding;
    const char *row;
    double value;
    int width;
};

class Encoded : public Module, public ::testing::WithParamInterface<EncodedCase> {};

// The byte entry in other encodings gives the same text as the wide entry,
// read back through ICU.
TEST_P(Encoded, ByteTextDecodesToTheWideText) {
    const EncodedCase &c = GetParam();
    zvhost::CallSpec spec;
    spec.locale = c.locale;
    spec.encoding = c.encoding;
    spec.width = c.width;
    const zvhost::FormatResult wide = zvhost::runFormat(host, row(c.row), spec, c.value);
    spec.entry = zvhost::Entry::Byte;
    const zvhost::FormatResult bytes = zvhost::runFormat(host, row(c.row), spec, c.value);
    ASSERT_TRUE(wide.error.empty() && bytes.error.empty()) << wide.error << bytes.error;
    EXPECT_EQ(bytes.status, 0);
    EXPECT_FALSE(bytes.overran);
    EXPECT_FALSE(bytes.fieldsChanged);
    // The wide text, trimmed of the blanks the byte field may not have room for.
    std::u16string w = wide.wide;
    while (!w.empty() && w.back() == u' ') w.pop_back();
    std::u16string b = bytes.wide;
    while (!b.empty() && b.back() == u' ') b.pop_back();
    EXPECT_EQ(b, w) << c.row << " " << c.locale << " " << c.encoding;
    EXPECT_LE(bytes.bytes.size(), size_t(c.width));
}

INSTANTIATE_TEST_SUITE_P(Table, Encoded,
                         ::testing::Values(EncodedCase{"de_DE", "ISO-8859-1", "NLDATE", 23440, 20},
                                           EncodedCase{"de_DE", "UTF-8", "NLDATE", 23440, 20},
                                           EncodedCase{"ja_JP", "Shift_JIS", "NLDATE", 23440, 30},
                                           EncodedCase{"zh_CN", "GB18030", "NLDATE", 23440, 30},
                                           EncodedCase{"fr_FR", "windows-1252", "NLDATEW", 23440, 40},
                                           EncodedCase{"en_US", "US-ASCII", "NLDATE", 23440, 20}));

TEST_F(Module, CallsThatCannotBeMadeSayWhy) {
    zvhost::CallSpec spec;
    spec.locale = "no_such_LOCALE_anywhere";
    EXPECT_EQ(zvhost::runFormat(host, row("NLDATE"), spec, 0).error, "unknown locale no_such_LOCALE_anywhere");
    spec = {};
    spec.encoding = "EBCDIC-9000";
    EXPECT_EQ(zvhost::runFormat(host, row("NLDATE"), spec, 0).error, "unknown encoding EBCDIC-9000");
    FormatTableRow empty = row("NLDATE");
    empty.wideEntry = nullptr;
    EXPECT_EQ(zvhost::runFormat(host, empty, {}, 0).error, "row NLDATE is not built yet");
    EXPECT_EQ(zvhost::runInformat(host, row("@NLDATE"), {}, "x").error.empty(), row("@NLDATE").wideEntry != nullptr);
    zvhost::Host bare;
    EXPECT_EQ(zvhost::runFormat(bare, row("NLDATE"), {}, 0).error, "the module is not loaded");
}

TEST_F(Module, DefaultsComeFromTheRow) {
    const FormatTableRow &r = row("NLDATE");
    const zvhost::FormatResult res = zvhost::runFormat(host, r, {}, 23440);
    EXPECT_EQ(res.outputLength, int32_t(r.defaultWidth));
    EXPECT_EQ(res.wide.size(), size_t(r.defaultWidth));
    // A capacity below the width: the result is held to it and nothing spills.
    zvhost::CallSpec spec;
    spec.width = 20;
    spec.outputCapacity = 8;
    const zvhost::FormatResult small = zvhost::runFormat(host, r, spec, 23440);
    EXPECT_LE(small.wide.size(), 8u);
    EXPECT_FALSE(small.overran);
}

TEST_F(Module, MissingValuesShowTheirMark) {
    zvhost::CallSpec spec;
    spec.width = 10;
    for (char m : std::string("._AZ")) {
        const zvhost::FormatResult r = zvhost::runFormat(host, row("NLDATE"), spec, zvhost::missingValue(m));
        EXPECT_EQ(r.status, 0);
        EXPECT_EQ(r.utf8, std::string(9, ' ') + m);
    }
}

TEST_F(Module, InformatWritesItsDouble) {
    const FormatTableRow &r = row("@NLDATE");
    if (!r.wideEntry) GTEST_SKIP() << "@NLDATE is not built yet";
    const zvhost::ReadResult res = zvhost::runInformat(host, r, {}, "March 5, 2024");
    EXPECT_EQ(res.status, 0);
    EXPECT_FALSE(res.untouched);
    EXPECT_EQ(res.value, 23440.0);
    EXPECT_FALSE(res.fieldsChanged);
}

} // namespace

// ISO dates count days by the module's calendar, where 4000 and 8000 have no
// 29 February.
TEST(ParseValueCalendar, YearsThat4000DividesHaveNoLeapDay) {
    EXPECT_EQ(zvhost::parseValue("3999-12-31"), 745094.0);
    EXPECT_EQ(zvhost::parseValue("4000-02-28"), 745153.0);
    EXPECT_FALSE(zvhost::parseValue("4000-02-29").has_value());
    EXPECT_EQ(zvhost::parseValue("4000-03-01"), 745154.0);
    EXPECT_EQ(zvhost::parseValue("9999-12-31"), 2936547.0);
}
