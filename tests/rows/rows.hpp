// What the tests over all rows of the format table share: the family of a
// row by its name, and a value and a width each family takes as ordinary.
#pragma once

#include <optional>
#include <string>

#include "zvlocfmt/zvlocfmt.h"

namespace rows {

enum class Fam { Date, Datetime, Time, Clock, Week, YyWeek, DtWeek, Names, Number, Percent, Best, Currency,
                 RDate, RWeek, RMonth, RNumber, RCurrency };

inline bool starts(const std::string &s, const char *p) { return s.rfind(p, 0) == 0; }

inline Fam famOf(const std::string &n) {
    if (n[0] == '@') {
        if (starts(n, "@NLDAT") || starts(n, "@NLTIM")) return Fam::RDate;
        if (starts(n, "@WEEK")) return Fam::RWeek;
        if (n == "@NLSTRMON") return Fam::RMonth;
        if ((starts(n, "@NLMNI") || starts(n, "@NLMNL")) && n.size() == 9) return Fam::RCurrency;
        return Fam::RNumber;
    }
    if (n == "NLDATMTM" || n == "NLDATMTZ") return Fam::Clock;
    if (starts(n, "NLTIM")) return Fam::Time;
    if (starts(n, "NLDATM")) return Fam::Datetime;
    if (starts(n, "NLDATE")) return Fam::Date;
    if (starts(n, "WEEK")) return Fam::Week;
    if (starts(n, "YYWEEK")) return Fam::YyWeek;
    if (n == "DTWEEKV") return Fam::DtWeek;
    if (starts(n, "NLSTR")) return Fam::Names;
    if ((starts(n, "NLMNI") || starts(n, "NLMNL")) && n.size() == 8) return Fam::Currency;
    if (n == "NLBEST" || n == "NLD") return Fam::Best;
    if (n == "NLPCTN" || n == "NLPCTP") return Fam::Percent;
    return Fam::Number;
}

inline bool leftMark(Fam f) { return f <= Fam::DtWeek; }
// Rows that check width and decimals themselves under bit 0 of flags.
struct Limits { int width, decimals; };
inline std::optional<Limits> ownLimits(Fam f) {
    if (f == Fam::Number || f == Fam::RNumber) return Limits{32, 31};
    if (f == Fam::Names || f == Fam::RMonth) return Limits{200, 3};
    return std::nullopt;
}
// What a format answers when its locale block can't be had.
inline int32_t blockFailure(const std::string &n, Fam f) {
    static const char *const direct[] = {"NLDATES", "NLDATEMDS", "NLDATMMDS", "NLDATEYMS", "NLDATMYMS",
                                         "NLDATEYQS", "NLDATMYQS"};
    for (const char *d : direct)
        if (n == d) return ZV_NO_MEMORY;
    return f == Fam::Week || f == Fam::YyWeek || f == Fam::DtWeek ? ZV_NO_MEMORY : 0;
}
inline int widthFor(const FormatTableRow &r, Fam f) { return f == Fam::DtWeek ? 11 : int(r.defaultWidth); }

// A text each informat reads: a week, a month's name, a number, or a date,
// time or datetime in its fixed form.
inline std::string ordinaryText(const std::string &n, Fam f) {
    if (f != Fam::RDate) return f == Fam::RWeek ? "2021W01" : f == Fam::RMonth ? "May" : "12";
    return starts(n, "@NLTIM") ? "10:30" : starts(n, "@NLDATM") ? "01JAN2000:10:30:00" : "01JAN2000";
}

inline double ordinary(Fam f, int turn = 0) {
    const double date[] = {23440, -138061, 6589335.5, 0, -1};
    const double datetime[] = {23440 * 86400.0 + 50829.25, -11928470400.0, 569318630399.5, -0.5};
    const double number[] = {-1234.5678, 0, 0.004, 98765432.1, -1e30};
    switch (f) {
    case Fam::Date: case Fam::Week: case Fam::YyWeek: return date[turn % 5];
    case Fam::Datetime: case Fam::Clock: case Fam::DtWeek: return datetime[turn % 4];
    case Fam::Time: return 50829.6 + 40000.0 * (turn % 3) - 60000.0 * (turn % 2);
    case Fam::Names: return 1 + turn % 4;
    default: return number[turn % 5];
    }
}

} // namespace rows
