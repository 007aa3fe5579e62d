// ICU's general categories in the bit order of the character services: the
// host's charClass answers by it, and zvgenunicode writes the module's own
// class tables by it, so the two always agree.
#pragma once

#include <cstdint>

#include <unicode/uchar.h>

namespace zvhost {

// The bit of a general category: Lu 0, Ll 1, Lt 2, Mn 3, Mc 4, Me 5, Nd 6,
// Nl 7, No 8, Zs 9, Zl 10, Zp 11, Cc 12, Cf 13, Cs 14, Co 15, Cn 16, Lm 17,
// Lo 18, Pc 19, Pd 20, Ps 21, Pe 22, Pi 23, Pf 24, Po 25, Sm 26, Sc 27,
// Sk 28, So 29. Anything ICU doesn't name counts as unassigned.
constexpr int categoryBit(int8_t type) {
    switch (type) {
    case U_UPPERCASE_LETTER: return 0;
    case U_LOWERCASE_LETTER: return 1;
    case U_TITLECASE_LETTER: return 2;
    case U_NON_SPACING_MARK: return 3;
    case U_COMBINING_SPACING_MARK: return 4;
    case U_ENCLOSING_MARK: return 5;
    case U_DECIMAL_DIGIT_NUMBER: return 6;
    case U_LETTER_NUMBER: return 7;
    case U_OTHER_NUMBER: return 8;
    case U_SPACE_SEPARATOR: return 9;
    case U_LINE_SEPARATOR: return 10;
    case U_PARAGRAPH_SEPARATOR: return 11;
    case U_CONTROL_CHAR: return 12;
    case U_FORMAT_CHAR: return 13;
    case U_SURROGATE: return 14;
    case U_PRIVATE_USE_CHAR: return 15;
    case U_UNASSIGNED: return 16;
    case U_MODIFIER_LETTER: return 17;
    case U_OTHER_LETTER: return 18;
    case U_CONNECTOR_PUNCTUATION: return 19;
    case U_DASH_PUNCTUATION: return 20;
    case U_START_PUNCTUATION: return 21;
    case U_END_PUNCTUATION: return 22;
    case U_INITIAL_PUNCTUATION: return 23;
    case U_FINAL_PUNCTUATION: return 24;
    case U_OTHER_PUNCTUATION: return 25;
    case U_MATH_SYMBOL: return 26;
    case U_CURRENCY_SYMBOL: return 27;
    case U_MODIFIER_SYMBOL: return 28;
    case U_OTHER_SYMBOL: return 29;
    default: return 16;
    }
}

// The class mask of a general category.
constexpr uint32_t categoryMask(int8_t type) { return 1u << categoryBit(type); }

} // namespace zvhost
