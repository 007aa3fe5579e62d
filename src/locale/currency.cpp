// How a currency of the table is shown in its local form.
#include "locale/currency.hpp"

#include "wide/wide.hpp"

namespace zv {

namespace {

constexpr int kEscapeUnits = 7; // <Uxxxx>

// A well-formed escape <Uxxxx> at p: its unit, or -1.
int32_t escapeAt(const ZvChar *p) {
    if (p[0] != u'<' || p[1] != u'U') return -1;
    int32_t v = 0;
    for (int k = 2; k < 6; ++k) {
        const int d = hexDigitValue(p[k]); // a zero unit ends the text and is no digit
        if (d < 0) return -1;
        v = v * 16 + d;
    }
    return p[kEscapeUnits - 1] == u'>' ? v : -1;
}

bool hostShows(HostTranscoder *t, ZvChar c) {
    if (!t) return true;
    unsigned char scratch[64];
    int64_t produced = 0;
    return t->ops->transcode(t, &c, sizeof c, scratch, sizeof scratch, &produced, 0) == 0;
}

} // namespace

int64_t decodeRowSymbol(const CurrencyRow &row, FormatCall *call, ZvChar *destination) {
    int64_t o = 0;
    for (const ZvChar *p = row.symbol; *p;) {
        const int32_t unit = escapeAt(p);
        if (unit < 0) {
            destination[o++] = *p++;
            continue;
        }
        destination[o] = static_cast<ZvChar>(unit);
        if (!hostShows(call->transcoder, destination[o])) {
            // Shown whole or not at all: the code instead.
            o = 0;
            for (const ZvChar *c = row.code; *c; ++c) destination[o++] = *c;
            return o;
        }
        ++o;
        p += kEscapeUnits;
    }
    return o;
}

} // namespace zv
