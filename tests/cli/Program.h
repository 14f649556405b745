#pragma once

#include <nlohmann/json.hpp>

#include <sys/types.h>
#include <filesystem>
#include <string>
#include <vector>

/// Runs the built program as a user would.
namespace TestSupport {

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

/// A folder of a test's own, gone when the test ends.
class Folder {
public:
    Folder();
    ~Folder();
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::string path(const std::string& name) const { return (m_path / name).string(); }

    /// Writes `text` into a file and returns its path.
    std::string file(const std::string& name, const std::string& text) const;

    std::vector<std::string> names() const;  ///< of what lies in the folder, sorted

private:
    std::filesystem::path m_path;
};

/// A program on its way.
class Started {
public:
    Started(const std::vector<std::string>& arguments, const Folder& folder,
            const Streams& streams);
    void signal(int number) const;
    Outcome finish();

private:
    std::string m_out, m_err;  // files
    pid_t m_process = -1;
};

Outcome run(const std::vector<std::string>& arguments, const Streams& streams = {});

std::string textOfFile(const std::string& path);

/// Faces of 4, 3 and 5 corners with UVs and groups, as OBJ.
extern const char* const kHouse;

}  // namespace TestSupport
