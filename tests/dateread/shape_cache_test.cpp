// Texts of one shape take their cut from the shared cache. A reading that
// takes a kept cut agrees with one that cuts afresh, over the pattern items
// of the CLDR locales and texts of their own parts; the cut of a text is
// found again for another text of its shape.
#include <random>
#include <string>
#include <vector>

#include "cldr.hpp"
#include "dateread/pattern_cut.hpp"
#include "dateread/shape_cache.hpp"
#include "locale/block.hpp"
#include "support.hpp"

namespace {

struct Reading {
    int32_t status;
    uint64_t date, time;
    bool operator==(const Reading &) const = default;
};

Reading readForm(FormatCall &call, const std::u16string &pattern, const std::u16string &text) {
    double date = zv::missingValue(), time = zv::missingValue();
    const int32_t status = zv::readLocaleForm(&call, text.data(), int64_t(text.size()), pattern.data(),
                                              int64_t(pattern.size()), &date, &time);
    return {status, zv::bitsOf(date), zv::bitsOf(time)};
}

// A text of digit runs, marks and the given parts; most are long enough to
// be kept.
std::u16string someText(std::mt19937 &rng, const std::vector<std::u16string> &parts) {
    static const char16_t *const marks[] = {u".", u"-", u":", u"/", u" ", u", ", u",", u"'", u"\u00a0", u"h"};
    std::u16string t;
    const size_t length = 16 + rng() % 36;
    while (t.size() < length) {
        switch (rng() % 3) {
        case 0: t += std::u16string(1 + rng() % 4, u'7'); break;
        case 1: t += marks[rng() % std::size(marks)]; break;
        default: t += parts[rng() % parts.size()];
        }
    }
    return t;
}

// The same text with other digits.
std::u16string otherDigits(std::u16string text, std::mt19937 &rng) {
    for (char16_t &c : text)
        if (c >= u'0' && c <= u'9') c = char16_t(u'0' + rng() % 10);
    return text;
}

class ShapeCache : public dr::Module {
protected:
    void TearDown() override { zv::enableShapeCache(true); }
};

TEST_F(ShapeCache, KeptCutsReadAsFreshCuts) {
    zvhost::Session session(host);
    std::mt19937 rng(2024);
    int compared = 0, read = 0;
    for (const std::string &locale : zvhost::availableLocales()) {
        FormatCall call = callIn(session, locale);
        const LocaleBlock *block = call.localeBlock;
        ASSERT_NE(block, nullptr);
        auto item = [block](int k) { return std::u16string(block->items[k].text, size_t(block->items[k].length)); };
        std::vector<std::u16string> parts = {item(zv::kItemAm), item(zv::kItemPm)};
        for (int k = 0; k < 12; ++k) parts.push_back(item(zv::kItemMonthAbbr + k));
        for (int k = 0; k < 7; ++k) parts.push_back(item(zv::kItemWeekdayFull + k));
        // The patterns' literals, and a literal with a digit, which no slot keeps.
        std::vector<std::u16string> patterns = {u"%d 1 %m-%Y %H:%M"};
        for (int k = zv::kItemDate; k <= zv::kItemTime; ++k) patterns.push_back(item(k));
        for (const std::u16string &p : patterns)
            for (size_t i = 0, j; i < p.size(); i = j + 1) {
                j = std::min(p.find(u'%', i), p.size());
                if (j > i) parts.push_back(p.substr(i, j - i));
            }
        for (const std::u16string &pattern : patterns) {
            for (int k = 0; k < 2; ++k) {
                const std::u16string text = someText(rng, parts);
                std::vector<std::u16string> others;
                std::vector<Reading> fresh;
                zv::enableShapeCache(false);
                for (int v = 0; v < 3; ++v) {
                    others.push_back(otherDigits(text, rng));
                    fresh.push_back(readForm(call, pattern, others.back()));
                }
                zv::enableShapeCache(true);
                readForm(call, pattern, text);
                for (int v = 0; v < 3; ++v, ++compared) {
                    const Reading kept = readForm(call, pattern, others[v]);
                    read += kept.status >= 0;
                    ASSERT_EQ(kept, fresh[v]) << locale << " [" << zvhost::utf8(pattern) << "] ["
                                              << zvhost::utf8(others[v]) << "] after [" << zvhost::utf8(text) << "]";
                }
            }
        }
    }
    EXPECT_GT(compared, 100000);
    EXPECT_GT(read, compared / 20);
}

// The cut of one text is found for another of its shape, and not for a
// text of another shape, a pattern with a digit in a literal, or a text
// too short to be worth the look.
TEST_F(ShapeCache, FoundForTextsOfOneShape) {
    zvhost::Session session(host);
    FormatCall call = callIn(session, "de_DE");
    ASSERT_NE(call.localeBlock, nullptr);
    auto found = [&](const std::u16string &pattern, const std::u16string &first, const std::u16string &then) {
        readForm(call, pattern, first);
        zv::PatternCutRoom room;
        const zv::ShapeKey key{&zv::preparedPattern(pattern.data(), int64_t(pattern.size()), room), true,
                               then.data(), int64_t(then.size())};
        zv::ShapeProbe probe;
        zv::TextToken tokens[zv::kMaxPatternTokens];
        bool anyNoDigits = false;
        return zv::shapeMayBeKept(key) && zv::keptCut(key, probe, tokens, &anyNoDigits) >= 0;
    };
    const std::u16string pattern = u"%d.%m.%Y, %H:%M:%S";
    EXPECT_TRUE(found(pattern, u"05.03.2024, 14:07:09", u"17.11.2023, 09:41:55"));
    EXPECT_FALSE(found(pattern, u"05.03.2024, 14:07:09", u"17.11.2023; 09:41:55"));
    EXPECT_FALSE(found(pattern, u"05.03.2024, 14:07:09", u"17.11.2023, 09741:55")); // a mark turned digit
    EXPECT_FALSE(found(pattern, u"05.03.2024, 14:07:09", u"17.11.2023, 09:41:5"));
    EXPECT_FALSE(found(u"%d.%m.%Y, %H:%M:%S 1", u"05.03.2024, 14:07:09 1", u"17.11.2023, 09:41:55 1"));
    EXPECT_FALSE(found(u"%H:%M:%S", u"14:07:09", u"09:41:55"));
    // The shortest and the longest texts kept, and one too long.
    const std::u16string shortest = u"05.03.2024 14:07", longest = u"05.03.2024, 14:07:09; 06.03.2024, 15:08:10; 1234";
    ASSERT_EQ(shortest.size(), size_t(zv::kFewestShapeUnits));
    ASSERT_EQ(longest.size(), size_t(zv::kMostShapeUnits));
    EXPECT_TRUE(found(pattern, shortest, u"17.11.2023 09:41"));
    EXPECT_FALSE(found(pattern, shortest.substr(1), u"7.11.2023 09:41"));
    EXPECT_TRUE(found(pattern, longest, u"17.11.2023, 09:41:55; 18.11.2023, 10:42:56; 5678"));
    EXPECT_FALSE(found(pattern, longest, u"17.11.2023, 09:41:55; 18.11.2023, 10:42:56: 5678"));
    EXPECT_FALSE(found(pattern, longest + u"0", u"17.11.2023, 09:41:55; 18.11.2023, 10:42:56; 56789"));
    // Turned off, the cache keeps and finds nothing.
    zv::enableShapeCache(false);
    EXPECT_FALSE(found(pattern, u"05.03.2024, 14:07:09", u"17.11.2023, 09:41:55"));
}

// Whether separators split depends on the locale's order, and a cut made
// where they split is not one where they do not.
TEST_F(ShapeCache, CutsWithAndWithoutSplitsKeptApart) {
    const std::u16string pattern = u"%d %m %Y %H:%M:%S";
    zvhost::Session session(host);
    std::vector<Reading> fresh, kept;
    for (bool on : {false, true}) {
        zv::enableShapeCache(on);
        for (const char *locale : {"de_DE", "en_US", "de_DE", "en_US"}) {
            FormatCall call = callIn(session, locale);
            ASSERT_NE(call.localeBlock, nullptr);
            (on ? kept : fresh).push_back(readForm(call, pattern, u"05.03.2024 14:07:09"));
        }
    }
    EXPECT_EQ(kept, fresh);
    EXPECT_NE(fresh[0], fresh[1]); // DMY splits "05.03.2024", MDY does not
}

} // namespace
