#include "Arguments.h"
#include "Console.h"
#include "Failures.h"
#include "Help.h"
#include "Options.h"
#include "Session.h"
#include "Verbs.h"
#include "Version.h"
#include "system/System.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <map>

namespace {

using namespace Cli;

struct Verb {
    const char* name;
    const char* summary;
    Run (*declare)(CLI::App&, Session&);
};

constexpr Verb kVerbs[] = {
    {"info", "Say what a mesh file holds", declareInfo},
    {"validate", "List what is wrong with a mesh", declareValidate},
    {"triangulate", "Split polygons into triangles", declareTriangulate},
    {"quads", "Split faces into quads around their points", declareQuads},
    {"sphere", "Find the smallest sphere around a mesh", declareSphere},
    {"voxels", "Find the cells of a grid that a mesh touches", declareVoxels},
    {"adjacency", "Find the neighbours of triangles, as arrays", declareAdjacency},
    {"sample", "Scatter points over the surface of a mesh", declareSample},
    {"view", "Write a page that shows a mesh in a browser", declareView},
    {"demo", "Run every kernel on a demo mesh and write the results", declareDemo},
    {"help", "Explain a verb and its options", declareHelp},
};

constexpr const char* kExitCodes =
    "Exit codes: 0 done, 1 check failed, 2 wrong usage, 3 unreadable or unwritable file,\n"
    "4 invalid mesh, 130 interrupted.";

int printed(const std::string& text, Session& session)
{
    return static_cast<int>(session.run([&] {
        session.settings.json = false;
        session.finish(Json(), text);
        return ExitCode::Done;
    }));
}

int wrongUsage(const CLI::App& program, const CLI::ParseError& error, Session& session)
{
    session.setVerb(verbOf(program));
    return static_cast<int>(
        session.fail(usageFailure(whatIsWrong(program, error.what()), session.verb())));
}

int parseAndRun(CLI::App& program, const std::map<std::string, Run>& runs, Session& session,
                Words arguments)
{
    try {
        arguments = verbFirst(program, std::move(arguments));
        program.parse(Words(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::CallForHelp&) {
        return printed(program.help(), session);
    } catch (const CLI::CallForVersion&) {
        return printed(std::string("tessary " TESSARY_VERSION "\n") + kVersionText + "\n", session);
    } catch (const CLI::ParseError& error) {
        session.settings.json = asksForJson(arguments);
        return wrongUsage(program, error, session);
    }
    session.setVerb(verbOf(program));
    return static_cast<int>(session.run(runs.at(verbOf(program))));
}

int runProgram(int argc, char** argv)
{
    secureStandardStreams();
    Program settled;
    Session session(settled);
    CLI::App program("Geometry kernels for mesh files (" + readableFormats(", ") + ").", "tessary");
    program.require_subcommand(1);
    program.formatter(helpFormatter());
    program.get_formatter()->label("Positionals", "Arguments");
    program.set_help_flag("--help,-h", "Show this help");
    program.set_version_flag("--version", "tessary " TESSARY_VERSION,
                             "Show the version and the build");
    program.footer(kExitCodes);

    std::map<std::string, Run> runs;
    for (const Verb& verb : kVerbs) {
        CLI::App& declared = *program.add_subcommand(verb.name, verb.summary)->group("Verbs");
        runs[verb.name] = verb.declare(declared, session);
        addSettings(declared, session.settings);
        declared.set_help_flag("--help,-h", "Show this help")->group(kSettingsGroup);
        declared.set_version_flag("--version", "")->group("");
    }
    return parseAndRun(program, runs, session, Words(argv + 1, argv + argc));
}

}  // namespace

int main(int argc, char** argv)
{
    try {
        return runProgram(argc, argv);
    } catch (...) {
        writeAll(STDERR_FILENO, "tessary: there is no memory even to begin\n");
        return static_cast<int>(ExitCode::File);
    }
}
