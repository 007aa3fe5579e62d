// A locale's pattern for a date-time skeleton, read straight from its CLDR
// data where the data holds the very pattern ICU's pattern generator would
// choose. Building the generator costs more than all the rest of a locale's
// table, so the builder asks it only about skeletons this reader declines.
#pragma once

#include <unicode/locid.h>
#include <unicode/resbund.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace zvhost {

class SkeletonReader {
public:
    // A style pattern as DateFormat holds it (styles 0 full to 3 short; -1:
    // none), e.g. the builder's own reader of DateTimePatterns.
    using StylePattern = std::function<std::u16string(int dateStyle, int timeStyle)>;

    // gregorian: the locale's calendar/gregorian resource.
    SkeletonReader(const icu::Locale &locale, icu::ResourceBundle &gregorian, StylePattern style);

    // The generator's pattern for a skeleton of date fields (y M E d Q), of
    // "hms" or "Hms", or of date fields followed by "hmmss" or "jmmss";
    // false where only the generator's search can tell.
    bool pattern(std::string_view skeleton, std::u16string &out);

    // The glue of a date ({1}) and a time ({0}) for a date style, as the
    // generator holds it; false where the data has none.
    bool glue(int dateStyle, std::u16string &out);

private:
    bool datePattern(std::string_view skeleton, std::u16string &out);
    bool timePattern(char16_t hour, bool exact, std::u16string &out);
    bool fromKey(std::string_view skeleton, std::u16string &out);
    char16_t preferredHour();

    icu::Locale locale_;
    icu::ResourceBundle &gregorian_;
    StylePattern style_;
    std::unique_ptr<icu::ResourceBundle> formats_;
    // The date styles' patterns and skeletons, from full to short.
    struct Style {
        std::u16string pattern;
        std::string skeleton;
        bool known = false;
    };
    static constexpr int kDateStyles = 4; // full, long, medium, short
    Style dateStyles_[kDateStyles];
    char16_t hour_ = 0;
    bool hourKnown_ = false;
};

} // namespace zvhost
