#include "files/ply/PlyNames.h"

#include "base/MessageText.h"
#include "files/PercentCodes.h"

#include <algorithm>

namespace TessaryMesh::Ply {
namespace {

using Names = std::vector<std::string>;

// What other programs call these values; nothing for others, and for types that they do not expect.
Names customaryNames(std::string_view name, Owner owner, Form form)
{
    // As faces' colours are called beside those of points.
    const bool isColour = name == "color" || (name == "face_color" && owner == Owner::Face);
    if (isColour && form.scalar == Scalar::UInt8 && form.count == 3)
        return {"red", "green", "blue"};
    if (isColour && form.scalar == Scalar::UInt8 && form.count == 4)
        return {"red", "green", "blue", "alpha"};
    if (name == "normal" && isFloat(form.scalar) && form.count == 3)
        return {"nx", "ny", "nz"};
    if (name == "texcoord" && isFloat(form.scalar) && form.count == 2 && owner == Owner::Point)
        return {"s", "t"};
    return {};
}

// x y z w up to four scalars, two digits (row and column or a running number) beyond.
Names numberedNames(const std::string& stem, unsigned count)
{
    Names names;
    for (unsigned i = 0; i < count; ++i)
        if (count <= 4)
            names.push_back(stem + "_" + "xyzw"[i]);
        else
            names.push_back(stem + "_" + std::to_string(i / 10) + std::to_string(i % 10));
    return names;
}

}  // namespace

std::string encodedName(std::string_view name)
{
    if (name.empty())
        return "%";
    const bool keepsHighBytes = isUtf8(name);
    return percentCoded(name, [keepsHighBytes](unsigned char byte) {
        return byte <= 0x20 || byte == 0x7F || (byte >= 0x80 && !keepsHighBytes);
    });
}

std::string decodedName(std::string_view word)
{
    return word == "%" ? std::string() : percentDecoded(word);
}

ColumnNames::ColumnNames() : m_used{{"x", "y", "z"}, {"vertex_indices", "vertex_index"}} {}

void ColumnNames::reserveForProperty(std::string_view name)
{
    m_properties.insert(encodedName(name));
}

std::vector<std::string> ColumnNames::columnsFor(std::string_view name, Owner owner, Form form)
{
    std::string stem = encodedName(name);
    const bool isSingle = owner == Owner::Corner || form.count == 1;
    Names names = isSingle ? Names{stem} : customaryNames(name, owner, form);
    while (!areFree(names, stem, owner)) {
        names = isSingle ? Names{stem} : numberedNames(stem, form.count);
        if (!areFree(names, stem, owner))
            stem += '_';
    }
    usedBy(owner).insert(names.begin(), names.end());
    return names;
}

Names ColumnNames::eightBitColumnsFor(std::string_view name, Owner owner, unsigned count)
{
    Names names = customaryNames(name, owner, {Scalar::UInt8, count});
    if (owner == Owner::Corner || !areFree(names, encodedName(name), owner))
        return {};
    usedBy(owner).insert(names.begin(), names.end());
    return names;
}

bool ColumnNames::areFree(const Names& names, const std::string& stem, Owner owner)
{
    return !names.empty() &&
           std::all_of(names.begin(), names.end(), [&](const std::string& column) {
               return usedBy(owner).count(column) == 0 &&
                      (column == stem || m_properties.count(column) == 0);
           });
}

std::set<std::string>& ColumnNames::usedBy(Owner owner)
{
    return m_used[owner == Owner::Point ? 0 : 1];
}

}  // namespace TessaryMesh::Ply
