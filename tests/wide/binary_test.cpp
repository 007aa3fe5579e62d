// Binary, hexadecimal, size, quoted and UUID readers, hexToBytes,
// reverseBytes and the two base-64 encoders: fixed cases, statuses, random
// values against a second way of writing them, and RFC 4648 vectors.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "frame/frame.hpp"
#include "wide/binary.hpp"
#include "zvhost.hpp"

namespace {

constexpr uint64_t kMissing = ZV_MISSING_BITS;
constexpr uint8_t kGuardByte = 0xA5;

using Reader = int32_t (*)(FormatCall *, void *);

// One call of a reader on a text, with guard room behind the target.
struct ReaderRun {
    int32_t status = 0;
    uint64_t bits = 0;
    std::vector<uint8_t> bytes;  // outputCapacity bytes of the target
    std::u16string wide;         // outputCapacity units of the target
    int32_t outputLength = -1;
    bool guardsIntact = true;
    bool fieldsKept = true;      // the record's fields but outputLength as they were
};

struct Args {
    int32_t width = 64;
    int32_t decimals = 0;
    bool validate = false;
    int32_t fieldLimit = -1;   // -1: the text's length
    int32_t capacity = 32;
    int32_t inputLength = -1;  // -1: the text's length
};

ReaderRun runReader(Reader reader, const std::u16string &text, Args a = {}, HostServices *services = nullptr,
              HostLocale *locale = nullptr) {
    ReaderRun run;
    FormatCall call;
    std::memset(&call, 0, sizeof call);
    call.width = a.width;
    call.decimals = a.decimals;
    call.flags = a.validate ? ZV_FLAG_CHECK_LIMITS : 0;
    call.input = text.data();
    call.inputLength = a.inputLength < 0 ? int32_t(text.size()) : a.inputLength;
    call.fieldLimit = a.fieldLimit < 0 ? int32_t(text.size()) : a.fieldLimit;
    call.services = services;
    call.locale = locale;
    const size_t room = size_t(std::max(a.capacity, 0)) * 2 + 8 + 16;
    std::vector<uint8_t> target(room + 16, kGuardByte);
    call.output = target.data();
    call.outputCapacity = a.capacity;
    const uint64_t untouched = 0x7FF4DEADBEEF0002ull;
    std::memcpy(target.data(), &untouched, 8);
    FormatCall before = call;
    run.status = reader(&call, nullptr);
    std::memcpy(&run.bits, target.data(), 8);
    run.outputLength = call.outputLength;
    before.outputLength = call.outputLength;
    run.fieldsKept = std::memcmp(&before, &call, sizeof call) == 0;
    const size_t used = std::max<size_t>(8, size_t(std::max(a.capacity, 0)) * 2);
    for (size_t i = used; i < target.size(); ++i) run.guardsIntact &= target[i] == kGuardByte;
    run.bytes.assign(target.begin(), target.begin() + std::max(a.capacity, 0));
    for (int32_t i = 0; i < a.capacity; ++i) run.wide.push_back(char16_t(target[2 * i] | target[2 * i + 1] << 8));
    return run;
}

double asDouble(uint64_t bits) { return zv::doubleOf(bits); }

// ---- readBinaryNumber ---------------------------------------------------------

struct NumberCase {
    const char16_t *text;
    int32_t width;
    int32_t status;
    uint64_t bits; // the double at output, as bits
};

TEST(BinaryNumber, FixedCases) {
    const uint64_t ones56 = (uint64_t(1) << 56) - 1;
    const std::u16string d56(56, u'1');
    const std::u16string d57 = u"1" + std::u16string(56, u'0');
    const std::u16string d64(64, u'1');
    const std::u16string d65(65, u'0');
    const std::u16string padded57 = u"0" + std::u16string(55, u'0') + u"1"; // 57 digits, value 1
    const NumberCase cases[] = {
        {u"101", 64, 0, zv::bitsOf(5.0)},
        {u"  1 0  1 ", 64, 0, zv::bitsOf(5.0)},
        {u"", 64, 0, zv::bitsOf(0.0)},        // a blank field reads as zero
        {u"     ", 64, 0, zv::bitsOf(0.0)},
        {u"0000", 64, 0, zv::bitsOf(0.0)},
        {u"1111", 2, 0, zv::bitsOf(3.0)},     // the width cuts the text
        {u"102", 64, 999, kMissing},
        {u"1-1", 64, 999, kMissing},
        {u"0x1", 64, 999, kMissing},
        {u"1\u00A01", 64, 999, kMissing},     // only U+0020 is a blank
        {d56.c_str(), 64, 0, zv::bitsOf(double(ones56))},
        {d57.c_str(), 64, 0, uint64_t(1) << 56}, // 57 digits: the bit pattern
        {padded57.c_str(), 64, 0, 1},
        {d64.c_str(), 64, 0, ~uint64_t(0)},
        {d65.c_str(), 70, 999, kMissing},
    };
    for (const NumberCase &c : cases) {
        Args a;
        a.width = c.width;
        const ReaderRun r = runReader(zv::readBinaryNumber, c.text, a);
        EXPECT_EQ(r.status, c.status) << zvhost::utf8(c.text);
        EXPECT_EQ(r.bits, c.bits) << zvhost::utf8(c.text);
        EXPECT_TRUE(r.guardsIntact);
        EXPECT_TRUE(r.fieldsKept);
    }
}

struct LimitCase {
    int32_t width, decimals, status;
};

TEST(BinaryNumber, Limits) {
    const LimitCase cases[] = {{0, 0, 2}, {65, 0, 3}, {1, -1, 4}, {64, 32, 5}, {64, 31, 0}, {1, 0, 0}, {0, 99, 2}};
    for (const LimitCase &c : cases) {
        Args a;
        a.width = c.width;
        a.decimals = c.decimals;
        a.validate = true;
        const ReaderRun r = runReader(zv::readBinaryNumber, u"1", a);
        EXPECT_EQ(r.status, c.status) << c.width << "." << c.decimals;
        if (c.status != 0) {
            EXPECT_EQ(r.bits, 0x7FF4DEADBEEF0002ull) << "untouched";
        }
        a.validate = false;
        EXPECT_EQ(runReader(zv::readBinaryNumber, u"1", a).status, 0);
    }
}

std::u16string binaryText(uint64_t v, int digits, std::mt19937_64 &rng) {
    std::u16string s;
    for (int i = digits - 1; i >= 0; --i) {
        if (rng() % 5 == 0) s += u' ';
        s += (v >> i) & 1 ? u'1' : u'0';
    }
    return s;
}

TEST(BinaryNumber, RandomValuesComeBack) {
    std::mt19937_64 rng(7);
    for (int n = 0; n < 4000; ++n) {
        const int digits = 1 + int(rng() % 64);
        const uint64_t v = digits == 64 ? rng() : rng() & ((uint64_t(1) << digits) - 1);
        const std::u16string text = binaryText(v, digits, rng);
        Args a;
        a.width = int32_t(text.size());
        const ReaderRun r = runReader(zv::readBinaryNumber, text, a);
        ASSERT_EQ(r.status, 0) << zvhost::utf8(text);
        if (digits < 57)
            ASSERT_EQ(asDouble(r.bits), double(v)) << zvhost::utf8(text);
        else
            ASSERT_EQ(r.bits, v) << zvhost::utf8(text);
    }
}

// ---- readHexNumber --------------------------------------------------------------

TEST(HexNumber, FixedCases) {
    const NumberCase cases[] = {
        {u"ff", 16, 0, zv::bitsOf(255.0)},
        {u"FF", 16, 0, zv::bitsOf(255.0)},
        {u" 1 0 ", 16, 0, zv::bitsOf(16.0)},
        {u"", 16, 0, zv::bitsOf(0.0)},
        {u"   ", 16, 0, zv::bitsOf(0.0)},
        {u"abcdef", 16, 0, zv::bitsOf(double(0xABCDEF))},
        {u"FFFFFFFFFFFFFFF", 16, 0, zv::bitsOf(double(0xFFFFFFFFFFFFFFFull))},  // 15 digits: a number
        {u"3FF0000000000000", 16, 0, zv::bitsOf(1.0)},                          // 16: the bit pattern
        {u"3ff0000000000000", 16, 0, zv::bitsOf(1.0)},
        {u"FFFFD10000000000", 16, 0, kMissing},
        {u"1234", 2, 0, zv::bitsOf(double(0x12))},
        {u"g", 16, 1, kMissing},
        {u"0x10", 16, 1, kMissing},
        {u"\uFF21", 16, 1, kMissing},  // a fullwidth A is no digit here
        {u"10000000000000000", 17, 1, kMissing},
    };
    for (const NumberCase &c : cases) {
        Args a;
        a.width = c.width;
        const ReaderRun r = runReader(zv::readHexNumber, c.text, a);
        EXPECT_EQ(r.status, c.status) << zvhost::utf8(c.text);
        EXPECT_EQ(r.bits, c.bits) << zvhost::utf8(c.text);
        EXPECT_TRUE(r.guardsIntact);
        EXPECT_TRUE(r.fieldsKept);
    }
}

TEST(HexNumber, Limits) {
    const LimitCase cases[] = {{0, 0, 2}, {17, 0, 3}, {16, -1, 4}, {16, 1, 5}, {16, 0, 0}, {1, 0, 0}};
    for (const LimitCase &c : cases) {
        Args a;
        a.width = c.width;
        a.decimals = c.decimals;
        a.validate = true;
        EXPECT_EQ(runReader(zv::readHexNumber, u"a", a).status, c.status) << c.width << "." << c.decimals;
    }
}

TEST(HexNumber, AgreesWithPrintf) {
    std::mt19937_64 rng(11);
    for (int n = 0; n < 4000; ++n) {
        const uint64_t v = rng() >> (rng() % 64);
        char buf[32];
        std::snprintf(buf, sizeof buf, n % 2 ? "%llx" : "%llX", static_cast<unsigned long long>(v));
        const std::u16string text = zvhost::utf16(buf);
        Args a;
        a.width = 16;
        const ReaderRun r = runReader(zv::readHexNumber, text, a);
        ASSERT_EQ(r.status, 0) << buf;
        if (text.size() < 16)
            ASSERT_EQ(asDouble(r.bits), double(v)) << buf;
        else
            ASSERT_EQ(r.bits, v) << buf;
    }
}

// ---- readSizeNumber ---------------------------------------------------------------

class SizeNumber : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_NE(host.loadModule(), nullptr); }
    ReaderRun read(const std::u16string &text, Args a = {}) {
        a.width = a.width == 64 ? 35 : a.width;
        return runReader(zv::readSizeNumber, text, a, host.services(), host.locale("de_DE"));
    }
    zvhost::Host host; // its current locale is en_US
};

TEST_F(SizeNumber, ScalesByTheLetter) {
    const struct {
        const char16_t *text;
        double value;
    } cases[] = {
        {u"12K", 12288.0},
        {u"12k", 12288.0},
        {u"1.5g", 1.5 * 1024 * 1024 * 1024},
        {u"3M", 3.0 * 1024 * 1024},
        {u"3m", 3.0 * 1024 * 1024},
        {u"2G", 2.0 * 1024 * 1024 * 1024},
        {u"7", 7.0},
        {u"  7  ", 7.0},
        {u"12KB", 12288.0},   // only the unit right behind the last digit counts
        {u"12 K", 12.0},      // a blank there scales nothing
        {u"12T", 12.0},
        {u"-4k", -4096.0},
        {u"0.25M", 262144.0},
    };
    for (const auto &c : cases) {
        const ReaderRun r = read(c.text);
        EXPECT_EQ(r.status, 0) << zvhost::utf8(c.text);
        EXPECT_EQ(asDouble(r.bits), c.value) << zvhost::utf8(c.text);
        EXPECT_TRUE(r.fieldsKept);
        EXPECT_TRUE(r.guardsIntact);
    }
}

TEST_F(SizeNumber, Limits) {
    const std::u16string digits33(33, u'1');
    const struct {
        std::u16string text;
        int32_t width, decimals, status;
    } cases[] = {
        {u"12K", 3, 0, 2},  {u"12K", 36, 0, 3},   {u"12K", 4, -1, 4}, {u"12K", 4, 32, 5},
        {u"12K", 4, 31, 0}, {u"K", 35, 0, 2},      {digits33 + u"K", 35, 0, 3},
        {u"  1K", 4, 0, 0},
    };
    for (const auto &c : cases) {
        Args a;
        a.width = c.width;
        a.decimals = c.decimals;
        a.validate = true;
        const ReaderRun r = read(c.text, a);
        EXPECT_EQ(r.status, c.status) << zvhost::utf8(c.text) << " " << c.width << "." << c.decimals;
        if (c.status != 0) {
            EXPECT_EQ(r.bits, 0x7FF4DEADBEEF0002ull) << "untouched";
        }
    }
}

TEST_F(SizeNumber, TextWithoutANumberKeepsTheMissingValue) {
    for (const char16_t *text : {u"K", u"", u"abc"}) {
        const ReaderRun r = read(text);
        EXPECT_NE(r.status, 0) << zvhost::utf8(text);
        EXPECT_EQ(r.bits, kMissing) << zvhost::utf8(text);
    }
}

// ---- readHexBytes, hexToBytes ------------------------------------------------------

TEST(HexBytes, PairsMakeBytes) {
    const struct {
        const char16_t *text;
        int32_t capacity;
        int32_t status;
        std::vector<uint8_t> bytes;
    } cases[] = {
        {u"0A ff 10", 8, 0, {0x0A, 0xFF, 0x10}},
        {u"DeadBeef", 8, 0, {0xDE, 0xAD, 0xBE, 0xEF}},
        {u"a b c", 8, 0, {0xAB}},          // the lone c is no byte
        {u"", 8, 0, {}},
        {u"0102030405", 2, 0, {0x01, 0x02}}, // no byte beyond the target
        {u"01zz", 8, 999, {}},
        {u"0g", 8, 999, {}},
    };
    for (const auto &c : cases) {
        Args a;
        a.capacity = c.capacity;
        const ReaderRun r = runReader(zv::readHexBytes, c.text, a);
        EXPECT_EQ(r.status, c.status) << zvhost::utf8(c.text);
        EXPECT_TRUE(r.guardsIntact) << zvhost::utf8(c.text);
        if (c.status != 0) continue;
        ASSERT_EQ(r.outputLength, int32_t(c.bytes.size())) << zvhost::utf8(c.text);
        EXPECT_EQ(std::vector<uint8_t>(r.bytes.begin(), r.bytes.begin() + r.outputLength), c.bytes);
    }
    // The lone last digit fills the high half of the next byte, left out of the count.
    Args a;
    const ReaderRun odd = runReader(zv::readHexBytes, u"abc", a);
    EXPECT_EQ(odd.outputLength, 1);
    EXPECT_EQ(odd.bytes[1], 0xC0);
}

TEST(HexBytes, WidthAndFieldLimitBoundTheWalk) {
    Args a;
    a.width = 4;
    EXPECT_EQ(runReader(zv::readHexBytes, u"0102zz", a).outputLength, 2);
    a.width = 64;
    a.fieldLimit = 2;
    EXPECT_EQ(runReader(zv::readHexBytes, u"0102zz", a).outputLength, 1);
}

TEST(HexBytes, HexToBytesAgreesWithPrintf) {
    std::mt19937_64 rng(3);
    for (int n = 0; n < 500; ++n) {
        std::vector<uint8_t> source(rng() % 40);
        for (uint8_t &b : source) b = uint8_t(rng());
        std::string hex;
        for (uint8_t b : source) {
            char buf[4];
            std::snprintf(buf, sizeof buf, n % 2 ? "%02x" : "%02X", b);
            hex += buf;
            if (rng() % 4 == 0) hex += ' ';
        }
        const std::u16string text = zvhost::utf16(hex);
        std::vector<uint8_t> out(source.size() + 4, kGuardByte);
        uint8_t *cursor = out.data();
        ASSERT_EQ(zv::hexToBytes(text.data(), int64_t(text.size()), &cursor), 0) << hex;
        ASSERT_EQ(cursor - out.data(), ptrdiff_t(source.size()));
        EXPECT_TRUE(std::equal(source.begin(), source.end(), out.begin()));
        EXPECT_EQ(out[source.size()], kGuardByte);
    }
    uint8_t byte = 0;
    uint8_t *cursor = &byte;
    EXPECT_EQ(zv::hexToBytes(u"1x", 2, &cursor), 999);
}

TEST(HexBytes, ReverseBytes) {
    std::vector<uint8_t> v = {1, 2, 3, 4, 5};
    zv::reverseBytes(v.data(), 5);
    EXPECT_EQ(v, (std::vector<uint8_t>{5, 4, 3, 2, 1}));
    zv::reverseBytes(v.data(), 4);
    EXPECT_EQ(v, (std::vector<uint8_t>{2, 3, 4, 5, 1}));
    zv::reverseBytes(v.data(), 1);
    zv::reverseBytes(v.data(), 0);
    EXPECT_EQ(v, (std::vector<uint8_t>{2, 3, 4, 5, 1}));
    std::mt19937 rng(5);
    for (int n = 0; n < 100; ++n) {
        std::vector<uint8_t> a(rng() % 33);
        for (uint8_t &b : a) b = uint8_t(rng());
        std::vector<uint8_t> b = a;
        zv::reverseBytes(b.data(), int64_t(b.size()));
        EXPECT_TRUE(std::equal(a.rbegin(), a.rend(), b.begin()));
        zv::reverseBytes(b.data(), int64_t(b.size()));
        EXPECT_EQ(a, b);
    }
}

// ---- readBitBytes ---------------------------------------------------------------------

TEST(BitBytes, EightPlacesToAByte) {
    const struct {
        const char16_t *text;
        int32_t status;
        std::vector<uint8_t> bytes;
    } cases[] = {
        {u"0100000101000010", 0, {'A', 'B'}},
        {u"1", 0, {1}},                    // the last place completes the byte
        {u"101", 0, {5}},
        {u"101 ", 0, {}},                  // a blank at the last place doesn't
        {u"0100 0001", 0, {0x20, 0x01}},   // a blank still takes its place
        {u"11111111111", 0, {0xFF, 0x07}},
        {u"        1", 0, {0x01}},
        {u"", 0, {}},
        {u"012", 999, {}},
        {u"0000000x", 999, {}},
    };
    for (const auto &c : cases) {
        const ReaderRun r = runReader(zv::readBitBytes, c.text);
        EXPECT_EQ(r.status, c.status) << zvhost::utf8(c.text);
        EXPECT_TRUE(r.guardsIntact);
        if (c.status != 0) continue;
        ASSERT_EQ(r.outputLength, int32_t(c.bytes.size())) << zvhost::utf8(c.text);
        EXPECT_EQ(std::vector<uint8_t>(r.bytes.begin(), r.bytes.begin() + r.outputLength), c.bytes)
            << zvhost::utf8(c.text);
    }
}

TEST(BitBytes, RandomBytesComeBack) {
    std::mt19937 rng(9);
    for (int n = 0; n < 500; ++n) {
        std::vector<uint8_t> source(1 + rng() % 30);
        std::u16string text;
        for (uint8_t &b : source) {
            b = uint8_t(rng());
            for (int i = 7; i >= 0; --i) text += (b >> i) & 1 ? u'1' : u'0';
        }
        Args a;
        a.width = int32_t(text.size());
        a.capacity = int32_t(source.size());
        const ReaderRun r = runReader(zv::readBitBytes, text, a);
        ASSERT_EQ(r.status, 0);
        ASSERT_EQ(r.outputLength, int32_t(source.size()));
        EXPECT_EQ(r.bytes, source);
        EXPECT_TRUE(r.guardsIntact);
    }
}

// ---- readQuotedText -----------------------------------------------------------------------

TEST(QuotedText, QuotesComeOff) {
    const struct {
        const char16_t *text;
        const char16_t *expected; // padded to 12 units
    } cases[] = {
        {u"\"a\"\"b\"", u"a\"b         "},
        {u"'it''s' tail", u"it's        "},
        {u"  plain", u"plain       "},
        {u"\"open end", u"open end    "},
        {u"'say \"hi\"'", u"say \"hi\"    "},
        {u"\"\"", u"            "},
        {u"     ", u"            "},
        {u"", u"            "},
        {u"abcdefghijklmnop", u"abcdefghijkl"}, // no unit beyond the target
        {u"'a''''b'", u"a''b        "},
    };
    for (const auto &c : cases) {
        Args a;
        a.capacity = 12;
        const ReaderRun r = runReader(zv::readQuotedText, c.text, a);
        EXPECT_EQ(r.status, 0);
        EXPECT_EQ(zvhost::utf8(r.wide), zvhost::utf8(c.expected)) << zvhost::utf8(c.text);
        EXPECT_TRUE(r.guardsIntact);
        EXPECT_TRUE(r.fieldsKept);
    }
    Args a;
    a.capacity = 6;
    a.width = 4;
    EXPECT_EQ(zvhost::utf8(runReader(zv::readQuotedText, u"'abcdef'", a).wide), "abc   ");
}

// ---- readUuid ----------------------------------------------------------------------------

TEST(Uuid, SixteenBytesInOrderOfWriting) {
    const std::vector<uint8_t> expected = {0x12, 0x3e, 0x45, 0x67, 0xe8, 0x9b, 0x12, 0xd3,
                                           0xa4, 0x56, 0x42, 0x66, 0x14, 0x17, 0x40, 0x00};
    for (const char16_t *text : {u"123e4567-e89b-12d3-a456-426614174000", u"123E4567-E89B-12D3-A456-426614174000",
                                 u"  123e4567-e89b-12d3-a456-426614174000  ",
                                 u"{123e4567-e89b-12d3-a456-426614174000}",
                                 u"{ 123e4567-e89b-12d3-a456-426614174000  }",
                                 u"{123e4567-e89b-12d3-a456-426614174000"}) {
        Args a;
        a.width = 200;
        a.capacity = 32;
        const ReaderRun r = runReader(zv::readUuid, text, a);
        ASSERT_EQ(r.status, 0) << zvhost::utf8(text);
        ASSERT_EQ(r.outputLength, 16);
        EXPECT_EQ(std::vector<uint8_t>(r.bytes.begin(), r.bytes.begin() + 16), expected) << zvhost::utf8(text);
        EXPECT_EQ(r.bytes[16], kGuardByte);
        EXPECT_TRUE(r.fieldsKept);
    }
}

TEST(Uuid, MalformedTextsAreRefused) {
    for (const char16_t *text : {u"123e4567-e89b-12d3-a456-42661417400", u"123e4567e89b-12d3-a456-4266141740000",
                                 u"123e4567-e89b-12d3-a456-42661417400g", u"123e4567-e89b-12d3-a456+426614174000",
                                 u"(123e4567-e89b-12d3-a456-426614174000)", u"123e4567-e89b-12d3-a456-426614174000}",
                                 u"{123e4567-e89b-12d3-a456-4266141740}", u""}) {
        Args a;
        a.width = 200;
        const ReaderRun r = runReader(zv::readUuid, text, a);
        EXPECT_EQ(r.status, 999) << zvhost::utf8(text);
        EXPECT_EQ(r.bits, 0x7FF4DEADBEEF0002ull) << zvhost::utf8(text);
    }
}

TEST(Uuid, WidthAndCapacityBoundTheBytes) {
    const std::u16string text = u"00112233-4455-6677-8899-aabbccddeeff";
    struct {
        int32_t width, capacity, count;
    } cases[] = {{200, 32, 16}, {200, 4, 4}, {200, 0, 0}};
    for (const auto &c : cases) {
        Args a;
        a.width = c.width;
        a.capacity = c.capacity;
        const ReaderRun r = runReader(zv::readUuid, text, a);
        EXPECT_EQ(r.status, 0);
        EXPECT_EQ(r.outputLength, c.count);
        for (int i = 0; i < c.count; ++i) EXPECT_EQ(r.bytes[i], uint8_t(i * 0x11));
        EXPECT_TRUE(r.guardsIntact);
    }
    // A width below 36 cuts the text itself.
    Args a;
    a.width = 20;
    EXPECT_EQ(runReader(zv::readUuid, text, a).status, 999);
    const LimitCase limits[] = {{0, 0, 2}, {201, 0, 3}, {200, -1, 4}, {200, 1, 5}};
    for (const LimitCase &l : limits) {
        Args v;
        v.width = l.width;
        v.decimals = l.decimals;
        v.validate = true;
        EXPECT_EQ(runReader(zv::readUuid, text, v).status, l.status);
    }
}

// ---- base 64 --------------------------------------------------------------------------------

// A second encoder: a bit accumulator, six bits at a time.
std::string base64ByBits(const std::vector<uint8_t> &bytes) {
    static const char *alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string out;
    uint32_t acc = 0;
    int bits = 0;
    for (uint8_t b : bytes) {
        acc = (acc << 8) | b;
        bits += 8;
        while (bits >= 6) {
            bits -= 6;
            out += alphabet[(acc >> bits) & 63];
        }
    }
    if (bits > 0) out += alphabet[(acc << (6 - bits)) & 63];
    while (out.size() % 4) out += '=';
    return out;
}

std::vector<uint8_t> bytesOf(const std::string &s) { return std::vector<uint8_t>(s.begin(), s.end()); }

TEST(Base64, Rfc4648Vectors) {
    const std::pair<const char *, const char *> vectors[] = {
        {"", ""},           {"f", "Zg=="},         {"fo", "Zm8="},         {"foo", "Zm9v"},
        {"foob", "Zm9vYg=="}, {"fooba", "Zm9vYmE="}, {"foobar", "Zm9vYmFy"},
    };
    for (const auto &[plain, encoded] : vectors) {
        const std::vector<uint8_t> source = bytesOf(plain);
        std::u16string target(16, u'#');
        ZvChar *p = target.data();
        int64_t produced = -1;
        ASSERT_EQ(zv::encodeBase64Bytes(nullptr, source.data(), int64_t(source.size()), &p, &produced), 0);
        EXPECT_EQ(p, target.data());
        EXPECT_EQ(zvhost::utf8(target.substr(0, size_t(produced))), encoded) << plain;
        EXPECT_EQ(target[size_t(produced)], u'#') << "no zero behind a target of the caller";

        // The same through UTF-16 units whose high bytes don't count.
        std::u16string units;
        for (char c : std::string(plain)) units += char16_t(0x4100 | static_cast<unsigned char>(c));
        std::u16string target2(16, u'#');
        ZvChar *q = target2.data();
        ASSERT_EQ(zv::encodeBase64Units(nullptr, units.data(), int64_t(units.size()), &q, &produced), 0);
        EXPECT_EQ(zvhost::utf8(target2.substr(0, size_t(produced))), encoded) << plain;
    }
}

TEST(Base64, AgreesWithASecondEncoder) {
    zvhost::Host host;
    HostPool *pool = host.formatPool().raw();
    std::mt19937_64 rng(13);
    for (int n = 0; n < 1000; ++n) {
        std::vector<uint8_t> source(rng() % 100);
        for (uint8_t &b : source) b = uint8_t(rng());
        ZvChar *text = nullptr;
        int64_t produced = -1;
        ASSERT_EQ(zv::encodeBase64Bytes(pool, source.data(), int64_t(source.size()), &text, &produced), 0);
        ASSERT_NE(text, nullptr);
        const std::string expected = base64ByBits(source);
        ASSERT_EQ(produced, int64_t(expected.size()));
        EXPECT_EQ(zvhost::utf8(std::u16string(text, size_t(produced))), expected);
        EXPECT_EQ(text[produced], 0) << "a zero behind the text the routine allocated";
        pool->ops->poolFree(pool, text);
    }
    EXPECT_EQ(host.formatPool().stats().liveBlocks, 0);
    EXPECT_EQ(host.formatPool().stats().badFrees, 0);
}

TEST(Base64, AllocationSizeAndFailure) {
    zvhost::Host host;
    HostPool *pool = host.formatPool().raw();
    const std::vector<uint8_t> source = bytesOf("hello");
    ZvChar *text = nullptr;
    int64_t produced = 0;
    const int64_t before = host.formatPool().stats().liveBytes;
    ASSERT_EQ(zv::encodeBase64Units(pool, u"hello", 5, &text, &produced), 0);
    EXPECT_EQ(host.formatPool().stats().liveBytes - before, int64_t((8 + 1) * sizeof(ZvChar)));
    EXPECT_EQ(zvhost::utf8(std::u16string(text, size_t(produced))), "aGVsbG8=");
    pool->ops->poolFree(pool, text);

    host.formatPool().failAt(1);
    text = nullptr;
    produced = -7;
    EXPECT_EQ(zv::encodeBase64Bytes(pool, source.data(), 5, &text, &produced), ZV_NO_MEMORY);
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(produced, -7);
    EXPECT_EQ(zv::encodeBase64Bytes(nullptr, source.data(), 5, &text, &produced), ZV_NO_MEMORY);
}

} // namespace
