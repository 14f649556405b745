#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <utility>

/// @file
/// Counted pointers, and copy on write.

namespace Pelon {
namespace Internal {

template <class T>
struct Counted {
    std::atomic<std::uint32_t> useCount{1};
    T value;

    template <class... Args>
    explicit Counted(Args&&... args) : value(std::forward<Args>(args)...)
    {}

    // Acquire: who finds itself the only holder also sees what the former holders wrote.
    std::size_t holders() const noexcept { return useCount.load(std::memory_order_acquire); }
};

/// One counted reference. The count may be changed from any thread; one handle may not.
template <class T>
class Reference {
public:
    Reference() noexcept = default;
    explicit Reference(Counted<T>* counted) noexcept : m_counted(counted) {}
    Reference(const Reference& other) noexcept : m_counted(other.m_counted)
    {
        if (m_counted)
            m_counted->useCount.fetch_add(1, std::memory_order_relaxed);
    }
    Reference(Reference&& other) noexcept : m_counted(std::exchange(other.m_counted, nullptr)) {}
    Reference& operator=(Reference other) noexcept
    {
        std::swap(m_counted, other.m_counted);
        return *this;
    }
    ~Reference()
    {
        if (m_counted && m_counted->useCount.fetch_sub(1, std::memory_order_acq_rel) == 1)
            destroy(m_counted);
    }

    T* get() const noexcept { return m_counted ? &m_counted->value : nullptr; }

    std::size_t useCount() const noexcept { return m_counted ? m_counted->holders() : 0; }

private:
    // Out of line: pointers are dropped in many places, and seldom the last one.
    [[gnu::noinline]] static void destroy(Counted<T>* counted) noexcept { delete counted; }

    Counted<T>* m_counted = nullptr;
};

}  // namespace Internal

template <class T>
class Ptr;

/// A counted pointer to an object that its holder may change.
template <class T>
class MutablePtr {
public:
    MutablePtr() noexcept = default;        ///< null
    MutablePtr(std::nullptr_t) noexcept {}  // NOLINT(google-explicit-constructor)

    T* get() const noexcept { return m_reference.get(); }  ///< the object, or null
    T& operator*() const noexcept { return *get(); }       ///< the object
    T* operator->() const noexcept { return get(); }       ///< the object
    explicit operator bool() const noexcept
    {
        return get() != nullptr;
    }  ///< whether it is not null

    /// How many hold the object.
    std::size_t useCount() const noexcept { return m_reference.useCount(); }

private:
    template <class U, class... Args>
    friend MutablePtr<U> makeMutable(Args&&... args);
    template <class U>
    friend MutablePtr<U> toMutable(Ptr<U> pointer);
    friend class Ptr<T>;

    explicit MutablePtr(Internal::Reference<T> reference) noexcept
        : m_reference(std::move(reference))
    {}

    Internal::Reference<T> m_reference;
};

/// A counted pointer to an object that may be shared and is therefore only read.
/// The last pointer to go, of either kind, destroys the object.
template <class T>
class Ptr {
public:
    Ptr() noexcept = default;            ///< null
    Ptr(std::nullptr_t) noexcept {}      // NOLINT(google-explicit-constructor)
    Ptr(MutablePtr<T> pointer) noexcept  // NOLINT(google-explicit-constructor)
        : m_reference(std::move(pointer.m_reference))
    {}

    const T* get() const noexcept { return m_reference.get(); }  ///< the object, or null
    const T& operator*() const noexcept { return *get(); }       ///< the object
    const T* operator->() const noexcept { return get(); }       ///< the object
    explicit operator bool() const noexcept
    {
        return get() != nullptr;
    }  ///< whether it is not null

    /// How many hold the object: its pointers, and one more where it reads borrowed memory. One
    /// alone may change it in place.
    std::size_t useCount() const noexcept { return m_reference.useCount(); }

    friend bool operator==(const Ptr& a, const Ptr& b) noexcept { return a.get() == b.get(); }
    friend bool operator!=(const Ptr& a, const Ptr& b) noexcept { return a.get() != b.get(); }

private:
    template <class U>
    friend MutablePtr<U> toMutable(Ptr<U> pointer);

    Internal::Reference<T> m_reference;
};

/// A new object, made from `args`, with one reference.
template <class T, class... Args>
MutablePtr<T> makeMutable(Args&&... args)
{
    return MutablePtr<T>(
        Internal::Reference<T>(new Internal::Counted<T>(std::forward<Args>(args)...)));
}

/// Copy on write: the object itself where `pointer` is its only holder, a copy of it otherwise.
/// Null stays null. Hand the pointer over with std::move, or there are always two references.
template <class T>
MutablePtr<T> toMutable(Ptr<T> pointer)
{
    if (!pointer)
        return nullptr;
    if (pointer.useCount() == 1)
        return MutablePtr<T>(std::move(pointer.m_reference));
    return makeMutable<T>(*pointer);
}

}  // namespace Pelon
