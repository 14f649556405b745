#pragma once

#include "files/ply/PlyRows.h"

#include <cstddef>
#include <string>
#include <vector>

namespace TessaryMesh::Ply {

/// One property of the mesh to be, and the PLY properties that it is made of.
struct PlannedProperty {
    Owner owner;
    std::string type;  ///< an element type of one form or several scalars, or kListType
    std::string name;
    std::vector<std::size_t> columns;  ///< places in the vertex or face element

    bool isEightBit = false;  ///< real values of which the columns, uchar, count 255ths
    bool isCopy = false;      ///< of a property planned before it, which has them exactly

    bool isList() const { return type == kListType; }
};

struct Plan {
    const Element* vertex;
    const Element* face;  ///< null where the file has none
    std::size_t position[3];
    std::size_t topology;  ///< the face's list of points; meaningless without face
    std::vector<PlannedProperty>
        properties;  ///< declared ones first, then those of points and faces
};

/// Decides what becomes of every PLY property; a line is added to `warnings` for each declaration
/// that does not fit. Throws FileError for a file without points, or with faces without corners.
Plan planProperties(const Header& header, const std::string& path,
                    std::vector<std::string>& warnings);

/// Turns what was planned as corner values but has not the right number of them in every face into
/// lists, with a warning each.
void demoteUnevenCorners(Plan& plan, const Rows& faces, std::vector<std::string>& warnings);

}  // namespace TessaryMesh::Ply
