#include "jsonl.hpp"

#include <cmath>
#include <limits>
#include <optional>
#include <set>

#include <nlohmann/json.hpp>

#include "cldr.hpp"
#include "lines.hpp"
#include "value.hpp"

namespace zvfmt {
namespace {

using Json = nlohmann::ordered_json;

constexpr int32_t kMaxUnits = 65536;

// A request that cannot be served; the message names the field.
struct BadRequest {
    std::string message;
};

const std::set<std::string> kKnownFields = {
    "name",    "width",    "decimals",     "value",          "bits",     "text",
    "entry",   "locale",   "items",        "encoding",       "measureBytes", "validate",  "hex",
    "fieldLimit", "outputCapacity", "timeZone", "options", "clock", "id"};

std::string typeName(const Json &v) {
    switch (v.type()) {
    case Json::value_t::null: return "null";
    case Json::value_t::boolean: return "a boolean";
    case Json::value_t::number_integer:
    case Json::value_t::number_unsigned:
    case Json::value_t::number_float: return "a number";
    case Json::value_t::string: return "a string";
    case Json::value_t::array: return "an array";
    case Json::value_t::object: return "an object";
    default: return "something else";
    }
}

// An integer in [lo, hi]; integral floats (20.0) count as integers.
std::optional<int64_t> integerIn(const Json &v, int64_t lo, int64_t hi) {
    int64_t n = 0;
    if (v.is_number_integer()) {
        if (v.is_number_unsigned()) {
            const uint64_t u = v.get<uint64_t>();
            if (u > static_cast<uint64_t>(std::numeric_limits<int64_t>::max())) return std::nullopt;
            n = static_cast<int64_t>(u);
        } else {
            n = v.get<int64_t>();
        }
    } else if (v.is_number_float()) {
        const double d = v.get<double>();
        if (!(std::floor(d) == d) || d < -9.0e18 || d > 9.0e18) return std::nullopt;
        n = static_cast<int64_t>(d);
    } else {
        return std::nullopt;
    }
    if (n < lo || n > hi) return std::nullopt;
    return n;
}

int32_t intField(const Json &req, const char *field, int64_t lo, int64_t hi) {
    const Json &v = req.at(field);
    auto n = integerIn(v, lo, hi);
    if (!n)
        throw BadRequest{std::string(field) + ": must be an integer from " + std::to_string(lo) +
                         " to " + std::to_string(hi) + ", not " +
                         (v.is_number() ? v.dump() : typeName(v))};
    return static_cast<int32_t>(*n);
}

const std::string &stringField(const Json &req, const char *field) {
    const Json &v = req.at(field);
    if (!v.is_string())
        throw BadRequest{std::string(field) + ": must be a string, not " + typeName(v)};
    return v.get_ref<const std::string &>();
}

bool boolField(const Json &req, const char *field) {
    const Json &v = req.at(field);
    if (!v.is_boolean())
        throw BadRequest{std::string(field) + ": must be true or false, not " + typeName(v)};
    return v.get<bool>();
}

double numberField(const Json &obj, const char *field, const char *path) {
    const Json &v = obj.at(field);
    if (!v.is_number()) throw BadRequest{std::string(path) + ": must be a number, not " + typeName(v)};
    return v.get<double>();
}

std::map<int, std::string> readItems(const Json &v) {
    if (!v.is_object()) throw BadRequest{"items: must be an object of item number to text, not " + typeName(v)};
    std::map<int, std::string> items;
    for (const auto &[key, text] : v.items()) {
        int n = -1;
        bool ok = !key.empty() && key.size() <= 3;
        for (char c : key) ok = ok && c >= '0' && c <= '9';
        if (ok) n = std::stoi(key);
        if (!ok || n < 0 || n >= ZV_LOCALE_TABLE_ITEMS)
            throw BadRequest{"items: key \"" + key + "\" is not an item number from 0 to " +
                             std::to_string(ZV_LOCALE_TABLE_ITEMS - 1)};
        if (!text.is_string())
            throw BadRequest{"items: item " + key + " must be a string, not " + typeName(text)};
        std::string raw, why;
        if (!zvhost::rawItemText(text.get_ref<const std::string &>(), raw, why))
            throw BadRequest{"items: the text of item " + key + " " + why};
        items[n] = raw;
    }
    return items;
}

std::map<std::string, std::optional<int64_t>> readOptions(const Json &v) {
    if (!v.is_object()) throw BadRequest{"options: must be an object of option name to integer, not " + typeName(v)};
    std::map<std::string, std::optional<int64_t>> options;
    for (const auto &[key, value] : v.items()) {
        if (key.empty()) throw BadRequest{"options: an option name can't be empty"};
        if (value.is_null()) {
            options[key] = std::nullopt;
            continue;
        }
        auto n = integerIn(value, std::numeric_limits<int64_t>::min(), std::numeric_limits<int64_t>::max());
        if (!n) throw BadRequest{"options: " + key + " must be an integer or null, not " + (value.is_number() ? value.dump() : typeName(value))};
        options[key] = *n;
    }
    return options;
}

std::pair<double, double> readClock(const Json &v) {
    if (!v.is_object()) throw BadRequest{"clock: must be an object {\"value\": s, \"shift\": s}, not " + typeName(v)};
    if (!v.contains("value")) throw BadRequest{"clock: value is missing"};
    for (const auto &[key, _] : v.items())
        if (key != "value" && key != "shift") throw BadRequest{"clock: unknown member \"" + key + "\""};
    const double value = numberField(v, "value", "clock.value");
    const double shift = v.contains("shift") ? numberField(v, "shift", "clock.shift") : 0.0;
    return {value, shift};
}

// The double of a reader's answer: bits, value, the missing mark, untouched.
void numberAnswer(Json &answer, uint64_t bits, bool untouched) {
    const double got = zvfmt::fromBits(bits);
    const std::string mark = missingMark(got);
    answer["bits"] = hex16(bits);
    if (mark.empty() && std::isfinite(got)) answer["value"] = got;
    else answer["value"] = nullptr;
    if (!mark.empty()) answer["missing"] = mark;
    answer["untouched"] = untouched;
}

// Locale, items, encoding, measureBytes and validate: what the request gives
// over the session's baseline, which `spec` holds already (callSpecOf).
void readCallFields(const Json &req, zvhost::CallSpec &spec) {
    if (req.contains("locale")) spec.locale = hostLocaleName(stringField(req, "locale"));
    if (req.contains("items"))
        for (auto &[n, text] : readItems(req["items"])) spec.items[n] = text;
    if (req.contains("encoding")) spec.encoding = stringField(req, "encoding");
    if (req.contains("measureBytes")) spec.measureBytes = boolField(req, "measureBytes");
    if (req.contains("validate")) spec.validate = boolField(req, "validate");
}

// fieldLimit and outputCapacity, and the host state that holds for this request alone.
StateChange readLimitsAndState(const Json &req, zvhost::CallSpec &spec) {
    if (req.contains("fieldLimit")) spec.fieldLimit = intField(req, "fieldLimit", 0, kMaxUnits);
    if (req.contains("outputCapacity")) spec.outputCapacity = intField(req, "outputCapacity", 0, kMaxUnits);
    StateChange change;
    if (req.contains("timeZone")) change.timeZone = stringField(req, "timeZone");
    if (req.contains("options")) change.options = readOptions(req["options"]);
    if (req.contains("clock")) change.clock = readClock(req["clock"]);
    return change;
}

// The host's locale and encoding for the call must exist; then the state of
// the request is set on the host until `guard` goes.
void prepareHost(Session &session, const zvhost::CallSpec &spec, const StateChange &change, Session::Guard &guard) {
    zvhost::Host &host = session.host();
    if (!host.locale(spec.locale, spec.items)) throw BadRequest{"locale: unknown locale \"" + spec.locale + "\""};
    if (!host.transcoder(spec.encoding)) throw BadRequest{"encoding: unknown encoding \"" + spec.encoding + "\""};
    std::string why;
    if (!session.apply(change, guard, why)) throw BadRequest{why};
}

// A request for a routine without a row: text (or hex) in, a number, bytes
// or text out. Width defaults to the length of the input.
Json serveRoutine(Session &session, const Json &req, const zvhost::Routine &routine, Json answer, Json warnings) {
    const bool hexInput = routine.input == zvhost::RoutineInput::Hex;
    const char *inputField = hexInput ? "hex" : "text";
    for (const char *field : {"value", "bits", "entry", hexInput ? "text" : "hex"})
        if (req.contains(field))
            throw BadRequest{std::string(field) + ": " + routine.name + " takes " + (hexInput ? "hex" : "text") +
                             " only"};
    if (!req.contains(inputField)) throw BadRequest{std::string(inputField) + ": missing (" + routine.name + " reads it)"};
    const std::string &input = stringField(req, inputField);
    zvhost::CallSpec spec = callSpecOf(session.baseline());
    readCallFields(req, spec);
    spec.exact = req.contains("width");
    spec.width = spec.exact ? intField(req, "width", INT32_MIN, INT32_MAX) : -1;
    spec.decimals = req.contains("decimals") ? intField(req, "decimals", INT32_MIN, INT32_MAX) : 0;
    if (req.contains("decimals")) spec.exact = true;
    if (spec.exact && !req.contains("width")) throw BadRequest{"width: give it with decimals"};
    const StateChange change = readLimitsAndState(req, spec);
    Session::Guard guard;
    prepareHost(session, spec, change, guard);

    const zvhost::RoutineResult r = zvhost::runRoutine(session.host(), routine, spec, input);
    if (!r.error.empty()) throw BadRequest{std::string(inputField) + ": " + r.error};
    answer["status"] = r.status;
    switch (routine.answer) {
    case zvhost::RoutineAnswer::Number: numberAnswer(answer, r.bits, r.untouched); break;
    case zvhost::RoutineAnswer::Bytes:
        answer["hex"] = hexBytes(r.bytes);
        answer["outputLength"] = r.outputLength;
        break;
    case zvhost::RoutineAnswer::Text:
        answer["text"] = r.utf8;
        answer["outputLength"] = r.outputLength;
        break;
    }
    if (r.overran) answer["overran"] = true;
    if (!warnings.empty()) answer["warnings"] = warnings;
    return answer;
}

// entry, width and decimals over the row's defaults, then the fields every
// request shares.
zvhost::CallSpec rowSpec(const Json &req, const Baseline &base, const FormatTableRow &row, const std::string &rowName,
                         bool informat) {
    zvhost::CallSpec spec = callSpecOf(base);
    spec.entry = base.byteEntry && !informat ? zvhost::Entry::Byte : zvhost::Entry::Wide;
    spec.width = static_cast<int32_t>(row.defaultWidth);
    spec.decimals = static_cast<int32_t>(row.defaultDecimals);
    spec.exact = true;
    if (req.contains("width")) spec.width = intField(req, "width", INT32_MIN, INT32_MAX);
    if (req.contains("decimals")) spec.decimals = intField(req, "decimals", INT32_MIN, INT32_MAX);
    if (req.contains("entry")) {
        const std::string &entry = stringField(req, "entry");
        if (entry == "wide") spec.entry = zvhost::Entry::Wide;
        else if (entry == "byte") spec.entry = zvhost::Entry::Byte;
        else throw BadRequest{"entry: must be \"wide\" or \"byte\", not \"" + entry + "\""};
        if (informat && spec.entry == zvhost::Entry::Byte)
            throw BadRequest{"entry: " + rowName + " is an informat; informats have only the wide entry"};
    }
    readCallFields(req, spec);
    return spec;
}

// An informat's input: text alone.
std::string informatText(const Json &req, const std::string &rowName) {
    if (req.contains("value") || req.contains("bits"))
        throw BadRequest{std::string(req.contains("value") ? "value" : "bits") + ": " + rowName +
                         " is an informat; give the text to read in text"};
    if (!req.contains("text")) throw BadRequest{"text: missing (" + rowName + " reads a text)"};
    return stringField(req, "text");
}

// A format's input: value (a number or a VALUE string) or bits, one of them.
double formatValue(const Json &req, const std::string &rowName) {
    if (req.contains("text") || req.contains("hex"))
        throw BadRequest{std::string(req.contains("text") ? "text" : "hex") + ": " + rowName +
                         " is a format; give value or bits"};
    const bool hasValue = req.contains("value"), hasBits = req.contains("bits");
    if (hasValue && hasBits) throw BadRequest{"value, bits: give one of them, not both"};
    if (!hasValue && !hasBits) throw BadRequest{"value: missing (" + rowName + " needs value or bits)"};
    if (hasValue) {
        const Json &v = req["value"];
        if (v.is_number()) return v.get<double>();
        if (!v.is_string()) throw BadRequest{"value: must be a number or a VALUE string, not " + typeName(v)};
        std::string why;
        auto parsed = parseValue(v.get_ref<const std::string &>(), &why);
        if (!parsed) throw BadRequest{"value: " + why};
        return *parsed;
    }
    const Json &b = req["bits"];
    if (!b.is_string()) throw BadRequest{"bits: must be a string of 16 hex digits, not " + typeName(b)};
    auto bits = parseHex16(b.get_ref<const std::string &>());
    if (!bits) throw BadRequest{"bits: must be exactly 16 hex digits, not \"" + b.get<std::string>() + "\""};
    return fromBits(*bits);
}

void formatAnswer(Json &answer, const zvhost::FormatResult &r, const zvhost::CallSpec &spec) {
    // (cut: the byte entry kept status 0 but lost more than blanks)
    if (!r.error.empty()) throw BadRequest{r.error};
    answer["status"] = r.status;
    answer["text"] = r.utf8;
    answer["outputLength"] = r.outputLength;
    if (spec.entry == zvhost::Entry::Byte) answer["hex"] = hexBytes(r.bytes);
    if (r.overran) answer["overran"] = true;
    if (r.cut) answer["cut"] = true;
    if (r.fieldsChanged) answer["fieldsChanged"] = true;
}

void readAnswer(Json &answer, const zvhost::ReadResult &r) {
    if (!r.error.empty()) throw BadRequest{r.error};
    answer["status"] = r.status;
    numberAnswer(answer, r.bits, r.untouched);
    if (r.fieldsChanged) answer["fieldsChanged"] = true;
}

// A request for a row: its fields read and checked in a fixed order, so that
// the first fault named is always the same one.
Json serveRow(Session &session, const Json &req, const FormatTableRow &row, Json answer, Json warnings) {
    const std::string rowName = zvhost::rowName(row);
    const bool informat = zvhost::isInformat(row);
    zvhost::CallSpec spec = rowSpec(req, session.baseline(), row, rowName, informat);
    const StateChange change = readLimitsAndState(req, spec);
    const std::string text = informat ? informatText(req, rowName) : std::string();
    const double value = informat ? 0 : formatValue(req, rowName);
    Session::Guard guard;
    prepareHost(session, spec, change, guard);
    if (informat) readAnswer(answer, session.calls().read(row, spec, text));
    else formatAnswer(answer, session.calls().format(row, spec, value), spec);
    if (!warnings.empty()) answer["warnings"] = warnings;
    return answer;
}

Json serve(Session &session, const Json &req) {
    Json answer;
    if (req.contains("id")) answer["id"] = req["id"];
    Json warnings = Json::array();
    for (const auto &[key, _] : req.items())
        if (!kKnownFields.count(key)) warnings.push_back("unknown field \"" + key + "\" ignored");

    if (!req.contains("name")) throw BadRequest{"name: missing (the row to call, e.g. \"NLDATE\")"};
    const std::string &name = stringField(req, "name");
    if (const FormatTableRow *row = session.row(name))
        return serveRow(session, req, *row, std::move(answer), std::move(warnings));
    if (const zvhost::Routine *routine = zvhost::findRoutine(name))
        return serveRoutine(session, req, *routine, std::move(answer), std::move(warnings));
    throw BadRequest{"name: no row or routine named \"" + name + "\""};
}

std::string dumpLine(const Json &j) {
    return j.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string errorLine(const std::string &message, const Json &id) {
    Json e;
    e["error"] = message;
    e["id"] = id;
    return dumpLine(e);
}

// nlohmann's messages start with "[json.exception.parse_error.101] ".
std::string plainMessage(const std::string &what) {
    const size_t close = what.find("] ");
    return what.rfind("[json.exception.", 0) == 0 && close != std::string::npos ? what.substr(close + 2)
                                                                                   : what;
}

} // namespace

std::string answerLine(Session &session, std::string_view line) {
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    Json req;
    try {
        req = Json::parse(line.begin(), line.end());
    } catch (const Json::exception &e) {
        size_t blank = line.find_first_not_of(" \t");
        if (blank == std::string_view::npos)
            return errorLine("empty line: expected a JSON object", nullptr);
        return errorLine("malformed JSON: " + plainMessage(e.what()), nullptr);
    }
    if (!req.is_object())
        return errorLine("a request must be a JSON object, not " + typeName(req), nullptr);
    const Json id = req.contains("id") ? req["id"] : Json(nullptr);
    try {
        return dumpLine(serve(session, req));
    } catch (const BadRequest &bad) {
        return errorLine(bad.message, id);
    } catch (const std::exception &e) {
        return errorLine(std::string("internal error: ") + plainMessage(e.what()), id);
    }
}

int runJsonLines(Session &session, int in, std::FILE *out) {
    forEachLine(in, out, [&](const std::string &line, size_t tooLong) {
        const std::string answer = tooLong ? errorLine(tooLongMessage(tooLong), nullptr) : answerLine(session, line);
        std::fwrite(answer.data(), 1, answer.size(), out);
        std::fputc('\n', out);
        return true;
    });
    std::fflush(out);
    return 0;
}

} // namespace zvfmt
