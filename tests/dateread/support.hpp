// Shared by the date reader tests: a loaded module, day counts by the
// standard library's calendar, and calls through the host.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <map>
#include <random>
#include <string>

#include "dateread/dateread.hpp"
#include "dateread/weekread.hpp"
#include "frame/frame.hpp"
#include "zvhost.hpp"

namespace dr {

namespace chr = std::chrono;
inline const double kMiss = std::nan(""); // in a case table: the missing value is wanted

inline double days(chr::sys_days d) { return double((d - chr::sys_days{chr::year{1960} / 1 / 1}).count()); }
inline double dayCount(int y, unsigned m, unsigned d) { return days(chr::year{y} / chr::month{m} / chr::day{d}); }
inline bool same(double got, double want) {
    return std::isnan(want) ? zv::bitsOf(got) == ZV_MISSING_BITS : got == want;
}

class Module : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_NE(host.loadModule(), nullptr); }
    const FormatTableRow &row(const std::string &name) { return *zvhost::findRow(host.instance()->formatTable, name); }
    zvhost::ReadResult read(const std::string &informat, const std::string &text, const std::string &locale = "en_US",
                            const std::map<int, std::string> &items = {}, int fieldLimit = -1) {
        zvhost::CallSpec spec;
        spec.locale = locale, spec.items = items, spec.fieldLimit = fieldLimit;
        return zvhost::runInformat(host, row(informat), spec, text);
    }
    std::string write(const std::string &format, double value, const std::string &locale, int width, int dec = -1) {
        zvhost::CallSpec spec;
        spec.locale = locale, spec.width = width, spec.decimals = dec;
        return zvhost::runFormat(host, row(format), spec, value).utf8;
    }
    // A call on the locale block of `locale`, which the session builds once.
    FormatCall callIn(zvhost::Session &session, const std::string &locale) {
        zvhost::CallSpec spec;
        spec.locale = locale;
        std::string error;
        FormatCall call{};
        call.localeBlock = const_cast<LocaleBlock *>(session.localeBlock(spec, error));
        EXPECT_NE(call.localeBlock, nullptr) << locale << ": " << error;
        return call;
    }
    zvhost::Host host;
};

} // namespace dr
