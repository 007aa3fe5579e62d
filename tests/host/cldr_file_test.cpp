// Locale definition files: parsing, errors by line, and application over a
// CLDR table.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "cldr.hpp"

namespace {

struct ParseCase {
    const char *name;
    std::string content;
    bool ok;
    std::map<int, std::string> items; // on success
    const char *error;                // on failure, exact
};

const ParseCase kParseCases[] = {
    {"empty file", "", true, {}, ""},
    {"comments and blank lines", "# a locale\n\n   \n#28\tno\n", true, {}, ""},
    {"one item", "28\t%d.%m.%Y\n", true, {{28, "%d.%m.%Y"}}, ""},
    {"no final newline", "2\tde", true, {{2, "de"}}, ""},
    {"CRLF lines", "2\tde\r\n6\tDMY\r\n", true, {{2, "de"}, {6, "DMY"}}, ""},
    {"empty text", "160\t\n", true, {{160, ""}}, ""},
    {"text keeps tabs and blanks", "28\t %d\t%m \n", true, {{28, " %d\t%m "}}, ""},
    {"escapes stay as written", "156\t<U20AC>\n", true, {{156, "<U20AC>"}}, ""},
    {"UTF-8 becomes escapes", "71\tf\xC3\xA9vrier \xE2\x82\xAC\n", true, {{71, "f<U00E9>vrier <U20AC>"}}, ""},
    {"beyond the BMP", "59\t\xF0\x9F\x98\x80\n", true, {{59, "<UD83D><UDE00>"}}, ""},
    {"byte order mark", "\xEF\xBB\xBF" "2\tfr\n", true, {{2, "fr"}}, ""},
    {"leading zeros", "007\tx\n", true, {{7, "x"}}, ""},
    {"first and last item", "0\ta\n188\tb\n", true, {{0, "a"}, {188, "b"}}, ""},
    {"exactly 160 bytes", "28\t" + std::string(160, 'x') + "\n", true, {{28, std::string(160, 'x')}}, ""},
    {"no tab", "28 %d\n", false, {}, "line 1: expected an item number, a tab and the text"},
    {"bad number", "# c\nx8\ttext\n", false, {}, "line 2: bad item number \"x8\""},
    {"empty number", "\ttext\n", false, {}, "line 1: bad item number \"\""},
    {"negative number", "-1\ttext\n", false, {}, "line 1: bad item number \"-1\""},
    {"long number", "0028\ttext\n", false, {}, "line 1: bad item number \"0028\""},
    {"past the last item", "189\ttext\n", false, {}, "line 1: item 189 is past the last item, 188"},
    {"twice", "2\tde\n\n2\tfr\n", false, {}, "line 3: item 2 is already defined on line 1"},
    {"too long", "28\t" + std::string(161, 'x') + "\n", false, {}, "line 1: the text of item 28 takes 161 bytes; an item holds 160"},
    {"lone lead bytes", "71\t" + std::string(23, 'a') + std::string(20, '\xC3') + "\n", false, {},
     "line 1: the text is not UTF-8"},
    {"escaped past the limit", "71\t" + [] {
         std::string s;
         for (int k = 0; k < 23; ++k) s += "\xC3\xA9";
         return s;
     }() + "\n",
     false, {}, "line 1: the text of item 71 takes 161 bytes; an item holds 160"},
    {"broken UTF-8", "2\tde\n71\t\xFF\n", false, {}, "line 2: the text is not UTF-8"},
    {"truncated UTF-8", "71\t\xE2\x82\n", false, {}, "line 1: the text is not UTF-8"},
    {"overlong UTF-8", "71\t\xC0\xAF\n", false, {}, "line 1: the text is not UTF-8"},
    {"surrogate in UTF-8", "71\t\xED\xA0\x80\n", false, {}, "line 1: the text is not UTF-8"},
};

TEST(LocaleFile, Parse) {
    for (const ParseCase &c : kParseCases) {
        std::map<int, std::string> items = {{5, "kept"}};
        std::string error;
        bool ok = zvhost::parseLocaleDefinition(c.content, items, error);
        EXPECT_EQ(ok, c.ok) << c.name << ": " << error;
        if (c.ok) {
            std::map<int, std::string> expected = c.items;
            if (expected.count(5) == 0) expected[5] = "kept";
            EXPECT_EQ(items, expected) << c.name;
        } else {
            EXPECT_EQ(error, c.error) << c.name;
            EXPECT_EQ(items, (std::map<int, std::string>{{5, "kept"}})) << c.name << ": a failed parse adds nothing";
        }
    }
}

// Any bytes at all: no crash, and on success every item is in range, ASCII
// and within a record.
TEST(LocaleFile, ArbitraryBytes) {
    uint32_t state = 99;
    static const char kPool[] = "0123456789\t\n\r# <U>%\xC3\xA9\xE2\x82\xAC\xFF\xF0\x9F";
    const std::string pool(kPool, sizeof kPool - 1);
    for (int round = 0; round < 4000; ++round) {
        std::string content;
        int length = static_cast<int>(state % 40);
        for (int k = 0; k < length; ++k) {
            state = state * 1103515245u + 12345u;
            content += pool[(state >> 16) % pool.size()];
        }
        state = state * 1103515245u + 12345u;
        std::map<int, std::string> items;
        std::string error;
        if (zvhost::parseLocaleDefinition(content, items, error)) {
            for (const auto &[item, raw] : items) {
                ASSERT_GE(item, 0);
                ASSERT_LT(item, ZV_LOCALE_TABLE_ITEMS);
                ASSERT_LE(raw.size(), 160u);
                for (char c : raw) ASSERT_LT(static_cast<unsigned char>(c), 0x80);
            }
        } else {
            ASSERT_EQ(error.rfind("line ", 0), 0u) << error;
        }
    }
}

class LocaleFileOnDisk : public ::testing::Test {
protected:
    void SetUp() override {
        path_ = (std::filesystem::temp_directory_path() /
                 ("zv_cldr_file_" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) + "_" +
                  ::testing::UnitTest::GetInstance()->current_test_info()->name() + ".txt"))
                    .string();
    }
    void TearDown() override { std::remove(path_.c_str()); }
    void write(const std::string &content) {
        std::ofstream out(path_, std::ios::binary);
        out << content;
    }
    std::string path_;
};

TEST_F(LocaleFileOnDisk, OverridesItemsOfACldrLocale) {
    std::vector<uint8_t> table;
    std::string error;
    ASSERT_TRUE(zvhost::buildCldrTable("de_DE", table, error)) << error;
    const std::vector<uint8_t> before = table;
    write("# Swiss-style dates in German\n28\t%d.%m.%Y\n156\tEUR\n172\t.\n");
    ASSERT_TRUE(zvhost::applyLocaleFile(path_, table, error)) << error;
    EXPECT_EQ(zvhost::rawItem(table, 28), "%d.%m.%Y");
    EXPECT_EQ(zvhost::rawItem(table, 156), "EUR");
    EXPECT_EQ(zvhost::rawItem(table, 172), ".");
    for (int item = 0; item < ZV_LOCALE_TABLE_ITEMS; ++item) {
        if (item == 28 || item == 156 || item == 172) continue;
        EXPECT_EQ(zvhost::rawItem(table, item), zvhost::rawItem(before, item)) << "item " << item;
    }
}

TEST_F(LocaleFileOnDisk, DefinesALocaleFromNothing) {
    std::vector<uint8_t> table;
    std::string error;
    write("2\txx\n6\tYMD\n28\t%Y-%m-%d\n59\tJ\xC3\xA4n\n");
    ASSERT_TRUE(zvhost::applyLocaleFile(path_, table, error)) << error;
    ASSERT_EQ(table.size(), static_cast<size_t>(ZV_LOCALE_TABLE_SIZE));
    EXPECT_EQ(zvhost::rawItem(table, 2), "xx");
    EXPECT_EQ(zvhost::rawItem(table, 6), "YMD");
    EXPECT_EQ(zvhost::rawItem(table, 59), "J<U00E4>n");
    EXPECT_EQ(zvhost::rawItem(table, 60), "");
}

TEST_F(LocaleFileOnDisk, ErrorsNameTheFileAndLine) {
    std::vector<uint8_t> table(ZV_LOCALE_TABLE_SIZE, 0);
    std::string error;
    write("28\t%d\n28\t%m\n");
    EXPECT_FALSE(zvhost::applyLocaleFile(path_, table, error));
    EXPECT_EQ(error, path_ + ": line 2: item 28 is already defined on line 1");
    EXPECT_EQ(zvhost::rawItem(table, 28), "") << "nothing is applied from a bad file";

    std::string missing = path_ + ".absent";
    EXPECT_FALSE(zvhost::applyLocaleFile(missing, table, error));
    EXPECT_EQ(error, "cannot read the locale file " + missing);

    std::string folder = std::filesystem::temp_directory_path().string();
    EXPECT_FALSE(zvhost::applyLocaleFile(folder, table, error));
    EXPECT_EQ(error, "cannot read the locale file " + folder);
}

} // namespace
