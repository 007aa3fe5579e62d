// The % pattern engine on the language's own examples.
#include <gtest/gtest.h>

#include <cmath>

#include <memory>
#include <string>

#include "datefmt/calendar.hpp"
#include "datefmt/pattern.hpp"
#include "frame/frame.hpp"
#include "zvhost.hpp"

namespace {

std::unique_ptr<LocaleBlock> makeBlock() {
    auto b = std::make_unique<LocaleBlock>();
    std::memset(b.get(), 0, sizeof(LocaleBlock));
    auto set = [&](int k, std::u16string_view t) {
        b->items[k].length = int64_t(t.size());
        std::copy(t.begin(), t.end(), b->items[k].text);
    };
    const char16_t *months[12] = {u"January", u"February", u"March", u"April", u"May", u"June", u"July",
                                  u"August", u"September", u"October", u"November", u"December"};
    for (int m = 0; m < 12; ++m) {
        set(71 + m, months[m]);
        set(59 + m, std::u16string(months[m]).substr(0, 3));
        set(95 + m, std::u16string(u"o-") + months[m]);
        set(83 + m, std::u16string(u"o-") + std::u16string(months[m]).substr(0, 3));
    }
    // Weekday names of lengths 6, 7 and 9, Sunday first.
    const char16_t *days[7] = {u"Sunday", u"Monday", u"Tuesday", u"Wednesday", u"Thursday", u"Friday", u"Saturday"};
    for (int d = 0; d < 7; ++d) {
        set(114 + d, days[d]);
        set(107 + d, std::u16string(days[d]).substr(0, 3));
        set(128 + d, std::u16string(u"o-") + days[d]);
        set(121 + d, std::u16string(u"o-") + std::u16string(days[d]).substr(0, 2));
    }
    for (int q = 0; q < 4; ++q) {
        set(139 + q, u"quarter " + std::u16string(1, char16_t(u'1' + q)));
        set(135 + q, u"Q" + std::u16string(1, char16_t(u'1' + q)));
        set(147 + q, u"o-quarter " + std::u16string(1, char16_t(u'1' + q)));
        set(143 + q, u"o-Q" + std::u16string(1, char16_t(u'1' + q)));
    }
    set(151, u"AM");
    set(152, u"PM");
    set(172, u",");
    set(28, u"%d.%m.%Y");
    set(53, u"%H:%M:%S");
    return b;
}

void setCalendar(LocaleBlock &b, std::u16string_view code) {
    b.items[5].length = int64_t(code.size());
    std::copy(code.begin(), code.end(), b.items[5].text);
}

double dayOf(int y, int m, int d) { return zv::yearDayToDayCount(zv::ymdToYearDay(y, m, d)); }
double at(int y, int m, int d, int hh, int mm, double ss) { return dayOf(y, m, d) * 86400 + hh * 3600 + mm * 60 + ss; }

struct FixedZone {
    HostTimeZone base;
    double offset;
    static double get(HostTimeZone *self, double, int32_t) { return reinterpret_cast<FixedZone *>(self)->offset; }
    static constexpr HostTimeZoneOps ops{&get};
    explicit FixedZone(double o) : base{&ops}, offset(o) {}
};

// Runs one pattern on a datetime and gives the field's text.
std::u16string datetime(const char16_t *pattern, double seconds, int width = 60, int decimals = 0,
                        const LocaleBlock *block = nullptr, HostTimeZone *tz = nullptr, int32_t *status = nullptr) {
    static auto fallback = makeBlock();
    ZvChar out[600];
    int w = width;
    const int32_t s = zv::writeDatetimePattern(out, &w, pattern, std::char_traits<char16_t>::length(pattern),
                                               seconds, decimals, block ? block : fallback.get(), tz);
    if (status) *status = s;
    const int shown = s == 0 && width > 0 ? w : (width < 0 ? -width : width);
    return std::u16string(out, size_t(shown));
}

std::u16string date(const char16_t *pattern, double day, const LocaleBlock *block = nullptr) {
    static auto fallback = makeBlock();
    ZvChar out[600];
    int w = 80;
    EXPECT_EQ(zv::writeDatePattern(out, &w, pattern, std::char_traits<char16_t>::length(pattern), day,
                                   block ? block : fallback.get()),
              0)
        << std::string(pattern, pattern + std::char_traits<char16_t>::length(pattern)).c_str();
    return std::u16string(out, size_t(w));
}

struct Case {
    const char16_t *pattern;
    std::u16string expected;
};

class DateDirectives : public ::testing::TestWithParam<Case> {};

TEST_P(DateDirectives, OnTuesday5March2024At14h07m09s) {
    const double t = at(2024, 3, 5, 14, 7, 9);
    EXPECT_EQ(datetime(GetParam().pattern, t), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Pattern, DateDirectives,
    ::testing::Values(
        Case{u"%d", u"05"}, Case{u"%#d", u"5"}, Case{u"%e", u" 5"}, Case{u"%E", u"5"}, Case{u"%0d", u"05"},
        Case{u"%2d", u"05"}, Case{u"%D", u"05"}, Case{u"%m", u"03"}, Case{u"%#m", u"3"}, Case{u"%M", u"07"},
        Case{u"%?M", u"03"}, Case{u"%o", u" 3"}, Case{u"%O", u"3"}, Case{u"%N", u"03"}, Case{u"%?N", u"03"},
        Case{u"%n", u"0"}, Case{u"%Y", u"2024"}, Case{u"%y", u"24"}, Case{u"%#y", u"24"},
        Case{u"%A", u"Tuesday"}, Case{u"%a", u"Tue"}, Case{u"%#A", u"o-Tuesday"}, Case{u"%#a", u"o-Tu"},
        Case{u"%?A", u"Tue"}, Case{u"%F|", u"Tuesday  |"}, Case{u"%f|", u"Tue|"},
        Case{u"%B", u"March"}, Case{u"%b", u"Mar"}, Case{u"%#B", u"o-March"}, Case{u"%#b", u"o-Mar"},
        Case{u"%C|", u"March    |"}, Case{u"%c|", u"March    |"}, Case{u"%Q", u"quarter 1"},
        Case{u"%q", u"Q1"}, Case{u"%#Q", u"o-quarter 1"}, Case{u"%#q", u"o-Q1"}, Case{u"%j", u"065"},
        Case{u"%J", u"065"}, Case{u"%H", u"14"}, Case{u"%I", u"02"}, Case{u"%#I", u"2"}, Case{u"%L", u"02"},
        Case{u"%K", u"14"}, Case{u"%p", u"PM"}, Case{u"%P", u"PM"}, Case{u"%S", u"09"}, Case{u"%s", u"09"},
        Case{u"%T", u"14:07:09"}, Case{u"%t|%v|", u"||"}, Case{u"%u", u"2"}, Case{u"%w", u"2"},
        Case{u"%U", u"09"}, Case{u"%V", u"10"}, Case{u"%W", u"10"}, Case{u"%G", u"2024"}, Case{u"%g", u"24"},
        Case{u"%Z", u"XST"}, Case{u"%%", u"%"}, Case{u"100%%x", u"100%x"}, Case{u"a?b", u"a?b"},
        Case{u"%x", u"05.03.2024"}, Case{u"%X", u"14:07:09"}, Case{u"%x %X", u"05.03.2024 14:07:09"},
        Case{u"%Y-%m-%d", u"2024-03-05"}));

TEST(Pattern, TenJanuary2024AndBigYears) {
    EXPECT_EQ(date(u"%Y-%m-%d", dayOf(2024, 1, 10)), u"2024-01-10");
    EXPECT_EQ(date(u"%y", dayOf(2024, 1, 10)), u"24");
    EXPECT_EQ(date(u"%Y", dayOf(12345, 6, 1)), u"2345");
    EXPECT_EQ(date(u"%Q", dayOf(2024, 5, 1)), u"quarter 2");
    EXPECT_EQ(date(u"%u %w", dayOf(2024, 3, 3)), u"7 0"); // a Sunday
}

TEST(Pattern, NoonAndMidnight) {
    EXPECT_EQ(datetime(u"%I %L %p", at(2024, 3, 5, 12, 0, 0)), u"12 12 PM");
    EXPECT_EQ(datetime(u"%I %L %H %K %p", at(2024, 3, 5, 0, 0, 0)), u"12 00 00 24 AM");
    // K keeps the hour at 24 for the rest of the pattern.
    EXPECT_EQ(datetime(u"%K %H %T", at(2024, 3, 5, 0, 5, 0)), u"24 24 24:05:00");
}

TEST(Pattern, CalendarsOfItem5) {
    auto b = makeBlock();
    setCalendar(*b, u"JP");
    EXPECT_EQ(date(u"%+Y", dayOf(2000, 1, 1), b.get()), u"0012");
    EXPECT_EQ(date(u"%+y", dayOf(2000, 1, 1), b.get()), u"12");
    EXPECT_EQ(date(u"%Y %+Y", dayOf(1989, 1, 7), b.get()), u"1989 0064"); // day -12060.. of Showa
    EXPECT_EQ(date(u"%+Y", dayOf(1850, 1, 1), b.get()), u"1850");
    setCalendar(*b, u"TW");
    EXPECT_EQ(date(u"%+Y", dayOf(2000, 1, 1), b.get()), u"0089");
    EXPECT_EQ(date(u"%+Y", dayOf(1900, 1, 1), b.get()), u"0012"); // 1 - (1900 - 1911)
    setCalendar(*b, u"TH");
    EXPECT_EQ(date(u"%+Y", dayOf(2000, 1, 1), b.get()), u"2543");
    // The mark stays on, and a second year works on the year already changed.
    EXPECT_EQ(date(u"%+Y %Y", dayOf(2000, 1, 1), b.get()), u"2543 3086");
    setCalendar(*b, u"THX");
    EXPECT_EQ(date(u"%+Y", dayOf(2000, 1, 1), b.get()), u"2000");
}

TEST(Pattern, FractionOfSeconds) {
    EXPECT_EQ(datetime(u"%S", 7.25, 60, 3), u"07,250");
    EXPECT_EQ(datetime(u"%T", 7.25, 60, 3), u"00:00:07");
    EXPECT_EQ(datetime(u"%s", 7.25, 60, 3), u"07");
    EXPECT_EQ(datetime(u"%?S", 7.25, 60, 3), u"07,250");
    EXPECT_EQ(datetime(u"%H:%M:%S", at(2024, 3, 5, 14, 7, 9.6), 60, 1), u"14:07:09,6");
    EXPECT_EQ(datetime(u"%H:%M:%S", at(2024, 3, 5, 14, 7, 9.6), 60, 0), u"14:07:10");
    // 59.96 seconds carry into the next minute, hour and day.
    EXPECT_EQ(datetime(u"%d %H:%M:%S", at(2024, 3, 5, 23, 59, 59.96), 60, 1), u"06 00:00:00,0");
    EXPECT_EQ(datetime(u"%H:%M:%S", at(2024, 3, 5, 23, 59, 59.96), 60, 2), u"23:59:59,96");
}

TEST(Pattern, TimesBeyondADay) {
    HostAnchor *saved = zv::hostAnchor;
    zvhost::Host host;
    zvextent(host.anchor());
    auto b = makeBlock();
    ZvChar out[64];
    int w = 20;
    EXPECT_EQ(zv::writeTimePattern(out, &w, u"%H:%M", 5, 24 * 3600 + 300, 0, b.get()), 0);
    EXPECT_EQ(std::u16string(out, size_t(w)), u"24:05");
    w = 20;
    EXPECT_EQ(zv::writeTimePattern(out, &w, u"%H:%M", 5, 100 * 3600, 0, b.get()), 0);
    EXPECT_EQ(std::u16string(out, size_t(w)), u"100:00");
    w = 20;
    EXPECT_EQ(zv::writeTimePattern(out, &w, u"%n %A %a %F %f %d", 17, 50 * 3600, 0, b.get()), 0);
    EXPECT_EQ(std::u16string(out, size_t(w)), u"2 ** ** ** ** **");
    w = 20;
    EXPECT_EQ(zv::writeTimePattern(out, &w, u"%H", 2, -1, 0, b.get()), zv::kPatternNoValue);
    zv::hostAnchor = saved;
}

TEST(Pattern, MissingFieldsShowStars) {
    auto b = makeBlock();
    const double m = zv::missingValue();
    ZvChar out[64];
    int w = 40;
    EXPECT_EQ(zv::expandPattern(dayOf(2024, 3, 5), m, m, m, u"%T|%S|%I|%L|%P", 14, out, &w, 2, b.get(), nullptr), 0);
    EXPECT_EQ(std::u16string(out, size_t(w)), u"**:**:**|**,**|12|00|**");
}

TEST(Pattern, OffsetStaysVisibleWhenCut) {
    FixedZone india(19800);
    const double t = at(2024, 3, 5, 14, 7, 9);
    EXPECT_EQ(datetime(u"%H:%M %z", t, 60, 0, nullptr, &india.base), u"14:07 +0530");
    FixedZone west(-3 * 3600 - 30 * 60 - 59); // seconds are dropped
    EXPECT_EQ(datetime(u"%z", t, 60, 0, nullptr, &west.base), u"-0330");
    int32_t status = 0;
    EXPECT_EQ(datetime(u"%A, %d %B %Y %H:%M %z", t, 12, 0, nullptr, &india.base, &status), u"Tuesda +0530");
    EXPECT_EQ(status, zv::kPatternTooLong);
}

TEST(Pattern, FieldIsBlankFilledAndCanBeRightJustified) {
    const double t = at(2024, 3, 5, 14, 7, 9);
    int32_t status = -9;
    EXPECT_EQ(datetime(u"%d", t, 6, 0, nullptr, nullptr, &status), u"05");
    EXPECT_EQ(status, 0);
    ZvChar out[10];
    std::fill(std::begin(out), std::end(out), u'#');
    int w = -6;
    auto b = makeBlock();
    EXPECT_EQ(zv::writeDatetimePattern(out, &w, u"%H:%M", 5, t, 0, b.get(), nullptr), 0);
    EXPECT_EQ(w, 5);
    EXPECT_EQ(std::u16string(out, 7), u" 14:07#");
    w = 3;
    EXPECT_EQ(zv::writeDatetimePattern(out, &w, u"%H:%M", 5, t, 0, b.get(), nullptr), zv::kPatternTooLong);
    EXPECT_EQ(w, 3);
    EXPECT_EQ(std::u16string(out, 3), u"14:");
}

TEST(Pattern, InvalidDirectivesLeaveTheFieldAlone) {
    auto b = makeBlock();
    for (const char16_t *p : {u"%R", u"%X%R", u"%r", u"%#x", u"%+1", u"ok %!", u"%?r"}) {
        ZvChar out[8];
        std::fill(std::begin(out), std::end(out), u'#');
        int w = 8;
        EXPECT_EQ(zv::writeDatePattern(out, &w, p, std::char_traits<char16_t>::length(p), 0, b.get()),
                  zv::kPatternInvalid)
            << std::string(p, p + std::char_traits<char16_t>::length(p));
        EXPECT_EQ(std::u16string(out, 8), u"########");
        EXPECT_EQ(w, 8);
    }
}

TEST(Pattern, EmptyPatternsAndValuesOutOfReach) {
    auto b = makeBlock();
    ZvChar out[8];
    int w = 8;
    EXPECT_EQ(zv::writeDatePattern(out, &w, u"", 0, 0, b.get()), zv::kPatternEmpty);
    EXPECT_EQ(zv::writeDatePattern(out, &w, u"%d", 2, zv::missingValue(), b.get()), zv::kPatternNoValue);
    EXPECT_EQ(zv::writeDatePattern(out, &w, u"%d", 2, 6589336, b.get()), zv::kPatternNoValue);
    EXPECT_EQ(zv::writeDatePattern(out, &w, u"%d", 2, -138062, b.get()), zv::kPatternNoValue);
    EXPECT_EQ(zv::writeDatetimePattern(out, &w, u"%d", 2, 569318630400.0, 0, b.get(), nullptr),
              zv::kPatternNoValue);
    EXPECT_EQ(zv::writeDatetimePattern(out, &w, u"%d", 2, zvhost::missingValue('A'), 0, b.get(), nullptr),
              zv::kPatternNoValue);
}

TEST(Pattern, WriteDigitsPads) {
    ZvChar t[8];
    EXPECT_EQ(zv::writeDigits(7, t, 3, u'0'), 3);
    EXPECT_EQ(std::u16string(t, 3), u"007");
    EXPECT_EQ(zv::writeDigits(7, t, 3, u' '), 3);
    EXPECT_EQ(std::u16string(t, 3), u"  7");
    EXPECT_EQ(zv::writeDigits(0, t, 2, u' '), 2);
    EXPECT_EQ(std::u16string(t, 2), u" 0");
    EXPECT_EQ(zv::writeDigits(12345, t, 2, u'0'), 2);
    EXPECT_EQ(std::u16string(t, 2), u"45");
    EXPECT_EQ(zv::writeDigits(12345, t, 2, 0), 5);
    EXPECT_EQ(std::u16string(t, 5), u"12345");
    EXPECT_EQ(zv::writeDigits(0, t, 5, 0), 1);
    EXPECT_EQ(t[0], u'0');
}

} // namespace
