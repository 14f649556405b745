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
     "mesh: tessary adjacency and quads take it with --split-edges"},
    {"same-direction", "adjacency",
     "turn one of the faces round or give it points of its own (tessary validate lists more), or "
     "use "
     "--split-edges or --no-edges"},
    {"same-direction", "quads",
     "turn one of the faces round, give it points of its own, or use --split-edges"},
    {"concave-face", "validate",
     "tessary triangulate, quads and sample split them with --concave split"},
    {"concave-face", "triangulate", "split them with --concave split"},
    {"concave-face", "quads", "split them with --concave split"},
    {"concave-face", "sample", "split them with --concave split"},
    {"diagonal-direction", "validate",
     "split these faces another way before tessary adjacency or quads, or use their --split-edges"},
};

// The messages of problems speak of many.
struct One {
    const char* code;
    const char* message;
};

constexpr One kOne[] = {
    {"topology-missing", "array that a mesh needs is missing"},
    {"topology-type", "array of a mesh has another element type"},
    {"offset-order", "face offset that is not in a rising list of corners"},
    {"small-face", "face of fewer than three corners"},
    {"index-out-of-range", "corner that names no point"},
    {"point-not-finite", "point that is not finite"},
    {"repeated-corner", "corner that repeats a point of its face"},
    {"concave-face", "concave face, which the fan around its first corner leaves"},
    {"self-crossing-face", "face that crosses itself, which no triangles fit"},
    {"length-mismatch", "array whose length does not match its component"},
    {"property-index", "index outside the values of its property"},
    {"circular-target", "property whose targets lead round in a circle"},
    {"diagonal-direction",
     "inner edge of a face split into triangles that runs as another edge does"},
    {"non-manifold-edge", "edge of more than two faces"},
    {"same-direction", "edge along which two faces run in one direction"},
};

}  // namespace

std::string countedMessage(const Problem& problem)
{
    if (problem.count == 1)
        for (const One& one : kOne)
            if (problem.code == one.code)
                return std::string("1 ") + one.message;
    return std::to_string(problem.count) + " " + problem.message;
}

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
    using Code = FileError::Code;
    return std::string(error.what()) + (error.code() == Code::Exists ? " or replace it with --force"
                                        : error.code() == Code::OverLimit ? " with --max-input"
                                                                          : "");
}

}  // namespace Cli
