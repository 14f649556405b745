#include "Help.h"

#include "Arguments.h"
#include "Verbs.h"
#include "Words.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <sstream>

namespace Cli {
namespace {

constexpr std::size_t kWidth = 80;
constexpr std::size_t kColumn = 26;  // where descriptions begin

using Options = std::vector<const CLI::Option*>;

Options optionsOf(const CLI::App& app, const std::function<bool(const CLI::Option&)>& isWanted)
{
    return app.get_options([&isWanted](const CLI::Option* option) {
        return !option->get_group().empty() && isWanted(*option);
    });
}

// The parser adds what checks say of themselves.
std::string valueOf(const CLI::Option& option)
{
    const std::string name = option.get_type_name();
    return name.substr(0, name.find(':'));
}

// "--inner-weights A,B,C"; of several names the shortest, for a usage line.
std::string brieflyUsed(const CLI::Option& option)
{
    const std::string name = option.get_snames().empty() ? "--" + option.get_lnames().front()
                                                         : "-" + option.get_snames().front();
    return name + " " + valueOf(option);
}

bool takesMany(const CLI::Option& option)
{
    return option.get_positional() && option.get_items_expected_max() > 1;
}

// "INPUT...", "[VERB]"
std::string argument(const CLI::Option& option)
{
    const std::string name = option.get_name(true) + (takesMany(option) ? "..." : "");
    return option.get_required() ? name : "[" + name + "]";
}

// The words of `text` in lines that go up to the width; what comes before has filled `column` of the
// first one.
std::string filled(const std::string& text, std::size_t column)
{
    std::string result;
    std::size_t width = column;
    std::istringstream words(text);
    for (std::string word; words >> word; width += word.size()) {
        const bool isFirst = width == column;
        const bool fits = width + 1 + word.size() <= kWidth;
        if (!isFirst)
            result += fits ? " " : "\n" + std::string(column, ' ');
        width = isFirst ? width : fits ? width + 1 : column;
        result += word;
    }
    return result;
}

// "  NAME    description", which goes on below its own beginning.
std::string row(const std::string& name, const std::string& description)
{
    const bool fits = name.size() + 4 <= kColumn;
    const std::size_t blanks = fits ? kColumn - 2 - name.size() : kColumn;
    return "  " + name + (fits ? "" : "\n") + std::string(blanks, ' ') +
           filled(description, kColumn) + "\n";
}

// Paragraphs are filled; lines that begin with a blank, as of examples, stay.
std::string refilled(const std::string& text)
{
    std::string result, paragraph;
    const auto flush = [&] {
        result += paragraph.empty() ? "" : filled(paragraph, 0) + "\n";
        paragraph.clear();
    };
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty() && line[0] != ' ') {
            paragraph += line + " ";
            continue;
        }
        flush();
        result += line + "\n";
    }
    flush();
    return result;
}

// The layout of the help of the program and of its verbs.
class Formatter : public CLI::Formatter {
public:
    std::string make_usage(const CLI::App* app, std::string name) const override
    {
        std::string usage = "Usage: " + name;
        if (!app->get_subcommands({}).empty())
            return usage + " VERB ...\n";
        for (const CLI::Option* const option : optionsOf(*app, &CLI::Option::get_positional))
            usage += " " + argument(*option);
        for (const CLI::Option* const option : optionsOf(*app, &CLI::Option::get_required))
            usage += option->get_positional() ? "" : " " + brieflyUsed(*option);
        return usage + " [OPTIONS]\n";
    }

    // Between two groups the parser leaves more room than elsewhere.
    std::string make_help(const CLI::App* app, std::string name,
                          CLI::AppFormatMode mode) const override
    {
        const std::string help = CLI::Formatter::make_help(app, std::move(name), mode);
        return CLI::detail::find_and_replace(help, "\n\n\n", "\n\n");
    }

    std::string make_option(const CLI::Option* option, bool isPositional) const override
    {
        std::string name = option->get_name(isPositional, true);
        name = CLI::detail::find_and_replace(name, ",", ", ");
        if (!isPositional && option->get_items_expected_min() > 0)
            name += " " + valueOf(*option);
        return row(name, (option->get_required() ? "(required) " : "") + option->get_description());
    }

    std::string make_description(const CLI::App* app) const override
    {
        return app->get_description() + "\n\n";
    }

    std::string make_footer(const CLI::App* app) const override
    {
        return refilled(app->get_footer());
    }

    std::string make_subcommand(const CLI::App* verb) const override
    {
        return row(verb->get_name(), verb->get_description());
    }
};

Json namesOf(const CLI::Option& option)
{
    Json names = Json::array();
    if (option.get_positional())
        names.push_back(option.get_name(true));
    for (const std::string& name : option.get_lnames())
        names.push_back("--" + name);
    for (const std::string& name : option.get_snames())
        names.push_back("-" + name);
    return names;
}

// The parser keeps no list of what an option takes.
constexpr const char* kChoices = "choices";

Json choicesOf(CLI::Option& option)
{
    try {
        Json choices = Json::array();
        std::istringstream words(option.get_validator(kChoices)->get_description());
        for (std::string word; words >> word;)
            choices.push_back(word);
        return choices;
    } catch (const CLI::OptionNotFound&) {
        return nullptr;
    }
}

Json tableOf(CLI::Option& option)
{
    const std::string value = option.get_items_expected_min() > 0 ? valueOf(option) : "";
    return {{"names", namesOf(option)},
            {"value", value.empty() ? Json() : Json(value)},
            {"choices", choicesOf(option)},
            {"required", option.get_required()},
            {"several", takesMany(option)},
            {"group", option.get_group()},
            {"description", option.get_description()}};
}

Json tableOf(CLI::App& verb)
{
    Json options = Json::array();
    for (CLI::Option* const option : verb.get_options())
        if (!option->get_group().empty())
            options.push_back(tableOf(*option));
    return {{"name", verb.get_name()},
            {"description", verb.get_description()},
            {"options", options},
            {"help", verb.get_footer()}};
}

Json tables(CLI::App& program)
{
    Json verbs = Json::array();
    for (CLI::App* const verb : program.get_subcommands({}))
        verbs.push_back(tableOf(*verb));
    return {{"verb", "help"}, {"program", tableOf(program)}, {"verbs", verbs}};
}

std::string textFor(const std::string& name, const CLI::App& program)
{
    const auto formatter = program.get_formatter();
    if (name.empty())
        return formatter->make_help(&program, program.get_name(), CLI::AppFormatMode::Normal);
    const CLI::App* const verb = findVerb(program, name);
    if (!verb)
        throw UsageError(noSuchVerb(program, name));
    return formatter->make_help(verb, program.get_name() + " " + name, CLI::AppFormatMode::Normal);
}

}  // namespace

std::shared_ptr<CLI::FormatterBase> helpFormatter()
{
    return std::make_shared<Formatter>();
}

CLI::Validator oneOf(const std::vector<std::string>& words)
{
    const auto fault = [words](const std::string& word) {
        return std::find(words.begin(), words.end(), word) != words.end()
                   ? std::string()
                   : "expected " + listOf(words, " or ") + ", found \"" + word + "\"";
    };
    return CLI::Validator(fault, CLI::detail::join(words, " "), kChoices);
}

Run declareHelp(CLI::App& verb, Session& session)
{
    const auto name = std::make_shared<std::string>();
    verb.add_option("VERB", *name, "The verb to explain; without one, all are listed")
        ->type_name("");
    verb.footer(
        "With --json all tables of options come as one document.\n\n"
        "Example:\n  tessary help sample");
    return [name, &verb, &session] {
        CLI::App& program = *verb.get_parent();
        session.finish(tables(program), textFor(*name, program));
        return ExitCode::Done;
    };
}

}  // namespace Cli
