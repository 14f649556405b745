#include "MeshFacts.h"
#include "Words.h"

#include <algorithm>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <sstream>

namespace Cli {
namespace {

constexpr std::size_t kShownSizes = 6;

std::string sizesText(const Json& sizes)
{
    std::string text;
    std::size_t shown = 0;
    for (const auto& [size, count] : sizes.items()) {
        if (shown++ == kShownSizes)
            return text + ", ...";
        text += (text.empty() ? "" : ", ") + count.dump() + " of " + size + " corners";
    }
    return text;
}

std::string boxText(const Json& box)
{
    if (box.is_null())
        return "none";
    const auto corner = [](const Json& v) {
        return v[0].dump() + " " + v[1].dump() + " " + v[2].dump();
    };
    return corner(box["min"]) + "  to  " + corner(box["max"]);
}

std::string propertyText(const Json& property)
{
    const auto word = [&property](const char* key) { return property[key].get<std::string>(); };
    std::string text = property["type"].is_null() ? "unknown type" : word("type");
    const std::string component = word("component");
    const bool isPlural = component == "points" || component == "corners" || component == "faces";
    text += " on " + (isPlural ? counted(property["elements"].get<std::uint64_t>(),
                                         component.substr(0, component.size() - 1))
                               : property["elements"].dump() + " " + component);
    if (!property["through"].is_null())
        text += ", " + counted(property["values"].get<std::uint64_t>(), "value") + " through " +
                word("through");
    return text;
}

using Rows = std::vector<std::pair<std::string, std::string>>;

std::string table(const Rows& rows)
{
    std::size_t width = 0;
    for (const auto& row : rows)
        width = std::max(width, shown(row.first).size());
    std::ostringstream text;
    for (const auto& [name, value] : rows)
        text << "  " << std::left << std::setw(static_cast<int>(width)) << shown(name) << "  "
             << shown(value) << "\n";
    return text.str();
}

// ", 3 of more than two faces (edge 0-1: ...)": only what there is.
std::string placesText(const Json& found, const char* what)
{
    if (found["count"] == 0)
        return "";
    return ", " + found["count"].dump() + " " + what + " (" +
           found["places"][0].get<std::string>() + (found["count"] > 1 ? "; ...)" : ")");
}

std::string edgesText(const Json& facts)
{
    if (facts["edges"] == 0)
        return "0";
    const std::string least = facts["valence"]["least"].dump(),
                      most = facts["valence"]["most"].dump();
    return facts["edges"].dump() + ": " + facts["boundary_edges"].dump() + " boundary" +
           placesText(facts["non_manifold_edges"], "of more than two faces") +
           placesText(facts["same_direction_edges"], "along which faces run in one direction") +
           "; " + (least == most ? "" : least + " to ") + most + " at a point";
}

std::string shapeText(const Json& facts)
{
    if (facts["components"] == 0)
        return "no faces";
    const auto plural = [](const Json& count, const char* what) {
        return counted(count.get<std::uint64_t>(), what);
    };
    std::string text = plural(facts["components"], "component") +
                       (facts["closed"].get<bool>() ? ", closed" : ", open") +
                       ", Euler characteristic " + facts["euler_characteristic"].dump();
    if (!facts["genus"].is_null())
        text += ", genus " + facts["genus"].dump() +
                (facts["components"] > 1 ? " in all components together" : "");
    if (facts["non_manifold_points"] > 0)
        text += ", " + plural(facts["non_manifold_points"], "point") + " that join" +
                (facts["non_manifold_points"] == 1 ? "s" : "") + " faces without a common edge";
    if (facts["unused_points"] > 0)
        text += ", " + plural(facts["unused_points"], "point") + " of no face";
    return text;
}

Rows summaryRows(const Json& facts)
{
    const std::string sizes = sizesText(facts["polygon_sizes"]);
    return {{"points", facts["points"].dump()},
            {"corners", facts["corners"].dump()},
            {"faces", facts["faces"].dump() + (sizes.empty() ? "" : ": " + sizes)},
            {"edges", edgesText(facts)},
            {"shape", shapeText(facts)},
            {"bounding box", boxText(facts["bounding_box"])},
            {"area", facts["area"].dump()}};
}

}  // namespace

std::string textOf(const Json& facts)
{
    std::string text = table(summaryRows(facts));
    Rows properties, values;
    for (const Json& property : facts["properties"])
        properties.emplace_back(property["name"].get<std::string>(), propertyText(property));
    for (const auto& [name, value] : facts["values"].items())
        values.emplace_back(name, value.dump(-1, ' ', false, Json::error_handler_t::replace));
    if (!properties.empty())
        text += "properties\n" + table(properties);
    if (!values.empty())
        text += "values\n" + table(values);
    return text;
}

std::string lineOf(const Json& facts)
{
    const auto some = [&facts](const char* key, const char* what) {
        return counted(facts[key].get<std::uint64_t>(), what);
    };
    std::string names;
    for (const Json& property : facts["properties"])
        names += (names.empty() ? "" : ", ") + shown(property["name"].get<std::string>());
    return some("points", "point") + ", " + some("corners", "corner") + ", " +
           some("faces", "face") + "; " + shapeText(facts) + "; area " + facts["area"].dump() +
           "; " + (names.empty() ? "no properties" : names);
}

std::string joined(const Json& strings)
{
    std::string text;
    for (const Json& string : strings)
        text += (text.empty() ? "" : ", ") + string.get<std::string>();
    return text;
}

std::string carriedText(const Json& facts)
{
    const std::string names = joined(facts["properties"]);
    return "carried " + (names.empty() ? "nothing" : names);
}

}  // namespace Cli
