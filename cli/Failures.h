#pragma once

#include "Session.h"

#include <nlohmann/json.hpp>
#include <string>

namespace Cli {

/// Why a run failed, for people and for programs.
struct Failure {
    ExitCode exit;
    std::string line;  ///< what to do included, with the file's name
    Json error;        ///< "code", "exit_code", "message", "file" and "place"
};

/// Of what is being caught. `subject` is the file that was worked on and `verb` what was done with it;
/// both may be empty.
Failure currentFailure(const std::string& subject, const std::string& verb);

/// A command line that the parser refuses, for which verb() is not known or known and wrong.
Failure usageFailure(const std::string& message, const std::string& verb);

/// The end by a signal.
Failure interruption(const std::string& line);

}  // namespace Cli
