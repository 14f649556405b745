#include "Geometry.h"

#include "QuickCheck.h"

#include <Korvane/Geometry.h>

namespace TessaryPython {

using namespace Korvane::Geometry;

bool Geometry::hasFaces() const
{
    return m_object->hasProperty(sFaceOffset);
}

std::size_t Geometry::pointCount() const
{
    return getElementCount(*m_object, sPointComp);
}

std::size_t Geometry::cornerCount() const
{
    return getElementCount(*m_object, sFaceVertexComp);
}

void Geometry::requireValid() const
{
    const Trust found = trust();
    if (found == Trust::Checked || (found == Trust::Changeable && stillHolds(*m_object)))
        return;
    TessaryMesh::ValidationReport report = TessaryMesh::validateMesh(*m_object);
    if (report.hasErrors())
        throw TessaryMesh::InvalidMesh("", std::move(report));
    if (found == Trust::Unchecked)
        m_trust.store(Trust::Checked, std::memory_order_relaxed);
}

Geometry::ConcavePtr Geometry::concaveFaces() const
{
    if (trust() != Trust::Changeable)
        if (ConcavePtr known = knownConcave())
            return known;
    auto found =
        std::make_shared<const TessaryMesh::ConcaveFaces>(TessaryMesh::concaveFaces(*m_object));
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_concave = found;
    return found;
}

void Geometry::learnFrom(const Geometry& copy) const
{
    m_trust.store(copy.trust(), std::memory_order_relaxed);
    ConcavePtr known = copy.knownConcave();
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_concave = std::move(known);
}

Geometry::ConcavePtr Geometry::knownConcave() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_concave;
}

}  // namespace TessaryPython
