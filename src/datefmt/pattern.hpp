// The date pattern engine: writes a date, a datetime or a time through a
// locale pattern of % directives into a blank field.
#pragma once

#include <cstdint>

#include "zvlocfmt/zvlocfmt.h"

namespace zv {

// Statuses of the engine.
constexpr int32_t kPatternFits = 0;      // the text stands in the field; *fieldWidth is its length
constexpr int32_t kPatternTooLong = 1;   // the field holds the text's beginning
constexpr int32_t kPatternEmpty = -1;    // patternLength 0, nothing written
constexpr int32_t kPatternInvalid = -2;  // an invalid directive, the field untouched
constexpr int32_t kPatternNoValue = -3;  // the value is missing or out of range

constexpr int kPatternUnits = 512;

// *fieldWidth: the width in (negative: right-justified at its absolute
// value); on kPatternFits the text's length.
int32_t writeDatePattern(ZvChar *output, int *fieldWidth, const ZvChar *pattern, int64_t patternLength,
                         double dayCount, const LocaleBlock *block);
int32_t writeDatetimePattern(ZvChar *output, int *fieldWidth, const ZvChar *pattern,
                             int64_t patternLength, double secondCount, int decimals,
                             const LocaleBlock *block, HostTimeZone *timeZone);
int32_t writeTimePattern(ZvChar *output, int *fieldWidth, const ZvChar *pattern, int64_t patternLength,
                         double seconds, int decimals, const LocaleBlock *block);
int32_t expandPattern(double day, double hour, double minute, double second, const ZvChar *pattern,
                      int64_t patternLength, ZvChar *output, int *fieldWidth, int decimals,
                      const LocaleBlock *block, HostTimeZone *timeZone);

// A number in digits: pad 0 as many as it has; '0' exactly `width` digits
// from the right; ' ' the same with leading zeros as blanks but the last.
int writeDigits(int64_t value, ZvChar *target, int width, ZvChar pad);

} // namespace zv
