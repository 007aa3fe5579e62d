// The wide routines behind the rows of the format table, one name for each
// routine.
#pragma once

#include "datefmt/clock.hpp"
#include "datefmt/ladders.hpp"
#include "datefmt/names.hpp"
#include "dateread/dateread.hpp"
#include "dateread/weekread.hpp"
#include "numfmt/numfmt.hpp"
#include "numread/numread.hpp"
#include "zvlocfmt/zvlocfmt.h"

namespace zv::entry {

// ---- informats ---------------------------------------------------------------
constexpr ZvWideEntry readNlDate = &zv::readNlDate;         // @NLDATE, @NLDATEW
constexpr ZvWideEntry readNlDatetime = &zv::readNlDatetime; // @NLDATM, @NLDATMAP, @NLDATMW
constexpr ZvWideEntry readNlMny = &zv::readNlMny;
constexpr ZvWideEntry readNlMnyI = &zv::readNlMnyI;
constexpr ZvWideEntry readNlNum = &zv::readNlNum;
constexpr ZvWideEntry readNlNumI = &zv::readNlNumI;
constexpr ZvWideEntry readNlPct = &zv::readNlPct;
constexpr ZvWideEntry readNlPctI = &zv::readNlPctI;
constexpr ZvWideEntry readNlTime = &zv::readNlTime;         // @NLTIMAP, @NLTIME
constexpr ZvWideEntry readNlStrMon = &zv::readNlStrMonth;
constexpr ZvWideEntry readWeekU = &zv::readWeekU;
constexpr ZvWideEntry readWeekV = &zv::readWeekV;
constexpr ZvWideEntry readWeekW = &zv::readWeekW;

// Per-currency informats and formats, by ISO code.
#include "locale/currency_codes.inc"

#define ZV_DECLARE_CURRENCY_ENTRIES(code)                                                      \
    constexpr ZvWideEntry readNlMni##code =                                                    \
        &zv::currencyMember<zv::runCurrencyReader, &zv::currency##code, zv::CurrencyForm::Code>;   \
    constexpr ZvWideEntry readNlMnl##code =                                                    \
        &zv::currencyMember<zv::runCurrencyReader, &zv::currency##code, zv::CurrencyForm::Symbol>; \
    constexpr ZvWideEntry writeNlMni##code =                                                   \
        &zv::currencyMember<zv::runCurrencyMember, &zv::currency##code, zv::CurrencyForm::Code>;   \
    constexpr ZvWideEntry writeNlMnl##code =                                                   \
        &zv::currencyMember<zv::runCurrencyMember, &zv::currency##code, zv::CurrencyForm::Symbol>;
ZV_FORMAT_CURRENCIES(ZV_DECLARE_CURRENCY_ENTRIES)
#undef ZV_DECLARE_CURRENCY_ENTRIES

// ---- formats -------------------------------------------------------------------
constexpr ZvWideEntry writeNlBest = &zv::writeNlBest;
constexpr ZvWideEntry writeNlD = &zv::writeNlD;

constexpr ZvWideEntry writeNlDate = &zv::writeNlDate;
constexpr ZvWideEntry writeNlDateL = &zv::writeNlDateL;
constexpr ZvWideEntry writeNlDateM = &zv::writeNlDateM;
constexpr ZvWideEntry writeNlDateMD = &zv::writeNlDateMD;
constexpr ZvWideEntry writeNlDateMDL = &zv::writeNlDateMDL;
constexpr ZvWideEntry writeNlDateMDM = &zv::writeNlDateMDM;
constexpr ZvWideEntry writeNlDateMDS = &zv::writeNlDateMDS;
constexpr ZvWideEntry writeNlDateMN = &zv::writeNlDateMN;
constexpr ZvWideEntry writeNlDateS = &zv::writeNlDateS;
constexpr ZvWideEntry writeNlDateW = &zv::writeNlDateW;
constexpr ZvWideEntry writeNlDateWN = &zv::writeNlDateWN;
constexpr ZvWideEntry writeNlDateYM = &zv::writeNlDateYM;
constexpr ZvWideEntry writeNlDateYML = &zv::writeNlDateYML;
constexpr ZvWideEntry writeNlDateYMM = &zv::writeNlDateYMM;
constexpr ZvWideEntry writeNlDateYMS = &zv::writeNlDateYMS;
constexpr ZvWideEntry writeNlDateYQ = &zv::writeNlDateYQ;
constexpr ZvWideEntry writeNlDateYQL = &zv::writeNlDateYQL;
constexpr ZvWideEntry writeNlDateYQM = &zv::writeNlDateYQM;
constexpr ZvWideEntry writeNlDateYQS = &zv::writeNlDateYQS;
constexpr ZvWideEntry writeNlDateYR = &zv::writeNlDateYR;
constexpr ZvWideEntry writeNlDateYW = &zv::writeNlDateYW;

constexpr ZvWideEntry writeNlDatm = &zv::writeNlDatm;
constexpr ZvWideEntry writeNlDatmAP = &zv::writeNlDatmAP;
constexpr ZvWideEntry writeNlDatmDT = &zv::writeNlDatmDT;
constexpr ZvWideEntry writeNlDatmL = &zv::writeNlDatmL;
constexpr ZvWideEntry writeNlDatmM = &zv::writeNlDatmM;
constexpr ZvWideEntry writeNlDatmMD = &zv::writeNlDatmMD;
constexpr ZvWideEntry writeNlDatmMDL = &zv::writeNlDatmMDL;
constexpr ZvWideEntry writeNlDatmMDM = &zv::writeNlDatmMDM;
constexpr ZvWideEntry writeNlDatmMDS = &zv::writeNlDatmMDS;
constexpr ZvWideEntry writeNlDatmMN = &zv::writeNlDatmMN;
constexpr ZvWideEntry writeNlDatmS = &zv::writeNlDatmS;
constexpr ZvWideEntry writeNlDatmTM = &zv::writeNlDatmTM;
constexpr ZvWideEntry writeNlDatmTZ = &zv::writeNlDatmTZ;
constexpr ZvWideEntry writeNlDatmW = &zv::writeNlDatmW;
constexpr ZvWideEntry writeNlDatmWN = &zv::writeNlDatmWN;
constexpr ZvWideEntry writeNlDatmWZ = &zv::writeNlDatmWZ;
constexpr ZvWideEntry writeNlDatmYM = &zv::writeNlDatmYM;
constexpr ZvWideEntry writeNlDatmYML = &zv::writeNlDatmYML;
constexpr ZvWideEntry writeNlDatmYMM = &zv::writeNlDatmYMM;
constexpr ZvWideEntry writeNlDatmYMS = &zv::writeNlDatmYMS;
constexpr ZvWideEntry writeNlDatmYQ = &zv::writeNlDatmYQ;
constexpr ZvWideEntry writeNlDatmYQL = &zv::writeNlDatmYQL;
constexpr ZvWideEntry writeNlDatmYQM = &zv::writeNlDatmYQM;
constexpr ZvWideEntry writeNlDatmYQS = &zv::writeNlDatmYQS;
constexpr ZvWideEntry writeNlDatmYR = &zv::writeNlDatmYR;
constexpr ZvWideEntry writeNlDatmYW = &zv::writeNlDatmYW;
constexpr ZvWideEntry writeNlDatmZ = &zv::writeNlDatmZ;

constexpr ZvWideEntry writeNlMny = &zv::writeNlMny;
constexpr ZvWideEntry writeNlMnyI = &zv::writeNlMnyI;
constexpr ZvWideEntry writeNlNum = &zv::writeNlNum;
constexpr ZvWideEntry writeNlNumI = &zv::writeNlNumI;
constexpr ZvWideEntry writeNlPct = &zv::writeNlPct;
constexpr ZvWideEntry writeNlPctI = &zv::writeNlPctI;
constexpr ZvWideEntry writeNlPctN = &zv::writeNlPctN;
constexpr ZvWideEntry writeNlPctP = &zv::writeNlPctP;

constexpr ZvWideEntry writeNlStrMon = &zv::writeNlStrMonth;
constexpr ZvWideEntry writeNlStrQtr = &zv::writeNlStrQuarter;
constexpr ZvWideEntry writeNlStrWk = &zv::writeNlStrWeekday;

constexpr ZvWideEntry writeNlTimAP = &zv::writeNlTimAP;
constexpr ZvWideEntry writeNlTime = &zv::writeNlTime;

constexpr ZvWideEntry writeWeekU = &zv::writeWeekU;
constexpr ZvWideEntry writeWeekV = &zv::writeWeekV;
constexpr ZvWideEntry writeDtWeekV = &zv::writeDtWeekV;
constexpr ZvWideEntry writeWeekW = &zv::writeWeekW;
constexpr ZvWideEntry writeYyWeekU = &zv::writeYyWeekU;
constexpr ZvWideEntry writeYyWeekV = &zv::writeYyWeekV;
constexpr ZvWideEntry writeYyWeekW = &zv::writeYyWeekW;

} // namespace zv::entry
