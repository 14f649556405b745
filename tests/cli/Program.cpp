#include "Program.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <thread>

extern char** environ;

namespace TestSupport {
namespace {

constexpr std::chrono::milliseconds kPause{2};
constexpr std::chrono::minutes kPatience{10};  // to be slow is no fault

// Whoever runs the tests may ignore signals, which a program inherits.
void resetSignals(posix_spawnattr_t& attributes)
{
    sigset_t signals;
    sigfillset(&signals);
    posix_spawnattr_setsigdefault(&attributes, &signals);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
}

}  // namespace

const char* const kHouse =
    "mtllib house.mtl\n"
    "v 0 0 0\nv 2 0 0\nv 2 2 0\nv 0 2 0\nv 1 3 0\nv 0 0 2\nv 2 0 2\n"
    "vt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\nvt 0.5 0.5\n"
    "g front\nf 1/1 2/2 3/3 5/5 4/4\n"
    "g floor\nusemtl wood\nf 1/1 6/2 7/3 2/4\nf 1/5 4/2 6/1\n";

const char* const kTurned = "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 0 -1 0\nf 1 2 3\nf 1 2 4\n";

bool Outcome::saidOneLine() const
{
    return err.compare(0, 7, "tessary") == 0 && std::count(err.begin(), err.end(), '\n') == 1 &&
           err.back() == '\n';
}

Started::Started(const Names& arguments, const Folder& folder, const Streams& streams)
    : m_out(streams.output.empty() ? folder / "stdout" : streams.output), m_err(folder / "stderr")
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, streams.input.c_str(), O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, m_out.c_str(), O_WRONLY | O_CREAT, 0600);
    posix_spawn_file_actions_addopen(&actions, 2, m_err.c_str(), O_WRONLY | O_CREAT, 0600);
    for (const int descriptor : streams.closed)
        posix_spawn_file_actions_addclose(&actions, descriptor);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    resetSignals(attributes);

    std::vector<char*> argv = {const_cast<char*>("tessary")};
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    const int error =
        posix_spawn(&m_process, TESSARY_PROGRAM, &actions, &attributes, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    if (error != 0)
        throw std::runtime_error("cannot start " TESSARY_PROGRAM);
}

void Started::signal(int number) const
{
    kill(m_process, number);
}

// A program that hangs is ended, so that the test fails and does not hang too.
Outcome Started::finish()
{
    const auto start = std::chrono::steady_clock::now();
    int status = 0;
    while (waitpid(m_process, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() - start > kPatience)
            kill(m_process, SIGKILL);
        std::this_thread::sleep_for(kPause);
    }
    Outcome outcome;
    outcome.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    if (std::filesystem::is_regular_file(m_out))
        outcome.out = contentOf(m_out);
    outcome.err = contentOf(m_err);
    return outcome;
}

Outcome run(const Names& arguments, const Streams& streams)
{
    const Folder folder;
    return Started(arguments, folder, streams).finish();
}

nlohmann::json reportOf(Names arguments, const Names& more)
{
    arguments.push_back("--json");
    arguments.insert(arguments.end(), more.begin(), more.end());
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    return outcome.exitCode == 0 ? outcome.json() : nlohmann::json();
}

nlohmann::json infoOf(const std::string& path)
{
    return reportOf({"info", path});
}

void expectReport(const nlohmann::json& report, const std::string& expected)
{
    const auto entries = nlohmann::json::parse(expected);
    for (const auto& [name, value] : entries.items())
        EXPECT_EQ(report.value(name, nlohmann::json("missing")), value) << name;
}

void expectRefusal(const Outcome& outcome, int exitCode, const std::string& part)
{
    EXPECT_EQ(outcome.exitCode, exitCode) << outcome.err;
    EXPECT_TRUE(outcome.saidOneLine()) << outcome.err;
    EXPECT_TRUE(contains(outcome.err, part));
    EXPECT_EQ(outcome.out, "");
}

}  // namespace TestSupport
