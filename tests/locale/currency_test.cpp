// The currency table and how a currency's symbol is shown.
#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <set>
#include <string>

#include "locale/currency.hpp"
#include "zvhost.hpp"

namespace {

// A transcoder that counts its calls and passes them on.
struct Counting {
    HostTranscoder base;
    HostTranscoder *inner;
    int calls = 0;
    static int32_t transcode(HostTranscoder *self, const void *s, int64_t n, void *t, int64_t cap,
                             int64_t *produced, int32_t z) {
        auto *c = reinterpret_cast<Counting *>(self);
        ++c->calls;
        return c->inner->ops->transcode(c->inner, s, n, t, cap, produced, z);
    }
    static void release(HostTranscoder *) {}
    static constexpr HostTranscoderOps ops{&transcode, &release};
    explicit Counting(HostTranscoder *t) : base{&ops, t->encodingId, t->sourceEncodingId}, inner(t) {}
};

std::u16string shown(const zv::CurrencyRow &row, HostTranscoder *t, int *calls = nullptr) {
    Counting counting(t);
    FormatCall c;
    std::memset(&c, 0, sizeof c);
    c.transcoder = &counting.base;
    ZvChar out[64];
    const int64_t n = zv::decodeRowSymbol(row, &c, out);
    if (calls) *calls = counting.calls;
    return std::u16string(out, size_t(n));
}

TEST(CurrencyTable, EightyTwoRowsInOrderOfCode) {
    const zv::CurrencyRow *t = zv::currencyTable();
    std::set<std::u16string> codes;
    for (int i = 0; i < zv::kCurrencyRows; ++i) {
        const std::u16string code(t[i].code);
        ASSERT_EQ(code.size(), 3u) << i;
        if (i > 0) {
            EXPECT_LT(std::u16string(t[i - 1].code), code);
        }
        codes.insert(code);
        EXPECT_EQ(std::u16string(t[i].positiveSign), u" ");
        EXPECT_EQ(std::u16string(t[i].negativeSign), u"-");
        const std::u16string grouping(t[i].grouping);
        EXPECT_EQ(grouping, code == u"INR" ? u"3;2" : u"3") << i;
    }
    EXPECT_EQ(codes.size(), 82u);
}

TEST(CurrencyTable, MembersAreBoundToTheirRows) {
    EXPECT_EQ(std::u16string(zv::currencyAED().code), u"AED");
    EXPECT_EQ(std::u16string(zv::currencyZAR().code), u"ZAR");
    EXPECT_EQ(std::u16string(zv::currencyCHF().symbol), u"SFr.");
    EXPECT_EQ(std::u16string(zv::currencyCHF().groupSeparator), u"'");
    EXPECT_EQ(zv::currencyCHF().negativeSignPosition, 3);
    EXPECT_EQ(std::u16string(zv::currencyILS().symbol), u"<U05E9>\"<U05D7>");
    EXPECT_EQ(zv::currencyJPY().fractionDigits, 0);
    EXPECT_EQ(zv::currencyCZK().intFractionDigits, 4);
    EXPECT_EQ(zv::currencySEK().positiveSymbolPrecedes, 0);
    EXPECT_EQ(zv::currencySEK().negativeSymbolPrecedes, 0);
    EXPECT_EQ(std::u16string(zv::currencyBGN().groupSeparator), u" ");
}

TEST(CurrencyTable, RowsWithoutFormatsKeepTheirSymbols) {
    const zv::CurrencyRow *t = zv::currencyTable();
    std::map<std::u16string, const zv::CurrencyRow *> byCode;
    for (int i = 0; i < zv::kCurrencyRows; ++i) byCode[t[i].code] = &t[i];
    EXPECT_EQ(std::u16string(byCode[u"TND"]->symbol), u"<U062F>.<U062A>.<U200F>");
    EXPECT_EQ(std::u16string(byCode[u"IRR"]->decimalSeparator), u"<U066B>");
    EXPECT_EQ(std::u16string(byCode[u"IRR"]->groupSeparator), u"<U066C>");
    EXPECT_EQ(std::u16string(byCode[u"UAH"]->decimalSeparator), u".");
    EXPECT_EQ(std::u16string(byCode[u"UAH"]->groupSeparator), u".");
    EXPECT_EQ(std::u16string(byCode[u"NIO"]->symbol), u"$C");
}

struct SymbolCase {
    const char *what;
    const char16_t *symbol; // null: the member's own row
    const char *currency;
    const char *encoding;
    std::u16string expected;
    int transcodes;
};

class Symbol : public ::testing::TestWithParam<SymbolCase> {
protected:
    zvhost::Host host;
};

TEST_P(Symbol, ShownWholeOrByItsCode) {
    const SymbolCase &k = GetParam();
    const zv::CurrencyRow *t = zv::currencyTable();
    zv::CurrencyRow row{};
    for (int i = 0; i < zv::kCurrencyRows; ++i)
        if (std::u16string(t[i].code) == zvhost::utf16(k.currency)) row = t[i];
    ASSERT_NE(row.code, nullptr);
    if (k.symbol) row.symbol = k.symbol;
    int calls = 0;
    EXPECT_EQ(shown(row, host.transcoder(k.encoding), &calls), k.expected) << k.what;
    EXPECT_EQ(calls, k.transcodes) << k.what;
}

INSTANTIATE_TEST_SUITE_P(
    Currency, Symbol,
    ::testing::Values(
        SymbolCase{"ascii copied without transcoding", nullptr, "USD", "ISO-8859-1", u"US$", 0},
        SymbolCase{"euro where the host has it", nullptr, "EUR", "UTF-8", u"\u20ac", 1},
        SymbolCase{"euro in windows-1252", nullptr, "EUR", "windows-1252", u"\u20ac", 1},
        SymbolCase{"euro where the host lacks it", nullptr, "EUR", "ISO-8859-1", u"EUR", 1},
        SymbolCase{"whole or not at all", nullptr, "CZK", "ISO-8859-1", u"CZK", 1},
        SymbolCase{"czech where it can be shown", nullptr, "CZK", "windows-1250", u"K\u010d", 1},
        SymbolCase{"a full stop written as an escape", nullptr, "RUR", "UTF-8", u"\u0440.", 2},
        SymbolCase{"stops at the first unshowable", nullptr, "RUR", "US-ASCII", u"RUR", 1},
        SymbolCase{"quotation mark between escapes", nullptr, "ILS", "UTF-8", u"\u05e9\"\u05d7", 2},
        SymbolCase{"pound in latin-1", nullptr, "GBP", "ISO-8859-1", u"\u00a3", 1},
        SymbolCase{"a plain less-than", u"<x", "EUR", "UTF-8", u"<x", 0},
        SymbolCase{"lower-case u is no escape", u"<u20AC>", "EUR", "UTF-8", u"<u20AC>", 0},
        SymbolCase{"lower-case hex is fine", u"<U20ac>", "EUR", "UTF-8", u"\u20ac", 1},
        SymbolCase{"no closing mark", u"<U20AC", "EUR", "UTF-8", u"<U20AC", 0},
        SymbolCase{"a bad digit", u"<U20AG>", "EUR", "UTF-8", u"<U20AG>", 0},
        SymbolCase{"arabic in utf-8", nullptr, "AED", "UTF-8", u"\u062f.\u0625.", 2}),
    [](const auto &info) {
        std::string n = info.param.what;
        for (char &c : n)
            if (!isalnum(static_cast<unsigned char>(c))) c = '_';
        return n;
    });

} // namespace
