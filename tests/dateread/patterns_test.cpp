// The fixed pattern reader. Every row of the table, and patterns with the
// directives that no row uses, read back texts written here from the pattern
// itself with random dates and times, to the day count of the standard
// library's calendar; then the cases the named forms are known by.
#include <set>
#include <vector>

#include "support.hpp"

namespace {

using namespace dr;

const char *const kMonths[] = {"January", "February", "March",     "April",   "May",      "June",
                               "July",    "August",   "September", "October", "November", "December"};
const char *const kWeekdays[] = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
const char *const kRoman[] = {"I", "II", "III", "IV"};

// A pattern cut into literal characters and directive words.
std::vector<std::u16string> cut(const std::u16string &p) {
    std::vector<std::u16string> out;
    for (size_t i = 0; i < p.size();) {
        if (p[i] != u'%' || i + 1 >= p.size()) {
            out.push_back(p.substr(i++, 1));
            continue;
        }
        std::u16string w(1, p[i + 1]);
        i += 2;
        if (std::u16string_view(u"01xu.").find(w[0]) != std::u16string_view::npos && i < p.size()) {
            w += p[i++];
            if (w == u"u1" && i < p.size()) w += p[i++];
        } else if (w == u"w" && i < p.size() && p[i] == u'1') {
            ++i;
        }
        out.push_back(u"%" + (w == u".d" ? u"d" : w));
    }
    return out;
}

// Writes random fields in the places `pattern` gives them, and works out the
// value and kind that a row of `kind` gives for the text.
std::string writeByPattern(const zv::DatePatternRow &row, std::mt19937 &rng, double *want, int32_t *wantKind) {
    const std::vector<std::u16string> ds = cut(row.pattern);
    auto has = [&](const char16_t *w) { return std::find(ds.begin(), ds.end(), w) != ds.end(); };
    auto pick = [&](int lo, int hi) { return lo + int(rng() % unsigned(hi - lo + 1)); };
    const bool shortYear = has(u"%y") || has(u"%0y"); // settled by the default pivot 1950
    const chr::sys_days date = chr::sys_days{chr::year{shortYear ? 1950 : 1582} / 1 / 1} +
                               chr::days{pick(0, shortYear ? 36523 : 876000)};
    const chr::year_month_day ymd{date};
    const int year = int(ymd.year()), yday = int((date - chr::sys_days{ymd.year() / 1 / 1}).count()) + 1;
    int month = int(unsigned(ymd.month())), day = int(unsigned(ymd.day()));
    const int quarter = pick(1, 4), hour = pick(0, 23), minute = pick(0, 59), second = pick(0, 59);
    const int zoneHour = pick(0, 14), zoneMinute = pick(0, 1) * 30, sign = pick(0, 1) ? 1 : -1;
    const int weekday = int(chr::weekday{date}.c_encoding());
    std::set<char> seen;
    bool zone = false;
    std::string text;
    auto num = [&](int v, int width, char field) {
        text += std::string(width - std::min<int>(width, std::to_string(v).size()), '0') + std::to_string(v);
        if (field) seen.insert(field);
    };
    auto name = [&](std::string n, bool abbr) {
        if (abbr) n.resize(3);
        if (rng() % 2)
            for (char &c : n) c = char(std::toupper(c));
        text += n;
    };
    for (size_t k = 0; k < ds.size(); ++k) {
        const std::u16string &w = ds[k];
        const char16_t last = w.back();
        if (w[0] != u'%' || w.size() == 1) text += char(w[0]);
        else if (w == u"%y" || w == u"%0y") num(year % 100, 2, 'y');
        else if (w == u"%Y" || w == u"%xY" || w == u"%xy") num(year, 4, 'y');
        else if (w == u"%m" || w == u"%0m") num(month, 2, 'm');
        else if (w == u"%d" || w == u"%0d") num(day, 2, 'd');
        else if (w == u"%j") num(yday, 3, 'j');
        else if (w == u"%q") num(quarter, 1, 'q');
        else if (w == u"%r") text += kRoman[quarter - 1], seen.insert('q');
        else if (last == u'b' || last == u'B') name(kMonths[month - 1], last == u'b'), seen.insert('m');
        else if (last == u'a' || last == u'A') name(kWeekdays[weekday], last == u'a');
        else if (w == u"%w") num(weekday + 1, 1, 0);
        else if (w == u"%e") num(pick(0, 999), 1, 0);
        else if (zone && (w == u"%H" || w == u"%M")) num(w == u"%H" ? zoneHour : zoneMinute, 2, 0);
        else if (last == u'H' || last == u'i' || last == u'I') num(has(u"%p") ? (hour + 11) % 12 + 1 : hour, 2, 'H');
        else if (last == u'M') num(minute, 2, 'M');
        else if (last == u'S') num(second, 2, 'S');
        else if (w == u"%p") text += hour < 12 ? "AM" : "pm";
        else if (w == u"%z") text += "UTC";
        else if (w == u"%G") text += sign > 0 ? '+' : '-', zone = true;
        else if (w == u"%c" || w == u"%C") {
            // A run of %c goes on into letters: a word behind it needs a blank.
            const bool word = k + 1 < ds.size() && std::u16string_view(u"bBaApzr").find(ds[k + 1].back()) !=
                                                       std::u16string_view::npos;
            text += w == u"%c" && word ? ' ' : "/-: "[pick(0, 3)];
        }
    }
    auto got = [&](char f) { return seen.count(f) > 0; };
    if (got('q')) month = quarter * 3 - 2;
    if (!got('d')) day = 1;
    double dateValue = kMiss;
    if (got('y') && got('j')) dateValue = days(chr::sys_days{ymd.year() / 1 / 1}) + yday - 1;
    else if (got('y') && (got('m') || got('q'))) dateValue = dayCount(year, unsigned(month), unsigned(day));
    const bool timeRead = got('H') || got('M') || got('S');
    const double time = (zone ? -sign * (zoneHour * 3600.0 + zoneMinute * 60.0) : 0.0) +
                        (got('H') ? hour : 0) * 3600.0 + (got('M') ? minute : 0) * 60.0 + (got('S') ? second : 0);
    const std::u16string kind(row.kind);
    *wantKind = kind == u"DTE" ? 1 : kind == u"TME" ? 2 : std::isnan(dateValue) || !timeRead ? 0 : 3;
    *want = *wantKind == 1 ? dateValue : *wantKind == 2 ? (timeRead ? time : kMiss)
            : *wantKind == 3 ? dateValue * 86400.0 + time : kMiss;
    return text;
}

using Patterns = Module;

TEST_F(Patterns, EveryRowReadsWhatItsPatternDescribes) {
    std::vector<zv::DatePatternRow> rows(std::begin(zv::datePatternTable), std::end(zv::datePatternTable));
    for (auto [kind, pattern] : {std::pair{u"DTM", u"%P%e %xY-%0m-%.d %0H:%0M:%0S"},
                                 std::pair{u"DTM", u"%P%w1 %xA %1b %xy %I:%M %p"},
                                 std::pair{u"DTE", u"%P%u1b/%xB/%d/%Y"}})
        rows.push_back({u"X", 0, 0, 0, 0, 0, kind, pattern});
    std::mt19937 rng(5);
    int failures = 0, read = 0;
    for (const zv::DatePatternRow &row : rows) {
        for (int i = 0; i < 40; ++i) {
            double want = 0, out = 0;
            int32_t wantKind = 0, kind = -1;
            const std::string text = writeByPattern(row, rng, &want, &wantKind);
            if (text.empty()) continue;
            const std::u16string wide(text.begin(), text.end());
            const int32_t s = zv::readByPattern(nullptr, 0, &row, wide.data(), int64_t(wide.size()), &out, &kind, i % 2);
            ++read;
            if ((s != 0 || !same(out, want) || kind != wantKind) && ++failures < 6)
                ADD_FAILURE() << zvhost::utf8(row.pattern) << " [" << text << "] " << s << " " << out << " kind "
                              << kind << ", want " << want << " kind " << wantKind;
        }
    }
    EXPECT_EQ(failures, 0);
    EXPECT_GT(read, 5000);
}

struct Case {
    const char16_t *name;
    std::string text;
    int32_t status;
    double value; // infinity: the output is not touched
};

TEST_F(Patterns, NamedForms) {
    const double jan1 = dayCount(2000, 1, 1), untouched = INFINITY, jan31 = dayCount(2024, 1, 31);
    const Case cases[] = {
        {u"DATE", "01-JAN-2000", 0, jan1},
        {u"DATE", "1 jan 00", 0, jan1},
        {u"DATE", "01/JAN/2000", 0, jan1},
        {u"DATE", "01.JAN.2000", 999, kMiss}, // "." stops the run of %C
        {u"DATE", "31FEB2000", 0, kMiss},     // accepted, so no later row is tried
        {u"DATE", "1JAN00", 999, untouched},  // no row admits six characters
        {u"DATETIME", "01JAN2000:12:30:15.1234567890123456789012345", 0,
         jan1 * 86400 + (0.1234567890123456789 + 45015.0)},
        {u"DATETIME", "01JAN2000 12:30", 0, jan1 * 86400 + 45000},
        {u"DATETIME", "01JANUARY2000", 0, kMiss},
        {u"TIME", "12:30:15.5", 0, 45015.5},
        {u"TIME", "1:30", 999, untouched},
        {u"TIME", "123456", 0, 123456 * 3600.0},
        {u"TIME", "12:*30", 0, 45000},
        {u"TIME", "  12:  30", 0, 45000},
        {u"TIME", "12:30" + std::string(70, ' ') + "xx", 0, 45000}, // cut at 64 characters
        {u"TIME", "12:30" + std::string(50, ' ') + "xx", 999, kMiss},
        {u"E8601TZ", "12:30:00-05:00", 0, 63000},
        {u"E8601TZ", "12:30:00Z02:00", 999, kMiss},
        {u"B8601TZ", "123000-0500", 0, 63000},
        {u"B8601DZ", "20240131T123000+0200", 0, jan31 * 86400 + 37800},
        {u"B8601DT", "20240131T123000.5", 999, kMiss},
        {u"YYMMDD", "10203", 0, dayCount(2001, 2, 3)},
        {u"DDMMYY", "01022003", 0, dayCount(2003, 2, 1)},
        {u"JULIAN", "2023366", 0, kMiss},
        {u"NOSUCH", "01JAN2000", 999, untouched},
    };
    for (const Case &c : cases) {
        const std::u16string text(c.text.begin(), c.text.end()), name(c.name);
        double out = 42;
        int32_t kind = 0;
        EXPECT_EQ(zv::readByPattern(name.data(), int64_t(name.size()), nullptr, text.data(), int64_t(text.size()),
                                    &out, &kind, 1),
                  c.status)
            << c.text;
        EXPECT_TRUE(std::isinf(c.value) ? out == 42 : same(out, c.value)) << c.text << " " << out;
    }
    // Under the names of local zones the clock's shift moves the time on.
    host.setClock(0.0, 3600.0);
    for (const char16_t *name : {u"E8601LZ", u"B8601LZ", u"E8601TZ"}) {
        double out = 0;
        int32_t kind = 0;
        EXPECT_EQ(zv::readByPattern(name, 7, nullptr, u"12:30:00+02:00", 14, &out, &kind, 1), 0);
        EXPECT_EQ(out, std::u16string_view(name).substr(5) == u"LZ" ? 37800.0 - 3600.0 : 37800.0);
    }
}

TEST_F(Patterns, OneRowAloneOrOnThroughItsName) {
    const zv::DatePatternRow *date = &zv::datePatternTable[0];
    while (std::u16string_view(date->name) != u"DATE") ++date;
    double out = 0;
    int32_t kind = 0;
    EXPECT_EQ(zv::readByPattern(nullptr, 0, date, u"01-JAN-2000", 11, &out, &kind, 1), 999);
    EXPECT_TRUE(same(out, kMiss));
    EXPECT_EQ(zv::readByPattern(u"DATE", 4, date, u"01-JAN-2000", 11, &out, &kind, 1), 0);
    EXPECT_EQ(out, dayCount(2000, 1, 1));
    zv::DatePatternRow empty = *date;
    empty.pattern = nullptr;
    EXPECT_EQ(zv::readByPattern(nullptr, 0, &empty, u"01JAN2000", 9, &out, &kind, 1), 1);
}

} // namespace
