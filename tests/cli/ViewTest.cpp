#include "Program.h"

using namespace TestSupport;

namespace {

using View = AtTheHouse;

TEST_F(View, WritesAPageOfOneFileOrTwoAlsoOfFaultyOnes)
{
    const std::string turned = folder.file("turned.obj", kTurned),
                      faulty = folder.file("faulty.obj", "v 0 0 0\nv 1 0 0\nv nan 1 0\nf 1 2 3\n");
    const auto report = reportOf({"view", house, faulty, "-o", folder / "page.html"});
    expectReport(report, R"({"verb": "view"})");
    const std::string page = contentOf(folder / "page.html");
    EXPECT_TRUE(contains(page, R"("name":"house.obj")"));
    EXPECT_TRUE(contains(page, R"("code":"point-not-finite")"));

    const Outcome streamed = run({"view", "-", "-o", "-", "--quiet"}, {turned, "", {}});
    EXPECT_EQ(streamed.exitCode, 0);
    EXPECT_EQ(streamed.out.find("<!doctype html>"), 0u);
    EXPECT_TRUE(contains(streamed.out, R"("code":"same-direction")"));
}

TEST_F(View, RefusesWhatItCannotWriteAndLeavesNoHalfPage)
{
    const std::string page = folder.file("page.html", "mine"),
                      cut = folder.file("cut.ply", "ply\n");
    expectRefusal(run({"view", house, "-o", page}), 3, "--force");
    expectRefusal(run({"view", cut, "-o", folder / "new.html"}), 3, "cut.ply: ");
    expectRefusal(run({"view", house, house, house, "-o", page}), 2);
    EXPECT_EQ(run({"view", house, "-o", "-", "--json"}).exitCode, 2);
    EXPECT_EQ(contentOf(page), "mine");
    EXPECT_EQ(folder.names(), (Names{"cut.ply", "house.obj", "page.html"}));
}

}  // namespace
