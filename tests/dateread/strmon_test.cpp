// @NLSTRMON: fixed cases under set names, statuses, limits, and the round
// trip of NLSTRMON's names in both forms and both cases over the CLDR
// locales, with and without the host's character services.
#include <gtest/gtest.h>

#include <unicode/locid.h>
#include <unicode/uchar.h>

#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "dateread/weekread.hpp"
#include "frame/frame.hpp"
#include "wide/wide.hpp"
#include "zvhost.hpp"

namespace {

constexpr uint64_t kMissing = ZV_MISSING_BITS;

std::map<int, std::string> englishNames() {
    std::map<int, std::string> m;
    const char *months[12] = {"January", "February", "March", "April", "May", "June",
                              "July", "August", "September", "October", "November", "December"};
    for (int i = 0; i < 12; ++i) {
        m[95 + i] = months[i];
        m[83 + i] = std::string(months[i]).substr(0, 3);
    }
    return m;
}

class MonthNames : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_NE(host.loadModule(), nullptr); }

    const FormatTableRow &row() {
        const FormatTableRow *r = zvhost::findRow(host.instance()->formatTable, "@NLSTRMON");
        EXPECT_NE(r, nullptr);
        return *r;
    }

    zvhost::ReadResult read(const std::string &text, std::map<int, std::string> items = englishNames(),
                            int fieldLimit = -1) {
        zvhost::CallSpec spec;
        spec.items = std::move(items);
        spec.fieldLimit = fieldLimit;
        zvhost::ReadResult r = zvhost::runInformat(host, row(), spec, text);
        EXPECT_TRUE(r.error.empty()) << r.error;
        EXPECT_FALSE(r.fieldsChanged) << text;
        return r;
    }

    zvhost::Host host;
};

struct NameCase {
    const char *text;
    double month; // 0: the missing mark
};

void expectMonth(const zvhost::ReadResult &r, double month, const std::string &what) {
    EXPECT_EQ(r.status, 0) << what;
    if (month == 0)
        EXPECT_EQ(r.bits, kMissing) << what;
    else
        EXPECT_EQ(r.value, month) << what;
}

TEST_F(MonthNames, ReadsEnglishNames) {
    const NameCase cases[] = {
        {"January", 1}, {"jan", 1}, {"FEB", 2}, {"March", 3}, {"mArCh", 3}, {"May", 5},
        {"MAY 2024", 5},        // a name needs only to begin the text
        {"Sept", 9},            // "Sep" begins it
        {"December", 12}, {"Dec.", 12}, {"Decimal", 12},
        {" May", 0},            // the text is compared from its first character
        {"Ma", 0}, {"J", 0}, {"xyz", 0}, {"13", 0},
        {"", 0}, {"     ", 0},  // blank: the missing mark, status 0
        {"Mar   ", 3},
    };
    for (const NameCase &c : cases) expectMonth(read(c.text), c.month, std::string("'") + c.text + "'");
}

TEST_F(MonthNames, FirstNameThatBeginsTheTextWins) {
    // Names that are the beginnings of later ones: no longest match.
    std::map<int, std::string> items;
    for (int i = 0; i < 12; ++i) {
        items[83 + i] = "m" + std::to_string(i + 1);
        items[95 + i] = "month" + std::to_string(i + 1);
    }
    const NameCase cases[] = {
        {"m1", 1},  {"m5", 5},  {"M9", 9},         {"m10", 1}, {"m12", 1}, // "m1" stands first
        {"month7", 7}, {"MONTH12", 1},             // abbreviations first, then full names
        {"m", 0},   {"month", 0}, {"mo1", 0},
    };
    for (const NameCase &c : cases) expectMonth(read(c.text, items), c.month, c.text);

    // An empty item takes any text, even a blank one.
    items[83 + 3] = "";
    expectMonth(read("m1", items), 1, "m1 before the empty item");
    expectMonth(read("m5", items), 4, "m5 behind the empty item");
    expectMonth(read("", items), 4, "blank with an empty item");
}

TEST_F(MonthNames, FoldsCaseBeyondAscii) {
    std::map<int, std::string> items = englishNames();
    items[84] = "f<U00E9>vr.";
    items[96] = "F<U00E9>vrier";
    items[97] = "<U043C><U0430><U0440><U0442>";              // Cyrillic
    items[91] = "<U0391><U03CD><U03B3>";                     // Greek, month 9 abbreviated
    items[90] = "<U00C5>gu";                                 // month 8
    const NameCase cases[] = {
        {"FÉVR.", 2}, {"février 2024", 2}, {"FÉVRIER", 2}, {"fevrier", 0},
        {"МАРТ", 3}, {"март", 3}, {"Март", 3}, {"ΑΎΓ", 9}, {"αύγουστος", 9}, {"ÅGU", 8}, {"ågust", 8},
    };
    for (const NameCase &c : cases) expectMonth(read(c.text, items), c.month, c.text);
}

TEST_F(MonthNames, FieldLimitStopsANameFromMatching) {
    struct Cut {
        const char *text;
        int limit;
        double month;
    } cuts[] = {
        {"March", 5, 3}, {"March", 3, 3}, {"March", 2, 0}, {"March", 0, 0},
        {"Mar   ", 3, 3},    // blanks go before the limit counts
        {"Mar   ", 100, 3},
        {"Ma    ", 6, 0},
    };
    for (const Cut &c : cuts) expectMonth(read(c.text, englishNames(), c.limit), c.month, c.text + std::string(" ") + std::to_string(c.limit));

    // Only full names, so the limit decides between a name and none.
    std::map<int, std::string> items = englishNames();
    for (int i = 0; i < 12; ++i) items[83 + i] = "<U00A4><U00A4>" + std::to_string(i);
    expectMonth(read("September", items, 9), 9, "September at 9");
    expectMonth(read("September", items, 8), 0, "September at 8");
}

TEST_F(MonthNames, LimitsAreCheckedOnlyOnRequest) {
    struct Limit {
        int width, decimals;
        int32_t status;
    } limits[] = {
        {0, 0, 2}, {-5, 9, 2}, {201, 0, 3}, {201, -2, 3}, {1, -2, 4}, {200, 4, 5}, {1, 0, 0}, {200, 3, 0},
    };
    for (const Limit &l : limits) {
        for (bool validate : {true, false}) {
            // (-1 asks the host for the row's default, so -2 stands for below 0.)
            zvhost::CallSpec spec;
            spec.items = englishNames();
            spec.width = l.width;
            spec.decimals = l.decimals;
            spec.validate = validate;
            const zvhost::ReadResult r = zvhost::runInformat(host, row(), spec, "April");
            const int32_t expected = validate ? l.status : 0;
            EXPECT_EQ(r.status, expected) << l.width << "." << l.decimals << " validate " << validate;
            if (expected == 0)
                EXPECT_EQ(r.value, 4.0);
            else
                EXPECT_TRUE(r.untouched);
        }
    }
}

TEST_F(MonthNames, WithoutTheInstanceNothingIsWritten) {
    ExtensionInstance *none[] = {nullptr};
    HostServices services = *host.services();
    services.extensionList = none;
    FormatCall call;
    std::memset(&call, 0, sizeof call);
    const std::u16string text = u"April";
    double out = 42.0;
    call.input = text.data();
    call.inputLength = int32_t(text.size());
    call.fieldLimit = int32_t(text.size());
    call.output = &out;
    call.width = 12;
    call.locale = host.locale("en_US");
    call.services = &services;
    EXPECT_EQ(zv::readNlStrMonth(&call, nullptr), ZV_NO_INSTANCE);
    EXPECT_EQ(out, 42.0);
    EXPECT_EQ(call.localeBlock, nullptr);
}

TEST_F(MonthNames, FailedBlockGivesTheMissingMark) {
    host.formatPool().failFrom(1);
    const zvhost::ReadResult r = read("April");
    host.formatPool().failFrom(0);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.bits, kMissing);
    EXPECT_EQ(read("April").value, 4.0);
}

// ---- round trip over CLDR locales --------------------------------------------

std::u16string withoutTrailingBlanks(std::u16string s) {
    while (!s.empty() && s.back() == u' ') s.pop_back();
    return s;
}

// The lower case of each unit: ICU's, or that of the module's fold tables,
// which hold an early repertoire only (U+0244 and Georgian capitals, among
// others, stay as they are there).
std::u16string lowerCase(const std::u16string &s, bool ownTables) {
    std::u16string out = s;
    for (char16_t &c : out) c = ownTables ? zv::tableLower(c) : char16_t(u_tolower(c));
    return out;
}

struct TripCount {
    int trips = 0;
    int sameMonth = 0;
    int missing = 0;
    int locales = 0;
};

// Writes the 24 names of every locale with NLSTRMON in all four forms and
// reads each back. The expected month is worked out here: the first of the
// names, abbreviated ones first, that begins the text in lower case.
// With `ownTables` the reads run with the anchor's character services taken
// away, so that the module folds by its own tables.
TripCount roundTrip(zvhost::Host &host, int step, bool ownTables) {
    TripCount count;
    const FormatTableRow *format = zvhost::findRow(host.instance()->formatTable, "NLSTRMON");
    const FormatTableRow *informat = zvhost::findRow(host.instance()->formatTable, "@NLSTRMON");
    int32_t n = 0;
    const icu::Locale *all = icu::Locale::getAvailableLocales(n);
    for (int32_t i = 0; i < n; i += step) {
        const std::string name = all[i].getName();
        if (!host.locale(name)) continue;
        ++count.locales;
        zvhost::CallSpec spec;
        spec.locale = name;
        spec.width = 200;
        std::u16string written[4][12];
        for (int decimals = 0; decimals < 4; ++decimals) {
            spec.decimals = decimals;
            for (int month = 1; month <= 12; ++month) {
                const zvhost::FormatResult r = zvhost::runFormat(host, *format, spec, month);
                EXPECT_EQ(r.status, 0) << name;
                written[decimals][month - 1] = withoutTrailingBlanks(r.wide);
            }
        }
        std::vector<std::u16string> names; // as the informat lists them
        for (int form : {1, 0})
            for (int month = 0; month < 12; ++month) names.push_back(lowerCase(written[form][month], ownTables));
        for (int decimals = 0; decimals < 4; ++decimals) {
            for (int month = 1; month <= 12; ++month) {
                const std::u16string &text = written[decimals][month - 1];
                const std::u16string folded = lowerCase(text, ownTables);
                double expected = 0;
                for (size_t k = 0; k < names.size() && expected == 0; ++k)
                    if (folded.compare(0, names[k].size(), names[k]) == 0) expected = double(k % 12 + 1);
                zvhost::CallSpec readSpec;
                readSpec.locale = name;
                NlsServices *const nls = host.anchor()->nlsServices;
                if (ownTables) host.anchor()->nlsServices = nullptr;
                const zvhost::ReadResult r = zvhost::runInformat(host, *informat, readSpec, zvhost::utf8(text));
                host.anchor()->nlsServices = nls;
                EXPECT_EQ(r.status, 0);
                EXPECT_FALSE(r.fieldsChanged);
                if (expected == 0)
                    EXPECT_EQ(r.bits, kMissing) << name << " decimals " << decimals << " '" << zvhost::utf8(text) << "'";
                else
                    EXPECT_EQ(r.value, expected) << name << " decimals " << decimals << " '" << zvhost::utf8(text) << "'";
                ++count.trips;
                count.sameMonth += r.value == month;
                count.missing += expected == 0;
            }
        }
    }
    return count;
}

TEST(MonthNamesOverLocales, ReadBackWithCharacterServices) {
    zvhost::Host host;
    ASSERT_NE(host.loadModule(), nullptr);
    const TripCount c = roundTrip(host, 1, false);
    EXPECT_GT(c.locales, 300);
    EXPECT_EQ(c.missing, 0) << "every name reads back as some month";
    // Nearly every name comes back as its own month; the rest are names of
    // which an earlier one is the beginning.
    EXPECT_GT(c.sameMonth, c.trips * 97 / 100) << c.sameMonth << " of " << c.trips;
}

TEST(MonthNamesOverLocales, ReadBackWithTheModulesOwnTables) {
    zvhost::Host host;
    ASSERT_NE(host.loadModule(), nullptr);
    const TripCount c = roundTrip(host, 3, true);
    EXPECT_GT(c.locales, 100);
    EXPECT_GT(c.sameMonth, c.trips * 97 / 100) << c.sameMonth << " of " << c.trips;
}

} // namespace
