// @NLMNI<code> and @NLMNL<code>: an amount written with a currency's ISO code
// or symbol in the shape of the locale's own money. The currency's mark is
// cut out whole, the locale's marks become plain ones, and the plain reader
// does the rest; what it can't read stays missing.
#include <algorithm>
#include <cstring>

#include "frame/frame.hpp"
#include "locale/block.hpp"
#include "numread/numread.hpp"
#include "numread/work.hpp"
#include "wide/wide.hpp"

namespace zv {

namespace {

constexpr int kMarkUnits = 64; // room that decodeRowSymbol may fill

int64_t zeroEndedLength(const ZvChar *text) {
    if (!text) return 0;
    int64_t n = 0;
    while (n < ZV_ITEM_TEXT_UNITS && text[n]) ++n;
    return n;
}

// Every unit equal to the sign's first unit, or under position 0 every
// parenthesis, leaves the text. True when it shrank. (The sign is the whole
// text of a locale item; a longer one, such as a character reference for a
// sign the host encoding lacks, mustn't take digits with it.)
bool removeSignForm(ZvChar *text, int64_t *n, int32_t position, const ZvChar *sign) {
    const int64_t before = *n;
    if (position != 0) {
        if (!sign || sign[0] == 0) return false;
        *n = removeCharacters(text, *n, sign, 1);
    } else {
        static constexpr ZvChar kParentheses[2] = {u'(', u')'};
        *n = removeCharacters(text, *n, kParentheses, 2);
    }
    return *n < before;
}

} // namespace

int32_t readCurrencyAmount(FormatCall *call, const CurrencyRow &row, ExtensionInstance *instance,
                           CurrencyForm form) {
    if (!ensureMonetaryRecord(call, instance)) return ZV_UNREADABLE;
    int64_t length = std::min(call->inputLength, call->fieldLimit);
    if (length <= 0 || !call->input) return ZV_UNREADABLE;
    if (length > kReadUnits) length = kReadUnits;
    const CurrencyRow &money = static_cast<MonetaryRecord *>(instance->monetaryRecord)->row;

    // The currency's mark.
    ZvChar mark[kMarkUnits + 1] = {};
    int64_t markLength = 0;
    if (form == CurrencyForm::Code) {
        markLength = zeroEndedLength(row.code);
        if (markLength > kMarkUnits) markLength = kMarkUnits;
        if (markLength > 0) std::memcpy(mark, row.code, size_t(markLength) * sizeof(ZvChar));
    } else {
        markLength = decodeRowSymbol(row, call, mark);
        markLength = std::max<int64_t>(markLength, 0);
        if (markLength > kMarkUnits) markLength = kMarkUnits;
    }

    ZvChar text[kReadUnits + 1] = {};
    std::memcpy(text, call->input, size_t(length) * sizeof(ZvChar));
    int64_t n = length;

    // The locale's separators become plain ones, unless its groups are
    // commas already. Blank groups stay for the plain reader to take out, but
    // the point beside them becomes '.', so that 1 234,56 reads as 1234.56
    // and not as a comma in groups.
    const ZvChar *group = money.groupSeparator;
    const ZvChar *point = money.decimalSeparator;
    const ZvChar point0 = point ? point[0] : 0;
    const int64_t groupLength = zeroEndedLength(group);
    if (groupLength > 0 && group[0] == u' ') {
        if (point0 != 0)
            for (int64_t i = 0; i < n; ++i)
                if (text[i] == point0) text[i] = u'.';
    } else if (groupLength == 0 || group[0] != u',') {
        if (groupLength == 2) {
            n = translateGroupPairs(text, n, group, point0);
        } else {
            for (int64_t i = 0; i < n; ++i) {
                if (groupLength > 0 && text[i] == group[0]) text[i] = u',';
                else if (point0 != 0 && text[i] == point0) text[i] = u'.';
            }
        }
    }

    // The mark goes out whole, as often as it stands.
    if (markLength > 0) {
        for (int64_t at = findSubstring(text, n, mark, markLength); at >= 0;
             at = findSubstring(text, n, mark, markLength)) {
            std::memmove(text + at, text + at + markLength, size_t(n - at - markLength) * sizeof(ZvChar));
            n -= markLength;
        }
    }

    if (removeSignForm(text, &n, money.negativeSignPosition, money.negativeSign)) {
        for (int64_t i = n; i > 0; --i) text[i] = text[i - 1];
        text[0] = u'-';
        ++n;
    } else {
        removeSignForm(text, &n, money.positiveSignPosition, money.positiveSign);
    }

    const void *input = call->input;
    const int32_t inputLength = call->inputLength;
    const int32_t decimals = call->decimals;
    call->input = text;
    call->inputLength = static_cast<int32_t>(n);
    if (n == 0 || findChar(text, n, u'.') < 0) call->decimals = 0;
    readPlainNumber(call); // what can't be read stays missing
    call->input = input;
    call->inputLength = inputLength;
    call->decimals = decimals;
    return ZV_OK;
}

int32_t runCurrencyReader(FormatCall *call, const CurrencyRow &row, CurrencyForm form) {
    ExtensionInstance *instance = findInstance(call);
    if (!instance) return ZV_NO_INSTANCE;
    const bool builtNow = !call->localeBlock;
    if (builtNow && buildLocaleBlock(call, instance) != 0) return ZV_UNREADABLE;
    followSnapshot(instance, call->localeBlock, builtNow);
    return readCurrencyAmount(call, row, instance, form);
}

} // namespace zv
