// Arguments: version, help, and the refusals with exit code 2.
#include <gtest/gtest.h>

#include "helpers.hpp"

namespace {

using clitest::run;

TEST(Args, VersionIsExact) {
    const auto r = run({"--version"});
    EXPECT_EQ(r.code, 0);
    EXPECT_EQ(r.out, "zvfmt (zvlocfmt 6.1.1)\n");
    EXPECT_EQ(r.err, "");
}

struct HelpCase {
    std::vector<std::string> args;
    std::string firstLine;
};

class Help : public ::testing::TestWithParam<HelpCase> {};

TEST_P(Help, PrintsTheRightTextAndExitsZero) {
    const auto r = run(GetParam().args);
    EXPECT_EQ(r.code, 0);
    EXPECT_EQ(r.err, "");
    EXPECT_EQ(r.out.substr(0, r.out.find('\n')), GetParam().firstLine);
}

const std::string kMain = "zvfmt - the locale-sensitive formats and informats of zvlocfmt";
const std::string kList = "zvfmt list [--formats | --informats] [--pending | --ready] [--json] [--header]";
const std::string kFormat = "zvfmt NAME[W[.D]] [VALUE...]     zvfmt @NAME[W[.D]] [TEXT...]";

INSTANTIATE_TEST_SUITE_P(
    Cases, Help,
    ::testing::Values(HelpCase{{"--help"}, kMain}, HelpCase{{"-h"}, kMain}, HelpCase{{"help"}, kMain},
                      HelpCase{{"list", "--help"}, kList}, HelpCase{{"help", "list"}, kList},
                      HelpCase{{"list", "-h", "--json"}, kList},
                      HelpCase{{"value", "--help"}, "zvfmt value VALUE..."},
                      HelpCase{{"demo", "-h"}, "zvfmt demo [-l LOCALE]"},
                      HelpCase{{"--jsonl", "--help"}, "zvfmt --jsonl [OPTIONS]"},
                      HelpCase{{"help", "jsonl"}, "zvfmt --jsonl [OPTIONS]"},
                      HelpCase{{"NLDATE20", "--help"}, kFormat}, HelpCase{{"help", "format"}, kFormat}));

struct BadArgs {
    std::vector<std::string> args;
    std::string message; // the first line of stderr after "zvfmt: "
};

class Refused : public ::testing::TestWithParam<BadArgs> {};

TEST_P(Refused, ExitsTwoWithAMessageOnStderr) {
    const auto r = run(GetParam().args);
    EXPECT_EQ(r.code, 2);
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.err, "zvfmt: " + GetParam().message + "\nTry 'zvfmt --help'.\n");
}

INSTANTIATE_TEST_SUITE_P(
    Cases, Refused,
    ::testing::Values(
        BadArgs{{}, "no command; give a format such as NLDATE20, or list, demo, value, --jsonl"},
        BadArgs{{"--bogus"}, "unknown option --bogus"},
        BadArgs{{"-x", "NLNUM"}, "unknown option -x"},
        BadArgs{{"NLNUM", "-l"}, "option -l needs a value"},
        BadArgs{{"NLNUM", "--locale"}, "option --locale needs a value"},
        BadArgs{{"--show-status=yes", "NLNUM", "1"}, "option --show-status takes no value"},
        BadArgs{{"--entry", "middle", "NLNUM", "1"}, "--entry must be wide or byte, not \"middle\""},
        BadArgs{{"NOSUCH", "1"}, "no format or informat named NOSUCH (see 'zvfmt list')"},
        BadArgs{{"NLDATE20x", "1"}, "bad format \"NLDATE20x\": unexpected \"x\" after NLDATE (the form is NAME[W[.D]])"},
        BadArgs{{"@", "x"}, "bad format \"@\": a format name is letters, after '@' for an informat"},
        BadArgs{{"NLNUM1234567", "1"}, "bad format \"NLNUM1234567\": width 1234567 is too large"},
        BadArgs{{"nldate201", "1"}, "NLDATE: width 201 is out of range (10..200; --unchecked passes it on)"},
        BadArgs{{"NLNUM8.32", "1"}, "NLNUM: decimals 32 is out of range (0..31; --unchecked passes it on)"},
        BadArgs{{"NLDATE.1", "1"}, "NLDATE: decimals 1 is out of range (0..0; --unchecked passes it on)"},
        BadArgs{{"@NLMNIEUR33", "1"}, "@NLMNIEUR: width 33 is out of range (8..32; --unchecked passes it on)"},
        BadArgs{{"--unchecked", "NLNUM70000", "1"}, "NLNUM: width 70000 is too large (at most 65536)"},
        BadArgs{{"--unchecked", "NLNUM8.100", "1"}, "NLNUM: decimals 100 is too large (at most 99)"},
        BadArgs{{"--option", "ZV_NAME_YEARCUTOFF=inf", "NLNUM", "1"},
                "--option ZV_NAME_YEARCUTOFF: \"inf\" is not an integer"},
        BadArgs{{"--option", "ZV_NAME_YEARCUTOFF=99999999999999999999", "NLNUM", "1"},
                "--option ZV_NAME_YEARCUTOFF: \"99999999999999999999\" is not an integer"},
        BadArgs{{"--option", "X", "NLNUM", "1"}, "--option wants NAME=VALUE, not \"X\""},
        BadArgs{{"--option", "=5", "NLNUM", "1"}, "--option wants NAME=VALUE, not \"=5\""},
        BadArgs{{"--option", "ZV_NAME_YEARCUTOFF=19x0", "NLNUM", "1"},
                "--option ZV_NAME_YEARCUTOFF: \"19x0\" is not an integer"},
        BadArgs{{"--option=ZV_NAME_YEARCUTOFF=1.5", "NLNUM", "1"},
                "--option ZV_NAME_YEARCUTOFF: \"1.5\" is not an integer"},
        BadArgs{{"--item", "189=x", "NLNUM", "1"}, "--item: item number 189 is out of range (0..188)"},
        BadArgs{{"--item", "abc", "NLNUM", "1"}, "--item wants N=TEXT, not \"abc\""},
        BadArgs{{"--clock", "soon", "NLNUM", "1"}, "--clock wants S or S,SHIFT, not \"soon\""},
        BadArgs{{"-e", "NO-SUCH-ENCODING-42", "NLNUM", "1"}, "unknown encoding \"NO-SUCH-ENCODING-42\""},
        BadArgs{{"--tz", "Mars/Olympus_Mons", "NLNUM", "1"}, "unknown time zone \"Mars/Olympus_Mons\""},
        BadArgs{{"--entry", "byte", "@NLNUM", "1"}, "@NLNUM is an informat; informats have only the wide entry"},
        BadArgs{{"list", "--formats", "--informats"}, "give --formats or --informats, not both"},
        BadArgs{{"list", "--pending", "--ready"}, "give --pending or --ready, not both"},
        BadArgs{{"list", "extra"}, "list takes no arguments, got \"extra\""},
        BadArgs{{"NLNUM", "1", "--json"}, "option --json belongs to 'zvfmt list'"},
        BadArgs{{"--header", "demo"}, "option --header belongs to 'zvfmt list'"},
        BadArgs{{"--jsonl", "NLNUM"}, "--jsonl reads its requests from stdin; unexpected \"NLNUM\""},
        BadArgs{{"value"}, "value needs at least one VALUE"},
        BadArgs{{"demo", "now"}, "demo takes no arguments, got \"now\""},
        BadArgs{{"help", "nothing"}, "no help on \"nothing\" (try list, value, demo, jsonl or format)"}));

} // namespace

// A width below the row's least width goes to the routine, with a note.
TEST(Args, NarrowWidthsArePassedOnWithANote) {
    const auto r = clitest::run({"NLDATE8", "2024-03-05", "-l", "fr_FR"});
    EXPECT_EQ(r.code, 0);
    EXPECT_EQ(r.out, "05/03/24\n");
    EXPECT_NE(r.err.find("width 8 is below the row's least width 10"), std::string::npos) << r.err;
}
