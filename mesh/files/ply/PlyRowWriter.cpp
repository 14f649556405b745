#include "files/ply/PlyRowWriter.h"

#include "files/TextWriter.h"
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

    /// Puts the rows together and returns their bytes, which live until the next call.
    std::string_view make(std::size_t row, std::size_t count)
    {
        findPlaces(row, count);
        for (const Field& field : m_element.fields)
            withScalarSize(sizeOf(field.type), [&](auto size) { put<size>(field, row, count); });
        return {reinterpret_cast<const char*>(m_bytes.data()), m_size};
    }

private:
    void findPlaces(std::size_t row, std::size_t count)
    {
        std::size_t fixed = 0;
        for (const Field& field : m_element.fields)
            fixed += field.isList() ? sizeOf(field.countType) : field.rowBytes();
        std::fill_n(m_places, count, fixed);
        for (const Field& field : m_element.fields)
            for (std::size_t i = 0; field.isList() && i < count; ++i)
                m_places[i] += listLength(field, row + i) * sizeOf(field.type);
        m_size = 0;
        for (std::size_t i = 0; i < count; ++i)
            m_size += std::exchange(m_places[i], m_size);
        if (m_bytes.size() < m_size)
            m_bytes.resize(m_size);
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
            unsigned char* const to = m_bytes.data() + m_places[i];
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
        unsigned char* const to = m_bytes.data() + m_places[i];
        copyScalars<Size, Swap>(to, from, scalars);
        m_places[i] += scalars * Size;
    }

    const ElementFields& m_element;
    std::vector<unsigned char> m_bytes;
    std::size_t m_size = 0;
    std::size_t m_places[kRowsPerBlock];  // where the next field of each row begins
};

void writeScalars(Scalar type, const unsigned char* from, std::size_t count, TextWriter& out)
{
    withScalar(type, [&](auto value) {
        for (std::size_t k = 0; k < count; ++k) {
            std::memcpy(&value, from + k * sizeof(value), sizeof(value));
            out << (k > 0 ? " " : "") << value;
        }
    });
}

void writeTextRow(const ElementFields& element, std::size_t row, TextWriter& out)
{
    const char* before = "";
    for (const Field& field : element.fields) {
        out << std::exchange(before, " ");
        const std::size_t first = field.isList() ? field.offsets[row] : row;
        const std::size_t count = field.isList() ? listLength(field, row) : field.scalars;
        if (field.isList())
            out << count << (count > 0 ? " " : "");
        writeScalars(field.type, field.values + first * field.rowBytes(), count, out);
    }
    out << '\n';
}

template <bool Swap>
void writeBinary(const ElementFields& element, OutputFile& output)
{
    BinaryBlocks<Swap> blocks(element);
    forEachBlock(element.count, [&](std::size_t row, std::size_t count) {
        output.write(blocks.make(row, count));
    });
}

void writeText(const ElementFields& element, OutputFile& output)
{
    TextWriter out(output);
    for (std::size_t row = 0; row < element.count; ++row)
        writeTextRow(element, row, out);
    out.flush();
}

}  // namespace

void writeRows(const ElementFields& element, Encoding encoding, OutputFile& output)
{
    if (encoding == Encoding::Ascii)
        writeText(element, output);
    else if (needsSwap(encoding))
        writeBinary<true>(element, output);
    else
        writeBinary<false>(element, output);
}

}  // namespace TessaryMesh::Ply
