#include "view/PageContents.h"

#include "base/MessageText.h"
#include "base/PropertyKinds.h"
#include "view/PageText.h"
#include <TessaryMesh/Check.h>

#include <utility>

namespace TessaryMesh {
namespace {

using namespace Korvane::Geometry;

const char* elementName(Problem::Element element)
{
    switch (element) {
        case Problem::Element::Point:
            return "point";
        case Problem::Element::Corner:
            return "corner";
        case Problem::Element::Face:
            return "face";
        case Problem::Element::None:
            break;
    }
    return "";
}

std::string placesOf(const Problem& problem)
{
    std::vector<std::string> places;
    for (const Problem::Place& place : problem.places)
        places.push_back(JsonObject()
                             .addText("text", place.text)
                             .addText("element", elementName(place.element))
                             .add("index", place.index)
                             .text());
    return jsonList(places);
}

std::string textOf(const Problem& problem)
{
    const bool isError = problem.severity == Problem::Severity::Error;
    return JsonObject()
        .addText("severity", isError ? "error" : "warning")
        .addText("code", problem.code)
        .addText("message", problem.message)
        .add("count", problem.count)
        .add("places", placesOf(problem))
        .addText("advice", problem.advice)
        .text();
}

// A cloud has no faces that something could be wrong with.
std::string problemsOf(const Object& mesh, bool hasFaces)
{
    std::vector<std::string> texts;
    if (hasFaces) {
        ValidationReport report = validateMesh(mesh);
        if (!report.hasErrors())
            for (auto& warnings : {edgeWarnings(mesh), concaveFaces(mesh).problems()})
                report.problems.insert(report.problems.end(), warnings.begin(), warnings.end());
        for (const Problem& problem : report.problems)
            texts.push_back(textOf(problem));
    }
    return jsonList(texts);
}

// Indices that several properties share go to the page once: `ranges` has them by name.
using Ranges = std::vector<std::pair<String, std::string>>;

std::string indicesOf(const Object& mesh, const String& range, Ranges& ranges, PageArrays& arrays)
{
    for (const auto& [name, text] : ranges)
        if (name == range)
            return text;
    const Ptr<Array<uint>> indices = getRangeGeoPropIndices(*getRangeGeoProperty(mesh, range));
    std::string text = indices ? arrays.add(*indices) : "null";
    ranges.emplace_back(range, text);
    return text;
}

bool isBlended(const Object& property)
{
    using Mode = Common::DataInterpolationMode;
    return entryOf<Mode>(property, sInterp).value_or(Mode::Linear) == Mode::Linear;
}

// Of points, corners and faces; what belongs to other elements has no place to be shown at.
std::string propertiesOf(const Object& mesh, PageArrays& arrays)
{
    std::vector<std::string> texts;
    Ranges ranges;
    for (const String& name : mesh.propertyNames()) {
        const auto property = findElementProperty(mesh, name);
        if (!property || isTopology(name))
            continue;
        const Ptr<Object> object = getDataGeoProperty(mesh, name);
        JsonObject text;
        text.addText("name", name.view()).addText("component", elementWord(property->component));
        text.add("blended", isBlended(*object) ? "true" : "false");
        if (!property->range.empty())
            text.addText("through", property->range.view())
                .add("indices", indicesOf(mesh, property->range, ranges, arrays));
        Korvane::visitArray(object->getProperty(sData), [&](const auto& values, const char* type) {
            using T = typename std::decay_t<decltype(*values)>::value_type;
            text.addText("type", type)
                .add("columns", Scalars<T>::kCount)
                .add("values", arrays.add(*values));
        });
        texts.push_back(text.text());
    }
    return jsonList(texts);
}

// Files keep a cloud as a mesh without faces.
bool hasFaceArrays(const Object& mesh)
{
    const auto offsets = dataArray<uint>(mesh, sFaceOffset),
               corners = dataArray<uint>(mesh, sFaceVertex);
    const bool isEmpty = offsets && corners && offsets->size() <= 1 && corners->empty();
    return !isEmpty && (mesh.hasProperty(sFaceOffset) || mesh.hasProperty(sFaceVertex));
}

}  // namespace

std::string contentsOf(const PageModel& model, PageArrays& arrays)
{
    const Object& mesh = *model.mesh;
    const auto points = dataArray<float3>(mesh, sPointPosition);
    if (!points)
        throw ArgumentError(
            "models", quoted(model.name) + " has no point positions; show a mesh or a point cloud");
    const bool hasFaces = hasFaceArrays(mesh);
    JsonObject text;
    text.addText("name", model.name).addText("kind", hasFaces ? "mesh" : "cloud");
    text.add("points", arrays.add(*points));
    for (const auto& [name, property] :
         {std::pair("offsets", sFaceOffset), {"corners", sFaceVertex}})
        if (const auto array = dataArray<uint>(mesh, property))
            text.add(name, arrays.add(*array));
    return text.add("properties", propertiesOf(mesh, arrays))
        .add("problems", problemsOf(mesh, hasFaces))
        .text();
}

}  // namespace TessaryMesh
