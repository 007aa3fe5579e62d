// The host's number services against a second algorithm: decimal rounding,
// half away from zero, of the exact binary value as std::to_chars expands it;
// the readers against strtod and strtoll.
#include <gtest/gtest.h>

#include <bit>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <random>
#include <regex>
#include <string>

#include "numbers.hpp"
#include "zvhost.hpp"

namespace {

constexpr uint32_t P = ZV_NUMBER_PLAIN, G = ZV_NUMBER_GROUPED, B = ZV_NUMBER_BEST_FIT;
const int32_t NP = zvhost::kNumberNotPlain;

// The significant digits of |v|, exactly, and the power of ten of the first.
std::pair<std::string, int> exact(double v) {
    static char buf[1500];
    const auto r = std::to_chars(buf, buf + sizeof buf, std::fabs(v), std::chars_format::fixed, 1100);
    const std::string s(buf, r.ptr);
    const size_t point = s.find('.');
    const std::string digits = s.substr(0, point) + s.substr(point + 1);
    const size_t first = digits.find_first_not_of('0');
    if (first == std::string::npos) return {"0", 0};
    return {digits.substr(first), int(point) - 1 - int(first)};
}

// `n` digits, rounded half away from zero; a carry raises the exponent.
std::string roundDigits(std::string d, size_t n, int &exponent) {
    const bool up = d.size() > n && d[n] >= '5';
    d.resize(n, '0');
    if (!up) return d;
    size_t i = n;
    while (i > 0 && d[i - 1] == '9') d[--i] = '0';
    if (i == 0) d.insert(0, "1"), d.pop_back(), ++exponent;
    else ++d[i - 1];
    return d;
}

std::string fixedText(double v, int places) {
    auto [d, e] = exact(v);
    if (e < 0) d.insert(0, size_t(-e), '0'), e = 0;
    std::string r = roundDigits(d, size_t(e + 1 + places), e);
    r.resize(size_t(e + 1 + places), '0');
    std::string t = r.substr(0, size_t(e + 1));
    t.erase(0, std::min(t.find_first_not_of('0'), t.size() - 1));
    return (v < 0 ? "-" : "") + t + (places ? "." + r.substr(size_t(e + 1)) : "");
}

std::string sciText(double v, int places) {
    auto [d, e] = exact(v);
    const std::string r = roundDigits(d, size_t(places + 1), e);
    return (v < 0 ? "-" : "") + r.substr(0, 1) + (places ? "." + r.substr(1) : "") + "E" + (e < 0 ? "-" : "+") +
           std::to_string(std::abs(e));
}

std::string grouped(std::string t) {
    const size_t start = t[0] == '-', end = t.find_first_not_of("0123456789", start);
    for (size_t at = std::min(end, t.size()); at > start + 3; at -= 3) t.insert(at - 3, ",");
    return t;
}

// The plain form as the contract describes it: fewer decimals, then
// E-notation, then stars.
std::pair<std::string, int32_t> plainModel(double v, int width, int decimals) {
    for (int p = decimals; p >= 0; --p)
        if (const std::string t = fixedText(v, p); int(t.size()) <= width) return {t, p == decimals ? 0 : NP};
    for (int p = std::min(width, 20); p >= 0; --p)
        if (const std::string t = sciText(v, p); int(t.size()) <= width) return {t, NP};
    return {std::string(size_t(width), '*'), NP};
}

std::pair<std::string, int32_t> format(double v, int width, int decimals, uint32_t flags) {
    ZvChar buf[80];
    std::fill(std::begin(buf), std::end(buf), u'#');
    int64_t produced = -1;
    const int32_t s = zvhost::formatNumberText(v, width, decimals, flags, buf, width, &produced);
    EXPECT_EQ(produced, width);
    EXPECT_EQ(buf[width], u'#');
    std::string t(buf, buf + std::max<int64_t>(produced, 0));
    return {t.substr(std::min(t.find_first_not_of(' '), t.size())), s};
}

double randomValue(std::mt19937_64 &rng) {
    double v = std::uniform_real_distribution<double>(-1, 1)(rng) * std::pow(10.0, int(rng() % 30) - 8);
    if (rng() % 4 == 0) v = std::copysign((std::floor(std::fabs(v) * 8) + 0.5) / double(1 << (rng() % 3)), v);
    return v;
}

TEST(FormatNumber, PlainAndGroupedFollowTheExactDecimalValue) {
    std::mt19937_64 rng(20261123);
    for (int i = 0; i < 8000; ++i) {
        const double v = randomValue(rng);
        const int width = 1 + int(rng() % 24), decimals = int(rng() % 9);
        auto want = plainModel(v, width, decimals);
        auto got = format(v, width, decimals, P);
        ASSERT_EQ(got, want) << v << " w" << width << " d" << decimals;
        const std::string g = grouped(fixedText(v, decimals));
        if (int(g.size()) <= width) want = {g, 0};
        else if (want.second == 0) want.second = zvhost::kNumberUngrouped;
        ASSERT_EQ(format(v, width, decimals, G), want) << v << " w" << width << " d" << decimals;
    }
}

// Best fit: at width 32 every value shows 15 significant digits, correctly
// rounded; at any width the text reads back within half a unit of its last
// place, and stars come only when not even one digit fits.
TEST(FormatNumber, BestFitShowsTheMostDigitsThatFit) {
    std::mt19937_64 rng(7);
    for (int i = 0; i < 20000; ++i) {
        const double v = i % 2 ? randomValue(rng) : std::bit_cast<double>(rng() >> 2) * (rng() % 2 ? 1 : -1);
        const int width = i % 3 ? 1 + int(rng() % 20) : 32;
        const auto [text, status] = format(v, width, 0, B);
        if (text.find('*') != std::string::npos) {
            EXPECT_EQ(status, NP);
            EXPECT_GT(int(std::min(fixedText(v, 0).size(), sciText(v, 0).size())), width) << v;
            continue;
        }
        ASSERT_EQ(status, 0) << v;
        double back = 0;
        ASSERT_EQ(std::from_chars(text.data(), text.data() + text.size(), back).ptr, text.data() + text.size()) << text;
        const size_t e = text.find('E'), point = text.find('.');
        const int places = point == std::string::npos ? 0 : int(std::min(e, text.size()) - point - 1);
        const int exponent = e == std::string::npos ? 0 : std::stoi(text.substr(e + 1));
        EXPECT_LE(std::fabs(back - v), 0.5 * std::pow(10.0, exponent - places) + std::fabs(v) * 0x1p-51)
            << text << " for " << v;
        if (width == 32 && v != 0 && std::fabs(v) < 1e15) {
            double best = 0;
            const std::string want = sciText(v, 14);
            std::from_chars(want.data(), want.data() + want.size(), best);
            EXPECT_EQ(back, best) << text << " for " << v;
        }
    }
}

TEST(FormatNumber, MarksStarsAndRefusals) {
    const double missingA = zvhost::missingValue('A');
    EXPECT_EQ(format(missingA, 4, 2, P), std::make_pair(std::string("A"), 0));
    EXPECT_EQ(format(zvhost::missingValue('.'), 3, 0, B), std::make_pair(std::string("."), 0));
    EXPECT_EQ(format(std::nan(""), 3, 0, P), std::make_pair(std::string("***"), NP));
    EXPECT_EQ(format(-HUGE_VAL, 5, 0, G), std::make_pair(std::string("*****"), NP));
    ZvChar buf[8] = {u'#', u'#', u'#', u'#', u'#', u'#', u'#', u'#'};
    int64_t produced = 5;
    EXPECT_EQ(zvhost::formatNumberText(1, 0, 0, P, buf, 8, &produced), zvhost::kNumberBadRequest);
    EXPECT_EQ(zvhost::formatNumberText(1, 4, 0, 0x4000, buf, 8, &produced), zvhost::kNumberBadRequest);
    EXPECT_EQ(zvhost::formatNumberText(1234.5, 8, 1, P, buf, 5, &produced), ZV_TARGET_TOO_SMALL);
    EXPECT_EQ(std::u16string(buf, 8), u"  123###");
}

// The readers against strtod and strtoll over random texts of the forms they
// take and of forms they don't.
TEST(ParseNumber, AgreesWithTheCLibrary) {
    const std::regex real(R"( *[+-]?(\d+\.?\d*|\.\d+)([eE][+-]?\d+)? *)"), integer(R"( *[+-]?\d+ *)");
    const std::string alphabet = "0123456789.  +-eE,x";
    std::mt19937 rng(99);
    for (int i = 0; i < 10000; ++i) {
        std::string text;
        for (int n = int(rng() % 12); n > 0; --n) text += alphabet[rng() % (i % 2 ? 15 : alphabet.size())];
        const std::u16string wide(text.begin(), text.end());
        double value = -99;
        int64_t used = -1, integerValue = -99;
        const int32_t s = zvhost::parseDoubleText(wide.data(), int64_t(wide.size()), &value, &used);
        errno = 0;
        const double want = std::strtod(text.c_str(), nullptr);
        const bool dot = std::regex_match(text, std::regex(" *\\. *"));
        if (dot) {
            EXPECT_EQ(s, 0);
            EXPECT_EQ(std::bit_cast<uint64_t>(value), ZV_MISSING_BITS);
        } else if (std::regex_match(text, real) && std::isfinite(want) && (want != 0 || errno == 0)) {
            EXPECT_EQ(s, 0) << text;
            EXPECT_EQ(value, want) << text;
            EXPECT_EQ(used, int64_t(text.size()));
        } else if (!std::regex_match(text, real)) {
            EXPECT_EQ(s, zvhost::kNumberUnreadable) << text;
            EXPECT_EQ(value, -99) << text;
        }
        errno = 0;
        const long long wantInteger = std::strtoll(text.c_str(), nullptr, 10);
        const int32_t si = zvhost::parseIntegerText(wide.data(), int64_t(wide.size()), &integerValue, &used);
        if (std::regex_match(text, integer) && errno == 0) {
            EXPECT_EQ(si, 0) << text;
            EXPECT_EQ(integerValue, wantInteger) << text;
        } else {
            EXPECT_EQ(si, zvhost::kNumberUnreadable) << text;
        }
    }
    // Long runs of digits round the edges of the exact short road (15 digits,
    // 22 decimals); zeros keep their sign.
    for (int i = 0; i < 4000; ++i) {
        std::string text = i % 2 ? "-" : "";
        const int digits = 1 + int(rng() % 24), point = int(rng() % (digits + 1));
        for (int k = 0; k < digits; ++k) text += (k == point ? "." : "") + std::to_string(rng() % (i % 3 ? 10 : 2));
        const std::u16string wide(text.begin(), text.end());
        double value = 0;
        ASSERT_EQ(zvhost::parseDoubleText(wide.data(), int64_t(wide.size()), &value, nullptr), 0) << text;
        EXPECT_EQ(std::bit_cast<uint64_t>(value), std::bit_cast<uint64_t>(std::strtod(text.c_str(), nullptr))) << text;
    }
    for (const char16_t *big : {u"1e999", u"-1e400", u"9223372036854775808"}) {
        double v = 0;
        int64_t used = 0, n = 0;
        EXPECT_EQ(zvhost::parseDoubleText(big, int64_t(std::char_traits<char16_t>::length(big)), &v, &used),
                  big[1] == u'2' ? 0 : zvhost::kNumberUnreadable);
        EXPECT_EQ(zvhost::parseIntegerText(big, int64_t(std::char_traits<char16_t>::length(big)), &n, &used),
                  zvhost::kNumberUnreadable);
    }
}

// The exponent of |v| once rounded to `digits` significant digits.
TEST(DecimalExponent, IsTheExponentOfTheRoundedValue) {
    std::mt19937_64 rng(5);
    for (int i = 0; i < 20000; ++i) {
        double v = std::bit_cast<double>(rng() >> 1);
        if (i % 2) v = std::round(randomValue(rng) * 1e4) / 1e4 - 0.00005;
        if (!std::isfinite(v) || v == 0) continue;
        const int digits = 1 + int(rng() % 17);
        int exponent = exact(v).second;
        roundDigits(exact(v).first, size_t(digits), exponent);
        ASSERT_EQ(zvhost::decimalExponent(v, digits), exponent) << v << " " << digits;
    }
    EXPECT_EQ(zvhost::decimalExponent(0, 3), 0);
}

} // namespace
