#include <TessaryMesh/Check.h>

#include "base/Guard.h"
#include "base/Host.h"
#include "base/MeshArrays.h"
#include "base/Vectors.h"
#include "check/EarClipping.h"
#include "check/PlanarFace.h"
#include "check/ValidateParts.h"

#include <cstdio>

namespace TessaryMesh {
namespace {

std::string text(double number)
{
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.6g", number);
    return buffer;
}

double fanArea(const Array<float3>& points, const uint* corners, uint size)
{
    double area = 0;
    for (uint k = 2; k < size; ++k)
        area += length(cross(difference(points[corners[k - 1]], points[corners[0]]),
                             difference(points[corners[k]], points[corners[0]])));
    return area / 2;
}

struct Found {
    Finding concave{Problem::Severity::Warning, "concave-face",
                    "concave faces, which the fan around their first corner leaves",
                    "split them by clipping ears"};
    Finding crossing{Problem::Severity::Warning, "self-crossing-face",
                     "faces that cross themselves, which no triangles fit",
                     "correct them; they are split as fans"};
    double area = 0, fanArea = 0;

    void append(const Found& later)
    {
        concave.append(later.concave);
        crossing.append(later.crossing);
        area += later.area;
        fanArea += later.fanArea;
    }
};

// Whether larger faces cross themselves is looked at only where they are split: that may take seconds.
constexpr uint kMostClipped = 10000;

/// Looks through faces one after the other.
class Search {
public:
    Search(const MeshArrays& mesh, Found& found) : m_mesh(mesh), m_found(found) {}

    void look(std::size_t face)
    {
        const uint first = (*m_mesh.faceOffset)[face];
        const uint size = (*m_mesh.faceOffset)[face + 1] - first;
        if (size <= 3)
            return;
        const uint* const corners = m_mesh.faceVertex->data() + first;
        m_planar.set(*m_mesh.points, corners, size);
        if (m_planar.fitsFan())
            return;
        const double asFan = fanArea(*m_mesh.points, corners, size);
        const double area = length(areaVector(*m_mesh.points, corners, size)) / 2;
        const bool canBeSplit = size > kMostClipped || clipEars(m_planar.polygon(), m_triangles);
        (canBeSplit ? m_found.concave : m_found.crossing).add(Problem::Element::Face, face, [&] {
            return "face " + str(face) + " (area " + text(area) + ", as a fan " + text(asFan) + ")";
        });
        m_found.area += canBeSplit ? area : 0;
        m_found.fanArea += canBeSplit ? asFan : 0;
    }

private:
    const MeshArrays& m_mesh;
    Found& m_found;
    PlanarFace m_planar;
    std::vector<uint> m_triangles;
};

}  // namespace

ConcaveFaces concaveFaces(const Object& mesh)
{
    return guarded([&] {
        constexpr std::size_t kBlock = std::size_t{1} << 14;
        const MeshArrays arrays(mesh);
        std::vector<Found> parts((arrays.faceCount() + kBlock - 1) / kBlock);
        forEachBlock(parts.size(), [&](std::size_t block) {
            Search search(arrays, parts[block]);
            const std::size_t end = std::min((block + 1) * kBlock, arrays.faceCount());
            for (std::size_t face = block * kBlock; face < end; ++face)
                search.look(face);
        });
        Found all;
        for (const Found& part : parts)
            all.append(part);
        return ConcaveFaces{all.concave.problem(), all.crossing.problem(), all.area, all.fanArea};
    });
}

std::vector<Problem> ConcaveFaces::problems() const
{
    std::vector<Problem> all;
    for (const Problem& problem : {concave, selfCrossing})
        if (problem.count > 0)
            all.push_back(problem);
    return all;
}

}  // namespace TessaryMesh
