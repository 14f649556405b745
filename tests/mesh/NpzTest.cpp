#include <gtest/gtest.h>

#include <tests/mesh/MeshFiles.h>
#include <tests/support/MeshBuilding.h>

#include <TessaryMesh/Files.h>

namespace {

using namespace TestSupport;
using namespace MeshFiles;
using namespace Korvane::Geometry;
using Korvane::Math::double3;
using Korvane::Math::int2x3;
using Korvane::Math::int3;
using TessaryMesh::namedArray;
using Interpolation = Common::DataInterpolationMode;

std::string archiveOf(const TessaryMesh::NamedArrays& arrays)
{
    const Folder folder;
    TessaryMesh::OutputFile output(folder / "a", false);
    writeArrays(arrays, *TessaryMesh::findFormat("npz-compressed"), output);
    output.commit();
    return contentOf(folder / "a");
}

TEST(Npz, LosesNothing)
{
    const auto mesh = meshOf(4, {{0, 1, 2}, {3, 2, 1, 0}});
    Korvane::anyElementType([&](auto tag, const char* name) {
        using T = typename decltype(tag)::type;
        addDataGeoProperty<T>(*mesh, name, sFaceComp, makeMutable<Array<T>>(2));
        return false;
    });
    addIndices(*mesh, "seam", sFaceVertexComp, {0, 1, kNone, 1, 1, 0, 0});
    addDataGeoProperty<int3>(*mesh, "a", "seam", shared<int3>({{1, 2, 3}, {4, 5, 6}}),
                             int3{7, 8, 9}, Interpolation::None);
    addDataGeoProperty<String>(*mesh, "b", "seam", shared<String>({"w\xC3\xA4rm", "", "c"}), "d%");
    const auto bin = Korvane::createObject();
    populateComponentGeoProperty(3, *bin);
    mesh->setProperty("bin", bin);
    addValues<float>(*mesh, "../a\n", "bin", {1, NAN, -0.0f}, 0.5f);
    addValues<String>(*mesh, "bytes \xFF", "bin",
                      {"\xFF", std::string("\0", 1), std::string(900, 'x')});
    addValues<short>(*mesh, "@position", sPointComp, {1, 2, 3, 4});
    addValues<bool>(*mesh, "tessary", sPointComp, {true, false, true, true});
    addValues<float>(*mesh, "", sPointComp, {1, 2, 3, 4});
    const auto owned = makeMutable<Object>(*getDataGeoProperty(*mesh, "../a\n"));
    owned->setProperty(sDependsOn, shared<String>({sFaceComp}));
    mesh->setProperty("../a\n", Ptr<Object>(owned));
    mesh->setProperty("author", String("nob%40dy\xFE"));
    for (const char* const format : {"npz", "npz-compressed"}) {
        std::vector<std::string> warnings;
        const auto read = parsed(written(*mesh, format, &warnings));
        EXPECT_EQ(warnings, std::vector<std::string>());
        EXPECT_EQ(read.format->name, format);
        EXPECT_EQ(firstDifference(*mesh, *read.mesh), "");
        const auto a = getDataGeoProperty(*read.mesh, "a"), b = getDataGeoProperty(*read.mesh, "b");
        EXPECT_EQ(*a->getProperty(sDefault).get<int3>(), (int3{7, 8, 9}));
        EXPECT_EQ(*a->getProperty(sInterp).get<Interpolation>(), Interpolation::None);
        EXPECT_EQ(textOf(b->getProperty(sDefault)), "d%");
        const auto list = getDataGeoProperty(*read.mesh, "../a\n");
        EXPECT_EQ(**list->getProperty(sDependsOn).get<Ptr<Array<String>>>(),
                  (Array<String>{sFaceComp}));
    }
}

TEST(Npz, ArraysOfOthersBecomeAMeshByNamesAndCounts)
{
    const auto read = parsed(archiveOf({
        namedArray<double3>("vertices",
                            shared<double3>({{0, 0, 0}, {1, 0, 0}, {1, 0.1, 0}, {0, 1, 0}})),
        namedArray<long long>("triangles", shared<long long>({0, 1, 2, 0, 2, 3}), 3),
        namedArray<int2x3>("m", shared<int2x3>({{}, {}, {}, {}})),
        namedArray<String>("name", shared<String>({"a", "b"})),
        namedArray<float>("odd", shared<float>({1})),
    }));
    EXPECT_EQ(*dataArray<uint>(*read.mesh, sFaceVertex), (Array<uint>{0, 1, 2, 0, 2, 3}));
    EXPECT_EQ(*dataArray<uint>(*read.mesh, sFaceOffset), (Array<uint>{0, 3, 6}));
    EXPECT_EQ(getTargetComponent(*read.mesh, "m"), sPointComp);
    EXPECT_EQ(*dataArray<String>(*read.mesh, "name"), (Array<String>{"a", "b"}));
    EXPECT_EQ(read.warnings,
              (std::vector<std::string>{
                  "1 of 12 point coordinates were rounded to float, the mesh's type",
                  "array \"odd\" has 1 elements, and as many points, faces or corners there are "
                  "not; it is left out"}));
}

TEST(Npz, DamageIsRefused)
{
    const std::string whole = written(*meshOf(4, {{0, 1, 2}}), "npz");
    for (const auto& [from, to] :
         {std::pair("PK\x05\x06", "PK\x05\x07"), std::pair("(4, 3, )", "(4, 4, )"),
          std::pair("{'descr'", "{'desc_'"), std::pair("\x93NUMPY", "\x93NUMPX"),
          std::pair("'<u4'", "'>u4'")}) {
        std::string broken = whole;
        broken.replace(broken.find(from), std::string(from).size(), to);
        EXPECT_TRUE(isRefused([&] { parsed(broken); })) << from;
    }
}

TEST(Npz, WhatMakesNoMeshIsRefusedByName)
{
    const auto points = namedArray<float3>("position", shared<float3>({{0, 0, 0}}));
    const auto texts = [](const std::string& json) {
        const auto bytes = makeMutable<Array<unsigned char>>(json.size());
        std::copy(json.begin(), json.end(), bytes->begin());
        return namedArray<unsigned char>("tessary", Ptr<Array<unsigned char>>(bytes));
    };
    const auto described = [&](const std::string& entries) {
        return archiveOf({points, texts("{\"version\": 1, \"entries\": [" + entries + "]}")});
    };
    const struct {
        std::string bytes, message;
    } files[] = {
        {archiveOf({namedArray<float>("x", shared<float>({1}))}), "the arrays make no mesh"},
        {archiveOf({points, namedArray<int>("faces", shared<int>({0, -1, 0}), 3)}),
         "array \"faces\" has the index -1"},
        {archiveOf({points, namedArray<float>("faces", shared<float>({0, 1, 0}), 3)}),
         "no array \"faces\" of type uint"},
        {archiveOf({points, texts("{")}), "is no JSON object of version 1"},
        {described("{\"name\": \"a\"}"), "has an entry without a text \"kind\""},
        {described("{\"name\": \"@position\"}, {\"name\": \"@position\"}"), "or twice"},
        {described("{\"name\":\"a\",\"kind\":\"values\",\"array\":\"b\",\"on\":\"@point\"}"),
         "no array \"b\", which its description names"},
        {described("{\"name\":\"a\",\"kind\":\"component\",\"count\":-1}"), "without a count"},
    };
    for (const auto& file : files)
        EXPECT_TRUE(contains(fileErrorOf([&] { parsed(file.bytes); }).what(), file.message));
}

}  // namespace
