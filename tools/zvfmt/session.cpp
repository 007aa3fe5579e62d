#include "session.hpp"

namespace zvfmt {

zvhost::CallSpec callSpecOf(const Baseline &baseline) {
    zvhost::CallSpec spec;
    spec.locale = baseline.locale;
    spec.items = baseline.items;
    spec.encoding = baseline.encoding;
    spec.measureBytes = baseline.measureBytes;
    spec.validate = baseline.validate;
    return spec;
}

Session::Session(Baseline baseline) : baseline_(std::move(baseline)) {}

Session::~Session() {
    calls_.reset(); // gives its blocks back to the host's pool while the host stands
}

bool Session::start(std::string &error) {
    zvhost::HostConfig config;
    config.timeZone = "UTC";
    host_ = std::make_unique<zvhost::Host>(config);
    if (!host_->setTimeZone(baseline_.timeZone)) {
        error = "unknown time zone \"" + baseline_.timeZone + "\"";
        return false;
    }
    for (const auto &[name, value] : baseline_.options) host_->setOption(name, value);
    setClock(baseline_.clock);
    if (!host_->loadModule()) {
        error = "the module could not be loaded into the host";
        return false;
    }
    calls_ = std::make_unique<zvhost::Session>(*host_);
    if (!host_->transcoder(baseline_.encoding)) {
        error = "unknown encoding \"" + baseline_.encoding + "\"";
        return false;
    }
    // A locale of the environment that the host doesn't know leaves en_US, as
    // date and printf fall back to C.
    if (baseline_.localeFromEnvironment && !host_->locale(baseline_.locale, baseline_.items))
        baseline_.locale = "en_US";
    if (!host_->locale(baseline_.locale, baseline_.items)) {
        error = "unknown locale \"" + baseline_.locale + "\"";
        return false;
    }
    return true;
}

std::vector<const FormatTableRow *> Session::rows() {
    return zvhost::tableRows(host_->instance()->formatTable);
}

const FormatTableRow *Session::row(const std::string &name) {
    return zvhost::findRow(host_->instance()->formatTable, name);
}

void Session::setClock(const std::optional<std::pair<double, double>> &clock) {
    if (clock) host_->setClock(clock->first, clock->second);
    else host_->useSystemClock();
}

bool Session::apply(const StateChange &change, Guard &guard, std::string &error) {
    if (change.timeZone && !host_->timeZone(*change.timeZone)) {
        error = "timeZone: unknown time zone \"" + *change.timeZone + "\"";
        return false;
    }
    if (change.timeZone) host_->setTimeZone(*change.timeZone);
    for (const auto &[name, value] : change.options) {
        if (value) host_->setOption(name, *value);
        else host_->clearOption(name);
    }
    if (change.clock) host_->setClock(change.clock->first, change.clock->second);
    guard.session_ = this;
    guard.change_ = change;
    return true;
}

void Session::restore(const StateChange &change) {
    if (change.timeZone) host_->setTimeZone(baseline_.timeZone);
    for (const auto &entry : change.options) {
        auto it = baseline_.options.find(entry.first);
        if (it != baseline_.options.end()) host_->setOption(it->first, it->second);
        else host_->clearOption(entry.first);
    }
    if (change.clock) setClock(baseline_.clock);
}

Session::Guard::~Guard() {
    if (session_) session_->restore(change_);
}

} // namespace zvfmt
