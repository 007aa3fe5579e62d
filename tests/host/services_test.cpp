// The reference host's own services: pools, journals, factories and their
// faults, options, the clock, formatText, character services, time zones.
#include <gtest/gtest.h>
#include <unicode/calendar.h>
#include <unicode/gregocal.h>
#include <unicode/timezone.h>
#include <unicode/uchar.h>

#include <bit>
#include <chrono>
#include <cmath>
#include <cstring>
#include <random>
#include <set>

#include "zvhost.hpp"

namespace {

HostPool *newPool(zvhost::Host &host, const char *name) {
    const uint64_t descriptor[3] = {0, 0, 0};
    return host.anchor()->ops->createPool(host.anchor(), descriptor, nullptr, name);
}

TEST(Pools, CountBlocksBytesAndPeak) {
    zvhost::Host host;
    HostPool *p = newPool(host, "counted");
    ASSERT_NE(p, nullptr);
    zvhost::Pool *pool = host.createdPools().back();
    EXPECT_EQ(pool->raw(), p);
    EXPECT_EQ(pool->name(), "counted");
    void *a = p->ops->poolAlloc(p, 100, 0);
    void *b = p->ops->poolAlloc(p, 50, ZV_ALLOC_ZEROED);
    ASSERT_TRUE(a && b);
    auto s = pool->stats();
    EXPECT_EQ(s.liveBlocks, 2);
    EXPECT_EQ(s.liveBytes, 150);
    EXPECT_EQ(s.peakBytes, 150);
    EXPECT_EQ(s.allocations, 2);
    p->ops->poolFree(p, a);
    void *c = p->ops->poolAlloc(p, 10, 0);
    s = pool->stats();
    EXPECT_EQ(s.liveBlocks, 2);
    EXPECT_EQ(s.liveBytes, 60);
    EXPECT_EQ(s.peakBytes, 150);
    EXPECT_EQ(s.frees, 1);
    p->ops->poolFree(p, nullptr); // harmless
    p->ops->poolFree(p, a);       // freed before: counted, not crashed
    int local = 0;
    p->ops->poolFree(p, &local); // never handed out
    s = pool->stats();
    EXPECT_EQ(s.badFrees, 2);
    EXPECT_EQ(s.liveBlocks, 2);
    p->ops->poolFree(p, b);
    p->ops->poolFree(p, c);
    EXPECT_EQ(pool->stats().liveBlocks, 0);
    EXPECT_EQ(pool->stats().liveBytes, 0);
}

TEST(Pools, ZeroFlagZeroesAndOtherBlocksAreNot) {
    zvhost::Host host;
    HostPool *p = newPool(host, "z");
    for (uint64_t size : {1u, 7u, 64u, 4096u, 70000u}) {
        auto *z = static_cast<unsigned char *>(p->ops->poolAlloc(p, size, ZV_ALLOC_ZEROED));
        auto *n = static_cast<unsigned char *>(p->ops->poolAlloc(p, size, 0));
        ASSERT_TRUE(z && n);
        size_t zeros = 0, nonzero = 0;
        for (uint64_t i = 0; i < size; ++i) {
            zeros += z[i] == 0;
            nonzero += n[i] != 0;
        }
        EXPECT_EQ(zeros, size);
        EXPECT_EQ(nonzero, size) << "an unzeroed block must not pass for a zeroed one";
    }
    p->ops->poolDestroy(p);
}

TEST(Pools, FaultKnobs) {
    zvhost::Host host;
    HostPool *p = newPool(host, "f");
    zvhost::Pool *pool = host.createdPools().back();
    pool->failAt(3);
    std::vector<bool> got;
    for (int i = 0; i < 5; ++i) got.push_back(p->ops->poolAlloc(p, 8, 0) != nullptr);
    EXPECT_EQ(got, (std::vector<bool>{true, true, false, true, true}));
    EXPECT_EQ(pool->stats().failures, 1);
    pool->failFrom(2);
    got.clear();
    for (int i = 0; i < 4; ++i) got.push_back(p->ops->poolAlloc(p, 8, 0) != nullptr);
    EXPECT_EQ(got, (std::vector<bool>{true, false, false, false}));
    pool->failFrom(0);
    EXPECT_NE(p->ops->poolAlloc(p, 8, 0), nullptr);
    EXPECT_EQ(pool->stats().failures, 4);
    EXPECT_EQ(pool->stats().allocations, 6);
}

TEST(Pools, DestroyFreesEverythingAndStaysReadable) {
    zvhost::Host host;
    HostPool *p = newPool(host, "d");
    for (int i = 0; i < 5; ++i) p->ops->poolAlloc(p, 32, 0);
    EXPECT_EQ(host.counters().poolsCreated, 1);
    p->ops->poolDestroy(p);
    zvhost::Pool *pool = host.createdPools().back();
    EXPECT_TRUE(pool->destroyed());
    EXPECT_EQ(pool->stats().liveBlocks, 0);
    EXPECT_EQ(pool->stats().freedByDestroy, 5);
    EXPECT_EQ(host.counters().poolsDestroyed, 1);
    p->ops->poolDestroy(p); // twice: counted once
    EXPECT_EQ(host.counters().poolsDestroyed, 1);
    EXPECT_EQ(p->ops->poolAlloc(p, 8, 0), nullptr);
}

TEST(Pools, ReleaseSinceFreesOnlyLaterBlocks) {
    zvhost::Host host;
    zvhost::Pool &pool = host.formatPool();
    HostPool *p = pool.raw();
    void *early = p->ops->poolAlloc(p, 8, 0);
    const int64_t mark = pool.serial();
    p->ops->poolAlloc(p, 8, 0);
    void *gone = p->ops->poolAlloc(p, 8, 0);
    p->ops->poolFree(p, gone);
    p->ops->poolAlloc(p, 8, 0);
    EXPECT_EQ(pool.releaseSince(mark), 2);
    EXPECT_EQ(pool.stats().liveBlocks, 1);
    p->ops->poolFree(p, early);
    EXPECT_EQ(pool.stats().badFrees, 0);
}

// Faults count the calls after the setting, 1-based, and fire once.
TEST(Factories, FaultsNameTheNthCall) {
    zvhost::Host host;
    host.faults().failCreatePool = 2;
    EXPECT_NE(newPool(host, "a"), nullptr);
    EXPECT_EQ(newPool(host, "b"), nullptr);
    EXPECT_NE(newPool(host, "c"), nullptr);
    EXPECT_EQ(host.counters().poolsCreated, 2);

    host.faults().newPoolFailAt = 2;
    HostPool *p = newPool(host, "d");
    EXPECT_NE(p->ops->poolAlloc(p, 1, 0), nullptr);
    EXPECT_EQ(p->ops->poolAlloc(p, 1, 0), nullptr);
    EXPECT_NE(p->ops->poolAlloc(p, 1, 0), nullptr);

    NlsServices *nls = host.nls();
    ASSERT_NE(nls, nullptr);
    host.faults().failCreateTranscoder = 1;
    EXPECT_EQ(nls->ops->createTranscoder(nls, 62, 25, 0, 0), nullptr);
    HostTranscoder *t = nls->ops->createTranscoder(nls, 62, 25, 0, 0);
    ASSERT_NE(t, nullptr);
    EXPECT_EQ(t->sourceEncodingId, 62u);
    EXPECT_EQ(t->encodingId, 25u);
    HostTranscoder *u = nls->ops->transcoderForEncoding(nls, *zvhost::encodingIdOf("Shift_JIS"), 0, 0);
    ASSERT_NE(u, nullptr);
    EXPECT_EQ(u->sourceEncodingId, *zvhost::encodingIdOf("sjis")); // the way back to UTF-16
    EXPECT_EQ(u->encodingId, 25u);
    EXPECT_EQ(nls->ops->transcoderForEncoding(nls, 12345, 0, 0), nullptr);
    EXPECT_EQ(host.counters().transcodersCreated, 2);
    t->ops->transcoderRelease(t);
    EXPECT_EQ(host.counters().transcodersReleased, 1);
    // u is left for the host to free.

    host.faults().failOpenLocale = 1;
    EXPECT_EQ(nls->ops->openLocale(nls, u"en_US", 5), nullptr);
    HostLocale *l = nls->ops->openLocale(nls, u"en_US", 5);
    ASSERT_NE(l, nullptr);
    EXPECT_EQ(nls->ops->openLocale(nls, u"xx_NOWHERE_at_all", 17), nullptr);
    EXPECT_EQ(host.counters().localesOpened, 1);
    l->ops->localeRelease(l);
    EXPECT_EQ(host.counters().localesReleased, 1);

    host.faults().failCreateJournal = 1;
    EXPECT_EQ(host.anchor()->ops->createJournal(host.anchor(), nullptr, 0, u"j1"), nullptr);
    EXPECT_NE(host.anchor()->ops->createJournal(host.anchor(), nullptr, 0, u"j2"), nullptr);
    EXPECT_EQ(host.counters().journalsCreated, 1);
}

TEST(Journals, KeepTheirLines) {
    zvhost::Host host;
    HostJournal *j = host.anchor()->ops->createJournal(host.anchor(), nullptr, 0, u"zvregional Jnl");
    ASSERT_NE(j, nullptr);
    const int64_t extra[2] = {7, -8};
    j->ops->logStatus(j, 4, int32_t(0x803fc002), nullptr, 0);
    j->ops->logStatus(j, 2, 17, extra, 2);
    j->ops->journalClose(j);
    j->ops->journalRelease(j);
    HostJournal *e = host.errorJournal();
    e->ops->logStatus(e, 4, 5, nullptr, 3); // count without values: no values
    const auto all = host.journals();
    ASSERT_EQ(all.size(), 2u);
    const zvhost::JournalRecord &r = all[1];
    EXPECT_EQ(r.name, u"zvregional Jnl");
    ASSERT_EQ(r.lines.size(), 2u);
    EXPECT_EQ(r.lines[0].level, 4);
    EXPECT_EQ(r.lines[0].status, int32_t(0x803fc002));
    EXPECT_TRUE(r.lines[0].values.empty());
    EXPECT_EQ(r.lines[1].values, (std::vector<int64_t>{7, -8}));
    EXPECT_EQ(r.closes, 1);
    EXPECT_EQ(r.releases, 1);
    ASSERT_EQ(host.errorJournalRecord().lines.size(), 1u);
    EXPECT_EQ(host.errorJournalRecord().lines[0].status, 5);
}

TEST(Options, SetReadAndUnset) {
    zvhost::Host host;
    HostAnchor *a = host.anchor();
    const std::u16string name = u"ZV_NAME_YEARCUTOFF";
    int64_t value = 1234, size = 8;
    EXPECT_NE(a->ops->readOption(a, name.data(), int64_t(name.size()), 3, &value, &size), 0);
    EXPECT_EQ(value, 1234) << "unset leaves the value";
    host.setOption("ZV_NAME_YEARCUTOFF", 1920);
    EXPECT_EQ(a->ops->readOption(a, name.data(), int64_t(name.size()), 3, &value, &size), 0);
    EXPECT_EQ(value, 1920);
    EXPECT_EQ(size, 8);
    // The length counts: a prefix of the name is another option.
    value = 5;
    EXPECT_EQ(a->ops->readOption(a, name.data(), 7, 3, &value, &size), zvhost::kOptionNotSet);
    EXPECT_EQ(value, 5);
    EXPECT_EQ(a->ops->readOption(a, name.data(), int64_t(name.size()), 1, &value, &size), zvhost::kBadRequest);
    host.setOption("ZV_NAME_YEARCUTOFF", -7);
    EXPECT_EQ(a->ops->readOption(a, name.data(), int64_t(name.size()), 3, &value, &size), 0);
    EXPECT_EQ(value, -7);
    host.clearOption("ZV_NAME_YEARCUTOFF");
    EXPECT_EQ(a->ops->readOption(a, name.data(), int64_t(name.size()), 3, &value, &size), zvhost::kOptionNotSet);
    EXPECT_EQ(host.counters().optionReads, 6);
}

TEST(Clock, RealByDefaultFixedOnRequest) {
    zvhost::Host host;
    HostAnchor *a = host.anchor();
    double clock[2] = {-1, -1};
    const double unixNow =
        double(std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch())
                   .count());
    ASSERT_EQ(a->ops->readClock(a, 16, clock, 0x10800000), 0);
    EXPECT_NEAR(clock[0], unixNow + 315619200.0, 5.0);
    EXPECT_EQ(clock[1], 0.0);
    host.setClock(2025000000.25, 3600);
    ASSERT_EQ(a->ops->readClock(a, 16, clock, 0x10800000), 0);
    EXPECT_EQ(clock[0], 2025000000.25);
    EXPECT_EQ(clock[1], 3600.0);
    host.useSystemClock();
    ASSERT_EQ(a->ops->readClock(a, 16, clock, 0x10800000), 0);
    EXPECT_NEAR(clock[0], unixNow + 315619200.0, 5.0);
    EXPECT_EQ(a->ops->readClock(a, 8, clock, 0x10800000), zvhost::kBadRequest);
    EXPECT_EQ(host.counters().clockReads, 3);
}

struct TextCase {
    std::u16string format;
    std::vector<int64_t> values;
    int64_t capacity;
    std::u16string expected;
    int32_t status;
};

class FormatText : public ::testing::TestWithParam<TextCase> {};

const char16_t kWord[] = u"Jan";

TEST_P(FormatText, Writes) {
    const TextCase &c = GetParam();
    zvhost::Host host;
    std::vector<char16_t> out(size_t(c.capacity) + 8, u'#');
    int64_t produced = -1;
    std::vector<int64_t> values = c.values;
    for (int64_t &v : values)
        if (v == -999) v = int64_t(reinterpret_cast<intptr_t>(kWord));
    const int32_t s = host.anchor()->ops->formatText(host.anchor(), nullptr, c.format.data(),
                                                     int64_t(c.format.size()), out.data(), c.capacity, &produced,
                                                     0, values.data());
    EXPECT_EQ(s, c.status);
    EXPECT_EQ(std::u16string(out.data(), size_t(produced)), c.expected);
    for (size_t i = size_t(produced); i < out.size(); ++i) EXPECT_EQ(out[i], u'#');
}

INSTANTIATE_TEST_SUITE_P(
    Cases, FormatText,
    ::testing::Values(TextCase{u"%i", {42}, 10, u"42", 0}, TextCase{u"%d/%i", {-3, 7}, 10, u"-3/7", 0},
                      TextCase{u"%02i:%02i", {5, 7}, 10, u"05:07", 0},
                      TextCase{u"[%5i]", {-42}, 10, u"[  -42]", 0}, TextCase{u"[%-4i]", {9}, 10, u"[9   ]", 0},
                      TextCase{u"%05i", {-42}, 10, u"-0042", 0}, TextCase{u"%u", {-1}, 30, u"18446744073709551615", 0},
                      TextCase{u"%x %X", {255, 48879}, 10, u"ff BEEF", 0}, TextCase{u"%c%c", {0x41, 0xE9}, 10, u"A\u00E9", 0},
                      TextCase{u"%c", {0x1F600}, 10, u"\U0001F600", 0}, TextCase{u"%s.", {-999}, 10, u"Jan.", 0},
                      TextCase{u"100%%", {}, 10, u"100%", 0}, TextCase{u"%q", {}, 10, u"%q", 0},
                      TextCase{u"abc%", {}, 10, u"abc%", 0}, TextCase{u"%i%i", {12345, 678}, 6, u"123456", ZV_TARGET_TOO_SMALL},
                      TextCase{u"hello", {}, 0, u"", ZV_TARGET_TOO_SMALL}, TextCase{u"", {}, 0, u"", 0},
                      TextCase{u"%i", {INT64_MIN}, 30, u"-9223372036854775808", 0}));

// charClass against u_charType over a sample of the whole code space.
TEST(Characters, ClassesFollowIcu) {
    zvhost::Host host;
    NlsServices *nls = host.nls();
    const int8_t order[30] = {U_UPPERCASE_LETTER,    U_LOWERCASE_LETTER,   U_TITLECASE_LETTER,    U_NON_SPACING_MARK,
                              U_COMBINING_SPACING_MARK, U_ENCLOSING_MARK,   U_DECIMAL_DIGIT_NUMBER, U_LETTER_NUMBER,
                              U_OTHER_NUMBER,        U_SPACE_SEPARATOR,    U_LINE_SEPARATOR,      U_PARAGRAPH_SEPARATOR,
                              U_CONTROL_CHAR,        U_FORMAT_CHAR,        U_SURROGATE,           U_PRIVATE_USE_CHAR,
                              U_UNASSIGNED,          U_MODIFIER_LETTER,    U_OTHER_LETTER,        U_CONNECTOR_PUNCTUATION,
                              U_DASH_PUNCTUATION,    U_START_PUNCTUATION,  U_END_PUNCTUATION,     U_INITIAL_PUNCTUATION,
                              U_FINAL_PUNCTUATION,   U_OTHER_PUNCTUATION,  U_MATH_SYMBOL,         U_CURRENCY_SYMBOL,
                              U_MODIFIER_SYMBOL,     U_OTHER_SYMBOL};
    int64_t calls = 0;
    for (uint32_t c = 0; c <= 0x10FFFF; c += (c < 0x3000 ? 1 : 37)) {
        const int8_t type = int8_t(u_charType(UChar32(c)));
        int bit = -1;
        for (int b = 0; b < 30; ++b)
            if (order[b] == type) bit = b;
        ASSERT_GE(bit, 0);
        EXPECT_NE(nls->ops->charClass(nls, c, 1u << bit), 0) << std::hex << c;
        EXPECT_EQ(nls->ops->charClass(nls, c, ~(1u << bit)), 0) << std::hex << c;
        EXPECT_EQ(nls->ops->charUpper(nls, c, 1), uint32_t(u_toupper(UChar32(c))));
        EXPECT_EQ(nls->ops->charLower(nls, c, 1), uint32_t(u_tolower(UChar32(c))));
        calls += 4;
    }
    EXPECT_EQ(host.counters().charServiceCalls, calls);
    EXPECT_EQ(nls->ops->charClass(nls, 0x110000, ~0u), 0);
    // A few by hand.
    EXPECT_NE(nls->ops->charClass(nls, U'A', 1u << 0), 0);
    EXPECT_NE(nls->ops->charClass(nls, U'\u01C5', 1u << 2), 0); // Dž, title case
    EXPECT_NE(nls->ops->charClass(nls, U'\u00A0', 1u << 9), 0);
    EXPECT_NE(nls->ops->charClass(nls, U'\u20AC', 1u << 27), 0);
    EXPECT_EQ(nls->ops->charUpper(nls, U'\u00DF', 1), uint32_t(U'\u00DF')); // simple mapping only
    EXPECT_EQ(nls->ops->charLower(nls, U'\u0130', 1), uint32_t(U'i'));
}

TEST(Characters, ModuleLoadOnlyForZvchrtab) {
    zvhost::Host host;
    HostAnchor *a = host.anchor();
    void *h = a->ops->loadModule(a, "zvchrtab", 8, 0);
    EXPECT_NE(h, nullptr);
    EXPECT_EQ(a->ops->loadModule(a, "zvchrtab", 8, 0), h);
    EXPECT_EQ(a->ops->loadModule(a, "zvchrtax", 8, 0), nullptr);
    EXPECT_EQ(a->ops->loadModule(a, "zvchrtab", 7, 0), nullptr);
    EXPECT_EQ(a->ops->loadModule(a, nullptr, 8, 0), nullptr);
    EXPECT_EQ(host.counters().charModuleLoads, 2);
    EXPECT_EQ(host.nls()->owner, a);
    zvhost::HostConfig without;
    without.withNls = false;
    zvhost::Host bare(without);
    EXPECT_EQ(bare.anchor()->nlsServices, nullptr);
    EXPECT_EQ(bare.nls(), nullptr);
}

TEST(Services, HoldPoolZoneAndAnEmptyList) {
    zvhost::Host host;
    HostServices *s = host.services();
    EXPECT_EQ(s->formatPool, host.formatPool().raw());
    ASSERT_NE(s->extensionList, nullptr);
    EXPECT_EQ(s->extensionList[0], nullptr);
    ASSERT_NE(s->timeZone, nullptr);
    EXPECT_EQ(s->timeZone->ops->timeZoneOffset(s->timeZone, 2e9, 0), 0.0);
    EXPECT_NE(host.anchor()->numberFormatter, nullptr);
    EXPECT_EQ(host.anchor()->hostExponentMode, 0);
}

// Zone offsets for local second counts, against ICU's Calendar reading the
// same wall time (its defaults for skipped and repeated wall times).
TEST(Zones, OffsetsForLocalTimesFollowIcuCalendar) {
    zvhost::Host host;
    struct Zone {
        const char *name;
        int year;
    };
    const Zone zones[] = {{"America/New_York", 2024}, {"Europe/Berlin", 2024}, {"Australia/Lord_Howe", 2024},
                          {"America/New_York", 1975}, {"Asia/Kolkata", 2024}, {"UTC", 2024}};
    for (const Zone &z : zones) {
        HostTimeZone *tz = host.timeZone(z.name);
        ASSERT_NE(tz, nullptr) << z.name;
        UErrorCode err = U_ZERO_ERROR;
        icu::GregorianCalendar cal(icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(z.name)), err);
        ASSERT_TRUE(U_SUCCESS(err));
        // Every 15 minutes through the days around each change of the year.
        for (int month = 0; month < 12; ++month)
            for (int day = 1; day <= 31; day += 1)
                for (int minute = 0; minute < 24 * 60; minute += 15) {
                    if (day > 9 && day < 25) continue; // changes fall near either end of a month
                    cal.clear();
                    cal.set(z.year, month, day, minute / 60, minute % 60, 0);
                    if (cal.get(UCAL_MONTH, err) != month) continue;
                    const int32_t expected = cal.get(UCAL_ZONE_OFFSET, err) + cal.get(UCAL_DST_OFFSET, err);
                    ASSERT_TRUE(U_SUCCESS(err));
                    // The local second count from 1960.
                    icu::GregorianCalendar utc(icu::TimeZone::createTimeZone("UTC"), err);
                    utc.clear();
                    utc.set(z.year, month, day, minute / 60, minute % 60, 0);
                    const double local = utc.getTime(err) / 1000.0 + 315619200.0;
                    EXPECT_EQ(tz->ops->timeZoneOffset(tz, local, 0), expected / 1000.0)
                        << z.name << " " << z.year << "-" << month + 1 << "-" << day << " " << minute;
                }
    }
}

TEST(Zones, KnownValuesAndUnknownNames) {
    zvhost::Host host;
    auto at = [](int y, int m, int d, int hh, int mm) {
        UErrorCode err = U_ZERO_ERROR;
        icu::GregorianCalendar utc(icu::TimeZone::createTimeZone("UTC"), err);
        utc.clear();
        utc.set(y, m - 1, d, hh, mm, 0);
        return utc.getTime(err) / 1000.0 + 315619200.0;
    };
    HostTimeZone *ny = host.timeZone("America/New_York");
    HostTimeZone *lh = host.timeZone("Australia/Lord_Howe");
    EXPECT_EQ(ny->ops->timeZoneOffset(ny, at(2024, 1, 15, 12, 0), 0), -18000.0);
    EXPECT_EQ(ny->ops->timeZoneOffset(ny, at(2024, 7, 15, 12, 0), 0), -14400.0);
    EXPECT_EQ(ny->ops->timeZoneOffset(ny, at(2024, 3, 10, 2, 30), 0), -14400.0); // in the gap: read as 3:30 EDT
    EXPECT_EQ(ny->ops->timeZoneOffset(ny, at(2024, 11, 3, 1, 30), 0), -18000.0); // repeated: the later one
    EXPECT_EQ(lh->ops->timeZoneOffset(lh, at(2024, 1, 15, 12, 0), 0), 39600.0);  // +11:00 in summer
    EXPECT_EQ(lh->ops->timeZoneOffset(lh, at(2024, 7, 15, 12, 0), 0), 37800.0);  // +10:30 in winter
    EXPECT_EQ(host.timeZone("Mars/Olympus_Mons"), nullptr);
    EXPECT_EQ(host.timeZone(""), nullptr);
    EXPECT_FALSE(host.setTimeZone("Nowhere/Else"));
    EXPECT_TRUE(host.setTimeZone("Europe/Berlin"));
    EXPECT_EQ(host.services()->timeZone, host.timeZone("Europe/Berlin"));
    EXPECT_EQ(ny->ops->timeZoneOffset(ny, std::nan(""), 0), 0.0);
}

std::string recordOf(const uint8_t *table, int item) {
    const uint8_t *r = table + ZV_LOCALE_TABLE_OFFSET + item * ZV_LOCALE_RECORD_SIZE;
    const size_t n = size_t(r[0] | (r[1] << 8));
    return std::string(reinterpret_cast<const char *>(r + 2), std::min<size_t>(n, 160));
}

TEST(Locales, TablesWithItemOverridesCachedByNameAndItems) {
    zvhost::Host host;
    HostLocale *plain = host.locale("de_DE");
    ASSERT_NE(plain, nullptr);
    EXPECT_EQ(host.locale("de_DE"), plain);
    const uint8_t *table = nullptr;
    ASSERT_EQ(plain->ops->localeTextTable(plain, 0, &table), 0);
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(recordOf(table, 172), ",");
    EXPECT_EQ(recordOf(table, 59), "Jan.");

    const std::string longText(200, 'x');
    HostLocale *changed = host.locale("de_DE", {{172, "."}, {59, "J<U00E4>n"}, {2, longText}, {188, ""}});
    ASSERT_NE(changed, nullptr);
    EXPECT_NE(changed, plain);
    EXPECT_EQ(host.locale("de_DE", {{172, "."}, {59, "J<U00E4>n"}, {2, longText}, {188, ""}}), changed);
    const uint8_t *t2 = nullptr;
    ASSERT_EQ(changed->ops->localeTextTable(changed, 0, &t2), 0);
    EXPECT_EQ(recordOf(t2, 172), ".");
    EXPECT_EQ(recordOf(t2, 59), "J<U00E4>n");
    EXPECT_EQ(recordOf(t2, 2), std::string(160, 'x'));
    EXPECT_EQ(recordOf(t2, 60), recordOf(table, 60)) << "items not named stay as CLDR has them";
    EXPECT_EQ(recordOf(table, 172), ",") << "the plain locale is not touched";

    for (const char *bad : {"", "!!", "xx_NOWHERE_at_all", "en_US@@@"}) EXPECT_EQ(host.locale(bad), nullptr) << bad;
    EXPECT_NE(host.locale("fr-FR"), nullptr);
    EXPECT_EQ(plain->ops->localeTextTable(plain, 0, nullptr), zvhost::kBadRequest);
}

TEST(Locales, NumberServicesAnswerThroughTheLocale) {
    zvhost::Host host;
    HostLocale *l = host.locale("en_US");
    ZvChar out[16];
    int64_t produced = 16;
    ASSERT_EQ(l->ops->formatNumber(l, 1234.5, 8, 2, ZV_NUMBER_PLAIN, out, 16, &produced), 0);
    EXPECT_EQ(std::u16string(out, size_t(produced)), u" 1234.50");
    HostLocale *grouped = host.anchor()->numberFormatter;
    ASSERT_EQ(grouped->ops->formatNumber(grouped, 1234567.25, 14, 1, ZV_NUMBER_GROUPED, out, 16, &produced), 0);
    EXPECT_EQ(std::u16string(out, size_t(produced)), u"   1,234,567.3");
    double v = 0;
    int64_t used = 0;
    const std::u16string text = u" -1.5E3 ";
    ASSERT_EQ(l->ops->parseDouble(l, text.data(), int64_t(text.size()), &v, &used), 0);
    EXPECT_EQ(v, -1500.0);
    int64_t i = 0;
    ASSERT_EQ(l->ops->parseInteger(l, u"42", 2, 0, &i, &used), 0);
    EXPECT_EQ(i, 42);
    const int64_t releasedBefore = host.counters().localesReleased;
    l->ops->localeRelease(l);
    EXPECT_EQ(host.counters().localesReleased, releasedBefore + 1);
    EXPECT_EQ(host.locale("en_US"), l) << "a release leaves the host's cached locale";
}

TEST(Locales, CurrentLocaleIsTheConfiguredOne) {
    zvhost::HostConfig config;
    config.currentLocale = "fr_FR";
    zvhost::Host host(config);
    NlsServices *nls = host.nls();
    EXPECT_EQ(nls->ops->currentLocale(nls), host.locale("fr_FR"));
    HostAnchor *a = host.anchor();
    EXPECT_EQ(a->ops->decimalExponent(a, 9.9996, 4), 1);
    EXPECT_EQ(a->ops->decimalExponent(a, 9.9994, 4), 0);
    EXPECT_EQ(a->ops->decimalExponent(a, 0.00123, 3), -3);
}

// %i, %u and %x with flags and widths against the C library's printf.
TEST(FormatTextProperty, AgreesWithPrintf) {
    zvhost::Host host;
    HostAnchor *a = host.anchor();
    std::mt19937_64 rng(99);
    const char *flags[] = {"", "0", "-"};
    for (int i = 0; i < 3000; ++i) {
        int64_t v = int64_t(rng());
        if (i % 3 == 0) v %= 1000;
        const char *flag = flags[i % 3];
        const int width = int(rng() % 24);
        const char conv = "iux"[i % 3];
        const std::string spec = std::string("<%") + flag + (width ? std::to_string(width) : "") + conv + ">";
        char expected[64];
        const std::string cspec = std::string("<%") + flag + (width ? std::to_string(width) : "") +
                                  (conv == 'i' ? "lld>" : conv == 'u' ? "llu>" : "llx>");
        if (conv == 'i') std::snprintf(expected, sizeof expected, cspec.c_str(), (long long)v);
        else std::snprintf(expected, sizeof expected, cspec.c_str(), (unsigned long long)v);
        const std::u16string format(spec.begin(), spec.end());
        char16_t out[64];
        int64_t produced = 0;
        ASSERT_EQ(a->ops->formatText(a, nullptr, format.data(), int64_t(format.size()), out, 64, &produced, 0, &v), 0);
        const std::string got(out, out + produced);
        ASSERT_EQ(got, expected) << spec << " " << v;
    }
}

} // namespace
