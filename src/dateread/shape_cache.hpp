// Cuts of texts kept by the shape of the text. Two texts that differ only
// in which ASCII digits they hold, digit for digit, are cut alike under a
// pattern none of whose literals holds a digit: the cutter tells digits
// from the rest by class alone, and a literal can begin and match only at
// the rest. A column of dates written in one form has one shape, so its
// texts after the first take their cut from here.
//
// The cache has a fixed number of slots, shared by all threads. A slot is
// written under a sequence count and read without a lock: a reader that
// sees the count change while it reads takes nothing from the slot.
#pragma once

#include <cstdint>

#include "dateread/pattern_cut.hpp"
#include "dateread/text_cut.hpp"
#include "zvlocfmt/zvlocfmt.h"

namespace zv {

// The shortest and the longest text, and the most tokens, a slot keeps. A
// shorter text is cut in less time than its shape is looked up.
constexpr int64_t kFewestShapeUnits = 16;
constexpr int64_t kMostShapeUnits = 48;
constexpr int32_t kMostShapeTokens = 24;

// What a kept cut depends on besides the text: the pattern's cut (one in
// the pattern store, which stays) and whether separators split.
struct ShapeKey {
    const PatternCut *cut;
    bool separatorsSplit;
    const ZvChar *text;
    int64_t length;
};

// Is the cut under this key one a slot may keep?
inline bool shapeMayBeKept(const ShapeKey &key) {
    return key.length >= kFewestShapeUnits && key.length <= kMostShapeUnits && key.cut->stored &&
           !key.cut->literalDigits;
}

// The shape of one text under a key, and the slot it goes to.
struct ShapeProbe {
    ShapeKey key;
    ZvChar units[kMostShapeUnits]; // every ASCII digit as "0", and 0 behind the text to a word's end
    int32_t wordCount;             // of four units; 0: the cut is not to be kept
    uint32_t slot;
};

// The kept cut of a text of the key's shape, written to `tokens`, for a key
// whose cut may be kept: the count of tokens, or -1 when none is kept;
// *anyNoDigits as the cutter sets it. The probe is filled for keepCut.
int32_t keptCut(const ShapeKey &key, ShapeProbe &probe, TextToken *tokens, bool *anyNoDigits);

// Keeps a cut just made, before AM or PM marks take any of its tokens; a
// cut of more tokens than a slot holds is not kept.
void keepCut(const ShapeProbe &probe, const TextToken *tokens, int32_t count, bool anyNoDigits);

// Tests turn the cache off to compare kept cuts with fresh ones.
void enableShapeCache(bool on);

} // namespace zv
