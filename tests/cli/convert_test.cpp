// zvfmt NAME VALUE... and @NAME TEXT...: output lines, statuses, streams,
// pending rows, and agreement with the JSON-lines answers.
#include <gtest/gtest.h>

#include <charconv>
#include <cctype>

#include "helpers.hpp"

namespace {

using clitest::lines;
using clitest::run;
using Json = nlohmann::json;

TEST(Convert, PendingRowSaysSoAndExitsOne) {
    const auto pending = clitest::firstPending();
    if (!pending) GTEST_SKIP() << "every row is built";
    const auto r = run({pending->name, "1"});
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.err, "zvfmt: " + pending->name + " is not built yet\n");
    // Lower case and a width make no difference.
    std::string lower = pending->name;
    for (char &c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    const auto r2 = run({lower + std::to_string(pending->defaultWidth), "1"});
    EXPECT_EQ(r2.code, 1);
    EXPECT_EQ(r2.err, "zvfmt: " + pending->name + " is not built yet\n");
}

struct MarkCase {
    std::string value;
    char mark;
};

class ConvertMissing : public ::testing::TestWithParam<MarkCase> {};

// The mark of a missing value in the last place of the field, on both entries.
TEST_P(ConvertMissing, MarkInTheLastPlace) {
    const auto ready = clitest::firstRow(false, true);
    if (!ready) GTEST_SKIP() << "no format is built yet";
    const std::string spec = ready->name + std::to_string(ready->defaultWidth);
    const std::string want = std::string(static_cast<size_t>(ready->defaultWidth - 1), ' ') + GetParam().mark;
    const auto wide = run({spec, GetParam().value});
    EXPECT_EQ(wide.code, 0) << wide.err;
    EXPECT_EQ(wide.out, want + "\n");
    const auto byte = run({"-e", "windows-1252", spec, GetParam().value});
    EXPECT_EQ(byte.out, want + "\n");
    const auto verbose = run({"-v", spec, GetParam().value});
    EXPECT_EQ(verbose.out, want + "\tstatus=0\n");
}

INSTANTIATE_TEST_SUITE_P(Cases, ConvertMissing,
                         ::testing::Values(MarkCase{".", '.'}, MarkCase{".A", 'A'}, MarkCase{".q", 'Q'},
                                           MarkCase{".Z", 'Z'}, MarkCase{"._", '_'}));

// From stdin one value a line; a bad one is reported and the rest go on.
TEST(Convert, StreamGoesOnAfterABadValue) {
    const auto ready = clitest::firstRow(false, true);
    if (!ready) GTEST_SKIP() << "no format is built yet";
    const std::string spec = ready->name + std::to_string(ready->defaultWidth);
    const auto r = run({spec}, ".\nnonsense\n.B\r\n\n._");
    const std::string blanks(static_cast<size_t>(ready->defaultWidth - 1), ' ');
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.out, blanks + ".\n" + blanks + "B\n" + blanks + "_\n");
    EXPECT_EQ(r.err, "zvfmt: bad VALUE \"nonsense\": not a number, an ISO date or datetime, or a missing value\n"
                     "zvfmt: bad VALUE \"\": empty VALUE\n");
}

// The command line and the protocol give the same text for the same call.
TEST(Convert, AgreesWithTheProtocol) {
    std::vector<clitest::ListedRow> ready;
    for (const auto &row : clitest::listedRows())
        if (row.ready && !row.informat && ready.size() < 16) ready.push_back(row);
    if (ready.empty()) GTEST_SKIP() << "no format is built yet";
    const std::vector<std::string> values{"1", "2", "3", "12", "0.5", "-7", "23440", "2024-03-05", "1e10", "."};
    clitest::Coprocess zv;
    for (const auto &row : ready) {
        for (const std::string locale : {"en_US", "de_DE"}) {
            std::vector<std::string> args{"-v", "-l", locale, row.name};
            args.insert(args.end(), values.begin(), values.end());
            const auto r = run(args);
            const auto out = lines(r.out);
            ASSERT_EQ(out.size(), values.size()) << row.name << " " << r.err;
            for (size_t i = 0; i < values.size(); ++i) {
                const Json a = Json::parse(zv.ask(R"({"name": ")" + row.name + R"(", "locale": ")" + locale +
                                                  R"(", "value": ")" + values[i] + R"("})"));
                ASSERT_FALSE(a.contains("error")) << a.dump();
                EXPECT_EQ(out[i], a["text"].get<std::string>() + "\tstatus=" + clitest::statusShown(a["status"].get<int>()))
                    << row.name << " " << values[i];
            }
        }
    }
}

TEST(Convert, InformatLinesCarryValueAndStatus) {
    const auto ready = clitest::firstRow(true, true);
    if (!ready) GTEST_SKIP() << "no informat is built yet";
    const std::vector<std::string> texts{"1", "zzz", "", "12"};
    clitest::Coprocess zv;
    std::vector<std::string> args{"--", ready->name};
    args.insert(args.end(), texts.begin(), texts.end());
    const auto r = run(args);
    const auto out = lines(r.out);
    ASSERT_EQ(out.size(), texts.size()) << r.err;
    bool anyFailed = false;
    for (size_t i = 0; i < texts.size(); ++i) {
        const Json a = Json::parse(zv.ask(R"({"name": ")" + ready->name + R"(", "text": ")" + texts[i] + R"("})"));
        ASSERT_FALSE(a.contains("error")) << a.dump();
        std::string want = a["untouched"].get<bool>() ? "untouched"
                           : a.contains("missing") ? a["missing"].get<std::string>()
                                                   : "";
        if (want.empty()) {
            ASSERT_TRUE(a["value"].is_number());
            char buf[64];
            auto [end, ec] = std::to_chars(buf, buf + sizeof buf, a["value"].get<double>());
            (void)ec;
            want.assign(buf, end);
        }
        const int status = a["status"];
        if (status != 0) {
            want += "\tstatus=" + clitest::statusShown(status);
            anyFailed = true;
        }
        EXPECT_EQ(out[i], want) << texts[i];
    }
    EXPECT_EQ(r.code, anyFailed ? 1 : 0);
}

TEST(Demo, RunsAndNamesTheTableState) {
    const auto r = run({"demo"});
    EXPECT_EQ(r.code, 0) << r.err;
    size_t ready = 0;
    for (const auto &row : clitest::listedRows()) ready += row.ready;
    const std::string summary = std::to_string(ready) + " of 247 rows built";
    EXPECT_EQ(r.out.substr(0, r.out.find('\n')), "zvlocfmt 6.1.1: " + summary);
    const std::string closing = ready == 247 ? std::string("\nThe table: all 247 rows built.\n")
                                             : "\nThe table: " + summary + "; 'zvfmt list --pending' names the rest.\n";
    EXPECT_NE(r.out.find(closing), std::string::npos);
    // Every pending example row is said to be pending, and only those.
    for (const auto &row : clitest::listedRows()) {
        const bool saysPending = r.out.find("(" + row.name + " is not built yet)") != std::string::npos;
        if (row.ready) {
            EXPECT_FALSE(saysPending) << row.name;
        }
    }
    for (const char *section : {"Formats (", "Informats (", "Missing values (", "Host encodings through the byte entry"})
        EXPECT_NE(r.out.find(section), std::string::npos) << section;
}

} // namespace
