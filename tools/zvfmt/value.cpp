#include "value.hpp"

#include <charconv>
#include <cmath>
#include <cstring>

namespace zvfmt {
namespace {

constexpr uint64_t kMissingTop = 0xFFFF000000000000ull;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

std::string_view trim(std::string_view s) {
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t' || s.front() == '\r' || s.front() == '\n'))
        s.remove_prefix(1);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r' || s.back() == '\n'))
        s.remove_suffix(1);
    return s;
}

bool fail(std::string *why, std::string text) {
    if (why) *why = std::move(text);
    return false;
}

// Exactly n digits at s[pos]; advances pos.
bool digits(std::string_view s, size_t &pos, size_t n, int &out) {
    if (pos + n > s.size()) return false;
    int v = 0;
    for (size_t i = 0; i < n; ++i) {
        char c = s[pos + i];
        if (!isDigit(c)) return false;
        v = v * 10 + (c - '0');
    }
    pos += n;
    out = v;
    return true;
}

// The module's calendar: Gregorian, but a year that 4000 divides is no leap year.
bool leapYear(int64_t y) { return y % 4000 != 0 && ((y % 4 == 0 && y % 100 != 0) || y % 400 == 0); }

int daysInMonth(int64_t y, int m) {
    static const int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return m == 2 && leapYear(y) ? 29 : kDays[m - 1];
}

// HH:MM[:SS[.fff]] from pos to the end; seconds from midnight.
bool timeOfDay(std::string_view s, size_t pos, double &seconds, std::string *why) {
    int h = 0, m = 0, sec = 0;
    if (!digits(s, pos, 2, h) || pos >= s.size() || s[pos] != ':')
        return fail(why, "a time must look like HH:MM, HH:MM:SS or HH:MM:SS.fff");
    ++pos;
    if (!digits(s, pos, 2, m))
        return fail(why, "a time must look like HH:MM, HH:MM:SS or HH:MM:SS.fff");
    double fraction = 0;
    if (pos < s.size()) {
        if (s[pos] != ':' || (++pos, !digits(s, pos, 2, sec)))
            return fail(why, "a time must look like HH:MM, HH:MM:SS or HH:MM:SS.fff");
        if (pos < s.size()) {
            if (s[pos] != '.' || pos + 1 >= s.size())
                return fail(why, "a time must look like HH:MM, HH:MM:SS or HH:MM:SS.fff");
            std::string frac = "0";
            frac.append(s.substr(pos));
            for (size_t i = 2; i < frac.size(); ++i)
                if (!isDigit(frac[i])) return fail(why, "the fraction of a second must be digits");
            std::from_chars(frac.data(), frac.data() + frac.size(), fraction);
        }
    }
    if (h > 23) return fail(why, "hour " + std::to_string(h) + " is out of range (00..23)");
    if (m > 59) return fail(why, "minute " + std::to_string(m) + " is out of range (00..59)");
    if (sec > 59) return fail(why, "second " + std::to_string(sec) + " is out of range (00..59)");
    seconds = h * 3600.0 + m * 60.0 + sec + fraction;
    return true;
}

bool looksLikeDate(std::string_view s) {
    return s.size() >= 10 && isDigit(s[0]) && isDigit(s[1]) && isDigit(s[2]) && isDigit(s[3]) &&
           s[4] == '-';
}

bool looksLikeTime(std::string_view s) {
    return s.size() >= 3 && isDigit(s[0]) && isDigit(s[1]) && s[2] == ':';
}

} // namespace

int64_t dayCount(int64_t y, int m, int d) {
    // Days from 1970-01-01 by whole 400-year eras, then shifted to 1960.
    y -= m <= 2;
    const int64_t era = (y >= 0 ? y : y - 399) / 400;
    const int64_t yoe = y - era * 400;
    const int64_t doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    // y is now counted from March: every year 4000 divides that lies before
    // it lost its 29 February.
    const int64_t lost = y >= 4000 ? y / 4000 : 0;
    return era * 146097 + doe - 719468 + 3653 - lost;
}

namespace {

// A plain decimal of at most 15 digits ("-1234.25"), the common case of a
// column: its digits and the power of ten are exact doubles, so one division
// rounds correctly. Anything else: nullopt, for from_chars to read.
std::optional<double> shortDecimal(std::string_view n) {
    static constexpr double kTens[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    size_t i = n.size() > 0 && n[0] == '-' ? 1 : 0;
    int64_t digits = 0;
    int count = 0, places = -1;
    for (; i < n.size(); ++i) {
        if (n[i] == '.' && places < 0) {
            places = 0;
            continue;
        }
        if (n[i] < '0' || n[i] > '9' || ++count > 15) return std::nullopt;
        digits = digits * 10 + (n[i] - '0');
        if (places >= 0) ++places;
    }
    if (count == 0) return std::nullopt;
    const double value = double(digits) / kTens[places < 0 ? 0 : places];
    return n[0] == '-' ? -value : value;
}

} // namespace

std::optional<double> parseValue(std::string_view text, std::string *why) {
    std::string_view s = trim(text);
    if (s.empty()) {
        fail(why, "empty VALUE");
        return std::nullopt;
    }
    if (s == ".") return missingValue('.');
    if (s.size() == 2 && s[0] == '.' && !isDigit(s[1])) {
        char c = s[1];
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
        if ((c >= 'A' && c <= 'Z') || c == '_') return missingValue(c);
        fail(why, "a missing value is '.', '.A' to '.Z' or '._'");
        return std::nullopt;
    }
    if (looksLikeDate(s)) {
        size_t pos = 0;
        int y = 0, m = 0, d = 0;
        if (!digits(s, pos, 4, y) || s[pos++] != '-' || !digits(s, pos, 2, m) || pos >= s.size() ||
            s[pos++] != '-' || !digits(s, pos, 2, d)) {
            fail(why, "a date must look like YYYY-MM-DD");
            return std::nullopt;
        }
        if (m < 1 || m > 12) {
            fail(why, "month " + std::to_string(m) + " is out of range (01..12)");
            return std::nullopt;
        }
        if (d < 1 || d > daysInMonth(y, m)) {
            fail(why, "day " + std::to_string(d) + " is out of range for " +
                          std::string(s.substr(0, 7)) + " (01.." + std::to_string(daysInMonth(y, m)) + ")");
            return std::nullopt;
        }
        const double days = static_cast<double>(dayCount(y, m, d));
        if (pos == s.size()) return days;
        if (s[pos] != 'T' && s[pos] != 't' && s[pos] != ' ') {
            fail(why, "a datetime must look like YYYY-MM-DDTHH:MM:SS");
            return std::nullopt;
        }
        double seconds = 0;
        if (!timeOfDay(s, pos + 1, seconds, why)) return std::nullopt;
        return days * 86400.0 + seconds;
    }
    if (looksLikeTime(s)) {
        double seconds = 0;
        if (!timeOfDay(s, 0, seconds, why)) return std::nullopt;
        return seconds;
    }
    std::string_view n = s;
    if (n.size() > 1 && n[0] == '+' && n[1] != '-' && n[1] != '+') n.remove_prefix(1);
    if (const std::optional<double> quick = shortDecimal(n)) return quick;
    double value = 0;
    auto [end, ec] = std::from_chars(n.data(), n.data() + n.size(), value);
    if (ec == std::errc::result_out_of_range) {
        fail(why, "the number is out of the range of a double");
        return std::nullopt;
    }
    if (ec != std::errc() || end != n.data() + n.size()) {
        fail(why, "not a number, an ISO date or datetime, or a missing value");
        return std::nullopt;
    }
    return value;
}

double missingValue(char mark) {
    const unsigned char stored = mark == '_' ? static_cast<unsigned char>('-')
                                             : static_cast<unsigned char>(mark);
    const uint64_t b5 = static_cast<uint8_t>(~stored);
    return fromBits(kMissingTop | (b5 << 40));
}

std::string missingMark(double value) {
    const uint64_t bits = bitsOf(value);
    if ((bits & kMissingTop) != kMissingTop) return "";
    const unsigned char c = static_cast<unsigned char>(~(bits >> 40) & 0xFF);
    if (c == '-') return "._";
    if (c >= 'A' && c <= 'Z') return std::string(".") + static_cast<char>(c);
    return ".";
}

uint64_t bitsOf(double value) {
    uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

double fromBits(uint64_t bits) {
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

std::string hex16(uint64_t bits) {
    static const char kHex[] = "0123456789abcdef";
    std::string out(16, '0');
    for (int i = 15; i >= 0; --i, bits >>= 4) out[static_cast<size_t>(i)] = kHex[bits & 15];
    return out;
}

std::optional<uint64_t> parseHex16(std::string_view text) {
    if (text.size() != 16) return std::nullopt;
    uint64_t bits = 0;
    for (char c : text) {
        int v;
        if (c >= '0' && c <= '9') v = c - '0';
        else if (c >= 'a' && c <= 'f') v = c - 'a' + 10;
        else if (c >= 'A' && c <= 'F') v = c - 'A' + 10;
        else return std::nullopt;
        bits = bits << 4 | static_cast<uint64_t>(v);
    }
    return bits;
}

std::string hexBytes(std::string_view bytes) {
    static const char kHex[] = "0123456789abcdef";
    std::string out;
    out.reserve(bytes.size() * 2);
    for (unsigned char c : bytes) {
        out += kHex[c >> 4];
        out += kHex[c & 15];
    }
    return out;
}

std::string shortestNumber(double value) {
    if (std::isnan(value)) return "nan";
    if (std::isinf(value)) return value < 0 ? "-inf" : "inf";
    char buf[64];
    auto [end, ec] = std::to_chars(buf, buf + sizeof buf, value);
    (void)ec;
    return std::string(buf, end);
}

std::string statusText(int32_t status) {
    std::string out = std::to_string(status);
    if (status < -1) {
        static const char kHex[] = "0123456789abcdef";
        uint32_t u = static_cast<uint32_t>(status);
        std::string h(8, '0');
        for (int i = 7; i >= 0; --i, u >>= 4) h[static_cast<size_t>(i)] = kHex[u & 15];
        out += " (0x" + h + ")";
    }
    return out;
}

std::string statusMeaning(int32_t status) {
    switch (static_cast<uint32_t>(status)) {
    case 0: return "done";
    case 0xFFFFFFFFu: return "the module's instance was not found";
    case 1: return "blank or unreadable text";
    case 2: return "width too small";
    case 3: return "width too large";
    case 4: return "decimals too small";
    case 5: return "decimals too large";
    case 999: return "no pattern or number form fits the text";
    case 0x80000000u: return "instance not found, or the week text can't be read";
    case 0x803fc002u: return "memory exhausted";
    case 0x803fe807u: return "the target was too small";
    default: return "";
    }
}

std::string upper(std::string_view text) {
    std::string out(text);
    for (char &c : out)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    return out;
}

std::string hostLocaleName(std::string_view name) {
    name = name.substr(0, name.find_first_of(".@"));
    if (name.empty() || name == "C" || name == "POSIX") return "en_US";
    return std::string(name);
}

std::optional<FormatSpec> parseFormatSpec(std::string_view text, std::string *why) {
    auto bad = [&](std::string reason) -> std::optional<FormatSpec> {
        fail(why, std::move(reason));
        return std::nullopt;
    };
    size_t pos = 0;
    if (pos < text.size() && text[pos] == '@') ++pos;
    const size_t nameStart = pos;
    while (pos < text.size() &&
           ((text[pos] >= 'A' && text[pos] <= 'Z') || (text[pos] >= 'a' && text[pos] <= 'z')))
        ++pos;
    if (pos == nameStart) return bad("a format name is letters, after '@' for an informat");
    FormatSpec spec;
    spec.name = upper(text.substr(0, pos));
    auto number = [&](int32_t &out, const char *what) -> bool {
        const size_t start = pos;
        while (pos < text.size() && isDigit(text[pos])) ++pos;
        if (pos - start > 6) {
            fail(why, std::string(what) + " " + std::string(text.substr(start, pos - start)) + " is too large");
            return false;
        }
        int32_t v = 0;
        std::from_chars(text.data() + start, text.data() + pos, v);
        out = v;
        return true;
    };
    if (pos < text.size() && isDigit(text[pos])) {
        int32_t w = 0;
        if (!number(w, "width")) return std::nullopt;
        spec.width = w;
    }
    if (pos < text.size() && text[pos] == '.') {
        ++pos;
        if (pos < text.size() && isDigit(text[pos])) {
            int32_t d = 0;
            if (!number(d, "decimals")) return std::nullopt;
            spec.decimals = d;
        }
    }
    if (pos != text.size())
        return bad("unexpected \"" + std::string(text.substr(pos)) + "\" after " + spec.name +
                   " (the form is NAME[W[.D]])");
    return spec;
}

} // namespace zvfmt
