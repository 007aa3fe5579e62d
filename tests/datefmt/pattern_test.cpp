// The % pattern engine: the directives that glibc's strftime shares with it
// compared over random datetimes, the others on one date.
#include <cmath>
#include <cstring>
#include <ctime>
#include <memory>
#include <random>

#include "dates.hpp"
#include "datefmt/calendar.hpp"
#include "datefmt/pattern.hpp"
#include "frame/frame.hpp"

namespace {

void setItem(LocaleBlock &b, int k, const std::string &t) {
    b.items[k].length = int64_t(t.size());
    std::copy(t.begin(), t.end(), b.items[k].text);
}

// Names of the C locale as strftime writes them; the other-form lists carry
// an "o" in front so that the tests can tell them apart.
std::unique_ptr<LocaleBlock> cBlock() {
    auto b = std::make_unique<LocaleBlock>();
    std::memset(b.get(), 0, sizeof(LocaleBlock));
    for (auto [k, t] : dt::englishItems()) setItem(*b, k, t);
    for (int k = 0; k < 12 + 7; ++k) {
        const std::tm tm = dt::tmOf(k < 12 ? dt::civilDays(2024, k + 1, 1) : k - 12 + 2);
        char l[32], s[32];
        std::strftime(l, sizeof l, k < 12 ? "%B" : "%A", &tm);
        std::strftime(s, sizeof s, k < 12 ? "%b" : "%a", &tm);
        const int full = k < 12 ? 71 + k : 114 + k - 12, abbr = k < 12 ? 59 + k : 107 + k - 12;
        setItem(*b, full, l), setItem(*b, abbr, s);
        setItem(*b, full + 24 - (k >= 12) * 10, std::string("o") + l), setItem(*b, abbr + 24 - (k >= 12) * 10, std::string("o") + s);
    }
    for (int q = 0; q < 4; ++q) setItem(*b, 147 + q, "oquarter " + std::to_string(q + 1)), setItem(*b, 143 + q, "oQ" + std::to_string(q + 1));
    setItem(*b, 28, "%d.%m.%Y"), setItem(*b, 172, ",");
    return b;
}
const LocaleBlock &block() { static auto b = cBlock(); return *b; }

std::u16string expand(std::u16string_view pattern, double seconds, int decimals = 0, int width = 200, const LocaleBlock *b = &block(),
                      int32_t *status = nullptr) {
    ZvChar out[512];
    int w = width;
    const int32_t s = zv::writeDatetimePattern(out, &w, pattern.data(), int64_t(pattern.size()), seconds, decimals, b, nullptr);
    if (status) *status = s;
    return std::u16string(out, size_t(s == 0 && width > 0 ? w : std::abs(width)));
}

TEST(Pattern, SharedDirectivesAgreeWithStrftime) {
    std::mt19937_64 rng(11);
    const int64_t first = dt::civilDays(1583, 1, 1), last = dt::civilDays(3999, 12, 31);
    const char *spec = "%Y-%m-%d %H:%M:%S %I %p %y %j %U %W %V %G %g %u %w %A %a %B %b %e %T %%";
    const std::u16string pattern = zvhost::utf16(spec);
    for (int i = 0; i < 20000; ++i) {
        const int64_t day = first + int64_t(rng() % uint64_t(last - first + 1));
        const int64_t second = int64_t(rng() % 86400);
        const std::tm tm = dt::tmOf(day, second);
        char buf[200];
        std::strftime(buf, sizeof buf, spec, &tm);
        ASSERT_EQ(zvhost::utf8(expand(pattern, double(day) * 86400 + double(second))), buf) << day << " " << second;
    }
}

struct Case { const char16_t *pattern, *expected; };

// Tuesday 5 March 2024 at 14:07:09.
TEST(Pattern, DirectivesOfItsOwn) {
    const double t = 23440 * 86400.0 + 50829;
    for (Case c : {Case{u"%#d|%E|%o|%O|%N|%?M|%?N|%M|%0d|%2d|%#y|%#m|%D", u"5|5| 3|3|03|03|03|07|05|05|24|3|05"},
                   Case{u"%#A|%#a|%#B|%#b|%?A|%?B|%?Q", u"oTuesday|oTue|oMarch|oMar|Tue|Mar|Q1"},
                   Case{u"%F|%f|%C|%#C|%c|", u"Tuesday  |Tue|March    |oMarch    |March    |"},
                   Case{u"%Q|%q|%#Q|%#q|%J|%L|%K|%P|%s|%n|%#H|%#I", u"quarter 1|Q1|oquarter 1|oQ1|065|02|14|PM|09|0|14|2"},
                   Case{u"%t|%v|%Z|%x|%X|100%%x|a?b|%+y|%z", u"||XST|05.03.2024|14:07:09|100%x|a?b|24|+0000"}})
        EXPECT_EQ(zvhost::utf8(expand(c.pattern, t)), zvhost::utf8(c.expected)) << zvhost::utf8(c.pattern);
    EXPECT_EQ(expand(u"%Y %G %g", 3660000 * 86400.0), u"1980 1980 80"); // a day of the year 11980
    // Noon and midnight; K holds 24 for the rest of the pattern.
    EXPECT_EQ(expand(u"%I %L %p", 43200), u"12 12 PM");
    EXPECT_EQ(expand(u"%I %L %H %p %K %H %T", 300), u"12 00 00 AM 24 24 24:05:00");
    EXPECT_EQ(expand(u"%H:%M:%S", t + 0.6), u"14:07:10");
    EXPECT_EQ(expand(u"%S|%T|%s|%?S", 7.25, 3), u"07,250|00:00:07|07|07,250");
    EXPECT_EQ(expand(u"%d %H:%M:%S", t + 35570.96, 1), u"06 00:00:00,0");
    EXPECT_EQ(expand(u"%H:%M:%S", t + 35570.96, 2), u"23:59:59,96");
    EXPECT_EQ(expand(u"%S", 7.96, 1), u"08,0");
}

// Random patterns of marks, letters and shorthands give what their
// expansion, done here apart, gives: the pairs of a "%" copied whole, %x and
// %X replaced by texts without a "%".
TEST(Pattern, ShorthandsAsIfExpandedFirst) {
    auto b = cBlock();
    setItem(*b, 28, "<date>"), setItem(*b, 53, "<time>");
    std::mt19937_64 rng(5);
    const std::u16string alphabet = u"%%%xX#0+?dYa ";
    for (int i = 0; i < 20000; ++i) {
        std::u16string p, e;
        for (size_t n = 1 + rng() % 8; n > 0; --n) p += alphabet[rng() % alphabet.size()];
        for (size_t k = 0; k < p.size(); ++k) {
            if (p[k] != u'%' || k + 1 == p.size()) {
                e += p[k];
                continue;
            }
            const char16_t next = p[++k];
            e += next == u'x' ? u"<date>" : next == u'X' ? u"<time>" : std::u16string{u'%', next};
        }
        int32_t s1 = 0, s2 = 0;
        const std::u16string t1 = expand(p, 0, 0, 30, b.get(), &s1), t2 = expand(e, 0, 0, 30, b.get(), &s2);
        ASSERT_TRUE(s1 == s2 && (s1 < 0 || t1 == t2)) << zvhost::utf8(p);
    }
}

TEST(Pattern, CalendarOfItem5) {
    auto b = cBlock();
    struct Cal { const char *code; double day; const char16_t *expected; };
    for (Cal c : {Cal{"JP", 14610, u"0012 12"}, Cal{"JP", 10600, u"0001 01"}, Cal{"JP", 10599, u"0064 64"},
                  Cal{"JP", -17321, u"0001 01"}, Cal{"JP", -33506, u"0001 01"}, Cal{"JP", -33507, u"1868 68"},
                  Cal{"TW", 14610, u"0089 89"}, Cal{"TW", -21914, u"0012 12"}, Cal{"TW", -17897, u"0001 01"}, Cal{"TH", 14610, u"2543 43"},
                  Cal{"THX", 14610, u"2000 00"}, Cal{"JX", 14610, u"2000 00"}, Cal{"XP", 14610, u"2000 00"}}) {
        setItem(*b, 5, c.code);
        EXPECT_EQ(expand(u"%+Y", c.day * 86400, 0, 200, b.get()) + u" " + expand(u"%+y", c.day * 86400, 0, 200, b.get()),
                  c.expected) << c.code << " " << c.day;
    }
    setItem(*b, 5, "TH");
    EXPECT_EQ(expand(u"%Y %+Y %Y", 14610 * 86400.0, 0, 200, b.get()), u"2000 2543 3086");
}

TEST(Pattern, TimesLongerThanADayAndMissingFields) {
    HostAnchor *saved = zv::hostAnchor;
    zvhost::Host host;
    zvextent(host.anchor());
    ZvChar out[64];
    for (auto [seconds, expected] : {std::pair{86700.0, u"24:05|1|**|**|**|**|**"}, std::pair{360000.0, u"100:00|4|**|**|**|**|**"},
                                   std::pair{8640000.0, u"2400:00|100|**|**|**|**|**"}}) {
        int w = 60;
        ASSERT_EQ(zv::writeTimePattern(out, &w, u"%H:%M|%n|%A|%a|%F|%f|%d", 23, seconds, 0, &block()), 0);
        EXPECT_EQ(std::u16string(out, size_t(w)), expected);
    }
    int w = 40;
    const double m = zv::missingValue();
    EXPECT_EQ(zv::expandPattern(23440, m, m, m, u"%T|%S|%I|%L|%P|%n", 17, out, &w, 2, &block(), nullptr), 0);
    EXPECT_EQ(std::u16string(out, size_t(w)), u"**:**:**|**,**|12|00|**|**");
    w = 40;
    EXPECT_EQ(zv::expandPattern(23440, m, m, m, u"%S|", 3, out, &w, 0, &block(), nullptr), 0);
    EXPECT_EQ(std::u16string(out, size_t(w)), u"**|");
    w = 20;
    EXPECT_EQ(zv::writeTimePattern(out, &w, u"%H", 2, -1, 0, &block()), zv::kPatternNoValue);
    zv::hostAnchor = saved;
}

TEST(Pattern, FieldStatuses) {
    const double t = 23440 * 86400.0 + 50829;
    int32_t status = 0;
    EXPECT_EQ(expand(u"%H:%M", t, 0, 3, &block(), &status), u"14:");
    EXPECT_EQ(status, zv::kPatternTooLong);
    // A text cut at the width keeps its zone offset at the end, and gains none.
    EXPECT_EQ(expand(u"%A, %B %d, %Y %z", t, 0, 14, &block(), &status), u"Tuesday, +0000");
    EXPECT_EQ(expand(u"%A, %B %d, %Y", t, 0, 14, &block(), &status), u"Tuesday, March");
    EXPECT_EQ(status, zv::kPatternTooLong);
    EXPECT_EQ(expand(u"%H:%M", t, 0, -7, &block(), &status), u"  14:07");
    EXPECT_EQ(status, 0);
    for (const char16_t *p : {u"%R", u"%X%R", u"%r", u"%#x", u"%+1", u"ok %!", u"%?r"}) {
        ZvChar out[8] = {u'#', u'#', u'#', u'#', u'#', u'#', u'#', u'#'};
        int w = 8;
        EXPECT_EQ(zv::writeDatePattern(out, &w, p, int64_t(std::char_traits<char16_t>::length(p)), 0, &block()), zv::kPatternInvalid);
        EXPECT_TRUE(std::u16string(out, 8) == u"########" && w == 8) << zvhost::utf8(p);
    }
    ZvChar out[8];
    int w = 8;
    EXPECT_EQ(zv::writeDatePattern(out, &w, u"", 0, 0, &block()), zv::kPatternEmpty);
}

} // namespace
