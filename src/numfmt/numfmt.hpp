// Numbers, percentages and money out: the locale number engine, its format
// families, the per-currency members and the formats that let the field
// decide (NLBEST, NLD).
#pragma once

#include <cstdint>

#include "frame/frame.hpp"
#include "locale/currency.hpp"
#include "zvlocfmt/zvlocfmt.h"

namespace zv {

// The limits of the NLNUM, NLPCT and NLMNY families and their informats, as
// they check them (NLPCT's table row asks for 4 places at least).
constexpr int32_t kNumberMostWidth = 32;
constexpr int32_t kNumberMostDecimals = 31;
constexpr FieldLimits kNumberLimits{1, kNumberMostWidth, kNumberMostDecimals};
// A percentage goes to the engine scaled by this.
constexpr double kPercentScale = 100.0;

// ---- the engine ----------------------------------------------------------------

// The 20 sign-placement patterns, indexed by
// (symbolPrecedes + 2 * symbolSpaced) * 5 + signPosition. Commands: '(' and
// ')' for negatives only, blank, 'V' the number, '$' the symbol, '-' the sign.
extern const ZvChar *const kSignPatterns[20];

// The pattern for a trio of placement integers. Figures outside their range
// are read as: precedes and spaced nonzero -> 1; a sign position outside 0..4
// -> 1 (the sign in front of everything).
const ZvChar *signPattern(int32_t symbolPrecedes, int32_t symbolSpaced, int32_t signPosition);

// Writes the double at call->input right-aligned in `width` places by the
// context's rules. -1 when itemLength is 0 (nothing written), else 0.
int32_t renderLocaleNumber(int32_t itemLength, FormatCall *call, const NumberContext *context,
                           ExtensionInstance *instance);

// ---- fixed forms (the host's status comes back) ------------------------------------
int32_t fixedGroupedNumber(FormatCall *call, ExtensionInstance *instance);
int32_t fixedPlainNumber(FormatCall *call);
int32_t fixedPercent(FormatCall *call);
int32_t fixedPercentMinus(FormatCall *call);
int32_t fixedMoney(FormatCall *call, ExtensionInstance *instance);

// ---- format routines ---------------------------------------------------------------
int32_t writeNlNum(FormatCall *call, void *opaque);
int32_t writeNlNumI(FormatCall *call, void *opaque);
int32_t writeNlPct(FormatCall *call, void *opaque);
int32_t writeNlPctI(FormatCall *call, void *opaque);
int32_t writeNlPctN(FormatCall *call, void *opaque);
int32_t writeNlPctP(FormatCall *call, void *opaque);
int32_t writeNlMny(FormatCall *call, void *opaque);
int32_t writeNlMnyI(FormatCall *call, void *opaque);
int32_t writeNlBest(FormatCall *call, void *opaque);
int32_t writeNlD(FormatCall *call, void *opaque);

// The two helpers behind NLBEST and NLD; the host's status comes back.
int32_t writeBestFit(FormatCall *call);
int32_t writeSignificant(FormatCall *call, ExtensionInstance *instance);

// ---- per-currency members --------------------------------------------------------

enum class CurrencyForm { Code, Symbol }; // NLMNI<code>, NLMNL<code>

// The record of the locale's own money, made from itemSnapshot at first use;
// shaped like a currency row.
struct MonetaryRecord {
    CurrencyRow row;
};

// Fills instance->monetaryRecord when it is null. False when it can't be
// allocated.
bool ensureMonetaryRecord(FormatCall *call, ExtensionInstance *instance);

// The amount at call->input in the field: the locale's money dress with the
// row's code or symbol, or at last the host's plain number.
void renderCurrencyAmount(FormatCall *call, const CurrencyRow &row, ExtensionInstance *instance,
                          CurrencyForm form);

// After a member has made sure of a locale block: the snapshot follows each
// block built in the call (`builtNow`), and a record about to be made from it
// takes the block at hand rather than an unfilled snapshot.
void followSnapshot(ExtensionInstance *instance, const LocaleBlock *block, bool builtNow);

// A format member's whole routine: instance, block (and snapshot), core.
int32_t runCurrencyMember(FormatCall *call, const CurrencyRow &row, CurrencyForm form);

// A member of the per-currency formats (Run is runCurrencyMember) or
// informats (runCurrencyReader), bound to its row and form.
template <int32_t (*Run)(FormatCall *, const CurrencyRow &, CurrencyForm), const CurrencyRow &(*Row)(),
          CurrencyForm Form>
int32_t currencyMember(FormatCall *call, void *) {
    return Run(call, Row(), Form);
}

} // namespace zv
