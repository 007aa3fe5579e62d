// Number and money formats beside ICU's LocalizedNumberFormatter and snprintf
// doing the same work for the same value: NLNUM12.2, NLMNY15.2, NLMNIEUR and
// NLD, each on a call record that keeps its locale block.
#include <benchmark/benchmark.h>
#include <unicode/locid.h>
#include <unicode/numberformatter.h>
#include <unicode/unistr.h>

#include <cstdio>
#include <cstring>

#include "ratios.hpp"
#include "zvhost.hpp"

namespace {

constexpr double kValue = -1234567.891;

zvbench::Shared &setup() { return zvbench::shared(); }

struct Column {
    FormatCall call;
    const FormatTableRow *row;
    double value;
    ZvChar wide[256];

    Column(const char *name, const char *locale, int width, int decimals, double v) : value(v) {
        std::memset(&call, 0, sizeof call);
        row = zvhost::findRow(setup().instance->formatTable, name);
        call.width = width;
        call.decimals = decimals;
        call.input = &value;
        call.output = wide;
        call.outputCapacity = 256;
        call.locale = setup().host.locale(locale);
        call.transcoder = setup().host.transcoder("UTF-8");
        call.services = setup().host.services();
        if (row && row->wideEntry) row->wideEntry(&call, nullptr); // builds the block once
    }
};

void runColumn(benchmark::State &state, const char *name, int width, int decimals) {
    Column c(name, "de_DE", width, decimals, kValue);
    if (!c.row || !c.row->wideEntry) {
        state.SkipWithError("row not built");
        return;
    }
    const auto before = setup().host.formatPool().stats().allocations;
    for (auto _ : state) {
        benchmark::DoNotOptimize(c.row->wideEntry(&c.call, nullptr));
        benchmark::ClobberMemory();
    }
    state.counters["allocs/call"] = benchmark::Counter(
        double(setup().host.formatPool().stats().allocations - before) / double(state.iterations()));
}

void nlnum(benchmark::State &s) { runColumn(s, "NLNUM", 12, 2); }
void nlmny(benchmark::State &s) { runColumn(s, "NLMNY", 15, 2); }
void nlmnieur(benchmark::State &s) { runColumn(s, "NLMNIEUR", 16, 2); }
void nld(benchmark::State &s) { runColumn(s, "NLD", 12, 0); }
BENCHMARK(nlnum);
BENCHMARK(nlmny);
BENCHMARK(nlmnieur);
BENCHMARK(nld);

void icuFormat(benchmark::State &state, const icu::number::LocalizedNumberFormatter &f) {
    UErrorCode status = U_ZERO_ERROR;
    for (auto _ : state) {
        icu::number::FormattedNumber n = f.formatDouble(kValue, status);
        benchmark::DoNotOptimize(n.toTempString(status).getBuffer());
    }
}

void icuNumber(benchmark::State &s) {
    using namespace icu::number;
    icuFormat(s, NumberFormatter::withLocale("de_DE").precision(Precision::fixedFraction(2)));
}
void icuMoney(benchmark::State &s) {
    using namespace icu::number;
    UErrorCode status = U_ZERO_ERROR;
    icuFormat(s, NumberFormatter::withLocale("de_DE")
                     .unit(icu::CurrencyUnit(u"EUR", status))
                     .precision(Precision::fixedFraction(2)));
}
void icuIsoMoney(benchmark::State &s) {
    using namespace icu::number;
    UErrorCode status = U_ZERO_ERROR;
    icuFormat(s, NumberFormatter::withLocale("de_DE")
                     .unit(icu::CurrencyUnit(u"EUR", status))
                     .unitWidth(UNUM_UNIT_WIDTH_ISO_CODE)
                     .precision(Precision::fixedFraction(2)));
}
void icuSignificant(benchmark::State &s) {
    using namespace icu::number;
    icuFormat(s, NumberFormatter::withLocale("de_DE").precision(Precision::fixedSignificantDigits(10)));
}
BENCHMARK(icuNumber);
BENCHMARK(icuMoney);
BENCHMARK(icuIsoMoney);
BENCHMARK(icuSignificant);

void snprintfFixed(benchmark::State &state) {
    char out[64];
    for (auto _ : state) {
        benchmark::DoNotOptimize(std::snprintf(out, sizeof out, "%12.2f", kValue));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(snprintfFixed);

zvbench::RegisterRatio n1("nlnum", "icuNumber");
zvbench::RegisterRatio n2("nlnum", "snprintfFixed");
zvbench::RegisterRatio n3("nlmny", "icuMoney");
zvbench::RegisterRatio n4("nlmnieur", "icuIsoMoney");
zvbench::RegisterRatio n5("nld", "icuSignificant");

} // namespace
