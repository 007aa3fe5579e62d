// Numeric date forms: digits fitted to the field part by part, the year
// shrinking to two digits and parts dropping out as the field narrows.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "datefmt/calendar.hpp"
#include "datefmt/dateformat.hpp"
#include "datefmt/pattern.hpp"
#include "frame/frame.hpp"
#include "locale/block.hpp"
#include "wide/wide.hpp"

namespace zv {

namespace {

struct Order {
    int month = 0, day = 0, year = 0; // 1-based places, 0 when absent
};

// The places of M, D and Y in item 6, upper-cased. False when a letter is
// missing or stands beyond the three slots.
bool readOrder(const LocaleBlock *block, Order *order) {
    const LocaleItem &item = block->items[kItemDateOrder];
    ZvChar text[ZV_ITEM_TEXT_UNITS];
    const int64_t n = std::min<int64_t>(item.length, ZV_ITEM_TEXT_UNITS);
    std::memcpy(text, item.text, size_t(n) * sizeof(ZvChar));
    foldUpper(text, n);
    // The first M, D and Y, in one pass.
    *order = Order{};
    for (int64_t i = n - 1; i >= 0; --i) {
        if (text[i] == u'M') order->month = int(i) + 1;
        else if (text[i] == u'D') order->day = int(i) + 1;
        else if (text[i] == u'Y') order->year = int(i) + 1;
    }
    auto ok = [](int p) { return p >= 1 && p <= 3; };
    return ok(order->month) && ok(order->day) && ok(order->year);
}

ZvChar separatorOf(const LocaleBlock *block) {
    const LocaleItem &item = block->items[kItemDateSeparator];
    return item.length == 1 ? item.text[0] : 0;
}


// The parts of a numeric date into a target of w units, right-justified.
bool inDayRange(double v) { return !isMissing(v) && v >= kFirstDay && v < kDayLimit; }

void numericDateText(ZvChar *target, int64_t w, double dayCount, Order pos, ZvChar separator) {
    if (!inDayRange(dayCount)) {
        fillWide(target, u'*', w);
        return;
    }
    const CivilDate c = civilOf(static_cast<int64_t>(std::floor(dayCount)));
    const int64_t year = c.year;
    const int m = c.month, d = c.day;

    constexpr int kPartUnits = 4; // a year of four digits is the longest part
    struct Part {
        ZvChar text[kPartUnits]{};
        int length = 0;
    } parts[4]; // by position 1..3
    int digits = 0, shown = 0;
    if (pos.day) {
        writeDigits(d, parts[pos.day].text, 2, u'0');
        parts[pos.day].length = 2;
        digits += 2;
        ++shown;
    }
    if (pos.month) {
        writeDigits(m, parts[pos.month].text, 2, u'0');
        parts[pos.month].length = 2;
        digits += 2;
        ++shown;
    }
    if (pos.year) ++shown;
    int separators = separator ? shown - 1 : 0;
    if (pos.year) {
        Part &p = parts[pos.year];
        if (w - digits - separators >= 4) {
            if (year > 9999) fillWide(p.text, u'*', 4);
            else writeDigits(year, p.text, 4, u'0');
            p.length = 4;
        } else {
            writeDigits(year % 100, p.text, 2, u'0');
            p.length = 2;
        }
        digits += p.length;
    }
    if (w == 5) {
        if (separators > 1) separators = 1;
        if (shown == 3) {
            parts[3].length = 0;
            digits = 4;
        }
    }
    if (digits + separators > w) {
        separators = 0;
        for (int drop = 3; drop >= 2 && digits > w; --drop) {
            digits -= parts[drop].length;
            parts[drop].length = 0;
        }
    }

    // Three parts and two separators. A part goes over whole, as one copy,
    // and the text moves on by its length.
    ZvChar text[3 * kPartUnits + 2];
    int n = 0;
    for (int i = 1; i <= 3; ++i) {
        if (!parts[i].length) continue;
        if (n > 0 && separators > 0) text[n++] = separator;
        std::memcpy(text + n, parts[i].text, sizeof parts[i].text);
        n += parts[i].length;
    }
    fillWide(target, u' ', w);
    if (n <= w) std::memcpy(target + (w - n), text, size_t(n) * sizeof(ZvChar));
    else std::memcpy(target, text, size_t(w) * sizeof(ZvChar));
}

// The answer of a numeric form to a value it can't show.
bool answeredHere(FormatCall *call, double dayCount, int32_t *status) {
    if (isMissing(dayCount)) {
        const int32_t decimals = call->decimals;
        call->decimals = 0;
        const void *input = call->input;
        call->input = &dayCount;
        *status = writeMissingMark(call);
        call->input = input;
        call->decimals = decimals;
        return true;
    }
    if (!inDayRange(dayCount)) {
        *status = starFill(call);
        return true;
    }
    return false;
}

} // namespace

int32_t writeNumericDate(FormatCall *call, double dayCount, int monthPosition, int dayPosition,
                         int yearPosition, ZvChar separator) {
    const int64_t w = fieldUnits(call);
    call->outputLength = static_cast<int32_t>(w);
    int32_t status = 0;
    if (answeredHere(call, dayCount, &status)) return status;
    if (call->output)
        numericDateText(static_cast<ZvChar *>(call->output), w, dayCount,
                        Order{monthPosition, dayPosition, yearPosition}, separator);
    return 0;
}

int32_t writeNumericQuarter(FormatCall *call, double dayCount, ZvChar separator) {
    const int64_t w = fieldUnits(call);
    call->outputLength = static_cast<int32_t>(w);
    int32_t status = 0;
    if (answeredHere(call, dayCount, &status)) return status;
    const CivilDate c = civilOf(static_cast<int64_t>(std::floor(dayCount)));
    const int64_t year = c.year;
    const int tail = 1 + (separator ? 1 : 0);
    ZvChar text[8];
    int n = 0;
    if (tail + 4 > w) {
        n += writeDigits(year % 100, text, 2, u'0');
    } else if (year > 9999) {
        fillWide(text, u'*', 4);
        n = 4;
    } else {
        n += writeDigits(year, text, 4, u'0');
    }
    if (separator) text[n++] = separator;
    text[n++] = static_cast<ZvChar>(u'0' + (c.month - 1) / 3 + 1);
    auto *out = static_cast<ZvChar *>(call->output);
    if (!out) return 0;
    fillWide(out, u' ', w);
    if (n <= w) std::memcpy(out + (w - n), text, size_t(n) * sizeof(ZvChar));
    else std::memcpy(out, text, size_t(w) * sizeof(ZvChar));
    return 0;
}

namespace {
// The order without one part: the parts behind it move up one place.
Order withoutPart(Order pos, int Order::*part) {
    const int gone = pos.*part;
    if (pos.month > gone) --pos.month;
    if (pos.day > gone) --pos.day;
    if (pos.year > gone) --pos.year;
    pos.*part = 0;
    return pos;
}
} // namespace

int32_t writeNumericForm(const DateCall &d, NumericParts parts) {
    FormatCall *call = d.call;
    const double day = d.kind == ValueKind::Date ? d.value : dayOf(d.value);
    Order pos;
    if (!readOrder(call->localeBlock, &pos)) return starFill(call);
    const ZvChar separator = separatorOf(call->localeBlock);
    int32_t status;
    if (parts == NumericParts::Quarter) {
        status = writeNumericQuarter(call, day, separator);
    } else {
        if (parts == NumericParts::MonthYear) pos = withoutPart(pos, &Order::day);
        else if (parts == NumericParts::MonthDay) pos = withoutPart(pos, &Order::year);
        status = writeNumericDate(call, day, pos.month, pos.day, pos.year, separator);
    }
    leftJustifyField(call);
    return status;
}

int32_t writeNumericDatetime(const DateCall &d) {
    FormatCall *call = d.call;
    const LocaleBlock *block = call->localeBlock;
    const int w = call->width;
    const int dec = std::max(call->decimals, 0);
    const int p = dec > 0 ? 1 : 0;
    const int s = block->items[kItemDateSeparator].length == 1 ? 1 : 0;

    const ZvChar *timePattern = u"%H";
    int timeLength = 2, dateLength = 6;
    if (w >= dec + p + 17 + 2 * s) {
        timePattern = u"%H:%M:%S";
        timeLength = dec + p + 8;
        dateLength = 8 + 2 * s;
    } else if (w >= 15 + 2 * s) {
        timePattern = u"%H:%M:%S";
        timeLength = 8;
        dateLength = 6 + 2 * s;
    } else if (w >= 12 + 2 * s) {
        timePattern = u"%H:%M";
        timeLength = 5;
        dateLength = 6 + 2 * s;
    } else if (w >= 9 + 2 * s) {
        dateLength = 6 + 2 * s;
    }

    fillField(call, u' ');
    const int places = (timeLength < 8 ? 8 : timeLength) - 8;
    double value = d.value;
    roundToUnit(d.value, 1.0 / std::pow(10.0, places), &value);

    ZvChar timeText[32];
    int timeWidth = 32;
    const int32_t timeStatus = writeDatetimePattern(timeText, &timeWidth, timePattern,
                                                    wideLength(timePattern), value, dec, block, nullptr);
    if (timeStatus != kPatternFits && timeStatus != kPatternTooLong) fillWide(timeText, u'*', 32);
    if (timeLength > 32) timeLength = 32;

    // The date in a field of its own length.
    ZvChar dateText[16];
    Order pos;
    if (readOrder(block, &pos)) {
        numericDateText(dateText, dateLength, dayOf(value), pos, separatorOf(block));
        int64_t lead = 0;
        while (lead < dateLength && dateText[lead] == u' ') ++lead;
        std::memmove(dateText, dateText + lead, size_t(dateLength - lead) * sizeof(ZvChar));
        fillWide(dateText + (dateLength - lead), u' ', lead);
    } else {
        fillWide(dateText, u'*', dateLength);
    }

    ZvChar text[64];
    int n = 0;
    const LocaleItem &order = block->items[kItemDateBeforeTime];
    const bool dateFirst = order.length >= 2 && order.text[0] == u'%' && order.text[1] == u'x';
    auto put = [&](const ZvChar *t, int len) {
        std::memcpy(text + n, t, size_t(len) * sizeof(ZvChar));
        n += len;
    };
    if (dateFirst) {
        put(dateText, dateLength);
        text[n++] = u' ';
        put(timeText, timeLength);
    } else {
        put(timeText, timeLength);
        text[n++] = u' ';
        put(dateText, dateLength);
    }
    call->outputLength = w;
    if (call->output) {
        const int64_t room = fieldUnits(call);
        std::memcpy(call->output, text, size_t(std::min<int64_t>(n, room)) * sizeof(ZvChar));
    }
    return 0;
}

} // namespace zv
