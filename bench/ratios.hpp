// Pairs of benchmarks whose time ratio the driver prints at the end.
#pragma once

#include <string>
#include <vector>

namespace zvbench {

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
