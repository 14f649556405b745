#include "Program.h"

using namespace TestSupport;

namespace {

//  3---2     a quad and a triangle; the quad becomes 0 1 2 and 0 2 3
//  |   | \.
//  0---1--4
constexpr const char* kFlag = "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nv 2 0 0\nf 1 2 3 4\nf 2 5 3\n";

TEST(Adjacency, WritesTheTablesAsJsonWithNullForNone)
{
    const Folder folder;
    const std::string flag = folder.file("flag.obj", kFlag);
    expectReport(reportOf({"adjacency", flag, "-o", folder / "a.JSON"}),
                 R"({"triangles": 3, "edges": 7, "boundary_edges": 5})");
    const Outcome outcome = run({"adjacency", flag, "-o", "-", "--format", "json"});
    EXPECT_EQ(contentOf(folder / "a.JSON"), outcome.out);
    expectReport(outcome.json(), R"({
        "face_vertex": [[0, 1, 2], [0, 2, 3], [1, 4, 2]],
        "tri_edges": [[0, null], [2, 3], [1, 8], [5, null], [4, null], [6, null], [7, null]],
        "face_vertex_adjacent_tri": [[null, 2, 1], [0, null, null], [null, null, 0]],
        "dual_face_offset": [0, 2, 4, 7, 8, 9],
        "dual_face_vertex": [0, 3, 1, 6, 2, 4, 8, 5, 7]})");
}

TEST(Adjacency, WritesTheTablesAsNpzWithTheLargestIndexForNone)
{
    const Folder folder;
    const std::string npz = folder / "flag.npz";
    reportOf({"adjacency", folder.file("flag.obj", kFlag), "-o", npz});
    const std::string bytes = contentOf(npz);
    const auto expectArray = [&bytes](const std::string& name, const std::string& shape,
                                      const std::string& numbers) {
        const std::size_t head = bytes.find(name + ".npy\x93NUMPY") + name.size() + 14;
        EXPECT_EQ(bytes.find("{'descr': '<u4', 'fortran_order': False, 'shape': (" + shape, head),
                  head);
        EXPECT_EQ(bytes.find(numbers, head), bytes.find('\n', head) + 1) << name;
    };
    expectArray("tri_edges", "7, 2, )", std::string("\0\0\0\0\xFF\xFF\xFF\xFF\2\0\0\0", 12));
    expectArray("face_vertex_adjacent_tri", "3, 3, )", "\xFF\xFF\xFF\xFF\2");
    expectArray("dual_face_offset", "6, )", std::string("\0\0\0\0\2\0\0\0\4", 9));
}

TEST(Adjacency, AMeshWithoutEdgeTableExitsWithFourAndNamesThePlaces)
{
    const Folder folder;
    const std::string turned = folder.file("turned.obj", std::string(kTurned) + "f 1 2 3\n");
    expectRefusal(run({"adjacency", turned, "-o", folder / "out.npz"}), 4,
                  "(3 times), first at points 0 to 1 of faces 0 and 1, points ");
    expectRefusal(run({"adjacency", turned, "-o", folder / "out.ply"}), 2,
                  "neither .json nor .npz");
    EXPECT_EQ(folder.names(), Names{"turned.obj"});
}

TEST(Adjacency, EdgesInOneDirectionAreSplitOrLeftOut)
{
    const Folder folder;
    const std::string turned = folder.file("turned.obj", kTurned), out = folder / "out.json";
    expectReport(reportOf({"adjacency", turned, "-fo", out, "--split-edges"}),
                 R"({"triangles": 2, "edges": 6, "boundary_edges": 6, "split_edges": 1})");
    expectReport(nlohmann::json::parse(contentOf(out)), R"({
        "tri_edges": [[0, null], [3, null], [2, null], [1, null], [5, null], [4, null]],
        "face_vertex_adjacent_tri": [[null, null, null], [null, null, null]]})");

    // The third face runs along 0-1 the other way, so both have it as their neighbour.
    const std::string three = folder.file("three.obj", std::string(kTurned) + "f 2 1 5\nv 0 0 1\n");
    expectReport(reportOf({"adjacency", three, "-fo", out, "--no-edges"}),
                 R"({"triangles": 3, "edges": null, "split_edges": null})");
    const auto arrays = nlohmann::json::parse(contentOf(out));
    EXPECT_FALSE(arrays.contains("tri_edges"));
    expectReport(arrays, R"({
        "face_vertex_adjacent_tri": [[2, null, null], [2, null, null], [0, null, null]]})");
}

}  // namespace
