// Clock texts, NLTIME and NLTIMAP, the zone forms against ICU's offsets,
// and the week forms against strftime.
#include <unicode/basictz.h>

#include <cmath>
#include <cstring>
#include <ctime>
#include <memory>
#include <tuple>

#include "dates.hpp"
#include "datefmt/clock.hpp"
#include "frame/frame.hpp"

namespace {

class Times : public dt::Module {
protected:
    // A clock routine on a call of the en_US locale: its status and text.
    std::pair<int32_t, std::string> run(int32_t (*routine)(FormatCall *), double value, int width, int decimals,
                                        uint32_t flags = 0) {
        std::u16string out(64, u'#');
        FormatCall c;
        std::memset(&c, 0, sizeof c);
        c.width = width, c.decimals = decimals, c.input = &value, c.output = out.data(), c.outputCapacity = 64;
        c.locale = host.locale("en_US"), c.services = host.services(), c.flags = flags;
        const int32_t status = routine(&c);
        return {status, zvhost::utf8(out.substr(0, size_t(std::clamp(c.outputLength, 0, 64))))};
    }
    std::string clock(double value, int width, int decimals) {
        const auto [status, text] = run(zv::writeClock, value, width, decimals);
        EXPECT_TRUE(status == 0 && text.size() == size_t(width));
        return text;
    }
};

TEST_F(Times, ClockTexts) {
    struct C { double value; int width, decimals; const char *text; };
    for (C c : {C{50829.6, 2, 0, "14"}, C{50829.6, 5, 0, "14:07"}, C{50829.6, 8, 0, "14:07:10"}, C{50829.6, 9, 3, " 14:07:10"},
                C{50829.6, 10, 1, "14:07:09.6"}, C{50829.6, 10, 3, "14:07:09.6"}, C{50829.6, 12, 3, "14:07:09.600"},
                C{50829.6, 1, 0, "*"}, C{50879.96, 10, 1, "14:08:00.0"}, C{50879.96, 5, 1, "14:08"},
                C{50879.96, 8, 0, "14:08:00"}, C{50829.96, 10, 1, "14:07:10.0"}, C{50829.96, 11, 2, "14:07:09.96"},
                C{86399.7, 8, 0, "24:00:00"}, C{32703, 10, 0, "   9:05:03"}, C{35999.5, 8, 0, "10:00:00"},
                C{3599.95, 9, 1, "1:00:00.0"}, C{59.4, 7, 0, "0:00:59"}, C{50829.04, 11, 1, " 14:07:09.0"},
                C{50879.96, 10, 3, "14:08:00.0"}, C{53999.96, 10, 3, "15:00:00.0"}}) // the width rounds, not the decimals
    {
        EXPECT_EQ(clock(c.value, c.width, c.decimals), c.text) << c.value << " " << c.width << "." << c.decimals;
        host.faults().failFormatNumber = 1; // the seconds then come from the clock's own digits
        EXPECT_EQ(clock(c.value, c.width, c.decimals), c.text) << c.value << " " << c.width << "." << c.decimals << " by hand";
        host.faults().failFormatNumber = 0;
    }
}

// The clock of a second count answers its own limits, missing values and
// range, as no row in front of it asks it to.
TEST_F(Times, ClockOfDatetimeOnItsOwn) {
    struct C { double value; int width, decimals; uint32_t flags; int32_t status; const char *text; };
    for (C c : {C{50829, 1, 0, ZV_FLAG_CHECK_LIMITS, ZV_WIDTH_TOO_SMALL, ""}, C{50829, 41, 0, ZV_FLAG_CHECK_LIMITS, 3, ""},
                C{50829, 8, -1, ZV_FLAG_CHECK_LIMITS, 4, ""}, C{50829, 8, 40, ZV_FLAG_CHECK_LIMITS, 5, ""},
                C{50829, 41, 0, 0, 0, "14:07:09"}, C{zv::missingValue(), 8, 0, 0, 0, "."},
                C{1e12, 4, 0, 0, 1, "****"}, C{-86400.0 + 50829, 8, 0, 0, 0, "14:07:09"},
                C{50829, 2, 0, ZV_FLAG_CHECK_LIMITS, 0, "14"}, C{50829, 40, 39, ZV_FLAG_CHECK_LIMITS, 0, "14:07:09.0000000000000000000000000000000"}}) {
        const auto [status, text] = run(zv::writeClockOfDatetime, c.value, c.width, c.decimals, c.flags);
        EXPECT_EQ(status, c.status) << c.width << "." << c.decimals;
        if (*c.text) { EXPECT_TRUE(text.size() == size_t(c.width) && text.ends_with(c.text)) << c.value << ": " << text; }
    }
}

TEST_F(Times, TimeFormats) {
    struct C { const char *row; double value; int width, decimals; const char *pattern, *text; };
    for (C c : {C{"NLTIME", 50829.25, 20, 2, "%H:%M:%S", "14:07:09.25"}, C{"NLTIME", 50829.25, 10, 3, "%H:%M:%S", "14:07:09.3"},
                C{"NLTIME", 32703, 10, 0, "%H:%M:%S and more", "9:05:03"}, C{"NLTIME", -60, 10, 0, "%H:%M:%S", "23:59:00"},
                C{"NLTIME", -60, 10, 0, "%H:%M:%S and more", "23:59:00"}, C{"NLTIME", 3 * 86400 + 50829, 10, 0, "%T", "14:07:09"},
                C{"NLTIME", 3 * 86400 + 50829, 7, 0, "%T", "14:07"}, C{"NLTIME", 50829, 20, -2, "%T", ""},
                C{"NLTIMAP", 50829, 10, 0, "%I:%M:%S %p!", "2:07:09 PM"}, C{"NLTIMAP", 50829, 8, 0, "-", "2:07 PM"},
                C{"NLTIMAP", 50829, 5, 0, "-", "2 PM"}, C{"NLTIMAP", 50829, 4, 0, "-", "PM"}, C{"NLTIMAP", 1800, 4, 0, "-", "AM"},
                C{"NLTIMAP", 1800, 10, 0, "-", "12:30 AM"}, C{"NLTIMAP", 43200, 10, 0, "-", "12:00 PM"},
                C{"NLTIMAP", 43200, 11, 0, "-", "12:00:00 PM"}, C{"NLTIMAP", 43199.5, 11, 0, "-", "12:00:00 PM"},
                C{"NLTIMAP", 43199.96, 13, 1, "-", "12:00:00.0 PM"}, C{"NLTIMAP", 86399.5, 11, 0, "-", "12:00:00 AM"},
                C{"NLTIMAP", -86400, 11, 0, "%H:%M", "24:00"}, C{"NLTIMAP", 50829, 30, 0, "%I:%M:%S %p", "02:07:09 PM"}}) {
        dt::Items items = dt::englishItems();
        items[52] = items[53] = std::string(c.pattern) == "-" ? "%I:%M:%S %p and more" : c.pattern;
        const zvhost::FormatResult r = call(c.row, c.value, c.width, c.decimals, items);
        EXPECT_TRUE(r.status == 0 && (c.decimals < 0 || r.utf8 == dt::pad(c.text, size_t(c.width)))) << c.row << " " << c.value << " " << c.width << ": " << r.utf8;
    }
}

// The offset of the value's own instant, from ICU's zone data, behind the
// time of day; its seconds are dropped.
TEST_F(Times, ZoneFormsShowIcusOffsets) {
    for (const char *zone : {"Asia/Kolkata", "Europe/Berlin", "America/St_Johns", "America/New_York"}) {
        ASSERT_TRUE(host.setTimeZone(zone));
        std::unique_ptr<icu::BasicTimeZone> tz(dynamic_cast<icu::BasicTimeZone *>(icu::TimeZone::createTimeZone(zone)));
        for (double v = -86400 * 40000.0 + 1234; v < 86400 * 26000.0; v += 86400 * 61.3 + 3700) {
            UErrorCode status = U_ZERO_ERROR;
            int32_t raw = 0, dst = 0;
            // The second is read as wall time: a time in a spring gap by the
            // offset before the change, a repeated one as its later occurrence.
            const UDate local = (v - 3653 * 86400.0) * 1000;
            tz->getOffsetFromLocal(local, UCAL_TZ_LOCAL_FORMER, UCAL_TZ_LOCAL_LATTER, raw, dst, status);
            tz->getOffset(local - raw - dst, false, raw, dst, status);
            const int offset = (raw + dst) / 1000, a = std::abs(offset);
            const int64_t t = int64_t(std::fmod(std::fmod(v, 86400) + 86400, 86400));
            char expected[40];
            std::snprintf(expected, sizeof expected, "%02d:%02d:%02d %c%02d%02d", int(t / 3600), int(t / 60 % 60), int(t % 60),
                          offset < 0 ? '-' : '+', a / 3600, a % 3600 / 60);
            ASSERT_EQ(text("NLDATMTZ", v, 32).substr(0, 14), expected) << zone << " " << v;
        }
    }
    ASSERT_TRUE(host.setTimeZone("Asia/Kolkata"));
    const double t = 23440 * 86400.0 + 50829;
    dt::Items items = dt::englishItems();
    items[46] = "%A, %B %#d, %Y %H:%M:%S";
    EXPECT_EQ(text("NLDATMZ", t, 16, 0, items), "030524 14 +0530 ");
    EXPECT_EQ(text("NLDATMZ", t, 40, 0, items), dt::pad("Tuesday, March 5, 2024 14:07:09 +0530", 40));
    EXPECT_EQ(text("NLDATMZ", t, 30, 0, items), dt::pad("03/05/2024 14:07:09 +0530", 30));
    EXPECT_EQ(text("NLDATMWZ", t, 22, 0, items), dt::pad("Tuesday +0530", 22));
    items[53] = "%H:%M:%S and more";
    EXPECT_EQ(text("NLDATMTZ", t + 0.25, 22, 2, items), dt::pad("14:07:09.25 +0530", 22));
    EXPECT_EQ(text("NLDATMTM", t - 36846, 16, 0, items), dt::pad("03:53:03", 16));
    EXPECT_EQ(text("NLDATMTM", t, 16), dt::pad("14:07:09", 16));
    zvhost::CallSpec spec; // "14:07:09 äää +0530" fits 20 characters, not 20 bytes
    spec.measureBytes = true, spec.width = 20, spec.items = dt::englishItems(), spec.items[53] = "%H:%M:%S <U00E4><U00E4><U00E4>";
    for (const char *row : {"NLDATMTZ", "NLDATMTM"})
        EXPECT_EQ(zvhost::runFormat(host, *zvhost::findRow(host.instance()->formatTable, row), spec, t).utf8,
                  std::string(row) == "NLDATMTZ" ? dt::pad("14:07:09 +0530", 20) : "14:07:09 \xc3\xa4\xc3\xa4\xc3\xa4" + std::string(8, ' '));
    items[46] = items[47] = "%A %A %A %A";
    EXPECT_EQ(text("NLDATMZ", 3700000.0 * 86400, 26, 0, items), std::string(26, '*'));
}

// The week rows write, in their own shapes, the week numbers that the
// calendar test checks day by day against strftime.
TEST_F(Times, WeekFormsAgreeWithStrftime) {
    for (int64_t day = dt::civilDays(1999, 12, 20); day < dt::civilDays(2031, 1, 10); day += 13) {
        const std::tm tm = dt::tmOf(day);
        const auto f = [&](const char *form) { char b[32]; std::strftime(b, sizeof b, form, &tm); return std::string(b); };
        for (auto [row, width, want] : {std::tuple<const char *, int, std::string>{"WEEKU", 11, f("%Y-W%U-0") + char('1' + tm.tm_wday)},
                                        {"WEEKV", 11, f("%G-W%V-0%u")}, {"WEEKW", 11, f("%Y-W%W-0%u")}, {"YYWEEKU", 8, f("%Y-W%U")},
                                        {"YYWEEKV", 8, f("%G-W%V")}, {"YYWEEKW", 8, f("%Y-W%W")}})
            EXPECT_EQ(text(row, double(day), width), want) << row << " " << day;
        EXPECT_EQ(text("DTWEEKV", double(day) * 86400 + 50829, 20), f("%G-W%V-0%u") + ":14:07:09");
    }
}

TEST_F(Times, WeekFormsByWidth) {
    const char *weekv[] = {"1", "10", "W10", "W10 ", "24W10", "24W10 ", "24W1002", "24W1002 ", "2024W1002", "2024W1002 ", "2024-W10-02"};
    const char *yyweekv[] = {"", "10", "W10", " W10", "24W10", " 24W10", "2024W10", "2024-W10"};
    for (int w = 1; w <= 11; ++w) EXPECT_EQ(text("WEEKV", 23440, w), weekv[w - 1]) << w;
    for (int w = 2; w <= 8; ++w) EXPECT_EQ(text("YYWEEKV", 23440, w), yyweekv[w - 1]) << w;
    const double t = 23440 * 86400.0 + 50829;
    for (auto [w, expected] : {std::pair{18, "2024W1002:14:07:09"}, std::pair{20, "2024-W10-02:14:07:09"}, std::pair{17, "2024W1002:14:07"},
                               std::pair{15, "2024W1002:14:07"}, std::pair{14, "2024W1002:14"}, std::pair{12, "2024W1002:14"},
                               std::pair{11, "2024-W10-02"}})
        EXPECT_EQ(text("DTWEEKV", t, w), dt::pad(expected, size_t(w))) << w;
    EXPECT_EQ(text("DTWEEKV", 23440 * 86400.0 + 86399.7, 18), "2024W1002:24:00:00");
    EXPECT_EQ(text("DTWEEKV", -1, 18), "1959W5304:23:59:59");
    EXPECT_EQ(text("DTWEEKV", -86400, 18), "1959W5304:00:00:00");
}

} // namespace
