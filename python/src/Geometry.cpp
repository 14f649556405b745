#include "Geometry.h"

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
    if (trust() == Trust::Checked)
        return;
    TessaryMesh::ValidationReport report = TessaryMesh::validateMesh(*m_object);
    if (report.hasErrors())
        throw TessaryMesh::InvalidMesh("", std::move(report));
    if (trust() == Trust::Unchecked)
        m_trust.store(Trust::Checked, std::memory_order_relaxed);
}

}  // namespace TessaryPython
