// ASCII classes, for readers where a digit or a letter of another script
// must not count: the class tests of wide.hpp answer for all of Unicode.
#pragma once

#include "zvlocfmt/zvlocfmt.h"

namespace zv {

constexpr bool isAsciiDigit(ZvChar c) { return c >= u'0' && c <= u'9'; }
constexpr bool isAsciiLetter(ZvChar c) { return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z'); }

} // namespace zv
