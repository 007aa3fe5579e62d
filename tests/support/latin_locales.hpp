// CLDR locales whose default numbering system writes Latin digits: the ones
// where the module's ASCII digits can be compared with ICU's text.
#pragma once

#include <unicode/locid.h>
#include <unicode/numsys.h>

#include <memory>
#include <string>
#include <vector>

namespace testsupport {

inline bool latinDigits(const icu::Locale &loc) {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::NumberingSystem> ns(icu::NumberingSystem::createInstance(loc, status));
    return U_SUCCESS(status) && ns && std::string(ns->getName()) == "latn";
}

// Locales with a country and no variant that write Latin digits.
inline std::vector<std::string> latinLocales() {
    std::vector<std::string> names;
    int32_t count = 0;
    const icu::Locale *all = icu::Locale::getAvailableLocales(count);
    for (int32_t i = 0; i < count; ++i) {
        const icu::Locale &loc = all[i];
        if (std::string(loc.getCountry()).empty() || std::string(loc.getVariant()) != "") continue;
        if (!latinDigits(loc)) continue;
        names.push_back(loc.getName());
    }
    return names;
}

} // namespace testsupport
