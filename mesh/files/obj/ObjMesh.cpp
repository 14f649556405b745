#include "files/obj/ObjMesh.h"

#include "base/Host.h"
#include "base/ParallelBlocks.h"

#include <algorithm>
#include <numeric>
#include <unordered_set>

namespace TessaryMesh {
namespace {

template <class T>
using Shared = MutablePtr<Array<T>>;

template <class T>
Shared<T> arrayIf(bool exists, std::uint64_t count)
{
    return exists ? makeMutable<Array<T>>(static_cast<std::size_t>(count)) : Shared<T>();
}

// Copies a block's part of an array and gives its memory back.
template <class T>
void moveTo(const Shared<T>& array, std::uint64_t begin, Array<T>& part)
{
    if (array)
        std::copy(part.begin(), part.end(), array->data() + begin);
    part = {};
}

// A part that may be shorter than its place: `missing` stands for what it lacks.
template <class T>
void moveTo(const Shared<T>& array, std::uint64_t begin, std::uint64_t end, Array<T>& part,
            T missing)
{
    if (array)
        std::fill(array->data() + begin + part.size(), array->data() + end, missing);
    moveTo(array, begin, part);
}

class Assembly {
public:
    explicit Assembly(ObjFile& file)
        : m_file(file), m_hasColours(file.hasColours()), m_corners(file.total().corners)
    {
        const std::uint64_t* const values = file.total().values;
        const bool isWide = any([](const ObjBlock& block) { return block.hasWideTexcoords; });
        const bool isWeighted = any([](const ObjBlock& block) { return !block.weights.empty(); });
        m_points = arrayIf<float3>(true, values[kObjPoint]);
        m_colours = arrayIf<float3>(m_hasColours, values[kObjPoint]);
        m_weights = arrayIf<float>(isWeighted, values[kObjPoint]);
        m_texcoords = arrayIf<float2>(!isWide && values[kObjTexcoord] > 0, values[kObjTexcoord]);
        m_wideTexcoords = arrayIf<float3>(isWide, values[kObjTexcoord]);
        m_normals = arrayIf<float3>(values[kObjNormal] > 0, values[kObjNormal]);
        m_faceOffset = arrayIf<uint>(true, file.total().faces + 1);
        m_indices[kObjPoint] = arrayIf<uint>(true, m_corners);
        m_indices[kObjTexcoord] = arrayIf<uint>(values[kObjTexcoord] > 0, m_corners);
        m_indices[kObjNormal] = arrayIf<uint>(values[kObjNormal] > 0, m_corners);
    }

    MutablePtr<Object> mesh()
    {
        forEachBlock(m_file.blocks.size(), [this](std::size_t block) { moveBlock(block); });
        MutablePtr<Object> mesh = Geometry::makeMesh(std::move(*m_points), std::move(*m_faceOffset),
                                                     std::move(*m_indices[kObjPoint]));
        storePointValues(*mesh);
        storeCornerValues(m_wideTexcoords, kObjTexcoord, "texcoord", *mesh);
        storeCornerValues(m_texcoords, kObjTexcoord, "texcoord", *mesh);
        storeCornerValues(m_normals, kObjNormal, "normal", *mesh);
        storeFaceValues(&ObjBlock::object, "object", *mesh);
        storeFaceValues(&ObjBlock::group, "group", *mesh);
        storeFaceValues(&ObjBlock::material, "material", *mesh);
        storeFaceValues(&ObjBlock::smoothing, "smoothing", *mesh);
        storeLibraries(*mesh);
        storeTags(*mesh);
        return mesh;
    }

private:
    template <class Test>
    bool any(const Test& test) const
    {
        return std::any_of(m_file.blocks.begin(), m_file.blocks.end(), test);
    }

    void moveBlock(std::size_t i)
    {
        ObjBlock& block = m_file.blocks[i];
        const ObjCounts& start = m_file.starts[i];
        const std::uint64_t* const values = start.values;
        const ObjCounts& end = m_file.starts[i + 1];
        moveTo(m_points, values[kObjPoint], block.points);
        moveTo(m_colours, values[kObjPoint], block.colours);
        moveTo(m_weights, values[kObjPoint], end.values[kObjPoint], block.weights, 1.0f);
        moveTexcoords(block, values[kObjTexcoord]);
        moveTo(m_normals, values[kObjNormal], block.normals);
        for (const ObjKind kind : {kObjPoint, kObjTexcoord, kObjNormal}) {
            block.references[kind].addBefore(values[kind], block.indicesOf(kind).data());
            moveTo(m_indices[kind], start.corners, end.corners, block.indicesOf(kind), kNone);
        }
        for (uint& corner : block.faceEnds)
            corner += static_cast<uint>(start.corners);
        moveTo(m_faceOffset, start.faces + 1, block.faceEnds);
    }

    void moveTexcoords(ObjBlock& block, std::uint64_t begin)
    {
        if (!m_wideTexcoords || block.hasWideTexcoords) {
            moveTo(m_texcoords, begin, block.texcoords);
            moveTo(m_wideTexcoords, begin, block.wideTexcoords);
            return;
        }
        std::transform(block.texcoords.begin(), block.texcoords.end(),
                       m_wideTexcoords->data() + begin, [](const float2& uv) {
                           return float3{uv.x, uv.y, 0};
                       });
        block.texcoords = {};
    }

    void storePointValues(Object& mesh)
    {
        if (m_hasColours)
            Geometry::addDataGeoProperty<float3>(mesh, "color", Geometry::sPointComp, m_colours);
        if (m_weights)
            Geometry::addDataGeoProperty<float>(mesh, "weight", Geometry::sPointComp, m_weights,
                                                1.0f);
    }

    // Indexed through "NAME_index".
    template <class T>
    void storeCornerValues(const Shared<T>& values, ObjKind kind, const std::string& name,
                           Object& mesh)
    {
        if (!values)
            return;
        Geometry::addRangeGeoProperty(mesh, name + "_index", Geometry::sFaceVertexComp,
                                      m_indices[kind]);
        Geometry::addDataGeoProperty<T>(mesh, name, name + "_index", values);
    }

    // Of several statements before a face the last one holds. Faces before the first one get T().
    template <class T>
    void storeFaceValues(FaceRuns<T> ObjBlock::*runs, const char* name, Object& mesh)
    {
        if (!any([runs](const ObjBlock& block) { return !(block.*runs).empty(); }))
            return;
        const auto values = makeMutable<Array<T>>();
        T value = T();
        for (std::size_t i = 0; i < m_file.blocks.size(); ++i)
            for (auto& run : m_file.blocks[i].*runs) {
                values->resize(m_file.starts[i].faces + run.first, value);
                value = std::move(run.second);
            }
        values->resize(m_file.total().faces, value);
        Geometry::addDataGeoProperty<T>(mesh, name, Geometry::sFaceComp, values);
    }

    // Exporters repeat the statement for every object.
    void storeLibraries(Object& mesh)
    {
        std::unordered_set<String> known;
        std::string names;
        for (const ObjBlock& block : m_file.blocks)
            for (const String& name : block.libraries)
                if (known.insert(name).second) {
                    names += known.size() > 1 ? " " : "";
                    names += name.view();
                }
        if (!known.empty())
            mesh.setProperty("material_library", String(names));
    }

    void storeTags(Object& mesh)
    {
        std::string tags;
        for (const ObjBlock& block : m_file.blocks)
            for (const String& tag : block.tags) {
                tags += tags.empty() ? "" : "\n";
                tags += tag.view();
            }
        if (!tags.empty())
            mesh.setProperty("subdivision_tags", String(tags));
    }

    ObjFile& m_file;
    bool m_hasColours;
    std::uint64_t m_corners;
    Shared<float3> m_points, m_colours, m_wideTexcoords, m_normals;
    Shared<float2> m_texcoords;
    Shared<float> m_weights;
    Shared<uint> m_faceOffset, m_indices[kObjKinds];
};

}  // namespace

void ObjCounts::add(const ObjBlock& block)
{
    lines += block.lines;
    for (std::size_t kind = 0; kind < kObjKinds; ++kind)
        values[kind] += block.references[kind].count();
    corners += block.corners.size();
    faces += block.faceEnds.size();
}

std::uint64_t ObjFile::colourCount() const
{
    return std::accumulate(
        blocks.begin(), blocks.end(), std::uint64_t{0},
        [](std::uint64_t sum, const ObjBlock& block) { return sum + block.colourCount; });
}

bool ObjFile::hasColours() const
{
    const std::uint64_t points = total().values[kObjPoint];
    return points > 0 && colourCount() == points;
}

MutablePtr<Object> moveToMesh(ObjFile& file)
{
    return Assembly(file).mesh();
}

}  // namespace TessaryMesh
