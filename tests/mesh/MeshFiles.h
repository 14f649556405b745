#pragma once

// What tests of mesh files share: comparing and adding values, models of other packages.

#include <Korvane/Geometry.h>
#include <Korvane/Object.h>

#include <mesh/files/Formats.h>
#include <tests/support/Files.h>
#include <tests/support/Messages.h>
#include <tests/support/SameMesh.h>

#include <filesystem>
#include <initializer_list>
#include <string>

namespace MeshFiles {

/// Adds a property of these values.
template <class T>
void addValues(Korvane::Object& mesh, const Pelon::String& name, const Pelon::String& component,
               std::initializer_list<T> values, const T& fallback = T())
{
    Korvane::Geometry::addDataGeoProperty<T>(mesh, name, component,
                                             Pelon::makeMutable<Pelon::Array<T>>(values), fallback);
}

inline void addIndices(Korvane::Object& mesh, const Pelon::String& name,
                       const Pelon::String& component, std::initializer_list<Pelon::uint> indices)
{
    Korvane::Geometry::addRangeGeoProperty(mesh, name, component,
                                           Pelon::makeMutable<Pelon::Array<Pelon::uint>>(indices));
}

/// The bytes that the writer of a format makes of a mesh, errors or not; its warnings go to `warnings`.
inline std::string written(const Korvane::Object& mesh, std::string_view format,
                           std::vector<std::string>* warnings = nullptr)
{
    const TestSupport::Folder folder;
    TessaryMesh::OutputFile output(folder / "mesh", false);
    const auto lines = rowOf(*TessaryMesh::findFormat(format)).functions.writeMesh(mesh, output);
    output.commit();
    if (warnings)
        *warnings = lines;
    return TestSupport::contentOf(folder / "mesh");
}

/// What the reader of their format makes of these bytes.
inline TessaryMesh::MeshRead parsed(const std::string& bytes)
{
    return TessaryMesh::rowOfContent(bytes).functions.read(bytes, "f");
}

/// The error of a file that `work` ends with.
template <class Work>
TessaryMesh::FileError fileErrorOf(const Work& work)
{
    using TessaryMesh::FileError;
    try {
        work();
    } catch (const FileError& error) {
        return error;
    }
    return FileError(FileError::Code::Exists, "", "no error");
}

template <class Work>
bool isRefused(const Work& work)
{
    return fileErrorOf(work).what() != std::string("no error");
}

/// Where a model of a test package is installed, "" where it is not.
inline std::string installedModel(const std::string& name)
{
    for (const char* folder :
         {"/usr/share/glmark2/models/", "/usr/share/assimp/models/OBJ/",
          "/usr/share/assimp/models/PLY/", "/usr/share/assimp/models/STL/",
          "/usr/share/assimp/models/Collada/", "/usr/share/assimp/models/invalid/"})
        if (std::filesystem::exists(folder + name))
            return folder + name;
    return {};
}

}  // namespace MeshFiles
