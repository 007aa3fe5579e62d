// Locale definition files.
//
// A plain text file (UTF-8), one item a line: the item number, a tab, and
// the raw text of the item. Lines that begin with '#' and blank lines are
// skipped. The raw text is taken as it stands, <Uxxxx> escapes included;
// characters outside ASCII are written as escapes, so that the table stays
// single-byte text. An item may appear once in a file. Every error names
// its line.
#include "cldr.hpp"

#include <filesystem>
#include <fstream>
#include <sstream>

namespace zvhost {

namespace {

// Decodes one UTF-8 sequence at text[i]; false when it is malformed.
bool decodeUtf8(std::string_view text, size_t &i, char32_t &out) {
    const auto byte = [&](size_t k) { return static_cast<unsigned char>(text[k]); };
    unsigned char lead = byte(i);
    size_t extra = 0;
    char32_t value = 0;
    if (lead < 0x80) {
        out = lead;
        ++i;
        return true;
    }
    if (lead >= 0xC2 && lead <= 0xDF) {
        extra = 1;
        value = lead & 0x1F;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        extra = 2;
        value = lead & 0x0F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        extra = 3;
        value = lead & 0x07;
    } else {
        return false;
    }
    if (i + extra >= text.size()) return false;
    for (size_t k = 1; k <= extra; ++k) {
        unsigned char c = byte(i + k);
        if ((c & 0xC0) != 0x80) return false;
        value = (value << 6) | (c & 0x3F);
    }
    // Overlong forms, surrogates and values past U+10FFFF are malformed.
    if ((extra == 2 && value < 0x800) || (extra == 3 && (value < 0x10000 || value > 0x10FFFF)) ||
        (value >= 0xD800 && value <= 0xDFFF))
        return false;
    out = value;
    i += extra + 1;
    return true;
}

bool isBlankLine(std::string_view line) {
    for (char c : line)
        if (c != ' ' && c != '\t') return false;
    return true;
}

} // namespace

bool rawItemText(std::string_view text, std::string &raw, std::string &error) {
    std::u16string wide;
    size_t i = 0;
    while (i < text.size()) {
        char32_t c = 0;
        if (!decodeUtf8(text, i, c)) {
            error = "not UTF-8";
            return false;
        }
        if (c >= 0x10000) {
            char32_t v = c - 0x10000;
            wide += static_cast<char16_t>(0xD800 + (v >> 10));
            wide += static_cast<char16_t>(0xDC00 + (v & 0x3FF));
        } else {
            wide += static_cast<char16_t>(c);
        }
    }
    // Escapes already in the text stay as written: only characters outside
    // ASCII are escaped here.
    raw.clear();
    for (char16_t c : wide) {
        if (c < 0x80) raw += static_cast<char>(c);
        else raw += escapeForTable(std::u16string_view(&c, 1));
    }
    if (raw.size() > kRawItemCapacity) {
        error = "takes " + std::to_string(raw.size()) + " bytes; an item holds " + std::to_string(kRawItemCapacity);
        return false;
    }
    return true;
}

bool parseLocaleDefinition(std::string_view content, std::map<int, std::string> &items, std::string &error) {
    std::map<int, std::string> parsed;
    std::map<int, int> lineOf;
    int lineNumber = 0;
    size_t start = 0;
    while (start < content.size()) {
        size_t end = content.find('\n', start);
        if (end == std::string_view::npos) end = content.size();
        std::string_view line = content.substr(start, end - start);
        start = end + 1;
        ++lineNumber;
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        if (lineNumber == 1 && line.substr(0, 3) == "\xEF\xBB\xBF") line.remove_prefix(3);
        if (isBlankLine(line) || line.front() == '#') continue;

        const std::string where = "line " + std::to_string(lineNumber) + ": ";
        size_t tab = line.find('\t');
        if (tab == std::string_view::npos) {
            error = where + "expected an item number, a tab and the text";
            return false;
        }
        std::string_view number = line.substr(0, tab);
        if (number.empty() || number.size() > 3) {
            error = where + "bad item number \"" + std::string(number) + "\"";
            return false;
        }
        int item = 0;
        for (char c : number) {
            if (c < '0' || c > '9') {
                error = where + "bad item number \"" + std::string(number) + "\"";
                return false;
            }
            item = item * 10 + (c - '0');
        }
        if (item >= ZV_LOCALE_TABLE_ITEMS) {
            error = where + "item " + std::to_string(item) + " is past the last item, " +
                    std::to_string(ZV_LOCALE_TABLE_ITEMS - 1);
            return false;
        }
        if (lineOf.count(item) != 0) {
            error = where + "item " + std::to_string(item) + " is already defined on line " +
                    std::to_string(lineOf[item]);
            return false;
        }

        std::string raw, why;
        if (!rawItemText(line.substr(tab + 1), raw, why)) {
            error = where + (why == "not UTF-8" ? "the text is not UTF-8"
                                                : "the text of item " + std::to_string(item) + " " + why);
            return false;
        }
        parsed[item] = raw;
        lineOf[item] = lineNumber;
    }
    for (auto &[item, raw] : parsed) items[item] = raw;
    return true;
}

bool applyLocaleFile(const std::string &path, std::vector<uint8_t> &table, std::string &error) {
    std::error_code code;
    std::ifstream file(path, std::ios::binary);
    if (!file || std::filesystem::is_directory(path, code)) {
        error = "cannot read the locale file " + path;
        return false;
    }
    std::ostringstream content;
    content << file.rdbuf();
    if (file.bad()) {
        error = "cannot read the locale file " + path;
        return false;
    }
    std::map<int, std::string> items;
    std::string parseError;
    if (!parseLocaleDefinition(content.str(), items, parseError)) {
        error = path + ": " + parseError;
        return false;
    }
    if (table.size() < ZV_LOCALE_TABLE_SIZE) table.resize(ZV_LOCALE_TABLE_SIZE, 0);
    for (const auto &[item, raw] : items) setRawItem(table, item, raw);
    return true;
}

} // namespace zvhost
