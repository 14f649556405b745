#include <gtest/gtest.h>

#include <tests/mesh/MeshFiles.h>
#include <tests/support/MeshBuilding.h>

namespace {

using namespace TestSupport;
using namespace MeshFiles;
using namespace Korvane::Geometry;

const std::string kTwoSolids =
    "solid a b\nfacet normal 0 0 1\n outer loop\nvertex 0 0 0\r\nvertex 1 0 0\nvertex 1 1 "
    "0\nendloop\n"
    "endfacet\nendsolid a b\nSOLID\nfacet normal nan 0 -0 outer loop\nvertex 0 0 0 vertex 1 1 0 "
    "vertex "
    "0 1 0\nvertex -0 .5 0\nendloop endfacet endsolid\n";

TEST(Stl, PointsWithTheSameBitsAreOneAndNormalsAndNamesStay)
{
    const auto read = parsed(kTwoSolids);
    const Object& mesh = *read.mesh;
    EXPECT_EQ(read.format->name, "stl-ascii");
    EXPECT_EQ(*dataArray<float3>(mesh, sPointPosition),
              (Array<float3>{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {-0.0f, .5f, 0}}));
    EXPECT_EQ(*dataArray<uint>(mesh, sFaceVertex), (Array<uint>{0, 1, 2, 0, 2, 3, 4}));
    EXPECT_EQ(*dataArray<uint>(mesh, sFaceOffset), (Array<uint>{0, 3, 7}));
    EXPECT_EQ((*dataArray<float3>(mesh, "normal"))[0], (float3{0, 0, 1}));
    EXPECT_EQ(*dataArray<String>(mesh, "object"), (Array<String>{"a b", ""}));
}

TEST(Stl, KeepsWhatItHoldsAndNamesWhatItLoses)
{
    const auto mesh = parsed(kTwoSolids).mesh;
    addValues<unsigned short>(*mesh, "stl_attribute", sFaceComp, {7, 65535});
    mesh->setProperty("stl_header", String("exported"));
    std::vector<std::string> warnings;
    const auto binary = parsed(written(*mesh, "stl", &warnings)).mesh;
    const std::string polygon =
        "face of more than three corners becomes triangles, a fan around the "
        "first corner, because STL holds no larger ones";
    EXPECT_EQ(warnings,
              (std::vector<std::string>{
                  "face property \"object\" (string) cannot be held by STL and is left out",
                  "1 " + polygon}));
    EXPECT_EQ(*dataArray<unsigned short>(*binary, "stl_attribute"),
              (Array<unsigned short>{7, 65535, 65535}));
    EXPECT_EQ(textOf(binary->getProperty("stl_header")), "exported");
    EXPECT_EQ(*dataArray<uint>(*binary, sFaceVertex), (Array<uint>{0, 1, 2, 0, 2, 3, 0, 3, 4}));
    EXPECT_EQ(firstDifference(*binary, *parsed(written(*binary, "stl", &warnings)).mesh), "");
    EXPECT_EQ(warnings, std::vector<std::string>());

    const auto loose = meshOf(3, {{0, 1, 2}});
    addDataGeoProperty<float3>(*loose, sPointPosition, sPointComp,
                               shared<float3>({{0, 0, 0}, {1, 0, 0}, {0, 0, 0}, {2, 0, 0}}));
    const std::string bytes = written(*loose, "stl-ascii", &warnings);
    EXPECT_TRUE(contains(bytes, "facet normal 0 0 0\n")) << "a facet without area has none";
    EXPECT_EQ(warnings.size(), 2u);
    EXPECT_TRUE(contains(warnings[0], "1 point lies exactly where another one does"));
    EXPECT_TRUE(contains(warnings[1], "1 point of no face is left out"));
}

TEST(Stl, WrongFilesAreRefusedWithThePlace)
{
    const std::string count("\3\0\0\0", 4);
    const struct {
        std::string bytes, message;
    } files[] = {
        {"solid\nfacet normal 0 0\nouter", "f:3: \"outer\" is not a coordinate"},
        {"solid\nfacet normal 0 0 1\nouter loop\nendloop", "f:4: facet without corners"},
        {"solid\nfacet normal 0 0 1", "f:2: the file ends where \"outer\" was expected"},
        {"solid\nendsolid\nv 1", "f:3: \"v\" where \"solid\" was expected"},
        {std::string(80, ' ') + count + std::string(149, ' '), "of 3 facets has another size"},
        {std::string("so\0lid", 6), "nor long enough for a binary one"},
    };
    const auto read = rowOf(*TessaryMesh::findFormat("stl")).functions.read;
    for (const auto& file : files)
        EXPECT_TRUE(contains(fileErrorOf([&] { read(file.bytes, "f"); }).what(), file.message));
}

TEST(Stl, OfOtherProgramsIsRead)
{
    const struct {
        const char* name;
        uint points, faces;
    } models[] = {{"Wuson.stl", 2117, 3732},
                  {"Spider_ascii.stl", 722, 1368},
                  {"Spider_binary.stl", 722, 1368},
                  {"triangle_with_two_solids.stl", 6, 2}};
    for (const auto& model : models) {
        if (installedModel(model.name).empty())
            GTEST_SKIP() << "package assimp-testmodels is not installed";
        const auto mesh = TessaryMesh::readMesh(installedModel(model.name)).mesh;
        EXPECT_EQ(getElementCount(*mesh, sPointComp), model.points) << model.name;
        EXPECT_EQ(getElementCount(*mesh, sFaceComp), model.faces) << model.name;
    }
}

}  // namespace
