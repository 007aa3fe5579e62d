// Number text of the reference host's locales: the plain, best-fit and
// grouped forms that formatNumber writes, the readers behind parseDouble and
// parseInteger, and decimalExponent.
//
// Digits come from the exact decimal expansion of the double (std::to_chars
// with enough places), rounded here half away from zero, so every form is
// correctly rounded whatever the C library's printf does.
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <string>

#include "numbers.hpp"
#include "zvhost.hpp"

namespace zvhost {
namespace {

// value = 0.d1 d2 d3 ... x 10^exp10, d1 not zero; no digits means zero.
struct Decimal {
    bool negative = false;
    std::string digits;
    int exp10 = 0;
    bool zero() const { return digits.empty(); }
};

void trimTrailingZeros(Decimal &d) {
    while (!d.digits.empty() && d.digits.back() == '0') d.digits.pop_back();
}

Decimal exactDecimal(double v) {
    Decimal d;
    d.negative = std::signbit(v);
    const double a = std::fabs(v);
    if (a == 0 || !std::isfinite(a)) return d;
    int e = 0;
    const double f = std::frexp(a, &e);
    const uint64_t mantissa = uint64_t(std::ldexp(f, 53));
    const int binaryExp = e - 53;
    int places = 0;
    if (binaryExp < 0) places = std::max(0, -binaryExp - std::countr_zero(mantissa));
    char buf[1600];
    const auto r = std::to_chars(buf, buf + sizeof buf, a, std::chars_format::fixed, places);
    const std::string text(buf, r.ptr);
    const size_t point = text.find('.');
    const std::string whole = point == std::string::npos ? text : text.substr(0, point);
    const std::string frac = point == std::string::npos ? std::string() : text.substr(point + 1);
    std::string all = whole + frac;
    size_t lead = 0;
    while (lead < all.size() && all[lead] == '0') ++lead;
    d.digits = all.substr(lead);
    d.exp10 = int(whole.size()) - int(lead);
    trimTrailingZeros(d);
    return d;
}

// Keep the first `keep` digits, rounding half away from zero.
void roundTo(Decimal &d, int keep) {
    if (d.zero() || keep >= int(d.digits.size())) return;
    if (keep < 0) {
        d.digits.clear();
        return;
    }
    const bool up = d.digits[size_t(keep)] >= '5';
    d.digits.resize(size_t(keep));
    if (up) {
        while (!d.digits.empty() && d.digits.back() == '9') d.digits.pop_back();
        if (d.digits.empty()) {
            d.digits = "1";
            d.exp10 += 1;
        } else {
            d.digits.back() = char(d.digits.back() + 1);
        }
    }
    trimTrailingZeros(d);
}

char digitAt(const Decimal &d, int power) {
    const int index = d.exp10 - 1 - power;
    return index >= 0 && index < int(d.digits.size()) ? d.digits[size_t(index)] : '0';
}

// Fixed text with `places` decimals; the leading "0" of a value below 1 is
// written when `leadingZero` is set or there are no decimals.
std::string fixedText(const Decimal &d, int places, bool leadingZero = true, bool grouped = false) {
    std::string s;
    if (d.negative && !d.zero()) s += '-';
    if (d.zero() || d.exp10 <= 0) {
        if (leadingZero || places == 0) s += '0';
    } else {
        for (int p = d.exp10 - 1; p >= 0; --p) {
            s += digitAt(d, p);
            if (grouped && p > 0 && p % 3 == 0) s += ',';
        }
    }
    if (places > 0) {
        s += '.';
        for (int p = -1; p >= -places; --p) s += digitAt(d, p);
    }
    return s;
}

// E-notation with `places` digits behind the point: 1.5E10, -2E-7.
std::string scientificText(const Decimal &d, int places) {
    std::string s;
    if (d.negative && !d.zero()) s += '-';
    s += d.zero() ? '0' : d.digits[0];
    if (places > 0) {
        s += '.';
        for (int i = 1; i <= places; ++i) s += i < int(d.digits.size()) ? d.digits[size_t(i)] : '0';
    }
    const int exponent = d.zero() ? 0 : d.exp10 - 1;
    s += exponent < 0 ? "E-" : "E+";
    s += std::to_string(exponent < 0 ? -exponent : exponent);
    return s;
}

// The widest E-notation that fits `width`, with at most `maxPlaces` places.
bool scientificFit(const Decimal &exact, int width, int maxPlaces, std::string &out) {
    for (int places = std::min(maxPlaces, 17); places >= 0; --places) {
        Decimal r = exact;
        roundTo(r, places + 1);
        const std::string s = scientificText(r, places);
        if (int(s.size()) <= width) {
            out = s;
            return true;
        }
    }
    return false;
}

bool isMissing(double v) { return (std::bit_cast<uint64_t>(v) >> 48) == 0xFFFF; }

// Significant digits of the shortest text that reads back as the same double.
int shortestDigits(double v) {
    char buf[64];
    const auto r = std::to_chars(buf, buf + sizeof buf, std::fabs(v), std::chars_format::scientific);
    int n = 0;
    for (const char *p = buf; p < r.ptr && *p != 'e'; ++p)
        if (*p >= '0' && *p <= '9') ++n;
    return std::max(n, 1);
}

std::string plainForm(const Decimal &exact, int width, int decimals, bool grouped, int32_t &status) {
    status = 0;
    if (grouped) {
        Decimal r = exact;
        roundTo(r, r.exp10 + decimals);
        std::string s = fixedText(r, decimals, true, true);
        if (int(s.size()) <= width) return s;
        int32_t plainStatus = 0;
        s = plainForm(exact, width, decimals, false, plainStatus);
        status = plainStatus == 0 ? kNumberUngrouped : plainStatus;
        return s;
    }
    for (int places = decimals; places >= 0; --places) {
        Decimal r = exact;
        roundTo(r, r.exp10 + places);
        const std::string s = fixedText(r, places);
        if (int(s.size()) <= width) {
            status = places == decimals ? 0 : kNumberNotPlain;
            return s;
        }
    }
    status = kNumberNotPlain;
    std::string s;
    if (scientificFit(exact, width, 16, s)) return s;
    return std::string(size_t(width), '*');
}

// Fixed text with at most `places` decimals, trailing zeros of the fraction dropped.
std::string shortFixed(const Decimal &exact, int places, bool leadingZero) {
    Decimal r = exact;
    roundTo(r, r.exp10 + places);
    std::string s = fixedText(r, places, leadingZero);
    if (s.find('.') != std::string::npos) {
        while (s.back() == '0') s.pop_back();
        if (s.back() == '.') s.pop_back();
    }
    if (s.empty() || s == "-") s = "0";
    return s;
}

std::string bestFitForm(double value, const Decimal &exact, int width, int32_t &status) {
    status = 0;
    if (exact.zero()) return "0";
    const int sign = exact.negative ? 1 : 0;
    const int cap = shortestDigits(value);
    if (exact.exp10 >= 1 && sign + exact.exp10 <= width) {
        // The integer part fits: as many decimals as the field and the digits allow.
        int places = std::min(std::max(width - sign - exact.exp10 - 1, 0), std::max(cap - exact.exp10, 0));
        for (; places >= 0; --places) {
            const std::string s = shortFixed(exact, places, true);
            if (int(s.size()) <= width) return s;
        }
    }
    if (exact.exp10 <= 0) {
        // Below 1: fixed while it shows as many digits as E-notation would.
        std::string e;
        const bool eFits = scientificFit(exact, width, cap - 1, e);
        int eDigits = 0;
        if (eFits)
            for (char c : e) {
                if (c == 'E') break;
                if (c >= '0' && c <= '9') ++eDigits;
            }
        const int want = std::min(cap, std::max(eDigits, 1));
        for (bool leadingZero : {true, false}) {
            const int room = width - sign - (leadingZero ? 2 : 1);
            if (room < 1) continue;
            if (room + exact.exp10 >= want) {
                const int places = std::min(room, cap - exact.exp10);
                return shortFixed(exact, places, leadingZero);
            }
        }
        if (eFits) return e;
        const int room = width - sign - 1;
        if (room >= 1) return shortFixed(exact, room, false);
        return "0";
    }
    std::string e;
    if (scientificFit(exact, width, cap - 1, e)) return e;
    status = kNumberNotPlain;
    return std::string(size_t(width), '*');
}

bool blank(char16_t c) { return c == u' ' || c == u'\t'; }

} // namespace

int32_t formatNumberText(double value, int32_t width, int32_t decimals, uint32_t flags, ZvChar *target,
                         int64_t capacity, int64_t *produced) {
    if (produced) *produced = 0;
    if (width < 1 || width > 4096 || !target || capacity < 0) return kNumberBadRequest;
    if (flags != ZV_NUMBER_PLAIN && flags != ZV_NUMBER_GROUPED && flags != ZV_NUMBER_BEST_FIT)
        return kNumberBadRequest;
    std::u16string field(size_t(width), u' ');
    int32_t status = 0;
    if (isMissing(value)) {
        field.back() = char16_t(missingMark(value));
    } else if (!std::isfinite(value)) {
        field.assign(size_t(width), u'*');
        status = kNumberNotPlain;
    } else {
        decimals = std::clamp(decimals, 0, 340);
        const Decimal exact = exactDecimal(value);
        std::string text;
        if (flags == ZV_NUMBER_GROUPED) text = plainForm(exact, width, decimals, true, status);
        else if (flags == ZV_NUMBER_BEST_FIT) text = bestFitForm(value, exact, width, status);
        else text = plainForm(exact, width, decimals, false, status);
        std::copy(text.begin(), text.end(), field.end() - std::ptrdiff_t(text.size()));
    }
    const int64_t n = std::min<int64_t>(capacity, width);
    std::copy(field.begin(), field.begin() + n, target);
    if (produced) *produced = n;
    return n < width ? ZV_TARGET_TOO_SMALL : status;
}

namespace {

int32_t readNumber(std::u16string_view text, double &value, int64_t &used) {
    size_t i = 0, n = text.size();
    while (i < n && blank(text[i])) ++i;
    size_t end = n;
    while (end > i && blank(text[end - 1])) --end;
    if (i == end) return kNumberUnreadable;
    if (end - i == 1 && text[i] == u'.') {
        value = std::bit_cast<double>(uint64_t(ZV_MISSING_BITS));
        used = int64_t(n);
        return 0;
    }
    std::string ascii;
    size_t k = i;
    bool negative = false;
    if (text[k] == u'+' || text[k] == u'-') negative = text[k++] == u'-';
    size_t digits = 0;
    while (k < end && text[k] >= u'0' && text[k] <= u'9') ascii += char(text[k++]), ++digits;
    if (k < end && text[k] == u'.') {
        ascii += '.';
        ++k;
        while (k < end && text[k] >= u'0' && text[k] <= u'9') ascii += char(text[k++]), ++digits;
    }
    if (digits == 0) return kNumberUnreadable;
    if (k < end && (text[k] == u'E' || text[k] == u'e')) {
        ascii += 'e';
        ++k;
        if (k < end && (text[k] == u'+' || text[k] == u'-')) ascii += char(text[k++]);
        size_t expDigits = 0;
        while (k < end && text[k] >= u'0' && text[k] <= u'9') ascii += char(text[k++]), ++expDigits;
        if (expDigits == 0) return kNumberUnreadable;
    }
    if (k != end) return kNumberUnreadable;
    double v = 0;
    const auto r = std::from_chars(ascii.data(), ascii.data() + ascii.size(), v, std::chars_format::general);
    if (r.ec != std::errc() || r.ptr != ascii.data() + ascii.size() || !std::isfinite(v)) return kNumberUnreadable;
    value = negative ? -v : v;
    used = int64_t(n);
    return 0;
}

int32_t readInteger(std::u16string_view text, int64_t &value, int64_t &used) {
    size_t i = 0, n = text.size();
    while (i < n && blank(text[i])) ++i;
    size_t end = n;
    while (end > i && blank(text[end - 1])) --end;
    if (i == end) return kNumberUnreadable;
    bool negative = false;
    if (text[i] == u'+' || text[i] == u'-') negative = text[i++] == u'-';
    if (i == end) return kNumberUnreadable;
    uint64_t magnitude = 0;
    const uint64_t limit = negative ? uint64_t(INT64_MAX) + 1 : uint64_t(INT64_MAX);
    for (; i < end; ++i) {
        if (text[i] < u'0' || text[i] > u'9') return kNumberUnreadable;
        const uint64_t digit = uint64_t(text[i] - u'0');
        if (magnitude > (limit - digit) / 10) return kNumberUnreadable;
        magnitude = magnitude * 10 + digit;
    }
    value = negative ? int64_t(0 - magnitude) : int64_t(magnitude);
    used = int64_t(n);
    return 0;
}

} // namespace

int32_t parseDoubleText(const ZvChar *text, int64_t length, double *value, int64_t *used) {
    if (used) *used = 0;
    if (!value || length < 0 || (!text && length > 0)) return kNumberUnreadable;
    int64_t n = 0;
    double v = 0;
    const int32_t status = readNumber(std::u16string_view(text, size_t(length)), v, n);
    if (status == 0) {
        *value = v;
        if (used) *used = n;
    }
    return status;
}

int32_t parseIntegerText(const ZvChar *text, int64_t length, int64_t *value, int64_t *used) {
    if (used) *used = 0;
    if (!value || length < 0 || (!text && length > 0)) return kNumberUnreadable;
    int64_t n = 0, v = 0;
    const int32_t status = readInteger(std::u16string_view(text, size_t(length)), v, n);
    if (status == 0) {
        *value = v;
        if (used) *used = n;
    }
    return status;
}

int32_t decimalExponent(double value, int32_t digits) {
    if (!std::isfinite(value) || value == 0) return 0;
    Decimal d = exactDecimal(value);
    roundTo(d, std::max(digits, 1));
    return d.exp10 - 1;
}

} // namespace zvhost
