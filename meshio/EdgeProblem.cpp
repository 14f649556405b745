#include <meshio/EdgeProblem.h>

#include <Tessary/HalfEdge.h>

#include <meshio/Validate.h>

namespace MeshIo {
namespace {

using Pelon::Array;
using Pelon::uint;

std::string placeOf(const Array<uint>& faceOffset, const SameDirection& edge)
{
    const auto faceOf = [&faceOffset](uint corner) {
        return std::to_string(Tessary::triEdgeToPolyEdge(faceOffset, {corner, corner / 3}).face);
    };
    return "points " + std::to_string(edge.start) + " to " + std::to_string(edge.end) +
           " of faces " + faceOf(edge.corner) + " and " + faceOf(edge.another);
}

}  // namespace

void rejectSameDirection(const Array<uint>& faceOffset, const EdgeReport& report,
                         const std::string& name, const char* advice)
{
    if (report.count == 0)
        return;
    std::string places;
    for (const SameDirection& edge : report.first)
        places += (places.empty() ? "" : ", ") + placeOf(faceOffset, edge);
    ValidationReport problems;
    problems.problems.push_back({Problem::Severity::Error,
                                 "same-direction",
                                 "edges along which two faces run in one direction",
                                 report.count,
                                 {places},
                                 advice});
    throw InvalidMesh(name, std::move(problems));
}

}  // namespace MeshIo
