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

TEST(VersionBanner, IsNotThereOtherwise)
{
    for (const char* value : {"", "0", "yes", "true", "''", "-0", "x1"}) {
        const std::string variable = *value ? std::string("VORTIKA_DUMP_VERSION_INFO=") : "";
        const Loaded loaded = load(variable + value);
        EXPECT_EQ(loaded.status, 0) << value;
        EXPECT_EQ(loaded.standardError, "") << value;
    }
}

TEST(VersionBanner, IsNotThereWhereStandardErrorIsClosed)
{
    for (const char* variable : {"", "VORTIKA_DUMP_VERSION_INFO=1"}) {
        const Loaded loaded = load(variable, "closed");
        EXPECT_EQ(loaded.status, 0) << variable;
        EXPECT_EQ(loaded.standardError, "") << variable;
    }
}

}  // namespace
