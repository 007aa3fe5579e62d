// zvlocfmt._core: columns of numpy arrays through the reference host. One host
// per process, the module loaded at first use; the column work runs without
// the GIL, so threads of one process format distinct columns at once.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <optional>

#include "cldr.hpp"
#include "zvhost.hpp"

namespace py = pybind11;

namespace {

zvhost::Host &host() {
    static zvhost::Host *h = [] {
        auto *made = new zvhost::Host; // lives as long as the process: columns may run at exit
        if (!made->loadModule()) throw std::runtime_error("the zvlocfmt module could not be loaded");
        return made;
    }();
    return *h;
}

// A column, checked as the tool checks its arguments; ValueError in the tool's words.
std::unique_ptr<zvhost::ColumnFormatter> column(const std::string &rowName, std::optional<int> width,
                                                std::optional<int> decimals, const std::string &locale,
                                                const std::optional<std::string> &encoding, bool measureBytes,
                                                bool wantInformat) {
    const FormatTableRow *row = zvhost::findRow(host().instance()->formatTable, rowName);
    if (!row) throw py::value_error("no format or informat named " + rowName);
    const std::string name = zvhost::rowName(*row);
    if (zvhost::isInformat(*row) != wantInformat)
        throw py::value_error(name + (wantInformat ? " is a format; use format()" : " is an informat; use read()"));
    zvhost::CallSpec spec;
    spec.locale = locale;
    spec.encoding = encoding.value_or("UTF-8");
    spec.entry = encoding && !wantInformat ? zvhost::Entry::Byte : zvhost::Entry::Wide;
    spec.measureBytes = measureBytes;
    spec.width = width.value_or(int(row->defaultWidth));
    spec.decimals = decimals.value_or(int(row->defaultDecimals));
    if (spec.width < 1 || spec.width > int(row->maxWidth))
        throw py::value_error(name + ": width " + std::to_string(spec.width) + " is out of range (" +
                              std::to_string(row->minWidth) + ".." + std::to_string(row->maxWidth) + ")");
    if (spec.decimals < 0 || spec.decimals > int(row->maxDecimals))
        throw py::value_error(name + ": decimals " + std::to_string(spec.decimals) + " is out of range (0.." +
                              std::to_string(row->maxDecimals) + ")");
    auto c = std::make_unique<zvhost::ColumnFormatter>(host(), name, spec);
    if (!c->error().empty()) throw py::value_error(c->error());
    return c;
}

// A NaN that is not one of the module's missing values stands for the plain one.
double asValue(double v) {
    return std::isnan(v) && (std::bit_cast<uint64_t>(v) >> 48) != 0xFFFF ? zvhost::missingValue('.') : v;
}

py::tuple formatColumn(const std::string &row, py::array_t<double, py::array::c_style | py::array::forcecast> values,
                 std::optional<int> width, std::optional<int> decimals, const std::string &locale,
                 const std::optional<std::string> &encoding, bool measureBytes) {
    auto c = column(row, width, decimals, locale, encoding, measureBytes, false);
    const size_t n = size_t(values.size());
    const size_t units = size_t(std::max(c->fieldUnits(), 1));
    const std::vector<py::ssize_t> shape{py::ssize_t(n)};
    py::array texts(py::dtype("U" + std::to_string(units)), shape);
    py::array_t<int32_t> statuses(shape);
    auto *out = static_cast<char32_t *>(texts.mutable_data());
    int32_t *status = statuses.mutable_data();
    const double *in = values.data();
    {
        py::gil_scoped_release unlocked;
        for (size_t i = 0; i < n; ++i) {
            status[i] = c->format(asValue(in[i]));
            const std::u16string_view text = c->text();
            char32_t *field = out + i * units;
            // Most texts hold no surrogate: each unit is a character, widened as it stands.
            size_t k = std::min(text.size(), units);
            bool surrogates = false;
            for (size_t j = 0; j < k; ++j) {
                field[j] = text[j];
                surrogates |= text[j] >= 0xD800 && text[j] < 0xE000;
            }
            if (surrogates) {
                k = 0;
                for (size_t j = 0; j < text.size() && k < units; ++j) {
                    char32_t u = text[j];
                    if (u >= 0xD800 && u < 0xDC00 && j + 1 < text.size() && text[j + 1] >= 0xDC00 &&
                        text[j + 1] < 0xE000)
                        u = 0x10000 + ((u - 0xD800) << 10) + (text[++j] - 0xDC00);
                    field[k++] = u;
                }
            }
            std::fill(field + k, field + units, U'\0');
        }
    }
    return py::make_tuple(texts, statuses);
}

py::tuple readColumn(const std::string &row, py::array texts, std::optional<int> width, std::optional<int> decimals,
               const std::string &locale, const std::optional<std::string> &encoding) {
    if (texts.dtype().kind() != 'U') throw py::value_error("texts must be str");
    auto c = column(row, width, decimals, locale, encoding, false, true);
    py::array contiguous = py::array::ensure(texts, py::array::c_style);
    const size_t n = size_t(contiguous.size());
    const size_t units = size_t(contiguous.itemsize()) / 4;
    const std::vector<py::ssize_t> shape{py::ssize_t(n)};
    py::array_t<double> values(shape);
    py::array marks(py::dtype("U1"), shape);
    py::array_t<int32_t> statuses(shape);
    const auto *in = static_cast<const char32_t *>(contiguous.data());
    double *value = values.mutable_data();
    auto *mark = static_cast<char32_t *>(marks.mutable_data());
    int32_t *status = statuses.mutable_data();
    {
        py::gil_scoped_release unlocked;
        std::u16string text;
        for (size_t i = 0; i < n; ++i) {
            const char32_t *field = in + i * units;
            size_t len = units;
            while (len > 0 && field[len - 1] == 0) --len;
            text.clear();
            for (size_t j = 0; j < len; ++j) {
                const char32_t u = field[j];
                if (u >= 0x10000 && u <= 0x10FFFF) {
                    text.push_back(char16_t(0xD7C0 + (u >> 10)));
                    text.push_back(char16_t(0xDC00 | (u & 0x3FF)));
                } else {
                    text.push_back(u > 0x10FFFF ? u'\uFFFD' : char16_t(u));
                }
            }
            double v = 0;
            status[i] = c->read(std::u16string_view(text), v);
            const char m = zvhost::missingMark(v);
            mark[i] = char32_t(static_cast<unsigned char>(m));
            value[i] = m ? std::nan("") : v;
        }
    }
    return py::make_tuple(values, marks, statuses);
}

py::list rows() {
    py::list all;
    for (const FormatTableRow *row : zvhost::tableRows(host().instance()->formatTable)) {
        py::dict d;
        d["name"] = zvhost::rowName(*row);
        d["kind"] = zvhost::isInformat(*row) ? "informat" : "format";
        d["minWidth"] = row->minWidth;
        d["maxWidth"] = row->maxWidth;
        d["defaultWidth"] = row->defaultWidth;
        d["minDecimals"] = row->minDecimals;
        d["maxDecimals"] = row->maxDecimals;
        d["defaultDecimals"] = row->defaultDecimals;
        d["state"] = row->wideEntry ? "ready" : "pending";
        all.append(d);
    }
    return all;
}

// The 189 items of a locale as the module decodes them for the encoding.
std::vector<std::string> items(const std::string &locale, const std::optional<std::string> &encoding) {
    auto c = column("NLNUM", std::nullopt, std::nullopt, locale, encoding, false, false);
    const LocaleBlock *block = c->block();
    if (!block) throw py::value_error("the locale block of \"" + locale + "\" could not be built");
    std::vector<std::string> texts;
    for (const LocaleItem &item : block->items)
        texts.push_back(zvhost::utf8(std::u16string_view(item.text, size_t(std::clamp<int64_t>(item.length, 0, 160)))));
    return texts;
}

double missing(const std::string &mark) {
    if (mark.size() != 1 || !(mark == "." || mark == "_" || (mark[0] >= 'A' && mark[0] <= 'Z')))
        throw py::value_error("a missing mark is \".\", \"A\" to \"Z\" or \"_\", not \"" + mark + "\"");
    return zvhost::missingValue(mark[0]);
}

} // namespace

PYBIND11_MODULE(_core, m) {
    m.doc() = "zvlocfmt columns through the reference host";
    m.def("format", &formatColumn, py::arg("row"), py::arg("values"), py::arg("width"), py::arg("decimals"),
          py::arg("locale"), py::arg("encoding"), py::arg("measure_bytes"));
    m.def("read", &readColumn, py::arg("row"), py::arg("texts"), py::arg("width"), py::arg("decimals"), py::arg("locale"),
          py::arg("encoding"));
    m.def("rows", &rows);
    m.def("locales", &zvhost::availableLocales);
    m.def("items", &items, py::arg("locale"), py::arg("encoding"));
    m.def("missing", &missing, py::arg("mark") = ".");
}
