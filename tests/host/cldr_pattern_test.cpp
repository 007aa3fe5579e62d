// The CLDR pattern converter: exact results on a table of patterns, and a
// differential check of every exact conversion against ICU's own formatting.
#include <gtest/gtest.h>

#include <unicode/calendar.h>
#include <unicode/dtfmtsym.h>
#include <unicode/dtptngen.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

#include <memory>
#include <string>

#include "cldr.hpp"

// Helpers defined in cldr_support_test.cpp.
namespace zvhosttest {
std::string asUtf8(std::u16string_view text);
std::u16string fromIcu(const icu::UnicodeString &text);
icu::UnicodeString toIcu(std::u16string_view text);
std::u16string blanksForNoBreak(std::u16string text);
bool onlyEngineDirectives(std::u16string_view pattern);
bool onlyReaderDirectives(std::u16string_view pattern);
struct TableNames {
    explicit TableNames(const std::vector<uint8_t> &table);
    std::vector<std::u16string> items;
    std::u16string era;
};
std::u16string expand(std::u16string_view pattern, const TableNames &names, int year, int month, int day, int hour,
                      int minute, int second);
} // namespace zvhosttest

namespace {

using zvhost::ConvertedPattern;
using zvhost::ConvertOptions;
using zvhost::convertCldrPattern;
using zvhost::WeekRule;
using zvhosttest::asUtf8;

struct ConvertCase {
    const char16_t *cldr;
    const char16_t *writing; // forReading false
    bool writingExact;
    const char16_t *reading; // forReading true
    bool readingExact;
};

const ConvertCase kConvertCases[] = {
    // Years.
    {u"y", u"%Y", true, u"%Y", true},
    {u"yy", u"%y", true, u"%y", true},
    {u"yyyy", u"%Y", true, u"%Y", true},
    {u"yyyyy", u"%Y", false, u"%Y", false},
    {u"u", u"%Y", true, u"%Y", true},
    {u"r", u"%Y", true, u"%Y", true},
    // Months, formatting and stand-alone, every width.
    {u"M", u"%#m", true, u"%O", true},
    {u"MM", u"%m", true, u"%m", true},
    {u"MMM", u"%b", true, u"%b", true},
    {u"MMMM", u"%B", true, u"%B", true},
    {u"MMMMM", u"%b", false, u"%b", false},
    {u"L", u"%#m", true, u"%O", true},
    {u"LL", u"%m", true, u"%m", true},
    {u"LLL", u"%#b", true, u"%b", false},
    {u"LLLL", u"%#B", true, u"%B", false},
    // Days.
    {u"d", u"%#d", true, u"%E", true},
    {u"dd", u"%d", true, u"%d", true},
    {u"D", u"%#j", true, u"%j", false},
    {u"DDD", u"%j", true, u"%j", true},
    // Weekdays.
    {u"E", u"%a", true, u"%a", true},
    {u"EEE", u"%a", true, u"%a", true},
    {u"EEEE", u"%A", true, u"%A", true},
    {u"EEEEE", u"%a", false, u"%a", false},
    {u"eee", u"%a", true, u"%a", true},
    {u"eeee", u"%A", true, u"%A", true},
    {u"ccc", u"%#a", true, u"%a", false},
    {u"cccc", u"%#A", true, u"%A", false},
    {u"e", u"%u", false, u"", false},
    // Quarters.
    {u"QQQ", u"%q", true, u"%q", true},
    {u"QQQQ", u"%Q", true, u"%Q", true},
    {u"Q", u"%q", false, u"%q", false},
    {u"qqq", u"%#q", true, u"%q", false},
    {u"qqqq", u"%#Q", true, u"%Q", false},
    // Clock.
    {u"h", u"%#I", true, u"%I", false},
    {u"hh", u"%I", true, u"%I", true},
    {u"H", u"%#H", true, u"%H", false},
    {u"HH", u"%H", true, u"%H", true},
    {u"K", u"%#L", false, u"%I", false},
    {u"k", u"%#K", true, u"%H", false},
    {u"kk", u"%K", true, u"%H", false},
    {u"m", u"%#M", true, u"%M", false},
    {u"mm", u"%M", true, u"%M", true},
    {u"s", u"%#S", true, u"%S", false},
    {u"ss", u"%S", true, u"%S", true},
    {u"a", u"%p", true, u"%p", true},
    {u"B", u"%p", false, u"%p", false},
    // Week fields under the ISO rule (the default).
    {u"w", u"%#V", true, u"%V", false},
    {u"ww", u"%V", true, u"%V", true},
    {u"Y", u"%G", true, u"%Y", false},
    {u"YY", u"%g", true, u"%y", false},
    // Zones: the offset when writing, nothing when reading.
    {u"z", u"%z", false, u"", false},
    {u"zzzz", u"%z", false, u"", false},
    {u"XXX", u"%z", false, u"", false},
    {u"HH:mm z", u"%H:%M %z", false, u"%H:%M", false},
    {u"h:mm:ss a zzzz", u"%#I:%M:%S %p %z", false, u"%I:%M:%S %p", false},
    {u"H:mm:ss (zzzz)", u"%#H:%M:%S (%z)", false, u"%H:%M:%S", false},
    {u"Bh:mm:ss [zzzz]", u"%p%#I:%M:%S [%z]", false, u"%p%I:%M:%S", false},
    // Fractions of a second go with their separator.
    {u"HH:mm:ss.SSS", u"%H:%M:%S", false, u"%H:%M:%S", false},
    // Era without a name given: dropped, blanks tidied.
    {u"d MMMM G y", u"%#d %B %Y", false, u"%E %B %Y", false},
    // Literal text: quotes, doubled quotes, percent signs, letters in quotes.
    {u"d 'de' MMMM 'de' y", u"%#d de %B de %Y", true, u"%E de %B de %Y", true},
    {u"h 'o''clock' a", u"%#I o'clock %p", true, u"%I o'clock %p", false},
    {u"''yy", u"'%y", true, u"'%y", true},
    {u"'%'d", u"%%%#d", true, u"%E", false},
    {u"d%", u"%#d%%", true, u"%E", false},
    {u"'week' w 'of' Y", u"week %#V of %G", true, u"week %V of %Y", false},
    {u"'it''s' HH", u"it's %H", true, u"it's %H", true},
    // Narrow no-break space and no-break space become blanks; other
    // characters stay.
    {u"h:mm\u202Fa", u"%#I:%M %p", true, u"%I:%M %p", false},
    {u"d\u00A0MMM", u"%#d %b", true, u"%E %b", true},
    {u"y\u5E74M\u6708d\u65E5", u"%Y\u5E74%#m\u6708%#d\u65E5", true, u"%Y\u5E74%O\u6708%E\u65E5", true},
    {u"d\u200F/M\u200F/y", u"%#d\u200F/%#m\u200F/%Y", true, u"%E\u200F/%O\u200F/%Y", true},
    // Whole patterns.
    {u"EEEE, MMMM d, y", u"%A, %B %#d, %Y", true, u"%A, %B %E, %Y", true},
    {u"dd.MM.yy", u"%d.%m.%y", true, u"%d.%m.%y", true},
    {u"MMM d, y, h:mm:ss\u202Fa", u"%b %#d, %Y, %#I:%M:%S %p", true, u"%b %E, %Y, %I:%M:%S %p", false},
    {u"y. M. d.", u"%Y. %#m. %#d.", true, u"%Y. %O. %E.", true},
    // Letters that are no pattern fields are dropped.
    {u"j:mm", u":%M", false, u":%M", false},
    {u"", u"", true, u"", true},
};

class ConvertTable : public ::testing::TestWithParam<ConvertCase> {};

TEST_P(ConvertTable, WritingAndReading) {
    const ConvertCase &c = GetParam();
    ConvertedPattern w = convertCldrPattern(c.cldr, false);
    EXPECT_EQ(asUtf8(w.pattern), asUtf8(c.writing)) << asUtf8(c.cldr);
    EXPECT_EQ(w.exact, c.writingExact) << asUtf8(c.cldr);
    EXPECT_TRUE(w.exact || !w.notes.empty()) << "a loss must be written down: " << asUtf8(c.cldr);

    ConvertedPattern r = convertCldrPattern(c.cldr, true);
    EXPECT_EQ(asUtf8(r.pattern), asUtf8(c.reading)) << asUtf8(c.cldr);
    EXPECT_EQ(r.exact, c.readingExact) << asUtf8(c.cldr);
    EXPECT_TRUE(r.exact || !r.notes.empty()) << asUtf8(c.cldr);
    EXPECT_TRUE(zvhosttest::onlyReaderDirectives(r.pattern)) << asUtf8(r.pattern);
    EXPECT_TRUE(zvhosttest::onlyEngineDirectives(w.pattern)) << asUtf8(w.pattern);
}

INSTANTIATE_TEST_SUITE_P(Cldr, ConvertTable, ::testing::ValuesIn(kConvertCases));

struct WeekCase {
    const char16_t *cldr;
    WeekRule rule;
    const char16_t *expected;
    bool exact;
};

const WeekCase kWeekCases[] = {
    {u"'week' w 'of' Y", WeekRule::Iso, u"week %#V of %G", true},
    {u"'week' w 'of' Y", WeekRule::SundayFirst, u"week %#U of %Y", false},
    {u"'week' w 'of' Y", WeekRule::MondayFirst, u"week %#W of %Y", false},
    {u"Y-'W'ww", WeekRule::Iso, u"%G-W%V", true},
    {u"YY-'W'ww", WeekRule::SundayFirst, u"%y-W%U", false},
};

TEST(CldrConvert, WeekFieldsFollowTheWeekRule) {
    for (const WeekCase &c : kWeekCases) {
        ConvertOptions options;
        options.weekRule = c.rule;
        ConvertedPattern p = convertCldrPattern(c.cldr, options);
        EXPECT_EQ(asUtf8(p.pattern), asUtf8(c.expected)) << asUtf8(c.cldr);
        EXPECT_EQ(p.exact, c.exact) << asUtf8(c.cldr);
    }
}

TEST(CldrConvert, EraNameBecomesLiteralText) {
    ConvertOptions options;
    options.eraName = u"AD";
    ConvertedPattern p = convertCldrPattern(u"d MMMM G y", options);
    EXPECT_EQ(asUtf8(p.pattern), "%#d %B AD %Y");
    EXPECT_TRUE(p.exact);
    options.eraName = u"100%";
    EXPECT_EQ(asUtf8(convertCldrPattern(u"G y", options).pattern), "100%% %Y");
    options.forReading = true;
    options.eraName = u"\u0E04.\u0E28.";
    EXPECT_EQ(asUtf8(convertCldrPattern(u"d MMMM G y", options).pattern), asUtf8(u"%E %B \u0E04.\u0E28. %Y"));
}

TEST(CldrConvert, UnterminatedQuoteIsWrittenDown) {
    ConvertedPattern p = convertCldrPattern(u"HH 'h", false);
    EXPECT_EQ(asUtf8(p.pattern), "%H h");
    EXPECT_FALSE(p.notes.empty());
}

// Any text at all converts into a pattern of valid directives, on both sides.
TEST(CldrConvert, ArbitraryTextGivesValidDirectives) {
    const std::u16string alphabet = u"yMLdEecahHKkmsSzZvVOXxQqGwWDFgAUbBjJCl'%. ,/-\u202F\u00A0\u5E74";
    uint32_t state = 12345;
    for (int round = 0; round < 3000; ++round) {
        std::u16string text;
        int length = static_cast<int>(state % 14);
        for (int k = 0; k < length; ++k) {
            state = state * 1103515245u + 12345u;
            text += alphabet[(state >> 16) % alphabet.size()];
        }
        state = state * 1103515245u + 12345u;
        ConvertedPattern w = convertCldrPattern(text, false);
        ConvertedPattern r = convertCldrPattern(text, true);
        ASSERT_TRUE(zvhosttest::onlyEngineDirectives(w.pattern)) << asUtf8(text) << " -> " << asUtf8(w.pattern);
        ASSERT_TRUE(zvhosttest::onlyReaderDirectives(r.pattern)) << asUtf8(text) << " -> " << asUtf8(r.pattern);
        for (char16_t c : w.pattern) ASSERT_TRUE(c != u'\u202F' && c != u'\u00A0') << asUtf8(text);
    }
}

// ---------------------------------------------------------------------------
// Differential: for every locale, the CLDR patterns that the table is built
// from, converted exactly, write through a small % expander over the table's
// own names what ICU writes through the CLDR pattern.

struct Moment {
    int year, month, day, hour, minute, second;
};

const Moment kMoments[] = {
    {2024, 1, 5, 3, 4, 5},    {1999, 12, 31, 23, 59, 59}, {2024, 7, 14, 12, 30, 0},
    {2001, 3, 9, 0, 7, 8},    {2030, 10, 21, 15, 45, 30}, {1960, 2, 29, 11, 0, 1},
    {2027, 1, 1, 0, 0, 0},    {2026, 12, 28, 18, 5, 9}, {2023, 8, 16, 9, 41, 27},
    {2012, 4, 30, 21, 9, 50}, {1984, 5, 6, 13, 13, 13},   {2040, 6, 17, 6, 6, 6},
    {1970, 9, 2, 19, 0, 59},  {2019, 11, 24, 10, 59, 1},
};

TEST(CldrConvert, ExactConversionsWriteWhatIcuWrites) {
    int compared = 0;
    int replacedNames = 0;
    for (const std::string &name : zvhost::availableLocales()) {
        std::vector<uint8_t> table;
        std::string error;
        ASSERT_TRUE(zvhost::buildCldrTable(name, table, error)) << name << ": " << error;
        UErrorCode status = U_ZERO_ERROR;
        icu::Locale locale(name.c_str());
        locale.setKeywordValue("calendar", "gregorian", status);
        locale.setKeywordValue("numbers", "latn", status);
        std::unique_ptr<icu::DateTimePatternGenerator> generator(
            icu::DateTimePatternGenerator::createInstance(locale, status));
        ASSERT_TRUE(U_SUCCESS(status)) << name;
        std::vector<std::u16string> patterns;
        for (const char *sk : {"yMMMEd", "yMMMM", "yMMM", "MMMMd", "MMMd", "y", "yy", "yQQQQ", "yQQQ", "hms",
                               "Hms", "yMMMMdjmmss", "yMMMdhmmss", "yMMMMEEEEdjmmss", "yMd", "yMMMMEEEEd"}) {
            icu::UnicodeString p = generator->getBestPattern(icu::UnicodeString(sk, -1, US_INV), status);
            patterns.push_back(zvhosttest::fromIcu(p));
        }
        for (int style : {icu::DateFormat::kFull, icu::DateFormat::kLong, icu::DateFormat::kMedium,
                          icu::DateFormat::kShort}) {
            std::unique_ptr<icu::DateFormat> f(
                icu::DateFormat::createDateInstance(static_cast<icu::DateFormat::EStyle>(style), locale));
            icu::UnicodeString p;
            dynamic_cast<icu::SimpleDateFormat &>(*f).toPattern(p);
            patterns.push_back(zvhosttest::fromIcu(p));
        }
        zvhosttest::TableNames names(table);
        icu::DateFormatSymbols symbols(locale, status);
        int32_t eraCount = 0;
        const icu::UnicodeString *eras = symbols.getEras(eraCount);
        if (eraCount >= 2) names.era = zvhosttest::fromIcu(eras[1]);
        // Wide names too long for a record stand in the table in their
        // abbreviated form: ICU's text is compared with that form put in.
        std::vector<std::pair<std::u16string, std::u16string>> replaced;
        using S = icu::DateFormatSymbols;
        auto longNames = [&](const icu::UnicodeString *list, int32_t count, int skip, int want, int item) {
            for (int k = 0; k < want && k + skip < count; ++k) {
                std::u16string icuName = zvhosttest::fromIcu(list[k + skip]);
                if (zvhost::escapeForTable(icuName).size() > 160)
                    replaced.emplace_back(icuName, names.items[static_cast<size_t>(item + k)]);
            }
        };
        for (auto [context, abbreviated, wide] : {std::tuple{S::FORMAT, 59, 71}, std::tuple{S::STANDALONE, 83, 95}}) {
            int32_t n = 0;
            longNames(symbols.getMonths(n, context, S::ABBREVIATED), n, 0, 12, abbreviated);
            longNames(symbols.getMonths(n, context, S::WIDE), n, 0, 12, wide);
        }
        for (auto [context, abbreviated, wide] :
             {std::tuple{S::FORMAT, 107, 114}, std::tuple{S::STANDALONE, 121, 128}}) {
            int32_t n = 0;
            longNames(symbols.getWeekdays(n, context, S::ABBREVIATED), n, 1, 7, abbreviated);
            longNames(symbols.getWeekdays(n, context, S::WIDE), n, 1, 7, wide);
        }
        for (auto [context, abbreviated, wide] :
             {std::tuple{S::FORMAT, 135, 139}, std::tuple{S::STANDALONE, 143, 147}}) {
            int32_t n = 0;
            longNames(symbols.getQuarters(n, context, S::ABBREVIATED), n, 0, 4, abbreviated);
            longNames(symbols.getQuarters(n, context, S::WIDE), n, 0, 4, wide);
        }
        for (const std::u16string &cldr : patterns) {
            ConvertOptions options;
            options.eraName = names.era;
            ConvertedPattern converted = convertCldrPattern(cldr, options);
            if (!converted.exact) continue;
            // The no-break spaces of the pattern become blanks on both sides;
            // those inside names stay.
            icu::SimpleDateFormat icuFormat(zvhosttest::toIcu(zvhosttest::blanksForNoBreak(cldr)), locale, status);
            ASSERT_TRUE(U_SUCCESS(status)) << name << " " << asUtf8(cldr);
            icuFormat.adoptTimeZone(icu::TimeZone::createTimeZone("UTC"));
            for (const Moment &m : kMoments) {
                std::unique_ptr<icu::Calendar> calendar(icu::Calendar::createInstance(
                    icu::TimeZone::createTimeZone("UTC"), icu::Locale("en_US@calendar=gregorian"), status));
                calendar->clear();
                calendar->set(m.year, m.month - 1, m.day, m.hour, m.minute, m.second);
                UDate when = calendar->getTime(status);
                icu::UnicodeString icuText;
                icuFormat.format(when, icuText);
                std::u16string expected = zvhosttest::fromIcu(icuText);
                for (const auto &[longName, shortName] : replaced) {
                    size_t at = expected.find(longName);
                    if (at != std::u16string::npos) {
                        expected.replace(at, longName.size(), shortName);
                        ++replacedNames;
                    }
                }
                std::u16string ours = zvhosttest::expand(converted.pattern, names, m.year, m.month, m.day, m.hour,
                                                         m.minute, m.second);
                ASSERT_EQ(asUtf8(ours), asUtf8(expected))
                    << name << ": " << asUtf8(cldr) << " -> " << asUtf8(converted.pattern);
                ++compared;
            }
        }
    }
    EXPECT_GT(compared, 50000);
    // brx has quarter names too long for a record.
    EXPECT_GT(replacedNames, 0);
}

} // namespace
