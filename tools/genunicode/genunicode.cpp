// zvgenunicode: writes src/wide/unicode_tables.inc, the module's own
// character class and case tables, from ICU's character properties.
//
//   zvgenunicode <output file>
//
// The module never includes ICU: the generated file is committed, and this
// tool is only run (target regen-unicode) when the tables are to be rebuilt.
//
// Class tables (RangeTable, one per class, ranges over all planes)
// ----------------------------------------------------------------
// The classes describe the repertoire of Unicode 9.0. ICU carries today's
// database, so the tool narrows it back:
//   * a code point counts only when it is assigned and u_charAge() <= 9.0;
//   * it counts with its general category of 9.0: the Georgian Mkhedruli
//     letters U+10D0..U+10FA and U+10FD..U+10FF were Lo until Unicode 11
//     made them Ll, so they are letters but not lower case here;
//   * private use (Co) counts for the graphic class in the BMP only
//     (U+E000..U+F8FF), not in planes 15 and 16.
// With these rules the tables have exactly 54 (decimal digit), 633 (lower
// case), 627 (upper case), 571 (letter), 58 (hex digit), 641 (printable),
// 168 (punctuation), 641 (graphic) and 20 (control) ranges; the tool checks
// these counts and refuses to write anything else.
//
// Class bits (AsciiClassTable.classBits, and the masks given to the host's
// charClass): one bit per general category, Lu 1<<0, Ll 1<<1, Lt 1<<2,
// Mn 1<<3, Mc 1<<4, Me 1<<5, Nd 1<<6, Nl 1<<7, No 1<<8, Zs 1<<9, Zl 1<<10,
// Zp 1<<11, Cc 1<<12, Cf 1<<13, Cs 1<<14, Co 1<<15, Cn 1<<16, Lm 1<<17,
// Lo 1<<18, Pc 1<<19, Pd 1<<20, Ps 1<<21, Pe 1<<22, Pi 1<<23, Pf 1<<24,
// Po 1<<25, Sm 1<<26, Sc 1<<27, Sk 1<<28, So 1<<29.
//
// Fold tables
// -----------
// A page index of 512 entries (one per 128 code points of the BMP) names one
// of 19 fixed pages or -1; each page has 128 signed 8-bit deltas for upper
// case and 128 for lower case. The deltas come from ICU's simple case
// mappings (u_toupper, u_tolower) under these rules:
//   * early repertoire: a mapping c -> m is kept only when both c and m
//     were assigned by Unicode 3.0 (u_charAge() <= 3.0). Later additions
//     (U+0220, U+023A.., U+03F4.., U+0500.., U+1E9E, U+2132, the Georgian
//     case pairs of 4.1 and 11.0, ...) stay unmapped;
//   * only the 19 fixed pages are kept; a mapping elsewhere (such as
//     U+0345 -> U+0399 in page U+0300) is dropped;
//   * a delta that fits in -127..127 is stored as it is;
//   * a farther mapping is stored as 0 (unmapped), so U+00B5, U+0131,
//     U+0130, U+0189/U+0256, U+019F/U+0275, U+01A6/U+0280, U+1FBE, U+2126,
//     U+212A and U+212B keep their own value;
//   * every first member of a pair list gets -128, whatever ICU says: the
//     two pair lists are fixed data and take precedence. This is what gives
//     U+017F -> "S", and it also keeps the old pair U+0258 <-> U+018E
//     (ICU: U+0258 has no upper case, U+018E lowers to U+01DD).
// The page U+1080 (Georgian) keeps its place in the index, but today's
// database pairs its letters only with U+2D00.. (4.1) and U+1C90.. (11.0),
// both out of the early repertoire and out of 8-bit reach, so its deltas
// are all zero.

#include <unicode/uchar.h>
#include <unicode/uversion.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "unicode_category.hpp"

namespace {

int ageOf(UChar32 c) {
    UVersionInfo v;
    u_charAge(c, v);
    return v[0] * 10 + v[1];
}

constexpr int kClassAge = 90; // Unicode 9.0
constexpr int kFoldAge = 30;  // Unicode 3.0

// The category a code point had in Unicode 9.0, or Cn when it was not yet
// assigned then.
UCharCategory category9(UChar32 c) {
    UCharCategory t = static_cast<UCharCategory>(u_charType(c));
    if (t == U_UNASSIGNED || ageOf(c) > kClassAge) return U_UNASSIGNED;
    if ((c >= 0x10D0 && c <= 0x10FA) || (c >= 0x10FD && c <= 0x10FF)) return U_OTHER_LETTER;
    return t;
}

// The class bit of a code point as Unicode 9.0 had it.
uint32_t classBit9(UChar32 c) { return zvhost::categoryMask(category9(c)); }

// The class mask of a set of general categories.
constexpr uint32_t categories(std::initializer_list<UCharCategory> list) {
    uint32_t mask = 0;
    for (UCharCategory t : list) mask |= zvhost::categoryMask(t);
    return mask;
}

bool isFullwidthOrAsciiHexLetter(UChar32 c) {
    return (c >= 0x41 && c <= 0x46) || (c >= 0x61 && c <= 0x66) || (c >= 0xFF21 && c <= 0xFF26) ||
           (c >= 0xFF41 && c <= 0xFF46);
}

struct ClassSpec {
    const char *name;
    int expectedRanges;
    std::function<bool(UChar32)> member;
};

using Ranges = std::vector<std::pair<uint32_t, uint32_t>>;

Ranges collect(const std::function<bool(UChar32)> &member) {
    Ranges out;
    for (UChar32 c = 0; c <= 0x10FFFF; ++c) {
        if (!member(c)) continue;
        if (!out.empty() && out.back().second + 1 == static_cast<uint32_t>(c))
            out.back().second = static_cast<uint32_t>(c);
        else
            out.emplace_back(static_cast<uint32_t>(c), static_cast<uint32_t>(c));
    }
    return out;
}

struct Pair {
    uint16_t from;
    uint16_t to;
};

// Far mappings (beyond 8 bits) that the table road still makes.
const Pair kUpperPairs[] = {
    {0x017F, 0x0053}, {0x0253, 0x0181}, {0x0254, 0x0186}, {0x0257, 0x018A}, {0x0258, 0x018E},
    {0x0259, 0x018F}, {0x025B, 0x0190}, {0x0260, 0x0193}, {0x0263, 0x0194}, {0x0268, 0x0197},
    {0x0269, 0x0196}, {0x026F, 0x019C}, {0x0272, 0x019D}, {0x0283, 0x01A9}, {0x0288, 0x01AE},
    {0x028A, 0x01B1}, {0x028B, 0x01B2}, {0x0292, 0x01B7}, {0x1F78, 0x1FF8}, {0x1F79, 0x1FF9},
};

const int kFoldPages[19] = {0x00, 0x01, 0x02, 0x03, 0x04, 0x05, 0x07, 0x08, 0x09, 0x0A,
                            0x0B, 0x21, 0x3C, 0x3D, 0x3E, 0x3F, 0x42, 0x49, 0x1FE};

// An array of pairs of code points, perRow to a line.
void writeCodePairs(FILE *out, const char *type, const char *symbol, const Ranges &r, size_t perRow) {
    std::fprintf(out, "inline constexpr %s %s[%zu] = {\n", type, symbol, r.size());
    for (size_t i = 0; i < r.size(); ++i) {
        if (i % perRow == 0) std::fprintf(out, "   ");
        std::fprintf(out, " {0x%04X, 0x%04X},", r[i].first, r[i].second);
        if (i % perRow == perRow - 1 || i + 1 == r.size()) std::fprintf(out, "\n");
    }
    std::fprintf(out, "};\n\n");
}

void writeRanges(FILE *out, const char *symbol, const Ranges &r) { writeCodePairs(out, "CodeRange", symbol, r, 4); }

void writeDeltas(FILE *out, const char *symbol, const std::vector<std::vector<int>> &pages) {
    std::fprintf(out, "inline constexpr int8_t %s[19][128] = {\n", symbol);
    for (size_t p = 0; p < pages.size(); ++p) {
        std::fprintf(out, "    { // U+%04X\n", kFoldPages[p] * 128);
        for (int i = 0; i < 128; ++i) {
            if (i % 16 == 0) std::fprintf(out, "       ");
            std::fprintf(out, " %d,", pages[p][static_cast<size_t>(i)]);
            if (i % 16 == 15) std::fprintf(out, "\n");
        }
        std::fprintf(out, "    },\n");
    }
    std::fprintf(out, "};\n\n");
}

void writePairs(FILE *out, const char *symbol, const std::vector<Pair> &pairs) {
    Ranges r;
    for (const Pair &p : pairs) r.emplace_back(p.from, p.to);
    writeCodePairs(out, "CasePair", symbol, r, 5);
}

// The nine classes with the count of ranges each must have.
std::vector<ClassSpec> classSpecs() {
    auto inCategories = [](uint32_t mask) { return [mask](UChar32 c) { return (classBit9(c) & mask) != 0; }; };
    const uint32_t notPrintable = categories({U_CONTROL_CHAR, U_FORMAT_CHAR, U_SURROGATE, U_PRIVATE_USE_CHAR, U_UNASSIGNED});
    const uint32_t notGraphic = categories({U_SPACE_SEPARATOR, U_LINE_SEPARATOR, U_PARAGRAPH_SEPARATOR, U_CONTROL_CHAR,
                                            U_FORMAT_CHAR, U_SURROGATE, U_UNASSIGNED});
    const uint32_t digit = categories({U_DECIMAL_DIGIT_NUMBER});
    return {
        {"kDecimalDigitRanges", 54, inCategories(digit)},
        {"kLowerCaseRanges", 633, inCategories(categories({U_LOWERCASE_LETTER}))},
        {"kUpperCaseRanges", 627, inCategories(categories({U_UPPERCASE_LETTER}))},
        {"kLetterRanges", 571,
         inCategories(categories({U_UPPERCASE_LETTER, U_LOWERCASE_LETTER, U_TITLECASE_LETTER, U_MODIFIER_LETTER,
                                  U_OTHER_LETTER}))},
        {"kHexDigitRanges", 58, [=](UChar32 c) { return classBit9(c) == digit || isFullwidthOrAsciiHexLetter(c); }},
        {"kPrintableRanges", 641, [=](UChar32 c) { return (classBit9(c) & notPrintable) == 0; }},
        {"kPunctuationRanges", 168,
         inCategories(categories({U_CONNECTOR_PUNCTUATION, U_DASH_PUNCTUATION, U_START_PUNCTUATION, U_END_PUNCTUATION,
                                  U_INITIAL_PUNCTUATION, U_FINAL_PUNCTUATION, U_OTHER_PUNCTUATION}))},
        {"kGraphicRanges", 641,
         [=](UChar32 c) {
             // Private use is graphic in the BMP only.
             const uint32_t bit = classBit9(c);
             if (bit == categories({U_PRIVATE_USE_CHAR}) && c > 0xFFFF) return false;
             return (bit & notGraphic) == 0;
         }},
        {"kControlRanges", 20,
         inCategories(categories({U_LINE_SEPARATOR, U_PARAGRAPH_SEPARATOR, U_CONTROL_CHAR, U_FORMAT_CHAR}))},
    };
}

// The ranges of each class; false, with a message, when a count is not the
// one expected.
bool collectClasses(const std::vector<ClassSpec> &classes, std::vector<Ranges> &tables) {
    bool ok = true;
    for (const ClassSpec &spec : classes) {
        tables.push_back(collect(spec.member));
        if (static_cast<int>(tables.back().size()) != spec.expectedRanges) {
            std::fprintf(stderr, "zvgenunicode: %s has %zu ranges, expected %d\n", spec.name,
                         tables.back().size(), spec.expectedRanges);
            ok = false;
        }
    }
    return ok;
}

using Deltas = std::vector<std::vector<int>>;

struct FoldTables {
    std::vector<int> pageIndex;
    std::vector<Pair> upperPairs, lowerPairs;
    Deltas upperDeltas, lowerDeltas;
};

// The 8-bit deltas of the fold pages for one direction, the first members of
// the pair lists marked -128.
Deltas buildDeltas(bool upper, const std::vector<Pair> &pairs, const std::vector<int> &pageIndex) {
    Deltas pages(19, std::vector<int>(128, 0));
    for (int p = 0; p < 19; ++p) {
        for (int i = 0; i < 128; ++i) {
            const UChar32 c = kFoldPages[p] * 128 + i;
            const UChar32 m = upper ? u_toupper(c) : u_tolower(c);
            if (m == c || m > 0xFFFF) continue;
            if (ageOf(c) > kFoldAge || ageOf(m) > kFoldAge) continue;
            if (u_charType(c) == U_UNASSIGNED || u_charType(m) == U_UNASSIGNED) continue;
            const int delta = m - c;
            if (delta >= -127 && delta <= 127) pages[static_cast<size_t>(p)][static_cast<size_t>(i)] = delta;
        }
    }
    for (const Pair &pair : pairs) {
        const int p = pageIndex[pair.from >> 7];
        if (p < 0) {
            std::fprintf(stderr, "zvgenunicode: pair U+%04X is outside the fold pages\n", pair.from);
            std::exit(1);
        }
        pages[static_cast<size_t>(p)][pair.from & 127u] = -128;
    }
    return pages;
}

// The lower pairs are the upper ones turned round, all but the first: U+017F
// uppers to S, but S lowers to s.
FoldTables buildFoldTables() {
    FoldTables f;
    f.pageIndex.assign(512, -1);
    for (int p = 0; p < 19; ++p) f.pageIndex[static_cast<size_t>(kFoldPages[p])] = p;
    f.upperPairs.assign(std::begin(kUpperPairs), std::end(kUpperPairs));
    for (size_t i = 1; i < f.upperPairs.size(); ++i) f.lowerPairs.push_back({f.upperPairs[i].to, f.upperPairs[i].from});
    std::sort(f.lowerPairs.begin(), f.lowerPairs.end(), [](const Pair &a, const Pair &b) { return a.from < b.from; });
    f.upperDeltas = buildDeltas(true, f.upperPairs, f.pageIndex);
    f.lowerDeltas = buildDeltas(false, f.lowerPairs, f.pageIndex);
    return f;
}

// The class bits of ASCII are today's: ASCII has not changed since 9.0.
void writeAsciiClasses(FILE *out) {
    std::fprintf(out, "inline constexpr AsciiClassTable kAsciiClassTable = {{\n");
    for (int c = 0; c < 128; ++c) {
        if (c % 4 == 0) std::fprintf(out, "   ");
        std::fprintf(out, " {0x%08X},", zvhost::categoryMask(u_charType(c)));
        if (c % 4 == 3) std::fprintf(out, "\n");
    }
    std::fprintf(out, "}};\n\n");
}

void writePageIndex(FILE *out, const std::vector<int> &pageIndex) {
    std::fprintf(out, "inline constexpr int16_t kFoldPageIndex[512] = {\n");
    for (int i = 0; i < 512; ++i) {
        if (i % 16 == 0) std::fprintf(out, "   ");
        std::fprintf(out, " %d,", pageIndex[static_cast<size_t>(i)]);
        if (i % 16 == 15) std::fprintf(out, "\n");
    }
    std::fprintf(out, "};\n\n");
}

int writeTables(const std::string &path, const std::vector<ClassSpec> &classes, const std::vector<Ranges> &tables,
                const FoldTables &fold) {
    FILE *out = std::fopen(path.c_str(), "w");
    if (!out) {
        std::perror(path.c_str());
        return 1;
    }
    std::fprintf(out,
                 "// Generated by tools/genunicode (target regen-unicode) from ICU %s,\n"
                 "// Unicode %s. Do not edit: change the generator and run it again.\n"
                 "// Included once, by src/wide/tables.cpp, inside namespace zv.\n\n",
                 U_ICU_VERSION, U_UNICODE_VERSION);
    for (size_t i = 0; i < tables.size(); ++i) writeRanges(out, classes[i].name, tables[i]);
    writeAsciiClasses(out);
    writePageIndex(out, fold.pageIndex);
    writeDeltas(out, "kUpperDeltas", fold.upperDeltas);
    writeDeltas(out, "kLowerDeltas", fold.lowerDeltas);
    writePairs(out, "kUpperPairs", fold.upperPairs);
    writePairs(out, "kLowerPairs", fold.lowerPairs);
    if (std::fclose(out) != 0) {
        std::perror(path.c_str());
        return 1;
    }
    return 0;
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: zvgenunicode <output file>\n");
        return 2;
    }
    const std::vector<ClassSpec> classes = classSpecs();
    std::vector<Ranges> tables;
    if (!collectClasses(classes, tables)) return 1;
    return writeTables(argv[1], classes, tables, buildFoldTables());
}
