// The host's transcoders against ICU's own conversion: random texts in many
// encodings, every capacity (whole characters only), and a failure, never a
// substitute, for a character the target lacks.
#include <gtest/gtest.h>
#include <unicode/ucnv.h>

#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "zvhost.hpp"

namespace {

struct Released {
    void operator()(HostTranscoder *t) const { t->ops->transcoderRelease(t); }
};
using Transcoder = std::unique_ptr<HostTranscoder, Released>;

struct Outcome {
    int32_t status;
    std::string bytes;
};

// Runs one conversion into a target of `capacity` bytes with a guard behind it.
Outcome run(HostTranscoder *t, const void *source, int64_t bytes, int64_t capacity) {
    std::vector<char> out(size_t(capacity) + 16, 'Z');
    int64_t produced = -1;
    const int32_t status = t->ops->transcode(t, source, bytes, out.data(), capacity, &produced, 0);
    EXPECT_TRUE(produced >= 0 && produced <= capacity) << produced;
    for (size_t i = size_t(std::max<int64_t>(produced, 0)); i < out.size(); ++i) EXPECT_EQ(out[i], 'Z') << i;
    return {status, std::string(out.data(), size_t(std::clamp<int64_t>(produced, 0, capacity)))};
}

// ICU's conversion of the text, stopping at the first character it can't map.
bool icuEncode(const char *encoding, std::u16string_view text, std::string &bytes) {
    UErrorCode err = U_ZERO_ERROR;
    UConverter *c = ucnv_open(encoding, &err);
    ucnv_setFromUCallBack(c, UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &err);
    std::vector<char> out(text.size() * 8 + 16);
    const int32_t n = ucnv_fromUChars(c, out.data(), int32_t(out.size()), text.data(), int32_t(text.size()), &err);
    ucnv_close(c);
    bytes.assign(out.data(), U_SUCCESS(err) ? size_t(n) : 0);
    return U_SUCCESS(err);
}

const char *const kEncodings[] = {"UTF-8",  "ISO-8859-1", "windows-1252", "US-ASCII", "Shift_JIS",
                                  "GB18030", "UTF-16BE",  "EUC-KR",       "KOI8-R",   "ISO-8859-15",
                                  "Big5",    "EUC-JP",    "IBM437",       "windows-1251"};

// Random texts over characters that some encodings have and others lack;
// long ones pass the stack buffers. A text every encoding can show converts
// as ICU converts it and comes back unchanged; one it can't fails at the
// first such character with what came before it; at every smaller capacity
// the answer is the longest run of whole characters that fits.
TEST(Transcoders, AgreeWithIcuAtEveryCapacity) {
    std::mt19937 rng(20240305);
    const char32_t pool[] = {U'a', U'Z', U'0', U' ', U'\u00E9', U'\u00DF', U'\u20AC', U'\u3042', U'\u4E2D',
                             U'\uAC00', U'\U0001F600', U'\u0416', U'\u00A0', U'\u2019', U'\u00A4'};
    for (const char *name : kEncodings) {
        const uint32_t id = *zvhost::encodingIdOf(name);
        Transcoder out(zvhost::makeTranscoder(ZV_ENCODING_UTF16, id));
        Transcoder back(zvhost::makeTranscoder(id, ZV_ENCODING_UTF16));
        ASSERT_TRUE(out && back) << name;
        EXPECT_EQ(zvhost::encodingIdOf(zvhost::encodingName(id)), id);
        for (int round = 0; round < 40; ++round) {
            std::u16string text;
            std::vector<size_t> ends{0}; // unit count of each prefix of whole characters
            const size_t n = round < 30 ? rng() % 12 : rng() % 700;
            for (size_t i = 0; i < n; ++i) {
                const char32_t c = pool[rng() % (round % 2 ? std::size(pool) : 4)];
                if (c > 0xFFFF) text += {char16_t(0xD7C0 + (c >> 10)), char16_t(0xDC00 | (c & 0x3FF))};
                else text += char16_t(c);
                ends.push_back(text.size());
            }
            std::string full;
            const bool showable = icuEncode(name, text, full);
            const Outcome r = run(out.get(), text.data(), int64_t(text.size() * 2), int64_t(text.size() * 4 + 8));
            if (!showable) {
                EXPECT_EQ(r.status, zvhost::kCannotShow) << name;
                size_t k = 0;
                std::string prefix;
                while (icuEncode(name, std::u16string_view(text).substr(0, ends[k + 1]), prefix)) ++k;
                icuEncode(name, std::u16string_view(text).substr(0, ends[k]), prefix);
                EXPECT_EQ(r.bytes, prefix) << name;
                continue;
            }
            EXPECT_EQ(r.status, 0) << name;
            EXPECT_EQ(r.bytes, full) << name;
            const Outcome w = run(back.get(), full.data(), int64_t(full.size()), int64_t(text.size() * 2));
            EXPECT_EQ(w.status, 0);
            EXPECT_EQ(w.bytes, std::string(reinterpret_cast<const char *>(text.data()), text.size() * 2)) << name;
            if (n > 12) continue;
            for (size_t cap = 0; cap < full.size(); ++cap) {
                std::string fits, prefix;
                for (size_t e : ends)
                    if (icuEncode(name, std::u16string_view(text).substr(0, e), prefix) && prefix.size() <= cap)
                        fits = prefix;
                const Outcome cut = run(out.get(), text.data(), int64_t(text.size() * 2), int64_t(cap));
                EXPECT_EQ(cut.status, ZV_TARGET_TOO_SMALL) << name << " " << cap;
                EXPECT_EQ(cut.bytes, fits) << name << " " << cap;
            }
        }
    }
}

// The locale-table text: byte b is U+00bb, both ways.
TEST(Transcoders, LocaleTextIsTheFirst256Characters) {
    Transcoder in(zvhost::makeTranscoder(ZV_ENCODING_LOCALE_TEXT, ZV_ENCODING_UTF16));
    Transcoder out(zvhost::makeTranscoder(ZV_ENCODING_UTF16, ZV_ENCODING_LOCALE_TEXT));
    std::string all;
    std::u16string wide;
    for (int b = 0; b < 256; ++b) all += char(b), wide += char16_t(b);
    const Outcome w = run(in.get(), all.data(), 256, 512);
    EXPECT_EQ(w.status, 0);
    EXPECT_EQ(w.bytes, std::string(reinterpret_cast<const char *>(wide.data()), 512));
    EXPECT_EQ(run(out.get(), wide.data(), 512, 256).bytes, all);
    const Outcome r = run(out.get(), u"ab\u20ACc", 8, 16);
    EXPECT_EQ(r.status, zvhost::kCannotShow);
    EXPECT_EQ(r.bytes, "ab");
}

// Text that is not text in its own encoding fails with what came before it,
// and so do marks that ICU would drop in silence.
TEST(Transcoders, BrokenSourceAndIgnorableMarksFail) {
    zvhost::Host host;
    Transcoder utf8(zvhost::makeTranscoder(*zvhost::encodingIdOf("UTF-8"), ZV_ENCODING_UTF16));
    Transcoder wide(zvhost::makeTranscoder(ZV_ENCODING_UTF16, ZV_ENCODING_UTF16));
    HostTranscoder *latin1 = host.transcoder("ISO-8859-1");
    const struct {
        HostTranscoder *t;
        std::string source;
        std::string before;
    } cases[] = {
        {utf8.get(), "ab\xC3(", std::string("a\0b\0", 4)},
        {utf8.get(), "ab\xE2\x82", std::string("a\0b\0", 4)},
        {wide.get(), std::string("x\0\x00\xD8y\0", 6), std::string("x\0", 2)},
        {wide.get(), std::string("ab\0", 3), "ab"},
        {latin1, std::string("1\0" "2\0\x0F\x20" "3\0", 8), "12"},
        {latin1, std::string("a\0\x0B\x20", 4), "a"},
    };
    for (const auto &c : cases) {
        const Outcome r = run(c.t, c.source.data(), int64_t(c.source.size()), 64);
        EXPECT_EQ(r.status, zvhost::kCannotShow);
        EXPECT_EQ(r.bytes, c.before);
    }
    EXPECT_FALSE(zvhost::encodingIdOf("no-such-encoding"));
    EXPECT_EQ(zvhost::encodingIdOf("utf8"), zvhost::encodingIdOf("UTF-8"));
    EXPECT_EQ(zvhost::encodingIdOf("UTF-16LE"), uint32_t(ZV_ENCODING_UTF16));
}

} // namespace
