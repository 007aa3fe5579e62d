// The JSON-lines protocol, driven as a coprocess: one line out, one answer in.
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

#include "helpers.hpp"

namespace {

using clitest::Coprocess;
using Json = nlohmann::json;

Json parsed(const std::string &line) {
    Json j = Json::parse(line, nullptr, false);
    EXPECT_FALSE(j.is_discarded()) << "not JSON: " << line;
    return j;
}

struct BadLine {
    std::string request;
    std::string error; // the whole message, or its start when it ends in "..."
};

void expectError(const Json &answer, const std::string &error, const Json &id) {
    ASSERT_TRUE(answer.contains("error")) << answer.dump();
    const std::string got = answer["error"];
    if (error.size() > 3 && error.substr(error.size() - 3) == "...")
        EXPECT_EQ(got.substr(0, error.size() - 3), error.substr(0, error.size() - 3));
    else
        EXPECT_EQ(got, error);
    ASSERT_TRUE(answer.contains("id"));
    EXPECT_EQ(answer["id"], id);
    EXPECT_EQ(answer.size(), 2u) << answer.dump();
}

class JsonlBad : public ::testing::TestWithParam<BadLine> {};

// Every bad line is answered with an error naming what is wrong, and the
// stream goes on: a second bad request right after is answered too.
TEST_P(JsonlBad, AnsweredWithAnErrorAndTheStreamGoesOn) {
    Coprocess zv;
    const BadLine &b = GetParam();
    const Json first = parsed(zv.ask(b.request));
    Json id = nullptr;
    const Json req = Json::parse(b.request, nullptr, false);
    if (req.is_object() && req.contains("id")) id = req["id"];
    expectError(first, b.error, id);
    expectError(parsed(zv.ask(R"({"id": "after"})")), "name: missing (the row to call, e.g. \"NLDATE\")", "after");
    EXPECT_EQ(zv.finish(), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, JsonlBad,
    ::testing::Values(
        BadLine{R"({"name": )", "malformed JSON: parse error at line 1, column 10: ..."},
        BadLine{R"({"name": "NLNUM",})", "malformed JSON: parse error..."},
        BadLine{"not json", "malformed JSON: parse error..."},
        BadLine{"", "empty line: expected a JSON object"},
        BadLine{"   ", "empty line: expected a JSON object"},
        BadLine{"[1, 2]", "a request must be a JSON object, not an array"},
        BadLine{"42", "a request must be a JSON object, not a number"},
        BadLine{R"("NLNUM")", "a request must be a JSON object, not a string"},
        BadLine{"null", "a request must be a JSON object, not null"},
        BadLine{R"({"id": 1})", "name: missing (the row to call, e.g. \"NLDATE\")"},
        BadLine{R"({"name": 3, "id": 2})", "name: must be a string, not a number"},
        BadLine{R"({"name": "NOSUCH", "value": 1})", "name: no row named \"NOSUCH\""},
        BadLine{R"({"name": "NLDATE2", "value": 1})", "name: no row named \"NLDATE2\""},
        BadLine{R"({"name": "NLNUM", "width": "x", "value": 1})", "width: must be an integer from 0 to 65536, not a string"},
        BadLine{R"({"name": "NLNUM", "width": 8.5, "value": 1})", "width: must be an integer from 0 to 65536, not 8.5"},
        BadLine{R"({"name": "NLNUM", "width": -1, "value": 1})", "width: must be an integer from 0 to 65536, not -1"},
        BadLine{R"({"name": "NLNUM", "width": 1e9, "value": 1})", "width: must be an integer from 0 to 65536, not 1000000000.0"},
        BadLine{R"({"name": "NLNUM", "decimals": true, "value": 1})", "decimals: must be an integer from 0 to 99, not a boolean"},
        BadLine{R"({"name": "NLNUM", "decimals": 100, "value": 1})", "decimals: must be an integer from 0 to 99, not 100"},
        BadLine{R"({"name": "NLNUM"})", "value: missing (NLNUM needs value or bits)"},
        BadLine{R"({"name": "NLNUM", "value": [1]})", "value: must be a number or a VALUE string, not an array"},
        BadLine{R"({"name": "NLNUM", "value": "2024-02-30"})", "value: day 30 is out of range for 2024-02 (01..29)"},
        BadLine{R"({"name": "NLNUM", "value": "abc"})", "value: not a number, an ISO date or datetime, or a missing value"},
        BadLine{R"({"name": "NLNUM", "value": 1, "bits": "3ff0000000000000"})", "value, bits: give one of them, not both"},
        BadLine{R"({"name": "NLNUM", "bits": "3ff00000"})", "bits: must be exactly 16 hex digits, not \"3ff00000\""},
        BadLine{R"({"name": "NLNUM", "bits": "3ff000000000000g"})", "bits: must be exactly 16 hex digits, not \"3ff000000000000g\""},
        BadLine{R"({"name": "NLNUM", "bits": 16})", "bits: must be a string of 16 hex digits, not a number"},
        BadLine{R"({"name": "NLNUM", "text": "1"})", "text: NLNUM is a format; give value or bits"},
        BadLine{R"({"name": "@NLNUM"})", "text: missing (@NLNUM reads a text)"},
        BadLine{R"({"name": "@NLNUM", "text": 5})", "text: must be a string, not a number"},
        BadLine{R"({"name": "@nlnum", "value": 5})", "value: @NLNUM is an informat; give the text to read in text"},
        BadLine{R"({"name": "@NLNUM", "text": "1", "entry": "byte"})", "entry: @NLNUM is an informat; informats have only the wide entry"},
        BadLine{R"({"name": "NLNUM", "value": 1, "entry": "sideways"})", "entry: must be \"wide\" or \"byte\", not \"sideways\""},
        BadLine{R"({"name": "NLNUM", "value": 1, "locale": 5})", "locale: must be a string, not a number"},
        BadLine{R"({"name": "NLNUM", "value": 1, "items": []})", "items: must be an object of item number to text, not an array"},
        BadLine{R"({"name": "NLNUM", "value": 1, "items": {"189": "x"}})", "items: key \"189\" is not an item number from 0 to 188"},
        BadLine{R"({"name": "NLNUM", "value": 1, "items": {"-1": "x"}})", "items: key \"-1\" is not an item number from 0 to 188"},
        BadLine{R"({"name": "NLNUM", "value": 1, "items": {"x": "y"}})", "items: key \"x\" is not an item number from 0 to 188"},
        BadLine{R"({"name": "NLNUM", "value": 1, "items": {"28": 7}})", "items: item 28 must be a string, not a number"},
        BadLine{R"({"name": "NLNUM", "value": 1, "encoding": 1})", "encoding: must be a string, not a number"},
        BadLine{R"({"name": "NLNUM", "value": 1, "encoding": "NO-SUCH-ENCODING-42"})", "encoding: unknown encoding \"NO-SUCH-ENCODING-42\""},
        BadLine{R"({"name": "NLNUM", "value": 1, "measureBytes": "yes"})", "measureBytes: must be true or false, not a string"},
        BadLine{R"({"name": "NLNUM", "value": 1, "validate": 1})", "validate: must be true or false, not a number"},
        BadLine{R"({"name": "@NLNUM", "text": "1", "fieldLimit": -1})", "fieldLimit: must be an integer from 0 to 65536, not -1"},
        BadLine{R"({"name": "NLNUM", "value": 1, "outputCapacity": 1.5})", "outputCapacity: must be an integer from 0 to 65536, not 1.5"},
        BadLine{R"({"name": "NLNUM", "value": 1, "timeZone": 0})", "timeZone: must be a string, not a number"},
        BadLine{R"({"name": "NLNUM", "value": 1, "timeZone": "Mars/Olympus_Mons"})", "timeZone: unknown time zone \"Mars/Olympus_Mons\""},
        BadLine{R"({"name": "NLNUM", "value": 1, "options": []})", "options: must be an object of option name to integer, not an array"},
        BadLine{R"({"name": "NLNUM", "value": 1, "options": {"ZV_NAME_YEARCUTOFF": "1920"}})", "options: ZV_NAME_YEARCUTOFF must be an integer or null, not a string"},
        BadLine{R"({"name": "NLNUM", "value": 1, "clock": 5})", "clock: must be an object {\"value\": s, \"shift\": s}, not a number"},
        BadLine{R"({"name": "NLNUM", "value": 1, "clock": {}})", "clock: value is missing"},
        BadLine{R"({"name": "NLNUM", "value": 1, "clock": {"value": "x"}})", "clock.value: must be a number, not a string"},
        BadLine{R"({"name": "NLNUM", "value": 1, "clock": {"value": 1, "tick": 2}})", "clock: unknown member \"tick\""},
        BadLine{R"({"name": "NLNUM", "value": 1, "locale": "!!", "id": [1, {"a": null}]})", "locale: unknown locale \"!!\""}));

// Ids of any JSON type come back as they went, in errors and in answers.
TEST(Jsonl, IdsAreEchoedVerbatim) {
    Coprocess zv;
    const auto ready = clitest::firstRow(false, true);
    for (const std::string id : {"0", "-1.5", "12345678901234", "\"abc\"", "\"\"", "null", "true",
                                 "[1,\"x\"]", "{\"k\":{\"n\":[]}}"}) {
        const Json want = Json::parse(id);
        expectError(parsed(zv.ask(R"({"id": )" + id + "}")), "name: missing (the row to call, e.g. \"NLDATE\")", want);
        if (ready) {
            const Json a = parsed(zv.ask(R"({"name": ")" + ready->name + R"(", "value": ".", "id": )" + id + "}"));
            EXPECT_FALSE(a.contains("error")) << a.dump();
            EXPECT_EQ(a["id"], want);
        }
    }
    // Without an id an answer has none.
    if (ready) {
        EXPECT_FALSE(parsed(zv.ask(R"({"name": ")" + ready->name + R"(", "value": 1})")).contains("id"));
    }
}

TEST(Jsonl, PendingRowIsAnErrorAndTheNextLineIsServed) {
    const auto pending = clitest::firstPending();
    if (!pending) GTEST_SKIP() << "every row is built";
    Coprocess zv;
    const std::string input = pending->informat ? R"("text": "1")" : R"("value": 1)";
    expectError(parsed(zv.ask(R"({"name": ")" + pending->name + R"(", )" + input + R"(, "id": 9})")),
                pending->name + " is not built yet", 9);
    expectError(parsed(zv.ask(R"({"name": ")" + pending->name + R"(", )" + input + R"(, "id": "r"})")),
                pending->name + " is not built yet", "r");
    // A bad field is reported before the row's state.
    expectError(parsed(zv.ask(R"({"name": ")" + pending->name + R"(", )" + input + R"(, "width": "w"})")),
                "width: must be an integer from 0 to 65536, not a string", nullptr);
    expectError(parsed(zv.ask(R"({"name": "NOSUCH", "value": 1, "id": 10})")), "name: no row named \"NOSUCH\"", 10);
}

TEST(Jsonl, UnknownFieldsAreWarnedAbout) {
    const auto ready = clitest::firstRow(false, true);
    if (!ready) GTEST_SKIP() << "no format is built yet";
    Coprocess zv;
    const Json a = parsed(zv.ask(R"({"name": ")" + ready->name + R"(", "value": 1, "colour": "red", "Width": 3})"));
    ASSERT_TRUE(a.contains("warnings")) << a.dump();
    EXPECT_EQ(a["warnings"], Json({"unknown field \"colour\" ignored", "unknown field \"Width\" ignored"}));
    EXPECT_FALSE(parsed(zv.ask(R"({"name": ")" + ready->name + R"(", "value": 1})")).contains("warnings"));
}

// The missing mark is the frame's work, so every built format shows it the
// same way: blanks, and the mark in the last place whatever the decimals.
TEST(Jsonl, FormatAnswersOnBothEntries) {
    const auto ready = clitest::firstRow(false, true);
    if (!ready) GTEST_SKIP() << "no format is built yet";
    Coprocess zv;
    const int w = ready->defaultWidth;
    const std::string blanks(static_cast<size_t>(w - 1), ' ');
    struct Case { std::string value; char mark; };
    for (const Case &c : {Case{".", '.'}, Case{".A", 'A'}, Case{".Z", 'Z'}, Case{"._", '_'}}) {
        for (const std::string entry : {"wide", "byte"}) {
            const Json a = parsed(zv.ask(R"({"name": ")" + ready->name + R"(", "value": ")" + c.value +
                                         R"(", "entry": ")" + entry + R"("})"));
            ASSERT_FALSE(a.contains("error")) << a.dump();
            EXPECT_EQ(a["status"], 0);
            EXPECT_EQ(a["text"], blanks + c.mark);
            EXPECT_EQ(a["outputLength"], w);
            if (entry == "byte") {
                std::string hex;
                for (int i = 0; i < w - 1; ++i) hex += "20";
                static const char kHex[] = "0123456789abcdef";
                hex += kHex[static_cast<unsigned char>(c.mark) >> 4];
                hex += kHex[c.mark & 15];
                EXPECT_EQ(a["hex"], hex);
                EXPECT_EQ(a.size(), 4u) << a.dump();
            } else {
                EXPECT_FALSE(a.contains("hex"));
                EXPECT_EQ(a.size(), 3u) << a.dump();
            }
        }
    }
    // The same value given by its bits; decimals don't move the mark.
    const Json b = parsed(zv.ask(R"({"name": ")" + ready->name + R"(", "bits": "FFFFBE0000000000", "decimals": )" +
                                 std::to_string(ready->maxDecimals) + "}"));
    EXPECT_EQ(b["text"], blanks + 'A');
}

// A host encoding of two bytes a character, where the field's blanks don't
// fit the width in bytes: a date row keeps what fitted, a number row keeps
// its mark right-justified behind 8-bit blanks.
TEST(Jsonl, ByteEntryOverflowByJustification) {
    std::optional<clitest::ListedRow> left, right;
    for (const auto &row : clitest::listedRows()) {
        if (row.informat || !row.ready) continue;
        const bool isLeft = row.name.rfind("NLDAT", 0) == 0 || row.name.rfind("NLTIM", 0) == 0 ||
                            row.name.find("WEEK") != std::string::npos;
        if (isLeft && !left) left = row;
        if (!isLeft && !right) right = row;
    }
    Coprocess zv;
    auto ask = [&](const clitest::ListedRow &row, int w) {
        return parsed(zv.ask(R"({"name": ")" + row.name + R"(", "value": ".", "entry": "byte", )"
                             R"("encoding": "UTF-16BE", "width": )" + std::to_string(w) + "}"));
    };
    if (left) {
        for (int w = std::max(left->minWidth, 10); w <= std::max(left->minWidth, 10) + 3; ++w) {
            const Json a = ask(*left, w);
            ASSERT_FALSE(a.contains("error")) << a.dump();
            std::string hex;
            for (int i = 0; i < w / 2; ++i) hex += "0020";
            EXPECT_EQ(a["status"], 0) << left->name << w;
            EXPECT_EQ(a["hex"], hex) << left->name << w;
            EXPECT_EQ(a["outputLength"], w / 2 * 2) << left->name << w;
            EXPECT_EQ(a["text"], std::string(static_cast<size_t>(w / 2), ' '));
        }
    }
    if (right) {
        for (int w = std::max(right->minWidth, 2); w <= std::max(right->minWidth, 2) + 3; ++w) {
            const Json a = ask(*right, w);
            ASSERT_FALSE(a.contains("error")) << a.dump();
            std::string hex;
            for (int i = 0; i < w - 2; ++i) hex += "20";
            EXPECT_EQ(a["status"], 0) << right->name << w;
            EXPECT_EQ(a["hex"], hex + "002e") << right->name << w;
            EXPECT_EQ(a["outputLength"], w) << right->name << w;
        }
    }
    if (!left && !right) GTEST_SKIP() << "no format is built yet";
}

TEST(Jsonl, InformatAnswerFields) {
    const auto ready = clitest::firstRow(true, true);
    if (!ready) GTEST_SKIP() << "no informat is built yet";
    Coprocess zv;
    for (const std::string text : {"", "1", "zzz", "   "}) {
        const Json a = parsed(zv.ask(R"({"name": ")" + ready->name + R"(", "text": ")" + text + R"(", "id": 1})"));
        ASSERT_FALSE(a.contains("error")) << a.dump();
        ASSERT_TRUE(a["status"].is_number_integer());
        ASSERT_TRUE(a["bits"].is_string());
        EXPECT_EQ(a["bits"].get<std::string>().size(), 16u);
        ASSERT_TRUE(a["untouched"].is_boolean());
        ASSERT_TRUE(a.contains("value"));
        const uint64_t bits = std::stoull(a["bits"].get<std::string>(), nullptr, 16);
        if (a.contains("missing")) {
            EXPECT_TRUE(a["value"].is_null());
            EXPECT_EQ(bits >> 48, 0xFFFFu);
        } else if (a["value"].is_number()) {
            EXPECT_EQ(clitest::hexOf(a["value"].get<double>()), a["bits"]);
        }
    }
}

TEST(Jsonl, LongLinesAndStrayBytesDoNotStopTheStream) {
    Coprocess zv;
    const std::string huge(3u << 20, 'x'); // above the line limit
    zv.send(huge + "\n");
    const Json a = parsed(zv.readLine());
    expectError(a, "line too long: 3145728 bytes, more than 1048576", nullptr);
    const std::string longName = R"({"name": ")" + std::string(200000, 'N') + R"(", "value": 1, "id": 3})";
    expectError(parsed(zv.ask(longName)), "name: no row named \"" + std::string(200000, 'N') + "\"", 3);
    expectError(parsed(zv.ask("{\"name\": \"\xff\xfe\", \"id\": 4}")), "malformed JSON: parse error...", nullptr);
    expectError(parsed(zv.ask("\x80\x81\x82")), "malformed JSON: parse error...", nullptr);
    expectError(parsed(zv.ask(std::string("{\"id\": 5}\r"))), "name: missing (the row to call, e.g. \"NLDATE\")", 5);
    expectError(parsed(zv.ask(std::string("{\"id\": 6, \"a\": \"\0\"}", sizeof "{\"id\": 6, \"a\": \"\0\"}" - 1))), "malformed JSON: parse error...", nullptr);
    expectError(parsed(zv.ask(R"({"id": 7})")), "name: missing (the row to call, e.g. \"NLDATE\")", 7);
    EXPECT_EQ(zv.finish(), 0);
}

// timeZone, options and clock hold for their own request only: a plain
// request after one that changed them answers as it did before.
TEST(Jsonl, PerRequestStateIsPutBack) {
    std::vector<clitest::ListedRow> ready;
    for (const auto &row : clitest::listedRows())
        if (row.ready && !row.informat && ready.size() < 12) ready.push_back(row);
    if (ready.empty()) GTEST_SKIP() << "no format is built yet";
    Coprocess zv({"--clock", "0"}); // a fixed baseline clock, so that time doesn't pass between asks
    for (const auto &row : ready) {
        for (const std::string value : {"\"2024-03-05T14:07:09\"", "23440", "45"}) {
            const std::string plain = R"({"name": ")" + row.name + R"(", "value": )" + value + "}";
            const std::string before = zv.ask(plain);
            const std::string changed =
                zv.ask(R"({"name": ")" + row.name + R"(", "value": )" + value +
                       R"(, "timeZone": "Australia/Lord_Howe", "options": {"ZV_NAME_YEARCUTOFF": 1700}, )"
                       R"("clock": {"value": 1e9, "shift": 3600}})");
            EXPECT_FALSE(Json::parse(changed).contains("error")) << changed;
            EXPECT_EQ(zv.ask(plain), before) << row.name << " " << value;
        }
    }
}

// Answers come in request order, one a line, including a last line without
// its newline.
TEST(Jsonl, BatchInputGetsOneAnswerPerLine) {
    std::string input;
    for (int i = 0; i < 50; ++i) input += i % 3 ? R"({"id": )" + std::to_string(i) + "}\n" : "oops\n";
    input += R"({"id": "last"})";
    const auto r = clitest::run({"--jsonl"}, input);
    EXPECT_EQ(r.code, 0);
    EXPECT_EQ(r.err, "");
    const auto out = clitest::lines(r.out);
    ASSERT_EQ(out.size(), 51u);
    for (int i = 0; i < 50; ++i) {
        const Json a = Json::parse(out[static_cast<size_t>(i)]);
        if (i % 3) EXPECT_EQ(a["id"], i);
        else EXPECT_TRUE(a["id"].is_null());
    }
    EXPECT_EQ(Json::parse(out[50])["id"], "last");
}

} // namespace
