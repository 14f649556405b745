#include "files/npz/ZipArchive.h"

#include "base/MessageText.h"
#include "files/FileErrors.h"

#include <minizip/unzip.h>

#include <algorithm>
#include <cstdio>
#include <exception>

namespace TessaryMesh {
namespace {

// Deflate packs 1032 bytes into one at best.
constexpr std::uint64_t kBestPacking = 1032;

/// The bytes as the library wants to see them: a stream with a place.
struct Stream {
    const Input* input;
    std::uint64_t at;
    std::exception_ptr error;  // of the input: it must not pass through the library
};

Stream& streamOf(voidpf opaque)
{
    return *static_cast<Stream*>(opaque);
}

voidpf openStream(voidpf opaque, const void*, int)
{
    return opaque;
}

uLong readStream(voidpf opaque, voidpf, void* to, uLong count)
{
    Stream& stream = streamOf(opaque);
    const std::uint64_t size = stream.input->size();
    const std::uint64_t got = std::min<std::uint64_t>(count, size - std::min(stream.at, size));
    try {
        stream.input->read(stream.at, stream.at + got, static_cast<char*>(to));
    } catch (...) {
        stream.error = std::current_exception();
        return 0;
    }
    stream.at += got;
    return static_cast<uLong>(got);
}

ZPOS64_T tellStream(voidpf opaque, voidpf)
{
    return streamOf(opaque).at;
}

long seekStream(voidpf opaque, voidpf, ZPOS64_T offset, int origin)
{
    Stream& stream = streamOf(opaque);
    const std::uint64_t from = origin == ZLIB_FILEFUNC_SEEK_CUR   ? stream.at
                               : origin == ZLIB_FILEFUNC_SEEK_END ? stream.input->size()
                                                                  : 0;
    stream.at = from + offset;
    return stream.at > stream.input->size() ? -1 : 0;
}

int closeStream(voidpf, voidpf)
{
    return 0;
}

int errorOfStream(voidpf opaque, voidpf)
{
    return streamOf(opaque).error ? 1 : 0;
}

}  // namespace

class ZipArchive::Reader {
public:
    explicit Reader(const Input& input) : m_stream{&input, 0, nullptr}
    {
        zlib_filefunc64_def functions{openStream, readStream,  nullptr,       tellStream,
                                      seekStream, closeStream, errorOfStream, &m_stream};
        file = unzOpen2_64("", &functions);
    }
    ~Reader() { unzClose(file); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    void rethrow() const
    {
        if (m_stream.error)
            std::rethrow_exception(m_stream.error);
    }

    unzFile file;

private:
    Stream m_stream;
};

ZipArchive::ZipArchive(const Input& input, const std::string& path)
    : m_path(path), m_reader(std::make_unique<Reader>(input))
{
    if (!m_reader->file)
        fail(
            "the zip archive has no list of contents: it was cut off or is damaged; copy it again");
    listFiles();
    for (const File& file : m_files)
        if (file.packedSize > input.size() || file.size / kBestPacking > file.packedSize + 1)
            fail("file " + quoted(file.name) +
                 " of the zip archive promises more bytes than it has");
}

ZipArchive::~ZipArchive() = default;

bool ZipArchive::isPacked() const
{
    return std::any_of(m_files.begin(), m_files.end(),
                       [](const File& file) { return file.packedSize != file.size; });
}

void ZipArchive::fail(const std::string& what) const
{
    m_reader->rethrow();
    failToRead(FileError::Code::Malformed, m_path, what);
}

void ZipArchive::listFiles()
{
    const unzFile file = m_reader->file;
    std::string name(0xFFFF, '\0');
    for (int state = unzGoToFirstFile(file); state != UNZ_END_OF_LIST_OF_FILE;
         state = unzGoToNextFile(file)) {
        unz_file_info64 info{};
        unz64_file_pos place{};
        if (state != UNZ_OK ||
            unzGetCurrentFileInfo64(file, &info, name.data(), static_cast<uLong>(name.size()),
                                    nullptr, 0, nullptr, 0) != UNZ_OK ||
            unzGetFilePos64(file, &place) != UNZ_OK)
            fail("the list of contents of the zip archive is damaged; copy it again");
        m_files.push_back({name.substr(0, info.size_filename),
                           info.uncompressed_size,
                           info.compressed_size,
                           {place.pos_in_zip_directory, place.num_of_file}});
    }
}

void ZipArchive::open(const File& file)
{
    unz64_file_pos place{file.place[0], file.place[1]};
    if (unzGoToFilePos64(m_reader->file, &place) != UNZ_OK ||
        unzOpenCurrentFile(m_reader->file) != UNZ_OK)
        fail("file " + quoted(file.name) + " of the zip archive is damaged or packed in a way " +
             "that is not read; write it again, stored or deflated");
    m_open = &file;
}

void ZipArchive::read(void* to, std::size_t count)
{
    constexpr std::size_t kPiece = std::size_t{1} << 24;
    auto* bytes = static_cast<char*>(to);
    while (count > 0) {
        throwIfCancelled();
        const int got = unzReadCurrentFile(m_reader->file, bytes,
                                           static_cast<unsigned>(std::min(count, kPiece)));
        if (got <= 0)
            fail("file " + quoted(m_open->name) + " of the zip archive " +
                 (got == 0 ? "is shorter than its content says" : "is damaged") +
                 "; copy it again");
        bytes += got;
        count -= static_cast<std::size_t>(got);
    }
}

void ZipArchive::close()
{
    if (unzCloseCurrentFile(m_reader->file) != UNZ_OK)
        fail("file " + quoted(m_open->name) + " of the zip archive has another checksum than it " +
             "should; copy it again");
}

}  // namespace TessaryMesh
