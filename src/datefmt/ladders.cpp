// The ladder formats: a short list of candidate patterns from the widest to
// the narrowest, then a numeric form or stars. One walker, one table a
// format.
#include "datefmt/ladders.hpp"

#include "datefmt/dateformat.hpp"
#include "datefmt/pattern.hpp"
#include "frame/frame.hpp"
#include "locale/block.hpp"
#include "wide/wide.hpp"

namespace zv {

namespace {

// One candidate: the text of an item, or a fixed pattern whose width is
// taken from an item. kEnd closes a ladder that goes on to a numeric form.
struct LadderRow {
    const ZvChar *pattern;
    uint8_t item;
};
constexpr uint8_t kEnd = 190;

constexpr LadderRow kEndRow{nullptr, kEnd};
constexpr LadderRow kStop{nullptr, 0}; // a ladder without a numeric form ends in stars

enum class After { Numeric, Stars };

struct Ladder {
    ValueKind kind;
    LadderRow rows[7];
    After after;
    NumericParts parts;
};

// The three fixed patterns with widths of their own.
constexpr const ZvChar *kMonthNumber = u"%o";
constexpr const ZvChar *kWeekdayNumber = u"uw";

constexpr Ladder kNlDateL{ValueKind::Date, {{nullptr, kItemDateLong}, {nullptr, kItemDateMedium}, kEndRow}, After::Numeric, NumericParts::All};
constexpr Ladder kNlDateM{ValueKind::Date, {{nullptr, kItemDateMedium}, kEndRow}, After::Numeric, NumericParts::All};
constexpr Ladder kNlDateS{ValueKind::Date, {kEndRow}, After::Numeric, NumericParts::All};
constexpr Ladder kNlDatmL{ValueKind::Datetime, {{nullptr, kItemDatetimeLong}, {nullptr, kItemDatetimeMedium}, {nullptr, kItemDatetimeSecond}, kEndRow}, After::Numeric, NumericParts::All};
constexpr Ladder kNlDatmM{ValueKind::Datetime, {{nullptr, kItemDatetimeMedium}, {nullptr, kItemDatetimeSecond}, kEndRow}, After::Numeric, NumericParts::All};
constexpr Ladder kNlDatmS{ValueKind::Datetime, {kEndRow}, After::Numeric, NumericParts::All};
constexpr Ladder kNlDatmDT{ValueKind::Datetime, {{nullptr, kItemDateLong}, {nullptr, kItemDateMedium}, kEndRow}, After::Numeric, NumericParts::All};
constexpr Ladder kNlDateYML{ValueKind::Date, {{nullptr, kItemYearMonth}, {nullptr, kItemYearMonthSecond}, kEndRow}, After::Numeric, NumericParts::MonthYear};
constexpr Ladder kNlDateYMM{ValueKind::Date, {{nullptr, kItemYearMonthSecond}, kEndRow}, After::Numeric, NumericParts::MonthYear};
constexpr Ladder kNlDateYMS{ValueKind::Date, {kEndRow}, After::Numeric, NumericParts::MonthYear};
constexpr Ladder kNlDatmYML{ValueKind::Datetime, {{nullptr, kItemYearMonth}, {nullptr, kItemYearMonthSecond}, kEndRow}, After::Numeric, NumericParts::MonthYear};
constexpr Ladder kNlDatmYMM{ValueKind::Datetime, {{nullptr, kItemYearMonthSecond}, kEndRow}, After::Numeric, NumericParts::MonthYear};
constexpr Ladder kNlDatmYMS{ValueKind::Datetime, {kEndRow}, After::Numeric, NumericParts::MonthYear};
constexpr Ladder kNlDateMDL{ValueKind::Date, {{nullptr, kItemMonthDay}, {nullptr, kItemMonthDaySecond}, kEndRow}, After::Numeric, NumericParts::MonthDay};
constexpr Ladder kNlDateMDM{ValueKind::Date, {{nullptr, kItemMonthDaySecond}, kEndRow}, After::Numeric, NumericParts::MonthDay};
constexpr Ladder kNlDateMDS{ValueKind::Date, {kEndRow}, After::Numeric, NumericParts::MonthDay};
constexpr Ladder kNlDatmMDL{ValueKind::Datetime, {{nullptr, kItemMonthDay}, {nullptr, kItemMonthDaySecond}, kEndRow}, After::Numeric, NumericParts::MonthDay};
constexpr Ladder kNlDatmMDM{ValueKind::Datetime, {{nullptr, kItemMonthDaySecond}, kEndRow}, After::Numeric, NumericParts::MonthDay};
constexpr Ladder kNlDatmMDS{ValueKind::Datetime, {kEndRow}, After::Numeric, NumericParts::MonthDay};
constexpr Ladder kNlDateYQL{ValueKind::Date, {{nullptr, kItemYearQuarter}, {nullptr, kItemYearQuarterSecond}, kEndRow}, After::Numeric, NumericParts::Quarter};
constexpr Ladder kNlDateYQM{ValueKind::Date, {{nullptr, kItemYearQuarterSecond}, kEndRow}, After::Numeric, NumericParts::Quarter};
constexpr Ladder kNlDateYQS{ValueKind::Date, {kEndRow}, After::Numeric, NumericParts::Quarter};
constexpr Ladder kNlDatmYQL{ValueKind::Datetime, {{nullptr, kItemYearQuarter}, {nullptr, kItemYearQuarterSecond}, kEndRow}, After::Numeric, NumericParts::Quarter};
constexpr Ladder kNlDatmYQM{ValueKind::Datetime, {{nullptr, kItemYearQuarterSecond}, kEndRow}, After::Numeric, NumericParts::Quarter};
constexpr Ladder kNlDatmYQS{ValueKind::Datetime, {kEndRow}, After::Numeric, NumericParts::Quarter};
constexpr Ladder kNlDateMN{ValueKind::Date, {{u"%#B", kItemMonthFullOther}, {u"%#b", kItemMonthAbbrOther}, {kMonthNumber, 0}, kStop}, After::Stars, NumericParts::All};
constexpr Ladder kNlDatmMN{ValueKind::Datetime, {{u"%#B", kItemMonthFullOther}, {u"%#b", kItemMonthAbbrOther}, {kMonthNumber, 0}, kStop}, After::Stars, NumericParts::All};
constexpr Ladder kNlDateW{ValueKind::Date, {{nullptr, kItemDateWeekday}, {nullptr, kItemDateWeekdaySecond}, {u"%#A", kItemWeekdayFullOther}, {u"%#a", kItemWeekdayAbbrOther}, kStop}, After::Stars, NumericParts::All};
constexpr Ladder kNlDatmW{ValueKind::Datetime, {{nullptr, kItemDatetimeWeekday}, {nullptr, kItemDatetimeWeekdaySecond}, {nullptr, kItemDateWeekday}, {nullptr, kItemDateWeekdaySecond}, {u"%#A", kItemWeekdayFullOther}, {u"%#a", kItemWeekdayAbbrOther}, kStop}, After::Stars, NumericParts::All};
constexpr Ladder kNlDateWN{ValueKind::Date, {{u"%#A", kItemWeekdayFullOther}, {u"%#a", kItemWeekdayAbbrOther}, {kWeekdayNumber, kItemYearWeek}, kStop}, After::Stars, NumericParts::All};
constexpr Ladder kNlDatmWN{ValueKind::Datetime, {{u"%#A", kItemWeekdayFullOther}, {u"%#a", kItemWeekdayAbbrOther}, {kWeekdayNumber, kItemYearWeek}, kStop}, After::Stars, NumericParts::All};

bool isStop(const LadderRow &r) { return r.pattern == nullptr && r.item == 0; }

// The row's pattern and its width known in advance.
void rowPattern(const LadderRow &row, const LocaleBlock *block, const ZvChar **pattern, int64_t *length,
                int64_t *rowWidth) {
    const LocaleItem &item = block->items[row.item];
    if (!row.pattern) {
        *pattern = item.text;
        *length = item.length;
        *rowWidth = item.maxWidth;
    } else if (row.pattern == kMonthNumber) {
        *pattern = kMonthNumber;
        *length = 2;
        *rowWidth = 2;
    } else if (row.pattern == kWeekdayNumber) {
        *pattern = findChar(item.text, item.length, u'U') >= 0 ? u"%u" : u"%w";
        *length = 2;
        *rowWidth = 1;
    } else {
        *pattern = row.pattern;
        *length = wideLength(row.pattern);
        *rowWidth = item.maxWidth;
    }
}

// A try succeeds when the engine gives 0 and, with measureBytes, the text
// fits `width` host bytes; a failed measure narrows the field to the text.
bool tryRow(const DateCall &d, const ZvChar *pattern, int64_t length, int k, int *fieldWidth) {
    int w = *fieldWidth;
    if (runPattern(d, pattern, length, k, &w) != kPatternFits) return false;
    if (d.call->measureBytes && measureText(d.call, w) != 0) {
        *fieldWidth = w;
        return false;
    }
    return true;
}

int32_t walk(FormatCall *call, const Ladder &ladder, bool enteredDirectly) {
    DateCall d;
    int32_t status = 0, buildStatus = 0;
    if (!openDateFormat(call, ladder.kind, &d, &status, &buildStatus)) {
        // A numeric form entered directly tells a failed build by its status
        // (but NLDATMS, whose callers expect 0).
        const bool plainNumeric = ladder.rows[0].item == kEnd && &ladder != &kNlDatmS;
        return buildStatus != 0 && enteredDirectly && plainNumeric ? buildStatus : status;
    }
    int fieldWidth = call->width;
    for (const LadderRow &row : ladder.rows) {
        if (row.item == kEnd && !row.pattern) {
            return ladder.parts == NumericParts::All && ladder.kind == ValueKind::Datetime &&
                           &ladder != &kNlDatmDT
                       ? writeNumericDatetime(d)
                       : writeNumericForm(d, ladder.parts);
        }
        if (isStop(row)) break;
        const ZvChar *pattern;
        int64_t length, rowWidth;
        rowPattern(row, call->localeBlock, &pattern, &length, &rowWidth);
        if (rowWidth > fieldWidth || call->decimals < 0) continue;
        if (ladder.kind == ValueKind::Date) {
            if (tryRow(d, pattern, length, 0, &fieldWidth)) return 0;
        } else {
            for (int k = call->decimals; k >= 0; --k)
                if (tryRow(d, pattern, length, k, &fieldWidth)) return 0;
        }
    }
    return starFill(call);
}

} // namespace

#define ZV_LADDER_FORMAT(name, ladder)                                                         \
    int32_t name(FormatCall *call, void *) { return walk(call, ladder, true); }

ZV_LADDER_FORMAT(writeNlDateL, kNlDateL)
ZV_LADDER_FORMAT(writeNlDateM, kNlDateM)
ZV_LADDER_FORMAT(writeNlDateS, kNlDateS)
ZV_LADDER_FORMAT(writeNlDatmL, kNlDatmL)
ZV_LADDER_FORMAT(writeNlDatmM, kNlDatmM)
ZV_LADDER_FORMAT(writeNlDatmS, kNlDatmS)
ZV_LADDER_FORMAT(writeNlDatmDT, kNlDatmDT)
ZV_LADDER_FORMAT(writeNlDateYML, kNlDateYML)
ZV_LADDER_FORMAT(writeNlDateYMM, kNlDateYMM)
ZV_LADDER_FORMAT(writeNlDateYMS, kNlDateYMS)
ZV_LADDER_FORMAT(writeNlDatmYML, kNlDatmYML)
ZV_LADDER_FORMAT(writeNlDatmYMM, kNlDatmYMM)
ZV_LADDER_FORMAT(writeNlDatmYMS, kNlDatmYMS)
ZV_LADDER_FORMAT(writeNlDateMDL, kNlDateMDL)
ZV_LADDER_FORMAT(writeNlDateMDM, kNlDateMDM)
ZV_LADDER_FORMAT(writeNlDateMDS, kNlDateMDS)
ZV_LADDER_FORMAT(writeNlDatmMDL, kNlDatmMDL)
ZV_LADDER_FORMAT(writeNlDatmMDM, kNlDatmMDM)
ZV_LADDER_FORMAT(writeNlDatmMDS, kNlDatmMDS)
ZV_LADDER_FORMAT(writeNlDateYQL, kNlDateYQL)
ZV_LADDER_FORMAT(writeNlDateYQM, kNlDateYQM)
ZV_LADDER_FORMAT(writeNlDateYQS, kNlDateYQS)
ZV_LADDER_FORMAT(writeNlDatmYQL, kNlDatmYQL)
ZV_LADDER_FORMAT(writeNlDatmYQM, kNlDatmYQM)
ZV_LADDER_FORMAT(writeNlDatmYQS, kNlDatmYQS)
ZV_LADDER_FORMAT(writeNlDateMN, kNlDateMN)
ZV_LADDER_FORMAT(writeNlDatmMN, kNlDatmMN)
ZV_LADDER_FORMAT(writeNlDateW, kNlDateW)
ZV_LADDER_FORMAT(writeNlDatmW, kNlDatmW)
ZV_LADDER_FORMAT(writeNlDateWN, kNlDateWN)
ZV_LADDER_FORMAT(writeNlDatmWN, kNlDatmWN)

#undef ZV_LADDER_FORMAT

} // namespace zv
