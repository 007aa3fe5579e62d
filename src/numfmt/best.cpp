// NLBEST and NLD: the field decides how a number is shown. NLBEST takes the
// host's best fit; NLD works out the decimals that keep the significant
// digits asked for.
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
    int32_t n = call->width < call->outputCapacity ? call->width : call->outputCapacity;
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
        const int32_t field = call->width < call->outputCapacity ? call->width : call->outputCapacity;
        fillBounded(out, call->outputCapacity, u'*', field);
        lead = 0;
        produced = field;
    }
    if (produced < 0) produced = 0;
    if (produced > n) produced = n;
    call->outputLength = static_cast<int32_t>(lead + produced);
    return status;
}

int32_t writeSignificant(FormatCall *call, ExtensionInstance *instance) {
    auto *out = static_cast<ZvChar *>(call->output);
    const double value = inputValue(call);
    const int32_t width = call->width;
    const int64_t capacity = width < call->outputCapacity ? width : call->outputCapacity;
    if (capacity < 1) {
        call->outputLength = 0;
        return 0;
    }
    if (isMissing(value)) {
        int64_t produced = call->outputCapacity;
        const int32_t status = askFormatNumber(call->locale, value, width, call->decimals, ZV_NUMBER_BEST_FIT,
                                       out, capacity, &produced);
        call->outputLength = static_cast<int32_t>(produced);
        return status;
    }

    HostAnchor *anchor = anchorOf(instance);
    const bool exponentMode = anchor && anchor->hostExponentMode && anchor->ops &&
                              anchor->ops->decimalExponent;
    int32_t x = 0;
    bool bestFit = false;
    if (value != 0) {
        const double magnitude = std::fabs(value);
        const int32_t s = call->decimals > 0 ? call->decimals : kDefaultSignificant;
        const int32_t b = width - s - 1;
        if (b < 2 || !std::isfinite(value)) {
            bestFit = true;
        } else {
            x = s + b / 2 - 1;
            int32_t m = width - x - 2;
            const int32_t t = width - 2;
            const int32_t e = exponentMode
                                  ? anchor->ops->decimalExponent(anchor, magnitude, width - 3)
                                  : static_cast<int32_t>(std::floor(std::log10(magnitude) + kLogMargin));
            if (e < 0) {
                const int32_t need = s - e - 1;
                if (need <= x) {
                } else if (need <= width - 3) {
                    x = width - 3;
                } else {
                    bestFit = true;
                }
            } else if (e > t) {
                bestFit = true;
            } else {
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
            }
        }
    }

    uint32_t flags;
    int32_t decimals;
    bool zeroFill = false;
    if (bestFit) {
        flags = ZV_NUMBER_BEST_FIT;
        decimals = 0;
        zeroFill = true;
    } else {
        flags = ZV_NUMBER_PLAIN;
        decimals = x;
        if (call->decimals >= kDecimalsLimit) {
            flags = ZV_NUMBER_BEST_FIT;
            decimals = 0;
        }
    }

    int64_t produced = call->outputCapacity;
    const int32_t status = askFormatNumber(currentLocaleOf(call, instance), value, width, decimals, flags, out,
                                   capacity, &produced);
    if (produced < 0) produced = 0;
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

    // A short best-fit text gets the whole field: its digits go left and
    // zeros fill the places behind them.
    if (zeroFill && produced > 2 && findChar(out, produced, u'E') < 0 && out[0] == u' ') {
        const bool hasPoint = findChar(out, produced, u'.') >= 0;
        if (hasPoint || out[1] == u' ') {
            const int64_t first = firstOther(out, produced, u' ');
            if (first > 0) {
                int64_t n = 0;
                for (int64_t i = first; i < produced; ++i) out[n++] = out[i];
                if (!hasPoint && n < capacity) out[n++] = u'.';
                while (n < capacity) out[n++] = u'0';
            }
        }
    }
    return status;
}

int32_t writeNlBest(FormatCall *call, void *) { return runFieldForm(call, false); }
int32_t writeNlD(FormatCall *call, void *) { return runFieldForm(call, true); }

} // namespace zv
