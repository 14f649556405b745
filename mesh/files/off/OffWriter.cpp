#include "files/off/Off.h"

#include "base/MeshArrays.h"
#include "files/PropertySearch.h"
#include "files/RowSections.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace TessaryMesh {
namespace {

using Korvane::Math::float4;
using Korvane::Math::uchar3;
using Korvane::Math::uchar4;

/// A property of three or four numbers for each element, from 0 to 1. Programs expect four for points.
class Colours {
public:
    Colours(PropertySearch& search, const char* name, const String& component, std::size_t count)
        : m_isForPoints(component == Geometry::sPointComp)
    {
        takeIf<float3>(search, name, component, count, 1) ||
            takeIf<float4>(search, name, component, count, 1) ||
            takeIf<uchar3>(search, name, component, count, 255) ||
            takeIf<uchar4>(search, name, component, count, 255);
        bool areLevels = true;
        float largest = 0;
        for (const float number : m_numbers) {
            areLevels = areLevels && levelOf(number) / 255 == number;
            largest = std::max(largest, number);
        }
        m_areWhole = areLevels && (levelOf(largest) > 1 || (m_isForPoints && m_width == 3));
    }

    explicit operator bool() const { return m_width > 0; }

    void put(std::size_t i, TextBuffer& out) const
    {
        for (std::size_t k = i * m_width; k < (i + 1) * m_width; ++k)
            putNumber(m_numbers[k], out);
        if (m_isForPoints && m_width == 3)
            putNumber(1, out);
    }

private:
    template <class T>
    bool takeIf(PropertySearch& search, const char* name, const String& component,
                std::size_t count, float most)
    {
        std::optional<ElementValues<T>> found;
        if (!search.find(name, component, count, found))
            return false;
        m_width = sizeof(T) / sizeof(T::x);
        for (std::size_t i = 0; i < count; ++i) {
            const T value = found->valueOf(i);
            for (std::size_t k = 0; k < m_width; ++k)
                m_numbers.push_back(static_cast<float>((&value.x)[k]) / most);
        }
        return true;
    }

    void putNumber(float number, TextBuffer& out) const
    {
        out << ' ';
        if (m_areWhole)
            out << static_cast<int>(levelOf(number));
        else
            putFraction(number, out);
    }

    static float levelOf(float number)
    {
        return number >= 0 && number <= 1 ? std::floor(number * 255 + 0.5f) : -1;
    }

    // Whole numbers alone would be taken for levels.
    static void putFraction(float number, TextBuffer& out)
    {
        char text[kNumberTextSize];
        const std::string_view found(text,
                                     static_cast<std::size_t>(formatNumber(text, number) - text));
        out << found << (found.find_first_of(".eni") == std::string_view::npos ? ".0" : "");
    }

    bool m_isForPoints;
    std::size_t m_width = 0;
    bool m_areWhole = false;
    Array<float> m_numbers;
};

struct OffValues {
    explicit OffValues(const Object& object)
        : mesh(object),
          search(object, "OFF"),
          colours(search, "color", Geometry::sPointComp, mesh.points->size()),
          faceColours(search, "face_color", Geometry::sFaceComp, mesh.faceCount())
    {
        search.find("normal", Geometry::sPointComp, mesh.points->size(), normals);
        search.find("texcoord", Geometry::sPointComp, mesh.points->size(), texcoords);
    }

    MeshArrays mesh;
    PropertySearch search;
    Colours colours, faceColours;
    std::optional<ElementValues<float3>> normals;
    std::optional<ElementValues<float2>> texcoords;
};

void putHead(const OffValues& values, TextBuffer& out)
{
    out << (values.texcoords ? "ST" : "") << (values.colours ? "C" : "")
        << (values.normals ? "N" : "") << "OFF\n"
        << values.mesh.points->size() << ' ' << values.mesh.faceCount() << " 0\n";
}

void putVector(const float3& v, TextBuffer& out)
{
    out << v.x << ' ' << v.y << ' ' << v.z;
}

void putPoint(const OffValues& values, std::size_t i, TextBuffer& out)
{
    putVector((*values.mesh.points)[i], out);
    if (values.normals) {
        out << ' ';
        putVector(values.normals->valueOf(i), out);
    }
    if (values.colours)
        values.colours.put(i, out);
    if (values.texcoords) {
        const float2 uv = values.texcoords->valueOf(i);
        out << ' ' << uv.x << ' ' << uv.y;
    }
    out << '\n';
}

void putFace(const OffValues& values, std::size_t face, TextBuffer& out)
{
    const Array<uint>& offset = *values.mesh.faceOffset;
    out << offset[face + 1] - offset[face];
    for (uint corner = offset[face]; corner < offset[face + 1]; ++corner)
        out << ' ' << (*values.mesh.faceVertex)[corner];
    if (values.faceColours)
        values.faceColours.put(face, out);
    out << '\n';
}

}  // namespace

std::vector<std::string> writeOff(const Object& mesh, OutputFile& output)
{
    const OffValues values(mesh);
    const auto rows = [&values](std::size_t count, auto put) {
        return RowSection{count,
                          [&values, put](std::size_t begin, std::size_t end, TextBuffer& out) {
                              for (std::size_t i = begin; i < end; ++i)
                                  put(values, i, out);
                          }};
    };
    const auto head = [](const OffValues& all, std::size_t, TextBuffer& out) { putHead(all, out); };
    writeSections({rows(1, head), rows(values.mesh.points->size(), putPoint),
                   rows(values.mesh.faceCount(), putFace)},
                  output);
    return values.search.leftOut();
}

}  // namespace TessaryMesh
