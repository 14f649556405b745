#pragma once

#include <Korvane/Math.h>

namespace TessaryMesh {

/// The scalars of an element type: vectors have columns of them, matrices rows of columns.
template <class T>
struct Scalars {
    using Type = T;
    static constexpr unsigned kRows = 0, kColumns = 0, kCount = 1;
};

template <class T, unsigned Columns>
struct ScalarsOfVector {
    using Type = T;
    static constexpr unsigned kRows = 0, kColumns = Columns, kCount = Columns;
};

template <class T>
struct Scalars<Korvane::Math::Vector2<T>> : ScalarsOfVector<T, 2> {};
template <class T>
struct Scalars<Korvane::Math::Vector3<T>> : ScalarsOfVector<T, 3> {};
template <class T>
struct Scalars<Korvane::Math::Vector4<T>> : ScalarsOfVector<T, 4> {};

template <class Row, int Rows>
struct Scalars<Korvane::Math::Matrix<Row, Rows>> {
    using Type = typename Scalars<Row>::Type;
    static constexpr unsigned kRows = Rows, kColumns = Scalars<Row>::kCount,
                              kCount = kRows * kColumns;
};

/// The first scalar of a value, which the others follow.
template <class T>
const typename Scalars<T>::Type* scalarsOf(const T* value)
{
    return reinterpret_cast<const typename Scalars<T>::Type*>(value);
}
template <class T>
typename Scalars<T>::Type* scalarsOf(T* value)
{
    return reinterpret_cast<typename Scalars<T>::Type*>(value);
}

}  // namespace TessaryMesh
