#pragma once

#include <tests/support/Files.h>
#include <tests/support/Messages.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sys/types.h>
#include <string>
#include <vector>

/// Runs the built program as a user would.
namespace TestSupport {

using Names = std::vector<std::string>;

struct Outcome {
    int exitCode = -1;  ///< minus the signal's number for a program that a signal ended
    std::string out, err;

    bool saidOneLine() const;  ///< on standard error, beginning with the program's name
    nlohmann::json json() const { return nlohmann::json::parse(out); }
};

/// Where the standard streams of the program lead. Empty output paths: into the outcome.
struct Streams {
    std::string input = "/dev/null";
    std::string output;
    std::vector<int> closed;
};

/// A program on its way.
class Started {
public:
    Started(const Names& arguments, const Folder& folder, const Streams& streams);
    void signal(int number) const;
    Outcome finish();

private:
    std::string m_out, m_err;  // files
    pid_t m_process = -1;
};

Outcome run(const Names& arguments, const Streams& streams = {});

/// Runs the program, which succeeds with `arguments` and `more`, and returns its report.
nlohmann::json reportOf(Names arguments, const Names& more = {});

/// What the verb info reports of a mesh file.
nlohmann::json infoOf(const std::string& path);

/// Whether `report` has all that `expected`, an object in JSON, has.
void expectReport(const nlohmann::json& report, const std::string& expected);

/// Whether the program ended so, with one line that has `part` in it and nothing on standard output.
void expectRefusal(const Outcome& outcome, int exitCode, const std::string& part = "");

/// Faces of 4, 3 and 5 corners with UVs and groups, as OBJ.
extern const char* const kHouse;

/// Triangles 0 1 2 and 0 1 3, which run along the edge 0-1 in one direction, as OBJ.
extern const char* const kTurned;

/// A folder of its own, in which the house lies.
struct AtTheHouse : testing::Test {
    const Folder folder;
    const std::string house = folder.file("house.obj", kHouse);
};

}  // namespace TestSupport
