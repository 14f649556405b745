#pragma once

#include "files/ply/PlyFormat.h"

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace TessaryMesh::Ply {

/// A name as one word of UTF-8: other bytes become %20, and the empty name a lone %.
std::string encodedName(std::string_view name);
std::string decodedName(std::string_view word);

/// Gives out names of PLY properties, each once per element.
class ColumnNames {
public:
    ColumnNames();

    /// Keeps the names of the mesh's own properties from being given to a part of another one.
    void reserveForProperty(std::string_view name);

    /// Names for a property of the mesh: one for a scalar or a corner's list, one for each scalar of
    /// a vector or matrix. The names by which other programs know normals, colours and texture
    /// coordinates are preferred, then NAME_x and the like.
    std::vector<std::string> columnsFor(std::string_view name, Owner owner, Form form);

    /// The names of colours that other programs read as 8-bit numbers; none for other properties, and where
    /// one of the names is taken.
    std::vector<std::string> eightBitColumnsFor(std::string_view name, Owner owner, unsigned count);

private:
    bool areFree(const std::vector<std::string>& names, const std::string& stem, Owner owner);
    std::set<std::string>& usedBy(Owner owner);

    std::set<std::string> m_properties;
    std::set<std::string> m_used[2];  // of points; of faces, which hold the corners too
};

}  // namespace TessaryMesh::Ply
