// The reader of a locale's %-patterns. Pattern and text are cut into tokens,
// AM/PM marks are found wherever they stand, and the directives then take
// the text tokens in order: lenient about what surrounds the fields, strict
// about the fields themselves.
#include <algorithm>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "datefmt/calendar.hpp"
#include "dateread/dateread.hpp"
#include "dateread/pattern_cut.hpp"
#include "dateread/shape_cache.hpp"
#include "dateread/text_cut.hpp"
#include "frame/frame.hpp"
#include "locale/block.hpp"
#include "wide/ascii.hpp"
#include "wide/wide.hpp"

namespace zv {

namespace {

constexpr int kMaxTokens = kMaxPatternTokens;
constexpr int64_t kFoldRoom = 160;
// Digits beyond this keep a field from growing: no field has a use for it.
constexpr int64_t kFieldCeiling = 1000000000000LL;

// n characters of each side, folded to upper case, compared.
bool sameFolded(const ZvChar *a, const ZvChar *b, int64_t n) {
    n = std::min<int64_t>(n, kFoldRoom);
    // The fold maps each unit on its own: units that are equal need none,
    // and the first pair that folds apart ends the compare.
    for (int64_t i = 0; i < n; ++i)
        if (a[i] != b[i] && foldUpperChar(a[i]) != foldUpperChar(b[i])) return false;
    return true;
}

struct Reader {
    // The tokens are written as the text is cut; only the first n are read.
    Reader(const LocaleBlock *b, const ZvChar *t, int64_t length) : block(b), text(t), textLength(length) {}

    const LocaleBlock *block;
    const ZvChar *text;
    int64_t textLength;
    TextToken tokens[kMaxTokens];
    int32_t n = 0;
    bool anyNoDigits = false; // false: all tokens are digits, and no AM or PM mark stands among them
    bool anyUsed = false;     // a token is taken by an AM or PM mark

    // The end test of a name that runs on from token t over L characters:
    // the token where it ends on a token boundary, or -1.
    int32_t endOf(int32_t t, int64_t L) const {
        const int64_t end = tokens[t].start + L;
        for (int32_t j = t; j < n; ++j) {
            if (end < tokens[j].start + tokens[j].length) return -1;
            if (j == n - 1) return end <= textLength ? j : -1;
            if (end <= tokens[j + 1].start) return j;
        }
        return -1;
    }

    // Does the text at token t begin with item k? (Over the item's length.)
    bool beginsWithItem(int32_t t, const LocaleItem &item) const {
        const int64_t L = item.length;
        if (L <= 0 || textLength - tokens[t].start < L) return false;
        // Most names differ from the text in their first character.
        const ZvChar *at = text + tokens[t].start;
        if (at[0] != item.text[0] && foldUpperChar(at[0]) != foldUpperChar(item.text[0])) return false;
        return sameFolded(at + 1, item.text + 1, std::min<int64_t>(L, kFoldRoom) - 1);
    }

    // The place, 1-based, of the name in items first .. first+count-1 that
    // token *t holds; 0 if none. A name that runs over several tokens moves
    // *t to the last of them.
    int32_t lookup(int32_t *t, int first, int count) const {
        int64_t best = 0;
        int32_t found = 0, extra = -1;
        for (int k = 0; k < count; ++k) {
            const LocaleItem &item = block->items[first + k];
            const int64_t L = item.length;
            if (L <= 0 || L <= best) continue;
            if (!beginsWithItem(*t, item)) continue;
            if (L == tokens[*t].length) {
                found = k + 1;
                extra = -1;
                continue;
            }
            const int32_t j = endOf(*t, L);
            if (j >= 0) {
                if (L > best) best = L;
                found = k + 1;
                extra = j - *t;
            } else {
                extra = -1;
            }
        }
        if (extra >= 0) *t += extra;
        return found;
    }

    // An AM or PM mark at token t; true when found, tokens marked used.
    bool markAt(int32_t t, const LocaleItem &item) {
        if (!beginsWithItem(t, item)) return false;
        if (item.length == tokens[t].length) {
            tokens[t].used = 1;
            anyUsed = true;
            return true;
        }
        const int32_t j = endOf(t, item.length);
        if (j < 0) return false;
        for (int32_t k = t; k <= j; ++k) tokens[k].used = 1;
        anyUsed = true;
        return true;
    }
};

// A field below kUncheckedBelow takes kUncheckedDigits digits and stays
// below the ceiling, so the common short field needs no look at it.
constexpr int32_t kUncheckedDigits = 9;
constexpr int64_t tenTo(int32_t power) { return power == 0 ? 1 : 10 * tenTo(power - 1); }
constexpr int64_t kUncheckedBelow = kFieldCeiling / tenTo(kUncheckedDigits);

// ---- the pattern's tokens ---------------------------------------------------

// Does the pattern name its date fields in the locale's own order? A
// pattern without any date field does.
bool orderMatchesLocale(const LocaleBlock *block, const PatternCut &cut) {
    if (cut.orderCount == 0) return true;
    const LocaleItem &o = block->items[kItemDateOrder];
    if (o.length != kOrderLetters) return false;
    // The pattern's letters are upper case and blanks: they fold to themselves.
    for (int i = 0; i < kOrderLetters; ++i)
        if (o.text[i] != cut.order[i] && foldUpperChar(o.text[i]) != cut.order[i]) return false;
    return true;
}

// In Hebrew the marks between the fields are part of the text, not separators.
bool isHebrew(const LocaleBlock *block) {
    const LocaleItem &language = block->items[kItemLanguage];
    return language.length == 2 && foldUpperChar(language.text[0]) == u'H' && foldUpperChar(language.text[1]) == u'E';
}

// ---- the text's tokens ------------------------------------------------------

// What a character does to the cutter: it joins a token of digits or of
// other characters, or it ends the token as a blank or a separator does.
enum CharRole : uint8_t {
    kRoleDigit = kDigits,
    kRoleOther = kNoDigits,
    kRoleBlank = 3, // this and the roles above it end a token
    kRoleSeparator = 4, // only where separators split
};

// The roles of the ASCII characters, without and with separators that
// split; every character beyond ASCII is of the other class.
struct RoleTable {
    uint8_t ascii[128];
};
constexpr RoleTable roleTable(bool separatorsSplit) {
    RoleTable roles{};
    for (int i = 0; i < 128; ++i) {
        const ZvChar c = static_cast<ZvChar>(i);
        roles.ascii[i] = c == u' '                           ? kRoleBlank
                         : isAsciiDigit(c)                   ? kRoleDigit
                         : separatorsSplit && isSeparator(c) ? kRoleSeparator
                                                             : kRoleOther;
    }
    return roles;
}
constexpr RoleTable kPlainRoles = roleTable(false);
constexpr RoleTable kSplittingRoles = roleTable(true);

// The units below 64 that end a token of others: blanks, the separators
// where they split, and digits. Every unit from 64 on is of the other class.
// The same tests as the role tables above: the plain cut asks these sets,
// the cut with literals the tables, each the faster in its own loop.
constexpr uint64_t unitsBelow64Where(bool (*test)(ZvChar)) {
    uint64_t bits = 0;
    for (ZvChar c = 0; c < 64; ++c)
        if (test(c)) bits |= uint64_t{1} << c;
    return bits;
}
constexpr uint64_t kBlankUnit = uint64_t{1} << u' ';
constexpr uint64_t kSeparatorUnits = unitsBelow64Where(isSeparator);
constexpr uint64_t kDigitUnits = unitsBelow64Where(isAsciiDigit);
constexpr bool isUnitIn(ZvChar c, uint64_t units) { return c < 64 && (units >> c & 1) != 0; }

// The bits of the digits in a bit set of first characters.
constexpr uint64_t digitBits() {
    uint64_t bits = 0;
    for (ZvChar c = u'0'; c <= u'9'; ++c) bits |= PatternCut::firstBit(c);
    return bits;
}
constexpr uint64_t kDigitBits = digitBits();

// The bit of each ASCII character, folded; beyond ASCII the fold is looked up.
struct FoldedBits {
    uint64_t ascii[128];
};
constexpr FoldedBits foldedBits() {
    FoldedBits bits{};
    for (int i = 0; i < 128; ++i) bits.ascii[i] = PatternCut::firstBit(foldUpperChar(static_cast<ZvChar>(i)));
    return bits;
}
constexpr FoldedBits kFoldedBits = foldedBits();
inline uint64_t foldedBitOf(ZvChar c) {
    return c < 128 ? kFoldedBits.ascii[c] : PatternCut::firstBit(foldUpperBeyondAscii(c));
}

// How the text is cut under one pattern: the roles, the bit set of the
// first characters of the literals worth a look (a character whose bit is
// clear begins none), and where in the text the looks end.
struct CutRules {
    const uint8_t *roles;
    uint64_t stops; // the units below 64 that end a token as a blank does
    uint64_t firsts;
    int64_t looksEnd;

    uint8_t roleOf(ZvChar c) const { return c < 128 ? roles[c] : static_cast<uint8_t>(kRoleOther); }
    bool mayBeginLiteral(ZvChar c) const { return (firsts & foldedBitOf(c)) != 0; }
};

// Texts longer than this are looked at for literals as far as the token
// list goes: the cutting stops when the list is full, and a scan from the
// far end of a long text would cost more than the whole cut.
constexpr int64_t kMostUnitsScannedForLooks = 4 * kMaxTokens;

// Behind the last character of the text that might begin a literal whose
// first character has a bit in `bits`; 0 when none might. A long text is
// taken to have one at its end.
int64_t endOfMayBegin(const ZvChar *text, int64_t length, uint64_t bits, const ZvChar *units, int32_t unitCount) {
    if (length > kMostUnitsScannedForLooks) return length;
#if defined(__SSE2__)
    // Eight units a step from the end: a step that holds none of the listed
    // units and nothing beyond ASCII is passed over; in the others the units
    // are tested one by one.
    constexpr int64_t kEight = 8;
    if (unitCount >= 0) {
        const __m128i high = _mm_set1_epi16(static_cast<int16_t>(0xFF80));
        for (; length >= kEight; length -= kEight) {
            const __m128i u = _mm_loadu_si128(reinterpret_cast<const __m128i *>(text + length - kEight));
            __m128i hit = _mm_cmpeq_epi16(_mm_and_si128(u, high), _mm_setzero_si128());
            hit = _mm_xor_si128(hit, _mm_set1_epi16(-1)); // beyond ASCII
            for (int32_t i = 0; i < unitCount; ++i)
                hit = _mm_or_si128(hit, _mm_cmpeq_epi16(u, _mm_set1_epi16(static_cast<int16_t>(units[i]))));
            if (_mm_movemask_epi8(hit) == 0) continue;
            for (int64_t k = length; k > length - kEight; --k)
                if (bits & foldedBitOf(text[k - 1])) return k;
        }
    }
#else
    (void)units;
    (void)unitCount;
#endif
    while (length > 0 && !(bits & foldedBitOf(text[length - 1]))) --length;
    return length;
}

// A literal that begins with no character of the text never matches and
// never stops the search for a later one, which is due later still: the
// text is cut as without it. Where separators split, a literal of one
// separator ends the token just as the separator does, and the tokens come
// out the same; only the count of splits differs, which no other literal
// reads when no other can match. So the looks end behind the last character
// that might begin a literal worth one, and without such a character no
// character needs a look at all.
CutRules rulesFor(const PatternCut &cut, bool separatorsSplit, const ZvChar *text, int64_t textLength) {
    const uint8_t *roles = separatorsSplit ? kSplittingRoles.ascii : kPlainRoles.ascii;
    const uint64_t worthALook = separatorsSplit ? cut.otherFirsts : cut.firsts;
    const int way = separatorsSplit ? 1 : 0;
    const int64_t looksEnd =
        worthALook ? endOfMayBegin(text, textLength, worthALook, cut.worthUnits[way], cut.worthCount[way]) : 0;
    return {roles, kBlankUnit | (separatorsSplit ? kSeparatorUnits : 0), looksEnd > 0 ? cut.firsts : 0, looksEnd};
}

// The length of the pattern literal that stands in the text at `cursor`, or
// -1 when none is due there. `folded` is the character at the cursor,
// folded; a literal whose first character differs is passed over without
// a compare. `splits` counts the tokens ended by a blank, a separator or a
// change of class: a literal is looked for only where the tokens seen so
// far, give or take those, line up with the fields before it.
int64_t literalAt(const Reader &rd, int64_t cursor, int32_t n, int32_t splits, bool open, ZvChar folded,
                  const PatternCut &cut) {
    const int32_t seen = n + (open ? 1 : 0);
    const int32_t low = seen - splits, high = seen + splits;
    for (int32_t k = 0; k < cut.literalCount; ++k) {
        const PatternLiteral &pt = cut.literals[k];
        if (pt.fieldsBefore < low) continue;
        if (pt.fieldsBefore > high) return -1;
        if (pt.first != folded) continue;
        // The first characters are equal; the rest is compared over what
        // the text has left.
        const int64_t len = pt.length;
        const int64_t span = std::min(std::min<int64_t>(len, rd.textLength - cursor), kFoldRoom);
        if (span <= 1 || sameFolded(rd.text + cursor + 1, cut.pattern + pt.start + 1, span - 1)) return len;
    }
    return -1;
}

// The end of the run of characters from `cursor` on that have `role` and
// begin no literal. Inlined into both cutters: most runs are a character
// or two, and a call would cost more than the run.
[[gnu::always_inline]] inline int64_t runEnd(const ZvChar *text, int64_t cursor, int64_t length,
                                              const CutRules &rules, uint8_t role) {
    if (role == kRoleDigit) {
        // A digit folds to itself.
        if ((rules.firsts & kDigitBits) == 0) {
            while (cursor < length && isAsciiDigit(text[cursor])) ++cursor;
            return cursor;
        }
        while (cursor < length && isAsciiDigit(text[cursor]) && !rules.mayBeginLiteral(text[cursor])) ++cursor;
        return cursor;
    }
    while (cursor < length) {
        const ZvChar c = text[cursor];
        if (rules.roleOf(c) != role || (rules.firsts && rules.mayBeginLiteral(c))) break;
        ++cursor;
    }
    return cursor;
}

// The cut where no literal can match, from `cursor` on: each run of
// characters of one class is a token, and blanks and splitting separators
// (`stops`) between them are passed over. A token of class cls under way
// from `start` (start < cursor) runs on first. No count of splits is kept,
// since no literal reads it. Answers the count of tokens.
int32_t cutPlain(const ZvChar *text, int64_t length, uint64_t stops, int64_t cursor, int64_t start, int32_t cls,
                 TextToken *tokens, int32_t n, int32_t &classes) {
    auto store = [&](int64_t from, int64_t end, TokenClass c) {
        tokens[n++] = TextToken{static_cast<int32_t>(from), static_cast<int32_t>(end - from), c, 0};
        classes |= c;
    };
    auto digitsEnd = [&](int64_t at) {
        while (at < length && isAsciiDigit(text[at])) ++at;
        return at;
    };
    auto othersEnd = [&](int64_t at) {
        while (at < length && !isUnitIn(text[at], stops | kDigitUnits)) ++at;
        return at;
    };
    if (start < cursor && n < kMaxTokens) {
        const int64_t end = cls == kDigits ? digitsEnd(cursor) : othersEnd(cursor);
        store(start, end, static_cast<TokenClass>(cls));
        cursor = end;
    }
    while (cursor < length && n < kMaxTokens) {
        const ZvChar c = text[cursor];
        if (isAsciiDigit(c)) {
            const int64_t end = digitsEnd(cursor + 1);
            store(cursor, end, kDigits);
            cursor = end;
        } else if (isUnitIn(c, stops)) {
            ++cursor;
        } else {
            const int64_t end = othersEnd(cursor + 1);
            store(cursor, end, kNoDigits);
            cursor = end;
        }
    }
    return n;
}

// Cuts the text at blanks, at the pattern's literals, at separators (where
// the rules make them split) and where digits meet other characters.
void cutText(Reader &rd, const PatternCut &cut, const CutRules &rules) {
    const ZvChar *text = rd.text;
    const int64_t length = rd.textLength;
    TextToken *tokens = rd.tokens;
    int64_t cursor = 0, start = 0;
    int32_t n = 0, splits = 0;
    int32_t cls = kNoClass;
    int32_t classes = 0; // the classes of all characters met
    // Inside the loop a token is stored only while the list has room.
    auto store = [&](int64_t end) {
        tokens[n++] = TextToken{static_cast<int32_t>(start), static_cast<int32_t>(end - start),
                                static_cast<TokenClass>(cls), 0};
    };
    // Once the list is full nothing further in the text can change the
    // answer. Behind the looks the cut goes on as the plain one.
    while (cursor < rules.looksEnd && n < kMaxTokens) {
        const ZvChar c = text[cursor];
        if (rules.mayBeginLiteral(c)) {
            const ZvChar folded = foldUpperChar(c);
            const int64_t literal = literalAt(rd, cursor, n, splits, start < cursor, folded, cut);
            if (literal >= 0) {
                if (start < cursor) store(cursor);
                cursor += literal;
                start = cursor;
                continue;
            }
        }
        const uint8_t role = rules.roleOf(c);
        if (role >= kRoleBlank) {
            if (start < cursor) {
                store(cursor);
                ++splits;
            }
            start = ++cursor;
            continue;
        }
        if (role != cls) {
            if (start < cursor) {
                store(cursor);
                ++splits;
                start = cursor;
            }
            cls = role;
        }
        classes |= role;
        // The characters behind that only lengthen the token are taken at once.
        cursor = runEnd(text, cursor + 1, length, rules, role);
    }
    rd.n = cutPlain(text, length, rules.stops, cursor, start, cls, tokens, n, classes);
    rd.anyNoDigits = (classes & kNoDigits) != 0;
}

// ---- AM and PM ----------------------------------------------------------------

struct AmPm {
    bool seen = false;
    bool isPm = false;
};

// The locale's marks end the search; a plain "am" or "pm" in either case
// counts in every locale, and a later one overrides it.
AmPm findAmPm(Reader &rd) {
    AmPm found;
    if (!rd.anyNoDigits) return found;
    const LocaleItem *marks[2] = {&rd.block->items[kItemAm], &rd.block->items[kItemPm]};
    for (int32_t t = 0; t < rd.n; ++t) {
        if (rd.tokens[t].cls != kNoDigits) continue;
        for (int pm = 0; pm < 2; ++pm) {
            if (rd.markAt(t, *marks[pm])) {
                found.seen = true;
                found.isPm = pm == 1;
                return found;
            }
        }
        const TextToken &tok = rd.tokens[t];
        if (tok.length == 2) {
            const ZvChar f = rd.text[tok.start], s = rd.text[tok.start + 1];
            if ((s == u'm' || s == u'M') && (f == u'a' || f == u'A' || f == u'p' || f == u'P')) {
                rd.tokens[t].used = 1;
                rd.anyUsed = true;
                found.seen = true;
                found.isPm = f == u'p' || f == u'P';
            }
        }
    }
    return found;
}

// ---- the walk -----------------------------------------------------------------

// What the directives read.
struct Fields {
    int64_t year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    bool hourSeen = false, minuteSeen = false, secondSeen = false, weekdaySeen = false;
};

// Digits of a run, `count` of them from `at` on, added into `field`.
inline int64_t takeRun(const ZvChar *at, int32_t count, int64_t field) {
    int64_t value = field;
    if (value < kUncheckedBelow && count <= kUncheckedDigits) {
        // Fields of two and four digits go without a loop, which the
        // compiler would turn into a jump through a table, seldom foreseen.
        const auto two = [at](int32_t i) { return (at[i] - u'0') * 10 + (at[i + 1] - u'0'); };
        if (count == 2) return value * 100 + two(0);
        if (count == 4) return value * 10000 + two(0) * 100 + two(2);
        for (int32_t i = 0; i < count; ++i) value = value * 10 + (at[i] - u'0');
        return value;
    }
    for (int32_t i = 0; i < count; ++i)
        if (value < kFieldCeiling) value = value * 10 + (at[i] - u'0');
    return value;
}

constexpr int32_t kFullYearDigits = 4;
constexpr int32_t kShortYearDigits = 2;
constexpr int32_t kMonthDayDigits = 2;

// A month name of either list at token *t, 1 to 12; 0 when none.
[[gnu::noinline]] int32_t monthNamed(const Reader &rd, int32_t *t) {
    int32_t month = rd.lookup(t, kItemMonthAbbr, kMonthNames);
    if (month == 0 && rd.tokens[*t].length >= 3) month = rd.lookup(t, kItemMonthFull, kMonthNames);
    return month;
}

// A weekday name of either list at token *t.
[[gnu::noinline]] bool weekdayNamed(const Reader &rd, int32_t *t) {
    return rd.lookup(t, kItemWeekdayAbbr, kWeekdayNames) != 0 || rd.lookup(t, kItemWeekdayFull, kWeekdayNames) != 0;
}

// Walks the directives over the text tokens. False: failure. `t` is the
// text token under way and `offset` the digits of it that directives have
// taken already: a run of digits can hold several fields. Year, month and
// day take their share of a run (the rest of it when no more is left);
// hours, minutes and seconds take the whole token and carry over later.
[[gnu::noinline]] bool walkFields(const Reader &rd, const PatternCut &cut, bool orderMatches, Fields &f) {
    const TextToken *const tokens = rd.tokens;
    const ZvChar *const text = rd.text;
    const int32_t n = rd.n;
    const bool anyUsed = rd.anyUsed;
    int32_t t = -1, offset = 0;
    for (int32_t k = 0; k < cut.count; ++k) {
        const PatternToken &pt = cut.tokens[k];
        if (offset == 0) {
            // The next token, passing over one taken by an AM or PM mark; the
            // fields left over when the text runs out stay unset.
            if (++t >= n || (anyUsed && tokens[t].used && ++t >= n)) break;
        } else if (anyUsed && tokens[t].used && ++t >= n) {
            return false; // digits of the token under way are still to be taken
        }
        const TextToken &tok = tokens[t];
        const bool isDigits = tok.cls == kDigits;
        // The share of the run a field with room for `most` digits takes.
        auto take = [&](int32_t most, int64_t &field) {
            const int32_t rest = tok.length - offset;
            const int32_t count = rest > most ? most : rest;
            field = takeRun(text + tok.start + offset, count, field);
            offset = rest > most ? offset + most : 0;
        };
        // Conditional branches rather than a table of jumps: with the kinds of
        // a pattern in a row, they are foreseen where a jump through a table
        // is not.
        const int32_t kind = pt.kind;
        if (kind >= kHour12 && kind <= kSecond) {
            if (!isDigits) {
                if (kind != kSecond) return false;
                // A second is optional: without digits the token stays for
                // what follows (inside a run of digits the cursor has not moved).
                if (offset == 0) --t;
                continue;
            }
            int64_t &field = kind == kMinute ? f.minute : kind == kSecond ? f.second : f.hour;
            bool &seen = kind == kMinute ? f.minuteSeen : kind == kSecond ? f.secondSeen : f.hourSeen;
            field = takeRun(text + tok.start, tok.length, field);
            seen = true;
        } else if (kind == kDay) {
            if (!isDigits) return false;
            take(kMonthDayDigits, f.day);
            if (f.day < 1 || f.day > 31) return false;
        } else if (kind == kMonth) {
            // Digits or a name; "0" and "00" go to the lists too, and fail there.
            if (isDigits) take(kMonthDayDigits, f.month);
            if (f.month == 0) f.month = monthNamed(rd, &t);
            if (f.month < 1 || f.month > kMonthNames) return false;
        } else if (kind == kYear) {
            if (!isDigits) return false;
            // Outside the locale's own order a "%y" must read a short year and a "%Y" a full one.
            const bool shortYear = cut.pattern[pt.start] == u'y';
            take(shortYear ? kShortYearDigits : kFullYearDigits, f.year);
            if (!orderMatches && (shortYear ? f.year >= 100 : f.year < 1000)) return false;
        } else if (kind == kAmPm) {
            // Found already, wherever it stands: it eats no token.
            if (offset == 0) --t;
        } else if (kind == kWeekday) {
            // Checked against the lists but not against the date.
            if (isDigits) return false;
            if (f.weekdaySeen) continue;
            if (!weekdayNamed(rd, &t)) return false;
            f.weekdaySeen = true;
        }
        // Quarters and ignored directives eat their token.
    }
    // Digits that no directive took.
    return offset == 0;
}

// ---- the result ------------------------------------------------------------------

// Writes what was read. A time without a date carries whole days on, so a
// lone day directive counts as days; with a date, the carry into the day
// comes first and so can push it past the month. Kept out of line: run once
// a pattern, it would only crowd the registers of the cutters' loops.
[[gnu::noinline]] int32_t storeResult(Fields f, const AmPm &amPm, double *outDate, double *outTime) {
    const bool dateComplete = f.month != 0 && f.year != 0 && f.day != 0;
    const bool timeSeen = f.hourSeen || f.minuteSeen || f.secondSeen;
    if (!dateComplete && !timeSeen) return kLocaleFormRead;
    if (timeSeen) {
        if (amPm.seen && f.hour == 12) f.hour = 0;
        // The fields hold no sign; most need no carry.
        if (f.second >= 60) {
            f.minute += f.second / 60;
            f.second %= 60;
        }
        if (amPm.isPm) f.hour += 12;
        if (f.minute >= 60) {
            f.hour += f.minute / 60;
            f.minute %= 60;
        }
        if (f.hour >= 24) {
            f.day += f.hour / 24;
            f.hour %= 24;
        }
        const double time = static_cast<double>(f.second + 60 * (f.minute + 60 * f.hour));
        *outTime = dateComplete ? time : time + static_cast<double>(f.day) * kSecondsPerDay;
    }
    if (dateComplete) {
        const double days = dayCountOfDate(f.year, f.month, f.day);
        if (isMissing(days)) return kLocaleFormFailed;
        *outDate = days;
    }
    const bool timePartial = timeSeen && !(f.hourSeen && f.minuteSeen && f.secondSeen);
    return timePartial ? kLocaleFormPartialTime : kLocaleFormRead;
}

} // namespace

int32_t readLocaleForm(FormatCall *call, const ZvChar *text, int64_t textLength, const ZvChar *pattern,
                       int64_t patternLength, double *outDate, double *outTime) {
    if (!call || !call->localeBlock) return kLocaleFormFailed;
    textLength = text ? std::max<int64_t>(textLength, 0) : 0;
    patternLength = pattern ? std::max<int64_t>(patternLength, 0) : 0;
    const LocaleBlock *block = call->localeBlock;

    PatternCutRoom room;
    const PatternCut &cut = preparedPattern(pattern, patternLength, room);
    // The locale's order decides whether separators split a text and how
    // strict years are.
    const bool orderMatches = orderMatchesLocale(block, cut);

    Reader rd(block, text, textLength);
    const bool separatorsSplit = orderMatches && !isHebrew(block);
    // A text of a shape cut before under this pattern takes that cut.
    const ShapeKey key{&cut, separatorsSplit, text, textLength};
    ShapeProbe shape;
    const bool keep = shapeMayBeKept(key);
    const int32_t kept = keep ? keptCut(key, shape, rd.tokens, &rd.anyNoDigits) : -1;
    if (kept >= 0) {
        rd.n = kept;
    } else {
        cutText(rd, cut, rulesFor(cut, separatorsSplit, text, textLength));
        if (keep) keepCut(shape, rd.tokens, rd.n, rd.anyNoDigits);
    }
    const AmPm amPm = findAmPm(rd);

    Fields fields;
    if (!walkFields(rd, cut, orderMatches, fields)) return kLocaleFormFailed;
    return storeResult(fields, amPm, outDate, outTime);
}

} // namespace zv
