// Date formats beside ICU's SimpleDateFormat and glibc's strftime doing the
// same work for the same value: NLDATE (wide and byte entry), NLDATEW,
// NLDATM with three decimals and NLDATES.
#include <benchmark/benchmark.h>
#include <unicode/datefmt.h>
#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>
#include <unicode/unistr.h>

#include <clocale>
#include <cstring>
#include <ctime>
#include <string>

#include "ratios.hpp"
#include "zvhost.hpp"

namespace {

constexpr double kDay = 23440;                          // 5 March 2024
constexpr double kSecond = 23440 * 86400.0 + 50829.125; // 14:07:09.125
constexpr double kUnixOfDay = (23440.0 - 3653.0) * 86400.0;

zvbench::Shared &setup() { return zvbench::shared(); }

// A call record that keeps its locale block, as a host would for a column.
struct Column {
    FormatCall call;
    const FormatTableRow *row;
    double value;
    ZvChar wide[256];
    unsigned char bytes[256];

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

template <bool Byte>
void runColumn(benchmark::State &state, const char *name, const char *locale, int width, int decimals,
               double value) {
    Column c(name, locale, width, decimals, value);
    if (!c.row || !c.row->wideEntry) {
        state.SkipWithError("row not built");
        return;
    }
    const auto before = setup().host.formatPool().stats().allocations;
    for (auto _ : state) {
        if constexpr (Byte) {
            c.call.output = c.bytes;
            benchmark::DoNotOptimize(c.row->byteEntry(&c.call, nullptr, nullptr));
        } else {
            benchmark::DoNotOptimize(c.row->wideEntry(&c.call, nullptr));
        }
        benchmark::ClobberMemory();
    }
    state.counters["allocs/call"] = benchmark::Counter(
        double(setup().host.formatPool().stats().allocations - before) / double(state.iterations()));
}

void nldateWide(benchmark::State &s) { runColumn<false>(s, "NLDATE", "fr_FR", 20, 0, kDay); }
void nldateByte(benchmark::State &s) { runColumn<true>(s, "NLDATE", "fr_FR", 20, 0, kDay); }
void nldatewWide(benchmark::State &s) { runColumn<false>(s, "NLDATEW", "fr_FR", 29, 0, kDay); }
void nldatmWide(benchmark::State &s) { runColumn<false>(s, "NLDATM", "fr_FR", 30, 3, kSecond); }
void nldatesWide(benchmark::State &s) { runColumn<false>(s, "NLDATES", "fr_FR", 10, 0, kDay); }
BENCHMARK(nldateWide);
BENCHMARK(nldateByte);
BENCHMARK(nldatewWide);
BENCHMARK(nldatmWide);
BENCHMARK(nldatesWide);

void icuPattern(benchmark::State &state, const char *pattern, double unixSeconds) {
    UErrorCode err = U_ZERO_ERROR;
    icu::SimpleDateFormat f(icu::UnicodeString::fromUTF8(pattern), icu::Locale("fr_FR"), err);
    f.adoptTimeZone(icu::TimeZone::createTimeZone("UTC"));
    icu::UnicodeString out;
    for (auto _ : state) {
        out.remove();
        f.format(unixSeconds * 1000.0, out);
        benchmark::DoNotOptimize(out.getBuffer());
    }
}
void icuLongDate(benchmark::State &s) { icuPattern(s, "d MMMM y", kUnixOfDay); }
void icuFullDate(benchmark::State &s) { icuPattern(s, "EEEE d MMMM y", kUnixOfDay); }
void icuDatetime(benchmark::State &s) { icuPattern(s, "d MMMM y HH:mm:ss,SSS", kUnixOfDay + 50829.125); }
void icuShortDate(benchmark::State &s) { icuPattern(s, "dd/MM/y", kUnixOfDay); }
BENCHMARK(icuLongDate);
BENCHMARK(icuFullDate);
BENCHMARK(icuDatetime);
BENCHMARK(icuShortDate);

void strftimePattern(benchmark::State &state, const char *pattern) {
    std::tm tm{};
    tm.tm_year = 124;
    tm.tm_mon = 2;
    tm.tm_mday = 5;
    tm.tm_wday = 2;
    tm.tm_yday = 64;
    tm.tm_hour = 14;
    tm.tm_min = 7;
    tm.tm_sec = 9;
    char out[128];
    for (auto _ : state) {
        benchmark::DoNotOptimize(std::strftime(out, sizeof out, pattern, &tm));
        benchmark::ClobberMemory();
    }
}
void strftimeLongDate(benchmark::State &s) { strftimePattern(s, "%-d %B %Y"); }
void strftimeShortDate(benchmark::State &s) { strftimePattern(s, "%d/%m/%Y"); }
BENCHMARK(strftimeLongDate);
BENCHMARK(strftimeShortDate);

zvbench::RegisterRatio d1("nldateWide", "icuLongDate");
zvbench::RegisterRatio d2("nldateWide", "strftimeLongDate");
zvbench::RegisterRatio d3("nldateByte", "nldateWide");
zvbench::RegisterRatio d4("nldatewWide", "icuFullDate");
zvbench::RegisterRatio d5("nldatmWide", "icuDatetime");
zvbench::RegisterRatio d6("nldatesWide", "icuShortDate");
zvbench::RegisterRatio d7("nldatesWide", "strftimeShortDate");

} // namespace
