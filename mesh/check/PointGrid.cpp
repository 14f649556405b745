#include "check/PointGrid.h"

#include <cmath>

namespace TessaryMesh {

void PointGrid::build(const std::vector<PlanePoint>& points, const std::vector<uint>& numbers)
{
    m_columns = m_rows = 1;
    m_perCell = 0;
    m_numbers.resize(numbers.size());
    if (numbers.empty())
        return;
    PlanePoint low = points[numbers[0]], high = low;
    for (const uint i : numbers) {
        low = {std::min(low.x, points[i].x), std::min(low.y, points[i].y)};
        high = {std::max(high.x, points[i].x), std::max(high.y, points[i].y)};
    }
    m_low = low;
    const double width = double{high.x} - low.x, height = double{high.y} - low.y;
    const double count = static_cast<double>(numbers.size());
    // Square cells, unless the box is so flat that a row of them is more than enough.
    const double cell =
        std::max(std::sqrt(width / count * height), std::max(width, height) / count);
    if (cell > 0) {
        m_perCell = 1 / cell;
        m_columns = static_cast<std::size_t>(width * m_perCell) + 1;
        m_rows = static_cast<std::size_t>(height * m_perCell) + 1;
    }
    m_begin.assign(m_columns * m_rows + 1, 0);
    const auto cellOf = [&](uint i) { return row(points[i].y) * m_columns + column(points[i].x); };
    for (const uint i : numbers)
        ++m_begin[cellOf(i)];
    for (std::size_t c = 1; c < m_begin.size(); ++c)
        m_begin[c] += m_begin[c - 1];
    // From the back, every end becomes its cell's beginning.
    for (std::size_t k = numbers.size(); k-- > 0;)
        m_numbers[--m_begin[cellOf(numbers[k])]] = numbers[k];
}

}  // namespace TessaryMesh
