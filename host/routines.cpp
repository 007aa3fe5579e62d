// The module's routines that no row of its table leads to, bound by name: the
// date guesses, the binary, hex, size, quoted and UUID readers, and the byte
// and base-64 helpers. Each runs on one input the way the rows do: a record
// cleared before the call, a target with a guard behind it.
#include <algorithm>
#include <bit>
#include <climits>
#include <cstring>

#include "zvhost.hpp"

#include "dateread/dateread.hpp"
#include "wide/binary.hpp"

namespace zvhost {

namespace {

using Reader = int32_t (*)(FormatCall *, void *);

constexpr uint64_t kUntouchedBits = 0x7FF4DEADBEEF0001ull;
constexpr size_t kGuard = 64;
constexpr uint8_t kByteSentinel = 0xA5;
constexpr char16_t kWideSentinel = 0xFDD1;

constexpr Routine kRoutines[] = {
    {"readAnyDate", RoutineInput::Text, RoutineAnswer::Number, false, 0, 200, 0,
     "a date, datetime or time in any layout it can guess: the day count"},
    {"readAnyTime", RoutineInput::Text, RoutineAnswer::Number, false, 0, 200, 0,
     "the same guesses: the seconds of the day"},
    {"readAnyDateTime", RoutineInput::Text, RoutineAnswer::Number, false, 0, 200, 0,
     "the same guesses: the second count (a date is its midnight)"},
    {"readBinaryNumber", RoutineInput::Text, RoutineAnswer::Number, true, 1, 64, 31,
     "up to 64 binary digits: a number below 57 digits, the bit pattern from 57"},
    {"readHexNumber", RoutineInput::Text, RoutineAnswer::Number, true, 1, 16, 0,
     "up to 16 hex digits: a number below 16 digits, the bit pattern at 16"},
    {"readSizeNumber", RoutineInput::Text, RoutineAnswer::Number, true, 4, 35, 31,
     "a number and a size letter K, M or G (powers of 1024)"},
    {"readHexBytes", RoutineInput::Text, RoutineAnswer::Bytes, false, 0, 0, 0, "pairs of hex digits into bytes"},
    {"readBitBytes", RoutineInput::Text, RoutineAnswer::Bytes, false, 0, 0, 0, "binary digits, eight to a byte"},
    {"readQuotedText", RoutineInput::Text, RoutineAnswer::Text, false, 0, 0, 0,
     "text, perhaps in quotes, padded with blanks to the capacity"},
    {"readUuid", RoutineInput::Text, RoutineAnswer::Bytes, true, 1, 200, 0,
     "a UUID of 36 characters, perhaps in braces: 16 bytes"},
    {"hexToBytes", RoutineInput::Text, RoutineAnswer::Bytes, false, 0, 0, 0,
     "pairs of hex digits into bytes, blanks skipped"},
    {"reverseBytes", RoutineInput::Hex, RoutineAnswer::Bytes, false, 0, 0, 0, "the bytes in reverse order"},
    {"encodeBase64Bytes", RoutineInput::Hex, RoutineAnswer::Text, false, 0, 0, 0, "bytes as base-64 text"},
    {"encodeBase64Units", RoutineInput::Text, RoutineAnswer::Text, false, 0, 0, 0,
     "the low byte of each UTF-16 unit as base-64 text"},
};

Reader readerOf(std::string_view name) {
    static const std::pair<const char *, Reader> kReaders[] = {
        {"readAnyDate", zv::readAnyDate},       {"readAnyTime", zv::readAnyTime},
        {"readAnyDateTime", zv::readAnyDateTime}, {"readBinaryNumber", zv::readBinaryNumber},
        {"readHexNumber", zv::readHexNumber},   {"readSizeNumber", zv::readSizeNumber},
        {"readHexBytes", zv::readHexBytes},     {"readBitBytes", zv::readBitBytes},
        {"readQuotedText", zv::readQuotedText}, {"readUuid", zv::readUuid},
    };
    for (const auto &[n, reader] : kReaders)
        if (name == n) return reader;
    return nullptr;
}

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

bool bytesOfHex(std::string_view hex, std::string &bytes) {
    if (hex.size() % 2) return false;
    for (size_t i = 0; i < hex.size(); i += 2) {
        const int hi = hexDigit(hex[i]), lo = hexDigit(hex[i + 1]);
        if (hi < 0 || lo < 0) return false;
        bytes += char(hi << 4 | lo);
    }
    return true;
}

// The units written of a target filled with the sentinel.
std::u16string writtenText(const std::vector<char16_t> &out, size_t capacity) {
    size_t n = capacity;
    while (n > 0 && out[n - 1] == kWideSentinel) --n;
    return std::u16string(out.data(), n);
}

} // namespace

const std::vector<Routine> &routines() {
    static const std::vector<Routine> all(std::begin(kRoutines), std::end(kRoutines));
    return all;
}

const Routine *findRoutine(std::string_view name) {
    for (const Routine &r : routines()) {
        const std::string_view n = r.name;
        if (n.size() == name.size() &&
            std::equal(n.begin(), n.end(), name.begin(), [](char a, char b) { return (a | 0x20) == (b | 0x20); }))
            return &r;
    }
    return nullptr;
}

RoutineResult runRoutine(Host &host, const Routine &routine, const CallSpec &spec, std::string_view input) {
    RoutineResult result;
    std::string inBytes;
    std::u16string text;
    if (routine.input == RoutineInput::Hex) {
        if (!bytesOfHex(input, inBytes)) {
            result.error = std::string(routine.name) + " takes bytes as pairs of hex digits";
            return result;
        }
    } else {
        text = utf16(input);
    }
    const int64_t length = routine.input == RoutineInput::Hex ? int64_t(inBytes.size()) : int64_t(text.size());
    if (!host.instance()) {
        result.error = "the module is not loaded";
        return result;
    }
    FormatCall call;
    std::memset(&call, 0, sizeof call);
    const LocaleHold hold(host, spec.locale, spec.items);
    call.locale = hold.get();
    call.transcoder = host.transcoder(spec.encoding);
    if (!call.locale || !call.transcoder) {
        result.error = call.locale ? "unknown encoding " + spec.encoding : "unknown locale " + spec.locale;
        return result;
    }
    call.services = host.services();
    call.width = spec.width == -1 && !spec.exact ? int32_t(std::min<int64_t>(length, INT32_MAX)) : spec.width;
    call.decimals = spec.decimals == -1 && !spec.exact ? 0 : spec.decimals;
    call.flags = spec.validate ? ZV_FLAG_CHECK_LIMITS : 0;
    call.measureBytes = spec.measureBytes ? 1 : 0;
    call.input = text.data();
    call.inputLength = int32_t(text.size());
    call.fieldLimit = spec.fieldLimit < 0 ? int32_t(text.size()) : spec.fieldLimit;
    // The helpers take what the width leaves of their input.
    const int64_t taken = std::clamp<int64_t>(call.width, 0, length);
    const int64_t mark = host.formatPool().serial();

    if (Reader reader = readerOf(routine.name); reader && routine.answer == RoutineAnswer::Number) {
        double output = std::bit_cast<double>(kUntouchedBits);
        call.output = &output;
        call.outputCapacity = spec.outputCapacity < 0 ? 0 : spec.outputCapacity;
        result.status = reader(&call, nullptr);
        result.bits = std::bit_cast<uint64_t>(output);
        result.value = output;
        result.untouched = result.bits == kUntouchedBits;
    } else if (reader && routine.answer == RoutineAnswer::Bytes) {
        const int64_t fits = std::string_view(routine.name) == "readUuid" ? 16 : length;
        call.outputCapacity = spec.outputCapacity < 0 ? int32_t(fits) : spec.outputCapacity;
        std::vector<uint8_t> out(size_t(std::max(call.outputCapacity, 0)) + kGuard, kByteSentinel);
        call.output = out.data();
        result.status = reader(&call, nullptr);
        const size_t capacity = size_t(std::max(call.outputCapacity, 0));
        for (size_t i = capacity; i < out.size(); ++i) result.overran |= out[i] != kByteSentinel;
        result.outputLength = call.outputLength;
        result.bytes.assign(reinterpret_cast<const char *>(out.data()),
                            size_t(std::clamp<int64_t>(call.outputLength, 0, int64_t(capacity))));
    } else if (reader) { // readQuotedText
        call.outputCapacity = spec.outputCapacity < 0 ? int32_t(length) : spec.outputCapacity;
        const size_t capacity = size_t(std::max(call.outputCapacity, 0));
        std::vector<char16_t> out(capacity + kGuard, kWideSentinel);
        call.output = out.data();
        result.status = reader(&call, nullptr);
        for (size_t i = capacity; i < out.size(); ++i) result.overran |= out[i] != kWideSentinel;
        result.outputLength = call.outputLength;
        result.utf8 = utf8(writtenText(out, capacity));
    } else if (std::string_view(routine.name) == "hexToBytes") {
        std::vector<uint8_t> out(size_t(taken / 2 + 1) + kGuard, kByteSentinel);
        uint8_t *end = out.data();
        result.status = zv::hexToBytes(text.data(), taken, &end);
        result.outputLength = int32_t(end - out.data());
        result.bytes.assign(reinterpret_cast<const char *>(out.data()), size_t(end - out.data()));
    } else if (std::string_view(routine.name) == "reverseBytes") {
        zv::reverseBytes(reinterpret_cast<uint8_t *>(inBytes.data()), taken);
        result.outputLength = int32_t(inBytes.size());
        result.bytes = inBytes;
    } else { // the base-64 encoders, into a target of their exact size
        const size_t units = size_t((taken + 2) / 3 * 4);
        std::vector<char16_t> out(units + kGuard, kWideSentinel);
        ZvChar *target = out.data();
        int64_t produced = 0;
        result.status = routine.input == RoutineInput::Hex
                            ? zv::encodeBase64Bytes(host.formatPool().raw(),
                                                    reinterpret_cast<const uint8_t *>(inBytes.data()), taken,
                                                    &target, &produced)
                            : zv::encodeBase64Units(host.formatPool().raw(), text.data(), taken, &target, &produced);
        for (size_t i = units; i < out.size(); ++i) result.overran |= out[i] != kWideSentinel;
        result.outputLength = int32_t(produced);
        result.utf8 = utf8(std::u16string_view(out.data(), size_t(std::clamp<int64_t>(produced, 0, int64_t(units)))));
    }
    host.formatPool().releaseSince(mark);
    return result;
}

} // namespace zvhost
