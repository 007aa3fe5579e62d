// Round trips: what the number, percent and money formats write in every
// Latin-digit CLDR locale reads back through the informat of the same name,
// numbers that ICU writes read as ICU's value, and every per-currency member
// reads what its format wrote.
#include <gtest/gtest.h>
#include <unicode/numberformatter.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <random>

#include "support/latin_locales.hpp"
#include "zvhost.hpp"

namespace {

struct Trip {
    zvhost::Host host;
    zvhost::CallSpec spec;
    Trip(const std::string &locale, const char *encoding = "UTF-8") {
        EXPECT_NE(host.loadModule(), nullptr);
        spec.locale = locale;
        spec.encoding = encoding;
        spec.width = 32;
        spec.decimals = 2;
    }
    std::string write(const std::string &row, double v) {
        const std::string t = zvhost::runFormat(host, *zvhost::findRow(host.instance()->formatTable, row), spec, v).utf8;
        return t.substr(std::min(t.find_first_not_of(' '), t.size()));
    }
    zvhost::ReadResult read(const std::string &row, const std::string &text) {
        const zvhost::ReadResult r = zvhost::runInformat(host, *zvhost::findRow(host.instance()->formatTable, row), spec, text);
        EXPECT_EQ(r.error, "");
        return r;
    }
};

// Hundredths: k / 100.0 is the double nearest to the text of k with two places.
double hundredths(std::mt19937_64 &rng) {
    const int64_t k = int64_t(rng() % 2000000000000ull) - 1000000000000ll;
    return double(k / int64_t(std::pow(10.0, double(rng() % 12)))) / 100.0;
}

TEST(RoundTrip, EveryLatinLocale) {
    std::mt19937_64 rng(31);
    int shifted = 0, spared = 0;
    Trip trip("en_US");
    for (const std::string &locale : testsupport::latinLocales()) {
        trip.spec.locale = locale;
        const auto icu = icu::number::NumberFormatter::withLocale(icu::Locale(locale.c_str()))
                             .precision(icu::number::Precision::fixedFraction(2));
        for (int i = 0; i < 1; ++i) {
            const double v = hundredths(rng), percent = double(int64_t(v * 100) % 100000) / 10000.0;
            for (const std::string row : {"NLNUM", "NLNUMI", "NLPCT", "NLPCTI", "NLMNY", "NLMNYI"}) {
                const double value = row.rfind("NLPCT", 0) == 0 ? percent : v;
                const std::string text = trip.write(row, value);
                const zvhost::ReadResult r = trip.read("@" + row, text);
                const std::string what = locale + " " + row + " [" + text + "]";
                if (row.rfind("NLMNY", 0) == 0 && text.find('E', 1) != std::string::npos) {
                    // An E behind the first place is spared as an exponent.
                    EXPECT_EQ(r.status, 1) << what;
                    ++spared;
                    continue;
                }
                ASSERT_EQ(r.status, 0) << what;
                if (row.rfind("NLPCT", 0) == 0) {
                    EXPECT_DOUBLE_EQ(r.value, value) << what;
                } else if (row.rfind("NLMNY", 0) == 0 && r.bits != std::bit_cast<uint64_t>(v)) {
                    // A symbol that holds the decimal separator takes the
                    // number's own with it; one division by ten a digit.
                    EXPECT_EQ(r.value, std::round(v * 100) / 10 / 10) << what;
                    ++shifted;
                } else {
                    EXPECT_EQ(r.bits, std::bit_cast<uint64_t>(v)) << what;
                }
            }
            UErrorCode status = U_ZERO_ERROR;
            std::string text;
            icu.formatDouble(v, status).toString(status).toUTF8String(text);
            EXPECT_EQ(trip.read("@NLNUM", text).bits, std::bit_cast<uint64_t>(v)) << locale << " ICU [" << text << "]";
        }
    }
    EXPECT_GT(shifted, 0);
    EXPECT_GT(spared, 0);
}

TEST(RoundTrip, EveryCurrencyMember) {
    std::mt19937_64 rng(8);
    int checked = 0;
    for (const char *locale : {"en_US", "de_DE", "fr_FR", "de_CH", "sv_SE", "pt_BR", "en_IN"}) {
        for (const char *encoding : {"UTF-8", "ISO-8859-1"}) {
            // Latin-1 can't show the group marks and minus of these three.
            if (std::string(encoding) != "UTF-8" && std::string("fr_FR de_CH sv_SE").find(locale) != std::string::npos)
                continue;
            Trip trip(locale, encoding);
            for (const FormatTableRow *row : zvhost::tableRows(trip.host.instance()->formatTable)) {
                const std::string code = zvhost::rowName(*row);
                if (code.rfind("NLMNI", 0) != 0) continue;
                const double v = hundredths(rng);
                const std::string local = "NLMNL" + code.substr(5), byCode = trip.write(code, v), bySymbol = trip.write(local, v);
                EXPECT_EQ(trip.read("@" + code, byCode).bits, std::bit_cast<uint64_t>(v)) << locale << " [" << byCode << "]";
                // A symbol that holds a '.' meets '.' groups before it is cut out.
                const zvhost::ReadResult r = trip.read("@" + local, bySymbol);
                if (std::count(byCode.begin(), byCode.end(), '.') == std::count(bySymbol.begin(), bySymbol.end(), '.') ||
                    r.bits != ZV_MISSING_BITS) {
                    EXPECT_EQ(r.bits, std::bit_cast<uint64_t>(v)) << locale << " " << encoding << " [" << bySymbol << "]";
                }
                ++checked;
            }
        }
    }
    EXPECT_EQ(checked, 11 * 40);
}

} // namespace
