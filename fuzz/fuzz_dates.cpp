// Drives every date, time and week row with arbitrary values, widths 0 to
// 300, decimals -2 to 40 and capacities, over locales whose date items
// (calendar code, order word, patterns, date separator, AM and PM marks and
// the names) come from the input with <Uxxxx> escapes, through the wide and
// the byte entry. A run fails on any crash, sanitizer report, write past a
// target or changed call field.
#include <cstdlib>
#include <cstring>
#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "fuzz_support.hpp"
#include "zvhost.hpp"

namespace {

struct Input : zvfuzz::Input {
    // Raw item text: bytes of the input, with some bytes standing for a
    // directive or an escape so that short inputs reach the pattern engine.
    std::string text(size_t most) {
        size_t n = take<uint8_t>() % (most + 1);
        std::string out;
        static const char *const kPieces[] = {"%d", "%m", "%Y", "%y", "%B", "%b", "%A", "%a", "%H", "%M",
                                              "%S", "%p", "%z", "%x", "%X", "%#", "%+Y", "%G", "%V", "%U",
                                              "%W", "%j", "%T", "<U00A0>", "<U20AC>", "<UD83D>", "<U00A4>", "%"};
        for (size_t i = 0; i < n && size > 0; ++i) {
            uint8_t b = take<uint8_t>();
            if (b >= 0xE0)
                out += kPieces[b % std::size(kPieces)];
            else
                out += char(b);
        }
        return out.substr(0, 160);
    }
};

using zvfuzz::host;

const char *const kEncodings[] = {"UTF-8", "ISO-8859-1", "Shift_JIS", "US-ASCII", "GB18030", "UTF-16LE"};
const char *const kLocales[] = {"en_US", "ja_JP", "ar_EG", "fr_FR", "th_TH"};
const char *const kPrefixes[] = {"NLDAT", "NLTIM", "WEEK", "DTWEEK", "YYWEEK"};

const std::vector<const FormatTableRow *> &dateRows() {
    static const std::vector<const FormatTableRow *> rows = [] {
        std::vector<const FormatTableRow *> r;
        for (const FormatTableRow *row : zvhost::tableRows(host().instance()->formatTable)) {
            const std::string n = zvhost::rowName(*row);
            for (const char *p : kPrefixes)
                if (n.rfind(p, 0) == 0 && row->wideEntry && row->byteEntry) r.push_back(row);
        }
        return r;
    }();
    return rows;
}

// Items the date rows read: calendar, order word, patterns, the date
// separator, the AM mark and the first name of each list.
const int kItems[] = {5,  6,  28, 29, 30, 31, 32, 33, 34, 35, 36,  37,  38,  39,  40,  41,  42,  43,
                      44, 45, 46, 47, 48, 49, 50, 51, 52, 53, 54,  55,  56,  57,  58,  153, 172, 151,
                      59, 71, 83, 95, 107, 114, 121, 128, 135, 139, 143, 147};

constexpr int kGuard = 16;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Input in{{data, size}};
    const std::vector<const FormatTableRow *> &rows = dateRows();
    if (rows.size() != 57) std::abort();
    const uint8_t mode = in.take<uint8_t>();
    const FormatTableRow *row = rows[in.take<uint8_t>() % rows.size()];
    double value = in.take<double>();
    if (mode & 0x10) value = double(in.take<int32_t>()) * ((mode & 0x20) ? 86400.0 : 1.0) / 8.0;
    const int32_t width = int32_t(in.take<uint16_t>() % 301);
    const int32_t decimals = int32_t(in.take<uint8_t>() % 43) - 2;
    const int32_t capacity = (mode & 0x40) ? int32_t(in.take<uint16_t>() % 320) : width;
    const char *encoding = kEncodings[in.take<uint8_t>() % std::size(kEncodings)];
    const char *localeName = kLocales[in.take<uint8_t>() % std::size(kLocales)];

    std::map<int, std::string> items;
    if (mode & 0x80) {
        const uint8_t count = in.take<uint8_t>() % 6;
        for (uint8_t k = 0; k < count; ++k) {
            const int item = kItems[in.take<uint8_t>() % std::size(kItems)];
            items[item] = in.text(24);
        }
    }
    if (!zvfuzz::admit(localeName, items)) items.clear();
    HostLocale *locale = host().locale(localeName, items);
    if (!locale) return 0;

    const bool wide = mode & 1;
    const size_t unit = wide ? 2 : 1;
    // The byte entry may write up to `width` bytes; room for both.
    const size_t room = size_t(std::max(capacity, width)) * unit + kGuard;
    std::vector<unsigned char> target(room, 0xA5);
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

    if (wide)
        row->wideEntry(&c, nullptr);
    else
        row->byteEntry(&c, nullptr, nullptr);

    for (size_t i = size_t(capacity) * unit; i < target.size(); ++i)
        if (target[i] != 0xA5) std::abort(); // written beyond outputCapacity
    zvfuzz::checkFields(before, c);
    if (c.outputLength > width && width > 0) std::abort(); // longer than the field
    host().formatPool().releaseSince(mark);
    return 0;
}
