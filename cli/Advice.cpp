#include "Advice.h"

namespace Cli {
namespace {

using TessaryMesh::FileError;
using TessaryMesh::InvalidMesh;
using TessaryMesh::Problem;

struct Advice {
    const char* code;
    const char* verb;
    const char* text;
};

constexpr Advice kAdvice[] = {
    {"same-direction", "validate",
     "turn one of the faces round or give it points of its own; there is no edge table of such a "
     "mesh: tessary adjacency refuses it, tessary quads takes it with --split-edges"},
    {"same-direction", "adjacency",
     "turn one of the faces round or give it points of its own; tessary validate lists more"},
    {"same-direction", "quads",
     "turn one of the faces round, give it points of its own, or use --split-edges"},
    {"diagonal-direction", "validate",
     "split these faces another way before tessary adjacency or quads"},
};

}  // namespace

std::string adviceOn(const Problem& problem, const std::string& verb)
{
    for (const Advice& advice : kAdvice)
        if (problem.code == advice.code && verb == advice.verb)
            return advice.text;
    return problem.advice;
}

std::string lineOf(const InvalidMesh& error, const std::string& verb)
{
    const Problem* const first = error.report().firstError();
    if (!first)
        return error.what();
    Problem problem = *first;
    problem.advice = adviceOn(problem, verb);
    return (error.name().empty() ? "" : error.name() + ": ") + problem.line();
}

std::string lineOf(const FileError& error)
{
    const bool exists = error.code() == FileError::Code::Exists;
    return std::string(error.what()) + (exists ? " or replace it with --force" : "");
}

}  // namespace Cli
