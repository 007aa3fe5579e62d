// Date and datetime formats: the ladders, the plain forms and the partial
// forms.
#pragma once

#include "zvlocfmt/zvlocfmt.h"

namespace zv {

// Ladders.
int32_t writeNlDateL(FormatCall *, void *);
int32_t writeNlDateM(FormatCall *, void *);
int32_t writeNlDateS(FormatCall *, void *);
int32_t writeNlDatmL(FormatCall *, void *);
int32_t writeNlDatmM(FormatCall *, void *);
int32_t writeNlDatmS(FormatCall *, void *);
int32_t writeNlDatmDT(FormatCall *, void *);
int32_t writeNlDateYML(FormatCall *, void *);
int32_t writeNlDateYMM(FormatCall *, void *);
int32_t writeNlDateYMS(FormatCall *, void *);
int32_t writeNlDatmYML(FormatCall *, void *);
int32_t writeNlDatmYMM(FormatCall *, void *);
int32_t writeNlDatmYMS(FormatCall *, void *);
int32_t writeNlDateMDL(FormatCall *, void *);
int32_t writeNlDateMDM(FormatCall *, void *);
int32_t writeNlDateMDS(FormatCall *, void *);
int32_t writeNlDatmMDL(FormatCall *, void *);
int32_t writeNlDatmMDM(FormatCall *, void *);
int32_t writeNlDatmMDS(FormatCall *, void *);
int32_t writeNlDateYQL(FormatCall *, void *);
int32_t writeNlDateYQM(FormatCall *, void *);
int32_t writeNlDateYQS(FormatCall *, void *);
int32_t writeNlDatmYQL(FormatCall *, void *);
int32_t writeNlDatmYQM(FormatCall *, void *);
int32_t writeNlDatmYQS(FormatCall *, void *);
int32_t writeNlDateMN(FormatCall *, void *);
int32_t writeNlDatmMN(FormatCall *, void *);
int32_t writeNlDateW(FormatCall *, void *);
int32_t writeNlDatmW(FormatCall *, void *);
int32_t writeNlDateWN(FormatCall *, void *);
int32_t writeNlDatmWN(FormatCall *, void *);

// Plain forms: two patterns, then the numeric form.
int32_t writeNlDate(FormatCall *, void *);
int32_t writeNlDatm(FormatCall *, void *);
int32_t writeNlDatmAP(FormatCall *, void *);

// Partial forms: two patterns, then stars.
int32_t writeNlDateYM(FormatCall *, void *);
int32_t writeNlDatmYM(FormatCall *, void *);
int32_t writeNlDateMD(FormatCall *, void *);
int32_t writeNlDatmMD(FormatCall *, void *);
int32_t writeNlDateYR(FormatCall *, void *);
int32_t writeNlDatmYR(FormatCall *, void *);
int32_t writeNlDateYQ(FormatCall *, void *);
int32_t writeNlDatmYQ(FormatCall *, void *);
int32_t writeNlDateYW(FormatCall *, void *);
int32_t writeNlDatmYW(FormatCall *, void *);

// Zone forms.
int32_t writeNlDatmZ(FormatCall *, void *);
int32_t writeNlDatmWZ(FormatCall *, void *);
int32_t writeNlDatmTZ(FormatCall *, void *);
int32_t writeNlDatmTM(FormatCall *, void *);

// Week numbers.
int32_t writeWeekU(FormatCall *, void *);
int32_t writeWeekV(FormatCall *, void *);
int32_t writeWeekW(FormatCall *, void *);
int32_t writeDtWeekV(FormatCall *, void *);
int32_t writeYyWeekU(FormatCall *, void *);
int32_t writeYyWeekV(FormatCall *, void *);
int32_t writeYyWeekW(FormatCall *, void *);

} // namespace zv
