// Locale tables from CLDR, through ICU, for the reference host.
//
// A locale's raw text table holds 189 items of single-byte text (records of
// 162 bytes from ZV_LOCALE_TABLE_OFFSET). This file builds such a table from
// ICU's data for any locale ICU knows, converts CLDR date patterns into the
// module's % language, and reads locale definition files that define a
// locale or override items of a CLDR one.
//
// Nothing here caches: the host caches tables by name.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "zvlocfmt/zvlocfmt.h"

namespace zvhost {

// Item numbers of the raw table that the builder fills.
namespace cldritem {
inline constexpr int language = 2;
inline constexpr int calendar = 5;
inline constexpr int fieldOrder = 6;
inline constexpr int dateFirst = 28;          // long date
inline constexpr int dateSecond = 29;         // medium date
inline constexpr int weekdayDateFirst = 32;   // full date
inline constexpr int weekdayDateSecond = 33;  // yMMMEd
inline constexpr int yearWeekFirst = 42;
inline constexpr int yearWeekSecond = 43;
inline constexpr int datetimeAmPmFirst = 44;
inline constexpr int datetimeAmPmSecond = 45;
inline constexpr int datetimeFirst = 46;
inline constexpr int datetimeSecond = 47;
inline constexpr int weekdayDatetimeFirst = 50;
inline constexpr int weekdayDatetimeSecond = 51;
inline constexpr int timeAmPm = 52;
inline constexpr int time = 53;
inline constexpr int dateTimeOrder = 58;
inline constexpr int monthsAbbreviated = 59;
inline constexpr int monthsWide = 71;
inline constexpr int monthsAbbreviatedOther = 83;
inline constexpr int monthsWideOther = 95;
inline constexpr int weekdaysAbbreviated = 107;
inline constexpr int weekdaysWide = 114;
inline constexpr int weekdaysAbbreviatedOther = 121;
inline constexpr int weekdaysWideOther = 128;
inline constexpr int quartersAbbreviated = 135;
inline constexpr int quartersWide = 139;
inline constexpr int quartersAbbreviatedOther = 143;
inline constexpr int quartersWideOther = 147;
inline constexpr int amMark = 151;
inline constexpr int pmMark = 152;
inline constexpr int dateSeparator = 153;
inline constexpr int currencyCode = 155;
inline constexpr int currencySymbol = 156;
inline constexpr int monetaryDecimal = 157;
inline constexpr int monetaryGroup = 158;
inline constexpr int monetaryGrouping = 159;
inline constexpr int monetaryPositiveSign = 160;
inline constexpr int monetaryNegativeSign = 161;
inline constexpr int fractionDigitsInternational = 162;
inline constexpr int fractionDigitsLocal = 163;
inline constexpr int monetaryPlacement = 164; // 164..169
inline constexpr int moneyForm = 170;
inline constexpr int moneyFormInternational = 171;
inline constexpr int decimalSeparator = 172;
inline constexpr int groupSeparator = 173;
inline constexpr int grouping = 174;
inline constexpr int positiveSign = 175;
inline constexpr int negativeSign = 176;
inline constexpr int numberPlacement = 177; // 177..182
inline constexpr int numberForm = 183;
inline constexpr int numberFormPlain = 184;
inline constexpr int percentForm = 185;
inline constexpr int percentFormPlain = 186;
} // namespace cldritem

// The items that the locale date reader reads: only directives it knows may
// stand in them.
inline constexpr int kReadItems[] = {28, 29, 32, 33, 44, 45, 46, 47, 50, 51, 53};

// Bytes of text a record can hold.
inline constexpr size_t kRawItemCapacity = ZV_LOCALE_RECORD_SIZE - 2;

// The raw table (ZV_LOCALE_TABLE_SIZE bytes) of a locale from CLDR; false with
// a message if ICU does not know the locale. Accepts "fr", "fr_FR", "fr-FR",
// "zh_Hant_TW" and the like. throughIcuObjects: every skeleton pattern from
// ICU's pattern generator and every name from its DateFormatSymbols, none
// read from the data (to compare the two).
bool buildCldrTable(const std::string &name, std::vector<uint8_t> &table, std::string &error,
                    bool throughIcuObjects = false);

// Set one raw item in a table (raw text bytes, <Uxxxx> escapes as given; cut
// to 160 bytes). A table shorter than ZV_LOCALE_TABLE_SIZE grows to it, zeroed.
// Item numbers outside 0..188 are ignored.
void setRawItem(std::vector<uint8_t> &table, int item, std::string_view raw);
// The raw text of an item; "" for an item outside the table.
std::string rawItem(const std::vector<uint8_t> &table, int item);

// Escape text for a table: ASCII stays, everything else becomes <Uxxxx>
// (UTF-16 units, upper-case hex). A '<' followed by 'U' or 'u' is escaped as
// well, so that it can't be taken for the start of an escape.
std::string escapeForTable(std::u16string_view text);
// The reverse, for tests and tools: escapes become their units, other bytes
// stand for themselves (Latin-1).
std::u16string unescapeTableText(std::string_view raw);

// How weeks of the year are counted in a locale.
enum class WeekRule {
    Iso,         // weeks begin on Monday, the first week has 4 days or more
    SundayFirst, // weeks begin on Sunday
    MondayFirst  // weeks begin on Monday, other first-week rules
};

struct ConvertOptions {
    bool forReading = false;
    WeekRule weekRule = WeekRule::Iso;
    // The locale's name of the era of years after 0; empty: era fields are
    // dropped.
    std::u16string eraName;
};

// CLDR pattern -> % pattern. forReading: only directives the reader knows.
// exact: the conversion loses nothing (so a differential test can compare
// with ICU's own formatting, for years 1000 to 9999).
struct ConvertedPattern {
    std::u16string pattern;
    bool exact = true;
    std::vector<std::string> notes;
};
ConvertedPattern convertCldrPattern(std::u16string_view cldr, bool forReading);
ConvertedPattern convertCldrPattern(std::u16string_view cldr, const ConvertOptions &options);

// Locale definition files: lines "number<TAB>raw text"; '#' comment lines and
// blank lines skipped; errors name the line. Non-ASCII characters of the file
// (UTF-8) become <Uxxxx> escapes. Applies over a table (an empty table grows
// to full size first).
bool applyLocaleFile(const std::string &path, std::vector<uint8_t> &table, std::string &error);
bool parseLocaleDefinition(std::string_view content, std::map<int, std::string> &items, std::string &error);
// The raw text of an item given as UTF-8, as a definition file takes it:
// ASCII and <Uxxxx> escapes stand, other characters become escapes. False,
// with "not UTF-8" or "takes N bytes; an item holds 160", when it can't be.
bool rawItemText(std::string_view utf8, std::string &raw, std::string &error);

// The locales ICU knows, sorted, e.g. "de", "de_AT", ...
std::vector<std::string> availableLocales();

} // namespace zvhost
