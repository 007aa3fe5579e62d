// The date pattern reader and its table: the fixed forms of DATE, DATETIME
// and TIME and of the other names, cleaning of the text, exact and free
// digit runs, zones, and differential tests against dates written with
// the standard library's calendar.
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <map>
#include <set>
#include <string>

#include "dateread/dateread.hpp"
#include "frame/frame.hpp"
#include "zvhost.hpp"

namespace {

namespace chr = std::chrono;

constexpr uint64_t kMissing = ZV_MISSING_BITS;
constexpr uint64_t kSentinel = 0x0123456789ABCDEFull;

double dayCount(int y, unsigned m, unsigned d) {
    const chr::sys_days day{chr::year{y} / chr::month{m} / chr::day{d}};
    return double((day - chr::sys_days{chr::year{1960} / 1 / 1}).count());
}

std::u16string narrowToWide(const std::string &s) { return std::u16string(s.begin(), s.end()); }

class PatternReader : public ::testing::Test {
protected:
    void SetUp() override { zvextent(host.anchor()); }
    void TearDown() override { zv::hostAnchor = saved; }

    struct Answer {
        int32_t status;
        uint64_t bits;
        double value;
        int32_t kind;
    };
    Answer read(const std::u16string &name, const std::string &text, const zv::DatePatternRow *row = nullptr,
                int32_t normalise = 1) {
        const std::u16string wide = narrowToWide(text);
        Answer a{};
        double out = zv::doubleOf(kSentinel);
        a.kind = -7;
        a.status = zv::readByPattern(name.empty() ? nullptr : name.data(), static_cast<int64_t>(name.size()), row,
                                     wide.data(), static_cast<int64_t>(wide.size()), &out, &a.kind, normalise);
        a.bits = zv::bitsOf(out);
        a.value = out;
        return a;
    }

    HostAnchor *saved = zv::hostAnchor;
    zvhost::Host host;
};

struct Case {
    const char16_t *name;
    const char *text;
    int32_t status;
    double value;  // NaN: the missing value; infinity: untouched
    int32_t kind;
};

const double kMiss = std::nan("");
const double kUntouched = INFINITY;

TEST_F(PatternReader, FixedForms) {
    const double jan1 = dayCount(2000, 1, 1);
    const Case cases[] = {
        {u"DATE", "01JAN2000", 0, jan1, 1},
        {u"DATE", "01-JAN-2000", 0, jan1, 1},
        {u"DATE", "1 jan 00", 0, jan1, 1},
        {u"DATE", "01/JAN/2000", 0, jan1, 1},
        {u"DATE", "  01january2000", 0, jan1, 1},
        {u"DATE", "01JANVIER2000", 0, jan1, 1},
        {u"DATE", "01.JAN.2000", 999, kMiss, 0},
        {u"DATE", "31FEB2000", 0, kMiss, 1},
        {u"DATE", "01JA2000", 999, kMiss, 0},
        {u"DATE", "1JAN00", 999, kUntouched, 0}, // six characters: no row admits them
        {u"DATETIME", "01JAN2000:12:30:15.25", 0, jan1 * 86400 + 45015.25, 3},
        {u"DATETIME", "01JAN2000 12:30", 0, jan1 * 86400 + 45000, 3},
        {u"DATETIME", "01JAN2000/12:00", 0, jan1 * 86400 + 43200, 3},
        {u"DATETIME", "01JAN2000/12", 999, kUntouched, 0}, // twelve characters
        {u"DATETIME", "01JANUARY2000", 0, kMiss, 0},
        {u"DATETIME", "01JAN2000", 999, kUntouched, 0},
        {u"DATETIME", "01JAN2000:12:30:15.1234567890123456789012345", 0,
         jan1 * 86400 + (0.1234567890123456789 + 45015.0), 3},
        {u"TIME", "12:30", 0, 45000, 2},
        {u"TIME", "1:30", 999, kUntouched, 0},
        {u"TIME", "12:30:15.5", 0, 45015.5, 2},
        {u"TIME", "123456", 0, 123456 * 3600.0, 2},
        {u"TIME", "12:*30", 0, 45000, 2},
        {u"TIME", "12: 30", 0, 45000, 2},
        {u"TIME", "12:30 xyz", 999, kMiss, 0},
        {u"E8601TZ", "12:30:00+02:00", 0, 37800, 2},
        {u"E8601TZ", "12:30:00-05:00", 0, 63000, 2},
        {u"E8601TZ", "12:30:00Z02:00", 999, kMiss, 0},
        {u"E8601TZ", "12:30:00Z", 0, 45000, 2},
        {u"B8601DT", "20240131T123000", 0, dayCount(2024, 1, 31) * 86400 + 45000, 3},
        {u"B8601DT", "20240131T123000.5", 999, kMiss, 0},
        {u"E8601DT", "2024-01-31T12:30:00.25", 0, dayCount(2024, 1, 31) * 86400 + 45000.25, 3},
        {u"E8601DA", "2024-01-31", 0, dayCount(2024, 1, 31), 1},
        {u"E8601DN", "2024-01-31", 0, kMiss, 0},
        {u"YYMMDD", "10203", 0, dayCount(2001, 2, 3), 1},
        {u"YYMMDD", "240131", 0, dayCount(2024, 1, 31), 1},
        {u"YYMMDD", "20240131", 0, dayCount(2024, 1, 31), 1},
        {u"YYMMDD", "24-01-31", 0, dayCount(2024, 1, 31), 1},
        {u"MMDDYY", "01/02/03", 0, dayCount(2003, 1, 2), 1},
        {u"MMDDYY", "010203", 0, dayCount(2003, 1, 2), 1},
        {u"DDMMYY", "010203", 0, dayCount(2003, 2, 1), 1},
        {u"DDMMYY", "01022003", 0, dayCount(2003, 2, 1), 1},
        {u"JULIAN", "24060", 0, dayCount(2024, 2, 29), 1},
        {u"JULIAN", "2023366", 0, kMiss, 1},
        {u"YYQ", "24Q3", 0, dayCount(2024, 7, 1), 1},
        {u"MONYY", "MAR24", 0, dayCount(2024, 3, 1), 1},
        {u"MDYAMPM", "01/02/2003 1:30 PM", 0, dayCount(2003, 1, 2) * 86400 + 48600, 3},
        {u"MDYAMPM", "01/02/2003 12:30 AM", 0, dayCount(2003, 1, 2) * 86400 + 1800, 3},
        {u"MDYAMPM", "01/02/2003", 0, kMiss, 0},
        {u"HHMMSS", "07", 0, 7 * 3600.0, 2},
        {u"HHMMSS", "7", 999, kMiss, 0}, // all digits: two of them exactly
        {u"HHMMSS", "0730", 0, 7 * 3600.0 + 1800, 2},
        {u"HHMMSS", "073015", 0, 7 * 3600.0 + 1815, 2},
        {u"NOSUCH", "01JAN2000", 999, kUntouched, 0},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(std::string(c.name, c.name + std::char_traits<char16_t>::length(c.name)) + " [" + c.text + "]");
        const Answer a = read(c.name, c.text);
        EXPECT_EQ(a.status, c.status);
        // No row admits the length: the kind is not written either.
        EXPECT_EQ(a.kind, std::isinf(c.value) ? -7 : c.kind);
        if (std::isinf(c.value)) {
            EXPECT_EQ(a.bits, kSentinel);
        } else if (std::isnan(c.value)) {
            EXPECT_EQ(a.bits, kMissing);
        } else {
            EXPECT_EQ(a.value, c.value);
        }
    }
}

TEST_F(PatternReader, LongTextIsCutBeforeAnything) {
    // 70 blanks and a word: the word lies beyond the first 64 characters.
    EXPECT_EQ(read(u"TIME", "12:30" + std::string(70, ' ') + "xx").value, 45000.0);
    EXPECT_EQ(read(u"TIME", "12:30" + std::string(50, ' ') + "xx").status, 999);
    // Without cleaning the text is taken as it stands.
    EXPECT_EQ(read(u"TIME", "12:*30", nullptr, 0).status, 999);
}

TEST_F(PatternReader, ZoneUnderLocalNamesFollowsTheClock) {
    host.setClock(0.0, 3600.0);
    EXPECT_EQ(read(u"E8601LZ", "12:30:00+02:00").value, 37800.0 - 3600.0);
    EXPECT_EQ(read(u"B8601LZ", "12:30:00+02:00").value, 37800.0 - 3600.0);
    EXPECT_EQ(read(u"E8601TZ", "12:30:00+02:00").value, 37800.0);
}

TEST_F(PatternReader, CutoffSettlesTwoDigitYears) {
    EXPECT_EQ(read(u"DATE", "01JAN49").value, dayCount(2049, 1, 1));
    host.setOption("ZV_NAME_YEARCUTOFF", 1920);
    EXPECT_EQ(read(u"DATE", "01JAN49").value, dayCount(1949, 1, 1));
}

TEST_F(PatternReader, OneRowAloneAndRowsWithoutPattern) {
    const zv::DatePatternRow *dateRow = nullptr;
    for (const zv::DatePatternRow &r : zv::datePatternTable)
        if (std::u16string_view(r.name) == u"DATE") {
            dateRow = &r;
            break;
        }
    ASSERT_NE(dateRow, nullptr);
    // The first DATE row alone refuses what only the second reads.
    Answer a = read(u"", "01-JAN-2000", dateRow);
    EXPECT_EQ(a.status, 999);
    EXPECT_EQ(a.bits, kMissing);
    // Given a row and a name, the walk goes on through the rows of the name.
    EXPECT_EQ(read(u"DATE", "01-JAN-2000", dateRow).value, dayCount(2000, 1, 1));
    zv::DatePatternRow empty = *dateRow;
    empty.pattern = nullptr;
    EXPECT_EQ(read(u"", "01JAN2000", &empty).status, 1);
}

TEST(PatternTable, RowsStandAsPublished) {
    const zv::DatePatternRow *t = zv::datePatternTable;
    std::map<std::u16string, int> count;
    std::set<std::u16string> closed;
    std::u16string previous;
    for (int i = 0; i < zv::kDatePatternRowCount; ++i) {
        const std::u16string name(t[i].name);
        ++count[name];
        // The rows of one name stand together.
        if (name != previous) {
            EXPECT_EQ(closed.count(name), 0u) << i;
            closed.insert(previous);
            previous = name;
        }
        const std::u16string kind(t[i].kind);
        EXPECT_TRUE(kind == u"DTE" || kind == u"TME" || kind == u"DTM") << i;
        EXPECT_LE(t[i].minLength, t[i].maxLength) << i;
        EXPECT_LE(t[i].minWidth, t[i].maxWidth) << i;
        EXPECT_NE(t[i].pattern, nullptr) << i;
        if (i < 74) {
            EXPECT_EQ(name, u"ANYDATE") << i;
            EXPECT_EQ(t[i].minWidth + t[i].maxWidth + t[i].defaultWidth, 0u) << i;
        }
    }
    EXPECT_EQ(count[u"ANYDATE"], 74);
    EXPECT_EQ(count[u"DATE"], 2);
    EXPECT_EQ(count[u"DATETIME"], 4);
    EXPECT_EQ(count[u"TIME"], 3);
    EXPECT_EQ(std::u16string(t[147].name), u"DUMMY");
    EXPECT_EQ(std::u16string(t[0].pattern), u"%P%m%d%y");
    EXPECT_EQ(std::u16string(t[73].pattern), u"%P%A,%c%d%c%B%c%y");
    EXPECT_EQ(std::u16string(t[109].pattern), u"%P%d%ub%y:%H:%M:%S");
    EXPECT_EQ(std::u16string(t[124].pattern), u"%P%0i:%M:%S+00:00");
}

const char *const kMon[] = {"JAN", "FEB", "MAR", "APR", "MAY", "JUN", "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"};

// Differential: dates and datetimes written by the standard library's
// calendar in the forms of DATE and DATETIME read back to its day count.
TEST_F(PatternReader, AgreesWithTheStandardCalendar) {
    int failures = 0;
    int64_t k = 0;
    for (chr::sys_days d = chr::sys_days{chr::year{1582} / 1 / 1}; d < chr::sys_days{chr::year{3999} / 12 / 31};
         d += chr::days{113}, ++k) {
        const chr::year_month_day ymd{d};
        const int y = int(ymd.year());
        const unsigned m = unsigned(ymd.month()), dd = unsigned(ymd.day());
        const double want = double((d - chr::sys_days{chr::year{1960} / 1 / 1}).count());
        const int secs = int((k * 7919) % 86400);
        char date[32], dashed[32], stamp[48];
        std::snprintf(date, sizeof date, "%02u%s%04d", dd, kMon[m - 1], y);
        std::snprintf(dashed, sizeof dashed, "%u-%s-%04d", dd, k % 2 ? kMon[m - 1] : "jan", y);
        std::snprintf(stamp, sizeof stamp, "%s:%02d:%02d:%02d", date, secs / 3600, secs / 60 % 60, secs % 60);
        const Answer a = read(u"DATE", date), b = read(u"DATETIME", stamp);
        const Answer c = read(u"DATE", dashed);
        const double wantDashed = k % 2 ? want : dayCount(y, 1, dd);
        if (a.status != 0 || a.value != want || b.status != 0 || b.value != want * 86400 + secs ||
            c.status != 0 || c.value != wantDashed) {
            if (++failures < 5) ADD_FAILURE() << date << " " << stamp << " " << dashed;
        }
    }
    EXPECT_EQ(failures, 0);
}

// Every time of a day, in steps, under TIME: h:mm and h:mm:ss.ff.
TEST_F(PatternReader, TimesOfTheDay) {
    int failures = 0;
    for (int s = 0; s < 86400 * 2; s += 61) {
        char hm[32], hms[32];
        std::snprintf(hm, sizeof hm, "%02d:%02d", s / 3600, s / 60 % 60);
        std::snprintf(hms, sizeof hms, "%d:%02d:%02d.25", s / 3600, s / 60 % 60, s % 60);
        const Answer a = read(u"TIME", hm), b = read(u"TIME", hms);
        if (a.value != double(s - s % 60) || b.value != s + 0.25) {
            if (++failures < 5) ADD_FAILURE() << hm << " " << hms << " " << a.value << " " << b.value;
        }
    }
    EXPECT_EQ(failures, 0);
}

} // namespace
