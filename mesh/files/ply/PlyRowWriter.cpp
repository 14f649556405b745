#include "files/ply/PlyRowWriter.h"

#include "files/ply/PlyBytes.h"

#include <algorithm>
#include <cstring>

namespace TessaryMesh::Ply {
namespace {

std::size_t listLength(const Field& field, std::size_t row)
{
    return std::size_t(field.offsets[row + 1] - field.offsets[row]) * field.scalars;
}

template <bool Swap>
class BinaryBlocks {
public:
    explicit BinaryBlocks(const ElementFields& element) : m_element(element) {}

    /// Appends at most kRowsPerBlock rows.
    void append(std::size_t row, std::size_t count, TextBuffer& out)
    {
        m_bytes = reinterpret_cast<unsigned char*>(out.extend(findPlaces(row, count)));
        for (const Field& field : m_element.fields)
            withScalarSize(sizeOf(field.type), [&](auto size) { put<size>(field, row, count); });
    }

private:
    // Returns the bytes of all rows.
    std::size_t findPlaces(std::size_t row, std::size_t count)
    {
        std::size_t fixed = 0;
        for (const Field& field : m_element.fields)
            fixed += field.isList() ? sizeOf(field.countType) : field.rowBytes();
        std::fill_n(m_places, count, fixed);
        for (const Field& field : m_element.fields)
            for (std::size_t i = 0; field.isList() && i < count; ++i)
                m_places[i] += listLength(field, row + i) * sizeOf(field.type);
        std::size_t size = 0;
        for (std::size_t i = 0; i < count; ++i)
            size += std::exchange(m_places[i], size);
        return size;
    }

    template <std::size_t Size>
    void put(const Field& field, std::size_t row, std::size_t count)
    {
        if (field.isList()) {
            putCounts(field, row, count);
            putLists<Size>(field, row, count);
        } else if (field.scalars == 1) {
            putRows<Size, 1>(field, row, count);
        } else if (field.scalars == 3) {
            putRows<Size, 3>(field, row, count);
        } else {
            putRows<Size, 0>(field, row, count);
        }
    }

    // A row's scalars, `Fixed` of them where that is known.
    template <std::size_t Size, std::size_t Fixed>
    void putRows(const Field& field, std::size_t row, std::size_t count)
    {
        const std::size_t scalars = Fixed ? Fixed : field.scalars;
        const unsigned char* from = field.values + row * scalars * Size;
        for (std::size_t i = 0; i < count; ++i, from += scalars * Size)
            putScalars<Size>(i, from, scalars);
    }

    void putCounts(const Field& field, std::size_t row, std::size_t count)
    {
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t length = listLength(field, row + i);
            unsigned char* const to = m_bytes + m_places[i];
            if (field.countType == Scalar::UInt8) {
                *to = static_cast<unsigned char>(length);
                m_places[i] += 1;
                continue;
            }
            const auto wide = static_cast<std::uint32_t>(length);
            copyScalars<sizeof(wide), Swap>(to, reinterpret_cast<const unsigned char*>(&wide), 1);
            m_places[i] += sizeof(wide);
        }
    }

    template <std::size_t Size>
    void putLists(const Field& field, std::size_t row, std::size_t count)
    {
        const std::size_t step = field.scalars * Size;
        for (std::size_t i = 0; i < count; ++i)
            putScalars<Size>(i, field.values + field.offsets[row + i] * step,
                             listLength(field, row + i));
    }

    template <std::size_t Size>
    void putScalars(std::size_t i, const unsigned char* from, std::size_t scalars)
    {
        unsigned char* const to = m_bytes + m_places[i];
        copyScalars<Size, Swap>(to, from, scalars);
        m_places[i] += scalars * Size;
    }

    const ElementFields& m_element;
    unsigned char* m_bytes = nullptr;
    std::size_t m_places[kRowsPerBlock];  // where the next field of each row begins
};

void putScalars(Scalar type, const unsigned char* from, std::size_t count, TextBuffer& out)
{
    withScalar(type, [&](auto value) {
        for (std::size_t k = 0; k < count; ++k) {
            std::memcpy(&value, from + k * sizeof(value), sizeof(value));
            out << (k > 0 ? " " : "") << value;
        }
    });
}

void putTextRow(const ElementFields& element, std::size_t row, TextBuffer& out)
{
    const char* before = "";
    for (const Field& field : element.fields) {
        out << std::exchange(before, " ");
        const std::size_t first = field.isList() ? field.offsets[row] : row;
        const std::size_t count = field.isList() ? listLength(field, row) : field.scalars;
        if (field.isList())
            out << count << (count > 0 ? " " : "");
        putScalars(field.type, field.values + first * field.rowBytes(), count, out);
    }
    out << '\n';
}

template <bool Swap>
void putBinaryRows(const ElementFields& element, std::size_t begin, std::size_t end,
                   TextBuffer& out)
{
    BinaryBlocks<Swap> blocks(element);
    forEachFewRows(begin, end,
                   [&](std::size_t row, std::size_t count) { blocks.append(row, count, out); });
}

void putTextRows(const ElementFields& element, std::size_t begin, std::size_t end, TextBuffer& out)
{
    for (std::size_t row = begin; row < end; ++row)
        putTextRow(element, row, out);
}

}  // namespace

RowSection rowsOf(const ElementFields& element, Encoding encoding)
{
    const auto put = encoding == Encoding::Ascii ? putTextRows
                     : needsSwap(encoding)       ? putBinaryRows<true>
                                                 : putBinaryRows<false>;
    return {element.count, [&element, put](std::size_t begin, std::size_t end, TextBuffer& out) {
                put(element, begin, end, out);
            }};
}

}  // namespace TessaryMesh::Ply
