// The raw locale table of a CLDR locale, built through ICU.
//
// Decisions kept here:
// - Dates use the Gregorian calendar in every locale (th_TH's default is the
//   Buddhist one): the readers know only Gregorian years, and item 5 lets a
//   pattern ask for the Thai, Taiwanese or Japanese year with %+Y.
// - A text whose escaped form would run past the 160 bytes of a record is
//   replaced: a wide name by its abbreviated form, a pattern by the next
//   shorter pattern of its kind; a name that still does not fit (Chakma
//   month abbreviations, in characters outside the BMP) is cut before the
//   character that would cross the limit.
// - Positive signs (items 160 and 175) stay empty: CLDR writes no sign in
//   front of a positive amount, and the number engine writes the positive
//   sign where the pattern has one.
// - A locale without a territory takes the currency of the territory that
//   its language most likely goes with (fr: EUR, ja: JPY). A locale with no
//   currency at all (eo) has empty items 155 and 156.
// - Separators and signs longer than the two units of a number context
//   lose their bidirectional marks, all but a leading one where room is left.
// - The date separator (item 153) is the first character between the first
//   two fields of the short date pattern that is neither a blank nor a
//   bidirectional mark (ar: "d\u200F/M\u200F/y" gives "/").
#include "cldr.hpp"
#include "cldr_skeletons.hpp"

#include <unicode/calendar.h>
#include <unicode/dcfmtsym.h>
#include <unicode/decimfmt.h>
#include <unicode/dtfmtsym.h>
#include <unicode/dtptngen.h>
#include <unicode/locid.h>
#include <unicode/numfmt.h>
#include <unicode/numsys.h>
#include <unicode/uniset.h>
#include <unicode/resbund.h>
#include <unicode/simpleformatter.h>
#include <unicode/smpdtfmt.h>
#include <unicode/uchar.h>
#include <unicode/ucurr.h>
#include <unicode/uloc.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <optional>
#include <set>

namespace zvhost {

namespace {

constexpr const char *kHex = "0123456789ABCDEF";

std::u16string u16(const icu::UnicodeString &s) {
    return std::u16string(reinterpret_cast<const char16_t *>(s.getBuffer()), static_cast<size_t>(s.length()));
}

size_t recordOffset(int item) {
    return ZV_LOCALE_TABLE_OFFSET + static_cast<size_t>(item) * ZV_LOCALE_RECORD_SIZE;
}

// The escaped text cut so that it fits a record: never inside an escape.
std::string cutEscaped(const std::string &escaped) {
    if (escaped.size() <= kRawItemCapacity) return escaped;
    size_t end = 0;
    size_t i = 0;
    while (i < escaped.size()) {
        size_t step = (escaped[i] == '<' && i + 7 <= escaped.size() && escaped[i + 1] == 'U') ? 7 : 1;
        // A high surrogate goes together with the low one behind it.
        if (step == 7 && escaped[i + 2] == 'D' && escaped[i + 3] >= '8' && escaped[i + 3] <= 'B' &&
            i + 14 <= escaped.size())
            step = 14;
        if (i + step > kRawItemCapacity) break;
        i += step;
        end = i;
    }
    return escaped.substr(0, end);
}

// ---------------------------------------------------------------------------
// Locale names

// ICU's installed locales by name: its C list, which (unlike the list of
// Locale objects) costs nothing to build.
std::vector<const char *> icuLocaleNames() {
    const int32_t count = uloc_countAvailable();
    std::vector<const char *> names(size_t(std::max(count, 0)));
    for (int32_t i = 0; i < count; ++i) names[size_t(i)] = uloc_getAvailable(i);
    return names;
}

std::string maximized(const icu::Locale &locale) {
    icu::Locale copy(locale);
    UErrorCode status = U_ZERO_ERROR;
    copy.addLikelySubtags(status);
    if (U_FAILURE(status)) return locale.getName();
    return std::string(copy.getLanguage()) + "_" + copy.getScript() + "_" + copy.getCountry();
}

bool resolveLocale(const std::string &name, icu::Locale &out, std::string &error) {
    if (name.empty() || name.size() > 40) {
        error = "unknown locale \"" + name + "\"";
        return false;
    }
    std::string normal;
    for (char c : name) {
        bool ok = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '-';
        if (!ok) {
            error = "unknown locale \"" + name + "\": bad character";
            return false;
        }
        normal += c == '-' ? '_' : c;
    }
    icu::Locale locale(normal.c_str());
    if (locale.isBogus() || std::strlen(locale.getLanguage()) == 0) {
        error = "unknown locale \"" + name + "\"";
        return false;
    }
    // The locale may have no territory, a territory, or script and
    // territory; it must name something ICU has data for.
    const std::string exact = locale.getName();
    const std::vector<const char *> all = icuLocaleNames();
    for (const char *candidate : all) {
        if (exact == candidate) {
            out = icu::Locale(candidate);
            return true;
        }
    }
    if (std::strlen(locale.getVariant()) == 0) {
        const std::string wanted = maximized(locale);
        for (const char *id : all) {
            icu::Locale candidate(id);
            if (std::strlen(candidate.getVariant()) != 0) continue;
            // A candidate must carry what the name carries: "fr_US" is no
            // CLDR locale even though "fr" is.
            if (std::strcmp(locale.getCountry(), candidate.getCountry()) != 0) continue;
            if (maximized(candidate) == wanted) {
                out = candidate;
                return true;
            }
        }
    }
    error = "unknown locale \"" + name + "\": ICU has no data for it";
    return false;
}

// ---------------------------------------------------------------------------
// The builder

class TableBuilder {
public:
    TableBuilder(const icu::Locale &locale, std::vector<uint8_t> &table, bool throughIcuObjects)
        : locale_(locale), table_(table), throughIcuObjects_(throughIcuObjects) {}

    bool build(std::string &error) {
        table_.assign(ZV_LOCALE_TABLE_SIZE, 0);
        UErrorCode status = U_ZERO_ERROR;
        gregorian_ = locale_;
        gregorian_.setKeywordValue("calendar", "gregorian", status);
        if (throughIcuObjects_) symbols_ = std::make_unique<icu::DateFormatSymbols>(gregorian_, status);
        if (U_FAILURE(status)) {
            error = std::string("ICU could not open the date data of ") + locale_.getName() + ": " +
                    u_errorName(status);
            return false;
        }
        weekRule_ = findWeekRule();
        const std::vector<icu::UnicodeString> eras = nameSet(NameSet::Eras, S::FORMAT, S::ABBREVIATED);
        if (eras.size() >= 2) era_ = u16(eras[1]);

        identity();
        dates();
        names();
        if (!numbers(error)) return false;
        return true;
    }

private:
    // -- helpers ----------------------------------------------------------

    void put(int item, const std::string &raw) { setRawItem(table_, item, cutEscaped(raw)); }
    void putText(int item, std::u16string_view text) { put(item, escapeForTable(text)); }

    // The locale's best pattern for a skeleton, as ICU's generator would
    // choose it: read from the data where it holds the answer, else asked of
    // the generator, once a table, as the search is what costs.
    const std::u16string &skeleton(const char *sk) {
        auto [it, added] = skeletons_.try_emplace(sk);
        if (!added || (!throughIcuObjects_ && skeletonReader().pattern(sk, it->second))) return it->second;
        UErrorCode status = U_ZERO_ERROR;
        icu::DateTimePatternGenerator *search = generator();
        icu::UnicodeString pattern;
        if (search) pattern = search->getBestPattern(icu::UnicodeString(sk, -1, US_INV), status);
        it->second = U_SUCCESS(status) ? u16(pattern) : std::u16string();
        return it->second;
    }

    SkeletonReader &skeletonReader() {
        if (!skeletonReader_)
            skeletonReader_ = std::make_unique<SkeletonReader>(
                locale_, gregorianBundle(), [this](int date, int time) { return stylePattern(date, time); });
        return *skeletonReader_;
    }

    // ICU's generator, built on first need: building it costs more than the
    // rest of the table.
    icu::DateTimePatternGenerator *generator() {
        if (!generator_) {
            UErrorCode status = U_ZERO_ERROR;
            generator_.reset(icu::DateTimePatternGenerator::createInstance(gregorian_, status));
            if (U_FAILURE(status)) generator_.reset();
        }
        return generator_.get();
    }

    // ICU's pattern for a date style, a time style, or both (-1: none), as
    // its DateFormat would hold it. Read from the locale's DateTimePatterns,
    // which is what DateFormat does for a locale that has data of its own,
    // without building a formatter around it.
    std::u16string stylePattern(int dateStyle, int timeStyle) {
        std::u16string quick;
        if (styleFromBundle(dateStyle, timeStyle, quick)) return quick;
        std::unique_ptr<icu::DateFormat> format;
        if (timeStyle < 0)
            format.reset(icu::DateFormat::createDateInstance(static_cast<icu::DateFormat::EStyle>(dateStyle), gregorian_));
        else if (dateStyle < 0)
            format.reset(icu::DateFormat::createTimeInstance(static_cast<icu::DateFormat::EStyle>(timeStyle), gregorian_));
        else
            format.reset(icu::DateFormat::createDateTimeInstance(static_cast<icu::DateFormat::EStyle>(dateStyle),
                                                                 static_cast<icu::DateFormat::EStyle>(timeStyle),
                                                                 gregorian_));
        auto *simple = dynamic_cast<icu::SimpleDateFormat *>(format.get());
        if (simple == nullptr) return {};
        icu::UnicodeString pattern;
        simple->toPattern(pattern);
        return u16(pattern);
    }

    // DateTimePatterns: times full to short, dates full to short, the
    // date-time glue, then (in newer data) one glue per date style.
    static constexpr int32_t kTimeStyles = 0, kDateStyles = 4, kGlue = 8, kGluePerStyle = 9;

    icu::ResourceBundle &gregorianBundle() {
        if (!gregorianBundle_) {
            UErrorCode status = U_ZERO_ERROR;
            icu::ResourceBundle bundle(nullptr, icu::Locale(locale_.getBaseName()), status);
            gregorianBundle_ = std::make_unique<icu::ResourceBundle>(
                bundle.getWithFallback("calendar", status).getWithFallback("gregorian", status));
        }
        return *gregorianBundle_;
    }

    bool styleFromBundle(int dateStyle, int timeStyle, std::u16string &out) {
        if (!patterns_) {
            UErrorCode status = U_ZERO_ERROR;
            patterns_ = std::make_unique<icu::ResourceBundle>(gregorianBundle().getWithFallback("DateTimePatterns", status));
            // A locale whose data is another's (by fallback) may get its
            // times from the pattern generator instead: that is DateFormat's.
            const icu::Locale valid = patterns_->getLocale(ULOC_VALID_LOCALE, status);
            patternsUsable_ = U_SUCCESS(status) && valid == icu::Locale(locale_.getBaseName()) &&
                              patterns_->getSize() > kGlue;
        }
        if (!patternsUsable_) return false;
        icu::UnicodeString time, date;
        if (timeStyle >= 0 && !patternAt(kTimeStyles + timeStyle, time)) return false;
        if (dateStyle >= 0 && !patternAt(kDateStyles + dateStyle, date)) return false;
        if (timeStyle < 0 || dateStyle < 0) {
            out = u16(timeStyle < 0 ? date : time);
            return true;
        }
        icu::UnicodeString glue, both;
        UErrorCode status = U_ZERO_ERROR;
        // The "at" glue of the date's style comes first, where the locale has one.
        icu::ResourceBundle at = gregorianBundle().getWithFallback("DateTimePatterns%atTime", status);
        if (U_SUCCESS(status) && at.getSize() > dateStyle) glue = at.getStringEx(dateStyle, status);
        if (U_FAILURE(status)) glue.remove();
        status = U_ZERO_ERROR;
        const int32_t glueAt = patterns_->getSize() >= kGluePerStyle + 4 ? kGluePerStyle + dateStyle : kGlue;
        if (glue.isEmpty() && !patternAt(glueAt, glue)) return false;
        icu::SimpleFormatter(glue, 2, 2, status).format(time, date, both, status);
        if (U_FAILURE(status)) return false;
        out = u16(both);
        return true;
    }

    // An entry of DateTimePatterns: a pattern, or a pattern and its
    // numbering override.
    bool patternAt(int32_t index, icu::UnicodeString &out) {
        UErrorCode status = U_ZERO_ERROR;
        icu::ResourceBundle entry = patterns_->get(index, status);
        if (U_FAILURE(status)) return false;
        out = entry.getType() == URES_ARRAY ? entry.getStringEx(0, status) : entry.getString(status);
        return U_SUCCESS(status);
    }

    // A CLDR pattern an item may take: one at hand, a skeleton's, or a
    // date-and-time style's. Only the ones tried are looked up.
    struct Candidate {
        Candidate(const std::u16string &text) : text(&text) {}
        Candidate(const char *skeleton) : skeleton(skeleton) {}
        Candidate(int dateStyle, int timeStyle) : dateStyle(dateStyle), timeStyle(timeStyle) {}
        const std::u16string *text = nullptr;
        const char *skeleton = nullptr;
        int dateStyle = -1, timeStyle = -1;
    };

    std::u16string resolve(const Candidate &c) {
        if (c.text) return *c.text;
        if (c.skeleton) return skeleton(c.skeleton);
        return stylePattern(c.dateStyle, c.timeStyle);
    }

    std::u16string convert(const std::u16string &cldr, bool forReading) {
        ConvertOptions options;
        options.forReading = forReading;
        options.weekRule = weekRule_;
        options.eraName = era_;
        return convertCldrPattern(cldr, options).pattern;
    }

    // The first CLDR pattern of the list whose conversion fits a record;
    // the last resort is an ASCII pattern that always fits.
    void putPattern(int item, std::initializer_list<Candidate> candidates, bool forReading,
                    const char16_t *lastResort) {
        for (const Candidate &candidate : candidates) {
            const std::u16string cldr = resolve(candidate);
            if (cldr.empty()) continue;
            std::string escaped = escapeForTable(convert(cldr, forReading));
            if (!escaped.empty() && escaped.size() <= kRawItemCapacity) {
                put(item, escaped);
                return;
            }
        }
        putText(item, lastResort);
    }

    WeekRule findWeekRule() {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::Calendar> calendar(icu::Calendar::createInstance(gregorian_, status));
        if (U_FAILURE(status) || !calendar) return WeekRule::Iso;
        UCalendarDaysOfWeek first = calendar->getFirstDayOfWeek(status);
        uint8_t minimal = calendar->getMinimalDaysInFirstWeek();
        if (first == UCAL_MONDAY && minimal == 4) return WeekRule::Iso;
        if (first == UCAL_SUNDAY) return WeekRule::SundayFirst;
        return WeekRule::MondayFirst;
    }

    // -- items 0 to 6 -------------------------------------------------------

    void identity() {
        put(0, locale_.getName());
        put(cldritem::language, locale_.getLanguage());
        put(3, locale_.getCountry());
        put(4, locale_.getScript());
        const std::string language = locale_.getLanguage();
        const std::string country = locale_.getCountry();
        if (language == "ja")
            put(cldritem::calendar, "JP");
        else if (language == "th")
            put(cldritem::calendar, "TH");
        else if (language == "zh" && country == "TW")
            put(cldritem::calendar, "TW");
    }

    // Order of year, month and day in a CLDR pattern, and the separator
    // between the first two fields.
    static void fieldOrder(const std::u16string &cldr, std::string &order, std::u16string &separator) {
        bool quoted = false;
        int fieldsSeen = 0;
        char16_t last = 0;
        for (char16_t c : cldr) {
            if (c == u'\'') {
                quoted = !quoted;
                last = 0;
                continue;
            }
            if (quoted) {
                if (fieldsSeen == 1) separator += c;
                continue;
            }
            char letter = 0;
            if (c == u'y' || c == u'Y' || c == u'u' || c == u'r')
                letter = 'Y';
            else if (c == u'M' || c == u'L')
                letter = 'M';
            else if (c == u'd')
                letter = 'D';
            bool isField = (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
            if (isField) {
                if (c != last) ++fieldsSeen;
                if (letter != 0 && order.find(letter) == std::string::npos) order += letter;
            } else if (fieldsSeen == 1) {
                separator += c;
            }
            last = isField ? c : 0;
        }
        for (char letter : {'M', 'D', 'Y'})
            if (order.find(letter) == std::string::npos) order += letter;
    }

    // -- items 28 to 58 -----------------------------------------------------

    void dates() {
        using icu::DateFormat;
        const std::u16string full = stylePattern(DateFormat::kFull, -1);
        const std::u16string longDate = stylePattern(DateFormat::kLong, -1);
        const std::u16string medium = stylePattern(DateFormat::kMedium, -1);
        const std::u16string shortDate = stylePattern(DateFormat::kShort, -1);
        const std::u16string shortTime = stylePattern(-1, DateFormat::kShort);

        std::string order;
        std::u16string separator;
        fieldOrder(shortDate, order, separator);
        put(cldritem::fieldOrder, order);
        std::u16string sep;
        for (char16_t c : separator) {
            if (c == u' ' || c == u'\u00A0' || c == u'\u202F' || c == u'\u200E' || c == u'\u200F' || c == u'\u061C')
                continue;
            sep = std::u16string(1, c);
            break;
        }
        if (sep.empty() && !separator.empty()) sep = u" ";
        putText(cldritem::dateSeparator, sep);

        const char16_t *numeric = u"%d/%m/%Y";
        putPattern(28, {longDate, medium, shortDate}, true, numeric);
        putPattern(29, {medium, shortDate}, true, numeric);
        putPattern(30, {medium, shortDate}, false, numeric);
        putPattern(31, {longDate, medium, shortDate}, false, numeric);
        putPattern(32, {full, "yMMMMEEEEd", "yMMMEd", medium}, true, numeric);
        putPattern(33, {"yMMMEd", medium}, true, numeric);
        putPattern(34, {"yMMMM", "yMMM"}, false, u"%m/%Y");
        putPattern(35, {"yMMM", "yM"}, false, u"%m/%Y");
        putPattern(36, {"MMMMd", "MMMd"}, false, u"%d/%m");
        putPattern(37, {"MMMd", "Md"}, false, u"%d/%m");
        putPattern(38, {"y"}, false, u"%Y");
        putPattern(39, {"yy"}, false, u"%y");
        putPattern(40, {"yQQQQ", "yQQQ"}, false, u"%q %Y");
        putPattern(41, {"yQQQ"}, false, u"%q %Y");

        const char16_t *shortWeek = weekRule_ == WeekRule::Iso           ? u"%G-W%V"
                                    : weekRule_ == WeekRule::SundayFirst ? u"%Y-W%U"
                                                                         : u"%Y-W%W";
        putPattern(42, {yearWeekPattern()}, false, shortWeek);
        putText(43, shortWeek);

        const char16_t *numericTime = u"%d/%m/%Y %H:%M:%S";
        const char16_t *numericTimeAmPm = u"%d/%m/%Y %I:%M:%S %p";
        putPattern(44, {"yMMMMdhmmss", "yMMMdhmmss"}, true, numericTimeAmPm);
        putPattern(45, {"yMMMdhmmss", "yMdhmmss"}, true, numericTimeAmPm);
        putPattern(46, {"yMMMMdjmmss", "yMMMdjmmss"}, true, numericTime);
        putPattern(47, {"yMMMdjmmss", "yMdjmmss"}, true, numericTime);
        putPattern(48, {Candidate(DateFormat::kMedium, DateFormat::kMedium)}, false, numericTime);
        putPattern(49, {Candidate(DateFormat::kLong, DateFormat::kLong),
                        Candidate(DateFormat::kMedium, DateFormat::kMedium)},
                   false, numericTime);
        putPattern(50, {"yMMMMEEEEdjmmss", "yMMMEdjmmss"}, true, numericTime);
        putPattern(51, {"yMMMEdjmmss", "yMdjmmss"}, true, numericTime);
        putPattern(52, {"hms"}, false, u"%I:%M:%S %p");
        putPattern(53, {"Hms"}, true, u"%H:%M:%S");
        putPattern(54, {shortDate}, false, numeric);
        putPattern(55, {shortTime}, false, u"%H:%M");
        putPattern(56, {Candidate(DateFormat::kShort, DateFormat::kShort)}, false, u"%d/%m/%Y %H:%M");
        putPattern(57, {"yMd"}, false, numeric);

        // The glue of date ({1}) and time ({0}) tells which goes first: the
        // generator's, which is the medium date's.
        std::u16string glue;
        if ((throughIcuObjects_ || !skeletonReader().glue(DateFormat::kMedium, glue)) && generator())
            glue = u16(generator()->getDateTimeFormat());
        const size_t date = glue.find(u"{1}"), time = glue.find(u"{0}");
        putText(cldritem::dateTimeOrder,
                date != std::u16string::npos && time != std::u16string::npos && time < date ? u"%X %x" : u"%x %X");
    }

    // CLDR's "week w of year Y" pattern of the locale, if it has one.
    std::u16string yearWeekPattern() {
        UErrorCode status = U_ZERO_ERROR;
        icu::ResourceBundle bundle(nullptr, locale_, status);
        icu::ResourceBundle found = bundle.getWithFallback("calendar", status)
                                        .getWithFallback("gregorian", status)
                                        .getWithFallback("availableFormats", status)
                                        .getWithFallback("yw", status)
                                        .getWithFallback("other", status);
        if (U_FAILURE(status)) return {};
        icu::UnicodeString text = found.getString(status);
        return U_SUCCESS(status) ? u16(text) : std::u16string();
    }

    // -- items 59 to 152 ----------------------------------------------------

    // A list of names; a wide name too long for a record takes the
    // abbreviated name of the same place.
    void nameList(int first, const std::vector<icu::UnicodeString> &names, int want,
                  const std::vector<icu::UnicodeString> *shorter) {
        for (int k = 0; k < want; ++k) {
            const size_t at = size_t(k);
            std::u16string name = at < names.size() ? u16(names[at]) : std::u16string();
            std::string escaped = escapeForTable(name);
            if (escaped.size() > kRawItemCapacity && shorter != nullptr) escaped = escapeForTable(u16((*shorter)[at]));
            put(first + k, escaped);
        }
    }

    void names() {
        struct Pair {
            NameSet set;
            S::DtContextType context;
            int abbreviated, wide, count;
        };
        for (const Pair &p : {Pair{NameSet::Months, S::FORMAT, cldritem::monthsAbbreviated, cldritem::monthsWide, 12},
                              Pair{NameSet::Months, S::STANDALONE, cldritem::monthsAbbreviatedOther,
                                   cldritem::monthsWideOther, 12},
                              Pair{NameSet::Weekdays, S::FORMAT, cldritem::weekdaysAbbreviated,
                                   cldritem::weekdaysWide, 7},
                              Pair{NameSet::Weekdays, S::STANDALONE, cldritem::weekdaysAbbreviatedOther,
                                   cldritem::weekdaysWideOther, 7},
                              Pair{NameSet::Quarters, S::FORMAT, cldritem::quartersAbbreviated,
                                   cldritem::quartersWide, 4},
                              Pair{NameSet::Quarters, S::STANDALONE, cldritem::quartersAbbreviatedOther,
                                   cldritem::quartersWideOther, 4}}) {
            const std::vector<icu::UnicodeString> shortNames = nameSet(p.set, p.context, S::ABBREVIATED);
            const std::vector<icu::UnicodeString> longNames = nameSet(p.set, p.context, S::WIDE);
            nameList(p.abbreviated, shortNames, p.count, nullptr);
            nameList(p.wide, longNames, p.count, longNames.size() == shortNames.size() ? &shortNames : nullptr);
        }
        nameList(cldritem::amMark, nameSet(NameSet::AmPm, S::FORMAT, S::WIDE), 2, nullptr);
    }

    // A set of the Gregorian calendar's names, Sunday first for weekdays:
    // ICU's DateFormatSymbols holds them all, but building it costs more
    // than reading the few the table takes from the locale's data, with
    // CLDR's inheritance and aliases, as DateFormatSymbols reads them.
    using S = icu::DateFormatSymbols;
    enum class NameSet { Months, Weekdays, Quarters, AmPm, Eras };
    std::vector<icu::UnicodeString> nameSet(NameSet set, S::DtContextType context, S::DtWidthType width) {
        if (symbols_) {
            int32_t count = 0;
            const icu::UnicodeString *names = nullptr;
            switch (set) {
            case NameSet::Months: names = symbols_->getMonths(count, context, width); break;
            case NameSet::Weekdays: names = symbols_->getWeekdays(count, context, width); break;
            case NameSet::Quarters: names = symbols_->getQuarters(count, context, width); break;
            case NameSet::AmPm: names = symbols_->getAmPmStrings(count); break;
            case NameSet::Eras: names = symbols_->getEras(count); break;
            }
            const int32_t first = set == NameSet::Weekdays && count > 0 ? 1 : 0; // ICU's index 0 is empty
            return names ? std::vector<icu::UnicodeString>(names + first, names + count)
                         : std::vector<icu::UnicodeString>();
        }
        const char *contextKey = context == S::FORMAT ? "format" : "stand-alone";
        const char *widthKey = width == S::WIDE ? "wide" : "abbreviated";
        switch (set) {
        case NameSet::Months: return namesAt({"monthNames", contextKey, widthKey});
        case NameSet::Weekdays: return namesAt({"dayNames", contextKey, widthKey});
        case NameSet::Quarters: return namesAt({"quarters", contextKey, widthKey});
        case NameSet::AmPm: return namesAt({"AmPmMarkers"});
        case NameSet::Eras: return namesAt({"eras", "abbreviated"});
        }
        return {};
    }

    std::vector<icu::UnicodeString> namesAt(std::initializer_list<const char *> path) {
        UErrorCode status = U_ZERO_ERROR;
        icu::ResourceBundle at = gregorianBundle();
        for (const char *key : path) at = at.getWithFallback(key, status);
        std::vector<icu::UnicodeString> names;
        for (int32_t i = 0; U_SUCCESS(status) && i < at.getSize(); ++i) names.push_back(at.getStringEx(i, status));
        return U_SUCCESS(status) ? names : std::vector<icu::UnicodeString>();
    }

    // -- items 155 to 186 ---------------------------------------------------

    struct Placement {
        int precedes = 0, spaced = 0, position = 1;
        bool touching = false; // the symbol stands right against the digits
    };

    // Symbol placement of one subpattern of a CLDR number pattern.
    static Placement placementOf(std::u16string_view sub) {
        Placement p;
        int symbol = -1, numberStart = -1, numberEnd = -1, sign = -1;
        bool parens = false;
        std::vector<int> blanks;
        bool quoted = false;
        for (int i = 0; i < static_cast<int>(sub.size()); ++i) {
            char16_t c = sub[static_cast<size_t>(i)];
            if (c == u'\'') {
                quoted = !quoted;
                continue;
            }
            if (quoted) continue;
            if (c == u'\u00A4') {
                if (symbol < 0) symbol = i;
            } else if (c == u'#' || c == u'@' || (c >= u'0' && c <= u'9') || c == u',' || c == u'.' || c == u'E') {
                if (numberStart < 0) numberStart = i;
                numberEnd = i;
            } else if (c == u'-') {
                if (sign < 0) sign = i;
            } else if (c == u'(' || c == u')') {
                parens = true;
            } else if (c == u' ' || c == u'\u00A0' || c == u'\u202F') {
                blanks.push_back(i);
            }
        }
        auto blankBetween = [&](int a, int b) {
            for (int at : blanks)
                if (at > a && at < b) return true;
            return false;
        };
        if (symbol >= 0 && numberStart >= 0) {
            p.precedes = symbol < numberStart ? 1 : 0;
            p.spaced = p.precedes ? blankBetween(symbol, numberStart) : blankBetween(numberEnd, symbol);
            p.touching = p.precedes ? numberStart == symbol + 1 : symbol == numberEnd + 1;
        }
        if (parens) {
            p.position = 0;
        } else if (sign < 0 || numberStart < 0) {
            p.position = 1;
        } else if (symbol < 0) {
            p.position = sign < numberStart ? 1 : 2;
        } else if (sign < std::min(symbol, numberStart)) {
            p.position = 1;
        } else if (sign > std::max(symbol, numberEnd)) {
            p.position = 2;
        } else {
            p.position = symbol < numberStart ? 4 : 3;
        }
        return p;
    }

    // The six placement figures of a CLDR pattern: positive trio from the
    // positive subpattern, negative trio from the negative one, or from the
    // positive one with the minus sign in front.
    static std::vector<Placement> placements(const std::u16string &pattern) {
        size_t split = std::u16string::npos;
        bool quoted = false;
        for (size_t i = 0; i < pattern.size(); ++i) {
            if (pattern[i] == u'\'') quoted = !quoted;
            if (!quoted && pattern[i] == u';') {
                split = i;
                break;
            }
        }
        std::u16string positive = pattern.substr(0, split);
        std::u16string negative =
            split == std::u16string::npos ? u"-" + positive : pattern.substr(split + 1);
        Placement p = placementOf(positive);
        Placement n = placementOf(negative);
        p.position = 1;
        return {p, n};
    }

    // CLDR's currency spacing: where the symbol touches the digits and its
    // character on that side matches the locale's currencyMatch set (by default
    // anything but a symbol or a separator), ICU puts a space between them.
    static void spaceSymbol(Placement &p, const std::u16string &symbol, const icu::DecimalFormatSymbols &symbols) {
        if (!p.touching || p.spaced || symbol.empty()) return;
        UErrorCode status = U_ZERO_ERROR;
        const icu::UnicodeString &match =
            symbols.getPatternForCurrencySpacing(UNUM_CURRENCY_MATCH, p.precedes ? false : true, status);
        if (U_FAILURE(status)) return;
        const UChar32 edge = p.precedes ? symbol.back() : symbol.front();
        // CLDR's usual set is tested by category; building a set from its
        // pattern costs more than the rest of a locale's numbers.
        if (match == icu::UnicodeString(u"[[:^S:]&[:^Z:]]")) {
            const int32_t category = U_MASK(u_charType(edge));
            if ((category & (U_GC_S_MASK | U_GC_Z_MASK)) == 0) p.spaced = 1;
            return;
        }
        icu::UnicodeSet set(match, status);
        if (U_FAILURE(status)) return;
        if (set.contains(edge)) p.spaced = 1;
    }

    void putPlacement(int first, const std::u16string &pattern, const std::u16string &symbol = {},
                      const icu::DecimalFormatSymbols *symbols = nullptr) {
        std::vector<Placement> pn = placements(pattern);
        if (symbols)
            for (Placement &p : pn) spaceSymbol(p, symbol, *symbols);
        // Items in the order of the C library's lconv: p_cs_precedes,
        // p_sep_by_space, n_cs_precedes, n_sep_by_space, p_sign_posn,
        // n_sign_posn.
        put(first + 0, std::to_string(pn[0].precedes));
        put(first + 1, std::to_string(pn[0].spaced));
        put(first + 2, std::to_string(pn[1].precedes));
        put(first + 3, std::to_string(pn[1].spaced));
        put(first + 4, std::to_string(pn[0].position));
        put(first + 5, std::to_string(pn[1].position));
    }

    static std::string groupingOf(const icu::DecimalFormat *format) {
        if (format == nullptr || !format->isGroupingUsed() || format->getGroupingSize() <= 0) return "";
        int32_t primary = format->getGroupingSize();
        int32_t secondary = format->getSecondaryGroupingSize();
        std::string text = std::to_string(primary);
        if (secondary > 0 && secondary != primary) {
            text += ';';
            text += std::to_string(secondary);
        }
        return text;
    }

    static std::u16string patternOf(const icu::NumberFormat *format) {
        auto *decimal = dynamic_cast<const icu::DecimalFormat *>(format);
        if (decimal == nullptr) return {};
        icu::UnicodeString pattern;
        decimal->toPattern(pattern);
        return u16(pattern);
    }

    // The currency ICU gives a locale by its territory; "" if none.
    static std::u16string ownCurrency(const icu::Locale &place) {
        char16_t code[8] = {};
        UErrorCode status = U_ZERO_ERROR;
        int32_t length = ucurr_forLocale(place.getName(), reinterpret_cast<UChar *>(code), 8, &status);
        return U_SUCCESS(status) && length == 3 ? std::u16string(code, 3) : std::u16string();
    }

    std::u16string currencyCode() {
        std::u16string code = ownCurrency(locale_);
        return code.empty() ? ownCurrency(likely()) : code;
    }

    static bool bidiMark(char16_t c) { return c == u'\u200E' || c == u'\u200F' || c == u'\u061C'; }

    // The number contexts hold two units of a separator or sign. A longer
    // CLDR text (some minus signs carry two bidirectional marks) keeps its
    // characters and, where room is left, its first mark.
    static std::u16string twoUnits(const std::u16string &text) {
        if (text.size() <= 2) return text;
        std::u16string plain;
        for (char16_t c : text)
            if (!bidiMark(c)) plain += c;
        if (plain.size() < 2 && bidiMark(text.front())) plain.insert(plain.begin(), text.front());
        return plain.substr(0, 2);
    }

    icu::Locale likely() {
        icu::Locale copy(locale_);
        UErrorCode status = U_ZERO_ERROR;
        copy.addLikelySubtags(status);
        return copy;
    }

    // The locale whose number data goes with the Latin digits that the module
    // writes: the locale itself, or the locale with Latin digits where its own
    // are others, so that marks and signs are those ICU puts between 0 to 9.
    icu::Locale latinNumbers() const {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::NumberingSystem> system(icu::NumberingSystem::createInstance(locale_, status));
        icu::Locale latin(locale_);
        if (U_SUCCESS(status) && system && std::strcmp(system->getName(), "latn") != 0) {
            status = U_ZERO_ERROR;
            latin.setKeywordValue("numbers", "latn", status);
        }
        return latin;
    }

    // The locale's format of plain numbers or percentages, in Latin digits:
    // ICU's own, or one made from the pattern in the locale's data and the
    // symbols at hand, which costs a fraction of what NumberFormat spends
    // finding its symbols again.
    std::unique_ptr<icu::NumberFormat> plainFormat(const icu::Locale &numberLocale,
                                                   const icu::DecimalFormatSymbols &symbols, UNumberFormatStyle style,
                                                   UErrorCode &status) {
        if (throughIcuObjects_)
            return std::unique_ptr<icu::NumberFormat>(icu::NumberFormat::createInstance(numberLocale, style, status));
        if (U_FAILURE(status)) return nullptr;
        icu::ResourceBundle bundle(nullptr, icu::Locale(locale_.getBaseName()), status);
        const icu::UnicodeString pattern = bundle.getWithFallback("NumberElements", status)
                                               .getWithFallback("latn", status)
                                               .getWithFallback("patterns", status)
                                               .getWithFallback(style == UNUM_PERCENT ? "percentFormat" : "decimalFormat",
                                                                status)
                                               .getString(status);
        if (U_FAILURE(status)) return nullptr;
        auto format = std::make_unique<icu::DecimalFormat>(pattern, new icu::DecimalFormatSymbols(symbols), style, status);
        return U_SUCCESS(status) ? std::move(format) : nullptr;
    }

    bool numbers(std::string &error) {
        UErrorCode status = U_ZERO_ERROR;
        const icu::Locale numberLocale = latinNumbers();
        icu::DecimalFormatSymbols symbols(numberLocale, status);
        std::unique_ptr<icu::NumberFormat> number = plainFormat(numberLocale, symbols, UNUM_DECIMAL, status);
        std::unique_ptr<icu::NumberFormat> percent = plainFormat(numberLocale, symbols, UNUM_PERCENT, status);
        const std::u16string code = currencyCode();
        icu::Locale moneyLocale(numberLocale);
        if (!code.empty()) {
            std::string ascii(code.begin(), code.end());
            moneyLocale.setKeywordValue("currency", ascii.c_str(), status);
        }
        std::unique_ptr<icu::NumberFormat> money(
            icu::NumberFormat::createInstance(moneyLocale, UNUM_CURRENCY, status));
        if (U_FAILURE(status) || !number || !money || !percent) {
            error = std::string("ICU could not open the number data of ") + locale_.getName() + ": " +
                    u_errorName(status);
            return false;
        }
        auto symbol = [&](icu::DecimalFormatSymbols::ENumberFormatSymbol which) {
            return twoUnits(u16(symbols.getConstSymbol(which)));
        };
        using D = icu::DecimalFormatSymbols;

        // Money.
        putText(cldritem::currencyCode, code);
        std::u16string local;
        int32_t digits = 2;
        if (!code.empty()) {
            UBool isChoice = false;
            int32_t length = 0;
            UErrorCode nameStatus = U_ZERO_ERROR;
            const UChar *name = ucurr_getName(reinterpret_cast<const UChar *>(code.c_str()), locale_.getName(),
                                              UCURR_SYMBOL_NAME, &isChoice, &length, &nameStatus);
            if (U_SUCCESS(nameStatus) && name != nullptr) local.assign(reinterpret_cast<const char16_t *>(name),
                                                                       static_cast<size_t>(length));
            UErrorCode digitStatus = U_ZERO_ERROR;
            digits = ucurr_getDefaultFractionDigits(reinterpret_cast<const UChar *>(code.c_str()), &digitStatus);
            if (U_FAILURE(digitStatus) || digits < 0) digits = 2;
        }
        putText(cldritem::currencySymbol, local);
        // A few currencies have marks of their own (the escudo's "$" point):
        // ICU's symbols for the locale with its currency carry them. The
        // locale's symbols already do where that currency is its own.
        std::optional<D> moneySymbols;
        if (code != ownCurrency(numberLocale)) {
            UErrorCode moneyStatus = U_ZERO_ERROR;
            moneySymbols.emplace(moneyLocale, moneyStatus);
            if (U_FAILURE(moneyStatus)) moneySymbols.reset();
        }
        const D &monetary = moneySymbols ? *moneySymbols : symbols;
        putText(cldritem::monetaryDecimal, twoUnits(u16(monetary.getConstSymbol(D::kMonetarySeparatorSymbol))));
        putText(cldritem::monetaryGroup,
                twoUnits(u16(monetary.getConstSymbol(D::kMonetaryGroupingSeparatorSymbol))));
        put(cldritem::monetaryGrouping, groupingOf(dynamic_cast<icu::DecimalFormat *>(money.get())));
        put(cldritem::monetaryPositiveSign, "");
        putText(cldritem::monetaryNegativeSign, symbol(D::kMinusSignSymbol));
        put(cldritem::fractionDigitsInternational, std::to_string(digits));
        put(cldritem::fractionDigitsLocal, std::to_string(digits));
        const std::u16string moneyPattern = patternOf(money.get());
        putPlacement(cldritem::monetaryPlacement, moneyPattern, local, &symbols);
        const std::u16string moneyText = moneyPattern.empty() ? u"\u00A4#,##0.00" : moneyPattern;
        putText(cldritem::moneyForm, moneyText);
        putText(cldritem::moneyFormInternational, moneyText);

        // Plain numbers: no symbol, so only the sign positions matter.
        putText(cldritem::decimalSeparator, symbol(D::kDecimalSeparatorSymbol));
        putText(cldritem::groupSeparator, symbol(D::kGroupingSeparatorSymbol));
        put(cldritem::grouping, groupingOf(dynamic_cast<icu::DecimalFormat *>(number.get())));
        put(cldritem::positiveSign, "");
        putText(cldritem::negativeSign, symbol(D::kMinusSignSymbol));
        const std::u16string numberPattern = patternOf(number.get());
        putPlacement(cldritem::numberPlacement, numberPattern);
        const std::u16string numberText = numberPattern.empty() ? u"#,##0.###" : numberPattern;
        putText(cldritem::numberForm, numberText);
        putText(cldritem::numberFormPlain, numberText);
        const std::u16string percentPattern = patternOf(percent.get());
        const std::u16string percentText = percentPattern.empty() ? u"#,##0%" : percentPattern;
        putText(cldritem::percentForm, percentText);
        putText(cldritem::percentFormPlain, percentText);
        return true;
    }

    icu::Locale locale_;
    icu::Locale gregorian_;
    std::vector<uint8_t> &table_;
    bool throughIcuObjects_ = false;
    std::unique_ptr<icu::DateTimePatternGenerator> generator_;
    std::unique_ptr<SkeletonReader> skeletonReader_;
    std::map<std::string, std::u16string> skeletons_;
    std::unique_ptr<icu::ResourceBundle> gregorianBundle_, patterns_;
    bool patternsUsable_ = false;
    std::unique_ptr<icu::DateFormatSymbols> symbols_;
    WeekRule weekRule_ = WeekRule::Iso;
    std::u16string era_;
};

} // namespace

// ---------------------------------------------------------------------------

std::string escapeForTable(std::u16string_view text) {
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        char16_t c = text[i];
        bool escape = c >= 0x80;
        if (c == u'<' && i + 1 < text.size() && (text[i + 1] == u'U' || text[i + 1] == u'u')) escape = true;
        if (!escape) {
            out += static_cast<char>(c);
            continue;
        }
        out += "<U";
        for (int shift = 12; shift >= 0; shift -= 4) out += kHex[(c >> shift) & 0xF];
        out += '>';
    }
    return out;
}

std::u16string unescapeTableText(std::string_view raw) {
    auto hex = [](char c) -> int {
        if (c >= '0' && c <= '9') return c - '0';
        if (c >= 'A' && c <= 'F') return c - 'A' + 10;
        if (c >= 'a' && c <= 'f') return c - 'a' + 10;
        return 0;
    };
    std::u16string out;
    size_t i = 0;
    while (i < raw.size()) {
        if (raw[i] != '<' || raw.size() - i < 7 || (raw[i + 1] != 'U' && raw[i + 1] != 'u')) {
            out += static_cast<char16_t>(static_cast<unsigned char>(raw[i]));
            ++i;
            continue;
        }
        int value = 0;
        for (size_t k = 2; k < 6; ++k) value = value * 16 + hex(raw[i + k]);
        out += static_cast<char16_t>(value);
        i += 7;
    }
    return out;
}

void setRawItem(std::vector<uint8_t> &table, int item, std::string_view raw) {
    if (item < 0 || item >= ZV_LOCALE_TABLE_ITEMS) return;
    if (table.size() < ZV_LOCALE_TABLE_SIZE) table.resize(ZV_LOCALE_TABLE_SIZE, 0);
    const size_t length = std::min(raw.size(), kRawItemCapacity);
    uint8_t *record = table.data() + recordOffset(item);
    record[0] = static_cast<uint8_t>(length & 0xFF);
    record[1] = static_cast<uint8_t>(length >> 8);
    std::memset(record + 2, 0, kRawItemCapacity);
    std::memcpy(record + 2, raw.data(), length);
}

std::string rawItem(const std::vector<uint8_t> &table, int item) {
    if (item < 0 || item >= ZV_LOCALE_TABLE_ITEMS) return {};
    if (table.size() < recordOffset(item) + ZV_LOCALE_RECORD_SIZE) return {};
    const uint8_t *record = table.data() + recordOffset(item);
    size_t length = std::min<size_t>(static_cast<size_t>(record[0] | (record[1] << 8)), kRawItemCapacity);
    return std::string(reinterpret_cast<const char *>(record + 2), length);
}

bool buildCldrTable(const std::string &name, std::vector<uint8_t> &table, std::string &error, bool throughIcuObjects) {
    icu::Locale locale;
    if (!resolveLocale(name, locale, error)) return false;
    std::vector<uint8_t> built;
    TableBuilder builder(locale, built, throughIcuObjects);
    if (!builder.build(error)) return false;
    table = std::move(built);
    return true;
}

std::vector<std::string> availableLocales() {
    std::set<std::string> names;
    for (const char *name : icuLocaleNames()) names.insert(icu::Locale(name).getName());
    return std::vector<std::string>(names.begin(), names.end());
}

} // namespace zvhost
