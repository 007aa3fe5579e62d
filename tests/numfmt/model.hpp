// Second engines for the number formats, written from the rules with
// snprintf for the digits: what the locale number engine and the
// per-currency core should show for a value at a width.
#pragma once

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>

#include "numfmt/fixture.hpp"

namespace numtest {

// A number context as the engine should see it.
struct Context {
    std::u16string symbol, point, group;
    int size = 0; // the first group size
    std::u16string plus, minus;
    std::array<int, 3> positive{}, negative{}; // symbol precedes, symbol spaced, sign position
    bool bytes = false;                        // measured in UTF-8 bytes
};

// The placements, by (symbol precedes + 2 * symbol spaced) * 5 + sign position.
inline const char16_t *pattern(const std::array<int, 3> &t) {
    static const char16_t *const kPatterns[20] = {
        u"(V$)",  u"-V$",  u"V$-",  u"V-$",  u"V$-",  u"($V)",  u"-$V",  u"$V-",  u"-$V",  u"$-V",
        u"(V $)", u"-V $", u"V $-", u"V- $", u"V $-", u"($ V)", u"-$ V", u"$ V-", u"-$ V", u"$ -V"};
    return kPatterns[(t[0] + 2 * t[1]) * 5 + t[2]];
}

// The host's plain form in `width` places: the digits with `decimals`
// places, fewer when the field is short, else the widest E-notation, else
// stars. Second: whether anything was given up.
inline std::pair<std::string, bool> plainForm(double v, int width, int decimals) {
    if (!std::isfinite(v)) return {std::string(size_t(width), '*'), true};
    const char *sign = v < 0 ? "-" : "";
    const double a = std::fabs(v);
    char buf[512];
    const int whole = std::snprintf(buf, sizeof buf, "%.0f", a) + (v < 0);
    if (whole <= width) {
        const int places = std::min(decimals, std::max(width - whole - 1, 0));
        std::snprintf(buf, sizeof buf, "%s%.*f", sign, places, a);
        return {buf, places != decimals};
    }
    for (int places = std::min(width, 20); places >= 0; --places) {
        std::snprintf(buf, sizeof buf, "%.*E", places, a);
        const char *e = std::strchr(buf, 'E');
        const std::string t = sign + std::string(buf, size_t(e - buf)) + 'E' + e[1] + std::to_string(std::atoi(e + 2));
        if (int(t.size()) <= width) return {t, true};
    }
    return {std::string(size_t(width), '*'), true};
}

inline size_t utf8Bytes(const std::u16string &s) {
    size_t n = 0;
    for (char16_t c : s) n += c < 0x80 ? 1 : c < 0x800 ? 2 : 3;
    return n;
}

inline std::u16string widen(const std::string &s) { return std::u16string(s.begin(), s.end()); }

// Digits with `separator` in front of each further `size` of them.
inline std::u16string grouped(const std::string &digits, int size, const std::u16string &separator) {
    std::u16string out;
    for (size_t i = 0; i < digits.size(); ++i) {
        if (size > 0 && digits.size() > size_t(size) && i > 0 && (digits.size() - i) % size_t(size) == 0)
            out += separator;
        out += char16_t(digits[i]);
    }
    return out;
}

// The pattern filled in, blanks trimmed, with the blank that stands for a
// closing parenthesis behind a positive value.
inline std::u16string dress(const Context &c, double v, const std::u16string &number, bool symbol) {
    std::u16string r;
    for (const char16_t *p = pattern(v < 0 ? c.negative : c.positive); *p; ++p) {
        if (*p == u'(' || *p == u')') r += v < 0 ? std::u16string(1, *p) : u"";
        if (*p == u' ') r += u' ';
        if (*p == u'V') r += number;
        if (*p == u'$' && symbol) r += c.symbol;
        if (*p == u'-') r += v < 0 ? c.minus : c.plus;
    }
    r.erase(0, r.find_first_not_of(u' '));
    r.erase(r.find_last_not_of(u' ') + 1);
    if (v > 0 && c.negative[2] == 0) r += u' ';
    return r;
}

inline std::u16string rightAligned(const std::u16string &text, int width) {
    return std::u16string(size_t(width) - text.size(), u' ') + text;
}

// The locale number engine: thousands separators go first, then decimals one
// by one (a text that begins "0." first gets one try a place narrower), then
// the host is asked for a field narrower by the excess, and by one more each
// time; stars at the end.
inline std::u16string renderModel(const Context &c, double v, int width, int decimals) {
    const std::u16string stars(size_t(width), u'*');
    const size_t pointMeasure = c.bytes ? utf8Bytes(c.point) : c.point.size();
    if (c.point.empty()) decimals = 0;
    bool grouping = true, used = false, zeroPoint = false;
    int narrowing = 0;
    for (;;) {
        auto [t, gaveUp] = plainForm(v, width, decimals);
        if (gaveUp && t.find('*') != std::string::npos) return stars;
        if (narrowing > 0) {
            if (width - narrowing < 1) return stars;
            std::tie(t, gaveUp) = plainForm(v, width - narrowing, decimals);
            if (gaveUp && t.find('*') != std::string::npos) return stars;
        }
        if (decimals > 0 && t.rfind("0.", 0) == 0) zeroPoint = true;
        if (t[0] == '-') t.erase(0, 1);
        const size_t e = t.find('E'), point = t.find('.');
        std::string whole = t, fraction;
        if (point != std::string::npos && (e != std::string::npos || decimals > 0)) {
            whole = t.substr(0, point);
            fraction = t.substr(point + 1);
        } else if (decimals > 0) {
            grouping = false;
        }
        const bool groups = grouping && e == std::string::npos && c.size > 0 && whole.size() > size_t(c.size);
        used = used || groups;
        std::u16string number = grouped(whole, groups ? c.size : 0, c.group);
        if (!fraction.empty()) number += c.point + widen(fraction);
        const bool eWide = !fraction.empty() && e != std::string::npos && pointMeasure == 2;
        const std::u16string r = dress(c, v, number, true);
        const long measure = long(c.bytes && r.size() <= size_t(width) ? utf8Bytes(r) : r.size());
        if (measure <= width) return rightAligned(r, width);
        if (grouping && used) {
            grouping = false;
        } else if (decimals > 0) {
            if (zeroPoint && narrowing == 0) narrowing = 1;
            else --decimals;
        } else if (narrowing == 0) {
            narrowing = int(measure - width) - (eWide && measure - width > 1);
            if (narrowing < 1 || narrowing >= width) return stars;
        } else {
            if (width - narrowing < 2) return stars;
            ++narrowing;
        }
    }
}

// The per-currency core: the separators go, then the symbol, then the host's
// field narrows by the excess once, and last the host's plain number stands.
inline std::u16string memberModel(const Context &c, double v, int width, int decimals) {
    bool grouping = true, symbol = true;
    int narrowing = 0;
    for (;;) {
        std::string t = plainForm(v, width, decimals).first;
        if (int(t.size()) >= width) t = plainForm(v, width - narrowing, decimals).first;
        if (t[0] == '-') t.erase(0, 1);
        const size_t e = t.find('E'), point = t.find('.');
        std::string whole = t, fraction;
        if (point != std::string::npos && ((e != std::string::npos && e > 0) || decimals != 0)) {
            whole = t.substr(0, point);
            fraction = t.substr(point + 1);
        }
        const bool groups = grouping && e == std::string::npos;
        std::u16string number = grouped(whole, groups ? c.size : 0, c.group);
        if (!fraction.empty()) number += c.point + widen(fraction);
        const std::u16string r = dress(c, v, number, symbol);
        const long measure = long(c.bytes && r.size() <= size_t(width) ? utf8Bytes(r) : r.size());
        if (measure <= width) return rightAligned(r, width);
        if (grouping) {
            grouping = false;
        } else if (symbol) {
            symbol = false;
        } else if (narrowing == 0) {
            narrowing = std::min(int(measure - width), width - 1);
            if (narrowing < 1) break;
        } else {
            break;
        }
    }
    return rightAligned(widen(plainForm(v, width, decimals).first), width);
}

} // namespace numtest
