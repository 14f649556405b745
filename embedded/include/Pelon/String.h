#pragma once

#include <cstddef>
#include <functional>
#include <memory>
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

/// An owned, NUL-terminated string of bytes, UTF-8 by convention. It never changes but as a whole, so copies
/// of a long one share their characters.
class String {
public:
    String() noexcept { setShort({}); }                     ///< no characters
    String(const char* text) : String(StringView(text)) {}  ///< a copy
    /// The text itself.
    String(std::string text)
    {
        setShort(text.size() > kShort ? std::string_view() : text);
        if (text.size() > kShort)
            m_long = std::make_shared<const std::string>(std::move(text));
    }
    /// A copy.
    explicit String(StringView text)
    {
        setShort(text.size() > kShort ? std::string_view() : text.view());
        if (text.size() > kShort)
            m_long = std::make_shared<const std::string>(text.view());
    }

    operator StringView() const noexcept { return StringView(view()); }  ///< the same characters

    /// With a NUL at the end.
    const char* c_str() const noexcept { return m_long ? m_long->c_str() : m_short; }
    std::size_t size() const noexcept { return view().size(); }  ///< how many bytes
    bool empty() const noexcept { return view().empty(); }       ///< whether there are none
    std::string_view view() const noexcept                       ///< the same characters
    {
        return m_long ? std::string_view(*m_long)
                      : std::string_view(m_short,
                                         kShort - static_cast<unsigned char>(m_short[kShort]));
    }

    friend bool operator==(const String& a, const String& b)
    {
        return (a.m_long && a.m_long == b.m_long) || a.view() == b.view();
    }
    friend bool operator!=(const String& a, const String& b) { return !(a == b); }
    friend bool operator<(const String& a, const String& b) { return a.view() < b.view(); }

private:
    static constexpr std::size_t kShort = 15;

    // What is left of kShort stands behind the text: nothing behind the longest one, which it ends.
    void setShort(std::string_view text) noexcept
    {
        text.copy(m_short, kShort);
        m_short[kShort] = static_cast<char>(kShort - text.size());
    }

    char m_short[kShort + 1] = {};
    std::shared_ptr<const std::string> m_long;  // where m_short has no room, else null
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
