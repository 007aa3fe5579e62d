// Text routines of the wide-text kit: finding, lengths, changing text in
// place and numbers, by tables of cases and against simple second
// implementations over random inputs.
#include <gtest/gtest.h>

#include <charconv>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "wide/wide.hpp"

namespace {

using std::u16string;
using namespace std::string_literals;

int64_t len(const u16string &s) { return static_cast<int64_t>(s.size()); }

// ---- finding ------------------------------------------------------------------

TEST(WideLength, Cases) {
    EXPECT_EQ(zv::wideLength(nullptr), 0);
    EXPECT_EQ(zv::wideLength(u""), 0);
    EXPECT_EQ(zv::wideLength(u"abc"), 3);
    const ZvChar embedded[] = {u'x', 0, u'y', 0};
    EXPECT_EQ(zv::wideLength(embedded), 1);
}

struct FindCharCase {
    const ZvChar *text;
    int64_t length;
    ZvChar c;
    int64_t expected;
};

TEST(FindChar, Table) {
    const FindCharCase cases[] = {
        {u"abcabc", 6, u'c', 2}, {u"abcabc", 6, u'a', 0}, {u"abcabc", 6, u'z', -1},
        {u"abcabc", 2, u'c', -1}, // not behind the length
        {u"abc", 0, u'a', -1},    {u"abc", -4, u'a', -1}, {nullptr, 5, u'a', -1},
        {u"a\0b", 3, 0, 1},
    };
    for (const auto &k : cases) EXPECT_EQ(zv::findChar(k.text, k.length, k.c), k.expected);
}

struct FindSubstringCase {
    const ZvChar *text;
    int64_t length;
    const ZvChar *pattern;
    int64_t patternLength;
    int64_t expected;
    const char *why;
};

TEST(FindSubstring, Table) {
    const FindSubstringCase cases[] = {
        {u"hello world", 11, u"world", 5, 6, "found"},
        {u"hello world", 11, u"o", 1, 4, "first of several"},
        {u"hello world", 11, u"worlds", 6, -1, "runs past the end"},
        {u"hello world", 10, u"world", 5, -1, "not behind the length"},
        {u"aaab", 4, u"aab", 3, 1, "restart after a partial match"},
        {u"abc", 3, u"abcd", 4, -1, "pattern longer than the text"},
        {u"abc", 3, u"", 0, 0, "empty pattern"},
        {nullptr, 0, u"x", 0, 0, "empty pattern before anything else"},
        {u"", 0, nullptr, -1, 0, "negative length with a null pattern"},
        {u"abc", 3, nullptr, -1, 0, "negative length with a null pattern"},
        {u"", 0, u"a", 1, -1, "empty text"},
        {nullptr, 3, u"a", 1, -1, "null text"},
        {u"xyzabc", 6, u"abc", -1, 3, "zero-ended pattern"},
        {u"abcabc", 6, u"cab", 3, 2, "middle"},
        {u"abcabc", 6, u"abcabc", 6, 0, "whole text"},
    };
    for (const auto &k : cases)
        EXPECT_EQ(zv::findSubstring(k.text, k.length, k.pattern, k.patternLength), k.expected)
            << k.why;
}

TEST(FindSubstring, AgreesWithStdFindOnRandomTexts) {
    std::mt19937 rng(7);
    for (int round = 0; round < 3000; ++round) {
        u16string text(rng() % 12, u'a'), pattern(1 + rng() % 4, u'a');
        for (auto &c : text) c = static_cast<char16_t>(u'a' + rng() % 3);
        for (auto &c : pattern) c = static_cast<char16_t>(u'a' + rng() % 3);
        const auto pos = text.find(pattern);
        const int64_t expected = pos == u16string::npos ? -1 : static_cast<int64_t>(pos);
        ASSERT_EQ(zv::findSubstring(text.data(), len(text), pattern.data(), len(pattern)), expected);
    }
}

struct FirstOtherCase {
    const ZvChar *text;
    int64_t length;
    ZvChar c;
    int64_t expected;
};

TEST(FirstOther, Table) {
    const FirstOtherCase cases[] = {
        {u"   x ", 5, u' ', 3}, {u"xxx", 3, u'x', -1}, {u"xxy", 2, u'x', -1},
        {u"abc", 3, u' ', 0},  {u"abc", 0, u'a', 0},  {nullptr, 4, u'a', 0},
    };
    for (const auto &k : cases) EXPECT_EQ(zv::firstOther(k.text, k.length, k.c), k.expected);
}

struct FirstNotInCase {
    const ZvChar *text;
    int64_t length;
    const ZvChar *set;
    int64_t setLength;
    int64_t expected;
};

TEST(FirstNotIn, Table) {
    const FirstNotInCase cases[] = {
        {u"0123x5", 6, u"0123456789", 10, 4},
        {u"0123", 4, u"0123456789", 10, -1},
        {u"", 0, u"0", 1, -1},      // empty text
        {u"abc", 3, u"", 0, 0},     // empty set
        {u"abc", 3, nullptr, 3, 0}, // no set
        {u" ,.a", 4, u" ,.", 3, 3},
        {u"aab", 3, u"ab", 1, 2},   // only the first setLength members count
    };
    for (const auto &k : cases)
        EXPECT_EQ(zv::firstNotIn(k.text, k.length, k.set, k.setLength), k.expected);
}

TEST(AllEqual, Table) {
    EXPECT_TRUE(zv::allEqual(u'*', u"***", 3));
    EXPECT_FALSE(zv::allEqual(u'*', u"**-", 3));
    EXPECT_TRUE(zv::allEqual(u'*', u"**-", 2));
    EXPECT_TRUE(zv::allEqual(u'*', u"", 0));
    EXPECT_TRUE(zv::allEqual(u'*', nullptr, 0));
}

// ---- lengths ------------------------------------------------------------------

struct TrimCase {
    u16string text;
    int mode;
    int64_t expected;
};

TEST(TrailingTrim, Table) {
    const TrimCase cases[] = {
        {u"ab  ", 0, 2},
        {u"    ", 0, 0},
        {u"", 0, 0},
        {u"ab\u00a0 ", 0, 3},
        {u"ab\u00a0 ", 2, 2},
        {u"ab\u3000\u2007\u205f\u202f\u1680\u2028\u2029 ", 2, 2},
        {u"ab\t", 2, 3}, // mode 2 keeps controls
        {u"ab\t\n\u0085 ", 1, 2},
        {u"ab\t\n\u0085 ", 7, 2},
        {u"ab\u200b", 1, 3}, // zero width space is not a fixed space
        {u"ab\u200b", 2, 3},
        {u" a b ", 0, 4},
    };
    for (const auto &k : cases) {
        EXPECT_EQ(zv::trailingTrimLength(k.text.data(), len(k.text), k.mode), k.expected)
            << "mode " << k.mode << " length " << k.text.size();
        if (k.mode == 0) {
            EXPECT_EQ(zv::lengthWithoutTrailingBlanks(k.text.data(), len(k.text)), k.expected);
        }
    }
    EXPECT_EQ(zv::lengthWithoutTrailingBlanks(nullptr, 5), 0);
    EXPECT_EQ(zv::lengthWithoutTrailingBlanks(u"a ", -1), 0);
}

TEST(Smaller, Table) {
    EXPECT_EQ(zv::smaller(3, 5), 3);
    EXPECT_EQ(zv::smaller(5, 3), 3);
    EXPECT_EQ(zv::smaller(-7, 0), -7);
    EXPECT_EQ(zv::smaller(INT32_MIN, INT32_MAX), INT32_MIN);
}

// ---- second implementations -------------------------------------------------------

// The buffer a fixed-size copyPadded leaves: the source cut to the size,
// blanks behind it.
u16string refCopyFixed(const u16string &source, size_t size) {
    u16string out = source.substr(0, std::min(source.size(), size));
    out.resize(size, u' ');
    return out;
}

struct Justified {
    u16string text;
    int64_t length;
    int64_t start;
};

Justified refJustify(const u16string &text, char16_t mode) {
    const size_t first = text.find_first_not_of(u' ');
    if (first == u16string::npos) return {text, 0, 0};
    const size_t last = text.find_last_not_of(u' ');
    const u16string content = text.substr(first, last - first + 1);
    const size_t n = text.size(), m = content.size();
    size_t before;
    switch (mode) {
    case u'L': case u'l': before = 0; break;
    case u'R': case u'r': before = n - m; break;
    case u'C': case u'c': before = (n - m) / 2; break; // the odd blank goes behind
    default: return {text, static_cast<int64_t>(m), static_cast<int64_t>(first)};
    }
    return {u16string(before, u' ') + content + u16string(n - m - before, u' '),
            static_cast<int64_t>(m), static_cast<int64_t>(before)};
}

u16string refRemove(const u16string &text, const u16string &set) {
    u16string out;
    for (char16_t c : text)
        if (set.find(c) == u16string::npos) out.push_back(c);
    return out;
}

u16string randomText(std::mt19937 &rng, size_t maxLength, const u16string &alphabet) {
    u16string s(rng() % (maxLength + 1), u' ');
    for (auto &c : s) c = alphabet[rng() % alphabet.size()];
    return s;
}

// ---- fillWide, copyPadded --------------------------------------------------------

TEST(FillWide, Cases) {
    u16string buffer = u"abcdef";
    zv::fillWide(buffer.data() + 1, u'*', 3);
    EXPECT_EQ(buffer, u"a***ef");
    zv::fillWide(buffer.data(), u'-', 0);
    zv::fillWide(buffer.data(), u'-', -2);
    zv::fillWide(nullptr, u'-', 4);
    EXPECT_EQ(buffer, u"a***ef");
}

struct CopyCase {
    const ZvChar *source;
    int64_t sourceLength;
    int64_t targetLength;
    u16string expected; // the whole target buffer of 8 units afterwards
    int64_t result;
    const char *why;
};

TEST(CopyPadded, Table) {
    const CopyCase cases[] = {
        {u"abc", 3, 6, u"abc   ##", 3, "padded with blanks"},
        {u"abcdefgh", 8, 5, u"abcde###", 5, "source longer than the target: full, no blank"},
        {u"abcde", 5, 5, u"abcde###", 5, "exact size"},
        {u"abc", 3, 0, u"########", 0, "empty target"},
        {nullptr, 3, 4, u"    ####", 0, "null source: all blank"},
        {u"abc", 3, -5, u"abc\0####"s, 3, "zero-ended target with room for 4"},
        {u"abcdef", 6, -5, u"abcd\0###"s, 4, "zero-ended target cut to its room"},
        {u"abc", 3, -1, u"\0#######"s, 0, "zero-ended target with no room"},
        {nullptr, 0, -4, u"\0#######"s, 0, "null source: empty zero-ended target"},
        {u"abc", 0, 3, u"   #####", 0, "empty source"},
    };
    for (const auto &k : cases) {
        u16string target(8, u'#');
        EXPECT_EQ(zv::copyPadded(k.source, k.sourceLength, target.data(), k.targetLength), k.result)
            << k.why;
        EXPECT_EQ(target, u16string(k.expected.data(), 8)) << k.why;
    }
}

TEST(CopyPadded, OverlappingSourceAndTarget) {
    u16string buffer = u"..abcdef";
    EXPECT_EQ(zv::copyPadded(buffer.data() + 2, 4, buffer.data(), 6), 4);
    EXPECT_EQ(buffer, u"abcd  ef");
    buffer = u"abcdef..";
    EXPECT_EQ(zv::copyPadded(buffer.data(), 4, buffer.data() + 2, 6), 4);
    EXPECT_EQ(buffer, u"ababcd  ");
}

TEST(CopyPadded, AgreesWithSecondImplementationOnRandomInputs) {
    std::mt19937 rng(11);
    for (int round = 0; round < 5000; ++round) {
        const u16string source = randomText(rng, 12, u"ab \u00e9");
        const size_t size = rng() % 14;
        const bool zeroEnded = rng() % 2;
        u16string target(16, u'#');
        const int64_t targetLength = zeroEnded ? -1 - static_cast<int64_t>(size) : static_cast<int64_t>(size);
        const int64_t result = zv::copyPadded(source.data(), len(source), target.data(), targetLength);
        const size_t copied = std::min(source.size(), size);
        ASSERT_EQ(result, static_cast<int64_t>(copied));
        u16string expected;
        if (zeroEnded) {
            expected = source.substr(0, copied);
            expected.push_back(0);
        } else {
            expected = refCopyFixed(source, size);
        }
        expected.resize(16, u'#'); // nothing written behind the target
        ASSERT_EQ(target, expected) << "round " << round;
    }
}

// ---- justify -----------------------------------------------------------------------

struct JustifyCase {
    u16string text;
    char16_t mode;
    u16string expected;
    int64_t length;
    int64_t start;
};

TEST(Justify, Table) {
    const JustifyCase cases[] = {
        {u"   abcd   ", u'C', u"   abcd   ", 4, 3},
        {u"abcd      ", u'c', u"   abcd   ", 4, 3},
        {u"abc       ", u'C', u"   abc    ", 3, 3}, // the odd blank behind
        {u"  a b  ", u'L', u"a b    ", 3, 0},
        {u"  a b  ", u'l', u"a b    ", 3, 0},
        {u"  a b  ", u'R', u"    a b", 3, 4},
        {u"  a b  ", u'r', u"    a b", 3, 4},
        {u"  a b  ", u'n', u"  a b  ", 3, 2}, // measure only
        {u"  a b  ", u'X', u"  a b  ", 3, 2},
        {u"abc", u'R', u"abc", 3, 0},
        {u"    ", u'R', u"    ", 0, 0},
        {u"", u'C', u"", 0, 0},
        {u"x", u'C', u"x", 1, 0},
        {u"x ", u'C', u"x ", 1, 0},
        {u" x", u'C', u"x ", 1, 0},
    };
    for (const auto &k : cases) {
        u16string text = k.text;
        int64_t length = -9, start = -9;
        zv::justify(text.data(), len(text), k.mode, &length, &start);
        EXPECT_EQ(text, k.expected) << char(k.mode) << " [" << k.text.size() << "]";
        EXPECT_EQ(length, k.length) << char(k.mode);
        EXPECT_EQ(start, k.start) << char(k.mode);
    }
}

TEST(Justify, NullOutPointersAndNullText) {
    u16string text = u"   ";
    zv::justify(text.data(), 3, u'L', nullptr, nullptr);
    EXPECT_EQ(text, u"   ");
    u16string other = u" ab ";
    zv::justify(other.data(), 4, u'R', nullptr, nullptr);
    EXPECT_EQ(other, u"  ab");
    int64_t length = -1, start = -1;
    zv::justify(nullptr, 5, u'C', &length, &start);
    EXPECT_EQ(length, 0);
    EXPECT_EQ(start, 0);
}

TEST(Justify, AgreesWithSecondImplementationOnRandomInputs) {
    std::mt19937 rng(13);
    const char16_t modes[] = {u'L', u'l', u'R', u'r', u'C', u'c', u'n', u'?'};
    for (int round = 0; round < 5000; ++round) {
        const u16string original = randomText(rng, 14, u"   ab");
        const char16_t mode = modes[rng() % 8];
        u16string text = original;
        int64_t length = -1, start = -1;
        zv::justify(text.data(), len(text), mode, &length, &start);
        const Justified expected = refJustify(original, mode);
        ASSERT_EQ(text, expected.text) << "round " << round;
        ASSERT_EQ(length, expected.length) << "round " << round;
        ASSERT_EQ(start, expected.start) << "round " << round;
        if (length > 0) {
            // the reported place holds the content
            ASSERT_NE(text[static_cast<size_t>(start)], u' ');
            ASSERT_NE(text[static_cast<size_t>(start + length - 1)], u' ');
        }
    }
}

// ---- removeCharacters ---------------------------------------------------------

TEST(RemoveCharacters, Table) {
    u16string text = u"a*b";
    EXPECT_EQ(zv::removeCharacters(text.data(), 3, u"*", 1), 2);
    EXPECT_EQ(text, u"ab ");

    text = u"1,234,567.8";
    EXPECT_EQ(zv::removeCharacters(text.data(), len(text), u",", -1), 9); // zero-ended set
    EXPECT_EQ(text, u"1234567.8  ");

    u16string zeroEnded = u"x-y-z\0##"s;
    EXPECT_EQ(zv::removeCharacters(zeroEnded.data(), -1, u"-", 1), 3);
    EXPECT_EQ(zeroEnded, u"xyz\0z\0##"s);

    text = u"abc";
    EXPECT_EQ(zv::removeCharacters(text.data(), 3, u"", 0), 3); // empty set
    EXPECT_EQ(text, u"abc");
    EXPECT_EQ(zv::removeCharacters(text.data(), 3, nullptr, 0), 3);
    EXPECT_EQ(zv::removeCharacters(text.data(), 0, u"a", 1), 0); // empty text
    EXPECT_EQ(text, u"abc");
    EXPECT_EQ(zv::removeCharacters(nullptr, 4, u"a", 1), 0);

    text = u"aaaa";
    EXPECT_EQ(zv::removeCharacters(text.data(), 4, u"ba", 2), 0);
    EXPECT_EQ(text, u"    ");
}

TEST(RemoveCharacters, AgreesWithSecondImplementationOnRandomInputs) {
    std::mt19937 rng(17);
    for (int round = 0; round < 5000; ++round) {
        const u16string original = randomText(rng, 12, u"ab*, \u00e9");
        const u16string set = randomText(rng, 3, u"*,\u00e9z");
        const u16string kept = refRemove(original, set);
        if (rng() % 2) {
            u16string text = original;
            const int64_t n = zv::removeCharacters(text.data(), len(text), set.data(), len(set));
            ASSERT_EQ(n, len(kept));
            ASSERT_EQ(text, kept + u16string(original.size() - kept.size(), u' '));
        } else {
            u16string text = original + u16string(1, 0) + u"##";
            u16string setZ = set + u16string(1, 0);
            const int64_t n = zv::removeCharacters(text.data(), -1, setZ.data(), -1);
            ASSERT_EQ(n, len(kept));
            ASSERT_EQ(text.substr(0, kept.size() + 1), kept + u16string(1, 0));
            ASSERT_EQ(text.substr(original.size()), u16string(1, 0) + u"##"); // nothing past the old zero
        }
    }
}

// ---- translateCharacters --------------------------------------------------------

TEST(TranslateCharacters, Table) {
    u16string text = u"1.234,5";
    zv::translateCharacters(text.data(), len(text), u",.", u".,", 2);
    EXPECT_EQ(text, u"1,234.5");

    text = u"abcab";
    zv::translateCharacters(text.data(), len(text), u"XYZ", u"aab", 3); // first hit in from
    EXPECT_EQ(text, u"XZcXZ");

    text = u"abc";
    zv::translateCharacters(text.data(), 0, u"X", u"a", 1);
    zv::translateCharacters(text.data(), -2, u"X", u"a", 1);
    zv::translateCharacters(text.data(), 3, u"X", u"a", 0);
    EXPECT_EQ(text, u"abc");
    zv::translateCharacters(text.data(), 2, u"bc", u"ab", 2);
    EXPECT_EQ(text, u"bcc"); // a -> b is not carried on to c
}

// ---- numbers ------------------------------------------------------------------------

struct DigitsCase {
    uint64_t value;
    int base;
    bool upper;
    u16string expected;
};

TEST(UnsignedToText, Table) {
    const DigitsCase cases[] = {
        {0, 10, true, u"0"},
        {0, 2, true, u"0"},
        {255, 16, true, u"FF"},
        {255, 16, false, u"ff"},
        {255, 2, true, u"11111111"},
        {255, 1, true, u"255"},  // below 2: base 10
        {255, -5, true, u"255"},
        {255, 17, true, u"FF"},  // above 16: base 16
        {255, 99, false, u"ff"},
        {UINT64_MAX, 10, true, u"18446744073709551615"},
        {UINT64_MAX, 16, true, u"FFFFFFFFFFFFFFFF"},
        {UINT64_MAX, 2, true, u16string(64, u'1')},
        {1000, 8, true, u"1750"},
        {35, 12, false, u"2b"},
    };
    for (const auto &k : cases) {
        u16string target(70, u'#');
        int64_t outLength = -1;
        EXPECT_EQ(zv::unsignedToText(k.value, k.base, k.upper, target.data(), 70, &outLength), 0);
        EXPECT_EQ(outLength, len(k.expected));
        EXPECT_EQ(target, k.expected + u16string(70 - k.expected.size(), u'#')); // no zero behind
    }
}

TEST(UnsignedToText, TooSmallTargetIsUntouched) {
    u16string target(4, u'#');
    int64_t outLength = -7;
    EXPECT_EQ(zv::unsignedToText(12345, 10, true, target.data(), 4, &outLength),
              static_cast<int32_t>(0x803fc0c9u));
    EXPECT_EQ(target, u"####");
    EXPECT_EQ(zv::unsignedToText(1234, 10, true, target.data(), 4, nullptr), 0);
    EXPECT_EQ(target, u"1234");
    EXPECT_EQ(zv::unsignedToText(0, 10, true, target.data(), 0, nullptr), zv::kDigitsDontFit);
    EXPECT_EQ(zv::unsignedToText(5, 10, true, nullptr, 4, nullptr), zv::kDigitsDontFit);
}

// Round trip and std::to_chars as a second implementation, bases 2..16.
TEST(UnsignedToText, AgreesWithToCharsAndRoundTrips) {
    std::mt19937_64 rng(19);
    for (int round = 0; round < 20000; ++round) {
        uint64_t value = rng();
        value >>= rng() % 64; // all magnitudes
        const int base = 2 + static_cast<int>(rng() % 15);
        const bool upper = rng() % 2;
        ZvChar target[64];
        int64_t n = 0;
        ASSERT_EQ(zv::unsignedToText(value, base, upper, target, 64, &n), 0);
        char expected[65];
        auto res = std::to_chars(expected, expected + 65, value, base);
        std::string text(expected, res.ptr);
        if (upper)
            for (auto &c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        ASSERT_EQ(n, static_cast<int64_t>(text.size()));
        uint64_t back = 0;
        for (int64_t i = 0; i < n; ++i) {
            ASSERT_EQ(target[i], static_cast<ZvChar>(text[static_cast<size_t>(i)]));
            const ZvChar c = target[i];
            const int d = c <= u'9' ? c - u'0' : (c | 0x20) - u'a' + 10;
            back = back * static_cast<uint64_t>(base) + static_cast<uint64_t>(d);
        }
        ASSERT_EQ(back, value);
        // One unit less does not fit and writes nothing.
        ZvChar small[64];
        std::fill(small, small + 64, u'#');
        ASSERT_EQ(zv::unsignedToText(value, base, upper, small, n - 1, nullptr), zv::kDigitsDontFit);
        ASSERT_EQ(small[0], u'#');
    }
}

struct ReadCase {
    u16string text;
    int64_t remaining;
    int32_t status;
    int64_t value;
    int32_t count;
    int64_t consumed;
};

TEST(ReadDigits, Table) {
    const ReadCase cases[] = {
        {u"123abc", 6, 0, 123, 3, 3},
        {u"123", 2, 0, 12, 2, 2}, // stops at the length
        {u"abc", 3, 1, 0, 0, 0},  // nothing read: cursor and length stay
        {u"", 0, 1, 0, 0, 0},
        {u"0007", 4, 0, 7, 4, 4},
        {u"\u0661\u0662", 2, 1, 0, 0, 0}, // only 0 to 9
        {u"9223372036854775807", 19, 0, INT64_MAX, 19, 19},
        {u"12345678901234567890123x", 24, 0, 1234567890123456789, 19, 23}, // later digits consumed
        {u"99999999999999999999", 20, 0, static_cast<int64_t>(9999999999999999999ull), 19, 20},
        {u"-5", 2, 1, 0, 0, 0},
    };
    for (const auto &k : cases) {
        const ZvChar *cursor = k.text.data();
        int64_t remaining = k.remaining;
        int64_t value = -1;
        int32_t count = -1;
        EXPECT_EQ(zv::readDigits(&cursor, &remaining, &value, &count), k.status) << k.text.size();
        EXPECT_EQ(value, k.value);
        EXPECT_EQ(count, k.count);
        EXPECT_EQ(cursor - k.text.data(), k.consumed);
        EXPECT_EQ(remaining, k.remaining - k.consumed);
    }
}

TEST(ReadDigits, CountIsOptionalAndValuesRoundTrip) {
    std::mt19937_64 rng(23);
    for (int round = 0; round < 5000; ++round) {
        const uint64_t v = rng() % 1000000000000000000ull;
        const std::string s = std::to_string(v);
        u16string text(s.begin(), s.end());
        text += u" tail";
        const ZvChar *cursor = text.data();
        int64_t remaining = len(text);
        int64_t value = 0;
        ASSERT_EQ(zv::readDigits(&cursor, &remaining, &value, nullptr), 0);
        ASSERT_EQ(static_cast<uint64_t>(value), v);
        ASSERT_EQ(*cursor, u' ');
        ASSERT_EQ(remaining, 5);
    }
}

} // namespace
