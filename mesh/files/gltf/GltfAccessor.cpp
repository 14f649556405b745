#include "files/gltf/GltfAccessor.h"

#include "files/FileErrors.h"

#include <algorithm>
#include <cstring>

namespace TessaryMesh {
namespace {

using Code = FileError::Code;

template <class T>
T valueAt(const unsigned char* bytes)
{
    unsigned char ordered[sizeof(T)];
    std::memcpy(ordered, bytes, sizeof(T));
    if (__BYTE_ORDER__ != __ORDER_LITTLE_ENDIAN__)
        std::reverse(ordered, ordered + sizeof(T));
    T value;
    std::memcpy(&value, ordered, sizeof(T));
    return value;
}

// A byte or short that stands for a share, or for itself.
template <class T>
float shareAt(const unsigned char* bytes, bool isNormalized)
{
    const auto value = static_cast<float>(valueAt<T>(bytes));
    constexpr float kMost =
        sizeof(T) == 1 ? (T(-1) < T(0) ? 127 : 255) : (T(-1) < T(0) ? 32767 : 65535);
    return isNormalized ? std::max(value / kMost, -1.0f) : value;
}

}  // namespace

GltfAccessor::GltfAccessor(const tinygltf::Model& model, int index, const std::string& path)
{
    const auto fail = [&](const std::string& what, Code code = Code::Malformed) {
        failToRead(code, path, "accessor " + std::to_string(index) + " " + what);
    };
    if (index < 0 || static_cast<std::size_t>(index) >= model.accessors.size())
        fail("is named, but there is none; write the file again");
    const tinygltf::Accessor& accessor = model.accessors[static_cast<std::size_t>(index)];
    if (accessor.sparse.isSparse || accessor.bufferView < 0)
        fail("is sparse or has no numbers, which is not read; write all numbers",
             Code::Unsupported);
    if (static_cast<std::size_t>(accessor.bufferView) >= model.bufferViews.size())
        fail("names a buffer view that is none; write the file again");
    const auto& view = model.bufferViews[static_cast<std::size_t>(accessor.bufferView)];
    const int stride = accessor.ByteStride(view);
    const int size =
        tinygltf::GetComponentSizeInBytes(static_cast<uint32_t>(accessor.componentType));
    const int width = tinygltf::GetNumComponentsInType(static_cast<uint32_t>(accessor.type));
    if (stride <= 0 || size <= 0 || width <= 0 || view.buffer < 0 ||
        static_cast<std::size_t>(view.buffer) >= model.buffers.size())
        fail("has a type or a buffer that is none; write the file again");
    const auto& bytes = model.buffers[static_cast<std::size_t>(view.buffer)].data;
    const std::size_t begin = view.byteOffset + accessor.byteOffset;
    const auto element = static_cast<std::size_t>(size) * static_cast<std::size_t>(width);
    m_stride = static_cast<std::size_t>(stride);
    m_count = accessor.count;
    const bool isOutside =
        begin < view.byteOffset || begin > bytes.size() ||
        (m_count > 0 && (bytes.size() - begin < element ||
                         (m_count - 1) > (bytes.size() - begin - element) / m_stride));
    if (isOutside)
        fail("leads out of its buffer; write the file again");
    m_bytes = bytes.data() + begin;
    m_width = static_cast<unsigned>(width);
    m_size = static_cast<unsigned>(size);
    m_type = accessor.componentType;
    m_isMatrix = accessor.type == TINYGLTF_TYPE_MAT2 || accessor.type == TINYGLTF_TYPE_MAT3 ||
                 accessor.type == TINYGLTF_TYPE_MAT4;
    m_isNormalized = accessor.normalized;
}

float GltfAccessor::number(std::size_t i, unsigned k) const
{
    const unsigned char* const bytes = place(i, k);
    switch (m_type) {
        case TINYGLTF_COMPONENT_TYPE_FLOAT:
            return valueAt<float>(bytes);
        case TINYGLTF_COMPONENT_TYPE_BYTE:
            return shareAt<signed char>(bytes, m_isNormalized);
        case TINYGLTF_COMPONENT_TYPE_UNSIGNED_BYTE:
            return shareAt<unsigned char>(bytes, m_isNormalized);
        case TINYGLTF_COMPONENT_TYPE_SHORT:
            return shareAt<short>(bytes, m_isNormalized);
        case TINYGLTF_COMPONENT_TYPE_UNSIGNED_SHORT:
            return shareAt<unsigned short>(bytes, m_isNormalized);
        default:
            return static_cast<float>(integer(i, k));
    }
}

uint GltfAccessor::integer(std::size_t i, unsigned k) const
{
    const unsigned char* const bytes = place(i, k);
    return m_size == 1   ? *bytes
           : m_size == 2 ? valueAt<unsigned short>(bytes)
           : m_size == 4 ? valueAt<uint>(bytes)
                         : 0;
}

}  // namespace TessaryMesh
