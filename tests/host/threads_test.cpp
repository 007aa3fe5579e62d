// Many threads on one host: each with calls of its own, over every row, in
// several locales and encodings, while another thread opens locales enough to
// make the cache evict. Every answer equals the one a single thread gets.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <thread>

#include "zvhost.hpp"

namespace {

constexpr int kThreads = 8;
const char *const kLocales[] = {"en_US", "de_DE", "fr_FR", "ja_JP", "ar_EG", "hi_IN", "ru_RU", "zh_TW", "pt_BR", "sv_SE",
                                "he_IL", "th_TH", "ko_KR", "es_MX", "de_CH", "en_ZA", "fa_IR", "pl_PL", "tr_TR", "nl_NL"};
const char *const kEncodings[] = {"UTF-8", "Shift_JIS", "ISO-8859-1"};

// One call of a row in the thread's own column: the text written, or the bits read.
std::string answer(zvhost::Host &host, const FormatTableRow &row, int pick) {
    zvhost::CallSpec spec;
    spec.locale = kLocales[pick % 20];
    spec.encoding = kEncodings[pick % 3];
    spec.entry = zvhost::isInformat(row) || pick % 2 ? zvhost::Entry::Wide : zvhost::Entry::Byte;
    zvhost::ColumnFormatter column(host, zvhost::rowName(row), spec);
    if (!column.error().empty()) return column.error();
    if (column.informat()) {
        double value = 0;
        const int32_t status = column.read(std::string_view("25.12.2024 14:07:09"), value);
        return std::to_string(status) + " " + std::to_string(std::bit_cast<uint64_t>(value));
    }
    const int32_t status = column.format(23440.25);
    return std::to_string(status) + " " + zvhost::utf8(column.text());
}

TEST(Threads, EveryRowFromEightThreadsWhileLocalesComeAndGo) {
    zvhost::Host host;
    ASSERT_NE(host.loadModule(), nullptr);
    const auto rows = zvhost::tableRows(host.instance()->formatTable);
    std::vector<std::vector<std::string>> alone(kThreads, std::vector<std::string>(rows.size()));
    for (int t = 0; t < kThreads; ++t)
        for (size_t r = 0; r < rows.size(); ++r) alone[size_t(t)][r] = answer(host, *rows[r], t + int(r));
    std::atomic<bool> done{false};
    std::thread churn([&] {
        for (int i = 0; !done; ++i) host.locale(kLocales[i % 20], {{28, "%d.%m.%Y #" + std::to_string(i)}});
    });
    std::vector<std::thread> threads;
    std::vector<std::vector<std::string>> together(kThreads, std::vector<std::string>(rows.size()));
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            for (size_t r = 0; r < rows.size(); ++r) together[size_t(t)][r] = answer(host, *rows[r], t + int(r));
        });
    for (std::thread &t : threads) t.join();
    done = true;
    churn.join();
    for (int t = 0; t < kThreads; ++t)
        for (size_t r = 0; r < rows.size(); ++r)
            EXPECT_EQ(together[size_t(t)][r], alone[size_t(t)][r]) << zvhost::rowName(*rows[r]) << " thread " << t;
    EXPECT_LE(host.localesKept(), 128u);
}

// Threads that meet patterns no call has cut before, some the same in all
// threads and some their own, store them side by side and read alike.
TEST(Threads, FreshPatternsFromEightThreads) {
    zvhost::Host host;
    ASSERT_NE(host.loadModule(), nullptr);
    const FormatTableRow &row = *zvhost::findRow(host.instance()->formatTable, "@NLDATM");
    auto read = [&](const std::string &pattern) {
        zvhost::CallSpec spec;
        spec.locale = "de_DE";
        spec.items = {{46, pattern}};
        double value = 0;
        zvhost::ColumnFormatter column(host, zvhost::rowName(row), spec);
        const int32_t status = column.read(std::string_view("25.12.2024 14:07:09"), value);
        return status == 0 ? value : -1.0;
    };
    const double want = read("%d.%m.%Y %H:%M:%S");
    ASSERT_GT(want, 0);
    std::vector<std::thread> threads;
    std::atomic<int> wrong{0};
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            for (int i = 0; i < 40; ++i) {
                const std::string mark = i % 2 ? std::to_string(i) : std::to_string(t) + "-" + std::to_string(i);
                wrong += read("%d.%m.%Y %H:%M:%S #" + mark) != want;
            }
        });
    for (std::thread &t : threads) t.join();
    EXPECT_EQ(wrong, 0);
}

// Threads that read columns of one form share the cuts kept for the shapes
// of their texts: two shapes of one length take turns in one slot, written
// and read by all threads at once, and every answer is the one a thread
// alone gets.
TEST(Threads, ColumnsOfOneShapeFromEightThreads) {
    zvhost::Host host;
    ASSERT_NE(host.loadModule(), nullptr);
    const FormatTableRow &row = *zvhost::findRow(host.instance()->formatTable, "@NLDATM");
    constexpr int kTexts = 300;
    auto text = [](int i) {
        char s[32];
        std::snprintf(s, sizeof s, i % 2 ? "%02d.%02d.%04d, %02d:%02d:%02d" : "%02d.%02d.%04d  %02d:%02d:%02d",
                      1 + i % 28, 1 + i % 12, 1990 + i % 40, i % 24, i % 60, i * 7 % 60);
        return std::string(s);
    };
    auto readColumn = [&](int from) {
        zvhost::CallSpec spec;
        spec.locale = "de_DE";
        zvhost::ColumnFormatter column(host, zvhost::rowName(row), spec);
        std::vector<double> values(kTexts);
        for (int i = 0; i < kTexts; ++i)
            if (column.read(std::string_view(text(from + i)), values[i]) != 0) values[i] = -1;
        return values;
    };
    std::vector<std::vector<double>> alone;
    for (int t = 0; t < kThreads; ++t) alone.push_back(readColumn(t * 13));
    ASSERT_GT(alone[0][1], 0);
    ASSERT_GT(alone[0][2], 0);
    std::vector<std::thread> threads;
    std::atomic<int> wrong{0};
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] { wrong += readColumn(t * 13) != alone[t]; });
    for (std::thread &t : threads) t.join();
    EXPECT_EQ(wrong, 0);
}

} // namespace
