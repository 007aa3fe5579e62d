// A host with the module loaded, and calls made by hand for the frame's tests.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "frame/frame.hpp"
#include "zvhost.hpp"

namespace frametest {

inline FormatCall makeCall(zvhost::Host &host, const double *value, void *output, int32_t width,
                           int32_t capacity, const std::string &encoding = "UTF-8") {
    FormatCall c;
    std::memset(&c, 0, sizeof c);
    c.width = width;
    c.input = value;
    c.output = output;
    c.outputCapacity = capacity;
    c.transcoder = host.transcoder(encoding);
    c.services = host.services();
    c.locale = host.locale("en_US");
    return c;
}

// What the test routine writes, set before each call.
struct Script {
    std::u16string text;       // written from index 0, at most outputCapacity units
    int32_t outputLength = -1; // -1: width
    int32_t status = 0;
    LocaleBlock *plantBlock = nullptr; // stored in the call's localeBlock
    FormatCall seen{};                 // the record as the routine saw it
};
inline Script script;

// A format routine: the frame's first steps, then the scripted text.
inline int32_t scriptedFormat(FormatCall *call, void *) {
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

} // namespace frametest
