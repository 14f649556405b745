#pragma once

#include "base/Host.h"
#include "files/gltf/GltfModel.h"

#include <cstddef>
#include <string>

namespace TessaryMesh {

/// The numbers of an accessor, which lie inside its buffer: that is checked first.
class GltfAccessor {
public:
    /// Throws FileError, naming the accessor, where it is none, or leads out of its buffer.
    GltfAccessor(const tinygltf::Model& model, int index, const std::string& path);

    std::size_t count() const { return m_count; }
    unsigned width() const { return m_width; }  ///< numbers of an element
    bool isFloat() const { return m_type == TINYGLTF_COMPONENT_TYPE_FLOAT; }
    int type() const { return m_type; }  ///< of the numbers
    bool isMatrix() const { return m_isMatrix; }
    bool isNormalized() const { return m_isNormalized; }

    /// Number k of element i; a float also where integers stand for shares of one.
    float number(std::size_t i, unsigned k) const;

    /// The same of unsigned integers.
    uint integer(std::size_t i, unsigned k = 0) const;

private:
    const unsigned char* place(std::size_t i, unsigned k) const
    {
        return m_bytes + i * m_stride + std::size_t{k} * m_size;
    }

    const unsigned char* m_bytes = nullptr;
    std::size_t m_count = 0, m_stride = 0;
    unsigned m_width = 0, m_size = 0;
    int m_type = 0;
    bool m_isMatrix = false, m_isNormalized = false;
};

}  // namespace TessaryMesh
