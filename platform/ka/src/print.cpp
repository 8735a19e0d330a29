// The display of arrays. Each kind of array has a body printer; numbers of one array share
// one style (integers, four decimals or exponent form) and one column width, so columns line
// up the way a user of the language expects.
#include <ka/print.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <complex>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <mutex>
#include <sstream>
#include <type_traits>
#include <vector>

#include "array_record.hpp"

namespace ka::detail {
namespace {

// --- numbers --------------------------------------------------------------------------------

enum class Style { integer, fixed, exponent };

Style chooseStyle(const std::vector<double>& values) {
    double largest = 0;
    bool integral = true;
    for (double v : values) {
        if (!std::isfinite(v)) continue;
        largest = std::max(largest, std::abs(v));
        integral = integral && v == std::trunc(v);
    }
    if (integral && largest < 1e9) return Style::integer;
    if (largest >= 1e-3 && largest < 1e5) return Style::fixed;
    return Style::exponent;
}

std::string formatReal(double v, Style style) {
    if (std::isnan(v)) return "NaN";
    if (std::isinf(v)) return v > 0 ? "Inf" : "-Inf";
    if (v == 0) v = 0;  // no "-0"
    char buffer[64];
    std::to_chars_result result{};
    if (style == Style::integer)
        result = std::to_chars(buffer, buffer + sizeof buffer, v, std::chars_format::fixed, 0);
    else if (style == Style::fixed)
        result = std::to_chars(buffer, buffer + sizeof buffer, v, std::chars_format::fixed, 4);
    else
        result = std::to_chars(buffer, buffer + sizeof buffer, v, std::chars_format::scientific, 4);
    return std::string(buffer, result.ptr);
}

template <class T>
std::string formatInteger(T v) {
    char buffer[32];
    auto result = std::to_chars(buffer, buffer + sizeof buffer, v);
    return std::string(buffer, result.ptr);
}

// Element values as double: part 0 real, part 1 imaginary.
template <class T>
std::vector<double> partValues(const void* data, std::size_t count, bool complex, int part) {
    const T* values = static_cast<const T*>(data);
    std::vector<double> out(count);
    for (std::size_t i = 0; i < count; ++i)
        out[i] = static_cast<double>(complex ? values[2 * i + static_cast<std::size_t>(part)]
                                             : (part == 0 ? values[i] : T{}));
    return out;
}

template <class T>
std::vector<std::string> integerTexts(const void* data, std::size_t count) {
    std::vector<std::string> out(count);
    for (std::size_t i = 0; i < count; ++i) {
        const T v = static_cast<const T*>(data)[i];
        if constexpr (std::is_same_v<T, bool>)
            out[i] = std::string(1, v ? '1' : '0');
        else
            out[i] = formatInteger(v);
    }
    return out;
}

std::vector<double> parts(kaClassID id, const void* data, std::size_t count, bool complex,
                          int part) {
    switch (id) {
        case kaDOUBLE_CLASS: return partValues<double>(data, count, complex, part);
        case kaSINGLE_CLASS: return partValues<float>(data, count, complex, part);
        case kaINT8_CLASS: return partValues<std::int8_t>(data, count, complex, part);
        case kaUINT8_CLASS: return partValues<std::uint8_t>(data, count, complex, part);
        case kaINT16_CLASS: return partValues<std::int16_t>(data, count, complex, part);
        case kaUINT16_CLASS: return partValues<std::uint16_t>(data, count, complex, part);
        case kaINT32_CLASS: return partValues<std::int32_t>(data, count, complex, part);
        case kaUINT32_CLASS: return partValues<std::uint32_t>(data, count, complex, part);
        case kaINT64_CLASS: return partValues<std::int64_t>(data, count, complex, part);
        case kaUINT64_CLASS: return partValues<std::uint64_t>(data, count, complex, part);
        case kaLOGICAL_CLASS: return partValues<bool>(data, count, complex, part);
        default: return {};
    }
}

// Exact texts for real integer classes, whose 64-bit values a double cannot hold.
std::vector<std::string> exactIntegerTexts(kaClassID id, const void* data, std::size_t count) {
    switch (id) {
        case kaINT8_CLASS: return integerTexts<std::int8_t>(data, count);
        case kaUINT8_CLASS: return integerTexts<std::uint8_t>(data, count);
        case kaINT16_CLASS: return integerTexts<std::int16_t>(data, count);
        case kaUINT16_CLASS: return integerTexts<std::uint16_t>(data, count);
        case kaINT32_CLASS: return integerTexts<std::int32_t>(data, count);
        case kaUINT32_CLASS: return integerTexts<std::uint32_t>(data, count);
        case kaINT64_CLASS: return integerTexts<std::int64_t>(data, count);
        case kaUINT64_CLASS: return integerTexts<std::uint64_t>(data, count);
        default: return integerTexts<bool>(data, count);
    }
}

bool isFloating(kaClassID id) {
    return id == kaDOUBLE_CLASS || id == kaSINGLE_CLASS;
}

// Joins by appending. Also keeps clear of a false -Wrestrict of GCC 12 on "text" + string.
std::string concat(std::initializer_list<std::string_view> pieces) {
    std::string out;
    for (std::string_view p : pieces) out += p;
    return out;
}

std::size_t longest(const std::vector<std::string>& texts) {
    std::size_t n = 0;
    for (const std::string& t : texts) n = std::max(n, t.size());
    return n;
}

std::string padLeft(const std::string& text, std::size_t width) {
    return text.size() >= width ? text : std::string(width - text.size(), ' ') + text;
}

// The texts of `count` elements, and the width of the column each is shown in.
struct ElementTexts {
    std::vector<std::string> texts;
    std::size_t width = 0;
};

ElementTexts elementTexts(kaClassID id, const void* data, std::size_t count, bool complex) {
    ElementTexts out;
    if (!complex && !isFloating(id)) {
        out.texts = exactIntegerTexts(id, data, count);
        out.width = longest(out.texts) + (id == kaLOGICAL_CLASS ? 3 : 2);
        return out;
    }
    std::vector<double> re = parts(id, data, count, complex, 0);
    if (!complex) {
        const Style style = chooseStyle(re);
        for (double v : re) out.texts.push_back(formatReal(v, style));
        const std::size_t len = longest(out.texts);
        out.width = style == Style::integer ? std::max<std::size_t>(len + 3, 6)
                                            : len + (style == Style::fixed ? 4 : 3);
        return out;
    }
    std::vector<double> im = parts(id, data, count, complex, 1);
    std::vector<double> both = re;
    both.insert(both.end(), im.begin(), im.end());
    const Style style = isFloating(id) ? chooseStyle(both) : Style::integer;
    std::vector<std::string> reTexts, imTexts;
    for (std::size_t i = 0; i < count; ++i) {
        reTexts.push_back(formatReal(re[i], style));
        imTexts.push_back(formatReal(std::abs(im[i]), style));
    }
    const std::size_t reWidth = longest(reTexts), imWidth = longest(imTexts);
    for (std::size_t i = 0; i < count; ++i)
        out.texts.push_back(padLeft(reTexts[i], reWidth) + (std::signbit(im[i]) ? " - " : " + ") +
                            padLeft(imTexts[i], imWidth) + "i");
    out.width = longest(out.texts) + 3;
    return out;
}

// --- shared pieces --------------------------------------------------------------------------

std::string sizeText(const kaArray_tag* a) {
    std::string text;
    for (std::size_t d : matrix::dimensions(a)) {
        if (!text.empty()) text += 'x';
        text += std::to_string(d);
    }
    return text;
}

std::string charRowText(const kaArray_tag* a, std::size_t row) {
    std::span<const std::size_t> dims = matrix::dimensions(a);
    const std::size_t rows = dims[0],
                      columns = matrix::numberOfElements(a) / std::max<std::size_t>(rows, 1);
    std::u16string text(columns, u' ');
    const auto* units = static_cast<const char16_t*>(a->data);
    for (std::size_t c = 0; c < columns; ++c) text[c] = units[c * rows + row];
    return concat({"'", toUtf8(text), "'"});
}

bool isCharRow(const kaArray_tag* a) {
    return matrix::classId(a) == kaCHAR_CLASS && matrix::isTwoD(a) &&
           (matrix::dimensions(a)[0] == 1 || matrix::numberOfElements(a) == 0);
}

std::string typeText(const kaArray_tag* a) {
    const Kind kind = record(a).kind;
    if (kind == Kind::object) return objectClassName(a);
    std::string text = sizeText(a) + " ";
    if (matrix::isSparse(a)) text += "sparse ";
    if (matrix::isComplex(a)) text += "complex ";
    return text + std::string(className(matrix::classId(a)));
}

// A one-line form of a value inside a cell or struct display; `bare` leaves a scalar
// number without brackets, as a struct field shows it.
std::string summary(const kaArray_tag* a, bool bare) {
    if (a == nullptr) return "[]";
    const Kind kind = record(a).kind;
    if (kind == Kind::function) return concat({"@", functionName(a)});
    if (kind == Kind::object) return concat({sizeText(a), " ", objectClassName(a)});
    if (isCharRow(a)) return charRowText(a, 0);
    if (kind == Kind::cell) return concat({"{", sizeText(a), " cell}"});
    const std::size_t numel = matrix::numberOfElements(a);
    if (kind == Kind::numeric && numel == 0) return "[]";
    std::span<const std::size_t> dims = matrix::dimensions(a);
    const bool shortRow = matrix::isTwoD(a) && dims[0] == 1 && numel <= 10;
    if (kind == Kind::numeric && matrix::classId(a) != kaCHAR_CLASS && shortRow) {
        std::vector<std::string> texts =
            elementTexts(matrix::classId(a), a->data, numel, matrix::isComplex(a)).texts;
        std::string joined;
        for (const std::string& t : texts) joined += (joined.empty() ? "" : " ") + t;
        return numel == 1 && bare ? joined : concat({"[", joined, "]"});
    }
    return bare ? concat({"[", typeText(a), "]"}) : typeText(a);
}

// --- bodies ---------------------------------------------------------------------------------

void printHeader(std::ostream& out, std::string_view name) {
    if (!name.empty()) out << name << " =\n\n";
}

// Column-major pages of m-by-n elements; one page per index past the second dimension.
template <class RowPrinter>
void printPages(std::ostream& out, const kaArray_tag* a, std::string_view name, RowPrinter row) {
    std::span<const std::size_t> dims = matrix::dimensions(a);
    const std::size_t rows = dims[0], columns = dims.size() > 1 ? dims[1] : 1;
    const std::size_t pages = matrix::numberOfElements(a) / (rows * columns);
    for (std::size_t p = 0; p < pages; ++p) {
        if (dims.size() > 2) {
            std::string index;
            for (std::size_t d = 2, rest = p; d < dims.size(); rest /= dims[d], ++d)
                index += concat({",", std::to_string(rest % dims[d] + 1)});
            out << name << "(:,:" << index << ") =\n\n";
        } else {
            printHeader(out, name);
        }
        for (std::size_t r = 0; r < rows; ++r)
            out << row(p * rows * columns, r, rows, columns) << "\n";
        out << "\n";
    }
}

void printNumeric(std::ostream& out, const kaArray_tag* a, std::string_view name) {
    const std::size_t numel = matrix::numberOfElements(a);
    if (numel == 0) {
        printHeader(out, name);
        out << (matrix::classId(a) == kaCHAR_CLASS ? "    ''" : "     []") << "\n\n";
        return;
    }
    if (matrix::classId(a) == kaCHAR_CLASS) {
        printPages(out, a, name,
                   [&](std::size_t offset, std::size_t r, std::size_t rows, std::size_t columns) {
                       std::u16string text(columns, u' ');
                       const auto* units = static_cast<const char16_t*>(a->data) + offset;
                       for (std::size_t c = 0; c < columns; ++c) text[c] = units[c * rows + r];
                       return concat({"    '", toUtf8(text), "'"});
                   });
        return;
    }
    const ElementTexts texts =
        elementTexts(matrix::classId(a), a->data, numel, matrix::isComplex(a));
    printPages(out, a, name,
               [&](std::size_t offset, std::size_t r, std::size_t rows, std::size_t columns) {
                   std::string line;
                   for (std::size_t c = 0; c < columns; ++c)
                       line += padLeft(texts.texts[offset + c * rows + r], texts.width);
                   return line;
               });
}

void printSparse(std::ostream& out, const kaArray_tag* a, std::string_view name) {
    printHeader(out, name);
    const matrix::detail::SparseParts sp = matrix::detail::sparseParts(a);
    if (sp.nonZeros == 0) {
        out << "   All zero sparse: " << sizeText(a) << "\n\n";
        return;
    }
    const ElementTexts values =
        elementTexts(matrix::classId(a), a->data, sp.nonZeros, matrix::isComplex(a));
    std::vector<std::string> places;
    const std::size_t columns = matrix::dimensions(a)[1];
    for (std::size_t c = 0; c < columns; ++c)
        for (std::size_t k = sp.columnStarts[c]; k < sp.columnStarts[c + 1]; ++k)
            places.push_back(concat(
                {"(", std::to_string(sp.rowIndices[k] + 1), ",", std::to_string(c + 1), ")"}));
    const std::size_t placeWidth = longest(places);
    for (std::size_t k = 0; k < sp.nonZeros; ++k)
        out << "   " << padLeft(places[k], placeWidth) << padLeft(values.texts[k], values.width + 2)
            << "\n";
    out << "\n";
}

void printCell(std::ostream& out, const kaArray_tag* a, std::string_view name) {
    printHeader(out, name);
    if (matrix::numberOfElements(a) == 0) {
        out << "    {}\n\n";
        return;
    }
    out << "  " << sizeText(a) << " cell array\n\n";
    if (!matrix::isTwoD(a)) return;
    const std::size_t rows = matrix::dimensions(a)[0], columns = matrix::dimensions(a)[1];
    std::vector<std::string> texts;
    for (kaArray_tag* element : heldArrays(a)) {
        const std::string s = summary(element, false);
        texts.push_back(s.front() == '{' ? s : concat({"{", s, "}"}));
    }
    std::vector<std::size_t> widths(columns, 0);
    for (std::size_t i = 0; i < texts.size(); ++i)
        widths[i / rows] = std::max(widths[i / rows], texts[i].size());
    for (std::size_t r = 0; r < rows; ++r) {
        std::string line;
        for (std::size_t c = 0; c < columns; ++c) {
            const std::string& t = texts[c * rows + r];
            line +=
                concat({"    ", t, c + 1 < columns ? std::string(widths[c] - t.size(), ' ') : ""});
        }
        out << line << "\n";
    }
    out << "\n";
}

void printStruct(std::ostream& out, const kaArray_tag* a, std::string_view name) {
    printHeader(out, name);
    std::span<const std::string> names = fieldNames(a);
    if (matrix::numberOfElements(a) != 1) {
        out << "  " << sizeText(a) << " struct array "
            << (names.empty() ? "with no fields.\n" : "with fields:\n\n");
        for (const std::string& field : names) out << "    " << field << "\n";
        out << "\n";
        return;
    }
    if (names.empty()) {
        out << "  struct with no fields.\n\n";
        return;
    }
    out << "  struct with fields:\n\n";
    std::size_t width = 0;
    for (const std::string& field : names) width = std::max(width, field.size());
    for (const std::string& f : names)
        out << "    " << padLeft(f, width) << ": " << summary(ka::field(a, 0, f), true) << "\n";
    out << "\n";
}

struct Formatters {
    std::mutex mutex;
    std::map<kaClassID, ObjectFormatter> byClass;
};

Formatters& formatters() {
    static Formatters all;
    return all;
}

void printObject(std::ostream& out, const kaArray_tag* a, std::string_view name) {
    ObjectFormatter formatter;
    {
        Formatters& all = formatters();
        std::lock_guard lock(all.mutex);
        auto found = all.byClass.find(objectClassId(a));
        if (found != all.byClass.end()) formatter = found->second;
    }
    printHeader(out, name);
    if (formatter) {
        out << "    " << formatter(a) << "\n\n";
        return;
    }
    const std::string& cls = objectClassName(a);
    out << "  " << sizeText(a) << " " << (cls.empty() ? "" : cls + " ") << "object (class id "
        << static_cast<int>(objectClassId(a)) << ")\n\n";
}

}  // namespace
}  // namespace ka::detail

void ka::print(std::ostream& out, const kaArray_tag* array, std::string_view name) {
    using namespace detail;
    if (array == nullptr) {
        printHeader(out, name);
        out << "     []\n\n";
        return;
    }
    switch (record(array).kind) {
        case Kind::numeric: return printNumeric(out, array, name);
        case Kind::sparse: return printSparse(out, array, name);
        case Kind::cell: return printCell(out, array, name);
        case Kind::structure: return printStruct(out, array, name);
        case Kind::object: return printObject(out, array, name);
        case Kind::function:
            printHeader(out, name);
            out << "    @" << functionName(array) << "\n\n";
            return;
    }
}

std::string ka::toUtf8(std::u16string_view text) {
    return detail::toUtf8(text);
}

std::string ka::toDisplayString(const kaArray_tag* array, std::string_view name) {
    std::ostringstream out;
    print(out, array, name);
    return out.str();
}

void ka::setObjectFormatter(kaClassID classId, ObjectFormatter formatter) {
    detail::Formatters& all = detail::formatters();
    std::lock_guard lock(all.mutex);
    if (formatter)
        all.byClass[classId] = std::move(formatter);
    else
        all.byClass.erase(classId);
}
