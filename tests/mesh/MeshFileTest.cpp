#include <TessaryMesh/Files.h>

#include <gtest/gtest.h>
#include <support/Cancellation.h>
#include <support/MeshBuilding.h>

#include <TessaryMesh/Check.h>

#include "MeshFiles.h"

namespace {

using namespace TestSupport;
using namespace MeshFiles;
using namespace TessaryMesh;
using namespace Korvane::Geometry;
using Code = FileError::Code;

TEST(MeshFile, KnowsTheMarksOfContentsAndTheEndingsOfNames)
{
    for (const char* content : {"ply", "ply\n", "ply\r\nformat", "\xEF\xBB\xBFply\n"})
        EXPECT_EQ(rowOfContent(content).format.name, "ply") << content;
    for (const char* content : {"plyv", "pl", "", "PK"})
        EXPECT_EQ(rowOfContent(content).format.name, "obj") << content;
    for (const char* content : {"OFF\n", "# c\n\nSTCN4OFF 1", "OFF BINARY\n"})
        EXPECT_EQ(rowOfContent(content).format.name, "off") << content;
    for (const char* content : {"solid\nfacet", " SOLID a b\n endsolid"})
        EXPECT_EQ(rowOfContent(content).format.name, "stl-ascii") << content;
    EXPECT_EQ(rowOfContent("solid" + std::string(79, '\0')).format.name, "stl");
    EXPECT_EQ(formatOfName("a.b/C.OBJ"), findFormat("obj"));
    EXPECT_EQ(formatOfName("x.ply"), findFormat("ply"));
    for (const char* name : {"obj", ".obj", "a.", "a", ""})
        EXPECT_EQ(formatOfName(name), nullptr) << name;
}

TEST(MeshFile, EveryFormatHoldsWhatItSaysAndRefusesTheRest)
{
    const Folder folder;
    const auto mesh = meshOf(3, {{0, 1, 2}});
    Object cloud;
    populatePointCloud(shared<float3>({{1, 2, 3}}), cloud);
    for (const Format* const format : formats()) {
        const std::string path = folder / std::string(format->name);
        const auto holds = [&path](const auto& write) {
            const auto error = fileErrorOf([&] {
                OutputFile output(path, true);
                write(output);
                output.commit();
            });
            EXPECT_TRUE(error.what() == std::string("no error") ||
                        error.code() == Code::Unsupported);
            return error.code() != Code::Unsupported;
        };
        const auto holdsObject = [&](const Object& object) {
            return holds([&](OutputFile& output) { writeMesh(object, *format, output); });
        };
        const NamedArrays arrays{namedArray<uint>("a", shared<uint>({1}))};
        EXPECT_EQ(holds([&](OutputFile& output) { writeArrays(arrays, *format, output); }),
                  format->writesArrays);
        EXPECT_FALSE(holdsObject(Object())) << "no points";
        EXPECT_EQ(holdsObject(cloud), format->writesClouds);
        EXPECT_EQ(holdsObject(*mesh), format->writesMeshes);
        const std::string mark = format->name == "ply-ascii" ? "\xEF\xBB\xBF" : "";
        const std::string marked = folder.file("marked", mark + contentOf(path));
        if (format->readsMeshes && format->writesMeshes) {
            const MeshRead read = readMesh(marked);
            EXPECT_EQ(read.format, format);
            for (const String& name : mesh->propertyNames())  // of STL has normals beside
                EXPECT_TRUE(sameProperty(*mesh, *read.mesh, name)) << name.c_str();
        }
    }
}

TEST(MeshFile, IsSavedByItsEnding)
{
    const Folder folder;
    const auto mesh = meshOf(3, {{0, 1, 2}});
    saveMesh(*mesh, folder / "a.PLY");
    EXPECT_EQ(firstDifference(*mesh, *readMesh(folder / "a.PLY").mesh), "");
    EXPECT_EQ(fileErrorOf([&] { saveMesh(*mesh, folder / "a.PLY"); }).code(), Code::Exists);
    for (const char* name : {"a.xyz", "a.json"})
        EXPECT_EQ(fileErrorOf([&] { saveMesh(*mesh, folder / name); }).code(), Code::Unsupported);
    EXPECT_EQ(folder.names(), std::vector<std::string>{"a.PLY"});
}

TEST(MeshFile, IsPackedWhereItsNameSaysSoAndTheSameBytesEachTime)
{
    const Folder folder;
    const auto mesh = meshOf(3, {{0, 1, 2}});
    for (const char* const name : {"a.obj.gz", "b.obj.gz", "c.PLY.GZ"}) {
        saveMesh(*mesh, folder / name);
        EXPECT_EQ(firstDifference(*mesh, *readMesh(folder / name).mesh), "");
    }
    const std::string packed = contentOf(folder / "a.obj.gz");
    EXPECT_EQ(packed, contentOf(folder / "b.obj.gz"));
    EXPECT_EQ(packed.substr(0, 8), std::string("\x1F\x8B\x08\0\0\0\0\0", 8)) << "no name, no time";
    const std::string twice = folder.file("d.obj", packed + packed);
    EXPECT_EQ(getElementCount(*readMesh(twice).mesh, sFaceComp), 2u);
    for (const std::size_t size : {packed.size() - 1, packed.size() / 2, std::size_t{5}})
        EXPECT_EQ(fileErrorOf([&] { readMesh(folder.file("e", packed.substr(0, size))); }).code(),
                  Code::Malformed);
}

TEST(MeshFile, OfAnotherFormatIsNamed)
{
    const struct {
        std::string bytes, message;
    } files[] = {
        {"Kaydara FBX Binary  ", "is a binary FBX file, which is not read; save it as one of .obj"},
        {"<?xml version=\"1.0\"?>\n<COLLADA>", "is a COLLADA file"},
        {std::string("MM\x08\0\0\0ab", 8), "is a 3DS file"},
        {std::string("PK\x03\x04\x14\0\0\0 3D/3dmodel.model", 26), "is a 3MF file"},
        {std::string("a\0b", 3), "byte 1 is 0: this is binary data"},
    };
    const Folder folder;
    for (const auto& file : files) {
        const auto error = fileErrorOf([&] { readMesh(folder.file("f.obj", file.bytes)); });
        EXPECT_EQ(error.code(), Code::Unsupported);
        EXPECT_TRUE(contains(error.what(), file.message));
    }
}

TEST(MeshFile, OfAFurtherFormatIsReadThroughALibraryWithAWarning)
{
    const std::string path = installedModel("cube_triangulate.dae");
    if (!findFormat("assimp") || path.empty())
        GTEST_SKIP() << "built without libassimp, or package assimp-testmodels is not installed";
    const MeshRead read = readMesh(path);
    EXPECT_EQ(read.format->name, "assimp");
    EXPECT_EQ(getElementCount(*read.mesh, sFaceComp), 12u);
    EXPECT_TRUE(contains(read.warnings.at(0), "may merge, split or reorder points"));
    EXPECT_GT(
        getElementCount(*readMesh("/usr/share/assimp/models/RAW/WithColor.raw").mesh, sFaceComp),
        0u);
    const Folder folder;
    const std::string nameless = folder.file("nameless", contentOf(path));  // as streams are
    EXPECT_EQ(getElementCount(*readMesh(nameless).mesh, sFaceComp), 12u);
    EXPECT_TRUE(isRefused([&] { readMesh(folder.file("a.fbx", "Kaydara FBX Binary  ")); }));
}

TEST(MeshFile, RefusesMeshesWithErrorsOnBothWays)
{
    const Folder folder;
    const std::string path = folder.file("a.obj", "v 0 0 0\nv 1 0 0\nf 1 2\n");
    const std::string found =
        ": faces of fewer than three corners (once), first at face 0, which "
        "has 2; remove them or give them three corners";
    EXPECT_EQ(messageOf<InvalidMesh>([&] { readMesh(path); }), path + found);
    const auto mesh = readMeshUnchecked(path).mesh;
    for (const char* name : {"b.obj", "b.ply"})
        EXPECT_EQ(messageOf<InvalidMesh>([&] { saveMesh(*mesh, folder / name); }),
                  (folder / name) + found);
    EXPECT_EQ(messageOf<InvalidMesh>([&] {
                  OutputFile output("-", true);
                  writeMesh(*mesh, *findFormat("ply"), output);
              }),
              "standard output" + found);
    EXPECT_EQ(folder.names(), std::vector<std::string>{"a.obj"});
}

TEST(MeshFile, ACancelledJobEndsReadingAndWriting)
{
    const auto mesh =
        readMesh(Folder().file("a.obj", std::string(100000, '\n') + "v 1 2 3\n")).mesh;
    for (const char* format : {"obj", "ply", "ply-ascii"}) {
        EXPECT_TRUE(endsWhenCancelled([&] { written(*mesh, format); }));
        const std::string bytes = written(*mesh, format) + std::string(100000, '\n');
        EXPECT_TRUE(endsWhenCancelled([&] { parsed(bytes); }));
    }
}

TEST(MeshFile, OfOtherProgramsReadsBackEqualWithAllItsPointsAndFaces)
{
    const struct {
        const char* name;
        uint points, faces;
    } models[] = {{"bunny.obj", 34835, 69666},   {"spider.obj", 762, 1368},
                  {"WusonOBJ.obj", 2117, 3732},  {"concave_polygon.obj", 64, 1},
                  {"box_longline.obj", 8, 6},    {"cube_with_vertexcolors.obj", 8, 12},
                  {"number_formats.obj", 15, 1}, {"multiple_spaces.obj", 4, 1},
                  {"empty_mat.obj", 130, 256},   {"cube_mtllib_after_g.obj", 8, 12},
                  {"point_cloud.obj", 3, 0},     {"cube.ply", 8, 6},
                  {"cube_binary.ply", 8, 12},    {"cube_uv.ply", 24, 6},
                  {"float-color.ply", 3, 1},     {"points.ply", 4, 0}};
    for (const auto& model : models) {
        SCOPED_TRACE(model.name);
        const std::string path = installedModel(model.name);
        if (path.empty())
            GTEST_SKIP() << "packages glmark2-data and assimp-testmodels are not installed";
        const auto mesh = readMesh(path).mesh;
        EXPECT_EQ(getElementCount(*mesh, sPointComp), model.points);
        EXPECT_EQ(getElementCount(*mesh, sFaceComp), model.faces);
        std::vector<std::string> warnings;
        const std::string bytes = written(*mesh, formatOfName(path)->name, &warnings);
        EXPECT_EQ(firstDifference(*mesh, *parsed(bytes).mesh), "");
        EXPECT_EQ(warnings, std::vector<std::string>());
    }
}

}  // namespace
