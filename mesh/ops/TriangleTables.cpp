#include "ops/TriangleTables.h"

#include <Tessary/Topology.h>

#include "base/Host.h"
#include "base/MeshArrays.h"
#include "check/EdgeReport.h"
#include "files/TextWriter.h"
#include "files/npz/Npz.h"
#include <TessaryMesh/Errors.h>

namespace TessaryMesh {
namespace {

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

Array<uint> trianglesOf(const MeshArrays& mesh, const std::string& name)
{
    Array<uint> triangles = fanTriangles(*mesh.faceOffset, *mesh.faceVertex);
    rejectSameDirection(
        *mesh.faceOffset, findSameDirectionEdges(triangles, mesh.points->size(), 3), name,
        "turn one of the faces round or give it points of its own; tessary validate lists more");
    return triangles;
}

void writeRows(const NamedTable& table, TextWriter& out)
{
    const bool isRow = table.width > 1;
    for (std::size_t i = 0; i < table.values.size(); ++i) {
        const std::size_t place = i % table.width;
        out << (i > 0 ? "," : "") << (isRow && place == 0 ? "[" : "");
        if (table.values[i] == kNone)
            out << "null";
        else
            out << table.values[i];
        out << (isRow && place == table.width - 1 ? "]" : "");
    }
}

}  // namespace

TriangleTables makeTriangleTables(const Object& mesh, const std::string& name)
{
    const MeshArrays arrays(mesh);
    TriangleTables tables;
    tables.faceVertex = trianglesOf(arrays, name);
    Tessary::computeTriEdges(tables.faceVertex, tables.triEdges);
    throwIfCancelled();
    tables.dualFaceOffset = Array<uint>(arrays.points->size() + 1);
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
    TextWriter out(output);
    const char* before = "{";
    forEachTable(tables, [&](const NamedTable& table) {
        out << before << "\"" << table.name << "\": [";
        writeRows(table, out);
        out << "]";
        before = ",\n ";
    });
    out << "}\n";
    out.flush();
}

}  // namespace TessaryMesh
