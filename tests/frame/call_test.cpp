// The first steps every format shares: the instance, the missing mark, stars.
#include "fixture.hpp"

using namespace frametest;

namespace {

std::u16string text(const std::vector<ZvChar> &v, size_t n) { return std::u16string(v.data(), n); }

} // namespace

TEST_F(Loaded, FindsTheInstanceByItsEightByteName) {
    double v = 1;
    FormatCall c = makeCall(host, &v, nullptr, 5, 0);
    EXPECT_EQ(zv::findInstance(&c), instance);

    // Another extension in front of ours is passed over.
    char otherName[8] = {'z', 'v', 'l', 'o', 'c', 'f', 'm', 'x'};
    ExtensionInstance other{};
    other.extensionName = otherName;
    ExtensionInstance *list[] = {&other, instance, nullptr};
    HostServices services = *host.services();
    services.extensionList = list;
    c.services = &services;
    EXPECT_EQ(zv::findInstance(&c), instance);

    ExtensionInstance *onlyOther[] = {&other, nullptr};
    services.extensionList = onlyOther;
    EXPECT_EQ(zv::findInstance(&c), nullptr);

    ExtensionInstance *empty[] = {nullptr};
    services.extensionList = empty;
    EXPECT_EQ(zv::findInstance(&c), nullptr);
}

TEST_F(Loaded, WithoutTheInstanceAFormatAnswersMinusOneAndWritesNothing) {
    double v = 12;
    std::vector<ZvChar> out(16, u'#');
    FormatCall c = makeCall(host, &v, out.data(), 8, 16);
    c.outputLength = 1234;
    ExtensionInstance *empty[] = {nullptr};
    HostServices services = *host.services();
    services.extensionList = empty;
    c.services = &services;
    EXPECT_EQ(scriptedFormat(&c, nullptr), -1);
    EXPECT_EQ(c.outputLength, 1234);
    EXPECT_EQ(text(out, 16), std::u16string(16, u'#'));

    // The byte entry passes -1 on and leaves the target alone too.
    std::vector<unsigned char> bytes(16, 0xEE);
    FormatCall b = makeCall(host, &v, bytes.data(), 8, 16);
    b.services = &services;
    b.outputLength = 77;
    EXPECT_EQ((zv::byteEntry<scriptedFormat, zv::Justify::Right>(&b, nullptr, nullptr)), -1);
    EXPECT_EQ(b.outputLength, 77);
    EXPECT_EQ(std::vector<unsigned char>(16, 0xEE), bytes);
}

struct MarkCase {
    char letter;          // the missing value's letter ('.' plain, 0 for a value not missing)
    int32_t width, decimals, capacity;
    std::u16string expected;
};

class MissingMark : public Loaded, public ::testing::WithParamInterface<MarkCase> {};

TEST_P(MissingMark, StandsWhereWidthAndDecimalsPutIt) {
    const MarkCase &m = GetParam();
    double v = m.letter ? missing(m.letter) : 3.5;
    std::vector<ZvChar> out(m.capacity + 4, u'#');
    FormatCall c = makeCall(host, &v, out.data(), m.width, m.capacity);
    c.decimals = m.decimals;
    EXPECT_EQ(zv::writeMissingMark(&c), 0);
    EXPECT_EQ(c.outputLength, m.width);
    EXPECT_EQ(text(out, m.capacity), m.expected);
    EXPECT_EQ(text(out, m.capacity + 4).substr(m.capacity), u"####");
}

INSTANTIATE_TEST_SUITE_P(
    Frame, MissingMark,
    ::testing::Values(MarkCase{'Q', 10, 2, 10, u"       Q  "}, MarkCase{'Q', 10, 0, 10, u"         Q"},
                      MarkCase{'.', 6, 0, 6, u"     ."}, MarkCase{'_', 4, 0, 4, u"   _"},
                      MarkCase{'A', 5, 98, 5, u"    A"}, MarkCase{'Z', 5, 99, 5, u"    Z"},
                      MarkCase{0, 5, 0, 5, u"     "},
                      // The field is blanked to the capacity; the mark only where it fits.
                      MarkCase{'B', 4, 0, 8, u"   B    "}, MarkCase{'B', 9, 0, 4, u"    "},
                      MarkCase{'C', 3, 5, 3, u"   "}));

TEST_F(Loaded, AnyOtherByteFiveShowsAsAPeriod) {
    for (uint64_t b5 : {0x00ull, 0x20ull, 0x9Full, 0x3Eull /* ~'a'... not a capital */}) {
        double v = zv::doubleOf(0xFFFF000000000000ull | ((~b5 & 0xFF) << 40));
        std::vector<ZvChar> out(3, u'#');
        FormatCall c = makeCall(host, &v, out.data(), 3, 3);
        zv::writeMissingMark(&c);
        EXPECT_EQ(out[2], u'.') << std::hex << b5;
    }
    // Lower-case letters are not marks either.
    double lower = zv::doubleOf(0xFFFF000000000000ull | (uint64_t(uint8_t(~'q')) << 40));
    std::vector<ZvChar> out(2, u'#');
    FormatCall c = makeCall(host, &lower, out.data(), 2, 2);
    zv::writeMissingMark(&c);
    EXPECT_EQ(out[1], u'.');
}

TEST_F(Loaded, AFormatShowsAMissingValueWithDecimalsHeldAtZero) {
    double v = missing('Q');
    std::vector<ZvChar> out(10, u'#');
    FormatCall c = makeCall(host, &v, out.data(), 10, 10);
    c.decimals = 2;
    EXPECT_EQ(scriptedFormat(&c, nullptr), 0);
    EXPECT_EQ(text(out, 10), u"         Q");
    EXPECT_EQ(c.decimals, 2);
    EXPECT_EQ(c.outputLength, 10);
}

TEST_F(Loaded, ValuesOutOfRangeGiveStars) {
    for (double v : {1e9, 5e12, -1e9 - 1, std::numeric_limits<double>::infinity(),
                     std::numeric_limits<double>::quiet_NaN()}) {
        std::vector<ZvChar> out(8, u'#');
        FormatCall c = makeCall(host, &v, out.data(), 6, 8);
        EXPECT_EQ(scriptedFormat(&c, nullptr), 0);
        EXPECT_EQ(text(out, 8), u"******##") << v;
        EXPECT_EQ(c.outputLength, 6);
    }
}

TEST_F(Loaded, StarsNeverPassTheCapacity) {
    double v = 0;
    std::vector<ZvChar> out(6, u'#');
    FormatCall c = makeCall(host, &v, out.data(), 200, 4);
    EXPECT_EQ(zv::starFill(&c), 0);
    EXPECT_EQ(c.outputLength, 200);
    EXPECT_EQ(text(out, 6), u"****##");
}
