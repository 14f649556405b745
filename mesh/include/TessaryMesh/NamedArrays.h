#pragma once

#include <Pelon/Any.h>
#include <Pelon/Array.h>
#include <Pelon/Ptr.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

/// @file
/// Plain arrays under names.

namespace TessaryMesh {

/// An array under a name: what tables and parent maps are handed on as, and what files of plain
/// arrays hold.
struct NamedArray {
    std::string name;   ///< unique among its kind
    Pelon::Any values;  ///< a Ptr<Array<T>> of one of the host's element types
    std::size_t width =
        1;  ///< entries of a row: 3 for the points of triangles; 0 for a single value
};

/// Arrays in their order.
using NamedArrays = std::vector<NamedArray>;

/// An array under a name, in rows of `width` entries.
template <class T>
NamedArray namedArray(std::string name, Pelon::Ptr<Pelon::Array<T>> values, std::size_t width = 1)
{
    return {std::move(name), Pelon::Any(std::move(values)), width};
}

}  // namespace TessaryMesh
