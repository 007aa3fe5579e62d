// Helpers of the CLDR table tests, and tests of the helpers themselves: the
// directive checkers of both sides and a small second implementation of the
// % language, used to compare converted patterns with ICU's formatting.
#include <gtest/gtest.h>

#include <unicode/unistr.h>

#include <string>
#include <vector>

#include "cldr.hpp"

namespace zvhosttest {

std::string asUtf8(std::u16string_view text) {
    std::string out;
    icu::UnicodeString(text.data(), static_cast<int32_t>(text.size())).toUTF8String(out);
    return out;
}

std::u16string fromIcu(const icu::UnicodeString &text) {
    return std::u16string(text.getBuffer(), static_cast<size_t>(text.length()));
}

icu::UnicodeString toIcu(std::u16string_view text) {
    return icu::UnicodeString(text.data(), static_cast<int32_t>(text.size()));
}

std::u16string blanksForNoBreak(std::u16string text) {
    for (char16_t &c : text)
        if (c == u'\u202F' || c == u'\u00A0') c = u' ';
    return text;
}

// Directives of the engine: optional # or 0, optional digit, optional +,
// optional ?, then a letter it knows (R, X and x are refused; %x and %X are
// replaced before, and no item of ours holds them).
bool onlyEngineDirectives(std::u16string_view pattern) {
    const std::u16string letters = u"ABCDEFGHIJKLMNOPQSTUVWYZabcdefghijklmnopqstuvwyz";
    for (size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] != u'%') continue;
        ++i;
        if (i >= pattern.size()) return false;
        if (pattern[i] == u'%') continue;
        if (pattern[i] == u'#' || pattern[i] == u'0') ++i;
        if (i < pattern.size() && pattern[i] >= u'1' && pattern[i] <= u'9') ++i;
        if (i < pattern.size() && pattern[i] == u'+') ++i;
        if (i < pattern.size() && pattern[i] == u'?') ++i;
        if (i >= pattern.size() || letters.find(pattern[i]) == std::u16string::npos) return false;
    }
    return true;
}

// Directives of the locale date reader: "%" and one letter of its table.
// "%%" is refused too: the reader takes it for two literal percent signs,
// or one and a directive, where the engine writes one.
bool onlyReaderDirectives(std::u16string_view pattern) {
    const std::u16string letters = u"YyBCObmoEdeIHMSQqAFauwpGUVWZj";
    for (size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] != u'%') continue;
        if (i + 1 >= pattern.size() || letters.find(pattern[i + 1]) == std::u16string::npos) return false;
        ++i;
    }
    return true;
}

struct TableNames {
    explicit TableNames(const std::vector<uint8_t> &table);
    std::vector<std::u16string> items;
    std::u16string era;
};

TableNames::TableNames(const std::vector<uint8_t> &table) {
    for (int k = 0; k < ZV_LOCALE_TABLE_ITEMS; ++k)
        items.push_back(zvhost::unescapeTableText(zvhost::rawItem(table, k)));
}

namespace {

int64_t daysFromCivil(int y, int m, int d) {
    y -= m <= 2;
    const int64_t era = (y >= 0 ? y : y - 399) / 400;
    const int64_t yoe = y - era * 400;
    const int64_t doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + doe - 719468;
}

// 0 for Sunday.
int weekdayOf(int y, int m, int d) {
    int64_t days = daysFromCivil(y, m, d);
    return static_cast<int>(((days % 7) + 11) % 7);
}

bool leap(int y) { return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0; }

int isoWeeksIn(int y) {
    int jan1 = weekdayOf(y, 1, 1);
    return (jan1 == 4 || (leap(y) && jan1 == 3)) ? 53 : 52;
}

std::u16string digits(int value, int width, bool pad) {
    std::u16string text;
    std::string plain = std::to_string(value);
    if (pad)
        while (static_cast<int>(plain.size()) < width) plain = "0" + plain;
    for (char c : plain) text += static_cast<char16_t>(c);
    return text;
}

} // namespace

// The % language for the directives that converted patterns use, over the
// names of a table. Returns "<invalid>" for anything else.
std::u16string expand(std::u16string_view pattern, const TableNames &names, int year, int month, int day, int hour,
                      int minute, int second) {
    const int weekday = weekdayOf(year, month, day);
    const int dayOfYear = static_cast<int>(daysFromCivil(year, month, day) - daysFromCivil(year, 1, 1)) + 1;
    const int isoWeekday = weekday == 0 ? 7 : weekday;
    int isoYear = year;
    int isoWeek = (dayOfYear - isoWeekday + 10) / 7;
    if (isoWeek < 1) {
        isoYear = year - 1;
        isoWeek = isoWeeksIn(isoYear);
    } else if (isoWeek > isoWeeksIn(year)) {
        isoYear = year + 1;
        isoWeek = 1;
    }
    const int twelve = hour % 12 == 0 ? 12 : hour % 12;
    std::u16string out;
    for (size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] != u'%') {
            out += pattern[i];
            continue;
        }
        ++i;
        if (i >= pattern.size()) return u"<invalid>";
        bool other = false;
        if (pattern[i] == u'#') {
            other = true;
            ++i;
        }
        if (i >= pattern.size()) return u"<invalid>";
        const bool pad = !other;
        switch (pattern[i]) {
        case u'%': out += u'%'; break;
        case u'Y': out += digits(year, 4, true); break;
        case u'y': out += digits(year % 100, 2, true); break;
        case u'G': out += digits(isoYear, 4, true); break;
        case u'g': out += digits(isoYear % 100, 2, true); break;
        case u'V': out += digits(isoWeek, 2, pad); break;
        case u'm': out += digits(month, 2, pad); break;
        case u'O': out += digits(month, 2, false); break;
        case u'd': out += digits(day, 2, pad); break;
        case u'E': out += digits(day, 2, false); break;
        case u'j': out += digits(dayOfYear, 3, pad); break;
        case u'b': out += names.items[static_cast<size_t>((other ? 83 : 59) + month - 1)]; break;
        case u'B': out += names.items[static_cast<size_t>((other ? 95 : 71) + month - 1)]; break;
        case u'a': out += names.items[static_cast<size_t>((other ? 121 : 107) + weekday)]; break;
        case u'A': out += names.items[static_cast<size_t>((other ? 128 : 114) + weekday)]; break;
        case u'q': out += names.items[static_cast<size_t>((other ? 143 : 135) + (month - 1) / 3)]; break;
        case u'Q': out += names.items[static_cast<size_t>((other ? 147 : 139) + (month - 1) / 3)]; break;
        case u'H': out += digits(hour, 2, pad); break;
        case u'K': out += digits(hour == 0 ? 24 : hour, 2, pad); break;
        case u'I': out += digits(twelve, 2, pad); break;
        case u'M': out += digits(minute, 2, pad); break;
        case u'S': out += digits(second, 2, pad); break;
        case u'p': out += names.items[hour < 12 ? 151 : 152]; break;
        default: return u"<invalid>";
        }
    }
    return out;
}

} // namespace zvhosttest

namespace {

using zvhosttest::asUtf8;

TEST(CldrSupport, ExpanderFollowsTheLanguage) {
    std::vector<uint8_t> table;
    std::string error;
    ASSERT_TRUE(zvhost::buildCldrTable("en_US", table, error)) << error;
    zvhosttest::TableNames names(table);
    struct Case {
        const char16_t *pattern;
        const char *expected;
    } cases[] = {
        {u"%Y-%m-%d", "2024-01-05"},
        {u"%#m/%#d/%y", "1/5/24"},
        {u"%O/%E", "1/5"},
        {u"%A, %B %#d", "Friday, January 5"},
        {u"%a %b", "Fri Jan"},
        {u"%I:%M:%S %p", "03:04:05 AM"},
        {u"%#I %K %j %#j", "3 03 005 5"},
        {u"%Q %q", "1st quarter Q1"},
        {u"%G-W%V", "2024-W01"},
        {u"100%%", "100%"},
        {u"%R", "<invalid>"},
    };
    for (const Case &c : cases)
        EXPECT_EQ(asUtf8(zvhosttest::expand(c.pattern, names, 2024, 1, 5, 3, 4, 5)), c.expected) << asUtf8(c.pattern);
    // ISO weeks at the turn of the year.
    EXPECT_EQ(asUtf8(zvhosttest::expand(u"%G-W%V", names, 2027, 1, 1, 0, 0, 0)), "2026-W53");
    EXPECT_EQ(asUtf8(zvhosttest::expand(u"%G-W%V", names, 2024, 12, 30, 0, 0, 0)), "2025-W01");
    EXPECT_EQ(asUtf8(zvhosttest::expand(u"%I %p %K", names, 2024, 1, 5, 0, 0, 0)), "12 AM 24");
    EXPECT_EQ(asUtf8(zvhosttest::expand(u"%I %p", names, 2024, 1, 5, 12, 0, 0)), "12 PM");
}

struct DirectiveCase {
    const char16_t *pattern;
    bool engine;
    bool reader;
};

const DirectiveCase kDirectiveCases[] = {
    {u"%Y-%m-%d", true, true},    {u"%#d %B", true, false},  {u"%E %O", true, true},
    {u"%+Y", true, false},        {u"%0d", true, false},     {u"%2d", true, false},
    {u"%x", false, false},        {u"%R", false, false},     {u"%", false, false},
    {u"%z", true, false},         {u"%p%I", true, true},     {u"100%%", true, false},
    {u"%%d", true, false},        {u"%?M", true, false},     {u"%T", true, false},
};

TEST(CldrSupport, DirectiveCheckers) {
    for (const DirectiveCase &c : kDirectiveCases) {
        EXPECT_EQ(zvhosttest::onlyEngineDirectives(c.pattern), c.engine) << asUtf8(c.pattern);
        EXPECT_EQ(zvhosttest::onlyReaderDirectives(c.pattern), c.reader) << asUtf8(c.pattern);
    }
}

} // namespace
