// The ANY-date guesses: which row reads an ambiguous text, the retry with
// four-digit years, the colon that lets time rows in, what each keeps, and
// dates in common layouts against the standard library's calendar.
#include "support.hpp"

namespace {

using namespace dr;

enum Keep { Date, Time, Both };

double guess(Keep keep, const std::string &text, int width = -1) {
    const std::u16string wide(text.begin(), text.end());
    FormatCall call;
    std::memset(&call, 0, sizeof call);
    double out = 12345.0;
    call.input = wide.data();
    call.inputLength = int32_t(wide.size());
    call.width = width < 0 ? call.inputLength : width;
    call.output = &out;
    const auto entry = keep == Date ? zv::readAnyDate : keep == Time ? zv::readAnyTime : zv::readAnyDateTime;
    EXPECT_EQ(entry(&call, nullptr), 0);
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
    };
    for (const auto &c : cases) EXPECT_TRUE(same(guess(c.keep, c.text), c.value)) << c.text << " " << c.keep;
    EXPECT_EQ(guess(Date, "12/25/2024xyz", 10), dec25);
    EXPECT_EQ(guess(Date, "12/25/2024" + std::string(300, ' ') + "x", 400), dec25);
}

TEST_F(Guess, CommonLayoutsAgreeWithTheCalendar) {
    const char *mon[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    int failures = 0;
    for (chr::sys_days d = chr::year{1600} / 1 / 1; d < chr::sys_days{chr::year{3999} / 1 / 1}; d += chr::days{131}) {
        const chr::year_month_day ymd{d};
        const int y = int(ymd.year()), m = int(unsigned(ymd.month())), dd = int(unsigned(ymd.day()));
        char texts[4][32];
        std::snprintf(texts[0], 32, "%04d-%02d-%02d", y, m, dd);
        std::snprintf(texts[1], 32, "%02d/%02d/%04d", m, dd, y);
        std::snprintf(texts[2], 32, "%s %d, %04d", mon[m - 1], dd, y);
        std::snprintf(texts[3], 32, "%02d-%s-%04d", dd, mon[m - 1], y);
        for (const char *text : texts)
            if (guess(Date, text) != days(d) && ++failures < 5) ADD_FAILURE() << text;
    }
    EXPECT_EQ(failures, 0);
}

} // namespace
