// The ANY-date guesses: which row reads an ambiguous text, the retry with
// four-digit years, the colon that lets time rows in, what each of the
// three keeps, and a differential sweep over many dates in common layouts.
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>

#include "dateread/dateread.hpp"
#include "frame/frame.hpp"
#include "zvhost.hpp"

namespace {

namespace chr = std::chrono;

constexpr uint64_t kMissing = ZV_MISSING_BITS;

double dayCount(int y, unsigned m, unsigned d) {
    const chr::sys_days day{chr::year{y} / chr::month{m} / chr::day{d}};
    return double((day - chr::sys_days{chr::year{1960} / 1 / 1}).count());
}

enum class Which { Date, Time, DateTime };

class Guess : public ::testing::Test {
protected:
    void SetUp() override { zvextent(host.anchor()); }
    void TearDown() override { zv::hostAnchor = saved; }

    // Runs a guess with the width given (-1: the text's length).
    double run(Which which, const std::string &text, int width = -1, int32_t *status = nullptr) {
        const std::u16string wide(text.begin(), text.end());
        FormatCall call;
        std::memset(&call, 0, sizeof call);
        double out = 12345.0;
        call.input = wide.data();
        call.inputLength = static_cast<int32_t>(wide.size());
        call.width = width < 0 ? static_cast<int32_t>(wide.size()) : width;
        call.fieldLimit = 1; // not looked at
        call.output = &out;
        const FormatCall before = call;
        int32_t s = which == Which::Date ? zv::readAnyDate(&call, nullptr)
                    : which == Which::Time ? zv::readAnyTime(&call, nullptr)
                                           : zv::readAnyDateTime(&call, nullptr);
        EXPECT_EQ(std::memcmp(&before, &call, sizeof call), 0) << text;
        if (status) *status = s;
        EXPECT_EQ(s, 0);
        return out;
    }

    HostAnchor *saved = zv::hostAnchor;
    zvhost::Host host;
};

struct Case {
    const char *text;
    Which which;
    double value; // NaN: missing
};

TEST_F(Guess, Table) {
    const double dec25 = dayCount(2024, 12, 25);
    const double nan = std::nan("");
    const Case cases[] = {
        {"12/25/2024", Which::Date, dec25},
        {"25/12/2024", Which::Date, dec25},
        {"2024-12-25", Which::Date, dec25},
        {"12/25/2024", Which::DateTime, dec25 * 86400},
        {"12/25/2024", Which::Time, 0.0},
        {"010203", Which::Date, dayCount(2003, 1, 2)},
        {"130203", Which::Date, dayCount(2003, 2, 13)},  // month 13: day, month, year
        {"01022003", Which::Date, dayCount(2003, 1, 2)}, // read again with a four-digit year
        {"1200", Which::Date, dayCount(2000, 12, 1)},     // no colon, no time row
        {"12:00", Which::Time, 43200.0},
        {"12:00", Which::Date, 0.0},
        {"12:00", Which::DateTime, 43200.0},
        {"12:30:15", Which::Time, 45015.0},
        {"1:30 PM", Which::Time, 48600.0},
        {"25DEC2024", Which::Date, dec25},
        {"25-Dec-2024", Which::Date, dec25},
        {"Dec 25, 2024", Which::Date, dec25},
        {"December 25, 2024", Which::Date, dec25},
        {"Wednesday, December 25, 2024", Which::Date, dec25},
        {"2024Q3", Which::Date, dayCount(2024, 7, 1)},
        {"2024-III", Which::Date, dayCount(2024, 7, 1)},
        {"24366", Which::Date, dayCount(2024, 12, 31)},
        {"25DEC2024:13:30:15", Which::DateTime, dec25 * 86400 + 48615},
        {"25DEC2024:13:30:15", Which::Time, 48615},
        {"25DEC2024:13:30:15", Which::Date, dec25},
        {"31DEC1959:23:59:59", Which::DateTime, -1.0},
        {"31DEC1959:23:59:59", Which::Date, 0.0},   // towards zero
        {"31DEC1959:23:59:59", Which::Time, -1.0},  // the sign of the value
        {"2024-12-25T13:30:15", Which::DateTime, dec25 * 86400 + 48615},
        {"   12/25/2024", Which::Date, dec25},
        {"", Which::Date, nan},
        {"      ", Which::DateTime, nan},
        {"hello world", Which::Date, nan},
        {"13/13/2024", Which::Date, nan},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(std::string("[") + c.text + "] " + std::to_string(int(c.which)));
        const double v = run(c.which, c.text);
        if (std::isnan(c.value)) {
            EXPECT_EQ(zv::bitsOf(v), kMissing);
        } else {
            EXPECT_EQ(v, c.value);
        }
    }
}

TEST_F(Guess, WidthCutsTheText) {
    EXPECT_EQ(run(Which::Date, "12/25/2024xyz", 10), dayCount(2024, 12, 25));
    EXPECT_EQ(zv::bitsOf(run(Which::Date, "12/25/2024xyz")), kMissing);
    // A text longer than 200 characters is cut at 200.
    EXPECT_EQ(run(Which::Date, "12/25/2024" + std::string(300, ' ') + "x", 400), dayCount(2024, 12, 25));
}

TEST_F(Guess, CutoffSettlesTwoDigitYears) {
    EXPECT_EQ(run(Which::Date, "010249"), dayCount(2049, 1, 2));
    host.setOption("ZV_NAME_YEARCUTOFF", 1920);
    EXPECT_EQ(run(Which::Date, "010249"), dayCount(1949, 1, 2));
}

// Differential: many dates written by the standard library in layouts where
// the day cannot be taken for a month read back to its day count.
TEST_F(Guess, AgreesWithTheStandardCalendar) {
    static const char *const mon[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                      "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    int failures = 0;
    for (chr::sys_days d = chr::sys_days{chr::year{1600} / 1 / 1}; d < chr::sys_days{chr::year{3999} / 1 / 1};
         d += chr::days{131}) {
        const chr::year_month_day ymd{d};
        const int y = int(ymd.year());
        const unsigned m = unsigned(ymd.month()), dd = unsigned(ymd.day());
        const double want = double((d - chr::sys_days{chr::year{1960} / 1 / 1}).count());
        char iso[32], us[32], named[32], dashed[32];
        std::snprintf(iso, sizeof iso, "%04d-%02u-%02u", y, m, dd);
        std::snprintf(us, sizeof us, "%02u/%02u/%04d", m, dd, y);
        std::snprintf(named, sizeof named, "%s %u, %04d", mon[m - 1], dd, y);
        std::snprintf(dashed, sizeof dashed, "%02u-%s-%04d", dd, mon[m - 1], y);
        for (const char *text : {iso, us, named, dashed}) {
            const double v = run(Which::Date, text);
            if (v != want && ++failures < 8) ADD_FAILURE() << text << " -> " << v << " want " << want;
        }
    }
    EXPECT_EQ(failures, 0);
}

} // namespace
