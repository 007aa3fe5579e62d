// Helpers the number readers share.
#pragma once

#include <cstdint>

#include "zvlocfmt/zvlocfmt.h"

namespace zv {

// With bit 0 of flags set: width 1..32 and decimals 0..31, else 2, 3, 4 or 5
// in *status and false.
bool checkReadLimits(const FormatCall *call, int32_t *status);

// The double at output, when there is one.
void storeValue(FormatCall *call, double value);

// The locale whose parseDouble reads plain numbers: the host's current one.
HostLocale *currentHostLocale(const FormatCall *call);

} // namespace zv
