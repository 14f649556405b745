#include "files/Deflate.h"

#include <zlib.h>

#include <algorithm>
#include <new>
#include <utility>
#include <vector>

namespace TessaryMesh {
namespace {

constexpr std::size_t kPiece = std::size_t{1} << 18;

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

// An empty array may have no address, by which zlib would begin anew.
std::uint32_t checksumOf(const void* bytes, std::size_t count, std::uint32_t before)
{
    return count == 0 ? before
                      : static_cast<std::uint32_t>(
                            crc32_z(before, static_cast<const Bytef*>(bytes), count));
}

}  // namespace TessaryMesh
