#pragma once

/// @file
/// Vectors and matrices: plain structs that compare by ==.

namespace Korvane {
namespace Math {

/// Two numbers.
template <class T>
struct Vector2 {
    T x;  ///< first
    T y;  ///< second
    friend constexpr bool operator==(const Vector2& a, const Vector2& b)
    {
        return a.x == b.x && a.y == b.y;
    }
    friend constexpr bool operator!=(const Vector2& a, const Vector2& b) { return !(a == b); }
};

/// Three numbers.
template <class T>
struct Vector3 {
    T x;  ///< first
    T y;  ///< second
    T z;  ///< third
    friend constexpr bool operator==(const Vector3& a, const Vector3& b)
    {
        return a.x == b.x && a.y == b.y && a.z == b.z;
    }
    friend constexpr bool operator!=(const Vector3& a, const Vector3& b) { return !(a == b); }
};

/// Four numbers.
template <class T>
struct Vector4 {
    T x;  ///< first
    T y;  ///< second
    T z;  ///< third
    T w;  ///< fourth
    friend constexpr bool operator==(const Vector4& a, const Vector4& b)
    {
        return a.x == b.x && a.y == b.y && a.z == b.z && a.w == b.w;
    }
    friend constexpr bool operator!=(const Vector4& a, const Vector4& b) { return !(a == b); }
};

/// `Rows` row vectors, stored one after the other.
template <class Row, int Rows>
struct Matrix {
    Row row[Rows];  ///< from the first to the last
    friend constexpr bool operator==(const Matrix& a, const Matrix& b)
    {
        for (int r = 0; r < Rows; ++r)
            if (!(a.row[r] == b.row[r]))
                return false;
        return true;
    }
    friend constexpr bool operator!=(const Matrix& a, const Matrix& b) { return !(a == b); }
};

/// What its name says: float3 is three floats, int2x3 two rows of three ints.
/// @{
using int2 = Vector2<int>;
using int3 = Vector3<int>;
using int4 = Vector4<int>;
using int2x2 = Matrix<int2, 2>;
using int2x3 = Matrix<int3, 2>;

using uint2 = Vector2<unsigned int>;
using uint3 = Vector3<unsigned int>;
using uint4 = Vector4<unsigned int>;

using float2 = Vector2<float>;
using float3 = Vector3<float>;
using float4 = Vector4<float>;
using float2x2 = Matrix<float2, 2>;
using float2x3 = Matrix<float3, 2>;
using float3x3 = Matrix<float3, 3>;
using float4x4 = Matrix<float4, 4>;

using double2 = Vector2<double>;
using double3 = Vector3<double>;
using double4 = Vector4<double>;
using double2x2 = Matrix<double2, 2>;
using double2x3 = Matrix<double3, 2>;
using double3x3 = Matrix<double3, 3>;
using double4x4 = Matrix<double4, 4>;

using short2 = Vector2<short>;
using short3 = Vector3<short>;
using short2x2 = Matrix<short2, 2>;
using short2x3 = Matrix<short3, 2>;

using uchar3 = Vector3<unsigned char>;
using uchar4 = Vector4<unsigned char>;
/// @}

}  // namespace Math
}  // namespace Korvane
