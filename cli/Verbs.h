#pragma once

#include "Session.h"

#include <functional>

namespace CLI {
class App;
}

/// The verbs of the program. Each function declares the arguments of one verb and returns what runs
/// it; arguments are parsed in between.
namespace Cli {

using Run = std::function<ExitCode()>;

Run declareInfo(CLI::App& verb, Session& session);
Run declareValidate(CLI::App& verb, Session& session);
Run declareTriangulate(CLI::App& verb, Session& session);
Run declareQuads(CLI::App& verb, Session& session);
Run declareSphere(CLI::App& verb, Session& session);
Run declareVoxels(CLI::App& verb, Session& session);
Run declareAdjacency(CLI::App& verb, Session& session);
Run declareSample(CLI::App& verb, Session& session);
Run declareView(CLI::App& verb, Session& session);
Run declareDemo(CLI::App& verb, Session& session);
Run declareHelp(CLI::App& verb, Session& session);

}  // namespace Cli
