// Encodings and transcoders of the reference host, on ICU converters.
//
// Every transcode goes source -> UTF-16 -> target. 25 (UTF-16LE) and 62
// (bytes as U+0000..U+00FF) are done by hand; every other encoding is an
// ICU converter set to stop at the first character it can't map, so nothing
// is ever substituted. A target that is too small gets whole characters.
#include <unicode/uchar.h>
#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <bit>
#include <cctype>
#include <cstring>
#include <mutex>
#include <unordered_map>
#include <vector>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "utf8.hpp"
#include "zvhost.hpp"

namespace zvhost {
namespace {

constexpr uint32_t kFirstIcuId = 100;

// Ids of ICU converters, by canonical name, in order of first use.
class Registry {
public:
    static Registry &get() {
        static Registry r;
        return r;
    }

    std::optional<uint32_t> idOf(std::string_view name) {
        if (name.empty() || name.size() > 200) return std::nullopt;
        std::string lower(name);
        for (char &c : lower) c = char(std::tolower(static_cast<unsigned char>(c)));
        if (lower == "locale-text" || lower == "x-zv-locale-text") return ZV_ENCODING_LOCALE_TEXT;
        std::lock_guard<std::mutex> lock(m_);
        if (auto it = byAlias_.find(lower); it != byAlias_.end()) return it->second;
        const std::string key(name);
        UErrorCode err = U_ZERO_ERROR;
        UConverter *c = ucnv_open(key.c_str(), &err);
        if (U_FAILURE(err) || c == nullptr) {
            if (c) ucnv_close(c);
            byAlias_[lower] = std::nullopt;
            return std::nullopt;
        }
        err = U_ZERO_ERROR;
        const std::string canonical = ucnv_getName(c, &err);
        ucnv_close(c);
        std::optional<uint32_t> id;
        if (canonical == "UTF-16LE" || canonical == "UTF-16") {
            id = ZV_ENCODING_UTF16;
        } else if (auto it = byCanonical_.find(canonical); it != byCanonical_.end()) {
            id = it->second;
        } else {
            id = kFirstIcuId + uint32_t(names_.size());
            byCanonical_[canonical] = *id;
            names_.push_back(canonical);
        }
        byAlias_[lower] = id;
        return id;
    }

    // The ICU name to open for an id; "" when the id is not an ICU one.
    std::string icuName(uint32_t id) {
        std::lock_guard<std::mutex> lock(m_);
        if (id < kFirstIcuId || id - kFirstIcuId >= names_.size()) return {};
        return names_[id - kFirstIcuId];
    }

private:
    // Ids are handed out as names are first asked for: listing ICU's
    // converters up front opens every one of them.
    Registry() = default;

    std::mutex m_;
    std::vector<std::string> names_;
    std::unordered_map<std::string, uint32_t> byCanonical_;
    std::unordered_map<std::string, std::optional<uint32_t>> byAlias_;
};

bool knownId(uint32_t id) {
    return id == ZV_ENCODING_UTF16 || id == ZV_ENCODING_LOCALE_TEXT || !Registry::get().icuName(id).empty();
}

UConverter *openStopping(uint32_t id) {
    const std::string name = Registry::get().icuName(id);
    if (name.empty()) return nullptr;
    UErrorCode err = U_ZERO_ERROR;
    UConverter *c = ucnv_open(name.c_str(), &err);
    if (U_FAILURE(err) || !c) {
        if (c) ucnv_close(c);
        return nullptr;
    }
    ucnv_setFromUCallBack(c, UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &err);
    ucnv_setToUCallBack(c, UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &err);
    ucnv_setFallback(c, false);
    if (U_FAILURE(err)) {
        ucnv_close(c);
        return nullptr;
    }
    return c;
}

// A buffer on the stack for the common sizes, on the heap beyond them.
template <typename T, size_t N>
struct Scratch {
    T local[N];
    std::vector<T> heap;
    T *get(size_t n) {
        if (n <= N) return local;
        heap.resize(n);
        return heap.data();
    }
};

struct TranscoderImpl {
    HostTranscoder base;
    UConverter *decoder = nullptr; // source side, ICU encodings only
    UConverter *encoder = nullptr; // target side, ICU encodings only
    bool utf8Target = false;       // UTF-8 is written by hand: every character can be shown
    bool utf8Source = false;       // well-formed UTF-8 is read by hand, the rest by ICU
    std::function<void(HostTranscoder *)> onRelease;
    std::function<bool()> fails;
};

TranscoderImpl *self(HostTranscoder *t) { return reinterpret_cast<TranscoderImpl *>(t); }

// Well-formed UTF-8 -> UTF-16 units by hand; false at the first byte that
// is not, and ICU reads the text instead (and says where it failed).
bool decodeWellFormedUtf8(const uint8_t *src, int64_t bytes, UChar *mid, size_t &length) {
    size_t n = 0;
    for (int64_t i = 0; i < bytes;) {
        // A run of ASCII: eight bytes a step where the machine has SSE2.
#if defined(__SSE2__)
        for (__m128i b; i + 8 <= bytes && (b = _mm_loadl_epi64(reinterpret_cast<const __m128i *>(src + i)),
                                           (_mm_movemask_epi8(b) & 0xFF) == 0);
             i += 8, n += 8)
            _mm_storeu_si128(reinterpret_cast<__m128i *>(mid + n), _mm_unpacklo_epi8(b, _mm_setzero_si128()));
#endif
        while (i < bytes && src[i] < 0x80) mid[n++] = src[i++];
        if (i == bytes) break;
        const uint8_t lead = src[i];
        int follow = 0;
        UChar32 c = 0, least = 0;
        if (lead >= 0xC2 && lead <= 0xDF) follow = 1, c = lead & 0x1F, least = 0x80;
        else if (lead >= 0xE0 && lead <= 0xEF) follow = 2, c = lead & 0x0F, least = 0x800;
        else if (lead >= 0xF0 && lead <= 0xF4) follow = 3, c = lead & 0x07, least = 0x10000;
        else return false;
        if (bytes - i <= follow) return false;
        for (int k = 1; k <= follow; ++k) {
            if ((src[i + k] & 0xC0) != 0x80) return false;
            c = (c << 6) | (src[i + k] & 0x3F);
        }
        if (c < least || c > 0x10FFFF || U_IS_SURROGATE(c)) return false;
        if (c >= 0x10000) {
            mid[n++] = U16_LEAD(c);
            mid[n++] = U16_TRAIL(c);
        } else {
            mid[n++] = UChar(c);
        }
        i += follow + 1;
    }
    length = n;
    return true;
}

// Source bytes -> UTF-16 units. False when the source is not valid text;
// `length` then holds the units before the fault.
bool decode(TranscoderImpl *t, const uint8_t *src, int64_t bytes, UChar *mid, size_t room, size_t &length) {
    length = 0;
    switch (t->base.sourceEncodingId) {
    case ZV_ENCODING_UTF16: {
        const size_t units = size_t(bytes / 2);
        if constexpr (std::endian::native == std::endian::little)
            std::memcpy(mid, src, units * sizeof(UChar));
        else
            for (size_t i = 0; i < units; ++i) mid[i] = UChar(src[2 * i] | (src[2 * i + 1] << 8));
        length = units;
        return bytes % 2 == 0;
    }
    case ZV_ENCODING_LOCALE_TEXT:
        for (int64_t i = 0; i < bytes; ++i) mid[i] = src[i];
        length = size_t(bytes);
        return true;
    default: {
        if (t->utf8Source && decodeWellFormedUtf8(src, bytes, mid, length)) return true;
        ucnv_resetToUnicode(t->decoder);
        UErrorCode err = U_ZERO_ERROR;
        UChar *out = mid;
        const char *in = reinterpret_cast<const char *>(src);
        ucnv_toUnicode(t->decoder, &out, mid + room, &in, in + bytes, nullptr, true, &err);
        length = size_t(out - mid);
        return U_SUCCESS(err);
    }
    }
}

struct Encoded {
    size_t written = 0; // bytes in the target
    bool full = false;  // the next character did not fit
    bool bad = false;   // the next character can't be shown
};

// UTF-16 -> target bytes, by hand for 25 and 62.
Encoded encodeSimple(uint32_t to, const UChar *mid, size_t length, uint8_t *target, size_t capacity) {
    Encoded e;
    size_t i = 0;
    if (to == ZV_ENCODING_UTF16 && std::endian::native == std::endian::little) {
        // The units before the first surrogate go as they are.
        size_t plain = 0;
        while (plain < length && !U16_IS_SURROGATE(mid[plain])) ++plain;
        i = std::min(plain, capacity / 2);
        std::memcpy(target, mid, i * sizeof(UChar));
        e.written = i * sizeof(UChar);
        if (i < plain) {
            e.full = true;
            return e;
        }
    }
    while (i < length) {
        const UChar u = mid[i];
        size_t units = 1;
        if (to == ZV_ENCODING_LOCALE_TEXT) {
            if (u > 0xFF) {
                e.bad = true;
                break;
            }
            if (e.written + 1 > capacity) {
                e.full = true;
                break;
            }
            target[e.written++] = uint8_t(u);
            ++i;
            continue;
        }
        if (U16_IS_LEAD(u) && i + 1 < length && U16_IS_TRAIL(mid[i + 1])) units = 2;
        else if (U16_IS_SURROGATE(u)) {
            e.bad = true;
            break;
        }
        if (e.written + 2 * units > capacity) {
            e.full = true;
            break;
        }
        for (size_t k = 0; k < units; ++k) {
            target[e.written++] = uint8_t(mid[i + k] & 0xFF);
            target[e.written++] = uint8_t(mid[i + k] >> 8);
        }
        i += units;
    }
    return e;
}

// The bits that are clear in an ASCII unit of UTF-16.
constexpr int16_t kNotAscii = int16_t(0xFF80);

// UTF-16 -> UTF-8 by hand, whole characters only; a lone surrogate can't
// be shown.
Encoded encodeUtf8(const UChar *mid, size_t length, uint8_t *target, size_t capacity) {
    Encoded e;
    for (size_t i = 0; i < length;) {
        // A run of ASCII, one byte each, as far as it fits.
        const size_t room = i + std::min(length - i, capacity - e.written);
        size_t w = e.written;
#if defined(__SSE2__)
        // Eight ASCII units a step where the machine has SSE2.
        for (__m128i u; i + 8 <= room && (u = _mm_loadu_si128(reinterpret_cast<const __m128i *>(mid + i)),
                                          _mm_movemask_epi8(_mm_cmpeq_epi16(_mm_and_si128(u, _mm_set1_epi16(kNotAscii)),
                                                                            _mm_setzero_si128())) == 0xFFFF);
             i += 8, w += 8)
            _mm_storel_epi64(reinterpret_cast<__m128i *>(target + w), _mm_packus_epi16(u, u));
#endif
        while (i < room && mid[i] < 0x80) target[w++] = uint8_t(mid[i++]);
        e.written = w;
        if (i == length) break;
        if (mid[i] < 0x80) { // ASCII that does not fit
            e.full = true;
            break;
        }
        UChar32 c = mid[i];
        size_t units = 1;
        if (U16_IS_LEAD(c) && i + 1 < length && U16_IS_TRAIL(mid[i + 1])) {
            c = U16_GET_SUPPLEMENTARY(c, mid[i + 1]);
            units = 2;
        } else if (U16_IS_SURROGATE(c)) {
            e.bad = true;
            break;
        }
        const size_t n = utf8Length(uint32_t(c));
        if (e.written + n > capacity) {
            e.full = true;
            break;
        }
        uint8_t *p = target + e.written;
        putUtf8(p, uint32_t(c));
        e.written += n;
        i += units;
    }
    return e;
}

// UTF-16 -> target bytes through ICU: the whole text into a scratch buffer
// with the source offset of every byte, then as many whole characters as fit.
Encoded encodeIcu(UConverter *c, const UChar *mid, size_t length, uint8_t *target, size_t capacity) {
    Encoded e;
    const size_t room = size_t(UCNV_GET_MAX_BYTES_FOR_STRING(int64_t(length), ucnv_getMaxCharSize(c)));
    Scratch<char, 4096> bytes;
    Scratch<int32_t, 4096> offsets;
    char *buf = bytes.get(room);
    int32_t *offs = offsets.get(room);
    ucnv_resetFromUnicode(c);
    UErrorCode err = U_ZERO_ERROR;
    char *out = buf;
    const UChar *in = mid;
    ucnv_fromUnicode(c, &out, buf + room, &in, mid + length, offs, true, &err);
    size_t made = size_t(out - buf);
    e.bad = U_FAILURE(err);
    // ICU leaves out a default-ignorable character (a direction mark, say) that
    // the target lacks and says nothing. To this host that is a character the
    // target cannot show: the text ends before it, as at any other.
    for (size_t i = 0; i < length && !e.bad;) {
        UChar32 cp;
        const size_t at = i;
        U16_NEXT(mid, i, length, cp);
        if (cp < 0xAD || !u_hasBinaryProperty(cp, UCHAR_DEFAULT_IGNORABLE_CODE_POINT)) continue;
        size_t before = 0;
        bool shown = false;
        for (size_t b = 0; b < made; ++b) {
            if (offs[b] == int32_t(at)) shown = true;
            else if (offs[b] >= 0 && offs[b] < int32_t(at)) before = b + 1;
        }
        if (!shown) {
            made = before;
            e.bad = true;
        }
    }
    if (made <= capacity) {
        if (made) std::memcpy(target, buf, made);
        e.written = made;
        return e;
    }
    // Cut where a new character starts (bytes of one character share its offset).
    size_t k = capacity;
    while (k > 0 && offs[k] == offs[k - 1]) --k;
    if (k) std::memcpy(target, buf, k);
    e.written = k;
    e.full = true;
    e.bad = false;
    return e;
}

// UTF-16 to UTF-8 and well-formed UTF-8 to UTF-16 that fit their target go
// straight across, without the units in between: the two roads of a text
// read through a UTF-8 session. False leaves the text to the general road,
// which gives the same bytes.
bool directUtf8(const TranscoderImpl *t, const void *source, int64_t bytes, void *target, int64_t capacity,
                int64_t *produced) {
    const auto aligned = [](const void *p) { return reinterpret_cast<uintptr_t>(p) % alignof(UChar) == 0; };
    if (!source || !target || !aligned(source) || !aligned(target)) return false;
    const uint32_t from = t->base.sourceEncodingId, to = t->base.encodingId;
    if (from == ZV_ENCODING_UTF16 && t->utf8Target && bytes % 2 == 0) {
        const Encoded e = encodeUtf8(static_cast<const UChar *>(source), size_t(bytes / 2),
                                     static_cast<uint8_t *>(target), size_t(capacity));
        if (e.full || e.bad) return false;
        *produced = int64_t(e.written);
        return true;
    }
    // Every byte of UTF-8 gives at most one unit.
    if (t->utf8Source && to == ZV_ENCODING_UTF16 && std::endian::native == std::endian::little &&
        capacity / 2 >= bytes) {
        size_t length = 0;
        if (!decodeWellFormedUtf8(static_cast<const uint8_t *>(source), bytes, static_cast<UChar *>(target), length))
            return false;
        *produced = int64_t(length * sizeof(UChar));
        return true;
    }
    return false;
}

// Source -> UTF-16 units in between -> target, for every pair of encodings.
// Kept out of line: its buffer would cost the direct roads their frame.
[[gnu::noinline]] int32_t transcodeThroughUnits(TranscoderImpl *t, const void *source, int64_t bytes,
                                                void *target, int64_t capacity, int64_t *produced) {
    Scratch<UChar, 512> midBuf;
    // Units the source can give: one per two bytes of UTF-16, one per byte of
    // locale text, at most two per byte in every encoding ICU knows.
    const uint32_t from = t->base.sourceEncodingId;
    const size_t room = from == ZV_ENCODING_UTF16       ? size_t(bytes) / 2 + 2
                        : from == ZV_ENCODING_LOCALE_TEXT ? size_t(bytes) + 2
                                                          : size_t(bytes) * 2 + 4;
    UChar *mid = midBuf.get(room);
    size_t length = 0;
    const bool sourceOk = decode(t, static_cast<const uint8_t *>(source), bytes, mid, room, length);

    uint8_t *out = static_cast<uint8_t *>(target);
    const uint32_t to = t->base.encodingId;
    const Encoded e = (to == ZV_ENCODING_UTF16 || to == ZV_ENCODING_LOCALE_TEXT)
                          ? encodeSimple(to, mid, length, out, size_t(capacity))
                      : t->utf8Target ? encodeUtf8(mid, length, out, size_t(capacity))
                                      : encodeIcu(t->encoder, mid, length, out, size_t(capacity));
    *produced = int64_t(e.written);
    if (e.full) return ZV_TARGET_TOO_SMALL;
    if (e.bad || !sourceOk) return kCannotShow;
    return 0;
}

int32_t transcode(HostTranscoder *h, const void *source, int64_t bytes, void *target, int64_t capacity,
                  int64_t *produced, int32_t) {
    int64_t ignored = 0;
    if (!produced) produced = &ignored;
    *produced = 0;
    if (!h || bytes < 0 || (!source && bytes > 0)) return kBadRequest;
    if (!target || capacity < 0) capacity = 0;
    TranscoderImpl *t = self(h);
    if (t->fails && t->fails()) return kHostFault;
    if (directUtf8(t, source, bytes, target, capacity, produced)) return 0;
    return transcodeThroughUnits(t, source, bytes, target, capacity, produced);
}

void release(HostTranscoder *h) {
    if (!h) return;
    TranscoderImpl *t = self(h);
    if (t->onRelease) t->onRelease(h);
    if (t->decoder) ucnv_close(t->decoder);
    if (t->encoder) ucnv_close(t->encoder);
    delete t;
}

const HostTranscoderOps kOps = {transcode, release};

} // namespace

std::optional<uint32_t> encodingIdOf(std::string_view name) { return Registry::get().idOf(name); }

std::string encodingName(uint32_t id) {
    if (id == ZV_ENCODING_UTF16) return "UTF-16LE";
    if (id == ZV_ENCODING_LOCALE_TEXT) return "locale-text";
    const std::string icu = Registry::get().icuName(id);
    if (icu.empty()) return {};
    UErrorCode err = U_ZERO_ERROR;
    for (const char *standard : {"MIME", "IANA"}) {
        err = U_ZERO_ERROR;
        const char *name = ucnv_getStandardName(icu.c_str(), standard, &err);
        if (U_SUCCESS(err) && name && *name) return name;
    }
    return icu;
}

HostTranscoder *makeTranscoder(uint32_t from, uint32_t to, std::function<void(HostTranscoder *)> onRelease,
                               std::function<bool()> fails) {
    if (!knownId(from) || !knownId(to)) return nullptr;
    auto *t = new TranscoderImpl;
    t->base.ops = &kOps;
    t->base.encodingId = to;
    t->base.sourceEncodingId = from;
    bool ok = true;
    if (from != ZV_ENCODING_UTF16 && from != ZV_ENCODING_LOCALE_TEXT) ok = (t->decoder = openStopping(from));
    if (ok && to != ZV_ENCODING_UTF16 && to != ZV_ENCODING_LOCALE_TEXT) ok = (t->encoder = openStopping(to));
    static const uint32_t utf8 = encodingIdOf("UTF-8").value_or(0); // transcoders come and go per call
    t->utf8Target = to == utf8;
    t->utf8Source = from == utf8;
    if (!ok) {
        release(&t->base);
        return nullptr;
    }
    t->onRelease = std::move(onRelease);
    t->fails = std::move(fails);
    return &t->base;
}

} // namespace zvhost
