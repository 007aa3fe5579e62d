// NLNUM, NLPCT, NLMNY and the member of the locale's own currency against
// ICU's text of the same value, over the CLDR locales that write Latin digits.
#include <unicode/decimfmt.h>
#include <unicode/numberformatter.h>
#include <unicode/ucurr.h>

#include <cstring>
#include <map>

#include "numfmt/fixture.hpp"
#include "cldr.hpp"
#include "support/latin_locales.hpp"

namespace {

using namespace icu::number;

// The locale whose number data goes with Latin digits: itself, or itself with
// numbers=latn where its own digits are others.
icu::Locale latinNumbers(const std::string &name) {
    icu::Locale loc(name.c_str());
    UErrorCode status = U_ZERO_ERROR;
    if (!testsupport::latinDigits(loc)) loc.setKeywordValue("numbers", "latn", status);
    return loc;
}

// Blanks of every kind alike; marks of direction kept, leading blanks gone.
std::string blanksAlike(std::string s) {
    for (const char *nbsp : {"\u00a0", "\u202f"})
        for (size_t at = s.find(nbsp); at != std::string::npos; at = s.find(nbsp)) s.replace(at, std::strlen(nbsp), " ");
    return s.erase(0, std::min(s.find_first_not_of(' '), s.size()));
}

// NLPCT and the member of the locale's own currency (it shows the code in the
// place of the locale's symbol) against ICU; money compares without blanks, as
// ICU's currency spacing puts some the placement figures lack.
TEST(AgainstIcu, PercentAndOwnMember) {
    for (const std::string &name : testsupport::latinLocales()) {
        zvhost::Host host; // a member reads the placement of an instance's first locale
        ASSERT_NE(host.loadModule(), nullptr);
        const icu::Locale loc(name.c_str());
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::NumberFormat> pattern(icu::NumberFormat::createInstance(loc, status));
        const auto *decimal = dynamic_cast<icu::DecimalFormat *>(pattern.get());
        if (!decimal || decimal->getSecondaryGroupingSize() > 0) continue; // the module groups by one size
        UChar currency[4] = {};
        ucurr_forLocale(name.c_str(), currency, 4, &status);
        const std::string code = icu::UnicodeString(currency).toUTF8String(*std::make_unique<std::string>());
        const auto number = NumberFormatter::withLocale(loc).precision(Precision::fixedFraction(2));
        zvhost::CallSpec spec;
        spec.locale = name, spec.width = 32, spec.decimals = 2;
        auto ours = [&](const std::string &row, double v) {
            return blanksAlike(zvhost::runFormat(host, *zvhost::findRow(host.instance()->formatTable, row), spec, v).utf8);
        };
        auto theirs = [&](const LocalizedNumberFormatter &f, double v) {
            UErrorCode s = U_ZERO_ERROR;
            return blanksAlike(f.formatDouble(v, s).toString(s).toUTF8String(*std::make_unique<std::string>()));
        };
        EXPECT_EQ(ours("NLPCT", -12345.678), theirs(number, -1234567.8) + "%") << name;
        if (U_FAILURE(status) || code.size() != 3 || !zvhost::findRow(host.instance()->formatTable, "NLMNI" + code)) continue;
        auto unspaced = [](std::string t) { // and without marks of direction
            for (const char *drop : {" ", "\u200e", "\u200f"})
                for (size_t at = t.find(drop); at != std::string::npos; at = t.find(drop)) t.erase(at, std::strlen(drop));
            return t;
        };
        const auto intl = number.unit(icu::CurrencyUnit(currency, status)).unitWidth(UNUM_UNIT_WIDTH_ISO_CODE);
        EXPECT_EQ(unspaced(ours("NLMNI" + code, -1234567.891)), unspaced(theirs(intl, -1234567.891))) << name;
    }
}

TEST(AgainstIcu, EveryLocaleInLatinDigits) {
    zvhost::Host host;
    ASSERT_NE(host.loadModule(), nullptr);
    std::map<std::string, int> left;
    int compared = 0;
    for (const std::string &name : zvhost::availableLocales()) {
        const icu::Locale loc = latinNumbers(name);
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::NumberFormat> plain(icu::NumberFormat::createInstance(loc, status));
        const auto *decimal = dynamic_cast<icu::DecimalFormat *>(plain.get());
        if (!decimal || decimal->getSecondaryGroupingSize() > 0) {
            ++left["groups of two sizes"];
            continue;
        }
        // The currency of the locale's likely country where it names none.
        icu::Locale place(name.c_str());
        place.addLikelySubtags(status);
        UChar currency[4] = {};
        ucurr_forLocale(place.getName(), currency, 4, &status);
        const auto number = NumberFormatter::withLocale(loc).precision(Precision::fixedFraction(2));
        zvhost::CallSpec spec;
        spec.locale = name, spec.width = 32, spec.decimals = 2;
        auto ours = [&](const char *row, double v) {
            return blanksAlike(zvhost::runFormat(host, *zvhost::findRow(host.instance()->formatTable, row), spec, v).utf8);
        };
        auto theirs = [&](const LocalizedNumberFormatter &f, double v) {
            UErrorCode s = U_ZERO_ERROR;
            std::string out;
            return blanksAlike(f.formatDouble(v, s).toString(s).toUTF8String(out));
        };
        ++compared;
        EXPECT_EQ(ours("NLNUM", 1234567.891), theirs(number, 1234567.891)) << name;
        EXPECT_EQ(ours("NLNUM", -1234567.891), theirs(number, -1234567.891)) << name;
        if (U_FAILURE(status) || !currency[0]) {
            ++left["money: no currency"];
            continue;
        }
        // A mark of direction in the currency pattern is a literal the placement figures can't hold.
        icu::Locale moneyLocale(loc);
        moneyLocale.setKeywordValue("currency", icu::UnicodeString(currency).toUTF8String(*std::make_unique<std::string>()).c_str(), status);
        std::unique_ptr<icu::NumberFormat> moneyFormat(icu::NumberFormat::createInstance(moneyLocale, UNUM_CURRENCY, status));
        icu::UnicodeString moneyPattern;
        if (auto *df = dynamic_cast<icu::DecimalFormat *>(moneyFormat.get())) df->toPattern(moneyPattern);
        // The module's items hold units of the first plane; a symbol beyond it gives way to the code.
        UBool choice = false;
        int32_t length = 0;
        const UChar *named = ucurr_getName(currency, name.c_str(), UCURR_SYMBOL_NAME, &choice, &length, &status);
        const icu::UnicodeString symbol(named, length);
        if (symbol.countChar32() != symbol.length()) {
            ++left["money: a symbol beyond the first plane"];
            continue;
        }
        if (moneyPattern.indexOf(u'\u200f') >= 0 || moneyPattern.indexOf(u'\u200e') >= 0 || moneyPattern.indexOf(u'\u061c') >= 0) {
            ++left["money: a mark of direction in the currency pattern"];
            continue;
        }
        EXPECT_EQ(ours("NLMNY", 1234567.891), theirs(number.unit(icu::CurrencyUnit(currency, status)), 1234567.891)) << name;
    }
    std::string why;
    for (const auto &[reason, count] : left) why += " " + std::to_string(count) + " " + reason + ";";
    std::printf("compared %d locales; left out:%s\n", compared, why.c_str());
    EXPECT_GT(compared, 600);
}

} // namespace
