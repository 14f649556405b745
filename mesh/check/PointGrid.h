#pragma once

#include "base/Host.h"
#include "check/Orientation.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace TessaryMesh {

/// Points of the plane in square cells, one or two to a cell, to look up those in a box.
class PointGrid {
public:
    /// Numbers of some of the points.
    void build(const std::vector<PlanePoint>& points, const std::vector<uint>& numbers);

    std::size_t size() const { return m_numbers.size(); }

    /// Calls visit(number) for the points in all cells that the box touches, until it returns true;
    /// returns whether it did.
    template <class Visit>
    bool anyIn(const PlanePoint& low, const PlanePoint& high, const Visit& visit) const
    {
        if (m_numbers.empty())
            return false;
        const std::size_t left = column(low.x), right = column(high.x);
        for (std::size_t y = row(low.y); y <= row(high.y); ++y)
            for (uint i = m_begin[y * m_columns + left]; i < m_begin[y * m_columns + right + 1];
                 ++i)
                if (visit(m_numbers[i]))
                    return true;
        return false;
    }

private:
    std::size_t column(float x) const { return place(x, m_low.x, m_columns); }
    std::size_t row(float y) const { return place(y, m_low.y, m_rows); }

    // What lies outside counts to the outermost cells.
    std::size_t place(float x, float low, std::size_t count) const
    {
        const double cell = (double{x} - low) * m_perCell;
        return cell > 0 ? static_cast<std::size_t>(std::min(cell, double(count - 1))) : 0;
    }

    PlanePoint m_low{};
    double m_perCell = 0;
    std::size_t m_columns = 1, m_rows = 1;
    std::vector<uint> m_begin;  // of each cell's numbers, row by row, and the end
    std::vector<uint> m_numbers;
};

}  // namespace TessaryMesh
