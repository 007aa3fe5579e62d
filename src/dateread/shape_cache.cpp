// The shared cache of text cuts by the shape of the text.
#include "dateread/shape_cache.hpp"

#include <atomic>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "wide/ascii.hpp"

namespace zv {

namespace {

constexpr int64_t kUnitsPerWord = sizeof(uint64_t) / sizeof(ZvChar);
constexpr int kShapeWords = kMostShapeUnits / kUnitsPerWord;
static_assert(kShapeWords * kUnitsPerWord == kMostShapeUnits, "a shape fills its words");
constexpr int kWordsPerToken = sizeof(TextToken) / sizeof(uint64_t);
static_assert(kWordsPerToken * sizeof(uint64_t) == sizeof(TextToken), "a token fills its words");
constexpr int kSlotBits = 6;
constexpr int kSlots = 1 << kSlotBits;

// A slot: its sequence count, odd while the slot is written; then the key,
// the shape and the tokens. Every word is atomic, so that a read that
// meets a write is no race; the count tells the reader to drop what it read.
struct Slot {
    std::atomic<uint64_t> sequence;
    std::atomic<uint64_t> cut;
    std::atomic<uint64_t> meta; // the length, the class flags and the count of tokens
    std::atomic<uint64_t> shape[kShapeWords];
    std::atomic<uint64_t> tokens[kMostShapeTokens * kWordsPerToken];
};
constinit Slot slots[kSlots] = {};
constinit std::atomic<bool> enabled{true};

// The fields of a slot's meta word.
constexpr int kSplitBit = 16, kAnyNoDigitsBit = 17, kCountShift = 24;
constexpr uint64_t kKeyBits = (uint64_t{1} << (kSplitBit + 1)) - 1; // the length and the split flag
uint64_t keyBitsOf(const ShapeKey &key) {
    return static_cast<uint64_t>(key.length) | uint64_t{key.separatorsSplit} << kSplitBit;
}

// The text with every ASCII digit as "0", `length` units written to `out`.
void normalize(const ZvChar *text, int64_t length, ZvChar *out) {
#if defined(__SSE2__)
    constexpr int64_t kStep = sizeof(__m128i) / sizeof(ZvChar);
    if (length >= kStep) {
        // The last step overlaps the one before it.
        const __m128i zero = _mm_set1_epi16(u'0');
        const __m128i flip = _mm_set1_epi16(static_cast<int16_t>(0x8000));
        const __m128i ten = _mm_xor_si128(_mm_set1_epi16(10), flip);
        for (int64_t i = 0; i < length; i += kStep) {
            const int64_t at = i + kStep <= length ? i : length - kStep;
            const __m128i u = _mm_loadu_si128(reinterpret_cast<const __m128i *>(text + at));
            // A digit is less than 10 above "0", compared without sign.
            const __m128i digit = _mm_cmplt_epi16(_mm_xor_si128(_mm_sub_epi16(u, zero), flip), ten);
            const __m128i shaped = _mm_or_si128(_mm_andnot_si128(digit, u), _mm_and_si128(digit, zero));
            _mm_storeu_si128(reinterpret_cast<__m128i *>(out + at), shaped);
        }
        return;
    }
#endif
    for (int64_t i = 0; i < length; ++i) out[i] = isAsciiDigit(text[i]) ? u'0' : text[i];
}

constexpr uint64_t kMix = 0x9E3779B97F4A7C15ull;

// Word i of a probe's shape.
uint64_t shapeWord(const ShapeProbe &probe, int32_t i) {
    uint64_t word;
    std::memcpy(&word, probe.units + i * kUnitsPerWord, sizeof word);
    return word;
}

} // namespace

int32_t keptCut(const ShapeKey &key, ShapeProbe &probe, TextToken *tokens, bool *anyNoDigits) {
    probe.wordCount = 0;
    if (!enabled.load(std::memory_order_relaxed)) return -1;
    probe.key = key;
    probe.wordCount = static_cast<int32_t>((key.length + kUnitsPerWord - 1) / kUnitsPerWord);
    normalize(key.text, key.length, probe.units);
    for (int64_t i = key.length; i < probe.wordCount * kUnitsPerWord; ++i) probe.units[i] = 0;
    // The slot goes by the pattern and the length alone: the shape is
    // compared, not hashed.
    const uint64_t h = (reinterpret_cast<uintptr_t>(key.cut) ^ keyBitsOf(key)) * kMix;
    probe.slot = static_cast<uint32_t>(h >> (64 - kSlotBits));

    Slot &slot = slots[probe.slot];
    const uint64_t before = slot.sequence.load(std::memory_order_acquire);
    if (before & 1) return -1;
    if (slot.cut.load(std::memory_order_relaxed) != reinterpret_cast<uintptr_t>(key.cut)) return -1;
    const uint64_t meta = slot.meta.load(std::memory_order_relaxed);
    if ((meta & kKeyBits) != keyBitsOf(key)) return -1;
    uint64_t differ = 0;
    for (int32_t i = 0; i < probe.wordCount; ++i)
        differ |= slot.shape[i].load(std::memory_order_relaxed) ^ shapeWord(probe, i);
    if (differ) return -1;
    const int32_t count = static_cast<int32_t>(meta >> kCountShift);
    if (count > kMostShapeTokens) return -1;
    for (int32_t i = 0; i < count; ++i) {
        uint64_t words[kWordsPerToken];
        for (int k = 0; k < kWordsPerToken; ++k)
            words[k] = slot.tokens[i * kWordsPerToken + k].load(std::memory_order_relaxed);
        std::memcpy(&tokens[i], words, sizeof words);
    }
    // Whatever was read counts only if no write began meanwhile.
    std::atomic_thread_fence(std::memory_order_acquire);
    if (slot.sequence.load(std::memory_order_relaxed) != before) return -1;
    *anyNoDigits = (meta >> kAnyNoDigitsBit & 1) != 0;
    return count;
}

void keepCut(const ShapeProbe &probe, const TextToken *tokens, int32_t count, bool anyNoDigits) {
    if (probe.wordCount == 0 || count < 0 || count > kMostShapeTokens) return;
    Slot &slot = slots[probe.slot];
    // A slot another thread is writing is left to it.
    uint64_t sequence = slot.sequence.load(std::memory_order_relaxed);
    if ((sequence & 1) || !slot.sequence.compare_exchange_strong(sequence, sequence + 1, std::memory_order_relaxed))
        return;
    std::atomic_thread_fence(std::memory_order_release);
    slot.cut.store(reinterpret_cast<uintptr_t>(probe.key.cut), std::memory_order_relaxed);
    slot.meta.store(keyBitsOf(probe.key) | uint64_t{anyNoDigits} << kAnyNoDigitsBit |
                        static_cast<uint64_t>(count) << kCountShift,
                    std::memory_order_relaxed);
    for (int32_t i = 0; i < probe.wordCount; ++i) slot.shape[i].store(shapeWord(probe, i), std::memory_order_relaxed);
    for (int32_t i = 0; i < count; ++i) {
        uint64_t words[kWordsPerToken];
        std::memcpy(words, &tokens[i], sizeof words);
        for (int k = 0; k < kWordsPerToken; ++k)
            slot.tokens[i * kWordsPerToken + k].store(words[k], std::memory_order_relaxed);
    }
    slot.sequence.store(sequence + 2, std::memory_order_release);
}

void enableShapeCache(bool on) { enabled.store(on, std::memory_order_relaxed); }

} // namespace zv
