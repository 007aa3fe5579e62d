// Building and tearing down the instance: what it holds, what a failure
// reports, and that every failure gives back all it took.
#include "fixture.hpp"
#include "frame/table.hpp"

#include <functional>

namespace {

struct Restore {
    HostAnchor *saved = zv::hostAnchor;
    ~Restore() { zv::hostAnchor = saved; }
};

const zvhost::JournalRecord *journalNamed(const std::vector<zvhost::JournalRecord> &all,
                                          const std::u16string &name) {
    for (auto &j : all)
        if (j.name == name) return &j;
    return nullptr;
}

// Everything the host handed out for a build has come back.
void expectNothingHeld(zvhost::Host &host, const std::string &what) {
    const auto &n = host.counters();
    EXPECT_EQ(n.poolsCreated, n.poolsDestroyed) << what;
    EXPECT_EQ(n.transcodersCreated, n.transcodersReleased) << what;
    EXPECT_EQ(n.localesOpened, n.localesReleased) << what;
    for (zvhost::Pool *p : host.createdPools()) {
        EXPECT_TRUE(p->destroyed()) << what << " pool " << p->name();
    }
    for (auto &j : host.journals()) {
        if (j.name == u"zvregional Jnl") {
            EXPECT_EQ(j.releases, 1) << what;
        }
    }
}

} // namespace

TEST(Build, TheInstanceHoldsWhatTheHostReads) {
    Restore restore;
    zvhost::Host host;
    ExtensionInstance *in = host.loadModule();
    ASSERT_NE(in, nullptr);
    EXPECT_EQ(zv::hostAnchor, host.anchor());
    EXPECT_EQ(in->anchor, host.anchor());
    EXPECT_EQ(in->formatTable, zv::formatTable());
    EXPECT_EQ(std::memcmp(in->extensionName, "zvlocfmt", 8), 0);
    ASSERT_FALSE(host.createdPools().empty());
    EXPECT_EQ(in->pool, host.createdPools().front()->raw());
    EXPECT_EQ(host.createdPools().front()->name(), "zvregional pool");
    EXPECT_EQ(in->journalOpen, 0u);
    EXPECT_EQ(in->monetaryRecord, nullptr);
    ASSERT_NE(in->journal, nullptr);
    const auto journals = host.journals();
    EXPECT_NE(journalNamed(journals, u"zvregional Jnl"), nullptr);
    ASSERT_NE(in->wideFromLocaleText, nullptr);
    EXPECT_EQ(in->wideFromLocaleText->sourceEncodingId, 62u);
    EXPECT_EQ(in->wideFromLocaleText->encodingId, 25u);
    ASSERT_NE(in->wideToWide, nullptr);
    EXPECT_EQ(in->wideToWide->sourceEncodingId, 25u);
    EXPECT_EQ(in->wideToWide->encodingId, 25u);
    EXPECT_NE(in->defaultLocale, nullptr);
    // The instance came zeroed from the extension's pool.
    for (const LocaleItem &item : in->itemSnapshot) {
        ASSERT_EQ(item.length, 0);
        ASSERT_EQ(item.maxWidth, 0u);
    }
    int64_t a = 0, b = 0, c = 0;
    EXPECT_EQ(in->versionCurrent(in, &a, &b, &c), 0);
    EXPECT_EQ((std::array<int64_t, 3>{a, b, c}), (std::array<int64_t, 3>{6, 1, 1}));
    EXPECT_EQ(in->versionBase(in, &a, &b, &c), 0);
    EXPECT_EQ((std::array<int64_t, 3>{a, b, c}), (std::array<int64_t, 3>{6, 0, 0}));
    EXPECT_TRUE(host.errorJournalRecord().lines.empty());
    host.unloadModule();
    expectNothingHeld(host, "after destroy");
}

TEST(Build, TheAnchorWordTakesTheLaterAnchor) {
    Restore restore;
    HostAnchor first{}, second{};
    EXPECT_EQ(zvextent(&first), 0);
    EXPECT_EQ(zv::hostAnchor, &first);
    int64_t major = 0, minor = 0;
    EXPECT_EQ(zvextver(&second, &major, &minor), 0);
    EXPECT_EQ(major, 6);
    EXPECT_EQ(minor, 1);
    EXPECT_EQ(zv::hostAnchor, &second);
}

TEST(Build, BuildRecordHas26Words) {
    uint64_t words[27];
    std::fill(std::begin(words), std::end(words), 0xABABABABABABABABull);
    zvvercn1(words);
    EXPECT_EQ(words[26], 0xABABABABABABABABull); // 208 bytes, not one more
    for (int i = 0; i < 18; ++i) {
        if (i == 3) continue;
        ASSERT_NE(words[i], 0u) << i;
        EXPECT_GT(std::strlen(reinterpret_cast<const char *>(words[i])), 0u) << i;
    }
    EXPECT_GT(words[3], 1700000000u); // seconds since 1970 of a recent build
    for (int i = 18; i < 26; ++i) EXPECT_EQ(words[i], 0u) << i;
    EXPECT_STREQ(reinterpret_cast<const char *>(words[0]), "6.1.1");
}

TEST(Build, NoPoolIsReportedToTheErrorJournal) {
    Restore restore;
    zvhost::Host host;
    host.faults().failCreatePool = 1;
    EXPECT_EQ(host.loadModule(), nullptr);
    const auto &lines = host.errorJournalRecord().lines;
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].level, 4);
    EXPECT_EQ(lines[0].status, ZV_NO_MEMORY);
    EXPECT_EQ(host.instance(), nullptr);
}

TEST(Build, WithoutAnErrorJournalNothingIsReported) {
    Restore restore;
    zvhost::Host host;
    host.faults().failCreatePool = 1;
    zvextent(host.anchor());
    EXPECT_EQ(zvlocfmt(host.anchor(), nullptr), nullptr);
    host.faults().newPoolFailAt = 1;
    EXPECT_EQ(zvlocfmt(host.anchor(), nullptr), nullptr);
    EXPECT_TRUE(host.errorJournalRecord().lines.empty());
    expectNothingHeld(host, "no journal");
}

TEST(Build, NoInstanceMemoryIsReportedAndThePoolDestroyed) {
    Restore restore;
    zvhost::Host host;
    host.faults().newPoolFailAt = 1;
    EXPECT_EQ(host.loadModule(), nullptr);
    const auto &lines = host.errorJournalRecord().lines;
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].level, 4);
    EXPECT_EQ(lines[0].status, ZV_NO_MEMORY);
    ASSERT_EQ(host.createdPools().size(), 1u);
    EXPECT_TRUE(host.createdPools()[0]->destroyed());
    EXPECT_EQ(host.counters().journalsCreated, 0); // the journal comes after the instance
    expectNothingHeld(host, "instance");
}

struct FactoryFault {
    const char *what;
    std::function<void(zvhost::Faults &)> set;
    int64_t transcodersMade;
    bool localeTried;
};

class BuildUnwinds : public ::testing::TestWithParam<FactoryFault> {};

TEST_P(BuildUnwinds, ReleasingAllAndReportingNothing) {
    Restore restore;
    const FactoryFault &f = GetParam();
    zvhost::Host host;
    f.set(host.faults());
    EXPECT_EQ(host.loadModule(), nullptr) << f.what;
    EXPECT_TRUE(host.errorJournalRecord().lines.empty()) << f.what;
    EXPECT_EQ(host.counters().transcodersCreated, f.transcodersMade) << f.what;
    const auto journals = host.journals();
    const auto *j = journalNamed(journals, u"zvregional Jnl");
    ASSERT_NE(j, nullptr);
    EXPECT_EQ(j->closes, 0);
    EXPECT_EQ(j->releases, 1);
    EXPECT_TRUE(j->lines.empty());
    expectNothingHeld(host, f.what);
    for (zvhost::Pool *p : host.createdPools()) EXPECT_EQ(p->stats().liveBlocks, 0) << f.what;
}

INSTANTIATE_TEST_SUITE_P(
    Frame, BuildUnwinds,
    ::testing::Values(
        FactoryFault{"first transcoder", [](zvhost::Faults &f) { f.failCreateTranscoder = 1; }, 0, false},
        FactoryFault{"second transcoder", [](zvhost::Faults &f) { f.failCreateTranscoder = 2; }, 1, false},
        FactoryFault{"default locale", [](zvhost::Faults &f) { f.failOpenLocale = 1; }, 2, true}),
    [](const auto &info) {
        std::string n = info.param.what;
        for (char &c : n)
            if (c == ' ') c = '_';
        return n;
    });

TEST(Build, ANullJournalIsNoFailure) {
    Restore restore;
    zvhost::Host host;
    host.faults().failCreateJournal = 1;
    ExtensionInstance *in = host.loadModule();
    ASSERT_NE(in, nullptr);
    EXPECT_EQ(in->journal, nullptr);
    host.unloadModule();
    expectNothingHeld(host, "null journal");
}

// Fail each allocation of the build in turn, then each factory call: every
// failed build leaves nothing behind, and the first build that gets all it
// asks for succeeds.
TEST(Build, EveryFaultDuringTheBuildUnwindsCleanly) {
    Restore restore;
    int built = 0;
    for (int64_t n = 1; n <= 8 && !built; ++n) {
        zvhost::Host host;
        host.faults().newPoolFailAt = n;
        ExtensionInstance *in = host.loadModule();
        if (in) {
            built = int(n);
            host.unloadModule();
        }
        expectNothingHeld(host, "allocation " + std::to_string(n));
    }
    EXPECT_EQ(built, 2); // the build takes exactly one block from its pool
}

TEST(Build, DestroyClosesAnOpenJournalAndFreesTheMonetaryRecord) {
    Restore restore;
    zvhost::Host host;
    ExtensionInstance *in = host.loadModule();
    ASSERT_NE(in, nullptr);
    zvhost::Pool *pool = host.createdPools().front();
    in->journalOpen = 1;
    in->monetaryRecord = in->pool->ops->poolAlloc(in->pool, 512, ZV_ALLOC_ZEROED);
    ASSERT_NE(in->monetaryRecord, nullptr);
    const int64_t freesBefore = pool->stats().frees;
    host.unloadModule();
    EXPECT_EQ(pool->stats().frees, freesBefore + 1);
    EXPECT_TRUE(pool->destroyed());
    const auto journals = host.journals();
    const auto *j = journalNamed(journals, u"zvregional Jnl");
    ASSERT_NE(j, nullptr);
    EXPECT_EQ(j->closes, 1);
    EXPECT_EQ(j->releases, 1);
    expectNothingHeld(host, "destroy");
}

TEST(Build, DestroyWithoutAMonetaryRecordFreesNothingByHand) {
    Restore restore;
    zvhost::Host host;
    ASSERT_NE(host.loadModule(), nullptr);
    zvhost::Pool *pool = host.createdPools().front();
    host.unloadModule();
    EXPECT_EQ(pool->stats().frees, 0);
    EXPECT_TRUE(pool->destroyed());
    const auto journals = host.journals();
    const auto *j = journalNamed(journals, u"zvregional Jnl");
    ASSERT_NE(j, nullptr);
    EXPECT_EQ(j->closes, 0);
}

TEST(Build, NoNlsServicesMeansNoTranscodersAndNoInstance) {
    Restore restore;
    zvhost::HostConfig config;
    config.withNls = false;
    zvhost::Host host(config);
    EXPECT_EQ(host.loadModule(), nullptr);
    expectNothingHeld(host, "without NLS");
}

// The teardown releases in a fixed order: the journal (closed first when the
// host opened it), the two transcoders, the default locale, the monetary
// record, and last the pool with the instance in it.
TEST(Build, TeardownReleasesInOrder) {
    Restore restore;
    zvhost::Host host;
    ExtensionInstance *in = host.loadModule();
    ASSERT_NE(in, nullptr);
    in->journalOpen = 1;
    in->monetaryRecord = in->pool->ops->poolAlloc(in->pool, 64, 0);
    const size_t before = host.events().size();
    host.unloadModule();
    const std::vector<std::string> teardown(host.events().begin() + long(before), host.events().end());
    EXPECT_EQ(teardown, (std::vector<std::string>{"journalClose zvregional Jnl", "journalRelease zvregional Jnl",
                                                   "transcoderRelease 62>25", "transcoderRelease 25>25",
                                                   "localeRelease en_US", "poolFree zvregional pool",
                                                   "poolDestroy zvregional pool"}));
}

TEST(Build, AFailedBuildUnwindsInTheSameOrder) {
    Restore restore;
    zvhost::Host host;
    host.faults().failOpenLocale = 1;
    EXPECT_EQ(host.loadModule(), nullptr);
    EXPECT_EQ(host.events(), (std::vector<std::string>{"journalRelease zvregional Jnl", "transcoderRelease 62>25",
                                                       "transcoderRelease 25>25", "poolDestroy zvregional pool"}));
}
