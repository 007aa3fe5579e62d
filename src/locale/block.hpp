// The locale block: a locale's 189 raw texts made ready for the routines,
// with the widths of names and patterns in the host encoding and the six
// number contexts.
#pragma once

#include <cstdint>

#include "zvlocfmt/zvlocfmt.h"

namespace zv {

// Item numbers the routines name. Where a locale gives two patterns for one
// form, the first choice has the plain name and the second ends in Second.
enum LocaleItemId : int {
    kItemLanguage = 2,
    kItemCalendar = 5,
    kItemDateOrder = 6,
    // %-patterns; one named ...Second is the second choice, tried when the
    // first does not fit.
    kItemDate = 28, kItemDateSecond = 29, // the first is what %x stands for
    kItemDateMedium = 30, kItemDateLong = 31,
    kItemDateWeekday = 32, kItemDateWeekdaySecond = 33,
    kItemYearMonth = 34, kItemYearMonthSecond = 35,
    kItemMonthDay = 36, kItemMonthDaySecond = 37,
    kItemYear = 38, kItemYearSecond = 39,
    kItemYearQuarter = 40, kItemYearQuarterSecond = 41,
    kItemYearWeek = 42, kItemYearWeekSecond = 43,
    kItemDatetimeAmPm = 44, kItemDatetimeAmPmSecond = 45,
    kItemDatetime = 46, kItemDatetimeSecond = 47,
    kItemDatetimeMedium = 48, kItemDatetimeLong = 49,
    kItemDatetimeWeekday = 50, kItemDatetimeWeekdaySecond = 51,
    kItemTimeAmPm = 52, kItemTime = 53, // the second is what %X stands for
    kItemFirstPattern = kItemDate, kItemLastPattern = 57, // the patterns that get a maxWidth
    kItemDateBeforeTime = 58, // starts with %x when the date goes before the time
    // Lists of names, each as long as its count below.
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
    kItemMoneyDecimalSeparator = 157,
    kItemMoneyGroupSeparator = 158,
    kItemMoneyGrouping = 159,
    kItemMoneyPositiveSign = 160,
    kItemMoneyNegativeSign = 161,
    kItemIntlFractionDigits = 162,
    kItemFractionDigits = 163,
    kItemMoneyPlacements = 164, // the first of six placement figures
    kItemMoneyContext = 170,    // NLMNY
    kItemIntlMoneyContext = 171, // NLMNYI
    kItemDecimalSeparator = 172,
    kItemGroupSeparator = 173,
    kItemGrouping = 174,
    kItemPositiveSign = 175,
    kItemNegativeSign = 176,
    kItemNumberPlacements = 177, // the first of six placement figures
    kItemNumberContext = 183,      // NLNUM
    kItemFixedNumberContext = 184, // NLNUMI
    kItemPercentContext = 185,     // NLPCT
    kItemFixedPercentContext = 186, // NLPCTI
};

// The six placement figures stand in this order from their first item.
constexpr int kPositiveSymbolPrecedes = 0;
constexpr int kPositiveSymbolSpaced = 1;
constexpr int kNegativeSymbolPrecedes = 2;
constexpr int kNegativeSymbolSpaced = 3;
constexpr int kPositiveSignPosition = 4;
constexpr int kNegativeSignPosition = 5;

// Units in use of a context's two-unit mark (a separator or a sign): 0, 1
// or 2.
inline int markUnits(const ZvChar *mark) { return mark[0] == 0 ? 0 : (mark[1] == 0 ? 1 : 2); }

// Room for a context's symbol, in units.
constexpr int64_t kSymbolRoom = sizeof NumberContext::symbol / sizeof(ZvChar);

// Units in use of a context's symbol.
inline int64_t symbolUnits(const NumberContext &context) {
    int64_t n = 0;
    while (n < kSymbolRoom && context.symbol[n]) ++n;
    return n;
}

// Lengths of the name lists.
constexpr int kMonthNames = 12;
constexpr int kWeekdayNames = 7;
constexpr int kQuarterNames = 4;

// The status when the call names no locale at all.
constexpr int32_t kNoLocale = static_cast<int32_t>(0x803fe800u);

// Fills call->localeBlock from the call's locale, allocating it from the
// services' formatPool when the call has none. 0, ZV_NO_MEMORY, or the
// status of the locale's text table.
int32_t buildLocaleBlock(FormatCall *call, ExtensionInstance *instance);

// The context of one of the six context items, kItemMoneyContext to
// kItemFixedPercentContext.
inline NumberContext *contextOf(LocaleBlock *block, int item) {
    return block->items[item].numberContext;
}

} // namespace zv
