#pragma once

#include <Pelon/Any.h>
#include <Pelon/Array.h>
#include <Pelon/Ptr.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <type_traits>
#include <utility>

/// @file
/// Rows of elements in anybody's memory.

namespace TessaryMesh {

template <class T>
class View;

namespace Internal {

template <class Row>
using ElementOf =
    std::remove_cv_t<std::remove_pointer_t<decltype(std::data(std::declval<Row&>()))>>;

// Not another view, and not a list in braces, whose elements die with the statement that makes it.
template <class Row, class T>
inline constexpr bool canBeKept = !std::is_same_v<std::decay_t<Row>, View<T>> &&
                                  !std::is_same_v<std::remove_cv_t<Row>, std::initializer_list<T>>;

template <class Row, class T>
using EnableIfRowOf = std::enable_if_t<std::is_same_v<ElementOf<Row>, T> && canBeKept<Row, T>>;

}  // namespace Internal

/// Pointer and count of elements that somebody else keeps, or that the view helps to keep alive.
///
/// - It is made from std::vector, std::array, Pelon::Array, any container with data() and size(), C
///   arrays, pointer and count.
/// - An lvalue is shown where it is, and has to outlive the view and every mesh that it goes into,
///   with the meshes that operations make of it: they share arrays.
/// - A temporary (an rvalue) is moved into an owner that the view keeps, so that nothing dangles.
/// - An owner given beside pointer and count is kept by the view and by those meshes.
///
/// What itself keeps nothing alive, such as a std::span, is as good as its pointer, lvalue or not.
/// Elements are only read. A copy of a view shows the same memory and keeps the same owner.
template <class T>
class View {
public:
    using value_type = T;  ///< of the elements

    View() noexcept = default;  ///< of nothing

    /// `size` elements at `data`, with somebody who keeps them, or null.
    View(const T* data, std::size_t size, std::shared_ptr<const void> owner = nullptr) noexcept
        : m_data(data), m_size(size), m_owner(std::move(owner))
    {}

    /// Shares the array; null shows nothing.
    View(Pelon::Ptr<Pelon::Array<T>> array)  // NOLINT(google-explicit-constructor)
        : m_data(array ? array->data() : nullptr),
          m_size(array ? array->size() : 0),
          m_array(std::move(array))
    {}
    /// The same.
    View(Pelon::MutablePtr<Pelon::Array<T>> array)  // NOLINT(google-explicit-constructor)
        : View(Pelon::Ptr<Pelon::Array<T>>(std::move(array)))
    {}

    /// Any row: shown where it is an lvalue, else moved in.
    template <class Row, class = Internal::EnableIfRowOf<Row, T>>
    View(Row&& row)  // NOLINT(google-explicit-constructor)
    {
        if constexpr (std::is_lvalue_reference_v<Row>) {
            *this = View(std::data(row), std::size(row));
        } else if constexpr (std::is_same_v<Row, Pelon::Array<T>>) {
            *this = View(Pelon::makeMutable<Pelon::Array<T>>(std::forward<Row>(row)));
        } else {
            const auto kept = std::make_shared<Row>(std::forward<Row>(row));
            *this = View(std::data(*kept), std::size(*kept), kept);
        }
    }

    const T* data() const noexcept { return m_data; }
    std::size_t size() const noexcept { return m_size; }
    bool empty() const noexcept { return m_size == 0; }
    const T& operator[](std::size_t i) const noexcept { return m_data[i]; }
    const T* begin() const noexcept { return m_data; }
    const T* end() const noexcept { return m_data + m_size; }

    /// Whoever holds this keeps the elements alive, unless they were shown without an owner: then it
    /// is null.
    std::shared_ptr<const void> owner() const
    {
        return m_array ? std::make_shared<Pelon::Ptr<Pelon::Array<T>>>(m_array) : m_owner;
    }

    /// The host's array that is shown; null where it is other memory.
    const Pelon::Ptr<Pelon::Array<T>>& array() const noexcept { return m_array; }

private:
    const T* m_data = nullptr;
    std::size_t m_size = 0;
    std::shared_ptr<const void> m_owner;
    Pelon::Ptr<Pelon::Array<T>> m_array;
};

template <class T>
View(const T*, std::size_t) -> View<T>;
template <class T, class Owner>
View(const T*, std::size_t, Owner) -> View<T>;
template <class T>
View(Pelon::Ptr<Pelon::Array<T>>) -> View<T>;
template <class T>
View(Pelon::MutablePtr<Pelon::Array<T>>) -> View<T>;
template <class Row, class = std::enable_if_t<std::is_object_v<Internal::ElementOf<Row>>>>
View(Row&&) -> View<Internal::ElementOf<Row>>;  // not of Numbers, whose elements are void

/// The types of numbers in arrays from elsewhere.
enum class NumberType : std::uint8_t {
    Int8,
    Int16,
    Int32,
    Int64,
    UInt8,
    UInt16,
    UInt32,
    UInt64,
    Bool,
    Float32,
    Float64
};

namespace Internal {

template <class S>
constexpr NumberType numberType()
{
    static_assert(std::is_arithmetic_v<S> && sizeof(S) <= 8, "elements are numbers or vectors");
    constexpr int log2 = sizeof(S) == 1 ? 0 : sizeof(S) == 2 ? 1 : sizeof(S) == 4 ? 2 : 3;
    if (std::is_same_v<S, bool>)
        return NumberType::Bool;
    if (std::is_floating_point_v<S>)
        return sizeof(S) == 4 ? NumberType::Float32 : NumberType::Float64;
    return static_cast<NumberType>((std::is_signed_v<S> ? 0 : 4) + log2);
}

// The numbers that an element consists of: itself, or the members of a vector that begins with x.
template <class T, class = void>
struct NumbersOf {
    using Type = T;
};
template <class T>
struct NumbersOf<T, std::void_t<decltype(T::x)>> {
    using Type = std::remove_cv_t<decltype(T::x)>;
    static_assert(std::is_trivially_copyable_v<T> && std::is_standard_layout_v<T> &&
                      sizeof(T) % sizeof(Type) == 0,
                  "vectors are plain rows of numbers");
};

template <class Row>
using ViewOf = decltype(View(std::declval<Row>()));

}  // namespace Internal

/// A view of numbers whose type need not be known before the program runs: an array of another
/// library, or whatever a View can be made from, of numbers or of plain vectors whose first member
/// is x (the host's, or your own). Memory lives as long as for a View.
class Numbers {
public:
    Numbers() noexcept = default;  ///< of nothing

    /// `count` numbers of that type, aligned or not.
    Numbers(const void* data, std::size_t count, NumberType type,
            std::shared_ptr<const void> owner = nullptr) noexcept
        : m_data(data), m_count(count), m_type(type), m_owner(std::move(owner))
    {}

    /// The numbers of a view.
    template <class T>
    Numbers(View<T> view)  // NOLINT(google-explicit-constructor)
        : Numbers(view.data(), view.size() * kWidth<T>,
                  Internal::numberType<typename Internal::NumbersOf<T>::Type>(), view.owner())
    {
        m_width = kWidth<T>;
        if (view.array())
            m_array = view.array();
    }

    /// Whatever a View can be made from.
    template <class Row, class = std::enable_if_t<!std::is_same_v<std::decay_t<Row>, Numbers>>,
              class AsView = Internal::ViewOf<Row>>
    Numbers(Row&& row)  // NOLINT(google-explicit-constructor)
        : Numbers(AsView(std::forward<Row>(row)))
    {}

    const void* data() const noexcept { return m_data; }    ///< the first number
    std::size_t count() const noexcept { return m_count; }  ///< how many numbers there are
    NumberType type() const noexcept { return m_type; }     ///< of each
    unsigned width() const noexcept { return m_width; }  ///< 3 where they come as vectors of three
    /// Who keeps them alive; null where nobody does.
    const std::shared_ptr<const void>& owner() const noexcept { return m_owner; }

    /// The host's array that is shown, a Ptr<Array<T>>; empty where it is other memory.
    const Pelon::Any& array() const noexcept { return m_array; }

private:
    template <class T>
    static constexpr unsigned kWidth = sizeof(T) / sizeof(typename Internal::NumbersOf<T>::Type);

    const void* m_data = nullptr;
    std::size_t m_count = 0;
    NumberType m_type = NumberType::Float32;
    unsigned m_width = 1;
    std::shared_ptr<const void> m_owner;
    Pelon::Any m_array;
};

}  // namespace TessaryMesh
