// What the date and datetime formats share: their opening, a try of one
// pattern into the call's field, the measure in host bytes, and the
// numeric forms.
#pragma once

#include <cstdint>

#include "datefmt/calendar.hpp"
#include "frame/frame.hpp"
#include "zvlocfmt/zvlocfmt.h"

namespace zv {

enum class ValueKind { Date, Datetime, Time };

// One call of a date format after its opening.
struct DateCall {
    FormatCall *call;
    ExtensionInstance *instance;
    double value; // a private copy: the caller's double is never touched
    ValueKind kind;
};

// The block of a call that has none. False when it can't be built: the
// field holds stars, *status is 0 and *buildStatus (if given) the failure.
bool buildDateBlock(FormatCall *call, ExtensionInstance *instance, int32_t *status, int32_t *buildStatus);

// The opening of every date format: instance, outputLength, missing mark,
// range, locale block. False when the call is answered: *status holds the
// result. A failed block build leaves stars and sets *buildStatus.
inline bool openDateFormat(FormatCall *call, ValueKind kind, DateCall *out, int32_t *status,
                           int32_t *buildStatus = nullptr) {
    double value = 0;
    ExtensionInstance *instance = nullptr;
    const bool date = kind == ValueKind::Date;
    if (!beginFormat(call, date ? kFirstDay : kFirstSecond, date ? kDayLimit : kSecondLimit, &value, status,
                     &instance))
        return false;
    if (!call->localeBlock && !buildDateBlock(call, instance, status, buildStatus)) return false;
    *out = DateCall{call, instance, value, kind};
    return true;
}

// Runs the engine for one pattern into a field of *fieldWidth units that is
// then placed at the left of the call's field. k: decimals of a datetime or
// time. The engine's status; on 0 the call's field holds the text, on 1 its
// cut beginning (with the zone text at its end when there is one).
int32_t runPattern(const DateCall &d, const ZvChar *pattern, int64_t patternLength, int k, int *fieldWidth);

// The text of the call's output, `units` long, in host bytes: the status of
// the transcoder (0, or ZV_TARGET_TOO_SMALL when it passes `width` bytes).
int32_t measureText(const FormatCall *call, int64_t units);

// Fills the call's field (width units, never past the capacity) with c.
void fillField(FormatCall *call, ZvChar c);
// Takes the leading blanks of the call's field away, moving the text left.
void leftJustifyField(FormatCall *call);
// Writes n units at `at` of the call's output, never past its capacity.
void putAt(FormatCall *call, int64_t at, const ZvChar *text, int64_t n);


// Numeric forms. Positions are 1 to 3, or 0 for a part not shown.
enum class NumericParts { All, MonthYear, MonthDay, Quarter };
int32_t writeNumericForm(const DateCall &d, NumericParts parts);
int32_t writeNumericDate(FormatCall *call, double dayCount, int monthPosition, int dayPosition,
                         int yearPosition, ZvChar separator);
int32_t writeNumericQuarter(FormatCall *call, double dayCount, ZvChar separator);
int32_t writeNumericDatetime(const DateCall &d);

} // namespace zv
