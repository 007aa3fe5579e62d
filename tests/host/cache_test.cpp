// A long stream of requests, each with items of its own, as a coprocess
// serves them: the host's caches and pools stay within their bounds, and a
// locale that is held outlives any number of newer ones.
#include <gtest/gtest.h>

#include "zvhost.hpp"

namespace {

TEST(Caches, DistinctOverridesKeepTheHostFlat) {
    zvhost::Host host;
    ASSERT_NE(host.loadModule(), nullptr);
    const FormatTableRow &row = *zvhost::findRow(host.instance()->formatTable, "NLDATE");
    zvhost::Session session(host);
    const zvhost::LocaleHold held(host, "de_DE", {{28, "%d.%m.%Y held"}});
    zvhost::CallSpec spec;
    spec.locale = "de_DE", spec.width = 40;
    size_t kept = 0;
    int64_t live = 0;
    for (int i = 0; i < 20000; ++i) {
        spec.items = {{28, "%d.%m.%Y #" + std::to_string(i)}};
        const zvhost::FormatResult r = session.format(row, spec, 23440);
        const std::string want = "05.03.2024 #" + std::to_string(i);
        ASSERT_EQ(r.utf8.substr(0, want.size()), want);
        if (i == 999) kept = host.localesKept(), live = host.formatPool().stats().liveBlocks;
    }
    EXPECT_LE(host.localesKept(), 128u);
    EXPECT_EQ(host.localesKept(), kept);
    EXPECT_EQ(host.formatPool().stats().liveBlocks, live);
    // The held locale is still the one asked for.
    spec.items = {{28, "%d.%m.%Y held"}};
    EXPECT_EQ(host.locale("de_DE", spec.items), held.get());
    EXPECT_EQ(session.format(row, spec, 23440).utf8.substr(0, 15), "05.03.2024 held");
    // The events log keeps its first 65,536 entries, however many releases follow.
    NlsServices *nls = host.nls();
    for (int i = 0; i < 70000; ++i) {
        HostTranscoder *t = nls->ops->transcoderForEncoding(nls, ZV_ENCODING_UTF16, 0, 0);
        t->ops->transcoderRelease(t);
    }
    EXPECT_EQ(host.events().size(), size_t(1) << 16);
}

} // namespace
