#pragma once

#include "files/NumberText.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string_view>
#include <type_traits>

namespace TessaryMesh {

/// Text, or other bytes, that grow at the end. The memory stays when they are cleared.
class TextBuffer {
public:
    std::string_view view() const { return {m_bytes.get(), m_size}; }
    void clear() { m_size = 0; }

    /// `count` more bytes, for the caller to write.
    char* extend(std::size_t count)
    {
        char* const begin = reserve(count);
        m_size += count;
        return begin;
    }

    TextBuffer& operator<<(char c)
    {
        *extend(1) = c;
        return *this;
    }

    TextBuffer& operator<<(std::string_view text)
    {
        if (!text.empty())  // else there may be no memory yet to copy to
            std::memcpy(extend(text.size()), text.data(), text.size());
        return *this;
    }

    /// In the form of formatNumber().
    template <class T, class = std::enable_if_t<std::is_arithmetic_v<T>>>
    TextBuffer& operator<<(T value)
    {
        char* const begin = reserve(kNumberTextSize);
        m_size += static_cast<std::size_t>(formatNumber(begin, value) - begin);
        return *this;
    }

private:
    char* reserve(std::size_t count)
    {
        if (m_capacity - m_size < count)
            grow(count);
        return m_bytes.get() + m_size;
    }

    void grow(std::size_t count)
    {
        const std::size_t capacity = std::max(2 * m_capacity, m_size + count);
        std::unique_ptr<char[]> bytes(new char[capacity]);
        if (m_size > 0)
            std::memcpy(bytes.get(), m_bytes.get(), m_size);
        m_bytes = std::move(bytes);
        m_capacity = capacity;
    }

    std::unique_ptr<char[]> m_bytes;
    std::size_t m_size = 0, m_capacity = 0;
};

}  // namespace TessaryMesh
