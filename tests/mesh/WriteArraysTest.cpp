#include <TessaryMesh/Files.h>

#include <gtest/gtest.h>
#include <support/MeshBuilding.h>

#include <Korvane/ElementTypes.h>

#include <limits>

#include "MeshFiles.h"

namespace {

using namespace TestSupport;
using namespace MeshFiles;
using namespace TessaryMesh;
using Korvane::Math::float2x2;
using Names = std::vector<std::string>;

std::uint32_t numberAt(const std::string& text, std::size_t at)
{
    std::uint32_t value;
    std::memcpy(&value, text.data() + at, sizeof value);
    return value;
}

std::string fileOf(const NamedArrays& arrays, const char* format)
{
    const Folder folder;
    OutputFile output(folder / "a", false);
    writeArrays(arrays, *findFormat(format), output);
    output.commit();
    return contentOf(folder / "a");
}

TEST(WriteArrays, NpzHoldsEachArrayAsAFileWithItsShapeAndChecksum)
{
    const auto cells = shared<int>({1, -2, 3, 4, 5, 6});
    const std::string text = fileOf(
        {namedArray<int>("cells", cells, 3), namedArray<double>("h", shared<double>({0.25}), 0),
         namedArray<float>("none", shared<float>({}))},
        "npz");
    // Local header of 30 bytes, name, then a .npy file: 128 bytes of header and the numbers.
    ASSERT_EQ(text.substr(0, 4), "PK\x03\x04");
    EXPECT_EQ(text.substr(30, 9), "cells.npy");
    const std::string npy = text.substr(39, 128 + 24);
    EXPECT_EQ(npy.substr(0, 10), std::string("\x93NUMPY\x01\0\x76\0", 10));
    EXPECT_EQ(npy.find("{'descr': '<i4', 'fortran_order': False, 'shape': (2, 3, ), }"), 10u);
    EXPECT_EQ(npy[127], '\n');
    EXPECT_EQ(std::memcmp(npy.data() + 128, cells->data(), 24), 0);
    EXPECT_EQ(numberAt(text, 14), 0xC99AF296u) << "checksum";
    EXPECT_EQ(numberAt(text, 18), npy.size());
    EXPECT_TRUE(contains(text, "{'descr': '<f8', 'fortran_order': False, 'shape': (), }"));

    // The list of contents begins where the last 22 bytes say.
    const std::size_t end = text.size() - 22;
    ASSERT_EQ(text.substr(end, 4), "PK\x05\x06");
    const std::size_t list = numberAt(text, end + 16);
    EXPECT_EQ(list + numberAt(text, end + 12), end);
    EXPECT_EQ(text.substr(list, 4), "PK\x01\x02");
    EXPECT_EQ(text.substr(list + 46, 9), "cells.npy");
    EXPECT_EQ(numberAt(text, list + 42), 0u);
    EXPECT_EQ(text.substr(numberAt(text, list + 55 + 42) + 30, 5), "h.npy");
    EXPECT_EQ(numberAt(text, text.find("none.npy") - 16), 0x93E95696u) << "checksum";
}

TEST(WriteArrays, JsonNestsRowsAndHasNullForWhatIsNone)
{
    using Limits = std::numeric_limits<double>;
    EXPECT_EQ(fileOf({namedArray<uint>("a", shared<uint>({0, kNone, 2, 3}), 2),
                      namedArray<float3>("b\"", shared<float3>({{1, 0.5f, -2}})),
                      namedArray<float2x2>("m", shared<float2x2>({{{{1, 2}, {3, 4}}}})),
                      namedArray<double>("d", shared<double>({Limits::infinity(), 1e300})),
                      namedArray<bool>("t", shared<bool>({true, false})),
                      namedArray<String>("s", shared<String>({"\n\\", "\xFF"})),
                      namedArray<int>("none", shared<int>({}), 3),
                      namedArray<uint>("one", shared<uint>({7}), 0)},
                     "json"),
              "{\"a\": [[0,null],[2,3]],\n \"b\\\"\": [[1,0.5,-2]],\n \"m\": [[[1,2],[3,4]]],\n "
              "\"d\": [null,1e+300],\n \"t\": [true,false],\n "
              "\"s\": [\"\\u000a\\\\\",\"\\ufffd\"],\n \"none\": [],\n \"one\": 7}\n");
    EXPECT_EQ(fileOf({}, "json"), "{}\n");
}

TEST(WriteArrays, RefusesWhatMakesNoRows)
{
    const auto three = shared<uint>({1, 2, 3});
    for (const char* format : {"npz", "json"})
        for (const NamedArray& array : {namedArray<uint>("a", three, 2),
                                        namedArray<uint>("a", three, 0), NamedArray{"a", {}, 1}})
            EXPECT_THROW(fileOf({array}, format), ArgumentError);
    EXPECT_THROW(fileOf({namedArray<String>("a", shared<String>({std::string(300, 'x')}))}, "npz"),
                 FileError);
}

TEST(WriteCloud, NpzHoldsEveryElementTypeUnderItsShape)
{
    const Folder folder;
    using namespace Korvane::Geometry;
    Object cloud;
    populatePointCloud(shared<float3>({{1, 2, 3}, {4, 5, 6}}), cloud);
    Korvane::anyElementType([&](auto tag, const char* name) {
        using T = typename decltype(tag)::type;
        addDataGeoProperty<T>(cloud, name, sPointComp, makeMutable<Array<T>>(2));
        return false;
    });
    addValues<String>(cloud, "name", sPointComp, {"w\xC3\xA4rm", ""});
    addValues<String>(cloud, "novel", sPointComp, {std::string(300, 'x'), "y"});
    addValues<float>(cloud, "position", sPointComp, {1, 2});
    EXPECT_EQ(saveMesh(cloud, folder / "cloud.npz"), Names());
    const std::string bytes = contentOf(folder / "cloud.npz");
    const struct {
        const char *name, *type, *shape;
    } arrays[] = {
        {"position", "<f4", "2, 3"},  {"position_", "<f4", "2"},  {"bool", "|b1", "2"},
        {"char", "|i1", "2"},         {"uchar4", "|u1", "2, 4"},  {"ushort", "<u2", "2"},
        {"long", "<i8", "2"},         {"double3", "<f8", "2, 3"}, {"float4x4", "<f4", "2, 4, 4"},
        {"int2x3", "<i4", "2, 2, 3"}, {"name", "<U4", "2"},       {"novel", "|u1", "301"},
    };
    for (const auto& array : arrays) {
        const std::size_t at = bytes.find(std::string(array.name) + ".npy\x93NUMPY");
        ASSERT_NE(at, std::string::npos) << array.name;
        EXPECT_EQ(bytes.find(std::string("{'descr': '") + array.type +
                                 "', 'fortran_order': False, 'shape': (" + array.shape + ", ), }",
                             at),
                  bytes.find("{'descr'", at))
            << array.name;
    }
    const char32_t texts[] = {'w', 0xE4, 'r', 'm', 0, 0, 0, 0};
    EXPECT_NE(bytes.find(std::string(reinterpret_cast<const char*>(texts), sizeof texts)),
              std::string::npos);
}

}  // namespace
