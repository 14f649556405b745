#pragma once

#include <TessaryMesh/Operations.h>

#include "base/Host.h"
#include "base/PropertyKinds.h"

#include <string>
#include <vector>

namespace TessaryMesh {

/// A property of a mesh that goes into the result of an operation.
struct CarriedProperty : ElementProperty {
    enum class Kind {
        Values,     ///< of points, faces or corners, plain or indexed
        PointList,  ///< lists of points; `range` names their offsets, `component` their own one
        RenderSettings,
        OwnValue,  ///< of the object itself
    };

    Kind kind;
};

struct PropertyPlan {
    std::vector<CarriedProperty> carried;  ///< in the order of the mesh
    std::vector<std::string> warnings;     ///< what is left out, a line each
};

/// What follows which way.
enum class Onto {
    Triangles,  ///< points and values stay as they are, so lists of points can stay, too
    Quads,
    Samples,
};

/// Decides for every property of `mesh` whether and how it is carried. Values of the object itself
/// always are; offsets of lists go with their list.
PropertyPlan planProperties(const Object& mesh, const Carry& carry, Onto onto);

}  // namespace TessaryMesh
