// zvfmt: each command once, the tool's answers against the host's own calls,
// the documented examples, and a JSON-lines stream that survives bad lines.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <charconv>
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

// ZVFMT_PATH with the arguments, `input` on stdin, through the shell.
Run run(const std::vector<std::string> &args, const std::string &input = "") {
    const std::string base = ::testing::TempDir() + "zvfmt_cli_" + std::to_string(getpid());
    std::ofstream(base + ".in", std::ios::binary) << input;
    std::string command = ZVFMT_PATH;
    for (const std::string &a : args) {
        command += " '";
        for (char c : a) command += c == '\'' ? std::string("'\\''") : std::string(1, c);
        command += "'";
    }
    const int status = std::system((command + " <" + base + ".in >" + base + ".out 2>" + base + ".err").c_str());
    return {WEXITSTATUS(status), slurp(base + ".out"), slurp(base + ".err")};
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

// A double as the tool shows it: the mark of a missing value, else the
// shortest text that reads back the same.
std::string shown(double v) {
    if (const char mark = zvhost::missingMark(v)) return mark == '.' ? "." : std::string(".") + mark;
    char buf[64];
    return std::string(buf, std::to_chars(buf, buf + sizeof buf, v).ptr);
}

std::string hexOf(double v) {
    char buf[20];
    std::snprintf(buf, sizeof buf, "%016llx", static_cast<unsigned long long>(std::bit_cast<uint64_t>(v)));
    return buf;
}

struct Example {
    std::vector<std::string> args;
    std::string input, out;
};

// The examples of README.md and docs/zvfmt.md, as they are documented.
TEST(Zvfmt, DocumentedExamples) {
    const Example examples[] = {
        {{"NLDATE20", "2024-03-05", "-l", "fr_FR"}, "", "5 mars 2024         \n"},
        {{"NLMNY15.2", "-l", "de_DE", "--", "-1234567.891"}, "", "-1.234.567,89 \xE2\x82\xAC\n"},
        {{"@NLNUM12", "1,234.5"}, "", "1234.5\n"},
        {{"@NLDATE", "5 mars 2024", "-l", "fr_FR"}, "", "23440\n"},
        {{"NLNUM8.2"}, "1\n2\n3\n", "    1.00\n    2.00\n    3.00\n"},
        {{"value", "2024-03-05", "._"}, "", "2024-03-05\t23440\t40d6e40000000000\n._\t._\tffffd20000000000\n"},
        {{"--jsonl"}, R"({"name":"NLSTRMON","value":3,"locale":"fr_FR","width":8,"id":1})" "\n",
         R"({"id":1,"status":0,"text":"mars    ","outputLength":8})" "\n"},
        {{"--jsonl"}, R"({"name": "NLDATE", "width": 10, "value": ".", "id": 1})" "\n",
         R"({"id":1,"status":0,"text":"         .","outputLength":10})" "\n"},
        {{"--jsonl"}, R"({"name": "NLSTRMON", "width": 8, "value": ".A", "entry": "byte"})",
         R"({"status":0,"text":"       A","outputLength":8,"hex":"2020202020202041"})" "\n"},
        {{"--version"}, "", "zvfmt (zvlocfmt 6.1.1)\n"},
    };
    for (const Example &e : examples) {
        const auto r = run(e.args, e.input);
        EXPECT_EQ(r.code, 0) << e.args[0] << r.err;
        EXPECT_EQ(r.out, e.out) << e.args[0];
    }
}

// Bad arguments: exit 2, nothing on stdout, the reason and a hint on stderr.
TEST(Zvfmt, RefusedArguments) {
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{}, "no command; give a format such as NLDATE20, or list, demo, value, --jsonl"},
        {{"NOSUCH", "1"}, "no format or informat named NOSUCH (see 'zvfmt list')"},
        {{"NLDATE20x", "1"}, "bad format \"NLDATE20x\": unexpected \"x\" after NLDATE (the form is NAME[W[.D]])"},
        {{"nldate201", "1"}, "NLDATE: width 201 is out of range (10..200; --unchecked passes it on)"},
        {{"--option", "ZV_NAME_YEARCUTOFF=19x0", "NLNUM", "1"}, "--option ZV_NAME_YEARCUTOFF: \"19x0\" is not an integer"},
        {{"-l", "xx_YY", "NLNUM", "1"}, "unknown locale \"xx_YY\""},
        {{"--tz", "Mars/Olympus_Mons", "NLNUM", "1"}, "unknown time zone \"Mars/Olympus_Mons\""},
        {{"--entry", "byte", "@NLNUM", "1"}, "@NLNUM is an informat; informats have only the wide entry"},
        {{"list", "--pending", "--ready"}, "give --pending or --ready, not both"},
        {{"NLNUM", "1", "--json"}, "option --json belongs to 'zvfmt list'"},
    };
    for (const auto &[args, message] : cases) {
        const auto r = run(args);
        EXPECT_EQ(r.code, 2) << message;
        EXPECT_EQ(r.out, "");
        EXPECT_EQ(r.err, "zvfmt: " + message + "\nTry 'zvfmt --help'.\n");
    }
    EXPECT_EQ(run({"list", "--help"}).out.substr(0, 14), "zvfmt list [--");
}

// The listing is the host's table; every row is built, so --ready lists them
// all and --pending none, and the state column stays "ready".
TEST(Zvfmt, ListIsTheHostsTable) {
    zvhost::Host host;
    ASSERT_NE(host.loadModule(), nullptr);
    const auto rows = zvhost::tableRows(host.instance()->formatTable);
    const auto json = lines(run({"list", "--json"}).out);
    const auto r = run({"list", "--header"});
    const auto text = lines(r.out);
    ASSERT_EQ(json.size(), 247u);
    ASSERT_EQ(rows.size(), 247u);
    ASSERT_EQ(text.size(), 248u);
    EXPECT_EQ(text[0], "NAME       KIND      MINW MAXW DEFW MAXD DEFD STATE");
    EXPECT_EQ(r.err, "247 of 247 rows (150 formats, 97 informats)\n");
    for (size_t i = 0; i < rows.size(); ++i) {
        const FormatTableRow &row = *rows[i];
        const Json j = Json::parse(json[i]);
        const Json want = {{"name", zvhost::rowName(row)}, {"kind", zvhost::isInformat(row) ? "informat" : "format"},
                           {"minWidth", row.minWidth}, {"maxWidth", row.maxWidth}, {"defaultWidth", row.defaultWidth},
                           {"minDecimals", row.minDecimals}, {"maxDecimals", row.maxDecimals},
                           {"defaultDecimals", row.defaultDecimals}, {"state", "ready"}};
        EXPECT_EQ(j, want);
        char line[160];
        std::snprintf(line, sizeof line, "%-10s %-8s %4u %4u %4u %4u %4u ready", zvhost::rowName(row).c_str(),
                      zvhost::isInformat(row) ? "informat" : "format", row.minWidth, row.maxWidth, row.defaultWidth,
                      row.maxDecimals, row.defaultDecimals);
        EXPECT_EQ(text[i + 1], line);
    }
    auto informats = lines(run({"list", "--informats"}).out);
    const auto formats = lines(run({"list", "--formats"}).out);
    EXPECT_EQ(informats.size(), 97u);
    informats.insert(informats.end(), formats.begin(), formats.end());
    EXPECT_EQ(informats, std::vector<std::string>(text.begin() + 1, text.end()));
    EXPECT_EQ(run({"list", "--ready"}).out, run({"list"}).out);
    const auto pending = run({"list", "--pending", "--formats"});
    EXPECT_EQ(pending.code, 0);
    EXPECT_EQ(pending.out, "");
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
    for (int k = 0; k < 189; ++k) {
        const std::string raw = zvhost::rawItem(table, k);
        std::u16string units = zvhost::unescapeTableText(raw);
        std::replace(units.begin(), units.end(), u'\u00A4', u'\u00B7'); // the currency mark, shown as a dot
        const std::string decoded = zvhost::utf8(units);
        const std::string head = std::to_string(k) + "\t";
        EXPECT_EQ(items[size_t(k)].substr(0, head.size()), head);
        EXPECT_EQ(items[size_t(k)].substr(items[size_t(k)].find('\t', head.size())), "\t" + raw + "\t" + decoded);
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
                EXPECT_EQ(out[i], want.utf8 + "\tstatus=" + statusShown(want.status)) << name << " " << values[i];
                requests += Json{{"name", name}, {"locale", spec.locale}, {"value", values[i]},
                                 {"entry", *encoding ? "byte" : "wide"}, {"encoding", *encoding ? encoding : "UTF-8"}}
                                .dump() + "\n";
                expected.push_back(Json{{"text", want.utf8}, {"status", want.status}}.dump());
            }
        }
    }
    const auto answers = lines(run({"--jsonl"}, requests).out);
    ASSERT_EQ(answers.size(), expected.size());
    for (size_t i = 0; i < answers.size(); ++i) {
        const Json a = Json::parse(answers[i]);
        EXPECT_EQ(Json({{"text", a["text"]}, {"status", a["status"]}}).dump(), expected[i]) << answers[i];
    }
}

TEST(Zvfmt, InformatsAgreeWithTheHostsCalls) {
    zvhost::Host host;
    ASSERT_NE(host.loadModule(), nullptr);
    const std::vector<std::string> texts{"5 mars 2024", "1 234,5", "12 %", "zzz", ".", "14:07:09", "2024-W10-2"};
    for (const char *name : {"@NLDATE", "@NLNUM", "@NLPCT", "@NLTIME", "@WEEKV"}) {
        std::vector<std::string> args{"-l", "fr_FR", "--", name};
        args.insert(args.end(), texts.begin(), texts.end());
        const auto out = lines(run(args).out);
        ASSERT_EQ(out.size(), texts.size()) << name;
        zvhost::CallSpec spec;
        spec.locale = "fr_FR";
        for (size_t i = 0; i < texts.size(); ++i) {
            const auto r = zvhost::runInformat(host, *zvhost::findRow(host.instance()->formatTable, name), spec, texts[i]);
            const std::string want = r.untouched ? "untouched" : shown(r.value);
            EXPECT_EQ(out[i], want + (r.status ? "\tstatus=" + statusShown(r.status) : "")) << name << " " << texts[i];
        }
    }
}

// A bad VALUE is reported and the values after it are still written.
TEST(Zvfmt, StdinGoesOnAfterABadValue) {
    const auto r = run({"NLNUM8"}, ".\nnonsense\n.B\r\n\n._");
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.out, "       .\n       B\n       _\n");
    EXPECT_EQ(r.err, "zvfmt: bad VALUE \"nonsense\": not a number, an ISO date or datetime, or a missing value\n"
                     "zvfmt: bad VALUE \"\": empty VALUE\n");
}

// `value` against the host's reader over random dates, datetimes and
// numbers; the number shown is the shortest that reads back the same.
TEST(Zvfmt, ValueAgreesWithTheHostsReader) {
    std::mt19937_64 rng(20240305);
    std::vector<std::string> args{"value", "--", ".", ".a", "._", "4000-03-01"};
    for (int i = 0; i < 300; ++i) {
        char buf[64];
        std::snprintf(buf, sizeof buf, "%04d-%02d-%02dT%02d:%02d:%02d.5", int(1582 + rng() % 8000),
                      int(1 + rng() % 12), int(1 + rng() % 28), int(rng() % 24), int(rng() % 60), int(rng() % 60));
        args.push_back(buf);
        args.push_back(std::string(buf, 10));
        const double v = std::bit_cast<double>(rng());
        std::snprintf(buf, sizeof buf, "%.17g", v);
        if (std::isfinite(v)) args.push_back(buf);
    }
    const auto r = run(args);
    ASSERT_EQ(r.code, 0) << r.err;
    const auto out = lines(r.out);
    ASSERT_EQ(out.size(), args.size() - 2);
    for (size_t i = 0; i < out.size(); ++i) {
        const std::string &text = args[i + 2];
        const auto tab = out[i].find('\t'), tab2 = out[i].rfind('\t');
        const std::string upper = text.size() == 2 && text[0] == '.' ? std::string(".") + char(std::toupper(text[1])) : text;
        const auto host = zvhost::parseValue(upper);
        ASSERT_TRUE(host.has_value()) << text;
        EXPECT_EQ(out[i].substr(tab2 + 1), hexOf(*host)) << text;
        EXPECT_EQ(out[i].substr(tab + 1, tab2 - tab - 1), shown(*host)) << text;
    }
}

// Each bad line, followed by a good one: both are answered, in order, and
// the stream ends with exit code 0. A bad field of a request whose row is
// right is that field's error.
TEST(Jsonl, EveryLineIsAnswered) {
    const std::string good = R"({"name": "NLNUM", "value": 1, "id": "ok"})";
    const std::pair<std::string, std::string> bad[] = {
        {R"({"name": )", "malformed JSON: parse error at line 1, column 10: "},
        {"\x80\x81", "malformed JSON: parse error"},
        {"", "empty line: expected a JSON object"},
        {"[1, 2]", "a request must be a JSON object, not an array"},
        {std::string(3u << 20, 'x'), "line too long: 3145728 bytes, more than 1048576"},
        {R"({"id": [1, {"a": null}]})", "name: missing (the row to call, e.g. \"NLDATE\")"},
        {R"({"name": 3, "id": 2})", "name: must be a string, not a number"},
        {R"({"name": "NLDATE2", "value": 1})", "name: no row named \"NLDATE2\""},
        {R"({"name": "NLNUM", "value": 1, "width": "w"})", "width: must be an integer from 0 to 65536, not a string"},
        {R"({"name": "@NLDATE", "text": "1", "width": 8.5})", "width: must be an integer from 0 to 65536, not 8.5"},
        {R"({"name": "NLNUM"})", "value: missing (NLNUM needs value or bits)"},
        {R"({"name": "NLNUM", "value": "2024-02-30"})", "value: day 30 is out of range for 2024-02 (01..29)"},
        {R"({"name": "NLNUM", "value": 1, "bits": "3ff0000000000000"})", "value, bits: give one of them, not both"},
        {R"({"name": "NLNUM", "text": "1"})", "text: NLNUM is a format; give value or bits"},
        {R"({"name": "@nlnum", "value": 5})", "value: @NLNUM is an informat; give the text to read in text"},
        {R"({"name": "@NLNUM", "text": "1", "entry": "byte"})", "entry: @NLNUM is an informat; informats have only the wide entry"},
        {R"({"name": "NLNUM", "value": 1, "locale": "!!", "id": null})", "locale: unknown locale \"!!\""},
        {R"({"name": "NLNUM", "value": 1, "items": {"189": "x"}})", "items: key \"189\" is not an item number from 0 to 188"},
        {R"({"name": "NLNUM", "value": 1, "timeZone": "Mars/Olympus_Mons"})", "timeZone: unknown time zone \"Mars/Olympus_Mons\""},
        {R"({"name": "NLNUM", "value": 1, "options": {"ZV_NAME_YEARCUTOFF": "1920"}})", "options: ZV_NAME_YEARCUTOFF must be an integer or null, not a string"},
        {R"({"name": "NLNUM", "value": 1, "clock": {"value": 1, "tick": 2}})", "clock: unknown member \"tick\""},
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
    const std::string out = ::testing::TempDir() + "zvfmt_cli_coprocess.out";
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
    EXPECT_NE(a[2], a[0]);
    EXPECT_NE(a[3], a[1]);
    EXPECT_EQ(a[4], a[0]);
    EXPECT_EQ(a[5], a[1]);
    EXPECT_EQ(Json::parse(a[6])["warnings"], Json({"unknown field \"colour\" ignored", "unknown field \"Width\" ignored"}));
}

} // namespace
