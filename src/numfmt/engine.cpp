// The locale number engine: the host's plain digits rebuilt by a number
// context's separators, grouping, signs and symbol, with retreats when the
// result is wider than the field.
#include <cstring>

#include "frame/frame.hpp"
#include "numfmt/numfmt.hpp"
#include "numfmt/work.hpp"

namespace zv {

const ZvChar *const kSignPatterns[20] = {
    u"(V$)",  u"-V$",  u"V$-",  u"V-$",  u"V$-",  // symbol behind, no blank
    u"($V)",  u"-$V",  u"$V-",  u"-$V",  u"$-V",  // symbol in front, no blank
    u"(V $)", u"-V $", u"V $-", u"V- $", u"V $-", // symbol behind, blank
    u"($ V)", u"-$ V", u"$ V-", u"-$ V", u"$ -V", // symbol in front, blank
};

const ZvChar *signPattern(int32_t symbolPrecedes, int32_t symbolSpaced, int32_t signPosition) {
    const int precedes = symbolPrecedes != 0 ? 1 : 0;
    const int spaced = symbolSpaced != 0 ? 1 : 0;
    const int position = (signPosition >= 0 && signPosition <= 4) ? signPosition : 1;
    return kSignPatterns[(precedes + 2 * spaced) * 5 + position];
}

namespace {

constexpr int kWork = 256;
constexpr int kScratchBytes = 200;

int unitsOf(const ZvChar (&text)[2]) { return text[0] == 0 ? 0 : (text[1] == 0 ? 1 : 2); }

struct Engine {
    FormatCall *call;
    const NumberContext *ctx;
    ExtensionInstance *instance;
    double value;
    int32_t savedDecimals;

    int32_t stars() {
        auto *out = static_cast<ZvChar *>(call->output);
        fillBounded(out, call->outputCapacity, u' ', call->outputCapacity);
        fillBounded(out, call->outputCapacity, u'*', call->width);
        call->outputLength = call->width;
        call->decimals = savedDecimals;
        return 0;
    }

    // One call of the host's plain form; the left-justified text without
    // trailing blanks in `text`, its length in *n. False: stars.
    bool hostDigits(int32_t width, WorkText &text) {
        HostLocale *en = instance->defaultLocale;
        text.clear();
        if (!en || !en->ops || !en->ops->formatNumber || width < 1) return false;
        ZvChar raw[kWork];
        int64_t produced = call->outputCapacity;
        const int32_t status = en->ops->formatNumber(en, value, width, call->decimals, ZV_NUMBER_PLAIN,
                                                     raw, kWork, &produced);
        if (produced < 0) produced = 0;
        if (produced > kWork) produced = kWork;
        text.takeTrimmed(raw, produced);
        if (status == kHostNotPlain) {
            if (call->outputCapacity < text.n) return false;
            const int64_t look = text.n < call->outputLength ? text.n : call->outputLength;
            if (findChar(text.c, look, u'*') >= 0) return false;
        } else if (status != 0) {
            return false;
        }
        return true;
    }

    int32_t run() {
        auto *out = static_cast<ZvChar *>(call->output);
        const int32_t width = call->width;

        fillBounded(out, call->outputCapacity, u' ', width);

        // The decimal separator's measure.
        const int sepUnits = unitsOf(ctx->decimalSeparator);
        int sepMeasure = sepUnits;
        if (call->measureBytes && sepUnits > 0) {
            int64_t bytes = 0;
            if (hostMeasure(call, ctx->decimalSeparator, sepUnits, kScratchBytes, &bytes) != 0)
                return stars();
            sepMeasure = static_cast<int>(bytes);
        }
        if (sepUnits == 0) call->decimals = 0;

        const bool negative = value < 0.0;
        const ZvChar *pattern =
            negative ? signPattern(ctx->negativeSymbolPrecedes, ctx->negativeSymbolSpaced,
                                   ctx->negativeSignPosition)
                     : signPattern(ctx->positiveSymbolPrecedes, ctx->positiveSymbolSpaced,
                                   ctx->positiveSignPosition);
        const ZvChar *sign = negative ? ctx->negativeSign : ctx->positiveSign;
        const int signUnits = unitsOf(negative ? ctx->negativeSign : ctx->positiveSign);
        const int64_t symbolUnits = boundedLength(ctx->symbol, 52);

        bool grouping = true, groupsUsed = false, zeroPoint = false;
        int32_t narrowing = 0;
        int64_t measure = -1;

        WorkText digits, number, result;
        for (int pass = 0; pass < 4 * kWork; ++pass) {
            bool eFormWide = false;
            // Step 10: the digits.
            if (!hostDigits(width, digits)) return stars();
            if (digits.n > width || narrowing > 0) {
                if (width - narrowing < 1) return stars();
                if (!hostDigits(width - narrowing, digits)) return stars();
            }
            if (digits.n < 1) return stars();
            if (call->decimals > 0 && digits.n >= 2 && digits.c[0] == u'0' && digits.c[1] == u'.')
                zeroPoint = true;

            if (digits.n <= width && findChar(digits.c, digits.n, u'*') < 0) {
                // Step 11: rebuild the number.
                const ZvChar *d = digits.c;
                int64_t len = digits.n;
                if (len > 0 && d[0] == u'-') {
                    ++d;
                    --len;
                }
                const int64_t e = findChar(d, len, u'E');
                const int64_t point = findChar(d, len, u'.');
                int64_t intLength = len;
                const ZvChar *fraction = nullptr;
                int64_t fractionLength = 0;
                bool plainInteger = false; // copied without groups
                if (e >= 0 && point >= 0) {
                    intLength = point;
                    fraction = d + point + 1;
                    fractionLength = len - point - 1;
                    plainInteger = true;
                } else if (call->decimals == 0) {
                    intLength = len;
                } else if (point >= 0) {
                    intLength = point;
                    fraction = d + point + 1;
                    fractionLength = len - point - 1;
                } else {
                    grouping = false;
                }

                number.clear();
                int32_t g = ctx->groupSizes[0];
                if (!grouping || e > 0 || plainInteger) g = 0;
                if (g <= 0 || intLength <= g) {
                    number.put(d, intLength);
                } else {
                    int64_t first = intLength % g;
                    if (first == 0) first = g;
                    number.put(d, first);
                    for (int64_t i = first; i < intLength; i += g) {
                        number.put(ctx->groupSeparator, unitsOf(ctx->groupSeparator));
                        number.put(d + i, g);
                    }
                    groupsUsed = true;
                }
                if (fractionLength > 0) {
                    number.put(ctx->decimalSeparator, sepUnits);
                    number.put(fraction, fractionLength);
                    if (e >= 0 && sepMeasure == 2) eFormWide = true;
                }

                int64_t length;
                if (number.overflow) {
                    length = kWork + 1;
                } else {
                    // Step 12: the pattern.
                    result.clear();
                    for (const ZvChar *p = pattern; *p; ++p) {
                        switch (*p) {
                        case u'(':
                        case u')':
                            if (negative) result.put(*p);
                            break;
                        case u' ': result.put(u' '); break;
                        case u'V':
                            result.put(number.c, lengthWithoutTrailingBlanks(number.c, number.n));
                            break;
                        case u'$': result.put(ctx->symbol, symbolUnits); break;
                        case u'-': result.put(sign, signUnits); break;
                        default: break;
                        }
                    }
                    // Step 13.
                    result.trimBoth();
                    if (value > 0.0 && ctx->negativeSignPosition == 0) result.put(u' ');
                    length = result.overflow ? kWork + 1 : result.n;
                }

                // Steps 14 and 15: measure and place.
                measure = length;
                int32_t measured = 0;
                if (length <= width && call->measureBytes) {
                    int64_t bytes = 0;
                    measured = hostMeasure(call, result.c, length, kScratchBytes, &bytes);
                    measure = bytes;
                }
                if (measure <= width) {
                    if (measured != 0) return stars();
                    placeRight(out, call->outputCapacity, width, result.c, length);
                    call->outputLength = width;
                    call->decimals = savedDecimals;
                    return 0;
                }
            }

            // Step 16: retreat.
            if (grouping && groupsUsed) {
                grouping = false;
            } else if (call->decimals > 0) {
                if (zeroPoint && narrowing == 0) narrowing = 1;
                else --call->decimals;
            } else if (narrowing == 0) {
                if (measure < 0) return stars();
                narrowing = static_cast<int32_t>(measure - width);
                if (eFormWide && narrowing > 1) --narrowing;
                if (narrowing < 1 || narrowing >= width) return stars();
            } else {
                if (width - narrowing < 2) return stars();
                ++narrowing;
            }
        }
        return stars();
    }
};

} // namespace

int32_t renderLocaleNumber(int32_t itemLength, FormatCall *call, const NumberContext *context,
                           ExtensionInstance *instance) {
    if (itemLength == 0) return -1;
    if (call->width < 1) return 0;
    auto *out = static_cast<ZvChar *>(call->output);
    if (call->width > 32) {
        call->width = 32;
        fillBounded(out, call->outputCapacity, u'*', 32);
        call->outputLength = 32;
        return 0;
    }
    const int32_t saved = call->decimals;
    call->outputLength = call->width;
    double value = 0;
    if (call->input) std::memcpy(&value, call->input, sizeof value);
    if (isMissing(value)) {
        call->decimals = 0;
        writeMissingMark(call);
        call->decimals = saved;
        return 0;
    }
    Engine engine{call, context, instance, value, saved};
    if (!context || !instance || !call->input) return engine.stars();
    return engine.run();
}

} // namespace zv
