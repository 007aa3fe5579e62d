// Helpers the number readers share.
#pragma once

#include <cstdint>

#include "zvlocfmt/zvlocfmt.h"

namespace zv {

// A two-unit group separator becomes ',' wherever the pair stands, and
// under a decimal separator ',' (`point`) a lone ',' becomes '.'. The text
// shrinks by a unit for each pair; its last unit, when no pair took it, is
// copied as it stands. The new length comes back.
inline int64_t translateGroupPairs(ZvChar *text, int64_t n, const ZvChar *group, ZvChar point) {
    int64_t i = 0, o = 0;
    while (i < n - 1) {
        if (text[i] == group[0] && text[i + 1] == group[1]) {
            text[o++] = u',';
            i += 2;
        } else {
            text[o++] = point == u',' && text[i] == u',' ? u'.' : text[i];
            ++i;
        }
    }
    if (i == n - 1) text[o++] = text[i];
    return o;
}

// The double at output, when there is one.
void storeValue(FormatCall *call, double value);

// The locale whose parseDouble reads plain numbers: the host's current one.
HostLocale *currentHostLocale(const FormatCall *call);

} // namespace zv
