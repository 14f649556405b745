#include "Arguments.h"

#include "Words.h"

#include <CLI/CLI.hpp>
#include <algorithm>

namespace Cli {
namespace {

bool isOption(const std::string& argument)
{
    return argument.size() > 1 && argument[0] == '-';
}

// Options of one name take the same values with every verb; null for one that no verb has.
const CLI::Option* findOption(const CLI::App& program, const std::string& name)
{
    if (const CLI::Option* const own = program.get_option_no_throw(name))
        return own;
    for (const CLI::App* const verb : program.get_subcommands({}))
        if (const CLI::Option* const option = verb->get_option_no_throw(name))
            return option;
    return nullptr;
}

// The option in `argument` whose values follow as arguments of their own, null for none: "--name", or the
// last one of short ones in a row, "-fo".
const CLI::Option* openOption(const CLI::App& program, const std::string& argument)
{
    if (argument[1] == '-')
        return findOption(program, argument);
    for (std::size_t i = 1; i < argument.size(); ++i) {
        const CLI::Option* const option = findOption(program, std::string("-") + argument[i]);
        if (!option || option->get_items_expected_min() > 0)
            return i + 1 == argument.size() ? option : nullptr;
    }
    return nullptr;
}

// How many of the arguments after the option at `i` are its values.
std::size_t valuesAfter(const CLI::App& program, const Words& arguments, std::size_t i)
{
    const CLI::Option* const option = openOption(program, arguments[i]);
    int missing = option ? option->get_items_expected_min() : 0;
    std::size_t count = 0;
    for (++i; missing > 0 && i < arguments.size(); ++i, ++count) {
        const std::string& value = arguments[i];
        const char delimiter = option->get_delimiter();
        const auto more = std::count(value.begin(), value.end(), delimiter);
        missing -= 1 + (delimiter == '\0' ? 0 : static_cast<int>(more));
    }
    return count;
}

// The first argument that belongs to no option; their number where there is none.
std::size_t firstWord(const CLI::App& program, const Words& arguments)
{
    std::size_t i = 0;
    while (i < arguments.size() && isOption(arguments[i])) {
        if (arguments[i] == "--version")
            return arguments.size();
        i += 1 + valuesAfter(program, arguments, i);
    }
    return i;
}

Words verbsOf(const CLI::App& program)
{
    Words names;
    for (const CLI::App* const verb : program.get_subcommands({}))
        names.push_back(verb->get_name());
    return names;
}

Words optionsOf(const CLI::App& app)
{
    Words names;
    for (const CLI::Option* const option : app.get_options())
        for (const std::string& name : option->get_lnames())
            names.push_back("--" + name);
    return names;
}

std::string meant(const std::string& word, const Words& words)
{
    const std::string guess = nearest(word, words);
    return guess.empty() ? "" : "; did you mean " + guess + "?";
}

std::string verbsAre(const CLI::App& program)
{
    return "the verbs are " + listOf(verbsOf(program), " and ");
}

// The parser tells how many values it misses, and not which ones.
std::string inOurWords(const CLI::App& app, const std::string& parsersWords)
{
    const std::string name = parsersWords.substr(0, parsersWords.find(':'));
    const CLI::Option* const option = app.get_option_no_throw(name);
    const bool isMissing = parsersWords.find(" required ") != std::string::npos;
    if (!option || name == parsersWords || !isMissing)
        return parsersWords;
    const std::string value = option->get_type_name();
    return name + " takes a value, " + value.substr(0, value.find(':'));
}

}  // namespace

Words verbFirst(const CLI::App& program, Words arguments)
{
    const std::size_t i = firstWord(program, arguments);
    if (i < arguments.size() && findVerb(program, arguments[i])) {
        const auto verb = arguments.begin() + static_cast<std::ptrdiff_t>(i);
        std::rotate(arguments.begin(), verb, verb + 1);
    }
    return arguments;
}

bool asksForJson(const Words& arguments)
{
    return std::find(arguments.begin(), arguments.end(), "--json") != arguments.end();
}

std::string verbOf(const CLI::App& program)
{
    const auto parsed = program.get_subcommands();
    return parsed.empty() ? "" : parsed.front()->get_name();
}

const CLI::App* findVerb(const CLI::App& program, const std::string& name)
{
    for (const CLI::App* const verb : program.get_subcommands({}))
        if (verb->get_name() == name)
            return verb;
    return nullptr;
}

std::string noSuchVerb(const CLI::App& program, const std::string& name)
{
    const std::string guess = meant(name, verbsOf(program));
    return "there is no verb " + name + (guess.empty() ? "; " + verbsAre(program) : guess);
}

std::string whatIsWrong(const CLI::App& program, const std::string& parsersWords)
{
    const bool hasVerb = !program.get_subcommands().empty();
    const CLI::App& app = hasVerb ? *program.get_subcommands().front() : program;
    const Words rest = app.remaining();
    for (const std::string& argument : rest) {
        const std::string name = argument.substr(0, argument.find('='));
        const bool isLong = name.rfind("--", 0) == 0;
        const bool isKnown = !hasVerb && findOption(program, isLong ? name : name.substr(0, 2));
        if (isOption(argument) && !isKnown)
            return "there is no option " + name + meant(name, optionsOf(app));
        if (hasVerb)
            return "there is nothing to do with " + argument;
    }
    if (hasVerb)
        return inOurWords(app, parsersWords);
    const std::size_t word = firstWord(program, rest);
    return word == rest.size() ? "a verb is missing; " + verbsAre(program)
                               : noSuchVerb(program, rest[word]);
}

}  // namespace Cli
