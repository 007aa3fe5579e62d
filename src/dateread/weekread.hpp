// The week informats @WEEKU, @WEEKV and @WEEKW, and @NLSTRMON, which reads
// a locale's month name back into its number.
#pragma once

#include <cstdint>

#include "datefmt/calendar.hpp"
#include "zvlocfmt/zvlocfmt.h"

namespace zv {

// The year cut-off of the week informats when the host has none set.
constexpr int64_t kWeekYearCutoff = 1960;

// Splits a week text into year, week and day and gives the day count of that
// day in *cutoffInOut, which holds the two-digit-year cut-off on entry.
// `letter` is the wide text "U", "V" or "W". 0 on success; 0x80000000 for a
// text without "W", -1 for a character that isn't a digit, 1 for numbers out
// of their range. On failure *cutoffInOut is left as it was.
int32_t readWeekText(const ZvChar *text, int64_t length, const ZvChar *letter,
                     double *cutoffInOut);
int32_t readWeekText(const ZvChar *text, int64_t length, WeekMode mode, double *cutoffInOut);

// @WEEKU, @WEEKV, @WEEKW: 0 with the day count (or a missing value for a day
// outside the calendar), 1 for a blank text, 0x80000000 otherwise with the
// cut-off in the double at output.
int32_t readWeekU(FormatCall *call, void *opaque);
int32_t readWeekV(FormatCall *call, void *opaque);
int32_t readWeekW(FormatCall *call, void *opaque);

// @NLSTRMON: 1.0 to 12.0, or the missing mark when no month name begins
// the text; -1 without the instance; 2 to 5 for refused limits.
int32_t readNlStrMonth(FormatCall *call, void *opaque);

} // namespace zv
