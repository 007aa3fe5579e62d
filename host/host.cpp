// The reference host: pools, journals, the anchor's services, NLS services,
// locales, time zones and the load of the module.
//
// Every host object is a record that begins with its ABI struct, so that the
// static operations can find their own data from the pointer they are given.
#include <unicode/basictz.h>
#include <unicode/locid.h>
#include <unicode/timezone.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <atomic>
#include <cstring>
#include <mutex>
#include <sstream>
#include <thread>
#include <set>
#include <unordered_map>

#include "cldr.hpp"
#include "numbers.hpp"
#include "unicode_category.hpp"
#include "zvhost.hpp"

namespace zvhost {

namespace {

// Seconds from 1 January 1960 to 1 January 1970.
constexpr double kEpochShift = 315619200.0;

// Filled into blocks that were not asked to be zeroed, so that a reader of
// memory it never wrote sees something other than zeros.
constexpr unsigned char kUnsetByte = 0xCD;

std::string narrow(const ZvChar *text, int64_t length) {
    std::u16string w;
    if (text) {
        if (length < 0) {
            for (int64_t i = 0; text[i] != 0 && i < 4096; ++i) w += text[i];
        } else {
            w.assign(text, size_t(length));
        }
    }
    return utf8(w);
}

// A lock for the few instructions of a list's update, taken once or twice a
// call: cheaper than a mutex when nobody else holds it, which is nearly always.
class SpinLock {
public:
    void lock() {
        while (held_.test_and_set(std::memory_order_acquire)) std::this_thread::yield();
    }
    void unlock() { held_.clear(std::memory_order_release); }

private:
    std::atomic_flag held_;
};

// Counters are bumped from whatever thread runs a call; a column on one thread
// and a column on another may both ask for character classes at once.
void bump(int64_t &counter) { std::atomic_ref<int64_t>(counter).fetch_add(1, std::memory_order_relaxed); }

// The most entries the events log keeps.
constexpr size_t kMostEvents = size_t(1) << 16;

// What was released and torn down, in order, up to kMostEvents entries: tests
// look at the start, and a long run must not grow it without end. A
// transcoder's release comes once a call on some roads, so it is kept as its
// pair of encodings and spelt out only when the log is read.
class EventLog {
public:
    void add(std::string text) {
        std::lock_guard<SpinLock> guard(lock_);
        if (entries_.size() >= kMostEvents) return;
        entries_.push_back({kText, uint32_t(spelt_.size())});
        spelt_.push_back(std::move(text));
        full_.store(entries_.size() >= kMostEvents, std::memory_order_relaxed);
    }
    void addTranscoderRelease(uint32_t from, uint32_t to) {
        if (full_.load(std::memory_order_relaxed)) return; // the common case of a long run, without the lock
        std::lock_guard<SpinLock> guard(lock_);
        if (entries_.size() < kMostEvents) entries_.push_back({from, to});
        full_.store(entries_.size() >= kMostEvents, std::memory_order_relaxed);
    }
    const std::vector<std::string> &texts() const {
        std::lock_guard<SpinLock> guard(lock_);
        texts_.resize(entries_.size());
        for (size_t i = 0; i < entries_.size(); ++i) {
            const Entry &e = entries_[i];
            texts_[i] = e.from == kText ? spelt_[e.to]
                                        : "transcoderRelease " + std::to_string(e.from) + ">" + std::to_string(e.to);
        }
        return texts_;
    }

private:
    // A transcoder's release, or (with `from` kText) the text spelt_[to].
    struct Entry {
        uint32_t from, to;
    };
    static constexpr uint32_t kText = UINT32_MAX; // no encoding has this id
    mutable SpinLock lock_; // pools and journals log from the thread that frees or closes
    std::vector<Entry> entries_;
    std::atomic<bool> full_{false};
    std::vector<std::string> spelt_;
    mutable std::vector<std::string> texts_;
};

// ---------------------------------------------------------------------------
// Pools

class PoolImpl final : public Pool {
public:
    PoolImpl(std::string name, std::function<void()> onDestroy)
        : name_(std::move(name)), onDestroy_(std::move(onDestroy)) {
        wrapper_.base.ops = &kOps;
        wrapper_.owner = this;
    }
    ~PoolImpl() override { freeAll(); }

    HostPool *raw() override { return &wrapper_.base; }
    PoolStats stats() const override { return stats_; }
    void failAt(int64_t n) override { failAt_ = n; }
    void failFrom(int64_t n) override {
        failFrom_ = n;
        sinceFailFrom_ = 0;
    }
    std::string name() const override { return name_; }
    bool destroyed() const override { return destroyed_; }
    // Where frees and the destroy are told, in order; null: nowhere.
    void logTo(EventLog *events) { events_ = events; }
    int64_t serial() const override { return serial_; }
    int64_t releaseSince(int64_t mark) override {
        std::vector<void *> late;
        for (auto &[block, info] : blocks_)
            if (info.serial > mark) late.push_back(block);
        for (void *block : late) release(block);
        return int64_t(late.size());
    }

private:
    static PoolImpl *of(HostPool *p) {
        return p ? reinterpret_cast<Wrapper *>(p)->owner : nullptr;
    }

    static void *alloc(HostPool *p, uint64_t bytes, uint32_t flags) {
        PoolImpl *self = of(p);
        if (!self) return nullptr;
        return self->allocate(bytes, flags);
    }
    static void free(HostPool *p, void *block) {
        if (PoolImpl *self = of(p)) {
            if (self->events_) self->events_->add("poolFree " + self->name_);
            self->release(block);
        }
    }
    static void destroy(HostPool *p) {
        if (PoolImpl *self = of(p)) self->destroyPool();
    }

    void *allocate(uint64_t bytes, uint32_t flags) {
        bool fail = destroyed_;
        if (failAt_ > 0 && --failAt_ == 0) fail = true;
        if (failFrom_ > 0 && ++sinceFailFrom_ >= failFrom_) fail = true;
        if (bytes > (uint64_t(1) << 40)) fail = true;
        void *block = fail ? nullptr : std::malloc(bytes ? size_t(bytes) : 1);
        if (!block) {
            ++stats_.failures;
            return nullptr;
        }
        std::memset(block, (flags & ZV_ALLOC_ZEROED) ? 0 : kUnsetByte, bytes ? size_t(bytes) : 1);
        blocks_[block] = Block{bytes, ++serial_};
        ++stats_.allocations;
        ++stats_.liveBlocks;
        stats_.liveBytes += int64_t(bytes);
        stats_.peakBytes = std::max(stats_.peakBytes, stats_.liveBytes);
        return block;
    }

    void release(void *block) {
        if (!block) return;
        ++stats_.frees;
        auto it = blocks_.find(block);
        if (it == blocks_.end()) {
            ++stats_.badFrees;
            return;
        }
        stats_.liveBytes -= int64_t(it->second.bytes);
        --stats_.liveBlocks;
        std::free(block);
        blocks_.erase(it);
    }

    void destroyPool() {
        if (destroyed_) return;
        stats_.freedByDestroy += int64_t(blocks_.size());
        freeAll();
        destroyed_ = true;
        if (events_) events_->add("poolDestroy " + name_);
        if (onDestroy_) onDestroy_();
    }

    void freeAll() {
        for (auto &entry : blocks_) std::free(entry.first);
        blocks_.clear();
        stats_.liveBlocks = 0;
        stats_.liveBytes = 0;
    }

    // The ABI record and, behind it, the way back to this object.
    struct Wrapper {
        HostPool base;
        PoolImpl *owner;
    };
    static const HostPoolOps kOps;

    Wrapper wrapper_{};
    std::string name_;
    std::function<void()> onDestroy_;
    EventLog *events_ = nullptr;
    PoolStats stats_;
    struct Block {
        uint64_t bytes;
        int64_t serial;
    };
    std::unordered_map<void *, Block> blocks_;
    int64_t serial_ = 0;
    int64_t failAt_ = 0, failFrom_ = 0, sinceFailFrom_ = 0;
    bool destroyed_ = false;
};

const HostPoolOps PoolImpl::kOps = {PoolImpl::alloc, PoolImpl::free, PoolImpl::destroy};

// ---------------------------------------------------------------------------
// Journals

struct JournalImpl {
    HostJournal base;
    JournalRecord record;
    EventLog *events = nullptr;
};

void journalLog(HostJournal *j, int32_t level, int32_t status, const int64_t *values, int32_t count) {
    if (!j) return;
    JournalLine line;
    line.level = level;
    line.status = status;
    if (values && count > 0) line.values.assign(values, values + count);
    reinterpret_cast<JournalImpl *>(j)->record.lines.push_back(std::move(line));
}
void journalEvent(HostJournal *j, const char *what) {
    auto *impl = reinterpret_cast<JournalImpl *>(j);
    std::string name;
    for (char16_t c : impl->record.name) name.push_back(c < 0x80 ? char(c) : '?');
    if (impl->events) impl->events->add(std::string(what) + " " + name);
}
void journalClose(HostJournal *j) {
    if (!j) return;
    ++reinterpret_cast<JournalImpl *>(j)->record.closes;
    journalEvent(j, "journalClose");
}
void journalRelease(HostJournal *j) {
    if (!j) return;
    ++reinterpret_cast<JournalImpl *>(j)->record.releases;
    journalEvent(j, "journalRelease");
}
const HostJournalOps kJournalOps = {journalLog, journalClose, journalRelease};

// ---------------------------------------------------------------------------
// Locales and time zones

struct LocaleImpl {
    HostLocale base;
    Host::Impl *host = nullptr;
    std::string name;
    std::map<int, std::string> items;
    std::vector<uint8_t> table; // built on first use when empty
    bool built = false;
    int64_t holds = 0;    // who may still use it: the cache never frees it meanwhile
    uint64_t lastUse = 0; // the cache's clock at the latest request for it
};

// Locales the host keeps at most, with or without item overrides; beyond that
// the least recently used one that nothing holds goes first. Each costs its
// table of some 40 kB.
constexpr size_t kMostLocales = 128;

// Counts a call of an operation; true when the fault set for it strikes now.
// Faults are for tests on one thread; the count may come from any.
bool strikes(int64_t &fault, int64_t &calls) {
    bump(calls);
    return fault > 0 && --fault == 0;
}

// A transcoder lent to the module, and the host it goes back to.
struct TranscoderLease {
    HostTranscoder base;
    HostTranscoder *inner;
    Host::Impl *host;
    std::vector<TranscoderLease *> *idle; // where it waits between leases
    // The leases handed out and not yet released, linked through themselves
    // so that lending one costs no allocation.
    TranscoderLease *previous = nullptr, *next = nullptr;
    bool lent = false;
};

struct TimeZoneImpl {
    HostTimeZone base;
    std::unique_ptr<icu::BasicTimeZone> zone;
    int64_t *fault = nullptr, *calls = nullptr; // the host's, for timeZoneOffset
};

double zoneOffset(HostTimeZone *t, double seconds, int32_t) {
    if (!t) return 0;
    auto *self = reinterpret_cast<TimeZoneImpl *>(t);
    if (self->fault && strikes(*self->fault, *self->calls)) return std::nan("");
    if (!std::isfinite(seconds)) return 0;
    const UDate local = (seconds - kEpochShift) * 1000.0;
    int32_t raw = 0, dst = 0;
    UErrorCode err = U_ZERO_ERROR;
    // The wall time is read as ICU's Calendar reads it by default: one in a
    // spring gap by the offset before the change, a repeated one as its later
    // occurrence. The answer is the offset in force at the instant so found.
    self->zone->getOffsetFromLocal(local, UCAL_TZ_LOCAL_FORMER, UCAL_TZ_LOCAL_LATTER, raw, dst, err);
    if (U_FAILURE(err)) return 0;
    const UDate instant = local - double(raw + dst);
    self->zone->getOffset(instant, false, raw, dst, err);
    if (U_FAILURE(err)) return 0;
    return double(raw + dst) / 1000.0;
}
const HostTimeZoneOps kZoneOps = {zoneOffset};

char chrtabHandle = 0;

} // namespace

// ---------------------------------------------------------------------------

struct Host::Impl {
    struct AnchorRecord {
        HostAnchor base;
        Impl *host;
    };
    struct NlsRecord {
        NlsServices base;
        Impl *host;
    };

    HostConfig config;
    AnchorRecord anchor{};
    NlsRecord nls{};
    HostServices services{};
    std::vector<ExtensionInstance *> extensionList{nullptr};
    ExtensionInstance *instance = nullptr;

    std::unique_ptr<PoolImpl> formatPool;
    std::vector<std::unique_ptr<PoolImpl>> pools;
    JournalImpl errorJournal{};
    std::vector<std::unique_ptr<JournalImpl>> journals;

    std::map<std::string, HostTranscoder *> namedTranscoders;
    TranscoderLease *lentTranscoders = nullptr; // handed to the module and not yet released
    std::map<std::pair<uint32_t, uint32_t>, std::vector<TranscoderLease *>> idleTranscoders;
    std::pair<uint32_t, uint32_t> lastPair;               // the pair last asked for
    std::vector<TranscoderLease *> *lastIdle = nullptr; // and its idle list
    SpinLock leaseLock; // guards the lent and idle transcoders and their counters
    bool dying = false;

    std::map<std::pair<std::string, std::map<int, std::string>>, std::unique_ptr<LocaleImpl>> locales;
    std::atomic<LocaleImpl *> current{nullptr}; // currentLocale's answer, while it is in `locales`
    uint64_t useClock = 0;
    std::unique_ptr<LocaleImpl> numberFormatter;
    std::map<std::string, std::unique_ptr<TimeZoneImpl>> zones;

    std::map<std::string, int64_t> options;
    std::optional<std::pair<double, double>> fixedClock;

    Faults faults;
    int64_t factoryCalls = 0; // createPool, createJournal, openLocale: only their faults count them
    HostCounters counters;
    EventLog events;

    // Guards the caches of locales and named transcoders: the module may
    // open a locale in the middle of a call on any thread.
    std::mutex cacheLock;
    // Guards what the module's instance shares between calls, for callers on
    // several threads; and who last filled the instance's item snapshot.
    std::mutex instanceLock;
    const void *snapshotOwner = nullptr;

    static Impl *of(HostAnchor *a) { return a ? reinterpret_cast<AnchorRecord *>(a)->host : nullptr; }
    static Impl *of(NlsServices *n) { return n ? reinterpret_cast<NlsRecord *>(n)->host : nullptr; }

    // ---- anchor operations
    static HostPool *createPool(HostAnchor *a, const void *, HostJournal *, const char *name) {
        Impl *h = of(a);
        if (!h || strikes(h->faults.failCreatePool, h->factoryCalls)) return nullptr;
        auto pool = std::make_unique<PoolImpl>(name ? std::string(name) : std::string(),
                                               [h] { ++h->counters.poolsDestroyed; });
        if (h->faults.newPoolFailAt > 0) pool->failAt(h->faults.newPoolFailAt);
        ++h->counters.poolsCreated;
        pool->logTo(&h->events);
        h->pools.push_back(std::move(pool));
        return h->pools.back()->raw();
    }

    static HostJournal *createJournal(HostAnchor *a, const void *, int32_t, const ZvChar *name) {
        Impl *h = of(a);
        if (!h || strikes(h->faults.failCreateJournal, h->factoryCalls)) return nullptr;
        auto j = std::make_unique<JournalImpl>();
        j->base.ops = &kJournalOps;
        j->events = &h->events;
        if (name)
            for (size_t i = 0; name[i] != 0 && i < 4096; ++i) j->record.name += name[i];
        ++h->counters.journalsCreated;
        h->journals.push_back(std::move(j));
        return &h->journals.back()->base;
    }

    static int32_t readOption(HostAnchor *a, const ZvChar *name, int64_t length, int32_t type, void *value,
                              int64_t *size) {
        Impl *h = of(a);
        if (!h) return kBadRequest;
        if (strikes(h->faults.failReadOption, h->counters.optionReads)) return kHostFault;
        if (type != 3 || !value || (size && *size < 8)) return kBadRequest;
        auto it = h->options.find(narrow(name, length));
        if (it == h->options.end()) return kOptionNotSet;
        std::memcpy(value, &it->second, 8);
        if (size) *size = 8;
        return 0;
    }

    static int32_t readClock(HostAnchor *a, int32_t size, double *clock, uint32_t) {
        Impl *h = of(a);
        if (!h || !clock || size < 16) return kBadRequest;
        if (strikes(h->faults.failReadClock, h->counters.clockReads)) return kHostFault;
        if (h->fixedClock) {
            clock[0] = h->fixedClock->first;
            clock[1] = h->fixedClock->second;
        } else {
            const auto now = std::chrono::system_clock::now().time_since_epoch();
            clock[0] = double(std::chrono::duration_cast<std::chrono::microseconds>(now).count()) / 1e6 + kEpochShift;
            clock[1] = 0;
        }
        return 0;
    }

    static int32_t formatText(HostAnchor *a, void *, const ZvChar *format, int64_t formatLength, ZvChar *target,
                              int64_t capacity, int64_t *produced, int32_t, const int64_t *values);

    static int32_t exponentOf(HostAnchor *, double value, int32_t digits) {
        return zvhost::decimalExponent(std::fabs(value), digits);
    }

    static void *loadModule(HostAnchor *a, const char *name, int64_t length, int32_t) {
        Impl *h = of(a);
        if (!h || !name || length != 8 || std::memcmp(name, "zvchrtab", 8) != 0) return nullptr;
        bump(h->counters.charModuleLoads);
        return &chrtabHandle;
    }

    // ---- NLS operations
    std::function<bool()> transcodeFault() {
        return [this] { return strikes(faults.failTranscode, counters.transcodes); };
    }
    // A transcoder the module asked for. The module makes and releases one
    // per call on some roads (the number readers' way back), and opening an
    // ICU converter costs more than the call: a released one waits, idle, for
    // the next request of the same pair.
    static int32_t leaseTranscode(HostTranscoder *t, const void *source, int64_t bytes, void *target,
                                  int64_t capacity, int64_t *produced, int32_t zero) {
        HostTranscoder *inner = reinterpret_cast<TranscoderLease *>(t)->inner;
        return inner->ops->transcode(inner, source, bytes, target, capacity, produced, zero);
    }
    static void leaseRelease(HostTranscoder *t) {
        auto *lease = reinterpret_cast<TranscoderLease *>(t);
        Impl &h = *lease->host;
        std::lock_guard<SpinLock> guard(h.leaseLock);
        if (!lease->lent) return;
        h.unlink(lease);
        ++h.counters.transcodersReleased;
        h.events.addTranscoderRelease(t->sourceEncodingId, t->encodingId);
        auto &idle = *lease->idle;
        if (h.dying || idle.size() >= kIdleTranscoders) {
            lease->inner->ops->transcoderRelease(lease->inner);
            delete lease;
        } else {
            idle.push_back(lease);
        }
    }
    static constexpr HostTranscoderOps kLeaseOps = {leaseTranscode, leaseRelease};
    static constexpr size_t kIdleTranscoders = 8; // for each pair of encodings

    HostTranscoder *newTranscoder(uint32_t from, uint32_t to) {
        std::lock_guard<SpinLock> guard(leaseLock);
        if (strikes(faults.failCreateTranscoder, factoryCalls)) return nullptr;
        TranscoderLease *lease = nullptr;
        // Calls ask for the same pair again and again; the map's entries stay where they are.
        if (!lastIdle || lastPair != std::pair{from, to}) {
            lastPair = {from, to};
            lastIdle = &idleTranscoders[lastPair];
        }
        auto &idle = *lastIdle;
        if (!idle.empty()) {
            lease = idle.back();
            idle.pop_back();
        } else {
            HostTranscoder *inner = makeTranscoder(from, to, {}, transcodeFault());
            if (!inner) return nullptr;
            lease = new TranscoderLease{{&kLeaseOps, inner->encodingId, inner->sourceEncodingId}, inner, this, &idle};
        }
        lease->lent = true;
        lease->previous = nullptr;
        lease->next = lentTranscoders;
        if (lentTranscoders) lentTranscoders->previous = lease;
        lentTranscoders = lease;
        ++counters.transcodersCreated;
        return &lease->base;
    }
    void unlink(TranscoderLease *lease) {
        lease->lent = false;
        if (lease->previous) lease->previous->next = lease->next;
        else lentTranscoders = lease->next;
        if (lease->next) lease->next->previous = lease->previous;
    }
    static HostTranscoder *createTranscoder(NlsServices *n, uint32_t from, uint32_t to, int32_t, int32_t) {
        Impl *h = of(n);
        return h ? h->newTranscoder(from, to) : nullptr;
    }
    static HostTranscoder *transcoderForEncoding(NlsServices *n, uint32_t id, int32_t, int32_t) {
        Impl *h = of(n);
        return h ? h->newTranscoder(id, ZV_ENCODING_UTF16) : nullptr;
    }
    static HostLocale *openLocale(NlsServices *n, const ZvChar *name, int64_t length) {
        Impl *h = of(n);
        if (!h) return nullptr;
        std::lock_guard<std::mutex> guard(h->cacheLock);
        if (strikes(h->faults.failOpenLocale, h->factoryCalls)) return nullptr;
        LocaleImpl *l = h->findLocale(narrow(name, length < 0 ? 0 : length), {});
        if (!l) return nullptr;
        ++h->counters.localesOpened;
        ++l->holds; // until localeRelease
        return &l->base;
    }
    static HostLocale *currentLocale(NlsServices *n) {
        Impl *h = of(n);
        if (!h) return nullptr;
        if (strikes(h->faults.failCurrentLocale, h->counters.currentLocales)) return nullptr;
        // Asked for at every read: the answer is kept while the cache keeps
        // it, and then given without the cache's lock.
        if (LocaleImpl *kept = h->current.load(std::memory_order_acquire)) return &kept->base;
        std::lock_guard<std::mutex> guard(h->cacheLock);
        if (!h->current) h->current = h->findLocale(h->config.currentLocale, {});
        LocaleImpl *l = h->current;
        if (l && l->holds == 0) l->holds = 1; // a call may use it at any time: it stays
        return l ? &l->base : nullptr;
    }
    static int32_t charClass(NlsServices *n, uint32_t c, uint32_t mask) {
        if (Impl *h = of(n)) bump(h->counters.charServiceCalls);
        if (c > 0x10FFFF) return 0;
        return int32_t(categoryMask(int8_t(u_charType(UChar32(c)))) & mask);
    }
    static uint32_t charUpper(NlsServices *n, uint32_t c, int32_t) {
        if (Impl *h = of(n)) bump(h->counters.charServiceCalls);
        return c > 0x10FFFF ? c : uint32_t(u_toupper(UChar32(c)));
    }
    static uint32_t charLower(NlsServices *n, uint32_t c, int32_t) {
        if (Impl *h = of(n)) bump(h->counters.charServiceCalls);
        return c > 0x10FFFF ? c : uint32_t(u_tolower(UChar32(c)));
    }

    // ---- locale operations
    static LocaleImpl *localeOf(HostLocale *l) { return reinterpret_cast<LocaleImpl *>(l); }

    static bool ensureTable(LocaleImpl *l) {
        if (l->built) return true;
        std::string error;
        if (!buildCldrTable(l->name, l->table, error)) return false;
        for (auto &[item, raw] : l->items) setRawItem(l->table, item, raw);
        l->table.resize(ZV_LOCALE_TABLE_SIZE, 0);
        l->built = true;
        return true;
    }

    static int32_t localeTextTable(HostLocale *l, int32_t, const uint8_t **table) {
        if (!l || !table) return kBadRequest;
        LocaleImpl *self = localeOf(l);
        if (self->host && strikes(self->host->faults.failLocaleTextTable, self->host->counters.textTables))
            return kHostFault;
        if (!ensureTable(self)) return kBadRequest;
        *table = self->table.data();
        return 0;
    }
    // True when a test asked this call of a locale's operation to fail.
    static bool localeFault(HostLocale *l, int64_t Faults::*fault, int64_t HostCounters::*calls) {
        Impl *h = l ? localeOf(l)->host : nullptr;
        return h && strikes(h->faults.*fault, h->counters.*calls);
    }
    static int32_t formatNumber(HostLocale *l, double value, int32_t width, int32_t decimals, uint32_t flags,
                                ZvChar *target, int64_t capacity, int64_t *produced) {
        // A failure may come after the text is written: the fault writes it,
        // so that a caller who takes the text of a failed call shows.
        const bool fails = localeFault(l, &Faults::failFormatNumber, &HostCounters::numberFormats);
        const int32_t status = formatNumberText(value, width, decimals, flags, target, capacity, produced);
        return fails ? kHostFault : status;
    }
    static int32_t parseDouble(HostLocale *l, const ZvChar *text, int64_t length, double *value, int64_t *used) {
        if (localeFault(l, &Faults::failParseDouble, &HostCounters::doubleParses)) {
            if (used) *used = 0;
            return kHostFault;
        }
        return parseDoubleText(text, length, value, used);
    }
    static int32_t parseInteger(HostLocale *l, const ZvChar *text, int64_t length, int32_t, int64_t *value,
                                int64_t *used) {
        if (localeFault(l, &Faults::failParseInteger, &HostCounters::integerParses)) {
            if (used) *used = 0;
            return kHostFault;
        }
        return parseIntegerText(text, length, value, used);
    }
    static void localeRelease(HostLocale *l) {
        if (l && localeOf(l)->host) {
            std::lock_guard<std::mutex> guard(localeOf(l)->host->cacheLock);
            if (localeOf(l)->holds > 0) --localeOf(l)->holds;
            ++localeOf(l)->host->counters.localesReleased;
            localeOf(l)->host->events.add("localeRelease " + localeOf(l)->name);
        }
    }

    static const HostAnchorOps kAnchorOps;
    static const NlsServicesOps kNlsOps;
    static const HostLocaleOps kLocaleOps;

    std::unique_ptr<LocaleImpl> newLocale(const std::string &name, const std::map<int, std::string> &items) {
        auto l = std::make_unique<LocaleImpl>();
        l->base.ops = &kLocaleOps;
        l->host = this;
        l->name = name;
        l->items = items;
        return l;
    }

    // The cached locale of that name and items, made on first request; the
    // caller holds cacheLock.
    LocaleImpl *findLocale(const std::string &name, const std::map<int, std::string> &items) {
        auto key = std::make_pair(name, items);
        if (auto it = locales.find(key); it != locales.end()) {
            it->second->lastUse = ++useClock;
            return it->second.get();
        }
        if (name.empty() || name.size() > 100) return nullptr;
        auto l = newLocale(name, items);
        if (items.empty()) {
            if (!ensureTable(l.get())) return nullptr;
        } else {
            // Overrides go over a copy of the plain locale's table, built once.
            LocaleImpl *plain = findLocale(name, {});
            if (!plain) return nullptr;
            l->table = plain->table;
            for (auto &[item, raw] : items) setRawItem(l->table, item, raw);
            l->built = true;
        }
        l->lastUse = ++useClock;
        LocaleImpl *raw = l.get();
        locales.emplace(std::move(key), std::move(l));
        evictLocales(raw);
        return raw;
    }

    // Frees least recently used locales that nothing holds, down to the limit.
    void evictLocales(const LocaleImpl *keep) {
        while (locales.size() > kMostLocales) {
            auto oldest = locales.end();
            for (auto it = locales.begin(); it != locales.end(); ++it)
                if (it->second.get() != keep && it->second->holds == 0 &&
                    (oldest == locales.end() || it->second->lastUse < oldest->second->lastUse))
                    oldest = it;
            if (oldest == locales.end()) return; // all held: the cache waits for a release
            if (oldest->second.get() == current) current = nullptr;
            locales.erase(oldest);
        }
    }

    TimeZoneImpl *findZone(const std::string &iana) {
        if (auto it = zones.find(iana); it != zones.end()) return it->second.get();
        if (iana.empty() || iana.size() > 100) return nullptr;
        const icu::UnicodeString id = icu::UnicodeString::fromUTF8(iana);
        icu::UnicodeString canonical;
        UBool system = false;
        UErrorCode err = U_ZERO_ERROR;
        icu::TimeZone::getCanonicalID(id, canonical, system, err);
        if (U_FAILURE(err) || !system) return nullptr;
        std::unique_ptr<icu::TimeZone> tz(icu::TimeZone::createTimeZone(id));
        auto *basic = dynamic_cast<icu::BasicTimeZone *>(tz.get());
        if (!basic) return nullptr;
        tz.release();
        auto z = std::make_unique<TimeZoneImpl>();
        z->base.ops = &kZoneOps;
        z->zone.reset(basic);
        z->fault = &faults.failTimeZoneOffset;
        z->calls = &counters.zoneOffsets;
        TimeZoneImpl *raw = z.get();
        zones.emplace(iana, std::move(z));
        return raw;
    }
};

const HostAnchorOps Host::Impl::kAnchorOps = {
    Impl::createPool, Impl::createJournal, Impl::readOption, Impl::readClock,
    Impl::formatText, Impl::exponentOf,    Impl::loadModule};
const NlsServicesOps Host::Impl::kNlsOps = {Impl::createTranscoder, Impl::transcoderForEncoding,
                                            Impl::openLocale,       Impl::currentLocale,
                                            Impl::charClass,        Impl::charUpper,
                                            Impl::charLower};
const HostLocaleOps Host::Impl::kLocaleOps = {Impl::localeTextTable, Impl::formatNumber, Impl::parseDouble,
                                              Impl::parseInteger, Impl::localeRelease};

// printf-like wide text: %i %d %u %x %X %c %s %%, with '-' and '0' flags and
// a width. Values are taken in order; a missing array reads as zeros.
int32_t Host::Impl::formatText(HostAnchor *a, void *, const ZvChar *format, int64_t formatLength,
                               ZvChar *target, int64_t capacity, int64_t *produced, int32_t,
                               const int64_t *values) {
    if (Impl *h = of(a)) bump(h->counters.formatTextCalls);
    int64_t written = 0;
    bool cut = false;
    if (!target || capacity < 0) capacity = 0;
    auto put = [&](char16_t u) {
        if (written < capacity) target[written++] = u;
        else cut = true;
    };
    if (format && formatLength < 0) {
        formatLength = 0;
        while (format[formatLength] != 0 && formatLength < (int64_t(1) << 20)) ++formatLength;
    }
    if (!format) formatLength = 0;
    size_t next = 0;
    auto take = [&]() -> int64_t { return values ? values[next++] : (next++, 0); };
    for (int64_t i = 0; i < formatLength; ++i) {
        const ZvChar c = format[i];
        if (c != u'%' || i + 1 >= formatLength) {
            put(c);
            continue;
        }
        int64_t j = i + 1;
        bool left = false, zero = false;
        for (; j < formatLength && (format[j] == u'-' || format[j] == u'0'); ++j)
            (format[j] == u'-' ? left : zero) = true;
        int width = 0;
        for (; j < formatLength && format[j] >= u'0' && format[j] <= u'9'; ++j)
            width = std::min(width * 10 + int(format[j] - u'0'), 4096);
        if (j >= formatLength) {
            for (int64_t k = i; k < formatLength; ++k) put(format[k]);
            break;
        }
        std::u16string body;
        bool numeric = false;
        switch (format[j]) {
        case u'%': body = u"%"; break;
        case u'i':
        case u'd':
        case u'u':
        case u'x':
        case u'X': {
            const int64_t v = take();
            std::string digits;
            if (format[j] == u'i' || format[j] == u'd') digits = std::to_string(v);
            else if (format[j] == u'u') digits = std::to_string(uint64_t(v));
            else {
                const char *hex = format[j] == u'x' ? "0123456789abcdef" : "0123456789ABCDEF";
                uint64_t u = uint64_t(v);
                do {
                    digits.insert(digits.begin(), hex[u & 15]);
                    u >>= 4;
                } while (u);
            }
            body.assign(digits.begin(), digits.end());
            numeric = true;
            break;
        }
        case u'c': {
            const uint32_t v = uint32_t(take());
            if (v > 0xFFFF && v <= 0x10FFFF) {
                body += char16_t(0xD7C0 + (v >> 10));
                body += char16_t(0xDC00 | (v & 0x3FF));
            } else {
                body += char16_t(v);
            }
            break;
        }
        case u's': {
            const auto *s = reinterpret_cast<const ZvChar *>(take());
            if (s)
                for (size_t k = 0; s[k] != 0 && k < (size_t(1) << 20); ++k) body += s[k];
            break;
        }
        default:
            for (int64_t k = i; k <= j; ++k) body += format[k];
            width = 0;
            break;
        }
        const size_t pad = size_t(width) > body.size() ? size_t(width) - body.size() : 0;
        if (left) {
            for (char16_t u : body) put(u);
            for (size_t k = 0; k < pad; ++k) put(u' ');
        } else if (zero && numeric) {
            size_t k = 0;
            if (!body.empty() && body[0] == u'-') put(body[k++]);
            for (size_t p = 0; p < pad; ++p) put(u'0');
            for (; k < body.size(); ++k) put(body[k]);
        } else {
            for (size_t p = 0; p < pad; ++p) put(u' ');
            for (char16_t u : body) put(u);
        }
        i = j;
    }
    if (produced) *produced = written;
    return cut ? ZV_TARGET_TOO_SMALL : 0;
}

// ---------------------------------------------------------------------------

Host::Host(HostConfig config) : impl_(std::make_unique<Impl>()) {
    Impl &h = *impl_;
    h.config = std::move(config);
    h.anchor.base.ops = &Impl::kAnchorOps;
    h.anchor.host = &h;
    h.nls.base.ops = &Impl::kNlsOps;
    h.nls.base.owner = &h.anchor.base;
    h.nls.host = &h;
    h.anchor.base.nlsServices = h.config.withNls ? &h.nls.base : nullptr;
    h.numberFormatter = h.newLocale("en_US", {});
    h.anchor.base.numberFormatter = &h.numberFormatter->base;
    h.anchor.base.hostExponentMode = 0;
    h.formatPool = std::make_unique<PoolImpl>("formatPool", nullptr);
    h.errorJournal.base.ops = &kJournalOps;
    h.errorJournal.record.name = u"error journal";
    h.services.formatPool = h.formatPool->raw();
    h.services.extensionList = h.extensionList.data();
    if (!setTimeZone(h.config.timeZone)) setTimeZone("UTC");
}

Host::~Host() {
    if (impl_->instance) unloadModule();
    impl_->dying = true;
    while (TranscoderLease *lease = impl_->lentTranscoders) lease->base.ops->transcoderRelease(&lease->base);
    for (auto &[pair, idle] : impl_->idleTranscoders)
        for (TranscoderLease *lease : idle) {
            lease->inner->ops->transcoderRelease(lease->inner);
            delete lease;
        }
    for (auto &[name, t] : impl_->namedTranscoders)
        if (t) t->ops->transcoderRelease(t);
}

HostAnchor *Host::anchor() { return &impl_->anchor.base; }
HostServices *Host::services() { return &impl_->services; }
NlsServices *Host::nls() { return impl_->anchor.base.nlsServices; }
Pool &Host::formatPool() { return *impl_->formatPool; }

void Host::setOption(const std::string &name, int64_t value) { impl_->options[name] = value; }
void Host::clearOption(const std::string &name) { impl_->options.erase(name); }

void Host::setClock(double value, double shift) { impl_->fixedClock = std::make_pair(value, shift); }
void Host::useSystemClock() { impl_->fixedClock.reset(); }

bool Host::setTimeZone(const std::string &iana) {
    TimeZoneImpl *z = impl_->findZone(iana);
    if (!z) return false;
    impl_->services.timeZone = &z->base;
    return true;
}

HostTimeZone *Host::timeZone(const std::string &iana) {
    TimeZoneImpl *z = impl_->findZone(iana);
    return z ? &z->base : nullptr;
}

Faults &Host::faults() { return impl_->faults; }
const HostCounters &Host::counters() const { return impl_->counters; }
const std::vector<std::string> &Host::events() const { return impl_->events.texts(); }

std::vector<Pool *> Host::createdPools() {
    std::vector<Pool *> all;
    for (auto &p : impl_->pools) all.push_back(p.get());
    return all;
}

std::vector<JournalRecord> Host::journals() const {
    std::vector<JournalRecord> all{impl_->errorJournal.record};
    for (auto &j : impl_->journals) all.push_back(j->record);
    return all;
}

HostJournal *Host::errorJournal() { return &impl_->errorJournal.base; }
const JournalRecord &Host::errorJournalRecord() const { return impl_->errorJournal.record; }

HostTranscoder *Host::transcoder(const std::string &encoding) {
    // A converter keeps state while it converts: each thread has its own.
    std::ostringstream key;
    key << encoding << '\n' << std::this_thread::get_id();
    std::lock_guard<std::mutex> guard(impl_->cacheLock);
    if (auto it = impl_->namedTranscoders.find(key.str()); it != impl_->namedTranscoders.end()) return it->second;
    const std::optional<uint32_t> id = encodingIdOf(encoding);
    if (!id) return nullptr;
    HostTranscoder *t = makeTranscoder(ZV_ENCODING_UTF16, *id, {}, impl_->transcodeFault());
    if (t) impl_->namedTranscoders[key.str()] = t;
    return t;
}

void Host::holdLocale(HostLocale *locale) {
    if (!locale) return;
    std::lock_guard<std::mutex> guard(impl_->cacheLock);
    ++Impl::localeOf(locale)->holds;
}

HostLocale *Host::heldLocale(const std::string &name, const std::map<int, std::string> &items) {
    std::lock_guard<std::mutex> guard(impl_->cacheLock);
    LocaleImpl *l = impl_->findLocale(name, items);
    if (!l) return nullptr;
    ++l->holds;
    return &l->base;
}

void Host::dropLocale(HostLocale *locale) {
    if (!locale) return;
    std::lock_guard<std::mutex> guard(impl_->cacheLock);
    if (Impl::localeOf(locale)->holds > 0) --Impl::localeOf(locale)->holds;
}

size_t Host::localesKept() const {
    std::lock_guard<std::mutex> guard(impl_->cacheLock);
    return impl_->locales.size();
}

HostLocale *Host::locale(const std::string &name, const std::map<int, std::string> &items) {
    std::lock_guard<std::mutex> guard(impl_->cacheLock);
    LocaleImpl *l = impl_->findLocale(name, items);
    return l ? &l->base : nullptr;
}

ExtensionInstance *Host::loadModule() {
    Impl &h = *impl_;
    if (h.instance) return h.instance;
    if (zvextent(&h.anchor.base) != 0) return nullptr;
    ExtensionInstance *in = zvlocfmt(&h.anchor.base, &h.errorJournal.base);
    if (!in) return nullptr;
    static const char kName[8] = {'z', 'v', 'l', 'o', 'c', 'f', 'm', 't'};
    in->extensionName = kName;
    h.instance = in;
    h.extensionList.back() = in;
    h.extensionList.push_back(nullptr);
    h.services.extensionList = h.extensionList.data();
    return in;
}

void Host::unloadModule() {
    Impl &h = *impl_;
    if (!h.instance) return;
    ExtensionInstance *in = h.instance;
    h.extensionList.erase(std::remove(h.extensionList.begin(), h.extensionList.end(), in), h.extensionList.end());
    if (h.extensionList.empty() || h.extensionList.back() != nullptr) h.extensionList.push_back(nullptr);
    h.services.extensionList = h.extensionList.data();
    h.instance = nullptr;
    in->destroy(in);
}

ExtensionInstance *Host::instance() { return impl_->instance; }

std::mutex &Host::instanceLock() { return impl_->instanceLock; }
const void *&Host::snapshotOwner() { return impl_->snapshotOwner; }

void Host::loadCharModule() {
    // The module stores the handle by a plain store at its first need; made
    // here, before columns run on several threads, that store never happens.
    NlsServices *n = nls();
    std::lock_guard<std::mutex> guard(impl_->instanceLock);
    if (n && !n->charModule) n->charModule = Impl::loadModule(anchor(), "zvchrtab", 8, 0);
}

std::unique_ptr<Pool> makePool(const std::string &name) { return std::make_unique<PoolImpl>(name, nullptr); }

} // namespace zvhost
