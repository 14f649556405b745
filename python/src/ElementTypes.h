#pragma once

#include <Korvane/Math.h>

#include <pybind11/numpy.h>

#include <vector>

/// How element types of the host look in NumPy: a scalar type, and the shape of what one element adds to
/// an array's shape: nothing for a number, (3,) for float3, (2, 3) for float2x3.
namespace TessaryPython {

template <class T>
struct ElementLayout {
    using Scalar = T;
    static void addShape(std::vector<pybind11::ssize_t>&) {}
};

template <class Vector, class T, int N>
struct VectorLayout {
    using Scalar = T;
    static void addShape(std::vector<pybind11::ssize_t>& shape) { shape.push_back(N); }
};

template <class T>
struct ElementLayout<Korvane::Math::Vector2<T>> : VectorLayout<Korvane::Math::Vector2<T>, T, 2> {};
template <class T>
struct ElementLayout<Korvane::Math::Vector3<T>> : VectorLayout<Korvane::Math::Vector3<T>, T, 3> {};
template <class T>
struct ElementLayout<Korvane::Math::Vector4<T>> : VectorLayout<Korvane::Math::Vector4<T>, T, 4> {};

template <class Row, int Rows>
struct ElementLayout<Korvane::Math::Matrix<Row, Rows>> {
    using Scalar = typename ElementLayout<Row>::Scalar;
    static void addShape(std::vector<pybind11::ssize_t>& shape)
    {
        shape.push_back(Rows);
        ElementLayout<Row>::addShape(shape);
    }
};

template <class T>
using ScalarOf = typename ElementLayout<T>::Scalar;

/// The shape of an array of `size` elements.
template <class T>
std::vector<pybind11::ssize_t> shapeOf(std::size_t size)
{
    std::vector<pybind11::ssize_t> shape{static_cast<pybind11::ssize_t>(size)};
    ElementLayout<T>::addShape(shape);
    return shape;
}

}  // namespace TessaryPython
