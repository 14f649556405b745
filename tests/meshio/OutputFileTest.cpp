#include <meshio/OutputFile.h>

#include <gtest/gtest.h>

#include <meshio/MeshFile.h>
#include <meshio/ReadFile.h>

#include "MeshFiles.h"

#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace MeshFiles;
using MeshIo::FileError;
using MeshIo::OutputFile;

template <class F>
std::string messageOf(F&& f)
{
    try {
        f();
    } catch (const FileError& error) {
        return error.what();
    }
    return "no error";
}

std::size_t fileCount(const TemporaryFolder& folder)
{
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator(folder.path()), {}));
}

TEST(OutputFile, AppearsOnlyWhenCommitted)
{
    const TemporaryFolder folder;
    {
        OutputFile file(folder / "a.obj", false);
        file.write("v 0 0 0\n");
        EXPECT_FALSE(std::filesystem::exists(folder / "a.obj"));
        file.commit();
    }
    EXPECT_EQ(contentOf(folder / "a.obj"), "v 0 0 0\n");
    EXPECT_EQ(fileCount(folder), 1u);
}

TEST(OutputFile, LeavesNothingBehindWithoutCommit)
{
    const TemporaryFolder folder;
    makeFile(folder / "old.obj", "old");
    for (const char* name : {"old.obj", "new.obj"})
        OutputFile(folder / name, true).write("half");
    EXPECT_EQ(contentOf(folder / "old.obj"), "old");
    EXPECT_EQ(fileCount(folder), 1u);
}

TEST(OutputFile, ReplacesOnlyWhenToldTo)
{
    const TemporaryFolder folder;
    const std::string path = folder / "a.obj";
    makeFile(path, "old");
    EXPECT_EQ(messageOf([&] { OutputFile(path, false); }),
              path + ": exists already; name another file or replace it with --force");

    std::filesystem::permissions(path, std::filesystem::perms(0640));
    std::filesystem::create_symlink("a.obj", folder / "link.obj");
    OutputFile file(folder / "link.obj", true);
    file.write("new");
    file.commit();
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link.obj"));
    EXPECT_EQ(contentOf(path), "new");
    EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms(0640));
}

TEST(OutputFile, KeepsAFileThatAppearsWhileItIsWritten)
{
    const TemporaryFolder folder;
    const std::string path = folder / "a.obj";
    {
        OutputFile file(path, false);
        file.write("mine");
        makeFile(path, "theirs");
        EXPECT_THROW(file.commit(), FileError);
    }
    EXPECT_EQ(contentOf(path), "theirs");
    EXPECT_EQ(fileCount(folder), 1u);
}

TEST(OutputFile, SaysWhatIsWrongWithAName)
{
    const TemporaryFolder folder;
    const std::string missing = folder / "missing/a.obj";
    EXPECT_EQ(messageOf([&] { OutputFile(missing, false); }),
              missing + ": its folder does not exist; create it first");
    EXPECT_EQ(messageOf([&] { OutputFile(folder / "", true); }),
              (folder / "") + ": is a folder; name a file in it");
}

TEST(OutputFile, ReportsAFullDevice)
{
    if (!std::filesystem::exists("/dev/full"))
        GTEST_SKIP() << "no /dev/full";
    OutputFile file("/dev/full", false);
    EXPECT_EQ(messageOf([&] { file.write("x"); }),
              "/dev/full: cannot be written: No space left on device");
}

TEST(ReadFile, ReadsAllBytesOfFilesAndPipes)
{
    const TemporaryFolder folder;
    const std::string content(3000000, 'x');
    makeFile(folder / "a", content);
    EXPECT_EQ(MeshIo::viewOf(MeshIo::readFile(folder / "a")), content);

    const int standardInput = ::dup(STDIN_FILENO);
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    ::dup2(ends[0], STDIN_FILENO);
    ASSERT_EQ(::write(ends[1], "v 0 0 0", 7), 7);
    ::close(ends[0]);
    ::close(ends[1]);
    const auto piped = MeshIo::readFile("-");
    ::dup2(standardInput, STDIN_FILENO);
    ::close(standardInput);
    EXPECT_EQ(MeshIo::viewOf(piped), "v 0 0 0");
}

TEST(ReadFile, SaysWhatIsWrongWithAFile)
{
    const TemporaryFolder folder;
    const auto message = [](const std::string& path) {
        return messageOf([&] { MeshIo::readFile(path); });
    };
    makeFile(folder / "empty", "");
    EXPECT_EQ(message(folder / "empty"),
              (folder / "empty") + ": is empty; a mesh file was expected");
    EXPECT_EQ(message(folder / "none"),
              (folder / "none") + ": there is no such file; check the name");
    EXPECT_EQ(message(folder / ""), (folder / "") + ": is a folder; name a mesh file");

    makeFile(folder / "closed", "v 0 0 0");
    std::filesystem::permissions(folder / "closed", std::filesystem::perms(0));
    if (::geteuid() == 0)
        return;  // root may read anything
    EXPECT_EQ(message(folder / "closed"),
              (folder / "closed") + ": cannot be opened: Permission denied");
}

}  // namespace
