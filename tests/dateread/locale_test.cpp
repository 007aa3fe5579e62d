// The locale's own date patterns: round trips of what the formats write over
// the CLDR locales (and of the week and month name formats); @NLDATE, @NLDATM
// and @NLTIME with the order of the locale items, the fixed forms behind them,
// partial times, ranges and the field limit; the reader of one pattern.
#include <unicode/uchar.h>

#include <set>
#include <sstream>

#include "cldr.hpp"
#include "support.hpp"

namespace {

using namespace dr;

using Informats = Module;

// Every value a format writes in a CLDR locale reads back; a locale whose
// pattern literals stand inside its own names ("de" in "dezembro") may not.
TEST_F(Informats, RoundTripsOverCldrLocales) {
    const struct { const char *format, *informat; int width, kind; } trips[] = {
        {"NLDATE", "@NLDATE", 40, 0}, {"NLDATM", "@NLDATM", 60, 1}, {"NLTIME", "@NLTIME", 20, 2},
        {"WEEKU", "@WEEKU", 11, 0},   {"WEEKV", "@WEEKV", 11, 0},   {"WEEKW", "@WEEKW", 11, 0}};
    const std::vector<std::string> locales = zvhost::availableLocales();
    const std::set<std::string> major = {"en_US", "en_GB", "de_DE", "fr_FR", "it_IT", "es_ES", "nl_NL",
                                         "sv_SE", "pl_PL", "tr_TR", "zh_CN", "el_GR", "hu_HU"};
    std::mt19937 rng(1582);
    size_t whole = 0, compared = 0;
    for (const std::string &locale : locales) {
        std::string failure;
        for (int k = 0; k < 12; ++k) {
            const auto &trip = trips[k % 6];
            const double day = dayCount(1583, 1, 1) + rng() % 511000, time = rng() % 86400;
            const double value = trip.kind == 0 ? day : trip.kind == 1 ? day * 86400 + time : time;
            const std::string text = write(trip.format, value, locale, trip.width);
            if (text.find('*') != std::string::npos || text.find_first_of("0123456789") == std::string::npos)
                continue;
            ++compared;
            const zvhost::ReadResult r = read(trip.informat, text, locale);
            if (r.status != 0 || r.value != value)
                failure = std::string(trip.format) + " [" + text + "] -> " + std::to_string(r.value);
        }
        whole += failure.empty();
        EXPECT_TRUE(failure.empty() || !major.count(locale)) << locale << ": " << failure;
    }
    EXPECT_GE(whole, locales.size() * 17 / 20);
    EXPECT_GT(compared, locales.size() * 8);
}

// NLSTRMON's names in all four forms read back as the first name, short
// ones before full ones, that begins the text in ICU's lower case.
TEST_F(Informats, MonthNamesReadBackOverCldrLocales) {
    const std::vector<std::string> locales = zvhost::availableLocales();
    int trips = 0, own = 0;
    for (size_t l = 0; l < locales.size(); l += 5) {
        std::u16string names[48]; // the twelve months in four forms
        for (int i = 0; i < 48; ++i) {
            names[i] = zvhost::utf16(write("NLSTRMON", i % 12 + 1, locales[l], 200, i / 12));
            names[i].erase(names[i].find_last_not_of(u' ') + 1);
            for (char16_t &c : names[i]) c = char16_t(u_tolower(c));
        }
        for (int i = 0; i < 48; ++i, ++trips) {
            double want = kMiss; // short names (form 1) are looked at before full ones (form 0)
            for (int k = 0; k < 24 && std::isnan(want); ++k)
                if (names[i].starts_with(names[k < 12 ? 12 + k : k - 12])) want = k % 12 + 1;
            const zvhost::ReadResult r = read("@NLSTRMON", zvhost::utf8(names[i]), locales[l]);
            EXPECT_TRUE(r.status == 0 && same(r.value, want)) << locales[l] << " " << zvhost::utf8(names[i]);
            own += r.value == i % 12 + 1;
        }
    }
    EXPECT_GT(own, trips * 97 / 100);
}

TEST_F(Informats, Cases) {
    const double mar5 = dayCount(2024, 3, 5), at = mar5 * 86400, no = INFINITY; // no: output untouched
    const struct { const char *informat, *text; int32_t status; double value; } cases[] = {
        {"@NLDATE", "December 31, 1581", 999, kMiss}, {"@NLDATE", "January 1, 1582", 0, -138061},
        {"@NLDATE", "01-JAN-2000", 0, 14610}, {"@NLDATE", "31FEB2000", 0, kMiss}, {"@NLDATE", "xyz", 999, no},
        {"@NLDATE", "Tuesday", 999, kMiss}, {"@NLDATM", "Tuesday", 999, no}, // a weekday alone is no date
        {"@NLDATE", "   ", 1, no}, {"@NLDATM", "March 5, 2024 25:00:00", 0, at + 90000},
        {"@NLDATM", "01JAN2000:12:30:15.25", 0, 14610 * 86400.0 + 45015.25}, {"@NLDATM", "01JAN2000:12", 999, no},
        {"@NLTIME", "12:30", 0, 45000}, {"@NLTIMAP", "25:00:00", 0, 90000}, {"@NLTIME", "abcde", 999, kMiss}};
    for (const auto &c : cases) {
        const zvhost::ReadResult r = read(c.informat, c.text);
        EXPECT_TRUE(r.status == c.status && (std::isinf(c.value) ? r.untouched : same(r.value, c.value))) << c.text;
    }
    EXPECT_EQ(read("@NLDATM", "5 mars 2024 à 13:02", "fr_FR").value, at + 46920);
    EXPECT_EQ(read("@NLTIME", "12:30:15", "en_US", {}, 5).value, 45000.0);
    EXPECT_EQ(read("@NLDATE", "Mar 5, 2024", "en_US", {}, 9).value, dayCount(2020, 3, 5));
    EXPECT_EQ(read("@NLDATE", "Mar 5, 2024", "en_US", {}, 0).status, 1);
}

TEST_F(Informats, ItemsAreTriedInOrder) {
    const double at = dayCount(2024, 3, 5) * 86400;
    const char *text = "05/03/2024 13:02:03";
    // Items that read no digits fill the places not under test.
    std::map<int, std::string> items = {{44, "%A"}, {45, "%A"}, {46, "%d/%m/%Y %H:%M"},
                                        {47, "%d/%m/%Y %H:%M:%S"}, {50, "%A"}, {51, "%A"}};
    EXPECT_EQ(read("@NLDATM", text, "de_DE", items).value, at + 46923);
    items[47] = "%A";
    EXPECT_EQ(read("@NLDATM", text, "de_DE", items).value, at + 46920); // the first part of a time stands
    items[46] = "%d/%m/%Y %H", items[51] = "%d/%m/%Y %H:%M";
    EXPECT_EQ(read("@NLDATM", text, "de_DE", items).value, at + 46800);
    items[45] = "%d/%m/%Y %H:%M:%S";
    EXPECT_EQ(read("@NLDATM", text, "de_DE", items).value, at + 46923);
    // A date with part of a time is no date: the next item decides.
    items = {{28, "%d/%m/%Y %H"}, {29, "%A"}, {32, "%A"}, {33, "%A"}};
    EXPECT_EQ(read("@NLDATE", "05/03/2024 13", "de_DE", items).status, 999);
    items[33] = "%d/%m/%Y";
    EXPECT_EQ(read("@NLDATE", "05/03/2024 13", "de_DE", items).value, at / 86400);
    EXPECT_EQ(read("@NLTIME", "13", "de_DE", {{53, "%H:%M:%S"}}).value, 46800.0);
}

TEST_F(Informats, YearCutoff) {
    // Dates pivot on 1950 and week texts on 1960 until the option is set.
    const struct { int64_t option; const char *date, *week; int dateYear, weekYear; } cuts[] = {
        {0, "1 jan 49", "59W01", 2049, 2059}, {0, "1 jan 50", "60W01", 1950, 1960},
        {1920, "1 jan 19", "19W01", 2019, 2019}, {1920, "1 jan 20", "20W01", 1920, 1920}};
    for (const auto &c : cuts) {
        if (c.option) host.setOption("ZV_NAME_YEARCUTOFF", c.option);
        EXPECT_EQ(read("@NLDATE", c.date).value, dayCount(c.dateYear, 1, 1)) << c.date;
        const chr::sys_days monday{chr::year{c.weekYear} / chr::January / chr::Monday[1]};
        EXPECT_EQ(read("@WEEKW", c.week).value, days(monday)) << c.week;
        EXPECT_EQ(read("@WEEKW", "bad").value, c.option ? double(c.option) : 1960.0);
    }
}

// ---- the locale date reader on a hand-made locale block with English names:
// how digits are split among directives, field order and strict years, names
// over several tokens, AM and PM marks, separators and the token limit.

class LocaleReader : public Module {
protected:
    void SetUp() override {
        Module::SetUp();
        std::istringstream names("Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec January February March April May "
                                 "June July August September October November December Sun Mon Tue Wed Thu Fri Sat "
                                 "Sunday Monday Tuesday Wednesday Thursday Friday Saturday");
        std::string name;
        for (int k = 59; names >> name; k = k == 82 ? 107 : k + 1) set(k, zvhost::utf16(name));
        set(2, u"en"), set(151, u"AM"), set(152, u"PM");
        call.localeBlock = block.get();
    }
    void set(int k, const std::u16string &text) {
        std::copy(text.begin(), text.end(), block->items[k].text);
        block->items[k].length = int64_t(text.size());
    }
    int32_t run(const std::u16string &pattern, const std::u16string &text, double *date, double *time) {
        *date = *time = zv::missingValue();
        return zv::readLocaleForm(&call, text.data(), int64_t(text.size()), pattern.data(), int64_t(pattern.size()),
                                  date, time);
    }
    std::unique_ptr<LocaleBlock> block = std::make_unique<LocaleBlock>();
    FormatCall call{};
};

struct Case {
    const char16_t *order, *pattern, *text;
    int32_t result;
    double date = kMiss, time = kMiss; // kMiss: the slot stays missing
};

TEST_F(LocaleReader, Cases) {
    const double dec31 = dayCount(2024, 12, 31), mar5 = dayCount(2024, 3, 5), jan1 = dayCount(2024, 1, 1);
    const Case cases[] = {
        {u"YMD", u"%Y%m%d", u"20241231", 0, dec31}, {u"DMY", u"%d%m%Y", u"31122024", 0, dec31},
        {u"YMD", u"%y%m%d", u"991231", 0, dayCount(1999, 12, 31)}, {u"YMD", u"%Y%p%m%d", u"20241231", 0, dec31},
        {u"YMD", u"%Y%m%d%S", u"20241231", 0, dec31},
        // A second without digits leaves its token to the next directive.
        {u"DMY", u"%H:%M:%S %A", u"14:07 Monday", 2, kMiss, 50820}, {u"DMY", u"%H:%M:%S %A", u"14:07 Xyz", -1},
        // A literal's lower case in a text long enough to be looked at eight units at a time.
        {u"DMY", u"%H Z %M", u"14 z 07 x", 2, kMiss, 50820}, {u"DMY", u"%H Y %M", u"14 y 07 x", 2, kMiss, 50820}, {u"MDY", u"%H%M", u"1230", 2, kMiss, 1230 * 3600.0},
        {u"YMD", u"%Y%m%d%H%M%S", u"20241231235959", -1}, {u"DMY", u"%d/%m/%Y", u"05/03/24", 0, mar5},
        {u"MDY", u"%d/%m/%Y", u"05/03/24", -1}, {u"MDY", u"%d/%m/%y", u"05/03/2024", -1},
        {u"MDY", u"%d/%m/%y", u"05/03/24", 0, mar5}, {u"DMY", u"%d/%m/%Y", u"05/03/00", 0},
        {u"DMY", u"%d/%m/%Y", u"05/03/2024 hello 99", 0, mar5}, {u"DMY", u"%d %B %Y", u"5 mar 2024", 0, mar5},
        {u"DMY", u"%d %b %Y", u"5 MARCH 2024", 0, mar5}, {u"DMY", u"%d %b %Y", u"5 Mrz 2024", -1},
        {u"DMY", u"%d %B %Y", u"5 Marc 2024", -1}, {u"DMY", u"%d %m %Y", u"5 0 2024", -1},
        {u"MDY", u"%A, %B %d, %Y", u"5, March 5, 2024", -1},
        {u"MDY", u"%A %A %B %d %Y", u"Sunday x March 5 2024", 0, mar5}, {u"DMY", u"%d.%m.%Y", u"05.13.2024", -1},
        {u"MDY", u"%A %B %d %Y", u"Zzz March 5 2024", -1}, // item 121 follows the weekdays but is none
        {u"MDY", u"%b %d %Y", u"sept. 5 2024", 0, dayCount(2024, 9, 5)}, // a name that ends past its first token
        {u"DMY", u"%d.%m.%Y", u"32.01.2024", -1}, {u"DMY", u"%d.%m.%Y", u"0.01.2024", -1},
        {u"DMY", u"%d.%m.%Y", u"31.04.2024", -1}, {u"DMY", u"%d %b %Y", u"12Mar2024", 0, dayCount(2024, 3, 12)},
        {u"DMY", u"%d %m %Y", u"5.3.2024", 0, mar5}, {u"MDY", u"%d %m %Y", u"5-3-2024", -1},
        {u"MDY", u"%d.%m.%Y", u"5.3.2024", 0, mar5}, {u"MDY", u"%d日%m月%Y", u"5日3月2024", 0, mar5},
        {u"MDY", u"%I:%M:%S %p", u"12:00:00 PM", 0, kMiss, 43200},
        {u"MDY", u"%I:%M:%S %p", u"12:00:00 AM", 0, kMiss, 0}, {u"MDY", u"%I:%M:%S", u"pm 1:02:03", 0, kMiss, 46923},
        {u"MDY", u"%I:%M:%S", u"1:02:03 am", 0, kMiss, 3723},
        {u"MDY", u"%I:%M:%S", u"1:02:03 Am PM xm", 0, kMiss, 46923},
        {u"MDY", u"%I:%M:%S", u"1:02:03 p. m. AM", 0, kMiss, 46923}, {u"MDY", u"%H:%M:%S", u"12:30", 2, kMiss, 45000},
        {u"MDY", u"%H:%M:%S", u"1:90:75", 0, kMiss, 3600 + 5400 + 75},
        {u"MDY", u"%B %d, %Y %H:%M:%S", u"March 5, 2024 13:02", 2, mar5, 46920},
        {u"MDY", u"%B %d, %Y %H:%M:%S", u"March 5, 2024 24:00:00", 0, mar5 + 1, 0},
        {u"MDY", u"%B %d, %Y %H:%M:%S", u"December 31, 2024 24:00:00", -1, kMiss, 0},
        {u"MDY", u"%d %H:%M:%S", u"2 01:00:00", 0, kMiss, 2 * 86400.0 + 3600},
        {u"MDY", u"%q %B %d %Y", u"QI March 5 2024", 0, mar5}, {u"MDY", u"%q %B %d %Y", u"Q1 March 5 2024", -1},
        {u"MDY", u"%d%%%m %Y", u"5%3 2024", 0, mar5}, {u"DMY", u"%d %m %Y%", u"5 3 2024%", 0, mar5},
        {u"DMY", u"%d %m %T %Y", u"5 3 %T 2024", 0, mar5}, {u"DMY", u"%d %b %Y", u"1 de gen. 2024", 0, jan1},
        {u"DMY", u"%d %b %Y", u"1 de gen 2024", -1}, {u"DMY", u"%d %B %Y", u"1 del gener 2024", 0, jan1},
        {u"DMY", u"%d %B %Y", u"1 del generx 2024", -1}, {u"DMY", u"%d %Y %B", u"1 2024 del gener", 0, jan1}, {u"DMY", u"%d %b %Y", u"5 Ma 2024", 0, dayCount(2024, 4, 5)},
        {u"DMY", u"%d %b %Y", u"5 Mab 2024", 0, dayCount(2024, 7, 5)},
        {u"MDY", u"%I:%M:%S %p", u"1:00:00 p. m.", 0, kMiss, 46800},
        {u"MDY", u"%I:%M:%S %p", u"12:00:00 a. m.", 0, kMiss, 0},
        {u"MDY", u"%I:%M:%S %p %d", u"1:02:03 p. m.", 0, kMiss, 46923},
        // A literal is found in another case, also beyond ASCII; unmatched, it would end the walk.
        {u"DMY", u"%d.%m.%Y UM %H:%M", u"5.3.2024 um 13:02", 2, mar5, 46920},
        {u"DMY", u"%d %B %Y À %H:%M", u"5 March 2024 à 13:02", 2, mar5, 46920},
    };
    set(59, u"de gen."), set(71, u"del gener"), set(62, u"Ma"), set(64, u"Mab"), set(65, u"Mab");
    set(151, u"a. m."), set(152, u"p. m."), set(121, u"Zzz"), set(67, u"sept.");
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
    set(6, u"DMY"), set(2, u"he");
    EXPECT_EQ(run(u"%d%m%Y", u"1/2/2024", &date, &time), -1);
    EXPECT_TRUE(run(u"%d/%m/%Y", u"1/2/2024", &date, &time) == 0 && date == dayCount(2024, 2, 1));
    std::u16string text = u"1:00:00";
    for (int i = 0; i < 60; ++i) text += u" x";
    EXPECT_TRUE(run(u"%I:%M:%S", text + u" PM", &date, &time) == 0 && time == 46800.0); // the 64th token
    EXPECT_TRUE(run(u"%I:%M:%S", text + u" x PM", &date, &time) == 0 && time == 3600.0);
    // A pattern's 65th token is dropped: "%Y" here, and day and month make no
    // date; or the literal "Z", and the text's "Z" stands in the year's place.
    std::u16string fill;
    for (int i = 0; i < 61; ++i) fill += u" x";
    set(6, u"DMY");
    EXPECT_TRUE(run(u"%d" + fill + u" x %m %Y", u"5 3 2024", &date, &time) == 0 && same(date, kMiss));
    EXPECT_TRUE(run(u"%d" + fill + u" %m %Y", u"5 3 2024", &date, &time) == 0 && date == dayCount(2024, 3, 5));
    EXPECT_EQ(run(u"%d %m %Y" + fill + u" Z", u"5 3Z 2024", &date, &time), -1);
    EXPECT_TRUE(run(u"%d %m %Y" + fill.substr(2) + u" Z", u"5 3Z 2024", &date, &time) == 0 &&
                date == dayCount(2024, 3, 5));
}

} // namespace
