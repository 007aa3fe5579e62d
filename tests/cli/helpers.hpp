#pragma once

#include <bit>
#include <cstdio>
#include <cstdint>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "runner.hpp"

namespace clitest {

struct ListedRow {
    std::string name;
    bool informat = false;
    bool ready = false;
    int minWidth = 0, maxWidth = 0, defaultWidth = 0, maxDecimals = 0, defaultDecimals = 0;
};

inline std::vector<std::string> lines(const std::string &text) {
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) out.push_back(line);
    return out;
}

// The table as `zvfmt list --json` shows it.
inline std::vector<ListedRow> listedRows() {
    std::vector<ListedRow> rows;
    const Run r = run({"list", "--json"});
    for (const std::string &line : lines(r.out)) {
        const auto j = nlohmann::json::parse(line);
        ListedRow row;
        row.name = j.at("name");
        row.informat = j.at("kind") == "informat";
        row.ready = j.at("state") == "ready";
        row.minWidth = j.at("minWidth");
        row.maxWidth = j.at("maxWidth");
        row.defaultWidth = j.at("defaultWidth");
        row.maxDecimals = j.at("maxDecimals");
        row.defaultDecimals = j.at("defaultDecimals");
        rows.push_back(row);
    }
    return rows;
}

// The first pending row of either kind.
inline std::optional<ListedRow> firstPending() {
    for (const ListedRow &row : listedRows())
        if (!row.ready) return row;
    return std::nullopt;
}

inline std::optional<ListedRow> firstRow(bool informat, bool ready) {
    for (const ListedRow &row : listedRows())
        if (row.informat == informat && row.ready == ready) return row;
    return std::nullopt;
}

inline std::string hexOf(double v) {
    static const char kHex[] = "0123456789abcdef";
    uint64_t bits = std::bit_cast<uint64_t>(v);
    std::string out(16, '0');
    for (int i = 15; i >= 0; --i, bits >>= 4) out[static_cast<size_t>(i)] = kHex[bits & 15];
    return out;
}

// A status as the tool prints it: signed, with the hex for negative words
// other than -1.
inline std::string statusShown(int status) {
    std::string out = std::to_string(status);
    if (status < -1) {
        char hex[16];
        std::snprintf(hex, sizeof hex, "%08x", static_cast<unsigned>(status));
        out += std::string(" (0x") + hex + ")";
    }
    return out;
}

} // namespace clitest
