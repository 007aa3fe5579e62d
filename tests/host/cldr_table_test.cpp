// Raw locale tables built from CLDR: every locale ICU knows, checked item by
// item against ICU's own data, and exact items of well-known locales.
#include <gtest/gtest.h>

#include <unicode/calendar.h>
#include <unicode/dcfmtsym.h>
#include <unicode/dtfmtsym.h>
#include <unicode/locid.h>

#include <algorithm>
#include <string>
#include <vector>

#include "cldr.hpp"

// Helpers defined in cldr_support_test.cpp.
namespace zvhosttest {
std::string asUtf8(std::u16string_view text);
std::u16string fromIcu(const icu::UnicodeString &text);
bool onlyEngineDirectives(std::u16string_view pattern);
bool onlyReaderDirectives(std::u16string_view pattern);
} // namespace zvhosttest

namespace {

using zvhost::rawItem;
using zvhost::unescapeTableText;
using zvhosttest::asUtf8;

std::vector<uint8_t> tableOf(const std::string &name) {
    std::vector<uint8_t> table;
    std::string error;
    EXPECT_TRUE(zvhost::buildCldrTable(name, table, error)) << name << ": " << error;
    return table;
}

std::u16string itemText(const std::vector<uint8_t> &table, int item) {
    return unescapeTableText(rawItem(table, item));
}

// Every escape is <U + four upper-case hex digits + > of a unit outside
// ASCII (or of a '<' that a U follows); every other byte is ASCII.
::testing::AssertionResult wellFormedRaw(const std::string &raw) {
    for (size_t i = 0; i < raw.size(); ++i) {
        unsigned char c = static_cast<unsigned char>(raw[i]);
        if (c >= 0x80) return ::testing::AssertionFailure() << "byte above ASCII in " << raw;
        if (c != '<' || i + 1 >= raw.size() || (raw[i + 1] != 'U' && raw[i + 1] != 'u')) continue;
        if (raw.size() - i < 7 || raw[i + 1] != 'U' || raw[i + 6] != '>')
            return ::testing::AssertionFailure() << "broken escape in " << raw;
        unsigned value = 0;
        for (size_t k = 2; k < 6; ++k) {
            char h = raw[i + k];
            bool hex = (h >= '0' && h <= '9') || (h >= 'A' && h <= 'F');
            if (!hex) return ::testing::AssertionFailure() << "bad hex digit in " << raw;
            value = value * 16 + static_cast<unsigned>(h <= '9' ? h - '0' : h - 'A' + 10);
        }
        if (value < 0x80 && value != '<') return ::testing::AssertionFailure() << "escaped ASCII in " << raw;
        i += 6;
    }
    return ::testing::AssertionSuccess();
}

// ---------------------------------------------------------------------------
// Every locale

TEST(CldrTable, EveryLocaleHoldsWhatTheModuleReads) {
    const std::vector<std::string> names = zvhost::availableLocales();
    ASSERT_GT(names.size(), 500u);
    ASSERT_TRUE(std::is_sorted(names.begin(), names.end()));
    for (const std::string &name : names) {
        SCOPED_TRACE(name);
        std::vector<uint8_t> table = tableOf(name);
        ASSERT_EQ(table.size(), static_cast<size_t>(ZV_LOCALE_TABLE_SIZE));
        // Nothing before the items.
        ASSERT_TRUE(std::all_of(table.begin(), table.begin() + ZV_LOCALE_TABLE_OFFSET, [](uint8_t b) { return b == 0; }));
        for (int item = 0; item < ZV_LOCALE_TABLE_ITEMS; ++item) {
            const uint8_t *record = table.data() + ZV_LOCALE_TABLE_OFFSET + item * ZV_LOCALE_RECORD_SIZE;
            ASSERT_LE(record[0] | (record[1] << 8), 160) << "item " << item;
            ASSERT_TRUE(wellFormedRaw(rawItem(table, item))) << "item " << item;
        }
        // Field order: a permutation of M, D, Y.
        std::string order = rawItem(table, 6);
        std::string sorted = order;
        std::sort(sorted.begin(), sorted.end());
        EXPECT_EQ(sorted, "DMY") << order;
        // Names: all there.
        for (int item = 59; item <= 152; ++item) EXPECT_FALSE(rawItem(table, item).empty()) << "item " << item;
        // Patterns: nonempty, valid for the engine; read items valid for the
        // reader.
        for (int item = 28; item <= 57; ++item) {
            std::u16string pattern = itemText(table, item);
            EXPECT_FALSE(pattern.empty()) << "item " << item;
            EXPECT_TRUE(zvhosttest::onlyEngineDirectives(pattern)) << "item " << item << ": " << asUtf8(pattern);
            EXPECT_EQ(pattern.find(u'\u202F'), std::u16string::npos) << "item " << item;
            EXPECT_EQ(pattern.find(u'\u00A0'), std::u16string::npos) << "item " << item;
        }
        for (int item : zvhost::kReadItems) {
            std::u16string pattern = itemText(table, item);
            EXPECT_TRUE(zvhosttest::onlyReaderDirectives(pattern)) << "item " << item << ": " << asUtf8(pattern);
        }
        std::string order58 = rawItem(table, 58);
        EXPECT_TRUE(order58 == "%x %X" || order58 == "%X %x") << order58;
        EXPECT_EQ(itemText(table, 153).size(), 1u);
        // Forms the locale defines.
        for (int item : {170, 171, 183, 184, 185, 186}) EXPECT_FALSE(rawItem(table, item).empty()) << "item " << item;
        // Separators and signs fit the number contexts: two units at most.
        for (int item : {157, 158, 160, 161, 172, 173, 175, 176})
            EXPECT_LE(itemText(table, item).size(), 2u) << "item " << item;
        for (int item = 164; item <= 169; ++item) {
            std::string figure = rawItem(table, item);
            ASSERT_EQ(figure.size(), 1u) << "item " << item;
            int limit = (item - 164) % 6 < 4 ? 1 : 4;
            EXPECT_TRUE(figure[0] >= '0' && figure[0] <= '0' + limit) << "item " << item << ": " << figure;
        }
        for (int item = 177; item <= 182; ++item) {
            std::string figure = rawItem(table, item);
            ASSERT_EQ(figure.size(), 1u) << "item " << item;
            int limit = (item - 177) < 4 ? 1 : 4;
            EXPECT_TRUE(figure[0] >= '0' && figure[0] <= '0' + limit) << "item " << item << ": " << figure;
        }
        for (int item : {159, 174}) {
            std::string grouping = rawItem(table, item);
            EXPECT_TRUE(grouping == "" || grouping == "3" || grouping == "3;2" || grouping == "4") << grouping;
        }
        EXPECT_TRUE(rawItem(table, 160).empty());
        EXPECT_TRUE(rawItem(table, 175).empty());
    }
}

// Names come back from the table as ICU has them (wide names too long for a
// record as their abbreviated forms).
TEST(CldrTable, NamesRoundTripThroughDateFormatSymbols) {
    using S = icu::DateFormatSymbols;
    int compared = 0;
    int cut = 0;
    for (const std::string &name : zvhost::availableLocales()) {
        SCOPED_TRACE(name);
        std::vector<uint8_t> table = tableOf(name);
        UErrorCode status = U_ZERO_ERROR;
        icu::Locale locale(name.c_str());
        locale.setKeywordValue("calendar", "gregorian", status);
        S symbols(locale, status);
        ASSERT_TRUE(U_SUCCESS(status));
        auto check = [&](int first, const icu::UnicodeString *names, int32_t count, int skip, int want,
                         const icu::UnicodeString *shorter) {
            ASSERT_GE(count, want + skip);
            for (int k = 0; k < want; ++k) {
                std::u16string expected = zvhosttest::fromIcu(names[k + skip]);
                if (zvhost::escapeForTable(expected).size() > 160 && shorter != nullptr)
                    expected = zvhosttest::fromIcu(shorter[k + skip]);
                std::u16string got = itemText(table, first + k);
                if (zvhost::escapeForTable(expected).size() > 160) {
                    // Cut before the character that would cross the limit.
                    ASSERT_EQ(expected.compare(0, got.size(), got), 0) << "item " << first + k;
                    size_t next = got.size() + (expected[got.size()] >= 0xD800 && expected[got.size()] < 0xDC00 ? 2 : 1);
                    EXPECT_GT(zvhost::escapeForTable(expected.substr(0, next)).size(), 160u) << "item " << first + k;
                    EXPECT_FALSE(got.empty());
                    ++cut;
                    continue;
                }
                EXPECT_EQ(asUtf8(got), asUtf8(expected)) << "item " << first + k;
                ++compared;
            }
        };
        int32_t n = 0, m = 0;
        for (auto [context, abbreviated, wide] : {std::tuple{S::FORMAT, 59, 71}, std::tuple{S::STANDALONE, 83, 95}}) {
            const icu::UnicodeString *a = symbols.getMonths(n, context, S::ABBREVIATED);
            const icu::UnicodeString *w = symbols.getMonths(m, context, S::WIDE);
            check(abbreviated, a, n, 0, 12, nullptr);
            check(wide, w, m, 0, 12, a);
        }
        for (auto [context, abbreviated, wide] :
             {std::tuple{S::FORMAT, 107, 114}, std::tuple{S::STANDALONE, 121, 128}}) {
            const icu::UnicodeString *a = symbols.getWeekdays(n, context, S::ABBREVIATED);
            const icu::UnicodeString *w = symbols.getWeekdays(m, context, S::WIDE);
            check(abbreviated, a, n, 1, 7, nullptr);
            check(wide, w, m, 1, 7, a);
        }
        for (auto [context, abbreviated, wide] :
             {std::tuple{S::FORMAT, 135, 139}, std::tuple{S::STANDALONE, 143, 147}}) {
            const icu::UnicodeString *a = symbols.getQuarters(n, context, S::ABBREVIATED);
            const icu::UnicodeString *w = symbols.getQuarters(m, context, S::WIDE);
            check(abbreviated, a, n, 0, 4, nullptr);
            check(wide, w, m, 0, 4, a);
        }
        const icu::UnicodeString *marks = symbols.getAmPmStrings(n);
        check(151, marks, n, 0, 2, nullptr);
    }
    EXPECT_GT(compared, 500 * 94);
    EXPECT_GT(cut, 0) << "ccp has month abbreviations past 160 bytes";
}

// Separators and signs are ICU's DecimalFormatSymbols of the locale.
TEST(CldrTable, NumberItemsFollowDecimalFormatSymbols) {
    using D = icu::DecimalFormatSymbols;
    for (const std::string &name : zvhost::availableLocales()) {
        SCOPED_TRACE(name);
        std::vector<uint8_t> table = tableOf(name);
        UErrorCode status = U_ZERO_ERROR;
        D symbols(icu::Locale(name.c_str()), status);
        ASSERT_TRUE(U_SUCCESS(status));
        // Texts of more than two units keep their characters without the
        // bidirectional marks (and a leading mark where room is left).
        auto symbol = [&](D::ENumberFormatSymbol which) {
            std::u16string text = zvhosttest::fromIcu(symbols.getConstSymbol(which));
            if (text.size() > 2) {
                std::u16string plain;
                for (char16_t c : text)
                    if (c != u'\u200E' && c != u'\u200F' && c != u'\u061C') plain += c;
                if (plain.size() == 1) plain = text.substr(0, 1) + plain;
                text = plain;
            }
            return asUtf8(text);
        };
        EXPECT_EQ(asUtf8(itemText(table, 172)), symbol(D::kDecimalSeparatorSymbol));
        EXPECT_EQ(asUtf8(itemText(table, 173)), symbol(D::kGroupingSeparatorSymbol));
        EXPECT_EQ(asUtf8(itemText(table, 157)), symbol(D::kMonetarySeparatorSymbol));
        EXPECT_EQ(asUtf8(itemText(table, 158)), symbol(D::kMonetaryGroupingSeparatorSymbol));
        EXPECT_EQ(asUtf8(itemText(table, 176)), symbol(D::kMinusSignSymbol));
        EXPECT_EQ(asUtf8(itemText(table, 161)), symbol(D::kMinusSignSymbol));
        std::string code = rawItem(table, 155);
        EXPECT_TRUE(code.empty() || (code.size() == 3 && std::all_of(code.begin(), code.end(), [](char c) {
                                        return c >= 'A' && c <= 'Z';
                                    })))
            << code;
    }
}

// The week rule of a locale picks the week directives of items 42 and 43.
TEST(CldrTable, WeekItemsFollowTheCalendarRule) {
    for (const std::string &name : zvhost::availableLocales()) {
        SCOPED_TRACE(name);
        std::vector<uint8_t> table = tableOf(name);
        UErrorCode status = U_ZERO_ERROR;
        icu::Locale locale(name.c_str());
        locale.setKeywordValue("calendar", "gregorian", status);
        std::unique_ptr<icu::Calendar> calendar(icu::Calendar::createInstance(locale, status));
        ASSERT_TRUE(U_SUCCESS(status));
        UCalendarDaysOfWeek first = calendar->getFirstDayOfWeek(status);
        int minimal = calendar->getMinimalDaysInFirstWeek();
        std::string shortForm = rawItem(table, 43);
        std::string longForm = rawItem(table, 42);
        if (first == UCAL_MONDAY && minimal == 4) {
            EXPECT_EQ(shortForm, "%G-W%V");
            EXPECT_NE(longForm.find('V'), std::string::npos) << longForm;
        } else if (first == UCAL_SUNDAY) {
            EXPECT_EQ(shortForm, "%Y-W%U");
            EXPECT_NE(longForm.find('U'), std::string::npos) << longForm;
        } else {
            EXPECT_EQ(shortForm, "%Y-W%W");
            EXPECT_NE(longForm.find('W'), std::string::npos) << longForm;
        }
    }
}

// ---------------------------------------------------------------------------
// Exact items of well-known locales

struct ItemCase {
    const char *locale;
    int item;
    const char *raw;
};

const ItemCase kItemCases[] = {
    // Language and calendar.
    {"en_US", 2, "en"},
    {"fr_FR", 2, "fr"},
    {"ja_JP", 5, "JP"},
    {"th_TH", 5, "TH"},
    {"zh_TW", 5, "TW"},
    {"zh_CN", 5, ""},
    {"en_US", 5, ""},
    // Field order and separator of the short date.
    {"en_US", 6, "MDY"},
    {"de_DE", 6, "DMY"},
    {"ja_JP", 6, "YMD"},
    {"en_US", 153, "/"},
    {"de_CH", 153, "."},
    {"ar_EG", 153, "/"},
    {"ko_KR", 153, "."},
    // Date patterns: read items with %E, %O and names of the plain lists.
    {"en_US", 28, "%B %E, %Y"},
    {"en_US", 29, "%b %E, %Y"},
    {"en_US", 30, "%b %#d, %Y"},
    {"en_US", 31, "%B %#d, %Y"},
    {"en_US", 32, "%A, %B %E, %Y"},
    {"en_US", 33, "%a, %b %E, %Y"},
    {"en_US", 34, "%B %Y"},
    {"en_US", 38, "%Y"},
    {"en_US", 39, "%y"},
    {"en_US", 40, "%Q %Y"},
    {"en_US", 42, "week %#U of %Y"},
    {"en_US", 43, "%Y-W%U"},
    {"en_US", 44, "%B %E, %Y at %I:%M:%S %p"},
    {"en_US", 49, "%B %#d, %Y at %#I:%M:%S %p %z"},
    {"en_US", 52, "%#I:%M:%S %p"},
    {"en_US", 53, "%H:%M:%S"},
    {"en_US", 54, "%#m/%#d/%y"},
    {"en_US", 58, "%x %X"},
    {"de_CH", 29, "%d.%m.%Y"},
    {"de_CH", 28, "%E. %B %Y"},
    {"de_DE", 42, "Woche %#V des Jahres %G"},
    {"de_DE", 43, "%G-W%V"},
    {"fr_FR", 46, "%E %B %Y <U00E0> %H:%M:%S"},
    {"fr_FR", 54, "%d/%m/%Y"},
    {"ja_JP", 28, "%Y<U5E74>%O<U6708>%E<U65E5>"},
    {"ja_JP", 29, "%Y/%m/%d"},
    {"ja_JP", 52, "%p%#L:%M:%S"},
    {"zh_TW", 44, "%Y<U5E74>%O<U6708>%E<U65E5> %p%I:%M:%S"},
    {"th_TH", 28, "%E %B <U0E04>.<U0E28>. %Y"},
    {"ar_EG", 29, "%d<U200F>/%m<U200F>/%Y"},
    {"ar_EG", 43, "%Y-W%W"},
    {"he_IL", 28, "%E <U05D1>%B %Y"},
    {"ru_RU", 28, "%E %B %Y <U0433>."},
    {"fa_IR", 43, "%Y-W%W"},
    // Names keep their own characters.
    {"en_US", 59, "Jan"},
    {"en_US", 120, "Saturday"},
    {"en_US", 139, "1st quarter"},
    {"en_US", 151, "AM"},
    {"fr_FR", 71, "janvier"},
    {"fr_FR", 60, "f<U00E9>vr."},
    {"ru_RU", 71, "<U044F><U043D><U0432><U0430><U0440><U044F>"},
    {"ru_RU", 95, "<U044F><U043D><U0432><U0430><U0440><U044C>"},
    {"hi_IN", 151, "am"},
    // Money.
    {"en_US", 155, "USD"},
    {"en_US", 156, "$"},
    {"fr_FR", 155, "EUR"},
    {"fr_FR", 156, "<U20AC>"},
    {"fr", 155, "EUR"},
    {"ja_JP", 156, "<UFFE5>"},
    {"ja_JP", 162, "0"},
    {"ja_JP", 163, "0"},
    {"en_US", 163, "2"},
    {"hi_IN", 159, "3;2"},
    {"hi_IN", 174, "3;2"},
    {"en_US", 159, "3"},
    {"fr_FR", 158, "<U202F>"},
    {"de_CH", 158, "<U2019>"},
    {"ar_EG", 161, "<U061C>-"},
    {"he_IL", 176, "<U200E>-"},
    // Numbers.
    {"de_DE", 172, ","},
    {"de_DE", 173, "."},
    {"en_US", 172, "."},
    {"ar_EG", 172, "<U066B>"},
    {"en_US", 160, ""},
    {"en_US", 175, ""},
    {"en_US", 176, "-"},
};

class CldrItems : public ::testing::TestWithParam<ItemCase> {};

TEST_P(CldrItems, Exact) {
    const ItemCase &c = GetParam();
    std::vector<uint8_t> table = tableOf(c.locale);
    EXPECT_EQ(rawItem(table, c.item), c.raw) << c.locale << " item " << c.item;
}

INSTANTIATE_TEST_SUITE_P(Known, CldrItems, ::testing::ValuesIn(kItemCases));

// Placement figures, items 164..169 and 177..182 in the order p_cs_precedes,
// p_sep_by_space, n_cs_precedes, n_sep_by_space, p_sign_posn, n_sign_posn.
struct PlacementCase {
    const char *locale;
    const char *money;
    const char *number;
};

const PlacementCase kPlacementCases[] = {
    {"en_US", "101011", "000011"}, // ¤#,##0.00: -$1.00
    {"fr_FR", "010111", "000011"}, // #,##0.00 ¤: -1,00 €
    {"de_CH", "111014", "000011"}, // ¤ #,##0.00;¤-#,##0.00: CHF-1.00
    {"nl_NL", "111114", "000011"}, // ¤ #,##0.00;¤ -#,##0.00: € -1,00
    {"ja_JP", "101011", "000011"},
    {"de_DE", "010111", "000011"},
    {"hi_IN", "101011", "000011"},
};

TEST(CldrTable, PlacementFiguresFromTheCurrencyPattern) {
    for (const PlacementCase &c : kPlacementCases) {
        std::vector<uint8_t> table = tableOf(c.locale);
        std::string money, number;
        for (int item = 164; item <= 169; ++item) money += rawItem(table, item);
        for (int item = 177; item <= 182; ++item) number += rawItem(table, item);
        EXPECT_EQ(money, c.money) << c.locale;
        EXPECT_EQ(number, c.number) << c.locale;
    }
}

// ---------------------------------------------------------------------------
// Locale names

struct NameCase {
    const char *name;
    bool known;
    const char *resolved; // item 0 on success
};

const NameCase kNameCases[] = {
    {"fr", true, "fr"},
    {"fr_FR", true, "fr_FR"},
    {"fr-FR", true, "fr_FR"},
    {"de_CH", true, "de_CH"},
    {"de-ch", true, "de_CH"},
    {"zh_TW", true, "zh_Hant_TW"},
    {"zh-Hant-TW", true, "zh_Hant_TW"},
    {"ja_JP", true, "ja_JP"},
    {"en_US_POSIX", true, "en_US_POSIX"},
    {"sr_RS", true, "sr_Cyrl_RS"},
    {"", false, ""},
    {"xx", false, ""},
    {"xx_YY", false, ""},
    {"fr_US", false, ""},
    {"en_ZZ", false, ""},
    {"en US", false, ""},
    {"en_US@calendar=japanese", false, ""},
    {"../../etc/passwd", false, ""},
    {"_FR", false, ""},
    {"123", false, ""},
    {"garbagegarbagegarbagegarbagegarbagegarbagegarbage", false, ""},
};

TEST(CldrTable, LocaleNames) {
    for (const NameCase &c : kNameCases) {
        std::vector<uint8_t> table = {1, 2, 3};
        std::string error;
        bool ok = zvhost::buildCldrTable(c.name, table, error);
        EXPECT_EQ(ok, c.known) << c.name << ": " << error;
        if (ok) {
            EXPECT_EQ(rawItem(table, 0), c.resolved) << c.name;
            EXPECT_TRUE(error.empty());
        } else {
            EXPECT_EQ(error.rfind("unknown locale \"" + std::string(c.name) + "\"", 0), 0u) << error;
            EXPECT_EQ(table, (std::vector<uint8_t>{1, 2, 3})) << "a failed build leaves the table alone";
        }
    }
}

// Every listed locale builds, and under its own name.
TEST(CldrTable, AvailableLocalesBuildUnderTheirNames) {
    const std::vector<std::string> names = zvhost::availableLocales();
    for (const char *wanted : {"de", "de_AT", "en_US", "fr_FR", "ja_JP", "ar_EG", "hi_IN", "th_TH", "zh_Hant_TW"})
        EXPECT_TRUE(std::binary_search(names.begin(), names.end(), std::string(wanted))) << wanted;
    for (const std::string &name : names) EXPECT_EQ(rawItem(tableOf(name), 0), name);
}

// ---------------------------------------------------------------------------
// Raw items and escapes

struct EscapeCase {
    const char16_t *text;
    const char *raw;
};

const EscapeCase kEscapeCases[] = {
    {u"", ""},
    {u"abc 123", "abc 123"},
    {u"\u00E9", "<U00E9>"},
    {u"\u20AC5", "<U20AC>5"},
    {u"\u00A0", "<U00A0>"},
    {u"\u00A4", "<U00A4>"},
    {u"\U0001F600", "<UD83D><UDE00>"},
    {u"\u5E74x", "<U5E74>x"},
    {u"<U00E9>", "<U003C>U00E9>"},
    {u"<u", "<U003C>u"},
    {u"<a>", "<a>"},
    {u"a<", "a<"},
    {u"%d", "%d"},
    {u"\u007F\u0080", "\x7F<U0080>"},
};

TEST(CldrTable, EscapeForTable) {
    for (const EscapeCase &c : kEscapeCases) {
        EXPECT_EQ(zvhost::escapeForTable(c.text), c.raw) << asUtf8(c.text);
        EXPECT_EQ(asUtf8(unescapeTableText(c.raw)), asUtf8(c.text)) << c.raw;
    }
}

TEST(CldrTable, EscapeRoundTripsOverRandomText) {
    uint32_t state = 7;
    const char16_t pool[] = {u'a', u'<', u'U', u'u', u'>', u'0', u'%', u' ', u'\u00E9', u'\u00A0', u'\u202F',
                             u'\u0627', u'\u5E74', char16_t(0xD83D), char16_t(0xDE00), u'\u007F', u'\uFFFF', u'\u0001'};
    for (int round = 0; round < 5000; ++round) {
        std::u16string text;
        int length = static_cast<int>(state % 20);
        for (int k = 0; k < length; ++k) {
            state = state * 1664525u + 1013904223u;
            text += pool[(state >> 8) % (sizeof pool / sizeof pool[0])];
        }
        state = state * 1664525u + 1013904223u;
        std::string raw = zvhost::escapeForTable(text);
        ASSERT_TRUE(wellFormedRaw(raw)) << raw;
        ASSERT_EQ(unescapeTableText(raw), text) << raw;
    }
}

TEST(CldrTable, SetRawItemWritesTheRecord) {
    std::vector<uint8_t> table;
    zvhost::setRawItem(table, 28, "%d.%m.%Y");
    ASSERT_EQ(table.size(), static_cast<size_t>(ZV_LOCALE_TABLE_SIZE));
    const size_t at = ZV_LOCALE_TABLE_OFFSET + 28 * ZV_LOCALE_RECORD_SIZE;
    EXPECT_EQ(table[at], 8);
    EXPECT_EQ(table[at + 1], 0);
    EXPECT_EQ(std::string(table.begin() + at + 2, table.begin() + at + 10), "%d.%m.%Y");
    EXPECT_EQ(rawItem(table, 28), "%d.%m.%Y");
    EXPECT_EQ(rawItem(table, 27), "");

    // A shorter text replaces a longer one completely.
    zvhost::setRawItem(table, 28, "%Y");
    EXPECT_EQ(rawItem(table, 28), "%Y");
    EXPECT_EQ(table[at + 2 + 2], 0);

    // Cut to 160 bytes, length field little-endian.
    zvhost::setRawItem(table, 188, std::string(300, 'x'));
    const size_t last = ZV_LOCALE_TABLE_OFFSET + 188 * ZV_LOCALE_RECORD_SIZE;
    EXPECT_EQ(table[last] | (table[last + 1] << 8), 160);
    EXPECT_EQ(rawItem(table, 188), std::string(160, 'x'));
    EXPECT_EQ(table.size(), static_cast<size_t>(ZV_LOCALE_TABLE_SIZE));

    // Numbers outside the table change nothing.
    std::vector<uint8_t> before = table;
    zvhost::setRawItem(table, -1, "x");
    zvhost::setRawItem(table, 189, "x");
    EXPECT_EQ(table, before);
    EXPECT_EQ(rawItem(table, 189), "");
    EXPECT_EQ(rawItem(table, -5), "");
    EXPECT_EQ(rawItem(std::vector<uint8_t>(100, 0), 3), "");

    // A length field past 160 reads as 160.
    table[at] = 0xFF;
    table[at + 1] = 0xFF;
    EXPECT_EQ(rawItem(table, 28).size(), 160u);
}

// Escaped names that would run past a record stand in their abbreviated
// form, and nothing is cut inside an escape.
TEST(CldrTable, LongNamesTakeTheAbbreviatedForm) {
    std::vector<uint8_t> table = tableOf("brx");
    UErrorCode status = U_ZERO_ERROR;
    icu::DateFormatSymbols symbols(icu::Locale("brx@calendar=gregorian"), status);
    int32_t n = 0;
    const icu::UnicodeString *wide = symbols.getQuarters(n, icu::DateFormatSymbols::FORMAT, icu::DateFormatSymbols::WIDE);
    const icu::UnicodeString *abbreviated =
        symbols.getQuarters(n, icu::DateFormatSymbols::FORMAT, icu::DateFormatSymbols::ABBREVIATED);
    bool sawLong = false;
    for (int k = 0; k < 4; ++k) {
        std::u16string name = zvhosttest::fromIcu(wide[k]);
        if (zvhost::escapeForTable(name).size() <= 160) {
            EXPECT_EQ(itemText(table, 139 + k), name);
            continue;
        }
        sawLong = true;
        EXPECT_EQ(itemText(table, 139 + k), zvhosttest::fromIcu(abbreviated[k]));
    }
    EXPECT_TRUE(sawLong) << "brx should have a quarter name beyond 160 bytes";
}

} // namespace
