// Number and money formats beside ICU's LocalizedNumberFormatter and snprintf
// doing the same work for the same value: NLNUM12.2, NLMNY15.2, NLMNIEUR and
// NLD, each on a call record that keeps its locale block; and the stages of
// NLNUM on their own.
#include <benchmark/benchmark.h>
#include <unicode/locid.h>
#include <unicode/numberformatter.h>
#include <unicode/unistr.h>

#include <charconv>
#include <cstdio>
#include <cstring>

#include "ratios.hpp"
#include "zvhost.hpp"

namespace {

constexpr double kValue = -1234567.891;


void nlnum(benchmark::State &s) { zvbench::runColumn(s, zvbench::Entry::Wide, "NLNUM", "de_DE", 12, 2, kValue); }
void nlmny(benchmark::State &s) { zvbench::runColumn(s, zvbench::Entry::Wide, "NLMNY", "de_DE", 15, 2, kValue); }
void nlmnieur(benchmark::State &s) { zvbench::runColumn(s, zvbench::Entry::Wide, "NLMNIEUR", "de_DE", 16, 2, kValue); }
void nld(benchmark::State &s) { zvbench::runColumn(s, zvbench::Entry::Wide, "NLD", "de_DE", 12, 0, kValue); }
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

// The stages of NLNUM one by one: the host's plain digits (what the engine
// asks for once or twice a value) beside std::to_chars doing the same, and the
// whole row beside that stage, which leaves the engine's own share.
void hostPlainDigits(benchmark::State &state) {
    HostLocale *locale = zvbench::shared().host.locale("de_DE");
    ZvChar out[64];
    int64_t produced = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(locale->ops->formatNumber(locale, kValue, 12, 2, ZV_NUMBER_PLAIN, out, 64, &produced));
        benchmark::ClobberMemory();
    }
}
void toCharsFixed(benchmark::State &state) {
    char out[64];
    for (auto _ : state) {
        benchmark::DoNotOptimize(std::to_chars(out, out + sizeof out, kValue, std::chars_format::fixed, 2).ptr);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(hostPlainDigits);
BENCHMARK(toCharsFixed);

zvbench::RegisterRatio s1("hostPlainDigits", "toCharsFixed");
zvbench::RegisterRatio s2("nlnum", "hostPlainDigits");
zvbench::RegisterRatio n1("nlnum", "icuNumber");
zvbench::RegisterRatio n2("nlnum", "snprintfFixed");
zvbench::RegisterRatio n3("nlmny", "icuMoney");
zvbench::RegisterRatio n4("nlmnieur", "icuIsoMoney");
zvbench::RegisterRatio n5("nld", "icuSignificant");

} // namespace
