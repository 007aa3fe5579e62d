// The binary, hexadecimal, size, quoted and UUID readers and the base-64
// encoders: random values written by a second algorithm (std::to_chars,
// printf, a bit accumulator) and read back, and the few cases random texts
// rarely meet. A reader may look at min(inputLength, fieldLimit, width)
// units; every random text has a bad tail behind that bound.
#include <gtest/gtest.h>

#include <cctype>
#include <charconv>
#include <cmath>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "frame/frame.hpp"
#include "wide/binary.hpp"
#include "zvhost.hpp"

namespace {

using S = std::u16string;
using Bytes = std::vector<uint8_t>;
using Reader = int32_t (*)(FormatCall *, void *);

// A reader's call on a text, into `capacity` units or bytes and 16 guard bytes, all 0xA5 at first.
struct Call {
    S text;
    Bytes out;
    FormatCall call{};
    explicit Call(S text_, int32_t capacity = 24, int32_t width = 200)
        : text(std::move(text_)), out(size_t(std::max(2 * capacity, 8)) + 16, 0xA5) {
        call.width = width;
        call.input = text.data();
        call.inputLength = call.fieldLimit = int32_t(text.size());
        call.output = out.data();
        call.outputCapacity = capacity;
        call.outputLength = -1;
    }
    // Bounds the reader to the first `length` units by one of its three limits.
    Call &bound(std::mt19937_64 &rng, size_t length) {
        int32_t *limits[] = {&call.inputLength, &call.fieldLimit, &call.width};
        *limits[rng() % 3] = int32_t(length);
        return *this;
    }
    int32_t run(Reader reader) { return reader(&call, nullptr); }
    uint64_t bits() const { return zv::bitsOf(*reinterpret_cast<const double *>(out.data())); }
    Bytes bytes() const { return Bytes(out.begin(), out.begin() + call.outputLength); }
};

std::string hexOf(const Bytes &bytes) {
    std::string hex;
    for (uint8_t b : bytes) hex += "0123456789abcdef"[b >> 4], hex += "0123456789abcdef"[b & 15];
    return hex;
}

S randomCase(std::mt19937_64 &rng, const std::string &s, bool blanks) {
    S out;
    for (char c : s) out += (blanks && rng() % 5 == 0 ? u" " : u"") + S(1, char16_t(rng() % 2 ? std::toupper(c) : c));
    return out;
}

TEST(Readers, BinaryAndHexNumbersComeBack) {
    std::mt19937_64 rng(9);
    for (int n = 0; n < 4000; ++n) {
        const bool hex = n % 2;
        const int digits = 1 + int(rng() % (hex ? 16 : 64));
        const uint64_t value = rng() >> (64 - (hex ? 4 : 1) * digits);
        char buffer[65];
        const std::string written(buffer, std::to_chars(buffer, buffer + 65, value, hex ? 16 : 2).ptr);
        const S text = S(rng() % 3, u' ') + randomCase(rng, std::string(digits - written.size(), '0') + written, true);
        Call c(text + u"x1");
        ASSERT_EQ(c.bound(rng, text.size()).run(hex ? zv::readHexNumber : zv::readBinaryNumber), 0) << n;
        ASSERT_EQ(c.bits(), digits >= (hex ? 16 : 57) ? value : zv::bitsOf(double(value))) << n;
    }
    // Blanks read as zeros; a bad unit leaves the missing value.
    const std::tuple<Reader, S, int32_t, uint64_t> cases[] = {
        {zv::readBinaryNumber, u"   ", 0, 0}, {zv::readHexNumber, u"", 0, 0},
        {zv::readBinaryNumber, u"1\xa0" u"1", 999, ZV_MISSING_BITS}, {zv::readBinaryNumber, S(65, u'0'), 999, ZV_MISSING_BITS},
        {zv::readHexNumber, u"\xff21", 1, ZV_MISSING_BITS},     {zv::readHexNumber, S(17, u'1'), 1, ZV_MISSING_BITS}};
    for (const auto &[reader, text, status, bits] : cases) {
        Call c(text);
        EXPECT_EQ(c.run(reader), status) << zvhost::utf8(text);
        EXPECT_EQ(c.bits(), bits) << zvhost::utf8(text);
    }
}

TEST(Readers, LimitsAreCheckedOnlyWhenAsked) {
    zvhost::Host host;
    ASSERT_NE(host.loadModule(), nullptr);
    const std::tuple<Reader, int32_t, int32_t, int32_t, S> readers[] = {
        {zv::readBinaryNumber, 1, 64, 31, u"1"}, {zv::readHexNumber, 1, 16, 0, u"a"},
        {zv::readSizeNumber, 4, 35, 31, u"1K"},  {zv::readUuid, 1, 200, 0, u"x"}};
    for (const auto &[reader, low, high, decimals, text] : readers) {
        const int32_t cases[][3] = {{low - 1, 0, 2}, {high + 1, 0, 3}, {low, -1, 4}, {high, decimals + 1, 5}, {low, decimals, 0}, {high, 0, 0}};
        for (const auto &[width, places, status] : cases) {
            for (uint8_t validate : {1, 0}) {
                Call c(text, 24, width);
                c.call.decimals = places;
                c.call.flags = validate;
                const int32_t got = c.run(reader);
                EXPECT_EQ(validate ? status : 0, got >= 2 && got <= 5 ? got : 0) << zvhost::utf8(text) << width << "." << places;
                if (validate && status) { EXPECT_EQ(c.bits(), 0xA5A5A5A5A5A5A5A5ull) << "output untouched"; }
            }
        }
    }
    // The number in front of the size letter: 1 to 32 units.
    for (const auto &[text, status] : {std::pair<S, int32_t>{u"K", 2}, {S(33, u'1') + u"K", 3}, {S(32, u'1') + u"K", 0}}) {
        Call c(text, 24, 35);
        c.call.flags = ZV_FLAG_CHECK_LIMITS;
        EXPECT_EQ(c.run(zv::readSizeNumber), status) << zvhost::utf8(text);
    }
}

TEST(Readers, SizeNumbersScaleByTheirLetter) {
    zvhost::Host host; // its current locale, en_US, reads the number, not the call's
    ASSERT_NE(host.loadModule(), nullptr);
    const std::pair<S, int> units[] = {{u"", 0}, {u"K", 1}, {u"k", 1}, {u"M", 2}, {u"m", 2}, {u"G", 3}, {u"g", 3}, {u"T", 0}, {u"KB", 1}, {u" K", 0}};
    std::mt19937_64 rng(10);
    for (int n = 0; n < 300; ++n) {
        const std::string number = (n % 5 ? "" : "-") + std::to_string(rng() % 100000) + (rng() % 2 ? ".5" : ".125");
        const auto &[unit, scale] = units[rng() % 10];
        const S text = S(rng() % 2, u' ') + zvhost::utf16(number) + unit + S(rng() % 2, u' ');
        Call c(text + u"k");
        c.call.locale = host.locale("de_DE");
        ASSERT_EQ(c.bound(rng, text.size()).run(zv::readSizeNumber), 0) << number;
        ASSERT_EQ(zv::doubleOf(c.bits()), std::strtod(number.c_str(), nullptr) * std::pow(1024.0, scale)) << number;
    }
    for (const char16_t *text : {u"K", u"", u"abc"}) {
        Call c(text);
        EXPECT_NE(c.run(zv::readSizeNumber), 0) << zvhost::utf8(text);
        EXPECT_EQ(c.bits(), ZV_MISSING_BITS) << zvhost::utf8(text);
    }
}

TEST(Readers, HexAndBitBytesComeBack) {
    std::mt19937_64 rng(11);
    for (int n = 0; n < 3000; ++n) {
        Bytes bytes(rng() % 12);
        S bits;
        for (uint8_t &b : bytes) // leading zeros may be blanks, but not at the eighth place
            for (int i = 7, value = b = uint8_t(rng()); i >= 0; --i)
                bits += (value >> i) & 1 ? u'1' : i > 0 && (value >> i) == 0 && rng() % 2 ? u' ' : u'0';
        const int lone = int(rng() % 2 ? rng() % 16 : 16), tail = int(rng() % 8);
        const S text = randomCase(rng, hexOf(bytes), true) + S(lone < 16, u"0123456789abcdef"[lone % 16]);
        const int32_t capacity = int32_t(rng() % 14);
        const Bytes fitting(bytes.begin(), bytes.begin() + std::min<int32_t>(int32_t(bytes.size()), capacity));
        Call c(text + u"zz", capacity);
        ASSERT_EQ(c.bound(rng, text.size()).run(zv::readHexBytes), 0) << n;
        ASSERT_EQ(c.bytes(), fitting) << n;
        ASSERT_EQ(Bytes(c.out.begin() + capacity, c.out.end()), Bytes(c.out.size() - size_t(capacity), 0xA5)) << n;

        Bytes out(16, 0xA5);
        uint8_t *cursor = out.data();
        ASSERT_EQ(zv::hexToBytes(text.data(), int64_t(text.size()), &cursor), 0) << n;
        ASSERT_EQ(Bytes(out.data(), cursor), bytes) << n;
        ASSERT_EQ(*cursor, lone < 16 ? lone << 4 : 0xA5) << n;
        Bytes reversed = bytes;
        zv::reverseBytes(reversed.data(), int64_t(reversed.size()));
        ASSERT_EQ(reversed, Bytes(bytes.rbegin(), bytes.rend())) << n;

        const uint8_t tailValue = uint8_t(rng() & ((1u << tail) - 1));
        for (int i = tail - 1; i >= 0; --i) bits += (tailValue >> i) & 1 ? u'1' : u'0';
        if (tail) bytes.push_back(tailValue);
        Call b(bits + u"2", capacity);
        ASSERT_EQ(b.bound(rng, bits.size()).run(zv::readBitBytes), 0) << n;
        ASSERT_EQ(b.bytes(), Bytes(bytes.begin(), bytes.begin() + std::min<int32_t>(int32_t(bytes.size()), capacity)));
    }
    // A blank at the last place, or at an eighth, completes no byte.
    for (const char16_t *text : {u"101 ", u"0000001 "}) {
        Call c(text);
        EXPECT_EQ(c.run(zv::readBitBytes), 0);
        EXPECT_EQ(c.call.outputLength, 0) << zvhost::utf8(text);
    }
    EXPECT_EQ(Call(u"012").run(zv::readBitBytes) + Call(u"0g").run(zv::readHexBytes), 2 * 999);
    uint8_t byte = 0, *cursor = &byte;
    EXPECT_EQ(zv::hexToBytes(u"1x", 2, &cursor), 999);
}

TEST(Readers, QuotedTextComesBack) {
    std::mt19937_64 rng(12);
    for (int n = 0; n < 3000; ++n) {
        S t, text = S(rng() % 3, u' ');
        for (size_t i = rng() % 9; i > 0; --i) t += u"ab'\" "[rng() % 5];
        const char16_t quote = n % 2 ? u'"' : u'\'';
        if (rng() % 4 == 0) {
            text += t = u"a" + t; // no quote in front: the text as it is
        } else {
            text += quote;
            for (char16_t c : t) text += S(c == quote ? 2 : 1, c);
            if (rng() % 3) text += S(1, quote) + (rng() % 2 ? u"zz" : u""); // else an open end
        }
        const int32_t capacity = int32_t(rng() % 12);
        Call c(text + quote + u"zz", capacity);
        ASSERT_EQ(c.bound(rng, text.size()).run(zv::readQuotedText), 0) << n;
        S wide(c.out.size() / 2, u' ');
        std::memcpy(wide.data(), c.out.data(), c.out.size());
        ASSERT_EQ(wide, (t + S(24, u' ')).substr(0, size_t(capacity)) + S(wide.size() - size_t(capacity), 0xA5A5)) << n;
    }
}

TEST(Readers, UuidsComeBack) {
    std::mt19937_64 rng(13);
    for (int n = 0; n < 2000; ++n) {
        Bytes bytes(16);
        for (uint8_t &b : bytes) b = uint8_t(rng());
        std::string hex = hexOf(bytes);
        for (size_t at : {8, 13, 18, 23}) hex.insert(at, "-");
        S core = randomCase(rng, hex, false);
        const S braced = rng() % 2 ? u"{" + S(rng() % 2, u' ') + core + S(rng() % 2, u' ') + (rng() % 3 ? u"}" : u"") : core;
        const S text = S(rng() % 2, u' ') + braced + S(rng() % 2, u' ');
        const int32_t capacity = int32_t(rng() % 20), count = std::min(capacity, 16);
        Call c(text + u"-", capacity);
        ASSERT_EQ(c.bound(rng, text.size()).run(zv::readUuid), 0) << n;
        ASSERT_EQ(c.bytes(), Bytes(bytes.begin(), bytes.begin() + count)) << n;
        ASSERT_EQ(c.out[size_t(count)], 0xA5) << n;

        const size_t i = rng() % 36;
        core[i] = core[i] == u'-' ? u'0' : u"-g "[rng() % 3];
        ASSERT_EQ(Call(core).run(zv::readUuid), 999) << n;
    }
    const S uuid = u"00112233-4455-6677-8899-aabbccddeeff";
    for (const S &text : {uuid.substr(1), uuid + u"0", uuid + u"}", u"(" + uuid + u")", u"{" + uuid.substr(1) + u"}"})
        EXPECT_EQ(Call(text).run(zv::readUuid), 999) << zvhost::utf8(text);
}

// A second encoder: a bit accumulator, six bits at a time.
S base64(const Bytes &bytes) {
    static const char16_t *alphabet = u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    S out;
    uint32_t bits = 0;
    int count = 0;
    for (uint8_t b : bytes)
        for (bits = bits << 8 | b, count += 8; count >= 6;) out += alphabet[(bits >> (count -= 6)) & 63];
    if (count > 0) out += alphabet[(bits << (6 - count)) & 63];
    return out + S((4 - out.size() % 4) % 4, u'=');
}

TEST(Base64, AgreesWithASecondEncoder) {
    zvhost::Host host;
    HostPool *pool = host.formatPool().raw();
    std::mt19937_64 rng(14);
    for (int n = 0; n < 1000; ++n) {
        Bytes source(rng() % 40);
        S units, target(60, u'#');
        for (uint8_t &b : source) units += char16_t((b = uint8_t(rng())) | (rng() % 256) << 8);
        const S expected = base64(source);
        ZvChar *text = n % 2 ? nullptr : target.data();
        int64_t produced = -1;
        const int64_t before = host.formatPool().stats().liveBytes;
        ASSERT_EQ(n % 4 < 2 ? zv::encodeBase64Bytes(pool, source.data(), int64_t(source.size()), &text, &produced)
                            : zv::encodeBase64Units(pool, units.data(), int64_t(units.size()), &text, &produced), 0);
        ASSERT_EQ(S(text, size_t(produced)), expected) << n;
        if (n % 2) { // the routine's own text, with a zero behind it
            ASSERT_EQ(host.formatPool().stats().liveBytes - before, int64_t(expected.size() + 1) * 2) << n;
            ASSERT_EQ(text[produced], 0) << n;
            pool->ops->poolFree(pool, text);
        } else {
            ASSERT_EQ(target, expected + S(60 - expected.size(), u'#')) << n;
        }
    }
    host.formatPool().failAt(1);
    ZvChar *text = nullptr;
    int64_t produced = -7;
    EXPECT_EQ(zv::encodeBase64Bytes(pool, Bytes(5).data(), 5, &text, &produced), ZV_NO_MEMORY);
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(produced, -7);
}

} // namespace
