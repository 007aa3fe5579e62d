// The C face of the column API.
#include "zvcolumn.h"

#include <cstring>
#include <new>

#include "zvhost.hpp"

struct ZvColumnHost {
    zvhost::Host host;
    explicit ZvColumnHost(zvhost::HostConfig config) : host(std::move(config)) {}
};

namespace {

zvhost::CallSpec specOf(const ZvColumnSpec &s) {
    zvhost::CallSpec spec;
    if (s.locale) spec.locale = s.locale;
    if (s.encoding) spec.encoding = s.encoding;
    spec.width = s.width;
    spec.decimals = s.decimals;
    spec.entry = s.byteEntry ? zvhost::Entry::Byte : zvhost::Entry::Wide;
    spec.measureBytes = s.measureBytes != 0;
    return spec;
}

// Whole bytes of the message that fit, and a NUL.
int32_t fail(const std::string &message, char *error, int64_t capacity) {
    if (error && capacity > 0) {
        const size_t n = std::min(message.size(), size_t(capacity - 1));
        std::memcpy(error, message.data(), n);
        error[n] = 0;
    }
    return ZV_COLUMN_NOT_RUN;
}

template <typename Body>
int32_t guarded(char *error, int64_t capacity, Body body) {
    try {
        const std::string message = body();
        return message.empty() ? ZV_COLUMN_DONE : fail(message, error, capacity);
    } catch (const std::bad_alloc &) {
        return fail("out of memory", error, capacity);
    } catch (...) {
        return fail("the column failed", error, capacity);
    }
}

} // namespace

extern "C" {

ZvColumnHost *zvColumnHostNew(const char *currentLocale, const char *timeZone) {
    try {
        zvhost::HostConfig config;
        if (currentLocale) config.currentLocale = currentLocale;
        if (timeZone) config.timeZone = timeZone;
        auto *h = new ZvColumnHost(config);
        if (!h->host.loadModule()) {
            delete h;
            return nullptr;
        }
        return h;
    } catch (...) {
        return nullptr;
    }
}

void zvColumnHostFree(ZvColumnHost *host) { delete host; }

int64_t zvColumnFieldBytes(ZvColumnHost *host, const ZvColumnSpec *spec) {
    if (!host || !spec || !spec->row) return -1;
    try {
        zvhost::ColumnFormatter column(host->host, spec->row, specOf(*spec));
        return column.error().empty() ? column.fieldBytes() : -1;
    } catch (...) {
        return -1;
    }
}

int32_t zvColumnFormat(ZvColumnHost *host, const ZvColumnSpec *spec, const double *values, int64_t count,
                       char *fields, int64_t stride, int32_t *lengths, int32_t *statuses, char *error,
                       int64_t errorCapacity) {
    if (!host || !spec || !spec->row || count < 0 || stride < 0 || (count > 0 && (!values || !fields)))
        return fail("bad arguments", error, errorCapacity);
    return guarded(error, errorCapacity, [&] {
        return zvhost::formatColumn(host->host, spec->row, specOf(*spec), values, size_t(count), fields,
                                    size_t(stride), lengths, statuses);
    });
}

int32_t zvColumnRead(ZvColumnHost *host, const ZvColumnSpec *spec, const char *bytes, const int64_t *offsets,
                     int64_t count, double *values, char *marks, int32_t *statuses, char *error,
                     int64_t errorCapacity) {
    if (!host || !spec || !spec->row || count < 0 || (count > 0 && (!offsets || !values || (!bytes && offsets[count] > 0))))
        return fail("bad arguments", error, errorCapacity);
    return guarded(error, errorCapacity, [&] {
        return zvhost::readColumn(host->host, spec->row, specOf(*spec), bytes, offsets, size_t(count), values,
                                  marks, statuses);
    });
}

} // extern "C"
