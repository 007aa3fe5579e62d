// Numbers, percentages and money in: the readers that turn a locale's way of
// writing a number into the plain way and let the host parse the result, and
// the per-currency informats that cut a currency's code or symbol out first.
#pragma once

#include <cstdint>

#include "locale/currency.hpp"
#include "numfmt/numfmt.hpp"
#include "zvlocfmt/zvlocfmt.h"

namespace zv {

// The most text a reader looks at, in UTF-16 units.
constexpr int kReadUnits = 32;

// ---- plain readers -------------------------------------------------------------
// Both read `input`, `inputLength`, `width` and `decimals` of the call and put
// the value in the double at `output`. 0, a validation code (2..5), the host's
// parse status, or 999 (percent: parentheses or a sign with nothing in them).
int32_t readPlainNumber(FormatCall *call);
int32_t readPlainPercent(FormatCall *call);

// ---- locale readers ----------------------------------------------------------------
// `length` units of `input`, read by the number context of `item`. The plain
// reader's result, or -1 for text the reader refuses.
int32_t readLocaleNumber(int64_t length, LocaleBlock *block, int item, FormatCall *call);
int32_t readLocaleMoney(int64_t length, LocaleBlock *block, int item, FormatCall *call);
int32_t readLocalePercent(int64_t length, LocaleBlock *block, int item, FormatCall *call);

// The locale's decimal and group separators turned into '.' and ',' in
// `text` (at most kReadUnits units); the length may shrink. -1 when the text
// stands between apostrophes under a one-unit group separator, else 0.
int32_t translateSeparators(ZvChar *text, int64_t *length, const NumberContext &context);

// ---- informat routines -------------------------------------------------------------
int32_t readNlNum(FormatCall *call, void *opaque);
int32_t readNlNumI(FormatCall *call, void *opaque);
int32_t readNlMny(FormatCall *call, void *opaque);
int32_t readNlMnyI(FormatCall *call, void *opaque);
int32_t readNlPct(FormatCall *call, void *opaque);
int32_t readNlPctI(FormatCall *call, void *opaque);

// ---- per-currency informats ----------------------------------------------------------
// An amount with the row's code (CurrencyForm::Code, @NLMNI<code>) or symbol
// (CurrencyForm::Symbol, @NLMNL<code>) in the shape of the locale's own money.
// 0 once past the empty-text test, whatever the text held; 1 for empty text or
// a monetary record that can't be made.
int32_t readCurrencyAmount(FormatCall *call, const CurrencyRow &row, ExtensionInstance *instance,
                           CurrencyForm form);

// An informat member's whole routine: instance, block (and snapshot), core.
// -1 without an instance; 1 when no locale block can be built.
int32_t runCurrencyReader(FormatCall *call, const CurrencyRow &row, CurrencyForm form);

} // namespace zv
