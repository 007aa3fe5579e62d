// Drives every format row with arbitrary values, widths, decimals and
// capacities, in any locale, with date items (calendar code, order word,
// patterns, date separator, AM mark and the names) from the input with
// <Uxxxx> escapes, through the wide and the byte entry; and the byte entry
// bridge itself on arbitrary wide text. A run fails on any crash, sanitizer
// report, write past a target, changed call field or text longer than the field.
#include <cstdlib>
#include <cstring>
#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "frame/frame.hpp"
#include "fuzz_support.hpp"
#include "zvhost.hpp"

namespace {

using zvfuzz::host;

const char *const kEncodings[] = {"UTF-8",    "ISO-8859-1", "windows-1252", "US-ASCII",
                                  "Shift_JIS", "GB18030",    "UTF-16LE"};
// Items the date rows read: calendar, order word, patterns, the date
// separator, the AM mark and the first name of each list.
const int kItems[] = {5,  6,  28, 29, 30, 31, 32, 33, 34, 35, 36,  37,  38,  39,  40,  41,  42,  43,
                      44, 45, 46, 47, 48, 49, 50, 51, 52, 53, 54,  55,  56,  57,  58,  153, 172, 151,
                      59, 71, 83, 95, 107, 114, 121, 128, 135, 139, 143, 147};
const char *const kPieces[] = {"%d", "%m", "%Y", "%y", "%B", "%b", "%A", "%a", "%H", "%M",
                               "%S", "%p", "%z", "%x", "%X", "%#", "%+Y", "%G", "%V", "%U",
                               "%W", "%j", "%T", "<U00A0>", "<U20AC>", "<UD83D>", "<U00A4>", "%"};

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

// Raw item text: bytes of the input, some standing for a directive or an
// escape so that short inputs reach the pattern engine.
std::string text(zvfuzz::Input &in) {
    std::string out;
    for (size_t n = in.take<uint8_t>() % 25; out.size() < n && in.size > 0;) {
        const uint8_t b = in.take<uint8_t>();
        out += b >= 0xE0 ? kPieces[b % std::size(kPieces)] : std::string(1, char(b));
    }
    return out;
}

constexpr int kGuard = 16;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    zvfuzz::Input in{data, size};
    static const std::vector<const FormatTableRow *> rows = [] {
        std::vector<const FormatTableRow *> r;
        for (const FormatTableRow *row : zvhost::tableRows(host().instance()->formatTable))
            if (row->wideEntry && row->byteEntry) r.push_back(row);
        return r;
    }();
    const uint8_t mode = in.take<uint8_t>();
    const FormatTableRow *row = rows[in.take<uint16_t>() % rows.size()];
    double value = in.take<double>();
    if (mode & 0x10) value = double(in.take<int32_t>()) * ((mode & 0x20) ? 86400.0 : 1.0) / 8.0;
    const int32_t width = int32_t(in.take<uint16_t>() % 311) - 10;
    const int32_t decimals = int32_t(in.take<uint8_t>() % 43) - 2;
    const int32_t capacity = (mode & 0x40) ? int32_t(in.take<uint16_t>() % 320) : std::max(width, 0);
    const char *encoding = kEncodings[in.take<uint8_t>() % std::size(kEncodings)];
    const std::string &localeName = zvfuzz::allLocales()[in.take<uint16_t>() % zvfuzz::allLocales().size()];
    std::map<int, std::string> items;
    if (mode & 0x80)
        for (uint8_t k = 0, count = in.take<uint8_t>() % 6; k < count; ++k)
            items[kItems[in.take<uint8_t>() % std::size(kItems)]] = text(in);
    const zvhost::LocaleHold hold(host(), localeName, items);
    HostLocale *locale = hold.get();
    if (!locale) return 0;

    const bool wide = mode & 1, bridge = mode & 8;
    const size_t unit = wide && !bridge ? 2 : 1;
    // The byte entry may write up to `width` bytes; room for both.
    std::vector<uint8_t> target(size_t(std::max(capacity, width)) * 2 + kGuard, 0xA5);
    FormatCall c;
    std::memset(&c, 0, sizeof c);
    c.width = width;
    c.decimals = decimals;
    c.input = &value;
    c.output = target.data();
    c.outputCapacity = capacity;
    c.transcoder = host().transcoder(encoding);
    c.services = host().services();
    c.locale = locale;
    c.measureBytes = (mode & 2) ? 1 : 0;
    c.flags = (mode & 4) ? ZV_FLAG_CHECK_LIMITS : 0;
    const FormatCall before = c;
    const int64_t mark = host().formatPool().serial();

    if (bridge) {
        gOutputLength = int32_t(in.take<uint16_t>() % 300);
        gText = in.wide(400);
        if (wide) zv::byteEntry<scripted, zv::Justify::Right>(&c, nullptr, nullptr);
        else zv::byteEntry<scripted, zv::Justify::Left>(&c, nullptr, nullptr);
    } else if (wide) {
        row->wideEntry(&c, nullptr);
    } else {
        row->byteEntry(&c, nullptr, nullptr);
    }

    zvfuzz::checkGuard(target, size_t(capacity) * unit);
    // A number row given a width above 32 answers with 32 stars and says so.
    if (c.width == 32 && before.width > 32) c.width = before.width;
    zvfuzz::checkFields(before, c);
    if (!bridge && c.outputLength > width && width > 0) std::abort(); // longer than the field
    host().formatPool().releaseSince(mark);
    return 0;
}
