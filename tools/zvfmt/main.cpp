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
#include "locale/block.hpp"

#include "jsonl.hpp"
#include "session.hpp"
#include "value.hpp"

namespace {

using zvfmt::Baseline;
using zvfmt::Session;

constexpr const char *kVersion = "zvfmt (zvlocfmt 6.1.1)";

constexpr const char *kMainHelp = R"TXT(zvfmt - the locale-sensitive formats and informats of zvlocfmt

Usage:
  zvfmt [OPTIONS] NAME[W[.D]] [VALUE...]    write values with a format
  zvfmt [OPTIONS] @NAME[W[.D]] [TEXT...]    read texts with an informat
  zvfmt list [LIST OPTIONS]                 the table: name, kind, widths, decimals, state
  zvfmt value VALUE...                      show the double a VALUE stands for
  zvfmt demo [-l LOCALE]                    a short tour of what exists
  zvfmt locales                             the locales the host knows (from CLDR)
  zvfmt items [LOCALE] [--header]           a locale's 189 items: number, width,
                                            raw text and the text as decoded
  zvfmt --jsonl [OPTIONS]                   JSON-lines protocol on stdin and stdout
  zvfmt help [COMMAND]                      help on list, value, demo, jsonl or format
  zvfmt --version

With no VALUE (or TEXT) the values are read from stdin, one a line.

A VALUE is a number (12, -3.5, 1e6), an ISO date 2024-03-05 (a day count
from 1 January 1960), an ISO datetime 2024-03-05T14:07:09.5 (a second count),
a time of day 14:07:09 (seconds from midnight), '.' (the plain missing value)
or .A to .Z, ._ (special missing values). Put '--' before values that begin
with '-' and are not numbers.

Options:
  -l, --locale NAME        locale of the call (default en_US)
  -e, --encoding NAME      host encoding (default UTF-8); formats then run
                           through their byte entry
      --entry wide|byte    the entry of a format (default wide; byte with -e)
      --tz NAME            IANA time zone of the host (default UTC)
      --bytes              measure the width in bytes of the host encoding
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
  -v, --show-status        print the status after each result
  -h, --help               this text

Exit status: 0 when every value was done with status 0, 1 when a value was
bad or a routine answered another status, 2 for bad arguments.
)TXT";

constexpr const char *kFormatHelp = R"TXT(zvfmt NAME[W[.D]] [VALUE...]     zvfmt @NAME[W[.D]] [TEXT...]

NAME is a row of the table in any case (see 'zvfmt list'); W is the width and
D the decimals, both optional: NLDATE20, nlnum12.2, NLNUM.2, @NLDATE. Without
them the row's defaults apply. A width below the row's least width is passed on
with a note on stderr (the routines handle any width; a host may refuse it); a
width above the most, or decimals outside the row's limits, is refused unless
--unchecked is given.

A format prints the text exactly as the routine wrote it, all outputLength
units, blanks included, one line per value. With -v a tab and "status=N"
follow. A nonzero status is also reported on stderr.

An informat prints the value it read as the shortest number that reads back
the same, or the mark of a missing value (., .A, ._); "untouched" when the
routine did not write its result. A nonzero status follows after a tab as
"status=N", and always with -v.

Statuses are signed; negative ones other than -1 also show their hex, e.g.
"status=-2143295481 (0x803fe807)". See 'zvfmt --help' for the options.
)TXT";

constexpr const char *kListHelp = R"TXT(zvfmt list [--formats | --informats] [--pending | --ready] [--json] [--header]

Prints one line per row of the table, in table order:
  name, kind (format/informat), min, max and default width,
  max and default decimals, state
Every row is built, so the state is always "ready": --ready lists every row
and --pending none. Both stay accepted for the scripts that give them.

  --formats     only the formats          --informats   only the informats
  --pending     only pending rows (none)  --ready       only ready rows (all)
  --json        one JSON object a row     --header      a header line first

The count of rows goes to stderr, so 'zvfmt list | wc -l' counts rows.
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
A bad line is answered with {"error": "...", "id": ...} and the stream goes on.
-l, -e, --tz, --option, --item, --clock, --bytes and --validate set what a
request starts from. The full reference is docs/zvfmt.md.
)TXT";

struct Args {
    Baseline baseline;
    bool entryGiven = false;
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

int64_t parseInteger(const std::string &text, const std::string &what) {
    std::string_view t = text;
    if (t.size() > 1 && t[0] == '+') t.remove_prefix(1);
    int64_t v = 0;
    const auto [end, ec] = std::from_chars(t.data(), t.data() + t.size(), v);
    if (t.empty() || ec != std::errc() || end != t.data() + t.size())
        usageError(what + ": \"" + text + "\" is not an integer");
    return v;
}

Args parseArgs(int argc, char **argv) {
    Args a;
    bool onlyPositional = false;
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        if (onlyPositional || arg.empty() || arg[0] != '-' || arg == "-" || startsNumber(arg)) {
            a.positional.push_back(arg);
            continue;
        }
        if (arg == "--") {
            onlyPositional = true;
            continue;
        }
        std::string name = arg, inlineValue;
        bool hasInline = false;
        if (arg.rfind("--", 0) == 0) {
            const size_t eq = arg.find('=');
            if (eq != std::string::npos) {
                name = arg.substr(0, eq);
                inlineValue = arg.substr(eq + 1);
                hasInline = true;
            }
        } else if (arg.size() > 2) { // -lfr_FR
            name = arg.substr(0, 2);
            inlineValue = arg.substr(2);
            hasInline = true;
        }
        auto takeValue = [&]() -> std::string {
            if (hasInline) return inlineValue;
            if (i + 1 >= argc) usageError("option " + name + " needs a value");
            return argv[++i];
        };
        auto flag = [&](bool &target) {
            if (hasInline) usageError("option " + name + " takes no value");
            target = true;
        };
        if (name == "-h" || name == "--help") flag(a.help);
        else if (name == "--version") flag(a.version);
        else if (name == "--jsonl") flag(a.jsonl);
        else if (name == "-v" || name == "--show-status") flag(a.showStatus);
        else if (name == "--bytes") flag(a.baseline.measureBytes);
        else if (name == "--validate") flag(a.baseline.validate);
        else if (name == "--unchecked") flag(a.unchecked);
        else if (name == "-l" || name == "--locale") {
            a.baseline.locale = takeValue();
            a.localeGiven = true;
        } else if (name == "-e" || name == "--encoding") {
            a.baseline.encoding = takeValue();
            if (!a.entryGiven) a.baseline.byteEntry = true;
        } else if (name == "--entry") {
            const std::string e = takeValue();
            if (e == "wide") a.baseline.byteEntry = false;
            else if (e == "byte") a.baseline.byteEntry = true;
            else usageError("--entry must be wide or byte, not \"" + e + "\"");
            a.entryGiven = true;
        } else if (name == "--tz") a.baseline.timeZone = takeValue();
        else if (name == "--option") {
            const std::string v = takeValue();
            const size_t eq = v.find('=');
            if (eq == std::string::npos || eq == 0) usageError("--option wants NAME=VALUE, not \"" + v + "\"");
            a.baseline.options[v.substr(0, eq)] = parseInteger(v.substr(eq + 1), "--option " + v.substr(0, eq));
        } else if (name == "--item") {
            const std::string v = takeValue();
            const size_t eq = v.find('=');
            if (eq == std::string::npos || eq == 0) usageError("--item wants N=TEXT, not \"" + v + "\"");
            const int64_t n = parseInteger(v.substr(0, eq), "--item");
            if (n < 0 || n > 188) usageError("--item: item number " + std::to_string(n) + " is out of range (0..188)");
            a.baseline.items[static_cast<int>(n)] = v.substr(eq + 1);
        } else if (name == "--clock") {
            const std::string v = takeValue();
            const size_t comma = v.find(',');
            std::string why;
            auto value = zvfmt::parseValue(v.substr(0, comma), &why);
            std::optional<double> shift = 0.0;
            if (comma != std::string::npos) shift = zvfmt::parseValue(v.substr(comma + 1), &why);
            if (!value || !shift) usageError("--clock wants S or S,SHIFT, not \"" + v + "\"");
            a.baseline.clock = std::make_pair(*value, *shift);
        } else if (name == "--formats") { flag(a.formats); a.listOptions.push_back(name); }
        else if (name == "--informats") { flag(a.informats); a.listOptions.push_back(name); }
        else if (name == "--pending") { flag(a.pending); a.listOptions.push_back(name); }
        else if (name == "--ready") { flag(a.ready); a.listOptions.push_back(name); }
        else if (name == "--locale-file") a.localeFiles.push_back(takeValue());
        else if (name == "--json") { flag(a.json); a.listOptions.push_back(name); }
        else if (name == "--header") { flag(a.header); a.listOptions.push_back(name); }
        else usageError("unknown option " + name);
    }
    // Locale definition files lay their items over the locale; --item wins over them.
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
    return a;
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
    std::fflush(stdout);
    std::fprintf(stderr, "%zu of %zu rows (%zu formats, %zu informats)\n", shown, rows.size(), formats,
                 rows.size() - formats);
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

struct Runner {
    Session &session;
    const FormatTableRow &row;
    zvhost::CallSpec spec;
    bool showStatus;
    std::string label; // NAME[W[.D]] as given, for messages

    bool formatOne(const std::string &valueText) {
        std::string why;
        auto value = zvfmt::parseValue(valueText, &why);
        if (!value) {
            std::fprintf(stderr, "zvfmt: bad VALUE \"%s\": %s\n", valueText.c_str(), why.c_str());
            return false;
        }
        const zvhost::FormatResult r = zvhost::runFormat(session.host(), row, spec, *value);
        if (!r.error.empty()) {
            std::fprintf(stderr, "zvfmt: %s %s: %s\n", label.c_str(), valueText.c_str(), r.error.c_str());
            return false;
        }
        std::string line = r.utf8;
        if (showStatus) line += "\tstatus=" + zvfmt::statusText(r.status);
        printLine(line);
        if (r.status != 0) {
            const std::string meaning = zvfmt::statusMeaning(r.status);
            std::fflush(stdout);
            std::fprintf(stderr, "zvfmt: %s %s: status %s%s%s%s\n", label.c_str(), valueText.c_str(),
                         zvfmt::statusText(r.status).c_str(), meaning.empty() ? "" : " (",
                         meaning.c_str(), meaning.empty() ? "" : ")");
            return false;
        }
        return true;
    }

    bool readOne(const std::string &text) {
        const zvhost::ReadResult r = zvhost::runInformat(session.host(), row, spec, text);
        if (!r.error.empty()) {
            std::fprintf(stderr, "zvfmt: %s \"%s\": %s\n", label.c_str(), text.c_str(), r.error.c_str());
            return false;
        }
        std::string line = r.untouched ? "untouched" : showDouble(zvfmt::fromBits(r.bits));
        if (showStatus || r.status != 0) line += "\tstatus=" + zvfmt::statusText(r.status);
        printLine(line);
        return r.status == 0;
    }
};

int runConvert(const Args &a) {
    std::string why;
    const std::string &specText = a.positional[0];
    auto fs = zvfmt::parseFormatSpec(specText, &why);
    if (!fs) usageError("bad format \"" + specText + "\": " + why);
    auto session = startSession(a.baseline);
    const FormatTableRow *row = session->row(fs->name);
    if (!row) usageError("no format or informat named " + fs->name + " (see 'zvfmt list')");
    const bool informat = zvhost::isInformat(*row);
    const std::string name = zvhost::rowName(*row);

    zvhost::CallSpec spec;
    spec.locale = a.baseline.locale;
    spec.items = a.baseline.items;
    spec.encoding = a.baseline.encoding;
    spec.measureBytes = a.baseline.measureBytes;
    spec.validate = a.baseline.validate;
    spec.entry = a.baseline.byteEntry ? zvhost::Entry::Byte : zvhost::Entry::Wide;
    spec.width = fs->width ? *fs->width : static_cast<int32_t>(row->defaultWidth);
    spec.decimals = fs->decimals ? *fs->decimals : static_cast<int32_t>(row->defaultDecimals);
    if (informat && spec.entry == zvhost::Entry::Byte) {
        if (a.entryGiven) usageError(name + " is an informat; informats have only the wide entry");
        spec.entry = zvhost::Entry::Wide;
    }
    if (!a.unchecked) {
        if (spec.width >= 1 && spec.width < static_cast<int32_t>(row->minWidth))
            std::fprintf(stderr, "zvfmt: note: %s: width %d is below the row's least width %u, which a host may refuse\n",
                         name.c_str(), int(spec.width), unsigned(row->minWidth));
        else if (spec.width < 1 || spec.width > static_cast<int32_t>(row->maxWidth))
            usageError(name + ": width " + std::to_string(spec.width) + " is out of range (" +
                       std::to_string(row->minWidth) + ".." + std::to_string(row->maxWidth) +
                       "; --unchecked passes it on)");
        if (spec.decimals > static_cast<int32_t>(row->maxDecimals))
            usageError(name + ": decimals " + std::to_string(spec.decimals) + " is out of range (0.." +
                       std::to_string(row->maxDecimals) + "; --unchecked passes it on)");
    } else if (spec.width > 65536) {
        usageError(name + ": width " + std::to_string(spec.width) + " is too large (at most 65536)");
    } else if (spec.decimals > 99) {
        usageError(name + ": decimals " + std::to_string(spec.decimals) + " is too large (at most 99)");
    }
    if (!session->host().locale(spec.locale, spec.items)) usageError("unknown locale \"" + spec.locale + "\"");
    if (!session->host().transcoder(spec.encoding)) usageError("unknown encoding \"" + spec.encoding + "\"");

    Runner runner{*session, *row, spec, a.showStatus, specText};
    bool ok = true;
    auto one = [&](const std::string &item) {
        ok = (informat ? runner.readOne(item) : runner.formatOne(item)) && ok;
    };
    if (a.positional.size() > 1) {
        for (size_t i = 1; i < a.positional.size(); ++i) one(a.positional[i]);
    } else {
        std::string line;
        int c;
        bool any = false;
        while ((c = std::fgetc(stdin)) != EOF || any) {
            if (c == '\n' || c == EOF) {
                if (!line.empty() && line.back() == '\r') line.pop_back();
                one(line);
                std::fflush(stdout);
                line.clear();
                any = false;
                if (c == EOF) break;
                continue;
            }
            any = true;
            if (line.size() < zvfmt::kMaxRequestLine) line.push_back(static_cast<char>(c));
        }
    }
    std::fflush(stdout);
    return ok ? 0 : 1;
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
    std::printf("zvlocfmt %s: %zu rows\n\n", "6.1.1", rows.size());

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
    const std::string locale = a.positional.size() > 1 ? a.positional[1] : a.baseline.locale;
    auto session = startSession(a.baseline);
    zvhost::Host &host = session->host();
    HostLocale *l = host.locale(locale, a.baseline.items);
    if (!l) usageError("unknown locale \"" + locale + "\"");
    HostTranscoder *t = host.transcoder(a.baseline.encoding);
    if (!t) usageError("unknown encoding \"" + a.baseline.encoding + "\"");
    const uint8_t *table = nullptr;
    if (l->ops->localeTextTable(l, 0, &table) != 0 || !table) usageError("no text table for \"" + locale + "\"");

    FormatCall call;
    std::memset(&call, 0, sizeof call);
    call.locale = l;
    call.transcoder = t;
    call.services = host.services();
    const int32_t status = zv::buildLocaleBlock(&call, host.instance());
    if (status != 0) {
        std::fprintf(stderr, "zvfmt: the locale block could not be built (status %s)\n", zvfmt::statusText(status).c_str());
        return 1;
    }
    if (a.header) printLine("ITEM\tWIDTH\tRAW\tDECODED");
    for (int k = 0; k < ZV_LOCALE_TABLE_ITEMS; ++k) {
        const uint8_t *record = table + ZV_LOCALE_TABLE_OFFSET + size_t(k) * ZV_LOCALE_RECORD_SIZE;
        size_t n = size_t(record[0] | (record[1] << 8));
        if (n > 160) n = 160;
        std::string raw;
        for (size_t i = 0; i < n; ++i) {
            const unsigned char c = record[2 + i];
            if (c >= 0x20 && c < 0x7f) raw.push_back(char(c));
            else {
                char esc[8];
                std::snprintf(esc, sizeof esc, "\\x%02x", c);
                raw += esc;
            }
        }
        const LocaleItem &item = call.localeBlock->items[k];
        std::u16string decoded(item.text, size_t(item.length));
        for (char16_t &c : decoded)
            if (c < 0x20) c = u'\u00b7'; // control units (the currency mark 1) shown as a middle dot
        printLine(std::to_string(k) + "\t" + std::to_string(item.maxWidth) + "\t" + raw + "\t" + zvhost::utf8(decoded));
    }
    return 0;
}

int runHelp(const Args &a) {
    const std::string topic = a.positional.size() > 1 ? a.positional[1] : "";
    if (topic.empty()) std::fputs(kMainHelp, stdout);
    else if (topic == "list") std::fputs(kListHelp, stdout);
    else if (topic == "value") std::fputs(kValueHelp, stdout);
    else if (topic == "demo") std::fputs(kDemoHelp, stdout);
    else if (topic == "jsonl" || topic == "--jsonl") std::fputs(kJsonlHelp, stdout);
    else if (topic == "format" || topic == "read") std::fputs(kFormatHelp, stdout);
    else usageError("no help on \"" + topic + "\" (try list, value, demo, jsonl or format)");
    return 0;
}

} // namespace

int main(int argc, char **argv) {
    Args a = parseArgs(argc, argv);
    const std::string command = a.positional.empty() ? "" : a.positional[0];
    if (a.version) {
        std::printf("%s\n", kVersion);
        return 0;
    }
    if (a.help) {
        if (a.jsonl) std::fputs(kJsonlHelp, stdout);
        else if (command == "list") std::fputs(kListHelp, stdout);
        else if (command == "value") std::fputs(kValueHelp, stdout);
        else if (command == "demo") std::fputs(kDemoHelp, stdout);
        else if (command.empty() || command == "help") std::fputs(kMainHelp, stdout);
        else std::fputs(kFormatHelp, stdout);
        return 0;
    }
    if (command != "list" && !a.listOptions.empty() && !(command == "items" && a.header && a.listOptions.size() == 1))
        usageError("option " + a.listOptions.front() + " belongs to 'zvfmt list'");
    if (a.jsonl) {
        if (!a.positional.empty()) usageError("--jsonl reads its requests from stdin; unexpected \"" + command + "\"");
        auto session = startSession(a.baseline);
        return zvfmt::runJsonLines(*session, stdin, stdout);
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
