/*
 * zvlocfmt: locale-sensitive formats and informats as an extension module.
 *
 * This header is the whole boundary between a host kernel and the module:
 * the records the host fills or reads, the host objects the module calls
 * back through, and the four exports. It compiles as C11 and as C++20.
 *
 * All records are little-endian with natural alignment on a 64-bit target.
 * The layouts of FormatCall, FormatTableRow and the head of
 * ExtensionInstance are fixed byte for byte; the checks at the end of this
 * file hold them there.
 */
#ifndef ZVLOCFMT_ZVLOCFMT_H
#define ZVLOCFMT_ZVLOCFMT_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* One UTF-16 code unit. char16_t in C++ so that u"" literals fit. */
#ifdef __cplusplus
typedef char16_t ZvChar;
#else
typedef uint16_t ZvChar;
#endif

/* ---- statuses ---------------------------------------------------------- */

#define ZV_OK 0
#define ZV_NO_INSTANCE (-1)                      /* format: instance not in extensionList */
#define ZV_UNREADABLE 1                          /* informat: blank or unreadable text */
#define ZV_WIDTH_TOO_SMALL 2
#define ZV_WIDTH_TOO_LARGE 3
#define ZV_DECIMALS_TOO_SMALL 4
#define ZV_DECIMALS_TOO_LARGE 5
#define ZV_NO_FORM_FITS 999                      /* informat: no pattern or number form fits */
#define ZV_DATE_NO_INSTANCE ((int32_t)0x80000000u) /* date and week informats */
#define ZV_NO_MEMORY ((int32_t)0x803fc002u)
#define ZV_TARGET_TOO_SMALL ((int32_t)0x803fe807u)

/* ---- encodings the module names itself ---------------------------------- */

#define ZV_ENCODING_UTF16 25       /* the module's own text */
#define ZV_ENCODING_LOCALE_TEXT 62 /* single-byte text of locale tables: byte b is U+00bb */

/* Allocation flag: zero the block. */
#define ZV_ALLOC_ZEROED 0x80000000u

/* The plain missing value; a special one holds ~letter in byte 5. */
#define ZV_MISSING_BITS 0xFFFFD10000000000ull

/* ---- forward declarations ------------------------------------------------ */

typedef struct HostAnchor HostAnchor;
typedef struct NlsServices NlsServices;
typedef struct HostServices HostServices;
typedef struct HostPool HostPool;
typedef struct HostJournal HostJournal;
typedef struct HostTranscoder HostTranscoder;
typedef struct HostLocale HostLocale;
typedef struct HostTimeZone HostTimeZone;
typedef struct ExtensionInstance ExtensionInstance;
typedef struct FormatCall FormatCall;
typedef struct FormatTableRow FormatTableRow;
typedef struct LocaleItem LocaleItem;
typedef struct NumberContext NumberContext;
typedef struct LocaleBlock LocaleBlock;

/* ---- host objects ---------------------------------------------------------
 * Each object begins with a pointer to its table of operations; every
 * operation takes its object first. A host derives its own records from
 * these by putting one of them first. Status 0 is success.
 */

typedef struct HostPoolOps {
    void *(*poolAlloc)(HostPool *self, uint64_t bytes, uint32_t flags);
    void (*poolFree)(HostPool *self, void *block);
    void (*poolDestroy)(HostPool *self);
} HostPoolOps;

struct HostPool {
    const HostPoolOps *ops;
};

typedef struct HostJournalOps {
    /* values: count words of extra data, may be null with count 0 */
    void (*logStatus)(HostJournal *self, int32_t level, int32_t status, const int64_t *values,
                      int32_t count);
    void (*journalClose)(HostJournal *self);
    void (*journalRelease)(HostJournal *self);
} HostJournalOps;

struct HostJournal {
    const HostJournalOps *ops;
};

typedef struct HostTranscoderOps {
    /* Converts `bytes` bytes of source text into at most `capacity` bytes of
     * target; `produced` gets the bytes written. ZV_TARGET_TOO_SMALL when the
     * target was too small: what fitted, in whole characters, is written. */
    int32_t (*transcode)(HostTranscoder *self, const void *source, int64_t bytes, void *target,
                         int64_t capacity, int64_t *produced, int32_t zero);
    void (*transcoderRelease)(HostTranscoder *self);
} HostTranscoderOps;

struct HostTranscoder {
    const HostTranscoderOps *ops;
    uint32_t encodingId; /* the target encoding */
    uint32_t sourceEncodingId;
};

/* Byte size of a locale's raw text table: 189 records of 162 bytes from 9624. */
#define ZV_LOCALE_TABLE_ITEMS 189
#define ZV_LOCALE_TABLE_OFFSET 9624
#define ZV_LOCALE_RECORD_SIZE 162
#define ZV_LOCALE_TABLE_SIZE (ZV_LOCALE_TABLE_OFFSET + ZV_LOCALE_TABLE_ITEMS * ZV_LOCALE_RECORD_SIZE)

/* formatNumber flags */
#define ZV_NUMBER_BEST_FIT 0x800u
#define ZV_NUMBER_PLAIN 0x1000u
#define ZV_NUMBER_GROUPED 0x21000u

typedef struct HostLocaleOps {
    /* table gets ZV_LOCALE_TABLE_SIZE bytes that stay valid while the locale lives */
    int32_t (*localeTextTable)(HostLocale *self, int32_t zero, const uint8_t **table);
    int32_t (*formatNumber)(HostLocale *self, double value, int32_t width, int32_t decimals,
                            uint32_t flags, ZvChar *target, int64_t capacity, int64_t *produced);
    int32_t (*parseDouble)(HostLocale *self, const ZvChar *text, int64_t length, double *value,
                           int64_t *used);
    int32_t (*parseInteger)(HostLocale *self, const ZvChar *text, int64_t length, int32_t zero,
                            int64_t *value, int64_t *used);
    void (*localeRelease)(HostLocale *self);
} HostLocaleOps;

struct HostLocale {
    const HostLocaleOps *ops;
};

typedef struct HostTimeZoneOps {
    /* seconds east of UTC at `seconds` (a second count from 1 January 1960) */
    double (*timeZoneOffset)(HostTimeZone *self, double seconds, int32_t zero);
} HostTimeZoneOps;

struct HostTimeZone {
    const HostTimeZoneOps *ops;
};

typedef struct NlsServicesOps {
    HostTranscoder *(*createTranscoder)(NlsServices *self, uint32_t fromEncoding,
                                        uint32_t toEncoding, int32_t zero1, int32_t zero2);
    /* a transcoder from the given encoding back to UTF-16 (25) */
    HostTranscoder *(*transcoderForEncoding)(NlsServices *self, uint32_t encodingId,
                                             int32_t zero1, int32_t zero2);
    HostLocale *(*openLocale)(NlsServices *self, const ZvChar *name, int64_t length);
    HostLocale *(*currentLocale)(NlsServices *self);
    int32_t (*charClass)(NlsServices *self, uint32_t character, uint32_t mask);
    uint32_t (*charUpper)(NlsServices *self, uint32_t character, int32_t one);
    uint32_t (*charLower)(NlsServices *self, uint32_t character, int32_t one);
} NlsServicesOps;

struct NlsServices {
    const NlsServicesOps *ops;
    HostAnchor *owner;   /* the anchor whose loadModule serves these services */
    void *charModule;    /* handle of "zvchrtab"; null until the module asks for it */
};

typedef struct HostAnchorOps {
    HostPool *(*createPool)(HostAnchor *self, const void *descriptor, HostJournal *errorJournal,
                            const char *name);
    HostJournal *(*createJournal)(HostAnchor *self, const void *descriptor, int32_t zero,
                                  const ZvChar *name);
    /* type 3: a 64-bit integer in *value, *size bytes (8). Nonzero if not set;
     * *value is then left as it was. */
    int32_t (*readOption)(HostAnchor *self, const ZvChar *name, int64_t length, int32_t type,
                          void *value, int64_t *size);
    /* size 16, clock[0] = clockValue, clock[1] = clockShift, flags 0x10800000 */
    int32_t (*readClock)(HostAnchor *self, int32_t size, double *clock, uint32_t flags);
    /* printf-like into wide text: %i and %d take the next value as an
     * integer, %s a zero-ended ZvChar text, %c a character, %% a percent. */
    int32_t (*formatText)(HostAnchor *self, void *context, const ZvChar *format,
                          int64_t formatLength, ZvChar *target, int64_t capacity,
                          int64_t *produced, int32_t zero, const int64_t *values);
    /* the decimal exponent of a positive value at that many digits */
    int32_t (*decimalExponent)(HostAnchor *self, double value, int32_t digits);
    /* loads a host module such as "zvchrtab"; returns its handle or null */
    void *(*loadModule)(HostAnchor *self, const char *name, int64_t length, int32_t zero);
} HostAnchorOps;

struct HostAnchor {
    const HostAnchorOps *ops;
    NlsServices *nlsServices;     /* may be null: the module then uses its own tables */
    HostLocale *numberFormatter;  /* takes formatNumber flags 0x21000 */
    int32_t hostExponentMode;     /* nonzero: decimalExponent is in use */
    int32_t reserved;
};

struct HostServices {
    HostPool *formatPool;
    HostTimeZone *timeZone;
    ExtensionInstance **extensionList; /* ends with a null pointer */
};

/* ---- locale block ----------------------------------------------------- */

#define ZV_ITEM_TEXT_UNITS 160

struct LocaleItem {
    uint32_t id;
    int64_t length;
    ZvChar text[ZV_ITEM_TEXT_UNITS];
    NumberContext *numberContext;
    uint32_t maxWidth;
};

struct NumberContext {
    ZvChar symbol[52];
    ZvChar decimalSeparator[2];
    ZvChar groupSeparator[2];
    int32_t groupSizes[16];
    ZvChar positiveSign[2];
    ZvChar negativeSign[2];
    int32_t fractionDigits;
    int32_t positiveSymbolPrecedes;
    int32_t positiveSymbolSpaced;
    int32_t positiveSignPosition;
    int32_t negativeSymbolPrecedes;
    int32_t negativeSymbolSpaced;
    int32_t negativeSignPosition;
};

struct LocaleBlock {
    LocaleItem items[ZV_LOCALE_TABLE_ITEMS];
    NumberContext contexts[6]; /* for items 170, 171, 183, 184, 185, 186 */
};

/* ---- the call record --------------------------------------------------- */

typedef int32_t (*ZvWideEntry)(FormatCall *call, void *opaque);
typedef int32_t (*ZvByteEntry)(FormatCall *call, FormatCall *callPart, void *opaque);

struct FormatCall {
    int32_t width;              /*   0 */
    int32_t decimals;           /*   4 */
    const void *input;          /*   8 format: const double*; informat: const ZvChar* */
    int32_t inputLength;        /*  16 */
    int32_t reserved20;         /*  20 */
    void *output;               /*  24 format: ZvChar* or bytes; informat: double* */
    int32_t outputCapacity;     /*  32 */
    int32_t outputLength;       /*  36 */
    uint8_t reserved40[16];     /*  40 */
    uint8_t flags;              /*  56 bit 0: check width and decimals */
    uint8_t reserved57[7];      /*  57 */
    HostLocale *locale;         /*  64 */
    uint8_t reserved72[104];    /*  72 */
    LocaleBlock *localeBlock;   /* 176 */
    HostTranscoder *transcoder; /* 184 UTF-16 to the host encoding */
    uint8_t measureBytes;       /* 192 */
    uint8_t reserved193[7];     /* 193 */
    int32_t fieldLimit;         /* 200 */
    uint8_t reserved204[20];    /* 204 */
    HostServices *services;     /* 224 */
    void *callPool;             /* 232 "ZVRG" in its first 8 bytes, HostPool* in word 9 */
    uint8_t reserved240[64];    /* 240 */
};

#define ZV_CALL_PART_BYTES 72
#define ZV_FLAG_CHECK_LIMITS 0x01u

/* ---- the format table ---------------------------------------------------- */

#define ZV_KIND_NUMBER 1u
#define ZV_KIND_TEXT 2u

struct FormatTableRow {
    ZvChar name[32]; /* upper case, blank-filled to 32 units, no terminator */
    uint32_t sourceKind;
    uint32_t producedKind;
    ZvWideEntry wideEntry;
    uint32_t minWidth;
    uint32_t maxWidth;
    uint32_t defaultWidth;
    uint32_t minDecimals;
    uint32_t maxDecimals;
    uint32_t defaultDecimals;
    uint64_t reserved104;
    ZvByteEntry byteEntry;
    uint32_t lastWord;
    uint32_t reserved124;
};

/* ---- the instance ------------------------------------------------------- */

struct ExtensionInstance {
    uint64_t hostWord0;                       /* word 0 */
    const char *extensionName;                /* word 1: eight bytes "zvlocfmt" */
    uint64_t hostWord2;                       /* word 2 */
    int32_t (*versionCurrent)(ExtensionInstance *self, int64_t *a, int64_t *b, int64_t *c);
    int32_t (*versionBase)(ExtensionInstance *self, int64_t *a, int64_t *b, int64_t *c);
    HostAnchor *anchor;                       /* word 5 */
    int32_t (*destroy)(ExtensionInstance *self); /* word 6 */
    uint64_t hostWord7;
    uint64_t hostWord8;
    const FormatTableRow *formatTable;        /* word 9 */
    uint64_t hostWord10;
    HostPool *pool;                           /* word 11 */
    HostJournal *journal;                     /* word 12 */
    uint64_t journalOpen;                     /* word 13 */
    LocaleItem itemSnapshot[ZV_LOCALE_TABLE_ITEMS];
    HostTranscoder *wideFromLocaleText;       /* 62 -> 25 */
    HostTranscoder *wideToWide;               /* 25 -> 25 */
    HostLocale *defaultLocale;                /* "en_US" */
    void *monetaryRecord;                     /* per-currency record, made at first use */
};

/* ---- exports -------------------------------------------------------------- */

#if defined(_WIN32)
#define ZV_EXPORT __declspec(dllexport)
#else
#define ZV_EXPORT __attribute__((visibility("default")))
#endif

ZV_EXPORT ExtensionInstance *zvlocfmt(HostAnchor *anchor, HostJournal *errorJournal);
ZV_EXPORT int32_t zvextent(HostAnchor *anchor);
ZV_EXPORT int32_t zvextver(HostAnchor *anchor, int64_t *major, int64_t *minor);
ZV_EXPORT void zvvercn1(void *target);

#define ZV_BUILD_RECORD_BYTES 208

/* ---- layout checks ------------------------------------------------------- */

#ifdef __cplusplus
#define ZV_STATIC_ASSERT(c, m) static_assert(c, m)
#else
#define ZV_STATIC_ASSERT(c, m) _Static_assert(c, m)
#endif

ZV_STATIC_ASSERT(sizeof(void *) == 8, "zvlocfmt needs a 64-bit target");
ZV_STATIC_ASSERT(sizeof(ZvChar) == 2, "UTF-16 unit");

ZV_STATIC_ASSERT(offsetof(FormatCall, width) == 0, "FormatCall.width");
ZV_STATIC_ASSERT(offsetof(FormatCall, decimals) == 4, "FormatCall.decimals");
ZV_STATIC_ASSERT(offsetof(FormatCall, input) == 8, "FormatCall.input");
ZV_STATIC_ASSERT(offsetof(FormatCall, inputLength) == 16, "FormatCall.inputLength");
ZV_STATIC_ASSERT(offsetof(FormatCall, output) == 24, "FormatCall.output");
ZV_STATIC_ASSERT(offsetof(FormatCall, outputCapacity) == 32, "FormatCall.outputCapacity");
ZV_STATIC_ASSERT(offsetof(FormatCall, outputLength) == 36, "FormatCall.outputLength");
ZV_STATIC_ASSERT(offsetof(FormatCall, flags) == 56, "FormatCall.flags");
ZV_STATIC_ASSERT(offsetof(FormatCall, locale) == 64, "FormatCall.locale");
ZV_STATIC_ASSERT(offsetof(FormatCall, localeBlock) == 176, "FormatCall.localeBlock");
ZV_STATIC_ASSERT(offsetof(FormatCall, transcoder) == 184, "FormatCall.transcoder");
ZV_STATIC_ASSERT(offsetof(FormatCall, measureBytes) == 192, "FormatCall.measureBytes");
ZV_STATIC_ASSERT(offsetof(FormatCall, fieldLimit) == 200, "FormatCall.fieldLimit");
ZV_STATIC_ASSERT(offsetof(FormatCall, services) == 224, "FormatCall.services");
ZV_STATIC_ASSERT(offsetof(FormatCall, callPool) == 232, "FormatCall.callPool");
ZV_STATIC_ASSERT(sizeof(FormatCall) == 304, "FormatCall size");

ZV_STATIC_ASSERT(offsetof(FormatTableRow, name) == 0, "FormatTableRow.name");
ZV_STATIC_ASSERT(offsetof(FormatTableRow, sourceKind) == 64, "FormatTableRow.sourceKind");
ZV_STATIC_ASSERT(offsetof(FormatTableRow, producedKind) == 68, "FormatTableRow.producedKind");
ZV_STATIC_ASSERT(offsetof(FormatTableRow, wideEntry) == 72, "FormatTableRow.wideEntry");
ZV_STATIC_ASSERT(offsetof(FormatTableRow, minWidth) == 80, "FormatTableRow.minWidth");
ZV_STATIC_ASSERT(offsetof(FormatTableRow, maxWidth) == 84, "FormatTableRow.maxWidth");
ZV_STATIC_ASSERT(offsetof(FormatTableRow, defaultWidth) == 88, "FormatTableRow.defaultWidth");
ZV_STATIC_ASSERT(offsetof(FormatTableRow, minDecimals) == 92, "FormatTableRow.minDecimals");
ZV_STATIC_ASSERT(offsetof(FormatTableRow, maxDecimals) == 96, "FormatTableRow.maxDecimals");
ZV_STATIC_ASSERT(offsetof(FormatTableRow, defaultDecimals) == 100, "FormatTableRow.defaultDecimals");
ZV_STATIC_ASSERT(offsetof(FormatTableRow, reserved104) == 104, "FormatTableRow.reserved");
ZV_STATIC_ASSERT(offsetof(FormatTableRow, byteEntry) == 112, "FormatTableRow.byteEntry");
ZV_STATIC_ASSERT(offsetof(FormatTableRow, lastWord) == 120, "FormatTableRow.lastWord");
ZV_STATIC_ASSERT(sizeof(FormatTableRow) == 128, "FormatTableRow size");

ZV_STATIC_ASSERT(offsetof(ExtensionInstance, extensionName) == 1 * 8, "instance word 1");
ZV_STATIC_ASSERT(offsetof(ExtensionInstance, versionCurrent) == 3 * 8, "instance word 3");
ZV_STATIC_ASSERT(offsetof(ExtensionInstance, versionBase) == 4 * 8, "instance word 4");
ZV_STATIC_ASSERT(offsetof(ExtensionInstance, anchor) == 5 * 8, "instance word 5");
ZV_STATIC_ASSERT(offsetof(ExtensionInstance, destroy) == 6 * 8, "instance word 6");
ZV_STATIC_ASSERT(offsetof(ExtensionInstance, formatTable) == 9 * 8, "instance word 9");
ZV_STATIC_ASSERT(offsetof(ExtensionInstance, pool) == 11 * 8, "instance word 11");
ZV_STATIC_ASSERT(offsetof(ExtensionInstance, journal) == 12 * 8, "instance word 12");
ZV_STATIC_ASSERT(offsetof(ExtensionInstance, journalOpen) == 13 * 8, "instance word 13");
ZV_STATIC_ASSERT(offsetof(ExtensionInstance, itemSnapshot) == 14 * 8, "itemSnapshot after 14 words");

ZV_STATIC_ASSERT(offsetof(LocaleItem, length) == 8, "LocaleItem.length");
ZV_STATIC_ASSERT(offsetof(LocaleItem, text) == 16, "LocaleItem.text");
ZV_STATIC_ASSERT(offsetof(LocaleItem, numberContext) == 336, "LocaleItem.numberContext");
ZV_STATIC_ASSERT(offsetof(LocaleItem, maxWidth) == 344, "LocaleItem.maxWidth");
ZV_STATIC_ASSERT(sizeof(LocaleItem) == 352, "LocaleItem size");
ZV_STATIC_ASSERT(offsetof(NumberContext, groupSizes) == 112, "NumberContext.groupSizes");
ZV_STATIC_ASSERT(sizeof(NumberContext) == 212, "NumberContext size");

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* ZVLOCFMT_ZVLOCFMT_H */
