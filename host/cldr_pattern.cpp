// CLDR date pattern -> pattern of the module's % language.
//
// Decisions, field by field (CLDR letter and count -> directive written;
// "reading" is the form used in items that the locale date reader reads,
// which knows "%" and one letter only, with no flags):
//
//   G (era)             the era name of years after 0 as literal text when the
//                       caller gives it, else dropped; no directive for it
//   y, yyy, yyyy, u, r  %Y (always four digits: exact for years 1000..9999)
//   yy                  %y
//   Y (week year)       ISO rule: %G / YY %g; other rules: %Y / %y, since the
//                       engine has no week year but the ISO one (inexact)
//   U (cyclic year)     dropped
//   Q, QQ (number)      %q: the engine has no quarter number (inexact)
//   QQQ, QQQQ           %q, %Q; QQQQQ (narrow) %q (inexact)
//   qqq, qqqq           %#q, %#Q; reading %q, %Q (the reader has no other form)
//   M, MM               %#m, %m; reading %O, %m
//   MMM, MMMM           %b, %B; MMMMM (narrow) %b (inexact)
//   L, LL               as M, MM
//   LLL, LLLL           %#b, %#B; reading %b, %B (names of the plain lists)
//   w, ww               ISO rule %#V, %V; Sunday-first %#U, %U; else %#W, %W
//                       (the two latter count weeks from the first Sunday or
//                       Monday, which CLDR does not: inexact)
//   W, F, g, A, l       dropped (week of month, weekday in month, Julian day,
//                       milliseconds in day, deprecated)
//   d, dd               %#d, %d; reading %E, %d
//   D, DD, DDD          %#j, %#j, %j (DD is padded to two in CLDR: inexact)
//   E..EEE, EEEE        %a, %A; EEEEE, EEEEEE (narrow, short) %a (inexact)
//   eee, eeee           %a, %A
//   ccc, cccc           %#a, %#A; reading %a, %A
//   e, ee, c, cc        %u (1 for Monday; CLDR counts from the locale's first
//                       day: inexact); dropped in reading, where u is a name
//   a                   %p; aaaa, aaaaa %p (inexact)
//   b, B                %p: day periods such as "noon" or "in the morning"
//                       have no directive (inexact)
//   h, hh               %#I, %I; reading %I (padded: inexact for h)
//   H, HH               %#H, %H; reading %H (padded: inexact for H)
//   K, KK (0..11)       %#L, %L: the engine's L shows noon as 12 (inexact);
//                       reading %I
//   k, kk (1..24)       %#K, %K; reading %H (midnight as 0: inexact)
//   m, mm               %#M, %M; reading %M
//   s, ss               %#S, %S; reading %S
//   S... (fraction)     dropped with the separator before it: %S writes the
//                       fraction when the call asks for decimals (inexact)
//   z, Z, O, v, V, X, x %z, the UTC offset (inexact: CLDR may write names);
//                       dropped in reading, where the reader has no offset
//   j, J, C and any other letter: skeleton letters, not pattern fields; dropped
//
// Literal text: quoted text is copied, '' is one apostrophe, % becomes %%.
// In reading, a literal % is dropped: the reader takes "%%" for two literal
// percent signs, or for one and a directive, where the engine writes one.
// U+202F (narrow no-break space) and U+00A0 (no-break space) become plain
// blanks, so that what a pattern writes reads back through the date readers.
// Every other character stays. When a field was dropped, the text around it
// is tidied: empty brackets go, runs of blanks become one, and blanks at the
// ends go.
#include "cldr.hpp"

#include <string>

namespace zvhost {

namespace {

bool isAsciiLetter(char16_t c) { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z'); }

class Converter {
public:
    explicit Converter(const ConvertOptions &options) : options_(options) {}

    ConvertedPattern run(std::u16string_view cldr) {
        size_t i = 0;
        while (i < cldr.size()) {
            char16_t c = cldr[i];
            if (c == u'\'') {
                if (i + 1 < cldr.size() && cldr[i + 1] == u'\'') {
                    literal(u'\'');
                    i += 2;
                    continue;
                }
                // Quoted text up to the closing quote; '' inside is a quote.
                ++i;
                bool closed = false;
                while (i < cldr.size()) {
                    if (cldr[i] == u'\'') {
                        if (i + 1 < cldr.size() && cldr[i + 1] == u'\'') {
                            literal(u'\'');
                            i += 2;
                            continue;
                        }
                        ++i;
                        closed = true;
                        break;
                    }
                    literal(cldr[i]);
                    ++i;
                }
                if (!closed) note("unterminated quoted text taken as literal text to the end");
                continue;
            }
            if (isAsciiLetter(c)) {
                size_t n = 1;
                while (i + n < cldr.size() && cldr[i + n] == c) ++n;
                field(static_cast<char>(c), static_cast<int>(n));
                i += n;
                continue;
            }
            literal(c);
            ++i;
        }
        if (dropped_) tidy();
        result_.pattern = out_;
        return std::move(result_);
    }

private:
    void literal(char16_t c) {
        if (c == u'\u202F' || c == u'\u00A0') c = u' ';
        if (c == u'%') {
            if (options_.forReading) {
                inexact("literal percent sign dropped: the reader has no form for it");
                return;
            }
            out_ += u"%%";
            return;
        }
        out_ += c;
    }

    void literalText(std::u16string_view text) {
        for (char16_t c : text) literal(c);
    }

    void note(std::string text) { result_.notes.push_back(std::move(text)); }

    void inexact(std::string why) {
        result_.exact = false;
        note(std::move(why));
    }

    void directive(std::u16string_view d) {
        out_ += u'%';
        out_ += d;
    }

    void drop(char letter, int count, const char *why) {
        dropped_ = true;
        inexact(std::string(static_cast<size_t>(count), letter) + " dropped: " + why);
    }

    // One CLDR field, a letter repeated count times: the letter picks its family.
    void field(char letter, int count) {
        const std::string f(static_cast<size_t>(count), letter);
        switch (letter) {
        case 'G': return era(f);
        case 'y': return calendarYear(f, count);
        case 'u':
        case 'r': return directive(u"Y");
        case 'Y': return weekYear(f, count);
        case 'U': return drop(letter, count, "no cyclic year");
        case 'Q':
        case 'q': return quarter(f, letter, count);
        case 'M':
        case 'L': return month(f, letter, count);
        case 'w': return weekOfYear(f, count);
        case 'W': return drop(letter, count, "no week of the month");
        case 'F': return drop(letter, count, "no weekday in the month");
        case 'g': return drop(letter, count, "no modified Julian day");
        case 'A': return drop(letter, count, "no milliseconds in the day");
        case 'd': return dayOfMonth(f, count);
        case 'D': return dayOfYear(f, count);
        case 'E': return weekdayName(f, count, false);
        case 'e':
        case 'c': return localWeekday(f, letter, count);
        case 'a': return amPmMark(f, count);
        case 'b':
        case 'B': return dayPeriod(f);
        case 'h': return twoDigits(f, count, u"I", u"#I", u"I");
        case 'H': return twoDigits(f, count, u"H", u"#H", u"H");
        case 'K': return hourFromZero(f, count);
        case 'k': return hourToTwentyFour(f, count);
        case 'm': return twoDigits(f, count, u"M", u"#M", u"M");
        case 's': return twoDigits(f, count, u"S", u"#S", u"S");
        case 'S': return fraction(letter, count);
        case 'z':
        case 'Z':
        case 'O':
        case 'v':
        case 'V':
        case 'X':
        case 'x': return zone(f, letter, count);
        default: return drop(letter, count, "not a field of a date pattern");
        }
    }

    void era(const std::string &f) {
        if (options_.eraName.empty()) {
            drop(f[0], int(f.size()), "no era directive");
        } else {
            literalText(options_.eraName);
            note(f + " written as the era name of years after 0");
        }
    }

    void calendarYear(const std::string &f, int count) {
        if (count == 2) {
            directive(u"y");
        } else {
            directive(u"Y");
            if (count > 4) inexact(f + " written as %Y: four digits");
        }
    }

    // The engine's only week year is the ISO one.
    void weekYear(const std::string &f, int count) {
        if (options_.weekRule == WeekRule::Iso && !options_.forReading) {
            directive(count == 2 ? u"g" : u"G");
        } else {
            directive(count == 2 ? u"y" : u"Y");
            inexact(f + " (week year) written as the calendar year");
        }
    }

    // Q formatting, q stand-alone; the engine has names for a quarter, no number.
    void quarter(const std::string &f, char letter, int count) {
        const bool reading = options_.forReading;
        const bool other = letter == 'q' && !reading;
        if (count <= 2) {
            directive(other ? u"#q" : u"q");
            inexact(f + " (quarter number) written as the abbreviated quarter name");
        } else if (count == 3) {
            directive(other ? u"#q" : u"q");
        } else if (count == 4) {
            directive(other ? u"#Q" : u"Q");
        } else {
            directive(other ? u"#q" : u"q");
            inexact(f + " (narrow quarter) written as the abbreviated name");
        }
        if (letter == 'q' && reading && count >= 3)
            inexact(f + " written with the formatting names: the reader has no other form");
    }

    // M formatting, L stand-alone: a number or a name.
    void month(const std::string &f, char letter, int count) {
        const bool reading = options_.forReading;
        const bool standAlone = letter == 'L';
        if (count == 1) {
            directive(reading ? u"O" : u"#m");
        } else if (count == 2) {
            directive(u"m");
        } else if (count == 3 || count >= 5) {
            directive(standAlone && !reading ? u"#b" : u"b");
            if (count >= 5) inexact(f + " (narrow month) written as the abbreviated name");
        } else {
            directive(standAlone && !reading ? u"#B" : u"B");
        }
        if (standAlone && reading && count >= 3)
            inexact(f + " written with the formatting names: the reader has no other form");
    }

    // The week of the year by the locale's week rule.
    void weekOfYear(const std::string &f, int count) {
        const bool unpadded = count == 1 && !options_.forReading;
        switch (options_.weekRule) {
        case WeekRule::Iso:
            directive(unpadded ? u"#V" : u"V");
            break;
        case WeekRule::SundayFirst:
            directive(unpadded ? u"#U" : u"U");
            inexact(f + " written as the week from the first Sunday");
            break;
        case WeekRule::MondayFirst:
            directive(unpadded ? u"#W" : u"W");
            inexact(f + " written as the week from the first Monday");
            break;
        }
        if (options_.forReading && count == 1) inexact(f + " written padded: the reader has no flags");
    }

    void dayOfMonth(const std::string &f, int count) {
        if (count == 1)
            directive(options_.forReading ? u"E" : u"#d");
        else
            directive(u"d");
        if (count > 2) inexact(f + " written as two digits");
    }

    void dayOfYear(const std::string &f, int count) {
        if (options_.forReading) {
            directive(u"j");
            if (count < 3) inexact(f + " written padded: the reader has no flags");
        } else if (count >= 3) {
            directive(u"j");
            if (count > 3) inexact(f + " written as three digits");
        } else {
            directive(u"#j");
            if (count == 2) inexact(f + " written unpadded");
        }
    }

    // A weekday name, wide at four letters, else abbreviated; `other` takes
    // the stand-alone names.
    void weekdayName(const std::string &f, int count, bool other) {
        if (count == 4) {
            directive(other ? u"#A" : u"A");
        } else {
            directive(other ? u"#a" : u"a");
            if (count >= 5) inexact(f + " (narrow or short weekday) written as the abbreviated name");
        }
    }

    // e formatting, c stand-alone: a number up to two letters, else a name.
    void localWeekday(const std::string &f, char letter, int count) {
        const bool reading = options_.forReading;
        if (count <= 2) {
            if (reading) {
                drop(letter, count, "the reader takes %u for a weekday name");
            } else {
                directive(u"u");
                inexact(f + " (weekday number) written as %u, 1 for Monday");
            }
        } else {
            weekdayName(f, count, letter == 'c' && !reading);
        }
        if (letter == 'c' && reading && count >= 3)
            inexact(f + " written with the formatting names: the reader has no other form");
    }

    void amPmMark(const std::string &f, int count) {
        directive(u"p");
        if (count >= 4) inexact(f + " (wide or narrow mark) written as the abbreviated mark");
    }

    void dayPeriod(const std::string &f) {
        directive(u"p");
        inexact(f + " (day period) written as the AM/PM mark");
    }

    void hourFromZero(const std::string &f, int count) {
        twoDigits(f, count, u"L", u"#L", u"I");
        inexact(f + " (hour 0 to 11) written on the 0 to 12 clock: noon shows 12");
    }

    void hourToTwentyFour(const std::string &f, int count) {
        twoDigits(f, count, u"K", u"#K", u"H");
        if (options_.forReading) inexact(f + " (hour 1 to 24) written as 0 to 23");
    }

    void fraction(char letter, int count) {
        // The separator before the fraction belongs to it.
        if (!out_.empty() && (out_.back() == u'.' || out_.back() == u',')) out_.pop_back();
        drop(letter, count, "%S writes the fraction when the call asks for decimals");
    }

    void zone(const std::string &f, char letter, int count) {
        if (options_.forReading) {
            drop(letter, count, "the reader has no time zone");
        } else {
            directive(u"z");
            inexact(f + " (time zone) written as the UTC offset");
        }
    }

    // Two-unit numeric fields: count 1 unpadded, 2 padded; the reader knows
    // only the padded letter.
    void twoDigits(const std::string &f, int count, std::u16string_view padded, std::u16string_view unpadded,
              std::u16string_view forReader) {
        if (options_.forReading) {
            directive(forReader);
            if (count == 1) inexact(f + " written padded: the reader has no flags");
        } else {
            directive(count == 1 ? unpadded : padded);
        }
        if (count > 2) inexact(f + " written as two digits");
    }

    // After a dropped field: empty brackets go, blank runs become one blank,
    // blanks at both ends go. A %% pair is kept whole.
    void tidy() {
        std::u16string s = out_;
        bool changed = true;
        while (changed) {
            changed = false;
            for (const char16_t *pair : {u"()", u"[]", u"( )", u"[ ]", u"\uFF08\uFF09"}) {
                size_t at = s.find(pair);
                if (at != std::u16string::npos) {
                    s.erase(at, std::char_traits<char16_t>::length(pair));
                    changed = true;
                }
            }
        }
        std::u16string t;
        for (char16_t c : s) {
            if (c == u' ' && (t.empty() || t.back() == u' ')) continue;
            t += c;
        }
        while (!t.empty() && t.back() == u' ') t.pop_back();
        // A literal separator left hanging at either end by a dropped field
        // (", " before a dropped zone, for instance) goes as well.
        while (!t.empty() && (t.back() == u',' || t.back() == u'\u060C' || t.back() == u'-' || t.back() == u'/')) {
            t.pop_back();
            while (!t.empty() && t.back() == u' ') t.pop_back();
        }
        out_ = t;
    }

    const ConvertOptions &options_;
    std::u16string out_;
    ConvertedPattern result_;
    bool dropped_ = false;
};

} // namespace

ConvertedPattern convertCldrPattern(std::u16string_view cldr, const ConvertOptions &options) {
    return Converter(options).run(cldr);
}

ConvertedPattern convertCldrPattern(std::u16string_view cldr, bool forReading) {
    ConvertOptions options;
    options.forReading = forReading;
    return convertCldrPattern(cldr, options);
}

} // namespace zvhost
