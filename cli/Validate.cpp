#include "Advice.h"
#include "Options.h"
#include "Verbs.h"
#include "Words.h"

#include <TessaryMesh/Check.h>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

namespace Cli {
namespace {

using TessaryMesh::Problem;
using TessaryMesh::ValidationReport;

const char* severityName(Problem::Severity severity)
{
    return severity == Problem::Severity::Error ? "error" : "warning";
}

Json placesOf(const Problem& problem)
{
    Json places = Json::array();
    for (const Problem::Place& place : problem.places)
        places.push_back(place.text);
    return places;
}

Json factsOf(const Problem& problem)
{
    return {{"severity", severityName(problem.severity)},
            {"kind", problem.code},
            {"message", problem.message},
            {"count", problem.count},
            {"places", placesOf(problem)},
            {"advice", adviceOn(problem, "validate")}};
}

std::string textOf(const std::string& file, const Problem& problem)
{
    std::string text = file + ": " + severityName(problem.severity) + ": " +
                       shown(countedMessage(problem)) + " [" + problem.code + "]\n";
    for (const Problem::Place& place : problem.places)
        text += "    " + shown(place.text) + "\n";
    if (problem.places.size() < problem.count && !problem.places.empty())
        text += "    ...\n";
    return text + "    what to do: " + shown(adviceOn(problem, "validate")) + "\n";
}

std::string textOf(const std::string& file, const ValidationReport& report)
{
    std::string text = report.hasErrors() ? "" : file + ": valid\n";
    for (const Problem& problem : report.problems)
        text += textOf(file, problem);
    return text;
}

// "roof.obj: valid; 10 edges along which ... [same-direction], first edge 3-4: ..."
std::string lineOf(const std::string& file, const ValidationReport& report)
{
    std::string line = file + (report.hasErrors() ? ": invalid" : ": valid");
    for (const Problem& problem : report.problems)
        line += "; " + shown(countedMessage(problem)) + " [" + problem.code + "]" +
                (problem.places.empty() ? "" : ", first " + shown(problem.places.front().text));
    return line + "\n";
}

void addWarnings(const Korvane::Object& mesh, ValidationReport& report)
{
    for (Problem& problem : TessaryMesh::edgeWarnings(mesh))
        report.problems.push_back(std::move(problem));
    for (Problem& problem : TessaryMesh::concaveFaces(mesh).problems())
        report.problems.push_back(std::move(problem));
}

ExitCode validate(const std::string& path, Session& session)
{
    session.setSubject(path);
    session.beginStage("reading");
    const TessaryMesh::MeshRead input =
        TessaryMesh::readMeshUnchecked(path, {session.settings.maxInput});
    session.warn(input.warnings);
    warnOfNothing(*input.mesh, session);
    session.beginStage("validating");
    ValidationReport report = TessaryMesh::validateMesh(*input.mesh);
    const bool valid = !report.hasErrors();
    if (valid)
        addWarnings(*input.mesh, report);

    Json facts = {{"verb", "validate"},
                  {"file", path},
                  {"format", input.format->name},
                  {"valid", valid},
                  {"problems", Json::array()}};
    for (const Problem& problem : report.problems)
        facts["problems"].push_back(factsOf(problem));
    session.finish(std::move(facts), session.settings.isBatch ? lineOf(shown(path), report)
                                                              : textOf(shown(path), report));
    return valid ? ExitCode::Done : ExitCode::CheckFailed;
}

}  // namespace

Run declareValidate(CLI::App& verb, Session& session)
{
    verb.footer(
        "Exits with 1 where the mesh has errors, with 0 where it has at most warnings.\n\n"
        "Example:\n  tessary validate roof.obj");
    return declareReport(verb, session, validate);
}

}  // namespace Cli
