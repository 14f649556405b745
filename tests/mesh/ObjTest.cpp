#include <mesh/files/obj/Obj.h>

#include <gtest/gtest.h>
#include <support/Cancellation.h>
#include <support/MeshBuilding.h>

#include <TessaryMesh/Check.h>
#include <tbb/global_control.h>

#include <cmath>
#include <random>
#include <set>

#include "MeshFiles.h"

namespace {

using namespace TestSupport;
using namespace MeshFiles;
using namespace Korvane::Geometry;
using Korvane::Math::float2;
using TessaryMesh::FileError;
using TessaryMesh::MeshRead;
using Code = FileError::Code;
using Strings = std::vector<std::string>;

MeshRead readText(const std::string& text)
{
    return TessaryMesh::readObj(text, "a.obj");
}

std::string written(const Object& mesh, Strings* warnings = nullptr)
{
    return MeshFiles::written(mesh, "obj", warnings);
}

// "" if what was read from `text` is equal after being written and read again.
std::string roundTrip(const std::string& text)
{
    const MeshRead read = readText(text);
    Strings warnings;
    const std::string difference =
        firstDifference(*read.mesh, *readText(written(*read.mesh, &warnings)).mesh);
    return warnings.empty() ? difference : warnings[0];
}

Array<uint> cornersOf(const Object& mesh)
{
    return *dataOf<uint>(mesh, sFaceVertex);
}

const std::string kSquare = "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\n";

TEST(ObjReader, ReadsFacesOfAnySizeWithTheirIndices)
{
    const auto mesh = readText(kSquare +
                               "vt 0 0\nvt 1 0.5\nvn 0 0 1\n"
                               "f 1/1/1 2/2/1 3/-1/-1\n"
                               "f -4 -2//1 4/1\n"
                               "f 1/ 2// 3\n"
                               "f 1 2 3 4 1 2 3 4 1 2\n")
                          .mesh;
    EXPECT_EQ(*dataOf<uint>(*mesh, sFaceOffset), (Array<uint>{0, 3, 6, 9, 19}));
    EXPECT_EQ(cornersOf(*mesh),
              (Array<uint>{0, 1, 2, 0, 2, 3, 0, 1, 2, 0, 1, 2, 3, 0, 1, 2, 3, 0, 1}));
    Array<uint> texcoords{0, 1, 1, kNone, kNone, 0}, normals{0, 0, 0, kNone, 0};
    texcoords.resize(19, kNone);
    normals.resize(19, kNone);
    EXPECT_EQ(*rangeOf(*mesh, "texcoord_index"), texcoords);
    EXPECT_EQ(*rangeOf(*mesh, "normal_index"), normals);
    EXPECT_EQ(*dataOf<float2>(*mesh, "texcoord"), (Array<float2>{{0, 0}, {1, 0.5f}}));
    EXPECT_EQ(getTargetComponent(*mesh, "texcoord"), sFaceVertexComp);
    EXPECT_EQ(getElementCount(*mesh, sFaceComp), 4u);
    EXPECT_EQ(cornersOf(*readText("f 3/1 2 1\n" + kSquare + "vt 0 0\n").mesh),
              (Array<uint>{2, 1, 0}))
        << "positive indices may run ahead";
}

TEST(ObjReader, TakesTextAsPeopleAndProgramsWriteIt)
{
    const auto expected = readText("v 1 2 3\nv 4 5 6\nv 7 8 9\ng a b\nf 1 2 3\n").mesh;
    for (const char* text :
         {"\xEF\xBB\xBFv 1 2 3\nv 4 5 6\nv 7 8 9\ng a b\nf 1 2 3",
          "v 1 2 3\r\nv 4 5 6\r\nv 7 8 9\r\ng a b\r\nf 1 2 3\r\n",
          "v 1 2 3\rv 4 5 6\rv 7 8 9\rg a b\rf 1 2 3\r",
          "# caf\xE9 \\\n\tv\t1  2\t3 # point\n  v 4 5 6  \n\nv +7 8. 9e0\ng  a b \t\nf 1 2 3#\n",
          "v 1 \\\n2 3\nv 4 5\\\r\n 6\nv 7 8 9\ng a \\\n  b\nf 1\\\n 2 \\\n\\\n3\\"})
        EXPECT_EQ(firstDifference(*expected, *readText(text).mesh), "") << text;
}

TEST(ObjReader, ReadsNumbersThatAreNone)
{
    const auto read = readText("v nan inf -Infinity\nv 0 0 3.1+e2\nf 1 2 2\n");
    const auto points = *dataOf<float3>(*read.mesh, sPointPosition);
    EXPECT_TRUE(std::isnan(points[0].x));
    EXPECT_EQ(points[0].y, -points[0].z);
    EXPECT_EQ(points[1].z, 310);
    EXPECT_EQ(read.warnings, Strings{"1 number with the sign before the \"e\", read as if it stood "
                                     "behind, first at line 2"});
}

TEST(ObjReader, KeepsNamesOfFaces)
{
    const auto mesh = readText(kSquare +
                               "f 1 2 3\nmtllib a.mtl\ng front  face #1\nusemtl gl\xC3\xA4s\ns 7\n"
                               "f 1 2 4\ng\ns off\nmtllib b c.mtl\nmtllib a.mtl\nf 2 3 4\n")
                          .mesh;
    EXPECT_EQ(*dataOf<String>(*mesh, "group"), (Array<String>{"", "front  face #1", ""}));
    EXPECT_EQ(*dataOf<String>(*mesh, "material"),
              (Array<String>{"", "gl\xC3\xA4s", "gl\xC3\xA4s"}));
    EXPECT_EQ(*dataOf<uint>(*mesh, "smoothing"), (Array<uint>{0, 7, 0}));
    EXPECT_EQ(textOf(mesh->getProperty("material_library")), "a.mtl b c.mtl");
    EXPECT_FALSE(mesh->hasProperty("object"));
}

// Creases and so on for subdivision; their indices count from 0, and lines of them have no limit.
TEST(ObjReader, KeepsTagsForTheWriter)
{
    const std::string crease = "crease 2/1/0 0 1 " + std::string(70000, '4');
    const auto mesh =
        readText(kSquare + "t " + crease + "\nf 1 2 3\n\tt  corner 1/1/0 \\\n2 5 # end\n").mesh;
    EXPECT_EQ(textOf(mesh->getProperty("subdivision_tags")), crease + "\ncorner 1/1/0 2 5 # end");
    EXPECT_EQ(firstDifference(*mesh, *readText(written(*mesh)).mesh), "");
    std::vector<std::string> warnings;
    mesh->setProperty("subdivision_tags", String("crease\n\nhole"));
    EXPECT_EQ(written(*mesh, &warnings).find("crease"), std::string::npos);
    EXPECT_EQ(warnings,
              Strings{"value \"subdivision_tags\" cannot be held by OBJ and is left out"});
}

TEST(ObjReader, KeepsColoursOnlyWhereEveryPointHasOne)
{
    const auto coloured = readText("v 0 0 0 1 0.5 0\nv 1 0 0 0 0 1\n");
    EXPECT_EQ(*dataOf<float3>(*coloured.mesh, "color"), (Array<float3>{{1, 0.5f, 0}, {0, 0, 1}}));
    for (const char* text : {"v 0 0 0 1 1 1\nv 0 0 0\n", "v 0 0 0\nv 0 0 0 1 1 1\n"}) {
        const auto partly = readText(text);
        EXPECT_FALSE(partly.mesh->hasProperty("color"));
        EXPECT_EQ(partly.warnings, Strings{"colours left out: only 1 of 2 points have one"});
    }
    EXPECT_FALSE(readText("v 0 0 0 1\n").mesh->hasProperty("weight"));
    EXPECT_EQ(*dataOf<float>(*readText("v 0 0 0\nv 0 0 0 0.5\nv 0 0 0 1\n").mesh, "weight"),
              (Array<float>{1, 0.5f, 1}));
}

TEST(ObjReader, CountsWhatItLeavesOut)
{
    EXPECT_EQ(
        readText(kSquare + "p 1\np 2\nl 1 2 \\\n3\nhello\nworld\nvn 0 0 1 2\n").warnings,
        (Strings{"2 statements \"p\" left out, first at line 5",
                 "1 statement \"l\" left out, first at line 7",
                 "2 lines that are no OBJ statement left out, such as \"hello\", first at line 9",
                 "1 line with more numbers than the statement has; these are left out, first "
                 "at line 11"}));
}

TEST(ObjReader, NamesTheLineOfAnErrorAndItsKind)
{
    const std::string change = "; correct the face or add what is missing";
    const std::string form =
        " is not a corner of a face; write point, point/texture or point/texture/normal";
    const struct {
        std::string text, expected;  // the line's number first, where there is one
        Code code = Code::Malformed;
    } cases[] = {
        {"v 1 2\n", "1: point with 2 numbers; it needs 3"},
        {"v 1 2 x3\n", "1: \"x3\" is not a number; correct the line"},
        {"v 1 2 3x\n", "1: \"3x\" is not a number; correct the line"},
        {"vn 1\n", "1: normal with 1 number; it needs 3"},
        {kSquare + "f\n", "5: face without corners; it needs three or more"},
        {kSquare + "f 1 2 0\n", "5: face names point 0; indices in OBJ files begin at 1"},
        {kSquare + "f 1 2 9\nf 1 2 10\nv 0 0 0\n",
         "5: face names point 9, but the file has 5" + change},
        {kSquare + "f 1 2 5\nf 1 2 3\nf 6 1 2/1\nv 0 0 0\n",
         "7: face names point 6, but the file has 5" + change},
        {kSquare + "f 1 2 -5\nv 0 0 0\n",
         "5: face names point -5, but only 4 come before it; correct the face"},
        {kSquare + "vt 0 0\nf 1/2 2/1 3\n",
         "6: face names texture coordinate 2, but the file has 1" + change},
        {kSquare + "f 1 2 4294967297\n",
         "5: face names point 4294967297, but the file has 4" + change},
        {kSquare + "f 1 2 99999999999999999999999\n", "5: \"99999999999999999999999\"" + form},
        {kSquare + "f 1 2/x 3\n", "5: \"x\"" + form},
        {kSquare + "f 1 2/1/1/1 3\n", "5: \"2/1/1/1\"" + form},
        {"s x\n", "1: \"x\" is no smoothing group; write a number or \"off\""},
        {"usemtl " + std::string(65537, 'm') + "\n",
         "1: a name of 65537 bytes; names have up to 65536"},
        {"# text\nDear reader\n", "2: \"Dear\" begins no OBJ statement; is this a mesh file?",
         Code::Unsupported},
        {std::string("v 0 0\0 0\n", 9),
         " byte 5 is 0: this is binary data or UTF-16, and neither OBJ text nor PLY",
         Code::Unsupported},
        {"\xFF\xFEv", " is UTF-16 text; save it as UTF-8", Code::Unsupported},
        {"\xFE\xFFv", " is UTF-16 text; save it as UTF-8", Code::Unsupported},
    };
    for (const auto& one : cases) {
        const FileError error = fileErrorOf([&] { readText(one.text); });
        EXPECT_EQ(error.what(), "a.obj:" + one.expected);
        EXPECT_EQ(error.file(), "a.obj");
        EXPECT_EQ(error.code(), one.code) << one.expected;
        EXPECT_EQ(error.place().line.value_or(0), std::strtoull(one.expected.c_str(), nullptr, 10));
        EXPECT_EQ(error.place().byte.value_or(0), one.expected.find(" byte 5") == 0 ? 5u : 0u);
    }
}

// What reading gives: the mesh written again, with warnings, or the error.
std::string outcomeOf(const std::string& text, std::size_t blockSize)
{
    try {
        const MeshRead read = TessaryMesh::readObj(text, "a.obj", blockSize);
        std::string all = written(*read.mesh);
        for (const Pelon::String& name : read.mesh->propertyNames())
            all += name.c_str() + std::string(" ");
        for (const std::string& warning : read.warnings)
            all += warning + "\n";
        return all;
    } catch (const FileError& error) {
        return error.what();
    }
}

TEST(ObjReader, ReadsTheSameInBlocksOfAnySizeOnAnyNumberOfThreads)
{
    const std::string rich =
        "# a \\\nmtllib a b\nv 0 0 0 1 0 0\r\nv 1 0 0 0 1 0\rv 1 1 0 \\\n 0 0 1\nv 0 \\\r\n1 0 1 "
        "1 1\nvt 0 0\nvt 1 3.1+e2 0.5\nvt 1\nf 6 1/1 2//1\ng a\no\nusemtl b # c\nl 1 2\nvn 0 0 1\n"
        "f -1/-1/-1 -2//-1 -3/2 \\\n -4\ns 3\ng b \\\n c\ng d\nhello\nmtllib c\nv 1 2 3 4 5 6 7\n"
        "v 5 5 5 5 5 5\nusemtl\nmtllib a b\nf -1 -2 -3\ns off\nf 3/3 2 1";
    for (const std::string& text :
         {rich, rich + "\nv 0 0 0 0.5\nv 0 0 0 1\n", "\xEF\xBB\xBF" + rich + "\\",
          rich + "\nf -7 1 2\nf 9 9 1\nf 8 1/4 1\n", rich + "\nf 1 2 9\nf 1/9 8 7//9\n",
          rich + "\nv 1 2\nf x\n" + std::string(1, '\0'), "f -1 2 3\n" + rich + "\nv x\n",
          rich + "\nf 1 \\\n\\\n2/x", rich + "\nv 1 2 \\\n", std::string("a\nb\n\nb"),
          kSquare + "f 1 2 3\nvn 0 0 1\nf 1 2 3\nf 1//1 2 3\n"}) {
        const std::string expected = outcomeOf(text, text.size());
        for (const int threads : {1, 2, 7}) {
            const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, threads);
            for (std::size_t size = 1; size < text.size(); size += threads == 7 ? 1 : 5)
                ASSERT_EQ(outcomeOf(text, size), expected) << text << size;
        }
    }
}

TEST(ObjWriter, ReadsBackEqual)
{
    for (const std::string& text :
         {std::string("# nothing\n"),
          std::string("v 0 0 0 0.5\nv 0.1 1e-40 -0\nv nan inf -inf\nf 1 2 3\nf 1 2\n"),
          std::string("v 0 0 0 1 0 0.3333\nv 16777217 0 3e38 0 0 0\n"),
          kSquare + "vt 0 0.1 2\nvt 1 1\nvn 0 0 1\nf 1/1 2//1 3/2/1 4\nf 1 2 3\n",
          kSquare + "vt 0 0\nvn 0 0 1\nf 1 2 3\n",
          kSquare + "vt 0 0\nvn 0 0 1\ng a\nusemtl b\ns 3\no c\nmtllib d\n",
          kSquare + "f 1 2 3\ng a # b\nf 1 2 3\nusemtl b\no\ns 4000000000\nf 2 3 4\ng\ns off\n"
                    "f 1 2 4\no x\ns 1\nf 1 2 3\n",
          kSquare + "g\nusemtl\no\ns 0\nmtllib\nf 1 2 3\n"})
        EXPECT_EQ(roundTrip(text), "") << text;
}

TEST(ObjWriter, KeepsNamesOfOtherEncodingsByteForByte)
{
    const auto read = parsed("v 0 0 0\nusemtl caf\xE9\nf 1 1 1\n");
    EXPECT_EQ(read.warnings, (Strings{"1 name not in UTF-8, kept byte for byte, first at line 2"}));
    EXPECT_TRUE(contains(written(*read.mesh), "\nusemtl caf\xE9\n"));
}

TEST(ObjWriter, WritesPlainValuesValuesOfPointsAndClouds)
{
    const auto mesh = meshOf(3, {{0, 1, 2}, {2, 1, 0}});
    addValues<float2>(*mesh, "texcoord", sFaceVertexComp,
                      {{0, 0}, {1, 0}, {1, 1}, {0, 1}, {2, 0}, {3, 0}});
    addValues<float3>(*mesh, "normal", sPointComp, {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}});
    addIndices(*mesh, "names", sFaceComp, {kNone, 1});
    addValues<String>(*mesh, "material", "names", {"unused", "red"});
    Strings warnings;
    EXPECT_EQ(written(*mesh, &warnings),
              "# 3 points, 2 faces\nv 0 0 0\nv 1 0 0\nv 2 0 0\n"
              "vt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\nvt 2 0\nvt 3 0\nvn 1 0 0\nvn 0 1 0\nvn 0 0 1\n"
              "f 1/1/1 2/2/2 3/3/3\nusemtl red\nf 3/4/3 2/5/2 1/6/1\n");
    EXPECT_EQ(warnings, Strings());

    Object cloud;
    populatePointCloud(shared<float3>({{1, 2, 3}}), cloud);
    EXPECT_EQ(written(cloud), "# 1 points, 0 faces\nv 1 2 3\n");
}

TEST(ObjWriter, NamesWhatItCannotHold)
{
    const auto mesh = meshOf(3, {{0, 1, 2}});
    addValues<int>(*mesh, "face_id", sFaceComp, {1});
    addValues<String>(*mesh, "label", sPointComp, {"a", "b", "c"});
    addValues<String>(*mesh, "group", sFaceComp, {"two\nf 1 1 1"});
    addValues<String>(*mesh, "object", sFaceComp, {"ends with \\"});
    addValues<float3>(*mesh, "color", sPointComp, {{}, {}, {}});
    addValues<float>(*mesh, "weight", sPointComp, {1, 2, 3});
    addIndices(*mesh, "seam", sFaceVertexComp, {0, 1, 2});
    mesh->setProperty("author", String("me"));
    Strings warnings;
    EXPECT_EQ(written(*mesh, &warnings),
              "# 3 points, 1 faces\nv 0 0 0 0 0 0\nv 1 0 0 0 0 0\nv 2 0 0 0 0 0\nf 1 2 3\n");
    const std::string name = " (value 0); use names of one line without blanks around them";
    const std::string left = " cannot be held by OBJ and is left out";
    EXPECT_EQ(
        warnings,
        (Strings{
            "face property \"object\" is left out: OBJ cannot hold the name \"ends with \\\"" +
                name,
            "face property \"group\" is left out: OBJ cannot hold the name \"two?f 1 1 1\"" + name,
            "face property \"face_id\" (int)" + left + "; write PLY to keep it",
            "point property \"label\" (string)" + left,
            "point property \"weight\" (float)" + left + "; write PLY to keep it",
            "index array \"seam\"" + left, "value \"author\"" + left}));
}

}  // namespace
