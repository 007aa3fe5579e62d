// @NLNUM, @NLNUMI, @NLMNY, @NLMNYI, @NLPCT and @NLPCTI: the front that bounds
// and checks the text, and the three readers that translate a locale's marks
// into the plain form for the plain readers.
#include <algorithm>
#include <cstring>

#include "frame/frame.hpp"
#include "locale/block.hpp"
#include "numread/numread.hpp"
#include "numread/work.hpp"
#include "wide/ascii.hpp"
#include "wide/wide.hpp"

namespace zv {

namespace {


// The reader's own copy of the text, at most kReadUnits units.
struct ReadText {
    ZvChar c[kReadUnits + 1] = {};
    int64_t n = 0;

    void take(const FormatCall *call, int64_t length) {
        length = call->input ? std::max<int64_t>(std::min<int64_t>({length, call->width, kReadUnits}), 0) : 0;
        n = length;
        // Unit by unit: a block copy here would be a string move, whose
        // stores the reads that follow at once would have to wait for.
        const auto *in = static_cast<const ZvChar *>(call->input);
        for (int64_t i = 0; i < n; ++i) c[i] = in[i];
    }
    void dropFront(int64_t count) {
        for (int64_t i = count; i < n; ++i) c[i - count] = c[i];
        n -= count;
    }
    void putFront(ZvChar u) {
        if (n >= kReadUnits) --n; // room for the sign; the last unit gives way
        for (int64_t i = n; i > 0; --i) c[i] = c[i - 1];
        c[0] = u;
        ++n;
    }
    void removeAll(ZvChar u) { n = removeCharacters(c, n, &u, 1); }
    // A mark of at least one unit at either end.
    bool startsWith(const ZvChar *mark, int64_t length) const {
        return n >= length && std::memcmp(c, mark, size_t(length) * sizeof(ZvChar)) == 0;
    }
    bool endsWith(const ZvChar *mark, int64_t length) const {
        return n >= length &&
               std::memcmp(c + n - length, mark, size_t(length) * sizeof(ZvChar)) == 0;
    }
};

// Sign forms at the ends of the text only: the sign at the start or else at
// the end, or under position 0 a pair of parentheses round the whole. True
// when something was dropped.
bool dropEndForm(ReadText &text, int32_t position, const ZvChar *sign) {
    if (position != 0) {
        if (sign[0] == 0) return false;
        const int64_t length = markUnits(sign);
        if (text.startsWith(sign, length)) {
            text.dropFront(length);
            return true;
        }
        if (text.endsWith(sign, length)) {
            text.n -= length;
            return true;
        }
        return false;
    }
    if (text.n >= 2 && text.c[0] == u'(' && text.c[text.n - 1] == u')') {
        --text.n;
        text.dropFront(1);
        return true;
    }
    return false;
}

// Sign forms anywhere in the text: every unit of the sign (a mark of
// direction with its hyphen goes whole), or under position 0 every
// parenthesis. True when the text shrank.
bool removeForm(ReadText &text, int32_t position, const ZvChar *sign) {
    const int64_t before = text.n;
    if (position != 0) {
        if (sign[0] == 0) return false;
        text.n = removeCharacters(text.c, text.n, sign, markUnits(sign));
    } else {
        text.removeAll(u'(');
        text.removeAll(u')');
    }
    return text.n < before;
}

// The negative sign taken out as removeForm takes it, and a "-" put in
// front. A sign of one unit that stands in front and nowhere else, the
// common case, turns into the "-" where it stands: the same text, without
// moving every unit twice. True when a sign was found.
bool takeNegative(ReadText &text, int32_t position, const ZvChar *sign) {
    if (position != 0 && markUnits(sign) == 1 && text.n > 0 && text.c[0] == sign[0] &&
        findChar(text.c + 1, text.n - 1, sign[0]) < 0) {
        text.c[0] = u'-';
        return true;
    }
    if (!removeForm(text, position, sign)) return false;
    text.putFront(u'-');
    return true;
}

// Runs a plain reader on the reader's text with `input`, `inputLength`,
// `width` and `decimals` set for it, and puts them back.
int32_t runPlain(FormatCall *call, const ReadText &text, int32_t (*plain)(FormatCall *)) {
    const void *input = call->input;
    const int32_t inputLength = call->inputLength;
    const int32_t width = call->width;
    const int32_t decimals = call->decimals;
    call->input = text.c;
    call->inputLength = static_cast<int32_t>(text.n);
    call->width = static_cast<int32_t>(text.n);
    if (call->decimals != 0 && findChar(text.c, text.n, u'.') < 0) call->decimals = 0;
    const int32_t status = plain(call);
    call->input = input;
    call->inputLength = inputLength;
    call->width = width;
    call->decimals = decimals;
    return status;
}

// The count of digits behind the number's own decimal separator, when the
// symbol takes that separator with it on removal; 0 otherwise.
int64_t digitsBehindPoint(const ReadText &text, const NumberContext &own, const NumberContext &other) {
    auto symbolHoldsPoint = [](const NumberContext &context) {
        const ZvChar point = context.decimalSeparator[0];
        return point != 0 && findChar(context.symbol, symbolUnits(context), point) > 0;
    };
    const ZvChar point = own.decimalSeparator[0];
    if (!symbolHoldsPoint(other) && !symbolHoldsPoint(own)) return 0;
    // A separator at the front alone doesn't call for the scan; one further in does,
    // and the scan may still end at a separator at the front (".5 kr.").
    if (point == 0 || text.n < 2 || findChar(text.c + 1, text.n - 1, point) < 0) return 0;
    int64_t count = 0;
    for (int64_t i = text.n - 1; i >= 0; --i) {
        const ZvChar u = text.c[i];
        if (isAsciiDigit(u)) {
            ++count;
            continue;
        }
        if (u == point && count > 0) {
            if (i == 0) return count;
            const ZvChar before = text.c[i - 1];
            auto lastOf = [&](const NumberContext &context) {
                const int64_t n = symbolUnits(context);
                return n > 0 && context.symbol[n - 1] == before;
            };
            if (isAsciiDigit(before) || before == u' ' || lastOf(own) || lastOf(other)) return count;
            return 0;
        }
        count = 0;
    }
    return 0;
}

using LocaleReader = int32_t (*)(int64_t, LocaleBlock *, int, FormatCall *);
using PlainReader = int32_t (*)(FormatCall *);

// One informat of the family: the item whose context reads the text, the
// locale reader, and the plain reader that finishes it or takes over.
struct NumberReadRow {
    int item;
    LocaleReader reader;
    PlainReader plain;
};

// The units that come back when `units` units of the text go to the host
// encoding with `width` bytes of room and back to UTF-16; -1 when the way
// back fails.
int64_t roundTrip(FormatCall *call, int64_t units) {
    HostTranscoder *out = call->transcoder;
    HostAnchor *anchor = hostAnchor;
    if (!anchor)
        if (ExtensionInstance *instance = findInstance(call)) anchor = instance->anchor;
    NlsServices *nls = anchor ? anchor->nlsServices : nullptr;
    if (!out || !out->ops || !out->ops->transcode || !nls || !nls->ops) return -1;

    unsigned char bytes[256];
    int64_t capacity = call->width;
    if (capacity > int64_t(sizeof bytes)) capacity = sizeof bytes;
    capacity = std::max<int64_t>(capacity, 0);
    int64_t produced = 0;
    out->ops->transcode(out, call->input, units * 2, bytes, capacity, &produced, 0);
    produced = std::max<int64_t>(produced, 0);
    if (produced > capacity) produced = capacity;

    // The way back: the host's transcoder for the encoding, which reads it into
    // UTF-16; one made for the purpose if the host gives another kind.
    const uint32_t encoding = out->encodingId;
    HostTranscoder *back = nullptr;
    if (nls->ops->transcoderForEncoding) {
        back = nls->ops->transcoderForEncoding(nls, encoding, 0, 0);
        if (back && back->encodingId != ZV_ENCODING_UTF16) {
            if (back->ops && back->ops->transcoderRelease) back->ops->transcoderRelease(back);
            back = nullptr;
        }
    }
    if (!back && nls->ops->createTranscoder)
        back = nls->ops->createTranscoder(nls, encoding, ZV_ENCODING_UTF16, 0, 0);
    if (!back || !back->ops || !back->ops->transcode) return -1;

    ZvChar wide[32];
    int64_t came = 0;
    const int32_t status = back->ops->transcode(back, bytes, produced, wide, sizeof wide, &came, 0);
    if (back->ops->transcoderRelease) back->ops->transcoderRelease(back);
    if (status != 0) return -1;
    return std::max<int64_t>(came, 0) / 2;
}

// What all six informats do: bound and trim the text, find the instance,
// check the limits, measure the text in host bytes, make sure of a locale
// block, and run the locale reader.
int32_t readFront(FormatCall *call, const NumberReadRow &row) {
    int64_t n = std::min(call->inputLength, call->fieldLimit);
    n = call->input ? std::max<int64_t>(n, 0) : 0;
    n = lengthWithoutTrailingBlanks(static_cast<const ZvChar *>(call->input), n);
    if (n <= 0) return ZV_UNREADABLE;

    // The plain route reads no further than the front allows.
    auto plainRoute = [&]() {
        const int32_t inputLength = call->inputLength;
        call->inputLength = static_cast<int32_t>(n);
        const int32_t status = row.plain(call);
        call->inputLength = inputLength;
        return status;
    };

    ExtensionInstance *instance = findInstance(call);
    if (!instance) return plainRoute();
    if (const int32_t refused = checkLimits(call, kNumberLimits)) return refused;

    const int64_t came = roundTrip(call, n);
    if (came < 0) return plainRoute();
    if (came < n) n = came;

    if (!call->localeBlock && buildLocaleBlock(call, instance) != 0) return plainRoute();
    if (!call->localeBlock) return plainRoute();
    return row.reader(n, call->localeBlock, row.item, call) == 0 ? ZV_OK : ZV_UNREADABLE;
}

} // namespace

int32_t translateSeparators(ZvChar *text, int64_t *length, const NumberContext &context) {
    const ZvChar *point = context.decimalSeparator;
    const ZvChar *group = context.groupSeparator;
    const int64_t groupLength = markUnits(group);
    int64_t n = *length;
    if (group[0] != u',') {
        if (groupLength == 2) {
            n = translateGroupPairs(text, n, group, point[0]);
        } else {
            if (n > 0 && text[0] == u'\'' && text[n - 1] == u'\'') return -1;
            // The marks are read once: the compiler can't tell that the text doesn't overlap them.
            const bool commaPoint = point[0] == u',', oneUnitGroup = groupLength == 1;
            const ZvChar groupMark = group[0];
            for (int64_t i = 0; i < n; ++i) {
                const ZvChar u = text[i];
                if (commaPoint && u == u',') text[i] = u'.';
                else if (oneUnitGroup && u == groupMark) text[i] = u',';
            }
        }
    }
    if (const ZvChar p = point[0]; p != 0 && p != u',' && p != u'.')
        for (int64_t i = 0; i < n; ++i)
            if (text[i] == p) text[i] = u'.';
    *length = n;
    return 0;
}

int32_t readLocaleNumber(int64_t length, LocaleBlock *block, int item, FormatCall *call) {
    const NumberContext &context = *contextOf(block, item);
    ReadText text;
    text.take(call, length);
    if (text.n >= 2) {
        if (translateSeparators(text.c, &text.n, context) != 0) return -1;
        if (dropEndForm(text, context.negativeSignPosition, context.negativeSign))
            text.putFront(u'-');
        else
            dropEndForm(text, context.positiveSignPosition, context.positiveSign);
    }
    return runPlain(call, text, readPlainNumber);
}

int32_t readLocaleMoney(int64_t length, LocaleBlock *block, int item, FormatCall *call) {
    const NumberContext &own = *contextOf(block, item);
    const NumberContext &other =
        *contextOf(block, item == kItemMoneyContext ? kItemIntlMoneyContext : kItemMoneyContext);
    ReadText text;
    text.take(call, length);

    const int64_t shifted = digitsBehindPoint(text, own, other);

    // An exponent's E stays, whatever letters the symbols hold.
    const int64_t e = text.n > 1 ? findChar(text.c + 1, text.n - 1, u'E') : -1;
    int64_t hashesBefore = -1;
    if (e >= 0) {
        hashesBefore = 0;
        for (int64_t i = 0; i <= e; ++i) hashesBefore += text.c[i] == u'#';
        text.c[e + 1] = u'#';
    }
    // Every unit of either symbol goes, in one pass.
    ZvChar symbols[2 * kSymbolRoom];
    const int64_t ownUnits = symbolUnits(own);
    std::copy_n(own.symbol, ownUnits, symbols);
    const int64_t bothUnits = ownUnits + symbolUnits(other);
    std::copy(other.symbol, other.symbol + (bothUnits - ownUnits), symbols + ownUnits);
    text.n = removeCharacters(text.c, text.n, symbols, bothUnits);
    if (hashesBefore >= 0) {
        for (int64_t i = 0, seen = 0; i < text.n; ++i) {
            if (text.c[i] != u'#') continue;
            if (seen++ == hashesBefore) {
                text.c[i] = u'E';
                break;
            }
        }
    }

    if (translateSeparators(text.c, &text.n, own) != 0) return -1;
    if (!takeNegative(text, own.negativeSignPosition, own.negativeSign))
        removeForm(text, own.positiveSignPosition, own.positiveSign);

    if (text.n < 1) {
        storeValue(call, missingValue());
        return 0;
    }
    const int32_t status = runPlain(call, text, readPlainNumber);
    if (shifted > 0 && call->output) {
        double value;
        std::memcpy(&value, call->output, sizeof value);
        if (!isMissing(value)) {
            for (int64_t i = 0; i < shifted; ++i) value /= 10.0;
            storeValue(call, value);
        }
    }
    return status;
}

int32_t readLocalePercent(int64_t length, LocaleBlock *block, int item, FormatCall *call) {
    const NumberContext &context = *contextOf(block, item);
    ReadText text;
    text.take(call, length);
    if (translateSeparators(text.c, &text.n, context) != 0) return -1;
    if (removeForm(text, context.negativeSignPosition, context.negativeSign)) {
        text.removeAll(u' ');
        text.putFront(u'-');
    } else {
        removeForm(text, context.positiveSignPosition, context.positiveSign);
    }
    return runPlain(call, text, readPlainPercent);
}

namespace {

constexpr NumberReadRow kReadNlNum{kItemNumberContext, readLocaleNumber, readPlainNumber};
constexpr NumberReadRow kReadNlNumI{kItemFixedNumberContext, readLocaleNumber, readPlainNumber};
constexpr NumberReadRow kReadNlMny{kItemMoneyContext, readLocaleMoney, readPlainNumber};
constexpr NumberReadRow kReadNlMnyI{kItemIntlMoneyContext, readLocaleMoney, readPlainNumber};
constexpr NumberReadRow kReadNlPct{kItemPercentContext, readLocalePercent, readPlainPercent};
constexpr NumberReadRow kReadNlPctI{kItemFixedPercentContext, readLocalePercent, readPlainPercent};

} // namespace

int32_t readNlNum(FormatCall *call, void *) { return readFront(call, kReadNlNum); }
int32_t readNlNumI(FormatCall *call, void *) { return readFront(call, kReadNlNumI); }
int32_t readNlMny(FormatCall *call, void *) { return readFront(call, kReadNlMny); }
int32_t readNlMnyI(FormatCall *call, void *) { return readFront(call, kReadNlMnyI); }
int32_t readNlPct(FormatCall *call, void *) { return readFront(call, kReadNlPct); }
int32_t readNlPctI(FormatCall *call, void *) { return readFront(call, kReadNlPctI); }

} // namespace zv
