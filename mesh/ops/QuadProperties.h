#pragma once

#include "base/Host.h"
#include "ops/CutPoints.h"
#include "ops/PropertyPlan.h"

#include <string>
#include <vector>

namespace TessaryMesh {

/// The properties of a mesh on their way to its quads.
///
/// Everything goes through interpolatePropertiesToCutMesh, positions and velocities too, under names
/// of its own: no name is special, and range properties that are shared come out one by one. Index
/// seams are kept, which the kernel alone would not: corners that share a point but not an index
/// are handed to it as corners of different points.
class QuadProperties {
public:
    /// `mesh` has no errors.
    QuadProperties(const Object& mesh, const Carry& carry);

    /// Makes the values for all points, faces and corners of the quads.
    void interpolate(const CutPoints& cut);

    /// The positions of the quads' points, handed over.
    Array<float3> takePositions();

    /// Stores the properties, in the order of the mesh, and its values that are no properties.
    void addTo(Object& quads) const;

    /// One line per property that cannot be carried.
    const std::vector<std::string>& warnings() const { return m_plan.warnings; }

private:
    struct Carried : ElementProperty {
        String stageName;  // while it is interpolated
        String stageRange;
    };

    void stage(const Carried& carried, const Array<uint>* indices, Object& source) const;
    void interpolateSeparately(const CutPoints& cut);
    void interpolateCornersOf(const String& range, const CutPoints& cut);
    String rangeNameFor(const Carried& carried, const Object& quads) const;

    const Object& m_mesh;
    PropertyPlan m_plan;
    std::vector<Carried> m_carried;  // the values of elements
    MutablePtr<Object> m_result;
};

}  // namespace TessaryMesh
