// The fixed pattern reader. Every row of the table, and patterns with the
// directives that no row uses, read back texts written here from the pattern
// itself with random dates and times, to the day count of the standard
// library's calendar; then the cases the named forms and the guesses over the
// ANYDATE rows are known by.
#include <regex>
#include <set>

#include "support.hpp"

namespace {

using namespace dr;

const char *const kMonths[] = {"January", "February", "March",     "April",   "May",      "June",
                               "July",    "August",   "September", "October", "November", "December"};
const char *const kWeekdays[] = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
const char *const kRoman[] = {"I", "II", "III", "IV"};

// Writes random fields in the places `pattern` gives them, and works out the
// value and kind that a row of `kind` gives for the text.
std::string writeByPattern(const zv::DatePatternRow &row, std::mt19937 &rng, double *want, int32_t *wantKind) {
    const std::string pattern = zvhost::utf8(row.pattern); // cut into literal characters and directive words
    std::vector<std::string> ds;
    const std::regex word("%(u1b|[01xu.].|w1|.)|.");
    for (std::sregex_iterator it(pattern.begin(), pattern.end(), word), end; it != end; ++it)
        ds.push_back(it->str() == "%w1" ? "%w" : it->str() == "%.d" ? "%d" : it->str());
    auto has = [&](const char *w) { return std::find(ds.begin(), ds.end(), w) != ds.end(); };
    auto pick = [&](int lo, int hi) { return lo + int(rng() % unsigned(hi - lo + 1)); };
    const bool shortYear = has("%y") || has("%0y"); // settled by the default pivot 1950
    const chr::sys_days date =
        chr::sys_days{chr::year{shortYear ? 1950 : 1582} / 1 / 1} + chr::days{pick(0, shortYear ? 36523 : 876000)};
    const chr::year_month_day ymd{date};
    const int year = int(ymd.year()), yday = int((date - chr::sys_days{ymd.year() / 1 / 1}).count()) + 1;
    const int month = int(unsigned(ymd.month())), day = int(unsigned(ymd.day()));
    const int quarter = pick(1, 4), hour = pick(0, 23), minute = pick(0, 59), second = pick(0, 59);
    const int zoneHour = pick(0, 14), zoneMinute = pick(0, 1) * 30, sign = pick(0, 1) ? 1 : -1;
    const int weekday = int(chr::weekday{date}.c_encoding());
    std::set<char> seen;
    std::string text;
    bool zone = false;
    auto num = [&](int v, int width, char field) {
        text += std::string(width - std::min<int>(width, std::to_string(v).size()), '0') + std::to_string(v);
        seen.insert(field);
    };
    auto name = [&](std::string n, bool abbr) {
        for (char &c : n) c = rng() % 2 ? char(std::toupper(c)) : c;
        text += abbr ? n.substr(0, 3) : n;
    };
    for (size_t k = 0; k < ds.size(); ++k) {
        const std::string &w = ds[k];
        const char last = w.back();
        if (w[0] != '%' || w.size() == 1) text += char(w[0]);
        else if (w == "%y" || w == "%0y") num(year % 100, 2, 'y');
        else if (w == "%Y" || w == "%xY" || w == "%xy") num(year, 4, 'y');
        else if (w == "%m" || w == "%0m") num(month, 2, 'm');
        else if (w == "%d" || w == "%0d") num(day, 2, 'd');
        else if (w == "%j") num(yday, 3, 'j');
        else if (w == "%q") num(quarter, 1, 'q');
        else if (w == "%r") text += kRoman[quarter - 1], seen.insert('q');
        else if (last == 'b' || last == 'B') name(kMonths[month - 1], last == 'b'), seen.insert('m');
        else if (last == 'a' || last == 'A') name(kWeekdays[weekday], last == 'a');
        else if (w == "%w") num(weekday + 1, 1, 0);
        else if (w == "%e") num(pick(0, 999), 1, 0);
        else if (zone && (w == "%H" || w == "%M")) num(w == "%H" ? zoneHour : zoneMinute, 2, 0);
        else if (last == 'H' || last == 'i' || last == 'I') num(has("%p") ? (hour + 11) % 12 + 1 : hour, 2, 'H');
        else if (last == 'M') num(minute, 2, 'M');
        else if (last == 'S') num(second, 2, 'S');
        else if (w == "%p") text += hour < 12 ? "AM" : "pm";
        else if (w == "%z") text += "zulu";
        else if (w == "%G") text += sign > 0 ? '+' : '-', zone = true;
        else if (w == "%c" || w == "%C") // a run of %c goes on into letters: a word behind it needs a blank
            text += w == "%c" && k + 1 < ds.size() && std::string("bBaApzr").find(ds[k + 1].back()) < 7
                        ? ' ' : "/-: "[pick(0, 3)];
    }
    auto got = [&](char f) { return seen.count(f) > 0; };
    const double dateValue = got('y') && got('j') ? days(chr::sys_days{ymd.year() / 1 / 1}) + yday - 1
                             : got('y') && got('q') ? dayCount(year, unsigned(quarter * 3 - 2), 1)
                             : got('y') && got('m') ? dayCount(year, unsigned(month), got('d') ? unsigned(day) : 1)
                                                    : kMiss;
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

// readByPattern under a name, or one row alone when the name is empty.
int32_t byPattern(const std::u16string &name, const std::string &text, double *out,
                  const zv::DatePatternRow *row = nullptr, int32_t normalise = 1, int32_t *kind = nullptr) {
    const std::u16string t(text.begin(), text.end());
    int32_t k = 0;
    return zv::readByPattern(name.empty() ? nullptr : name.data(), int64_t(name.size()), row, t.data(),
                             int64_t(t.size()), out, kind ? kind : &k, normalise);
}

TEST_F(Patterns, EveryRowReadsWhatItsPatternDescribes) {
    std::vector<zv::DatePatternRow> rows(std::begin(zv::datePatternTable), std::end(zv::datePatternTable));
    for (auto [kind, pattern] : {std::pair{u"DTM", u"%P%e %xY-%0m-%.d %0H:%0M:%0S"},
                                 {u"DTM", u"%P%w1 %xA %1b %xy %I:%M %p"}, {u"DTE", u"%P%u1b/%xB/%d/%Y"}})
        rows.push_back({u"X", 0, 0, 0, 0, 0, kind, pattern});
    std::mt19937 rng(5);
    int failures = 0;
    for (const zv::DatePatternRow &row : rows)
        for (int i = 0; i < 40; ++i) {
            double want = 0, out = 0;
            int32_t wantKind = 0, kind = -1;
            const std::string text = writeByPattern(row, rng, &want, &wantKind);
            const int32_t s = text.empty() ? 0 : byPattern(u"", text, &out, &row, i % 2, &kind);
            if (!text.empty() && (s != 0 || !same(out, want) || kind != wantKind) && ++failures < 6)
                ADD_FAILURE() << zvhost::utf8(row.pattern) << " [" << text << "] " << out << " want " << want;
        }
    EXPECT_EQ(failures, 0);
}

TEST_F(Patterns, NamedForms) {
    const double jan1 = dayCount(2000, 1, 1), untouched = INFINITY, jan31 = dayCount(2024, 1, 31);
    // "." stops the run of %C; 31FEB2000 is accepted, so no later row is tried; no row admits six characters;
    // two cleanings leave one of five blanks; %Y takes four digits or refuses the row.
    const struct { const char16_t *name; std::string text; int32_t status; double value; } cases[] = {
        {u"DATE", "01-JAN-2000", 0, jan1}, {u"DATE", "1 jan 00", 0, jan1}, {u"DATE", "01/JAN/2000", 0, jan1},
        {u"DATE", "01.JAN.2000", 999, kMiss}, {u"DATE", "31FEB2000", 0, kMiss}, {u"DATE", "1JAN00", 999, untouched},
        {u"DATE", "01JAN" + std::string(28, 'x') + "00", 999, untouched}, {u"TIME", "12:     30", 999, kMiss},
        {u"DATETIME", "01JAN2000:12:30:15.1234567890123456789012345", 0,
         jan1 * 86400 + (0.1234567890123456789 + 45015.0)},
        {u"DATETIME", "01JAN2000 12:30", 0, jan1 * 86400 + 45000}, {u"DATETIME", "01JANUARY2000", 0, kMiss},
        {u"TIME", "12:30:15.5", 0, 45015.5}, {u"TIME", "1:30", 999, untouched},
        {u"TIME", "123456", 0, 123456 * 3600.0}, {u"TIME", "12:*30", 0, 45000}, {u"TIME", "  12:  30", 0, 45000},
        {u"TIME", "12:30" + std::string(70, ' ') + "xx", 0, 45000}, // the text is cut at 64 characters
        {u"TIME", "12:30" + std::string(50, ' ') + "xx", 999, kMiss}, {u"E8601TZ", "12:30:00-05:00", 0, 63000},
        {u"E8601TZ", "12:30:00Z02:00", 999, kMiss}, {u"E8601TZ", "12:30:00 02:00", 999, kMiss}, {u"B8601TZ", "123000-0500", 0, 63000},
        {u"B8601DZ", "20240131T123000+0200", 0, jan31 * 86400 + 37800}, {u"B8601DT", "20240131T123000.5", 999, kMiss},
        {u"B8601DA", "999-01-31", 999, kMiss}, {u"B8601DA", "20240131T5", 999, kMiss},
        {u"YYMMDD", "10203", 0, dayCount(2001, 2, 3)}, {u"DDMMYY", "01022003", 0, dayCount(2003, 2, 1)},
        {u"JULIAN", "2023366", 0, kMiss}, {u"NOSUCH", "01JAN2000", 999, untouched},
    };
    for (const auto &c : cases) {
        double out = 42;
        EXPECT_EQ(byPattern(c.name, c.text, &out), c.status) << c.text;
        EXPECT_TRUE(std::isinf(c.value) ? out == 42 : same(out, c.value)) << c.text << " " << out;
    }
    // A day the calendar lacks reads as nothing, even beside a time.
    int32_t kind = -1;
    double none = 0;
    EXPECT_EQ(byPattern(u"DATETIME", "31FEB2000:10:00", &none, nullptr, 1, &kind), 0);
    EXPECT_EQ(kind, zv::kReadNothing);
    host.setClock(0.0, 3600.0); // under the names of local zones the clock's shift moves the time on
    for (auto [name, want] : {std::pair{u"E8601LZ", 34200.0}, {u"B8601LZ", 34200.0}, {u"E8601TZ", 37800.0}}) {
        double out = 0;
        EXPECT_EQ(byPattern(name, "12:30:00+02:00", &out), 0);
        EXPECT_EQ(out, want);
    }
    // One row alone, or on through the rows of its name; a row without a pattern.
    const zv::DatePatternRow *date = &zv::datePatternTable[0];
    while (std::u16string_view(date->name) != u"DATE") ++date;
    double out = 0;
    EXPECT_EQ(byPattern(u"", "01-JAN-2000", &out, date), 999);
    EXPECT_EQ(byPattern(u"DATE", "01-JAN-2000", &out, date), 0);
    EXPECT_EQ(out, jan1);
    zv::DatePatternRow empty = *date;
    empty.pattern = nullptr;
    EXPECT_EQ(byPattern(u"", "01JAN2000", &out, &empty), 1);
    const zv::DatePatternRow free = {u"X", 0, 0, 0, 0, 0, u"DTE", u"%P%xY-%m"};
    EXPECT_EQ(byPattern(u"", "-12", &out, &free), 999); // a run of digits needs one digit at least
}

// ---- the ANY-date guesses: which row reads an ambiguous text, the retry with
// four-digit years, the colon that lets time rows in, and what each keeps.

enum Keep { Date, Time, Both };

double guess(Keep keep, const std::string &text, int width = -1) {
    const std::u16string wide(text.begin(), text.end());
    double out = 12345.0;
    FormatCall call{};
    call.input = wide.data(), call.inputLength = int32_t(wide.size()), call.output = &out;
    call.width = width < 0 ? call.inputLength : width;
    EXPECT_EQ((keep == Date ? zv::readAnyDate : keep == Time ? zv::readAnyTime : zv::readAnyDateTime)(&call, 0), 0);
    return out;
}

using Guess = Module;

TEST_F(Guess, Cases) {
    const double dec25 = dayCount(2024, 12, 25);
    const struct { const char *text; Keep keep; double value; } cases[] = {
        {"12/25/2024", Date, dec25}, {"25/12/2024", Date, dec25}, {"2024-12-25", Date, dec25},
        {"12/25/2024", Both, dec25 * 86400}, {"12/25/2024", Time, 0}, {"010203", Date, dayCount(2003, 1, 2)},
        {"130203", Date, dayCount(2003, 2, 13)}, {"01022003", Date, dayCount(2003, 1, 2)},
        {"13022003", Date, dayCount(2003, 2, 13)}, {"1200", Date, dayCount(2000, 12, 1)},
        {"12:00", Time, 43200}, {"12:00", Date, 0}, {"1:30 PM", Time, 48600}, {"2024Q3", Date, dayCount(2024, 7, 1)},
        {"Wednesday, December 25, 2024", Date, dec25}, {"25DEC2024:13:30:15", Both, dec25 * 86400 + 48615},
        {"31DEC1959:23:59:59", Both, -1}, {"31DEC1959:23:59:59", Date, 0}, {"31DEC1959:23:59:59", Time, -1},
        {"   12/25/2024", Date, dec25}, {"", Date, kMiss}, {"hello world", Both, kMiss}, {"13/13/2024", Date, kMiss},
        {"1234:56", Time, kMiss}, // a time row outside its lengths is not tried
    };
    for (const auto &c : cases) EXPECT_TRUE(same(guess(c.keep, c.text), c.value)) << c.text << " " << c.keep;
    EXPECT_EQ(guess(Date, "12/25/2024xyz", 10), dec25);
    EXPECT_EQ(guess(Date, "12/25/2024" + std::string(300, ' ') + "x", 400), dec25);
}

} // namespace
