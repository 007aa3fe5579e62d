// NLNUM and NLMNY at a generous width against ICU's formatting of the same
// value with the same separators, grouping and fraction digits, over the
// CLDR locales that write Latin digits.
#include <unicode/locid.h>

#include "support/latin_locales.hpp"
#include <unicode/numberformatter.h>
#include <unicode/numsys.h>
#include <unicode/uchar.h>
#include <unicode/ucurr.h>

#include <cstring>
#include <memory>
#include <iostream>
#include <set>
#include <string>

#include "fixture.hpp"

namespace {

using testsupport::latinDigits;
using testsupport::latinLocales;

using numtest::Numbers;
using namespace icu::number;

std::string toUtf8(const icu::UnicodeString &s) {
    std::string out;
    s.toUTF8String(out);
    return out;
}

// Blanks of every kind count alike: ICU puts a no-break space between a
// currency symbol and the digits where the module's patterns have a plain
// blank, and both sides use the locale's own group separator.
std::string sameBlanks(std::string s) {
    for (const char *nb : {"\u00a0", "\u202f"}) {
        for (size_t at = s.find(nb); at != std::string::npos; at = s.find(nb)) s.replace(at, std::strlen(nb), " ");
    }
    const size_t first = s.find_first_not_of(' ');
    s.erase(0, first == std::string::npos ? s.size() : first);
    return s;
}

// The text without one blank that stands between a digit and a character
// that isn't a symbol (a letter, a mark): where ICU's currency spacing puts
// one. A blank beside a currency sign such as the euro's is never dropped.
std::string withoutOneBlankBesideDigits(const std::string &utf8) {
    const icu::UnicodeString s = icu::UnicodeString::fromUTF8(utf8);
    auto digit = [](UChar32 c) { return c >= '0' && c <= '9'; };
    auto spacedSymbol = [](UChar32 c) {
        const int8_t type = u_charType(c);
        return c != ' ' && c != '-' && !(c >= '0' && c <= '9') && type != U_CURRENCY_SYMBOL &&
               type != U_MATH_SYMBOL && type != U_OTHER_SYMBOL && type != U_MODIFIER_SYMBOL;
    };
    for (int32_t i = 1; i + 1 < s.length(); ++i) {
        if (s[i] != u' ') continue;
        const UChar32 before = s.char32At(i - 1), after = s.char32At(i + 1);
        if ((digit(after) && spacedSymbol(before)) || (digit(before) && spacedSymbol(after))) {
            icu::UnicodeString t(s);
            t.remove(i, 1);
            return toUtf8(t);
        }
    }
    return utf8;
}

std::string without(std::string s, const char *piece) {
    for (size_t at = s.find(piece); at != std::string::npos; at = s.find(piece))
        s.erase(at, std::strlen(piece));
    return s;
}


// The grouping sizes of the locale's decimal pattern: primary and secondary.
std::pair<int, int> groupingOf(const icu::Locale &loc) {
    UErrorCode status = U_ZERO_ERROR;
    FormattedNumber f = NumberFormatter::withLocale(loc).grouping(UNUM_GROUPING_ON_ALIGNED)
                            .precision(Precision::integer()).formatDouble(1234567890.0, status);
    const std::string s = toUtf8(f.toString(status));
    // Group lengths from the right, between non-digits.
    std::vector<int> runs;
    int run = 0;
    for (size_t i = 0; i < s.size(); ++i) {
        if (s[i] >= '0' && s[i] <= '9') ++run;
        else if (run) {
            runs.push_back(run);
            run = 0;
        }
    }
    if (run) runs.push_back(run);
    if (runs.size() < 3) return {0, 0};
    return {runs[runs.size() - 1], runs[runs.size() - 2]};
}


constexpr double kValues[] = {1234567.891, -98765.4321, 12345.5, -123456789.125};

class AgainstIcu : public Numbers {
protected:
    std::string ours(const std::string &row, const std::string &locale, double v) {
        zvhost::CallSpec spec;
        spec.locale = locale;
        zvhost::FormatResult r = runOn(row, v, 32, 2, spec);
        EXPECT_EQ(r.status, 0);
        return sameBlanks(text(r));
    }
};

TEST_F(AgainstIcu, NumbersMatchIcuWithTheSameSeparators) {
    const std::vector<std::string> locales = latinLocales();
    ASSERT_GT(locales.size(), 100u);
    int compared = 0, secondaryGrouped = 0;
    for (const std::string &name : locales) {
        const icu::Locale loc(name.c_str());
        const auto [primary, secondary] = groupingOf(loc);
        for (double v : kValues) {
            UErrorCode status = U_ZERO_ERROR;
            auto f = NumberFormatter::withLocale(loc)
                         .precision(Precision::fixedFraction(2))
                         .roundingMode(UNUM_ROUND_HALFUP)
                         .grouping(UNUM_GROUPING_ON_ALIGNED);
            std::string icu = sameBlanks(toUtf8(f.formatDouble(v, status).toString(status)));
            ASSERT_TRUE(U_SUCCESS(status));
            std::string mine = ours("NLNUM", name, v);
            if (secondary != primary && primary > 0) {
                // The module groups by the first size at every position (as
                // in 12,34,56,789 -> 123,456,789): without groups on both
                // sides the texts agree.
                ++secondaryGrouped;
                auto plain = NumberFormatter::withLocale(loc)
                                 .precision(Precision::fixedFraction(2))
                                 .roundingMode(UNUM_ROUND_HALFUP)
                                 .grouping(UNUM_GROUPING_OFF);
                icu = sameBlanks(toUtf8(plain.formatDouble(v, status).toString(status)));
                zvhost::CallSpec spec;
                spec.locale = name;
                spec.items = {{174, "0"}};
                zvhost::FormatResult r = runOn("NLNUM", v, 32, 2, spec);
                mine = sameBlanks(text(r));
            }
            EXPECT_EQ(mine, icu) << name << " " << v;
            ++compared;
        }
    }
    EXPECT_GT(compared, 400);
    EXPECT_GT(secondaryGrouped, 0);
}

TEST_F(AgainstIcu, MoneyMatchesIcuWithTheLocalesCurrency) {
    const std::vector<std::string> locales = latinLocales();
    int compared = 0, same = 0, spaced = 0, marked = 0, signShape = 0;
    for (const std::string &name : locales) {
        const icu::Locale loc(name.c_str());
        const auto [primary, secondary] = groupingOf(loc);
        if (secondary != primary) continue; // shown for numbers above
        UErrorCode status = U_ZERO_ERROR;
        UChar currency[4] = {};
        ucurr_forLocale(name.c_str(), currency, 4, &status);
        if (U_FAILURE(status) || currency[0] == 0) continue;
        for (double v : kValues) {
            status = U_ZERO_ERROR;
            auto f = NumberFormatter::withLocale(loc)
                         .unit(icu::CurrencyUnit(currency, status))
                         .precision(Precision::fixedFraction(2))
                         .roundingMode(UNUM_ROUND_HALFUP)
                         .grouping(UNUM_GROUPING_ON_ALIGNED);
            const std::string icu = sameBlanks(toUtf8(f.formatDouble(v, status).toString(status)));
            ASSERT_TRUE(U_SUCCESS(status));
            const std::string mine = ours("NLMNY", name, v);
            ++compared;
            if (mine == icu) {
                ++same;
                continue;
            }
            // ICU's currency spacing puts a blank between a symbol that ends
            // (or begins) with a letter and the digits; the locale's own
            // placement figures have no blank there.
            if (withoutOneBlankBesideDigits(icu) == mine) {
                ++spaced;
                continue;
            }
            // Patterns with right-to-left marks as literal text (at the start,
            // before the symbol): the placement figures carry no literal text.
            if (icu.rfind("\u200f", 0) == 0 && without(icu, "\u200f") == without(mine, "\u200f")) {
                ++marked;
                continue;
            }
            // A pattern that puts the sign between the symbol and a blank
            // ("Ksh- 98,765.43"): the placement table has the sign beside the
            // number in that place ("Ksh -98,765.43").
            if (const size_t at = icu.find("- "); at != std::string::npos &&
                icu.substr(0, at) + " -" + icu.substr(at + 2) == mine) {
                ++signShape;
                continue;
            }
            ADD_FAILURE() << name << " " << v << ": ours \"" << mine << "\", ICU \"" << icu << "\"";
        }
    }
    EXPECT_GT(compared, 300);
    EXPECT_GT(same, compared / 2);
    std::cout << "[ money    ] " << compared << " compared: " << same << " equal, " << spaced
              << " with ICU's currency spacing, " << marked << " with marks in the pattern, " << signShape
              << " with the sign behind the symbol\n";
}

} // namespace
