#pragma once

#include "base/Host.h"
#include "base/Scalars.h"

#include <cstddef>
#include <deque>
#include <string>
#include <type_traits>
#include <vector>

namespace TessaryMesh {

/// The arrays of a page: raw numbers, little-endian, in parts of which each is compressed by itself.
///
/// Of a part, the first bytes of all its numbers come first, then the second ones: signs and exponents
/// of neighbours are alike, and compress where mantissas do not.
class PageArrays {
public:
    /// Whether real numbers are rounded to 16 bits.
    explicit PageArrays(bool quantise) : m_quantise(quantise) {}

    /// Adds an array, which has to stay alive; returns what the page has to know of it, as JSON.
    template <class T>
    std::string add(const Array<T>& values)
    {
        using Scalar = typename Scalars<T>::Type;
        const std::size_t count = values.size() * Scalars<T>::kCount;
        if constexpr (std::is_same_v<T, String>)
            return addTexts(values);
        else if constexpr (std::is_floating_point_v<Scalar>)
            return addReals(scalarsOf(values.data()), count, Scalars<T>::kCount);
        else
            return addBytes(integerName<Scalar>(), sizeof(Scalar), values.data(), count);
    }

    /// What the arrays take without the page.
    std::size_t byteCount() const { return m_byteCount; }

    /// Compresses all parts on all threads. Throws Cancelled.
    std::vector<std::string> compressed() const;

private:
    struct Part {
        const char* bytes;
        std::size_t count;
        std::size_t width;  // of a number
    };

    template <class S>
    static std::string integerName()
    {
        if (std::is_same_v<S, bool>)
            return "bool";
        return (std::is_signed_v<S> ? "int" : "uint") + std::to_string(8 * sizeof(S));
    }

    std::string addTexts(const Array<String>& texts);
    std::string addReals(const float* values, std::size_t count, std::size_t columns);
    std::string addReals(const double* values, std::size_t count, std::size_t columns);
    template <class Real>
    std::string addRounded(const Real* values, std::size_t count, std::size_t columns);
    std::string addBytes(const std::string& type, std::size_t width, const void* bytes,
                         std::size_t count, const std::string& scale = {});

    bool m_quantise;
    std::vector<Part> m_parts;
    std::deque<std::string> m_kept;  // bytes that are nobody else's, where they stay
    std::size_t m_byteCount = 0;
};

}  // namespace TessaryMesh
