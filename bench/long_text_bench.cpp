// Long texts through @NLDATE: a date and then a tail of numbers that no
// directive asks for. The reader stops cutting tokens once its list is full,
// so 100, 10,000 and 1,000,000 units take the same time; the ratios to the
// 100-unit text show it. The second set runs a pattern of 26 one-letter
// literals, which the cutting compares at every unit it looks at.
#include <benchmark/benchmark.h>

#include <cstring>
#include <string>

#include "ratios.hpp"
#include "zvhost.hpp"

namespace {

std::u16string longText(size_t units) {
    std::u16string text = u"12/25/2024";
    while (text.size() < units) text += u" 7";
    text.resize(units);
    return text;
}

void readLong(benchmark::State &state, size_t units, bool literals) {
    zvbench::Shared &s = zvbench::shared();
    const FormatTableRow *row = s.instance ? zvhost::findRow(s.instance->formatTable, "@NLDATE") : nullptr;
    if (!row || !row->wideEntry) {
        state.SkipWithError("row not built");
        return;
    }
    std::map<int, std::string> items;
    if (literals) items[28] = "%m a b c d e f g h i j k l m n o p q r s t u v w x y z %d %Y";
    const std::u16string text = longText(units);
    double value = 0;
    FormatCall call;
    std::memset(&call, 0, sizeof call);
    call.input = text.data();
    call.inputLength = static_cast<int32_t>(text.size());
    call.fieldLimit = call.inputLength;
    call.width = 32;
    call.output = &value;
    call.outputCapacity = sizeof value;
    call.locale = s.host.locale("en_US", items);
    call.transcoder = s.host.transcoder("UTF-8");
    call.services = s.host.services();
    row->wideEntry(&call, nullptr); // builds the block once
    for (auto _ : state) {
        benchmark::DoNotOptimize(row->wideEntry(&call, nullptr));
        benchmark::DoNotOptimize(value);
    }
}

void nldateRead100(benchmark::State &s) { readLong(s, 100, false); }
void nldateRead10k(benchmark::State &s) { readLong(s, 10000, false); }
void nldateRead1M(benchmark::State &s) { readLong(s, 1000000, false); }
void nldateLiterals100(benchmark::State &s) { readLong(s, 100, true); }
void nldateLiterals1M(benchmark::State &s) { readLong(s, 1000000, true); }
BENCHMARK(nldateRead100);
BENCHMARK(nldateRead10k);
BENCHMARK(nldateRead1M);
BENCHMARK(nldateLiterals100);
BENCHMARK(nldateLiterals1M);

zvbench::RegisterRatio l1("nldateRead10k", "nldateRead100");
zvbench::RegisterRatio l2("nldateRead1M", "nldateRead100");
zvbench::RegisterRatio l3("nldateLiterals1M", "nldateLiterals100");

} // namespace
