#include "Program.h"

#include <gtest/gtest.h>

using namespace TestSupport;
using nlohmann::json;

namespace {

//  3---2     a quad and a triangle; the quad becomes 0 1 2 and 0 2 3
//  |   | \.
//  0---1--4
constexpr const char* kFlag = "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nv 2 0 0\nf 1 2 3 4\nf 2 5 3\n";

TEST(Adjacency, WritesTheTablesAsJsonWithNullForNone)
{
    const Folder folder;
    const std::string flag = folder.file("flag.obj", kFlag);
    const Outcome outcome = run({"adjacency", flag, "-o", "-", "--format", "json"});
    ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(outcome.json(), json::parse(R"({
        "face_vertex": [[0, 1, 2], [0, 2, 3], [1, 4, 2]],
        "tri_edges": [[0, null], [2, 3], [1, 8], [5, null], [4, null], [6, null], [7, null]],
        "face_vertex_adjacent_tri": [[null, 2, 1], [0, null, null], [null, null, 0]],
        "dual_face_offset": [0, 2, 4, 7, 8, 9],
        "dual_face_vertex": [0, 3, 1, 6, 2, 4, 8, 5, 7]})"));

    const json facts = run({"adjacency", flag, "-o", folder.path("a.JSON"), "--json"}).json();
    EXPECT_EQ(facts["triangles"], 3);
    EXPECT_EQ(facts["edges"], 7);
    EXPECT_EQ(facts["boundary_edges"], 5);
    EXPECT_EQ(textOfFile(folder.path("a.JSON")), outcome.out);
}

TEST(Adjacency, WritesTheTablesAsNpzWithTheLargestIndexForNone)
{
    const Folder folder;
    const std::string npz = folder.path("flag.npz");
    ASSERT_EQ(run({"adjacency", folder.file("flag.obj", kFlag), "-o", npz}).exitCode, 0);
    const std::string bytes = textOfFile(npz);
    const auto arrayNamed = [&bytes](const std::string& name) {
        const std::size_t header = bytes.find(name + ".npy\x93NUMPY") + name.size() + 4;
        const std::size_t length = static_cast<unsigned char>(bytes.at(header + 8));
        return bytes.substr(header + 10, length + 16);  // the description and four numbers
    };
    const std::string edges = arrayNamed("tri_edges");
    EXPECT_EQ(edges.find("{'descr': '<u4', 'fortran_order': False, 'shape': (7, 2, )"), 0u);
    EXPECT_EQ(edges.substr(edges.size() - 16),
              std::string("\0\0\0\0\xFF\xFF\xFF\xFF\2\0\0\0\3\0\0\0", 16));
    EXPECT_NE(arrayNamed("face_vertex_adjacent_tri").find("(3, 3, )"), std::string::npos);
    EXPECT_NE(arrayNamed("dual_face_offset").find("(6, )"), std::string::npos);
}

TEST(Adjacency, AMeshWithoutEdgeTableExitsWithFourAndNamesThePlaces)
{
    const Folder folder;
    const std::string turned =
        folder.file("turned.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 0 -1 0\nf 1 2 3\nf 1 2 4\n");
    const Outcome outcome = run({"adjacency", turned, "-o", folder.path("out.npz")});
    EXPECT_EQ(outcome.exitCode, 4);
    EXPECT_TRUE(outcome.saidOneLine()) << outcome.err;
    EXPECT_NE(outcome.err.find("first at points 0 to 1 of faces 0 and 1;"), std::string::npos)
        << outcome.err;
    const Outcome wrong = run({"adjacency", turned, "-o", folder.path("out.ply")});
    EXPECT_EQ(wrong.exitCode, 2);
    EXPECT_NE(wrong.err.find("neither .json nor .npz"), std::string::npos) << wrong.err;
    EXPECT_EQ(folder.names(), std::vector<std::string>{"turned.obj"});
}

}  // namespace
