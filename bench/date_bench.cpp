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


void nldateWide(benchmark::State &s) { zvbench::runColumn(s, zvbench::Entry::Wide, "NLDATE", "fr_FR", 20, 0, kDay); }
void nldateByte(benchmark::State &s) { zvbench::runColumn(s, zvbench::Entry::Byte, "NLDATE", "fr_FR", 20, 0, kDay); }
void nldatewWide(benchmark::State &s) { zvbench::runColumn(s, zvbench::Entry::Wide, "NLDATEW", "fr_FR", 29, 0, kDay); }
void nldatmWide(benchmark::State &s) { zvbench::runColumn(s, zvbench::Entry::Wide, "NLDATM", "fr_FR", 30, 3, kSecond); }
void nldatesWide(benchmark::State &s) { zvbench::runColumn(s, zvbench::Entry::Wide, "NLDATES", "fr_FR", 10, 0, kDay); }
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
