// Guessing the layout of a date, a time or a datetime: the ANYDATE rows of
// the date pattern table are tried in order until one gives a value.
#include <algorithm>
#include <cmath>

#include "datefmt/calendar.hpp"
#include "dateread/dateread.hpp"
#include "frame/frame.hpp"
#include "wide/wide.hpp"

namespace zv {

namespace {

constexpr int kRoom = 200;
constexpr int kPatternRoom = 64;

bool sameZ(const ZvChar *a, const ZvChar *b) {
    if (!a || !b) return false;
    int i = 0;
    for (; a[i] != 0 && b[i] != 0; ++i)
        if (a[i] != b[i]) return false;
    return a[i] == b[i];
}

enum class Keep { Day, Time, Both };

int32_t guess(FormatCall *call, Keep keep) {
    double *output = static_cast<double *>(call->output);
    int64_t length = std::min(call->inputLength, call->width);
    length = call->input ? std::max<int64_t>(length, 0) : 0;
    if (length > kRoom) length = kRoom;
    ZvChar buffer[kRoom];
    copyPadded(static_cast<const ZvChar *>(call->input), length, buffer, kRoom);
    length = cleanDateText(buffer, kRoom);
    const bool hasColon = findChar(buffer, length, u':') >= 0;

    bool found = false;
    int32_t kind = kReadNothing;
    for (int i = 0; i < kDatePatternRowCount && !found; ++i) {
        const DatePatternRow &row = datePatternTable[i];
        if (!sameZ(row.name, u"ANYDATE")) continue;
        if (!hasColon && sameZ(row.kind, u"TME")) continue;
        if (length < static_cast<int64_t>(row.minLength) ||
            length > static_cast<int64_t>(row.maxLength) + secondsRoomOf(row))
            continue;
        int32_t status = readByPattern(nullptr, 0, &row, buffer, length, output, &kind, 0);
        if (status == 0 && !isMissing(*output)) {
            found = true;
            break;
        }
        const int64_t at = firstPair(row.pattern, u'%', u'y');
        if (at < 0) continue;
        // The same row once more with a four-digit year in the first place.
        ZvChar pattern[kPatternRoom];
        int64_t n = 0;
        while (row.pattern[n] != 0 && n < kPatternRoom - 1) {
            pattern[n] = row.pattern[n];
            ++n;
        }
        pattern[n] = 0;
        pattern[at + 1] = u'Y';
        DatePatternRow wide = row;
        wide.pattern = pattern;
        status = readByPattern(nullptr, 0, &wide, buffer, length, output, &kind, 0);
        if (status == 0 && !isMissing(*output)) found = true;
    }

    double value = found ? *output : missingValue();
    if (kind == kReadDate && !isMissing(value)) value *= kSecondsPerDay;
    if (!isMissing(value)) {
        if (keep == Keep::Day) value = static_cast<double>(static_cast<int64_t>(value) / static_cast<int64_t>(kSecondsPerDay));
        else if (keep == Keep::Time) value = std::fmod(value, kSecondsPerDay);
    }
    *output = value;
    return 0;
}

} // namespace

int32_t readAnyDate(FormatCall *call, void *) { return guess(call, Keep::Day); }
int32_t readAnyTime(FormatCall *call, void *) { return guess(call, Keep::Time); }
int32_t readAnyDateTime(FormatCall *call, void *) { return guess(call, Keep::Both); }

} // namespace zv
