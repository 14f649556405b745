#include <meshio/PlyRowWriter.h>

#include <meshio/NumberText.h>
#include <meshio/OutputFile.h>
#include <meshio/ReadFile.h>

#include <algorithm>
#include <cstring>

namespace MeshIo {
namespace Ply {
namespace {

// Rows are put together field by field in blocks that stay in the nearer caches.
constexpr std::size_t kRowsPerBlock = 1024;
constexpr std::size_t kBlocksPerPoll = 1024;
constexpr std::size_t kTextPerWrite = std::size_t(1) << 20;

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
        for (const Field& field : m_element.fields) {
            switch (sizeOf(field.type)) {
                case 1:
                    put<1>(field, row, count);
                    break;
                case 2:
                    put<2>(field, row, count);
                    break;
                case 4:
                    put<4>(field, row, count);
                    break;
                default:
                    put<8>(field, row, count);
                    break;
            }
        }
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

void appendScalars(std::string& text, Scalar type, const unsigned char* from, std::size_t count)
{
    withScalar(type, [&](auto value) {
        for (std::size_t k = 0; k < count; ++k) {
            std::memcpy(&value, from + k * sizeof(value), sizeof(value));
            appendNumber(text, value);
            text += ' ';
        }
    });
}

void appendRow(std::string& text, const ElementFields& element, std::size_t row)
{
    for (const Field& field : element.fields) {
        if (!field.isList()) {
            appendScalars(text, field.type, field.values + row * field.rowBytes(), field.scalars);
            continue;
        }
        appendNumber(text, static_cast<unsigned long long>(listLength(field, row)));
        text += ' ';
        appendScalars(text, field.type, field.values + field.offsets[row] * field.rowBytes(),
                      listLength(field, row));
    }
    text.back() = '\n';
}

void writeText(const ElementFields& element, OutputFile& output)
{
    std::string text;
    for (std::size_t row = 0; row < element.count; ++row) {
        if (row % (kRowsPerBlock * kBlocksPerPoll) == 0)
            throwIfCancelled();
        appendRow(text, element, row);
        if (text.size() > kTextPerWrite) {
            output.write(text);
            text.clear();
        }
    }
    output.write(text);
}

template <bool Swap>
void writeBinary(const ElementFields& element, OutputFile& output)
{
    BinaryBlocks<Swap> blocks(element);
    for (std::size_t row = 0; row < element.count; row += kRowsPerBlock) {
        if (row / kRowsPerBlock % kBlocksPerPoll == 0)
            throwIfCancelled();
        output.write(blocks.make(row, std::min(kRowsPerBlock, element.count - row)));
    }
}

}  // namespace

void writeRows(const ElementFields& element, MeshFormat format, OutputFile& output)
{
    if (format == MeshFormat::PlyAscii)
        writeText(element, output);
    else if (needsSwap(format))
        writeBinary<true>(element, output);
    else
        writeBinary<false>(element, output);
}

}  // namespace Ply
}  // namespace MeshIo
