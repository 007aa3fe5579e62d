// Random texts, in buffers of their exact size, through every reader: no
// crash, no read outside the text (the sanitizer builds show it), and only
// the statuses and values each reader may give.
#include <memory>
#include <vector>

#include "support.hpp"

namespace {

using namespace dr;

const char16_t kAlphabet[] = u"0123456789012345678901234567890123456789 ::--//..,,%%TZQWwPAMpamJANjanDECdecMarzy+*"
                             u"\u00e0\u0436\u65e5\u5e74\u00a0";

std::u16string randomText(std::mt19937 &rng, size_t most) {
    std::u16string s(rng() % (most + 1), u' ');
    for (char16_t &c : s) c = kAlphabet[rng() % (std::size(kAlphabet) - 1)];
    return s;
}

using Robust = Module;

TEST_F(Robust, RandomTexts) {
    std::mt19937 rng(1960);
    LocaleBlock block{};
    block.items[6].length = 3;
    std::memcpy(block.items[6].text, u"MDY", 6);
    block.items[151].length = 5;
    std::memcpy(block.items[151].text, u"Mar z", 10);
    FormatCall call{};
    call.localeBlock = &block;
    const char *informats[] = {"@NLDATE", "@NLDATM", "@NLTIME", "@WEEKV", "@NLSTRMON"};
    const char *locales[] = {"en_US", "fr_FR", "ja_JP", "he_IL", "ru_RU"};
    for (int i = 0; i < 3000; ++i) {
        const std::u16string text = randomText(rng, i % 10 == 0 ? 250 : 40), pattern = randomText(rng, 30);
        const auto exact = std::make_unique<ZvChar[]>(text.size() + 1), p = std::make_unique<ZvChar[]>(pattern.size() + 1);
        std::copy(text.begin(), text.end(), exact.get());
        std::copy(pattern.begin(), pattern.end(), p.get());
        const int64_t n = int64_t(text.size());
        for (const char16_t *name : {u"DATE", u"DATETIME", u"TIME", u"B8601DZ", u"YYMMDD", u"JULIAN"}) {
            double out = 0;
            int32_t kind = -1;
            const int32_t s = zv::readByPattern(name, std::char_traits<char16_t>::length(name), nullptr, exact.get(),
                                                n, &out, &kind, i % 2);
            EXPECT_TRUE((s == 0 && kind >= 0 && kind <= 3) || s == 999) << s;
        }
        for (auto entry : {zv::readAnyDate, zv::readAnyTime, zv::readAnyDateTime}) {
            FormatCall guess{};
            double out = 0;
            guess.input = exact.get();
            guess.inputLength = int32_t(n);
            guess.width = int32_t(rng() % 260);
            guess.output = &out;
            EXPECT_EQ(entry(&guess, nullptr), 0);
        }
        double date = zv::missingValue(), time = zv::missingValue(), cutoff = 1960;
        const int32_t r = zv::readLocaleForm(&call, exact.get(), n, p.get(), int64_t(pattern.size()), &date, &time);
        EXPECT_TRUE((r == 0 || r == 2 || r == -1) && (zv::isMissing(date) || (date >= -138061 && date < 6589336)));
        const int32_t w = zv::readWeekText(exact.get(), n, u"U", &cutoff);
        EXPECT_TRUE(w == 0 || w == 1 || w == -1 || w == int32_t(0x80000000u)) << w;
        zvhost::CallSpec spec;
        spec.locale = locales[i % 5];
        spec.fieldLimit = int32_t(rng() % (text.size() + 3)) - 1;
        const zvhost::ReadResult res = zvhost::runInformat(host, row(informats[i % 5]), spec, zvhost::utf8(text));
        EXPECT_TRUE(res.status == 0 || res.status == 1 || res.status == 999 || res.status == int32_t(0x80000000u));
        EXPECT_FALSE(res.fieldsChanged);
    }
}

} // namespace
