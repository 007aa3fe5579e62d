// What all 247 rows of the format table share: missing marks, stars out of
// range, limits with and without bit 0 of flags, no write past the target,
// the call record left as it came, the answers without an instance, the
// informats without a locale block, and the byte entry agreeing with the
// wide one.
#include <gtest/gtest.h>
#include <unicode/ucnv.h>

#include <bit>
#include <cstring>
#include <cmath>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "rows/rows.hpp"
#include "zvhost.hpp"

namespace {

using namespace rows;

using zvhost::CallSpec;
using zvhost::Entry;

// Values just outside the range of a row's kind, after the first one inside.
std::vector<double> rangeEnds(Fam f) {
    if (f == Fam::Date) return {-138061, -138061.5, 6589336, std::nan("")};
    if (f == Fam::Week || f == Fam::YyWeek) return {-138061, -138062, 6589336};
    if (f == Fam::Datetime || f == Fam::Clock || f == Fam::DtWeek) return {-11928470400.0, -11928470401.0, 569318630400.0};
    return {};
}

// The text in a host encoding, one string per whole character; nullopt when
// the encoding can't show one of them.
std::optional<std::vector<std::string>> encodeChars(const std::string &encoding, const std::u16string &s) {
    static std::map<std::string, icu::LocalUConverterPointer> converters;
    UErrorCode e = U_ZERO_ERROR;
    icu::LocalUConverterPointer &kept = converters[encoding];
    if (!kept.isValid()) {
        kept.adoptInstead(ucnv_open(encoding.c_str(), &e));
        ucnv_setFromUCallBack(kept.getAlias(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &e);
    }
    UConverter *c = kept.getAlias();
    std::vector<std::string> out;
    for (size_t i = 0; i < s.size();) {
        const size_t n = (s[i] >= 0xD800 && s[i] < 0xDC00 && i + 1 < s.size()) ? 2 : 1;
        char buf[16];
        e = U_ZERO_ERROR;
        ucnv_reset(c);
        const int32_t len = ucnv_fromUChars(c, buf, sizeof buf, reinterpret_cast<const UChar *>(&s[i]),
                                            int32_t(n), &e);
        if (U_FAILURE(e)) return std::nullopt;
        out.emplace_back(buf, size_t(len));
        i += n;
    }
    return out;
}
// The longest run of whole characters from `from` on that fits `room` bytes.
std::string fitting(const std::vector<std::string> &chars, size_t from, size_t room) {
    std::string s;
    for (size_t i = from; i < chars.size() && s.size() + chars[i].size() <= room; ++i) s += chars[i];
    return s;
}

class Sweep : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_NE(host.loadModule(), nullptr);
        for (const FormatTableRow *r : zvhost::tableRows(host.instance()->formatTable)) rows.push_back(r);
        ASSERT_EQ(rows.size(), 247u);
    }
    static std::string name(const FormatTableRow *r) { return zvhost::rowName(*r); }
    static bool untouchedWide(const zvhost::FormatResult &res) {
        for (char16_t c : res.wide)
            if (c != u'\xFDD1') return false;
        return true;
    }
    // Runs with the instance out of the host's list of extensions.
    template <class F> void withoutInstance(F f) {
        ExtensionInstance *none[] = {nullptr};
        ExtensionInstance **saved = host.services()->extensionList;
        host.services()->extensionList = none;
        f();
        host.services()->extensionList = saved;
    }
    zvhost::Host host;
    std::vector<const FormatTableRow *> rows;
};

TEST_F(Sweep, MissingValuesShowTheirMarkInTheLastPlace) {
    for (const FormatTableRow *r : rows) {
        const Fam f = famOf(name(r));
        if (f >= Fam::RDate) continue;
        for (char mark : {'.', 'A', 'Q', 'Z', '_'})
            for (Entry entry : {Entry::Wide, Entry::Byte}) {
                CallSpec spec;
                spec.entry = entry;
                // A field of one place holds the mark alone.
                const bool onePlace = mark == 'Z' && f != Fam::Best && f != Fam::Percent && f != Fam::YyWeek;
                spec.width = onePlace ? 1 : widthFor(*r, f);
                spec.decimals = std::min(2, int(r->maxDecimals));
                spec.outputCapacity = spec.width + 4 * (entry == Entry::Wide);
                const auto res = zvhost::runFormat(host, *r, spec, zvhost::missingValue(mark));
                const std::string where = name(r) + " ." + mark;
                EXPECT_EQ(res.status, 0) << where;
                EXPECT_FALSE(res.overran || res.fieldsChanged) << where;
                if (f == Fam::Best) {  // the host's number formatter writes the mark
                    EXPECT_EQ(res.utf8.substr(res.utf8.find_first_not_of(' ')), std::string(1, mark)) << where;
                } else if (f == Fam::Percent) {  // under the last digit, before the sign's place
                    EXPECT_EQ(res.utf8, std::string(size_t(spec.width - 3), ' ') + mark + "  ") << where;
                } else {
                    EXPECT_EQ(res.utf8, std::string(size_t(spec.width - 1), ' ') + mark) << where;
                }
            }
    }
}

TEST_F(Sweep, ValuesOutOfRangeGiveStars) {
    for (const FormatTableRow *r : rows) {
        const Fam f = famOf(name(r));
        const std::vector<double> ends = rangeEnds(f);
        for (size_t i = 0; i < ends.size(); ++i)
            for (Entry entry : {Entry::Wide, Entry::Byte}) {
                CallSpec spec;
                spec.entry = entry;
                spec.width = widthFor(*r, f);
                const auto res = zvhost::runFormat(host, *r, spec, ends[i]);
                EXPECT_EQ(res.status, 0) << name(r) << " " << ends[i];
                EXPECT_EQ(res.utf8 == std::string(size_t(spec.width), '*'), i > 0) << name(r) << " " << ends[i];
                EXPECT_FALSE(res.overran || res.fieldsChanged) << name(r);
            }
        if (f == Fam::Names) {  // no such name: a blank field, no stars
            for (double v : {0.0, 13.0})
                EXPECT_EQ(zvhost::runFormat(host, *r, {}, v).utf8, std::string(r->defaultWidth, ' ')) << name(r);
        }
    }
}

TEST_F(Sweep, RowsThatCheckTheirOwnLimits) {
    for (const FormatTableRow *r : rows) {
        const Fam f = famOf(name(r));
        const auto lim = ownLimits(f);
        if (!lim) continue;
        struct Case { int width, decimals, status; };
        // (-1 asks the host for the row's default, so -2 stands for a negative.)
        const Case cases[] = {{0, 0, 2},           {-5, 0, 2},  {lim->width + 1, 0, 3}, {1, -2, 4},
                              {1, lim->decimals + 1, 5}, {0, -2, 2}, {lim->width + 1, -2, 3}, {1, 0, 0},
                              {lim->width, lim->decimals, 0}};
        for (const Case &c : cases) {
            CallSpec spec;
            spec.validate = true;
            spec.width = c.width;
            spec.decimals = c.decimals;
            const std::string where = name(r) + " width " + std::to_string(c.width) + " decimals " +
                                      std::to_string(c.decimals);
            if (f >= Fam::RDate) {
                const auto res = zvhost::runInformat(host, *r, spec, f == Fam::RMonth ? "March" : "12");
                EXPECT_EQ(res.status, c.status) << where;
                EXPECT_EQ(res.untouched, c.status != 0) << where;
                EXPECT_FALSE(res.fieldsChanged) << where;
                continue;
            }
            spec.outputCapacity = std::max(c.width, 1);
            for (Entry entry : {Entry::Wide, Entry::Byte}) {
                spec.entry = entry;
                const auto res = zvhost::runFormat(host, *r, spec, 3);
                EXPECT_EQ(res.status, c.status) << where;
                if (c.status) { EXPECT_TRUE(entry == Entry::Wide ? untouchedWide(res) : res.bytes.empty()) << where; }
                EXPECT_FALSE(res.overran || res.fieldsChanged) << where;
            }
        }
        // Without bit 0 the same limits are no reason to refuse.
        for (const auto &[w, d] : {std::pair{lim->width + 1, 0}, std::pair{int(r->defaultWidth), lim->decimals + 1}}) {
            CallSpec spec;
            spec.width = w;
            spec.decimals = d;
            if (f >= Fam::RDate) {
                const auto res = zvhost::runInformat(host, *r, spec, f == Fam::RMonth ? "March" : "12");
                EXPECT_EQ(res.status, 0) << name(r);
                EXPECT_EQ(res.value, f == Fam::RMonth ? 3.0 : 12.0) << name(r);
                continue;
            }
            const auto res = zvhost::runFormat(host, *r, spec, 3);
            EXPECT_EQ(res.status, 0) << name(r) << " " << w << " " << d;
            EXPECT_FALSE(res.overran) << name(r);
            // The number engine holds a field to 32 places and says so.
            if (f == Fam::Number && w > 32) { EXPECT_EQ(res.utf8, std::string(32, '*')) << name(r); }
        }
    }
}

TEST_F(Sweep, WithoutTheInstance) {
    withoutInstance([&] {
        for (const FormatTableRow *r : rows) {
            const std::string n = name(r);
            const Fam f = famOf(n);
            CallSpec spec;
            if (f < Fam::RDate) {
                spec.width = widthFor(*r, f);
                const auto res = zvhost::runFormat(host, *r, spec, ordinary(f));
                EXPECT_EQ(res.status, -1) << n;
                if (f != Fam::DtWeek) { EXPECT_TRUE(untouchedWide(res)) << n << " [" << res.utf8 << "]"; }
                continue;
            }
            const auto res = zvhost::runInformat(host, *r, spec, f == Fam::RDate ? "12" : ordinaryText(n, f));
            EXPECT_FALSE(res.fieldsChanged) << n;
            if (f == Fam::RWeek) {  // no locale and no instance needed
                EXPECT_EQ(res.status, 0) << n;
                EXPECT_EQ(res.value, n == "@WEEKU" ? 22283 : 22284) << n;
            } else if (f == Fam::RNumber) {  // the plain reader takes over
                EXPECT_EQ(res.status, 0) << n;
                EXPECT_EQ(res.value, 12) << n;
            } else {
                EXPECT_EQ(res.status, f == Fam::RDate ? ZV_DATE_NO_INSTANCE : -1) << n;
                EXPECT_TRUE(res.untouched) << n;
            }
        }
    });
}

// (The formats without a locale block are in the fault sweep.)
TEST_F(Sweep, InformatsWithoutALocaleBlock) {
    const double day2000 = 14610;  // 1 January 2000
    for (const FormatTableRow *r : rows) {
        const std::string n = name(r);
        const Fam f = famOf(n);
        if (f < Fam::RDate) continue;
        double want = f == Fam::RMonth ? std::bit_cast<double>(ZV_MISSING_BITS)
                      : f == Fam::RWeek ? (n == "@WEEKU" ? 22283 : 22284) : 12;
        if (f == Fam::RDate) {  // the fixed forms still read
            want = starts(n, "@NLTIM") ? 37800 : starts(n, "@NLDATM") ? day2000 * 86400 + 37800 : day2000;
            host.formatPool().failAt(1);
            EXPECT_EQ(zvhost::runInformat(host, *r, {}, "   ").status, ZV_NO_FORM_FITS) << n;
        }
        host.formatPool().failAt(1);
        const auto res = zvhost::runInformat(host, *r, {}, ordinaryText(n, f));
        EXPECT_FALSE(res.fieldsChanged) << n;
        if (f != Fam::RCurrency) {
            EXPECT_EQ(res.status, 0) << n;
            EXPECT_EQ(res.bits, std::bit_cast<uint64_t>(want)) << n << " " << res.value;
        }
    }
    host.formatPool().failAt(0);
}

// A format without a target answers as one with a target of no room.
TEST_F(Sweep, NoTarget) {
    FormatCall call;
    std::memset(&call, 0, sizeof call);
    call.locale = host.locale("en_US"), call.services = host.services();
    for (const FormatTableRow *r : rows) {
        if (famOf(name(r)) >= Fam::RDate) continue;
        for (const double value : {1234.5, 23440.0}) {
            ZvChar room[1] = {u'#'};
            call.input = &value, call.width = r->defaultWidth, call.decimals = r->defaultDecimals;
            call.output = room, call.outputLength = -7;
            const int32_t status = r->wideEntry(&call, nullptr), length = call.outputLength;
            call.output = nullptr, call.outputLength = -7;
            EXPECT_EQ(r->wideEntry(&call, nullptr), status) << name(r);
            EXPECT_TRUE(call.outputLength == length && room[0] == u'#') << name(r);
        }
    }
}

TEST_F(Sweep, BlankText) {
    FormatCall bare; // no text at all (a null input) reads as an empty one
    std::memset(&bare, 0, sizeof bare);
    bare.locale = host.locale("en_US"), bare.services = host.services(), bare.width = 8, bare.inputLength = 5;
    for (const FormatTableRow *r : rows) {
        const Fam f = famOf(name(r));
        if (f < Fam::RDate) continue;
        for (const char *text : {"", "    "}) {
            const auto res = zvhost::runInformat(host, *r, {}, text);
            if (!text[0]) {
                double out = std::bit_cast<double>(uint64_t(0x7ff4deadbeef0001));
                bare.output = &out;
                EXPECT_EQ(r->wideEntry(&bare, nullptr), res.status) << name(r);
                EXPECT_EQ(std::bit_cast<uint64_t>(out), res.bits) << name(r);
            }
            const bool empty = text[0] == 0;
            if (f == Fam::RMonth || (f == Fam::RCurrency && !empty)) {
                EXPECT_EQ(res.status, 0) << name(r);
                EXPECT_EQ(res.bits, ZV_MISSING_BITS) << name(r);
            } else {
                EXPECT_EQ(res.status, 1) << name(r) << " [" << text << "]";
                EXPECT_TRUE(res.untouched) << name(r);
            }
            EXPECT_FALSE(res.fieldsChanged) << name(r);
        }
        // Text behind the field limit is not read.
        CallSpec spec;
        spec.fieldLimit = 2;
        EXPECT_EQ(zvhost::runInformat(host, *r, spec, "  2021W01 May 12").status,
                  f == Fam::RMonth || f == Fam::RCurrency ? 0 : 1) << name(r);
    }
}

// Every format at every width, in three host encodings, through both
// entries; locale, value, decimals and capacity turn over with the width.
TEST_F(Sweep, EveryWidthBothEntries) {
    const char *const locales[] = {"en_US", "fr_FR", "ja_JP", "de_CH", "ar_EG", "ru_RU", "el_GR"};
    const char *const encodings[] = {"UTF-8", "Shift_JIS", "ISO-8859-1"};
    std::vector<int> widths;
    for (int w = 1; w <= 24; ++w) widths.push_back(w);
    for (int w : {31, 33, 41, 60, 200, 300}) widths.push_back(w);
    int turn = 0;
    for (const FormatTableRow *r : rows) {
        const std::string n = name(r);
        const Fam f = famOf(n);
        if (f >= Fam::RDate) continue;
        for (int w : widths) {
            ++turn;
            CallSpec spec;
            spec.width = w;
            spec.locale = locales[turn % 7];
            spec.encoding = encodings[turn % 3];
            spec.decimals = turn % (int(r->maxDecimals) + 1);
            const double v = ordinary(f, turn);
            spec.outputCapacity = w + (turn % 2) * 3;
            const auto wide = zvhost::runFormat(host, *r, spec, v);
            spec.entry = Entry::Byte;
            const auto bytes = zvhost::runFormat(host, *r, spec, v);
            const std::string where = n + " " + spec.locale + " " + spec.encoding + " width " + std::to_string(w);
            const bool yyOut = f == Fam::YyWeek && (w < 2 || w > 8);
            const int heldTo = f == Fam::Number && w > 32 ? 32 : w;
            EXPECT_EQ(wide.status, yyOut ? -1 : 0) << where;
            EXPECT_EQ(wide.outputLength, heldTo) << where;
            EXPECT_FALSE(wide.overran || bytes.overran) << where;
            EXPECT_EQ(wide.fieldsChanged, heldTo != w) << where;
            EXPECT_FALSE(bytes.fieldsChanged) << where;
            if (wide.status != 0) continue;
            // What the byte entry must have made of the wide text.
            const auto chars = encodeChars(spec.encoding, wide.wide);
            if (!chars) continue;
            std::string full;
            for (const std::string &c : *chars) full += c;
            std::string want = full;
            int32_t status = 0;
            if (full.size() > size_t(w)) {
                want = fitting(*chars, 0, size_t(w));
                size_t lead = 0;
                while (lead < wide.wide.size() && lead < size_t(w) && wide.wide[lead] == u' ') ++lead;
                if (!leftMark(f) && lead == 0) status = ZV_TARGET_TOO_SMALL;
                if (!leftMark(f) && lead > 0) {
                    const std::string rest = fitting(*chars, lead, size_t(w));
                    size_t restFull = 0;
                    for (size_t i = lead; i < chars->size(); ++i) restFull += (*chars)[i].size();
                    status = restFull > size_t(w) ? ZV_TARGET_TOO_SMALL : 0;
                    want = std::string(size_t(w) - rest.size(), ' ') + rest;
                }
            }
            EXPECT_EQ(bytes.status, status) << where << " [" << wide.utf8 << "]";
            EXPECT_EQ(bytes.bytes, want) << where << " [" << wide.utf8 << "]";
            EXPECT_EQ(bytes.outputLength, int32_t(want.size())) << where;
        }
    }
}

} // namespace
