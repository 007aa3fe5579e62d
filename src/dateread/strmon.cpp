// @NLSTRMON: the name of a month in the locale's language back into its
// number. The names are those that NLSTRMON writes; no English fallback.
#include <algorithm>
#include <cstdint>

#include "datefmt/names.hpp"
#include "dateread/weekread.hpp"
#include "frame/frame.hpp"
#include "locale/block.hpp"
#include "wide/wide.hpp"

namespace zv {

namespace {

// True when the item, folded to lower case, begins the folded text. The text
// counts `limit` units, of which `folded` holds the first (at most an item's
// room, which is all a name can need).
bool nameBegins(const LocaleItem &item, const ZvChar *folded, int64_t limit) {
    int64_t itemLength = item.length;
    itemLength = std::max<int64_t>(itemLength, 0);
    if (itemLength > ZV_ITEM_TEXT_UNITS) itemLength = ZV_ITEM_TEXT_UNITS;
    if (std::min(itemLength, limit) != itemLength) return false;
    ZvChar name[ZV_ITEM_TEXT_UNITS];
    std::copy(item.text, item.text + itemLength, name);
    foldLower(name, itemLength);
    return std::equal(name, name + itemLength, folded);
}

} // namespace

int32_t readNlStrMonth(FormatCall *call, void *) {
    const ZvChar *text = static_cast<const ZvChar *>(call->input);
    int64_t length = text && call->inputLength > 0 ? lengthWithoutTrailingBlanks(text, call->inputLength) : 0;
    const int64_t limit = std::min<int64_t>(call->fieldLimit, length);

    ExtensionInstance *instance = findInstance(call);
    if (!instance) return ZV_NO_INSTANCE;
    if (call->flags & ZV_FLAG_CHECK_LIMITS) {
        if (call->width < 1) return ZV_WIDTH_TOO_SMALL;
        if (call->width > kNameWidthLimit) return ZV_WIDTH_TOO_LARGE;
        if (call->decimals < 0) return ZV_DECIMALS_TOO_SMALL;
        if (call->decimals > kNameDecimalsLimit) return ZV_DECIMALS_TOO_LARGE;
    }
    double *out = static_cast<double *>(call->output);
    if (!call->localeBlock && buildLocaleBlock(call, instance) != 0) {
        *out = missingValue();
        return ZV_OK;
    }

    // No name is longer than an item holds, so the text is folded only as far.
    ZvChar folded[ZV_ITEM_TEXT_UNITS];
    const int64_t taken = std::clamp<int64_t>(limit, 0, ZV_ITEM_TEXT_UNITS);
    if (taken > 0) std::copy(text, text + taken, folded);
    foldLower(folded, taken);

    const LocaleBlock *block = call->localeBlock;
    for (int first : {kItemMonthAbbrOther, kItemMonthFullOther}) {
        for (int month = 0; month < kMonthNames; ++month) {
            if (nameBegins(block->items[first + month], folded, limit)) {
                *out = static_cast<double>(month + 1);
                return ZV_OK;
            }
        }
    }
    *out = missingValue();
    return ZV_OK;
}

} // namespace zv
