#include "files/MeshFile.h"

#include "base/Host.h"
#include "base/MessageText.h"
#include "files/OutputFile.h"
#include "files/ReadFile.h"
#include "files/obj/Obj.h"
#include "files/ply/Ply.h"
#include <TessaryMesh/Check.h>

#include <algorithm>
#include <new>

namespace TessaryMesh {
namespace {

bool startsLikePly(std::string_view bytes)
{
    return bytes.substr(0, 3) == "ply" &&
           (bytes.size() == 3 || bytes[3] == '\n' || bytes[3] == '\r');
}

bool endsWith(std::string_view path, std::string_view lowerCaseEnding)
{
    if (path.size() < lowerCaseEnding.size())
        return false;
    const std::string_view ending = path.substr(path.size() - lowerCaseEnding.size());
    return std::equal(ending.begin(), ending.end(), lowerCaseEnding.begin(), [](char a, char b) {
        return (a >= 'A' && a <= 'Z' ? a + ('a' - 'A') : a) == b;
    });
}

// A point cloud has none of a mesh's arrays for faces and is nothing to validate.
bool hasFaceArrays(const Object& mesh)
{
    using namespace Korvane::Geometry;
    return mesh.hasProperty(sFaceOffset) || mesh.hasProperty(sFaceVertex);
}

}  // namespace

MeshRead readMeshUnchecked(const std::string& path)
{
    try {
        const Array<char> bytes = readFile(path);
        const std::string_view text = viewOf(bytes);
        return startsLikePly(text) ? readPly(text, inputName(path))
                                   : readObj(text, inputName(path));
    } catch (const std::bad_alloc&) {
        throw FileError(inputName(path) + ": does not fit into memory; split the mesh into parts");
    }
}

MeshRead readMesh(const std::string& path)
{
    MeshRead read = readMeshUnchecked(path);
    ValidationReport report = validateMesh(*read.mesh);
    if (report.hasErrors())
        throw InvalidMesh(inputName(path), std::move(report));
    return read;
}

std::optional<MeshFormat> formatOfName(std::string_view path)
{
    if (endsWith(path, ".obj"))
        return MeshFormat::Obj;
    if (endsWith(path, ".ply"))
        return MeshFormat::PlyBinary;
    return std::nullopt;
}

std::vector<std::string> writeMesh(const Object& mesh, MeshFormat format, OutputFile& output)
{
    if (hasFaceArrays(mesh)) {
        ValidationReport report = validateMesh(mesh);
        if (report.hasErrors())
            throw InvalidMesh(output.path(), std::move(report));
    }
    return format == MeshFormat::Obj ? writeObj(mesh, output) : writePly(mesh, format, output);
}

}  // namespace TessaryMesh
