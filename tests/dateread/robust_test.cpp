// Bad input never crashes and nothing is read or written outside its place:
// random texts from an alphabet of digits, letters, marks, blanks and
// non-ASCII characters, in buffers of their exact size, through the three
// informats, every name of the pattern table, the guesses and the locale
// reader. Run under the sanitizers, an over-read shows.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "dateread/dateread.hpp"
#include "frame/frame.hpp"
#include "zvhost.hpp"

namespace {

constexpr uint64_t kSentinel = 0x0123456789ABCDEFull;

const char16_t kAlphabet[] = u"0123456789012345678901234567890123456789 ::--//..,,%%TZQWPAMpamJANjanDECdecMarzy+*"
                             u"\u00e0\u0436\u65e5\u5e74\u00a0";

std::u16string randomText(std::mt19937 &rng, size_t maxLength) {
    std::uniform_int_distribution<size_t> len(0, maxLength);
    std::uniform_int_distribution<size_t> pick(0, sizeof(kAlphabet) / sizeof(char16_t) - 2);
    std::u16string s(len(rng), u' ');
    for (char16_t &c : s) c = kAlphabet[pick(rng)];
    return s;
}

class Robust : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_NE(host.loadModule(), nullptr); }
    zvhost::Host host;
};

TEST_F(Robust, InformatsOnRandomTexts) {
    std::mt19937 rng(20240305);
    const std::set<int32_t> allowed = {0, 1, 999};
    const char *rows[] = {"@NLDATE", "@NLDATEW", "@NLDATM", "@NLDATMAP", "@NLDATMW", "@NLTIME", "@NLTIMAP"};
    const char *locales[] = {"en_US", "fr_FR", "ja_JP", "he_IL", "ru_RU", "pt_BR", "ko_KR"};
    for (int i = 0; i < 3000; ++i) {
        const std::u16string text = randomText(rng, i % 10 == 0 ? 250 : 40);
        std::unique_ptr<ZvChar[]> exact(new ZvChar[text.size() + 1]);
        std::memcpy(exact.get(), text.data(), text.size() * sizeof(ZvChar));
        const FormatTableRow *row = zvhost::findRow(host.instance()->formatTable, rows[i % 7]);
        ASSERT_NE(row, nullptr);
        zvhost::CallSpec spec;
        spec.locale = locales[(i / 7) % 7];
        const int32_t limit = static_cast<int32_t>(rng() % (text.size() + 3)) - 1;
        spec.fieldLimit = limit;
        const zvhost::ReadResult r = zvhost::runInformat(host, *row, spec, zvhost::utf8(text));
        ASSERT_TRUE(r.error.empty()) << r.error;
        EXPECT_TRUE(allowed.count(r.status)) << r.status;
        EXPECT_FALSE(r.fieldsChanged);
    }
}

TEST_F(Robust, PatternReaderAndGuessesOnRandomTexts) {
    zvextent(host.anchor());
    std::mt19937 rng(1960);
    std::set<std::u16string> names;
    for (const zv::DatePatternRow &r : zv::datePatternTable) names.insert(r.name);
    for (int i = 0; i < 4000; ++i) {
        const std::u16string text = randomText(rng, i % 10 == 0 ? 250 : 30);
        const size_t n = text.size();
        std::unique_ptr<ZvChar[]> exact(new ZvChar[n == 0 ? 1 : n]);
        std::memcpy(exact.get(), text.data(), n * sizeof(ZvChar));
        for (const std::u16string &name : names) {
            double out = zv::doubleOf(kSentinel);
            int32_t kind = -1;
            const int32_t s = zv::readByPattern(name.data(), static_cast<int64_t>(name.size()), nullptr, exact.get(),
                                                static_cast<int64_t>(n), &out, &kind, i % 2);
            EXPECT_TRUE(s == 0 || s == 999) << s;
            if (s == 0) {
                EXPECT_TRUE(kind >= 0 && kind <= 3);
            }
        }
        for (auto guess : {zv::readAnyDate, zv::readAnyTime, zv::readAnyDateTime}) {
            FormatCall call;
            std::memset(&call, 0, sizeof call);
            double out = 0;
            call.input = exact.get();
            call.inputLength = static_cast<int32_t>(n);
            call.width = static_cast<int32_t>(rng() % 260);
            call.output = &out;
            EXPECT_EQ(guess(&call, nullptr), 0);
        }
    }
}

TEST_F(Robust, LocaleReaderOnRandomPatternsAndTexts) {
    zvextent(host.anchor());
    FormatCall call;
    std::memset(&call, 0, sizeof call);
    auto block = std::make_unique<LocaleBlock>();
    std::memset(block.get(), 0, sizeof(LocaleBlock));
    block->items[6].length = 3;
    std::memcpy(block->items[6].text, u"MDY", 6);
    block->items[151].length = 2;
    std::memcpy(block->items[151].text, u"AM", 4);
    block->items[71].length = 5;
    std::memcpy(block->items[71].text, u"Mar z", 10);
    call.localeBlock = block.get();
    std::mt19937 rng(7);
    const char16_t kPatternAlphabet[] = u"%%%%%YymdBbHIMSpAaqjGe .:-/,\u65e5";
    std::uniform_int_distribution<size_t> pick(0, sizeof(kPatternAlphabet) / sizeof(char16_t) - 2);
    for (int i = 0; i < 20000; ++i) {
        std::u16string pattern(rng() % 200, u' ');
        for (char16_t &c : pattern) c = kPatternAlphabet[pick(rng)];
        const std::u16string text = randomText(rng, i % 10 == 0 ? 300 : 40);
        std::unique_ptr<ZvChar[]> p(new ZvChar[pattern.size() + 1]), t(new ZvChar[text.size() + 1]);
        std::memcpy(p.get(), pattern.data(), pattern.size() * sizeof(ZvChar));
        std::memcpy(t.get(), text.data(), text.size() * sizeof(ZvChar));
        double date = zv::missingValue(), time = zv::missingValue();
        const int32_t r = zv::readLocaleForm(&call, t.get(), static_cast<int64_t>(text.size()), p.get(),
                                             static_cast<int64_t>(pattern.size()), &date, &time);
        EXPECT_TRUE(r == 0 || r == 2 || r == -1) << r;
        if (!zv::isMissing(date)) {
            EXPECT_TRUE(date >= -138061.0 && date < 6589336.0) << date;
        }
    }
}

} // namespace
