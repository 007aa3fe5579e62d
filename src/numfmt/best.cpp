// NLBEST and NLD: the field decides how a number is shown. NLBEST takes the
// host's best fit; NLD works out the decimals that keep the significant
// digits asked for.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "frame/frame.hpp"
#include "numfmt/numfmt.hpp"
#include "numfmt/work.hpp"

namespace zv {

namespace {

constexpr int32_t kDefaultSignificant = 3;
constexpr double kLogMargin = 1e-12;
constexpr int32_t kDecimalsLimit = 10;
constexpr double kRoundingMargin = 0.5;
constexpr int32_t kHostFieldLimit = 32;

// The decimals that NLD asks for, or kBestFitChosen.
constexpr int32_t kBestFitChosen = -1;

// The decimal exponent of a positive magnitude: the host's, when it offers
// one, else the floor of the logarithm lifted by a hair, so that a value a
// hair below a power of ten counts as that power.
int32_t exponentOf(HostAnchor *anchor, bool exponentMode, double magnitude, int32_t width) {
    if (exponentMode) return anchor->ops->decimalExponent(anchor, magnitude, width - 3);
    return static_cast<int32_t>(std::floor(std::log10(magnitude) + kLogMargin));
}

// A value below 1 with `s` significant digits wanted and x decimals on
// offer: x when that shows them, the most the field holds when that does,
// else the best fit.
int32_t decimalsBelowOne(int32_t s, int32_t e, int32_t x, int32_t width) {
    const int32_t need = s - e - 1;
    if (need <= x) return x;
    if (need <= width - 3) return width - 3;
    return kBestFitChosen;
}

// Decimals traded for integer room until the integer digits fit: m is the
// room at x decimals, t the top of the field. Without the host's exponent a
// value at the top of the room must stay below 10^m once rounded to the
// digits the field holds.
int32_t decimalsWithIntegerRoom(int32_t s, int32_t e, int32_t x, int32_t m, int32_t t,
                                double magnitude, bool exponentMode) {
    while (x > 0) {
        if (e < m) {
            if (exponentMode || e < m - 1 ||
                std::pow(10.0, m) - kRoundingMargin * std::pow(10.0, m - t) > magnitude)
                break;
        }
        const int32_t r = s - m;
        int32_t step = r > 0 ? x - r : x;
        if (step <= 0) step = x;
        m += step;
        x -= step;
    }
    return x;
}

// The decimals that keep the significant digits asked for (`asked`, or the
// default when 0 or less) in a field of `width`, or kBestFitChosen.
int32_t significantDecimals(double value, int32_t width, int32_t asked, HostAnchor *anchor) {
    if (value == 0) return 0;
    const int32_t s = asked > 0 ? asked : kDefaultSignificant;
    const int32_t b = width - s - 1;
    if (b < 2 || !std::isfinite(value)) return kBestFitChosen;
    const int32_t x = s + b / 2 - 1;
    const int32_t m = width - x - 2; // room for integer digits at x decimals
    const int32_t t = width - 2;
    const bool exponentMode =
        anchor && anchor->hostExponentMode && anchor->ops && anchor->ops->decimalExponent;
    const double magnitude = std::fabs(value);
    const int32_t e = exponentOf(anchor, exponentMode, magnitude, width);
    if (e < 0) return decimalsBelowOne(s, e, x, width);
    if (e > t) return kBestFitChosen;
    return decimalsWithIntegerRoom(s, e, x, m, t, magnitude, exponentMode);
}

// What the host is asked for: the plain form at the chosen decimals, or its
// best fit, spread over the field when NLD chose it itself.
struct HostForm {
    uint32_t flags;
    int32_t decimals;
    bool zeroFill;
};

HostForm hostFormFor(int32_t decimals, int32_t asked) {
    if (decimals == kBestFitChosen) return {ZV_NUMBER_BEST_FIT, 0, true};
    if (asked >= kDecimalsLimit) return {ZV_NUMBER_BEST_FIT, 0, false};
    return {ZV_NUMBER_PLAIN, decimals, false};
}

// A short best-fit text gets the whole field: its digits go left and zeros
// fill the places behind them. E-notation and a text without two leading
// blanks or a point stay as they are.
void spreadOverField(ZvChar *out, int64_t produced, int64_t capacity) {
    if (produced <= 2 || findChar(out, produced, u'E') >= 0 || out[0] != u' ') return;
    const bool hasPoint = findChar(out, produced, u'.') >= 0;
    if (!hasPoint && out[1] != u' ') return;
    const int64_t first = firstOther(out, produced, u' ');
    if (first <= 0) return;
    int64_t n = 0;
    for (int64_t i = first; i < produced; ++i) out[n++] = out[i];
    if (!hasPoint && n < capacity) out[n++] = u'.';
    while (n < capacity) out[n++] = u'0';
}

HostLocale *currentLocaleOf(FormatCall *call, ExtensionInstance *instance) {
    HostAnchor *anchor = anchorOf(instance);
    NlsServices *nls = anchor ? anchor->nlsServices : nullptr;
    if (nls && nls->ops && nls->ops->currentLocale) {
        if (HostLocale *current = nls->ops->currentLocale(nls)) return current;
    }
    return call->locale;
}

int32_t runFieldForm(FormatCall *call, bool significant) {
    ExtensionInstance *instance = findInstance(call);
    if (!instance) return ZV_NO_INSTANCE;
    if (!ensureLocaleBlock(call, instance)) return 0;
    if (significant) writeSignificant(call, instance);
    else writeBestFit(call);
    // A missing value's '.' is its mark, not a decimal point.
    if (!isMissing(inputValue(call))) replacePoint(call, call->outputLength);
    return 0;
}

} // namespace

int32_t writeBestFit(FormatCall *call) {
    auto *out = static_cast<ZvChar *>(call->output);
    int32_t n = fieldRoom(call);
    int32_t lead = 0;
    if (n > kHostFieldLimit && n <= kHostFieldLimit + 8) {
        lead = n - kHostFieldLimit;
        fillBounded(out, call->outputCapacity, u' ', lead);
        n = kHostFieldLimit;
    }
    if (n < 1) {
        call->outputLength = 0;
        return 0;
    }
    int64_t produced = call->outputCapacity;
    const int32_t status =
        askFormatNumber(call->locale, inputValue(call), n, 0, ZV_NUMBER_BEST_FIT, out + lead, n, &produced);
    if (status != 0) {
        const int32_t field = fieldRoom(call);
        fillBounded(out, call->outputCapacity, u'*', field);
        lead = 0;
        produced = field;
    }
    produced = std::max<int64_t>(produced, 0);
    if (produced > n) produced = n;
    call->outputLength = static_cast<int32_t>(lead + produced);
    return status;
}

int32_t writeSignificant(FormatCall *call, ExtensionInstance *instance) {
    auto *out = static_cast<ZvChar *>(call->output);
    const double value = inputValue(call);
    const int32_t width = call->width;
    const int64_t capacity = std::min(width, call->outputCapacity);
    if (capacity < 1) {
        call->outputLength = 0;
        return 0;
    }
    if (isMissing(value)) {
        // The host's best fit writes the mark.
        int64_t produced = call->outputCapacity;
        const int32_t status = askFormatNumber(call->locale, value, width, call->decimals,
                                               ZV_NUMBER_BEST_FIT, out, capacity, &produced);
        call->outputLength = static_cast<int32_t>(produced);
        return status;
    }

    const HostForm form =
        hostFormFor(significantDecimals(value, width, call->decimals, anchorOf(instance)), call->decimals);
    int64_t produced = call->outputCapacity;
    const int32_t status = askFormatNumber(currentLocaleOf(call, instance), value, width, form.decimals,
                                           form.flags, out, capacity, &produced);
    produced = std::max<int64_t>(produced, 0);
    if (produced > capacity) produced = capacity;
    if (status == kHostNotPlain) {
        call->outputLength = static_cast<int32_t>(produced);
        return status;
    }
    if (status != 0) {
        fillBounded(out, call->outputCapacity, u'*', width);
        call->outputLength = width;
        return status;
    }
    call->outputLength = static_cast<int32_t>(produced);
    if (form.zeroFill) spreadOverField(out, produced, capacity);
    return status;
}

int32_t writeNlBest(FormatCall *call, void *) { return runFieldForm(call, false); }
int32_t writeNlD(FormatCall *call, void *) { return runFieldForm(call, true); }

} // namespace zv
