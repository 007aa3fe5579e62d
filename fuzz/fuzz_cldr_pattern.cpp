// Converts arbitrary CLDR date patterns into the module's pattern language,
// for writing and for reading, under each week rule, with and without an era
// name; the result then stands as the date and datetime items of a locale
// and runs through NLDATE, NLDATM and @NLDATM.
#include "cldr.hpp"
#include "fuzz_support.hpp"

using zvfuzz::host;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    zvfuzz::Input in{data, size};
    static const std::vector<std::u16string> pieces = {u"yyyy", u"MMMM", u"MMM", u"dd", u"EEEE", u"a", u"h", u"HH",
                                                       u"mm", u"ss", u"SSS", u"zzzz", u"G", u"'", u"''", u"w",
                                                       u"Y", u"QQQ", u"B", u"'at'", u"ZZZZZ", u"k", u"L", u"c"};
    const uint8_t mode = in.take<uint8_t>();
    zvhost::ConvertOptions options;
    options.forReading = mode & 1;
    options.weekRule = zvhost::WeekRule((mode >> 1) % 3);
    if (mode & 8) options.eraName = u"AD";
    const std::u16string cldr = in.wide(80, pieces);
    const zvhost::ConvertedPattern converted = zvhost::convertCldrPattern(cldr, options);
    if (converted.pattern.size() > 4 * cldr.size() + 16) std::abort(); // no runaway output
    if (zvhost::convertCldrPattern(cldr, options).pattern != converted.pattern) std::abort();

    const std::string raw = zvhost::escapeForTable(converted.pattern);
    if (raw.size() > zvhost::kRawItemCapacity) return 0;
    const std::map<int, std::string> items = {{28, raw}, {46, raw}};
    zvhost::CallSpec spec;
    spec.items = items;
    spec.width = 1 + (mode >> 4) * 4;
    for (const char *name : {"NLDATE", "NLDATM"}) {
        const auto r = zvhost::runFormat(host(), *zvhost::findRow(host().instance()->formatTable, name), spec,
                                         name[5] == 'E' ? 23440 : 23440 * 86400.0 + 45296.5);
        if (!r.error.empty() || r.overran || r.fieldsChanged) std::abort();
    }
    const auto r = zvhost::runInformat(host(), *zvhost::findRow(host().instance()->formatTable, "@NLDATM"), spec,
                                       zvhost::utf8(in.wide(60, pieces)));
    if (!r.error.empty() || r.fieldsChanged) std::abort();
    return 0;
}
