// Drives the frame with arbitrary calls: every built row of the table, wide
// and byte entry, with random values, widths, decimals, capacities and host
// encodings; and the bridge itself with arbitrary wide text. A run fails on
// any crash, sanitizer report, write past a target or changed call field.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "frame/frame.hpp"
#include "frame/table.hpp"
#include "fuzz_support.hpp"
#include "zvhost.hpp"

namespace {

using zvfuzz::host;
using zvfuzz::Input;

const char *const kEncodings[] = {"UTF-8", "ISO-8859-1", "windows-1252", "US-ASCII", "Shift_JIS",
                                  "GB18030", "UTF-16LE"};

std::u16string gText;
int32_t gOutputLength;

int32_t scripted(FormatCall *call, void *) {
    double v;
    int32_t status;
    if (!zv::beginFormat(call, -1e12, 1e12, &v, &status, nullptr)) return status;
    auto *out = static_cast<ZvChar *>(call->output);
    for (size_t i = 0; i < gText.size() && int64_t(i) < call->outputCapacity; ++i) out[i] = gText[i];
    call->outputLength = gOutputLength;
    return 0;
}

constexpr int kGuard = 16;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Input in{data, size};
    const uint8_t mode = in.take<uint8_t>();
    const double value = in.take<double>();
    const int32_t width = int32_t(in.take<uint16_t>() % 320) - 10;
    const int32_t decimals = int32_t(in.take<uint8_t>() % 44) - 2;
    const int32_t capacity = int32_t(in.take<uint16_t>() % 330);
    const char *encoding = kEncodings[in.take<uint8_t>() % std::size(kEncodings)];

    std::vector<unsigned char> target(size_t(capacity) * 2 + kGuard, 0xA5);
    FormatCall c;
    std::memset(&c, 0, sizeof c);
    c.width = width;
    c.decimals = decimals;
    c.input = &value;
    c.output = target.data();
    c.outputCapacity = capacity;
    c.transcoder = host().transcoder(encoding);
    c.services = host().services();
    c.locale = host().locale("en_US");
    const FormatCall before = c;
    const int64_t serial = host().formatPool().serial();

    const bool wide = mode & 1;
    if (mode & 2) {
        // The bridge on arbitrary text.
        gOutputLength = int32_t(in.take<uint16_t>() % 300);
        gText.resize(in.size / 2);
        std::memcpy(gText.data(), in.data, gText.size() * sizeof(char16_t));
        if (mode & 4)
            zv::byteEntry<scripted, zv::Justify::Right>(&c, nullptr, nullptr);
        else
            zv::byteEntry<scripted, zv::Justify::Left>(&c, nullptr, nullptr);
    } else {
        // A built row of the table.
        std::vector<const FormatTableRow *> built;
        for (const FormatTableRow *t = zv::formatTable(); t->wideEntry; ++t)
            if (t->sourceKind == ZV_KIND_NUMBER) built.push_back(t);
        if (built.empty()) return 0;
        const FormatTableRow *row = built[in.take<uint8_t>() % built.size()];
        if (wide)
            row->wideEntry(&c, nullptr);
        else
            row->byteEntry(&c, nullptr, nullptr);
    }

    const size_t used = wide && !(mode & 2) ? size_t(capacity) * 2 : size_t(capacity);
    for (size_t i = used; i < target.size(); ++i)
        if (target[i] != 0xA5) std::abort(); // written beyond outputCapacity
    FormatCall after = c;
    after.outputLength = before.outputLength;
    after.localeBlock = before.localeBlock;
    // A number row given a width above 32 answers with 32 stars and says so.
    if (after.width == 32 && before.width > 32) after.width = before.width;
    if (std::memcmp(&after, &before, sizeof before) != 0) {
        for (size_t i = 0; i < sizeof before; ++i)
            if (reinterpret_cast<const uint8_t *>(&after)[i] != reinterpret_cast<const uint8_t *>(&before)[i]) {
                std::fprintf(stderr, "FormatCall byte %zu changed\n", i);
                break;
            }
        std::abort();
    }
    host().formatPool().releaseSince(serial); // locale blocks the calls left behind
    return 0;
}
