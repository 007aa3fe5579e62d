// Runs arbitrary lines through one zvfmt JSON-lines session for the whole
// run, as the tool's loop reads them: every line gets exactly one answer, a
// JSON object on one line, and no line changes what the next starts from.
#include <nlohmann/json.hpp>

#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "../tools/zvfmt/jsonl.hpp"

namespace {

zvfmt::Session &session() {
    static zvfmt::Session *s = [] {
        auto *made = new zvfmt::Session(zvfmt::Baseline{});
        std::string error;
        if (!made->start(error)) std::abort();
        return made;
    }();
    return *s;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const std::string input(reinterpret_cast<const char *>(data), size);
    size_t lines = 0;
    for (size_t i = 0; i < input.size(); ++i) lines += input[i] == '\n' || i + 1 == input.size();
    // The tool reads a file descriptor: the input goes into a file in memory.
    const int in = memfd_create("requests", 0);
    char *answer = nullptr;
    size_t answerSize = 0;
    std::FILE *out = open_memstream(&answer, &answerSize);
    if (!out || in < 0 || pwrite(in, input.data(), input.size(), 0) != ssize_t(input.size())) std::abort();
    zvfmt::runJsonLines(session(), in, out);
    close(in);
    std::fclose(out);
    size_t answered = 0, start = 0;
    for (size_t i = 0; i < answerSize; ++i) {
        if (answer[i] != '\n') continue;
        const auto j = nlohmann::json::parse(answer + start, answer + i, nullptr, false);
        if (j.is_discarded() || !j.is_object()) std::abort();
        ++answered;
        start = i + 1;
    }
    if (answered != lines || start != answerSize) std::abort();
    std::free(answer);
    // The baseline holds between lines: the same request answers the same.
    const std::string probe = R"({"name":"NLDATE","width":20,"value":"2024-03-05"})";
    static const std::string first = zvfmt::answerLine(session(), probe);
    if (zvfmt::answerLine(session(), probe) != first) std::abort();
    return 0;
}
