#include <gtest/gtest.h>

#include <tests/mesh/MeshFiles.h>
#include <tests/support/MeshBuilding.h>

namespace {

using namespace TestSupport;
using namespace MeshFiles;
using namespace Korvane::Geometry;
using Korvane::Math::float2;
using Korvane::Math::float4;

TEST(Off, LettersSayWhatFollowsAPoint)
{
    const auto mesh = parsed(
                          "# by hand\nSTCNOFF 3 2 0\n\n0 0 0  0 0 1  255 0 51  .5 1 # first\n"
                          "1 0 0  0 0 1  0 0 0  0 0\n0 1 0  0 0 1  1 2 3  1 1\n"
                          "3 0 1 2\n4 0 1 2 0 0.5 0 1 .25\n")
                          .mesh;
    EXPECT_EQ(*dataArray<uint>(*mesh, sFaceVertex), (Array<uint>{0, 1, 2, 0, 1, 2, 0}));
    EXPECT_EQ((*dataArray<float3>(*mesh, "normal"))[2], (float3{0, 0, 1}));
    EXPECT_EQ((*dataArray<float3>(*mesh, "color"))[0], (float3{1, 0, 0.2f}));
    EXPECT_EQ((*dataArray<float2>(*mesh, "texcoord"))[0], (float2{.5f, 1}));
    const float grey = 2.0f / 3;
    EXPECT_EQ(*dataArray<float4>(*mesh, "face_color"),
              (Array<float4>{{grey, grey, grey, 1}, {.5f, 0, 1, .25f}}));
    std::vector<std::string> warnings;
    const std::string bytes = written(*mesh, "off", &warnings);
    EXPECT_TRUE(contains(bytes, "STCNOFF\n3 2 0\n0 0 0 0 0 1 255 0 51 255 0.5 1\n"));
    EXPECT_EQ(firstDifference(*mesh, *parsed(bytes).mesh), "");
    EXPECT_EQ(warnings, std::vector<std::string>());
}

// Whole numbers up to 1 are fractions for some programs and nearly black for others.
TEST(Off, ColoursComeBackWhateverTheirNumbers)
{
    const float3 colours[] = {{0, 1, 0}, {1 / 255.0f, 0, 0}, {2, 0, 1}, {-1, 0.1f, 1e-10f}};
    for (const float3& colour : colours) {
        const auto mesh = meshOf(3, {{0, 1, 2}});
        addValues<float3>(*mesh, "color", sPointComp, {colour, {0, 0, 0}, {0, 0, 1}});
        EXPECT_EQ(firstDifference(*mesh, *parsed(written(*mesh, "off")).mesh), "") << colour.x;
    }
    const auto plain = parsed("OFF 1 0 0\n0 0 0 255 128 0 51\n").mesh;
    EXPECT_EQ((*dataArray<float4>(*plain, "color"))[0], (float4{1, 128 / 255.0f, 0, 0.2f}));
}

TEST(Off, WrongAndOtherFilesAreRefusedByName)
{
    const struct {
        const char *bytes, *message;
    } files[] = {
        {"4OFF\n1 0 0\n0 0 0 1\n", "f:1: points of more than three coordinates"},
        {"OFF BINARY\n\1", "f:1: binary OFF is not read"},
        {"OFF\n2 0 0\n0 0 0\n", "f:4: the file ends at point 1 of 2"},
        {"OFF\n5000000000 0 0\n", "more points or faces than 32-bit indices can name"},
        {"NOFF\n1 0 0\n0 0 0 1\n", "f:3: point with 4 numbers; it needs 6"},
        {"COFF\n2 0 0\n0 0 0 1 1 1\n0 0 0\n", "f:4: point with a colour of 0 numbers"},
        {"OFF\n1 1 0\n0 0 0\n3 0 0\n", "f:4: face of 3 corners with 2 numbers"},
        {"OFF\n1 1 0\n0 0 0\n3 0 0 -1\n", "f:4: \"-1\" is not the number of a point"},
    };
    for (const auto& file : files)
        EXPECT_TRUE(contains(fileErrorOf([&] { parsed(file.bytes); }).what(), file.message));
}

}  // namespace
