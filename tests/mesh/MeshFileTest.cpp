#include <mesh/files/MeshFile.h>

#include <gtest/gtest.h>
#include <support/MeshBuilding.h>

#include <TessaryMesh/Check.h>
#include <mesh/files/OutputFile.h>

#include "MeshFiles.h"

namespace {

using namespace TestSupport;
using namespace MeshFiles;
using TessaryMesh::MeshFormat;

const std::string kPly =
    "ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\nproperty float y\n"
    "property float z\nelement face 1\nproperty list uchar int vertex_indices\nend_header\n"
    "0 0 0\n1 0 0\n2 0 0\n3 0 1 2\n";

TEST(MeshFile, RecognisesTheFormatByTheContent)
{
    const Folder folder;
    const auto ply = TessaryMesh::readMesh(folder.file("a.obj", kPly));
    const auto obj =
        TessaryMesh::readMesh(folder.file("a.ply", "v 0 0 0\nv 1 0 0\nv 2 0 0\nf 1 2 3\n"));
    EXPECT_EQ(ply.format, MeshFormat::PlyAscii);
    EXPECT_EQ(obj.format, MeshFormat::Obj);
    EXPECT_EQ(firstDifference(*ply.mesh, *obj.mesh), "");
}

TEST(MeshFile, KnowsTheEndingsOfNames)
{
    EXPECT_EQ(TessaryMesh::formatOfName("a.b/C.OBJ"), MeshFormat::Obj);
    EXPECT_EQ(TessaryMesh::formatOfName("x.ply"), MeshFormat::PlyBinary);
    EXPECT_EQ(TessaryMesh::formatOfName("obj"), std::nullopt);
    EXPECT_EQ(TessaryMesh::formatOfName("a.stl"), std::nullopt);
}

TEST(MeshFile, RefusesMeshesWithErrorsOnBothWays)
{
    const Folder folder;
    const std::string path = folder.file("a.obj", "v 0 0 0\nv 1 0 0\nf 1 2\n");
    const std::string found =
        ": faces of fewer than three corners (once), first at face 0, which "
        "has 2; remove them or give them three corners";
    EXPECT_EQ(messageOf<TessaryMesh::InvalidMesh>([&] { TessaryMesh::readMesh(path); }),
              path + found);

    const auto mesh = TessaryMesh::readMeshUnchecked(path).mesh;
    for (const MeshFormat format : {MeshFormat::Obj, MeshFormat::PlyBinary}) {
        TessaryMesh::OutputFile output(folder / "b", false);
        EXPECT_EQ(messageOf<TessaryMesh::InvalidMesh>([&] { writeMesh(*mesh, format, output); }),
                  (folder / "b") + found);
    }
    EXPECT_EQ(folder.names(), std::vector<std::string>{"a.obj"});
}

}  // namespace
