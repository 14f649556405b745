#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

/// @file
/// Text.

namespace Pelon {

// Text passes for any of its forms: NOLINTBEGIN(google-explicit-constructor)

/// A view of characters that somebody else owns; not NUL-terminated.
class StringView {
public:
    constexpr StringView() noexcept = default;                              ///< no characters
    constexpr StringView(const char* text) : m_text(text) {}                ///< up to the NUL
    constexpr StringView(std::string_view text) noexcept : m_text(text) {}  ///< the same characters
    StringView(const std::string& text) noexcept : m_text(text) {}          ///< the same characters

    constexpr const char* data() const noexcept { return m_text.data(); }  ///< the first one
    constexpr std::size_t size() const noexcept { return m_text.size(); }  ///< how many bytes
    constexpr bool empty() const noexcept { return m_text.empty(); }     ///< whether there are none
    constexpr std::string_view view() const noexcept { return m_text; }  ///< the same characters

    friend constexpr bool operator==(StringView a, StringView b) { return a.m_text == b.m_text; }
    friend constexpr bool operator!=(StringView a, StringView b) { return a.m_text != b.m_text; }

private:
    std::string_view m_text;
};

/// An owned, NUL-terminated string of bytes, UTF-8 by convention.
class String {
public:
    String() = default;                                             ///< no characters
    String(const char* text) : m_text(text) {}                      ///< a copy
    String(std::string text) noexcept : m_text(std::move(text)) {}  ///< the text itself
    explicit String(StringView text) : m_text(text.view()) {}       ///< a copy

    operator StringView() const noexcept { return StringView(m_text); }  ///< the same characters

    const char* c_str() const noexcept { return m_text.c_str(); }  ///< with a NUL at the end
    std::size_t size() const noexcept { return m_text.size(); }    ///< how many bytes
    bool empty() const noexcept { return m_text.empty(); }         ///< whether there are none
    std::string_view view() const noexcept { return m_text; }      ///< the same characters

    friend bool operator==(const String& a, const String& b) { return a.m_text == b.m_text; }
    friend bool operator!=(const String& a, const String& b) { return a.m_text != b.m_text; }
    friend bool operator<(const String& a, const String& b) { return a.m_text < b.m_text; }

private:
    std::string m_text;
};

// NOLINTEND(google-explicit-constructor)

}  // namespace Pelon

/// For unordered containers.
template <>
struct std::hash<Pelon::String> {
    /// That of the characters.
    std::size_t operator()(const Pelon::String& text) const noexcept
    {
        return std::hash<std::string_view>()(text.view());
    }
};
