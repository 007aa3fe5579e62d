// The currency table: 82 rows in order of code. The 40 currencies with
// formats carry the full conventions; for the others only the code and
// symbol are published, and their other fields hold the common defaults.
#include "locale/currency.hpp"

namespace zv {

namespace {

// code, symbol, decimal and group separators, grouping, signs,
// int and local fraction digits, positive precedes/spaced,
// negative precedes/spaced, positive and negative sign positions.
constexpr CurrencyRow kCurrencies[kCurrencyRows] = {
    {u"AED", u"<U062F>.<U0625>.", u".", u",", u"3", u" ", u"-", 3, 3, 1, 1, 1, 1, 1, 2},
    {u"ALL", u"Lek", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"ARS", u"AR$", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"AUD", u"AU$", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"BGN", u"<U043B><U0432>", u",", u" ", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"BHD", u"<U062F>.<U0628>.", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"BOB", u"B$", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"BRL", u"R$", u",", u".", u"3", u" ", u"-", 2, 2, 1, 1, 1, 1, 1, 1},
    {u"BWP", u"Pu", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"BYB", u"<U0420><U0443><U0431>", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"CAD", u"CA$", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"CHF", u"SFr.", u".", u"'", u"3", u" ", u"-", 2, 2, 1, 1, 1, 1, 1, 3},
    {u"CLP", u"Ch$", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"CNY", u"RMB", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"COP", u"C$", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"CRC", u"C", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"CZK", u"K<U010D>", u",", u" ", u"3", u" ", u"-", 4, 4, 0, 1, 1, 1, 1, 1},
    {u"DKK", u"kr", u",", u".", u"3", u" ", u"-", 2, 2, 1, 1, 1, 0, 1, 3},
    {u"DOP", u"RD$", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"DZD", u"<U062F>.<U062C>.", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"EEK", u"kr", u",", u" ", u"3", u" ", u"-", 4, 4, 0, 1, 1, 1, 1, 1},
    {u"EGP", u"<U062C>.<U0645>.", u".", u",", u"3", u" ", u"-", 3, 3, 1, 1, 1, 1, 1, 2},
    {u"EUR", u"<U20AC>", u",", u".", u"3", u" ", u"-", 2, 2, 1, 1, 1, 1, 1, 1},
    {u"GBP", u"<U00A3>", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"GTQ", u"Q", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"HKD", u"HK$", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 0},
    {u"HNL", u"L", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"HRK", u"Kn", u",", u".", u"3", u" ", u"-", 2, 2, 1, 1, 1, 1, 1, 1},
    {u"HUF", u"Ft", u",", u" ", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"IDR", u"Rp", u",", u".", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"ILS", u"<U05E9>\"<U05D7>", u".", u",", u"3", u" ", u"-", 4, 4, 0, 1, 1, 1, 1, 1},
    {u"INR", u"<U20A8>", u".", u",", u"3;2", u" ", u"-", 2, 2, 1, 1, 1, 1, 1, 1},
    {u"IQD", u"<U062F>.<U0639>.", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"IRR", u"<U00A4>", u"<U066B>", u"<U066C>", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"ISK", u"kr.", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"JMD", u"J$", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"JOD", u"<U062F>.<U0623>.", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"JPY", u"<UFFE5>", u".", u",", u"3", u" ", u"-", 0, 0, 1, 0, 1, 0, 1, 1},
    {u"KRW", u"<U20A9>", u".", u",", u"3", u" ", u"-", 0, 0, 1, 0, 1, 0, 1, 1},
    {u"KWD", u"<U062F>.<U0643>.", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"LBP", u"<U0644>.<U0644>.", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"LTL", u"Lt", u",", u".", u"3", u" ", u"-", 4, 4, 0, 1, 1, 1, 1, 1},
    {u"LVL", u"Ls", u",", u" ", u"3", u" ", u"-", 4, 4, 0, 1, 1, 1, 1, 1},
    {u"LYD", u"<U062F>.<U0644>.", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"MAD", u"<U062F>.<U0645>.", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"MKD", u"Den", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"MOP", u"P", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 0},
    {u"MXN", u"MX$", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 0},
    {u"MYR", u"R", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 0},
    {u"NIO", u"$C", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"NOK", u"kr", u",", u" ", u"3", u" ", u"-", 2, 2, 1, 1, 1, 0, 1, 3},
    {u"NZD", u"NZ$", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"OMR", u"<U0631>.<U0639>.", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"PAB", u"B", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"PEN", u"S/", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"PHP", u"Php", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"PLN", u"z<U0142>", u",", u" ", u"3", u" ", u"-", 2, 2, 0, 1, 1, 1, 1, 1},
    {u"PYG", u"G", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"QAR", u"<U0631>.<U0642>.", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"ROL", u"LEI", u",", u".", u"3", u" ", u"-", 4, 4, 0, 0, 1, 0, 1, 1},
    {u"RUB", u"<U0440><U0443><U0431>", u",", u" ", u"3", u" ", u"-", 2, 2, 0, 0, 1, 0, 1, 1},
    {u"RUR", u"<U0440><U002E>", u",", u" ", u"3", u" ", u"-", 2, 2, 0, 0, 1, 0, 1, 1},
    {u"SAR", u"<U0631>.<U0633>.", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"SDD", u"<U062C>.<U0633>.", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"SEK", u"kr", u",", u" ", u"3", u" ", u"-", 2, 2, 0, 1, 0, 1, 1, 1},
    {u"SGD", u"SG$", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 0},
    {u"SKK", u"Sk", u",", u" ", u"3", u" ", u"-", 4, 4, 0, 0, 1, 0, 1, 1},
    {u"SVC", u"C", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"SYP", u"<U0644>.<U0633>.", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"THB", u"<U0E3F>", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 1, 1, 3},
    {u"TND", u"<U062F>.<U062A>.<U200F>", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"TRY", u"YTL", u",", u".", u"3", u" ", u"-", 4, 4, 0, 0, 1, 0, 1, 1},
    {u"TWD", u"NT$", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"UAH", u"<U0433><U0440>", u".", u".", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"USD", u"US$", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 0},
    {u"UYU", u"NU$", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"VEB", u"Bs", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"VND", u"<U20AB>", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"XCD", u"EC$", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"YER", u"<U0631>.<U064A>.", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"ZAR", u"R", u",", u".", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
    {u"ZWD", u"Z$", u".", u",", u"3", u" ", u"-", 2, 2, 1, 0, 1, 0, 1, 1},
};

constexpr int indexOf(const char (&code)[4]) {
    for (int i = 0; i < kCurrencyRows; ++i) {
        const ZvChar *c = kCurrencies[i].code;
        if (c[0] == code[0] && c[1] == code[1] && c[2] == code[2]) return i;
    }
    return -1;
}

} // namespace

const CurrencyRow *currencyTable() { return kCurrencies; }

// Each member routine is bound to its row once, when the program is built:
// the search for the code runs in the compiler, never in a call.
#define ZV_DEFINE_CURRENCY_ROW(code)                                                   \
    const CurrencyRow &currency##code() {                                              \
        constexpr int kRow = indexOf(#code);                                           \
        static_assert(kRow >= 0);                                                      \
        return kCurrencies[kRow];                                                      \
    }
ZV_FORMAT_CURRENCIES(ZV_DEFINE_CURRENCY_ROW)
#undef ZV_DEFINE_CURRENCY_ROW

} // namespace zv
