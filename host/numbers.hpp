// The reference host's number services: the text behind HostLocale's
// formatNumber, parseDouble and parseInteger and HostAnchor's numberFormatter
// and decimalExponent.
//
// Contract of formatNumberText (all forms are right-justified in `width`
// units, with blanks in front; digits are ASCII, the point is '.', a negative
// value has '-' in front of its first digit):
//
//   flags 0x1000 (plain): the value with `decimals` places. When that does
//     not fit the width: fewer decimals, down to none; then E-notation with as
//     many mantissa digits as fit ("1.5E+12", "-2E-7"); then `width` stars.
//     Every form other than the one asked for answers kNumberNotPlain.
//   flags 0x21000 (grouped): as plain, with ',' between groups of three
//     integer digits. When the grouped text doesn't fit, the plain road runs,
//     and a text that then fits as asked answers kNumberUngrouped.
//   flags 0x800 (best fit): the form, plain or E-notation, that shows the most
//     significant digits in `width` (15 at most), trailing fraction zeros
//     dropped; stars
//     and kNumberNotPlain when nothing fits. `decimals` isn't read.
//
//   A missing value writes its mark ('.', a letter or '_') in the last place.
//   NaN and the infinities write stars with kNumberNotPlain. Rounding is
//   correct and takes halves away from zero (2.5 -> 3, -0.125 -> -0.13).
//   Width below 1, a null target or unknown flags: kNumberBadRequest, nothing
//   written. A capacity below the width writes the first `capacity` units and
//   answers ZV_TARGET_TOO_SMALL. `produced` gets the units written; the value
//   it brings in isn't read.
//
// parseDoubleText reads blanks, a sign, digits with one '.', an exponent
// ('E' or 'e', a sign, digits) and blanks; '.' alone (between blanks) is the
// plain missing value. parseIntegerText reads blanks, a sign, digits and
// blanks. `used` gets the units read, trailing blanks included; a text with
// anything else, or a number out of range, answers kNumberUnreadable.
#pragma once

#include <cstdint>

#include "zvlocfmt/zvlocfmt.h"

namespace zvhost {

constexpr int32_t kNumberNotPlain = static_cast<int32_t>(0x803FE816u);
constexpr int32_t kNumberUngrouped = static_cast<int32_t>(0x803FE85Bu);
constexpr int32_t kNumberBadRequest = static_cast<int32_t>(0x803FE80Du);
constexpr int32_t kNumberUnreadable = static_cast<int32_t>(0x803FE80Fu);

int32_t formatNumberText(double value, int32_t width, int32_t decimals, uint32_t flags,
                         ZvChar *target, int64_t capacity, int64_t *produced);

int32_t parseDoubleText(const ZvChar *text, int64_t length, double *value, int64_t *used);

int32_t parseIntegerText(const ZvChar *text, int64_t length, int64_t *value, int64_t *used);

// The decimal exponent of |value| once rounded to `digits` significant digits
// (at least 1): 9.9996 at 4 digits is 10.00, exponent 1. 0 for zero and for
// values that aren't finite.
int32_t decimalExponent(double value, int32_t digits);

} // namespace zvhost
