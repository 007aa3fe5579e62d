// The byte entry: the two justifications after an overflow, the record part,
// the local copy, the pool of a call.
#include "fixture.hpp"

using namespace frametest;

namespace {

constexpr int32_t kTooSmall = ZV_TARGET_TOO_SMALL;
using zv::Justify;

int32_t callByte(Justify mark, FormatCall *c, FormatCall *part = nullptr) {
    return mark == Justify::Left ? zv::byteEntry<scriptedFormat, Justify::Left>(c, part, nullptr)
                                 : zv::byteEntry<scriptedFormat, Justify::Right>(c, part, nullptr);
}

TEST_F(Loaded, ByteEntryFitsTheTextToTheField) {
    struct Case {
        Justify mark;
        const char *encoding;
        std::u16string wide; // what the wide routine writes, width units
        int32_t width, status;
        std::string bytes;   // the target's first outputLength bytes
        int32_t outputLength;
    } const cases[] = {
        {Justify::Right, "UTF-8", u"  42", 4, 0, "  42", 4},
        {Justify::Left, "ISO-8859-1", u"5 M\u00e4rz", 6, 0, "5 M\xe4rz", 6},
        // Blanks fill more than the target takes: the digits survive, right-justified.
        {Justify::Right, "UTF-8", u"  \u20ac123", 6, 0, "\xe2\x82\xac" "123", 6},
        {Justify::Right, "UTF-8", u"   \u20ac12", 6, 0, " \xe2\x82\xac" "12", 6},
        {Justify::Right, "Shift_JIS", u"   \u5186", 4, 0, "  \x89\x7e", 4},
        // Without leading blanks the overflow reaches the host, cut at whole characters.
        {Justify::Right, "UTF-8", u"\u20ac\u20ac\u20ac", 3, kTooSmall, "\xe2\x82\xac", 3},
        {Justify::Right, "UTF-8", u"\u20ac\u20ac", 2, kTooSmall, "", 0},
        // Digits that don't fit even alone: the second status stands, still right-justified.
        {Justify::Right, "UTF-8", u" \u20ac\u20ac", 3, kTooSmall, "\xe2\x82\xac", 3},
        // A date is cut at what fitted, nothing added, status 0.
        {Justify::Left, "UTF-8", u"5 M\u00e4rz 24 ", 10, 0, "5 M\xc3\xa4rz 24", 10},
        {Justify::Left, "UTF-8", u"  \u20ac", 3, 0, "  ", 2}};
    for (const Case &k : cases) {
        script.text = k.wide;
        double v = 1;
        std::vector<unsigned char> target(size_t(k.width) + 8, 0xEE);
        FormatCall c = makeCall(host, &v, target.data(), k.width, k.width, k.encoding);
        const FormatCall before = c;
        const std::string what = zvhost::utf8(k.wide);
        EXPECT_EQ(callByte(k.mark, &c), k.status) << what;
        EXPECT_EQ(c.outputLength, k.outputLength) << what;
        EXPECT_EQ(std::string(target.begin(), target.begin() + std::max(0, c.outputLength)), k.bytes) << what;
        for (size_t i = size_t(k.width); i < target.size(); ++i) { EXPECT_EQ(target[i], 0xEE) << what; }
        c.outputLength = before.outputLength;
        EXPECT_EQ(std::memcmp(&c, &before, sizeof before), 0) << what;
    }
}

TEST_F(Loaded, WidthZeroUnderTheRightMarkReturnsTheOverflow) {
    script.text = u"\u20ac";
    script.outputLength = 1;
    double v = 1;
    std::vector<unsigned char> target(4, 0xEE);
    FormatCall c = makeCall(host, &v, target.data(), 0, 4);
    EXPECT_EQ(callByte(Justify::Right, &c), kTooSmall);
    EXPECT_EQ(c.outputLength, 0);
    EXPECT_EQ(target, std::vector<unsigned char>(4, 0xEE));
}

TEST_F(Loaded, OtherStatusesPassUnchanged) {
    double v = 1;
    std::vector<unsigned char> target(2, 0xEE);
    for (Justify mark : {Justify::Left, Justify::Right}) {
        script.text = u"\u20ac1"; // not in Latin-1: the host's own failure, no substitute
        FormatCall c = makeCall(host, &v, target.data(), 2, 2, "ISO-8859-1");
        EXPECT_EQ(callByte(mark, &c), zvhost::kCannotShow);
        EXPECT_NE(target[0], '?');
        script.text = u"**"; // a routine's own status reaches the host with its text
        script.status = -1;
        c = makeCall(host, &v, target.data(), 2, 2);
        EXPECT_EQ(callByte(mark, &c), -1);
        EXPECT_EQ(std::string(target.begin(), target.end()), "**");
        script.status = 0;
    }
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
    EXPECT_EQ(callByte(Justify::Right, &c, &part), 0);
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
    script.plantBlock = reinterpret_cast<LocaleBlock *>(uintptr_t(0x1000));
    script.text = u"ab";
    double v = 1;
    std::vector<unsigned char> target(2);
    FormatCall c = makeCall(host, &v, target.data(), 2, 2);
    EXPECT_EQ(callByte(Justify::Left, &c), 0);
    EXPECT_EQ(c.localeBlock, nullptr);
}

// Fields up to 256 characters use a buffer on the stack; wider ones one from
// the call's pool: the pool behind the key "ZVRG" and word 9, else formatPool.
TEST_F(Loaded, WideFieldsTakeTheirBufferFromTheCallsPool) {
    uint64_t descriptor[3] = {};
    HostPool *own = host.anchor()->ops->createPool(host.anchor(), descriptor, nullptr, "call pool");
    ASSERT_NE(own, nullptr);
    zvhost::Pool *ownStats = host.createdPools().back();
    struct Case {
        const char16_t *key;
        bool withPool;
        int width;
        int fromOwn, fromFormat;
    } const cases[] = {{u"ZVRG", true, 300, 1, 0}, {u"ZVRX", true, 300, 0, 1}, {u"zvrg", true, 300, 0, 1},
                       {u"ZVRG", false, 300, 0, 1}, {u"ZVRG", true, 256, 0, 0}, {nullptr, false, 257, 0, 1}};
    for (const Case &k : cases) {
        alignas(8) unsigned char record[96] = {};
        if (k.key) std::memcpy(record, k.key, 8);
        HostPool *word9 = k.withPool ? own : nullptr;
        std::memcpy(record + 72, &word9, sizeof word9);
        script.text = std::u16string(size_t(k.width), u'y');
        double v = 1;
        std::vector<unsigned char> target(size_t(k.width));
        FormatCall c = makeCall(host, &v, target.data(), k.width, k.width);
        c.callPool = k.key ? record : nullptr;
        const auto ownBefore = ownStats->stats(), formatBefore = host.formatPool().stats();
        EXPECT_EQ(callByte(Justify::Left, &c), 0);
        EXPECT_EQ(std::string(target.begin(), target.end()), std::string(size_t(k.width), 'y'));
        EXPECT_EQ(ownStats->stats().allocations - ownBefore.allocations, k.fromOwn) << k.width;
        EXPECT_EQ(host.formatPool().stats().allocations - formatBefore.allocations, k.fromFormat) << k.width;
        EXPECT_EQ(ownStats->stats().liveBlocks + host.formatPool().stats().liveBlocks, formatBefore.liveBlocks);
    }
    own->ops->poolDestroy(own);
}

TEST_F(Loaded, AFailedWideBufferIsReportedAsExhaustedMemory) {
    script.text = std::u16string(400, u'z');
    double v = 1;
    std::vector<unsigned char> target(400, 0xEE);
    FormatCall c = makeCall(host, &v, target.data(), 400, 400);
    host.formatPool().failAt(1);
    EXPECT_EQ(callByte(Justify::Right, &c), ZV_NO_MEMORY);
    EXPECT_EQ(target, std::vector<unsigned char>(400, 0xEE));
}

} // namespace
