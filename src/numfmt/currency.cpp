// NLMNI<code> and NLMNL<code>: an amount in the shape of the locale's own
// money, with another currency's code or symbol.
#include <cstring>

#include "frame/frame.hpp"
#include "locale/block.hpp"
#include "numfmt/numfmt.hpp"
#include "numfmt/work.hpp"

namespace zv {

namespace {

constexpr int kWork = 64;
constexpr int kScratchBytes = 64;
constexpr ZvChar kEmpty[1] = {0};

using Work = WorkArea<kWork>;

// Monetary items, in the order of the record's fields.
constexpr int kItemDecimal = 157, kItemGroup = 158, kItemGrouping = 159;
constexpr int kItemPositiveSign = 160, kItemNegativeSign = 161;

const ZvChar *snapshotText(ExtensionInstance *instance, int item) {
    const LocaleItem &it = instance->itemSnapshot[item];
    return it.length < 1 ? kEmpty : it.text;
}

int8_t snapshotFigure(FormatCall *call, ExtensionInstance *instance, int item) {
    const LocaleItem &it = instance->itemSnapshot[item];
    HostLocale *locale = call->locale;
    if (it.length < 1 || !locale || !locale->ops || !locale->ops->parseInteger) return 0;
    int64_t value = 0, used = 0;
    const int64_t length = it.length < ZV_ITEM_TEXT_UNITS ? it.length : ZV_ITEM_TEXT_UNITS;
    if (locale->ops->parseInteger(locale, it.text, length, 0, &value, &used) != 0) return 0;
    if (value < -128 || value > 127) return 0;
    return static_cast<int8_t>(value);
}

int64_t textLength(const ZvChar *text) { return text ? boundedLength(text, ZV_ITEM_TEXT_UNITS) : 0; }

} // namespace

bool ensureMonetaryRecord(FormatCall *call, ExtensionInstance *instance) {
    if (instance->monetaryRecord) return true;
    HostPool *pool = instance->pool;
    if (!pool || !pool->ops || !pool->ops->poolAlloc) return false;
    auto *record = static_cast<MonetaryRecord *>(
        pool->ops->poolAlloc(pool, sizeof(MonetaryRecord), ZV_ALLOC_ZEROED));
    if (!record) return false;
    CurrencyRow &r = record->row;
    r.code = snapshotText(instance, kItemCurrencySymbol);
    r.symbol = snapshotText(instance, kItemCurrencySymbol);
    r.decimalSeparator = snapshotText(instance, kItemDecimal);
    r.groupSeparator = snapshotText(instance, kItemGroup);
    r.grouping = snapshotText(instance, kItemGrouping);
    r.positiveSign = snapshotText(instance, kItemPositiveSign);
    r.negativeSign = snapshotText(instance, kItemNegativeSign);
    r.intFractionDigits = snapshotFigure(call, instance, 162);
    r.fractionDigits = snapshotFigure(call, instance, 163);
    r.positiveSymbolPrecedes = snapshotFigure(call, instance, 164);
    r.positiveSymbolSpaced = snapshotFigure(call, instance, 165);
    r.negativeSymbolPrecedes = snapshotFigure(call, instance, 166);
    r.negativeSymbolSpaced = snapshotFigure(call, instance, 167);
    r.positiveSignPosition = snapshotFigure(call, instance, 168);
    r.negativeSignPosition = snapshotFigure(call, instance, 169);
    instance->monetaryRecord = record;
    return true;
}

int32_t renderCurrencyAmount(FormatCall *call, const CurrencyRow &row, ExtensionInstance *instance,
                             CurrencyForm form) {
    auto *out = static_cast<ZvChar *>(call->output);
    if (!ensureMonetaryRecord(call, instance)) {
        const int32_t saved = call->decimals;
        call->decimals = 0;
        writeMissingMark(call);
        call->decimals = saved;
        return 0;
    }
    call->outputLength = call->width;
    double value = 0;
    if (call->input) std::memcpy(&value, call->input, sizeof value);
    if (isMissing(value)) {
        const int32_t saved = call->decimals;
        call->decimals = 0;
        writeMissingMark(call);
        call->decimals = saved;
        return 0;
    }
    const int32_t width = call->width;
    if (width < 1) return 0;
    fillBounded(out, call->outputCapacity, u' ', width);

    const CurrencyRow &money = static_cast<MonetaryRecord *>(instance->monetaryRecord)->row;
    const bool negative = value < 0.0;
    const ZvChar *pattern =
        negative ? signPattern(money.negativeSymbolPrecedes, money.negativeSymbolSpaced,
                               money.negativeSignPosition)
                 : signPattern(money.positiveSymbolPrecedes, money.positiveSymbolSpaced,
                               money.positiveSignPosition);
    const ZvChar *sign = negative ? money.negativeSign : money.positiveSign;

    // The currency's text: its code, or its symbol as the host encoding can
    // show it.
    ZvChar symbol[kWork + 1] = {};
    int64_t symbolLength = 0;
    if (form == CurrencyForm::Code) {
        symbolLength = textLength(row.code);
        if (symbolLength > kWork) symbolLength = kWork;
        std::memcpy(symbol, row.code, size_t(symbolLength) * sizeof(ZvChar));
    } else {
        symbolLength = decodeRowSymbol(row, call, symbol);
        if (symbolLength < 0) symbolLength = 0;
        if (symbolLength > kWork) symbolLength = kWork;
    }

    HostLocale *en = instance->defaultLocale;
    // The host is never asked for a field wider than the work area.
    const int32_t hostWidth = width < kWork ? width : kWork;

    bool grouping = true, symbolShown = true;
    int32_t narrowing = 0;
    Work digits, number, result;
    for (;;) {
        // Step a: the digits.
        ZvChar raw[kWork];
        int64_t produced = 0;
        auto ask = [&](int32_t w) {
            produced = call->outputCapacity;
            if (en && en->ops && en->ops->formatNumber && w >= 1)
                en->ops->formatNumber(en, value, w, call->decimals, ZV_NUMBER_PLAIN, raw, kWork,
                                      &produced);
            else
                produced = 0;
            if (produced < 0) produced = 0;
            if (produced > kWork) produced = kWork;
            digits.takeTrimmed(raw, produced);
        };
        ask(hostWidth);
        bool starred = false;
        if (digits.n >= width) {
            ask(hostWidth - narrowing);
            if (digits.n > width) {
                digits.clear();
                digits.put(u'*');
                starred = true;
            }
        }

        // Step b: integer part and fraction.
        const ZvChar *d = digits.c;
        int64_t len = digits.n;
        int64_t intLength = len, fraction = 0;
        int64_t e = -1;
        if (!starred) {
            if (len > 0 && d[0] == u'-') {
                ++d;
                --len;
            }
            intLength = len;
            e = findChar(d, len, u'E');
            if (e > 0 || call->decimals != 0) {
                const int64_t point = findChar(d, len, u'.');
                if (point >= 0) {
                    intLength = point;
                    fraction = len - point - 1;
                }
            }
        }

        // Step c: groups.
        number.clear();
        int64_t g = money.grouping && money.grouping[0] ? int64_t(money.grouping[0]) - u'0' : 0;
        if (!grouping || e > 0) g = 0;
        if (g > 0 && g < intLength) {
            int64_t first = intLength % g;
            if (first == 0) first = g;
            number.put(d, first);
            const int64_t groupLength = textLength(money.groupSeparator);
            for (int64_t i = first; i < intLength; i += g) {
                number.put(money.groupSeparator, groupLength);
                number.put(d + i, g);
            }
        } else {
            number.put(d, intLength);
        }
        // Step d: the fraction.
        if (fraction > 0) {
            number.put(money.decimalSeparator, textLength(money.decimalSeparator));
            number.put(d + intLength + 1, fraction);
        }

        // Step e: the pattern.
        result.clear();
        for (const ZvChar *p = pattern; *p; ++p) {
            switch (*p) {
            case u'(':
            case u')':
                if (negative) result.put(*p);
                break;
            case u' ': result.put(u' '); break;
            case u'V': result.put(number.c, number.n); break;
            case u'$':
                if (symbolShown) result.put(symbol, symbolLength);
                break;
            case u'-': result.put(sign, textLength(sign)); break;
            default: break;
            }
        }
        // Step f.
        result.trimBoth();
        if (value > 0.0 && money.negativeSignPosition == 0) result.put(u' ');

        // Step g: measure and place.
        const bool overflow = number.overflow || result.overflow;
        const int64_t length = result.n;
        int64_t measure = overflow ? int64_t(kWork) + 1 : length;
        int32_t measured = 0;
        if (!overflow && length <= width && call->measureBytes) {
            int64_t bytes = 0;
            measured = hostMeasure(call, result.c, length, kScratchBytes, &bytes);
            measure = bytes;
        }
        if (measure <= width && measured == 0) {
            placeRight(out, call->outputCapacity, width, result.c, length);
            call->outputLength = width;
            return 0;
        }

        // Step 7: retreat.
        if (grouping) {
            grouping = false;
        } else if (symbolShown) {
            symbolShown = false;
        } else if (narrowing == 0 && measure > width) {
            // Never ask the host for a field narrower than one place.
            const int64_t excess = measure - width;
            narrowing = static_cast<int32_t>(excess < hostWidth ? excess : hostWidth - 1);
            if (narrowing < 1) break;
        } else {
            break;
        }
    }

    // Step 8: the plain number, without the locale's dress.
    const int64_t capacity = width < call->outputCapacity ? width : call->outputCapacity;
    int64_t produced = call->outputCapacity;
    if (en && en->ops && en->ops->formatNumber && capacity >= 1)
        en->ops->formatNumber(en, value, width, call->decimals, ZV_NUMBER_PLAIN, out, capacity,
                              &produced);
    call->outputLength = width;
    return 0;
}

int32_t runCurrencyMember(FormatCall *call, const CurrencyRow &row, CurrencyForm form) {
    ExtensionInstance *instance = findInstance(call);
    if (!instance) return ZV_NO_INSTANCE;
    bool builtNow = false;
    if (!call->localeBlock) {
        if (!ensureLocaleBlock(call, instance)) return 0;
        builtNow = true;
    }
    // The snapshot follows each block built here, and a record about to be
    // made from it takes the block at hand rather than an unfilled snapshot.
    if (builtNow || !instance->monetaryRecord)
        std::memcpy(instance->itemSnapshot, call->localeBlock->items, sizeof instance->itemSnapshot);
    return renderCurrencyAmount(call, row, instance, form);
}

} // namespace zv
