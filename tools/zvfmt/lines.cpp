#include "lines.hpp"

#include <cerrno>
#include <cstring>

#include <unistd.h>

namespace zvfmt {

LineReader::LineReader(int fd, std::FILE *flushFirst) : fd_(fd), out_(flushFirst), buffer_(1 << 16) {}

bool LineReader::fill() {
    if (eof_) return false;
    if (out_) std::fflush(out_);
    for (;;) {
        const ssize_t n = ::read(fd_, buffer_.data(), buffer_.size());
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) {
            eof_ = true;
            return false;
        }
        pos_ = 0;
        end_ = size_t(n);
        return true;
    }
}

bool LineReader::next(std::string &line, size_t &tooLong) {
    line.clear();
    tooLong = 0;
    size_t length = 0;
    bool any = false;
    for (;;) {
        if (pos_ == end_ && !fill()) break;
        any = true;
        const char *start = buffer_.data() + pos_;
        const void *nl = std::memchr(start, '\n', end_ - pos_);
        const size_t n = nl ? size_t(static_cast<const char *>(nl) - start) : end_ - pos_;
        length += n;
        if (length <= kMaxLine) line.append(start, n);
        else if (!line.empty()) std::string().swap(line);
        pos_ += n;
        if (nl) {
            ++pos_;
            break;
        }
    }
    if (!any) return false;
    if (length > kMaxLine) tooLong = length;
    else if (!line.empty() && line.back() == '\r') line.pop_back();
    return true;
}

std::string tooLongMessage(size_t length) {
    return "line too long: " + std::to_string(length) + " bytes, more than " + std::to_string(kMaxLine);
}

} // namespace zvfmt
