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
    explicit Trip(const char *encoding = "UTF-8") {
        EXPECT_NE(host.loadModule(), nullptr);
        spec.encoding = encoding, spec.width = 32, spec.decimals = 2;
    }
    std::string write(const std::string &row, double v) {
        const std::string t = zvhost::runFormat(host, *zvhost::findRow(host.instance()->formatTable, row), spec, v).utf8;
        return t.substr(std::min(t.find_first_not_of(' '), t.size()));
    }
    zvhost::ReadResult read(const std::string &row, const std::string &text) {
        return zvhost::runInformat(host, *zvhost::findRow(host.instance()->formatTable, row), spec, text);
    }
};

// Hundredths: k / 100.0 is the double nearest to the text of k with two places.
double hundredths(std::mt19937_64 &rng) {
    return double((int64_t(rng() % 2000000000000ull) - 1000000000000ll) / int64_t(std::pow(10.0, double(rng() % 12)))) / 100;
}

TEST(RoundTrip, EveryLatinLocale) {
    std::mt19937_64 rng(31);
    int shifted = 0, spared = 0;
    Trip trip;
    for (const std::string &locale : testsupport::latinLocales()) {
        trip.spec.locale = locale;
        const double v = hundredths(rng), percent = double(int64_t(v * 100) % 100000) / 10000.0;
        for (const std::string row : {"NLNUM", "NLNUMI", "NLPCT", "NLPCTI", "NLMNY", "NLMNYI"}) {
            const bool isPercent = row.rfind("NLPCT", 0) == 0, money = row.rfind("NLMNY", 0) == 0;
            const std::string text = trip.write(row, isPercent ? percent : v), what = locale + " " + row + " [" + text + "]";
            const zvhost::ReadResult r = trip.read("@" + row, text);
            if (money && text.find('E', 1) != std::string::npos) { // an E behind the first place is spared as an exponent
                EXPECT_EQ(r.status, 1) << what;
                ++spared;
            } else if (isPercent) {
                EXPECT_DOUBLE_EQ(r.value, percent) << what;
            } else if (money && r.bits != std::bit_cast<uint64_t>(v)) {
                // A symbol that holds the decimal separator takes the number's own with it; one division by ten a digit.
                EXPECT_EQ(r.value, std::round(v * 100) / 10 / 10) << what;
                ++shifted;
            } else {
                EXPECT_EQ(r.bits, std::bit_cast<uint64_t>(v)) << what;
            }
        }
        UErrorCode status = U_ZERO_ERROR;
        std::string text;
        icu::number::NumberFormatter::withLocale(icu::Locale(locale.c_str()))
            .precision(icu::number::Precision::fixedFraction(2)).formatDouble(v, status).toString(status).toUTF8String(text);
        EXPECT_EQ(trip.read("@NLNUM", text).bits, std::bit_cast<uint64_t>(v)) << locale << " ICU [" << text << "]";
    }
    EXPECT_GT(shifted, 0);
    EXPECT_GT(spared, 0);
}

TEST(RoundTrip, EveryCurrencyMember) {
    std::mt19937_64 rng(8);
    for (const char *locale : {"en_US", "de_DE", "fr_FR", "de_CH", "sv_SE", "pt_BR", "en_IN"}) {
        for (const char *encoding : {"UTF-8", "ISO-8859-1"}) {
            // Latin-1 can't show the group marks and minus of these three.
            if (std::string(encoding) != "UTF-8" && std::string("fr_FR de_CH sv_SE").find(locale) != std::string::npos) continue;
            Trip trip(encoding); // the money record is made once for an instance
            trip.spec.locale = locale;
            for (const FormatTableRow *row : zvhost::tableRows(trip.host.instance()->formatTable)) {
                const std::string code = zvhost::rowName(*row), local = "NLMNL" + code.substr(std::min(code.size(), size_t(5)));
                if (code.rfind("NLMNI", 0) != 0) continue;
                const double v = hundredths(rng);
                const std::string byCode = trip.write(code, v), bySymbol = trip.write(local, v);
                EXPECT_EQ(trip.read("@" + code, byCode).bits, std::bit_cast<uint64_t>(v)) << locale << " [" << byCode << "]";
                // A symbol that holds a '.' meets '.' groups before it is cut out.
                const zvhost::ReadResult r = trip.read("@" + local, bySymbol);
                const auto dots = [](const std::string &t) { return std::count(t.begin(), t.end(), '.'); };
                if (dots(byCode) == dots(bySymbol) || r.bits != ZV_MISSING_BITS) {
                    EXPECT_EQ(r.bits, std::bit_cast<uint64_t>(v)) << locale << " " << encoding << " [" << bySymbol << "]";
                }
            }
        }
    }
}

} // namespace
