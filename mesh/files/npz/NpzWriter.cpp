#include "files/npz/NpzWriter.h"

#include "base/MessageText.h"
#include "files/FileErrors.h"

#include <zlib.h>

#include <algorithm>
#include <limits>
#include <string_view>
#include <vector>

namespace TessaryMesh {
namespace {

static_assert(std::numeric_limits<double>::is_iec559 && sizeof(float) == 4);

// An empty array may have no address, by which zlib would begin anew.
uLong checksum(const void* bytes, std::size_t count, uLong before = 0)
{
    return count == 0 ? before : crc32_z(before, static_cast<const Bytef*>(bytes), count);
}

void append16(std::string& out, unsigned value)
{
    out += static_cast<char>(value & 0xFF);
    out += static_cast<char>(value >> 8 & 0xFF);
}

void append32(std::string& out, std::uint64_t value)
{
    append16(out, static_cast<unsigned>(value & 0xFFFF));
    append16(out, static_cast<unsigned>(value >> 16 & 0xFFFF));
}

// The head of a .npy file of version 1.0: a dictionary, filled with blanks to a multiple of 64.
std::string npyHeader(const std::string& type, const Shape& shape)
{
    std::string dictionary = "{'descr': '" + type + "', 'fortran_order': False, ";
    dictionary += "'shape': (";
    for (const std::size_t length : shape)
        dictionary += std::to_string(length) + ", ";
    dictionary += "), }";
    constexpr std::size_t kBefore = 10;
    dictionary.append(63 - (kBefore + dictionary.size()) % 64, ' ');
    dictionary += '\n';
    std::string header("\x93NUMPY\x01\x00", 8);
    append16(header, static_cast<unsigned>(dictionary.size()));
    return header + dictionary;
}

// What the two records of a file in the archive have in common, from the version needed on.
std::string recordOf(uLong crc, std::uint64_t size, std::size_t nameLength)
{
    constexpr unsigned kVersion = 10, kFlags = 0x800, kStored = 0;  // names are UTF-8
    constexpr unsigned kTime = 0, kDate = 33;                       // the first day of zip archives
    std::string record;
    for (const unsigned field : {kVersion, kFlags, kStored, kTime, kDate})
        append16(record, field);
    append32(record, crc);
    append32(record, size);
    append32(record, size);
    append16(record, static_cast<unsigned>(nameLength));
    append16(record, 0);
    return record;
}

// Bytes in pieces, so that an interruption need not wait for all of them.
void writePieces(OutputFile& output, const void* bytes, std::size_t count)
{
    constexpr std::size_t kPiece = std::size_t{1} << 24;
    const auto* const first = static_cast<const char*>(bytes);
    for (std::size_t done = 0; done < count; done += kPiece) {
        throwIfCancelled();
        output.write(first + done, std::min(kPiece, count - done));
    }
}

}  // namespace

std::size_t NpzWriter::longestOf(const Array<String>& texts)
{
    std::size_t longest = 1;
    for (const String& text : texts)
        longest = std::max(longest, charactersOf(text.view()).size());
    return longest;
}

void NpzWriter::add(const std::string& name, const Shape& shape, const Array<String>& texts)
{
    const std::size_t width = longestOf(texts);
    std::vector<char32_t> all(width * texts.size());  // short texts are filled up with zeros
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const std::vector<char32_t> characters = charactersOf(texts[i].view());
        std::copy(characters.begin(), characters.end(), all.data() + i * width);
    }
    add(name, "<U" + std::to_string(width), shape, all.data(), sizeof(char32_t) * all.size());
}

void NpzWriter::finish()
{
    const std::uint64_t begin = m_size;
    std::string end("PK\x05\x06", 4);
    append32(end, 0);  // disks
    append16(end, m_count);
    append16(end, m_count);
    append32(end, m_contents.size());
    append32(end, begin);
    append16(end, 0);  // no comment
    write(m_contents);
    write(end);
}

void NpzWriter::add(const std::string& name, const std::string& type, const Shape& shape,
                    const void* bytes, std::size_t count)
{
    constexpr std::uint64_t kMost = 0xFFFFFFFF - (1 << 16);  // room for the contents
    const std::string file = name + ".npy", header = npyHeader(type, shape);
    const std::uint64_t size = header.size() + count;
    if (size > kMost || m_size + size > kMost)
        failToWrite(FileError::Code::TooLarge, m_output.path(),
                    "more than the 4 GB that an .npz file holds (write less)");
    const uLong crc = checksum(bytes, count, checksum(header.data(), header.size()));
    const std::string record = recordOf(crc, size, file.size());

    m_contents.append("PK\x01\x02", 4);
    append16(m_contents, 20);  // made by version 2.0 of the format
    m_contents += record;
    append16(m_contents, 0);  // comment, disk, kinds of attributes
    append16(m_contents, 0);
    append16(m_contents, 0);
    append32(m_contents, 0);
    append32(m_contents, m_size);
    m_contents += file;
    ++m_count;

    write(std::string("PK\x03\x04", 4) + record + file + header);
    writePieces(m_output, bytes, count);
    m_size += count;
}

void NpzWriter::write(const std::string& bytes)
{
    m_output.write(bytes);
    m_size += bytes.size();
}

}  // namespace TessaryMesh
