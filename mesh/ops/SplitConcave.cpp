#include "ops/SplitConcave.h"

#include "base/Guard.h"
#include "base/MeshArrays.h"
#include "base/ParallelBlocks.h"
#include "check/FaceFan.h"

#include <algorithm>
#include <set>
#include <utility>

namespace TessaryMesh {
namespace {

using namespace Korvane::Geometry;

constexpr std::size_t kFacesPerBlock = std::size_t{1} << 14;

struct SplitFace {
    std::size_t face;
    std::vector<uint> triangles;  // places in the face
};

std::vector<SplitFace> splitFacesIn(const MeshArrays& mesh, std::size_t begin, std::size_t end)
{
    std::vector<SplitFace> found;
    FaceFan fan;
    for (std::size_t face = begin; face < end; ++face) {
        const uint first = (*mesh.faceOffset)[face];
        const uint size = (*mesh.faceOffset)[face + 1] - first;
        const FaceFan::Fit fit = fan.look(*mesh.points, mesh.faceVertex->data() + first, size);
        if (fit == FaceFan::Fit::Slightly || fit == FaceFan::Fit::Leaves)
            found.push_back({face, fan.triangles()});
    }
    return found;
}

std::vector<SplitFace> splitFaces(const MeshArrays& mesh)
{
    std::vector<std::vector<SplitFace>> blocks((mesh.faceCount() + kFacesPerBlock - 1) /
                                               kFacesPerBlock);
    forEachBlock(blocks.size(), [&](std::size_t block) {
        blocks[block] = splitFacesIn(mesh, block * kFacesPerBlock,
                                     std::min((block + 1) * kFacesPerBlock, mesh.faceCount()));
    });
    std::vector<SplitFace> all;
    for (std::vector<SplitFace>& block : blocks)
        std::move(block.begin(), block.end(), std::back_inserter(all));
    return all;
}

// The new faces, and where they come from.
struct Faces {
    Array<uint> offset{0}, face, corner;

    void add(std::size_t source, uint size)
    {
        offset.push_back(offset[offset.size() - 1] + size);
        face.push_back(static_cast<uint>(source));
    }
};

Faces facesOf(const Array<uint>& faceOffset, const std::vector<SplitFace>& split)
{
    Faces faces;
    auto next = split.begin();
    for (std::size_t face = 0; face + 1 < faceOffset.size(); ++face) {
        const uint first = faceOffset[face], end = faceOffset[face + 1];
        if (next == split.end() || next->face != face) {
            faces.add(face, end - first);
            for (uint corner = first; corner < end; ++corner)
                faces.corner.push_back(corner);
            continue;
        }
        for (std::size_t k = 0; k < next->triangles.size(); k += 3)
            faces.add(face, 3);
        for (const uint place : next->triangles)
            faces.corner.push_back(first + place);
        ++next;
    }
    return faces;
}

template <class T>
MutablePtr<Array<T>> gathered(const Array<T>& values, const Array<uint>& from)
{
    auto out = makeMutable<Array<T>>(from.size());
    forEachRange(from.size(), std::size_t{1} << 14, [&](std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end; ++i)
            (*out)[i] = values[from[i]];
    });
    return out;
}

class Carrier {
public:
    Carrier(const Object& mesh, const Array<uint>& faces, const Array<uint>& corners,
            Object& result)
        : m_mesh(mesh), m_faces(faces), m_corners(corners), m_result(result)
    {}

    void carry(const CarriedProperty& property)
    {
        using Kind = CarriedProperty::Kind;
        const bool isGathered = property.kind == Kind::Values && property.component != sPointComp;
        if (isGathered && property.range.empty())
            return carryValues(property);
        share(property.name);
        if (property.kind == Kind::PointList)
            share(property.component);
        if (isGathered)
            carryIndices(property);
        else if (!property.range.empty())
            share(property.range);
    }

private:
    void share(const String& name) { m_result.setProperty(name, m_mesh.getProperty(name)); }

    const Array<uint>& sourcesOf(const ElementProperty& property) const
    {
        return property.component == sFaceComp ? m_faces : m_corners;
    }

    void carryValues(const ElementProperty& property)
    {
        const auto copy = makeMutable<Object>(*getDataGeoProperty(m_mesh, property.name));
        Korvane::visitArray(copy->getProperty(sData), [&](const auto& array, const char*) {
            using Values = std::decay_t<decltype(*array)>;
            copy->setProperty(sData, Ptr<Values>(gathered(*array, sourcesOf(property))));
        });
        m_result.setProperty(property.name, copy);
    }

    void carryIndices(const ElementProperty& property)
    {
        if (!m_done.insert(property.range).second)
            return;
        const Ptr<Object> range = getRangeGeoProperty(m_mesh, property.range);
        const auto copy = makeMutable<Object>(*range);
        populateRangeGeoProperty(gathered(*getRangeGeoPropIndices(*range), sourcesOf(property)),
                                 property.component, *copy);
        m_result.setProperty(property.range, copy);
    }

    const Object& m_mesh;
    const Array<uint>& m_faces;
    const Array<uint>& m_corners;
    Object& m_result;
    std::set<String> m_done;  // index arrays
};

}  // namespace

std::optional<Result> splitConcave(const Object& mesh, const Carry& carry, Onto onto)
{
    const MeshArrays arrays(mesh);
    requireFaces(*arrays.faceOffset, arrays.faceVertex->size());
    const std::vector<SplitFace> split = splitFaces(arrays);
    if (split.empty())
        return std::nullopt;
    Faces faces = facesOf(*arrays.faceOffset, split);
    const auto face = makeMutable<Array<uint>>(std::move(faces.face));
    const auto corner = makeMutable<Array<uint>>(std::move(faces.corner));
    PropertyPlan plan = planProperties(mesh, carry, onto);
    Result result{makeMesh({}, std::move(faces.offset), *gathered(*arrays.faceVertex, *corner)),
                  {face, corner, nullptr},
                  std::move(plan.warnings)};
    setElementCount(sPointComp, getElementCount(mesh, sPointComp), *result.mesh);
    result.mesh->setProperty(sPointPosition, mesh.getProperty(sPointPosition));
    Carrier carrier(mesh, *face, *corner, *result.mesh);
    for (const CarriedProperty& property : plan.carried)
        carrier.carry(property);
    return result;
}

Result splitConcaveFaces(const Object& mesh, const Carry& carry)
{
    return guarded([&] {
        std::optional<Result> split = splitConcave(mesh, carry, Onto::Triangles);
        return split ? std::move(*split) : Result{makeMutable<Object>(mesh), {}, {}};
    });
}

}  // namespace TessaryMesh
