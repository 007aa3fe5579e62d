// zvfmt: the formats and informats of zvlocfmt from the command line, and a
// JSON-lines protocol for programs that drive them.
#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <unistd.h>

#include <nlohmann/json.hpp>

#include "cldr.hpp"
#include "zvlocfmt/version.h"

#include "jsonl.hpp"
#include "lines.hpp"
#include "session.hpp"
#include "value.hpp"

namespace {

using zvfmt::Baseline;
using zvfmt::Session;

constexpr const char *kVersion = "zvfmt (zvlocfmt " ZVLOCFMT_VERSION_TEXT ")";

constexpr const char *kMainHelp = R"TXT(zvfmt - the locale-sensitive formats and informats of zvlocfmt

Usage:
  zvfmt [OPTIONS] NAME[W[.D]] [VALUE...]    write values with a format
  zvfmt [OPTIONS] @NAME[W[.D]] [TEXT...]    read texts with an informat
  zvfmt [OPTIONS] ROUTINE[W[.D]] [TEXT...]  run a routine without a row
                                            (readAnyDate, readHexNumber, ...)
  zvfmt list [LIST OPTIONS]                 the table: name, kind, widths, decimals, state
  zvfmt value VALUE...                      show the double a VALUE stands for
  zvfmt demo [-l LOCALE]                    a short tour of what exists
  zvfmt locales                             the locales the host knows (from CLDR)
  zvfmt items [LOCALE] [--header]           a locale's 189 items: number, width,
                                            raw text and the text as decoded
  zvfmt --jsonl [OPTIONS]                   JSON-lines protocol on stdin and stdout
  zvfmt help [COMMAND]                      help on a command: format, list, value,
                                            demo, locales, items, jsonl
  zvfmt --version

With no VALUE (or TEXT) the values are read from stdin, one a line, and one
line is written for each line read.

A VALUE is a number (12, -3.5, 1e6), an ISO date 2024-03-05 (a day count
from 1 January 1960), an ISO datetime 2024-03-05T14:07:09.5 (a second count),
a time of day 14:07:09 (seconds from midnight), '.' (the plain missing value)
or .A to .Z, ._ (special missing values). Put '--' before values that begin
with '-' and are not numbers.

Options:
  -l, --locale NAME        locale of the call (default: LC_ALL, then LANG,
                           else en_US); en_US.UTF-8, de_DE@euro, C work
  -e, --encoding NAME      host encoding (default UTF-8); formats then run
                           through their byte entry and widths count bytes
      --entry wide|byte    the entry of a format (default wide; byte with -e)
      --tz NAME            IANA time zone of the host (default UTC)
      --bytes              measure the width in bytes of the host encoding
      --units              measure the width in UTF-16 units, also with -e
      --raw                write the bytes of the -e encoding, not UTF-8
      --width N, --decimals N
                           width and decimals of the call, any 32-bit integer
                           (outside the row's limits with --unchecked)
      --option NAME=VALUE  set an integer host option, e.g.
                           ZV_NAME_YEARCUTOFF=1920 (repeatable)
      --item N=TEXT        replace raw locale item N (0..188) before the
                           locale block is built; <Uxxxx> escapes allowed
      --locale-file PATH   a locale definition file: one item a line, the
                           number, a tab and the raw text; laid over the
                           locale before --item (repeatable)
      --clock S[,SHIFT]    fix the host clock (a second count, and a shift)
      --validate           let the routine check width and decimals itself
      --unchecked          pass width and decimals outside the row's limits
      --invalid MODE       a bad value (unreadable, or a status other than 0):
                           abort   stop there, exit 2
                           fail    write the input as it was, a message on
                                   stderr, exit 2 at the end (the default)
                           warn    the same, exit 0
                           ignore  the same without the message, exit 0
      --field FIELDS       convert only these fields of each line: 1-based,
                           lists and ranges (2,4-5, 3-, -2); the rest of the
                           line stays as it was
  -d, --delimiter X        the field delimiter, one character (default: runs
                           of blanks)
      --header[=N]         pass the first N lines of stdin through (default 1)
  -v, --show-status        print the status after each result
  -h, --help               this text

Exit status: 0 when every value was done with status 0 (or with --invalid
warn or ignore), 2 for a bad value under fail or abort and for bad arguments.
)TXT";

constexpr const char *kFormatHelp = R"TXT(zvfmt NAME[W[.D]] [VALUE...]     zvfmt @NAME[W[.D]] [TEXT...]

NAME is a row of the table in any case (see 'zvfmt list'); W is the width and
D the decimals, both optional: NLDATE20, nlnum12.2, NLNUM.2, @NLDATE. Without
them the row's defaults apply. A width below the row's least width is passed on
with a note on stderr (the routines handle any width; a host may refuse it); a
width above the most, or decimals outside the row's limits, is refused unless
--unchecked is given.

A format prints the text the routine wrote, blanks included, one line per
value. An informat prints the value it read as the shortest number that reads
back the same, or the mark of a missing value (., .A, ._); "untouched" when
the routine did not write its result. With -v a tab and "status=N" follow.

A status other than 0 makes the value bad: the input is written as it was and
stderr says why, e.g. "status -2143295481 (0x803fe807), the field is too
small for UTF-8" (see --invalid).

The routines without a row (zvfmt list --all) run the same way: the date
guesses and number readers answer as informats, byte answers come as hex,
the base-64 encoders as text. reverseBytes and encodeBase64Bytes take hex.
Their width defaults to the length of the text.

Statuses are signed; negative ones other than -1 also show their hex, e.g.
"status=-2143295481 (0x803fe807)". See 'zvfmt --help' for the options.
)TXT";

constexpr const char *kListHelp = R"TXT(zvfmt list [--formats | --informats] [--pending | --ready] [--all] [--json] [--header]

Prints one line per row of the table, in table order:
  name, kind (format/informat), min, max and default width,
  max and default decimals, state
Every row is built, so the state is always "ready": --ready lists every row
and --pending none. Both stay accepted for the scripts that give them.

  --formats     only the formats          --informats   only the informats
  --pending     only pending rows (none)  --ready       only ready rows (all)
  --json        one JSON object a row     --header      a header line first
  --all         the routines without a row follow, kind "routine"; a "-"
                stands for a limit they don't check (JSON null), and their
                default width is the length of the text

The count of rows goes to stderr, so 'zvfmt list | wc -l' counts rows.
)TXT";

constexpr const char *kLocalesHelp = R"TXT(zvfmt locales

Prints the locales the host knows, one a line, sorted: every locale of ICU's
CLDR data, with and without territory (fr, fr_FR, de_CH, ...).
)TXT";

constexpr const char *kItemsHelp = R"TXT(zvfmt items [LOCALE] [--header] [-e ENCODING] [--item N=TEXT] [--locale-file PATH]

Prints the 189 items of a locale (default: -l, then LC_ALL, LANG, en_US), one
a line: number, the width the module works out in the host encoding, the raw
text (bytes outside printable ASCII as \xNN) and the text as decoded (a
middle dot for control units). --header adds a header line.
)TXT";

constexpr const char *kValueHelp = R"TXT(zvfmt value VALUE...

Shows how the tool reads each VALUE: the VALUE, the double (shortest form, or
the missing mark) and its 16 hex digits, separated by tabs. See 'zvfmt --help'
for the forms of a VALUE.
)TXT";

constexpr const char *kDemoHelp = R"TXT(zvfmt demo [-l LOCALE]

A short tour: dates, times, numbers, money and names in a few locales, reading
text back, the missing-value marks and the host encodings through the byte
entry. With -l every example uses that locale.
)TXT";

constexpr const char *kJsonlHelp = R"TXT(zvfmt --jsonl [OPTIONS]

Reads one JSON object a line from stdin and writes one answer a line to stdout,
flushed at once, so the tool works as a coprocess. A request:

  {"name": "NLDATE", "width": 20, "value": "2024-03-05", "locale": "fr_FR", "id": 1}
  {"name": "@NLNUM", "width": 12, "text": "1,234.5"}

Fields: name, width, decimals, value, bits, text, entry, locale, items,
encoding, measureBytes, validate, fieldLimit, outputCapacity, timeZone,
options, clock, id. A format answers status, text, outputLength (and hex for
the byte entry); an informat answers status, bits, value, missing, untouched.
A routine without a row takes text (hex for reverseBytes and
encodeBase64Bytes) and answers as an informat (number), with hex (bytes) or
with text. A bad line is answered with {"error": "...", "id": ...} and the
stream goes on. -l, -e, --tz, --option, --item, --clock, --bytes and
--validate set what a request starts from (locale en_US, widths in units
unless --bytes). The full reference is docs/zvfmt.md.
)TXT";

enum class Invalid { Abort, Fail, Warn, Ignore };

// Fields chosen by --field: 1-based ranges, inclusive.
struct Fields {
    std::vector<std::pair<int64_t, int64_t>> ranges;
    bool chosen(int64_t n) const {
        for (const auto &[lo, hi] : ranges)
            if (n >= lo && n <= hi) return true;
        return false;
    }
};

struct Args {
    Baseline baseline;
    bool entryGiven = false;
    bool units = false, raw = false, all = false;
    Invalid invalid = Invalid::Fail;
    std::optional<Fields> fields;
    std::optional<char> delimiter;
    int64_t headerLines = 0;
    std::optional<int32_t> width, decimals;
    bool unchecked = false;
    bool showStatus = false;
    bool help = false;
    bool version = false;
    bool jsonl = false;
    // list
    bool formats = false, informats = false, pending = false, ready = false, json = false, header = false;
    std::vector<std::string> listOptions; // which list options were given, for errors elsewhere
    bool localeGiven = false;
    std::vector<std::string> localeFiles; // --locale-file, applied before --item
    std::vector<std::string> positional;
};

[[noreturn]] void usageError(const std::string &message) {
    std::fprintf(stderr, "zvfmt: %s\nTry 'zvfmt --help'.\n", message.c_str());
    std::exit(2);
}

bool startsNumber(const std::string &arg) {
    if (arg.size() >= 2 && arg[0] == '-' &&
        ((arg[1] >= '0' && arg[1] <= '9') || (arg[1] == '.' && arg.size() >= 3 && arg[2] >= '0' && arg[2] <= '9')))
        return true;
    return arg.size() >= 2 && arg[0] == '-' && arg[1] != '-' && zvfmt::parseValue(arg).has_value();
}

Fields parseFields(const std::string &text) {
    Fields f;
    size_t start = 0;
    while (start <= text.size()) {
        const size_t comma = std::min(text.find(',', start), text.size());
        const std::string part = text.substr(start, comma - start);
        const size_t dash = part.find('-');
        auto number = [&](const std::string &digits, int64_t empty) -> int64_t {
            if (digits.empty()) return empty;
            int64_t v = 0;
            const auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), v);
            if (ec != std::errc() || end != digits.data() + digits.size() || v < 1)
                usageError("--field: \"" + text + "\" is not a list of fields and ranges (1-based: 2,4-5, 3-, -2)");
            return v;
        };
        if (part.empty() || part == "-") usageError("--field: \"" + text + "\" is not a list of fields and ranges (1-based: 2,4-5, 3-, -2)");
        if (dash == std::string::npos) {
            const int64_t n = number(part, 0);
            f.ranges.emplace_back(n, n);
        } else {
            const int64_t lo = number(part.substr(0, dash), 1), hi = number(part.substr(dash + 1), INT64_MAX);
            if (lo > hi) usageError("--field: the range " + part + " runs backwards");
            f.ranges.emplace_back(lo, hi);
        }
        start = comma + 1;
    }
    return f;
}

int64_t parseInteger(const std::string &text, const std::string &what) {
    std::string_view t = text;
    if (t.size() > 1 && t[0] == '+') t.remove_prefix(1);
    int64_t v = 0;
    const auto [end, ec] = std::from_chars(t.data(), t.data() + t.size(), v);
    if (t.empty() || ec != std::errc() || end != t.data() + t.size())
        usageError(what + ": \"" + text + "\" is not an integer");
    return v;
}

// One option as given: its name and a value written into it (--name=value,
// -lfr_FR), or else the next argument when the option wants one.
struct OptionArg {
    std::string name, inlineValue;
    bool hasInline = false;
    int argc;
    char **argv;
    int &at; // the argument read last

    std::string value() {
        if (hasInline) return inlineValue;
        if (at + 1 >= argc) usageError("option " + name + " needs a value");
        return argv[++at];
    }
    void flag(bool &target) const {
        if (hasInline) usageError("option " + name + " takes no value");
        target = true;
    }
};

OptionArg splitOption(const std::string &arg, int argc, char **argv, int &at) {
    OptionArg o{arg, {}, false, argc, argv, at};
    if (arg.rfind("--", 0) == 0) {
        const size_t eq = arg.find('=');
        if (eq != std::string::npos) {
            o.name = arg.substr(0, eq);
            o.inlineValue = arg.substr(eq + 1);
            o.hasInline = true;
        }
    } else if (arg.size() > 2) { // -lfr_FR
        o.name = arg.substr(0, 2);
        o.inlineValue = arg.substr(2);
        o.hasInline = true;
    }
    return o;
}

// The options without a value; false when `o` is none of them.
bool takeFlag(Args &a, OptionArg &o) {
    const std::string &name = o.name;
    if (name == "-h" || name == "--help") o.flag(a.help);
    else if (name == "--version") o.flag(a.version);
    else if (name == "--jsonl") o.flag(a.jsonl);
    else if (name == "-v" || name == "--show-status") o.flag(a.showStatus);
    else if (name == "--bytes") o.flag(a.baseline.measureBytes);
    else if (name == "--units") o.flag(a.units);
    else if (name == "--raw") o.flag(a.raw);
    else if (name == "--validate") o.flag(a.baseline.validate);
    else if (name == "--unchecked") o.flag(a.unchecked);
    else return false;
    return true;
}

// The options of 'zvfmt list', noted so that other commands can refuse them.
bool takeListFlag(Args &a, OptionArg &o) {
    const std::string &name = o.name;
    if (name == "--all") o.flag(a.all);
    else if (name == "--formats") o.flag(a.formats);
    else if (name == "--informats") o.flag(a.informats);
    else if (name == "--pending") o.flag(a.pending);
    else if (name == "--ready") o.flag(a.ready);
    else if (name == "--json") o.flag(a.json);
    else return false;
    a.listOptions.push_back(name);
    return true;
}

// --item N=TEXT: a raw item, its <Uxxxx> escapes checked.
void takeItem(Baseline &baseline, const std::string &v) {
    const size_t eq = v.find('=');
    if (eq == std::string::npos || eq == 0) usageError("--item wants N=TEXT, not \"" + v + "\"");
    const int64_t n = parseInteger(v.substr(0, eq), "--item");
    if (n < 0 || n >= ZV_LOCALE_TABLE_ITEMS)
        usageError("--item: item number " + std::to_string(n) + " is out of range (0.." +
                   std::to_string(ZV_LOCALE_TABLE_ITEMS - 1) + ")");
    std::string raw, why;
    if (!zvhost::rawItemText(v.substr(eq + 1), raw, why)) usageError("--item " + std::to_string(n) + ": the text " + why);
    baseline.items[static_cast<int>(n)] = raw;
}

// --clock S[,SHIFT]
std::pair<double, double> parseClock(const std::string &v) {
    const size_t comma = v.find(',');
    std::string why;
    auto value = zvfmt::parseValue(v.substr(0, comma), &why);
    std::optional<double> shift = 0.0;
    if (comma != std::string::npos) shift = zvfmt::parseValue(v.substr(comma + 1), &why);
    if (!value || !shift) usageError("--clock wants S or S,SHIFT, not \"" + v + "\"");
    return {*value, *shift};
}

// What a call starts from: width, decimals, locale, encoding, entry, the host's
// time zone, options and clock, items.
bool takeCallOption(Args &a, OptionArg &o) {
    const std::string &name = o.name;
    if (name == "--width" || name == "--decimals") {
        const int64_t n = parseInteger(o.value(), name);
        if (n < INT32_MIN || n > INT32_MAX) usageError(name + ": " + std::to_string(n) + " is not a 32-bit integer");
        (name == "--width" ? a.width : a.decimals) = static_cast<int32_t>(n);
    } else if (name == "-l" || name == "--locale") {
        a.baseline.locale = zvfmt::hostLocaleName(o.value());
        a.localeGiven = true;
    } else if (name == "-e" || name == "--encoding") {
        a.baseline.encoding = o.value();
        if (!a.entryGiven) a.baseline.byteEntry = true;
    } else if (name == "--entry") {
        const std::string e = o.value();
        if (e == "wide") a.baseline.byteEntry = false;
        else if (e == "byte") a.baseline.byteEntry = true;
        else usageError("--entry must be wide or byte, not \"" + e + "\"");
        a.entryGiven = true;
    } else if (name == "--tz") {
        a.baseline.timeZone = o.value();
    } else if (name == "--option") {
        const std::string v = o.value();
        const size_t eq = v.find('=');
        if (eq == std::string::npos || eq == 0) usageError("--option wants NAME=VALUE, not \"" + v + "\"");
        a.baseline.options[v.substr(0, eq)] = parseInteger(v.substr(eq + 1), "--option " + v.substr(0, eq));
    } else if (name == "--item") {
        takeItem(a.baseline, o.value());
    } else if (name == "--clock") {
        a.baseline.clock = parseClock(o.value());
    } else if (name == "--locale-file") {
        a.localeFiles.push_back(o.value());
    } else {
        return false;
    }
    return true;
}

// How lines are cut into fields and what a bad value does.
bool takeLineOption(Args &a, OptionArg &o) {
    const std::string &name = o.name;
    if (name == "--invalid") {
        const std::string m = o.value();
        if (m == "abort") a.invalid = Invalid::Abort;
        else if (m == "fail") a.invalid = Invalid::Fail;
        else if (m == "warn") a.invalid = Invalid::Warn;
        else if (m == "ignore") a.invalid = Invalid::Ignore;
        else usageError("--invalid must be abort, fail, warn or ignore, not \"" + m + "\"");
    } else if (name == "--field") {
        a.fields = parseFields(o.value());
    } else if (name == "-d" || name == "--delimiter") {
        const std::string d = o.value();
        if (d.size() != 1) usageError("the delimiter must be one character, not \"" + d + "\"");
        a.delimiter = d[0];
    } else if (name == "--header") { // its count is optional, so it is never taken from the next argument
        a.header = true;
        a.headerLines = o.hasInline ? parseInteger(o.inlineValue, "--header") : 1;
        if (a.headerLines < 0) usageError("--header: the count of lines can't be negative");
    } else {
        return false;
    }
    return true;
}

// Locale definition files lay their items over the locale; --item wins over them.
void layLocaleFiles(Args &a) {
    std::map<int, std::string> fromFiles;
    for (const std::string &path : a.localeFiles) {
        std::FILE *f = std::fopen(path.c_str(), "rb");
        if (!f) usageError("--locale-file: cannot read \"" + path + "\"");
        std::string content;
        char chunk[4096];
        for (size_t n; (n = std::fread(chunk, 1, sizeof chunk, f)) > 0;) content.append(chunk, n);
        std::fclose(f);
        std::map<int, std::string> items;
        std::string error;
        if (!zvhost::parseLocaleDefinition(content, items, error))
            usageError("--locale-file " + path + ": " + error);
        for (auto &[k, v] : items) fromFiles[k] = v;
    }
    for (auto &[k, v] : a.baseline.items) fromFiles[k] = v;
    a.baseline.items = std::move(fromFiles);
}

Args parseArgs(int argc, char **argv) {
    Args a;
    bool onlyPositional = false;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (onlyPositional || arg.empty() || arg[0] != '-' || arg == "-" || startsNumber(arg)) {
            a.positional.push_back(arg);
        } else if (arg == "--") {
            onlyPositional = true;
        } else {
            OptionArg o = splitOption(arg, argc, argv, i);
            if (!takeFlag(a, o) && !takeListFlag(a, o) && !takeCallOption(a, o) && !takeLineOption(a, o))
                usageError("unknown option " + o.name);
        }
    }
    layLocaleFiles(a);
    return a;
}

// The locale of the environment, as date and printf take it: LC_ALL, then LANG.
void useEnvironmentLocale(Baseline &baseline) {
    const char *all = std::getenv("LC_ALL"), *lang = std::getenv("LANG");
    baseline.locale = zvfmt::hostLocaleName(all && *all ? all : lang && *lang ? lang : "");
    baseline.localeFromEnvironment = true;
}

std::unique_ptr<Session> startSession(const Baseline &baseline) {
    auto session = std::make_unique<Session>(baseline);
    std::string error;
    if (!session->start(error)) usageError(error);
    return session;
}

void printLine(const std::string &text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fputc('\n', stdout);
}

// ---- list --------------------------------------------------------------------

int runList(const Args &a) {
    if (a.positional.size() > 1) usageError("list takes no arguments, got \"" + a.positional[1] + "\"");
    if (a.formats && a.informats) usageError("give --formats or --informats, not both");
    if (a.pending && a.ready) usageError("give --pending or --ready, not both");
    auto session = startSession(a.baseline);
    const auto rows = session->rows();
    size_t shown = 0, formats = 0;
    if (a.header && !a.json)
        printLine("NAME       KIND      MINW MAXW DEFW MAXD DEFD STATE");
    for (const FormatTableRow *row : rows) {
        const bool informat = zvhost::isInformat(*row);
        formats += !informat;
        if ((a.formats && informat) || (a.informats && !informat) || a.pending) continue;
        ++shown;
        const std::string name = zvhost::rowName(*row);
        if (a.json) {
            nlohmann::ordered_json j;
            j["name"] = name;
            j["kind"] = informat ? "informat" : "format";
            j["minWidth"] = row->minWidth;
            j["maxWidth"] = row->maxWidth;
            j["defaultWidth"] = row->defaultWidth;
            j["minDecimals"] = row->minDecimals;
            j["maxDecimals"] = row->maxDecimals;
            j["defaultDecimals"] = row->defaultDecimals;
            j["state"] = "ready";
            printLine(j.dump());
        } else {
            char line[160];
            std::snprintf(line, sizeof line, "%-10s %-8s %4u %4u %4u %4u %4u %s", name.c_str(),
                          informat ? "informat" : "format", row->minWidth, row->maxWidth,
                          row->defaultWidth, row->maxDecimals, row->defaultDecimals, "ready");
            printLine(line);
        }
    }
    size_t routines = 0;
    for (const zvhost::Routine &r : a.all && !a.formats && !a.informats && !a.pending ? zvhost::routines()
                                                                                       : std::vector<zvhost::Routine>{}) {
        ++routines;
        const char *answer = r.answer == zvhost::RoutineAnswer::Number  ? "number"
                             : r.answer == zvhost::RoutineAnswer::Bytes ? "bytes"
                                                                        : "text";
        if (a.json) {
            nlohmann::ordered_json j;
            j["name"] = r.name;
            j["kind"] = "routine";
            j["minWidth"] = r.checksLimits ? nlohmann::ordered_json(r.minWidth) : nullptr;
            j["maxWidth"] = r.checksLimits ? nlohmann::ordered_json(r.maxWidth) : nullptr;
            j["defaultWidth"] = nullptr;
            j["minDecimals"] = 0;
            j["maxDecimals"] = r.checksLimits ? nlohmann::ordered_json(r.maxDecimals) : nullptr;
            j["defaultDecimals"] = 0;
            j["state"] = "ready";
            j["input"] = r.input == zvhost::RoutineInput::Hex ? "hex" : "text";
            j["answer"] = answer;
            printLine(j.dump());
            continue;
        }
        auto limit = [&](int32_t v) { return r.checksLimits ? std::to_string(v) : std::string("-"); };
        char line[200];
        std::snprintf(line, sizeof line, "%-10s %-8s %4s %4s %4s %4s %4u %s", r.name, "routine", limit(r.minWidth).c_str(),
                      limit(r.maxWidth).c_str(), "-", limit(r.maxDecimals).c_str(), 0u, "ready");
        printLine(line);
    }
    std::fflush(stdout);
    std::fprintf(stderr, "%zu of %zu rows (%zu formats, %zu informats)%s\n", shown, rows.size(), formats,
                 rows.size() - formats, routines ? (", and " + std::to_string(routines) + " routines without a row").c_str() : "");
    return 0;
}

// ---- value -------------------------------------------------------------------

std::string showDouble(double v) {
    const std::string mark = zvfmt::missingMark(v);
    return mark.empty() ? zvfmt::shortestNumber(v) : mark;
}

int runValue(const Args &a) {
    if (a.positional.size() < 2) usageError("value needs at least one VALUE");
    int rc = 0;
    for (size_t i = 1; i < a.positional.size(); ++i) {
        std::string why;
        auto v = zvfmt::parseValue(a.positional[i], &why);
        if (!v) {
            std::fprintf(stderr, "zvfmt: bad VALUE \"%s\": %s\n", a.positional[i].c_str(), why.c_str());
            rc = 1;
            continue;
        }
        printLine(a.positional[i] + "\t" + showDouble(*v) + "\t" + zvfmt::hex16(zvfmt::bitsOf(*v)));
    }
    return rc;
}

// ---- format and read -----------------------------------------------------------

// What a status means for the call that got it.
std::string statusReason(int32_t status, const zvhost::CallSpec &spec) {
    if (status == int32_t(0x803fe807u) && spec.entry == zvhost::Entry::Byte)
        return "the field is too small for " + spec.encoding;
    const std::string meaning = zvfmt::statusMeaning(status);
    return meaning.empty() ? "not a status the tool knows" : meaning;
}

// One row or routine, applied to one field at a time.
struct Converter {
    Session &session;
    const FormatTableRow *row = nullptr;     // a format or informat,
    const zvhost::Routine *routine = nullptr; // or a routine without a row
    zvhost::CallSpec spec;
    bool showStatus = false, raw = false;
    std::string label; // NAME[W[.D]] as given, for messages
    zvhost::FormatResult result{}; // kept from value to value
    std::string kept{};            // an answer made here, until the next value

    struct Answer {
        bool good = false;
        std::string_view text;         // what to write, until the next value: the result, or the input as it was
        std::optional<int32_t> status; // for -v; none when the VALUE could not be read
        std::string message;           // why it is bad
    };

    Answer bad(std::string_view field, std::string message, std::optional<int32_t> status = std::nullopt) {
        Answer a;
        a.text = field;
        a.status = status;
        a.message = label + " \"" + std::string(field) + "\": " + message;
        return a;
    }
    Answer badStatus(std::string_view field, int32_t status) {
        return bad(field, "status " + zvfmt::statusText(status) + ", " + statusReason(status, spec), status);
    }
    static Answer good(std::string_view text, int32_t status) { return Answer{true, text, status, {}}; }
    Answer goodMade(std::string text) {
        kept = std::move(text);
        return good(kept, 0);
    }

    Answer convert(std::string_view field) {
        if (routine) return runRoutine(field);
        if (zvhost::isInformat(*row)) {
            const zvhost::ReadResult r = session.calls().read(*row, spec, field);
            if (!r.error.empty()) return bad(field, r.error);
            if (r.status != 0) return badStatus(field, r.status);
            return goodMade(r.untouched ? std::string("untouched") : showDouble(zvfmt::fromBits(r.bits)));
        }
        std::string why;
        const auto value = zvfmt::parseValue(field, &why);
        if (!value) {
            Answer a = bad(field, why);
            a.message = "bad VALUE \"" + std::string(field) + "\": " + why;
            return a;
        }
        session.calls().format(*row, spec, *value, result);
        if (!result.error.empty()) return bad(field, result.error);
        if (result.status != 0) return badStatus(field, result.status);
        if (result.cut) return bad(field, "the text was cut to fit " + std::to_string(spec.width) + " bytes of " + spec.encoding, 0);
        return good(raw ? result.bytes : result.utf8, 0);
    }

    Answer runRoutine(std::string_view field) {
        const zvhost::RoutineResult r = zvhost::runRoutine(session.host(), *routine, spec, field);
        if (!r.error.empty()) return bad(field, r.error);
        if (r.status != 0) return badStatus(field, r.status);
        if (r.overran) return bad(field, "the routine wrote outside its target");
        switch (routine->answer) {
        case zvhost::RoutineAnswer::Number:
            return goodMade(r.untouched ? std::string("untouched") : showDouble(zvfmt::fromBits(r.bits)));
        case zvhost::RoutineAnswer::Bytes: return goodMade(zvfmt::hexBytes(r.bytes));
        default: return goodMade(r.utf8);
        }
    }
};

// Lines in, lines out: the chosen fields of each line converted, the rest
// as it was; a bad value as --invalid says.
struct LineWriter {
    Converter &converter;
    const Args &args;
    bool anyBad = false;
    std::string out;

    // Reports a bad value; false when the run must stop.
    bool report(const std::string &message) {
        anyBad = true;
        if (args.invalid != Invalid::Ignore) {
            std::fflush(stdout);
            std::fprintf(stderr, "zvfmt: %s\n", message.c_str());
        }
        return args.invalid != Invalid::Abort;
    }

    bool line(std::string_view text) {
        out.clear();
        std::string statuses;
        auto field = [&](std::string_view f) -> bool {
            Converter::Answer a = converter.convert(f);
            if (!a.good && !report(a.message)) return false;
            out += a.text;
            if (converter.showStatus) statuses += "\tstatus=" + (a.status ? zvfmt::statusText(*a.status) : "none");
            return true;
        };
        if (!args.fields) {
            if (!field(text)) return false;
        } else {
            int64_t n = 0;
            size_t pos = 0;
            while (pos <= text.size()) {
                size_t start = pos, end;
                if (args.delimiter) {
                    end = std::min(text.find(*args.delimiter, pos), text.size());
                    pos = end + 1;
                } else { // runs of blanks: the blanks before a field stay with it
                    while (start < text.size() && (text[start] == ' ' || text[start] == '\t')) ++start;
                    out.append(text.substr(pos, start - pos));
                    if (start == text.size()) break;
                    end = start;
                    while (end < text.size() && text[end] != ' ' && text[end] != '\t') ++end;
                    pos = end;
                }
                if (args.delimiter && n > 0) out += *args.delimiter;
                ++n;
                const std::string_view f = text.substr(start, end - start);
                if (args.fields->chosen(n)) {
                    if (!field(f)) return false;
                } else {
                    out.append(f);
                }
                if (!args.delimiter && pos == text.size()) break;
            }
        }
        if (converter.showStatus) out += statuses;
        out += '\n';
        std::fwrite(out.data(), 1, out.size(), stdout);
        return true;
    }
};

// NAME[W[.D]] as given, and the routine it names if it names one.
struct Target {
    const zvhost::Routine *routine = nullptr;
    zvfmt::FormatSpec fs;
};

// A routine's name may hold digits (encodeBase64Units): routine names are
// matched first, and what follows one is the width and decimals.
Target parseTarget(const std::string &specText) {
    std::string why;
    Target t;
    std::optional<zvfmt::FormatSpec> fs;
    for (const zvhost::Routine &r : zvhost::routines()) {
        const std::string n = r.name;
        if (specText.size() >= n.size() && zvfmt::upper(specText.substr(0, n.size())) == zvfmt::upper(n)) {
            auto rest = zvfmt::parseFormatSpec("X" + specText.substr(n.size()), &why);
            if (!rest) usageError("bad routine \"" + specText + "\": " + why);
            t.routine = &r;
            fs = rest;
            fs->name = r.name;
        }
    }
    if (!t.routine) fs = zvfmt::parseFormatSpec(specText, &why);
    if (!fs) usageError("bad format \"" + specText + "\": " + why);
    t.fs = *fs;
    return t;
}

// Width and decimals outside the row's limits are refused unless --unchecked;
// a width below the least only draws a note, since the routines take any.
void checkRowLimits(const Args &a, const FormatTableRow &row, const zvhost::CallSpec &spec, const std::string &name) {
    if (a.unchecked) return;
    if (spec.width >= 1 && spec.width < static_cast<int32_t>(row.minWidth))
        std::fprintf(stderr, "zvfmt: note: %s: width %d is below the row's least width %u, which a host may refuse\n",
                     name.c_str(), int(spec.width), unsigned(row.minWidth));
    else if (spec.width < 1 || spec.width > static_cast<int32_t>(row.maxWidth))
        usageError(name + ": width " + std::to_string(spec.width) + " is out of range (" +
                   std::to_string(row.minWidth) + ".." + std::to_string(row.maxWidth) +
                   "; --unchecked passes it on)");
    if (spec.decimals < 0 || spec.decimals > static_cast<int32_t>(row.maxDecimals))
        usageError(name + ": decimals " + std::to_string(spec.decimals) + " is out of range (0.." +
                   std::to_string(row.maxDecimals) + "; --unchecked passes it on)");
}

// The call's record: the session's baseline, the entry, and the width and
// decimals of the options, of NAME[W[.D]] or of the row.
zvhost::CallSpec convertSpec(const Args &a, const Session &session, const FormatTableRow *row, const Target &t,
                             const std::string &name) {
    zvhost::CallSpec spec = zvfmt::callSpecOf(session.baseline());
    spec.entry = a.baseline.byteEntry ? zvhost::Entry::Byte : zvhost::Entry::Wide;
    spec.exact = true;
    const std::optional<int32_t> width = a.width ? a.width : t.fs.width;
    const std::optional<int32_t> decimals = a.decimals ? a.decimals : t.fs.decimals;
    if ((t.routine || zvhost::isInformat(*row)) && spec.entry == zvhost::Entry::Byte) {
        if (a.entryGiven) usageError(name + " reads text; only the formats have a byte entry");
        spec.entry = zvhost::Entry::Wide;
    }
    // With the byte entry the field is measured in bytes of the encoding, so
    // what is written fits it whole; --units measures UTF-16 units.
    spec.measureBytes = a.baseline.measureBytes || (spec.entry == zvhost::Entry::Byte && !a.units);
    if (a.raw && spec.entry != zvhost::Entry::Byte) usageError("--raw writes the bytes of a format's byte entry; give -e ENCODING");
    if (t.routine) {
        spec.width = width ? *width : -1;
        spec.decimals = decimals ? *decimals : 0;
        spec.exact = width.has_value();
    } else {
        spec.width = width ? *width : static_cast<int32_t>(row->defaultWidth);
        spec.decimals = decimals ? *decimals : static_cast<int32_t>(row->defaultDecimals);
        checkRowLimits(a, *row, spec, name);
    }
    return spec;
}

// The VALUEs of the command line, or else the lines of stdin after the header.
int writeLines(const Args &a, LineWriter &writer) {
    static char buffer[1 << 16];
    std::setvbuf(stdout, buffer, _IOFBF, sizeof buffer);
    if (a.positional.size() > 1) {
        for (size_t i = 1; i < a.positional.size(); ++i)
            if (!writer.line(a.positional[i])) return 2;
    } else {
        int64_t n = 0;
        const bool whole = zvfmt::forEachLine(0, stdout, [&](std::string &line, size_t tooLong) {
            if (n++ < a.headerLines) {
                line += '\n';
                std::fwrite(line.data(), 1, line.size(), stdout);
                return true;
            }
            if (!tooLong) return writer.line(line);
            if (!writer.report(zvfmt::tooLongMessage(tooLong))) return false;
            std::fputc('\n', stdout); // the line keeps its place
            return true;
        });
        if (!whole) return 2;
    }
    std::fflush(stdout);
    return writer.anyBad && a.invalid == Invalid::Fail ? 2 : 0;
}

int runConvert(const Args &a) {
    const std::string &specText = a.positional[0];
    const Target t = parseTarget(specText);
    Baseline baseline = a.baseline;
    if (!a.localeGiven) useEnvironmentLocale(baseline);
    auto session = startSession(baseline);
    const FormatTableRow *row = t.routine ? nullptr : session->row(t.fs.name);
    if (!row && !t.routine) usageError("no format, informat or routine named " + t.fs.name + " (see 'zvfmt list --all')");
    const std::string name = row ? zvhost::rowName(*row) : t.routine->name;
    const zvhost::CallSpec spec = convertSpec(a, *session, row, t, name);
    Converter converter{*session, row, t.routine, spec, a.showStatus, a.raw, specText};
    LineWriter writer{converter, a, false, {}};
    return writeLines(a, writer);
}

// ---- demo ----------------------------------------------------------------------

struct Example {
    const char *spec;
    const char *input; // a VALUE for a format, a text for an informat
    const char *locale;
};

const Example kFormatExamples[] = {
    {"NLDATE20", "2024-03-05", "en_US"},     {"NLDATE20", "2024-03-05", "fr_FR"},
    {"NLDATE20", "2024-03-05", "de_DE"},     {"NLDATEW29", "2024-03-05", "ja_JP"},
    {"NLDATEL18", "2024-03-05", "es_ES"},    {"NLDATES10", "2024-03-05", "en_GB"},
    {"NLDATEYQL18", "2024-03-05", "en_US"},  {"NLDATM30", "2024-03-05T14:07:09", "en_US"},
    {"NLDATM30", "2024-03-05T14:07:09", "it_IT"}, {"NLTIME20", "14:07:09", "de_DE"},
    {"NLTIMAP10", "14:07:09", "en_US"},      {"WEEKV11", "2024-03-05", "en_US"},
    {"NLNUM16.2", "1234567.891", "en_US"},   {"NLNUM16.2", "1234567.891", "de_DE"},
    {"NLNUM16.2", "1234567.891", "fr_CH"},   {"NLPCT8.1", "0.256", "fr_FR"},
    {"NLMNY16.2", "-1234.5", "en_US"},       {"NLMNY16.2", "-1234.5", "ja_JP"},
    {"NLMNIEUR16.2", "1234.5", "de_DE"},     {"NLMNLJPY16", "1234.5", "en_US"},
    {"NLBEST12", "3.14159265358979", "en_US"}, {"NLSTRMON20", "2", "fr_FR"},
    {"NLSTRQTR20", "4", "de_DE"},            {"NLSTRWK20", "1", "es_ES"},
};

const Example kInformatExamples[] = {
    {"@NLDATE20", "5 mars 2024", "fr_FR"},   {"@NLDATM30", "March 5, 2024 14:07:09", "en_US"},
    {"@NLTIME20", "14:07:09", "de_DE"},      {"@NLNUM16", "1.234.567,89", "de_DE"},
    {"@NLMNY16", "($1,234.50)", "en_US"},    {"@NLPCT8", "25,6 %", "fr_FR"},
    {"@NLMNIEUR16", "EUR1,234.50", "en_US"}, {"@NLSTRMON12", "février", "fr_FR"},
    {"@WEEKV11", "2024W1002", "en_US"},
};

const Example kTranscoderCandidates[] = {
    {"NLMNY16.2", "1234.5", "de_DE"},
    {"NLSTRMON12", "2", "fr_FR"},
    {"NLMNIEUR16.2", "1234.5", "de_DE"},
    {"NLDATE20", "2024-02-05", "fr_FR"},
    {"NLSTRWK12", "7", "de_DE"},
};

struct Prepared {
    const FormatTableRow *row = nullptr;
    zvhost::CallSpec spec;
    std::string name;
};

std::optional<Prepared> prepare(Session &s, const Example &e, const std::string &localeOverride) {
    auto fs = zvfmt::parseFormatSpec(e.spec);
    if (!fs) return std::nullopt;
    Prepared p;
    p.row = s.row(fs->name);
    if (!p.row) return std::nullopt;
    p.name = zvhost::rowName(*p.row);
    p.spec.locale = localeOverride.empty() ? e.locale : localeOverride;
    p.spec.width = fs->width ? *fs->width : static_cast<int32_t>(p.row->defaultWidth);
    p.spec.decimals = fs->decimals ? *fs->decimals : static_cast<int32_t>(p.row->defaultDecimals);
    return p;
}

// Pads to a column by characters, not bytes, so that accented examples line up.
void demoLine(const std::string &left, const std::string &right) {
    size_t chars = 0;
    for (unsigned char c : left) chars += (c & 0xC0) != 0x80;
    const std::string pad(chars < 42 ? 42 - chars : 0, ' ');
    std::printf("  %s%s %s\n", left.c_str(), pad.c_str(), right.c_str());
}

int runDemo(const Args &a) {
    if (a.positional.size() > 1) usageError("demo takes no arguments, got \"" + a.positional[1] + "\"");
    Baseline baseline = a.baseline;
    baseline.clock = std::make_pair(0.0, 0.0);
    auto session = startSession(baseline);
    const std::string localeOverride = a.localeGiven ? a.baseline.locale : "";
    zvhost::Host &host = session->host();
    const auto rows = session->rows();
    std::printf("zvlocfmt %s: %zu rows\n\n", ZVLOCFMT_VERSION_TEXT, rows.size());

    std::printf("Formats (value to text; [brackets] show the field):\n");
    for (const Example &e : kFormatExamples) {
        auto p = prepare(*session, e, localeOverride);
        if (!p) continue;
        const std::string left = std::string(e.spec) + " " + e.input + "  " + p->spec.locale;
        auto v = zvfmt::parseValue(e.input);
        const zvhost::FormatResult r = zvhost::runFormat(host, *p->row, p->spec, *v);
        if (!r.error.empty()) demoLine(left, "(" + r.error + ")");
        else demoLine(left, "[" + r.utf8 + "]" + (r.status ? "  status " + zvfmt::statusText(r.status) : ""));
    }

    std::printf("\nInformats (text to value):\n");
    for (const Example &e : kInformatExamples) {
        auto p = prepare(*session, e, localeOverride);
        if (!p) continue;
        const std::string left = std::string(e.spec) + " \"" + e.input + "\"  " + p->spec.locale;
        const zvhost::ReadResult r = zvhost::runInformat(host, *p->row, p->spec, e.input);
        if (!r.error.empty()) demoLine(left, "(" + r.error + ")");
        else
            demoLine(left, (r.untouched ? std::string("untouched") : showDouble(zvfmt::fromBits(r.bits))) +
                               (r.status ? "  status " + zvfmt::statusText(r.status) : ""));
    }

    std::printf("\nMissing values (the mark stands in the last place of the field):\n");
    if (const FormatTableRow *any = session->row("NLNUM")) {
        zvhost::CallSpec spec;
        spec.width = std::clamp<int32_t>(8, static_cast<int32_t>(any->minWidth), static_cast<int32_t>(any->maxWidth));
        for (const char *mark : {".", ".A", ".Z", "._"}) {
            const zvhost::FormatResult r =
                zvhost::runFormat(host, *any, spec, *zvfmt::parseValue(mark));
            demoLine(zvhost::rowName(*any) + std::to_string(spec.width) + " " + mark, r.error.empty() ? "[" + r.utf8 + "]" : "(" + r.error + ")");
        }
    }

    std::printf("\nRoutines without a row (zvfmt list --all):\n");
    for (const auto &[name, text] : {std::pair{"readAnyDate", "12/25/2024"}, std::pair{"readHexNumber", "FF"},
                                     std::pair{"encodeBase64Units", "Man"}}) {
        const zvhost::Routine &r = *zvhost::findRoutine(name);
        const zvhost::RoutineResult out = zvhost::runRoutine(host, r, zvhost::CallSpec{}, text);
        demoLine(std::string(name) + " \"" + text + "\"",
                 r.answer == zvhost::RoutineAnswer::Number ? showDouble(zvfmt::fromBits(out.bits)) : out.utf8);
    }

    std::printf("\nHost encodings through the byte entry (bytes in hex):\n");
    for (const Example &e : kTranscoderCandidates) {
        auto p = prepare(*session, e, "");
        if (!p) continue;
        const double v = *zvfmt::parseValue(e.input);
        p->spec.entry = zvhost::Entry::Byte;
        p->spec.encoding = "UTF-8";
        const zvhost::FormatResult u = zvhost::runFormat(host, *p->row, p->spec, v);
        bool nonAscii = false;
        for (unsigned char c : u.bytes) nonAscii = nonAscii || c >= 0x80;
        if (!u.error.empty() || (!nonAscii && &e != &kTranscoderCandidates[std::size(kTranscoderCandidates) - 1]))
            continue;
        const std::string left = std::string(e.spec) + " " + e.input + "  " + e.locale;
        demoLine(left, "[" + u.utf8 + "]");
        for (const char *enc : {"UTF-8", "windows-1252", "ISO-8859-15"}) {
            p->spec.encoding = enc;
            const zvhost::FormatResult r = zvhost::runFormat(host, *p->row, p->spec, v);
            demoLine(std::string("    ") + enc, r.error.empty() ? zvfmt::hexBytes(r.bytes) + (r.status ? "  status " + zvfmt::statusText(r.status) : "")
                                                            : "(" + r.error + ")");
        }
        break;
    }
    return 0;
}

// ---- locales and items ---------------------------------------------------------

int runLocales(const Args &a) {
    if (a.positional.size() > 1) usageError("locales takes no arguments, got \"" + a.positional[1] + "\"");
    for (const std::string &name : zvhost::availableLocales()) printLine(name);
    return 0;
}

// The 189 items of a locale: number, raw text and the text the module
// decodes from it for the host encoding, with the widths it works out.
int runItems(const Args &a) {
    if (a.positional.size() > 2) usageError("items takes one locale, got \"" + a.positional[2] + "\"");
    Baseline baseline = a.baseline;
    if (a.positional.size() > 1) baseline.locale = zvfmt::hostLocaleName(a.positional[1]);
    else if (!a.localeGiven) useEnvironmentLocale(baseline);
    auto session = startSession(baseline);
    const zvhost::CallSpec spec = zvfmt::callSpecOf(session->baseline());
    HostLocale *l = session->host().locale(spec.locale, spec.items);
    const uint8_t *table = nullptr;
    if (l->ops->localeTextTable(l, 0, &table) != 0 || !table) usageError("no text table for \"" + spec.locale + "\"");
    std::string error;
    const LocaleBlock *block = session->calls().localeBlock(spec, error);
    if (!block) {
        std::fprintf(stderr, "zvfmt: %s\n", error.c_str());
        return 1;
    }
    if (a.header) printLine("ITEM\tWIDTH\tRAW\tDECODED");
    const std::vector<uint8_t> tableBytes(table, table + ZV_LOCALE_TABLE_SIZE);
    for (int k = 0; k < ZV_LOCALE_TABLE_ITEMS; ++k) {
        std::string raw;
        for (const unsigned char c : zvhost::rawItem(tableBytes, k)) {
            if (c >= 0x20 && c < 0x7f) raw.push_back(char(c));
            else {
                char esc[8];
                std::snprintf(esc, sizeof esc, "\\x%02x", c);
                raw += esc;
            }
        }
        const LocaleItem &item = block->items[k];
        std::u16string decoded(item.text, size_t(item.length));
        for (char16_t &c : decoded)
            if (c < 0x20) c = u'\u00b7'; // control units (the currency mark 1) shown as a middle dot
        printLine(std::to_string(k) + "\t" + std::to_string(item.maxWidth) + "\t" + raw + "\t" + zvhost::utf8(decoded));
    }
    return 0;
}

const char *helpOn(const std::string &topic) {
    if (topic.empty() || topic == "help") return kMainHelp;
    if (topic == "list") return kListHelp;
    if (topic == "value") return kValueHelp;
    if (topic == "demo") return kDemoHelp;
    if (topic == "locales") return kLocalesHelp;
    if (topic == "items") return kItemsHelp;
    if (topic == "jsonl" || topic == "--jsonl") return kJsonlHelp;
    if (topic == "format" || topic == "read" || topic == "routine") return kFormatHelp;
    return nullptr;
}

// Prints the help on a topic; one without help gets `fallback`, or is refused
// when there is none.
int printHelp(const std::string &topic, const char *fallback) {
    const char *text = helpOn(topic);
    if (!text) text = fallback;
    if (!text) usageError("no help on \"" + topic + "\" (try format, list, value, demo, locales, items or jsonl)");
    std::fputs(text, stdout);
    return 0;
}

int runHelp(const Args &a) { return printHelp(a.positional.size() > 1 ? a.positional[1] : "", nullptr); }

} // namespace

int main(int argc, char **argv) {
    Args a = parseArgs(argc, argv);
    const std::string command = a.positional.empty() ? "" : a.positional[0];
    if (a.version) {
        std::printf("%s\n", kVersion);
        return 0;
    }
    if (a.help) return printHelp(a.jsonl ? "jsonl" : command, kFormatHelp);
    if (command != "list" && !a.listOptions.empty())
        usageError("option " + a.listOptions.front() + " belongs to 'zvfmt list'");
    if (a.jsonl) {
        if (!a.positional.empty()) usageError("--jsonl reads its requests from stdin; unexpected \"" + command + "\"");
        auto session = startSession(a.baseline);
        // Answers go out in blocks, flushed whenever the next request is awaited.
        static char buffer[1 << 16];
        std::setvbuf(stdout, buffer, _IOFBF, sizeof buffer);
        return zvfmt::runJsonLines(*session, 0, stdout);
    }
    if (command.empty()) usageError("no command; give a format such as NLDATE20, or list, demo, value, --jsonl");
    if (command == "help") return runHelp(a);
    if (command == "list") return runList(a);
    if (command == "value") return runValue(a);
    if (command == "demo") return runDemo(a);
    if (command == "locales") return runLocales(a);
    if (command == "items") return runItems(a);
    return runConvert(a);
}
