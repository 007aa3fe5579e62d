// The plain forms NLDATE, NLDATM and NLDATMAP, and the partial forms of year
// and month, month and day, year, year and quarter, year and week.
#include <algorithm>
#include <cstring>

#include "datefmt/dateformat.hpp"
#include "datefmt/ladders.hpp"
#include "datefmt/pattern.hpp"
#include "frame/frame.hpp"
#include "locale/block.hpp"
#include "wide/wide.hpp"

namespace zv {

namespace {

// One try of an item at k decimals: 0, 1 when too long (also in host
// bytes), or the engine's other status.
inline int32_t tryItem(const DateCall &d, int item, int k) {
    const LocaleItem &it = d.call->localeBlock->items[item];
    int w = d.call->width;
    const int32_t status = runPattern(d, it.text, it.length, k, &w);
    if (status != kPatternFits || !d.call->measureBytes) return status;
    const int32_t measured = measureText(d.call, w);
    if (measured == 0) return kPatternFits;
    return measured == ZV_TARGET_TOO_SMALL ? kPatternTooLong : measured;
}

// Tries with k = decimals, then fewer, down to 0; the status of the last.
int32_t trySeries(const DateCall &d, int item) {
    int32_t status = kPatternEmpty;
    for (int k = d.call->decimals; k >= 0; --k)
        if ((status = tryItem(d, item, k)) == kPatternFits) break;
    return status;
}

void blankToCapacity(FormatCall *call) {
    if (call->output && call->outputCapacity > 0)
        fillWide(static_cast<ZvChar *>(call->output), u' ', call->outputCapacity);
}

// NLDATE: the two patterns, then the numeric form.
int32_t plainDate(FormatCall *call, void *opaque, int first, int second) {
    DateCall d;
    int32_t status = 0;
    if (!openDateFormat(call, ValueKind::Date, &d, &status)) return status;
    status = tryItem(d, first, 0);
    if (status == kPatternFits) return 0;
    if (status == kPatternTooLong && tryItem(d, second, 0) == kPatternFits) return 0;
    blankToCapacity(call);
    if (writeNlDateS(call, opaque) != 0) return starFill(call);
    leftJustifyField(call);
    return 0;
}

// NLDATM and NLDATMAP: each pattern with fewer and fewer decimals, then the
// numeric form.
int32_t plainDatetime(FormatCall *call, void *opaque, int first, int second) {
    DateCall d;
    int32_t status = 0;
    if (!openDateFormat(call, ValueKind::Datetime, &d, &status)) return status;
    status = trySeries(d, first);
    if (status == kPatternFits) return 0;
    if (status == kPatternTooLong && trySeries(d, second) == kPatternFits) return 0;
    blankToCapacity(call);
    const int32_t width = call->width, capacity = call->outputCapacity;
    status = writeNlDatmS(call, opaque);
    call->width = width;
    call->outputCapacity = capacity;
    if (first == kItemDatetime) { // NLDATM looks at what came out; NLDATMAP at the status
        const auto *out = static_cast<const ZvChar *>(call->output);
        const int64_t n = std::min(call->outputLength, capacity);
        if (out && findChar(out, n, u'*') >= 0) return starFill(call);
    } else if (status != 0) {
        return starFill(call);
    }
    leftJustifyField(call);
    return status;
}

int32_t partialForm(FormatCall *call, ValueKind kind, int first, int second) {
    DateCall d;
    int32_t status = 0;
    if (!openDateFormat(call, kind, &d, &status)) return status;
    // Datetimes show no fraction of a second here, whatever decimals holds.
    status = tryItem(d, first, 0);
    if (status == kPatternFits) return 0;
    if (status != kPatternTooLong) return starFill(call);
    if (tryItem(d, second, 0) == kPatternFits) return 0;
    return starFill(call);
}

} // namespace

int32_t writeNlDate(FormatCall *call, void *opaque) { return plainDate(call, opaque, kItemDate, kItemDateSecond); }
int32_t writeNlDatm(FormatCall *call, void *opaque) { return plainDatetime(call, opaque, kItemDatetime, kItemDatetimeSecond); }
int32_t writeNlDatmAP(FormatCall *call, void *opaque) { return plainDatetime(call, opaque, kItemDatetimeAmPm, kItemDatetimeSecond); }

int32_t writeNlDateYM(FormatCall *call, void *) { return partialForm(call, ValueKind::Date, kItemYearMonth, kItemYearMonthSecond); }
int32_t writeNlDatmYM(FormatCall *call, void *) { return partialForm(call, ValueKind::Datetime, kItemYearMonth, kItemYearMonthSecond); }
int32_t writeNlDateMD(FormatCall *call, void *) { return partialForm(call, ValueKind::Date, kItemMonthDay, kItemMonthDaySecond); }
int32_t writeNlDatmMD(FormatCall *call, void *) { return partialForm(call, ValueKind::Datetime, kItemMonthDay, kItemMonthDaySecond); }
int32_t writeNlDateYR(FormatCall *call, void *) { return partialForm(call, ValueKind::Date, kItemYear, kItemYearSecond); }
int32_t writeNlDatmYR(FormatCall *call, void *) { return partialForm(call, ValueKind::Datetime, kItemYear, kItemYearSecond); }
int32_t writeNlDateYQ(FormatCall *call, void *) { return partialForm(call, ValueKind::Date, kItemYearQuarter, kItemYearQuarterSecond); }
int32_t writeNlDatmYQ(FormatCall *call, void *) { return partialForm(call, ValueKind::Datetime, kItemYearQuarter, kItemYearQuarterSecond); }
int32_t writeNlDateYW(FormatCall *call, void *) { return partialForm(call, ValueKind::Date, kItemYearWeek, kItemYearWeekSecond); }
int32_t writeNlDatmYW(FormatCall *call, void *) { return partialForm(call, ValueKind::Datetime, kItemYearWeek, kItemYearWeekSecond); }

} // namespace zv
