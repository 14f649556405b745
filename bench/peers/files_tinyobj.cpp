#define TINYOBJLOADER_IMPLEMENTATION
#include <tiny_obj_loader.h>

#include "peers/FileRows.h"

namespace Bench {
namespace {

void read(Row& row, const DemoFile& file, const char* peer)
{
    tinyobj::ObjReader reader;
    std::size_t faces = 0;
    tinyobj::ObjReaderConfig wanted;
    wanted.triangulate = false;
    const Contender other{[&] { reader.ParseFromFile(file.path(), wanted); }, nullptr,
                          [&] {
                              faces = 0;
                              for (const tinyobj::shape_t& shape : reader.GetShapes())
                                  faces += shape.mesh.num_face_vertices.size();
                              reader = {};
                          }};
    compareReads(row, file, {peer, other, "on one thread, without a check"}, faces);
}

void addRows()
{
    const char* const peer = "tinyobjloader";
    addFileRows("readMesh", "OBJ", "obj", peer,
                [=](Row& row, const DemoFile& file) { read(row, file, peer); });
}

const RowsOfLibrary rows(addRows);

}  // namespace
}  // namespace Bench
