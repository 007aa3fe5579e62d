// The byte entry bridge: the cost of carrying a routine's wide text into the
// host encoding, beside ICU converting the same text with its own converter
// and beside the wide routine alone.
#include <benchmark/benchmark.h>
#include <unicode/ucnv.h>

#include <cstring>
#include <string>

#include "frame/frame.hpp"
#include "ratios.hpp"
#include "zvhost.hpp"

namespace {

// A routine that does no work of its own beyond the frame's first steps
// and copying a fixed text, so the bridge's own cost shows.
std::u16string gText;

int32_t fixedText(FormatCall *call, void *) {
    double v;
    int32_t status;
    if (!zv::beginFormat(call, -1e300, 1e300, &v, &status, nullptr)) return status;
    std::memcpy(call->output, gText.data(), gText.size() * sizeof(ZvChar));
    call->outputLength = static_cast<int32_t>(gText.size());
    return 0;
}

zvbench::Shared &setup() { return zvbench::shared(); }

FormatCall makeCall(const double *value, void *out, int32_t width, const char *encoding) {
    FormatCall c;
    std::memset(&c, 0, sizeof c);
    c.width = width;
    c.input = value;
    c.output = out;
    c.outputCapacity = width;
    c.transcoder = setup().host.transcoder(encoding);
    c.services = setup().host.services();
    return c;
}

const std::u16string kDate = u"Tuesday, 5 March 2024";      // ASCII
const std::u16string kWide = u"mardi 5 mars 2024 \u00e0 14 h"; // one non-ASCII unit
const std::u16string kNumber = u"      1\u202f234\u202f567,89 \u20ac"; // blanks, then overflow

void wideOnly(benchmark::State &state) {
    gText = kDate;
    double v = 23440;
    ZvChar out[64];
    FormatCall c = makeCall(&v, out, static_cast<int32_t>(gText.size()), "UTF-8");
    for (auto _ : state) {
        benchmark::DoNotOptimize(fixedText(&c, nullptr));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(wideOnly);

template <zv::Justify Mark>
void byteEntry(benchmark::State &state, const std::u16string &text, const char *encoding,
               int32_t width) {
    gText = text;
    double v = 23440;
    unsigned char out[128];
    FormatCall c = makeCall(&v, out, width, encoding);
    const auto before = setup().host.formatPool().stats().allocations;
    for (auto _ : state) {
        benchmark::DoNotOptimize(zv::byteEntry<fixedText, Mark>(&c, nullptr, nullptr));
        benchmark::ClobberMemory();
    }
    state.counters["poolAllocs/call"] = benchmark::Counter(
        double(setup().host.formatPool().stats().allocations - before) / double(state.iterations()));
}

void byteUtf8(benchmark::State &s) {
    byteEntry<zv::Justify::Left>(s, kDate, "UTF-8", static_cast<int32_t>(kDate.size()));
}
void byteLatin1(benchmark::State &s) {
    byteEntry<zv::Justify::Left>(s, kWide, "ISO-8859-1", static_cast<int32_t>(kWide.size()));
}
void byteRightOverflow(benchmark::State &s) {
    byteEntry<zv::Justify::Right>(s, kNumber, "UTF-8", static_cast<int32_t>(kNumber.size()));
}
BENCHMARK(byteUtf8);
BENCHMARK(byteLatin1);
BENCHMARK(byteRightOverflow);

// ICU converting the same text with a converter kept open, the work the
// bridge hands to the host.
void icuFromUChars(benchmark::State &state, const std::u16string &text, const char *encoding) {
    UErrorCode err = U_ZERO_ERROR;
    UConverter *cnv = ucnv_open(encoding, &err);
    char out[128];
    for (auto _ : state) {
        err = U_ZERO_ERROR;
        benchmark::DoNotOptimize(ucnv_fromUChars(cnv, out, sizeof out, text.data(),
                                                 static_cast<int32_t>(text.size()), &err));
        benchmark::ClobberMemory();
    }
    ucnv_close(cnv);
}
void icuUtf8(benchmark::State &s) { icuFromUChars(s, kDate, "UTF-8"); }
void icuLatin1(benchmark::State &s) { icuFromUChars(s, kWide, "ISO-8859-1"); }
void icuConvertNumber(benchmark::State &s) { icuFromUChars(s, kNumber, "UTF-8"); }
BENCHMARK(icuUtf8);
BENCHMARK(icuLatin1);
BENCHMARK(icuConvertNumber);

zvbench::RegisterRatio r1("byteUtf8", "icuUtf8");
zvbench::RegisterRatio r2("byteLatin1", "icuLatin1");
zvbench::RegisterRatio r3("byteRightOverflow", "icuConvertNumber");
zvbench::RegisterRatio r4("byteUtf8", "wideOnly");

} // namespace
