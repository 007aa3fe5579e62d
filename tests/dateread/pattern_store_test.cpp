// The store of prepared patterns: a pattern found in it is cut as a pattern
// cut on the spot, whatever the store holds and wherever the text stands,
// and the store keeps to its size.
#include <string>
#include <vector>

#include "cldr.hpp"
#include "dateread/pattern_cut.hpp"
#include "locale/block.hpp"
#include "support.hpp"

namespace {

using zv::PatternCut;
using zv::PatternCutRoom;

// Two cuts are alike when their lists name the same parts of the same
// texts; their texts may stand in different places.
std::string differences(const PatternCut &a, const PatternCut &b) {
    auto text = [](const PatternCut &c, int32_t start, int32_t length) {
        return std::u16string(c.pattern + start, size_t(length));
    };
    if (a.count != b.count || a.literalCount != b.literalCount) return "counts";
    for (int32_t k = 0; k < a.count; ++k)
        if (a.tokens[k].kind != b.tokens[k].kind || a.pattern[a.tokens[k].start] != b.pattern[b.tokens[k].start])
            return "directive " + std::to_string(k);
    for (int32_t k = 0; k < a.literalCount; ++k) {
        const zv::PatternLiteral &x = a.literals[k], &y = b.literals[k];
        if (text(a, x.start, x.length) != text(b, y.start, y.length) || x.fieldsBefore != y.fieldsBefore ||
            x.first != y.first)
            return "literal " + std::to_string(k);
    }
    if (a.firsts != b.firsts || a.otherFirsts != b.otherFirsts) return "first characters";
    if (a.orderCount != b.orderCount || std::u16string(a.order, 3) != std::u16string(b.order, 3)) return "order";
    for (int way = 0; way < 2; ++way) {
        if (a.worthCount[way] != b.worthCount[way]) return "worth counts";
        for (int32_t i = 0; i < a.worthCount[way]; ++i)
            if (a.worthUnits[way][i] != b.worthUnits[way][i]) return "worth units";
    }
    return "";
}

// The prepared cut against one made on the spot; and the second time the
// pattern comes, it comes from the store.
void expectPrepared(const std::u16string &pattern, const std::string &where) {
    PatternCutRoom fresh, room, again;
    const PatternCut &made = zv::cutPattern(pattern.data(), int64_t(pattern.size()), fresh);
    const PatternCut &prepared = zv::preparedPattern(pattern.data(), int64_t(pattern.size()), room);
    EXPECT_EQ(differences(prepared, made), "") << where;
    const PatternCut &second = zv::preparedPattern(pattern.data(), int64_t(pattern.size()), again);
    EXPECT_EQ(differences(second, made), "") << where;
}

// Every pattern item of every CLDR locale.
class PatternStore : public dr::Module {};

TEST_F(PatternStore, CldrPatternsAsCutOnTheSpot) {
    zvhost::Session session(host);
    int patterns = 0;
    for (const std::string &locale : zvhost::availableLocales()) {
        const LocaleBlock *block = callIn(session, locale).localeBlock;
        ASSERT_NE(block, nullptr);
        for (int item = zv::kItemDate; item <= zv::kItemTime; ++item, ++patterns) {
            const LocaleItem &p = block->items[item];
            expectPrepared(std::u16string(p.text, size_t(p.length)), locale + " item " + std::to_string(item));
        }
    }
    EXPECT_GT(patterns, 10000);
    EXPECT_LE(zv::preparedPatternBytes(), zv::kPreparedPatternRoom);
}

// The store finds a pattern by where its text stands and by what its ends
// hold; neither may pass a pattern off for another.
TEST_F(PatternStore, TextsThatLookAlikeAreToldApart) {
    std::u16string buffer = u"%d.%m.%Y %H:%M:%S";
    expectPrepared(buffer, "first text");
    buffer[2] = u'/'; // same place, same length, same ends
    expectPrepared(buffer, "changed in place");
    buffer[5] = u'%'; // "%d/%m%%Y": a literal "%" now, and no year
    expectPrepared(buffer, "changed again");
    const std::u16string shortOnes[] = {u"%d", u"%m", u"%", u"%%", u"x", u"%d%m", u"%d.%m", u"%m.%d"};
    for (const std::u16string &p : shortOnes) expectPrepared(p, zvhost::utf8(p));
    std::u16string longest(200, u'.'); // longer than any item: cut at each call
    longest.replace(0, 6, u"%d%m%Y");
    expectPrepared(longest, "long pattern");
    expectPrepared(u"", "empty pattern");
}

// Thousands of patterns: the store fills and stops growing, and each
// pattern, stored or not, is cut alike.
TEST_F(PatternStore, KeepsToItsSizeWhenFull) {
    for (int i = 0; i < 12000; ++i) {
        const std::u16string pattern = u"%d.%m.%Y " + zvhost::utf16(std::to_string(i * 7919)) + u" %H:%M";
        expectPrepared(pattern, zvhost::utf8(pattern));
        ASSERT_LE(zv::preparedPatternBytes(), zv::kPreparedPatternRoom);
    }
    EXPECT_GT(zv::preparedPatternBytes(), zv::kPreparedPatternRoom * 9 / 10);
    expectPrepared(u"%Y-%m-%d after the store is full", "late pattern");
}

} // namespace
