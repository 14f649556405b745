#include "files/stl/Stl.h"

#include "base/MeshArrays.h"
#include "base/MessageText.h"
#include "base/Vectors.h"
#include "files/PropertySearch.h"
#include "files/RowSections.h"
#include "files/stl/PointWelder.h"
#include "files/stl/StlLayout.h"

#include <algorithm>

namespace TessaryMesh {
namespace {

using namespace Stl;

struct Facet {
    float3 normal, corners[3];
    uint face;
};

std::string countOf(std::size_t count, const char* one, const char* many)
{
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

// Whether a reader finds the name again as it is.
bool isOneLine(std::string_view name)
{
    constexpr std::string_view kBlanks(" \t\f\v", 4);
    return name.find_first_of(std::string_view("\n\r\0", 3)) == std::string_view::npos &&
           (name.empty() || (kBlanks.find(name.front()) == std::string_view::npos &&
                             kBlanks.find(name.back()) == std::string_view::npos));
}

/// The triangles of a mesh's fans, and what facets say of them.
class Facets {
public:
    Facets(const Object& mesh, bool isText) : m_mesh(mesh), m_search(mesh, "STL")
    {
        const std::size_t faces = m_mesh.faceCount();
        m_search.find("normal", Geometry::sFaceComp, faces, m_normals);
        if (isText)
            findObjects(mesh);
        else
            m_search.find("stl_attribute", Geometry::sFaceComp, faces, m_attributes);
        findHeader(mesh, isText);
        m_warnings = m_search.leftOut();
        warnOfFaces();
        warnOfPoints();
    }

    std::size_t faceCount() const { return m_mesh.faceCount(); }
    std::size_t triangleCount() const { return m_mesh.faceVertex->size() - 2 * faceCount(); }
    const std::string& header() const { return m_header; }
    std::vector<std::string>& warnings() { return m_warnings; }

    unsigned short attribute(uint face) const
    {
        return m_attributes ? m_attributes->valueOf(face) : static_cast<unsigned short>(0);
    }
    String object(uint face) const { return m_objects ? m_objects->valueOf(face) : String(); }

    /// Calls `visit(facet)` for the triangles of faces [begin, end).
    template <class Visit>
    void visit(std::size_t begin, std::size_t end, const Visit& visit) const
    {
        const Array<uint>& offset = *m_mesh.faceOffset;
        for (std::size_t face = begin; face < end; ++face)
            for (uint k = offset[face] + 2; k < offset[face + 1]; ++k)
                visit(facetOf(static_cast<uint>(face), offset[face], k));
    }

private:
    Facet facetOf(uint face, uint first, uint last) const
    {
        const Array<uint>& corner = *m_mesh.faceVertex;
        const Array<float3>& points = *m_mesh.points;
        Facet facet{
            {}, {points[corner[first]], points[corner[last - 1]], points[corner[last]]}, face};
        facet.normal = m_normals ? m_normals->valueOf(face)
                                 : unit(cross(difference(facet.corners[1], facet.corners[0]),
                                              difference(facet.corners[2], facet.corners[0])));
        return facet;
    }

    void findObjects(const Object& mesh)
    {
        const auto names = Geometry::dataArray<String>(mesh, "object");
        if (names && std::all_of(names->begin(), names->end(),
                                 [](const String& name) { return isOneLine(name.view()); }))
            m_search.find("object", Geometry::sFaceComp, faceCount(), m_objects);
    }

    // Readers that look at the first word alone would take a header that begins with "solid" for text.
    void findHeader(const Object& mesh, bool isText)
    {
        const Any value = mesh.getProperty("stl_header");
        const String* const header = value.get<String>();
        if (isText || !header || header->view().size() > kHeaderSize ||
            isWord(header->view().substr(0, 5), "solid"))
            return;
        m_header = m_search.findText("stl_header")->c_str();
    }

    void warnOfFaces()
    {
        const Array<uint>& offset = *m_mesh.faceOffset;
        std::size_t large = 0;
        for (std::size_t face = 0; face < faceCount(); ++face)
            large += offset[face + 1] - offset[face] > 3;
        if (large > 0)
            m_warnings.push_back(
                countOf(large, "face of more than three corners becomes",
                        "faces of more than three corners become") +
                " triangles, a fan around the first corner, because STL holds no larger ones");
    }

    void warnOfPoints()
    {
        PointWelder welder;
        for (const float3& point : *m_mesh.points)
            welder.add(point);
        const std::size_t count = m_mesh.points->size(), welded = count - welder.points().size();
        if (welded > 0)
            m_warnings.push_back(countOf(welded,
                                         "point lies exactly where another one does and becomes",
                                         "points lie exactly where another one does and become") +
                                 " one with it for readers of STL");
        Array<bool> isUsed(count, false);
        for (const uint point : *m_mesh.faceVertex)
            isUsed[point] = true;
        const auto unused =
            static_cast<std::size_t>(std::count(isUsed.begin(), isUsed.end(), false));
        if (unused > 0)
            m_warnings.push_back(countOf(unused, "point of no face is", "points of no face are") +
                                 " left out: STL holds triangles only");
    }

    MeshArrays m_mesh;
    PropertySearch m_search;
    std::optional<ElementValues<float3>> m_normals;
    std::optional<ElementValues<unsigned short>> m_attributes;
    std::optional<ElementValues<String>> m_objects;
    std::string m_header;
    std::vector<std::string> m_warnings;
};

void putFacet(const Facet& facet, unsigned short attribute, char* to)
{
    const float3* const vectors[] = {&facet.normal, facet.corners, facet.corners + 1,
                                     facet.corners + 2};
    for (const float3* const v : vectors)
        for (const float number : {v->x, v->y, v->z}) {
            putFloat(to, number);
            to += 4;
        }
    to[0] = static_cast<char>(attribute & 0xFF);
    to[1] = static_cast<char>(attribute >> 8);
}

void putVector(std::string_view before, const float3& v, TextBuffer& out)
{
    out << before << v.x << ' ' << v.y << ' ' << v.z << '\n';
}

void putFacetText(const Facet& facet, TextBuffer& out)
{
    putVector("facet normal ", facet.normal, out);
    out << "outer loop\n";
    for (const float3& corner : facet.corners)
        putVector("vertex ", corner, out);
    out << "endloop\nendfacet\n";
}

// A solid ends wherever the name of the next face is another one.
void putFaces(const Facets& facets, std::size_t begin, std::size_t end, TextBuffer& out)
{
    for (std::size_t face = begin; face < end; ++face) {
        const auto here = static_cast<uint>(face);
        const String name = facets.object(here);
        const bool isNew = face == 0 || !(facets.object(here - 1) == name);
        if (face > 0 && isNew)
            out << "endsolid " << facets.object(here - 1).view() << '\n';
        if (isNew)
            out << "solid " << name.view() << '\n';
        facets.visit(face, face + 1, [&](const Facet& facet) { putFacetText(facet, out); });
    }
}

}  // namespace

std::vector<std::string> writeBinaryStl(const Object& mesh, OutputFile& output)
{
    Facets facets(mesh, false);
    char head[kHeadSize] = {};
    std::copy(facets.header().begin(), facets.header().end(), head);
    putUint(head + kHeaderSize, static_cast<std::uint32_t>(facets.triangleCount()));
    output.write(head, kHeadSize);
    writeSections({{facets.faceCount(),
                    [&](std::size_t begin, std::size_t end, TextBuffer& out) {
                        facets.visit(begin, end, [&](const Facet& facet) {
                            putFacet(facet, facets.attribute(facet.face), out.extend(kFacetSize));
                        });
                    }}},
                  output);
    return std::move(facets.warnings());
}

std::vector<std::string> writeAsciiStl(const Object& mesh, OutputFile& output)
{
    Facets facets(mesh, true);
    const std::size_t faces = facets.faceCount();
    if (faces == 0)
        output.write("solid\n");
    writeSections({{faces, [&](std::size_t begin, std::size_t end,
                               TextBuffer& out) { putFaces(facets, begin, end, out); }}},
                  output);
    const auto last = static_cast<uint>(faces == 0 ? 0 : faces - 1);
    output.write("endsolid " + std::string(faces == 0 ? "" : facets.object(last).c_str()) + "\n");
    return std::move(facets.warnings());
}

}  // namespace TessaryMesh
