#include "arrays/Convert.h"
#include "base/Guard.h"
#include "base/Host.h"

#include <TessaryMesh/Arrays.h>
#include <TessaryMesh/Check.h>

namespace TessaryMesh {
namespace {

using Code = ArrayError::Code;

Ptr<Array<uint>> offsetsOfSize(unsigned size, std::size_t cornerCount)
{
    if (size == 0 || cornerCount % size != 0)
        throw arrayError(
            Code::Length, "corners",
            std::to_string(cornerCount) + " corners do not make faces of " + std::to_string(size));
    const auto offsets = makeMutable<Array<uint>>(cornerCount / size + 1);
    uint* const out = offsets->data();
    for (std::size_t face = 0; face < offsets->size(); ++face)
        out[face] = static_cast<uint>(face * size);
    return offsets;
}

Ptr<Array<uint>> offsetsOfSizes(const Array<uint>& sizes, std::size_t cornerCount)
{
    const auto offsets = makeMutable<Array<uint>>(sizes.size() + 1);
    std::uint64_t sum = 0;
    for (std::size_t face = 0; face < sizes.size(); ++face) {
        sum += sizes[face];
        (*offsets)[face + 1] = static_cast<uint>(sum);
    }
    if (sum != cornerCount)
        throw arrayError(Code::Length, "sizes",
                         "the faces have " + std::to_string(sum) + " corners, where there are " +
                             std::to_string(cornerCount));
    return offsets;
}

Ptr<Array<uint>> givenOffsets(const Numbers& numbers, Checks checks)
{
    if (numbers.count() == 0)
        throw arrayError(Code::Length, "offsets",
                         "there are none, where a mesh without faces has one, which is 0");
    return toIndices(numbers, "offsets", checks);
}

Ptr<Array<uint>> toOffsets(const Faces& faces, std::size_t cornerCount, Checks checks)
{
    switch (faces.kind()) {
        case Faces::Kind::Size:
            return offsetsOfSize(faces.size(), cornerCount);
        case Faces::Kind::Sizes:
            return offsetsOfSizes(*toIndices(faces.numbers(), "sizes", checks), cornerCount);
        default:
            return givenOffsets(faces.numbers(), checks);
    }
}

MutablePtr<Object> assemble(Ptr<Array<float3>> points, Ptr<Array<uint>> faceOffset,
                            Ptr<Array<uint>> faceVertex)
{
    using namespace Geometry;
    MutablePtr<Object> mesh = Korvane::createObject();
    populateMesh(*mesh);
    setElementCount(sPointComp, static_cast<uint>(points->size()), *mesh);
    setElementCount(sFaceComp, static_cast<uint>(faceOffset->size() - 1), *mesh);
    setElementCount(sFaceVertexComp, static_cast<uint>(faceVertex->size()), *mesh);
    addDataGeoProperty<float3>(*mesh, sPointPosition, sPointComp, std::move(points));
    addDataGeoProperty<uint>(*mesh, sFaceOffset, sFaceComp, std::move(faceOffset));
    addDataGeoProperty<uint>(*mesh, sFaceVertex, sFaceVertexComp, std::move(faceVertex));
    return mesh;
}

}  // namespace

MutablePtr<Object> makeMesh(const Numbers& points, const Numbers& corners, const Faces& faces,
                            Checks checks)
{
    return guarded([&] {
        requireNameable("corners", corners.count());
        Ptr<Array<float3>> position = toPoints(points);
        Ptr<Array<uint>> faceVertex = toIndices(corners, "corners", checks);
        Ptr<Array<uint>> faceOffset = toOffsets(faces, faceVertex->size(), checks);
        requireNameable("offsets", faceOffset->size());
        MutablePtr<Object> mesh =
            assemble(std::move(position), std::move(faceOffset), std::move(faceVertex));
        if (checks == Checks::All)
            if (ValidationReport report = validateMesh(*mesh); report.hasErrors())
                throw InvalidMesh("", std::move(report));
        return mesh;
    });
}

}  // namespace TessaryMesh
