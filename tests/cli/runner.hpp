// Runs the zvfmt binary as a child process: whole runs with stdin fed and
// stdout/stderr captured, and a coprocess for the JSON-lines protocol.
#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

namespace clitest {

struct Run {
    int code = -1; // exit code; 128 + signal when killed
    std::string out, err;
};

// Runs ZVFMT_PATH with the arguments, feeding `input` on stdin.
Run run(const std::vector<std::string> &args, const std::string &input = "");

// zvfmt --jsonl (plus extra arguments) kept running; ask() writes one line and
// waits for one answer line.
class Coprocess {
public:
    explicit Coprocess(const std::vector<std::string> &extra = {});
    ~Coprocess();
    Coprocess(const Coprocess &) = delete;
    Coprocess &operator=(const Coprocess &) = delete;

    // Writes `line` and a newline; returns the next line of output without its
    // newline, or "<no answer>" if the process closed or gave nothing for
    // a long while.
    std::string ask(const std::string &line);
    // Writes raw bytes (no newline added).
    void send(const std::string &bytes);
    std::string readLine();
    // Closes stdin and waits; the exit code.
    int finish();

private:
    pid_t pid_ = -1;
    int in_ = -1, out_ = -1, err_ = -1;
    std::string buffer_;
};

} // namespace clitest
