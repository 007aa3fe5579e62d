// Values of the host's callers: missing values, the VALUE texts of the tool
// (numbers, ISO dates and datetimes, missing marks) and UTF-8 <-> UTF-16.
#include <unicode/unistr.h>

#include <bit>
#include <charconv>
#include <cmath>

#include "zvhost.hpp"

namespace zvhost {

namespace {

// Days from 1970-01-01 to a proleptic Gregorian date.
int64_t daysFromCivil(int64_t y, unsigned m, unsigned d) {
    y -= m <= 2;
    const int64_t era = (y >= 0 ? y : y - 399) / 400;
    const unsigned yoe = unsigned(y - era * 400);
    const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + int64_t(doe) - 719468;
}

constexpr int64_t kDays1960 = -3653; // 1960-01-01 counted from 1970-01-01

// The module's calendar: Gregorian, but a year that 4000 divides is no leap year.
bool leapYear(int64_t y) { return y % 4000 != 0 && ((y % 4 == 0 && y % 100 != 0) || y % 400 == 0); }

// The 29 Februaries of years that 4000 divides, up to the date.
int64_t lostLeapDays(int64_t y, unsigned m) {
    const int64_t marchYear = m <= 2 ? y - 1 : y;
    return marchYear >= 4000 ? marchYear / 4000 : 0;
}

unsigned daysInMonth(int64_t y, unsigned m) {
    static const unsigned days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return m == 2 && leapYear(y) ? 29 : days[m - 1];
}

// Exactly `n` decimal digits at text[pos].
bool digitsAt(std::string_view text, size_t pos, size_t n, int64_t &value) {
    if (pos + n > text.size()) return false;
    value = 0;
    for (size_t i = pos; i < pos + n; ++i) {
        if (text[i] < '0' || text[i] > '9') return false;
        value = value * 10 + (text[i] - '0');
    }
    return true;
}

// YYYY-MM-DD at the start of text: the day count from 1960.
bool readDate(std::string_view text, int64_t &days) {
    int64_t y = 0, m = 0, d = 0;
    if (!digitsAt(text, 0, 4, y) || text.size() < 10 || text[4] != '-' || !digitsAt(text, 5, 2, m) ||
        text[7] != '-' || !digitsAt(text, 8, 2, d))
        return false;
    if (m < 1 || m > 12 || d < 1 || d > int64_t(daysInMonth(y, unsigned(m)))) return false;
    days = daysFromCivil(y, unsigned(m), unsigned(d)) - kDays1960 - lostLeapDays(y, unsigned(m));
    return true;
}

std::optional<double> readNumber(std::string_view text) {
    if (!text.empty() && text[0] == '+') {
        text.remove_prefix(1);
        if (!text.empty() && (text[0] == '-' || text[0] == '+')) return std::nullopt;
    }
    if (text.empty()) return std::nullopt;
    for (char c : text)
        if (!((c >= '0' && c <= '9') || c == '.' || c == '-' || c == '+' || c == 'e' || c == 'E'))
            return std::nullopt;
    double v = 0;
    const auto r = std::from_chars(text.data(), text.data() + text.size(), v, std::chars_format::general);
    if (r.ec != std::errc() || r.ptr != text.data() + text.size() || !std::isfinite(v)) return std::nullopt;
    return v;
}

} // namespace

double missingValue(char mark) {
    uint8_t stored = uint8_t(~uint8_t('.'));
    if (mark >= 'A' && mark <= 'Z') stored = uint8_t(~uint8_t(mark));
    else if (mark == '_') stored = uint8_t(~uint8_t('-'));
    return std::bit_cast<double>(0xFFFF000000000000ull | (uint64_t(stored) << 40));
}

char missingMark(double value) {
    const uint64_t bits = std::bit_cast<uint64_t>(value);
    if ((bits >> 48) != 0xFFFF) return 0;
    const char mark = char(uint8_t(~uint8_t(bits >> 40)));
    if (mark == '-') return '_';
    if (mark >= 'A' && mark <= 'Z') return mark;
    return '.';
}

std::optional<double> parseValue(std::string_view text) {
    if (text == ".") return missingValue('.');
    if (text.size() == 2 && text[0] == '.' && !(text[1] >= '0' && text[1] <= '9')) {
        if ((text[1] >= 'A' && text[1] <= 'Z') || text[1] == '_') return missingValue(text[1]);
        if (text[1] >= 'a' && text[1] <= 'z') return missingValue(char(text[1] - 'a' + 'A'));
        return std::nullopt;
    }
    int64_t days = 0;
    if (text.size() >= 10 && text[4] == '-' && readDate(text, days)) {
        if (text.size() == 10) return double(days);
        // THH:MM[:SS[.fff]]
        int64_t hh = 0, mm = 0, ss = 0;
        if (text[10] != 'T' || !digitsAt(text, 11, 2, hh) || text.size() < 16 || text[13] != ':' ||
            !digitsAt(text, 14, 2, mm))
            return std::nullopt;
        if (hh > 23 || mm > 59) return std::nullopt;
        double fraction = 0;
        size_t pos = 16;
        if (pos < text.size()) {
            if (text[pos] != ':' || !digitsAt(text, pos + 1, 2, ss) || ss > 59) return std::nullopt;
            pos += 3;
            if (pos < text.size()) {
                if (text[pos] != '.' || pos + 1 >= text.size()) return std::nullopt;
                for (size_t i = pos + 1; i < text.size(); ++i)
                    if (text[i] < '0' || text[i] > '9') return std::nullopt;
                const std::string f = "0" + std::string(text.substr(pos));
                std::from_chars(f.data(), f.data() + f.size(), fraction);
            }
        }
        return double(days) * 86400.0 + double(hh * 3600 + mm * 60 + ss) + fraction;
    }
    return readNumber(text);
}

std::u16string utf16(std::string_view text) {
    const icu::UnicodeString u = icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), int32_t(text.size())));
    return std::u16string(u.getBuffer(), size_t(u.length()));
}

std::string utf8(std::u16string_view text) {
    std::string out;
    icu::UnicodeString(text.data(), int32_t(text.size())).toUTF8String(out);
    return out;
}

} // namespace zvhost
