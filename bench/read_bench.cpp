// Informats beside the parsers a user would pick instead, on the same texts:
// @NLDATE, @NLDATM and @NLTIME beside ICU's SimpleDateFormat::parse and
// glibc's strptime; @NLNUM, @NLMNY and @NLPCT beside ICU's NumberFormat::parse
// and strtod. Each reads a text that the matching format wrote in de_DE, with
// the locale block built once.
#include <benchmark/benchmark.h>
#include <unicode/locid.h>
#include <unicode/numfmt.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <string>
#include <vector>

#include "ratios.hpp"
#include "zvhost.hpp"

namespace {

// One informat over one text, as a host reads a column.
void readColumn(benchmark::State &state, const char *row, const char *utf8) {
    zvbench::Shared &s = zvbench::shared();
    const FormatTableRow *r = s.instance ? zvhost::findRow(s.instance->formatTable, row) : nullptr;
    if (!r || !r->wideEntry) {
        state.SkipWithError("row not built");
        return;
    }
    const std::u16string text = zvhost::utf16(utf8);
    double value = 0;
    FormatCall call;
    std::memset(&call, 0, sizeof call);
    call.input = text.data();
    call.inputLength = call.fieldLimit = static_cast<int32_t>(text.size());
    call.width = 32;
    call.output = &value;
    call.locale = s.host.locale("de_DE");
    call.transcoder = s.host.transcoder("UTF-8");
    call.services = s.host.services();
    r->wideEntry(&call, nullptr); // builds the block once
    const auto before = s.host.formatPool().stats().allocations;
    for (auto _ : state) {
        benchmark::DoNotOptimize(r->wideEntry(&call, nullptr));
        benchmark::DoNotOptimize(value);
    }
    state.counters["allocs/call"] =
        benchmark::Counter(double(s.host.formatPool().stats().allocations - before) / double(state.iterations()));
}

// A column of texts: the informat reads them in turn.
void readTexts(benchmark::State &state, const char *row, const std::vector<std::string> &utf8) {
    zvbench::Shared &s = zvbench::shared();
    const FormatTableRow *r = s.instance ? zvhost::findRow(s.instance->formatTable, row) : nullptr;
    if (!r || !r->wideEntry) {
        state.SkipWithError("row not built");
        return;
    }
    std::vector<std::u16string> texts;
    for (const std::string &t : utf8) texts.push_back(zvhost::utf16(t));
    double value = 0;
    FormatCall call;
    std::memset(&call, 0, sizeof call);
    call.width = 32;
    call.output = &value;
    call.locale = s.host.locale("de_DE");
    call.transcoder = s.host.transcoder("UTF-8");
    call.services = s.host.services();
    size_t i = 0;
    const auto point = [&] {
        const std::u16string &text = texts[i++ % texts.size()];
        call.input = text.data();
        call.inputLength = call.fieldLimit = static_cast<int32_t>(text.size());
    };
    point();
    r->wideEntry(&call, nullptr); // builds the block once
    const auto before = s.host.formatPool().stats().allocations;
    for (auto _ : state) {
        point();
        benchmark::DoNotOptimize(r->wideEntry(&call, nullptr));
        benchmark::DoNotOptimize(value);
    }
    state.counters["allocs/call"] =
        benchmark::Counter(double(s.host.formatPool().stats().allocations - before) / double(state.iterations()));
}

// 256 datetimes as NLDATMM writes them in de_DE, all of one shape; with
// `twoShapes` every other one has two blanks in place of ", ".
std::vector<std::string> datetimeTexts(bool twoShapes) {
    std::vector<std::string> texts;
    for (int i = 0; i < 256; ++i) {
        char t[32];
        const char *form = twoShapes && i % 2 ? "%02d.%02d.%04d  %02d:%02d:%02d" : "%02d.%02d.%04d, %02d:%02d:%02d";
        std::snprintf(t, sizeof t, form, 1 + i * 7 % 28, 1 + i % 12, 1950 + i % 90, i * 5 % 24, i * 11 % 60,
                      i * 13 % 60);
        texts.push_back(t);
    }
    return texts;
}

void readDate(benchmark::State &s) { readColumn(s, "@NLDATE", "5. März 2024"); }
void readDatetime(benchmark::State &s) { readColumn(s, "@NLDATM", "05.03.2024, 14:07:09"); }
void readTime(benchmark::State &s) { readColumn(s, "@NLTIME", "14:07:09"); }
void readNumber(benchmark::State &s) { readColumn(s, "@NLNUM", "-1.234.567,89"); }
void readMoney(benchmark::State &s) { readColumn(s, "@NLMNY", "-1.234.567,89 €"); }
void readPercent(benchmark::State &s) { readColumn(s, "@NLPCT", "12,5 %"); }
// The column that varies: each text is new, its shape is not; and a column
// of two shapes that take turns.
void readDatetimeColumn(benchmark::State &s) { readTexts(s, "@NLDATM", datetimeTexts(false)); }
void readDatetimeTwoShapes(benchmark::State &s) { readTexts(s, "@NLDATM", datetimeTexts(true)); }
BENCHMARK(readDate);
BENCHMARK(readDatetime);
BENCHMARK(readDatetimeColumn);
BENCHMARK(readDatetimeTwoShapes);
BENCHMARK(readTime);
BENCHMARK(readNumber);
BENCHMARK(readMoney);
BENCHMARK(readPercent);

void icuDateParse(benchmark::State &state, const char *pattern, const char *utf8) {
    UErrorCode err = U_ZERO_ERROR;
    icu::SimpleDateFormat f(icu::UnicodeString::fromUTF8(pattern), icu::Locale("de_DE"), err);
    f.adoptTimeZone(icu::TimeZone::createTimeZone("UTC"));
    const icu::UnicodeString text = icu::UnicodeString::fromUTF8(utf8);
    for (auto _ : state) {
        UErrorCode e = U_ZERO_ERROR;
        benchmark::DoNotOptimize(f.parse(text, e));
    }
}
void icuParseDate(benchmark::State &s) { icuDateParse(s, "d. MMMM y", "5. März 2024"); }
void icuParseDatetime(benchmark::State &s) { icuDateParse(s, "dd.MM.y, HH:mm:ss", "05.03.2024, 14:07:09"); }
void icuParseTime(benchmark::State &s) { icuDateParse(s, "HH:mm:ss", "14:07:09"); }
BENCHMARK(icuParseDate);
BENCHMARK(icuParseDatetime);
BENCHMARK(icuParseTime);

void strptimeOf(benchmark::State &state, const char *format, const char *text) {
    for (auto _ : state) {
        std::tm tm{};
        benchmark::DoNotOptimize(strptime(text, format, &tm));
        benchmark::DoNotOptimize(tm);
    }
}
void strptimeDate(benchmark::State &s) { strptimeOf(s, "%d. %B %Y", "5. March 2024"); }
void strptimeDatetime(benchmark::State &s) { strptimeOf(s, "%d.%m.%Y, %H:%M:%S", "05.03.2024, 14:07:09"); }
void strptimeTime(benchmark::State &s) { strptimeOf(s, "%H:%M:%S", "14:07:09"); }
void strptimeDatetimeColumn(benchmark::State &state) {
    const std::vector<std::string> texts = datetimeTexts(false);
    size_t i = 0;
    for (auto _ : state) {
        std::tm tm{};
        benchmark::DoNotOptimize(strptime(texts[i++ % texts.size()].c_str(), "%d.%m.%Y, %H:%M:%S", &tm));
        benchmark::DoNotOptimize(tm);
    }
}
BENCHMARK(strptimeDate);
BENCHMARK(strptimeDatetime);
BENCHMARK(strptimeDatetimeColumn);
BENCHMARK(strptimeTime);

void icuNumberParse(benchmark::State &state, UNumberFormatStyle style, const char *utf8) {
    UErrorCode err = U_ZERO_ERROR;
    std::unique_ptr<icu::NumberFormat> f(icu::NumberFormat::createInstance(icu::Locale("de_DE"), style, err));
    const icu::UnicodeString text = icu::UnicodeString::fromUTF8(utf8);
    icu::Formattable result;
    for (auto _ : state) {
        UErrorCode e = U_ZERO_ERROR;
        f->parse(text, result, e);
        benchmark::DoNotOptimize(result.getDouble(e));
    }
}
void icuParseNumber(benchmark::State &s) { icuNumberParse(s, UNUM_DECIMAL, "-1.234.567,89"); }
void icuParseMoney(benchmark::State &s) { icuNumberParse(s, UNUM_CURRENCY, "-1.234.567,89\u00a0€"); }
void icuParsePercent(benchmark::State &s) { icuNumberParse(s, UNUM_PERCENT, "12,5\u00a0%"); }
BENCHMARK(icuParseNumber);
BENCHMARK(icuParseMoney);
BENCHMARK(icuParsePercent);

// strtod on the plain form of the same number.
void strtodPlain(benchmark::State &state) {
    for (auto _ : state) benchmark::DoNotOptimize(std::strtod("-1234567.89", nullptr));
}
BENCHMARK(strtodPlain);

const zvbench::RegisterRatio kRatios[] = {
    {"readDate", "icuParseDate"},         {"readDate", "strptimeDate"},
    {"readDatetime", "icuParseDatetime"}, {"readDatetime", "strptimeDatetime"},
    {"readDatetimeColumn", "strptimeDatetimeColumn"}, {"readDatetimeTwoShapes", "readDatetimeColumn"},
    {"readTime", "icuParseTime"},         {"readTime", "strptimeTime"},
    {"readNumber", "icuParseNumber"},     {"readNumber", "strtodPlain"},
    {"readMoney", "icuParseMoney"},       {"readMoney", "strtodPlain"},
    {"readPercent", "icuParsePercent"},   {"readPercent", "strtodPlain"},
};

} // namespace
