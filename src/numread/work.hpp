// Helpers the number readers share.
#pragma once

#include <cstdint>

#include "zvlocfmt/zvlocfmt.h"

namespace zv {

// The double at output, when there is one.
void storeValue(FormatCall *call, double value);

// The locale whose parseDouble reads plain numbers: the host's current one.
HostLocale *currentHostLocale(const FormatCall *call);

} // namespace zv
