#include <TessaryMesh/Operations.h>

namespace TessaryMesh {

NamedArrays ParentMaps::arrays() const
{
    NamedArrays arrays;
    if (face)
        arrays.push_back(namedArray("face", face));
    if (corner)
        arrays.push_back(namedArray("corner", corner));
    if (triangle)
        arrays.push_back(namedArray("triangle", triangle));
    return arrays;
}

}  // namespace TessaryMesh
