// The plain readers and the separator translation on their own, and the
// plain route that an informat takes when it finds no instance.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <string>

#include "numread/numread.hpp"
#include "zvhost.hpp"

namespace {

constexpr uint64_t kMissing = ZV_MISSING_BITS;
constexpr uint64_t kSentinel = 0x7FF4DEADBEEF0002ull;
constexpr int32_t kHostUnreadable = int32_t(0x803FE80Fu);

enum class Answer { Value, Missing, Untouched };

struct PlainCase {
    const char *name;
    const char16_t *text;
    int width;
    int decimals;
    bool validate;
    int32_t status;
    Answer answer;
    double value = 0;
};

void PrintTo(const PlainCase &c, std::ostream *os) { *os << c.name; }

class PlainReaders : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_NE(host.loadModule(), nullptr); }

    // A call with nothing but what a plain reader reads.
    struct Outcome {
        int32_t status;
        uint64_t bits;
        FormatCall after;
        FormatCall before;
    };
    Outcome run(int32_t (*reader)(FormatCall *), const PlainCase &c) {
        std::u16string text(c.text);
        FormatCall call;
        std::memset(&call, 0, sizeof call);
        call.input = text.data();
        call.inputLength = int32_t(text.size());
        call.fieldLimit = int32_t(text.size());
        call.width = c.width;
        call.decimals = c.decimals;
        call.flags = c.validate ? ZV_FLAG_CHECK_LIMITS : 0;
        call.services = host.services();
        double out = std::bit_cast<double>(kSentinel);
        call.output = &out;
        const FormatCall before = call;
        const int32_t status = reader(&call);
        return {status, std::bit_cast<uint64_t>(out), call, before};
    }

    static void check(const PlainCase &c, const Outcome &o) {
        EXPECT_EQ(o.status, c.status);
        EXPECT_EQ(std::memcmp(&o.before, &o.after, sizeof o.after), 0) << "record changed";
        switch (c.answer) {
        case Answer::Value:
            EXPECT_EQ(o.bits, std::bit_cast<uint64_t>(c.value))
                << std::bit_cast<double>(o.bits) << " instead of " << c.value;
            break;
        case Answer::Missing: EXPECT_EQ(o.bits, kMissing); break;
        case Answer::Untouched: EXPECT_EQ(o.bits, kSentinel); break;
        }
    }

    zvhost::Host host;
};

const PlainCase kNumberCases[] = {
    {"ImpliedDecimals", u"1234", 32, 2, false, 0, Answer::Value, 12.34},
    {"PointStopsScaling", u"12.5", 32, 2, false, 0, Answer::Value, 12.5},
    {"ThirtyOneDecimals", u"1", 32, 31, false, 0, Answer::Value, 1e-31},
    {"Parentheses", u"(12)", 32, 0, false, 0, Answer::Value, -12},
    {"ParenthesesWithBlanks", u"( 12 )", 32, 0, false, 0, Answer::Value, -12},
    {"ParenthesesZeroIsNegativeZero", u"(0)", 32, 0, false, 0, Answer::Value, -0.0},
    {"LeadingMinusKept", u"-1,234", 32, 0, false, 0, Answer::Value, -1234},
    {"MarksRemoved", u"$1,234.5%", 32, 0, false, 0, Answer::Value, 1234.5},
    {"InnerMinusRemoved", u"12-5", 32, 0, false, 0, Answer::Value, 125},
    {"ExponentLosesItsMinus", u"1.5E-3", 32, 0, false, 0, Answer::Value, 1500},
    {"BlanksInside", u" 1 2 3 ", 32, 0, false, 0, Answer::Value, 123},
    {"WidthCuts", u"12345", 3, 0, false, 0, Answer::Value, 123},
    {"Blank", u"    ", 32, 0, false, 0, Answer::Missing},
    {"WidthZeroUnchecked", u"12", 0, 0, false, 0, Answer::Missing},
    {"LoneComma", u",", 32, 0, false, kHostUnreadable, Answer::Missing},
    {"EmptyParentheses", u"()", 32, 0, false, kHostUnreadable, Answer::Missing},
    {"OpenParenthesisOnly", u"(", 32, 0, false, kHostUnreadable, Answer::Missing},
    {"MinusBeforeParentheses", u"-(12)", 32, 0, false, kHostUnreadable, Answer::Missing},
    {"Letters", u"12a", 32, 0, false, kHostUnreadable, Answer::Missing},
    {"LonePointIsMissing", u".", 32, 2, false, 0, Answer::Missing},
    {"WidthZero", u"12", 0, 0, true, 2, Answer::Untouched},
    {"Width33", u"12", 33, 0, true, 3, Answer::Untouched},
    {"DecimalsNegative", u"12", 32, -1, true, 4, Answer::Untouched},
    {"Decimals32", u"12", 32, 32, true, 5, Answer::Untouched},
};

class PlainNumber : public PlainReaders, public ::testing::WithParamInterface<PlainCase> {};
TEST_P(PlainNumber, Reads) { check(GetParam(), run(zv::readPlainNumber, GetParam())); }
INSTANTIATE_TEST_SUITE_P(Table, PlainNumber, ::testing::ValuesIn(kNumberCases),
                         [](const auto &info) { return std::string(info.param.name); });

const PlainCase kPercentCases[] = {
    {"Percent", u"50%", 32, 0, false, 0, Answer::Value, 0.5},
    {"NoSign", u"50", 32, 0, false, 0, Answer::Value, 50},
    {"DecimalsIgnored", u"50", 32, 2, false, 0, Answer::Value, 50},
    {"Parentheses", u"(50%)", 32, 0, false, 0, Answer::Value, -0.5},
    {"OpenParenthesisOnly", u"(50%", 32, 0, false, 0, Answer::Value, -0.5},
    {"Minus", u"-12.5%", 32, 0, false, 0, Answer::Value, -0.125},
    {"EmptyParentheses", u"()", 32, 0, false, 999, Answer::Missing},
    {"ParenthesesAndPercent", u"(%)", 32, 0, false, 999, Answer::Missing},
    {"PercentOnly", u"%", 32, 0, false, kHostUnreadable, Answer::Missing},
    {"CommaStays", u"1,000%", 32, 0, false, kHostUnreadable, Answer::Missing},
    {"BlankInside", u"1 000%", 32, 0, false, kHostUnreadable, Answer::Missing},
    {"Blank", u"  ", 32, 0, false, 0, Answer::Missing},
    {"Decimals32", u"5", 32, 32, true, 5, Answer::Untouched},
};

class PlainPercent : public PlainReaders, public ::testing::WithParamInterface<PlainCase> {};
TEST_P(PlainPercent, Reads) { check(GetParam(), run(zv::readPlainPercent, GetParam())); }
INSTANTIATE_TEST_SUITE_P(Table, PlainPercent, ::testing::ValuesIn(kPercentCases),
                         [](const auto &info) { return std::string(info.param.name); });

// Property: every integer k written plainly with a point before its last d
// digits reads back as k / 10^d, the same double that the division gives.
TEST_F(PlainReaders, PointedAndImpliedDecimalsAgree) {
    uint64_t state = 0x9E3779B97F4A7C15ull;
    for (int i = 0; i < 400; ++i) {
        state = state * 6364136223846793005ull + 1442695040888963407ull;
        const int64_t k = int64_t(state >> 24) % 100000000000ll - 50000000000ll;
        const int d = int(state % 5);
        std::string digits = std::to_string(k < 0 ? -k : k);
        while (int(digits.size()) <= d) digits.insert(digits.begin(), '0');
        std::string pointed = digits;
        if (d > 0) pointed.insert(pointed.size() - size_t(d), ".");
        if (k < 0) {
            pointed.insert(pointed.begin(), '-');
            digits.insert(digits.begin(), '-');
        }
        const double want = double(k) / std::pow(10.0, d);
        const std::u16string a = zvhost::utf16(pointed), b = zvhost::utf16(digits);
        PlainCase withPoint{"", a.c_str(), 32, d, true, 0, Answer::Value, want};
        PlainCase implied{"", b.c_str(), 32, d, true, 0, Answer::Value, want};
        const Outcome x = run(zv::readPlainNumber, withPoint), y = run(zv::readPlainNumber, implied);
        ASSERT_EQ(x.status, 0) << pointed;
        ASSERT_EQ(y.status, 0) << digits;
        EXPECT_EQ(x.bits, y.bits) << pointed << " and " << digits << " at " << d;
        EXPECT_DOUBLE_EQ(std::bit_cast<double>(x.bits), want) << pointed;
    }
}

// ---- separator translation ---------------------------------------------------------

struct TranslationCase {
    const char *name;
    const char16_t *point;
    const char16_t *group;
    const char16_t *text;
    int32_t status;
    const char16_t *result;
};

void PrintTo(const TranslationCase &c, std::ostream *os) { *os << c.name; }

class Translation : public ::testing::TestWithParam<TranslationCase> {};

TEST_P(Translation, GivesThePlainMarks) {
    const TranslationCase &c = GetParam();
    NumberContext context;
    std::memset(&context, 0, sizeof context);
    for (int i = 0; i < 2 && c.point[i]; ++i) context.decimalSeparator[i] = c.point[i];
    for (int i = 0; i < 2 && c.group[i]; ++i) context.groupSeparator[i] = c.group[i];
    std::u16string text(c.text);
    ZvChar buffer[zv::kReadUnits + 1] = {};
    std::memcpy(buffer, text.data(), text.size() * 2);
    int64_t n = int64_t(text.size());
    EXPECT_EQ(zv::translateSeparators(buffer, &n, context), c.status);
    if (c.status == 0) {
        EXPECT_EQ(zvhost::utf8(std::u16string(buffer, size_t(n))), zvhost::utf8(c.result));
    }
}

const TranslationCase kTranslations[] = {
    {"German", u",", u".", u"1.234,56", 0, u"1,234.56"},
    {"English", u".", u",", u"1,234.56", 0, u"1,234.56"},
    {"CommaGroupsKeepOtherPoint", u"\u066b", u",", u"1,234\u066b5", 0, u"1,234.5"},
    {"ArabicMarks", u"\u066b", u"\u066c", u"1\u066c234\u066b5", 0, u"1,234.5"},
    {"BlankGroups", u",", u" ", u"1 234,5", 0, u"1,234.5"},
    {"NoGroupSeparator", u",", u"", u"1234,5", 0, u"1234.5"},
    {"TwoUnitGroups", u",", u"..", u"1..234..567,5", 0, u"1,234,567.5"},
    {"TwoUnitGroupAtTheEnd", u",", u"..", u"12..", 0, u"12,"},
    {"TwoUnitGroupLastUnitKept", u".", u"''", u"1''2345", 0, u"1,2345"},
    {"TwoUnitGroupLoneHalf", u".", u"''", u"1'2", 0, u"1'2"},
    {"ApostrophesAround", u".", u"'", u"'12'", -1, u""},
    {"LoneApostrophe", u".", u"'", u"'", -1, u""},
    {"ApostropheGroups", u".", u"'", u"1'234.5", 0, u"1,234.5"},
    {"ApostrophesUnderCommaGroups", u".", u",", u"'12'", 0, u"'12'"},
    {"ApostrophesUnderTwoUnitGroups", u".", u"''", u"'12'", 0, u"'12'"},
    {"Empty", u",", u".", u"", 0, u""},
};
INSTANTIATE_TEST_SUITE_P(Table, Translation, ::testing::ValuesIn(kTranslations),
                         [](const auto &info) { return std::string(info.param.name); });

// ---- the plain route -------------------------------------------------------------------

// Without the instance in extensionList the informats hand the text to the
// plain reader, where decimals are implied and no locale mark is known.
TEST_F(PlainReaders, WithoutInstanceTheInformatsReadPlainly) {
    ExtensionInstance *none[1] = {nullptr};
    HostServices services = *host.services();
    services.extensionList = none;
    struct Case {
        ZvWideEntry entry;
        const char16_t *text;
        int decimals;
        int32_t status;
        double value;
    };
    const Case cases[] = {
        {zv::readNlNum, u"1234", 2, 0, 12.34},
        {zv::readNlNumI, u"1,234.5", 2, 0, 1234.5},
        {zv::readNlMny, u"$1,234", 0, 0, 1234},
        {zv::readNlMnyI, u"1234", 1, 0, 123.4},
        {zv::readNlPct, u"50%", 2, 0, 0.5},
        {zv::readNlPctI, u"(50)", 0, 0, -50},
        {zv::readNlNum, u"1.234,5", 0, 0, 1.2345},
        {zv::readNlNum, u"12x", 0, kHostUnreadable, 0},
    };
    for (const Case &c : cases) {
        std::u16string text(c.text);
        FormatCall call;
        std::memset(&call, 0, sizeof call);
        call.input = text.data();
        call.inputLength = int32_t(text.size());
        call.fieldLimit = int32_t(text.size());
        call.width = 32;
        call.decimals = c.decimals;
        call.services = &services;
        double out = std::bit_cast<double>(kSentinel);
        call.output = &out;
        const FormatCall before = call;
        EXPECT_EQ(c.entry(&call, nullptr), c.status) << zvhost::utf8(text);
        if (c.status == 0) {
            EXPECT_EQ(out, c.value) << zvhost::utf8(text);
        } else {
            EXPECT_EQ(std::bit_cast<uint64_t>(out), kMissing);
        }
        EXPECT_EQ(std::memcmp(&before, &call, sizeof call), 0);
    }
}

// The plain route reads no further than fieldLimit either.
TEST_F(PlainReaders, PlainRouteKeepsToTheFieldLimit) {
    ExtensionInstance *none[1] = {nullptr};
    HostServices services = *host.services();
    services.extensionList = none;
    std::u16string text(u"123456");
    FormatCall call;
    std::memset(&call, 0, sizeof call);
    call.input = text.data();
    call.inputLength = 6;
    call.fieldLimit = 2;
    call.width = 32;
    call.services = &services;
    double out = 0;
    call.output = &out;
    EXPECT_EQ(zv::readNlNum(&call, nullptr), 0);
    EXPECT_EQ(out, 12);
    EXPECT_EQ(call.inputLength, 6);
}

// A per-currency member without its instance answers -1 and stores nothing.
TEST_F(PlainReaders, CurrencyMemberWithoutInstance) {
    ExtensionInstance *none[1] = {nullptr};
    HostServices services = *host.services();
    services.extensionList = none;
    std::u16string text(u"USD 12");
    FormatCall call;
    std::memset(&call, 0, sizeof call);
    call.input = text.data();
    call.inputLength = int32_t(text.size());
    call.fieldLimit = int32_t(text.size());
    call.width = 12;
    call.services = &services;
    double out = std::bit_cast<double>(kSentinel);
    call.output = &out;
    EXPECT_EQ((zv::readCurrencyMember<&zv::currencyUSD, zv::CurrencyForm::Code>(&call, nullptr)), -1);
    EXPECT_EQ(std::bit_cast<uint64_t>(out), kSentinel);
}

} // namespace
