#pragma once

#include <TessaryMesh/Files.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace TessaryMesh {

/// Memory for a part of a file; meant to be used for one part after the other.
class InputBuffer {
public:
    /// At least `size` bytes of any content.
    char* reserve(std::size_t size)
    {
        if (m_size < size) {
            m_bytes.reset();
            m_bytes.reset(new char[size]);
            m_size = size;
        }
        return m_bytes.get();
    }

private:
    std::unique_ptr<char[]> m_bytes;
    std::size_t m_size = 0;
};

/// The bytes of a file, which any thread can ask for in parts. Files are read part by part as they are
/// asked for, and not mapped: one that another program cuts off meanwhile is an error, not a signal.
class Input {
public:
    /// Bytes in memory, which live longer than this.
    Input(std::string_view bytes)  // NOLINT(google-explicit-constructor)
        : m_memory(bytes), m_size(bytes.size())
    {}
    Input(const std::string& bytes)  // NOLINT(google-explicit-constructor)
        : Input(std::string_view(bytes))
    {}

    /// Throws FileError where this is no beginning of a file that can be read. `size` is that of the file, 0
    /// where it is not known yet.
    using HeadCheck = std::function<void(std::string_view head, std::uint64_t size)>;

    /// A file, "-" meaning standard input. Devices and pipes are read to their end at once, once `check` has
    /// seen the first kHead bytes, or all where there are fewer. Throws FileError where there is no such
    /// file, a folder, nothing in it, no permission, or more than the limits allow; Cancelled.
    explicit Input(const char* path, const ReadLimits& limits = {}, const HeadCheck& check = {});

    static constexpr std::size_t kHead = 4096;

    std::size_t size() const { return m_size; }

    /// The bytes [begin, end), at most size(). They lie in memory or are read into `buffer`, and
    /// live as long as both. Throws FileError where they cannot be read.
    std::string_view part(std::size_t begin, std::size_t end, InputBuffer& buffer) const;

    /// Copies these bytes.
    void read(std::size_t begin, std::size_t end, char* to) const;

    /// As many bytes from the beginning as there are, `count` at most.
    std::string_view head(std::size_t count, InputBuffer& buffer) const
    {
        return part(0, count < m_size ? count : m_size, buffer);
    }

private:
    class File;

    std::shared_ptr<const File> m_file;  // null where the bytes are in memory
    std::shared_ptr<const void> m_owned;
    std::string_view m_memory;
    std::size_t m_size = 0;
};

}  // namespace TessaryMesh
