#include <TessaryMesh/Files.h>

#include <gtest/gtest.h>
#include <mesh/files/Input.h>

#include <unistd.h>

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
