// Case mapping of single UTF-16 units: the host above ASCII when the anchor
// offers NLS services, the module's fold tables otherwise.
#include "frame/frame.hpp"
#include "wide/wide.hpp"

namespace zv {

namespace {

ZvChar fold(ZvChar c, const int8_t (*deltas)[128], const CasePair *pairs, int32_t pairCount) {
    const FoldTables &tables = foldTables();
    const int16_t page = tables.pageIndex[c >> 7];
    if (page < 0) return c;
    const int8_t delta = deltas[page][c & 127];
    if (delta == kFarMapping) {
        for (int32_t i = 0; i < pairCount; ++i)
            if (pairs[i].from == c) return static_cast<ZvChar>(pairs[i].to);
        return c;
    }
    return static_cast<ZvChar>(c + delta);
}

using HostCase = uint32_t (*)(NlsServices *, uint32_t, int32_t);

constexpr ZvChar kAsciiLimit = 128;
constexpr ZvChar kAsciiCaseBit = 0x20; // between an ASCII capital and its small letter

void foldText(ZvChar *text, int64_t length, bool upper) {
    if (!text) return;
    NlsServices *nls = hostAnchor ? hostAnchor->nlsServices : nullptr;
    HostCase hostCase = nullptr;
    if (nls && nls->ops) hostCase = upper ? nls->ops->charUpper : nls->ops->charLower;
    for (int64_t i = 0; i < length; ++i) {
        const ZvChar c = text[i];
        if (c < kAsciiLimit) {
            // ASCII changes case only between A-Z and a-z, as the tables hold.
            const bool flip = upper ? (c >= u'a' && c <= u'z') : (c >= u'A' && c <= u'Z');
            if (flip) text[i] = static_cast<ZvChar>(c ^ kAsciiCaseBit);
        } else if (nls) {
            if (hostCase) text[i] = static_cast<ZvChar>(hostCase(nls, c, 1));
        } else {
            text[i] = upper ? tableUpper(c) : tableLower(c);
        }
    }
}

} // namespace

ZvChar tableUpper(ZvChar c) {
    const FoldTables &t = foldTables();
    return fold(c, t.upperDeltas, t.upperPairs, t.upperPairCount);
}

ZvChar tableLower(ZvChar c) {
    const FoldTables &t = foldTables();
    return fold(c, t.lowerDeltas, t.lowerPairs, t.lowerPairCount);
}

void foldUpper(ZvChar *text, int64_t length) { foldText(text, length, true); }
void foldLower(ZvChar *text, int64_t length) { foldText(text, length, false); }

ZvChar foldUpperBeyondAscii(ZvChar c) {
    foldUpper(&c, 1);
    return c;
}

bool equalIgnoringCase(const ZvChar *text, int64_t length, const ZvChar *other,
                       int64_t otherLength) {
    if (length != otherLength) return false;
    if (length <= 0) return true;
    if (!text || !other) return text == other;
    for (int64_t i = 0; i < length; ++i)
        if (tableLower(text[i]) != tableLower(other[i])) return false;
    return true;
}

} // namespace zv
