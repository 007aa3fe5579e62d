// Drives every informat row and the readers without a row (pattern rows,
// locale forms, the ANY-date guesses, binary, hex, size, quoted text, UUID)
// with arbitrary texts, widths, decimals, field limits and capacities, in
// any CLDR locale with items from the input. A run fails on any crash,
// sanitizer report, write past a target, changed call field, an answer
// that text past the field limit changes, or a locale form read through a
// kept cut that differs from one read afresh.
#include "dateread/dateread.hpp"
#include "dateread/shape_cache.hpp"
#include "frame/frame.hpp"
#include "fuzz_support.hpp"
#include "locale/block.hpp"
#include "wide/binary.hpp"

namespace {

using zvfuzz::host;
using Reader = int32_t (*)(FormatCall *, void *);

const std::vector<std::u16string> kPieces = {u"JAN", u"2021", u"W01", u"12:30:59", u"PM", u"1,234.5", u"%d",
                                             u"%B", u"%Y", u"%H:%M", u"-", u"$", u"'", u"0x", u"E-3", u" "};
// Readers beside the rows, with the bytes of one unit of their target (0: a double).
const std::pair<Reader, int> kMore[] = {{zv::readAnyDate, 0},      {zv::readAnyTime, 0},   {zv::readAnyDateTime, 0},
                                        {zv::readBinaryNumber, 0}, {zv::readHexNumber, 0}, {zv::readSizeNumber, 0},
                                        {zv::readHexBytes, 1},     {zv::readBitBytes, 1},  {zv::readQuotedText, 2},
                                        {zv::readUuid, 1}};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    zvfuzz::Input in{data, size};
    static const auto rows = [] {
        std::vector<const FormatTableRow *> r;
        for (const FormatTableRow *row : zvhost::tableRows(host().instance()->formatTable))
            if (zvhost::isInformat(*row)) r.push_back(row);
        return r;
    }();
    const uint8_t mode = in.take<uint8_t>();
    const size_t pick = in.take<uint16_t>() % (rows.size() + std::size(kMore) + 5);
    const std::string &localeName = zvfuzz::allLocales()[in.take<uint16_t>() % zvfuzz::allLocales().size()];
    std::map<int, std::string> items;
    for (int k = in.take<uint8_t>() % 4; k > 0; --k) items[in.take<uint8_t>() % 189] = zvhost::utf8(in.wide(30, kPieces));
    const zvhost::LocaleHold hold(host(), localeName, items);
    HostLocale *locale = hold.get();
    if (!locale) return 0;
    const std::u16string pattern = in.wide(40, kPieces), text = in.wide(300, kPieces);

    FormatCall c{};
    c.width = int32_t(in.take<uint16_t>() % 320) - 8;
    c.decimals = int32_t(in.take<uint8_t>() % 40) - 4;
    c.fieldLimit = (mode & 1) ? int32_t(in.take<uint16_t>() % 320) - 8 : int32_t(text.size());
    c.outputCapacity = int32_t(in.take<uint16_t>() % 300);
    c.flags = (mode & 2) ? ZV_FLAG_CHECK_LIMITS : 0;
    c.input = text.data();
    c.inputLength = int32_t(text.size());
    c.locale = locale;
    c.transcoder = host().transcoder((mode & 4) ? "ISO-8859-1" : "UTF-8");
    c.services = host().services();
    const int unit = pick < rows.size() ? 0 : pick < rows.size() + std::size(kMore) ? kMore[pick - rows.size()].second : 0;
    const size_t bound = unit ? size_t(c.outputCapacity) * size_t(unit) : 8;
    std::vector<uint8_t> target(std::max<size_t>(bound, 8) + 16, 0xA5);
    c.output = target.data();
    const FormatCall before = c;
    const int64_t mark = host().formatPool().serial();
    double value = 0, time = 0;
    int32_t kind = 0;
    const int64_t n = int64_t(text.size()), pn = int64_t(pattern.size());
    const ZvChar *t = text.data(), *p = pattern.data();
    const size_t other = pick - rows.size() - std::size(kMore);
    if (pick < rows.size()) {
        const int32_t status = rows[pick]->wideEntry(&c, nullptr);
        if (c.fieldLimit >= 0 && c.fieldLimit < n) { // nothing past the field limit counts
            const std::u16string cut = text.substr(0, size_t(c.fieldLimit));
            std::vector<uint8_t> again(target.size(), 0xA5);
            FormatCall d = before;
            d.input = cut.data(), d.inputLength = c.fieldLimit, d.output = again.data();
            if (rows[pick]->wideEntry(&d, nullptr) != status || again != target) std::abort();
        }
    }
    else if (pick < rows.size() + std::size(kMore)) kMore[pick - rows.size()].first(&c, nullptr);
    else if (other == 0) {
        const auto *row = (mode & 8) ? &zv::datePatternTable[in.take<uint8_t>() % zv::kDatePatternRowCount] : nullptr;
        zv::readByPattern(p, row ? 0 : pn, row, t, n, &value, &kind, mode & 16);
    } else if (other == 1) {
        std::u16string copy = text;
        if (zv::cleanDateText(copy.data(), n) > n) std::abort();
    } else if (other == 2 || other == 3) {
        // The locale forms read on a block of the call's locale.
        const bool block = zv::buildLocaleBlock(&c, zv::findInstance(&c)) == 0;
        if (block && other == 3) {
            zv::readDateTimeForm(&c, t, n, p, pn, &value);
        } else if (block) {
            // A text of the same shape, other digits, reads through the cut
            // kept for this one as it reads with the cache off.
            zv::readLocaleForm(&c, t, n, p, pn, &value, &time);
            std::u16string twin = text;
            for (char16_t &u : twin)
                if (u >= u'0' && u <= u'9') u = char16_t(u'0' + (u - u'0' + 7) % 10);
            double date[2], times[2];
            int32_t status[2];
            for (int on = 0; on < 2; ++on) {
                zv::enableShapeCache(on == 1);
                date[on] = times[on] = zv::missingValue();
                status[on] = zv::readLocaleForm(&c, twin.data(), n, p, pn, &date[on], &times[on]);
            }
            if (status[0] != status[1] || zv::bitsOf(date[0]) != zv::bitsOf(date[1]) ||
                zv::bitsOf(times[0]) != zv::bitsOf(times[1]))
                std::abort();
        }
    }
    else {
        std::vector<uint8_t> bytes(size_t(n + 1) / 2 + 16, 0xA5);
        uint8_t *at = bytes.data();
        zv::hexToBytes(t, n, &at);
        zvfuzz::checkGuard(bytes, size_t(n + 1) / 2);
        ZvChar *base64 = nullptr;
        int64_t produced = 0;
        if (zv::encodeBase64Units(host().formatPool().raw(), t, n, &base64, &produced) == 0 &&
            (produced != (n + 2) / 3 * 4 || base64[produced] != 0)) std::abort();
    }
    zvfuzz::checkGuard(target, bound);
    zvfuzz::checkFields(before, c);
    host().formatPool().releaseSince(mark);
    return 0;
}
