#include "files/npz/Npz.h"

#include "files/MeshFile.h"
#include "files/OutputFile.h"
#include <TessaryMesh/Errors.h>

#include <algorithm>
#include <array>
#include <limits>

namespace TessaryMesh {
namespace {

static_assert(std::numeric_limits<double>::is_iec559 && sizeof(float) == 4);

std::array<std::uint32_t, 256> crcTable()
{
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t i = 0; i < 256; ++i) {
        std::uint32_t crc = i;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1) != 0 ? crc >> 1 ^ 0xEDB88320u : crc >> 1;
        table[i] = crc;
    }
    return table;
}

// The checksum of zip archives, continued from `crc`.
std::uint32_t crc32(const void* bytes, std::size_t count, std::uint32_t crc = 0)
{
    static const std::array<std::uint32_t, 256> kTable = crcTable();
    const auto* const byte = static_cast<const unsigned char*>(bytes);
    crc = ~crc;
    for (std::size_t i = 0; i < count; ++i)
        crc = crc >> 8 ^ kTable[(crc ^ byte[i]) & 0xFF];
    return ~crc;
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

std::size_t countOf(const std::vector<std::size_t>& shape)
{
    std::size_t count = 1;
    for (const std::size_t length : shape)
        count *= length;
    return count;
}

// The head of a .npy file of version 1.0: a dictionary, filled with blanks to a multiple of 64.
std::string npyHeader(const std::string& type, const std::vector<std::size_t>& shape)
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
std::string recordOf(std::uint32_t crc, std::uint64_t size, std::size_t nameLength)
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

void NpzWriter::add(const std::string& name, const std::vector<std::size_t>& shape, char kind,
                    std::size_t itemBytes, const void* values)
{
    const std::string type = (itemBytes == 1 ? "|" : "<") + (kind + std::to_string(itemBytes));
    addBytes(name, npyHeader(type, shape), values, itemBytes * countOf(shape));
}

void NpzWriter::addTexts(const std::string& name, std::size_t width,
                         const std::vector<char32_t>& texts)
{
    const std::vector<std::size_t> shape{texts.size() / width};
    addBytes(name, npyHeader("<U" + std::to_string(width), shape), texts.data(),
             sizeof(char32_t) * texts.size());
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

void NpzWriter::addBytes(const std::string& name, const std::string& header, const void* bytes,
                         std::size_t count)
{
    constexpr std::uint64_t kMost = 0xFFFFFFFF - (1 << 16);  // room for the contents
    const std::uint64_t size = header.size() + count;
    if (size > kMost || m_size + size > kMost)
        throw FileError(m_output.path() +
                        ": more than the 4 GB that an .npz file holds (write less)");
    const std::string file = name + ".npy";
    const std::uint32_t crc = crc32(bytes, count, crc32(header.data(), header.size()));
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
