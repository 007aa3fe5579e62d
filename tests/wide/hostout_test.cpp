// formatWide: which anchor gets the work, and what it is handed.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>

#include "support.hpp"

namespace {

using widetest::AnchorGuard;
using widetest::CountingHost;

struct CallWithInstance {
    CallWithInstance(HostAnchor *anchor, const char *name) : instance(new ExtensionInstance()) {
        std::memset(instance.get(), 0, sizeof(ExtensionInstance));
        instance->extensionName = name;
        instance->anchor = anchor;
        list[0] = instance.get();
        list[1] = nullptr;
        services.extensionList = list;
        std::memset(&call, 0, sizeof call);
        call.services = &services;
    }
    std::unique_ptr<ExtensionInstance> instance;
    ExtensionInstance *list[2];
    HostServices services{};
    FormatCall call;
};

TEST(FormatWide, WithoutCallUsesTheModulesAnchor) {
    AnchorGuard guard;
    CountingHost host;
    zv::hostAnchor = host.anchor();
    const std::u16string format = u"%i of %i";
    const int64_t values[] = {3, 7};
    ZvChar target[16];
    int64_t produced = -1;
    host.formatStatus = 42;
    EXPECT_EQ(zv::formatWide(nullptr, format.data(), 8, target, 16, &produced, values), 42);
    ASSERT_EQ(host.formats.size(), 1u);
    EXPECT_EQ(host.formats[0].context, nullptr);
    EXPECT_EQ(host.formats[0].format, format);
    EXPECT_EQ(host.formats[0].capacity, 16);
    EXPECT_EQ(host.formats[0].zero, 0);
    EXPECT_EQ(host.formats[0].values, values);
    EXPECT_EQ(produced, 9);
    EXPECT_EQ(std::u16string(target, 9), u"formatted");
}

TEST(FormatWide, CallReachesTheAnchorOfItsInstance) {
    AnchorGuard guard;
    CountingHost moduleHost, instanceHost;
    zv::hostAnchor = moduleHost.anchor();
    CallWithInstance c(instanceHost.anchor(), "zvlocfmt");
    ASSERT_EQ(zv::findInstance(&c.call), c.instance.get())
        << "findInstance does not recognise the eight name bytes \"zvlocfmt\"";
    instanceHost.formatAnswer = u"ok";
    ZvChar target[4] = {u'#', u'#', u'#', u'#'};
    int64_t produced = 0;
    EXPECT_EQ(zv::formatWide(&c.call, u"%s", 2, target, 4, &produced, nullptr), 0);
    EXPECT_EQ(moduleHost.formats.size(), 0u);
    ASSERT_EQ(instanceHost.formats.size(), 1u);
    EXPECT_EQ(instanceHost.formats[0].context, &c.call);
    EXPECT_EQ(produced, 2);
    EXPECT_EQ(std::u16string(target, 4), u"ok##");
}

TEST(FormatWide, CallWithoutItsInstanceFallsBackToTheModulesAnchor) {
    AnchorGuard guard;
    CountingHost moduleHost, otherHost;
    zv::hostAnchor = moduleHost.anchor();
    CallWithInstance c(otherHost.anchor(), "zvother1");
    ZvChar target[16];
    EXPECT_EQ(zv::formatWide(&c.call, u"x", 1, target, 16, nullptr, nullptr), 0);
    EXPECT_EQ(moduleHost.formats.size(), 1u);
    EXPECT_EQ(otherHost.formats.size(), 0u);
    EXPECT_EQ(moduleHost.formats[0].context, &c.call);
}

TEST(FormatWide, NoAnchorAtAllWritesNothing) {
    AnchorGuard guard;
    zv::hostAnchor = nullptr;
    ZvChar target[3] = {u'#', u'#', u'#'};
    int64_t produced = -5;
    EXPECT_EQ(zv::formatWide(nullptr, u"abc", 3, target, 3, &produced, nullptr),
              static_cast<int32_t>(0x803fc0c9u));
    EXPECT_EQ(std::u16string(target, 3), u"###");
    EXPECT_EQ(produced, -5);
    // An instance found without an anchor is no better.
    CallWithInstance c(nullptr, "zvlocfmt");
    EXPECT_NE(zv::formatWide(&c.call, u"abc", 3, target, 3, &produced, nullptr), 0);
    EXPECT_EQ(std::u16string(target, 3), u"###");
}

} // namespace
