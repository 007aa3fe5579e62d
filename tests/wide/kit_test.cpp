// The text routines of the wide-text kit against std::u16string's own
// algorithms over random texts (fixed seeds). Every text sits at the front of
// a longer buffer, so a routine that looks behind the length shows.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <random>
#include <string>

#include "wide/wide.hpp"

namespace {

using S = std::u16string;
int64_t len(const S &s) { return int64_t(s.size()); }
int64_t at(size_t i) { return i == S::npos ? -1 : int64_t(i); }

// The blank, the other spaces the kit knows and their neighbours on both sides.
const S kSpaces = u"a \x08\x09\x0d\x0e\x1f\x84\x85\x86\xa0\xa1\x167f\x1680\x1681\x1fff\x2000\x200a"
                  u"\x200b\x2027\x2028\x2029\x202a\x202e\x202f\x2030\x205e\x205f\x2060\x2fff\x3000\x3001";

S randomText(std::mt19937 &rng, size_t maxLength, const S &alphabet) {
    S s(rng() % (maxLength + 1), u' ');
    for (char16_t &c : s) c = alphabet[rng() % alphabet.size()];
    return s;
}

TEST(Kit, FindingAgreesWithStdString) {
    std::mt19937 rng(1);
    for (int n = 0; n < 4000; ++n) {
        const S t = randomText(rng, 10, u" ab"), p = randomText(rng, 3, u" ab");
        const S set = randomText(rng, 3, u" ab"), buffer = t + u"ab b" + S(1, 0);
        const char16_t c = u" ab"[rng() % 3];
        const int64_t found = p.empty() ? 0 : at(t.find(p));
        ASSERT_EQ(zv::wideLength((t + S(1, 0) + u"ab").data()), len(t)) << n;
        ASSERT_EQ(zv::findChar(buffer.data(), len(t), c), at(t.find(c))) << n;
        ASSERT_EQ(zv::findSubstring(buffer.data(), len(t), p.data(), len(p)), found) << n;
        ASSERT_EQ(zv::findSubstring(buffer.data(), len(t), p.c_str(), -1), found) << n;
        ASSERT_EQ(zv::firstOther(buffer.data(), len(t), c), t.empty() ? 0 : at(t.find_first_not_of(c))) << n;
        ASSERT_EQ(zv::firstNotIn(buffer.data(), len(t), set.data(), len(set)), at(t.find_first_not_of(set))) << n;
        ASSERT_EQ(zv::allEqual(c, buffer.data(), len(t)), t.find_first_not_of(c) == S::npos) << n;
    }
    EXPECT_EQ(zv::wideLength(nullptr), 0);
    EXPECT_EQ(zv::findChar(nullptr, 3, u'a'), -1);
    EXPECT_EQ(zv::findChar(u"a", -1, u'a'), -1);
    EXPECT_EQ(zv::findSubstring(nullptr, 0, nullptr, 0), 0);
    EXPECT_EQ(zv::findSubstring(u"", 0, nullptr, -1), 0);
    EXPECT_EQ(zv::findSubstring(nullptr, 4, u"a", 1), -1);
    EXPECT_EQ(zv::firstOther(nullptr, 3, u'a'), 0);
    EXPECT_EQ(zv::firstNotIn(nullptr, 3, u"a", 1), -1);
    EXPECT_TRUE(zv::allEqual(u'a', nullptr, 3));
}

TEST(Kit, TrailingTrimAgreesWithStdString) {
    S mode2 = u" \xa0\x1680\x2028\x2029\x202f\x205f\x3000";
    for (char16_t c = 0x2000; c <= 0x200a; ++c) mode2 += c;
    const S fixed = mode2 + u"\x09\x0a\x0b\x0c\x0d\x85";
    std::mt19937 rng(2);
    for (int n = 0; n < 4000; ++n) {
        const S t = randomText(rng, 8, kSpaces), buffer = t + u"  ";
        const int64_t blanks = at(t.find_last_not_of(u' ')) + 1;
        ASSERT_EQ(zv::lengthWithoutTrailingBlanks(buffer.data(), len(t)), blanks) << n;
        ASSERT_EQ(zv::trailingTrimLength(buffer.data(), len(t), 0), blanks) << n;
        ASSERT_EQ(zv::trailingTrimLength(buffer.data(), len(t), 2), at(t.find_last_not_of(mode2)) + 1) << n;
        ASSERT_EQ(zv::trailingTrimLength(buffer.data(), len(t), 1 + 2 * (n % 3)),
                  at(t.find_last_not_of(fixed)) + 1) << n;
        const int32_t a = int32_t(rng() % 7) - 3, b = int32_t(rng() % 7) - 3;
        ASSERT_EQ(zv::smaller(a, b), std::min(a, b));
    }
    EXPECT_EQ(zv::trailingTrimLength(nullptr, 4, 2), 0);
}

TEST(Kit, FillAndCopyAgreeWithStdString) {
    std::mt19937 rng(3);
    for (int n = 0; n < 4000; ++n) {
        S buffer(24, u'#');
        const int64_t count = int64_t(rng() % 12) - 2;
        S expected = S(size_t(std::max<int64_t>(count, 0)), u'x') + buffer.substr(size_t(std::max<int64_t>(count, 0)));
        zv::fillWide(buffer.data(), u'x', count);
        ASSERT_EQ(buffer, expected) << n;

        // A source of its own, or one that overlaps the target on either side.
        buffer = u"0123456789abcdefghijklmnop";
        const S before = buffer;
        const size_t targetAt = 6, sourceAt = rng() % 3 == 0 ? 30 : rng() % 13;
        const S source = sourceAt == 30 ? randomText(rng, 10, u"xyz") : before.substr(sourceAt, rng() % 10);
        const ZvChar *from = sourceAt == 30 ? source.data() : buffer.data() + sourceAt;
        const bool null = rng() % 10 == 0;
        const int64_t targetLength = int64_t(rng() % 21) - 10;
        const size_t room = size_t(targetLength < 0 ? -1 - targetLength : targetLength);
        const S copied = null ? S() : source.substr(0, room);
        expected = before;
        if (targetLength < 0)
            expected.replace(targetAt, copied.size() + 1, copied + S(1, 0));
        else
            expected.replace(targetAt, room, copied + S(room - copied.size(), u' '));
        ASSERT_EQ(zv::copyPadded(null ? nullptr : from, len(source), buffer.data() + targetAt, targetLength),
                  len(copied)) << n;
        ASSERT_EQ(buffer, expected) << n;
    }
}

TEST(Kit, JustifyAgreesWithStdString) {
    std::mt19937 rng(4);
    for (int n = 0; n < 4000; ++n) {
        const S t = randomText(rng, 9, u"  ab");
        S buffer = t + u"  ab";
        const char16_t mode = u"LlRrCcn?"[rng() % 8];
        const size_t first = t.find_first_not_of(u' ');
        const size_t content = first == S::npos ? 0 : t.find_last_not_of(u' ') + 1 - first;
        size_t start = first == S::npos ? 0 : first;
        if (content > 0 && (mode == u'L' || mode == u'l')) start = 0;
        if (content > 0 && (mode == u'R' || mode == u'r')) start = t.size() - content;
        if (content > 0 && (mode == u'C' || mode == u'c')) start = (t.size() - content) / 2;
        const S expected = content == 0 ? t + u"  ab"
                                         : S(start, u' ') + t.substr(first, content) +
                                               S(t.size() - start - content, u' ') + u"  ab";
        int64_t outLength = -1, outStart = -1;
        zv::justify(buffer.data(), len(t), mode, &outLength, &outStart);
        ASSERT_EQ(buffer, expected) << n;
        ASSERT_EQ(outLength, int64_t(content)) << n;
        ASSERT_EQ(outStart, int64_t(start)) << n;
        zv::justify(buffer.data(), len(t), mode, nullptr, nullptr);
        ASSERT_EQ(buffer, expected) << n;
    }
}

TEST(Kit, RemoveAndTranslateAgreeWithStdString) {
    std::mt19937 rng(5);
    for (int n = 0; n < 4000; ++n) {
        const S t = randomText(rng, 9, u"a*b "), set = randomText(rng, 2, u"a*b ");
        const bool zeroEnded = n % 2, setZeroEnded = rng() % 2;
        S kept = t;
        std::erase_if(kept, [&](char16_t c) { return set.find(c) != S::npos; });
        S buffer = t + S(1, 0) + u"xy";
        S expected = zeroEnded ? kept + S(1, 0) + buffer.substr(kept.size() + 1) : kept + S(t.size() - kept.size(), u' ') + S(1, 0) + u"xy";
        ASSERT_EQ(zv::removeCharacters(buffer.data(), zeroEnded ? -1 : len(t), set.c_str(),
                                       setZeroEnded ? -1 : len(set)), len(kept)) << n;
        ASSERT_EQ(buffer, expected) << n;

        const S from = randomText(rng, 4, u"a*b "), to = S(u"XYZW").substr(0, from.size());
        buffer = t + u"a*b ";
        expected = buffer;
        for (size_t i = 0; i < t.size(); ++i)
            if (const size_t k = from.find(t[i]); k != S::npos) expected[i] = to[k];
        zv::translateCharacters(buffer.data(), len(t), to.data(), from.data(), len(from));
        ASSERT_EQ(buffer, expected) << n;
    }
}

TEST(Kit, UnsignedToTextAgreesWithToChars) {
    std::mt19937_64 rng(6);
    for (int n = 0; n < 4000; ++n) {
        const uint64_t value = n % 50 == 0 ? 0 : rng() >> (rng() % 64);
        const int base = int(rng() % 20);
        const bool upper = rng() % 2;
        const int64_t capacity = int64_t(rng() % 70);
        char digits[70];
        const char *end = std::to_chars(digits, digits + 70, value, base < 2 ? 10 : std::min(base, 16)).ptr;
        S expected, out(80, u'#');
        for (const char *p = digits; p != end; ++p) expected += char16_t(upper ? std::toupper(*p) : *p);
        int64_t produced = -1;
        const int32_t status = zv::unsignedToText(value, base, upper, out.data(), capacity, n % 7 ? &produced : nullptr);
        const bool fits = len(expected) <= capacity;
        ASSERT_EQ(status, fits ? 0 : zv::kDigitsDontFit) << n;
        ASSERT_EQ(out, fits ? expected + S(80 - expected.size(), u'#') : S(80, u'#')) << n;
        ASSERT_EQ(produced, fits && n % 7 ? len(expected) : -1) << n;
    }
}

TEST(Kit, ReadDigitsAgreesWithFromChars) {
    std::mt19937 rng(7);
    for (int n = 0; n < 4000; ++n) {
        const S t = randomText(rng, 25, u"0123456789") + randomText(rng, 3, u"x 1");
        const int64_t limit = int64_t(rng() % (t.size() + 1));
        const size_t read = std::min<size_t>(t.find_first_not_of(u"0123456789"), size_t(limit));
        const std::string first19(t.begin(), t.begin() + int64_t(std::min<size_t>(read, 19)));
        uint64_t expected = 0;
        std::from_chars(first19.data(), first19.data() + first19.size(), expected);
        const ZvChar *cursor = t.data();
        int64_t remaining = limit, value = -1;
        int32_t count = -1;
        const int32_t status = zv::readDigits(&cursor, &remaining, &value, n % 2 ? &count : nullptr);
        ASSERT_EQ(status != 0, read == 0) << n;
        ASSERT_EQ(cursor - t.data(), int64_t(read)) << n;
        ASSERT_EQ(remaining, limit - int64_t(read)) << n;
        ASSERT_EQ(value, int64_t(expected)) << n;
        ASSERT_EQ(count, n % 2 ? int32_t(first19.size()) : -1) << n;
    }
}

} // namespace
