#include <mesh/files/OutputFile.h>

#include <gtest/gtest.h>
#include <support/Files.h>
#include <support/Messages.h>

#include <mesh/files/MeshFile.h>
#include <mesh/files/ReadFile.h>

#include <sys/stat.h>
#include <unistd.h>

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

struct BadName {
    std::string path, message;
};

TEST(OutputFile, SaysWhatIsWrongWithAName)
{
    const Folder folder;
    const BadName cases[] = {
        {folder.file("a.obj", "old"), ": exists already; name another file"},
        {folder / "missing/a.obj", ": its folder does not exist; create it first"},
        {folder / "", ": is a folder; name a file in it"},
        {"/dev/full", ": cannot be written: No space left on device"},
    };
    for (const BadName& bad : cases)
        EXPECT_EQ(messageOf<FileError>([&] { OutputFile(bad.path, false).write("x"); }),
                  bad.path + bad.message);
}

TEST(ReadFile, ReadsAllBytesOfFilesAndPipes)
{
    const Folder folder;
    const std::string content(3000000, 'x');
    EXPECT_EQ(TessaryMesh::viewOf(TessaryMesh::readFile(folder.file("a", content))), content);

    const int standardInput = ::dup(STDIN_FILENO);
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    ::dup2(ends[0], STDIN_FILENO);
    ASSERT_EQ(::write(ends[1], "v 0 0 0", 7), 7);
    ::close(ends[0]);
    ::close(ends[1]);
    const auto piped = TessaryMesh::readFile("-");
    ::dup2(standardInput, STDIN_FILENO);
    ::close(standardInput);
    EXPECT_EQ(TessaryMesh::viewOf(piped), "v 0 0 0");
}

TEST(ReadFile, SaysWhatIsWrongWithAFile)
{
    const Folder folder;
    std::vector<BadName> cases = {
        {folder.file("empty", ""), ": is empty; a mesh file was expected"},
        {folder / "none", ": there is no such file; check the name"},
        {folder / "", ": is a folder; name a mesh file"},
    };
    if (::geteuid() != 0) {  // root may read anything
        cases.push_back(
            {folder.file("closed", "v 0 0 0"), ": cannot be opened: Permission denied"});
        std::filesystem::permissions(cases.back().path, std::filesystem::perms(0));
    }
    for (const BadName& bad : cases)
        EXPECT_EQ(messageOf<FileError>([&] { TessaryMesh::readFile(bad.path); }),
                  bad.path + bad.message);
}

}  // namespace
