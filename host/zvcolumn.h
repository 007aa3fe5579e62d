/* Columns through the reference host, from C: a host with the module loaded,
 * a column of doubles formatted into fixed UTF-8 fields, a column of UTF-8
 * texts read into doubles and missing marks. Distinct threads may run
 * distinct columns on one host at once. No function lets an exception out. */
#ifndef ZVCOLUMN_H
#define ZVCOLUMN_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct ZvColumnHost ZvColumnHost;

typedef struct ZvColumnSpec {
    const char *row;      /* a row name, any case: "NLDATE", "@NLNUM" */
    const char *locale;   /* null: "en_US" */
    const char *encoding; /* null: "UTF-8"; the host encoding of the call */
    int32_t width;        /* -1: the row's default */
    int32_t decimals;     /* -1: the row's default */
    int32_t byteEntry;    /* nonzero: formats write through their byte entry in `encoding` */
    int32_t measureBytes; /* nonzero: widths count bytes of `encoding` */
} ZvColumnSpec;

/* What the column functions answer: done, or not run (the error text says why). */
#define ZV_COLUMN_DONE 0
#define ZV_COLUMN_NOT_RUN 1

/* A host whose current locale and time zone are given (null: "en_US", "UTC"),
 * with the module loaded; null on failure. */
ZvColumnHost *zvColumnHostNew(const char *currentLocale, const char *timeZone);
void zvColumnHostFree(ZvColumnHost *host);

/* The stride that holds any field of the column: bytes of UTF-8; -1 when the
 * column can't be made. */
int64_t zvColumnFieldBytes(ZvColumnHost *host, const ZvColumnSpec *spec);

/* Formats count values into fields of `stride` bytes each (NUL-padded);
 * lengths (bytes in use) and statuses may be null. A text longer than the
 * stride is cut at a whole character, with status 0x803fe807. */
int32_t zvColumnFormat(ZvColumnHost *host, const ZvColumnSpec *spec, const double *values, int64_t count,
                       char *fields, int64_t stride, int32_t *lengths, int32_t *statuses, char *error,
                       int64_t errorCapacity);

/* Reads count UTF-8 texts, text i being bytes[offsets[i]] up to bytes[offsets[i + 1]].
 * values get the doubles (the plain missing value where nothing was read),
 * marks the missing marks ('.', 'A'..'Z', '_', or 0); marks and statuses may be null. */
int32_t zvColumnRead(ZvColumnHost *host, const ZvColumnSpec *spec, const char *bytes, const int64_t *offsets,
                     int64_t count, double *values, char *marks, int32_t *statuses, char *error,
                     int64_t errorCapacity);

#ifdef __cplusplus
}
#endif

#endif
