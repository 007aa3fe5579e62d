// zvfmt locales, zvfmt items and locale definition files.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "runner.hpp"

namespace {

std::vector<std::string> lines(const std::string &text) {
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string l; std::getline(in, l);) out.push_back(l);
    return out;
}

TEST(Locales, ListsCldrLocalesSorted) {
    const auto r = clitest::run({"locales"});
    ASSERT_EQ(r.code, 0) << r.err;
    const auto names = lines(r.out);
    EXPECT_GT(names.size(), 500u);
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
    for (const char *expected : {"fr_FR", "de_CH", "ja_JP", "ar_EG", "hi_IN", "th_TH", "en_US"})
        EXPECT_NE(std::find(names.begin(), names.end(), expected), names.end()) << expected;
}

TEST(Locales, ItemsShowRawAndDecodedTexts) {
    const auto r = clitest::run({"items", "de_DE"});
    ASSERT_EQ(r.code, 0) << r.err;
    const auto rows = lines(r.out);
    ASSERT_EQ(rows.size(), 189u);
    EXPECT_EQ(rows[2], "2\t0\tde\tde");
    EXPECT_EQ(rows[61], "61\t5\tM<U00E4>rz\tM\xc3\xa4rz");
    // In ISO-8859-1 the euro sign of item 156 can't be shown.
    const auto latin = lines(clitest::run({"items", "de_DE", "-e", "ISO-8859-1"}).out);
    ASSERT_EQ(latin.size(), 189u);
    EXPECT_EQ(latin[156], "156\t0\t<U20AC>\t&#8364;");
    EXPECT_EQ(latin[61], "61\t5\tM<U00E4>rz\tM\xc3\xa4rz"); // Sept. is as wide
    EXPECT_EQ(clitest::run({"items", "xx_YY"}).code, 2);
}

TEST(Locales, DefinitionFilesOverrideItemsAndItemOptionsWin) {
    const std::string path = ::testing::TempDir() + "zvfmt_locale_file.txt";
    {
        std::ofstream f(path);
        f << "# months in another language\n95\tJanvier\n96\tF<U00E9>vrier\n\n97\tMars\n";
    }
    auto r = clitest::run({"NLSTRMON8", "-l", "de_DE", "--locale-file", path, "1", "2", "3", "4"});
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out, "Janvier \nF\xc3\xa9vrier \nMars    \nApril   \n");
    r = clitest::run({"NLSTRMON8", "-l", "de_DE", "--locale-file", path, "--item", "95=Jan!", "1"});
    EXPECT_EQ(r.out, "Jan!    \n");
    std::remove(path.c_str());
    r = clitest::run({"NLSTRMON8", "--locale-file", path, "1"});
    EXPECT_EQ(r.code, 2);
    EXPECT_NE(r.err.find("--locale-file: cannot read"), std::string::npos) << r.err;
}

TEST(Locales, ABadDefinitionLineIsNamed) {
    const std::string path = ::testing::TempDir() + "zvfmt_bad_locale_file.txt";
    {
        std::ofstream f(path);
        f << "95\tJanvier\nnot a line\n";
    }
    const auto r = clitest::run({"NLSTRMON8", "--locale-file", path, "1"});
    EXPECT_EQ(r.code, 2);
    EXPECT_NE(r.err.find("line 2"), std::string::npos) << r.err;
    std::remove(path.c_str());
}

} // namespace
