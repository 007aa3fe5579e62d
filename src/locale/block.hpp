// The locale block: a locale's 189 raw texts made ready for the routines,
// with the widths of names and patterns in the host encoding and the six
// number contexts.
#pragma once

#include <cstdint>

#include "zvlocfmt/zvlocfmt.h"

namespace zv {

// Item numbers the routines name.
enum LocaleItemId : int {
    kItemLanguage = 2,
    kItemCalendar = 5,
    kItemDateOrder = 6,
    kItemMonthAbbr = 59,
    kItemMonthFull = 71,
    kItemMonthAbbrOther = 83,
    kItemMonthFullOther = 95,
    kItemWeekdayAbbr = 107,
    kItemWeekdayFull = 114,
    kItemWeekdayAbbrOther = 121,
    kItemWeekdayFullOther = 128,
    kItemQuarterAbbr = 135,
    kItemQuarterFull = 139,
    kItemQuarterAbbrOther = 143,
    kItemQuarterFullOther = 147,
    kItemAm = 151,
    kItemPm = 152,
    kItemDateSeparator = 153,
    kItemIntlCurrencySymbol = 155,
    kItemCurrencySymbol = 156,
    kItemDecimalSeparator = 172,
};

// The status when the call names no locale at all.
constexpr int32_t kNoLocale = static_cast<int32_t>(0x803fe800u);

// Fills call->localeBlock from the call's locale, allocating it from the
// services' formatPool when the call has none. 0, ZV_NO_MEMORY, or the
// status of the locale's text table.
int32_t buildLocaleBlock(FormatCall *call, ExtensionInstance *instance);

// The context of item 170, 171, 183, 184, 185 or 186.
inline NumberContext *contextOf(LocaleBlock *block, int item) {
    return block->items[item].numberContext;
}

} // namespace zv
