// The byte entry: the wide text carried into the host encoding, the two
// justifications after an overflow, the pool of a call, the local copy.
#include "fixture.hpp"

using namespace frametest;

namespace {

constexpr int32_t kTooSmall = ZV_TARGET_TOO_SMALL;

template <zv::Justify Mark>
int32_t callByte(FormatCall *c, FormatCall *part = nullptr) {
    return zv::byteEntry<scriptedFormat, Mark>(c, part, nullptr);
}

struct ByteCase {
    const char *what;
    zv::Justify mark;
    const char *encoding;
    std::u16string wide;   // what the wide routine writes, width units
    int32_t width;
    int32_t status;
    std::string bytes;     // the target's first outputLength bytes
    int32_t outputLength;
};

class ByteEntry : public Loaded, public ::testing::WithParamInterface<ByteCase> {};

TEST_P(ByteEntry, FitsTheTextToTheField) {
    const ByteCase &k = GetParam();
    script.text = k.wide;
    double v = 1;
    std::vector<unsigned char> target(k.width + 8, 0xEE);
    FormatCall c = makeCall(host, &v, target.data(), k.width, k.width, k.encoding);
    const FormatCall before = c;
    int32_t status = k.mark == zv::Justify::Left ? callByte<zv::Justify::Left>(&c)
                                                 : callByte<zv::Justify::Right>(&c);
    EXPECT_EQ(status, k.status) << k.what;
    EXPECT_EQ(c.outputLength, k.outputLength) << k.what;
    EXPECT_EQ(std::string(target.begin(), target.begin() + std::max(0, c.outputLength)), k.bytes) << k.what;
    for (size_t i = k.width; i < target.size(); ++i) EXPECT_EQ(target[i], 0xEE) << k.what << " byte " << i;
    // Only outputLength of the host's record changes.
    FormatCall after = c;
    after.outputLength = before.outputLength;
    EXPECT_EQ(std::memcmp(&after, &before, sizeof before), 0) << k.what;
}

INSTANTIATE_TEST_SUITE_P(
    Frame, ByteEntry,
    ::testing::Values(
        ByteCase{"plain fit", zv::Justify::Right, "UTF-8", u"  42", 4, 0, "  42", 4},
        ByteCase{"ascii in windows-1252", zv::Justify::Left, "windows-1252", u"5 mars", 6, 0, "5 mars", 6},
        ByteCase{"one byte a character fits", zv::Justify::Left, "ISO-8859-1", u"5 M\u00e4rz", 6, 0,
                 "5 M\xe4rz", 6},
        // Blanks fill more than the target takes: the digits survive, right-justified.
        ByteCase{"euro digits survive", zv::Justify::Right, "UTF-8", u"  \u20ac123", 6, 0,
                 "\xe2\x82\xac" "123", 6},
        ByteCase{"one blank stays in front", zv::Justify::Right, "UTF-8", u"   \u20ac12", 6, 0,
                 " \xe2\x82\xac" "12", 6},
        ByteCase{"two-byte characters", zv::Justify::Right, "UTF-8", u"    \u00e9\u00e9", 6, 0,
                 "  \xc3\xa9\xc3\xa9", 6},
        ByteCase{"Shift_JIS", zv::Justify::Right, "Shift_JIS", u"   \u5186", 4, 0, "  \x89\x7e", 4},
        // Without leading blanks the overflow reaches the host, cut at whole characters.
        ByteCase{"no blanks to give", zv::Justify::Right, "UTF-8", u"\u20ac\u20ac\u20ac", 3, kTooSmall,
                 "\xe2\x82\xac", 3},
        ByteCase{"cut inside a character", zv::Justify::Right, "UTF-8", u"\u20ac\u20ac", 2, kTooSmall, "", 0},
        // Digits that don't fit even alone: the second status stands, still right-justified.
        ByteCase{"digits still too wide", zv::Justify::Right, "UTF-8", u" \u20ac\u20ac", 3, kTooSmall,
                 "\xe2\x82\xac", 3},
        // A date is cut at what fitted, nothing added, status 0.
        ByteCase{"date cut", zv::Justify::Left, "UTF-8", u"5 M\u00e4rz 24 ", 10, 0, "5 M\xc3\xa4rz 24", 10},
        ByteCase{"date cut in a character", zv::Justify::Left, "UTF-8", u"\u00e9t\u00e9", 2, 0, "\xc3\xa9", 2},
        ByteCase{"date cut after blanks", zv::Justify::Left, "UTF-8", u"  \u20ac", 3, 0, "  ", 2}),
    [](const auto &info) {
        std::string n = info.param.what;
        for (char &ch : n)
            if (!isalnum(static_cast<unsigned char>(ch))) ch = '_';
        return n;
    });

TEST_F(Loaded, WidthZeroUnderTheRightMarkReturnsTheOverflow) {
    script.text = u"\u20ac";
    script.outputLength = 1; // the routine writes one unit into a field of none
    double v = 1;
    std::vector<unsigned char> target(4, 0xEE);
    FormatCall c = makeCall(host, &v, target.data(), 0, 4);
    EXPECT_EQ(callByte<zv::Justify::Right>(&c), kTooSmall);
    EXPECT_EQ(c.outputLength, 0);
    EXPECT_EQ(target, std::vector<unsigned char>(4, 0xEE));
}

TEST_F(Loaded, TheTargetNeverTakesMoreThanItsCapacity) {
    script.text = u"   1234567";
    double v = 1;
    std::vector<unsigned char> target(12, 0xEE);
    FormatCall c = makeCall(host, &v, target.data(), 10, 6);
    // The digits alone still overflow the six bytes: the overflow stands.
    EXPECT_EQ(callByte<zv::Justify::Right>(&c), kTooSmall);
    EXPECT_EQ(c.outputLength, 6);
    EXPECT_EQ(std::string(target.begin(), target.begin() + 6), "123456");
    EXPECT_EQ(target[6], 0xEE);
}

TEST_F(Loaded, MissingAndStarsThroughTheByteEntry) {
    double v = missing('Q');
    std::vector<unsigned char> target(10, 0xEE);
    FormatCall c = makeCall(host, &v, target.data(), 10, 10, "GB18030");
    c.decimals = 2;
    EXPECT_EQ(callByte<zv::Justify::Right>(&c), 0);
    EXPECT_EQ(std::string(target.begin(), target.end()), "         Q");
    EXPECT_EQ(c.decimals, 2);

    double far = 1e10;
    c = makeCall(host, &far, target.data(), 7, 10, "US-ASCII");
    EXPECT_EQ(callByte<zv::Justify::Left>(&c), 0);
    EXPECT_EQ(c.outputLength, 7);
    EXPECT_EQ(std::string(target.begin(), target.begin() + 7), "*******");
}

TEST_F(Loaded, UnshowableCharacterIsAFailureNotASubstitute) {
    script.text = u"\u20ac1";
    double v = 1;
    std::vector<unsigned char> target(2, 0xEE);
    FormatCall c = makeCall(host, &v, target.data(), 2, 2, "ISO-8859-1");
    int32_t status = callByte<zv::Justify::Left>(&c);
    EXPECT_NE(status, 0);
    EXPECT_NE(status, kTooSmall);
    EXPECT_NE(target[0], '?');
}

TEST_F(Loaded, CallPartOverridesTheCallAndReceivesTheResult) {
    script.text = u"  77";
    double v = 1, other = 2;
    std::vector<unsigned char> mainTarget(8, 0xEE), partTarget(8, 0xEE);
    FormatCall c = makeCall(host, &v, mainTarget.data(), 8, 8);
    FormatCall part = makeCall(host, &other, partTarget.data(), 4, 4);
    part.services = nullptr; // only bytes 0 to 71 of the part count
    part.decimals = 3;
    c.outputLength = 55;
    EXPECT_EQ(callByte<zv::Justify::Right>(&c, &part), 0);
    EXPECT_EQ(script.seen.width, 4);
    EXPECT_EQ(script.seen.decimals, 3);
    EXPECT_EQ(script.seen.input, &other);
    EXPECT_EQ(script.seen.services, host.services());
    EXPECT_EQ(part.outputLength, 4);
    EXPECT_EQ(std::string(partTarget.begin(), partTarget.begin() + 4), "  77");
    EXPECT_EQ(c.outputLength, 55);
    EXPECT_EQ(mainTarget, std::vector<unsigned char>(8, 0xEE));
}

TEST_F(Loaded, ALocaleBlockMadeInsideStaysInTheCopy) {
    LocaleBlock *planted = reinterpret_cast<LocaleBlock *>(uintptr_t(0x1000));
    script.plantBlock = planted;
    script.text = u"ab";
    double v = 1;
    std::vector<unsigned char> target(2);
    FormatCall c = makeCall(host, &v, target.data(), 2, 2);
    EXPECT_EQ(callByte<zv::Justify::Left>(&c), 0);
    EXPECT_EQ(c.localeBlock, nullptr);
}

TEST_F(Loaded, NarrowFieldsTakeNothingFromAnyPool) {
    script.text = std::u16string(256, u'x');
    double v = 1;
    std::vector<unsigned char> target(256);
    FormatCall c = makeCall(host, &v, target.data(), 256, 256);
    const auto before = host.formatPool().stats();
    EXPECT_EQ(callByte<zv::Justify::Left>(&c), 0);
    EXPECT_EQ(host.formatPool().stats().allocations, before.allocations);
    EXPECT_EQ(std::string(target.begin(), target.end()), std::string(256, 'x'));
}

// The pool of a call: the key "ZVRG" and a pool in word 9, else formatPool.
struct PoolCase {
    const char16_t *key;
    bool withPool;
    bool callPoolServes;
};

class CallPool : public Loaded, public ::testing::WithParamInterface<PoolCase> {};

TEST_P(CallPool, ServesWideFieldsOnlyWithItsKeyAndPool) {
    const PoolCase &k = GetParam();
    uint64_t descriptor[3] = {};
    HostPool *own = host.anchor()->ops->createPool(host.anchor(), descriptor, nullptr, "call pool");
    ASSERT_NE(own, nullptr);
    zvhost::Pool *ownStats = host.createdPools().back();

    alignas(8) unsigned char record[96] = {};
    std::memcpy(record, k.key, 8);
    HostPool *word9 = k.withPool ? own : nullptr;
    std::memcpy(record + 72, &word9, sizeof word9);

    script.text = std::u16string(300, u'y');
    double v = 1;
    std::vector<unsigned char> target(300);
    FormatCall c = makeCall(host, &v, target.data(), 300, 300);
    c.callPool = record;
    EXPECT_EQ(zv::callPoolOf(&c), k.callPoolServes ? own : host.formatPool().raw());

    const auto formatBefore = host.formatPool().stats();
    EXPECT_EQ(callByte<zv::Justify::Left>(&c), 0);
    EXPECT_EQ(std::string(target.begin(), target.end()), std::string(300, 'y'));
    const auto formatAfter = host.formatPool().stats();
    const auto ownAfter = ownStats->stats();
    if (k.callPoolServes) {
        EXPECT_EQ(ownAfter.allocations, 1);
        EXPECT_EQ(formatAfter.allocations, formatBefore.allocations);
    } else {
        EXPECT_EQ(ownAfter.allocations, 0);
        EXPECT_EQ(formatAfter.allocations, formatBefore.allocations + 1);
    }
    EXPECT_EQ(ownAfter.liveBlocks, 0);
    EXPECT_EQ(formatAfter.liveBlocks, formatBefore.liveBlocks);
    own->ops->poolDestroy(own);
}

INSTANTIATE_TEST_SUITE_P(Frame, CallPool,
                         ::testing::Values(PoolCase{u"ZVRG", true, true}, PoolCase{u"ZVRX", true, false},
                                           PoolCase{u"zvrg", true, false}, PoolCase{u"ZVRG", false, false}));

TEST_F(Loaded, NoCallPoolMeansFormatPool) {
    double v = 1;
    FormatCall c = makeCall(host, &v, nullptr, 1, 0);
    EXPECT_EQ(zv::callPoolOf(&c), host.formatPool().raw());
}

TEST_F(Loaded, AFailedWideBufferIsReportedAsExhaustedMemory) {
    script.text = std::u16string(400, u'z');
    double v = 1;
    std::vector<unsigned char> target(400, 0xEE);
    FormatCall c = makeCall(host, &v, target.data(), 400, 400);
    host.formatPool().failAt(1);
    EXPECT_EQ(callByte<zv::Justify::Right>(&c), ZV_NO_MEMORY);
    EXPECT_EQ(target, std::vector<unsigned char>(400, 0xEE));
}

} // namespace

namespace {

// A routine that writes stars and answers -1, as a short week form does at
// a width it has no text for.
int32_t starsAndMinusOne(FormatCall *call, void *) {
    zv::starFill(call);
    return -1;
}

TEST_F(Loaded, StarsWithMinusOneStillReachTheTarget) {
    double v = 1;
    std::vector<unsigned char> target(6, 0xEE);
    FormatCall c = makeCall(host, &v, target.data(), 6, 6);
    EXPECT_EQ((zv::byteEntry<starsAndMinusOne, zv::Justify::Left>(&c, nullptr, nullptr)), -1);
    EXPECT_EQ(c.outputLength, 6);
    EXPECT_EQ(std::string(target.begin(), target.end()), "******");
}

} // namespace
