#include "files/npz/ZipWriter.h"

#include "files/Deflate.h"

#include <algorithm>

namespace TessaryMesh {
namespace {

constexpr std::uint64_t kMost = 0xFFFFFFFF;  // stands for: see the 64-bit field

void append(std::string& out, std::uint64_t value, int bytes)
{
    for (int i = 0; i < bytes; ++i)
        out += static_cast<char>(i < 8 ? value >> (8 * i) & 0xFF : 0);
}

std::uint64_t fieldOf(std::uint64_t value)
{
    return std::min(value, kMost);
}

// What the two records of a file have in common, from the version needed up to the sizes. Names are UTF-8;
// the time is the first one that zip archives know.
std::string recordOf(bool isDeflated, bool isLarge, std::uint32_t checksum,
                     std::uint64_t packedSize, std::uint64_t size)
{
    constexpr unsigned kUtf8 = 0x800, kSizesFollow = 8, kDate = 33;
    std::string record;
    append(record, isLarge ? 45 : 20, 2);
    append(record, isDeflated ? kUtf8 | kSizesFollow : kUtf8, 2);
    append(record, isDeflated ? 8 : 0, 2);
    append(record, 0, 2);
    append(record, kDate, 2);
    append(record, checksum, 4);
    append(record, packedSize, 4);
    append(record, size, 4);
    return record;
}

// The extra field with the numbers that do not fit.
std::string zip64Field(std::initializer_list<std::uint64_t> numbers)
{
    std::string field;
    append(field, 1, 2);
    append(field, 8 * numbers.size(), 2);
    for (const std::uint64_t number : numbers)
        append(field, number, 8);
    return field;
}

// Bytes in pieces, so that an interruption need not wait for all of them.
template <class Put>
void forEachPiece(const void* bytes, std::size_t count, const Put& put)
{
    constexpr std::size_t kPiece = std::size_t{1} << 24;
    const auto* const first = static_cast<const char*>(bytes);
    for (std::size_t done = 0; done < count; done += kPiece) {
        throwIfCancelled();
        put(std::string_view(first + done, std::min(kPiece, count - done)));
    }
}

}  // namespace

// Packed sizes are known only when the bytes are out: they follow them, and the head has none.
void ZipWriter::add(const std::string& name, std::string_view head, const void* bytes,
                    std::size_t count)
{
    const bool isDeflated = m_packing == Packing::Deflated;
    const std::uint64_t size = head.size() + count;
    File file{checksumOf(bytes, count, checksumOf(head.data(), head.size())), size, size, m_size};
    const bool isLarge = size + size / 1024 + 1024 >= kMost;  // packed ones can be a little larger
    const std::string extra =
        isLarge ? zip64Field({isDeflated ? 0 : size, isDeflated ? 0 : size}) : std::string();
    std::string record("PK\x03\x04", 4);
    record += recordOf(isDeflated, isLarge, isDeflated ? 0 : file.checksum,
                       isLarge      ? kMost
                       : isDeflated ? 0
                                    : size,
                       isLarge      ? kMost
                       : isDeflated ? 0
                                    : size);
    append(record, name.size(), 2);
    append(record, extra.size(), 2);
    write(record + name + extra);
    if (isDeflated) {
        file.packedSize = writeDeflated(head, bytes, count);
        std::string sizes("PK\x07\x08", 4);
        append(sizes, file.checksum, 4);
        append(sizes, file.packedSize, isLarge ? 8 : 4);
        append(sizes, file.size, isLarge ? 8 : 4);
        write(sizes);
    } else {
        writeStored(head, bytes, count);
    }
    addToContents(name, file);
}

void ZipWriter::writeStored(std::string_view head, const void* bytes, std::size_t count)
{
    write(head);
    forEachPiece(bytes, count, [this](std::string_view piece) { write(piece); });
}

std::uint64_t ZipWriter::writeDeflated(std::string_view head, const void* bytes, std::size_t count)
{
    const std::uint64_t begin = m_size;
    Deflater deflater(Deflater::Wrapping::None, [this](std::string_view packed) { write(packed); });
    deflater.write(head);
    forEachPiece(bytes, count, [&](std::string_view piece) { deflater.write(piece); });
    deflater.finish();
    return m_size - begin;
}

void ZipWriter::addToContents(const std::string& name, const File& file)
{
    const bool isLarge = std::max({file.packedSize, file.size, file.begin}) >= kMost;
    const std::string extra =
        isLarge ? zip64Field({file.size, file.packedSize, file.begin}) : std::string();
    m_contents.append("PK\x01\x02", 4);
    append(m_contents, isLarge ? 45 : 20, 2);
    m_contents += recordOf(m_packing == Packing::Deflated, isLarge, file.checksum,
                           isLarge ? kMost : file.packedSize, isLarge ? kMost : file.size);
    append(m_contents, name.size(), 2);
    append(m_contents, extra.size(), 2);
    append(m_contents, 0, 2 + 2 + 2 + 4);  // comment, disk, kinds of attributes
    append(m_contents, isLarge ? kMost : file.begin, 4);
    m_contents += name + extra;
    ++m_count;
}

void ZipWriter::finish()
{
    const std::uint64_t begin = m_size, size = m_contents.size();
    write(m_contents);
    std::string end;
    if (std::max(begin, size) >= kMost || m_count >= 0xFFFF) {
        end.append("PK\x06\x06", 4);
        append(end, 44, 8);
        append(end, 45, 2);
        append(end, 45, 2);
        append(end, 0, 8);
        for (const std::uint64_t number : {m_count, m_count, size, begin})
            append(end, number, 8);
        end.append("PK\x06\x07", 4);
        append(end, 0, 4);
        append(end, begin + size, 8);
        append(end, 1, 4);
    }
    end.append("PK\x05\x06", 4);
    append(end, 0, 4);  // disks
    for (int i = 0; i < 2; ++i)
        append(end, std::min<std::uint64_t>(m_count, 0xFFFF), 2);
    append(end, fieldOf(size), 4);
    append(end, fieldOf(begin), 4);
    append(end, 0, 2);  // no comment
    write(end);
}

void ZipWriter::write(std::string_view bytes)
{
    m_output.write(bytes);
    m_size += bytes.size();
}

}  // namespace TessaryMesh
