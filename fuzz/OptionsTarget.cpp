// Any command line, over a folder with one small mesh: the program ends with one of its exit codes, says why on
// lines of its own, and never leaves a part of a file.

#include "fuzz/Limits.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#define main programMain
#include "cli/main.cpp"
#undef main

namespace {

const char* const kWords[] = {"info",
                              "validate",
                              "triangulate",
                              "quads",
                              "sphere",
                              "voxels",
                              "adjacency",
                              "sample",
                              "view",
                              "help",
                              "demo",
                              "house.obj",
                              "-o",
                              "out.ply",
                              "out.obj",
                              "-",
                              "--json",
                              "--threads",
                              "--format",
                              "ply",
                              "--cell",
                              "--distance",
                              "--count",
                              "--seed",
                              "--quiet",
                              "--force",
                              "--concave",
                              "split",
                              "--maps",
                              "maps.npz",
                              "--gap",
                              "--crease-angle",
                              "--properties",
                              "none",
                              "all",
                              "0.5",
                              "10%",
                              "-1",
                              "1e300",
                              "nan",
                              "--help",
                              "--version",
                              "--no-sync",
                              "--resolution",
                              "4",
                              "--max-input",
                              "1k",
                              "--jobs",
                              "--output",
                              "="};

// A byte below the number of words names one; others begin a word of the bytes that follow, up to one of
// these. Slashes would lead out of the folder.
std::vector<std::string> argumentsOf(const std::uint8_t* data, std::size_t size)
{
    std::vector<std::string> arguments{"tessary"};
    for (std::size_t i = 0; i < size && arguments.size() < 20; ++i) {
        if (data[i] < std::size(kWords)) {
            arguments.emplace_back(kWords[data[i]]);
            continue;
        }
        std::string word;
        for (++i; i < size && data[i] >= std::size(kWords); ++i)
            word += data[i] == '/' ? '_' : static_cast<char>(data[i]);
        --i;
        arguments.push_back(word);
    }
    return arguments;
}

// Standard error, while this lives.
class Said {
public:
    Said() : m_before(::dup(2)), m_file(std::tmpfile()) { ::dup2(::fileno(m_file), 2); }
    ~Said()
    {
        ::dup2(m_before, 2);
        ::close(m_before);
        std::fclose(m_file);
    }
    std::string text() const
    {
        std::string text(static_cast<std::size_t>(::lseek(::fileno(m_file), 0, SEEK_END)), '\0');
        const ssize_t read = ::pread(::fileno(m_file), text.data(), text.size(), 0);
        text.resize(read > 0 ? static_cast<std::size_t>(read) : 0);
        return text;
    }

private:
    int m_before;
    std::FILE* m_file;
};

const std::filesystem::path& folder()
{
    static const std::filesystem::path kFolder = [] {
        char name[] = "/dev/shm/tessary-options-XXXXXX";
        std::filesystem::path path = ::mkdtemp(name);
        std::ofstream(path / "house.obj") << "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nv 0 0 1\n"
                                             "f 1 2 3 4\nf 1 2 5\n";
        return path;
    }();
    return kFolder;
}

void tidyUp()
{
    for (const auto& entry : std::filesystem::directory_iterator(folder())) {
        const std::string name = entry.path().filename().string();
        Fuzz::require(name.find(".part") == std::string::npos, "no part of a file: " + name);
        if (name != "house.obj")
            std::filesystem::remove_all(entry.path());
    }
}

bool isSlow(const std::vector<std::string>& arguments)  // and nothing else
{
    return std::any_of(arguments.begin(), arguments.end(), [](const std::string& word) {
        return word == "demo" || word.find("resol") != std::string::npos;
    });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzz::useOneThread();
    static const std::filesystem::path kBefore = std::filesystem::current_path();
    std::vector<std::string> arguments = argumentsOf(data, std::min<std::size_t>(size, 200));
    if (isSlow(arguments))
        return 0;
    std::vector<char*> argv;
    for (std::string& argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    int code = 0;
    std::string said;
    {
        const Said stream;
        std::filesystem::current_path(folder());
        code = programMain(static_cast<int>(arguments.size()), argv.data());
        said = stream.text();
        std::filesystem::current_path(kBefore);
    }
    Fuzz::require(code >= 0 && code <= 4, "an exit code of the list: " + std::to_string(code));
    Fuzz::require(code != 1 || said.find("unexpected") == std::string::npos, said);
    Fuzz::require(code <= 1 || said.substr(0, 7) == "tessary", "it says why: " + said);
    tidyUp();
    return 0;
}
