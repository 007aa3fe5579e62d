// Rows of the format table and calls through them: the host fills a
// FormatCall, runs the wide or byte entry, and checks what came back.
#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstring>

#include "zvhost.hpp"

#include "locale/block.hpp"

namespace zvhost {

namespace {

constexpr size_t kGuard = 64;             // units (or bytes) before and behind the target
constexpr char16_t kWideSentinel = 0xFDD1; // a noncharacter nobody writes
constexpr uint8_t kByteSentinel = 0xA5;
constexpr uint64_t kUntouchedBits = 0x7FF4DEADBEEF0001ull;
// The most units (or bytes) a target gets when its capacity follows the
// width: a larger width still goes to the routine as it is.
constexpr int32_t kMaxCapacity = 65536;

bool blankRow(const FormatTableRow &row) {
    for (ZvChar c : row.name)
        if (c != u' ') return false;
    return true;
}

char16_t upper(char16_t c) { return c >= u'a' && c <= u'z' ? char16_t(c - 32) : c; }

// The fields of the record the callee may change: outputLength and localeBlock.
bool onlyResultsChanged(const FormatCall &before, const FormatCall &after) {
    const auto *a = reinterpret_cast<const unsigned char *>(&before), *b = reinterpret_cast<const unsigned char *>(&after);
    constexpr size_t length = offsetof(FormatCall, outputLength), block = offsetof(FormatCall, localeBlock);
    constexpr size_t afterLength = length + sizeof(int32_t), afterBlock = block + sizeof(void *);
    return std::memcmp(a, b, length) == 0 && std::memcmp(a + afterLength, b + afterLength, block - afterLength) == 0 &&
           std::memcmp(a + afterBlock, b + afterBlock, sizeof(FormatCall) - afterBlock) == 0;
}

// Transcoders from a host encoding back to UTF-16, one per encoding and thread.
HostTranscoder *decoderFrom(uint32_t encoding) {
    struct Release {
        void operator()(HostTranscoder *t) const { t->ops->transcoderRelease(t); }
    };
    thread_local std::map<uint32_t, std::unique_ptr<HostTranscoder, Release>> decoders;
    auto &slot = decoders[encoding];
    if (!slot) slot.reset(makeTranscoder(encoding, ZV_ENCODING_UTF16));
    return slot.get();
}

std::string notBuilt(const FormatTableRow &row) { return "row " + rowName(row) + " is not built yet"; }

// The width, decimals and flags a CallSpec asks for, over a record that has its locale.
void setCallPart(FormatCall &call, const FormatTableRow &row, const CallSpec &spec) {
    call.width = spec.width == -1 && !spec.exact ? int32_t(row.defaultWidth) : spec.width;
    call.decimals = spec.decimals == -1 && !spec.exact ? int32_t(row.defaultDecimals) : spec.decimals;
    call.flags = spec.validate ? ZV_FLAG_CHECK_LIMITS : 0;
    call.measureBytes = spec.measureBytes ? 1 : 0;
}

// The record behind callPool: the key "ZVRG" in its first eight bytes, the pool in word 9.
using PoolRecord = std::array<uint64_t, 10>;

// Common preparation of a call; an error text when it can't be made.
std::string prepare(Host &host, const FormatTableRow &row, const CallSpec &spec, FormatCall &call, LocaleHold &hold,
                    PoolRecord &poolRecord) {
    std::memset(&call, 0, sizeof call);
    if (!host.instance()) return "the module is not loaded";
    HostTranscoder *transcoder = host.transcoder(spec.encoding);
    if (!transcoder) return "unknown encoding " + spec.encoding;
    hold = LocaleHold(host, spec.locale, spec.items);
    HostLocale *locale = hold.get();
    if (!locale) return "unknown locale " + spec.locale;
    call.locale = locale;
    call.transcoder = transcoder;
    call.services = host.services();
    setCallPart(call, row, spec);
    if (spec.callPool) {
        std::memcpy(poolRecord.data(), u"ZVRG", 8);
        HostPool *pool = spec.callPool->raw();
        std::memcpy(&poolRecord[9], &pool, sizeof pool);
        call.callPool = poolRecord.data();
    }
    return {};
}

// Runs an entry; a per-currency row runs under the instance's lock, and the
// snapshot it leaves is no column's.
template <typename Run>
int32_t runEntry(Host &host, const FormatTableRow &row, Run run) {
    if (!sharesInstance(row)) return run();
    std::lock_guard<std::mutex> guard(host.instanceLock());
    host.snapshotOwner() = nullptr;
    return run();
}

// What the call left in formatPool (its locale block; a byte entry's block
// never even comes back to the caller's record) is given back once the record
// is gone.
void reclaim(Host &host, int64_t mark) { host.formatPool().releaseSince(mark); }

} // namespace

const FormatTableRow *findRow(const FormatTableRow *table, std::string_view name) {
    if (!table || name.size() > 32) return nullptr;
    for (const FormatTableRow *row = table; !blankRow(*row); ++row) {
        bool same = true;
        for (size_t i = 0; i < 32 && same; ++i) {
            const char16_t want = i < name.size() ? upper(char16_t(static_cast<unsigned char>(name[i]))) : u' ';
            same = upper(row->name[i]) == want;
        }
        if (same) return row;
    }
    return nullptr;
}

std::string rowName(const FormatTableRow &row) {
    size_t n = 32;
    while (n > 0 && row.name[n - 1] == u' ') --n;
    std::string s;
    for (size_t i = 0; i < n; ++i) s += row.name[i] < 0x80 ? char(row.name[i]) : '?';
    return s;
}

std::vector<const FormatTableRow *> tableRows(const FormatTableRow *table) {
    std::vector<const FormatTableRow *> rows;
    if (table)
        for (const FormatTableRow *row = table; !blankRow(*row); ++row) rows.push_back(row);
    return rows;
}

bool isInformat(const FormatTableRow &row) { return row.name[0] == u'@' || row.sourceKind == ZV_KIND_TEXT; }

bool sharesInstance(const FormatTableRow &row) {
    // Read off the name's units: this runs for every value.
    const ZvChar *name = row.name + (row.name[0] == u'@' ? 1 : 0);
    return name[0] == u'N' && name[1] == u'L' && name[2] == u'M' && name[3] == u'N' &&
           (name[4] == u'I' || name[4] == u'L');
}

namespace {

// How a call's target is read back.
struct Target {
    std::vector<char16_t> &wide;
    std::vector<uint8_t> &bytes;
    bool onlyWritten; // the text ends at the last unit the routine wrote
};

// Does anything from `from` on differ from the sentinel? A whole pass without
// an early way out, which the compiler turns into wide compares.
template <typename Unit>
bool anyChanged(const std::vector<Unit> &out, size_t from, Unit sentinel) {
    Unit diff = 0;
    for (size_t i = from; i < out.size(); ++i) diff |= Unit(out[i] ^ sentinel);
    return diff != 0;
}

// Did the routine write into the guard in front of its target?
template <typename Unit>
bool writtenBefore(const Unit *guard, Unit sentinel) {
    for (size_t i = 0; i < kGuard; ++i)
        if (guard[i] != sentinel) return true;
    return false;
}

// The units the routine wrote of the first n: trailing sentinels were never written.
size_t writtenUnits(const char16_t *out, size_t n) {
    while (n > 0 && out[n - 1] == kWideSentinel) --n;
    return n;
}

// Runs a format on a prepared record.
void formatWith(Host &host, const FormatTableRow &row, const CallSpec &spec, double value, FormatCall &call,
                Target target, FormatResult &result) {
    result.overran = result.fieldsChanged = result.cut = false;
    result.wide.clear();
    result.bytes.clear();
    result.utf8.clear();
    call.outputCapacity = spec.outputCapacity == -1 ? std::clamp(call.width, 0, kMaxCapacity) : spec.outputCapacity;
    // A negative capacity goes to the routine as it is; the buffer has none.
    const int32_t capacity = std::max(call.outputCapacity, 0);
    call.fieldLimit = spec.fieldLimit < 0 ? 0 : spec.fieldLimit;
    call.outputLength = 0;
    const double input = value;
    call.input = &input;
    const int64_t mark = host.formatPool().serial();

    if (spec.entry == Entry::Wide) {
        std::vector<char16_t> &out = target.wide;
        out.assign(kGuard + size_t(capacity) + kGuard, kWideSentinel);
        char16_t *field = out.data() + kGuard;
        call.output = field;
        const FormatCall before = call;
        result.status = runEntry(host, row, [&] { return row.wideEntry(&call, nullptr); });
        result.fieldsChanged = !onlyResultsChanged(before, call);
        result.outputLength = call.outputLength;
        result.overran = anyChanged(out, kGuard + size_t(capacity), kWideSentinel) ||
                         writtenBefore(out.data(), kWideSentinel);
        size_t n = size_t(std::clamp(call.outputLength, 0, capacity));
        if (target.onlyWritten) n = writtenUnits(field, n);
        result.wide.assign(field, n);
        appendUtf8(result.wide, result.utf8);
        reclaim(host, mark);
        return;
    }

    // The byte entry writes up to `width` bytes whatever the capacity says;
    // the buffer has room for that, and anything past `capacity` is an overrun.
    const size_t room = kGuard + size_t(std::max({capacity, std::min(call.width, kMaxCapacity), 0})) + kGuard;
    std::vector<uint8_t> &out = target.bytes;
    out.assign(room, kByteSentinel);
    const uint8_t *field = out.data() + kGuard;
    call.output = out.data() + kGuard;
    const FormatCall before = call;
    result.status = runEntry(host, row, [&] { return row.byteEntry(&call, nullptr, nullptr); });
    result.fieldsChanged = !onlyResultsChanged(before, call);
    result.outputLength = call.outputLength;
    result.overran = anyChanged(out, kGuard + size_t(capacity), kByteSentinel) ||
                     writtenBefore(out.data(), kByteSentinel);
    size_t n = size_t(std::clamp(call.outputLength, 0, capacity));
    if (target.onlyWritten && n > 0 && field[n - 1] == kByteSentinel) {
        // The sentinel is a byte some encodings write: the call runs again
        // over another fill, and a byte is written when either run changed it.
        std::vector<uint8_t> again(room, uint8_t(~kByteSentinel));
        FormatCall second = before;
        second.output = again.data() + kGuard;
        row.byteEntry(&second, nullptr, nullptr);
        while (n > 0 && field[n - 1] == kByteSentinel && again[kGuard + n - 1] == uint8_t(~kByteSentinel)) --n;
    }
    result.bytes.assign(reinterpret_cast<const char *>(field), n);
    // Back to UTF-16 through the same encoding, then to UTF-8.
    if (HostTranscoder *t = call.transcoder; t && n > 0) {
        if (HostTranscoder *back = decoderFrom(t->encodingId)) {
            std::vector<char16_t> wide(n * 2 + 4);
            int64_t produced = 0;
            back->ops->transcode(back, field, int64_t(n), wide.data(), int64_t(wide.size() * 2), &produced, 0);
            result.wide.assign(wide.data(), size_t(produced / 2));
        }
    }
    appendUtf8(result.wide, result.utf8);
    if (target.onlyWritten && result.status == 0 && row.wideEntry) {
        // The byte entry cuts a date that doesn't fit at what fitted and
        // says 0: the wide text of the same call shows what was meant.
        FormatCall wide = before;
        std::vector<char16_t> &meant = target.wide;
        meant.assign(size_t(std::clamp(wide.width, 0, kMaxCapacity)) + kGuard, kWideSentinel);
        wide.output = meant.data();
        wide.outputCapacity = std::clamp(wide.width, 0, kMaxCapacity);
        if (row.wideEntry(&wide, nullptr) == 0) {
            size_t m = writtenUnits(meant.data(), size_t(std::clamp(wide.outputLength, 0, wide.outputCapacity)));
            while (m > 0 && meant[m - 1] == u' ') --m;
            result.cut = result.wide.compare(0, m, meant.data(), m) != 0;
        }
    }
    reclaim(host, mark);
}

ReadResult readWith(Host &host, const CallSpec &spec, const FormatTableRow &row, std::string_view utf8Text,
                    FormatCall &call) {
    ReadResult result;
    const std::u16string text = utf16(utf8Text);
    call.input = text.data();
    call.inputLength = int32_t(text.size());
    call.fieldLimit = spec.fieldLimit < 0 ? int32_t(text.size()) : spec.fieldLimit;
    double output = std::bit_cast<double>(kUntouchedBits);
    call.output = &output;
    call.outputCapacity = spec.outputCapacity < 0 ? 0 : spec.outputCapacity;
    call.outputLength = 0;
    const FormatCall before = call;
    const int64_t mark = host.formatPool().serial();
    result.status = runEntry(host, row, [&] { return row.wideEntry(&call, nullptr); });
    result.fieldsChanged = !onlyResultsChanged(before, call);
    result.bits = std::bit_cast<uint64_t>(output);
    result.value = output;
    result.untouched = result.bits == kUntouchedBits;
    reclaim(host, mark);
    return result;
}

std::string entryError(const FormatTableRow &row, const CallSpec &spec, bool informat) {
    if (informat) {
        if (!row.wideEntry) return notBuilt(row);
        return spec.entry == Entry::Byte ? "an informat has no byte entry" : "";
    }
    if ((spec.entry == Entry::Wide && !row.wideEntry) || (spec.entry == Entry::Byte && !row.byteEntry))
        return notBuilt(row);
    return {};
}

// A record of one's own for a single call, with what it holds; an error text when it can't be made.
struct OneCall {
    FormatCall call;
    LocaleHold hold;
    PoolRecord poolRecord{};
    std::string open(Host &host, const FormatTableRow &row, const CallSpec &spec, bool informat) {
        std::string error = entryError(row, spec, informat);
        return error.empty() ? prepare(host, row, spec, call, hold, poolRecord) : error;
    }
};

} // namespace

FormatResult runFormat(Host &host, const FormatTableRow &row, const CallSpec &spec, double value) {
    FormatResult result;
    OneCall one;
    result.error = one.open(host, row, spec, false);
    if (!result.error.empty()) return result;
    FormatCall &call = one.call;
    std::vector<char16_t> wide;
    std::vector<uint8_t> bytes;
    formatWith(host, row, spec, value, call, Target{wide, bytes, false}, result);
    return result;
}

ReadResult runInformat(Host &host, const FormatTableRow &row, const CallSpec &spec, std::string_view utf8Text) {
    ReadResult result;
    OneCall one;
    result.error = one.open(host, row, spec, true);
    if (!result.error.empty()) return result;
    return readWith(host, spec, row, utf8Text, one.call);
}

// ---- sessions -------------------------------------------------------------------

struct Session::Kept {
    std::string locale, encoding;
    std::map<int, std::string> items;
    LocaleHold hold;      // the locale stays while the record does
    FormatCall call;      // locale, transcoder, services and the block
    LocaleBlock *block = nullptr;
};

Session::Session(Host &host, size_t keep) : host_(host), keep_(std::max<size_t>(keep, 1)) {}

Session::~Session() {
    HostPool *pool = host_.formatPool().raw();
    for (auto &k : records_)
        if (k->block) pool->ops->poolFree(pool, k->block);
}

Session::Kept *Session::kept(const CallSpec &spec, std::string &error) {
    for (size_t i = records_.size(); i-- > 0;) {
        Kept &k = *records_[i];
        if (k.locale == spec.locale && k.encoding == spec.encoding && k.items == spec.items) {
            if (i + 1 != records_.size()) std::rotate(records_.begin() + long(i), records_.begin() + long(i) + 1, records_.end());
            return records_.back().get();
        }
    }
    if (!host_.instance()) {
        error = "the module is not loaded";
        return nullptr;
    }
    HostTranscoder *transcoder = host_.transcoder(spec.encoding);
    if (!transcoder) {
        error = "unknown encoding " + spec.encoding;
        return nullptr;
    }
    LocaleHold hold(host_, spec.locale, spec.items);
    HostLocale *locale = hold.get();
    if (!locale) {
        error = "unknown locale " + spec.locale;
        return nullptr;
    }
    auto k = std::make_unique<Kept>();
    k->hold = std::move(hold);
    k->locale = spec.locale;
    k->encoding = spec.encoding;
    k->items = spec.items;
    std::memset(&k->call, 0, sizeof k->call);
    k->call.locale = locale;
    k->call.transcoder = transcoder;
    k->call.services = host_.services();
    // A block that can't be built is not kept: each call then tries its own,
    // and answers as the module does without one.
    if (zv::buildLocaleBlock(&k->call, host_.instance()) == 0) {
        k->block = k->call.localeBlock;
        ++built_;
    } else {
        if (k->call.localeBlock) host_.formatPool().raw()->ops->poolFree(host_.formatPool().raw(), k->call.localeBlock);
        k->call.localeBlock = nullptr;
        error = "the locale block could not be built";
        return nullptr;
    }
    if (records_.size() >= keep_) {
        HostPool *pool = host_.formatPool().raw();
        if (records_.front()->block) pool->ops->poolFree(pool, records_.front()->block);
        records_.erase(records_.begin());
    }
    records_.push_back(std::move(k));
    return records_.back().get();
}

const LocaleBlock *Session::localeBlock(const CallSpec &spec, std::string &error) {
    Kept *k = kept(spec, error);
    return k ? k->block : nullptr;
}

FormatResult Session::format(const FormatTableRow &row, const CallSpec &spec, double value) {
    FormatResult result;
    format(row, spec, value, result);
    return result;
}

void Session::format(const FormatTableRow &row, const CallSpec &spec, double value, FormatResult &result) {
    result.status = result.outputLength = 0;
    result.error = entryError(row, spec, false);
    if (!result.error.empty()) return;
    Kept *k = kept(spec, result.error);
    if (!k) return;
    FormatCall call = k->call;
    if (sharesInstance(row)) call.localeBlock = nullptr;
    setCallPart(call, row, spec);
    formatWith(host_, row, spec, value, call, Target{wide_, bytes_, true}, result);
}

ReadResult Session::read(const FormatTableRow &row, const CallSpec &spec, std::string_view utf8Text) {
    ReadResult result;
    result.error = entryError(row, spec, true);
    if (!result.error.empty()) return result;
    Kept *k = kept(spec, result.error);
    if (!k) return result;
    FormatCall call = k->call;
    if (sharesInstance(row)) call.localeBlock = nullptr;
    setCallPart(call, row, spec);
    return readWith(host_, spec, row, utf8Text, call);
}

} // namespace zvhost
