#include "files/json/Json.h"

#include "base/Host.h"
#include "base/MessageText.h"
#include "base/Scalars.h"
#include "files/ArrayShape.h"
#include "files/TextWriter.h"

#include <cmath>

namespace TessaryMesh {
namespace {

void writeText(std::string_view text, TextWriter& out)
{
    constexpr const char* kDigits = "0123456789abcdef";
    const bool isText = isUtf8(text);
    out << '"';
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20)
            out << "\\u00" << kDigits[byte >> 4] << kDigits[byte & 15];
        else if (byte >= 0x80 && !isText)
            out << "\\ufffd";
        else
            out << (c == '"' || c == '\\' ? "\\" : "") << c;
    }
    out << '"';
}

template <class T>
void writeValue(const T& value, TextWriter& out)
{
    if constexpr (std::is_same_v<T, String>) {
        writeText(value.view(), out);
    } else if constexpr (std::is_same_v<T, bool>) {
        out << (value ? "true" : "false");
    } else {
        bool isNone = false;
        if constexpr (std::is_same_v<T, uint>)
            isNone = value == kNone;
        else if constexpr (std::is_floating_point_v<T>)
            isNone = !std::isfinite(value);
        isNone ? out << "null" : out << value;
    }
}

// How many values lie in one list of each dimension but the outermost, the largest first.
Shape listSizes(const Shape& shape, bool isSingle)
{
    Shape sizes;
    std::size_t size = 1;
    for (std::size_t k = shape.size(); k > (isSingle ? 0 : 1); --k)
        sizes.insert(sizes.begin(), size *= shape[k - 1]);
    return sizes;
}

template <class T>
void writeLists(const T* values, std::size_t count, const Shape& sizes, TextWriter& out)
{
    for (std::size_t i = 0; i < count; ++i) {
        out << (i > 0 ? "," : "");
        for (const std::size_t size : sizes)
            out << (i % size == 0 ? "[" : "");
        writeValue(values[i], out);
        for (const std::size_t size : sizes)
            out << ((i + 1) % size == 0 ? "]" : "");
    }
}

void writeArray(const NamedArray& array, TextWriter& out)
{
    const bool isSingle = array.width == 0;
    writeText(array.name, out);
    out << ": " << (isSingle ? "" : "[");
    visitValues(array, [&](const auto& values, const Shape& shape) {
        using T = typename std::decay_t<decltype(values)>::value_type;
        writeLists(scalarsOf(values.data()), values.size() * Scalars<T>::kCount,
                   listSizes(shape, isSingle), out);
    });
    out << (isSingle ? "" : "]");
}

}  // namespace

void writeJsonArrays(const NamedArrays& arrays, OutputFile& output)
{
    TextWriter out(output);
    const char* before = "{";
    for (const NamedArray& array : arrays) {
        out << before;
        writeArray(array, out);
        before = ",\n ";
    }
    out << (arrays.empty() ? "{}\n" : "}\n");
    out.flush();
}

}  // namespace TessaryMesh
