#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace TessaryMesh {

/// Packs bytes as they come and hands them on in pieces. The same bytes give the same packed ones, whatever
/// the pieces that they come in. Throws std::bad_alloc and what `sink` throws.
class Deflater {
public:
    enum class Wrapping {
        None,  ///< as in zip archives
        Gzip,  ///< with the head and the checksum of gzip, without name and time
    };

    using Sink = std::function<void(std::string_view packed)>;

    Deflater(Wrapping wrapping, Sink sink);
    ~Deflater();

    void write(std::string_view bytes);
    void finish();

private:
    class Stream;

    void run(std::string_view bytes, int flush);

    std::unique_ptr<Stream> m_stream;
    Sink m_sink;
};

/// Whether the bytes are the beginning of a gzip file.
bool isGzip(std::string_view bytes);

/// The checksum of zip and gzip; `before` is that of the bytes before these.
std::uint32_t checksumOf(const void* bytes, std::size_t count, std::uint32_t before = 0);

}  // namespace TessaryMesh
