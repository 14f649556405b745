#include "Arrays.h"
#include "Module.h"
#include "Requirements.h"
#include "Work.h"

#include <Tessary/Solver.h>
#include <TessaryMesh/Errors.h>

#include <cstring>
#include <type_traits>

#include <pybind11/stl.h>

namespace TessaryPython {
namespace {

using Korvane::Math::float3;
using Korvane::Math::float4;
using Tessary::Multicollider;

void requireSizes(const Multicollider& solver)
{
    const std::size_t colliders = solver.displacements.size();
    const std::size_t contacts = solver.contactDirections.size();
    const std::size_t pairs = contacts * (colliders < 2 ? 0 : colliders - 1);
    requireLength(solver.contactOffsets.size(), colliders + 1, "contact_offsets",
                  "colliders and one");
    requireOffsets(solver.contactOffsets, contacts, "contact_offsets");
    requireLength(solver.inverseMasses.size(), colliders, "inverse_masses", "colliders");
    if (!solver.freeDisplacements.empty())
        requireLength(solver.freeDisplacements.size(), colliders, "free_displacements",
                      "colliders");
    requireLength(solver.pairScales.size(), pairs, "pair_scales", "pairs (call prepare_pairs())");
    requireLength(solver.pairLambdas.size(), pairs, "pair_lambdas", "pairs (call prepare_pairs())");
}

// A copy is solved, so that a solve that is interrupted leaves everything as it was.
bool solve(Multicollider& solver, const py::object& progress)
{
    requireSizes(solver);
    const std::size_t effort = 20 * solver.pairScales.size();
    struct Solved {
        Multicollider solver;
        bool converged;
    };
    Solved solved = compute({0, progress}, effort, [copy = solver](Stage&) {
        Solved result{copy, false};
        result.converged = result.solver.solve();
        return result;
    });
    solver = std::move(solved.solver);
    return solved.converged;
}

std::size_t pairOf(const Multicollider& solver, uint collider, uint contact, uint other)
{
    const std::size_t pair = solver.pairIndex(collider, contact, other);
    if (collider >= solver.colliderCount() || other >= solver.colliderCount() ||
        contact >= solver.contactCount() || collider == other || pair >= solver.pairScales.size())
        throw py::index_error("there is no pair of contact " + std::to_string(contact) +
                              " of collider " + std::to_string(collider) + " with collider " +
                              std::to_string(other) + " (call prepare_pairs() first)");
    return pair;
}

uint addContact(Multicollider& solver, const float3& direction)
{
    if (solver.contactOffsets.empty() || solver.colliderCount() == 0)
        throw py::index_error("there is no collider that a contact could belong to");
    return solver.addContact(direction);
}

void preparePairs(Multicollider& solver, bool isAhead, float relaxation)
{
    if (solver.contactOffsets.empty())
        solver.contactOffsets.push_back(0);
    requireLength(solver.contactOffsets.size(), std::size_t{solver.colliderCount()} + 1,
                  "contact_offsets", "colliders and one");
    requireOffsets(solver.contactOffsets, solver.contactCount(), "contact_offsets");
    requireLength(solver.inverseMasses.size(), solver.colliderCount(), "inverse_masses",
                  "colliders");
    solver.preparePairs(isAhead ? Multicollider::Side::Ahead : Multicollider::Side::Behind,
                        relaxation);
}

float3 toFloat3(const std::array<float, 3>& v)
{
    return {v[0], v[1], v[2]};
}

// Copies: the solver's arrays grow and are written by solves.
template <class T>
py::array copyOf(const Pelon::Array<T>& array)
{
    return moveToNumpy(Pelon::Array<T>(array));
}

py::array directionsOf(const Multicollider& solver)
{
    Pelon::Array<float3> directions(solver.contactDirections.size());
    for (std::size_t i = 0; i < directions.size(); ++i)
        directions[i] = solver.contactDirections[i].direction;
    return moveToNumpy(std::move(directions));
}

void setDirections(Multicollider& solver, const py::array& values)
{
    const auto directions = borrow<float3>(values, "contact_directions");
    solver.contactDirections.resize(directions->size());
    for (std::size_t i = 0; i < directions->size(); ++i)
        solver.contactDirections[i] = {(*directions)[i], 0.0f};
}

template <class Class, class T>
void defineArray(Class& type, const char* name, Pelon::Array<T> Multicollider::*member)
{
    type.def_property(
        name, [member](const Multicollider& self) { return copyOf(self.*member); },
        [member, name](Multicollider& self, const py::array& values) {
            self.*member = Pelon::Array<T>(*borrow<T>(values, name));
        });
}

}  // namespace

void defineSolver(py::module_& module)
{
    using Vector = std::array<float, 3>;
    py::class_<Multicollider> type(module, "Multicollider");
    type.def(py::init<>())
        .def(
            "add_collider",
            [](Multicollider& self, float inverseMass, const Vector& free) {
                return self.addCollider(inverseMass, toFloat3(free));
            },
            py::arg("inverse_mass"), py::arg("free_displacement"))
        .def(
            "add_contact",
            [](Multicollider& self, const Vector& direction) {
                return addContact(self, toFloat3(direction));
            },
            py::arg("direction"))
        .def("prepare_pairs", &preparePairs, py::arg("ahead"), py::arg("relaxation"))
        .def(
            "set_side",
            [](Multicollider& self, uint collider, uint contact, uint other, bool isAhead) {
                self.setSide(pairOf(self, collider, contact, other),
                             isAhead ? Multicollider::Side::Ahead : Multicollider::Side::Behind);
            },
            py::arg("collider"), py::arg("contact"), py::arg("other"), py::arg("ahead"))
        .def(
            "ignore",
            [](Multicollider& self, uint collider, uint contact, uint other) {
                self.ignore(pairOf(self, collider, contact, other));
            },
            py::arg("collider"), py::arg("contact"), py::arg("other"))
        .def("withdraw_pushes", &Multicollider::withdrawPushes)
        .def("solve", &solve, py::arg("progress"))
        .def_property_readonly("collider_count", &Multicollider::colliderCount)
        .def_property_readonly("contact_count", &Multicollider::contactCount)
        .def_property("contact_directions", &directionsOf, &setDirections)
        .def_property(
            "fallback_displacement",
            [](const Multicollider& self) {
                const float3& v = self.fallbackDisplacement;
                return Vector{v.x, v.y, v.z};
            },
            [](Multicollider& self, const Vector& v) { self.fallbackDisplacement = toFloat3(v); })
        .def_readwrite("tolerance", &Multicollider::tolerance)
        .def_readwrite("max_iterations", &Multicollider::maxIterations);
    defineArray(type, "contact_offsets", &Multicollider::contactOffsets);
    defineArray(type, "displacements", &Multicollider::displacements);
    defineArray(type, "free_displacements", &Multicollider::freeDisplacements);
    defineArray(type, "inverse_masses", &Multicollider::inverseMasses);
    defineArray(type, "pair_scales", &Multicollider::pairScales);
    defineArray(type, "pair_lambdas", &Multicollider::pairLambdas);
}

}  // namespace TessaryPython
