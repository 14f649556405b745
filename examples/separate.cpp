// Takes a pile of spheres and boxes apart.
//
// Every overlap pushes its two bodies away from each other. In a pile such pushes meet: what
// Multicollider adds is that no push drives a body deeper into another one that it touches.
#include <Tessary/Solver.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <random>
#include <vector>

using Tessary::Multicollider;
using Tessary::uint;
using float3 = Multicollider::float3;

// A box of half-size h with its edges rounded off by a radius: a sphere where h is zero.
struct Body {
    float3 center;
    float3 h;
    float radius;
};

struct Contact {
    uint a, b;
    float3 normal;  // from a to b
    float depth;    // negative where there is a gap
};

float3 times(const float3& v, float s)
{
    return {v.x * s, v.y * s, v.z * s};
}

float3 plus(const float3& a, const float3& b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

// How far two intervals around 0 and `at` are apart, signed by the direction; 0 where they overlap.
float gapBetween(float at, float halfSizes)
{
    return std::copysign(std::max(std::fabs(at) - halfSizes, 0.0f), at);
}

Contact contactOf(const std::vector<Body>& bodies, uint a, uint b)
{
    const float3 to = plus(bodies[b].center, times(bodies[a].center, -1));
    const float3 h = plus(bodies[a].h, bodies[b].h);
    const float radii = bodies[a].radius + bodies[b].radius;
    const float3 gap = {gapBetween(to.x, h.x), gapBetween(to.y, h.y), gapBetween(to.z, h.z)};
    const float length = std::sqrt(gap.x * gap.x + gap.y * gap.y + gap.z * gap.z);
    if (length > 0)  // apart but for their roundings
        return {a, b, times(gap, 1 / length), radii - length};
    const float x = h.x - std::fabs(to.x), y = h.y - std::fabs(to.y), z = h.z - std::fabs(to.z);
    const float least = std::min({x, y, z});  // the shortest way out
    if (least == x)
        return {a, b, {std::copysign(1.0f, to.x), 0, 0}, x + radii};
    if (least == y)
        return {a, b, {0, std::copysign(1.0f, to.y), 0}, y + radii};
    return {a, b, {0, 0, std::copysign(1.0f, to.z)}, z + radii};
}

// Everybody with everybody, the contacts of each body together.
std::vector<Contact> findContacts(const std::vector<Body>& bodies)
{
    const float reach = 0.05f;  // neighbours that a push might drive into each other
    std::vector<Contact> contacts;
    for (uint a = 0; a < bodies.size(); ++a)
        for (uint b = a + 1; b < bodies.size(); ++b)
            if (const Contact contact = contactOf(bodies, a, b); contact.depth > -reach)
                contacts.push_back(contact);
    return contacts;
}

float deepest(const std::vector<Contact>& contacts)
{
    float depth = 0;
    for (const Contact& contact : contacts)
        depth = std::max(depth, contact.depth);
    return depth;
}

// How far each body moves; nobody where the solver does not converge.
Multicollider solved(const std::vector<Body>& bodies, const std::vector<Contact>& contacts)
{
    std::vector<float3> pushes(bodies.size());
    for (const Contact& contact : contacts) {
        const float half = std::max(contact.depth, 0.0f) / 2;
        pushes[contact.a] = plus(pushes[contact.a], times(contact.normal, -half));
        pushes[contact.b] = plus(pushes[contact.b], times(contact.normal, half));
    }
    Multicollider solver;
    for (uint body = 0; body < bodies.size(); ++body) {
        solver.addCollider(1, pushes[body]);
        for (const Contact& contact : contacts)
            if (contact.a == body)
                solver.addContact(contact.normal);
    }
    // Along its normal a body may not follow the one that it touches; about others it says nothing.
    solver.preparePairs(Multicollider::Side::Behind);
    for (uint c = 0; c < contacts.size(); ++c)
        for (uint other = 0; other < bodies.size(); ++other)
            if (other != contacts[c].a && other != contacts[c].b)
                solver.ignore(solver.pairIndex(contacts[c].a, c, other));
    solver.tolerance = 1e-4f;
    solver.maxIterations = 2000;
    solver.solve();
    return solver;
}

// "center half-size radius" a line, for whoever draws them.
void print(const std::vector<Body>& bodies)
{
    for (const Body& body : bodies)
        std::printf("%g %g %g  %g %g %g  %g\n", body.center.x, body.center.y, body.center.z,
                    body.h.x, body.h.y, body.h.z, body.radius);
}

// With any argument the bodies themselves are printed, as they were and as they end.
int main(int argc, char**)
{
    const bool printsBodies = argc > 1;
    std::mt19937 random(1);
    const auto unit = [&random] { return static_cast<float>(random()) * 0x1p-32f; };
    std::vector<Body> bodies;
    for (int i = 0; i < 40; ++i) {
        const float3 center = {3 * unit(), 3 * unit(), 3 * unit()};
        if (i % 2 == 0)
            bodies.push_back({center, {0, 0, 0}, 0.3f + 0.3f * unit()});
        else
            bodies.push_back({center, {0.2f + 0.3f * unit(), 0.4f, 0.3f}, 0});
    }
    if (printsBodies)
        print(bodies);
    for (int round = 0;; ++round) {
        const std::vector<Contact> contacts = findContacts(bodies);
        if (round % 10 == 0 && !printsBodies)
            std::printf("round %2d: largest penetration %.2f\n", round, deepest(contacts));
        if (round == 30)
            break;
        const Multicollider solver = solved(bodies, contacts);
        for (uint body = 0; body < bodies.size(); ++body)
            bodies[body].center = plus(bodies[body].center, solver.displacements[body]);
    }
    if (printsBodies)
        print(bodies);
}
