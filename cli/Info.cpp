#include "MeshFacts.h"
#include "Options.h"
#include "Verbs.h"
#include "Words.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

namespace Cli {
namespace {

ExitCode info(const std::string& path, Session& session)
{
    const TessaryMesh::MeshRead input = readInput(session, path);
    session.beginStage("measuring");
    Json facts = {{"verb", "info"}, {"file", path}, {"format", input.format->name}};
    facts.update(factsOf(*input.mesh));
    const std::string head = shown(path) + ": " + std::string(input.format->name);
    const std::string text =
        session.settings.isBatch ? head + "; " + lineOf(facts) + "\n" : head + "\n" + textOf(facts);
    session.finish(std::move(facts), text);
    return ExitCode::Done;
}

}  // namespace

Run declareInfo(CLI::App& verb, Session& session)
{
    verb.footer("Example:\n  tessary info roof.obj");
    return declareReport(verb, session, info);
}

}  // namespace Cli
