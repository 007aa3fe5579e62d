// The host's kernel services as the module meets them: zeroed blocks, options, clock, formatText,
// character services and time zones against the C library and ICU.
#include <gtest/gtest.h>
#include <unicode/gregocal.h>
#include <unicode/timezone.h>
#include <unicode/uchar.h>

#include <chrono>
#include <random>

#include "zvhost.hpp"

namespace {

// Blocks asked for zeroed come zeroed: the locale block relies on it.
TEST(Services, ZeroedBlocks) {
    zvhost::Host host;
    HostPool *p = host.formatPool().raw();
    auto *z = static_cast<unsigned char *>(p->ops->poolAlloc(p, 70000, ZV_ALLOC_ZEROED));
    EXPECT_EQ(std::count(z, z + 70000, 0), 70000);
    p->ops->poolFree(p, z);
}

TEST(Services, OptionsAndClock) {
    zvhost::Host host;
    HostAnchor *a = host.anchor();
    const std::u16string name = u"ZV_NAME_YEARCUTOFF";
    int64_t value = 1234, size = 8;
    auto read = [&](int64_t length) { return a->ops->readOption(a, name.data(), length, 3, &value, &size); };
    EXPECT_EQ(read(int64_t(name.size())), zvhost::kOptionNotSet);
    EXPECT_EQ(value, 1234) << "an unset option leaves the value";
    host.setOption("ZV_NAME_YEARCUTOFF", -1920);
    EXPECT_EQ(read(int64_t(name.size())), 0);
    EXPECT_EQ(value, -1920);
    EXPECT_EQ(read(7), zvhost::kOptionNotSet) << "a prefix names another option";
    host.clearOption("ZV_NAME_YEARCUTOFF");
    EXPECT_EQ(read(int64_t(name.size())), zvhost::kOptionNotSet);

    double clock[2] = {-1, -1};
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    ASSERT_EQ(a->ops->readClock(a, 16, clock, 0x10800000), 0);
    EXPECT_NEAR(clock[0], double(std::chrono::duration_cast<std::chrono::seconds>(now).count()) + 315619200.0, 5.0);
    EXPECT_EQ(clock[1], 0.0);
    host.setClock(2025000000.25, 3600);
    ASSERT_EQ(a->ops->readClock(a, 16, clock, 0x10800000), 0);
    EXPECT_EQ(clock[0], 2025000000.25);
    EXPECT_EQ(clock[1], 3600.0);
}

// %i, %u and %x with flags and widths, %c and %s, against snprintf.
TEST(Services, FormatTextAgreesWithPrintf) {
    zvhost::Host host;
    HostAnchor *a = host.anchor();
    std::mt19937_64 rng(99);
    static const char16_t word[] = u"Jan";
    for (int i = 0; i < 3000; ++i) {
        int64_t v = i % 3 ? int64_t(rng()) : int64_t(rng() % 2000) - 1000;
        const std::string flag = std::string("0-").substr(i % 3, i % 3 < 2 ? 1 : 0);
        const std::string width = i % 5 ? std::to_string(rng() % 24) : "";
        const char conv = "iuxXcs"[i % 6];
        std::string c = "<%" + flag + width + (conv == 'i' ? "lld" : conv == 'u' ? "llu" : conv == 'x' ? "llx" : "llX");
        if (conv == 'c') v = 0x41 + int64_t(rng() % 26), c = "<%" + width + "c";
        if (conv == 's') v = int64_t(reinterpret_cast<intptr_t>(word)), c = "<%" + width + "s";
        const std::string ours = "<%" + flag.substr(0, conv == 'c' || conv == 's' ? 0 : 1) + width + conv + ">%%";
        char expected[64];
        if (conv == 's') std::snprintf(expected, sizeof expected, (c + ">%%").c_str(), "Jan");
        else std::snprintf(expected, sizeof expected, (c + ">%%").c_str(), (long long)v);
        const std::u16string format(ours.begin(), ours.end());
        char16_t out[64];
        int64_t produced = 0;
        ASSERT_EQ(a->ops->formatText(a, nullptr, format.data(), int64_t(format.size()), out, 64, &produced, 0, &v), 0);
        ASSERT_EQ(std::string(out, out + produced), expected) << ours << " " << v;
    }
    char16_t out[4];
    int64_t produced = 0, v = 123456;
    EXPECT_EQ(a->ops->formatText(a, nullptr, u"%i", 2, out, 4, &produced, 0, &v), ZV_TARGET_TOO_SMALL);
    EXPECT_EQ(std::u16string(out, size_t(produced)), u"1234");
}

// Classes and simple case mappings are ICU's over the whole code space.
TEST(Services, CharacterServicesFollowIcu) {
    zvhost::Host host;
    NlsServices *nls = host.nls();
    const int8_t order[30] = {U_UPPERCASE_LETTER, U_LOWERCASE_LETTER, U_TITLECASE_LETTER, U_NON_SPACING_MARK,
                              U_COMBINING_SPACING_MARK, U_ENCLOSING_MARK, U_DECIMAL_DIGIT_NUMBER, U_LETTER_NUMBER,
                              U_OTHER_NUMBER, U_SPACE_SEPARATOR, U_LINE_SEPARATOR, U_PARAGRAPH_SEPARATOR,
                              U_CONTROL_CHAR, U_FORMAT_CHAR, U_SURROGATE, U_PRIVATE_USE_CHAR, U_UNASSIGNED,
                              U_MODIFIER_LETTER, U_OTHER_LETTER, U_CONNECTOR_PUNCTUATION, U_DASH_PUNCTUATION,
                              U_START_PUNCTUATION, U_END_PUNCTUATION, U_INITIAL_PUNCTUATION, U_FINAL_PUNCTUATION,
                              U_OTHER_PUNCTUATION, U_MATH_SYMBOL, U_CURRENCY_SYMBOL, U_MODIFIER_SYMBOL, U_OTHER_SYMBOL};
    for (uint32_t c = 0; c <= 0x10FFFF; c += (c < 0x3000 ? 1 : 97)) {
        const int bit = int(std::find(order, order + 30, int8_t(u_charType(UChar32(c)))) - order);
        ASSERT_LT(bit, 30);
        EXPECT_NE(nls->ops->charClass(nls, c, 1u << bit), 0u) << std::hex << c;
        EXPECT_EQ(nls->ops->charClass(nls, c, ~(1u << bit)), 0u) << std::hex << c;
        EXPECT_EQ(nls->ops->charUpper(nls, c, 1), uint32_t(u_toupper(UChar32(c)))) << std::hex << c;
        EXPECT_EQ(nls->ops->charLower(nls, c, 1), uint32_t(u_tolower(UChar32(c)))) << std::hex << c;
    }
    EXPECT_NE(host.anchor()->ops->loadModule(host.anchor(), "zvchrtab", 8, 0), nullptr);
    EXPECT_EQ(host.anchor()->ops->loadModule(host.anchor(), "zvchrtax", 8, 0), nullptr);
}

// Offsets for local second counts, every 15 minutes around the changes of a
// year, against ICU's Calendar reading the same wall time.
TEST(Services, TimeZoneOffsetsFollowIcuCalendar) {
    zvhost::Host host;
    for (const char *zone : {"America/New_York", "Europe/Berlin", "Australia/Lord_Howe", "Asia/Kolkata"}) {
        HostTimeZone *tz = host.timeZone(zone);
        ASSERT_NE(tz, nullptr) << zone;
        UErrorCode err = U_ZERO_ERROR;
        icu::GregorianCalendar cal(icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(zone)), err);
        icu::GregorianCalendar utc(icu::TimeZone::createTimeZone("UTC"), err);
        for (int year : {1975, 2024})
            for (int month = 0; month < 12; ++month)
                for (int day : {1, 2, 3, 4, 5, 6, 7, 8, 25, 26, 27, 28, 29, 30, 31})
                    for (int minute = 0; minute < 24 * 60; minute += 15) {
                        cal.clear();
                        cal.set(year, month, day, minute / 60, minute % 60, 0);
                        if (cal.get(UCAL_MONTH, err) != month) continue;
                        const double offset = (cal.get(UCAL_ZONE_OFFSET, err) + cal.get(UCAL_DST_OFFSET, err)) / 1000.0;
                        utc.clear();
                        utc.set(year, month, day, minute / 60, minute % 60, 0);
                        const double local = utc.getTime(err) / 1000.0 + 315619200.0;
                        ASSERT_EQ(tz->ops->timeZoneOffset(tz, local, 0), offset) << zone << " " << year << "-"
                                                                                 << month + 1 << "-" << day << " " << minute;
                    }
    }
    EXPECT_EQ(host.timeZone("Mars/Olympus_Mons"), nullptr);
    EXPECT_TRUE(host.setTimeZone("Europe/Berlin"));
    EXPECT_EQ(host.services()->timeZone, host.timeZone("Europe/Berlin"));
}

// ISO dates as day counts, against counting days one by one (the module's
// calendar has no 29 February in 4000 and 8000).
TEST(Values, DatesCountDaysFrom1960) {
    auto leap = [](int y) { return y % 4 == 0 && (y % 100 != 0 || y % 400 == 0) && y % 4000 != 0; };
    const int monthDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    int64_t count = -1;
    for (int y = 1959; y >= 1582; --y) count -= 365 + leap(y);
    for (int y = 1582; y <= 9999; ++y)
        for (int m = 1; m <= 12; ++m) {
            const int days = monthDays[m - 1] + (m == 2 && leap(y));
            char text[32];
            std::snprintf(text, sizeof text, "%04d-%02d-%02d", y, m, days);
            count += days;
            ASSERT_EQ(zvhost::parseValue(text), double(count)) << text;
            std::snprintf(text, sizeof text, "%04d-%02d-%02dT12:00:01.5", y, m, days);
            ASSERT_EQ(zvhost::parseValue(text), double(count) * 86400 + 43201.5) << text;
            std::snprintf(text, sizeof text, "%04d-%02d-%02d", y, m, days + 1);
            ASSERT_FALSE(zvhost::parseValue(text)) << text;
        }
    for (const char *bad : {"", "2024-13-01", "2024-3-5", "2024-03-05T24:00", "12abc", "..", ".1A"})
        EXPECT_FALSE(zvhost::parseValue(bad)) << bad;
    for (char m : std::string("._AZ"))
        EXPECT_EQ(zvhost::missingMark(*zvhost::parseValue(m == '.' ? "." : std::string(".") + m)), m);
}

} // namespace
