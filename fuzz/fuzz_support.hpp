// What the fuzz targets share: the input read as a stream of values, one
// host with the module loaded for the whole run, the locales it knows, and
// the checks every call passes.
#pragma once

#include <unicode/uloc.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "zvhost.hpp"

namespace zvfuzz {

struct Input {
    const uint8_t *data;
    size_t size;
    // The next sizeof(T) bytes as a T; zeros once the input runs out.
    template <class T>
    T take() {
        T v{};
        size_t n = size < sizeof v ? size : sizeof v;
        std::memcpy(&v, data, n);
        data += n;
        size -= n;
        return v;
    }
    // Up to `most` UTF-16 units; some bytes stand for a piece of `pieces`
    // so that short inputs reach what the text is read for.
    std::u16string wide(size_t most, const std::vector<std::u16string> &pieces = {}) {
        std::u16string out;
        for (size_t n = take<uint8_t>() % (most + 1); out.size() < n && size > 0;) {
            const uint8_t b = take<uint8_t>();
            if (b >= 0xF0 && !pieces.empty()) out += pieces[b % pieces.size()];
            else if (b >= 0xE0) out += char16_t(take<uint16_t>());
            else out += char16_t(b);
        }
        return out.substr(0, most);
    }
};

inline zvhost::Host &host() {
    static zvhost::Host *h = [] {
        auto *made = new zvhost::Host();
        if (!made->loadModule()) std::abort();
        return made;
    }();
    return *h;
}

// Every locale ICU has data for, en_US first.
inline const std::vector<std::string> &allLocales() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> n{"en_US"};
        for (int32_t i = 0; i < uloc_countAvailable(); ++i) n.push_back(uloc_getAvailable(i));
        return n;
    }();
    return names;
}

// A call record changed in no field but outputLength and localeBlock, or abort.
inline void checkFields(const FormatCall &before, FormatCall after) {
    after.outputLength = before.outputLength;
    after.localeBlock = before.localeBlock;
    if (std::memcmp(&after, &before, sizeof before) != 0) std::abort();
}

// Bytes from `from` on still hold the fill, or abort: nothing written past a target.
inline void checkGuard(const std::vector<uint8_t> &buffer, size_t from, uint8_t fill = 0xA5) {
    for (size_t i = from; i < buffer.size(); ++i)
        if (buffer[i] != fill) std::abort();
}

} // namespace zvfuzz
