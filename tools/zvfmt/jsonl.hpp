// The JSON-lines protocol: one request object a line in, one answer a line out.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

#include "session.hpp"

namespace zvfmt {

// Longest request line that is read; a longer one is answered with an error
// and skipped.
constexpr size_t kMaxRequestLine = 1 << 20;

// The answer to one request line, as one line of JSON without the newline.
std::string answerLine(Session &session, std::string_view line);

// Reads requests from `in` until its end and writes each answer to `out`,
// flushed at once. Returns 0.
int runJsonLines(Session &session, std::FILE *in, std::FILE *out);

} // namespace zvfmt
