// Columns: one call record run over many values. The locale block is built
// once into the column's own pool and stays in the record, the column's own
// transcoders carry its text, and nothing is allocated per value beyond what
// the caller's output needs.
#include <algorithm>
#include <cstring>

#include "utf8.hpp"
#include "zvhost.hpp"

namespace zvhost {

namespace {

// Units behind every target: a routine that writes a mark at width - 1 past a
// smaller capacity still writes into memory of ours.
constexpr size_t kSlack = 64;

// UTF-8 of text into at most capacity bytes, whole characters only; cut is
// set when something did not fit. Lone surrogates become U+FFFD.
size_t encodeUtf8(std::u16string_view text, char *out, size_t capacity, bool &cut) {
    size_t n = 0;
    cut = false;
    for (size_t i = 0; i < text.size(); ++i) {
        uint32_t c = text[i];
        if (c >= 0xD800 && c < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000)
            c = 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00);
        else if (c >= 0xD800 && c < 0xE000)
            c = 0xFFFD;
        const size_t len = utf8Length(uint32_t(c));
        if (n + len > capacity) {
            cut = true;
            break;
        }
        unsigned char *p = reinterpret_cast<unsigned char *>(out + n);
        putUtf8(p, uint32_t(c));
        n += len;
    }
    return n;
}

// UTF-8 to UTF-16 into out, reusing its room; a malformed sequence gives U+FFFD.
void decodeUtf8(std::string_view text, std::u16string &out) {
    out.clear();
    const auto *s = reinterpret_cast<const unsigned char *>(text.data());
    const size_t n = text.size();
    for (size_t i = 0; i < n;) {
        const unsigned char b = s[i];
        const size_t len = b < 0x80 ? 1 : (b >> 5) == 6 ? 2 : (b >> 4) == 14 ? 3 : (b >> 3) == 30 ? 4 : 0;
        uint32_t c = len == 1 ? b : len == 2 ? (b & 0x1Fu) : len == 3 ? (b & 0x0Fu) : (b & 0x07u);
        bool ok = len > 0 && i + len <= n;
        for (size_t k = 1; ok && k < len; ++k) {
            ok = (s[i + k] & 0xC0) == 0x80;
            c = (c << 6) | (s[i + k] & 0x3Fu);
        }
        static constexpr uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
        if (ok && (c < kLeast[len] || c > 0x10FFFF || (c >= 0xD800 && c < 0xE000))) ok = false;
        if (!ok) {
            out.push_back(u'\uFFFD');
            ++i;
            continue;
        }
        if (c >= 0x10000) {
            out.push_back(char16_t(0xD7C0 + (c >> 10)));
            out.push_back(char16_t(0xDC00 | (c & 0x3FF)));
        } else {
            out.push_back(char16_t(c));
        }
        i += len;
    }
}

void releaseTranscoder(HostTranscoder *&t) {
    if (t) t->ops->transcoderRelease(t);
    t = nullptr;
}

} // namespace

ColumnFormatter::ColumnFormatter(Host &host, std::string_view rowName, const CallSpec &spec) : host_(host) {
    ExtensionInstance *instance = host.instance();
    if (!instance) {
        error_ = "the module is not loaded";
        return;
    }
    row_ = findRow(instance->formatTable, rowName);
    if (!row_) {
        error_ = "no format or informat named " + std::string(rowName);
        return;
    }
    informat_ = isInformat(*row_);
    byteEntry_ = spec.entry == Entry::Byte;
    if (informat_ && byteEntry_) {
        error_ = zvhost::rowName(*row_) + " is an informat; informats have only the wide entry";
        return;
    }
    if (!row_->wideEntry || (byteEntry_ && !row_->byteEntry)) {
        error_ = zvhost::rowName(*row_) + " is not built yet";
        return;
    }
    hold_ = LocaleHold(host, spec.locale, spec.items);
    HostLocale *locale = hold_.get();
    if (!locale) {
        error_ = "unknown locale \"" + spec.locale + "\"";
        return;
    }
    const std::optional<uint32_t> encoding = encodingIdOf(spec.encoding);
    if (encoding) encoder_ = makeTranscoder(ZV_ENCODING_UTF16, *encoding);
    if (encoding && byteEntry_) decoder_ = makeTranscoder(*encoding, ZV_ENCODING_UTF16);
    if (!encoder_ || (byteEntry_ && !decoder_)) {
        error_ = "unknown encoding \"" + spec.encoding + "\"";
        return;
    }
    host.loadCharModule();
    sharesInstance_ = sharesInstance(*row_);
    pool_ = makePool("column");
    services_ = *host.services();
    services_.formatPool = pool_->raw();

    call_.width = spec.width == -1 ? int32_t(row_->defaultWidth) : spec.width;
    call_.decimals = spec.decimals == -1 ? int32_t(row_->defaultDecimals) : spec.decimals;
    call_.flags = spec.validate ? ZV_FLAG_CHECK_LIMITS : 0;
    call_.locale = locale;
    call_.transcoder = encoder_;
    call_.measureBytes = spec.measureBytes ? 1 : 0;
    call_.services = &services_;
    if (informat_) {
        call_.outputCapacity = spec.outputCapacity < 0 ? 0 : spec.outputCapacity;
        call_.fieldLimit = spec.fieldLimit;
        return;
    }
    call_.outputCapacity = spec.outputCapacity == -1 ? std::max(call_.width, 0) : spec.outputCapacity;
    call_.fieldLimit = spec.fieldLimit < 0 ? 0 : spec.fieldLimit;
    const int32_t capacity = std::max(call_.outputCapacity, 0);
    fieldUnits_ = byteEntry_ ? std::max(capacity, call_.width) : capacity;
    const size_t room = size_t(std::max({capacity, call_.width, 0})) + kSlack;
    wide_.assign(room, u' ');
    if (byteEntry_) narrow_.assign(room, 0);

    // The block is built now, by the wide entry, so that it stays in our
    // record: one built by the byte entry stays in the entry's own copy.
    const double zero = 0;
    call_.input = &zero;
    call(wide_.data(), capacity, false);
}

ColumnFormatter::~ColumnFormatter() {
    releaseTranscoder(encoder_);
    releaseTranscoder(decoder_);
    if (pool_) pool_->raw()->ops->poolDestroy(pool_->raw());
}

int32_t ColumnFormatter::call(void *output, int32_t capacity, bool byte) {
    call_.output = output;
    call_.outputCapacity = capacity;
    if (!sharesInstance_) return byte ? row_->byteEntry(&call_, nullptr, nullptr) : row_->wideEntry(&call_, nullptr);
    // The per-currency rows read the instance's snapshot of locale items,
    // filled by whichever call last built a block: it is made ours again.
    std::lock_guard<std::mutex> guard(host_.instanceLock());
    ExtensionInstance *instance = host_.instance();
    if (host_.snapshotOwner() != this && call_.localeBlock && instance)
        std::memcpy(instance->itemSnapshot, call_.localeBlock->items, sizeof instance->itemSnapshot);
    host_.snapshotOwner() = this;
    return byte ? row_->byteEntry(&call_, nullptr, nullptr) : row_->wideEntry(&call_, nullptr);
}

int32_t ColumnFormatter::format(double value) {
    textUnits_ = byteCount_ = 0;
    if (!error_.empty()) return kBadRequest;
    if (informat_) return kBadRequest;
    const int32_t capacity = std::max(call_.outputCapacity, 0);
    call_.input = &value;
    if (!byteEntry_) {
        const int32_t status = call(wide_.data(), capacity, false);
        textUnits_ = size_t(std::clamp(call_.outputLength, 0, capacity));
        return status;
    }
    const int32_t status = call(narrow_.data(), capacity, true);
    byteCount_ = size_t(std::clamp(call_.outputLength, 0, capacity));
    int64_t produced = 0;
    if (byteCount_ > 0)
        decoder_->ops->transcode(decoder_, narrow_.data(), int64_t(byteCount_), wide_.data(),
                                 int64_t(wide_.size() * 2), &produced, 0);
    textUnits_ = size_t(produced / 2);
    return status;
}

int32_t ColumnFormatter::read(std::u16string_view text, double &value) {
    value = missingValue('.');
    if (!error_.empty() || !informat_) return kBadRequest;
    const int32_t capacity = call_.outputCapacity;
    const int32_t limit = call_.fieldLimit;
    call_.input = text.data();
    call_.inputLength = int32_t(std::min<size_t>(text.size(), INT32_MAX));
    if (limit < 0) call_.fieldLimit = call_.inputLength;
    const int32_t status = call(&value, capacity, false);
    call_.fieldLimit = limit;
    return status;
}

int32_t ColumnFormatter::read(std::string_view utf8Text, double &value) {
    decodeUtf8(utf8Text, readBuffer_);
    return read(std::u16string_view(readBuffer_), value);
}

void appendUtf8(std::u16string_view text, std::string &out) {
    // The ASCII run at the front, a byte for a unit, in one go.
    const size_t at = out.size();
    out.resize(at + text.size());
    char *front = out.data() + at;
    size_t i = 0;
    for (; i < text.size() && text[i] < 0x80; ++i) front[i] = char(text[i]);
    out.resize(at + i);
    for (; i < text.size(); ++i) {
        uint32_t c = text[i];
        if (c < 0x80) { // the common case, a byte for a unit
            out.push_back(char(c));
            continue;
        }
        if (c >= 0xD800 && c < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000)
            c = 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00);
        else if (c >= 0xD800 && c < 0xE000)
            c = 0xFFFD;
        uint8_t bytes[4];
        putUtf8(bytes, c);
        out.append(reinterpret_cast<const char *>(bytes), utf8Length(c));
    }
}

std::string formatColumn(Host &host, std::string_view row, const CallSpec &spec, const double *values,
                         size_t count, char *fields, size_t stride, int32_t *lengths, int32_t *statuses) {
    ColumnFormatter column(host, row, spec);
    if (!column.error().empty()) return column.error();
    if (column.informat()) return zvhost::rowName(*column.row()) + " is an informat; give texts";
    for (size_t i = 0; i < count; ++i) {
        int32_t status = column.format(values[i]);
        bool cut = false;
        char *field = fields + i * stride;
        const size_t n = encodeUtf8(column.text(), field, stride, cut);
        std::memset(field + n, 0, stride - n);
        if (cut && status == 0) status = ZV_TARGET_TOO_SMALL;
        if (lengths) lengths[i] = int32_t(n);
        if (statuses) statuses[i] = status;
    }
    return {};
}

std::string formatColumn(Host &host, std::string_view row, const CallSpec &spec, const double *values,
                         size_t count, std::string &bytes, std::vector<int64_t> &offsets,
                         std::vector<int32_t> &statuses) {
    ColumnFormatter column(host, row, spec);
    bytes.clear();
    offsets.assign(1, 0);
    statuses.clear();
    if (!column.error().empty()) return column.error();
    if (column.informat()) return zvhost::rowName(*column.row()) + " is an informat; give texts";
    offsets.reserve(count + 1);
    statuses.reserve(count);
    for (size_t i = 0; i < count; ++i) {
        statuses.push_back(column.format(values[i]));
        appendUtf8(column.text(), bytes);
        offsets.push_back(int64_t(bytes.size()));
    }
    return {};
}

std::string readColumn(Host &host, std::string_view row, const CallSpec &spec, const char *bytes,
                       const int64_t *offsets, size_t count, double *values, char *marks, int32_t *statuses) {
    ColumnFormatter column(host, row, spec);
    if (!column.error().empty()) return column.error();
    if (!column.informat()) return zvhost::rowName(*column.row()) + " is a format; give values";
    for (size_t i = 0; i < count; ++i)
        if (offsets[i] < 0 || offsets[i + 1] < offsets[i]) return "offsets must rise from 0";
    for (size_t i = 0; i < count; ++i) {
        const int64_t from = offsets[i], to = offsets[i + 1];
        const int32_t status = column.read(std::string_view(bytes + from, size_t(to - from)), values[i]);
        if (marks) marks[i] = missingMark(values[i]);
        if (statuses) statuses[i] = status;
    }
    return {};
}

} // namespace zvhost
