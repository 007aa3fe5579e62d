// Opening a locale: the host's first build of a locale table from CLDR, the
// module's block build over it, and, beside them, ICU making its own date
// and number formatters for the same locale.
#include <benchmark/benchmark.h>
#include <unicode/dcfmtsym.h>
#include <unicode/dtfmtsym.h>
#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>

#include <cstring>
#include <vector>

#include "cldr.hpp"
#include "locale/block.hpp"
#include "ratios.hpp"
#include "zvhost.hpp"

namespace {

zvbench::Shared &setup() { return zvbench::shared(); }

void firstOpen(benchmark::State &state) {
    std::vector<uint8_t> table;
    std::string error;
    for (auto _ : state) {
        table.clear();
        benchmark::DoNotOptimize(zvhost::buildCldrTable("fr_FR", table, error));
    }
}
BENCHMARK(firstOpen)->Unit(benchmark::kMicrosecond);

// A locale the host has cached: what a second open costs.
void cachedOpen(benchmark::State &state) {
    setup().host.locale("fr_FR");
    for (auto _ : state) benchmark::DoNotOptimize(setup().host.locale("fr_FR"));
}
BENCHMARK(cachedOpen);

void blockBuild(benchmark::State &state, const char *encoding) {
    HostPool *pool = setup().host.formatPool().raw();
    FormatCall call;
    std::memset(&call, 0, sizeof call);
    call.locale = setup().host.locale("fr_FR");
    call.transcoder = setup().host.transcoder(encoding);
    call.services = setup().host.services();
    for (auto _ : state) {
        call.localeBlock = nullptr;
        benchmark::DoNotOptimize(zv::buildLocaleBlock(&call, setup().instance));
        pool->ops->poolFree(pool, call.localeBlock);
    }
}
void blockBuildUtf8(benchmark::State &s) { blockBuild(s, "UTF-8"); }
void blockBuildLatin1(benchmark::State &s) { blockBuild(s, "ISO-8859-1"); }
BENCHMARK(blockBuildUtf8)->Unit(benchmark::kMicrosecond);
BENCHMARK(blockBuildLatin1)->Unit(benchmark::kMicrosecond);

void icuFormatters(benchmark::State &state) {
    const icu::Locale locale("fr_FR");
    for (auto _ : state) {
        UErrorCode err = U_ZERO_ERROR;
        icu::SimpleDateFormat date(icu::UnicodeString(u"d MMMM y"), locale, err);
        icu::DecimalFormatSymbols numbers(locale, err);
        benchmark::DoNotOptimize(&date);
        benchmark::DoNotOptimize(&numbers);
    }
}
BENCHMARK(icuFormatters)->Unit(benchmark::kMicrosecond);

zvbench::RegisterRatio l1("firstOpen", "icuFormatters");
zvbench::RegisterRatio l2("blockBuildUtf8", "icuFormatters");

} // namespace
