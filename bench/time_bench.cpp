// Time and week formats beside ICU's SimpleDateFormat doing the same work for
// the same value: NLTIME (clock from the locale's time pattern), WEEKV (ISO
// week date) and NLDATMZ (datetime with its UTC offset), all through the
// wide entry with the locale block built once.
#include <benchmark/benchmark.h>
#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>
#include <unicode/unistr.h>

#include <cstring>

#include "ratios.hpp"
#include "zvhost.hpp"

namespace {

constexpr double kDay = 23440;                            // Tuesday 5 March 2024
constexpr double kTime = 50829;                           // 14:07:09
constexpr double kSecond = 23440 * 86400.0 + 50829;       // 5 March 2024 14:07:09
constexpr double kUnixMillis = (kSecond - 3653 * 86400.0) * 1000.0;

zvbench::Shared &setup() {
    static const bool zone = zvbench::shared().host.setTimeZone("Asia/Kolkata"); // +0530 for NLDATMZ
    (void)zone;
    return zvbench::shared();
}

void nltimeWide(benchmark::State &s) { (setup(), zvbench::runColumn(s, zvbench::Entry::Wide, "NLTIME", "de_DE", 20, 0, kTime)); }
void weekvWide(benchmark::State &s) { (setup(), zvbench::runColumn(s, zvbench::Entry::Wide, "WEEKV", "de_DE", 11, 0, kDay)); }
void nldatmzWide(benchmark::State &s) { (setup(), zvbench::runColumn(s, zvbench::Entry::Wide, "NLDATMZ", "de_DE", 40, 0, kSecond)); }
BENCHMARK(nltimeWide);
BENCHMARK(weekvWide);
BENCHMARK(nldatmzWide);

void icuPattern(benchmark::State &state, const char *pattern, double millis) {
    UErrorCode err = U_ZERO_ERROR;
    icu::SimpleDateFormat f(icu::UnicodeString::fromUTF8(pattern), icu::Locale("de_DE"), err);
    if (U_FAILURE(err)) {
        state.SkipWithError(u_errorName(err));
        return;
    }
    f.adoptTimeZone(icu::TimeZone::createTimeZone("Asia/Kolkata"));
    icu::UnicodeString out;
    for (auto _ : state) {
        out.remove();
        f.format(millis, out);
        benchmark::DoNotOptimize(out.getBuffer());
    }
}
// The same fields: the time of day, the ISO week date, the datetime with
// its offset.
void icuTime(benchmark::State &s) { icuPattern(s, "HH:mm:ss", kUnixMillis); }
void icuWeekDate(benchmark::State &s) { icuPattern(s, "YYYY-'W'ww-ee", kUnixMillis); }
void icuDatetimeZone(benchmark::State &s) { icuPattern(s, "d MMM y HH:mm:ss xx", kUnixMillis); }
BENCHMARK(icuTime);
BENCHMARK(icuWeekDate);
BENCHMARK(icuDatetimeZone);

zvbench::RegisterRatio t1("nltimeWide", "icuTime");
zvbench::RegisterRatio t2("weekvWide", "icuWeekDate");
zvbench::RegisterRatio t3("nldatmzWide", "icuDatetimeZone");

} // namespace
