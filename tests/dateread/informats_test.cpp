// @NLDATE, @NLDATM and @NLTIME: round trips of what the formats write over
// the CLDR locales (and of the week formats), the order of the locale items
// and the fixed forms behind them, partial times, ranges and the field limit.
#include <unicode/uchar.h>

#include <vector>

#include "cldr.hpp"
#include "support.hpp"

namespace {

using namespace dr;

using Informats = Module;

double randomDay(std::mt19937 &rng, int fromYear, int toYear) {
    const double a = dayCount(fromYear, 1, 1), b = dayCount(toYear, 1, 1);
    return a + double(rng() % uint32_t(b - a));
}

// Every value a format writes in a CLDR locale reads back; a locale whose
// pattern literals stand inside its own names ("de" in "dezembro") may not.
TEST_F(Informats, RoundTripsOverCldrLocales) {
    const struct {
        const char *format, *informat;
        int width;
        double (*value)(std::mt19937 &);
    } trips[] = {
        {"NLDATE", "@NLDATE", 40, [](std::mt19937 &r) { return randomDay(r, 1582, 3000); }},
        {"NLDATM", "@NLDATM", 60, [](std::mt19937 &r) { return randomDay(r, 1582, 3000) * 86400 + r() % 86400; }},
        {"NLTIME", "@NLTIME", 20, [](std::mt19937 &r) { return double(r() % 86400); }},
        {"WEEKU", "@WEEKU", 11, [](std::mt19937 &r) { return randomDay(r, 1583, 3999); }},
        {"WEEKV", "@WEEKV", 11, [](std::mt19937 &r) { return randomDay(r, 1583, 3999); }},
        {"WEEKW", "@WEEKW", 11, [](std::mt19937 &r) { return randomDay(r, 1583, 3999); }},
    };
    const std::vector<std::string> locales = zvhost::availableLocales();
    const std::vector<std::string> major = {"en_US", "en_GB", "de_DE", "fr_FR", "it_IT", "es_ES", "nl_NL",
                                            "sv_SE", "pl_PL", "tr_TR", "zh_CN", "el_GR", "hu_HU"};
    std::mt19937 rng(1582);
    size_t whole = 0, compared = 0;
    for (const std::string &locale : locales) {
        std::string failure;
        for (const auto &trip : trips) {
            for (int k = 0; k < 2; ++k) {
                const double value = trip.value(rng);
                const std::string text = write(trip.format, value, locale, trip.width);
                if (text.find('*') != std::string::npos || text.find_first_of("0123456789") == std::string::npos)
                    continue;
                ++compared;
                const zvhost::ReadResult r = read(trip.informat, text, locale);
                if (r.status != 0 || r.value != value)
                    failure = std::string(trip.format) + " [" + text + "] -> " + std::to_string(r.value);
            }
        }
        whole += failure.empty();
        const bool mustBeWhole = std::find(major.begin(), major.end(), locale) != major.end();
        EXPECT_TRUE(failure.empty() || !mustBeWhole) << locale << ": " << failure;
    }
    EXPECT_GE(whole, locales.size() * 17 / 20);
    EXPECT_GT(compared, locales.size() * 8);
}

// NLSTRMON's names in all four forms read back as the first name, short
// ones before full ones, that begins the text in ICU's lower case.
TEST_F(Informats, MonthNamesReadBackOverCldrLocales) {
    int trips = 0, own = 0;
    const std::vector<std::string> locales = zvhost::availableLocales();
    for (size_t i = 0; i < locales.size(); i += 5) {
        const std::string &locale = locales[i];
        std::u16string written[4][12];
        for (int form = 0; form < 4; ++form)
            for (int month = 1; month <= 12; ++month) {
                zvhost::CallSpec spec;
                spec.locale = locale;
                spec.width = 200;
                spec.decimals = form;
                std::u16string s = zvhost::runFormat(host, row("NLSTRMON"), spec, month).wide;
                s.erase(s.find_last_not_of(u' ') + 1);
                for (char16_t &c : s) c = char16_t(u_tolower(c));
                written[form][month - 1] = s;
            }
        for (int form = 0; form < 4; ++form)
            for (int month = 1; month <= 12; ++month) {
                const std::u16string &text = written[form][month - 1];
                double want = kMiss;
                for (int k = 0; k < 24 && std::isnan(want); ++k)
                    if (text.starts_with(written[k < 12 ? 1 : 0][k % 12])) want = k % 12 + 1;
                const zvhost::ReadResult r = read("@NLSTRMON", zvhost::utf8(text), locale);
                EXPECT_TRUE(r.status == 0 && same(r.value, want)) << locale << " " << zvhost::utf8(text) << " " << r.value;
                ++trips;
                own += r.value == month;
            }
    }
    EXPECT_GT(own, trips * 97 / 100);
}

struct Case {
    const char *informat, *locale, *text;
    int32_t status;
    double value; // infinity: the output is not touched
};

TEST_F(Informats, Cases) {
    const double mar5 = dayCount(2024, 3, 5), at = mar5 * 86400, no = INFINITY;
    const Case cases[] = {
        {"@NLDATE", "en_US", "Tue, Mar 5, 2024", 0, mar5},
        {"@NLDATEW", "fr_FR", "5 janv. 2024   ", 0, dayCount(2024, 1, 5)},
        {"@NLDATE", "ja_JP", "2024年3月5日", 0, mar5},
        {"@NLDATE", "en_US", "December 31, 1581", 999, kMiss},
        {"@NLDATE", "en_US", "January 1, 1582", 0, -138061},
        {"@NLDATE", "en_US", "01-JAN-2000", 0, 14610}, // the fixed forms behind the items
        {"@NLDATE", "en_US", "31FEB2000", 0, kMiss},
        {"@NLDATE", "en_US", "xyz", 999, no},
        {"@NLDATE", "en_US", "   ", 1, no},
        {"@NLDATM", "en_US", "March 5, 2024 at 1:02:03 PM", 0, at + 46923},
        {"@NLDATM", "en_US", "Mar 5, 2024, 12:00:00 AM", 0, at},
        {"@NLDATM", "fr_FR", "5 mars 2024 à 13:02", 0, at + 46920},
        {"@NLDATM", "en_US", "March 5, 2024 25:00:00", 0, at + 90000}, // hours carry into the day
        {"@NLDATM", "en_US", "01JAN2000:12:30:15.25", 0, 14610 * 86400.0 + 45015.25},
        {"@NLDATM", "en_US", "01JAN2000:12", 999, no},
        {"@NLTIME", "en_US", "12:30", 0, 45000},
        {"@NLTIMAP", "en_US", "25:00:00", 0, 90000},
        {"@NLTIME", "en_US", "abcde", 999, kMiss},
        {"@NLTIME", "en_US", "ab", 999, no},
    };
    for (const Case &c : cases) {
        const zvhost::ReadResult r = read(c.informat, c.text, c.locale);
        EXPECT_EQ(r.status, c.status) << c.text;
        EXPECT_TRUE(std::isinf(c.value) ? r.untouched : same(r.value, c.value)) << c.text << " " << r.value;
    }
    EXPECT_EQ(read("@NLTIME", "12:30:15", "en_US", {}, 5).value, 45000.0);
    EXPECT_EQ(read("@NLDATE", "Mar 5, 2024", "en_US", {}, 9).value, dayCount(2020, 3, 5));
    EXPECT_EQ(read("@NLDATE", "Mar 5, 2024", "en_US", {}, 0).status, 1);
}

TEST_F(Informats, ItemsAreTriedInOrder) {
    const double at = dayCount(2024, 3, 5) * 86400;
    // Items that read no digits fill the places not under test.
    std::map<int, std::string> items = {{44, "%A"}, {45, "%A"}, {46, "%d/%m/%Y %H:%M"},
                                        {47, "%d/%m/%Y %H:%M:%S"}, {50, "%A"}, {51, "%A"}};
    EXPECT_EQ(read("@NLDATM", "05/03/2024 13:02:03", "de_DE", items).value, at + 46923);
    items[47] = "%A";
    EXPECT_EQ(read("@NLDATM", "05/03/2024 13:02:03", "de_DE", items).value, at + 46920);
    items[46] = "%d/%m/%Y %H";
    items[51] = "%d/%m/%Y %H:%M";
    EXPECT_EQ(read("@NLDATM", "05/03/2024 13:02:03", "de_DE", items).value, at + 46800);
    items[45] = "%d/%m/%Y %H:%M:%S";
    EXPECT_EQ(read("@NLDATM", "05/03/2024 13:02:03", "de_DE", items).value, at + 46923);
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

} // namespace
