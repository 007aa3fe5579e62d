// Transcoders of the reference host against ICU's own conversions: round
// trips, characters a target can't show, cuts at every capacity.
#include <gtest/gtest.h>
#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
#include <unicode/utf16.h>

#include <cstring>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "zvhost.hpp"

namespace {

struct Released {
    void operator()(HostTranscoder *t) const {
        if (t) t->ops->transcoderRelease(t);
    }
};
using Transcoder = std::unique_ptr<HostTranscoder, Released>;

Transcoder make(uint32_t from, uint32_t to) { return Transcoder(zvhost::makeTranscoder(from, to)); }

uint32_t idOf(const char *name) {
    const auto id = zvhost::encodingIdOf(name);
    EXPECT_TRUE(id.has_value()) << name;
    return id.value_or(0);
}

struct Outcome {
    int32_t status = 0;
    std::string bytes;
    bool guardIntact = true;
};

Outcome run(HostTranscoder *t, const void *source, int64_t bytes, int64_t capacity) {
    std::vector<char> out(size_t(std::max<int64_t>(capacity, 0)) + 32, char(0x5A));
    int64_t produced = -1;
    Outcome r;
    r.status = t->ops->transcode(t, source, bytes, out.data(), capacity, &produced, 0);
    EXPECT_GE(produced, 0);
    EXPECT_LE(produced, std::max<int64_t>(capacity, 0));
    r.bytes.assign(out.data(), size_t(std::max<int64_t>(produced, 0)));
    for (size_t i = size_t(std::max<int64_t>(produced, 0)); i < out.size(); ++i)
        r.guardIntact &= out[i] == char(0x5A);
    return r;
}

Outcome encode(HostTranscoder *t, const std::u16string &text, int64_t capacity) {
    return run(t, text.data(), int64_t(text.size() * 2), capacity);
}

// ICU's own conversion, stopping at the first character it can't map.
bool icuEncode(const char *encoding, const std::u16string &text, std::string &bytes) {
    UErrorCode err = U_ZERO_ERROR;
    UConverter *c = ucnv_open(encoding, &err);
    if (U_FAILURE(err)) return false;
    ucnv_setFromUCallBack(c, UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &err);
    std::vector<char> out(text.size() * 8 + 64);
    const int32_t n = ucnv_fromUChars(c, out.data(), int32_t(out.size()), text.data(), int32_t(text.size()), &err);
    ucnv_close(c);
    if (U_FAILURE(err)) return false;
    bytes.assign(out.data(), size_t(n));
    return true;
}

const std::vector<std::u16string> &samples() {
    static const std::vector<std::u16string> s = {
        u"",
        u"March 5, 2024",
        u"5. M\u00E4rz 2024",
        u"\u20AC 1.234,50",
        u"2024\u5E743\u67085\u65E5",
        u"\u2019Quote\u2019 \u2013 dash",
        u"\u0416\u0443\u0440\u043D\u0430\u043B",
        u"\U0001F600 smile",
        u"\u00A0\u00A4\u00FF",
        u"\uC6D4\uC694\uC77C",
    };
    return s;
}

const char *const kEncodings[] = {"UTF-8",   "ISO-8859-1", "windows-1252", "US-ASCII", "Shift_JIS",
                                  "GB18030", "UTF-16BE",   "EUC-KR",       "KOI8-R",   "ISO-8859-15",
                                  "Big5",    "EUC-JP",     "IBM437",       "windows-1251"};

class Encodings : public ::testing::TestWithParam<const char *> {};

TEST_P(Encodings, AgreeWithIcuOrRefuseWithoutSubstitute) {
    const char *name = GetParam();
    Transcoder out = make(ZV_ENCODING_UTF16, idOf(name));
    Transcoder back = make(idOf(name), ZV_ENCODING_UTF16);
    ASSERT_TRUE(out && back) << name;
    EXPECT_EQ(out->encodingId, idOf(name));
    EXPECT_EQ(out->sourceEncodingId, uint32_t(ZV_ENCODING_UTF16));
    EXPECT_EQ(back->sourceEncodingId, idOf(name));
    for (const std::u16string &text : samples()) {
        std::string expected;
        const bool mappable = icuEncode(name, text, expected);
        const Outcome r = encode(out.get(), text, 4096);
        EXPECT_TRUE(r.guardIntact);
        if (!mappable) {
            EXPECT_EQ(r.status, zvhost::kCannotShow) << name << " " << zvhost::utf8(text);
            EXPECT_EQ(r.bytes.find('?'), std::string::npos) << "no substitute in " << name;
            // What stands before the failure is the encoding of a prefix of the text.
            std::string prefix;
            bool found = r.bytes.empty();
            for (size_t k = 1; k <= text.size() && !found; ++k)
                if (icuEncode(name, text.substr(0, k), prefix) && prefix == r.bytes) found = true;
            EXPECT_TRUE(found) << name << " " << zvhost::utf8(text);
            continue;
        }
        EXPECT_EQ(r.status, 0) << name << " " << zvhost::utf8(text);
        EXPECT_EQ(r.bytes, expected) << name << " " << zvhost::utf8(text);
        // And back to UTF-16, unchanged.
        const Outcome w = run(back.get(), r.bytes.data(), int64_t(r.bytes.size()), 8192);
        EXPECT_EQ(w.status, 0) << name;
        ASSERT_EQ(w.bytes.size() % 2, 0u);
        std::u16string again(w.bytes.size() / 2, u'\0');
        std::memcpy(again.data(), w.bytes.data(), w.bytes.size());
        EXPECT_EQ(again, text) << name;
    }
}

// Every capacity from 0 to the full size: the longest run of whole characters
// that fits, 0x803fe807 until everything fits, nothing behind what is produced.
TEST_P(Encodings, CutsOnlyBetweenCharacters) {
    const char *name = GetParam();
    Transcoder out = make(ZV_ENCODING_UTF16, idOf(name));
    ASSERT_TRUE(out);
    for (const std::u16string &text : samples()) {
        std::string full;
        if (!icuEncode(name, text, full)) continue;
        // Byte length of every prefix of whole code points.
        std::vector<size_t> ends{0};
        for (size_t i = 0; i < text.size();) {
            size_t next = i + (U16_IS_LEAD(text[i]) && i + 1 < text.size() ? 2 : 1);
            std::string prefix;
            ASSERT_TRUE(icuEncode(name, text.substr(0, next), prefix));
            ends.push_back(prefix.size());
            i = next;
        }
        for (size_t cap = 0; cap <= full.size(); ++cap) {
            size_t fits = 0;
            for (size_t e : ends)
                if (e <= cap) fits = std::max(fits, e);
            const Outcome r = encode(out.get(), text, int64_t(cap));
            EXPECT_EQ(r.status, cap < full.size() ? ZV_TARGET_TOO_SMALL : 0) << name << " cap " << cap;
            EXPECT_EQ(r.bytes, full.substr(0, fits)) << name << " cap " << cap;
            EXPECT_TRUE(r.guardIntact) << name << " cap " << cap;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Icu, Encodings, ::testing::ValuesIn(kEncodings),
                         [](const auto &info) {
                             std::string n = info.param;
                             for (char &c : n)
                                 if (!isalnum(static_cast<unsigned char>(c))) c = '_';
                             return n;
                         });

TEST(Encodings, IdsAreStablePerAliasAndDistinctPerConverter) {
    struct Alias {
        const char *a, *b;
    };
    const Alias same[] = {{"UTF-8", "utf8"},           {"UTF-8", "utf-8"},       {"ISO-8859-1", "latin1"},
                          {"ISO-8859-1", "iso_8859-1"}, {"windows-1252", "cp1252"}, {"Shift_JIS", "sjis"},
                          {"US-ASCII", "ascii"},        {"GB18030", "gb18030"},   {"UTF-16LE", "UTF16_LittleEndian"}};
    for (const Alias &s : same) EXPECT_EQ(idOf(s.a), idOf(s.b)) << s.a << " = " << s.b;
    const char *distinct[] = {"UTF-8", "ISO-8859-1", "windows-1252", "US-ASCII", "Shift_JIS", "GB18030", "UTF-16BE"};
    std::set<uint32_t> ids;
    for (const char *n : distinct) ids.insert(idOf(n));
    EXPECT_EQ(ids.size(), std::size(distinct));
    EXPECT_FALSE(ids.count(ZV_ENCODING_UTF16));
    EXPECT_FALSE(ids.count(ZV_ENCODING_LOCALE_TEXT));
    EXPECT_EQ(idOf("UTF-16LE"), uint32_t(ZV_ENCODING_UTF16));
    EXPECT_EQ(idOf("locale-text"), uint32_t(ZV_ENCODING_LOCALE_TEXT));
    EXPECT_EQ(idOf("UTF-8"), idOf("UTF-8")); // asked twice
    for (const char *bad : {"", "no-such-encoding", "UTF-9"}) EXPECT_FALSE(zvhost::encodingIdOf(bad)) << bad;
    // Names come back to the same id.
    for (const char *n : distinct) EXPECT_EQ(idOf(zvhost::encodingName(idOf(n)).c_str()), idOf(n)) << n;
    EXPECT_EQ(zvhost::encodingName(ZV_ENCODING_UTF16), "UTF-16LE");
    EXPECT_EQ(zvhost::encodingName(idOf("utf8")), "UTF-8");
    EXPECT_EQ(zvhost::encodingName(7), "");
    EXPECT_EQ(zvhost::makeTranscoder(ZV_ENCODING_UTF16, 7), nullptr);
    EXPECT_EQ(zvhost::makeTranscoder(99999, ZV_ENCODING_UTF16), nullptr);
}

TEST(LocaleText, BytesAreTheFirst256Characters) {
    Transcoder in = make(ZV_ENCODING_LOCALE_TEXT, ZV_ENCODING_UTF16);
    Transcoder out = make(ZV_ENCODING_UTF16, ZV_ENCODING_LOCALE_TEXT);
    ASSERT_TRUE(in && out);
    std::string all;
    std::u16string wide;
    for (int b = 0; b < 256; ++b) {
        all += char(b);
        wide += char16_t(b);
    }
    const Outcome w = run(in.get(), all.data(), int64_t(all.size()), 1024);
    EXPECT_EQ(w.status, 0);
    ASSERT_EQ(w.bytes.size(), 512u);
    std::u16string got(256, u'\0');
    std::memcpy(got.data(), w.bytes.data(), 512);
    EXPECT_EQ(got, wide);
    EXPECT_EQ(encode(out.get(), wide, 256).bytes, all);
    // Above U+00FF there is nothing to write.
    const Outcome r = encode(out.get(), u"ab\u20ACc", 16);
    EXPECT_EQ(r.status, zvhost::kCannotShow);
    EXPECT_EQ(r.bytes, "ab");
    // Too small: what fits, one byte a character.
    const Outcome s = run(in.get(), "abcdef", 6, 8);
    EXPECT_EQ(s.status, ZV_TARGET_TOO_SMALL);
    EXPECT_EQ(s.bytes, std::string("a\0b\0c\0d\0", 8));
}

TEST(Utf16, WideToWideKeepsPairsWhole) {
    Transcoder t = make(ZV_ENCODING_UTF16, ZV_ENCODING_UTF16);
    ASSERT_TRUE(t);
    const std::u16string text = u"a\U0001F600b";
    struct Case {
        int64_t capacity;
        int32_t status;
        size_t units;
    };
    const Case cases[] = {{0, ZV_TARGET_TOO_SMALL, 0}, {1, ZV_TARGET_TOO_SMALL, 0}, {2, ZV_TARGET_TOO_SMALL, 1},
                          {3, ZV_TARGET_TOO_SMALL, 1}, {4, ZV_TARGET_TOO_SMALL, 1}, {5, ZV_TARGET_TOO_SMALL, 1},
                          {6, ZV_TARGET_TOO_SMALL, 3}, {7, ZV_TARGET_TOO_SMALL, 3}, {8, 0, 4}};
    for (const Case &c : cases) {
        const Outcome r = encode(t.get(), text, c.capacity);
        EXPECT_EQ(r.status, c.status) << c.capacity;
        EXPECT_EQ(r.bytes.size(), c.units * 2) << c.capacity;
        EXPECT_EQ(std::memcmp(r.bytes.data(), text.data(), r.bytes.size()), 0);
        EXPECT_TRUE(r.guardIntact);
    }
    // A lone surrogate is not text.
    EXPECT_EQ(encode(t.get(), u"x\xD800y", 16).status, zvhost::kCannotShow);
    EXPECT_EQ(encode(t.get(), u"x\xD800y", 16).bytes, std::string("x\0", 2));
    // An odd byte count leaves half a unit.
    EXPECT_EQ(run(t.get(), u"ab", 3, 16).status, zvhost::kCannotShow);
}

TEST(Decoding, IllegalBytesFailWithWhatCameBefore) {
    Transcoder t = make(idOf("UTF-8"), ZV_ENCODING_UTF16);
    ASSERT_TRUE(t);
    const Outcome r = run(t.get(), "ab\xC3(", 4, 64);
    EXPECT_EQ(r.status, zvhost::kCannotShow);
    EXPECT_EQ(r.bytes, std::string("a\0b\0", 4));
    const Outcome cut = run(t.get(), "ab\xE2\x82", 4, 64); // ends inside a character
    EXPECT_EQ(cut.status, zvhost::kCannotShow);
    Transcoder ascii = make(idOf("US-ASCII"), ZV_ENCODING_UTF16);
    EXPECT_EQ(run(ascii.get(), "a\x80", 2, 64).status, zvhost::kCannotShow);
}

TEST(Arguments, BadCallsWriteNothing) {
    Transcoder t = make(ZV_ENCODING_UTF16, idOf("UTF-8"));
    char out[8] = {1, 1, 1, 1, 1, 1, 1, 1};
    int64_t produced = 99;
    EXPECT_EQ(t->ops->transcode(t.get(), u"abc", 6, out, -5, &produced, 0), ZV_TARGET_TOO_SMALL);
    EXPECT_EQ(produced, 0);
    EXPECT_EQ(t->ops->transcode(t.get(), u"abc", 6, nullptr, 8, &produced, 0), ZV_TARGET_TOO_SMALL);
    EXPECT_EQ(t->ops->transcode(t.get(), nullptr, 6, out, 8, &produced, 0), zvhost::kBadRequest);
    EXPECT_EQ(t->ops->transcode(t.get(), u"abc", -1, out, 8, &produced, 0), zvhost::kBadRequest);
    EXPECT_EQ(t->ops->transcode(t.get(), u"", 0, out, 0, &produced, 0), 0);
    EXPECT_EQ(produced, 0);
    EXPECT_EQ(t->ops->transcode(t.get(), u"abc", 6, out, 8, nullptr, 0), 0);
    for (int i = 3; i < 8; ++i) EXPECT_EQ(out[i], 1);
}

// Long texts go beyond the stack buffers; random texts of mapped characters
// agree with ICU in every listed encoding.
TEST(Encodings, RandomTextsAgreeWithIcu) {
    std::mt19937 rng(20240305);
    const char32_t pool[] = {U'a', U'Z', U'0', U' ', U'\u00E9', U'\u00DF', U'\u20AC', U'\u3042', U'\u4E2D',
                             U'\uAC00', U'\U0001F600', U'\u0416', U'\u00A0', U'-'};
    for (const char *name : kEncodings) {
        Transcoder out = make(ZV_ENCODING_UTF16, idOf(name));
        for (int round = 0; round < 20; ++round) {
            std::u16string text;
            const size_t n = size_t(rng() % 900);
            for (size_t i = 0; i < n; ++i) {
                char32_t c = pool[rng() % std::size(pool)];
                if (c > 0xFFFF) {
                    text += char16_t(0xD7C0 + (c >> 10));
                    text += char16_t(0xDC00 | (c & 0x3FF));
                } else {
                    text += char16_t(c);
                }
            }
            std::string expected;
            const bool ok = icuEncode(name, text, expected);
            const Outcome r = encode(out.get(), text, int64_t(n * 4 + 16));
            EXPECT_EQ(r.status, ok ? 0 : zvhost::kCannotShow) << name;
            if (ok) {
                EXPECT_EQ(r.bytes, expected) << name;
            }
        }
    }
}

// Random bytes in every direction: a status, never a write past the capacity.
TEST(Encodings, RandomBytesNeverOverrun) {
    std::mt19937 rng(7);
    std::vector<uint32_t> ids{ZV_ENCODING_UTF16, ZV_ENCODING_LOCALE_TEXT};
    for (const char *name : kEncodings) ids.push_back(idOf(name));
    for (uint32_t from : ids)
        for (uint32_t to : {uint32_t(ZV_ENCODING_UTF16), idOf("UTF-8"), idOf("Shift_JIS"), uint32_t(ZV_ENCODING_LOCALE_TEXT)}) {
            Transcoder t = make(from, to);
            ASSERT_TRUE(t) << from << " -> " << to;
            for (int round = 0; round < 40; ++round) {
                std::string bytes(size_t(rng() % 600), '\0');
                for (char &b : bytes) b = char(rng());
                const int64_t capacity = int64_t(rng() % 700);
                const Outcome r = run(t.get(), bytes.data(), int64_t(bytes.size()), capacity);
                EXPECT_TRUE(r.guardIntact) << from << " -> " << to;
                EXPECT_TRUE(r.status == 0 || r.status == ZV_TARGET_TOO_SMALL || r.status == zvhost::kCannotShow);
            }
        }
}

} // namespace

// ICU drops a direction mark that Latin-1 lacks without a word; the host
// calls it what it is, a character the target cannot show.
TEST(TranscoderIgnorables, AnUnshowableMarkIsAFailureAtItsPlace) {
    zvhost::Host host;
    HostTranscoder *t = host.transcoder("ISO-8859-1");
    ASSERT_NE(t, nullptr);
    const char16_t text[] = u"12\u200f34";
    char out[8] = {};
    int64_t produced = -1;
    EXPECT_EQ(t->ops->transcode(t, text, 10, out, sizeof out, &produced, 0), zvhost::kCannotShow);
    EXPECT_EQ(produced, 2);
    EXPECT_EQ(std::string(out, 2), "12");
    // In UTF-8 the mark is shown, three bytes of it.
    HostTranscoder *u = host.transcoder("UTF-8");
    produced = -1;
    EXPECT_EQ(u->ops->transcode(u, text, 10, out, sizeof out, &produced, 0), 0);
    EXPECT_EQ(produced, 7);
    // Soft hyphen and zero-width space the same way.
    for (char16_t mark : {u'\u00ad', u'\u200b'}) {
        const char16_t one[] = {u'a', mark};
        produced = -1;
        const int32_t status = t->ops->transcode(t, one, 4, out, sizeof out, &produced, 0);
        if (mark == u'\u00ad') EXPECT_EQ(status, 0); // Latin-1 has the soft hyphen
        else EXPECT_EQ(status, zvhost::kCannotShow);
    }
}
