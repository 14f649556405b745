#pragma once

#include <Korvane/Object.h>
#include <Tessary/Api.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// Calls of everything that the libraries do, for whoever starves, cancels, races or ports them.
namespace Trials {

/// A call whose inputs exist already. It makes its own outputs and returns their hash, the same on every
/// machine whatever its byte order; several threads may make it at a time.
struct Call {
    std::string name;
    std::function<std::uint64_t()> run;
};

/// Calls on the demo mesh of that resolution. Inputs live as long as the calls.
std::vector<Call> kernelCalls(Tessary::uint resolution);
std::vector<Call> operationCalls(Tessary::uint resolution);

/// The mesh is written in each format, whose bytes are hashed, and what a format reads is read back. Files lie
/// in `folder`; calls of different threads must not share one.
std::vector<Call> fileCalls(Tessary::uint resolution, const std::string& folder);

/// All of them.
std::vector<Call> allCalls(Tessary::uint resolution, const std::string& folder);

}  // namespace Trials
