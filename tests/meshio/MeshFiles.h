#pragma once

// What tests of mesh files share: comparing meshes, files of their own, models of other packages.

#include <Korvane/ElementTypes.h>
#include <Korvane/Geometry.h>
#include <Korvane/Object.h>

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
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

/// A file name in a folder that goes away with the test.
class TemporaryFolder {
public:
    TemporaryFolder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "meshio-XXXXXX").string();
        m_path = ::mkdtemp(pattern.data());
    }
    ~TemporaryFolder() { std::filesystem::remove_all(m_path); }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::string operator/(const std::string& name) const { return (m_path / name).string(); }
    const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

inline std::string contentOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void makeFile(const std::string& path, const std::string& content)
{
    std::ofstream(path, std::ios::binary) << content;
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
