// The number informats on their own texts: the plain readers against strtod
// on random plain texts and the locale readers on the forms a locale writes.
#include <bit>
#include <cmath>
#include <cstdlib>
#include <random>

#include "numfmt/fixture.hpp"
#include "numread/numread.hpp"

namespace {

using numtest::Items;

class Readers : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_NE(host.loadModule(), nullptr); }

    // A plain reader on its own: the value (or the status when not 0).
    double plain(int32_t (*reader)(FormatCall *), const std::string &text, int decimals, int32_t *status,
                 int32_t width = 32) {
        const std::u16string t = zvhost::utf16(text);
        FormatCall call{};
        double out = 0;
        call.input = t.data(), call.inputLength = call.fieldLimit = int32_t(t.size()), call.output = &out;
        call.width = width, call.decimals = decimals, call.services = host.services();
        *status = reader(&call);
        return out;
    }

    zvhost::Host host;
};

TEST_F(Readers, PlainReadersAgreeWithStrtod) {
    std::mt19937_64 rng(99);
    for (int i = 0; i < 400; ++i) {
        // Digits with groups, a point, a sign and an exponent, at random.
        std::string text = rng() % 3 ? "" : "-";
        for (int k = 0, digits = 1 + int(rng() % 12); k < digits; ++k)
            text += std::string(i % 2 && k > 0 && (digits - k) % 3 == 0 ? "," : "") + char('0' + rng() % 10);
        if (rng() % 2) text += "." + std::to_string(rng() % 100000);
        if (rng() % 5 == 0) text += std::string("E") + "+-"[rng() % 2] + std::to_string(rng() % 20);
        std::string bare;
        for (size_t k = 0; k < text.size(); ++k)
            if (text[k] != ',' && (text[k] != '-' || k == 0)) bare += text[k]; // an exponent's '-' goes too
        const int decimals = int(rng() % 32);
        const double value = std::strtod(bare.c_str(), nullptr), scale = std::strtod(("1e" + std::to_string(decimals)).c_str(), nullptr);
        int32_t status = -1;
        EXPECT_EQ(std::bit_cast<uint64_t>(plain(zv::readPlainNumber, text, decimals, &status)),
                  std::bit_cast<uint64_t>(text.find('.') == std::string::npos ? value / scale : value)) << text << " d" << decimals;
        EXPECT_EQ(status, 0);
        EXPECT_EQ(plain(zv::readPlainNumber, "(" + text + ")", 0, &status), -std::fabs(value)) << text;
        // The locale route never scales.
        zvhost::CallSpec spec;
        spec.items = numtest::baseItems(), spec.decimals = decimals, spec.width = 32;
        EXPECT_EQ(zvhost::runInformat(host, *zvhost::findRow(host.instance()->formatTable, "@NLNUM"), spec, text).value, value)
            << text;
        if (i % 2) continue; // commas go to the host's parser under percent
        EXPECT_EQ(plain(zv::readPlainPercent, text + "%", decimals, &status), std::strtod(text.c_str(), nullptr) / 100) << text;
        EXPECT_EQ(plain(zv::readPlainPercent, text, decimals, &status), std::strtod(text.c_str(), nullptr)) << text;
        EXPECT_EQ(plain(zv::readPlainPercent, "(" + text + "%)", 0, &status), -std::strtod(text.c_str(), nullptr) / 100) << text;
    }
    int32_t status = 0;
    plain(zv::readPlainPercent, "(%)", 0, &status);
    EXPECT_EQ(status, 999);
    // Parentheses round one digit.
    EXPECT_EQ(plain(zv::readPlainPercent, "(5)", 0, &status) + plain(zv::readPlainNumber, "(5)", 0, &status), -10);
    // A lone period is a missing value, read as such.
    EXPECT_EQ(std::bit_cast<uint64_t>(plain(zv::readPlainPercent, ".%", 0, &status)), ZV_MISSING_BITS);
    EXPECT_EQ(status, 0);
    // A text longer than the reader's own room is copied into the call's memory; without it the reader says so.
    const std::string digits(300, '7');
    EXPECT_EQ(plain(zv::readPlainNumber, digits, 0, &status, 300), std::strtod(digits.c_str(), nullptr));
    host.formatPool().failFrom(1);
    plain(zv::readPlainNumber, digits, 0, &status, 300);
    host.formatPool().failFrom(0);
    EXPECT_EQ(status, ZV_NO_MEMORY);
}

TEST_F(Readers, LocaleForms) {
    const Items german = {{172, ","}, {173, "."}, {157, ","}, {158, "."}}, krona = {{156, "kr."}, {155, "SEK"}};
    const double missing = std::bit_cast<double>(ZV_MISSING_BITS), untouched = -7;
    struct Case {
        const char *row, *text;
        Items changes;
        int32_t status;
        double value;
        int width = 32;
        bool validate = false;
    } const cases[] = {
        {"@NLNUM", "1.234,56", german, 0, 1234.56}, {"@NLNUM", ",", german, 1, missing},
        {"@NLNUM", "1 234 567,5", {{172, ","}, {173, " "}}, 0, 1234567.5},
        {"@NLNUM", "1\u066c234\u066b5", {{172, "<U066B>"}, {173, "<U066C>"}}, 0, 1234.5},
        {"@NLNUM", "1..234..5,5", {{172, ","}, {173, ".."}}, 0, 12345.5},
        {"@NLNUM", "12..", {{172, ","}, {173, ".."}}, 0, 12}, {"@NLNUM", "1''2'5", {{173, "''"}}, 1, missing},
        {"@NLNUM", "'12'", {{173, "'"}}, 1, untouched}, {"@NLNUM", "1'234.5", {{173, "'"}}, 0, 1234.5},
        {"@NLNUM", "12-", {}, 0, -12}, {"@NLNUM", "(12)", {{182, "0"}}, 0, -12},
        {"@NLNUM", "(12)", {{181, "0"}}, 0, 12}, {"@NLNUM", "\u200f-12", {{176, "<U200F>-"}}, 0, -12},
        {"@NLNUM", "+12+", {{175, "+"}}, 1, missing}, {"@NLNUM", "()", {{181, "0"}}, 0, missing},
        {"@NLNUM", "()", {{181, "0"}}, 1, untouched, 32, true}, // nothing left: the plain reader refuses a width of 0
        {"@NLNUM", "1\u066b5", {{172, "<U066B>"}}, 0, 1, 3}, // three bytes of UTF-8 in a width of 3
        {"@NLMNY", "-$1,234.50", {}, 0, -1234.5}, {"@NLMNY", "$12-50", {}, 0, -1250},
        {"@NLMNY", "\u2212$12\u221250", {{161, "<U2212>"}}, 0, -1250}, // every unit of the sign goes, the one in front too
        {"@NLMNY", "($12.50) ", {{169, "0"}}, 0, -12.5}, {"@NLMNY", "-$", {}, 1, missing},
        {"@NLMNY", "$", {}, 0, missing},
        {"@NLMNY", "12", krona, 0, 12}, {"@NLMNY", "kr. 12", krona, 0, 12}, {"@NLMNY", "kr..50", krona, 0, 0.5},
        {"@NLMNY", "1.234,50 \u20ac", {{156, "<U20AC>"}, {157, ","}, {158, "."}}, 0, 1234.5},
        {"@NLMNY", "kr.1,234.56", krona, 0, 1234.56}, {"@NLMNY", "12.5 kr.", krona, 0, 12.5},
        {"@NLMNY", "-.50 kr.", krona, 0, -50}, // a sign in front of the point: no digits are taken as decimals
        {"@NLMNY", "E$1E5", {{156, "E$"}}, 0, 1e5}, {"@NLMNY", "1E5E", {{156, "E"}}, 0, 1e5},
        {"@NLMNY", "'12'", {{158, "'"}}, 1, untouched}, {"@NLMNY", "1..234,5- $", {{157, ","}, {158, ".."}}, 0, -1234.5},
        {"@NLPCT", "- 12.5 %", {}, 0, -0.125}, {"@NLPCT", "12,5%", german, 0, 0.125},
        {"@NLPCT", "(50%)", {{182, "0"}}, 0, -0.5}, {"@NLMNIUSD", "USD 1,234.50", {}, 0, 1234.5},
        {"@NLMNIUSD", "EUR 12.00", {}, 0, missing}, {"@NLMNIUSD", "(12.50 USD)", {{168, "0"}}, 0, 12.5},
        {"@NLMNIEUR", "1..234,5 EUR", {{157, ","}, {158, ".."}}, 0, 1234.5},
        {"@NLMNIEUR", "1 234,5 EUR", {{157, ","}, {158, " "}}, 0, 1234.5},
        {"@NLMNIEUR", "1.234\u066b5", {{157, "<U066B>"}, {158, "."}}, 0, 1234.5},
        {"@NLMNIEUR", "1,234\u066b5", {{157, "<U066B>"}}, 0, missing}, {"@NLMNIEUR", "", {}, 1, untouched},
    };
    for (const Case &c : cases) {
        zvhost::Host own; // the money record is made once for an instance
        ASSERT_NE(own.loadModule(), nullptr);
        zvhost::CallSpec spec;
        spec.items = numtest::baseItems(c.changes), spec.decimals = 2, spec.width = c.width, spec.validate = c.validate;
        const zvhost::ReadResult r = zvhost::runInformat(own, *zvhost::findRow(own.instance()->formatTable, c.row), spec, c.text);
        EXPECT_EQ(r.status, c.status) << c.row << " [" << c.text << "]";
        EXPECT_EQ(r.untouched ? std::bit_cast<uint64_t>(untouched) : r.bits, std::bit_cast<uint64_t>(c.value))
            << c.row << " [" << c.text << "] read " << r.value;
    }
}

} // namespace
