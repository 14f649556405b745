#pragma once

// What tests of mesh files share: comparing and adding values, models of other packages.

#include <Korvane/ElementTypes.h>
#include <Korvane/Geometry.h>
#include <Korvane/Object.h>

#include <mesh/files/Formats.h>
#include <tests/support/Files.h>
#include <tests/support/Messages.h>

#include <cstring>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <type_traits>

namespace MeshFiles {

template <class T>
bool sameBits(const Pelon::Array<T>& a, const Pelon::Array<T>& b)
{
    if constexpr (std::is_trivially_copyable_v<T>)
        return a.size() == b.size() &&
               (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0);
    else
        return a == b;
}

inline bool sameArrays(const Pelon::Any& a, const Pelon::Any& b)
{
    bool same = false;
    Korvane::visitArray(a, [&](const auto& array, const char*) {
        const auto* const other = b.get<std::decay_t<decltype(array)>>();
        same = other && sameBits(*array, **other);
    });
    return same;
}

inline std::string textOf(const Pelon::Any& value)
{
    return value.get<Pelon::String>() ? value.get<Pelon::String>()->c_str() : "";
}

/// Whether property `name` holds the same values, bit for bit, for the same elements.
inline bool sameProperty(const Korvane::Object& a, const Korvane::Object& b,
                         const Pelon::String& name)
{
    using namespace Korvane::Geometry;
    if (textOf(a.getProperty(name)) != textOf(b.getProperty(name)) ||
        getElementCount(a, name) != getElementCount(b, name) ||
        !(getTargetChain(a, name) == getTargetChain(b, name)) ||
        getTargetComponent(a, name) != getTargetComponent(b, name))
        return false;
    const auto dataA = getDataGeoProperty(a, name), dataB = getDataGeoProperty(b, name);
    if (bool(dataA) != bool(dataB) ||
        (dataA && !sameArrays(dataA->getProperty(sData), dataB->getProperty(sData))))
        return false;
    const auto rangeA = getRangeGeoProperty(a, name), rangeB = getRangeGeoProperty(b, name);
    return bool(rangeA) == bool(rangeB) &&
           (!rangeA || *getRangeGeoPropIndices(*rangeA) == *getRangeGeoPropIndices(*rangeB));
}

/// The name of the first property that differs, "" for equal meshes.
inline std::string firstDifference(const Korvane::Object& a, const Korvane::Object& b)
{
    const auto names = a.propertyNames();
    if (!(names == b.propertyNames()))
        return "the list of properties";
    for (const Pelon::String& name : names)
        if (!sameProperty(a, b, name))
            return name.c_str();
    return "";
}

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
          "/usr/share/assimp/models/PLY/", "/usr/share/assimp/models/invalid/"})
        if (std::filesystem::exists(folder + name))
            return folder + name;
    return {};
}

}  // namespace MeshFiles
