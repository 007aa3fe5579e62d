// Columns against single calls: the same rows, locales and values through
// runFormat/runInformat and through one column record give the same texts,
// statuses and doubles.
#include <gtest/gtest.h>

#include <bit>
#include <random>

#include "zvhost.hpp"

extern "C" int columnRoundTripFromC(void);

namespace {

struct ColumnCase {
    const char *format, *informat, *locale, *encoding;
    double low, high; // random values in [low, high), whole when high - low > 1e5
};

const ColumnCase kCases[] = {
    {"NLDATE", "@NLDATE", "fr_FR", "UTF-8", -40000, 60000},
    {"NLDATM", "@NLDATM", "de_DE", "UTF-8", -2e9, 4e9},
    {"NLNUM", "@NLNUM", "de_CH", "UTF-8", -1e7, 1e7},
    {"NLMNY", "@NLMNY", "ja_JP", "Shift_JIS", -1e6, 1e6},
    {"NLMNIEUR", "@NLMNIEUR", "fr_FR", "windows-1252", -1e6, 1e6},
    {"NLMNLUSD", "@NLMNLUSD", "en_US", "UTF-8", -1e5, 1e5},
    {"NLPCT", "@NLPCT", "tr_TR", "UTF-8", -10, 10},
};

std::vector<double> randomValues(const ColumnCase &c, unsigned seed) {
    std::mt19937_64 rng(seed);
    std::uniform_real_distribution<double> dist(c.low, c.high);
    std::vector<double> values{zvhost::missingValue('.'), zvhost::missingValue('Q'), 0.0};
    for (int i = 0; i < 40; ++i) values.push_back(c.high - c.low > 1e5 ? std::floor(dist(rng)) : dist(rng));
    return values;
}

zvhost::CallSpec specOf(const ColumnCase &c, bool byte) {
    zvhost::CallSpec spec;
    spec.locale = c.locale;
    spec.encoding = c.encoding;
    spec.entry = byte ? zvhost::Entry::Byte : zvhost::Entry::Wide;
    return spec;
}

struct Formatted {
    std::string bytes;
    std::vector<int64_t> offsets;
    std::vector<int32_t> statuses;
};

Formatted formatted(zvhost::Host &host, const ColumnCase &c, bool byte, const std::vector<double> &values) {
    Formatted f;
    EXPECT_EQ(zvhost::formatColumn(host, c.format, specOf(c, byte), values.data(), values.size(), f.bytes, f.offsets,
                                   f.statuses), "");
    return f;
}

class Column : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(host.loadModule()); }
    const FormatTableRow &row(const char *name) { return *zvhost::findRow(host.instance()->formatTable, name); }
    zvhost::Host host;
};

TEST_F(Column, EqualsSingleCallsValueByValue) {
    for (const ColumnCase &c : kCases)
        for (bool byte : {false, true}) {
            SCOPED_TRACE(std::string(c.format) + " " + c.locale + (byte ? " byte" : " wide"));
            const std::vector<double> values = randomValues(c, 7);
            const Formatted f = formatted(host, c, byte, values);
            ASSERT_EQ(f.statuses.size(), values.size());
            std::vector<double> back(values.size());
            std::vector<char> marks(values.size());
            std::vector<int32_t> readStatuses(values.size());
            ASSERT_EQ(zvhost::readColumn(host, c.informat, specOf(c, false), f.bytes.data(), f.offsets.data(),
                                         values.size(), back.data(), marks.data(), readStatuses.data()), "");
            for (size_t i = 0; i < values.size(); ++i) {
                const std::string text = f.bytes.substr(size_t(f.offsets[i]), size_t(f.offsets[i + 1] - f.offsets[i]));
                const zvhost::FormatResult one = zvhost::runFormat(host, row(c.format), specOf(c, byte), values[i]);
                EXPECT_EQ(text, one.utf8) << values[i];
                EXPECT_EQ(f.statuses[i], one.status) << values[i];
                const zvhost::ReadResult read = zvhost::runInformat(host, row(c.informat), specOf(c, false), text);
                EXPECT_EQ(readStatuses[i], read.status) << text;
                if (!read.untouched) {
                    EXPECT_EQ(std::bit_cast<uint64_t>(back[i]), read.bits) << text;
                }
                EXPECT_EQ(marks[i], zvhost::missingMark(back[i]));
            }
        }
}

TEST_F(Column, FixedFieldsHoldTheSameTextsAndCutWholeCharacters) {
    const ColumnCase &c = kCases[0];
    const std::vector<double> values = randomValues(c, 11);
    const Formatted f = formatted(host, c, false, values);
    zvhost::ColumnFormatter column(host, c.format, specOf(c, false));
    for (size_t stride : {size_t(column.fieldBytes()), size_t(7)}) {
        std::vector<char> fields(values.size() * stride);
        std::vector<int32_t> lengths(values.size()), statuses(values.size());
        ASSERT_EQ(zvhost::formatColumn(host, c.format, specOf(c, false), values.data(), values.size(), fields.data(),
                                       stride, lengths.data(), statuses.data()), "");
        for (size_t i = 0; i < values.size(); ++i) {
            const std::string whole = f.bytes.substr(size_t(f.offsets[i]), size_t(f.offsets[i + 1] - f.offsets[i]));
            const std::string field(fields.data() + i * stride, size_t(lengths[i]));
            EXPECT_EQ(whole.substr(0, field.size()), field);
            EXPECT_EQ(statuses[i], field.size() < whole.size() ? ZV_TARGET_TOO_SMALL : 0) << whole;
            EXPECT_TRUE(field.size() == whole.size() || (whole[field.size()] & 0xC0) != 0x80) << whole;
        }
    }
}

// The C entry points: a round trip and a refusal.
TEST(ColumnC, RoundTripAndRefusal) {
    EXPECT_EQ(columnRoundTripFromC(), 0);
}

} // namespace
