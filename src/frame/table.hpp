// The format table the module publishes: 247 rows and a closing blank row.
#pragma once

#include "zvlocfmt/zvlocfmt.h"

namespace zv {

constexpr int kFormatTableRows = 247;

// The first row; the table ends with a row whose wideEntry is null and whose
// name is all blanks.
const FormatTableRow *formatTable();

} // namespace zv
