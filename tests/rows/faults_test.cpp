// Every row of the format table with each host operation it reaches failing
// in turn: first a clean call counts how often each operation is reached,
// then each of those calls fails once. Whatever fails, nothing is written
// past the target, the call record comes back as it went and no pool keeps a
// block beyond the call's locale block; where the answer is fixed, it is
// checked too.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <functional>
#include <set>
#include <string>
#include <tuple>

#include "rows/rows.hpp"
#include "zvhost.hpp"

namespace {

using namespace rows;
using zvhost::Faults;
using zvhost::HostCounters;
using zvhost::kHostFault;

struct Op { const char *name; int64_t Faults::*fault; int64_t HostCounters::*calls; };
const Op kOps[] = {{"transcode", &Faults::failTranscode, &HostCounters::transcodes},
                   {"localeTextTable", &Faults::failLocaleTextTable, &HostCounters::textTables},
                   {"readOption", &Faults::failReadOption, &HostCounters::optionReads},
                   {"readClock", &Faults::failReadClock, &HostCounters::clockReads},
                   {"timeZoneOffset", &Faults::failTimeZoneOffset, &HostCounters::zoneOffsets},
                   {"formatNumber", &Faults::failFormatNumber, &HostCounters::numberFormats},
                   {"parseDouble", &Faults::failParseDouble, &HostCounters::doubleParses},
                   {"parseInteger", &Faults::failParseInteger, &HostCounters::integerParses},
                   {"currentLocale", &Faults::failCurrentLocale, &HostCounters::currentLocales},
                   {"createTranscoder", &Faults::failCreateTranscoder, &HostCounters::transcodersCreated},
                   {"openLocale", &Faults::failOpenLocale, &HostCounters::localesOpened}};

struct Outcome {
    int32_t status = 0;
    std::string text; // what was written, or the bits read
    int32_t outputLength = 0;
    bool broken = false; // an overrun or a changed field of the record
};

class Faulted : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_NE(host.loadModule(), nullptr);
        HostAnchor *a = host.anchor();
        ASSERT_NE(a->ops->createPool(a, nullptr, nullptr, "call pool"), nullptr);
        instancePool = host.createdPools().front();
        callPool = host.createdPools().back();
    }
    // One call: the wide entry at the row's width, or the byte entry at a
    // width whose wide text needs the call pool; an informat on a text of its kind.
    Outcome run(const FormatTableRow &row, bool byte) {
        const std::string n = zvhost::rowName(row);
        const Fam f = famOf(n);
        zvhost::CallSpec spec;
        spec.callPool = callPool;
        if (f >= Fam::RDate) {
            const std::string text = f < Fam::RNumber ? ordinaryText(n, f) : starts(n, "@NLPCT") ? "12.5%" : "1,234.5";
            const auto r = zvhost::runInformat(host, row, spec, text);
            return {r.status, std::to_string(r.bits), 0, r.fieldsChanged};
        }
        spec.entry = byte ? zvhost::Entry::Byte : zvhost::Entry::Wide;
        spec.width = byte ? 300 : widthFor(row, f);
        const auto r = zvhost::runFormat(host, row, spec, ordinary(f));
        return {r.status, byte ? r.bytes : r.utf8, r.outputLength, r.overran || r.fieldsChanged};
    }
    zvhost::Host host;
    zvhost::Pool *instancePool = nullptr, *callPool = nullptr;
};

int64_t reached(const zvhost::Pool &p) { return p.stats().allocations + p.stats().failures; }
bool renderedNumber(const std::string &n) {
    return n == "NLNUM" || n == "NLNUMI" || n == "NLPCT" || n == "NLPCTI" || n == "NLMNY" || n == "NLMNYI";
}

TEST_F(Faulted, EveryHostOperationOfEveryRow) {
    const auto rows = zvhost::tableRows(host.instance()->formatTable);
    // Every call builds the same locale block first. Its transcodings fail in
    // turn for the first row of each family; the other rows fail only their own
    // (rows that build no block reach none at all).
    int64_t blockTranscodes = INT64_MAX;
    for (const FormatTableRow *row : rows) {
        const int64_t start = host.counters().transcodes;
        run(*row, false);
        if (const int64_t n = host.counters().transcodes - start) blockTranscodes = std::min(blockTranscodes, n);
    }
    std::set<std::pair<Fam, bool>> swept;
    for (const FormatTableRow *row : rows) {
        const std::string n = zvhost::rowName(*row);
        const Fam f = famOf(n);
        for (bool byte : {false, true}) {
            if (byte && f >= Fam::RDate) continue;
            zvhost::Pool *pools[] = {&host.formatPool(), callPool, instancePool};
            // Each place a fault can be set: its name, the calls a clean run makes, the setter.
            struct Point { std::string name; int64_t calls; std::function<void(int64_t)> set; };
            std::vector<Point> points;
            const HostCounters start = host.counters();
            int64_t before[3];
            for (int i = 0; i < 3; ++i) before[i] = reached(*pools[i]);
            const Outcome clean = run(*row, byte);
            for (int i = 0; i < 3; ++i)
                points.push_back({pools[i]->name() + " allocation", reached(*pools[i]) - before[i],
                                  [p = pools[i]](int64_t k) { p->failAt(k); }});
            for (const Op &op : kOps)
                points.push_back({op.name, host.counters().*op.calls - start.*op.calls,
                                  [this, op](int64_t k) { host.faults().*op.fault = k; }});
            const bool first = swept.insert({f, byte}).second;
            for (const Point &at : points)
                for (int64_t k = at.name == "transcode" && !first ? blockTranscodes + 1 : 1; k <= at.calls; ++k) {
                    const int64_t blocks = host.formatPool().stats().allocations;
                    at.set(k);
                    const Outcome o = run(*row, byte);
                    at.set(0);
                    const std::string where = n + (byte ? " byte, " : ", ") + at.name + " " + std::to_string(k);
                    EXPECT_FALSE(o.broken) << where;
                    EXPECT_EQ(callPool->stats().liveBlocks, 0) << where;
                    EXPECT_LE(host.formatPool().stats().allocations - blocks, 1) << where;
                    const bool last = k == at.calls, wideFormat = f < Fam::RDate && !byte;
                    const std::string stars(size_t(widthFor(*row, f)), '*');
                    // The first block of formatPool is the locale block.
                    if (at.name == "formatPool allocation" && k == 1 && wideFormat) {
                        EXPECT_EQ(std::tie(o.status, o.text), std::tuple(blockFailure(n, f), stars)) << where;
                    }
                    if (at.name == "localeTextTable" && wideFormat) {
                        EXPECT_EQ(std::tie(o.status, o.text), std::tuple(blockFailure(n, f) ? kHostFault : 0, stars)) << where;
                    }
                    // An unset option and an option that can't be read are the same.
                    if (at.name == "readOption") { EXPECT_EQ(std::tie(o.status, o.text), std::tie(clean.status, clean.text)) << where; }
                    // The byte entry's own transcoding is the last, and its failure is the call's.
                    if (at.name == "transcode" && byte && last && clean.status == 0) { EXPECT_EQ(o.status, kHostFault) << where; }
                    // The host's text can't be trusted: stars, or a percent field without its decoration.
                    if (at.name == "formatNumber" && wideFormat && renderedNumber(n)) {
                        EXPECT_EQ(std::tie(o.status, o.text), std::tuple(0, stars)) << where;
                    }
                    if (at.name == "formatNumber" && wideFormat && (n == "NLPCTN" || n == "NLPCTP")) {
                        EXPECT_TRUE(o.status == 0 && o.text.find_first_of("%()-") == std::string::npos) << where << ": " << o.text;
                    }
                    // A number that can't be parsed reads as missing; only the locale
                    // number readers say so.
                    if (at.name == "parseDouble" && last && (f == Fam::RNumber || f == Fam::RCurrency)) {
                        EXPECT_EQ(std::tie(o.status, o.text), std::tuple(f == Fam::RNumber ? 1 : 0, std::to_string(ZV_MISSING_BITS))) << where;
                    }
                }
        }
    }
}

} // namespace
