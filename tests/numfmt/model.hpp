// Second engines for the number formats, written from the rules with
// snprintf for the digits: what the locale number engine and the
// per-currency core should show for a value at a width.
#pragma once

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <numeric>

#include "numfmt/fixture.hpp"

namespace numtest {

// A number context as the engine should see it.
// Placement trios: symbol precedes, symbol spaced, sign position. `size`:
// the first group size; `bytes`: the measure is in UTF-8 bytes.
struct Context {
    std::u16string symbol, point, group;
    int size = 0;
    std::u16string plus, minus;
    std::array<int, 3> positive{}, negative{};
    bool bytes = false;
};

// The host's plain form in `width` places: the digits with `decimals`
// places, fewer when the field is short, else the widest E-notation, else
// stars. Second: whether anything was given up.
inline std::pair<std::string, bool> plainForm(double v, int width, int decimals) {
    if (!std::isfinite(v)) return {std::string(size_t(width), '*'), true};
    const char *sign = v < 0 ? "-" : "";
    char buf[512];
    const int whole = std::snprintf(buf, sizeof buf, "%.0f", std::fabs(v)) + (v < 0);
    if (whole <= width) {
        const int places = std::min(decimals, std::max(width - whole - 1, 0));
        std::snprintf(buf, sizeof buf, "%s%.*f", sign, places, std::fabs(v));
        return {buf, places != decimals};
    }
    for (int places = std::min(width, 20); places >= 0; --places) {
        std::snprintf(buf, sizeof buf, "%.*E", places, std::fabs(v));
        const char *e = std::strchr(buf, 'E');
        const std::string t = sign + std::string(buf, size_t(e - buf)) + 'E' + e[1] + std::to_string(std::atoi(e + 2));
        if (int(t.size()) <= width) return {t, true};
    }
    return {std::string(size_t(width), '*'), true};
}

inline size_t utf8Bytes(const std::u16string &s) {
    return std::accumulate(s.begin(), s.end(), size_t(0), [](size_t n, char16_t c) { return n + 1 + (c >= 0x80) + (c >= 0x800); });
}

// The host's digits rebuilt: the integer part grouped (size 0: not), the
// locale's point before the fraction, and the pattern of the placement
// figures around it, blanks trimmed; a positive value under parentheses for
// negatives keeps a blank for the closing one. Second: whether groups stood.
inline std::pair<std::u16string, bool> dress(const Context &c, double v, const std::string &whole,
                                             const std::string &fraction, int size, bool symbol) {
    static const char16_t *const kPatterns[20] = {
        u"(V$)",  u"-V$",  u"V$-",  u"V-$",  u"V$-",  u"($V)",  u"-$V",  u"$V-",  u"-$V",  u"$-V",
        u"(V $)", u"-V $", u"V $-", u"V- $", u"V $-", u"($ V)", u"-$ V", u"$ V-", u"-$ V", u"$ -V"};
    std::u16string number, r;
    for (size_t i = 0; i < whole.size(); ++i) {
        if (size > 0 && whole.size() > size_t(size) && i > 0 && (whole.size() - i) % size_t(size) == 0) number += c.group;
        number += char16_t(whole[i]);
    }
    if (!fraction.empty()) number += c.point + std::u16string(fraction.begin(), fraction.end());
    const std::array<int, 3> &t = v < 0 ? c.negative : c.positive;
    for (const char16_t *p = kPatterns[(t[0] + 2 * t[1]) * 5 + t[2]]; *p; ++p) {
        if ((*p == u'(' || *p == u')') && v < 0) r += *p;
        if (*p == u' ') r += u' ';
        if (*p == u'V') r += number;
        if (*p == u'$' && symbol) r += c.symbol;
        if (*p == u'-') r += v < 0 ? c.minus : c.plus;
    }
    r.erase(0, r.find_first_not_of(u' '));
    r.erase(r.find_last_not_of(u' ') + 1);
    if (v > 0 && c.negative[2] == 0) r += u' ';
    return {r, size > 0 && whole.size() > size_t(size)};
}

// The text right-aligned in the field.
inline std::u16string rightAligned(const std::u16string &text, int width) {
    return std::u16string(size_t(width) - text.size(), u' ') + text;
}

// The locale number engine: thousands separators go first, then decimals one
// by one (a text that begins "0." first gets one try a place narrower), then
// the host is asked for a field narrower by the excess, and by one more each
// time; stars at the end. The per-currency core (`member`): the separators
// go, then the symbol, then the host's field narrows by the excess once, and
// last the host's plain number stands.
inline std::u16string renderModel(const Context &c, double v, int width, int decimals, bool member = false) {
    const std::u16string stars(size_t(width), u'*');
    const size_t pointMeasure = c.bytes ? utf8Bytes(c.point) : c.point.size();
    if (c.point.empty() && !member) decimals = 0;
    bool grouping = true, used = false, zeroPoint = false, symbol = true;
    for (int narrowing = 0;;) {
        auto [t, gaveUp] = plainForm(v, member ? width : width - narrowing, decimals);
        if (member && int(t.size()) >= width) t = plainForm(v, width - narrowing, decimals).first;
        if (!member && gaveUp && t.find('*') != std::string::npos) return stars;
        if (decimals > 0 && t.rfind("0.", 0) == 0) zeroPoint = true;
        if (t[0] == '-') t.erase(0, 1);
        const size_t e = t.find('E'), point = t.find('.');
        const bool split = point != std::string::npos && (e != std::string::npos || decimals > 0);
        if (!split && decimals > 0 && !member) grouping = false;
        const auto [r, groups] = dress(c, v, split ? t.substr(0, point) : t, split ? t.substr(point + 1) : "",
                                       grouping && e == std::string::npos ? c.size : 0, symbol);
        used = used || groups;
        const long m = long(c.bytes && r.size() <= size_t(width) ? utf8Bytes(r) : r.size()); // UTF-8 bytes where asked
        if (m <= width) return rightAligned(r, width);
        if (member) {
            if (grouping || symbol) {
                symbol = grouping && symbol;
                grouping = false;
            } else if (narrowing > 0 || (narrowing = std::min(int(m - width), width - 1)) < 1) {
                const std::string plain = plainForm(v, width, decimals).first;
                return rightAligned(std::u16string(plain.begin(), plain.end()), width);
            }
        } else if (grouping && used) {
            grouping = false;
        } else if (decimals > 0) {
            if (zeroPoint && narrowing == 0) narrowing = 1;
            else --decimals;
        } else if (narrowing == 0) {
            narrowing = int(m - width) - (split && e != std::string::npos && pointMeasure == 2 && m - width > 1);
            if (narrowing < 1 || narrowing >= width) return stars;
        } else if (width - narrowing++ < 2) {
            return stars;
        }
    }
}

} // namespace numtest
