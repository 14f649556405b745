#include <gtest/gtest.h>

#include <tests/mesh/MeshFiles.h>
#include <tests/support/MeshBuilding.h>

namespace {

using namespace TestSupport;
using namespace MeshFiles;
using namespace Korvane::Geometry;
using Korvane::Math::float2;
using Korvane::Math::float2x2;
using Korvane::Math::float4;

constexpr const char* kFormats[] = {"glb", "gltf"};

// A triangle of three points, 0, x and y, in a buffer of its own; `rest` goes behind.
std::string sceneOf(const std::string& nodes, const std::string& rest = "", int mode = 4)
{
    return "{\"asset\": {\"version\": \"2.0\"}, \"buffers\": [{\"byteLength\": 36, \"uri\": "
           "\"data:application/"
           "octet-stream;base64,AAAAAAAAAAAAAAAAAACAPwAAAAAAAAAAAAAAAAAAgD8AAAAA\"}],"
           "\"bufferViews\": [{\"buffer\": 0, \"byteLength\": 36}], \"accessors\": "
           "[{\"bufferView\": 0, "
           "\"componentType\": 5126, \"count\": 3, \"type\": \"VEC3\"}], \"meshes\": "
           "[{\"primitives\": "
           "[{\"attributes\": {\"POSITION\": 0, \"NORMAL\": 0}, \"mode\": " +
           std::to_string(mode) + "}]}], \"nodes\": [" + nodes +
           "], \"scenes\": [{\"nodes\": [0]}]" + rest + "}";
}

TEST(Gltf, KeepsWhatItHoldsAndNamesTheRest)
{
    const auto mesh = meshOf(5, {{0, 1, 2}, {2, 1, 3}});
    addValues<float3>(*mesh, "normal", sPointComp, {{0, 0, 1}, {0, 1, 0}, {}, {}, {}});
    addValues<float2x2>(*mesh, "m", sPointComp, {{{{1, 2}, {3, 4}}}, {}, {}, {}, {}});
    addValues<short>(*mesh, "id", sPointComp, {-5, 1, 2, 3, 32767});
    addIndices(*mesh, "uv", sFaceVertexComp, {0, 1, 2, 1, 1, kNone});
    addValues<float2>(*mesh, "texcoord", "uv", {{.5f, 0}, {1, 0}, {1, .1f}});
    addValues<String>(*mesh, "material", sFaceComp, {"red", "w\xC3\xA4rm"});
    addValues<int>(*mesh, "face_id", sFaceComp, {7, 8});
    for (const char* const format : kFormats) {
        std::vector<std::string> warnings;
        const auto read = parsed(written(*mesh, format, &warnings));
        EXPECT_EQ(read.format->name, format);
        const Object& found = *read.mesh;
        EXPECT_EQ(*dataArray<uint>(found, sFaceVertex), (Array<uint>{0, 1, 2, 3, 1, 4}));
        EXPECT_EQ((*dataArray<float2>(found, "texcoord"))[2], (float2{1, .1f}));
        EXPECT_EQ((*dataArray<float2x2>(found, "m"))[0], (float2x2{{{1, 2}, {3, 4}}}));
        EXPECT_EQ(*dataArray<short>(found, "id"), (Array<short>{-5, 1, 2, 2, 3, 32767}));
        EXPECT_EQ(*dataArray<String>(found, "material"), (Array<String>{"red", "w\xC3\xA4rm"}));
        EXPECT_EQ(
            warnings,
            (std::vector<std::string>{
                "face property \"face_id\" (int) cannot be held by glTF and is left out; write "
                "PLY to keep it",
                "1 point is added where corners of one point have different values, because "
                "glTF holds values of points only"}));
        EXPECT_EQ(firstDifference(found, *parsed(written(found, format, &warnings)).mesh), "");
        EXPECT_EQ(warnings, std::vector<std::string>());
    }
}

TEST(Gltf, NodesMoveTurnAndMirrorWhatHangsOnThem)
{
    const auto read = parsed(
        sceneOf("{\"children\": [1, 2], \"translation\": [0, 0, 5]},"
                "{\"mesh\": 0, \"name\": \"a\", \"scale\": [2, 1, 1], \"rotation\": [0, 0, 1, 0]},"
                "{\"mesh\": 0, \"matrix\": [-1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 1, 0, 0, 1]}"));
    EXPECT_EQ(*dataArray<float3>(*read.mesh, sPointPosition),
              (Array<float3>{{0, 0, 5}, {-2, 0, 5}, {0, -1, 5}, {1, 0, 5}, {0, 0, 5}, {1, 1, 5}}));
    EXPECT_EQ(*dataArray<uint>(*read.mesh, sFaceVertex), (Array<uint>{0, 1, 2, 3, 5, 4}));
    EXPECT_EQ((*dataArray<float3>(*read.mesh, "normal"))[2], (float3{0, -1, 0}));
    EXPECT_EQ(*dataArray<String>(*read.mesh, "object"), (Array<String>{"a", ""}));
    EXPECT_EQ(read.warnings, (std::vector<std::string>{"6 points were moved as their nodes say"}));
    EXPECT_EQ(getElementCount(*parsed(sceneOf("{\"mesh\": 0}", "", 5)).mesh, sFaceComp), 1u);
}

TEST(Gltf, HostileAndForeignFilesAreRefusedByName)
{
    const std::string one = "{\"mesh\": 0}", deep(100000, '[');
    const auto replaced = [&](const std::string& from, const std::string& to) {
        std::string text = sceneOf(one);
        text.replace(text.find(from), from.size(), to);
        return text;
    };
    const struct {
        std::string bytes, message;
    } files[] = {
        {sceneOf("{\"children\": [0]}"), "node 0 is named twice"},
        {sceneOf("{\"children\": [1]}, {\"children\": [7]}"), "node 7 is named twice, or is none"},
        {sceneOf("{\"mesh\": 3}"), "mesh 3 is named, but there is none"},
        {sceneOf(one, ", \"extras\": " + deep), "JSON more than 64 levels deep"},
        {sceneOf(one, ", \"extensionsRequired\": [\"X_y\"]"), "needs the extension \"X_y\""},
        {sceneOf(one, ", \"extensionsRequired\": [\"KHR_draco_mesh_compression\"]"),
         "is compressed by KHR_draco_mesh_compression, which is not read; export it without"},
        {replaced("\"count\": 3", "\"count\": 4000000000000"),
         "accessor 0 leads out of its buffer"},
        {replaced("\"bufferView\": 0, \"c", "\"bufferView\": 9, \"c"), "f: "},
        {replaced("\"2.0\"", "\"1.1\""), "is glTF of version \"1.1\""},
        {replaced("data:", "../x:"), "f: is no valid glTF 2.0"},
        {replaced("\"data:", "\"x.bin\", \"name\": \""),
         "f: its file \"x.bin\": there is no such file; check the name"},
        {std::string("glTF\1\0\0\0", 8), "is binary glTF of version 1"},
        {"{\"asset\": ", "f: is no valid glTF 2.0"},
    };
    for (const auto& file : files)
        EXPECT_TRUE(contains(fileErrorOf([&] { parsed(file.bytes); }).what(), file.message));
}

}  // namespace
