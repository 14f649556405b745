#pragma once

// Numbers for a case, taken from the fuzzer's bytes one after the other; zeros once they are used up.

#include <Korvane/Math.h>
#include <Pelon/Array.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace Fuzz {

class Values {
public:
    Values(const std::uint8_t* data, std::size_t size) : m_data(data), m_left(size) {}

    template <class T>
    T raw()
    {
        T value{};
        const std::size_t count = std::min(sizeof(T), m_left);
        if (count > 0)
            std::memcpy(&value, m_data, count);
        m_data += count;
        m_left -= count;
        return value;
    }

    std::uint8_t byte() { return raw<std::uint8_t>(); }
    bool flag() { return (byte() & 1) != 0; }
    Pelon::uint below(Pelon::uint limit) { return limit == 0 ? 0 : raw<std::uint16_t>() % limit; }

    /// A small number most of the time, any bits now and then.
    float real()
    {
        const std::uint8_t kind = byte();
        return kind < 240 ? static_cast<float>(kind % 16) / 4 - 2 : raw<float>();
    }
    Korvane::Math::float3 vector() { return {real(), real(), real()}; }

    /// Mostly below `limit`, any bits now and then.
    Pelon::uint wild(Pelon::uint limit)
    {
        const std::uint8_t kind = byte();
        return kind < 240 && limit > 0 ? kind % limit : raw<Pelon::uint>();
    }

    template <class T, class Next>
    Pelon::Array<T> array(std::size_t count, const Next& next)
    {
        Pelon::Array<T> values(count);
        for (T& value : values)
            value = next();
        return values;
    }

private:
    const std::uint8_t* m_data;
    std::size_t m_left;
};

}  // namespace Fuzz
