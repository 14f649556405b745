#include "files/gltf/GltfTransform.h"

#include "base/Vectors.h"

namespace TessaryMesh {
namespace {

// Cofactors of M: the inverse transposed times the determinant.
double cofactor(const double (&m)[3][3], int i, int j)
{
    const int a = (i + 1) % 3, b = (i + 2) % 3, c = (j + 1) % 3, d = (j + 2) % 3;
    return m[a][c] * m[b][d] - m[a][d] * m[b][c];
}

double determinant(const double (&m)[3][3])
{
    return m[0][0] * cofactor(m, 0, 0) + m[0][1] * cofactor(m, 0, 1) + m[0][2] * cofactor(m, 0, 2);
}

}  // namespace

GltfTransform GltfTransform::of(const tinygltf::Node& node)
{
    GltfTransform transform;
    if (node.matrix.size() == 16) {
        for (std::size_t i = 0; i < 3; ++i) {
            for (std::size_t j = 0; j < 3; ++j)
                transform.m[i][j] = node.matrix[4 * j + i];  // column by column
            transform.t[i] = node.matrix[12 + i];
        }
        return transform;
    }
    if (node.rotation.size() == 4) {
        const double x = node.rotation[0], y = node.rotation[1], z = node.rotation[2],
                     w = node.rotation[3];
        const double rotation[3][3] = {
            {1 - 2 * (y * y + z * z), 2 * (x * y - z * w), 2 * (x * z + y * w)},
            {2 * (x * y + z * w), 1 - 2 * (x * x + z * z), 2 * (y * z - x * w)},
            {2 * (x * z - y * w), 2 * (y * z + x * w), 1 - 2 * (x * x + y * y)}};
        for (std::size_t i = 0; i < 9; ++i)
            transform.m[i / 3][i % 3] = rotation[i / 3][i % 3];
    }
    for (std::size_t i = 0; i < 9 && node.scale.size() == 3; ++i)
        transform.m[i / 3][i % 3] *= node.scale[i % 3];
    for (std::size_t i = 0; i < 3 && node.translation.size() == 3; ++i)
        transform.t[i] = node.translation[i];
    return transform;
}

GltfTransform GltfTransform::operator*(const GltfTransform& inner) const
{
    GltfTransform product;
    for (int i = 0; i < 3; ++i) {
        product.t[i] = t[i];
        for (int k = 0; k < 3; ++k)
            product.t[i] += m[i][k] * inner.t[k];
        for (int j = 0; j < 3; ++j)
            product.m[i][j] =
                (m[i][0] * inner.m[0][j] + m[i][1] * inner.m[1][j]) + m[i][2] * inner.m[2][j];
    }
    return product;
}

bool GltfTransform::isIdentity() const
{
    bool same = true;
    for (int i = 0; i < 3; ++i) {
        same = same && t[i] == 0;
        for (int j = 0; j < 3; ++j)
            same = same && m[i][j] == (i == j ? 1 : 0);
    }
    return same;
}

bool GltfTransform::isMirrored() const
{
    return determinant(m) < 0;
}

float3 GltfTransform::point(const float3& p) const
{
    const auto at = [&](int i) {
        return static_cast<float>(((m[i][0] * p.x + m[i][1] * p.y) + m[i][2] * p.z) + t[i]);
    };
    return {at(0), at(1), at(2)};
}

float3 GltfTransform::direction(const float3& d) const
{
    return unit({(m[0][0] * d.x + m[0][1] * d.y) + m[0][2] * d.z,
                 (m[1][0] * d.x + m[1][1] * d.y) + m[1][2] * d.z,
                 (m[2][0] * d.x + m[2][1] * d.y) + m[2][2] * d.z});
}

float3 GltfTransform::normal(const float3& n) const
{
    const double sign = isMirrored() ? -1 : 1;
    double v[3];
    for (int i = 0; i < 3; ++i)
        v[i] =
            sign * ((cofactor(m, i, 0) * n.x + cofactor(m, i, 1) * n.y) + cofactor(m, i, 2) * n.z);
    return unit({v[0], v[1], v[2]});
}

}  // namespace TessaryMesh
