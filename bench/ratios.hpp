// What the benchmarks share: one host with the module loaded, and the pairs
// of benchmarks whose time ratio the driver prints at the end.
#pragma once

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
