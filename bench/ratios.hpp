// What the benchmarks share: one host with the module loaded, and the pairs
// of benchmarks whose time ratio the driver prints at the end.
#pragma once

#include <benchmark/benchmark.h>

#include <cstring>
#include <string>
#include <vector>

#include "zvhost.hpp"

namespace zvbench {

struct Shared {
    zvhost::Host host;
    ExtensionInstance *instance = host.loadModule();
};

inline Shared &shared() {
    static Shared s;
    return s;
}

// A call record that keeps its locale block, as a host would for a column
// of values, and a benchmark that calls one row on it over and over.
struct Column {
    FormatCall call;
    const FormatTableRow *row;
    double value;
    ZvChar wide[256];
    unsigned char bytes[256];

    Column(const char *name, const char *locale, int width, int decimals, double v) : value(v) {
        std::memset(&call, 0, sizeof call);
        row = shared().instance ? zvhost::findRow(shared().instance->formatTable, name) : nullptr;
        call.width = width;
        call.decimals = decimals;
        call.input = &value;
        call.output = wide;
        call.outputCapacity = 256;
        call.locale = shared().host.locale(locale);
        call.transcoder = shared().host.transcoder("UTF-8");
        call.services = shared().host.services();
        if (row && row->wideEntry) row->wideEntry(&call, nullptr); // builds the block once
    }
};

enum class Entry { Wide, Byte };

inline void runColumn(benchmark::State &state, Entry entry, const char *name, const char *locale, int width,
                      int decimals, double value) {
    Column c(name, locale, width, decimals, value);
    if (!c.row || !c.row->wideEntry) {
        state.SkipWithError("row not built");
        return;
    }
    const auto before = shared().host.formatPool().stats().allocations;
    for (auto _ : state) {
        if (entry == Entry::Byte) {
            c.call.output = c.bytes;
            benchmark::DoNotOptimize(c.row->byteEntry(&c.call, nullptr, nullptr));
        } else {
            benchmark::DoNotOptimize(c.row->wideEntry(&c.call, nullptr));
        }
        benchmark::ClobberMemory();
    }
    state.counters["allocs/call"] = benchmark::Counter(
        double(shared().host.formatPool().stats().allocations - before) / double(state.iterations()));
}


struct RatioPair {
    std::string ours;
    std::string reference;
};

std::vector<RatioPair> &ratioPairs();

struct RegisterRatio {
    RegisterRatio(std::string ours, std::string reference) {
        ratioPairs().push_back({std::move(ours), std::move(reference)});
    }
};

inline std::vector<RatioPair> &ratioPairs() {
    static std::vector<RatioPair> pairs;
    return pairs;
}

} // namespace zvbench
