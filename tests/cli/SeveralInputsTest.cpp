#include "Program.h"

#include <sys/stat.h>
#include <algorithm>
#include <chrono>
#include <csignal>
#include <sstream>
#include <thread>

using namespace TestSupport;
using nlohmann::json;

namespace {

struct SeveralInputs : AtTheHouse {
    const std::string broken = folder.file("broken.obj", "v 0 0 0\nf 1 2 3\n"),
                      turned = folder.file("turned.1.obj", kTurned), out = folder / "out/";

    Names made() const
    {
        Names names;
        for (const auto& entry : std::filesystem::directory_iterator(out))
            names.push_back(entry.path().filename());
        std::sort(names.begin(), names.end());
        return names;
    }
};

std::vector<json> lines(const Outcome& outcome)
{
    std::vector<json> documents;
    std::istringstream text(outcome.out);
    for (std::string line; std::getline(text, line);)
        documents.push_back(json::parse(line));
    return documents;
}

TEST_F(SeveralInputs, GoToAFolderUnderTheirNamesAndAFailureStopsNone)
{
    const Outcome own = run({"triangulate", house, broken, turned, "-o", out, "--maps", out});
    EXPECT_EQ(own.exitCode, 3);
    EXPECT_EQ(made(), (Names{"house.npz", "house.obj", "turned.1.npz", "turned.1.obj"}));
    EXPECT_TRUE(contains(own.err, "broken.obj:2: face names point 2"));
    EXPECT_TRUE(contains(own.err, "tessary triangulate: 1 of 3 files failed\n"));

    const Outcome ply = run({"quads", house, turned, "-o", out, "--format", "ply-ascii", "-j2"});
    EXPECT_EQ(ply.exitCode, 4);
    EXPECT_EQ(made()[2], "house.ply");
    EXPECT_TRUE(contains(ply.err, "same-direction") || contains(ply.err, "--split-edges"));
}

TEST_F(SeveralInputs, AreReportedInTheirOrderWhateverIsReadyFirst)
{
    const std::string large = folder / "large";
    ASSERT_EQ(run({"demo", "-o", large, "--resolution", "128"}).exitCode, 0);
    const Names inputs = {large + "/demo.obj", house, broken, turned, large + "/demo.ply"};
    for (const char* jobs : {"1", "4"}) {
        Names arguments = {"validate", "--json", "--jobs", jobs};
        arguments.insert(arguments.end(), inputs.begin(), inputs.end());
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, 3);
        Names told;
        for (const json& document : lines(outcome))
            told.push_back(document["file"]);
        EXPECT_EQ(told, inputs);
    }
    const Outcome text = run({"info", house, turned, "--jobs", "2"});
    EXPECT_EQ(std::count(text.out.begin(), text.out.end(), '\n'), 2);
    EXPECT_TRUE(contains(text.out, "turned.1.obj: obj; 4 points, 6 corners, 2 faces; 1 component"));
}

TEST_F(SeveralInputs, WhichCannotHaveNamesOfTheirOwnAreRefusedBeforeAnyWork)
{
    std::filesystem::create_directory(folder / "b");
    const std::string another = folder.file("b/house.ply", "");
    const struct {
        Names options;
        std::string part;
    } mistakes[] = {
        {{another, "--format", "ply", "-o", out}, another + " would both be written to"},
        {{house, "-o", out}, "house.obj is given twice"},
        {{turned, "-o", folder / "out.ply"}, "2 inputs need a folder to be written to"},
        {{turned, "-o", out, "--maps", "m.npz"}, "need a folder for their maps"},
        {{"-", "-o", out}, "no name to keep"},
        {{folder.file("cloud.xyz", ""), "-o", out}, "give --format"},
    };
    for (const auto& mistake : mistakes) {
        Names arguments = {"triangulate", house};
        arguments.insert(arguments.end(), mistake.options.begin(), mistake.options.end());
        expectRefusal(run(arguments), 2, mistake.part);
        EXPECT_FALSE(std::filesystem::exists(out));
    }
}

TEST_F(SeveralInputs, EndTogetherAtASignal)
{
    const Folder streams;
    const std::string pipe = folder / "pipe.obj", other = folder / "other.obj";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600) + mkfifo(other.c_str(), 0600), 0);
    Started program({"triangulate", house, pipe, other, "-o", out, "--jobs", "2", "--json"},
                    streams, {});
    for (int i = 0; i < 60000 && !std::filesystem::exists(out + "house.obj"); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    program.signal(SIGINT);
    const Outcome outcome = program.finish();
    EXPECT_EQ(outcome.exitCode, 130);
    EXPECT_TRUE(contains(outcome.err, "interrupted after 1 of 3 files; no file is left half"));
    EXPECT_EQ(made(), Names{"house.obj"});
    EXPECT_EQ(lines(outcome).back()["error"]["code"], "interrupted");
}

TEST_F(SeveralInputs, ShowControlCharactersOfNamesInPlainText)
{
    const std::string red = folder.file("red.obj", std::string(kTurned) + "usemtl \x1b[31mred\n");
    const std::string many =
        "ply\nformat ascii 1.0\nelement vertex 1\nproperty float x\n"
        "property float y\nproperty float z\nproperty float \x1b]0;a\"b\n"
        "end_header\n0 0 0 1\n";
    const Outcome info = run({"info", folder.file("many.ply", many), red});
    EXPECT_EQ(info.out.find('\x1b'), std::string::npos);
    EXPECT_TRUE(contains(info.out, "\\x1b]0;a\"b"));
    EXPECT_TRUE(contains(run({"validate", folder / "\x1b[1m.obj"}).err, "\\x1b[1m.obj"));
}

TEST_F(SeveralInputs, PropertyNamesMayHaveBlanksAndQuotationMarks)
{
    const auto carried = [this](const std::string& names) {
        return reportOf({"triangulate", house, "-fo", folder / "o.obj"}, {"--properties", names})
            .at("properties");
    };
    EXPECT_EQ(carried(" group ,\ttexcoord"), carried("texcoord,\"group\""));
    expectRefusal(
        run({"triangulate", house, "-fo", folder / "o.obj", "--properties", "\"a, \"\"b"}), 2,
        "no end");
    expectRefusal(
        run({"triangulate", house, "-fo", folder / "o.obj", "--properties", "\"a, \"\"b\""}), 2,
        "no property \"a, \"\"b\"; it has: texcoord, group");
}

}  // namespace
