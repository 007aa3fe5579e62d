// Printf-like output through the host's formatText.
#include "frame/frame.hpp"
#include "wide/wide.hpp"

namespace zv {

namespace {
// Nothing to hand the work to: neither the call's instance nor the module
// knows a host anchor.
constexpr int32_t kNoAnchor = static_cast<int32_t>(0x803fc0c9u);
} // namespace

int32_t formatWide(FormatCall *call, const ZvChar *format, int64_t formatLength, ZvChar *target,
                   int64_t capacity, int64_t *produced, const int64_t *values) {
    HostAnchor *anchor = hostAnchor;
    if (call) {
        if (ExtensionInstance *instance = findInstance(call)) anchor = instance->anchor;
    }
    if (!anchor || !anchor->ops || !anchor->ops->formatText) return kNoAnchor;
    return anchor->ops->formatText(anchor, call, format, formatLength, target, capacity, produced,
                                   0, values);
}

} // namespace zv
