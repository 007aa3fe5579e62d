// Helpers for the wide-text kit's tests: a guard that puts the module's
// anchor back, and a small host that answers class, case and formatText
// questions and counts them.
#pragma once

#include <gtest/gtest.h>
#include <unicode/uchar.h>

#include <cstdint>
#include <string>
#include <vector>

#include "frame/frame.hpp"
#include "wide/wide.hpp"

namespace widetest {

// Restores zv::hostAnchor when the test ends, whatever it set.
class AnchorGuard {
public:
    AnchorGuard() : saved_(zv::hostAnchor) {}
    ~AnchorGuard() { zv::hostAnchor = saved_; }
    AnchorGuard(const AnchorGuard &) = delete;
    AnchorGuard &operator=(const AnchorGuard &) = delete;

private:
    HostAnchor *saved_;
};

// The class bit of an ICU general category, in the module's layout.
inline uint32_t icuClassBit(int8_t type) {
    switch (type) {
    case U_UPPERCASE_LETTER: return 1u << 0;
    case U_LOWERCASE_LETTER: return 1u << 1;
    case U_TITLECASE_LETTER: return 1u << 2;
    case U_NON_SPACING_MARK: return 1u << 3;
    case U_COMBINING_SPACING_MARK: return 1u << 4;
    case U_ENCLOSING_MARK: return 1u << 5;
    case U_DECIMAL_DIGIT_NUMBER: return 1u << 6;
    case U_LETTER_NUMBER: return 1u << 7;
    case U_OTHER_NUMBER: return 1u << 8;
    case U_SPACE_SEPARATOR: return 1u << 9;
    case U_LINE_SEPARATOR: return 1u << 10;
    case U_PARAGRAPH_SEPARATOR: return 1u << 11;
    case U_CONTROL_CHAR: return 1u << 12;
    case U_FORMAT_CHAR: return 1u << 13;
    case U_SURROGATE: return 1u << 14;
    case U_PRIVATE_USE_CHAR: return 1u << 15;
    case U_GENERAL_OTHER_TYPES: return 1u << 16; // Cn
    case U_MODIFIER_LETTER: return 1u << 17;
    case U_OTHER_LETTER: return 1u << 18;
    case U_CONNECTOR_PUNCTUATION: return 1u << 19;
    case U_DASH_PUNCTUATION: return 1u << 20;
    case U_START_PUNCTUATION: return 1u << 21;
    case U_END_PUNCTUATION: return 1u << 22;
    case U_INITIAL_PUNCTUATION: return 1u << 23;
    case U_FINAL_PUNCTUATION: return 1u << 24;
    case U_OTHER_PUNCTUATION: return 1u << 25;
    case U_MATH_SYMBOL: return 1u << 26;
    case U_CURRENCY_SYMBOL: return 1u << 27;
    case U_MODIFIER_SYMBOL: return 1u << 28;
    case U_OTHER_SYMBOL: return 1u << 29;
    default: return 0;
    }
}

inline int icuAge(UChar32 c) {
    UVersionInfo v;
    u_charAge(c, v);
    return v[0] * 10 + v[1];
}

struct ClassQuestion {
    uint32_t character;
    uint32_t mask;
};
struct CaseQuestion {
    uint32_t character;
    int32_t one;
    bool upper;
};
struct LoadRequest {
    std::string name;
    int64_t length;
    int32_t zero;
};
struct FormatRequest {
    void *context;
    std::u16string format;
    int64_t capacity;
    int32_t zero;
    const int64_t *values;
};

// A host anchor with NLS services. charClass answers from ICU's categories,
// charUpper/charLower from ICU's simple mappings; every question is kept.
class CountingHost {
public:
    CountingHost() {
        anchor_.self = this;
        anchor_.base.ops = &kAnchorOps;
        anchor_.base.nlsServices = &nls_.base;
        nls_.self = this;
        nls_.base.ops = &kNlsOps;
        nls_.base.owner = &anchor_.base;
        nls_.base.charModule = nullptr;
    }
    CountingHost(const CountingHost &) = delete;
    CountingHost &operator=(const CountingHost &) = delete;

    HostAnchor *anchor() { return &anchor_.base; }
    NlsServices *nls() { return &nls_.base; }
    void withoutNls() { anchor_.base.nlsServices = nullptr; }

    void *moduleHandle = &moduleToken_; // what loadModule answers
    std::u16string formatAnswer = u"formatted";
    int32_t formatStatus = 0;

    std::vector<ClassQuestion> classQuestions;
    std::vector<CaseQuestion> caseQuestions;
    std::vector<LoadRequest> loads;
    std::vector<FormatRequest> formats;

    size_t hostCalls() const {
        return classQuestions.size() + caseQuestions.size() + loads.size() + formats.size();
    }

private:
    struct AnchorPart {
        HostAnchor base;
        CountingHost *self;
    };
    struct NlsPart {
        NlsServices base;
        CountingHost *self;
    };
    static CountingHost *of(HostAnchor *a) { return reinterpret_cast<AnchorPart *>(a)->self; }
    static CountingHost *of(NlsServices *n) { return reinterpret_cast<NlsPart *>(n)->self; }

    static void *loadModule(HostAnchor *self, const char *name, int64_t length, int32_t zero) {
        CountingHost *h = of(self);
        h->loads.push_back({std::string(name, static_cast<size_t>(length)), length, zero});
        return h->moduleHandle;
    }
    static int32_t formatText(HostAnchor *self, void *context, const ZvChar *format,
                              int64_t formatLength, ZvChar *target, int64_t capacity,
                              int64_t *produced, int32_t zero, const int64_t *values) {
        CountingHost *h = of(self);
        h->formats.push_back({context, std::u16string(format, static_cast<size_t>(formatLength)),
                              capacity, zero, values});
        int64_t n = 0;
        for (; n < capacity && n < static_cast<int64_t>(h->formatAnswer.size()); ++n)
            target[n] = h->formatAnswer[static_cast<size_t>(n)];
        if (produced) *produced = n;
        return h->formatStatus;
    }
    static int32_t charClass(NlsServices *self, uint32_t c, uint32_t mask) {
        CountingHost *h = of(self);
        h->classQuestions.push_back({c, mask});
        return (icuClassBit(u_charType(static_cast<UChar32>(c))) & mask) != 0;
    }
    static uint32_t charUpper(NlsServices *self, uint32_t c, int32_t one) {
        of(self)->caseQuestions.push_back({c, one, true});
        return static_cast<uint32_t>(u_toupper(static_cast<UChar32>(c)));
    }
    static uint32_t charLower(NlsServices *self, uint32_t c, int32_t one) {
        of(self)->caseQuestions.push_back({c, one, false});
        return static_cast<uint32_t>(u_tolower(static_cast<UChar32>(c)));
    }

    static constexpr HostAnchorOps kAnchorOps = {nullptr, nullptr,    nullptr, nullptr,
                                                 &formatText, nullptr, &loadModule};
    static constexpr NlsServicesOps kNlsOps = {nullptr,    nullptr,    nullptr,   nullptr,
                                               &charClass, &charUpper, &charLower};

    AnchorPart anchor_{};
    NlsPart nls_{};
    int moduleToken_ = 0;
};

} // namespace widetest
