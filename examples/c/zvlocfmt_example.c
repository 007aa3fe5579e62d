/*
 * A small host for zvlocfmt, in C11.
 *
 * The module asks its host for everything: memory, text conversion, the
 * locale's texts, number digits, the time zone. This host gives it just
 * enough: pools on malloc, UTF-8 as the host encoding, one locale (en_US)
 * whose 189 items are written out below, digits from snprintf and UTC as the
 * time zone. Then it loads the module, runs a few formats and one informat
 * and prints what they gave.
 *
 * Every host object is a record whose first member is the object the module
 * sees; an operation casts the pointer it gets back to the whole record.
 */
#include <errno.h>
#include <math.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include <zvlocfmt/zvlocfmt.h>

/* Encoding ids are the host's choice, except the module's own 25 and 62. */
#define ENCODING_UTF8 20u
/* Statuses of this host's operations. */
#define CANNOT_SHOW ((int32_t)0x803fe80au) /* text with no form in the target encoding */
#define BAD_REQUEST ((int32_t)0x803fe80cu) /* arguments the operation does not take */
#define NOT_PLAIN ((int32_t)0x803fe816u)   /* formatNumber: not the form asked for */
#define UNGROUPED ((int32_t)0x803fe85bu)   /* formatNumber: plain, as groups did not fit */
#define UNREADABLE ((int32_t)0x803fe80fu)  /* parseDouble, parseInteger */

/* ---- pools: malloc'd blocks on a list, so that poolDestroy frees them all */

typedef struct Block {
    struct Block *prev, *next;
} Block;
_Static_assert(sizeof(Block) % _Alignof(max_align_t) == 0, "blocks stay aligned");

typedef struct {
    HostPool base;
    Block blocks; /* the list's head */
} Pool;

static void *poolAlloc(HostPool *self, uint64_t bytes, uint32_t flags) {
    Pool *pool = (Pool *)self;
    if (bytes > SIZE_MAX / 2) return NULL;
    Block *b = (flags & ZV_ALLOC_ZEROED) ? calloc(1, sizeof(Block) + bytes)
                                         : malloc(sizeof(Block) + bytes);
    if (!b) return NULL;
    b->prev = &pool->blocks;
    b->next = pool->blocks.next;
    b->next->prev = b;
    pool->blocks.next = b;
    return b + 1;
}

static void poolFree(HostPool *self, void *block) {
    (void)self;
    if (!block) return;
    Block *b = (Block *)block - 1;
    b->prev->next = b->next;
    b->next->prev = b->prev;
    free(b);
}

static void poolDestroy(HostPool *self) {
    Pool *pool = (Pool *)self;
    while (pool->blocks.next != &pool->blocks) poolFree(self, pool->blocks.next + 1);
    free(pool);
}

static const HostPoolOps poolOps = {poolAlloc, poolFree, poolDestroy};

static HostPool *newPool(void) {
    Pool *pool = malloc(sizeof *pool);
    if (!pool) return NULL;
    pool->base.ops = &poolOps;
    pool->blocks.prev = pool->blocks.next = &pool->blocks;
    return &pool->base;
}

/* ---- transcoders: locale text (62) and UTF-8 to and from UTF-16 (25) ----
 * Sizes are in bytes. A target that is too small gets whole characters and
 * the answer ZV_TARGET_TOO_SMALL. */

static uint32_t unitAt(const uint8_t *p, int64_t i) { return p[i] | (uint32_t)p[i + 1] << 8; }

/* One character of UTF-16 at p[*i]; *i moves past it. A lone surrogate gives
 * 0xFFFFFFFF. */
static uint32_t nextUtf16(const uint8_t *p, int64_t bytes, int64_t *i) {
    uint32_t c = unitAt(p, *i);
    *i += 2;
    if (c < 0xD800 || c > 0xDFFF) return c;
    if (c > 0xDBFF || *i + 1 >= bytes) return 0xFFFFFFFFu;
    uint32_t low = unitAt(p, *i);
    if (low < 0xDC00 || low > 0xDFFF) return 0xFFFFFFFFu;
    *i += 2;
    return 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
}

/* One character of UTF-8 at p[*i]; *i moves past it. Bad UTF-8 gives
 * 0xFFFFFFFF. */
static uint32_t nextUtf8(const uint8_t *p, int64_t bytes, int64_t *i) {
    static const uint32_t least[4] = {0, 0x80, 0x800, 0x10000};
    uint32_t c = p[(*i)++];
    int more = c < 0x80 ? 0 : c >= 0xC2 && c < 0xE0 ? 1 : c >= 0xE0 && c < 0xF0 ? 2 : c >= 0xF0 && c < 0xF5 ? 3 : -1;
    if (more < 0) return 0xFFFFFFFFu;
    c &= 0x7Fu >> more;
    for (int k = 0; k < more; ++k, ++*i) {
        if (*i >= bytes || (p[*i] & 0xC0) != 0x80) return 0xFFFFFFFFu;
        c = c << 6 | (p[*i] & 0x3F);
    }
    if (c < least[more] || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) return 0xFFFFFFFFu;
    return c;
}

static int putUtf8(uint8_t *out, uint32_t c) {
    if (c < 0x80) return out[0] = (uint8_t)c, 1;
    if (c < 0x800) return out[0] = (uint8_t)(0xC0 | c >> 6), out[1] = (uint8_t)(0x80 | (c & 0x3F)), 2;
    if (c < 0x10000) {
        out[0] = (uint8_t)(0xE0 | c >> 12), out[1] = (uint8_t)(0x80 | (c >> 6 & 0x3F));
        return out[2] = (uint8_t)(0x80 | (c & 0x3F)), 3;
    }
    out[0] = (uint8_t)(0xF0 | c >> 18), out[1] = (uint8_t)(0x80 | (c >> 12 & 0x3F));
    out[2] = (uint8_t)(0x80 | (c >> 6 & 0x3F)), out[3] = (uint8_t)(0x80 | (c & 0x3F));
    return 4;
}

static int putUtf16(uint8_t *out, uint32_t c) {
    if (c >= 0x10000) {
        putUtf16(out, 0xD800 + ((c - 0x10000) >> 10));
        putUtf16(out + 2, 0xDC00 + (c & 0x3FF));
        return 4;
    }
    out[0] = (uint8_t)c, out[1] = (uint8_t)(c >> 8);
    return 2;
}

static int32_t transcode(HostTranscoder *self, const void *source, int64_t bytes, void *target,
                         int64_t capacity, int64_t *produced, int32_t zero) {
    (void)zero;
    const uint8_t *in = source;
    uint8_t *out = target, one[4];
    int64_t i = 0, n = 0;
    int32_t status = 0;
    while (i < bytes) {
        uint32_t c;
        if (self->sourceEncodingId == ZV_ENCODING_LOCALE_TEXT) c = in[i++]; /* byte b is U+00bb */
        else if (self->sourceEncodingId == ENCODING_UTF8) c = nextUtf8(in, bytes, &i);
        else if (i + 1 < bytes) c = nextUtf16(in, bytes, &i);
        else break; /* half a unit */
        if (c == 0xFFFFFFFFu) {
            status = CANNOT_SHOW;
            break;
        }
        int length = self->encodingId == ENCODING_UTF8 ? putUtf8(one, c) : putUtf16(one, c);
        if (n + length > capacity) {
            status = ZV_TARGET_TOO_SMALL;
            break;
        }
        memcpy(out + n, one, (size_t)length);
        n += length;
    }
    if (produced) *produced = n;
    return status;
}

static void transcoderRelease(HostTranscoder *self) { free(self); }

static const HostTranscoderOps transcoderOps = {transcode, transcoderRelease};

static HostTranscoder *newTranscoder(uint32_t from, uint32_t to) {
    int fromKnown = from == ZV_ENCODING_UTF16 || from == ZV_ENCODING_LOCALE_TEXT || from == ENCODING_UTF8;
    int toKnown = to == ZV_ENCODING_UTF16 || to == ENCODING_UTF8;
    if (!fromKnown || !toKnown || (from != ZV_ENCODING_UTF16 && to != ZV_ENCODING_UTF16)) return NULL;
    HostTranscoder *t = malloc(sizeof *t);
    if (!t) return NULL;
    t->ops = &transcoderOps;
    t->encodingId = to;
    t->sourceEncodingId = from;
    return t;
}

/* ---- numbers through snprintf ------------------------------------------- */

/* Puts text right-justified into `width` units of the target. */
static int32_t place(const char *text, int32_t width, ZvChar *target, int64_t capacity, int64_t *produced) {
    int64_t length = (int64_t)strlen(text), written = capacity < width ? capacity : width;
    for (int64_t i = 0; i < written; ++i)
        target[i] = (ZvChar)(i < width - length ? ' ' : (unsigned char)text[i - (width - length)]);
    if (produced) *produced = written;
    return written < width ? ZV_TARGET_TOO_SMALL : 0;
}

/* Commas between groups of three integer digits. */
static void group(char *text, size_t size) {
    char *digits = text + (text[0] == '-'), *end = digits;
    while (*end >= '0' && *end <= '9') ++end;
    size_t count = (size_t)(end - digits), commas = count > 3 ? (count - 1) / 3 : 0;
    if (!commas || strlen(text) + commas >= size) return;
    memmove(end + commas, end, strlen(end) + 1);
    for (char *from = end - 1, *to = end + commas - 1; from >= digits; --to, --from) {
        *to = *from;
        if ((size_t)(end - from) % 3 == 0 && from > digits) *--to = ',';
    }
}

/* snprintf with one number; an exponent has no leading zero ("1.5E+6", not
 * "1.5E+06"). Returns the length. */
static int print(char *text, size_t size, const char *format, int places, double value) {
    int n = snprintf(text, size, format, places, value);
    char *e = strchr(text, 'E');
    if (e && e[2] == '0' && e[3]) memmove(e + 2, e + 3, strlen(e + 3) + 1), --n;
    return n;
}

/* E-notation with the most mantissa places (at most `most`) that fit. */
static int exponentForm(double value, int32_t width, int most, char *text, size_t size) {
    for (int places = most; places >= 0; --places)
        if (print(text, size, "%.*E", places, value) <= width) return 1;
    return 0;
}

/*
 * The digits behind NLNUM, NLPCT, NLMNY and NLBEST, right-justified in
 * `width` units: ZV_NUMBER_PLAIN gives `decimals` places ('.' as the point,
 * '-' in front), or when that is too wide fewer places, then E-notation,
 * then stars, all but the first answered with NOT_PLAIN. ZV_NUMBER_GROUPED
 * does the same with ',' between groups of three. ZV_NUMBER_BEST_FIT shows
 * the most significant digits (15 at most) that fit, plain or E-notation.
 * snprintf rounds an exact half to even: 0.125 at 2 places is "0.12".
 */
static int32_t formatNumber(HostLocale *self, double value, int32_t width, int32_t decimals, uint32_t flags,
                            ZvChar *target, int64_t capacity, int64_t *produced) {
    (void)self;
    char text[512];
    int32_t status = 0;
    if (produced) *produced = 0;
    if (width < 1 || width > 256 || !target || capacity < 0) return BAD_REQUEST;
    if (decimals < 0) decimals = 0;
    if (decimals > 99) decimals = 99;
    if (value == 0) value = 0; /* no "-0" */

    uint64_t bits;
    memcpy(&bits, &value, sizeof bits);
    if (bits >> 48 == 0xFFFF) { /* a missing value: its mark in the last place */
        int mark = (int)(~bits >> 40 & 0xFF);
        snprintf(text, sizeof text, "%c", mark == '-' ? '_' : mark >= 'A' && mark <= 'Z' ? mark : '.');
    } else if (!isfinite(value)) {
        text[0] = 0;
        status = NOT_PLAIN;
    } else if (flags == ZV_NUMBER_BEST_FIT) {
        status = NOT_PLAIN;
        for (int digits = 15; digits > 0 && status; --digits)
            if (print(text, sizeof text, "%.*G", digits, value) <= width ||
                print(text, sizeof text, "%.*E", digits - 1, value) <= width)
                status = 0;
        if (status && exponentForm(value, width, 0, text, sizeof text)) status = 0;
    } else if (flags == ZV_NUMBER_PLAIN || flags == ZV_NUMBER_GROUPED) {
        print(text, sizeof text, "%.*f", decimals, value);
        if (flags == ZV_NUMBER_GROUPED) group(text, sizeof text);
        if ((int32_t)strlen(text) > width) {
            /* Fewer places: "%.0f" shows the longest integer part there is. */
            int whole = print(text, sizeof text, "%.*f", 0, value);
            int places = width - 1 - whole < decimals ? width - 1 - whole : decimals;
            if (places > 0) print(text, sizeof text, "%.*f", places, value);
            else if (whole > width && !exponentForm(value, width, 20, text, sizeof text)) text[0] = 0;
            int allPlaces = whole <= width && (decimals == 0 || places == decimals);
            status = allPlaces ? UNGROUPED : NOT_PLAIN; /* all places fit only without groups */
        }
    } else {
        return BAD_REQUEST;
    }
    if ((int32_t)strlen(text) > width || (!text[0] && status)) memset(text, '*', (size_t)width), text[width] = 0;
    int32_t placed = place(text, width, target, capacity, produced);
    return placed ? placed : status;
}

/* Blanks, then digits and the characters of a number, then blanks: the text
 * strtod or strtoll is to read, as ASCII; 0 when anything else stands there. */
static int asciiNumber(const ZvChar *text, int64_t length, const char *allowed, char *out, size_t size) {
    int64_t first = 0, last = length;
    while (first < length && text[first] == ' ') ++first;
    while (last > first && text[last - 1] == ' ') --last;
    if (last == first || (size_t)(last - first) >= size) return 0;
    for (int64_t i = first; i < last; ++i) {
        if (text[i] > 127 || !strchr(allowed, (char)text[i])) return 0;
        out[i - first] = (char)text[i];
    }
    out[last - first] = 0;
    return 1;
}

static int32_t parseDouble(HostLocale *self, const ZvChar *text, int64_t length, double *value, int64_t *used) {
    (void)self;
    char ascii[128], *end;
    if (used) *used = 0;
    if (!text || !value || !asciiNumber(text, length, "+-0123456789.eE", ascii, sizeof ascii)) return UNREADABLE;
    if (strcmp(ascii, ".") == 0) { /* the plain missing value */
        uint64_t bits = ZV_MISSING_BITS;
        memcpy(value, &bits, sizeof bits);
    } else {
        errno = 0;
        double v = strtod(ascii, &end);
        if (*end || errno || !isfinite(v)) return UNREADABLE;
        *value = v;
    }
    if (used) *used = length;
    return 0;
}

static int32_t parseInteger(HostLocale *self, const ZvChar *text, int64_t length, int32_t zero, int64_t *value,
                            int64_t *used) {
    (void)self, (void)zero;
    char ascii[32], *end;
    if (used) *used = 0;
    if (!text || !value || !asciiNumber(text, length, "+-0123456789", ascii, sizeof ascii)) return UNREADABLE;
    errno = 0;
    long long v = strtoll(ascii, &end, 10);
    if (*end || errno) return UNREADABLE;
    *value = v;
    if (used) *used = length;
    return 0;
}

/* ---- the one locale: en_US ------------------------------------------------
 * Item k is raw text in the module's single-byte locale text (byte b is
 * U+00bb); a character beyond that is written as an escape <Uxxxx>. */

#define MONTHS "Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec", \
    "January", "February", "March", "April", "May", "June", "July", "August", "September", \
    "October", "November", "December"
#define WEEKDAYS "Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat", \
    "Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"
#define QUARTERS "Q1", "Q2", "Q3", "Q4", "1st quarter", "2nd quarter", "3rd quarter", "4th quarter"

static const char *const enUsItems[ZV_LOCALE_TABLE_ITEMS] = {
    [0] = "en_US", [2] = "en", "US", [6] = "MDY", /* name, language, territory; order of date parts */
    /* 28..58: date, datetime and time patterns in the module's % language */
    [28] = "%B %E, %Y", "%b %E, %Y", "%b %#d, %Y", "%B %#d, %Y",  /* date; medium; long */
    "%A, %B %E, %Y", "%a, %b %E, %Y",                               /* with weekday */
    "%B %Y", "%b %Y", "%B %#d", "%b %#d", "%Y", "%y",                /* year-month, month-day, year */
    "%Q %Y", "%q %Y", "week %#U of %Y", "%Y-W%U",                   /* year-quarter, year-week */
    "%B %E, %Y at %I:%M:%S %p", "%b %E, %Y, %I:%M:%S %p",           /* datetime with AM/PM */
    "%B %E, %Y at %I:%M:%S %p", "%b %E, %Y, %I:%M:%S %p",           /* datetime */
    "%b %#d, %Y, %#I:%M:%S %p", "%B %#d, %Y at %#I:%M:%S %p %z",    /* medium, long datetime */
    "%A, %B %E, %Y at %I:%M:%S %p", "%a, %b %E, %Y, %I:%M:%S %p",   /* datetime with weekday */
    "%#I:%M:%S %p", "%H:%M:%S",                                     /* time with AM/PM; time */
    "%#m/%#d/%y", "%#I:%M %p", "%#m/%#d/%y, %#I:%M %p", "%#m/%#d/%Y", "%x %X",
    /* 59..150: names of months, weekdays and quarters, then their other forms */
    [59] = MONTHS, MONTHS, WEEKDAYS, WEEKDAYS, QUARTERS, QUARTERS,
    "AM", "PM", "/", /* 151..153 */
    /* 155..171: money: symbols, separators, grouping, signs, fraction digits,
     * placement of symbol and sign, the currency patterns */
    [155] = "USD", "$", ".", ",", "3", "", "-", "2", "2", "1", "0", "1", "0", "1", "1",
    "<U00A4>#,##0.00", "<U00A4>#,##0.00",
    /* 172..186: numbers: separators, grouping, signs, placement, the patterns */
    ".", ",", "3", "", "-", "0", "0", "0", "0", "1", "1", "#,##0.###", "#,##0.###", "#,##0%", "#,##0%",
};

typedef struct {
    HostLocale base;
    const char *const *items;
    int built;
    uint8_t table[ZV_LOCALE_TABLE_SIZE];
} Locale;

/* From offset ZV_LOCALE_TABLE_OFFSET on, one record an item: a 16-bit
 * little-endian byte count, then 160 bytes of text. */
static int32_t localeTextTable(HostLocale *self, int32_t zero, const uint8_t **table) {
    (void)zero;
    Locale *locale = (Locale *)self;
    for (int k = 0; !locale->built && k < ZV_LOCALE_TABLE_ITEMS; ++k) {
        const char *text = locale->items[k] ? locale->items[k] : "";
        size_t length = strlen(text);
        if (length > ZV_LOCALE_RECORD_SIZE - 2) return BAD_REQUEST;
        uint8_t *record = locale->table + ZV_LOCALE_TABLE_OFFSET + k * ZV_LOCALE_RECORD_SIZE;
        record[0] = (uint8_t)length, record[1] = (uint8_t)(length >> 8);
        memcpy(record + 2, text, length);
    }
    locale->built = 1;
    *table = locale->table;
    return 0;
}

static void localeRelease(HostLocale *self) { (void)self; /* enUs lives as long as the program */ }

static const HostLocaleOps localeOps = {localeTextTable, formatNumber, parseDouble, parseInteger, localeRelease};
static Locale enUs = {{&localeOps}, enUsItems, 0, {0}};

/* ---- NLS services, time zone, anchor ------------------------------------ */

static HostTranscoder *createTranscoder(NlsServices *self, uint32_t from, uint32_t to, int32_t zero1, int32_t zero2) {
    (void)self, (void)zero1, (void)zero2;
    return newTranscoder(from, to);
}

static HostTranscoder *transcoderForEncoding(NlsServices *self, uint32_t encoding, int32_t zero1, int32_t zero2) {
    (void)self, (void)zero1, (void)zero2;
    return newTranscoder(encoding, ZV_ENCODING_UTF16);
}

static HostLocale *openLocale(NlsServices *self, const ZvChar *name, int64_t length) {
    (void)self;
    static const char known[] = "en_US";
    if (length != 5) return NULL;
    for (int i = 0; i < 5; ++i)
        if (name[i] != (ZvChar)known[i]) return NULL;
    return &enUs.base;
}

static HostLocale *currentLocale(NlsServices *self) {
    (void)self;
    return &enUs.base;
}

/* The module answers ASCII itself and asks the host about the characters
 * above it; this host has no character database, so they are in no class
 * and have no case. */
static int32_t charClass(NlsServices *self, uint32_t c, uint32_t mask) {
    (void)self, (void)c, (void)mask;
    return 0;
}

static uint32_t charCase(NlsServices *self, uint32_t c, int32_t one) {
    (void)self, (void)one;
    return c;
}

static const NlsServicesOps nlsOps = {createTranscoder, transcoderForEncoding, openLocale, currentLocale,
                                      charClass,        charCase,              charCase};

static double utcOffset(HostTimeZone *self, double seconds, int32_t zero) {
    (void)self, (void)seconds, (void)zero;
    return 0;
}
static const HostTimeZoneOps utcOps = {utcOffset};
static HostTimeZone utc = {&utcOps};

static HostPool *createPool(HostAnchor *self, const void *descriptor, HostJournal *errorJournal, const char *name) {
    (void)self, (void)descriptor, (void)errorJournal, (void)name;
    return newPool();
}

/* No journal: the module takes a null one. */
static HostJournal *createJournal(HostAnchor *self, const void *descriptor, int32_t zero, const ZvChar *name) {
    (void)self, (void)descriptor, (void)zero, (void)name;
    return NULL;
}

/* No options are set (the module then pivots two-digit years at its default). */
static int32_t readOption(HostAnchor *self, const ZvChar *name, int64_t length, int32_t type, void *value,
                          int64_t *size) {
    (void)self, (void)name, (void)length, (void)type, (void)value, (void)size;
    return 1;
}

/* The time now, in seconds from 1 January 1960. */
static int32_t readClock(HostAnchor *self, int32_t size, double *clock, uint32_t flags) {
    (void)self, (void)flags;
    if (size < 16 || !clock) return BAD_REQUEST;
    clock[0] = (double)time(NULL) + 315619200.0;
    clock[1] = 0;
    return 0;
}

/* formatText, decimalExponent and loadModule may be null: the module does without them. */
static const HostAnchorOps anchorOps = {createPool, createJournal, readOption, readClock, NULL, NULL, NULL};
static HostAnchor anchor;
static NlsServices nls = {&nlsOps, &anchor, NULL};
static HostAnchor anchor = {&anchorOps, &nls, &enUs.base, 0, 0};

/* ---- using the module ------------------------------------------------------ */

/* The row called `name`; names are blank-filled to 32 units and a blank row ends the table. */
static const FormatTableRow *findRow(const ExtensionInstance *instance, const char *name) {
    size_t length = strlen(name);
    for (const FormatTableRow *row = instance->formatTable; row->name[0] != ' '; ++row) {
        size_t i = 0;
        while (i < 32 && row->name[i] == (i < length ? (ZvChar)name[i] : ' ')) ++i;
        if (i == 32) return row;
    }
    return NULL;
}

typedef struct {
    const char *row;
    int32_t width, decimals;
    double value;     /* formats */
    const char *text; /* informats */
} Example;

static const Example examples[] = {
    {"NLDATE", 20, 0, 23440, NULL}, /* 5 March 2024, in days from 1 January 1960 */
    {"NLDATEW", 30, 0, 23440, NULL},
    {"NLDATM", 30, 0, 23440 * 86400.0 + 14 * 3600 + 7 * 60 + 9, NULL}, /* 14:07:09 that day, in seconds */
    {"NLNUM", 15, 2, -1234567.891, NULL},
    {"NLPCT", 8, 1, 0.125, NULL},
    {"NLMNY", 15, 2, -1234567.891, NULL},
    {"NLBEST", 12, 0, 3.14159265, NULL},
    {"@NLNUM", 12, 0, 0, "-1,234.50"},
};

int main(void) {
    HostPool *formatPool = newPool();
    HostTranscoder *toUtf8 = newTranscoder(ZV_ENCODING_UTF16, ENCODING_UTF8);
    ExtensionInstance *list[2] = {NULL, NULL};
    HostServices services = {formatPool, &utc, list};

    /* Load: leave the anchor, build the instance, name it and list it. */
    zvextent(&anchor);
    ExtensionInstance *instance = formatPool && toUtf8 ? zvlocfmt(&anchor, NULL) : NULL;
    if (!instance) {
        fprintf(stderr, "zvlocfmt: the module could not be loaded\n");
        return 1;
    }
    instance->extensionName = "zvlocfmt"; /* the module compares these eight bytes */
    list[0] = instance;

    /* One call record for the locale: the module keeps its locale block in it. */
    FormatCall call;
    memset(&call, 0, sizeof call);
    call.locale = &enUs.base;
    call.transcoder = toUtf8;
    call.services = &services;
    call.flags = ZV_FLAG_CHECK_LIMITS;

    int failures = 0;
    for (size_t e = 0; e < sizeof examples / sizeof examples[0]; ++e) {
        const Example *x = &examples[e];
        const FormatTableRow *row = findRow(instance, x->row);
        ZvChar wide[256], input[64];
        double value = x->value;
        char spec[48], shown[64], text[3 * 256 + 1];
        snprintf(spec, sizeof spec, x->decimals ? "%s%d.%d" : "%s%d", x->row, (int)x->width, (int)x->decimals);
        if (x->text) snprintf(shown, sizeof shown, "[%s]", x->text);
        else snprintf(shown, sizeof shown, "%.15g", x->value);
        if (!row) {
            printf("%s: no such row\n", spec);
            ++failures;
            continue;
        }

        call.width = x->width;
        call.decimals = x->decimals;
        if (x->text) { /* informat: UTF-16 text in, a double out */
            int32_t n = (int32_t)strlen(x->text);
            for (int32_t i = 0; i < n; ++i) input[i] = (ZvChar)(unsigned char)x->text[i];
            call.input = input;
            call.inputLength = call.fieldLimit = n;
            call.output = &value;
        } else { /* format: a double in, UTF-16 text out */
            call.input = &value;
            call.output = wide;
            call.outputCapacity = x->width;
        }
        int32_t status = row->wideEntry(&call, NULL);
        if (status != 0) {
            printf("%-10s %-14s -> status %ld\n", spec, shown, (long)status);
            ++failures;
        } else if (x->text) {
            printf("%-10s %-14s -> %.15g\n", spec, shown, value);
        } else { /* shown as UTF-8, through the host's own transcoder */
            int64_t bytes = 0;
            toUtf8->ops->transcode(toUtf8, wide, 2 * (int64_t)call.outputLength, text, sizeof text - 1, &bytes, 0);
            text[bytes] = 0;
            printf("%-10s %-14s -> [%s]\n", spec, shown, text);
        }
    }

    instance->destroy(instance);
    toUtf8->ops->transcoderRelease(toUtf8);
    formatPool->ops->poolDestroy(formatPool);
    return failures ? 1 : 0;
}
