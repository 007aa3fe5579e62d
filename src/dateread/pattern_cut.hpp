// A locale %-pattern cut for the date reader: its directives, its literals
// and the date fields in the order it names them. The cut depends on the
// pattern's text alone, so each text is cut once and kept in a store that
// all calls and threads share. The store has a fixed size; a pattern that
// finds no room in it is cut anew at each call.
#pragma once

#include <cstdint>

#include "zvlocfmt/zvlocfmt.h"

namespace zv {

// Tokens of a pattern, and of a text; further ones are dropped.
constexpr int kMaxPatternTokens = 64;
constexpr int kOrderLetters = 3; // Y, M and D, as item 6 holds them

// What a directive reads; 0 is a literal.
enum DirectiveKind : int32_t {
    kLiteral = 0,
    kYear = 1,
    kMonth = 2,
    kDay = 3,
    kHour12 = 4,
    kHour24 = 5,
    kMinute = 6,
    kSecond = 7,
    kQuarter = 8,
    kWeekday = 9,
    kAmPm = 10,
    kIgnored = 11,
};

// A directive: `start` is the index of its letter in the pattern.
struct PatternToken {
    int32_t start;
    int32_t length;
    int32_t kind;
};

// A literal, with the count of directives before it and its first
// character folded to upper case.
struct PatternLiteral {
    int32_t start;
    int32_t length;
    int32_t fieldsBefore;
    ZvChar first;
};

// Units listed for the look at eight text units at once (see worthUnits).
constexpr int kMostWorthUnits = 8;

// The directives and the literals are kept in two lists: the walk takes
// only the directives, the text cutter looks only for the literals.
// Together they count against the limit of tokens. `pattern` is the text
// that the starts index. The first character of each literal, folded, also
// stands in a bit set by its low bits, so that most characters of a text
// are passed over at once.
struct PatternCut {
    const ZvChar *pattern;
    const PatternToken *tokens;
    const PatternLiteral *literals;
    int32_t count;
    int32_t literalCount;
    uint64_t firsts;
    uint64_t otherFirsts; // of the literals other than one separator
    ZvChar order[kOrderLetters];
    int32_t orderCount;
    // The ASCII units that begin a literal worth a look, folded or not: for
    // texts whose separators do not split (all literals) and for those whose
    // separators do (all but literals of one separator). -1: more than the
    // list holds.
    ZvChar worthUnits[2][kMostWorthUnits];
    int32_t worthCount[2];
    bool literalDigits; // a literal holds an ASCII digit
    bool stored;        // the cut stands in the store, for good

    static constexpr uint64_t firstBit(ZvChar folded) { return uint64_t{1} << (folded & 63); }
};

// Where a cut made on the spot keeps its lists.
struct PatternCutRoom {
    PatternCut cut;
    PatternToken tokens[kMaxPatternTokens];
    PatternLiteral literals[kMaxPatternTokens];
};

// The marks that split a text where the pattern names the fields in the
// locale's order.
constexpr bool isSeparator(ZvChar c) { return c == u'.' || c == u'-' || c == u':' || c == u'/'; }

// Cuts `pattern` into `room` and answers room.cut.
const PatternCut &cutPattern(const ZvChar *pattern, int64_t length, PatternCutRoom &room);

// The cut of `pattern` from the store; a pattern not yet there is cut and
// put there. When the store is full the cut is made in `room`.
const PatternCut &preparedPattern(const ZvChar *pattern, int64_t length, PatternCutRoom &room);

// Bytes of the store in use, and its size.
int64_t preparedPatternBytes();
constexpr int64_t kPreparedPatternRoom = 256 * 1024;

} // namespace zv
