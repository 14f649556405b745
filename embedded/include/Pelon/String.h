#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace Pelon {

// Text passes for any of its forms: NOLINTBEGIN(google-explicit-constructor)

/// A view of characters that somebody else owns; not NUL-terminated.
class StringView {
public:
    constexpr StringView() noexcept = default;
    constexpr StringView(const char* text) : m_text(text) {}
    constexpr StringView(std::string_view text) noexcept : m_text(text) {}
    StringView(const std::string& text) noexcept : m_text(text) {}

    constexpr const char* data() const noexcept { return m_text.data(); }
    constexpr std::size_t size() const noexcept { return m_text.size(); }
    constexpr bool empty() const noexcept { return m_text.empty(); }
    constexpr std::string_view view() const noexcept { return m_text; }

    friend constexpr bool operator==(StringView a, StringView b) { return a.m_text == b.m_text; }
    friend constexpr bool operator!=(StringView a, StringView b) { return a.m_text != b.m_text; }

private:
    std::string_view m_text;
};

/// An owned, NUL-terminated string of bytes, UTF-8 by convention.
class String {
public:
    String() = default;
    String(const char* text) : m_text(text) {}
    String(std::string text) noexcept : m_text(std::move(text)) {}
    explicit String(StringView text) : m_text(text.view()) {}

    operator StringView() const noexcept { return StringView(m_text); }

    const char* c_str() const noexcept { return m_text.c_str(); }
    std::size_t size() const noexcept { return m_text.size(); }
    bool empty() const noexcept { return m_text.empty(); }
    std::string_view view() const noexcept { return m_text; }

    friend bool operator==(const String& a, const String& b) { return a.m_text == b.m_text; }
    friend bool operator!=(const String& a, const String& b) { return a.m_text != b.m_text; }
    friend bool operator<(const String& a, const String& b) { return a.m_text < b.m_text; }

private:
    std::string m_text;
};

// NOLINTEND(google-explicit-constructor)

}  // namespace Pelon

template <>
struct std::hash<Pelon::String> {
    std::size_t operator()(const Pelon::String& text) const noexcept
    {
        return std::hash<std::string_view>()(text.view());
    }
};
