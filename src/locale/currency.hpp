// The constant table of currencies, keyed by ISO 4217 code, in order of code.
#pragma once

#include <cstdint>

#include "zvlocfmt/zvlocfmt.h"

namespace zv {

struct CurrencyRow {
    const ZvChar *code;
    const ZvChar *symbol; // characters outside ASCII as <Uxxxx>
    const ZvChar *decimalSeparator;
    const ZvChar *groupSeparator;
    const ZvChar *grouping;
    const ZvChar *positiveSign;
    const ZvChar *negativeSign;
    int8_t intFractionDigits;
    int8_t fractionDigits;
    int8_t positiveSymbolPrecedes;
    int8_t positiveSymbolSpaced;
    int8_t negativeSymbolPrecedes;
    int8_t negativeSymbolSpaced;
    int8_t positiveSignPosition;
    int8_t negativeSignPosition;
};

constexpr int kCurrencyRows = 82;

// All rows, in order of code.
const CurrencyRow *currencyTable();

// The row of each currency that has formats, by code: currencyAED() ...
#define ZV_DECLARE_CURRENCY_ROW(code) const CurrencyRow &currency##code();
#include "locale/currency_codes.inc"
ZV_FORMAT_CURRENCIES(ZV_DECLARE_CURRENCY_ROW)
#undef ZV_DECLARE_CURRENCY_ROW

// Writes the text by which the row's currency is shown in its local form:
// the symbol, with its escapes decoded, when the host encoding can show all
// of it, else the ISO code. Returns the length in UTF-16 units. The
// destination has room for 64 units.
int64_t decodeRowSymbol(const CurrencyRow &row, FormatCall *call, ZvChar *destination);

} // namespace zv
