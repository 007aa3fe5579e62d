// The reference host: a real host kernel for the zvlocfmt module, on ICU.
//
// It supplies every host object of zvlocfmt.h (pools, journals, transcoders,
// locales, time zones, options, clock, character services) and a small C++
// API through which embedding programs, the zvfmt tool, tests and benchmarks
// load the module and run calls.
//
// Nothing in this header includes ICU; the implementation does.
//
// Threads: a Host, its caches and pools and the loaded module may be shared;
// a FormatCall during a call, a HostTranscoder (transcoder() gives each
// thread its own), a Session and a ColumnFormatter may not. Load the module
// and set options, clock and time zone before threads start.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "zvlocfmt/zvlocfmt.h"

namespace zvhost {

// ---------------------------------------------------------------------------
// Pools

struct PoolStats {
    int64_t liveBlocks = 0;   // blocks handed out and not yet freed
    int64_t liveBytes = 0;    // bytes in those blocks
    int64_t peakBytes = 0;    // the most liveBytes ever reached
    int64_t allocations = 0;  // successful poolAlloc calls
    int64_t frees = 0;        // poolFree calls
    int64_t failures = 0;     // poolAlloc calls answered with null
    int64_t badFrees = 0;     // poolFree of a block this pool did not hand out (or freed twice)
    int64_t freedByDestroy = 0; // blocks still live when poolDestroy ran
};

// A counting pool. The host keeps one as formatPool; zvlocfmt's build asks
// for another through createPool. poolDestroy frees every block still live.
class Pool {
public:
    virtual ~Pool() = default;
    virtual HostPool *raw() = 0;
    virtual PoolStats stats() const = 0;
    // The n-th poolAlloc from now (1 = the next one) returns null, once.
    // 0 switches the fault off.
    virtual void failAt(int64_t n) = 0;
    // Every poolAlloc from the n-th on returns null. 0 switches it off.
    virtual void failFrom(int64_t n) = 0;
    virtual std::string name() const = 0;
    virtual bool destroyed() const = 0;
    // Each successful poolAlloc gets the next serial number; serial() is the
    // latest. releaseSince(s) frees the blocks numbered after s that are still
    // live (what a finished call left behind) and answers how many.
    virtual int64_t serial() const { return 0; }
    virtual int64_t releaseSince(int64_t) { return 0; }
};

// ---------------------------------------------------------------------------
// Journals

struct JournalLine {
    int32_t level = 0;
    int32_t status = 0;
    std::vector<int64_t> values;
};

struct JournalRecord {
    std::u16string name;
    std::vector<JournalLine> lines;
    int closes = 0;
    int releases = 0;
};

// ---------------------------------------------------------------------------
// Faults a test can ask of the host. Each count names the n-th call of the
// operation from the setting on (1 = the next one); the fault strikes once,
// after which the count reads 0 again. 0 means no fault.

struct Faults {
    int64_t failCreatePool = 0;        // n-th createPool answers null
    int64_t failCreateJournal = 0;     // n-th createJournal answers null
    int64_t failCreateTranscoder = 0;  // n-th createTranscoder or transcoderForEncoding answers null
    int64_t failOpenLocale = 0;        // n-th openLocale answers null
    int64_t failCurrentLocale = 0;     // n-th currentLocale answers null
    // The n-th call answers kHostFault and writes nothing. transcode counts
    // over every transcoder the host made (for the module or for a call).
    int64_t failTranscode = 0, failLocaleTextTable = 0, failReadOption = 0, failReadClock = 0;
    int64_t failFormatNumber = 0, failParseDouble = 0, failParseInteger = 0;
    int64_t failTimeZoneOffset = 0;    // n-th timeZoneOffset answers NaN
    // Pools made by createPool from now on fail their n-th allocation (once).
    int64_t newPoolFailAt = 0;
};

// Counts of what the host has been asked, for tests.
struct HostCounters {
    int64_t poolsCreated = 0, poolsDestroyed = 0;
    int64_t journalsCreated = 0;
    int64_t transcodersCreated = 0, transcodersReleased = 0;
    int64_t localesOpened = 0, localesReleased = 0;
    int64_t charModuleLoads = 0;  // loadModule("zvchrtab")
    int64_t charServiceCalls = 0; // charClass, charUpper, charLower
    int64_t optionReads = 0, clockReads = 0, formatTextCalls = 0;
    int64_t transcodes = 0, textTables = 0, zoneOffsets = 0, currentLocales = 0;
    int64_t numberFormats = 0, doubleParses = 0, integerParses = 0;
};

// ---------------------------------------------------------------------------
// Encodings. The host names every encoding ICU can convert; ids are the
// host's own. 25 is UTF-16 (little-endian, the module's text) and 62 the
// single-byte text of locale tables (byte b is U+00bb).

// The id of an encoding given by any ICU converter name or alias
// ("UTF-8", "utf8", "ISO-8859-1", "windows-1252", "Shift_JIS", ...);
// nullopt when ICU does not know it.
std::optional<uint32_t> encodingIdOf(std::string_view name);
// The canonical name of a known id, "" when unknown.
std::string encodingName(uint32_t id);

// ---------------------------------------------------------------------------
// The host

struct HostConfig {
    bool withNls = true;                 // false: anchor->nlsServices is null
    std::string currentLocale = "en_US"; // what currentLocale answers
    std::string timeZone = "UTC";        // IANA name of services->timeZone
};

class Host {
public:
    explicit Host(HostConfig config = {});
    ~Host();
    Host(const Host &) = delete;
    Host &operator=(const Host &) = delete;

    HostAnchor *anchor();
    HostServices *services();
    NlsServices *nls(); // null when made without NLS
    Pool &formatPool();

    // Options read through readOption, e.g. ZV_NAME_YEARCUTOFF.
    void setOption(const std::string &name, int64_t value);
    void clearOption(const std::string &name);

    // Clock: real (system time as a second count from 1960, shift 0) by
    // default; fixed values for tests.
    void setClock(double value, double shift);
    void useSystemClock();

    // The time zone behind services()->timeZone; false for an unknown name.
    bool setTimeZone(const std::string &iana);
    // A time zone object for any IANA name, owned by the host; null if unknown.
    HostTimeZone *timeZone(const std::string &iana);

    // Faults and counters.
    Faults &faults();
    const HostCounters &counters() const;
    // What was closed, released, freed and destroyed through the objects the
    // host made for the module, in order: "journalClose NAME",
    // "journalRelease NAME", "transcoderRelease FROM>TO", "localeRelease NAME",
    // "poolFree NAME", "poolDestroy NAME"; the first 65,536 of them, so
    // that a long run does not grow the log without end.
    const std::vector<std::string> &events() const;
    // Pools made through createPool, in order of creation (still listed
    // after poolDestroy, with destroyed() true).
    std::vector<Pool *> createdPools();
    // Journals made through createJournal and the error journal.
    std::vector<JournalRecord> journals() const;
    HostJournal *errorJournal();
    const JournalRecord &errorJournalRecord() const;

    // A transcoder from UTF-16 to the named encoding, owned by the host and
    // cached by name; null if the name is unknown.
    HostTranscoder *transcoder(const std::string &encoding);

    // A locale owned by the host, cached by name and items. `items` replace
    // raw items of the table (item number to raw text, <Uxxxx> escapes
    // allowed) before any block is built from it. Null if unknown.
    // The cache keeps at most 128 locales: the least recently asked for that
    // nothing holds is freed first. A locale used beyond the next few
    // requests, or on another thread meanwhile, must be held (LocaleHold).
    // The module's own opens and the current locale are held by the host.
    HostLocale *locale(const std::string &name, const std::map<int, std::string> &items = {});
    // The same, held for the caller until dropLocale (see LocaleHold).
    HostLocale *heldLocale(const std::string &name, const std::map<int, std::string> &items = {});
    void holdLocale(HostLocale *locale);
    void dropLocale(HostLocale *locale);
    // Locales in the cache now.
    size_t localesKept() const;

    // The module: zvextent, then zvlocfmt with the error journal, then the
    // instance joins extensionList. Null (and nothing listed) on failure.
    ExtensionInstance *loadModule();
    // destroy on the instance, which leaves extensionList.
    void unloadModule();
    ExtensionInstance *instance();

    // What the module's instance shares between calls (the per-currency rows'
    // snapshot of locale items and money record) is guarded by this lock for
    // callers on several threads; snapshotOwner names the column whose block
    // the snapshot was last filled from (null: a single call's).
    std::mutex &instanceLock();
    const void *&snapshotOwner();
    // Loads the character module now rather than at the module's first need.
    void loadCharModule();

    struct Impl;

private:
    std::unique_ptr<Impl> impl_;
};

// Holds a locale of the host's cache for as long as it lives.
class LocaleHold {
public:
    LocaleHold() = default;
    // Holds the locale of that name and items; null (get()) if unknown.
    LocaleHold(Host &host, const std::string &name, const std::map<int, std::string> &items = {})
        : host_(&host), locale_(host.heldLocale(name, items)) {}
    HostLocale *get() const { return locale_; }
    ~LocaleHold() { reset(); }
    LocaleHold(const LocaleHold &) = delete;
    LocaleHold &operator=(const LocaleHold &) = delete;
    LocaleHold(LocaleHold &&other) noexcept : host_(other.host_), locale_(other.locale_) { other.locale_ = nullptr; }
    LocaleHold &operator=(LocaleHold &&other) noexcept {
        if (this != &other) {
            reset();
            host_ = other.host_, locale_ = other.locale_, other.locale_ = nullptr;
        }
        return *this;
    }
    void reset() {
        if (host_ && locale_) host_->dropLocale(locale_);
        locale_ = nullptr;
    }

private:
    Host *host_ = nullptr;
    HostLocale *locale_ = nullptr;
};

// ---------------------------------------------------------------------------
// Rows

// The row of the table with that name, compared without regard to case over
// all 32 units; null if there is none. Stops at the blank closing row.
const FormatTableRow *findRow(const FormatTableRow *table, std::string_view name);
// The name of a row without its trailing blanks, as ASCII.
std::string rowName(const FormatTableRow &row);
// Rows of the table up to the closing blank row.
std::vector<const FormatTableRow *> tableRows(const FormatTableRow *table);
bool isInformat(const FormatTableRow &row);
// The per-currency rows, which share the instance's snapshot of locale items:
// refreshed only when such a row builds a block itself, so a call of theirs
// that brings a kept block would find another locale's copy; they build their
// own, one call at a time.
bool sharesInstance(const FormatTableRow &row);

// ---------------------------------------------------------------------------
// Calls

enum class Entry { Wide, Byte };

struct CallSpec {
    std::string locale = "en_US";
    std::map<int, std::string> items; // raw item overrides
    std::string encoding = "UTF-8";   // host encoding of the call's transcoder
    int32_t width = -1;               // -1: the row's default; other values go as they are
    int32_t decimals = -1;            // -1: the row's default; other values go as they are
    bool exact = false;               // width and decimals go as they are, -1 included
    bool measureBytes = false;
    bool validate = false;            // bit 0 of flags
    int32_t fieldLimit = -1;          // -1: the text's length
    int32_t outputCapacity = -1;      // -1: the width
    Entry entry = Entry::Wide;
    Pool *callPool = nullptr;         // set: the call's temporary memory comes from it
};

struct FormatResult {
    int32_t status = 0;
    std::u16string wide;      // wide entry: the units written (outputLength of them, within capacity)
    std::string bytes;        // byte entry: the bytes written
    std::string utf8;         // the text as UTF-8 (bytes decoded from the host encoding)
    int32_t outputLength = 0;
    bool overran = false;     // something was written outside the target: before it, or beyond outputCapacity
    bool fieldsChanged = false; // a field of the FormatCall other than outputLength/localeBlock changed
    bool cut = false;         // Session, byte entry: status 0, but the text lost more than blanks to fit
    std::string error;        // set when the call could not be made (unknown row, locale, encoding, null entry)
};

struct ReadResult {
    int32_t status = 0;
    uint64_t bits = 0;        // the double at output
    double value = 0;
    bool untouched = false;   // output still holds the sentinel
    bool fieldsChanged = false;
    std::string error;
};

// Run a format row on one value. The module must be loaded.
FormatResult runFormat(Host &host, const FormatTableRow &row, const CallSpec &spec, double value);
// Run an informat row on one UTF-8 text (converted to UTF-16).
ReadResult runInformat(Host &host, const FormatTableRow &row, const CallSpec &spec,
                       std::string_view utf8Text);

// ---------------------------------------------------------------------------
// Routines without a row. The module holds readers and encoders that no row
// of its table leads to; the host binds them here, by name.

enum class RoutineInput { Text, Hex };                // hex: bytes as hex pairs
enum class RoutineAnswer { Number, Bytes, Text };     // a double, bytes, UTF-16 text

struct Routine {
    const char *name;           // readAnyDate, readHexNumber, encodeBase64Units, ...
    RoutineInput input;
    RoutineAnswer answer;
    bool checksLimits;          // honours bit 0 of flags
    int32_t minWidth, maxWidth; // the limits it checks (or, unchecked, what it reads)
    int32_t maxDecimals;
    const char *summary;
};

// All of them, in a fixed order.
const std::vector<Routine> &routines();
// The routine of that name, any case; null if none.
const Routine *findRoutine(std::string_view name);

struct RoutineResult {
    int32_t status = 0;
    uint64_t bits = 0;          // Number: the double at output
    double value = 0;
    bool untouched = false;     // Number: output still holds the sentinel
    std::string bytes;          // Bytes: the bytes written (outputLength of them)
    std::string utf8;           // Text: the units written, as UTF-8
    int32_t outputLength = 0;
    bool overran = false;       // something was written beyond outputCapacity
    std::string error;          // the call could not be made (bad hex input, unknown locale)
};

// Runs a routine on one input: UTF-8 text, or hex pairs for RoutineInput::Hex.
// width -1 (and not exact) is the length of the input (units, or bytes for
// hex); outputCapacity -1 is what the answer can take.
RoutineResult runRoutine(Host &host, const Routine &routine, const CallSpec &spec, std::string_view input);

// ---------------------------------------------------------------------------
// Sessions: calls that share locale, items and encoding share one FormatCall
// and the locale block in it, built once. That is what a column of values or
// a stream of requests needs; the block is what costs (a call that brings its
// own block runs without allocating). The few records kept go least recently
// used first; their blocks are given back to formatPool.

class Session {
public:
    explicit Session(Host &host, size_t keep = 8);
    ~Session();
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    Host &host() { return host_; }
    // As runFormat and runInformat, through the kept record. The text of a
    // format is only what the routine wrote: the target is cleared before
    // the call, so a routine that returns early shows an empty text.
    FormatResult format(const FormatTableRow &row, const CallSpec &spec, double value);
    // The same into a result whose strings keep their room from call to call.
    void format(const FormatTableRow &row, const CallSpec &spec, double value, FormatResult &result);
    ReadResult read(const FormatTableRow &row, const CallSpec &spec, std::string_view utf8Text);
    // The locale block of the CallSpec's locale, items and encoding; null, with
    // the reason, when the locale or encoding is unknown or the block can't
    // be built.
    const LocaleBlock *localeBlock(const CallSpec &spec, std::string &error);
    // Blocks built so far (a block is built once per kept record).
    int64_t blocksBuilt() const { return built_; }

private:
    struct Kept;
    Kept *kept(const CallSpec &spec, std::string &error);
    Host &host_;
    size_t keep_;
    std::vector<std::unique_ptr<Kept>> records_; // most recently used last
    std::vector<char16_t> wide_;
    std::vector<uint8_t> bytes_;
    int64_t built_ = 0;
};

// ---------------------------------------------------------------------------
// Columns: one row run over many values with one call record, so the locale
// block is built once. A column has its own transcoders, pool and services
// record; distinct threads may run distinct columns of one host at once (the
// module must be loaded first, and the host's options, clock and time zone
// left alone meanwhile). The column must not outlive the loaded module.

class ColumnFormatter {
public:
    // row: a row name, any case. The CallSpec: as for runFormat/runInformat
    // (outputCapacity, fieldLimit and entry apply to every value).
    ColumnFormatter(Host &host, std::string_view row, const CallSpec &spec);
    ~ColumnFormatter();
    ColumnFormatter(const ColumnFormatter &) = delete;
    ColumnFormatter &operator=(const ColumnFormatter &) = delete;

    // Why the column can't run ("unknown locale \"xx\"", ...); empty when it can.
    const std::string &error() const { return error_; }
    const FormatTableRow *row() const { return row_; }
    bool informat() const { return informat_; }
    int32_t width() const { return call_.width; }
    // The most UTF-16 units a field can hold, and the most UTF-8 bytes.
    int32_t fieldUnits() const { return fieldUnits_; }
    int32_t fieldBytes() const { return 3 * fieldUnits_; }
    // The locale block of the column, once built.
    const LocaleBlock *block() const { return call_.localeBlock; }

    // Formats one value; the text stays in text() (and, for the byte entry,
    // the bytes as written in bytes()) until the next call.
    int32_t format(double value);
    std::u16string_view text() const { return {wide_.data(), textUnits_}; }
    std::string_view bytes() const { return {reinterpret_cast<const char *>(narrow_.data()), byteCount_}; }
    // Reads one text into value. A text that is not read leaves the plain
    // missing value (the status says why).
    int32_t read(std::u16string_view text, double &value);
    int32_t read(std::string_view utf8Text, double &value);

private:
    int32_t call(void *output, int32_t capacity, bool byte);
    Host &host_;
    LocaleHold hold_; // the column's locale stays while the column does
    const FormatTableRow *row_ = nullptr;
    std::string error_;
    bool informat_ = false, byteEntry_ = false, sharesInstance_ = false;
    FormatCall call_{};
    HostServices services_{};
    std::unique_ptr<Pool> pool_;
    HostTranscoder *encoder_ = nullptr, *decoder_ = nullptr;
    int32_t fieldUnits_ = 0;
    std::vector<char16_t> wide_;
    std::vector<uint8_t> narrow_;
    size_t textUnits_ = 0, byteCount_ = 0;
    std::u16string readBuffer_;
};

// A column of doubles formatted in one call. Fixed fields: `stride` bytes of
// UTF-8 for each value, padded with NUL bytes, lengths[i] the bytes in use; a
// text longer than the stride is cut at a whole character and its status is
// ZV_TARGET_TOO_SMALL. Strings: offsets has count + 1 entries into bytes.
// statuses may be null. The result is the column's error() (empty: done).
std::string formatColumn(Host &host, std::string_view row, const CallSpec &spec, const double *values,
                         size_t count, char *fields, size_t stride, int32_t *lengths, int32_t *statuses);
std::string formatColumn(Host &host, std::string_view row, const CallSpec &spec, const double *values,
                         size_t count, std::string &bytes, std::vector<int64_t> &offsets,
                         std::vector<int32_t> &statuses);
// A column of UTF-8 texts (count of them: text i is bytes[offsets[i], offsets[i+1]))
// read in one call: values get the doubles, marks the missing marks ('.',
// 'A'..'Z', '_', or 0 when the value is not missing); marks and statuses may be null.
std::string readColumn(Host &host, std::string_view row, const CallSpec &spec, const char *bytes,
                       const int64_t *offsets, size_t count, double *values, char *marks, int32_t *statuses);

// UTF-16 to UTF-8 appended to out; lone surrogates become U+FFFD.
void appendUtf8(std::u16string_view text, std::string &out);

// ---------------------------------------------------------------------------
// Values

// A missing value: '.' plain, 'A'..'Z', '_' special.
double missingValue(char mark);
// The mark of a missing value ('.', 'A'..'Z', '_'), or 0 when not missing.
char missingMark(double value);
// Parse a VALUE of the tool: a number, an ISO date (day count from 1960),
// an ISO datetime (second count), ".", ".A".. ".Z", "._". nullopt if bad.
std::optional<double> parseValue(std::string_view text);

// UTF-8 <-> UTF-16 helpers.
std::u16string utf16(std::string_view utf8);
std::string utf8(std::u16string_view utf16);

// ---------------------------------------------------------------------------
// Statuses of the host's own operations (beside those of zvlocfmt.h).

// transcode: a character the target encoding can't show, or source text that
// is not valid in its encoding. Nothing is substituted.
inline constexpr int32_t kCannotShow = int32_t(0x803fe80au);
// readOption: the option is not set.
inline constexpr int32_t kOptionNotSet = int32_t(0x803fe80bu);
// An operation called with arguments it does not take (null record, bad size).
inline constexpr int32_t kBadRequest = int32_t(0x803fe80cu);
// An operation that a test told to fail (Faults).
inline constexpr int32_t kHostFault = int32_t(0x803fe80du);
// A transcoder between two encodings the host knows, outside any host: 25 ->
// anything, anything -> 25, 62 -> 25, and any pair through UTF-16. Null for
// an unknown id. Its transcoderRelease calls onRelease (if any) and frees it.
// Each transcode first asks `fails` (if any): true makes it answer kHostFault
// with nothing written.
HostTranscoder *makeTranscoder(uint32_t from, uint32_t to,
                               std::function<void(HostTranscoder *)> onRelease = {},
                               std::function<bool()> fails = {});
// A counting pool of one's own, outside any host.
std::unique_ptr<Pool> makePool(const std::string &name);

} // namespace zvhost
