#pragma once

#include "files/NumberText.h"
#include <TessaryMesh/Files.h>

#include <cstring>
#include <memory>
#include <string_view>
#include <type_traits>

namespace TessaryMesh {

/// Gathers text and hands it to a file in large pieces, the last one with flush(). Between pieces it
/// throws Cancelled.
class TextWriter {
public:
    explicit TextWriter(OutputFile& output) : m_output(output), m_buffer(new char[kCapacity]) {}

    TextWriter& operator<<(char c)
    {
        *reserve(1) = c;
        ++m_size;
        return *this;
    }

    TextWriter& operator<<(std::string_view text)
    {
        if (text.size() > kCapacity) {
            flush();
            m_output.write(text);
            return *this;
        }
        std::memcpy(reserve(text.size()), text.data(), text.size());
        m_size += text.size();
        return *this;
    }

    /// In the form of formatNumber().
    template <class T, class = std::enable_if_t<std::is_arithmetic_v<T>>>
    TextWriter& operator<<(T value)
    {
        char* const begin = reserve(kNumberTextSize);
        m_size += static_cast<std::size_t>(formatNumber(begin, value) - begin);
        return *this;
    }

    void flush()
    {
        throwIfCancelled();
        m_output.write(m_buffer.get(), m_size);
        m_size = 0;
    }

private:
    static constexpr std::size_t kCapacity = std::size_t{1} << 18;

    char* reserve(std::size_t count)
    {
        if (kCapacity - m_size < count)
            flush();
        return m_buffer.get() + m_size;
    }

    OutputFile& m_output;
    std::unique_ptr<char[]> m_buffer;
    std::size_t m_size = 0;
};

}  // namespace TessaryMesh
