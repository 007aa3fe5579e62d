// What the date tests share: a second calendar (Howard Hinnant's civil-day
// algorithms, proleptic Gregorian), a host with the module loaded, and a
// locale of English names whose items the tests set.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <ctime>
#include <map>
#include <string>

#include "zvhost.hpp"

namespace dt {

// Days from 1 January 1960 of a proleptic Gregorian date.
inline int64_t civilDays(int64_t y, int64_t m, int64_t d) {
    y -= m <= 2;
    const int64_t era = (y >= 0 ? y : y - 399) / 400, yoe = y - era * 400;
    const int64_t doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + d - 1;
    return era * 146097 + yoe * 365 + yoe / 4 - yoe / 100 + doy - 719468 + 3653;
}

struct Civil { int64_t y; int m, d; };
inline Civil civilFromDays(int64_t z) {
    z += 719468 - 3653;
    const int64_t era = (z >= 0 ? z : z - 146096) / 146097, doe = z - era * 146097;
    const int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100), mp = (5 * doy + 2) / 153;
    const int m = int(mp < 10 ? mp + 3 : mp - 9);
    return {yoe + era * 400 + (m <= 2), m, int(doy - (153 * mp + 2) / 5 + 1)};
}
// Days of the module's calendar, which has no 29 February in years that
// 4000 divides.
inline double moduleDays(int64_t y, int m, int d) {
    int64_t dropped = 0;
    for (int64_t k = 4000; k <= y; k += 4000) dropped += k < y || m > 2;
    return double(civilDays(y, m, d) - dropped);
}
// 0 Sunday .. 6 Saturday.
inline int civilWeekday(int64_t days) { return int(((days + 5) % 7 + 7) % 7); }

// The civil fields of a day count and a second of the day, for strftime.
inline std::tm tmOf(int64_t day, int64_t second = 0) {
    const Civil c = civilFromDays(day);
    std::tm tm{};
    tm.tm_year = int(c.y - 1900), tm.tm_mon = c.m - 1, tm.tm_mday = c.d, tm.tm_yday = int(day - civilDays(c.y, 1, 1));
    tm.tm_wday = civilWeekday(day), tm.tm_hour = int(second / 3600), tm.tm_min = int(second / 60 % 60), tm.tm_sec = int(second % 60);
    return tm;
}

using Items = std::map<int, std::string>;

inline Items englishItems() {
    Items it;
    const char *months[12] = {"January", "February", "March", "April", "May", "June", "July", "August", "September", "October", "November", "December"};
    const char *days[7] = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
    for (int m = 0; m < 12; ++m) {
        it[71 + m] = it[95 + m] = months[m];
        it[59 + m] = it[83 + m] = std::string(months[m]).substr(0, 3);
    }
    for (int d = 0; d < 7; ++d) {
        it[114 + d] = it[128 + d] = days[d];
        it[107 + d] = it[121 + d] = std::string(days[d]).substr(0, 3);
    }
    for (int q = 0; q < 4; ++q) {
        it[139 + q] = it[147 + q] = "quarter " + std::to_string(q + 1);
        it[135 + q] = it[143 + q] = "Q" + std::to_string(q + 1);
    }
    it[151] = "AM", it[152] = "PM", it[172] = ".", it[6] = "MDY", it[153] = "/", it[58] = "%x %X";
    it[28] = it[31] = "%B %#d, %Y", it[29] = it[30] = "%b %#d, %Y", it[32] = "%A, %B %#d, %Y", it[33] = "%a, %b %#d, %Y";
    it[34] = "%B %Y", it[35] = "%b %Y", it[36] = "%B %#d", it[37] = "%b %#d";
    it[38] = "%Y", it[39] = "%y", it[40] = "%Q %Y", it[41] = "%q %Y", it[42] = "%Y-W%U", it[43] = "%y-%U";
    it[44] = "%B %#d, %Y %I:%M:%S %p", it[46] = it[49] = "%B %#d, %Y %H:%M:%S", it[47] = "%m/%d/%Y %H:%M:%S";
    it[48] = "%b %#d, %Y %H:%M:%S", it[50] = "%A, %B %#d, %Y %H:%M:%S", it[51] = "%a, %b %#d, %Y %H:%M";
    it[52] = "%I:%M:%S %p", it[53] = "%H:%M:%S";
    return it;
}

class Module : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_NE(host.loadModule(), nullptr); }

    zvhost::FormatResult call(const std::string &row, double value, int width, int decimals = 0, const Items &items = englishItems(),
                              const std::string &locale = "en_US") {
        zvhost::CallSpec spec;
        spec.locale = locale, spec.items = items, spec.width = width, spec.decimals = decimals;
        const FormatTableRow *r = zvhost::findRow(host.instance()->formatTable, row);
        EXPECT_NE(r, nullptr) << row;
        return r ? zvhost::runFormat(host, *r, spec, value) : zvhost::FormatResult{};
    }
    std::string text(const std::string &row, double value, int width, int decimals = 0, const Items &items = englishItems()) {
        return call(row, value, width, decimals, items).utf8;
    }

    zvhost::Host host;
};

inline std::string pad(std::string s, size_t width) { return s.size() < width ? s + std::string(width - s.size(), ' ') : s; }

} // namespace dt
