// The JSON-lines protocol: one request object a line in, one answer a line out.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

#include "session.hpp"

namespace zvfmt {

// The answer to one request line, as one line of JSON without the newline.
std::string answerLine(Session &session, std::string_view line);

// Reads requests from the file descriptor `in` until its end and writes each
// answer to `out`, flushed before the next request is awaited. Returns 0.
// A line longer than kMaxLine is answered with an error and skipped.
int runJsonLines(Session &session, int in, std::FILE *out);

} // namespace zvfmt
