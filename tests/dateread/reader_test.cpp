// The locale date reader on hand-made locale blocks: how digits are split
// among directives, field order and strict years, names over several
// tokens, AM and PM marks, separators, the token limit, and carries.
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <string>

#include "dateread/dateread.hpp"
#include "frame/frame.hpp"
#include "zvhost.hpp"

namespace {

namespace chr = std::chrono;

double dayCount(int y, unsigned m, unsigned d) {
    const chr::sys_days day{chr::year{y} / chr::month{m} / chr::day{d}};
    return double((day - chr::sys_days{chr::year{1960} / 1 / 1}).count());
}

constexpr uint64_t kMissing = ZV_MISSING_BITS;

void setItem(LocaleBlock &b, int k, const std::u16string &text) {
    b.items[k].id = static_cast<uint32_t>(k);
    b.items[k].length = static_cast<int64_t>(text.size());
    std::memset(b.items[k].text, 0, sizeof b.items[k].text);
    std::memcpy(b.items[k].text, text.data(), text.size() * sizeof(ZvChar));
}

const char16_t *const kMonthsAbbr[] = {u"Jan", u"Feb", u"Mar", u"Apr", u"May", u"Jun",
                                       u"Jul", u"Aug", u"Sep", u"Oct", u"Nov", u"Dec"};
const char16_t *const kMonthsFull[] = {u"January", u"February", u"March",     u"April",   u"May",      u"June",
                                       u"July",    u"August",   u"September", u"October", u"November", u"December"};
const char16_t *const kDaysAbbr[] = {u"Sun", u"Mon", u"Tue", u"Wed", u"Thu", u"Fri", u"Sat"};
const char16_t *const kDaysFull[] = {u"Sunday",   u"Monday", u"Tuesday", u"Wednesday",
                                     u"Thursday", u"Friday", u"Saturday"};

class LocaleReader : public ::testing::Test {
protected:
    void SetUp() override {
        zvextent(host.anchor());
        block = std::make_unique<LocaleBlock>();
        std::memset(block.get(), 0, sizeof(LocaleBlock));
        setItem(*block, 2, u"en");
        setItem(*block, 6, u"MDY");
        for (int i = 0; i < 12; ++i) {
            setItem(*block, 59 + i, kMonthsAbbr[i]);
            setItem(*block, 71 + i, kMonthsFull[i]);
        }
        for (int i = 0; i < 7; ++i) {
            setItem(*block, 107 + i, kDaysAbbr[i]);
            setItem(*block, 114 + i, kDaysFull[i]);
        }
        setItem(*block, 151, u"AM");
        setItem(*block, 152, u"PM");
        std::memset(&call, 0, sizeof call);
        call.localeBlock = block.get();
    }
    void TearDown() override { zv::hostAnchor = saved; }

    struct Answer {
        int32_t result;
        double date, time;
    };
    Answer run(const std::u16string &pattern, const std::u16string &text) {
        Answer a{0, zv::missingValue(), zv::missingValue()};
        a.result = zv::readLocaleForm(&call, text.data(), static_cast<int64_t>(text.size()), pattern.data(),
                                      static_cast<int64_t>(pattern.size()), &a.date, &a.time);
        return a;
    }

    HostAnchor *saved = zv::hostAnchor;
    zvhost::Host host;
    std::unique_ptr<LocaleBlock> block;
    FormatCall call;
};

struct Case {
    const char *note;
    const char16_t *order; // item 6
    const char16_t *pattern;
    const char16_t *text;
    int32_t result;
    double date; // NaN: the slot stays missing
    double time;
};

const double kNo = std::nan("");

TEST_F(LocaleReader, Table) {
    const double dec31 = dayCount(2024, 12, 31), mar5 = dayCount(2024, 3, 5);
    const Case cases[] = {
        {"year takes 4 of 8 digits", u"YMD", u"%Y%m%d", u"20241231", 0, dec31, kNo},
        {"day and month take 2, year the rest", u"DMY", u"%d%m%Y", u"31122024", 0, dec31, kNo},
        {"y takes 2 of 6", u"YMD", u"%y%m%d", u"991231", 0, dayCount(1999, 12, 31), kNo},
        {"hour takes the whole token", u"MDY", u"%H%M", u"1230", 2, kNo, 1230 * 3600.0},
        {"AM/PM inside a run of digits eats nothing", u"YMD", u"%Y%p%m%d", u"20241231", 0, dec31, kNo},
        {"digits left behind the hour", u"YMD", u"%Y%m%d%H%M%S", u"20241231235959", -1, kNo, kNo},
        {"two-digit year under %Y, same order", u"DMY", u"%d/%m/%Y", u"05/03/24", 0, mar5, kNo},
        {"two-digit year under %Y, other order", u"MDY", u"%d/%m/%Y", u"05/03/24", -1, kNo, kNo},
        {"four-digit year under %y, other order", u"MDY", u"%d/%m/%y", u"05/03/2024", -1, kNo, kNo},
        {"year 00 is no year", u"DMY", u"%d/%m/%Y", u"05/03/00", 0, kNo, kNo},
        {"words behind the date", u"DMY", u"%d/%m/%Y", u"05/03/2024 hello 99", 0, mar5, kNo},
        {"month name in capitals", u"DMY", u"%d %B %Y", u"5 MARCH 2024", 0, mar5, kNo},
        {"abbreviation where the full name stands", u"DMY", u"%d %B %Y", u"5 mar 2024", 0, mar5, kNo},
        {"abbreviation not in a list", u"DMY", u"%d %b %Y", u"5 Mrz 2024", -1, kNo, kNo},
        {"a cut name reads nothing", u"DMY", u"%d %B %Y", u"5 Marc 2024", -1, kNo, kNo},
        {"weekday on a number", u"MDY", u"%A, %B %d, %Y", u"5, March 5, 2024", -1, kNo, kNo},
        {"weekday is not checked", u"MDY", u"%A, %B %d, %Y", u"Sunday, March 5, 2024", 0, mar5, kNo},
        {"month 13", u"DMY", u"%d.%m.%Y", u"05.13.2024", -1, kNo, kNo},
        {"day 32", u"DMY", u"%d.%m.%Y", u"32.01.2024", -1, kNo, kNo},
        {"31 February", u"DMY", u"%d.%m.%Y", u"31.02.2024", -1, kNo, kNo},
        {"letters glued to digits", u"DMY", u"%d %b %Y", u"12Jan2024", 0, dayCount(2024, 1, 12), kNo},
        {"separators split under the locale's order", u"DMY", u"%d %m %Y", u"5.3.2024", 0, mar5, kNo},
        {"no split under another order", u"MDY", u"%d %m %Y", u"5.3.2024", -1, kNo, kNo},
        {"pattern literals split under any order", u"MDY", u"%d.%m.%Y", u"5.3.2024", 0, mar5, kNo},
        {"12 PM", u"MDY", u"%I:%M:%S %p", u"12:00:00 PM", 0, kNo, 43200},
        {"12 AM", u"MDY", u"%I:%M:%S %p", u"12:00:00 AM", 0, kNo, 0},
        {"1 pm", u"MDY", u"%I:%M:%S %p", u"1:00:00 pm", 0, kNo, 46800},
        {"AM/PM anywhere", u"MDY", u"%I:%M:%S", u"PM 1:02:03", 0, kNo, 46923},
        {"seconds optional", u"MDY", u"%H:%M:%S", u"12:30", 2, kNo, 45000},
        {"carry of minutes and seconds", u"MDY", u"%H:%M:%S", u"1:90:75", 0, kNo, 3600 + 5400 + 75},
        {"time over a day", u"MDY", u"%H:%M:%S", u"25:00:00", 0, kNo, 90000},
        {"date and full time", u"MDY", u"%B %d, %Y %H:%M:%S", u"March 5, 2024 13:02:03", 0, mar5, 46923},
        {"date and part of a time", u"MDY", u"%B %d, %Y %H:%M:%S", u"March 5, 2024 13:02", 2, mar5, 46920},
        {"24:00 carries into a bad day", u"MDY", u"%B %d, %Y %H:%M:%S", u"December 31, 2024 24:00:00", -1, kNo,
         0},
        {"24:00 carries into the next day", u"MDY", u"%B %d, %Y %H:%M:%S", u"March 5, 2024 24:00:00", 0,
         mar5 + 1, 0},
        {"a lone day counts days", u"MDY", u"%d %H:%M:%S", u"2 01:00:00", 0, kNo, 2 * 86400.0 + 3600},
        {"nothing read", u"MDY", u"%Y", u"", 0, kNo, kNo},
        {"quarter eats a token", u"MDY", u"%q %B %d %Y", u"QI March 5 2024", 0, mar5, kNo},
        {"letters and digits are two tokens", u"MDY", u"%q %B %d %Y", u"Q1 March 5 2024", -1, kNo, kNo},
        {"%% is a literal", u"MDY", u"%d%%%m %Y", u"5%3 2024", 0, mar5, kNo},
        {"a trailing % is a literal", u"DMY", u"%d %m %Y%", u"5 3 2024%", 0, mar5, kNo},
        {"letters without a kind are literals", u"DMY", u"%d %m %Y %T", u"5 3 2024 %T", 0, mar5, kNo},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.note);
        setItem(*block, 6, c.order);
        const Answer a = run(c.pattern, c.text);
        EXPECT_EQ(a.result, c.result);
        if (std::isnan(c.date)) {
            EXPECT_EQ(zv::bitsOf(a.date), kMissing);
        } else {
            EXPECT_EQ(a.date, c.date);
        }
        if (c.result == -1) continue; // the time slot may hold what was read before the date failed
        if (std::isnan(c.time)) {
            EXPECT_EQ(zv::bitsOf(a.time), kMissing);
        } else {
            EXPECT_EQ(a.time, c.time);
        }
    }
}

TEST_F(LocaleReader, HebrewKeepsSeparatorsAsTokens) {
    setItem(*block, 6, u"DMY");
    EXPECT_EQ(run(u"%d%m%Y", u"1/2/2024").date, dayCount(2024, 2, 1));
    setItem(*block, 2, u"he");
    EXPECT_EQ(run(u"%d%m%Y", u"1/2/2024").result, -1);
    // With the "/" in the pattern the literals still split the text.
    EXPECT_EQ(run(u"%d/%m/%Y", u"1/2/2024").date, dayCount(2024, 2, 1));
}

TEST_F(LocaleReader, NamesOverSeveralTokens) {
    setItem(*block, 6, u"DMY");
    setItem(*block, 59, u"de gen.");
    setItem(*block, 71, u"de gener");
    EXPECT_EQ(run(u"%d %b %Y", u"1 de gen. 2024").date, dayCount(2024, 1, 1));
    EXPECT_EQ(run(u"%d %b %Y", u"1 DE GEN. 2024").date, dayCount(2024, 1, 1));
    // The name must stand whole in the text.
    EXPECT_EQ(run(u"%d %b %Y", u"1 de gen 2024").result, -1);
    // Full names are looked up only for a token of three characters or more:
    // "de" of "de gener" is too short.
    EXPECT_EQ(run(u"%d %B %Y", u"1 de gener 2024").result, -1);
    setItem(*block, 71, u"del gener");
    EXPECT_EQ(run(u"%d %B %Y", u"1 del gener 2024").date, dayCount(2024, 1, 1));
    // A name ends on a token boundary or not at all.
    EXPECT_EQ(run(u"%d %B %Y", u"1 del generx 2024").result, -1);
    // Marks with blanks and points in them.
    setItem(*block, 151, u"a. m.");
    setItem(*block, 152, u"p. m.");
    EXPECT_EQ(run(u"%I:%M:%S %p", u"1:00:00 p. m.").time, 46800.0);
    EXPECT_EQ(run(u"%I:%M:%S %p", u"12:00:00 a. m.").time, 0.0);
    // The ASCII marks keep working beside the locale's own.
    EXPECT_EQ(run(u"%I:%M:%S %p", u"1:00:00 PM").time, 46800.0);
}

TEST_F(LocaleReader, LongerNameWinsAndFirstOfEqualLengthStands) {
    setItem(*block, 6, u"DMY");
    // "Ma" and "Mar" both begin "Mar"; only a name that covers the token counts.
    setItem(*block, 62, u"Ma"); // abbreviation of April
    EXPECT_EQ(run(u"%d %b %Y", u"5 Mar 2024").date, dayCount(2024, 3, 5));
    EXPECT_EQ(run(u"%d %b %Y", u"5 Ma 2024").date, dayCount(2024, 4, 5));
    // Two equal abbreviations: the later exact match is the one kept.
    setItem(*block, 62, u"Mar");
    EXPECT_EQ(run(u"%d %b %Y", u"5 Mar 2024").date, dayCount(2024, 4, 5));
}

TEST_F(LocaleReader, TokensBeyondTheSixtyFourthAreNotSeen) {
    std::u16string text = u"1:00:00";
    for (int i = 0; i < 60; ++i) text += u" x";
    // Tokens 1, 00, 00 and 60 words: PM is the 64th token and is seen.
    EXPECT_EQ(run(u"%I:%M:%S", text + u" PM").time, 46800.0);
    EXPECT_EQ(run(u"%I:%M:%S", text + u" x PM").time, 3600.0);
}

TEST_F(LocaleReader, CutoffSettlesTwoDigitYears) {
    setItem(*block, 6, u"YMD");
    EXPECT_EQ(run(u"%y%m%d", u"490101").date, dayCount(2049, 1, 1));
    host.setOption("ZV_NAME_YEARCUTOFF", 1920);
    EXPECT_EQ(run(u"%y%m%d", u"490101").date, dayCount(1949, 1, 1));
}

// Property: every day of a wide range written in digits, in three orders,
// reads back under the matching pattern.
TEST_F(LocaleReader, DigitFormsOfManyDaysComeBack) {
    const struct {
        const char16_t *order;
        const char16_t *pattern;
        int form;
    } forms[] = {{u"YMD", u"%Y-%m-%d", 0}, {u"DMY", u"%d.%m.%Y", 1}, {u"MDY", u"%m/%d/%Y", 2}, {u"YMD", u"%Y%m%d", 3}};
    int failures = 0;
    for (const auto &f : forms) {
        setItem(*block, 6, f.order);
        for (chr::sys_days d = chr::sys_days{chr::year{1582} / 1 / 1}; d < chr::sys_days{chr::year{3999} / 12 / 31};
             d += chr::days{97}) {
            const chr::year_month_day ymd{d};
            char buf[32];
            const int y = int(ymd.year()), m = int(unsigned(ymd.month())), dd = int(unsigned(ymd.day()));
            if (f.form == 0) std::snprintf(buf, sizeof buf, "%04d-%02d-%d", y, m, dd);
            if (f.form == 1) std::snprintf(buf, sizeof buf, "%d.%d.%04d", dd, m, y);
            if (f.form == 2) std::snprintf(buf, sizeof buf, "%02d/%d/%04d", m, dd, y);
            if (f.form == 3) std::snprintf(buf, sizeof buf, "%04d%02d%02d", y, m, dd);
            const std::u16string text = zvhost::utf16(buf);
            const Answer a = run(f.pattern, text);
            const double want = double((d - chr::sys_days{chr::year{1960} / 1 / 1}).count());
            if (a.result != 0 || a.date != want) {
                if (++failures < 5) ADD_FAILURE() << buf << " -> " << a.result << " " << a.date << " want " << want;
            }
        }
    }
    EXPECT_EQ(failures, 0);
}

} // namespace
