// The binary, hexadecimal, size, quoted and UUID readers and the base-64
// encoders: random values written by a second algorithm (std::to_chars,
// printf, a bit accumulator) and read back, and the few cases that random
// texts rarely meet. A reader may look at min(inputLength, fieldLimit, width)
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
constexpr uint64_t kUntouched = 0xA5A5A5A5A5A5A5A5ull;

struct Args {
    int32_t width = 200, decimals = 0, capacity = 24;
    bool validate = false;
    int32_t inputLength = -1, fieldLimit = -1; // -1: the whole text
    HostLocale *locale = nullptr;
};

struct Result {
    int32_t status;
    uint64_t bits;  // the double at output
    Bytes out;      // the output buffer, 16 guard bytes behind the target included
    int32_t outputLength;
    S wide() const { S w(out.size() / 2, u' '); std::memcpy(w.data(), out.data(), w.size() * 2); return w; }
};

Result read(Reader reader, const S &text, const Args &a = {}) {
    FormatCall call{};
    call.width = a.width;
    call.decimals = a.decimals;
    call.flags = a.validate ? ZV_FLAG_CHECK_LIMITS : 0;
    call.input = text.data();
    call.inputLength = a.inputLength < 0 ? int32_t(text.size()) : a.inputLength;
    call.fieldLimit = a.fieldLimit < 0 ? int32_t(text.size()) : a.fieldLimit;
    call.locale = a.locale;
    Bytes out(size_t(std::max(2 * a.capacity, 8)) + 16, 0xA5);
    call.output = out.data();
    call.outputCapacity = a.capacity;
    call.outputLength = -1;
    Result r{reader(&call, nullptr), 0, out, call.outputLength};
    std::memcpy(&r.bits, out.data(), 8);
    return r;
}

// Bounds the reader to the first `length` units by one of the three limits.
Args bounded(std::mt19937_64 &rng, size_t length, Args a = {}) {
    const int32_t n = int32_t(length), which = int32_t(rng() % 3);
    (which == 0 ? a.inputLength : which == 1 ? a.fieldLimit : a.width) = n;
    return a;
}

S randomCase(std::mt19937_64 &rng, const std::string &s, bool blanks) {
    S out;
    for (char c : s) {
        if (blanks && rng() % 5 == 0) out += u' ';
        out += char16_t(rng() % 2 ? std::toupper(c) : c);
    }
    return out;
}

TEST(Readers, BinaryAndHexNumbersComeBack) {
    std::mt19937_64 rng(9);
    for (int n = 0; n < 4000; ++n) {
        const bool hex = n % 2;
        const int digits = 1 + int(rng() % (hex ? 16 : 64)), width = hex ? 4 : 1;
        const uint64_t value = rng() >> (64 - width * digits);
        char buffer[65];
        const std::string written(buffer, std::to_chars(buffer, buffer + 65, value, hex ? 16 : 2).ptr);
        const S text = S(rng() % 3, u' ') + randomCase(rng, std::string(digits - written.size(), '0') + written, true);
        const Result r = read(hex ? zv::readHexNumber : zv::readBinaryNumber, text + u"x1", bounded(rng, text.size()));
        ASSERT_EQ(r.status, 0) << n;
        ASSERT_EQ(r.bits, digits >= (hex ? 16 : 57) ? value : zv::bitsOf(double(value))) << n;
    }
    const S zeros65(65, u'0'), digits17(17, u'1');
    const struct {
        Reader reader;
        const char16_t *text;
        int32_t status;
        uint64_t bits;
    } cases[] = {
        {zv::readBinaryNumber, u"", 0, 0},         {zv::readBinaryNumber, u"   ", 0, 0},
        {zv::readHexNumber, u"  ", 0, 0},          {zv::readBinaryNumber, u"102", 999, ZV_MISSING_BITS},
        {zv::readBinaryNumber, u"1\xa0" u"1", 999, ZV_MISSING_BITS},
        {zv::readBinaryNumber, zeros65.c_str(), 999, ZV_MISSING_BITS},
        {zv::readHexNumber, u"g", 1, ZV_MISSING_BITS},       {zv::readHexNumber, u"\xff21", 1, ZV_MISSING_BITS},
        {zv::readHexNumber, digits17.c_str(), 1, ZV_MISSING_BITS},
    };
    for (const auto &k : cases) {
        const Result r = read(k.reader, k.text);
        EXPECT_EQ(r.status, k.status) << zvhost::utf8(k.text);
        EXPECT_EQ(r.bits, k.bits) << zvhost::utf8(k.text);
    }
}

TEST(Readers, LimitsAreCheckedOnlyWhenAsked) {
    zvhost::Host host;
    ASSERT_NE(host.loadModule(), nullptr);
    const struct {
        Reader reader;
        int32_t widthLow, widthHigh, decimalsHigh;
        const char16_t *text;
    } readers[] = {{zv::readBinaryNumber, 1, 64, 31, u"1"}, {zv::readHexNumber, 1, 16, 0, u"a"},
                   {zv::readSizeNumber, 4, 35, 31, u"1K"}, {zv::readUuid, 1, 200, 0, u"x"}};
    for (const auto &k : readers) {
        const struct {
            int32_t width, decimals, status;
        } cases[] = {{k.widthLow - 1, 0, 2},  {k.widthHigh + 1, 0, 3},        {k.widthLow, -1, 4},
                     {k.widthHigh, k.decimalsHigh + 1, 5}, {k.widthLow, k.decimalsHigh, 0}, {k.widthHigh, 0, 0}};
        for (const auto &c : cases) {
            for (bool validate : {true, false}) {
                const Result r = read(k.reader, k.text, {c.width, c.decimals, 24, validate});
                if (validate && c.status) {
                    EXPECT_EQ(r.status, c.status) << zvhost::utf8(k.text) << c.width << "." << c.decimals;
                    EXPECT_EQ(r.bits, kUntouched);
                } else {
                    EXPECT_TRUE(r.status < 2 || r.status > 5) << zvhost::utf8(k.text) << c.width << "." << c.decimals;
                }
            }
        }
    }
    // The number in front of the size letter: 1 to 32 units.
    const S digits32(32, u'1');
    EXPECT_EQ(read(zv::readSizeNumber, u"K", {35, 0, 24, true}).status, 2);
    EXPECT_EQ(read(zv::readSizeNumber, digits32 + u"1K", {35, 0, 24, true}).status, 3);
    EXPECT_EQ(read(zv::readSizeNumber, digits32 + u"K", {35, 0, 24, true}).status, 0);
}

TEST(Readers, SizeNumbersScaleByTheirLetter) {
    zvhost::Host host; // its current locale, en_US, reads the number, not the call's
    ASSERT_NE(host.loadModule(), nullptr);
    const char16_t *units[] = {u"", u"K", u"k", u"M", u"m", u"G", u"g", u"T", u"KB", u" K"};
    const int scale[] = {0, 1, 1, 2, 2, 3, 3, 0, 1, 0};
    std::mt19937_64 rng(10);
    for (int n = 0; n < 300; ++n) {
        const std::string number = (n % 5 ? "" : "-") + std::to_string(rng() % 100000) + ".125"[0] +
                                   std::to_string(rng() % 2 ? 125 : 5);
        const int u = int(rng() % 10);
        const S text = S(rng() % 2, u' ') + zvhost::utf16(number) + units[u] + S(rng() % 2, u' ');
        Args a;
        a.width = 35;
        a.locale = host.locale("de_DE");
        const Result r = read(zv::readSizeNumber, text, a);
        ASSERT_EQ(r.status, 0) << number;
        ASSERT_EQ(zv::doubleOf(r.bits), std::strtod(number.c_str(), nullptr) * std::pow(1024.0, scale[u])) << number;
    }
    for (const char16_t *text : {u"K", u"", u"abc"}) {
        const Result r = read(zv::readSizeNumber, text);
        EXPECT_NE(r.status, 0) << zvhost::utf8(text);
        EXPECT_EQ(r.bits, ZV_MISSING_BITS) << zvhost::utf8(text);
    }
}

TEST(Readers, HexAndBitBytesComeBack) {
    std::mt19937_64 rng(11);
    for (int n = 0; n < 3000; ++n) {
        Bytes bytes(rng() % 12);
        std::string hex;
        S bits;
        for (uint8_t &b : bytes) {
            b = uint8_t(rng());
            char pair[3];
            std::snprintf(pair, sizeof pair, "%02x", b);
            hex += pair;
            for (int i = 7; i >= 0; --i) // leading zeros may be blanks, not the last place
                bits += (b >> i) & 1 ? u'1' : (i > 0 && (b >> i) == 0 && rng() % 2 ? u' ' : u'0');
        }
        const int tail = int(rng() % 8), lone = int(rng() % 2 ? rng() % 16 : -1);
        const uint8_t tailValue = uint8_t(rng() & ((1u << tail) - 1));
        for (int i = tail - 1; i >= 0; --i) bits += (tailValue >> i) & 1 ? u'1' : u'0';
        S text = randomCase(rng, hex, true) + (lone < 0 ? u"" : S(1, u"0123456789abcdef"[lone]));
        Args a = bounded(rng, text.size());
        a.capacity = int32_t(rng() % 14);
        const size_t room = size_t(a.capacity);
        Result r = read(zv::readHexBytes, text + u"zz", a);
        ASSERT_EQ(r.status, 0) << n;
        ASSERT_EQ(r.outputLength, int32_t(std::min(bytes.size(), room))) << n;
        ASSERT_TRUE(std::equal(bytes.begin(), bytes.begin() + r.outputLength, r.out.begin())) << n;
        ASSERT_EQ(Bytes(r.out.begin() + int64_t(room), r.out.end()), Bytes(r.out.size() - room, 0xA5)) << n;

        Bytes out(16, 0xA5);
        uint8_t *cursor = out.data();
        ASSERT_EQ(zv::hexToBytes(text.data(), int64_t(text.size()), &cursor), 0) << n;
        ASSERT_EQ(cursor, out.data() + bytes.size()) << n;
        ASSERT_TRUE(std::equal(bytes.begin(), bytes.end(), out.begin())) << n;
        ASSERT_EQ(*cursor, lone < 0 ? 0xA5 : lone << 4) << n;

        if (tail) bytes.push_back(tailValue);
        a = bounded(rng, bits.size());
        a.capacity = int32_t(rng() % 14);
        r = read(zv::readBitBytes, bits + u"2", a);
        ASSERT_EQ(r.status, 0) << n;
        ASSERT_EQ(r.outputLength, int32_t(std::min(bytes.size(), size_t(a.capacity)))) << n;
        ASSERT_TRUE(std::equal(bytes.begin(), bytes.begin() + r.outputLength, r.out.begin())) << n;
    }
    // A blank at the last place, or at an eighth, completes no byte.
    for (const char16_t *text : {u"101 ", u"0000001 "}) EXPECT_EQ(read(zv::readBitBytes, text).outputLength, 0);
    EXPECT_EQ(read(zv::readBitBytes, u"012").status, 999);
    EXPECT_EQ(read(zv::readHexBytes, u"0g").status, 999);
    uint8_t byte = 0, *cursor = &byte;
    EXPECT_EQ(zv::hexToBytes(u"1x", 2, &cursor), 999);
}

TEST(Readers, QuotedTextComesBack) {
    std::mt19937_64 rng(12);
    for (int n = 0; n < 3000; ++n) {
        S t;
        for (size_t i = rng() % 9; i > 0; --i) t += u"ab'\" "[rng() % 5];
        const char16_t quote = n % 2 ? u'"' : u'\'';
        S text = S(rng() % 3, u' ');
        if (rng() % 4 == 0) {
            t = u"a" + t; // no quote in front: the text as it is
            text += t;
        } else {
            text += quote;
            for (char16_t c : t) text += c == quote ? S(2, c) : S(1, c);
            if (rng() % 3) text += S(1, quote) + u"zz"; // else an open end
        }
        Args a = bounded(rng, text.size());
        a.capacity = int32_t(rng() % 12);
        const Result r = read(zv::readQuotedText, text + quote + u"zz", a);
        ASSERT_EQ(r.status, 0) << n;
        const S wide = r.wide(), room = wide.substr(size_t(a.capacity));
        ASSERT_EQ(wide.substr(0, size_t(a.capacity)), (t + S(24, u' ')).substr(0, size_t(a.capacity))) << n;
        ASSERT_EQ(room, S(room.size(), 0xA5A5)) << n;
    }
}

TEST(Readers, UuidsComeBack) {
    std::mt19937_64 rng(13);
    for (int n = 0; n < 2000; ++n) {
        Bytes bytes(16);
        std::string hex;
        for (size_t i = 0; i < 16; ++i) {
            bytes[i] = uint8_t(rng());
            char pair[3];
            std::snprintf(pair, sizeof pair, "%02x", bytes[i]);
            hex += (i == 4 || i == 6 || i == 8 || i == 10 ? "-" : "") + std::string(pair);
        }
        S core = randomCase(rng, hex, false);
        const S braced = rng() % 2 ? u"{" + S(rng() % 2, u' ') + core + S(rng() % 2, u' ') + (rng() % 3 ? u"}" : u"")
                                   : core;
        const S text = S(rng() % 2, u' ') + braced + S(rng() % 2, u' ');
        Args a = bounded(rng, text.size());
        a.capacity = int32_t(rng() % 20);
        const Result r = read(zv::readUuid, text + u"-", a);
        const size_t count = std::min<size_t>(16, size_t(a.capacity));
        ASSERT_EQ(r.status, 0) << n;
        ASSERT_EQ(r.outputLength, int32_t(count)) << n;
        ASSERT_EQ(Bytes(r.out.begin(), r.out.begin() + int64_t(count)), Bytes(bytes.begin(), bytes.begin() + int64_t(count)));
        ASSERT_EQ(r.out[count], 0xA5) << n;

        const size_t i = rng() % 36;
        core[i] = core[i] == u'-' ? u'0' : u"-g "[rng() % 3];
        ASSERT_EQ(read(zv::readUuid, core).status, 999) << n;
    }
    const S uuid = u"00112233-4455-6677-8899-aabbccddeeff";
    for (const S &text : {uuid.substr(1), uuid + u"0", uuid + u"}", u"(" + uuid + u")", u"{" + uuid.substr(1) + u"}"})
        EXPECT_EQ(read(zv::readUuid, text).status, 999) << zvhost::utf8(text);
}

// A second encoder: a bit accumulator, six bits at a time.
std::string base64(const Bytes &bytes) {
    static const char *alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string out;
    uint32_t bits = 0;
    int count = 0;
    for (uint8_t b : bytes)
        for (bits = bits << 8 | b, count += 8; count >= 6;) out += alphabet[(bits >> (count -= 6)) & 63];
    if (count > 0) out += alphabet[(bits << (6 - count)) & 63];
    return out + std::string((4 - out.size() % 4) % 4, '=');
}

TEST(Base64, AgreesWithASecondEncoder) {
    zvhost::Host host;
    HostPool *pool = host.formatPool().raw();
    std::mt19937_64 rng(14);
    for (int n = 0; n < 1000; ++n) {
        Bytes source(rng() % 40);
        S units;
        for (uint8_t &b : source) units += char16_t((b = uint8_t(rng())) | (rng() % 256) << 8);
        const std::string expected = base64(source);
        S target(60, u'#');
        ZvChar *text = n % 2 ? nullptr : target.data();
        int64_t produced = -1;
        const int64_t before = host.formatPool().stats().liveBytes;
        ASSERT_EQ(n % 4 < 2 ? zv::encodeBase64Bytes(pool, source.data(), int64_t(source.size()), &text, &produced)
                            : zv::encodeBase64Units(pool, units.data(), int64_t(units.size()), &text, &produced), 0);
        ASSERT_EQ(zvhost::utf8(S(text, size_t(produced))), expected) << n;
        if (n % 2) { // the routine's own text, with a zero behind it
            ASSERT_EQ(host.formatPool().stats().liveBytes - before, int64_t(expected.size() + 1) * 2) << n;
            ASSERT_EQ(text[produced], 0) << n;
            pool->ops->poolFree(pool, text);
        } else {
            ASSERT_EQ(target.substr(expected.size()), S(60 - expected.size(), u'#')) << n;
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
