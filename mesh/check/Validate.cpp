#include <TessaryMesh/Check.h>

#include "base/Guard.h"
#include "base/Host.h"
#include "check/ValidateParts.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>
#include <vector>

namespace TessaryMesh {
namespace {

using Element = Problem::Element;

constexpr uint kPairwiseFaceSize = 8;  // up to here comparing each with each is the quickest

struct Topology {
    Ptr<Array<float3>> points;
    Ptr<Array<uint>> faceOffset;
    Ptr<Array<uint>> faceVertex;

    std::size_t faceCount() const { return faceOffset->empty() ? 0 : faceOffset->size() - 1; }

    bool hasFace(std::size_t face) const
    {
        return (*faceOffset)[face] <= (*faceOffset)[face + 1] &&
               (*faceOffset)[face + 1] <= faceVertex->size();
    }
};

template <class T>
Ptr<Array<T>> topologyArray(const Object& mesh, const String& name, const char* type,
                            Finding& missing, Finding& wrongType)
{
    Ptr<Array<T>> array = Geometry::dataArray<T>(mesh, name);
    const auto shown = [&name] { return std::string(name.view()); };
    if (!array && Geometry::getDataGeoProperty(mesh, name))
        wrongType.add([&] { return shown() + ", which should be an array of " + type; });
    else if (!array)
        missing.add(shown);
    return array;
}

Topology findTopology(const Object& mesh, ValidationReport& report)
{
    Finding missing = error("topology-missing", "arrays that a mesh needs are missing",
                            "make the object a mesh with points, face offsets and corners");
    Finding wrongType = error("topology-type", "arrays of a mesh have another element type",
                              "store positions as float3, offsets and corners as uint");
    Topology topology;
    topology.points =
        topologyArray<float3>(mesh, Geometry::sPointPosition, "float3", missing, wrongType);
    topology.faceOffset =
        topologyArray<uint>(mesh, Geometry::sFaceOffset, "uint", missing, wrongType);
    topology.faceVertex =
        topologyArray<uint>(mesh, Geometry::sFaceVertex, "uint", missing, wrongType);
    missing.addTo(report);
    wrongType.addTo(report);
    return topology;
}

void checkOffsets(const Topology& mesh, ValidationReport& report)
{
    Finding wrong = error("offset-order", "face offsets that are not a rising list of corners",
                          "write the faces again, one after the other");
    const Array<uint>& offset = *mesh.faceOffset;
    if (offset.empty())
        wrong.add(
            [] { return std::string("the list of offsets, which is empty and should hold a 0"); });
    else if (offset[0] != 0)
        wrong.add(Element::Face, 0,
                  [&] { return "face 0, which starts at corner " + str(offset[0]) + ", not 0"; });
    findInBlocks(mesh.faceCount(), wrong, [&](std::size_t begin, std::size_t end, Finding& found) {
        for (std::size_t face = begin; face < end; ++face)
            if (offset[face + 1] < offset[face])
                found.add(Element::Face, face, [&] {
                    return "face " + str(face) + ", which starts at corner " + str(offset[face]) +
                           " and ends at " + str(offset[face + 1]);
                });
    });
    if (!offset.empty() && offset[offset.size() - 1] != mesh.faceVertex->size())
        wrong.add([&] {
            return "the end of the last face, which is " + str(offset[offset.size() - 1]) +
                   " in a mesh of " + str(mesh.faceVertex->size()) + " corners";
        });
    wrong.addTo(report);
}

void checkFaceSizes(const Topology& mesh, ValidationReport& report)
{
    Finding small = error("small-face", "faces of fewer than three corners",
                          "remove them or give them three corners");
    const Array<uint>& offset = *mesh.faceOffset;
    findInBlocks(mesh.faceCount(), small, [&](std::size_t begin, std::size_t end, Finding& found) {
        for (std::size_t face = begin; face < end; ++face)
            if (offset[face + 1] >= offset[face] && offset[face + 1] - offset[face] < 3)
                found.add(Element::Face, face, [&] {
                    return "face " + str(face) + ", which has " +
                           str(offset[face + 1] - offset[face]);
                });
    });
    small.addTo(report);
}

// Only sorted offsets tell whose corner it is.
std::string cornerName(const Topology& mesh, std::size_t corner)
{
    const Array<uint>& offset = *mesh.faceOffset;
    std::string name = "corner " + str(corner);
    if (!std::is_sorted(offset.begin(), offset.end()) || offset.empty() || offset[0] > corner ||
        offset[offset.size() - 1] <= corner)
        return name;
    const auto next = std::upper_bound(offset.begin(), offset.end(), corner);
    return name + " of face " + str(static_cast<std::size_t>(next - offset.begin()) - 1);
}

void checkCorners(const Topology& mesh, ValidationReport& report)
{
    const Array<uint>& corners = *mesh.faceVertex;
    const std::size_t pointCount = mesh.points->size();
    if (countOutside(corners, pointCount, false) == 0)
        return;
    Finding wrong = error("index-out-of-range", "corners that name no point",
                          "add the missing points or correct the faces");
    for (std::size_t corner = 0; corner < corners.size(); ++corner)
        if (corners[corner] >= pointCount)
            wrong.add(Element::Corner, corner, [&] {
                return cornerName(mesh, corner) + ", which names point " + str(corners[corner]) +
                       " of " + str(pointCount);
            });
    wrong.addTo(report);
}

bool isFinite(const float3& p)
{
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

// The exponent of a float that is infinite or not a number has all its bits set.
bool areFinite(const float3* points, std::size_t count)
{
    constexpr uint kExponent = 0x7F800000;
    uint found = 0;
    for (std::size_t i = 0; i < count; ++i) {
        uint bits[3];
        std::memcpy(bits, &points[i], sizeof bits);
        found |= ((bits[0] & kExponent) == kExponent) | ((bits[1] & kExponent) == kExponent) |
                 ((bits[2] & kExponent) == kExponent);
    }
    return found == 0;
}

void checkPoints(const Array<float3>& points, ValidationReport& report)
{
    Finding wrong = error("point-not-finite", "points that are not finite",
                          "give every point three finite coordinates");
    findInBlocks(points.size(), wrong, [&](std::size_t begin, std::size_t end, Finding& found) {
        if (areFinite(points.data() + begin, end - begin))
            return;
        for (std::size_t point = begin; point < end; ++point)
            if (const float3& p = points[point]; !isFinite(p))
                found.add(Element::Point, point, [&] {
                    return "point " + str(point) + " (" + std::to_string(p.x) + " " +
                           std::to_string(p.y) + " " + std::to_string(p.z) + ")";
                });
    });
    wrong.addTo(report);
}

// Every pair is compared whatever comes out: of faces of all sizes a processor guesses badly where a
// loop would end.
template <uint Count>
bool areDistinct(const uint* corner)
{
    bool same = false;
    for (uint i = 1; i < Count; ++i)
        for (uint k = 0; k < i; ++k)
            same |= corner[k] == corner[i];
    return !same;
}

// False for sizes other than the usual ones, too.
bool isDistinct(const uint* corner, uint count)
{
    switch (count) {
        case 3:
            return areDistinct<3>(corner);
        case 4:
            return areDistinct<4>(corner);
        case 5:
            return areDistinct<5>(corner);
        case 6:
            return areDistinct<6>(corner);
        case 7:
            return areDistinct<7>(corner);
        case 8:
            return areDistinct<8>(corner);
        default:
            return false;
    }
}

/// Finds the corners that repeat a point of their face: small faces by comparing, large ones by sorting
/// their points.
class RepeatedCorners {
public:
    RepeatedCorners(const Topology& mesh, Finding& found) : m_mesh(mesh), m_found(found) {}

    void check(std::size_t begin, std::size_t end)
    {
        for (std::size_t face = begin; face < end; ++face) {
            if (!m_mesh.hasFace(face))
                continue;
            const uint first = (*m_mesh.faceOffset)[face];
            const uint last = (*m_mesh.faceOffset)[face + 1];
            if (last - first <= kPairwiseFaceSize)
                compare(face, first, last);
            else
                sort(face, first, last);
        }
    }

private:
    void compare(std::size_t face, uint first, uint last)
    {
        const uint* const corners = m_mesh.faceVertex->data();
        if (isDistinct(corners + first, last - first))
            return;
        for (uint corner = first + 1; corner < last; ++corner)
            for (uint earlier = first; earlier < corner; ++earlier)
                if (corners[earlier] == corners[corner]) {
                    add(face, corner);
                    break;
                }
    }

    void sort(std::size_t face, uint first, uint last)
    {
        m_sorted.clear();
        for (uint corner = first; corner < last; ++corner)
            if (const uint point = (*m_mesh.faceVertex)[corner]; point < m_mesh.points->size())
                m_sorted.emplace_back(point, corner);
        std::sort(m_sorted.begin(), m_sorted.end());
        m_repeated.clear();
        for (std::size_t i = 1; i < m_sorted.size(); ++i)
            if (m_sorted[i].first == m_sorted[i - 1].first)
                m_repeated.push_back(m_sorted[i].second);
        std::sort(m_repeated.begin(), m_repeated.end());
        for (const uint corner : m_repeated)
            add(face, corner);
    }

    void add(std::size_t face, uint corner)
    {
        m_found.add(Problem::Element::Corner, corner, [&] {
            return "corner " + str(corner) + " of face " + str(face) + ", which names point " +
                   str((*m_mesh.faceVertex)[corner]) + " again";
        });
    }

    const Topology& m_mesh;
    Finding& m_found;
    std::vector<std::pair<uint, uint>> m_sorted;  // point, corner
    std::vector<uint> m_repeated;
};

void checkRepeatedCorners(const Topology& mesh, ValidationReport& report)
{
    Finding repeated(Problem::Severity::Warning, "repeated-corner",
                     "corners that repeat a point of their face",
                     "nothing, if flat or pinched triangles are welcome");
    findInBlocks(mesh.faceCount(), repeated,
                 [&mesh](std::size_t begin, std::size_t end, Finding& found) {
                     RepeatedCorners(mesh, found).check(begin, end);
                 });
    repeated.addTo(report);
}

// The triangulation names its corners with 32 bits, and 0xFFFFFFFF stands for none.
bool isTooLarge(const Topology& mesh, ValidationReport& report)
{
    const std::uint64_t corners = mesh.faceVertex->size();
    const std::uint64_t faces = mesh.faceCount();
    const std::uint64_t triangles = corners > 2 * faces ? corners - 2 * faces : 0;
    if (corners < kNone && faces < kNone && mesh.points->size() < kNone && 3 * triangles < kNone)
        return false;
    Finding large = error("too-large", "more corners than 32-bit indices can name",
                          "split the mesh into parts");
    large.add([&] {
        return "a mesh of " + str(mesh.points->size()) + " points, " + str(corners) +
               " corners and " + str(faces) + " faces, which makes " + str(triangles) +
               " triangles";
    });
    large.addTo(report);
    return true;
}

}  // namespace

ValidationReport validateMesh(const Object& mesh)
{
    return guarded([&] {
        ValidationReport report;
        const Topology topology = findTopology(mesh, report);
        if (report.hasErrors() || isTooLarge(topology, report))
            return report;
        checkOffsets(topology, report);
        checkFaceSizes(topology, report);
        checkCorners(topology, report);
        checkPoints(*topology.points, report);
        checkProperties(mesh, report);
        checkRepeatedCorners(topology, report);
        return report;
    });
}

}  // namespace TessaryMesh
