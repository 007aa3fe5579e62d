// The locale date forms against ICU over every CLDR locale.
//
// Each date item comes from the first CLDR pattern of a list whose
// conversion fits a record; the test makes the same choice with the same
// converter options, checks that it gives the item the table holds, and,
// where the converter called the conversion exact, compares the format at
// width 200 (where the first row always fits) with SimpleDateFormat. ICU
// gets the pattern with U+00A0 and U+202F of its literals as blanks, as the
// converter writes them, and its digits are read as ASCII. Texts with
// characters outside the BMP are left out: the locale block writes each
// surrogate as a reference of its own.
#include <unicode/calendar.h>
#include <unicode/dtfmtsym.h>
#include <unicode/dtptngen.h>
#include <unicode/gregocal.h>
#include <unicode/numsys.h>
#include <unicode/smpdtfmt.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "cldr.hpp"
#include "dates.hpp"

namespace {

using AgainstIcu = dt::Module;

std::u16string u16(const icu::UnicodeString &s) { return std::u16string(reinterpret_cast<const char16_t *>(s.getBuffer()), size_t(s.length())); }
icu::UnicodeString icuText(const std::u16string &s) { return icu::UnicodeString(reinterpret_cast<const UChar *>(s.data()), int32_t(s.size())); }

std::u16string asciiDigits(std::u16string s, bool upper = false) {
    for (char16_t &c : s) {
        if (u_charType(c) == U_DECIMAL_DIGIT_NUMBER) c = char16_t(u'0' + u_charDigitValue(c));
        if (upper && !U16_IS_SURROGATE(c)) c = char16_t(u_toupper(c));
    }
    while (!s.empty() && s.back() == u' ') s.pop_back();
    return s;
}
bool outsideBmp(const std::u16string &s) {
    for (char16_t c : s)
        if (U16_IS_SURROGATE(c)) return true;
    return false;
}

struct Source { const char *row; int item; bool reading; std::vector<std::string> candidates; }; // styles or skeletons
const Source kSources[] = {{"NLDATE", 28, true, {"long", "medium", "short"}}, {"NLDATEL", 31, false, {"long", "medium", "short"}},
                           {"NLDATEW", 32, true, {"full", "yMMMMEEEEd", "yMMMEd", "medium"}},
                           {"NLDATEYM", 34, false, {"yMMMM", "yMMM"}}, {"NLDATEMD", 36, false, {"MMMMd", "MMMd"}}};

class IcuSide {
public:
    explicit IcuSide(const std::string &name) : locale_(name.c_str()), gregorian_(locale_) {
        UErrorCode status = U_ZERO_ERROR;
        gregorian_.setKeywordValue("calendar", "gregorian", status);
        generator_.reset(icu::DateTimePatternGenerator::createInstance(gregorian_, status));
        symbols = std::make_unique<icu::DateFormatSymbols>(gregorian_, status);
        std::unique_ptr<icu::Calendar> calendar(icu::Calendar::createInstance(gregorian_, status));
        const UCalendarDaysOfWeek first = calendar->getFirstDayOfWeek(status);
        options_.weekRule = first == UCAL_MONDAY && calendar->getMinimalDaysInFirstWeek() == 4 ? zvhost::WeekRule::Iso
                            : first == UCAL_SUNDAY ? zvhost::WeekRule::SundayFirst : zvhost::WeekRule::MondayFirst;
        int32_t eras = 0;
        const icu::UnicodeString *era = symbols->getEras(eras);
        if (eras >= 2) options_.eraName = u16(era[1]);
        ok = U_SUCCESS(status) && generator_;
    }

    // The CLDR pattern the item came from, and whether its conversion is exact.
    std::u16string choose(const Source &source, const std::string &rawItem, bool *exact) {
        zvhost::ConvertOptions options = options_;
        options.forReading = source.reading;
        for (const std::string &what : source.candidates) {
            UErrorCode status = U_ZERO_ERROR;
            icu::UnicodeString pattern;
            const int style = what == "full" ? 0 : what == "long" ? 1 : what == "medium" ? 2 : what == "short" ? 3 : -1;
            if (style >= 0) {
                std::unique_ptr<icu::DateFormat> f(icu::DateFormat::createDateInstance(icu::DateFormat::EStyle(style), gregorian_));
                dynamic_cast<icu::SimpleDateFormat &>(*f).toPattern(pattern);
            } else {
                pattern = generator_->getBestPattern(icu::UnicodeString(what.c_str(), -1, US_INV), status);
            }
            const zvhost::ConvertedPattern converted = zvhost::convertCldrPattern(u16(pattern), options);
            const std::string escaped = zvhost::escapeForTable(converted.pattern);
            if (escaped.empty() || escaped.size() > zvhost::kRawItemCapacity) continue;
            EXPECT_EQ(escaped, rawItem) << source.item << " from " << zvhost::utf8(u16(pattern));
            *exact = converted.exact;
            return u16(pattern);
        }
        ADD_FAILURE() << "no candidate fits item " << source.item;
        return {};
    }

    std::u16string format(std::u16string pattern, int y, int m, int d) {
        std::replace_if(pattern.begin(), pattern.end(), [](char16_t c) { return c == u'\u00A0' || c == u'\u202F'; }, u' ');
        UErrorCode status = U_ZERO_ERROR;
        icu::SimpleDateFormat format(icuText(pattern), gregorian_, status);
        auto *calendar = new icu::GregorianCalendar(icu::TimeZone::getGMT()->clone(), gregorian_, status);
        calendar->setGregorianChange(-8.64e15, status);
        calendar->clear();
        calendar->set(y, m - 1, d);
        const UDate when = calendar->getTime(status);
        format.adoptCalendar(calendar);
        icu::UnicodeString out;
        return u16(format.format(when, out));
    }

    bool ok = false;
    std::unique_ptr<icu::DateFormatSymbols> symbols;

private:
    icu::Locale locale_, gregorian_;
    std::unique_ptr<icu::DateTimePatternGenerator> generator_;
    zvhost::ConvertOptions options_;
};

TEST_F(AgainstIcu, LocaleFormsMatchIcu) {
    struct Date { int y, m, d; };
    const Date dates[] = {{1582, 10, 15}, {1900, 2, 28}, {2000, 2, 29}, {2024, 9, 25}, {9999, 12, 31}};
    std::vector<std::string> all = zvhost::availableLocales();
    ASSERT_GT(all.size(), 700u);
    int compared = 0, failures = 0;
    for (size_t li = 0; li < all.size() && failures < 20; ++li) {
        const std::string &name = all[li];
        IcuSide icu(name);
        std::vector<uint8_t> table;
        std::string error;
        ASSERT_TRUE(icu.ok && zvhost::buildCldrTable(name, table, error)) << name << ": " << error;
        for (const Source &source : kSources) {
            bool exact = false;
            const std::u16string cldr = icu.choose(source, zvhost::rawItem(table, source.item), &exact);
            for (const Date &date : dates) {
                if (!exact || (date.y >= 4000 && source.item == 32)) continue; // weekdays part after 4000
                const std::u16string theirs = asciiDigits(icu.format(cldr, date.y, date.m, date.d));
                if (outsideBmp(theirs)) continue;
                const zvhost::FormatResult r = call(source.row, dt::moduleDays(date.y, date.m, date.d), 200, 0, {}, name);
                ++compared;
                if (asciiDigits(r.wide) != theirs && ++failures)
                    ADD_FAILURE() << name << " " << source.row << " " << date.y << "-" << date.m << "-" << date.d << " from "
                                  << zvhost::utf8(cldr) << "\n  ours: [" << r.utf8 << "]\n  ICU:  [" << zvhost::utf8(theirs) << "]";
            }
        }
    }
    EXPECT_GT(compared, int(all.size()) * 15);
}

} // namespace
