#pragma once

#include "base/Host.h"
#include "files/Input.h"

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

/// What a gzip file holds, of one part or of several one behind the other. Throws FileError where it is
/// damaged or cut off, or holds more than half of the memory that there is; Cancelled.
Array<char> unpackedGzip(const Input& input, const std::string& path);

/// Whether a file name ends in ".gz", in upper or lower case; and the name without it.
bool endsWithGz(std::string_view path);
std::string_view withoutGz(std::string_view path);

/// The checksum of zip and gzip; `before` is that of the bytes before these.
std::uint32_t checksumOf(const void* bytes, std::size_t count, std::uint32_t before = 0);

}  // namespace TessaryMesh
