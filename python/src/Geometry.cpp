#include "Geometry.h"

#include "QuickCheck.h"

#include <Korvane/Geometry.h>
#include <TessaryMesh/Check.h>

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

}  // namespace TessaryPython
