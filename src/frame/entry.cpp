// The exports: the anchor word, the build and teardown of the instance, the
// version answers and the build record.
#include <cstring>
#include <iterator>

#include "frame/frame.hpp"
#include "frame/table.hpp"
#include "zvlocfmt/version.h"

namespace zv {

HostAnchor *hostAnchor = nullptr;

namespace {

constexpr int32_t kBuildFailureLevel = 4;

// The low half of the journal descriptor's third word.
constexpr uint64_t kJournalDescriptorFlags = 0x40000000u;
// The locale whose plain digits the number routines rebuild.
constexpr ZvChar kDefaultLocale[] = u"en_US";

// The module's version, and the version it keeps faith with.
struct Version {
    int64_t major, minor, patch;
};
constexpr Version kVersionCurrent{ZVLOCFMT_VERSION_MAJOR, ZVLOCFMT_VERSION_MINOR, ZVLOCFMT_VERSION_PATCH};
constexpr Version kVersionBase{6, 0, 0};

void storeVersion(const Version &v, int64_t *a, int64_t *b, int64_t *c) {
    if (a) *a = v.major;
    if (b) *b = v.minor;
    if (c) *c = v.patch;
}

// The instance's two version operations answer with a status, as the host's
// table of operations has them; it is always 0.
int32_t versionCurrent(ExtensionInstance *, int64_t *a, int64_t *b, int64_t *c) {
    storeVersion(kVersionCurrent, a, b, c);
    return 0;
}

int32_t versionBase(ExtensionInstance *, int64_t *a, int64_t *b, int64_t *c) {
    storeVersion(kVersionBase, a, b, c);
    return 0;
}

void reportNoMemory(HostJournal *errorJournal) {
    if (errorJournal && errorJournal->ops && errorJournal->ops->logStatus)
        errorJournal->ops->logStatus(errorJournal, kBuildFailureLevel, ZV_NO_MEMORY, nullptr, 0);
}

void releaseTranscoder(HostTranscoder *t) {
    if (t) t->ops->transcoderRelease(t);
}

// Closes and releases what the build made, then the pool with the instance.
void unwind(ExtensionInstance *instance) {
    HostJournal *journal = instance->journal;
    if (journal) {
        if (instance->journalOpen != 0) journal->ops->journalClose(journal);
        journal->ops->journalRelease(journal);
    }
    releaseTranscoder(instance->wideFromLocaleText);
    releaseTranscoder(instance->wideToWide);
    if (instance->defaultLocale) instance->defaultLocale->ops->localeRelease(instance->defaultLocale);
    HostPool *pool = instance->pool;
    if (instance->monetaryRecord) pool->ops->poolFree(pool, instance->monetaryRecord);
    pool->ops->poolDestroy(pool);
}

// The instance's destroy operation; its status, always 0, is the host's
// table's shape.
int32_t destroyInstance(ExtensionInstance *instance) {
    if (instance) unwind(instance);
    return 0;
}

// The build record behind zvvercn1: 26 words, strings but word 3 (seconds
// since 1970 of the build) and zeros from word 18 on.
#ifndef ZV_BUILD_EPOCH
#define ZV_BUILD_EPOCH 0
#endif
#ifndef ZV_BUILD_HOST
#define ZV_BUILD_HOST "unknown"
#endif
#ifndef ZV_BUILD_DATE
#define ZV_BUILD_DATE __DATE__ " " __TIME__
#endif

struct BuildRecord {
    uint64_t words[26];
};

const BuildRecord &buildRecord() {
    static const BuildRecord record = {{
        reinterpret_cast<uint64_t>(ZVLOCFMT_VERSION_TEXT), // version text
        reinterpret_cast<uint64_t>("main"),           // branch
        reinterpret_cast<uint64_t>("zvlocfmt"),       // component family
        static_cast<uint64_t>(ZV_BUILD_EPOCH),        // build time, seconds since 1970
        reinterpret_cast<uint64_t>("zvlocfmt-" ZVLOCFMT_VERSION_TEXT), // its stamp
        reinterpret_cast<uint64_t>("zvregional"),     // second component family
        reinterpret_cast<uint64_t>("zvregional-6.1"), // its stamp
        reinterpret_cast<uint64_t>("V6"),             // version keys
        reinterpret_cast<uint64_t>("R1"),
        reinterpret_cast<uint64_t>("M1"),
        reinterpret_cast<uint64_t>("C++20"),
        reinterpret_cast<uint64_t>("LP64"),
        reinterpret_cast<uint64_t>("UTF-16"),
        reinterpret_cast<uint64_t>("247"),
        reinterpret_cast<uint64_t>("150"),
        reinterpret_cast<uint64_t>("97"),
        reinterpret_cast<uint64_t>(ZV_BUILD_HOST),    // build host
        reinterpret_cast<uint64_t>(ZV_BUILD_DATE),    // build date
        0, 0, 0, 0, 0, 0, 0, 0,
    }};
    return record;
}

static_assert(sizeof(BuildRecord) == ZV_BUILD_RECORD_BYTES);

} // namespace

} // namespace zv

using namespace zv;

extern "C" {

ZV_EXPORT int32_t zvextent(HostAnchor *anchor) {
    hostAnchor = anchor;
    return 0;
}

ZV_EXPORT int32_t zvextver(HostAnchor *anchor, int64_t *major, int64_t *minor) {
    if (major) *major = kVersionCurrent.major;
    if (minor) *minor = kVersionCurrent.minor;
    hostAnchor = anchor;
    return 0;
}

ZV_EXPORT void zvvercn1(void *target) {
    if (target) std::memcpy(target, &buildRecord(), ZV_BUILD_RECORD_BYTES);
}

ZV_EXPORT ExtensionInstance *zvlocfmt(HostAnchor *anchor, HostJournal *errorJournal) {
    if (!anchor || !anchor->ops) return nullptr;
    NlsServices *nls = anchor->nlsServices;

    uint64_t poolDescriptor[3] = {0, 0, 0};
    HostPool *pool = anchor->ops->createPool(anchor, poolDescriptor, errorJournal, "zvregional pool");
    if (!pool) {
        reportNoMemory(errorJournal);
        return nullptr;
    }
    auto *instance = static_cast<ExtensionInstance *>(
        pool->ops->poolAlloc(pool, sizeof(ExtensionInstance), ZV_ALLOC_ZEROED));
    if (!instance) {
        reportNoMemory(errorJournal);
        pool->ops->poolDestroy(pool);
        return nullptr;
    }
    instance->pool = pool;
    instance->destroy = destroyInstance;
    instance->anchor = anchor;
    instance->versionCurrent = versionCurrent;
    instance->versionBase = versionBase;
    instance->formatTable = formatTable();
    instance->journalOpen = 0;

    uint64_t journalDescriptor[3] = {0, 0, kJournalDescriptorFlags};
    instance->journal = anchor->ops->createJournal(anchor, journalDescriptor, 0, u"zvregional Jnl");
    instance->monetaryRecord = nullptr;

    if (nls) {
        instance->wideFromLocaleText = nls->ops->createTranscoder(
            nls, ZV_ENCODING_LOCALE_TEXT, ZV_ENCODING_UTF16, 0, 0);
        if (instance->wideFromLocaleText)
            instance->wideToWide =
                nls->ops->createTranscoder(nls, ZV_ENCODING_UTF16, ZV_ENCODING_UTF16, 0, 0);
        if (instance->wideToWide)
            instance->defaultLocale = nls->ops->openLocale(nls, kDefaultLocale, std::size(kDefaultLocale) - 1);
    }
    if (!instance->wideFromLocaleText || !instance->wideToWide || !instance->defaultLocale) {
        unwind(instance);
        return nullptr;
    }
    return instance;
}

} // extern "C"
