// The six number informats and the per-currency ones through their table
// rows: exact values, statuses and what stays untouched, over a locale whose
// number and money items each case sets.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <string>

#include "numfmt/fixture.hpp"
#include "zvhost.hpp"

namespace {

using numtest::Items;

constexpr uint64_t kMissing = ZV_MISSING_BITS;

enum class Answer { Value, Missing, Untouched };

struct RowCase {
    const char *name;
    const char *row;
    Items changes; // over numtest::baseItems()
    const char *text;
    int width;
    int decimals;
    int32_t status;
    Answer answer;
    double value = 0;
    bool validate = false;
    int fieldLimit = -1;
    const char *encoding = "UTF-8";
};

void PrintTo(const RowCase &c, std::ostream *os) { *os << c.name; }

// German marks: ',' for the point, '.' in groups, for numbers and money.
const Items kGerman = {{172, ","}, {173, "."}, {157, ","}, {158, "."}};
// Negatives in parentheses for numbers.
const Items kParenNumbers = {{182, "0"}};

class RowReads : public ::testing::TestWithParam<RowCase> {
protected:
    void SetUp() override { ASSERT_NE(host.loadModule(), nullptr); }
    zvhost::Host host;
};

TEST_P(RowReads, GiveTheExactAnswer) {
    const RowCase &c = GetParam();
    const FormatTableRow *row = zvhost::findRow(host.instance()->formatTable, c.row);
    ASSERT_NE(row, nullptr);
    zvhost::CallSpec spec;
    spec.items = numtest::baseItems();
    for (const auto &[k, v] : c.changes) spec.items[k] = v;
    spec.width = c.width;
    spec.decimals = c.decimals;
    spec.validate = c.validate;
    spec.fieldLimit = c.fieldLimit;
    spec.encoding = c.encoding;
    const zvhost::ReadResult r = zvhost::runInformat(host, *row, spec, c.text);
    ASSERT_EQ(r.error, "");
    EXPECT_FALSE(r.fieldsChanged) << "the call record was left changed";
    EXPECT_EQ(r.status, c.status);
    switch (c.answer) {
    case Answer::Value:
        EXPECT_FALSE(r.untouched);
        EXPECT_EQ(r.bits, std::bit_cast<uint64_t>(c.value)) << r.value << " instead of " << c.value;
        break;
    case Answer::Missing: EXPECT_EQ(r.bits, kMissing) << r.value; break;
    case Answer::Untouched: EXPECT_TRUE(r.untouched) << r.value; break;
    }
}

const RowCase kNumberCases[] = {
    // Separators.
    {"GermanGroupsAndComma", "@NLNUM", kGerman, "1.234,56", 32, 0, 0, Answer::Value, 1234.56},
    {"PlainEnglish", "@NLNUM", {}, "1,234.56", 32, 0, 0, Answer::Value, 1234.56},
    {"NlnumiIgnoresLocaleMarks", "@NLNUMI", kGerman, "1,234.56", 32, 0, 0, Answer::Value, 1234.56},
    {"LoneCommaUnderCommaPoint", "@NLNUM", kGerman, ",", 32, 0, 1, Answer::Missing},
    {"OneUnitSkipsTranslation", "@NLNUM", kGerman, "7", 32, 0, 0, Answer::Value, 7},
    {"BlankGroups", "@NLNUM", {{172, ","}, {173, " "}}, "1 234 567,5", 32, 0, 0, Answer::Value, 1234567.5},
    {"NoBreakGroups", "@NLNUM", {{172, ","}, {173, "<U00A0>"}}, "1\u00a0234,5", 32, 0, 0, Answer::Value, 1234.5},
    {"OtherPointCharacter", "@NLNUM", {{172, "<U066B>"}, {173, "<U066C>"}}, "1\u066c234\u066b5", 32, 0, 0,
     Answer::Value, 1234.5},
    {"TwoUnitGroups", "@NLNUM", {{172, ","}, {173, ".."}}, "1..234,5", 32, 0, 0, Answer::Value, 1234.5},
    {"TwoUnitGroupEndsText", "@NLNUM", {{172, ","}, {173, ".."}}, "12..", 32, 0, 0, Answer::Value, 12},
    {"ApostrophesAroundRefused", "@NLNUM", {{173, "'"}}, "'12'", 32, 0, 1, Answer::Untouched},
    {"ApostropheGroups", "@NLNUM", {{173, "'"}}, "1'234.5", 32, 0, 0, Answer::Value, 1234.5},
    {"ApostrophesAroundUnderCommaGroups", "@NLNUM", {}, "'12'", 32, 0, 1, Answer::Missing},
    // Signs at the ends.
    {"TrailingMinus", "@NLNUM", {}, "12-", 32, 0, 0, Answer::Value, -12},
    {"LeadingMinus", "@NLNUM", {}, "-12.5", 32, 0, 0, Answer::Value, -12.5},
    {"ParenthesesNegative", "@NLNUM", kParenNumbers, "(12)", 32, 0, 0, Answer::Value, -12},
    {"ParenthesesAsPositiveForm", "@NLNUM", {{181, "0"}}, "(12)", 32, 0, 0, Answer::Value, 12},
    {"ParenthesesLeftToPlainReader", "@NLNUM", {}, "(12)", 32, 0, 0, Answer::Value, -12},
    {"TwoUnitNegativeSign", "@NLNUM", {{176, "<U200F>-"}}, "\u200f-12", 32, 0, 0, Answer::Value, -12},
    {"PlusSignDropped", "@NLNUM", {{175, "+"}}, "+12", 32, 0, 0, Answer::Value, 12},
    {"OnlyParenthesesPositive", "@NLNUM", {{181, "0"}}, "()", 32, 0, 0, Answer::Missing},
    {"OnlyParenthesesPositiveValidated", "@NLNUM", {{181, "0"}}, "()", 32, 0, 1, Answer::Untouched, 0, true},
    // Decimals on the locale route never scale.
    {"NoImpliedDecimals", "@NLNUM", {}, "1234", 32, 2, 0, Answer::Value, 1234},
    {"PointKeptWithDecimals", "@NLNUM", {}, "12.5", 32, 2, 0, Answer::Value, 12.5},
    // Exponents.
    {"ExponentMinusTakenOut", "@NLNUM", {}, "1.5E-3", 32, 0, 0, Answer::Value, 1500},
    {"ExponentPlain", "@NLNUM", {}, "1E5", 32, 0, 0, Answer::Value, 1e5},
    // Bounds.
    {"BlankText", "@NLNUM", {}, "   ", 32, 0, 1, Answer::Untouched},
    {"EmptyText", "@NLNUM", {}, "", 32, 0, 1, Answer::Untouched},
    {"WidthCuts", "@NLNUM", {}, "1234567", 4, 0, 0, Answer::Value, 1234},
    {"FieldLimitCuts", "@NLNUM", {}, "1234567", 32, 0, 0, Answer::Value, 123, false, 3},
    {"FieldLimitBlank", "@NLNUM", {}, "  12", 32, 0, 1, Answer::Untouched, 0, false, 2},
    {"LeadingBlanksRead", "@NLNUM", {}, "   12", 32, 0, 0, Answer::Value, 12},
    {"WidthCountsBytes", "@NLNUM", {{172, "<U066B>"}}, "1\u066b5", 3, 0, 0, Answer::Value, 1},
    {"WidthHoldsAllBytes", "@NLNUM", {{172, "<U066B>"}}, "1\u066b5", 4, 0, 0, Answer::Value, 1.5},
    {"WidthCountsUnitsInUtf16", "@NLNUM", {{172, "<U066B>"}}, "1\u066b5", 6, 0, 0, Answer::Value, 1.5, false,
     -1, "UTF-16LE"},
    {"Garbage", "@NLNUM", {}, "12x", 32, 0, 1, Answer::Missing},
    {"LonePoint", "@NLNUM", {}, ".", 32, 0, 0, Answer::Missing},
    // Validation.
    {"WidthZero", "@NLNUM", {}, "12", 0, 0, 2, Answer::Untouched, 0, true},
    {"Width33", "@NLNUM", {}, "12", 33, 0, 3, Answer::Untouched, 0, true},
    {"DecimalsNegative", "@NLNUM", {}, "12", 32, -2, 4, Answer::Untouched, 0, true},
    {"Decimals32", "@NLNUM", {}, "12", 32, 32, 5, Answer::Untouched, 0, true},
    {"Decimals31", "@NLNUMI", {}, "12", 32, 31, 0, Answer::Value, 12, true},
    {"Width33Unchecked", "@NLNUM", {}, "12", 33, 0, 0, Answer::Value, 12},
};
INSTANTIATE_TEST_SUITE_P(Numbers, RowReads, ::testing::ValuesIn(kNumberCases),
                         [](const auto &info) { return std::string(info.param.name); });

// Money under the base items: "$" in front, '-' in front.
const Items kKrona = {{156, "kr."}, {155, "SEK"}};
const Items kParenMoney = {{169, "0"}};

const RowCase kMoneyCases[] = {
    {"DollarAmount", "@NLMNY", {}, "$1,234.50", 32, 0, 0, Answer::Value, 1234.5},
    {"NegativeDollar", "@NLMNY", {}, "-$1,234.50", 32, 0, 0, Answer::Value, -1234.5},
    {"SignInTheMiddle", "@NLMNY", {}, "$12-50", 32, 0, 0, Answer::Value, -1250},
    {"ParenthesesNegative", "@NLMNY", kParenMoney, "($12.50) ", 32, 0, 0, Answer::Value, -12.5},
    {"InternationalSymbol", "@NLMNYI", {}, "USD1,234.50", 32, 0, 0, Answer::Value, 1234.5},
    {"OtherFormsSymbolToo", "@NLMNY", {}, "USD 12.25", 32, 0, 0, Answer::Value, 12.25},
    {"SymbolOnly", "@NLMNY", {}, "$", 32, 0, 0, Answer::Missing},
    {"SymbolAndSignOnly", "@NLMNY", {}, "-$", 32, 0, 1, Answer::Missing},
    {"GermanEuro", "@NLMNY", {{156, "<U20AC>"}, {157, ","}, {158, "."}}, "1.234,50 \u20ac", 32, 0, 0,
     Answer::Value, 1234.5},
    {"SymbolWithPointLosesIt", "@NLMNY", kKrona, "kr. 12.50", 32, 0, 0, Answer::Value, 12.5},
    {"SymbolWithPointGroups", "@NLMNY", kKrona, "kr.1,234.56", 32, 0, 0, Answer::Value, 1234.56},
    {"SymbolWithPointBehind", "@NLMNY", kKrona, "12.5 kr.", 32, 0, 0, Answer::Value, 12.5},
    {"SymbolWithPointNoFraction", "@NLMNY", kKrona, "kr. 12", 32, 0, 0, Answer::Value, 12},
    {"ExponentSpared", "@NLMNY", {{156, "E$"}}, "E$1E5", 32, 0, 0, Answer::Value, 1e5},
    {"OnlyFirstExponentSpared", "@NLMNY", {{156, "E"}}, "1E5E", 32, 0, 0, Answer::Value, 1e5},
    {"NoImpliedDecimals", "@NLMNY", {}, "$1234", 32, 2, 0, Answer::Value, 1234},
    {"Blank", "@NLMNY", {}, "  ", 32, 0, 1, Answer::Untouched},
    {"Validated", "@NLMNY", {}, "$12", 33, 0, 3, Answer::Untouched, 0, true},
    {"Garbage", "@NLMNY", {}, "$12abc", 32, 0, 1, Answer::Missing},
};
INSTANTIATE_TEST_SUITE_P(Money, RowReads, ::testing::ValuesIn(kMoneyCases),
                         [](const auto &info) { return std::string(info.param.name); });

const RowCase kPercentCases[] = {
    {"Percent", "@NLPCT", {}, "50%", 32, 0, 0, Answer::Value, 0.5},
    {"NoPercentSign", "@NLPCT", {}, "50", 32, 0, 0, Answer::Value, 50},
    {"Parentheses", "@NLPCT", {}, "(50%)", 32, 0, 0, Answer::Value, -0.5},
    {"MinusWithBlanks", "@NLPCT", {}, "- 12.5 %", 32, 0, 0, Answer::Value, -0.125},
    {"GermanComma", "@NLPCT", kGerman, "12,5%", 32, 0, 0, Answer::Value, 0.125},
    {"IGermanCommaIsGroup", "@NLPCTI", kGerman, "12.5%", 32, 0, 0, Answer::Value, 0.125},
    {"GroupsGoToParser", "@NLPCT", {}, "1,000%", 32, 0, 1, Answer::Missing},
    {"DecimalsPlayNoPart", "@NLPCT", {}, "50", 32, 2, 0, Answer::Value, 50},
    {"EmptyParentheses", "@NLPCT", {}, "()", 32, 0, 1, Answer::Missing},
    {"PercentOnly", "@NLPCT", {}, "%", 32, 0, 1, Answer::Missing},
    {"WidthOneIsEnough", "@NLPCT", {}, "7", 1, 0, 0, Answer::Value, 7, true},
    {"Width33", "@NLPCTI", {}, "7", 33, 0, 3, Answer::Untouched, 0, true},
};
INSTANTIATE_TEST_SUITE_P(Percent, RowReads, ::testing::ValuesIn(kPercentCases),
                         [](const auto &info) { return std::string(info.param.name); });

const RowCase kCurrencyCases[] = {
    {"CodeInFront", "@NLMNIUSD", {}, "USD 1,234.50", 12, 2, 0, Answer::Value, 1234.5},
    {"CodeBehind", "@NLMNIUSD", {}, "1,234.50USD", 12, 2, 0, Answer::Value, 1234.5},
    {"NoCode", "@NLMNIUSD", {}, "1,234.50", 12, 2, 0, Answer::Value, 1234.5},
    {"OtherCode", "@NLMNIUSD", {}, "EUR 12.00", 12, 2, 0, Answer::Missing},
    {"LowerCaseCode", "@NLMNIUSD", {}, "usd 12.00", 12, 2, 0, Answer::Missing},
    {"OnlyTheCode", "@NLMNIUSD", {}, "USD", 12, 2, 0, Answer::Missing},
    {"NoImpliedDecimals", "@NLMNIUSD", {}, "1234", 12, 2, 0, Answer::Value, 1234},
    {"SignInTheMiddle", "@NLMNIUSD", {}, "12-50", 12, 2, 0, Answer::Value, -1250},
    {"ParenthesesNegative", "@NLMNIUSD", kParenMoney, "(12.50 USD)", 12, 2, 0, Answer::Value, -12.5},
    {"ParenthesesAsPositiveForm", "@NLMNIUSD", {{168, "0"}}, "(12.50 USD)", 12, 2, 0, Answer::Value, 12.5},
    {"SymbolUtf8", "@NLMNLEUR", {}, "\u20ac1,234.50", 12, 2, 0, Answer::Value, 1234.5},
    {"SymbolLatin1IsCode", "@NLMNLEUR", {}, "EUR1,234.50", 12, 2, 0, Answer::Value, 1234.5, false, -1,
     "ISO-8859-1"},
    {"SymbolDollar", "@NLMNLUSD", {}, "US$12.50", 12, 2, 0, Answer::Value, 12.5},
    {"SymbolLetters", "@NLMNLSEK", {}, "kr12.50", 12, 2, 0, Answer::Value, 12.5},
    {"GermanShape", "@NLMNIEUR", {{157, ","}, {158, "."}}, "1.234,50 EUR", 32, 2, 0, Answer::Value, 1234.5},
    // Blank groups are left to the plain reader; the comma beside them is
    // the point.
    {"BlankGroupsCommaPoint", "@NLMNIEUR", {{157, ","}, {158, " "}}, "1 234,56 EUR", 32, 2, 0, Answer::Value,
     1234.56},
    {"CommaGroupsOtherPointKept", "@NLMNIEUR", {{157, "<U066B>"}}, "1,234\u066b5 EUR", 32, 2, 0, Answer::Missing},
    {"OtherPointTranslated", "@NLMNIEUR", {{157, "<U066B>"}, {158, "."}}, "1.234\u066b5 EUR", 32, 2, 0,
     Answer::Value, 1234.5},
    {"TwoUnitGroups", "@NLMNIEUR", {{157, ","}, {158, ".."}}, "1..234,5 EUR", 32, 2, 0, Answer::Value, 1234.5},
    // The width bounds the plain reader; the point lies beyond it, so the
    // eight units read are scaled by the decimals.
    {"WidthBoundsPlainReader", "@NLMNIUSD", {}, "1,234,567.50", 8, 2, 0, Answer::Value, 1234.56},
    {"Empty", "@NLMNIUSD", {}, "", 12, 2, 1, Answer::Untouched},
    {"ValidationLeavesUntouched", "@NLMNIUSD", {}, "12", 0, 2, 0, Answer::Untouched, 0, true},
    {"FieldLimitCuts", "@NLMNIUSD", {}, "123456", 12, 2, 0, Answer::Value, 12, false, 2},
};
INSTANTIATE_TEST_SUITE_P(Currency, RowReads, ::testing::ValuesIn(kCurrencyCases),
                         [](const auto &info) { return std::string(info.param.name); });

} // namespace
