#include "files/gltf/Gltf.h"

#include "base/MeshArrays.h"
#include "base/MessageText.h"
#include "base/PropertyKinds.h"
#include "base/Scalars.h"
#include "files/FileErrors.h"
#include "files/PropertySearch.h"
#include "files/gltf/GltfModel.h"
#include "files/gltf/GltfVertices.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <limits>
#include <map>

namespace TessaryMesh {
namespace {

using namespace Korvane::Geometry;
using Korvane::Math::float4;
using Korvane::Math::uchar3;
using Korvane::Math::uchar4;

template <class T>
constexpr bool isColour = std::is_same_v<T, float3> || std::is_same_v<T, float4> ||
                          std::is_same_v<T, uchar3> || std::is_same_v<T, uchar4>;

template <class T>
constexpr bool isSmallInteger =
    std::is_same_v<T, signed char> || std::is_same_v<T, unsigned char> ||
    std::is_same_v<T, short> || std::is_same_v<T, unsigned short>;

// Floats, their vectors and square matrices; colours of bytes; small integers.
template <class T>
constexpr bool hasForm()
{
    if constexpr (std::is_same_v<T, String>)
        return false;
    else
        return isColour<T> || isSmallInteger<T> ||
               (std::is_same_v<typename Scalars<T>::Type, float> &&
                (Scalars<T>::kRows == 0 || Scalars<T>::kRows == Scalars<T>::kColumns));
}

template <class T>
int typeOfNumbers()
{
    using S = typename Scalars<T>::Type;
    return std::is_same_v<S, float>           ? TINYGLTF_COMPONENT_TYPE_FLOAT
           : std::is_same_v<S, signed char>   ? TINYGLTF_COMPONENT_TYPE_BYTE
           : std::is_same_v<S, unsigned char> ? TINYGLTF_COMPONENT_TYPE_UNSIGNED_BYTE
           : std::is_same_v<S, short>         ? TINYGLTF_COMPONENT_TYPE_SHORT
                                              : TINYGLTF_COMPONENT_TYPE_UNSIGNED_SHORT;
}

template <class T>
int shapeOfNumbers()
{
    constexpr unsigned kCount = Scalars<T>::kCount;
    if (Scalars<T>::kRows > 0)
        return kCount == 4   ? TINYGLTF_TYPE_MAT2
               : kCount == 9 ? TINYGLTF_TYPE_MAT3
                             : TINYGLTF_TYPE_MAT4;
    return kCount == 1 ? TINYGLTF_TYPE_SCALAR
                       : static_cast<int>(kCount);  // TINYGLTF_TYPE_VEC2 is 2
}

/// A property that goes out as an attribute.
struct Attribute {
    std::string semantic;
    std::function<void()> put;  // appends the values of all vertices
};

class ModelMaker {
public:
    ModelMaker(const Object& mesh, const OutputFile& output)
        : m_object(mesh), m_output(output), m_mesh(mesh), m_search(mesh, "glTF")
    {}

    tinygltf::Model model()
    {
        m_model.asset.version = "2.0";
        m_model.asset.generator = "tessary";
        m_model.buffers.emplace_back();
        findNames();
        for (const String& name : m_object.propertyNames())
            findAttribute(name);
        m_vertices = GltfVertices::find(m_mesh.points->size(), *m_mesh.faceVertex, m_comparisons);
        if (!m_mesh.points->empty())
            putMesh();
        if (m_model.buffers[0].data.empty())
            m_model.buffers.clear();
        return std::move(m_model);
    }

    std::vector<std::string> warnings()
    {
        std::vector<std::string> lines = m_search.leftOut();
        const Array<uint>& offset = *m_mesh.faceOffset;
        std::size_t large = 0;
        for (std::size_t face = 0; face < m_mesh.faceCount(); ++face)
            large += offset[face + 1] - offset[face] > 3;
        if (large > 0)
            lines.push_back(std::to_string(large) +
                            (large == 1 ? " face of more than three corners becomes"
                                        : " faces of more than three corners become") +
                            " triangles, a fan around the first corner, because glTF holds no "
                            "larger ones");
        if (const std::size_t more = m_vertices.point.size() - m_mesh.points->size())
            lines.push_back(std::to_string(more) + (more == 1 ? " point is" : " points are") +
                            " added where corners of one point have different values, because "
                            "glTF holds values of points only");
        lines.insert(lines.end(), m_warnings.begin(), m_warnings.end());
        return lines;
    }

private:
    void findNames()
    {
        if (m_search.find("material", sFaceComp, m_mesh.faceCount(), m_materials))
            for (const String& name : *m_materials->values)
                if (!isUtf8(name.view())) {
                    m_warnings.push_back("the material " + quoted(name.view()) +
                                         " and others that are not UTF-8 are written with \"?\"");
                    break;
                }
        std::optional<ElementValues<String>> objects;
        const auto values = dataArray<String>(m_object, "object");
        if (!values || values->empty() || !isUtf8((*values)[0].view()) ||
            !std::all_of(values->begin(), values->end(),
                         [&](const String& name) { return name == (*values)[0]; }))
            return;
        if (m_search.find("object", sFaceComp, m_mesh.faceCount(), objects))
            m_objectName = (*values)[0].c_str();
    }

    void findAttribute(const String& name)
    {
        const auto property = findElementProperty(m_object, name);
        if (!property || isTopology(name) || property->component == sFaceComp ||
            !isUtf8(name.view()))
            return;
        Korvane::visitArray(getDataGeoProperty(m_object, name)->getProperty(sData),
                            [&](const auto& values, const char*) {
                                using T = typename std::decay_t<decltype(*values)>::value_type;
                                if constexpr (hasForm<T>())
                                    findValues<T>(name, property->component);
                            });
    }

    template <class T>
    void findValues(const String& name, const String& component)
    {
        const bool onPoints = component == sPointComp;
        std::optional<ElementValues<T>> found;
        const std::size_t count = onPoints ? m_mesh.points->size() : m_mesh.faceVertex->size();
        const std::string semantic = semanticOf<T>(std::string(name.view()));
        if (semantic.empty() || !m_search.find(name.c_str(), component, count, found))
            return;
        const auto values = std::make_shared<ElementValues<T>>(std::move(*found));
        if (!onPoints)
            m_comparisons.push_back([values](uint a, uint b) {
                const T first = values->valueOf(a), second = values->valueOf(b);
                return std::memcmp(&first, &second, sizeof(T));
            });
        m_attributes.push_back({semantic, [this, values, onPoints, semantic] {
                                    putValues<T>(*values, onPoints, semantic);
                                }});
    }

    // "TEXCOORD_1" for texcoord_1 where there is a TEXCOORD_0: numbers have no gaps.
    std::string numbered(const std::string& name, const std::string& stem, const char* semantic,
                         int& next)
    {
        if (name != (next == 0 ? stem : stem + "_" + std::to_string(next)))
            return {};
        return semantic + std::to_string(next++);
    }

    template <class T>
    std::string semanticOf(const std::string& name)
    {
        if (std::is_same_v<T, float3> && name == "normal")
            return "NORMAL";
        if (std::is_same_v<T, float4> && name == "tangent")
            return "TANGENT";
        std::string found;
        if (std::is_same_v<T, float2>)
            found = numbered(name, "texcoord", "TEXCOORD_", m_nextTexcoord);
        if (isColour<T>)
            found = numbered(name, "color", "COLOR_", m_nextColour);
        const bool isByteVector = std::is_same_v<T, uchar3> || std::is_same_v<T, uchar4>;
        return found.empty() && !isByteVector && !name.empty() ? "_" + name : found;
    }

    // Elements begin at multiples of four bytes.
    template <class T>
    void putValues(const ElementValues<T>& values, bool onPoints, const std::string& semantic)
    {
        constexpr std::size_t kStride = (sizeof(T) + 3) / 4 * 4;
        const std::size_t count = m_vertices.point.size();
        unsigned char* to = beginView(kStride * count, TINYGLTF_TARGET_ARRAY_BUFFER, kStride);
        for (std::size_t i = 0; i < count; ++i, to += kStride) {
            const uint element = onPoints ? m_vertices.point[i] : m_vertices.corner[i];
            const T value = element == kNone ? T() : values.valueOf(element);
            putNumbers(value, to);
        }
        const int accessor = addAccessor(0, count, typeOfNumbers<T>(), shapeOfNumbers<T>());
        m_model.accessors.back().normalized =
            std::is_same_v<T, uchar3> || std::is_same_v<T, uchar4>;
        m_shared[semantic] = accessor;
    }

    // Matrices lie column by column there, and numbers with the lowest byte first.
    template <class T>
    static void putNumbers(const T& value, unsigned char* to)
    {
        using S = typename Scalars<T>::Type;
        constexpr unsigned kRows = Scalars<T>::kRows, kColumns = Scalars<T>::kColumns;
        for (unsigned k = 0; k < Scalars<T>::kCount; ++k) {
            const S number = scalarsOf(&value)[kRows > 0 ? k % kRows * kColumns + k / kRows : k];
            std::memcpy(to + k * sizeof(S), &number, sizeof(S));
            if (__BYTE_ORDER__ != __ORDER_LITTLE_ENDIAN__)
                std::reverse(to + k * sizeof(S), to + (k + 1) * sizeof(S));
        }
    }

    unsigned char* beginView(std::size_t size, int target, std::size_t stride)
    {
        auto& bytes = m_model.buffers[0].data;
        const std::size_t begin = bytes.size();
        if (begin + size > std::numeric_limits<std::uint32_t>::max() - (1u << 24))
            failToWrite(FileError::Code::TooLarge, m_output.path(),
                        "more than the 4 GB that a glTF file holds; write PLY or NPZ");
        tinygltf::BufferView view;
        view.buffer = 0;
        view.byteOffset = begin;
        view.byteLength = size;
        view.byteStride = stride;
        view.target = target;
        m_model.bufferViews.push_back(view);
        bytes.resize(begin + size);
        return bytes.data() + begin;
    }

    int addAccessor(std::size_t begin, std::size_t count, int numbers, int shape)
    {
        tinygltf::Accessor accessor;
        accessor.bufferView = static_cast<int>(m_model.bufferViews.size()) - 1;
        accessor.byteOffset = begin;
        accessor.count = count;
        accessor.componentType = numbers;
        accessor.type = shape;
        m_model.accessors.push_back(accessor);
        return static_cast<int>(m_model.accessors.size()) - 1;
    }

    void putMesh()
    {
        ElementValues<float3> positions;
        positions.values = m_mesh.points;
        putValues(positions, true, "POSITION");
        putBounds();
        for (const Attribute& attribute : m_attributes)
            attribute.put();
        tinygltf::Mesh mesh;
        if (m_mesh.faceCount() > 0)
            putTriangles(mesh);
        else
            mesh.primitives.push_back(primitive(TINYGLTF_MODE_POINTS, -1));
        m_model.meshes.push_back(std::move(mesh));
        tinygltf::Node node;
        node.mesh = 0;
        node.name = m_objectName;
        m_model.nodes.push_back(std::move(node));
        m_model.scenes.emplace_back();
        m_model.scenes[0].nodes.push_back(0);
        m_model.defaultScene = 0;
    }

    void putBounds()
    {
        auto& accessor = m_model.accessors.back();
        const float3& p = (*m_mesh.points)[0];
        accessor.minValues = accessor.maxValues = {p.x, p.y, p.z};
        for (const float3& point : *m_mesh.points)
            for (std::size_t k = 0; k < 3; ++k) {
                const double value = (&point.x)[k];
                accessor.minValues[k] = std::min(accessor.minValues[k], value);
                accessor.maxValues[k] = std::max(accessor.maxValues[k], value);
            }
    }

    tinygltf::Primitive primitive(int mode, int material) const
    {
        tinygltf::Primitive made;
        made.mode = mode;
        made.material = material;
        for (const auto& [semantic, accessor] : m_shared)
            made.attributes[semantic] = accessor;
        return made;
    }

    // A primitive for each run of faces of one material.
    void putTriangles(tinygltf::Mesh& mesh)
    {
        const Array<uint>& offset = *m_mesh.faceOffset;
        const std::size_t faces = m_mesh.faceCount();
        const std::size_t triangles = m_mesh.faceVertex->size() - 2 * faces;
        unsigned char* to = beginView(12 * triangles, TINYGLTF_TARGET_ELEMENT_ARRAY_BUFFER, 0);
        std::size_t written = 0;
        for (std::size_t begin = 0, end = 0; begin < faces; begin = end) {
            const std::size_t before = written;
            const int material = materialOf(begin);
            for (end = begin; end < faces && materialOf(end) == material; ++end)
                for (uint k = offset[end] + 2; k < offset[end + 1]; ++k, ++written)
                    for (const uint corner : {offset[end], k - 1, k}) {
                        putNumbers(m_vertices.ofCorner[corner], to);
                        to += 4;
                    }
            mesh.primitives.push_back(primitive(TINYGLTF_MODE_TRIANGLES, material));
            mesh.primitives.back().indices =
                addAccessor(12 * before, 3 * (written - before),
                            TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT, TINYGLTF_TYPE_SCALAR);
        }
    }

    int materialOf(std::size_t face)
    {
        const uint index = m_materials ? m_materials->indexOf(face) : kNone;
        if (index == kNone || (*m_materials->values)[index].empty())
            return -1;
        std::string name((*m_materials->values)[index].view());
        if (!isUtf8(name))
            std::replace_if(
                name.begin(), name.end(), [](char c) { return c < 0 || c >= 127; }, '?');
        const auto [found, isNew] =
            m_materialIndex.emplace(name, static_cast<int>(m_materialIndex.size()));
        if (isNew) {
            m_model.materials.emplace_back();
            m_model.materials.back().name = name;
        }
        return found->second;
    }

    const Object& m_object;
    const OutputFile& m_output;
    MeshArrays m_mesh;
    PropertySearch m_search;
    std::optional<ElementValues<String>> m_materials;
    std::string m_objectName;
    std::vector<Attribute> m_attributes;
    std::vector<GltfVertices::Compare> m_comparisons;
    GltfVertices m_vertices;
    tinygltf::Model m_model;
    std::map<std::string, int> m_shared;  // the accessor of each semantic
    std::map<std::string, int> m_materialIndex;
    int m_nextTexcoord = 0, m_nextColour = 0;
    std::vector<std::string> m_warnings;
};

std::vector<std::string> write(const Object& mesh, bool isBinary, OutputFile& output)
{
    ModelMaker maker(mesh, output);
    tinygltf::Model model = maker.model();
    throwIfCancelled();
    putGltf(model, isBinary, output);
    return maker.warnings();
}

}  // namespace

std::vector<std::string> writeGlb(const Object& mesh, OutputFile& output)
{
    return write(mesh, true, output);
}

std::vector<std::string> writeGltf(const Object& mesh, OutputFile& output)
{
    return write(mesh, false, output);
}

}  // namespace TessaryMesh
