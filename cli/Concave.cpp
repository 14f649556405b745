#include "Concave.h"

#include "Advice.h"
#include "Help.h"

#include <TessaryMesh/Check.h>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <cstdint>

namespace Cli {
namespace {

using TessaryMesh::Concave;
using TessaryMesh::ConcaveFaces;
using TessaryMesh::Problem;

Json placesOf(const Problem& problem)
{
    Json places = Json::array();
    for (const Problem::Place& place : problem.places)
        places.push_back(place.text);
    return places;
}

void warnOf(Problem problem, Session& session)
{
    problem.advice = adviceOn(problem, session.verb());
    session.warn(problem.line());
}

}  // namespace

void addConcave(CLI::App& verb, std::string& way)
{
    verb.add_option("--concave", way,
                    "Split concave faces: by clipping ears, or as a fan like the others")
        ->type_name("WAY")
        ->default_str("fan")
        ->check(oneOf({"fan", "split"}));
}

Concave concaveOf(const std::string& way)
{
    return way == "split" ? Concave::Split : Concave::Fan;
}

Json tellConcave(Conversion& conversion, Concave concave, Session& session)
{
    const bool isSplit = concave == Concave::Split;
    const ConcaveFaces found = conversion.run("check", "looking for concave faces", [&conversion] {
        return TessaryMesh::concaveFaces(conversion.mesh());
    });
    if (found.concave.count > 0 && !isSplit)
        warnOf(found.concave, session);
    if (found.selfCrossing.count > 0)
        warnOf(found.selfCrossing, session);
    return {{"count", found.concave.count},
            {"places", placesOf(found.concave)},
            {"area", found.area},
            {"fan_area", found.fanArea},
            {"slight", found.slight},
            {"split", isSplit},
            {"self_crossing",
             {{"count", found.selfCrossing.count}, {"places", placesOf(found.selfCrossing)}}}};
}

std::string concaveText(const Json& facts)
{
    const Json& concave = facts["concave_faces"];
    const auto count =
        concave["count"].get<std::uint64_t>() + concave["slight"].get<std::uint64_t>();
    if (!concave["split"].get<bool>() || count == 0)
        return "";
    return ", " + std::to_string(count) +
           (count == 1 ? " concave face split" : " concave faces split");
}

}  // namespace Cli
