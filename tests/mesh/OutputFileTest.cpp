#include <TessaryMesh/Files.h>

#include <gtest/gtest.h>
#include <mesh/files/Input.h>
#include <mesh/files/TemporaryFile.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>

#include "MeshFiles.h"

namespace {

using namespace TestSupport;
using TessaryMesh::FileError;
using TessaryMesh::OutputFile;
using Names = std::vector<std::string>;

TEST(OutputFile, AppearsOnlyWhenCommittedAndLeavesNothingBehindWithout)
{
    const Folder folder;
    const std::string path = folder.file("old.obj", "old");
    for (const char* name : {"old.obj", "new.obj"})
        OutputFile(folder / name, true).write("half");
    EXPECT_EQ(contentOf(path), "old");
    EXPECT_EQ(folder.names(), Names{"old.obj"});

    OutputFile file(folder / "new.obj", false);
    file.write("v 0 0 0\n");
    EXPECT_FALSE(std::filesystem::exists(folder / "new.obj"));
    file.commit();
    EXPECT_EQ(contentOf(folder / "new.obj"), "v 0 0 0\n");
    EXPECT_EQ(folder.names(), (Names{"new.obj", "old.obj"}));
}

TEST(OutputFile, KeepsLinksAndPermissionsOfWhatItReplaces)
{
    const Folder folder;
    const std::string path = folder.file("a.obj", "old"), link = folder / "link.obj";
    std::filesystem::permissions(path, std::filesystem::perms(0640));
    std::filesystem::create_symlink("a.obj", link);
    OutputFile file(link, true);
    file.write("new");
    file.commit();
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_EQ(contentOf(path), "new");
    EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms(0640));
}

TEST(OutputFile, FollowsALinkToAFileThatIsNotThereYetAndNoCircle)
{
    const Folder folder;
    std::filesystem::create_directory(folder / "far");
    std::filesystem::create_symlink("far/b.obj", folder / "a.obj");
    std::filesystem::create_symlink("c.obj", folder / "far/b.obj");
    for (const bool overwrite : {false, true}) {
        OutputFile file(folder / "a.obj", overwrite);
        file.write(overwrite ? "again" : "new");
        file.commit();
    }
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "a.obj"));
    EXPECT_EQ(contentOf(folder / "far/c.obj"), "again");
    std::filesystem::create_symlink("circle", folder / "circle");
    EXPECT_THROW(OutputFile(folder / "circle", true), FileError);
    EXPECT_EQ(folder.names(), (Names{"a.obj", "circle", "far"}));
}

TEST(OutputFile, NeedsNoMoreOfANameThanTheTargetDoes)
{
    using TessaryMesh::TemporaryFile;
    for (const auto name : {TemporaryFile::Name::None, TemporaryFile::Name::Always}) {
        const Folder folder;
        const std::string target = std::string(248, 'n') + ".ply";
        TemporaryFile first(folder / target, 0640, name), second(folder / target, 0600, name);
        ASSERT_GE(second.descriptor(), 0);
        if (name == TemporaryFile::Name::Always) {
            EXPECT_EQ(folder.names().size(), 2u);
        }
        EXPECT_TRUE(first.flush(true) && first.moveIntoPlace(false));
        EXPECT_FALSE(second.moveIntoPlace(false));
        EXPECT_EQ(errno, EEXIST);
        EXPECT_TRUE(second.moveIntoPlace(true));
        EXPECT_EQ(folder.names(), Names{target});
        EXPECT_EQ(std::filesystem::status(folder / target).permissions(),
                  std::filesystem::perms(0600));
    }
}

TEST(OutputFile, WaitsForAStreamThatTakesNothingYet)
{
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const int before = ::dup(STDOUT_FILENO);
    ::fcntl(ends[1], F_SETFL, O_NONBLOCK);
    ::dup2(ends[1], STDOUT_FILENO);
    std::size_t count = 0;
    std::thread reader([&count, from = ends[0]] {
        char bytes[4096];
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        for (ssize_t got = 1; got > 0; count += static_cast<std::size_t>(got))
            got = ::read(from, bytes, sizeof bytes);
    });
    EXPECT_NO_THROW(OutputFile("-", false).write(std::string(1000000, 'x')));
    ::dup2(before, STDOUT_FILENO);
    for (const int end : {before, ends[1]})
        ::close(end);
    reader.join();
    ::close(ends[0]);
    EXPECT_EQ(count, 1000000u);
}

TEST(Input, OfAStreamIsLookedAtFirstAndHasALimit)
{
    using TessaryMesh::Input;
    const auto codeOf = [](const auto& work) { return MeshFiles::fileErrorOf(work).code(); };
    EXPECT_EQ(codeOf([] { TessaryMesh::readMeshUnchecked("/dev/zero"); }),
              FileError::Code::Unsupported);
    const Folder folder;
    const std::string pipe = folder / "pipe", whole = folder.file("whole", std::string(50000, 'v'));
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const int writer = ::open(pipe.c_str(), O_RDWR);
    EXPECT_EQ(::write(writer, std::string(50000, 'v').data(), 50000), 50000);
    for (const std::string& path : {pipe, whole})
        EXPECT_EQ(codeOf([&] { Input(path.c_str(), {49999}); }), FileError::Code::OverLimit);
    EXPECT_EQ(Input(whole.c_str(), {50000}).size(), 50000u);
    ::close(writer);
}

TEST(OutputFile, KeepsAFileThatAppearsWhileItIsWritten)
{
    const Folder folder;
    {
        OutputFile file(folder / "a.obj", false);
        file.write("mine");
        folder.file("a.obj", "theirs");
        EXPECT_THROW(file.commit(), FileError);
    }
    EXPECT_EQ(contentOf(folder / "a.obj"), "theirs");
    EXPECT_EQ(folder.names(), Names{"a.obj"});
}

TEST(OutputFile, AndInputSayWhatIsWrongWithAName)
{
    using Code = FileError::Code;
    const Folder folder;
    const auto expectRefusal = [](const std::string& path, bool isInput, const char* message,
                                  Code code) {
        const FileError error = MeshFiles::fileErrorOf([&] {
            isInput ? void(TessaryMesh::Input(path.c_str())) : OutputFile(path, false).write("x");
        });
        EXPECT_EQ(error.what(), path + message);
        EXPECT_EQ(error.file(), path);
        EXPECT_EQ(error.code(), code) << error.what();
    };
    expectRefusal(folder.file("a.obj", "old"), false, ": exists already; name another file",
                  Code::Exists);
    expectRefusal(folder / "missing/a.obj", false, ": its folder does not exist; create it first",
                  Code::NoFolder);
    expectRefusal(folder / "", false, ": is a folder; name a file in it", Code::IsFolder);
    expectRefusal("/dev/full", false, ": cannot be written: No space left on device",
                  Code::Unwritable);
    expectRefusal(folder.file("empty", ""), true, ": is empty; a mesh file was expected",
                  Code::Empty);
    expectRefusal(folder / "none", true, ": there is no such file; check the name", Code::NotFound);
    expectRefusal(folder / "", true, ": is a folder; name a mesh file", Code::IsFolder);
    const std::string closed = folder.file("closed", std::string(3000000, 'x'));
    EXPECT_EQ(TessaryMesh::Input(closed.c_str()).size(), 3000000u);
    const TessaryMesh::Input input(closed.c_str());
    std::filesystem::resize_file(closed, 2000000);
    TessaryMesh::InputBuffer buffer;
    EXPECT_EQ(input.part(1999999, 2000000, buffer), "x");
    EXPECT_EQ(MeshFiles::fileErrorOf([&] { input.part(1999999, 2000001, buffer); }).what(),
              closed + ": became shorter while it was read; read it again");
    std::filesystem::permissions(closed, std::filesystem::perms(0));
    if (::geteuid() != 0)  // root may read anything
        expectRefusal(closed, true, ": cannot be opened: Permission denied", Code::Unreadable);
}

}  // namespace
