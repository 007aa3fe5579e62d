// The plain readers: text with '.' for the decimal point, ',' in groups and a
// leading '-' goes to the host's parseDouble after the marks that the number
// may carry are taken out.
#include <algorithm>
#include <cstring>
#include <iterator>

#include "frame/frame.hpp"
#include "numread/numread.hpp"
#include "numread/work.hpp"
#include "wide/wide.hpp"

namespace zv {

namespace {

// Texts up to this many units are read on the stack; a longer one is copied
// into memory from the call's pool.
constexpr int64_t kPlainUnits = 256;

// The host's answer when there is no parser to ask.
constexpr int32_t kNoParser = ZV_UNREADABLE;

constexpr uint64_t kSignBit = 0x8000000000000000ull;

static_assert(std::size(kPowersOfTen) > kNumberMostDecimals, "a power of ten for every decimal count");

class PlainText {
public:
    ZvChar *c = local_;
    int64_t n = 0;

    PlainText() = default;
    PlainText(const PlainText &) = delete;
    PlainText &operator=(const PlainText &) = delete;
    ~PlainText() {
        if (pool_) pool_->ops->poolFree(pool_, c);
    }

    // Room for `units` units; false when the pool can't give it.
    bool reserve(const FormatCall *call, int64_t units) {
        if (units <= kPlainUnits) return true;
        HostPool *pool = callPoolOf(call);
        void *memory = pool && pool->ops && pool->ops->poolAlloc
                           ? pool->ops->poolAlloc(pool, units * int64_t(sizeof(ZvChar)), 0)
                           : nullptr;
        if (!memory) return false;
        c = static_cast<ZvChar *>(memory);
        pool_ = pool;
        return true;
    }

    // Leading blanks out, trailing blanks off.
    void justifyLeft() {
        int64_t lead = 0;
        while (lead < n && c[lead] == u' ') ++lead;
        for (int64_t i = lead; i < n; ++i) c[i - lead] = c[i];
        n -= lead;
        while (n > 0 && c[n - 1] == u' ') --n;
    }

private:
    ZvChar local_[kPlainUnits];
    HostPool *pool_ = nullptr;
};

// Steps shared by both readers: validation, the missing value in output, the
// text taken in and trimmed. False when the reader is done and *status holds
// its answer.
bool takeText(FormatCall *call, PlainText &text, int32_t *status) {
    *status = checkLimits(call, kNumberLimits);
    if (*status != 0) return false;
    storeValue(call, missingValue());
    int64_t length = std::min(call->inputLength, call->width);
    length = call->input ? std::max<int64_t>(length, 0) : 0;
    const auto *in = static_cast<const ZvChar *>(call->input);
    // Leading blanks don't count against the room.
    int64_t lead = 0;
    while (lead < length && in[lead] == u' ') ++lead;
    int64_t end = length;
    while (end > lead && in[end - 1] == u' ') --end;
    if (!text.reserve(call, end - lead)) {
        *status = ZV_NO_MEMORY;
        return false;
    }
    text.n = end - lead;
    for (int64_t i = 0; i < text.n; ++i) text.c[i] = in[lead + i]; // short: a loop beats a call of memcpy
    if (text.n < 1) {
        *status = 0; // blank text reads as missing
        return false;
    }
    return true;
}

// parseDouble of the host's current locale on the text; the value lands in
// output as the host left it.
int32_t parseInto(FormatCall *call, const PlainText &text, double *value) {
    HostLocale *locale = currentHostLocale(call);
    *value = missingValue();
    if (!locale || !locale->ops || !locale->ops->parseDouble) return kNoParser;
    int64_t used = 0;
    const int32_t status = locale->ops->parseDouble(locale, text.c, text.n, value, &used);
    storeValue(call, *value);
    return status;
}

} // namespace

void storeValue(FormatCall *call, double value) {
    if (call->output) std::memcpy(call->output, &value, sizeof value);
}

HostLocale *currentHostLocale(const FormatCall *call) {
    HostAnchor *anchor = hostAnchor;
    if (!anchor)
        if (ExtensionInstance *instance = findInstance(call)) anchor = instance->anchor;
    if (anchor && anchor->nlsServices && anchor->nlsServices->ops &&
        anchor->nlsServices->ops->currentLocale)
        if (HostLocale *current = anchor->nlsServices->ops->currentLocale(anchor->nlsServices))
            return current;
    // A host without character services: the call's own locale parses.
    return call->locale;
}

int32_t readPlainNumber(FormatCall *call) {
    PlainText text;
    int32_t status = 0;
    if (!takeText(call, text, &status)) return status;

    // A leading '-' stays; blanks, '%', '-', '$' and ',' go from the rest.
    constexpr uint64_t kDropped = 1ull << u' ' | 1ull << u'%' | 1ull << u'-' | 1ull << u'$' | 1ull << u',';
    int64_t kept = text.c[0] == u'-' ? 1 : 0;
    for (int64_t i = kept; i < text.n; ++i) {
        const ZvChar u = text.c[i];
        if (u < 64 && (kDropped >> u & 1)) continue;
        text.c[kept++] = u;
    }
    text.n = kept;

    bool negate = false;
    if (text.n >= 2 && text.c[0] == u'(' && text.c[text.n - 1] == u')') {
        text.c[0] = u' ';
        text.c[text.n - 1] = u' ';
        text.justifyLeft();
        negate = true;
    }

    double value = 0;
    status = parseInto(call, text, &value);
    if (status != 0) return status;
    if (!isMissing(value)) {
        const int32_t decimals = call->decimals;
        if (decimals > 0 && findChar(text.c, text.n, u'.') < 0)
            value /= kPowersOfTen[std::min(decimals, kNumberMostDecimals)];
        if (negate) value = doubleOf(bitsOf(value) ^ kSignBit);
        storeValue(call, value);
    }
    return 0;
}

int32_t readPlainPercent(FormatCall *call) {
    PlainText text;
    int32_t status = 0;
    if (!takeText(call, text, &status)) return status;

    bool negate = false;
    if (text.c[0] == u'(') {
        text.c[0] = u' ';
        const int64_t close = findChar(text.c, text.n, u')');
        if (close >= 0) text.c[close] = u' ';
        text.justifyLeft();
        negate = true;
        if (text.n < 1) return ZV_NO_FORM_FITS;
    }
    bool percent = false;
    if (text.c[text.n - 1] == u'%') {
        --text.n;
        percent = true;
        if (negate && text.n < 1) return ZV_NO_FORM_FITS;
    }

    double value = 0;
    status = parseInto(call, text, &value);
    if (status != 0) return status;
    if (isMissing(value)) return 0;
    if (percent) value /= kPercentScale;
    if (negate) value = doubleOf(bitsOf(value) ^ kSignBit);
    storeValue(call, value);
    return 0;
}

} // namespace zv
