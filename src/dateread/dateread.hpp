// Reading dates, datetimes and times: the reader of a locale's %-patterns,
// the reader of the fixed date pattern table, the informats built on both,
// and the guessing routines that walk the ANYDATE rows for a host to bind.
#pragma once

#include <cstdint>

#include "zvlocfmt/zvlocfmt.h"

namespace zv {

// ---- the fixed pattern table ---------------------------------------------------

// One row of the constant date pattern table. Texts are zero-ended.
struct DatePatternRow {
    const ZvChar *name;    // format name, upper case; "ANYDATE" for the guessing rows
    uint32_t minWidth;     // shortest text that selects the row by name
    uint32_t maxWidth;     // longest such text, before 10 more for seconds
    uint32_t defaultWidth; // the format's usual width (data only)
    uint32_t minLength;    // shortest text for which a guess tries the row
    uint32_t maxLength;    // longest such text, before 10 more for seconds
    const ZvChar *kind;    // "DTE" day count, "TME" time, "DTM" second count
    const ZvChar *pattern; // what to read
};

constexpr int kDatePatternRowCount = 148;
extern const DatePatternRow datePatternTable[kDatePatternRowCount];

// Characters more that a row reading seconds admits, for their fraction.
constexpr int64_t kSecondsRoom = 10;
// kSecondsRoom when the row's pattern reads seconds ("%S"), else 0.
int64_t secondsRoomOf(const DatePatternRow &row);
// Where the pair a, b first stands in a zero-ended pattern, or -1.
int64_t firstPair(const ZvChar *pattern, ZvChar a, ZvChar b);

// What a row of the table gave, in *kindOut of readByPattern.
constexpr int32_t kReadNothing = 0;
constexpr int32_t kReadDate = 1;     // a day count
constexpr int32_t kReadTime = 2;     // seconds of a time
constexpr int32_t kReadDatetime = 3; // a second count

// Statuses of the readers.
constexpr int32_t kNoFormFits = 999;
constexpr int32_t kRowWithoutPattern = 1;
constexpr int32_t kDateReadFailed = static_cast<int32_t>(0x80000000u);

// Reads `text` under the rows of `name` (row null: the first row that
// admits the text's length), or under `row` alone when nameLength is 0.
// 0: a row accepted the text (outValue holds the value or the missing mark);
// 1: the row has no pattern; 999: no row accepts the text.
// *kindOut: 0 no value, 1 date, 2 time, 3 datetime.
int32_t readByPattern(const ZvChar *name, int64_t nameLength, const DatePatternRow *row,
                      const ZvChar *text, int64_t textLength, double *outValue, int32_t *kindOut,
                      int32_t normalise);

// The cleaning of a text before the fixed forms: left-justified, a blank
// behind a blank, "-", "/" or ":" taken out, "*" removed; twice. Works in
// place over `length` characters and answers the length of the content.
int64_t cleanDateText(ZvChar *text, int64_t length);

// ---- the locale reader ------------------------------------------------------------

// Reads a date, a time or both out of `text` under one %-pattern of the
// call's locale block. outDate and outTime are preset by the caller and
// written only when there is a value for them.
constexpr int32_t kLocaleFormRead = 0;        // read, or nothing read at all
constexpr int32_t kLocaleFormPartialTime = 2; // a time with hour, minute or second missing
constexpr int32_t kLocaleFormFailed = -1;
int32_t readLocaleForm(FormatCall *call, const ZvChar *text, int64_t textLength,
                       const ZvChar *pattern, int64_t patternLength, double *outDate,
                       double *outTime);

// One locale pattern tried for a date, a datetime or a time, with the range
// checks. 0: value stored; 2: stored, part of a time missing; -3: nothing
// stored. readTimeForm may also pass on a -1 of readLocaleForm.
int32_t readDateForm(FormatCall *call, const ZvChar *text, int64_t textLength,
                     const ZvChar *pattern, int64_t patternLength, double *out);
int32_t readDateTimeForm(FormatCall *call, const ZvChar *text, int64_t textLength,
                         const ZvChar *pattern, int64_t patternLength, double *out);
int32_t readTimeForm(FormatCall *call, const ZvChar *text, int64_t textLength,
                     const ZvChar *pattern, int64_t patternLength, double *out);

// ---- informats ---------------------------------------------------------------------

int32_t readNlDate(FormatCall *call, void *opaque);     // @NLDATE, @NLDATEW
int32_t readNlDatetime(FormatCall *call, void *opaque); // @NLDATM, @NLDATMAP, @NLDATMW
int32_t readNlTime(FormatCall *call, void *opaque);     // @NLTIME, @NLTIMAP

// ---- guessing, without a row in the format table ---------------------------------

// Each walks the ANYDATE rows until one gives a value; always status 0,
// with the missing mark when nothing reads. They differ in what they keep:
// the day, the time of day, or the second count.
int32_t readAnyDate(FormatCall *call, void *opaque);
int32_t readAnyTime(FormatCall *call, void *opaque);
int32_t readAnyDateTime(FormatCall *call, void *opaque);

} // namespace zv
