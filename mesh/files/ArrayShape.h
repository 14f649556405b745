#pragma once

#include <Korvane/ElementTypes.h>

#include "base/Host.h"
#include "base/MessageText.h"
#include "base/Scalars.h"
#include <TessaryMesh/Errors.h>
#include <TessaryMesh/NamedArrays.h>

#include <cstddef>
#include <string>
#include <type_traits>
#include <vector>

namespace TessaryMesh {

/// The length of each dimension of an array of numbers, the outermost first; none for a single one.
using Shape = std::vector<std::size_t>;

/// What the elements of type T add to a shape: a dimension for vectors, two for matrices.
template <class T>
Shape shapeOfElement()
{
    Shape shape;
    for (const std::size_t length : {Scalars<T>::kRows, Scalars<T>::kColumns})
        if (length > 0)
            shape.push_back(length);
    return shape;
}

/// The shape of `count` elements in the rows of an array. Throws ArgumentError where they fill none.
inline Shape shapeOfRows(const NamedArray& array, std::size_t count)
{
    const bool isSingle = array.width == 0;
    if (isSingle ? count != 1 : count % array.width != 0)
        throw ArgumentError("arrays", "array " + quoted(array.name) + " has " +
                                          std::to_string(count) + " elements for rows of " +
                                          std::to_string(array.width));
    if (isSingle)
        return {};
    Shape shape{count / array.width};
    if (array.width > 1)
        shape.push_back(array.width);
    return shape;
}

/// Calls `visit(array, shape)` with the typed array. Throws ArgumentError where there is none.
template <class Visit>
void visitValues(const NamedArray& array, const Visit& visit)
{
    const bool isKnown = Korvane::visitArray(array.values, [&](const auto& values, const char*) {
        using T = typename std::decay_t<decltype(*values)>::value_type;
        Shape shape = shapeOfRows(array, values->size());
        for (const std::size_t length : shapeOfElement<T>())
            shape.push_back(length);
        visit(*values, shape);
    });
    if (!isKnown)
        throw ArgumentError("arrays", "array " + quoted(array.name) + " has no known element type");
}

}  // namespace TessaryMesh
