#include "files/npz/NpzForeign.h"

#include "base/MessageText.h"
#include "files/FileErrors.h"
#include "files/npz/NpzNames.h"

#include <algorithm>
#include <cmath>

namespace TessaryMesh {
namespace {

using namespace Korvane::Geometry;
using Code = FileError::Code;

/// Calls `visit(array)` with the array of numbers; false where there is none.
template <class Visit>
bool visitNumbers(const Any& values, const Visit& visit)
{
    return Korvane::visitArray(values, [&](const auto& typed, const char*) {
        if constexpr (std::is_arithmetic_v<typename std::decay_t<decltype(*typed)>::value_type>)
            visit(*typed);
    });
}

template <class T>
uint indexOf(T value, const std::string& name, const std::string& path)
{
    const bool isNegative = std::is_signed_v<T> && value < T(0);
    if (isNegative || static_cast<unsigned long long>(value) > kNone)
        failToRead(Code::Malformed, path,
                   "array " + quoted(name) + " has the index " + std::to_string(value) +
                       "; indices are 0 to 4294967295");
    return static_cast<uint>(value);
}

class ForeignMesh {
public:
    ForeignMesh(NpzArchive& archive, const std::string& path, std::vector<std::string>& warnings)
        : m_archive(archive), m_path(path), m_warnings(warnings)
    {}

    MutablePtr<Object> mesh()
    {
        const std::string points = nameAmong({kNpzPositions, "points", "vertices"});
        if (points.empty())
            failToRead(Code::Unsupported, m_path,
                       "the arrays make no mesh: there is none called \"position\", \"points\" or "
                       "\"vertices\"");
        const std::string faces = nameAmong({"faces", "triangles", "quads"});
        Array<float3> positions = pointsOf(m_archive, points, m_path, m_warnings);
        if (m_archive.has(kNpzFaceVertex) || m_archive.has(kNpzFaceOffset))
            readOffsets();
        else if (!faces.empty())
            readRows(faces);
        m_mesh = makeMesh(std::move(positions), std::move(m_offset), std::move(m_vertex));
        for (const std::string& name : m_archive.names())
            if (std::find(m_taken.begin(), m_taken.end(), name) == m_taken.end())
                addProperty(name);
        return m_mesh;
    }

private:
    std::string nameAmong(std::initializer_list<const char*> names)
    {
        for (const char* const name : names)
            if (m_archive.has(name)) {
                m_taken.push_back(name);
                return name;
            }
        return {};
    }

    void readOffsets()
    {
        Shape shape;
        m_vertex = indicesOf(m_archive, kNpzFaceVertex, m_path, shape);
        m_offset = indicesOf(m_archive, kNpzFaceOffset, m_path, shape);
        m_taken.insert(m_taken.end(), {kNpzFaceVertex, kNpzFaceOffset});
    }

    void readRows(const std::string& name)
    {
        Shape shape;
        m_vertex = indicesOf(m_archive, name, m_path, shape);
        if (shape.size() != 2)
            failToRead(Code::Malformed, m_path,
                       "array " + quoted(name) + " has " + std::to_string(shape.size()) +
                           " dimensions; faces are rows of as many corners each");
        for (std::size_t face = 1; shape[1] > 0 && face <= shape[0]; ++face)
            m_offset.push_back(static_cast<uint>(face * shape[1]));
    }

    void addProperty(const std::string& name)
    {
        if (m_mesh->hasProperty(name) || String(name) == sRenderSettings)
            return leaveOut(name, "has a name that belongs to the mesh itself");
        const Any values = m_archive.read(name);
        const bool isKnown = Korvane::visitArray(values, [&](const auto& typed, const char*) {
            using T = typename std::decay_t<decltype(*typed)>::value_type;
            const String on = componentOf(name, typed->size());
            if (on.empty())
                return leaveOut(name, "has " + std::to_string(typed->size()) +
                                          " elements, and as many points, faces or corners "
                                          "there are not");
            addDataGeoProperty<T>(*m_mesh, name, on, typed);
        });
        if (!isKnown)
            leaveOut(name, "is of a type or shape that no element has");
    }

    void leaveOut(const std::string& name, const std::string& why)
    {
        m_warnings.push_back("array " + quoted(name) + " " + why + "; it is left out");
    }

    String componentOf(const std::string& name, std::size_t count)
    {
        String found;
        for (const String* const component : {&sPointComp, &sFaceComp, &sFaceVertexComp}) {
            if (getElementCount(*m_mesh, *component) != count)
                continue;
            if (found.empty())
                found = *component;
            else if (count > 0) {
                m_warnings.push_back("array " + quoted(name) + " of " + std::to_string(count) +
                                     " elements could belong to several components and went to "
                                     "the first of points, faces, corners");
                break;
            }
        }
        return found;
    }

    NpzArchive& m_archive;
    const std::string& m_path;
    std::vector<std::string>& m_warnings;
    std::vector<std::string> m_taken;
    Array<uint> m_offset{0}, m_vertex;
    MutablePtr<Object> m_mesh;
};

}  // namespace

Array<float3> pointsOf(NpzArchive& archive, const std::string& name, const std::string& path,
                       std::vector<std::string>& warnings)
{
    Shape shape;
    const Any values = archive.readNumbers(name, shape);
    if (shape.size() != 2 || shape[1] != 3)
        failToRead(Code::Malformed, path,
                   "array " + quoted(name) + " is no row of three numbers for each point");
    Array<float3> points(shape[0]);
    std::size_t changed = 0;
    const bool isKnown = visitNumbers(values, [&](const auto& numbers) {
        auto* const to = reinterpret_cast<float*>(points.data());
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            const auto value = static_cast<double>(numbers[i]);
            to[i] = std::fabs(value) <= 3.4028234663852886e38 || !std::isfinite(value)
                        ? static_cast<float>(value)
                        : std::copysign(INFINITY, static_cast<float>(value > 0 ? 1 : -1));
            changed += static_cast<double>(to[i]) != value && !std::isnan(value);
        }
    });
    if (!isKnown)
        archive.failToRequire(name, "float");
    if (changed > 0)
        warnings.push_back(std::to_string(changed) + " of " + std::to_string(3 * points.size()) +
                           " point coordinates were rounded to float, the mesh's type");
    return points;
}

Array<uint> indicesOf(NpzArchive& archive, const std::string& name, const std::string& path,
                      Shape& shape)
{
    const Any values = archive.readNumbers(name, shape);
    if (const auto* const exact = values.get<Ptr<Array<uint>>>())
        return std::move(*Pelon::toMutable(Ptr<Array<uint>>(*exact)));
    Array<uint> indices;
    bool isKnown = false;
    visitNumbers(values, [&](const auto& numbers) {
        using T = typename std::decay_t<decltype(numbers)>::value_type;
        if constexpr (std::is_integral_v<T> && !std::is_same_v<T, bool>) {
            isKnown = true;
            indices.resize(numbers.size());
            for (std::size_t i = 0; i < numbers.size(); ++i)
                indices[i] = indexOf(numbers[i], name, path);
        }
    });
    if (!isKnown)
        archive.failToRequire(name, "uint or another integer");
    return indices;
}

MutablePtr<Object> meshOfForeignArrays(NpzArchive& archive, const std::string& path,
                                       std::vector<std::string>& warnings)
{
    return ForeignMesh(archive, path, warnings).mesh();
}

}  // namespace TessaryMesh
