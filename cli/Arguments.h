#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

/// Command lines as people write them.
namespace Cli {

using Words = std::vector<std::string>;

/// The arguments with the verb in front, wherever among the options it stands. Where the first word that
/// belongs to no option names no verb, they stay as they are.
Words verbFirst(const CLI::App& program, Words arguments);

/// Whether `arguments` ask for JSON, of a command line that need not make sense.
bool asksForJson(const Words& arguments);

/// What the parser found wrong with a command line: what it is, and what may have been meant.
std::string whatIsWrong(const CLI::App& program, const std::string& parsersWords);

/// Null where there is none.
const CLI::App* findVerb(const CLI::App& program, const std::string& name);

/// Says that the program has no verb `name`, and which one may have been meant.
std::string noSuchVerb(const CLI::App& program, const std::string& name);

/// The verb of a parsed command line; empty where there is none.
std::string verbOf(const CLI::App& program);

}  // namespace Cli
