#include <meshio/EdgeReport.h>

#include <Tessary/Topology.h>

#include <meshio/ReadFile.h>

#include <algorithm>
#include <utility>

namespace MeshIo {
namespace {

using Pelon::Array;
using Pelon::uint;

constexpr uint kNone = 0xFFFFFFFF;
constexpr std::size_t kPollEvery = 1 << 16;  // points

// A half-edge of the edges whose larger point is being looked at.
struct EdgeUse {
    uint smaller;
    uint corner;
    bool isDescending;

    bool operator<(const EdgeUse& other) const
    {
        return smaller != other.smaller ? smaller < other.smaller : corner < other.corner;
    }
};

class Scan {
public:
    Scan(const Array<uint>& triFaceVertex, std::size_t pointCount, std::size_t most)
        : m_faceVertex(triFaceVertex),
          m_most(most),
          m_dualOffset(pointCount + 1),
          m_dualCorner(triFaceVertex.size(), kNone)
    {
        Tessary::constructDualMesh(triFaceVertex, m_dualOffset, m_dualCorner);
    }

    void run()
    {
        for (std::size_t point = 0; point + 1 < m_dualOffset.size(); ++point) {
            if (point % kPollEvery == 0)
                throwIfCancelled();
            collect(static_cast<uint>(point));
            compareNeighbours(static_cast<uint>(point));
        }
    }

    EdgeReport report;
    Array<uint> edges;

private:
    void collect(uint point)
    {
        m_uses.clear();
        for (uint slot = m_dualOffset[point]; slot < m_dualOffset[point + 1]; ++slot) {
            const uint corner = m_dualCorner[slot];
            const uint first = corner - corner % 3;
            if (first + 2 >= m_faceVertex.size())
                continue;  // of an incomplete last triangle
            const uint before = first + (corner + 2) % 3;
            const uint next = m_faceVertex[first + (corner + 1) % 3];
            if (next <= point)
                m_uses.push_back({next, corner, true});
            if (m_faceVertex[before] < point)
                m_uses.push_back({m_faceVertex[before], before, false});
        }
        std::sort(m_uses.begin(), m_uses.end());
    }

    // As in the edge table, a half-edge after an opposite pair starts anew.
    void compareNeighbours(uint point)
    {
        uint reported = kNone;  // the smaller point of the last edge that was
        for (std::size_t i = 0; i < m_uses.size(); ++i) {
            const EdgeUse& use = m_uses[i];
            const bool hasNeighbour = i + 1 < m_uses.size() && m_uses[i + 1].smaller == use.smaller;
            const bool isPair = hasNeighbour && m_uses[i + 1].isDescending != use.isDescending;
            edges.push_back(use.corner);
            edges.push_back(isPair ? m_uses[i + 1].corner : kNone);
            if (isPair)
                ++i;
            else if (hasNeighbour && std::exchange(reported, use.smaller) != use.smaller)
                add(point, use, m_uses[i + 1].corner);
        }
    }

    void add(uint larger, const EdgeUse& use, uint another)
    {
        if (report.count++ < m_most)
            report.first.push_back({use.isDescending ? larger : use.smaller,
                                    use.isDescending ? use.smaller : larger, use.corner, another});
    }

    const Array<uint>& m_faceVertex;
    const std::size_t m_most;
    Array<uint> m_dualOffset, m_dualCorner;
    std::vector<EdgeUse> m_uses;
};

}  // namespace

EdgeReport findSameDirectionEdges(const Array<uint>& triFaceVertex, std::size_t pointCount,
                                  std::size_t most)
{
    Scan scan(triFaceVertex, pointCount, most);
    scan.run();
    return std::move(scan.report);
}

Array<uint> separatedTriEdges(const Array<uint>& triFaceVertex, std::size_t pointCount)
{
    Scan scan(triFaceVertex, pointCount, 0);
    scan.run();
    return std::move(scan.edges);
}

}  // namespace MeshIo
