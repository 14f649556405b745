#include "files/gltf/GltfScene.h"

#include "base/MachineMemory.h"
#include "base/MessageText.h"
#include "files/FileErrors.h"

#include <algorithm>
#include <set>

namespace TessaryMesh {
namespace {

using namespace Korvane::Geometry;
using Code = FileError::Code;
using Korvane::Math::float4;

// What a point or a corner takes, with its attributes, at least.
constexpr std::uint64_t kBytesPerElement = 64;

// "texcoord" for TEXCOORD_0, "texcoord_1" for TEXCOORD_1; empty for what is none of these.
std::string numberedName(const std::string& semantic, const std::string& stem,
                         const std::string& name)
{
    if (semantic.compare(0, stem.size(), stem) != 0 || semantic.size() == stem.size())
        return {};
    const std::string number = semantic.substr(stem.size());
    return number == "0" ? name : name + "_" + number;
}

// The name of the property; empty where a mesh has none for the attribute.
std::string propertyName(const std::string& semantic)
{
    if (semantic == "NORMAL")
        return "normal";
    if (semantic == "TANGENT")
        return "tangent";
    if (semantic.size() > 1 && semantic[0] == '_')
        return semantic.substr(1);
    const std::string texcoord = numberedName(semantic, "TEXCOORD_", "texcoord");
    return texcoord.empty() ? numberedName(semantic, "COLOR_", "color") : texcoord;
}

}  // namespace

MutablePtr<Object> GltfScene::mesh()
{
    visitNodes();
    MutablePtr<Object> mesh =
        makeMesh(std::move(m_points), std::move(m_offset), std::move(m_vertex));
    for (const auto& [semantic, sources] : m_sources)
        addAttribute(*mesh, semantic, sources);
    addNames(*mesh);
    warnOfTheRest();
    return mesh;
}

// Every node hangs on one other at most, so that no file unfolds into more nodes than it has.
void GltfScene::visitNodes()
{
    struct Visit {
        int node;
        GltfTransform transform;
    };
    std::vector<Visit> waiting;
    const auto add = [&](const std::vector<int>& nodes, const GltfTransform& transform) {
        for (std::size_t i = nodes.size(); i-- > 0;)
            waiting.push_back({nodes[i], transform});
    };
    const int scene = std::max(m_model.defaultScene, 0);
    if (static_cast<std::size_t>(scene) < m_model.scenes.size()) {
        add(m_model.scenes[static_cast<std::size_t>(scene)].nodes, {});
    } else {
        for (std::size_t i = 0; i < m_model.meshes.size(); ++i)
            addMesh(static_cast<int>(i), {}, m_model.meshes[i].name);
        if (!m_model.meshes.empty())
            m_warnings.push_back("the file has no scene; its meshes are read where they stand");
    }
    std::set<int> seen;
    while (!waiting.empty()) {
        const Visit visit = waiting.back();
        waiting.pop_back();
        if (visit.node < 0 || static_cast<std::size_t>(visit.node) >= m_model.nodes.size() ||
            !seen.insert(visit.node).second)
            failToRead(Code::Malformed, m_path,
                       "node " + std::to_string(visit.node) +
                           " is named twice, or is none; write the file again");
        const auto& node = m_model.nodes[static_cast<std::size_t>(visit.node)];
        const GltfTransform transform = visit.transform * GltfTransform::of(node);
        if (node.mesh >= 0)
            addMesh(node.mesh, transform, node.name);
        add(node.children, transform);
    }
}

void GltfScene::limit(std::size_t more)
{
    const std::uint64_t elements = m_points.size() + m_vertex.size() + std::uint64_t{more};
    if (m_points.size() + std::uint64_t{more} >= kNone ||
        m_vertex.size() + std::uint64_t{more} >= kNone)
        failToRead(Code::TooLarge, m_path,
                   "has more points or corners than 32-bit indices can name; split the mesh");
    if (elements > machineMemory() / kBytesPerElement)
        throw OutOfMemory(inputName(m_path), "does not fit into memory; split the mesh into parts");
}

void GltfScene::addMesh(int index, const GltfTransform& transform, const std::string& object)
{
    throwIfCancelled();
    if (static_cast<std::size_t>(index) >= m_model.meshes.size())
        failToRead(Code::Malformed, m_path,
                   "mesh " + std::to_string(index) + " is named, but there is none");
    std::vector<Vertices> known;
    for (const auto& primitive : m_model.meshes[static_cast<std::size_t>(index)].primitives) {
        m_targets += !primitive.targets.empty();
        if (primitive.mode > 0 && primitive.mode < TINYGLTF_MODE_TRIANGLES) {
            ++m_lines;
            continue;
        }
        const std::size_t first = addVertices(primitive.attributes, transform, known);
        const GltfAccessor points(m_model, primitive.attributes.at("POSITION"), m_path);
        if (primitive.mode != TINYGLTF_MODE_POINTS)
            addFaces(primitive, first, points.count(), transform);
        addFaceNames(primitive, object);
    }
}

std::size_t GltfScene::addVertices(const Attributes& attributes, const GltfTransform& transform,
                                   std::vector<Vertices>& known)
{
    for (const Vertices& each : known)
        if (each.attributes == attributes)
            return each.first;
    const auto position = attributes.find("POSITION");
    if (position == attributes.end())
        failToRead(Code::Unsupported, m_path, "a primitive has no POSITION; give it points");
    const GltfAccessor points(m_model, position->second, m_path);
    if (points.width() != 3)
        failToRead(Code::Malformed, m_path,
                   "accessor " + std::to_string(position->second) +
                       " of POSITION has not three numbers for a point");
    limit(points.count());
    const std::size_t first = m_points.size();
    const bool isMoved = !transform.isIdentity();
    for (std::size_t i = 0; i < points.count(); ++i) {
        const float3 p{points.number(i, 0), points.number(i, 1), points.number(i, 2)};
        m_points.push_back(isMoved ? transform.point(p) : p);
    }
    m_moved += isMoved ? points.count() : 0;
    for (const auto& [semantic, accessor] : attributes)
        if (semantic != "POSITION" && points.count() > 0)
            m_sources[semantic].push_back({accessor, first, transform});
    known.push_back({attributes, first});
    return first;
}

void GltfScene::addFaces(const tinygltf::Primitive& primitive, std::size_t first,
                         std::size_t points, const GltfTransform& transform)
{
    Array<uint> corners;
    if (primitive.indices >= 0) {
        const GltfAccessor indices(m_model, primitive.indices, m_path);
        limit(indices.count());
        for (std::size_t i = 0; i < indices.count(); ++i) {
            const uint index = indices.integer(i);
            if (index >= points)
                failToRead(Code::Malformed, m_path,
                           "accessor " + std::to_string(primitive.indices) + " names point " +
                               std::to_string(index) + " of " + std::to_string(points) +
                               "; correct the indices");
            corners.push_back(static_cast<uint>(first + index));
        }
    } else {
        limit(points);
        for (std::size_t i = 0; i < points; ++i)
            corners.push_back(static_cast<uint>(first + i));
    }
    addTriangles(corners, primitive.mode, transform.isMirrored());
}

// A mirrored triangle would show its back.
void GltfScene::addTriangles(const Array<uint>& corners, int mode, bool isMirrored)
{
    const bool isList = mode != TINYGLTF_MODE_TRIANGLE_STRIP && mode != TINYGLTF_MODE_TRIANGLE_FAN;
    const bool isStrip = mode == TINYGLTF_MODE_TRIANGLE_STRIP;
    limit(isList ? corners.size() : 3 * corners.size());
    for (std::size_t i = 2; i < corners.size(); i += isList ? 3 : 1) {
        const bool isTurned = isStrip && i % 2 == 1;
        const uint a = corners[isList || isStrip ? i - 2 : 0];
        const uint b = corners[i - 1], c = corners[i];
        m_vertex.push_back(a);
        m_vertex.push_back(isTurned != isMirrored ? c : b);
        m_vertex.push_back(isTurned != isMirrored ? b : c);
        m_offset.push_back(static_cast<uint>(m_vertex.size()));
    }
}

void GltfScene::addFaceNames(const tinygltf::Primitive& primitive, const std::string& object)
{
    const std::size_t faces = m_offset.size() - 1;
    const auto index = static_cast<std::size_t>(primitive.material);
    String material;
    if (primitive.material >= 0 && index < m_model.materials.size()) {
        const std::string& name = m_model.materials[index].name;
        material = String(name.empty() ? "material_" + std::to_string(index) : name);
        m_hasMaterials = true;
    }
    m_hasObjects = m_hasObjects || !object.empty();
    m_materials.resize(faces, material);
    m_objects.resize(faces, String(object));
}

void GltfScene::addAttribute(Object& mesh, const std::string& semantic,
                             const std::vector<Source>& sources)
{
    const GltfAccessor first(m_model, sources[0].accessor, m_path);
    const std::string name = propertyName(semantic);
    bool isSame = !name.empty() && !mesh.hasProperty(name) && String(name) != sRenderSettings;
    for (const Source& source : sources) {
        const GltfAccessor each(m_model, source.accessor, m_path);
        isSame = isSame && each.width() == first.width() && each.isMatrix() == first.isMatrix();
    }
    const bool isCustom = semantic[0] == '_' && !first.isFloat() && !first.isNormalized();
    if (isSame && isCustom && first.width() == 1) {
        switch (first.type()) {
            case TINYGLTF_COMPONENT_TYPE_BYTE:
                return addIntegers<signed char>(mesh, name, sources);
            case TINYGLTF_COMPONENT_TYPE_UNSIGNED_BYTE:
                return addIntegers<unsigned char>(mesh, name, sources);
            case TINYGLTF_COMPONENT_TYPE_SHORT:
                return addIntegers<short>(mesh, name, sources);
            default:
                return addIntegers<unsigned short>(mesh, name, sources);
        }
    }
    if (isSame && first.isMatrix() && first.width() == 4)
        return addValues<Korvane::Math::float2x2>(mesh, name, semantic, sources);
    if (isSame && first.width() == 9)
        return addValues<Korvane::Math::float3x3>(mesh, name, semantic, sources);
    if (isSame && first.width() == 16)
        return addValues<Korvane::Math::float4x4>(mesh, name, semantic, sources);
    if (isSame && first.width() == 1)
        return addValues<float>(mesh, name, semantic, sources);
    if (isSame && first.width() == 2)
        return addValues<float2>(mesh, name, semantic, sources);
    if (isSame && first.width() == 3)
        return addValues<float3>(mesh, name, semantic, sources);
    if (isSame && first.width() == 4)
        return addValues<float4>(mesh, name, semantic, sources);
    m_warnings.push_back("attribute " + quoted(semantic) +
                         " has no form in a mesh, or not the same one everywhere, and is left out");
}

template <class T>
void GltfScene::addValues(Object& mesh, const std::string& name, const std::string& semantic,
                          const std::vector<Source>& sources)
{
    const std::size_t points = getElementCount(mesh, sPointComp);
    const auto values = makeMutable<Array<T>>(points);
    std::size_t covered = 0;
    for (const Source& source : sources) {
        const GltfAccessor from(m_model, source.accessor, m_path);
        const std::size_t count = std::min(from.count(), points - source.first);
        const unsigned side = from.width() == 4 ? 2 : from.width() == 9 ? 3 : 4;
        covered += count;
        for (std::size_t i = 0; i < count; ++i) {
            auto* const to = reinterpret_cast<float*>(values->data() + source.first + i);
            for (unsigned k = 0; k < from.width(); ++k)  // matrices lie column by column there
                to[k] = from.number(i, from.isMatrix() ? k % side * side + k / side : k);
            if (source.transform.isIdentity() || from.width() < 3)
                continue;
            auto* const vector = reinterpret_cast<float3*>(to);
            if (semantic == "NORMAL")
                *vector = source.transform.normal(*vector);
            else if (semantic == "TANGENT")
                *vector = source.transform.direction(*vector);
        }
    }
    if (covered < points)
        m_warnings.push_back("attribute " + quoted(semantic) + " is zero on " +
                             std::to_string(points - covered) + " points that have none");
    addDataGeoProperty<T>(mesh, name, sPointComp, values);
}

template <class T>
void GltfScene::addIntegers(Object& mesh, const std::string& name,
                            const std::vector<Source>& sources)
{
    const std::size_t points = getElementCount(mesh, sPointComp);
    const auto values = makeMutable<Array<T>>(points);
    for (const Source& source : sources) {
        const GltfAccessor from(m_model, source.accessor, m_path);
        const std::size_t count = std::min(from.count(), points - source.first);
        for (std::size_t i = 0; i < count; ++i)
            (*values)[source.first + i] = static_cast<T>(from.integer(i));
    }
    addDataGeoProperty<T>(mesh, name, sPointComp, values);
}

void GltfScene::addNames(Object& mesh)
{
    if (m_hasMaterials && !mesh.hasProperty("material"))
        addDataGeoProperty<String>(mesh, "material", sFaceComp,
                                   makeMutable<Array<String>>(std::move(m_materials)));
    if (m_hasObjects && !mesh.hasProperty("object"))
        addDataGeoProperty<String>(mesh, "object", sFaceComp,
                                   makeMutable<Array<String>>(std::move(m_objects)));
}

void GltfScene::warn(std::size_t count, const char* one, const char* many)
{
    if (count > 0)
        m_warnings.push_back(std::to_string(count) + " " + (count == 1 ? one : many));
}

void GltfScene::warnOfTheRest()
{
    warn(m_moved, "point was moved as its node says", "points were moved as their nodes say");
    warn(m_lines, "primitive of lines left out", "primitives of lines left out");
    warn(m_targets, "primitive with shapes to morph into, which are left out",
         "primitives with shapes to morph into, which are left out");
    warn(m_model.skins.size(), "skin left out: the mesh stands as it was bound",
         "skins left out: the meshes stand as they were bound");
    warn(m_model.animations.size(), "animation left out", "animations left out");
}

}  // namespace TessaryMesh
