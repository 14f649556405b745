#include <TessaryMesh/Check.h>
#include <TessaryMesh/Files.h>

#include "base/Guard.h"
#include "base/Host.h"
#include "base/MessageText.h"
#include "files/Deflate.h"
#include "files/FileErrors.h"
#include "files/ForeignFormats.h"
#include "files/Formats.h"
#include "files/Input.h"

#include <new>

namespace TessaryMesh {
namespace {

// A point cloud has none of a mesh's arrays for faces and is nothing to validate.
bool hasFaceArrays(const Object& mesh)
{
    using namespace Korvane::Geometry;
    return mesh.hasProperty(sFaceOffset) || mesh.hasProperty(sFaceVertex);
}

void refuseErrors(const Object& mesh, const std::string& name)
{
    ValidationReport report = validateMesh(mesh);
    if (report.hasErrors())
        throw InvalidMesh(name, std::move(report));
}

[[noreturn]] void refuse(const Format& format, const OutputFile& output, const char* what)
{
    failToWrite(
        FileError::Code::Unsupported, output.path(),
        "files of " + std::string(format.title) + " hold no " + what + "; choose another format");
}

// ".obj, .ply": the endings of formats that hold or read something.
std::string endingsThat(bool Format::*holds)
{
    std::string list;
    for (const Format* const format : formats())
        if (format->*holds && !format->ending.empty())
            list += (list.empty() ? "" : ", ") + std::string(format->ending);
    return list;
}

// A file of a format that nobody here knows is best told by its name.
void refuseForeign(const FileSigns& signs, const std::string& path)
{
    const std::string_view title = foreignFormat(signs);
    if (!title.empty())
        failToRead(FileError::Code::Unsupported, path,
                   "is " + std::string(title) + ", which is not read; save it as one of " +
                       endingsThat(&Format::readsMeshes));
}

// A wrong file of any size is told by its beginning. Of a stream, whose size is 0 as long as it is not
// known, most of what could be wrong has to wait for the rest, and of a packed file all of it.
void refuseHead(std::string_view head, std::uint64_t size, const std::string& path)
{
    if (isGzip(head) || (size == 0 && head.find_first_not_of('\0') != std::string_view::npos))
        return;
    const FileSigns signs{head, size, path};
    const FormatRow& row = rowOfContent(signs);
    if (!row.functions.recognises)
        refuseForeign(signs, path);
    if (row.functions.refuseHead)
        row.functions.refuseHead(head, path);
}

MeshRead readContent(const Input& input, const std::string& path)
{
    InputBuffer buffer;
    const FileSigns signs{input.head(Input::kHead, buffer), input.size(), withoutGz(path)};
    const FormatRow& row = rowOfContent(signs);
    if (!row.functions.recognises)
        refuseForeign(signs, path);
    MeshRead read = row.functions.read(input, path);
    if (!read.format)
        read.format = &row.format;
    return read;
}

}  // namespace

MeshRead readMeshUnchecked(const std::string& path, const ReadLimits& limits)
{
    try {
        const Input input(path.c_str(), limits, [&](std::string_view head, std::uint64_t size) {
            refuseHead(head, size, path);
        });
        InputBuffer buffer;
        if (!isGzip(input.head(Input::kHead, buffer)))
            return readContent(input, path);
        const Array<char> bytes = unpackedGzip(input, path);
        if (bytes.empty())
            failToRead(FileError::Code::Empty, path, "is empty; a mesh file was expected");
        return readContent(Input(std::string_view(bytes.data(), bytes.size())), path);
    } catch (const std::bad_alloc&) {
        throw OutOfMemory(inputName(path), "does not fit into memory; split the mesh into parts");
    }
}

MeshRead readMesh(const std::string& path, const ReadLimits& limits)
{
    MeshRead read = readMeshUnchecked(path, limits);
    refuseErrors(*read.mesh, inputName(path));
    return read;
}

std::vector<std::string> writeMesh(const Object& mesh, const Format& format, OutputFile& output)
{
    const bool hasFaces = hasFaceArrays(mesh);
    const FormatFunctions& functions = rowOf(format).functions;
    const auto write = hasFaces ? functions.writeMesh : functions.writeCloud;
    if (!write)
        refuse(format, output, hasFaces ? "faces" : "points");
    return guarded([&] {
        if (hasFaces)
            refuseErrors(mesh, outputName(output.path()));
        else if (!Geometry::dataArray<float3>(mesh, Geometry::sPointPosition))
            failToWrite(FileError::Code::Unsupported, output.path(),
                        "the object has no point positions; write a mesh");
        return write(mesh, output);
    });
}

std::vector<std::string> saveMesh(const Object& mesh, const std::string& path, bool overwrite)
{
    const Format* const format = formatOfName(path);
    if (!format)
        failToWrite(FileError::Code::Unsupported, path,
                    "the ending names no format of meshes; choose one of " +
                        endingsThat(&Format::writesMeshes));
    OutputFile output(path, overwrite);
    std::vector<std::string> warnings = writeMesh(mesh, *format, output);
    output.commit();
    return warnings;
}

void writeArrays(const NamedArrays& arrays, const Format& format, OutputFile& output)
{
    const auto write = rowOf(format).functions.writeArrays;
    if (!write)
        refuse(format, output, "plain arrays");
    guarded([&] { write(arrays, output); });
}

}  // namespace TessaryMesh
