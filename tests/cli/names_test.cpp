// Month, quarter and weekday names through the command line and the
// JSON-lines protocol, in the wide entry and through host encodings.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "runner.hpp"

namespace {

using Json = nlohmann::json;

TEST(NameRows, CommandLine) {
    auto r = clitest::run({"NLSTRMON", "-l", "fr_FR", "3"});
    EXPECT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out, "mars                \n");
    r = clitest::run({"NLSTRWK.3", "-l", "de_DE", "1"});
    EXPECT_EQ(r.out, "SO                  \n");
    r = clitest::run({"NLSTRMON9.2", "-l", "de_DE", "3"});
    EXPECT_EQ(r.out, "M\xc3\x84RZ     \n");
}

struct Case {
    const char *request;
    std::string text, hex;
    int status;
};

TEST(NameRows, JsonLinesWideAndByteEntries) {
    clitest::Coprocess zv;
    const Case cases[] = {
        {R"({"name":"nlstrmon","value":3,"locale":"fr_FR","width":8})", "mars    ", "", 0},
        {R"({"name":"NLSTRWK","decimals":3,"value":1,"locale":"de_DE","width":4})", "SO  ", "", 0},
        {R"({"name":"NLSTRMON","value":2,"locale":"fr_FR","width":8,"entry":"byte","encoding":"windows-1252"})",
         "f\xc3\xa9vrier ", "66e97672696572 20", 0},
        {R"({"name":"NLSTRMON","value":3,"locale":"fr_FR","width":9,"entry":"byte","encoding":"UTF-8"})",
         "mars     ", "6d617273 2020202020", 0},
        // A left-justified name fills the field with blanks behind it, so in UTF-8 a name with
        // one two-byte letter always needs one byte more than the field: the blank at the end
        // is what gets cut, and the overflow reaches the host.
        {R"({"name":"NLSTRMON","value":2,"locale":"fr_FR","width":9,"entry":"byte","encoding":"UTF-8"})",
         "f\xc3\xa9vrier ", "66c3a97672696572 20", int(0x803fe807)},
        // Eight characters but nine bytes: the name can't be cut right-justified, so the overflow stands.
        {R"({"name":"NLSTRMON","value":2,"locale":"fr_FR","width":8,"entry":"byte","encoding":"UTF-8"})",
         "f\xc3\xa9vrier", "66c3a97672696572", int(0x803fe807)},
        {R"({"name":"NLSTRWK","decimals":3,"value":1,"locale":"de_DE","width":4,"entry":"byte","encoding":"windows-1252"})",
         "SO  ", "534f2020", 0},
    };
    for (const Case &c : cases) {
        const Json j = Json::parse(zv.ask(c.request));
        ASSERT_FALSE(j.contains("error")) << j.dump();
        EXPECT_EQ(j["status"].get<int>(), c.status) << c.request;
        EXPECT_EQ(j["text"].get<std::string>(), c.text) << c.request;
        if (!c.hex.empty()) {
            std::string hex = c.hex;
            hex.erase(std::remove(hex.begin(), hex.end(), ' '), hex.end());
            EXPECT_EQ(j["hex"].get<std::string>(), hex) << c.request;
        }
    }
}

} // namespace
