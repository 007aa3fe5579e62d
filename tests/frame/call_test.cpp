// What a format routine does first: find the instance by its eight-byte
// name, and place the missing mark by width and decimals.
#include "fixture.hpp"

using namespace frametest;

TEST_F(Loaded, FindsTheInstanceByItsEightByteName) {
    double v = 1;
    FormatCall c = makeCall(host, &v, nullptr, 5, 0);
    EXPECT_EQ(zv::findInstance(&c), instance);
    char otherName[8] = {'z', 'v', 'l', 'o', 'c', 'f', 'm', 'x'};
    ExtensionInstance other{};
    other.extensionName = otherName;
    ExtensionInstance *list[] = {&other, instance, nullptr}, *onlyOther[] = {&other, nullptr}, *empty[] = {nullptr};
    HostServices services = *host.services();
    c.services = &services;
    services.extensionList = list;
    EXPECT_EQ(zv::findInstance(&c), instance);
    services.extensionList = onlyOther;
    EXPECT_EQ(zv::findInstance(&c), nullptr);
    services.extensionList = empty;
    EXPECT_EQ(zv::findInstance(&c), nullptr);
}

TEST_F(Loaded, MissingMarkStandsWhereWidthAndDecimalsPutIt) {
    auto withByte5 = [](uint8_t b) { return zv::doubleOf(0xFFFF000000000000ull | (uint64_t(uint8_t(~b)) << 40)); };
    struct Case {
        double value;
        int32_t width, decimals, capacity;
        std::u16string expected;
    } const cases[] = {
        {withByte5('Q'), 10, 2, 10, u"       Q  "}, {withByte5('Q'), 10, 0, 10, u"         Q"},
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
