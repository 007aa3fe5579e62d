// NLSTRMON, NLSTRQTR and NLSTRWK: a month, quarter or weekday number as the
// locale's name for it. decimals is a pair of switches: bit 0 the short
// form, bit 1 upper case.
#include "datefmt/names.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "frame/frame.hpp"
#include "locale/block.hpp"
#include "wide/wide.hpp"

namespace zv {

namespace {

struct NameGroup {
    int count;      // names in the group; the highest value shown
    int longFirst;  // first item of the long names
    int shortFirst; // first item of the short names
};

constexpr NameGroup kMonths{kMonthNames, kItemMonthFullOther, kItemMonthAbbrOther};
constexpr NameGroup kQuarters{kQuarterNames, kItemQuarterFullOther, kItemQuarterAbbrOther};
constexpr NameGroup kWeekdays{kWeekdayNames, kItemWeekdayFullOther, kItemWeekdayAbbrOther};

int32_t writeName(FormatCall *call, const NameGroup &group) {
    ExtensionInstance *instance = findInstance(call);
    if (!instance) return ZV_NO_INSTANCE;
    call->outputLength = call->width;

    if (call->flags & ZV_FLAG_CHECK_LIMITS) {
        if (call->width < 1) return ZV_WIDTH_TOO_SMALL;
        if (call->width > kNameWidthLimit) return ZV_WIDTH_TOO_LARGE;
        if (call->decimals < 0) return ZV_DECIMALS_TOO_SMALL;
        if (call->decimals > kNameDecimalsLimit) return ZV_DECIMALS_TOO_LARGE;
    }

    double value = 0;
    if (call->input) std::memcpy(&value, call->input, sizeof value);
    if (isMissing(value)) return missingMarkHeld(call);
    if (!(value >= 1 && value <= group.count)) return missingMarkHeld(call);

    if (!ensureLocaleBlock(call, instance)) return 0;

    const int first = (call->decimals & 1) ? group.shortFirst : group.longFirst;
    const LocaleItem &item = call->localeBlock->items[first + static_cast<int>(std::trunc(value - 1))];
    if (item.length > call->width) return starFill(call);

    auto *out = static_cast<ZvChar *>(call->output);
    const int64_t room = std::min(call->outputLength, call->outputCapacity);
    if (out) {
        fillWide(out, u' ', room);
        const int64_t copied = std::min(item.length, room);
        std::memcpy(out, item.text, size_t(copied) * sizeof(ZvChar));
        if (call->decimals & 2) foldUpper(out, copied);
    }

    if (call->measureBytes && call->transcoder) {
        unsigned char scratch[1024];
        int64_t produced = 0;
        const int64_t capacity = call->width < int32_t(sizeof scratch) ? call->width : int32_t(sizeof scratch);
        const int32_t status = call->transcoder->ops->transcode(
            call->transcoder, out, item.length * 2, scratch, capacity, &produced, 0);
        if (status != 0) return starFill(call);
    }
    return 0;
}

} // namespace

int32_t writeNlStrMonth(FormatCall *call, void *) { return writeName(call, kMonths); }
int32_t writeNlStrQuarter(FormatCall *call, void *) { return writeName(call, kQuarters); }
int32_t writeNlStrWeekday(FormatCall *call, void *) { return writeName(call, kWeekdays); }

} // namespace zv
