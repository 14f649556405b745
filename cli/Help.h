#pragma once

#include <memory>
#include <string>
#include <vector>

namespace CLI {
class FormatterBase;
class Validator;
}  // namespace CLI

/// What the program says of itself. The tables of options are the one source: of the help for people,
/// and of the JSON document that pages and completions are made of.
namespace Cli {

/// Options of this group are shown after the verb's own.
constexpr const char* kSettingsGroup = "Options of every verb";

std::shared_ptr<CLI::FormatterBase> helpFormatter();

/// The words that an option takes: a check, from which the tables have them, too.
CLI::Validator oneOf(const std::vector<std::string>& words);

}  // namespace Cli
