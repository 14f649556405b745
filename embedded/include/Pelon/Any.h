#pragma once

#include <Pelon/Ptr.h>

#include <any>
#include <type_traits>
#include <utility>

/// @file
/// Values of any type.

namespace Pelon {

class Any;

namespace Internal {

template <class T>
inline constexpr bool isHeldByValue = true;
template <>
inline constexpr bool isHeldByValue<Any> = false;
template <class T>
inline constexpr bool isHeldByValue<MutablePtr<T>> = false;

}  // namespace Internal

/// A value of any copyable type, or nothing. Nested objects are held as Ptr<Korvane::Object>,
/// arrays as Ptr<Array<T>>, everything else by value.
class Any {
public:
    Any() = default;  ///< nothing

    /// A copy of the value, or the value itself where it may be moved.
    template <class T, class = std::enable_if_t<Internal::isHeldByValue<std::decay_t<T>>>>
    Any(T&& value)  // NOLINT(google-explicit-constructor)
        : m_value(std::forward<T>(value))
    {}

    /// A stored object is shared from now on, so it is held as a pointer that only reads.
    template <class T>
    Any(MutablePtr<T> pointer)  // NOLINT(google-explicit-constructor)
        : m_value(Ptr<T>(std::move(pointer)))
    {}

    /// Whether nothing is held.
    bool empty() const noexcept { return !m_value.has_value(); }

    /// The held value, or null where nothing or a value of another type is held.
    template <class T>
    const T* get() const noexcept
    {
        return std::any_cast<T>(&m_value);
    }
    /// The same, to be changed.
    template <class T>
    T* get() noexcept
    {
        return std::any_cast<T>(&m_value);
    }

private:
    std::any m_value;
};

}  // namespace Pelon
