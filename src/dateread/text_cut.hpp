// The tokens the date reader cuts a text into.
#pragma once

#include <cstdint>

namespace zv {

// What a text token holds; a token changes where digits meet other characters.
enum TokenClass : int32_t {
    kNoClass = 0, // before the first character of a token
    kDigits = 1,  // ASCII digits only
    kNoDigits = 2,
};

struct TextToken {
    int32_t start;
    int32_t length;
    TokenClass cls;
    int32_t used; // nonzero: taken by an AM or PM mark
};

} // namespace zv
