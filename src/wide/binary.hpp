// Readers of binary, hexadecimal, size, quoted and UUID text, and base-64
// encoders. No row of the format table leads to them: a host binds them
// itself. The readers have the informat shape (a FormatCall and an opaque
// word in, a status out); they read at most min(inputLength, fieldLimit,
// width) units of `input`.
#pragma once

#include <cstdint>

#include "zvlocfmt/zvlocfmt.h"

namespace zv {

// Up to 64 binary digits, blanks anywhere ignored, into the double at
// output: a number below 57 digits, the bit pattern from 57 on. A blank
// field reads as 0. 999 for a unit other than 0, 1 or blank. With bit 0 of
// flags: width 1 to 64, decimals 0 to 31.
int32_t readBinaryNumber(FormatCall *call, void *opaque);

// Up to 16 hexadecimal digits of either case, the same way: a number below
// 16 digits, the bit pattern at 16. 1 for a bad unit. With bit 0 of flags:
// width 1 to 16, decimals 0.
int32_t readHexNumber(FormatCall *call, void *opaque);

// A number with a size letter behind its last digit (K, M, G in either
// case, powers of 1024), read by the host's parseDouble of its current
// locale. With bit 0 of flags: width 4 to 35, the number 1 to 32 units,
// decimals 0 to 31. A parse status comes back unchanged.
int32_t readSizeNumber(FormatCall *call, void *opaque);

// Pairs of hexadecimal digits into the bytes at output (outputCapacity
// bytes); outputLength counts complete bytes. 999 for a bad unit.
int32_t readHexBytes(FormatCall *call, void *opaque);

// Binary digits, eight to a byte, counted by place (blanks take a place),
// into the bytes at output; outputLength counts complete bytes. 999 for a
// unit other than 0, 1 or blank.
int32_t readBitBytes(FormatCall *call, void *opaque);

// Text, perhaps in single or double quotes, into the wide text at output,
// filled with blanks to outputCapacity units. A doubled quote stands for
// one; a lone quote ends the text.
int32_t readQuotedText(FormatCall *call, void *opaque);

// A UUID of 36 units (8-4-4-4-12 hexadecimal digits), perhaps in braces,
// into min(width, outputCapacity, 16) bytes at output. 999 when malformed.
// With bit 0 of flags: width 1 to 200, decimals 0.
int32_t readUuid(FormatCall *call, void *opaque);

// Pairs of hexadecimal digits into bytes at *bytes, which moves past each
// complete byte. Blanks are skipped; a lone last digit fills the high half
// of the byte at *bytes. 0, or 999 at a bad unit.
int32_t hexToBytes(const ZvChar *text, int64_t length, uint8_t **bytes);

void reverseBytes(uint8_t *bytes, int64_t length);

// Base-64 (standard alphabet, '=' padding, no line breaks) as UTF-16 units.
// With *target null the text is allocated from `pool` with room for a zero
// unit behind it, which is written; *target then points to it. *produced
// gets the count of units without the zero. 0, or 0x803fc002 when the pool
// has no memory.
int32_t encodeBase64Bytes(HostPool *pool, const uint8_t *source, int64_t length, ZvChar **target,
                          int64_t *produced);
// The same over UTF-16 units, of which only the low byte counts.
int32_t encodeBase64Units(HostPool *pool, const ZvChar *source, int64_t length, ZvChar **target,
                          int64_t *produced);

} // namespace zv
