// The locale date reader on a hand-made locale block with English names:
// how digits are split among directives, field order and strict years,
// names over several tokens, AM and PM marks, separators and the token limit.
#include <memory>

#include "support.hpp"

namespace {

using namespace dr;

class LocaleReader : public Module {
protected:
    void SetUp() override {
        Module::SetUp();
        std::memset(block.get(), 0, sizeof(LocaleBlock));
        const char16_t *names[] = {u"Jan", u"Feb", u"Mar", u"Apr", u"May", u"Jun", u"Jul", u"Aug", u"Sep", u"Oct",
                                   u"Nov", u"Dec", u"January", u"February", u"March", u"April", u"May", u"June",
                                   u"July", u"August", u"September", u"October", u"November", u"December"};
        for (int i = 0; i < 24; ++i) set(59 + i, names[i]);
        const char16_t *days[] = {u"Sun",    u"Mon",    u"Tue",     u"Wed",       u"Thu",      u"Fri",
                                  u"Sat",    u"Sunday", u"Monday",  u"Tuesday",   u"Wednesday", u"Thursday",
                                  u"Friday", u"Saturday"};
        for (int i = 0; i < 14; ++i) set(107 + i, days[i]);
        set(2, u"en"), set(151, u"AM"), set(152, u"PM");
        std::memset(&call, 0, sizeof call);
        call.localeBlock = block.get();
    }
    void set(int k, const std::u16string &text) {
        block->items[k].length = int64_t(text.size());
        std::memset(block->items[k].text, 0, sizeof block->items[k].text);
        std::memcpy(block->items[k].text, text.data(), text.size() * sizeof(ZvChar));
    }
    int32_t run(const std::u16string &pattern, const std::u16string &text, double *date, double *time) {
        *date = *time = zv::missingValue();
        return zv::readLocaleForm(&call, text.data(), int64_t(text.size()), pattern.data(), int64_t(pattern.size()),
                                  date, time);
    }
    std::unique_ptr<LocaleBlock> block = std::make_unique<LocaleBlock>();
    FormatCall call;
};

struct Case {
    const char16_t *order, *pattern, *text;
    int32_t result;
    double date, time; // kMiss: the slot stays missing
};

TEST_F(LocaleReader, Cases) {
    const double dec31 = dayCount(2024, 12, 31), mar5 = dayCount(2024, 3, 5), jan1 = dayCount(2024, 1, 1);
    const Case cases[] = {
        {u"YMD", u"%Y%m%d", u"20241231", 0, dec31, kMiss}, // the year takes 4 of 8 digits
        {u"DMY", u"%d%m%Y", u"31122024", 0, dec31, kMiss},
        {u"YMD", u"%y%m%d", u"991231", 0, dayCount(1999, 12, 31), kMiss},
        {u"YMD", u"%Y%p%m%d", u"20241231", 0, dec31, kMiss}, // %p inside a run eats nothing
        {u"YMD", u"%Y%m%d%S", u"20241231", 0, dec31, kMiss}, // %S past the end reads nothing
        {u"MDY", u"%H%M", u"1230", 2, kMiss, 1230 * 3600.0}, // the hour takes the whole token
        {u"YMD", u"%Y%m%d%H%M%S", u"20241231235959", -1, kMiss, kMiss},
        {u"DMY", u"%d/%m/%Y", u"05/03/24", 0, mar5, kMiss}, // a short year under the locale's own order
        {u"MDY", u"%d/%m/%Y", u"05/03/24", -1, kMiss, kMiss},
        {u"MDY", u"%d/%m/%y", u"05/03/2024", -1, kMiss, kMiss},
        {u"MDY", u"%d/%m/%y", u"05/03/24", 0, mar5, kMiss},
        {u"DMY", u"%d/%m/%Y", u"05/03/00", 0, kMiss, kMiss},   // year 0 is no year
        {u"DMY", u"%d/%m/%Y", u"05/03/2024 hello 99", 0, mar5, kMiss},
        {u"DMY", u"%d %B %Y", u"5 mar 2024", 0, mar5, kMiss},
        {u"DMY", u"%d %b %Y", u"5 MARCH 2024", 0, mar5, kMiss},
        {u"DMY", u"%d %b %Y", u"5 Mrz 2024", -1, kMiss, kMiss},
        {u"DMY", u"%d %B %Y", u"5 Marc 2024", -1, kMiss, kMiss}, // a cut name reads nothing
        {u"DMY", u"%d %m %Y", u"5 0 2024", -1, kMiss, kMiss},
        {u"MDY", u"%A, %B %d, %Y", u"5, March 5, 2024", -1, kMiss, kMiss},
        {u"MDY", u"%A %A %B %d %Y", u"Sunday x March 5 2024", 0, mar5, kMiss}, // one weekday is looked up
        {u"MDY", u"%a %B %d %Y", u"Sun March 5 2024", 0, mar5, kMiss},
        {u"DMY", u"%d.%m.%Y", u"05.13.2024", -1, kMiss, kMiss},
        {u"DMY", u"%d.%m.%Y", u"32.01.2024", -1, kMiss, kMiss},
        {u"DMY", u"%d.%m.%Y", u"0.01.2024", -1, kMiss, kMiss},
        {u"DMY", u"%d.%m.%Y", u"31.04.2024", -1, kMiss, kMiss},
        {u"DMY", u"%d %b %Y", u"12Mar2024", 0, dayCount(2024, 3, 12), kMiss},
        {u"DMY", u"%d %m %Y", u"5.3.2024", 0, mar5, kMiss}, // separators split under the locale's order
        {u"MDY", u"%d %m %Y", u"5-3-2024", -1, kMiss, kMiss},
        {u"MDY", u"%d.%m.%Y", u"5.3.2024", 0, mar5, kMiss}, // the pattern's own literals split
        {u"MDY", u"%d日%m月%Y", u"5日3月2024", 0, mar5, kMiss},
        {u"MDY", u"%I:%M:%S %p", u"12:00:00 PM", 0, kMiss, 43200},
        {u"MDY", u"%I:%M:%S %p", u"12:00:00 AM", 0, kMiss, 0},
        {u"MDY", u"%I:%M:%S", u"pm 1:02:03", 0, kMiss, 46923}, // the mark is found anywhere
        {u"MDY", u"%I:%M:%S", u"1:02:03 am", 0, kMiss, 3723},
        {u"MDY", u"%I:%M:%S", u"1:02:03 Am xm PM", 0, kMiss, 46923}, // a later ASCII mark wins
        {u"MDY", u"%I:%M:%S", u"1:02:03 p. m. AM", 0, kMiss, 46923}, // the locale's mark ends the search
        {u"MDY", u"%H:%M:%S", u"12:30", 2, kMiss, 45000},
        {u"MDY", u"%H:%M:%S", u"1:90:75", 0, kMiss, 3600 + 5400 + 75}, // carries
        {u"MDY", u"%B %d, %Y %H:%M:%S", u"March 5, 2024 13:02", 2, mar5, 46920},
        {u"MDY", u"%B %d, %Y %H:%M:%S", u"March 5, 2024 24:00:00", 0, mar5 + 1, 0},
        {u"MDY", u"%B %d, %Y %H:%M:%S", u"December 31, 2024 24:00:00", -1, kMiss, 0},
        {u"MDY", u"%d %H:%M:%S", u"2 01:00:00", 0, kMiss, 2 * 86400.0 + 3600},
        {u"MDY", u"%q %B %d %Y", u"QI March 5 2024", 0, mar5, kMiss}, // a quarter eats a token
        {u"MDY", u"%q %B %d %Y", u"Q1 March 5 2024", -1, kMiss, kMiss},
        {u"MDY", u"%d%%%m %Y", u"5%3 2024", 0, mar5, kMiss},
        {u"DMY", u"%d %m %Y%", u"5 3 2024%", 0, mar5, kMiss},
        {u"DMY", u"%d %m %T %Y", u"5 3 %T 2024", 0, mar5, kMiss}, // a letter without a kind is a literal
        {u"DMY", u"%d %b %Y", u"1 de gen. 2024", 0, jan1, kMiss},
        {u"DMY", u"%d %b %Y", u"1 DE GEN. 2024", 0, jan1, kMiss},
        {u"DMY", u"%d %b %Y", u"1 de gen 2024", -1, kMiss, kMiss},
        {u"DMY", u"%d %B %Y", u"1 del gener 2024", 0, jan1, kMiss},
        {u"DMY", u"%d %B %Y", u"1 del generx 2024", -1, kMiss, kMiss},
        {u"DMY", u"%d %b %Y", u"5 Ma 2024", 0, dayCount(2024, 4, 5), kMiss}, // "Ma" covers the token
        {u"DMY", u"%d %b %Y", u"5 Mab 2024", 0, dayCount(2024, 7, 5), kMiss}, // the later exact name stands
        {u"MDY", u"%I:%M:%S %p", u"1:00:00 p. m.", 0, kMiss, 46800},
        {u"MDY", u"%I:%M:%S %p", u"12:00:00 a. m.", 0, kMiss, 0},
        {u"MDY", u"%I:%M:%S %p", u"1:00:00 PM", 0, kMiss, 46800},
    };
    set(59, u"de gen."), set(71, u"del gener"), set(62, u"Ma"), set(64, u"Mab"), set(65, u"Mab");
    set(151, u"a. m."), set(152, u"p. m.");
    for (const Case &c : cases) {
        set(6, c.order);
        double date = 0, time = 0;
        EXPECT_EQ(run(c.pattern, c.text, &date, &time), c.result) << zvhost::utf8(c.text);
        EXPECT_TRUE(same(date, c.date)) << zvhost::utf8(c.text) << " " << date;
        EXPECT_TRUE(c.result == -1 || same(time, c.time)) << zvhost::utf8(c.text) << " " << time;
    }
}

TEST_F(LocaleReader, HebrewKeepsSeparatorsAndTokensStopAtSixtyFour) {
    double date = 0, time = 0;
    set(6, u"DMY");
    set(2, u"he");
    EXPECT_EQ(run(u"%d%m%Y", u"1/2/2024", &date, &time), -1);
    EXPECT_EQ(run(u"%d/%m/%Y", u"1/2/2024", &date, &time), 0);
    EXPECT_EQ(date, dayCount(2024, 2, 1));
    std::u16string text = u"1:00:00";
    for (int i = 0; i < 60; ++i) text += u" x";
    run(u"%I:%M:%S", text + u" PM", &date, &time); // PM is the 64th token
    EXPECT_EQ(time, 46800.0);
    run(u"%I:%M:%S", text + u" x PM", &date, &time);
    EXPECT_EQ(time, 3600.0);
}

// Every day of a wide range, written in digits in three orders, reads back.
TEST_F(LocaleReader, DigitFormsAgreeWithTheCalendar) {
    const struct {
        const char16_t *order, *pattern;
        const char *form;
    } forms[] = {{u"YMD", u"%Y-%m-%d", "%04d-%02d-%d"}, {u"DMY", u"%d.%m.%Y", "%3$d.%2$d.%1$04d"},
                 {u"MDY", u"%m/%d/%Y", "%2$02d/%3$d/%1$04d"}, {u"YMD", u"%Y%m%d", "%04d%02d%02d"}};
    int failures = 0;
    for (const auto &f : forms) {
        set(6, f.order);
        for (chr::sys_days d = chr::year{1582} / 1 / 1; d < chr::sys_days{chr::year{4000} / 1 / 1}; d += chr::days{97}) {
            const chr::year_month_day ymd{d};
            char buf[32];
            std::snprintf(buf, sizeof buf, f.form, int(ymd.year()), int(unsigned(ymd.month())), int(unsigned(ymd.day())));
            double date = 0, time = 0;
            if ((run(f.pattern, zvhost::utf16(buf), &date, &time) != 0 || date != days(d)) && ++failures < 5)
                ADD_FAILURE() << buf << " -> " << date;
        }
    }
    EXPECT_EQ(failures, 0);
}

} // namespace
