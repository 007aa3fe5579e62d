// The locale number engine: the host's plain digits rebuilt by a number
// context's separators, grouping, signs and symbol, with retreats when the
// result is wider than the field.
#include <algorithm>
#include <cstring>

#include "frame/frame.hpp"
#include "locale/block.hpp"
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
// More passes than the retreats can take; a guard, never reached.
constexpr int kMostPasses = 4 * kWork;

// Where a dressed number stands after its measure.
enum class Placement { Done, Stars, TooWide };

struct Engine {
    FormatCall *call;
    const NumberContext *ctx;
    ExtensionInstance *instance;
    double value;
    int32_t savedDecimals;

    Engine(FormatCall *c, const NumberContext *context, ExtensionInstance *i, double v, int32_t saved)
        : call(c), ctx(context), instance(i), value(v), savedDecimals(saved) {}

    // Fixed for the call once the separator is measured and the pattern chosen.
    ZvChar *out = nullptr;
    int32_t width = 0;
    int sepUnits = 0, groupUnits = 0;
    int sepMeasure = 0; // in bytes while measureBytes is set
    bool negative = false;
    bool blankBehind = false; // a positive value under parentheses for negatives
    bool wholeField = false;  // the field takes every unit of a dress by units

    // What the retreats have given up so far.
    bool grouping = true, groupsUsed = false, zeroPoint = false;
    int32_t narrowing = 0;
    int64_t measure = -1; // of the last dressed number; -1 before the first
    bool eFormWide = false; // this pass: E-notation with a two-place separator

    HostText<kWork> digits;
    WorkText number, result;
    GroupedNumber shape; // this pass's number, before it is built
    int64_t solidMeasure = -1; // the dress of `shape` by its parts, or -1: built in `dress`
    PatternFrame<kWork> frame;
    DressedPieces dress;

    int32_t stars() {
        auto *field = static_cast<ZvChar *>(call->output);
        fillBounded(field, call->outputCapacity, u' ', call->outputCapacity);
        fillBounded(field, call->outputCapacity, u'*', call->width);
        call->outputLength = call->width;
        call->decimals = savedDecimals;
        return 0;
    }

    HostAsk asked;
    bool askedAnswer = false;
    int shapeAnswer = -1;    // the answer that `shape` was rebuilt from
    bool shapeEForm = false; // eFormWide of `shape`

    // The host's digits in `digits`; false: stars.
    bool hostDigits(int32_t hostWidth) {
        if (!asked.repeats(hostWidth, call->decimals)) askedAnswer = askHost(hostWidth, digits);
        return askedAnswer;
    }

    // One call of the host's plain form; its text without outer blanks in
    // `text`, and the marks of it. False: stars.
    bool askHost(int32_t hostWidth, HostText<kWork> &text) {
        HostLocale *en = instance->defaultLocale;
        text.take(0);
        marks = DigitMarks{};
        if (!en || !en->ops || !en->ops->formatNumber || hostWidth < 1) return false;
        int64_t produced = call->outputCapacity;
        const int32_t status = en->ops->formatNumber(en, value, hostWidth, call->decimals,
                                                     ZV_NUMBER_PLAIN, text.c, kWork, &produced);
        text.take(produced);
        marks = findMarks(text.text, text.n);
        if (status == kHostNotPlain) {
            if (call->outputCapacity < text.n) return false;
            const int64_t look = std::min<int64_t>(text.n, call->outputLength);
            if (findChar(text.text, look, u'*') >= 0) return false;
        } else if (status != 0) {
            return false;
        }
        return true;
    }

    // The decimal separator's measure and the pattern of the value's sign.
    // False: stars.
    bool prepare() {
        out = static_cast<ZvChar *>(call->output);
        width = call->width;

        sepUnits = markUnits(ctx->decimalSeparator);
        groupUnits = markUnits(ctx->groupSeparator);
        sepMeasure = sepUnits;
        if (call->measureBytes && sepUnits > 0) {
            int64_t bytes = 0;
            if (hostMeasure(call, ctx->decimalSeparator, sepUnits, kScratchBytes, &bytes) != 0)
                return false;
            sepMeasure = static_cast<int>(bytes);
        }
        if (sepUnits == 0) call->decimals = 0;

        negative = value < 0.0;
        blankBehind = value > 0.0 && ctx->negativeSignPosition == 0;
        wholeField = out && !call->measureBytes && width <= call->outputCapacity;
        const ZvChar *pattern =
            negative ? signPattern(ctx->negativeSymbolPrecedes, ctx->negativeSymbolSpaced, ctx->negativeSignPosition)
                     : signPattern(ctx->positiveSymbolPrecedes, ctx->positiveSymbolSpaced, ctx->positiveSignPosition);
        const ZvChar *sign = negative ? ctx->negativeSign : ctx->positiveSign;
        frame.spell(pattern, PatternParts{negative, ctx->symbol, symbolUnits(*ctx), sign, markUnits(sign)});
        return true;
    }

    // The host's digits for this pass, at the full width and, once the field
    // narrows or the text is too wide, at the narrowed one. False: stars.
    bool digitsForPass() {
        if (!hostDigits(width)) return false;
        if (digits.n > width || narrowing > 0) {
            if (width - narrowing < 1) return false;
            if (!hostDigits(width - narrowing)) return false;
        }
        if (digits.n < 1) return false;
        if (call->decimals > 0 && digits.n >= 2 && digits.text[0] == u'0' && digits.text[1] == u'.')
            zeroPoint = true;
        return true;
    }

    DigitMarks marks; // of each answer of the host

    // Text that the host starred or wrote too wide is never dressed.
    bool digitsWorthDressing() const {
        return digits.n <= width && marks.star < 0;
    }

    // The digits without their sign, grouped by the context, with its
    // decimal separator. E-notation keeps its integer part whole.
    void rebuildNumber() {
        if (shapeAnswer == asked.answer) {
            // The same digits as the pass before, which gave up the groups.
            shape.dropGroups();
            eFormWide = shapeEForm;
            return;
        }
        shapeAnswer = asked.answer;
        const ZvChar *d = digits.text;
        int64_t len = digits.n;
        dropMinus(d, len);
        const int64_t shift = digits.n - len; // the minus dropped
        const int64_t e = marks.e < 0 ? -1 : marks.e - shift;
        const int64_t point = marks.point < 0 ? -1 : marks.point - shift;
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

        int32_t g = ctx->groupSizes[0];
        if (!grouping || e > 0 || plainInteger) g = 0;
        shape = GroupedNumber{d, intLength, g, ctx->groupSeparator, groupUnits,
                              ctx->decimalSeparator, sepUnits, fraction, fractionLength};
        if (shape.grouped()) groupsUsed = true;
        if (fractionLength > 0 && e >= 0 && sepMeasure == 2) eFormWide = true;
        shapeEForm = eFormWide;
    }

    // The number in the sign pattern, without outer blanks; a positive value
    // under parentheses for negatives keeps one blank behind it. Its length,
    // or more than the work area when something overflowed.
    int64_t dressNumber() {
        const int64_t length = shape.length();
        if (length > kWork) return kWork + 1;
        // A number whose ends are not blanks is measured from its parts: a
        // pass too wide for the field builds nothing, and one that fits a
        // whole field is built there.
        solidMeasure = shape.solid() ? frame.measureAround(length, blankBehind) : -1;
        if (solidMeasure > width || (solidMeasure >= 0 && wholeField)) return solidMeasure;
        solidMeasure = -1;
        putNumber(number, shape);
        dressPieces(dress, frame, number.c, lengthWithoutTrailingBlanks(number.c, number.n), blankBehind);
        return dress.overflow ? kWork + 1 : dress.units;
    }

    // The dressed number measured, in bytes while measureBytes is set, and
    // set at the end of the field when it fits. A dress wider than the field
    // by its units is never built.
    Placement place(int64_t length) {
        measure = length;
        if (length > width) return Placement::TooWide;
        if (solidMeasure >= 0) {
            frame.placeAround(out, width, length, shape, blankBehind);
        } else {
            if (call->measureBytes) {
                placeRight(result.c, kWork, length, dress);
                int64_t bytes = 0;
                const int32_t measured = hostMeasure(call, result.c, length, kScratchBytes, &bytes);
                measure = bytes;
                if (measure > width) return Placement::TooWide;
                if (measured != 0) return Placement::Stars;
            }
            placeRight(out, call->outputCapacity, width, dress);
        }
        call->outputLength = width;
        call->decimals = savedDecimals;
        return Placement::Done;
    }

    // Gives up one thing for the next pass: the groups, then decimals one by
    // one (a "0." text first tries one place narrower), then the host's
    // field narrowed by the excess and by one more each time. False: stars.
    bool retreat() {
        if (grouping && groupsUsed) {
            grouping = false;
        } else if (call->decimals > 0) {
            if (zeroPoint && narrowing == 0) narrowing = 1;
            else --call->decimals;
        } else if (narrowing == 0) {
            if (measure < 0) return false;
            narrowing = static_cast<int32_t>(measure - width);
            if (eFormWide && narrowing > 1) --narrowing;
            if (narrowing < 1 || narrowing >= width) return false;
        } else {
            if (width - narrowing < 2) return false;
            ++narrowing;
        }
        return true;
    }

    int32_t run() {
        if (!prepare()) return stars();
        for (int pass = 0; pass < kMostPasses; ++pass) {
            eFormWide = false;
            if (!digitsForPass()) return stars();
            if (digitsWorthDressing()) {
                rebuildNumber();
                switch (place(dressNumber())) {
                case Placement::Done: return 0;
                case Placement::Stars: return stars();
                case Placement::TooWide: break;
                }
            }
            if (!retreat()) return stars();
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
    if (call->width > kNumberMostWidth) {
        call->width = kNumberMostWidth;
        fillBounded(out, call->outputCapacity, u'*', kNumberMostWidth);
        call->outputLength = kNumberMostWidth;
        return 0;
    }
    double value = 0;
    if (!beginNumberValue(call, &value)) return 0;
    Engine engine(call, context, instance, value, call->decimals);
    if (!context || !instance || !call->input) return engine.stars();
    return engine.run();
}

} // namespace zv
