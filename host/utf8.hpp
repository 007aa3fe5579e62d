// One code point as UTF-8, for the host's hand-written encoders.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zvhost {

// Bytes that a code point takes in UTF-8.
inline size_t utf8Length(uint32_t c) { return c < 0x80 ? 1 : c < 0x800 ? 2 : c < 0x10000 ? 3 : 4; }

// Writes the utf8Length(c) bytes of c at p.
inline void putUtf8(uint8_t *p, uint32_t c) {
    switch (utf8Length(c)) {
    case 1: p[0] = uint8_t(c); break;
    case 2: p[0] = uint8_t(0xC0 | (c >> 6)), p[1] = uint8_t(0x80 | (c & 0x3F)); break;
    case 3:
        p[0] = uint8_t(0xE0 | (c >> 12)), p[1] = uint8_t(0x80 | ((c >> 6) & 0x3F)), p[2] = uint8_t(0x80 | (c & 0x3F));
        break;
    default:
        p[0] = uint8_t(0xF0 | (c >> 18)), p[1] = uint8_t(0x80 | ((c >> 12) & 0x3F));
        p[2] = uint8_t(0x80 | ((c >> 6) & 0x3F)), p[3] = uint8_t(0x80 | (c & 0x3F));
        break;
    }
}

} // namespace zvhost
