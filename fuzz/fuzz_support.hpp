// What the fuzz targets share: the input read as a stream of values, and one
// host with the module loaded for the whole run.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>

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
};

inline zvhost::Host &host() {
    static zvhost::Host *h = [] {
        auto *made = new zvhost::Host();
        if (!made->loadModule()) std::abort();
        return made;
    }();
    return *h;
}

} // namespace zvfuzz
