// The text routines of the wide-text kit against std::u16string's own
// algorithms over random texts (fixed seeds). Every text stands at the front
// of a longer buffer, so a routine that looks behind the length shows.
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

S randomText(std::mt19937 &rng, size_t maxLength, const S &alphabet) {
    S s(rng() % (maxLength + 1), u' ');
    for (char16_t &c : s) c = alphabet[rng() % alphabet.size()];
    return s;
}

TEST(Kit, FindingAndTrimmingAgreeWithStdString) {
    // The blank, the other spaces the kit knows and their neighbours on both sides.
    const S spaces = u"a \x08\x09\x0d\x0e\x1f\x84\x85\x86\xa0\xa1\x167f\x1680\x1681\x1fff\x2000\x200a\x200b"
                     u"\x2027\x2028\x2029\x202a\x202e\x202f\x2030\x205e\x205f\x2060\x2fff\x3000\x3001";
    S mode2 = u" \xa0\x1680\x2028\x2029\x202f\x205f\x3000";
    for (char16_t c = 0x2000; c <= 0x200a; ++c) mode2 += c;
    const S fixed = mode2 + u"\x09\x0a\x0b\x0c\x0d\x85";
    std::mt19937 rng(1);
    for (int n = 0; n < 4000; ++n) {
        const S t = randomText(rng, 10, u" ab"), p = randomText(rng, 3, u" ab"), set = randomText(rng, 3, u" ab");
        const S buffer = t + u"ab b" + S(1, 0);
        const char16_t c = u" ab"[rng() % 3];
        const int64_t found = p.empty() ? 0 : at(t.find(p));
        ASSERT_EQ(zv::wideLength((t + S(1, 0) + u"ab").data()), len(t)) << n;
        ASSERT_EQ(zv::findChar(buffer.data(), len(t), c), at(t.find(c))) << n;
        ASSERT_EQ(zv::findSubstring(buffer.data(), len(t), p.data(), len(p)), found) << n;
        ASSERT_EQ(zv::findSubstring(buffer.data(), len(t), p.c_str(), -1), found) << n;
        ASSERT_EQ(zv::firstOther(buffer.data(), len(t), c), t.empty() ? 0 : at(t.find_first_not_of(c))) << n;
        ASSERT_EQ(zv::firstNotIn(buffer.data(), len(t), set.data(), len(set)), at(t.find_first_not_of(set))) << n;
        ASSERT_EQ(zv::allEqual(c, buffer.data(), len(t)), t.find_first_not_of(c) == S::npos) << n;

        const S s = randomText(rng, 8, spaces), blanks = s + u"  ";
        ASSERT_EQ(zv::lengthWithoutTrailingBlanks(blanks.data(), len(s)), at(s.find_last_not_of(u' ')) + 1) << n;
        ASSERT_EQ(zv::trailingTrimLength(blanks.data(), len(s), 0), at(s.find_last_not_of(u' ')) + 1) << n;
        ASSERT_EQ(zv::trailingTrimLength(blanks.data(), len(s), 2), at(s.find_last_not_of(mode2)) + 1) << n;
        ASSERT_EQ(zv::trailingTrimLength(blanks.data(), len(s), 1 + 2 * (n % 3)), at(s.find_last_not_of(fixed)) + 1);
        const int32_t a = int32_t(rng() % 7) - 3, b = int32_t(rng() % 7) - 3;
        ASSERT_EQ(zv::smaller(a, b), std::min(a, b));
    }
    EXPECT_EQ(zv::wideLength(nullptr) + zv::findChar(nullptr, 3, u'a') + zv::findSubstring(nullptr, 4, u"a", 1), -2);
    EXPECT_EQ(zv::findSubstring(nullptr, 0, nullptr, 0) + zv::findSubstring(u"", 0, nullptr, -1), 0);
    EXPECT_TRUE(zv::allEqual(u'a', nullptr, 3) && zv::firstOther(nullptr, 3, u'a') == 0);
    for (int mode : {0, 1, 2}) // no text, or a negative length, has nothing to trim
        EXPECT_EQ(zv::trailingTrimLength(nullptr, 4, mode) + zv::trailingTrimLength(u"ab  ", -2, mode), 0) << mode;
}

TEST(Kit, FillCopyAndJustifyAgreeWithStdString) {
    std::mt19937 rng(3);
    for (int n = 0; n < 4000; ++n) {
        const int64_t count = int64_t(rng() % 25) - 1;
        S buffer(24, u'#');
        zv::fillWide(buffer.data(), u'x', count);
        ASSERT_EQ(buffer, S(size_t(std::max<int64_t>(count, 0)), u'x') + S(size_t(24 - std::max<int64_t>(count, 0)), u'#'));
        const S digits = u"0123456789012345678901234";
        zv::copyWide(buffer.data(), digits.data() + 1, count);
        ASSERT_EQ(buffer, digits.substr(1, size_t(std::max<int64_t>(count, 0))) + S(size_t(24 - std::max<int64_t>(count, 0)), u'#'));

        // A source of its own, or one that overlaps the target on either side of it.
        const S before = u"0123456789abcdefghijklmnop";
        const size_t sourceAt = rng() % 14;
        const S source = sourceAt == 13 ? randomText(rng, 10, u"xyz") : before.substr(sourceAt, rng() % 10);
        const bool null = rng() % 10 == 0;
        const int64_t targetLength = int64_t(rng() % 21) - 10;
        const size_t room = size_t(targetLength < 0 ? -1 - targetLength : targetLength);
        const S copied = null ? S() : source.substr(0, room);
        S expected = buffer = before;
        expected.replace(6, targetLength < 0 ? copied.size() + 1 : room,
                         copied + S(targetLength < 0 ? 1 : room - copied.size(), targetLength < 0 ? 0 : u' '));
        const ZvChar *from = null ? nullptr : sourceAt == 13 ? source.data() : buffer.data() + sourceAt;
        ASSERT_EQ(zv::copyPadded(from, len(source), buffer.data() + 6, targetLength), len(copied)) << n;
        ASSERT_EQ(buffer, expected) << n;

        const S t = randomText(rng, 9, u"  ab");
        const char16_t mode = u"LlRrCcn?"[rng() % 8];
        const size_t first = t.find_first_not_of(u' ');
        const size_t content = first == S::npos ? 0 : t.find_last_not_of(u' ') + 1 - first;
        size_t start = content ? first : 0;
        if (content && std::tolower(mode) == 'l') start = 0;
        if (content && std::tolower(mode) == 'r') start = t.size() - content;
        if (content && std::tolower(mode) == 'c') start = (t.size() - content) / 2; // the odd blank behind
        expected = (content ? S(start, u' ') + t.substr(first, content) + S(t.size() - start - content, u' ') : t) + u" a";
        int64_t outLength = -1, outStart = -1;
        zv::justify((buffer = t + u" a").data(), len(t), mode, &outLength, &outStart);
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
        const bool zeroEnded = n % 2;
        S kept = t, buffer = t + (zeroEnded ? S(1, 0) + u"ab" : u"ab" + S(1, 0));
        std::erase_if(kept, [&](char16_t c) { return set.find(c) != S::npos; });
        const S expected = zeroEnded ? kept + S(1, 0) + buffer.substr(kept.size() + 1)
                                     : kept + S(t.size() - kept.size(), u' ') + buffer.substr(t.size());
        ASSERT_EQ(zv::removeCharacters(buffer.data(), zeroEnded ? -1 : len(t), set.c_str(), rng() % 2 ? -1 : len(set)),
                  len(kept)) << n;
        ASSERT_EQ(buffer, expected) << n;

        const S from = randomText(rng, 4, u"a*b "), to = S(u"XYZW").substr(0, from.size());
        S translated = buffer = t + u"a*b ";
        for (size_t i = 0; i < t.size(); ++i)
            if (const size_t k = from.find(t[i]); k != S::npos) translated[i] = to[k];
        zv::translateCharacters(buffer.data(), len(t), to.data(), from.data(), len(from));
        ASSERT_EQ(buffer, translated) << n;
    }
}

TEST(Kit, NumbersAgreeWithToCharsAndFromChars) {
    std::mt19937 rng(6);
    for (int n = 0; n < 4000; ++n) {
        const uint64_t value = n % 50 == 0 ? 0 : (uint64_t(rng()) << 32 | rng()) >> (rng() % 64);
        const int base = int(rng() % 20);
        const int64_t capacity = int64_t(rng() % 70);
        char digits[70];
        const char *end = std::to_chars(digits, digits + 70, value, base < 2 ? 10 : std::min(base, 16)).ptr;
        S expected, out(80, u'#');
        for (const char *p = digits; p != end; ++p) expected += char16_t(n % 3 ? std::toupper(*p) : *p);
        int64_t produced = -1;
        const bool fits = len(expected) <= capacity;
        ASSERT_EQ(zv::unsignedToText(value, base, n % 3, out.data(), capacity, n % 7 ? &produced : nullptr),
                  fits ? 0 : zv::kDigitsDontFit) << n;
        ASSERT_EQ(out, fits ? expected + S(80 - expected.size(), u'#') : S(80, u'#')) << n;
        ASSERT_EQ(produced, fits && n % 7 ? len(expected) : -1) << n;

        const S t = randomText(rng, 25, u"0123456789") + randomText(rng, 3, u"x 1");
        const int64_t limit = int64_t(rng() % (t.size() + 1));
        const size_t read = std::min<size_t>(t.find_first_not_of(u"0123456789"), size_t(limit));
        const std::string first19(t.begin(), t.begin() + int64_t(std::min<size_t>(read, 19)));
        uint64_t number = 0;
        std::from_chars(first19.data(), first19.data() + first19.size(), number);
        const ZvChar *cursor = t.data();
        int64_t remaining = limit, got = -1;
        int32_t count = -1;
        ASSERT_EQ(zv::readDigits(&cursor, &remaining, &got, n % 2 ? &count : nullptr) != 0, read == 0) << n;
        ASSERT_EQ(cursor - t.data(), int64_t(read)) << n;
        ASSERT_EQ(remaining, limit - int64_t(read)) << n;
        ASSERT_EQ(got, int64_t(number)) << n;
        ASSERT_EQ(count, n % 2 ? int32_t(first19.size()) : -1) << n;
    }
}

} // namespace
