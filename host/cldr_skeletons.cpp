// Skeleton patterns from a locale's CLDR data.
//
// What ICU's pattern generator answers, and when this reader can read the
// same answer from the data (everything else is declined):
// - Date fields: the locale's own availableFormats entry of the skeleton
//   (not root's: root's entries give way to the locale's date styles), with
//   E, EE widened to EEE as the generator does; else the date style whose
//   pattern has exactly that skeleton. "yy" is the answer for "y" with a
//   two-letter year.
// - "hms", "Hms": the locale's own availableFormats entry.
// - Date fields with "hmmss" or "jmmss" (j: the hour the locale's territory
//   prefers): the date part as above and the time part glued by the
//   locale's date-time glue of the date's style (MMMM: long, or full with a
//   weekday; MMM: medium; else short), its "at" glue where it has one. The time part is the medium
//   time style where that pattern has the same fields as the skeleton but
//   other widths, else the availableFormats entry.
// - Patterns with the flexible day periods b and B, which the generator
//   turns into a, and hour cycles other than h and H are declined.
#include "cldr_skeletons.hpp"

#include <unicode/dtptngen.h>
#include <unicode/simpleformatter.h>
#include <unicode/ures.h>

#include <algorithm>

namespace zvhost {

namespace {

// DateTimePatterns: the date-time glue of each date style, from full on,
// after the styles and the single glue (the "at" glues stand alone).
constexpr int32_t kGluePerStyle = 9;
constexpr int kShortestWeekday = 3; // E and EE mean EEE
constexpr int kShortYear = 2;

std::u16string u16(const icu::UnicodeString &s) {
    return std::u16string(reinterpret_cast<const char16_t *>(s.getBuffer()), static_cast<size_t>(s.length()));
}

icu::UnicodeString icuText(std::u16string_view s) {
    return icu::UnicodeString(reinterpret_cast<const UChar *>(s.data()), static_cast<int32_t>(s.size()));
}

// Calls f(start, length) for each run of an unquoted pattern letter.
template <typename F> void eachField(std::u16string_view pattern, char16_t letter, F f) {
    bool quoted = false;
    for (size_t i = 0; i < pattern.size();) {
        if (pattern[i] == u'\'') quoted = !quoted;
        if (quoted || pattern[i] != letter) {
            ++i;
            continue;
        }
        size_t end = i;
        while (end < pattern.size() && pattern[end] == letter) ++end;
        f(i, end - i);
        i = end;
    }
}

bool hasField(std::u16string_view pattern, char16_t letter) {
    bool found = false;
    eachField(pattern, letter, [&](size_t, size_t) { found = true; });
    return found;
}

// Every unquoted run of the letter set to the given length.
std::u16string withLength(std::u16string_view pattern, char16_t letter, size_t length) {
    std::u16string out;
    size_t copied = 0;
    eachField(pattern, letter, [&](size_t at, size_t run) {
        out.append(pattern.substr(copied, at - copied)).append(length, letter);
        copied = at + run;
    });
    return out.append(pattern.substr(copied));
}

std::string ascii(const icu::UnicodeString &s) {
    std::string out;
    s.toUTF8String(out);
    return out;
}

} // namespace

SkeletonReader::SkeletonReader(const icu::Locale &locale, icu::ResourceBundle &gregorian, StylePattern style)
    : locale_(locale), gregorian_(gregorian), style_(std::move(style)) {}

bool SkeletonReader::pattern(std::string_view skeleton, std::u16string &out) {
    const size_t split = std::min(skeleton.find_first_of("hHj"), skeleton.size());
    const std::string_view date = skeleton.substr(0, split), time = skeleton.substr(split);
    if (time.empty()) return datePattern(date, out);
    if (date.empty()) return (time == "hms" || time == "Hms") && timePattern(time[0], true, out);
    if (time != "hmmss" && time != "jmmss") return false;
    const char16_t hour = time[0] == 'j' ? preferredHour() : u'h';
    const auto months = std::count(date.begin(), date.end(), 'M');
    const int style = months == 4 ? (date.find('E') != std::string_view::npos ? 0 : 1) : months == 3 ? 2 : 3;
    std::u16string datePart, timePart, both;
    if (!datePattern(date, datePart) || !timePattern(hour, false, timePart) || !glue(style, both)) return false;
    UErrorCode status = U_ZERO_ERROR;
    icu::UnicodeString joined;
    icu::SimpleFormatter(icuText(both), 2, 2, status).format(icuText(timePart), icuText(datePart), joined, status);
    if (U_FAILURE(status)) return false;
    out = u16(joined);
    return true;
}

bool SkeletonReader::glue(int dateStyle, std::u16string &out) {
    UErrorCode status = U_ZERO_ERROR;
    // The "at" glues of the date styles where the locale has them, else the
    // ones of DateTimePatterns.
    icu::ResourceBundle patterns = gregorian_.getWithFallback("DateTimePatterns%atTime", status);
    int32_t first = 0;
    if (U_FAILURE(status) || patterns.getSize() < kDateStyles) {
        status = U_ZERO_ERROR;
        patterns = gregorian_.getWithFallback("DateTimePatterns", status);
        first = kGluePerStyle;
    }
    if (U_FAILURE(status) || patterns.getSize() < first + kDateStyles) return false;
    const icu::ResourceBundle entry = patterns.get(first + dateStyle, status);
    if (U_FAILURE(status) || entry.getType() != URES_STRING) return false;
    out = u16(entry.getString(status));
    return U_SUCCESS(status);
}

bool SkeletonReader::datePattern(std::string_view skeleton, std::u16string &out) {
    if (skeleton.empty() || skeleton.find_first_not_of("yMEdQ") != std::string_view::npos) return false;
    if (skeleton == "yy") {
        std::u16string year;
        if (!datePattern("y", year)) return false;
        out = withLength(year, u'y', kShortYear);
        return true;
    }
    if (fromKey(skeleton, out)) {
        const size_t weekday = std::count(skeleton.begin(), skeleton.end(), 'E');
        if (weekday > 0 && weekday < kShortestWeekday) out = withLength(out, u'E', kShortestWeekday);
        return true;
    }
    for (int style = 0; style < kDateStyles; ++style) {
        Style &date = dateStyles_[style];
        if (!date.known) {
            date.known = true;
            date.pattern = style_(style, -1);
            UErrorCode status = U_ZERO_ERROR;
            const icu::UnicodeString found = icu::DateTimePatternGenerator::staticGetSkeleton(icuText(date.pattern), status);
            if (U_SUCCESS(status) && !date.pattern.empty()) date.skeleton = ascii(found);
        }
        if (!date.skeleton.empty() && date.skeleton == skeleton) {
            out = date.pattern;
            return true;
        }
    }
    return false;
}

bool SkeletonReader::timePattern(char16_t hour, bool exact, std::u16string &out) {
    const char16_t preferred = preferredHour();
    if ((preferred != u'h' && preferred != u'H') || (hour != u'h' && hour != u'H')) return false;
    const char *entry = hour == u'h' ? "hms" : "Hms";
    if (!exact) {
        // The medium time style goes before the data's entries, and a
        // search with other widths stops at the first pattern of the same
        // fields.
        const std::u16string medium = style_(-1, 2);
        if (medium.empty() || hasField(medium, u'b') || hasField(medium, u'B')) return false;
        UErrorCode status = U_ZERO_ERROR;
        const icu::UnicodeString text = icuText(medium);
        const std::string base = ascii(icu::DateTimePatternGenerator::staticGetBaseSkeleton(text, status));
        const std::string own = ascii(icu::DateTimePatternGenerator::staticGetSkeleton(text, status));
        if (U_FAILURE(status)) return false;
        if (base == (hour == u'h' ? "ahms" : "Hms") && own != entry) {
            out = medium;
            return true;
        }
    }
    return fromKey(entry, out);
}

bool SkeletonReader::fromKey(std::string_view skeleton, std::u16string &out) {
    UErrorCode status = U_ZERO_ERROR;
    if (!formats_) formats_ = std::make_unique<icu::ResourceBundle>(gregorian_.getWithFallback("availableFormats", status));
    if (U_FAILURE(status)) return false;
    const std::string key(skeleton);
    const icu::ResourceBundle entry = formats_->getWithFallback(key.c_str(), status);
    if (U_FAILURE(status) || entry.getType() != URES_STRING) return false;
    const icu::Locale owner = entry.getLocale(ULOC_ACTUAL_LOCALE, status); // getName points into it
    const char *from = owner.getName();
    if (U_FAILURE(status) || from[0] == '\0' || std::string_view(from) == "root") return false;
    const std::u16string text = u16(entry.getString(status));
    if (U_FAILURE(status) || hasField(text, u'b') || hasField(text, u'B')) return false;
    out = text;
    return true;
}

// The hour cycle the locale's territory prefers (CLDR's timeData), looked
// up by language and territory, then territory; 0 where it is not found.
char16_t SkeletonReader::preferredHour() {
    if (hourKnown_) return hour_;
    hourKnown_ = true;
    icu::Locale place(locale_);
    if (place.getLanguage()[0] == '\0' || place.getCountry()[0] == '\0') {
        UErrorCode status = U_ZERO_ERROR;
        place.addLikelySubtags(status);
        if (U_FAILURE(status)) place = locale_;
    }
    const std::string country = place.getCountry()[0] ? place.getCountry() : "001";
    UErrorCode status = U_ZERO_ERROR;
    UResourceBundle *times = ures_openDirect(nullptr, "supplementalData", &status);
    times = ures_getByKey(times, "timeData", times, &status);
    for (const std::string &key : {std::string(place.getLanguage()) + "_" + country, country}) {
        UErrorCode found = status;
        UResourceBundle *entry = ures_getByKey(times, key.c_str(), nullptr, &found);
        if (U_FAILURE(found)) {
            ures_close(entry);
            continue;
        }
        int32_t length = 0;
        const UChar *preferred = ures_getStringByKey(entry, "preferred", &length, &found);
        if (U_SUCCESS(found) && length == 1) hour_ = preferred[0];
        ures_close(entry);
        break;
    }
    ures_close(times);
    return hour_;
}

} // namespace zvhost
