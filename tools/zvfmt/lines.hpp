// Lines of a stream, read in large blocks. Before it waits for more input the
// reader flushes the output, so each answer is out before the next line is
// awaited (a coprocess sees it at once) and a file still goes through in
// large writes.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

namespace zvfmt {

// Longest line that is read; a longer one is reported and skipped.
constexpr size_t kMaxLine = 1 << 20;

class LineReader {
public:
    LineReader(int fd, std::FILE *flushFirst);
    // The next line without its newline (and without a CR before it); false
    // at the end of the stream. A line longer than kMaxLine comes back empty
    // with its length in tooLong (0 otherwise).
    bool next(std::string &line, size_t &tooLong);

private:
    bool fill();
    int fd_;
    std::FILE *out_;
    std::vector<char> buffer_;
    size_t pos_ = 0, end_ = 0;
    bool eof_ = false;
};

// Hands each line of `in` to each(line, tooLong), as LineReader::next gives
// them, flushing `out` before every wait for input. False when `each` stopped
// the run by answering false; true at the end of the stream.
template <class Each>
bool forEachLine(int in, std::FILE *out, Each each) {
    LineReader reader(in, out);
    std::string line;
    size_t tooLong = 0;
    while (reader.next(line, tooLong))
        if (!each(line, tooLong)) return false;
    return true;
}

// "line too long: N bytes, more than 1048576"
std::string tooLongMessage(size_t length);

} // namespace zvfmt
