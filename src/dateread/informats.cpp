// @NLDATE, @NLDATM and @NLTIME: the locale's own patterns first, then the
// fixed forms of DATE, DATETIME and TIME.
#include "datefmt/calendar.hpp"
#include "dateread/dateread.hpp"
#include "frame/frame.hpp"
#include "locale/block.hpp"
#include "wide/wide.hpp"

#include <algorithm>

namespace zv {

namespace {

constexpr int32_t kFormFailed = -3;

// The locale patterns tried, in order; an item that stands twice is harmless.
constexpr int32_t kDateItems[] = {kItemDate, kItemDateSecond, kItemDateWeekday, kItemDateWeekday,
                                  kItemDateWeekdaySecond};
constexpr int32_t kDatetimeItems[] = {kItemDatetime,        kItemDatetimeSecond,        kItemDatetimeWeekday,
                                      kItemDatetimeWeekday, kItemDatetimeWeekdaySecond, kItemDatetimeAmPm,
                                      kItemDatetimeAmPmSecond};
constexpr int32_t kTimeItems[] = {kItemTime};

enum class Reading { Date, Datetime, Time };

bool dateInRange(double date) { return !isMissing(date) && date >= kFirstDay && date < kDayLimit; }

// The text of an item without its trailing blanks.
int64_t patternLengthOf(const LocaleItem &item) {
    return item.length > 0 ? lengthWithoutTrailingBlanks(item.text, item.length) : 0;
}

int32_t readNl(FormatCall *call, Reading reading) {
    const ZvChar *text = static_cast<const ZvChar *>(call->input);
    double *output = static_cast<double *>(call->output);
    int32_t length = std::min(call->inputLength, call->fieldLimit);
    length = text ? std::max<int64_t>(length, 0) : 0;
    length = static_cast<int32_t>(lengthWithoutTrailingBlanks(text, length));

    ExtensionInstance *instance = findInstance(call);
    if (!instance) return kDateReadFailed;
    bool haveBlock = call->localeBlock != nullptr;
    if (!haveBlock) haveBlock = buildLocaleBlock(call, instance) == 0;

    if (haveBlock) {
        if (length == 0) return ZV_UNREADABLE;
        const LocaleBlock *block = call->localeBlock;
        switch (reading) {
        case Reading::Date:
            for (int32_t item : kDateItems) {
                const LocaleItem &p = block->items[item];
                if (readDateForm(call, text, length, p.text, patternLengthOf(p), output) == kLocaleFormRead) return 0;
            }
            break;
        case Reading::Datetime: {
            bool remembered = false;
            double partial = 0.0;
            for (int32_t item : kDatetimeItems) {
                const LocaleItem &p = block->items[item];
                const int32_t status = readDateTimeForm(call, text, length, p.text, patternLengthOf(p), output);
                if (status == kLocaleFormRead) return 0;
                if (status == kLocaleFormPartialTime && !remembered) {
                    remembered = true;
                    partial = *output;
                }
            }
            if (remembered) {
                *output = partial;
                return 0;
            }
            break;
        }
        case Reading::Time:
            for (int32_t item : kTimeItems) {
                const LocaleItem &p = block->items[item];
                const int32_t status = readTimeForm(call, text, length, p.text, patternLengthOf(p), output);
                if (status == kLocaleFormRead || status == kLocaleFormPartialTime) return 0;
            }
            break;
        }
    }

    int32_t kind = 0;
    switch (reading) {
    case Reading::Date: return readByPattern(u"DATE", 4, nullptr, text, length, output, &kind, 1);
    case Reading::Datetime: return readByPattern(u"DATETIME", 8, nullptr, text, length, output, &kind, 1);
    default: return readByPattern(u"TIME", 4, nullptr, text, length, output, &kind, 1);
    }
}

} // namespace

int32_t readDateForm(FormatCall *call, const ZvChar *text, int64_t textLength, const ZvChar *pattern,
                     int64_t patternLength, double *out) {
    double date = missingValue(), time = missingValue();
    const int32_t status = readLocaleForm(call, text, textLength, pattern, patternLength, &date, &time);
    if (status < 0 || !dateInRange(date)) return kFormFailed;
    *out = date;
    return status;
}

int32_t readDateTimeForm(FormatCall *call, const ZvChar *text, int64_t textLength, const ZvChar *pattern,
                         int64_t patternLength, double *out) {
    double date = missingValue(), time = missingValue();
    const int32_t status = readLocaleForm(call, text, textLength, pattern, patternLength, &date, &time);
    if (status < 0 || !dateInRange(date)) return kFormFailed;
    if (isMissing(time) || !(time >= 0.0 && time < kSecondsPerDay)) return kFormFailed;
    *out = date * kSecondsPerDay + time;
    return status;
}

int32_t readTimeForm(FormatCall *call, const ZvChar *text, int64_t textLength, const ZvChar *pattern,
                     int64_t patternLength, double *out) {
    double date = missingValue(), time = missingValue();
    const int32_t status = readLocaleForm(call, text, textLength, pattern, patternLength, &date, &time);
    // Only the time slot decides: a time read before the date of the same text
    // failed is still stored, and the reader's failure is passed on with it.
    if (isMissing(time) || !(time >= 0.0)) return kFormFailed;
    *out = time;
    return status;
}

int32_t readNlDate(FormatCall *call, void *) { return readNl(call, Reading::Date); }
int32_t readNlDatetime(FormatCall *call, void *) { return readNl(call, Reading::Datetime); }
int32_t readNlTime(FormatCall *call, void *) { return readNl(call, Reading::Time); }

} // namespace zv
