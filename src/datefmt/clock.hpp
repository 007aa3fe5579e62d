// Clock texts built digit by digit, and the time formats on them.
#pragma once

#include "zvlocfmt/zvlocfmt.h"

namespace zv {

// The time at `input` (0 up to a day) as a clock text that loses first its
// decimals, then its seconds, then its minutes; right-justified in width.
int32_t writeClock(FormatCall *call);
// The same with " AM" or " PM" behind it, and the day of the value left out.
int32_t writeClockAmPm(FormatCall *call);
// The time of day of a second count with a two-digit hour.
int32_t writeClockOfDatetime(FormatCall *call);

int32_t writeNlTime(FormatCall *call, void *opaque);  // NLTIME
int32_t writeNlTimAP(FormatCall *call, void *opaque); // NLTIMAP

} // namespace zv
