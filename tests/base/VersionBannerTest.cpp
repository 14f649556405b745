#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <regex>
#include <string>

namespace {

struct Loaded {
    int status;
    std::string standardError;
};

// Loads the library in a process of its own, with this setting of the variable.
Loaded load(const std::string& environment, const std::string& arguments = "")
{
    const std::string file = testing::TempDir() + "tessary_banner_" +
                             testing::UnitTest::GetInstance()->current_test_info()->name();
    const std::string command = "env -u VORTIKA_DUMP_VERSION_INFO " + environment +
                                " '" TESSARY_LOADER "' '" TESSARY_LIBRARY "' " + arguments +
                                " 2>'" + file + "'";
    Loaded loaded{std::system(command.c_str()), ""};
    std::ifstream text(file);
    loaded.standardError.assign(std::istreambuf_iterator<char>(text), {});
    std::remove(file.c_str());
    return loaded;
}

TEST(VersionBanner, IsOneLineOnRequest)
{
    const std::regex line(
        " {9}Tessary: Korvane version 2\\.11\\.0\\.0 "
        "\\([A-Z][a-z]{2} \\d{2}/\\d{2}/\\d{4}, \\d{12}, build \\d+, "
        "commit [0-9a-f]{7}, branch [^\\n]+\\)\n");
    for (const char* value : {"1", "2", "-1", "' 7up'", "+3"}) {
        const Loaded loaded = load(std::string("VORTIKA_DUMP_VERSION_INFO=") + value);
        EXPECT_EQ(loaded.status, 0) << value;
        EXPECT_TRUE(std::regex_match(loaded.standardError, line)) << loaded.standardError;
    }
}

TEST(VersionBanner, IsNotThereOtherwiseNorWhereStandardErrorIsClosed)
{
    const auto expectNone = [](const std::string& environment, const std::string& arguments) {
        const Loaded loaded = load(environment, arguments);
        EXPECT_EQ(loaded.status, 0) << environment << arguments;
        EXPECT_EQ(loaded.standardError, "") << environment << arguments;
    };
    const std::string variable = "VORTIKA_DUMP_VERSION_INFO=";
    for (const char* value : {"0", "yes", "true", "''", "-0", "x1"})
        expectNone(variable + value, "");
    expectNone("", "");
    expectNone("", "closed");
    expectNone(variable + "1", "closed");
}

}  // namespace
