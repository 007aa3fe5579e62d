// One reference host for the life of the tool, the module loaded into it
// once, and the host state that requests may change for themselves.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "zvhost.hpp"

namespace zvfmt {

// What the command line sets for the whole run; requests start from it.
struct Baseline {
    std::string locale = "en_US";  // as the host names it (see hostLocaleName)
    bool localeFromEnvironment = false; // LC_ALL or LANG: unknown falls back to en_US
    std::map<int, std::string> items;
    std::string encoding = "UTF-8";
    bool byteEntry = false;
    bool measureBytes = false;
    bool validate = false;
    std::string timeZone = "UTC";
    std::map<std::string, int64_t> options;
    std::optional<std::pair<double, double>> clock; // value, shift; none: the system clock
};

// A call's record as the baseline sets it: locale, items, encoding,
// measureBytes and validate; the rest as CallSpec leaves it.
zvhost::CallSpec callSpecOf(const Baseline &baseline);

// Host state for one call: set by apply, put back by the destructor.
struct StateChange {
    std::optional<std::string> timeZone;
    std::map<std::string, std::optional<int64_t>> options; // nullopt: not set for this call
    std::optional<std::pair<double, double>> clock;
};

class Session {
public:
    explicit Session(Baseline baseline);
    // Makes the host and loads the module, then checks the baseline's
    // locale, encoding and time zone; false with one message on failure.
    ~Session();

    bool start(std::string &error);

    zvhost::Host &host() { return *host_; }
    // The kept call records: one locale block per locale, items and encoding.
    zvhost::Session &calls() { return *calls_; }
    const Baseline &baseline() const { return baseline_; }
    std::vector<const FormatTableRow *> rows();
    // The row of that name, any case; null if none.
    const FormatTableRow *row(const std::string &name);

    // Applies a change after checking it (unknown time zone -> false, nothing
    // changed). The returned guard puts the baseline back when it goes.
    class Guard {
    public:
        Guard() = default;
        Guard(Guard &&other) noexcept : session_(std::exchange(other.session_, nullptr)), change_(std::move(other.change_)) {}
        Guard &operator=(Guard &&) = delete;
        ~Guard();

    private:
        friend class Session;
        Session *session_ = nullptr;
        StateChange change_;
    };
    bool apply(const StateChange &change, Guard &guard, std::string &error);

private:
    void restore(const StateChange &change);
    void setClock(const std::optional<std::pair<double, double>> &clock);

    Baseline baseline_;
    std::unique_ptr<zvhost::Host> host_;
    std::unique_ptr<zvhost::Session> calls_;
};

} // namespace zvfmt
