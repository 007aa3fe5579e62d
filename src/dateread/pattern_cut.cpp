// Cutting a locale %-pattern for the date reader, and the store that keeps
// each cut by its text.
#include "dateread/pattern_cut.hpp"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstddef>
#include <cstring>
#include <new>

#include "wide/ascii.hpp"
#include "wide/wide.hpp"

namespace zv {

namespace {

// The kind of a directive letter, or -1 when it is none.
constexpr int32_t kindOfLetter(ZvChar c) {
    switch (c) {
    case u'Y': case u'y': return kYear;
    case u'B': case u'C': case u'O': case u'b': case u'm': case u'o': return kMonth;
    case u'E': case u'd': case u'e': return kDay;
    case u'I': return kHour12;
    case u'H': return kHour24;
    case u'M': return kMinute;
    case u'S': return kSecond;
    case u'Q': case u'q': return kQuarter;
    case u'A': case u'F': case u'a': case u'u': case u'w': return kWeekday;
    case u'p': return kAmPm;
    case u'G': case u'U': case u'V': case u'W': case u'Z': case u'j': return kIgnored;
    default: return -1;
    }
}

constexpr ZvChar orderLetterOf(int32_t kind) {
    switch (kind) {
    case kYear: return u'Y';
    case kMonth: return u'M';
    case kDay: return u'D';
    default: return 0;
    }
}

// Behind a "%": the kind of directive a character gives (-1: none) and the
// letter it adds to the field order (0: none). No character beyond ASCII is
// a directive letter.
struct LetterInfo {
    int8_t kind;
    uint8_t order;
};
struct LetterTable {
    LetterInfo ascii[128];
};
constexpr LetterTable letterTable() {
    LetterTable table{};
    for (int i = 0; i < 128; ++i) {
        const int32_t kind = kindOfLetter(static_cast<ZvChar>(i));
        const ZvChar order = kind < 0 ? 0 : orderLetterOf(kind);
        table.ascii[i] = LetterInfo{static_cast<int8_t>(kind), static_cast<uint8_t>(order)};
    }
    return table;
}
constexpr LetterTable kLetters = letterTable();
constexpr LetterInfo kNoLetter{-1, 0};

// ---- the store ---------------------------------------------------------------------

// An entry is written once, before it is published, and never changed:
// readers need no lock. Its lists and its copy of the text follow it.
struct Entry {
    uint64_t hash;
    int64_t length;
    PatternCut cut;
};

constexpr int kStoreSlots = 4096; // a power of two
constexpr int kMostProbes = 8;
// Patterns longer than an item's text are cut at each call.
constexpr int64_t kMostStoredUnits = 160;

alignas(alignof(std::max_align_t)) unsigned char storeBytes[kPreparedPatternRoom];
constinit std::atomic<int64_t> storeUsed{0};
constinit std::atomic<const Entry *> slots[kStoreSlots] = {};
// The entry last found for a pattern at an address. Patterns mostly come
// from the items of a locale block that stays where it is, and the address
// is at hand before the text is read; the entry is still compared with the
// text, since the memory may hold another pattern by now. The slots go by
// the address in steps of 16 bytes, so the pattern items of one block, a
// few hundred bytes apart and all within 16 KB, never share one.
constexpr int kAddressSlots = 1024;
constexpr int kAddressStep = 16;
static_assert(kAddressSlots * kAddressStep >= 16 * 1024, "a block's patterns take slots of their own");
constinit std::atomic<const Entry *> byAddress[kAddressSlots] = {};

std::atomic<const Entry *> &addressSlot(const ZvChar *pattern) {
    return byAddress[reinterpret_cast<uintptr_t>(pattern) / kAddressStep % kAddressSlots];
}

// Four units a step, the last step overlapping the one before it. The
// store is searched by text only when the pattern's address has not found
// it, so the hash takes every unit.
uint64_t wordAt(const ZvChar *units) {
    uint64_t word;
    std::memcpy(&word, units, sizeof word);
    return word;
}
constexpr int64_t kUnitsPerWord = sizeof(uint64_t) / sizeof(ZvChar);

uint64_t hashOf(const ZvChar *pattern, int64_t length) {
    constexpr uint64_t kMix = 0x9E3779B97F4A7C15ull;
    uint64_t h = static_cast<uint64_t>(length) * kMix;
    if (length < kUnitsPerWord) {
        for (int64_t i = 0; i < length; ++i) h = (h ^ pattern[i]) * kMix;
    } else {
        for (int64_t i = 0; i < length - kUnitsPerWord; i += kUnitsPerWord)
            h = std::rotl((h ^ wordAt(pattern + i)) * kMix, 29);
        h = (h ^ wordAt(pattern + length - kUnitsPerWord)) * kMix;
    }
    return h ^ (h >> 32);
}

// Word by word; the last word may overlap the one before it.
bool sameUnits(const ZvChar *a, const ZvChar *b, int64_t length) {
    if (length < kUnitsPerWord) {
        for (int64_t i = 0; i < length; ++i)
            if (a[i] != b[i]) return false;
        return true;
    }
    uint64_t differ = 0;
    for (int64_t i = 0; i < length - kUnitsPerWord; i += kUnitsPerWord) differ |= wordAt(a + i) ^ wordAt(b + i);
    differ |= wordAt(a + length - kUnitsPerWord) ^ wordAt(b + length - kUnitsPerWord);
    return differ == 0;
}

bool holds(const Entry *e, uint64_t hash, const ZvChar *pattern, int64_t length) {
    return e->hash == hash && e->length == length && sameUnits(e->cut.pattern, pattern, length);
}

constexpr int64_t roundUp(int64_t n) {
    constexpr int64_t a = alignof(std::max_align_t);
    return (n + a - 1) / a * a;
}

// Takes `bytes` of the store, or null when they are not there.
unsigned char *reserve(int64_t bytes) {
    int64_t used = storeUsed.load(std::memory_order_relaxed);
    do {
        if (bytes > kPreparedPatternRoom - used) return nullptr;
    } while (!storeUsed.compare_exchange_weak(used, used + bytes, std::memory_order_relaxed));
    return storeBytes + used;
}

// A copy of `cut` in the store, its lists and text behind it; null when full.
const Entry *copyIntoStore(const PatternCut &cut, const ZvChar *pattern, int64_t length, uint64_t hash) {
    const int64_t tokenBytes = cut.count * static_cast<int64_t>(sizeof(PatternToken));
    const int64_t literalBytes = cut.literalCount * static_cast<int64_t>(sizeof(PatternLiteral));
    const int64_t textBytes = length * static_cast<int64_t>(sizeof(ZvChar));
    unsigned char *at = reserve(roundUp(sizeof(Entry) + tokenBytes + literalBytes + textBytes));
    if (!at) return nullptr;
    auto *tokens = reinterpret_cast<PatternToken *>(at + sizeof(Entry));
    auto *literals = reinterpret_cast<PatternLiteral *>(reinterpret_cast<unsigned char *>(tokens) + tokenBytes);
    auto *text = reinterpret_cast<ZvChar *>(reinterpret_cast<unsigned char *>(literals) + literalBytes);
    std::memcpy(tokens, cut.tokens, static_cast<size_t>(tokenBytes));
    std::memcpy(literals, cut.literals, static_cast<size_t>(literalBytes));
    std::memcpy(text, pattern, static_cast<size_t>(textBytes));
    Entry *e = new (at) Entry{hash, length, cut};
    e->cut.pattern = text;
    e->cut.tokens = tokens;
    e->cut.literals = literals;
    e->cut.stored = true;
    return e;
}

// Lists the ASCII units that fold to `first`: itself, and a letter's lower case.
void listWorthUnits(PatternCut &cut, int way, ZvChar first) {
    if (first >= 128) return; // no ASCII unit folds beyond ASCII
    const ZvChar units[2] = {first, static_cast<ZvChar>(first + (u'a' - u'A'))};
    const int count = first >= u'A' && first <= u'Z' ? 2 : 1;
    int32_t &listed = cut.worthCount[way];
    for (int i = 0; i < count && listed >= 0; ++i) {
        const ZvChar *begin = cut.worthUnits[way], *end = begin + listed;
        if (std::find(begin, end, units[i]) != end) continue;
        if (listed == kMostWorthUnits) {
            listed = -1;
            break;
        }
        cut.worthUnits[way][listed++] = units[i];
    }
}

} // namespace

// Blanks separate literals and match nothing themselves; "%" and a
// directive letter give a directive; "%" with any other character begins a
// literal. The counts are kept apart from the lists while the pattern is
// walked, and stored at the end.
const PatternCut &cutPattern(const ZvChar *pattern, int64_t patternLength, PatternCutRoom &room) {
    PatternCut &cut = room.cut;
    cut = PatternCut{pattern, room.tokens, room.literals, 0, 0, 0, 0, {u' ', u' ', u' '}, 0, {}, {0, 0}, false, false};
    int32_t count = 0, literalCount = 0;
    uint64_t firsts = 0, otherFirsts = 0;
    auto storeLiteral = [&](int64_t start, int64_t end) {
        if (count + literalCount >= kMaxPatternTokens) return;
        const ZvChar first = foldUpperChar(pattern[start]);
        room.literals[literalCount++] =
            PatternLiteral{static_cast<int32_t>(start), static_cast<int32_t>(end - start), count, first};
        firsts |= PatternCut::firstBit(first);
        for (int64_t i = start; i < end; ++i) cut.literalDigits |= isAsciiDigit(pattern[i]);
        // A separator folds to itself.
        const bool other = end - start != 1 || !isSeparator(first);
        if (other) otherFirsts |= PatternCut::firstBit(first);
        listWorthUnits(cut, 0, first);
        if (other) listWorthUnits(cut, 1, first);
    };
    for (int64_t i = 0; i < patternLength;) {
        const ZvChar c = pattern[i];
        if (c == u' ') {
            ++i;
            continue;
        }
        int64_t end = i + 1; // where the literal that begins here has run so far
        if (c == u'%') {
            // A "%" at the end, or the first of "%%", is a literal of its own.
            if (i == patternLength - 1 || pattern[i + 1] == u'%') {
                storeLiteral(i, i + 1);
                ++i;
                continue;
            }
            const ZvChar next = pattern[i + 1];
            const LetterInfo letter = next < 128 ? kLetters.ascii[next] : kNoLetter;
            if (letter.kind >= 0) {
                // A directive beyond the limit is dropped but still names its field.
                if (count + literalCount < kMaxPatternTokens)
                    room.tokens[count++] = PatternToken{static_cast<int32_t>(i + 1), 1, letter.kind};
                if (letter.order && cut.orderCount < kOrderLetters) cut.order[cut.orderCount++] = letter.order;
                i += 2;
                continue;
            }
            end = i + 2; // "%" and the character behind it begin a literal
        }
        while (end < patternLength && pattern[end] != u' ' && pattern[end] != u'%') ++end;
        storeLiteral(i, end);
        i = end;
    }
    cut.count = count;
    cut.literalCount = literalCount;
    cut.firsts = firsts;
    cut.otherFirsts = otherFirsts;
    return cut;
}

namespace {

// Slots are probed from the text's hash on. A slot once filled keeps its
// entry, so a reader that finds an entry may use it for good. A text is
// copied into the store only when a slot is free for it; two threads that
// store the same text at once leave one copy in the slots and the other's
// bytes unused. Null: no room, and the cut stands in `room`.
[[gnu::noinline]] const Entry *findOrStore(const ZvChar *pattern, int64_t length, PatternCutRoom &room) {
    const uint64_t hash = hashOf(pattern, length);
    const Entry *made = nullptr;
    for (int probe = 0; probe < kMostProbes; ++probe) {
        std::atomic<const Entry *> &slot = slots[(hash + static_cast<uint64_t>(probe)) & (kStoreSlots - 1)];
        const Entry *e = slot.load(std::memory_order_acquire);
        if (!e) {
            if (!made) made = copyIntoStore(cutPattern(pattern, length, room), pattern, length, hash);
            if (!made) return nullptr;
            if (slot.compare_exchange_strong(e, made, std::memory_order_release, std::memory_order_acquire))
                return made;
            // Another thread filled the slot first; e is its entry.
        }
        if (holds(e, hash, pattern, length)) return e;
    }
    // Every slot on the way holds another text.
    if (!made) cutPattern(pattern, length, room);
    return made;
}

} // namespace

const PatternCut &preparedPattern(const ZvChar *pattern, int64_t length, PatternCutRoom &room) {
    if (length <= 0 || length > kMostStoredUnits) return cutPattern(pattern, length, room);
    std::atomic<const Entry *> &atAddress = addressSlot(pattern);
    if (const Entry *e = atAddress.load(std::memory_order_acquire);
        e && e->length == length && sameUnits(e->cut.pattern, pattern, length))
        return e->cut;
    const Entry *e = findOrStore(pattern, length, room);
    if (!e) return room.cut;
    atAddress.store(e, std::memory_order_release);
    return e->cut;
}

int64_t preparedPatternBytes() { return storeUsed.load(std::memory_order_relaxed); }

} // namespace zv
