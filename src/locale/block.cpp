// Building a locale block from the host's raw text table.
#include "locale/block.hpp"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "frame/frame.hpp"
#include "wide/ascii.hpp"
#include "wide/wide.hpp"

namespace zv {

namespace {

constexpr int kItems = ZV_LOCALE_TABLE_ITEMS;
constexpr int kTextUnits = ZV_ITEM_TEXT_UNITS;
constexpr int kEscapeBytes = 7; // <Uxxxx>

// An escape's digit; any other byte counts as 0.
int escapeDigit(uint8_t b) {
    const int v = hexDigitValue(b);
    return std::max<int64_t>(v, 0);
}

// True when the host encoding can show this one unit.
bool hostShows(HostTranscoder *t, ZvChar c) {
    if (!t) return true;
    unsigned char scratch[8];
    int64_t produced = 0;
    return t->ops->transcode(t, &c, sizeof c, scratch, sizeof scratch, &produced, 0) == 0;
}

// Bytes of host-encoded text for a wide text; what was produced counts
// whatever the status says. Without a transcoder a unit counts one.
uint32_t hostBytes(HostTranscoder *t, const ZvChar *text, int64_t units) {
    if (units <= 0) return 0;
    if (!t) return static_cast<uint32_t>(units);
    unsigned char scratch[kTextUnits];
    int64_t produced = 0;
    t->ops->transcode(t, text, units * 2, scratch, sizeof scratch, &produced, 0);
    produced = std::max<int64_t>(produced, 0);
    return static_cast<uint32_t>(produced);
}

void decodeItem(LocaleItem &item, int k, const uint8_t *record, HostTranscoder *wideFromText,
                HostTranscoder *host) {
    item.id = static_cast<uint32_t>(k);
    int n = record[0] | (record[1] << 8);
    n = std::min<int64_t>(n, kTextUnits);
    const uint8_t *src = record + 2;

    ZvChar work[kTextUnits] = {};
    if (n > 0) {
        int64_t produced = 0;
        if (wideFromText)
            wideFromText->ops->transcode(wideFromText, src, n, work, sizeof work, &produced, 0);
        else
            for (int i = 0; i < n; ++i) work[i] = src[i];
    }

    // Room for the text and its terminating zero.
    constexpr int kLast = kTextUnits - 1;
    int i = 0, o = 0;
    while (i < n && o < kLast) {
        if (src[i] != '<' || n - i < kEscapeBytes || (src[i + 1] != 'U' && src[i + 1] != 'u')) {
            item.text[o++] = work[i++];
            continue;
        }
        const ZvChar c = static_cast<ZvChar>((escapeDigit(src[i + 2]) << 12) | (escapeDigit(src[i + 3]) << 8) |
                                             (escapeDigit(src[i + 4]) << 4) | escapeDigit(src[i + 5]));
        i += kEscapeBytes;
        if (c == 0x00A4) { // the generic currency sign stands for the currency
            item.text[o++] = 1;
            continue;
        }
        item.text[o] = c;
        if (hostShows(host, c)) {
            ++o;
            continue;
        }
        if (c == 0x00A0) {
            item.text[o++] = u' ';
            continue;
        }
        char digits[8];
        int d = 0;
        for (unsigned v = c; v > 0 || d == 0; v /= 10) digits[d++] = static_cast<char>('0' + v % 10);
        if (o + d + 3 < kTextUnits) {
            item.text[o++] = u'&';
            item.text[o++] = u'#';
            while (d > 0) item.text[o++] = static_cast<ZvChar>(digits[--d]);
            item.text[o++] = u';';
        } else {
            item.text[o++] = u'*';
        }
    }
    item.length = o;
    item.text[o] = 0;
}

// Room of a context's symbol, less its terminating zero, and of its
// two-unit marks.
constexpr int kSymbolRoom = sizeof(NumberContext::symbol) / sizeof(ZvChar) - 1;
constexpr int kMarkRoom = sizeof(NumberContext::decimalSeparator) / sizeof(ZvChar);
constexpr int kGroupSizes = sizeof(NumberContext::groupSizes) / sizeof(int32_t);
// A symbol holding "&#" stands for a character the host can't show once it
// is longer than this.
constexpr int64_t kKeptReferenceUnits = 4;
// The fixed marks of NLNUMI and NLPCTI.
constexpr int32_t kFixedGroupSize = 3;

// Up to `room` units of an item into a zero-padded field.
void copyUnits(ZvChar *to, int room, const LocaleItem &item) {
    for (int i = 0; i < room; ++i) to[i] = i < item.length ? item.text[i] : 0;
}

int32_t decimalValue(const LocaleItem &item) {
    int32_t v = 0;
    for (int64_t i = 0; i < item.length; ++i) {
        const ZvChar c = item.text[i];
        if (!isAsciiDigit(c)) break;
        if (v < 100000000) v = v * 10 + (c - u'0');
    }
    return v;
}

void groupSizesOf(NumberContext &ctx, const LocaleItem &item) {
    for (int64_t i = 0; i < item.length && i < kGroupSizes; ++i) ctx.groupSizes[i] = item.text[i] - u'0';
}

// The six placement figures from the items that start at `first`.
void placements(NumberContext &ctx, const LocaleItem *items, int first) {
    ctx.positiveSymbolPrecedes = decimalValue(items[first + kPositiveSymbolPrecedes]);
    ctx.positiveSymbolSpaced = decimalValue(items[first + kPositiveSymbolSpaced]);
    ctx.positiveSignPosition = decimalValue(items[first + kPositiveSignPosition]);
    ctx.negativeSymbolPrecedes = decimalValue(items[first + kNegativeSymbolPrecedes]);
    ctx.negativeSymbolSpaced = decimalValue(items[first + kNegativeSymbolSpaced]);
    ctx.negativeSignPosition = decimalValue(items[first + kNegativeSignPosition]);
}

// Separators and group sizes from the locale's items.
void localeSeparators(NumberContext &ctx, const LocaleItem *items, int decimal, int group, int grouping) {
    copyUnits(ctx.decimalSeparator, kMarkRoom, items[decimal]);
    copyUnits(ctx.groupSeparator, kMarkRoom, items[group]);
    groupSizesOf(ctx, items[grouping]);
}

void fixedSeparators(NumberContext &ctx) {
    ctx.decimalSeparator[0] = u'.';
    ctx.groupSeparator[0] = u',';
    ctx.groupSizes[0] = kFixedGroupSize;
}

void signs(NumberContext &ctx, const LocaleItem *items, int positive, int negative) {
    copyUnits(ctx.positiveSign, kMarkRoom, items[positive]);
    copyUnits(ctx.negativeSign, kMarkRoom, items[negative]);
}

// The percent forms: '%' behind the number, the sign in front.
void percentPlacements(NumberContext &ctx) {
    ctx.symbol[0] = u'%';
    ctx.positiveSymbolPrecedes = 0;
    ctx.positiveSymbolSpaced = 0;
    ctx.positiveSignPosition = 1;
    ctx.negativeSymbolPrecedes = 0;
    ctx.negativeSymbolSpaced = 0;
    ctx.negativeSignPosition = 1;
}

bool holdsNumericReference(const LocaleItem &item) {
    for (int64_t i = 0; i + 1 < item.length; ++i)
        if (item.text[i] == u'&' && item.text[i + 1] == u'#') return true;
    return false;
}

// The items whose contexts stand in the block, in the block's order.
constexpr int kContextItems[] = {kItemMoneyContext,       kItemIntlMoneyContext, kItemNumberContext,
                                 kItemFixedNumberContext, kItemPercentContext,   kItemFixedPercentContext};

void fillContexts(LocaleBlock &b) {
    const LocaleItem *it = b.items;
    NumberContext &money = b.contexts[0], &intlMoney = b.contexts[1];
    NumberContext &number = b.contexts[2], &fixedNumber = b.contexts[3];
    NumberContext &percent = b.contexts[4], &fixedPercent = b.contexts[5];

    // Local money: the local symbol, unless the host can't show it.
    const LocaleItem &local = it[kItemCurrencySymbol];
    copyUnits(money.symbol, kSymbolRoom, local);
    if (local.length > kKeptReferenceUnits && holdsNumericReference(local)) {
        std::memset(money.symbol, 0, sizeof money.symbol);
        copyUnits(money.symbol, kSymbolRoom, it[kItemIntlCurrencySymbol]);
    }
    copyUnits(intlMoney.symbol, kSymbolRoom, it[kItemIntlCurrencySymbol]);
    for (NumberContext *m : {&money, &intlMoney}) {
        localeSeparators(*m, it, kItemMoneyDecimalSeparator, kItemMoneyGroupSeparator, kItemMoneyGrouping);
        signs(*m, it, kItemMoneyPositiveSign, kItemMoneyNegativeSign);
        placements(*m, it, kItemMoneyPlacements);
    }
    money.fractionDigits = decimalValue(it[kItemFractionDigits]);
    intlMoney.fractionDigits = decimalValue(it[kItemIntlFractionDigits]);

    // NLNUM and NLPCT by the locale's marks, NLNUMI and NLPCTI by fixed ones.
    for (NumberContext *n : {&number, &percent})
        localeSeparators(*n, it, kItemDecimalSeparator, kItemGroupSeparator, kItemGrouping);
    for (NumberContext *n : {&fixedNumber, &fixedPercent}) fixedSeparators(*n);
    for (NumberContext *n : {&number, &fixedNumber, &percent, &fixedPercent})
        signs(*n, it, kItemPositiveSign, kItemNegativeSign);
    placements(number, it, kItemNumberPlacements);
    placements(fixedNumber, it, kItemNumberPlacements);
    percentPlacements(percent);
    percentPlacements(fixedPercent);

    static_assert(std::size(kContextItems) == std::size(LocaleBlock{}.contexts));
    for (size_t n = 0; n < std::size(kContextItems); ++n) b.items[kContextItems[n]].numberContext = &b.contexts[n];
}

void nameWidths(LocaleBlock &b, HostTranscoder *t) {
    struct Family {
        int first[4];
        int count;
    };
    static constexpr Family kFamilies[] = {
        {{kItemMonthAbbr, kItemMonthFull, kItemMonthAbbrOther, kItemMonthFullOther}, 12},
        {{kItemWeekdayAbbr, kItemWeekdayFull, kItemWeekdayAbbrOther, kItemWeekdayFullOther}, 7},
        {{kItemQuarterAbbr, kItemQuarterFull, kItemQuarterAbbrOther, kItemQuarterFullOther}, 4},
    };
    for (const Family &f : kFamilies)
        for (int list : f.first) {
            uint32_t widest = 0;
            for (int k = list; k < list + f.count; ++k) {
                const uint32_t w = hostBytes(t, b.items[k].text, b.items[k].length);
                if (w > widest) widest = w;
            }
            for (int k = list; k < list + f.count; ++k) b.items[k].maxWidth = widest;
        }
    const uint32_t am = hostBytes(t, b.items[kItemAm].text, b.items[kItemAm].length);
    const uint32_t pm = hostBytes(t, b.items[kItemPm].text, b.items[kItemPm].length);
    b.items[kItemAm].maxWidth = b.items[kItemPm].maxWidth = std::max(am, pm);
}

// What one directive adds to a pattern's width.
uint32_t directiveWidth(const LocaleBlock &b, uint8_t d, bool other) {
    auto w = [&](int plain, int alt) { return b.items[other ? alt : plain].maxWidth; };
    switch (d) {
    case 'A': case 'F': return w(kItemWeekdayFull, kItemWeekdayFullOther);
    case 'B': case 'C': return w(kItemMonthFull, kItemMonthFullOther);
    case 'a': case 'f': return w(kItemWeekdayAbbr, kItemWeekdayAbbrOther);
    case 'b': return w(kItemMonthAbbr, kItemMonthAbbrOther);
    case 'Q': return w(kItemQuarterFull, kItemQuarterFullOther);
    case 'q': return w(kItemQuarterAbbr, kItemQuarterAbbrOther);
    case 'p': return b.items[kItemAm].maxWidth;
    case 'G': case 'Y': return 4;
    case 'H': case 'I': case 'M': case 'S': case 'U': case 'V': case 'W': case 'd': case 'e':
    case 'g': case 'k': case 'l': case 'm': case 'o': case 's': case 'y': return 2;
    case 'T': return 8;
    case 'Z': case 'j': return 3;
    case 'u': case 'w': return 1;
    case 'z': return 5;
    default: return 0;
    }
}

uint32_t patternWidth(const LocaleBlock &b, const LocaleItem &item, HostTranscoder *t) {
    // %x and %X stand for the date and time patterns, one level deep.
    ZvChar work[kTextUnits];
    int n = 0;
    auto put = [&](ZvChar c) {
        if (n < kTextUnits) work[n++] = c;
    };
    for (int64_t i = 0; i < item.length; ++i) {
        const ZvChar c = item.text[i];
        if (c == u'%' && i + 1 < item.length) {
            // A pair goes whole: "%%x" is a percent sign and a plain x.
            const ZvChar next = item.text[++i];
            if (next == u'x' || next == u'X') {
                const LocaleItem &with = b.items[next == u'x' ? kItemDate : kItemTime];
                for (int64_t k = 0; k < with.length; ++k) put(with.text[k]);
            } else {
                put(c);
                put(next);
            }
        } else {
            put(c);
        }
    }

    unsigned char bytes[kTextUnits];
    int64_t produced = 0;
    if (t) {
        t->ops->transcode(t, work, int64_t(n) * 2, bytes, sizeof bytes, &produced, 0);
        produced = std::max<int64_t>(produced, 0);
        if (produced > int64_t(sizeof bytes)) produced = sizeof bytes;
    } else {
        for (int i = 0; i < n; ++i) bytes[i] = work[i] < 0x100 ? static_cast<unsigned char>(work[i]) : '?';
        produced = n;
    }

    uint32_t width = 0;
    for (int64_t i = 0; i < produced; ++i) {
        if (bytes[i] != '%') {
            ++width;
            continue;
        }
        if (++i >= produced) break;
        bool other = false;
        if (bytes[i] == '#') {
            other = true;
            if (++i >= produced) break;
        }
        width += directiveWidth(b, bytes[i], other);
    }
    return width;
}

} // namespace

int32_t buildLocaleBlock(FormatCall *call, ExtensionInstance *instance) {
    if (!call->localeBlock) {
        HostPool *pool = call->services ? call->services->formatPool : nullptr;
        void *memory = pool ? pool->ops->poolAlloc(pool, sizeof(LocaleBlock), ZV_ALLOC_ZEROED) : nullptr;
        if (!memory) return ZV_NO_MEMORY;
        call->localeBlock = static_cast<LocaleBlock *>(memory);
    }
    LocaleBlock &b = *call->localeBlock;

    HostLocale *locale = call->locale;
    if (!locale) return kNoLocale;
    const uint8_t *table = nullptr;
    const int32_t status = locale->ops->localeTextTable(locale, 0, &table);
    if (status != 0) return status;
    if (!table) return kNoLocale;

    HostTranscoder *wideFromText = instance ? instance->wideFromLocaleText : nullptr;
    for (int k = 0; k < kItems; ++k)
        decodeItem(b.items[k], k,
                   table + ZV_LOCALE_TABLE_OFFSET + size_t(k) * ZV_LOCALE_RECORD_SIZE, wideFromText,
                   call->transcoder);

    fillContexts(b);
    nameWidths(b, call->transcoder);
    for (int k = kItemFirstPattern; k <= kItemLastPattern; ++k) b.items[k].maxWidth = patternWidth(b, b.items[k], call->transcoder);
    return 0;
}

} // namespace zv
