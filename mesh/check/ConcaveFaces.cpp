#include <TessaryMesh/Check.h>

#include "base/Guard.h"
#include "base/Host.h"
#include "base/MeshArrays.h"
#include "base/MessageText.h"
#include "check/FaceFan.h"
#include "check/ValidateParts.h"

namespace TessaryMesh {
namespace {

struct Found {
    Finding concave{Problem::Severity::Warning, "concave-face",
                    "concave faces, which the fan around their first corner leaves",
                    "split them by clipping ears"};
    Finding crossing{Problem::Severity::Warning, "self-crossing-face",
                     "faces that cross themselves, which no triangles fit",
                     "correct them; they are split as fans"};
    double area = 0, fanArea = 0;
    std::uint64_t slight = 0;

    void append(const Found& later)
    {
        concave.append(later.concave);
        crossing.append(later.crossing);
        area += later.area;
        fanArea += later.fanArea;
        slight += later.slight;
    }
};

/// Looks through faces one after the other.
class Search {
public:
    Search(const MeshArrays& mesh, Found& found) : m_mesh(mesh), m_found(found) {}

    void look(std::size_t face)
    {
        const uint first = (*m_mesh.faceOffset)[face];
        const uint size = (*m_mesh.faceOffset)[face + 1] - first;
        const FaceFan::Fit fit =
            m_fan.look(*m_mesh.points, m_mesh.faceVertex->data() + first, size);
        if (fit == FaceFan::Fit::Slightly)
            ++m_found.slight;
        if (fit == FaceFan::Fit::Leaves) {
            m_found.area += m_fan.area();
            m_found.fanArea += m_fan.fanArea();
            tell(m_found.concave, face);
        }
        if (fit == FaceFan::Fit::Crosses)
            tell(m_found.crossing, face);
    }

private:
    void tell(Finding& finding, std::size_t face) const
    {
        finding.add(Problem::Element::Face, face, [&] {
            return "face " + str(face) + " (area " + measureText(m_fan.area()) + ", as a fan " +
                   measureText(m_fan.fanArea()) + ")";
        });
    }

    const MeshArrays& m_mesh;
    Found& m_found;
    FaceFan m_fan;
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
        return ConcaveFaces{all.concave.problem(), all.crossing.problem(), all.area, all.fanArea,
                            all.slight};
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
