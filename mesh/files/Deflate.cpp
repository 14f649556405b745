#include "files/Deflate.h"

#include "base/MachineMemory.h"
#include "files/FileErrors.h"

#include <zlib.h>

#include <algorithm>
#include <new>
#include <utility>
#include <vector>

namespace TessaryMesh {
namespace {

constexpr std::size_t kPiece = std::size_t{1} << 18;

/// Unpacks a file as it is read, part by part.
class Unpacking {
public:
    Unpacking(const Input& input, const std::string& path) : m_input(input), m_path(path)
    {
        if (inflateInit2(&m_z, 15 + 16) != Z_OK)
            throw std::bad_alloc();
    }
    ~Unpacking() { inflateEnd(&m_z); }
    Unpacking(const Unpacking&) = delete;
    Unpacking& operator=(const Unpacking&) = delete;

    Array<char> bytes()
    {
        Array<char> bytes;
        std::size_t size = 0;
        int state = Z_OK;
        while (state != Z_STREAM_END || hasMore()) {
            if (state == Z_STREAM_END)
                inflateReset(&m_z);
            if (size == bytes.size())
                bytes.resize(grown(size));
            m_z.next_out = reinterpret_cast<Bytef*>(bytes.data() + size);
            const std::size_t room = std::min(bytes.size() - size, 64 * kPiece);
            m_z.avail_out = static_cast<uInt>(room);
            refill();
            state = inflate(&m_z, Z_NO_FLUSH);
            size += room - m_z.avail_out;
            if (state != Z_OK && state != Z_STREAM_END)
                fail();
        }
        bytes.resize(size);
        return bytes;
    }

private:
    [[noreturn]] void fail() const
    {
        const std::size_t at = m_read - m_z.avail_in;
        failToRead(FileError::Code::Malformed, m_path,
                   "byte " + std::to_string(at) +
                       ": the gzip data is damaged or cut off here; copy the file again",
                   atByte(at));
    }

    std::size_t grown(std::size_t size) const
    {
        const std::size_t more = std::max(2 * size, 4 * kPiece);
        if (more > machineMemory() / 2)
            failToRead(FileError::Code::TooLarge, m_path,
                       "unpacks to more than " + memoryText(static_cast<double>(size)) +
                           ", which does not fit into memory twice; split the mesh");
        return more;
    }

    bool hasMore() const { return m_z.avail_in > 0 || m_read < m_input.size(); }

    void refill()
    {
        throwIfCancelled();
        if (m_z.avail_in > 0 || m_read == m_input.size())
            return;
        const std::size_t end = std::min(m_read + kPiece, m_input.size());
        const std::string_view part = m_input.part(m_read, end, m_buffer);
        m_z.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(part.data()));
        m_z.avail_in = static_cast<uInt>(part.size());
        m_read = end;
    }

    const Input& m_input;
    const std::string& m_path;
    InputBuffer m_buffer;
    std::size_t m_read = 0;
    z_stream m_z{};
};

}  // namespace

class Deflater::Stream {
public:
    explicit Stream(int windowBits) : out(kPiece)
    {
        if (deflateInit2(&z, Z_DEFAULT_COMPRESSION, Z_DEFLATED, windowBits, 9,
                         Z_DEFAULT_STRATEGY) != Z_OK)
            throw std::bad_alloc();
    }
    ~Stream() { deflateEnd(&z); }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    z_stream z{};
    std::vector<char> out;
};

Deflater::Deflater(Wrapping wrapping, Sink sink)
    : m_stream(std::make_unique<Stream>(wrapping == Wrapping::Gzip ? 15 + 16 : -15)),
      m_sink(std::move(sink))
{}

Deflater::~Deflater() = default;

void Deflater::write(std::string_view bytes)
{
    while (!bytes.empty()) {
        const std::string_view piece = bytes.substr(0, std::min(bytes.size(), kPiece));
        run(piece, Z_NO_FLUSH);
        bytes.remove_prefix(piece.size());
    }
}

void Deflater::finish()
{
    run({}, Z_FINISH);
}

void Deflater::run(std::string_view bytes, int flush)
{
    z_stream& z = m_stream->z;
    z.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
    z.avail_in = static_cast<uInt>(bytes.size());
    do {
        z.next_out = reinterpret_cast<Bytef*>(m_stream->out.data());
        z.avail_out = static_cast<uInt>(kPiece);
        deflate(&z, flush);  // cannot fail with room for its output
        const std::size_t packed = kPiece - z.avail_out;
        if (packed > 0)
            m_sink({m_stream->out.data(), packed});
    } while (z.avail_out == 0);
}

bool isGzip(std::string_view bytes)
{
    return bytes.substr(0, 3) == "\x1F\x8B\x08";
}

Array<char> unpackedGzip(const Input& input, const std::string& path)
{
    return Unpacking(input, path).bytes();
}

bool endsWithGz(std::string_view path)
{
    if (path.size() <= 3)
        return false;
    const std::string_view ending = path.substr(path.size() - 3);
    return ending[0] == '.' && (ending[1] | 32) == 'g' && (ending[2] | 32) == 'z';
}

std::string_view withoutGz(std::string_view path)
{
    return path.substr(0, path.size() - (endsWithGz(path) ? 3 : 0));
}

// An empty array may have no address, by which zlib would begin anew.
std::uint32_t checksumOf(const void* bytes, std::size_t count, std::uint32_t before)
{
    return count == 0 ? before
                      : static_cast<std::uint32_t>(
                            crc32_z(before, static_cast<const Bytef*>(bytes), count));
}

}  // namespace TessaryMesh
