// Building and tearing down the instance: what it holds, what a failure
// reports, and that every failure gives back all it took, in order.
#include <array>

#include <gtest/gtest.h>

#include <cstring>
#include <tuple>

#include "frame/frame.hpp"
#include "zvhost.hpp"

namespace {

// Everything the host handed out for a build has come back.
void expectNothingHeld(zvhost::Host &host, const std::string &what) {
    const auto &n = host.counters();
    EXPECT_EQ(n.poolsCreated, n.poolsDestroyed) << what;
    EXPECT_EQ(n.transcodersCreated, n.transcodersReleased) << what;
    EXPECT_EQ(n.localesOpened, n.localesReleased) << what;
    for (zvhost::Pool *p : host.createdPools()) { EXPECT_TRUE(p->destroyed()) << what << " " << p->name(); }
    for (auto &j : host.journals())
        if (j.name == u"zvregional Jnl") { EXPECT_EQ(j.releases, 1) << what; }
}

// (What else the instance holds, the teardown below releases by name.)
TEST(Build, TheInstanceReportsItsVersions) {
    zvhost::Host host;
    ExtensionInstance *in = host.loadModule();
    ASSERT_NE(in, nullptr);
    std::array<int64_t, 3> v{};
    EXPECT_EQ(in->versionCurrent(in, &v[0], &v[1], &v[2]), 0);
    EXPECT_EQ(v, (std::array<int64_t, 3>{6, 1, 1}));
    EXPECT_EQ(in->versionBase(in, &v[0], &v[1], &v[2]), 0);
    EXPECT_EQ(v, (std::array<int64_t, 3>{6, 0, 0}));
}

TEST(Build, TheAnchorWordTakesTheLaterAnchorAndTheBuildRecordHas26Words) {
    HostAnchor *const saved = zv::hostAnchor;
    HostAnchor first{}, second{};
    EXPECT_EQ(zvextent(&first), 0);
    EXPECT_EQ(zv::hostAnchor, &first);
    int64_t major = 0, minor = 0;
    EXPECT_EQ(zvextver(&second, &major, &minor), 0);
    EXPECT_EQ(std::tuple(major, minor), std::tuple(6, 1));
    EXPECT_EQ(zv::hostAnchor, &second);
    zv::hostAnchor = saved;

    uint64_t words[27];
    std::fill(std::begin(words), std::end(words), 0xABABABABABABABABull);
    zvvercn1(words);
    EXPECT_EQ(words[26], 0xABABABABABABABABull); // 208 bytes, not one more
    for (int i = 0; i < 18; ++i)
        if (i != 3) { EXPECT_GT(std::strlen(reinterpret_cast<const char *>(words[i])), 0u) << i; }
    EXPECT_GT(words[3], 1700000000u); // seconds since 1970 of a recent build
    for (int i = 18; i < 26; ++i) { EXPECT_EQ(words[i], 0u) << i; }
}

// A missing pool or instance block is reported to the error journal, when
// there is one; a factory that fails is not reported. Each failure unwinds.
TEST(Build, FailuresReportAndUnwind) {
    struct Case {
        int64_t zvhost::Faults::*fault;
        int64_t at;
        bool journal, reported;
        std::vector<std::string> events;
    } const cases[] = {
        {&zvhost::Faults::failCreatePool, 1, true, true, {}},
        {&zvhost::Faults::newPoolFailAt, 1, true, true, {"poolDestroy zvregional pool"}},
        {&zvhost::Faults::newPoolFailAt, 1, false, false, {"poolDestroy zvregional pool"}},
        {&zvhost::Faults::failCreateTranscoder, 1, true, false,
         {"journalRelease zvregional Jnl", "poolDestroy zvregional pool"}},
        {&zvhost::Faults::failCreateTranscoder, 2, true, false,
         {"journalRelease zvregional Jnl", "transcoderRelease 62>25", "poolDestroy zvregional pool"}},
        {&zvhost::Faults::failOpenLocale, 1, true, false,
         {"journalRelease zvregional Jnl", "transcoderRelease 62>25", "transcoderRelease 25>25",
          "poolDestroy zvregional pool"}}};
    for (const Case &k : cases) {
        zvhost::Host host;
        host.faults().*k.fault = k.at;
        zvextent(host.anchor());
        EXPECT_EQ(zvlocfmt(host.anchor(), k.journal ? host.errorJournal() : nullptr), nullptr);
        const auto &lines = host.errorJournalRecord().lines;
        ASSERT_EQ(lines.size(), k.reported ? 1u : 0u) << k.events.size();
        if (k.reported) { EXPECT_EQ(std::tuple(lines[0].level, lines[0].status), std::tuple(4, ZV_NO_MEMORY)); }
        EXPECT_EQ(host.events(), k.events);
        expectNothingHeld(host, std::to_string(k.events.size()));
    }
}

TEST(Build, ANullJournalIsNoFailureAndWithoutNlsThereIsNoInstance) {
    zvhost::Host host;
    host.faults().failCreateJournal = 1;
    ExtensionInstance *in = host.loadModule();
    ASSERT_NE(in, nullptr);
    EXPECT_EQ(in->journal, nullptr);
    zvhost::HostConfig config;
    config.withNls = false;
    zvhost::Host bare(config);
    EXPECT_EQ(bare.loadModule(), nullptr);
    expectNothingHeld(bare, "without NLS");
}

// The build takes exactly one block from its pool (a failed first one is a
// case above): failing the second doesn't stop it, and it all comes back.
TEST(Build, TheBuildTakesOneBlock) {
    zvhost::Host host;
    host.faults().newPoolFailAt = 2;
    ASSERT_NE(host.loadModule(), nullptr);
    host.unloadModule();
    expectNothingHeld(host, "after unloading");
}

// The journal, closed first when the host opened it; the two transcoders; the
// default locale; the monetary record, when there is one; the pool last.
TEST(Build, TeardownReleasesInOrder) {
    for (bool used : {false, true}) {
        zvhost::Host host;
        ExtensionInstance *in = host.loadModule();
        ASSERT_NE(in, nullptr);
        if (used) {
            in->journalOpen = 1;
            in->monetaryRecord = in->pool->ops->poolAlloc(in->pool, 64, 0);
        }
        const size_t before = host.events().size();
        host.unloadModule();
        std::vector<std::string> want = {"journalRelease zvregional Jnl", "transcoderRelease 62>25",
                                         "transcoderRelease 25>25", "localeRelease en_US",
                                         "poolDestroy zvregional pool"};
        if (used) want.insert(want.begin(), "journalClose zvregional Jnl");
        if (used) want.insert(want.end() - 1, "poolFree zvregional pool");
        EXPECT_EQ(std::vector<std::string>(host.events().begin() + long(before), host.events().end()), want);
    }
}

} // namespace
