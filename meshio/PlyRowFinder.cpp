#include <meshio/PlyRows.h>

#include <meshio/ReadFile.h>

#include <algorithm>
#include <cstring>

namespace MeshIo {
namespace Ply {
namespace {

using Pelon::Array;
using Pelon::uint;

constexpr std::uint64_t kRowsPerPoll = std::uint64_t(1) << 20;
constexpr std::uint64_t kMostEntries = 0xFFFFFFFE;  // what 32-bit offsets can name

// The smallest size of a row: every list is empty.
std::size_t smallestRow(const Element& element)
{
    std::size_t bytes = 0;
    for (const Property& property : element.properties)
        bytes += sizeOf(property.isList() ? *property.countType : property.type);
    return bytes;
}

template <class T>
std::int64_t countAt(const unsigned char* from, bool swap)
{
    unsigned char bytes[sizeof(T)];
    std::memcpy(bytes, from, sizeof(T));
    if (swap)
        std::reverse(bytes, bytes + sizeof(T));
    T count;
    std::memcpy(&count, bytes, sizeof(T));
    return static_cast<std::int64_t>(count);
}

std::int64_t countAt(const unsigned char* from, Scalar type, bool swap)
{
    if (type == Scalar::UInt8)
        return *from;
    return withScalar(type, [&](auto value) { return countAt<decltype(value)>(from, swap); });
}

}  // namespace

RowFinder::RowFinder(std::string_view body, std::size_t byteOfBody, bool swap,
                     const std::string& fileName)
    : m_fileName(fileName),
      m_begin(reinterpret_cast<const unsigned char*>(body.data())),
      m_position(m_begin),
      m_end(m_begin + body.size()),
      m_byteOfBody(byteOfBody),
      m_swap(swap)
{}

void RowFinder::fail(const Element& element, std::uint64_t row, const std::string& what) const
{
    const std::size_t byte = m_byteOfBody + static_cast<std::size_t>(m_position - m_begin);
    throw FileError(m_fileName + ": byte " + std::to_string(byte) + ": row " + std::to_string(row) +
                    " of element " + quoted(element.name) + ", which has " +
                    std::to_string(element.count) + " by the header: " + what);
}

void RowFinder::requireBytes(const Element& element, std::size_t rowSize) const
{
    if (rowSize == 0 || element.count <= bytesLeft() / rowSize)
        return;
    fail(element, bytesLeft() / rowSize,
         "the file ends before it, and a row takes " + std::to_string(rowSize) +
             " bytes or more; the file is cut off or the count is wrong");
}

void RowFinder::skipScalars(const Element& element, std::uint64_t row, std::size_t bytes)
{
    if (bytes > bytesLeft())
        fail(element, row, "the file ends inside it; the file is cut off");
    m_position += bytes;
}

void RowFinder::takeList(const Element& element, const Property& property, std::uint64_t row,
                         Array<uint>& offsets)
{
    const unsigned char* const countPlace = m_position;
    skipScalars(element, row, sizeOf(*property.countType));
    const std::int64_t count = countAt(countPlace, *property.countType, m_swap);
    const std::size_t room = bytesLeft() / sizeOf(property.type);
    if (count < 0 || static_cast<std::uint64_t>(count) > room)
        fail(element, row,
             "its list " + quoted(property.name) + " has " + std::to_string(count) +
                 " entries by its count, and the file has room for " + std::to_string(room) +
                 "; the file is cut off or damaged");
    const std::uint64_t total = offsets[row] + static_cast<std::uint64_t>(count);
    if (total > kMostEntries)
        fail(element, row, "more list entries than 32 bits can number; split the file");
    offsets[row + 1] = static_cast<uint>(total);
    m_position += static_cast<std::size_t>(count) * sizeOf(property.type);
}

Rows RowFinder::take(const Element& element)
{
    Rows rows{&element, m_position, {}};
    rows.offsets.resize(element.properties.size());
    const std::size_t rowSize = smallestRow(element);
    requireBytes(element, rowSize);

    // Every list, with the size of the scalars before it; the scalars after the last one remain.
    std::vector<std::pair<std::size_t, std::size_t>> lists;
    std::size_t scalars = 0;
    for (std::size_t i = 0; i < element.properties.size(); ++i) {
        if (!element.properties[i].isList()) {
            scalars += sizeOf(element.properties[i].type);
            continue;
        }
        rows.offsets[i].resize(static_cast<std::size_t>(element.count) + 1);
        lists.push_back({i, std::exchange(scalars, 0)});
    }
    if (lists.empty()) {
        m_position += element.count * rowSize;
        return rows;
    }
    for (std::uint64_t row = 0; row < element.count; ++row) {
        if (row % kRowsPerPoll == 0)
            throwIfCancelled();
        for (const auto& [list, scalarsBefore] : lists) {
            skipScalars(element, row, scalarsBefore);
            takeList(element, element.properties[list], row, rows.offsets[list]);
        }
        skipScalars(element, row, scalars);
    }
    return rows;
}

}  // namespace Ply
}  // namespace MeshIo
