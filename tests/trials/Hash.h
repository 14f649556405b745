#pragma once

#include <Korvane/ElementTypes.h>
#include <Korvane/Geometry.h>
#include <Korvane/Object.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>

/// Hashes of values, not of memory: the same for either byte order.
namespace Trials {

// The size of the numbers that an element consists of: vectors and matrices are templates of theirs.
template <class T>
struct NumberIn {
    static constexpr std::size_t kSize = sizeof(T);
};
template <template <class> class Vector, class T>
struct NumberIn<Vector<T>> : NumberIn<T> {};

/// FNV-1a over the bytes of numbers, the lowest first.
class Hash {
public:
    void addBytes(const void* bytes, std::size_t count, std::size_t numberSize = 1)
    {
        const std::uint16_t one = 1;
        const bool isBigEndian = *reinterpret_cast<const unsigned char*>(&one) == 0;
        const auto* const b = static_cast<const unsigned char*>(bytes);
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t k = i % numberSize;
            addByte(b[isBigEndian ? i - k + (numberSize - 1 - k) : i]);
        }
    }

    template <class T>
    void add(const T* values, std::size_t count)
    {
        addBytes(values, count * sizeof(T), NumberIn<T>::kSize);
    }
    template <class T>
    void add(const T& value)
    {
        add(&value, 1);
    }
    void add(const Pelon::String& text) { addBytes(text.c_str(), text.size() + 1); }
    void add(const std::string& text) { addBytes(text.c_str(), text.size() + 1); }

    template <class T>
    void add(const Pelon::Array<T>& array)
    {
        add(static_cast<std::uint64_t>(array.size()));
        if constexpr (std::is_trivially_copyable_v<T>)
            add(array.data(), array.size());
        else
            for (const T& value : array)
                add(value);
    }

    std::uint64_t value() const { return m_hash; }

private:
    void addByte(unsigned char byte) { m_hash = (m_hash ^ byte) * 1099511628211u; }

    std::uint64_t m_hash = 14695981039346656037u;
};

template <class... Values>
std::uint64_t hashOf(const Values&... values)
{
    Hash hash;
    (hash.add(values), ...);
    return hash.value();
}

/// Of every property of an object: name, component, values and indices.
inline std::uint64_t hashOfObject(const Korvane::Object& object)
{
    using namespace Korvane::Geometry;
    Hash hash;
    for (const Pelon::String& name : object.propertyNames()) {
        hash.add(name);
        hash.add(getTargetComponent(object, name));
        hash.add(getElementCount(object, name));
        if (const auto data = getDataGeoProperty(object, name))
            Korvane::visitArray(data->getProperty(sData),
                                [&](const auto& array, const char*) { hash.add(*array); });
        if (const auto range = getRangeGeoProperty(object, name))
            hash.add(*getRangeGeoPropIndices(*range));
    }
    return hash.value();
}

}  // namespace Trials
