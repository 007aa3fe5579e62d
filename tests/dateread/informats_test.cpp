// @NLDATE, @NLDATM and @NLTIME through the host: statuses, the field limit,
// the fixed forms behind the locale patterns, and round trips: a value
// written by NLDATE, NLDATEW, NLDATM, NLDATMAP, NLDATMW, NLTIME or NLTIMAP in
// a CLDR locale reads back to the same value.
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstring>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "cldr.hpp"
#include "frame/frame.hpp"
#include "zvhost.hpp"

namespace {

namespace chr = std::chrono;

constexpr uint64_t kMissing = ZV_MISSING_BITS;
constexpr int32_t kNoInstance = static_cast<int32_t>(0x80000000u);

double dayCount(int y, unsigned m, unsigned d) {
    const chr::sys_days day{chr::year{y} / chr::month{m} / chr::day{d}};
    return double((day - chr::sys_days{chr::year{1960} / 1 / 1}).count());
}

class DateInformats : public ::testing::Test {
public:
    void SetUp() override { ASSERT_NE(host.loadModule(), nullptr); }

    const FormatTableRow &row(const std::string &name) {
        const FormatTableRow *r = zvhost::findRow(host.instance()->formatTable, name);
        EXPECT_NE(r, nullptr) << name;
        return *r;
    }

    zvhost::ReadResult read(const std::string &name, const std::string &text, const std::string &locale = "en_US",
                            int fieldLimit = -1, std::map<int, std::string> items = {}) {
        zvhost::CallSpec spec;
        spec.locale = locale;
        spec.fieldLimit = fieldLimit;
        spec.items = std::move(items);
        zvhost::ReadResult r = zvhost::runInformat(host, row(name), spec, text);
        EXPECT_TRUE(r.error.empty()) << r.error;
        EXPECT_FALSE(r.fieldsChanged) << name << " " << text;
        return r;
    }

    std::string write(const std::string &name, double value, const std::string &locale, int width = -1,
                      int decimals = -1) {
        zvhost::CallSpec spec;
        spec.locale = locale;
        spec.width = width;
        spec.decimals = decimals;
        zvhost::FormatResult r = zvhost::runFormat(host, row(name), spec, value);
        EXPECT_TRUE(r.error.empty()) << r.error;
        return r.utf8;
    }

    zvhost::Host host;
};

struct ReadCase {
    const char *row;
    const char *locale;
    const char *text;
    int32_t status;
    double value;     // when status is 0 and !missing
    bool missing;     // the value read is the plain missing value
    bool untouched;   // output keeps the host's sentinel
};

const double kMar5 = dayCount(2024, 3, 5);

TEST_F(DateInformats, FixedCases) {
    const ReadCase cases[] = {
        // Locale patterns, every one of the date items.
        {"@NLDATE", "en_US", "March 5, 2024", 0, kMar5, false, false},
        {"@NLDATE", "en_US", "Mar 5, 2024", 0, kMar5, false, false},
        {"@NLDATE", "en_US", "Tuesday, March 5, 2024", 0, kMar5, false, false},
        {"@NLDATE", "en_US", "Tue, Mar 5, 2024", 0, kMar5, false, false},
        {"@NLDATE", "en_US", "march 5, 2024", 0, kMar5, false, false},
        {"@NLDATE", "en_US", "MARCH 5 2024", 0, kMar5, false, false},
        {"@NLDATEW", "en_US", "   Mar 5, 2024   ", 0, kMar5, false, false},
        {"@NLDATE", "fr_FR", "5 mars 2024", 0, kMar5, false, false},
        {"@NLDATE", "fr_FR", "5 janv. 2024", 0, dayCount(2024, 1, 5), false, false},
        {"@NLDATE", "fr_FR", "mardi 5 mars 2024", 0, kMar5, false, false},
        {"@NLDATE", "de_DE", "05.03.2024", 0, kMar5, false, false},
        {"@NLDATE", "de_DE", "5. März 2024", 0, kMar5, false, false},
        {"@NLDATE", "ja_JP", "2024年3月5日", 0, kMar5, false, false},
        {"@NLDATE", "ja_JP", "2024/03/05", 0, kMar5, false, false},
        // The last day of 1581 fails each locale item; no fixed form reads it.
        {"@NLDATE", "en_US", "December 31, 1581", 999, 0, true, false},
        {"@NLDATE", "en_US", "January 1, 1582", 0, -138061, false, false},
        {"@NLDATE", "en_US", "December 31, 3999", 0, dayCount(3999, 12, 31), false, false},
        // "%Y" takes four of five digits and leaves one that no directive takes.
        {"@NLDATE", "en_US", "December 31, 20000", 999, 0, true, false},
        // Fixed forms of DATE behind the locale patterns.
        {"@NLDATE", "en_US", "01JAN2000", 0, 14610, false, false},
        {"@NLDATE", "en_US", "01-JAN-2000", 0, 14610, false, false},
        {"@NLDATE", "en_US", "01/JAN/2000", 0, 14610, false, false},
        {"@NLDATE", "en_US", "1 jan 00", 0, 14610, false, false},
        {"@NLDATE", "en_US", "01.JAN.2000", 999, 0, true, false},
        {"@NLDATE", "en_US", "31FEB2000", 0, 0, true, false},
        // Too short for a fixed form, read by no locale pattern: as the last try left it.
        {"@NLDATE", "en_US", "xyz", 999, 0, false, true},
        {"@NLDATE", "en_US", "", 1, 0, false, true},
        {"@NLDATE", "en_US", "      ", 1, 0, false, true},
        // Datetimes.
        {"@NLDATM", "en_US", "March 5, 2024 at 1:02:03 PM", 0, kMar5 * 86400 + 46923, false, false},
        {"@NLDATM", "en_US", "Mar 5, 2024, 12:00:00 AM", 0, kMar5 * 86400, false, false},
        {"@NLDATM", "en_US", "Mar 5, 2024, 12:00:00 PM", 0, kMar5 * 86400 + 43200, false, false},
        {"@NLDATMAP", "fr_FR", "5 mars 2024 à 13:02:03", 0, kMar5 * 86400 + 46923, false, false},
        {"@NLDATMW", "de_DE", "Dienstag, 5. März 2024 um 23:59:59", 0, kMar5 * 86400 + 86399, false, false},
        // Hour and minute only: the first partial reading stands.
        {"@NLDATM", "fr_FR", "5 mars 2024 à 13:02", 0, kMar5 * 86400 + 46920, false, false},
        {"@NLDATM", "en_US", "01JAN2000:12:30:15.25", 0, 14610 * 86400.0 + 45015.25, false, false},
        {"@NLDATM", "en_US", "01JAN2000 12:30", 0, 14610 * 86400.0 + 45000, false, false},
        {"@NLDATM", "en_US", "01JAN2000:12:00", 0, 14610 * 86400.0 + 43200, false, false},
        // Twelve characters: shorter than every fixed DATETIME form.
        {"@NLDATM", "en_US", "01JAN2000:12", 999, 0, false, true},
        // A date alone: no locale item, too short for the fixed forms.
        {"@NLDATM", "en_US", "01JAN2000", 999, 0, false, true},
        // Accepted by the fixed row without an hour: missing value, status 0.
        {"@NLDATM", "en_US", "01JANUARY2000", 0, 0, true, false},
        // Refused by every DATETIME row: words behind the date.
        {"@NLDATM", "en_US", "01JAN2000   xxxxx", 999, 0, true, false},
        // Times.
        {"@NLTIME", "en_US", "12:30:15", 0, 45015, false, false},
        {"@NLTIME", "en_US", "12:30", 0, 45000, false, false},
        {"@NLTIMAP", "en_US", "25:00:00", 0, 90000, false, false},
        // The locale pattern reads the seconds and leaves the fraction over.
        {"@NLTIME", "en_US", "12:30:15.5", 0, 45015, false, false},
        {"@NLTIME", "en_US", "1:30", 0, 5400, false, false},
        {"@NLTIME", "en_US", "abcde", 999, 0, true, false},
        {"@NLTIME", "en_US", "ab", 999, 0, false, true},
    };
    for (const ReadCase &c : cases) {
        SCOPED_TRACE(std::string(c.row) + " " + c.locale + " [" + c.text + "]");
        const zvhost::ReadResult r = read(c.row, c.text, c.locale);
        EXPECT_EQ(r.status, c.status);
        EXPECT_EQ(r.untouched, c.untouched);
        if (c.untouched) continue;
        if (c.missing)
            EXPECT_EQ(r.bits, kMissing);
        else
            EXPECT_EQ(r.value, c.value);
    }
}

TEST_F(DateInformats, FieldLimitHidesTheRest) {
    // The digits behind the limit are never read; blanks before it are trailing.
    EXPECT_EQ(read("@NLTIME", "12:30:15", "en_US", 5).value, 45000.0);
    // Cut to "Mar 5, 20": a two-digit year under "%Y" in a locale of the same
    // field order is taken and settled by the pivot.
    EXPECT_EQ(read("@NLDATE", "Mar 5, 2024", "en_US", 9).value, dayCount(2020, 3, 5));
    EXPECT_EQ(read("@NLDATE", "Mar 5, 2024", "en_US", 8).value, dayCount(2002, 3, 5));
    EXPECT_EQ(read("@NLDATE", "Mar 5, 2024", "en_US", 6).status, 999);
    zvhost::ReadResult r = read("@NLDATE", "Mar 5, 2024 1999", "en_US", 12);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.value, kMar5);
    r = read("@NLDATE", "      2024", "en_US", 6);
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(r.untouched);
    r = read("@NLDATE", "Mar 5, 2024", "en_US", 0);
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(r.untouched);
}

TEST_F(DateInformats, NoInstanceLeavesOutputAlone) {
    const ZvWideEntry entries[] = {row("@NLDATE").wideEntry, row("@NLDATM").wideEntry, row("@NLTIME").wideEntry};
    host.unloadModule();
    const std::u16string text = u"Mar 5, 2024";
    double out = 42.0;
    FormatCall call;
    std::memset(&call, 0, sizeof call);
    call.input = text.data();
    call.inputLength = static_cast<int32_t>(text.size());
    call.fieldLimit = call.inputLength;
    call.output = &out;
    call.services = host.services();
    for (ZvWideEntry entry : entries) {
        ASSERT_NE(entry, nullptr);
        EXPECT_EQ(entry(&call, nullptr), kNoInstance);
        EXPECT_EQ(out, 42.0);
        EXPECT_EQ(call.localeBlock, nullptr);
    }
}

// Without a locale no block is built: the locale patterns are skipped and
// even an empty text goes to the fixed forms.
TEST_F(DateInformats, NoBlockGoesStraightToTheFixedForms) {
    struct Case {
        const char *row;
        std::u16string text;
        int32_t status;
        double value;
    } cases[] = {
        {"@NLDATE", u"", 999, 42.0},
        {"@NLDATE", u"01JAN2000", 0, 14610.0},
        {"@NLDATE", u"Jan 1, 2000", 999, -1.0},
        {"@NLDATM", u"01JAN2000:01:00", 0, 14610.0 * 86400 + 3600},
        {"@NLTIME", u"   ", 999, 42.0},
        {"@NLTIME", u"12:30", 0, 45000.0},
    };
    for (const Case &c : cases) {
        double out = 42.0;
        FormatCall call;
        std::memset(&call, 0, sizeof call);
        call.input = c.text.data();
        call.inputLength = static_cast<int32_t>(c.text.size());
        call.fieldLimit = call.inputLength;
        call.output = &out;
        call.services = host.services();
        EXPECT_EQ(row(c.row).wideEntry(&call, nullptr), c.status) << c.row;
        if (c.value == -1.0) {
            EXPECT_EQ(zv::bitsOf(out), kMissing);
        } else {
            EXPECT_EQ(out, c.value) << c.row;
        }
    }
}

TEST_F(DateInformats, YearCutoffSettlesTwoDigitYears) {
    // 1 jan 49 under the default pivot 1950 is 2049; under 1920 it is 1949.
    EXPECT_EQ(read("@NLDATE", "1 jan 49").value, dayCount(2049, 1, 1));
    host.setOption("ZV_NAME_YEARCUTOFF", 1920);
    EXPECT_EQ(read("@NLDATE", "1 jan 49").value, dayCount(1949, 1, 1));
    EXPECT_EQ(read("@NLDATE", "1 jan 19").value, dayCount(2019, 1, 1));
}

TEST_F(DateInformats, ItemOverridesDriveTheLocalePatterns) {
    // A locale whose date item is "%d/%m/%Y" reads 05/03/2024 as 5 March.
    std::map<int, std::string> items = {{28, "%d/%m/%Y"}, {6, "DMY"}};
    zvhost::ReadResult r = read("@NLDATE", "05/03/2024", "en_US", -1, items);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.value, kMar5);
    // The time item with %I and %p: 12 PM is noon, 12 AM midnight, 1 PM 13 hours.
    items = {{53, "%I:%M:%S %p"}};
    EXPECT_EQ(read("@NLTIME", "12:00:00 PM", "en_US", -1, items).value, 43200.0);
    EXPECT_EQ(read("@NLTIME", "12:00:00 AM", "en_US", -1, items).value, 0.0);
    EXPECT_EQ(read("@NLTIME", "1:00:00 pm", "en_US", -1, items).value, 46800.0);
}

TEST_F(DateInformats, PartialReadingsOfTheLocaleItems) {
    const double at = kMar5 * 86400;
    // Items that can't read digits at all, for the places not under test.
    std::map<int, std::string> items = {{44, "%A"}, {45, "%A"}, {46, "%d/%m/%Y %H:%M"},
                                        {47, "%d/%m/%Y %H:%M:%S"}, {50, "%A"}, {51, "%A"}};
    // The first item reads hour and minute only; the second reads all and wins.
    zvhost::ReadResult r = read("@NLDATM", "05/03/2024 13:02:03", "de_DE", -1, items);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.value, at + 46923);
    // No item reads more: the first partial reading stands.
    items[47] = "%A";
    r = read("@NLDATM", "05/03/2024 13:02:03", "de_DE", -1, items);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.value, at + 46920);
    // A later partial reading does not replace the first.
    items[46] = "%d/%m/%Y %H";
    items[51] = "%d/%m/%Y %H:%M";
    r = read("@NLDATM", "05/03/2024 13:02:03", "de_DE", -1, items);
    EXPECT_EQ(r.value, at + 46800);
    // A date with part of a time is no date for @NLDATE: the fixed forms decide.
    std::map<int, std::string> dateItems = {{28, "%d/%m/%Y %H"}, {29, "%A"}, {32, "%A"}, {33, "%A"}};
    r = read("@NLDATE", "05/03/2024 13", "de_DE", -1, dateItems);
    EXPECT_EQ(r.status, 999);
    EXPECT_EQ(r.bits, kMissing);
    dateItems[33] = "%d/%m/%Y";
    EXPECT_EQ(read("@NLDATE", "05/03/2024 13", "de_DE", -1, dateItems).value, kMar5);
    // @NLTIME takes part of a time.
    EXPECT_EQ(read("@NLTIME", "13", "de_DE", -1, {{53, "%H:%M:%S"}}).value, 46800.0);
}

// ---- round trips -------------------------------------------------------------------

// Dates from 1582 to 2999, stepped by a prime so that every month, weekday
// and day of the month comes up.
std::vector<double> sampleDays() {
    std::vector<double> days;
    for (double d = dayCount(1582, 1, 1); d < dayCount(3000, 1, 1); d += 6197) days.push_back(d);
    for (double d : {dayCount(2024, 2, 29), dayCount(1999, 12, 31), dayCount(2000, 1, 1), 0.0})
        days.push_back(d);
    return days;
}

struct Trip {
    const char *format;
    const char *informat;
    int width;
    int decimals;
    bool datetime;
    bool time;
};

bool hasAsciiDigit(const std::string &s) {
    for (char c : s)
        if (c >= '0' && c <= '9') return true;
    return false;
}

const Trip kTrips[] = {
    {"NLDATE", "@NLDATE", 40, 0, false, false},  {"NLDATEW", "@NLDATEW", 60, 0, false, false},
    {"NLDATM", "@NLDATM", 60, 0, true, false},   {"NLDATMAP", "@NLDATMAP", 60, 0, true, false},
    {"NLDATMW", "@NLDATMW", 80, 0, true, false}, {"NLTIME", "@NLTIME", 20, 0, false, true},
    {"NLTIMAP", "@NLTIMAP", 20, 0, false, true},
};

// Writes every sample with each format in `locale` and reads it back with
// the matching informat. Answers the texts that did not come back, and
// counts the texts compared. Texts with stars or without ASCII digits are
// passed over: the reader knows only ASCII digits.
class RoundTrip {
public:
    explicit RoundTrip(DateInformats *t) : t_(t), days_(sampleDays()) {}
    std::vector<std::string> run(const std::string &locale, int64_t *compared, size_t stride = 1) {
        std::vector<std::string> failures;
        for (const Trip &trip : kTrips) {
            for (size_t k = 0; k < days_.size(); k += stride * (trip.time ? 7 : 1)) {
                double value = days_[k];
                if (trip.datetime) value = days_[k] * 86400.0 + double((k * 3607) % 86400);
                if (trip.time) value = double((k * 3607 + 59) % 86400);
                const std::string text = t_->write(trip.format, value, locale, trip.width, trip.decimals);
                if (text.find('*') != std::string::npos || !hasAsciiDigit(text)) continue;
                ++*compared;
                const zvhost::ReadResult r = t_->read(trip.informat, text, locale);
                if (r.status != 0 || r.value != value)
                    failures.push_back(std::string(trip.format) + " [" + text + "] -> " + std::to_string(r.status) +
                                       " " + std::to_string(r.value) + ", want " + std::to_string(value));
            }
        }
        return failures;
    }

private:
    DateInformats *t_;
    std::vector<double> days_;
};

// Locales whose names, marks and pattern literals keep apart in the text:
// every value comes back.
TEST_F(DateInformats, RoundTripsInMajorLocales) {
    const char *locales[] = {"en_US", "en_GB", "en_AU", "en_IN", "de_DE", "de_AT", "de_CH", "fr_FR", "fr_BE",
                             "fr_CH", "it_IT", "nl_NL", "sv_SE", "da_DK", "nb_NO", "fi_FI", "pl_PL", "tr_TR",
                             "zh_CN", "zh_TW", "id_ID", "vi_VN", "hu_HU", "ro_RO", "hr_HR", "lt_LT", "lv_LV",
                             "el_GR", "th_TH", "ms_MY", "sw_KE", "af_ZA", "es_ES", "es_MX", "hi_IN", "et_EE",
                             "sl_SI", "sr_RS", "is_IS", "ga_IE", "cy_GB"};
    RoundTrip trip(this);
    int64_t compared = 0;
    for (const char *locale : locales) {
        const std::vector<std::string> failures = trip.run(locale, &compared);
        EXPECT_TRUE(failures.empty()) << locale << ": " << failures.size() << " texts, first "
                                      << (failures.empty() ? std::string() : failures[0]);
    }
    EXPECT_GT(compared, 15000);
}

// Every CLDR locale. Where a pattern literal stands inside a name ("de" in
// Portuguese "dezembro", "в" in Russian "января", "日" in Japanese
// "日曜日"), the text is cut at the literal and the name no longer reads;
// such locales are shown, and most locales must come back whole.
TEST_F(DateInformats, RoundTripsOverCldrLocales) {
    const std::vector<std::string> locales = zvhost::availableLocales();
    ASSERT_GT(locales.size(), 700u);
    RoundTrip trip(this);
    int64_t compared = 0;
    size_t whole = 0;
    for (const std::string &locale : locales) {
        const std::vector<std::string> failures = trip.run(locale, &compared, 4);
        if (failures.empty())
            ++whole;
        else
            std::cout << "[ differs  ] " << locale << " " << failures.size() << ": " << failures[0] << "\n";
    }
    std::cout << "[ compared ] " << compared << " texts, " << whole << " of " << locales.size()
              << " locales whole\n";
    EXPECT_GE(whole, locales.size() * 4 / 5);
}

// The token cuts behind the failures above, one case each.
TEST_F(DateInformats, LiteralsInsideNamesCutTheText) {
    struct Case {
        const char *row, *locale, *text;
        int32_t status;
        double value;
    } cases[] = {
        // "de" of the pattern matches the front of "dezembro"; November reads.
        {"@NLDATE", "pt_BR", "20 de dezembro de 1598", 999, 0},
        {"@NLDATE", "pt_BR", "20 de novembro de 1598", 0, dayCount(1598, 11, 20)},
        // "в" of the pattern inside "января"; March has none.
        {"@NLDATM", "ru_RU", "1 января 1582 г. в 00:00:00", 999, 0},
        {"@NLDATM", "ru_RU", "5 марта 2024 г. в 01:00:00", 0, kMar5 * 86400 + 3600},
        // "min" compared over what is left of the text takes the "M" of "AM".
        {"@NLTIME", "fr_CA", "12:00:59 AM", 0, 43259},
        {"@NLTIME", "fr_CA", "12 h 00 min 59 s", 0, 43259},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(std::string(c.locale) + " [" + c.text + "]");
        const zvhost::ReadResult r = read(c.row, c.text, c.locale);
        EXPECT_EQ(r.status, c.status);
        if (c.status == 0) {
            EXPECT_EQ(r.value, c.value);
        }
    }
}

} // namespace
