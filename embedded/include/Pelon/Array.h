#pragma once

#include <Pelon/Ptr.h>
#include <Pelon/TypeRep.h>

#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <stdexcept>
#include <type_traits>
#include <utility>

/// @file
/// Contiguous elements.

namespace Pelon {

/// Contiguous, growable elements of one type; `bool` takes a byte like any other type.
///
/// Storage comes from the type representation and arrives zeroed. Elements whose value-initialised
/// form is all zero bits are not written again, so `Array<float>(n)` touches no memory.
/// Copies are deep; sharing is the business of Ptr. Not synchronised.
///
/// An array owns its elements, unless borrow() made it. A borrowed array reads memory of somebody
/// else, and is only ever met behind a Ptr, which gives const access: what would change it has to
/// copy it first, so nothing writes into that memory, and no access to an array ever asks whose
/// memory it is.
template <class T>
class Array {
public:
    using value_type = T;             ///< of the elements
    using size_type = std::size_t;    ///< of counts
    using iterator = T*;              ///< a pointer
    using const_iterator = const T*;  ///< a pointer that reads

    Array() noexcept = default;  ///< no elements

    /// `count` value-initialised elements.
    explicit Array(size_type count) { resize(count); }

    /// `count` copies of `value`.
    Array(size_type count, const T& value) { resize(count, value); }

    /// Copies of these values.
    Array(std::initializer_list<T> values)
    {
        Storage storage(values.size());
        std::uninitialized_copy(values.begin(), values.end(), storage.data);
        adopt(storage, values.size());
    }

    /// Copies of the elements.
    Array(const Array& other)
    {
        Storage storage(other.m_size);
        std::uninitialized_copy(other.begin(), other.end(), storage.data);
        adopt(storage, other.m_size);
    }

    /// The elements themselves; `other` is empty afterwards.
    Array(Array&& other) noexcept { swap(other); }

    /// An array that reads the `size` elements at `data` where they are.
    ///
    /// @param[in] data   aligned for T, which is trivially copyable; null only for no elements
    /// @param[in] size   how many elements there are
    /// @param[in] owner  kept until the last pointer to the array goes; without one the caller keeps
    ///                   the memory until then. Whoever writes into it meanwhile changes the array
    /// @memory     Copies own their elements; toMutable() copies even behind the only pointer, since
    ///             the owner counts as a holder, too
    /// @throws std::invalid_argument  where `data` is null or not aligned
    /// @complexity one small allocation; any number of threads may read
    static Ptr<Array> borrow(const T* data, size_type size,
                             std::shared_ptr<const void> owner = nullptr)
    {
        static_assert(std::is_trivially_copyable_v<T>, "only plain values can be borrowed");
        if (reinterpret_cast<std::uintptr_t>(data) % alignof(T) != 0)
            throw std::invalid_argument("borrowed memory is not aligned for its elements");
        if (!data && size > 0)
            throw std::invalid_argument("borrowed elements have no memory");
        return makeMutable<Array>(Loan{data, size, std::move(owner)});
    }

    ~Array()
    {
        std::destroy(begin(), end());
        Internal::typeRep<T>.deallocate(m_data, m_capacity);
    }

    Array& operator=(Array other) noexcept
    {
        swap(other);
        return *this;
    }

    T* data() noexcept { return m_data; }                ///< the first element
    const T* data() const noexcept { return m_data; }    ///< the first element
    size_type size() const noexcept { return m_size; }   ///< how many elements there are
    bool empty() const noexcept { return m_size == 0; }  ///< whether there are none
    /// Whether borrow() made it.
    bool isBorrowed() const noexcept { return m_data && m_capacity == 0; }

    T& operator[](size_type i) noexcept { return m_data[i]; }
    const T& operator[](size_type i) const noexcept { return m_data[i]; }

    iterator begin() noexcept { return m_data; }
    iterator end() noexcept { return m_data + m_size; }
    const_iterator begin() const noexcept { return m_data; }
    const_iterator end() const noexcept { return m_data + m_size; }

    /// Keeps the first min(size, count) elements; new ones are value-initialised.
    /// Shrinking keeps the storage; growing beyond it at least doubles it.
    void resize(size_type count)
    {
        resizeWith(count, [](T* first, T* last, bool zeroed) {
            if (!(zeroed && kZeroBitsAreValue))
                std::uninitialized_value_construct(first, last);
        });
    }

    /// The same, with new elements equal to `value` (which may be an element of this array).
    void resize(size_type count, const T& value)
    {
        const T kept = value;
        resizeWith(count, [&kept](T* first, T* last, bool zeroed) {
            if (!(zeroed && isZeroBits(kept)))
                std::uninitialized_fill(first, last, kept);
        });
    }

    /// Adds an element at the end; beyond the storage this at least doubles it.
    void push_back(const T& value) { append(value); }
    /// The same.
    void push_back(T&& value) { append(std::move(value)); }

    friend bool operator==(const Array& a, const Array& b)
    {
        return std::equal(a.begin(), a.end(), b.begin(), b.end());
    }
    friend bool operator!=(const Array& a, const Array& b) { return !(a == b); }

private:
    friend struct Internal::Counted<Array>;

    struct Loan {
        const T* data;
        size_type size;
        std::shared_ptr<const void> owner;
    };

    // Memory without a capacity is not given back. Only a Ptr may lead to such an array.
    explicit Array(const Loan& loan) noexcept : m_data(const_cast<T*>(loan.data)), m_size(loan.size)
    {}

    static constexpr bool kZeroBitsAreValue = std::is_trivially_default_constructible_v<T>;

    // Raw storage that gives itself back unless an array adopts it.
    struct Storage {
        T* data;
        size_type capacity;

        explicit Storage(size_type count)
            : data(static_cast<T*>(Internal::typeRep<T>.allocate(count))), capacity(count)
        {}
        Storage(const Storage&) = delete;
        Storage& operator=(const Storage&) = delete;
        ~Storage() { Internal::typeRep<T>.deallocate(data, capacity); }
    };

    static bool isZeroBits(const T& value)
    {
        if constexpr (std::is_trivially_copyable_v<T>) {
            const unsigned char zero[sizeof(T)] = {};
            return std::memcmp(std::addressof(value), zero, sizeof(T)) == 0;
        }
        return false;
    }

    void swap(Array& other) noexcept
    {
        std::swap(m_data, other.m_data);
        std::swap(m_size, other.m_size);
        std::swap(m_capacity, other.m_capacity);
    }

    // Takes over `storage`, in which `size` elements live, and leaves the old block to it.
    void adopt(Storage& storage, size_type size) noexcept
    {
        std::destroy(begin(), end());
        std::swap(m_data, storage.data);
        std::swap(m_capacity, storage.capacity);
        m_size = size;
    }

    // Puts the elements in front of those that were made at [m_size, size) of `storage`, and takes
    // it over. Where a copy throws, the new elements go and the array stays as it is.
    void relocateTo(Storage& storage, size_type size)
    {
        struct Added {
            T* first;
            T* last;
            ~Added() { std::destroy(first, last); }
        } added{storage.data + m_size, storage.data + size};
        relocate(begin(), end(), storage.data);
        added.last = added.first;
        adopt(storage, size);
    }

    size_type grownCapacity(size_type needed) const { return std::max(needed, 2 * m_capacity); }

    static void relocate(T* first, T* last, T* to)
    {
        if constexpr (std::is_nothrow_move_constructible_v<T>)
            std::uninitialized_move(first, last, to);
        else
            std::uninitialized_copy(first, last, to);
    }

    template <class Construct>
    void resizeWith(size_type count, const Construct& construct)
    {
        if (count <= m_size) {
            std::destroy(begin() + count, end());
            m_size = count;
        } else if (count <= m_capacity) {
            construct(m_data + m_size, m_data + count, false);
            m_size = count;
        } else {
            Storage storage(grownCapacity(count));
            construct(storage.data + m_size, storage.data + count, true);
            relocateTo(storage, count);
        }
    }

    template <class Value>
    void append(Value&& value)
    {
        if (m_size < m_capacity) {
            ::new (static_cast<void*>(m_data + m_size)) T(std::forward<Value>(value));
            ++m_size;
            return;
        }
        // The new element comes first: `value` may live in the block that is about to go.
        Storage storage(grownCapacity(std::max<size_type>(m_size + 1, 8)));
        ::new (static_cast<void*>(storage.data + m_size)) T(std::forward<Value>(value));
        relocateTo(storage, m_size + 1);
    }

    T* m_data = nullptr;
    size_type m_size = 0;
    size_type m_capacity = 0;
};

namespace Internal {

/// Beside a shared array stands the owner of the memory that it borrows.
template <class T>
struct Counted<Array<T>> {
    std::atomic<std::uint32_t> useCount{1};
    std::shared_ptr<const void> owner;
    Array<T> value;

    template <class... Args>
    explicit Counted(Args&&... args) : value(std::forward<Args>(args)...)
    {}
    explicit Counted(typename Array<T>::Loan&& loan) : owner(std::move(loan.owner)), value(loan) {}

    std::size_t holders() const noexcept
    {
        return useCount.load(std::memory_order_acquire) + value.isBorrowed();
    }
};

}  // namespace Internal

}  // namespace Pelon
