#include <meshio/TriangleTables.h>

#include <Korvane/Geometry.h>
#include <Tessary/Topology.h>
#include <Tessary/Triangulation.h>

#include <meshio/EdgeProblem.h>
#include <meshio/Npz.h>
#include <meshio/NumberText.h>
#include <meshio/OutputFile.h>
#include <meshio/ReadFile.h>

#include <stdexcept>

namespace MeshIo {
namespace {

using Korvane::Object;
using Pelon::Array;
using Pelon::uint;
namespace Geometry = Korvane::Geometry;

constexpr uint kNone = 0xFFFFFFFF;
constexpr std::size_t kPiece = std::size_t{1} << 20;  // bytes of text written at once

struct NamedTable {
    const char* name;
    const Array<uint>& values;
    std::size_t width;  // values of a row; 1 for a plain list
};

template <class Visit>
void forEachTable(const TriangleTables& tables, const Visit& visit)
{
    visit(NamedTable{"face_vertex", tables.faceVertex, 3});
    visit(NamedTable{"tri_edges", tables.triEdges, 2});
    visit(NamedTable{"face_vertex_adjacent_tri", tables.adjacentTri, 3});
    visit(NamedTable{"dual_face_offset", tables.dualFaceOffset, 1});
    visit(NamedTable{"dual_face_vertex", tables.dualFaceVertex, 1});
}

Array<uint> trianglesOf(const Object& mesh, const std::string& name, std::size_t pointCount)
{
    const auto faceOffset = Geometry::dataArray<uint>(mesh, Geometry::sFaceOffset);
    const auto faceVertex = Geometry::dataArray<uint>(mesh, Geometry::sFaceVertex);
    Array<uint> triFaceOffset, triFaceVertex;
    if (!faceOffset || !faceVertex)
        return triFaceVertex;
    if (!Tessary::computeTriangulation(*faceOffset, *faceVertex, triFaceOffset, triFaceVertex))
        throw std::invalid_argument("the mesh has faces that cannot be triangulated; validate it");
    rejectSameDirection(
        *faceOffset, findSameDirectionEdges(triFaceVertex, pointCount, 3), name,
        "turn one of the faces round or give it points of its own; tessary validate lists more");
    return triFaceVertex;
}

void appendValue(std::string& text, uint value)
{
    if (value == kNone)
        text += "null";
    else
        appendNumber(text, value);
}

void writeRows(const NamedTable& table, OutputFile& output)
{
    std::string text;
    for (std::size_t i = 0; i < table.values.size(); ++i) {
        if (text.size() > kPiece) {
            throwIfCancelled();
            output.write(text);
            text.clear();
        }
        const bool isRow = table.width > 1;
        text += i > 0 ? "," : "";
        text += isRow && i % table.width == 0 ? "[" : "";
        appendValue(text, table.values[i]);
        text += isRow && i % table.width == table.width - 1 ? "]" : "";
    }
    output.write(text);
}

}  // namespace

TriangleTables makeTriangleTables(const Object& mesh, const std::string& name)
{
    const std::size_t points = Geometry::getElementCount(mesh, Geometry::sPointComp);
    TriangleTables tables;
    tables.faceVertex = trianglesOf(mesh, name, points);
    Tessary::computeTriEdges(tables.faceVertex, tables.triEdges);
    throwIfCancelled();
    tables.dualFaceOffset = Array<uint>(points + 1);
    tables.dualFaceVertex = Array<uint>(tables.faceVertex.size(), kNone);
    Tessary::constructDualMesh(tables.faceVertex, tables.dualFaceOffset, tables.dualFaceVertex);
    throwIfCancelled();
    Tessary::populateAdjacentTri(tables.faceVertex, tables.dualFaceOffset, tables.dualFaceVertex,
                                 tables.adjacentTri);
    throwIfCancelled();
    return tables;
}

void writeNpz(const TriangleTables& tables, OutputFile& output)
{
    NpzWriter writer(output);
    forEachTable(tables, [&writer](const NamedTable& table) {
        std::vector<std::size_t> shape{table.values.size() / table.width};
        if (table.width > 1)
            shape.push_back(table.width);
        writer.add(table.name, shape, table.values.data());
    });
    writer.finish();
}

void writeJson(const TriangleTables& tables, OutputFile& output)
{
    const char* before = "{";
    forEachTable(tables, [&](const NamedTable& table) {
        output.write(std::string(before) + "\"" + table.name + "\": [");
        writeRows(table, output);
        output.write("]");
        before = ",\n ";
    });
    output.write("}\n");
}

}  // namespace MeshIo
