// Values, names and statuses as the zvfmt tool reads and shows them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zvfmt {

// Reads a VALUE: a number ("12", "-3.5e2", "+7", "inf", "nan"), an ISO date
// "2024-03-05" (a day count from 1 January 1960), an ISO datetime
// "2024-03-05T14:07:09.5" (a second count from its midnight; minutes and
// seconds may be left off), a time of day "14:07:09.5" (seconds from
// midnight), "." (the plain missing value) or ".A".."Z", "._" (special
// missing values). Blanks around the text are ignored. On failure nullopt,
// and *why says what is wrong.
std::optional<double> parseValue(std::string_view text, std::string *why = nullptr);

// Days from 1 January 1960 of a proleptic Gregorian date.
int64_t dayCount(int64_t year, int month, int day);

// The missing value with that mark ('.', 'A'..'Z', '_').
double missingValue(char mark);
// The mark of a missing value: ".", ".A".. ".Z", "._"; "" when not missing.
std::string missingMark(double value);

uint64_t bitsOf(double value);
double fromBits(uint64_t bits);
// 16 lower-case hex digits.
std::string hex16(uint64_t bits);
// Exactly 16 hex digits (either case); nullopt otherwise.
std::optional<uint64_t> parseHex16(std::string_view text);
// The bytes of a text as lower-case hex pairs.
std::string hexBytes(std::string_view bytes);

// The shortest text that reads back as the same double ("0.1", "23440",
// "-1e+300"); "nan", "inf", "-inf" for the others.
std::string shortestNumber(double value);

// A status as the tool shows it: signed decimal, and for negative words other
// than -1 also their hex, e.g. "-2143295481 (0x803fe807)".
std::string statusText(int32_t status);
// What a status means, "" when the tool doesn't know it.
std::string statusMeaning(int32_t status);

// NAME[W[.D]]: "NLDATE20", "nlnum12.2", "NLNUM.2", "@NLDATE". The name is a
// run of letters after an optional '@'; width and decimals follow it.
struct FormatSpec {
    std::string name;           // as given, upper-cased
    std::optional<int32_t> width;
    std::optional<int32_t> decimals;
};
std::optional<FormatSpec> parseFormatSpec(std::string_view text, std::string *why = nullptr);

std::string upper(std::string_view text);

// A locale name as the host knows it: the POSIX forms lose their codeset and
// modifier ("en_US.UTF-8", "de_DE@euro"); "C", "POSIX" and "" are en_US.
std::string hostLocaleName(std::string_view name);

} // namespace zvfmt
