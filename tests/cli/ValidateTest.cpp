#include "Program.h"

using namespace TestSupport;
using nlohmann::json;

namespace {

constexpr const char* kNotFinite =
    "ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\nproperty float y\n"
    "property float z\nelement face 1\nproperty list uchar int vertex_indices\nend_header\n"
    "0 0 0\n1 nan 0\n0 1 0\n3 0 1 2\n";

using Validate = AtTheHouse;

TEST_F(Validate, ErrorsExitWithOneAndAreListedWithPlaceAndAdvice)
{
    const std::string path = folder.file("bad.ply", kNotFinite);
    const Outcome outcome = run({"validate", path, "--json"});
    EXPECT_EQ(outcome.exitCode, 1) << outcome.err;
    const json report = outcome.json();
    EXPECT_EQ(report["valid"], false);
    ASSERT_EQ(report["problems"].size(), 1u);
    expectReport(report["problems"][0],
                 R"({"severity": "error", "kind": "point-not-finite", "count": 1})");
    EXPECT_EQ(report["problems"][0]["places"].size(), 1u);

    const std::string text = run({"validate", path}).out;
    EXPECT_TRUE(contains(text, "error: 1 "));
    EXPECT_TRUE(contains(text, "what to do: "));
}

TEST_F(Validate, GoodMeshesAndMereWarningsExitWithZero)
{
    EXPECT_EQ(run({"validate", house}).out, house + ": valid\n");

    const json repeated =
        reportOf({"validate", folder.file("repeat.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3 2\n")});
    EXPECT_EQ(repeated["valid"], true);
    EXPECT_EQ(repeated["problems"][0]["kind"], "repeated-corner");

    const Outcome turned = run(
        {"validate", folder.file("turned.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\nf 1 2 3\n")});
    EXPECT_EQ(turned.exitCode, 0);
    EXPECT_TRUE(
        contains(turned.out,
                 "warning: 3 edges along which two faces run in one direction [same-direction]\n"
                 "    edge 0-1: corner 0 of face 0 and corner 3 of face 1 run the same way\n"));
}

TEST_F(Validate, OtherVerbsRefuseAMeshWithErrors)
{
    const std::string path = folder.file("bad.ply", kNotFinite);
    const std::string out = folder.file("out.ply", "kept");
    const Outcome outcome = run({"triangulate", path, "-o", out, "--force"});
    expectRefusal(outcome, 4, "tessary triangulate: " + path + ": ");
    EXPECT_EQ(contentOf(out), "kept");
    EXPECT_EQ(folder.names(), (Names{"bad.ply", "house.obj", "out.ply"}));
    EXPECT_EQ(run({"validate", folder.file("cut.ply", "ply\nformat ascii 1.0\n")}).exitCode, 3);
}

}  // namespace
