#include "operators.h"

#include <Korvane/Geometry.h>
#include <Tessary/Sampling.h>
#include <Tessary/Solver.h>
#include <TessaryMesh/Files.h>
#include <TessaryMesh/Operations.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <utility>

using namespace Korvane;
using Pelon::Array;
using Pelon::MutablePtr;
using Pelon::Ptr;
using Pelon::RuntimeMessageCategory;
using Tessary::Multicollider;
using float3 = Math::float3;

namespace {

// A message costs nothing where nobody listens.
void say(const Log& log, RuntimeMessageCategory category, const std::string& text)
{
    if (log.isLogEnabled(category))
        log.logImpl(category, text);
}

void sayWarnings(const Log& log, const std::vector<std::string>& warnings)
{
    for (const std::string& warning : warnings)
        say(log, RuntimeMessageCategory::Warning, warning);
}

std::string countOf(const Object& shape, const Pelon::String& component, const char* word)
{
    return std::to_string(Geometry::getElementCount(shape, component)) + " " + word;
}

// Copy on write, from the outside to the inside: the shape, its property, the property's array. Each is
// taken out of what holds it, so that it can be seen to have no other holder, and put back.
template <class Change>
void changePositions(Object& shape, const Change& change)
{
    Pelon::Any held = shape.getPropertyForModification(Geometry::sPointPosition);
    const auto property = toMutable(std::move(*held.get<Ptr<Object>>()));
    Pelon::Any data = property->getPropertyForModification(Geometry::sData);
    const auto positions = toMutable(std::move(*data.get<Ptr<Array<float3>>>()));
    change(*positions);
    property->setProperty(Geometry::sData, positions);
    shape.setProperty(Geometry::sPointPosition, property);
}

struct Contact {
    Pelon::uint a, b;
    float3 normal;  // from a to b
    float depth;
};

std::vector<Contact> contactsOf(const Array<float3>& centers, float radius)
{
    std::vector<Contact> contacts;
    for (Pelon::uint a = 0; a < centers.size(); ++a)
        for (Pelon::uint b = a + 1; b < centers.size(); ++b) {
            const float3 to = {centers[b].x - centers[a].x, centers[b].y - centers[a].y,
                               centers[b].z - centers[a].z};
            const float length = std::sqrt(to.x * to.x + to.y * to.y + to.z * to.z);
            if (length > 0 && length < 2 * radius)
                contacts.push_back(
                    {a, b, {to.x / length, to.y / length, to.z / length}, 2 * radius - length});
        }
    return contacts;
}

// Pushes both ends of each contact apart by half of its depth, and lets the solver see to it that no push
// drives a sphere deeper into another one that it touches.
Multicollider solved(std::size_t count, const std::vector<Contact>& contacts)
{
    std::vector<float3> pushes(count);
    for (const Contact& contact : contacts)
        for (const auto& [body, sign] : {std::pair(contact.a, -0.5f), std::pair(contact.b, 0.5f)}) {
            pushes[body].x += sign * contact.depth * contact.normal.x;
            pushes[body].y += sign * contact.depth * contact.normal.y;
            pushes[body].z += sign * contact.depth * contact.normal.z;
        }
    Multicollider solver;
    for (Pelon::uint body = 0, next = 0; body < count; ++body) {
        solver.addCollider(1, pushes[body]);
        for (; next < contacts.size() && contacts[next].a == body; ++next)
            solver.addContact(contacts[next].normal);
    }
    solver.preparePairs(Multicollider::Side::Behind);
    for (Pelon::uint c = 0; c < contacts.size(); ++c)
        for (Pelon::uint other = 0; other < count; ++other)
            if (other != contacts[c].a && other != contacts[c].b)
                solver.ignore(solver.pairIndex(contacts[c].a, c, other));
    solver.tolerance = 1e-4f;
    solver.maxIterations = 2000;
    solver.solve();
    return solver;
}

float deepest(const std::vector<Contact>& contacts)
{
    float depth = 0;
    for (const Contact& contact : contacts)
        depth = std::max(depth, contact.depth);
    return depth;
}

void moveApart(Array<float3>& centers, float radius)
{
    for (int round = 0; round < 20; ++round) {
        TessaryMesh::
            throwIfCancelled();  // kernels ask by themselves; work of one's own does so here
        const Multicollider solver = solved(centers.size(), contactsOf(centers, radius));
        for (std::size_t i = 0; i < centers.size(); ++i) {
            centers[i].x += solver.displacements[i].x;
            centers[i].y += solver.displacements[i].y;
            centers[i].z += solver.displacements[i].z;
        }
    }
}

const Array<float3>& positionsOf(const Object& shape)
{
    return *Geometry::dataArray<float3>(shape, Geometry::sPointPosition);
}

}  // namespace

Operator readFile(std::string path)
{
    return [path = std::move(path)](const std::vector<Shape>&, const Log& log) -> Shape {
        const TessaryMesh::MeshRead read = TessaryMesh::readMesh(path);
        sayWarnings(log, read.warnings);
        say(log, RuntimeMessageCategory::Info,
            "read: " + countOf(*read.mesh, Geometry::sFaceComp, "faces"));
        return read.mesh;
    };
}

Operator triangulate()
{
    return [](const std::vector<Shape>& inputs, const Log& log) -> Shape {
        const TessaryMesh::Result made = TessaryMesh::triangulate(*inputs[0]);
        sayWarnings(log, made.warnings);
        say(log, RuntimeMessageCategory::Info,
            "triangulate: " + countOf(*made.mesh, Geometry::sFaceComp, "triangles"));
        return made.mesh;
    };
}

Operator quads(double creaseAngle)
{
    return [creaseAngle](const std::vector<Shape>& inputs, const Log& log) -> Shape {
        TessaryMesh::QuadOptions options;
        options.creaseAngle = creaseAngle;
        const TessaryMesh::QuadResult made = TessaryMesh::makeQuads(*inputs[0], options);
        sayWarnings(log, made.warnings);
        say(log, RuntimeMessageCategory::Info,
            "quads: " + countOf(*made.mesh, Geometry::sFaceComp, "quads") + ", " +
                std::to_string(made.creasedEdges) + " creased edges");
        return made.mesh;
    };
}

// A kernel itself, which logs its own errors.
Operator sample(float distance, unsigned seed)
{
    return [distance, seed](const std::vector<Shape>& inputs, const Log& log) -> Shape {
        const auto cloud = createObject();
        Tessary::poissonSampleTriMesh(distance, seed, *inputs[0], *cloud, &log);
        if (!cloud->hasProperty(Geometry::sPointPosition))
            return nullptr;
        say(log, RuntimeMessageCategory::Info,
            "sample: " + countOf(*cloud, Geometry::sPointComp, "points"));
        return cloud;
    };
}

Operator separate(float radius)
{
    return [radius](std::vector<Shape> inputs, const Log& log) -> Shape {
        if (!inputs[0])
            return nullptr;
        // The operator's own pointer goes into toMutable(): with a second one every shape would be shared.
        const MutablePtr<Object> cloud = toMutable(std::move(inputs[0]));
        const float3* const before = positionsOf(*cloud).data();
        const float depth = deepest(contactsOf(positionsOf(*cloud), radius));
        changePositions(*cloud, [radius](Array<float3>& points) { moveApart(points, radius); });
        const bool isSame = positionsOf(*cloud).data() == before;
        char text[80];
        std::snprintf(text, sizeof text, "separate: overlaps of up to %.3f became %.3f, %s", depth,
                      deepest(contactsOf(positionsOf(*cloud), radius)),
                      isSame ? "in place" : "on a copy");
        say(log, RuntimeMessageCategory::Info, text);
        return cloud;
    };
}
