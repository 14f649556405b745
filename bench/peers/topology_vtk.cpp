#include "peers/TopologyRows.h"
#include "peers/VtkInputs.h"

#include <vtkIdList.h>
#include <vtkSMPThreadLocalObject.h>
#include <vtkSMPTools.h>
#include <vtkStaticCellLinksTemplate.h>

#include <atomic>

namespace Bench {
namespace {

using Links = vtkStaticCellLinksTemplate<int>;

Array<uint> triangleOffsets(const Triangles& mesh)
{
    Array<uint> offsets(std::size_t{mesh.triangleCount()} + 1);
    for (std::size_t t = 0; t < offsets.size(); ++t)
        offsets[t] = static_cast<uint>(3 * t);
    return offsets;
}

vtkSmartPointer<vtkPolyData> vtkMeshOf(const Triangles& in)
{
    return vtkMesh(torusPoints(in.pointCount), vtkCells(triangleOffsets(in), in.faceVertex));
}

// Tells tables apart in which the lists of some points differ as sets.
class Checksum {
public:
    void add(std::uint64_t point, std::uint64_t triangle) { m_sum += (point + 1) * (triangle + 7); }
    double value() const { return static_cast<double>(m_sum & ((std::uint64_t{1} << 52) - 1)); }

private:
    std::uint64_t m_sum = 0;
};

struct Dual {
    Array<uint> offset, corners;
};

Contender dualKernel(const Triangles& in, std::shared_ptr<Dual> dual, double& checksum)
{
    return {[=, &in] {
                dual->offset = Array<uint>(std::size_t{in.pointCount} + 1);
                dual->corners = Array<uint>(in.faceVertex.size(), 0xFFFFFFFF);
                Tessary::constructDualMesh(in.faceVertex, dual->offset, dual->corners);
            },
            nullptr,
            [=, &in, &checksum] {
                Checksum sum;
                for (uint p = 0; p < in.pointCount; ++p)
                    for (uint s = dual->offset[p]; s < dual->offset[p + 1]; ++s)
                        sum.add(p, dual->corners[s] / 3);
                checksum = sum.value();
                *dual = {};
            },
            [=] { return hashOf(dual->corners, hashOf(dual->offset)); }};
}

template <class Table>
double checksumOf(Table& links, uint pointCount)
{
    Checksum sum;
    for (uint p = 0; p < pointCount; ++p)
        for (int i = 0; i < links.GetNcells(p); ++i)
            sum.add(p, static_cast<std::uint64_t>(links.GetCells(p)[i]));
    return sum.value();
}

enum class Threads { One, All };

// A table of triangles per point, by one of the ways in which VTK makes it.
void linksRow(Row& row, const Triangles& in, Threads threads, const char* peer)
{
    const auto mesh = vtkMeshOf(in);
    double ours = 0, others = 0;
    const std::function<std::unique_ptr<Links>()> make = [&] {
        auto links = std::make_unique<Links>();
        if (threads == Threads::One)
            links->BuildLinks(mesh);
        else
            links->ThreadedBuildLinks(in.pointCount, in.triangleCount(), mesh->GetPolys());
        return links;
    };
    const Contender other = maker<Links>(make, [&](const Links& links) {
        others = checksumOf(const_cast<Links&>(links), in.pointCount);
    });
    row.compare({in.triangleCount(), "triangle", 0, "with allocating and clearing the tables"},
                dualKernel(in, std::make_shared<Dual>(), ours),
                {peer, other,
                 threads == Threads::One ? "lists triangles and not corners"
                                         : "lists triangles and not corners in any order"});
    row.expectNear("checksum", ours, others);
}

// All neighbours of all triangles, asked one by one: VTK has no table of them.
struct Neighbours {
    Array<uint> across;
};

std::unique_ptr<Neighbours> vtkNeighbours(vtkPolyData& mesh)
{
    auto found = std::make_unique<Neighbours>();
    found->across = Array<uint>(static_cast<std::size_t>(3 * mesh.GetNumberOfCells()));
    vtkSMPThreadLocalObject<vtkIdList> lists;
    vtkSMPThreadLocalObject<vtkIdList> corners;
    vtkSMPTools::For(0, mesh.GetNumberOfCells(), [&](vtkIdType begin, vtkIdType end) {
        vtkIdList* const list = lists.Local();
        vtkIdList* const ofCell = corners.Local();
        for (vtkIdType t = begin; t < end; ++t) {
            // With a list of its own: without one, threads share one.
            mesh.GetCellPoints(t, ofCell);
            const vtkIdType* const points = ofCell->GetPointer(0);
            const vtkIdType corner[] = {points[0], points[1], points[2], points[0]};
            for (int k = 0; k < 3; ++k) {
                mesh.GetCellEdgeNeighbors(t, corner[k], corner[k + 1], list);
                found->across[3 * t + k] = static_cast<uint>(list->GetId(0));
            }
        }
    });
    return found;
}

void neighboursRow(Row& row, const Triangles& in, const char* peer)
{
    const auto mesh = vtkMeshOf(in);
    mesh->BuildLinks();
    Dual dual{Array<uint>(std::size_t{in.pointCount} + 1),
              Array<uint>(in.faceVertex.size(), 0xFFFFFFFF)};
    Tessary::constructDualMesh(in.faceVertex, dual.offset, dual.corners);
    Array<uint> adjacent;
    double ours = 0, others = 0;
    const auto checksum = [](const Array<uint>& across) {
        Checksum sum;
        for (std::size_t c = 0; c < across.size(); ++c)
            sum.add(c, across[c]);
        return sum.value();
    };
    const Contender kernel{
        [&] { Tessary::populateAdjacentTri(in.faceVertex, dual.offset, dual.corners, adjacent); },
        nullptr,
        [&] {
            ours = checksum(adjacent);
            adjacent = {};
        },
        [&] { return hashOf(adjacent); }};
    const Contender other =
        maker<Neighbours>([&] { return vtkNeighbours(*mesh); },
                          [&](const Neighbours& found) { others = checksum(found.across); });
    row.compare({in.triangleCount(), "triangle", 0, ""}, kernel,
                {peer, other, "asks for every edge by itself on all threads"});
    row.expectNear("checksum", ours, others);
}

void addRows()
{
    for (const uint size : {100000u, 1000000u, 8000000u})
        for (const PointOrder order : {PointOrder::Natural, PointOrder::Random}) {
            const auto add = [=](const char* kernel, const char* peer,
                                 const std::function<void(Row&, const Triangles&)>& fill) {
                addRow({kernel, order == PointOrder::Natural ? "torus natural" : "torus random",
                        size, 0, peer},
                       [=](Row& row) { fill(row, triangleTorus(size, order)); });
            };
            for (const Threads threads : {Threads::One, Threads::All}) {
                const char* const peer = threads == Threads::One
                                             ? "VTK static cell links, serial"
                                             : "VTK static cell links, threaded";
                add("constructDualMesh", peer,
                    [=](Row& row, const Triangles& in) { linksRow(row, in, threads, peer); });
            }
            const char* const peer = "VTK GetCellEdgeNeighbors";
            add("populateAdjacentTri", peer,
                [=](Row& row, const Triangles& in) { neighboursRow(row, in, peer); });
        }
}

const RowsOfLibrary rows(addRows);

}  // namespace
}  // namespace Bench
