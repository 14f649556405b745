#include "Program.h"

#include <gtest/gtest.h>

using namespace TestSupport;
using nlohmann::json;

namespace {

json propertyNamed(const json& facts, const std::string& name)
{
    for (const json& property : facts["properties"])
        if (property["name"] == name)
            return property;
    return nullptr;
}

TEST(Info, TellsCountsMeasuresAndProperties)
{
    const Folder folder;
    const Outcome outcome = run({"info", folder.file("house.obj", kHouse), "--json"});
    ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
    const json facts = outcome.json();
    EXPECT_EQ(facts["format"], "obj");
    EXPECT_EQ(facts["points"], 7);
    EXPECT_EQ(facts["corners"], 12);
    EXPECT_EQ(facts["faces"], 3);
    EXPECT_EQ(facts["polygon_sizes"], json({{"3", 1}, {"4", 1}, {"5", 1}}));
    EXPECT_EQ(facts["bounding_box"], json({{"min", {0, 0, 0}}, {"max", {2, 3, 2}}}));
    EXPECT_EQ(facts["area"], 5 + 4 + 2);
    EXPECT_EQ(facts["edges"], 9);
    EXPECT_EQ(facts["boundary_edges"], 6);
    EXPECT_EQ(facts["same_direction_edges"], json({{"count", 0}, {"places", json::array()}}));
    EXPECT_EQ(facts["valence"], json({{"least", 2}, {"most", 3}}));
    EXPECT_EQ(facts["euler_characteristic"], 1);
    EXPECT_EQ(facts["components"], 1);
    EXPECT_EQ(facts["genus"], nullptr);
    EXPECT_EQ(facts["values"], json({{"material_library", "house.mtl"}}));
    EXPECT_EQ(facts["warnings"], json::array());
    EXPECT_EQ(propertyNamed(facts, "texcoord"), json({{"name", "texcoord"},
                                                      {"type", "float2"},
                                                      {"component", "corners"},
                                                      {"through", "texcoord_index"},
                                                      {"elements", 12},
                                                      {"values", 5}}));
    EXPECT_EQ(propertyNamed(facts, "group"), json({{"name", "group"},
                                                   {"type", "string"},
                                                   {"component", "faces"},
                                                   {"through", nullptr},
                                                   {"elements", 3},
                                                   {"values", 3}}));
}

TEST(Info, ReadsAStreamAndPrintsATableForPeople)
{
    const Folder folder;
    const Outcome outcome = run({"info", "-"}, {folder.file("house.obj", kHouse), "", {}});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_NE(outcome.out.find("1 of 3 corners, 1 of 4 corners, 1 of 5 corners"), std::string::npos)
        << outcome.out;
    EXPECT_NE(outcome.out.find("float2 on 12 corners, 5 values through texcoord_index"),
              std::string::npos)
        << outcome.out;
}

TEST(Info, WhatTheReaderLeftOutIsAWarningUnlessQuiet)
{
    const Folder folder;
    const std::string path = folder.file("lines.obj", std::string(kHouse) + "l 1 2\n");
    const Outcome loud = run({"info", path, "--json"});
    EXPECT_EQ(loud.exitCode, 0);
    EXPECT_TRUE(loud.saidOneLine()) << loud.err;
    EXPECT_EQ(loud.err.find("tessary info: " + path + ": warning: "), 0u) << loud.err;
    EXPECT_EQ(loud.json()["warnings"].size(), 1u);
    EXPECT_EQ(run({"info", path, "--quiet"}).err, "");
}

}  // namespace
