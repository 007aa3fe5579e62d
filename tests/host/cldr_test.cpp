// Locale tables from CLDR against ICU's own data for every locale; converted
// CLDR patterns run through the module and compared with ICU's
// SimpleDateFormat on the original pattern; locale definition files.
#include <gtest/gtest.h>
#include <unicode/calendar.h>
#include <unicode/dcfmtsym.h>
#include <unicode/decimfmt.h>
#include <unicode/dtfmtsym.h>
#include <unicode/dtptngen.h>
#include <unicode/smpdtfmt.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <memory>
#include <random>

#include "cldr.hpp"
#include "support/latin_locales.hpp"
#include "zvhost.hpp"

namespace {

using S = icu::DateFormatSymbols;
using D = icu::DecimalFormatSymbols;

std::u16string fromIcu(const icu::UnicodeString &s) {
    return s.isEmpty() ? std::u16string() : std::u16string(s.getBuffer(), size_t(s.length()));
}

std::u16string item(const std::vector<uint8_t> &table, int k) {
    return zvhost::unescapeTableText(zvhost::rawItem(table, k));
}

// Directives the date engine knows (flags #, 0, a digit, +, ? before the
// letter), and the smaller set the date reader knows.
bool onlyDirectives(std::u16string_view p, bool reader) {
    const std::u16string letters = reader ? u"YyBCObmoEdeIHMSQqAFauwpGUVWZj"
                                          : u"ABCDEFGHIJKLMNOPQSTUVWYZabcdefghijklmnopqstuvwyz%";
    for (size_t i = 0; i < p.size(); ++i) {
        if (p[i] != u'%') continue;
        if (!reader) i += i + 1 < p.size() && (p[i + 1] == u'#' || p[i + 1] == u'0');
        if (!reader) i += i + 1 < p.size() && p[i + 1] >= u'1' && p[i + 1] <= u'9';
        if (!reader) i += i + 1 < p.size() && p[i + 1] == u'+';
        if (!reader) i += i + 1 < p.size() && p[i + 1] == u'?';
        if (++i >= p.size() || letters.find(p[i]) == std::u16string::npos) return false;
    }
    return true;
}

// Every locale ICU knows, built once: what the module reads is there, in the
// form it reads, and is ICU's data.
TEST(CldrTable, EveryLocaleHoldsIcusData) {
    const std::vector<std::string> names = zvhost::availableLocales();
    ASSERT_GT(names.size(), 500u);
    for (const std::string &name : names) {
        SCOPED_TRACE(name);
        std::vector<uint8_t> table;
        std::string error;
        ASSERT_TRUE(zvhost::buildCldrTable(name, table, error)) << error;
        ASSERT_EQ(table.size(), size_t(ZV_LOCALE_TABLE_SIZE));
        EXPECT_EQ(zvhost::rawItem(table, 0), name);
        for (int k = 0; k < ZV_LOCALE_TABLE_ITEMS; ++k)
            ASSERT_EQ(zvhost::escapeForTable(item(table, k)), zvhost::rawItem(table, k)) << "item " << k;
        std::string order = zvhost::rawItem(table, 6);
        std::sort(order.begin(), order.end());
        EXPECT_EQ(order, "DMY");
        for (int k = 28; k <= 57; ++k) EXPECT_TRUE(!item(table, k).empty() && onlyDirectives(item(table, k), false)) << k;
        for (int k : zvhost::kReadItems) EXPECT_TRUE(onlyDirectives(item(table, k), true)) << k;
        UErrorCode status = U_ZERO_ERROR;
        icu::Locale locale(name.c_str());
        locale.setKeywordValue("calendar", "gregorian", status);
        // Names as ICU has them; a wide name too long for a record in its
        // abbreviated form, and one still too long cut between characters.
        S symbols(locale, status);
        auto checkNames = [&](int first, const icu::UnicodeString *wide, const icu::UnicodeString *shorter, int skip, int n) {
            for (int k = 0; k < n; ++k) {
                std::u16string want = fromIcu(wide[k + skip]);
                if (zvhost::escapeForTable(want).size() > 160 && shorter) want = fromIcu(shorter[k + skip]);
                const std::u16string got = item(table, first + k);
                if (zvhost::escapeForTable(want).size() > 160) EXPECT_EQ(want.substr(0, got.size()), got) << first + k;
                else EXPECT_EQ(zvhost::utf8(got), zvhost::utf8(want)) << "item " << first + k;
            }
        };
        int32_t n = 0;
        for (auto [context, at] : {std::pair{S::FORMAT, 0}, std::pair{S::STANDALONE, 24}}) {
            const icu::UnicodeString *a = symbols.getMonths(n, context, S::ABBREVIATED);
            checkNames(59 + at, a, nullptr, 0, 12);
            checkNames(71 + at, symbols.getMonths(n, context, S::WIDE), a, 0, 12);
            a = symbols.getWeekdays(n, context, S::ABBREVIATED);
            checkNames(107 + at * 14 / 24, a, nullptr, 1, 7);
            checkNames(114 + at * 14 / 24, symbols.getWeekdays(n, context, S::WIDE), a, 1, 7);
            a = symbols.getQuarters(n, context, S::ABBREVIATED);
            checkNames(135 + at / 3, a, nullptr, 0, 4);
            checkNames(139 + at / 3, symbols.getQuarters(n, context, S::WIDE), a, 0, 4);
        }
        checkNames(151, symbols.getAmPmStrings(n), nullptr, 0, 2);
        // Separators and signs; one of more than two units loses its
        // direction marks.
        // The module writes Latin digits: the marks are those of the Latin-digit data.
        icu::Locale numberLocale(name.c_str());
        if (!testsupport::latinDigits(numberLocale)) numberLocale.setKeywordValue("numbers", "latn", status);
        D numbers(numberLocale, status);
        auto symbol = [&](D::ENumberFormatSymbol which) {
            std::u16string text = fromIcu(numbers.getConstSymbol(which)), plain;
            if (text.size() <= 2) return text;
            for (char16_t c : text)
                if (c != u'\u200E' && c != u'\u200F' && c != u'\u061C') plain += c;
            return plain.size() == 1 ? text.substr(0, 1) + plain : plain;
        };
        EXPECT_EQ(item(table, 172), symbol(D::kDecimalSeparatorSymbol));
        EXPECT_EQ(item(table, 173), symbol(D::kGroupingSeparatorSymbol));
        EXPECT_EQ(item(table, 176), symbol(D::kMinusSignSymbol));
        EXPECT_EQ(item(table, 161), symbol(D::kMinusSignSymbol));
        // The symbol goes before the number when ICU's currency pattern puts it there.
        std::unique_ptr<icu::NumberFormat> money(icu::NumberFormat::createCurrencyInstance(numberLocale, status));
        icu::UnicodeString pattern;
        if (auto *df = dynamic_cast<icu::DecimalFormat *>(money.get())) df->toPattern(pattern);
        const std::u16string positive = fromIcu(pattern).substr(0, fromIcu(pattern).find(u';'));
        const bool before = positive.find(u'\u00A4') < positive.find_first_of(u"#0");
        if (!positive.empty()) {
            EXPECT_EQ(zvhost::rawItem(table, 164), before ? "1" : "0") << zvhost::utf8(positive);
        }
        // The week rule picks the week directives.
        std::unique_ptr<icu::Calendar> calendar(icu::Calendar::createInstance(locale, status));
        const UCalendarDaysOfWeek first = calendar->getFirstDayOfWeek(status);
        EXPECT_EQ(zvhost::rawItem(table, 43), first == UCAL_MONDAY && calendar->getMinimalDaysInFirstWeek() == 4
                                                  ? "%G-W%V" : first == UCAL_SUNDAY ? "%Y-W%U" : "%Y-W%W");
    }
}

// Puts `pattern` in item 46 of the locale's own table and runs NLDATM on it:
// the module's engine writes what the pattern says.
std::u16string moduleWrites(zvhost::Host &host, const std::string &locale, std::u16string_view pattern, double when) {
    HostLocale *l = host.locale(locale);
    const uint8_t *table = nullptr;
    l->ops->localeTextTable(l, 0, &table);
    const std::string raw = zvhost::escapeForTable(pattern);
    if (raw.size() > 160) return u"<too long>";
    uint8_t *record = const_cast<uint8_t *>(table) + ZV_LOCALE_TABLE_OFFSET + 46 * ZV_LOCALE_RECORD_SIZE;
    record[0] = uint8_t(raw.size()), record[1] = 0;
    std::memcpy(record + 2, raw.data(), raw.size());
    zvhost::CallSpec spec;
    spec.locale = locale;
    spec.width = 200;
    std::u16string out = zvhost::runFormat(host, *zvhost::findRow(host.instance()->formatTable, "NLDATM"), spec, when).wide;
    return out.substr(0, out.find_last_not_of(u' ') + 1);
}

// Compares the module's text for each exact conversion with ICU's for the
// original pattern, at a few moments.
int compare(zvhost::Host &host, const std::string &name, const std::vector<std::u16string> &patterns,
            const zvhost::ConvertOptions &options) {
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale locale(name.c_str());
    locale.setKeywordValue("calendar", "gregorian", status);
    locale.setKeywordValue("numbers", "latn", status);
    int compared = 0;
    for (const std::u16string &cldr : patterns) {
        const zvhost::ConvertedPattern converted = zvhost::convertCldrPattern(cldr, options);
        EXPECT_TRUE(onlyDirectives(converted.pattern, false)) << zvhost::utf8(cldr);
        if (!converted.exact) continue;
        std::u16string blanks = cldr;
        std::replace_if(blanks.begin(), blanks.end(), [](char16_t c) { return c == 0x202F || c == 0xA0; }, u' ');
        icu::SimpleDateFormat icuFormat(icu::UnicodeString(blanks.data(), int32_t(blanks.size())), locale, status);
        icuFormat.adoptTimeZone(icu::TimeZone::createTimeZone("UTC"));
        // Years before 4000: past it the module's calendar drops 29 February in 4000.
        for (double days : {-8000.0, 0.0, 14669.0, 23440.0, 24472.0, 36890.0, 700000.0}) {
            const double seconds = days * 86400 + double(int64_t(days * 7919) % 86400);
            icu::UnicodeString text;
            icuFormat.format((seconds - 315619200.0) * 1000.0, text);
            std::u16string want = fromIcu(text);
            want.erase(want.find_last_not_of(u' ') + 1); // the field's own blanks are not compared
            // Each escape of a table is one unit, so the module can't show a
            // character beyond the first plane.
            if (zvhost::escapeForTable(want).size() > 160 ||
                std::any_of(want.begin(), want.end(), [](char16_t c) { return c >= 0xD800 && c < 0xE000; }))
                continue;
            EXPECT_EQ(zvhost::utf8(moduleWrites(host, name, converted.pattern, seconds)), zvhost::utf8(want))
                << name << ": " << zvhost::utf8(cldr) << " -> " << zvhost::utf8(converted.pattern);
            ++compared;
        }
    }
    return compared;
}

// Patterns and names read from a locale's data: the same table as with every
// skeleton searched by the pattern generator and every name from ICU's
// DateFormatSymbols.
TEST(CldrTable, ItemsReadFromDataAreWhatIcuObjectsGive) {
    for (const std::string &name : zvhost::availableLocales()) {
        std::vector<uint8_t> read, searched;
        std::string error;
        ASSERT_TRUE(zvhost::buildCldrTable(name, read, error) && zvhost::buildCldrTable(name, searched, error, true));
        for (int k = 0; k < ZV_LOCALE_TABLE_ITEMS; ++k)
            ASSERT_EQ(zvhost::rawItem(read, k), zvhost::rawItem(searched, k)) << name << " item " << k;
    }
}

// The date styles go through the locale forms against ICU over every locale.
TEST(CldrPatterns, ConvertedPatternsWriteWhatIcuWrites) {
    zvhost::Host host;
    ASSERT_NE(host.loadModule(), nullptr);
    int compared = 0;
    const auto all = zvhost::availableLocales();
    for (size_t i = 0; i < all.size(); i += 23) {
        UErrorCode status = U_ZERO_ERROR;
        icu::Locale locale((all[i] + "@calendar=gregorian;numbers=latn").c_str());
        std::unique_ptr<icu::DateTimePatternGenerator> generator(icu::DateTimePatternGenerator::createInstance(locale, status));
        std::vector<std::u16string> patterns;
        for (const char *skeleton : {"yMMMEd", "yMMMM", "MMMMd", "yQQQQ", "hms", "Hms", "yMMMMdjmmss", "yMd", "yMMMMEEEEd"})
            patterns.push_back(fromIcu(generator->getBestPattern(icu::UnicodeString(skeleton), status)));
        zvhost::ConvertOptions options;
        int32_t eras = 0;
        const S symbols(locale, status);
        const icu::UnicodeString *era = symbols.getEras(eras);
        if (eras >= 2) options.eraName = fromIcu(era[1]);
        compared += compare(host, all[i], patterns, options);
    }
    EXPECT_GT(compared, 1000);
}

// Random patterns of every field letter, quotes and literals, in a locale of
// the ISO week rule: exact conversions write what ICU writes.
TEST(CldrPatterns, RandomPatternsWriteWhatIcuWrites) {
    zvhost::Host host;
    ASSERT_NE(host.loadModule(), nullptr);
    const char16_t *pieces[] = {u"y", u"yy", u"yyyy", u"M", u"MM", u"MMM", u"MMMM", u"L", u"LL", u"LLL", u"LLLL",
                                u"d", u"dd", u"D", u"DDD", u"E", u"EEEE", u"ccc", u"cccc", u"QQQ", u"QQQQ", u"qqq",
                                u"qqqq", u"h", u"hh", u"H", u"HH", u"k", u"kk", u"m", u"mm", u"s", u"ss", u"a", u"w",
                                u"ww", u"Y", u"G", u" ", u"-", u"/", u", ", u"'de'", u"''", u"'%'", u".", u"\u00E0"};
    std::mt19937 rng(11);
    std::vector<std::u16string> patterns;
    for (int i = 0; i < 150; ++i) {
        std::u16string p;
        for (int n = 1 + int(rng() % 5); n > 0; --n) p += pieces[rng() % std::size(pieces)];
        patterns.push_back(p);
    }
    zvhost::ConvertOptions options;
    options.eraName = u"n. Chr.";
    EXPECT_GT(compare(host, "de_DE", patterns, options), 300);
}

TEST(CldrTable, LocaleNamesEscapesAndRecords) {
    const std::pair<const char *, const char *> known[] = {
        {"fr", "fr"}, {"fr-FR", "fr_FR"}, {"de-ch", "de_CH"}, {"zh_TW", "zh_Hant_TW"}, {"sr_RS", "sr_Cyrl_RS"},
        {"", nullptr}, {"xx_YY", nullptr}, {"fr_US", nullptr}, {"en_US@calendar=japanese", nullptr}, {"../x", nullptr}};
    for (const auto &[name, resolved] : known) {
        std::vector<uint8_t> table = {1, 2, 3};
        std::string error;
        EXPECT_EQ(zvhost::buildCldrTable(name, table, error), resolved != nullptr) << name;
        if (resolved) EXPECT_EQ(zvhost::rawItem(table, 0), resolved);
        else EXPECT_EQ(table, (std::vector<uint8_t>{1, 2, 3})) << error;
    }
    std::mt19937 rng(7);
    const char16_t pool[] = {u'a', u'<', u'U', u'u', u'>', u'0', u'%', u'\u00E9', u'\u00A0', u'\u5E74', 0xD83D, 0xDE00, 0x7F};
    for (int round = 0; round < 3000; ++round) {
        std::u16string text;
        for (int n = int(rng() % 16); n > 0; --n) text += pool[rng() % std::size(pool)];
        const std::string raw = zvhost::escapeForTable(text);
        ASSERT_TRUE(std::all_of(raw.begin(), raw.end(), [](char c) { return c > 0; })) << raw;
        ASSERT_EQ(zvhost::unescapeTableText(raw), text) << raw;
    }
    EXPECT_EQ(zvhost::escapeForTable(u"<U00E9>\u00E9"), "<U003C>U00E9><U00E9>");
    std::vector<uint8_t> table;
    zvhost::setRawItem(table, 188, std::string(300, 'x'));
    zvhost::setRawItem(table, 189, "ignored");
    EXPECT_EQ(table.size(), size_t(ZV_LOCALE_TABLE_SIZE));
    EXPECT_EQ(zvhost::rawItem(table, 188), std::string(160, 'x'));
}

// Definition files: items by number, UTF-8 escaped, errors naming the line,
// and nothing applied from a bad file.
TEST(LocaleFile, ParsesAppliesAndNamesTheBadLine) {
    const std::pair<std::string, std::string> bad[] = {
        {"28\ttext\nx8\ttext\n", "line 2: bad item number \"x8\""},
        {"0028\ttext\n", "line 1: bad item number \"0028\""},
        {"189\ttext\n", "line 1: item 189 is past the last item, 188"},
        {"2\tde\n\n2\tfr\n", "line 3: item 2 is already defined on line 1"},
        {"28\t" + std::string(161, 'x') + "\n", "line 1: the text of item 28 takes 161 bytes; an item holds 160"},
        {"71\t" + std::string(20, 'a') + std::string(20, '\xC3') + "\n", "line 1: the text is not UTF-8"},
        {"71\t\xED\xA0\x80\n", "line 1: the text is not UTF-8"},
    };
    for (const auto &[content, message] : bad) {
        std::map<int, std::string> items = {{5, "kept"}};
        std::string error;
        EXPECT_FALSE(zvhost::parseLocaleDefinition(content, items, error));
        EXPECT_EQ(error, message);
        EXPECT_EQ(items, (std::map<int, std::string>{{5, "kept"}}));
    }
    std::map<int, std::string> items;
    std::string error;
    ASSERT_TRUE(zvhost::parseLocaleDefinition("# c\n\n2\tde\r\n28\t %d\t%m \n59\tJ\xC3\xA4n<U00E4>", items, error)) << error;
    EXPECT_EQ(items, (std::map<int, std::string>{{2, "de"}, {28, " %d\t%m "}, {59, "J<U00E4>n<U00E4>"}}));

    const std::string path = ::testing::TempDir() + "zv_locale_file_test.txt";
    std::ofstream(path) << "28\t%d.%m.%Y\n156\tEUR\n";
    std::vector<uint8_t> table, before;
    ASSERT_TRUE(zvhost::buildCldrTable("de_DE", table, error));
    before = table;
    ASSERT_TRUE(zvhost::applyLocaleFile(path, table, error)) << error;
    for (int k = 0; k < ZV_LOCALE_TABLE_ITEMS; ++k)
        EXPECT_EQ(zvhost::rawItem(table, k), k == 28 ? "%d.%m.%Y" : k == 156 ? "EUR" : zvhost::rawItem(before, k));
    std::ofstream(path) << "28\t%d\n28\t%m\n";
    EXPECT_FALSE(zvhost::applyLocaleFile(path, before, error));
    EXPECT_EQ(error, path + ": line 2: item 28 is already defined on line 1");
    EXPECT_NE(zvhost::rawItem(before, 28), "%d");
    std::remove(path.c_str());
    EXPECT_FALSE(zvhost::applyLocaleFile(path, before, error));
    EXPECT_EQ(error, "cannot read the locale file " + path);
}

} // namespace
