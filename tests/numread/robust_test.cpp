// Texts of every shape through every number informat: the answer depends on
// nothing past fieldLimit, the call record comes back as it went in, and the
// status is one that the informat may give.
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <string>

#include "zvhost.hpp"

namespace {

constexpr char16_t kAlphabet[] = u"0123456789012345678901234567890123456789.,.,-+()%$E e' '\u00a0\u202f\u2212\u066b"
                                 u"\u066c\u20acUSDkr.EUR#&;\u200f\u200e\u00e9\u4e00";

struct Rng {
    uint64_t s;
    uint64_t next() {
        s = s * 6364136223846793005ull + 1442695040888963407ull;
        return s >> 33;
    }
    int below(int n) { return int(next() % uint64_t(n)); }
};

std::u16string randomText(Rng &rng) {
    const int length = rng.below(40);
    std::u16string t;
    for (int i = 0; i < length; ++i) t.push_back(kAlphabet[rng.below(int(sizeof kAlphabet / 2 - 1))]);
    return t;
}

class Robust : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_NE(host.loadModule(), nullptr); }
    zvhost::Host host;
};

TEST_F(Robust, NothingPastTheFieldLimitCounts) {
    const char *rows[] = {"@NLNUM", "@NLNUMI", "@NLMNY", "@NLMNYI", "@NLPCT", "@NLPCTI",
                          "@NLMNIUSD", "@NLMNLEUR", "@NLMNLCHF", "@NLMNIJPY"};
    const char *locales[] = {"en_US", "de_DE", "fr_FR", "de_CH", "ar_EG", "sv_SE"};
    Rng rng{12345};
    int runs = 0;
    for (int i = 0; i < 1500; ++i) {
        const char *rowName = rows[rng.below(10)];
        const FormatTableRow *row = zvhost::findRow(host.instance()->formatTable, rowName);
        ASSERT_NE(row, nullptr);
        const std::u16string text = randomText(rng);
        zvhost::CallSpec spec;
        spec.locale = locales[rng.below(6)];
        spec.encoding = rng.below(4) == 0 ? "ISO-8859-1" : "UTF-8";
        const int widths[] = {0, 1, 2, 5, 12, 32, 33, 200, -3};
        spec.width = widths[rng.below(9)];
        const int decimals[] = {0, 2, 31, 32, 40, -2};
        spec.decimals = decimals[rng.below(6)];
        spec.validate = rng.below(2) == 0;
        const int limit = text.empty() ? 0 : rng.below(int(text.size()) + 1);
        spec.fieldLimit = limit;

        const zvhost::ReadResult whole = zvhost::runInformat(host, *row, spec, zvhost::utf8(text));
        const zvhost::ReadResult prefix =
            zvhost::runInformat(host, *row, spec, zvhost::utf8(text.substr(0, size_t(limit))));
        ASSERT_EQ(whole.error, "");
        const std::string what = std::string(rowName) + " " + spec.locale + " [" + zvhost::utf8(text) +
                                 "] limit " + std::to_string(limit) + " width " + std::to_string(spec.width);
        EXPECT_FALSE(whole.fieldsChanged) << what;
        EXPECT_EQ(whole.status, prefix.status) << what;
        EXPECT_EQ(whole.bits, prefix.bits) << what;
        const int32_t s = whole.status;
        const bool perCurrency = std::string(rowName).rfind("@NLMNI", 0) == 0 || std::string(rowName).rfind("@NLMNL", 0) == 0;
        if (perCurrency) {
            EXPECT_TRUE(s == 0 || s == 1) << what << " status " << s;
        } else {
            // The plain route passes on the host's refusal and 999.
            EXPECT_TRUE((s >= 0 && s <= 5) || s == 999 || s == int32_t(0x803FE80Fu)) << what << " status " << s;
        }
        if (s != 0) {
            EXPECT_TRUE(whole.untouched || whole.bits == ZV_MISSING_BITS) << what;
        }
        ++runs;
    }
    EXPECT_EQ(runs, 1500);
}

} // namespace
