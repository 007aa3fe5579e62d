// The reader of a locale's %-patterns. Pattern and text are cut into tokens,
// AM/PM marks are found wherever they stand, and the directives then take
// the text tokens in order: lenient about what surrounds the fields, strict
// about the fields themselves.
#include "datefmt/calendar.hpp"
#include "dateread/dateread.hpp"
#include "frame/frame.hpp"
#include "locale/block.hpp"
#include "wide/wide.hpp"

namespace zv {

namespace {

constexpr int kMaxTokens = 64;
constexpr int64_t kFoldRoom = 160;
// Digits beyond this keep a field from growing: no field has a use for it.
constexpr int64_t kFieldCeiling = 1000000000000LL;

enum Kind : int32_t {
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

struct PatternToken {
    int32_t start;
    int32_t length;
    int32_t kind;
};

struct TextToken {
    int32_t start;
    int32_t length;
    int32_t cls;
    int32_t used;
};

// The kind of a directive letter, or -1 when it is none.
int32_t kindOfLetter(ZvChar c) {
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

ZvChar orderLetterOf(int32_t kind) {
    switch (kind) {
    case kYear: return u'Y';
    case kMonth: return u'M';
    case kDay: return u'D';
    default: return 0;
    }
}

// n characters of each side, folded to upper case, compared.
bool sameFolded(const ZvChar *a, const ZvChar *b, int64_t n) {
    if (n > kFoldRoom) n = kFoldRoom;
    if (n <= 0) return true;
    ZvChar x[kFoldRoom], y[kFoldRoom];
    for (int64_t i = 0; i < n; ++i) {
        x[i] = a[i];
        y[i] = b[i];
    }
    foldUpper(x, n);
    foldUpper(y, n);
    for (int64_t i = 0; i < n; ++i)
        if (x[i] != y[i]) return false;
    return true;
}

bool isAsciiDigit(ZvChar c) { return c >= u'0' && c <= u'9'; }

struct Reader {
    const LocaleBlock *block;
    const ZvChar *text;
    int64_t textLength;
    TextToken tokens[kMaxTokens];
    int32_t n = 0;

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
        return sameFolded(text + tokens[t].start, item.text, L);
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
            return true;
        }
        const int32_t j = endOf(t, item.length);
        if (j < 0) return false;
        for (int32_t k = t; k <= j; ++k) tokens[k].used = 1;
        return true;
    }
};

// Digits of a token from `from` on, `count` of them, added into `field`.
void addDigits(const ZvChar *text, const TextToken &tok, int32_t from, int32_t count, int64_t *field) {
    for (int32_t i = 0; i < count; ++i) {
        const int64_t d = text[tok.start + from + i] - u'0';
        if (*field < kFieldCeiling) *field = *field * 10 + d;
    }
}

} // namespace

int32_t readLocaleForm(FormatCall *call, const ZvChar *text, int64_t textLength, const ZvChar *pattern,
                       int64_t patternLength, double *outDate, double *outTime) {
    if (!call || !call->localeBlock) return -1;
    if (!text || textLength < 0) textLength = 0;
    if (!pattern || patternLength < 0) patternLength = 0;
    const LocaleBlock *block = call->localeBlock;

    // Step 1: the pattern's tokens and its field order.
    PatternToken ptok[kMaxTokens];
    int32_t np = 0;
    ZvChar order[3] = {u' ', u' ', u' '};
    int orderCount = 0;
    auto storePattern = [&](int64_t start, int64_t length, int32_t kind) {
        if (np < kMaxTokens)
            ptok[np++] = PatternToken{static_cast<int32_t>(start), static_cast<int32_t>(length), kind};
    };
    int64_t pending = -1;
    auto flush = [&](int64_t at) {
        if (pending >= 0 && at > pending) storePattern(pending, at - pending, kLiteral);
        pending = -1;
    };
    for (int64_t i = 0; i < patternLength;) {
        const ZvChar c = pattern[i];
        if (c == u' ') {
            flush(i);
            ++i;
            continue;
        }
        if (c == u'%') {
            flush(i);
            if (i == patternLength - 1) {
                storePattern(i, 1, kLiteral);
                ++i;
                continue;
            }
            const ZvChar next = pattern[i + 1];
            if (next == u'%') {
                storePattern(i, 1, kLiteral);
                ++i;
                continue;
            }
            const int32_t kind = kindOfLetter(next);
            if (kind >= 0) {
                storePattern(i + 1, 1, kind);
                const ZvChar letter = orderLetterOf(kind);
                if (letter && orderCount < 3) order[orderCount++] = letter;
            } else {
                pending = i;
            }
            i += 2;
            continue;
        }
        if (pending < 0) pending = i;
        ++i;
    }
    flush(patternLength);

    // Step 2: does the pattern hold the locale's own field order?
    bool orderMatches = true;
    if (orderCount > 0) {
        const LocaleItem &o = block->items[kItemDateOrder];
        orderMatches = o.length == 3 && sameFolded(o.text, order, 3);
    }
    const LocaleItem &language = block->items[kItemLanguage];
    const bool hebrew = language.length == 2 && sameFolded(language.text, u"he", 2);

    // Step 3: the text's tokens.
    Reader rd{block, text, textLength, {}, 0};
    int32_t b = 0;
    auto storeText = [&](int64_t start, int64_t end, int32_t cls) {
        if (rd.n < kMaxTokens)
            rd.tokens[rd.n++] = TextToken{static_cast<int32_t>(start), static_cast<int32_t>(end - start), cls, 0};
    };
    int64_t start = 0;
    int32_t cls = 0;
    // Once the list is full nothing further in the text can change the answer.
    for (int64_t cur = 0; cur < textLength && rd.n < kMaxTokens;) {
        const ZvChar c = text[cur];
        if (c == u' ') {
            if (start < cur) {
                storeText(start, cur, cls);
                ++b;
            }
            start = ++cur;
            continue;
        }
        const int32_t p = start < cur ? 1 : 0;
        int32_t d = 0;
        bool hit = false;
        for (int32_t k = 0; k < np; ++k) {
            if (ptok[k].kind != kLiteral) {
                ++d;
                continue;
            }
            if (d < rd.n + p - b) continue;
            if (d > rd.n + p + b) break;
            const int64_t len = ptok[k].length;
            const int64_t rest = textLength - cur;
            if (sameFolded(text + cur, pattern + ptok[k].start, len < rest ? len : rest)) {
                if (start < cur) storeText(start, cur, cls);
                cur += len;
                start = cur;
                hit = true;
                break;
            }
        }
        if (hit) continue;
        if ((c == u'.' || c == u'-' || c == u':' || c == u'/') && orderMatches && !hebrew) {
            if (start < cur) {
                storeText(start, cur, cls);
                ++b;
            }
            start = ++cur;
            continue;
        }
        const int32_t now = isAsciiDigit(c) ? 1 : 2;
        if (now != cls && start < cur) {
            storeText(start, cur, cls);
            ++b;
            start = cur;
        }
        cls = now;
        ++cur;
    }
    if (start < textLength && rd.n < kMaxTokens) storeText(start, textLength, cls);

    // Step 4: AM and PM, wherever they stand.
    bool amPmSeen = false, isPm = false;
    for (int32_t t = 0; t < rd.n; ++t) {
        if (rd.tokens[t].cls != 2) continue;
        if (rd.markAt(t, block->items[kItemAm])) {
            amPmSeen = true;
            isPm = false;
            break;
        }
        if (rd.markAt(t, block->items[kItemPm])) {
            amPmSeen = true;
            isPm = true;
            break;
        }
        const TextToken &tok = rd.tokens[t];
        if (tok.length == 2) {
            const ZvChar f = text[tok.start], s = text[tok.start + 1];
            if ((s == u'm' || s == u'M') && (f == u'a' || f == u'A' || f == u'p' || f == u'P')) {
                rd.tokens[t].used = 1;
                amPmSeen = true;
                isPm = f == u'p' || f == u'P';
            }
        }
    }

    // Step 5: the walk.
    int64_t year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    bool hourSeen = false, minuteSeen = false, secondSeen = false, weekdaySeen = false;
    int32_t t = -1, offset = 0;
    for (int32_t k = 0; k < np; ++k) {
        const PatternToken &pt = ptok[k];
        if (pt.kind == kLiteral) continue;
        if (offset == 0) {
            ++t;
            if (t < rd.n && rd.tokens[t].used) ++t;
            if (t >= rd.n) break;
        } else {
            if (t < 0 || t >= rd.n) return -1;
            if (rd.tokens[t].used) ++t;
            if (t >= rd.n) return -1;
        }
        const TextToken &tok = rd.tokens[t];
        const ZvChar letter = pattern[pt.start];
        switch (pt.kind) {
        case kYear: {
            if (tok.cls != 1) return -1;
            const int32_t rest = tok.length - offset;
            if (rest > 4) {
                const int32_t take = letter == u'y' ? 2 : 4;
                addDigits(text, tok, offset, take, &year);
                offset += take;
            } else {
                addDigits(text, tok, offset, rest, &year);
                offset = 0;
            }
            if (!orderMatches) {
                if (letter == u'y' && !(year < 100)) return -1;
                if (letter == u'Y' && !(year >= 1000)) return -1;
            }
            break;
        }
        case kMonth:
        case kDay: {
            int64_t &field = pt.kind == kMonth ? month : day;
            if (tok.cls == 1) {
                const int32_t rest = tok.length - offset;
                if (rest > 2) {
                    addDigits(text, tok, offset, 2, &field);
                    offset += 2;
                } else {
                    addDigits(text, tok, offset, rest, &field);
                    offset = 0;
                }
            } else if (pt.kind == kDay) {
                return -1;
            }
            if (pt.kind == kMonth) {
                if (month == 0) {
                    month = rd.lookup(&t, kItemMonthAbbr, 12);
                    if (month == 0 && tok.length >= 3) month = rd.lookup(&t, kItemMonthFull, 12);
                }
                if (month < 1 || month > 12) return -1;
            } else if (day < 1 || day > 31) {
                return -1;
            }
            break;
        }
        case kHour12:
        case kHour24:
        case kMinute:
        case kSecond: {
            if (tok.cls != 1) {
                if (pt.kind == kSecond) {
                    // The token stays for the next directive; inside a run of
                    // digits the cursor has not moved.
                    if (offset == 0) --t;
                    break;
                }
                return -1;
            }
            int64_t &field = pt.kind == kMinute ? minute : pt.kind == kSecond ? second : hour;
            addDigits(text, tok, 0, tok.length, &field);
            (pt.kind == kMinute ? minuteSeen : pt.kind == kSecond ? secondSeen : hourSeen) = true;
            break;
        }
        case kAmPm:
            if (offset == 0) --t;
            break;
        case kWeekday:
            if (tok.cls == 1) return -1;
            if (weekdaySeen) break;
            if (rd.lookup(&t, kItemWeekdayAbbr, 7) == 0 && rd.lookup(&t, kItemWeekdayFull, 7) == 0) return -1;
            weekdaySeen = true;
            break;
        default: // quarters and ignored directives eat their token
            break;
        }
    }
    if (offset != 0) return -1;

    // Step 6: the result.
    const bool dateComplete = month != 0 && year != 0 && day != 0;
    const bool timeSeen = hourSeen || minuteSeen || secondSeen;
    if (!dateComplete && !timeSeen) return 0;
    if (timeSeen) {
        if (amPmSeen && hour == 12) hour = 0;
        minute += second / 60;
        second %= 60;
        hour += minute / 60 + (isPm ? 12 : 0);
        minute %= 60;
        day += hour / 24;
        hour %= 24;
        const double time = static_cast<double>(second + 60 * (minute + 60 * hour));
        *outTime = dateComplete ? time : time + static_cast<double>(day) * 86400.0;
    }
    if (dateComplete) {
        double code = ymdToYearDay(static_cast<double>(year), static_cast<double>(month), static_cast<double>(day));
        if (!isMissing(code)) code = yearDayToDayCount(code);
        if (isMissing(code)) return -1;
        *outDate = code;
    }
    return timeSeen && !(hourSeen && minuteSeen && secondSeen) ? 2 : 0;
}

} // namespace zv
