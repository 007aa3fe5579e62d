// NLMNI<code> and NLMNL<code>: an amount in the shape of the locale's own
// money, with another currency's code or symbol.
#include <algorithm>
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
// The digits of an amount that the host can't fit.
constexpr ZvChar kLoneStar[1] = {u'*'};

using Work = WorkArea<kWork>;

const ZvChar *snapshotText(ExtensionInstance *instance, int item) {
    const LocaleItem &it = instance->itemSnapshot[item];
    return it.length < 1 ? kEmpty : it.text;
}

int8_t snapshotFigure(FormatCall *call, ExtensionInstance *instance, int item) {
    const LocaleItem &it = instance->itemSnapshot[item];
    HostLocale *locale = call->locale;
    if (it.length < 1 || !locale || !locale->ops || !locale->ops->parseInteger) return 0;
    int64_t value = 0, used = 0;
    const int64_t length = std::min<int64_t>(it.length, ZV_ITEM_TEXT_UNITS);
    if (locale->ops->parseInteger(locale, it.text, length, 0, &value, &used) != 0) return 0;
    if (value < INT8_MIN || value > INT8_MAX) return 0;
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
    r.decimalSeparator = snapshotText(instance, kItemMoneyDecimalSeparator);
    r.groupSeparator = snapshotText(instance, kItemMoneyGroupSeparator);
    r.grouping = snapshotText(instance, kItemMoneyGrouping);
    r.positiveSign = snapshotText(instance, kItemMoneyPositiveSign);
    r.negativeSign = snapshotText(instance, kItemMoneyNegativeSign);
    r.intFractionDigits = snapshotFigure(call, instance, kItemIntlFractionDigits);
    r.fractionDigits = snapshotFigure(call, instance, kItemFractionDigits);
    auto placement = [&](int figure) {
        return snapshotFigure(call, instance, kItemMoneyPlacements + figure);
    };
    r.positiveSymbolPrecedes = placement(kPositiveSymbolPrecedes);
    r.positiveSymbolSpaced = placement(kPositiveSymbolSpaced);
    r.negativeSymbolPrecedes = placement(kNegativeSymbolPrecedes);
    r.negativeSymbolSpaced = placement(kNegativeSymbolSpaced);
    r.positiveSignPosition = placement(kPositiveSignPosition);
    r.negativeSignPosition = placement(kNegativeSignPosition);
    instance->monetaryRecord = record;
    return true;
}

namespace {

// The currency's text: its code where the row holds it, or its symbol as the
// host encoding can show it, decoded into `decoded`; at most kWork units go
// into *length.
const ZvChar *currencyMark(FormatCall *call, const CurrencyRow &row, CurrencyForm form,
                           ZvChar (&decoded)[kWork + 1], int64_t *length) {
    const ZvChar *mark = row.code;
    if (form == CurrencyForm::Code) {
        *length = textLength(row.code);
    } else {
        mark = decoded;
        *length = std::max<int64_t>(decodeRowSymbol(row, call, decoded), 0);
    }
    if (*length > kWork) *length = kWork;
    return mark;
}

// One amount in the shape of the locale's money: the host's plain digits
// dressed by the monetary record, with the retreats of a too-narrow field.
struct AmountWriter {
    FormatCall *call;
    const CurrencyRow &money;
    HostLocale *en;
    double value;
    ZvChar *out;
    int32_t width;
    int32_t hostWidth; // the host is never asked for a field wider than the work area

    AmountWriter(FormatCall *c, const CurrencyRow &m, HostLocale *locale, double v, ZvChar *field,
                 int32_t w)
        : call(c), money(m), en(locale), value(v), out(field), width(w), hostWidth(std::min(w, kWork)) {}

    bool negative = false;
    bool blankBehind = false; // a positive amount under parentheses for negatives
    bool wholeField = false;  // the field takes every unit of a dress by units
    const ZvChar *pattern = nullptr;
    const ZvChar *sign = nullptr;
    int64_t signLength = 0;
    ZvChar decoded[kWork + 1]; // a symbol as the host encoding shows it
    const ZvChar *symbol = nullptr;
    int64_t symbolLength = 0; // of the currency's text at `symbol`
    int64_t groupSize = 0, groupLength = 0, pointLength = 0; // of the record, read once

    // What the retreats have given up so far.
    bool grouping = true, symbolShown = true;
    int32_t narrowing = 0;
    int64_t measure = 0; // of the last dressed amount

    HostText<kWork> digits;
    Work number, result;
    GroupedNumber shape;       // this pass's number, before it is built
    int64_t solidMeasure = -1; // the dress of `shape` by its parts, or -1: built in `dress`
    PatternFrame<kWork> frame;
    DressedPieces dress;

    // The pattern and sign of the value's sign, and the currency's text.
    void prepare(const CurrencyRow &row, CurrencyForm form) {
        negative = value < 0.0;
        blankBehind = value > 0.0 && money.negativeSignPosition == 0;
        wholeField = out && !call->measureBytes && width <= call->outputCapacity;
        pattern = negative ? signPattern(money.negativeSymbolPrecedes, money.negativeSymbolSpaced,
                                         money.negativeSignPosition)
                           : signPattern(money.positiveSymbolPrecedes, money.positiveSymbolSpaced,
                                         money.positiveSignPosition);
        sign = negative ? money.negativeSign : money.positiveSign;
        signLength = textLength(sign);
        symbol = currencyMark(call, row, form, decoded, &symbolLength);
        groupSize = money.grouping && money.grouping[0] ? int64_t(money.grouping[0]) - u'0' : 0;
        groupLength = textLength(money.groupSeparator);
        pointLength = textLength(money.decimalSeparator);
        spellFrame();
    }

    HostAsk asked;
    DigitMarks marks;     // of the digits
    int shapeAnswer = -1; // the answer that `shape` was rebuilt from

    // The host's plain digits at width w, left-justified and trimmed; a
    // question asked just before keeps its answer.
    void askHost(int32_t w) {
        if (!asked.repeats(w, call->decimals)) fetchDigits(w);
    }

    void fetchDigits(int32_t w) {
        int64_t produced = call->outputCapacity;
        if (en && en->ops && en->ops->formatNumber && w >= 1)
            en->ops->formatNumber(en, value, w, call->decimals, ZV_NUMBER_PLAIN, digits.c, kWork, &produced);
        else
            produced = 0;
        digits.take(produced);
        marks = findMarks(digits.text, digits.n);
    }

    // The digits for this pass; a text that fills the field is asked for
    // again at the narrowed width, and one still too wide is a lone '*'.
    void digitsForPass() {
        askHost(hostWidth);
        if (digits.n < width) return;
        askHost(hostWidth - narrowing);
        if (digits.n <= width) return;
        digits.replace(kLoneStar, 1);
        marks = findMarks(kLoneStar, 1);
        asked.forget();
    }

    // The digits without their sign, grouped by the record, with its whole
    // decimal separator before the fraction. E-notation is never grouped; a
    // lone star stays as it is.
    void rebuildNumber() {
        if (shapeAnswer == asked.answer) {
            // The same digits as the pass before, which gave up the groups
            // or the currency's text.
            shape.dropGroups();
            return;
        }
        shapeAnswer = asked.answer;
        const ZvChar *d = digits.text;
        int64_t len = digits.n;
        dropMinus(d, len);
        // The marks were found before the minus went.
        const int64_t shift = digits.n - len;
        const int64_t e = marks.e < 0 ? -1 : marks.e - shift;
        const int64_t point = marks.point < 0 ? -1 : marks.point - shift;
        int64_t intLength = len, fraction = 0;
        if ((e > 0 || call->decimals != 0) && point >= 0) {
            intLength = point;
            fraction = len - point - 1;
        }
        const int64_t g = grouping && e <= 0 ? groupSize : 0;
        shape = GroupedNumber{d, intLength, g, money.groupSeparator, groupLength,
                              money.decimalSeparator, pointLength, d + intLength + 1, fraction};
    }

    // The number in the sign pattern, without outer blanks; a positive amount
    // under parentheses for negatives keeps one blank behind it. A number
    // whose ends are not blanks is measured from its parts: a pass too wide
    // for the field builds nothing, and one that fits a whole field is built
    // there. A text that passes the work area is built, cut as it shows.
    void dressNumber() {
        const int64_t length = shape.length();
        solidMeasure = length <= kWork && shape.solid() ? frame.measureAround(length, blankBehind) : -1;
        if (solidMeasure > kWork) solidMeasure = -1;
        if (solidMeasure > width || (solidMeasure >= 0 && wholeField)) return;
        solidMeasure = -1;
        putNumber(number, shape);
        dressPieces(dress, frame, number.c, number.n, blankBehind);
    }

    // The pattern around the number, with the currency's text while it is
    // shown.
    void spellFrame() {
        frame.spell(pattern, PatternParts{negative, symbol, symbolShown ? symbolLength : 0, sign, signLength});
    }

    // The dressed amount measured, in bytes while measureBytes is set, and
    // set at the end of the field. False when it doesn't fit. A dress wider
    // than the field by its units is never built.
    bool placeIfFits() {
        if (solidMeasure >= 0) {
            measure = solidMeasure;
            if (measure > width) return false;
            frame.placeAround(out, width, measure, shape, blankBehind);
            call->outputLength = width;
            return true;
        }
        const bool overflow = number.overflow || dress.overflow;
        const int64_t length = dress.units;
        measure = overflow ? int64_t(kWork) + 1 : length;
        int32_t measured = 0;
        if (!overflow && length <= width && call->measureBytes) {
            placeRight(result.c, kWork, length, dress);
            int64_t bytes = 0;
            measured = hostMeasure(call, result.c, length, kScratchBytes, &bytes);
            measure = bytes;
        }
        if (measure > width || measured != 0) return false;
        placeRight(out, call->outputCapacity, width, dress);
        call->outputLength = width;
        return true;
    }

    // Gives up one thing for the next pass: the groups, the currency's text,
    // then the host's field narrowed once by the excess. False when nothing
    // is left to give up.
    bool retreat() {
        if (grouping) {
            grouping = false;
        } else if (symbolShown) {
            symbolShown = false;
            spellFrame();
        } else if (narrowing == 0 && measure > width) {
            // Never ask the host for a field narrower than one place.
            const int64_t excess = measure - width;
            narrowing = static_cast<int32_t>(excess < hostWidth ? excess : hostWidth - 1);
            if (narrowing < 1) return false;
        } else {
            return false;
        }
        return true;
    }

    // The plain number, without the locale's dress: the last answer.
    void writePlainNumber() {
        const int64_t capacity = std::min(width, call->outputCapacity);
        fillBounded(out, call->outputCapacity, u' ', width);
        int64_t produced = call->outputCapacity;
        if (en && en->ops && en->ops->formatNumber && capacity >= 1)
            en->ops->formatNumber(en, value, width, call->decimals, ZV_NUMBER_PLAIN, out, capacity,
                                  &produced);
        call->outputLength = width;
    }

    void run() {
        do {
            digitsForPass();
            rebuildNumber();
            dressNumber();
            if (placeIfFits()) return;
        } while (retreat());
        writePlainNumber();
    }
};

} // namespace

void renderCurrencyAmount(FormatCall *call, const CurrencyRow &row, ExtensionInstance *instance,
                          CurrencyForm form) {
    if (!ensureMonetaryRecord(call, instance)) {
        missingMarkHeld(call);
        return;
    }
    double value = 0;
    if (!beginNumberValue(call, &value)) return;
    const int32_t width = call->width;
    if (width < 1) return;
    auto *out = static_cast<ZvChar *>(call->output);
    AmountWriter writer(call, static_cast<MonetaryRecord *>(instance->monetaryRecord)->row,
                        instance->defaultLocale, value, out, width);
    writer.prepare(row, form);
    writer.run();
}

void followSnapshot(ExtensionInstance *instance, const LocaleBlock *block, bool builtNow) {
    if (builtNow || !instance->monetaryRecord)
        std::memcpy(instance->itemSnapshot, block->items, sizeof instance->itemSnapshot);
}

int32_t runCurrencyMember(FormatCall *call, const CurrencyRow &row, CurrencyForm form) {
    ExtensionInstance *instance = findInstance(call);
    if (!instance) return ZV_NO_INSTANCE;
    const bool builtNow = !call->localeBlock;
    if (!ensureLocaleBlock(call, instance)) return 0;
    followSnapshot(instance, call->localeBlock, builtNow);
    renderCurrencyAmount(call, row, instance, form);
    return 0;
}

} // namespace zv
