// The frame's own steps on hand-made calls: finding the instance, the missing
// mark, and the byte entry with its justifications, record part, local copy
// and the pool of a call.

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "frame/frame.hpp"
#include "zvhost.hpp"

namespace {

FormatCall makeCall(zvhost::Host &host, const double *value, void *output, int32_t width,
                           int32_t capacity, const std::string &encoding = "UTF-8") {
    FormatCall c;
    std::memset(&c, 0, sizeof c);
    c.width = width, c.input = value, c.output = output, c.outputCapacity = capacity;
    c.transcoder = host.transcoder(encoding), c.services = host.services(), c.locale = host.locale("en_US");
    return c;
}

struct Script { // what the test routine writes (from index 0), its outputLength (-1: width) and status
    std::u16string text;
    int32_t outputLength = -1, status = 0;
    LocaleBlock *plantBlock = nullptr; // stored in the call's localeBlock
    FormatCall seen{};                 // the record as the routine saw it
};
Script script;

// A format routine: the frame's first steps, then the scripted text.
int32_t scriptedFormat(FormatCall *call, void *) {
    std::memcpy(&script.seen, call, sizeof(FormatCall));
    double v = 0;
    int32_t status = 0;
    if (!zv::beginFormat(call, -1e9, 1e9, &v, &status, nullptr)) return status;
    auto *out = static_cast<ZvChar *>(call->output);
    for (size_t i = 0; i < script.text.size() && int64_t(i) < call->outputCapacity; ++i) out[i] = script.text[i];
    call->outputLength = script.outputLength >= 0 ? script.outputLength : call->width;
    if (script.plantBlock) call->localeBlock = script.plantBlock;
    return script.status;
}

class Loaded : public ::testing::Test {
protected:
    void SetUp() override {
        script = Script{};
        instance = host.loadModule();
        ASSERT_NE(instance, nullptr);
    }
    zvhost::Host host;
    ExtensionInstance *instance = nullptr;
};


TEST_F(Loaded, FindsTheInstanceByItsEightByteName) {
    double v = 1;
    FormatCall c = makeCall(host, &v, nullptr, 5, 0);
    EXPECT_EQ(zv::findInstance(&c), instance);
    char otherName[8] = {'z', 'v', 'l', 'o', 'c', 'f', 'm', 'x'};
    ExtensionInstance other{};
    other.extensionName = otherName;
    ExtensionInstance *list[] = {&other, instance, nullptr}, *onlyOther[] = {&other, nullptr};
    HostServices services = *host.services();
    c.services = &services;
    services.extensionList = list;
    EXPECT_EQ(zv::findInstance(&c), instance);
    services.extensionList = onlyOther;
    EXPECT_EQ(zv::findInstance(&c), nullptr);
}

TEST_F(Loaded, MissingMarkStandsWhereWidthAndDecimalsPutIt) {
    auto withByte5 = [](uint8_t b) { return zv::doubleOf(0xFFFF000000000000ull | (uint64_t(uint8_t(~b)) << 40)); };
    struct Case {
        double value;
        int32_t width, decimals, capacity;
        std::u16string expected;
    } const cases[] = {{withByte5('Q'), 10, 2, 10, u"       Q  "}, {withByte5('Q'), 10, 0, 10, u"         Q"},
        {zvhost::missingValue('.'), 6, 0, 6, u"     ."}, {withByte5('-'), 4, 0, 4, u"   _"},
        {withByte5('A'), 5, 98, 5, u"    A"}, {withByte5('Z'), 5, 99, 5, u"    Z"},
        {withByte5('q'), 2, 0, 2, u" ."}, {withByte5(0x20), 2, 0, 2, u" ."}, {withByte5('@'), 2, 0, 2, u" ."},
        {withByte5('['), 2, 0, 2, u" ."}, {3.5, 5, 0, 5, u"     "},
        // The field is blanked to the capacity; the mark only where it fits.
        {withByte5('B'), 4, 0, 8, u"   B    "}, {withByte5('B'), 9, 0, 4, u"    "}, {withByte5('C'), 3, 5, 3, u"   "}};
    for (const Case &k : cases) {
        std::vector<ZvChar> out(size_t(k.capacity) + 4, u'#');
        FormatCall c = makeCall(host, &k.value, out.data(), k.width, k.capacity);
        c.decimals = k.decimals;
        EXPECT_EQ(zv::writeMissingMark(&c), 0);
        EXPECT_EQ(c.outputLength, k.width);
        EXPECT_EQ(std::u16string(out.data(), out.size()), k.expected + u"####") << zvhost::utf8(k.expected);
    }
}

constexpr int32_t kTooSmall = ZV_TARGET_TOO_SMALL;
using zv::Justify;

int32_t callByte(Justify mark, FormatCall *c, FormatCall *part = nullptr) {
    return mark == Justify::Left ? zv::byteEntry<scriptedFormat, Justify::Left>(c, part, nullptr)
                                 : zv::byteEntry<scriptedFormat, Justify::Right>(c, part, nullptr);
}

// How the byte entry fits a wide text to the field is checked over every row
// by the all-rows sweep; here, what no row can make it do.
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

// (A failure of the host's transcoding is the call's: the fault sweep.)
TEST_F(Loaded, ARoutinesOwnStatusReachesTheHostWithItsText) {
    script.text = u"**", script.status = -1;
    double v = 1;
    for (Justify mark : {Justify::Left, Justify::Right}) {
        std::vector<unsigned char> target(2, 0xEE);
        FormatCall c = makeCall(host, &v, target.data(), 2, 2);
        EXPECT_EQ(callByte(mark, &c), -1);
        EXPECT_EQ(std::string(target.begin(), target.end()), "**");
    }
}

// A block built inside stays in the local copy.
TEST_F(Loaded, CallPartOverridesTheCallAndReceivesTheResult) {
    script.text = u"  77";
    script.plantBlock = reinterpret_cast<LocaleBlock *>(uintptr_t(0x1000));
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
    EXPECT_EQ(c.localeBlock, nullptr);
    EXPECT_EQ(part.localeBlock, nullptr);
    EXPECT_EQ(mainTarget, std::vector<unsigned char>(8, 0xEE));
}

// Fields up to 256 characters use a buffer on the stack; wider ones one from
// the call's pool: the pool behind the key "ZVRG" and word 9, else formatPool.
// A buffer that can't be had is exhausted memory, and nothing is written.
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
        bool fail = false;
    } const cases[] = {{u"ZVRG", true, 300, 1, 0}, {u"ZVRX", true, 300, 0, 1}, {u"zvrg", true, 300, 0, 1},
                       {u"ZVRG", false, 300, 0, 1}, {u"ZVRG", true, 256, 0, 0}, {nullptr, false, 257, 0, 1},
                       {nullptr, false, 400, 0, 0, true}};
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
        host.formatPool().failAt(k.fail);
        EXPECT_EQ(callByte(Justify::Left, &c), k.fail ? ZV_NO_MEMORY : 0);
        EXPECT_EQ(std::string(target.begin(), target.end()), std::string(size_t(k.width), k.fail ? '\0' : 'y'));
        EXPECT_EQ(ownStats->stats().allocations - ownBefore.allocations, k.fromOwn) << k.width;
        EXPECT_EQ(host.formatPool().stats().allocations - formatBefore.allocations, k.fromFormat) << k.width;
        EXPECT_EQ(ownStats->stats().liveBlocks + host.formatPool().stats().liveBlocks, formatBefore.liveBlocks);
    }
    own->ops->poolDestroy(own);
}

} // namespace
