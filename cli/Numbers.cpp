#include "Numbers.h"

#include "Session.h"

#include <Korvane/Geometry.h>
#include <Tessary/Primitives.h>

#include <fast_float/fast_float.h>
#include <CLI/CLI.hpp>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <optional>

namespace Cli {
namespace {

std::string brief(double number)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.10g", number);
    return text;
}

std::string precisely(double number)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.17g", number);
    return text;
}

// None for what is no finite number, an empty word (as of an unset variable) included.
std::optional<double> parsed(const std::string& word)
{
    const std::size_t sign = word.size() > 1 && word[0] == '+' && word[1] != '-' ? 1 : 0;
    const char* const end = word.data() + word.size();
    double number = 0;
    const auto result = fast_float::from_chars(word.data() + sign, end, number);
    if (result.ptr != end || result.ec != std::errc() || !std::isfinite(number))
        return std::nullopt;
    return number;
}

struct Percentable {
    double number;
    bool isPercent;
};

std::optional<Percentable> parsedWithPercent(const std::string& word)
{
    const bool isPercent = !word.empty() && word.back() == '%';
    const auto number = parsed(isPercent ? word.substr(0, word.size() - 1) : word);
    return number ? std::optional<Percentable>({*number, isPercent}) : std::nullopt;
}

std::string expected(const std::string& what, const std::string& found)
{
    return "expected " + what + ", found \"" + found + "\"";
}

std::string range(double least, double most)
{
    return brief(least) + " to " + brief(most);
}

CLI::Validator validator(std::function<std::string(std::string&)> check)
{
    return CLI::Validator(std::move(check), "");
}

double radiusOf(const Korvane::Object& mesh)
{
    const auto points = Korvane::Geometry::dataArray<Korvane::Math::float3>(
        mesh, Korvane::Geometry::sPointPosition);
    return points && !points->empty() ? Tessary::computeBoundingSphere(*points).getRadius() : 0;
}

}  // namespace

CLI::Validator wholeNumber(std::uint64_t least, std::uint64_t most)
{
    return validator([least, most](const std::string& word) {
        std::uint64_t number = 0;
        const char* const end = word.data() + word.size();
        const auto result = std::from_chars(word.data(), end, number);
        const bool isInRange =
            result.ptr == end && result.ec == std::errc() && number >= least && number <= most;
        return isInRange ? ""
                         : expected("a whole number from " + std::to_string(least) + " to " +
                                        std::to_string(most),
                                    word);
    });
}

CLI::Validator realNumber(double least, double most)
{
    return validator([least, most](const std::string& word) {
        const auto number = parsed(word);
        const bool isInRange = number && *number >= least && *number <= most;
        return isInRange ? "" : expected("a number from " + range(least, most), word);
    });
}

CLI::Validator share(double least, double most)
{
    return validator([least, most](std::string& word) {
        const auto found = parsedWithPercent(word);
        const double number = !found ? 0 : found->isPercent ? found->number / 100 : found->number;
        if (!found || !(number >= least && number <= most))
            return expected("a number from " + range(least, most) + " or percent such as 5%", word);
        word = precisely(number);
        return std::string();
    });
}

CLI::Validator length()
{
    return validator([](const std::string& word) {
        const auto found = parsedWithPercent(word);
        return found && found->number > 0
                   ? ""
                   : expected("a length above 0, as a number or in percent such as 2%", word);
    });
}

double lengthIn(const Korvane::Object& mesh, const std::string& text, const std::string& option)
{
    const auto length = parsedWithPercent(text);
    if (!length->isPercent)
        return length->number;
    const double radius = radiusOf(mesh);
    if (radius == 0)
        throw UsageError(option + " " + text +
                         ": the mesh has no radius to take percent of (give a number)");
    return length->number / 100 * radius;
}

}  // namespace Cli
