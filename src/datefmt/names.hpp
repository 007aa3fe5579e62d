// Names of months, quarters and weekdays from a number.
#pragma once

#include "zvlocfmt/zvlocfmt.h"

namespace zv {

// Limits of the name formats and of @NLSTRMON, checked when the call asks.
constexpr int32_t kNameWidthLimit = 200;
constexpr int32_t kNameDecimalsLimit = 3;

int32_t writeNlStrMonth(FormatCall *call, void *opaque);   // NLSTRMON
int32_t writeNlStrQuarter(FormatCall *call, void *opaque); // NLSTRQTR
int32_t writeNlStrWeekday(FormatCall *call, void *opaque); // NLSTRWK

} // namespace zv
