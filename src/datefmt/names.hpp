// Names of months, quarters and weekdays from a number.
#pragma once

#include "zvlocfmt/zvlocfmt.h"

namespace zv {

int32_t writeNlStrMonth(FormatCall *call, void *opaque);   // NLSTRMON
int32_t writeNlStrQuarter(FormatCall *call, void *opaque); // NLSTRQTR
int32_t writeNlStrWeekday(FormatCall *call, void *opaque); // NLSTRWK

} // namespace zv
