// The wide routines behind the rows of the format table, one name for each
// routine. A row whose routine is not built yet names kPending, and its
// byte entry stays null with it.
#pragma once

#include "datefmt/names.hpp"
#include "zvlocfmt/zvlocfmt.h"

namespace zv {

constexpr ZvWideEntry kPending = nullptr;

// ---- informats ---------------------------------------------------------------
constexpr ZvWideEntry readNlDate = kPending;     // @NLDATE, @NLDATEW
constexpr ZvWideEntry readNlDatetime = kPending; // @NLDATM, @NLDATMAP, @NLDATMW
constexpr ZvWideEntry readNlMny = kPending;
constexpr ZvWideEntry readNlMnyI = kPending;
constexpr ZvWideEntry readNlNum = kPending;
constexpr ZvWideEntry readNlNumI = kPending;
constexpr ZvWideEntry readNlPct = kPending;
constexpr ZvWideEntry readNlPctI = kPending;
constexpr ZvWideEntry readNlTime = kPending;     // @NLTIMAP, @NLTIME
constexpr ZvWideEntry readNlStrMon = kPending;
constexpr ZvWideEntry readWeekU = kPending;
constexpr ZvWideEntry readWeekV = kPending;
constexpr ZvWideEntry readWeekW = kPending;

// Per-currency informats and formats, by ISO code.
#include "locale/currency_codes.inc"

#define ZV_DECLARE_CURRENCY_ENTRIES(code)                                                      \
    constexpr ZvWideEntry readNlMni##code = kPending;                                          \
    constexpr ZvWideEntry readNlMnl##code = kPending;                                          \
    constexpr ZvWideEntry writeNlMni##code = kPending;                                         \
    constexpr ZvWideEntry writeNlMnl##code = kPending;
ZV_FORMAT_CURRENCIES(ZV_DECLARE_CURRENCY_ENTRIES)
#undef ZV_DECLARE_CURRENCY_ENTRIES

// ---- formats -------------------------------------------------------------------
constexpr ZvWideEntry writeNlBest = kPending;
constexpr ZvWideEntry writeNlD = kPending;

constexpr ZvWideEntry writeNlDate = kPending;
constexpr ZvWideEntry writeNlDateL = kPending;
constexpr ZvWideEntry writeNlDateM = kPending;
constexpr ZvWideEntry writeNlDateMD = kPending;
constexpr ZvWideEntry writeNlDateMDL = kPending;
constexpr ZvWideEntry writeNlDateMDM = kPending;
constexpr ZvWideEntry writeNlDateMDS = kPending;
constexpr ZvWideEntry writeNlDateMN = kPending;
constexpr ZvWideEntry writeNlDateS = kPending;
constexpr ZvWideEntry writeNlDateW = kPending;
constexpr ZvWideEntry writeNlDateWN = kPending;
constexpr ZvWideEntry writeNlDateYM = kPending;
constexpr ZvWideEntry writeNlDateYML = kPending;
constexpr ZvWideEntry writeNlDateYMM = kPending;
constexpr ZvWideEntry writeNlDateYMS = kPending;
constexpr ZvWideEntry writeNlDateYQ = kPending;
constexpr ZvWideEntry writeNlDateYQL = kPending;
constexpr ZvWideEntry writeNlDateYQM = kPending;
constexpr ZvWideEntry writeNlDateYQS = kPending;
constexpr ZvWideEntry writeNlDateYR = kPending;
constexpr ZvWideEntry writeNlDateYW = kPending;

constexpr ZvWideEntry writeNlDatm = kPending;
constexpr ZvWideEntry writeNlDatmAP = kPending;
constexpr ZvWideEntry writeNlDatmDT = kPending;
constexpr ZvWideEntry writeNlDatmL = kPending;
constexpr ZvWideEntry writeNlDatmM = kPending;
constexpr ZvWideEntry writeNlDatmMD = kPending;
constexpr ZvWideEntry writeNlDatmMDL = kPending;
constexpr ZvWideEntry writeNlDatmMDM = kPending;
constexpr ZvWideEntry writeNlDatmMDS = kPending;
constexpr ZvWideEntry writeNlDatmMN = kPending;
constexpr ZvWideEntry writeNlDatmS = kPending;
constexpr ZvWideEntry writeNlDatmTM = kPending;
constexpr ZvWideEntry writeNlDatmTZ = kPending;
constexpr ZvWideEntry writeNlDatmW = kPending;
constexpr ZvWideEntry writeNlDatmWN = kPending;
constexpr ZvWideEntry writeNlDatmWZ = kPending;
constexpr ZvWideEntry writeNlDatmYM = kPending;
constexpr ZvWideEntry writeNlDatmYML = kPending;
constexpr ZvWideEntry writeNlDatmYMM = kPending;
constexpr ZvWideEntry writeNlDatmYMS = kPending;
constexpr ZvWideEntry writeNlDatmYQ = kPending;
constexpr ZvWideEntry writeNlDatmYQL = kPending;
constexpr ZvWideEntry writeNlDatmYQM = kPending;
constexpr ZvWideEntry writeNlDatmYQS = kPending;
constexpr ZvWideEntry writeNlDatmYR = kPending;
constexpr ZvWideEntry writeNlDatmYW = kPending;
constexpr ZvWideEntry writeNlDatmZ = kPending;

constexpr ZvWideEntry writeNlMny = kPending;
constexpr ZvWideEntry writeNlMnyI = kPending;
constexpr ZvWideEntry writeNlNum = kPending;
constexpr ZvWideEntry writeNlNumI = kPending;
constexpr ZvWideEntry writeNlPct = kPending;
constexpr ZvWideEntry writeNlPctI = kPending;
constexpr ZvWideEntry writeNlPctN = kPending;
constexpr ZvWideEntry writeNlPctP = kPending;

constexpr ZvWideEntry writeNlStrMon = &zv::writeNlStrMonth;
constexpr ZvWideEntry writeNlStrQtr = &zv::writeNlStrQuarter;
constexpr ZvWideEntry writeNlStrWk = &zv::writeNlStrWeekday;

constexpr ZvWideEntry writeNlTimAP = kPending;
constexpr ZvWideEntry writeNlTime = kPending;

constexpr ZvWideEntry writeWeekU = kPending;
constexpr ZvWideEntry writeWeekV = kPending;
constexpr ZvWideEntry writeDtWeekV = kPending;
constexpr ZvWideEntry writeWeekW = kPending;
constexpr ZvWideEntry writeYyWeekU = kPending;
constexpr ZvWideEntry writeYyWeekV = kPending;
constexpr ZvWideEntry writeYyWeekW = kPending;

} // namespace zv
