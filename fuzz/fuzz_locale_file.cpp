// Reads arbitrary text as a locale definition file. What is accepted holds
// items of at most 160 bytes, and a locale made of them serves a format row
// through both entries; what is refused says on which line and why.
#include <string>

#include "cldr.hpp"
#include "fuzz_support.hpp"

using zvfuzz::host;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size < 1) return 0;
    const std::string_view content(reinterpret_cast<const char *>(data) + 1, size - 1);
    std::map<int, std::string> items;
    std::string error;
    if (!zvhost::parseLocaleDefinition(content, items, error)) {
        if (error.rfind("line ", 0) != 0 || !items.empty()) std::abort();
        return 0;
    }
    for (const auto &[item, raw] : items)
        if (item < 0 || item >= ZV_LOCALE_TABLE_ITEMS || raw.size() > zvhost::kRawItemCapacity) std::abort();
    static const auto rows = zvhost::tableRows(host().instance()->formatTable);
    const FormatTableRow &row = *rows[data[0] % rows.size()];
    zvhost::CallSpec spec;
    spec.items = items;
    spec.width = data[0] % 40;
    spec.measureBytes = data[0] & 1;
    if (zvhost::isInformat(row)) {
        const auto r = zvhost::runInformat(host(), row, spec, "01JAN2000 12:30 1,234.5");
        if (!r.error.empty() || r.fieldsChanged) std::abort();
        return 0;
    }
    for (zvhost::Entry entry : {zvhost::Entry::Wide, zvhost::Entry::Byte}) {
        spec.entry = entry;
        const auto r = zvhost::runFormat(host(), row, spec, 23440.5 * (row.sourceKind == ZV_KIND_NUMBER ? 1 : 86400));
        if (!r.error.empty() || r.overran || r.fieldsChanged) std::abort();
    }
    return 0;
}
