// NLNUM, NLNUMI, NLPCT, NLPCTI, NLPCTN, NLPCTP, NLMNY and NLMNYI: their fronts,
// one routine for all, driven by a row of data each, and the fixed forms for
// locales that don't define an item.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "frame/frame.hpp"
#include "locale/block.hpp"
#include "numfmt/numfmt.hpp"
#include "numfmt/work.hpp"

namespace zv {

HostAnchor *anchorOf(ExtensionInstance *instance) {
    if (instance && instance->anchor) return instance->anchor;
    return hostAnchor;
}

void replacePoint(FormatCall *call, int64_t length) {
    auto *out = static_cast<ZvChar *>(call->output);
    if (!out || !call->localeBlock) return;
    if (length > call->outputCapacity) length = call->outputCapacity;
    const int64_t at = findChar(out, length, u'.');
    if (at < 0) return;
    const LocaleItem &sep = call->localeBlock->items[kItemDecimalSeparator];
    if (sep.length == 1 && sep.text[0] != u'.') out[at] = sep.text[0];
}

namespace {

// The fixed percent form's places around the digits: '(' or a blank in
// front, '%' and ')' or a blank behind.
constexpr int64_t kPercentDecoration = 3;

// What a front does when the locale lacks the item.
enum class Fallback { GroupedNumber, Percent, Money };

struct NumberFormRow {
    int item;          // the locale item whose context the engine reads
    bool percent;      // the value goes to the engine times 100
    Fallback fallback; // the fixed form for a locale without the item
};

constexpr NumberFormRow kNlNum{kItemNumberContext, false, Fallback::GroupedNumber};
constexpr NumberFormRow kNlNumI{kItemFixedNumberContext, false, Fallback::GroupedNumber};
constexpr NumberFormRow kNlPct{kItemPercentContext, true, Fallback::Percent};
constexpr NumberFormRow kNlPctI{kItemFixedPercentContext, true, Fallback::Percent};
constexpr NumberFormRow kNlMny{kItemMoneyContext, false, Fallback::Money};
constexpr NumberFormRow kNlMnyI{kItemIntlMoneyContext, false, Fallback::Money};

int32_t runNumberForm(FormatCall *call, const NumberFormRow &row) {
    ExtensionInstance *instance = findInstance(call);
    if (!instance) return ZV_NO_INSTANCE;
    call->outputLength = call->width;
    int32_t status = checkLimits(call, kNumberLimits);
    if (status != 0) return status;
    double value = 0;
    if (!beginNumberValue(call, &value)) return 0;
    if (!ensureLocaleBlock(call, instance)) return 0;

    LocaleBlock *block = call->localeBlock;
    const LocaleItem &item = block->items[row.item];
    const NumberContext *context = item.numberContext ? item.numberContext : contextOf(block, row.item);

    const void *input = call->input;
    const double scaled = value * kPercentScale;
    if (row.percent) call->input = &scaled;
    const int32_t rendered =
        renderLocaleNumber(static_cast<int32_t>(item.length), call, context, instance);
    call->input = input;
    if (rendered == 0) return 0;

    auto *out = static_cast<ZvChar *>(call->output);
    switch (row.fallback) {
    case Fallback::GroupedNumber:
        fillBounded(out, call->outputCapacity, u' ', call->outputCapacity);
        status = fixedGroupedNumber(call, instance);
        break;
    case Fallback::Percent: status = fixedPercent(call); break;
    case Fallback::Money: status = fixedMoney(call, instance); break;
    }
    if (status != 0) starFill(call);
    return 0;
}

} // namespace

int32_t fixedGroupedNumber(FormatCall *call, ExtensionInstance *instance) {
    HostAnchor *anchor = anchorOf(instance);
    HostLocale *formatter = anchor ? anchor->numberFormatter : nullptr;
    auto *out = static_cast<ZvChar *>(call->output);
    const int64_t capacity = fieldRoom(call);
    int64_t produced = call->outputCapacity;
    int32_t status = askFormatNumber(formatter, inputValue(call), call->width, call->decimals, ZV_NUMBER_GROUPED,
                              out, capacity, &produced);
    produced = std::max<int64_t>(produced, 0);
    if (produced > capacity) produced = capacity;
    if (produced != call->width && produced < call->outputCapacity && out) {
        // Right-justify what came within the field.
        const int64_t field = capacity;
        const int64_t shift = field - produced;
        if (shift > 0) {
            for (int64_t i = produced - 1; i >= 0; --i) out[i + shift] = out[i];
            for (int64_t i = 0; i < shift; ++i) out[i] = u' ';
        }
        produced = field;
    }
    call->outputLength = static_cast<int32_t>(produced);
    if (status == kHostUngrouped) status = 0;
    return status;
}

int32_t fixedPlainNumber(FormatCall *call) {
    auto *out = static_cast<ZvChar *>(call->output);
    const int64_t capacity = fieldRoom(call);
    int64_t produced = call->outputCapacity;
    const int32_t status = askFormatNumber(call->locale, inputValue(call), call->width, call->decimals,
                                    ZV_NUMBER_PLAIN, out, capacity, &produced);
    if (status != 0 && status != kHostNotPlain) {
        fillBounded(out, call->outputCapacity, u'*', call->width);
        produced = call->width;
    }
    produced = std::max<int64_t>(produced, 0);
    call->outputLength = static_cast<int32_t>(produced);
    return status;
}

int32_t fixedPercent(FormatCall *call) {
    auto *out = static_cast<ZvChar *>(call->output);
    const int64_t n = fieldRoom(call);
    const double value = inputValue(call);
    if (isMissing(value)) {
        fillBounded(out, n, u' ', n);
        if (out && n >= kPercentDecoration) out[n - kPercentDecoration] = missingMarkOf(value);
        call->outputLength = static_cast<int32_t>(std::max<int64_t>(n, 0));
        return 0;
    }
    // The host needs a field of one place at least, and room for the
    // decoration on both sides.
    if (call->width - kPercentDecoration < 1 || call->outputCapacity - kPercentDecoration < 1 || !out) {
        fillBounded(out, call->outputCapacity, u'*', call->width);
        call->outputLength = static_cast<int32_t>(n);
        return 0;
    }
    int64_t produced = n;
    const int32_t status =
        askFormatNumber(call->locale, std::fabs(value) * kPercentScale, call->width - kPercentDecoration,
                        call->decimals, ZV_NUMBER_PLAIN, out + 1, call->outputCapacity - kPercentDecoration,
                        &produced);
    produced = std::max<int64_t>(produced, 0);
    if (produced > call->outputCapacity - kPercentDecoration) produced = call->outputCapacity - kPercentDecoration;
    if (status != 0 && status != kHostPercentAccepted && status != kHostNotPlain) {
        call->outputLength = static_cast<int32_t>(produced);
        return status;
    }
    const bool negative = value < 0.0;
    out[0] = negative ? u'(' : u' ';
    out[produced + 1] = u'%';
    out[produced + 2] = negative ? u')' : u' ';
    call->outputLength = static_cast<int32_t>(produced + kPercentDecoration);
    return status;
}

int32_t fixedPercentMinus(FormatCall *call) {
    const int32_t status = fixedPercent(call);
    const double value = inputValue(call);
    if (isMissing(value) || (status != 0 && status != kHostNotPlain) || !(value < 0.0)) return status;
    auto *out = static_cast<ZvChar *>(call->output);
    int64_t length = call->outputLength;
    if (length > call->outputCapacity) length = call->outputCapacity;
    const int64_t open = findChar(out, length, u'(');
    if (open >= 0) out[open] = u' ';
    const int64_t close = findChar(out, length, u')');
    if (close >= 0) out[close] = u' ';
    const int64_t first = firstOther(out, length, u' ');
    if (first > 0) out[first - 1] = u'-';
    return status;
}

int32_t fixedMoney(FormatCall *call, ExtensionInstance *instance) {
    auto *out = static_cast<ZvChar *>(call->output);
    int32_t status;
    if (call->width >= 2 && call->outputCapacity >= 2) {
        out[0] = u' ';
        void *output = call->output;
        const int32_t width = call->width, capacity = call->outputCapacity;
        call->output = out + 1;
        call->width = width - 1;
        call->outputCapacity = capacity - 1;
        status = fixedGroupedNumber(call, instance);
        call->output = output;
        call->width = width;
        call->outputCapacity = capacity;
        call->outputLength += 1;
    } else {
        status = fixedGroupedNumber(call, instance);
    }
    if (status != 0) return fixedPlainNumber(call);
    int64_t look = fieldRoom(call);
    if (findChar(out, look, u'E') >= 0 || findChar(out, look, u'*') >= 0) return 0;
    look = std::min(call->outputLength, call->outputCapacity);
    const int64_t first = firstOther(out, look, u' ');
    if (first > 0) out[first - 1] = u'$';
    return 0;
}

int32_t writeNlNum(FormatCall *call, void *) { return runNumberForm(call, kNlNum); }
int32_t writeNlNumI(FormatCall *call, void *) { return runNumberForm(call, kNlNumI); }
int32_t writeNlPct(FormatCall *call, void *) { return runNumberForm(call, kNlPct); }
int32_t writeNlPctI(FormatCall *call, void *) { return runNumberForm(call, kNlPctI); }
int32_t writeNlMny(FormatCall *call, void *) { return runNumberForm(call, kNlMny); }
int32_t writeNlMnyI(FormatCall *call, void *) { return runNumberForm(call, kNlMnyI); }

namespace {

int32_t runFixedPercentForm(FormatCall *call, bool minus) {
    ExtensionInstance *instance = findInstance(call);
    if (!instance) return ZV_NO_INSTANCE;
    if (!ensureLocaleBlock(call, instance)) return 0;
    if (minus) fixedPercentMinus(call);
    else fixedPercent(call);
    // A missing value's '.' is its mark, not a decimal point.
    if (!isMissing(inputValue(call))) replacePoint(call, call->outputLength);
    return 0;
}

} // namespace

int32_t writeNlPctN(FormatCall *call, void *) { return runFixedPercentForm(call, true); }
int32_t writeNlPctP(FormatCall *call, void *) { return runFixedPercentForm(call, false); }

} // namespace zv
