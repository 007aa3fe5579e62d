// Benchmark driver: runs the benchmarks, then prints the ratios between
// each of our routines and the reference that does the same work, by CPU time.
// With repetitions each side counts its best run: on a shared machine the
// slow runs measure the neighbours, not the code.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>

#include "ratios.hpp"

namespace {

class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run> &runs) override {
        for (const Run &r : runs) {
            if (r.iterations <= 0 || r.run_type != Run::RT_Iteration) continue;
            // CPU time: a busy machine's waits left out.
            const double cpu = r.GetAdjustedCPUTime();
            auto [it, added] = times_.try_emplace(r.run_name.function_name, cpu);
            if (!added) it->second = std::min(it->second, cpu);
        }
        ConsoleReporter::ReportRuns(runs);
    }
    void Finalize() override {
        ConsoleReporter::Finalize();
        bool header = false;
        for (const auto &p : zvbench::ratioPairs()) {
            auto ours = times_.find(p.ours), theirs = times_.find(p.reference);
            if (ours == times_.end() || theirs == times_.end()) continue;
            if (!header) {
                std::printf("\n%-44s %-44s %10s\n", "ours", "reference", "ours/ref");
                header = true;
            }
            std::printf("%-44s %-44s %10.3f\n", p.ours.c_str(), p.reference.c_str(),
                        ours->second / theirs->second);
        }
    }

private:
    std::map<std::string, double> times_;
};

} // namespace

int main(int argc, char **argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
