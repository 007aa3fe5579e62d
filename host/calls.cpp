// Rows of the format table and calls through them: the host fills a
// FormatCall, runs the wide or byte entry, and checks what came back.
#include <array>
#include <bit>
#include <cstring>

#include "zvhost.hpp"

namespace zvhost {

namespace {

constexpr size_t kGuard = 64;             // units (or bytes) behind the target
constexpr char16_t kWideSentinel = 0xFDD1; // a noncharacter nobody writes
constexpr uint8_t kByteSentinel = 0xA5;
constexpr uint64_t kUntouchedBits = 0x7FF4DEADBEEF0001ull;

bool blankRow(const FormatTableRow &row) {
    for (ZvChar c : row.name)
        if (c != u' ') return false;
    return true;
}

char16_t upper(char16_t c) { return c >= u'a' && c <= u'z' ? char16_t(c - 32) : c; }

// The fields of the record the callee may change: outputLength and localeBlock.
bool onlyResultsChanged(const FormatCall &before, const FormatCall &after) {
    FormatCall a = before, b = after;
    a.outputLength = b.outputLength = 0;
    a.localeBlock = b.localeBlock = nullptr;
    return std::memcmp(&a, &b, sizeof a) == 0;
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

// The record behind callPool: the key "ZVRG" in its first eight bytes, the pool in word 9.
using PoolRecord = std::array<uint64_t, 10>;

// Common preparation of a call; an error text when it can't be made.
std::string prepare(Host &host, const FormatTableRow &row, const CallSpec &spec, FormatCall &call,
                    PoolRecord &poolRecord) {
    std::memset(&call, 0, sizeof call);
    if (!host.instance()) return "the module is not loaded";
    HostTranscoder *transcoder = host.transcoder(spec.encoding);
    if (!transcoder) return "unknown encoding " + spec.encoding;
    HostLocale *locale = host.locale(spec.locale, spec.items);
    if (!locale) return "unknown locale " + spec.locale;
    call.width = spec.width == -1 ? int32_t(row.defaultWidth) : spec.width;
    call.decimals = spec.decimals == -1 ? int32_t(row.defaultDecimals) : spec.decimals;
    call.flags = spec.validate ? ZV_FLAG_CHECK_LIMITS : 0;
    call.locale = locale;
    call.transcoder = transcoder;
    call.measureBytes = spec.measureBytes ? 1 : 0;
    call.services = host.services();
    if (spec.callPool) {
        std::memcpy(poolRecord.data(), u"ZVRG", 8);
        HostPool *pool = spec.callPool->raw();
        std::memcpy(&poolRecord[9], &pool, sizeof pool);
        call.callPool = poolRecord.data();
    }
    return {};
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

FormatResult runFormat(Host &host, const FormatTableRow &row, const CallSpec &spec, double value) {
    FormatResult result;
    if ((spec.entry == Entry::Wide && !row.wideEntry) || (spec.entry == Entry::Byte && !row.byteEntry)) {
        result.error = notBuilt(row);
        return result;
    }
    FormatCall call;
    PoolRecord poolRecord{};
    result.error = prepare(host, row, spec, call, poolRecord);
    if (!result.error.empty()) return result;
    call.outputCapacity = spec.outputCapacity == -1 ? std::max(call.width, 0) : spec.outputCapacity;
    // A negative capacity goes to the routine as it is; the buffer has none.
    const int32_t capacity = std::max(call.outputCapacity, 0);
    call.fieldLimit = spec.fieldLimit < 0 ? 0 : spec.fieldLimit;
    const double input = value;
    call.input = &input;
    const int64_t mark = host.formatPool().serial();

    if (spec.entry == Entry::Wide) {
        std::vector<char16_t> out(size_t(capacity) + kGuard, kWideSentinel);
        call.output = out.data();
        const FormatCall before = call;
        result.status = row.wideEntry(&call, nullptr);
        result.fieldsChanged = !onlyResultsChanged(before, call);
        result.outputLength = call.outputLength;
        for (size_t i = size_t(capacity); i < out.size(); ++i) result.overran |= out[i] != kWideSentinel;
        const size_t n = size_t(std::clamp(call.outputLength, 0, capacity));
        result.wide.assign(out.data(), n);
        result.utf8 = utf8(result.wide);
        reclaim(host, mark);
        return result;
    }

    // The byte entry writes up to `width` bytes whatever the capacity says;
    // the buffer has room for that, and anything past `capacity` is an overrun.
    const size_t room = size_t(std::max({capacity, call.width, 0})) + kGuard;
    std::vector<uint8_t> out(room, kByteSentinel);
    call.output = out.data();
    const FormatCall before = call;
    result.status = row.byteEntry(&call, nullptr, nullptr);
    result.fieldsChanged = !onlyResultsChanged(before, call);
    result.outputLength = call.outputLength;
    for (size_t i = size_t(capacity); i < out.size(); ++i) result.overran |= out[i] != kByteSentinel;
    const size_t n = size_t(std::clamp(call.outputLength, 0, capacity));
    result.bytes.assign(reinterpret_cast<const char *>(out.data()), n);
    // Back to UTF-16 through the same encoding, then to UTF-8.
    if (HostTranscoder *t = call.transcoder; t && n > 0) {
        if (HostTranscoder *back = decoderFrom(t->encodingId)) {
            std::vector<char16_t> wide(n * 2 + 4);
            int64_t produced = 0;
            back->ops->transcode(back, out.data(), int64_t(n), wide.data(), int64_t(wide.size() * 2), &produced, 0);
            result.wide.assign(wide.data(), size_t(produced / 2));
        }
    }
    result.utf8 = utf8(result.wide);
    reclaim(host, mark);
    return result;
}

ReadResult runInformat(Host &host, const FormatTableRow &row, const CallSpec &spec, std::string_view utf8Text) {
    ReadResult result;
    if (!row.wideEntry || spec.entry == Entry::Byte) {
        result.error = row.wideEntry ? "an informat has no byte entry" : notBuilt(row);
        return result;
    }
    FormatCall call;
    PoolRecord poolRecord{};
    result.error = prepare(host, row, spec, call, poolRecord);
    if (!result.error.empty()) return result;
    const std::u16string text = utf16(utf8Text);
    call.input = text.data();
    call.inputLength = int32_t(text.size());
    call.fieldLimit = spec.fieldLimit < 0 ? int32_t(text.size()) : spec.fieldLimit;
    double output = std::bit_cast<double>(kUntouchedBits);
    call.output = &output;
    call.outputCapacity = spec.outputCapacity < 0 ? 0 : spec.outputCapacity;
    const FormatCall before = call;
    const int64_t mark = host.formatPool().serial();
    result.status = row.wideEntry(&call, nullptr);
    result.fieldsChanged = !onlyResultsChanged(before, call);
    result.bits = std::bit_cast<uint64_t>(output);
    result.value = output;
    result.untouched = result.bits == kUntouchedBits;
    reclaim(host, mark);
    return result;
}

} // namespace zvhost
