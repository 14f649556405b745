#include <TessaryMesh/Files.h>

#include "base/Host.h"
#include "files/ply/PlyNames.h"

namespace TessaryMesh {

using namespace Korvane::Geometry;

std::string plyCornerDeclaration(const Object& mesh, const std::string& name)
{
    const String component = getTargetComponent(mesh, name);
    const char* const type = dataArray<float>(mesh, name)           ? "float"
                             : dataArray<unsigned char>(mesh, name) ? "uchar"
                                                                    : nullptr;
    if (!type || component != name + Ply::kListComponentEnding)
        return "";
    const std::string word = Ply::encodedName(name);
    return std::string("comment property corner ") + type + " " + word + " " + word;
}

}  // namespace TessaryMesh
