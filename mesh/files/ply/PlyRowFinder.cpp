#include "files/ply/PlyRows.h"

#include "base/Host.h"
#include "base/MessageText.h"
#include "files/ply/PlyErrors.h"

#include <algorithm>
#include <cstring>

namespace TessaryMesh::Ply {
namespace {

constexpr std::uint64_t kMostEntries = 0xFFFFFFFE;  // what 32-bit offsets can name

// The smallest size of a row: every list is empty.
std::size_t smallestRow(const Element& element)
{
    std::size_t bytes = 0;
    for (const Property& property : element.properties)
        bytes += sizeOf(property.isList() ? *property.countType : property.type);
    return bytes;
}

// Of the 1, 2 or 4 bytes of a list's count.
std::int64_t countAt(const unsigned char* from, Scalar type, bool swap)
{
    if (type == Scalar::UInt8)
        return *from;
    return withScalar(type, [&](auto count) {
        unsigned char bytes[sizeof(count)];
        std::memcpy(bytes, from, sizeof(count));
        if (swap)
            std::reverse(bytes, bytes + sizeof(count));
        std::memcpy(&count, bytes, sizeof(count));
        return static_cast<std::int64_t>(count);
    });
}

}  // namespace

/// A list in every row, with what its walk needs at hand.
struct RowFinder::List {
    const Property* property;
    std::size_t scalarsBefore;  // bytes between it and the list before it
    std::size_t countSize;
    std::size_t entrySize;
    uint* offsets;
};

RowFinder::RowFinder(std::string_view body, std::size_t byteOfBody, bool swap,
                     const std::string& path)
    : m_path(path),
      m_begin(reinterpret_cast<const unsigned char*>(body.data())),
      m_position(m_begin),
      m_end(m_begin + body.size()),
      m_byteOfBody(byteOfBody),
      m_swap(swap)
{}

void RowFinder::fail(const Element& element, std::uint64_t row, const std::string& what,
                     FileError::Code code) const
{
    const std::size_t byte = m_byteOfBody + static_cast<std::size_t>(m_position - m_begin);
    failInRow(m_path, atByte(byte), element, row, what, code);
}

void RowFinder::requireBytes(const Element& element, std::size_t rowSize)
{
    if (rowSize == 0 || element.count <= bytesLeft() / rowSize)
        return;
    const std::size_t room = bytesLeft() / rowSize;
    m_position += room * rowSize;  // where the first row that may be missing begins
    fail(element, room,
         "the file ends before it, and a row takes " + std::to_string(rowSize) +
             " bytes or more; the file is cut off or the count is wrong");
}

void RowFinder::failList(const Element& element, std::uint64_t row, const List& list) const
{
    if (bytesLeft() < list.countSize)
        fail(element, row, "the file ends inside it; the file is cut off");
    const std::int64_t count = countAt(m_position, *list.property->countType, m_swap);
    const std::size_t room = (bytesLeft() - list.countSize) / list.entrySize;
    if (count >= 0 && static_cast<std::uint64_t>(count) <= room)
        fail(element, row, "more list entries than 32 bits can number; split the file",
             FileError::Code::TooLarge);
    fail(element, row,
         "its list " + quoted(list.property->name) + " has " + std::to_string(count) +
             " entries by its count, and the file has room for " + std::to_string(room) +
             "; the file is cut off or damaged");
}

bool RowFinder::skip(std::size_t bytes)
{
    const bool fits = bytes <= bytesLeft();
    m_position += fits ? bytes : 0;
    return fits;
}

// Stays before a list that does not fit.
bool RowFinder::skipList(const List& list, std::uint64_t row)
{
    if (bytesLeft() < list.countSize)
        return false;
    const std::int64_t count = countAt(m_position, *list.property->countType, m_swap);
    // No count is above 2^32, so the product does not overflow; a negative one is out of bounds.
    const std::uint64_t bytes = static_cast<std::uint64_t>(count) * list.entrySize;
    const std::uint64_t total = list.offsets[row] + static_cast<std::uint64_t>(count);
    if (count < 0 || bytes > bytesLeft() - list.countSize || total > kMostEntries)
        return false;
    list.offsets[row + 1] = static_cast<uint>(total);
    m_position += list.countSize + bytes;
    return true;
}

void RowFinder::walkLists(const Element& element, const std::vector<List>& lists,
                          std::size_t scalarsAfter, std::vector<const unsigned char*>& pieces)
{
    for (std::uint64_t row = 0; row < element.count; ++row) {
        if (row % kRowsPerPiece == 0) {
            throwIfCancelled();
            pieces.push_back(m_position);
        }
        for (const List& list : lists)
            if (!skip(list.scalarsBefore) || !skipList(list, row))
                failList(element, row, list);
        if (!skip(scalarsAfter))
            fail(element, row, "the file ends inside it; the file is cut off");
    }
}

Rows RowFinder::take(const Element& element)
{
    Rows rows{&element, {}, {}};
    rows.offsets.resize(element.properties.size());
    const std::size_t rowSize = smallestRow(element);
    requireBytes(element, rowSize);

    std::vector<List> lists;
    std::size_t scalars = 0;
    for (std::size_t i = 0; i < element.properties.size(); ++i) {
        const Property& property = element.properties[i];
        if (!property.isList()) {
            scalars += sizeOf(property.type);
            continue;
        }
        rows.offsets[i].resize(static_cast<std::size_t>(element.count) + 1);
        lists.push_back({&property, std::exchange(scalars, 0), sizeOf(*property.countType),
                         sizeOf(property.type), rows.offsets[i].data()});
    }
    if (!lists.empty()) {
        walkLists(element, lists, scalars, rows.pieces);
        return rows;
    }
    for (std::uint64_t row = 0; rowSize > 0 && row < element.count; row += kRowsPerPiece)
        rows.pieces.push_back(m_position + row * rowSize);
    m_position += element.count * rowSize;
    return rows;
}

}  // namespace TessaryMesh::Ply
