// The host's number services on std::to_chars and std::from_chars.
//
// to_chars rounds correctly but takes ties to even; the host takes them away
// from zero. A double is a tie at a rounding place only when its exact binary
// value ends there in a 5, which can be told from its binary exponent (for
// places behind the point) or from its exact integer digits (for places in
// front of it). A tie is then rounded from the next double up, which lies
// above the tie and below the next rounding boundary.
#include "numbers.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>

namespace zvhost {

namespace {

constexpr int kMaxDecimals = 99;
constexpr int kTextRoom = 512; // 309 integer digits, a point, 99 decimals, a sign
// The best fit shows no more significant digits than every double holds.
constexpr int kBestFitDigits = 15;

bool isMissingBits(double v) {
    uint64_t b;
    std::memcpy(&b, &v, sizeof b);
    return (b >> 48) == 0xFFFFu;
}

char missingMarkOf(double v) {
    uint64_t b;
    std::memcpy(&b, &v, sizeof b);
    const auto letter = static_cast<uint8_t>(~(b >> 40) & 0xFFu);
    if (letter == '-') return '_';
    if (letter >= 'A' && letter <= 'Z') return static_cast<char>(letter);
    return '.';
}

// The exponent of the lowest set bit of a positive finite double: the value
// is odd * 2^result.
int lowestBitExponent(double a) {
    int exp = 0;
    const double m = std::frexp(a, &exp);
    const auto mantissa = static_cast<uint64_t>(std::ldexp(m, 53));
    const int e = exp - 53;
    return mantissa ? e + __builtin_ctzll(mantissa) : e;
}

// True when a (positive, finite) lies exactly half way between two multiples
// of 10^-places.
bool isTie(double a, int places) {
    if (a == 0) return false;
    const int low = lowestBitExponent(a);
    if (places >= 0) return low == -(places + 1);
    if (low < 0) return false; // not an integer
    char digits[kTextRoom];
    auto r = std::to_chars(digits, digits + sizeof digits, a, std::chars_format::fixed, 0);
    const int n = static_cast<int>(r.ptr - digits);
    const int zeros = -places - 1;
    if (n < zeros + 1) return false;
    if (digits[n - zeros - 1] != '5') return false;
    for (int i = n - zeros; i < n; ++i)
        if (digits[i] != '0') return false;
    return true;
}

// Adds one unit in the last digit of a digit text that may hold one '.';
// a carry out of the first digit puts a '1' in front. Returns the length.
int incrementLast(char *text, int n) {
    int i = n - 1;
    for (; i >= 0; --i) {
        if (text[i] == '.') continue;
        if (text[i] == '9') {
            text[i] = '0';
            continue;
        }
        ++text[i];
        return n;
    }
    std::memmove(text + 1, text, size_t(n));
    text[0] = '1';
    return n + 1;
}

// The short road of fixedDigits: a = m * 2^e, so a * 10^places is
// m * 5^places * 2^(e + places), whose whole part and remainder integers give
// exactly. It serves while the rounded digits fit 19 places; false otherwise.
constexpr int kShortPlaces = 19;

constexpr auto kPowersOfFive = [] {
    std::array<uint64_t, kShortPlaces + 1> p{};
    p[0] = 1;
    for (int i = 1; i <= kShortPlaces; ++i) p[size_t(i)] = p[size_t(i) - 1] * 5;
    return p;
}();
constexpr auto kPowersOfTen = [] {
    std::array<uint64_t, kShortPlaces + 1> p{};
    p[0] = 1;
    for (int i = 1; i <= kShortPlaces; ++i) p[size_t(i)] = p[size_t(i) - 1] * 10;
    return p;
}();
constexpr uint64_t kShortLimit = kPowersOfTen[kShortPlaces];
// Places whose power of five times a 53-bit mantissa stays below 2^63.
constexpr int kNarrowPlaces = 4;
static_assert(kPowersOfFive[kNarrowPlaces] < (uint64_t(1) << 10));

// a * 10^places rounded half away from zero into *scaled, when that is below
// 10^19.
bool shortScaled(double a, int places, uint64_t *scaled) {
    if (places > kShortPlaces || !(a < 1e19)) return false;
    const uint64_t bits = std::bit_cast<uint64_t>(a);
    const int biased = int(bits >> 52);
    const uint64_t fraction = bits & ((uint64_t(1) << 52) - 1);
    const uint64_t m = biased == 0 ? fraction : fraction | (uint64_t(1) << 52);
    const int e = (biased == 0 ? 1 : biased) - 1075;
    const int shift = e + places;
    if (places <= kNarrowPlaces && shift < 0) {
        // The same rounding in 64 bits, where m * 5^places stays below 2^63.
        const uint64_t y = m * kPowersOfFive[size_t(places)];
        *scaled = -shift >= 64 ? 0 : (y + (uint64_t(1) << (-shift - 1))) >> -shift;
        return true;
    }
    unsigned __int128 x = static_cast<unsigned __int128>(m) * kPowersOfFive[places]; // below 2^98
    if (shift >= 0) {
        x <<= shift; // a < 10^19 keeps this below 2^128
    } else if (-shift > 100) {
        x = 0; // below a half of the last place
    } else {
        // Half a unit of the last place added carries into it when what the
        // shift drops is at least that half: a tie goes away from zero.
        x = (x + (static_cast<unsigned __int128>(1) << (-shift - 1))) >> -shift;
    }
    if (x >= kShortLimit) return false;
    *scaled = uint64_t(x);
    return true;
}

// The count of decimal digits of q, 0 for 0.
int decimalDigits(uint64_t q) {
    const int guess = (std::bit_width(q) * 1233) >> 12; // bits times log10(2), at most one short
    return guess + (q >= kPowersOfTen[size_t(guess)] ? 1 : 0);
}

// Digits go in from the right, two at a time, as chars or as UTF-16 units.
constexpr char kPairs[] = "00010203040506070809101112131415161718192021222324252627282930313233343536373839"
                          "40414243444546474849505152535455565758596061626364656667686970717273747576777879"
                          "8081828384858687888990919293949596979899";

// The same pairs as two UTF-16 units in the machine's order, one store each.
constexpr auto kPairUnits = [] {
    std::array<uint32_t, 100> units{};
    const int first = std::endian::native == std::endian::little ? 0 : 16;
    for (size_t i = 0; i < units.size(); ++i)
        units[i] = uint32_t(uint8_t(kPairs[2 * i])) << first | uint32_t(uint8_t(kPairs[2 * i + 1])) << (16 - first);
    return units;
}();

template <class Unit>
Unit *pairBefore(Unit *end, unsigned pair) {
    static_assert(sizeof(Unit) == 1 || sizeof(Unit) == 2);
    end -= 2;
    if constexpr (sizeof(Unit) == 2) std::memcpy(end, &kPairUnits[pair], sizeof kPairUnits[pair]);
    else std::memcpy(end, kPairs + 2 * pair, 2);
    return end;
}

// The last `count` digits of q in front of `end`; q keeps the ones before
// them. Returns where they begin.
template <class Unit, class Int>
Unit *lowDigitsBefore(Unit *end, Int &q, int count) {
    for (; count >= 2; count -= 2, q /= 100) end = pairBefore(end, unsigned(q % 100));
    if (count > 0) {
        *--end = Unit('0' + q % 10);
        q /= 10;
    }
    return end;
}

// Every digit of q (a 0 for 0) in front of `end`. Returns where they begin.
template <class Unit>
Unit *digitsBefore(Unit *end, uint64_t q) {
    for (; q > UINT32_MAX; q /= 100) end = pairBefore(end, unsigned(q % 100));
    // The rest in 32 bits, whose division is the cheaper.
    auto r = static_cast<uint32_t>(q);
    for (; r >= 10000; r /= 10000) {
        const uint32_t four = r % 10000;
        end = pairBefore(end, four % 100);
        end = pairBefore(end, four / 100);
    }
    if (r >= 100) {
        end = pairBefore(end, r % 100);
        r /= 100;
    }
    if (r >= 10) return pairBefore(end, r);
    *--end = Unit('0' + r);
    return end;
}

// The scaled value as plain digits with `places` decimals, in front of `end`;
// in 32 bits when it fits them, whose division is the cheaper.
template <class Unit>
Unit *scaledBefore(Unit *end, uint64_t scaled, int places) {
    auto put = [&](auto q) {
        end = lowDigitsBefore(end, q, places);
        if (places > 0) *--end = Unit('.');
        return digitsBefore(end, q);
    };
    return scaled <= UINT32_MAX ? put(uint32_t(scaled)) : put(scaled);
}

// The units of the scaled value's plain digits, as scaledBefore writes them.
int scaledLength(uint64_t scaled, int places) {
    const int digits = std::max(decimalDigits(scaled), places + 1);
    return places > 0 ? digits + 1 : digits;
}

bool shortFixedDigits(double a, int places, char *out, int *length) {
    uint64_t scaled = 0;
    if (!shortScaled(a, places, &scaled)) return false;
    char text[kShortPlaces + 2];
    char *const end = text + sizeof text;
    const char *p = scaledBefore(end, scaled, places);
    *length = int(end - p);
    std::memcpy(out, p, size_t(end - p));
    return true;
}

// |a| with `places` decimals, rounded half away from zero. Returns the length.
// At a tie the text with one place more is exact and ends in 5: that 5 goes
// and the rest rounds up.
int fixedDigits(double a, int places, char *out) {
    if (int n = 0; shortFixedDigits(a, places, out, &n)) return n;
    if (!isTie(a, places)) {
        auto r = std::to_chars(out, out + kTextRoom, a, std::chars_format::fixed, places);
        return static_cast<int>(r.ptr - out);
    }
    auto r = std::to_chars(out, out + kTextRoom, a, std::chars_format::fixed, places + 1);
    int n = static_cast<int>(r.ptr - out) - 1; // without the 5
    if (places == 0) --n;                      // and without the point
    return incrementLast(out, n);
}

// The decimal exponent of a positive finite double.
int exponentOf(double a) {
    char s[64];
    auto r = std::to_chars(s, s + sizeof s, a, std::chars_format::scientific, 24);
    const char *e = static_cast<const char *>(std::memchr(s, 'e', size_t(r.ptr - s)));
    int exp = 0;
    std::from_chars(e + (e[1] == '+' ? 2 : 1), r.ptr, exp);
    return exp;
}

// |a| in E-notation with `places` mantissa decimals, rounded half away from
// zero: "1.25E+3", "5E-7". Returns the length; *exponent gets the exponent.
int scientificDigits(double a, int places, char *out, int *exponent = nullptr) {
    const bool tie = a != 0 && isTie(a, places - exponentOf(a));
    char s[80];
    auto r = std::to_chars(s, s + sizeof s, a, std::chars_format::scientific, places + (tie ? 1 : 0));
    const char *e = static_cast<const char *>(std::memchr(s, 'e', size_t(r.ptr - s)));
    int exp = 0;
    std::from_chars(e + (e[1] == '+' ? 2 : 1), r.ptr, exp);
    int n = static_cast<int>(e - s);
    std::memcpy(out, s, size_t(n));
    if (tie) {
        --n;                     // the exact 5
        if (places == 0) --n;    // and the point before it
        n = incrementLast(out, n);
        if (out[0] == '1' && out[1] == '0' && (places == 0 ? n == 2 : out[2] == '.')) {
            // 9.95 became 10.0: one digit in front of the point again.
            if (places == 0) {
                n = 1;
            } else {
                out[1] = '.';
                out[2] = '0';
                n -= 1;
            }
            ++exp;
        }
    }
    out[n++] = 'E';
    out[n++] = exp < 0 ? '-' : '+';
    auto w = std::to_chars(out + n, out + n + 16, exp < 0 ? -exp : exp);
    n = static_cast<int>(w.ptr - out);
    if (exponent) *exponent = exp;
    return n;
}

struct Text {
    char c[kTextRoom + 8];
    int n = 0;
};

bool negativeValue(double v) { return std::signbit(v) && v != 0; }

// sign + digits of the plain form with exactly `places` decimals.
void plainAt(double v, int places, Text &t) {
    t.n = 0;
    if (negativeValue(v)) t.c[t.n++] = '-';
    t.n += fixedDigits(std::fabs(v), places, t.c + t.n);
}

void sciAt(double v, int places, Text &t) {
    t.n = 0;
    if (negativeValue(v)) t.c[t.n++] = '-';
    t.n += scientificDigits(std::fabs(v), places, t.c + t.n);
}

void stars(Text &t, int width) {
    t.n = width < kTextRoom ? width : kTextRoom;
    std::memset(t.c, '*', size_t(t.n));
}

// The widest E-notation text that fits, or false.
bool fitScientific(double v, int width, Text &t, int mostPlaces = 20) {
    for (int places = width < mostPlaces ? width : mostPlaces; places >= 0; --places) {
        sciAt(v, places, t);
        if (t.n <= width) return true;
    }
    return false;
}

// The length of the integer part with its sign, without writing it: exact
// below 2^53; above, every double is a whole number and is written.
int integerLength(double v, Text &t) {
    const double a = std::fabs(v);
    if (!(a < 9007199254740992.0)) {
        plainAt(v, 0, t);
        return t.n;
    }
    long long r = static_cast<long long>(a);
    int n = negativeValue(v) ? 2 : 1;
    while (r >= 10) {
        r /= 10;
        ++n;
    }
    return n;
}

int32_t plainForm(double v, int width, int decimals, Text &t) {
    // Most values fit with all their decimals: that text is the answer.
    plainAt(v, decimals, t);
    if (t.n <= width) return 0;
    const int whole = integerLength(v, t);
    if (whole <= width) {
        // The most places that leave room for the point; one fewer each time the
        // rounding carries into a new integer digit (9.9996 -> 10.000).
        const int room = width - whole - 1;
        for (int places = decimals < room ? decimals : (room > 0 ? room : 0); places >= 0; --places) {
            plainAt(v, places, t);
            if (t.n <= width) return places == decimals ? 0 : kNumberNotPlain;
        }
    }
    if (!fitScientific(v, width, t)) stars(t, width);
    return kNumberNotPlain;
}

// Commas between groups of three integer digits.
void group(Text &t) {
    const int start = t.c[0] == '-' ? 1 : 0;
    int end = start;
    while (end < t.n && t.c[end] >= '0' && t.c[end] <= '9') ++end;
    const int digits = end - start;
    if (digits <= 3) return;
    const int commas = (digits - 1) / 3;
    std::memmove(t.c + end + commas, t.c + end, size_t(t.n - end));
    int from = end - 1, to = end + commas - 1, count = 0;
    while (from >= start) {
        t.c[to--] = t.c[from--];
        if (++count % 3 == 0 && from >= start) t.c[to--] = ',';
    }
    t.n += commas;
}

// Significant digits a plain text shows: from the first nonzero digit on.
int shownDigits(const Text &t) {
    int count = 0;
    bool started = false;
    for (int i = 0; i < t.n; ++i) {
        const char c = t.c[i];
        if (c < '0' || c > '9') continue;
        if (c != '0') started = true;
        if (started) ++count;
    }
    return count;
}

// Drops trailing zeros of a fraction (and a point left alone) from a plain
// text, or from the mantissa of an E-notation text.
void dropTrailingZeros(Text &t) {
    if (!std::memchr(t.c, '.', size_t(t.n))) return;
    const char *e = static_cast<const char *>(std::memchr(t.c, 'E', size_t(t.n)));
    const int end = e ? int(e - t.c) : t.n;
    int cut = end;
    while (cut > 0 && t.c[cut - 1] == '0') --cut;
    if (cut > 0 && t.c[cut - 1] == '.') --cut;
    std::memmove(t.c + cut, t.c + end, size_t(t.n - end));
    t.n -= end - cut;
}

int32_t bestFitForm(double v, int width, Text &t) {
    if (v == 0) {
        t.c[0] = '0';
        t.n = 1;
        return 0;
    }
    Text fixed, sci;
    bool fixedFits = false;
    plainAt(v, 0, fixed);
    if (fixed.n <= width) {
        fixedFits = true;
        // No more places than the digits a double holds.
        const int significant = kBestFitDigits - 1 - exponentOf(std::fabs(v));
        int room = width - fixed.n - 1;
        if (room > significant) room = significant;
        if (room > kMaxDecimals) room = kMaxDecimals;
        if (room > 0) plainAt(v, room, fixed);
    }
    const bool sciFits = fitScientific(v, width, sci, kBestFitDigits - 1);
    int sciDigits = 0;
    if (sciFits) {
        const char *e = static_cast<const char *>(std::memchr(sci.c, 'E', size_t(sci.n)));
        for (const char *p = sci.c; p < e; ++p)
            if (*p >= '0' && *p <= '9') ++sciDigits;
    }
    if (fixedFits && shownDigits(fixed) > 0 && shownDigits(fixed) >= sciDigits) {
        t = fixed;
    } else if (sciFits) {
        t = sci;
    } else if (fixedFits) {
        t = fixed;
    } else {
        stars(t, width);
        return kNumberNotPlain;
    }
    dropTrailingZeros(t);
    return 0;
}

// Right-justifies the text in `width` units of the target.
int32_t place(const Text &t, int32_t width, ZvChar *target, int64_t capacity, int64_t *produced) {
    const int64_t written = capacity < width ? (capacity > 0 ? capacity : 0) : width;
    const int64_t lead = width - t.n;
    const int64_t blanks = lead < written ? lead : written;
    int64_t i = 0;
    for (; i < blanks; ++i) target[i] = u' ';
    for (; i < written; ++i) target[i] = static_cast<ZvChar>(static_cast<unsigned char>(t.c[i - lead]));
    if (produced) *produced = written;
    return written < width ? ZV_TARGET_TOO_SMALL : 0;
}

// The plain form written straight into a target that holds the whole field,
// when the value's digits with all their decimals fit the width and the short
// road makes them: the common answer, without a text in between. False when
// the value takes the general road; nothing is written then. The short road
// turns away NaN, the infinities and the missing values, all NaN.
bool plainInPlace(double v, int32_t width, int places, ZvChar *target, int64_t capacity, int64_t *produced) {
    uint64_t scaled = 0;
    if (capacity < width || !shortScaled(std::fabs(v), places, &scaled)) return false;
    const bool negative = negativeValue(v);
    if (scaledLength(scaled, places) + (negative ? 1 : 0) > width) return false;
    ZvChar *p = scaledBefore(target + width, scaled, places);
    if (negative) *--p = u'-';
    while (p > target) *--p = u' ';
    if (produced) *produced = width;
    return true;
}

// Every form of formatNumberText by a text of chars, then placed.
int32_t formatThroughText(double value, int32_t width, int32_t decimals, uint32_t flags, ZvChar *target,
                          int64_t capacity, int64_t *produced) {
    const bool grouped = flags == ZV_NUMBER_GROUPED;
    const bool bestFit = flags == ZV_NUMBER_BEST_FIT;
    Text t;
    int32_t status = 0;
    if (isMissingBits(value)) {
        t.c[0] = missingMarkOf(value);
        t.n = 1;
    } else if (!std::isfinite(value)) {
        stars(t, width);
        status = kNumberNotPlain;
    } else if (bestFit) {
        status = bestFitForm(value, width, t);
    } else if (grouped) {
        plainAt(value, decimals, t);
        group(t);
        if (t.n > width) {
            status = plainForm(value, width, decimals, t);
            if (status == 0) status = kNumberUngrouped;
        }
    } else {
        status = plainForm(value, width, decimals, t);
    }
    if (t.n > width) stars(t, width);
    const int32_t placed = place(t, width, target, capacity, produced);
    return placed != 0 ? placed : status;
}

} // namespace

int32_t formatNumberText(double value, int32_t width, int32_t decimals, uint32_t flags,
                         ZvChar *target, int64_t capacity, int64_t *produced) {
    if (produced) *produced = 0;
    const bool plain = flags == ZV_NUMBER_PLAIN;
    const bool grouped = flags == ZV_NUMBER_GROUPED;
    const bool bestFit = flags == ZV_NUMBER_BEST_FIT;
    if (width < 1 || !target || !(plain || grouped || bestFit)) return kNumberBadRequest;
    if (decimals < 0) decimals = 0;
    if (decimals > kMaxDecimals) decimals = kMaxDecimals;

    if (plain && plainInPlace(value, width, decimals, target, capacity, produced)) return 0;
    return formatThroughText(value, width, decimals, flags, target, capacity, produced);
}

namespace {

int64_t skipBlanks(const ZvChar *text, int64_t i, int64_t length) {
    while (i < length && text[i] == u' ') ++i;
    return i;
}

bool isDigit(ZvChar c) { return c >= u'0' && c <= u'9'; }

// Digits that an integer holds exactly as a double (below 2^53), and the
// powers of ten that a double holds exactly.
constexpr int kExactDigits = 15;
constexpr int kLastExactPowerOfTen = 22;
constexpr auto kExactPowersOfTen = [] {
    std::array<double, kLastExactPowerOfTen + 1> p{};
    p[0] = 1;
    for (size_t i = 1; i < p.size(); ++i) p[i] = p[i - 1] * 10;
    return p;
}();

// The short road: at most 15 digits, at most 22 of them behind the point,
// no exponent. The digits as an integer and the power of ten are both exact
// doubles, so the one division rounds as from_chars would. False for any
// other text, which takes the long road.
bool readShortDecimal(const ZvChar *text, int64_t length, double *value) {
    int64_t i = skipBlanks(text, 0, length);
    bool negative = false;
    if (i < length && (text[i] == u'+' || text[i] == u'-')) negative = text[i++] == u'-';
    uint64_t whole = 0;
    int digits = 0, decimals = 0;
    bool point = false;
    for (; i < length; ++i) {
        const unsigned digit = unsigned(text[i]) - u'0';
        if (digit < 10) {
            whole = whole * 10 + digit; // wraps past 19 digits, which are refused below
            ++digits;
            decimals += point;
        } else if (text[i] == u'.' && !point) {
            point = true;
        } else {
            break;
        }
    }
    if (digits == 0 || digits > kExactDigits || decimals > kLastExactPowerOfTen) return false;
    if (i < length && (text[i] == u'E' || text[i] == u'e')) return false;
    if (skipBlanks(text, i, length) != length) return false;
    const double v = double(whole) / kExactPowersOfTen[size_t(decimals)];
    *value = negative ? -v : v;
    return true;
}

} // namespace

int32_t parseDoubleText(const ZvChar *text, int64_t length, double *value, int64_t *used) {
    if (used) *used = 0;
    if (!text || length < 0 || !value) return kNumberUnreadable;
    if (readShortDecimal(text, length, value)) {
        if (used) *used = length;
        return 0;
    }
    int64_t i = skipBlanks(text, 0, length);
    char ascii[kTextRoom];
    int n = 0;
    const int64_t begin = i;
    if (i < length && (text[i] == u'+' || text[i] == u'-')) {
        if (text[i] == u'-') ascii[n++] = '-';
        ++i;
    }
    int digits = 0;
    bool point = false;
    while (i < length && (isDigit(text[i]) || (text[i] == u'.' && !point))) {
        if (n >= kTextRoom - 16) return kNumberUnreadable;
        if (text[i] == u'.') point = true;
        else ++digits;
        ascii[n++] = static_cast<char>(text[i++]);
    }
    if (digits == 0) {
        // '.' alone is the missing value.
        if (point && n == 1 && i - begin == 1 && skipBlanks(text, i, length) == length) {
            const uint64_t bits = ZV_MISSING_BITS;
            std::memcpy(value, &bits, sizeof bits);
            if (used) *used = length;
            return 0;
        }
        return kNumberUnreadable;
    }
    if (i < length && (text[i] == u'E' || text[i] == u'e')) {
        int64_t j = i + 1;
        int m = n;
        ascii[m++] = 'e';
        if (j < length && (text[j] == u'+' || text[j] == u'-')) ascii[m++] = static_cast<char>(text[j++]);
        int expDigits = 0;
        while (j < length && isDigit(text[j]) && m < kTextRoom - 1) {
            ascii[m++] = static_cast<char>(text[j++]);
            ++expDigits;
        }
        if (expDigits == 0) return kNumberUnreadable;
        n = m;
        i = j;
    }
    if (skipBlanks(text, i, length) != length) return kNumberUnreadable;
    double v = 0;
    auto r = std::from_chars(ascii, ascii + n, v, std::chars_format::general);
    if (r.ec != std::errc() || r.ptr != ascii + n || !std::isfinite(v)) return kNumberUnreadable;
    *value = v;
    if (used) *used = length;
    return 0;
}

int32_t parseIntegerText(const ZvChar *text, int64_t length, int64_t *value, int64_t *used) {
    if (used) *used = 0;
    if (!text || length < 0 || !value) return kNumberUnreadable;
    int64_t i = skipBlanks(text, 0, length);
    char ascii[32];
    int n = 0;
    if (i < length && (text[i] == u'+' || text[i] == u'-')) {
        if (text[i] == u'-') ascii[n++] = '-';
        ++i;
    }
    const int signLength = n;
    while (i < length && isDigit(text[i])) {
        if (n >= int(sizeof ascii) - 1) return kNumberUnreadable;
        ascii[n++] = static_cast<char>(text[i++]);
    }
    if (n == signLength) return kNumberUnreadable;
    if (skipBlanks(text, i, length) != length) return kNumberUnreadable;
    int64_t v = 0;
    auto r = std::from_chars(ascii, ascii + n, v);
    if (r.ec != std::errc() || r.ptr != ascii + n) return kNumberUnreadable;
    *value = v;
    if (used) *used = length;
    return 0;
}

int32_t decimalExponent(double value, int32_t digits) {
    if (!std::isfinite(value) || value == 0) return 0;
    if (digits < 1) digits = 1;
    if (digits > 40) digits = 40;
    char s[80];
    int exponent = 0;
    scientificDigits(std::fabs(value), digits - 1, s, &exponent);
    return exponent;
}

} // namespace zvhost
