// zvfmt: each command once, the tool's answers against the host's own calls,
// the documented examples, and a JSON-lines stream that survives bad lines.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>

#include <nlohmann/json.hpp>

#include "cldr.hpp"
#include "zvhost.hpp"


namespace {

using Json = nlohmann::json;

struct Run {
    int code = -1;
    std::string out, err;
};

std::string slurp(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// A shell script with `input` on stdin.
Run shell(const std::string &script, const std::string &input = "") {
    const std::string base = ::testing::TempDir() + "zvfmt_cli_" + std::to_string(getpid());
    std::ofstream(base + ".in", std::ios::binary) << input;
    std::ofstream(base + ".sh", std::ios::binary) << script << "\n";
    const int status = std::system(("sh " + base + ".sh <" + base + ".in >" + base + ".out 2>" + base + ".err").c_str());
    Run r{WEXITSTATUS(status), slurp(base + ".out"), slurp(base + ".err")};
    for (const char *end : {".in", ".sh", ".out", ".err"}) std::remove((base + end).c_str());
    return r;
}

// ZVFMT_PATH with the arguments, in the environment `env` (by default the C locale).
Run run(const std::vector<std::string> &args, const std::string &input = "", const std::string &env = "LC_ALL=C") {
    std::string command = env + " " + ZVFMT_PATH;
    for (const std::string &a : args) {
        command += " '";
        for (char c : a) command += c == '\'' ? std::string("'\\''") : std::string(1, c);
        command += "'";
    }
    return shell(command, input);
}

std::vector<std::string> lines(const std::string &text) {
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) out.push_back(line);
    return out;
}


std::string statusShown(int32_t status) {
    std::string out = std::to_string(status);
    char hex[24];
    std::snprintf(hex, sizeof hex, " (0x%08x)", static_cast<uint32_t>(status));
    return status < -1 ? out + hex : out;
}

// Every "$ command" of a fenced block in docs/zvfmt.md and README.md, run
// through the shell, writes exactly the lines that follow it.
TEST(Zvfmt, DocumentedExamples) {
    int examples = 0;
    for (const char *doc : {"/docs/zvfmt.md", "/README.md"}) {
        std::istringstream in(slurp(std::string(ZV_SOURCE_DIR) + doc));
        std::string command, want, line;
        bool fenced = false;
        auto check = [&] {
            if (command.empty()) return;
            std::string script;
            for (size_t at = 0, next; at <= command.size(); at = next + 1) { // each "zvfmt" word is the binary
                next = std::min(command.find("zvfmt", at), command.size());
                script += command.substr(at, next - at);
                if (next < command.size()) script += ZVFMT_PATH, next += 4;
            }
            const auto r = shell("export LC_ALL=C\n" + script);
            EXPECT_EQ(r.out, want) << doc << ": " << command << r.err;
            ++examples;
            command.clear();
        };
        while (std::getline(in, line)) {
            if (line.rfind("```", 0) == 0) check(), fenced = !fenced;
            else if (fenced && line.rfind("$ ", 0) == 0) check(), command = line.substr(2), want.clear();
            else if (!command.empty()) want += line + "\n";
        }
    }
    EXPECT_GE(examples, 19);
    EXPECT_EQ(run({"--version"}).out, "zvfmt (zvlocfmt 6.1.1)\n");
}

// Bad arguments: exit 2, nothing on stdout, the reason and a hint on stderr.
TEST(Zvfmt, RefusedArguments) {
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{}, "no command; give a format such as NLDATE20, or list, demo, value, --jsonl"},
        {{"NOSUCH", "1"}, "no format, informat or routine named NOSUCH (see 'zvfmt list --all')"},
        {{"-e", "nope", "NLNUM"}, "unknown encoding \"nope\""},
        {{"NLNUM", "--invalid=maybe"}, "--invalid must be abort, fail, warn or ignore, not \"maybe\""},
        {{"NLNUM", "--field=0"}, "--field: \"0\" is not a list of fields and ranges (1-based: 2,4-5, 3-, -2)"},
        {{"NLDATE20x", "1"}, "bad format \"NLDATE20x\": unexpected \"x\" after NLDATE (the form is NAME[W[.D]])"},
        {{"nldate201", "1"}, "NLDATE: width 201 is out of range (10..200; --unchecked passes it on)"},
        {{"--option", "ZV_NAME_YEARCUTOFF=19x0", "NLNUM", "1"}, "--option ZV_NAME_YEARCUTOFF: \"19x0\" is not an integer"},
        {{"-l", "xx_YY", "NLNUM", "1"}, "unknown locale \"xx_YY\""},
        {{"--tz", "Mars/Olympus_Mons", "NLNUM", "1"}, "unknown time zone \"Mars/Olympus_Mons\""},
        {{"--entry", "byte", "@NLNUM", "1"}, "@NLNUM reads text; only the formats have a byte entry"},
        {{"list", "--pending", "--ready"}, "give --pending or --ready, not both"},
        {{"NLNUM", "1", "--json"}, "option --json belongs to 'zvfmt list'"},
    };
    for (const auto &[args, message] : cases) { // checked before any input is read
        const auto r = run(args, "1\n2\n");
        EXPECT_EQ(r.code, 2) << message;
        EXPECT_EQ(r.out, "");
        EXPECT_EQ(r.err, "zvfmt: " + message + "\nTry 'zvfmt --help'.\n");
    }
    for (const char *command : {"list", "value", "demo", "locales", "items", "help", "NLNUM", "readUuid"}) {
        const auto help = run({"help", std::isupper(command[0]) || command[0] == 'r' ? "format" : command}),
                   own = run({command, "--help"});
        EXPECT_EQ(help.code + own.code, 0) << command;
        EXPECT_EQ(help.out, own.out) << command;
    }
    EXPECT_EQ(run({"help", "items"}).out.substr(0, 12), "zvfmt items ");
}

// The listing is the host's table; every row is built, so --ready lists them
// all and --pending none, and the state column stays "ready".
TEST(Zvfmt, ListIsTheHostsTable) {
    zvhost::Host host;
    ASSERT_NE(host.loadModule(), nullptr);
    const auto rows = zvhost::tableRows(host.instance()->formatTable);
    const auto json = lines(run({"list", "--json"}).out);
    const auto r = run({"list", "--header", "--informats"});
    ASSERT_EQ(json.size(), rows.size());
    EXPECT_EQ(lines(r.out).size(), 98u);
    EXPECT_EQ(r.err, "97 of 247 rows (150 formats, 97 informats)\n");
    for (size_t i = 0; i < rows.size(); ++i) {
        const FormatTableRow &row = *rows[i];
        EXPECT_EQ(Json::parse(json[i]), Json({{"name", zvhost::rowName(row)}, {"kind", zvhost::isInformat(row) ? "informat" : "format"},
                                             {"minWidth", row.minWidth}, {"maxWidth", row.maxWidth}, {"defaultWidth", row.defaultWidth},
                                             {"minDecimals", row.minDecimals}, {"maxDecimals", row.maxDecimals},
                                             {"defaultDecimals", row.defaultDecimals}, {"state", "ready"}}));
    }
    EXPECT_EQ(run({"list", "--ready"}).out, run({"list"}).out);
    const auto pending = run({"list", "--pending", "--formats"});
    EXPECT_EQ(pending.code + pending.out.size(), 0u);
    EXPECT_EQ(pending.err, "0 of 247 rows (150 formats, 97 informats)\n");
}

TEST(Zvfmt, LocalesAndItemsAreTheHosts) {
    const auto names = lines(run({"locales"}).out);
    EXPECT_EQ(names, zvhost::availableLocales());
    std::vector<uint8_t> table;
    std::string error;
    ASSERT_TRUE(zvhost::buildCldrTable("de_DE", table, error)) << error;
    const auto items = lines(run({"items", "de_DE"}).out);
    ASSERT_EQ(items.size(), 189u);
    // Each line: the number, a flag, the raw text, and the text decoded with the currency mark shown as a dot.
    for (int k : {2, 28, 59, 156, 164, 188}) {
        std::u16string units = zvhost::unescapeTableText(zvhost::rawItem(table, k));
        std::replace(units.begin(), units.end(), u'\u00A4', u'\u00B7');
        const std::string &line = items[size_t(k)];
        EXPECT_EQ(line.substr(0, line.find('\t')) + line.substr(line.find('\t', line.find('\t') + 1)),
                  std::to_string(k) + "\t" + zvhost::rawItem(table, k) + "\t" + zvhost::utf8(units));
    }
    // The euro sign can't be shown in Latin-1: the module writes it as a reference.
    EXPECT_EQ(lines(run({"items", "de_DE", "-e", "ISO-8859-1"}).out).at(156), "156\t0\t<U20AC>\t&#8364;");
}

// Argument mode, stdin mode and the protocol give what the host's own calls
// give, over a sample of rows, values and locales, on both entries.
TEST(Zvfmt, FormatsAgreeWithTheHostsCalls) {
    zvhost::Host host;
    ASSERT_NE(host.loadModule(), nullptr);
    const std::vector<std::string> values{"1", "-7.25", "0.5", "23440", "2024-03-05T14:07:09", "1e10", ".", ".Q"};
    std::string requests;
    std::vector<std::string> expected;
    int row = 0;
    for (const FormatTableRow *r : zvhost::tableRows(host.instance()->formatTable)) {
        if (zvhost::isInformat(*r) || row++ % 9 != 0) continue;
        const std::string name = zvhost::rowName(*r);
        for (const char *encoding : {"", "windows-1252"}) {
            zvhost::CallSpec spec;
            spec.locale = row % 2 ? "de_DE" : "fr_FR";
            spec.measureBytes = *encoding; // the byte entry counts bytes
            std::vector<std::string> args{"-v", "-l", spec.locale, name};
            if (*encoding) {
                spec.encoding = encoding;
                spec.entry = zvhost::Entry::Byte;
                args.insert(args.begin(), {"-e", encoding});
            }
            std::string input;
            for (const std::string &v : values) input += v + "\n";
            const auto out = lines(run(args, input).out);
            ASSERT_EQ(out.size(), values.size()) << name;
            for (size_t i = 0; i < values.size(); ++i) {
                const auto want = zvhost::runFormat(host, *r, spec, *zvhost::parseValue(values[i]));
                // A status other than 0 leaves the input as it was.
                EXPECT_EQ(out[i], (want.status ? values[i] : want.utf8) + "\tstatus=" + statusShown(want.status))
                    << name << " " << values[i];
                requests += Json{{"name", name}, {"locale", spec.locale}, {"value", values[i]},
                                 {"entry", *encoding ? "byte" : "wide"}, {"encoding", *encoding ? encoding : "UTF-8"},
                                 {"measureBytes", spec.measureBytes}}.dump() + "\n";
                expected.push_back(Json{{"text", want.status ? "" : want.utf8}, {"status", want.status}}.dump());
            }
        }
    }
    const auto answers = lines(run({"--jsonl"}, requests).out);
    ASSERT_EQ(answers.size(), expected.size());
    for (size_t i = 0; i < answers.size(); ++i) {
        const Json a = Json::parse(answers[i]);
        EXPECT_EQ(Json({{"text", a["status"] == 0 ? a["text"] : ""}, {"status", a["status"]}}).dump(), expected[i]) << answers[i];
    }
}

// One line out for each line in, whatever --invalid says; a bad value keeps
// its input, a message goes to stderr unless ignored, and the exit code
// follows numfmt's.
TEST(Zvfmt, PipelinesKeepEveryLine) {
    const std::string five = "1\nabc\n2\n\n3\n", bad = "zvfmt: bad VALUE \"abc\": not a number, an ISO date or "
                                                          "datetime, or a missing value\nzvfmt: bad VALUE \"\": empty VALUE\n";
    const std::string long_(2000000, ' ');
    const struct { std::vector<std::string> args; std::string input, out, err; int code; } cases[] = {
        {{"NLNUM8"}, five, "       1\nabc\n       2\n\n       3\n", bad, 2},
        {{"NLNUM8", "--invalid=ignore"}, five, "       1\nabc\n       2\n\n       3\n", "", 0},
        {{"NLNUM8", "--invalid=abort"}, five, "       1\n", bad.substr(0, bad.find('\n') + 1), 2},
        {{"NLNUM8", "-v"}, ".\nx\r\n", "       .\tstatus=0\nx\tstatus=none\n",
         "zvfmt: bad VALUE \"x\": not a number, an ISO date or datetime, or a missing value\n", 2},
        {{"@NLNUM12", "-l", "fr_FR", "--", "1 234,5", "zzz", "."}, "", "1234.5\nzzz\n.\n", "zvfmt: @NLNUM12 \"zzz\": status 1, blank or unreadable text\n", 2},
        {{"NLNUM6", "--field=2-3"}, " a  7\t-2 x\n\n", " a       7\t    -2 x\n\n", "", 0},
        {{"NLNUM6", "--header=2", "--field", "1"}, "h 1\nh 2\n5 x\n", "h 1\nh 2\n     5 x\n", "", 0},
        {{"NLNUM8"}, "1\n" + long_ + "\n2", "       1\n\n       2\n", "zvfmt: line too long: 2000000 bytes, more than 1048576\n", 2},
        {{"--validate", "--unchecked", "NLNUM40", "-v", "1"}, "", "1\tstatus=3\n", "zvfmt: NLNUM40 \"1\": status 3, width too large\n", 2},
        {{"-e", "UTF-16LE", "NLSTRMON3", "-l", "ru_RU", "3", "1"}, "", "3\n1\n",
         "zvfmt: NLSTRMON3 \"3\": status -2143295481 (0x803fe807), the field is too small for UTF-16LE\n"
         "zvfmt: NLSTRMON3 \"1\": status -2143295481 (0x803fe807), the field is too small for UTF-16LE\n", 2},
    };
    for (const auto &c : cases) {
        const auto r = run(c.args, c.input);
        EXPECT_EQ(r.out, c.out) << c.args[0] << " " << c.args.back();
        EXPECT_EQ(r.err, c.err) << c.args[0] << " " << c.args.back();
        EXPECT_EQ(r.code, c.code) << c.args[0] << " " << c.args.back();
    }
}

// Fields as numfmt reads them: random delimited lines, random field lists,
// small integers (which NLNUM and numfmt --padding write alike).
TEST(Zvfmt, FieldsAgreeWithNumfmt) {
    std::mt19937_64 rng(7);
    for (int round = 0; round < 12; ++round) {
        const char delimiter = ",;:|"[rng() % 4];
        std::string input;
        for (int line = 0; line < 20; ++line) {
            for (int f = 0, n = int(rng() % 6); f < n; ++f) {
                if (f) input += delimiter;
                input += rng() % 5 ? std::to_string(int(rng() % 2000) - 1000) : std::string(rng() % 3, 'x');
            }
            input += "\n";
        }
        const std::string lo = std::to_string(1 + rng() % 3), fields = lo + "-" + std::to_string(2 + rng() % 4) + ",5";
        const std::string d(1, delimiter);
        const auto ours = run({"NLNUM7", "--field=" + fields, "-d", d, "--invalid=ignore"}, input);
        const auto theirs = shell("numfmt --padding=7 --invalid=ignore --field=" + fields + " '-d" + d + "'", input);
        EXPECT_EQ(ours.out, theirs.out) << fields << " " << d;
    }
}

// The routines without a row by name (the documented examples show more), with their own limits.
TEST(Zvfmt, RoutinesByName) {
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{"readQuotedText", "'it''s' x", "plain"}, "it's     \nplain\n"},
        {{"readHexNumber1", "ff"}, "15\n"},
    };
    for (const auto &[args, out] : cases) {
        const auto r = run(args);
        EXPECT_EQ(r.out, out) << args[0] << r.err;
        EXPECT_EQ(r.code, 0) << args[0];
    }
    const auto refused = run({"--validate", "readHexNumber17", "ff"});
    EXPECT_EQ(refused.err, "zvfmt: readHexNumber17 \"ff\": status 3, width too large\n");
    EXPECT_EQ(run({"readUuid", "not-a-uuid"}).code, 2);
    const auto list = lines(run({"list", "--all", "--json"}).out);
    ASSERT_EQ(list.size(), 247u + zvhost::routines().size());
    EXPECT_EQ(Json::parse(list.back()), Json::parse(R"({"name":"encodeBase64Units","kind":"routine","minWidth":null,
        "maxWidth":null,"defaultWidth":null,"minDecimals":0,"maxDecimals":null,"defaultDecimals":0,"state":"ready",
        "input":"text","answer":"text"})"));
}

// With -e the field counts bytes of the encoding, so a date is written whole
// (it reads back to the same day, in exactly the width in bytes) or is bad,
// never cut in silence.
TEST(Zvfmt, ByteWidthsKeepDatesWhole) {
    const std::pair<const char *, const char *> cases[] = {{"ja_JP", "Shift_JIS"}, {"ru_RU", "UTF-16LE"}, {"el_GR", "UTF-8"}};
    int whole = 0;
    for (const auto &[locale, encoding] : cases)
        for (const char *day : {"2024-03-05", "1999-02-28"})
            for (const char *width : {"NLDATE12", "NLDATE20"}) {
                const auto text = run({"-e", encoding, width, "-l", locale, day});
                if (text.code != 0) {
                    EXPECT_NE(text.err.find("the text was cut to fit"), std::string::npos) << locale << encoding << text.err;
                    EXPECT_EQ(text.out, std::string(day) + "\n");
                    continue;
                }
                ++whole;
                const std::string t = text.out.substr(0, text.out.size() - 1);
                EXPECT_EQ(run({"@NLDATE30", "-l", locale, "--", t}).out, run({"value", day}).out.substr(11, 5) + "\n")
                    << locale << " " << encoding << " " << t;
                EXPECT_EQ(run({"-e", encoding, "--raw", width, "-l", locale, day}).out.size(), std::stoul(width + 6) + 1);
            }
    EXPECT_GE(whole, 6);
    EXPECT_EQ(run({"-e", "UTF-16LE", "--units", "NLDATE12", "-l", "ru_RU", "2024-03-05"}).code, 2); // cut: said so
}

// Item texts are Unicode wherever they are given, and mean the same.
TEST(Zvfmt, ItemsTakeUnicode) {
    const std::string file = ::testing::TempDir() + "zvfmt_items.def";
    std::ofstream(file) << "156\t\u00a3\u20ac\n";
    const std::string want = "  \u00a3\u20ac1,234.50\n";
    EXPECT_EQ(run({"NLMNY12.2", "--item", "156=\u00a3\u20ac", "1234.5"}).out, want);
    EXPECT_EQ(run({"NLMNY12.2", "--item", "156=<U00A3><U20AC>", "1234.5"}).out, want);
    EXPECT_EQ(run({"NLMNY12.2", "--locale-file", file, "1234.5"}).out, want);
    const auto j = run({"--jsonl"}, R"({"name":"NLMNY","width":12,"decimals":2,"value":1234.5,"items":{"156":"\u00a3\u20ac"}})");
    EXPECT_EQ(Json::parse(j.out)["text"], want.substr(0, want.size() - 1));
}

// The default locale comes from LC_ALL, then LANG, in POSIX form; an unknown
// one, or C, is en_US. The protocol keeps en_US.
TEST(Zvfmt, LocaleFromTheEnvironment) {
    const std::string de = run({"-l", "de_DE", "NLNUM10.2", "1234.5"}).out, us = run({"-l", "en_US", "NLNUM10.2", "1234.5"}).out;
    ASSERT_NE(de, us);
    const std::pair<std::string, std::string> cases[] = {
        {"LANG=de_DE.UTF-8", de}, {"LC_ALL=de_DE@euro LANG=fr_FR", de}, {"LC_ALL= LANG=de_DE", de},
        {"LC_ALL=C LANG=de_DE", us}, {"LANG=POSIX", us}, {"LC_ALL=xx_YY.UTF-8", us}, {"LANG= LC_ALL=", us}};
    for (const auto &[env, want] : cases) EXPECT_EQ(run({"NLNUM10.2", "1234.5"}, "", "env -u LC_ALL -u LANG " + env).out, want) << env;
    EXPECT_EQ(run({"-l", "de_DE.UTF-8", "NLNUM10.2", "1234.5"}).out, de);
    EXPECT_EQ(run({"-l", "C", "NLNUM10.2", "1234.5"}).out, us);
    const auto j = run({"--jsonl"}, R"({"name":"NLNUM","width":10,"decimals":2,"value":1234.5})", "LANG=de_DE");
    EXPECT_EQ(Json::parse(j.out)["text"].get<std::string>() + "\n", us);
}

// `value` against the host's reader (which its own tests check on dates)
// over random numbers; the number shown reads back the same.
TEST(Zvfmt, ValueAgreesWithTheHostsReader) {
    std::mt19937_64 rng(20240305);
    std::vector<std::string> args{"value", "--", ".", ".a", "._", "4000-03-01", "2024-03-05T14:07:09.5"};
    for (char buf[32]; args.size() < 300;)
        if (const double v = std::bit_cast<double>(rng()); std::isfinite(v))
            args.push_back((std::snprintf(buf, sizeof buf, "%.17g", v), buf));
    const auto r = run(args);
    ASSERT_EQ(r.code, 0) << r.err;
    const auto out = lines(r.out);
    ASSERT_EQ(out.size(), args.size() - 2);
    for (size_t i = 0; i < out.size(); ++i) {
        const std::string &text = args[i + 2], shownText = out[i].substr(text.size() + 1, out[i].size() - text.size() - 18);
        const auto v = zvhost::parseValue(text.size() == 2 && text[0] == '.' ? std::string(".") + char(std::toupper(text[1])) : text);
        ASSERT_TRUE(v.has_value()) << text;
        char bits[24];
        std::snprintf(bits, sizeof bits, "\t%016llx", static_cast<unsigned long long>(std::bit_cast<uint64_t>(*v)));
        EXPECT_EQ(out[i].substr(out[i].size() - 17), bits) << text;
        const char mark = zvhost::missingMark(*v);
        EXPECT_TRUE(mark ? shownText == (mark == '.' ? "." : std::string(".") + mark)
                         : std::strtod(shownText.c_str(), nullptr) == *v && shownText.size() <= 24) << out[i];
    }
}

// Each bad line, followed by a good one: both are answered, in order, and
// the stream ends with exit code 0. A bad field of a request whose row is
// right is that field's error.
TEST(Jsonl, EveryLineIsAnswered) {
    const std::string good = R"({"name": "NLNUM", "value": 1, "id": "ok"})";
    const std::pair<std::string, std::string> bad[] = {
        {R"({"name": )", "malformed JSON: parse error at line 1, column 10: "},
        {"", "empty line: expected a JSON object"},
        {"[1, 2]", "a request must be a JSON object, not an array"},
        {std::string(3u << 20, 'x'), "line too long: 3145728 bytes, more than 1048576"},
        {R"({"id": [1, {"a": null}]})", "name: missing (the row to call, e.g. \"NLDATE\")"},
        {R"({"name": 3, "id": 2})", "name: must be a string, not a number"},
        {R"({"name": "NLDATE2", "value": 1})", "name: no row or routine named \"NLDATE2\""},
        {R"({"name": "NLNUM", "value": 1, "width": "w"})", "width: must be an integer from -2147483648 to 2147483647, not a string"},
        {R"({"name": "@NLDATE", "text": "1", "width": 8.5})", "width: must be an integer from -2147483648 to 2147483647, not 8.5"},
        {R"({"name": "NLNUM"})", "value: missing (NLNUM needs value or bits)"},
        {R"({"name": "NLNUM", "value": "2024-02-30"})", "value: day 30 is out of range for 2024-02 (01..29)"},
        {R"({"name": "NLNUM", "text": "1"})", "text: NLNUM is a format; give value or bits"},
        {R"({"name": "@NLNUM", "text": "1", "entry": "byte"})", "entry: @NLNUM is an informat; informats have only the wide entry"},
        {R"({"name": "NLNUM", "value": 1, "locale": "!!", "id": null})", "locale: unknown locale \"!!\""},
        {R"({"name": "NLNUM", "value": 1, "items": {"189": "x"}})", "items: key \"189\" is not an item number from 0 to 188"},
        {R"({"name": "NLNUM", "value": 1, "timeZone": "Mars/Olympus_Mons"})", "timeZone: unknown time zone \"Mars/Olympus_Mons\""},
        {R"({"name": "NLNUM", "value": 1, "options": {"ZV_NAME_YEARCUTOFF": "1920"}})", "options: ZV_NAME_YEARCUTOFF must be an integer or null, not a string"},
    };
    std::string input;
    for (const auto &[line, error] : bad) input += line + "\n" + good + "\n";
    const auto r = run({"--jsonl"}, input + good); // the last line has no newline
    EXPECT_EQ(r.code, 0);
    EXPECT_EQ(r.err, "");
    const auto out = lines(r.out);
    ASSERT_EQ(out.size(), 2 * std::size(bad) + 1);
    const std::string answer = out.back();
    EXPECT_EQ(Json::parse(answer)["id"], "ok");
    for (size_t i = 0; i < std::size(bad); ++i) {
        const Json a = Json::parse(out[2 * i]);
        const Json request = Json::parse(bad[i].first, nullptr, false);
        EXPECT_EQ(a.value("error", "").substr(0, bad[i].second.size()), bad[i].second) << a.dump();
        EXPECT_EQ(a["id"], request.is_object() && request.contains("id") ? request["id"] : Json()) << a.dump();
        EXPECT_EQ(out[2 * i + 1], answer) << bad[i].second;
    }
}

// Each answer is written before the next request comes; timeZone, options
// and clock hold for their own request only; unknown fields are warned about.
TEST(Jsonl, AnswersAtOnceAndPutsStateBack) {
    const std::string out = ::testing::TempDir() + "zvfmt_cli_coprocess_" + std::to_string(getpid()) + ".out";
    std::remove(out.c_str());
    FILE *in = popen((std::string(ZVFMT_PATH) + " --jsonl >" + out).c_str(), "w");
    const std::string zoned = R"({"name": "NLDATMTZ", "width": 40, "value": "2024-07-05T14:07:09")";
    const std::string read = R"({"name": "@NLDATE", "text": "3/5/40")";
    const std::string requests[] = {zoned + "}", read + "}",
                                    zoned + R"(, "timeZone": "Australia/Lord_Howe", "clock": {"value": 1e9}})",
                                    read + R"(, "options": {"ZV_NAME_YEARCUTOFF": 1901}})", zoned + "}", read + "}",
                                    R"({"name": "NLNUM", "value": 1, "colour": "red", "Width": 3})"};
    for (size_t i = 0; i < std::size(requests); ++i) {
        std::fprintf(in, "%s\n", requests[i].c_str());
        std::fflush(in);
        auto answered = [&] { const std::string t = slurp(out); return size_t(std::count(t.begin(), t.end(), '\n')); };
        for (int wait = 0; wait < 2000 && answered() <= i; ++wait) usleep(10000);
        ASSERT_EQ(answered(), i + 1) << requests[i];
    }
    EXPECT_EQ(pclose(in), 0);
    const auto a = lines(slurp(out));
    std::remove(out.c_str());
    EXPECT_NE(a[2], a[0]);
    EXPECT_NE(a[3], a[1]);
    EXPECT_EQ(a[4], a[0]);
    EXPECT_EQ(a[5], a[1]);
    EXPECT_EQ(Json::parse(a[6])["warnings"], Json({"unknown field \"colour\" ignored", "unknown field \"Width\" ignored"}));
}

} // namespace
